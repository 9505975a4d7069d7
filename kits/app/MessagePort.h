// Where a messenger delivers: a looper's queue or a synchronous sender's reply slot.
// Ports are registered in the TokenSpace under a port token and shared, so a sender
// that found a port may still deliver (and fail cleanly) while its owner goes away.
#ifndef _APP_MESSAGE_PORT_H
#define _APP_MESSAGE_PORT_H

#include <OS.h>
#include <SupportDefs.h>

class BMessage;

namespace BPrivate {

class MessagePort {
public:
    virtual ~MessagePort() = default;

    // Set once by the TokenSpace when the port is registered.
    int32 Token() const { return fToken; }
    void SetToken(int32 token) { fToken = token; }

    // Takes ownership of the message on B_OK only. Waits up to the timeout for room.
    virtual status_t Deliver(BMessage* message, bigtime_t timeout) = 0;
    virtual bool IsOpen() const = 0;
    // The thread that reads the port, or -1.
    virtual thread_id ReaderThread() const = 0;

private:
    int32 fToken = -1;
};

} // namespace BPrivate

#endif // _APP_MESSAGE_PORT_H
