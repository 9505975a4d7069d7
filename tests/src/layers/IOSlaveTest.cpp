#include "IOSlave.h"

#include "ManagerTestSupport.h"
#include "RefRetriever.h"

#include <MessageQueue.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <vector>

using namespace layer_testing;
using testing_support::read_file;
using testing_support::wait_until;

namespace {

// An item that notes when it goes.
class CountedItem : public RefRetriever {
public:
    CountedItem(const char* path, int* deleted) : RefRetriever(path), fDeleted(deleted) {}
    ~CountedItem() override { (*fDeleted)++; }

private:
    int* fDeleted;
};

std::string lines(int count, const char* prefix = "/item") {
    std::string body;
    for (int index = 0; index < count; index++)
        body += std::string(prefix) + std::to_string(index) + "\n";
    return body;
}

class IOSlaveTest : public ManagerTest {
protected:
    IOSlave* StartSlave() {
        IOSlave* slave = Keep(new IOSlave);
        slave->Run();
        return slave;
    }

    void Load(IOSlave* slave, LayerInfo* layer, BLooper* looper, int32 blockSize, int32 start) {
        BMessage request(kLoadLayer);
        request.AddPointer("layer", layer);
        request.AddPointer("looper", looper);
        request.AddInt32("blocksize", blockSize);
        request.AddInt32("start", start);
        ASSERT_EQ(slave->PostMessage(&request), B_OK);
    }

    std::vector<std::string> PathsOf(RecordingManager* manager, LayerInfo* layer) {
        return locked<std::vector<std::string>>(manager, [&] {
            std::vector<std::string> paths;
            BList* items = layer->SetLock(true, this);
            for (int32 index = 0; items != NULL && index < items->CountItems(); index++)
                paths.push_back(static_cast<RefRetriever*>(items->ItemAt(index))->Path());
            layer->SetLock(false, this);
            return paths;
        });
    }

    // Saves through the loader and waits for the file to read back as expected.
    bool SavedAs(IOSlave* slave, const char* name, std::vector<const char*> paths,
                 const std::string& file, const std::string& expected) {
        BMessage request(kSaveLayer);
        request.AddString("name", name);
        for (const char* path : paths)
            request.AddString("paths", path);
        slave->PostMessage(&request);
        return wait_until([&] { return read_file(file) == expected; });
    }
};

} // namespace

TEST_F(IOSlaveTest, LoaderIsTheLooperIoSlave) {
    IOSlave* slave = StartSlave();
    EXPECT_STREQ(slave->Name(), "io_slave");
}

TEST_F(IOSlaveTest, CommentOnlyFileGivesOneFinishReplyWithoutItems) {
    MakeLayer("Notes", "# one\n#two\n\n# three\n");
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Notes"); });
    ASSERT_NE(layer, nullptr);

    Load(slave, layer, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_EQ(replies[0].items, 0);
    EXPECT_TRUE(replies[0].indices.empty());
    EXPECT_TRUE(locked<bool>(manager, [&] { return layer->IsCompleted(); }));
    EXPECT_EQ(locked<int32>(manager, [&] { return layer->CountItems(); }), 0);
}

TEST_F(IOSlaveTest, BlockSizeOneSendsEveryItemAloneWithAllIndicesSoFar) {
    MakeLayer("Work", "/a\n# comment\n/b\n/c\n");
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Work"); });

    Load(slave, layer, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_EQ(replies.size(), 4u);
    EXPECT_EQ(replies[0].items, 1);
    EXPECT_EQ(replies[0].indices, (std::vector<int32>{0}));
    EXPECT_EQ(replies[1].items, 1);
    EXPECT_EQ(replies[1].indices, (std::vector<int32>{0, 1}));
    EXPECT_EQ(replies[2].indices, (std::vector<int32>{0, 1, 2}));
    EXPECT_FALSE(replies[2].finish);
    EXPECT_EQ(replies[3].items, 0);
    EXPECT_TRUE(replies[3].finish);
    EXPECT_EQ(replies[3].indices, (std::vector<int32>{0, 1, 2}));
    EXPECT_EQ(PathsOf(manager, layer), (std::vector<std::string>{"/a", "/b", "/c"}));
}

TEST_F(IOSlaveTest, LargerBlockSizeSendsOneItemFewerFirst) {
    MakeLayer("Work", lines(7));
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Work"); });

    Load(slave, layer, manager, 3, 0);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_EQ(replies.size(), 3u);
    EXPECT_EQ(replies[0].items, 2);
    EXPECT_EQ(replies[1].items, 3);
    EXPECT_EQ(replies[2].items, 2);
    EXPECT_TRUE(replies[2].finish);
    EXPECT_EQ(replies[2].indices, (std::vector<int32>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(PathsOf(manager, layer).size(), 7u);
}

TEST_F(IOSlaveTest, BlockSizeBelowOneCountsAsOne) {
    MakeLayer("Work", lines(2));
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Work"); });

    Load(slave, layer, manager, 0, -5);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_EQ(replies.size(), 3u);
    EXPECT_EQ(replies[0].items, 1);
    EXPECT_EQ(replies[0].indices, (std::vector<int32>{0}));
}

TEST_F(IOSlaveTest, StartPassesOverTheCountedLinesAlreadyLoaded) {
    MakeLayer("Work", "# not counted\n/l0\n/l1\n\n\n/l2\n#\n/l3\n/l4\n");
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Work"); });

    Load(slave, layer, manager, 1, 3);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_EQ(replies.size(), 3u);
    EXPECT_EQ(replies[0].indices, (std::vector<int32>{3}));
    EXPECT_EQ(replies[1].indices, (std::vector<int32>{3, 4}));
    EXPECT_EQ(PathsOf(manager, layer), (std::vector<std::string>{"/l3", "/l4"}));
}

TEST_F(IOSlaveTest, HashAfterABlankIsAPathNotAComment) {
    MakeLayer("Work", "#comment\n #path\n/b\n");
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Work"); });

    Load(slave, layer, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    EXPECT_EQ(PathsOf(manager, layer), (std::vector<std::string>{" #path", "/b"}));
}

TEST_F(IOSlaveTest, RejectedLinesAreSkippedAndNotCounted) {
    std::string missingFolder = fHome.Path() + "/no-such-folder/item";
    MakeLayer("Work", "/ok0\n" + missingFolder + "\n/ok1\n");
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Work"); });

    Load(slave, layer, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_EQ(replies.size(), 3u);
    EXPECT_EQ(replies[1].indices, (std::vector<int32>{0, 1}));
    EXPECT_EQ(PathsOf(manager, layer), (std::vector<std::string>{"/ok0", "/ok1"}));
}

TEST_F(IOSlaveTest, TargetsFileIsLoadedForTheLayerWithoutName) {
    fHome.WriteFile(".config/Glimrow/targets", "/t0\n/t1\n");
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* targets = locked<LayerInfo*>(manager, [&] { return manager->FindLayer(""); });
    ASSERT_NE(targets, nullptr);

    Load(slave, targets, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(targets));
    EXPECT_EQ(PathsOf(manager, targets), (std::vector<std::string>{"/t0", "/t1"}));
}

TEST_F(IOSlaveTest, CancelInTheQueueStopsTheLoadBeforeTheNextLine) {
    MakeLayer("Long", lines(100));
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Long"); });
    // The cancel is posted as soon as the first item arrives, while the loader
    // is still pausing after it.
    manager->SetOnReply([&](RecordingManager*, BHandler* target) {
        if (target != layer || manager->RepliesFor(layer).size() != 1)
            return;
        BMessage cancel(kCancelLoad);
        cancel.AddPointer("layer", layer);
        slave->PostMessage(&cancel);
    });

    Load(slave, layer, manager, 1, 0);
    // Another layer's load queued behind it shows when the loader is done.
    MakeLayer("Short", "/s\n");
    LayerInfo* other =
        locked<LayerInfo*>(manager, [&] { return manager->AddLayer("Short", true); });
    Load(slave, other, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(other));

    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_FALSE(replies.empty());
    EXPECT_LT(replies.size(), 100u);
    for (const Reply& reply : replies)
        EXPECT_FALSE(reply.finish);
    EXPECT_FALSE(locked<bool>(manager, [&] { return layer->IsCompleted(); }));

    // The cancel was taken out of the queue: a new load of the layer runs on.
    int32 count = locked<int32>(manager, [&] { return layer->CountItems(); });
    manager->SetOnReply(NULL);
    Load(slave, layer, manager, 1, count);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    EXPECT_EQ(PathsOf(manager, layer), [] {
        std::vector<std::string> all;
        for (int index = 0; index < 100; index++)
            all.push_back("/item" + std::to_string(index));
        return all;
    }());
}

TEST_F(IOSlaveTest, QueueCheckTakesOnlyTheCancelOfItsLayer) {
    // Not running: what is posted stays in the queue for the test to look at.
    IOSlave* slave = Keep(new IOSlave);
    int layer;
    int otherLayer;
    BMessage cancel(kCancelLoad);
    cancel.AddPointer("layer", &otherLayer);
    ASSERT_EQ(slave->PostMessage(&cancel), B_OK);
    ASSERT_EQ(slave->MessageQueue()->CountMessages(), 1);

    EXPECT_TRUE(slave->CheckQueue((LayerInfo*)&layer));
    EXPECT_EQ(slave->MessageQueue()->CountMessages(), 1);
    EXPECT_FALSE(slave->CheckQueue((LayerInfo*)&otherLayer));
    EXPECT_EQ(slave->MessageQueue()->CountMessages(), 0);
    EXPECT_TRUE(slave->CheckQueue((LayerInfo*)&otherLayer));
}

TEST_F(IOSlaveTest, CancelOfAnotherLayerLetsTheLoadFinish) {
    MakeLayer("Long", lines(5));
    MakeLayer("Other", lines(2));
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Long"); });
    LayerInfo* other = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Other"); });
    manager->SetOnReply([&](RecordingManager*, BHandler* target) {
        if (target != layer || manager->RepliesFor(layer).size() != 1)
            return;
        BMessage cancel(kCancelLoad);
        cancel.AddPointer("layer", other);
        slave->PostMessage(&cancel);
    });

    Load(slave, layer, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    EXPECT_EQ(PathsOf(manager, layer).size(), 5u);
    // The cancel reached the loader's MessageReceived before this load and
    // was dropped there.
    Load(slave, other, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(other));
    EXPECT_EQ(PathsOf(manager, other).size(), 2u);
}

TEST_F(IOSlaveTest, LoadStopsWhenTheLayerIsRemovedMidLoad) {
    MakeLayer("Long", lines(100));
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Long"); });
    LayerInfo* removed = NULL;
    manager->SetOnReply([&](RecordingManager* window, BHandler* target) {
        if (target == layer && removed == NULL)
            removed = window->RemoveLayer("Long");
    });

    Load(slave, layer, manager, 2, 0);
    MakeLayer("Short", "/s\n");
    LayerInfo* other =
        locked<LayerInfo*>(manager, [&] { return manager->AddLayer("Short", true); });
    Load(slave, other, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(other));

    ASSERT_EQ(removed, layer);
    std::vector<Reply> replies = manager->RepliesFor(layer);
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_FALSE(replies[0].finish);
    delete removed;
}

TEST_F(IOSlaveTest, WindowQuitMidLoadEndsTheLoadAndTheLoaderGoesOn) {
    MakeLayer("Long", lines(100));
    IOSlave* slave = StartSlave();
    // Not kept by the fixture: the test quits it itself while the loader reads.
    RecordingManager* doomed = new RecordingManager();
    doomed->Show();
    LayerInfo* layer = locked<LayerInfo*>(doomed, [&] { return doomed->FindLayer("Long"); });
    std::atomic<bool> replied(false);
    doomed->SetOnReply([&](RecordingManager*, BHandler* target) {
        if (target == layer)
            replied = true;
    });
    Load(slave, layer, doomed, 1, 0);
    ASSERT_TRUE(wait_until([&] { return replied.load(); }));
    ASSERT_TRUE(doomed->Lock());
    doomed->Quit();

    // The loader finds the window gone at its next item and takes the next request.
    RecordingManager* manager = ShownManager();
    LayerInfo* targets = locked<LayerInfo*>(manager, [&] { return manager->FindLayer(""); });
    Load(slave, targets, manager, 1, 0);
    EXPECT_TRUE(manager->WaitForFinish(targets));
}

TEST_F(IOSlaveTest, UndeliveredItemsAreDeletedWithoutALayer) {
    IOSlave* slave = StartSlave();
    int deleted = 0;
    BMessage reply(kLayerItemsFound);
    reply.AddPointer("items", new CountedItem("/a", &deleted));
    reply.AddPointer("items", new CountedItem("/b", &deleted));
    reply.AddInt32("index", 0);
    slave->ProcessMessage(&reply, NULL);
    EXPECT_EQ(deleted, 2);
    type_code type;
    EXPECT_EQ(reply.GetInfo("items", &type), B_NAME_NOT_FOUND);
    EXPECT_EQ(reply.GetInfo("index", &type), B_OK);
}

TEST_F(IOSlaveTest, UndeliveredItemsAreDeletedForALayerWithoutLooper) {
    IOSlave* slave = StartSlave();
    LayerInfo loose("Loose", true);
    int deleted = 0;
    BMessage reply(kLayerItemsFound);
    reply.AddPointer("items", new CountedItem("/a", &deleted));
    slave->ProcessMessage(&reply, &loose);
    EXPECT_EQ(deleted, 1);
    EXPECT_EQ(loose.CountItems(), 0);
}

TEST_F(IOSlaveTest, DeliveredItemsGoToTheLayer) {
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer =
        locked<LayerInfo*>(manager, [&] { return manager->AddLayer("Fresh", false); });
    int deleted = 0;
    BMessage reply(kLayerItemsFound);
    reply.AddPointer("items", new CountedItem("/a", &deleted));
    reply.AddBool("finish", true);
    locked<bool>(manager, [&] {
        slave->ProcessMessage(&reply, layer);
        return true;
    });
    type_code type;
    EXPECT_EQ(reply.GetInfo("items", &type), B_NAME_NOT_FOUND);
    ASSERT_TRUE(manager->WaitForFinish(layer));
    EXPECT_EQ(locked<int32>(manager, [&] { return layer->CountItems(); }), 1);
    EXPECT_EQ(deleted, 0);
}

TEST_F(IOSlaveTest, LoadOfALayerThatLeftItsLooperDoesNothing) {
    MakeLayer("Work", lines(2));
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->RemoveLayer("Work"); });
    ASSERT_NE(layer, nullptr);
    Load(slave, layer, manager, 1, 0);
    LayerInfo* targets = locked<LayerInfo*>(manager, [&] { return manager->FindLayer(""); });
    Load(slave, targets, manager, 1, 0);
    ASSERT_TRUE(manager->WaitForFinish(targets));
    EXPECT_TRUE(manager->RepliesFor(layer).empty());
    delete layer;
}

TEST_F(IOSlaveTest, SaveRequestWritesTheLayerFile) {
    IOSlave* slave = StartSlave();
    std::string file = fHome.ConfigHome() + "/Glimrow/layers/Work";
    EXPECT_TRUE(SavedAs(slave, "Work", {"/a", "/b"}, file, "/a\n/b\n"));
    EXPECT_TRUE(SavedAs(slave, "Work", {"/c"}, file, "/c\n"));
}

TEST_F(IOSlaveTest, SaveRequestWithoutNameDoesNothing) {
    IOSlave* slave = StartSlave();
    BMessage request(kSaveLayer);
    request.AddString("paths", "/a");
    slave->PostMessage(&request);
    std::string targets = fHome.ConfigHome() + "/Glimrow/targets";
    EXPECT_TRUE(SavedAs(slave, "", {"/t"}, targets, "/t\n"));
    EXPECT_TRUE(std::filesystem::is_empty(fHome.ConfigHome() + "/Glimrow/layers"));
}

TEST_F(IOSlaveTest, DeleteRequestMovesTheLayerToTheTrash) {
    MakeLayer("Work", "/a\n");
    fHome.WriteFile(".local/share/Trash/files/Work", "older\n");
    IOSlave* slave = StartSlave();
    BMessage request(kDeleteLayer);
    request.AddString("name", "Work");
    slave->PostMessage(&request);
    EXPECT_TRUE(
        wait_until([&] { return read_file(fHome.DataHome() + "/Trash/files/Work 1") == "/a\n"; }));
    EXPECT_FALSE(std::filesystem::exists(fHome.ConfigHome() + "/Glimrow/layers/Work"));
}
