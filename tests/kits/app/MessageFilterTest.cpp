// Message filters: which messages they see, in which order, and what they can do
// with them (drop them, or hand them to another handler).
#include <Handler.h>
#include <List.h>
#include <Looper.h>
#include <Message.h>
#include <MessageFilter.h>

#include "app/MessagePrivate.h"

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

using testing_support::Checkpoint;
using testing_support::RecordingLooper;
using testing_support::TestWatchdog;

namespace {

const uint32 kPing = 'ping';
const uint32 kPong = 'pong';
const uint32 kDone = 'done';

// Shared trace of filter calls, in call order.
struct Trace {
    std::mutex mutex;
    std::vector<std::string> calls;

    void Add(const std::string& call) {
        std::lock_guard<std::mutex> locker(mutex);
        calls.push_back(call);
    }

    std::vector<std::string> Calls() {
        std::lock_guard<std::mutex> locker(mutex);
        return calls;
    }
};

class TracingFilter : public BMessageFilter {
public:
    TracingFilter(Trace* trace, const char* name, filter_result result = B_DISPATCH_MESSAGE,
                  BHandler* newTarget = NULL)
        : BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE), fTrace(trace), fName(name), fResult(result),
          fNewTarget(newTarget) {}

    TracingFilter(Trace* trace, const char* name, uint32 what,
                  filter_result result = B_DISPATCH_MESSAGE)
        : BMessageFilter(what), fTrace(trace), fName(name), fResult(result), fNewTarget(NULL) {}

    filter_result Filter(BMessage* message, BHandler** target) override {
        fTrace->Add(fName);
        if (fNewTarget != NULL)
            *target = fNewTarget;
        return fResult;
    }

private:
    Trace* fTrace;
    std::string fName;
    filter_result fResult;
    BHandler* fNewTarget;
};

class RecordingHandler : public BHandler {
public:
    RecordingHandler(Trace* trace, const char* name) : BHandler(name), fTrace(trace) {}

    void MessageReceived(BMessage* message) override {
        fTrace->Add(std::string("handler ") + Name());
        fArrived.Signal();
    }

    Checkpoint fArrived;

private:
    Trace* fTrace;
};

// Posts kPing, then kDone, and waits until the looper itself got kDone: by then
// every filter decision about kPing has been made.
void ping_and_settle(RecordingLooper* looper, BHandler* target = NULL) {
    if (target != NULL)
        ASSERT_EQ(B_OK, looper->PostMessage(kPing, target));
    else
        ASSERT_EQ(B_OK, looper->PostMessage(kPing));
    ASSERT_EQ(B_OK, looper->PostMessage(kDone));
    ASSERT_TRUE(testing_support::spin_until([&] {
        for (const RecordingLooper::Entry& entry : looper->Entries()) {
            if (entry.what == kDone)
                return true;
        }
        return false;
    }));
}

bool looper_got(RecordingLooper* looper, uint32 what) {
    for (const RecordingLooper::Entry& entry : looper->Entries()) {
        if (entry.what == what)
            return true;
    }
    return false;
}

void quit_looper(BLooper* looper) {
    ASSERT_TRUE(looper->Lock());
    looper->Quit();
}

filter_result skip_hook(BMessage* message, BHandler** target, BMessageFilter* filter) {
    return B_SKIP_MESSAGE;
}

} // namespace

TEST(MessageFilter, ConstructorsRecordTheConditions) {
    BMessageFilter command(kPing);
    EXPECT_EQ(kPing, command.Command());
    EXPECT_FALSE(command.FiltersAnyCommand());
    EXPECT_EQ(B_ANY_DELIVERY, command.MessageDelivery());
    EXPECT_EQ(B_ANY_SOURCE, command.MessageSource());
    EXPECT_EQ(NULL, command.Looper());

    BMessageFilter any(B_DROPPED_DELIVERY, B_LOCAL_SOURCE);
    EXPECT_TRUE(any.FiltersAnyCommand());
    EXPECT_EQ(B_DROPPED_DELIVERY, any.MessageDelivery());
    EXPECT_EQ(B_LOCAL_SOURCE, any.MessageSource());

    BMessageFilter full(B_PROGRAMMED_DELIVERY, B_REMOTE_SOURCE, kPong);
    EXPECT_EQ(kPong, full.Command());
    EXPECT_FALSE(full.FiltersAnyCommand());
    EXPECT_EQ(B_PROGRAMMED_DELIVERY, full.MessageDelivery());
    EXPECT_EQ(B_REMOTE_SOURCE, full.MessageSource());

    BMessageFilter copy(full);
    EXPECT_EQ(kPong, copy.Command());
    EXPECT_EQ(B_REMOTE_SOURCE, copy.MessageSource());
    BMessageFilter fromPointer(&any);
    EXPECT_TRUE(fromPointer.FiltersAnyCommand());
    EXPECT_EQ(B_DROPPED_DELIVERY, fromPointer.MessageDelivery());
}

TEST(MessageFilter, DefaultFilterDispatches) {
    BMessageFilter filter(kPing);
    BMessage message(kPing);
    BHandler* target = NULL;
    EXPECT_EQ(B_DISPATCH_MESSAGE, filter.Filter(&message, &target));
}

TEST(MessageFilter, CommonFilterKnowsItsLooper) {
    BLooper* looper = new BLooper("owner");
    BMessageFilter* filter = new BMessageFilter(kPing);
    looper->AddCommonFilter(filter);
    EXPECT_EQ(looper, filter->Looper());
    ASSERT_EQ(1, looper->CommonFilterList()->CountItems());
    EXPECT_TRUE(looper->RemoveCommonFilter(filter));
    EXPECT_EQ(NULL, filter->Looper());
    EXPECT_FALSE(looper->RemoveCommonFilter(filter));
    delete filter;
    looper->Quit();
}

TEST(MessageFilter, CommonFilterListGivenToTheLooperFiltersItsMessages) {
    TestWatchdog watchdog;
    Trace trace;
    RecordingLooper* looper = new RecordingLooper;
    // Replacing the list deletes the filters of the old one.
    looper->AddCommonFilter(new TracingFilter(&trace, "replaced", kPing));
    looper->SetCommonFilterList(NULL);
    EXPECT_EQ(NULL, looper->CommonFilterList());
    BList* filters = new BList;
    filters->AddItem(new BMessageFilter(kPing, skip_hook));
    looper->SetCommonFilterList(filters);
    EXPECT_EQ(filters, looper->CommonFilterList());
    looper->Run();
    ping_and_settle(looper);
    EXPECT_FALSE(looper_got(looper, kPing));
    EXPECT_TRUE(trace.Calls().empty());
    quit_looper(looper);
}

TEST(MessageFilter, FilterForAnotherCommandIsNotCalled) {
    TestWatchdog watchdog;
    Trace trace;
    RecordingLooper* looper = new RecordingLooper;
    looper->AddCommonFilter(new TracingFilter(&trace, "pong only", kPong));
    looper->Run();
    ping_and_settle(looper);
    EXPECT_TRUE(trace.Calls().empty());
    EXPECT_TRUE(looper_got(looper, kPing));
    quit_looper(looper);
}

TEST(MessageFilter, CommonFiltersRunBeforeHandlerFiltersInOrder) {
    TestWatchdog watchdog;
    Trace trace;
    RecordingLooper* looper = new RecordingLooper;
    RecordingHandler* handler = new RecordingHandler(&trace, "target");
    looper->AddHandler(handler);
    handler->AddFilter(new TracingFilter(&trace, "handler 1", kPing));
    handler->AddFilter(new TracingFilter(&trace, "handler 2", kPing));
    looper->AddCommonFilter(new TracingFilter(&trace, "common 1", kPing));
    looper->AddCommonFilter(new TracingFilter(&trace, "common 2", kPing));
    EXPECT_EQ(looper, static_cast<BMessageFilter*>(handler->FilterList()->ItemAt(0))->Looper());
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing, handler));
    ASSERT_TRUE(handler->fArrived.WaitFor());
    std::vector<std::string> expected{"common 1", "common 2", "handler 1", "handler 2",
                                      "handler target"};
    EXPECT_EQ(expected, trace.Calls());
    quit_looper(looper);
    delete handler;
}

TEST(MessageFilter, SkipStopsTheFiltersAfterIt) {
    TestWatchdog watchdog;
    Trace trace;
    RecordingLooper* looper = new RecordingLooper;
    looper->AddCommonFilter(new TracingFilter(&trace, "first", kPing, B_SKIP_MESSAGE));
    looper->AddCommonFilter(new TracingFilter(&trace, "second"));
    looper->Run();
    ping_and_settle(looper);
    // kPing met the first filter only; kDone passed the second one.
    EXPECT_EQ((std::vector<std::string>{"first", "second"}), trace.Calls());
    EXPECT_FALSE(looper_got(looper, kPing));
    quit_looper(looper);
}

TEST(MessageFilter, FilterCanHandTheMessageToAnotherHandler) {
    TestWatchdog watchdog;
    Trace trace;
    RecordingLooper* looper = new RecordingLooper;
    RecordingHandler* original = new RecordingHandler(&trace, "original");
    RecordingHandler* replacement = new RecordingHandler(&trace, "replacement");
    looper->AddHandler(original);
    looper->AddHandler(replacement);
    replacement->AddFilter(new TracingFilter(&trace, "replacement's filter", kPing));
    original->AddFilter(new TracingFilter(&trace, "redirect", B_DISPATCH_MESSAGE, replacement));
    looper->Run();
    ASSERT_EQ(B_OK, looper->PostMessage(kPing, original));
    ASSERT_TRUE(replacement->fArrived.WaitFor());
    // The new target's own filters run too.
    std::vector<std::string> expected{"redirect", "replacement's filter", "handler replacement"};
    EXPECT_EQ(expected, trace.Calls());
    EXPECT_EQ(0, original->fArrived.Count());
    quit_looper(looper);
    delete original;
    delete replacement;
}

TEST(MessageFilter, HookFunctionIsCalledInsteadOfFilter) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->AddCommonFilter(new BMessageFilter(kPing, skip_hook));
    looper->Run();
    ping_and_settle(looper);
    EXPECT_FALSE(looper_got(looper, kPing));
    quit_looper(looper);
}

TEST(MessageFilter, DroppedDeliveryFilterSeesOnlyDroppedMessages) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->AddCommonFilter(new BMessageFilter(B_DROPPED_DELIVERY, B_ANY_SOURCE, skip_hook));
    looper->Run();

    ping_and_settle(looper);
    EXPECT_TRUE(looper_got(looper, kPing));

    BMessage dropped(kPong);
    BPrivate::MessagePrivate(&dropped).SetWasDropped(true);
    ASSERT_EQ(B_OK, looper->PostMessage(&dropped));
    ASSERT_EQ(B_OK, looper->PostMessage(kDone));
    ASSERT_TRUE(looper->WaitForMessages(3));
    EXPECT_FALSE(looper_got(looper, kPong));
    quit_looper(looper);
}

TEST(MessageFilter, ProgrammedDeliveryFilterIgnoresDroppedMessages) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->AddCommonFilter(
        new BMessageFilter(B_PROGRAMMED_DELIVERY, B_ANY_SOURCE, kPing, skip_hook));
    looper->Run();
    BMessage dropped(kPing);
    dropped.AddInt32("value", 1);
    BPrivate::MessagePrivate(&dropped).SetWasDropped(true);
    ASSERT_EQ(B_OK, looper->PostMessage(&dropped));
    BMessage posted(kPing);
    posted.AddInt32("value", 2);
    ASSERT_EQ(B_OK, looper->PostMessage(&posted));
    ASSERT_EQ(B_OK, looper->PostMessage(kDone));
    ASSERT_TRUE(looper->WaitForMessages(2));
    std::vector<RecordingLooper::Entry> entries = looper->Entries();
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ(kPing, entries[0].what);
    EXPECT_EQ(1, entries[0].value);
    EXPECT_EQ(kDone, entries[1].what);
    quit_looper(looper);
}

TEST(MessageFilter, RemoteSourceFilterIgnoresLocalMessages) {
    TestWatchdog watchdog;
    RecordingLooper* looper = new RecordingLooper;
    looper->AddCommonFilter(new BMessageFilter(B_ANY_DELIVERY, B_REMOTE_SOURCE, skip_hook));
    looper->Run();
    ping_and_settle(looper);
    EXPECT_TRUE(looper_got(looper, kPing));
    quit_looper(looper);
}

TEST(MessageFilter, HandlerFilterListCanBeReplaced) {
    Trace trace;
    BLooper* looper = new BLooper("lists");
    BHandler* handler = new BHandler("handler");
    looper->AddHandler(handler);
    handler->AddFilter(new TracingFilter(&trace, "old"));
    BList* filters = new BList;
    BMessageFilter* replacement = new BMessageFilter(kPing);
    filters->AddItem(replacement);
    handler->SetFilterList(filters);
    EXPECT_EQ(filters, handler->FilterList());
    EXPECT_EQ(looper, replacement->Looper());
    EXPECT_TRUE(handler->RemoveFilter(replacement));
    EXPECT_EQ(NULL, replacement->Looper());
    delete replacement;
    looper->RemoveHandler(handler);
    delete handler;
    looper->Quit();
}
