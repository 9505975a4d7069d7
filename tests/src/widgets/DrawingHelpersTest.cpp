#include "DrawingHelpers.h"

#include "HeadlessAppTest.h"

#include <InterfaceDefs.h>
#include <View.h>
#include <Window.h>

using BPrivate::HeadlessTestApi;
using testing_support::HeadlessAppTest;

namespace {

const rgb_color kBase = {200, 200, 200, 255};
const rgb_color kBackground = {90, 90, 90, 255};
const rgb_color kPen = {10, 120, 30, 255};

bool same_color(rgb_color a, rgb_color b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

std::string text(rgb_color color) {
    return std::to_string(color.red) + "," + std::to_string(color.green) + "," +
           std::to_string(color.blue);
}

// Draws one bevel on (10, 10, 30, 20) and notes the high colour afterwards.
class BevelView : public BView {
public:
    BevelView(BRect frame, bool raised)
        : BView(frame, "bevel", B_FOLLOW_NONE, B_WILL_DRAW), fRaised(raised) {
        SetViewColor(kBackground);
        SetLowColor(kBackground);
    }

    void Draw(BRect) override {
        SetHighColor(kPen);
        stroke_3d_rect(this, BRect(10, 10, 30, 20), kBase, fRaised);
        fHighAfter = HighColor();
    }

    rgb_color fHighAfter = {0, 0, 0, 0};

private:
    bool fRaised;
};

// A view that always wants 50 x 20.
class SizedView : public BView {
public:
    SizedView() : BView(BRect(0, 0, 5, 5), "sized", B_FOLLOW_NONE, 0) {}

    void GetPreferredSize(float* width, float* height) override {
        *width = 50;
        *height = 20;
    }
};

class DrawingHelpersTest : public HeadlessAppTest {
protected:
    BPrivate::Capture Bevel(bool raised, BevelView** view = NULL) {
        BWindow* window = new BWindow(BRect(100, 100, 199, 199), "bevel", B_TITLED_WINDOW, 0);
        BevelView* bevel = new BevelView(BRect(0, 0, 99, 99), raised);
        window->AddChild(bevel);
        window->Show();
        WaitForIdle();
        BPrivate::Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
        if (view != NULL)
            *view = bevel;
        return capture;
    }
};

} // namespace

TEST_F(DrawingHelpersTest, RaisedBevelIsLightTopLeftAndDarkBottomRight) {
    BPrivate::Capture capture = Bevel(true);
    rgb_color light = tint_color(kBase, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(kBase, B_DARKEN_1_TINT);
    EXPECT_TRUE(same_color(capture.ColorAt(20, 10), light)) << text(capture.ColorAt(20, 10));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 15), light));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 10), light));
    EXPECT_TRUE(same_color(capture.ColorAt(20, 20), dark)) << text(capture.ColorAt(20, 20));
    EXPECT_TRUE(same_color(capture.ColorAt(30, 15), dark));
    // The dark edges are drawn last and own two corners.
    EXPECT_TRUE(same_color(capture.ColorAt(30, 10), dark));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 20), dark));
    EXPECT_TRUE(same_color(capture.ColorAt(30, 20), dark));
    // One pixel wide: inside and outside stay as they were.
    EXPECT_TRUE(same_color(capture.ColorAt(20, 15), kBackground));
    EXPECT_TRUE(same_color(capture.ColorAt(11, 11), kBackground));
    EXPECT_TRUE(same_color(capture.ColorAt(9, 15), kBackground));
    EXPECT_TRUE(same_color(capture.ColorAt(31, 15), kBackground));
}

TEST_F(DrawingHelpersTest, SunkenBevelSwapsTheColours) {
    BPrivate::Capture capture = Bevel(false);
    rgb_color light = tint_color(kBase, B_LIGHTEN_2_TINT);
    rgb_color dark = tint_color(kBase, B_DARKEN_1_TINT);
    EXPECT_TRUE(same_color(capture.ColorAt(20, 10), dark)) << text(capture.ColorAt(20, 10));
    EXPECT_TRUE(same_color(capture.ColorAt(10, 15), dark));
    EXPECT_TRUE(same_color(capture.ColorAt(20, 20), light));
    EXPECT_TRUE(same_color(capture.ColorAt(30, 15), light));
}

TEST_F(DrawingHelpersTest, BevelGivesTheHighColourBack) {
    BevelView* view = NULL;
    Bevel(true, &view);
    ASSERT_TRUE(view->Window()->Lock());
    EXPECT_TRUE(same_color(view->fHighAfter, kPen)) << text(view->fHighAfter);
    view->Window()->Unlock();
}

TEST_F(DrawingHelpersTest, BevelWithoutAViewDoesNothing) {
    stroke_3d_rect(NULL, BRect(0, 0, 10, 10), kBase, true);
}

TEST_F(DrawingHelpersTest, LayoutResizesTheViewToItsPreferredSize) {
    SizedView view;
    layout(BPoint(0, 0), &view, B_ALIGN_LEFT, B_ALIGN_TOP);
    EXPECT_EQ(view.Bounds(), BRect(0, 0, 50, 20));
}

TEST_F(DrawingHelpersTest, LayoutAnchorsTheRectangleByBothAlignments) {
    struct Case {
        alignment horizontal;
        vertical_alignment vertical;
        BRect expected;
    } cases[] = {
        {B_ALIGN_LEFT, B_ALIGN_TOP, BRect(100, 60, 150, 80)},
        {B_ALIGN_RIGHT, B_ALIGN_TOP, BRect(50, 60, 100, 80)},
        {B_ALIGN_CENTER, B_ALIGN_TOP, BRect(75, 60, 125, 80)},
        {B_ALIGN_LEFT, B_ALIGN_MIDDLE, BRect(100, 50, 150, 70)},
        {B_ALIGN_LEFT, B_ALIGN_BOTTOM, BRect(100, 40, 150, 60)},
        {B_ALIGN_CENTER, B_ALIGN_MIDDLE, BRect(75, 50, 125, 70)},
    };
    for (const Case& test : cases) {
        SizedView view;
        BRect result = layout(BPoint(100, 60), &view, test.horizontal, test.vertical);
        EXPECT_EQ(result, test.expected) << test.horizontal << " " << test.vertical;
    }
}

TEST_F(DrawingHelpersTest, LayoutMovesTheViewToTheRectanglesBottomLeft) {
    // Deliberate: the view's top-left goes to the result's bottom-left corner.
    SizedView view;
    BRect result = layout(BPoint(100, 60), &view, B_ALIGN_LEFT, B_ALIGN_TOP);
    EXPECT_EQ(view.Frame().LeftTop(), result.LeftBottom());
    EXPECT_EQ(view.Frame(), BRect(100, 80, 150, 100));
}

TEST_F(DrawingHelpersTest, LayoutWithoutAViewGivesAnInvalidRectangle) {
    EXPECT_FALSE(layout(BPoint(1, 1), NULL, B_ALIGN_LEFT, B_ALIGN_TOP).IsValid());
}

TEST_F(DrawingHelpersTest, UiColor2GivesTheFourPrivateColours) {
    struct Case {
        long which;
        uint8 red;
        uint8 green;
        uint8 blue;
    } cases[] = {{-10, 216, 216, 216}, {-9, 232, 232, 232}, {-8, 0, 0, 154}, {-7, 203, 51, 51}};
    for (const Case& test : cases) {
        rgb_color color = ui_color2(test.which);
        EXPECT_EQ(color.red, test.red) << test.which;
        EXPECT_EQ(color.green, test.green) << test.which;
        EXPECT_EQ(color.blue, test.blue) << test.which;
        EXPECT_EQ(color.alpha, 255) << test.which;
    }
}

TEST_F(DrawingHelpersTest, UiColor2GivesTheSystemColourForOtherCodes) {
    for (long which : {(long)B_PANEL_BACKGROUND_COLOR, (long)B_MENU_BACKGROUND_COLOR,
                       (long)B_KEYBOARD_NAVIGATION_COLOR, -6L, -11L}) {
        rgb_color expected = ui_color((color_which)which);
        rgb_color color = ui_color2(which);
        EXPECT_TRUE(same_color(color, expected)) << which;
        EXPECT_EQ(color.alpha, expected.alpha) << which;
    }
}
