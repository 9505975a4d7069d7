#include "StorageSupport.h"

#include "KnownPaths.h"

#include <Errors.h>

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

namespace BPrivate {

status_t status_for_errno(int error) {
    switch (error) {
    case 0:
        return B_OK;
    case ENOENT:
        return B_ENTRY_NOT_FOUND;
    case EEXIST:
        return B_FILE_EXISTS;
    case EACCES:
        return B_PERMISSION_DENIED;
    case EPERM:
        return B_NOT_ALLOWED;
    case ENOTDIR:
        return B_NOT_A_DIRECTORY;
    case EISDIR:
        return B_IS_A_DIRECTORY;
    case ENOTEMPTY:
        return B_DIRECTORY_NOT_EMPTY;
    case ENOSPC:
    case EDQUOT:
        return B_DEVICE_FULL;
    case EROFS:
        return B_READ_ONLY_DEVICE;
    case EMFILE:
    case ENFILE:
        return B_NO_MORE_FDS;
    case EXDEV:
        return B_CROSS_DEVICE_LINK;
    case ELOOP:
        return B_LINK_LIMIT;
    case ENAMETOOLONG:
        return B_NAME_TOO_LONG;
    case EBADF:
        return B_FILE_ERROR;
    case EINVAL:
        return B_BAD_VALUE;
    case ENOMEM:
        return B_NO_MEMORY;
    case EIO:
        return B_IO_ERROR;
    case EBUSY:
        return B_BUSY;
    case EAGAIN:
        return B_WOULD_BLOCK;
    case EINTR:
        return B_INTERRUPTED;
    case ENODATA:
        return B_ENTRY_NOT_FOUND;
    case EOPNOTSUPP:
        return B_NOT_SUPPORTED;
    case EFBIG:
        return B_FILE_TOO_LARGE;
    case E2BIG:
        return B_TOO_MANY_ARGS;
    case EOVERFLOW:
        return B_BUFFER_OVERFLOW;
    case EPIPE:
        return B_BUSTED_PIPE;
    default:
        return B_FROM_POSIX_ERROR(error);
    }
}

status_t last_error() {
    return status_for_errno(errno);
}

std::string join_path(const std::string& directory, const std::string& name) {
    if (name.empty() || name == ".")
        return directory;
    if (directory == "/")
        return "/" + name;
    return directory + "/" + name;
}

void split_path(const std::string& path, std::string* directory, std::string* name) {
    size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        // A move from a temporary: g++ 12 at -O3 misreads assign(const char*) here
        // as an overlapping copy (-Wrestrict).
        *directory = std::string(".");
        *name = path;
        return;
    }
    *directory = slash == 0 ? std::string("/") : path.substr(0, slash);
    *name = path.substr(slash + 1);
}

namespace {

status_t canonical_path(const std::string& path, std::string* result) {
    std::unique_ptr<char, decltype(&free)> resolved(realpath(path.c_str(), nullptr), &free);
    if (resolved == nullptr)
        return last_error();
    *result = resolved.get();
    return B_OK;
}

status_t absolute_path(const char* path, std::string* result) {
    if (path[0] == '/') {
        *result = path;
        return B_OK;
    }
    std::unique_ptr<char, decltype(&free)> cwd(getcwd(nullptr, 0), &free);
    if (cwd == nullptr)
        return last_error();
    *result = join_path(cwd.get(), path);
    return B_OK;
}

status_t fill_location(const std::string& directory, const std::string& name,
                       EntryLocation* location) {
    struct stat directoryStat;
    if (stat(directory.c_str(), &directoryStat) != 0)
        return last_error();
    if (!S_ISDIR(directoryStat.st_mode))
        return B_NOT_A_DIRECTORY;
    location->directory = directory;
    location->name = name;
    location->device = directoryStat.st_dev;
    location->directoryNode = directoryStat.st_ino;
    return B_OK;
}

// A canonical path (no links, no dots) split into folder and leaf; "/" is "/" + ".".
status_t locate_canonical(const std::string& canonical, EntryLocation* location) {
    if (canonical == "/")
        return fill_location("/", ".", location);
    std::string directory;
    std::string name;
    split_path(canonical, &directory, &name);
    return fill_location(directory, name, location);
}

} // namespace

status_t resolve_entry(const char* path, bool traverse, EntryLocation* location) {
    if (path == nullptr || location == nullptr)
        return B_BAD_VALUE;
    if (path[0] == '\0')
        return B_ENTRY_NOT_FOUND;

    std::string absolute;
    if (status_t status = absolute_path(path, &absolute); status != B_OK)
        return status;
    if (absolute.size() >= PATH_MAX)
        return B_NAME_TOO_LONG;
    while (absolute.size() > 1 && absolute.back() == '/')
        absolute.pop_back();

    std::string directory;
    std::string name;
    split_path(absolute, &directory, &name);
    if (name.size() > NAME_MAX)
        return B_NAME_TOO_LONG;

    std::string canonical;
    if (name.empty() || name == "." || name == "..") {
        // "/", "a/." and "a/..": the entry is a folder that must exist.
        if (status_t status = canonical_path(absolute, &canonical); status != B_OK)
            return status;
        return locate_canonical(canonical, location);
    }

    std::string canonicalDirectory;
    if (status_t status = canonical_path(directory, &canonicalDirectory); status != B_OK)
        return status;
    std::string full = join_path(canonicalDirectory, name);

    struct stat leafStat;
    bool leafExists = lstat(full.c_str(), &leafStat) == 0;
    // A folder we may not search hides whether the leaf is there: the entry is unusable.
    if (!leafExists && errno == EACCES)
        return B_PERMISSION_DENIED;
    if (traverse) {
        struct stat& linkStat = leafStat;
        if (leafExists && S_ISLNK(linkStat.st_mode)) {
            if (status_t status = canonical_path(full, &canonical); status != B_OK)
                return status;
            return locate_canonical(canonical, location);
        }
    }
    return fill_location(canonicalDirectory, name, location);
}

status_t path_for_ref(const entry_ref& ref, std::string* path) {
    if (ref.name == nullptr || ref.name[0] == '\0' || strchr(ref.name, '/') != nullptr)
        return B_BAD_VALUE;
    std::string directory;
    if (status_t status = find_node_path(ref.device, ref.directory, &directory); status != B_OK)
        return status;
    if (strcmp(ref.name, "..") == 0) {
        std::string parent;
        std::string ignored;
        split_path(directory, &parent, &ignored);
        *path = directory == "/" ? directory : parent;
        return B_OK;
    }
    *path = join_path(directory, ref.name);
    return B_OK;
}

status_t resolve_entry(const entry_ref& ref, bool traverse, EntryLocation* location) {
    std::string path;
    if (status_t status = path_for_ref(ref, &path); status != B_OK)
        return status;
    return resolve_entry(path.c_str(), traverse, location);
}

status_t ref_for_location(const EntryLocation& location, entry_ref* ref) {
    if (ref == nullptr)
        return B_BAD_VALUE;
    if (status_t status = ref->set_name(location.name.c_str()); status != B_OK)
        return status;
    ref->device = location.device;
    ref->directory = location.directoryNode;
    remember_node_path(location.device, location.directoryNode, location.directory);
    return B_OK;
}

void copy_string(char* buffer, const char* source, size_t size) {
    if (size == 0)
        return;
    size_t length = strnlen(source, size - 1);
    memcpy(buffer, source, length);
    buffer[length] = '\0';
}

std::string relative_to(const std::string& base, const char* path) {
    if (path[0] == '/')
        return path;
    return join_path(base, path);
}

} // namespace BPrivate
