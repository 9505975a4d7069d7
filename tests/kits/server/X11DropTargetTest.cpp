// Turning dropped data into messages, without an X server.
// Before the X headers, whose macros (None, Bool) would clash with its names.
#include <gtest/gtest.h>

#include "server/x11/X11DropTarget.h"

#include "TestHome.h"

#include <AppDefs.h>
#include <Entry.h>
#include <Path.h>

using BPrivate::X11DropTarget;

namespace {

std::vector<std::string> parse(const std::string& list) {
    std::vector<std::string> paths;
    X11DropTarget::ParseUriList(list.data(), list.size(), &paths);
    return paths;
}

} // namespace

TEST(X11DropTargetTest, UriListIsSplitOnCRLFAndDecoded) {
    std::vector<std::string> paths = parse("file:///tmp/a%20b\r\nfile:///tmp/%C3%A9t%C3%A9\r\n");
    ASSERT_EQ(2u, paths.size());
    EXPECT_EQ("/tmp/a b", paths[0]);
    EXPECT_EQ("/tmp/\xc3\xa9t\xc3\xa9", paths[1]);
}

TEST(X11DropTargetTest, UriListAcceptsLineFeedsAndNoFinalTerminator) {
    std::vector<std::string> paths = parse("file:///one\nfile:///two");
    ASSERT_EQ(2u, paths.size());
    EXPECT_EQ("/one", paths[0]);
    EXPECT_EQ("/two", paths[1]);
}

TEST(X11DropTargetTest, UriListSkipsCommentsBlankLinesAndOtherSchemes) {
    std::vector<std::string> paths =
        parse("# a comment\r\n\r\nhttp://example.org/x\r\nfile:///kept\r\n");
    ASSERT_EQ(1u, paths.size());
    EXPECT_EQ("/kept", paths[0]);
}

TEST(X11DropTargetTest, UriListKeepsLocalhostAndRefusesOtherHosts) {
    std::vector<std::string> paths =
        parse("file://localhost/local\r\nfile://elsewhere/remote\r\nfile:/old/style\r\n");
    ASSERT_EQ(2u, paths.size());
    EXPECT_EQ("/local", paths[0]);
    EXPECT_EQ("/old/style", paths[1]);
}

TEST(X11DropTargetTest, UriWithEncodedNulOrBrokenEscapeIsHandled) {
    std::vector<std::string> paths = parse("file:///a%00b\r\nfile:///c%2\r\nfile:///d%zz\r\n");
    ASSERT_EQ(2u, paths.size());
    EXPECT_EQ("/c%2", paths[0]);
    EXPECT_EQ("/d%zz", paths[1]);
}

TEST(X11DropTargetTest, FileListBecomesSimpleDataWithRefs) {
    testing_support::TestHome home;
    std::string path = home.WriteFile("dropped.txt", "x");
    std::string list = "file://" + path + "\r\n";
    BMessage message;
    ASSERT_EQ(B_OK, X11DropTarget::MessageForData(true, list.data(), list.size(), &message));
    EXPECT_EQ((uint32)B_SIMPLE_DATA, message.what);
    entry_ref ref;
    ASSERT_EQ(B_OK, message.FindRef("refs", &ref));
    EXPECT_STREQ(path.c_str(), BPath(&ref).Path());
}

TEST(X11DropTargetTest, TextBecomesMimeDataOfPlainText) {
    BMessage message;
    ASSERT_EQ(B_OK, X11DropTarget::MessageForData(false, "words", 5, &message));
    EXPECT_EQ((uint32)B_MIME_DATA, message.what);
    const void* data = NULL;
    ssize_t size = 0;
    ASSERT_EQ(B_OK, message.FindData("text/plain", B_MIME_TYPE, &data, &size));
    EXPECT_EQ(std::string("words"), std::string((const char*)data, size));
}

TEST(X11DropTargetTest, EmptyOrUselessDataIsRefused) {
    BMessage message;
    EXPECT_EQ(B_BAD_VALUE, X11DropTarget::MessageForData(false, "", 0, &message));
    EXPECT_EQ(B_BAD_VALUE, X11DropTarget::MessageForData(false, NULL, 4, &message));
    EXPECT_EQ(B_BAD_VALUE, X11DropTarget::MessageForData(true, "# only\r\n", 8, &message));
    EXPECT_EQ(B_BAD_VALUE, X11DropTarget::MessageForData(false, "\0abc", 4, &message));
}
