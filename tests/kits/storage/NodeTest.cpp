#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <Node.h>
#include <SymLink.h>

#include "StorageTestSupport.h"
#include "TestHome.h"

#include <gtest/gtest.h>

#include <string.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <set>
#include <string>

using testing_support::TestHome;

namespace {

// Every attribute test runs in a TestHome under the build tree (ext4 here); a file
// system without user attributes there would make them meaningless, so say so.
class NodeAttributes : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(storage_testing::supports_user_attributes(fHome.Path()))
            << fHome.Path() << " keeps no user extended attributes";
        fFile = fHome.WriteFile("file", "contents");
    }

    TestHome fHome;
    std::string fFile;
};

} // namespace

TEST(Node, DefaultIsUninitialised) {
    BNode node;
    EXPECT_EQ(node.InitCheck(), B_NO_INIT);
    struct stat stat;
    EXPECT_EQ(node.GetStat(&stat), B_NO_INIT);
}

TEST(Node, OpensFilesAndFolders) {
    TestHome home;
    std::string file = home.WriteFile("f", "x");
    EXPECT_EQ(BNode(file.c_str()).InitCheck(), B_OK);
    EXPECT_EQ(BNode(home.Path().c_str()).InitCheck(), B_OK);
}

TEST(Node, MissingNodeIsNotFound) {
    TestHome home;
    EXPECT_EQ(BNode((home.Path() + "/none").c_str()).InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(Node, DoesNotFollowAFinalLink) {
    TestHome home;
    std::string file = home.WriteFile("f", "x");
    std::string link = home.Path() + "/l";
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    BNode node(link.c_str());
    ASSERT_EQ(node.InitCheck(), B_OK);
    EXPECT_TRUE(node.IsSymLink());
}

TEST(Node, BrokenLinkIsANode) {
    TestHome home;
    std::string link = home.Path() + "/broken";
    ASSERT_EQ(symlink("nowhere", link.c_str()), 0);
    BNode node(link.c_str());
    EXPECT_EQ(node.InitCheck(), B_OK);
}

TEST(Node, UnreadableFileIsStillANode) {
    TestHome home;
    std::string file = home.WriteFile("private", "x");
    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    storage_testing::open_up_to(home.Path(), GLIMROW_BINARY_DIR);
    int result = storage_testing::run_unprivileged([&] {
        BNode node(file.c_str());
        off_t size = -1;
        return node.InitCheck() == B_OK && node.GetSize(&size) == B_OK && size == 1 ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
}

TEST(Node, FromEntryRefAndDirectory) {
    TestHome home;
    std::string file = home.WriteFile("dir/f", "x");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(file.c_str(), &ref), B_OK);
    BNode byRef(&ref);
    BDirectory directory((home.Path() + "/dir").c_str());
    BNode byDirectory(&directory, "f");
    BEntry entry(file.c_str());
    BNode byEntry(&entry);
    ASSERT_EQ(byRef.InitCheck(), B_OK);
    EXPECT_TRUE(byRef == byDirectory);
    EXPECT_TRUE(byRef == byEntry);
}

TEST(Node, CopyIsTheSameNode) {
    TestHome home;
    BNode node(home.WriteFile("f", "x").c_str());
    BNode copy(node);
    EXPECT_TRUE(copy == node);
    BNode other(home.Path().c_str());
    EXPECT_TRUE(other != node);
}

TEST(Node, LockIsExclusiveBetweenNodes) {
    TestHome home;
    std::string file = home.WriteFile("locked", "x");
    BNode first(file.c_str());
    BNode second(file.c_str());
    ASSERT_EQ(first.Lock(), B_OK);
    EXPECT_EQ(second.Lock(), B_BUSY);
    ASSERT_EQ(first.Unlock(), B_OK);
    EXPECT_EQ(second.Lock(), B_OK);
    EXPECT_EQ(second.Unlock(), B_OK);
}

TEST(Node, LockingTwiceIsBusy) {
    TestHome home;
    BNode node(home.WriteFile("f", "x").c_str());
    ASSERT_EQ(node.Lock(), B_OK);
    EXPECT_EQ(node.Lock(), B_BUSY);
}

TEST(Node, UnlockWithoutLockIsBadValue) {
    TestHome home;
    BNode node(home.WriteFile("f", "x").c_str());
    EXPECT_EQ(node.Unlock(), B_BAD_VALUE);
}

TEST(Node, ClosingReleasesTheLock) {
    TestHome home;
    std::string file = home.WriteFile("f", "x");
    BNode other(file.c_str());
    {
        BNode node(file.c_str());
        ASSERT_EQ(node.Lock(), B_OK);
        EXPECT_EQ(other.Lock(), B_BUSY);
    }
    EXPECT_EQ(other.Lock(), B_OK);
}

TEST(Node, SyncWorks) {
    TestHome home;
    BNode node(home.WriteFile("f", "x").c_str());
    EXPECT_EQ(node.Sync(), B_OK);
}

TEST(Node, DupGivesAnIndependentDescriptor) {
    TestHome home;
    BNode node(home.WriteFile("f", "x").c_str());
    int descriptor = node.Dup();
    ASSERT_GE(descriptor, 0);
    struct stat stat;
    EXPECT_EQ(fstat(descriptor, &stat), 0);
    close(descriptor);
}

TEST_F(NodeAttributes, WriteThenReadGivesTheData) {
    BNode node(fFile.c_str());
    const char value[] = "text/plain";
    ASSERT_EQ(node.WriteAttr("BEOS:TYPE", 'MIMS', 0, value, sizeof(value)), (ssize_t)sizeof(value));
    char buffer[64] = {};
    ASSERT_EQ(node.ReadAttr("BEOS:TYPE", 'MIMS', 0, buffer, sizeof(buffer)),
              (ssize_t)sizeof(value));
    EXPECT_STREQ(buffer, value);
}

TEST_F(NodeAttributes, StoredAsUserXattrWithBigEndianTypeFirst) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("BEOS:TYPE", 'MIME', 0, "text/plain", 11), 11);
    std::string raw = storage_testing::raw_attribute(fFile, "user.BEOS:TYPE");
    ASSERT_EQ(raw.size(), 15u);
    EXPECT_EQ(raw.substr(0, 4), "MIME");
    EXPECT_EQ(raw.substr(4), std::string("text/plain", 11));
}

TEST_F(NodeAttributes, ReadsAnAttributeWrittenByAnotherProgram) {
    std::string raw = std::string("LONG") + std::string("\x01\x00\x00\x00", 4);
    ASSERT_EQ(setxattr(fFile.c_str(), "user.count", raw.data(), raw.size(), 0), 0);
    BNode node(fFile.c_str());
    attr_info info;
    ASSERT_EQ(node.GetAttrInfo("count", &info), B_OK);
    EXPECT_EQ(info.type, (uint32)'LONG');
    EXPECT_EQ(info.size, 4);
}

TEST_F(NodeAttributes, TypeMismatchIsNotAnError) {
    BNode node(fFile.c_str());
    int32 value = 42;
    ASSERT_EQ(node.WriteAttr("number", B_INT32_TYPE, 0, &value, sizeof(value)), 4);
    int32 read = 0;
    EXPECT_EQ(node.ReadAttr("number", B_STRING_TYPE, 0, &read, sizeof(read)), 4);
    EXPECT_EQ(read, 42);
}

TEST_F(NodeAttributes, MissingAttributeIsEntryNotFound) {
    BNode node(fFile.c_str());
    char buffer[8];
    EXPECT_EQ(node.ReadAttr("absent", B_STRING_TYPE, 0, buffer, sizeof(buffer)), B_ENTRY_NOT_FOUND);
    attr_info info;
    EXPECT_EQ(node.GetAttrInfo("absent", &info), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(node.RemoveAttr("absent"), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeAttributes, GetAttrInfoGivesTypeAndDataSize) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("icon", 'CLRB', 0, std::string(256, 'i').data(), 256), 256);
    attr_info info;
    ASSERT_EQ(node.GetAttrInfo("icon", &info), B_OK);
    EXPECT_EQ(info.type, (uint32)'CLRB');
    EXPECT_EQ(info.size, 256);
}

TEST_F(NodeAttributes, ReadAtAnOffsetAndPastTheEnd) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("text", B_STRING_TYPE, 0, "abcdef", 6), 6);
    char buffer[8] = {};
    EXPECT_EQ(node.ReadAttr("text", B_STRING_TYPE, 2, buffer, 3), 3);
    EXPECT_EQ(std::string(buffer, 3), "cde");
    EXPECT_EQ(node.ReadAttr("text", B_STRING_TYPE, 6, buffer, 3), 0);
    EXPECT_EQ(node.ReadAttr("text", B_STRING_TYPE, 100, buffer, 3), 0);
}

TEST_F(NodeAttributes, ShortBufferGetsTheFirstBytes) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("text", B_STRING_TYPE, 0, "abcdef", 6), 6);
    char buffer[2];
    EXPECT_EQ(node.ReadAttr("text", B_STRING_TYPE, 0, buffer, sizeof(buffer)), 2);
    EXPECT_EQ(std::string(buffer, 2), "ab");
}

TEST_F(NodeAttributes, WriteAtZeroReplacesTheValue) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("text", B_STRING_TYPE, 0, "long value", 10), 10);
    ASSERT_EQ(node.WriteAttr("text", B_RAW_TYPE, 0, "ab", 2), 2);
    attr_info info;
    ASSERT_EQ(node.GetAttrInfo("text", &info), B_OK);
    EXPECT_EQ(info.size, 2);
    EXPECT_EQ(info.type, (uint32)B_RAW_TYPE);
}

TEST_F(NodeAttributes, WriteAtAnOffsetKeepsTheStartAndFillsGaps) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("text", B_STRING_TYPE, 0, "ab", 2), 2);
    ASSERT_EQ(node.WriteAttr("text", B_STRING_TYPE, 4, "xy", 2), 2);
    char buffer[6];
    ASSERT_EQ(node.ReadAttr("text", B_STRING_TYPE, 0, buffer, sizeof(buffer)), 6);
    EXPECT_EQ(std::string(buffer, 6), std::string("ab\0\0xy", 6));
}

TEST_F(NodeAttributes, EmptyValueIsAllowed) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("flag", B_BOOL_TYPE, 0, nullptr, 0), 0);
    attr_info info;
    ASSERT_EQ(node.GetAttrInfo("flag", &info), B_OK);
    EXPECT_EQ(info.size, 0);
}

TEST_F(NodeAttributes, RemoveAttrDeletesIt) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("gone", B_STRING_TYPE, 0, "x", 1), 1);
    ASSERT_EQ(node.RemoveAttr("gone"), B_OK);
    attr_info info;
    EXPECT_EQ(node.GetAttrInfo("gone", &info), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeAttributes, RenameAttrMovesTheValue) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("old", B_STRING_TYPE, 0, "v", 1), 1);
    ASSERT_EQ(node.RenameAttr("old", "new"), B_OK);
    char value;
    EXPECT_EQ(node.ReadAttr("new", B_STRING_TYPE, 0, &value, 1), 1);
    EXPECT_EQ(node.ReadAttr("old", B_STRING_TYPE, 0, &value, 1), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeAttributes, ListsOnlyUserAttributesWithoutPrefix) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("one", B_STRING_TYPE, 0, "1", 1), 1);
    ASSERT_EQ(node.WriteAttr("two", B_STRING_TYPE, 0, "2", 1), 1);
    std::set<std::string> names;
    char name[B_ATTR_NAME_LENGTH];
    while (node.GetNextAttrName(name) == B_OK)
        names.insert(name);
    EXPECT_EQ(names, (std::set<std::string>{"one", "two"}));
    EXPECT_EQ(node.GetNextAttrName(name), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeAttributes, RewindAttrsStartsOver) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("only", B_STRING_TYPE, 0, "1", 1), 1);
    char name[B_ATTR_NAME_LENGTH];
    ASSERT_EQ(node.GetNextAttrName(name), B_OK);
    EXPECT_EQ(node.GetNextAttrName(name), B_ENTRY_NOT_FOUND);
    ASSERT_EQ(node.RewindAttrs(), B_OK);
    ASSERT_EQ(node.GetNextAttrName(name), B_OK);
    EXPECT_STREQ(name, "only");
}

TEST_F(NodeAttributes, AttributesOnFolders) {
    BNode node(fHome.Path().c_str());
    ASSERT_EQ(node.WriteAttr("folder", B_STRING_TYPE, 0, "f", 1), 1);
    char value;
    EXPECT_EQ(node.ReadAttr("folder", B_STRING_TYPE, 0, &value, 1), 1);
}

TEST_F(NodeAttributes, WritingOnASymbolicLinkIsNotSupported) {
    std::string link = fHome.Path() + "/link";
    ASSERT_EQ(symlink(fFile.c_str(), link.c_str()), 0);
    BNode node(link.c_str());
    ASSERT_EQ(node.InitCheck(), B_OK);
    EXPECT_EQ(node.WriteAttr("BEOS:TYPE", 'MIMS', 0, "x", 2), B_NOT_SUPPORTED);
    char buffer[4];
    EXPECT_EQ(node.ReadAttr("BEOS:TYPE", 'MIMS', 0, buffer, sizeof(buffer)), B_ENTRY_NOT_FOUND);
    char name[B_ATTR_NAME_LENGTH];
    EXPECT_EQ(node.GetNextAttrName(name), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeAttributes, LongestNameWorksAndLongerIsNameTooLong) {
    BNode node(fFile.c_str());
    std::string longest(XATTR_NAME_MAX - 5, 'a');
    EXPECT_EQ(node.WriteAttr(longest.c_str(), B_STRING_TYPE, 0, "x", 1), 1);
    std::string tooLong(XATTR_NAME_MAX - 4, 'a');
    EXPECT_EQ(node.WriteAttr(tooLong.c_str(), B_STRING_TYPE, 0, "x", 1), B_NAME_TOO_LONG);
}

TEST_F(NodeAttributes, BadArgumentsAreBadValue) {
    BNode node(fFile.c_str());
    char buffer[4];
    EXPECT_EQ(node.WriteAttr(nullptr, B_STRING_TYPE, 0, "x", 1), B_BAD_VALUE);
    EXPECT_EQ(node.WriteAttr("", B_STRING_TYPE, 0, "x", 1), B_BAD_VALUE);
    EXPECT_EQ(node.WriteAttr("a", B_STRING_TYPE, -1, "x", 1), B_BAD_VALUE);
    EXPECT_EQ(node.WriteAttr("a", B_STRING_TYPE, 0, nullptr, 1), B_BAD_VALUE);
    EXPECT_EQ(node.ReadAttr("a", B_STRING_TYPE, 0, nullptr, 1), B_BAD_VALUE);
    EXPECT_EQ(node.ReadAttr("a", B_STRING_TYPE, -5, buffer, 1), B_BAD_VALUE);
    EXPECT_EQ(node.GetAttrInfo("a", nullptr), B_BAD_VALUE);
    EXPECT_EQ(node.GetNextAttrName(nullptr), B_BAD_VALUE);
}

TEST_F(NodeAttributes, ValueTooBigForTheFileSystemIsAnError) {
    BNode node(fFile.c_str());
    std::string huge(70000, 'h');
    ssize_t result = node.WriteAttr("huge", B_RAW_TYPE, 0, huge.data(), huge.size());
    EXPECT_LT(result, 0);
    EXPECT_EQ(result, B_FILE_TOO_LARGE);
}

TEST_F(NodeAttributes, ForeignAttributeTooShortForATypeIsBadData) {
    ASSERT_EQ(setxattr(fFile.c_str(), "user.tiny", "ab", 2, 0), 0);
    BNode node(fFile.c_str());
    attr_info info;
    EXPECT_EQ(node.GetAttrInfo("tiny", &info), B_BAD_DATA);
    char buffer[4];
    EXPECT_EQ(node.ReadAttr("tiny", B_RAW_TYPE, 0, buffer, 4), B_BAD_DATA);
}

TEST_F(NodeAttributes, UninitialisedNodeRefusesAttributes) {
    BNode node;
    char buffer[4];
    EXPECT_EQ(node.WriteAttr("a", B_RAW_TYPE, 0, "x", 1), B_NO_INIT);
    EXPECT_EQ(node.ReadAttr("a", B_RAW_TYPE, 0, buffer, 1), B_NO_INIT);
}

TEST_F(NodeAttributes, AttributesOfAFileWithoutWritePermissionAreReadOnly) {
    BNode node(fFile.c_str());
    ASSERT_EQ(node.WriteAttr("kept", B_STRING_TYPE, 0, "k", 1), 1);
    ASSERT_EQ(chmod(fFile.c_str(), 0444), 0);
    storage_testing::open_up_to(fHome.Path(), GLIMROW_BINARY_DIR);
    int result = storage_testing::run_unprivileged([&] {
        BNode node(fFile.c_str());
        char value = 0;
        if (node.ReadAttr("kept", B_STRING_TYPE, 0, &value, 1) != 1 || value != 'k')
            return 1;
        return node.WriteAttr("kept", B_STRING_TYPE, 0, "x", 1) == B_PERMISSION_DENIED ? 0 : 2;
    });
    EXPECT_EQ(result, 0);
}

TEST(NodeAttributesElsewhere, FileSystemWithoutUserAttributesIsNotSupported) {
    // procfs never keeps user attributes, on any kernel.
    BNode node("/proc/self/status");
    ASSERT_EQ(node.InitCheck(), B_OK);
    EXPECT_EQ(node.WriteAttr("x", B_RAW_TYPE, 0, "x", 1), B_NOT_SUPPORTED);
    char name[B_ATTR_NAME_LENGTH];
    EXPECT_EQ(node.GetNextAttrName(name), B_ENTRY_NOT_FOUND);
}

TEST(SymLink, ReadLinkGivesTheTarget) {
    TestHome home;
    std::string link = home.Path() + "/link";
    ASSERT_EQ(symlink("some/where", link.c_str()), 0);
    BSymLink symLink(link.c_str());
    char buffer[B_PATH_NAME_LENGTH];
    ASSERT_EQ(symLink.ReadLink(buffer, sizeof(buffer)), 10);
    EXPECT_STREQ(buffer, "some/where");
    EXPECT_FALSE(symLink.IsAbsolute());
}

TEST(SymLink, ReadLinkOfAFileIsBadValue) {
    TestHome home;
    BSymLink symLink(home.WriteFile("plain", "x").c_str());
    char buffer[16];
    EXPECT_EQ(symLink.ReadLink(buffer, sizeof(buffer)), B_BAD_VALUE);
}
