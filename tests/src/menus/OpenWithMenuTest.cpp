// The "Open With" menu: the applications that can open a file, grouped with
// separators, "No Apps", the message a chosen application sends, and a file
// that cannot change while the menu is shown. The applications are test
// desktop entries in a private data folder.
#include "OpenWithMenu.h"

#include "Commands.h"
#include "FileHelpers.h"
#include "FileMenuItem.h"

#include <AppFileInfo.h>
#include <File.h>

#include <gtest/gtest.h>

#include "FileMenusTestSupport.h"
#include "RecordingApps.h"

#include <string>
#include <vector>

using namespace file_menus_testing;
using testing_support::RecordingApps;
using testing_support::wait_until;

namespace {

typedef std::vector<std::string> Labels;

struct Record {
    std::string name;
    std::string signature;
    int32 kind;
};

std::vector<Record> records_for(const entry_ref& ref) {
    BMessage message;
    EXPECT_EQ(B_OK, find_supporting_apps(&ref, &message));
    std::vector<Record> records;
    const void* data;
    ssize_t size;
    for (int32 index = 0;
         message.FindData("supporting_apps", B_OBJECT_TYPE, index, &data, &size) == B_OK; index++) {
        const supporting_app* app = static_cast<const supporting_app*>(data);
        records.push_back({app->ref.name != NULL ? app->ref.name : "", app->signature, app->kind});
    }
    return records;
}

std::string signature_of(const std::string& desktopFile) {
    BFile file(desktopFile.c_str(), B_READ_ONLY);
    BAppFileInfo info(&file);
    char signature[B_MIME_TYPE_LENGTH] = "";
    EXPECT_EQ(B_OK, info.GetSignature(signature));
    return signature;
}

class OpenWithMenuTest : public FileMenusTest {
protected:
    // The menu for path on the bar, with the message the layer menu gives it.
    OpenWithMenu* MakeMenu(const std::string& path) {
        entry_ref ref = ref_for(path);
        BMessage* message = new BMessage(kOpenWith);
        message->AddRef("file", &ref);
        OpenWithMenu* menu = new OpenWithMenu(&ref, message, B_ITEMS_IN_ROW);
        MakeWindow({new BMenuItem(menu)});
        return menu;
    }

    void Open(OpenWithMenu* menu) {
        OpenItem(0);
        ASSERT_TRUE(wait_until_shown(menu));
        WaitForIdle();
    }

    RecordingApps fApps{fHome};
};

} // namespace

TEST_F(OpenWithMenuTest, FileThatNoApplicationSupportsShowsOneDisabledNoApps) {
    std::string path = fHome.WriteFile("data.bin", std::string("\x01\x02\x03\x00\xff", 5));
    ASSERT_TRUE(records_for(ref_for(path)).empty());
    OpenWithMenu* menu = MakeMenu(path);
    Open(menu);
    EXPECT_EQ(Labels({"No Apps (disabled)"}), menu_labels(menu));
}

TEST_F(OpenWithMenuTest, SeparatorStandsOnlyWhereTheGroupChanges) {
    fApps.Add("org.example.Alpha", "text/plain;");
    fApps.Add("org.example.Beta", "text/plain;");
    fApps.Add("org.example.Gamma", "text/plain;");
    fApps.Add("org.example.Delta", "text/plain;");
    fApps.SetDefault("text/plain", "org.example.Alpha");
    std::string path = fHome.WriteFile("notes.txt", "hello\n");

    // The groups as the helper makes them: at least two applications in one
    // group followed by one in another.
    std::vector<Record> records = records_for(ref_for(path));
    bool twoThenAnother = false;
    for (size_t index = 2; index < records.size(); index++) {
        twoThenAnother |= records[index - 2].kind == records[index - 1].kind &&
                          records[index - 1].kind != records[index].kind;
    }
    ASSERT_TRUE(twoThenAnother);

    Labels expected;
    for (size_t index = 0; index < records.size(); index++) {
        if (index > 0 && records[index].kind != records[index - 1].kind)
            expected.push_back("---");
        expected.push_back(records[index].name);
    }
    OpenWithMenu* menu = MakeMenu(path);
    Open(menu);
    EXPECT_EQ(expected, menu_labels(menu));
}

TEST_F(OpenWithMenuTest, TwoItemsOfOneGroupThenOneOfAnotherHaveOneSeparatorBetween) {
    // The preferred application alone, then the supporters of the super type.
    fApps.Add("org.example.Preferred", "text/x-csrc;");
    fApps.Add("org.example.First", "text/plain;");
    fApps.Add("org.example.Second", "text/plain;");
    fApps.SetDefault("text/x-csrc", "org.example.Preferred");
    std::string path = fHome.WriteFile("program.c", "int main(void) { return 0; }\n");
    std::vector<Record> records = records_for(ref_for(path));
    ASSERT_EQ(3u, records.size());
    ASSERT_EQ(1, records[0].kind);
    ASSERT_EQ(records[1].kind, records[2].kind);
    ASSERT_NE(records[0].kind, records[1].kind);

    OpenWithMenu* menu = MakeMenu(path);
    Open(menu);
    EXPECT_EQ(Labels({"org.example.Preferred.desktop", "---", records[1].name, records[2].name}),
              menu_labels(menu));
}

TEST_F(OpenWithMenuTest, ChosenApplicationSendsItsSignatureAndTheFile) {
    std::string editor = fApps.Add("org.example.Editor", "text/plain;");
    fApps.SetDefault("text/plain", "org.example.Editor");
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    OpenWithMenu* menu = MakeMenu(path);
    Open(menu);
    ASSERT_EQ(Labels({"org.example.Editor.desktop"}), menu_labels(menu));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(center_of(item_screen_frame(menu, 0))));
    ASSERT_TRUE(wait_until([&] { return !fWindow->Messages().empty(); }));

    BMessage message = fWindow->Messages()[0];
    EXPECT_EQ((uint32)kOpenWith, message.what);
    EXPECT_EQ(signature_of(editor), message.GetString("applications", ""));
    EXPECT_FALSE(message.HasString("applications", 1));
    entry_ref file;
    ASSERT_EQ(B_OK, message.FindRef("file", &file));
    EXPECT_EQ(ref_for(path), file);
    entry_ref refs;
    ASSERT_EQ(B_OK, message.FindRef("refs", &refs));
    EXPECT_EQ(ref_for(editor), refs);
}

TEST_F(OpenWithMenuTest, SetEntryRefOnAShownMenuIsInterruptedAndKeepsTheOldFile) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    std::string other = fHome.WriteFile("other.txt", "hello\n");
    OpenWithMenu* menu = MakeMenu(path);
    Open(menu);
    entry_ref otherRef = ref_for(other);
    {
        MenuLock lock(menu);
        ASSERT_TRUE(lock.IsLocked());
        EXPECT_EQ(B_INTERRUPTED, menu->SetEntryRef(&otherRef));
        EXPECT_EQ(ref_for(path), *menu->EntryRef());
    }
}

TEST_F(OpenWithMenuTest, SetEntryRefWhileHiddenListsTheNewFilesApplications) {
    fApps.Add("org.example.Editor", "text/plain;");
    fApps.SetDefault("text/plain", "org.example.Editor");
    std::string blob = fHome.WriteFile("data.bin", std::string("\x01\x02\x03\x00\xff", 5));
    std::string notes = fHome.WriteFile("notes.txt", "hello\n");
    OpenWithMenu* menu = MakeMenu(blob);
    Open(menu);
    EXPECT_EQ(Labels({"No Apps (disabled)"}), menu_labels(menu));
    CloseMenus();

    entry_ref notesRef = ref_for(notes);
    EXPECT_EQ(B_OK, menu->SetEntryRef(&notesRef));
    EXPECT_EQ(notesRef, *menu->EntryRef());
    Open(menu);
    EXPECT_EQ(Labels({"org.example.Editor.desktop"}), menu_labels(menu));
}

TEST_F(OpenWithMenuTest, MenuIsTitledWithTheFileAndItsMessageNamesTheFile) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    entry_ref ref = ref_for(path);
    OpenWithMenu menu(&ref, new BMessage(kOpenWith), B_ITEMS_IN_ROW);
    EXPECT_STREQ("notes.txt", menu.Name());
    ASSERT_NE(nullptr, menu.Message());
    EXPECT_STREQ("", menu.Message()->GetString("applications", "none"));
    entry_ref refs;
    ASSERT_EQ(B_OK, menu.Message()->FindRef("refs", &refs));
    EXPECT_EQ(ref, refs);
}

TEST_F(OpenWithMenuTest, ApplicationsWithoutAMessageGetItemsWithoutOne) {
    fApps.Add("org.example.Editor", "text/plain;");
    fApps.SetDefault("text/plain", "org.example.Editor");
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    entry_ref ref = ref_for(path);
    OpenWithMenu* menu = new OpenWithMenu(&ref, NULL, B_ITEMS_IN_COLUMN);
    MakeWindow({new BMenuItem(menu)});
    Open(menu);
    MenuLock lock(menu);
    ASSERT_TRUE(lock.IsLocked());
    ASSERT_EQ(1, menu->CountItems());
    FileMenuItem* item = dynamic_cast<FileMenuItem*>(menu->ItemAt(0));
    ASSERT_NE(nullptr, item);
    EXPECT_EQ(nullptr, item->Message());
}
