// A tracked reference to one file-system entry that the user put on the bar or in
// a menu. The path is its identity; the node number is remembered from the last
// time the entry was resolved; the status says whether the entry is usable now.
// Owners keep it current by calling CheckNode, and learn of changes through the
// two hooks, which layer items, file menu items and file list items override.
//
// A RefRetriever has no lock of its own: it is used only while the looper that
// owns the item is locked.
#ifndef GLIMROW_REF_RETRIEVER_H
#define GLIMROW_REF_RETRIEVER_H

#include <Errors.h>
#include <Mime.h>
#include <SupportDefs.h>

class BBitmap;
class BMessage;
struct entry_ref;
struct node_ref;

// Results of HandleNodeMonitor, just above the system's error codes.
const status_t REF_NOT_CONCERNED = B_ERRORS_END + 1;
const status_t REF_REMOVED = B_ERRORS_END + 2;

class RefRetriever {
public:
    RefRetriever();
    // Resolves the path (which must not be NULL) without calling a hook.
    RefRetriever(const char* path);
    // Resolves the ref's path; a NULL or unresolvable ref gives the empty path.
    RefRetriever(const entry_ref* ref);
    // Copies path, node and status as they are.
    RefRetriever(const RefRetriever& other);
    virtual ~RefRetriever();

    // Point the reference elsewhere. An unchanged path does nothing; a new one is
    // resolved and RefUpdated() is called. A NULL ref empties the reference.
    virtual status_t SetEntryRef(const entry_ref* ref);
    virtual status_t SetPath(const char* path);

    // Hook function: the entry was set, re-checked or changed. Its result
    // becomes the status when the status was B_OK.
    virtual status_t RefUpdated();
    // Hook function: the entry was removed.
    virtual void RefExpired();

    status_t Status() const;
    const char* Path() const;
    const char* RefName() const;
    status_t GetEntryRef(entry_ref* ref) const;
    status_t GetNodeRef(node_ref* ref) const;
    // Fills icon (of the size of which) with the entry's icon, a volume's icon for
    // the root folder of a volume.
    status_t GetIcon(BBitmap* icon, icon_size which);

    // Looks at the entry again; a changed result (or force) calls RefUpdated().
    status_t CheckNode(bool force);

    // Decides whether a node-monitor notification concerns this reference and
    // follows the entry when it was moved or renamed.
    status_t HandleNodeMonitor(int32 opcode, const node_ref* ref, const BMessage* message);

    bool operator==(const RefRetriever& other) const;
    bool operator!=(const RefRetriever& other) const;
    // Copies the other reference and calls RefUpdated().
    RefRetriever& operator=(const RefRetriever& other);

private:
    void _SetParams();
    void _ReplacePath(const char* path);
    status_t _Update();

    char* fPath;
    ino_t fNode;
    status_t fStatus;
};

#endif // GLIMROW_REF_RETRIEVER_H
