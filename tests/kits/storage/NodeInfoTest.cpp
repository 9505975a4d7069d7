// BNodeInfo: types by attribute, by name and by content; preferred applications;
// the raw icon attributes.
#include <Bitmap.h>
#include <Node.h>
#include <NodeInfo.h>

#include "StorageTestSupport.h"
#include "TestHome.h"

#include <gtest/gtest.h>

#include <unistd.h>

using testing_support::TestHome;

namespace {

std::string type_of(const std::string& path, status_t* status) {
    BNode node(path.c_str());
    BNodeInfo info(&node);
    char type[B_MIME_TYPE_LENGTH] = "";
    *status = info.GetType(type);
    return type;
}

} // namespace

TEST(NodeInfoTest, NodeInfoTypeComesFromTheTypeAttribute) {
    TestHome home;
    std::string path = home.WriteFile("notes.txt", "hello\n");
    {
        BNode node(path.c_str());
        BNodeInfo info(&node);
        ASSERT_EQ(B_OK, info.SetType("application/x-vnd.test-document"));
    }
    status_t status;
    EXPECT_EQ("application/x-vnd.test-document", type_of(path, &status));
    EXPECT_EQ(B_OK, status);
}

TEST(NodeInfoTest, NodeInfoWritesTypeAsMimeStringWithNul) {
    TestHome home;
    std::string path = home.WriteFile("data", "x");
    BNode node(path.c_str());
    BNodeInfo info(&node);
    ASSERT_EQ(B_OK, info.SetType("text/plain"));
    std::string raw = storage_testing::raw_attribute(path, "user.BEOS:TYPE");
    EXPECT_EQ(std::string("MIMS") + "text/plain" + std::string(1, '\0'), raw);
}

TEST(NodeInfoTest, NodeInfoTypeOfPlainFileComesFromItsName) {
    TestHome home;
    status_t status;
    EXPECT_EQ("image/png", type_of(home.WriteFile("picture.png", "not really"), &status));
    EXPECT_EQ(B_OK, status);
    EXPECT_EQ("text/x-csrc", type_of(home.WriteFile("main.c", "int x;\n"), &status));
}

TEST(NodeInfoTest, NodeInfoTypeOfNamelessFileComesFromItsContent) {
    TestHome home;
    status_t status;
    EXPECT_EQ("application/x-shellscript",
              type_of(home.WriteFile("runme", "#!/bin/sh\necho hi\n"), &status));
    EXPECT_EQ(B_OK, status);
    std::string png("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
    EXPECT_EQ("image/png", type_of(home.WriteFile("picture", png), &status));
}

TEST(NodeInfoTest, NodeInfoFolderWithoutAttributeHasNoType) {
    TestHome home;
    status_t status;
    type_of(home.MakeFolder("folder"), &status);
    EXPECT_EQ(B_ENTRY_NOT_FOUND, status);
}

TEST(NodeInfoTest, NodeInfoLinkWithoutAttributeHasNoType) {
    TestHome home;
    std::string target = home.WriteFile("notes.txt", "hello\n");
    std::string link = home.Path() + "/link.txt";
    ASSERT_EQ(0, symlink(target.c_str(), link.c_str()));
    status_t status;
    type_of(link, &status);
    EXPECT_EQ(B_ENTRY_NOT_FOUND, status);
}

TEST(NodeInfoTest, NodeInfoFolderWithAttributeHasThatType) {
    TestHome home;
    std::string folder = home.MakeFolder("folder");
    {
        BNode node(folder.c_str());
        BNodeInfo info(&node);
        ASSERT_EQ(B_OK, info.SetType("application/x-vnd.Be-directory"));
    }
    status_t status;
    EXPECT_EQ("application/x-vnd.Be-directory", type_of(folder, &status));
}

TEST(NodeInfoTest, NodeInfoRefusesInvalidType) {
    TestHome home;
    BNode node(home.WriteFile("a", "").c_str());
    BNodeInfo info(&node);
    EXPECT_EQ(B_BAD_VALUE, info.SetType("two/slashes/here"));
    EXPECT_EQ(B_BAD_VALUE, info.GetType(nullptr));
}

TEST(NodeInfoTest, NodeInfoWithoutNodeIsNotInitialised) {
    BNodeInfo info;
    char type[B_MIME_TYPE_LENGTH];
    EXPECT_EQ(B_NO_INIT, info.InitCheck());
    EXPECT_EQ(B_NO_INIT, info.GetType(type));
    EXPECT_EQ(B_BAD_VALUE, info.SetTo(nullptr));
    BNode unset;
    EXPECT_NE(B_OK, info.SetTo(&unset));
}

TEST(NodeInfoTest, NodeInfoPreferredAppRoundTrips) {
    TestHome home;
    BNode node(home.WriteFile("notes.txt", "x").c_str());
    BNodeInfo info(&node);
    char signature[B_MIME_TYPE_LENGTH];
    EXPECT_EQ(B_ENTRY_NOT_FOUND, info.GetPreferredApp(signature));
    ASSERT_EQ(B_OK, info.SetPreferredApp("application/x-vnd.test-editor"));
    ASSERT_EQ(B_OK, info.GetPreferredApp(signature));
    EXPECT_STREQ("application/x-vnd.test-editor", signature);
    ASSERT_EQ(B_OK, info.SetPreferredApp(nullptr));
    EXPECT_EQ(B_ENTRY_NOT_FOUND, info.GetPreferredApp(signature));
}

TEST(NodeInfoTest, NodeInfoOversizedTypeAttributeIsIgnored) {
    TestHome home;
    std::string path = home.WriteFile("notes.txt", "x");
    BNode node(path.c_str());
    std::string huge(600, 'a');
    ASSERT_GT(node.WriteAttr("BEOS:TYPE", B_MIME_STRING_TYPE, 0, huge.c_str(), huge.size() + 1), 0);
    BNodeInfo info(&node);
    char type[B_MIME_TYPE_LENGTH];
    ASSERT_EQ(B_OK, info.GetType(type));
    EXPECT_STREQ("text/plain", type);
}

TEST(NodeInfoTest, NodeInfoIconRoundTripsAsRawCmap8) {
    TestHome home;
    BNode node(home.WriteFile("a", "x").c_str());
    BNodeInfo info(&node);
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    uint8* bits = static_cast<uint8*>(icon.Bits());
    for (int32 y = 0; y < 16; y++) {
        for (int32 x = 0; x < 16; x++)
            bits[y * icon.BytesPerRow() + x] = uint8((x + y) % 2 == 0 ? 42 : 255);
    }
    ASSERT_EQ(B_OK, info.SetIcon(&icon, B_MINI_ICON));
    BBitmap copy(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, info.GetIcon(&copy, B_MINI_ICON));
    const uint8* copied = static_cast<const uint8*>(copy.Bits());
    for (int32 y = 0; y < 16; y++) {
        for (int32 x = 0; x < 16; x++)
            EXPECT_EQ(bits[y * icon.BytesPerRow() + x], copied[y * copy.BytesPerRow() + x]);
    }
    attr_info attribute;
    ASSERT_EQ(B_OK, node.GetAttrInfo("BEOS:M:STD_ICON", &attribute));
    EXPECT_EQ(B_MINI_ICON_TYPE, attribute.type);
    EXPECT_EQ(256, attribute.size);
}

TEST(NodeInfoTest, NodeInfoIconOfWrongSizeIsRefused) {
    TestHome home;
    BNode node(home.WriteFile("a", "x").c_str());
    BNodeInfo info(&node);
    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    EXPECT_EQ(B_BAD_VALUE, info.SetIcon(&icon, B_MINI_ICON));
    EXPECT_EQ(B_BAD_VALUE, info.GetIcon(&icon, B_MINI_ICON));
}

TEST(NodeInfoTest, NodeInfoTruncatedIconAttributeIsBadData) {
    TestHome home;
    BNode node(home.WriteFile("a", "x").c_str());
    uint8 data[100] = {};
    ASSERT_EQ(100, node.WriteAttr("BEOS:L:STD_ICON", B_LARGE_ICON_TYPE, 0, data, sizeof(data)));
    BNodeInfo info(&node);
    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    EXPECT_EQ(B_BAD_DATA, info.GetIcon(&icon, B_LARGE_ICON));
}
