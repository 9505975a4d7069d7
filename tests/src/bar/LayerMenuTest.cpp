// Layer menus on the real bar window: the routines of an item's file followed by
// the targets (which act on the expanded item's file), nested layers borrowed
// while their menu is open, "Layer in Use", the size of an empty nested layer
// and where nested layers open on a bar that runs up.
#include "LayerMenu.h"

#include "BarWindowTestSupport.h"
#include "FileMenuItem.h"
#include "LayerItem.h"

#include "../menus/FileMenusTestSupport.h"
#include "RecordingApps.h"

#include <Looper.h>
#include <MenuItem.h>

#include <mutex>

using namespace bar_window_testing;
using file_menus_testing::center_of;
using file_menus_testing::menu_labels;
using file_menus_testing::MenuLock;
using file_menus_testing::ref_for;
using file_menus_testing::wait_for_menu_count;
using file_menus_testing::wait_until_shown;
using testing_support::wait_until;

namespace {

typedef std::vector<std::string> Labels;

// Keeps the messages that the targets send, in place of the application.
class RecordingLooper : public BLooper {
public:
    RecordingLooper() : BLooper("recorder") {}

    void MessageReceived(BMessage* message) override {
        if ((message->what >> 16) == 0x6772) {
            std::lock_guard<std::mutex> lock(fLock);
            fMessages.push_back(*message);
            return;
        }
        BLooper::MessageReceived(message);
    }

    std::vector<BMessage> Messages() {
        std::lock_guard<std::mutex> lock(fLock);
        return fMessages;
    }

private:
    std::mutex fLock;
    std::vector<BMessage> fMessages;
};

// Exposes the layout a menu was made with.
class InspectedLayerMenu : public LayerMenu {
public:
    using LayerMenu::LayerMenu;
    using LayerMenu::Layout;
};

class LayerMenuTest : public BarWindowTest {
protected:
    void TearDown() override {
        // Menus close before the bar goes, as they do when the user quits.
        if (!file_menus_testing::menu_windows().empty()) {
            EXPECT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 400)));
            EXPECT_TRUE(wait_for_menu_count(0));
            EXPECT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        }
        BarWindowTest::TearDown();
        if (fRecorder != NULL && fRecorder->Lock())
            fRecorder->Quit();
        EXPECT_TRUE(wait_until([] { return HeadlessTestApi::Windows().empty(); }));
    }

    std::string LayerPath(const std::string& name) {
        return fHome.ConfigHome() + "/Glimrow/layers/" + name;
    }

    void WriteTargets(const std::vector<std::string>& paths) {
        std::string body;
        for (const std::string& path : paths)
            body += path + "\n";
        fHome.WriteFile(".config/Glimrow/targets", body);
    }

    // Shows layer "main" on workspace 0 with the given direction and flags.
    void Start(int32 itemCount, int32 direction = 0, int32 location = 0, int32 flags = 0) {
        WriteSettings([&](settings& record) {
            record.direction = direction;
            record.location = location;
            record.flags = flags;
            SetName(record, 0, "main");
        });
        StartBar();
        ASSERT_TRUE(WaitForBarItems(itemCount));
        ASSERT_TRUE(WaitForTargets());
    }

    bool WaitForTargets() {
        return wait_until([&] {
            return Locked<bool>([&] {
                LayerInfo* targets = fBar->FindLayer("");
                return targets != NULL && targets->IsCompleted();
            });
        });
    }

    LayerMenu* MenuOf(int32 index) {
        return Locked<LayerMenu*>([&] {
            LayerItem* item = fBar->LayerBarView()->LayerItemAt(index);
            return item != NULL ? dynamic_cast<LayerMenu*>(item->Submenu()) : NULL;
        });
    }

    BRect ItemOnScreen(int32 index) {
        return Locked<BRect>([&] {
            LayerBar* bar = fBar->LayerBarView();
            return bar->ConvertToScreen(bar->ItemAt(index)->Frame());
        });
    }

    // A primary press expands with the default settings.
    LayerMenu* Expand(int32 index) {
        LayerMenu* menu = MenuOf(index);
        EXPECT_NE(nullptr, menu);
        if (menu == NULL)
            return NULL;
        EXPECT_EQ(B_OK, HeadlessTestApi::Click(center_of(ItemOnScreen(index))));
        EXPECT_TRUE(wait_until_shown(menu));
        EXPECT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        return menu;
    }

    void CloseMenus() {
        ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 400)));
        ASSERT_TRUE(wait_for_menu_count(0));
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    }

    bool MenuWindowFrame(LayerMenu* menu, BRect* frame) {
        MenuLock lock(menu);
        if (!lock.IsLocked())
            return false;
        *frame = menu->Window()->Frame();
        return true;
    }

    // The targets send to a recorder instead of the application, which does
    // not run in these tests.
    void RetargetTargets() {
        fRecorder = new RecordingLooper();
        fRecorder->Run();
        Locked<bool>([&] {
            LayerInfo* targets = fBar->FindLayer("");
            BList* list = targets->SetLock(true, this);
            for (int32 index = 0; list != NULL && index < list->CountItems(); index++) {
                RefRetriever* reference = static_cast<RefRetriever*>(list->ItemAt(index));
                if (FileMenuItem* item = dynamic_cast<FileMenuItem*>(reference))
                    item->SetTarget(fRecorder);
            }
            targets->SetLock(false, this);
            return true;
        });
    }

    RecordingLooper* fRecorder = NULL;
};

} // namespace

// #pragma mark - Routines and targets

TEST_F(LayerMenuTest, RoutinesMenuShowsHierarchyOpenParentAndOpenWith) {
    MakeLayer("main", {MakeFile("notes.txt")});
    Start(1);
    LayerMenu* menu = Expand(0);
    EXPECT_FALSE(menu->ExpandLayer());
    EXPECT_EQ(Labels({"notes.txt", "---", "Open Parent", "Open With"}), menu_labels(menu));
}

TEST_F(LayerMenuTest, EmptyTargetsListAddsNoSeparator) {
    WriteTargets({});
    MakeLayer("main", {MakeFile("notes.txt")});
    Start(1);
    LayerMenu* menu = Expand(0);
    Labels labels = menu_labels(menu);
    ASSERT_EQ(4u, labels.size());
    EXPECT_EQ("Open With", labels.back());
}

TEST_F(LayerMenuTest, TargetsFollowASeparatorAfterTheRoutines) {
    std::string first = MakeFile("first-target");
    std::string second = MakeFile("second-target");
    WriteTargets({first, second});
    MakeLayer("main", {MakeFile("notes.txt")});
    Start(1);
    LayerMenu* menu = Expand(0);
    EXPECT_EQ(Labels({"notes.txt", "---", "Open Parent", "Open With", "---", "first-target",
                      "second-target"}),
              menu_labels(menu));
}

TEST_F(LayerMenuTest, ChosenTargetActsOnTheExpandedItemsFile) {
    std::string target = MakeFile("target");
    WriteTargets({target});
    std::string notes = MakeFile("notes.txt");
    MakeLayer("main", {notes});
    Start(1);
    RetargetTargets();
    LayerMenu* menu = Expand(0);
    ASSERT_EQ(6u, menu_labels(menu).size());
    ASSERT_EQ(B_OK,
              HeadlessTestApi::Click(center_of(file_menus_testing::item_screen_frame(menu, 5))));
    ASSERT_TRUE(wait_until([&] { return !fRecorder->Messages().empty(); }));

    BMessage message = fRecorder->Messages()[0];
    EXPECT_EQ((uint32)kOpen, message.what);
    entry_ref file;
    entry_ref entries;
    ASSERT_EQ(B_OK, message.FindRef("file", &file));
    ASSERT_EQ(B_OK, message.FindRef("entries", &entries));
    EXPECT_EQ(ref_for(notes), file);
    EXPECT_EQ(ref_for(target), entries);
}

TEST_F(LayerMenuTest, ClosingGivesTheTargetsBackAndKeepsTheRoutines) {
    WriteTargets({MakeFile("target")});
    MakeLayer("main", {MakeFile("notes.txt")});
    Start(1);
    LayerMenu* menu = Expand(0);
    ASSERT_EQ(6u, menu_labels(menu).size());
    CloseMenus();
    Locked<bool>([&] {
        LayerInfo* targets = fBar->FindLayer("");
        EXPECT_EQ(nullptr, targets->Locker());
        EXPECT_EQ(1, targets->CountItems());
        EXPECT_EQ(4, menu->CountItems());
        EXPECT_EQ(targets, menu->CurrentList());
        return true;
    });
}

TEST_F(LayerMenuTest, MissingFileMenuHoldsOnlyItsDisabledPath) {
    WriteTargets({MakeFile("target")});
    std::string vanished = fHome.Path() + "/files/vanished.txt";
    MakeLayer("main", {vanished});
    Start(1);
    LayerMenu* menu = Expand(0);
    // The targets stay out: they would act on a file that is not there.
    EXPECT_EQ(Labels({vanished + " (disabled)"}), menu_labels(menu));
    CloseMenus();
    Locked<bool>([&] {
        EXPECT_EQ(nullptr, fBar->FindLayer("")->Locker());
        return true;
    });
}

TEST_F(LayerMenuTest, RebuildRoutinesWithoutAFileLeavesOneDisabledPathItem) {
    std::string notes = MakeFile("notes.txt");
    MakeLayer("main", {notes});
    Start(1);
    Locked<bool>([&] {
        LayerMenu* menu = dynamic_cast<LayerMenu*>(fBar->LayerBarView()->ItemAt(0)->Submenu());
        menu->RebuildRoutines(NULL);
        EXPECT_EQ(1, menu->CountItems());
        EXPECT_STREQ(notes.c_str(), menu->ItemAt(0)->Label());
        EXPECT_FALSE(menu->ItemAt(0)->IsEnabled());
        entry_ref ref = ref_for(notes);
        menu->RebuildRoutines(&ref);
        EXPECT_EQ(4, menu->CountItems());
        return true;
    });
}

TEST_F(LayerMenuTest, OpenWithItemListsTheApplicationsForTheFile) {
    testing_support::RecordingApps apps(fHome);
    apps.Add("org.example.Viewer", "text/plain;");
    apps.SetDefault("text/plain", "org.example.Viewer");
    MakeLayer("main", {MakeFile("notes.txt")});
    Start(1);
    LayerMenu* menu = Expand(0);
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(
                        center_of(file_menus_testing::item_screen_frame(menu, 3))));
    BMenu* openWith = NULL;
    {
        MenuLock lock(menu);
        ASSERT_TRUE(lock.IsLocked());
        openWith = menu->ItemAt(3)->Submenu();
    }
    ASSERT_NE(nullptr, openWith);
    ASSERT_TRUE(wait_until_shown(openWith));
    EXPECT_EQ(Labels({"org.example.Viewer.desktop"}), menu_labels(openWith));
}

// #pragma mark - Nested layers

TEST_F(LayerMenuTest, ExpandLayerMenuShowsTheNestedLayersItemsAndGivesThemBack) {
    MakeLayer("sub", {MakeFile("one"), MakeFile("two")});
    MakeLayer("main", {LayerPath("sub")});
    Start(1);
    LayerMenu* menu = Expand(0);
    EXPECT_TRUE(menu->ExpandLayer());
    EXPECT_EQ(Labels({"one", "two"}), menu_labels(menu));
    CloseMenus();
    Locked<bool>([&] {
        LayerInfo* sub = fBar->FindLayer("sub");
        EXPECT_EQ(sub, menu->CurrentList());
        EXPECT_EQ(nullptr, sub->Locker());
        EXPECT_EQ(2, sub->CountItems());
        EXPECT_EQ(0, menu->CountItems());
        return true;
    });
}

TEST_F(LayerMenuTest, ExpandLayerItemWhoseLayerIsOpenElsewhereShowsLayerInUse) {
    // The layer names itself: the bar already holds it.
    MakeLayer("main", {LayerPath("main")});
    Start(1);
    LayerMenu* menu = Expand(0);
    EXPECT_EQ(Labels({"Layer in Use (disabled)"}), menu_labels(menu));
    CloseMenus();
    Locked<bool>([&] {
        EXPECT_EQ(0, menu->CountItems());
        EXPECT_EQ(fBar->LayerBarView(), fBar->FindLayer("main")->Locker());
        return true;
    });
}

TEST_F(LayerMenuTest, ExpandLayerMenuOfAnEmptyLayerIsTwoMarginsPlusFourWideAndEightHigh) {
    MakeLayer("sub", {});
    MakeLayer("main", {LayerPath("sub")});
    Start(1);
    LayerMenu* menu = Expand(0);
    float width = 0;
    float height = 0;
    BRect frame;
    {
        MenuLock lock(menu);
        ASSERT_TRUE(lock.IsLocked());
        EXPECT_EQ(0, menu->CountItems());
        menu->GetSize(&width, &height);
        frame = menu->Window()->Frame();
    }
    // Small icons without labels: m = 2.
    EXPECT_EQ(8, width);
    EXPECT_EQ(8, height);
    EXPECT_EQ(8, frame.Width());
    EXPECT_EQ(8, frame.Height());
}

TEST_F(LayerMenuTest, EmptyLayerWithSmallLabelledIconsUsesTheWideMargin) {
    MakeLayer("sub", {});
    MakeLayer("main", {LayerPath("sub")});
    Start(1, 0, 0, kDrawLabelFlag);
    LayerMenu* menu = Expand(0);
    BRect frame;
    ASSERT_TRUE(MenuWindowFrame(menu, &frame));
    EXPECT_EQ(24, frame.Width());
    EXPECT_EQ(8, frame.Height());
}

TEST_F(LayerMenuTest, ColumnOfNestedItemsIsOneCellWideAndOneCellAndAPixelPerItemHigh) {
    MakeLayer("sub", {MakeFile("one"), MakeFile("two"), MakeFile("three")});
    MakeLayer("main", {LayerPath("sub")});
    Start(1);
    LayerMenu* menu = Expand(0);
    BRect frame;
    ASSERT_TRUE(MenuWindowFrame(menu, &frame));
    EXPECT_EQ(kCell, frame.Width());
    EXPECT_EQ((kCell + 1) * 3, frame.Height());
}

TEST_F(LayerMenuTest, RowBarOpensNestedLayersAsARow) {
    MakeLayer("sub", {MakeFile("one"), MakeFile("two")});
    MakeLayer("main", {LayerPath("sub")});
    Start(1, 2, 0);
    LayerMenu* menu = Expand(0);
    BRect frame;
    ASSERT_TRUE(MenuWindowFrame(menu, &frame));
    EXPECT_EQ((kCell + 1) * 2, frame.Width());
    EXPECT_EQ(kCell, frame.Height());
}

TEST_F(LayerMenuTest, BarRunningUpOpensNestedLayersUpward) {
    MakeLayer("sub", {MakeFile("one"), MakeFile("two"), MakeFile("three")});
    MakeLayer("main", {LayerPath("sub")});
    // Bottom-left corner, the column running up.
    Start(1, 1, 3);
    BRect item = ItemOnScreen(0);
    LayerMenu* menu = Expand(0);
    BRect frame;
    ASSERT_TRUE(MenuWindowFrame(menu, &frame));
    float height = (kCell + 1) * 3 + 1;
    ASSERT_GT(item.bottom - height, 0);
    EXPECT_EQ(item.bottom - height, frame.top);
    EXPECT_EQ(item.right + 1, frame.left);
}

TEST_F(LayerMenuTest, BarRunningUpClampsNestedLayersToTheTopOfTheScreen) {
    std::vector<std::string> many;
    for (int32 index = 0; index < 12; index++)
        many.push_back(MakeFile("nested-" + std::to_string(index)));
    MakeLayer("sub", many);
    // Items of a bar running up are reversed: the last one is the highest.
    std::vector<std::string> main;
    for (int32 index = 0; index < 30; index++)
        main.push_back(MakeFile("main-" + std::to_string(index)));
    main.push_back(LayerPath("sub"));
    MakeLayer("main", main);
    Start(31, 1, 3);
    int32 linkIndex = Locked<int32>([&] {
        LayerBar* bar = fBar->LayerBarView();
        for (int32 index = 0; index < bar->CountItems(); index++) {
            if (std::string(bar->ItemAt(index)->Label()) == "sub")
                return index;
        }
        return (int32)-1;
    });
    ASSERT_EQ(0, linkIndex);
    BRect item = ItemOnScreen(linkIndex);
    ASSERT_LE(item.bottom - ((kCell + 1) * 12 + 1), 0);
    LayerMenu* menu = Expand(linkIndex);
    BRect frame;
    ASSERT_TRUE(MenuWindowFrame(menu, &frame));
    EXPECT_EQ(0, frame.top);
}

TEST_F(LayerMenuTest, IndexAtCountsCellsAndTheGapBelongsToTheEarlierCell) {
    MakeLayer("sub", {MakeFile("one"), MakeFile("two"), MakeFile("three")});
    MakeLayer("main", {LayerPath("sub")});
    Start(1);
    LayerMenu* menu = Expand(0);
    MenuLock lock(menu);
    ASSERT_TRUE(lock.IsLocked());
    EXPECT_EQ(0, menu->IndexAt(BPoint(5, 0), false));
    EXPECT_EQ(0, menu->IndexAt(BPoint(5, 19.5), false));
    EXPECT_EQ(1, menu->IndexAt(BPoint(5, 20), false));
    EXPECT_EQ(2, menu->IndexAt(BPoint(5, 59), false));
    EXPECT_EQ(-1, menu->IndexAt(BPoint(5, 60), false));
    EXPECT_EQ(-1, menu->IndexAt(BPoint(20, 5), false));
    EXPECT_EQ(-1, menu->IndexAt(BPoint(-1, 5), false));
    BPoint screen = menu->ConvertToScreen(BPoint(5, 25));
    EXPECT_EQ(1, menu->IndexAt(screen, true));
}

TEST_F(LayerMenuTest, MenusAreColumnsExceptNestedLayersOfARowBar) {
    settings record;
    settings* saved = gr_settings;
    gr_settings = &record;
    record.direction = 2;
    InspectedLayerMenu routines(false);
    InspectedLayerMenu nested(true);
    record.direction = 1;
    InspectedLayerMenu columnNested(true);
    gr_settings = saved;
    EXPECT_EQ(B_ITEMS_IN_COLUMN, routines.Layout());
    EXPECT_EQ(B_ITEMS_IN_ROW, nested.Layout());
    EXPECT_EQ(B_ITEMS_IN_COLUMN, columnNested.Layout());
    EXPECT_TRUE(routines.AreTriggersEnabled());
    EXPECT_FALSE(nested.AreTriggersEnabled());
    EXPECT_EQ(nullptr, routines.CurrentList());
}
