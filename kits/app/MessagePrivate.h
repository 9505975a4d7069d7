// Kit-private access to a BMessage's delivery data: the target handler token, the
// reply messenger and the reply bookkeeping that the messenger and the looper set
// before a message is queued and read back while it is dispatched. None of this is
// flattened. A copy of a message keeps its target, reply messenger, previous message
// and the delivered, dropped and is-reply marks, but never the reply-required and
// reply-done state: only the one message a sender waits on answers it.
#ifndef _APP_MESSAGE_PRIVATE_H
#define _APP_MESSAGE_PRIVATE_H

#include <Message.h>

class BMessenger;

namespace BPrivate {

class MessagePrivate {
public:
    explicit MessagePrivate(BMessage* message);

    // The handler token the message is addressed to; kNoTarget when none.
    // usePreferred sends it to the looper's preferred handler instead.
    void SetTarget(int32 handlerToken, bool usePreferred);
    int32 GetTarget() const;
    bool UsePreferredTarget() const;

    // Where SendReply() sends to; BMessage::ReturnAddress() returns it.
    void SetReplyTo(const BMessenger& replyTo);

    // The sender waits for a reply. Deleting a message whose sender is still
    // waiting sends B_NO_REPLY to the reply messenger, so a waiter never hangs.
    void SetReplyRequired(bool required);
    bool IsReplyRequired() const;
    bool IsReplyDone() const;
    void SetReplyDone();

    void SetIsReply(bool isReply);
    void SetWasDelivered(bool delivered);
    void SetWasDropped(bool dropped);

    // The message this one answers; the message takes ownership of previous.
    void SetPrevious(BMessage* previous);

    // Forgets target, reply messenger, reply flags, delivered/dropped state and
    // the previous message; what and the fields stay.
    void ClearDelivery();

    // Unflatten from a buffer of known length: never reads outside [data, data + size).
    status_t Unflatten(const void* data, size_t size);

    static const int32 kNoTarget = -1;

private:
    BMessage* fMessage;
};

} // namespace BPrivate

#endif // _APP_MESSAGE_PRIVATE_H
