#include <MessageFilter.h>

BMessageFilter::BMessageFilter(uint32 what, filter_hook func)
    : fCommand(what), fFiltersAny(false), fDelivery(B_ANY_DELIVERY), fSource(B_ANY_SOURCE),
      fLooper(NULL), fFilterFunction(func), _reserved{} {}

BMessageFilter::BMessageFilter(message_delivery delivery, message_source source, filter_hook func)
    : fCommand(0), fFiltersAny(true), fDelivery(delivery), fSource(source), fLooper(NULL),
      fFilterFunction(func), _reserved{} {}

BMessageFilter::BMessageFilter(message_delivery delivery, message_source source, uint32 what,
                               filter_hook func)
    : fCommand(what), fFiltersAny(false), fDelivery(delivery), fSource(source), fLooper(NULL),
      fFilterFunction(func), _reserved{} {}

BMessageFilter::BMessageFilter(const BMessageFilter& filter)
    : fCommand(filter.fCommand), fFiltersAny(filter.fFiltersAny), fDelivery(filter.fDelivery),
      fSource(filter.fSource), fLooper(NULL), fFilterFunction(filter.fFilterFunction), _reserved{} {
}

BMessageFilter::BMessageFilter(const BMessageFilter* filter)
    : fCommand(0), fFiltersAny(true), fDelivery(B_ANY_DELIVERY), fSource(B_ANY_SOURCE),
      fLooper(NULL), fFilterFunction(NULL), _reserved{} {
    if (filter != NULL)
        *this = *filter;
}

BMessageFilter::~BMessageFilter() {}

BMessageFilter& BMessageFilter::operator=(const BMessageFilter& from) {
    // The looper stays: it belongs to where this filter is installed.
    fCommand = from.fCommand;
    fFiltersAny = from.fFiltersAny;
    fDelivery = from.fDelivery;
    fSource = from.fSource;
    fFilterFunction = from.fFilterFunction;
    return *this;
}

filter_result BMessageFilter::Filter(BMessage* message, BHandler** target) {
    // Hook function
    return B_DISPATCH_MESSAGE;
}

message_delivery BMessageFilter::MessageDelivery() const {
    return fDelivery;
}

message_source BMessageFilter::MessageSource() const {
    return fSource;
}

uint32 BMessageFilter::Command() const {
    return fCommand;
}

bool BMessageFilter::FiltersAnyCommand() const {
    return fFiltersAny;
}

BLooper* BMessageFilter::Looper() const {
    return fLooper;
}

void BMessageFilter::_SetLooper(BLooper* owner) {
    fLooper = owner;
}

filter_hook BMessageFilter::_FilterFunction() const {
    return fFilterFunction;
}
