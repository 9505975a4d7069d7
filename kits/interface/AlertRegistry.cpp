#include "interface/AlertRegistry.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace BPrivate {

namespace {

struct Registry {
    std::mutex lock;
    std::condition_variable changed;
    std::vector<AlertListing> alerts;
    int32 nextID = 1;
};

Registry& registry() {
    static Registry* instance = new Registry;
    return *instance;
}

bool find_newest(const std::vector<AlertListing>& alerts, const char* title,
                 AlertListing* listing) {
    for (auto alert = alerts.rbegin(); alert != alerts.rend(); alert++) {
        if (title != NULL && alert->title != title)
            continue;
        if (listing != NULL)
            *listing = *alert;
        return true;
    }
    return false;
}

std::chrono::steady_clock::time_point deadline_after(bigtime_t timeout) {
    // Long enough to be forever without overflowing the clock.
    timeout = std::clamp(timeout, (bigtime_t)0, (bigtime_t)365 * 24 * 3600 * 1000000);
    return std::chrono::steady_clock::now() + std::chrono::microseconds(timeout);
}

} // namespace

int32 AlertRegistry::Add(const AlertListing& listing) {
    Registry& state = registry();
    std::lock_guard<std::mutex> lock(state.lock);
    AlertListing entry = listing;
    entry.id = state.nextID++;
    state.alerts.push_back(entry);
    state.changed.notify_all();
    return entry.id;
}

void AlertRegistry::Remove(int32 id) {
    Registry& state = registry();
    std::lock_guard<std::mutex> lock(state.lock);
    state.alerts.erase(std::remove_if(state.alerts.begin(), state.alerts.end(),
                                      [id](const AlertListing& alert) { return alert.id == id; }),
                       state.alerts.end());
    state.changed.notify_all();
}

std::vector<AlertListing> AlertRegistry::List() {
    Registry& state = registry();
    std::lock_guard<std::mutex> lock(state.lock);
    return state.alerts;
}

status_t AlertRegistry::WaitFor(const char* title, AlertListing* listing, bigtime_t timeout) {
    Registry& state = registry();
    std::unique_lock<std::mutex> lock(state.lock);
    bool found = state.changed.wait_until(
        lock, deadline_after(timeout), [&] { return find_newest(state.alerts, title, listing); });
    return found ? B_OK : B_TIMED_OUT;
}

status_t AlertRegistry::WaitForNone(bigtime_t timeout) {
    Registry& state = registry();
    std::unique_lock<std::mutex> lock(state.lock);
    bool empty = state.changed.wait_until(lock, deadline_after(timeout),
                                          [&] { return state.alerts.empty(); });
    return empty ? B_OK : B_TIMED_OUT;
}

} // namespace BPrivate
