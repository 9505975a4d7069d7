#include <File.h>

#include "StorageAccess.h"
#include "StorageSupport.h"

#include <Directory.h>
#include <Entry.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

using BPrivate::last_error;

namespace {

const uint32 kOpenModeMask = O_ACCMODE | O_CREAT | O_EXCL | O_TRUNC | O_APPEND;

} // namespace

BFile::BFile() : fMode(0) {}

BFile::BFile(const BFile& file) : BNode(), BPositionIO(), fMode(0) {
    *this = file;
}

BFile::BFile(const entry_ref* ref, uint32 openMode) : fMode(0) {
    SetTo(ref, openMode);
}

BFile::BFile(const BEntry* entry, uint32 openMode) : fMode(0) {
    SetTo(entry, openMode);
}

BFile::BFile(const char* path, uint32 openMode) : fMode(0) {
    SetTo(path, openMode);
}

BFile::BFile(const BDirectory* directory, const char* path, uint32 openMode) : fMode(0) {
    SetTo(directory, path, openMode);
}

BFile::~BFile() {}

status_t BFile::_Open(const char* path, uint32 openMode) {
    Unset();
    if ((openMode & ~kOpenModeMask) != 0 || (openMode & O_ACCMODE) == O_ACCMODE)
        return fStatus = B_BAD_VALUE;

    BPrivate::EntryLocation location;
    if (status_t status = BPrivate::resolve_entry(path, true, &location); status != B_OK)
        return fStatus = status;
    if (location.name == ".")
        return fStatus = B_IS_A_DIRECTORY;
    std::string canonical = location.Path();

    // Files are created with 0666 less the umask, as other programs make them.
    int descriptor = open(canonical.c_str(), (int)openMode | O_CLOEXEC | O_NOCTTY, 0666);
    if (descriptor < 0)
        return fStatus = last_error();
    struct stat stat;
    if (fstat(descriptor, &stat) != 0 || S_ISDIR(stat.st_mode)) {
        close(descriptor);
        return fStatus = S_ISDIR(stat.st_mode) ? B_IS_A_DIRECTORY : B_FILE_ERROR;
    }
    if (status_t status = _Adopt(descriptor, canonical.c_str()); status != B_OK)
        return status;
    fMode = openMode;
    return B_OK;
}

status_t BFile::SetTo(const entry_ref* ref, uint32 openMode) {
    if (ref == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string path;
    if (status_t status = BPrivate::path_for_ref(*ref, &path); status != B_OK) {
        Unset();
        return fStatus = status;
    }
    return _Open(path.c_str(), openMode);
}

status_t BFile::SetTo(const BEntry* entry, uint32 openMode) {
    const BPrivate::EntryLocation* location =
        entry != NULL ? BPrivate::EntryAccess::Location(*entry) : NULL;
    if (location == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _Open(location->Path().c_str(), openMode);
}

status_t BFile::SetTo(const char* path, uint32 openMode) {
    if (path == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _Open(path, openMode);
}

status_t BFile::SetTo(const BDirectory* directory, const char* path, uint32 openMode) {
    const char* directoryPath = directory != NULL ? BPrivate::NodeAccess::Path(*directory) : NULL;
    if (directoryPath == NULL || path == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _Open(BPrivate::relative_to(directoryPath, path).c_str(), openMode);
}

void BFile::Unset() {
    BNode::Unset();
    fMode = 0;
}

bool BFile::IsReadable() const {
    return InitCheck() == B_OK && (fMode & O_ACCMODE) != O_WRONLY;
}

bool BFile::IsWritable() const {
    return InitCheck() == B_OK && (fMode & O_ACCMODE) != O_RDONLY;
}

ssize_t BFile::Read(void* buffer, size_t size) {
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    if (buffer == NULL && size > 0)
        return B_BAD_VALUE;
    ssize_t result;
    do {
        result = read(_Descriptor(), buffer, size);
    } while (result < 0 && errno == EINTR);
    return result >= 0 ? result : last_error();
}

ssize_t BFile::ReadAt(off_t location, void* buffer, size_t size) {
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    if (location < 0 || (buffer == NULL && size > 0))
        return B_BAD_VALUE;
    ssize_t result;
    do {
        result = pread(_Descriptor(), buffer, size, location);
    } while (result < 0 && errno == EINTR);
    return result >= 0 ? result : last_error();
}

ssize_t BFile::Write(const void* buffer, size_t size) {
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    if (buffer == NULL && size > 0)
        return B_BAD_VALUE;
    ssize_t result;
    do {
        result = write(_Descriptor(), buffer, size);
    } while (result < 0 && errno == EINTR);
    return result >= 0 ? result : last_error();
}

ssize_t BFile::WriteAt(off_t location, const void* buffer, size_t size) {
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    if (location < 0 || (buffer == NULL && size > 0))
        return B_BAD_VALUE;
    ssize_t result;
    do {
        result = pwrite(_Descriptor(), buffer, size, location);
    } while (result < 0 && errno == EINTR);
    return result >= 0 ? result : last_error();
}

off_t BFile::Seek(off_t offset, uint32 seekMode) {
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    if (seekMode != SEEK_SET && seekMode != SEEK_CUR && seekMode != SEEK_END)
        return B_BAD_VALUE;
    off_t result = lseek(_Descriptor(), offset, (int)seekMode);
    return result >= 0 ? result : last_error();
}

off_t BFile::Position() const {
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    off_t result = lseek(_Descriptor(), 0, SEEK_CUR);
    return result >= 0 ? result : last_error();
}

status_t BFile::SetSize(off_t size) {
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    if (size < 0)
        return B_BAD_VALUE;
    if (!IsWritable())
        return B_NOT_ALLOWED;
    return ftruncate(_Descriptor(), size) == 0 ? B_OK : last_error();
}

status_t BFile::GetSize(off_t* size) const {
    return BStatable::GetSize(size);
}

BFile& BFile::operator=(const BFile& file) {
    if (this == &file)
        return *this;
    Unset();
    if (file.InitCheck() != B_OK)
        return *this;
    // Reopen the same file with the same access (but without creating or erasing),
    // so the two objects keep their own positions.
    const char* path = BPrivate::NodeAccess::Path(file);
    std::string procPath = "/proc/self/fd/" + std::to_string(file._Descriptor());
    uint32 mode = file.fMode & (O_ACCMODE | O_APPEND);
    int descriptor = open(procPath.c_str(), (int)mode | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        descriptor = fcntl(file._Descriptor(), F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) {
        fStatus = last_error();
        return *this;
    }
    if (_Adopt(descriptor, path) == B_OK)
        fMode = mode;
    return *this;
}
