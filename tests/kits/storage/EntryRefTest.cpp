#include <Entry.h>
#include <Node.h>
#include <Path.h>

#include "TestHome.h"
#include "storage/EntryRefFlattening.h"

#include <gtest/gtest.h>

#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

using testing_support::TestHome;

namespace {

std::vector<char> flatten(const entry_ref& ref) {
    size_t size = BPrivate::flattened_entry_ref_size(ref);
    std::vector<char> buffer(size);
    EXPECT_EQ(BPrivate::flatten_entry_ref(ref, buffer.data(), &size), B_OK);
    EXPECT_EQ(size, buffer.size());
    return buffer;
}

} // namespace

TEST(EntryRef, DefaultRefHasNoName) {
    entry_ref ref;
    EXPECT_EQ(ref.name, nullptr);
    EXPECT_EQ(ref.device, (dev_t)-1);
}

TEST(EntryRef, ConstructorCopiesTheName) {
    char name[] = "file";
    entry_ref ref(3, 7, name);
    name[0] = 'X';
    EXPECT_STREQ(ref.name, "file");
    EXPECT_EQ(ref.device, (dev_t)3);
    EXPECT_EQ(ref.directory, (ino_t)7);
}

TEST(EntryRef, CopiesOwnTheirNames) {
    entry_ref original(1, 2, "a");
    entry_ref copy(original);
    original.set_name("b");
    EXPECT_STREQ(copy.name, "a");
    entry_ref assigned;
    assigned = original;
    EXPECT_STREQ(assigned.name, "b");
    EXPECT_NE(assigned.name, original.name);
}

TEST(EntryRef, SetNameNullClearsIt) {
    entry_ref ref(1, 2, "a");
    EXPECT_EQ(ref.set_name(nullptr), B_OK);
    EXPECT_EQ(ref.name, nullptr);
}

TEST(EntryRef, SelfAssignmentKeepsTheName) {
    entry_ref ref(1, 2, "keep");
    entry_ref& alias = ref;
    ref = alias;
    EXPECT_STREQ(ref.name, "keep");
}

TEST(EntryRef, EqualityIsDeviceDirectoryAndName) {
    EXPECT_EQ(entry_ref(1, 2, "a"), entry_ref(1, 2, "a"));
    EXPECT_NE(entry_ref(1, 2, "a"), entry_ref(1, 2, "b"));
    EXPECT_NE(entry_ref(1, 2, "a"), entry_ref(1, 3, "a"));
    EXPECT_NE(entry_ref(1, 2, "a"), entry_ref(4, 2, "a"));
    EXPECT_NE(entry_ref(1, 2, "a"), entry_ref(1, 2, nullptr));
    EXPECT_EQ(entry_ref(1, 2, nullptr), entry_ref(1, 2, nullptr));
}

TEST(EntryRef, LessThanOrdersByDeviceDirectoryThenName) {
    EXPECT_TRUE(entry_ref(1, 9, "z") < entry_ref(2, 0, "a"));
    EXPECT_TRUE(entry_ref(1, 1, "z") < entry_ref(1, 2, "a"));
    EXPECT_TRUE(entry_ref(1, 1, "a") < entry_ref(1, 1, "b"));
    EXPECT_FALSE(entry_ref(1, 1, "b") < entry_ref(1, 1, "b"));
}

TEST(NodeRef, EqualityAndOrder) {
    EXPECT_EQ(node_ref(1, 2), node_ref(1, 2));
    EXPECT_NE(node_ref(1, 2), node_ref(1, 3));
    EXPECT_TRUE(node_ref(1, 2) < node_ref(1, 3));
    EXPECT_TRUE(node_ref(1, 9) < node_ref(2, 0));
}

TEST(EntryRefFlattening, StartsWithTheBeLayout) {
    entry_ref ref(0x01020304, 0x0102030405060708LL, "name");
    std::vector<char> data = flatten(ref);
    ASSERT_GE(data.size(), 17u);
    int32 device;
    int64 directory;
    memcpy(&device, data.data(), 4);
    memcpy(&directory, data.data() + 4, 8);
    EXPECT_EQ(device, 0x01020304);
    EXPECT_EQ(directory, 0x0102030405060708LL);
    EXPECT_STREQ(data.data() + 12, "name");
}

TEST(EntryRefFlattening, AppendsTheFolderPathOfAKnownFolder) {
    TestHome home;
    std::string file = home.WriteFile("docs/letter", "x");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(file.c_str(), &ref), B_OK);
    std::vector<char> data = flatten(ref);
    size_t nameEnd = 12 + strlen("letter") + 1;
    ASSERT_GT(data.size(), nameEnd);
    EXPECT_EQ(std::string(data.data() + nameEnd), home.Path() + "/docs");
    EXPECT_EQ(data.back(), '\0');
}

TEST(EntryRefFlattening, RoundTripGivesAnEqualRef) {
    TestHome home;
    std::string file = home.WriteFile("a file", "x");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(file.c_str(), &ref), B_OK);
    std::vector<char> data = flatten(ref);
    entry_ref back;
    ASSERT_EQ(BPrivate::unflatten_entry_ref(data.data(), data.size(), &back), B_OK);
    EXPECT_EQ(back, ref);
    BPath path(&back);
    EXPECT_STREQ(path.Path(), file.c_str());
}

TEST(EntryRefFlattening, RefResolvesInAProcessThatNeverSawTheFolder) {
    TestHome home;
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // Only this child learns the folder's path; the parent gets the bytes.
        std::string file = home.WriteFile("only/child/knows", "x");
        entry_ref ref;
        if (get_ref_for_path(file.c_str(), &ref) != B_OK)
            _exit(1);
        char buffer[4096];
        size_t size = sizeof(buffer);
        if (BPrivate::flatten_entry_ref(ref, buffer, &size) != B_OK)
            _exit(2);
        _exit(write(channel[1], buffer, size) == (ssize_t)size ? 0 : 3);
    }
    close(channel[1]);
    int status;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_EQ(WEXITSTATUS(status), 0);
    char buffer[4096];
    ssize_t size = read(channel[0], buffer, sizeof(buffer));
    close(channel[0]);
    ASSERT_GT(size, 12);

    entry_ref ref;
    ASSERT_EQ(BPrivate::unflatten_entry_ref(buffer, size, &ref), B_OK);
    BEntry entry(&ref);
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_TRUE(entry.Exists());
    BPath path;
    ASSERT_EQ(entry.GetPath(&path), B_OK);
    EXPECT_EQ(std::string(path.Path()), home.Path() + "/only/child/knows");
}

TEST(EntryRefFlattening, ReadsTheBeLayoutWithoutAPath) {
    char data[12 + 4];
    int32 device = 5;
    int64 directory = 77;
    memcpy(data, &device, 4);
    memcpy(data + 4, &directory, 8);
    memcpy(data + 12, "abc", 4);
    entry_ref ref;
    ASSERT_EQ(BPrivate::unflatten_entry_ref(data, sizeof(data), &ref), B_OK);
    EXPECT_EQ(ref.device, (dev_t)5);
    EXPECT_EQ(ref.directory, (ino_t)77);
    EXPECT_STREQ(ref.name, "abc");
}

TEST(EntryRefFlattening, FewerThanTwelveBytesIsBadValue) {
    char data[11] = {};
    entry_ref ref;
    EXPECT_EQ(BPrivate::unflatten_entry_ref(data, sizeof(data), &ref), B_BAD_VALUE);
}

TEST(EntryRefFlattening, NullArgumentsAreBadValue) {
    char data[16] = {};
    entry_ref ref;
    size_t size = sizeof(data);
    EXPECT_EQ(BPrivate::unflatten_entry_ref(nullptr, 16, &ref), B_BAD_VALUE);
    EXPECT_EQ(BPrivate::unflatten_entry_ref(data, 16, nullptr), B_BAD_VALUE);
    EXPECT_EQ(BPrivate::flatten_entry_ref(ref, nullptr, &size), B_BAD_VALUE);
    EXPECT_EQ(BPrivate::flatten_entry_ref(ref, data, nullptr), B_BAD_VALUE);
}

TEST(EntryRefFlattening, ExactlyTwelveBytesIsARefWithoutName) {
    char data[12] = {};
    entry_ref ref(1, 1, "old");
    ASSERT_EQ(BPrivate::unflatten_entry_ref(data, sizeof(data), &ref), B_OK);
    EXPECT_EQ(ref.name, nullptr);
}

TEST(EntryRefFlattening, RefWithoutNameFlattensToTwelveBytes) {
    entry_ref ref;
    EXPECT_EQ(BPrivate::flattened_entry_ref_size(ref), 12u);
    std::vector<char> data = flatten(ref);
    int32 device;
    memcpy(&device, data.data(), 4);
    EXPECT_EQ(device, -1);
}

TEST(EntryRefFlattening, NameWithoutNulStopsAtTheEnd) {
    char data[12 + 3];
    memset(data, 0, 12);
    memcpy(data + 12, "xyz", 3);
    entry_ref ref;
    ASSERT_EQ(BPrivate::unflatten_entry_ref(data, sizeof(data), &ref), B_OK);
    EXPECT_STREQ(ref.name, "xyz");
}

TEST(EntryRefFlattening, TooSmallBufferReportsTheSizeNeeded) {
    entry_ref ref(1, 2, "name");
    char buffer[8];
    size_t size = sizeof(buffer);
    EXPECT_EQ(BPrivate::flatten_entry_ref(ref, buffer, &size), B_NO_MEMORY);
    EXPECT_EQ(size, BPrivate::flattened_entry_ref_size(ref));
}

TEST(EntryRefFlattening, FolderPathThatDoesNotMatchIsIgnored) {
    TestHome home;
    // A path whose inode differs from the one in the header must not be trusted.
    std::string data(12, '\0');
    int32 device = 1;
    int64 directory = 123456789;
    memcpy(&data[0], &device, 4);
    memcpy(&data[4], &directory, 8);
    data += "name";
    data += '\0';
    data += home.Path();
    data += '\0';
    entry_ref ref;
    ASSERT_EQ(BPrivate::unflatten_entry_ref(data.data(), data.size(), &ref), B_OK);
    EXPECT_EQ(ref.directory, (ino_t)123456789);
    BEntry entry(&ref);
    EXPECT_EQ(entry.InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(EntryRef, HandBuiltRefResolvesOnceTheFolderWasSeen) {
    TestHome home;
    std::string folder = home.MakeFolder("seen");
    home.WriteFile("seen/target", "x");
    BEntry folderEntry(folder.c_str());
    node_ref folderNode;
    ASSERT_EQ(folderEntry.GetNodeRef(&folderNode), B_OK);

    entry_ref ref(folderNode.device, folderNode.node, "target");
    BEntry entry(&ref);
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_TRUE(entry.Exists());
}

TEST(EntryRef, RefOfAnUnknownFolderIsNotFound) {
    entry_ref ref(12345, 987654321, "nothing");
    BEntry entry(&ref);
    EXPECT_EQ(entry.InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(EntryRef, RefWithASlashInItsNameIsBadValue) {
    TestHome home;
    entry_ref folder;
    ASSERT_EQ(get_ref_for_path((home.Path() + "/x").c_str(), &folder), B_OK);
    entry_ref ref(folder.device, folder.directory, "a/b");
    BEntry entry(&ref);
    EXPECT_EQ(entry.InitCheck(), B_BAD_VALUE);
}
