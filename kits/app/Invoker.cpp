#include <Invoker.h>

#include <Handler.h>
#include <Looper.h>
#include <Message.h>

BInvoker::BInvoker()
    : fMessage(NULL), fReplyTo(NULL), fTimeout(B_INFINITE_TIMEOUT), fNotifyKind(0), _reserved{} {}

BInvoker::BInvoker(BMessage* message, const BHandler* handler, const BLooper* looper)
    : fMessage(message), fReplyTo(NULL), fTimeout(B_INFINITE_TIMEOUT), fNotifyKind(0), _reserved{} {
    SetTarget(handler, looper);
}

BInvoker::BInvoker(BMessage* message, BMessenger target)
    : fMessage(message), fMessenger(target), fReplyTo(NULL), fTimeout(B_INFINITE_TIMEOUT),
      fNotifyKind(0), _reserved{} {}

BInvoker::~BInvoker() {
    delete fMessage;
}

status_t BInvoker::SetMessage(BMessage* message) {
    if (message != fMessage) {
        delete fMessage;
        fMessage = message;
    }
    return B_OK;
}

BMessage* BInvoker::Message() const {
    return fMessage;
}

uint32 BInvoker::Command() const {
    return fMessage != NULL ? fMessage->what : 0;
}

status_t BInvoker::SetTarget(const BHandler* handler, const BLooper* looper) {
    status_t status = B_OK;
    fMessenger = BMessenger(handler, looper, &status);
    return status;
}

status_t BInvoker::SetTarget(BMessenger messenger) {
    fMessenger = messenger;
    return B_OK;
}

bool BInvoker::IsTargetLocal() const {
    return fMessenger.IsTargetLocal();
}

BHandler* BInvoker::Target(BLooper** looper) const {
    return fMessenger.Target(looper);
}

BMessenger BInvoker::Messenger() const {
    return fMessenger;
}

status_t BInvoker::SetHandlerForReply(BHandler* handler) {
    fReplyTo = handler;
    return B_OK;
}

BHandler* BInvoker::HandlerForReply() const {
    return fReplyTo;
}

status_t BInvoker::Invoke(BMessage* message) {
    if (message == NULL)
        message = fMessage;
    if (message == NULL)
        return B_BAD_VALUE;
    return fMessenger.SendMessage(message, fReplyTo, fTimeout);
}

status_t BInvoker::InvokeNotify(BMessage* message, uint32 kind) {
    if (fNotifyKind != 0)
        return B_WOULD_BLOCK;
    BeginInvokeNotify(kind);
    status_t status = Invoke(message);
    EndInvokeNotify();
    return status;
}

status_t BInvoker::SetTimeout(bigtime_t timeout) {
    fTimeout = timeout;
    return B_OK;
}

bigtime_t BInvoker::Timeout() const {
    return fTimeout;
}

uint32 BInvoker::InvokeKind(bool* notify) {
    if (notify != NULL)
        *notify = fNotifyKind != 0;
    return fNotifyKind != 0 ? fNotifyKind : (uint32)B_CONTROL_INVOKED;
}

void BInvoker::BeginInvokeNotify(uint32 kind) {
    fNotifyKind = kind;
}

void BInvoker::EndInvokeNotify() {
    fNotifyKind = 0;
}
