// Windows on a real X server (Xvfb with openbox): where they land, on which
// desktops, what the screen shows of them, and desktops switched from outside.
#include "X11TestSupport.h"

#include <InterfaceDefs.h>
#include <OS.h>
#include <Screen.h>

#include <X11/Xlib.h>

using x11_testing::RecordingWindow;
using x11_testing::X11BareTest;
using x11_testing::X11ManagedTest;

TEST_F(X11ManagedTest, ScreenFrameIsTheRootWindow) {
    EXPECT_EQ(BRect(0, 0, 1023, 767), BScreen().Frame());
}

TEST_F(X11ManagedTest, BarLandsInTheScreenCornerOnAllDesktops) {
    RecordingWindow* window = new RecordingWindow(
        BRect(0, 728, 199, 767), &fLog, B_NO_BORDER_WINDOW_LOOK, B_NOT_MOVABLE, B_ALL_WORKSPACES);
    window->Show();
    EXPECT_TRUE(WaitForGeometry(window, 0, 728, 200, 40));
    EXPECT_EQ(0xffffffffL, fDisplay.WindowCardinal(XWindow(window), "_NET_WM_DESKTOP"));
}

TEST_F(X11ManagedTest, TitledWindowContentsLandAtTheFrameAsked) {
    RecordingWindow* window =
        new RecordingWindow(BRect(100, 120, 399, 319), &fLog, B_TITLED_WINDOW_LOOK, 0);
    window->Show();
    EXPECT_TRUE(WaitForGeometry(window, 100, 120, 300, 200));
}

TEST_F(X11ManagedTest, MoveToLandsExactlyAlsoOutsideTheScreen) {
    RecordingWindow* window =
        new RecordingWindow(BRect(50, 50, 149, 89), &fLog, B_BORDERED_WINDOW_LOOK, 0);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 50, 50, 100, 40));
    window->Lock();
    window->MoveTo(974, 748);
    window->Unlock();
    EXPECT_TRUE(WaitForGeometry(window, 974, 748, 100, 40));
    window->Lock();
    window->ResizeTo(59, 29);
    window->MoveTo(-20, 300);
    window->Unlock();
    EXPECT_TRUE(WaitForGeometry(window, -20, 300, 60, 30));
}

TEST_F(X11ManagedTest, ScreenShowsWhatTheWindowDrew) {
    RecordingWindow* window =
        new RecordingWindow(BRect(200, 200, 299, 259), &fLog, B_NO_BORDER_WINDOW_LOOK, 0,
                            B_CURRENT_WORKSPACE, rgb_color{10, 200, 30, 255});
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 200, 200, 100, 60));
    EXPECT_TRUE(
        testing_support::wait_until([&] { return fDisplay.ScreenPixel(250, 230) == 0x0ac81e; }));
    EXPECT_EQ(0x0ac81eL, fDisplay.ScreenPixel(200, 200));
    EXPECT_EQ(0x0ac81eL, fDisplay.ScreenPixel(299, 259));
}

// Large windows go through an image of their own (shared memory), small ones are
// sent straight from the server's copy of their pixels; both must show.
TEST_F(X11ManagedTest, ScreenShowsWhatALargeWindowDrew) {
    RecordingWindow* window =
        new RecordingWindow(BRect(100, 100, 499, 399), &fLog, B_NO_BORDER_WINDOW_LOOK, 0,
                            B_CURRENT_WORKSPACE, rgb_color{200, 30, 10, 255});
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 400, 300));
    EXPECT_TRUE(
        testing_support::wait_until([&] { return fDisplay.ScreenPixel(300, 250) == 0xc81e0a; }));
    EXPECT_EQ(0xc81e0aL, fDisplay.ScreenPixel(100, 100));
    // The last column and row (the far corner is left alone: the pointer of
    // an earlier test may rest there).
    EXPECT_EQ(0xc81e0aL, fDisplay.ScreenPixel(499, 300));
    EXPECT_EQ(0xc81e0aL, fDisplay.ScreenPixel(300, 399));
}

TEST_F(X11ManagedTest, WindowGrownPastTheSmallSizeAndBackStillShowsItsPixels) {
    RecordingWindow* window =
        new RecordingWindow(BRect(50, 50, 149, 99), &fLog, B_NO_BORDER_WINDOW_LOOK, 0,
                            B_CURRENT_WORKSPACE, rgb_color{10, 30, 200, 255});
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 50, 50, 100, 50));
    ASSERT_TRUE(
        testing_support::wait_until([&] { return fDisplay.ScreenPixel(100, 75) == 0x0a1ec8; }));

    window->Lock();
    window->ResizeTo(499, 399);
    window->Unlock();
    ASSERT_TRUE(WaitForGeometry(window, 50, 50, 500, 400));
    EXPECT_TRUE(
        testing_support::wait_until([&] { return fDisplay.ScreenPixel(540, 440) == 0x0a1ec8; }));

    window->Lock();
    window->ResizeTo(79, 39);
    window->Unlock();
    ASSERT_TRUE(WaitForGeometry(window, 50, 50, 80, 40));
    EXPECT_TRUE(
        testing_support::wait_until([&] { return fDisplay.ScreenPixel(120, 80) == 0x0a1ec8; }));
}

TEST_F(X11ManagedTest, WindowManagerDesktopsAreTheWorkspaces) {
    EXPECT_EQ(4, count_workspaces());
    EXPECT_EQ(0, current_workspace());
}

TEST_F(X11ManagedTest, SwitchingDesktopFromOutsideActivatesWorkspace) {
    RecordingWindow* window = new RecordingWindow(BRect(10, 10, 109, 49), &fLog,
                                                  B_NO_BORDER_WINDOW_LOOK, 0, B_ALL_WORKSPACES);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 10, 10, 100, 40));
    ASSERT_EQ(0, fDisplay.Run("xdotool set_desktop 2"));
    EXPECT_FALSE(fLog.WaitFor("workspace 0 off").empty());
    EXPECT_FALSE(fLog.WaitFor("workspace 2 on").empty());
    EXPECT_EQ(2, current_workspace());
}

TEST_F(X11ManagedTest, ActivateWorkspaceSwitchesTheDesktop) {
    activate_workspace(3);
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return fDisplay.RootCardinal("_NET_CURRENT_DESKTOP") == 3; }));
}

TEST_F(X11ManagedTest, WindowOnOneWorkspaceGetsItsDesktop) {
    RecordingWindow* window =
        new RecordingWindow(BRect(10, 10, 109, 49), &fLog, B_TITLED_WINDOW_LOOK, 0, 1u << 1);
    window->Show();
    EXPECT_TRUE(testing_support::wait_until(
        [&] { return fDisplay.WindowCardinal(XWindow(window), "_NET_WM_DESKTOP") == 1; }));
}

TEST_F(X11BareTest, WithoutWindowManagerThereIsOneWorkspace) {
    EXPECT_EQ(1, count_workspaces());
    EXPECT_EQ(0, current_workspace());
}

TEST_F(X11BareTest, WithoutWindowManagerWindowLandsAtTheFrameAsked) {
    RecordingWindow* window =
        new RecordingWindow(BRect(30, 40, 129, 79), &fLog, B_TITLED_WINDOW_LOOK, 0);
    window->Show();
    EXPECT_TRUE(WaitForGeometry(window, 30, 40, 100, 40));
}

// A window that grows and moves in one go (a bar growing upward from a bottom
// corner) must not show for a moment at its new size in its old place.
TEST_F(X11BareTest, ResizeAndMoveMadeUnderOneLockReachTheScreenTogether) {
    RecordingWindow* window =
        new RecordingWindow(BRect(50, 50, 149, 89), &fLog, B_BORDERED_WINDOW_LOOK, 0);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 50, 50, 100, 40));
    Display* observer = XOpenDisplay(fDisplay.Name().c_str());
    ASSERT_NE(observer, nullptr);
    XSelectInput(observer, XWindow(window), StructureNotifyMask);
    XSync(observer, False);

    window->Lock();
    window->ResizeTo(119, 59);
    // Time enough for the server's thread to send the resize alone, were it to.
    snooze(100000);
    window->MoveTo(300, 200);
    window->Unlock();
    ASSERT_TRUE(WaitForGeometry(window, 300, 200, 120, 60));

    XSync(observer, False);
    int configures = 0;
    while (XPending(observer) > 0) {
        XEvent event;
        XNextEvent(observer, &event);
        if (event.type != ConfigureNotify)
            continue;
        configures++;
        const XConfigureEvent& configure = event.xconfigure;
        bool oldFrame = configure.x == 50 && configure.y == 50 && configure.width == 100 &&
                        configure.height == 40;
        bool newFrame = configure.x == 300 && configure.y == 200 && configure.width == 120 &&
                        configure.height == 60;
        EXPECT_TRUE(oldFrame || newFrame) << configure.x << "," << configure.y << " "
                                          << configure.width << "x" << configure.height;
    }
    EXPECT_GE(configures, 1);
    XCloseDisplay(observer);
}

TEST_F(X11ManagedTest, BorderedLookIsUndecoratedAndSkipsTaskbarAndPager) {
    RecordingWindow* window =
        new RecordingWindow(BRect(10, 10, 109, 49), &fLog, B_BORDERED_WINDOW_LOOK, 0);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 10, 10, 100, 40));
    unsigned long xWindow = XWindow(window);
    // flags (functions | decorations), functions, decorations 0.
    std::string motif = fDisplay.WindowCardinals(xWindow, "_MOTIF_WM_HINTS");
    EXPECT_EQ(0u, motif.find("3 1 0")) << motif;
    std::string states = fDisplay.WindowAtoms(xWindow, "_NET_WM_STATE");
    EXPECT_NE(std::string::npos, states.find("_NET_WM_STATE_SKIP_TASKBAR")) << states;
    EXPECT_NE(std::string::npos, states.find("_NET_WM_STATE_SKIP_PAGER")) << states;
}

TEST_F(X11ManagedTest, TitledLookIsDecorated) {
    RecordingWindow* window =
        new RecordingWindow(BRect(10, 40, 109, 79), &fLog, B_TITLED_WINDOW_LOOK, 0);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 10, 40, 100, 40));
    std::string motif = fDisplay.WindowCardinals(XWindow(window), "_MOTIF_WM_HINTS");
    EXPECT_EQ(0u, motif.find("3 1 1")) << motif;
    EXPECT_EQ(std::string::npos,
              fDisplay.WindowAtoms(XWindow(window), "_NET_WM_STATE").find("SKIP_TASKBAR"));
}

TEST_F(X11ManagedTest, ModalWindowIsTransientForTheApplication) {
    RecordingWindow* window =
        new RecordingWindow(BRect(100, 100, 299, 199), &fLog, B_MODAL_WINDOW_LOOK, 0,
                            B_CURRENT_WORKSPACE, rgb_color{0, 0, 0, 255}, B_MODAL_APP_WINDOW_FEEL);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    EXPECT_EQ(fDisplay.Root(), fDisplay.TransientFor(XWindow(window)));
    EXPECT_NE(std::string::npos,
              fDisplay.WindowAtoms(XWindow(window), "_NET_WM_STATE").find("_NET_WM_STATE_MODAL"));
}

TEST_F(X11ManagedTest, NotResizableWindowHasFixedSizeHints) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 299, 199), &fLog,
                                                  B_TITLED_WINDOW_LOOK, B_NOT_RESIZABLE);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 200, 100));
    // flags, x, y, width, height, min width, min height, max width, max height...
    std::string hints = fDisplay.WindowCardinals(XWindow(window), "WM_NORMAL_HINTS");
    EXPECT_NE(std::string::npos, hints.find(" 200 100 200 100")) << hints;
}

TEST_F(X11ManagedTest, MenuWindowIsOverrideRedirectAndHoldsThePointerWhileOpen) {
    RecordingWindow* window = new RecordingWindow(
        BRect(100, 100, 199, 199), &fLog, B_NO_BORDER_WINDOW_LOOK, 0, B_CURRENT_WORKSPACE,
        rgb_color{0, 0, 0, 255}, BPrivate::kMenuWindowFeel);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 100, 100, 100, 100));
    EXPECT_TRUE(fDisplay.IsOverrideRedirect(XWindow(window)));
    window->Lock();
    ASSERT_EQ(B_OK, BPrivate::WindowPrivate(window).GrabPointer());
    window->Unlock();
    EXPECT_TRUE(testing_support::wait_until([&] { return fDisplay.PointerGrabbedElsewhere(); }));
    window->Lock();
    window->Hide();
    window->Unlock();
    EXPECT_TRUE(testing_support::wait_until([&] { return !fDisplay.PointerGrabbedElsewhere(); }));
}
