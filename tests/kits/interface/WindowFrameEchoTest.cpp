// A window moved or resized several times in a row hears back from the display
// server about each request. Only the latest one describes where it is: the
// echoes of older ones still reach the hooks but never put the window or its
// views back where they were.
#include "HeadlessAppTest.h"

#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::HeadlessTestApi;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

// Notes its size as it is while each FrameResized() runs.
class EchoWindow : public BWindow {
public:
    EchoWindow(BRect frame, EventLog* log)
        : BWindow(frame, "echo", B_TITLED_WINDOW, 0), fLog(log) {}

    void FrameResized(float width, float height) override {
        fLog->Add("bounds " + std::to_string((int)Bounds().Width()));
    }
    void FrameMoved(BPoint where) override {
        fLog->Add("frame at " + std::to_string((int)Frame().left));
    }

private:
    EventLog* fLog;
};

// Kept at the right edge of its window, as an alert's buttons are.
class RightView : public BView {
public:
    RightView(BRect frame, EventLog* log)
        : BView(frame, "right", B_FOLLOW_RIGHT | B_FOLLOW_TOP, B_FRAME_EVENTS), fLog(log) {}

    void FrameMoved(BPoint where) override { fLog->Add("view at " + std::to_string((int)where.x)); }

private:
    EventLog* fLog;
};

class WindowFrameEchoTest : public HeadlessAppTest {};

} // namespace

TEST_F(WindowFrameEchoTest, EchoOfAnEarlierResizeLeavesTheViewsInPlace) {
    EchoWindow* window = new EchoWindow(BRect(0, 0, 99, 99), &fLog);
    window->AddChild(new RightView(BRect(80, 10, 89, 19), &fLog));
    // Both before the thread runs, as an alert lays itself out.
    window->ResizeTo(199, 99);
    window->ResizeTo(299, 99);
    fLog.Clear();
    window->Show();
    WaitForIdle();

    // One move for each resize asked for, none for the echoes.
    EXPECT_EQ(1u, fLog.Count("view at 180"));
    EXPECT_EQ(1u, fLog.Count("view at 280"));
    EXPECT_EQ(0u, fLog.Count("bounds 199"));
    EXPECT_EQ(2u, fLog.Count("bounds 299"));
    ASSERT_TRUE(window->Lock());
    EXPECT_EQ(BRect(280, 10, 289, 19), window->FindView("right")->Frame());
    EXPECT_EQ(299, window->Bounds().Width());
    window->Unlock();
}

TEST_F(WindowFrameEchoTest, EchoOfAnEarlierMoveLeavesTheFrameWhereItIs) {
    EchoWindow* window = new EchoWindow(BRect(0, 0, 99, 99), &fLog);
    window->Show();
    WaitForIdle();
    fLog.Clear();
    ASSERT_TRUE(window->Lock());
    window->MoveTo(100, 50);
    window->MoveTo(300, 50);
    window->Unlock();
    WaitForIdle();

    EXPECT_EQ(0u, fLog.Count("frame at 100"));
    EXPECT_EQ(2u, fLog.Count("frame at 300"));
    EXPECT_EQ(BPoint(300, 50), window->Frame().LeftTop());
}

TEST_F(WindowFrameEchoTest, ResizeByTheServerAloneIsApplied) {
    EchoWindow* window = new EchoWindow(BRect(0, 0, 99, 99), &fLog);
    window->AddChild(new RightView(BRect(80, 10, 89, 19), &fLog));
    window->ResizeTo(149, 99);
    window->Show();
    WaitForIdle();
    fLog.Clear();

    // What a window manager does to a window: the server changes it on its own.
    BPrivate::WindowListing listing;
    ASSERT_TRUE(HeadlessTestApi::FindWindow(window, &listing));
    BPrivate::DisplayServer::Current()->ResizeWindow(listing.id, 249, 99);
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("bounds 249"));
    EXPECT_EQ(1u, fLog.Count("view at 230"));
    ASSERT_TRUE(window->Lock());
    EXPECT_EQ(249, window->Bounds().Width());
    window->Unlock();
}
