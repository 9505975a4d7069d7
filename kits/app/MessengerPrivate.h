// Kit-private access to a messenger's tokens.
#ifndef _APP_MESSENGER_PRIVATE_H
#define _APP_MESSENGER_PRIVATE_H

#include <Messenger.h>

namespace BPrivate {

class MessengerPrivate {
public:
    explicit MessengerPrivate(BMessenger& messenger) : fMessenger(messenger) {}

    int32 Port() const { return fMessenger.fPort; }
    // kPreferredToken for the preferred handler.
    int32 Token() const { return fMessenger.fHandlerToken; }
    team_id Team() const { return fMessenger.fTeam; }
    bool IsPreferredTarget() const;

    void SetTo(team_id team, int32 port, int32 token);

private:
    BMessenger& fMessenger;
};

} // namespace BPrivate

#endif // _APP_MESSENGER_PRIVATE_H
