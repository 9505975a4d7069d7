// The queue keeps its own recursive, thread-owned lock (Lock()/Unlock()) built from a
// mutex and one condition variable. Every call takes the mutex and then waits until
// no other thread owns the queue; the condition variable also carries "a message
// arrived", "room was made" and "the queue closed" to the looper and to senders.
#include <MessageQueue.h>

#include "app/MessageQueuePrivate.h"
#include "app/ThreadUtilities.h"

#include <Message.h>

#include <condition_variable>
#include <deque>
#include <mutex>

using BPrivate::current_thread;

struct BMessageQueue::Private {
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::deque<BMessage*> messages;
    thread_id owner = -1;
    int32 ownerCount = 0;
    // Threads blocked on `changed`; nobody is woken when there are none.
    mutable int32 waiters = 0;
    bool closed = false;

    // Takes the mutex once no other thread owns the queue.
    std::unique_lock<std::mutex> Acquire() const {
        std::unique_lock<std::mutex> locker(mutex);
        thread_id self = current_thread();
        if (owner != -1 && owner != self) {
            waiters++;
            changed.wait(locker, [&] { return owner == -1 || owner == self; });
            waiters--;
        }
        return locker;
    }

    // Wakes the waiters, with the mutex still held: once it is released the queue
    // may be deleted by a thread that was waiting.
    void Notify(std::unique_lock<std::mutex>& locker) const {
        if (waiters > 0)
            changed.notify_all();
    }

    // Wakes the waiters after releasing the mutex, so that they do not wake only to
    // wait for it. For callers that keep the queue alive (through its looper's port).
    void NotifyUnlocked(std::unique_lock<std::mutex>& locker) const {
        bool anyone = waiters > 0;
        locker.unlock();
        if (anyone)
            changed.notify_all();
    }
};

BMessageQueue::BMessageQueue() : fPrivate(new Private) {}

BMessageQueue::~BMessageQueue() {
    std::deque<BMessage*> messages;
    {
        std::lock_guard<std::mutex> locker(fPrivate->mutex);
        messages.swap(fPrivate->messages);
    }
    for (BMessage* message : messages)
        delete message;
    delete fPrivate;
}

void BMessageQueue::AddMessage(BMessage* message) {
    if (message == NULL)
        return;
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    fPrivate->messages.push_back(message);
    fPrivate->Notify(locker);
}

void BMessageQueue::RemoveMessage(BMessage* message) {
    if (message == NULL)
        return;
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    for (auto position = fPrivate->messages.begin(); position != fPrivate->messages.end();
         ++position) {
        if (*position == message) {
            fPrivate->messages.erase(position);
            fPrivate->Notify(locker);
            return;
        }
    }
}

BMessage* BMessageQueue::NextMessage() {
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    if (fPrivate->messages.empty())
        return NULL;
    BMessage* message = fPrivate->messages.front();
    fPrivate->messages.pop_front();
    fPrivate->Notify(locker);
    return message;
}

bool BMessageQueue::IsNextMessage(const BMessage* message) const {
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    return !fPrivate->messages.empty() && fPrivate->messages.front() == message;
}

BMessage* BMessageQueue::FindMessage(int32 index) const {
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    if (index < 0 || index >= (int32)fPrivate->messages.size())
        return NULL;
    return fPrivate->messages[index];
}

BMessage* BMessageQueue::FindMessage(uint32 what, int32 index) const {
    if (index < 0)
        return NULL;
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    for (BMessage* message : fPrivate->messages) {
        if (message->what == what && index-- == 0)
            return message;
    }
    return NULL;
}

int32 BMessageQueue::CountMessages() const {
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    return (int32)fPrivate->messages.size();
}

bool BMessageQueue::IsEmpty() const {
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    return fPrivate->messages.empty();
}

bool BMessageQueue::Lock() {
    std::unique_lock<std::mutex> locker = fPrivate->Acquire();
    fPrivate->owner = current_thread();
    fPrivate->ownerCount++;
    return true;
}

void BMessageQueue::Unlock() {
    std::unique_lock<std::mutex> locker(fPrivate->mutex);
    if (fPrivate->owner != current_thread()) {
        debugger("BMessageQueue::Unlock(): the calling thread does not hold the lock");
        return;
    }
    if (--fPrivate->ownerCount > 0)
        return;
    fPrivate->owner = -1;
    fPrivate->Notify(locker);
}

bool BMessageQueue::IsLocked() const {
    std::lock_guard<std::mutex> locker(fPrivate->mutex);
    return fPrivate->owner == current_thread();
}

// #pragma mark - MessageQueuePrivate

namespace BPrivate {

MessageQueuePrivate::MessageQueuePrivate(BMessageQueue* queue) : fQueue(queue) {}

status_t MessageQueuePrivate::AddMessage(BMessage* message, int32 capacity, bigtime_t timeout) {
    BMessageQueue::Private& queue = *fQueue->fPrivate;
    std::unique_lock<std::mutex> locker(queue.mutex);
    thread_id self = current_thread();
    bool timed = !is_infinite_timeout(timeout);
    auto deadline = deadline_after(timed ? timeout : 0);
    for (;;) {
        if (queue.closed)
            return B_BAD_PORT_ID;
        // A thread holding the queue's lock is always waited for: it holds it only
        // for a few calls. The timeout is about room in a full queue.
        bool ownerFree = queue.owner == -1 || queue.owner == self;
        bool room = capacity <= 0 || (int32)queue.messages.size() < capacity;
        if (ownerFree && room)
            break;
        if (ownerFree && timeout <= 0)
            return B_WOULD_BLOCK;
        if (ownerFree && timed && std::chrono::steady_clock::now() >= deadline)
            return B_TIMED_OUT;
        queue.waiters++;
        if (ownerFree && timed)
            queue.changed.wait_until(locker, deadline);
        else
            queue.changed.wait(locker);
        queue.waiters--;
    }
    queue.messages.push_back(message);
    queue.NotifyUnlocked(locker);
    return B_OK;
}

BMessage* MessageQueuePrivate::WaitForMessage(bigtime_t timeout) {
    BMessageQueue::Private& queue = *fQueue->fPrivate;
    std::unique_lock<std::mutex> locker(queue.mutex);
    thread_id self = current_thread();
    auto ready = [&] {
        return queue.closed ||
               ((queue.owner == -1 || queue.owner == self) && !queue.messages.empty());
    };
    if (!ready()) {
        if (timeout <= 0)
            return NULL;
        queue.waiters++;
        bool arrived = true;
        if (is_infinite_timeout(timeout))
            queue.changed.wait(locker, ready);
        else
            arrived = queue.changed.wait_until(locker, deadline_after(timeout), ready);
        queue.waiters--;
        if (!arrived)
            return NULL;
    }
    if (queue.closed)
        return NULL;
    BMessage* message = queue.messages.front();
    queue.messages.pop_front();
    queue.NotifyUnlocked(locker);
    return message;
}

void MessageQueuePrivate::Close() {
    BMessageQueue::Private& queue = *fQueue->fPrivate;
    std::unique_lock<std::mutex> locker(queue.mutex);
    queue.closed = true;
    queue.NotifyUnlocked(locker);
}

bool MessageQueuePrivate::IsClosed() const {
    BMessageQueue::Private& queue = *fQueue->fPrivate;
    std::lock_guard<std::mutex> locker(queue.mutex);
    return queue.closed;
}

} // namespace BPrivate
