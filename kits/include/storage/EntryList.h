// Something that hands out entries one after the other (a folder, a query).
#ifndef _ENTRY_LIST_H
#define _ENTRY_LIST_H

#include <SupportDefs.h>

#include <dirent.h>

class BEntry;
struct entry_ref;

class BEntryList {
public:
    BEntryList();
    virtual ~BEntryList();

    // Each returns B_ENTRY_NOT_FOUND after the last entry.
    virtual status_t GetNextEntry(BEntry* entry, bool traverse = false) = 0;
    virtual status_t GetNextRef(entry_ref* ref) = 0;
    // Returns the number of records copied (0 at the end) or an error.
    virtual int32 GetNextDirents(struct dirent* buffer, size_t length, int32 count = INT32_MAX) = 0;

    virtual status_t Rewind() = 0;
    virtual int32 CountEntries() = 0;
};

#endif // _ENTRY_LIST_H
