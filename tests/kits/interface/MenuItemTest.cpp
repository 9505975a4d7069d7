// Menu items: invoking with the fields Be adds, enabled and marked states in
// menus, radio mode and labels from the marked item, shortcuts, truncating
// labels, and archiving.
#include "MenuTestSupport.h"
#include "Watchdog.h"

#include <PopUpMenu.h>

#include <gtest/gtest.h>

#include <string.h>

using namespace menu_testing;
using testing_support::wait_until;

namespace {

class TruncatingItem : public BMenuItem {
public:
    TruncatingItem(const char* label) : BMenuItem(label, NULL) {}
    using BMenuItem::TruncateLabel;
};

class MenuItemTest : public MenuAppTest {
protected:
    RecordingWindow* Target() {
        if (fTarget == NULL) {
            fTarget = new RecordingWindow(BRect(0, 0, 10, 10), &fLog);
            fTarget->Run();
        }
        return fTarget;
    }

    RecordingWindow* fTarget = NULL;
};

} // namespace

TEST_F(MenuItemTest, InvokeSendsACopyWithWhenSourceAndIndex) {
    BMenu menu("menu");
    menu.AddItem(new BMenuItem("first", NULL));
    BMenuItem* item = new BMenuItem("second", new BMessage('scnd'));
    menu.AddItem(item);
    ASSERT_EQ(B_OK, item->SetTarget(Target()));
    bigtime_t before = system_time();
    ASSERT_EQ(B_OK, item->Invoke());
    ASSERT_TRUE(wait_until([&] { return !Target()->Messages().empty(); }));
    BMessage sent = Target()->Messages()[0];
    EXPECT_EQ((uint32)'scnd', sent.what);
    EXPECT_EQ(1, sent.GetInt32("index", -1));
    EXPECT_EQ(item, sent.GetPointer("source", NULL));
    EXPECT_GE(sent.GetInt64("when", 0), before);
    EXPECT_FALSE(item->Message()->HasInt64("when"));
}

TEST_F(MenuItemTest, InvokeOfADisabledItemFails) {
    BMenuItem item("item", new BMessage('item'));
    item.SetEnabled(false);
    EXPECT_EQ(B_ERROR, item.Invoke());
}

TEST_F(MenuItemTest, InvokeWithoutAnyMessageFails) {
    BMenuItem item("item", NULL);
    EXPECT_EQ(B_BAD_VALUE, item.Invoke());
}

TEST_F(MenuItemTest, ItemOfADisabledMenuIsDisabled) {
    BMenu menu("menu");
    BMenu* submenu = new BMenu("sub");
    BMenuItem* inner = new BMenuItem("inner", NULL);
    submenu->AddItem(inner);
    menu.AddItem(submenu);
    EXPECT_TRUE(inner->IsEnabled());
    menu.SetEnabled(false);
    EXPECT_FALSE(inner->IsEnabled());
    EXPECT_FALSE(menu.ItemAt(0)->IsEnabled());
    menu.SetEnabled(true);
    EXPECT_TRUE(inner->IsEnabled());
}

TEST_F(MenuItemTest, DisablingASuperitemDisablesItsSubmenu) {
    BMenu menu("menu");
    BMenu* submenu = new BMenu("sub");
    menu.AddItem(submenu);
    menu.ItemAt(0)->SetEnabled(false);
    EXPECT_FALSE(submenu->IsEnabled());
    submenu->SetEnabled(true);
    EXPECT_TRUE(menu.ItemAt(0)->IsEnabled());
}

TEST_F(MenuItemTest, RadioModeMarksTheInvokedItemAlone) {
    BMenu menu("menu");
    menu.SetRadioMode(true);
    BMenuItem* first = new BMenuItem("first", new BMessage('frst'));
    BMenuItem* second = new BMenuItem("second", new BMessage('scnd'));
    menu.AddItem(first);
    menu.AddItem(second);
    first->SetMarked(true);
    menu.SetTargetForItems(Target());
    second->Invoke();
    EXPECT_TRUE(second->IsMarked());
    EXPECT_FALSE(first->IsMarked());
    EXPECT_EQ(second, menu.FindMarked());
}

TEST_F(MenuItemTest, WithoutRadioModeMarksAreIndependent) {
    BMenu menu("menu");
    BMenuItem* first = new BMenuItem("first", NULL);
    BMenuItem* second = new BMenuItem("second", NULL);
    menu.AddItem(first);
    menu.AddItem(second);
    first->SetMarked(true);
    second->SetMarked(true);
    EXPECT_TRUE(first->IsMarked());
    EXPECT_TRUE(second->IsMarked());
}

TEST_F(MenuItemTest, LabelFromMarkedRenamesTheSuperitem) {
    BMenu bar("bar");
    BPopUpMenu* choices = new BPopUpMenu("Choose");
    choices->AddItem(new BMenuItem("Small", NULL));
    choices->AddItem(new BMenuItem("Large", NULL));
    bar.AddItem(choices);
    EXPECT_STREQ("Choose", bar.ItemAt(0)->Label());
    choices->ItemAt(1)->SetMarked(true);
    EXPECT_STREQ("Large", bar.ItemAt(0)->Label());
    choices->ItemAt(0)->SetMarked(true);
    EXPECT_STREQ("Small", bar.ItemAt(0)->Label());
    EXPECT_FALSE(choices->ItemAt(1)->IsMarked());
}

TEST_F(MenuItemTest, ShortcutAlwaysCarriesCommand) {
    BMenuItem item("item", NULL, 'Q', B_SHIFT_KEY);
    uint32 modifiers = 0;
    EXPECT_EQ('Q', item.Shortcut(&modifiers));
    EXPECT_EQ((uint32)(B_SHIFT_KEY | B_COMMAND_KEY), modifiers);
    item.SetShortcut(0, 0);
    EXPECT_EQ(0, item.Shortcut());
}

TEST_F(MenuItemTest, TruncatedLabelFitsTheWidthAndEndsWithAnEllipsis) {
    BMenu menu("menu");
    TruncatingItem* item = new TruncatingItem("A label far too long for the space given");
    menu.AddItem(item);
    char truncated[64];
    item->TruncateLabel(60, truncated);
    BFont font;
    menu.GetFont(&font);
    EXPECT_LE(font.StringWidth(truncated), 60);
    EXPECT_NE(nullptr, strstr(truncated, "\xe2\x80\xa6"));
    item->TruncateLabel(1000, truncated);
    EXPECT_STREQ(item->Label(), truncated);
}

TEST_F(MenuItemTest, ArchiveKeepsLabelMessageShortcutMarkAndSubmenu) {
    BMenuItem item("Open", new BMessage('open'), 'O', B_SHIFT_KEY);
    item.SetMarked(true);
    item.SetEnabled(false);
    BMessage archive;
    ASSERT_EQ(B_OK, item.Archive(&archive));
    EXPECT_STREQ("BMenuItem", archive.GetString("class", ""));

    BArchivable* object = instantiate_object(&archive);
    BMenuItem* copy = dynamic_cast<BMenuItem*>(object);
    ASSERT_NE(nullptr, copy);
    EXPECT_STREQ("Open", copy->Label());
    ASSERT_NE(nullptr, copy->Message());
    EXPECT_EQ((uint32)'open', copy->Message()->what);
    uint32 modifiers = 0;
    EXPECT_EQ('O', copy->Shortcut(&modifiers));
    EXPECT_EQ((uint32)(B_SHIFT_KEY | B_COMMAND_KEY), modifiers);
    EXPECT_TRUE(copy->IsMarked());
    EXPECT_FALSE(copy->IsEnabled());
    delete copy;

    BMenu* submenu = new BMenu("Recent");
    submenu->AddItem(new BMenuItem("One", new BMessage('one_')));
    submenu->AddSeparatorItem();
    BMenuItem parent(submenu);
    BMessage deep;
    ASSERT_EQ(B_OK, parent.Archive(&deep, true));
    BMenuItem* restored = dynamic_cast<BMenuItem*>(instantiate_object(&deep));
    ASSERT_NE(nullptr, restored);
    ASSERT_NE(nullptr, restored->Submenu());
    EXPECT_STREQ("Recent", restored->Label());
    ASSERT_EQ(2, restored->Submenu()->CountItems());
    EXPECT_STREQ("One", restored->Submenu()->ItemAt(0)->Label());
    EXPECT_NE(nullptr, dynamic_cast<BSeparatorItem*>(restored->Submenu()->ItemAt(1)));
    delete restored;
}

TEST_F(MenuItemTest, InstantiateRefusesArchivesOfOtherClasses) {
    BMessage archive;
    archive.AddString("class", "BButton");
    archive.AddString("_label", "nope");
    EXPECT_EQ(NULL, BMenuItem::Instantiate(&archive));
    EXPECT_EQ(NULL, BSeparatorItem::Instantiate(&archive));
    EXPECT_EQ(NULL, BMenu::Instantiate(&archive));
}

TEST_F(MenuItemTest, MenuArchiveKeepsLayoutAndFlags) {
    BMenu menu("menu", B_ITEMS_IN_ROW);
    menu.SetRadioMode(true);
    menu.SetTriggersEnabled(false);
    menu.SetMaxContentWidth(40);
    menu.AddItem(new BMenuItem("a", NULL));
    BMessage archive;
    ASSERT_EQ(B_OK, menu.Archive(&archive));
    BMenu* copy = dynamic_cast<BMenu*>(instantiate_object(&archive));
    ASSERT_NE(nullptr, copy);
    EXPECT_STREQ("menu", copy->Name());
    EXPECT_TRUE(copy->IsRadioMode());
    EXPECT_FALSE(copy->AreTriggersEnabled());
    EXPECT_EQ(40, copy->MaxContentWidth());
    EXPECT_EQ(1, copy->CountItems());
    delete copy;
}

TEST_F(MenuItemTest, ItemsWithoutATargetSendToTheBarsWindow) {
    RecordingWindow* window = new RecordingWindow(BRect(100, 100, 300, 200), &fLog);
    BMenuBar* bar = new BMenuBar(BRect(0, 0, 200, 19), "bar");
    BMenu* menu = new BMenu("menu");
    BMenuItem* item = new BMenuItem("item", new BMessage('item'));
    menu->AddItem(item);
    bar->AddItem(menu);
    window->AddChild(bar);
    BLooper* looper = NULL;
    item->Target(&looper);
    EXPECT_EQ(window, looper);
    window->Show();
    WaitForIdle();
}
