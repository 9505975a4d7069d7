#include "FileHelpers.h"

#include <AppFileInfo.h>
#include <Entry.h>
#include <File.h>
#include <Message.h>
#include <Node.h>

#include <gtest/gtest.h>

#include "RecordingApps.h"
#include "TestHome.h"

#include <filesystem>
#include <string>
#include <vector>

#include <string.h>
#include <sys/stat.h>

using testing_support::RecordingApps;
using testing_support::TestHome;

namespace {

entry_ref ref_for(const std::string& path) {
    entry_ref ref;
    EXPECT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK) << path;
    return ref;
}

std::string signature_of(const std::string& path) {
    BFile file(path.c_str(), B_READ_ONLY);
    BAppFileInfo info(&file);
    char signature[B_MIME_TYPE_LENGTH] = "";
    info.GetSignature(signature);
    return signature;
}

void set_type(const std::string& path, const char* type) {
    BNode node(path.c_str());
    ASSERT_GE(node.WriteAttr("BEOS:TYPE", B_MIME_STRING_TYPE, 0, type, strlen(type) + 1), 0);
}

struct Record {
    std::string name;
    std::string signature;
    int32 kind;
};

std::vector<Record> records_of(const BMessage& message) {
    std::vector<Record> records;
    const void* data;
    ssize_t size;
    for (int32 index = 0;
         message.FindData("supporting_apps", B_OBJECT_TYPE, index, &data, &size) == B_OK; index++) {
        EXPECT_EQ(size, (ssize_t)sizeof(supporting_app));
        const supporting_app* app = static_cast<const supporting_app*>(data);
        records.push_back({app->ref.name != NULL ? app->ref.name : "", app->signature, app->kind});
    }
    return records;
}

} // namespace

TEST(FileHelpersTest, FolderWithoutTypeFallsBackOnlyWhenModeIsAsked) {
    TestHome home;
    std::string folder = home.MakeFolder("folder");
    entry_ref ref = ref_for(folder);
    char type[B_MIME_TYPE_LENGTH] = "";
    uint32 mode = 0;
    ASSERT_EQ(get_type(&ref, type, &mode, true), B_OK);
    EXPECT_STREQ(type, "application/x-vnd.Be-directory");
    EXPECT_TRUE(S_ISDIR(mode));

    EXPECT_NE(get_type(&ref, type, NULL, true), B_OK);
}

TEST(FileHelpersTest, BrokenLinkNotFollowedIsASymlink) {
    TestHome home;
    std::string link = home.Path() + "/dangling";
    std::filesystem::create_symlink(home.Path() + "/nowhere", link);
    char type[B_MIME_TYPE_LENGTH] = "";
    uint32 mode = 0;
    ASSERT_EQ(get_type(link.c_str(), type, &mode, false), B_OK);
    EXPECT_STREQ(type, "application/x-vnd.Be-symlink");
    EXPECT_TRUE(S_ISLNK(mode));
}

TEST(FileHelpersTest, BrokenLinkFollowedIsNotFound) {
    TestHome home;
    std::string link = home.Path() + "/dangling";
    std::filesystem::create_symlink(home.Path() + "/nowhere", link);
    char type[B_MIME_TYPE_LENGTH] = "";
    uint32 mode = 0;
    EXPECT_EQ(get_type(link.c_str(), type, &mode, true), B_ENTRY_NOT_FOUND);
}

TEST(FileHelpersTest, TypeAttributeIsTheType) {
    TestHome home;
    std::string file = home.WriteFile("notes", "some text");
    set_type(file, "text/x-glimrow-test");
    char type[B_MIME_TYPE_LENGTH] = "";
    uint32 mode = 0;
    ASSERT_EQ(get_type(file.c_str(), type, &mode, true), B_OK);
    EXPECT_STREQ(type, "text/x-glimrow-test");
    EXPECT_TRUE(S_ISREG(mode));
    ASSERT_EQ(get_type(file.c_str(), type, NULL, true), B_OK);
    EXPECT_STREQ(type, "text/x-glimrow-test");
}

TEST(FileHelpersTest, MissingEntryIsNotFound) {
    TestHome home;
    char type[B_MIME_TYPE_LENGTH];
    uint32 mode;
    EXPECT_EQ(get_type((home.Path() + "/missing").c_str(), type, &mode, false), B_ENTRY_NOT_FOUND);
    entry_ref ref = ref_for(home.Path() + "/missing");
    EXPECT_EQ(get_type(&ref, type, NULL, false), B_ENTRY_NOT_FOUND);
}

TEST(FileHelpersTest, SignatureOfAFolderIsTheFileManager) {
    TestHome home;
    RecordingApps apps(home);
    // Another application claims folders; the answer is still the file manager.
    apps.Add("org.example.Folders", "inode/directory;");
    apps.SetDefault("inode/directory", "org.example.Folders");
    entry_ref ref = ref_for(home.MakeFolder("folder"));
    char signature[B_MIME_TYPE_LENGTH] = "";
    bool isApplication = true;
    ASSERT_EQ(get_signature(&ref, signature, &isApplication), B_OK);
    EXPECT_STREQ(signature, "application/x-vnd.Be-TRAK");
    EXPECT_FALSE(isApplication);
}

TEST(FileHelpersTest, SignatureOfAnApplicationIsItsOwn) {
    TestHome home;
    RecordingApps apps(home);
    std::string desktop = apps.Add("org.example.Editor", "text/plain;");
    entry_ref ref = ref_for(desktop);
    char signature[B_MIME_TYPE_LENGTH] = "";
    bool isApplication = false;
    ASSERT_EQ(get_signature(&ref, signature, &isApplication), B_OK);
    EXPECT_TRUE(isApplication);
    EXPECT_EQ(std::string(signature), signature_of(desktop));
    EXPECT_NE(signature[0], '\0');
}

TEST(FileHelpersTest, SignatureOfADocumentIsItsPreferredApplication) {
    TestHome home;
    RecordingApps apps(home);
    std::string desktop = apps.Add("org.example.Editor", "text/plain;");
    apps.SetDefault("text/plain", "org.example.Editor");
    std::string document = home.WriteFile("notes.txt", "hello\n");
    entry_ref ref = ref_for(document);
    char signature[B_MIME_TYPE_LENGTH] = "";
    bool isApplication = true;
    ASSERT_EQ(get_signature(&ref, signature, &isApplication), B_OK);
    EXPECT_FALSE(isApplication);
    EXPECT_EQ(std::string(signature), signature_of(desktop));
}

TEST(FileHelpersTest, SignatureOfAMissingFileIsNotFound) {
    TestHome home;
    entry_ref ref = ref_for(home.Path() + "/vanished.txt");
    char signature[B_MIME_TYPE_LENGTH];
    EXPECT_EQ(get_signature(&ref, signature, NULL), B_ENTRY_NOT_FOUND);
}

TEST(FileHelpersTest, PathOfAnEntryThatNeedNotExist) {
    TestHome home;
    entry_ref ref = ref_for(home.Path() + "/not-yet");
    char path[B_PATH_NAME_LENGTH];
    ASSERT_EQ(get_path(&ref, path, false), B_OK);
    EXPECT_EQ(std::string(path), home.Path() + "/not-yet");
}

TEST(FileHelpersTest, PathFollowsALinkWhenAsked) {
    TestHome home;
    std::string target = home.WriteFile("target", "x");
    std::filesystem::create_symlink(target, home.Path() + "/link");
    entry_ref ref = ref_for(home.Path() + "/link");
    char path[B_PATH_NAME_LENGTH];
    ASSERT_EQ(get_path(&ref, path, false), B_OK);
    EXPECT_EQ(std::string(path), home.Path() + "/link");
    ASSERT_EQ(get_path(&ref, path, true), B_OK);
    EXPECT_EQ(std::string(path), target);
}

TEST(FileHelpersTest, RefNameIsTheLeaf) {
    EXPECT_STREQ(ref_name("/boot/home/Desktop"), "Desktop");
    EXPECT_STREQ(ref_name("/boot"), "boot");
}

TEST(FileHelpersTest, RefNameOfABareNameIsTheWholeName) {
    const char* name = "Desktop";
    EXPECT_EQ(ref_name(name), name);
}

TEST(FileHelpersTest, RefNameOfAPathEndingInASlashIsEmpty) {
    EXPECT_STREQ(ref_name("/a/b/"), "");
}

TEST(FileHelpersTest, RelativePathComparesByCharacters) {
    TestHome home;
    home.MakeFolder("apps");
    entry_ref from = ref_for(home.Path() + "/apps/foo");
    entry_ref to = ref_for(home.Path() + "/apps/fob");
    char result[B_PATH_NAME_LENGTH];
    ASSERT_EQ(get_relative_path(&from, &to, result), B_OK);
    EXPECT_STREQ(result, "b");
}

TEST(FileHelpersTest, RelativePathFromAFolderAboveStartsWithASlash) {
    TestHome home;
    home.MakeFolder("a/b");
    entry_ref from = ref_for(home.Path() + "/a");
    entry_ref to = ref_for(home.Path() + "/a/b/c");
    char result[B_PATH_NAME_LENGTH];
    ASSERT_EQ(get_relative_path(&from, &to, result), B_OK);
    EXPECT_STREQ(result, "/b/c");
}

TEST(FileHelpersTest, RelativePathClimbsOncePerSlashLeft) {
    TestHome home;
    home.MakeFolder("x/a/b");
    home.MakeFolder("x/c");
    entry_ref from = ref_for(home.Path() + "/x/a/b/f");
    entry_ref to = ref_for(home.Path() + "/x/c/d");
    char result[B_PATH_NAME_LENGTH];
    ASSERT_EQ(get_relative_path(&from, &to, result), B_OK);
    EXPECT_STREQ(result, "../../c/d");
}

TEST(FileHelpersTest, RelativePathBetweenEqualPathsIsEmpty) {
    TestHome home;
    entry_ref ref = ref_for(home.Path() + "/same");
    char result[B_PATH_NAME_LENGTH] = "x";
    EXPECT_EQ(get_relative_path(&ref, &ref, result), B_OK);
    EXPECT_STREQ(result, "");
}

TEST(FileHelpersTest, ApplicationFileListsItselfFirstAndOnce) {
    TestHome home;
    RecordingApps apps(home);
    std::string desktop = apps.Add("org.example.Self", "application/x-desktop;text/plain;");
    apps.Add("org.example.Other", "application/x-desktop;");
    entry_ref ref = ref_for(desktop);

    BMessage message;
    ASSERT_EQ(find_supporting_apps(&ref, &message), B_OK);
    std::vector<Record> records = records_of(message);
    ASSERT_FALSE(records.empty());
    EXPECT_EQ(records[0].kind, 1);
    EXPECT_EQ(records[0].signature, signature_of(desktop));
    EXPECT_EQ(records[0].name, "org.example.Self.desktop");
    for (size_t index = 1; index < records.size(); index++)
        EXPECT_NE(records[index].signature, records[0].signature);
    bool otherListed = false;
    for (const Record& record : records)
        otherListed |= record.name == "org.example.Other.desktop";
    EXPECT_TRUE(otherListed);
    const char* leftover;
    EXPECT_EQ(message.FindString("applications", &leftover), B_NAME_NOT_FOUND);
}

TEST(FileHelpersTest, SupportingAppsComePreferredThenByKind) {
    TestHome home;
    RecordingApps apps(home);
    std::string editor = apps.Add("org.example.Editor", "text/plain;");
    std::string viewer = apps.Add("org.example.Viewer", "text/plain;");
    apps.SetDefault("text/plain", "org.example.Editor");
    std::string document = home.WriteFile("notes.txt", "hello\n");
    entry_ref ref = ref_for(document);

    BMessage message;
    ASSERT_EQ(find_supporting_apps(&ref, &message), B_OK);
    std::vector<Record> records = records_of(message);
    ASSERT_GE(records.size(), 2u);
    EXPECT_EQ(records[0].kind, 1);
    EXPECT_EQ(records[0].signature, signature_of(editor));
    int32 viewerKind = 0;
    for (size_t index = 1; index < records.size(); index++) {
        EXPECT_GE(records[index].kind, records[index - 1].kind);
        EXPECT_NE(records[index].signature, records[0].signature);
        if (records[index].signature == signature_of(viewer))
            viewerKind = records[index].kind;
    }
    EXPECT_TRUE(viewerKind == 2 || viewerKind == 3) << viewerKind;
}

TEST(FileHelpersTest, SupportingAppsOfAMissingFileFailWithoutRecords) {
    TestHome home;
    RecordingApps apps(home);
    entry_ref ref = ref_for(home.Path() + "/vanished.txt");
    BMessage message;
    EXPECT_EQ(find_supporting_apps(&ref, &message), B_ENTRY_NOT_FOUND);
    EXPECT_TRUE(records_of(message).empty());
}

TEST(FileHelpersTest, SupportingAppRecordsSurviveTheMessageBeingCopied) {
    TestHome home;
    RecordingApps apps(home);
    std::string desktop = apps.Add("org.example.Self", "application/x-desktop;");
    entry_ref ref = ref_for(desktop);
    BMessage* message = new BMessage;
    ASSERT_EQ(find_supporting_apps(&ref, message), B_OK);
    BMessage copy(*message);
    delete message;
    std::vector<Record> records = records_of(copy);
    ASSERT_FALSE(records.empty());
    EXPECT_EQ(records[0].name, "org.example.Self.desktop");
}
