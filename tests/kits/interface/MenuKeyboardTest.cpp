// Driving menus from the keyboard: Command-Escape starts navigation in the
// window's key menu bar, arrows move and open, Return and Space invoke, Escape
// ends, trigger letters choose, and item shortcuts fire from the window.
#include "MenuTestSupport.h"

#include <Autolock.h>
#include <MessageFilter.h>
#include <View.h>

#include <gtest/gtest.h>

using namespace menu_testing;

namespace {

const int32 kEscapeKey = 0x01;
const int32 kReturnKey = 0x47;
const int32 kSpaceKey = 0x5e;
const int32 kUpKey = 0x57;
const int32 kDownKey = 0x62;
const int32 kLeftKey = 0x61;
const int32 kRightKey = 0x63;
const int32 kCKey = 0x4e;
const int32 kXKey = 0x4d;
const int32 kOKey = 0x2f;

// An item whose selection the test can see.
class VisibleItem : public BMenuItem {
public:
    VisibleItem(const char* label, BMessage* message, char shortcut = 0, uint32 modifiers = 0)
        : BMenuItem(label, message, shortcut, modifiers) {}
    VisibleItem(BMenu* menu, BMessage* message = NULL) : BMenuItem(menu, message) {}
    bool Selected() const { return IsSelected(); }
};

class FocusView : public BView {
public:
    FocusView(BRect frame) : BView(frame, "focus", B_FOLLOW_NONE, B_WILL_DRAW | B_NAVIGABLE) {}
};

// Moves keyboard navigation to the other bar on Tab: the key going down ends
// navigation in the focused bar with a plain Escape, the key coming up starts
// it in the other bar with Command-Escape.
class TabFilter : public BMessageFilter {
public:
    TabFilter(BMenuBar* first, BMenuBar* second)
        : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE), fFirst(first), fSecond(second) {}

    filter_result Filter(BMessage* message, BHandler** target) override {
        const char* bytes = NULL;
        if ((message->what != B_KEY_DOWN && message->what != B_KEY_UP) ||
            message->FindString("bytes", &bytes) != B_OK || bytes[0] != B_TAB)
            return B_DISPATCH_MESSAGE;
        BWindow* window = fFirst->Window();
        BMenuBar* focus = dynamic_cast<BMenuBar*>(window->CurrentFocus());
        if (message->what == B_KEY_DOWN) {
            if (focus == NULL)
                return B_SKIP_MESSAGE;
            Rewrite(message, 0);
            *target = focus;
            return B_DISPATCH_MESSAGE;
        }
        BMenuBar* next = window->KeyMenuBar() == fFirst ? fSecond : fFirst;
        window->SetKeyMenuBar(next);
        message->what = B_KEY_DOWN;
        Rewrite(message, B_COMMAND_KEY);
        *target = next;
        return B_DISPATCH_MESSAGE;
    }

private:
    static void Rewrite(BMessage* message, uint32 modifiers) {
        message->ReplaceInt32("modifiers", (int32)modifiers);
        message->RemoveName("byte");
        message->AddInt8("byte", B_ESCAPE);
        message->ReplaceString("bytes", "\x1b");
    }

    BMenuBar* fFirst;
    BMenuBar* fSecond;
};

class MenuKeyboardTest : public MenuAppTest {
protected:
    // "File" (Open, Copy, Exit) and "Edit" (Cut, Paste) in a bar, plus a bar
    // item "Go" that has a message of its own.
    void MakeWindow() {
        fWindow = new RecordingWindow(BRect(100, 100, 399, 299), &fLog);
        fBar = new BMenuBar(BRect(0, 0, 299, 19), "bar");
        fFile = new LoggingMenu("File", &fLog);
        fFile->AddItem(new VisibleItem("Open", new BMessage('open')));
        fFile->AddItem(new VisibleItem("Copy", new BMessage('copy'), 'C'));
        fFile->AddItem(new VisibleItem("Exit", new BMessage('exit')));
        fEdit = new LoggingMenu("Edit", &fLog);
        fEdit->AddItem(new VisibleItem("Cut", new BMessage('cut_'), 'X', B_SHIFT_KEY));
        fEdit->AddItem(new VisibleItem("Paste", new BMessage('past')));
        fFileItem = new VisibleItem(fFile);
        fBar->AddItem(fFileItem);
        fBar->AddItem(new VisibleItem(fEdit));
        fBar->AddItem(new VisibleItem("Go", new BMessage('go__')));
        fFocus = new FocusView(BRect(10, 40, 60, 60));
        fWindow->AddChild(fBar);
        fWindow->AddChild(fFocus);
        fWindow->Show();
        WaitForIdle();
        ASSERT_TRUE(fWindow->Lock());
        fFocus->MakeFocus(true);
        fWindow->Unlock();
    }

    bool Selected(BMenu* menu, int32 index) {
        MenuLock lock(menu);
        VisibleItem* item =
            lock.IsLocked() ? dynamic_cast<VisibleItem*>(menu->ItemAt(index)) : NULL;
        return item != NULL && item->Selected();
    }

    void Type(int32 key, uint32 modifiers = 0) {
        ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(key, NULL, modifiers));
        WaitForIdle();
    }

    BView* Focus() {
        BAutolock lock(fWindow);
        return fWindow->CurrentFocus();
    }

    RecordingWindow* fWindow = NULL;
    BMenuBar* fBar = NULL;
    LoggingMenu* fFile = NULL;
    LoggingMenu* fEdit = NULL;
    VisibleItem* fFileItem = NULL;
    FocusView* fFocus = NULL;
};

} // namespace

TEST_F(MenuKeyboardTest, CommandEscapeSelectsTheFirstItemOfTheKeyMenuBar) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    EXPECT_TRUE(Selected(fBar, 0));
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_EQ(fBar, Focus());
}

TEST_F(MenuKeyboardTest, DownArrowOpensTheMenuWithItsFirstItemSelected) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("File", &listing));
    EXPECT_TRUE(Selected(fFile, 0));
}

TEST_F(MenuKeyboardTest, ArrowsMoveThroughTheMenuAndReturnInvokes) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    Type(kDownKey);
    Type(kDownKey);
    Type(kUpKey);
    EXPECT_TRUE(Selected(fFile, 1));
    Type(kReturnKey);
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('copy') + " index 1"));
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_EQ(fFocus, Focus());
}

TEST_F(MenuKeyboardTest, SelectionWrapsAroundTheEnds) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    Type(kUpKey);
    EXPECT_TRUE(Selected(fFile, 2));
}

TEST_F(MenuKeyboardTest, SpaceInvokesTheSelectedItem) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    Type(kSpaceKey);
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('open') + " index 0"));
}

TEST_F(MenuKeyboardTest, RightArrowAtTheEndOfTheChainOpensTheNextBarItem) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    Type(kRightKey);
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("Edit", &listing));
    EXPECT_TRUE(wait_for_menu_count(1));
    EXPECT_TRUE(Selected(fBar, 1));
    Type(kLeftKey);
    ASSERT_TRUE(wait_for_menu_window("File", &listing));
    EXPECT_TRUE(wait_for_menu_count(1));
}

TEST_F(MenuKeyboardTest, ArrowsAlongTheBarMoveWithoutOpening) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kRightKey);
    EXPECT_TRUE(Selected(fBar, 1));
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuKeyboardTest, ReturnOnABarItemWithAMessageInvokesIt) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kLeftKey);
    EXPECT_TRUE(Selected(fBar, 2));
    Type(kReturnKey);
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('go__') + " index 2"));
}

TEST_F(MenuKeyboardTest, ReturnOnABarItemWithOnlyASubmenuOpensIt) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kReturnKey);
    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("File", &listing));
    EXPECT_TRUE(Selected(fFile, 0));
}

TEST_F(MenuKeyboardTest, EscapeEndsNavigationAndGivesTheFocusBack) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    Type(kEscapeKey);
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_FALSE(Selected(fBar, 0));
    EXPECT_EQ(fFocus, Focus());
    EXPECT_EQ(1u, fLog.Count("detached File"));
}

TEST_F(MenuKeyboardTest, CommandEscapeAgainEndsNavigation) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kEscapeKey, B_COMMAND_KEY);
    EXPECT_FALSE(Selected(fBar, 0));
    EXPECT_EQ(fFocus, Focus());
}

TEST_F(MenuKeyboardTest, TypingATriggerChoosesItsItem) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    // "Open" takes o, "Copy" c, "Exit" e.
    Type(kCKey);
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('copy') + " index 1"));
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuKeyboardTest, TypingATriggerOnTheBarOpensThatMenu) {
    MakeWindow();
    Type(kEscapeKey, B_COMMAND_KEY);
    // "File" takes f, "Edit" e.
    Type(0x29);
    WindowListing listing;
    EXPECT_TRUE(wait_for_menu_window("Edit", &listing));
}

TEST_F(MenuKeyboardTest, TriggersDoNothingWhenDisabled) {
    MakeWindow();
    ASSERT_TRUE(fWindow->Lock());
    fFile->SetTriggersEnabled(false);
    fWindow->Unlock();
    Type(kEscapeKey, B_COMMAND_KEY);
    Type(kDownKey);
    Type(kOKey);
    EXPECT_TRUE(fWindow->Messages().empty());
    EXPECT_TRUE(wait_for_menu_count(1));
}

TEST_F(MenuKeyboardTest, ShortcutFiresFromTheWindowWithoutOpeningMenus) {
    MakeWindow();
    Type(kCKey, B_COMMAND_KEY);
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('copy') + " index 1"));
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuKeyboardTest, ShortcutNeedsItsOwnModifiers) {
    MakeWindow();
    Type(kXKey, B_COMMAND_KEY);
    EXPECT_TRUE(fWindow->Messages().empty());
    Type(kXKey, B_COMMAND_KEY | B_SHIFT_KEY);
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('cut_') + " index 0"));
}

TEST_F(MenuKeyboardTest, ShortcutOfADisabledItemDoesNothing) {
    MakeWindow();
    ASSERT_TRUE(fWindow->Lock());
    fFile->ItemAt(1)->SetEnabled(false);
    fWindow->Unlock();
    Type(kCKey, B_COMMAND_KEY);
    EXPECT_TRUE(fWindow->Messages().empty());
}

TEST_F(MenuKeyboardTest, ShortcutGoesAwayWithItsItem) {
    MakeWindow();
    ASSERT_TRUE(fWindow->Lock());
    delete fFile->RemoveItem((int32)1);
    EXPECT_FALSE(fWindow->HasShortcut('C', B_COMMAND_KEY));
    fWindow->Unlock();
}

TEST_F(MenuKeyboardTest, MouseTrackingAlsoTakesEscape) {
    MakeWindow();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(fBar, 0))));
    WaitForIdle();
    ASSERT_TRUE(wait_for_menu_count(1));
    Type(kEscapeKey);
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuKeyboardTest, AFilterCanMoveNavigationFromOneBarToAnother) {
    MakeWindow();
    BMenuBar* other = new BMenuBar(BRect(0, 100, 299, 119), "other");
    BMenu* tools = new BMenu("Tools");
    tools->AddItem(new BMenuItem("Hammer", new BMessage('hamr')));
    other->AddItem(new VisibleItem(tools));
    ASSERT_TRUE(fWindow->Lock());
    fWindow->AddChild(other);
    fWindow->SetKeyMenuBar(fBar);
    fWindow->AddCommonFilter(new TabFilter(fBar, other));
    fWindow->Unlock();

    Type(kEscapeKey, B_COMMAND_KEY);
    EXPECT_TRUE(Selected(fBar, 0));
    Type(0x26);
    EXPECT_FALSE(Selected(fBar, 0));
    EXPECT_TRUE(Selected(other, 0));
    EXPECT_EQ(other, Focus());
    Type(kDownKey);
    Type(kReturnKey);
    EXPECT_EQ(1u, fLog.Count("message " + std::to_string('hamr') + " index 0"));
    EXPECT_EQ(fFocus, Focus());
}
