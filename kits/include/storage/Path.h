// Absolute paths as objects, optionally normalised.
#ifndef _PATH_H
#define _PATH_H

#include <StorageDefs.h>
#include <SupportDefs.h>

class BDirectory;
class BEntry;
struct entry_ref;

class BPath {
public:
    BPath();
    BPath(const BPath& path);
    BPath(const entry_ref* ref);
    BPath(const BEntry* entry);
    BPath(const char* dir, const char* leaf = NULL, bool normalize = false);
    BPath(const BDirectory* dir, const char* leaf, bool normalize = false);
    virtual ~BPath();

    status_t InitCheck() const;

    // Normalising makes the path absolute and resolves ".", ".." and symbolic links
    // in its folders (never in the leaf); the folder must then exist. It is forced
    // for relative paths and paths holding ".", "..", "//" or a trailing "/".
    status_t SetTo(const entry_ref* ref);
    status_t SetTo(const BEntry* entry);
    status_t SetTo(const char* path, const char* leaf = NULL, bool normalize = false);
    status_t SetTo(const BDirectory* dir, const char* leaf = NULL, bool normalize = false);
    void Unset();

    status_t Append(const char* path, bool normalize = false);

    // NULL when the object is not initialised.
    const char* Path() const;
    // The last component; "" for "/". NULL when not initialised.
    const char* Leaf() const;
    // B_ENTRY_NOT_FOUND for "/".
    status_t GetParent(BPath* path) const;

    bool operator==(const BPath& item) const;
    bool operator==(const char* path) const;
    bool operator!=(const BPath& item) const;
    bool operator!=(const char* path) const;
    BPath& operator=(const BPath& item);
    BPath& operator=(const char* path);

    // A path flattens as an entry_ref (B_REF_TYPE), so it travels in messages.
    bool IsFixedSize() const;
    type_code TypeCode() const;
    ssize_t FlattenedSize() const;
    status_t Flatten(void* buffer, ssize_t size) const;
    bool AllowsTypeCode(type_code code) const;
    status_t Unflatten(type_code code, const void* buffer, ssize_t size);

private:
    status_t _Set(const char* path);

    char* fName;
    status_t fStatus;
};

#endif // _PATH_H
