// The update cycle: invalidation, Draw() order and clipping, erasing with the
// view colour, transactions, and what reaches the screen, checked by pixels.
#include "HeadlessAppTest.h"
#include "interface/WindowPrivate.h"

#include <Region.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

const rgb_color kRed = {255, 0, 0, 255};
const rgb_color kGreen = {0, 255, 0, 255};
const rgb_color kBlue = {0, 0, 255, 255};
const rgb_color kWhite = {255, 255, 255, 255};
const rgb_color kBlack = {0, 0, 0, 255};

std::string rect_text(BRect rect) {
    return std::to_string((int)rect.left) + "," + std::to_string((int)rect.top) + "," +
           std::to_string((int)rect.right) + "," + std::to_string((int)rect.bottom);
}

// Fills its bounds with one colour and logs each Draw().
class ColorView : public BView {
public:
    ColorView(BRect frame, const char* name, rgb_color color, EventLog* log,
              uint32 resizingMode = B_FOLLOW_NONE, uint32 flags = B_WILL_DRAW)
        : BView(frame, name, resizingMode, flags), fColor(color), fLog(log) {}

    void Draw(BRect updateRect) override {
        fLog->Add(std::string("draw ") + Name());
        fLog->Add(std::string("rect ") + Name() + " " + rect_text(updateRect));
        SetHighColor(fColor);
        FillRect(Bounds());
    }

private:
    rgb_color fColor;
    EventLog* fLog;
};

class UpdateTest : public HeadlessAppTest {
protected:
    BWindow* MakeWindow(BRect frame = BRect(100, 100, 199, 199)) {
        BWindow* window = new BWindow(frame, "update", B_TITLED_WINDOW, 0);
        return window;
    }

    Capture CaptureOf(BWindow* window) {
        Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
        return capture;
    }

    uint32 Passes(BWindow* window) {
        window->Lock();
        uint32 passes = BPrivate::WindowPrivate(window).CountUpdatePasses();
        window->Unlock();
        return passes;
    }
};

} // namespace

TEST_F(UpdateTest, FirstShowDrawsEveryViewOnceParentsFirst) {
    BWindow* window = MakeWindow();
    ColorView* parent = new ColorView(BRect(0, 0, 59, 59), "parent", kRed, &fLog);
    ColorView* child = new ColorView(BRect(10, 10, 29, 29), "child", kGreen, &fLog);
    ColorView* sibling = new ColorView(BRect(70, 0, 89, 19), "sibling", kBlue, &fLog);
    parent->AddChild(child);
    window->AddChild(parent);
    window->AddChild(sibling);
    window->Show();
    WaitForIdle();

    std::vector<std::string> draws;
    for (const std::string& line : fLog.Lines()) {
        if (line.rfind("draw ", 0) == 0)
            draws.push_back(line);
    }
    ASSERT_EQ(3u, draws.size());
    EXPECT_EQ("draw parent", draws[0]);
    EXPECT_EQ("draw child", draws[1]);
    EXPECT_EQ("draw sibling", draws[2]);
}

TEST_F(UpdateTest, DrawnPixelsReachTheScreen) {
    BWindow* window = MakeWindow();
    window->AddChild(new ColorView(BRect(10, 20, 19, 29), "square", kRed, &fLog));
    window->Show();
    WaitForIdle();

    Capture capture = CaptureOf(window);
    EXPECT_EQ(100, capture.CountPixels(kRed));
    EXPECT_EQ(BRect(10, 20, 19, 29), capture.BoundsOf(kRed));

    Capture screen;
    ASSERT_EQ(B_OK, HeadlessTestApi::CaptureScreen(&screen));
    EXPECT_EQ(BRect(110, 120, 119, 129), screen.BoundsOf(kRed));
}

TEST_F(UpdateTest, ChildrenClipTheirParentsDrawing) {
    BWindow* window = MakeWindow();
    ColorView* parent = new ColorView(BRect(0, 0, 39, 39), "parent", kRed, &fLog);
    // The child draws nothing itself and has no view colour to erase with.
    BView* child = new BView(BRect(10, 10, 19, 19), "hole", B_FOLLOW_NONE, 0);
    child->SetViewColor(B_TRANSPARENT_COLOR);
    parent->AddChild(child);
    window->AddChild(parent);
    window->Show();
    WaitForIdle();

    Capture capture = CaptureOf(window);
    EXPECT_EQ(40 * 40 - 100, capture.CountPixels(kRed));
    EXPECT_EQ(kWhite, capture.ColorAt(15, 15));
}

TEST_F(UpdateTest, LaterSiblingsDrawOverEarlierOnes) {
    BWindow* window = MakeWindow();
    window->AddChild(new ColorView(BRect(0, 0, 19, 19), "below", kRed, &fLog));
    window->AddChild(new ColorView(BRect(10, 10, 29, 29), "above", kBlue, &fLog));
    window->Show();
    WaitForIdle();
    Capture capture = CaptureOf(window);
    EXPECT_EQ(kBlue, capture.ColorAt(15, 15));
    EXPECT_EQ(kRed, capture.ColorAt(5, 5));
}

TEST_F(UpdateTest, ViewColorErasesBeforeDraw) {
    BWindow* window = MakeWindow();
    BView* plain = new BView(BRect(0, 0, 9, 9), "plain", B_FOLLOW_NONE, 0);
    plain->SetViewColor(kGreen);
    window->AddChild(plain);
    window->Show();
    WaitForIdle();
    EXPECT_EQ(100, CaptureOf(window).CountPixels(kGreen));
}

TEST_F(UpdateTest, InvalidatesInOneTurnGiveOneDraw) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(0, 0, 49, 49), "view", kRed, &fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    fLog.Clear();

    window->Lock();
    view->Invalidate(BRect(0, 0, 4, 4));
    view->Invalidate(BRect(10, 10, 14, 14));
    view->Invalidate();
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("draw view"));
}

TEST_F(UpdateTest, UpdateRectCoversOnlyTheInvalidArea) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(10, 10, 59, 59), "view", kRed, &fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    fLog.Clear();

    window->Lock();
    view->Invalidate(BRect(5, 6, 7, 8));
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("rect view 5,6,7,8"));
}

TEST_F(UpdateTest, DrawIsClippedToTheUpdateRegion) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(0, 0, 49, 49), "view", kRed, &fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();

    // Paint the window green behind the view's back, then let only a corner
    // of the view redraw.
    window->Lock();
    view->SetHighColor(kGreen);
    view->FillRect(view->Bounds());
    view->SetHighColor(kRed);
    window->Unlock();
    window->Flush();
    WaitForIdle();
    EXPECT_EQ(2500, CaptureOf(window).CountPixels(kGreen));

    window->Lock();
    view->Invalidate(BRect(0, 0, 9, 9));
    window->Unlock();
    WaitForIdle();
    Capture capture = CaptureOf(window);
    EXPECT_EQ(100, capture.CountPixels(kRed));
    EXPECT_EQ(2400, capture.CountPixels(kGreen));
}

TEST_F(UpdateTest, TransactionDrawsOnceWhenItEnds) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(0, 0, 49, 49), "view", kRed, &fLog, B_FOLLOW_NONE,
                                    B_WILL_DRAW | B_FULL_UPDATE_ON_RESIZE);
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    uint32 before = Passes(window);
    fLog.Clear();

    window->Lock();
    window->BeginViewTransaction();
    view->ResizeTo(60, 60);
    view->MoveTo(5, 5);
    view->Invalidate();
    window->ResizeTo(150, 150);
    EXPECT_TRUE(window->InViewTransaction());
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Count("draw view"));

    window->Lock();
    window->EndViewTransaction();
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("draw view"));
    EXPECT_EQ(before + 1, Passes(window));
    EXPECT_EQ(BRect(5, 5, 65, 65), CaptureOf(window).BoundsOf(kRed));
}

TEST_F(UpdateTest, DisabledUpdatesHoldBackThePresentation) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(0, 0, 9, 9), "view", kRed, &fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();

    window->Lock();
    window->DisableUpdates();
    view->SetHighColor(kBlue);
    view->FillRect(view->Bounds());
    window->Unlock();
    window->Flush();
    WaitForIdle();
    EXPECT_EQ(0, CaptureOf(window).CountPixels(kBlue));

    window->Lock();
    window->EnableUpdates();
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(100, CaptureOf(window).CountPixels(kBlue));
}

TEST_F(UpdateTest, DrawingOutsideAnUpdateShowsOnFlush) {
    BWindow* window = MakeWindow();
    BView* view = new BView(BRect(0, 0, 19, 19), "canvas", B_FOLLOW_NONE, B_WILL_DRAW);
    window->AddChild(view);
    window->Show();
    WaitForIdle();

    window->Lock();
    view->SetHighColor(kBlack);
    view->StrokeLine(BPoint(0, 0), BPoint(3, 0));
    view->Flush();
    window->Unlock();
    Capture capture = CaptureOf(window);
    EXPECT_EQ(4, capture.CountPixels(kBlack));
    EXPECT_EQ(BRect(0, 0, 3, 0), capture.BoundsOf(kBlack));
}

TEST_F(UpdateTest, ConstrainedClippingLimitsDrawing) {
    BWindow* window = MakeWindow();
    BView* view = new BView(BRect(10, 10, 49, 49), "clipped", B_FOLLOW_NONE, B_WILL_DRAW);
    window->AddChild(view);
    window->Show();
    WaitForIdle();

    window->Lock();
    BRegion region(BRect(0, 0, 4, 4));
    region.Include(BRect(20, 20, 21, 21));
    view->ConstrainClippingRegion(&region);
    BRegion clipping;
    view->GetClippingRegion(&clipping);
    EXPECT_EQ(BRect(0, 0, 21, 21), clipping.Frame());
    EXPECT_TRUE(clipping.Contains(BPoint(4, 4)));
    EXPECT_TRUE(clipping.Contains(BPoint(21, 21)));
    EXPECT_FALSE(clipping.Contains(BPoint(10, 10)));
    view->SetHighColor(kRed);
    view->FillRect(view->Bounds());
    view->ConstrainClippingRegion(NULL);
    view->Flush();
    window->Unlock();

    Capture capture = CaptureOf(window);
    EXPECT_EQ(25 + 4, capture.CountPixels(kRed));
    EXPECT_EQ(BRect(10, 10, 31, 31), capture.BoundsOf(kRed));
}

TEST_F(UpdateTest, PushStateKeepsTheOuterClipping) {
    BWindow* window = MakeWindow();
    BView* view = new BView(BRect(0, 0, 49, 49), "stack", B_FOLLOW_NONE, B_WILL_DRAW);
    window->AddChild(view);
    window->Show();
    WaitForIdle();

    window->Lock();
    BRegion outer(BRect(0, 0, 9, 9));
    view->ConstrainClippingRegion(&outer);
    view->SetHighColor(kRed);
    view->PushState();
    EXPECT_EQ(kRed, view->HighColor());
    view->SetHighColor(kBlue);
    BRegion inner(BRect(5, 5, 19, 19));
    view->ConstrainClippingRegion(&inner);
    view->FillRect(view->Bounds());
    view->PopState();
    EXPECT_EQ(kRed, view->HighColor());
    view->Flush();
    window->Unlock();

    Capture capture = CaptureOf(window);
    EXPECT_EQ(25, capture.CountPixels(kBlue));
    EXPECT_EQ(BRect(5, 5, 9, 9), capture.BoundsOf(kBlue));
}

TEST_F(UpdateTest, HiddenViewIsNotDrawn) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(0, 0, 9, 9), "hidden", kRed, &fLog);
    view->Hide();
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    EXPECT_EQ(0u, fLog.Count("draw hidden"));
    EXPECT_EQ(0, CaptureOf(window).CountPixels(kRed));

    window->Lock();
    view->Show();
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(1u, fLog.Count("draw hidden"));
    EXPECT_EQ(100, CaptureOf(window).CountPixels(kRed));
}

TEST_F(UpdateTest, RemovingAViewRedrawsWhatWasBehindIt) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(0, 0, 9, 9), "gone", kRed, &fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    EXPECT_EQ(100, CaptureOf(window).CountPixels(kRed));

    window->Lock();
    view->RemoveSelf();
    window->Unlock();
    delete view;
    WaitForIdle();
    EXPECT_EQ(0, CaptureOf(window).CountPixels(kRed));
}

TEST_F(UpdateTest, ScrollingShiftsWhatIsDrawn) {
    BWindow* window = MakeWindow();
    class ScrolledView : public BView {
    public:
        ScrolledView() : BView(BRect(0, 0, 49, 49), "scrolled", B_FOLLOW_NONE, B_WILL_DRAW) {}
        void Draw(BRect) override {
            SetHighColor(kRed);
            FillRect(BRect(20, 20, 29, 29));
        }
    };
    ScrolledView* view = new ScrolledView;
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    EXPECT_EQ(BRect(20, 20, 29, 29), CaptureOf(window).BoundsOf(kRed));

    window->Lock();
    view->ScrollTo(10, 5);
    EXPECT_EQ(BRect(10, 5, 59, 54), view->Bounds());
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(BRect(10, 15, 19, 24), CaptureOf(window).BoundsOf(kRed));
}

TEST_F(UpdateTest, UpdateIfNeededDrawsAtOnceInTheWindowThread) {
    BWindow* window = MakeWindow();
    class Trigger : public BView {
    public:
        Trigger(EventLog* log)
            : BView(BRect(0, 0, 9, 9), "trigger", B_FOLLOW_NONE, B_WILL_DRAW), fLog(log) {}
        void Draw(BRect) override { fLog->Add("draw"); }
        void MessageReceived(BMessage* message) override {
            if (message->what != 'upd!') {
                BView::MessageReceived(message);
                return;
            }
            Invalidate();
            Window()->UpdateIfNeeded();
            fLog->Add("after update");
        }

    private:
        EventLog* fLog;
    };
    Trigger* view = new Trigger(&fLog);
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    fLog.Clear();
    window->PostMessage('upd!', view);
    WaitForIdle();
    std::vector<std::string> lines = fLog.Lines();
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ("draw", lines[0]);
    EXPECT_EQ("after update", lines[1]);
}

TEST_F(UpdateTest, GrowingAWindowDrawsTheNewArea) {
    BWindow* window = MakeWindow();
    ColorView* view = new ColorView(BRect(0, 0, 99, 99), "all", kGreen, &fLog, B_FOLLOW_ALL_SIDES);
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    window->Lock();
    window->ResizeTo(149, 119);
    EXPECT_EQ(BRect(0, 0, 149, 119), view->Frame());
    window->Unlock();
    WaitForIdle();
    EXPECT_EQ(150 * 120, CaptureOf(window).CountPixels(kGreen));
}

TEST_F(UpdateTest, DrawAfterChildrenPaintsOverTheChildren) {
    class FramingView : public BView {
    public:
        FramingView()
            : BView(BRect(0, 0, 39, 39), "framing", B_FOLLOW_NONE,
                    B_WILL_DRAW | B_DRAW_ON_CHILDREN) {}
        void DrawAfterChildren(BRect) override {
            SetHighColor(kBlue);
            StrokeLine(BPoint(0, 20), BPoint(39, 20));
        }
    };
    BWindow* window = MakeWindow();
    FramingView* parent = new FramingView;
    parent->AddChild(new ColorView(BRect(10, 10, 29, 29), "child", kRed, &fLog));
    window->AddChild(parent);
    window->Show();
    WaitForIdle();
    Capture capture = CaptureOf(window);
    EXPECT_EQ(40, capture.CountPixels(kBlue));
    EXPECT_EQ(kBlue, capture.ColorAt(15, 20));
    EXPECT_EQ(kRed, capture.ColorAt(15, 21));
}
