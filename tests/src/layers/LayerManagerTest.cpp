#include "LayerManager.h"

#include "ManagerTestSupport.h"

#include "IOSlave.h"

#include <Looper.h>

#include <set>
#include <string>
#include <vector>

using namespace layer_testing;
using testing_support::wait_until;

namespace {

const uint32 kSentinel = 'sent';

// Stands in for the loader: keeps the requests it is sent.
class RequestLog : public BLooper {
public:
    RequestLog() : BLooper("request log") {}

    void MessageReceived(BMessage* message) override {
        std::lock_guard<std::mutex> lock(fLock);
        fMessages.push_back(*message);
    }

    // The requests sent before this call: a sentinel posted now comes after them.
    std::vector<BMessage> Requests() {
        PostMessage(kSentinel);
        std::vector<BMessage> requests;
        EXPECT_TRUE(wait_until([&] {
            std::lock_guard<std::mutex> lock(fLock);
            for (size_t index = 0; index < fMessages.size(); index++) {
                if (fMessages[index].what != kSentinel)
                    continue;
                requests.assign(fMessages.begin(), fMessages.begin() + index);
                fMessages.erase(fMessages.begin(), fMessages.begin() + index + 1);
                return true;
            }
            return false;
        }));
        return requests;
    }

private:
    std::mutex fLock;
    std::vector<BMessage> fMessages;
};

std::vector<std::string> names_of(LayerManager* manager) {
    return locked<std::vector<std::string>>(manager, [&] {
        BMessage list;
        EXPECT_EQ(manager->GetLayerList(&list), B_OK);
        std::vector<std::string> names;
        const char* name;
        for (int32 index = 0; list.FindString("name", index, &name) == B_OK; index++)
            names.push_back(name);
        return names;
    });
}

class LayerManagerTest : public ManagerTest {
protected:
    RequestLog* StartLog() {
        RequestLog* log = Keep(new RequestLog);
        log->Run();
        gr_slave = log;
        return log;
    }

    RecordingManager* HiddenManager() { return Keep(new RecordingManager); }
};

} // namespace

TEST_F(LayerManagerTest, EmptyLayersFolderGivesOnlyTheTargetsList) {
    RecordingManager* manager = HiddenManager();
    EXPECT_EQ(names_of(manager), (std::vector<std::string>{""}));
}

TEST_F(LayerManagerTest, EveryTextFileIsALayerAndTheTargetsComeLast) {
    MakeLayer("Work", "/a\n");
    MakeLayer("Play", "/b\n");
    RecordingManager* manager = HiddenManager();
    std::vector<std::string> names = names_of(manager);
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end() - 1),
              (std::set<std::string>{"Work", "Play"}));
    EXPECT_EQ(names.back(), "");
}

TEST_F(LayerManagerTest, LayerListEndsWithTheTwoKinds) {
    LayerManager* manager =
        Keep(new LayerManager(BRect(0, 0, 50, 50), "kinds", 0, which_list_items, which_menu_items));
    BMessage list;
    ASSERT_TRUE(manager->Lock());
    ASSERT_EQ(manager->GetLayerList(&list), B_OK);
    manager->Unlock();
    int32 which;
    ASSERT_EQ(list.FindInt32("layers_which", &which), B_OK);
    EXPECT_EQ(which, which_list_items);
    ASSERT_EQ(list.FindInt32("targets_which", &which), B_OK);
    EXPECT_EQ(which, which_menu_items);
    EXPECT_EQ(manager->LayersWhich(), which_list_items);
    EXPECT_EQ(manager->TargetsWhich(), which_menu_items);
}

TEST_F(LayerManagerTest, LayerPointersAreFiledUnderTheirNames) {
    MakeLayer("Work", "/a\n");
    RecordingManager* manager = HiddenManager();
    BMessage pointers;
    ASSERT_TRUE(manager->Lock());
    manager->GetLayerPointer(&pointers);
    void* pointer = NULL;
    EXPECT_EQ(pointers.FindPointer("Work", &pointer), B_OK);
    EXPECT_EQ(pointer, manager->FindLayer("Work"));
    manager->Unlock();
}

TEST_F(LayerManagerTest, NewManagerKeepsItsLayersDisabled) {
    MakeLayer("Work", "/a\n");
    RequestLog* log = StartLog();
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    int owner;
    EXPECT_EQ(manager->FindLayer("Work")->SetLock(true, &owner), nullptr);
    manager->Unlock();
    EXPECT_TRUE(log->Requests().empty());
}

TEST_F(LayerManagerTest, ShowingEnablesEveryLayerAndAsksForItsItems) {
    MakeLayer("Work", "/a\n");
    RequestLog* log = StartLog();
    RecordingManager* manager = HiddenManager();
    manager->Show();
    std::vector<BMessage> requests = log->Requests();
    ASSERT_EQ(requests.size(), 2u);
    std::set<void*> layers;
    for (BMessage& request : requests) {
        EXPECT_EQ(request.what, (uint32)kLoadLayer);
        void* layer;
        ASSERT_EQ(request.FindPointer("layer", &layer), B_OK);
        layers.insert(layer);
    }
    ASSERT_TRUE(manager->Lock());
    EXPECT_EQ(layers, (std::set<void*>{manager->FindLayer("Work"), manager->FindLayer("")}));
    manager->Unlock();
}

TEST_F(LayerManagerTest, LayerAddedToAHiddenManagerStaysDisabled) {
    RequestLog* log = StartLog();
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    LayerInfo* layer = manager->AddLayer("New", true);
    int owner;
    EXPECT_EQ(layer->SetLock(true, &owner), nullptr);
    manager->Unlock();
    EXPECT_TRUE(log->Requests().empty());
}

TEST_F(LayerManagerTest, LayerAddedToAShownManagerStartsLoading) {
    RequestLog* log = StartLog();
    RecordingManager* manager = ShownManager();
    log->Requests();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->AddLayer("New", true); });
    std::vector<BMessage> requests = log->Requests();
    ASSERT_EQ(requests.size(), 1u);
    void* pointer;
    ASSERT_EQ(requests[0].FindPointer("layer", &pointer), B_OK);
    EXPECT_EQ(pointer, layer);
    EXPECT_EQ(names_of(manager).back(), "New");
}

TEST_F(LayerManagerTest, SameNameTwiceGivesTwoLayersAndTheFirstIsFound) {
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    LayerInfo* first = manager->AddLayer("Twin", true);
    LayerInfo* second = manager->AddLayer("Twin", true);
    EXPECT_NE(first, second);
    EXPECT_EQ(manager->FindLayer("Twin"), first);
    EXPECT_EQ(manager->RemoveLayer("Twin"), first);
    EXPECT_EQ(manager->FindLayer("Twin"), second);
    manager->Unlock();
    delete first;
}

TEST_F(LayerManagerTest, RemovedLayerIsDisabledAndHandedOver) {
    MakeLayer("Work", "/a\n");
    RecordingManager* manager = ShownManager();
    ASSERT_TRUE(manager->Lock());
    LayerInfo* layer = manager->RemoveLayer("Work");
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->Looper(), nullptr);
    int owner;
    EXPECT_EQ(layer->SetLock(true, &owner), nullptr);
    EXPECT_EQ(manager->FindLayer("Work"), nullptr);
    manager->Unlock();
    delete layer;
}

TEST_F(LayerManagerTest, RemovingAnUnknownNameChangesNothing) {
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    EXPECT_EQ(manager->RemoveLayer("Nothing"), nullptr);
    EXPECT_EQ(manager->FindLayer(NULL), nullptr);
    manager->Unlock();
    EXPECT_EQ(names_of(manager), (std::vector<std::string>{""}));
}

TEST_F(LayerManagerTest, EmptyNameFindsTheTargetsList) {
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    LayerInfo* targets = manager->FindLayer("");
    ASSERT_NE(targets, nullptr);
    EXPECT_STREQ(targets->LayerName(), "");
    manager->Unlock();
}

TEST_F(LayerManagerTest, NextLayerWithoutStartIsTheFirstForwardAndTheLastBackward) {
    MakeLayer("Work", "/a\n");
    MakeLayer("Play", "/b\n");
    RecordingManager* manager = HiddenManager();
    std::vector<std::string> names = names_of(manager);
    ASSERT_TRUE(manager->Lock());
    EXPECT_STREQ(manager->FindNextLayer(NULL, 1)->LayerName(), names.front().c_str());
    EXPECT_STREQ(manager->FindNextLayer(NULL, -1)->LayerName(), "");
    manager->Unlock();
}

TEST_F(LayerManagerTest, NextLayerWrapsAroundBothWays) {
    MakeLayer("Work", "/a\n");
    MakeLayer("Play", "/b\n");
    RecordingManager* manager = HiddenManager();
    std::vector<std::string> names = names_of(manager);
    ASSERT_TRUE(manager->Lock());
    LayerInfo* first = manager->FindLayer(names[0].c_str());
    LayerInfo* second = manager->FindLayer(names[1].c_str());
    LayerInfo* targets = manager->FindLayer("");
    EXPECT_EQ(manager->FindNextLayer(first, 1), second);
    EXPECT_EQ(manager->FindNextLayer(second, 1), targets);
    EXPECT_EQ(manager->FindNextLayer(targets, 1), first);
    EXPECT_EQ(manager->FindNextLayer(second, -1), first);
    // Backward from the first layer passes over the window itself and wraps.
    EXPECT_EQ(manager->FindNextLayer(first, -1), targets);
    manager->Unlock();
}

TEST_F(LayerManagerTest, NextLayerWithStepZeroIsTheStart) {
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    LayerInfo* targets = manager->FindLayer("");
    EXPECT_EQ(manager->FindNextLayer(targets, 0), targets);
    EXPECT_EQ(manager->FindNextLayer(NULL, 0), nullptr);
    manager->Unlock();
}

TEST_F(LayerManagerTest, NextLayerFromAStrangerGoingBackIsNothing) {
    RecordingManager* manager = HiddenManager();
    LayerInfo stranger("Stranger", true);
    ASSERT_TRUE(manager->Lock());
    EXPECT_EQ(manager->FindNextLayer(&stranger, -1), nullptr);
    // Going forward it counts from before the first handler.
    EXPECT_NE(manager->FindNextLayer(&stranger, 1), nullptr);
    manager->Unlock();
}

TEST_F(LayerManagerTest, NextLayerWithoutLayersIsNothing) {
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    delete manager->RemoveLayer("");
    EXPECT_EQ(manager->FindNextLayer(NULL, 1), nullptr);
    EXPECT_EQ(manager->FindNextLayer(NULL, -3), nullptr);
    manager->Unlock();
}

TEST_F(LayerManagerTest, EnableMessageEnablesAndDisablesEveryLayer) {
    MakeLayer("Work", "/a\n");
    RequestLog* log = StartLog();
    RecordingManager* manager = ShownManager();
    EXPECT_EQ(log->Requests().size(), 2u);

    BMessage disable(kManagerEnableLayers);
    disable.AddBool("enable", false);
    manager->PostMessage(&disable);
    std::vector<BMessage> requests;
    ASSERT_TRUE(wait_until([&] {
        std::vector<BMessage> more = log->Requests();
        requests.insert(requests.end(), more.begin(), more.end());
        return requests.size() >= 2;
    }));
    for (BMessage& request : requests)
        EXPECT_EQ(request.what, (uint32)kCancelLoad);

    manager->PostMessage(kManagerEnableLayers);
    BMessage enable(kManagerEnableLayers);
    enable.AddBool("enable", true);
    manager->PostMessage(&enable);
    requests.clear();
    ASSERT_TRUE(wait_until([&] {
        std::vector<BMessage> more = log->Requests();
        requests.insert(requests.end(), more.begin(), more.end());
        return requests.size() >= 2;
    }));
    for (BMessage& request : requests)
        EXPECT_EQ(request.what, (uint32)kLoadLayer);
}

TEST_F(LayerManagerTest, ManagerReadsTheSettingsFile) {
    settings written;
    written.direction = 2;
    written.shelfSize = 3;
    ASSERT_EQ(write_settings_file(&written), B_OK);
    RecordingManager* manager = HiddenManager();
    EXPECT_EQ(manager->Settings()->compare(&written, true), 0);
}

TEST_F(LayerManagerTest, SettingsMessageReplacesTheSettings) {
    RecordingManager* manager = ShownManager();
    settings changed;
    changed.location = 0;
    changed.forExpand = 3;
    BMessage message(kManagerUpdateSettings);
    ASSERT_EQ(changed.archive_to(&message), B_OK);
    manager->PostMessage(&message);
    EXPECT_TRUE(wait_until([&] {
        return locked<bool>(manager,
                            [&] { return manager->Settings()->compare(&changed, true) == 0; });
    }));
}

TEST_F(LayerManagerTest, IncompleteSettingsMessageFallsBackToTheFile) {
    settings written;
    written.which = 32;
    ASSERT_EQ(write_settings_file(&written), B_OK);
    RecordingManager* manager = HiddenManager();
    ASSERT_TRUE(manager->Lock());
    BMessage incomplete(kManagerUpdateSettings);
    incomplete.AddInt32("location", 1);
    manager->UpdateSettings(&incomplete, false);
    // The message's first key was read before the file filled in the rest.
    EXPECT_EQ(manager->Settings()->which, 32);
    manager->Unlock();
}

TEST_F(LayerManagerTest, ReloadMessageBuildsTheLayersAnew) {
    RecordingManager* manager = ShownManager();
    EXPECT_EQ(names_of(manager), (std::vector<std::string>{""}));
    MakeLayer("Later", "/a\n");
    manager->PostMessage(kManagerLoadLayers);
    EXPECT_TRUE(wait_until([&] { return names_of(manager).size() == 2; }));
    EXPECT_EQ(names_of(manager), (std::vector<std::string>{"Later", ""}));
}

TEST_F(LayerManagerTest, LoadLayersCancelsTheOldLayersBeforeLoadingTheNew) {
    MakeLayer("Work", "/a\n");
    RequestLog* log = StartLog();
    RecordingManager* manager = ShownManager();
    EXPECT_EQ(log->Requests().size(), 2u);
    ASSERT_TRUE(manager->Lock());
    ASSERT_EQ(manager->LoadLayers(), B_OK);
    LayerInfo* newWork = manager->FindLayer("Work");
    manager->Unlock();
    std::vector<BMessage> requests = log->Requests();
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_EQ(requests[0].what, (uint32)kCancelLoad);
    EXPECT_EQ(requests[1].what, (uint32)kCancelLoad);
    // The window is shown, so the new layers start loading at once.
    EXPECT_EQ(requests[2].what, (uint32)kLoadLayer);
    EXPECT_EQ(requests[3].what, (uint32)kLoadLayer);
    void* pointer;
    ASSERT_EQ(requests[2].FindPointer("layer", &pointer), B_OK);
    EXPECT_EQ(pointer, newWork);
    EXPECT_NE(newWork, nullptr);
}

TEST_F(LayerManagerTest, LayersLoadThroughTheLoaderOnceShown) {
    MakeLayer("Work", "/a\n/b\n");
    IOSlave* slave = Keep(new IOSlave);
    slave->Run();
    gr_slave = slave;
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Work"); });
    ASSERT_TRUE(manager->WaitForFinish(layer));
    EXPECT_EQ(locked<int32>(manager, [&] { return layer->CountItems(); }), 2);
    EXPECT_TRUE(locked<bool>(manager, [&] { return layer->IsCompleted(); }));
}
