#include <Statable.h>

#include "KnownPaths.h"
#include "StorageSupport.h"

#include <Node.h>
#include <Volume.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using BPrivate::last_error;

BStatable::~BStatable() {}

bool BStatable::IsFile() const {
    struct stat stat;
    return GetStat(&stat) == B_OK && S_ISREG(stat.st_mode);
}

bool BStatable::IsDirectory() const {
    struct stat stat;
    return GetStat(&stat) == B_OK && S_ISDIR(stat.st_mode);
}

bool BStatable::IsSymLink() const {
    struct stat stat;
    return GetStat(&stat) == B_OK && S_ISLNK(stat.st_mode);
}

status_t BStatable::GetNodeRef(node_ref* ref) const {
    if (ref == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    if (status_t status = GetStat(&stat); status != B_OK)
        return status;
    ref->device = stat.st_dev;
    ref->node = stat.st_ino;

    // A node_ref is only useful later (node monitoring, BDirectory::SetTo) if the kit
    // can find the node again.
    int descriptor;
    const char* path;
    if (_StatTarget(&descriptor, &path) == B_OK && path != NULL)
        BPrivate::remember_node_path(stat.st_dev, stat.st_ino, path);
    return B_OK;
}

status_t BStatable::GetOwner(uid_t* owner) const {
    if (owner == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    status_t status = GetStat(&stat);
    if (status == B_OK)
        *owner = stat.st_uid;
    return status;
}

status_t BStatable::SetOwner(uid_t owner) {
    int descriptor;
    const char* path;
    if (status_t status = _StatTarget(&descriptor, &path); status != B_OK)
        return status;
    int result = descriptor >= 0 ? fchown(descriptor, owner, (gid_t)-1)
                                 : fchownat(AT_FDCWD, path, owner, (gid_t)-1, AT_SYMLINK_NOFOLLOW);
    return result == 0 ? B_OK : last_error();
}

status_t BStatable::GetGroup(gid_t* group) const {
    if (group == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    status_t status = GetStat(&stat);
    if (status == B_OK)
        *group = stat.st_gid;
    return status;
}

status_t BStatable::SetGroup(gid_t group) {
    int descriptor;
    const char* path;
    if (status_t status = _StatTarget(&descriptor, &path); status != B_OK)
        return status;
    int result = descriptor >= 0 ? fchown(descriptor, (uid_t)-1, group)
                                 : fchownat(AT_FDCWD, path, (uid_t)-1, group, AT_SYMLINK_NOFOLLOW);
    return result == 0 ? B_OK : last_error();
}

status_t BStatable::GetPermissions(mode_t* permissions) const {
    if (permissions == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    status_t status = GetStat(&stat);
    if (status == B_OK)
        *permissions = stat.st_mode & ~S_IFMT;
    return status;
}

status_t BStatable::SetPermissions(mode_t permissions) {
    int descriptor;
    const char* path;
    if (status_t status = _StatTarget(&descriptor, &path); status != B_OK)
        return status;
    permissions &= ~S_IFMT;
    // Linux keeps no permissions of its own on symbolic links: B_NOT_SUPPORTED there.
    int result = descriptor >= 0 ? fchmod(descriptor, permissions)
                                 : fchmodat(AT_FDCWD, path, permissions, AT_SYMLINK_NOFOLLOW);
    return result == 0 ? B_OK : last_error();
}

status_t BStatable::GetSize(off_t* size) const {
    if (size == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    status_t status = GetStat(&stat);
    if (status == B_OK)
        *size = stat.st_size;
    return status;
}

status_t BStatable::GetModificationTime(time_t* modificationTime) const {
    if (modificationTime == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    status_t status = GetStat(&stat);
    if (status == B_OK)
        *modificationTime = stat.st_mtime;
    return status;
}

namespace {

status_t set_time(int descriptor, const char* path, bool access, time_t time) {
    struct timespec times[2];
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_nsec = UTIME_OMIT;
    struct timespec& which = access ? times[0] : times[1];
    which.tv_sec = time;
    which.tv_nsec = 0;
    int result = descriptor >= 0 ? futimens(descriptor, times)
                                 : utimensat(AT_FDCWD, path, times, AT_SYMLINK_NOFOLLOW);
    return result == 0 ? B_OK : last_error();
}

} // namespace

status_t BStatable::SetModificationTime(time_t modificationTime) {
    int descriptor;
    const char* path;
    if (status_t status = _StatTarget(&descriptor, &path); status != B_OK)
        return status;
    return set_time(descriptor, path, false, modificationTime);
}

status_t BStatable::GetCreationTime(time_t* creationTime) const {
    if (creationTime == NULL)
        return B_BAD_VALUE;
    int descriptor;
    const char* path;
    if (status_t status = _StatTarget(&descriptor, &path); status != B_OK)
        return status;
    struct statx extended;
    int result =
        descriptor >= 0
            ? statx(descriptor, "", AT_EMPTY_PATH, STATX_BTIME | STATX_MTIME, &extended)
            : statx(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_MTIME, &extended);
    if (result != 0)
        return last_error();
    *creationTime = (extended.stx_mask & STATX_BTIME) != 0 ? extended.stx_btime.tv_sec
                                                           : extended.stx_mtime.tv_sec;
    return B_OK;
}

status_t BStatable::SetCreationTime(time_t creationTime) {
    return B_NOT_SUPPORTED;
}

status_t BStatable::GetAccessTime(time_t* accessTime) const {
    if (accessTime == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    status_t status = GetStat(&stat);
    if (status == B_OK)
        *accessTime = stat.st_atime;
    return status;
}

status_t BStatable::SetAccessTime(time_t accessTime) {
    int descriptor;
    const char* path;
    if (status_t status = _StatTarget(&descriptor, &path); status != B_OK)
        return status;
    return set_time(descriptor, path, true, accessTime);
}

status_t BStatable::GetVolume(BVolume* volume) const {
    if (volume == NULL)
        return B_BAD_VALUE;
    struct stat stat;
    if (status_t status = GetStat(&stat); status != B_OK)
        return status;
    return volume->SetTo(stat.st_dev);
}
