// The slot a synchronous BMessenger::SendMessage() waits on. It is registered as a
// port like a looper's queue, so the reply messenger the message carries is an
// ordinary messenger and BMessage::SendReply() needs no special case.
#ifndef _APP_REPLY_PORT_H
#define _APP_REPLY_PORT_H

#include "app/MessagePort.h"

#include <condition_variable>
#include <mutex>

namespace BPrivate {

class ReplyPort : public MessagePort {
public:
    ReplyPort(thread_id reader);
    ~ReplyPort() override;

    // Keeps the first reply; a second one gives B_DUPLICATE_REPLY, a reply after
    // Close() B_BAD_PORT_ID.
    status_t Deliver(BMessage* message, bigtime_t timeout) override;
    bool IsOpen() const override;
    thread_id ReaderThread() const override { return fReader; }

    // The reply (owned by the caller), or NULL when none came in time.
    BMessage* WaitForReply(bigtime_t timeout);
    void Close();

private:
    const thread_id fReader;
    mutable std::mutex fMutex;
    std::condition_variable fArrived;
    BMessage* fReply;
    bool fReplied;
    bool fClosed;
};

} // namespace BPrivate

#endif // _APP_REPLY_PORT_H
