// BLocker: a recursive lock owned by one thread at a time.
#ifndef _LOCKER_H
#define _LOCKER_H

#include <OS.h>
#include <SupportDefs.h>

class BLocker {
public:
    BLocker();
    BLocker(const char* name);
    BLocker(bool benaphoreStyle);
    BLocker(const char* name, bool benaphoreStyle);
    virtual ~BLocker();

    status_t InitCheck() const;

    // Blocks until the lock is held by the calling thread; a thread that already
    // holds it just counts one more nesting level. False only if the locker could
    // not be set up.
    bool Lock();
    // Relative timeout in microseconds; B_INFINITE_TIMEOUT waits forever and 0 only
    // tries. B_OK, B_TIMED_OUT or B_NO_INIT.
    status_t LockWithTimeout(bigtime_t timeout);
    // Must be called by the thread that holds the lock, once per Lock().
    void Unlock();

    thread_id LockingThread() const;
    // True when the calling thread holds the lock.
    bool IsLocked() const;
    // Nesting depth of the current holder; 0 when free.
    int32 CountLocks() const;
    // Threads holding or waiting for the lock.
    int32 CountLockRequests() const;
    // There is no kernel semaphore behind this locker: always -1.
    sem_id Sem() const;

private:
    BLocker(const BLocker&);
    BLocker& operator=(const BLocker&);

    void _Init(const char* name);

    struct Private;
    Private* fPrivate;
};

#endif // _LOCKER_H
