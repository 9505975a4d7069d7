// What a BMessage holds besides its what code: the fields, and the delivery data the
// messenger and the looper attach on the way (never flattened).
#ifndef _APP_MESSAGE_INTERNALS_H
#define _APP_MESSAGE_INTERNALS_H

#include <Message.h>
#include <Messenger.h>

#include <memory>

#include "app/MessageBody.h"
#include "app/MessagePrivate.h"

struct BMessage::Private {
    BPrivate::MessageBody body;

    int32 target = BPrivate::MessagePrivate::kNoTarget;
    bool usePreferredTarget = false;
    BMessenger replyTo;
    bool replyRequired = false;
    bool replyDone = false;
    bool isReply = false;
    bool wasDelivered = false;
    bool wasDropped = false;
    std::unique_ptr<BMessage> previous;

    Private() = default;

    // A copy keeps where replies go and how it arrived, but it is nobody's pending
    // reply: only the message the sender waits on answers B_NO_REPLY when deleted.
    Private(const Private& other)
        : body(other.body), target(other.target), usePreferredTarget(other.usePreferredTarget),
          replyTo(other.replyTo), isReply(other.isReply), wasDelivered(other.wasDelivered),
          wasDropped(other.wasDropped),
          previous(other.previous ? new BMessage(*other.previous) : NULL) {}

    void ClearDelivery() {
        target = BPrivate::MessagePrivate::kNoTarget;
        usePreferredTarget = false;
        replyTo = BMessenger();
        replyRequired = false;
        replyDone = false;
        isReply = false;
        wasDelivered = false;
        wasDropped = false;
        previous.reset();
    }
};

#endif // _APP_MESSAGE_INTERNALS_H
