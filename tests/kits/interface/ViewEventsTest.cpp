// Input reaching views: routing of pointer events between windows and views,
// click counts, transits, event masks, GetMouse() tracking loops, keys, focus
// and keyboard navigation.
#include "HeadlessAppTest.h"
#include "interface/WindowPrivate.h"

#include <InterfaceDefs.h>
#include <Message.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::HeadlessTestApi;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

std::string point_text(BPoint point) {
    return std::to_string((int)point.x) + "," + std::to_string((int)point.y);
}

const char* transit_name(uint32 transit) {
    switch (transit) {
    case B_ENTERED_VIEW:
        return "entered";
    case B_INSIDE_VIEW:
        return "inside";
    case B_EXITED_VIEW:
        return "exited";
    default:
        return "outside";
    }
}

class InputView : public BView {
public:
    InputView(BRect frame, const char* name, EventLog* log, uint32 flags = 0)
        : BView(frame, name, B_FOLLOW_NONE, flags), fLog(log) {}

    void MouseDown(BPoint where) override {
        BMessage* message = Window()->CurrentMessage();
        fLog->Add(std::string("down ") + Name() + " " + point_text(where) + " clicks " +
                  std::to_string(message->GetInt32("clicks", 0)) + " buttons " +
                  std::to_string(message->GetInt32("buttons", 0)) + " modifiers " +
                  std::to_string(message->GetInt32("modifiers", 0)));
    }
    void MouseUp(BPoint where) override {
        fLog->Add(std::string("up ") + Name() + " " + point_text(where));
    }
    void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override {
        fLog->Add(std::string("moved ") + Name() + " " + point_text(where) + " " +
                  transit_name(transit));
    }
    void KeyDown(const char* bytes, int32 numBytes) override {
        BMessage* message = Window()->CurrentMessage();
        fLog->Add(std::string("key ") + Name() + " " + std::string(bytes, numBytes) + " code " +
                  std::to_string(message->GetInt32("key", 0)) + " raw " +
                  std::to_string(message->GetInt32("raw_char", 0)));
        BView::KeyDown(bytes, numBytes);
    }
    void KeyUp(const char* bytes, int32 numBytes) override {
        fLog->Add(std::string("key up ") + Name() + " " + std::string(bytes, numBytes));
    }
    void MessageReceived(BMessage* message) override {
        if (message->what == B_MOUSE_WHEEL_CHANGED) {
            fLog->Add(std::string("wheel ") + Name() + " " +
                      std::to_string((int)message->GetFloat("be:wheel_delta_y", 0)));
            return;
        }
        if (message->what == B_MODIFIERS_CHANGED) {
            fLog->Add(std::string("modifiers ") + Name() + " " +
                      std::to_string(message->GetInt32("modifiers", 0)));
            return;
        }
        BView::MessageReceived(message);
    }

protected:
    EventLog* fLog;
};

class ViewEventsTest : public HeadlessAppTest {
protected:
    BWindow* MakeWindow(BRect frame, const char* title = "events", uint32 flags = 0) {
        return new BWindow(frame, title, B_TITLED_WINDOW, flags);
    }

    std::vector<std::string> LinesStartingWith(const std::string& prefix) {
        std::vector<std::string> lines;
        for (const std::string& line : fLog.Lines()) {
            if (line.rfind(prefix, 0) == 0)
                lines.push_back(line);
        }
        return lines;
    }
};

} // namespace

TEST_F(ViewEventsTest, ClickReachesTheViewUnderThePointerInItsCoordinates) {
    BWindow* window = MakeWindow(BRect(100, 100, 299, 199));
    InputView* outer = new InputView(BRect(10, 10, 109, 89), "outer", &fLog);
    InputView* inner = new InputView(BRect(20, 20, 39, 39), "inner", &fLog);
    outer->AddChild(inner);
    window->AddChild(outer);
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(135, 136)));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(115, 115)));
    WaitForIdle();
    std::vector<std::string> expected = {"down inner 5,6 clicks 1 buttons 1 modifiers 0",
                                         "down outer 5,5 clicks 1 buttons 1 modifiers 0"};
    EXPECT_EQ(expected, LinesStartingWith("down"));
    std::vector<std::string> ups = {"up inner 5,6", "up outer 5,5"};
    EXPECT_EQ(ups, LinesStartingWith("up"));
}

TEST_F(ViewEventsTest, ClickGoesToTheTopmostWindow) {
    BWindow* below = MakeWindow(BRect(0, 0, 99, 99), "below");
    below->AddChild(new InputView(BRect(0, 0, 99, 99), "lower", &fLog));
    BWindow* above = MakeWindow(BRect(50, 50, 149, 149), "above");
    above->AddChild(new InputView(BRect(0, 0, 99, 99), "upper", &fLog));
    below->Show();
    above->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(60, 60)));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(10, 10), B_SECONDARY_MOUSE_BUTTON));
    WaitForIdle();
    std::vector<std::string> expected = {"down upper 10,10 clicks 1 buttons 1 modifiers 0"};
    // The lower window was inactive and does not take a first click.
    EXPECT_EQ(expected, LinesStartingWith("down"));
    EXPECT_TRUE(below->IsActive());
}

TEST_F(ViewEventsTest, WindowAcceptingFirstClickGetsIt) {
    BWindow* below = MakeWindow(BRect(0, 0, 99, 99), "below", B_WILL_ACCEPT_FIRST_CLICK);
    below->AddChild(new InputView(BRect(0, 0, 99, 99), "lower", &fLog));
    BWindow* above = MakeWindow(BRect(200, 0, 299, 99), "above");
    below->Show();
    above->Show();
    WaitForIdle();
    EXPECT_FALSE(below->IsActive());
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(10, 10)));
    WaitForIdle();
    EXPECT_EQ(1u, LinesStartingWith("down lower").size());
    EXPECT_TRUE(below->IsActive());
}

TEST_F(ViewEventsTest, ClicksAreCountedAndCarryModifiers) {
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    window->AddChild(new InputView(BRect(0, 0, 99, 99), "target", &fLog));
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(5, 5), B_PRIMARY_MOUSE_BUTTON, 2));
    ASSERT_EQ(B_OK,
              HeadlessTestApi::Click(BPoint(50, 50), B_SECONDARY_MOUSE_BUTTON, 1, B_CONTROL_KEY));
    WaitForIdle();
    std::vector<std::string> downs = LinesStartingWith("down");
    ASSERT_EQ(3u, downs.size());
    EXPECT_EQ("down target 5,5 clicks 1 buttons 1 modifiers 0", downs[0]);
    EXPECT_EQ("down target 5,5 clicks 2 buttons 1 modifiers 0", downs[1]);
    EXPECT_EQ("down target 50,50 clicks 1 buttons 2 modifiers " +
                  std::to_string(B_CONTROL_KEY | B_LEFT_CONTROL_KEY),
              downs[2]);
    EXPECT_EQ(0u, HeadlessTestApi::Modifiers());
}

TEST_F(ViewEventsTest, QuickSecondPressIsADoubleClick) {
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    window->AddChild(new InputView(BRect(0, 0, 99, 99), "target", &fLog));
    window->Show();
    WaitForIdle();
    // Counted by the server: the two presses come well within the click speed.
    HeadlessTestApi::PressMouse(BPoint(5, 5));
    HeadlessTestApi::ReleaseMouse(BPoint(5, 5));
    HeadlessTestApi::PressMouse(BPoint(6, 5));
    HeadlessTestApi::ReleaseMouse(BPoint(6, 5));
    HeadlessTestApi::PressMouse(BPoint(60, 60));
    HeadlessTestApi::ReleaseMouse(BPoint(60, 60));
    WaitForIdle();
    std::vector<std::string> downs = LinesStartingWith("down");
    ASSERT_EQ(3u, downs.size());
    EXPECT_NE(std::string::npos, downs[0].find("clicks 1"));
    EXPECT_NE(std::string::npos, downs[1].find("clicks 2"));
    EXPECT_NE(std::string::npos, downs[2].find("clicks 1"));
}

TEST_F(ViewEventsTest, MovesReportEnteredInsideAndExited) {
    BWindow* window = MakeWindow(BRect(0, 0, 199, 99));
    window->AddChild(new InputView(BRect(10, 10, 49, 49), "left", &fLog));
    window->AddChild(new InputView(BRect(100, 10, 139, 49), "right", &fLog));
    window->Show();
    WaitForIdle();

    HeadlessTestApi::MoveMouse(BPoint(20, 20));
    HeadlessTestApi::MoveMouse(BPoint(21, 22));
    HeadlessTestApi::MoveMouse(BPoint(110, 20));
    HeadlessTestApi::MoveMouse(BPoint(500, 500));
    WaitForIdle();
    std::vector<std::string> expected = {"moved left 10,10 entered", "moved left 11,12 inside",
                                         "moved left 100,10 exited", "moved right 10,10 entered",
                                         "moved right 400,490 exited"};
    EXPECT_EQ(expected, LinesStartingWith("moved"));
}

TEST_F(ViewEventsTest, MouseEventMaskKeepsMovesComingOutsideTheView) {
    class TrackingView : public InputView {
    public:
        using InputView::InputView;
        void MouseDown(BPoint where) override {
            InputView::MouseDown(where);
            fLog->Add(SetMouseEventMask(B_POINTER_EVENTS) == B_OK ? "mask set" : "mask refused");
        }
    };
    BWindow* window = MakeWindow(BRect(0, 0, 199, 99));
    TrackingView* view = new TrackingView(BRect(10, 10, 49, 49), "tracker", &fLog);
    window->AddChild(view);
    window->AddChild(new InputView(BRect(100, 10, 139, 49), "other", &fLog));
    window->Show();
    WaitForIdle();

    window->Lock();
    EXPECT_EQ(B_ERROR, view->SetMouseEventMask(B_POINTER_EVENTS));
    window->Unlock();

    HeadlessTestApi::PressMouse(BPoint(20, 20));
    WaitForIdle();
    HeadlessTestApi::MoveMouse(BPoint(110, 20));
    HeadlessTestApi::ReleaseMouse(BPoint(110, 20));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("mask set"));
    EXPECT_EQ(1u, fLog.Count("moved tracker 100,10 exited"));
    EXPECT_EQ(1u, fLog.Count("up tracker 100,10"));
    EXPECT_EQ(1u, fLog.Count("up other 10,10"));

    // Once released, the mask is gone.
    fLog.Clear();
    HeadlessTestApi::MoveMouse(BPoint(120, 20));
    WaitForIdle();
    EXPECT_TRUE(LinesStartingWith("moved tracker").empty());
}

TEST_F(ViewEventsTest, ImplicitGrabSendsMovesToThePressedWindow) {
    BWindow* first = MakeWindow(BRect(0, 0, 99, 99), "first");
    first->AddChild(new InputView(BRect(0, 0, 99, 99), "pressed", &fLog));
    BWindow* second = MakeWindow(BRect(200, 0, 299, 99), "second", B_WILL_ACCEPT_FIRST_CLICK);
    second->AddChild(new InputView(BRect(0, 0, 99, 99), "passed", &fLog));
    second->Show();
    first->Show();
    WaitForIdle();

    HeadlessTestApi::PressMouse(BPoint(50, 50));
    HeadlessTestApi::MoveMouse(BPoint(250, 50));
    HeadlessTestApi::ReleaseMouse(BPoint(250, 50));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("moved pressed 250,50 exited"));
    // Released over no view of its window, and no view asked for the release.
    EXPECT_TRUE(LinesStartingWith("up pressed").empty());
    EXPECT_TRUE(LinesStartingWith("moved passed").empty());
    EXPECT_TRUE(LinesStartingWith("up passed").empty());
}

TEST_F(ViewEventsTest, GetMouseLoopTakesTheReleaseFromTheQueue) {
    class LoopView : public InputView {
    public:
        using InputView::InputView;
        void MouseDown(BPoint where) override {
            InputView::MouseDown(where);
            uint32 buttons = 1;
            BPoint point;
            int rounds = 0;
            while (buttons != 0 && rounds++ < 1000) {
                GetMouse(&point, &buttons, true);
                fLog->Add("tracked " + point_text(point) + " " + std::to_string(buttons));
            }
        }
    };
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    LoopView* view = new LoopView(BRect(0, 0, 99, 99), "loop", &fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();

    // Hold the window so the whole gesture is queued before MouseDown() runs.
    window->Lock();
    HeadlessTestApi::PressMouse(BPoint(10, 10));
    HeadlessTestApi::MoveMouse(BPoint(20, 10));
    HeadlessTestApi::MoveMouse(BPoint(30, 10));
    HeadlessTestApi::MoveMouse(BPoint(40, 10));
    HeadlessTestApi::ReleaseMouse(BPoint(40, 10));
    window->Unlock();
    WaitForIdle();
    std::vector<std::string> expected = {"tracked 20,10 1", "tracked 30,10 1", "tracked 40,10 1",
                                         "tracked 40,10 0"};
    EXPECT_EQ(expected, LinesStartingWith("tracked"));
    // MouseUp() never comes: the loop took the release.
    EXPECT_TRUE(LinesStartingWith("up").empty());
    std::vector<std::string> moves = {"moved loop 10,10 entered"};
    EXPECT_EQ(moves, LinesStartingWith("moved"));
}

TEST_F(ViewEventsTest, GetMouseWithoutTheQueueLeavesMessagesForLater) {
    class PollView : public InputView {
    public:
        using InputView::InputView;
        void MouseDown(BPoint where) override {
            InputView::MouseDown(where);
            uint32 buttons = 1;
            BPoint point;
            GetMouse(&point, &buttons, false);
            fLog->Add("polled " + point_text(point) + " " + std::to_string(buttons));
        }
    };
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    window->AddChild(new PollView(BRect(0, 0, 99, 99), "poll", &fLog));
    window->Show();
    WaitForIdle();

    window->Lock();
    HeadlessTestApi::PressMouse(BPoint(10, 10));
    HeadlessTestApi::ReleaseMouse(BPoint(40, 10));
    window->Unlock();
    WaitForIdle();
    // The server already knows the buttons are up; the release still arrives.
    EXPECT_EQ(1u, fLog.Count("polled 40,10 0"));
    EXPECT_EQ(1u, fLog.Count("up poll 40,10"));
}

TEST_F(ViewEventsTest, KeysGoToTheFocusView) {
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    InputView* first = new InputView(BRect(0, 0, 9, 9), "first", &fLog);
    InputView* second = new InputView(BRect(10, 0, 19, 9), "second", &fLog);
    window->AddChild(first);
    window->AddChild(second);
    second->MakeFocus();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x3c));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x3c, NULL, B_SHIFT_KEY));
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x12, "\xc3\xa9"));
    WaitForIdle();
    std::vector<std::string> expected = {"key second a code 60 raw 97",
                                         "key second A code 60 raw 97",
                                         "key second \xc3\xa9 code 18 raw 49"};
    EXPECT_EQ(expected, LinesStartingWith("key second"));
    EXPECT_EQ(3u, LinesStartingWith("key up second").size());
    EXPECT_TRUE(LinesStartingWith("key first").empty());
}

TEST_F(ViewEventsTest, KeyMessageCarriesTheKeyStates) {
    class StatesView : public InputView {
    public:
        using InputView::InputView;
        void KeyDown(const char* bytes, int32 numBytes) override {
            const void* data;
            ssize_t size;
            BMessage* message = Window()->CurrentMessage();
            if (message->FindData("states", B_UINT8_TYPE, &data, &size) == B_OK && size == 16) {
                const uint8* states = (const uint8*)data;
                fLog->Add("states " + std::to_string(states[9]) + " " + std::to_string(states[11]) +
                          " bytes " + std::to_string(message->GetInt8("byte", 0)));
            }
        }
    };
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    StatesView* view = new StatesView(BRect(0, 0, 9, 9), "states", &fLog);
    window->AddChild(view);
    view->MakeFocus();
    window->Show();
    WaitForIdle();

    // Left Shift (0x4b: byte 9, 0x10) held while Space (0x5e: byte 11, 0x02) goes down.
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(0x4b));
    ASSERT_EQ(B_OK, HeadlessTestApi::PressKey(0x5e));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("states 16 2 bytes 32"));
    EXPECT_EQ(1u, fLog.Count("modifiers states " + std::to_string(B_SHIFT_KEY | B_LEFT_SHIFT_KEY)));
    key_info info;
    ASSERT_EQ(B_OK, get_key_info(&info));
    EXPECT_EQ(0x10, info.key_states[9]);
    EXPECT_EQ(0x02, info.key_states[11]);
    EXPECT_EQ((uint32)(B_SHIFT_KEY | B_LEFT_SHIFT_KEY), modifiers());
    HeadlessTestApi::ReleaseKey(0x5e);
    HeadlessTestApi::ReleaseKey(0x4b);
    ASSERT_EQ(B_OK, get_key_info(&info));
    EXPECT_EQ(0, info.key_states[9]);
    EXPECT_EQ(0u, modifiers());
}

TEST_F(ViewEventsTest, KeysWithoutFocusReachNoView) {
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    window->AddChild(new InputView(BRect(0, 0, 9, 9), "unfocused", &fLog));
    window->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x3c));
    WaitForIdle();
    EXPECT_TRUE(LinesStartingWith("key").empty());
}

TEST_F(ViewEventsTest, KeysGoToTheActiveWindowOnly) {
    BWindow* first = MakeWindow(BRect(0, 0, 99, 99), "first");
    InputView* firstView = new InputView(BRect(0, 0, 9, 9), "first", &fLog);
    first->AddChild(firstView);
    firstView->MakeFocus();
    BWindow* second = MakeWindow(BRect(200, 0, 299, 99), "second");
    InputView* secondView = new InputView(BRect(0, 0, 9, 9), "second", &fLog);
    second->AddChild(secondView);
    secondView->MakeFocus();
    first->Show();
    second->Show();
    WaitForIdle();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x3c));
    WaitForIdle();
    EXPECT_EQ(1u, LinesStartingWith("key second").size());
    EXPECT_TRUE(LinesStartingWith("key first").empty());
}

TEST_F(ViewEventsTest, TabMovesTheFocusToTheNextNavigableView) {
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    InputView* first = new InputView(BRect(0, 0, 9, 9), "first", &fLog, B_NAVIGABLE);
    InputView* plain = new InputView(BRect(10, 0, 19, 9), "plain", &fLog);
    InputView* third = new InputView(BRect(20, 0, 29, 9), "third", &fLog, B_NAVIGABLE);
    window->AddChild(first);
    window->AddChild(plain);
    window->AddChild(third);
    first->MakeFocus();
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x26));
    WaitForIdle();
    window->Lock();
    EXPECT_EQ(third, window->CurrentFocus());
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x26));
    WaitForIdle();
    window->Lock();
    EXPECT_EQ(first, window->CurrentFocus());
    window->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::TypeKey(0x26, NULL, B_SHIFT_KEY));
    WaitForIdle();
    window->Lock();
    EXPECT_EQ(third, window->CurrentFocus());
    window->Unlock();
}

TEST_F(ViewEventsTest, WheelReachesTheViewUnderThePointer) {
    BWindow* window = MakeWindow(BRect(0, 0, 99, 99));
    window->AddChild(new InputView(BRect(0, 0, 49, 99), "left", &fLog));
    window->AddChild(new InputView(BRect(50, 0, 99, 99), "right", &fLog));
    window->Show();
    WaitForIdle();
    HeadlessTestApi::MoveMouse(BPoint(70, 10));
    ASSERT_EQ(B_OK, HeadlessTestApi::ScrollWheel(0, 3));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("wheel right 3"));
    EXPECT_EQ(0u, fLog.Count("wheel left 3"));
}

TEST_F(ViewEventsTest, PointerGrabSendsEverythingToTheGrabbingWindow) {
    BWindow* below = MakeWindow(BRect(0, 0, 99, 99), "below");
    below->AddChild(new InputView(BRect(0, 0, 99, 99), "below", &fLog));
    BWindow* menu = new BWindow(BRect(200, 200, 249, 249), "menu", B_BORDERED_WINDOW_LOOK,
                                BPrivate::kMenuWindowFeel, 0);
    InputView* menuView = new InputView(BRect(0, 0, 49, 49), "menu", &fLog);
    menuView->SetEventMask(B_POINTER_EVENTS);
    menu->AddChild(menuView);
    below->Show();
    menu->Show();
    WaitForIdle();
    menu->Lock();
    ASSERT_EQ(B_OK, BPrivate::WindowPrivate(menu).GrabPointer());
    menu->Unlock();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(10, 10)));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("down menu -190,-190 clicks 1 buttons 1 modifiers 0"));
    EXPECT_TRUE(LinesStartingWith("down below").empty());
    // Menus never take the focus.
    EXPECT_TRUE(below->IsActive());

    menu->Lock();
    BPrivate::WindowPrivate(menu).UngrabPointer();
    menu->Unlock();
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(10, 10)));
    WaitForIdle();
    EXPECT_EQ(1u, LinesStartingWith("down below").size());
}
