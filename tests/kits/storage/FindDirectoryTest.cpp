#include <Directory.h>
#include <FindDirectory.h>
#include <Path.h>

#include "TestHome.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <string>

using testing_support::TestHome;

namespace {

std::string find(directory_which which, bool create = false) {
    BPath path;
    if (find_directory(which, &path, create) != B_OK)
        return "<error>";
    return path.Path();
}

bool is_folder(const std::string& path) {
    struct stat folder;
    return stat(path.c_str(), &folder) == 0 && S_ISDIR(folder.st_mode);
}

} // namespace

TEST(FindDirectory, SettingsAreTheXdgConfigHome) {
    TestHome home;
    EXPECT_EQ(find(B_USER_SETTINGS_DIRECTORY), home.ConfigHome());
}

TEST(FindDirectory, SettingsFallBackToDotConfig) {
    TestHome home;
    unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(find(B_USER_SETTINGS_DIRECTORY), home.Path() + "/.config");
}

TEST(FindDirectory, RelativeXdgVariableIsIgnored) {
    TestHome home;
    setenv("XDG_CONFIG_HOME", "relative/config", 1);
    EXPECT_EQ(find(B_USER_SETTINGS_DIRECTORY), home.Path() + "/.config");
}

TEST(FindDirectory, VolumeDoesNotMatter) {
    TestHome home;
    char first[B_PATH_NAME_LENGTH];
    char second[B_PATH_NAME_LENGTH];
    ASSERT_EQ(find_directory(B_USER_SETTINGS_DIRECTORY, 12345, false, first, sizeof(first)), B_OK);
    ASSERT_EQ(find_directory(B_USER_SETTINGS_DIRECTORY, (dev_t)-1, false, second, sizeof(second)),
              B_OK);
    EXPECT_STREQ(first, second);
    EXPECT_EQ(std::string(first), home.ConfigHome());
}

TEST(FindDirectory, UserDirectoryIsHome) {
    TestHome home;
    EXPECT_EQ(find(B_USER_DIRECTORY), home.Path());
}

TEST(FindDirectory, DesktopFromUserDirs) {
    TestHome home;
    home.WriteFile(".config/user-dirs.dirs", "# written by xdg-user-dirs-update\n"
                                             "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                                             "XDG_MUSIC_DIR=\"$HOME/Music\"\n");
    EXPECT_EQ(find(B_DESKTOP_DIRECTORY), home.Path() + "/Schreibtisch");
}

TEST(FindDirectory, DesktopLaterLineWins) {
    TestHome home;
    home.WriteFile(".config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/First\"\n"
                                             "XDG_DESKTOP_DIR=\"/absolute/Second/\"\n");
    EXPECT_EQ(find(B_DESKTOP_DIRECTORY), "/absolute/Second");
}

TEST(FindDirectory, DesktopDefaultsToHomeDesktop) {
    TestHome home;
    EXPECT_EQ(find(B_DESKTOP_DIRECTORY), home.Path() + "/Desktop");
}

TEST(FindDirectory, TrashIsCreatedWithItsInfoFolder) {
    TestHome home;
    std::string trash = find(B_TRASH_DIRECTORY);
    EXPECT_EQ(trash, home.DataHome() + "/Trash/files");
    EXPECT_TRUE(is_folder(trash));
    EXPECT_TRUE(is_folder(home.DataHome() + "/Trash/info"));
    struct stat root;
    ASSERT_EQ(stat((home.DataHome() + "/Trash").c_str(), &root), 0);
    EXPECT_EQ(root.st_mode & 0777, 0700u);
}

TEST(FindDirectory, TrashWithoutXdgDataHome) {
    TestHome home;
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(find(B_TRASH_DIRECTORY), home.Path() + "/.local/share/Trash/files");
}

TEST(FindDirectory, CreateItMakesTheFolder) {
    TestHome home;
    setenv("XDG_CONFIG_HOME", (home.Path() + "/not/yet").c_str(), 1);
    EXPECT_FALSE(is_folder(home.Path() + "/not/yet"));
    EXPECT_EQ(find(B_USER_SETTINGS_DIRECTORY, true), home.Path() + "/not/yet");
    EXPECT_TRUE(is_folder(home.Path() + "/not/yet"));
}

TEST(FindDirectory, WithoutCreateItTheFolderIsNotMade) {
    TestHome home;
    setenv("XDG_CONFIG_HOME", (home.Path() + "/not/yet").c_str(), 1);
    EXPECT_EQ(find(B_USER_SETTINGS_DIRECTORY, false), home.Path() + "/not/yet");
    EXPECT_FALSE(is_folder(home.Path() + "/not/yet"));
}

TEST(FindDirectory, ShortBufferIsBufferOverflow) {
    TestHome home;
    char buffer[4];
    EXPECT_EQ(find_directory(B_USER_DIRECTORY, -1, false, buffer, sizeof(buffer)),
              B_BUFFER_OVERFLOW);
    EXPECT_EQ(find_directory(B_USER_DIRECTORY, -1, false, nullptr, 10), B_BAD_VALUE);
}

TEST(FindDirectory, FolderWithoutALinuxMeaningIsBadValue) {
    TestHome home;
    BPath path;
    EXPECT_EQ(find_directory(B_USER_TRANSLATORS_DIRECTORY, &path), B_BAD_VALUE);
    EXPECT_EQ(find_directory((directory_which)987654, &path), B_BAD_VALUE);
}

TEST(FindDirectory, SystemFolders) {
    EXPECT_EQ(find(B_SYSTEM_DIRECTORY), "/usr");
    EXPECT_EQ(find(B_BEOS_DIRECTORY), "/usr");
    EXPECT_EQ(find(B_SYSTEM_BIN_DIRECTORY), "/usr/bin");
    EXPECT_EQ(find(B_SYSTEM_ETC_DIRECTORY), "/etc");
    EXPECT_EQ(find(B_SYSTEM_DATA_DIRECTORY), "/usr/share");
}

TEST(FindDirectory, UserDataAndCacheFollowXdg) {
    TestHome home;
    EXPECT_EQ(find(B_USER_DATA_DIRECTORY), home.DataHome());
    EXPECT_EQ(find(B_USER_CACHE_DIRECTORY), home.Path() + "/.cache");
    EXPECT_EQ(find(B_USER_APPS_DIRECTORY), home.DataHome() + "/applications");
}
