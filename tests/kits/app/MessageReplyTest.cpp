// Answering messages: SendReply to a sender that waits and to a reply handler, the
// once-only rule, and the automatic B_NO_REPLY for messages nobody answered.
#include <Message.h>

#include <Looper.h>
#include <Messenger.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>

namespace {

const bigtime_t kReplyTimeout = 10000000; // a watchdog: 10 s
const auto kWait = std::chrono::seconds(10);

// A looper that hands every message to a function, in its own thread.
class CallbackLooper : public BLooper {
public:
    explicit CallbackLooper(std::function<void(BMessage*)> callback)
        : BLooper("message test"), fCallback(std::move(callback)) {}

    void MessageReceived(BMessage* message) override { fCallback(message); }

private:
    std::function<void(BMessage*)> fCallback;
};

// Starts a looper and quits it when the test is done.
class RunningLooper {
public:
    explicit RunningLooper(std::function<void(BMessage*)> callback)
        : fLooper(new CallbackLooper(std::move(callback))) {
        fLooper->Run();
    }
    ~RunningLooper() {
        if (fLooper->Lock())
            fLooper->Quit();
    }

    BLooper* Looper() const { return fLooper; }
    BMessenger Messenger() const { return BMessenger(fLooper); }

private:
    CallbackLooper* fLooper;
};

TEST(MessageReply, ReplyWithoutAReturnAddressIsBadReply) {
    BMessage message('QUES');
    EXPECT_EQ(message.SendReply(B_REPLY), B_BAD_REPLY);
    BMessage reply(B_REPLY);
    EXPECT_EQ(message.SendReply(&reply), B_BAD_REPLY);
    EXPECT_EQ(message.SendReply(static_cast<BMessage*>(NULL), static_cast<BHandler*>(NULL)),
              B_BAD_VALUE);
}

TEST(MessageReply, WaitingSenderGetsTheReplyWithItsOrigin) {
    RunningLooper target([](BMessage* message) {
        BMessage reply(B_REPLY);
        reply.AddInt32("answer", 42);
        message->SendReply(&reply);
    });
    BMessage question('QUES');
    question.AddString("text", "how much?");
    BMessage reply;
    ASSERT_EQ(target.Messenger().SendMessage(&question, &reply, kReplyTimeout, kReplyTimeout),
              B_OK);
    EXPECT_EQ(reply.what, uint32(B_REPLY));
    EXPECT_EQ(reply.GetInt32("answer", 0), 42);
    EXPECT_TRUE(reply.IsReply());
    ASSERT_NE(reply.Previous(), nullptr);
    EXPECT_EQ(reply.Previous()->what, uint32('QUES'));
    EXPECT_STREQ(reply.Previous()->GetString("text"), "how much?");
}

TEST(MessageReply, SecondReplyIsDuplicateReply) {
    std::promise<status_t> second;
    RunningLooper target([&](BMessage* message) {
        message->SendReply(B_REPLY);
        second.set_value(message->SendReply(B_REPLY));
    });
    BMessage question('QUES');
    BMessage reply;
    ASSERT_EQ(target.Messenger().SendMessage(&question, &reply, kReplyTimeout, kReplyTimeout),
              B_OK);
    std::future<status_t> result = second.get_future();
    ASSERT_EQ(result.wait_for(kWait), std::future_status::ready);
    EXPECT_EQ(result.get(), B_DUPLICATE_REPLY);
}

TEST(MessageReply, SourceWaitsUntilTheReplyIsSent) {
    std::promise<std::pair<bool, bool>> waiting;
    RunningLooper target([&](BMessage* message) {
        bool before = message->IsSourceWaiting();
        message->SendReply(B_REPLY);
        waiting.set_value({before, message->IsSourceWaiting()});
    });
    BMessage question('QUES');
    BMessage reply;
    ASSERT_EQ(target.Messenger().SendMessage(&question, &reply, kReplyTimeout, kReplyTimeout),
              B_OK);
    std::future<std::pair<bool, bool>> result = waiting.get_future();
    ASSERT_EQ(result.wait_for(kWait), std::future_status::ready);
    std::pair<bool, bool> states = result.get();
    EXPECT_TRUE(states.first);
    EXPECT_FALSE(states.second);
}

TEST(MessageReply, UnansweredMessageAnswersNoReply) {
    RunningLooper target([](BMessage*) {});
    BMessage question('QUES');
    BMessage reply;
    ASSERT_EQ(target.Messenger().SendMessage(&question, &reply, kReplyTimeout, kReplyTimeout),
              B_OK);
    EXPECT_EQ(reply.what, uint32(B_NO_REPLY));
}

TEST(MessageReply, CopyOfAWaitingMessageIsNotWaitingButKnowsTheAddress) {
    std::promise<std::pair<bool, bool>> copyState;
    RunningLooper target([&](BMessage* message) {
        BMessage copy(*message);
        copyState.set_value({copy.IsSourceWaiting(), copy.ReturnAddress().IsValid()});
        message->SendReply(B_REPLY);
    });
    BMessage question('QUES');
    BMessage reply;
    ASSERT_EQ(target.Messenger().SendMessage(&question, &reply, kReplyTimeout, kReplyTimeout),
              B_OK);
    EXPECT_EQ(reply.what, uint32(B_REPLY));
    std::future<std::pair<bool, bool>> result = copyState.get_future();
    ASSERT_EQ(result.wait_for(kWait), std::future_status::ready);
    std::pair<bool, bool> state = result.get();
    EXPECT_FALSE(state.first);
    EXPECT_TRUE(state.second);
}

struct ReplySeen {
    uint32 what;
    bool isReply;
    uint32 previousWhat;
};

TEST(MessageReply, ReplyReachesTheReplyHandlerOfAnAsynchronousMessage) {
    std::promise<ReplySeen> seen;
    RunningLooper replies([&](BMessage* message) {
        const BMessage* previous = message->Previous();
        seen.set_value({message->what, message->IsReply(), previous ? previous->what : 0});
    });
    RunningLooper target([](BMessage* message) {
        EXPECT_FALSE(message->IsSourceWaiting());
        message->SendReply('ANSR');
    });
    BMessage question('QUES');
    ASSERT_EQ(target.Messenger().SendMessage(&question, replies.Looper()), B_OK);
    std::future<ReplySeen> result = seen.get_future();
    ASSERT_EQ(result.wait_for(kWait), std::future_status::ready);
    ReplySeen reply = result.get();
    EXPECT_EQ(reply.what, uint32('ANSR'));
    EXPECT_TRUE(reply.isReply);
    EXPECT_EQ(reply.previousWhat, uint32('QUES'));
}

TEST(MessageReply, ReplyCanWaitForAnAnswerToItself) {
    std::promise<uint32> answer;
    RunningLooper replies([](BMessage* message) {
        if (message->IsReply())
            message->SendReply('ACK2');
    });
    RunningLooper target([&](BMessage* message) {
        BMessage reply('ANSR');
        BMessage replyToReply;
        status_t status = message->SendReply(&reply, &replyToReply, kReplyTimeout, kReplyTimeout);
        answer.set_value(status == B_OK ? replyToReply.what : 0);
    });
    BMessage question('QUES');
    ASSERT_EQ(target.Messenger().SendMessage(&question, replies.Looper()), B_OK);
    std::future<uint32> result = answer.get_future();
    ASSERT_EQ(result.wait_for(kWait), std::future_status::ready);
    EXPECT_EQ(result.get(), uint32('ACK2'));
}

} // namespace
