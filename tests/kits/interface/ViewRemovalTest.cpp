// Views leaving a window while the window still routes input: a removed view
// gets nothing more, even when it asked for pointer events wherever the pointer is.
#include "HeadlessAppTest.h"

#include <InterfaceDefs.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::HeadlessTestApi;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

// Asks for every pointer event while a button is down, as a view that tracks a drag.
class TrackingView : public BView {
public:
    TrackingView(BRect frame, const char* name, EventLog* log)
        : BView(frame, name, B_FOLLOW_NONE, 0), fLog(log) {}

    void MouseDown(BPoint where) override {
        fLog->Add(std::string("down ") + Name());
        SetMouseEventMask(B_POINTER_EVENTS);
    }
    void MouseUp(BPoint where) override { fLog->Add(std::string("up ") + Name()); }
    void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override {
        fLog->Add(std::string("moved ") + Name());
    }

private:
    EventLog* fLog;
};

class ViewRemovalTest : public HeadlessAppTest {};

} // namespace

TEST_F(ViewRemovalTest, RemovedTrackingViewGetsNoMouseUp) {
    BWindow* window = new BWindow(BRect(0, 0, 199, 99), "removal", B_TITLED_WINDOW, 0);
    TrackingView* view = new TrackingView(BRect(10, 10, 49, 49), "tracker", &fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(BPoint(20, 20)));
    WaitForIdle();
    ASSERT_EQ(1u, fLog.Count("down tracker"));
    fLog.Clear();

    ASSERT_TRUE(window->Lock());
    EXPECT_TRUE(view->RemoveSelf());
    window->Unlock();

    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BPoint(150, 50)));
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(BPoint(150, 50)));
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Count("up tracker"));
    EXPECT_EQ(0u, fLog.Count("moved tracker"));
    delete view;
}

TEST_F(ViewRemovalTest, MouseUpAfterDeletingRemovedTrackingViewIsHandled) {
    BWindow* window = new BWindow(BRect(0, 0, 199, 99), "removal", B_TITLED_WINDOW, 0);
    TrackingView* view = new TrackingView(BRect(10, 10, 49, 49), "tracker", &fLog);
    TrackingView* other = new TrackingView(BRect(100, 10, 189, 89), "other", &fLog);
    window->AddChild(view);
    window->AddChild(other);
    window->Show();
    WaitForIdle();

    ASSERT_EQ(B_OK, HeadlessTestApi::PressMouse(BPoint(20, 20)));
    WaitForIdle();
    ASSERT_TRUE(window->Lock());
    view->RemoveSelf();
    delete view;
    window->Unlock();

    // The release goes through the window's list of pointer listeners, which
    // must no longer hold the deleted view.
    ASSERT_EQ(B_OK, HeadlessTestApi::ReleaseMouse(BPoint(150, 50)));
    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(150, 50)));
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("down other"));
    EXPECT_EQ(2u, fLog.Count("up other"));
}

TEST_F(ViewRemovalTest, RemovedPermanentListenerLeavesThePointerListeners) {
    BWindow* window = new BWindow(BRect(0, 0, 199, 99), "removal", B_TITLED_WINDOW, 0);
    TrackingView* view = new TrackingView(BRect(10, 10, 49, 49), "listener", &fLog);
    window->AddChild(view);
    ASSERT_TRUE(window->Lock());
    view->SetEventMask(B_POINTER_EVENTS);
    window->Unlock();
    window->Show();
    WaitForIdle();

    ASSERT_TRUE(window->Lock());
    view->RemoveSelf();
    delete view;
    window->Unlock();

    ASSERT_EQ(B_OK, HeadlessTestApi::Click(BPoint(150, 50)));
    ASSERT_EQ(B_OK, HeadlessTestApi::MoveMouse(BPoint(160, 60)));
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Count("down listener"));
    EXPECT_EQ(0u, fLog.Count("moved listener"));
}
