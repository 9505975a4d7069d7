#include "NodeMonitorServicePrivate.h"

#include "KnownPaths.h"
#include "StorageSupport.h"

#include <AppDefs.h>
#include <Message.h>
#include <NodeMonitor.h>

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <string.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace BPrivate {

NodeMonitorService::NodeMonitorService() : fPrivate(new Private) {
    fPrivate->inotify = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fPrivate->inotify < 0)
        return;
    // Each watched node holds a descriptor; give the process room for them.
    struct rlimit limit;
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max &&
        limit.rlim_cur < 4096) {
        limit.rlim_cur = limit.rlim_max < 4096 ? limit.rlim_max : 4096;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    std::thread([this] { fPrivate->Run(); }).detach();
}

NodeMonitorService* NodeMonitorService::Default() {
    // Never destroyed: its thread runs for the life of the process.
    static NodeMonitorService* sService = new NodeMonitorService;
    return sService;
}

status_t NodeMonitorService::Watch(const node_ref& node, uint32 flags, const BMessenger& target) {
    std::lock_guard<std::mutex> guard(fPrivate->lock);
    if (fPrivate->inotify < 0)
        return B_NOT_SUPPORTED;

    if (flags == B_STOP_WATCHING) {
        auto found = fPrivate->nodes.find(node);
        if (found == fPrivate->nodes.end())
            return B_BAD_VALUE;
        fPrivate->RemoveListener(found->second, target);
        fPrivate->Release(node);
        return B_OK;
    }
    flags &= kSupportedFlags;
    if (flags == 0)
        return B_BAD_VALUE;

    if (fPrivate->nodes.find(node) == fPrivate->nodes.end()) {
        std::string path;
        if (status_t status = find_node_path(node.device, node.node, &path); status != B_OK)
            return status;
        node_ref attached;
        if (status_t status = fPrivate->Attach(path, &attached); status != B_OK)
            return status;
        if (attached != node) {
            fPrivate->Release(attached);
            return B_ENTRY_NOT_FOUND;
        }
    }
    WatchedNode& watched = fPrivate->nodes[node];
    uint32 added = flags & ~watched.Flags();
    bool known = false;
    for (Listener& listener : watched.listeners) {
        if (listener.target == target) {
            listener.flags |= flags;
            known = true;
        }
    }
    if (!known)
        watched.listeners.push_back({target, flags});
    fPrivate->TakeSnapshots(watched, added);

    status_t status = fPrivate->UpdateWatch(watched);
    if (status == B_OK && !watched.hasParent)
        status = fPrivate->AttachParent(watched);
    if (status != B_OK) {
        fPrivate->RemoveListener(watched, target);
        fPrivate->Release(node);
    }
    return status;
}

status_t NodeMonitorService::StopWatching(const BMessenger& target) {
    std::lock_guard<std::mutex> guard(fPrivate->lock);
    std::vector<node_ref> watched;
    for (auto& [ref, node] : fPrivate->nodes)
        watched.push_back(ref);
    for (const node_ref& ref : watched) {
        auto found = fPrivate->nodes.find(ref);
        if (found == fPrivate->nodes.end())
            continue;
        fPrivate->RemoveListener(found->second, target);
        fPrivate->Release(ref);
    }
    return B_OK;
}

// #pragma mark - Bookkeeping

status_t NodeMonitorService::Private::Attach(const std::string& path, node_ref* ref) {
    int descriptor = open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return last_error();
    struct stat nodeStat;
    if (fstat(descriptor, &nodeStat) != 0) {
        status_t status = last_error();
        close(descriptor);
        return status;
    }
    *ref = node_ref(nodeStat.st_dev, nodeStat.st_ino);
    auto found = nodes.find(*ref);
    if (found != nodes.end()) {
        close(descriptor);
        return B_OK;
    }
    WatchedNode& node = nodes[*ref];
    node.ref = *ref;
    node.descriptor = descriptor;
    node.isDirectory = S_ISDIR(nodeStat.st_mode);
    node.isSymlink = S_ISLNK(nodeStat.st_mode);
    node.lastStat = nodeStat;
    std::string directory;
    split_path(path, &directory, &node.name);
    return B_OK;
}

status_t NodeMonitorService::Private::AttachParent(WatchedNode& node) {
    std::string path = node.Path();
    if (path.empty() || path == "/")
        return B_OK;
    std::string directory;
    split_path(path, &directory, &node.name);
    node_ref parent;
    if (status_t status = Attach(directory, &parent); status != B_OK)
        return status;
    WatchedNode& parentNode = nodes[parent];
    parentNode.watchedChildren++;
    if (status_t status = UpdateWatch(parentNode); status != B_OK) {
        parentNode.watchedChildren--;
        Release(parent);
        return status;
    }
    node.parent = parent;
    node.hasParent = true;
    remember_node_path(parent.device, parent.node, directory);
    remember_node_path(node.ref.device, node.ref.node, path);
    return B_OK;
}

void NodeMonitorService::Private::DetachParent(WatchedNode& node) {
    if (!node.hasParent)
        return;
    node.hasParent = false;
    auto found = nodes.find(node.parent);
    if (found == nodes.end())
        return;
    found->second.watchedChildren--;
    UpdateWatch(found->second);
    Release(node.parent);
}

status_t NodeMonitorService::Private::UpdateWatch(WatchedNode& node) {
    uint32 mask = node.WantedMask();
    if (mask == node.mask && (mask == 0 || node.watch >= 0))
        return B_OK;
    if (mask == 0) {
        if (node.watch >= 0) {
            inotify_rm_watch(inotify, node.watch);
            byWatch.erase(node.watch);
        }
        node.watch = -1;
        node.mask = 0;
        return B_OK;
    }
    std::string path = node.Path();
    int watch = inotify_add_watch(inotify, path.c_str(), mask | IN_DONT_FOLLOW);
    if (watch < 0)
        return errno == ENOSPC ? B_NO_MEMORY : last_error();
    node.watch = watch;
    node.mask = mask;
    byWatch[watch] = node.ref;
    return B_OK;
}

void NodeMonitorService::Private::Release(const node_ref& ref) {
    auto found = nodes.find(ref);
    if (found == nodes.end())
        return;
    WatchedNode& node = found->second;
    if (!node.listeners.empty() || node.watchedChildren > 0) {
        UpdateWatch(node);
        return;
    }
    if (node.watch >= 0) {
        inotify_rm_watch(inotify, node.watch);
        byWatch.erase(node.watch);
    }
    close(node.descriptor);
    bool hasParent = node.hasParent;
    node_ref parent = node.parent;
    nodes.erase(found);
    if (hasParent) {
        auto parentNode = nodes.find(parent);
        if (parentNode != nodes.end()) {
            parentNode->second.watchedChildren--;
            Release(parent);
        }
    }
}

void NodeMonitorService::Private::TakeSnapshots(WatchedNode& node, uint32 flags) {
    if ((flags & B_WATCH_STAT) != 0)
        fstat(node.descriptor, &node.lastStat);
    if ((flags & B_WATCH_ATTR) != 0 && !node.isSymlink)
        node.attributes = read_attributes(node.descriptor);
    if ((flags & B_WATCH_DIRECTORY) != 0 && node.isDirectory) {
        node.entries.clear();
        int descriptor = openat(node.descriptor, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        DIR* directory = descriptor >= 0 ? fdopendir(descriptor) : NULL;
        if (directory == NULL && descriptor >= 0)
            close(descriptor);
        while (directory != NULL) {
            struct dirent* entry = readdir(directory);
            if (entry == NULL)
                break;
            if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0)
                node.entries[entry->d_name] = entry->d_ino;
        }
        if (directory != NULL)
            closedir(directory);
    }
}

void NodeMonitorService::Private::RemoveListener(WatchedNode& node, const BMessenger& target) {
    for (auto listener = node.listeners.begin(); listener != node.listeners.end();) {
        if (listener->target == target)
            listener = node.listeners.erase(listener);
        else
            ++listener;
    }
    if (node.listeners.empty())
        DetachParent(node);
}

WatchedNode* NodeMonitorService::Private::NodeFor(int watch) {
    auto found = byWatch.find(watch);
    if (found == byWatch.end())
        return NULL;
    auto node = nodes.find(found->second);
    return node == nodes.end() ? NULL : &node->second;
}

} // namespace BPrivate
