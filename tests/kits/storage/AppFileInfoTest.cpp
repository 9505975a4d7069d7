// BAppFileInfo on desktop entries and executables in a private home.
#include <AppFileInfo.h>
#include <File.h>
#include <Message.h>
#include <Roster.h>

#include "RecordingApps.h"
#include "TestHome.h"

#include <gtest/gtest.h>

using testing_support::RecordingApps;
using testing_support::TestHome;

namespace {

std::string signature_of(const std::string& path, status_t* status) {
    BFile file(path.c_str(), B_READ_ONLY);
    BAppFileInfo info(&file);
    char signature[B_MIME_TYPE_LENGTH] = "";
    *status = info.GetSignature(signature);
    return signature;
}

} // namespace

TEST(AppFileInfoTest, AppFileInfoDerivesDesktopEntrySignatureFromItsId) {
    TestHome home;
    RecordingApps apps(home);
    std::string path = apps.Add("org.example.Viewer", "image/png;");
    status_t status;
    EXPECT_EQ("application/x-vnd.desktop-org.example.Viewer", signature_of(path, &status));
    EXPECT_EQ(B_OK, status);
}

TEST(AppFileInfoTest, AppFileInfoPrefersTheSignatureAttribute) {
    TestHome home;
    RecordingApps apps(home);
    std::string path = apps.Add("viewer", "image/png;");
    {
        BFile file(path.c_str(), B_READ_WRITE);
        BAppFileInfo info(&file);
        ASSERT_EQ(B_OK, info.SetSignature("application/x-vnd.KQ-Glimrow"));
    }
    status_t status;
    EXPECT_EQ("application/x-vnd.KQ-Glimrow", signature_of(path, &status));
    EXPECT_EQ(B_OK, status);
}

TEST(AppFileInfoTest, AppFileInfoDerivesExecutableSignatureFromItsPath) {
    TestHome home;
    std::string path = home.WriteFile("bin/tool", "#!/bin/sh\nexit 0\n", true);
    status_t status;
    std::string signature = signature_of(path, &status);
    EXPECT_EQ(B_OK, status);
    EXPECT_EQ(0u, signature.find("application/x-vnd.exec-%2F"));
    entry_ref found;
    ASSERT_EQ(B_OK, be_roster->FindApp(signature.c_str(), &found));
    entry_ref expected;
    ASSERT_EQ(B_OK, get_ref_for_path(path.c_str(), &expected));
    EXPECT_EQ(expected, found);
}

TEST(AppFileInfoTest, AppFileInfoOfADocumentHasNoSignature) {
    TestHome home;
    std::string path = home.WriteFile("notes.txt", "hello\n");
    status_t status;
    signature_of(path, &status);
    EXPECT_EQ(B_ENTRY_NOT_FOUND, status);
}

TEST(AppFileInfoTest, AppFileInfoRefusesInvalidSignature) {
    TestHome home;
    std::string path = home.WriteFile("bin/tool", "#!/bin/sh\n", true);
    BFile file(path.c_str(), B_READ_WRITE);
    BAppFileInfo info(&file);
    EXPECT_EQ(B_BAD_VALUE, info.SetSignature("not a type"));
    EXPECT_EQ(B_BAD_VALUE, info.GetSignature(nullptr));
}

TEST(AppFileInfoTest, AppFileInfoWithoutFileIsNotInitialised) {
    BAppFileInfo info;
    char signature[B_MIME_TYPE_LENGTH];
    EXPECT_NE(B_OK, info.InitCheck());
    EXPECT_NE(B_OK, info.GetSignature(signature));
    EXPECT_EQ(B_BAD_VALUE, info.SetTo(nullptr));
}

TEST(AppFileInfoTest, AppFileInfoFlagsRoundTripThroughTheAttribute) {
    TestHome home;
    std::string path = home.WriteFile("bin/tool", "#!/bin/sh\n", true);
    BFile file(path.c_str(), B_READ_WRITE);
    BAppFileInfo info(&file);
    uint32 flags = 0;
    EXPECT_EQ(B_ENTRY_NOT_FOUND, info.GetAppFlags(&flags));
    ASSERT_EQ(B_OK, info.SetAppFlags(B_EXCLUSIVE_LAUNCH | B_BACKGROUND_APP));
    ASSERT_EQ(B_OK, info.GetAppFlags(&flags));
    EXPECT_EQ(uint32(B_EXCLUSIVE_LAUNCH | B_BACKGROUND_APP), flags);
}

TEST(AppFileInfoTest, AppFileInfoListsTheDesktopEntryTypes) {
    TestHome home;
    RecordingApps apps(home);
    std::string path = apps.Add("viewer", "image/png;text/plain;");
    BFile file(path.c_str(), B_READ_ONLY);
    BAppFileInfo info(&file);
    BMessage types;
    ASSERT_EQ(B_OK, info.GetSupportedTypes(&types));
    const char* type = nullptr;
    ASSERT_EQ(B_OK, types.FindString("types", 0, &type));
    EXPECT_STREQ("image/png", type);
    ASSERT_EQ(B_OK, types.FindString("types", 1, &type));
    EXPECT_STREQ("text/plain", type);
    EXPECT_TRUE(info.IsSupportedType("text/x-csrc"));
    EXPECT_FALSE(info.IsSupportedType("audio/mpeg"));
}
