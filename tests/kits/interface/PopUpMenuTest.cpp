// BPopUpMenu::Go(): where it opens, what it answers, delivering the message,
// staying open (open anyway, the click-to-open rectangle), asynchronous use,
// and a synchronous Go() from a window's own MouseDown().
#include "MenuTestSupport.h"
#include "Watchdog.h"

#include <PopUpMenu.h>
#include <View.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace menu_testing;
using testing_support::wait_until;

namespace {

class DestructionMarker : public BPopUpMenu {
public:
    DestructionMarker(std::atomic<bool>* deleted)
        : BPopUpMenu("marker", false, false), fDeleted(deleted) {}
    ~DestructionMarker() override { fDeleted->store(true); }

private:
    std::atomic<bool>* fDeleted;
};

// Opens a pop-up on a secondary press, as a context menu, and waits for it.
class ContextView : public BView {
public:
    ContextView(BRect frame, EventLog* log)
        : BView(frame, "context", B_FOLLOW_NONE, B_WILL_DRAW), fLog(log) {
        fMenu = new BPopUpMenu("context", false, false);
        fMenu->AddItem(new BMenuItem("Hide", new BMessage('hide')));
        fMenu->AddItem(new BMenuItem("Clear", new BMessage('cler')));
    }
    ~ContextView() override { delete fMenu; }

    void MouseDown(BPoint where) override {
        fMenu->SetTargetForItems(Window());
        BPoint screen = ConvertToScreen(where);
        BMenuItem* item = fMenu->Go(screen, true, true, BRect(screen, screen), false);
        fLog->Add(std::string("go returned ") + (item != NULL ? item->Label() : "nothing"));
    }

private:
    BPopUpMenu* fMenu;
    EventLog* fLog;
};

// Tracks itself where it is told to, as a subclass can.
class SelfTrackingMenu : public BMenu {
public:
    SelfTrackingMenu() : BMenu("self") {}
    BMenuItem* TrackAt(BPoint where) {
        fWhere = where;
        return Track(false, NULL);
    }

protected:
    BPoint ScreenLocation() override { return fWhere; }

private:
    BPoint fWhere;
};

class PopUpMenuTest : public MenuAppTest {
protected:
    void SetUp() override {
        MenuAppTest::SetUp();
        fTarget = new RecordingWindow(BRect(0, 0, 10, 10), &fLog);
        fTarget->Run();
        fMenu = new BPopUpMenu("popup", false, false);
        fMenu->AddItem(new BMenuItem("First", new BMessage('frst')));
        fMenu->AddItem(new BMenuItem("Second", new BMessage('scnd')));
        fMenu->SetTargetForItems(fTarget);
    }

    void TearDown() override {
        if (fThread.joinable())
            fThread.join();
        MenuAppTest::TearDown();
        delete fMenu;
    }

    // Runs Go() on its own thread, as a caller that waits.
    void GoInThread(BPoint where, bool deliver, bool openAnyway, BRect* clickToOpen = NULL) {
        fReturned.store(false);
        BRect rect = clickToOpen != NULL ? *clickToOpen : BRect();
        bool hasRect = clickToOpen != NULL;
        fThread = std::thread([=, this] {
            fResult = hasRect ? fMenu->Go(where, deliver, openAnyway, rect)
                              : fMenu->Go(where, deliver, openAnyway);
            fReturned.store(true);
        });
        ASSERT_TRUE(wait_until([] { return menu_windows().size() == 1; }));
        WaitForIdle();
    }

    BMenuItem* WaitForResult() {
        EXPECT_TRUE(wait_until([&] { return fReturned.load(); }));
        fThread.join();
        return fResult;
    }

    RecordingWindow* fTarget = NULL;
    BPopUpMenu* fMenu = NULL;
    std::thread fThread;
    std::atomic<bool> fReturned{false};
    BMenuItem* fResult = NULL;
};

} // namespace

TEST_F(PopUpMenuTest, GoOpensTheMenuWithItsLeftTopAtThePoint) {
    GoInThread(BPoint(300, 200), false, false);
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("popup", &listing));
    EXPECT_EQ(BPoint(300, 200), listing.frame.LeftTop());
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    EXPECT_EQ(NULL, WaitForResult());
}

TEST_F(PopUpMenuTest, GoAnswersTheChosenItemWithoutSendingIt) {
    GoInThread(BPoint(300, 200), false, false);
    BMenuItem* second = fMenu->ItemAt(1);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fMenu, 1))));
    EXPECT_EQ(second, WaitForResult());
    WaitForIdle();
    EXPECT_TRUE(fTarget->Messages().empty());
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(PopUpMenuTest, GoDeliversTheChosenItemsMessageWhenAsked) {
    GoInThread(BPoint(300, 200), true, false);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fMenu, 0))));
    EXPECT_EQ(fMenu->ItemAt(0), WaitForResult());
    ASSERT_TRUE(wait_until([&] { return fTarget->Messages().size() == 1; }));
    EXPECT_EQ((uint32)'frst', fTarget->Messages()[0].what);
    EXPECT_EQ(0, fTarget->Messages()[0].GetInt32("index", -1));
}

TEST_F(PopUpMenuTest, ReleaseInsideTheClickToOpenRectangleKeepsItOpen) {
    BPoint where(300, 200);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(where));
    BRect rect(where, where);
    rect.InsetBy(-20, -20);
    GoInThread(where, false, false, &rect);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BPoint(310, 190)));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(BPoint(310, 190)));
    WaitForIdle();
    EXPECT_FALSE(fReturned.load());
    EXPECT_TRUE(wait_for_menu_count(1));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fMenu, 1))));
    EXPECT_EQ(fMenu->ItemAt(1), WaitForResult());
}

TEST_F(PopUpMenuTest, ReleaseFarAwayAfterDraggingClosesIt) {
    BPoint where(300, 200);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(where));
    GoInThread(where, false, false);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BPoint(700, 600)));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(BPoint(700, 600)));
    EXPECT_EQ(NULL, WaitForResult());
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(PopUpMenuTest, OpenAnywayKeepsItOpenWhenReleasedOverNothing) {
    BPoint where(300, 200);
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(where));
    GoInThread(where, false, true);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BPoint(700, 600)));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(BPoint(700, 600)));
    WaitForIdle();
    EXPECT_FALSE(fReturned.load());
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(700, 600)));
    EXPECT_EQ(NULL, WaitForResult());
}

TEST_F(PopUpMenuTest, AsyncGoReturnsAtOnceAndStillDelivers) {
    EXPECT_EQ(NULL, fMenu->Go(BPoint(300, 200), true, false, true));
    ASSERT_TRUE(wait_until([] { return menu_windows().size() == 1; }));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fMenu, 1))));
    ASSERT_TRUE(wait_until([&] { return fTarget->Messages().size() == 1; }));
    EXPECT_EQ((uint32)'scnd', fTarget->Messages()[0].what);
    WaitForIdle();
}

TEST_F(PopUpMenuTest, AsyncAutoDestructDeletesThePopUpOnceClosed) {
    std::atomic<bool> deleted{false};
    DestructionMarker* menu = new DestructionMarker(&deleted);
    menu->AddItem(new BMenuItem("Only", NULL));
    menu->SetAsyncAutoDestruct(true);
    EXPECT_TRUE(menu->AsyncAutoDestruct());
    menu->Go(BPoint(300, 200), false, false, true);
    ASSERT_TRUE(wait_until([] { return menu_windows().size() == 1; }));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
    EXPECT_TRUE(wait_until([&] { return deleted.load(); }));
    WaitForIdle();
}

TEST_F(PopUpMenuTest, SubmenusOfAPopUpCascade) {
    BMenu* more = new BMenu("More");
    more->AddItem(new BMenuItem("Deep", new BMessage('deep')));
    more->SetTargetForItems(fTarget);
    fMenu->AddItem(more);
    GoInThread(BPoint(300, 200), true, false);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(fMenu, 2))));
    WaitForIdle();
    ASSERT_TRUE(wait_for_menu_count(2));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(more, 0))));
    EXPECT_EQ(more->ItemAt(0), WaitForResult());
    ASSERT_TRUE(wait_until([&] { return fTarget->Messages().size() == 1; }));
    EXPECT_EQ((uint32)'deep', fTarget->Messages()[0].what);
}

TEST_F(PopUpMenuTest, SynchronousGoFromAWindowsMouseDownDeliversToThatWindow) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 299, 299), &fLog);
    window->AddChild(new ContextView(BRect(0, 0, 199, 199), &fLog));
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(150, 150), B_SECONDARY_MOUSE_BUTTON));
    // The window waits inside Go() now, so nothing can wait for it to be idle.
    ASSERT_TRUE(wait_until([] { return menu_windows().size() == 1; }));
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("context", &listing));
    EXPECT_EQ(BPoint(150, 150), listing.frame.LeftTop());
    // The first item lies under the pointer's row of the menu.
    BPoint item(listing.frame.left + 20, listing.frame.top + 8);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(item));
    ASSERT_TRUE(wait_until([&] { return fLog.Count("go returned Hide") == 1; }));
    ASSERT_TRUE(wait_until([&] { return window->Messages().size() == 1; }));
    EXPECT_EQ((uint32)'hide', window->Messages()[0].what);
}

TEST_F(PopUpMenuTest, TrackOpensAMenuOfItsOwnAndAnswersWithoutInvoking) {
    SelfTrackingMenu menu;
    menu.AddItem(new BMenuItem("Alone", new BMessage('alon')));
    menu.SetTargetForItems(fTarget);
    std::atomic<BMenuItem*> chosen{NULL};
    std::atomic<bool> done{false};
    std::thread tracking([&] {
        chosen.store(menu.TrackAt(BPoint(400, 300)));
        done.store(true);
    });
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("self", &listing));
    EXPECT_EQ(BPoint(400, 300), listing.frame.LeftTop());
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(&menu, 0))));
    EXPECT_TRUE(wait_until([&] { return done.load(); }));
    tracking.join();
    EXPECT_EQ(menu.ItemAt(0), chosen.load());
    WaitForIdle();
    EXPECT_TRUE(fTarget->Messages().empty());
}
