// Tracking menus with the pointer on the headless display: opening a bar item's
// menu in a window of its own, cascading, invoking, the sticky mode, closing by
// a press outside, the hooks called on opening and closing, staying on screen.
#include "MenuTestSupport.h"

#include <Screen.h>

#include <gtest/gtest.h>

using namespace menu_testing;

namespace {

class MenuTrackingTest : public MenuAppTest {
protected:
    // A window with a bar holding "File" (Open, Close, Recent > [One, Two]) and
    // "Edit" (Cut, disabled Paste).
    void MakeWindow(BRect frame = BRect(100, 100, 399, 299)) {
        fWindow = new RecordingWindow(frame, &fLog);
        fBar = new BMenuBar(BRect(0, 0, frame.Width(), 19), "bar");
        fFile = new LoggingMenu("File", &fLog);
        fFile->AddItem(new BMenuItem("Open", new BMessage('open')));
        fFile->AddItem(new BMenuItem("Close", new BMessage('clos')));
        fRecent = new LoggingMenu("Recent", &fLog);
        fRecent->AddItem(new BMenuItem("One", new BMessage('one_')));
        fRecent->AddItem(new BMenuItem("Two", new BMessage('two_')));
        fFile->AddItem(fRecent);
        fEdit = new LoggingMenu("Edit", &fLog);
        fEdit->AddItem(new BMenuItem("Cut", new BMessage('cut_')));
        BMenuItem* paste = new BMenuItem("Paste", new BMessage('past'));
        paste->SetEnabled(false);
        fEdit->AddItem(paste);
        fBar->AddItem(fFile);
        fBar->AddItem(fEdit);
        fWindow->AddChild(fBar);
        fWindow->Show();
        WaitForIdle();
    }

    BPoint BarItemCenter(int32 index) { return center_of(item_screen_frame(fBar, index)); }

    void OpenFile() {
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(BarItemCenter(0)));
        WaitForIdle();
        ASSERT_TRUE(wait_for_menu_count(1));
    }

    RecordingWindow* fWindow = NULL;
    BMenuBar* fBar = NULL;
    LoggingMenu* fFile = NULL;
    LoggingMenu* fRecent = NULL;
    LoggingMenu* fEdit = NULL;
};

} // namespace

TEST_F(MenuTrackingTest, PressOnBarItemOpensItsMenuRightBelowIt) {
    MakeWindow();
    BRect item = item_screen_frame(fBar, 0);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(BarItemCenter(0)));
    WaitForIdle();

    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("File", &listing));
    EXPECT_EQ(item.left, listing.frame.left);
    EXPECT_EQ(item.bottom + 1, listing.frame.top);
    float width;
    float height;
    {
        MenuLock lock(fFile);
        ASSERT_TRUE(lock.IsLocked());
        fFile->GetPreferredSize(&width, &height);
    }
    EXPECT_EQ(width, listing.frame.Width());
    EXPECT_EQ(height, listing.frame.Height());
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(BarItemCenter(0)));
}

TEST_F(MenuTrackingTest, ClickOnItemInvokesItWithWhenSourceAndIndex) {
    MakeWindow();
    OpenFile();
    BMenuItem* close = fFile->ItemAt(1);
    bigtime_t before = system_time();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fFile, 1))));
    WaitForIdle();

    std::vector<BMessage> messages = fWindow->Messages();
    ASSERT_EQ(1u, messages.size());
    EXPECT_EQ((uint32)'clos', messages[0].what);
    EXPECT_EQ(1, messages[0].GetInt32("index", -1));
    EXPECT_EQ(close, messages[0].GetPointer("source", NULL));
    EXPECT_GE(messages[0].GetInt64("when", 0), before);
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuTrackingTest, DraggingFromTheBarAndReleasingOnAnItemInvokesIt) {
    MakeWindow();
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(BarItemCenter(0)));
    WaitForIdle();
    BPoint open = center_of(item_screen_frame(fFile, 0));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(open));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(open));
    WaitForIdle();

    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('open') + " index 0"));
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuTrackingTest, QuickClickOnBarItemLeavesItsMenuOpen) {
    MakeWindow();
    OpenFile();
    WindowListing listing;
    EXPECT_TRUE(wait_for_menu_window("File", &listing));
    EXPECT_TRUE(fWindow->Messages().empty());
}

TEST_F(MenuTrackingTest, ReleasingOutsideAfterDraggingClosesWithoutInvoking) {
    MakeWindow();
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(BarItemCenter(0)));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BPoint(700, 600)));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(BPoint(700, 600)));
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_TRUE(fWindow->Messages().empty());
}

TEST_F(MenuTrackingTest, HoveringAnItemWithASubmenuCascadesItBesideIt) {
    MakeWindow();
    OpenFile();
    BRect recent = item_screen_frame(fFile, 2);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(recent)));
    WaitForIdle();

    WindowListing file;
    WindowListing submenu;
    ASSERT_TRUE(wait_for_menu_window("File", &file));
    ASSERT_TRUE(wait_for_menu_window("Recent", &submenu));
    EXPECT_EQ(file.frame.right + 1, submenu.frame.left);
    EXPECT_EQ(recent.top, submenu.frame.top);

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fRecent, 1))));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('two_') + " index 1"));
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuTrackingTest, MovingBackToAnotherItemClosesTheCascadedMenu) {
    MakeWindow();
    OpenFile();
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(fFile, 2))));
    WaitForIdle();
    ASSERT_TRUE(wait_for_menu_count(2));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(fFile, 0))));
    WaitForIdle();
    WindowListing listing;
    EXPECT_TRUE(wait_for_menu_count(1));
    EXPECT_TRUE(wait_for_menu_window("File", &listing));
    EXPECT_EQ(1u, fLog.Count("detached Recent"));
}

TEST_F(MenuTrackingTest, MovingOverAnotherBarItemSwitchesMenus) {
    MakeWindow();
    OpenFile();
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BarItemCenter(1)));
    WaitForIdle();
    WindowListing listing;
    EXPECT_TRUE(wait_for_menu_window("Edit", &listing));
    EXPECT_TRUE(wait_for_menu_count(1));
    EXPECT_EQ(1u, fLog.Count("detached File"));
}

TEST_F(MenuTrackingTest, PressOutsideClosesEveryMenu) {
    MakeWindow();
    OpenFile();
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(fFile, 2))));
    WaitForIdle();
    ASSERT_TRUE(wait_for_menu_count(2));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_EQ(1u, fLog.Count("detached File"));
    EXPECT_EQ(1u, fLog.Count("detached Recent"));
    EXPECT_TRUE(fWindow->Messages().empty());
}

TEST_F(MenuTrackingTest, PressingTheOpenBarItemAgainClosesItsMenu) {
    MakeWindow();
    OpenFile();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BarItemCenter(0)));
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuTrackingTest, ClickOnDisabledItemInvokesNothingAndKeepsTheMenuOpen) {
    MakeWindow();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BarItemCenter(1)));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fEdit, 1))));
    WaitForIdle();
    EXPECT_TRUE(fWindow->Messages().empty());
    EXPECT_TRUE(wait_for_menu_count(1));
}

TEST_F(MenuTrackingTest, EveryOpeningAttachesAndEveryClosingDetachesTheMenu) {
    MakeWindow();
    for (int round = 0; round < 3; round++) {
        OpenFile();
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
        WaitForIdle();
    }
    EXPECT_EQ(3u, fLog.Count("attached File"));
    EXPECT_EQ(3u, fLog.Count("detached File"));
    EXPECT_EQ(3u, fLog.Count("menus beginning"));
    EXPECT_EQ(3u, fLog.Count("menus ended"));
}

TEST_F(MenuTrackingTest, MenuNearTheScreenEdgesStaysOnScreen) {
    // A bar at the bottom right of an 800 by 600 screen: the menu opens above
    // its item and no further right than the screen.
    ASSERT_EQ(B_OK, HeadlessTestApi::SetScreenSize(800, 600));
    MakeWindow(BRect(760, 570, 799, 599));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BarItemCenter(0)));
    WaitForIdle();
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("File", &listing));
    BRect item = item_screen_frame(fBar, 0);
    EXPECT_LE(listing.frame.right, 799);
    EXPECT_EQ(item.top - 1, listing.frame.bottom);
}

TEST_F(MenuTrackingTest, MenuWindowHoldsThePointerGrab) {
    MakeWindow();
    OpenFile();
    // A press on the application's own window outside the bar still reaches the
    // menu, which closes instead of letting the window have it.
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(ScreenPoint(fWindow, BPoint(150, 150))));
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
}
