// BMessenger: the address of a handler in a looper, usable from any thread.
//
// A messenger holds tokens, never pointers: the looper's port token, the handler's
// token (or the preferred-handler token) and the team. Tokens are looked up in a
// process-wide registry each time the messenger is used, so a messenger to a looper
// that has gone away is merely invalid, never dangling. The object is trivially
// copyable and 24 bytes long, because BMessage stores messengers as raw bytes.
#ifndef _MESSENGER_H
#define _MESSENGER_H

#include <OS.h>
#include <SupportDefs.h>

class BHandler;
class BLooper;
class BMessage;

namespace BPrivate {
class MessengerPrivate;
}

class BMessenger {
public:
    // An invalid messenger.
    constexpr BMessenger() : fPort(-1), fHandlerToken(-1), fTeam(-1), _reserved{0, 0, 0} {}
    // A messenger to the running application with that signature. Only this
    // process's own application (be_app) can be reached.
    BMessenger(const char* signature, team_id team = -1, status_t* result = NULL);
    // handler alone: its looper; looper alone: the looper's preferred handler; both:
    // the handler, which must belong to the looper (B_MISMATCHED_VALUES otherwise).
    BMessenger(const BHandler* handler, const BLooper* looper = NULL, status_t* result = NULL);
    BMessenger(const BMessenger& other) = default;
    ~BMessenger() = default;

    BMessenger& operator=(const BMessenger& other) = default;
    bool operator==(const BMessenger& other) const;

    // Target
    bool IsTargetLocal() const;
    // The handler (NULL for the preferred handler) and its looper. The pointers are
    // only safe to use while the target cannot go away (its looper locked).
    BHandler* Target(BLooper** looper) const;
    bool LockTarget() const;
    status_t LockTargetWithTimeout(bigtime_t timeout) const;

    // Sending. The message is copied; the caller keeps it. Replies to an
    // asynchronous message go to replyTo, or to be_app when replyTo is NULL.
    status_t SendMessage(uint32 command, BHandler* replyTo = NULL) const;
    status_t SendMessage(BMessage* message, BHandler* replyTo = NULL,
                         bigtime_t timeout = B_INFINITE_TIMEOUT) const;
    status_t SendMessage(BMessage* message, BMessenger replyTo,
                         bigtime_t timeout = B_INFINITE_TIMEOUT) const;
    // Synchronous: waits for the reply and copies it into *reply. A looper cannot
    // wait for itself: sending from the target looper's own thread gives
    // B_MESSAGE_TO_SELF.
    status_t SendMessage(uint32 command, BMessage* reply) const;
    status_t SendMessage(BMessage* message, BMessage* reply,
                         bigtime_t deliveryTimeout = B_INFINITE_TIMEOUT,
                         bigtime_t replyTimeout = B_INFINITE_TIMEOUT) const;

    // True while the target looper (or reply slot) still exists.
    bool IsValid() const;
    team_id Team() const;

private:
    friend class BPrivate::MessengerPrivate;
    friend bool operator<(const BMessenger& a, const BMessenger& b);
    friend bool operator!=(const BMessenger& a, const BMessenger& b);

    port_id fPort;
    int32 fHandlerToken;
    team_id fTeam;
    int32 _reserved[3];
};

bool operator<(const BMessenger& a, const BMessenger& b);
bool operator!=(const BMessenger& a, const BMessenger& b);

#endif // _MESSENGER_H
