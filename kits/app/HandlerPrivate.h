// Kit-private access to a handler's token, the handler's name in the TokenSpace.
#ifndef _APP_HANDLER_PRIVATE_H
#define _APP_HANDLER_PRIVATE_H

#include <Handler.h>

namespace BPrivate {

class HandlerPrivate {
public:
    explicit HandlerPrivate(const BHandler* handler) : fHandler(handler) {}

    int32 Token() const;

private:
    const BHandler* fHandler;
};

} // namespace BPrivate

#endif // _APP_HANDLER_PRIVATE_H
