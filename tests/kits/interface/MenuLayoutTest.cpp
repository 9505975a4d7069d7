// Laying out menus without a window: columns, rows and matrices built from the
// items' content sizes and the item margins, and the item management calls.
#include "MenuTestSupport.h"

#include <PopUpMenu.h>

#include <gtest/gtest.h>

using namespace menu_testing;

namespace {

const rgb_color kGrey = {128, 128, 128, 255};

// Exposes the protected layout calls of a menu.
class OpenMenu : public BMenu {
public:
    OpenMenu(const char* name, menu_layout layout = B_ITEMS_IN_COLUMN) : BMenu(name, layout) {}
    OpenMenu(const char* name, float width, float height) : BMenu(name, width, height) {}
    using BMenu::GetItemMargins;
    using BMenu::Layout;
    using BMenu::SetItemMargins;
};

// An item whose content size changes behind the menu's back.
class GrowingItem : public BMenuItem {
public:
    GrowingItem(float* height) : BMenuItem("growing", NULL), fHeight(height) {}

protected:
    void GetContentSize(float* width, float* height) override {
        *width = 10;
        *height = *fHeight;
    }

private:
    float* fHeight;
};

// Counts the deletions of its instances.
class CountedItem : public BMenuItem {
public:
    CountedItem(const char* label, int* deleted) : BMenuItem(label, NULL), fDeleted(deleted) {}
    ~CountedItem() override { (*fDeleted)++; }

private:
    int* fDeleted;
};

class MenuLayoutTest : public ::testing::Test {};

} // namespace

TEST_F(MenuLayoutTest, ColumnStacksItemsOnePixelApartAllAsWideAsTheWidest) {
    OpenMenu menu("column");
    menu.SetItemMargins(2, 2, 2, 2);
    menu.AddItem(new SwatchItem("a", NULL, 15, 15, kGrey));
    menu.AddItem(new SwatchItem("b", NULL, 30, 10, kGrey));
    EXPECT_EQ(BRect(0, 0, 34, 19), menu.ItemAt(0)->Frame());
    EXPECT_EQ(BRect(0, 20, 34, 34), menu.ItemAt(1)->Frame());
    float width;
    float height;
    menu.GetPreferredSize(&width, &height);
    EXPECT_EQ(34, width);
    EXPECT_EQ(34, height);
}

TEST_F(MenuLayoutTest, RowPutsItemsSideBySideAllAsTallAsTheTallest) {
    OpenMenu menu("row", B_ITEMS_IN_ROW);
    menu.SetItemMargins(10, 2, 10, 2);
    menu.AddItem(new SwatchItem("a", NULL, 96, 15, kGrey));
    menu.AddItem(new SwatchItem("b", NULL, 50, 20, kGrey));
    EXPECT_EQ(BRect(0, 0, 116, 24), menu.ItemAt(0)->Frame());
    EXPECT_EQ(BRect(117, 0, 187, 24), menu.ItemAt(1)->Frame());
    float width;
    float height;
    menu.GetPreferredSize(&width, &height);
    EXPECT_EQ(187, width);
    EXPECT_EQ(24, height);
}

TEST_F(MenuLayoutTest, MatrixKeepsTheFramesItWasGiven) {
    OpenMenu menu("matrix", 100, 80);
    EXPECT_EQ(B_ITEMS_IN_MATRIX, menu.Layout());
    menu.AddItem(new BMenuItem("a", NULL), BRect(10, 10, 40, 30));
    menu.AddItem(new BMenuItem("b", NULL), BRect(50, 40, 90, 70));
    EXPECT_EQ(BRect(50, 40, 90, 70), menu.ItemAt(1)->Frame());
    float width;
    float height;
    menu.GetPreferredSize(&width, &height);
    EXPECT_EQ(90, width);
    EXPECT_EQ(70, height);
}

TEST_F(MenuLayoutTest, MaxContentWidthCutsWideItems) {
    OpenMenu menu("column");
    menu.SetItemMargins(2, 2, 2, 2);
    menu.SetMaxContentWidth(33);
    menu.AddItem(new SwatchItem("a", NULL, 96, 15, kGrey));
    EXPECT_EQ(33, menu.MaxContentWidth());
    EXPECT_EQ(37, menu.ItemAt(0)->Frame().Width());
}

TEST_F(MenuLayoutTest, ItemMarginsAreKeptAsGiven) {
    OpenMenu menu("column");
    menu.SetItemMargins(1, 2, 3, 4);
    float left, top, right, bottom;
    menu.GetItemMargins(&left, &top, &right, &bottom);
    EXPECT_EQ(1, left);
    EXPECT_EQ(2, top);
    EXPECT_EQ(3, right);
    EXPECT_EQ(4, bottom);
}

TEST_F(MenuLayoutTest, ItemInsertedAtAnIndexMovesTheOthersDown) {
    OpenMenu menu("column");
    menu.SetItemMargins(0, 0, 0, 0);
    BMenuItem* first = new SwatchItem("first", NULL, 10, 9, kGrey);
    BMenuItem* second = new SwatchItem("second", NULL, 10, 9, kGrey);
    menu.AddItem(first);
    ASSERT_TRUE(menu.AddItem(second, 0));
    EXPECT_EQ(0, menu.IndexOf(second));
    EXPECT_EQ(1, menu.IndexOf(first));
    EXPECT_EQ(10, first->Frame().top);
    EXPECT_EQ(first, menu.ItemAt(1));
}

TEST_F(MenuLayoutTest, AddItemRefusesBadIndexesAndItemsOfOtherMenus) {
    BMenu menu("one");
    BMenu other("two");
    BMenuItem* item = new BMenuItem("item", NULL);
    EXPECT_FALSE(menu.AddItem(item, 1));
    ASSERT_TRUE(menu.AddItem(item));
    EXPECT_FALSE(other.AddItem(item));
    EXPECT_EQ(&menu, item->Menu());
    EXPECT_FALSE(menu.AddItem((BMenuItem*)NULL));
}

TEST_F(MenuLayoutTest, RemoveItemsGivesItemsBackOrDeletesThem) {
    int deleted = 0;
    BMenu menu("menu");
    for (int index = 0; index < 4; index++)
        menu.AddItem(new CountedItem("item", &deleted));
    BMenuItem* kept = menu.ItemAt(0);
    BMenuItem* keptToo = menu.ItemAt(1);
    ASSERT_TRUE(menu.RemoveItems(0, 2, false));
    EXPECT_EQ(0, deleted);
    EXPECT_EQ(NULL, kept->Menu());
    EXPECT_EQ(2, menu.CountItems());
    ASSERT_TRUE(menu.RemoveItems(0, 2, true));
    EXPECT_EQ(2, deleted);
    EXPECT_EQ(0, menu.CountItems());
    EXPECT_FALSE(menu.RemoveItems(0, 1, true));
    delete kept;
    delete keptToo;
}

TEST_F(MenuLayoutTest, RemoveItemByPointerAndByIndex) {
    BMenu menu("menu");
    BMenuItem* first = new BMenuItem("first", NULL);
    BMenuItem* second = new BMenuItem("second", NULL);
    menu.AddItem(first);
    menu.AddItem(second);
    EXPECT_TRUE(menu.RemoveItem(first));
    EXPECT_FALSE(menu.RemoveItem(first));
    EXPECT_EQ(second, menu.RemoveItem((int32)0));
    EXPECT_EQ(NULL, menu.RemoveItem((int32)0));
    delete first;
    delete second;
}

TEST_F(MenuLayoutTest, DeletingAMenuDeletesItsItemsAndSubmenus) {
    int deleted = 0;
    BMenu* menu = new BMenu("menu");
    BMenu* submenu = new BMenu("sub");
    submenu->AddItem(new CountedItem("inner", &deleted));
    menu->AddItem(submenu);
    menu->AddItem(new CountedItem("outer", &deleted));
    delete menu;
    EXPECT_EQ(2, deleted);
}

TEST_F(MenuLayoutTest, SubmenuItemTakesTheMenusNameAndLinksBothWays) {
    BMenu menu("menu");
    BMenu* submenu = new BMenu("Recent");
    ASSERT_TRUE(menu.AddItem(submenu));
    BMenuItem* item = menu.ItemAt(0);
    EXPECT_STREQ("Recent", item->Label());
    EXPECT_EQ(submenu, item->Submenu());
    EXPECT_EQ(item, submenu->Superitem());
    EXPECT_EQ(&menu, submenu->Supermenu());
    EXPECT_EQ(submenu, menu.SubmenuAt(0));
    EXPECT_EQ(0, menu.IndexOf(submenu));
}

TEST_F(MenuLayoutTest, FindItemSearchesSubmenusByCommandAndByLabel) {
    BMenu menu("menu");
    BMenu* submenu = new BMenu("sub");
    BMenuItem* deep = new BMenuItem("Deep", new BMessage('deep'));
    submenu->AddItem(deep);
    menu.AddItem(new BMenuItem("Top", new BMessage('top_')));
    menu.AddItem(submenu);
    EXPECT_EQ(deep, menu.FindItem('deep'));
    EXPECT_EQ(deep, menu.FindItem("Deep"));
    EXPECT_EQ(NULL, menu.FindItem('none'));
    EXPECT_EQ(NULL, menu.FindItem((const char*)NULL));
}

TEST_F(MenuLayoutTest, SeparatorIsDisabledAndThinnerThanAnItem) {
    OpenMenu menu("menu");
    menu.AddItem(new BMenuItem("Item", NULL));
    ASSERT_TRUE(menu.AddSeparatorItem());
    BMenuItem* separator = menu.ItemAt(1);
    EXPECT_NE(nullptr, dynamic_cast<BSeparatorItem*>(separator));
    EXPECT_FALSE(separator->IsEnabled());
    separator->SetEnabled(true);
    EXPECT_FALSE(separator->IsEnabled());
    EXPECT_LT(separator->Frame().Height(), menu.ItemAt(0)->Frame().Height());
}

TEST_F(MenuLayoutTest, LabelChangeIsLaidOutAgain) {
    BMenu menu("menu");
    menu.AddItem(new BMenuItem("A", NULL));
    float narrow = menu.ItemAt(0)->Frame().Width();
    menu.ItemAt(0)->SetLabel("A much longer label than before");
    EXPECT_GT(menu.ItemAt(0)->Frame().Width(), narrow);
}

TEST_F(MenuLayoutTest, ShortcutsWidenTheColumn) {
    BMenu plain("plain");
    plain.AddItem(new BMenuItem("Open", NULL));
    BMenu shortcut("shortcut");
    shortcut.AddItem(new BMenuItem("Open", NULL, 'O'));
    EXPECT_GT(shortcut.ItemAt(0)->Frame().Width(), plain.ItemAt(0)->Frame().Width() + 10);
}

TEST_F(MenuLayoutTest, ManyAppendedItemsKeepTheirPlaces) {
    OpenMenu menu("long");
    menu.SetItemMargins(0, 0, 0, 0);
    for (int index = 0; index < 1000; index++) {
        menu.AddItem(new SwatchItem("item", NULL, 10, 9, kGrey));
        // Asking between additions places only what is new.
        EXPECT_EQ(index * 10, menu.ItemAt(index)->Frame().top);
    }
    EXPECT_EQ(9999, menu.ItemAt(999)->Frame().bottom);
}

TEST_F(MenuLayoutTest, TriggersAreTheFirstFreeLetters) {
    BMenu menu("menu");
    menu.AddItem(new BMenuItem("Open", NULL));
    menu.AddItem(new BMenuItem("Other", NULL));
    menu.AddItem(new BMenuItem("Save", NULL));
    BMenuItem* chosen = new BMenuItem("Close", NULL);
    chosen->SetTrigger('s');
    menu.AddItem(chosen);
    menu.ItemAt(0)->Frame();
    EXPECT_EQ('O', menu.ItemAt(0)->Trigger());
    EXPECT_EQ('t', menu.ItemAt(1)->Trigger());
    EXPECT_EQ('S', menu.ItemAt(2)->Trigger());
    EXPECT_EQ('s', menu.ItemAt(3)->Trigger());
}

TEST_F(MenuLayoutTest, AttributesAreKept) {
    BMenu menu("menu");
    EXPECT_TRUE(menu.AreTriggersEnabled());
    menu.SetTriggersEnabled(false);
    EXPECT_FALSE(menu.AreTriggersEnabled());
    EXPECT_FALSE(menu.IsRadioMode());
    menu.SetLabelFromMarked(true);
    EXPECT_TRUE(menu.IsLabelFromMarked());
    EXPECT_TRUE(menu.IsRadioMode());
    menu.SetRadioMode(false);
    EXPECT_FALSE(menu.IsLabelFromMarked());
    BPopUpMenu popUp("pop", false, false);
    EXPECT_FALSE(popUp.IsRadioMode());
    EXPECT_FALSE(popUp.IsLabelFromMarked());
}

TEST_F(MenuLayoutTest, InvalidateLayoutMeasuresTheItemsAgain) {
    float height = 10;
    OpenMenu menu("menu");
    menu.SetItemMargins(0, 0, 0, 0);
    menu.AddItem(new GrowingItem(&height));
    menu.AddItem(new GrowingItem(&height));
    EXPECT_EQ(11, menu.ItemAt(1)->Frame().top);
    height = 20;
    EXPECT_EQ(11, menu.ItemAt(1)->Frame().top);
    menu.InvalidateLayout();
    EXPECT_EQ(21, menu.ItemAt(1)->Frame().top);
}

TEST_F(MenuLayoutTest, MenuInfoStartsWithThePlainFontOnLightGrey) {
    menu_info info;
    ASSERT_EQ(B_OK, get_menu_info(&info));
    EXPECT_EQ(be_plain_font->Size(), info.font_size);
    EXPECT_TRUE(same_color(ui_color(B_MENU_BACKGROUND_COLOR), info.background_color));
    EXPECT_TRUE(info.click_to_open);
    EXPECT_FALSE(info.triggers_always_shown);
    EXPECT_EQ(B_BAD_VALUE, get_menu_info(NULL));
    EXPECT_EQ(B_BAD_VALUE, set_menu_info(NULL));
}
