#include "BarWindow.h"

#include "Commands.h"
#include "Glimrow.h"
#include "Globals.h"
#include "LayerInfo.h"
#include "Settings.h"

#include "server/headless/HeadlessTestApi.h"

#include <Application.h>
#include <Messenger.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <atomic>
#include <thread>
#include <vector>

#include <stdlib.h>

using BPrivate::HeadlessTestApi;
using BPrivate::WindowListing;
using testing_support::wait_until;

namespace {

// The whole application running in a thread of its own, as main() runs it.
class BarWindowLifeTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("GLIMROW_DISPLAY", "headless", 1);
        ASSERT_EQ(HeadlessTestApi::Use(), B_OK);
        char text[512] = "";
        ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
        settings record;
        ASSERT_EQ(write_settings_file(&record), B_OK);
    }

    void TearDown() override {
        if (fThread.joinable()) {
            if (!fEnded)
                fApplication.SendMessage(B_QUIT_REQUESTED);
            EXPECT_TRUE(wait_until([&] { return fEnded.load(); }));
            fThread.join();
        }
        gr_slave = NULL;
    }

    void Run() {
        std::atomic<bool> started(false);
        fThread = std::thread([&] {
            Glimrow* application = new Glimrow(false, false);
            fApplication = BMessenger(application);
            started = true;
            application->Run();
            delete application;
            fEnded = true;
        });
        ASSERT_TRUE(wait_until([&] { return started.load(); }));
    }

    static std::vector<WindowListing> Bars() {
        std::vector<WindowListing> bars;
        for (const WindowListing& listing : HeadlessTestApi::Windows()) {
            if (listing.title == "Glimrow")
                bars.push_back(listing);
        }
        return bars;
    }

    static bool OneVisibleBar(WindowListing* bar) {
        std::vector<WindowListing> bars = Bars();
        if (bars.size() != 1 || !bars[0].visible)
            return false;
        *bar = bars[0];
        return true;
    }

    // Whether the bar's layers are all read; with that bar locked.
    // NOTE: the loader locks the bar again between items through a plain
    // pointer; a bar quit in the middle of a load is not safe yet, so the
    // tests let the loads end first.
    static bool LoadsEnded(const WindowListing& bar) {
        if (!bar.messenger.LockTarget())
            return false;
        BLooper* looper = NULL;
        bar.messenger.Target(&looper);
        bool ended = true;
        for (int32 index = 0; index < looper->CountHandlers(); index++) {
            LayerInfo* layer = dynamic_cast<LayerInfo*>(looper->HandlerAt(index));
            if (layer != NULL && !layer->IsCompleted())
                ended = false;
        }
        looper->Unlock();
        return ended;
    }

    // gr_manager, read with that bar locked.
    static BarWindow* ManagerSeenBy(const WindowListing& bar) {
        if (!bar.messenger.LockTarget())
            return NULL;
        BLooper* looper = NULL;
        bar.messenger.Target(&looper);
        BarWindow* manager = gr_manager;
        EXPECT_EQ((BLooper*)manager, looper);
        looper->Unlock();
        return manager;
    }

    testing_support::TestHome fHome;
    std::thread fThread;
    BMessenger fApplication;
    std::atomic<bool> fEnded{false};
};

} // namespace

TEST_F(BarWindowLifeTest, ReadyToRunShowsTheBarWindow) {
    Run();
    WindowListing bar;
    ASSERT_TRUE(wait_until([&] { return OneVisibleBar(&bar); }));
    ASSERT_TRUE(wait_until([&] { return LoadsEnded(bar); }));
    EXPECT_EQ(bar.look, B_BORDERED_WINDOW_LOOK);
    EXPECT_EQ(bar.flags & 0x4193u, 0x4193u);
    EXPECT_NE(ManagerSeenBy(bar), nullptr);
}

TEST_F(BarWindowLifeTest, RebuildReplacesTheBarWindow) {
    Run();
    WindowListing old;
    ASSERT_TRUE(wait_until([&] { return OneVisibleBar(&old); }));
    ASSERT_TRUE(wait_until([&] { return LoadsEnded(old); }));
    ASSERT_EQ(fApplication.SendMessage(kRebuildBar), B_OK);

    WindowListing renewed;
    ASSERT_TRUE(wait_until([&] { return OneVisibleBar(&renewed) && renewed.id != old.id; }));
    EXPECT_FALSE(old.messenger.IsValid());
    EXPECT_NE(ManagerSeenBy(renewed), nullptr);
}

TEST_F(BarWindowLifeTest, ClosingTheBarQuitsTheApplication) {
    Run();
    WindowListing bar;
    ASSERT_TRUE(wait_until([&] { return OneVisibleBar(&bar); }));
    ASSERT_TRUE(wait_until([&] { return LoadsEnded(bar); }));
    ASSERT_EQ(bar.messenger.SendMessage(B_QUIT_REQUESTED), B_OK);
    EXPECT_TRUE(wait_until([&] { return fEnded.load(); }));
}

TEST_F(BarWindowLifeTest, QuitLeavesNoBarInTheGlobals) {
    Run();
    WindowListing bar;
    ASSERT_TRUE(wait_until([&] { return OneVisibleBar(&bar); }));
    ASSERT_TRUE(wait_until([&] { return LoadsEnded(bar); }));
    ASSERT_EQ(fApplication.SendMessage(B_QUIT_REQUESTED), B_OK);
    ASSERT_TRUE(wait_until([&] { return fEnded.load(); }));
    fThread.join();
    EXPECT_EQ(gr_manager, nullptr);
    EXPECT_EQ(gr_settings, nullptr);
}
