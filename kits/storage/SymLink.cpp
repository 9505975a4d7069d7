#include <SymLink.h>

#include "StorageAccess.h"
#include "StorageSupport.h"

#include <Directory.h>
#include <Entry.h>
#include <Path.h>

#include <errno.h>
#include <limits.h>
#include <string.h>
#include <unistd.h>

#include <string>

BSymLink::BSymLink() {}

BSymLink::BSymLink(const BSymLink& link) : BNode(link) {}

BSymLink::BSymLink(const entry_ref* ref) : BNode(ref) {}

BSymLink::BSymLink(const BEntry* entry) : BNode(entry) {}

BSymLink::BSymLink(const char* path) : BNode(path) {}

BSymLink::BSymLink(const BDirectory* directory, const char* path) : BNode(directory, path) {}

BSymLink::~BSymLink() {}

ssize_t BSymLink::ReadLink(char* buffer, size_t size) {
    if (buffer == NULL || size == 0)
        return B_BAD_VALUE;
    if (InitCheck() != B_OK)
        return B_FILE_ERROR;
    if (!IsSymLink())
        return B_BAD_VALUE;
    char target[PATH_MAX];
    ssize_t length = readlink(BPrivate::NodeAccess::Path(*this), target, sizeof(target) - 1);
    if (length < 0)
        return BPrivate::last_error();
    size_t copied = (size_t)length < size - 1 ? (size_t)length : size - 1;
    memcpy(buffer, target, copied);
    buffer[copied] = '\0';
    return length;
}

ssize_t BSymLink::MakeLinkedPath(const char* directoryPath, BPath* path) {
    if (directoryPath == NULL || path == NULL)
        return B_BAD_VALUE;
    char target[PATH_MAX];
    ssize_t length = ReadLink(target, sizeof(target));
    if (length < 0)
        return length;
    status_t status =
        target[0] == '/' ? path->SetTo(target) : path->SetTo(directoryPath, target, true);
    if (status != B_OK)
        return status;
    return (ssize_t)strlen(path->Path());
}

ssize_t BSymLink::MakeLinkedPath(const BDirectory* directory, BPath* path) {
    if (directory == NULL || path == NULL)
        return B_BAD_VALUE;
    const char* directoryPath = BPrivate::NodeAccess::Path(*directory);
    if (directoryPath == NULL)
        return B_BAD_VALUE;
    return MakeLinkedPath(directoryPath, path);
}

bool BSymLink::IsAbsolute() {
    char target[PATH_MAX];
    return ReadLink(target, sizeof(target)) > 0 && target[0] == '/';
}
