// The inner workings of NodeMonitorService, shared by its bookkeeping
// (NodeMonitorService.cpp) and its event handling (NodeMonitorEvents.cpp).
#ifndef _STORAGE_NODE_MONITOR_SERVICE_PRIVATE_H
#define _STORAGE_NODE_MONITOR_SERVICE_PRIVATE_H

#include "NodeMonitorService.h"

#include <Message.h>
#include <NodeMonitor.h>

#include <limits.h>
#include <stdio.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace BPrivate {

const uint32 kSupportedFlags = B_WATCH_NAME | B_WATCH_STAT | B_WATCH_ATTR | B_WATCH_DIRECTORY;
const uint32 kDirectoryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
// How long a rename's first half waits for its second half in a later read().
const int kMovePairingMilliseconds = 10;
const bigtime_t kSendTimeout = 1000000;

struct Listener {
    BMessenger target;
    uint32 flags;
};

struct Event {
    int watch;
    uint32 mask;
    uint32 cookie;
    std::string name;
    bool consumed = false;
};

struct Outgoing {
    BMessenger target;
    BMessage message;
    // What the message says, so one target never hears the same thing twice from
    // one batch of events (a folder watch and a name watch can both see a rename).
    std::string key;
};

inline std::string descriptor_path(int descriptor) {
    char link[64];
    snprintf(link, sizeof(link), "/proc/self/fd/%d", descriptor);
    std::string path(PATH_MAX, '\0');
    ssize_t length = readlink(link, &path[0], path.size());
    if (length < 0)
        return std::string();
    path.resize(length);
    return path;
}

inline std::map<std::string, std::string> read_attributes(int descriptor) {
    std::map<std::string, std::string> attributes;
    std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    std::vector<char> names(65536);
    ssize_t length = listxattr(path.c_str(), names.data(), names.size());
    for (ssize_t start = 0; start < length;) {
        std::string name(names.data() + start);
        start += name.size() + 1;
        if (name.compare(0, 5, "user.") != 0)
            continue;
        std::vector<char> value(65536);
        ssize_t size = getxattr(path.c_str(), name.c_str(), value.data(), value.size());
        if (size >= 0)
            attributes[name.substr(5)] = std::string(value.data(), size);
    }
    return attributes;
}

inline bool same_time(const struct timespec& a, const struct timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

inline int32 stat_changes(const struct stat& before, const struct stat& after) {
    int32 fields = 0;
    if (before.st_mode != after.st_mode)
        fields |= B_STAT_MODE;
    if (before.st_uid != after.st_uid)
        fields |= B_STAT_UID;
    if (before.st_gid != after.st_gid)
        fields |= B_STAT_GID;
    if (before.st_size != after.st_size)
        fields |= B_STAT_SIZE;
    if (!same_time(before.st_atim, after.st_atim))
        fields |= B_STAT_ACCESS_TIME;
    if (!same_time(before.st_mtim, after.st_mtim))
        fields |= B_STAT_MODIFICATION_TIME;
    return fields;
}

struct WatchedNode {
    node_ref ref;
    int descriptor = -1;
    int watch = -1;
    uint32 mask = 0;
    bool isDirectory = false;
    bool isSymlink = false;
    bool hasParent = false;
    node_ref parent;
    std::string name;
    std::vector<Listener> listeners;
    int watchedChildren = 0;
    std::map<std::string, ino_t> entries;
    struct stat lastStat = {};
    std::map<std::string, std::string> attributes;

    uint32 Flags() const {
        uint32 flags = 0;
        for (const Listener& listener : listeners)
            flags |= listener.flags;
        return flags;
    }

    uint32 WantedMask() const {
        uint32 flags = Flags();
        uint32 mask = 0;
        if (!listeners.empty())
            mask |= IN_MOVE_SELF | IN_DELETE_SELF | IN_ATTRIB;
        if ((flags & B_WATCH_STAT) != 0)
            mask |= IN_ATTRIB | IN_MODIFY | IN_CLOSE_WRITE;
        if ((flags & B_WATCH_DIRECTORY) != 0 && isDirectory)
            mask |= kDirectoryEvents;
        // A parent of watched nodes sees them disappear.
        if (watchedChildren > 0)
            mask |= IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
        return mask;
    }

    std::string Path() const { return descriptor_path(descriptor); }
};

struct NodeMonitorService::Private {
    std::mutex lock;
    int inotify = -1;
    std::map<node_ref, WatchedNode> nodes;
    std::map<int, node_ref> byWatch;

    status_t Attach(const std::string& path, node_ref* ref);
    status_t AttachParent(WatchedNode& node);
    void DetachParent(WatchedNode& node);
    status_t UpdateWatch(WatchedNode& node);
    void Release(const node_ref& ref);
    void TakeSnapshots(WatchedNode& node, uint32 flags);
    void RemoveListener(WatchedNode& node, const BMessenger& target);

    void Forget(const BMessenger& target);

    void Run();
    void ReadEvents(std::vector<Event>* events);
    void Process(std::vector<Event>& events, std::vector<Outgoing>* out);
    void Send(std::vector<Outgoing>* out, const WatchedNode& node, uint32 flag,
              const BMessage& message, const std::string& key);
    void Removed(WatchedNode& node, std::vector<Outgoing>* out);
    void Moved(WatchedNode& node, std::vector<Outgoing>* out);
    void Changed(WatchedNode& node, std::vector<Outgoing>* out);
    void ChildrenGone(const node_ref& parent, const std::string& name, std::vector<Outgoing>* out);
    void DirectoryEvent(size_t index, std::vector<Event>& events, std::vector<Outgoing>* out);
    WatchedNode* NodeFor(int watch);
};

} // namespace BPrivate

#endif // _STORAGE_NODE_MONITOR_SERVICE_PRIVATE_H
