// The item factory's menu kind: a folder becomes the top of a directory
// hierarchy, anything else a plain file menu item; both open their file
// through the application.
#include "CreateRefItem.h"

#include "Commands.h"
#include "DirectoryMenu.h"
#include "FileMenuItem.h"
#include "LayerInfo.h"
#include "LayerManager.h"
#include "Settings.h"

#include <Application.h>

#include <gtest/gtest.h>

#include "FileMenusTestSupport.h"

#include <string>

using namespace file_menus_testing;

namespace {

class CreateRefMenuItemTest : public FileMenusTest {
protected:
    void SetUp() override {
        FileMenusTest::SetUp();
        char text[512] = "";
        ASSERT_EQ(B_OK, check_settings_folders(text, sizeof(text))) << text;
    }

    void TearDown() override {
        if (fManager != NULL && fManager->Lock())
            fManager->Quit();
        FileMenusTest::TearDown();
    }

    // A hidden manager (nothing loads) and one of its layers.
    LayerInfo* MakeLayer(list_which layersWhich, list_which targetsWhich, const char* name) {
        fManager =
            new LayerManager(BRect(10, 10, 110, 60), "manager", 0, layersWhich, targetsWhich);
        EXPECT_TRUE(fManager->Lock());
        LayerInfo* layer =
            name[0] == '\0' ? fManager->FindLayer("") : fManager->AddLayer(name, false);
        fManager->Unlock();
        return layer;
    }

    status_t Create(const std::string& path, LayerInfo* layer, FileMenuItem** made) {
        RefRetriever* item = NULL;
        EXPECT_TRUE(fManager->Lock());
        status_t status = create_ref_item(path.c_str(), layer, &item);
        fManager->Unlock();
        *made = dynamic_cast<FileMenuItem*>(item);
        if (status == B_OK && *made == NULL)
            delete item;
        return status;
    }

    LayerManager* fManager = NULL;
};

} // namespace

TEST_F(CreateRefMenuItemTest, MenuKindMakesAFolderTheTopOfAHierarchy) {
    LayerInfo* layer = MakeLayer(which_menu_items, which_menu_items, "menu");
    std::string folder = fHome.MakeFolder("Documents");
    FileMenuItem* item = NULL;
    ASSERT_EQ(B_OK, Create(folder, layer, &item));
    ASSERT_NE(nullptr, item);
    EXPECT_NE(nullptr, dynamic_cast<DirectoryMenu*>(item->Submenu()));
    EXPECT_STREQ("Documents", item->Label());
    delete item;
}

TEST_F(CreateRefMenuItemTest, MenuKindMakesAFileAPlainItemThatOpensItself) {
    LayerInfo* layer = MakeLayer(which_menu_items, which_menu_items, "menu");
    std::string path = fHome.WriteFile("notes.txt", "x");
    FileMenuItem* item = NULL;
    ASSERT_EQ(B_OK, Create(path, layer, &item));
    ASSERT_NE(nullptr, item);
    EXPECT_EQ(nullptr, item->Submenu());
    EXPECT_STREQ(path.c_str(), item->Path());
    BMessage* message = item->Message();
    ASSERT_NE(nullptr, message);
    EXPECT_EQ((uint32)kOpen, message->what);
    entry_ref file;
    entry_ref entries;
    ASSERT_EQ(B_OK, message->FindRef("file", &file));
    ASSERT_EQ(B_OK, message->FindRef("entries", &entries));
    EXPECT_EQ(ref_for(path), file);
    EXPECT_EQ(ref_for(path), entries);
    delete item;
}

TEST_F(CreateRefMenuItemTest, MenuKindItemsTargetTheApplication) {
    LayerInfo* layer = MakeLayer(which_menu_items, which_menu_items, "menu");
    FileMenuItem* item = NULL;
    ASSERT_EQ(B_OK, Create(fHome.WriteFile("notes.txt", "x"), layer, &item));
    ASSERT_NE(nullptr, item);
    BLooper* looper = NULL;
    item->Target(&looper);
    EXPECT_EQ(be_app, looper);
    delete item;
}

TEST_F(CreateRefMenuItemTest, TargetsOfABarWindowAreMenuItems) {
    LayerInfo* targets = MakeLayer(which_bar_items, which_menu_items, "");
    ASSERT_NE(nullptr, targets);
    FileMenuItem* item = NULL;
    ASSERT_EQ(B_OK, Create(fHome.MakeFolder("Inbox"), targets, &item));
    ASSERT_NE(nullptr, item);
    EXPECT_NE(nullptr, dynamic_cast<DirectoryMenu*>(item->Submenu()));
    delete item;
}

TEST_F(CreateRefMenuItemTest, MenuKindRefusesAPathWhoseFolderIsMissing) {
    LayerInfo* layer = MakeLayer(which_menu_items, which_menu_items, "menu");
    FileMenuItem* item = NULL;
    EXPECT_NE(B_OK, Create(fHome.Path() + "/no-such-folder/file", layer, &item));
    EXPECT_EQ(nullptr, item);
}

TEST_F(CreateRefMenuItemTest, MenuKindKeepsAMissingFileAsAnUnavailableItem) {
    LayerInfo* layer = MakeLayer(which_menu_items, which_menu_items, "menu");
    FileMenuItem* item = NULL;
    ASSERT_EQ(B_OK, Create(fHome.Path() + "/gone.txt", layer, &item));
    ASSERT_NE(nullptr, item);
    EXPECT_FALSE(item->IsEnabled());
    EXPECT_EQ(nullptr, item->Icon());
    delete item;
}
