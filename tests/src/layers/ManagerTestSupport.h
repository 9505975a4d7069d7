// What the loader and manager tests share: a private home with the settings
// folders, an application on the headless display, layer files made by hand, and
// a layer manager that keeps a copy of every loader reply it dispatches.
#ifndef GLIMROW_MANAGER_TEST_SUPPORT_H
#define GLIMROW_MANAGER_TEST_SUPPORT_H

#include "Commands.h"
#include "Globals.h"
#include "LayerInfo.h"
#include "LayerManager.h"
#include "Settings.h"

#include <Application.h>
#include <Message.h>
#include <Node.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <stdlib.h>

namespace layer_testing {

struct Reply {
    BHandler* target;
    int32 items;
    std::vector<int32> indices;
    bool finish;
};

class RecordingManager : public LayerManager {
public:
    explicit RecordingManager(list_which which = which_test_items)
        : LayerManager(BRect(10, 10, 110, 60), "manager", 0, which, which) {}

    void DispatchMessage(BMessage* message, BHandler* handler) override {
        if (message->what == kLayerItemsFound) {
            Reply reply = {handler, 0, {}, false};
            type_code type;
            if (message->GetInfo("items", &type, &reply.items) != B_OK)
                reply.items = 0;
            int32 index;
            for (int32 position = 0; message->FindInt32("index", position, &index) == B_OK;
                 position++)
                reply.indices.push_back(index);
            bool finish;
            reply.finish = message->FindBool("finish", &finish) == B_OK && finish;
            std::function<void(RecordingManager*, BHandler*)> onReply;
            {
                std::lock_guard<std::mutex> lock(fLock);
                fReplies.push_back(reply);
                onReply = fOnReply;
            }
            if (onReply)
                onReply(this, handler);
        }
        LayerManager::DispatchMessage(message, handler);
    }

    std::vector<Reply> RepliesFor(BHandler* target) {
        std::lock_guard<std::mutex> lock(fLock);
        std::vector<Reply> replies;
        for (const Reply& reply : fReplies) {
            if (reply.target == target)
                replies.push_back(reply);
        }
        return replies;
    }

    bool WaitForFinish(BHandler* target) {
        return testing_support::wait_until([&] {
            for (const Reply& reply : RepliesFor(target)) {
                if (reply.finish)
                    return true;
            }
            return false;
        });
    }

    void SetOnReply(std::function<void(RecordingManager*, BHandler*)> onReply) {
        std::lock_guard<std::mutex> lock(fLock);
        fOnReply = onReply;
    }

private:
    std::mutex fLock;
    std::vector<Reply> fReplies;
    std::function<void(RecordingManager*, BHandler*)> fOnReply;
};

class ManagerTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("GLIMROW_DISPLAY", "headless", 1);
        char text[512] = "";
        ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
        fApplication = new BApplication("application/x-vnd.glimrow-layer-tests");
    }

    // The newest looper goes first: managers quit (cancelling their loads)
    // while the loader they talk to still runs.
    void TearDown() override {
        for (BLooper* looper : fLoopers) {
            if (looper->Lock())
                looper->Quit();
        }
        gr_slave = NULL;
        delete fApplication;
    }

    // A layer file in the layers folder, typed as a layer.
    std::string MakeLayer(const std::string& name, const std::string& body) {
        std::string path = fHome.WriteFile(".config/Glimrow/layers/" + name, body);
        BNode node(path.c_str());
        node.WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
        return path;
    }

    // Made by the test, quit by the fixture.
    template <typename Looper>
    Looper* Keep(Looper* looper) {
        fLoopers.insert(fLoopers.begin(), looper);
        return looper;
    }

    RecordingManager* ShownManager(list_which which = which_test_items) {
        RecordingManager* manager = Keep(new RecordingManager(which));
        manager->Show();
        return manager;
    }

    testing_support::TestHome fHome;
    BApplication* fApplication = NULL;
    std::vector<BLooper*> fLoopers;
};

// Runs body with the looper locked, as the looper's own thread would.
template <typename Result>
Result locked(BLooper* looper, const std::function<Result()>& body) {
    EXPECT_TRUE(looper->Lock());
    Result result = body();
    looper->Unlock();
    return result;
}

} // namespace layer_testing

#endif // GLIMROW_MANAGER_TEST_SUPPORT_H
