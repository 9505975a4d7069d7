// The process's node monitor: one inotify descriptor and one thread that turns its
// events into B_NODE_MONITOR messages.
//
// Every watched node is held by an O_PATH descriptor, so the service always knows the
// node's current path (/proc/self/fd) and can look up entries of a watched folder
// even after it was renamed. inotify tells a moved node that it moved but not where
// to; the descriptor does. A held descriptor also delays the kernel's "deleted" event
// until it is closed, so the service also watches each node's parent folder: when an
// entry disappears there, a node whose link count dropped to zero was removed.
//
// Watches are per inode (inotify merges watches of the same inode), and one node can
// serve several listeners (target + flags) and be the parent of other watched nodes;
// its inotify mask is the union of what they need.
#ifndef _STORAGE_NODE_MONITOR_SERVICE_H
#define _STORAGE_NODE_MONITOR_SERVICE_H

#include <Messenger.h>
#include <Node.h>
#include <SupportDefs.h>

namespace BPrivate {

class NodeMonitorService {
public:
    static NodeMonitorService* Default();

    // flags == B_STOP_WATCHING ends the listener of (node, target).
    status_t Watch(const node_ref& node, uint32 flags, const BMessenger& target);
    status_t StopWatching(const BMessenger& target);

private:
    NodeMonitorService();

    struct Private;
    Private* fPrivate;
};

} // namespace BPrivate

#endif // _STORAGE_NODE_MONITOR_SERVICE_H
