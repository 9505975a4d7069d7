// The process-wide registry behind messengers and looper pointers.
//
// Handlers are known by token, ports (looper queues and reply slots) by port token,
// and loopers by address. Every lookup happens under one mutex, so a messenger or a
// stale BLooper pointer is checked against the live set before anything is touched:
// a looper that has been deleted is simply not found.
#ifndef _APP_TOKEN_SPACE_H
#define _APP_TOKEN_SPACE_H

#include <OS.h>
#include <SupportDefs.h>

#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

class BHandler;
class BLooper;

namespace BPrivate {

class LooperPort;
class MessagePort;

const int32 kNullToken = -1;
// The handler token of a messenger aimed at its looper's preferred handler.
const int32 kPreferredToken = -2;

class TokenSpace {
public:
    // Never destroyed: looper threads may still use it while the process exits.
    static TokenSpace& Default();

    // Handlers
    int32 NewHandlerToken(BHandler* handler);
    void RemoveHandlerToken(int32 token);
    void SetHandlerLooper(int32 token, BLooper* looper);
    // The handler, only when it belongs to that looper.
    BHandler* HandlerFor(int32 token, const BLooper* looper) const;
    BLooper* LooperOfHandler(int32 token) const;

    // Ports
    int32 AddPort(const std::shared_ptr<MessagePort>& port);
    void RemovePort(int32 token);
    std::shared_ptr<MessagePort> Port(int32 token) const;

    // Loopers
    void AddLooper(BLooper* looper, const std::shared_ptr<LooperPort>& port);
    void RemoveLooper(const BLooper* looper);
    std::shared_ptr<LooperPort> PortOf(const BLooper* looper) const;
    BLooper* LooperForThread(thread_id thread) const;
    BLooper* LooperForPort(int32 portToken) const;
    int32 CountLoopers() const;
    BLooper* LooperAt(int32 index) const;

    // The port token of the messenger target (handler, looper); handlerToken is
    // kNullToken when no handler is given. B_BAD_VALUE when neither exists,
    // B_MISMATCHED_VALUES when the handler has no looper or another one.
    status_t ResolveTarget(int32 handlerToken, const BLooper* looper, int32* portToken) const;

private:
    TokenSpace() = default;

    struct HandlerEntry {
        BHandler* handler;
        BLooper* looper;
    };

    struct LooperEntry {
        BLooper* looper;
        std::shared_ptr<LooperPort> port;
    };

    mutable std::mutex fMutex;
    int32 fNextHandlerToken = 1;
    int32 fNextPortToken = 1;
    std::unordered_map<int32, HandlerEntry> fHandlers;
    std::unordered_map<int32, std::shared_ptr<MessagePort>> fPorts;
    // In creation order, for LooperAt(); the map answers lookups by address.
    std::vector<LooperEntry> fLoopers;
    std::unordered_map<const BLooper*, std::shared_ptr<LooperPort>> fLooperPorts;
};

} // namespace BPrivate

#endif // _APP_TOKEN_SPACE_H
