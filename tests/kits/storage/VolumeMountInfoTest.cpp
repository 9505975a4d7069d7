// BVolume against real kernel tables: each test forks a child into a private mount
// namespace, mounts what it needs there and reports through its exit status, so the
// mounts vanish with the child and never reach the rest of the machine.
#include <Directory.h>
#include <Entry.h>
#include <Path.h>
#include <Volume.h>

#include "TestHome.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

using testing_support::TestHome;

namespace {

bool write_text(const std::string& path, const std::string& text) {
    int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (descriptor < 0)
        return false;
    bool written = write(descriptor, text.data(), text.size()) == (ssize_t)text.size();
    close(descriptor);
    return written;
}

// Root may take a mount namespace directly; anyone else goes through a user namespace
// that maps them to root inside.
bool enter_private_mount_namespace() {
    uid_t user = getuid();
    gid_t group = getgid();
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        write_text("/proc/self/setgroups", "deny");
        if (!write_text("/proc/self/uid_map", "0 " + std::to_string(user) + " 1\n") ||
            !write_text("/proc/self/gid_map", "0 " + std::to_string(group) + " 1\n"))
            return false;
    }
    return mount("none", "/", NULL, MS_REC | MS_PRIVATE, NULL) == 0;
}

// Runs body in a child inside its own mount namespace; the child's exit status, or
// -1 when it died. body returns 0 for success, else the number of the failed check.
int run_isolated(const std::function<int()>& body) {
    fflush(NULL);
    pid_t child = fork();
    if (child == 0) {
        alarm(20);
        if (!enter_private_mount_namespace())
            _exit(100);
        _exit(body());
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

dev_t device_of(const std::string& path) {
    struct stat pathStat;
    return stat(path.c_str(), &pathStat) == 0 ? pathStat.st_dev : (dev_t)-1;
}

// Mounts a fresh tmpfs on folder (made first) and checks that BVolume finds it there
// under its exact name.
int check_mount_point(const std::string& folder, const std::string& name) {
    if (mkdir(folder.c_str(), 0755) != 0 || mount("glimrow", folder.c_str(), "tmpfs", 0, NULL))
        return 1;
    BVolume volume(device_of(folder));
    if (volume.InitCheck() != B_OK)
        return 2;
    BDirectory root;
    if (volume.GetRootDirectory(&root) != B_OK)
        return 3;
    BEntry entry;
    BPath path;
    if (root.GetEntry(&entry) != B_OK || entry.GetPath(&path) != B_OK)
        return 4;
    if (folder != path.Path())
        return 5;
    char volumeName[B_FILE_NAME_LENGTH];
    if (volume.GetName(volumeName) != B_OK || name != volumeName)
        return 6;
    return 0;
}

// Puts a fake /sys/dev/block in place, with the entry for device leading to partition
// inside disk, and the given "removable" contents (NULL for none) on each.
int check_removable(const char* partitionFlag, const char* diskFlag, bool expected) {
    if (mount("glimrow", "/sys/dev/block", "tmpfs", 0, NULL) != 0)
        return 1;
    if (mkdir("/sys/dev/block/disk", 0755) != 0 || mkdir("/sys/dev/block/disk/part", 0755) != 0)
        return 2;
    if (partitionFlag != NULL && !write_text("/sys/dev/block/disk/part/removable", partitionFlag))
        return 3;
    if (diskFlag != NULL && !write_text("/sys/dev/block/disk/removable", diskFlag))
        return 4;
    dev_t device = device_of("/sys/dev/block");
    std::string link =
        "/sys/dev/block/" + std::to_string(major(device)) + ":" + std::to_string(minor(device));
    if (symlink("disk/part", link.c_str()) != 0)
        return 5;
    BVolume volume(device);
    if (volume.InitCheck() != B_OK)
        return 6;
    return volume.IsRemovable() == expected ? 0 : 7;
}

} // namespace

TEST(VolumeMountInfo, MountPointWithABlankIsFound) {
    TestHome home;
    std::string folder = home.Path() + "/with blank";
    EXPECT_EQ(run_isolated([&] { return check_mount_point(folder, "with blank"); }), 0);
}

TEST(VolumeMountInfo, MountPointWithTabAndNewlineIsFound) {
    TestHome home;
    std::string folder = home.Path() + "/tab\there\nnext";
    EXPECT_EQ(run_isolated([&] { return check_mount_point(folder, "tab\there\nnext"); }), 0);
}

TEST(VolumeMountInfo, BackslashBeforeDigitsStaysLiteral) {
    // The kernel writes the backslash itself as \134, so "\123" in a name must not turn
    // into the character 0123.
    TestHome home;
    std::string folder = home.Path() + "/back\\123slash";
    EXPECT_EQ(run_isolated([&] { return check_mount_point(folder, "back\\123slash"); }), 0);
}

TEST(VolumeMountInfo, OptionalFieldsBeforeTheSeparatorAreSkipped) {
    // A bind mount that is both shared and a slave carries two optional words; the type
    // after "-" must still be read, and the later (topmost) mount wins.
    TestHome home;
    std::string first = home.Path() + "/first";
    std::string second = home.Path() + "/second";
    EXPECT_EQ(run_isolated([&] {
                  if (mkdir(first.c_str(), 0755) != 0 || mkdir(second.c_str(), 0755) != 0)
                      return 1;
                  if (mount("glimrow", first.c_str(), "tmpfs", 0, NULL) != 0 ||
                      mount(NULL, first.c_str(), NULL, MS_SHARED, NULL) != 0 ||
                      mount(first.c_str(), second.c_str(), NULL, MS_BIND, NULL) != 0 ||
                      mount(NULL, second.c_str(), NULL, MS_SLAVE, NULL) != 0 ||
                      mount(NULL, second.c_str(), NULL, MS_SHARED, NULL) != 0)
                      return 2;
                  BVolume volume(device_of(second));
                  if (volume.InitCheck() != B_OK)
                      return 3;
                  char name[B_FILE_NAME_LENGTH];
                  if (volume.GetName(name) != B_OK || strcmp(name, "second") != 0)
                      return 4;
                  if (volume.IsPersistent() || volume.IsShared())
                      return 5;
                  return 0;
              }),
              0);
}

TEST(VolumeMountInfo, ReadOnlyMountIsReadOnly) {
    TestHome home;
    std::string folder = home.Path() + "/locked";
    EXPECT_EQ(run_isolated([&] {
                  if (mkdir(folder.c_str(), 0755) != 0 ||
                      mount("glimrow", folder.c_str(), "tmpfs", MS_RDONLY, NULL) != 0)
                      return 1;
                  BVolume volume(device_of(folder));
                  return volume.InitCheck() == B_OK && volume.IsReadOnly() ? 0 : 2;
              }),
              0);
}

TEST(VolumeMountInfo, RemovableFlagWithNewlineIsRemovable) {
    EXPECT_EQ(run_isolated([] { return check_removable("1\n", NULL, true); }), 0);
}

TEST(VolumeMountInfo, ZeroFlagIsNotRemovable) {
    EXPECT_EQ(run_isolated([] { return check_removable("0\n", "1\n", false); }), 0);
}

TEST(VolumeMountInfo, FlagOnTheDiskCountsForItsPartition) {
    EXPECT_EQ(run_isolated([] { return check_removable(NULL, "1\n", true); }), 0);
}

TEST(VolumeMountInfo, UnreadableFlagFallsBackToTheDisk) {
    EXPECT_EQ(run_isolated([] { return check_removable("yes\n", "1\n", true); }), 0);
}

TEST(VolumeMountInfo, EmptyFlagFallsBackToTheDisk) {
    EXPECT_EQ(run_isolated([] { return check_removable("", "1", true); }), 0);
}

TEST(VolumeMountInfo, FlagAfterBlanksAndSignIsRead) {
    EXPECT_EQ(run_isolated([] { return check_removable(" \t+1trailing", "0\n", true); }), 0);
}

TEST(VolumeMountInfo, OutOfRangeFlagFallsBackToTheDisk) {
    EXPECT_EQ(run_isolated([] { return check_removable("99999999999\n", "0\n", false); }), 0);
}

TEST(VolumeMountInfo, NoFlagAnywhereIsNotRemovable) {
    EXPECT_EQ(run_isolated([] { return check_removable(NULL, NULL, false); }), 0);
}
