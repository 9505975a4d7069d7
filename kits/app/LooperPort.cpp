#include "app/LooperPort.h"

#include "app/MessageQueuePrivate.h"
#include "app/ThreadUtilities.h"

#include <Message.h>
#include <MessageQueue.h>

namespace BPrivate {

LooperPort::LooperPort(int32 capacity)
    : fQueue(new BMessageQueue), fCapacity(capacity), fDeliveryHook(NULL), fUnlockHook(NULL),
      fUnlockLooper(NULL), fThread(-1), fOwner(-1), fOwnerCount(0), fWaiters(0), fHandOff(false),
      fClosed(false), fFinished(false) {}

LooperPort::~LooperPort() {
    delete fQueue;
}

status_t LooperPort::Deliver(BMessage* message, bigtime_t timeout) {
    if (current_thread() == fThread.load())
        timeout = 0;
    if (DeliveryHook hook = fDeliveryHook.load())
        hook(message);
    return MessageQueuePrivate(fQueue).AddMessage(message, fCapacity, timeout);
}

status_t LooperPort::DeliverUrgently(BMessage* message) {
    return MessageQueuePrivate(fQueue).AddMessage(message, 0, 0);
}

bool LooperPort::IsOpen() const {
    return !MessageQueuePrivate(fQueue).IsClosed();
}

void LooperPort::SetUnlockHook(UnlockHook hook, BLooper* looper) {
    fUnlockLooper.store(looper);
    fUnlockHook.store(hook);
}

// #pragma mark - Lock

status_t LooperPort::Lock(bigtime_t timeout) {
    thread_id self = current_thread();
    if (fOwner.load() == self) {
        fOwnerCount.fetch_add(1);
        return B_OK;
    }

    std::unique_lock<std::mutex> locker(fLockMutex);
    if (fClosed)
        return B_BAD_VALUE;
    if (fOwner.load() == -1 && !fHandOff) {
        fOwner.store(self);
        fOwnerCount.store(1);
        return B_OK;
    }
    if (timeout <= 0)
        return B_TIMED_OUT;

    fWaiters++;
    auto canTake = [&] { return fClosed || fOwner.load() == -1; };
    bool taken = true;
    if (is_infinite_timeout(timeout))
        fLockCondition.wait(locker, canTake);
    else
        taken = fLockCondition.wait_until(locker, deadline_after(timeout), canTake);
    fWaiters--;
    if (fClosed)
        return B_BAD_VALUE;
    if (!taken)
        return B_TIMED_OUT;
    fHandOff = false;
    fOwner.store(self);
    fOwnerCount.store(1);
    return B_OK;
}

void LooperPort::Unlock() {
    if (fOwner.load() != current_thread()) {
        debugger("BLooper::Unlock(): the looper is not locked by the calling thread");
        return;
    }
    if (fOwnerCount.load() == 1) {
        if (UnlockHook hook = fUnlockHook.load())
            hook(fUnlockLooper.load());
    }
    if (fOwnerCount.fetch_sub(1) > 1)
        return;

    // Notified with the mutex held: once it is released the looper may be gone
    // (its thread takes the lock, quits and deletes it), so nothing is touched after.
    std::lock_guard<std::mutex> locker(fLockMutex);
    fOwner.store(-1);
    fHandOff = fWaiters > 0;
    if (fHandOff)
        fLockCondition.notify_one();
}

int32 LooperPort::UnlockFully() {
    if (fOwner.load() != current_thread())
        return 0;
    int32 count = fOwnerCount.exchange(1);
    Unlock();
    return count;
}

status_t LooperPort::RestoreLock(int32 count) {
    if (count <= 0)
        return B_OK;
    status_t status = Lock(B_INFINITE_TIMEOUT);
    if (status != B_OK)
        return status;
    fOwnerCount.fetch_add(count - 1);
    return B_OK;
}

bool LooperPort::IsLockedByCurrentThread() const {
    return fOwner.load() == current_thread();
}

int32 LooperPort::CountLocks() const {
    return fOwner.load() == -1 ? 0 : fOwnerCount.load();
}

int32 LooperPort::CountLockRequests() const {
    std::lock_guard<std::mutex> locker(fLockMutex);
    return fWaiters + (fOwner.load() != -1 ? 1 : 0);
}

// #pragma mark - End of life

void LooperPort::Close() {
    MessageQueuePrivate(fQueue).Close();
    {
        std::lock_guard<std::mutex> locker(fLockMutex);
        fClosed = true;
    }
    fLockCondition.notify_all();
}

void LooperPort::SetFinished() {
    {
        std::lock_guard<std::mutex> locker(fLockMutex);
        fFinished = true;
    }
    fFinishedCondition.notify_all();
}

void LooperPort::WaitFinished() {
    std::unique_lock<std::mutex> locker(fLockMutex);
    fFinishedCondition.wait(locker, [&] { return fFinished; });
}

bool LooperPort::IsFinished() const {
    std::lock_guard<std::mutex> locker(fLockMutex);
    return fFinished;
}

bool LooperPort::IsClosed() const {
    std::lock_guard<std::mutex> locker(fLockMutex);
    return fClosed;
}

} // namespace BPrivate
