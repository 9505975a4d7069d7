// BEntry keeps an entry as its canonical folder path plus its leaf name; the entry
// itself need not exist. Moving and removing keep the Trash's info files in step
// (Trash.h).
#include <Entry.h>

#include "StorageAccess.h"
#include "StorageSupport.h"
#include "Trash.h"

#include <Directory.h>
#include <Path.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>

using BPrivate::EntryLocation;
using BPrivate::last_error;

struct BEntry::Private {
    EntryLocation location;
    std::string path;

    void Set(const EntryLocation& newLocation) {
        location = newLocation;
        path = location.Path();
    }
};

namespace BPrivate {

const EntryLocation* EntryAccess::Location(const BEntry& entry) {
    if (entry.fStatus != B_OK)
        return NULL;
    return &entry.fPrivate->location;
}

} // namespace BPrivate

BEntry::BEntry() : fPrivate(new (std::nothrow) Private), fStatus(B_NO_INIT) {}

BEntry::BEntry(const BDirectory* directory, const char* path, bool traverse)
    : fPrivate(new (std::nothrow) Private), fStatus(B_NO_INIT) {
    SetTo(directory, path, traverse);
}

BEntry::BEntry(const entry_ref* ref, bool traverse)
    : fPrivate(new (std::nothrow) Private), fStatus(B_NO_INIT) {
    SetTo(ref, traverse);
}

BEntry::BEntry(const char* path, bool traverse)
    : fPrivate(new (std::nothrow) Private), fStatus(B_NO_INIT) {
    SetTo(path, traverse);
}

BEntry::BEntry(const BEntry& entry) : fPrivate(new (std::nothrow) Private), fStatus(B_NO_INIT) {
    *this = entry;
}

BEntry::~BEntry() {
    delete fPrivate;
}

status_t BEntry::InitCheck() const {
    return fStatus;
}

bool BEntry::Exists() const {
    struct stat stat;
    return fStatus == B_OK && lstat(fPrivate->path.c_str(), &stat) == 0;
}

const char* BEntry::Name() const {
    if (fStatus != B_OK)
        return NULL;
    return fPrivate->location.name == "." ? "/" : fPrivate->location.name.c_str();
}

status_t BEntry::GetStat(struct stat* stat) const {
    if (stat == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    return lstat(fPrivate->path.c_str(), stat) == 0 ? B_OK : last_error();
}

status_t BEntry::_StatTarget(int* descriptor, const char** path) const {
    if (fStatus != B_OK)
        return B_NO_INIT;
    *descriptor = -1;
    *path = fPrivate->path.c_str();
    return B_OK;
}

status_t BEntry::_SetToPath(const char* path, bool traverse) {
    Unset();
    if (fPrivate == NULL)
        return fStatus = B_NO_MEMORY;
    EntryLocation location;
    fStatus = BPrivate::resolve_entry(path, traverse, &location);
    if (fStatus == B_OK)
        fPrivate->Set(location);
    return fStatus;
}

status_t BEntry::SetTo(const BDirectory* directory, const char* path, bool traverse) {
    if (directory == NULL || path == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    const char* directoryPath = BPrivate::NodeAccess::Path(*directory);
    if (directoryPath == NULL || directory->InitCheck() != B_OK) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string full = BPrivate::relative_to(directoryPath, path);
    return _SetToPath(full.c_str(), traverse);
}

status_t BEntry::SetTo(const entry_ref* ref, bool traverse) {
    if (ref == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string path;
    if (status_t status = BPrivate::path_for_ref(*ref, &path); status != B_OK) {
        Unset();
        return fStatus = status;
    }
    return _SetToPath(path.c_str(), traverse);
}

status_t BEntry::SetTo(const char* path, bool traverse) {
    if (path == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _SetToPath(path, traverse);
}

void BEntry::Unset() {
    if (fPrivate != NULL)
        fPrivate->Set(EntryLocation());
    fStatus = B_NO_INIT;
}

status_t BEntry::GetRef(entry_ref* ref) const {
    if (ref == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    return BPrivate::ref_for_location(fPrivate->location, ref);
}

status_t BEntry::GetPath(BPath* path) const {
    if (path == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    return path->SetTo(fPrivate->path.c_str());
}

status_t BEntry::GetParent(BEntry* entry) const {
    if (entry == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (fPrivate->location.name == ".") {
        entry->Unset();
        return B_ENTRY_NOT_FOUND;
    }
    return entry->SetTo(fPrivate->location.directory.c_str());
}

status_t BEntry::GetParent(BDirectory* directory) const {
    if (directory == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (fPrivate->location.name == ".") {
        directory->Unset();
        return B_ENTRY_NOT_FOUND;
    }
    return directory->SetTo(fPrivate->location.directory.c_str());
}

status_t BEntry::GetName(char* buffer) const {
    if (buffer == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK) {
        buffer[0] = '\0';
        return B_NO_INIT;
    }
    BPrivate::copy_string(buffer, Name(), B_FILE_NAME_LENGTH);
    return B_OK;
}

namespace {

int rename_entry(const char* from, const char* to, bool clobber) {
    if (clobber)
        return rename(from, to);
    int result = renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
    if (result == 0 || (errno != EINVAL && errno != ENOSYS))
        return result;
    struct stat existing;
    if (lstat(to, &existing) == 0) {
        errno = EEXIST;
        return -1;
    }
    return rename(from, to);
}

} // namespace

status_t BEntry::Rename(const char* path, bool clobber) {
    if (path == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string target = BPrivate::relative_to(fPrivate->location.directory, path);
    return BPrivate::EntryAccess::Move(this, target, clobber);
}

status_t BEntry::MoveTo(BDirectory* directory, const char* path, bool clobber) {
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (directory == NULL)
        return B_BAD_VALUE;
    const char* directoryPath = BPrivate::NodeAccess::Path(*directory);
    if (directoryPath == NULL || directory->InitCheck() != B_OK)
        return B_BAD_VALUE;
    std::string target =
        BPrivate::relative_to(directoryPath, path != NULL ? path : fPrivate->location.name.c_str());
    return BPrivate::EntryAccess::Move(this, target, clobber);
}

namespace BPrivate {

status_t EntryAccess::Move(BEntry* entry, const std::string& targetPath, bool clobber) {
    BEntry::Private* data = entry->fPrivate;
    const EntryLocation source = data->location;
    if (source.name == ".")
        return B_NOT_ALLOWED;
    struct stat sourceStat;
    if (lstat(data->path.c_str(), &sourceStat) != 0)
        return last_error();

    EntryLocation target;
    if (status_t status = resolve_entry(targetPath.c_str(), false, &target); status != B_OK)
        return status;
    if (target.name == "." || target.name == "..")
        return B_BAD_VALUE;
    if (target.Path() == data->path)
        return B_OK;

    TrashFolder sourceTrash;
    TrashFolder targetTrash;
    bool fromTrash = trash_of_files_folder(source.directory, &sourceTrash);
    bool toTrash = trash_of_files_folder(target.directory, &targetTrash);
    bool withinTrash = fromTrash && toTrash && sourceTrash.root == targetTrash.root;

    if (toTrash && !withinTrash) {
        std::string newPath;
        status_t status = move_to_trash(data->path, targetTrash, target.name, clobber, &newPath);
        if (status != B_OK)
            return status;
        if (fromTrash)
            forget_trashed(sourceTrash, source.name);
        // A volume trash may have taken the entry instead of the one asked for.
        return entry->_SetToPath(newPath.c_str(), false);
    }

    if (rename_entry(data->path.c_str(), target.Path().c_str(), clobber) != 0)
        return last_error();
    if (withinTrash)
        rename_trashed(sourceTrash, source.name, target.name);
    else if (fromTrash)
        forget_trashed(sourceTrash, source.name);
    data->Set(target);
    return B_OK;
}

} // namespace BPrivate

status_t BEntry::Remove() {
    if (fStatus != B_OK)
        return B_NO_INIT;
    struct stat stat;
    if (lstat(fPrivate->path.c_str(), &stat) != 0)
        return last_error();
    int result =
        S_ISDIR(stat.st_mode) ? rmdir(fPrivate->path.c_str()) : unlink(fPrivate->path.c_str());
    if (result != 0)
        return last_error();
    BPrivate::TrashFolder trash;
    if (BPrivate::trash_of_files_folder(fPrivate->location.directory, &trash))
        BPrivate::forget_trashed(trash, fPrivate->location.name);
    return B_OK;
}

bool BEntry::operator==(const BEntry& item) const {
    if (fStatus != B_OK || item.fStatus != B_OK)
        return fStatus != B_OK && item.fStatus != B_OK;
    return fPrivate->path == item.fPrivate->path;
}

bool BEntry::operator!=(const BEntry& item) const {
    return !(*this == item);
}

BEntry& BEntry::operator=(const BEntry& item) {
    if (this == &item)
        return *this;
    if (fPrivate == NULL || item.fStatus != B_OK) {
        Unset();
        return *this;
    }
    fPrivate->Set(item.fPrivate->location);
    fStatus = B_OK;
    return *this;
}

status_t get_ref_for_path(const char* path, entry_ref* ref) {
    if (path == NULL || ref == NULL)
        return B_BAD_VALUE;
    EntryLocation location;
    if (status_t status = BPrivate::resolve_entry(path, false, &location); status != B_OK)
        return status;
    return BPrivate::ref_for_location(location, ref);
}
