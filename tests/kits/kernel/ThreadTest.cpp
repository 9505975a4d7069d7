// Be threads on Linux: creation, naming, waiting, ending and information.
#include <OS.h>

#include <Watchdog.h>

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <pthread.h>
#include <unistd.h>

using testing_support::wait_until;

namespace {

bool thread_is_gone(thread_id thread) {
    return access(("/proc/self/task/" + std::to_string(thread)).c_str(), F_OK) != 0;
}

status_t return_data(void* data) {
    return (status_t)(intptr_t)data;
}

status_t set_flag(void* data) {
    static_cast<std::atomic<bool>*>(data)->store(true);
    return B_OK;
}

// A thread that stays alive until released, so tests can look at it.
struct Gate {
    std::mutex lock;
    std::condition_variable changed;
    bool arrived = false;
    bool released = false;

    void Arrive() {
        std::unique_lock<std::mutex> locker(lock);
        arrived = true;
        changed.notify_all();
        changed.wait(locker, [this] { return released; });
    }

    bool WaitForArrival() {
        std::unique_lock<std::mutex> locker(lock);
        return changed.wait_for(locker, std::chrono::seconds(10), [this] { return arrived; });
    }

    void Release() {
        std::lock_guard<std::mutex> locker(lock);
        released = true;
        changed.notify_all();
    }
};

status_t wait_at_gate(void* data) {
    static_cast<Gate*>(data)->Arrive();
    return 7;
}

} // namespace

// #pragma mark - Creating, resuming and waiting

TEST(Thread, SpawnThreadRejectsANullFunction) {
    EXPECT_EQ(spawn_thread(NULL, "nothing", B_NORMAL_PRIORITY, NULL), B_BAD_VALUE);
}

TEST(Thread, SpawnedThreadStaysSuspendedUntilResumed) {
    std::atomic<bool> ran(false);
    thread_id thread = spawn_thread(set_flag, "sleeper", B_NORMAL_PRIORITY, &ran);
    ASSERT_GT(thread, 0);

    thread_info info;
    ASSERT_EQ(get_thread_info(thread, &info), B_OK);
    EXPECT_EQ(info.state, B_THREAD_SUSPENDED);
    EXPECT_FALSE(ran.load());

    EXPECT_EQ(resume_thread(thread), B_OK);
    status_t result = B_ERROR;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, B_OK);
    EXPECT_TRUE(ran.load());
}

TEST(Thread, WaitForThreadGivesTheReturnValue) {
    thread_id thread = spawn_thread(return_data, "returner", B_NORMAL_PRIORITY, (void*)1234);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(resume_thread(thread), B_OK);

    status_t result = 0;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, 1234);
}

TEST(Thread, WaitForThreadResumesASuspendedThread) {
    thread_id thread = spawn_thread(return_data, "never resumed", B_NORMAL_PRIORITY, (void*)5);
    ASSERT_GT(thread, 0);

    status_t result = 0;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, 5);
}

TEST(Thread, ThreadIdStaysValidForWaitingAfterTheThreadEnded) {
    thread_id thread = spawn_thread(return_data, "short lived", B_NORMAL_PRIORITY, (void*)99);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(resume_thread(thread), B_OK);
    ASSERT_TRUE(wait_until([&] { return thread_is_gone(thread); }));

    status_t result = 0;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, 99);
}

TEST(Thread, WaitForThreadCollectsTheValueOnlyOnce) {
    thread_id thread = spawn_thread(return_data, "collected", B_NORMAL_PRIORITY, (void*)3);
    ASSERT_GT(thread, 0);
    status_t result = 0;
    ASSERT_EQ(wait_for_thread(thread, &result), B_OK);

    EXPECT_EQ(wait_for_thread(thread, &result), B_BAD_THREAD_ID);
}

TEST(Thread, WaitForThreadRefusesToWaitForItself) {
    status_t result = 0;
    EXPECT_EQ(wait_for_thread(find_thread(NULL), &result), B_NOT_ALLOWED);
}

TEST(Thread, WaitForThreadAcceptsANullResultPointer) {
    thread_id thread = spawn_thread(return_data, "no result", B_NORMAL_PRIORITY, (void*)1);
    ASSERT_GT(thread, 0);
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(Thread, ResumeThreadRejectsARunningThread) {
    Gate gate;
    thread_id thread = spawn_thread(wait_at_gate, "running", B_NORMAL_PRIORITY, &gate);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(resume_thread(thread), B_OK);
    ASSERT_TRUE(gate.WaitForArrival());

    EXPECT_EQ(resume_thread(thread), B_BAD_THREAD_STATE);
    gate.Release();
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}

TEST(Thread, UnknownThreadIdsAreRejected) {
    // Process 1 is never a thread of this process.
    for (thread_id thread : {-5, 0, 1}) {
        thread_info info;
        EXPECT_EQ(resume_thread(thread), B_BAD_THREAD_ID) << thread;
        EXPECT_EQ(wait_for_thread(thread, NULL), B_BAD_THREAD_ID) << thread;
        EXPECT_EQ(kill_thread(thread), B_BAD_THREAD_ID) << thread;
        EXPECT_EQ(rename_thread(thread, "x"), B_BAD_THREAD_ID) << thread;
        EXPECT_EQ(set_thread_priority(thread, 10), B_BAD_THREAD_ID) << thread;
        EXPECT_EQ(get_thread_info(thread, &info), B_BAD_THREAD_ID) << thread;
    }
}

TEST(Thread, ManyThreadsRunAndReturnTheirOwnValues) {
    const int kCount = 200;
    std::vector<thread_id> threads;
    for (int index = 0; index < kCount; index++) {
        thread_id thread =
            spawn_thread(return_data, "worker", B_NORMAL_PRIORITY, (void*)(intptr_t)index);
        ASSERT_GT(thread, 0);
        threads.push_back(thread);
    }
    std::set<thread_id> unique(threads.begin(), threads.end());
    EXPECT_EQ(unique.size(), threads.size());

    for (thread_id thread : threads)
        ASSERT_EQ(resume_thread(thread), B_OK);
    for (int index = 0; index < kCount; index++) {
        status_t result = -1;
        ASSERT_EQ(wait_for_thread(threads[index], &result), B_OK);
        EXPECT_EQ(result, index);
    }
}

// #pragma mark - Ending threads

namespace {

struct SetOnDestruction {
    std::atomic<bool>* flag;
    ~SetOnDestruction() { flag->store(true); }
};

void leave_from_deep_inside() {
    exit_thread(42);
}

status_t exit_early(void* data) {
    SetOnDestruction guard{static_cast<std::atomic<bool>*>(data)};
    leave_from_deep_inside();
    return 1;
}

} // namespace

TEST(Thread, ExitThreadEndsTheThreadWithItsValueAndUnwinds) {
    std::atomic<bool> unwound(false);
    thread_id thread = spawn_thread(exit_early, "quitter", B_NORMAL_PRIORITY, &unwound);
    ASSERT_GT(thread, 0);

    status_t result = 0;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, 42);
    EXPECT_TRUE(unwound.load());
}

TEST(Thread, KillThreadStopsAThreadThatNeverRan) {
    std::atomic<bool> ran(false);
    thread_id thread = spawn_thread(set_flag, "doomed", B_NORMAL_PRIORITY, &ran);
    ASSERT_GT(thread, 0);

    EXPECT_EQ(kill_thread(thread), B_OK);
    status_t result = 0;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, B_INTERRUPTED);
    EXPECT_FALSE(ran.load());
}

TEST(Thread, KillThreadRefusesARunningThread) {
    Gate gate;
    thread_id thread = spawn_thread(wait_at_gate, "unkillable", B_NORMAL_PRIORITY, &gate);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(resume_thread(thread), B_OK);
    ASSERT_TRUE(gate.WaitForArrival());

    EXPECT_EQ(kill_thread(thread), B_NOT_ALLOWED);
    gate.Release();
    status_t result = 0;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, 7);
}

TEST(Thread, KillThreadOnItselfEndsTheThread) {
    auto killSelf = [](void*) -> status_t {
        kill_thread(find_thread(NULL));
        return 55;
    };
    thread_id thread = spawn_thread(killSelf, "suicidal", B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    status_t result = -1;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, B_OK);
}

namespace {

std::mutex sOrderLock;
std::vector<int> sExitOrder;

void record_exit(void* data) {
    std::lock_guard<std::mutex> locker(sOrderLock);
    sExitOrder.push_back((int)(intptr_t)data);
}

status_t register_exit_callbacks(void*) {
    on_exit_thread(record_exit, (void*)1);
    on_exit_thread(record_exit, (void*)2);
    on_exit_thread(record_exit, (void*)3);
    return B_OK;
}

} // namespace

TEST(Thread, OnExitThreadCallbacksRunLastFirstBeforeWaitReturns) {
    sExitOrder.clear();
    thread_id thread = spawn_thread(register_exit_callbacks, "leaving", B_NORMAL_PRIORITY, NULL);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(wait_for_thread(thread, NULL), B_OK);

    std::lock_guard<std::mutex> locker(sOrderLock);
    EXPECT_EQ(sExitOrder, (std::vector<int>{3, 2, 1}));
}

TEST(Thread, OnExitThreadWorksInThreadsMadeElsewhere) {
    sExitOrder.clear();
    std::thread thread([] { register_exit_callbacks(NULL); });
    thread.join();

    std::lock_guard<std::mutex> locker(sOrderLock);
    EXPECT_EQ(sExitOrder, (std::vector<int>{3, 2, 1}));
}

TEST(Thread, OnExitThreadRejectsANullCallback) {
    EXPECT_EQ(on_exit_thread(NULL, NULL), B_BAD_VALUE);
}

// #pragma mark - Suspending

namespace {

status_t suspend_self(void* data) {
    status_t status = suspend_thread(find_thread(NULL));
    static_cast<std::atomic<bool>*>(data)->store(true);
    return status;
}

} // namespace

TEST(Thread, SuspendThreadHoldsTheCallerUntilResumed) {
    std::atomic<bool> woke(false);
    thread_id thread = spawn_thread(suspend_self, "napper", B_NORMAL_PRIORITY, &woke);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(resume_thread(thread), B_OK);

    ASSERT_TRUE(wait_until([&] {
        thread_info info;
        return get_thread_info(thread, &info) == B_OK && info.state == B_THREAD_SUSPENDED;
    }));
    EXPECT_FALSE(woke.load());

    EXPECT_EQ(resume_thread(thread), B_OK);
    status_t result = -1;
    EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
    EXPECT_EQ(result, B_OK);
    EXPECT_TRUE(woke.load());
}

TEST(Thread, SuspendThreadRefusesOtherRunningThreads) {
    Gate gate;
    thread_id thread = spawn_thread(wait_at_gate, "busy", B_NORMAL_PRIORITY, &gate);
    ASSERT_GT(thread, 0);
    ASSERT_EQ(resume_thread(thread), B_OK);
    ASSERT_TRUE(gate.WaitForArrival());

    EXPECT_EQ(suspend_thread(thread), B_NOT_ALLOWED);
    gate.Release();
    EXPECT_EQ(wait_for_thread(thread, NULL), B_OK);
}
