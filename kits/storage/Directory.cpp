#include <Directory.h>

#include "KnownPaths.h"
#include "StorageAccess.h"
#include "StorageSupport.h"

#include <Entry.h>
#include <File.h>
#include <SymLink.h>

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <new>
#include <string>

using BPrivate::last_error;

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};

bool is_dot_or_dot_dot(const char* name) {
    return strcmp(name, ".") == 0 || strcmp(name, "..") == 0;
}

bool matches_flavor(const struct stat& stat, int32 nodeFlags) {
    if (S_ISDIR(stat.st_mode))
        return (nodeFlags & B_DIRECTORY_NODE) != 0;
    if (S_ISLNK(stat.st_mode))
        return (nodeFlags & B_SYMLINK_NODE) != 0;
    return (nodeFlags & B_FILE_NODE) != 0;
}

} // namespace

struct BDirectory::Private {
    // Iteration runs on its own descriptor, so the node's descriptor stays put.
    std::unique_ptr<DIR, DirectoryCloser> iterator;
    // The folder's own node, for the refs the iteration hands out.
    node_ref folder;
};

BDirectory::BDirectory() : fDirectoryPrivate(new (std::nothrow) Private) {}

BDirectory::BDirectory(const BDirectory& directory)
    : BNode(), BEntryList(), fDirectoryPrivate(new (std::nothrow) Private) {
    *this = directory;
}

BDirectory::BDirectory(const entry_ref* ref) : fDirectoryPrivate(new (std::nothrow) Private) {
    SetTo(ref);
}

BDirectory::BDirectory(const node_ref* nodeRef) : fDirectoryPrivate(new (std::nothrow) Private) {
    SetTo(nodeRef);
}

BDirectory::BDirectory(const BEntry* entry) : fDirectoryPrivate(new (std::nothrow) Private) {
    SetTo(entry);
}

BDirectory::BDirectory(const char* path) : fDirectoryPrivate(new (std::nothrow) Private) {
    SetTo(path);
}

BDirectory::BDirectory(const BDirectory* directory, const char* path)
    : fDirectoryPrivate(new (std::nothrow) Private) {
    SetTo(directory, path);
}

BDirectory::~BDirectory() {
    delete fDirectoryPrivate;
}

status_t BDirectory::SetTo(const entry_ref* ref) {
    Unset();
    if (ref == NULL)
        return fStatus = B_BAD_VALUE;
    std::string path;
    if (status_t status = BPrivate::path_for_ref(*ref, &path); status != B_OK)
        return fStatus = status;
    return SetTo(path.c_str());
}

status_t BDirectory::SetTo(const node_ref* nodeRef) {
    Unset();
    if (nodeRef == NULL)
        return fStatus = B_BAD_VALUE;
    std::string path;
    if (status_t status = BPrivate::find_node_path(nodeRef->device, nodeRef->node, &path);
        status != B_OK)
        return fStatus = status;
    return SetTo(path.c_str());
}

status_t BDirectory::SetTo(const BEntry* entry) {
    Unset();
    const BPrivate::EntryLocation* location =
        entry != NULL ? BPrivate::EntryAccess::Location(*entry) : NULL;
    if (location == NULL)
        return fStatus = B_BAD_VALUE;
    return SetTo(location->Path().c_str());
}

status_t BDirectory::SetTo(const char* path) {
    Unset();
    if (fDirectoryPrivate == NULL)
        return fStatus = B_NO_MEMORY;
    if (path == NULL)
        return fStatus = B_BAD_VALUE;
    return _SetTo(path, true, true);
}

status_t BDirectory::SetTo(const BDirectory* directory, const char* path) {
    const char* directoryPath = directory != NULL ? BPrivate::NodeAccess::Path(*directory) : NULL;
    if (directoryPath == NULL || path == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string full = BPrivate::relative_to(directoryPath, path);
    return SetTo(full.c_str());
}

void BDirectory::Unset() {
    if (fDirectoryPrivate != NULL)
        fDirectoryPrivate->iterator.reset();
    BNode::Unset();
}

status_t BDirectory::GetEntry(BEntry* entry) const {
    if (entry == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK) {
        entry->Unset();
        return B_NO_INIT;
    }
    return entry->SetTo(BPrivate::NodeAccess::Path(*this));
}

status_t BDirectory::FindEntry(const char* path, BEntry* entry, bool traverse) const {
    if (path == NULL || entry == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK) {
        entry->Unset();
        return B_NO_INIT;
    }
    std::string full = BPrivate::relative_to(BPrivate::NodeAccess::Path(*this), path);
    status_t status = entry->SetTo(full.c_str(), traverse);
    if (status == B_OK && !entry->Exists())
        status = B_ENTRY_NOT_FOUND;
    if (status != B_OK)
        entry->Unset();
    return status;
}

bool BDirectory::Contains(const char* path, int32 nodeFlags) const {
    if (path == NULL || fStatus != B_OK)
        return false;
    BEntry entry;
    std::string full = BPrivate::relative_to(BPrivate::NodeAccess::Path(*this), path);
    if (entry.SetTo(full.c_str()) != B_OK)
        return false;
    return Contains(&entry, nodeFlags);
}

bool BDirectory::Contains(const BEntry* entry, int32 nodeFlags) const {
    if (entry == NULL || fStatus != B_OK)
        return false;
    const BPrivate::EntryLocation* location = BPrivate::EntryAccess::Location(*entry);
    if (location == NULL)
        return false;
    struct stat stat;
    if (entry->GetStat(&stat) != B_OK || !matches_flavor(stat, nodeFlags))
        return false;

    // Compared by canonical paths: both sides have their folders resolved.
    std::string mine = BPrivate::NodeAccess::Path(*this);
    std::string theirs = location->Path();
    if (mine == "/")
        return true;
    return theirs.compare(0, mine.size(), mine) == 0 &&
           (theirs.size() == mine.size() || theirs[mine.size()] == '/');
}

status_t BDirectory::GetStatFor(const char* path, struct stat* stat) const {
    if (stat == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (path == NULL)
        return GetStat(stat);
    std::string full = BPrivate::relative_to(BPrivate::NodeAccess::Path(*this), path);
    return lstat(full.c_str(), stat) == 0 ? B_OK : last_error();
}

namespace {

// The next directory entry other than "." and "..", or NULL at the end (errno set on
// failure, 0 at the end).
struct dirent* next_entry(DIR* iterator) {
    for (;;) {
        errno = 0;
        struct dirent* entry = readdir(iterator);
        if (entry == NULL || !is_dot_or_dot_dot(entry->d_name))
            return entry;
    }
}

} // namespace

status_t BDirectory::GetNextEntry(BEntry* entry, bool traverse) {
    if (entry == NULL)
        return B_BAD_VALUE;
    entry_ref ref;
    status_t status = GetNextRef(&ref);
    if (status != B_OK) {
        entry->Unset();
        return status;
    }
    std::string full = BPrivate::join_path(BPrivate::NodeAccess::Path(*this), ref.name);
    return entry->SetTo(full.c_str(), traverse);
}

status_t BDirectory::GetNextRef(entry_ref* ref) {
    if (ref == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_FILE_ERROR;
    if (fDirectoryPrivate->iterator == NULL) {
        int descriptor = openat(_Descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0)
            return last_error();
        DIR* iterator = fdopendir(descriptor);
        if (iterator == NULL) {
            status_t status = last_error();
            close(descriptor);
            return status;
        }
        fDirectoryPrivate->iterator.reset(iterator);
        // The refs handed out name this folder; make sure they can be resolved.
        struct stat stat;
        if (GetStat(&stat) != B_OK)
            return B_FILE_ERROR;
        fDirectoryPrivate->folder = node_ref(stat.st_dev, stat.st_ino);
        BPrivate::remember_node_path(stat.st_dev, stat.st_ino, BPrivate::NodeAccess::Path(*this));
    }
    struct dirent* entry = next_entry(fDirectoryPrivate->iterator.get());
    if (entry == NULL)
        return errno != 0 ? last_error() : B_ENTRY_NOT_FOUND;

    if (status_t status = ref->set_name(entry->d_name); status != B_OK)
        return status;
    ref->device = fDirectoryPrivate->folder.device;
    ref->directory = fDirectoryPrivate->folder.node;
    return B_OK;
}

int32 BDirectory::GetNextDirents(struct dirent* buffer, size_t length, int32 count) {
    if (buffer == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_FILE_ERROR;
    if (count <= 0)
        return 0;
    if (fDirectoryPrivate->iterator == NULL) {
        // Opens the iterator the same way GetNextRef does.
        entry_ref ignored;
        status_t status = GetNextRef(&ignored);
        if (status == B_ENTRY_NOT_FOUND)
            return 0;
        if (status != B_OK)
            return status;
        rewinddir(fDirectoryPrivate->iterator.get());
    }
    // One record a call: the rest of the buffer is left alone, as callers that
    // loop over records expect.
    DIR* iterator = fDirectoryPrivate->iterator.get();
    long position = telldir(iterator);
    struct dirent* entry = next_entry(iterator);
    if (entry == NULL)
        return errno != 0 ? last_error() : 0;
    size_t nameLength = strlen(entry->d_name);
    size_t recordLength = offsetof(struct dirent, d_name) + nameLength + 1;
    if (recordLength > length) {
        seekdir(iterator, position);
        return B_BUFFER_OVERFLOW;
    }
    memcpy(buffer, entry, recordLength);
    buffer->d_reclen = (unsigned short)recordLength;
    return 1;
}

status_t BDirectory::Rewind() {
    if (fStatus != B_OK)
        return B_FILE_ERROR;
    fDirectoryPrivate->iterator.reset();
    return B_OK;
}

int32 BDirectory::CountEntries() {
    if (fStatus != B_OK)
        return B_FILE_ERROR;
    int descriptor = openat(_Descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return last_error();
    std::unique_ptr<DIR, DirectoryCloser> iterator(fdopendir(descriptor));
    if (iterator == NULL) {
        status_t status = last_error();
        close(descriptor);
        return status;
    }
    int32 count = 0;
    while (next_entry(iterator.get()) != NULL)
        count++;
    if (errno != 0)
        return last_error();
    return count;
}

status_t BDirectory::CreateDirectory(const char* path, BDirectory* directory) {
    if (path == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string full = BPrivate::relative_to(BPrivate::NodeAccess::Path(*this), path);
    if (mkdir(full.c_str(), 0777) != 0)
        return last_error();
    if (directory != NULL)
        return directory->SetTo(full.c_str());
    return B_OK;
}

status_t BDirectory::CreateFile(const char* path, BFile* file, bool failIfExists) {
    if (path == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string full = BPrivate::relative_to(BPrivate::NodeAccess::Path(*this), path);
    uint32 mode = B_READ_WRITE | B_CREATE_FILE | (failIfExists ? B_FAIL_IF_EXISTS : B_ERASE_FILE);
    BFile scratch;
    BFile* target = file != NULL ? file : &scratch;
    return target->SetTo(full.c_str(), mode);
}

status_t BDirectory::CreateSymLink(const char* path, const char* linkToPath, BSymLink* link) {
    if (path == NULL || linkToPath == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string full = BPrivate::relative_to(BPrivate::NodeAccess::Path(*this), path);
    if (symlink(linkToPath, full.c_str()) != 0)
        return last_error();
    if (link != NULL)
        return link->SetTo(full.c_str());
    return B_OK;
}

bool BDirectory::IsRootDirectory() const {
    if (fStatus != B_OK)
        return false;
    struct stat mine;
    struct stat parent;
    if (GetStat(&mine) != B_OK || fstatat(_Descriptor(), "..", &parent, 0) != 0)
        return false;
    return mine.st_dev != parent.st_dev || mine.st_ino == parent.st_ino;
}

BDirectory& BDirectory::operator=(const BDirectory& directory) {
    if (this == &directory)
        return *this;
    if (fDirectoryPrivate != NULL)
        fDirectoryPrivate->iterator.reset();
    BNode::operator=(directory);
    return *this;
}

status_t create_directory(const char* path, mode_t mode) {
    if (path == NULL || path[0] == '\0')
        return B_BAD_VALUE;
    std::string full = path;
    if (full[0] != '/') {
        char* cwd = getcwd(NULL, 0);
        if (cwd == NULL)
            return last_error();
        full = BPrivate::join_path(cwd, full);
        free(cwd);
    }
    // Make each missing folder from the top down.
    for (size_t slash = 1; slash != std::string::npos;) {
        slash = full.find('/', slash);
        std::string prefix = slash == std::string::npos ? full : full.substr(0, slash);
        if (slash != std::string::npos)
            slash++;
        if (prefix.empty() || prefix.back() == '/')
            continue;
        struct stat stat;
        if (::stat(prefix.c_str(), &stat) == 0) {
            if (!S_ISDIR(stat.st_mode))
                return B_NOT_A_DIRECTORY;
            continue;
        }
        if (errno != ENOENT)
            return last_error();
        if (mkdir(prefix.c_str(), mode) != 0 && errno != EEXIST)
            return last_error();
    }
    return B_OK;
}
