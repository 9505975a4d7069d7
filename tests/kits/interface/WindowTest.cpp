// BWindow on the headless display: showing, hiding, geometry, properties,
// activation, shortcuts and quitting.
#include "HeadlessAppTest.h"
#include "interface/WindowPrivate.h"

#include <Application.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <OS.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <math.h>
#include <mutex>
#include <string>
#include <thread>

using BPrivate::HeadlessTestApi;
using BPrivate::WindowListing;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

class LoggingWindow : public BWindow {
public:
    LoggingWindow(BRect frame, const char* title, EventLog* log, uint32 flags = 0)
        : BWindow(frame, title, B_TITLED_WINDOW, flags), fLog(log) {}

    void FrameMoved(BPoint where) override {
        fLog->Add("moved " + std::to_string((int)where.x) + "," + std::to_string((int)where.y));
    }
    void FrameResized(float width, float height) override {
        fLog->Add("resized " + std::to_string((int)width) + "x" + std::to_string((int)height));
    }
    void WindowActivated(bool active) override {
        fLog->Add(std::string(Title()) + (active ? " active" : " inactive"));
    }
    void WorkspacesChanged(uint32 oldWorkspaces, uint32 newWorkspaces) override {
        fLog->Add("workspaces " + std::to_string(oldWorkspaces) + "->" +
                  std::to_string(newWorkspaces));
    }
    void MessageReceived(BMessage* message) override {
        if (message->what == 'shct' || message->what == B_QUIT_REQUESTED ||
            message->what == 'tick') {
            fLog->Add("message " + std::to_string(message->what));
            return;
        }
        BWindow::MessageReceived(message);
    }
    bool QuitRequested() override {
        fLog->Add("quit requested");
        return fAllowQuit;
    }

    std::atomic<bool> fAllowQuit{true};

private:
    EventLog* fLog;
};

class WindowTest : public HeadlessAppTest {};

WindowListing listing_of(const BWindow* window) {
    WindowListing listing{};
    EXPECT_TRUE(HeadlessTestApi::FindWindow(window, &listing));
    return listing;
}

} // namespace

TEST_F(WindowTest, WindowStartsHiddenAndFirstShowStartsItsThread) {
    BWindow* window = new BWindow(BRect(10, 10, 109, 59), "first", B_TITLED_WINDOW, 0);
    EXPECT_TRUE(window->IsHidden());
    EXPECT_TRUE(listing_of(window).hidden);
    EXPECT_LT(window->Thread(), 0);

    window->Show();
    WaitForIdle();
    EXPECT_GE(window->Thread(), 0);
    EXPECT_FALSE(window->IsHidden());
    WindowListing listing = listing_of(window);
    EXPECT_FALSE(listing.hidden);
    EXPECT_TRUE(listing.visible);
    EXPECT_EQ("first", listing.title);
    EXPECT_EQ(BRect(10, 10, 109, 59), listing.frame);
}

TEST_F(WindowTest, HideAndShowNest) {
    BWindow* window = new BWindow(BRect(0, 0, 50, 50), "nested", B_TITLED_WINDOW, 0);
    window->Show();
    window->Lock();
    window->Hide();
    window->Hide();
    window->Show();
    EXPECT_TRUE(window->IsHidden());
    window->Unlock();
    WaitForIdle();
    EXPECT_TRUE(listing_of(window).hidden);

    window->Show();
    WaitForIdle();
    EXPECT_FALSE(window->IsHidden());
    EXPECT_TRUE(listing_of(window).visible);
}

TEST_F(WindowTest, FrameMayLieOutsideTheScreen) {
    BWindow* window = new BWindow(BRect(-300, -300, -100, -100), "outside", B_TITLED_WINDOW, 0);
    window->Show();
    WaitForIdle();
    EXPECT_EQ(BRect(-300, -300, -100, -100), window->Frame());
    EXPECT_EQ(BRect(-300, -300, -100, -100), listing_of(window).frame);

    window->Lock();
    window->MoveTo(5000, -40);
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(BPoint(5000, -40), window->Frame().LeftTop());
    EXPECT_EQ(BPoint(5000, -40), listing_of(window).frame.LeftTop());
}

TEST_F(WindowTest, MoveToReportsFrameMoved) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "mover", &log);
    window->Show();
    WaitForIdle();
    log.Clear();
    window->Lock();
    window->MoveTo(40, 30);
    window->MoveBy(2, 3);
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, log.Count("moved 40,30"));
    EXPECT_EQ(1u, log.Count("moved 42,33"));
    EXPECT_EQ(BRect(42, 33, 141, 132), window->Frame());
}

TEST_F(WindowTest, ResizeToReportsFrameResizedAndKeepsBoundsAtOrigin) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(20, 20, 119, 69), "sizer", &log);
    window->Show();
    WaitForIdle();
    log.Clear();
    window->Lock();
    window->ResizeTo(200, 30);
    EXPECT_EQ(BRect(0, 0, 200, 30), window->Bounds());
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, log.Count("resized 200x30"));
    EXPECT_EQ(BRect(20, 20, 220, 50), listing_of(window).frame);
}

TEST_F(WindowTest, ResizeToStaysWithinSizeLimits) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "limits", B_TITLED_WINDOW, 0);
    window->SetSizeLimits(50, 150, 10, 40);
    EXPECT_EQ(BRect(0, 0, 99, 40), window->Bounds());
    window->ResizeTo(1000, 1);
    EXPECT_EQ(BRect(0, 0, 150, 10), window->Bounds());
    float minWidth, maxWidth, minHeight, maxHeight;
    window->GetSizeLimits(&minWidth, &maxWidth, &minHeight, &maxHeight);
    EXPECT_EQ(50, minWidth);
    EXPECT_EQ(150, maxWidth);
    EXPECT_EQ(10, minHeight);
    EXPECT_EQ(40, maxHeight);
}

TEST_F(WindowTest, NonFiniteGeometryIsIgnored) {
    BWindow* window = new BWindow(BRect(10, 10, 109, 59), "finite", B_TITLED_WINDOW, 0);
    BView* view = new BView(BRect(0, 0, 9, 9), "view", B_FOLLOW_NONE, 0);
    window->AddChild(view);
    window->MoveTo(NAN, 5);
    window->MoveTo(INFINITY, INFINITY);
    window->ResizeTo(NAN, NAN);
    view->MoveTo(NAN, 0);
    view->ResizeTo(INFINITY, 3);
    view->ScrollTo(NAN, NAN);
    EXPECT_EQ(BRect(10, 10, 109, 59), window->Frame());
    EXPECT_EQ(BRect(0, 0, 9, 9), view->Frame());
    EXPECT_EQ(BRect(0, 0, 9, 9), view->Bounds());
}

TEST_F(WindowTest, ConvertToScreenAddsTheFrameOrigin) {
    BWindow* window = new BWindow(BRect(100, 50, 199, 149), "convert", B_TITLED_WINDOW, 0);
    EXPECT_EQ(BPoint(105, 57), window->ConvertToScreen(BPoint(5, 7)));
    EXPECT_EQ(BPoint(5, 7), window->ConvertFromScreen(BPoint(105, 57)));
    EXPECT_EQ(BRect(101, 51, 110, 60), window->ConvertToScreen(BRect(1, 1, 10, 10)));
    EXPECT_EQ(BRect(1, 1, 10, 10), window->ConvertFromScreen(BRect(101, 51, 110, 60)));
}

TEST_F(WindowTest, ShowActivatesTheWindowAndDeactivatesTheOther) {
    EventLog& log = fLog;
    LoggingWindow* first = new LoggingWindow(BRect(0, 0, 99, 99), "one", &log);
    LoggingWindow* second = new LoggingWindow(BRect(200, 0, 299, 99), "two", &log);
    first->Show();
    WaitForIdle();
    EXPECT_TRUE(first->IsActive());
    second->Show();
    WaitForIdle();
    EXPECT_FALSE(first->IsActive());
    EXPECT_TRUE(second->IsActive());
    EXPECT_EQ(1u, log.Count("one inactive"));
    EXPECT_EQ(1u, log.Count("two active"));
}

TEST_F(WindowTest, ActivateBringsTheWindowBackToFront) {
    EventLog& log = fLog;
    LoggingWindow* first = new LoggingWindow(BRect(0, 0, 99, 99), "one", &log);
    LoggingWindow* second = new LoggingWindow(BRect(50, 0, 149, 99), "two", &log);
    first->Show();
    second->Show();
    WaitForIdle();
    EXPECT_TRUE(second->IsFront());
    first->Activate();
    WaitForIdle();
    EXPECT_TRUE(first->IsActive());
    EXPECT_TRUE(first->IsFront());
    EXPECT_FALSE(second->IsActive());
}

TEST_F(WindowTest, DeactivatingTheOnlyWindowLeavesNoneActive) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "alone", &log);
    window->Show();
    WaitForIdle();
    window->Activate(false);
    WaitForIdle();
    EXPECT_FALSE(window->IsActive());
    EXPECT_EQ(1u, log.Count("alone inactive"));
}

TEST_F(WindowTest, AvoidFocusWindowIsNotActivatedByShow) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "shy", B_TITLED_WINDOW, B_AVOID_FOCUS);
    window->Show();
    WaitForIdle();
    EXPECT_FALSE(window->IsActive());
    EXPECT_FALSE(listing_of(window).active);
}

TEST_F(WindowTest, MinimizedWindowIsNotVisible) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "small", B_TITLED_WINDOW, 0);
    window->Show();
    window->Lock();
    window->Minimize(true);
    EXPECT_TRUE(window->IsMinimized());
    EXPECT_FALSE(window->IsHidden());
    window->Unlock();
    WaitForIdle();
    EXPECT_FALSE(listing_of(window).visible);
    EXPECT_TRUE(listing_of(window).minimized);
}

TEST_F(WindowTest, TitleLookFeelAndFlagsReachTheDisplay) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "before", B_TITLED_WINDOW, 0);
    window->SetTitle("after");
    window->SetLook(B_BORDERED_WINDOW_LOOK);
    window->SetFeel(B_FLOATING_ALL_WINDOW_FEEL);
    window->SetFlags(B_NOT_MOVABLE | B_AVOID_FRONT);
    EXPECT_STREQ("after", window->Title());
    EXPECT_EQ(B_BORDERED_WINDOW_LOOK, window->Look());
    EXPECT_EQ(B_FLOATING_ALL_WINDOW_FEEL, window->Feel());
    EXPECT_TRUE(window->IsFloating());
    WindowListing listing = listing_of(window);
    EXPECT_EQ("after", listing.title);
    EXPECT_EQ(B_BORDERED_WINDOW_LOOK, listing.look);
    EXPECT_EQ(B_FLOATING_ALL_WINDOW_FEEL, listing.feel);
    EXPECT_EQ((uint32)(B_NOT_MOVABLE | B_AVOID_FRONT), listing.flags);
}

TEST_F(WindowTest, WindowTypeGivesLookAndFeel) {
    BWindow* modal = new BWindow(BRect(0, 0, 9, 9), "modal", B_MODAL_WINDOW, 0);
    EXPECT_EQ(B_MODAL_WINDOW_LOOK, modal->Look());
    EXPECT_EQ(B_MODAL_APP_WINDOW_FEEL, modal->Feel());
    EXPECT_TRUE(modal->IsModal());
    EXPECT_EQ(B_MODAL_WINDOW, modal->Type());
    BWindow* bordered = new BWindow(BRect(0, 0, 9, 9), "bordered", B_BORDERED_WINDOW, 0);
    EXPECT_EQ(B_BORDERED_WINDOW_LOOK, bordered->Look());
    EXPECT_EQ(B_NORMAL_WINDOW_FEEL, bordered->Feel());
}

TEST_F(WindowTest, FloatingWindowStaysAboveNormalWindows) {
    BWindow* floating = new BWindow(BRect(0, 0, 99, 99), "float", B_FLOATING_WINDOW_LOOK,
                                    B_FLOATING_ALL_WINDOW_FEEL, 0);
    BWindow* normal = new BWindow(BRect(0, 0, 99, 99), "normal", B_TITLED_WINDOW, 0);
    floating->Show();
    normal->Show();
    WaitForIdle();
    std::vector<WindowListing> windows = HeadlessTestApi::Windows();
    ASSERT_EQ(2u, windows.size());
    EXPECT_EQ("normal", windows[0].title);
    EXPECT_EQ("float", windows[1].title);
}

TEST_F(WindowTest, SetWorkspacesReportsWorkspacesChanged) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "spaces", &log);
    EXPECT_EQ(1u, window->Workspaces());
    window->Show();
    WaitForIdle();
    window->SetWorkspaces(0x6);
    WaitForIdle();
    EXPECT_EQ(0x6u, window->Workspaces());
    EXPECT_EQ(1u, log.Count("workspaces 1->6"));
    EXPECT_EQ(0x6u, listing_of(window).workspaces);
    EXPECT_FALSE(listing_of(window).visible);
}

TEST_F(WindowTest, ChildrenAreFoundByName) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "tree", B_TITLED_WINDOW, 0);
    BView* outer = new BView(BRect(0, 0, 50, 50), "outer", B_FOLLOW_NONE, 0);
    BView* inner = new BView(BRect(5, 5, 10, 10), "inner", B_FOLLOW_NONE, 0);
    outer->AddChild(inner);
    window->AddChild(outer);
    EXPECT_EQ(1, window->CountChildren());
    EXPECT_EQ(outer, window->ChildAt(0));
    EXPECT_EQ(NULL, window->ChildAt(1));
    EXPECT_EQ(inner, window->FindView("inner"));
    EXPECT_EQ(NULL, window->FindView("nowhere"));
    EXPECT_EQ(window, inner->Window());
    EXPECT_EQ(NULL, outer->Parent());
    EXPECT_EQ(outer, inner->Parent());

    EXPECT_TRUE(window->RemoveChild(outer));
    EXPECT_EQ(NULL, inner->Window());
    EXPECT_EQ(0, window->CountChildren());
    delete outer;
}

TEST_F(WindowTest, ViewsAreHandlersOfTheWindowInOrder) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "handlers", B_TITLED_WINDOW, 0);
    BView* first = new BView(BRect(0, 0, 10, 10), "first", B_FOLLOW_NONE, 0);
    BView* second = new BView(BRect(0, 0, 10, 10), "second", B_FOLLOW_NONE, 0);
    window->AddChild(first);
    window->AddChild(second);
    int32 firstIndex = window->IndexOf(first);
    int32 secondIndex = window->IndexOf(second);
    EXPECT_GT(firstIndex, 0);
    EXPECT_GT(secondIndex, firstIndex);
}

TEST_F(WindowTest, ShortcutDeliversItsMessageWithCommand) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "keys", &log);
    window->AddShortcut(B_DOWN_ARROW, 0, new BMessage('shct'));
    EXPECT_TRUE(window->HasShortcut(B_DOWN_ARROW, B_COMMAND_KEY));
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x62, NULL, B_COMMAND_KEY));
    WaitForIdle();
    EXPECT_EQ(1u, log.Count("message " + std::to_string('shct')));

    // Without Command the key goes to the views instead.
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x62, NULL, 0));
    WaitForIdle();
    EXPECT_EQ(1u, log.Count("message " + std::to_string('shct')));
}

TEST_F(WindowTest, ShortcutLettersMatchEitherCase) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "letters", &log);
    window->AddShortcut('k', B_SHIFT_KEY, new BMessage('shct'));
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x43, NULL, B_COMMAND_KEY | B_SHIFT_KEY));
    WaitForIdle();
    EXPECT_EQ(1u, log.Count("message " + std::to_string('shct')));
}

TEST_F(WindowTest, RemovedShortcutNoLongerFires) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "removed", &log);
    window->AddShortcut('j', 0, new BMessage('shct'));
    window->RemoveShortcut('j', 0);
    EXPECT_FALSE(window->HasShortcut('j', 0));
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x42, NULL, B_COMMAND_KEY));
    WaitForIdle();
    EXPECT_EQ(0u, log.Count("message " + std::to_string('shct')));
}

TEST_F(WindowTest, CommandWAsksTheWindowToQuit) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "closable", &log);
    window->fAllowQuit = false;
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x28, NULL, B_COMMAND_KEY));
    WaitForIdle();
    EXPECT_EQ(1u, log.Count("quit requested"));
    window->fAllowQuit = true;
}

TEST_F(WindowTest, KeyMenuBarIsKept) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "menus", B_TITLED_WINDOW, 0);
    BMenuBar* bar = reinterpret_cast<BMenuBar*>(0x1000);
    window->SetKeyMenuBar(bar);
    EXPECT_EQ(bar, window->KeyMenuBar());
    window->SetKeyMenuBar(NULL);
    EXPECT_EQ(NULL, window->KeyMenuBar());
}

TEST_F(WindowTest, QuitFromAnotherThreadEndsTheWindowThread) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "quitter", B_TITLED_WINDOW, 0);
    window->Show();
    WaitForIdle();
    thread_id thread = window->Thread();
    ASSERT_GE(thread, 0);
    EXPECT_EQ(1, be_app->CountWindows());
    ASSERT_TRUE(window->Lock());
    window->Quit();
    EXPECT_EQ(0, be_app->CountWindows());
    EXPECT_TRUE(HeadlessTestApi::Windows().empty());
    EXPECT_EQ(NULL, BLooper::LooperForThread(thread));
}

TEST_F(WindowTest, QuitRequestedMessageQuitsWhenAllowed) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "asked", &log);
    window->Show();
    WaitForIdle();
    BMessenger messenger(window);
    thread_id thread = window->Thread();
    BMessage reply;
    ASSERT_EQ(B_OK, messenger.SendMessage(B_QUIT_REQUESTED, &reply));
    EXPECT_TRUE(reply.GetBool("result", false));
    // The window replies, then ends its thread.
    status_t result;
    wait_for_thread(thread, &result);
    EXPECT_FALSE(messenger.IsValid());
    EXPECT_EQ(0, be_app->CountWindows());
}

TEST_F(WindowTest, QuitRequestedRefusalKeepsTheWindow) {
    EventLog& log = fLog;
    LoggingWindow* window = new LoggingWindow(BRect(0, 0, 99, 99), "stubborn", &log);
    window->fAllowQuit = false;
    window->Show();
    WaitForIdle();
    BMessenger messenger(window);
    BMessage reply;
    ASSERT_EQ(B_OK, messenger.SendMessage(B_QUIT_REQUESTED, &reply));
    EXPECT_FALSE(reply.GetBool("result", true));
    EXPECT_TRUE(messenger.IsValid());
    EXPECT_EQ(1, be_app->CountWindows());
    window->fAllowQuit = true;
}

TEST_F(WindowTest, UnshownWindowQuitsAtOnce) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "never shown", B_TITLED_WINDOW, 0);
    EXPECT_EQ(1, be_app->CountWindows());
    window->Lock();
    window->Quit();
    EXPECT_EQ(0, be_app->CountWindows());
    EXPECT_TRUE(HeadlessTestApi::Windows().empty());
}

TEST_F(WindowTest, PulseReachesViewsThatNeedIt) {
    class PulsingView : public BView {
    public:
        PulsingView() : BView(BRect(0, 0, 9, 9), "pulse", B_FOLLOW_NONE, B_PULSE_NEEDED) {}
        void Pulse() override {
            std::lock_guard<std::mutex> lock(fLock);
            fPulses++;
            fCondition.notify_all();
        }
        bool WaitForPulses(int count) {
            std::unique_lock<std::mutex> lock(fLock);
            return fCondition.wait_for(lock, std::chrono::seconds(10),
                                       [&] { return fPulses >= count; });
        }

    private:
        std::mutex fLock;
        std::condition_variable fCondition;
        int fPulses = 0;
    };
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "pulsing", B_TITLED_WINDOW, 0);
    PulsingView* view = new PulsingView;
    window->AddChild(view);
    window->SetPulseRate(10000);
    window->Show();
    EXPECT_TRUE(view->WaitForPulses(3));
}

// The application runs in a thread of its own here, as main() would run it.
TEST(WindowWithRunningAppTest, ApplicationQuitRequestQuitsEveryWindow) {
    ASSERT_EQ(B_OK, HeadlessTestApi::Use());
    std::mutex lock;
    std::condition_variable condition;
    bool ready = false;
    thread_id windowThreads[2] = {-1, -1};
    std::promise<void> finished;
    std::future<void> done = finished.get_future();

    std::thread runner([&] {
        BApplication* application = new BApplication("application/x-vnd.glimrow-quit-test");
        for (int index = 0; index < 2; index++) {
            BWindow* window = new BWindow(BRect(0, 0, 99, 99), "quitting", B_TITLED_WINDOW, 0);
            window->Show();
            std::lock_guard<std::mutex> guard(lock);
            windowThreads[index] = window->Thread();
        }
        {
            std::lock_guard<std::mutex> guard(lock);
            ready = true;
        }
        condition.notify_all();
        application->Run();
        delete application;
        finished.set_value();
    });

    {
        std::unique_lock<std::mutex> guard(lock);
        ASSERT_TRUE(condition.wait_for(guard, std::chrono::seconds(10), [&] { return ready; }));
    }
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    ASSERT_EQ(B_OK, be_app_messenger.SendMessage(B_QUIT_REQUESTED));
    ASSERT_EQ(std::future_status::ready, done.wait_for(std::chrono::seconds(10)));
    runner.join();
    EXPECT_EQ(NULL, BLooper::LooperForThread(windowThreads[0]));
    EXPECT_EQ(NULL, BLooper::LooperForThread(windowThreads[1]));
    EXPECT_TRUE(HeadlessTestApi::Windows().empty());
}

// Work the application does is waited for too, when it runs in a thread of its own.
TEST(WindowWithRunningAppTest, WaitForIdleWaitsForTheRunningApplication) {
    ASSERT_EQ(B_OK, HeadlessTestApi::Use());
    EventLog log;
    class RelayApplication : public BApplication {
    public:
        RelayApplication() : BApplication("application/x-vnd.glimrow-relay-test") {}
        void MessageReceived(BMessage* message) override {
            if (message->what == 'ping' && fWindow != NULL) {
                // A chain: application, then window, then application again.
                snooze(20000);
                BMessenger(fWindow).SendMessage('pong');
                return;
            }
            if (message->what == 'back') {
                fLog->Add("back at the application");
                return;
            }
            BApplication::MessageReceived(message);
        }
        BWindow* fWindow = NULL;
        EventLog* fLog = NULL;
    };
    class RelayWindow : public BWindow {
    public:
        RelayWindow(EventLog* log)
            : BWindow(BRect(0, 0, 9, 9), "relay", B_TITLED_WINDOW, 0), fLog(log) {}
        void MessageReceived(BMessage* message) override {
            if (message->what == 'pong') {
                fLog->Add("pong at the window");
                snooze(20000);
                be_app_messenger.SendMessage('back');
                return;
            }
            BWindow::MessageReceived(message);
        }

    private:
        EventLog* fLog;
    };

    std::mutex lock;
    std::condition_variable condition;
    bool ready = false;
    std::promise<void> finished;
    std::future<void> done = finished.get_future();
    std::thread runner([&] {
        RelayApplication* application = new RelayApplication;
        application->fLog = &log;
        RelayWindow* window = new RelayWindow(&log);
        application->fWindow = window;
        window->Show();
        {
            std::lock_guard<std::mutex> guard(lock);
            ready = true;
        }
        condition.notify_all();
        application->Run();
        delete application;
        finished.set_value();
    });
    {
        std::unique_lock<std::mutex> guard(lock);
        ASSERT_TRUE(condition.wait_for(guard, std::chrono::seconds(10), [&] { return ready; }));
    }
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    ASSERT_EQ(B_OK, be_app_messenger.SendMessage('ping'));
    ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    std::vector<std::string> expected = {"pong at the window", "back at the application"};
    EXPECT_EQ(expected, log.Lines());

    ASSERT_EQ(B_OK, be_app_messenger.SendMessage(B_QUIT_REQUESTED));
    ASSERT_EQ(std::future_status::ready, done.wait_for(std::chrono::seconds(10)));
    runner.join();
}
