#include "LayerInfo.h"

#include "Commands.h"
#include "Globals.h"
#include "RefRetriever.h"

#include <Looper.h>
#include <Message.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <mutex>
#include <string>
#include <vector>

using testing_support::TestHome;
using testing_support::wait_until;

namespace {

const uint32 kSentinel = 'sent';

// Stands in for the loader: keeps a copy of every request it is sent.
class RecordingLoader : public BLooper {
public:
    RecordingLoader() : BLooper("recording loader") {}

    void MessageReceived(BMessage* message) override {
        std::lock_guard<std::mutex> lock(fLock);
        fMessages.push_back(*message);
    }

    // Every request sent before this call, in order: a sentinel posted now
    // arrives after all of them.
    std::vector<BMessage> Requests() {
        PostMessage(kSentinel);
        std::vector<BMessage> requests;
        bool arrived = wait_until([&] {
            std::lock_guard<std::mutex> lock(fLock);
            for (size_t index = 0; index < fMessages.size(); index++) {
                if (fMessages[index].what == kSentinel) {
                    requests.assign(fMessages.begin(), fMessages.begin() + index);
                    fMessages.erase(fMessages.begin(), fMessages.begin() + index + 1);
                    return true;
                }
            }
            return false;
        });
        EXPECT_TRUE(arrived) << "the loader never answered";
        return requests;
    }

private:
    std::mutex fLock;
    std::vector<BMessage> fMessages;
};

// An item that notes when it is checked and when it goes.
class TrackedItem : public RefRetriever {
public:
    TrackedItem(const char* path, std::vector<std::string>* deleted)
        : RefRetriever(path), fDeleted(deleted) {}
    ~TrackedItem() override {
        if (fDeleted != NULL)
            fDeleted->push_back(Path());
    }
    status_t RefUpdated() override {
        fUpdates++;
        return B_OK;
    }

    int fUpdates = 0;

private:
    std::vector<std::string>* fDeleted;
};

class LayerInfoTest : public testing::Test {
protected:
    void SetUp() override {
        fLoader = new RecordingLoader;
        fLoader->Run();
        gr_slave = fLoader;
        // Never run: the test thread holds its lock, as a window's thread would.
        fOwner = new BLooper("layer owner");
        fLayer = new LayerInfo("Work", true);
        fOwner->AddHandler(fLayer);
    }

    void TearDown() override {
        if (fLayer != NULL) {
            fOwner->RemoveHandler(fLayer);
            delete fLayer;
        }
        fOwner->Quit();
        gr_slave = NULL;
        fLoader->Lock();
        fLoader->Quit();
    }

    void Deliver(LayerInfo* layer, std::vector<const char*> paths, bool finish) {
        BMessage reply(kLayerItemsFound);
        for (const char* path : paths)
            reply.AddPointer("items", new TrackedItem(path, &fDeleted));
        if (finish)
            reply.AddBool("finish", true);
        layer->ItemsFound(&reply);
    }

    TrackedItem* ItemAt(int32 index) {
        BList* items = fLayer->SetLock(true, this);
        TrackedItem* item = items != NULL ? static_cast<TrackedItem*>(items->ItemAt(index)) : NULL;
        fLayer->SetLock(false, this);
        return item;
    }

    TestHome fHome;
    RecordingLoader* fLoader = NULL;
    BLooper* fOwner = NULL;
    LayerInfo* fLayer = NULL;
    std::vector<std::string> fDeleted;
};

} // namespace

TEST_F(LayerInfoTest, NewLayerIsDisabledEmptyAndNotCompleted) {
    EXPECT_STREQ(fLayer->LayerName(), "Work");
    EXPECT_NE(fLayer->Locker(), nullptr);
    EXPECT_EQ(fLayer->SetLock(true, this), nullptr);
    EXPECT_EQ(fLayer->CountItems(), 0);
    EXPECT_FALSE(fLayer->IsCompleted());
    EXPECT_TRUE(fLoader->Requests().empty());
}

TEST_F(LayerInfoTest, EnablingTwicePostsOneLoadRequest) {
    fLayer->SetEnabled(true);
    fLayer->SetEnabled(true);
    std::vector<BMessage> requests = fLoader->Requests();
    ASSERT_EQ(requests.size(), 1u);
    BMessage& request = requests[0];
    EXPECT_EQ(request.what, (uint32)kLoadLayer);
    void* pointer;
    ASSERT_EQ(request.FindPointer("layer", &pointer), B_OK);
    EXPECT_EQ(pointer, fLayer);
    ASSERT_EQ(request.FindPointer("looper", &pointer), B_OK);
    EXPECT_EQ(pointer, fOwner);
    int32 value;
    ASSERT_EQ(request.FindInt32("blocksize", &value), B_OK);
    EXPECT_EQ(value, 1);
    ASSERT_EQ(request.FindInt32("start", &value), B_OK);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(fLayer->Locker(), nullptr);
}

TEST_F(LayerInfoTest, LoadResumesAfterTheItemsAlreadyThere) {
    Deliver(fLayer, {"/a", "/b"}, false);
    fLayer->SetEnabled(true);
    std::vector<BMessage> requests = fLoader->Requests();
    ASSERT_EQ(requests.size(), 1u);
    int32 start;
    ASSERT_EQ(requests[0].FindInt32("start", &start), B_OK);
    EXPECT_EQ(start, 2);
}

TEST_F(LayerInfoTest, EnablingACompletedLayerPostsNothing) {
    Deliver(fLayer, {"/a"}, true);
    fLayer->SetEnabled(true);
    EXPECT_TRUE(fLoader->Requests().empty());
    EXPECT_EQ(fLayer->Locker(), nullptr);
}

TEST_F(LayerInfoTest, EnablingALayerThatIsNotLoadablePostsNothing) {
    LayerInfo layer("Fresh", false);
    fOwner->AddHandler(&layer);
    layer.SetEnabled(true);
    EXPECT_TRUE(fLoader->Requests().empty());
    EXPECT_EQ(layer.Locker(), nullptr);
    fOwner->RemoveHandler(&layer);
}

TEST_F(LayerInfoTest, DisablingAnUnfinishedLayerCancelsItsLoad) {
    fLayer->SetEnabled(true);
    fLayer->SetEnabled(false);
    std::vector<BMessage> requests = fLoader->Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[1].what, (uint32)kCancelLoad);
    void* pointer;
    ASSERT_EQ(requests[1].FindPointer("layer", &pointer), B_OK);
    EXPECT_EQ(pointer, fLayer);
    EXPECT_EQ(fLayer->SetLock(true, this), nullptr);
}

TEST_F(LayerInfoTest, DisablingACompletedLayerPostsNothing) {
    Deliver(fLayer, {}, true);
    fLayer->SetEnabled(true);
    fLayer->SetEnabled(false);
    EXPECT_TRUE(fLoader->Requests().empty());
}

TEST_F(LayerInfoTest, FreeLayerIsTakenAndGivenBack) {
    Deliver(fLayer, {"/a"}, true);
    fLayer->SetEnabled(true);
    int owner;
    BList* items = fLayer->SetLock(true, &owner);
    ASSERT_NE(items, nullptr);
    EXPECT_EQ(items->CountItems(), 1);
    EXPECT_EQ(fLayer->Locker(), &owner);
    // Taking it again needs only one release.
    EXPECT_EQ(fLayer->SetLock(true, &owner), items);
    EXPECT_EQ(fLayer->SetLock(false, &owner), nullptr);
    EXPECT_EQ(fLayer->Locker(), nullptr);
}

TEST_F(LayerInfoTest, HeldLayerIsRefusedToOthers) {
    fLayer->SetEnabled(true);
    int owner;
    int other;
    ASSERT_NE(fLayer->SetLock(true, &owner), nullptr);
    EXPECT_EQ(fLayer->SetLock(true, &other), nullptr);
    EXPECT_EQ(fLayer->SetLock(false, &other), nullptr);
    EXPECT_EQ(fLayer->Locker(), &owner);
}

TEST_F(LayerInfoTest, ReleasingAFreeLayerChangesNothing) {
    fLayer->SetEnabled(true);
    int owner;
    EXPECT_EQ(fLayer->SetLock(false, &owner), nullptr);
    EXPECT_EQ(fLayer->Locker(), nullptr);
}

TEST_F(LayerInfoTest, LayerDisabledWhileHeldStaysDisabledAfterTheRelease) {
    Deliver(fLayer, {}, true);
    fLayer->SetEnabled(true);
    int owner;
    ASSERT_NE(fLayer->SetLock(true, &owner), nullptr);
    fLayer->SetEnabled(false);
    EXPECT_NE(fLayer->Locker(), &owner);
    EXPECT_EQ(fLayer->SetLock(false, &owner), nullptr);
    EXPECT_EQ(fLayer->SetLock(true, &owner), nullptr);
    EXPECT_NE(fLayer->Locker(), nullptr);
}

TEST_F(LayerInfoTest, RepliesAppendItemsInOrderAndFinishCompletes) {
    Deliver(fLayer, {"/a", "/b"}, false);
    EXPECT_FALSE(fLayer->IsCompleted());
    Deliver(fLayer, {"/c"}, true);
    EXPECT_TRUE(fLayer->IsCompleted());
    ASSERT_EQ(fLayer->CountItems(), 3);
    fLayer->SetEnabled(true);
    EXPECT_STREQ(ItemAt(0)->Path(), "/a");
    EXPECT_STREQ(ItemAt(2)->Path(), "/c");
}

TEST_F(LayerInfoTest, ReplyWithAnotherNameRenamesTheLayer) {
    BMessage reply(kLayerItemsFound);
    reply.AddString("name", "Play");
    fLayer->ItemsFound(&reply);
    EXPECT_STREQ(fLayer->LayerName(), "Play");
    EXPECT_FALSE(fLayer->IsCompleted());
}

TEST_F(LayerInfoTest, ReplyMessageReachesTheLayerThroughItsLooper) {
    BMessage reply(kLayerItemsFound);
    reply.AddPointer("items", new TrackedItem("/a", &fDeleted));
    reply.AddBool("finish", true);
    fLayer->MessageReceived(&reply);
    EXPECT_EQ(fLayer->CountItems(), 1);
    EXPECT_TRUE(fLayer->IsCompleted());
}

TEST_F(LayerInfoTest, InitializeDeletesTheItemsAndDisables) {
    Deliver(fLayer, {"/a", "/b"}, true);
    fLayer->SetEnabled(true);
    BMessage initialize(kLayerInitialize);
    fLayer->MessageReceived(&initialize);
    EXPECT_EQ(fLayer->CountItems(), 0);
    EXPECT_FALSE(fLayer->IsCompleted());
    EXPECT_EQ(fLayer->SetLock(true, this), nullptr);
    EXPECT_EQ(fDeleted, (std::vector<std::string>{"/b", "/a"}));
    // Not completed any more: enabling reads the file again from the start.
    fLayer->SetEnabled(true);
    std::vector<BMessage> requests = fLoader->Requests();
    ASSERT_EQ(requests.size(), 1u);
    int32 start;
    ASSERT_EQ(requests[0].FindInt32("start", &start), B_OK);
    EXPECT_EQ(start, 0);
}

TEST_F(LayerInfoTest, DestructionDeletesTheItemsFromTheLast) {
    Deliver(fLayer, {"/a", "/b", "/c"}, true);
    fOwner->RemoveHandler(fLayer);
    delete fLayer;
    fLayer = NULL;
    EXPECT_EQ(fDeleted, (std::vector<std::string>{"/c", "/b", "/a"}));
}

TEST_F(LayerInfoTest, CheckRequestBeforeCompletionIsIgnored) {
    std::string file = fHome.Path() + "/appears";
    Deliver(fLayer, {file.c_str()}, false);
    fHome.WriteFile("appears", "x");
    BMessage check(kLayerCheckItem);
    check.AddInt32("index", 0);
    fLayer->MessageReceived(&check);
    fLayer->SetEnabled(true);
    EXPECT_EQ(ItemAt(0)->fUpdates, 0);
    EXPECT_EQ(ItemAt(0)->Status(), B_ENTRY_NOT_FOUND);
}

TEST_F(LayerInfoTest, CheckRequestChecksTheItemAtIndex) {
    std::string file = fHome.Path() + "/appears";
    Deliver(fLayer, {"/a", file.c_str()}, true);
    fLayer->SetEnabled(true);
    fHome.WriteFile("appears", "x");
    BMessage check(kLayerCheckItem);
    check.AddInt32("index", 1);
    fLayer->MessageReceived(&check);
    EXPECT_EQ(ItemAt(1)->Status(), B_OK);
    EXPECT_EQ(ItemAt(1)->fUpdates, 1);
}

TEST_F(LayerInfoTest, CheckRequestPastTheLastItemIsIgnored) {
    std::string file = fHome.Path() + "/appears";
    Deliver(fLayer, {file.c_str()}, true);
    fLayer->SetEnabled(true);
    fHome.WriteFile("appears", "x");
    for (int32 index : {1, -1}) {
        BMessage check(kLayerCheckItem);
        check.AddInt32("index", index);
        fLayer->MessageReceived(&check);
    }
    BMessage noIndex(kLayerCheckItem);
    fLayer->MessageReceived(&noIndex);
    EXPECT_EQ(ItemAt(0)->fUpdates, 0);
}

TEST_F(LayerInfoTest, CheckAllItemsChecksEveryItem) {
    std::string first = fHome.Path() + "/first";
    std::string second = fHome.Path() + "/second";
    Deliver(fLayer, {first.c_str(), second.c_str()}, true);
    fLayer->SetEnabled(true);
    fLayer->CheckAllItems(true);
    EXPECT_EQ(ItemAt(0)->fUpdates, 1);
    EXPECT_EQ(ItemAt(1)->fUpdates, 1);
}

TEST_F(LayerInfoTest, TwoEmptyLayersDoNotDiffer) {
    LayerInfo one("One", true);
    LayerInfo two("Two", true);
    EXPECT_FALSE(one.CompareItems(&two));
}

TEST_F(LayerInfoTest, SamePathsInAnotherOrderDiffer) {
    LayerInfo other("Other", true);
    Deliver(fLayer, {"/a", "/b"}, true);
    Deliver(&other, {"/b", "/a"}, true);
    EXPECT_TRUE(fLayer->CompareItems(&other));
}

TEST_F(LayerInfoTest, SamePathsInTheSameOrderDoNotDiffer) {
    LayerInfo other("Other", true);
    Deliver(fLayer, {"/a", "/b"}, true);
    Deliver(&other, {"/a", "/b"}, false);
    EXPECT_FALSE(fLayer->CompareItems(&other));
}

TEST_F(LayerInfoTest, DifferentCountsDiffer) {
    LayerInfo other("Other", true);
    Deliver(fLayer, {"/a", "/b"}, true);
    Deliver(&other, {"/a"}, true);
    EXPECT_TRUE(fLayer->CompareItems(&other));
}

TEST_F(LayerInfoTest, PrintsItselfAndItsItems) {
    Deliver(fLayer, {"/a", "/b c"}, true);
    testing::internal::CaptureStdout();
    fLayer->PrintToStream();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "LayerInfo name=Work, count=2, completed=1, is disabled.\n"
              "item[0]=\"/a\"\n"
              "item[1]=\"/b c\"\n");
    fLayer->SetEnabled(true);
    testing::internal::CaptureStdout();
    fLayer->PrintToStream();
    EXPECT_EQ(testing::internal::GetCapturedStdout().rfind(
                  "LayerInfo name=Work, count=2, completed=1, is unlocked.\n", 0),
              0u);
    int owner;
    fLayer->SetLock(true, &owner);
    testing::internal::CaptureStdout();
    fLayer->PrintToStream();
    EXPECT_NE(testing::internal::GetCapturedStdout().find("is locked.\n"), std::string::npos);
}

TEST_F(LayerInfoTest, NameIsCopied) {
    char name[] = "Mutable";
    LayerInfo layer(name, true);
    name[0] = 'X';
    EXPECT_STREQ(layer.LayerName(), "Mutable");
    layer.SetLayerName("Renamed");
    EXPECT_STREQ(layer.LayerName(), "Renamed");
}
