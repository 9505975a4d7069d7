#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <Path.h>
#include <SymLink.h>

#include "StorageTestSupport.h"
#include "TestHome.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <string>

using testing_support::TestHome;

namespace {

std::string path_of(const BEntry& entry) {
    BPath path;
    if (entry.GetPath(&path) != B_OK)
        return std::string();
    return path.Path();
}

} // namespace

TEST(Directory, OpensAFolder) {
    TestHome home;
    BDirectory directory(home.Path().c_str());
    EXPECT_EQ(directory.InitCheck(), B_OK);
    EXPECT_TRUE(directory.IsDirectory());
}

TEST(Directory, AFileIsNotADirectory) {
    TestHome home;
    BDirectory directory(home.WriteFile("f", "x").c_str());
    EXPECT_EQ(directory.InitCheck(), B_NOT_A_DIRECTORY);
}

TEST(Directory, MissingFolderIsNotFound) {
    TestHome home;
    EXPECT_EQ(BDirectory((home.Path() + "/none").c_str()).InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(Directory, FollowsALinkToAFolder) {
    TestHome home;
    std::string folder = home.MakeFolder("real");
    std::string link = home.Path() + "/link";
    ASSERT_EQ(symlink(folder.c_str(), link.c_str()), 0);
    BDirectory directory(link.c_str());
    ASSERT_EQ(directory.InitCheck(), B_OK);
    BEntry entry;
    ASSERT_EQ(directory.GetEntry(&entry), B_OK);
    EXPECT_EQ(path_of(entry), folder);
}

TEST(Directory, SetToNodeRefOfAKnownFolder) {
    TestHome home;
    std::string folder = home.MakeFolder("by node");
    node_ref nodeRef;
    ASSERT_EQ(BEntry(folder.c_str()).GetNodeRef(&nodeRef), B_OK);
    BDirectory directory(&nodeRef);
    ASSERT_EQ(directory.InitCheck(), B_OK);
    BEntry entry;
    directory.GetEntry(&entry);
    EXPECT_EQ(path_of(entry), folder);
}

TEST(Directory, SetToEntryRefAndRelativePath) {
    TestHome home;
    std::string folder = home.MakeFolder("a/b");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path((home.Path() + "/a").c_str(), &ref), B_OK);
    BDirectory a(&ref);
    ASSERT_EQ(a.InitCheck(), B_OK);
    BDirectory b(&a, "b");
    ASSERT_EQ(b.InitCheck(), B_OK);
}

TEST(Directory, UnreadableFolderIsPermissionDenied) {
    TestHome home;
    std::string folder = home.MakeFolder("closed");
    ASSERT_EQ(chmod(folder.c_str(), 0700), 0);
    storage_testing::open_up_to(home.Path(), GLIMROW_BINARY_DIR);
    int result = storage_testing::run_unprivileged([&] {
        BDirectory directory(folder.c_str());
        return directory.InitCheck() == B_PERMISSION_DENIED ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
}

TEST(Directory, FindEntryFindsAnExistingEntry) {
    TestHome home;
    std::string file = home.WriteFile("dir/f", "x");
    BDirectory directory((home.Path() + "/dir").c_str());
    BEntry entry;
    ASSERT_EQ(directory.FindEntry("f", &entry), B_OK);
    EXPECT_EQ(path_of(entry), file);
}

TEST(Directory, FindEntryOfAMissingEntryIsNotFound) {
    TestHome home;
    BDirectory directory(home.Path().c_str());
    BEntry entry;
    EXPECT_EQ(directory.FindEntry("missing", &entry), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(entry.InitCheck(), B_NO_INIT);
}

TEST(Directory, FindEntryWithAndWithoutTraversal) {
    TestHome home;
    std::string folder = home.MakeFolder("settings-real");
    ASSERT_EQ(symlink(folder.c_str(), (home.Path() + "/settings").c_str()), 0);
    BDirectory directory(home.Path().c_str());
    BEntry entry;
    ASSERT_EQ(directory.FindEntry("settings", &entry, true), B_OK);
    EXPECT_TRUE(entry.IsDirectory());
    EXPECT_EQ(path_of(entry), folder);
    ASSERT_EQ(directory.FindEntry("settings", &entry, false), B_OK);
    EXPECT_TRUE(entry.IsSymLink());
}

TEST(Directory, FindEntryThroughABrokenLinkIsNotFound) {
    TestHome home;
    ASSERT_EQ(symlink("nowhere", (home.Path() + "/broken").c_str()), 0);
    BDirectory directory(home.Path().c_str());
    BEntry entry;
    EXPECT_EQ(directory.FindEntry("broken", &entry, true), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(directory.FindEntry("broken", &entry, false), B_OK);
}

TEST(Directory, CreateFileMakesAFileReadWrite) {
    TestHome home;
    BDirectory directory(home.Path().c_str());
    BFile file;
    ASSERT_EQ(directory.CreateFile("made", &file), B_OK);
    EXPECT_TRUE(file.IsReadable());
    EXPECT_TRUE(file.IsWritable());
    EXPECT_EQ(file.Write("x", 1), 1);
}

TEST(Directory, CreateFileEmptiesAnExistingFile) {
    TestHome home;
    std::string path = home.WriteFile("there", "old");
    BDirectory directory(home.Path().c_str());
    ASSERT_EQ(directory.CreateFile("there", nullptr), B_OK);
    EXPECT_EQ(testing_support::read_file(path), "");
}

TEST(Directory, CreateFileWithFailIfExistsRefusesAnExistingFile) {
    TestHome home;
    std::string path = home.WriteFile("there", "old");
    BDirectory directory(home.Path().c_str());
    BFile file;
    EXPECT_EQ(directory.CreateFile("there", &file, true), B_FILE_EXISTS);
    EXPECT_EQ(testing_support::read_file(path), "old");
}

TEST(Directory, CreateDirectoryMakesAFolder) {
    TestHome home;
    BDirectory directory(home.Path().c_str());
    BDirectory made;
    ASSERT_EQ(directory.CreateDirectory("sub", &made), B_OK);
    EXPECT_EQ(made.InitCheck(), B_OK);
    EXPECT_EQ(directory.CreateDirectory("sub", nullptr), B_FILE_EXISTS);
}

TEST(Directory, CreateSymLinkMakesALink) {
    TestHome home;
    BDirectory directory(home.Path().c_str());
    BSymLink link;
    ASSERT_EQ(directory.CreateSymLink("link", "target/path", &link), B_OK);
    EXPECT_TRUE(link.IsSymLink());
    char buffer[64];
    EXPECT_EQ(link.ReadLink(buffer, sizeof(buffer)), 11);
    EXPECT_STREQ(buffer, "target/path");
}

TEST(Directory, IteratesEveryEntryOnceWithoutDots) {
    TestHome home;
    std::string folder = home.MakeFolder("list");
    home.WriteFile("list/a", "x");
    home.WriteFile("list/b", "x");
    home.MakeFolder("list/c");
    BDirectory directory(folder.c_str());
    std::set<std::string> names;
    entry_ref ref;
    while (directory.GetNextRef(&ref) == B_OK)
        names.insert(ref.name);
    EXPECT_EQ(names, (std::set<std::string>{"a", "b", "c"}));
    EXPECT_EQ(directory.GetNextRef(&ref), B_ENTRY_NOT_FOUND);
}

TEST(Directory, GetNextRefGivesRefsThatResolve) {
    TestHome home;
    std::string folder = home.MakeFolder("list");
    std::string file = home.WriteFile("list/only", "x");
    BDirectory directory(folder.c_str());
    entry_ref ref;
    ASSERT_EQ(directory.GetNextRef(&ref), B_OK);
    EXPECT_EQ(path_of(BEntry(&ref)), file);
}

TEST(Directory, GetNextEntryWithTraversal) {
    TestHome home;
    std::string folder = home.MakeFolder("list");
    std::string target = home.WriteFile("target", "x");
    ASSERT_EQ(symlink(target.c_str(), (folder + "/link").c_str()), 0);
    BDirectory directory(folder.c_str());
    BEntry entry;
    ASSERT_EQ(directory.GetNextEntry(&entry, true), B_OK);
    EXPECT_EQ(path_of(entry), target);
    ASSERT_EQ(directory.Rewind(), B_OK);
    ASSERT_EQ(directory.GetNextEntry(&entry, false), B_OK);
    EXPECT_TRUE(entry.IsSymLink());
    EXPECT_EQ(directory.GetNextEntry(&entry), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(entry.InitCheck(), B_NO_INIT);
}

TEST(Directory, RewindStartsOver) {
    TestHome home;
    std::string folder = home.MakeFolder("list");
    home.WriteFile("list/a", "x");
    BDirectory directory(folder.c_str());
    entry_ref ref;
    ASSERT_EQ(directory.GetNextRef(&ref), B_OK);
    EXPECT_EQ(directory.GetNextRef(&ref), B_ENTRY_NOT_FOUND);
    ASSERT_EQ(directory.Rewind(), B_OK);
    EXPECT_EQ(directory.GetNextRef(&ref), B_OK);
}

TEST(Directory, CountEntriesLeavesTheIterationAlone) {
    TestHome home;
    std::string folder = home.MakeFolder("list");
    home.WriteFile("list/a", "x");
    home.WriteFile("list/b", "x");
    BDirectory directory(folder.c_str());
    entry_ref ref;
    ASSERT_EQ(directory.GetNextRef(&ref), B_OK);
    EXPECT_EQ(directory.CountEntries(), 2);
    EXPECT_EQ(directory.GetNextRef(&ref), B_OK);
    EXPECT_EQ(directory.GetNextRef(&ref), B_ENTRY_NOT_FOUND);
}

TEST(Directory, EmptyFolderCountsZero) {
    TestHome home;
    BDirectory directory(home.MakeFolder("empty").c_str());
    EXPECT_EQ(directory.CountEntries(), 0);
    entry_ref ref;
    EXPECT_EQ(directory.GetNextRef(&ref), B_ENTRY_NOT_FOUND);
}

TEST(Directory, GetNextDirentsCopiesOneRecord) {
    TestHome home;
    std::string folder = home.MakeFolder("list");
    home.WriteFile("list/entry", "x");
    BDirectory directory(folder.c_str());
    char buffer[sizeof(struct dirent) + 256];
    struct dirent* record = reinterpret_cast<struct dirent*>(buffer);
    ASSERT_EQ(directory.GetNextDirents(record, sizeof(buffer)), 1);
    EXPECT_STREQ(record->d_name, "entry");
    EXPECT_EQ(directory.GetNextDirents(record, sizeof(buffer)), 0);
}

TEST(Directory, ContainsLooksAtEveryLevelBelow) {
    TestHome home;
    std::string folder = home.MakeFolder("top");
    home.WriteFile("top/deep/deeper/file", "x");
    home.WriteFile("topper/file", "x");
    BDirectory directory(folder.c_str());
    EXPECT_TRUE(directory.Contains("deep/deeper/file"));
    EXPECT_TRUE(directory.Contains((home.Path() + "/top/deep").c_str()));
    EXPECT_FALSE(directory.Contains((home.Path() + "/topper/file").c_str()));
    EXPECT_FALSE(directory.Contains("deep/missing"));
}

TEST(Directory, ContainsChecksTheNodeFlavor) {
    TestHome home;
    std::string folder = home.MakeFolder("top");
    home.WriteFile("top/file", "x");
    home.MakeFolder("top/folder");
    ASSERT_EQ(symlink("file", (folder + "/link").c_str()), 0);
    BDirectory directory(folder.c_str());
    EXPECT_TRUE(directory.Contains("file", B_FILE_NODE));
    EXPECT_FALSE(directory.Contains("file", B_DIRECTORY_NODE));
    EXPECT_TRUE(directory.Contains("folder", B_DIRECTORY_NODE));
    EXPECT_TRUE(directory.Contains("link", B_SYMLINK_NODE));
    EXPECT_FALSE(directory.Contains("link", B_FILE_NODE));
    BEntry entry((folder + "/file").c_str());
    EXPECT_TRUE(directory.Contains(&entry, B_ANY_NODE));
}

TEST(Directory, ContainsItself) {
    TestHome home;
    std::string folder = home.MakeFolder("self");
    BDirectory directory(folder.c_str());
    BEntry entry(folder.c_str());
    EXPECT_TRUE(directory.Contains(&entry));
}

TEST(Directory, RootOfAVolumeIsRootDirectory) {
    TestHome home;
    EXPECT_TRUE(BDirectory("/").IsRootDirectory());
    EXPECT_FALSE(BDirectory(home.Path().c_str()).IsRootDirectory());
    EXPECT_TRUE(BDirectory("/proc").IsRootDirectory());
}

TEST(Directory, GetStatForAnEntry) {
    TestHome home;
    home.WriteFile("five", "12345");
    BDirectory directory(home.Path().c_str());
    struct stat stat;
    ASSERT_EQ(directory.GetStatFor("five", &stat), B_OK);
    EXPECT_EQ(stat.st_size, 5);
    EXPECT_EQ(directory.GetStatFor("none", &stat), B_ENTRY_NOT_FOUND);
}

TEST(Directory, CreateDirectoryFunctionMakesEveryLevel) {
    TestHome home;
    std::string deep = home.Path() + "/one/two/three";
    ASSERT_EQ(create_directory(deep.c_str(), 0755), B_OK);
    EXPECT_EQ(BDirectory(deep.c_str()).InitCheck(), B_OK);
    EXPECT_EQ(create_directory(deep.c_str(), 0755), B_OK);
}

TEST(Directory, CreateDirectoryFunctionStopsAtAFile) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    EXPECT_EQ(create_directory((file + "/sub").c_str(), 0755), B_NOT_A_DIRECTORY);
    EXPECT_EQ(create_directory(nullptr, 0755), B_BAD_VALUE);
}

TEST(Directory, CopyIteratesOnItsOwn) {
    TestHome home;
    std::string folder = home.MakeFolder("list");
    home.WriteFile("list/a", "x");
    BDirectory directory(folder.c_str());
    entry_ref ref;
    ASSERT_EQ(directory.GetNextRef(&ref), B_OK);
    BDirectory copy(directory);
    ASSERT_EQ(copy.InitCheck(), B_OK);
    EXPECT_EQ(copy.GetNextRef(&ref), B_OK);
}
