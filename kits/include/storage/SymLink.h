// Symbolic links as nodes: reading where they point.
#ifndef _SYM_LINK_H
#define _SYM_LINK_H

#include <Node.h>
#include <StorageDefs.h>

class BDirectory;
class BEntry;
class BPath;
struct entry_ref;

class BSymLink : public BNode {
public:
    BSymLink();
    BSymLink(const BSymLink& link);
    BSymLink(const entry_ref* ref);
    BSymLink(const BEntry* entry);
    BSymLink(const char* path);
    BSymLink(const BDirectory* directory, const char* path);
    virtual ~BSymLink();

    // Copies the link's contents with a NUL into buffer; returns the length (without
    // the NUL) or an error (B_BAD_VALUE if the node is not a link).
    ssize_t ReadLink(char* buffer, size_t size);

    // The link's target as an absolute path, relative targets taken from dir.
    ssize_t MakeLinkedPath(const char* directoryPath, BPath* path);
    ssize_t MakeLinkedPath(const BDirectory* directory, BPath* path);

    bool IsAbsolute();
};

#endif // _SYM_LINK_H
