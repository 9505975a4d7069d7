// BLooper: a thread with a message queue and a lock.
//
// A looper runs its own thread once Run() is called; the thread takes the looper's
// lock around the dispatch of every message. The lock is recursive and owned by one
// thread at a time; a new looper is locked by the thread that constructed it until
// Run() unlocks it.
#ifndef _LOOPER_H
#define _LOOPER_H

#include <Handler.h>
#include <OS.h>
#include <SupportDefs.h>

class BApplication;
class BList;
class BMessage;
class BMessageFilter;
class BMessageQueue;

namespace BPrivate {
class LooperPrivate;
}

#define B_LOOPER_PORT_DEFAULT_CAPACITY 200

class BLooper : public BHandler {
public:
    // portCapacity bounds the number of messages waiting in the queue; posting to
    // a full queue fails with B_WOULD_BLOCK instead of blocking.
    BLooper(const char* name = NULL, int32 priority = B_NORMAL_PRIORITY,
            int32 portCapacity = B_LOOPER_PORT_DEFAULT_CAPACITY);
    // Never delete a running looper: Quit() it.
    virtual ~BLooper();

    // Archiving: the handler's fields plus "_prio" and "_port_cap".
    BLooper(BMessage* data);
    static BArchivable* Instantiate(BMessage* data);
    virtual status_t Archive(BMessage* data, bool deep = true) const;

    // Posting. The message is copied; the caller keeps it. Without a handler
    // argument the message goes to the looper itself; with a NULL handler, to the
    // preferred handler. A handler of another looper gives B_MISMATCHED_VALUES.
    status_t PostMessage(uint32 command);
    status_t PostMessage(BMessage* message);
    status_t PostMessage(uint32 command, BHandler* handler, BHandler* replyTo = NULL);
    status_t PostMessage(BMessage* message, BHandler* handler, BHandler* replyTo = NULL);

    // B_QUIT_REQUESTED to the looper itself asks QuitRequested() and quits when it
    // agrees; everything else goes to the handler's MessageReceived().
    virtual void DispatchMessage(BMessage* message, BHandler* handler);
    virtual void MessageReceived(BMessage* message);
    // The message being dispatched; the looper deletes it afterwards unless it was
    // detached, in which case the caller owns it.
    BMessage* CurrentMessage() const;
    BMessage* DetachCurrentMessage();
    // The queue of messages waiting to be dispatched. Messages posted while one is
    // being handled appear in it at once, so the looper's thread can look for them
    // (and remove them) before it returns.
    BMessageQueue* MessageQueue() const;
    bool IsMessageWaiting() const;

    // Handlers; the looper must be locked. The looper never deletes its handlers.
    void AddHandler(BHandler* handler);
    bool RemoveHandler(BHandler* handler);
    int32 CountHandlers() const;
    BHandler* HandlerAt(int32 index) const;
    int32 IndexOf(BHandler* handler) const;

    BHandler* PreferredHandler() const;
    void SetPreferredHandler(BHandler* handler);

    // Starts the looper's thread, named after the looper, and unlocks the looper.
    // Must be called once, by the thread that holds the lock.
    virtual thread_id Run();
    // From the looper's own thread the looper ends after the current message and
    // deletes itself. From another thread holding the lock: the messages already
    // queued are handled first, then the looper is deleted and Quit() returns. A
    // looper that never ran is deleted at once.
    virtual void Quit();
    virtual bool QuitRequested();

    // Locking. Lock() returns false (and LockWithTimeout() B_BAD_VALUE) when the
    // looper no longer exists, even through a stale pointer.
    bool Lock();
    void Unlock();
    bool IsLocked() const;
    status_t LockWithTimeout(bigtime_t timeout);
    thread_id LockingThread() const;
    int32 CountLocks() const;
    int32 CountLockRequests() const;
    sem_id Sem() const;

    thread_id Thread() const;
    team_id Team() const;
    static BLooper* LooperForThread(thread_id thread);

    // Scripting
    virtual BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier,
                                       int32 what, const char* property);
    virtual status_t GetSupportedSuites(BMessage* data);

    // Filters applied to every message before the target handler's own filters.
    // The looper owns them and deletes them; the looper must be locked.
    virtual void AddCommonFilter(BMessageFilter* filter);
    virtual bool RemoveCommonFilter(BMessageFilter* filter);
    virtual void SetCommonFilterList(BList* filters);
    BList* CommonFilterList() const;

    virtual status_t Perform(perform_code d, void* arg);

protected:
    // Takes the next message out of the queue, waiting up to the timeout; the
    // caller owns it. NULL when none came.
    BMessage* MessageFromPort(bigtime_t timeout = B_INFINITE_TIMEOUT);

private:
    friend class BApplication;
    friend class BHandler;
    friend class BPrivate::LooperPrivate;

    BLooper(const BLooper&);
    BLooper& operator=(const BLooper&);

    void _Init(const char* name, int32 priority, int32 portCapacity);
    static status_t _LoopThread(void* data);
    void _Loop();
    void _QuitRequested(BMessage* message);
    void _AssertLocked() const;
    void _UnlockFully();
    BHandler* _ResolveTarget(BMessage* message);
    BHandler* _TopLevelFilter(BMessage* message, BHandler* target);
    BHandler* _HandlerFilter(BMessage* message, BHandler* target);
    BHandler* _ApplyFilters(BList* list, BMessage* message, BHandler* target);
    status_t _PostMessage(BMessage* message, BHandler* handler, bool usePreferred,
                          BHandler* replyTo);

    struct Private;
    Private* fPrivate;
};

#endif // _LOOPER_H
