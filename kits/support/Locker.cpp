// A recursive lock that knows its owner. The state is guarded by a plain mutex and
// waiters sleep on a condition variable, so LockWithTimeout() can give up at a
// deadline and the owner can be asked from any thread.
#include <Locker.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

namespace {

const bigtime_t kForever = 100LL * 365 * 24 * 3600 * 1000000;

} // namespace

struct BLocker::Private {
    std::mutex mutex;
    std::condition_variable released;
    // Written under `mutex`; read without it by LockingThread() and IsLocked(). A
    // thread only ever sees itself as the owner if it really is.
    std::atomic<thread_id> owner{-1};
    int32 count = 0;
    int32 requests = 0;
};

BLocker::BLocker() : fPrivate(NULL) {
    _Init(NULL);
}

BLocker::BLocker(const char* name) : fPrivate(NULL) {
    _Init(name);
}

BLocker::BLocker(bool benaphoreStyle) : fPrivate(NULL) {
    _Init(NULL);
}

BLocker::BLocker(const char* name, bool benaphoreStyle) : fPrivate(NULL) {
    _Init(name);
}

BLocker::~BLocker() {
    delete fPrivate;
}

void BLocker::_Init(const char* name) {
    // The name only served to label the kernel semaphore of a Be locker; there is
    // none here.
    fPrivate = new (std::nothrow) Private;
}

status_t BLocker::InitCheck() const {
    return fPrivate != NULL ? B_OK : B_NO_INIT;
}

bool BLocker::Lock() {
    return LockWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t BLocker::LockWithTimeout(bigtime_t timeout) {
    if (fPrivate == NULL)
        return B_NO_INIT;

    thread_id self = find_thread(NULL);
    std::unique_lock<std::mutex> locker(fPrivate->mutex);
    if (fPrivate->owner.load(std::memory_order_relaxed) == self) {
        fPrivate->count++;
        return B_OK;
    }

    fPrivate->requests++;
    auto isFree = [this] { return fPrivate->owner.load(std::memory_order_relaxed) < 0; };
    // Timeouts of centuries would overflow the clock's nanoseconds: they mean forever.
    if (timeout >= kForever) {
        fPrivate->released.wait(locker, isFree);
    } else {
        if (timeout < 0)
            timeout = 0;
        auto deadline = std::chrono::steady_clock::now() + std::chrono::microseconds(timeout);
        if (!fPrivate->released.wait_until(locker, deadline, isFree)) {
            fPrivate->requests--;
            return B_TIMED_OUT;
        }
    }

    fPrivate->owner.store(self, std::memory_order_relaxed);
    fPrivate->count = 1;
    return B_OK;
}

void BLocker::Unlock() {
    if (fPrivate == NULL)
        return;

    std::unique_lock<std::mutex> locker(fPrivate->mutex);
    if (fPrivate->owner.load(std::memory_order_relaxed) != find_thread(NULL))
        debugger("BLocker::Unlock() called by a thread that does not hold the lock");

    if (--fPrivate->count > 0)
        return;

    fPrivate->owner.store(-1, std::memory_order_relaxed);
    fPrivate->requests--;
    locker.unlock();
    fPrivate->released.notify_one();
}

thread_id BLocker::LockingThread() const {
    if (fPrivate == NULL)
        return -1;
    return fPrivate->owner.load(std::memory_order_relaxed);
}

bool BLocker::IsLocked() const {
    return fPrivate != NULL && fPrivate->owner.load(std::memory_order_relaxed) == find_thread(NULL);
}

int32 BLocker::CountLocks() const {
    if (fPrivate == NULL)
        return 0;
    std::lock_guard<std::mutex> locker(fPrivate->mutex);
    return fPrivate->count;
}

int32 BLocker::CountLockRequests() const {
    if (fPrivate == NULL)
        return 0;
    std::lock_guard<std::mutex> locker(fPrivate->mutex);
    return fPrivate->requests;
}

sem_id BLocker::Sem() const {
    return -1;
}
