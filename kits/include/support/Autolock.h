// BAutolock: holds a BLocker or a BLooper locked for the lifetime of a scope.
#ifndef _AUTOLOCK_H
#define _AUTOLOCK_H

#include <Locker.h>
#include <SupportDefs.h>

#ifdef __cplusplus
#include <Looper.h>
#endif

class BAutolock {
public:
    inline BAutolock(BLooper* looper);
    inline BAutolock(BLocker* locker);
    inline BAutolock(BLocker& locker);
    inline ~BAutolock();

    // Whether the lock was obtained (a looper can be gone, a locker broken).
    inline bool IsLocked();
    // Gives the lock back before the end of the scope.
    inline void Unlock();

private:
    BAutolock(const BAutolock&);
    BAutolock& operator=(const BAutolock&);

    BLocker* fLocker;
    BLooper* fLooper;
    bool fIsLocked;
};

inline BAutolock::BAutolock(BLooper* looper) : fLocker(NULL), fLooper(looper), fIsLocked(false) {
    fIsLocked = fLooper != NULL && fLooper->Lock();
}

inline BAutolock::BAutolock(BLocker* locker) : fLocker(locker), fLooper(NULL), fIsLocked(false) {
    fIsLocked = fLocker != NULL && fLocker->Lock();
}

inline BAutolock::BAutolock(BLocker& locker) : fLocker(&locker), fLooper(NULL), fIsLocked(false) {
    fIsLocked = fLocker->Lock();
}

inline BAutolock::~BAutolock() {
    Unlock();
}

inline bool BAutolock::IsLocked() {
    return fIsLocked;
}

inline void BAutolock::Unlock() {
    if (!fIsLocked)
        return;

    fIsLocked = false;
    if (fLooper != NULL)
        fLooper->Unlock();
    else
        fLocker->Unlock();
}

#endif // _AUTOLOCK_H
