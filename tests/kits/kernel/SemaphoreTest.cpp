// Be semaphores: counting, timeouts, waking, deleting and the order of waiters.
#include <OS.h>

#include <Watchdog.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using testing_support::wait_until;

namespace {

int32 count_of(sem_id sem) {
    int32 count = 0;
    EXPECT_EQ(get_sem_count(sem, &count), B_OK);
    return count;
}

bool count_reaches(sem_id sem, int32 expected) {
    return wait_until([&] { return count_of(sem) == expected; });
}

// Acquires in a thread of its own and records the result. A test that fails while the
// thread still waits deletes the semaphore, so the thread can be joined.
class BackgroundAcquire {
public:
    BackgroundAcquire(sem_id sem, int32 count = 1, uint32 flags = 0, bigtime_t timeout = 0)
        : fSem(sem), fThread([this, sem, count, flags, timeout] {
              fResult.store(acquire_sem_etc(sem, count, flags, timeout));
              fDone.store(true);
          }) {}

    ~BackgroundAcquire() {
        if (!fDone.load())
            delete_sem(fSem);
        fThread.join();
    }

    bool Finishes() {
        return wait_until([this] { return fDone.load(); });
    }
    bool IsDone() const { return fDone.load(); }
    status_t Result() const { return fResult.load(); }

private:
    sem_id fSem;
    std::atomic<bool> fDone{false};
    std::atomic<status_t> fResult{B_ERROR};
    std::thread fThread;
};

} // namespace

// #pragma mark - Creating and counting

TEST(Semaphore, CreateSemGivesPositiveIdsThatAreNeverReused) {
    sem_id first = create_sem(0, "first");
    ASSERT_GT(first, 0);
    ASSERT_EQ(delete_sem(first), B_OK);

    sem_id second = create_sem(0, "second");
    ASSERT_GT(second, 0);
    EXPECT_GT(second, first);
    EXPECT_EQ(delete_sem(second), B_OK);
}

TEST(Semaphore, CreateSemAcceptsANullName) {
    sem_id sem = create_sem(1, NULL);
    ASSERT_GT(sem, 0);
    EXPECT_EQ(count_of(sem), 1);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, AcquireAndReleaseChangeTheCount) {
    sem_id sem = create_sem(3, "counting");
    ASSERT_GT(sem, 0);
    EXPECT_EQ(count_of(sem), 3);

    EXPECT_EQ(acquire_sem(sem), B_OK);
    EXPECT_EQ(count_of(sem), 2);
    EXPECT_EQ(acquire_sem_etc(sem, 2, 0, 0), B_OK);
    EXPECT_EQ(count_of(sem), 0);

    EXPECT_EQ(release_sem(sem), B_OK);
    EXPECT_EQ(count_of(sem), 1);
    EXPECT_EQ(release_sem_etc(sem, 4, B_DO_NOT_RESCHEDULE), B_OK);
    EXPECT_EQ(count_of(sem), 5);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, GetSemCountGoesNegativeByWhatWaitersWant) {
    sem_id sem = create_sem(1, "short");
    ASSERT_GT(sem, 0);

    BackgroundAcquire wantsThree(sem, 3);
    ASSERT_TRUE(count_reaches(sem, -2));
    BackgroundAcquire wantsTwo(sem, 2);
    EXPECT_TRUE(count_reaches(sem, -4));

    EXPECT_EQ(release_sem_etc(sem, 4, 0), B_OK);
    ASSERT_TRUE(wantsThree.Finishes());
    ASSERT_TRUE(wantsTwo.Finishes());
    EXPECT_EQ(count_of(sem), 0);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

// #pragma mark - Timeouts

TEST(Semaphore, ZeroRelativeTimeoutGivesWouldBlockAtOnce) {
    sem_id sem = create_sem(0, "empty");
    ASSERT_GT(sem, 0);

    EXPECT_EQ(acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 0), B_WOULD_BLOCK);
    EXPECT_EQ(count_of(sem), 0);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, ZeroRelativeTimeoutStillAcquiresWhatIsThere) {
    sem_id sem = create_sem(1, "one");
    ASSERT_GT(sem, 0);

    EXPECT_EQ(acquire_sem_etc(sem, 1, B_TIMEOUT, 0), B_OK);
    EXPECT_EQ(count_of(sem), 0);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, RelativeTimeoutGivesTimedOutOnceItHasPassed) {
    sem_id sem = create_sem(0, "empty");
    ASSERT_GT(sem, 0);

    const bigtime_t kTimeout = 50000;
    bigtime_t start = system_time();
    EXPECT_EQ(acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, kTimeout), B_TIMED_OUT);
    bigtime_t elapsed = system_time() - start;
    EXPECT_GE(elapsed, kTimeout);
    EXPECT_LT(elapsed, kTimeout + 2000000);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, AbsoluteTimeoutGivesTimedOutAtTheDeadline) {
    sem_id sem = create_sem(0, "empty");
    ASSERT_GT(sem, 0);

    bigtime_t deadline = system_time() + 50000;
    EXPECT_EQ(acquire_sem_etc(sem, 1, B_ABSOLUTE_TIMEOUT, deadline), B_TIMED_OUT);
    EXPECT_GE(system_time(), deadline);
    EXPECT_LT(system_time(), deadline + 2000000);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, AbsoluteDeadlineInThePastGivesTimedOut) {
    sem_id sem = create_sem(0, "empty");
    ASSERT_GT(sem, 0);

    EXPECT_EQ(acquire_sem_etc(sem, 1, B_ABSOLUTE_TIMEOUT, system_time() - 1000), B_TIMED_OUT);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, TimedOutAcquireLeavesTheCountAsItWas) {
    sem_id sem = create_sem(1, "one");
    ASSERT_GT(sem, 0);

    EXPECT_EQ(acquire_sem_etc(sem, 2, B_RELATIVE_TIMEOUT, 10000), B_TIMED_OUT);
    EXPECT_EQ(count_of(sem), 1);
    EXPECT_EQ(acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 0), B_OK);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

// #pragma mark - Waking

TEST(Semaphore, ReleaseFromAnotherThreadWakesABlockedAcquire) {
    sem_id sem = create_sem(0, "gate");
    ASSERT_GT(sem, 0);

    BackgroundAcquire waiter(sem);
    ASSERT_TRUE(count_reaches(sem, -1));
    EXPECT_FALSE(waiter.IsDone());

    EXPECT_EQ(release_sem(sem), B_OK);
    ASSERT_TRUE(waiter.Finishes());
    EXPECT_EQ(waiter.Result(), B_OK);
    EXPECT_EQ(count_of(sem), 0);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, ReleaseSemEtcWithThreeLetsThreeSingleAcquiresThrough) {
    sem_id sem = create_sem(0, "three");
    ASSERT_GT(sem, 0);

    std::vector<std::unique_ptr<BackgroundAcquire>> waiters;
    for (int32 index = 1; index <= 4; index++) {
        waiters.push_back(std::make_unique<BackgroundAcquire>(sem));
        ASSERT_TRUE(count_reaches(sem, -index));
    }

    EXPECT_EQ(release_sem_etc(sem, 3, 0), B_OK);
    for (int index = 0; index < 3; index++) {
        ASSERT_TRUE(waiters[index]->Finishes()) << index;
        EXPECT_EQ(waiters[index]->Result(), B_OK) << index;
    }
    // The fourth waiter is still queued; its wish shows in the count.
    EXPECT_EQ(count_of(sem), -1);
    EXPECT_FALSE(waiters[3]->IsDone());

    EXPECT_EQ(release_sem(sem), B_OK);
    ASSERT_TRUE(waiters[3]->Finishes());
    EXPECT_EQ(waiters[3]->Result(), B_OK);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, ReleaseServesWaitersInArrivalOrder) {
    sem_id sem = create_sem(0, "queue");
    ASSERT_GT(sem, 0);

    BackgroundAcquire first(sem, 2);
    ASSERT_TRUE(count_reaches(sem, -2));
    BackgroundAcquire second(sem, 1);
    ASSERT_TRUE(count_reaches(sem, -3));

    // One would do for the second waiter, but the first came earlier.
    EXPECT_EQ(release_sem(sem), B_OK);
    EXPECT_EQ(count_of(sem), -2);
    EXPECT_FALSE(first.IsDone());
    EXPECT_FALSE(second.IsDone());

    EXPECT_EQ(release_sem(sem), B_OK);
    ASSERT_TRUE(first.Finishes());
    EXPECT_EQ(first.Result(), B_OK);
    EXPECT_FALSE(second.IsDone());

    EXPECT_EQ(release_sem(sem), B_OK);
    ASSERT_TRUE(second.Finishes());
    EXPECT_EQ(second.Result(), B_OK);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, TimedOutFirstWaiterLetsTheWaiterBehindItThrough) {
    sem_id sem = create_sem(0, "queue");
    ASSERT_GT(sem, 0);

    BackgroundAcquire greedy(sem, 2, B_RELATIVE_TIMEOUT, 500000);
    ASSERT_TRUE(count_reaches(sem, -2));
    EXPECT_EQ(release_sem(sem), B_OK);

    // Queued behind the greedy waiter, then served when its timeout takes it away.
    BackgroundAcquire modest(sem, 1);
    ASSERT_TRUE(greedy.Finishes());
    EXPECT_EQ(greedy.Result(), B_TIMED_OUT);
    ASSERT_TRUE(modest.Finishes());
    EXPECT_EQ(modest.Result(), B_OK);
    EXPECT_EQ(count_of(sem), 0);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, SemaphoreKeepsACounterConsistentAcrossThreads) {
    sem_id sem = create_sem(1, "mutex");
    ASSERT_GT(sem, 0);

    const int kThreads = 4;
    const int kRounds = 2000;
    int counter = 0;
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; index++) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; round++) {
                if (acquire_sem(sem) != B_OK)
                    return;
                counter++;
                release_sem(sem);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(counter, kThreads * kRounds);
    EXPECT_EQ(count_of(sem), 1);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

// #pragma mark - Deleting and bad input

TEST(Semaphore, DeleteSemWakesEveryBlockedWaiterWithBadSemId) {
    sem_id sem = create_sem(0, "doomed");
    ASSERT_GT(sem, 0);

    BackgroundAcquire plain(sem);
    ASSERT_TRUE(count_reaches(sem, -1));
    BackgroundAcquire several(sem, 3);
    ASSERT_TRUE(count_reaches(sem, -4));
    BackgroundAcquire timed(sem, 1, B_RELATIVE_TIMEOUT, B_INFINITE_TIMEOUT);
    ASSERT_TRUE(count_reaches(sem, -5));

    EXPECT_EQ(delete_sem(sem), B_OK);
    for (BackgroundAcquire* waiter : {&plain, &several, &timed}) {
        ASSERT_TRUE(waiter->Finishes());
        EXPECT_EQ(waiter->Result(), B_BAD_SEM_ID);
    }
}

TEST(Semaphore, UnknownAndDeletedIdsGiveBadSemId) {
    sem_id deleted = create_sem(1, "gone");
    ASSERT_GT(deleted, 0);
    ASSERT_EQ(delete_sem(deleted), B_OK);

    for (sem_id sem : {(sem_id)-1, (sem_id)0, deleted, (sem_id)INT32_MAX}) {
        int32 count = 0;
        EXPECT_EQ(delete_sem(sem), B_BAD_SEM_ID) << sem;
        EXPECT_EQ(acquire_sem(sem), B_BAD_SEM_ID) << sem;
        EXPECT_EQ(acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 0), B_BAD_SEM_ID) << sem;
        EXPECT_EQ(release_sem(sem), B_BAD_SEM_ID) << sem;
        EXPECT_EQ(release_sem_etc(sem, 2, 0), B_BAD_SEM_ID) << sem;
        EXPECT_EQ(get_sem_count(sem, &count), B_BAD_SEM_ID) << sem;
    }
}

TEST(Semaphore, BadCountsGiveBadValue) {
    EXPECT_EQ(create_sem(-1, "negative"), B_BAD_VALUE);

    sem_id sem = create_sem(2, "counts");
    ASSERT_GT(sem, 0);
    for (int32 count : {0, -1, (int32)INT32_MIN}) {
        EXPECT_EQ(acquire_sem_etc(sem, count, 0, 0), B_BAD_VALUE) << count;
        EXPECT_EQ(release_sem_etc(sem, count, 0), B_BAD_VALUE) << count;
    }
    EXPECT_EQ(get_sem_count(sem, NULL), B_BAD_VALUE);
    EXPECT_EQ(count_of(sem), 2);
    EXPECT_EQ(delete_sem(sem), B_OK);
}

TEST(Semaphore, ReleasePastTheLargestCountGivesBadValue) {
    sem_id sem = create_sem(INT32_MAX - 1, "full");
    ASSERT_GT(sem, 0);

    EXPECT_EQ(release_sem_etc(sem, 2, 0), B_BAD_VALUE);
    EXPECT_EQ(release_sem(sem), B_OK);
    EXPECT_EQ(count_of(sem), INT32_MAX);
    EXPECT_EQ(delete_sem(sem), B_OK);
}
