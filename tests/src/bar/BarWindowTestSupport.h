// What the bar window tests share: a private home with the settings folders, a
// settings file and layer files written by the test, the application object
// (not running, but be_app for the chores thread) with its loader, and a bar
// window on the headless display, quit with its chores thread collected when
// the test ends.
#ifndef GLIMROW_BAR_WINDOW_TEST_SUPPORT_H
#define GLIMROW_BAR_WINDOW_TEST_SUPPORT_H

#include "AppMenu.h"
#include "BarWindow.h"
#include "Commands.h"
#include "Glimrow.h"
#include "Globals.h"
#include "LayerBar.h"
#include "LayerInfo.h"
#include "Settings.h"
#include "ShelfBar.h"

#include "server/headless/HeadlessTestApi.h"

#include <Node.h>
#include <OS.h>
#include <Screen.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <functional>
#include <string>
#include <vector>

#include <stdlib.h>
#include <string.h>

namespace bar_window_testing {

using BPrivate::HeadlessTestApi;

// Small icons without labels: every cell is 19 x 19 (content 15 plus margins).
const int32 kPlainFlags = 0;
const float kCell = 19;

class BarWindowTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("GLIMROW_DISPLAY", "headless", 1);
        ASSERT_EQ(HeadlessTestApi::Use(), B_OK);
        char text[512] = "";
        ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
    }

    void TearDown() override {
        QuitBar();
        if (fApplication != NULL) {
            // Deleted by the thread that made it, locked as after Run().
            fApplication->Lock();
            fApplication->QuitRequested();
            delete fApplication;
        }
        gr_slave = NULL;
    }

    // Writes the settings file: the defaults with small icons, no labels, no
    // shelf, then whatever change makes of them.
    void WriteSettings(const std::function<void(settings&)>& change = nullptr) {
        settings record;
        record.which = 16;
        record.flags = kPlainFlags;
        record.location = 0;
        record.direction = 0;
        if (change)
            change(record);
        ASSERT_EQ(write_settings_file(&record), B_OK);
    }

    // The record owns its names as new[] strings.
    static void SetName(settings& record, int32 workspace, const char* name) {
        char* copy = new char[strlen(name) + 1];
        strcpy(copy, name);
        delete[] record.layerName[workspace];
        record.layerName[workspace] = copy;
    }

    std::string MakeFile(const std::string& name) {
        return fHome.WriteFile("files/" + name, "contents of " + name + "\n");
    }

    // A layer file of paths, typed as a layer.
    void MakeLayer(const std::string& name, const std::vector<std::string>& paths) {
        std::string body;
        for (const std::string& path : paths)
            body += path + "\n";
        std::string path = fHome.WriteFile(".config/Glimrow/layers/" + name, body);
        BNode node(path.c_str());
        node.WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
    }

    // A layer of count fresh files.
    void MakeLayerOf(const std::string& name, int32 count) {
        std::vector<std::string> paths;
        for (int32 index = 0; index < count; index++)
            paths.push_back(MakeFile(name + "-" + std::to_string(index)));
        MakeLayer(name, paths);
    }

    BarWindow* StartBar(bool show = true) {
        if (fApplication == NULL) {
            fApplication = new Glimrow(false, false);
            // Not running, but free to lock as a running one would be between
            // its messages: the chores thread reads the hot key under its lock.
            fApplication->Unlock();
        }
        fBar = new BarWindow();
        if (show)
            fBar->Show();
        return fBar;
    }

    // True once every layer of a shown bar has been read to the end.
    bool LayersLoaded() {
        return Locked<bool>([&] {
            for (int32 index = 0; index < fBar->CountHandlers(); index++) {
                LayerInfo* layer = dynamic_cast<LayerInfo*>(fBar->HandlerAt(index));
                if (layer != NULL && !layer->IsCompleted())
                    return false;
            }
            return true;
        });
    }

    void QuitBar() {
        if (fBar == NULL)
            return;
        // NOTE: the loader locks the bar again between items through a plain
        // pointer; a bar quit in the middle of a load is not safe yet, so the
        // tests let the loads end first.
        if (fBar->Thread() >= 0) {
            EXPECT_TRUE(testing_support::wait_until([&] { return LayersLoaded(); }));
        }
        thread_id chores = -1;
        if (fBar->Lock()) {
            chores = fBar->ChoresThread();
            fBar->Quit();
        }
        fBar = NULL;
        if (chores >= 0) {
            status_t result;
            wait_for_thread(chores, &result);
        }
    }

    // Runs body with the bar locked, as its own thread would.
    template <typename Result>
    Result Locked(const std::function<Result()>& body) {
        EXPECT_TRUE(fBar->Lock());
        Result result = body();
        fBar->Unlock();
        return result;
    }

    int32 CountBarItems() {
        return Locked<int32>([&] {
            LayerBar* layerBar = fBar->LayerBarView();
            return layerBar != NULL ? layerBar->CountItems() : -1;
        });
    }

    bool WaitForBarItems(int32 count) {
        bool reached = testing_support::wait_until([&] { return CountBarItems() == count; });
        EXPECT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
        return reached;
    }

    std::string ShownLayer() {
        return Locked<std::string>([&] {
            LayerInfo* layer = fBar->LayerBarView()->Layer();
            return layer != NULL ? std::string(layer->LayerName()) : std::string("<none>");
        });
    }

    // Frames in the window's coordinates (the background view sits at 0, 0).
    BRect LayerBarFrame() {
        return Locked<BRect>([&] { return fBar->LayerBarView()->Frame(); });
    }
    BRect AppMenuFrame() {
        return Locked<BRect>([&] { return fBar->AppMenuView()->Frame(); });
    }
    BRect ShelfBarFrame() {
        return Locked<BRect>([&] { return fBar->ShelfBarView()->Frame(); });
    }
    BRect WindowFrame() {
        return Locked<BRect>([&] { return fBar->Frame(); });
    }
    BRect AppMenuOnScreen() {
        return Locked<BRect>([&] { return fBar->ConvertToScreen(fBar->AppMenuView()->Frame()); });
    }
    bool IsParked(BRect frame) { return frame.left == -2000 && frame.top == -2000; }

    // Posts to the bar and waits until it and everything it caused is handled.
    void Post(BMessage* message) {
        ASSERT_EQ(fBar->PostMessage(message), B_OK);
        ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    void ActivateBar(bool active) {
        if (fBar->Lock()) {
            fBar->Activate(active);
            fBar->Unlock();
        }
        EXPECT_TRUE(testing_support::wait_until(
            [&] { return Locked<bool>([&] { return fBar->IsActive(); }) == active; }));
        EXPECT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    }

    testing_support::TestHome fHome;
    Glimrow* fApplication = NULL;
    BarWindow* fBar = NULL;
};

} // namespace bar_window_testing

#endif // GLIMROW_BAR_WINDOW_TEST_SUPPORT_H
