// The application going away while windows quit themselves: Run() and the
// destructor return only once those windows' threads have deleted them.
#include "Watchdog.h"
#include "server/headless/HeadlessTestApi.h"

#include <Application.h>
#include <Message.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

using BPrivate::HeadlessTestApi;
using testing_support::wait_until;

namespace {

const uint32 kMessageLeave = 'leav';

struct Teardown {
    std::atomic<bool> applicationLeaving{false};
    std::atomic<bool> windowDeleted{false};
};

class TeardownApplication : public BApplication {
public:
    explicit TeardownApplication(Teardown* teardown)
        : BApplication("application/x-vnd.glimrow-teardown-test"), fTeardown(teardown) {}

    bool QuitRequested() override {
        fTeardown->applicationLeaving.store(true);
        return BApplication::QuitRequested();
    }

private:
    Teardown* fTeardown;
};

// Quits itself when told to; its destructor holds on until the application is
// on its way out, then takes a while longer, as a window with a lot to free
// does.
class LeavingWindow : public BWindow {
public:
    LeavingWindow(Teardown* teardown, uint32 flags)
        : BWindow(BRect(10, 10, 109, 109), "leaving", B_TITLED_WINDOW, flags), fTeardown(teardown) {
    }

    ~LeavingWindow() override {
        wait_until([this] { return fTeardown->applicationLeaving.load(); });
        auto busyUntil = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
        while (std::chrono::steady_clock::now() < busyUntil) {
        }
        fTeardown->windowDeleted.store(true);
    }

    void MessageReceived(BMessage* message) override {
        if (message->what == kMessageLeave) {
            Quit();
            return;
        }
        BWindow::MessageReceived(message);
    }

private:
    Teardown* fTeardown;
};

class ApplicationTeardownTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(B_OK, HeadlessTestApi::Use());
        ASSERT_EQ(B_OK, HeadlessTestApi::Reset());
    }

    Teardown fTeardown;
};

} // namespace

TEST_F(ApplicationTeardownTest, RunReturnsAfterTheWindowThatEndedItWasDeleted) {
    TeardownApplication* application = new TeardownApplication(&fTeardown);
    // Closing this window quits the application: the window asks for it while
    // its own thread is still ending.
    BWindow* window = new LeavingWindow(&fTeardown, B_QUIT_ON_WINDOW_CLOSE);
    window->Show();
    ASSERT_EQ(B_OK, window->PostMessage(kMessageLeave));

    application->Run();
    EXPECT_TRUE(fTeardown.windowDeleted.load());
    delete application;
}

TEST_F(ApplicationTeardownTest, DeletedApplicationWaitsForTheWindowQuittingItself) {
    TeardownApplication* application = new TeardownApplication(&fTeardown);
    BWindow* window = new LeavingWindow(&fTeardown, 0);
    window->Show();
    ASSERT_EQ(B_OK, window->PostMessage(kMessageLeave));

    // Whether the window is still handling its message or already deleting
    // itself, the application's destructor finds it ending.
    fTeardown.applicationLeaving.store(true);
    delete application;
    EXPECT_TRUE(fTeardown.windowDeleted.load());
}

TEST_F(ApplicationTeardownTest, RunStillReturnsWhileAnotherWindowStaysOpen) {
    TeardownApplication* application = new TeardownApplication(&fTeardown);
    BWindow* staying = new BWindow(BRect(200, 10, 299, 109), "staying", B_TITLED_WINDOW, 0);
    staying->Show();
    BWindow* window = new LeavingWindow(&fTeardown, B_QUIT_ON_WINDOW_CLOSE);
    window->Show();
    ASSERT_EQ(B_OK, window->PostMessage(kMessageLeave));

    application->Run();
    EXPECT_TRUE(fTeardown.windowDeleted.load());
    // Asked through QuitRequested(), the open window agreed and is gone too.
    EXPECT_EQ(0, application->CountWindows());
    delete application;
}
