// Posting to a looper: where messages go, in which order, and what the looper does
// with them once they are dispatched.
#include <AppDefs.h>
#include <Handler.h>
#include <Looper.h>
#include <Message.h>
#include <MessageQueue.h>
#include <Messenger.h>
#include <OS.h>

#include "kernel/ProcTask.h"

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

using testing_support::Checkpoint;
using testing_support::RecordingLooper;
using testing_support::spin_until;
using testing_support::TestWatchdog;

namespace {

const uint32 kPing = 'ping';
const uint32 kPong = 'pong';
const uint32 kOther = 'othr';

void quit_looper(BLooper* looper) {
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

// A handler that records the `what` of what it receives.
class RecordingHandler : public BHandler {
public:
    explicit RecordingHandler(const char* name = "recording handler") : BHandler(name) {}

    void MessageReceived(BMessage* message) override {
        {
            std::lock_guard<std::mutex> locker(fMutex);
            fReceived.push_back(message->what);
        }
        fCheckpoint.Signal();
    }

    std::vector<uint32> Received() {
        std::lock_guard<std::mutex> locker(fMutex);
        return fReceived;
    }

    Checkpoint& Arrived() { return fCheckpoint; }

private:
    std::mutex fMutex;
    std::vector<uint32> fReceived;
    Checkpoint fCheckpoint;
};

// Runs a callback inside MessageReceived.
class CallbackLooper : public BLooper {
public:
    CallbackLooper(std::function<void(BLooper*, BMessage*)> callback)
        : BLooper("callback looper"), fCallback(std::move(callback)) {}

    void MessageReceived(BMessage* message) override { fCallback(this, message); }

private:
    std::function<void(BLooper*, BMessage*)> fCallback;
};

} // namespace

TEST(LooperPosting, PostedMessageReachesMessageReceivedInTheLooperThread) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    thread_id thread = looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing));
    ASSERT_TRUE(looper->WaitForMessages(1));
    std::vector<RecordingLooper::Entry> entries = looper->Entries();
    ASSERT_EQ(1u, entries.size());
    EXPECT_EQ(kPing, entries[0].what);
    EXPECT_EQ(thread, entries[0].thread);
    quit_looper(looper);
}

TEST(LooperPosting, PostMessageCopiesTheMessage) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    BMessage* message = new BMessage(kPing);
    message->AddInt32("value", 7);
    ASSERT_EQ(B_OK, looper->PostMessage(message));
    message->ReplaceInt32("value", 8);
    delete message;
    looper->Run();
    ASSERT_TRUE(looper->WaitForMessages(1));
    EXPECT_EQ(7, looper->Entries()[0].value);
    quit_looper(looper);
}

TEST(LooperPosting, PostMessageWithoutAMessageIsBadValue) {
    BLooper* looper = new BLooper("nothing");
    EXPECT_EQ(B_BAD_VALUE, looper->PostMessage((BMessage*)NULL));
    looper->Quit();
}

TEST(LooperPosting, PostToAHandlerOfAnotherLooperIsMismatched) {
    BLooper* first = new BLooper("first");
    BLooper* second = new BLooper("second");
    BHandler* handler = new BHandler("stranger");
    second->AddHandler(handler);
    EXPECT_EQ(B_MISMATCHED_VALUES, first->PostMessage(kPing, handler));
    BHandler detached("detached");
    EXPECT_EQ(B_MISMATCHED_VALUES, first->PostMessage(kPing, &detached));
    second->RemoveHandler(handler);
    delete handler;
    first->Quit();
    second->Quit();
}

TEST(LooperPosting, PostToAHandlerReachesThatHandler) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    RecordingHandler* handler = new RecordingHandler;
    looper->AddHandler(handler);
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing, handler));
    ASSERT_TRUE(handler->Arrived().WaitFor());
    EXPECT_EQ(std::vector<uint32>{kPing}, handler->Received());
    EXPECT_TRUE(looper->Entries().empty());
    quit_looper(looper);
    delete handler;
}

TEST(LooperPosting, PostWithNullHandlerGoesToThePreferredHandler) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    RecordingHandler* handler = new RecordingHandler;
    looper->AddHandler(handler);
    looper->SetPreferredHandler(handler);
    EXPECT_EQ(handler, looper->PreferredHandler());
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing, NULL));
    ASSERT_TRUE(handler->Arrived().WaitFor());
    EXPECT_EQ(std::vector<uint32>{kPing}, handler->Received());
    quit_looper(looper);
    delete handler;
}

TEST(LooperPosting, PostWithNullHandlerAndNoPreferredHandlerGoesToTheLooper) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing, NULL));
    ASSERT_TRUE(looper->WaitForMessages(1));
    EXPECT_EQ(kPing, looper->Entries()[0].what);
    quit_looper(looper);
}

TEST(LooperPosting, MessageForAHandlerRemovedMeanwhileIsDropped) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    RecordingHandler* handler = new RecordingHandler;
    looper->AddHandler(handler);
    ASSERT_EQ(B_OK, looper->PostMessage(kPing, handler));
    ASSERT_EQ(B_OK, looper->PostMessage(kOther));
    looper->RemoveHandler(handler);
    looper->Run();
    ASSERT_TRUE(looper->WaitForMessages(1));
    EXPECT_TRUE(handler->Received().empty());
    EXPECT_EQ(kOther, looper->Entries()[0].what);
    quit_looper(looper);
    delete handler;
}

TEST(LooperPosting, MessagesFromOneThreadArriveInOrder) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->Run();
    const int kCount = 500;
    for (int index = 0; index < kCount; index++) {
        BMessage message(kPing);
        message.AddInt32("value", index);
        ASSERT_EQ(B_OK, looper->PostMessage(&message));
        if (index % 100 == 99) {
            ASSERT_TRUE(looper->WaitForMessages(index + 1));
        }
    }
    ASSERT_TRUE(looper->WaitForMessages(kCount));
    std::vector<RecordingLooper::Entry> entries = looper->Entries();
    ASSERT_EQ((size_t)kCount, entries.size());
    for (int index = 0; index < kCount; index++)
        EXPECT_EQ(index, entries[index].value);
    quit_looper(looper);
}

TEST(LooperPosting, MessagesFromManyThreadsKeepEachThreadsOrder) {
    TestWatchdog watchdog;
    const int kThreads = 6;
    const int kPerThread = 400;
    std::mutex mutex;
    std::map<int32, std::vector<int32>> bySender;
    Checkpoint received;
    CallbackLooper* looper = new CallbackLooper([&](BLooper*, BMessage* message) {
        std::lock_guard<std::mutex> locker(mutex);
        bySender[message->GetInt32("sender", -1)].push_back(message->GetInt32("sequence", -1));
        received.Signal();
    });
    looper->Run();
    std::vector<std::thread> threads;
    for (int sender = 0; sender < kThreads; sender++) {
        threads.emplace_back([&, sender] {
            for (int sequence = 0; sequence < kPerThread; sequence++) {
                BMessage message(kPing);
                message.AddInt32("sender", sender);
                message.AddInt32("sequence", sequence);
                // A full queue refuses a post; try again once the looper caught up.
                while (looper->PostMessage(&message) == B_WOULD_BLOCK)
                    std::this_thread::yield();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    ASSERT_TRUE(received.WaitFor(kThreads * kPerThread));
    std::lock_guard<std::mutex> locker(mutex);
    ASSERT_EQ((size_t)kThreads, bySender.size());
    for (auto& [sender, sequences] : bySender) {
        ASSERT_EQ((size_t)kPerThread, sequences.size()) << "sender " << sender;
        for (int index = 0; index < kPerThread; index++)
            ASSERT_EQ(index, sequences[index]) << "sender " << sender;
    }
    quit_looper(looper);
}

TEST(LooperPosting, PostToAFullQueueFailsWithoutBlocking) {
    RecordingLooper* looper = new RecordingLooper("small", 3);
    for (int index = 0; index < 3; index++)
        ASSERT_EQ(B_OK, looper->PostMessage(kPing));
    EXPECT_EQ(B_WOULD_BLOCK, looper->PostMessage(kPing));
    looper->Quit();
}

TEST(LooperPosting, PostWaitsForAThreadHoldingTheQueueLock) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("queue held");
    ASSERT_TRUE(looper->MessageQueue()->Lock());
    std::atomic<thread_id> poster{-1};
    status_t status = B_ERROR;
    std::thread thread([&] {
        poster = find_thread(NULL);
        status = looper->PostMessage(kPing);
    });
    // The poster sleeps inside PostMessage(), on the queue's lock, not failing.
    ASSERT_TRUE(spin_until([&] {
        BPrivate::ProcTaskStat stat;
        return poster >= 0 && BPrivate::proc_task_read_stat(poster, &stat) == B_OK &&
               stat.state == 'S';
    }));
    EXPECT_EQ(0, looper->MessageQueue()->CountMessages());
    looper->MessageQueue()->Unlock();
    thread.join();
    EXPECT_EQ(B_OK, status);
    EXPECT_EQ(1, looper->MessageQueue()->CountMessages());
    looper->Quit();
}

TEST(LooperPosting, CurrentMessageIsTheMessageBeingDispatched) {
    TestWatchdog watchdog;
    Checkpoint done;
    uint32 currentWhat = 0;
    bool same = false;
    CallbackLooper* looper = new CallbackLooper([&](BLooper* self, BMessage* message) {
        same = self->CurrentMessage() == message;
        currentWhat = self->CurrentMessage()->what;
        done.Signal();
    });
    EXPECT_EQ(NULL, looper->CurrentMessage());
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing));
    ASSERT_TRUE(done.WaitFor());
    EXPECT_TRUE(same);
    EXPECT_EQ(kPing, currentWhat);
    quit_looper(looper);
}

TEST(LooperPosting, DetachedCurrentMessageBelongsToTheCaller) {
    TestWatchdog watchdog;
    Checkpoint done;
    BMessage* kept = NULL;
    CallbackLooper* looper = new CallbackLooper([&](BLooper* self, BMessage* message) {
        kept = self->DetachCurrentMessage();
        done.Signal();
    });
    looper->Run();
    BMessage message(kPing);
    message.AddInt32("value", 3);
    ASSERT_EQ(B_OK, looper->PostMessage(&message));
    ASSERT_TRUE(done.WaitFor());
    quit_looper(looper);
    ASSERT_NE(nullptr, kept);
    EXPECT_EQ(kPing, kept->what);
    EXPECT_EQ(3, kept->GetInt32("value", 0));
    delete kept;
}

TEST(LooperPosting, ReplyGoesToTheReplyHandler) {
    TestWatchdog watchdog;
    BLooper* server = new CallbackLooper([](BLooper*, BMessage* message) {
        if (message->what == kPing)
            message->SendReply(kPong);
    });
    RecordingLooper* client = new RecordingLooper;
    server->Run();
    client->Run();
    ASSERT_EQ(B_OK, server->PostMessage(kPing, server, client));
    ASSERT_TRUE(client->WaitForMessages(1));
    EXPECT_EQ(kPong, client->Entries()[0].what);
    quit_looper(server);
    quit_looper(client);
}

TEST(LooperPosting, UnhandledMessageWaitingForAReplyIsNotUnderstood) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("plain");
    looper->Run();
    BMessage request(kPing);
    BMessage reply;
    ASSERT_EQ(B_OK, BMessenger(looper).SendMessage(&request, &reply));
    EXPECT_EQ((uint32)B_MESSAGE_NOT_UNDERSTOOD, reply.what);
    quit_looper(looper);
}

TEST(LooperPosting, MessageReceivedPassesUnhandledMessagesToTheNextHandler) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    BHandler* plain = new BHandler("plain");
    looper->AddHandler(plain);
    EXPECT_EQ(looper, plain->NextHandler());
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing, plain));
    ASSERT_TRUE(looper->WaitForMessages(1));
    EXPECT_EQ(kPing, looper->Entries()[0].what);
    quit_looper(looper);
    delete plain;
}

TEST(LooperPosting, MessageQueuedDirectlyGoesToTheLooper) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->MessageQueue()->AddMessage(new BMessage(kOther));
    looper->Run();
    ASSERT_TRUE(looper->WaitForMessages(1));
    EXPECT_EQ(kOther, looper->Entries()[0].what);
    quit_looper(looper);
}

TEST(LooperPosting, IsMessageWaitingSeesQueuedMessages) {
    BLooper* looper = new BLooper("waiting");
    EXPECT_FALSE(looper->IsMessageWaiting());
    ASSERT_EQ(B_OK, looper->PostMessage(kPing));
    EXPECT_TRUE(looper->IsMessageWaiting());
    looper->Quit();
}

TEST(LooperPosting, PostingToALooperFromItsOwnThreadWorks) {
    TestWatchdog watchdog;
    Checkpoint second;
    CallbackLooper* looper = new CallbackLooper([&](BLooper* self, BMessage* message) {
        if (message->what == kPing)
            EXPECT_EQ(B_OK, self->PostMessage(kPong));
        else if (message->what == kPong)
            second.Signal();
    });
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing));
    ASSERT_TRUE(second.WaitFor());
    quit_looper(looper);
}
