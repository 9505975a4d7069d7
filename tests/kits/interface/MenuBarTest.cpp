// Menu bars as subclasses use them: MouseDown() and KeyDown() overrides that
// call the base class, menus that borrow items while open and give them back
// when closed, menus changed or deleted while open, the key menu bar, and the
// end of tracking when the window goes inactive or the bar goes away.
#include "MenuTestSupport.h"
#include "Watchdog.h"

#include <Autolock.h>
#include <List.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

using namespace menu_testing;
using testing_support::wait_until;

namespace {

// Opens its menus only on a secondary press; a primary press "launches".
class ChoosyBar : public BMenuBar {
public:
    ChoosyBar(BRect frame, EventLog* log)
        : BMenuBar(frame, "choosy", B_FOLLOW_NONE, B_ITEMS_IN_ROW, false), fLog(log) {}

    void MouseDown(BPoint where) override {
        int32 buttons = Window()->CurrentMessage()->GetInt32("buttons", 0);
        if (buttons == B_SECONDARY_MOUSE_BUTTON) {
            BMenuBar::MouseDown(where);
            return;
        }
        fLog->Add("launch");
    }

    void KeyDown(const char* bytes, int32 numBytes) override {
        // What the bar has selected when the key arrives, before the menu acts.
        for (int32 index = CountItems() - 1; index >= 0; index--) {
            if (static_cast<SelectableItem*>(ItemAt(index))->Selected()) {
                fLog->Add("key on " + std::to_string(index));
                break;
            }
        }
        BMenuBar::KeyDown(bytes, numBytes);
    }

    class SelectableItem : public BMenuItem {
    public:
        SelectableItem(BMenu* menu, BMessage* message) : BMenuItem(menu, message) {}
        bool Selected() const { return IsSelected(); }
    };

private:
    EventLog* fLog;
};

// Shows the items of an owner's list while open; they stay the owner's.
class BorrowingMenu : public BMenu {
public:
    BorrowingMenu(BList* items, EventLog* log) : BMenu("borrowing"), fItems(items), fLog(log) {}

    void AttachedToWindow() override {
        for (int32 index = 0; index < fItems->CountItems(); index++)
            AddItem(static_cast<BMenuItem*>(fItems->ItemAt(index)));
        fLog->Add("borrowed " + std::to_string(CountItems()));
        BMenu::AttachedToWindow();
    }

    void AllDetached() override {
        BMenu::AllDetached();
        RemoveItems(0, CountItems(), false);
        fLog->Add("gave back");
    }

private:
    BList* fItems;
    EventLog* fLog;
};

// Adds one item per step, many more than it is ever open long enough for.
class FillingMenu : public BMenu {
public:
    explicit FillingMenu(const char* name) : BMenu(name) {}

    bool AddDynamicItem(add_state state) override {
        if (state == B_INITIAL_ADD) {
            RemoveItems(0, CountItems(), true);
            return true;
        }
        if (state != B_PROCESSING)
            return false;
        std::string label = "item " + std::to_string(CountItems());
        AddItem(new BMenuItem(label.c_str(), NULL));
        fAdded.fetch_add(1);
        return CountItems() < 100000;
    }

    int32 Added() const { return fAdded.load(); }

private:
    std::atomic<int32> fAdded{0};
};

class MoveLogger : public BView {
public:
    MoveLogger(BRect frame, EventLog* log) : BView(frame, "logger", B_FOLLOW_NONE, 0), fLog(log) {}
    void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override {
        fLog->Add("moved");
    }

private:
    EventLog* fLog;
};

class MenuBarTest : public MenuAppTest {
protected:
    RecordingWindow* MakeWindow(BMenuBar* bar) {
        RecordingWindow* window = new RecordingWindow(BRect(100, 100, 399, 299), &fLog);
        window->AddChild(bar);
        window->Show();
        WaitForIdle();
        return window;
    }

    void CloseMenus() {
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 700)));
        WaitForIdle();
    }
};

} // namespace

TEST_F(MenuBarTest, SubclassOpensMenusByCallingTheBaseMouseDown) {
    ChoosyBar* bar = new ChoosyBar(BRect(0, 0, 200, 19), &fLog);
    BMenu* menu = new BMenu("Items");
    menu->AddItem(new BMenuItem("One", new BMessage('one_')));
    bar->AddItem(new ChoosyBar::SelectableItem(menu, new BMessage('strt')));
    MakeWindow(bar);
    BPoint item = center_of(item_screen_frame(bar, 0));

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(item));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("launch"));
    EXPECT_TRUE(wait_for_menu_count(0));

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(item, B_SECONDARY_MOUSE_BUTTON));
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(1));
}

TEST_F(MenuBarTest, KeyDownOverrideSeesTheSelectedBarItemBeforeTheMenuActs) {
    ChoosyBar* bar = new ChoosyBar(BRect(0, 0, 200, 19), &fLog);
    bar->AddItem(new ChoosyBar::SelectableItem(new BMenu("A"), new BMessage('aaaa')));
    bar->AddItem(new ChoosyBar::SelectableItem(new BMenu("B"), new BMessage('bbbb')));
    RecordingWindow* window = MakeWindow(bar);
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x01, NULL, B_COMMAND_KEY));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x63, NULL, 0));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x47, NULL, 0));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("key on 1"));
    std::vector<BMessage> messages = window->Messages();
    ASSERT_EQ(1u, messages.size());
    EXPECT_EQ((uint32)'bbbb', messages[0].what);
}

TEST_F(MenuBarTest, BorrowedItemsGoBackToTheirOwnerAtEveryClose) {
    BList owned;
    owned.AddItem(new BMenuItem("Kept one", new BMessage('kep1')));
    owned.AddItem(new BMenuItem("Kept two", new BMessage('kep2')));
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 19), "bar");
    BorrowingMenu* menu = new BorrowingMenu(&owned, &fLog);
    bar->AddItem(menu);
    RecordingWindow* window = MakeWindow(bar);
    for (int round = 0; round < 2; round++) {
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
        WaitForIdle();
        CloseMenus();
    }
    EXPECT_EQ(2u, fLog.Count("borrowed 2"));
    EXPECT_EQ(2u, fLog.Count("gave back"));

    // A borrowed item chosen is invoked although it has gone back already.
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(menu, 1))));
    WaitForIdle();
    std::vector<BMessage> messages = window->Messages();
    ASSERT_EQ(1u, messages.size());
    EXPECT_EQ((uint32)'kep2', messages[0].what);
    for (int32 index = 0; index < owned.CountItems(); index++) {
        BMenuItem* item = static_cast<BMenuItem*>(owned.ItemAt(index));
        EXPECT_EQ(NULL, item->Menu());
        delete item;
    }
}

TEST_F(MenuBarTest, KeyMenuBarIsTheBarAttachedLast) {
    BMenuBar* first = new BMenuBar(BRect(0, 0, 200, 19), "first");
    RecordingWindow* window = MakeWindow(first);
    BMenuBar* second = new BMenuBar(BRect(0, 30, 200, 49), "second");
    ASSERT_TRUE(window->Lock());
    window->AddChild(second);
    EXPECT_EQ(second, window->KeyMenuBar());
    window->SetKeyMenuBar(first);
    EXPECT_EQ(first, window->KeyMenuBar());
    window->Unlock();
}

TEST_F(MenuBarTest, CommandEscapeOpensTheKeyMenuBarChosen) {
    BMenuBar* first = new BMenuBar(BRect(0, 0, 200, 19), "first");
    first->AddItem(new BMenu("First"));
    RecordingWindow* window = MakeWindow(first);
    BMenuBar* second = new BMenuBar(BRect(0, 30, 200, 49), "second");
    second->AddItem(new BMenu("Second"));
    ASSERT_TRUE(window->Lock());
    window->AddChild(second);
    window->SetKeyMenuBar(first);
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x01, NULL, B_COMMAND_KEY));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x62, NULL, 0));
    WaitForIdle();
    WindowListing listing;
    EXPECT_TRUE(wait_for_menu_window("First", &listing));
}

TEST_F(MenuBarTest, MenusCloseWhenTheWindowIsNoLongerActive) {
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 19), "bar");
    bar->AddItem(new BMenu("Menu"));
    MakeWindow(bar);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    ASSERT_TRUE(wait_for_menu_count(1));
    BWindow* other = new BWindow(BRect(500, 500, 600, 600), "other", B_TITLED_WINDOW, 0);
    other->Show();
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
}

TEST_F(MenuBarTest, RemovingTheBarWhileItTracksClosesItsMenus) {
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 19), "bar");
    BMenu* menu = new LoggingMenu("Menu", &fLog);
    BMenu* inner = new LoggingMenu("Inner", &fLog);
    inner->AddItem(new BMenuItem("Deep", NULL));
    menu->AddItem(inner);
    bar->AddItem(menu);
    RecordingWindow* window = MakeWindow(bar);
    MoveLogger* logger = new MoveLogger(BRect(0, 50, 199, 150), &fLog);
    ASSERT_TRUE(window->Lock());
    window->AddChild(logger);
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(menu, 0))));
    WaitForIdle();
    ASSERT_TRUE(wait_for_menu_count(2));
    ASSERT_TRUE(window->Lock());
    window->RemoveChild(bar);
    delete bar;
    window->Unlock();
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_EQ(1u, fLog.Count("detached Menu"));
    EXPECT_EQ(1u, fLog.Count("detached Inner"));
    // Nothing holds the pointer any more: the window's views get it again.
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(ScreenPoint(window, BPoint(50, 100))));
    WaitForIdle();
    EXPECT_GE(fLog.Count("moved"), 1u);
}

TEST_F(MenuBarTest, QuittingTheWindowWhileASubmenuFillsClosesEveryMenu) {
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 19), "bar");
    BMenu* menu = new LoggingMenu("Menu", &fLog);
    FillingMenu* inner = new FillingMenu("Inner");
    menu->AddItem(inner);
    bar->AddItem(menu);
    RecordingWindow* window = MakeWindow(bar);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(menu, 0))));
    // The submenu's own thread is busy adding items when the bar's window goes.
    ASSERT_TRUE(wait_until([&] { return inner->Added() >= 20; }));
    ASSERT_TRUE(window->Lock());
    window->Quit();
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_TRUE(wait_until([] { return HeadlessTestApi::Windows().empty(); }));
    EXPECT_EQ(1u, fLog.Count("detached Menu"));
}

TEST_F(MenuBarTest, DeletingAnOpenSubmenuClosesItsWindow) {
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 19), "bar");
    BMenu* menu = new LoggingMenu("Menu", &fLog);
    menu->AddItem(new BMenuItem("One", NULL));
    bar->AddItem(menu);
    bar->AddItem(new BMenu("Other"));
    RecordingWindow* window = MakeWindow(bar);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    ASSERT_TRUE(wait_for_menu_count(1));
    ASSERT_TRUE(window->Lock());
    delete bar->RemoveItem((int32)0);
    window->Unlock();
    WaitForIdle();
    EXPECT_TRUE(wait_for_menu_count(0));
    EXPECT_EQ(1u, fLog.Count("detached Menu"));
    // Tracking goes on with what is left.
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    WindowListing listing;
    EXPECT_TRUE(wait_for_menu_window("Other", &listing));
}

TEST_F(MenuBarTest, OpenMenuRebuiltFromTheBarsThreadShowsTheNewItems) {
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 19), "bar");
    BMenu* menu = new BMenu("Menu");
    menu->AddItem(new BMenuItem("Old", new BMessage('old_')));
    bar->AddItem(menu);
    RecordingWindow* window = MakeWindow(bar);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(bar, 0))));
    WaitForIdle();
    ASSERT_TRUE(window->Lock());
    menu->RemoveItems(0, menu->CountItems(), true);
    menu->AddItem(new BMenuItem("New first", new BMessage('new1')));
    menu->AddItem(new BMenuItem("New second", new BMessage('new2')));
    menu->ItemAt(0)->SetEnabled(false);
    window->Unlock();
    WaitForIdle();

    WindowListing listing;
    ASSERT_TRUE(wait_for_menu_window("Menu", &listing));
    float width;
    float height;
    {
        MenuLock lock(menu);
        ASSERT_TRUE(lock.IsLocked());
        menu->GetPreferredSize(&width, &height);
    }
    EXPECT_EQ(height, listing.frame.Height());
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(menu, 0))));
    WaitForIdle();
    EXPECT_TRUE(window->Messages().empty());
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(menu, 1))));
    WaitForIdle();
    std::vector<BMessage> messages = window->Messages();
    ASSERT_EQ(1u, messages.size());
    EXPECT_EQ((uint32)'new2', messages[0].what);
}

TEST_F(MenuBarTest, ResizeToFitGivesTheBarTheHeightOfItsItems) {
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 50), "bar");
    bar->AddItem(new BMenu("Menu"));
    RecordingWindow* window = MakeWindow(bar);
    BAutolock lock(window);
    float width;
    float height;
    bar->GetPreferredSize(&width, &height);
    EXPECT_EQ(height, bar->Bounds().Height());
    EXPECT_EQ(200, bar->Bounds().Width());
    EXPECT_LT(height, 50);
}

TEST_F(MenuBarTest, BorderIsKept) {
    BMenuBar bar(BRect(0, 0, 200, 19), "bar");
    EXPECT_EQ(B_BORDER_FRAME, bar.Border());
    bar.SetBorder(B_BORDER_EACH_ITEM);
    EXPECT_EQ(B_BORDER_EACH_ITEM, bar.Border());
    BMessage archive;
    ASSERT_EQ(B_OK, bar.Archive(&archive));
    BMenuBar* copy = dynamic_cast<BMenuBar*>(instantiate_object(&archive));
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(B_BORDER_EACH_ITEM, copy->Border());
    delete copy;
}
