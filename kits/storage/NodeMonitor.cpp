// watch_node() and stop_watching(): the public face of NodeMonitorService.
#include <NodeMonitor.h>

#include "NodeMonitorService.h"

#include <Handler.h>
#include <Looper.h>

status_t watch_node(const node_ref* node, uint32 flags, BMessenger target) {
    if (node == NULL) {
        // Mount watching has no Linux counterpart here.
        return (flags & B_WATCH_MOUNT) != 0 ? B_NOT_SUPPORTED : B_BAD_VALUE;
    }
    if (!target.IsValid())
        return B_BAD_VALUE;
    return BPrivate::NodeMonitorService::Default()->Watch(*node, flags, target);
}

status_t watch_node(const node_ref* node, uint32 flags, const BHandler* handler,
                    const BLooper* looper) {
    status_t status = B_OK;
    BMessenger target(handler, looper, &status);
    if (status != B_OK)
        return status;
    return watch_node(node, flags, target);
}

status_t stop_watching(BMessenger target) {
    // A target whose looper is gone can still be forgotten.
    return BPrivate::NodeMonitorService::Default()->StopWatching(target);
}

status_t stop_watching(const BHandler* handler, const BLooper* looper) {
    status_t status = B_OK;
    BMessenger target(handler, looper, &status);
    if (status != B_OK)
        return status;
    return stop_watching(target);
}
