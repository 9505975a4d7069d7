// BBox: its borders and label on screen.
#include "ControlsTestSupport.h"

#include <Box.h>
#include <StringView.h>

#include <gtest/gtest.h>

#include <math.h>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::HeadlessAppTest;
using testing_support::same_color;

namespace {

class BoxTest : public HeadlessAppTest {
protected:
    // A panel-coloured window with the box at (10, 10) - (109, 89).
    Capture Draw(BBox* box) {
        BWindow* window = new BWindow(BRect(100, 100, 299, 199), "box", B_TITLED_WINDOW, 0);
        BView* panel = new BView(window->Bounds(), "panel", B_FOLLOW_ALL, B_WILL_DRAW);
        panel->SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
        panel->AddChild(box);
        window->AddChild(panel);
        window->Show();
        WaitForIdle();
        Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
        return capture;
    }

    rgb_color fPanel = ui_color(B_PANEL_BACKGROUND_COLOR);
    rgb_color fShadow = tint_color(ui_color(B_PANEL_BACKGROUND_COLOR), B_DARKEN_2_TINT);
    rgb_color fLight = make_color(255, 255, 255);
};

} // namespace

TEST_F(BoxTest, FancyBorderIsAnEtchedLine) {
    Capture capture = Draw(new BBox(BRect(10, 10, 109, 89), "box"));
    EXPECT_TRUE(same_color(fShadow, capture.ColorAt(10, 50)));
    EXPECT_TRUE(same_color(fLight, capture.ColorAt(11, 50)));
    EXPECT_TRUE(same_color(fShadow, capture.ColorAt(50, 10)));
    EXPECT_TRUE(same_color(fLight, capture.ColorAt(50, 11)));
    EXPECT_TRUE(same_color(fShadow, capture.ColorAt(108, 50)));
    EXPECT_TRUE(same_color(fLight, capture.ColorAt(109, 50)));
    EXPECT_TRUE(same_color(fPanel, capture.ColorAt(50, 50)));
}

TEST_F(BoxTest, PlainBorderIsRaised) {
    Capture capture = Draw(new BBox(BRect(10, 10, 109, 89), "box", B_FOLLOW_LEFT | B_FOLLOW_TOP,
                                    B_WILL_DRAW, B_PLAIN_BORDER));
    EXPECT_TRUE(same_color(fLight, capture.ColorAt(10, 50)));
    EXPECT_TRUE(same_color(fLight, capture.ColorAt(50, 10)));
    EXPECT_TRUE(same_color(fShadow, capture.ColorAt(109, 50)));
    EXPECT_TRUE(same_color(fShadow, capture.ColorAt(50, 89)));
    EXPECT_TRUE(same_color(fPanel, capture.ColorAt(11, 50)));
}

TEST_F(BoxTest, NoBorderDrawsNothing) {
    Capture capture = Draw(new BBox(BRect(10, 10, 109, 89), "box", B_FOLLOW_LEFT | B_FOLLOW_TOP,
                                    B_WILL_DRAW, B_NO_BORDER));
    EXPECT_TRUE(same_color(fPanel, capture.ColorAt(10, 50)));
    EXPECT_TRUE(same_color(fPanel, capture.ColorAt(50, 10)));
}

TEST_F(BoxTest, LabelBreaksTheTopBorderAndItsLineRunsThroughTheLabel) {
    BBox* box = new BBox(BRect(10, 10, 109, 89), "box");
    box->SetLabel("Title");
    Capture capture = Draw(box);
    font_height height;
    be_plain_font->GetHeight(&height);
    int32 borderY = 10 + (int32)floorf(ceilf(height.ascent + height.descent) / 2);
    EXPECT_TRUE(same_color(fShadow, capture.ColorAt(13, borderY)));
    EXPECT_TRUE(same_color(fShadow, capture.ColorAt(100, borderY)));
    // Under the label the border is gone and the label's ink is there instead.
    BRect label(18, 10, 22 + (int32)be_plain_font->StringWidth("Title"), borderY + 4);
    EXPECT_EQ(0, testing_support::count_color(
                     capture, BRect(label.left, borderY + 1, label.right, borderY + 1), fLight));
    EXPECT_LT(testing_support::darkest_value(capture, label), 60);
    EXPECT_STREQ("Title", box->Label());
}

TEST_F(BoxTest, LabelViewReplacesTheStringAndSitsAtTheTopLeft) {
    BBox box(BRect(0, 0, 100, 100), "box");
    box.SetLabel("Text");
    BStringView* view = new BStringView(BRect(0, 0, 40, 15), "label", "View");
    EXPECT_EQ(B_OK, box.SetLabel(view));
    EXPECT_EQ(NULL, box.Label());
    EXPECT_EQ(view, box.LabelView());
    EXPECT_EQ(view, box.ChildAt(0));
    EXPECT_EQ(BPoint(10, 0), view->Frame().LeftTop());
    box.SetLabel("Back to text");
    EXPECT_EQ(NULL, box.LabelView());
    EXPECT_EQ(0, box.CountChildren());
    EXPECT_EQ(B_BAD_VALUE, box.SetLabel((BView*)NULL));
}
