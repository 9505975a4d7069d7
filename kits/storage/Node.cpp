// BNode holds an open descriptor of the node. Regular files and folders are opened
// read-only (which is enough for attributes and locks); nodes that cannot be read
// (no permission, symbolic links, sockets) are held by an O_PATH descriptor, which
// still answers stat. Typed attributes live in "user." extended attributes, whose
// value is the type code in big-endian byte order followed by the data.
#include <Node.h>

#include "StorageAccess.h"
#include "StorageSupport.h"

#include <Directory.h>
#include <Entry.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <new>
#include <string>
#include <vector>

using BPrivate::last_error;

namespace {

const char kAttributePrefix[] = "user.";
const size_t kPrefixLength = sizeof(kAttributePrefix) - 1;
const size_t kTypeSize = 4;

} // namespace

struct BNode::Private {
    int descriptor = -1;
    // An O_PATH descriptor: stat works, reading and locking do not.
    bool pathOnly = false;
    bool symlink = false;
    bool regularOrFolder = false;
    bool locked = false;
    std::string path;

    std::vector<std::string> attributeNames;
    size_t nextAttribute = 0;
    bool attributesListed = false;

    void Close() {
        if (descriptor >= 0)
            close(descriptor);
        descriptor = -1;
        pathOnly = symlink = regularOrFolder = locked = false;
        path.clear();
        attributeNames.clear();
        nextAttribute = 0;
        attributesListed = false;
    }

    // The path by which the path-based xattr calls reach an O_PATH descriptor.
    std::string ProcPath() const { return "/proc/self/fd/" + std::to_string(descriptor); }

    ssize_t GetXattr(const char* name, void* buffer, size_t size) const {
        if (symlink) {
            errno = ENODATA;
            return -1;
        }
        if (!pathOnly)
            return fgetxattr(descriptor, name, buffer, size);
        return getxattr(ProcPath().c_str(), name, buffer, size);
    }

    int SetXattr(const char* name, const void* buffer, size_t size) const {
        if (!pathOnly)
            return fsetxattr(descriptor, name, buffer, size, 0);
        return setxattr(ProcPath().c_str(), name, buffer, size, 0);
    }

    int RemoveXattr(const char* name) const {
        if (!pathOnly)
            return fremovexattr(descriptor, name);
        return removexattr(ProcPath().c_str(), name);
    }

    ssize_t ListXattrs(char* buffer, size_t size) const {
        if (symlink)
            return 0;
        if (!pathOnly)
            return flistxattr(descriptor, buffer, size);
        return listxattr(ProcPath().c_str(), buffer, size);
    }

    // The whole value of an attribute, type code included.
    status_t ReadValue(const std::string& name, std::vector<char>* value) const {
        for (int attempt = 0; attempt < 8; attempt++) {
            ssize_t size = GetXattr(name.c_str(), NULL, 0);
            if (size < 0)
                return last_error();
            value->resize(size);
            ssize_t read = GetXattr(name.c_str(), value->data(), value->size());
            if (read >= 0) {
                value->resize(read);
                return B_OK;
            }
            if (errno != ERANGE)
                return last_error();
            // The attribute grew between the two calls; ask again.
        }
        return B_BUSY;
    }

    status_t WriteError() const {
        // Linux keeps user attributes only on regular files and folders.
        if (symlink || (errno == EPERM && !regularOrFolder))
            return B_NOT_SUPPORTED;
        if (errno == E2BIG)
            return B_FILE_TOO_LARGE;
        return last_error();
    }
};

namespace BPrivate {

const char* NodeAccess::Path(const BNode& node) {
    if (node.fStatus != B_OK)
        return NULL;
    return node.fPrivate->path.c_str();
}

} // namespace BPrivate

namespace {

status_t attribute_name(const char* name, std::string* result) {
    if (name == NULL || name[0] == '\0')
        return B_BAD_VALUE;
    size_t length = strlen(name);
    if (length + kPrefixLength > XATTR_NAME_MAX)
        return B_NAME_TOO_LONG;
    *result = std::string(kAttributePrefix) + name;
    return B_OK;
}

uint32 read_type(const std::vector<char>& value) {
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(value.data());
    return (uint32)bytes[0] << 24 | (uint32)bytes[1] << 16 | (uint32)bytes[2] << 8 | bytes[3];
}

void write_type(std::vector<char>* value, uint32 type) {
    (*value)[0] = (char)(type >> 24);
    (*value)[1] = (char)(type >> 16);
    (*value)[2] = (char)(type >> 8);
    (*value)[3] = (char)type;
}

} // namespace

BNode::BNode() : fStatus(B_NO_INIT), fPrivate(new (std::nothrow) Private) {}

BNode::BNode(const entry_ref* ref) : fStatus(B_NO_INIT), fPrivate(new (std::nothrow) Private) {
    SetTo(ref);
}

BNode::BNode(const BEntry* entry) : fStatus(B_NO_INIT), fPrivate(new (std::nothrow) Private) {
    SetTo(entry);
}

BNode::BNode(const char* path) : fStatus(B_NO_INIT), fPrivate(new (std::nothrow) Private) {
    SetTo(path);
}

BNode::BNode(const BDirectory* directory, const char* path)
    : fStatus(B_NO_INIT), fPrivate(new (std::nothrow) Private) {
    SetTo(directory, path);
}

BNode::BNode(const BNode& node) : fStatus(B_NO_INIT), fPrivate(new (std::nothrow) Private) {
    *this = node;
}

BNode::~BNode() {
    if (fPrivate != NULL)
        fPrivate->Close();
    delete fPrivate;
}

status_t BNode::InitCheck() const {
    return fStatus;
}

status_t BNode::GetStat(struct stat* stat) const {
    if (stat == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    return fstat(fPrivate->descriptor, stat) == 0 ? B_OK : last_error();
}

status_t BNode::_StatTarget(int* descriptor, const char** path) const {
    if (fStatus != B_OK)
        return B_NO_INIT;
    *descriptor = fPrivate->pathOnly ? -1 : fPrivate->descriptor;
    *path = fPrivate->path.c_str();
    return B_OK;
}

int BNode::_Descriptor() const {
    if (fStatus != B_OK || fPrivate->pathOnly)
        return -1;
    return fPrivate->descriptor;
}

status_t BNode::_SetTo(const char* path, bool traverse, bool wantFolder) {
    Unset();
    if (fPrivate == NULL)
        return fStatus = B_NO_MEMORY;
    BPrivate::EntryLocation location;
    if (status_t status = BPrivate::resolve_entry(path, traverse, &location); status != B_OK)
        return fStatus = status;
    std::string canonical = location.Path();

    // O_NONBLOCK so that a FIFO does not block the open; cleared below.
    int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    if (wantFolder)
        flags |= O_DIRECTORY;
    int descriptor = open(canonical.c_str(), flags);
    bool pathOnly = false;
    if (descriptor < 0) {
        int error = errno;
        if (wantFolder || (error != ELOOP && error != EACCES && error != ENXIO && error != EPERM))
            return fStatus = BPrivate::status_for_errno(error);
        descriptor = open(canonical.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
        if (descriptor < 0)
            return fStatus = last_error();
        pathOnly = true;
    } else {
        int current = fcntl(descriptor, F_GETFL);
        if (current >= 0)
            fcntl(descriptor, F_SETFL, current & ~O_NONBLOCK);
    }
    if (status_t status = _Adopt(descriptor, canonical.c_str()); status != B_OK)
        return status;
    fPrivate->pathOnly = pathOnly;
    return B_OK;
}

status_t BNode::_Adopt(int descriptor, const char* path) {
    Unset();
    if (fPrivate == NULL) {
        close(descriptor);
        return fStatus = B_NO_MEMORY;
    }
    struct stat stat;
    if (fstat(descriptor, &stat) != 0) {
        status_t status = last_error();
        close(descriptor);
        return fStatus = status;
    }
    fPrivate->descriptor = descriptor;
    fPrivate->symlink = S_ISLNK(stat.st_mode);
    fPrivate->regularOrFolder = S_ISREG(stat.st_mode) || S_ISDIR(stat.st_mode);
    fPrivate->path = path;
    return fStatus = B_OK;
}

status_t BNode::SetTo(const entry_ref* ref) {
    if (ref == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string path;
    if (status_t status = BPrivate::path_for_ref(*ref, &path); status != B_OK) {
        Unset();
        return fStatus = status;
    }
    return _SetTo(path.c_str(), false, false);
}

status_t BNode::SetTo(const BEntry* entry) {
    const BPrivate::EntryLocation* location =
        entry != NULL ? BPrivate::EntryAccess::Location(*entry) : NULL;
    if (location == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _SetTo(location->Path().c_str(), false, false);
}

status_t BNode::SetTo(const char* path) {
    if (path == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _SetTo(path, false, false);
}

status_t BNode::SetTo(const BDirectory* directory, const char* path) {
    const char* directoryPath = directory != NULL ? BPrivate::NodeAccess::Path(*directory) : NULL;
    if (directoryPath == NULL || path == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _SetTo(BPrivate::relative_to(directoryPath, path).c_str(), false, false);
}

void BNode::Unset() {
    if (fPrivate != NULL)
        fPrivate->Close();
    fStatus = B_NO_INIT;
}

status_t BNode::Lock() {
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (fPrivate->locked)
        return B_BUSY;
    if (fPrivate->pathOnly)
        return B_FILE_ERROR;
    while (flock(fPrivate->descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        return errno == EWOULDBLOCK ? B_BUSY : last_error();
    }
    fPrivate->locked = true;
    return B_OK;
}

status_t BNode::Unlock() {
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (!fPrivate->locked)
        return B_BAD_VALUE;
    if (flock(fPrivate->descriptor, LOCK_UN) != 0)
        return last_error();
    fPrivate->locked = false;
    return B_OK;
}

status_t BNode::Sync() {
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (fPrivate->pathOnly)
        return B_FILE_ERROR;
    return fsync(fPrivate->descriptor) == 0 ? B_OK : last_error();
}

ssize_t BNode::WriteAttr(const char* name, type_code type, off_t offset, const void* buffer,
                         size_t length) {
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string attribute;
    if (status_t status = attribute_name(name, &attribute); status != B_OK)
        return status;
    if (offset < 0 || (buffer == NULL && length > 0))
        return B_BAD_VALUE;
    if (fPrivate->symlink)
        return B_NOT_SUPPORTED;
    if ((uint64)offset + length > XATTR_SIZE_MAX)
        return B_FILE_TOO_LARGE;

    // Writing at offset 0 replaces the attribute; further on keeps what lies before.
    std::vector<char> value;
    if (offset > 0) {
        status_t status = fPrivate->ReadValue(attribute, &value);
        if (status != B_OK && status != B_ENTRY_NOT_FOUND)
            return status;
        if (value.size() < kTypeSize)
            value.assign(kTypeSize, 0);
    } else {
        value.assign(kTypeSize, 0);
    }
    size_t end = kTypeSize + (size_t)offset + length;
    if (value.size() < end)
        value.resize(end, 0);
    write_type(&value, type);
    if (length > 0)
        memcpy(value.data() + kTypeSize + offset, buffer, length);

    if (fPrivate->SetXattr(attribute.c_str(), value.data(), value.size()) != 0)
        return fPrivate->WriteError();
    return (ssize_t)length;
}

ssize_t BNode::ReadAttr(const char* name, type_code type, off_t offset, void* buffer,
                        size_t length) const {
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string attribute;
    if (status_t status = attribute_name(name, &attribute); status != B_OK)
        return status;
    if (offset < 0 || (buffer == NULL && length > 0))
        return B_BAD_VALUE;

    std::vector<char> value;
    if (status_t status = fPrivate->ReadValue(attribute, &value); status != B_OK)
        return status;
    // Another program's attribute too short to carry a type code.
    if (value.size() < kTypeSize)
        return B_BAD_DATA;
    size_t dataSize = value.size() - kTypeSize;
    if ((uint64)offset >= dataSize)
        return 0;
    size_t count = dataSize - (size_t)offset;
    if (count > length)
        count = length;
    memcpy(buffer, value.data() + kTypeSize + offset, count);
    return (ssize_t)count;
}

status_t BNode::RemoveAttr(const char* name) {
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string attribute;
    if (status_t status = attribute_name(name, &attribute); status != B_OK)
        return status;
    if (fPrivate->symlink)
        return B_ENTRY_NOT_FOUND;
    if (fPrivate->RemoveXattr(attribute.c_str()) != 0)
        return errno == ENODATA ? B_ENTRY_NOT_FOUND : fPrivate->WriteError();
    return B_OK;
}

status_t BNode::RenameAttr(const char* oldName, const char* newName) {
    if (fStatus != B_OK)
        return B_NO_INIT;
    std::string oldAttribute;
    std::string newAttribute;
    if (status_t status = attribute_name(oldName, &oldAttribute); status != B_OK)
        return status;
    if (status_t status = attribute_name(newName, &newAttribute); status != B_OK)
        return status;
    if (fPrivate->symlink)
        return B_ENTRY_NOT_FOUND;
    std::vector<char> value;
    if (status_t status = fPrivate->ReadValue(oldAttribute, &value); status != B_OK)
        return status;
    if (oldAttribute == newAttribute)
        return B_OK;
    if (fPrivate->SetXattr(newAttribute.c_str(), value.data(), value.size()) != 0)
        return fPrivate->WriteError();
    if (fPrivate->RemoveXattr(oldAttribute.c_str()) != 0)
        return fPrivate->WriteError();
    return B_OK;
}

status_t BNode::GetAttrInfo(const char* name, struct attr_info* info) const {
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (info == NULL)
        return B_BAD_VALUE;
    std::string attribute;
    if (status_t status = attribute_name(name, &attribute); status != B_OK)
        return status;
    std::vector<char> value;
    if (status_t status = fPrivate->ReadValue(attribute, &value); status != B_OK)
        return status;
    if (value.size() < kTypeSize)
        return B_BAD_DATA;
    info->type = read_type(value);
    info->size = (off_t)(value.size() - kTypeSize);
    return B_OK;
}

status_t BNode::GetNextAttrName(char* buffer) {
    if (buffer == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_FILE_ERROR;

    if (!fPrivate->attributesListed) {
        std::vector<char> list;
        for (int attempt = 0;; attempt++) {
            ssize_t size = fPrivate->ListXattrs(NULL, 0);
            if (size < 0)
                return errno == ENOTSUP ? B_ENTRY_NOT_FOUND : last_error();
            list.resize(size);
            ssize_t read = size > 0 ? fPrivate->ListXattrs(list.data(), list.size()) : 0;
            if (read >= 0) {
                list.resize(read);
                break;
            }
            if (errno != ERANGE || attempt == 8)
                return last_error();
        }
        fPrivate->attributeNames.clear();
        for (size_t start = 0; start < list.size();) {
            size_t length = strnlen(list.data() + start, list.size() - start);
            std::string name(list.data() + start, length);
            if (name.compare(0, kPrefixLength, kAttributePrefix) == 0 &&
                name.size() > kPrefixLength)
                fPrivate->attributeNames.push_back(name.substr(kPrefixLength));
            start += length + 1;
        }
        fPrivate->nextAttribute = 0;
        fPrivate->attributesListed = true;
    }

    if (fPrivate->nextAttribute >= fPrivate->attributeNames.size()) {
        buffer[0] = '\0';
        return B_ENTRY_NOT_FOUND;
    }
    BPrivate::copy_string(buffer, fPrivate->attributeNames[fPrivate->nextAttribute++].c_str(),
                          B_ATTR_NAME_LENGTH);
    return B_OK;
}

status_t BNode::RewindAttrs() {
    if (fStatus != B_OK)
        return B_FILE_ERROR;
    fPrivate->attributesListed = false;
    fPrivate->attributeNames.clear();
    fPrivate->nextAttribute = 0;
    return B_OK;
}

int BNode::Dup() {
    if (fStatus != B_OK)
        return -1;
    return fcntl(fPrivate->descriptor, F_DUPFD_CLOEXEC, 0);
}

bool BNode::operator==(const BNode& node) const {
    if (fStatus != B_OK || node.fStatus != B_OK)
        return fStatus != B_OK && node.fStatus != B_OK;
    struct stat mine;
    struct stat theirs;
    if (GetStat(&mine) != B_OK || node.GetStat(&theirs) != B_OK)
        return false;
    return mine.st_dev == theirs.st_dev && mine.st_ino == theirs.st_ino;
}

bool BNode::operator!=(const BNode& node) const {
    return !(*this == node);
}

BNode& BNode::operator=(const BNode& node) {
    if (this == &node)
        return *this;
    Unset();
    if (node.fStatus != B_OK || fPrivate == NULL)
        return *this;
    // An independent open of the same node, so locks and positions are not shared.
    int descriptor = -1;
    if (!node.fPrivate->pathOnly)
        descriptor = open(node.fPrivate->ProcPath().c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        descriptor = fcntl(node.fPrivate->descriptor, F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) {
        fStatus = last_error();
        return *this;
    }
    if (_Adopt(descriptor, node.fPrivate->path.c_str()) == B_OK)
        fPrivate->pathOnly = node.fPrivate->pathOnly;
    return *this;
}
