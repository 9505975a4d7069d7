// Kit-private access to a looper, for the loopers the other kits build on it
// (windows).
#ifndef _APP_LOOPER_PRIVATE_H
#define _APP_LOOPER_PRIVATE_H

#include <Looper.h>

namespace BPrivate {

class LooperPrivate {
public:
    explicit LooperPrivate(BLooper* looper) : fLooper(looper) {}

    // Called in the looper's thread, with the looper locked, each time the queue has
    // been emptied and the thread is about to wait for the next message: the place
    // for work that should happen once per burst of messages (drawing).
    typedef void (*IdleHook)(BLooper* looper);
    void SetIdleHook(IdleHook hook);

    // Called in the sending thread each time a message is about to join the queue
    // (not for the looper's own quit message), before any other thread can see it
    // there: lets the display server count messages that loopers post to each
    // other while it checks whether everything is idle.
    typedef void (*DeliveryHook)(const BMessage* message);
    void SetDeliveryHook(DeliveryHook hook);

    // Called in whichever thread gives up the last nesting level of the lock, just
    // before it does, with the looper still locked: a window publishes there the
    // frame changes made under the lock, so that they reach the screen together.
    // The hook may lock and unlock the looper again; NULL removes it.
    typedef void (*UnlockHook)(BLooper* looper);
    void SetUnlockHook(UnlockHook hook);

    // Run() has been called: the looper has (or had) a thread.
    bool IsRunning() const;
    // The port token that messengers to this looper carry.
    int32 PortToken() const;

    // Gives up every nesting level of the lock held by the calling thread, so that
    // another thread can take it while this one waits; returns how many there were.
    int32 UnlockFully();
    // Takes the lock back with that many nesting levels; false when the looper is
    // going away.
    bool RestoreLock(int32 count);

    // Ends the loop after the current message (from the looper's own thread).
    void SetTerminating();
    // Queues the private quit message past the queue's capacity; the loop ends when
    // it gets there.
    status_t PostQuitMessage();

    // Runs the message loop in the calling thread, which must hold the lock (the
    // application's Run()). Returns once the looper quits, still locked.
    void RunInCallingThread();

private:
    BLooper* fLooper;
};

} // namespace BPrivate

#endif // _APP_LOOPER_PRIVATE_H
