// The keyboard state the X11 backend tracks from events once get_key_info() was
// first asked: keys and lock modifiers changed by another client (xdotool through
// XTEST) while no window of ours exists, so none has the focus, and the
// semaphores released as they change.
#include "X11TestSupport.h"

#include <InterfaceDefs.h>

using x11_testing::X11BareTest;

namespace {

const int32 kLeftShiftKey = 0x4b;
const int32 kLeftControlKey = 0x5c;

bool key_down(const key_info& info, int32 key) {
    return (info.key_states[key >> 3] & (0x80 >> (key & 7))) != 0;
}

// Waits on the semaphore until a release finds the left Shift key as wanted: each
// release must come within ten seconds, so one that never follows the key
// fails the test.
bool released_until_shift(sem_id semaphore, bool down) {
    key_info info;
    while (true) {
        if (acquire_sem_etc(semaphore, 1, B_RELATIVE_TIMEOUT, 10000000) != B_OK)
            return false;
        if (get_key_info(&info) == B_OK && key_down(info, kLeftShiftKey) == down)
            return true;
    }
}

} // namespace

TEST_F(X11BareTest, KeyStateIsTrackedAfterFirstQuestion) {
    EXPECT_FALSE(fServer->TracksKeysPassively());
    key_info info;
    ASSERT_EQ(B_OK, get_key_info(&info));
    EXPECT_TRUE(testing_support::wait_until([&] { return fServer->TracksKeysPassively(); }));
}

TEST_F(X11BareTest, TrackedStateFollowsKeyDownAndUpWithoutOurFocus) {
    key_info info;
    ASSERT_EQ(B_OK, get_key_info(&info));
    ASSERT_TRUE(testing_support::wait_until([&] { return fServer->TracksKeysPassively(); }));
    ASSERT_FALSE(key_down(info, kLeftShiftKey));

    ASSERT_EQ(0, fDisplay.Run("xdotool keydown shift"));
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return get_key_info(&info) == B_OK && key_down(info, kLeftShiftKey); }));
    EXPECT_TRUE((info.modifiers & B_LEFT_SHIFT_KEY) != 0);
    EXPECT_TRUE(fServer->TracksKeysPassively());

    ASSERT_EQ(0, fDisplay.Run("xdotool keyup shift"));
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return get_key_info(&info) == B_OK && !key_down(info, kLeftShiftKey); }));
    EXPECT_EQ(0u, info.modifiers & B_SHIFT_KEY);
}

TEST_F(X11BareTest, KeyHeldBeforeTrackingStartsIsSeen) {
    ASSERT_EQ(0, fDisplay.Run("xdotool keydown ctrl"));
    key_info info;
    ASSERT_EQ(B_OK, get_key_info(&info));
    ASSERT_TRUE(testing_support::wait_until([&] { return fServer->TracksKeysPassively(); }));
    ASSERT_EQ(B_OK, get_key_info(&info));
    EXPECT_TRUE(key_down(info, kLeftControlKey));

    ASSERT_EQ(0, fDisplay.Run("xdotool keyup ctrl"));
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return get_key_info(&info) == B_OK && !key_down(info, kLeftControlKey); }));
}

TEST_F(X11BareTest, CapsLockTogglesTrackedLockModifier) {
    key_info info;
    ASSERT_EQ(B_OK, get_key_info(&info));
    ASSERT_TRUE(testing_support::wait_until([&] { return fServer->TracksKeysPassively(); }));
    ASSERT_EQ(0u, info.modifiers & B_CAPS_LOCK);

    ASSERT_EQ(0, fDisplay.Run("xdotool key Caps_Lock"));
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return get_key_info(&info) == B_OK && (info.modifiers & B_CAPS_LOCK) != 0; }));

    ASSERT_EQ(0, fDisplay.Run("xdotool key Caps_Lock"));
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return get_key_info(&info) == B_OK && (info.modifiers & B_CAPS_LOCK) == 0; }));
}

TEST_F(X11BareTest, WatchingStartsTrackingAndReleasesOnceItRuns) {
    sem_id semaphore = create_sem(0, "watch");
    ASSERT_GE(semaphore, 0);
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(semaphore));
    // The keys are looked at afresh once they are tracked.
    EXPECT_EQ(B_OK, acquire_sem_etc(semaphore, 1, B_RELATIVE_TIMEOUT, 10000000));
    EXPECT_TRUE(testing_support::wait_until([&] { return fServer->TracksKeysPassively(); }));
    stop_watching_keys_and_workspaces(semaphore);
    delete_sem(semaphore);
}

TEST_F(X11BareTest, WatchingSemaphoreIsReleasedByKeysPressedWithoutOurFocus) {
    sem_id semaphore = create_sem(0, "watch");
    ASSERT_GE(semaphore, 0);
    ASSERT_EQ(B_OK, watch_keys_and_workspaces(semaphore));
    ASSERT_TRUE(testing_support::wait_until([&] { return fServer->TracksKeysPassively(); }));
    key_info info;
    ASSERT_EQ(B_OK, get_key_info(&info));
    ASSERT_FALSE(key_down(info, kLeftShiftKey));

    ASSERT_EQ(0, fDisplay.Run("xdotool keydown shift"));
    EXPECT_TRUE(released_until_shift(semaphore, true));
    ASSERT_EQ(0, fDisplay.Run("xdotool keyup shift"));
    EXPECT_TRUE(released_until_shift(semaphore, false));
    stop_watching_keys_and_workspaces(semaphore);
    delete_sem(semaphore);
}
