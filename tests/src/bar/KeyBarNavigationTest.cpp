// Keyboard navigation on the real bar window: its two key filters, its layer
// bar, application menu and shelf bar, and its folding when it is deactivated.
#include "BarWindowTestSupport.h"

#include <Autolock.h>
#include <MenuBar.h>

using namespace bar_window_testing;
using testing_support::wait_until;

namespace {

const int32 kEscapeKey = 0x01;
const int32 kTabKey = 0x26;
const int32 kRightArrowKey = 0x63;
const int32 kDownArrowKey = 0x62;

class KeyBarNavigationTest : public BarWindowTest {
protected:
    void Start(int32 flags, bool withLayer) {
        if (withLayer)
            MakeLayerOf("main", 3);
        WriteSettings([&](settings& record) {
            record.flags = flags;
            if (withLayer)
                SetName(record, 0, "main");
        });
        StartBar();
        if (withLayer) {
            ASSERT_TRUE(WaitForBarItems(3));
        }
        ActivateBar(true);
    }

    void Type(int32 key, uint32 modifiers = 0) {
        ASSERT_EQ(HeadlessTestApi::TypeKey(key, NULL, modifiers), B_OK);
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    BView* Focus() {
        return Locked<BView*>([&] { return fBar->CurrentFocus(); });
    }

    // The bar that navigates has the keyboard focus while it does.
    bool Navigating(BView* bar) {
        return wait_until([&] { return Focus() == bar; });
    }

    BView* LayerBarView() { return (BView*)fBar->LayerBarView(); }
    BView* AppMenuView() { return (BView*)fBar->AppMenuView(); }
};

} // namespace

TEST_F(KeyBarNavigationTest, TabMovesFromTheLayerBarToTheApplicationMenuAndBack) {
    Start(0, true);
    Type(kTabKey);
    ASSERT_TRUE(Navigating(AppMenuView()));
    Type(kTabKey);
    EXPECT_TRUE(Navigating(LayerBarView()));
    Type(kTabKey);
    EXPECT_TRUE(Navigating(AppMenuView()));
}

TEST_F(KeyBarNavigationTest, ShiftTabOnTheActiveBarMovesBackwards) {
    Start(kShelfFlag, true);
    Type(kRightArrowKey);
    ASSERT_TRUE(Navigating(LayerBarView()));
    // Backwards from the layer bar the walk wraps round past the shelf bar.
    Type(kTabKey, B_SHIFT_KEY);
    EXPECT_TRUE(Navigating(AppMenuView()));
    Type(kTabKey, B_SHIFT_KEY);
    EXPECT_TRUE(Navigating(LayerBarView()));
}

TEST_F(KeyBarNavigationTest, OptionTabAndCommandTabAreLeftToTheSystem) {
    Start(0, true);
    Type(kTabKey, B_OPTION_KEY);
    Type(kTabKey, B_COMMAND_KEY);
    EXPECT_FALSE(dynamic_cast<BMenuBar*>(Focus()) != NULL);
}

TEST_F(KeyBarNavigationTest, EscapeWithNoMenuOpenDeactivatesTheBar) {
    Start(0, true);
    Type(kEscapeKey);
    EXPECT_TRUE(wait_until([&] { return !Locked<bool>([&] { return fBar->IsActive(); }); }));
    // Without the minimize setting the bar stays whole.
    EXPECT_FALSE(IsParked(LayerBarFrame()));
}

TEST_F(KeyBarNavigationTest, EscapeWithTheMinimizeSettingFoldsTheBar) {
    Start(kMinimizeFlag, true);
    ASSERT_FALSE(IsParked(LayerBarFrame()));
    Type(kEscapeKey);
    EXPECT_TRUE(wait_until([&] { return IsParked(LayerBarFrame()); }));
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(WindowFrame().Width(), AppMenuFrame().Width());
    EXPECT_EQ(WindowFrame().Height(), AppMenuFrame().Height());
}

TEST_F(KeyBarNavigationTest, EscapeWhileNavigatingOnlyClosesTheMenu) {
    Start(0, true);
    Type(kRightArrowKey);
    ASSERT_TRUE(Navigating(LayerBarView()));
    Type(kEscapeKey);
    EXPECT_TRUE(wait_until([&] { return Focus() == NULL; }));
    EXPECT_TRUE(Locked<bool>([&] { return fBar->IsActive(); }));
}

TEST_F(KeyBarNavigationTest, ArrowKeyWithNoMenuOpenStartsNavigatingTheLayerBar) {
    Start(0, true);
    Type(kDownArrowKey);
    EXPECT_TRUE(Navigating(LayerBarView()));
    EXPECT_EQ(Locked<BMenuBar*>([&] { return fBar->KeyMenuBar(); }), LayerBarView());
}

TEST_F(KeyBarNavigationTest, WithTheLayerBarHiddenTabGoesToTheApplicationMenuOnly) {
    Start(kShelfFlag, false);
    ASSERT_TRUE(IsParked(LayerBarFrame()));
    ASSERT_FALSE(IsParked(ShelfBarFrame()));
    for (int32 round = 0; round < 3; round++) {
        Type(kTabKey);
        EXPECT_TRUE(Navigating(AppMenuView())) << round;
        EXPECT_NE(Focus(), (BView*)fBar->ShelfBarView()) << round;
    }
    Type(kTabKey, B_SHIFT_KEY);
    EXPECT_TRUE(Navigating(AppMenuView()));
}

TEST_F(KeyBarNavigationTest, CommandEscapeOpensTheApplicationMenu) {
    Start(0, true);
    Type(kEscapeKey, B_COMMAND_KEY);
    EXPECT_TRUE(Navigating(AppMenuView()));
}
