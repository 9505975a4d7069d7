// The kit's own way into the private state of its classes, so that one class can use
// another's resolved path without public methods for it.
#ifndef _STORAGE_STORAGE_ACCESS_H
#define _STORAGE_STORAGE_ACCESS_H

#include "StorageSupport.h"

#include <Entry.h>
#include <Node.h>

#include <string>

namespace BPrivate {

class EntryAccess {
public:
    // NULL when the entry is not initialised.
    static const EntryLocation* Location(const BEntry& entry);
    // BEntry::Rename and MoveTo: moves the entry to targetPath, minding the Trash.
    static status_t Move(BEntry* entry, const std::string& targetPath, bool clobber);
};

class NodeAccess {
public:
    // The path the node was opened by (its final link not followed); NULL when the
    // node is not initialised.
    static const char* Path(const BNode& node);
};

} // namespace BPrivate

#endif // _STORAGE_STORAGE_ACCESS_H
