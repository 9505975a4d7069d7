#include "Settings.h"

#include "Globals.h"

#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <Message.h>
#include <Node.h>
#include <Path.h>

#include <gtest/gtest.h>

#include "FileCapabilities.h"
#include "TestHome.h"

#include <filesystem>
#include <string>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

using testing_support::TestHome;

namespace {

std::string program_folder(const TestHome& home) {
    return home.ConfigHome() + "/Glimrow";
}

std::string expected_failure(const char* what, status_t error) {
    return std::string("Glimrow Error: \n\tFailed to get ") + what + ".\n\t" + strerror(error);
}

std::string path_of(const entry_ref& ref) {
    BPath path(&ref);
    return path.InitCheck() == B_OK ? path.Path() : "";
}

} // namespace

TEST(SettingsFolderTest, CheckCreatesTheFolderLayersAndTargets) {
    TestHome home;
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;

    EXPECT_TRUE(std::filesystem::is_directory(program_folder(home)));
    EXPECT_TRUE(std::filesystem::is_directory(program_folder(home) + "/layers"));
    EXPECT_TRUE(std::filesystem::is_regular_file(program_folder(home) + "/targets"));
    EXPECT_EQ(std::filesystem::file_size(program_folder(home) + "/targets"), 0u);
    // The settings file itself appears only when settings are first written.
    EXPECT_FALSE(std::filesystem::exists(program_folder(home) + "/settings"));
}

TEST(SettingsFolderTest, TargetsFileGetsTheTextTypeAndNoIcons) {
    TestHome home;
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;

    BNode targets((program_folder(home) + "/targets").c_str());
    ASSERT_EQ(targets.InitCheck(), B_OK);
    attr_info info;
    ASSERT_EQ(targets.GetAttrInfo("BEOS:TYPE", &info), B_OK);
    EXPECT_EQ(info.type, (type_code)B_MIME_TYPE);
    EXPECT_EQ(info.size, 11);
    char type[16] = "";
    EXPECT_EQ(targets.ReadAttr("BEOS:TYPE", B_MIME_TYPE, 0, type, sizeof(type)), 11);
    EXPECT_EQ(memcmp(type, "text/plain", 11), 0);
    EXPECT_NE(targets.GetAttrInfo("BEOS:M:STD_ICON", &info), B_OK);
    EXPECT_NE(targets.GetAttrInfo("BEOS:L:STD_ICON", &info), B_OK);
}

TEST(SettingsFolderTest, ExistingTargetsFileIsOpenedWithoutBeingEmptied) {
    TestHome home;
    home.WriteFile(".config/Glimrow/targets", "/boot/home\n/boot/apps\n");
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
    EXPECT_EQ(testing_support::read_file(program_folder(home) + "/targets"),
              "/boot/home\n/boot/apps\n");
}

TEST(SettingsFolderTest, ProgramFolderAsSymbolicLinkIsFollowed) {
    TestHome home;
    std::string real = home.MakeFolder("elsewhere/GlimrowReal");
    std::filesystem::create_directories(home.ConfigHome());
    std::filesystem::create_directory_symlink(real, program_folder(home));

    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
    EXPECT_TRUE(std::filesystem::is_symlink(program_folder(home)));
    EXPECT_TRUE(std::filesystem::is_directory(real + "/layers"));
    EXPECT_TRUE(std::filesystem::is_regular_file(real + "/targets"));
}

TEST(SettingsFolderTest, LayersAsPlainFileFailsWithTheLayersText) {
    TestHome home;
    home.WriteFile(".config/Glimrow/layers", "not a folder");
    char text[512] = "";
    status_t status = check_settings_folders(text, sizeof(text));
    ASSERT_NE(status, B_OK);
    EXPECT_EQ(std::string(text), expected_failure("a Glimrow's Layers directory", status));
}

TEST(SettingsFolderTest, ProgramFolderAsPlainFileFailsWithTheFolderText) {
    TestHome home;
    home.WriteFile(".config/Glimrow", "not a folder");
    char text[512] = "";
    status_t status = check_settings_folders(text, sizeof(text));
    ASSERT_NE(status, B_OK);
    EXPECT_EQ(std::string(text), expected_failure("a Glimrow settings directory", status));
}

TEST(SettingsFolderTest, TargetsAsFolderFailsWithTheTargetsText) {
    TestHome home;
    home.MakeFolder(".config/Glimrow/targets");
    char text[512] = "";
    status_t status = check_settings_folders(text, sizeof(text));
    ASSERT_NE(status, B_OK);
    EXPECT_EQ(std::string(text), expected_failure("a targets file", status));
}

TEST(SettingsFolderTest, ReadOnlyConfigFolderFailsWithTheFolderText) {
    TestHome home;
    // The child runs without the capabilities that let root write anywhere.
    chmod(home.ConfigHome().c_str(), 0555);
    std::string expected = expected_failure("a Glimrow settings directory", B_PERMISSION_DENIED);
    EXPECT_EXIT(
        {
            if (!testing_support::drop_file_capabilities())
                _exit(3);
            char text[512] = "";
            status_t status = check_settings_folders(text, sizeof(text));
            fputs(text, stderr);
            fflush(stderr);
            _exit(status == B_PERMISSION_DENIED && expected == text ? 1 : 2);
        },
        testing::ExitedWithCode(1), "Failed to get a Glimrow settings directory");
    EXPECT_FALSE(std::filesystem::exists(program_folder(home)));
}

TEST(SettingsFolderTest, GetSettingsNamesTheFolderAndItsMembers) {
    TestHome home;
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;

    entry_ref ref;
    ASSERT_EQ(get_settings(gr_app_name, &ref), B_OK);
    EXPECT_EQ(path_of(ref), program_folder(home));
    ASSERT_EQ(get_settings(gr_layers_name, &ref), B_OK);
    EXPECT_EQ(path_of(ref), program_folder(home) + "/layers");
    // A member that does not exist yet still has a ref.
    ASSERT_EQ(get_settings(gr_shelf_name, &ref), B_OK);
    EXPECT_EQ(path_of(ref), program_folder(home) + "/shelf");
}

TEST(SettingsFolderTest, GetSettingsNodeNeedsTheSettingsFile) {
    TestHome home;
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;

    BNode node;
    EXPECT_NE(get_settings_node(&node), B_OK);
    home.WriteFile(".config/Glimrow/settings", "");
    EXPECT_EQ(get_settings_node(&node), B_OK);
    EXPECT_EQ(node.InitCheck(), B_OK);
}

TEST(SettingsFolderTest, SettingsFileIsTheFlattenedRecord) {
    TestHome home;
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;

    settings record;
    record.location = 0;
    record.shelfSize = 2;
    ASSERT_EQ(write_settings_file(&record), B_OK);

    BFile file((program_folder(home) + "/settings").c_str(), B_READ_ONLY);
    ASSERT_EQ(file.InitCheck(), B_OK);
    BMessage archive;
    ASSERT_EQ(archive.Unflatten(&file), B_OK);
    int32 value;
    ASSERT_EQ(archive.FindInt32("location", &value), B_OK);
    EXPECT_EQ(value, 0);
    ASSERT_EQ(archive.FindInt32("shelfSize", &value), B_OK);
    EXPECT_EQ(value, 2);

    settings read;
    ASSERT_EQ(read_settings_file(&read), B_OK);
    EXPECT_EQ(read.compare(&record, true), 0);
}

TEST(SettingsFolderTest, RewritingTheSettingsKeepsTheHotKeyAttribute) {
    TestHome home;
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
    settings record;
    ASSERT_EQ(write_settings_file(&record), B_OK);
    BNode node;
    ASSERT_EQ(get_settings_node(&node), B_OK);
    const uint8 keys[16] = {1, 2, 3};
    ASSERT_EQ(node.WriteAttr("hotKey", B_UINT8_TYPE, 0, keys, sizeof(keys)), 16);

    record.direction = 2;
    ASSERT_EQ(write_settings_file(&record), B_OK);
    uint8 read[16] = {};
    EXPECT_EQ(node.ReadAttr("hotKey", B_UINT8_TYPE, 0, read, sizeof(read)), 16);
    EXPECT_EQ(memcmp(read, keys, sizeof(keys)), 0);
    settings back;
    ASSERT_EQ(read_settings_file(&back), B_OK);
    EXPECT_EQ(back.direction, 2);
}

TEST(SettingsFolderTest, ReadingWithoutASettingsFileKeepsTheDefaults) {
    TestHome home;
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
    settings record;
    EXPECT_NE(read_settings_file(&record), B_OK);
    settings defaults;
    EXPECT_EQ(record.compare(&defaults, true), 0);
}

TEST(SettingsFolderTest, UnreadableSettingsFileKeepsTheDefaults) {
    TestHome home;
    home.WriteFile(".config/Glimrow/settings", "this is no flattened message");
    settings record;
    EXPECT_NE(read_settings_file(&record), B_OK);
    settings defaults;
    EXPECT_EQ(record.compare(&defaults, true), 0);
}

TEST(SettingsFolderTest, MissingUserSettingsDirectoryIsMade) {
    TestHome home;
    std::filesystem::remove_all(home.ConfigHome());
    char text[512] = "";
    ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
    EXPECT_TRUE(std::filesystem::is_directory(home.ConfigHome() + "/Glimrow/layers"));
}
