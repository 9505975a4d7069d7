#include "BarWindow.h"

#include "BarWindowTestSupport.h"

#include "DrawingHelpers.h"

#include <InterfaceDefs.h>

#include <tuple>

using namespace bar_window_testing;

namespace {

// The headless screen is 1280 x 800.
const float kScreenRight = 1279;
const float kScreenBottom = 799;

class BarWindowGeometryTest : public BarWindowTest {
protected:
    // Three items on workspace 0's layer "main", a shelf of two cells.
    void StartWithStrips(int32 direction, int32 location, int32 flags) {
        MakeLayerOf("main", 3);
        WriteSettings([&](settings& record) {
            record.direction = direction;
            record.location = location;
            record.flags = flags;
            record.shelfSize = 2;
            SetName(record, 0, "main");
        });
        StartBar();
        ASSERT_TRUE(WaitForBarItems(3));
    }
};

} // namespace

TEST_F(BarWindowGeometryTest, ColumnStripsStandOnePixelApartFromTheAppMenuDown) {
    StartWithStrips(0, 0, kShelfFlag);
    // Application menu, shelf, layer bar.
    EXPECT_EQ(AppMenuFrame(), BRect(0, 0, kCell, kCell));
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 21, kCell, 21 + 2 * (kCell + 1) - 1));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 62, kCell, 62 + 3 * (kCell + 1) - 1));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, 121));
}

TEST_F(BarWindowGeometryTest, RowStripsStandOnePixelApartFromTheAppMenuRight) {
    StartWithStrips(2, 0, kShelfFlag);
    EXPECT_EQ(AppMenuFrame(), BRect(0, 0, kCell, kCell));
    EXPECT_EQ(ShelfBarFrame(), BRect(21, 0, 21 + 2 * (kCell + 1) - 1, kCell));
    EXPECT_EQ(LayerBarFrame(), BRect(62, 0, 62 + 3 * (kCell + 1) - 1, kCell));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, 121, kCell));
}

TEST_F(BarWindowGeometryTest, GapBetweenStripsShowsTheDarkenedBackground) {
    StartWithStrips(0, 0, kShelfFlag);
    BPrivate::Capture capture;
    ASSERT_EQ(HeadlessTestApi::CaptureWindow(fBar, &capture), B_OK);
    rgb_color background = tint_color(ui_color2(kPanelBackgroundColor2), 1.555);
    for (int32 y : {20, 61}) {
        rgb_color pixel = capture.ColorAt(5, y);
        EXPECT_EQ(pixel.red, background.red) << "y " << y;
        EXPECT_EQ(pixel.green, background.green) << "y " << y;
        EXPECT_EQ(pixel.blue, background.blue) << "y " << y;
    }
    // The strips themselves cover the rows on either side of a gap.
    rgb_color shelfEdge = capture.ColorAt(5, 21);
    EXPECT_FALSE(shelfEdge.red == background.red && shelfEdge.green == background.green &&
                 shelfEdge.blue == background.blue);
}

TEST_F(BarWindowGeometryTest, ShelfOnTheTailStandsAfterTheLayerBar) {
    StartWithStrips(0, 0, kShelfFlag | kShelfOnTailFlag);
    EXPECT_EQ(AppMenuFrame(), BRect(0, 0, kCell, kCell));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 21 + 59));
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 82, kCell, 82 + 39));
}

TEST_F(BarWindowGeometryTest, OddDirectionWithShelfOnTheTailPutsTheShelfFirst) {
    StartWithStrips(1, 0, kShelfFlag | kShelfOnTailFlag);
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 0, kCell, 39));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 41, kCell, 41 + 59));
    EXPECT_EQ(AppMenuFrame(), BRect(0, 102, kCell, 102 + kCell));
}

TEST_F(BarWindowGeometryTest, DirectionOneAtLocationThreeRunsUpwardFromTheBottomLeftCorner) {
    StartWithStrips(1, 3, kShelfFlag);
    // Layer bar, shelf, application menu: the menu sits in the corner and
    // the rest of the bar rises above it.
    EXPECT_EQ(LayerBarFrame(), BRect(0, 0, kCell, 59));
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 61, kCell, 100));
    EXPECT_EQ(AppMenuFrame(), BRect(0, 102, kCell, 121));
    EXPECT_EQ(WindowFrame(), BRect(0, kScreenBottom - 121, kCell, kScreenBottom));
    EXPECT_EQ(AppMenuOnScreen(), BRect(0, kScreenBottom - kCell, kCell, kScreenBottom));
}

TEST_F(BarWindowGeometryTest, InvalidLocationLaysTheBarOutWithoutMovingIt) {
    StartWithStrips(0, 4, 0);
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 80));
    // Sized around its strips, still where it was made.
    EXPECT_EQ(WindowFrame(), BRect(-300, -300, -300 + kCell, -300 + 80));
}

TEST_F(BarWindowGeometryTest, TowardsTheNearEdgeTheStripsLieOffScreen) {
    StartWithStrips(2, 1, 0);
    // The menu is in the top-right corner; the layer bar runs off to the right.
    EXPECT_EQ(AppMenuOnScreen(), BRect(kScreenRight - kCell, 0, kScreenRight, kCell));
    EXPECT_GT(WindowFrame().right, kScreenRight);
}

TEST_F(BarWindowGeometryTest, NoLayerForTheWorkspaceLeavesOnlyTheAppMenu) {
    MakeLayerOf("main", 3);
    WriteSettings([&](settings& record) { SetName(record, 0, "missing"); });
    StartBar();
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(ShownLayer(), "<none>");
    EXPECT_TRUE(IsParked(LayerBarFrame()));
    EXPECT_TRUE(IsParked(ShelfBarFrame()));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, kCell));
}

TEST_F(BarWindowGeometryTest, LayerNamedEmptyCountsAsNoLayer) {
    MakeLayerOf("main", 3);
    WriteSettings([&](settings& record) { SetName(record, 0, ""); });
    StartBar();
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(ShownLayer(), "<none>");
    EXPECT_TRUE(IsParked(LayerBarFrame()));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, kCell));
}

TEST_F(BarWindowGeometryTest, NoLayerWithTheShelfShownHoldsTheAppMenuAndTheShelf) {
    WriteSettings([&](settings& record) {
        record.flags = kShelfFlag;
        record.shelfSize = 1;
    });
    StartBar();
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_TRUE(IsParked(LayerBarFrame()));
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 21, kCell, 21 + kCell));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, 21 + kCell));
}

TEST_F(BarWindowGeometryTest, ShelfStaysParkedWhileTheShelfIsNotEnabled) {
    StartWithStrips(0, 0, 0);
    EXPECT_TRUE(IsParked(ShelfBarFrame()));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 80));
}

TEST_F(BarWindowGeometryTest, MinimizedFormShowsOnlyTheAppMenu) {
    StartWithStrips(0, 0, kShelfFlag);
    Locked<bool>([&] {
        fBar->Reshape(false);
        return true;
    });
    EXPECT_TRUE(IsParked(LayerBarFrame()));
    EXPECT_TRUE(IsParked(ShelfBarFrame()));
    EXPECT_EQ(AppMenuFrame(), BRect(0, 0, kCell, kCell));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, kCell));
}

TEST_F(BarWindowGeometryTest, MinimizedFormKeepsTheAppMenuInItsCorner) {
    StartWithStrips(1, 2, 0);
    Locked<bool>([&] {
        fBar->Reshape(false);
        return true;
    });
    EXPECT_EQ(WindowFrame(),
              BRect(kScreenRight - kCell, kScreenBottom - kCell, kScreenRight, kScreenBottom));
}

TEST_F(BarWindowGeometryTest, MinimizeFlagFoldsTheInactiveBarAndUnfoldsItOnActivation) {
    StartWithStrips(0, 0, kMinimizeFlag);
    ActivateBar(true);
    ActivateBar(false);
    EXPECT_TRUE(IsParked(LayerBarFrame()));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, kCell));

    ActivateBar(true);
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 80));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, 80));
}

TEST_F(BarWindowGeometryTest, WithoutTheMinimizeFlagDeactivationKeepsTheWholeBar) {
    StartWithStrips(0, 0, 0);
    ActivateBar(true);
    ActivateBar(false);
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 80));
}

TEST_F(BarWindowGeometryTest, NewScreenSizeMovesTheBarToTheNewCorner) {
    StartWithStrips(0, 2, 0);
    ASSERT_EQ(HeadlessTestApi::SetScreenSize(1000, 600), B_OK);
    ASSERT_TRUE(testing_support::wait_until(
        [&] { return AppMenuOnScreen() == BRect(999 - kCell, 599 - kCell, 999, 599); }));
}

TEST_F(BarWindowGeometryTest, ScreenChangeOnAWorkspaceOutsideTheMaskParksTheBarOffTheLeftEdge) {
    StartWithStrips(0, 0, 0);
    // The bar belongs to workspace 1 only while workspace 0 is shown.
    Locked<bool>([&] {
        settings record;
        record.set_to(*fBar->Settings());
        record.workspaces = 0x2;
        fBar->UpdateSettings(&record);
        fBar->ScreenChanged(BScreen(fBar).Frame(), B_RGB32);
        return true;
    });
    EXPECT_EQ(WindowFrame(), BRect(-kCell - 10, 0, -10, 80));
}

// #pragma mark - Every corner for every direction

namespace {

class BarWindowCornerTest : public BarWindowGeometryTest,
                            public testing::WithParamInterface<std::tuple<int32, int32>> {};

} // namespace

TEST_P(BarWindowCornerTest, AppMenuSitsExactlyInTheChosenCorner) {
    int32 location = std::get<0>(GetParam());
    int32 direction = std::get<1>(GetParam());
    StartWithStrips(direction, location, kShelfFlag);
    const BRect corners[] = {
        BRect(0, 0, kCell, kCell),
        BRect(kScreenRight - kCell, 0, kScreenRight, kCell),
        BRect(kScreenRight - kCell, kScreenBottom - kCell, kScreenRight, kScreenBottom),
        BRect(0, kScreenBottom - kCell, kCell, kScreenBottom),
    };
    EXPECT_EQ(AppMenuOnScreen(), corners[location]);

    // The server agrees on where the window stands.
    BPrivate::WindowListing listing;
    ASSERT_TRUE(HeadlessTestApi::FindWindow(fBar, &listing));
    EXPECT_EQ(listing.frame.LeftTop(), WindowFrame().LeftTop());
    // Odd directions put the menu at the far end of the bar.
    BRect menu = AppMenuFrame();
    if (direction % 2 == 0)
        EXPECT_EQ(menu.LeftTop(), BPoint(0, 0));
    else
        EXPECT_EQ(menu.RightBottom(), Locked<BRect>([&] { return fBar->Bounds(); }).RightBottom());
}

INSTANTIATE_TEST_SUITE_P(LocationAndDirection, BarWindowCornerTest,
                         testing::Combine(testing::Values(0, 1, 2, 3), testing::Values(0, 1, 2, 3)),
                         [](const testing::TestParamInfo<std::tuple<int32, int32>>& info) {
                             return "location" + std::to_string(std::get<0>(info.param)) +
                                    "direction" + std::to_string(std::get<1>(info.param));
                         });
