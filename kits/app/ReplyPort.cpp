#include "app/ReplyPort.h"

#include "app/ThreadUtilities.h"

#include <Message.h>

namespace BPrivate {

ReplyPort::ReplyPort(thread_id reader)
    : fReader(reader), fReply(NULL), fReplied(false), fClosed(false) {}

ReplyPort::~ReplyPort() {
    delete fReply;
}

status_t ReplyPort::Deliver(BMessage* message, bigtime_t timeout) {
    std::lock_guard<std::mutex> locker(fMutex);
    if (fClosed)
        return B_BAD_PORT_ID;
    if (fReplied)
        return B_DUPLICATE_REPLY;
    fReply = message;
    fReplied = true;
    fArrived.notify_all();
    return B_OK;
}

bool ReplyPort::IsOpen() const {
    std::lock_guard<std::mutex> locker(fMutex);
    return !fClosed;
}

BMessage* ReplyPort::WaitForReply(bigtime_t timeout) {
    std::unique_lock<std::mutex> locker(fMutex);
    auto arrived = [&] { return fReplied; };
    if (is_infinite_timeout(timeout))
        fArrived.wait(locker, arrived);
    else if (!fArrived.wait_until(locker, deadline_after(timeout), arrived))
        return NULL;
    BMessage* reply = fReply;
    fReply = NULL;
    return reply;
}

void ReplyPort::Close() {
    BMessage* reply;
    {
        std::lock_guard<std::mutex> locker(fMutex);
        fClosed = true;
        reply = fReply;
        fReply = NULL;
    }
    delete reply;
}

} // namespace BPrivate
