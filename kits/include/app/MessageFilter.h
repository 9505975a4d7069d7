// BMessageFilter: looks at a message before its handler does, and may drop it or
// send it to another handler.
#ifndef _MESSAGE_FILTER_H
#define _MESSAGE_FILTER_H

#include <Handler.h>
#include <SupportDefs.h>

class BLooper;
class BMessage;
class BMessageFilter;

enum filter_result {
    B_SKIP_MESSAGE,
    B_DISPATCH_MESSAGE,
};

typedef filter_result (*filter_hook)(BMessage* message, BHandler** target, BMessageFilter* filter);

enum message_delivery {
    B_ANY_DELIVERY,
    B_DROPPED_DELIVERY,
    B_PROGRAMMED_DELIVERY,
};

enum message_source {
    B_ANY_SOURCE,
    B_REMOTE_SOURCE,
    B_LOCAL_SOURCE,
};

class BMessageFilter {
public:
    // A filter for one command (what).
    BMessageFilter(uint32 what, filter_hook func = NULL);
    // A filter for every command.
    BMessageFilter(message_delivery delivery, message_source source, filter_hook func = NULL);
    BMessageFilter(message_delivery delivery, message_source source, uint32 what,
                   filter_hook func = NULL);
    // Copies take the conditions and the hook, not the looper.
    BMessageFilter(const BMessageFilter& filter);
    BMessageFilter(const BMessageFilter* filter);
    virtual ~BMessageFilter();

    BMessageFilter& operator=(const BMessageFilter& from);

    // Called when no hook function was given; the default dispatches. May change
    // *target to a handler of the same looper.
    virtual filter_result Filter(BMessage* message, BHandler** target);

    message_delivery MessageDelivery() const;
    message_source MessageSource() const;
    uint32 Command() const;
    bool FiltersAnyCommand() const;
    // The looper of the handler (or looper) the filter is installed in.
    BLooper* Looper() const;

private:
    friend class BLooper;
    friend class BHandler;

    void _SetLooper(BLooper* owner);
    filter_hook _FilterFunction() const;

    uint32 fCommand;
    bool fFiltersAny;
    message_delivery fDelivery;
    message_source fSource;
    BLooper* fLooper;
    filter_hook fFilterFunction;
    uint32 _reserved[3];
};

#endif // _MESSAGE_FILTER_H
