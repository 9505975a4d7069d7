// Directory menus: filled one entry per step while they open, "Empty Folder",
// folders unfolding into submenus (links to folders too), the message every item
// of a hierarchy carries, and when a menu is filled again.
#include "DirectoryMenu.h"

#include "Commands.h"
#include "FileMenuItem.h"

#include <Directory.h>
#include <Entry.h>

#include <gtest/gtest.h>

#include "FileMenusTestSupport.h"

#include <filesystem>
#include <string>
#include <vector>

using namespace file_menus_testing;
using testing_support::wait_until;

namespace {

typedef std::vector<std::string> Labels;

class DirectoryMenuTest : public FileMenusTest {
protected:
    // The top of a hierarchy for path on the bar; its message is kOpen with the
    // folder as "file" and "entries", as a layer's item has it.
    FileMenuItem* MakeHierarchy(const std::string& path) {
        entry_ref ref = ref_for(path);
        BMessage message(kOpen);
        message.AddRef("file", &ref);
        message.AddRef("entries", &ref);
        FileMenuItem* item = DirectoryMenu::StartHierarchy(&ref, &message);
        EXPECT_NE(nullptr, item);
        MakeWindow({item});
        return item;
    }

    DirectoryMenu* Open(FileMenuItem* item) {
        DirectoryMenu* menu = dynamic_cast<DirectoryMenu*>(item->Submenu());
        EXPECT_NE(nullptr, menu);
        OpenItem(0);
        EXPECT_TRUE(wait_until_shown(menu));
        WaitForIdle();
        return menu;
    }

    // Hovers the item of an open menu so that its submenu cascades.
    DirectoryMenu* Cascade(DirectoryMenu* menu, int32 index) {
        DirectoryMenu* submenu = NULL;
        {
            MenuLock lock(menu);
            if (lock.IsLocked() && menu->ItemAt(index) != NULL)
                submenu = dynamic_cast<DirectoryMenu*>(menu->ItemAt(index)->Submenu());
        }
        EXPECT_NE(nullptr, submenu);
        if (submenu == NULL)
            return NULL;
        EXPECT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(menu, index))));
        EXPECT_TRUE(wait_until_shown(submenu));
        WaitForIdle();
        return submenu;
    }

    int32 IndexOf(DirectoryMenu* menu, const char* label) {
        Labels labels = menu_labels(menu);
        for (size_t index = 0; index < labels.size(); index++) {
            if (labels[index] == label)
                return (int32)index;
        }
        return -1;
    }
};

} // namespace

TEST_F(DirectoryMenuTest, EmptyFolderShowsExactlyOneDisabledEmptyFolderItem) {
    FileMenuItem* item = MakeHierarchy(fHome.MakeFolder("empty"));
    DirectoryMenu* menu = Open(item);
    EXPECT_EQ(Labels({"Empty Folder (disabled)"}), menu_labels(menu));
}

TEST_F(DirectoryMenuTest, FolderEntriesBecomeFileMenuItemsWithFoldersAsSubmenus) {
    std::string folder = fHome.MakeFolder("top");
    fHome.WriteFile("top/note.txt", "x");
    fHome.MakeFolder("top/inner");
    DirectoryMenu* menu = Open(MakeHierarchy(folder));
    MenuLock lock(menu);
    ASSERT_TRUE(lock.IsLocked());
    ASSERT_EQ(2, menu->CountItems());
    for (int32 index = 0; index < 2; index++) {
        FileMenuItem* entry = dynamic_cast<FileMenuItem*>(menu->ItemAt(index));
        ASSERT_NE(nullptr, entry);
        if (std::string(entry->Label()) == "inner")
            EXPECT_NE(nullptr, dynamic_cast<DirectoryMenu*>(entry->Submenu()));
        else
            EXPECT_EQ(nullptr, entry->Submenu());
    }
}

TEST_F(DirectoryMenuTest, ReopenedTopLevelMenuShowsAFileAddedToTheFolder) {
    std::string folder = fHome.MakeFolder("top");
    fHome.WriteFile("top/first.txt", "x");
    FileMenuItem* item = MakeHierarchy(folder);
    DirectoryMenu* menu = Open(item);
    EXPECT_EQ(Labels({"first.txt"}), menu_labels(menu));
    CloseMenus();

    fHome.WriteFile("top/second.txt", "x");
    Open(item);
    Labels labels = menu_labels(menu);
    std::sort(labels.begin(), labels.end());
    EXPECT_EQ(Labels({"first.txt", "second.txt"}), labels);
}

TEST_F(DirectoryMenuTest, OpenedSubmenuKeepsItsItemsUntilItsParentIsOpenedAgain) {
    std::string folder = fHome.MakeFolder("top");
    fHome.WriteFile("top/inner/first.txt", "x");
    fHome.WriteFile("top/sibling.txt", "x");
    FileMenuItem* item = MakeHierarchy(folder);
    DirectoryMenu* menu = Open(item);
    int32 inner = IndexOf(menu, "inner");
    int32 sibling = IndexOf(menu, "sibling.txt");
    ASSERT_GE(inner, 0);
    ASSERT_GE(sibling, 0);
    DirectoryMenu* submenu = Cascade(menu, inner);
    ASSERT_NE(nullptr, submenu);
    EXPECT_EQ(Labels({"first.txt"}), menu_labels(submenu));

    // Away and back again while the parent stays open: the submenu opens a
    // second time, as it was.
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(center_of(item_screen_frame(menu, sibling))));
    ASSERT_TRUE(wait_for_menu_count(1));
    fHome.WriteFile("top/inner/second.txt", "x");
    ASSERT_EQ(submenu, Cascade(menu, inner));
    EXPECT_EQ(Labels({"first.txt"}), menu_labels(submenu));
    CloseMenus();

    // The parent, filled again, has a new submenu that reads the folder.
    menu = Open(item);
    inner = IndexOf(menu, "inner");
    ASSERT_GE(inner, 0);
    submenu = Cascade(menu, inner);
    ASSERT_NE(nullptr, submenu);
    Labels labels = menu_labels(submenu);
    std::sort(labels.begin(), labels.end());
    EXPECT_EQ(Labels({"first.txt", "second.txt"}), labels);
}

TEST_F(DirectoryMenuTest, LinkToAFolderUnfoldsLikeTheFolderItself) {
    std::string folder = fHome.MakeFolder("real");
    fHome.WriteFile("real/inside.txt", "x");
    std::string link = fHome.Path() + "/shortcut";
    std::filesystem::create_directory_symlink(folder, link);
    FileMenuItem* item = MakeHierarchy(link);
    EXPECT_STREQ("shortcut", item->Label());
    DirectoryMenu* menu = Open(item);
    EXPECT_EQ(Labels({"inside.txt"}), menu_labels(menu));
}

TEST_F(DirectoryMenuTest, ChosenEntrySendsTheTopMessageWithItsOwnRefAsEntries) {
    std::string folder = fHome.MakeFolder("top");
    std::string note = fHome.WriteFile("top/inner/note.txt", "x");
    FileMenuItem* item = MakeHierarchy(folder);
    DirectoryMenu* menu = Open(item);
    DirectoryMenu* submenu = Cascade(menu, IndexOf(menu, "inner"));
    ASSERT_NE(nullptr, submenu);
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(submenu, 0))));
    ASSERT_TRUE(wait_until([&] { return !fWindow->Messages().empty(); }));

    BMessage message = fWindow->Messages()[0];
    EXPECT_EQ((uint32)kOpen, message.what);
    entry_ref file;
    entry_ref entries;
    ASSERT_EQ(B_OK, message.FindRef("file", &file));
    ASSERT_EQ(B_OK, message.FindRef("entries", &entries));
    EXPECT_EQ(ref_for(folder), file);
    EXPECT_EQ(ref_for(note), entries);
    EXPECT_FALSE(message.HasRef("entries", 1));
}

TEST_F(DirectoryMenuTest, FolderThatCannotBeReadShowsInternalErrorOccurred) {
    std::string folder = fHome.MakeFolder("going");
    FileMenuItem* item = MakeHierarchy(folder);
    std::filesystem::remove(folder);
    DirectoryMenu* menu = Open(item);
    EXPECT_EQ(Labels({"Internal Error Occurred (disabled)"}), menu_labels(menu));
}

TEST_F(DirectoryMenuTest, StartHierarchyOfAFileGivesAPlainItemWithEntriesSet) {
    std::string path = fHome.WriteFile("plain.txt", "x");
    entry_ref ref = ref_for(path);
    BMessage message(kOpen);
    FileMenuItem* item = DirectoryMenu::StartHierarchy(&ref, &message);
    ASSERT_NE(nullptr, item);
    EXPECT_EQ(nullptr, item->Submenu());
    EXPECT_STREQ("plain.txt", item->Label());
    ASSERT_NE(nullptr, item->Message());
    entry_ref entries;
    ASSERT_EQ(B_OK, item->Message()->FindRef("entries", &entries));
    EXPECT_EQ(ref, entries);
    // The message given is copied, not taken.
    EXPECT_FALSE(message.HasRef("entries"));
    delete item;
}

TEST_F(DirectoryMenuTest, StartHierarchyReplacesTheFirstEntriesRef) {
    std::string path = fHome.WriteFile("plain.txt", "x");
    std::string other = fHome.WriteFile("other.txt", "x");
    entry_ref ref = ref_for(path);
    entry_ref otherRef = ref_for(other);
    BMessage message(kOpen);
    message.AddRef("entries", &otherRef);
    FileMenuItem* item = DirectoryMenu::StartHierarchy(&ref, &message);
    ASSERT_NE(nullptr, item);
    entry_ref entries;
    ASSERT_EQ(B_OK, item->Message()->FindRef("entries", &entries));
    EXPECT_EQ(ref, entries);
    EXPECT_FALSE(item->Message()->HasRef("entries", 1));
    delete item;
}

TEST_F(DirectoryMenuTest, StartHierarchyOfAPathMakesTheItemFromThePath) {
    std::string folder = fHome.MakeFolder("by-path");
    FileMenuItem* item = DirectoryMenu::StartHierarchy(folder.c_str(), NULL);
    ASSERT_NE(nullptr, item);
    EXPECT_STREQ(folder.c_str(), item->Path());
    EXPECT_NE(nullptr, dynamic_cast<DirectoryMenu*>(item->Submenu()));
    EXPECT_EQ(nullptr, item->Message());
    delete item;
}

TEST_F(DirectoryMenuTest, SetDirectoryWhileShownIsInterruptedAndKeepsTheFolder) {
    std::string folder = fHome.MakeFolder("shown");
    std::string other = fHome.MakeFolder("other");
    DirectoryMenu* menu = Open(MakeHierarchy(folder));
    BDirectory otherDirectory(other.c_str());
    {
        MenuLock lock(menu);
        ASSERT_TRUE(lock.IsLocked());
        EXPECT_EQ(B_INTERRUPTED, menu->SetDirectory(&otherDirectory));
    }
    BDirectory current;
    ASSERT_EQ(B_OK, menu->GetDirectory(&current));
    BEntry entry;
    ASSERT_EQ(B_OK, current.GetEntry(&entry));
    entry_ref ref;
    ASSERT_EQ(B_OK, entry.GetRef(&ref));
    EXPECT_EQ(ref_for(folder), ref);
}

TEST_F(DirectoryMenuTest, SetDirectoryToAMissingFolderIsNotFound) {
    std::string folder = fHome.MakeFolder("here");
    BDirectory directory(folder.c_str());
    DirectoryMenu menu(&directory, B_ITEMS_IN_COLUMN);
    std::filesystem::remove(folder);
    BDirectory gone(folder.c_str());
    EXPECT_EQ(B_ENTRY_NOT_FOUND, menu.SetDirectory(&gone));
}

TEST_F(DirectoryMenuTest, SetDirectoryWhileHiddenListsTheNewFolderOnTheNextOpening) {
    std::string folder = fHome.MakeFolder("before");
    std::string other = fHome.MakeFolder("after");
    fHome.WriteFile("after/moved-here.txt", "x");
    FileMenuItem* item = MakeHierarchy(folder);
    DirectoryMenu* menu = dynamic_cast<DirectoryMenu*>(item->Submenu());
    ASSERT_NE(nullptr, menu);
    BDirectory otherDirectory(other.c_str());
    EXPECT_EQ(B_OK, menu->SetDirectory(&otherDirectory));
    Open(item);
    EXPECT_EQ(Labels({"moved-here.txt"}), menu_labels(menu));
}

TEST_F(DirectoryMenuTest, FillingAddsExactlyOneEntryPerStep) {
    std::string folder = fHome.MakeFolder("three");
    for (const char* name : {"a", "b", "c"})
        fHome.WriteFile(std::string("three/") + name, "x");
    BDirectory directory(folder.c_str());
    DirectoryMenu menu(&directory, B_ITEMS_IN_COLUMN);
    ASSERT_TRUE(menu.AddDynamicItem(BMenu::B_INITIAL_ADD));
    EXPECT_EQ(0, menu.CountItems());
    for (int32 step = 1; step <= 3; step++) {
        EXPECT_TRUE(menu.AddDynamicItem(BMenu::B_PROCESSING));
        EXPECT_EQ(step, menu.CountItems());
    }
    EXPECT_FALSE(menu.AddDynamicItem(BMenu::B_PROCESSING));
    EXPECT_EQ(3, menu.CountItems());
}

TEST_F(DirectoryMenuTest, KeptSubmenuClosedWhileFillingGoesOnWhereItStopped) {
    std::string folder = fHome.MakeFolder("top");
    for (const char* name : {"a", "b", "c"})
        fHome.WriteFile(std::string("top/inner/") + name, "x");
    BDirectory directory(folder.c_str());
    DirectoryMenu top(&directory, B_ITEMS_IN_COLUMN);
    ASSERT_TRUE(top.AddDynamicItem(BMenu::B_INITIAL_ADD));
    while (top.AddDynamicItem(BMenu::B_PROCESSING)) {
    }
    ASSERT_EQ(1, top.CountItems());
    DirectoryMenu* inner = dynamic_cast<DirectoryMenu*>(top.ItemAt(0)->Submenu());
    ASSERT_NE(nullptr, inner);

    ASSERT_TRUE(inner->AddDynamicItem(BMenu::B_INITIAL_ADD));
    ASSERT_TRUE(inner->AddDynamicItem(BMenu::B_PROCESSING));
    EXPECT_FALSE(inner->AddDynamicItem(BMenu::B_ABORT));
    EXPECT_EQ(1, inner->CountItems());

    // Opened again: the entry read before stays, the reading goes on.
    ASSERT_TRUE(inner->AddDynamicItem(BMenu::B_INITIAL_ADD));
    EXPECT_EQ(1, inner->CountItems());
    while (inner->AddDynamicItem(BMenu::B_PROCESSING)) {
    }
    EXPECT_EQ(3, inner->CountItems());

    // Complete now, it is kept as it is.
    EXPECT_FALSE(inner->AddDynamicItem(BMenu::B_INITIAL_ADD));
    EXPECT_EQ(3, inner->CountItems());
}
