// Ending a looper: from its own thread, from another thread, before it ever ran, and
// through B_QUIT_REQUESTED.
#include <AppDefs.h>
#include <Looper.h>
#include <Message.h>
#include <MessageQueue.h>
#include <Messenger.h>
#include <OS.h>

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

using testing_support::Checkpoint;
using testing_support::spin_until;
using testing_support::TestWatchdog;

namespace {

const uint32 kWork = 'work';
const uint32 kQuitNow = 'quit';
const uint32 kHold = 'hold';

// Records what it handles and when it is destroyed; can be told to refuse to quit.
class TrackedLooper : public BLooper {
public:
    struct Log {
        std::mutex mutex;
        std::vector<uint32> handled;
        std::atomic<bool> destroyed{false};
        std::atomic<thread_id> destroyedIn{-1};
        std::atomic<bool> codeAfterQuitRan{false};
        Checkpoint handledCheckpoint;
        Checkpoint holding;
        Checkpoint release;
    };

    TrackedLooper(Log* log, bool agreeToQuit = true)
        : BLooper("tracked"), fLog(log), fAgreeToQuit(agreeToQuit) {}

    ~TrackedLooper() override {
        fLog->destroyedIn = find_thread(NULL);
        fLog->destroyed = true;
    }

    void MessageReceived(BMessage* message) override {
        {
            std::lock_guard<std::mutex> locker(fLog->mutex);
            fLog->handled.push_back(message->what);
        }
        if (message->what == kQuitNow) {
            Quit();
            // Quit() from the looper's own thread returns; the looper ends after
            // this message.
            fLog->codeAfterQuitRan = true;
        } else if (message->what == kHold) {
            fLog->holding.Signal();
            fLog->release.WaitFor();
        }
        fLog->handledCheckpoint.Signal();
    }

    bool QuitRequested() override { return fAgreeToQuit; }

private:
    Log* fLog;
    bool fAgreeToQuit;
};

} // namespace

TEST(LooperQuit, QuitFromTheLooperThreadEndsAfterTheCurrentMessage) {
    TestWatchdog watchdog;
    TrackedLooper::Log log;
    TrackedLooper* looper = new TrackedLooper(&log);
    ASSERT_EQ(B_OK, looper->PostMessage(kQuitNow));
    ASSERT_EQ(B_OK, looper->PostMessage(kWork));
    thread_id thread = looper->Run();
    status_t result;
    ASSERT_EQ(B_OK, wait_for_thread(thread, &result));
    EXPECT_TRUE(log.destroyed);
    EXPECT_EQ(thread, log.destroyedIn.load());
    EXPECT_TRUE(log.codeAfterQuitRan);
    std::lock_guard<std::mutex> locker(log.mutex);
    EXPECT_EQ(std::vector<uint32>{kQuitNow}, log.handled);
}

TEST(LooperQuit, QuitFromAnotherThreadHandlesQueuedMessagesFirst) {
    TestWatchdog watchdog;
    TrackedLooper::Log log;
    TrackedLooper* looper = new TrackedLooper(&log);
    thread_id thread = looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kHold));
    ASSERT_TRUE(log.holding.WaitFor());
    for (int index = 0; index < 5; index++)
        ASSERT_EQ(B_OK, looper->PostMessage(kWork));
    std::thread releaser([&] {
        // Let the held message go once the quitter waits for the lock.
        spin_until([&] { return looper->CountLockRequests() >= 2; });
        log.release.Signal();
    });
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
    releaser.join();
    // Quit() returns once the looper is gone.
    EXPECT_TRUE(log.destroyed);
    EXPECT_EQ(thread, log.destroyedIn.load());
    EXPECT_EQ(NULL, BLooper::LooperForThread(thread));
    std::lock_guard<std::mutex> locker(log.mutex);
    EXPECT_EQ(6u, log.handled.size());
}

TEST(LooperQuit, QuitOfALooperThatNeverRanDeletesItAtOnce) {
    TrackedLooper::Log log;
    TrackedLooper* looper = new TrackedLooper(&log);
    looper->Quit();
    EXPECT_TRUE(log.destroyed);
    EXPECT_EQ(find_thread(NULL), log.destroyedIn.load());
}

TEST(LooperQuit, QuitWithoutTheLockTakesItFirst) {
    TestWatchdog watchdog;
    TrackedLooper::Log log;
    TrackedLooper* looper = new TrackedLooper(&log);
    looper->Run();
    looper->Quit();
    EXPECT_TRUE(log.destroyed);
}

TEST(LooperQuit, QuitRequestedMessageQuitsWhenTheLooperAgrees) {
    TestWatchdog watchdog;
    TrackedLooper::Log log;
    TrackedLooper* looper = new TrackedLooper(&log, true);
    thread_id thread = looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(B_QUIT_REQUESTED));
    status_t result;
    ASSERT_EQ(B_OK, wait_for_thread(thread, &result));
    EXPECT_TRUE(log.destroyed);
    std::lock_guard<std::mutex> locker(log.mutex);
    // B_QUIT_REQUESTED to the looper itself goes to QuitRequested(), not
    // MessageReceived().
    EXPECT_TRUE(log.handled.empty());
}

TEST(LooperQuit, QuitRequestedMessageKeepsARefusingLooperRunning) {
    TestWatchdog watchdog;
    TrackedLooper::Log log;
    TrackedLooper* looper = new TrackedLooper(&log, false);
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(B_QUIT_REQUESTED));
    ASSERT_EQ(B_OK, looper->PostMessage(kWork));
    ASSERT_TRUE(log.handledCheckpoint.WaitFor());
    EXPECT_FALSE(log.destroyed);
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
    EXPECT_TRUE(log.destroyed);
}

TEST(LooperQuit, SynchronousQuitRequestIsAnsweredWithTheResult) {
    TestWatchdog watchdog;
    TrackedLooper::Log log;
    TrackedLooper* refusing = new TrackedLooper(&log, false);
    refusing->Run();
    BMessenger messenger(refusing);
    BMessage reply;
    ASSERT_EQ(B_OK, messenger.SendMessage(B_QUIT_REQUESTED, &reply));
    EXPECT_EQ((uint32)B_REPLY, reply.what);
    EXPECT_FALSE(reply.GetBool("result", true));
    ASSERT_TRUE(refusing->Lock());
    refusing->Quit();

    TrackedLooper::Log agreeingLog;
    TrackedLooper* agreeing = new TrackedLooper(&agreeingLog, true);
    agreeing->Run();
    BMessenger toAgreeing(agreeing);
    ASSERT_EQ(B_OK, toAgreeing.SendMessage(B_QUIT_REQUESTED, &reply));
    EXPECT_TRUE(reply.GetBool("result", false));
    EXPECT_TRUE(testing_support::spin_until([&] { return !toAgreeing.IsValid(); }));
}

TEST(LooperQuit, MessagesLeftInTheQueueAnswerWaitingSendersWithNoReply) {
    TestWatchdog watchdog;
    TrackedLooper::Log log;
    TrackedLooper* looper = new TrackedLooper(&log);
    BMessenger messenger(looper);
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kHold));
    ASSERT_TRUE(log.holding.WaitFor());
    ASSERT_EQ(B_OK, looper->PostMessage(kQuitNow));

    BMessage reply;
    status_t status = B_ERROR;
    std::thread sender([&] {
        BMessage request(kWork);
        status = messenger.SendMessage(&request, &reply);
    });
    // The request waits behind the quit message.
    ASSERT_TRUE(spin_until([&] { return looper->MessageQueue()->CountMessages() == 2; }));
    log.release.Signal();
    sender.join();
    EXPECT_EQ(B_OK, status);
    EXPECT_EQ((uint32)B_NO_REPLY, reply.what);
    EXPECT_TRUE(spin_until([&] { return log.destroyed.load(); }));
}

TEST(LooperQuitDeathTest, DeletingARunningLooperIsAProgrammingError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            BLooper* looper = new BLooper("running");
            looper->Run();
            looper->Lock();
            delete looper;
        },
        "running looper cannot be deleted");
}
