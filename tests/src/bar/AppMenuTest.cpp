// The application menu on the real bar window: its items and their order,
// shortcuts and targets, the greyed current layer and workspace, the shelf
// item, the handle's size and frame, and the Option-drag of the whole bar.
#include "AppMenu.h"
#include "AppMenuItem.h"

#include "BarWindowTestSupport.h"

#include "DrawingHelpers.h"

#include <AppDefs.h>
#include <Autolock.h>
#include <Bitmap.h>
#include <InterfaceDefs.h>
#include <MenuItem.h>
#include <MessageQueue.h>

#include <algorithm>
#include <string>
#include <vector>

#include <stdlib.h>

using namespace bar_window_testing;
using testing_support::wait_until;

namespace {

const int32 kTwoKey = 0x13;
const int32 kRKey = 0x2a;

// Index of each entry of the menu with the workspace command on.
enum {
    kLayerIndex = 0,
    kWorkspaceIndex = 1,
    kShelfIndex = 2,
    kPreferencesIndex = 4,
    kLoadIndex = 5,
    kAboutIndex = 7,
    kQuitIndex = 8,
};

class AppMenuTest : public BarWindowTest {
protected:
    void Start(int32 flags, const std::function<void(settings&)>& change = nullptr) {
        WriteSettings([&](settings& record) {
            record.flags = flags;
            if (change)
                change(record);
        });
        StartBar();
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    AppMenu* Menu() { return fBar->AppMenuView(); }

    BMenu* Submenu() { return Menu()->Item()->Submenu(); }

    std::vector<std::string> Labels(BMenu* menu) {
        std::vector<std::string> labels;
        for (int32 index = 0; index < menu->CountItems(); index++)
            labels.push_back(menu->ItemAt(index)->Label());
        return labels;
    }

    bool IsActive() {
        return Locked<bool>([&] { return fBar->IsActive(); });
    }
};

} // namespace

TEST_F(AppMenuTest, StripIsANamedOneItemMenuBar) {
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    EXPECT_STREQ(Menu()->Name(), "app_menu");
    EXPECT_EQ(Menu()->CountItems(), 1);
    ASSERT_NE(Menu()->Item(), nullptr);
    EXPECT_STREQ(Submenu()->Name(), "Glimrow");
    EXPECT_EQ(fBar->KeyMenuBar(), Menu());
}

TEST_F(AppMenuTest, ItemsComeInTheirOrder) {
    Start(kWorkspaceCommandFlag | kShelfFlag);
    BAutolock lock(fBar);
    std::vector<std::string> expected = {
        "Switch Layer", "Switch Workspace", "Hide Shelf", "",
        "Preferences…", "Load Preferences", "",           "About Glimrow…",
        "Quit"};
    std::vector<std::string> labels = Labels(Submenu());
    ASSERT_EQ(labels.size(), expected.size());
    for (size_t index = 0; index < expected.size(); index++) {
        if (expected[index].empty())
            EXPECT_NE(dynamic_cast<BSeparatorItem*>(Submenu()->ItemAt(index)), nullptr) << index;
        else
            EXPECT_EQ(labels[index], expected[index]) << index;
    }
}

TEST_F(AppMenuTest, CommandsGoToTheApplicationWithTheirShortcuts) {
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    struct Expected {
        int32 index;
        uint32 what;
        char shortcut;
    } expected[] = {
        {kPreferencesIndex, kShowPreferences, 'R'},
        {kLoadIndex, kRebuildBar, 'L'},
        {kAboutIndex, B_ABOUT_REQUESTED, 0},
        {kQuitIndex, B_QUIT_REQUESTED, 'Q'},
    };
    for (const Expected& entry : expected) {
        BMenuItem* item = Submenu()->ItemAt(entry.index);
        ASSERT_NE(item->Message(), nullptr) << entry.index;
        EXPECT_EQ(item->Message()->what, entry.what) << entry.index;
        EXPECT_EQ(item->Shortcut(), entry.shortcut) << entry.index;
        EXPECT_EQ(item->Messenger(), BMessenger(be_app)) << entry.index;
    }
}

TEST_F(AppMenuTest, SwitchLayerListsEveryLayerButTheTargets) {
    MakeLayerOf("alpha", 1);
    MakeLayerOf("beta", 1);
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    BMenu* layers = Menu()->SwitchLayerMenu();
    ASSERT_NE(layers, nullptr);
    std::vector<std::string> labels = Labels(layers);
    std::sort(labels.begin(), labels.end());
    EXPECT_EQ(labels, (std::vector<std::string>{"alpha", "beta"}));
    for (int32 index = 0; index < layers->CountItems(); index++) {
        BMenuItem* item = layers->ItemAt(index);
        EXPECT_EQ(item->Message()->what, (uint32)kSwitchLayer);
        EXPECT_STREQ(item->Message()->GetString("layer_name", ""), item->Label());
        EXPECT_EQ(item->Shortcut(), 0);
        EXPECT_EQ(item->Target(), fBar);
    }
}

TEST_F(AppMenuTest, TwelveWorkspacesGiveCommandDigitsToTheFirstNineOnly) {
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(12), B_OK);
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    BMenu* workspaces = Menu()->SwitchWorkspaceMenu();
    ASSERT_NE(workspaces, nullptr);
    ASSERT_EQ(workspaces->CountItems(), 12);
    for (int32 index = 0; index < 12; index++) {
        BMenuItem* item = workspaces->ItemAt(index);
        uint32 modifiers = 0;
        char shortcut = item->Shortcut(&modifiers);
        if (index < 9)
            EXPECT_EQ(shortcut, (char)('1' + index)) << index;
        else
            EXPECT_EQ(shortcut, 0) << index;
        EXPECT_EQ(item->Message()->what, (uint32)kSwitchWorkspace);
        EXPECT_EQ(item->Message()->GetInt32("workspace", -1), index);
    }
}

TEST_F(AppMenuTest, WorkspaceLabelsAreRightAlignedToTwoPlaces) {
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(12), B_OK);
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    std::vector<std::string> labels = Labels(Menu()->SwitchWorkspaceMenu());
    EXPECT_EQ(labels, (std::vector<std::string>{" 1", " 2", " 3", " 4", " 5", " 6", " 7", " 8",
                                                " 9", "10", "11", "12"}));
}

TEST_F(AppMenuTest, CurrentWorkspaceItemIsDisabled) {
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(4), B_OK);
    ASSERT_EQ(HeadlessTestApi::SetWorkspace(2), B_OK);
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    BMenu* workspaces = Menu()->SwitchWorkspaceMenu();
    ASSERT_EQ(workspaces->CountItems(), 4);
    for (int32 index = 0; index < 4; index++)
        EXPECT_EQ(workspaces->ItemAt(index)->IsEnabled(), index != 2) << index;
}

TEST_F(AppMenuTest, DisabledWorkspaceFollowsAWorkspaceSwitch) {
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(4), B_OK);
    Start(kWorkspaceCommandFlag);
    ASSERT_EQ(HeadlessTestApi::SetWorkspace(3), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    BAutolock lock(fBar);
    BMenu* workspaces = Menu()->SwitchWorkspaceMenu();
    for (int32 index = 0; index < 4; index++)
        EXPECT_EQ(workspaces->ItemAt(index)->IsEnabled(), index != 3) << index;
}

TEST_F(AppMenuTest, CurrentLayerItemIsDisabled) {
    MakeLayerOf("alpha", 1);
    MakeLayerOf("beta", 1);
    Start(kWorkspaceCommandFlag, [](settings& record) { SetName(record, 0, "beta"); });
    ASSERT_EQ(ShownLayer(), "beta");
    BAutolock lock(fBar);
    BMenu* layers = Menu()->SwitchLayerMenu();
    ASSERT_EQ(layers->CountItems(), 2);
    for (int32 index = 0; index < 2; index++) {
        BMenuItem* item = layers->ItemAt(index);
        EXPECT_EQ(item->IsEnabled(), strcmp(item->Label(), "beta") != 0) << item->Label();
    }
}

TEST_F(AppMenuTest, DisabledLayerFollowsALayerSwitch) {
    MakeLayerOf("alpha", 1);
    MakeLayerOf("beta", 1);
    Start(0, [](settings& record) { SetName(record, 0, "beta"); });
    BMessage message(kSwitchLayer);
    message.AddString("layer_name", "alpha");
    Post(&message);
    ASSERT_EQ(ShownLayer(), "alpha");
    BAutolock lock(fBar);
    BMenu* layers = Menu()->SwitchLayerMenu();
    for (int32 index = 0; index < layers->CountItems(); index++) {
        BMenuItem* item = layers->ItemAt(index);
        EXPECT_EQ(item->IsEnabled(), strcmp(item->Label(), "alpha") != 0) << item->Label();
    }
}

TEST_F(AppMenuTest, WithoutALayerEveryLayerItemIsEnabled) {
    MakeLayerOf("alpha", 1);
    Start(kWorkspaceCommandFlag);
    ASSERT_EQ(ShownLayer(), "<none>");
    BAutolock lock(fBar);
    BMenu* layers = Menu()->SwitchLayerMenu();
    ASSERT_EQ(layers->CountItems(), 1);
    EXPECT_TRUE(layers->ItemAt(0)->IsEnabled());
}

TEST_F(AppMenuTest, ShelfItemIsPresentButDisabledWhenTheShelfIsDisabled) {
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    BMenuItem* shelf = Submenu()->ItemAt(kShelfIndex);
    ASSERT_NE(shelf, nullptr);
    EXPECT_STREQ(shelf->Label(), "Hide Shelf");
    EXPECT_FALSE(shelf->IsEnabled());
}

TEST_F(AppMenuTest, ShelfItemIsEnabledWhenTheShelfIsEnabled) {
    Start(kWorkspaceCommandFlag | kShelfFlag);
    BAutolock lock(fBar);
    BMenuItem* shelf = Submenu()->ItemAt(kShelfIndex);
    EXPECT_STREQ(shelf->Label(), "Hide Shelf");
    EXPECT_TRUE(shelf->IsEnabled());
    EXPECT_EQ(shelf->Message()->what, (uint32)kShowShelf);
    EXPECT_FALSE(shelf->Message()->GetBool("show", true));
}

TEST_F(AppMenuTest, HidingTheShelfTurnsTheItemIntoShowShelf) {
    Start(kWorkspaceCommandFlag | kShelfFlag);
    BMessage hide(kShowShelf);
    hide.AddBool("show", false);
    Post(&hide);
    BAutolock lock(fBar);
    BMenuItem* shelf = Submenu()->ItemAt(kShelfIndex);
    EXPECT_STREQ(shelf->Label(), "Show Shelf");
    EXPECT_TRUE(shelf->Message()->GetBool("show", false));
}

TEST_F(AppMenuTest, WithoutTheWorkspaceCommandTheShelfItemIsSecond) {
    Start(kShelfFlag);
    BAutolock lock(fBar);
    EXPECT_EQ(Menu()->SwitchWorkspaceMenu(), nullptr);
    std::vector<std::string> labels = Labels(Submenu());
    ASSERT_GE(labels.size(), 2u);
    EXPECT_EQ(labels[0], "Switch Layer");
    EXPECT_EQ(labels[1], "Hide Shelf");
    EXPECT_TRUE(Submenu()->ItemAt(1)->IsEnabled());
    EXPECT_EQ(Submenu()->CountItems(), 8);
}

TEST_F(AppMenuTest, WorkspaceCountChangeRebuildsTheWorkspaceList) {
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(4), B_OK);
    Start(kWorkspaceCommandFlag);
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(6), B_OK);
    BMessage changed(kWorkspaceCountChanged);
    Post(&changed);
    BAutolock lock(fBar);
    EXPECT_EQ(Menu()->SwitchWorkspaceMenu()->CountItems(), 6);
}

TEST_F(AppMenuTest, TurningTheWorkspaceCommandOffDropsTheStaleList) {
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    ASSERT_NE(Menu()->SwitchWorkspaceMenu(), nullptr);
    gr_settings->flags &= ~kWorkspaceCommandFlag;
    Menu()->Modify();
    EXPECT_EQ(Menu()->SwitchWorkspaceMenu(), nullptr);
    EXPECT_EQ(Labels(Submenu())[1], "Hide Shelf");
}

TEST_F(AppMenuTest, WithTheCommandOffModifyKeepsTheLayerListOfTheLastBuild) {
    MakeLayerOf("alpha", 1);
    Start(0);
    BAutolock lock(fBar);
    ASSERT_NE(fBar->AddLayer("gamma", false), nullptr);
    Menu()->Modify();
    EXPECT_EQ(Labels(Menu()->SwitchLayerMenu()), (std::vector<std::string>{"alpha"}));
    // A layer without a file never loads: it goes before the bar quits.
    delete fBar->RemoveLayer("gamma");
}

TEST_F(AppMenuTest, WithTheCommandOnModifyRebuildsEveryTime) {
    MakeLayerOf("alpha", 1);
    Start(kWorkspaceCommandFlag);
    BAutolock lock(fBar);
    ASSERT_NE(fBar->AddLayer("gamma", false), nullptr);
    Menu()->Modify();
    EXPECT_EQ(Labels(Menu()->SwitchLayerMenu()), (std::vector<std::string>{"alpha", "gamma"}));
    // A layer without a file never loads: it goes before the bar quits.
    delete fBar->RemoveLayer("gamma");
}

TEST_F(AppMenuTest, CommandDigitSwitchesTheWorkspace) {
    ASSERT_EQ(HeadlessTestApi::SetWorkspaceCount(4), B_OK);
    Start(kWorkspaceCommandFlag);
    ActivateBar(true);
    ASSERT_EQ(HeadlessTestApi::TypeKey(kTwoKey, NULL, B_COMMAND_KEY), B_OK);
    EXPECT_TRUE(wait_until([] { return current_workspace() == 1; }));
}

TEST_F(AppMenuTest, CommandRAsksTheApplicationForThePreferences) {
    Start(kWorkspaceCommandFlag);
    ActivateBar(true);
    ASSERT_EQ(HeadlessTestApi::TypeKey(kRKey, NULL, B_COMMAND_KEY), B_OK);
    // The application is not running: the request waits in its queue.
    EXPECT_TRUE(wait_until(
        [&] { return be_app->MessageQueue()->FindMessage(kShowPreferences, 0) != NULL; }));
}

TEST_F(AppMenuTest, SmallIconsMakeAColumnHandleFifteenHigh) {
    Start(0);
    BAutolock lock(fBar);
    float width;
    float height;
    Menu()->Item()->GetContentSize(&width, &height);
    EXPECT_EQ(width, 15);
    EXPECT_EQ(height, 15);
    EXPECT_EQ(Menu()->Bounds(), BRect(0, 0, 19, 19));
}

TEST_F(AppMenuTest, LargeIconsWithLabelsMakeARowHandleFifteenWide) {
    Start(kDrawLabelFlag, [](settings& record) {
        record.which = 32;
        record.direction = 2;
    });
    BAutolock lock(fBar);
    float width;
    float height;
    Menu()->Item()->GetContentSize(&width, &height);
    EXPECT_EQ(width, 15);
    EXPECT_EQ(height, 45);
    EXPECT_EQ(Menu()->Bounds(), BRect(0, 0, 19, 49));
}

TEST_F(AppMenuTest, SmallIconsWithLabelsMakeAWideColumnHandle) {
    Start(kDrawLabelFlag);
    BAutolock lock(fBar);
    float width;
    float height;
    Menu()->Item()->GetContentSize(&width, &height);
    EXPECT_EQ(width, 96);
    EXPECT_EQ(height, 15);
    // Side margins of 10 for small icons with labels.
    EXPECT_EQ(Menu()->Bounds(), BRect(0, 0, 116, 19));
}

TEST_F(AppMenuTest, StripIsFramedRaisedWhileClosed) {
    Start(0);
    rgb_color low = Locked<rgb_color>([&] { return Menu()->LowColor(); });
    BRect frame = AppMenuFrame();
    BPrivate::Capture capture;
    ASSERT_EQ(HeadlessTestApi::CaptureWindow(fBar, &capture), B_OK);
    rgb_color light = tint_color(low, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(low, B_DARKEN_1_TINT);
    rgb_color topLeft = capture.ColorAt((int32)frame.left, (int32)frame.top);
    rgb_color bottomRight = capture.ColorAt((int32)frame.right, (int32)frame.bottom);
    EXPECT_EQ(topLeft, light);
    EXPECT_EQ(bottomRight, dark);
}

TEST_F(AppMenuTest, HandleLooksFadedWhileTheBarIsInactive) {
    Start(0);
    ActivateBar(true);
    BRect frame = AppMenuFrame();
    BPrivate::Capture active;
    ASSERT_EQ(HeadlessTestApi::CaptureWindow(fBar, &active), B_OK);
    ActivateBar(false);
    BPrivate::Capture inactive;
    ASSERT_EQ(HeadlessTestApi::CaptureWindow(fBar, &inactive), B_OK);
    rgb_color view = Locked<rgb_color>([&] { return Menu()->ViewColor(); });
    // Inside the frame, every pixel that differs moves towards the view colour.
    int32 changed = 0;
    for (int32 y = (int32)frame.top + 2; y < (int32)frame.bottom - 1; y++) {
        for (int32 x = (int32)frame.left + 2; x < (int32)frame.right - 1; x++) {
            rgb_color before = active.ColorAt(x, y);
            rgb_color after = inactive.ColorAt(x, y);
            if (before == after)
                continue;
            changed++;
            EXPECT_LE(abs(after.red - view.red), abs(before.red - view.red)) << x << "," << y;
        }
    }
    EXPECT_GT(changed, 0);
}

TEST_F(AppMenuTest, MouseOverActivatesTheBarWithAutomaticActivation) {
    Start(kAutoFocusFlag);
    ActivateBar(false);
    BRect frame = AppMenuOnScreen();
    ASSERT_EQ(HeadlessTestApi::MoveMouse(BPoint(frame.left + 5, frame.top + 5)), B_OK);
    EXPECT_TRUE(wait_until([&] { return IsActive(); }));
}

TEST_F(AppMenuTest, OptionDraggingTheHandleMovesTheWholeBarUntilTheNextRelayout) {
    Start(0);
    BRect start = WindowFrame();
    ASSERT_EQ(start.LeftTop(), BPoint(0, 0));
    BRect handle = AppMenuOnScreen();
    BPoint grab(handle.left + 5, handle.top + 5);
    ASSERT_EQ(HeadlessTestApi::SetModifiers(B_OPTION_KEY), B_OK);
    ASSERT_EQ(HeadlessTestApi::PressMouse(grab), B_OK);
    ASSERT_EQ(HeadlessTestApi::MoveMouse(grab + BPoint(100, 50)), B_OK);
    // The window's thread is busy dragging: ask the display, not the window.
    BPrivate::WindowListing listing;
    EXPECT_TRUE(wait_until([&] {
        return HeadlessTestApi::FindWindow(fBar, &listing) &&
               listing.frame.LeftTop() == BPoint(100, 50);
    }));
    ASSERT_EQ(HeadlessTestApi::MoveMouse(grab + BPoint(130, 70)), B_OK);
    EXPECT_TRUE(wait_until([&] {
        return HeadlessTestApi::FindWindow(fBar, &listing) &&
               listing.frame.LeftTop() == BPoint(130, 70);
    }));
    ASSERT_EQ(HeadlessTestApi::ReleaseMouse(grab + BPoint(130, 70)), B_OK);
    ASSERT_EQ(HeadlessTestApi::SetModifiers(0), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(WindowFrame().LeftTop(), BPoint(130, 70));

    // The next layout snaps the bar back into its corner.
    BMessage relayout(kShowShelf);
    Post(&relayout);
    EXPECT_EQ(WindowFrame().LeftTop(), BPoint(0, 0));
}

TEST_F(AppMenuTest, PlainPressOnTheHandleOpensTheMenuInsteadOfDragging) {
    Start(0);
    BRect handle = AppMenuOnScreen();
    BPoint grab(handle.left + 5, handle.top + 5);
    ASSERT_EQ(HeadlessTestApi::Click(grab, B_PRIMARY_MOUSE_BUTTON, 1, 0), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(WindowFrame().LeftTop(), BPoint(0, 0));
    EXPECT_TRUE(
        wait_until([&] { return Locked<bool>([&] { return Menu()->Item()->IsSelected2(); }); }));
}

TEST_F(AppMenuTest, HandleShowsTheProgramsIconOnceDrawn) {
    Start(0);
    ActivateBar(true);
    const BBitmap* icon = Locked<const BBitmap*>([&] { return Menu()->Item()->Icon(); });
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->Bounds(), BRect(0, 0, 15, 15));
    BRect frame = AppMenuFrame();
    BPrivate::Capture capture;
    ASSERT_EQ(HeadlessTestApi::CaptureWindow(fBar, &capture), B_OK);
    rgb_color view = Locked<rgb_color>([&] { return Menu()->ViewColor(); });
    // The 16 x 16 icon stands centred in the handle, over the submenu's
    // marker, which only takes the right half: the left half shows the icon.
    BPoint center((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2);
    int32 inked = 0;
    for (int32 y = (int32)center.y - 6; y <= (int32)center.y + 6; y++) {
        for (int32 x = (int32)center.x - 7; x <= (int32)center.x - 2; x++) {
            if (capture.ColorAt(x, y) != view)
                inked++;
        }
    }
    EXPECT_GT(inked, 0);
}

TEST_F(AppMenuTest, UpdateIconMessageChangesNothing) {
    Start(0);
    const BBitmap* icon = Locked<const BBitmap*>([&] { return Menu()->Item()->Icon(); });
    BMessage update(kUpdateIcon);
    Post(&update);
    EXPECT_EQ(Locked<const BBitmap*>([&] { return Menu()->Item()->Icon(); }), icon);
}
