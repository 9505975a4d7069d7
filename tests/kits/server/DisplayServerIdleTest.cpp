// WaitForIdle() against work that windows hand on to each other: a message one
// window posts to another after answering its idle probe is still waited for.
#include "HeadlessAppTest.h"

#include <Message.h>
#include <Messenger.h>
#include <OS.h>
#include <Window.h>

#include <gtest/gtest.h>

#include "Watchdog.h"

#include <atomic>
#include <chrono>
#include <thread>

using BPrivate::HeadlessTestApi;
using testing_support::HeadlessAppTest;

namespace {

const uint32 kMessageBall = 'ball';

// Sends the ball back until its count runs out. Each hit takes a little while,
// as real work does, so that the other window is idle (and answers its probe)
// while this one still holds the ball.
class PlayerWindow : public BWindow {
public:
    PlayerWindow(BRect frame, const char* title, std::atomic<int32>* hits)
        : BWindow(frame, title, B_TITLED_WINDOW, 0), fHits(hits) {}

    void SetPartner(BWindow* partner) { fPartner = BMessenger(partner); }

    void MessageReceived(BMessage* message) override {
        if (message->what != kMessageBall) {
            BWindow::MessageReceived(message);
            return;
        }
        auto busyUntil = std::chrono::steady_clock::now() + std::chrono::microseconds(300);
        while (std::chrono::steady_clock::now() < busyUntil) {
        }
        fHits->fetch_add(1);
        int32 left = message->GetInt32("left", 0);
        if (left <= 0)
            return;
        BMessage ball(kMessageBall);
        ball.AddInt32("left", left - 1);
        fPartner.SendMessage(&ball);
    }

private:
    std::atomic<int32>* fHits;
    BMessenger fPartner;
};

class DisplayServerIdleTest : public HeadlessAppTest {
protected:
    void StartRally(int32 players, int32 hits) {
        std::vector<PlayerWindow*> windows;
        for (int32 index = 0; index < players; index++) {
            windows.push_back(
                new PlayerWindow(BRect(index * 60, 0, index * 60 + 49, 49), "player", &fHits));
        }
        for (int32 index = 0; index < players; index++)
            windows[index]->SetPartner(windows[(index + 1) % players]);
        for (PlayerWindow* window : windows)
            window->Show();
        WaitForIdle();

        BMessage ball(kMessageBall);
        ball.AddInt32("left", hits - 1);
        ASSERT_EQ(B_OK, BMessenger(windows[0]).SendMessage(&ball));
    }

    std::atomic<int32> fHits{0};
};

} // namespace

TEST_F(DisplayServerIdleTest, WaitForIdleWaitsForTwoWindowsPingPonging) {
    const int32 kHits = 300;
    StartRally(2, kHits);
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle(20000000));
    EXPECT_EQ(kHits, fHits.load());
}

TEST_F(DisplayServerIdleTest, WaitForIdleWaitsForABallPassedRoundThreeWindows) {
    const int32 kHits = 300;
    StartRally(3, kHits);
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle(20000000));
    EXPECT_EQ(kHits, fHits.load());
}

TEST_F(DisplayServerIdleTest, EveryWaitDuringARallySeesItFinished) {
    // Waiting again and again while the rally runs: each wait that returns B_OK
    // must find it over.
    const int32 kHits = 60;
    for (int32 round = 0; round < 5; round++) {
        fHits.store(0);
        StartRally(2, kHits);
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle(20000000));
        EXPECT_EQ(kHits, fHits.load()) << "round " << round;
    }
}

TEST_F(DisplayServerIdleTest, WaitForIdleGivesUpWhileAnotherThreadHoldsTheApplication) {
    // The application is not running, and its constructor left this thread
    // holding it: a wait from another thread must end at its deadline.
    ASSERT_TRUE(be_app->IsLocked());
    std::atomic<bool> finished{false};
    std::atomic<status_t> result{B_OK};
    std::thread waiter([&] {
        result.store(HeadlessTestApi::WaitForIdle(200000));
        finished.store(true);
    });
    bool returned =
        testing_support::wait_until([&] { return finished.load(); }, std::chrono::seconds(5));
    if (!returned) {
        // Lets a waiter that hangs on the lock go, so the test fails instead.
        be_app->Unlock();
        waiter.join();
        be_app->Lock();
    } else {
        waiter.join();
    }
    EXPECT_TRUE(returned);
    EXPECT_EQ(B_TIMED_OUT, result.load());
}

TEST_F(DisplayServerIdleTest, WaitForIdleFromAnotherThreadSucceedsOnceTheApplicationIsReleased) {
    ASSERT_TRUE(be_app->IsLocked());
    be_app->Unlock();
    status_t result = B_ERROR;
    std::thread waiter([&] { result = HeadlessTestApi::WaitForIdle(5000000); });
    waiter.join();
    be_app->Lock();
    EXPECT_EQ(B_OK, result);
}
