#include "app/TokenSpace.h"

#include "app/LooperPort.h"
#include "app/MessagePort.h"

#include <Errors.h>

namespace BPrivate {

TokenSpace& TokenSpace::Default() {
    static TokenSpace* sDefault = new TokenSpace;
    return *sDefault;
}

// #pragma mark - Handlers

int32 TokenSpace::NewHandlerToken(BHandler* handler) {
    std::lock_guard<std::mutex> locker(fMutex);
    int32 token = fNextHandlerToken++;
    fHandlers[token] = HandlerEntry{handler, NULL};
    return token;
}

void TokenSpace::RemoveHandlerToken(int32 token) {
    std::lock_guard<std::mutex> locker(fMutex);
    fHandlers.erase(token);
}

void TokenSpace::SetHandlerLooper(int32 token, BLooper* looper) {
    std::lock_guard<std::mutex> locker(fMutex);
    auto found = fHandlers.find(token);
    if (found != fHandlers.end())
        found->second.looper = looper;
}

BHandler* TokenSpace::HandlerFor(int32 token, const BLooper* looper) const {
    std::lock_guard<std::mutex> locker(fMutex);
    auto found = fHandlers.find(token);
    if (found == fHandlers.end() || found->second.looper != looper)
        return NULL;
    return found->second.handler;
}

BLooper* TokenSpace::LooperOfHandler(int32 token) const {
    std::lock_guard<std::mutex> locker(fMutex);
    auto found = fHandlers.find(token);
    return found != fHandlers.end() ? found->second.looper : NULL;
}

// #pragma mark - Ports

int32 TokenSpace::AddPort(const std::shared_ptr<MessagePort>& port) {
    std::lock_guard<std::mutex> locker(fMutex);
    int32 token = fNextPortToken++;
    port->SetToken(token);
    fPorts[token] = port;
    return token;
}

void TokenSpace::RemovePort(int32 token) {
    std::shared_ptr<MessagePort> port;
    {
        std::lock_guard<std::mutex> locker(fMutex);
        auto found = fPorts.find(token);
        if (found == fPorts.end())
            return;
        // The last reference may go here; let it go outside the lock.
        port = std::move(found->second);
        fPorts.erase(found);
    }
}

std::shared_ptr<MessagePort> TokenSpace::Port(int32 token) const {
    std::lock_guard<std::mutex> locker(fMutex);
    auto found = fPorts.find(token);
    return found != fPorts.end() ? found->second : nullptr;
}

// #pragma mark - Loopers

void TokenSpace::AddLooper(BLooper* looper, const std::shared_ptr<LooperPort>& port) {
    std::lock_guard<std::mutex> locker(fMutex);
    fLoopers.push_back(LooperEntry{looper, port});
    fLooperPorts[looper] = port;
}

void TokenSpace::RemoveLooper(const BLooper* looper) {
    std::shared_ptr<LooperPort> port;
    std::lock_guard<std::mutex> locker(fMutex);
    fLooperPorts.erase(looper);
    for (auto entry = fLoopers.begin(); entry != fLoopers.end(); ++entry) {
        if (entry->looper == looper) {
            port = std::move(entry->port);
            fLoopers.erase(entry);
            break;
        }
    }
}

std::shared_ptr<LooperPort> TokenSpace::PortOf(const BLooper* looper) const {
    std::lock_guard<std::mutex> locker(fMutex);
    auto found = fLooperPorts.find(looper);
    return found != fLooperPorts.end() ? found->second : nullptr;
}

BLooper* TokenSpace::LooperForThread(thread_id thread) const {
    if (thread < 0)
        return NULL;
    std::lock_guard<std::mutex> locker(fMutex);
    for (const LooperEntry& entry : fLoopers) {
        if (entry.port->ReaderThread() == thread)
            return entry.looper;
    }
    return NULL;
}

BLooper* TokenSpace::LooperForPort(int32 portToken) const {
    std::lock_guard<std::mutex> locker(fMutex);
    for (const LooperEntry& entry : fLoopers) {
        if (entry.port->Token() == portToken)
            return entry.looper;
    }
    return NULL;
}

int32 TokenSpace::CountLoopers() const {
    std::lock_guard<std::mutex> locker(fMutex);
    return (int32)fLoopers.size();
}

BLooper* TokenSpace::LooperAt(int32 index) const {
    std::lock_guard<std::mutex> locker(fMutex);
    if (index < 0 || index >= (int32)fLoopers.size())
        return NULL;
    return fLoopers[index].looper;
}

status_t TokenSpace::ResolveTarget(int32 handlerToken, const BLooper* looper,
                                   int32* portToken) const {
    if (handlerToken == kNullToken && looper == NULL)
        return B_BAD_VALUE;

    std::lock_guard<std::mutex> locker(fMutex);
    if (handlerToken != kNullToken) {
        auto found = fHandlers.find(handlerToken);
        if (found == fHandlers.end())
            return B_BAD_VALUE;
        if (found->second.looper == NULL)
            return B_MISMATCHED_VALUES;
        if (looper != NULL && found->second.looper != looper)
            return B_MISMATCHED_VALUES;
        looper = found->second.looper;
    }
    auto found = fLooperPorts.find(looper);
    if (found == fLooperPorts.end())
        return B_BAD_VALUE;
    *portToken = found->second->Token();
    return B_OK;
}

} // namespace BPrivate
