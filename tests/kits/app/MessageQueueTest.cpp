// BMessageQueue on its own: order, search, removal, ownership and its lock.
#include <Message.h>
#include <MessageQueue.h>
#include <OS.h>

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using testing_support::Checkpoint;
using testing_support::TestWatchdog;

namespace {

// Counts its own destruction, to see who deletes queued messages.
class CountedMessage : public BMessage {
public:
    CountedMessage(uint32 what, int* deleted) : BMessage(what), fDeleted(deleted) {}
    ~CountedMessage() override { (*fDeleted)++; }

private:
    int* fDeleted;
};

} // namespace

TEST(MessageQueue, MessagesComeOutInTheOrderTheyWereAdded) {
    BMessageQueue queue;
    BMessage* first = new BMessage('frst');
    BMessage* second = new BMessage('scnd');
    queue.AddMessage(first);
    queue.AddMessage(second);
    EXPECT_TRUE(queue.IsNextMessage(first));
    EXPECT_EQ(first, queue.NextMessage());
    EXPECT_EQ(second, queue.NextMessage());
    EXPECT_EQ(NULL, queue.NextMessage());
    delete first;
    delete second;
}

TEST(MessageQueue, CountAndIsEmptyFollowTheContents) {
    BMessageQueue queue;
    EXPECT_TRUE(queue.IsEmpty());
    EXPECT_EQ(0, queue.CountMessages());
    queue.AddMessage(new BMessage('one '));
    queue.AddMessage(new BMessage('two '));
    EXPECT_FALSE(queue.IsEmpty());
    EXPECT_EQ(2, queue.CountMessages());
    delete queue.NextMessage();
    EXPECT_EQ(1, queue.CountMessages());
}

TEST(MessageQueue, FindMessageByIndexLeavesTheMessageQueued) {
    BMessageQueue queue;
    BMessage* first = new BMessage('frst');
    BMessage* second = new BMessage('scnd');
    queue.AddMessage(first);
    queue.AddMessage(second);
    EXPECT_EQ(first, queue.FindMessage((int32)0));
    EXPECT_EQ(second, queue.FindMessage((int32)1));
    EXPECT_EQ(NULL, queue.FindMessage((int32)2));
    EXPECT_EQ(NULL, queue.FindMessage((int32)-1));
    EXPECT_EQ(2, queue.CountMessages());
}

TEST(MessageQueue, FindMessageByWhatCountsOnlyMatchingMessages) {
    const uint32 kCancel = 'cncl';
    const uint32 kOther = 'othr';
    BMessageQueue queue;
    BMessage* cancelA = new BMessage(kCancel);
    BMessage* other = new BMessage(kOther);
    BMessage* cancelB = new BMessage(kCancel);
    queue.AddMessage(cancelA);
    queue.AddMessage(other);
    queue.AddMessage(cancelB);
    EXPECT_EQ(cancelA, queue.FindMessage(kCancel));
    EXPECT_EQ(cancelB, queue.FindMessage(kCancel, 1));
    EXPECT_EQ(NULL, queue.FindMessage(kCancel, 2));
    EXPECT_EQ(other, queue.FindMessage(kOther, 0));
    EXPECT_EQ(NULL, queue.FindMessage((uint32)'none', 0));
}

TEST(MessageQueue, RemoveMessageTakesItOutWithoutDeletingIt) {
    int deleted = 0;
    BMessageQueue queue;
    CountedMessage* middle = new CountedMessage('midl', &deleted);
    queue.AddMessage(new BMessage('frst'));
    queue.AddMessage(middle);
    queue.AddMessage(new BMessage('last'));
    queue.RemoveMessage(middle);
    EXPECT_EQ(0, deleted);
    EXPECT_EQ(2, queue.CountMessages());
    EXPECT_EQ(NULL, queue.FindMessage((uint32)'midl'));
    // Removing what is not there changes nothing.
    queue.RemoveMessage(middle);
    EXPECT_EQ(2, queue.CountMessages());
    delete middle;
    EXPECT_EQ(1, deleted);
}

TEST(MessageQueue, DeletingTheQueueDeletesTheQueuedMessages) {
    int deleted = 0;
    {
        BMessageQueue queue;
        queue.AddMessage(new CountedMessage('one ', &deleted));
        queue.AddMessage(new CountedMessage('two ', &deleted));
    }
    EXPECT_EQ(2, deleted);
}

TEST(MessageQueue, LockIsRecursiveAndOwnedByTheCallingThread) {
    BMessageQueue queue;
    EXPECT_FALSE(queue.IsLocked());
    ASSERT_TRUE(queue.Lock());
    ASSERT_TRUE(queue.Lock());
    EXPECT_TRUE(queue.IsLocked());
    bool lockedElsewhere = true;
    std::thread([&] { lockedElsewhere = queue.IsLocked(); }).join();
    EXPECT_FALSE(lockedElsewhere);
    // The owner can still use the queue.
    queue.AddMessage(new BMessage('mine'));
    EXPECT_EQ(1, queue.CountMessages());
    queue.Unlock();
    EXPECT_TRUE(queue.IsLocked());
    queue.Unlock();
    EXPECT_FALSE(queue.IsLocked());
}

TEST(MessageQueue, LockedQueueKeepsOtherThreadsOutUntilUnlocked) {
    TestWatchdog watchdog;
    BMessageQueue queue;
    ASSERT_TRUE(queue.Lock());
    Checkpoint started;
    std::atomic<bool> added{false};
    std::thread adder([&] {
        started.Signal();
        queue.AddMessage(new BMessage('late'));
        added = true;
    });
    ASSERT_TRUE(started.WaitFor());
    // Whatever the other thread does, a find-then-remove here stays consistent.
    EXPECT_EQ(NULL, queue.FindMessage((uint32)'late'));
    EXPECT_EQ(0, queue.CountMessages());
    EXPECT_FALSE(added);
    queue.Unlock();
    adder.join();
    EXPECT_TRUE(added);
    EXPECT_EQ(1, queue.CountMessages());
}

TEST(MessageQueue, ManyThreadsAddingLoseNothing) {
    TestWatchdog watchdog;
    BMessageQueue queue;
    const int kThreads = 6;
    const int kPerThread = 500;
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; index++) {
        threads.emplace_back([&] {
            for (int count = 0; count < kPerThread; count++)
                queue.AddMessage(new BMessage('many'));
        });
    }
    int taken = 0;
    while (taken < kThreads * kPerThread) {
        if (BMessage* message = queue.NextMessage()) {
            delete message;
            taken++;
        } else {
            std::this_thread::yield();
        }
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(queue.IsEmpty());
}
