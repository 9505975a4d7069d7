// The part of a looper that must outlive it: its message queue, its lock and the
// state of its thread.
//
// Senders and lockers reach a looper through the TokenSpace and keep a shared
// reference to its port while they deliver or wait for the lock. When the looper goes
// away the port is closed: waiting lockers give up (Lock() returns false), deliveries
// fail, and whoever waits for the looper's end is woken. Only the thread that owns
// the lock at that moment can still lock it, recursively, while the looper's
// destructors run.
#ifndef _APP_LOOPER_PORT_H
#define _APP_LOOPER_PORT_H

#include "app/MessagePort.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

class BLooper;
class BMessageQueue;

namespace BPrivate {

class LooperPort : public MessagePort {
public:
    LooperPort(int32 capacity);
    ~LooperPort() override;

    BMessageQueue* Queue() const { return fQueue; }

    typedef void (*DeliveryHook)(const BMessage* message);
    void SetDeliveryHook(DeliveryHook hook) { fDeliveryHook.store(hook); }

    // Called by the thread giving up the last nesting level of the lock, just before
    // it does, the looper still locked (see LooperPrivate::SetUnlockHook).
    typedef void (*UnlockHook)(BLooper* looper);
    void SetUnlockHook(UnlockHook hook, BLooper* looper);

    // Delivery, bounded by the capacity. From the reader thread itself a full queue
    // never blocks (it would wait for itself).
    status_t Deliver(BMessage* message, bigtime_t timeout) override;
    // Delivery past the capacity, for the looper's own control messages.
    status_t DeliverUrgently(BMessage* message);
    bool IsOpen() const override;
    thread_id ReaderThread() const override { return fThread.load(); }
    void SetReaderThread(thread_id thread) { fThread.store(thread); }

    // The looper lock: recursive, owned by one thread. B_OK, B_TIMED_OUT (also for a
    // timeout of 0 on a busy lock) or B_BAD_VALUE once the port is closed.
    status_t Lock(bigtime_t timeout);
    void Unlock();
    // Releases every nesting level held by the calling thread; returns how many.
    int32 UnlockFully();
    // Takes the lock again with that many nesting levels (after UnlockFully()).
    status_t RestoreLock(int32 count);
    bool IsLockedByCurrentThread() const;
    thread_id LockingThread() const { return fOwner.load(); }
    int32 CountLocks() const;
    int32 CountLockRequests() const;

    // The looper is going away: lockers other than the owner fail from now on,
    // deliveries fail. Idempotent.
    void Close();
    // Signalled by the looper's thread once the looper is deleted.
    void SetFinished();
    void WaitFinished();
    bool IsFinished() const;
    // Closed: the looper's thread (if it has one) is ending it.
    bool IsClosed() const;

private:
    BMessageQueue* fQueue;
    int32 fCapacity;
    std::atomic<DeliveryHook> fDeliveryHook;
    std::atomic<UnlockHook> fUnlockHook;
    std::atomic<BLooper*> fUnlockLooper;
    std::atomic<thread_id> fThread;

    mutable std::mutex fLockMutex;
    std::condition_variable fLockCondition;
    std::atomic<thread_id> fOwner;
    // Touched only by the owning thread.
    std::atomic<int32> fOwnerCount;
    int32 fWaiters;
    // Set when the lock is released while threads wait: the next owner must be one
    // of them, so a thread that releases and re-locks at once cannot starve them.
    bool fHandOff;
    bool fClosed;
    std::condition_variable fFinishedCondition;
    bool fFinished;
};

} // namespace BPrivate

#endif // _APP_LOOPER_PORT_H
