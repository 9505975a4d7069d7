// Semaphores that the display server releases when the keys held down or the
// number of workspaces change, for threads that would otherwise poll them.
// Every HeadlessTestApi call returns once the server has handled it, so a
// release it causes has happened by then and a missing one will not come later.
#include "HeadlessAppTest.h"
#include "Watchdog.h"

#include <InterfaceDefs.h>
#include <OS.h>

#include <gtest/gtest.h>

#include <stdlib.h>

using BPrivate::HeadlessTestApi;
using testing_support::HeadlessAppTest;

namespace {

// Be key codes of a and s.
const int32 kFirstKey = 0x3c;
const int32 kSecondKey = 0x3d;
// Generous for a loaded machine; a release that comes is there long before.
const bigtime_t kReleaseTimeout = 10000000;

class KeyAndWorkspaceWatchTest : public HeadlessAppTest {
protected:
    void SetUp() override {
        HeadlessAppTest::SetUp();
        fSemaphore = create_sem(0, "watch");
        ASSERT_GE(fSemaphore, 0);
    }

    void TearDown() override {
        HeadlessTestApi::ReleaseKey(kFirstKey);
        HeadlessTestApi::ReleaseKey(kSecondKey);
        stop_watching_keys_and_workspaces(fSemaphore);
        delete_sem(fSemaphore);
        HeadlessAppTest::TearDown();
    }

    static int32 Count(sem_id semaphore) {
        int32 count = -1;
        EXPECT_EQ(B_OK, get_sem_count(semaphore, &count));
        return count;
    }

    static status_t Acquire(sem_id semaphore) {
        return acquire_sem_etc(semaphore, 1, B_RELATIVE_TIMEOUT, kReleaseTimeout);
    }

    sem_id fSemaphore = -1;
};

} // namespace

TEST_F(KeyAndWorkspaceWatchTest, KeyPressReleasesTheSemaphore) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    EXPECT_EQ(0, Count(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    EXPECT_EQ(B_OK, Acquire(fSemaphore));
    EXPECT_EQ(0, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, KeyReleaseReleasesTheSemaphoreAgain) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    ASSERT_EQ(B_OK, Acquire(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(kFirstKey));
    EXPECT_EQ(B_OK, Acquire(fSemaphore));
    EXPECT_EQ(0, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, KeyAlreadyDownChangesNothingAndReleasesNothing) {
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    // The key repeats, as a held key does: the states stay as they were.
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    EXPECT_EQ(0, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, WorkspaceCountChangeReleasesTheSemaphore) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(4, count_workspaces());
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(6));
    EXPECT_EQ(B_OK, Acquire(fSemaphore));
    EXPECT_EQ(0, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, SettingTheSameWorkspaceCountReleasesNothing) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(count_workspaces()));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_EQ(0, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, SwitchingWorkspacesReleasesNothing) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspace(2));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_EQ(0, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, NothingIsReleasedAfterStopWatching) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    stop_watching_keys_and_workspaces(fSemaphore);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(kFirstKey));
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(7));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    EXPECT_EQ(0, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, StopWatchingAnUnwatchedSemaphoreIsHarmless) {
    stop_watching_keys_and_workspaces(fSemaphore);
    stop_watching_keys_and_workspaces(-5);
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    EXPECT_EQ(B_OK, Acquire(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, WatchingTwiceGivesOneReleasePerChange) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    EXPECT_EQ(1, Count(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(8));
    EXPECT_EQ(2, Count(fSemaphore));
    // One stop is enough after two watches.
    stop_watching_keys_and_workspaces(fSemaphore);
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(kFirstKey));
    EXPECT_EQ(2, Count(fSemaphore));
}

TEST_F(KeyAndWorkspaceWatchTest, ReleasesAddUpUntilAcquired) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kSecondKey));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(kSecondKey));
    EXPECT_EQ(3, Count(fSemaphore));
    EXPECT_EQ(B_OK, acquire_sem_etc(fSemaphore, 3, B_RELATIVE_TIMEOUT, kReleaseTimeout));
}

TEST_F(KeyAndWorkspaceWatchTest, DeletedSemaphoreCannotBeWatched) {
    ASSERT_EQ(B_OK, delete_sem(fSemaphore));
    EXPECT_EQ(B_BAD_SEM_ID, watch_keys_and_workspaces(fSemaphore));
    EXPECT_EQ(B_BAD_SEM_ID, watch_keys_and_workspaces(-1));
    EXPECT_EQ(B_BAD_SEM_ID, watch_keys_and_workspaces(0x7fffffff));
}

TEST_F(KeyAndWorkspaceWatchTest, SemaphoreDeletedWhileWatchedIsForgotten) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, delete_sem(fSemaphore));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(kFirstKey));
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(3));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    // A new semaphore never takes the old one's id, and still gets its releases.
    sem_id other = create_sem(0, "other");
    ASSERT_GE(other, 0);
    EXPECT_NE(fSemaphore, other);
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(other));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    EXPECT_EQ(B_OK, Acquire(other));
    stop_watching_keys_and_workspaces(other);
    delete_sem(other);
}

TEST_F(KeyAndWorkspaceWatchTest, WaiterIsWokenByAKeyPress) {
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    status_t result = B_ERROR;
    thread_id waiter = spawn_thread(
        [](void* data) -> int32 {
            sem_id semaphore = *static_cast<sem_id*>(data);
            return acquire_sem_etc(semaphore, 1, B_RELATIVE_TIMEOUT, kReleaseTimeout);
        },
        "waiter", B_NORMAL_PRIORITY, &fSemaphore);
    ASSERT_GE(waiter, 0);
    ASSERT_EQ(B_OK, resume_thread(waiter));
    // Waits until the waiter sleeps on the semaphore, so the press wakes it.
    ASSERT_TRUE(testing_support::wait_until([&] { return Count(fSemaphore) < 0; }));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    ASSERT_EQ(B_OK, wait_for_thread(waiter, &result));
    EXPECT_EQ(B_OK, result);
}

TEST_F(KeyAndWorkspaceWatchTest, TwoSemaphoresAreBothReleased) {
    sem_id other = create_sem(0, "other");
    ASSERT_GE(other, 0);
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(fSemaphore));
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(other));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(kFirstKey));
    EXPECT_EQ(B_OK, Acquire(fSemaphore));
    EXPECT_EQ(B_OK, Acquire(other));
    ASSERT_EQ(B_OK, HeadlessTestApi::SetWorkspaceCount(2));
    EXPECT_EQ(B_OK, Acquire(fSemaphore));
    EXPECT_EQ(B_OK, Acquire(other));

    // Stopping one leaves the other watched.
    stop_watching_keys_and_workspaces(fSemaphore);
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseKey(kFirstKey));
    EXPECT_EQ(B_OK, Acquire(other));
    EXPECT_EQ(0, Count(fSemaphore));
    stop_watching_keys_and_workspaces(other);
    delete_sem(other);
}

TEST(KeyAndWorkspaceWatchWithoutServerTest, WatchingWithoutADisplayServerIsNoInit) {
    // No backend of that name: no display server can start in this process.
    setenv("GLIMROW_DISPLAY", "no-such-backend", 1);
    sem_id semaphore = create_sem(0, "unserved");
    ASSERT_GE(semaphore, 0);
    EXPECT_EQ(B_NO_INIT, watch_keys_and_workspaces(semaphore));
    stop_watching_keys_and_workspaces(semaphore);
    EXPECT_EQ(B_OK, delete_sem(semaphore));
}
