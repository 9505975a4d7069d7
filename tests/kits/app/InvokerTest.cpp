// BInvoker: the model message, the target rules, and sending.
#include <AppDefs.h>
#include <Handler.h>
#include <Invoker.h>
#include <Looper.h>
#include <Message.h>
#include <Messenger.h>

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

using testing_support::Checkpoint;
using testing_support::RecordingLooper;
using testing_support::TestWatchdog;

namespace {

const uint32 kModel = 'modl';
const uint32 kOther = 'othr';
const uint32 kAnswer = 'answ';

void quit_looper(BLooper* looper) {
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

// Records the invoke kind seen while Invoke() runs.
class KindRecordingInvoker : public BInvoker {
public:
    using BInvoker::InvokeKind;

    status_t Invoke(BMessage* message) override {
        bool notify = false;
        fKind = InvokeKind(&notify);
        fNotify = notify;
        fNestedResult = InvokeNotify(message, B_CONTROL_MODIFIED);
        return B_OK;
    }

    uint32 fKind = 0;
    bool fNotify = false;
    status_t fNestedResult = B_OK;
};

// Answers every message with kAnswer.
class Answerer : public BLooper {
public:
    Answerer() : BLooper("answerer") {}
    void MessageReceived(BMessage* message) override { message->SendReply(kAnswer); }
};

} // namespace

TEST(Invoker, NewInvokerHasNoMessageAndNoTarget) {
    BInvoker invoker;
    EXPECT_EQ(NULL, invoker.Message());
    EXPECT_EQ(0u, invoker.Command());
    EXPECT_FALSE(invoker.Messenger().IsValid());
    EXPECT_EQ(B_INFINITE_TIMEOUT, invoker.Timeout());
    EXPECT_EQ(NULL, invoker.HandlerForReply());
}

TEST(Invoker, InvokeSendsACopyOfTheModelMessage) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->Run();
    BMessage* model = new BMessage(kModel);
    model->AddInt32("value", 5);
    BInvoker invoker(model, looper);
    EXPECT_EQ(model, invoker.Message());
    EXPECT_EQ(kModel, invoker.Command());
    ASSERT_EQ(B_OK, invoker.Invoke());
    ASSERT_EQ(B_OK, invoker.Invoke());
    ASSERT_TRUE(looper->WaitForMessages(2));
    EXPECT_EQ(kModel, looper->Entries()[1].what);
    EXPECT_EQ(5, looper->Entries()[1].value);
    EXPECT_EQ(model, invoker.Message());
    quit_looper(looper);
}

TEST(Invoker, InvokeWithAMessageSendsThatOne) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->Run();
    BInvoker invoker(new BMessage(kModel), BMessenger(looper));
    BMessage other(kOther);
    ASSERT_EQ(B_OK, invoker.Invoke(&other));
    ASSERT_TRUE(looper->WaitForMessages(1));
    EXPECT_EQ(kOther, looper->Entries()[0].what);
    quit_looper(looper);
}

TEST(Invoker, InvokeWithoutAnyMessageIsBadValue) {
    BLooper* looper = new BLooper("target");
    BInvoker invoker(NULL, looper);
    EXPECT_EQ(B_BAD_VALUE, invoker.Invoke());
    looper->Quit();
}

TEST(Invoker, SetMessageReplacesTheModel) {
    BInvoker invoker(new BMessage(kModel), BMessenger());
    BMessage* replacement = new BMessage(kOther);
    EXPECT_EQ(B_OK, invoker.SetMessage(replacement));
    EXPECT_EQ(replacement, invoker.Message());
    EXPECT_EQ(kOther, invoker.Command());
    EXPECT_EQ(B_OK, invoker.SetMessage(NULL));
    EXPECT_EQ(NULL, invoker.Message());
}

TEST(Invoker, SetTargetToAnUnattachedHandlerIsMismatched) {
    BInvoker invoker;
    BHandler handler("alone");
    EXPECT_EQ(B_MISMATCHED_VALUES, invoker.SetTarget(&handler));
    EXPECT_FALSE(invoker.Messenger().IsValid());
}

TEST(Invoker, SetTargetToAHandlerOfAnotherLooperIsMismatched) {
    BLooper* first = new BLooper("first");
    BLooper* second = new BLooper("second");
    BHandler* handler = new BHandler("handler");
    second->AddHandler(handler);
    BInvoker invoker;
    EXPECT_EQ(B_MISMATCHED_VALUES, invoker.SetTarget(handler, first));
    EXPECT_EQ(B_OK, invoker.SetTarget(handler, second));
    BLooper* looper = NULL;
    EXPECT_EQ(handler, invoker.Target(&looper));
    EXPECT_EQ(second, looper);
    second->RemoveHandler(handler);
    delete handler;
    first->Quit();
    second->Quit();
}

TEST(Invoker, SetTargetWithNeitherHandlerNorLooperIsBadValue) {
    BInvoker invoker;
    EXPECT_EQ(B_BAD_VALUE, invoker.SetTarget(NULL, NULL));
}

TEST(Invoker, SetTargetToALooperAloneAimsAtItsPreferredHandler) {
    BLooper* looper = new BLooper("preferred");
    BInvoker invoker;
    EXPECT_EQ(B_OK, invoker.SetTarget(NULL, looper));
    BLooper* found = NULL;
    EXPECT_EQ(NULL, invoker.Target(&found));
    EXPECT_EQ(looper, found);
    EXPECT_TRUE(invoker.IsTargetLocal());
    looper->Quit();
}

TEST(Invoker, SetTargetTakesAnyMessenger) {
    BLooper* looper = new BLooper("messenger target");
    BInvoker invoker;
    BMessenger messenger(looper);
    EXPECT_EQ(B_OK, invoker.SetTarget(messenger));
    EXPECT_TRUE(invoker.Messenger() == messenger);
    looper->Quit();
}

TEST(Invoker, RepliesGoToTheHandlerForReply) {
    TestWatchdog watchdog;
    Answerer* server = new Answerer;
    RecordingLooper* client = new RecordingLooper;
    server->Run();
    client->Run();
    BInvoker invoker(new BMessage(kModel), server);
    EXPECT_EQ(B_OK, invoker.SetHandlerForReply(client));
    EXPECT_EQ(client, invoker.HandlerForReply());
    ASSERT_EQ(B_OK, invoker.Invoke());
    ASSERT_TRUE(client->WaitForMessages(1));
    EXPECT_EQ(kAnswer, client->Entries()[0].what);
    quit_looper(server);
    quit_looper(client);
}

TEST(Invoker, InvokeNotifySetsTheKindWhileItRuns) {
    KindRecordingInvoker invoker;
    EXPECT_EQ((uint32)B_CONTROL_INVOKED, invoker.InvokeKind());
    BMessage message(kModel);
    EXPECT_EQ(B_OK, invoker.InvokeNotify(&message, B_CONTROL_MODIFIED));
    EXPECT_EQ((uint32)B_CONTROL_MODIFIED, invoker.fKind);
    EXPECT_TRUE(invoker.fNotify);
    // A notification inside another one is refused.
    EXPECT_EQ(B_WOULD_BLOCK, invoker.fNestedResult);
    bool notify = true;
    EXPECT_EQ((uint32)B_CONTROL_INVOKED, invoker.InvokeKind(&notify));
    EXPECT_FALSE(notify);
}

TEST(Invoker, TimeoutIsKept) {
    BInvoker invoker;
    EXPECT_EQ(B_OK, invoker.SetTimeout(1000));
    EXPECT_EQ(1000, invoker.Timeout());
}
