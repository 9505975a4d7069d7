// Kit-private side of BMessageQueue: what a looper needs beyond the public calls,
// namely waiting for a message, bounded appends (the port capacity) and closing the
// queue when the looper goes away. Callers keep the queue alive for the length of the
// call (they hold its looper's port), which lets these calls wake waiting threads
// after releasing the queue's mutex.
#ifndef _APP_MESSAGE_QUEUE_PRIVATE_H
#define _APP_MESSAGE_QUEUE_PRIVATE_H

#include <MessageQueue.h>
#include <OS.h>

namespace BPrivate {

class MessageQueuePrivate {
public:
    explicit MessageQueuePrivate(BMessageQueue* queue);

    // Appends the message (taking ownership on B_OK) once fewer than capacity
    // messages wait; capacity <= 0 means no bound. Waits up to the timeout for
    // room: B_WOULD_BLOCK when the timeout is 0, B_TIMED_OUT after a wait,
    // B_BAD_PORT_ID once the queue is closed.
    status_t AddMessage(BMessage* message, int32 capacity, bigtime_t timeout);
    // Takes out the first message, waiting up to the timeout; NULL on timeout or
    // once the queue is closed.
    BMessage* WaitForMessage(bigtime_t timeout);
    // Later additions fail and waiting threads return. The queued messages stay
    // until the caller takes them out.
    void Close();
    bool IsClosed() const;

private:
    BMessageQueue* fQueue;
};

} // namespace BPrivate

#endif // _APP_MESSAGE_QUEUE_PRIVATE_H
