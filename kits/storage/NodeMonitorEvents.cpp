// The node monitor's thread: reads inotify events and turns them into
// B_NODE_MONITOR messages (see NodeMonitorService.h for the scheme).
#include "NodeMonitorServicePrivate.h"

#include "KnownPaths.h"
#include "StorageSupport.h"

#include <AppDefs.h>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <string.h>

namespace BPrivate {

namespace {

bool has_unpaired_move(const std::vector<Event>& events) {
    for (size_t i = 0; i < events.size(); i++) {
        if ((events[i].mask & IN_MOVED_FROM) == 0)
            continue;
        bool paired = false;
        for (size_t j = i + 1; j < events.size() && !paired; j++)
            paired = (events[j].mask & IN_MOVED_TO) != 0 && events[j].cookie == events[i].cookie;
        if (!paired)
            return true;
    }
    return false;
}

void add_device(BMessage* message, const char* name, dev_t device) {
    // Be's dev_t is 32 bits; Linux numbers of real devices fit.
    message->AddInt32(name, (int32)(uint32)device);
}

BMessage node_message(int32 opcode, const node_ref& node) {
    BMessage message(B_NODE_MONITOR);
    message.AddInt32("opcode", opcode);
    add_device(&message, "device", node.device);
    message.AddInt64("node", (int64)node.node);
    return message;
}

BMessage entry_message(int32 opcode, const WatchedNode& directory, ino_t node,
                       const std::string& name) {
    BMessage message(B_NODE_MONITOR);
    message.AddInt32("opcode", opcode);
    add_device(&message, "device", directory.ref.device);
    message.AddInt64("directory", (int64)directory.ref.node);
    message.AddInt64("node", (int64)node);
    message.AddString("name", name.c_str());
    // Whoever gets the message may build an entry_ref from it.
    std::string path = directory.Path();
    if (!path.empty())
        remember_node_path(directory.ref.device, directory.ref.node, path);
    return message;
}

std::string entry_key(int32 opcode, ino_t node, const std::string& name, ino_t directory) {
    return std::to_string(opcode) + ":" + std::to_string(node) + ":" + std::to_string(directory) +
           ":" + name;
}

ino_t node_of(const WatchedNode& directory, const std::string& name) {
    struct stat entryStat;
    if (fstatat(directory.descriptor, name.c_str(), &entryStat, AT_SYMLINK_NOFOLLOW) != 0)
        return 0;
    return entryStat.st_ino;
}

bool directory_listened(const WatchedNode* node) {
    return node != NULL && node->isDirectory && (node->Flags() & B_WATCH_DIRECTORY) != 0;
}

} // namespace

void NodeMonitorService::Private::Run() {
    for (;;) {
        struct pollfd ready = {inotify, POLLIN, 0};
        if (poll(&ready, 1, -1) < 0) {
            if (errno == EINTR)
                continue;
            return;
        }
        std::vector<Event> events;
        ReadEvents(&events);
        // The two halves of a rename can arrive in separate reads.
        for (int round = 0; round < 3 && has_unpaired_move(events); round++) {
            if (poll(&ready, 1, kMovePairingMilliseconds) <= 0)
                break;
            ReadEvents(&events);
        }

        std::vector<Outgoing> out;
        {
            std::lock_guard<std::mutex> guard(lock);
            Process(events, &out);
        }
        for (Outgoing& outgoing : out) {
            status_t status =
                outgoing.target.SendMessage(&outgoing.message, (BHandler*)NULL, kSendTimeout);
            if (status != B_OK && !outgoing.target.IsValid()) {
                std::lock_guard<std::mutex> guard(lock);
                Forget(outgoing.target);
            }
        }
    }
}

void NodeMonitorService::Private::ReadEvents(std::vector<Event>* events) {
    alignas(struct inotify_event) char buffer[65536];
    for (;;) {
        ssize_t length = read(inotify, buffer, sizeof(buffer));
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            return;
        for (ssize_t offset = 0; offset + (ssize_t)sizeof(struct inotify_event) <= length;) {
            const struct inotify_event* raw =
                reinterpret_cast<const struct inotify_event*>(buffer + offset);
            Event event;
            event.watch = raw->wd;
            event.mask = raw->mask;
            event.cookie = raw->cookie;
            if (raw->len > 0)
                event.name.assign(raw->name, strnlen(raw->name, raw->len));
            events->push_back(event);
            offset += sizeof(struct inotify_event) + raw->len;
        }
    }
}

void NodeMonitorService::Private::Forget(const BMessenger& target) {
    std::vector<node_ref> watched;
    for (auto& [ref, node] : nodes)
        watched.push_back(ref);
    for (const node_ref& ref : watched) {
        auto found = nodes.find(ref);
        if (found == nodes.end())
            continue;
        RemoveListener(found->second, target);
        Release(ref);
    }
}

void NodeMonitorService::Private::Send(std::vector<Outgoing>* out, const WatchedNode& node,
                                       uint32 flag, const BMessage& message,
                                       const std::string& key) {
    for (const Listener& listener : node.listeners) {
        if ((listener.flags & flag) == 0)
            continue;
        bool duplicate = false;
        for (const Outgoing& outgoing : *out)
            duplicate = duplicate || (outgoing.target == listener.target && outgoing.key == key);
        if (!duplicate)
            out->push_back({listener.target, message, key});
    }
}

void NodeMonitorService::Private::Process(std::vector<Event>& events, std::vector<Outgoing>* out) {
    for (size_t index = 0; index < events.size(); index++) {
        Event& event = events[index];
        if (event.consumed)
            continue;
        if ((event.mask & IN_Q_OVERFLOW) != 0) {
            // Events were lost; start comparing afresh from what is there now.
            for (auto& [ref, node] : nodes)
                TakeSnapshots(node, node.Flags());
            continue;
        }
        WatchedNode* node = NodeFor(event.watch);
        if (node == NULL)
            continue;
        if ((event.mask & IN_IGNORED) != 0) {
            byWatch.erase(event.watch);
            node->watch = -1;
            node->mask = 0;
            continue;
        }
        if (!event.name.empty()) {
            DirectoryEvent(index, events, out);
            continue;
        }
        if ((event.mask & IN_MOVE_SELF) != 0)
            Moved(*node, out);
        else if ((event.mask & (IN_ATTRIB | IN_MODIFY | IN_CLOSE_WRITE)) != 0)
            Changed(*node, out);
    }
}

void NodeMonitorService::Private::Removed(WatchedNode& node, std::vector<Outgoing>* out) {
    BMessage message = node_message(B_ENTRY_REMOVED, node.ref);
    if (node.hasParent)
        message.AddInt64("directory", (int64)node.parent.node);
    message.AddString("name", node.name.c_str());
    Send(out, node, B_WATCH_NAME, message,
         entry_key(B_ENTRY_REMOVED, node.ref.node, node.name, node.parent.node));

    // The node is gone, and so are its watches.
    node_ref ref = node.ref;
    node.listeners.clear();
    DetachParent(node);
    Release(ref);
}

void NodeMonitorService::Private::Moved(WatchedNode& node, std::vector<Outgoing>* out) {
    std::string path = node.Path();
    const std::string deleted = " (deleted)";
    if (path.empty() ||
        (path.size() > deleted.size() &&
         path.compare(path.size() - deleted.size(), deleted.size(), deleted) == 0)) {
        Removed(node, out);
        return;
    }
    std::string directory;
    std::string name;
    split_path(path, &directory, &name);
    struct stat directoryStat;
    if (stat(directory.c_str(), &directoryStat) != 0)
        return;
    node_ref newParent(directoryStat.st_dev, directoryStat.st_ino);
    if (node.hasParent && newParent == node.parent && name == node.name)
        return;

    BMessage message = node_message(B_ENTRY_MOVED, node.ref);
    message.AddInt64("from directory", (int64)node.parent.node);
    message.AddInt64("to directory", (int64)newParent.node);
    message.AddString("name", name.c_str());
    message.AddString("from name", node.name.c_str());
    add_device(&message, "node device", node.ref.device);
    remember_node_path(newParent.device, newParent.node, directory);
    remember_node_path(node.ref.device, node.ref.node, path);
    Send(out, node, B_WATCH_NAME, message,
         entry_key(B_ENTRY_MOVED, node.ref.node, name, newParent.node));

    if (node.hasParent && newParent == node.parent) {
        node.name = name;
        return;
    }
    DetachParent(node);
    AttachParent(node);
}

void NodeMonitorService::Private::Changed(WatchedNode& node, std::vector<Outgoing>* out) {
    struct stat now;
    if (fstat(node.descriptor, &now) != 0)
        return;
    if (now.st_nlink == 0) {
        Removed(node, out);
        return;
    }
    uint32 flags = node.Flags();
    if ((flags & B_WATCH_STAT) != 0) {
        // Attribute writes touch only the change time; Be does not call that a stat change.
        int32 fields = stat_changes(node.lastStat, now);
        if (fields != 0) {
            BMessage message = node_message(B_STAT_CHANGED, node.ref);
            message.AddInt32("fields", fields);
            Send(out, node, B_WATCH_STAT, message, std::to_string(B_STAT_CHANGED));
        }
    }
    node.lastStat = now;

    if ((flags & B_WATCH_ATTR) != 0 && !node.isSymlink) {
        std::map<std::string, std::string> attributes = read_attributes(node.descriptor);
        std::vector<std::pair<std::string, int32>> changes;
        for (const auto& [name, value] : attributes) {
            auto before = node.attributes.find(name);
            if (before == node.attributes.end())
                changes.push_back({name, B_ATTR_CREATED});
            else if (before->second != value)
                changes.push_back({name, B_ATTR_CHANGED});
        }
        for (const auto& [name, value] : node.attributes) {
            if (attributes.count(name) == 0)
                changes.push_back({name, B_ATTR_REMOVED});
        }
        node.attributes = attributes;
        for (const auto& [name, cause] : changes) {
            BMessage message = node_message(B_ATTR_CHANGED, node.ref);
            message.AddString("attr", name.c_str());
            message.AddInt32("cause", cause);
            Send(out, node, B_WATCH_ATTR, message,
                 std::to_string(B_ATTR_CHANGED) + ":" + name + ":" + std::to_string(cause));
        }
    }
}

void NodeMonitorService::Private::ChildrenGone(const node_ref& parent, const std::string& name,
                                               std::vector<Outgoing>* out) {
    std::vector<node_ref> gone;
    for (auto& [ref, node] : nodes) {
        struct stat nodeStat;
        if (node.hasParent && node.parent == parent && node.name == name &&
            fstat(node.descriptor, &nodeStat) == 0 && nodeStat.st_nlink == 0)
            gone.push_back(ref);
    }
    for (const node_ref& ref : gone) {
        auto found = nodes.find(ref);
        if (found != nodes.end())
            Removed(found->second, out);
    }
}

void NodeMonitorService::Private::DirectoryEvent(size_t index, std::vector<Event>& events,
                                                 std::vector<Outgoing>* out) {
    Event& event = events[index];
    WatchedNode* directory = NodeFor(event.watch);
    node_ref directoryRef = directory->ref;
    bool listened = directory_listened(directory);
    const std::string& name = event.name;

    if ((event.mask & IN_CREATE) != 0 || ((event.mask & IN_MOVED_TO) != 0 && !event.consumed)) {
        // A new entry, or one moved in from a folder nobody watches.
        if (listened) {
            ino_t node = node_of(*directory, name);
            directory->entries[name] = node;
            Send(out, *directory, B_WATCH_DIRECTORY,
                 entry_message(B_ENTRY_CREATED, *directory, node, name),
                 entry_key(B_ENTRY_CREATED, node, name, directoryRef.node));
        }
        if ((event.mask & IN_MOVED_TO) != 0)
            ChildrenGone(directoryRef, name, out);
        return;
    }

    if ((event.mask & IN_DELETE) != 0) {
        if (listened) {
            ino_t node = directory->entries.count(name) != 0 ? directory->entries[name] : 0;
            directory->entries.erase(name);
            Send(out, *directory, B_WATCH_DIRECTORY,
                 entry_message(B_ENTRY_REMOVED, *directory, node, name),
                 entry_key(B_ENTRY_REMOVED, node, name, directoryRef.node));
        }
        ChildrenGone(directoryRef, name, out);
        return;
    }

    if ((event.mask & IN_MOVED_FROM) == 0)
        return;
    Event* partner = NULL;
    for (size_t j = index + 1; j < events.size() && partner == NULL; j++) {
        if ((events[j].mask & IN_MOVED_TO) != 0 && events[j].cookie == event.cookie &&
            !events[j].consumed)
            partner = &events[j];
    }
    ino_t node = directory->entries.count(name) != 0 ? directory->entries[name] : 0;
    if (listened)
        directory->entries.erase(name);

    if (partner == NULL) {
        // Moved somewhere nobody watches: for this folder it is gone.
        if (listened) {
            Send(out, *directory, B_WATCH_DIRECTORY,
                 entry_message(B_ENTRY_REMOVED, *directory, node, name),
                 entry_key(B_ENTRY_REMOVED, node, name, directoryRef.node));
        }
        return;
    }
    partner->consumed = true;
    WatchedNode* target = NodeFor(partner->watch);
    if (target == NULL)
        return;
    node_ref targetRef = target->ref;
    if (node == 0)
        node = node_of(*target, partner->name);
    if (directory_listened(target))
        target->entries[partner->name] = node;

    BMessage message = node_message(B_ENTRY_MOVED, node_ref(directoryRef.device, node));
    message.AddInt64("from directory", (int64)directoryRef.node);
    message.AddInt64("to directory", (int64)targetRef.node);
    message.AddString("name", partner->name.c_str());
    message.AddString("from name", name.c_str());
    add_device(&message, "node device", directoryRef.device);
    std::string targetPath = target->Path();
    if (!targetPath.empty())
        remember_node_path(targetRef.device, targetRef.node, targetPath);
    std::string key = entry_key(B_ENTRY_MOVED, node, partner->name, targetRef.node);
    if (listened)
        Send(out, *directory, B_WATCH_DIRECTORY, message, key);
    if (directory_listened(target))
        Send(out, *target, B_WATCH_DIRECTORY, message, key);
    ChildrenGone(targetRef, partner->name, out);
}

} // namespace BPrivate
