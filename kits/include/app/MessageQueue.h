// BMessageQueue: the ordered list of messages waiting in a looper.
//
// Every call is safe from any thread. Lock() keeps other threads out across several
// calls (for example a FindMessage() followed by RemoveMessage()); it is recursive and
// owned by the calling thread.
#ifndef _MESSAGE_QUEUE_H
#define _MESSAGE_QUEUE_H

#include <SupportDefs.h>

class BMessage;

namespace BPrivate {
class MessageQueuePrivate;
}

class BMessageQueue {
public:
    BMessageQueue();
    // Deletes the messages still queued.
    virtual ~BMessageQueue();

    // The queue takes ownership of the message and appends it.
    void AddMessage(BMessage* message);
    // Takes the message out of the queue without deleting it; the caller owns it.
    void RemoveMessage(BMessage* message);
    // Takes out the first message; the caller owns it. NULL when the queue is empty.
    BMessage* NextMessage();
    bool IsNextMessage(const BMessage* message) const;

    // The messages stay in the queue (and owned by it).
    BMessage* FindMessage(int32 index) const;
    BMessage* FindMessage(uint32 what, int32 index = 0) const;

    int32 CountMessages() const;
    bool IsEmpty() const;

    bool Lock();
    void Unlock();
    bool IsLocked() const;

private:
    friend class BPrivate::MessageQueuePrivate;

    BMessageQueue(const BMessageQueue&);
    BMessageQueue& operator=(const BMessageQueue&);

    struct Private;
    Private* fPrivate;
};

#endif // _MESSAGE_QUEUE_H
