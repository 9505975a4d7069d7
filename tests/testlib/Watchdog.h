// Waiting on a condition with a deadline, so a broken test fails instead of hanging.
#ifndef GLIMROW_TEST_WATCHDOG_H
#define GLIMROW_TEST_WATCHDOG_H

#include <chrono>
#include <functional>
#include <thread>

namespace testing_support {

// Polls the condition every millisecond until it holds or the deadline passes;
// answers whether it held. Used where nothing can be waited on directly (another
// process writing a file, a thread of the kits reaching a state).
inline bool wait_until(const std::function<bool()>& condition,
                       std::chrono::milliseconds deadline = std::chrono::seconds(10)) {
    auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace testing_support

#endif // GLIMROW_TEST_WATCHDOG_H
