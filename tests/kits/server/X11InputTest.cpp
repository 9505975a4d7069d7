// The mouse and the keyboard of a real X server, driven by xdotool (XTEST): the
// buttons, click counts and modifiers views see, shortcuts, and the keyboard's
// state read while no window of ours has the focus.
#include "X11TestSupport.h"

#include <InterfaceDefs.h>

using x11_testing::RecordingWindow;
using x11_testing::X11BareTest;
using x11_testing::X11ManagedTest;

namespace {

bool key_down(const key_info& info, int32 key) {
    return (info.key_states[key >> 3] & (0x80 >> (key & 7))) != 0;
}

} // namespace

TEST_F(X11ManagedTest, ClickArrivesWithPrimaryButtonAndOneClick) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 299, 199), &fLog,
                                                  B_TITLED_WINDOW_LOOK, B_WILL_ACCEPT_FIRST_CLICK);
    ShowActive(window);
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 150 130 click 1"));
    EXPECT_EQ("down buttons 1 clicks 1 modifiers 0 at 50,30", fLog.WaitFor("down"));
}

TEST_F(X11ManagedTest, RightClickArrivesAsSecondaryButton) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 299, 199), &fLog,
                                                  B_TITLED_WINDOW_LOOK, B_WILL_ACCEPT_FIRST_CLICK);
    ShowActive(window);
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 120 110 click 3"));
    EXPECT_EQ("down buttons 2 clicks 1 modifiers 0 at 20,10", fLog.WaitFor("down"));
}

TEST_F(X11ManagedTest, MiddleClickArrivesAsTertiaryButton) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 299, 199), &fLog,
                                                  B_TITLED_WINDOW_LOOK, B_WILL_ACCEPT_FIRST_CLICK);
    ShowActive(window);
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 120 110 click 2"));
    EXPECT_EQ("down buttons 4 clicks 1 modifiers 0 at 20,10", fLog.WaitFor("down"));
}

TEST_F(X11ManagedTest, DoubleClickCountsTwoClicks) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 299, 199), &fLog,
                                                  B_TITLED_WINDOW_LOOK, B_WILL_ACCEPT_FIRST_CLICK);
    ShowActive(window);
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 150 150 click --repeat 2 --delay 80 1"));
    EXPECT_EQ("down buttons 1 clicks 1 modifiers 0 at 50,50", fLog.WaitFor("down", 0));
    EXPECT_EQ("down buttons 1 clicks 2 modifiers 0 at 50,50", fLog.WaitFor("down", 1));
}

TEST_F(X11ManagedTest, ShiftClickCarriesTheShiftModifier) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 299, 199), &fLog,
                                                  B_TITLED_WINDOW_LOOK, B_WILL_ACCEPT_FIRST_CLICK);
    ShowActive(window);
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 150 130 keydown shift click 1 keyup shift"));
    std::string down = fLog.WaitFor("down");
    EXPECT_EQ("down buttons 1 clicks 1 modifiers " + std::to_string(B_SHIFT_KEY) + " at 50,30",
              down);
}

TEST_F(X11ManagedTest, AltKeyShortcutFires) {
    RecordingWindow* window =
        new RecordingWindow(BRect(100, 100, 299, 199), &fLog, B_TITLED_WINDOW_LOOK, 0);
    window->Lock();
    window->AddShortcut('k', B_COMMAND_KEY, new BMessage('shrt'));
    window->Unlock();
    ShowActive(window);
    ASSERT_EQ(0, fDisplay.Run("xdotool key alt+k"));
    EXPECT_EQ("shortcut", fLog.WaitFor("shortcut"));
}

TEST_F(X11BareTest, KeyInfoSeesKeysHeldWithoutOurFocus) {
    // No window of ours exists, so none has the keyboard.
    ASSERT_EQ(0, fDisplay.Run("xdotool keydown ctrl keydown a sleep 4 keyup a keyup ctrl &"));
    key_info info;
    bool held = testing_support::wait_until([&] {
        return get_key_info(&info) == B_OK && key_down(info, 0x5c) && key_down(info, 0x3c);
    });
    EXPECT_TRUE(held);
    EXPECT_TRUE((info.modifiers & B_CONTROL_KEY) != 0);
    EXPECT_TRUE((info.modifiers & B_LEFT_CONTROL_KEY) != 0);
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return get_key_info(&info) == B_OK && !key_down(info, 0x5c); }));
}

TEST_F(X11ManagedTest, WheelArrivesAsWheelChange) {
    RecordingWindow* window =
        new RecordingWindow(BRect(100, 100, 299, 199), &fLog, B_TITLED_WINDOW_LOOK, 0);
    ShowActive(window);
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 150 150 click 5 click 4"));
    EXPECT_EQ("wheel 0,1", fLog.WaitFor("wheel", 0));
    EXPECT_EQ("wheel 0,-1", fLog.WaitFor("wheel", 1));
}

TEST_F(X11ManagedTest, KeyBringsBytesKeyCodeAndRawCharacter) {
    RecordingWindow* window =
        new RecordingWindow(BRect(100, 100, 299, 199), &fLog, B_TITLED_WINDOW_LOOK, 0);
    ShowActive(window);
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    ASSERT_TRUE(testing_support::wait_until([&] {
        return fDisplay.Output("xdotool getwindowfocus").find(std::to_string(XWindow(window))) == 0;
    }));
    ASSERT_EQ(0, fDisplay.Run("xdotool key a shift+a Left"));
    EXPECT_EQ("key a code 60 raw 97 modifiers 0", fLog.WaitFor("key", 0));
    EXPECT_EQ("key A code 60 raw 97 modifiers " + std::to_string(B_SHIFT_KEY),
              fLog.WaitFor("key", 1));
    EXPECT_EQ("key \x1c code 97 raw 28 modifiers 0", fLog.WaitFor("key", 2));
}
