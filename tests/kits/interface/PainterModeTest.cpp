#include <PainterTestCanvas.h>

#include <gtest/gtest.h>

using namespace testing_support;

typedef PainterCanvas Canvas;

// #pragma mark - Drawing modes

TEST(PainterModeTest, CopyModeIgnoresTheColoursAlpha) {
    Canvas canvas(2, 2);
    canvas.painter.SetHighColor(make_color(255, 0, 0, 0));
    canvas.painter.FillRect(BRect(0, 0, 0, 0), B_SOLID_HIGH);
    EXPECT_EQ(make_color(255, 0, 0, 255), canvas.surface.Color(0, 0));
}

TEST(PainterModeTest, OverModeSkipsLowPatternPixels) {
    Canvas canvas(4, 4, kBlue);
    canvas.painter.SetDrawingMode(B_OP_OVER);
    canvas.painter.FillRect(BRect(0, 0, 3, 3), B_MIXED_COLORS);
    EXPECT_EQ(8, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(8, canvas.surface.CountPixels(kBlue));
}

TEST(PainterModeTest, OverModeSkipsTheTransparentColour) {
    Canvas canvas(4, 4, kBlue);
    canvas.painter.SetDrawingMode(B_OP_OVER);
    canvas.painter.SetHighColor(B_TRANSPARENT_COLOR);
    canvas.painter.FillRect(BRect(0, 0, 3, 3), B_SOLID_HIGH);
    EXPECT_EQ(16, canvas.surface.CountPixels(kBlue));
}

TEST(PainterModeTest, BlendModeAveragesWithTheTarget) {
    Canvas canvas(2, 2);
    canvas.painter.SetDrawingMode(B_OP_BLEND);
    canvas.painter.FillRect(BRect(0, 0, 1, 1), B_SOLID_HIGH);
    EXPECT_EQ(make_color(128, 128, 128), canvas.surface.Rgb(0, 0));
}

TEST(PainterModeTest, AlphaModeBlendsByTheColoursAlpha) {
    Canvas canvas(2, 2);
    canvas.painter.SetDrawingMode(B_OP_ALPHA);
    canvas.painter.SetBlendingMode(B_PIXEL_ALPHA, B_ALPHA_OVERLAY);
    canvas.painter.SetHighColor(make_color(0, 0, 0, 64));
    canvas.painter.FillRect(BRect(0, 0, 1, 1), B_SOLID_HIGH);
    EXPECT_EQ(make_color(191, 191, 191), canvas.surface.Rgb(0, 0));
}

TEST(PainterModeTest, AlphaCompositeRaisesTheTargetsAlpha) {
    Canvas composite(2, 2, make_color(0, 0, 0, 0));
    composite.painter.SetDrawingMode(B_OP_ALPHA);
    composite.painter.SetBlendingMode(B_PIXEL_ALPHA, B_ALPHA_COMPOSITE);
    composite.painter.SetHighColor(make_color(255, 0, 0, 128));
    composite.painter.FillRect(BRect(0, 0, 1, 1), B_SOLID_HIGH);
    EXPECT_EQ(128, composite.surface.Color(0, 0).alpha);

    Canvas overlay(2, 2, make_color(0, 0, 0, 0));
    overlay.painter.SetDrawingMode(B_OP_ALPHA);
    overlay.painter.SetBlendingMode(B_PIXEL_ALPHA, B_ALPHA_OVERLAY);
    overlay.painter.SetHighColor(make_color(255, 0, 0, 128));
    overlay.painter.FillRect(BRect(0, 0, 1, 1), B_SOLID_HIGH);
    EXPECT_EQ(0, overlay.surface.Color(0, 0).alpha);
}

TEST(PainterModeTest, InvertModeInvertsTheTarget) {
    Canvas canvas(2, 2, make_color(10, 100, 200));
    canvas.painter.SetDrawingMode(B_OP_INVERT);
    canvas.painter.FillRect(BRect(0, 0, 1, 1), B_SOLID_HIGH);
    EXPECT_EQ(make_color(245, 155, 55), canvas.surface.Rgb(1, 1));
}

TEST(PainterModeTest, AddAndSubtractSaturate) {
    Canvas canvas(2, 1, make_color(200, 100, 10));
    canvas.painter.SetHighColor(make_color(100, 100, 100));
    canvas.painter.SetDrawingMode(B_OP_ADD);
    canvas.painter.FillRect(BRect(0, 0, 0, 0), B_SOLID_HIGH);
    canvas.painter.SetDrawingMode(B_OP_SUBTRACT);
    canvas.painter.FillRect(BRect(1, 0, 1, 0), B_SOLID_HIGH);
    EXPECT_EQ(make_color(255, 200, 110), canvas.surface.Rgb(0, 0));
    EXPECT_EQ(make_color(100, 0, 0), canvas.surface.Rgb(1, 0));
}

TEST(PainterModeTest, MinAndMaxKeepTheDarkerAndTheBrighter) {
    Canvas canvas(2, 1, make_color(128, 128, 128));
    canvas.painter.SetHighColor(kWhite);
    canvas.painter.SetDrawingMode(B_OP_MIN);
    canvas.painter.FillRect(BRect(0, 0, 0, 0), B_SOLID_HIGH);
    canvas.painter.SetDrawingMode(B_OP_MAX);
    canvas.painter.FillRect(BRect(1, 0, 1, 0), B_SOLID_HIGH);
    EXPECT_EQ(make_color(128, 128, 128), canvas.surface.Rgb(0, 0));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(1, 0));
}

TEST(PainterModeTest, EraseModePaintsTheLowColour) {
    Canvas canvas(2, 2, kBlue);
    canvas.painter.SetLowColor(kRed);
    canvas.painter.SetDrawingMode(B_OP_ERASE);
    canvas.painter.FillRect(BRect(0, 0, 1, 1), B_SOLID_HIGH);
    EXPECT_EQ(4, canvas.surface.CountPixels(kRed));
}

TEST(PainterModeTest, SelectModeSwapsHighAndLow) {
    Canvas canvas(3, 1, kBlack);
    canvas.painter.SetHighColor(kRed);
    canvas.painter.FillRect(BRect(1, 0, 1, 0), B_SOLID_HIGH);
    canvas.painter.SetHighColor(kBlue);
    canvas.painter.FillRect(BRect(2, 0, 2, 0), B_SOLID_HIGH);

    canvas.painter.SetHighColor(kBlack);
    canvas.painter.SetLowColor(kRed);
    canvas.painter.SetDrawingMode(B_OP_SELECT);
    canvas.painter.FillRect(BRect(0, 0, 2, 0), B_SOLID_HIGH);
    EXPECT_EQ(kRed, canvas.surface.Rgb(0, 0));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(1, 0));
    EXPECT_EQ(kBlue, canvas.surface.Rgb(2, 0));
}
