// BLocker: recursion, ownership, timeouts and contention.
#include <Locker.h>
#include <OS.h>

#include <Watchdog.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using testing_support::wait_until;

TEST(Locker, EveryConstructorMakesAWorkingFreeLocker) {
    BLocker plain;
    BLocker named("named");
    BLocker benaphore(true);
    BLocker both("both", false);
    for (BLocker* locker : {&plain, &named, &benaphore, &both}) {
        EXPECT_EQ(locker->InitCheck(), B_OK);
        EXPECT_FALSE(locker->IsLocked());
        EXPECT_EQ(locker->LockingThread(), -1);
        EXPECT_EQ(locker->CountLocks(), 0);
        EXPECT_EQ(locker->CountLockRequests(), 0);
        EXPECT_TRUE(locker->Lock());
        EXPECT_TRUE(locker->IsLocked());
        locker->Unlock();
    }
}

TEST(Locker, LockIsRecursiveForItsHolder) {
    BLocker locker("recursive");
    ASSERT_TRUE(locker.Lock());
    ASSERT_TRUE(locker.Lock());
    ASSERT_EQ(locker.LockWithTimeout(0), B_OK);
    EXPECT_EQ(locker.CountLocks(), 3);

    locker.Unlock();
    locker.Unlock();
    EXPECT_TRUE(locker.IsLocked());
    EXPECT_EQ(locker.CountLocks(), 1);
    locker.Unlock();
    EXPECT_FALSE(locker.IsLocked());
    EXPECT_EQ(locker.LockingThread(), -1);
}

TEST(Locker, LockingThreadNamesTheHolder) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());
    EXPECT_EQ(locker.LockingThread(), find_thread(NULL));

    thread_id seen = 0;
    std::thread other([&] { seen = locker.LockingThread(); });
    other.join();
    EXPECT_EQ(seen, find_thread(NULL));
    locker.Unlock();
}

TEST(Locker, IsLockedIsFalseForThreadsThatDoNotHoldIt) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());
    bool lockedThere = true;
    std::thread other([&] { lockedThere = locker.IsLocked(); });
    other.join();
    EXPECT_FALSE(lockedThere);
    locker.Unlock();
}

TEST(Locker, LockWithTimeoutTimesOutWhileAnotherThreadHolds) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());

    status_t status = B_OK;
    bigtime_t waited = 0;
    std::thread other([&] {
        bigtime_t start = system_time();
        status = locker.LockWithTimeout(30000);
        waited = system_time() - start;
    });
    other.join();
    EXPECT_EQ(status, B_TIMED_OUT);
    EXPECT_GE(waited, 30000);
    EXPECT_EQ(locker.LockingThread(), find_thread(NULL));
    EXPECT_EQ(locker.CountLockRequests(), 1);
    locker.Unlock();
}

TEST(Locker, LockWithZeroTimeoutOnlyTries) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());
    status_t status = B_OK;
    std::thread other([&] { status = locker.LockWithTimeout(0); });
    other.join();
    EXPECT_EQ(status, B_TIMED_OUT);
    locker.Unlock();

    std::thread again([&] {
        status = locker.LockWithTimeout(0);
        if (status == B_OK)
            locker.Unlock();
    });
    again.join();
    EXPECT_EQ(status, B_OK);
}

TEST(Locker, LockWithTimeoutSucceedsWhenTheHolderLetsGoInTime) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());

    std::atomic<status_t> status(B_ERROR);
    std::thread other([&] {
        status = locker.LockWithTimeout(10000000);
        if (status == B_OK)
            locker.Unlock();
    });
    ASSERT_TRUE(wait_until([&] { return locker.CountLockRequests() == 2; }));
    locker.Unlock();
    other.join();
    EXPECT_EQ(status.load(), B_OK);
}

TEST(Locker, HugeFiniteTimeoutsWaitLikeInfiniteOnes) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());

    std::atomic<status_t> status(B_ERROR);
    std::thread other([&] {
        status = locker.LockWithTimeout(B_INFINITE_TIMEOUT - 1);
        if (status == B_OK)
            locker.Unlock();
    });
    ASSERT_TRUE(wait_until([&] { return locker.CountLockRequests() == 2; }));
    locker.Unlock();
    other.join();
    EXPECT_EQ(status.load(), B_OK);
}

TEST(Locker, WaiterGetsTheLockWhenTheHolderReleasesIt) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());
    ASSERT_TRUE(locker.Lock());

    std::atomic<bool> acquired(false);
    std::atomic<thread_id> waiter(-1);
    thread_id holderSeenByWaiter = -1;
    std::thread other([&] {
        waiter = find_thread(NULL);
        locker.Lock();
        acquired = true;
        holderSeenByWaiter = locker.LockingThread();
        locker.Unlock();
    });

    ASSERT_TRUE(wait_until([&] { return locker.CountLockRequests() == 2; }));
    locker.Unlock();
    EXPECT_FALSE(acquired.load());
    locker.Unlock();
    other.join();
    EXPECT_TRUE(acquired.load());
    EXPECT_EQ(holderSeenByWaiter, waiter.load());
    EXPECT_EQ(locker.CountLockRequests(), 0);
}

TEST(Locker, CountLockRequestsCountsHolderAndWaiters) {
    BLocker locker;
    ASSERT_TRUE(locker.Lock());
    EXPECT_EQ(locker.CountLockRequests(), 1);

    std::vector<std::thread> waiters;
    for (int index = 0; index < 3; index++) {
        waiters.emplace_back([&] {
            locker.Lock();
            locker.Unlock();
        });
    }
    EXPECT_TRUE(wait_until([&] { return locker.CountLockRequests() == 4; }));
    locker.Unlock();
    for (std::thread& waiter : waiters)
        waiter.join();
    EXPECT_EQ(locker.CountLockRequests(), 0);
}

TEST(Locker, ManyThreadsNeverHoldTheLockTogether) {
    BLocker locker("contended");
    // Deliberately not atomic: the lock alone must protect it.
    int64 counter = 0;
    int inside = 0;
    std::atomic<int> overlaps(0);
    const int kThreads = 8;
    const int kRounds = 5000;

    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; index++) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; round++) {
                ASSERT_TRUE(locker.Lock());
                if (++inside != 1)
                    overlaps++;
                ASSERT_TRUE(locker.Lock());
                counter++;
                locker.Unlock();
                inside--;
                locker.Unlock();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, (int64)kThreads * kRounds);
    EXPECT_EQ(overlaps.load(), 0);
}

TEST(Locker, TimedLockingUnderContentionKeepsCountsRight) {
    BLocker locker;
    int64 counter = 0;
    std::atomic<int64> timeouts(0);
    const int kThreads = 6;
    const int kRounds = 2000;

    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; index++) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds;) {
                if (locker.LockWithTimeout(50) != B_OK) {
                    timeouts++;
                    continue;
                }
                counter++;
                round++;
                locker.Unlock();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, (int64)kThreads * kRounds);
    EXPECT_EQ(locker.CountLockRequests(), 0);
    EXPECT_EQ(locker.LockingThread(), -1);
}

TEST(Locker, SemIsAlwaysMinusOne) {
    BLocker locker;
    EXPECT_EQ(locker.Sem(), -1);
}

TEST(LockerDeathTest, UnlockByAThreadThatDoesNotHoldItAborts) {
    EXPECT_DEATH(
        {
            BLocker locker;
            locker.Unlock();
        },
        "does not hold the lock");
}
