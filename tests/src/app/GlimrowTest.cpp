#include "Glimrow.h"

#include "Commands.h"
#include "Globals.h"
#include "Settings.h"

#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <Node.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <filesystem>
#include <string>

#include <stdlib.h>
#include <string.h>

using testing_support::TestHome;
using testing_support::wait_until;

namespace {

class GlimrowTest : public testing::Test {
protected:
    void SetUp() override { setenv("GLIMROW_DISPLAY", "headless", 1); }

    void TearDown() override {
        if (fApplication != NULL) {
            // Lets the loader go before the application.
            fApplication->QuitRequested();
            delete fApplication;
        }
        gr_slave = NULL;
    }

    Glimrow* Start() {
        fApplication = new Glimrow(false, false);
        return fApplication;
    }

    void WriteSettingsFile() {
        std::filesystem::create_directories(fHome.ConfigHome() + "/Glimrow");
        settings record;
        ASSERT_EQ(write_settings_file(&record), B_OK);
    }

    void WriteHotKey(const uint8* bytes, size_t size) {
        BNode node;
        ASSERT_EQ(get_settings_node(&node), B_OK);
        ASSERT_EQ(node.WriteAttr("hotKey", B_UINT8_TYPE, 0, bytes, size), (ssize_t)size);
    }

    TestHome fHome;
    Glimrow* fApplication = NULL;
};

} // namespace

TEST_F(GlimrowTest, StartCreatesTheSettingsFolders) {
    Start();
    std::string folder = fHome.ConfigHome() + "/Glimrow";
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_TRUE(std::filesystem::is_directory(folder + "/layers"));
    EXPECT_TRUE(std::filesystem::is_regular_file(folder + "/targets"));
    BNode targets((folder + "/targets").c_str());
    char type[16] = "";
    EXPECT_EQ(targets.ReadAttr("BEOS:TYPE", B_MIME_TYPE, 0, type, sizeof(type)), 11);
    EXPECT_STREQ(type, "text/plain");
}

TEST_F(GlimrowTest, StartRunsTheLoader) {
    Start();
    ASSERT_NE(gr_slave, nullptr);
    EXPECT_STREQ(gr_slave->Name(), "io_slave");
    BMessenger loader(NULL, gr_slave);
    EXPECT_TRUE(loader.IsValid());
}

TEST_F(GlimrowTest, QuitRequestAsksTheLoaderToQuitFirst) {
    Start();
    BMessenger loader(NULL, gr_slave);
    ASSERT_TRUE(loader.IsValid());
    EXPECT_TRUE(fApplication->QuitRequested());
    EXPECT_TRUE(wait_until([&] { return !loader.IsValid(); }));
    delete fApplication;
    fApplication = NULL;
}

TEST_F(GlimrowTest, WithoutSettingsFileTheHotKeyIsZeroed) {
    Start();
    const uint8* hotKey = fApplication->HotKey();
    ASSERT_NE(hotKey, nullptr);
    for (int32 index = 0; index < kHotKeyLength; index++)
        EXPECT_EQ(hotKey[index], 0) << index;
}

TEST_F(GlimrowTest, SettingsFileWithoutHotKeyMeansNoHotKey) {
    WriteSettingsFile();
    Start();
    EXPECT_EQ(fApplication->HotKey(), nullptr);
}

TEST_F(GlimrowTest, HotKeyIsReadFromTheSettingsFile) {
    WriteSettingsFile();
    uint8 keys[16];
    for (int index = 0; index < 16; index++)
        keys[index] = (uint8)(index * 7 + 1);
    WriteHotKey(keys, sizeof(keys));
    Start();
    ASSERT_NE(fApplication->HotKey(), nullptr);
    EXPECT_EQ(memcmp(fApplication->HotKey(), keys, sizeof(keys)), 0);
}

TEST_F(GlimrowTest, ShorterHotKeyKeepsOnlyTheBytesRead) {
    WriteSettingsFile();
    const uint8 keys[5] = {9, 8, 7, 6, 5};
    WriteHotKey(keys, sizeof(keys));
    Start();
    const uint8* hotKey = fApplication->HotKey();
    ASSERT_NE(hotKey, nullptr);
    EXPECT_EQ(memcmp(hotKey, keys, sizeof(keys)), 0);
    for (int32 index = 5; index < kHotKeyLength; index++)
        EXPECT_EQ(hotKey[index], 0) << index;
}

TEST_F(GlimrowTest, RebuildBeforeAnyBarWindowDoesNothing) {
    Start();
    ASSERT_EQ(gr_manager, nullptr);
    BMessage rebuild(kRebuildBar);
    fApplication->MessageReceived(&rebuild);
    EXPECT_EQ(gr_manager, nullptr);
    EXPECT_EQ(fApplication->CountWindows(), 0);
}

TEST_F(GlimrowTest, ProgramNamesAndSignature) {
    EXPECT_STREQ(gr_app_name, "Glimrow");
    EXPECT_STREQ(gr_signature, "application/x-vnd.KQ-Glimrow");
    EXPECT_STREQ(gr_settings_name, "settings");
    EXPECT_STREQ(gr_layers_name, "layers");
    EXPECT_STREQ(gr_targets_name, "targets");
    EXPECT_STREQ(gr_shelf_name, "shelf");
}

TEST_F(GlimrowTest, IconsAreSquaresOfPaletteIndicesWithTransparentCorners) {
    EXPECT_EQ(sizeof(gr_mini_icon), 256u);
    EXPECT_EQ(sizeof(gr_large_icon), 1024u);
    EXPECT_EQ(gr_mini_icon[0], 0xff);
    EXPECT_EQ(gr_large_icon[1023], 0xff);
    int opaque = 0;
    for (uint8 pixel : gr_large_icon)
        opaque += pixel != 0xff;
    EXPECT_GT(opaque, 300);
}
