#include <Handler.h>

#include "app/HandlerPrivate.h"
#include "app/TokenSpace.h"

#include <AppDefs.h>
#include <List.h>
#include <Looper.h>
#include <Message.h>
#include <MessageFilter.h>

#include <atomic>
#include <string>

using BPrivate::TokenSpace;

struct BHandler::Private {
    int32 token = -1;
    bool hasName = false;
    std::string name;
    // Read without the looper's lock by LockLooper() and by other threads.
    std::atomic<BLooper*> looper{NULL};
    BHandler* nextHandler = NULL;
    BList* filters = NULL;
};

BHandler::BHandler(const char* name) : BArchivable(), fPrivate(NULL) {
    _Init(name);
}

BHandler::BHandler(BMessage* data) : BArchivable(data), fPrivate(NULL) {
    const char* name = NULL;
    if (data != NULL)
        data->FindString("_name", &name);
    _Init(name);
}

BHandler::~BHandler() {
    if (LockLooper()) {
        BLooper* looper = Looper();
        looper->RemoveHandler(this);
        looper->Unlock();
    }
    if (fPrivate->filters != NULL) {
        for (int32 index = 0; index < fPrivate->filters->CountItems(); index++)
            delete static_cast<BMessageFilter*>(fPrivate->filters->ItemAtFast(index));
        delete fPrivate->filters;
    }
    TokenSpace::Default().RemoveHandlerToken(fPrivate->token);
    delete fPrivate;
}

void BHandler::_Init(const char* name) {
    fPrivate = new Private;
    SetName(name);
    fPrivate->token = TokenSpace::Default().NewHandlerToken(this);
}

BArchivable* BHandler::Instantiate(BMessage* data) {
    if (!validate_instantiation(data, "BHandler"))
        return NULL;
    return new BHandler(data);
}

status_t BHandler::Archive(BMessage* data, bool deep) const {
    status_t status = BArchivable::Archive(data, deep);
    if (status != B_OK)
        return status;
    if (!fPrivate->hasName)
        return B_OK;
    return data->AddString("_name", fPrivate->name.c_str());
}

void BHandler::MessageReceived(BMessage* message) {
    // Hook function
    BHandler* next = fPrivate->nextHandler;
    if (next != NULL) {
        // The next handler's own filters apply on the way.
        BLooper* looper = Looper();
        BHandler* target = looper != NULL ? looper->_HandlerFilter(message, next) : next;
        if (target != NULL && target != this)
            target->MessageReceived(message);
        return;
    }
    if (message != NULL && message->IsSourceWaiting() && message->what != B_MESSAGE_NOT_UNDERSTOOD)
        message->SendReply(B_MESSAGE_NOT_UNDERSTOOD);
}

BLooper* BHandler::Looper() const {
    return fPrivate->looper.load();
}

void BHandler::SetName(const char* name) {
    fPrivate->hasName = name != NULL;
    fPrivate->name = name != NULL ? name : "";
}

const char* BHandler::Name() const {
    return fPrivate->hasName ? fPrivate->name.c_str() : NULL;
}

void BHandler::SetNextHandler(BHandler* handler) {
    BLooper* looper = Looper();
    if (looper == NULL) {
        debugger("BHandler::SetNextHandler(): the handler must belong to a looper");
        return;
    }
    if (!looper->IsLocked()) {
        debugger("BHandler::SetNextHandler(): the handler's looper must be locked");
        return;
    }
    if (handler != NULL && handler->Looper() != looper) {
        debugger("BHandler::SetNextHandler(): both handlers must belong to the same looper");
        return;
    }
    fPrivate->nextHandler = handler;
}

BHandler* BHandler::NextHandler() const {
    return fPrivate->nextHandler;
}

// #pragma mark - Filters

void BHandler::AddFilter(BMessageFilter* filter) {
    if (filter == NULL)
        return;
    BLooper* looper = Looper();
    if (looper != NULL && !looper->IsLocked()) {
        debugger("BHandler::AddFilter(): the handler's looper must be locked");
        return;
    }
    if (filter->Looper() != NULL) {
        debugger("BHandler::AddFilter(): a message filter can only be installed once");
        return;
    }
    filter->_SetLooper(looper);
    if (fPrivate->filters == NULL)
        fPrivate->filters = new BList;
    fPrivate->filters->AddItem(filter);
}

bool BHandler::RemoveFilter(BMessageFilter* filter) {
    BLooper* looper = Looper();
    if (looper != NULL && !looper->IsLocked()) {
        debugger("BHandler::RemoveFilter(): the handler's looper must be locked");
        return false;
    }
    if (fPrivate->filters == NULL || !fPrivate->filters->RemoveItem(filter))
        return false;
    filter->_SetLooper(NULL);
    return true;
}

void BHandler::SetFilterList(BList* filters) {
    BLooper* looper = Looper();
    if (looper != NULL && !looper->IsLocked()) {
        debugger("BHandler::SetFilterList(): the handler's looper must be locked");
        return;
    }
    if (fPrivate->filters != NULL && fPrivate->filters != filters) {
        for (int32 index = 0; index < fPrivate->filters->CountItems(); index++)
            delete static_cast<BMessageFilter*>(fPrivate->filters->ItemAtFast(index));
        delete fPrivate->filters;
    }
    fPrivate->filters = filters;
    if (filters != NULL) {
        for (int32 index = 0; index < filters->CountItems(); index++)
            static_cast<BMessageFilter*>(filters->ItemAtFast(index))->_SetLooper(looper);
    }
}

BList* BHandler::FilterList() {
    return fPrivate->filters;
}

// #pragma mark - Locking the looper

bool BHandler::LockLooper() {
    BLooper* looper = Looper();
    if (looper == NULL || !looper->Lock())
        return false;
    // The handler may have moved while we waited for the lock.
    if (Looper() != looper) {
        looper->Unlock();
        return false;
    }
    return true;
}

status_t BHandler::LockLooperWithTimeout(bigtime_t timeout) {
    BLooper* looper = Looper();
    if (looper == NULL)
        return B_BAD_VALUE;
    status_t status = looper->LockWithTimeout(timeout);
    if (status != B_OK)
        return status;
    if (Looper() != looper) {
        looper->Unlock();
        return B_MISMATCHED_VALUES;
    }
    return B_OK;
}

void BHandler::UnlockLooper() {
    BLooper* looper = Looper();
    if (looper != NULL)
        looper->Unlock();
}

// #pragma mark - Scripting

BHandler* BHandler::ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier,
                                     int32 what, const char* property) {
    if (message != NULL) {
        BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
        reply.AddInt32("error", B_BAD_SCRIPT_SYNTAX);
        reply.AddString("message", "Didn't understand the specifier(s)");
        message->SendReply(&reply);
    }
    return NULL;
}

status_t BHandler::GetSupportedSuites(BMessage* data) {
    if (data == NULL)
        return B_BAD_VALUE;
    return data->AddString("suites", "suite/vnd.Be-handler");
}

status_t BHandler::Perform(perform_code d, void* arg) {
    return BArchivable::Perform(d, arg);
}

// #pragma mark - Private

void BHandler::_SetLooper(BLooper* looper) {
    fPrivate->looper.store(looper);
    TokenSpace::Default().SetHandlerLooper(fPrivate->token, looper);
    if (fPrivate->filters != NULL) {
        for (int32 index = 0; index < fPrivate->filters->CountItems(); index++)
            static_cast<BMessageFilter*>(fPrivate->filters->ItemAtFast(index))->_SetLooper(looper);
    }
}

void BHandler::_SetNextHandler(BHandler* handler) {
    fPrivate->nextHandler = handler;
}

namespace BPrivate {

int32 HandlerPrivate::Token() const {
    return fHandler->fPrivate->token;
}

} // namespace BPrivate
