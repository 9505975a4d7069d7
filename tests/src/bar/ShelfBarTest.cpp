#include "ShelfBar.h"

#include "BarWindowTestSupport.h"

#include <MenuItem.h>
#include <PopUpMenu.h>

using namespace bar_window_testing;
using BPrivate::WindowListing;
using testing_support::wait_until;

namespace {

class ShelfBarTest : public BarWindowTest {
protected:
    void StartWithShelf(int32 direction, int32 which, int32 flags, int32 cells) {
        WriteSettings([&](settings& record) {
            record.direction = direction;
            record.which = which;
            record.flags = kShelfFlag | flags;
            record.shelfSize = cells;
        });
        StartBar();
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    BPoint ShelfPoint() {
        return Locked<BPoint>([&] {
            BRect frame = fBar->ShelfBarView()->Frame();
            return fBar->ConvertToScreen(BPoint(frame.left + 5, frame.top + 5));
        });
    }

    static bool MenuWindow(WindowListing* menu) {
        for (const WindowListing& listing : HeadlessTestApi::Windows()) {
            if (listing.look == B_NO_BORDER_WINDOW_LOOK && listing.visible) {
                *menu = listing;
                return true;
            }
        }
        return false;
    }

    static bool MenuIsOpen() {
        WindowListing menu;
        return MenuWindow(&menu);
    }

    void ClickShelf(uint32 buttons, uint32 modifiers) {
        BPoint where = ShelfPoint();
        ASSERT_EQ(HeadlessTestApi::SetModifiers(modifiers), B_OK);
        ASSERT_EQ(HeadlessTestApi::Click(where, buttons), B_OK);
        ASSERT_EQ(HeadlessTestApi::SetModifiers(0), B_OK);
    }

    // Clicks the first (upper half) or the second (lower half) of the
    // pop-up's two items.
    void ChooseFromPopUp(int32 index) {
        WindowListing menu;
        ASSERT_TRUE(wait_until([&] { return MenuWindow(&menu); }));
        BRect frame = menu.frame;
        BPoint where(frame.left + frame.Width() / 2,
                     frame.top + frame.Height() * (index == 0 ? 0.25 : 0.75));
        ASSERT_EQ(HeadlessTestApi::Click(where), B_OK);
        ASSERT_TRUE(wait_until([] { return !MenuIsOpen(); }));
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    // Closes an open pop-up through its harmless second item, which a grab
    // still being set up cannot swallow as it can a click beside the menu.
    void CloseMenus() {
        if (!MenuIsOpen())
            return;
        ChooseFromPopUp(1);
    }

    void TearDown() override {
        CloseMenus();
        BarWindowTest::TearDown();
    }
};

bool same_rgb(rgb_color first, rgb_color second) {
    return first.red == second.red && first.green == second.green && first.blue == second.blue;
}

} // namespace

// #pragma mark - Size

TEST_F(ShelfBarTest, ThreeSmallIconCellsInARowAreFiftyNineByNineteen) {
    StartWithShelf(2, 16, 0, 3);
    BRect frame = ShelfBarFrame();
    EXPECT_EQ(frame.Width(), 59);
    EXPECT_EQ(frame.Height(), 19);
}

TEST_F(ShelfBarTest, ThreeSmallIconCellsInAColumnAreNineteenByFiftyNine) {
    StartWithShelf(0, 16, 0, 3);
    BRect frame = ShelfBarFrame();
    EXPECT_EQ(frame.Width(), 19);
    EXPECT_EQ(frame.Height(), 59);
}

TEST_F(ShelfBarTest, SmallIconsWithLabelsHaveTenPixelSideMargins) {
    StartWithShelf(3, 16, kDrawLabelFlag, 2);
    BRect frame = ShelfBarFrame();
    EXPECT_EQ(frame.Width(), (20 + 96 + 1) * 2 - 1);
    EXPECT_EQ(frame.Height(), 19);
}

TEST_F(ShelfBarTest, LargeIconsWithLabelsInAColumn) {
    StartWithShelf(1, 32, kDrawLabelFlag, 2);
    BRect frame = ShelfBarFrame();
    EXPECT_EQ(frame.Width(), 4 + 53);
    EXPECT_EQ(frame.Height(), (4 + 45 + 1) * 2 - 1);
}

TEST_F(ShelfBarTest, ShelfIsFramedWithARaisedBevel) {
    StartWithShelf(0, 16, 0, 2);
    BRect frame = ShelfBarFrame();
    rgb_color low = Locked<rgb_color>([&] { return fBar->ShelfBarView()->LowColor(); });
    BPrivate::Capture capture;
    ASSERT_EQ(HeadlessTestApi::CaptureWindow(fBar, &capture), B_OK);
    rgb_color light = tint_color(low, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(low, B_DARKEN_1_TINT);
    EXPECT_TRUE(same_rgb(capture.ColorAt(frame.left + 5, frame.top), light));
    EXPECT_TRUE(same_rgb(capture.ColorAt(frame.left, frame.top + 5), light));
    EXPECT_TRUE(same_rgb(capture.ColorAt(frame.left + 5, frame.bottom), dark));
    EXPECT_TRUE(same_rgb(capture.ColorAt(frame.right, frame.top + 5), dark));
}

// #pragma mark - Pop-up

TEST_F(ShelfBarTest, PopUpOffersHideShelfAndClearAllReplicants) {
    StartWithShelf(0, 16, 0, 1);
    Locked<bool>([&] {
        BPopUpMenu* popUp = fBar->ShelfBarView()->PopUpMenu();
        EXPECT_STREQ(popUp->Name(), "popper");
        EXPECT_EQ(popUp->CountItems(), 2);
        BMenuItem* hide = popUp->ItemAt(0);
        EXPECT_STREQ(hide->Label(), "Hide Shelf");
        EXPECT_EQ(hide->Message()->what, (uint32)kShowShelf);
        EXPECT_FALSE(hide->Message()->GetBool("show", true));
        BMenuItem* clear = popUp->ItemAt(1);
        EXPECT_STREQ(clear->Label(), "Clear All Replicants");
        EXPECT_EQ(clear->Message()->what, (uint32)kClearReplicants);
        return true;
    });
}

TEST_F(ShelfBarTest, SecondaryClickOpensThePopUp) {
    StartWithShelf(0, 16, 0, 1);
    ClickShelf(B_SECONDARY_MOUSE_BUTTON, 0);
    EXPECT_TRUE(wait_until([] { return MenuIsOpen(); }));
}

TEST_F(ShelfBarTest, ControlClickOpensThePopUp) {
    StartWithShelf(0, 16, 0, 1);
    ClickShelf(B_PRIMARY_MOUSE_BUTTON, B_CONTROL_KEY);
    EXPECT_TRUE(wait_until([] { return MenuIsOpen(); }));
}

TEST_F(ShelfBarTest, PlainClickOpensNoPopUp) {
    StartWithShelf(0, 16, 0, 1);
    ClickShelf(B_PRIMARY_MOUSE_BUTTON, 0);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_FALSE(MenuIsOpen());
}

TEST_F(ShelfBarTest, HideShelfHidesTheShelfUntilShowShelfIsChosen) {
    StartWithShelf(0, 16, 0, 1);
    ClickShelf(B_SECONDARY_MOUSE_BUTTON, 0);
    ChooseFromPopUp(0);
    EXPECT_FALSE(fBar->IsShowingShelf());
    EXPECT_TRUE(IsParked(ShelfBarFrame()));

    // The application menu's shelf item now reads "Show Shelf".
    Locked<bool>([&] {
        BMenu* menu = fBar->AppMenuView()->SwitchLayerMenu()->Supermenu();
        BMenuItem* show = menu != NULL ? menu->FindItem("Show Shelf") : NULL;
        EXPECT_NE(show, nullptr);
        if (show != NULL)
            show->Invoke();
        return true;
    });
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_TRUE(fBar->IsShowingShelf());
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 21, kCell, 21 + kCell));
}

TEST_F(ShelfBarTest, ClearAllReplicantsOnAnEmptyShelfDoesNothing) {
    StartWithShelf(0, 16, 0, 1);
    uint32 beeps = HeadlessTestApi::CountBeeps();
    BRect before = ShelfBarFrame();
    ClickShelf(B_SECONDARY_MOUSE_BUTTON, 0);
    ChooseFromPopUp(1);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps);
    EXPECT_TRUE(HeadlessTestApi::Alerts().empty());
    EXPECT_TRUE(fBar->IsShowingShelf());
    EXPECT_EQ(ShelfBarFrame(), before);
}

// #pragma mark - Activation

TEST_F(ShelfBarTest, MouseOverActivatesTheBarWithAutoFocus) {
    StartWithShelf(0, 16, kAutoFocusFlag, 1);
    ActivateBar(false);
    ASSERT_EQ(HeadlessTestApi::MoveMouse(ShelfPoint()), B_OK);
    EXPECT_TRUE(wait_until([&] { return Locked<bool>([&] { return fBar->IsActive(); }); }));
}

TEST_F(ShelfBarTest, MouseOverLeavesTheBarInactiveWithoutAutoFocus) {
    StartWithShelf(0, 16, 0, 1);
    ActivateBar(false);
    ASSERT_EQ(HeadlessTestApi::MoveMouse(ShelfPoint()), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_FALSE(Locked<bool>([&] { return fBar->IsActive(); }));
}
