#include "RefRetriever.h"

#include "FileHelpers.h"

#include <Bitmap.h>
#include <Directory.h>
#include <Entry.h>
#include <Message.h>
#include <Node.h>
#include <NodeInfo.h>
#include <NodeMonitor.h>
#include <StorageDefs.h>
#include <Volume.h>
#include <fs_info.h>

#include <string>

#include <string.h>

namespace {

const ino_t kNoNode = -1;

// The volume of a path. An entry that is gone (moved away, say) is on the
// volume of the folder it was in.
dev_t device_of(const char* path) {
    dev_t device = dev_for_path(path);
    if ((int64)device >= 0)
        return device;
    const char* slash = strrchr(path, '/');
    if (slash == NULL)
        return device;
    std::string folder(path, slash == path ? 1 : (size_t)(slash - path));
    return dev_for_path(folder.c_str());
}

char* copy_string(const char* text) {
    size_t length = strlen(text);
    char* copy = new char[length + 1];
    memcpy(copy, text, length + 1);
    return copy;
}

} // namespace

RefRetriever::RefRetriever() : fPath(copy_string("")), fNode(kNoNode), fStatus(B_NO_INIT) {}

RefRetriever::RefRetriever(const char* path)
    : fPath(copy_string(path != NULL ? path : "")), fNode(kNoNode), fStatus(B_NO_INIT) {
    _SetParams();
}

RefRetriever::RefRetriever(const entry_ref* ref) : fPath(NULL), fNode(kNoNode), fStatus(B_NO_INIT) {
    char path[B_PATH_NAME_LENGTH];
    if (ref != NULL && get_path(ref, path, false) == B_OK)
        fPath = copy_string(path);
    else
        fPath = copy_string("");
    _SetParams();
}

RefRetriever::RefRetriever(const RefRetriever& other)
    : fPath(copy_string(other.fPath)), fNode(other.fNode), fStatus(other.fStatus) {}

RefRetriever::~RefRetriever() {
    delete[] fPath;
}

status_t RefRetriever::SetEntryRef(const entry_ref* ref) {
    char path[B_PATH_NAME_LENGTH];
    status_t status = ref != NULL ? get_path(ref, path, false) : B_OK;
    if (ref == NULL || status != B_OK) {
        // A NULL ref empties the reference without reporting anything.
        _ReplacePath("");
        fNode = kNoNode;
        fStatus = B_NO_INIT;
        return status;
    }
    if (strcmp(path, fPath) == 0)
        return B_OK;
    _ReplacePath(path);
    _SetParams();
    return _Update();
}

status_t RefRetriever::SetPath(const char* path) {
    if (path == NULL)
        return B_BAD_VALUE;
    if (strcmp(path, fPath) == 0)
        return B_OK;
    _ReplacePath(path);
    _SetParams();
    return _Update();
}

status_t RefRetriever::RefUpdated() {
    // Hook function
    return B_OK;
}

void RefRetriever::RefExpired() {
    // Hook function
}

status_t RefRetriever::Status() const {
    return fStatus;
}

const char* RefRetriever::Path() const {
    return fPath;
}

const char* RefRetriever::RefName() const {
    return ref_name(fPath);
}

status_t RefRetriever::GetEntryRef(entry_ref* ref) const {
    if (ref == NULL)
        return B_BAD_VALUE;
    return get_ref_for_path(fPath, ref);
}

status_t RefRetriever::GetNodeRef(node_ref* ref) const {
    if (ref == NULL)
        return B_BAD_VALUE;
    dev_t device = device_of(fPath);
    // Failures come back as a negative status in the device number.
    if ((int64)device < 0)
        return (status_t)(int64)device;
    ref->device = device;
    ref->node = fNode;
    return B_OK;
}

status_t RefRetriever::GetIcon(BBitmap* icon, icon_size which) {
    if (fStatus != B_OK)
        return fStatus;
    if (icon == NULL)
        return B_BAD_VALUE;

    BEntry entry;
    status_t status = entry.SetTo(fPath, true);
    if (status == B_ENTRY_NOT_FOUND) {
        // A link whose target is gone: the link's own icon.
        status = entry.SetTo(fPath, false);
    }
    if (status != B_OK)
        return status;

    entry_ref ref;
    if (entry.Exists()) {
        status = entry.GetRef(&ref);
        if (status != B_OK)
            return status;
        if (entry.IsDirectory()) {
            BDirectory folder(&entry);
            if (folder.InitCheck() == B_OK && folder.IsRootDirectory()) {
                BVolume volume(device_of(fPath));
                if (volume.GetIcon(icon, which) == B_OK)
                    return B_OK;
            }
        }
    } else {
        status = get_ref_for_path(fPath, &ref);
        if (status != B_OK)
            return status;
    }
    return BNodeInfo::GetTrackerIcon(&ref, icon, which);
}

status_t RefRetriever::CheckNode(bool force) {
    BEntry entry;
    status_t result = entry.SetTo(fPath, false);
    if (result == B_OK)
        result = entry.InitCheck();
    if (result == B_OK && !entry.Exists())
        result = B_ENTRY_NOT_FOUND;

    if (result == fStatus && !force)
        return fStatus;
    // The node number stays as it was: an entry made again under the same path
    // keeps the old number until the reference is set anew.
    fStatus = result;
    return _Update();
}

status_t RefRetriever::HandleNodeMonitor(int32 opcode, const node_ref* ref,
                                         const BMessage* message) {
    if (fStatus != B_OK || ref == NULL)
        return REF_NOT_CONCERNED;
    if (device_of(fPath) != ref->device || fNode != ref->node)
        return REF_NOT_CONCERNED;

    switch (opcode) {
    case B_ENTRY_REMOVED:
        RefExpired();
        return REF_REMOVED;

    case B_ENTRY_MOVED: {
        if (message == NULL)
            return B_BAD_VALUE;
        const char* name;
        status_t status = message->FindString("name", &name);
        if (status != B_OK)
            return status;
        int64 directory;
        status = message->FindInt64("to directory", &directory);
        if (status != B_OK)
            return status;
        entry_ref moved(ref->device, (ino_t)directory, name);
        return SetEntryRef(&moved);
    }

    case B_STAT_CHANGED:
    case B_ATTR_CHANGED:
        return _Update();

    default:
        return REF_NOT_CONCERNED;
    }
}

bool RefRetriever::operator==(const RefRetriever& other) const {
    return strcmp(fPath, other.fPath) == 0 && fNode == other.fNode && fStatus == other.fStatus;
}

bool RefRetriever::operator!=(const RefRetriever& other) const {
    return !(*this == other);
}

RefRetriever& RefRetriever::operator=(const RefRetriever& other) {
    if (&other == this)
        return *this;
    _ReplacePath(other.fPath);
    fNode = other.fNode;
    fStatus = other.fStatus;
    _Update();
    return *this;
}

void RefRetriever::_SetParams() {
    BEntry entry;
    fStatus = entry.SetTo(fPath, false);
    if (fStatus == B_OK)
        fStatus = entry.InitCheck();
    if (fStatus != B_OK)
        return;
    if (!entry.Exists()) {
        fStatus = B_ENTRY_NOT_FOUND;
        return;
    }
    node_ref nodeRef;
    fStatus = entry.GetNodeRef(&nodeRef);
    if (fStatus == B_OK)
        fNode = nodeRef.node;
}

void RefRetriever::_ReplacePath(const char* path) {
    char* copy = copy_string(path);
    delete[] fPath;
    fPath = copy;
}

status_t RefRetriever::_Update() {
    status_t result = RefUpdated();
    if (fStatus == B_OK)
        fStatus = result;
    return fStatus;
}
