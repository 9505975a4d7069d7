// Nodes: the data behind an entry, with their typed attributes.
#ifndef _NODE_H
#define _NODE_H

#include <Statable.h>
#include <StorageDefs.h>
#include <SupportDefs.h>

class BDirectory;
class BEntry;
struct entry_ref;

namespace BPrivate {
class NodeAccess;
}

struct node_ref {
    node_ref();
    node_ref(dev_t device, ino_t node);
    node_ref(const node_ref& other);

    bool operator==(const node_ref& other) const;
    bool operator!=(const node_ref& other) const;
    bool operator<(const node_ref& other) const;
    node_ref& operator=(const node_ref& other);

    dev_t device;
    ino_t node;
};

struct attr_info {
    uint32 type;
    off_t size;
};

class BNode : public BStatable {
public:
    BNode();
    BNode(const entry_ref* ref);
    BNode(const BEntry* entry);
    BNode(const char* path);
    BNode(const BDirectory* directory, const char* path);
    BNode(const BNode& node);
    virtual ~BNode();

    status_t InitCheck() const;

    virtual status_t GetStat(struct stat* stat) const;

    status_t SetTo(const entry_ref* ref);
    status_t SetTo(const BEntry* entry);
    status_t SetTo(const char* path);
    status_t SetTo(const BDirectory* directory, const char* path);
    void Unset();

    // An advisory lock on the node, held until Unlock() or until the node is closed;
    // B_BUSY when another holder has it.
    status_t Lock();
    status_t Unlock();

    status_t Sync();

    // Typed attributes. Returns the bytes written or read, or an error: B_ENTRY_NOT_FOUND
    // for a missing attribute, B_NOT_SUPPORTED where the file system (or a symbolic
    // link) holds none. The type is informational: reading with another type works.
    ssize_t WriteAttr(const char* name, type_code type, off_t offset, const void* buffer,
                      size_t length);
    ssize_t ReadAttr(const char* name, type_code type, off_t offset, void* buffer,
                     size_t length) const;
    status_t RemoveAttr(const char* name);
    status_t RenameAttr(const char* oldName, const char* newName);
    status_t GetAttrInfo(const char* name, struct attr_info* info) const;
    // Copies the next attribute's name into buffer (B_ATTR_NAME_LENGTH bytes);
    // B_ENTRY_NOT_FOUND after the last one.
    status_t GetNextAttrName(char* buffer);
    status_t RewindAttrs();

    int Dup();

    bool operator==(const BNode& node) const;
    bool operator!=(const BNode& node) const;
    BNode& operator=(const BNode& node);

protected:
    // The open descriptor, for BFile and BDirectory; -1 when unset.
    int _Descriptor() const;
    // Opens the node at path read-only, following a final link when asked; wantFolder
    // refuses anything but a readable folder.
    status_t _SetTo(const char* path, bool traverse, bool wantFolder);
    // Takes over a descriptor a subclass opened itself; path is the node's
    // canonical path.
    status_t _Adopt(int descriptor, const char* path);

    status_t fStatus;

private:
    friend class BPrivate::NodeAccess;

    virtual status_t _StatTarget(int* descriptor, const char** path) const;

    struct Private;
    Private* fPrivate;
};

#endif // _NODE_H
