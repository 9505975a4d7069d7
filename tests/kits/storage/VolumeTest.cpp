#include <Directory.h>
#include <Entry.h>
#include <Path.h>
#include <Volume.h>
#include <fs_info.h>

#include "TestHome.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>

using testing_support::TestHome;

namespace {

dev_t device_of(const char* path) {
    struct stat pathStat;
    return stat(path, &pathStat) == 0 ? pathStat.st_dev : (dev_t)-1;
}

} // namespace

TEST(Volume, DefaultIsUninitialised) {
    BVolume volume;
    EXPECT_EQ(volume.InitCheck(), B_NO_INIT);
}

TEST(Volume, SetToTheRootDevice) {
    BVolume volume(device_of("/"));
    ASSERT_EQ(volume.InitCheck(), B_OK);
    EXPECT_EQ(volume.Device(), device_of("/"));
    BDirectory root;
    ASSERT_EQ(volume.GetRootDirectory(&root), B_OK);
    EXPECT_TRUE(root.IsRootDirectory());
    BEntry entry;
    root.GetEntry(&entry);
    BPath path;
    entry.GetPath(&path);
    EXPECT_STREQ(path.Path(), "/");
}

TEST(Volume, UnknownDeviceIsBadValue) {
    BVolume volume((dev_t)0x7fffffff);
    EXPECT_EQ(volume.InitCheck(), B_BAD_VALUE);
}

TEST(Volume, RootDirectoryOfProcIsItsMountPoint) {
    BVolume volume(device_of("/proc/self"));
    ASSERT_EQ(volume.InitCheck(), B_OK);
    BDirectory root;
    ASSERT_EQ(volume.GetRootDirectory(&root), B_OK);
    BEntry entry;
    root.GetEntry(&entry);
    BPath path;
    entry.GetPath(&path);
    EXPECT_STREQ(path.Path(), "/proc");
    char name[B_FILE_NAME_LENGTH];
    ASSERT_EQ(volume.GetName(name), B_OK);
    EXPECT_STREQ(name, "proc");
}

TEST(Volume, MemoryFileSystemsAreNotPersistent) {
    EXPECT_FALSE(BVolume(device_of("/proc")).IsPersistent());
    TestHome home;
    EXPECT_TRUE(BVolume(device_of(home.Path().c_str())).IsPersistent());
}

TEST(Volume, DiskKeepsAttributesProcDoesNot) {
    TestHome home;
    EXPECT_TRUE(BVolume(device_of(home.Path().c_str())).KnowsAttr());
    EXPECT_TRUE(BVolume(device_of(home.Path().c_str())).KnowsMime());
    EXPECT_FALSE(BVolume(device_of("/proc")).KnowsAttr());
    EXPECT_FALSE(BVolume(device_of("/")).KnowsQuery());
}

TEST(Volume, SizesAreSane) {
    BVolume volume(device_of("/"));
    EXPECT_GT(volume.Capacity(), 0);
    EXPECT_GE(volume.FreeBytes(), 0);
    EXPECT_LE(volume.FreeBytes(), volume.Capacity());
    EXPECT_GT(volume.BlockSize(), 0);
}

TEST(Volume, WritableDiskIsNotReadOnlyOrShared) {
    TestHome home;
    BVolume volume(device_of(home.Path().c_str()));
    EXPECT_FALSE(volume.IsReadOnly());
    EXPECT_FALSE(volume.IsShared());
}

TEST(Volume, NameNeverEmpty) {
    BVolume volume(device_of("/"));
    char name[B_FILE_NAME_LENGTH];
    ASSERT_EQ(volume.GetName(name), B_OK);
    EXPECT_GT(strlen(name), 0u);
    EXPECT_EQ(volume.SetName("other"), B_NOT_SUPPORTED);
}

TEST(Volume, EqualityByDevice) {
    BVolume a(device_of("/"));
    BVolume b(a);
    BVolume c(device_of("/proc"));
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(a != c);
    EXPECT_TRUE(BVolume() == BVolume());
}

TEST(DevForPath, GivesTheDeviceOfAPath) {
    TestHome home;
    EXPECT_EQ(dev_for_path(home.Path().c_str()), device_of(home.Path().c_str()));
    EXPECT_EQ(dev_for_path("/proc/self"), device_of("/proc/self"));
}

TEST(DevForPath, FollowsLinks) {
    TestHome home;
    std::string link = home.Path() + "/to-proc";
    ASSERT_EQ(symlink("/proc", link.c_str()), 0);
    EXPECT_EQ(dev_for_path(link.c_str()), device_of("/proc"));
}

TEST(DevForPath, MissingPathIsANegativeError) {
    TestHome home;
    dev_t device = dev_for_path((home.Path() + "/missing").c_str());
    EXPECT_LT((int64)device, 0);
    EXPECT_EQ((status_t)(int64)device, B_ENTRY_NOT_FOUND);
    EXPECT_EQ((status_t)(int64)dev_for_path(nullptr), B_BAD_VALUE);
}
