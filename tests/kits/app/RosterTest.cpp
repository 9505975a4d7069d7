// BRoster: finding applications by signature, by type and for files; what runs.
#include <AppFileInfo.h>
#include <Entry.h>
#include <File.h>
#include <MimeType.h>
#include <Node.h>
#include <NodeInfo.h>
#include <Roster.h>

#include "RecordingApps.h"
#include "TestHome.h"

#include <gtest/gtest.h>

#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

using testing_support::RecordingApps;
using testing_support::TestHome;

namespace {

entry_ref ref_for(const std::string& path) {
    entry_ref ref;
    EXPECT_EQ(B_OK, get_ref_for_path(path.c_str(), &ref));
    return ref;
}

class RosterTest : public testing::Test {
protected:
    RosterTest() : fApps(fHome) {}

    TestHome fHome;
    RecordingApps fApps;
};

} // namespace

TEST_F(RosterTest, RosterFindsDesktopEntryBySignature) {
    std::string path = fApps.Add("org.example.Viewer", "image/png;");
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp("application/x-vnd.desktop-org.example.Viewer", &app));
    EXPECT_EQ(ref_for(path), app);
}

TEST_F(RosterTest, RosterFindsDesktopEntryWhateverTheSignatureCase) {
    std::string path = fApps.Add("org.example.Viewer", "image/png;");
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp("application/x-vnd.desktop-org.example.viewer", &app));
    EXPECT_EQ(ref_for(path), app);
}

TEST_F(RosterTest, RosterFileManagerSignatureIsTheFolderHandler) {
    std::string path = fApps.Add("files", "inode/directory;");
    fApps.SetDefault("inode/directory", "files");
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp("application/x-vnd.Be-TRAK", &app));
    EXPECT_EQ(ref_for(path), app);
}

TEST_F(RosterTest, RosterUnknownSignatureIsNotFound) {
    entry_ref app;
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND,
              be_roster->FindApp("application/x-vnd.nobody-has-this", &app));
    EXPECT_EQ(B_LAUNCH_FAILED_APP_NOT_FOUND,
              be_roster->FindApp("application/x-vnd.desktop-missing", &app));
    EXPECT_EQ(B_BAD_VALUE, be_roster->FindApp(static_cast<const char*>(nullptr), &app));
}

TEST_F(RosterTest, RosterDocumentTypeStandsForItsDefaultApplication) {
    fApps.Add("text-editor", "text/plain;");
    std::string path = fApps.Add("other-editor", "text/plain;");
    fApps.SetDefault("text/plain", "other-editor");
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp("text/plain", &app));
    EXPECT_EQ(ref_for(path), app);
}

TEST_F(RosterTest, RosterTypeWithoutApplicationHasNoPreferredApp) {
    entry_ref app;
    EXPECT_EQ(B_LAUNCH_FAILED_NO_PREFERRED_APP, be_roster->FindApp("audio/mpeg", &app));
}

TEST_F(RosterTest, RosterApplicationFileIsItsOwnApplication) {
    std::string desktop = fApps.Add("viewer", "image/png;");
    std::string executable = fHome.WriteFile("bin/tool", "#!/bin/sh\nexit 0\n", true);
    entry_ref ref = ref_for(desktop);
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(ref, app);
    ref = ref_for(executable);
    ASSERT_EQ(B_OK, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(ref, app);
}

TEST_F(RosterTest, RosterImageWithExecutableBitIsStillADocument) {
    std::string viewer = fApps.Add("viewer", "image/png;");
    fApps.SetDefault("image/png", "viewer");
    std::string picture = fHome.WriteFile("picture.png", std::string("\x89PNG\r\n\x1a\n", 8), true);
    entry_ref ref = ref_for(picture);
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(ref_for(viewer), app);
}

TEST_F(RosterTest, RosterDocumentOpensWithItsPreferredApp) {
    fApps.Add("text-editor", "text/plain;");
    fApps.SetDefault("text/plain", "text-editor");
    std::string chosen = fApps.Add("special-editor", "");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    BNode node(document.c_str());
    ASSERT_EQ(B_OK, BNodeInfo(&node).SetPreferredApp("application/x-vnd.desktop-special-editor"));
    entry_ref ref = ref_for(document);
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(ref_for(chosen), app);
}

TEST_F(RosterTest, RosterDocumentOpensWithTheDefaultForItsType) {
    fApps.Add("text-editor", "text/plain;");
    std::string chosen = fApps.Add("other-editor", "text/plain;");
    fApps.SetDefault("text/plain", "other-editor");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    entry_ref ref = ref_for(document);
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(ref_for(chosen), app);
}

TEST_F(RosterTest, RosterDocumentTypeAttributeChoosesTheApplication) {
    fApps.Add("text-editor", "text/plain;");
    std::string viewer = fApps.Add("viewer", "image/png;");
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    BNode node(document.c_str());
    ASSERT_EQ(B_OK, BNodeInfo(&node).SetType("image/png"));
    entry_ref ref = ref_for(document);
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(ref_for(viewer), app);
}

TEST_F(RosterTest, RosterDocumentWithoutApplicationHasNoPreferredApp) {
    std::string document = fHome.WriteFile("song.mp3", "ID3");
    entry_ref ref = ref_for(document);
    entry_ref app;
    EXPECT_EQ(B_LAUNCH_FAILED_NO_PREFERRED_APP, be_roster->FindApp(&ref, &app));
}

TEST_F(RosterTest, RosterDocumentWithMissingPreferredAppFails) {
    std::string document = fHome.WriteFile("notes.txt", "hello\n");
    BNode node(document.c_str());
    ASSERT_EQ(B_OK, BNodeInfo(&node).SetPreferredApp("application/x-vnd.gone-for-good"));
    entry_ref ref = ref_for(document);
    entry_ref app;
    EXPECT_EQ(B_LAUNCH_FAILED_FILES_APP_NOT_FOUND, be_roster->FindApp(&ref, &app));
}

TEST_F(RosterTest, RosterFolderOpensWithTheFileManager) {
    std::string files = fApps.Add("files", "inode/directory;");
    std::string folder = fHome.MakeFolder("documents");
    entry_ref ref = ref_for(folder);
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(ref_for(files), app);
}

TEST_F(RosterTest, RosterBrokenLinkCannotBeResolved) {
    std::string link = fHome.Path() + "/dangling";
    ASSERT_EQ(0, symlink("/nonexistent/target", link.c_str()));
    entry_ref ref = ref_for(link);
    entry_ref app;
    EXPECT_EQ(B_LAUNCH_FAILED_NO_RESOLVE_LINK, be_roster->FindApp(&ref, &app));
}

TEST_F(RosterTest, RosterMissingFileIsNotFound) {
    entry_ref ref = ref_for(fHome.Path() + "/missing");
    entry_ref app;
    EXPECT_EQ(B_ENTRY_NOT_FOUND, be_roster->FindApp(&ref, &app));
    EXPECT_EQ(B_BAD_VALUE, be_roster->FindApp(static_cast<entry_ref*>(nullptr), &app));
}

TEST_F(RosterTest, RosterFindsProgramOnPathBySignatureAttribute) {
    std::string program = fHome.WriteFile("bin/tagged", "#!/bin/sh\nexit 0\n", true);
    {
        BFile file(program.c_str(), B_READ_WRITE);
        ASSERT_EQ(B_OK, BAppFileInfo(&file).SetSignature("application/x-vnd.test-tagged"));
    }
    setenv("PATH", (fHome.Path() + "/bin:/usr/bin:/bin").c_str(), 1);
    entry_ref app;
    ASSERT_EQ(B_OK, be_roster->FindApp("application/x-vnd.test-tagged", &app));
    EXPECT_EQ(ref_for(program), app);
}

TEST_F(RosterTest, RosterAppNotStartedIsNotRunning) {
    std::string path = fApps.Add("viewer", "image/png;");
    app_info info;
    EXPECT_EQ(B_ERROR, be_roster->GetAppInfo("application/x-vnd.desktop-viewer", &info));
    entry_ref ref = ref_for(path);
    EXPECT_EQ(B_ERROR, be_roster->GetAppInfo(&ref, &info));
    EXPECT_FALSE(be_roster->IsRunning("application/x-vnd.desktop-viewer"));
}

TEST_F(RosterTest, RosterKnowsThisProcessAsRunning) {
    char executable[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", executable, sizeof(executable) - 1);
    ASSERT_GT(length, 0);
    executable[length] = '\0';
    entry_ref ref = ref_for(executable);
    app_info info;
    ASSERT_EQ(B_OK, be_roster->GetAppInfo(&ref, &info));
    EXPECT_EQ(getpid(), info.team);
    EXPECT_EQ(ref, info.ref);
    EXPECT_TRUE(BMimeType::IsValid(info.signature));
    EXPECT_EQ(getpid(), be_roster->TeamFor(info.signature));
    entry_ref found;
    ASSERT_EQ(B_OK, be_roster->FindApp(info.signature, &found));
    EXPECT_EQ(ref, found);
}
