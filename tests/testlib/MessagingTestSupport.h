// Helpers for tests of loopers and messengers: a watchdog that ends a hung test, a
// checkpoint to wait on with a deadline, and a looper that records what it receives.
#ifndef GLIMROW_TEST_MESSAGING_SUPPORT_H
#define GLIMROW_TEST_MESSAGING_SUPPORT_H

#include <Looper.h>
#include <Message.h>
#include <OS.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <stdio.h>
#include <stdlib.h>

namespace testing_support {

// Ends the process when the test has not finished by the deadline, so a deadlock
// fails the test at once instead of hanging until ctest gives up.
class TestWatchdog {
public:
    explicit TestWatchdog(std::chrono::seconds deadline = std::chrono::seconds(30))
        : fThread([this, deadline] {
              std::unique_lock<std::mutex> locker(fMutex);
              if (!fDone.wait_for(locker, deadline, [this] { return fDisarmed; })) {
                  fprintf(stderr, "watchdog: the test did not finish in time\n");
                  fflush(stderr);
                  abort();
              }
          }) {}

    ~TestWatchdog() {
        {
            std::lock_guard<std::mutex> locker(fMutex);
            fDisarmed = true;
        }
        fDone.notify_all();
        fThread.join();
    }

    TestWatchdog(const TestWatchdog&) = delete;
    TestWatchdog& operator=(const TestWatchdog&) = delete;

private:
    std::mutex fMutex;
    std::condition_variable fDone;
    bool fDisarmed = false;
    std::thread fThread;
};

// A counter that threads raise and others wait on.
class Checkpoint {
public:
    // Notifies with the mutex held: a waiter may destroy the checkpoint as soon as
    // it sees the count.
    void Signal(int count = 1) {
        std::lock_guard<std::mutex> locker(fMutex);
        fCount += count;
        fChanged.notify_all();
    }

    // Whether the count reached `count` before the deadline.
    bool WaitFor(int count = 1,
                 std::chrono::milliseconds deadline = std::chrono::milliseconds(10000)) {
        std::unique_lock<std::mutex> locker(fMutex);
        return fChanged.wait_for(locker, deadline, [&] { return fCount >= count; });
    }

    int Count() {
        std::lock_guard<std::mutex> locker(fMutex);
        return fCount;
    }

private:
    std::mutex fMutex;
    std::condition_variable fChanged;
    int fCount = 0;
};

// Waits, without sleeping, until the condition holds or the deadline passes, giving
// the processor away between checks. For states that offer nothing to wait on (a
// message arriving in a queue, a thread blocking on a lock).
inline bool spin_until(const std::function<bool()>& condition,
                       std::chrono::milliseconds deadline = std::chrono::milliseconds(10000)) {
    auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::yield();
    }
    return true;
}

// A looper that records the `what` of every message its MessageReceived() gets,
// with the thread it ran in, and signals a checkpoint for each.
class RecordingLooper : public BLooper {
public:
    struct Entry {
        uint32 what;
        thread_id thread;
        int32 value;
    };

    explicit RecordingLooper(const char* name = "recording looper",
                             int32 capacity = B_LOOPER_PORT_DEFAULT_CAPACITY)
        : BLooper(name, B_NORMAL_PRIORITY, capacity) {}

    void MessageReceived(BMessage* message) override {
        int32 value = -1;
        message->FindInt32("value", &value);
        {
            std::lock_guard<std::mutex> locker(fMutex);
            fEntries.push_back(Entry{message->what, find_thread(NULL), value});
        }
        fReceived.Signal();
    }

    std::vector<Entry> Entries() {
        std::lock_guard<std::mutex> locker(fMutex);
        return fEntries;
    }

    bool WaitForMessages(int count) { return fReceived.WaitFor(count); }

private:
    std::mutex fMutex;
    std::vector<Entry> fEntries;
    Checkpoint fReceived;
};

} // namespace testing_support

#endif // GLIMROW_TEST_MESSAGING_SUPPORT_H
