// Failures of the layer files reach the user as warning boxes; here they are
// answered through the headless display and checked by their text.
#include "IOSlave.h"
#include "ManagerTestSupport.h"

#include <Alert.h>

#include <filesystem>
#include <string>
#include <vector>

#include <string.h>

#include "AlertAnswerer.h"

using namespace layer_testing;
using testing_support::AlertAnswerer;
using testing_support::SeenAlert;

namespace {

std::string read_failure(const char* name, status_t error) {
    return std::string("Glimrow Alert: \n\nFailed to read a file \"") + name + "\".\n" +
           strerror(error);
}

class LayerAlertTest : public ManagerTest {
protected:
    IOSlave* StartSlave() {
        IOSlave* slave = Keep(new IOSlave);
        slave->Run();
        return slave;
    }

    void Load(IOSlave* slave, LayerInfo* layer, BLooper* looper) {
        BMessage request(kLoadLayer);
        request.AddPointer("layer", layer);
        request.AddPointer("looper", looper);
        request.AddInt32("blocksize", 1);
        request.AddInt32("start", 0);
        ASSERT_EQ(slave->PostMessage(&request), B_OK);
    }

    // Loads the targets list and waits for it: everything asked of the loader
    // before has been done by then.
    void Settle(IOSlave* slave, RecordingManager* manager) {
        LayerInfo* targets = locked<LayerInfo*>(manager, [&] { return manager->FindLayer(""); });
        Load(slave, targets, manager);
        ASSERT_TRUE(manager->WaitForFinish(targets));
    }

    SeenAlert Only(AlertAnswerer& answerer) {
        EXPECT_TRUE(answerer.Wait());
        std::vector<SeenAlert> seen = answerer.Seen();
        EXPECT_EQ(seen.size(), 1u);
        return seen.empty() ? SeenAlert() : seen[0];
    }
};

} // namespace

TEST_F(LayerAlertTest, WrongTypeIsNotLoadedAndShowsTheReadAlert) {
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    std::string path = fHome.WriteFile(".config/Glimrow/layers/Odd", "/a\n");
    BNode(path.c_str()).WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain+more", 16);
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->AddLayer("Odd", true); });

    AlertAnswerer answerer("OK");
    Load(slave, layer, manager);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.title, "Glimrow Alert");
    EXPECT_EQ(seen.text, read_failure("Odd", B_BAD_VALUE));
    Settle(slave, manager);
    EXPECT_TRUE(manager->RepliesFor(layer).empty());
    EXPECT_FALSE(locked<bool>(manager, [&] { return layer->IsCompleted(); }));
}

TEST_F(LayerAlertTest, TextFileWithoutTypeIsAcceptedButNotLoaded) {
    fHome.WriteFile(".config/Glimrow/layers/Plain.txt", "/a\n");
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer("Plain.txt"); });
    ASSERT_NE(layer, nullptr);

    AlertAnswerer answerer("OK");
    Load(slave, layer, manager);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text.rfind("Glimrow Alert: \n\nFailed to read a file \"Plain.txt\".\n", 0), 0u)
        << seen.text;
    Settle(slave, manager);
    EXPECT_TRUE(manager->RepliesFor(layer).empty());
}

TEST_F(LayerAlertTest, TargetsReadFailureNamesTheTargets) {
    BNode targets((fHome.ConfigHome() + "/Glimrow/targets").c_str());
    ASSERT_EQ(targets.RemoveAttr("BEOS:TYPE"), B_OK);
    IOSlave* slave = StartSlave();
    RecordingManager* manager = ShownManager();
    LayerInfo* layer = locked<LayerInfo*>(manager, [&] { return manager->FindLayer(""); });

    AlertAnswerer answerer("OK");
    Load(slave, layer, manager);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text.rfind("Glimrow Alert: \n\nFailed to read a file \"targets\".\n", 0), 0u)
        << seen.text;
}

TEST_F(LayerAlertTest, SaveFailureShowsTheWriteAlert) {
    IOSlave* slave = StartSlave();
    BMessage request(kSaveLayer);
    request.AddString("name", "../escape");
    request.AddString("paths", "/a");
    AlertAnswerer answerer("OK");
    slave->PostMessage(&request);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text, std::string("Glimrow Alert: \n\nFailed to write a file \"../escape\".\n") +
                             strerror(B_BAD_VALUE));
}

TEST_F(LayerAlertTest, TargetsSaveFailureNamesTheTargets) {
    std::filesystem::remove(fHome.ConfigHome() + "/Glimrow/targets");
    fHome.MakeFolder(".config/Glimrow/targets");
    IOSlave* slave = StartSlave();
    BMessage request(kSaveLayer);
    request.AddString("name", "");
    request.AddString("paths", "/a");
    AlertAnswerer answerer("OK");
    slave->PostMessage(&request);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text.rfind("Glimrow Alert: \n\nFailed to write a file \"targets\".\n", 0), 0u)
        << seen.text;
}

TEST_F(LayerAlertTest, FileOfAnotherTypeIsIgnoredWithAnAlert) {
    std::string path = fHome.WriteFile(".config/Glimrow/layers/picture.png", "not a layer");
    BNode(path.c_str()).WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "image/png", 10);
    MakeLayer("Work", "/a\n");
    AlertAnswerer answerer("OK");
    RecordingManager* manager = Keep(new RecordingManager);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text, "Glimrow Alert: \n\nA layer file \"picture.png\" was ignored.");
    ASSERT_TRUE(manager->Lock());
    EXPECT_EQ(manager->FindLayer("picture.png"), nullptr);
    EXPECT_NE(manager->FindLayer("Work"), nullptr);
    EXPECT_NE(manager->FindLayer(""), nullptr);
    manager->Unlock();
}

TEST_F(LayerAlertTest, MissingLayersFolderLeavesNoLayersAtAll) {
    std::filesystem::remove_all(fHome.ConfigHome() + "/Glimrow/layers");
    AlertAnswerer answerer("OK");
    RecordingManager* manager = Keep(new RecordingManager);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text.rfind("Glimrow Alert: \n\nFailed to load layers...\n", 0), 0u) << seen.text;
    ASSERT_TRUE(manager->Lock());
    EXPECT_EQ(manager->FindLayer(""), nullptr);
    EXPECT_EQ(manager->FindNextLayer(NULL, 1), nullptr);
    manager->Unlock();
}
