// Node monitoring: B_NODE_MONITOR messages about changes to files and folders.
//
// On Linux this runs on inotify, with one thread for the process. Limits of the
// mapping:
//   - A node can be watched only if the kit saw its path before (a BEntry, BNode,
//     BDirectory or entry_ref handed out its node_ref or ref); otherwise watch_node()
//     answers B_ENTRY_NOT_FOUND.
//   - Every watched node is held open (without reading rights), so the kit can tell
//     where it was moved to. This counts against the process's descriptor limit
//     (raised to 4096 when lower), and a volume holding a watched node cannot be
//     unmounted until the watch ends.
//   - inotify does not say which attribute changed; the kit compares the node's
//     attributes before and after, so B_ATTR_CHANGED carries "attr" and "cause".
//   - An entry moved out of a watched folder into one nobody watches is reported to
//     that folder's watchers as removed; moved in from such a folder, as created.
//   - Renaming a folder above a watched node is not a change of the node's name and
//     sends nothing, as on Be.
#ifndef _NODE_MONITOR_H
#define _NODE_MONITOR_H

#include <Messenger.h>
#include <Node.h>
#include <SupportDefs.h>

class BHandler;
class BLooper;

// watch_node() flags
enum {
    B_STOP_WATCHING = 0x0000,
    B_WATCH_NAME = 0x0001,
    B_WATCH_STAT = 0x0002,
    B_WATCH_ATTR = 0x0004,
    B_WATCH_DIRECTORY = 0x0008,
    B_WATCH_ALL = 0x000f,

    B_WATCH_MOUNT = 0x0010,
    B_WATCH_INTERIM_STAT = 0x0020,
    B_WATCH_CHILDREN = 0x0040,
};

// "opcode" of B_NODE_MONITOR messages
#define B_ENTRY_CREATED 1
#define B_ENTRY_REMOVED 2
#define B_ENTRY_MOVED 3
#define B_STAT_CHANGED 4
#define B_ATTR_CHANGED 5
#define B_DEVICE_MOUNTED 6
#define B_DEVICE_UNMOUNTED 7

// "cause" of B_ATTR_CHANGED
#define B_ATTR_CREATED 1
#define B_ATTR_REMOVED 2

// "fields" of B_STAT_CHANGED
enum {
    B_STAT_MODE = 0x0001,
    B_STAT_UID = 0x0002,
    B_STAT_GID = 0x0004,
    B_STAT_SIZE = 0x0008,
    B_STAT_ACCESS_TIME = 0x0010,
    B_STAT_MODIFICATION_TIME = 0x0020,
    B_STAT_CREATION_TIME = 0x0040,
    B_STAT_CHANGE_TIME = 0x0080,

    B_STAT_INTERIM_UPDATE = 0x1000,
};

// Watching again with other flags adds them; B_STOP_WATCHING ends the watch of that
// node for that target. A target whose looper is gone is dropped.
status_t watch_node(const node_ref* node, uint32 flags, BMessenger target);
status_t watch_node(const node_ref* node, uint32 flags, const BHandler* handler,
                    const BLooper* looper = NULL);

status_t stop_watching(BMessenger target);
status_t stop_watching(const BHandler* handler, const BLooper* looper = NULL);

#endif // _NODE_MONITOR_H
