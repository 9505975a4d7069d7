#include "BarWindow.h"

#include "BarWindowTestSupport.h"

#include <Message.h>

using namespace bar_window_testing;
using testing_support::wait_until;

namespace {

class BarWindowSettingsTest : public BarWindowTest {
protected:
    void StartWithLayers(int32 flags = 0) {
        MakeLayerOf("one", 3);
        MakeLayerOf("two", 2);
        WriteSettings([&](settings& record) {
            record.flags = flags;
            SetName(record, 0, "one");
        });
        StartBar();
        ASSERT_TRUE(WaitForBarItems(3));
    }

    // Applies a copy of the bar's settings changed by change, as the
    // preferences window's message would.
    void Apply(const std::function<void(settings&)>& change) {
        settings record;
        Locked<bool>([&] {
            record.set_to(*fBar->Settings());
            return true;
        });
        change(record);
        BMessage message(kManagerUpdateSettings);
        ASSERT_EQ(record.archive_to(&message), B_OK);
        Post(&message);
    }

    // Marks the strips by name: a new strip may well be made at an old one's
    // address, so only a mark tells a kept strip from a new one.
    void MarkStrips() {
        Locked<bool>([&] {
            fBar->LayerBarView()->SetName("old layer bar");
            fBar->AppMenuView()->SetName("old app menu");
            return true;
        });
    }

    bool StripsKept() {
        return Locked<bool>([&] {
            return fBar->FindView("old layer bar") == fBar->LayerBarView() &&
                   fBar->FindView("old app menu") == fBar->AppMenuView();
        });
    }
};

} // namespace

TEST_F(BarWindowSettingsTest, SameSettingsChangeNothing) {
    StartWithLayers();
    MarkStrips();
    BRect frame = WindowFrame();
    uint32 presents = 0;
    BPrivate::WindowListing listing;
    ASSERT_TRUE(HeadlessTestApi::FindWindow(fBar, &listing));
    presents = listing.presentCount;
    Apply([](settings&) {});
    EXPECT_TRUE(StripsKept());
    EXPECT_EQ(WindowFrame(), frame);
    ASSERT_TRUE(HeadlessTestApi::FindWindow(fBar, &listing));
    EXPECT_EQ(listing.presentCount, presents);
}

TEST_F(BarWindowSettingsTest, NewLocationMovesTheBarWithoutRebuildingTheStrips) {
    StartWithLayers();
    MarkStrips();
    Apply([](settings& record) { record.location = 2; });
    EXPECT_TRUE(StripsKept());
    EXPECT_EQ(fBar->Settings()->location, 2);
    EXPECT_EQ(AppMenuOnScreen(), BRect(1279 - kCell, 799 - kCell, 1279, 799));
}

TEST_F(BarWindowSettingsTest, NewIconSizeRelaysTheStripsInPlace) {
    StartWithLayers();
    MarkStrips();
    Apply([](settings& record) { record.which = 32; });
    EXPECT_TRUE(StripsKept());
    // Large cells are 37 square.
    EXPECT_EQ(AppMenuFrame(), BRect(0, 0, 37, kCell));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, 37, 21 + 3 * 38 - 1));
}

TEST_F(BarWindowSettingsTest, NewDirectionRebuildsTheLayerBarAndTheAppMenu) {
    StartWithLayers();
    // Marked by name: a new strip may well be made at the old one's address.
    Locked<bool>([&] {
        fBar->LayerBarView()->SetName("old layer bar");
        fBar->AppMenuView()->SetName("old app menu");
        fBar->ShelfBarView()->SetName("old shelf bar");
        return true;
    });
    Apply([](settings& record) { record.direction = 2; });
    Locked<bool>([&] {
        EXPECT_EQ(fBar->FindView("old layer bar"), nullptr);
        EXPECT_EQ(fBar->FindView("old app menu"), nullptr);
        EXPECT_EQ(fBar->FindView("old shelf bar"), fBar->ShelfBarView());
        EXPECT_EQ(fBar->FindView("layer_bar"), fBar->LayerBarView());
        EXPECT_EQ(fBar->FindView("app_menu"), fBar->AppMenuView());
        EXPECT_EQ(fBar->KeyMenuBar(), (BMenuBar*)fBar->AppMenuView());
        return true;
    });
}

TEST_F(BarWindowSettingsTest, NewDirectionReloadsTheLayersForTheNewBar) {
    StartWithLayers();
    Apply([](settings& record) { record.direction = 2; });
    EXPECT_EQ(ShownLayer(), "one");
    ASSERT_TRUE(WaitForBarItems(3));
    EXPECT_EQ(LayerBarFrame(), BRect(21, 0, 21 + 3 * (kCell + 1) - 1, kCell));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, 21 + 59, kCell));
}

TEST_F(BarWindowSettingsTest, NewLayerNameForTheCurrentWorkspaceIsShown) {
    StartWithLayers();
    Apply([](settings& record) { SetName(record, 0, "two"); });
    EXPECT_EQ(ShownLayer(), "two");
    EXPECT_STREQ(gr_settings->layerName[0], "two");
}

TEST_F(BarWindowSettingsTest, NewSettingsActivateTheBar) {
    StartWithLayers();
    ActivateBar(false);
    Apply([](settings& record) { record.location = 1; });
    EXPECT_TRUE(wait_until([&] { return Locked<bool>([&] { return fBar->IsActive(); }); }));
}

TEST_F(BarWindowSettingsTest, NewWorkspaceMaskIsTheWindowsWorkspaces) {
    StartWithLayers();
    Apply([](settings& record) { record.workspaces = 0x5; });
    EXPECT_EQ(Locked<uint32>([&] { return fBar->Workspaces(); }), 0x5u);
}

TEST_F(BarWindowSettingsTest, EnablingTheShelfShowsIt) {
    StartWithLayers();
    EXPECT_TRUE(IsParked(ShelfBarFrame()));
    Apply([](settings& record) {
        record.flags |= kShelfFlag;
        record.shelfSize = 3;
    });
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 21, kCell, 21 + 3 * (kCell + 1) - 1));
}

TEST_F(BarWindowSettingsTest, MinimizeFlagOnAnInactiveBarAppliesFoldedThenUnfoldsOnActivation) {
    StartWithLayers();
    ActivateBar(false);
    // Settings arriving while the bar is inactive lay it out folded; the
    // activation that follows unfolds it.
    Apply([](settings& record) { record.flags |= kMinimizeFlag; });
    ASSERT_TRUE(wait_until([&] { return Locked<bool>([&] { return fBar->IsActive(); }); }));
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_FALSE(IsParked(LayerBarFrame()));
}
