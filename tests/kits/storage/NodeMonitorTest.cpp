#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <Node.h>
#include <NodeMonitor.h>
#include <Path.h>

#include "TestHome.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

using testing_support::TestHome;

namespace {

const auto kDeadline = std::chrono::seconds(10);

// A looper that keeps every B_NODE_MONITOR message it gets, so a test can wait for
// the one it expects (with a deadline instead of sleeping).
class Recorder : public BLooper {
public:
    Recorder() : BLooper("node monitor recorder") {}

    void MessageReceived(BMessage* message) override {
        if (message->what != B_NODE_MONITOR) {
            BLooper::MessageReceived(message);
            return;
        }
        std::lock_guard<std::mutex> guard(fLock);
        fMessages.push_back(*message);
        fChanged.notify_all();
    }

    // The first message from index `from` on that matches; false at the deadline.
    bool WaitFor(const std::function<bool(const BMessage&)>& match, BMessage* found = nullptr,
                 size_t* index = nullptr) {
        std::unique_lock<std::mutex> guard(fLock);
        bool matched = fChanged.wait_for(guard, kDeadline, [&] {
            for (size_t i = 0; i < fMessages.size(); i++) {
                if (match(fMessages[i])) {
                    if (found != nullptr)
                        *found = fMessages[i];
                    if (index != nullptr)
                        *index = i;
                    return true;
                }
            }
            return false;
        });
        return matched;
    }

    std::vector<BMessage> Messages() {
        std::lock_guard<std::mutex> guard(fLock);
        return fMessages;
    }

private:
    std::mutex fLock;
    std::condition_variable fChanged;
    std::vector<BMessage> fMessages;
};

int32 opcode_of(const BMessage& message) {
    int32 opcode = -1;
    message.FindInt32("opcode", &opcode);
    return opcode;
}

std::string string_of(const BMessage& message, const char* field) {
    const char* value = nullptr;
    if (message.FindString(field, &value) != B_OK)
        return "<none>";
    return value;
}

int64 int64_of(const BMessage& message, const char* field) {
    int64 value = -1;
    message.FindInt64(field, &value);
    return value;
}

std::function<bool(const BMessage&)> is(int32 opcode, const std::string& name) {
    return [=](const BMessage& message) {
        return opcode_of(message) == opcode && string_of(message, "name") == name;
    };
}

std::function<bool(const BMessage&)> is_attr(const std::string& attr, int32 cause) {
    return [=](const BMessage& message) {
        int32 foundCause = -1;
        message.FindInt32("cause", &foundCause);
        return opcode_of(message) == B_ATTR_CHANGED && string_of(message, "attr") == attr &&
               foundCause == cause;
    };
}

struct stat stat_of(const std::string& path) {
    struct stat result = {};
    lstat(path.c_str(), &result);
    return result;
}

node_ref node_of(const std::string& path) {
    node_ref ref;
    BEntry(path.c_str()).GetNodeRef(&ref);
    return ref;
}

class NodeMonitor : public ::testing::Test {
protected:
    void SetUp() override {
        fRecorder = new Recorder;
        fRecorder->Run();
        fTarget = BMessenger(fRecorder);
        ASSERT_TRUE(fTarget.IsValid());
    }

    void TearDown() override {
        stop_watching(fTarget);
        if (fRecorder->Lock())
            fRecorder->Quit();
    }

    void Watch(const std::string& path, uint32 flags) {
        node_ref ref = node_of(path);
        ASSERT_EQ(watch_node(&ref, flags, fTarget), B_OK) << path;
    }

    TestHome fHome;
    Recorder* fRecorder = nullptr;
    BMessenger fTarget;
};

} // namespace

TEST_F(NodeMonitor, CreatedEntryInAWatchedFolder) {
    std::string folder = fHome.MakeFolder("watched");
    Watch(folder, B_WATCH_DIRECTORY);
    std::string file = fHome.WriteFile("watched/new file", "x");
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "new file"), &message));
    EXPECT_EQ(message.what, (uint32)B_NODE_MONITOR);
    EXPECT_EQ(int64_of(message, "directory"), (int64)stat_of(folder).st_ino);
    EXPECT_EQ(int64_of(message, "node"), (int64)stat_of(file).st_ino);
    int32 device;
    ASSERT_EQ(message.FindInt32("device", &device), B_OK);
    EXPECT_EQ((dev_t)(uint32)device, stat_of(folder).st_dev);
}

TEST_F(NodeMonitor, RefBuiltFromACreatedMessageResolves) {
    std::string folder = fHome.MakeFolder("watched");
    Watch(folder, B_WATCH_DIRECTORY);
    std::string file = fHome.WriteFile("watched/target", "x");
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "target"), &message));
    int32 device;
    message.FindInt32("device", &device);
    entry_ref ref((dev_t)(uint32)device, int64_of(message, "directory"), "target");
    BPath path(&ref);
    EXPECT_EQ(std::string(path.Path() ? path.Path() : ""), file);
}

TEST_F(NodeMonitor, RemovedEntryKeepsItsNodeNumber) {
    std::string file = fHome.WriteFile("watched/doomed", "x");
    ino_t node = stat_of(file).st_ino;
    Watch(fHome.Path() + "/watched", B_WATCH_DIRECTORY);
    ASSERT_EQ(unlink(file.c_str()), 0);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_REMOVED, "doomed"), &message));
    EXPECT_EQ(int64_of(message, "node"), (int64)node);
}

TEST_F(NodeMonitor, RenameInsideAFolderIsAMove) {
    std::string folder = fHome.MakeFolder("watched");
    std::string file = fHome.WriteFile("watched/before", "x");
    ino_t node = stat_of(file).st_ino;
    Watch(folder, B_WATCH_DIRECTORY);
    ASSERT_EQ(rename(file.c_str(), (folder + "/after").c_str()), 0);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_MOVED, "after"), &message));
    EXPECT_EQ(int64_of(message, "from directory"), (int64)stat_of(folder).st_ino);
    EXPECT_EQ(int64_of(message, "to directory"), (int64)stat_of(folder).st_ino);
    EXPECT_EQ(int64_of(message, "node"), (int64)node);
    EXPECT_EQ(string_of(message, "from name"), "before");
}

TEST_F(NodeMonitor, MoveBetweenTwoWatchedFoldersIsReportedOnce) {
    std::string from = fHome.MakeFolder("from");
    std::string to = fHome.MakeFolder("to");
    std::string file = fHome.WriteFile("from/item", "x");
    Watch(from, B_WATCH_DIRECTORY);
    Watch(to, B_WATCH_DIRECTORY);
    ASSERT_EQ(rename(file.c_str(), (to + "/item").c_str()), 0);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_MOVED, "item"), &message));
    EXPECT_EQ(int64_of(message, "from directory"), (int64)stat_of(from).st_ino);
    EXPECT_EQ(int64_of(message, "to directory"), (int64)stat_of(to).st_ino);

    // Anything sent for the move came before this later event.
    fHome.WriteFile("to/sentinel", "x");
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "sentinel")));
    int moves = 0;
    for (const BMessage& each : fRecorder->Messages()) {
        moves += opcode_of(each) == B_ENTRY_MOVED;
        EXPECT_FALSE(is(B_ENTRY_CREATED, "item")(each));
        EXPECT_FALSE(is(B_ENTRY_REMOVED, "item")(each));
    }
    EXPECT_EQ(moves, 1);
}

TEST_F(NodeMonitor, MoveOutToAnUnwatchedFolderIsARemoval) {
    std::string folder = fHome.MakeFolder("watched");
    std::string other = fHome.MakeFolder("elsewhere");
    std::string file = fHome.WriteFile("watched/leaving", "x");
    Watch(folder, B_WATCH_DIRECTORY);
    ASSERT_EQ(rename(file.c_str(), (other + "/left").c_str()), 0);
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_REMOVED, "leaving")));
}

TEST_F(NodeMonitor, MoveInFromAnUnwatchedFolderIsACreation) {
    std::string folder = fHome.MakeFolder("watched");
    std::string file = fHome.WriteFile("elsewhere/coming", "x");
    Watch(folder, B_WATCH_DIRECTORY);
    ASSERT_EQ(rename(file.c_str(), (folder + "/arrived").c_str()), 0);
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "arrived")));
}

TEST_F(NodeMonitor, NameWatchFollowsAMoveToAnyFolder) {
    std::string file = fHome.WriteFile("a/item", "x");
    std::string other = fHome.MakeFolder("b/c");
    Watch(file, B_WATCH_NAME);
    std::string moved = other + "/renamed";
    ASSERT_EQ(rename(file.c_str(), moved.c_str()), 0);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_MOVED, "renamed"), &message));
    EXPECT_EQ(int64_of(message, "from directory"), (int64)stat_of(fHome.Path() + "/a").st_ino);
    EXPECT_EQ(int64_of(message, "to directory"), (int64)stat_of(other).st_ino);
    EXPECT_EQ(int64_of(message, "node"), (int64)stat_of(moved).st_ino);
    EXPECT_EQ(string_of(message, "from name"), "item");

    // The way an item follows its file: a ref from the message's fields.
    int32 device;
    message.FindInt32("device", &device);
    entry_ref ref((dev_t)(uint32)device, int64_of(message, "to directory"), "renamed");
    BPath path(&ref);
    EXPECT_EQ(std::string(path.Path() ? path.Path() : ""), moved);
}

TEST_F(NodeMonitor, NameWatchFollowsSeveralMoves) {
    std::string file = fHome.WriteFile("one", "x");
    Watch(file, B_WATCH_NAME);
    ASSERT_EQ(rename(file.c_str(), (fHome.Path() + "/two").c_str()), 0);
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_MOVED, "two")));
    std::string folder = fHome.MakeFolder("sub");
    ASSERT_EQ(rename((fHome.Path() + "/two").c_str(), (folder + "/three").c_str()), 0);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_MOVED, "three"), &message));
    EXPECT_EQ(string_of(message, "from name"), "two");
    EXPECT_EQ(int64_of(message, "from directory"), (int64)stat_of(fHome.Path()).st_ino);
}

TEST_F(NodeMonitor, NameWatchReportsAFileRemoval) {
    std::string file = fHome.WriteFile("dir/gone", "x");
    ino_t node = stat_of(file).st_ino;
    Watch(file, B_WATCH_NAME);
    ASSERT_EQ(unlink(file.c_str()), 0);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_REMOVED, "gone"), &message));
    EXPECT_EQ(int64_of(message, "node"), (int64)node);
    EXPECT_EQ(int64_of(message, "directory"), (int64)stat_of(fHome.Path() + "/dir").st_ino);
}

TEST_F(NodeMonitor, NameWatchReportsAFolderRemoval) {
    std::string folder = fHome.MakeFolder("empty folder");
    Watch(folder, B_WATCH_NAME);
    ASSERT_EQ(rmdir(folder.c_str()), 0);
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_REMOVED, "empty folder")));
}

TEST_F(NodeMonitor, NameWatchReportsAReplacementByRename) {
    std::string file = fHome.WriteFile("victim", "old");
    std::string other = fHome.WriteFile("newcomer", "new");
    Watch(file, B_WATCH_NAME);
    ASSERT_EQ(rename(other.c_str(), file.c_str()), 0);
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_REMOVED, "victim")));
}

TEST_F(NodeMonitor, AttributeChangesNameTheAttribute) {
    std::string file = fHome.WriteFile("typed", "x");
    Watch(file, B_WATCH_ATTR);
    BNode node(file.c_str());
    ASSERT_EQ(node.WriteAttr("BEOS:TYPE", 'MIMS', 0, "text/plain", 11), 11);
    ASSERT_TRUE(fRecorder->WaitFor(is_attr("BEOS:TYPE", B_ATTR_CREATED)));
    ASSERT_EQ(node.WriteAttr("BEOS:TYPE", 'MIMS', 0, "text/html", 10), 10);
    ASSERT_TRUE(fRecorder->WaitFor(is_attr("BEOS:TYPE", B_ATTR_CHANGED)));
    ASSERT_EQ(node.RemoveAttr("BEOS:TYPE"), B_OK);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(is_attr("BEOS:TYPE", B_ATTR_REMOVED), &message));
    EXPECT_EQ(int64_of(message, "node"), (int64)stat_of(file).st_ino);
}

TEST_F(NodeMonitor, StatChangeReportsTheSize) {
    std::string file = fHome.WriteFile("growing", "x");
    Watch(file, B_WATCH_STAT);
    BFile writer(file.c_str(), B_WRITE_ONLY | B_OPEN_AT_END);
    ASSERT_EQ(writer.Write("more", 4), 4);
    writer.Unset();
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(
        [](const BMessage& each) { return opcode_of(each) == B_STAT_CHANGED; }, &message));
    int32 fields = 0;
    ASSERT_EQ(message.FindInt32("fields", &fields), B_OK);
    EXPECT_NE(fields & B_STAT_SIZE, 0);
}

TEST_F(NodeMonitor, PermissionChangeIsAStatChange) {
    std::string file = fHome.WriteFile("mode", "x");
    Watch(file, B_WATCH_STAT);
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    BMessage message;
    ASSERT_TRUE(fRecorder->WaitFor(
        [](const BMessage& each) { return opcode_of(each) == B_STAT_CHANGED; }, &message));
    int32 fields = 0;
    message.FindInt32("fields", &fields);
    EXPECT_NE(fields & B_STAT_MODE, 0);
}

TEST_F(NodeMonitor, AttributeWriteIsNotAStatChange) {
    std::string file = fHome.WriteFile("both", "x");
    Watch(file, B_WATCH_STAT | B_WATCH_ATTR);
    BNode node(file.c_str());
    ASSERT_EQ(node.WriteAttr("note", B_STRING_TYPE, 0, "n", 1), 1);
    ASSERT_TRUE(fRecorder->WaitFor(is_attr("note", B_ATTR_CREATED)));
    ASSERT_EQ(truncate(file.c_str(), 0), 0);
    size_t index = 0;
    ASSERT_TRUE(fRecorder->WaitFor(
        [](const BMessage& each) { return opcode_of(each) == B_STAT_CHANGED; }, nullptr, &index));
    int32 fields = 0;
    fRecorder->Messages()[index].FindInt32("fields", &fields);
    EXPECT_NE(fields & B_STAT_SIZE, 0) << "the first stat change came from the attribute";
}

TEST_F(NodeMonitor, StopWatchingANodeEndsItsMessages) {
    std::string quiet = fHome.MakeFolder("quiet");
    std::string loud = fHome.MakeFolder("loud");
    Watch(quiet, B_WATCH_DIRECTORY);
    Watch(loud, B_WATCH_DIRECTORY);
    node_ref quietRef = node_of(quiet);
    ASSERT_EQ(watch_node(&quietRef, B_STOP_WATCHING, fTarget), B_OK);
    fHome.WriteFile("quiet/unheard", "x");
    fHome.WriteFile("loud/heard", "x");
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "heard")));
    for (const BMessage& each : fRecorder->Messages())
        EXPECT_FALSE(is(B_ENTRY_CREATED, "unheard")(each));
}

TEST_F(NodeMonitor, StopWatchingTheTargetEndsAllItsMessages) {
    std::string quiet = fHome.MakeFolder("quiet");
    std::string loud = fHome.MakeFolder("loud");
    Watch(quiet, B_WATCH_DIRECTORY);
    Watch(loud, B_WATCH_DIRECTORY);
    ASSERT_EQ(stop_watching(fTarget), B_OK);
    // Watching one folder again proves the monitor still runs for this target.
    Watch(loud, B_WATCH_DIRECTORY);
    fHome.WriteFile("quiet/unheard", "x");
    fHome.WriteFile("loud/heard", "x");
    ASSERT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "heard")));
    for (const BMessage& each : fRecorder->Messages())
        EXPECT_FALSE(is(B_ENTRY_CREATED, "unheard")(each));
}

TEST_F(NodeMonitor, WatchingAgainAddsFlags) {
    std::string folder = fHome.MakeFolder("folder");
    Watch(folder, B_WATCH_NAME);
    Watch(folder, B_WATCH_DIRECTORY);
    fHome.WriteFile("folder/child", "x");
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "child")));
    ASSERT_EQ(rename(folder.c_str(), (fHome.Path() + "/renamed").c_str()), 0);
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_MOVED, "renamed")));
}

TEST_F(NodeMonitor, UnknownNodeIsNotFound) {
    node_ref ref(12345, 987654321);
    EXPECT_EQ(watch_node(&ref, B_WATCH_ALL, fTarget), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeMonitor, BadArgumentsAreBadValue) {
    node_ref ref = node_of(fHome.Path());
    EXPECT_EQ(watch_node(nullptr, B_WATCH_NAME, fTarget), B_BAD_VALUE);
    EXPECT_EQ(watch_node(&ref, B_WATCH_NAME, BMessenger()), B_BAD_VALUE);
    EXPECT_EQ(watch_node(&ref, B_STOP_WATCHING, fTarget), B_BAD_VALUE);
}

TEST_F(NodeMonitor, WatchingThroughHandlerAndLooper) {
    std::string folder = fHome.MakeFolder("folder");
    node_ref ref = node_of(folder);
    ASSERT_EQ(watch_node(&ref, B_WATCH_DIRECTORY, fRecorder, fRecorder), B_OK);
    fHome.WriteFile("folder/via handler", "x");
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "via handler")));
    EXPECT_EQ(stop_watching(fRecorder, fRecorder), B_OK);
}

TEST_F(NodeMonitor, ATargetThatQuitIsDropped) {
    std::string folder = fHome.MakeFolder("folder");
    Recorder* gone = new Recorder;
    gone->Run();
    node_ref ref = node_of(folder);
    BMessenger goneTarget(gone);
    ASSERT_EQ(watch_node(&ref, B_WATCH_DIRECTORY, goneTarget), B_OK);
    ASSERT_TRUE(gone->Lock());
    gone->Quit();
    Watch(folder, B_WATCH_DIRECTORY);
    fHome.WriteFile("folder/still works", "x");
    EXPECT_TRUE(fRecorder->WaitFor(is(B_ENTRY_CREATED, "still works")));
}
