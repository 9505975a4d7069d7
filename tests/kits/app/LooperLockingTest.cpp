// The looper lock: recursive, owned by one thread, taken by the looper's thread
// around every message, and taken from other threads with or without a timeout.
#include <Looper.h>
#include <Message.h>
#include <OS.h>

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include <unistd.h>

using testing_support::Checkpoint;
using testing_support::RecordingLooper;
using testing_support::spin_until;
using testing_support::TestWatchdog;

namespace {

const uint32 kProbe = 'prob';
const uint32 kBlock = 'blck';

void quit_looper(BLooper* looper) {
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

// Runs a callback inside MessageReceived for one command.
class CallbackLooper : public BLooper {
public:
    CallbackLooper(std::function<void(BLooper*, BMessage*)> callback)
        : BLooper("callback looper"), fCallback(std::move(callback)) {}

    void MessageReceived(BMessage* message) override {
        if (message->what == kProbe || message->what == kBlock)
            fCallback(this, message);
        else
            BLooper::MessageReceived(message);
    }

private:
    std::function<void(BLooper*, BMessage*)> fCallback;
};

} // namespace

TEST(LooperLocking, NewLooperIsLockedByTheConstructingThread) {
    BLooper* looper = new BLooper("fresh");
    EXPECT_TRUE(looper->IsLocked());
    EXPECT_EQ(find_thread(NULL), looper->LockingThread());
    EXPECT_EQ(1, looper->CountLocks());
    looper->Quit();
}

TEST(LooperLocking, LockIsRecursiveForTheOwningThread) {
    BLooper* looper = new BLooper("recursive");
    ASSERT_TRUE(looper->Lock());
    ASSERT_TRUE(looper->Lock());
    EXPECT_EQ(3, looper->CountLocks());
    looper->Unlock();
    looper->Unlock();
    EXPECT_EQ(1, looper->CountLocks());
    EXPECT_TRUE(looper->IsLocked());
    looper->Unlock();
    EXPECT_FALSE(looper->IsLocked());
    EXPECT_EQ(-1, looper->LockingThread());
    EXPECT_EQ(0, looper->CountLocks());
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

TEST(LooperLocking, IsLockedIsFalseInOtherThreads) {
    BLooper* looper = new BLooper("owned");
    bool lockedThere = true;
    thread_id owner = -1;
    std::thread([&] {
        lockedThere = looper->IsLocked();
        owner = looper->LockingThread();
    }).join();
    EXPECT_FALSE(lockedThere);
    EXPECT_EQ(find_thread(NULL), owner);
    looper->Quit();
}

TEST(LooperLocking, LockWithTimeoutTimesOutWhileAnotherThreadHoldsIt) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("held");
    status_t status = B_OK;
    bigtime_t waited = 0;
    std::thread([&] {
        bigtime_t start = system_time();
        status = looper->LockWithTimeout(50000);
        waited = system_time() - start;
    }).join();
    EXPECT_EQ(B_TIMED_OUT, status);
    EXPECT_GE(waited, 50000);
    EXPECT_TRUE(looper->IsLocked());
    looper->Quit();
}

TEST(LooperLocking, LockWithTimeoutZeroOnlyTries) {
    BLooper* looper = new BLooper("try");
    status_t busy = B_OK;
    std::thread([&] { busy = looper->LockWithTimeout(0); }).join();
    EXPECT_EQ(B_TIMED_OUT, busy);

    looper->Unlock();
    status_t free = B_ERROR;
    std::thread([&] {
        free = looper->LockWithTimeout(0);
        if (free == B_OK)
            looper->Unlock();
    }).join();
    EXPECT_EQ(B_OK, free);
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

TEST(LooperLocking, LockIsHandedToTheWaitingThreadOnUnlock) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("hand over");
    Checkpoint taken;
    Checkpoint release;
    thread_id waiter = -1;
    thread_id ownerSeenByWaiter = -1;
    std::thread thread([&] {
        waiter = find_thread(NULL);
        ASSERT_TRUE(looper->Lock());
        ownerSeenByWaiter = looper->LockingThread();
        taken.Signal();
        release.WaitFor();
        looper->Unlock();
    });
    ASSERT_TRUE(spin_until([&] { return looper->CountLockRequests() == 2; }));
    looper->Unlock();
    ASSERT_TRUE(taken.WaitFor());
    EXPECT_EQ(waiter, looper->LockingThread());
    EXPECT_EQ(waiter, ownerSeenByWaiter);
    EXPECT_FALSE(looper->IsLocked());
    release.Signal();
    thread.join();
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

TEST(LooperLocking, ContendingThreadsAreMutuallyExcluded) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("contended");
    looper->Run();
    const int kThreads = 8;
    const int kRounds = 2000;
    int counter = 0;
    std::atomic<int> inside{0};
    std::atomic<bool> overlap{false};
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; index++) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; round++) {
                ASSERT_TRUE(looper->Lock());
                if (inside.fetch_add(1) != 0)
                    overlap = true;
                counter++;
                if (round % 3 == 0) {
                    // Nested locking inside the critical section.
                    ASSERT_TRUE(looper->Lock());
                    counter++;
                    looper->Unlock();
                }
                inside.fetch_sub(1);
                looper->Unlock();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(overlap);
    EXPECT_EQ(kThreads * (kRounds + (kRounds + 2) / 3), counter);
    quit_looper(looper);
}

TEST(LooperLocking, LooperThreadHoldsTheLockWhileDispatching) {
    TestWatchdog watchdog;
    Checkpoint done;
    bool locked = false;
    thread_id lockingThread = -1;
    thread_id dispatchThread = -1;
    int32 locks = 0;
    CallbackLooper* looper = new CallbackLooper([&](BLooper* self, BMessage*) {
        locked = self->IsLocked();
        lockingThread = self->LockingThread();
        dispatchThread = find_thread(NULL);
        locks = self->CountLocks();
        done.Signal();
    });
    thread_id thread = looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kProbe));
    ASSERT_TRUE(done.WaitFor());
    EXPECT_TRUE(locked);
    EXPECT_EQ(thread, dispatchThread);
    EXPECT_EQ(thread, lockingThread);
    EXPECT_EQ(1, locks);
    quit_looper(looper);
}

TEST(LooperLocking, OtherThreadsCannotLockWhileAMessageIsHandled) {
    TestWatchdog watchdog;
    Checkpoint entered;
    Checkpoint leave;
    CallbackLooper* looper = new CallbackLooper([&](BLooper*, BMessage*) {
        entered.Signal();
        leave.WaitFor();
    });
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kBlock));
    ASSERT_TRUE(entered.WaitFor());
    EXPECT_EQ(B_TIMED_OUT, looper->LockWithTimeout(20000));
    leave.Signal();
    EXPECT_EQ(B_OK, looper->LockWithTimeout(B_INFINITE_TIMEOUT));
    looper->Quit();
}

TEST(LooperLocking, WaitingLockerFailsWhenTheLooperQuits) {
    TestWatchdog watchdog;
    Checkpoint entered;
    std::atomic<bool> lockerWaiting{false};
    CallbackLooper* looper = new CallbackLooper([&](BLooper* self, BMessage*) {
        entered.Signal();
        // The locker is now blocked on the lock this thread holds.
        spin_until([&] { return self->CountLockRequests() == 2; });
        lockerWaiting = true;
        self->Quit();
    });
    thread_id thread = looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kBlock));
    ASSERT_TRUE(entered.WaitFor());
    bool locked = looper->Lock();
    EXPECT_FALSE(locked);
    EXPECT_TRUE(lockerWaiting);
    status_t result;
    EXPECT_EQ(B_OK, wait_for_thread(thread, &result));
}

TEST(LooperLocking, LooperForThreadFindsTheLooperFromItsOwnThread) {
    TestWatchdog watchdog;
    Checkpoint done;
    BLooper* found = NULL;
    CallbackLooper* looper = new CallbackLooper([&](BLooper*, BMessage*) {
        found = BLooper::LooperForThread(find_thread(NULL));
        done.Signal();
    });
    thread_id thread = looper->Run();
    EXPECT_EQ(looper, BLooper::LooperForThread(thread));
    EXPECT_EQ(NULL, BLooper::LooperForThread(find_thread(NULL)));
    ASSERT_EQ(B_OK, looper->PostMessage(kProbe));
    ASSERT_TRUE(done.WaitFor());
    EXPECT_EQ(looper, found);
    quit_looper(looper);
}

TEST(LooperLocking, LooperForThreadForgetsAQuitLooper) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("forgotten");
    thread_id thread = looper->Run();
    ASSERT_EQ(looper, BLooper::LooperForThread(thread));
    quit_looper(looper);
    EXPECT_EQ(NULL, BLooper::LooperForThread(thread));
}

TEST(LooperLocking, RunStartsAThreadNamedAfterTheLooper) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("io_slave");
    thread_id thread = looper->Run();
    ASSERT_GT(thread, 0);
    EXPECT_EQ(thread, looper->Thread());
    EXPECT_NE(find_thread(NULL), thread);
    thread_info info;
    ASSERT_EQ(B_OK, get_thread_info(thread, &info));
    EXPECT_STREQ("io_slave", info.name);
    EXPECT_FALSE(looper->IsLocked());
    quit_looper(looper);
}

TEST(LooperLocking, ThreadIsUnsetBeforeRun) {
    BLooper* looper = new BLooper("idle");
    EXPECT_LT(looper->Thread(), 0);
    EXPECT_EQ(getpid(), looper->Team());
    looper->Quit();
}

TEST(LooperLockingDeathTest, RunTwiceIsAProgrammingError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            BLooper* looper = new BLooper("twice");
            looper->Run();
            looper->Lock();
            looper->Run();
        },
        "Run\\(\\) can only be called once");
}

TEST(LooperLockingDeathTest, UnlockByAThreadThatDoesNotHoldTheLockIsAProgrammingError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            BLooper* looper = new BLooper("not mine");
            std::thread([&] { looper->Unlock(); }).join();
        },
        "not locked by the calling thread");
}
