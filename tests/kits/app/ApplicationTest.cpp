// BApplication: be_app, the launch messages, running and quitting, asking the
// windows, pulses and the application's own information.
#include <AppDefs.h>
#include <Application.h>
#include <Entry.h>
#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <OS.h>
#include <Roster.h>

#include "app/AppPrivate.h"

#include "MessagingTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <limits.h>
#include <string.h>
#include <unistd.h>

using testing_support::Checkpoint;
using testing_support::TestWatchdog;

namespace {

const char* kSignature = "application/x-vnd.Glimrow-Test";
const uint32 kCheck = 'chck';
const uint32 kPing = 'ping';
const uint32 kPong = 'pong';

// What happened during a run, in order.
struct Events {
    std::mutex mutex;
    std::vector<std::string> list;

    void Add(const std::string& event) {
        std::lock_guard<std::mutex> locker(mutex);
        list.push_back(event);
    }

    std::vector<std::string> List() {
        std::lock_guard<std::mutex> locker(mutex);
        return list;
    }
};

// A window stand-in: a looper registered with the application as windows are.
class TestWindow : public BLooper {
public:
    struct Log {
        std::atomic<thread_id> askedIn{-1};
        std::atomic<bool> destroyed{false};
    };

    TestWindow(const char* name, Log* log, bool agree = true,
               std::function<void()> onQuitRequested = nullptr)
        : BLooper(name, B_DISPLAY_PRIORITY), fLog(log), fAgree(agree),
          fOnQuitRequested(std::move(onQuitRequested)) {
        BPrivate::AppPrivate::AddWindow(this);
    }

    ~TestWindow() override {
        BPrivate::AppPrivate::RemoveWindow(this);
        fLog->destroyed = true;
    }

    bool QuitRequested() override {
        fLog->askedIn = find_thread(NULL);
        if (fOnQuitRequested)
            fOnQuitRequested();
        return fAgree;
    }

private:
    Log* fLog;
    bool fAgree;
    std::function<void()> fOnQuitRequested;
};

// An application whose hooks run callbacks and record their order.
class TestApplication : public BApplication {
public:
    explicit TestApplication(Events* events) : BApplication(kSignature), fEvents(events) {}

    void ReadyToRun() override {
        fEvents->Add(IsLaunching() ? "ReadyToRun launching" : "ReadyToRun");
        if (onReady)
            onReady(this);
    }

    void ArgvReceived(int32 argc, char** argv) override {
        fEvents->Add("ArgvReceived");
        for (int32 index = 0; index < argc; index++)
            arguments.push_back(argv[index]);
    }

    void AboutRequested() override {
        fEvents->Add("AboutRequested");
        PostMessage(B_QUIT_REQUESTED);
    }

    void Pulse() override {
        if (++pulses == 2)
            PostMessage(B_QUIT_REQUESTED);
    }

    void MessageReceived(BMessage* message) override {
        if (onMessage && onMessage(this, message))
            return;
        BApplication::MessageReceived(message);
    }

    std::function<void(TestApplication*)> onReady;
    std::function<bool(TestApplication*, BMessage*)> onMessage;
    std::vector<std::string> arguments;
    int pulses = 0;

private:
    Events* fEvents;
};

std::vector<std::string> process_arguments() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> arguments;
    std::string argument;
    while (std::getline(file, argument, '\0'))
        arguments.push_back(argument);
    return arguments;
}

} // namespace

TEST(Application, BeAppPointsAtTheApplicationUntilItIsDeleted) {
    Events events;
    TestApplication* application = new TestApplication(&events);
    EXPECT_EQ(application, be_app);
    EXPECT_EQ(B_OK, application->InitCheck());
    EXPECT_TRUE(be_app_messenger.IsValid());
    BLooper* looper = NULL;
    be_app_messenger.Target(&looper);
    EXPECT_EQ(application, looper);
    delete application;
    EXPECT_EQ(NULL, be_app);
    EXPECT_FALSE(be_app_messenger.IsValid());
}

TEST(Application, SignatureOutsideTheApplicationTypeIsBadValue) {
    status_t status = B_OK;
    BApplication* application = new BApplication("text/plain", &status);
    EXPECT_EQ(B_BAD_VALUE, status);
    EXPECT_EQ(B_BAD_VALUE, application->InitCheck());
    EXPECT_EQ(B_BAD_VALUE, application->Run());
    delete application;

    application = new BApplication("application/", &status);
    EXPECT_EQ(B_BAD_VALUE, status);
    delete application;
    application = new BApplication("application/with space", &status);
    EXPECT_EQ(B_BAD_VALUE, status);
    delete application;
    application = new BApplication(NULL, &status);
    EXPECT_EQ(B_BAD_VALUE, status);
    delete application;
}

TEST(Application, RunDispatchesReadyToRunAndReturnsAfterQuit) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    EXPECT_TRUE(application->IsLaunching());
    application->onReady = [](TestApplication* self) { self->PostMessage(B_QUIT_REQUESTED); };
    thread_id thread = application->Run();
    EXPECT_EQ(find_thread(NULL), thread);
    EXPECT_FALSE(application->IsLaunching());
    // Run() returns with the application locked, ready to be deleted.
    EXPECT_TRUE(application->IsLocked());
    std::vector<std::string> list = events.List();
    ASSERT_FALSE(list.empty());
    EXPECT_EQ("ReadyToRun launching", list.back());
    delete application;
}

TEST(Application, ArgumentsArriveBeforeReadyToRun) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    application->onReady = [](TestApplication* self) { self->PostMessage(B_QUIT_REQUESTED); };
    application->Run();
    std::vector<std::string> expected = process_arguments();
    std::vector<std::string> list = events.List();
    if (expected.size() >= 2) {
        ASSERT_EQ(2u, list.size());
        EXPECT_EQ("ArgvReceived", list[0]);
        EXPECT_EQ(expected, application->arguments);
    } else {
        // Without arguments there is nothing to receive.
        ASSERT_EQ(1u, list.size());
    }
    EXPECT_EQ("ReadyToRun launching", list.back());
    delete application;
}

TEST(Application, AboutRequestedMessageCallsAboutRequested) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    application->onReady = [](TestApplication* self) { self->PostMessage(B_ABOUT_REQUESTED); };
    application->Run();
    EXPECT_EQ("AboutRequested", events.List().back());
    delete application;
}

TEST(Application, LooperForThreadOfTheRunningThreadIsTheApplication) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    BLooper* found = NULL;
    application->onReady = [&](TestApplication* self) {
        found = BLooper::LooperForThread(find_thread(NULL));
        self->PostMessage(B_QUIT_REQUESTED);
    };
    application->Run();
    EXPECT_EQ(application, found);
    delete application;
}

TEST(Application, QuitRequestedAsksEveryWindowInItsOwnThread) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    TestWindow::Log firstLog, secondLog;
    TestWindow* first = new TestWindow("first", &firstLog);
    TestWindow* second = new TestWindow("second", &secondLog);
    thread_id firstThread = first->Run();
    thread_id secondThread = second->Run();
    EXPECT_EQ(2, application->CountWindows());
    EXPECT_EQ((void*)first, (void*)application->WindowAt(0));
    EXPECT_EQ((void*)second, (void*)application->WindowAt(1));
    EXPECT_EQ(NULL, application->WindowAt(2));

    application->onReady = [](TestApplication* self) { self->PostMessage(B_QUIT_REQUESTED); };
    application->Run();
    EXPECT_EQ(firstThread, firstLog.askedIn.load());
    EXPECT_EQ(secondThread, secondLog.askedIn.load());
    EXPECT_TRUE(firstLog.destroyed);
    EXPECT_TRUE(secondLog.destroyed);
    EXPECT_EQ(0, application->CountWindows());
    delete application;
}

TEST(Application, WindowThatRefusesKeepsTheApplicationRunning) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    TestWindow::Log agreeingLog, refusingLog;
    TestWindow* agreeing = new TestWindow("agreeing", &agreeingLog, true);
    TestWindow* refusing = new TestWindow("refusing", &refusingLog, false);
    agreeing->Run();
    refusing->Run();

    int windowsAfterRequest = -1;
    application->onReady = [](TestApplication* self) {
        self->PostMessage(B_QUIT_REQUESTED);
        self->PostMessage(kCheck);
    };
    application->onMessage = [&](TestApplication* self, BMessage* message) {
        if (message->what != kCheck)
            return false;
        windowsAfterRequest = self->CountWindows();
        self->Quit();
        return true;
    };
    application->Run();
    EXPECT_EQ(1, windowsAfterRequest);
    EXPECT_TRUE(agreeingLog.destroyed);
    EXPECT_FALSE(refusingLog.destroyed);
    // Deleting the application closes what is left, without asking.
    delete application;
    EXPECT_TRUE(refusingLog.destroyed);
}

TEST(Application, WindowThatNeverRanIsAskedInTheApplicationThread) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    TestWindow::Log log;
    TestWindow* hidden = new TestWindow("hidden", &log);
    hidden->Unlock();
    application->onReady = [](TestApplication* self) { self->PostMessage(B_QUIT_REQUESTED); };
    application->Run();
    EXPECT_EQ(find_thread(NULL), log.askedIn.load());
    EXPECT_TRUE(log.destroyed);
    delete application;
}

TEST(Application, WindowCanLockTheApplicationWhileItIsAsked) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    TestWindow::Log log;
    bool lockedApplication = false;
    TestWindow* window = new TestWindow("locking", &log, true, [&] {
        lockedApplication = be_app->Lock();
        if (lockedApplication)
            be_app->Unlock();
    });
    window->Run();
    application->onReady = [](TestApplication* self) { self->PostMessage(B_QUIT_REQUESTED); };
    application->Run();
    EXPECT_TRUE(lockedApplication);
    EXPECT_TRUE(log.destroyed);
    delete application;
}

TEST(Application, QuitFromAnotherThreadEndsRun) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    std::thread quitter;
    application->onReady = [&](TestApplication* self) {
        quitter = std::thread([] {
            ASSERT_TRUE(be_app->Lock());
            be_app->Quit();
            be_app->Unlock();
        });
    };
    application->Run();
    quitter.join();
    delete application;
}

TEST(Application, MessengerFromTheOwnSignatureReachesTheApplication) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    status_t status = B_ERROR;
    BMessenger messenger("Application/X-Vnd.Glimrow-TEST", -1, &status);
    EXPECT_EQ(B_OK, status);
    EXPECT_TRUE(messenger == be_app_messenger);

    BMessenger other("application/x-vnd.Someone-Else", -1, &status);
    EXPECT_NE(B_OK, status);
    EXPECT_FALSE(other.IsValid());

    bool got = false;
    application->onMessage = [&](TestApplication* self, BMessage* message) {
        if (message->what != kPing)
            return false;
        got = true;
        self->Quit();
        return true;
    };
    ASSERT_EQ(B_OK, messenger.SendMessage(kPing));
    application->Run();
    EXPECT_TRUE(got);
    delete application;
}

TEST(Application, RepliesWithoutAReplyHandlerGoToTheApplication) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    class Server : public BLooper {
    public:
        Server() : BLooper("server") {}
        void MessageReceived(BMessage* message) override { message->SendReply(kPong); }
    };
    Server* server = new Server;
    server->Run();
    bool gotReply = false;
    application->onReady = [&](TestApplication*) { BMessenger(server).SendMessage(kPing); };
    application->onMessage = [&](TestApplication* self, BMessage* message) {
        if (message->what != kPong)
            return false;
        gotReply = true;
        self->Quit();
        return true;
    };
    application->Run();
    EXPECT_TRUE(gotReply);
    ASSERT_TRUE(server->Lock());
    server->Quit();
    delete application;
}

TEST(Application, PulsesArriveAfterSetPulseRate) {
    TestWatchdog watchdog;
    Events events;
    TestApplication* application = new TestApplication(&events);
    application->onReady = [](TestApplication* self) { self->SetPulseRate(100000); };
    bigtime_t start = system_time();
    application->Run();
    EXPECT_EQ(2, application->pulses);
    EXPECT_GE(system_time() - start, 200000);
    delete application;
}

TEST(Application, GetAppInfoGivesTheExecutableAndTheSignature) {
    Events events;
    TestApplication* application = new TestApplication(&events);
    app_info info;
    ASSERT_EQ(B_OK, application->GetAppInfo(&info));
    EXPECT_STREQ(kSignature, info.signature);
    EXPECT_EQ(getpid(), info.team);
    char path[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
    ASSERT_GT(length, 0);
    path[length] = '\0';
    entry_ref expected;
    ASSERT_EQ(B_OK, get_ref_for_path(path, &expected));
    EXPECT_TRUE(expected == info.ref);
    EXPECT_STREQ(strrchr(path, '/') + 1, info.ref.name);
    EXPECT_EQ(B_BAD_VALUE, application->GetAppInfo(NULL));
    delete application;
}

TEST(Application, LoopersOfTheProcessAreCounted) {
    Events events;
    TestApplication* application = new TestApplication(&events);
    BLooper* looper = new BLooper("counted");
    EXPECT_EQ(2, application->CountLoopers());
    EXPECT_EQ(application, application->LooperAt(0));
    EXPECT_EQ(looper, application->LooperAt(1));
    EXPECT_EQ(NULL, application->LooperAt(2));
    looper->Quit();
    delete application;
}

TEST(ApplicationDeathTest, SecondApplicationIsAProgrammingError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            new BApplication(kSignature);
            new BApplication(kSignature);
        },
        "only one application");
}

TEST(ApplicationDeathTest, InvalidSignatureWithoutStatusIsAProgrammingError) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH({ new BApplication("not a signature"); }, "signature");
}
