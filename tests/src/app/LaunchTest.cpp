#include "Glimrow.h"

#include "Commands.h"
#include "Globals.h"

#include <AppFileInfo.h>
#include <Entry.h>
#include <File.h>
#include <Message.h>

#include <gtest/gtest.h>

#include "RecordingApps.h"
#include "TestHome.h"

#include <string>
#include <vector>

#include <stdlib.h>
#include <string.h>

using testing_support::RecordingApps;
using testing_support::TestHome;

namespace {

typedef std::vector<std::string> Arguments;

entry_ref ref_for(const std::string& path) {
    entry_ref ref;
    EXPECT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK) << path;
    return ref;
}

std::string signature_of(const std::string& desktopFile) {
    BFile file(desktopFile.c_str(), B_READ_ONLY);
    BAppFileInfo info(&file);
    char signature[B_MIME_TYPE_LENGTH] = "";
    EXPECT_EQ(info.GetSignature(signature), B_OK);
    return signature;
}

class LaunchTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("GLIMROW_DISPLAY", "headless", 1);
        fApplication = new Glimrow(false, false);
    }

    void TearDown() override {
        fApplication->QuitRequested();
        delete fApplication;
        gr_slave = NULL;
    }

    // The message an item sends when it is clicked: its ref as "file" and as
    // the one entry.
    BMessage Click(const std::string& path) {
        BMessage message(kOpen);
        entry_ref ref = ref_for(path);
        message.AddRef("file", &ref);
        message.AddRef("entries", &ref);
        return message;
    }

    // The message an item sends when files are dropped on it.
    BMessage Drop(const std::string& path, std::vector<std::string> entries) {
        BMessage message(kOpen);
        entry_ref ref = ref_for(path);
        message.AddRef("file", &ref);
        for (const std::string& entry : entries) {
            entry_ref entryRef = ref_for(entry);
            message.AddRef("entries", &entryRef);
        }
        return message;
    }

    TestHome fHome;
    RecordingApps fApps{fHome};
    Glimrow* fApplication = NULL;
};

} // namespace

TEST_F(LaunchTest, ClickOnAnApplicationStartsItWithoutArguments) {
    std::string app = fApps.Add("org.example.Tool", "text/plain;");
    BMessage click = Click(app);
    fApplication->Open(&click);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Tool", 1));
    EXPECT_EQ(fApps.Runs("org.example.Tool")[0], Arguments{});
}

TEST_F(LaunchTest, ClickOnADocumentOpensItWithItsPreferredApplication) {
    fApps.Add("org.example.Editor", "text/plain;");
    fApps.SetDefault("text/plain", "org.example.Editor");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    BMessage click = Click(document);
    fApplication->Open(&click);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Editor", 1));
    EXPECT_EQ(fApps.Runs("org.example.Editor")[0], Arguments{document});
}

TEST_F(LaunchTest, DroppedFilesAndAFolderAreHandedToTheApplication) {
    std::string app = fApps.Add("org.example.Viewer", "text/plain;inode/directory;");
    std::string first = fHome.WriteFile("first.txt", "1");
    std::string second = fHome.WriteFile("second.txt", "2");
    std::string folder = fHome.MakeFolder("Pictures");
    BMessage drop = Drop(app, {first, second, folder});
    fApplication->Open(&drop);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Viewer", 1));
    EXPECT_EQ(fApps.Runs("org.example.Viewer")[0], (Arguments{first, second, folder}));
}

TEST_F(LaunchTest, ApplicationDroppedOnItselfIsNotHandedItself) {
    std::string app = fApps.Add("org.example.Tool", "text/plain;application/x-desktop;");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    BMessage drop = Drop(app, {app, document});
    fApplication->Open(&drop);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Tool", 1));
    EXPECT_EQ(fApps.Runs("org.example.Tool")[0], Arguments{document});
}

TEST_F(LaunchTest, EntriesThatAllFailToResolveLaunchPlainly) {
    std::string app = fApps.Add("org.example.Tool", "text/plain;");
    BMessage drop = Drop(app, {fHome.Path() + "/gone-1", fHome.Path() + "/gone-2"});
    fApplication->Open(&drop);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Tool", 1));
    EXPECT_EQ(fApps.Runs("org.example.Tool")[0], Arguments{});
}

TEST_F(LaunchTest, DroppedTextBecomesTheCommandLine) {
    std::string app = fApps.Add("org.example.Tool", "text/plain;");
    BMessage drop = Drop(app, {});
    drop.AddData("text/plain", B_MIME_TYPE, "hello world", 11, false);
    drop.AddData("text/plain", B_MIME_TYPE, "second", 6, false);
    fApplication->Open(&drop);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Tool", 1));
    EXPECT_EQ(fApps.Runs("org.example.Tool")[0], (Arguments{"hello world", "second"}));
}

TEST_F(LaunchTest, DroppedFilesAndTextLaunchTwice) {
    std::string app = fApps.Add("org.example.Tool", "text/plain;");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    BMessage drop = Drop(app, {document});
    drop.AddData("text/plain", B_MIME_TYPE, "word", 4);
    fApplication->Open(&drop);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Tool", 2));
    std::vector<Arguments> runs = fApps.Runs("org.example.Tool");
    EXPECT_TRUE((runs[0] == Arguments{document} && runs[1] == Arguments{"word"}) ||
                (runs[1] == Arguments{document} && runs[0] == Arguments{"word"}));
}

TEST_F(LaunchTest, OpenWithHandsEveryFileToEachApplication) {
    std::string first = fApps.Add("org.example.First", "text/plain;");
    std::string second = fApps.Add("org.example.Second", "text/plain;");
    std::string one = fHome.WriteFile("one.txt", "1");
    std::string two = fHome.WriteFile("two.txt", "2");
    BMessage message(kOpenWith);
    message.AddString("applications", signature_of(first).c_str());
    message.AddString("applications", signature_of(second).c_str());
    entry_ref ref = ref_for(one);
    message.AddRef("file", &ref);
    ref = ref_for(two);
    message.AddRef("file", &ref);
    fApplication->OpenWith(&message);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.First", 1));
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Second", 1));
    EXPECT_EQ(fApps.Runs("org.example.First")[0], (Arguments{one, two}));
    EXPECT_EQ(fApps.Runs("org.example.Second")[0], (Arguments{one, two}));
}

TEST_F(LaunchTest, OpenParentShowsTheFolderInTheFileManager) {
    fApps.Add("org.example.Files", "inode/directory;");
    fApps.SetDefault("inode/directory", "org.example.Files");
    std::string folder = fHome.MakeFolder("Documents");
    std::string document = fHome.WriteFile("Documents/letter.txt", "dear\n");
    BMessage message(kOpenParent);
    entry_ref ref = ref_for(document);
    message.AddRef("file", &ref);
    fApplication->OpenParent(&message);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Files", 1));
    EXPECT_EQ(fApps.Runs("org.example.Files")[0], Arguments{folder});
}

TEST_F(LaunchTest, OpenCommandsReachTheApplicationThroughItsMessages) {
    std::string app = fApps.Add("org.example.Tool", "text/plain;");
    BMessage click = Click(app);
    fApplication->MessageReceived(&click);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Tool", 1));
}
