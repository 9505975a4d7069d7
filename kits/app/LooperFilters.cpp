// The filter half of a looper's dispatch: running a handler's filters, and any
// filter list, over a message on its way to its handler.
#include <Looper.h>

#include <List.h>
#include <Message.h>
#include <MessageFilter.h>

BHandler* BLooper::_TopLevelFilter(BMessage* message, BHandler* target) {
    if (target == NULL)
        return NULL;
    target = _ApplyFilters(CommonFilterList(), message, target);
    if (target == NULL)
        return NULL;
    if (target->Looper() != this) {
        debugger("BLooper: a message filter chose a handler of another looper");
        return NULL;
    }
    return _HandlerFilter(message, target);
}

BHandler* BLooper::_HandlerFilter(BMessage* message, BHandler* target) {
    // A filter may hand the message to another handler, whose filters then run too.
    BHandler* previous = NULL;
    while (target != NULL && target != previous) {
        previous = target;
        target = _ApplyFilters(target->FilterList(), message, target);
        if (target != NULL && target->Looper() != this) {
            debugger("BLooper: a message filter chose a handler of another looper");
            return NULL;
        }
    }
    return target;
}

BHandler* BLooper::_ApplyFilters(BList* list, BMessage* message, BHandler* target) {
    if (list == NULL)
        return target;
    // Counted each round: a filter may remove filters while it runs.
    for (int32 index = 0; index < list->CountItems(); index++) {
        BMessageFilter* filter = static_cast<BMessageFilter*>(list->ItemAt(index));
        if (!filter->FiltersAnyCommand() && filter->Command() != message->what)
            continue;

        message_delivery delivery = filter->MessageDelivery();
        bool dropped = message->WasDropped();
        if ((delivery == B_DROPPED_DELIVERY && !dropped) ||
            (delivery == B_PROGRAMMED_DELIVERY && dropped)) {
            continue;
        }

        message_source source = filter->MessageSource();
        bool remote = message->IsSourceRemote();
        if ((source == B_REMOTE_SOURCE && !remote) || (source == B_LOCAL_SOURCE && remote))
            continue;

        filter_hook hook = filter->_FilterFunction();
        filter_result result =
            hook != NULL ? hook(message, &target, filter) : filter->Filter(message, &target);
        if (result == B_SKIP_MESSAGE)
            return NULL;
    }
    return target;
}
