#include "LayerFile.h"

#include "Globals.h"
#include "Settings.h"

#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <Message.h>
#include <Node.h>

#include <gtest/gtest.h>

#include "TestHome.h"

#include <filesystem>
#include <string>
#include <vector>

#include <string.h>

using testing_support::read_file;
using testing_support::TestHome;

namespace {

class LayerFileTest : public testing::Test {
protected:
    void SetUp() override {
        char text[512] = "";
        ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
        fLayersPath = fHome.ConfigHome() + "/Glimrow/layers";
        ASSERT_EQ(fLayers.SetTo(fLayersPath.c_str()), B_OK);
    }

    status_t Save(const char* name, std::vector<const char*> paths, bool icon = false,
                  bool giveIcon = true) {
        BMessage request(0x6772000d);
        request.AddString("name", name);
        for (const char* path : paths)
            request.AddString("paths", path);
        if (giveIcon)
            request.AddBool("icon", icon);
        return write_layer_file(&fLayers, name, &request);
    }

    // A layer file made by hand with the given body and type attribute.
    std::string MakeLayer(const char* name, const std::string& body,
                          const std::string& type = std::string("text/plain", 11)) {
        std::string path = fHome.WriteFile(".config/Glimrow/layers/" + std::string(name), body);
        BNode node(path.c_str());
        node.WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, type.data(), type.size());
        return path;
    }

    std::vector<std::string> ReadLines(const char* name, status_t* status = NULL) {
        std::vector<std::string> lines;
        char* text = NULL;
        size_t length = 0;
        status_t result = read_layer_file(&fLayers, name, &text, &length);
        if (status != NULL)
            *status = result;
        if (result != B_OK)
            return lines;
        char* cursor = text;
        while (char* line = next_layer_line(&cursor, text + length))
            lines.push_back(line);
        delete[] text;
        return lines;
    }

    std::string TrashFiles() const { return fHome.DataHome() + "/Trash/files"; }

    TestHome fHome;
    std::string fLayersPath;
    BDirectory fLayers;
};

ssize_t attribute_size(const std::string& path, const char* name, type_code* type = NULL) {
    BNode node(path.c_str());
    attr_info info;
    if (node.GetAttrInfo(name, &info) != B_OK)
        return -1;
    if (type != NULL)
        *type = info.type;
    return (ssize_t)info.size;
}

} // namespace

TEST_F(LayerFileTest, SaveWritesEveryPathOnItsOwnLine) {
    ASSERT_EQ(Save("Work", {"/boot/home", "/boot/apps/a b", " #not a comment"}), B_OK);
    EXPECT_EQ(read_file(fLayersPath + "/Work"), "/boot/home\n/boot/apps/a b\n #not a comment\n");
}

TEST_F(LayerFileTest, NewLayerFileGetsTheTextTypeAndNoIconsUnlessAsked) {
    ASSERT_EQ(Save("Work", {"/a"}), B_OK);
    std::string path = fLayersPath + "/Work";
    type_code type;
    EXPECT_EQ(attribute_size(path, "BEOS:TYPE", &type), 11);
    EXPECT_EQ(type, (type_code)B_MIME_TYPE);
    EXPECT_EQ(attribute_size(path, "BEOS:M:STD_ICON"), -1);
    EXPECT_EQ(attribute_size(path, "BEOS:L:STD_ICON"), -1);
}

TEST_F(LayerFileTest, SaveWithoutIconFieldMakesNoIcons) {
    ASSERT_EQ(Save("Work", {"/a"}, true, false), B_OK);
    EXPECT_EQ(attribute_size(fLayersPath + "/Work", "BEOS:M:STD_ICON"), -1);
}

TEST_F(LayerFileTest, NewLayerFileAskedForIconsGetsBothAsColourBitmaps) {
    ASSERT_EQ(Save("Work", {"/a"}, true), B_OK);
    std::string path = fLayersPath + "/Work";
    type_code type;
    EXPECT_EQ(attribute_size(path, "BEOS:M:STD_ICON", &type), 256);
    EXPECT_EQ(type, (type_code)'CLRB');
    EXPECT_EQ(attribute_size(path, "BEOS:L:STD_ICON", &type), 1024);
    EXPECT_EQ(type, (type_code)'CLRB');

    BNode node(path.c_str());
    uint8 icon[1024];
    ASSERT_EQ(node.ReadAttr("BEOS:M:STD_ICON", 'CLRB', 0, icon, 256), 256);
    EXPECT_EQ(memcmp(icon, gr_mini_icon, 256), 0);
    ASSERT_EQ(node.ReadAttr("BEOS:L:STD_ICON", 'CLRB', 0, icon, 1024), 1024);
    EXPECT_EQ(memcmp(icon, gr_large_icon, 1024), 0);
}

TEST_F(LayerFileTest, ResavingNeverAddsIcons) {
    ASSERT_EQ(Save("Work", {"/a"}, false), B_OK);
    ASSERT_EQ(Save("Work", {"/a", "/b"}, true), B_OK);
    std::string path = fLayersPath + "/Work";
    EXPECT_EQ(attribute_size(path, "BEOS:M:STD_ICON"), -1);
    EXPECT_EQ(attribute_size(path, "BEOS:L:STD_ICON"), -1);
    EXPECT_EQ(read_file(path), "/a\n/b\n");
}

TEST_F(LayerFileTest, ResavingNeverChangesAttributes) {
    ASSERT_EQ(Save("Work", {"/a"}, true), B_OK);
    std::string path = fLayersPath + "/Work";
    uint8 blank[256];
    memset(blank, 7, sizeof(blank));
    BNode node(path.c_str());
    ASSERT_EQ(node.WriteAttr("BEOS:M:STD_ICON", 'CLRB', 0, blank, sizeof(blank)), 256);
    ASSERT_EQ(node.RemoveAttr("BEOS:TYPE"), B_OK);

    ASSERT_EQ(Save("Work", {"/b"}, true), B_OK);
    uint8 icon[256];
    ASSERT_EQ(node.ReadAttr("BEOS:M:STD_ICON", 'CLRB', 0, icon, sizeof(icon)), 256);
    EXPECT_EQ(memcmp(icon, blank, sizeof(blank)), 0);
    EXPECT_EQ(attribute_size(path, "BEOS:TYPE"), -1);
}

TEST_F(LayerFileTest, SavingNoPathsGivesAnEmptyFileThatKeepsItsAttributes) {
    ASSERT_EQ(Save("Work", {"/a", "/b"}, true), B_OK);
    ASSERT_EQ(Save("Work", {}), B_OK);
    std::string path = fLayersPath + "/Work";
    EXPECT_EQ(std::filesystem::file_size(path), 0u);
    EXPECT_EQ(attribute_size(path, "BEOS:TYPE"), 11);
    EXPECT_EQ(attribute_size(path, "BEOS:M:STD_ICON"), 256);
}

TEST_F(LayerFileTest, ShorterSaveLeavesNothingOfTheLongerOne) {
    ASSERT_EQ(Save("Work", {"/a/very/long/path/indeed", "/and/another/one"}), B_OK);
    ASSERT_EQ(Save("Work", {"/x"}), B_OK);
    EXPECT_EQ(read_file(fLayersPath + "/Work"), "/x\n");
}

TEST_F(LayerFileTest, TargetsAreSavedToTheTargetsFileWithoutAttributes) {
    std::filesystem::remove(fHome.ConfigHome() + "/Glimrow/targets");
    ASSERT_EQ(Save("", {"/boot/home/Desktop"}, true), B_OK);
    std::string path = fHome.ConfigHome() + "/Glimrow/targets";
    EXPECT_EQ(read_file(path), "/boot/home/Desktop\n");
    EXPECT_EQ(attribute_size(path, "BEOS:TYPE"), -1);
    EXPECT_EQ(attribute_size(path, "BEOS:M:STD_ICON"), -1);
    EXPECT_FALSE(std::filesystem::exists(fLayersPath + "/targets"));
}

TEST_F(LayerFileTest, NameThatWouldLeaveTheLayersFolderIsRefused) {
    EXPECT_EQ(Save("../settings", {"/a"}), B_BAD_VALUE);
    EXPECT_EQ(Save("..", {"/a"}), B_BAD_VALUE);
    EXPECT_FALSE(std::filesystem::exists(fHome.ConfigHome() + "/Glimrow/settings"));
}

TEST_F(LayerFileTest, SaveThroughAnUnsetFolderFails) {
    BDirectory unset;
    BMessage request(0x6772000d);
    request.AddString("paths", "/a");
    EXPECT_NE(write_layer_file(&unset, "Work", &request), B_OK);
}

TEST_F(LayerFileTest, ReadGivesTheLinesInOrder) {
    MakeLayer("Work", "/boot/home\n/boot/apps\n");
    status_t status;
    EXPECT_EQ(ReadLines("Work", &status), (std::vector<std::string>{"/boot/home", "/boot/apps"}));
    EXPECT_EQ(status, B_OK);
}

TEST_F(LayerFileTest, BodyWithoutFinalLineEndReadsTheSame) {
    MakeLayer("With", "/a\n/b\n");
    MakeLayer("Without", "/a\n/b");
    EXPECT_EQ(ReadLines("With"), ReadLines("Without"));
    EXPECT_EQ(ReadLines("Without").size(), 2u);
}

TEST_F(LayerFileTest, RunsOfLineEndsCountAsOne) {
    MakeLayer("Work", "a\n\n\nb\n");
    EXPECT_EQ(ReadLines("Work"), (std::vector<std::string>{"a", "b"}));
    MakeLayer("Leading", "\n\n\na\n");
    EXPECT_EQ(ReadLines("Leading"), (std::vector<std::string>{"a"}));
}

TEST_F(LayerFileTest, BlanksAndCarriageReturnsStayInTheLine) {
    MakeLayer("Work", " /a \r\n\t#b\n");
    EXPECT_EQ(ReadLines("Work"), (std::vector<std::string>{" /a \r", "\t#b"}));
}

TEST_F(LayerFileTest, EmptyBodyGivesNoLines) {
    MakeLayer("Work", "");
    status_t status;
    EXPECT_TRUE(ReadLines("Work", &status).empty());
    EXPECT_EQ(status, B_OK);
}

TEST_F(LayerFileTest, ReadFollowsALinkedLayer) {
    std::string target = fHome.WriteFile("elsewhere/real", "/linked\n");
    BNode node(target.c_str());
    node.WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
    std::filesystem::create_symlink(target, fLayersPath + "/Linked");
    EXPECT_EQ(ReadLines("Linked"), (std::vector<std::string>{"/linked"}));
}

TEST_F(LayerFileTest, TargetsFileIsReadForTheEmptyName) {
    fHome.WriteFile(".config/Glimrow/targets", "/t1\n/t2\n");
    EXPECT_EQ(ReadLines(""), (std::vector<std::string>{"/t1", "/t2"}));
}

TEST_F(LayerFileTest, TypeWithMoreBytesIsNotALayer) {
    MakeLayer("Work", "/a\n", std::string("text/plainer", 13));
    status_t status;
    EXPECT_TRUE(ReadLines("Work", &status).empty());
    EXPECT_EQ(status, B_BAD_VALUE);
}

TEST_F(LayerFileTest, TypeWithoutItsNulIsNotALayer) {
    MakeLayer("Work", "/a\n", "text/plain");
    status_t status;
    ReadLines("Work", &status);
    EXPECT_EQ(status, B_BAD_VALUE);
}

TEST_F(LayerFileTest, OtherTypeIsNotALayer) {
    MakeLayer("Work", "/a\n", std::string("text/html", 10));
    status_t status;
    ReadLines("Work", &status);
    EXPECT_EQ(status, B_BAD_VALUE);
}

TEST_F(LayerFileTest, FileWithoutTypeFailsToRead) {
    fHome.WriteFile(".config/Glimrow/layers/Work", "/a\n");
    status_t status;
    ReadLines("Work", &status);
    EXPECT_NE(status, B_OK);
}

TEST_F(LayerFileTest, MissingLayerFailsToRead) {
    status_t status;
    ReadLines("Nothing", &status);
    EXPECT_EQ(status, B_ENTRY_NOT_FOUND);
}

TEST_F(LayerFileTest, SavedLayerReadsBack) {
    ASSERT_EQ(Save("Work", {"/a", "# kept as a path by the saver", "/c"}), B_OK);
    EXPECT_EQ(ReadLines("Work"),
              (std::vector<std::string>{"/a", "# kept as a path by the saver", "/c"}));
}

TEST_F(LayerFileTest, DeleteMovesTheFileToTheTrashUnderItsName) {
    ASSERT_EQ(Save("Work", {"/a"}), B_OK);
    ASSERT_EQ(delete_layer_file(&fLayers, "Work"), B_OK);
    EXPECT_FALSE(std::filesystem::exists(fLayersPath + "/Work"));
    EXPECT_EQ(read_file(TrashFiles() + "/Work"), "/a\n");
}

TEST_F(LayerFileTest, DeletedLayerCanBeRestoredFromItsTrashInfo) {
    ASSERT_EQ(Save("Work", {"/a"}), B_OK);
    ASSERT_EQ(delete_layer_file(&fLayers, "Work"), B_OK);
    std::string info = read_file(fHome.DataHome() + "/Trash/info/Work.trashinfo");
    EXPECT_EQ(info.rfind("[Trash Info]\n", 0), 0u) << info;
    EXPECT_NE(info.find("Path=" + fLayersPath + "/Work\n"), std::string::npos) << info;
    EXPECT_NE(info.find("DeletionDate="), std::string::npos) << info;
}

TEST_F(LayerFileTest, DeleteTakesTheNextFreeNameInTheTrash) {
    fHome.WriteFile(".local/share/Trash/files/Work", "old\n");
    fHome.WriteFile(".local/share/Trash/files/Work 1", "older\n");
    ASSERT_EQ(Save("Work", {"/new"}), B_OK);
    ASSERT_EQ(delete_layer_file(&fLayers, "Work"), B_OK);
    EXPECT_EQ(read_file(TrashFiles() + "/Work"), "old\n");
    EXPECT_EQ(read_file(TrashFiles() + "/Work 1"), "older\n");
    EXPECT_EQ(read_file(TrashFiles() + "/Work 2"), "/new\n");
    EXPECT_FALSE(std::filesystem::exists(fLayersPath + "/Work"));
}

TEST_F(LayerFileTest, DeleteRemovesTheFileWhenThereIsNoTrash) {
    // A file where the Trash folder should be: nothing can be moved there.
    fHome.WriteFile(".local/share/Trash", "in the way");
    ASSERT_EQ(Save("Work", {"/a"}), B_OK);
    EXPECT_EQ(delete_layer_file(&fLayers, "Work"), B_OK);
    EXPECT_FALSE(std::filesystem::exists(fLayersPath + "/Work"));
}

TEST_F(LayerFileTest, DeleteDoesNotFollowALink) {
    std::string target = fHome.WriteFile("elsewhere/real", "/linked\n");
    std::filesystem::create_symlink(target, fLayersPath + "/Linked");
    ASSERT_EQ(delete_layer_file(&fLayers, "Linked"), B_OK);
    EXPECT_TRUE(std::filesystem::exists(target));
    EXPECT_TRUE(std::filesystem::is_symlink(TrashFiles() + "/Linked"));
}

TEST_F(LayerFileTest, DeleteOfAMissingLayerFails) {
    EXPECT_EQ(delete_layer_file(&fLayers, "Nothing"), B_ENTRY_NOT_FOUND);
}

TEST_F(LayerFileTest, PathDeeperInTheLayersFolderCountsAsALayerFile) {
    std::string deeper = fHome.WriteFile(".config/Glimrow/layers/sub/Deep", "/a\n");
    BNode(deeper.c_str()).WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
    EXPECT_TRUE(is_layer_file(deeper.c_str()));
}

TEST_F(LayerFileTest, LayersFolderItselfIsNoLayerFile) {
    EXPECT_FALSE(is_layer_file(fLayersPath.c_str()));
}

TEST_F(LayerFileTest, LayerFilePathIsALayerFile) {
    std::string path = MakeLayer("Work", "/a\n");
    EXPECT_TRUE(is_layer_file(path.c_str()));
}

TEST_F(LayerFileTest, TextFileOutsideTheLayersFolderIsNoLayerFile) {
    std::string path = fHome.WriteFile("Documents/Work", "/a\n");
    BNode(path.c_str()).WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
    EXPECT_FALSE(is_layer_file(path.c_str()));
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK);
    EXPECT_FALSE(is_layer_file(&ref));
}

TEST_F(LayerFileTest, OtherTypeInTheLayersFolderIsNoLayerFile) {
    std::string path = MakeLayer("Picture", "x", std::string("image/png", 10));
    EXPECT_FALSE(is_layer_file(path.c_str()));
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK);
    EXPECT_FALSE(is_layer_file(&ref));
}

TEST_F(LayerFileTest, RefDirectlyInTheLayersFolderIsALayerFile) {
    std::string path = MakeLayer("Work", "/a\n");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK);
    EXPECT_TRUE(is_layer_file(&ref));
}

TEST_F(LayerFileTest, RefDeeperInTheLayersFolderIsNoLayerFile) {
    std::string deeper = fHome.WriteFile(".config/Glimrow/layers/sub/Deep", "/a\n");
    BNode(deeper.c_str()).WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(deeper.c_str(), &ref), B_OK);
    EXPECT_FALSE(is_layer_file(&ref));
}

TEST_F(LayerFileTest, NullArgumentsAreRefused) {
    EXPECT_FALSE(is_layer_file((const char*)NULL));
    EXPECT_FALSE(is_layer_file((const entry_ref*)NULL));
    EXPECT_EQ(write_layer_attr(NULL, true), B_BAD_VALUE);
    EXPECT_EQ(delete_layer_file(&fLayers, NULL), B_BAD_VALUE);
}
