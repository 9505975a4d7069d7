// Pop-up menus from the keyboard: the open menu takes the keys whichever
// window is active; the arrows move the selection, the arrow across opens a
// submenu and the opposite one closes it, Return chooses and Escape closes.
// Menus opened from a bar in a window that never takes the focus get the keys
// the same way.
#include "MenuTestSupport.h"
#include "Watchdog.h"

#include <PopUpMenu.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace menu_testing;
using testing_support::wait_until;

namespace {

const int32 kEscapeKey = 0x01;
const int32 kReturnKey = 0x47;
const int32 kUpKey = 0x57;
const int32 kDownKey = 0x62;
const int32 kLeftKey = 0x61;
const int32 kRightKey = 0x63;

class PopUpMenuKeyboardTest : public MenuAppTest {
protected:
    // "First", "Second", and "More" holding "Deep" and "Deeper".
    void SetUp() override {
        MenuAppTest::SetUp();
        fTarget = new RecordingWindow(BRect(0, 0, 10, 10), &fLog);
        fTarget->Run();
        fMenu = new BPopUpMenu("popup", false, false);
        fMenu->AddItem(new BMenuItem("First", new BMessage('frst')));
        fMenu->AddItem(new BMenuItem("Second", new BMessage('scnd')));
        fMore = new BMenu("More");
        fMore->AddItem(new BMenuItem("Deep", new BMessage('deep')));
        fMore->AddItem(new BMenuItem("Deeper", new BMessage('dper')));
        fMore->SetTargetForItems(fTarget);
        fMenu->AddItem(fMore);
        fMenu->SetTargetForItems(fTarget);
    }

    void TearDown() override {
        if (fThread.joinable()) {
            HeadlessTestApi::TypeKey(kEscapeKey);
            fThread.join();
        }
        MenuAppTest::TearDown();
        delete fMenu;
    }

    void GoInThread(bool deliver = false) {
        fReturned.store(false);
        fThread = std::thread([=, this] {
            fResult = fMenu->Go(BPoint(300, 200), deliver, false);
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

    void Type(int32 key) {
        ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(key));
        WaitForIdle();
    }

    int32 Selected(BMenu* menu) {
        MenuLock lock(menu);
        return lock.IsLocked() ? BPrivate::MenuPrivate(menu).Selected() : -2;
    }

    RecordingWindow* fTarget = NULL;
    BPopUpMenu* fMenu = NULL;
    BMenu* fMore = NULL;
    std::thread fThread;
    std::atomic<bool> fReturned{false};
    BMenuItem* fResult = NULL;
};

} // namespace

TEST_F(PopUpMenuKeyboardTest, DownArrowSelectsTheFirstItemAndReturnChoosesIt) {
    GoInThread();
    Type(kDownKey);
    EXPECT_EQ(0, Selected(fMenu));
    Type(kReturnKey);
    EXPECT_EQ(fMenu->ItemAt(0), WaitForResult());
}

TEST_F(PopUpMenuKeyboardTest, UpArrowFromNoSelectionWrapsToTheLastItem) {
    GoInThread();
    Type(kUpKey);
    EXPECT_EQ(2, Selected(fMenu));
    Type(kUpKey);
    EXPECT_EQ(1, Selected(fMenu));
}

TEST_F(PopUpMenuKeyboardTest, ArrowsMoveDownAndWrapAround) {
    GoInThread();
    Type(kDownKey);
    Type(kDownKey);
    EXPECT_EQ(1, Selected(fMenu));
    Type(kDownKey);
    Type(kDownKey);
    EXPECT_EQ(0, Selected(fMenu));
}

TEST_F(PopUpMenuKeyboardTest, RightArrowOpensTheSubmenuWithItsFirstItemSelected) {
    GoInThread();
    Type(kUpKey);
    Type(kRightKey);
    ASSERT_TRUE(wait_for_menu_count(2));
    WaitForIdle();
    EXPECT_EQ(0, Selected(fMore));
    EXPECT_EQ(2, Selected(fMenu));
}

TEST_F(PopUpMenuKeyboardTest, LeftArrowClosesTheSubmenuAndKeepsThePopUpOpen) {
    GoInThread();
    Type(kUpKey);
    Type(kRightKey);
    ASSERT_TRUE(wait_for_menu_count(2));
    Type(kLeftKey);
    EXPECT_TRUE(wait_for_menu_count(1));
    WaitForIdle();
    EXPECT_FALSE(fReturned.load());
    EXPECT_EQ(2, Selected(fMenu));
    // The pop-up still takes keys.
    Type(kDownKey);
    EXPECT_EQ(0, Selected(fMenu));
}

TEST_F(PopUpMenuKeyboardTest, LeftArrowInThePopUpItselfDoesNothing) {
    GoInThread();
    Type(kDownKey);
    Type(kLeftKey);
    EXPECT_FALSE(fReturned.load());
    EXPECT_EQ(1u, menu_windows().size());
    EXPECT_EQ(0, Selected(fMenu));
}

TEST_F(PopUpMenuKeyboardTest, ReturnInTheSubmenuChoosesItsItemAndDeliversIt) {
    GoInThread(true);
    Type(kUpKey);
    Type(kRightKey);
    ASSERT_TRUE(wait_for_menu_count(2));
    WaitForIdle();
    Type(kDownKey);
    Type(kReturnKey);
    EXPECT_EQ(fMore->ItemAt(1), WaitForResult());
    ASSERT_TRUE(wait_until([&] { return fTarget->Messages().size() == 1; }));
    EXPECT_EQ((uint32)'dper', fTarget->Messages()[0].what);
}

TEST_F(PopUpMenuKeyboardTest, EscapeClosesEveryMenuAndChoosesNothing) {
    GoInThread(true);
    Type(kUpKey);
    Type(kRightKey);
    ASSERT_TRUE(wait_for_menu_count(2));
    Type(kEscapeKey);
    EXPECT_EQ(NULL, WaitForResult());
    EXPECT_TRUE(wait_for_menu_count(0));
    WaitForIdle();
    EXPECT_TRUE(fTarget->Messages().empty());
}

TEST_F(PopUpMenuKeyboardTest, KeysGoToThePopUpRatherThanTheActiveWindow) {
    RecordingWindow* active = new RecordingWindow(BRect(500, 400, 599, 499), &fLog);
    active->Show();
    WaitForIdle();
    ASSERT_TRUE(active->IsActive());
    GoInThread();
    Type(kDownKey);
    Type(kDownKey);
    EXPECT_EQ(1, Selected(fMenu));
    Type(kReturnKey);
    EXPECT_EQ(fMenu->ItemAt(1), WaitForResult());
}

TEST_F(PopUpMenuKeyboardTest, BarInAWindowThatAvoidsTheFocusTakesKeysOnceOpen) {
    BWindow* window = new BWindow(BRect(100, 100, 299, 199), "bar window", B_TITLED_WINDOW,
                                  B_AVOID_FOCUS | B_WILL_ACCEPT_FIRST_CLICK);
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 199, 19), "bar");
    BMenu* file = new BMenu("File");
    file->AddItem(new BMenuItem("Open", new BMessage('open')));
    file->AddItem(new BMenuItem("Close", new BMessage('clos')));
    file->SetTargetForItems(fTarget);
    bar->AddItem(file);
    window->AddChild(bar);
    window->Show();
    WaitForIdle();
    ASSERT_FALSE(window->IsActive());

    // A click on "File" leaves its menu open.
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(ScreenPoint(window, BPoint(15, 10))));
    ASSERT_TRUE(wait_for_menu_count(1));
    WaitForIdle();
    Type(kDownKey);
    Type(kDownKey);
    EXPECT_EQ(1, Selected(file));
    Type(kReturnKey);
    ASSERT_TRUE(wait_until([&] { return fTarget->Messages().size() == 1; }));
    EXPECT_EQ((uint32)'clos', fTarget->Messages()[0].what);
    EXPECT_TRUE(wait_for_menu_count(0));
}
