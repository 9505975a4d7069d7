// BHandler: name, membership in a looper, the handler chain, locking the looper,
// archiving.
#include <Handler.h>
#include <Looper.h>
#include <Message.h>

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <thread>

#include <string.h>

using testing_support::TestWatchdog;

TEST(Handler, HandlerKeepsACopyOfItsName) {
    char name[] = "original";
    BHandler handler(name);
    strcpy(name, "changed!");
    EXPECT_STREQ("original", handler.Name());
    handler.SetName("renamed");
    EXPECT_STREQ("renamed", handler.Name());
}

TEST(Handler, UnnamedHandlerHasNoName) {
    BHandler handler;
    EXPECT_EQ(NULL, handler.Name());
    handler.SetName(NULL);
    EXPECT_EQ(NULL, handler.Name());
}

TEST(Handler, HandlerHasNoLooperUntilAdded) {
    BHandler handler("free");
    EXPECT_EQ(NULL, handler.Looper());
    EXPECT_EQ(NULL, handler.NextHandler());
}

TEST(Handler, LooperIsItsOwnFirstHandler) {
    BLooper* looper = new BLooper("self");
    EXPECT_EQ(looper, looper->Looper());
    EXPECT_EQ(1, looper->CountHandlers());
    EXPECT_EQ(looper, looper->HandlerAt(0));
    EXPECT_EQ(NULL, looper->NextHandler());
    looper->Quit();
}

TEST(Handler, AddHandlerSetsTheLooperAndTheNextHandler) {
    BLooper* looper = new BLooper("owner");
    BHandler* handler = new BHandler("member");
    looper->AddHandler(handler);
    EXPECT_EQ(looper, handler->Looper());
    EXPECT_EQ(looper, handler->NextHandler());
    EXPECT_EQ(2, looper->CountHandlers());
    EXPECT_EQ(1, looper->IndexOf(handler));
    EXPECT_EQ(handler, looper->HandlerAt(1));
    EXPECT_EQ(NULL, looper->HandlerAt(2));
    looper->RemoveHandler(handler);
    delete handler;
    looper->Quit();
}

TEST(Handler, AddingAHandlerOfAnotherLooperChangesNothing) {
    BLooper* first = new BLooper("first");
    BLooper* second = new BLooper("second");
    BHandler* handler = new BHandler("taken");
    first->AddHandler(handler);
    second->AddHandler(handler);
    EXPECT_EQ(first, handler->Looper());
    EXPECT_EQ(-1, second->IndexOf(handler));
    first->RemoveHandler(handler);
    delete handler;
    first->Quit();
    second->Quit();
}

TEST(Handler, RemoveHandlerDetachesIt) {
    BLooper* looper = new BLooper("owner");
    BHandler* handler = new BHandler("member");
    looper->AddHandler(handler);
    looper->SetPreferredHandler(handler);
    EXPECT_TRUE(looper->RemoveHandler(handler));
    EXPECT_EQ(NULL, handler->Looper());
    EXPECT_EQ(NULL, handler->NextHandler());
    EXPECT_EQ(NULL, looper->PreferredHandler());
    EXPECT_EQ(-1, looper->IndexOf(handler));
    EXPECT_FALSE(looper->RemoveHandler(handler));
    EXPECT_FALSE(looper->RemoveHandler(looper));
    delete handler;
    looper->Quit();
}

TEST(Handler, HandlersKeepTheOrderTheyWereAdded) {
    BLooper* looper = new BLooper("ordered");
    BHandler* handlers[3] = {new BHandler("a"), new BHandler("b"), new BHandler("c")};
    for (BHandler* handler : handlers)
        looper->AddHandler(handler);
    looper->RemoveHandler(handlers[1]);
    EXPECT_EQ(handlers[0], looper->HandlerAt(1));
    EXPECT_EQ(handlers[2], looper->HandlerAt(2));
    EXPECT_EQ(2, looper->IndexOf(handlers[2]));
    looper->Quit();
    delete handlers[1];
    // The looper never deletes its handlers; they were detached when it went away.
    EXPECT_EQ(NULL, handlers[0]->Looper());
    delete handlers[0];
    delete handlers[2];
}

TEST(Handler, DeletingAnAttachedHandlerRemovesItFromItsLooper) {
    BLooper* looper = new BLooper("owner");
    BHandler* handler = new BHandler("doomed");
    looper->AddHandler(handler);
    delete handler;
    EXPECT_EQ(1, looper->CountHandlers());
    looper->Quit();
}

TEST(Handler, SetNextHandlerChangesTheChain) {
    BLooper* looper = new BLooper("chain");
    BHandler* first = new BHandler("first");
    BHandler* second = new BHandler("second");
    looper->AddHandler(first);
    looper->AddHandler(second);
    first->SetNextHandler(second);
    EXPECT_EQ(second, first->NextHandler());
    first->SetNextHandler(NULL);
    EXPECT_EQ(NULL, first->NextHandler());
    looper->RemoveHandler(first);
    looper->RemoveHandler(second);
    delete first;
    delete second;
    looper->Quit();
}

TEST(Handler, LockLooperLocksTheHandlersLooper) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("lockable");
    BHandler* handler = new BHandler("member");
    looper->AddHandler(handler);
    looper->Run();
    EXPECT_FALSE(looper->IsLocked());
    ASSERT_TRUE(handler->LockLooper());
    EXPECT_TRUE(looper->IsLocked());
    handler->UnlockLooper();
    EXPECT_FALSE(looper->IsLocked());
    EXPECT_EQ(B_OK, handler->LockLooperWithTimeout(1000));
    EXPECT_TRUE(looper->IsLocked());
    looper->RemoveHandler(handler);
    looper->Quit();
    delete handler;
}

TEST(Handler, LockLooperWithoutALooperFails) {
    BHandler handler("free");
    EXPECT_FALSE(handler.LockLooper());
    EXPECT_EQ(B_BAD_VALUE, handler.LockLooperWithTimeout(0));
}

TEST(Handler, LockLooperWithTimeoutTimesOutWhenTheLooperIsHeld) {
    TestWatchdog watchdog;
    BLooper* looper = new BLooper("held");
    BHandler* handler = new BHandler("member");
    looper->AddHandler(handler);
    status_t status = B_OK;
    std::thread([&] { status = handler->LockLooperWithTimeout(10000); }).join();
    EXPECT_EQ(B_TIMED_OUT, status);
    looper->RemoveHandler(handler);
    delete handler;
    looper->Quit();
}

TEST(Handler, ArchiveKeepsTheName) {
    BHandler handler("archived");
    BMessage archive;
    ASSERT_EQ(B_OK, handler.Archive(&archive));
    EXPECT_STREQ("archived", archive.GetString("_name", ""));
    EXPECT_STREQ("BHandler", archive.GetString("class", ""));
    BArchivable* object = BHandler::Instantiate(&archive);
    BHandler* copy = dynamic_cast<BHandler*>(object);
    ASSERT_NE(nullptr, copy);
    EXPECT_STREQ("archived", copy->Name());
    delete copy;
}

TEST(Handler, InstantiateRefusesAnotherClass) {
    BMessage archive;
    archive.AddString("class", "BSomethingElse");
    EXPECT_EQ(NULL, BHandler::Instantiate(&archive));
}

TEST(Handler, SupportedSuitesNameTheHandlerSuite) {
    BHandler handler;
    BMessage data;
    ASSERT_EQ(B_OK, handler.GetSupportedSuites(&data));
    EXPECT_STREQ("suite/vnd.Be-handler", data.GetString("suites", ""));
    EXPECT_EQ(B_BAD_VALUE, handler.GetSupportedSuites(NULL));
}

TEST(HandlerDeathTest, NextHandlerFromAnotherLooperIsAProgrammingError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            BLooper* first = new BLooper("first");
            BLooper* second = new BLooper("second");
            BHandler* handler = new BHandler("handler");
            first->AddHandler(handler);
            handler->SetNextHandler(second);
        },
        "same looper");
}

TEST(HandlerDeathTest, AddingAHandlerWithoutTheLockIsAProgrammingError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            BLooper* looper = new BLooper("unlocked");
            looper->Unlock();
            looper->AddHandler(new BHandler("late"));
        },
        "must be locked");
}
