#include "RefRetriever.h"

#include <Bitmap.h>
#include <Directory.h>
#include <Entry.h>
#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <Node.h>
#include <NodeInfo.h>
#include <NodeMonitor.h>
#include <Volume.h>
#include <fs_info.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

#include <string.h>
#include <sys/stat.h>

using testing_support::TestHome;
using testing_support::wait_until;

namespace {

// Counts the hook calls and answers with a chosen result.
class CountingRetriever : public RefRetriever {
public:
    CountingRetriever() {}
    explicit CountingRetriever(const char* path) : RefRetriever(path) {}

    status_t RefUpdated() override {
        fUpdates++;
        return fAnswer;
    }
    void RefExpired() override { fExpiries++; }

    int fUpdates = 0;
    int fExpiries = 0;
    status_t fAnswer = B_OK;
};

ino_t node_of(const std::string& path) {
    struct stat info;
    EXPECT_EQ(lstat(path.c_str(), &info), 0) << path;
    return info.st_ino;
}

node_ref node_ref_of(const RefRetriever& retriever) {
    node_ref ref;
    EXPECT_EQ(retriever.GetNodeRef(&ref), B_OK);
    return ref;
}

// Hands every node-monitor notification to one reference, in the looper's
// thread with its lock held, as an owner of references would.
class MonitorLooper : public BLooper {
public:
    explicit MonitorLooper(RefRetriever* retriever) : BLooper("monitor"), fRetriever(retriever) {}

    void MessageReceived(BMessage* message) override {
        if (message->what != B_NODE_MONITOR) {
            BLooper::MessageReceived(message);
            return;
        }
        int32 opcode;
        int32 device;
        int64 node;
        if (message->FindInt32("opcode", &opcode) != B_OK ||
            message->FindInt32("device", &device) != B_OK ||
            message->FindInt64("node", &node) != B_OK)
            return;
        node_ref ref((dev_t)(uint32)device, (ino_t)node);
        status_t result = fRetriever->HandleNodeMonitor(opcode, &ref, message);
        std::lock_guard<std::mutex> lock(fLock);
        fResults.push_back(result);
        fPath = fRetriever->Path();
    }

    std::string Path() {
        std::lock_guard<std::mutex> lock(fLock);
        return fPath;
    }

private:
    RefRetriever* fRetriever;
    std::mutex fLock;
    std::vector<status_t> fResults;
    std::string fPath;
};

} // namespace

TEST(RefRetrieverTest, RenameIsFollowedThroughANodeMonitor) {
    TestHome home;
    std::string file = home.WriteFile("first/file", "x");
    std::string folder = home.MakeFolder("second");
    CountingRetriever retriever(file.c_str());
    ASSERT_EQ(retriever.Status(), B_OK);
    MonitorLooper* looper = new MonitorLooper(&retriever);
    looper->Run();
    node_ref ref = node_ref_of(retriever);
    ASSERT_EQ(watch_node(&ref, B_WATCH_NAME, BMessenger(looper)), B_OK);

    BEntry entry(file.c_str());
    BDirectory target(folder.c_str());
    ASSERT_EQ(entry.MoveTo(&target, "renamed"), B_OK);
    std::string moved = folder + "/renamed";
    EXPECT_TRUE(wait_until([&] { return looper->Path() == moved; }));

    looper->Lock();
    EXPECT_EQ(retriever.Path(), moved);
    EXPECT_STREQ(retriever.RefName(), "renamed");
    EXPECT_EQ(retriever.Status(), B_OK);
    EXPECT_EQ(retriever.fUpdates, 1);
    stop_watching(BMessenger(looper));
    looper->Quit();
}

TEST(RefRetrieverTest, DefaultReferenceIsEmptyAndUnset) {
    RefRetriever retriever;
    EXPECT_STREQ(retriever.Path(), "");
    EXPECT_EQ(retriever.Status(), B_NO_INIT);
}

TEST(RefRetrieverTest, PathOfAnExistingEntryResolvesWithoutTheHook) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    EXPECT_EQ(retriever.Status(), B_OK);
    EXPECT_EQ(retriever.fUpdates, 0);
    EXPECT_EQ(node_ref_of(retriever).node, node_of(file));
}

TEST(RefRetrieverTest, PathOfAMissingEntryIsNotFound) {
    TestHome home;
    RefRetriever retriever((home.Path() + "/missing").c_str());
    EXPECT_EQ(retriever.Status(), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(retriever.Path(), home.Path() + "/missing");
}

TEST(RefRetrieverTest, RefIsTurnedIntoItsPath) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(file.c_str(), &ref), B_OK);
    RefRetriever retriever(&ref);
    EXPECT_EQ(retriever.Path(), file);
    EXPECT_EQ(retriever.Status(), B_OK);
}

TEST(RefRetrieverTest, NullRefGivesAnEmptyReference) {
    RefRetriever retriever((const entry_ref*)NULL);
    EXPECT_STREQ(retriever.Path(), "");
    EXPECT_NE(retriever.Status(), B_OK);
}

TEST(RefRetrieverTest, SettingTheSamePathDoesNothing) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    EXPECT_EQ(retriever.SetPath(file.c_str()), B_OK);
    EXPECT_EQ(retriever.fUpdates, 0);
}

TEST(RefRetrieverTest, SettingAnotherMissingPathCallsTheHookOnce) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    std::string missing = home.Path() + "/missing";
    EXPECT_EQ(retriever.SetPath(missing.c_str()), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(retriever.fUpdates, 1);
    // The hook's B_OK does not hide that the entry is missing.
    EXPECT_EQ(retriever.Status(), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(retriever.Path(), missing);
}

TEST(RefRetrieverTest, HookErrorBecomesTheStatus) {
    TestHome home;
    std::string first = home.WriteFile("first", "x");
    std::string second = home.WriteFile("second", "y");
    CountingRetriever retriever(first.c_str());
    retriever.fAnswer = B_NO_MEMORY;
    EXPECT_EQ(retriever.SetPath(second.c_str()), B_NO_MEMORY);
    EXPECT_EQ(retriever.Status(), B_NO_MEMORY);
}

TEST(RefRetrieverTest, NullPathIsRefused) {
    RefRetriever retriever;
    EXPECT_EQ(retriever.SetPath(NULL), B_BAD_VALUE);
    EXPECT_EQ(retriever.Status(), B_NO_INIT);
}

TEST(RefRetrieverTest, NullRefEmptiesTheReferenceSilently) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    EXPECT_EQ(retriever.SetEntryRef(NULL), B_OK);
    EXPECT_STREQ(retriever.Path(), "");
    EXPECT_EQ(retriever.Status(), B_NO_INIT);
    EXPECT_EQ(retriever.fUpdates, 0);
}

TEST(RefRetrieverTest, SettingARefToAnotherEntryCallsTheHook) {
    TestHome home;
    std::string first = home.WriteFile("first", "x");
    std::string second = home.WriteFile("second", "y");
    CountingRetriever retriever(first.c_str());
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(second.c_str(), &ref), B_OK);
    EXPECT_EQ(retriever.SetEntryRef(&ref), B_OK);
    EXPECT_EQ(retriever.Path(), second);
    EXPECT_EQ(retriever.fUpdates, 1);
    EXPECT_EQ(retriever.SetEntryRef(&ref), B_OK);
    EXPECT_EQ(retriever.fUpdates, 1);
}

TEST(RefRetrieverTest, LinkWithAMissingTargetResolves) {
    TestHome home;
    std::string link = home.Path() + "/dangling";
    std::filesystem::create_symlink(home.Path() + "/nowhere", link);
    RefRetriever retriever(link.c_str());
    EXPECT_EQ(retriever.Status(), B_OK);
    EXPECT_EQ(node_ref_of(retriever).node, node_of(link));
}

TEST(RefRetrieverTest, RefNameIsTheLeaf) {
    EXPECT_STREQ(RefRetriever("/boot").RefName(), "boot");
    EXPECT_STREQ(RefRetriever("/boot/home/").RefName(), "");
    EXPECT_STREQ(RefRetriever("plain").RefName(), "plain");
}

TEST(RefRetrieverTest, SamePathResolvedAndNotAreUnequal) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    RefRetriever resolved(file.c_str());
    std::filesystem::remove(file);
    RefRetriever missing(file.c_str());
    EXPECT_FALSE(resolved == missing);
    EXPECT_TRUE(resolved != missing);
}

TEST(RefRetrieverTest, CopiesAreEqual) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    RefRetriever original(file.c_str());
    RefRetriever copy(original);
    EXPECT_TRUE(copy == original);
    EXPECT_FALSE(copy != original);
    EXPECT_NE(copy.Path(), original.Path());
}

TEST(RefRetrieverTest, AssignmentCopiesAndCallsTheHook) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    RefRetriever original(file.c_str());
    CountingRetriever assigned;
    static_cast<RefRetriever&>(assigned) = original;
    EXPECT_EQ(assigned.fUpdates, 1);
    EXPECT_EQ(assigned.Path(), file);
    EXPECT_EQ(assigned.Status(), B_OK);
    EXPECT_TRUE(static_cast<RefRetriever&>(assigned) == original);
}

TEST(RefRetrieverTest, CheckWithTheSameResultCallsNoHook) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    EXPECT_EQ(retriever.CheckNode(false), B_OK);
    EXPECT_EQ(retriever.fUpdates, 0);
    EXPECT_EQ(retriever.CheckNode(true), B_OK);
    EXPECT_EQ(retriever.fUpdates, 1);
}

TEST(RefRetrieverTest, CheckNoticesAVanishedAndAReturnedEntry) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    ino_t node = node_ref_of(retriever).node;
    std::filesystem::remove(file);
    EXPECT_EQ(retriever.CheckNode(false), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(retriever.fUpdates, 1);

    home.WriteFile("elsewhere", "keeps the old inode busy");
    home.WriteFile("file", "again");
    EXPECT_EQ(retriever.CheckNode(false), B_OK);
    EXPECT_EQ(retriever.fUpdates, 2);
    // The node number is only refreshed when the reference is set anew.
    EXPECT_EQ(node_ref_of(retriever).node, node);
}

TEST(RefRetrieverTest, EntryRefOfAMissingLeafIsStillGiven) {
    TestHome home;
    RefRetriever retriever((home.Path() + "/not-yet").c_str());
    entry_ref ref;
    ASSERT_EQ(retriever.GetEntryRef(&ref), B_OK);
    EXPECT_STREQ(ref.name, "not-yet");
}

TEST(RefRetrieverTest, RemovalNotificationExpiresTheReference) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    node_ref ref = node_ref_of(retriever);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ENTRY_REMOVED, &ref, NULL), REF_REMOVED);
    EXPECT_EQ(retriever.fExpiries, 1);
}

TEST(RefRetrieverTest, NotificationForAMissingEntryIsNotHandled) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    node_ref ref = node_ref_of(retriever);
    std::filesystem::remove(file);
    ASSERT_EQ(retriever.CheckNode(false), B_ENTRY_NOT_FOUND);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ENTRY_REMOVED, &ref, NULL), REF_NOT_CONCERNED);
    EXPECT_EQ(retriever.fExpiries, 0);
}

TEST(RefRetrieverTest, NotificationForAnotherNodeIsNotConcerned) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    std::string other = home.WriteFile("other", "y");
    CountingRetriever retriever(file.c_str());
    node_ref ref = node_ref_of(retriever);
    ref.node = node_of(other);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ENTRY_REMOVED, &ref, NULL), REF_NOT_CONCERNED);
    EXPECT_EQ(retriever.fExpiries, 0);
}

TEST(RefRetrieverTest, StatAndAttributeChangesCallTheHook) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    node_ref ref = node_ref_of(retriever);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_STAT_CHANGED, &ref, NULL), B_OK);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ATTR_CHANGED, &ref, NULL), B_OK);
    EXPECT_EQ(retriever.fUpdates, 2);
    retriever.fAnswer = B_ERROR;
    EXPECT_EQ(retriever.HandleNodeMonitor(B_STAT_CHANGED, &ref, NULL), B_ERROR);
    EXPECT_EQ(retriever.Status(), B_ERROR);
}

TEST(RefRetrieverTest, CreationAndMountNotificationsAreNotConcerned) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    RefRetriever retriever(file.c_str());
    node_ref ref = node_ref_of(retriever);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ENTRY_CREATED, &ref, NULL), REF_NOT_CONCERNED);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_DEVICE_MOUNTED, &ref, NULL), REF_NOT_CONCERNED);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_DEVICE_UNMOUNTED, &ref, NULL), REF_NOT_CONCERNED);
}

TEST(RefRetrieverTest, MoveIntoAnotherFolderIsFollowed) {
    TestHome home;
    std::string file = home.WriteFile("first/file", "x");
    std::string folder = home.MakeFolder("second");
    CountingRetriever retriever(file.c_str());
    node_ref ref = node_ref_of(retriever);
    std::filesystem::rename(file, folder + "/renamed");
    // A real notification makes the kit learn the folder; this one is built by
    // hand, so the kit is shown the folder first.
    entry_ref seen;
    ASSERT_EQ(get_ref_for_path((folder + "/renamed").c_str(), &seen), B_OK);

    BMessage notification(B_NODE_MONITOR);
    notification.AddInt32("opcode", B_ENTRY_MOVED);
    notification.AddString("name", "renamed");
    notification.AddInt64("to directory", (int64)node_of(folder));
    notification.AddInt64("from directory", (int64)node_of(home.Path() + "/first"));
    notification.AddInt64("node", (int64)ref.node);
    notification.AddInt32("device", (int32)ref.device);
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ENTRY_MOVED, &ref, &notification), B_OK);
    EXPECT_EQ(retriever.Path(), folder + "/renamed");
    EXPECT_STREQ(retriever.RefName(), "renamed");
    EXPECT_EQ(retriever.fUpdates, 1);
}

TEST(RefRetrieverTest, MoveWithoutANameChangesNothing) {
    TestHome home;
    std::string file = home.WriteFile("file", "x");
    CountingRetriever retriever(file.c_str());
    node_ref ref = node_ref_of(retriever);
    BMessage notification(B_NODE_MONITOR);
    notification.AddInt64("to directory", (int64)node_of(home.Path()));
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ENTRY_MOVED, &ref, &notification), B_NAME_NOT_FOUND);
    BMessage noFolder(B_NODE_MONITOR);
    noFolder.AddString("name", "x");
    EXPECT_EQ(retriever.HandleNodeMonitor(B_ENTRY_MOVED, &ref, &noFolder), B_NAME_NOT_FOUND);
    EXPECT_EQ(retriever.Path(), file);
    EXPECT_EQ(retriever.fUpdates, 0);
}

namespace {

bool same_pixels(const BBitmap& first, const BBitmap& second) {
    return first.BitsLength() == second.BitsLength() &&
           memcmp(first.Bits(), second.Bits(), first.BitsLength()) == 0;
}

bool has_pixels(const BBitmap& bitmap) {
    const uint8* bits = static_cast<const uint8*>(bitmap.Bits());
    for (int32 index = 0; index < bitmap.BitsLength(); index++) {
        if (bits[index] != 0)
            return true;
    }
    return false;
}

} // namespace

TEST(RefRetrieverTest, IconOfAnUnusableReferenceIsItsStatus) {
    TestHome home;
    RefRetriever missing((home.Path() + "/missing").c_str());
    BBitmap icon(BRect(0, 0, 15, 15), B_RGBA32);
    EXPECT_EQ(missing.GetIcon(&icon, B_MINI_ICON), B_ENTRY_NOT_FOUND);
    RefRetriever unset;
    EXPECT_EQ(unset.GetIcon(&icon, B_MINI_ICON), B_NO_INIT);
}

TEST(RefRetrieverTest, IconOfAFileIsItsTrackerIcon) {
    TestHome home;
    std::string file = home.WriteFile("notes.txt", "hello\n");
    RefRetriever retriever(file.c_str());
    BBitmap icon(BRect(0, 0, 31, 31), B_RGBA32);
    ASSERT_EQ(retriever.GetIcon(&icon, B_LARGE_ICON), B_OK);
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(file.c_str(), &ref), B_OK);
    BBitmap expected(BRect(0, 0, 31, 31), B_RGBA32);
    ASSERT_EQ(BNodeInfo::GetTrackerIcon(&ref, &expected, B_LARGE_ICON), B_OK);
    EXPECT_TRUE(has_pixels(icon));
    EXPECT_TRUE(same_pixels(icon, expected));
}

TEST(RefRetrieverTest, LinkWithAMissingTargetShowsTheLinksIcon) {
    TestHome home;
    std::string link = home.Path() + "/dangling";
    std::filesystem::create_symlink(home.Path() + "/nowhere.txt", link);
    RefRetriever retriever(link.c_str());
    BBitmap icon(BRect(0, 0, 15, 15), B_RGBA32);
    ASSERT_EQ(retriever.GetIcon(&icon, B_MINI_ICON), B_OK);
    entry_ref ref;
    ASSERT_EQ(get_ref_for_path(link.c_str(), &ref), B_OK);
    BBitmap expected(BRect(0, 0, 15, 15), B_RGBA32);
    ASSERT_EQ(BNodeInfo::GetTrackerIcon(&ref, &expected, B_MINI_ICON), B_OK);
    EXPECT_TRUE(same_pixels(icon, expected));
}

TEST(RefRetrieverTest, RootFolderOfAVolumeShowsTheVolumesIcon) {
    RefRetriever root("/");
    ASSERT_EQ(root.Status(), B_OK);
    BBitmap icon(BRect(0, 0, 31, 31), B_RGBA32);
    ASSERT_EQ(root.GetIcon(&icon, B_LARGE_ICON), B_OK);
    BBitmap expected(BRect(0, 0, 31, 31), B_RGBA32);
    BVolume volume(dev_for_path("/"));
    ASSERT_EQ(volume.GetIcon(&expected, B_LARGE_ICON), B_OK);
    EXPECT_TRUE(same_pixels(icon, expected));

    // A folder that is no volume's root looks like a folder instead.
    TestHome home;
    RefRetriever folder(home.MakeFolder("plain").c_str());
    BBitmap folderIcon(BRect(0, 0, 31, 31), B_RGBA32);
    ASSERT_EQ(folder.GetIcon(&folderIcon, B_LARGE_ICON), B_OK);
    EXPECT_FALSE(same_pixels(folderIcon, expected));
}
