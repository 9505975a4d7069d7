#include "app/MessagePrivate.h"

#include "app/MessageFlattening.h"
#include "app/MessageInternals.h"

namespace BPrivate {

MessagePrivate::MessagePrivate(BMessage* message) : fMessage(message) {
    if (message == NULL)
        debugger("MessagePrivate: NULL message");
}

void MessagePrivate::SetTarget(int32 handlerToken, bool usePreferred) {
    fMessage->fPrivate->target = handlerToken;
    fMessage->fPrivate->usePreferredTarget = usePreferred;
}

int32 MessagePrivate::GetTarget() const {
    return fMessage->fPrivate->target;
}

bool MessagePrivate::UsePreferredTarget() const {
    return fMessage->fPrivate->usePreferredTarget;
}

void MessagePrivate::SetReplyTo(const BMessenger& replyTo) {
    fMessage->fPrivate->replyTo = replyTo;
}

void MessagePrivate::SetReplyRequired(bool required) {
    fMessage->fPrivate->replyRequired = required;
}

bool MessagePrivate::IsReplyRequired() const {
    return fMessage->fPrivate->replyRequired;
}

bool MessagePrivate::IsReplyDone() const {
    return fMessage->fPrivate->replyDone;
}

void MessagePrivate::SetReplyDone() {
    fMessage->fPrivate->replyDone = true;
}

void MessagePrivate::SetIsReply(bool isReply) {
    fMessage->fPrivate->isReply = isReply;
}

void MessagePrivate::SetWasDelivered(bool delivered) {
    fMessage->fPrivate->wasDelivered = delivered;
}

void MessagePrivate::SetWasDropped(bool dropped) {
    fMessage->fPrivate->wasDropped = dropped;
}

void MessagePrivate::SetPrevious(BMessage* previous) {
    if (previous == fMessage)
        debugger("MessagePrivate::SetPrevious: a message cannot answer itself");
    fMessage->fPrivate->previous.reset(previous);
}

void MessagePrivate::ClearDelivery() {
    fMessage->fPrivate->ClearDelivery();
}

status_t MessagePrivate::Unflatten(const void* data, size_t size) {
    BMessage::Private& internals = *fMessage->fPrivate;
    internals.body.MakeEmpty();
    if (data == NULL)
        return B_BAD_VALUE;
    uint32 what;
    status_t status =
        unflatten_message(static_cast<const uint8*>(data), size, &what, &internals.body);
    if (status != B_OK) {
        internals.body.MakeEmpty();
        return status;
    }
    fMessage->what = what;
    return B_OK;
}

} // namespace BPrivate
