// BStringView: its text, alignment and font on screen.
#include "ControlsTestSupport.h"

#include <StringView.h>

#include <gtest/gtest.h>

#include <math.h>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::HeadlessAppTest;
using testing_support::ink_bounds;

namespace {

class StringViewTest : public HeadlessAppTest {
protected:
    // The ink of a string view showing "Wayfarer" with the alignment and font.
    BRect InkOf(alignment align, float fontSize, BStringView** viewOut = NULL) {
        BWindow* window = new BWindow(BRect(100, 100, 399, 199), "strings", B_TITLED_WINDOW, 0);
        BStringView* view = new BStringView(BRect(10, 10, 209, 59), "view", "Wayfarer");
        window->AddChild(view);
        window->Lock();
        view->SetAlignment(align);
        if (fontSize > 0) {
            BFont font(be_plain_font);
            font.SetSize(fontSize);
            view->SetFont(&font);
        }
        window->Unlock();
        window->Show();
        WaitForIdle();
        Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
        if (viewOut != NULL)
            *viewOut = view;
        return ink_bounds(capture, BRect(10, 10, 209, 59), ui_color(B_PANEL_BACKGROUND_COLOR));
    }
};

} // namespace

TEST_F(StringViewTest, LeftAlignedTextStartsAtTheLeftEdge) {
    BRect ink = InkOf(B_ALIGN_LEFT, 0);
    ASSERT_TRUE(ink.IsValid());
    EXPECT_LE(ink.left, 12);
}

TEST_F(StringViewTest, RightAlignedTextEndsAtTheRightEdge) {
    BRect ink = InkOf(B_ALIGN_RIGHT, 0);
    ASSERT_TRUE(ink.IsValid());
    EXPECT_GE(ink.right, 206);
    EXPECT_GT(ink.left, 120);
}

TEST_F(StringViewTest, CenteredTextHasEqualMarginsOnBothSides) {
    BRect ink = InkOf(B_ALIGN_CENTER, 0);
    ASSERT_TRUE(ink.IsValid());
    float leftMargin = ink.left - 10;
    float rightMargin = 209 - ink.right;
    EXPECT_LE(fabsf(leftMargin - rightMargin), 3);
    // Vertically centred too.
    float topMargin = ink.top - 10;
    float bottomMargin = 59 - ink.bottom;
    EXPECT_LE(fabsf(topMargin - bottomMargin), 6);
}

TEST_F(StringViewTest, LargerFontDrawsTallerText) {
    BRect small = InkOf(B_ALIGN_LEFT, 10);
    BRect large = InkOf(B_ALIGN_LEFT, 30);
    ASSERT_TRUE(small.IsValid());
    ASSERT_TRUE(large.IsValid());
    EXPECT_GT(large.Height(), small.Height() * 2);
    EXPECT_GT(large.Width(), small.Width() * 2);
}

TEST_F(StringViewTest, SetTextCopiesTheText) {
    char text[] = "changing";
    BStringView view(BRect(0, 0, 100, 20), "view", NULL);
    EXPECT_EQ(NULL, view.Text());
    view.SetText(text);
    text[0] = 'X';
    EXPECT_STREQ("changing", view.Text());
}

TEST_F(StringViewTest, PreferredSizeFitsTheText) {
    BStringView view(BRect(0, 0, 5, 5), "view", "Some text");
    view.ResizeToPreferred();
    EXPECT_GE(view.Bounds().Width(), view.StringWidth("Some text"));
    font_height height;
    view.GetFontHeight(&height);
    EXPECT_GE(view.Bounds().Height(), ceilf(height.ascent + height.descent));
}
