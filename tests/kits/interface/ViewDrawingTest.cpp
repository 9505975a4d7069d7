// Drawing through views into a window, checked by the pixels the window
// presents: the view's origin and clipping, patterns, bitmaps, text.
#include "HeadlessAppTest.h"

#include <Bitmap.h>
#include <Font.h>
#include <InterfaceDefs.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include <functional>
#include <string.h>

using BPrivate::Capture;
using BPrivate::HeadlessTestApi;
using testing_support::HeadlessAppTest;

namespace {

const rgb_color kRed = {255, 0, 0, 255};
const rgb_color kGreen = {0, 255, 0, 255};
const rgb_color kBlack = {0, 0, 0, 255};
const rgb_color kWhite = {255, 255, 255, 255};

// Draws whatever the test gives it, on a white background.
class CanvasView : public BView {
public:
    CanvasView(BRect frame, std::function<void(BView*)> draw)
        : BView(frame, "canvas", B_FOLLOW_NONE, B_WILL_DRAW), fDraw(std::move(draw)) {}
    void Draw(BRect) override { fDraw(this); }

private:
    std::function<void(BView*)> fDraw;
};

class ViewDrawingTest : public HeadlessAppTest {
protected:
    // Shows a window holding the canvas and returns what it presented.
    Capture Draw(BRect frame, std::function<void(BView*)> draw,
                 BRect windowFrame = BRect(50, 50, 149, 149)) {
        BWindow* window = new BWindow(windowFrame, "drawing", B_TITLED_WINDOW, 0);
        window->AddChild(new CanvasView(frame, std::move(draw)));
        window->Show();
        WaitForIdle();
        Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureWindow(window, &capture));
        return capture;
    }
};

} // namespace

TEST_F(ViewDrawingTest, FillRectCoversItsEdges) {
    Capture capture = Draw(BRect(0, 0, 99, 99), [](BView* view) {
        view->SetHighColor(kRed);
        view->FillRect(BRect(2, 2, 5, 3));
    });
    EXPECT_EQ(8, capture.CountPixels(kRed));
    EXPECT_EQ(BRect(2, 2, 5, 3), capture.BoundsOf(kRed));
}

TEST_F(ViewDrawingTest, StrokeRectDrawsOnlyTheEdges) {
    Capture capture = Draw(BRect(0, 0, 99, 99), [](BView* view) {
        view->SetHighColor(kRed);
        view->StrokeRect(BRect(10, 10, 14, 14));
    });
    EXPECT_EQ(16, capture.CountPixels(kRed));
    EXPECT_EQ(kWhite, capture.ColorAt(12, 12));
}

TEST_F(ViewDrawingTest, DrawingStartsAtTheViewsOrigin) {
    Capture capture = Draw(BRect(30, 40, 59, 69), [](BView* view) {
        view->SetHighColor(kBlack);
        view->StrokeLine(BPoint(0, 0), BPoint(3, 0));
    });
    EXPECT_EQ(4, capture.CountPixels(kBlack));
    EXPECT_EQ(BRect(30, 40, 33, 40), capture.BoundsOf(kBlack));
}

TEST_F(ViewDrawingTest, DrawingStopsAtTheViewsBounds) {
    Capture capture = Draw(BRect(10, 10, 19, 19), [](BView* view) {
        view->SetHighColor(kRed);
        view->FillRect(BRect(-100, -100, 500, 500));
    });
    EXPECT_EQ(100, capture.CountPixels(kRed));
    EXPECT_EQ(BRect(10, 10, 19, 19), capture.BoundsOf(kRed));
}

TEST_F(ViewDrawingTest, LowPatternUsesTheLowColour) {
    Capture capture = Draw(BRect(0, 0, 99, 99), [](BView* view) {
        view->SetLowColor(kGreen);
        view->FillRect(BRect(0, 0, 4, 4), B_SOLID_LOW);
    });
    EXPECT_EQ(25, capture.CountPixels(kGreen));
}

TEST_F(ViewDrawingTest, LineArrayDrawsEachLineInItsColour) {
    Capture capture = Draw(BRect(0, 0, 99, 99), [](BView* view) {
        view->SetHighColor(kBlack);
        view->BeginLineArray(2);
        view->AddLine(BPoint(0, 0), BPoint(9, 0), kRed);
        view->AddLine(BPoint(0, 2), BPoint(4, 2), kGreen);
        view->EndLineArray();
        // The high colour is back as it was.
        view->StrokeLine(BPoint(0, 4), BPoint(1, 4));
    });
    EXPECT_EQ(10, capture.CountPixels(kRed));
    EXPECT_EQ(5, capture.CountPixels(kGreen));
    EXPECT_EQ(2, capture.CountPixels(kBlack));
}

TEST_F(ViewDrawingTest, OverModeSkipsTheTransparentPaletteIndex) {
    BBitmap* bitmap = new BBitmap(BRect(0, 0, 1, 0), B_CMAP8);
    uint8 red = system_colors()->index_map[31 << 10];
    rgb_color paletteRed = system_colors()->color_list[red];
    uint8* bits = (uint8*)bitmap->Bits();
    bits[0] = red;
    bits[1] = B_TRANSPARENT_MAGIC_CMAP8;

    Capture capture = Draw(BRect(0, 0, 99, 99), [bitmap](BView* view) {
        view->SetHighColor(kGreen);
        view->FillRect(BRect(0, 0, 9, 9));
        view->SetDrawingMode(B_OP_OVER);
        view->DrawBitmap(bitmap, BPoint(3, 3));
        view->SetDrawingMode(B_OP_COPY);
    });
    EXPECT_EQ(paletteRed, capture.ColorAt(3, 3));
    EXPECT_EQ(kGreen, capture.ColorAt(4, 3));
    delete bitmap;
}

TEST_F(ViewDrawingTest, BitmapsAreScaledIntoTheDestination) {
    BBitmap* bitmap = new BBitmap(BRect(0, 0, 0, 0), B_RGB32);
    uint8* bits = (uint8*)bitmap->Bits();
    bits[0] = 0;   // blue
    bits[1] = 0;   // green
    bits[2] = 255; // red
    bits[3] = 255;
    Capture capture = Draw(BRect(0, 0, 99, 99), [bitmap](BView* view) {
        view->DrawBitmap(bitmap, bitmap->Bounds(), BRect(10, 10, 13, 13));
    });
    EXPECT_EQ(16, capture.CountPixels(kRed));
    EXPECT_EQ(BRect(10, 10, 13, 13), capture.BoundsOf(kRed));
    delete bitmap;
}

TEST_F(ViewDrawingTest, TextInksAboveTheBaseline) {
    float width = 0;
    Capture capture = Draw(BRect(0, 0, 99, 99), [&width](BView* view) {
        view->SetHighColor(kBlack);
        view->SetDrawingMode(B_OP_OVER);
        view->DrawString("HHHH", BPoint(10, 50));
        width = view->StringWidth("HHHH");
    });
    BRect ink;
    for (int32 y = 0; y < capture.Height(); y++) {
        for (int32 x = 0; x < capture.Width(); x++) {
            rgb_color color = capture.ColorAt(x, y);
            if (color.red < 128 && color.green < 128 && color.blue < 128)
                ink = ink.IsValid() ? ink | BRect(x, y, x, y) : BRect(x, y, x, y);
        }
    }
    ASSERT_TRUE(ink.IsValid());
    EXPECT_LE(ink.bottom, 50);
    EXPECT_GE(ink.top, 50 - be_plain_font->Size() - 1);
    EXPECT_GE(ink.left, 10);
    EXPECT_LE(ink.right, 10 + width + 1);
}

TEST_F(ViewDrawingTest, RotatedTextRunsUpwards) {
    Capture capture = Draw(BRect(0, 0, 99, 99), [](BView* view) {
        BFont font(be_plain_font);
        font.SetSize(12);
        font.SetRotation(90);
        view->SetFont(&font);
        view->SetHighColor(kBlack);
        view->SetDrawingMode(B_OP_OVER);
        view->DrawString("Glimrow", BPoint(50, 90));
    });
    BRect ink;
    for (int32 y = 0; y < capture.Height(); y++) {
        for (int32 x = 0; x < capture.Width(); x++) {
            rgb_color color = capture.ColorAt(x, y);
            if (color.red < 128)
                ink = ink.IsValid() ? ink | BRect(x, y, x, y) : BRect(x, y, x, y);
        }
    }
    ASSERT_TRUE(ink.IsValid());
    EXPECT_GT(ink.Height(), 2 * ink.Width());
    EXPECT_LE(ink.bottom, 91);
}
