// Folders: looking up, creating and listing their entries.
#ifndef _DIRECTORY_H
#define _DIRECTORY_H

#include <EntryList.h>
#include <Node.h>
#include <StorageDefs.h>

class BEntry;
class BFile;
class BSymLink;
struct entry_ref;
struct node_ref;

class BDirectory : public BNode, public BEntryList {
public:
    BDirectory();
    BDirectory(const BDirectory& directory);
    BDirectory(const entry_ref* ref);
    BDirectory(const node_ref* nodeRef);
    BDirectory(const BEntry* entry);
    BDirectory(const char* path);
    BDirectory(const BDirectory* directory, const char* path);
    virtual ~BDirectory();

    // All of these follow symbolic links; the node must be a folder
    // (B_NOT_A_DIRECTORY otherwise). A node_ref resolves when the kit saw the
    // folder's path before (B_ENTRY_NOT_FOUND otherwise).
    status_t SetTo(const entry_ref* ref);
    status_t SetTo(const node_ref* nodeRef);
    status_t SetTo(const BEntry* entry);
    status_t SetTo(const char* path);
    status_t SetTo(const BDirectory* directory, const char* path);
    void Unset();

    status_t GetEntry(BEntry* entry) const;

    // A path relative to this folder, or absolute. The entry must exist.
    status_t FindEntry(const char* path, BEntry* entry, bool traverse = false) const;

    // Whether the entry lies in this folder or any folder below it (or is the
    // folder itself), and is of one of the node flavours asked for.
    bool Contains(const char* path, int32 nodeFlags = B_ANY_NODE) const;
    bool Contains(const BEntry* entry, int32 nodeFlags = B_ANY_NODE) const;

    status_t GetStatFor(const char* path, struct stat* stat) const;

    virtual status_t GetNextEntry(BEntry* entry, bool traverse = false);
    virtual status_t GetNextRef(entry_ref* ref);
    virtual int32 GetNextDirents(struct dirent* buffer, size_t length, int32 count = INT32_MAX);
    virtual status_t Rewind();
    // Counts the entries (without "." and ".."); the iteration is not disturbed.
    virtual int32 CountEntries();

    // The object arguments may be NULL. CreateFile opens the file read-write and
    // empties an existing one unless failIfExists asks for B_FILE_EXISTS instead.
    status_t CreateDirectory(const char* path, BDirectory* directory);
    status_t CreateFile(const char* path, BFile* file, bool failIfExists = false);
    status_t CreateSymLink(const char* path, const char* linkToPath, BSymLink* link);

    // Whether this folder is the root folder of its volume (a mount point).
    bool IsRootDirectory() const;

    BDirectory& operator=(const BDirectory& directory);

private:
    struct Private;
    Private* fDirectoryPrivate;
};

// Creates path and every missing folder above it; B_OK if it already is a folder.
status_t create_directory(const char* path, mode_t mode);

#endif // _DIRECTORY_H
