#include <Directory.h>
#include <Entry.h>
#include <Node.h>
#include <Path.h>
#include <Volume.h>

#include "StorageTestSupport.h"
#include "TestHome.h"

#include <gtest/gtest.h>

#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <string>

using testing_support::TestHome;

namespace {

std::string path_of(const BEntry& entry) {
    BPath path;
    if (entry.GetPath(&path) != B_OK)
        return std::string();
    return path.Path();
}

bool exists(const std::string& path) {
    struct stat pathStat;
    return lstat(path.c_str(), &pathStat) == 0;
}

} // namespace

TEST(Entry, DefaultIsUninitialised) {
    BEntry entry;
    EXPECT_EQ(entry.InitCheck(), B_NO_INIT);
    EXPECT_FALSE(entry.Exists());
}

TEST(Entry, ExistingFileExists) {
    TestHome home;
    std::string file = home.WriteFile("file", "data");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_TRUE(entry.Exists());
    EXPECT_TRUE(entry.IsFile());
    EXPECT_EQ(path_of(entry), file);
}

TEST(Entry, MissingLeafInAnExistingFolderIsAnAbstractEntry) {
    TestHome home;
    BEntry entry((home.Path() + "/later").c_str());
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_FALSE(entry.Exists());
    EXPECT_EQ(path_of(entry), home.Path() + "/later");
}

TEST(Entry, MissingFolderIsNotFound) {
    TestHome home;
    BEntry entry((home.Path() + "/no/such").c_str());
    EXPECT_EQ(entry.InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(Entry, FileUsedAsFolderIsNotADirectory) {
    TestHome home;
    std::string file = home.WriteFile("plain", "x");
    BEntry entry((file + "/inside").c_str());
    EXPECT_EQ(entry.InitCheck(), B_NOT_A_DIRECTORY);
}

TEST(Entry, NullPathIsBadValue) {
    BEntry entry((const char*)nullptr);
    EXPECT_EQ(entry.InitCheck(), B_BAD_VALUE);
}

TEST(Entry, WithoutTraversingALinkIsItself) {
    TestHome home;
    std::string target = home.WriteFile("target", "x");
    std::string link = home.Path() + "/link";
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    BEntry entry(link.c_str(), false);
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_TRUE(entry.IsSymLink());
    EXPECT_EQ(path_of(entry), link);
}

TEST(Entry, TraversingALinkGivesItsTarget) {
    TestHome home;
    std::string target = home.WriteFile("sub/target", "x");
    std::string link = home.Path() + "/link";
    ASSERT_EQ(symlink("sub/target", link.c_str()), 0);
    BEntry entry(link.c_str(), true);
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_TRUE(entry.IsFile());
    EXPECT_EQ(path_of(entry), target);
    char name[B_FILE_NAME_LENGTH];
    ASSERT_EQ(entry.GetName(name), B_OK);
    EXPECT_STREQ(name, "target");
}

TEST(Entry, TraversingALinkToAFolderGivesTheFolder) {
    TestHome home;
    std::string folder = home.MakeFolder("folder");
    std::string link = home.Path() + "/to-folder";
    ASSERT_EQ(symlink(folder.c_str(), link.c_str()), 0);
    BEntry entry(link.c_str(), true);
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_TRUE(entry.IsDirectory());
    EXPECT_EQ(path_of(entry), folder);
}

TEST(Entry, TraversingABrokenLinkIsNotFound) {
    TestHome home;
    std::string link = home.Path() + "/broken";
    ASSERT_EQ(symlink("nowhere", link.c_str()), 0);
    BEntry traversed(link.c_str(), true);
    EXPECT_EQ(traversed.InitCheck(), B_ENTRY_NOT_FOUND);
    BEntry itself(link.c_str(), false);
    ASSERT_EQ(itself.InitCheck(), B_OK);
    EXPECT_TRUE(itself.Exists());
    EXPECT_TRUE(itself.IsSymLink());
}

TEST(Entry, TraversingALinkLoopIsLinkLimit) {
    TestHome home;
    std::string a = home.Path() + "/a";
    std::string b = home.Path() + "/b";
    ASSERT_EQ(symlink(b.c_str(), a.c_str()), 0);
    ASSERT_EQ(symlink(a.c_str(), b.c_str()), 0);
    BEntry entry(a.c_str(), true);
    EXPECT_EQ(entry.InitCheck(), B_LINK_LIMIT);
}

TEST(Entry, LinkLoopInTheFolderPartIsLinkLimit) {
    TestHome home;
    std::string loop = home.Path() + "/loop";
    ASSERT_EQ(symlink(loop.c_str(), loop.c_str()), 0);
    BEntry entry((loop + "/leaf").c_str());
    EXPECT_EQ(entry.InitCheck(), B_LINK_LIMIT);
}

TEST(Entry, NameOf255BytesWorks) {
    TestHome home;
    std::string name(255, 'n');
    std::string file = home.WriteFile(name, "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_TRUE(entry.Exists());
    char buffer[B_FILE_NAME_LENGTH];
    ASSERT_EQ(entry.GetName(buffer), B_OK);
    EXPECT_EQ(std::string(buffer), name);
}

TEST(Entry, NameOf256BytesIsNameTooLong) {
    TestHome home;
    BEntry entry((home.Path() + "/" + std::string(256, 'n')).c_str());
    EXPECT_EQ(entry.InitCheck(), B_NAME_TOO_LONG);
    entry_ref ref;
    EXPECT_EQ(get_ref_for_path((home.Path() + "/" + std::string(256, 'n')).c_str(), &ref),
              B_NAME_TOO_LONG);
}

TEST(Entry, NonUtf8NameSurvivesRefAndPath) {
    TestHome home;
    std::string name = "caf\xe9\xff-file";
    std::string file = home.WriteFile(name, "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.InitCheck(), B_OK);
    entry_ref ref;
    ASSERT_EQ(entry.GetRef(&ref), B_OK);
    EXPECT_EQ(std::string(ref.name), name);
    BEntry again(&ref);
    EXPECT_TRUE(again.Exists());
    EXPECT_EQ(path_of(again), file);
}

TEST(Entry, GetRefOfAMissingLeaf) {
    TestHome home;
    BEntry entry((home.Path() + "/ghost").c_str());
    entry_ref ref;
    ASSERT_EQ(entry.GetRef(&ref), B_OK);
    EXPECT_STREQ(ref.name, "ghost");
    struct stat folder;
    ASSERT_EQ(stat(home.Path().c_str(), &folder), 0);
    EXPECT_EQ(ref.directory, folder.st_ino);
    EXPECT_EQ(ref.device, folder.st_dev);
}

TEST(Entry, RefOfAnEntryResolvesToTheSameEntry) {
    TestHome home;
    std::string file = home.WriteFile("docs/one", "x");
    BEntry entry(file.c_str());
    entry_ref ref;
    ASSERT_EQ(entry.GetRef(&ref), B_OK);
    BEntry fromRef(&ref);
    EXPECT_TRUE(fromRef == entry);
}

TEST(Entry, GetParentGivesTheFolder) {
    TestHome home;
    std::string file = home.WriteFile("dir/file", "x");
    BEntry entry(file.c_str());
    BEntry parent;
    ASSERT_EQ(entry.GetParent(&parent), B_OK);
    EXPECT_EQ(path_of(parent), home.Path() + "/dir");
    BDirectory directory;
    ASSERT_EQ(entry.GetParent(&directory), B_OK);
    EXPECT_EQ(directory.InitCheck(), B_OK);
    BEntry directoryEntry;
    ASSERT_EQ(directory.GetEntry(&directoryEntry), B_OK);
    EXPECT_EQ(path_of(directoryEntry), home.Path() + "/dir");
}

TEST(Entry, RootHasNoParent) {
    BEntry root("/");
    ASSERT_EQ(root.InitCheck(), B_OK);
    EXPECT_TRUE(root.IsDirectory());
    EXPECT_EQ(path_of(root), "/");
    BEntry parent;
    EXPECT_EQ(root.GetParent(&parent), B_ENTRY_NOT_FOUND);
    char name[B_FILE_NAME_LENGTH];
    ASSERT_EQ(root.GetName(name), B_OK);
    EXPECT_STREQ(name, "/");
}

TEST(Entry, GetNodeRefMatchesStat) {
    TestHome home;
    std::string file = home.WriteFile("node", "x");
    BEntry entry(file.c_str());
    node_ref ref;
    ASSERT_EQ(entry.GetNodeRef(&ref), B_OK);
    struct stat fileStat;
    ASSERT_EQ(stat(file.c_str(), &fileStat), 0);
    EXPECT_EQ(ref.device, fileStat.st_dev);
    EXPECT_EQ(ref.node, fileStat.st_ino);
}

TEST(Entry, GetNodeRefOfAMissingEntryIsNotFound) {
    TestHome home;
    BEntry entry((home.Path() + "/gone").c_str());
    node_ref ref;
    EXPECT_EQ(entry.GetNodeRef(&ref), B_ENTRY_NOT_FOUND);
}

TEST(Entry, MoveToAnotherFolderKeepsTheName) {
    TestHome home;
    std::string file = home.WriteFile("from/item", "x");
    std::string to = home.MakeFolder("to");
    BEntry entry(file.c_str());
    BDirectory destination(to.c_str());
    ASSERT_EQ(entry.MoveTo(&destination), B_OK);
    EXPECT_FALSE(exists(file));
    EXPECT_TRUE(exists(to + "/item"));
    EXPECT_EQ(path_of(entry), to + "/item");
}

TEST(Entry, MoveToWithANewName) {
    TestHome home;
    std::string file = home.WriteFile("item", "x");
    std::string to = home.MakeFolder("to");
    BEntry entry(file.c_str());
    BDirectory destination(to.c_str());
    ASSERT_EQ(entry.MoveTo(&destination, "renamed"), B_OK);
    EXPECT_TRUE(exists(to + "/renamed"));
    EXPECT_EQ(path_of(entry), to + "/renamed");
}

TEST(Entry, MoveToWithoutClobberKeepsAnExistingTarget) {
    TestHome home;
    std::string file = home.WriteFile("item", "mine");
    std::string other = home.WriteFile("to/item", "theirs");
    BEntry entry(file.c_str());
    BDirectory destination((home.Path() + "/to").c_str());
    EXPECT_EQ(entry.MoveTo(&destination, nullptr, false), B_FILE_EXISTS);
    EXPECT_EQ(testing_support::read_file(other), "theirs");
    EXPECT_TRUE(exists(file));
    EXPECT_EQ(path_of(entry), file);
}

TEST(Entry, MoveToWithClobberReplacesTheTarget) {
    TestHome home;
    std::string file = home.WriteFile("item", "mine");
    std::string other = home.WriteFile("to/item", "theirs");
    BEntry entry(file.c_str());
    BDirectory destination((home.Path() + "/to").c_str());
    ASSERT_EQ(entry.MoveTo(&destination, nullptr, true), B_OK);
    EXPECT_EQ(testing_support::read_file(other), "mine");
    EXPECT_FALSE(exists(file));
}

TEST(Entry, MoveOfAMissingEntryIsNotFound) {
    TestHome home;
    BEntry entry((home.Path() + "/never").c_str());
    BDirectory destination(home.MakeFolder("to").c_str());
    EXPECT_EQ(entry.MoveTo(&destination), B_ENTRY_NOT_FOUND);
}

TEST(Entry, MoveToAnUninitialisedFolderIsBadValue) {
    TestHome home;
    BEntry entry(home.WriteFile("item", "x").c_str());
    BDirectory destination;
    EXPECT_EQ(entry.MoveTo(&destination), B_BAD_VALUE);
    EXPECT_EQ(entry.MoveTo(nullptr), B_BAD_VALUE);
}

TEST(Entry, RenameIsRelativeToTheEntrysFolder) {
    TestHome home;
    std::string file = home.WriteFile("dir/old", "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.Rename("new"), B_OK);
    EXPECT_TRUE(exists(home.Path() + "/dir/new"));
    EXPECT_FALSE(exists(file));
    char name[B_FILE_NAME_LENGTH];
    entry.GetName(name);
    EXPECT_STREQ(name, "new");
}

TEST(Entry, RenameWithoutClobberRefusesATakenName) {
    TestHome home;
    std::string file = home.WriteFile("a", "A");
    home.WriteFile("b", "B");
    BEntry entry(file.c_str());
    EXPECT_EQ(entry.Rename("b", false), B_FILE_EXISTS);
    EXPECT_EQ(testing_support::read_file(home.Path() + "/b"), "B");
    ASSERT_EQ(entry.Rename("b", true), B_OK);
    EXPECT_EQ(testing_support::read_file(home.Path() + "/b"), "A");
}

TEST(Entry, RenameToAnAbsolutePathMoves) {
    TestHome home;
    std::string file = home.WriteFile("a", "A");
    std::string target = home.MakeFolder("elsewhere") + "/z";
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.Rename(target.c_str()), B_OK);
    EXPECT_TRUE(exists(target));
}

TEST(Entry, RemoveDeletesAFile) {
    TestHome home;
    std::string file = home.WriteFile("doomed", "x");
    BEntry entry(file.c_str());
    ASSERT_EQ(entry.Remove(), B_OK);
    EXPECT_FALSE(exists(file));
    EXPECT_FALSE(entry.Exists());
    EXPECT_EQ(entry.InitCheck(), B_OK);
}

TEST(Entry, RemoveDeletesAnEmptyFolder) {
    TestHome home;
    std::string folder = home.MakeFolder("empty");
    BEntry entry(folder.c_str());
    ASSERT_EQ(entry.Remove(), B_OK);
    EXPECT_FALSE(exists(folder));
}

TEST(Entry, RemoveOfAFullFolderIsDirectoryNotEmpty) {
    TestHome home;
    home.WriteFile("full/x", "x");
    BEntry entry((home.Path() + "/full").c_str());
    EXPECT_EQ(entry.Remove(), B_DIRECTORY_NOT_EMPTY);
}

TEST(Entry, RemoveOfALinkLeavesTheTarget) {
    TestHome home;
    std::string target = home.WriteFile("target", "x");
    std::string link = home.Path() + "/link";
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    BEntry entry(link.c_str());
    ASSERT_EQ(entry.Remove(), B_OK);
    EXPECT_FALSE(exists(link));
    EXPECT_TRUE(exists(target));
}

TEST(Entry, UnsetMakesItUninitialised) {
    TestHome home;
    BEntry entry(home.Path().c_str());
    entry.Unset();
    EXPECT_EQ(entry.InitCheck(), B_NO_INIT);
    entry_ref ref;
    EXPECT_EQ(entry.GetRef(&ref), B_NO_INIT);
}

TEST(Entry, SetToFolderAndRelativePath) {
    TestHome home;
    std::string file = home.WriteFile("dir/inner/f", "x");
    BDirectory directory((home.Path() + "/dir").c_str());
    BEntry entry(&directory, "inner/f");
    ASSERT_EQ(entry.InitCheck(), B_OK);
    EXPECT_EQ(path_of(entry), file);
}

TEST(Entry, CopiesAreEqualAndIndependent) {
    TestHome home;
    std::string a = home.WriteFile("a", "x");
    std::string b = home.WriteFile("b", "x");
    BEntry first(a.c_str());
    BEntry second(first);
    EXPECT_TRUE(first == second);
    second.SetTo(b.c_str());
    EXPECT_TRUE(first != second);
    EXPECT_EQ(path_of(first), a);
}

TEST(Entry, PermissionDeniedFolderIsReported) {
    TestHome home;
    std::string locked = home.MakeFolder("locked");
    home.WriteFile("locked/secret", "x");
    ASSERT_EQ(chmod(locked.c_str(), 0700), 0);
    storage_testing::open_up_to(home.Path(), GLIMROW_BINARY_DIR);
    int result = storage_testing::run_unprivileged([&] {
        BEntry entry((locked + "/secret").c_str());
        return entry.InitCheck() == B_PERMISSION_DENIED ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
}

TEST(Entry, StatValuesMatchTheFile) {
    TestHome home;
    std::string file = home.WriteFile("sized", "12345");
    BEntry entry(file.c_str());
    off_t size;
    ASSERT_EQ(entry.GetSize(&size), B_OK);
    EXPECT_EQ(size, 5);
    ASSERT_EQ(entry.SetModificationTime(1000000000), B_OK);
    time_t modified;
    ASSERT_EQ(entry.GetModificationTime(&modified), B_OK);
    EXPECT_EQ(modified, 1000000000);
    ASSERT_EQ(entry.SetPermissions(0640), B_OK);
    mode_t permissions;
    ASSERT_EQ(entry.GetPermissions(&permissions), B_OK);
    EXPECT_EQ(permissions, (mode_t)0640);
    time_t created;
    ASSERT_EQ(entry.GetCreationTime(&created), B_OK);
    EXPECT_LE(created, time(nullptr));
}

TEST(Entry, GetVolumeGivesTheFilesDevice) {
    TestHome home;
    BEntry entry(home.Path().c_str());
    BVolume volume;
    ASSERT_EQ(entry.GetVolume(&volume), B_OK);
    struct stat folder;
    ASSERT_EQ(stat(home.Path().c_str(), &folder), 0);
    EXPECT_EQ(volume.Device(), folder.st_dev);
}

TEST(Entry, GetRefForPathOfAMissingFolderFails) {
    TestHome home;
    entry_ref ref;
    EXPECT_EQ(get_ref_for_path((home.Path() + "/a/b").c_str(), &ref), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(get_ref_for_path(nullptr, &ref), B_BAD_VALUE);
    EXPECT_EQ(get_ref_for_path(home.Path().c_str(), nullptr), B_BAD_VALUE);
}
