// BView: the tree, the attach and detach hooks, coordinates, resizing modes,
// focus and the lock check.
#include "HeadlessAppTest.h"

#include <Font.h>
#include <Region.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <string>

using BPrivate::HeadlessTestApi;
using testing_support::EventLog;
using testing_support::HeadlessAppTest;

namespace {

class HookView : public BView {
public:
    HookView(const char* name, EventLog* log, BRect frame = BRect(0, 0, 9, 9),
             uint32 resizingMode = B_FOLLOW_NONE, uint32 flags = 0)
        : BView(frame, name, resizingMode, flags), fLog(log) {}

    void AttachedToWindow() override { fLog->Add(std::string("attached ") + Name()); }
    void AllAttached() override { fLog->Add(std::string("all attached ") + Name()); }
    void DetachedFromWindow() override { fLog->Add(std::string("detached ") + Name()); }
    void AllDetached() override { fLog->Add(std::string("all detached ") + Name()); }
    void FrameMoved(BPoint where) override {
        fLog->Add(std::string("moved ") + Name() + " " + std::to_string((int)where.x) + "," +
                  std::to_string((int)where.y));
    }
    void FrameResized(float width, float height) override {
        fLog->Add(std::string("resized ") + Name() + " " + std::to_string((int)width) + "x" +
                  std::to_string((int)height));
    }
    void MakeFocus(bool focus = true) override {
        fLog->Add(std::string(focus ? "focus " : "unfocus ") + Name());
        BView::MakeFocus(focus);
    }

private:
    EventLog* fLog;
};

class ViewTest : public HeadlessAppTest {};

} // namespace

TEST_F(ViewTest, AttachHooksRunParentsFirstThenAllAttachedChildrenFirst) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "hooks", B_TITLED_WINDOW, 0);
    HookView* parent = new HookView("parent", &fLog);
    parent->AddChild(new HookView("first", &fLog));
    parent->AddChild(new HookView("second", &fLog));
    window->AddChild(parent);
    std::vector<std::string> expected = {"attached parent",     "attached first",
                                         "attached second",     "all attached first",
                                         "all attached second", "all attached parent"};
    EXPECT_EQ(expected, fLog.Lines());
}

TEST_F(ViewTest, DetachHooksRunWhileTheViewIsStillInTheWindow) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "hooks", B_TITLED_WINDOW, 0);
    class WindowCheckingView : public HookView {
    public:
        using HookView::HookView;
        void DetachedFromWindow() override {
            fHadWindow = Window() != NULL;
            HookView::DetachedFromWindow();
        }
        bool fHadWindow = false;
    };
    WindowCheckingView* parent = new WindowCheckingView("parent", &fLog);
    parent->AddChild(new HookView("child", &fLog));
    window->AddChild(parent);
    fLog.Clear();
    parent->RemoveSelf();
    std::vector<std::string> expected = {"detached parent", "detached child", "all detached child",
                                         "all detached parent"};
    EXPECT_EQ(expected, fLog.Lines());
    EXPECT_TRUE(parent->fHadWindow);
    EXPECT_EQ(NULL, parent->Window());
    delete parent;
}

TEST_F(ViewTest, DeletingTheWindowDetachesItsViews) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "closing", B_TITLED_WINDOW, 0);
    window->AddChild(new HookView("leaf", &fLog));
    window->Show();
    WaitForIdle();
    fLog.Clear();
    window->Lock();
    window->Quit();
    std::vector<std::string> expected = {"detached leaf", "all detached leaf"};
    EXPECT_EQ(expected, fLog.Lines());
}

TEST_F(ViewTest, SiblingsKeepTheirOrder) {
    BView parent(BRect(0, 0, 99, 99), "parent", B_FOLLOW_NONE, 0);
    BView* a = new BView(BRect(0, 0, 1, 1), "a", B_FOLLOW_NONE, 0);
    BView* b = new BView(BRect(0, 0, 1, 1), "b", B_FOLLOW_NONE, 0);
    BView* c = new BView(BRect(0, 0, 1, 1), "c", B_FOLLOW_NONE, 0);
    parent.AddChild(a);
    parent.AddChild(c);
    parent.AddChild(b, c);
    EXPECT_EQ(3, parent.CountChildren());
    EXPECT_EQ(a, parent.ChildAt(0));
    EXPECT_EQ(b, parent.ChildAt(1));
    EXPECT_EQ(c, parent.ChildAt(2));
    EXPECT_EQ(b, a->NextSibling());
    EXPECT_EQ(a, b->PreviousSibling());
    EXPECT_EQ(NULL, c->NextSibling());
    EXPECT_EQ(NULL, a->PreviousSibling());
    EXPECT_EQ(c, parent.FindView("c"));
    EXPECT_TRUE(parent.RemoveChild(b));
    EXPECT_FALSE(parent.RemoveChild(b));
    EXPECT_EQ(c, a->NextSibling());
    delete b;
}

TEST_F(ViewTest, BoundsStartAtTheScrollingOrigin) {
    BView view(BRect(10, 20, 59, 39), "view", B_FOLLOW_NONE, 0);
    EXPECT_EQ(BRect(10, 20, 59, 39), view.Frame());
    EXPECT_EQ(BRect(0, 0, 49, 19), view.Bounds());
}

TEST_F(ViewTest, ConversionsFollowTheFramesUpToTheScreen) {
    BWindow* window = new BWindow(BRect(100, 200, 399, 499), "coords", B_TITLED_WINDOW, 0);
    BView* outer = new BView(BRect(10, 20, 109, 119), "outer", B_FOLLOW_NONE, 0);
    BView* inner = new BView(BRect(5, 6, 25, 26), "inner", B_FOLLOW_NONE, 0);
    outer->AddChild(inner);
    window->AddChild(outer);

    EXPECT_EQ(BPoint(6, 7), inner->ConvertToParent(BPoint(1, 1)));
    EXPECT_EQ(BPoint(1, 1), inner->ConvertFromParent(BPoint(6, 7)));
    EXPECT_EQ(BPoint(116, 227), inner->ConvertToScreen(BPoint(1, 1)));
    EXPECT_EQ(BPoint(1, 1), inner->ConvertFromScreen(BPoint(116, 227)));
    EXPECT_EQ(BRect(115, 226, 117, 228), inner->ConvertToScreen(BRect(0, 0, 2, 2)));
    EXPECT_EQ(BRect(0, 0, 2, 2), inner->ConvertFromScreen(BRect(115, 226, 117, 228)));

    outer->ScrollTo(3, 4);
    EXPECT_EQ(BPoint(113, 223), inner->ConvertToScreen(BPoint(1, 1)));
}

TEST_F(ViewTest, ResizingModesFollowTheParent) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "modes", B_TITLED_WINDOW, 0);
    BView* left = new BView(BRect(10, 10, 19, 19), "left", B_FOLLOW_LEFT | B_FOLLOW_TOP, 0);
    BView* right = new BView(BRect(80, 10, 89, 19), "right", B_FOLLOW_RIGHT | B_FOLLOW_TOP, 0);
    BView* all = new BView(BRect(10, 30, 89, 49), "all", B_FOLLOW_ALL_SIDES, 0);
    BView* bottom =
        new BView(BRect(10, 80, 89, 89), "bottom", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_BOTTOM, 0);
    BView* center =
        new BView(BRect(40, 40, 59, 59), "center", B_FOLLOW_H_CENTER | B_FOLLOW_V_CENTER, 0);
    window->AddChild(left);
    window->AddChild(right);
    window->AddChild(all);
    window->AddChild(bottom);
    window->AddChild(center);

    window->ResizeBy(20, 40);
    EXPECT_EQ(BRect(10, 10, 19, 19), left->Frame());
    EXPECT_EQ(BRect(100, 10, 109, 19), right->Frame());
    EXPECT_EQ(BRect(10, 30, 109, 89), all->Frame());
    EXPECT_EQ(BRect(10, 120, 109, 129), bottom->Frame());
    EXPECT_EQ(BRect(50, 60, 69, 79), center->Frame());
}

TEST_F(ViewTest, FrameEventsReachViewsThatAskForThem) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "frames", B_TITLED_WINDOW, 0);
    HookView* watched =
        new HookView("watched", &fLog, BRect(0, 0, 9, 9), B_FOLLOW_NONE, B_FRAME_EVENTS);
    HookView* quiet = new HookView("quiet", &fLog, BRect(20, 0, 29, 9));
    window->AddChild(watched);
    window->AddChild(quiet);
    window->Show();
    WaitForIdle();
    fLog.Clear();

    window->Lock();
    watched->MoveTo(5, 6);
    watched->ResizeTo(20, 30);
    quiet->MoveTo(40, 40);
    quiet->ResizeTo(2, 2);
    window->Unlock();
    WaitForIdle();
    std::vector<std::string> expected = {"moved watched 5,6", "resized watched 20x30"};
    EXPECT_EQ(expected, fLog.Lines());
}

TEST_F(ViewTest, ResizeToPreferredUsesGetPreferredSize) {
    class PreferringView : public BView {
    public:
        PreferringView() : BView(BRect(0, 0, 9, 9), "prefers", B_FOLLOW_NONE, 0) {}
        void GetPreferredSize(float* width, float* height) override {
            *width = 33;
            *height = 44;
        }
    };
    PreferringView view;
    view.ResizeToPreferred();
    EXPECT_EQ(BRect(0, 0, 33, 44), view.Frame());

    BView plain(BRect(0, 0, 12, 7), "plain", B_FOLLOW_NONE, 0);
    float width, height;
    plain.GetPreferredSize(&width, &height);
    EXPECT_EQ(12, width);
    EXPECT_EQ(7, height);
}

TEST_F(ViewTest, MakeFocusTakesTheFocusFromTheOtherView) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "focus", B_TITLED_WINDOW, 0);
    HookView* first = new HookView("first", &fLog);
    HookView* second = new HookView("second", &fLog);
    window->AddChild(first);
    window->AddChild(second);
    fLog.Clear();

    first->MakeFocus();
    EXPECT_TRUE(first->IsFocus());
    EXPECT_EQ(first, window->CurrentFocus());
    second->MakeFocus();
    EXPECT_FALSE(first->IsFocus());
    EXPECT_EQ(second, window->CurrentFocus());
    std::vector<std::string> expected = {"focus first", "focus second", "unfocus first"};
    EXPECT_EQ(expected, fLog.Lines());

    second->RemoveSelf();
    EXPECT_EQ(NULL, window->CurrentFocus());
    delete second;
}

TEST_F(ViewTest, StateSettersAreKept) {
    BView view(BRect(0, 0, 9, 9), "state", B_FOLLOW_NONE, 0);
    EXPECT_EQ(make_color(0, 0, 0), view.HighColor());
    EXPECT_EQ(make_color(255, 255, 255), view.LowColor());
    view.SetHighColor(1, 2, 3);
    view.SetLowColor(4, 5, 6, 7);
    view.SetViewColor(B_TRANSPARENT_COLOR);
    view.SetDrawingMode(B_OP_ALPHA);
    view.SetBlendingMode(B_CONSTANT_ALPHA, B_ALPHA_COMPOSITE);
    view.SetPenSize(3);
    view.MovePenTo(4, 5);
    view.MovePenBy(1, 1);
    EXPECT_EQ(make_color(1, 2, 3), view.HighColor());
    EXPECT_EQ(make_color(4, 5, 6, 7), view.LowColor());
    EXPECT_EQ(B_TRANSPARENT_COLOR, view.ViewColor());
    EXPECT_EQ(B_OP_ALPHA, view.DrawingMode());
    source_alpha alpha;
    alpha_function function;
    view.GetBlendingMode(&alpha, &function);
    EXPECT_EQ(B_CONSTANT_ALPHA, alpha);
    EXPECT_EQ(B_ALPHA_COMPOSITE, function);
    EXPECT_EQ(3, view.PenSize());
    EXPECT_EQ(BPoint(5, 6), view.PenLocation());
}

TEST_F(ViewTest, FontSizeAndStringWidthFollowTheFont) {
    BView view(BRect(0, 0, 9, 9), "font", B_FOLLOW_NONE, 0);
    BFont font;
    view.GetFont(&font);
    EXPECT_EQ(be_plain_font->Size(), font.Size());
    float narrow = view.StringWidth("Glimrow");
    view.SetFontSize(20);
    view.GetFont(&font);
    EXPECT_EQ(20, font.Size());
    EXPECT_GT(view.StringWidth("Glimrow"), narrow);
    EXPECT_EQ(view.StringWidth("Glim"), view.StringWidth("Glimrow", 4));
    font_height height;
    view.GetFontHeight(&height);
    EXPECT_GT(height.ascent, 0);
}

TEST_F(ViewTest, SetFontMaskCopiesOnlyTheNamedParts) {
    BView view(BRect(0, 0, 9, 9), "masked", B_FOLLOW_NONE, 0);
    BFont other(be_bold_font);
    other.SetSize(30);
    other.SetRotation(90);
    view.SetFont(&other, B_FONT_SIZE);
    BFont result;
    view.GetFont(&result);
    EXPECT_EQ(30, result.Size());
    EXPECT_EQ(0, result.Rotation());
}

TEST_F(ViewTest, PenMovesAlongDrawnText) {
    BWindow* window = new BWindow(BRect(0, 0, 199, 99), "pen", B_TITLED_WINDOW, 0);
    BView* view = new BView(BRect(0, 0, 199, 99), "text", B_FOLLOW_NONE, B_WILL_DRAW);
    window->AddChild(view);
    view->MovePenTo(10, 50);
    view->DrawString("Glimrow");
    EXPECT_NEAR(10 + view->StringWidth("Glimrow"), view->PenLocation().x, 1.0);
    EXPECT_EQ(50, view->PenLocation().y);
}

TEST_F(ViewTest, ViewCallWithoutTheWindowLockAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "unlocked", B_TITLED_WINDOW, 0);
    BView* view = new BView(BRect(0, 0, 9, 9), "view", B_FOLLOW_NONE, 0);
    window->AddChild(view);
    window->Show();
    WaitForIdle();
    EXPECT_DEATH(view->SetHighColor(1, 2, 3), "locked");
}

TEST_F(ViewTest, DeletingAViewStillInAWindowAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "owner", B_TITLED_WINDOW, 0);
    BView* view = new BView(BRect(0, 0, 9, 9), "view", B_FOLLOW_NONE, 0);
    window->AddChild(view);
    EXPECT_DEATH(delete view, "RemoveSelf");
}

TEST_F(ViewTest, AddingAViewWithAParentAborts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    BView first(BRect(0, 0, 9, 9), "first", B_FOLLOW_NONE, 0);
    BView second(BRect(0, 0, 9, 9), "second", B_FOLLOW_NONE, 0);
    BView* child = new BView(BRect(0, 0, 9, 9), "child", B_FOLLOW_NONE, 0);
    first.AddChild(child);
    EXPECT_DEATH(second.AddChild(child), "parent");
}

TEST_F(ViewTest, WindowFindsTheViewAtAPoint) {
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "points", B_TITLED_WINDOW, 0);
    BView* outer = new BView(BRect(10, 10, 59, 59), "outer", B_FOLLOW_NONE, 0);
    BView* inner = new BView(BRect(10, 10, 19, 19), "inner", B_FOLLOW_NONE, 0);
    outer->AddChild(inner);
    window->AddChild(outer);
    EXPECT_EQ(inner, window->FindView(BPoint(25, 25)));
    EXPECT_EQ(outer, window->FindView(BPoint(11, 11)));
    EXPECT_EQ(NULL, window->FindView(BPoint(200, 200)));
    inner->Hide();
    EXPECT_EQ(outer, window->FindView(BPoint(25, 25)));
    EXPECT_TRUE(inner->IsHidden());
}

TEST_F(ViewTest, ViewsHearWhenTheirWindowIsActivated) {
    class ActivationView : public BView {
    public:
        ActivationView(EventLog* log)
            : BView(BRect(0, 0, 9, 9), "activation", B_FOLLOW_NONE, 0), fLog(log) {}
        void WindowActivated(bool active) override {
            fLog->Add(active ? "view active" : "view inactive");
        }

    private:
        EventLog* fLog;
    };
    BWindow* window = new BWindow(BRect(0, 0, 99, 99), "activated", B_TITLED_WINDOW, 0);
    window->AddChild(new ActivationView(&fLog));
    window->Show();
    WaitForIdle();
    BWindow* other = new BWindow(BRect(200, 0, 299, 99), "other", B_TITLED_WINDOW, 0);
    other->Show();
    WaitForIdle();
    std::vector<std::string> expected = {"view active", "view inactive"};
    EXPECT_EQ(expected, fLog.Lines());
}
