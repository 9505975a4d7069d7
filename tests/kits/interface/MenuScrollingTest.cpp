// Menus taller than the screen: the window fits the screen with a scroll arrow
// above and below the menu, resting the pointer on an arrow scrolls, moving off
// stops it, and the keyboard's selection scrolls the menu so it shows. A menu
// of five hundred entries, like a folder of as many files, stays usable.
#include "MenuTestSupport.h"
#include "Watchdog.h"
#include "interface/MenuScrollArrow.h"

#include <PopUpMenu.h>
#include <Screen.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

using namespace menu_testing;
using BPrivate::kMenuScrollArrowHeight;
using testing_support::wait_until;

namespace {

const int32 kItemCount = 500;
const int32 kKeyUpArrow = 0x57;
const int32 kKeyEnter = 0x47;
const int32 kKeyEscape = 0x01;

// Lists five hundred names, one per step, as a menu of a folder of as many
// files fills itself while it is open.
class FillingMenu : public BPopUpMenu {
public:
    FillingMenu() : BPopUpMenu("folder", false, false) {}

protected:
    bool AddDynamicItem(add_state state) override {
        switch (state) {
        case B_INITIAL_ADD:
            RemoveItems(0, CountItems(), true);
            fNext = 0;
            return true;
        case B_PROCESSING: {
            std::string name = "entry " + std::to_string(fNext);
            AddItem(new BMenuItem(name.c_str(), new BMessage('entr')));
            fNext++;
            return fNext < kItemCount;
        }
        case B_ABORT:
        default:
            return false;
        }
    }

private:
    int32 fNext = 0;
};

class MenuScrollingTest : public MenuAppTest {
protected:
    void SetUp() override {
        MenuAppTest::SetUp();
        fMenu = new BPopUpMenu("files", false, false);
        for (int32 index = 0; index < kItemCount; index++) {
            std::string label = "file " + std::to_string(index);
            BMessage* message = new BMessage('file');
            fMenu->AddItem(new BMenuItem(label.c_str(), message));
        }
    }

    void TearDown() override {
        if (fThread.joinable()) {
            HeadlessTestApi::TypeKey(kKeyEscape);
            fThread.join();
        }
        MenuAppTest::TearDown();
        delete fMenu;
    }

    void GoInThread(BPoint where) {
        fReturned.store(false);
        fThread = std::thread([=, this] {
            fResult = fMenu->Go(where, false, false);
            fReturned.store(true);
        });
        ASSERT_TRUE(wait_for_menu_window("files", &fListing));
        WaitForIdle();
    }

    BMenuItem* WaitForResult() {
        EXPECT_TRUE(wait_until([&] { return fReturned.load(); }));
        fThread.join();
        return fResult;
    }

    // The menu's scrolling origin and how far it can go, read in its window.
    float ScrollTop() {
        MenuLock lock(fMenu);
        return lock.IsLocked() ? fMenu->Bounds().top : -1.0f;
    }
    float ScrollLimit() {
        MenuLock lock(fMenu);
        if (!lock.IsLocked())
            return -1.0f;
        float height = 0.0f;
        fMenu->GetSize(NULL, &height);
        return height - fMenu->Bounds().Height();
    }
    // Where on screen the menu itself shows, between the arrows.
    BRect VisibleMenu() {
        MenuLock lock(fMenu);
        return lock.IsLocked() ? fMenu->ConvertToScreen(fMenu->Bounds()) : BRect();
    }
    bool ArrowPulses(const char* name) {
        MenuLock lock(fMenu);
        if (!lock.IsLocked())
            return false;
        BView* arrow = fMenu->Window()->FindView(name);
        return arrow != NULL && (arrow->Flags() & B_PULSE_NEEDED) != 0;
    }
    BPoint DownArrow() {
        return BPoint(fListing.frame.left + 20, fListing.frame.bottom - kMenuScrollArrowHeight / 2);
    }
    BPoint UpArrow() {
        return BPoint(fListing.frame.left + 20, fListing.frame.top + kMenuScrollArrowHeight / 2);
    }

    BPopUpMenu* fMenu = NULL;
    WindowListing fListing;
    std::thread fThread;
    std::atomic<bool> fReturned{false};
    BMenuItem* fResult = NULL;
};

} // namespace

TEST_F(MenuScrollingTest, TallMenuFitsTheScreenBetweenTwoArrows) {
    GoInThread(BPoint(100, 100));
    BRect screen = BScreen().Frame();
    EXPECT_EQ(screen.top, fListing.frame.top);
    EXPECT_EQ(screen.Height(), fListing.frame.Height());

    BRect visible = VisibleMenu();
    EXPECT_EQ(fListing.frame.top + kMenuScrollArrowHeight, visible.top);
    EXPECT_EQ(fListing.frame.bottom - kMenuScrollArrowHeight, visible.bottom);
    EXPECT_EQ(visible.top, item_screen_frame(fMenu, 0).top);
    EXPECT_EQ(0.0f, ScrollTop());
}

TEST_F(MenuScrollingTest, OnlyTheArrowThatCanScrollIsDrawnDark) {
    GoInThread(BPoint(100, 100));
    BPrivate::Capture capture;
    ASSERT_TRUE(wait_until([&] {
        return HeadlessTestApi::CaptureScreen(&capture) == B_OK &&
               capture.CountPixels(BPrivate::menu_text_color(true)) > 0;
    }));
    rgb_color dark = BPrivate::menu_text_color(true);
    auto darkPixelsIn = [&](float top) {
        int32 count = 0;
        for (int32 y = (int32)top; y < (int32)(top + kMenuScrollArrowHeight); y++) {
            for (int32 x = (int32)fListing.frame.left; x <= (int32)fListing.frame.right; x++) {
                if (same_color(capture.ColorAt(x, y), dark))
                    count++;
            }
        }
        return count;
    };
    EXPECT_EQ(0, darkPixelsIn(fListing.frame.top));
    EXPECT_GT(darkPixelsIn(fListing.frame.bottom - kMenuScrollArrowHeight + 1), 0);
}

TEST_F(MenuScrollingTest, RestingOnTheDownArrowScrollsToTheEnd) {
    GoInThread(BPoint(100, 100));
    float limit = ScrollLimit();
    ASSERT_GT(limit, 0.0f);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(DownArrow()));
    EXPECT_TRUE(wait_until([&] { return ScrollTop() == limit; }));
    BRect last = item_screen_frame(fMenu, kItemCount - 1);
    EXPECT_EQ(VisibleMenu().bottom, last.bottom);
    // At the end there is nothing to pulse for.
    EXPECT_TRUE(wait_until([&] { return !ArrowPulses("scroll down"); }));
}

TEST_F(MenuScrollingTest, RestingOnTheUpArrowScrollsBackToTheTop) {
    GoInThread(BPoint(100, 100));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(DownArrow()));
    ASSERT_TRUE(wait_until([&] { return ScrollTop() > 1000.0f; }));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(UpArrow()));
    EXPECT_TRUE(wait_until([&] { return ScrollTop() == 0.0f; }));
}

TEST_F(MenuScrollingTest, LeavingTheArrowStopsTheScrolling) {
    GoInThread(BPoint(100, 100));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(DownArrow()));
    ASSERT_TRUE(wait_until([&] { return ScrollTop() > 100.0f; }));
    ASSERT_TRUE(ArrowPulses("scroll down"));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(VisibleMenu())));
    WaitForIdle();
    EXPECT_FALSE(ArrowPulses("scroll down"));
    EXPECT_LT(ScrollTop(), ScrollLimit());
}

TEST_F(MenuScrollingTest, ItemFarDownCanBeReachedAndChosen) {
    GoInThread(BPoint(100, 100));
    const int32 wanted = 250;
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(DownArrow()));
    ASSERT_TRUE(wait_until([&] {
        BRect item = item_screen_frame(fMenu, wanted);
        BRect visible = VisibleMenu();
        return item.top >= visible.top && item.bottom <= visible.bottom;
    }));
    // Off the arrow the menu stops; the item is looked for again where it
    // came to rest.
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(VisibleMenu())));
    WaitForIdle();
    BRect item = item_screen_frame(fMenu, wanted);
    ASSERT_TRUE(VisibleMenu().Contains(center_of(item)));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item)));
    EXPECT_EQ(fMenu->ItemAt(wanted), WaitForResult());
}

TEST_F(MenuScrollingTest, ReleasingOnAnArrowKeepsTheMenuOpen) {
    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(BPoint(100, 100)));
    GoInThread(BPoint(100, 100));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(DownArrow()));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(DownArrow()));
    WaitForIdle();
    EXPECT_FALSE(fReturned.load());
    EXPECT_EQ(1u, menu_windows().size());
}

TEST_F(MenuScrollingTest, KeyboardSelectionScrollsTheMenuToShowIt) {
    GoInThread(BPoint(100, 100));
    // Up from no selection wraps around to the last item.
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kKeyUpArrow));
    WaitForIdle();
    EXPECT_EQ(ScrollLimit(), ScrollTop());
    EXPECT_EQ(VisibleMenu().bottom, item_screen_frame(fMenu, kItemCount - 1).bottom);
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kKeyEnter));
    EXPECT_EQ(fMenu->ItemAt(kItemCount - 1), WaitForResult());
}

TEST_F(MenuScrollingTest, WheelScrollsWithinTheLimits) {
    GoInThread(BPoint(100, 100));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(VisibleMenu())));
    ASSERT_EQ(B_OK, HeadlessTestApi::ScrollWheel(0, -3));
    WaitForIdle();
    EXPECT_EQ(0.0f, ScrollTop());
    ASSERT_EQ(B_OK, HeadlessTestApi::ScrollWheel(0, 3));
    WaitForIdle();
    EXPECT_EQ(60.0f, ScrollTop());
}

TEST_F(MenuScrollingTest, MenuThatFitsHasNoArrows) {
    BPopUpMenu* small = new BPopUpMenu("small", false, false);
    small->AddItem(new BMenuItem("only", new BMessage('only')));
    std::thread thread([&] { small->Go(BPoint(100, 100), false, false); });
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("small", &listing));
    WaitForIdle();
    {
        MenuLock lock(small);
        ASSERT_TRUE(lock.IsLocked());
        EXPECT_EQ(BPoint(0, 0), small->Frame().LeftTop());
        EXPECT_TRUE(small->Window()->FindView("scroll up")->IsHidden());
        EXPECT_TRUE(small->Window()->FindView("scroll down")->IsHidden());
    }
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(kKeyEscape));
    thread.join();
    WaitForIdle();
    delete small;
}

TEST_F(MenuScrollingTest, FolderMenuFillingItselfGetsArrowsAndReachesItsLastEntry) {
    // Deleted once it has closed; the fixture closes it if the test stops early.
    FillingMenu* folder = new FillingMenu();
    fThread = std::thread([=, this] {
        fResult = folder->Go(BPoint(100, 100), false, false);
        fReturned.store(true);
    });
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("folder", &listing));
    // Once the entries no longer fit, the window covers the screen's height.
    BRect screen = BScreen().Frame();
    ASSERT_TRUE(wait_until([&] {
        return find_menu_window("folder", &listing) && listing.frame.top == screen.top &&
               listing.frame.bottom == screen.bottom;
    }));
    // The pointer waits where the arrow comes as the entries keep arriving.
    BPoint downArrow(listing.frame.left + 20, listing.frame.bottom - kMenuScrollArrowHeight / 2);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(downArrow));
    // Resting on the arrow follows the entries as they keep coming, to the last.
    ASSERT_TRUE(wait_until([&] {
        BRect last = item_screen_frame(folder, kItemCount - 1);
        MenuLock lock(folder);
        return lock.IsLocked() && last.IsValid() &&
               last.bottom == folder->ConvertToScreen(folder->Bounds()).bottom;
    }));
    BRect last = item_screen_frame(folder, kItemCount - 1);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(last.left + 20, last.top + 2)));
    BMenuItem* chosen = WaitForResult();
    ASSERT_NE(nullptr, chosen);
    EXPECT_STREQ("entry 499", chosen->Label());
    WaitForIdle();
    delete folder;
}
