// Keyboard navigation between the menu bars of a window, on a window built like
// the bar (strips named "layer_bar" and "app_menu" in a view "bottom", a shelf
// bar after them) with the two key filters installed. A third, plain menu bar
// after the application menu tells forward and backward walks apart.
#include "AppMenu.h"
#include "KeyDownFilter.h"
#include "KeyUpFilter.h"
#include "ShelfBar.h"

#include "HeadlessAppTest.h"
#include "Watchdog.h"

#include <Autolock.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

#include <gtest/gtest.h>

using BPrivate::HeadlessTestApi;
using testing_support::wait_until;

namespace {

const int32 kEscapeKey = 0x01;
const int32 kTabKey = 0x26;
const int32 kRightArrowKey = 0x63;
const int32 kDownArrowKey = 0x62;
const int32 kSpaceKey = 0x5e;
const BPoint kParkingPlace(-2000, -2000);

struct WindowShape {
    bool layerBar = true;
    bool parkLayerBar = false;
    bool extraBar = true;
};

class NavigationWindow : public BWindow {
public:
    NavigationWindow(const WindowShape& shape, testing_support::EventLog* log)
        : BWindow(BRect(100, 100, 400, 200), "navigation", B_TITLED_WINDOW, 0), fLog(log),
          fLayerBar(NULL), fAppMenu(NULL), fExtraBar(NULL), fShelfBar(NULL) {
        BView* bottom = new BView(Bounds(), "bottom", B_FOLLOW_ALL_SIDES, B_WILL_DRAW);
        AddChild(bottom);
        if (shape.layerBar) {
            fLayerBar = new BMenuBar(BRect(0, 0, 120, 20), "layer_bar", 0, B_ITEMS_IN_ROW, false);
            fLayerBar->AddItem(new BMenuItem("One", new BMessage('one_')));
            fLayerBar->AddItem(new BMenuItem("Two", new BMessage('two_')));
            bottom->AddChild(fLayerBar);
            if (shape.parkLayerBar)
                fLayerBar->MoveTo(kParkingPlace);
        }
        fAppMenu = new AppMenu();
        bottom->AddChild(fAppMenu);
        fAppMenu->MoveTo(130, 0);
        if (shape.extraBar) {
            fExtraBar = new BMenuBar(BRect(160, 0, 250, 20), "extra_bar", 0, B_ITEMS_IN_ROW, false);
            fExtraBar->AddItem(new BMenuItem("Extra", new BMessage('xtra')));
            bottom->AddChild(fExtraBar);
        }
        fShelfBar = new ShelfBar();
        bottom->AddChild(fShelfBar);
        fShelfBar->MoveTo(0, 40);
        SetKeyMenuBar(fAppMenu);
        AddCommonFilter(new KeyDownFilter(this));
        AddCommonFilter(new KeyUpFilter(this));
    }

    void MessageReceived(BMessage* message) override {
        if (message->what == B_KEY_DOWN)
            fLog->Add("window key down");
        BWindow::MessageReceived(message);
    }

    testing_support::EventLog* fLog;
    BMenuBar* fLayerBar;
    AppMenu* fAppMenu;
    BMenuBar* fExtraBar;
    ShelfBar* fShelfBar;
};

class KeyNavigationTest : public testing_support::HeadlessAppTest {
protected:
    void Open(const WindowShape& shape = WindowShape()) {
        fWindow = new NavigationWindow(shape, &fLog);
        fWindow->Show();
        ASSERT_TRUE(wait_until([&] { return IsActive(); }));
        WaitForIdle();
    }

    bool IsActive() {
        BAutolock lock(fWindow);
        return fWindow->IsActive();
    }

    BView* Focus() {
        BAutolock lock(fWindow);
        return fWindow->CurrentFocus();
    }

    BMenuBar* KeyBar() {
        BAutolock lock(fWindow);
        return fWindow->KeyMenuBar();
    }

    void Type(int32 key, uint32 modifiers = 0) {
        ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(key, NULL, modifiers));
        WaitForIdle();
    }

    // The bar that is navigating takes the keyboard focus while it does.
    bool Navigating(BView* bar) {
        return wait_until([&] { return Focus() == bar; });
    }

    NavigationWindow* fWindow = NULL;
};

} // namespace

TEST_F(KeyNavigationTest, TabOnTheActiveBarStartsNavigatingTheBarAfterTheLayerBar) {
    Open();
    Type(kTabKey);
    EXPECT_TRUE(Navigating(fWindow->fAppMenu));
    EXPECT_EQ(KeyBar(), fWindow->fAppMenu);
}

TEST_F(KeyNavigationTest, TabWhileNavigatingMovesToTheNextMenuBar) {
    Open();
    Type(kTabKey);
    ASSERT_TRUE(Navigating(fWindow->fAppMenu));
    Type(kTabKey);
    EXPECT_TRUE(Navigating(fWindow->fExtraBar));
    EXPECT_EQ(KeyBar(), fWindow->fExtraBar);
}

TEST_F(KeyNavigationTest, TabAfterTheLastBarWrapsToTheFirst) {
    Open();
    Type(kTabKey);
    Type(kTabKey);
    ASSERT_TRUE(Navigating(fWindow->fExtraBar));
    // The shelf bar, next in the window, is never reached.
    Type(kTabKey);
    EXPECT_TRUE(Navigating(fWindow->fLayerBar));
}

TEST_F(KeyNavigationTest, ShiftTabOnTheActiveBarMovesBackwards) {
    Open();
    Type(kTabKey, B_SHIFT_KEY);
    // Backwards from the layer bar the walk wraps past the shelf bar.
    EXPECT_TRUE(Navigating(fWindow->fExtraBar));
}

TEST_F(KeyNavigationTest, ShiftTabWhileNavigatingMovesBackwards) {
    Open();
    Type(kTabKey);
    ASSERT_TRUE(Navigating(fWindow->fAppMenu));
    Type(kTabKey, B_SHIFT_KEY);
    EXPECT_TRUE(Navigating(fWindow->fLayerBar));
}

TEST_F(KeyNavigationTest, OptionTabIsLeftToTheSystem) {
    Open();
    Type(kTabKey, B_OPTION_KEY);
    EXPECT_EQ(Focus(), nullptr);
    EXPECT_EQ(KeyBar(), fWindow->fAppMenu);
}

TEST_F(KeyNavigationTest, CommandTabIsLeftToTheSystem) {
    Open();
    Type(kTabKey, B_COMMAND_KEY);
    EXPECT_EQ(Focus(), nullptr);
    EXPECT_EQ(KeyBar(), fWindow->fAppMenu);
}

TEST_F(KeyNavigationTest, EscapeWithNoMenuOpenDeactivatesTheBar) {
    Open();
    Type(kEscapeKey);
    EXPECT_TRUE(wait_until([&] { return !IsActive(); }));
    EXPECT_EQ(fLog.Count("window key down"), 0u);
}

TEST_F(KeyNavigationTest, EscapeWhileNavigatingEndsItAndKeepsTheBarActive) {
    Open();
    Type(kTabKey);
    ASSERT_TRUE(Navigating(fWindow->fAppMenu));
    Type(kEscapeKey);
    EXPECT_TRUE(wait_until([&] { return Focus() == NULL; }));
    EXPECT_TRUE(IsActive());
}

TEST_F(KeyNavigationTest, CommandEscapeOpensTheApplicationMenu) {
    Open();
    {
        BAutolock lock(fWindow);
        fWindow->SetKeyMenuBar(fWindow->fLayerBar);
    }
    Type(kEscapeKey, B_COMMAND_KEY);
    EXPECT_TRUE(Navigating(fWindow->fAppMenu));
    EXPECT_EQ(KeyBar(), fWindow->fAppMenu);
}

TEST_F(KeyNavigationTest, ArrowKeyWithNoMenuOpenStartsNavigatingTheLayerBar) {
    Open();
    Type(kRightArrowKey);
    EXPECT_TRUE(Navigating(fWindow->fLayerBar));
    EXPECT_EQ(KeyBar(), fWindow->fLayerBar);
}

TEST_F(KeyNavigationTest, ArrowKeyWithAModifierPasses) {
    Open();
    Type(kDownArrowKey, B_CONTROL_KEY);
    EXPECT_EQ(Focus(), nullptr);
    EXPECT_EQ(fLog.Count("window key down"), 1u);
}

TEST_F(KeyNavigationTest, ArrowKeyWithoutLayerBarPasses) {
    WindowShape shape;
    shape.layerBar = false;
    Open(shape);
    Type(kRightArrowKey);
    EXPECT_EQ(Focus(), nullptr);
    EXPECT_EQ(fLog.Count("window key down"), 1u);
    EXPECT_EQ(KeyBar(), fWindow->fAppMenu);
}

TEST_F(KeyNavigationTest, ArrowKeyWhileNavigatingMakesTheApplicationMenuTheKeyMenuBar) {
    Open();
    Type(kRightArrowKey);
    ASSERT_TRUE(Navigating(fWindow->fLayerBar));
    Type(kRightArrowKey);
    EXPECT_EQ(KeyBar(), fWindow->fAppMenu);
    // The arrow itself still moves along the layer bar that navigates.
    EXPECT_TRUE(Navigating(fWindow->fLayerBar));
}

TEST_F(KeyNavigationTest, WithTheLayerBarParkedTabGoesToTheApplicationMenuOnly) {
    WindowShape shape;
    shape.parkLayerBar = true;
    shape.extraBar = false;
    Open(shape);
    Type(kTabKey);
    ASSERT_TRUE(Navigating(fWindow->fAppMenu));
    Type(kTabKey);
    EXPECT_TRUE(Navigating(fWindow->fAppMenu));
    Type(kTabKey, B_SHIFT_KEY);
    EXPECT_TRUE(Navigating(fWindow->fAppMenu));
}

TEST_F(KeyNavigationTest, SpaceKeyUpEndsTheNavigation) {
    Open();
    Type(kRightArrowKey);
    ASSERT_TRUE(Navigating(fWindow->fLayerBar));
    Type(kSpaceKey);
    EXPECT_TRUE(wait_until([&] { return Focus() == NULL; }));
    EXPECT_EQ(KeyBar(), nullptr);
}

TEST_F(KeyNavigationTest, NextMenuBarSkipsTheShelfBarAndParkedStrips) {
    WindowShape shape;
    shape.parkLayerBar = true;
    Open(shape);
    BAutolock lock(fWindow);
    KeyUpFilter filter(fWindow);
    fWindow->SetKeyMenuBar(fWindow->fAppMenu);
    EXPECT_EQ(filter.NextMenuBar(true), fWindow->fExtraBar);
    EXPECT_EQ(filter.NextMenuBar(false), fWindow->fExtraBar);
    fWindow->SetKeyMenuBar(fWindow->fExtraBar);
    EXPECT_EQ(filter.NextMenuBar(true), fWindow->fAppMenu);
}

TEST_F(KeyNavigationTest, NextMenuBarWithoutKeyMenuBarStartsAtTheFirstBar) {
    Open();
    BAutolock lock(fWindow);
    KeyUpFilter filter(fWindow);
    fWindow->SetKeyMenuBar(NULL);
    EXPECT_EQ(filter.NextMenuBar(true), fWindow->fAppMenu);
    EXPECT_EQ(filter.NextMenuBar(false), fWindow->fExtraBar);
}

TEST_F(KeyNavigationTest, TabKeyDownInANavigatingBarBecomesAPlainEscapeForIt) {
    Open();
    Type(kRightArrowKey);
    ASSERT_TRUE(Navigating(fWindow->fLayerBar));
    BAutolock lock(fWindow);
    KeyDownFilter filter(fWindow);
    BMessage message(B_KEY_DOWN);
    message.AddInt32("modifiers", B_SHIFT_KEY | B_LEFT_SHIFT_KEY);
    message.AddInt8("byte", B_TAB);
    message.AddString("bytes", "\t");
    BHandler* target = fWindow;
    EXPECT_EQ(filter.Filter(&message, &target), B_DISPATCH_MESSAGE);
    EXPECT_EQ(target, fWindow->fLayerBar);
    EXPECT_EQ(message.GetInt32("modifiers", -1), 0);
    EXPECT_EQ(message.GetInt8("byte", 0), B_ESCAPE);
    EXPECT_STREQ(message.GetString("bytes", ""), "\x1b");
}

TEST_F(KeyNavigationTest, OrdinaryKeysPassTheFiltersUnchanged) {
    Open();
    BAutolock lock(fWindow);
    KeyDownFilter downFilter(fWindow);
    KeyUpFilter upFilter(fWindow);
    const char* keys[] = {"a", "\n", " ", "\x08"};
    for (const char* key : keys) {
        BMessage message(B_KEY_DOWN);
        message.AddInt32("modifiers", 0);
        message.AddString("bytes", key);
        BHandler* target = fWindow;
        EXPECT_EQ(downFilter.Filter(&message, &target), B_DISPATCH_MESSAGE) << (int)key[0];
        EXPECT_EQ(target, fWindow) << (int)key[0];
        EXPECT_STREQ(message.GetString("bytes", ""), key);
        message.what = B_KEY_UP;
        EXPECT_EQ(upFilter.Filter(&message, &target), B_DISPATCH_MESSAGE) << (int)key[0];
        EXPECT_EQ(target, fWindow) << (int)key[0];
    }
}

TEST_F(KeyNavigationTest, KeyMessagesWithoutBytesPass) {
    Open();
    BAutolock lock(fWindow);
    KeyDownFilter downFilter(fWindow);
    KeyUpFilter upFilter(fWindow);
    BMessage message(B_KEY_DOWN);
    BHandler* target = fWindow;
    EXPECT_EQ(downFilter.Filter(&message, &target), B_DISPATCH_MESSAGE);
    message.what = B_KEY_UP;
    EXPECT_EQ(upFilter.Filter(&message, &target), B_DISPATCH_MESSAGE);
    EXPECT_EQ(target, fWindow);
}
