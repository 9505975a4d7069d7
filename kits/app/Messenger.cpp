// Messengers deliver by port token: the TokenSpace gives the port (a looper's queue or
// a reply slot) and the message copy goes into it with its target handler token and
// reply messenger written into its delivery data. The looper resolves the handler
// token in its own thread, when it dispatches.
#include <Messenger.h>

#include "app/AppPrivate.h"
#include "app/HandlerPrivate.h"
#include "app/LooperPort.h"
#include "app/MessagePrivate.h"
#include "app/MessengerPrivate.h"
#include "app/ReplyPort.h"
#include "app/ThreadUtilities.h"
#include "app/TokenSpace.h"

#include <Application.h>
#include <Handler.h>
#include <Looper.h>
#include <Message.h>

#include <memory>
#include <new>
#include <type_traits>

#include <strings.h>

using BPrivate::current_team;
using BPrivate::current_thread;
using BPrivate::kNullToken;
using BPrivate::kPreferredToken;
using BPrivate::MessagePort;
using BPrivate::MessagePrivate;
using BPrivate::MessengerPrivate;
using BPrivate::TokenSpace;

static_assert(sizeof(BMessenger) == 24, "BMessage stores messengers as 24 raw bytes");
static_assert(std::is_trivially_copyable_v<BMessenger>, "BMessage stores messengers as raw bytes");

namespace {

// Copies the message into the port with its delivery data; the caller keeps the
// original.
status_t deliver(const std::shared_ptr<MessagePort>& port, int32 handlerToken, BMessage* message,
                 const BMessenger& replyTo, bool replyRequired, bigtime_t timeout) {
    BMessage* copy = new (std::nothrow) BMessage(*message);
    if (copy == NULL)
        return B_NO_MEMORY;

    MessagePrivate delivery(copy);
    // A copy of a message that was answered already must not look answered.
    if (replyRequired && delivery.IsReplyDone())
        delivery.ClearDelivery();
    if (handlerToken == kPreferredToken)
        delivery.SetTarget(MessagePrivate::kNoTarget, true);
    else
        delivery.SetTarget(handlerToken, false);
    delivery.SetReplyTo(replyTo);
    delivery.SetReplyRequired(replyRequired);
    delivery.SetWasDelivered(true);

    status_t status = port->Deliver(copy, timeout);
    if (status != B_OK) {
        // Nobody waits for an answer to a message that never arrived.
        delivery.SetReplyRequired(false);
        delete copy;
    }
    return status;
}

} // namespace

// #pragma mark - Construction

BMessenger::BMessenger(const char* signature, team_id team, status_t* result) : BMessenger() {
    status_t status = B_OK;
    if (signature == NULL) {
        status = B_BAD_VALUE;
    } else if (team >= 0 && team != current_team()) {
        // Other processes have no messengers on Linux.
        status = B_BAD_TEAM_ID;
    } else {
        // Only this process's own application can be reached.
        const char* ownSignature = BPrivate::AppPrivate::Signature();
        BMessenger application = be_app_messenger;
        if (ownSignature == NULL || strcasecmp(ownSignature, signature) != 0 ||
            !application.IsValid()) {
            status = B_ERROR;
        } else {
            *this = application;
        }
    }
    if (result != NULL)
        *result = status;
}

BMessenger::BMessenger(const BHandler* handler, const BLooper* looper, status_t* result)
    : BMessenger() {
    int32 handlerToken = handler != NULL ? BPrivate::HandlerPrivate(handler).Token() : kNullToken;
    int32 port = -1;
    status_t status = TokenSpace::Default().ResolveTarget(handlerToken, looper, &port);
    if (status == B_OK) {
        fPort = port;
        fHandlerToken = handler != NULL ? handlerToken : kPreferredToken;
        fTeam = current_team();
    }
    if (result != NULL)
        *result = status;
}

bool BMessenger::operator==(const BMessenger& other) const {
    return fPort == other.fPort && fHandlerToken == other.fHandlerToken && fTeam == other.fTeam;
}

// #pragma mark - Target

bool BMessenger::IsTargetLocal() const {
    return fTeam >= 0 && fTeam == current_team();
}

BHandler* BMessenger::Target(BLooper** _looper) const {
    BHandler* handler = NULL;
    BLooper* looper = NULL;
    if (IsTargetLocal()) {
        looper = TokenSpace::Default().LooperForPort(fPort);
        if (looper != NULL && fHandlerToken >= 0)
            handler = TokenSpace::Default().HandlerFor(fHandlerToken, looper);
    }
    if (_looper != NULL)
        *_looper = looper;
    return handler;
}

bool BMessenger::LockTarget() const {
    return LockTargetWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t BMessenger::LockTargetWithTimeout(bigtime_t timeout) const {
    if (!IsTargetLocal())
        return B_BAD_VALUE;
    std::shared_ptr<BPrivate::LooperPort> port =
        std::dynamic_pointer_cast<BPrivate::LooperPort>(TokenSpace::Default().Port(fPort));
    if (port == nullptr)
        return B_BAD_VALUE;
    return port->Lock(timeout);
}

// #pragma mark - Sending

status_t BMessenger::SendMessage(uint32 command, BHandler* replyTo) const {
    BMessage message(command);
    return SendMessage(&message, replyTo);
}

status_t BMessenger::SendMessage(BMessage* message, BHandler* replyTo, bigtime_t timeout) const {
    if (message == NULL)
        return B_BAD_VALUE;
    // Replies to a message sent without a reply handler go to the application.
    BMessenger replyMessenger = replyTo != NULL ? BMessenger(replyTo) : be_app_messenger;
    return SendMessage(message, replyMessenger, timeout);
}

status_t BMessenger::SendMessage(BMessage* message, BMessenger replyTo, bigtime_t timeout) const {
    if (message == NULL)
        return B_BAD_VALUE;
    std::shared_ptr<MessagePort> port = TokenSpace::Default().Port(fPort);
    if (port == nullptr)
        return B_BAD_PORT_ID;
    return deliver(port, fHandlerToken, message, replyTo, false, timeout);
}

status_t BMessenger::SendMessage(uint32 command, BMessage* reply) const {
    BMessage message(command);
    return SendMessage(&message, reply);
}

status_t BMessenger::SendMessage(BMessage* message, BMessage* reply, bigtime_t deliveryTimeout,
                                 bigtime_t replyTimeout) const {
    if (message == NULL || reply == NULL)
        return B_BAD_VALUE;
    std::shared_ptr<MessagePort> port = TokenSpace::Default().Port(fPort);
    if (port == nullptr)
        return B_BAD_PORT_ID;
    thread_id self = current_thread();
    // The reply could only come from this very thread, which would be waiting.
    if (port->ReaderThread() == self)
        return B_MESSAGE_TO_SELF;

    auto replyPort = std::make_shared<BPrivate::ReplyPort>(self);
    int32 replyToken = TokenSpace::Default().AddPort(replyPort);
    BMessenger replyMessenger;
    MessengerPrivate(replyMessenger).SetTo(current_team(), replyToken, kNullToken);

    status_t status = deliver(port, fHandlerToken, message, replyMessenger, true, deliveryTimeout);
    if (status == B_OK) {
        BMessage* answer = replyPort->WaitForReply(replyTimeout);
        if (answer != NULL) {
            *reply = *answer;
            delete answer;
        } else {
            status = B_TIMED_OUT;
        }
    }
    TokenSpace::Default().RemovePort(replyToken);
    replyPort->Close();
    return status;
}

// #pragma mark - Validity

bool BMessenger::IsValid() const {
    std::shared_ptr<MessagePort> port = TokenSpace::Default().Port(fPort);
    return port != nullptr && port->IsOpen();
}

team_id BMessenger::Team() const {
    return fTeam;
}

bool operator<(const BMessenger& a, const BMessenger& b) {
    if (a.fPort != b.fPort)
        return a.fPort < b.fPort;
    if (a.fHandlerToken != b.fHandlerToken)
        return a.fHandlerToken < b.fHandlerToken;
    return a.fTeam < b.fTeam;
}

bool operator!=(const BMessenger& a, const BMessenger& b) {
    return !(a == b);
}

// #pragma mark - MessengerPrivate

namespace BPrivate {

bool MessengerPrivate::IsPreferredTarget() const {
    return fMessenger.fHandlerToken == kPreferredToken;
}

void MessengerPrivate::SetTo(team_id team, int32 port, int32 token) {
    fMessenger.fTeam = team;
    fMessenger.fPort = port;
    fMessenger.fHandlerToken = token;
}

} // namespace BPrivate
