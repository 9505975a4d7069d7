// BInvoker: a model message and a target, sent on demand (the base of controls and
// menu items).
#ifndef _INVOKER_H
#define _INVOKER_H

#include <AppDefs.h>
#include <Messenger.h>
#include <SupportDefs.h>

class BHandler;
class BLooper;
class BMessage;

class BInvoker {
public:
    BInvoker();
    // The invoker takes ownership of the message.
    BInvoker(BMessage* message, const BHandler* handler, const BLooper* looper = NULL);
    BInvoker(BMessage* message, BMessenger target);
    virtual ~BInvoker();

    // Takes ownership of the message and deletes the previous one.
    virtual status_t SetMessage(BMessage* message);
    BMessage* Message() const;
    uint32 Command() const;

    // handler alone: it must belong to a looper; looper alone: the looper's
    // preferred handler; both: the handler must belong to the looper. Otherwise
    // B_MISMATCHED_VALUES (B_BAD_VALUE when both are NULL) and the target is invalid.
    virtual status_t SetTarget(const BHandler* handler, const BLooper* looper = NULL);
    virtual status_t SetTarget(BMessenger messenger);
    bool IsTargetLocal() const;
    BHandler* Target(BLooper** looper = NULL) const;
    BMessenger Messenger() const;

    virtual status_t SetHandlerForReply(BHandler* handler);
    BHandler* HandlerForReply() const;

    // Sends a copy of message, or of the model message when message is NULL
    // (B_BAD_VALUE when there is neither).
    virtual status_t Invoke(BMessage* message = NULL);
    // Invoke() with the invoke kind set for the duration; B_WOULD_BLOCK while
    // another notification is in progress.
    status_t InvokeNotify(BMessage* message, uint32 kind = B_CONTROL_INVOKED);

    status_t SetTimeout(bigtime_t timeout);
    bigtime_t Timeout() const;

protected:
    uint32 InvokeKind(bool* notify = NULL);
    void BeginInvokeNotify(uint32 kind = B_CONTROL_INVOKED);
    void EndInvokeNotify();

private:
    BInvoker(const BInvoker&);
    BInvoker& operator=(const BInvoker&);

    BMessage* fMessage;
    BMessenger fMessenger;
    BHandler* fReplyTo;
    bigtime_t fTimeout;
    uint32 fNotifyKind;
    uint32 _reserved[3];
};

#endif // _INVOKER_H
