#include "BarWindow.h"

#include "BarWindowTestSupport.h"

#include <MenuItem.h>

#include <map>

using namespace bar_window_testing;
using testing_support::wait_until;

namespace {

class BarWindowLayerTest : public BarWindowTest {
protected:
    // Layers "one" (1 item), "two" (2) and "three" (3); workspace 0 shows
    // "one", workspace 1 "two".
    void StartWithLayers(int32 flags = 0) {
        MakeLayerOf("one", 1);
        MakeLayerOf("two", 2);
        MakeLayerOf("three", 3);
        WriteSettings([&](settings& record) {
            record.flags = flags;
            SetName(record, 0, "one");
            SetName(record, 1, "two");
        });
        StartBar();
        ASSERT_TRUE(WaitForBarItems(1));
    }

    // The layers' names in the window's order, the targets list left out.
    std::vector<std::string> LayerOrder() {
        return Locked<std::vector<std::string>>([&] {
            BMessage list;
            fBar->GetLayerList(&list);
            std::vector<std::string> names;
            const char* name;
            for (int32 index = 0; list.FindString("name", index, &name) == B_OK; index++) {
                if (name[0] != '\0')
                    names.push_back(name);
            }
            return names;
        });
    }

    void SwitchByName(const char* name) {
        BMessage message(kSwitchLayer);
        message.AddString("layer_name", name);
        Post(&message);
    }

    void SwitchByDirection(bool forward) {
        BMessage message(kSwitchLayer);
        message.AddBool("direction", forward);
        Post(&message);
    }

    std::string KeyMenuBarName() {
        return Locked<std::string>([&] {
            BMenuBar* bar = fBar->KeyMenuBar();
            return bar != NULL ? std::string(bar->Name()) : std::string("<none>");
        });
    }
};

} // namespace

TEST_F(BarWindowLayerTest, BarShowsTheCurrentWorkspacesLayer) {
    StartWithLayers();
    EXPECT_EQ(ShownLayer(), "one");
    EXPECT_EQ(KeyMenuBarName(), "app_menu");
}

TEST_F(BarWindowLayerTest, BarPublishesItselfAndItsSettings) {
    StartWithLayers();
    EXPECT_EQ(gr_manager, fBar);
    EXPECT_EQ(gr_settings, fBar->Settings());
    EXPECT_STREQ(gr_settings->layerName[0], "one");
}

TEST_F(BarWindowLayerTest, SwitchingByNameShowsThatLayer) {
    StartWithLayers();
    SwitchByName("three");
    EXPECT_EQ(ShownLayer(), "three");
    EXPECT_TRUE(WaitForBarItems(3));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 21 + 3 * (kCell + 1) - 1));
}

TEST_F(BarWindowLayerTest, SwitchingMakesTheLayerBarTheKeyMenuBar) {
    StartWithLayers();
    SwitchByName("two");
    EXPECT_EQ(KeyMenuBarName(), "layer_bar");
}

TEST_F(BarWindowLayerTest, SwitchingToAnUnknownNameBeepsAndChangesNothing) {
    StartWithLayers();
    uint32 beeps = HeadlessTestApi::CountBeeps();
    SwitchByName("nowhere");
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps + 1);
    EXPECT_EQ(ShownLayer(), "one");
}

TEST_F(BarWindowLayerTest, SwitchingWithoutNameOrDirectionBeeps) {
    StartWithLayers();
    uint32 beeps = HeadlessTestApi::CountBeeps();
    BMessage message(kSwitchLayer);
    Post(&message);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps + 1);
    EXPECT_EQ(ShownLayer(), "one");
}

TEST_F(BarWindowLayerTest, SwitchingForwardShowsTheNextLayer) {
    StartWithLayers();
    std::vector<std::string> order = LayerOrder();
    ASSERT_EQ(order.size(), 3u);
    SwitchByName(order[0].c_str());
    SwitchByDirection(true);
    EXPECT_EQ(ShownLayer(), order[1]);
}

TEST_F(BarWindowLayerTest, SwitchingBackwardShowsThePreviousLayer) {
    StartWithLayers();
    std::vector<std::string> order = LayerOrder();
    ASSERT_EQ(order.size(), 3u);
    SwitchByName(order[2].c_str());
    SwitchByDirection(false);
    EXPECT_EQ(ShownLayer(), order[1]);
}

TEST_F(BarWindowLayerTest, SwitchingForwardFromTheLastSkipsTheTargetsAndWraps) {
    StartWithLayers();
    std::vector<std::string> order = LayerOrder();
    ASSERT_EQ(order.size(), 3u);
    SwitchByName(order[2].c_str());
    uint32 beeps = HeadlessTestApi::CountBeeps();
    SwitchByDirection(true);
    EXPECT_EQ(ShownLayer(), order[0]);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps);
}

TEST_F(BarWindowLayerTest, SwitchingByDirectionWithOnlyTheTargetsListBeeps) {
    WriteSettings();
    StartBar();
    uint32 beeps = HeadlessTestApi::CountBeeps();
    SwitchByDirection(true);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps + 1);
    EXPECT_EQ(ShownLayer(), "<none>");
}

TEST_F(BarWindowLayerTest, SwitchingKeepsTheWorkspacesRememberedLayer) {
    StartWithLayers();
    SwitchByName("three");
    EXPECT_STREQ(gr_settings->layerName[0], "one");
    // Coming back to workspace 0 shows its own layer again.
    ASSERT_EQ(HeadlessTestApi::SetWorkspace(1), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    ASSERT_EQ(HeadlessTestApi::SetWorkspace(0), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(ShownLayer(), "one");
}

TEST_F(BarWindowLayerTest, SwitchingGreysTheNewLayerInTheAppMenu) {
    StartWithLayers();
    SwitchByName("two");
    std::map<std::string, bool> enabled = Locked<std::map<std::string, bool>>([&] {
        std::map<std::string, bool> states;
        BMenu* menu = fBar->AppMenuView()->SwitchLayerMenu();
        for (int32 index = 0; index < menu->CountItems(); index++)
            states[menu->ItemAt(index)->Label()] = menu->ItemAt(index)->IsEnabled();
        return states;
    });
    EXPECT_FALSE(enabled["two"]);
    EXPECT_TRUE(enabled["one"]);
    EXPECT_TRUE(enabled["three"]);
}

TEST_F(BarWindowLayerTest, CommandDownArrowShowsTheNextLayer) {
    StartWithLayers();
    std::vector<std::string> order = LayerOrder();
    SwitchByName(order[0].c_str());
    ActivateBar(true);
    ASSERT_EQ(HeadlessTestApi::TypeKey(0x62, NULL, B_COMMAND_KEY), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(ShownLayer(), order[1]);
}

TEST_F(BarWindowLayerTest, CommandLeftArrowShowsThePreviousLayer) {
    StartWithLayers();
    std::vector<std::string> order = LayerOrder();
    SwitchByName(order[1].c_str());
    ActivateBar(true);
    ASSERT_EQ(HeadlessTestApi::TypeKey(0x61, NULL, B_COMMAND_KEY), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(ShownLayer(), order[0]);
}

TEST_F(BarWindowLayerTest, ArrowShortcutsAreInstalledForAllFourArrows) {
    StartWithLayers();
    Locked<bool>([&] {
        EXPECT_TRUE(fBar->HasShortcut(B_DOWN_ARROW, 0));
        EXPECT_TRUE(fBar->HasShortcut(B_RIGHT_ARROW, 0));
        EXPECT_TRUE(fBar->HasShortcut(B_UP_ARROW, 0));
        EXPECT_TRUE(fBar->HasShortcut(B_LEFT_ARROW, 0));
        return true;
    });
}

// #pragma mark - Workspaces

TEST_F(BarWindowLayerTest, WorkspaceActivationShowsThatWorkspacesLayer) {
    StartWithLayers();
    ASSERT_EQ(HeadlessTestApi::SetWorkspace(1), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(ShownLayer(), "two");
    EXPECT_TRUE(WaitForBarItems(2));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 21 + 2 * (kCell + 1) - 1));
}

TEST_F(BarWindowLayerTest, WorkspaceWithoutALayerHidesTheLayerBar) {
    StartWithLayers();
    ASSERT_EQ(HeadlessTestApi::SetWorkspace(2), B_OK);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(ShownLayer(), "<none>");
    EXPECT_TRUE(IsParked(LayerBarFrame()));
    EXPECT_EQ(WindowFrame(), BRect(0, 0, kCell, kCell));
}

TEST_F(BarWindowLayerTest, WorkspaceActivationKeepsAFoldedInactiveBarFolded) {
    StartWithLayers(kMinimizeFlag);
    ActivateBar(true);
    ActivateBar(false);
    // Called as the server would, without the activation a real switch of
    // workspaces gives the front window.
    Locked<bool>([&] {
        fBar->WorkspaceActivated(1, true);
        return true;
    });
    EXPECT_EQ(ShownLayer(), "two");
    EXPECT_TRUE(IsParked(LayerBarFrame()));
}

TEST_F(BarWindowLayerTest, SwitchWorkspaceCommandShowsThatWorkspace) {
    StartWithLayers();
    BMessage message(kSwitchWorkspace);
    message.AddInt32("workspace", 1);
    Post(&message);
    EXPECT_EQ(current_workspace(), 1);
    EXPECT_EQ(ShownLayer(), "two");
}

TEST_F(BarWindowLayerTest, SwitchWorkspaceCommandWithoutWorkspaceStaysPut) {
    StartWithLayers();
    BMessage message(kSwitchWorkspace);
    Post(&message);
    EXPECT_EQ(current_workspace(), 0);
    EXPECT_EQ(ShownLayer(), "one");
}

// #pragma mark - Shelf and routing

TEST_F(BarWindowLayerTest, ShowShelfCommandHidesAndShowsTheShelf) {
    StartWithLayers(kShelfFlag);
    EXPECT_TRUE(fBar->IsShowingShelf());
    EXPECT_FALSE(IsParked(ShelfBarFrame()));

    BMessage hide(kShowShelf);
    hide.AddBool("show", false);
    Post(&hide);
    EXPECT_FALSE(fBar->IsShowingShelf());
    EXPECT_TRUE(IsParked(ShelfBarFrame()));
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 21 + kCell));

    BMessage show(kShowShelf);
    show.AddBool("show", true);
    Post(&show);
    EXPECT_TRUE(fBar->IsShowingShelf());
    EXPECT_EQ(ShelfBarFrame(), BRect(0, 21, kCell, 21 + kCell));
}

TEST_F(BarWindowLayerTest, ShowShelfCommandWithoutFieldKeepsTheFlag) {
    StartWithLayers(kShelfFlag);
    BMessage message(kShowShelf);
    Post(&message);
    EXPECT_TRUE(fBar->IsShowingShelf());
    EXPECT_FALSE(IsParked(ShelfBarFrame()));
}

TEST_F(BarWindowLayerTest, ShowShelfCommandRelabelsTheAppMenusShelfItem) {
    StartWithLayers(kShelfFlag);
    BMessage hide(kShowShelf);
    hide.AddBool("show", false);
    Post(&hide);
    EXPECT_NE(Locked<BMenuItem*>([&] {
                  BMenu* menu = fBar->AppMenuView()->SwitchLayerMenu()->Supermenu();
                  return menu != NULL ? menu->FindItem("Show Shelf") : NULL;
              }),
              nullptr);
}

TEST_F(BarWindowLayerTest, ClearReplicantsWithoutAShelfIsDropped) {
    StartWithLayers(kShelfFlag);
    uint32 beeps = HeadlessTestApi::CountBeeps();
    BMessage message(kClearReplicants);
    Post(&message);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps);
    EXPECT_TRUE(HeadlessTestApi::Alerts().empty());
    EXPECT_EQ(ShownLayer(), "one");
}

TEST_F(BarWindowLayerTest, ItemsLoadedForAnotherLayerLeaveTheBarAlone) {
    StartWithLayers();
    // Every layer of the window has finished loading by now; the bar grew
    // for its own layer only.
    ASSERT_TRUE(wait_until([&] {
        return Locked<bool>([&] {
            for (const char* name : {"one", "two", "three"}) {
                if (!fBar->FindLayer(name)->IsCompleted())
                    return false;
            }
            return true;
        });
    }));
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    EXPECT_EQ(CountBarItems(), 1);
    EXPECT_EQ(LayerBarFrame(), BRect(0, 21, kCell, 21 + kCell));
}
