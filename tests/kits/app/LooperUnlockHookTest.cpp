// The kit-private unlock hook: called by whichever thread gives up the last nesting
// level of a looper's lock, just before it does. Windows publish their frame
// changes there.
#include "app/LooperPrivate.h"

#include <Looper.h>
#include <Message.h>
#include <OS.h>

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using testing_support::spin_until;

namespace {

// What the hook saw on its calls; one looper per test.
std::atomic<int32> sCalls{0};
std::atomic<BLooper*> sLooperSeen{nullptr};
std::atomic<bool> sLockedInHook{false};
std::atomic<thread_id> sThreadSeen{-1};

void record_unlock(BLooper* looper) {
    sCalls.fetch_add(1);
    sLooperSeen.store(looper);
    sLockedInHook.store(looper != nullptr && looper->IsLocked());
    sThreadSeen.store(find_thread(NULL));
}

// Locks and unlocks the looper from inside the hook, as a window may.
void lock_again(BLooper* looper) {
    sCalls.fetch_add(1);
    if (looper->Lock())
        looper->Unlock();
}

class LooperUnlockHookTest : public testing::Test {
protected:
    void SetUp() override {
        sCalls = 0;
        sLooperSeen = nullptr;
        sLockedInHook = false;
        sThreadSeen = -1;
    }
};

} // namespace

TEST_F(LooperUnlockHookTest, HookRunsOnlyAsTheLastNestingLevelIsGivenUp) {
    BLooper* looper = new BLooper("hooked");
    BPrivate::LooperPrivate(looper).SetUnlockHook(record_unlock);
    ASSERT_TRUE(looper->Lock());
    EXPECT_EQ(2, looper->CountLocks());
    looper->Unlock();
    EXPECT_EQ(0, sCalls.load());
    looper->Unlock();
    EXPECT_EQ(1, sCalls.load());
    EXPECT_EQ(looper, sLooperSeen.load());
    EXPECT_FALSE(looper->IsLocked());
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

TEST_F(LooperUnlockHookTest, HookSeesTheLooperStillLockedByTheUnlockingThread) {
    BLooper* looper = new BLooper("hooked");
    BPrivate::LooperPrivate(looper).SetUnlockHook(record_unlock);
    std::thread other([&] {
        if (looper->Lock())
            looper->Unlock();
    });
    // The constructing thread still holds the lock: the other thread waits for it.
    looper->Unlock();
    other.join();
    EXPECT_EQ(2, sCalls.load());
    EXPECT_TRUE(sLockedInHook.load());
    EXPECT_NE(find_thread(NULL), sThreadSeen.load());
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

TEST_F(LooperUnlockHookTest, LoopThreadRunsTheHookAfterEachMessage) {
    BLooper* looper = new BLooper("hooked");
    BPrivate::LooperPrivate(looper).SetUnlockHook(record_unlock);
    thread_id thread = looper->Run();
    ASSERT_GT(thread, 0);
    // Run() gave up the constructing thread's lock.
    ASSERT_EQ(1, sCalls.load());
    ASSERT_EQ(B_OK, looper->PostMessage('ping'));
    EXPECT_TRUE(spin_until([&] { return sCalls.load() >= 2 && sThreadSeen.load() == thread; }));
    EXPECT_TRUE(sLockedInHook.load());
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

TEST_F(LooperUnlockHookTest, HookMayLockAndUnlockTheLooperAgain) {
    BLooper* looper = new BLooper("hooked");
    BPrivate::LooperPrivate(looper).SetUnlockHook(lock_again);
    looper->Unlock();
    // Its own nested unlock does not call it again.
    EXPECT_EQ(1, sCalls.load());
    EXPECT_FALSE(looper->IsLocked());
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

TEST_F(LooperUnlockHookTest, RemovedHookIsNoLongerCalled) {
    BLooper* looper = new BLooper("hooked");
    BPrivate::LooperPrivate(looper).SetUnlockHook(record_unlock);
    BPrivate::LooperPrivate(looper).SetUnlockHook(NULL);
    looper->Unlock();
    EXPECT_EQ(0, sCalls.load());
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}
