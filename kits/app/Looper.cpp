// How a looper works.
//
// A looper is a handler with a queue, a lock and (after Run()) a thread. The queue
// and the lock live in a LooperPort shared with the TokenSpace, so that messengers,
// stale BLooper pointers and threads waiting for the lock can find out the looper is
// gone without touching freed memory.
//
// Posting copies the message into the queue with the target's handler token; there is
// no separate port in front of the queue, so a message is visible in MessageQueue() the
// moment it is posted. That is what lets a looper, busy with a long job, look ahead in
// its own queue for a message that cancels the job.
//
// The thread waits for a message, takes the lock, resolves the target handler, runs
// the common filters and the handler's filters, calls DispatchMessage() and deletes
// the message (unless it was detached), then releases the lock. Quit() from the thread
// itself only marks the looper: the loop ends after the current message, keeps the
// lock, closes the port and deletes the looper.
#include <Looper.h>

#include "app/HandlerPrivate.h"
#include "app/LooperPort.h"
#include "app/LooperPrivate.h"
#include "app/MessagePrivate.h"
#include "app/MessageQueuePrivate.h"
#include "app/MessengerPrivate.h"
#include "app/ThreadUtilities.h"
#include "app/TokenSpace.h"

#include <AppDefs.h>
#include <List.h>
#include <Message.h>
#include <MessageFilter.h>
#include <MessageQueue.h>
#include <Messenger.h>

#include <memory>
#include <vector>

#include <stdio.h>

using BPrivate::current_team;
using BPrivate::current_thread;
using BPrivate::kPreferredToken;
using BPrivate::LooperPort;
using BPrivate::MessagePrivate;
using BPrivate::MessageQueuePrivate;
using BPrivate::TokenSpace;

struct BLooper::Private {
    std::shared_ptr<LooperPort> port;
    int32 priority = B_NORMAL_PRIORITY;
    int32 capacity = B_LOOPER_PORT_DEFAULT_CAPACITY;
    std::vector<BHandler*> handlers;
    BHandler* preferred = NULL;
    BList* commonFilters = NULL;
    BMessage* currentMessage = NULL;
    // Both change only with the lock held.
    bool runCalled = false;
    bool terminating = false;
    BPrivate::LooperPrivate::IdleHook idleHook = NULL;
};

namespace {

void delete_filters(BList* filters) {
    if (filters == NULL)
        return;
    for (int32 index = 0; index < filters->CountItems(); index++)
        delete static_cast<BMessageFilter*>(filters->ItemAtFast(index));
    delete filters;
}

} // namespace

BLooper::BLooper(const char* name, int32 priority, int32 portCapacity)
    : BHandler(name), fPrivate(NULL) {
    _Init(name, priority, portCapacity);
}

BLooper::BLooper(BMessage* data) : BHandler(data), fPrivate(NULL) {
    int32 priority = B_NORMAL_PRIORITY;
    int32 capacity = B_LOOPER_PORT_DEFAULT_CAPACITY;
    if (data != NULL) {
        data->FindInt32("_prio", &priority);
        data->FindInt32("_port_cap", &capacity);
    }
    _Init(Name(), priority, capacity);
}

void BLooper::_Init(const char* name, int32 priority, int32 portCapacity) {
    fPrivate = new Private;
    fPrivate->priority = priority;
    fPrivate->capacity = portCapacity > 0 ? portCapacity : B_LOOPER_PORT_DEFAULT_CAPACITY;
    fPrivate->port = std::make_shared<LooperPort>(fPrivate->capacity);
    TokenSpace::Default().AddPort(fPrivate->port);
    // A new looper belongs to the thread that made it until Run().
    fPrivate->port->Lock(B_INFINITE_TIMEOUT);
    TokenSpace::Default().AddLooper(this, fPrivate->port);
    AddHandler(this);
}

BLooper::~BLooper() {
    if (fPrivate->runCalled && !fPrivate->terminating)
        debugger("BLooper: a running looper cannot be deleted; call Quit() instead");

    std::shared_ptr<LooperPort> port = fPrivate->port;
    port->Close();
    // Deleting a message nobody dispatched answers a waiting sender with B_NO_REPLY.
    while (BMessage* message = port->Queue()->NextMessage())
        delete message;

    delete_filters(fPrivate->commonFilters);
    fPrivate->commonFilters = NULL;

    for (BHandler* handler : fPrivate->handlers) {
        handler->_SetNextHandler(NULL);
        handler->_SetLooper(NULL);
    }
    fPrivate->handlers.clear();
    fPrivate->preferred = NULL;

    TokenSpace::Default().RemoveLooper(this);
    TokenSpace::Default().RemovePort(port->Token());
    delete fPrivate;
    fPrivate = NULL;
}

BArchivable* BLooper::Instantiate(BMessage* data) {
    if (!validate_instantiation(data, "BLooper"))
        return NULL;
    return new BLooper(data);
}

status_t BLooper::Archive(BMessage* data, bool deep) const {
    status_t status = BHandler::Archive(data, deep);
    if (status != B_OK)
        return status;
    status = data->AddInt32("_prio", fPrivate->priority);
    if (status != B_OK)
        return status;
    return data->AddInt32("_port_cap", fPrivate->capacity);
}

// #pragma mark - Posting

status_t BLooper::PostMessage(uint32 command) {
    BMessage message(command);
    return _PostMessage(&message, this, false, NULL);
}

status_t BLooper::PostMessage(BMessage* message) {
    return _PostMessage(message, this, false, NULL);
}

status_t BLooper::PostMessage(uint32 command, BHandler* handler, BHandler* replyTo) {
    BMessage message(command);
    return PostMessage(&message, handler, replyTo);
}

status_t BLooper::PostMessage(BMessage* message, BHandler* handler, BHandler* replyTo) {
    return _PostMessage(message, handler, handler == NULL, replyTo);
}

status_t BLooper::_PostMessage(BMessage* message, BHandler* handler, bool usePreferred,
                               BHandler* replyTo) {
    if (message == NULL)
        return B_BAD_VALUE;
    // Found by address first: posting to a looper that is gone fails cleanly.
    std::shared_ptr<LooperPort> port = TokenSpace::Default().PortOf(this);
    if (port == nullptr)
        return B_BAD_VALUE;

    int32 token = kPreferredToken;
    if (!usePreferred) {
        token = BPrivate::HandlerPrivate(handler).Token();
        if (TokenSpace::Default().LooperOfHandler(token) != this)
            return B_MISMATCHED_VALUES;
    }
    BMessenger target;
    BPrivate::MessengerPrivate(target).SetTo(current_team(), port->Token(), token);
    // Posting never blocks: a full queue fails at once.
    return target.SendMessage(message, replyTo, 0);
}

// #pragma mark - Dispatching

void BLooper::DispatchMessage(BMessage* message, BHandler* handler) {
    if (message == NULL || handler == NULL)
        return;
    if (message->what == B_QUIT_REQUESTED && handler == this) {
        _QuitRequested(message);
        return;
    }
    handler->MessageReceived(message);
}

void BLooper::MessageReceived(BMessage* message) {
    // Hook function
    BHandler::MessageReceived(message);
}

BMessage* BLooper::CurrentMessage() const {
    return fPrivate->currentMessage;
}

BMessage* BLooper::DetachCurrentMessage() {
    BMessage* message = fPrivate->currentMessage;
    fPrivate->currentMessage = NULL;
    return message;
}

BMessageQueue* BLooper::MessageQueue() const {
    return fPrivate->port->Queue();
}

bool BLooper::IsMessageWaiting() const {
    return !fPrivate->port->Queue()->IsEmpty();
}

BMessage* BLooper::MessageFromPort(bigtime_t timeout) {
    return MessageQueuePrivate(fPrivate->port->Queue()).WaitForMessage(timeout);
}

// #pragma mark - Handlers

void BLooper::AddHandler(BHandler* handler) {
    if (handler == NULL)
        return;
    _AssertLocked();
    if (handler->Looper() != NULL)
        return;
    fPrivate->handlers.push_back(handler);
    handler->_SetLooper(this);
    if (handler != this)
        handler->_SetNextHandler(this);
}

bool BLooper::RemoveHandler(BHandler* handler) {
    if (handler == NULL || handler == this)
        return false;
    _AssertLocked();
    if (handler->Looper() != this)
        return false;
    std::vector<BHandler*>& handlers = fPrivate->handlers;
    for (auto position = handlers.begin(); position != handlers.end(); ++position) {
        if (*position == handler) {
            handlers.erase(position);
            break;
        }
    }
    if (fPrivate->preferred == handler)
        fPrivate->preferred = NULL;
    handler->_SetNextHandler(NULL);
    handler->_SetLooper(NULL);
    return true;
}

int32 BLooper::CountHandlers() const {
    _AssertLocked();
    return (int32)fPrivate->handlers.size();
}

BHandler* BLooper::HandlerAt(int32 index) const {
    _AssertLocked();
    if (index < 0 || index >= (int32)fPrivate->handlers.size())
        return NULL;
    return fPrivate->handlers[index];
}

int32 BLooper::IndexOf(BHandler* handler) const {
    _AssertLocked();
    const std::vector<BHandler*>& handlers = fPrivate->handlers;
    for (size_t index = 0; index < handlers.size(); index++) {
        if (handlers[index] == handler)
            return (int32)index;
    }
    return -1;
}

BHandler* BLooper::PreferredHandler() const {
    return fPrivate->preferred;
}

void BLooper::SetPreferredHandler(BHandler* handler) {
    if (handler != NULL && handler->Looper() == this && IndexOf(handler) >= 0)
        fPrivate->preferred = handler;
    else
        fPrivate->preferred = NULL;
}

// #pragma mark - Running and quitting

thread_id BLooper::Run() {
    _AssertLocked();
    if (fPrivate->runCalled) {
        debugger("BLooper::Run(): Run() can only be called once");
        return B_ERROR;
    }
    const char* name = Name() != NULL ? Name() : "looper";
    thread_id thread = spawn_thread(_LoopThread, name, fPrivate->priority, this);
    if (thread < 0)
        return thread;
    fPrivate->runCalled = true;
    fPrivate->port->SetReaderThread(thread);
    resume_thread(thread);
    Unlock();
    return thread;
}

status_t BLooper::_LoopThread(void* data) {
    BLooper* looper = static_cast<BLooper*>(data);
    std::shared_ptr<LooperPort> port = looper->fPrivate->port;
    looper->_Loop();
    // The loop kept the lock: from here on no other thread can take it, and the
    // destructors run with it held.
    port->Close();
    delete looper;
    port->SetFinished();
    return B_OK;
}

void BLooper::_Loop() {
    LooperPort& port = *fPrivate->port;
    MessageQueuePrivate queue(port.Queue());
    for (;;) {
        BMessage* message = queue.WaitForMessage(B_INFINITE_TIMEOUT);
        if (port.Lock(B_INFINITE_TIMEOUT) != B_OK) {
            delete message;
            return;
        }
        if (message == NULL) {
            fPrivate->terminating = true;
            return;
        }

        fPrivate->currentMessage = message;
        if (message->what == _QUIT_) {
            fPrivate->terminating = true;
        } else {
            BHandler* handler = _TopLevelFilter(message, _ResolveTarget(message));
            if (handler != NULL && handler->Looper() == this)
                DispatchMessage(message, handler);
        }
        delete DetachCurrentMessage();

        if (fPrivate->terminating)
            return;
        if (fPrivate->idleHook != NULL && port.Queue()->IsEmpty())
            fPrivate->idleHook(this);
        port.Unlock();
    }
}

void BLooper::Quit() {
    if (!IsLocked()) {
        fprintf(stderr, "BLooper::Quit(): the looper \"%s\" must be locked by the caller\n",
                Name() != NULL ? Name() : "");
        if (!Lock())
            return;
    }
    if (!fPrivate->runCalled) {
        delete this;
        return;
    }
    if (current_thread() == Thread()) {
        fPrivate->terminating = true;
        return;
    }

    // Another thread: the messages already queued are handled first, then the
    // looper's thread deletes the looper.
    std::shared_ptr<LooperPort> port = fPrivate->port;
    thread_id thread = Thread();
    BPrivate::LooperPrivate(this).PostQuitMessage();
    port->UnlockFully();
    port->WaitFinished();
    status_t result;
    wait_for_thread(thread, &result);
}

bool BLooper::QuitRequested() {
    // Hook function
    return true;
}

void BLooper::_QuitRequested(BMessage* message) {
    bool quit = QuitRequested();
    if (message->IsSourceWaiting()) {
        BMessage reply(B_REPLY);
        reply.AddBool("result", quit);
        reply.AddInt32("thread", Thread());
        message->SendReply(&reply);
    }
    if (quit)
        Quit();
}

// #pragma mark - Locking

bool BLooper::Lock() {
    return LockWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

void BLooper::Unlock() {
    fPrivate->port->Unlock();
}

bool BLooper::IsLocked() const {
    return fPrivate->port->IsLockedByCurrentThread();
}

status_t BLooper::LockWithTimeout(bigtime_t timeout) {
    // By address: a looper that no longer exists is not found, and nothing of it is
    // read.
    std::shared_ptr<LooperPort> port = TokenSpace::Default().PortOf(this);
    if (port == nullptr)
        return B_BAD_VALUE;
    return port->Lock(timeout);
}

thread_id BLooper::LockingThread() const {
    return fPrivate->port->LockingThread();
}

int32 BLooper::CountLocks() const {
    return fPrivate->port->CountLocks();
}

int32 BLooper::CountLockRequests() const {
    return fPrivate->port->CountLockRequests();
}

sem_id BLooper::Sem() const {
    // The lock is not a kernel semaphore.
    return B_ERROR;
}

thread_id BLooper::Thread() const {
    return fPrivate->port->ReaderThread();
}

team_id BLooper::Team() const {
    return current_team();
}

BLooper* BLooper::LooperForThread(thread_id thread) {
    return TokenSpace::Default().LooperForThread(thread);
}

void BLooper::_AssertLocked() const {
    if (!IsLocked())
        debugger("BLooper: the looper must be locked by the calling thread");
}

void BLooper::_UnlockFully() {
    fPrivate->port->UnlockFully();
}

// #pragma mark - Scripting

BHandler* BLooper::ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 what,
                                    const char* property) {
    return BHandler::ResolveSpecifier(message, index, specifier, what, property);
}

status_t BLooper::GetSupportedSuites(BMessage* data) {
    if (data == NULL)
        return B_BAD_VALUE;
    status_t status = data->AddString("suites", "suite/vnd.Be-looper");
    if (status != B_OK)
        return status;
    return BHandler::GetSupportedSuites(data);
}

// #pragma mark - Filters

void BLooper::AddCommonFilter(BMessageFilter* filter) {
    if (filter == NULL)
        return;
    _AssertLocked();
    if (filter->Looper() != NULL) {
        debugger("BLooper::AddCommonFilter(): a message filter can only be installed once");
        return;
    }
    if (fPrivate->commonFilters == NULL)
        fPrivate->commonFilters = new BList;
    filter->_SetLooper(this);
    fPrivate->commonFilters->AddItem(filter);
}

bool BLooper::RemoveCommonFilter(BMessageFilter* filter) {
    _AssertLocked();
    if (fPrivate->commonFilters == NULL || !fPrivate->commonFilters->RemoveItem(filter))
        return false;
    filter->_SetLooper(NULL);
    return true;
}

void BLooper::SetCommonFilterList(BList* filters) {
    _AssertLocked();
    if (fPrivate->commonFilters != filters)
        delete_filters(fPrivate->commonFilters);
    fPrivate->commonFilters = filters;
    if (filters == NULL)
        return;
    for (int32 index = 0; index < filters->CountItems(); index++) {
        BMessageFilter* filter = static_cast<BMessageFilter*>(filters->ItemAtFast(index));
        if (filter->Looper() != NULL && filter->Looper() != this) {
            debugger("BLooper::SetCommonFilterList(): a filter belongs to another looper");
            return;
        }
        filter->_SetLooper(this);
    }
}

BList* BLooper::CommonFilterList() const {
    return fPrivate->commonFilters;
}

status_t BLooper::Perform(perform_code d, void* arg) {
    return BHandler::Perform(d, arg);
}

// #pragma mark - Target resolution

BHandler* BLooper::_ResolveTarget(BMessage* message) {
    MessagePrivate delivery(message);
    if (delivery.UsePreferredTarget())
        return fPrivate->preferred != NULL ? fPrivate->preferred : this;
    int32 token = delivery.GetTarget();
    if (token == MessagePrivate::kNoTarget)
        return this;
    if (token == BPrivate::HandlerPrivate(this).Token())
        return this;
    // A handler that left this looper since the message was sent gets nothing.
    return TokenSpace::Default().HandlerFor(token, this);
}

// #pragma mark - LooperPrivate

namespace BPrivate {

void LooperPrivate::SetIdleHook(IdleHook hook) {
    fLooper->fPrivate->idleHook = hook;
}

void LooperPrivate::SetDeliveryHook(DeliveryHook hook) {
    fLooper->fPrivate->port->SetDeliveryHook(hook);
}

void LooperPrivate::SetUnlockHook(UnlockHook hook) {
    fLooper->fPrivate->port->SetUnlockHook(hook, hook != NULL ? fLooper : NULL);
}

bool LooperPrivate::IsRunning() const {
    return fLooper->fPrivate->runCalled;
}

int32 LooperPrivate::PortToken() const {
    return fLooper->fPrivate->port->Token();
}

int32 LooperPrivate::UnlockFully() {
    return fLooper->fPrivate->port->UnlockFully();
}

bool LooperPrivate::RestoreLock(int32 count) {
    return fLooper->fPrivate->port->RestoreLock(count) == B_OK;
}

void LooperPrivate::SetTerminating() {
    fLooper->fPrivate->terminating = true;
}

status_t LooperPrivate::PostQuitMessage() {
    BMessage* quit = new BMessage(_QUIT_);
    status_t status = fLooper->fPrivate->port->DeliverUrgently(quit);
    if (status != B_OK)
        delete quit;
    return status;
}

void LooperPrivate::RunInCallingThread() {
    fLooper->_AssertLocked();
    if (fLooper->fPrivate->runCalled) {
        debugger("BApplication::Run(): Run() can only be called once");
        return;
    }
    fLooper->fPrivate->runCalled = true;
    fLooper->fPrivate->port->SetReaderThread(current_thread());
    fLooper->Unlock();
    fLooper->_Loop();
}

} // namespace BPrivate
