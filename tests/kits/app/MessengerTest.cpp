// Messengers: addressing, validity after the target goes away, asynchronous and
// synchronous sending, locking the target, comparison.
#include <AppDefs.h>
#include <Handler.h>
#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <OS.h>

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <type_traits>
#include <vector>

#include <string.h>
#include <unistd.h>

using testing_support::Checkpoint;
using testing_support::RecordingLooper;
using testing_support::TestWatchdog;

namespace {

const uint32 kPing = 'ping';
const uint32 kPong = 'pong';
const uint32 kKeep = 'keep';

void quit_looper(BLooper* looper) {
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

// Answers kPing with kPong carrying the "value" plus one; keeps kKeep unanswered.
class Server : public BLooper {
public:
    Server() : BLooper("server") {}
    ~Server() override { delete fKept; }

    void MessageReceived(BMessage* message) override {
        switch (message->what) {
        case kPing: {
            BMessage reply(kPong);
            reply.AddInt32("value", message->GetInt32("value", 0) + 1);
            message->SendReply(&reply);
            break;
        }
        case kKeep:
            fKept = DetachCurrentMessage();
            fKeptCheckpoint.Signal();
            break;
        default:
            BLooper::MessageReceived(message);
        }
    }

    BMessage* fKept = NULL;
    Checkpoint fKeptCheckpoint;
};

} // namespace

static_assert(sizeof(BMessenger) == 24);
static_assert(std::is_trivially_copyable_v<BMessenger>);

TEST(Messenger, DefaultMessengerIsInvalid) {
    BMessenger messenger;
    EXPECT_FALSE(messenger.IsValid());
    EXPECT_FALSE(messenger.IsTargetLocal());
    EXPECT_EQ(B_BAD_PORT_ID, messenger.SendMessage(kPing));
    BLooper* looper = (BLooper*)1;
    EXPECT_EQ(NULL, messenger.Target(&looper));
    EXPECT_EQ(NULL, looper);
}

TEST(Messenger, MessengerToALooperIsValidAndLocal) {
    BLooper* looper = new BLooper("target");
    status_t status = B_ERROR;
    BMessenger messenger(looper, NULL, &status);
    EXPECT_EQ(B_OK, status);
    EXPECT_TRUE(messenger.IsValid());
    EXPECT_TRUE(messenger.IsTargetLocal());
    EXPECT_EQ(getpid(), messenger.Team());
    looper->Quit();
}

TEST(Messenger, MessengerToAQuitLooperIsInvalid) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("short lived");
    looper->Run();
    BMessenger messenger(looper);
    ASSERT_TRUE(messenger.IsValid());
    quit_looper(looper);
    EXPECT_FALSE(messenger.IsValid());
    EXPECT_EQ(B_BAD_PORT_ID, messenger.SendMessage(kPing));
    EXPECT_FALSE(messenger.LockTarget());
    EXPECT_EQ(B_BAD_VALUE, messenger.LockTargetWithTimeout(1000));
    BLooper* target = (BLooper*)1;
    EXPECT_EQ(NULL, messenger.Target(&target));
    EXPECT_EQ(NULL, target);
}

TEST(Messenger, MessengerToAnUnattachedHandlerIsMismatched) {
    BHandler handler("alone");
    status_t status = B_OK;
    BMessenger messenger(&handler, NULL, &status);
    EXPECT_EQ(B_MISMATCHED_VALUES, status);
    EXPECT_FALSE(messenger.IsValid());
}

TEST(Messenger, MessengerWithAHandlerOfAnotherLooperIsMismatched) {
    BLooper* first = new BLooper("first");
    BLooper* second = new BLooper("second");
    status_t status = B_OK;
    BMessenger messenger(second, first, &status);
    EXPECT_EQ(B_MISMATCHED_VALUES, status);
    EXPECT_FALSE(messenger.IsValid());
    first->Quit();
    second->Quit();
}

TEST(Messenger, MessengerWithoutHandlerOrLooperIsBadValue) {
    status_t status = B_OK;
    BMessenger messenger((const BHandler*)NULL, NULL, &status);
    EXPECT_EQ(B_BAD_VALUE, status);
}

TEST(Messenger, TargetGivesTheHandlerAndItsLooper) {
    BLooper* looper = new BLooper("with handler");
    BHandler* handler = new BHandler("handler");
    looper->AddHandler(handler);
    BLooper* found = NULL;
    EXPECT_EQ(handler, BMessenger(handler).Target(&found));
    EXPECT_EQ(looper, found);
    // Aimed at the looper alone: the preferred handler, which Target() gives as NULL.
    found = NULL;
    EXPECT_EQ(NULL, BMessenger(NULL, looper).Target(&found));
    EXPECT_EQ(looper, found);
    EXPECT_EQ(looper, BMessenger(looper).Target(NULL));
    looper->RemoveHandler(handler);
    delete handler;
    looper->Quit();
}

TEST(Messenger, SendMessageReachesTheHandler) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->Run();
    BMessage message(kPing);
    message.AddInt32("value", 42);
    ASSERT_EQ(B_OK, BMessenger(looper).SendMessage(&message));
    ASSERT_TRUE(looper->WaitForMessages(1));
    EXPECT_EQ(kPing, looper->Entries()[0].what);
    EXPECT_EQ(42, looper->Entries()[0].value);
    quit_looper(looper);
}

TEST(Messenger, SendMessageWithoutAMessageIsBadValue) {
    BLooper* looper = new BLooper("target");
    BMessenger messenger(looper);
    BMessage reply;
    EXPECT_EQ(B_BAD_VALUE, messenger.SendMessage((BMessage*)NULL));
    EXPECT_EQ(B_BAD_VALUE, messenger.SendMessage((BMessage*)NULL, &reply));
    BMessage message(kPing);
    EXPECT_EQ(B_BAD_VALUE, messenger.SendMessage(&message, (BMessage*)NULL));
    looper->Quit();
}

TEST(Messenger, SynchronousSendGetsTheReply) {
    TestWatchdog watchdog;
    Server* server = new Server;
    server->Run();
    BMessage request(kPing);
    request.AddInt32("value", 41);
    BMessage reply;
    ASSERT_EQ(B_OK, BMessenger(server).SendMessage(&request, &reply));
    EXPECT_EQ(kPong, reply.what);
    EXPECT_EQ(42, reply.GetInt32("value", 0));
    EXPECT_TRUE(reply.IsReply());
    quit_looper(server);
}

TEST(Messenger, SynchronousSendsFromManyThreadsEachGetTheirOwnReply) {
    TestWatchdog watchdog;
    Server* server = new Server;
    server->Run();
    BMessenger messenger(server);
    std::vector<std::thread> threads;
    std::atomic<int> correct{0};
    for (int thread = 0; thread < 6; thread++) {
        threads.emplace_back([&, thread] {
            for (int round = 0; round < 100; round++) {
                BMessage request(kPing);
                int32 value = thread * 1000 + round;
                request.AddInt32("value", value);
                BMessage reply;
                if (messenger.SendMessage(&request, &reply) == B_OK &&
                    reply.GetInt32("value", 0) == value + 1) {
                    correct++;
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(600, correct.load());
    quit_looper(server);
}

TEST(Messenger, SynchronousSendTimesOutWhenNoReplyComes) {
    TestWatchdog watchdog;
    Server* server = new Server;
    server->Run();
    BMessage request(kKeep);
    BMessage reply;
    bigtime_t start = system_time();
    EXPECT_EQ(B_TIMED_OUT,
              BMessenger(server).SendMessage(&request, &reply, B_INFINITE_TIMEOUT, 50000));
    EXPECT_GE(system_time() - start, 50000);
    ASSERT_TRUE(server->fKeptCheckpoint.WaitFor());
    // Answering late goes nowhere and does no harm.
    ASSERT_TRUE(server->Lock());
    EXPECT_NE(B_OK, server->fKept->SendReply(kPong));
    server->Quit();
}

TEST(Messenger, SynchronousSendIsAnsweredWithNoReplyWhenTheMessageIsDeleted) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("silent");
    looper->Run();
    BHandler* handler = new BHandler("handler");
    ASSERT_TRUE(looper->Lock());
    looper->AddHandler(handler);
    looper->Unlock();
    // A message for a handler that leaves before it is dispatched is dropped.
    ASSERT_TRUE(looper->Lock());
    BMessenger messenger(handler);
    BMessage reply;
    status_t status = B_ERROR;
    std::thread sender([&] {
        BMessage request(kPing);
        status = messenger.SendMessage(&request, &reply);
    });
    // The looper's thread has taken the message and waits for the lock.
    ASSERT_TRUE(testing_support::spin_until([&] { return looper->CountLockRequests() == 2; }));
    looper->RemoveHandler(handler);
    looper->Unlock();
    sender.join();
    EXPECT_EQ(B_OK, status);
    EXPECT_EQ((uint32)B_NO_REPLY, reply.what);
    delete handler;
    quit_looper(looper);
}

TEST(Messenger, SynchronousSendToTheOwnLooperIsMessageToSelf) {
    TestWatchdog watchdog;
    Checkpoint done;
    status_t status = B_OK;
    class SelfSender : public BLooper {
    public:
        SelfSender(status_t* status, Checkpoint* done)
            : BLooper("self sender"), fStatus(status), fDone(done) {}

        void MessageReceived(BMessage* message) override {
            if (message->what != kPing)
                return BLooper::MessageReceived(message);
            BMessage request(kPong);
            BMessage reply;
            *fStatus = BMessenger(this).SendMessage(&request, &reply);
            fDone->Signal();
        }

    private:
        status_t* fStatus;
        Checkpoint* fDone;
    };
    SelfSender* looper = new SelfSender(&status, &done);
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing));
    ASSERT_TRUE(done.WaitFor());
    EXPECT_EQ(B_MESSAGE_TO_SELF, status);
    quit_looper(looper);
}

TEST(Messenger, MessengerCopiedAsRawBytesStillReachesItsTarget) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->Run();
    BMessenger original(looper);
    unsigned char bytes[sizeof(BMessenger)];
    memcpy(bytes, &original, sizeof(bytes));
    BMessenger copy;
    memcpy(&copy, bytes, sizeof(bytes));
    EXPECT_TRUE(copy == original);
    ASSERT_EQ(B_OK, copy.SendMessage(kPing));
    ASSERT_TRUE(looper->WaitForMessages(1));
    quit_looper(looper);
}

TEST(Messenger, MessengerStoredInAMessageStillReachesItsTarget) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->Run();
    BMessage carrier('carr');
    ASSERT_EQ(B_OK, carrier.AddMessenger("target", BMessenger(looper)));
    BMessenger found;
    ASSERT_EQ(B_OK, carrier.FindMessenger("target", &found));
    EXPECT_TRUE(found.IsValid());
    ASSERT_EQ(B_OK, found.SendMessage(kPing));
    ASSERT_TRUE(looper->WaitForMessages(1));
    quit_looper(looper);
}

TEST(Messenger, LockTargetLocksTheLooper) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("lockable");
    looper->Run();
    BMessenger messenger(looper);
    ASSERT_TRUE(messenger.LockTarget());
    EXPECT_TRUE(looper->IsLocked());
    status_t status = B_OK;
    std::thread([&] { status = messenger.LockTargetWithTimeout(10000); }).join();
    EXPECT_EQ(B_TIMED_OUT, status);
    looper->Quit();
}

TEST(Messenger, LockTargetWithTimeoutOnAnInvalidMessengerIsBadValue) {
    EXPECT_EQ(B_BAD_VALUE, BMessenger().LockTargetWithTimeout(0));
    EXPECT_FALSE(BMessenger().LockTarget());
}

TEST(Messenger, EqualityComparesTargets) {
    BLooper* looper = new BLooper("compared");
    BHandler* handler = new BHandler("handler");
    looper->AddHandler(handler);
    BMessenger toLooper(looper);
    BMessenger toLooperAgain(looper);
    BMessenger toHandler(handler);
    BMessenger toPreferred(NULL, looper);
    EXPECT_TRUE(toLooper == toLooperAgain);
    EXPECT_FALSE(toLooper != toLooperAgain);
    EXPECT_TRUE(toLooper != toHandler);
    EXPECT_TRUE(toLooper != toPreferred);
    EXPECT_TRUE(BMessenger() == BMessenger());
    looper->RemoveHandler(handler);
    delete handler;
    looper->Quit();
}

TEST(Messenger, OrderingIsAStrictOrder) {
    BLooper* first = new BLooper("first");
    BLooper* second = new BLooper("second");
    BMessenger a(first);
    BMessenger b(second);
    BMessenger c(NULL, first);
    EXPECT_FALSE(a < a);
    EXPECT_NE(a < b, b < a);
    EXPECT_NE(a < c, c < a);
    // Transitive over the three, whichever way they sort.
    if (a < b && b < c) {
        EXPECT_TRUE(a < c);
    }
    if (c < b && b < a) {
        EXPECT_TRUE(c < a);
    }
    first->Quit();
    second->Quit();
}
