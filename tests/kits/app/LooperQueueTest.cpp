// A looper's thread searching and editing its own queue while it handles a message:
// a long job looks ahead for the message that cancels it.
#include <Looper.h>
#include <Message.h>
#include <MessageQueue.h>
#include <OS.h>

#include "app/LooperPrivate.h"

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <vector>

using testing_support::Checkpoint;
using testing_support::spin_until;
using testing_support::TestWatchdog;

namespace {

const uint32 kLoad = 'load';
const uint32 kCancel = 'cncl';
const uint32 kOther = 'othr';

void quit_looper(BLooper* looper) {
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

// Loads "items" one by one; before each it looks in its own queue for a cancel
// naming the same job and, when it finds one, takes it out and stops.
class Loader : public BLooper {
public:
    Loader() : BLooper("loader") {}

    void MessageReceived(BMessage* message) override {
        switch (message->what) {
        case kLoad: {
            int32 job = message->GetInt32("job", -1);
            int jobNumber = ++fJobs;
            fCancelledAt = -1;
            for (int item = 0; item < 1000; item++) {
                if (_CancelPending(job)) {
                    fCancelledAt = item;
                    break;
                }
                fItemsLoaded++;
                // After the first item the job waits until the test has posted.
                if (item == 0) {
                    fStarted.Signal();
                    fGo.WaitFor(jobNumber);
                }
            }
            fFinished.Signal();
            break;
        }
        case kCancel:
            fCancelsDispatched++;
            fOthers.Signal();
            break;
        case kOther:
            fOthers.Signal();
            break;
        default:
            BLooper::MessageReceived(message);
        }
    }

    Checkpoint fStarted;
    Checkpoint fGo;
    Checkpoint fFinished;
    Checkpoint fOthers;
    std::atomic<int> fItemsLoaded{0};
    std::atomic<int> fCancelledAt{-1};
    std::atomic<int> fCancelsDispatched{0};
    std::atomic<int> fQueueCountAfterRemoval{-1};

private:
    int fJobs = 0;

    bool _CancelPending(int32 job) {
        BMessageQueue* queue = MessageQueue();
        for (int32 index = 0; BMessage* cancel = queue->FindMessage(kCancel, index); index++) {
            if (cancel->GetInt32("job", -1) == job) {
                queue->RemoveMessage(cancel);
                delete cancel;
                fQueueCountAfterRemoval = queue->CountMessages();
                return true;
            }
        }
        return false;
    }
};

} // namespace

TEST(LooperQueue, LooperFindsCancelInItsOwnQueue) {
    TestWatchdog watchdog;
    Loader* loader = new Loader;
    loader->Run();
    BMessage load(kLoad);
    load.AddInt32("job", 1);
    ASSERT_EQ(B_OK, loader->PostMessage(&load));
    ASSERT_TRUE(loader->fStarted.WaitFor());

    BMessage cancel(kCancel);
    cancel.AddInt32("job", 1);
    ASSERT_EQ(B_OK, loader->PostMessage(&cancel));
    loader->fGo.Signal();

    ASSERT_TRUE(loader->fFinished.WaitFor());
    EXPECT_EQ(1, loader->fCancelledAt.load());
    EXPECT_EQ(1, loader->fItemsLoaded.load());
    EXPECT_EQ(0, loader->fQueueCountAfterRemoval.load());
    // The removed cancel never reaches MessageReceived.
    ASSERT_EQ(B_OK, loader->PostMessage(kOther));
    ASSERT_TRUE(loader->fOthers.WaitFor());
    EXPECT_EQ(0, loader->fCancelsDispatched.load());
    quit_looper(loader);
}

TEST(LooperQueue, CancelForAnotherJobStaysInTheQueue) {
    TestWatchdog watchdog;
    Loader* loader = new Loader;
    loader->Run();
    BMessage load(kLoad);
    load.AddInt32("job", 1);
    ASSERT_EQ(B_OK, loader->PostMessage(&load));
    ASSERT_TRUE(loader->fStarted.WaitFor());

    BMessage cancel(kCancel);
    cancel.AddInt32("job", 2);
    ASSERT_EQ(B_OK, loader->PostMessage(&cancel));
    loader->fGo.Signal();

    ASSERT_TRUE(loader->fFinished.WaitFor());
    EXPECT_EQ(-1, loader->fCancelledAt.load());
    EXPECT_EQ(1000, loader->fItemsLoaded.load());
    // It is dispatched normally once the job is over.
    ASSERT_TRUE(loader->fOthers.WaitFor());
    EXPECT_EQ(1, loader->fCancelsDispatched.load());
    quit_looper(loader);
}

TEST(LooperQueue, CancelAmongOtherMessagesIsFoundAndTheOthersStay) {
    TestWatchdog watchdog;
    Loader* loader = new Loader;
    loader->Run();
    BMessage load(kLoad);
    load.AddInt32("job", 4);
    ASSERT_EQ(B_OK, loader->PostMessage(&load));
    ASSERT_TRUE(loader->fStarted.WaitFor());

    ASSERT_EQ(B_OK, loader->PostMessage(kOther));
    BMessage otherCancel(kCancel);
    otherCancel.AddInt32("job", 9);
    ASSERT_EQ(B_OK, loader->PostMessage(&otherCancel));
    BMessage cancel(kCancel);
    cancel.AddInt32("job", 4);
    ASSERT_EQ(B_OK, loader->PostMessage(&cancel));
    ASSERT_EQ(B_OK, loader->PostMessage(kOther));
    loader->fGo.Signal();

    ASSERT_TRUE(loader->fFinished.WaitFor());
    EXPECT_EQ(1, loader->fCancelledAt.load());
    EXPECT_EQ(3, loader->fQueueCountAfterRemoval.load());
    ASSERT_TRUE(loader->fOthers.WaitFor(3));
    EXPECT_EQ(1, loader->fCancelsDispatched.load());
    quit_looper(loader);
}

TEST(LooperQueue, MessagePostedDuringDispatchIsVisibleAtOnce) {
    TestWatchdog watchdog;
    Loader* loader = new Loader;
    loader->Run();
    BMessage load(kLoad);
    load.AddInt32("job", 1);
    ASSERT_EQ(B_OK, loader->PostMessage(&load));
    ASSERT_TRUE(loader->fStarted.WaitFor());
    // The looper thread is busy; what is posted now is in its queue already.
    ASSERT_EQ(B_OK, loader->PostMessage(kOther));
    EXPECT_EQ(1, loader->MessageQueue()->CountMessages());
    BMessage* queued = loader->MessageQueue()->FindMessage((int32)0);
    ASSERT_NE(nullptr, queued);
    EXPECT_EQ(kOther, queued->what);
    loader->fGo.Signal();
    ASSERT_TRUE(loader->fFinished.WaitFor());
    ASSERT_TRUE(loader->fOthers.WaitFor());
    quit_looper(loader);
}

TEST(LooperQueue, ManyCancelsFromOtherThreadsEachStopTheirJob) {
    TestWatchdog watchdog;
    Loader* loader = new Loader;
    loader->Run();
    const int kJobs = 20;
    for (int job = 0; job < kJobs; job++) {
        BMessage load(kLoad);
        load.AddInt32("job", job);
        ASSERT_EQ(B_OK, loader->PostMessage(&load));
        ASSERT_TRUE(loader->fStarted.WaitFor(job + 1));
        std::thread([&] {
            BMessage cancel(kCancel);
            cancel.AddInt32("job", job);
            ASSERT_EQ(B_OK, loader->PostMessage(&cancel));
        }).join();
        loader->fGo.Signal();
        ASSERT_TRUE(loader->fFinished.WaitFor(job + 1));
        EXPECT_EQ(1, loader->fCancelledAt.load());
    }
    EXPECT_EQ(kJobs, loader->fItemsLoaded.load());
    EXPECT_EQ(0, loader->fCancelsDispatched.load());
    quit_looper(loader);
}

namespace {

struct IdleRecord {
    std::mutex mutex;
    std::vector<int> handledAtIdle;
    std::vector<bool> lockedAtIdle;
    Checkpoint idle;
};

IdleRecord* sIdleRecord = NULL;

void record_idle(BLooper* looper) {
    testing_support::RecordingLooper* recording =
        static_cast<testing_support::RecordingLooper*>(looper);
    {
        std::lock_guard<std::mutex> locker(sIdleRecord->mutex);
        sIdleRecord->handledAtIdle.push_back((int)recording->Entries().size());
        sIdleRecord->lockedAtIdle.push_back(looper->IsLocked());
    }
    sIdleRecord->idle.Signal();
}

} // namespace

TEST(LooperQueue, IdleHookRunsOnceTheQueueRunsDry) {
    TestWatchdog watchdog;
    IdleRecord record;
    sIdleRecord = &record;
    testing_support::RecordingLooper* looper = new testing_support::RecordingLooper;
    BPrivate::LooperPrivate(looper).SetIdleHook(record_idle);
    for (int index = 0; index < 3; index++)
        ASSERT_EQ(B_OK, looper->PostMessage(kOther));
    looper->Run();
    ASSERT_TRUE(record.idle.WaitFor(1));
    ASSERT_EQ(B_OK, looper->PostMessage(kOther));
    ASSERT_TRUE(record.idle.WaitFor(2));
    quit_looper(looper);
    std::lock_guard<std::mutex> locker(record.mutex);
    // Once after the three queued messages, once after the fourth.
    EXPECT_EQ((std::vector<int>{3, 4}), record.handledAtIdle);
    EXPECT_EQ((std::vector<bool>{true, true}), record.lockedAtIdle);
    sIdleRecord = NULL;
}
