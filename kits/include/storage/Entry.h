// Entries: names in folders, whether or not anything exists under them yet.
#ifndef _ENTRY_H
#define _ENTRY_H

#include <Statable.h>
#include <StorageDefs.h>
#include <SupportDefs.h>

class BDirectory;
class BPath;

namespace BPrivate {
class EntryAccess;
}

// An entry_ref names an entry as (volume, folder, leaf name). Linux cannot open a
// folder by its inode number, so the storage kit remembers the path of every folder
// it hands out a ref for and resolves refs through that memory; a ref built by hand
// resolves when its folder was seen before (by get_ref_for_path, a BEntry, a node
// monitor message or an unflattened ref). Equality is device + directory + name.
struct entry_ref {
    entry_ref();
    entry_ref(dev_t device, ino_t directory, const char* name);
    entry_ref(const entry_ref& other);
    ~entry_ref();

    // Copies the name; NULL clears it. B_NO_MEMORY if the copy fails.
    status_t set_name(const char* name);

    bool operator==(const entry_ref& other) const;
    bool operator!=(const entry_ref& other) const;
    bool operator<(const entry_ref& other) const;
    entry_ref& operator=(const entry_ref& other);

    dev_t device;
    ino_t directory;
    char* name;
};

class BEntry : public BStatable {
public:
    BEntry();
    BEntry(const BDirectory* directory, const char* path, bool traverse = false);
    BEntry(const entry_ref* ref, bool traverse = false);
    BEntry(const char* path, bool traverse = false);
    BEntry(const BEntry& entry);
    virtual ~BEntry();

    status_t InitCheck() const;
    bool Exists() const;

    const char* Name() const;

    virtual status_t GetStat(struct stat* stat) const;

    status_t SetTo(const BDirectory* directory, const char* path, bool traverse = false);
    status_t SetTo(const entry_ref* ref, bool traverse = false);
    status_t SetTo(const char* path, bool traverse = false);
    void Unset();

    status_t GetRef(entry_ref* ref) const;
    status_t GetPath(BPath* path) const;
    status_t GetParent(BEntry* entry) const;
    status_t GetParent(BDirectory* directory) const;
    status_t GetName(char* buffer) const;

    status_t Rename(const char* path, bool clobber = false);
    status_t MoveTo(BDirectory* directory, const char* path = NULL, bool clobber = false);
    status_t Remove();

    bool operator==(const BEntry& item) const;
    bool operator!=(const BEntry& item) const;

    BEntry& operator=(const BEntry& item);

private:
    friend class BPrivate::EntryAccess;

    virtual status_t _StatTarget(int* descriptor, const char** path) const;
    status_t _SetToPath(const char* path, bool traverse);

    struct Private;
    Private* fPrivate;
    status_t fStatus;
};

// Fills ref for path; the leaf need not exist, its folder must.
status_t get_ref_for_path(const char* path, entry_ref* ref);

#endif // _ENTRY_H
