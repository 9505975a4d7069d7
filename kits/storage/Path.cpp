// BPath: a path string, made absolute and canonical on request (and whenever it
// would otherwise be ambiguous).
#include <Path.h>

#include "EntryRefFlattening.h"
#include "StorageAccess.h"
#include "StorageSupport.h"

#include <Directory.h>
#include <Entry.h>

#include <stdlib.h>
#include <string.h>

#include <string>

namespace {

// Relative paths, ".", "..", "//" and a trailing "/" all call for normalising.
bool needs_normalizing(const std::string& path) {
    if (path.empty() || path[0] != '/')
        return true;
    if (path.size() > 1 && path.back() == '/')
        return true;
    if (path.find("//") != std::string::npos || path.find("/./") != std::string::npos ||
        path.find("/../") != std::string::npos)
        return true;
    size_t length = path.size();
    return (length >= 2 && path.compare(length - 2, 2, "/.") == 0) ||
           (length >= 3 && path.compare(length - 3, 3, "/..") == 0);
}

} // namespace

BPath::BPath() : fName(NULL), fStatus(B_NO_INIT) {}

BPath::BPath(const BPath& path) : fName(NULL), fStatus(B_NO_INIT) {
    *this = path;
}

BPath::BPath(const entry_ref* ref) : fName(NULL), fStatus(B_NO_INIT) {
    SetTo(ref);
}

BPath::BPath(const BEntry* entry) : fName(NULL), fStatus(B_NO_INIT) {
    SetTo(entry);
}

BPath::BPath(const char* dir, const char* leaf, bool normalize) : fName(NULL), fStatus(B_NO_INIT) {
    SetTo(dir, leaf, normalize);
}

BPath::BPath(const BDirectory* dir, const char* leaf, bool normalize)
    : fName(NULL), fStatus(B_NO_INIT) {
    SetTo(dir, leaf, normalize);
}

BPath::~BPath() {
    free(fName);
}

status_t BPath::InitCheck() const {
    return fStatus;
}

status_t BPath::_Set(const char* path) {
    char* copy = strdup(path);
    if (copy == NULL) {
        Unset();
        return fStatus = B_NO_MEMORY;
    }
    free(fName);
    fName = copy;
    return fStatus = B_OK;
}

status_t BPath::SetTo(const entry_ref* ref) {
    if (ref == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string path;
    if (status_t status = BPrivate::path_for_ref(*ref, &path); status != B_OK) {
        Unset();
        return fStatus = status;
    }
    BPrivate::EntryLocation location;
    if (status_t status = BPrivate::resolve_entry(path.c_str(), false, &location); status != B_OK) {
        Unset();
        return fStatus = status;
    }
    return _Set(location.Path().c_str());
}

status_t BPath::SetTo(const BEntry* entry) {
    const BPrivate::EntryLocation* location =
        entry != NULL ? BPrivate::EntryAccess::Location(*entry) : NULL;
    if (location == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    return _Set(location->Path().c_str());
}

status_t BPath::SetTo(const char* path, const char* leaf, bool normalize) {
    if (path == NULL || path[0] == '\0' || (leaf != NULL && leaf[0] == '/')) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string full = path;
    if (leaf != NULL && leaf[0] != '\0') {
        if (full.back() != '/')
            full += '/';
        full += leaf;
    }
    if (!normalize && !needs_normalizing(full))
        return _Set(full.c_str());

    BPrivate::EntryLocation location;
    if (status_t status = BPrivate::resolve_entry(full.c_str(), false, &location); status != B_OK) {
        Unset();
        return fStatus = status;
    }
    return _Set(location.Path().c_str());
}

status_t BPath::SetTo(const BDirectory* dir, const char* leaf, bool normalize) {
    const char* directoryPath = dir != NULL ? BPrivate::NodeAccess::Path(*dir) : NULL;
    if (directoryPath == NULL) {
        Unset();
        return fStatus = B_BAD_VALUE;
    }
    std::string copy = directoryPath;
    return SetTo(copy.c_str(), leaf, normalize);
}

void BPath::Unset() {
    free(fName);
    fName = NULL;
    fStatus = B_NO_INIT;
}

status_t BPath::Append(const char* path, bool normalize) {
    if (fStatus != B_OK)
        return B_BAD_VALUE;
    if (path == NULL || path[0] == '/')
        return B_BAD_VALUE;
    std::string current = fName;
    return SetTo(current.c_str(), path, normalize);
}

const char* BPath::Path() const {
    return fName;
}

const char* BPath::Leaf() const {
    if (fName == NULL)
        return NULL;
    const char* slash = strrchr(fName, '/');
    return slash == NULL ? fName : slash + 1;
}

status_t BPath::GetParent(BPath* path) const {
    if (path == NULL)
        return B_BAD_VALUE;
    if (fStatus != B_OK)
        return B_NO_INIT;
    if (strcmp(fName, "/") == 0) {
        path->Unset();
        return B_ENTRY_NOT_FOUND;
    }
    std::string parent;
    std::string leaf;
    BPrivate::split_path(fName, &parent, &leaf);
    return path->SetTo(parent.c_str());
}

bool BPath::operator==(const BPath& item) const {
    return *this == item.Path();
}

bool BPath::operator==(const char* path) const {
    if (fName == NULL || path == NULL)
        return fName == path;
    return strcmp(fName, path) == 0;
}

bool BPath::operator!=(const BPath& item) const {
    return !(*this == item);
}

bool BPath::operator!=(const char* path) const {
    return !(*this == path);
}

BPath& BPath::operator=(const BPath& item) {
    if (this == &item)
        return *this;
    if (item.fName == NULL)
        Unset();
    else
        _Set(item.fName);
    return *this;
}

BPath& BPath::operator=(const char* path) {
    if (path == NULL)
        Unset();
    else
        SetTo(path);
    return *this;
}

bool BPath::IsFixedSize() const {
    return false;
}

type_code BPath::TypeCode() const {
    return B_REF_TYPE;
}

ssize_t BPath::FlattenedSize() const {
    entry_ref ref;
    if (fStatus == B_OK && get_ref_for_path(fName, &ref) == B_OK)
        return (ssize_t)BPrivate::flattened_entry_ref_size(ref);
    return (ssize_t)BPrivate::flattened_entry_ref_size(entry_ref());
}

status_t BPath::Flatten(void* buffer, ssize_t size) const {
    if (buffer == NULL || size < 0)
        return B_BAD_VALUE;
    entry_ref ref;
    if (fStatus == B_OK) {
        if (status_t status = get_ref_for_path(fName, &ref); status != B_OK)
            return status;
    }
    size_t capacity = (size_t)size;
    return BPrivate::flatten_entry_ref(ref, buffer, &capacity);
}

bool BPath::AllowsTypeCode(type_code code) const {
    return code == B_REF_TYPE;
}

status_t BPath::Unflatten(type_code code, const void* buffer, ssize_t size) {
    if (code != B_REF_TYPE || buffer == NULL || size < 0)
        return B_BAD_VALUE;
    entry_ref ref;
    if (status_t status = BPrivate::unflatten_entry_ref(buffer, (size_t)size, &ref); status != B_OK)
        return status;
    if (ref.name == NULL) {
        Unset();
        return B_OK;
    }
    return SetTo(&ref);
}
