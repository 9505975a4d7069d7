#include <Font.h>
#include <Region.h>

#include <math.h>

#include <PainterTestCanvas.h>

#include <gtest/gtest.h>

using namespace testing_support;

typedef PainterCanvas Canvas;

// #pragma mark - Lines and rectangles

TEST(PainterTest, LineFromZeroToThreeColoursExactlyFourPixels) {
    Canvas canvas(8, 4);
    canvas.painter.StrokeLine(BPoint(0, 0), BPoint(3, 0), B_SOLID_HIGH);
    EXPECT_EQ(4, canvas.surface.CountPixels(kBlack));
    for (int x = 0; x < 4; x++)
        EXPECT_EQ(kBlack, canvas.surface.Rgb(x, 0)) << x;
    EXPECT_EQ(kWhite, canvas.surface.Rgb(4, 0));
}

TEST(PainterTest, VerticalLineIncludesBothEnds) {
    Canvas canvas(4, 8);
    canvas.painter.StrokeLine(BPoint(2, 6), BPoint(2, 1), B_SOLID_HIGH);
    EXPECT_EQ(6, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(BRect(2, 1, 2, 6), canvas.surface.InkBounds(kWhite));
}

TEST(PainterTest, DiagonalLineHasOnePixelPerColumn) {
    Canvas canvas(10, 10);
    canvas.painter.StrokeLine(BPoint(0, 0), BPoint(5, 5), B_SOLID_HIGH);
    EXPECT_EQ(6, canvas.surface.CountPixels(kBlack));
    for (int i = 0; i <= 5; i++)
        EXPECT_EQ(kBlack, canvas.surface.Rgb(i, i));

    Canvas shallow(12, 6);
    shallow.painter.StrokeLine(BPoint(0, 0), BPoint(9, 3), B_SOLID_HIGH);
    EXPECT_EQ(10, shallow.surface.CountPixels(kBlack));
    EXPECT_EQ(kBlack, shallow.surface.Rgb(9, 3));
}

TEST(PainterTest, EndlessLineIsClippedToTheSurface) {
    Canvas canvas(16, 4);
    canvas.painter.StrokeLine(BPoint(-1e9f, 2), BPoint(1e9f, 2), B_SOLID_HIGH);
    EXPECT_EQ(16, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(BRect(0, 2, 15, 2), canvas.surface.InkBounds(kWhite));
}

TEST(PainterTest, FillRectCoversItsEdgePixels) {
    Canvas canvas(6, 5);
    canvas.painter.FillRect(BRect(1, 1, 3, 2), B_SOLID_HIGH);
    EXPECT_EQ(6, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(BRect(1, 1, 3, 2), canvas.surface.InkBounds(kWhite));
}

TEST(PainterTest, FillRectOfOnePixelWidthColoursOneColumn) {
    Canvas canvas(4, 4);
    canvas.painter.FillRect(BRect(0, 0, 3, 0), B_SOLID_HIGH);
    EXPECT_EQ(4, canvas.surface.CountPixels(kBlack));
    canvas.painter.FillRect(BRect(), B_SOLID_HIGH);
    EXPECT_EQ(4, canvas.surface.CountPixels(kBlack));
}

TEST(PainterTest, StrokeRectDrawsOnlyTheOutline) {
    Canvas canvas(8, 8);
    canvas.painter.StrokeRect(BRect(1, 1, 5, 4), B_SOLID_HIGH);
    EXPECT_EQ(14, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(2, 2));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(4, 3));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(5, 4));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(1, 3));
}

TEST(PainterTest, StrokeRectTouchesEachPixelOnce) {
    // Inverting twice would restore a pixel; every outline pixel must change.
    Canvas canvas(8, 8);
    canvas.painter.SetDrawingMode(B_OP_INVERT);
    canvas.painter.StrokeRect(BRect(1, 1, 5, 1), B_SOLID_HIGH);
    canvas.painter.StrokeRect(BRect(1, 3, 1, 6), B_SOLID_HIGH);
    canvas.painter.StrokeRect(BRect(3, 3, 6, 6), B_SOLID_HIGH);
    EXPECT_EQ(5 + 4 + 12, canvas.surface.CountPixels(kBlack));
}

TEST(PainterTest, ThickPenWidensLines) {
    Canvas canvas(12, 12);
    canvas.painter.SetPenSize(3.0f);
    canvas.painter.StrokeLine(BPoint(2, 5), BPoint(8, 5), B_SOLID_HIGH);
    BRect ink = canvas.surface.InkBounds(kWhite);
    EXPECT_EQ(3.0f, ink.Height() + 1);
    EXPECT_EQ(2.0f, ink.left);
    EXPECT_EQ(8.0f, ink.right);
}

TEST(PainterTest, InvertRectInvertsThePixels) {
    Canvas canvas(4, 4, kRed);
    canvas.painter.InvertRect(BRect(0, 0, 1, 1));
    EXPECT_EQ(make_color(0, 255, 255), canvas.surface.Rgb(1, 1));
    EXPECT_EQ(kRed, canvas.surface.Rgb(2, 2));
    EXPECT_EQ(B_OP_COPY, canvas.painter.DrawingMode());
}

// #pragma mark - Triangles, polygons, regions

TEST(PainterTest, FillTriangleIncludesItsEdges) {
    // The corner marker of an expandable item: right, bottom - 3 / right, bottom /
    // right - 3, bottom.
    Canvas canvas(10, 10);
    canvas.painter.FillTriangle(BPoint(8, 5), BPoint(8, 8), BPoint(5, 8), B_SOLID_HIGH);
    EXPECT_EQ(10, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(BRect(5, 5, 8, 8), canvas.surface.InkBounds(kWhite));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(7, 7));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(5, 7));
}

TEST(PainterTest, StrokeTriangleDrawsThreeEdges) {
    Canvas canvas(10, 10);
    canvas.painter.StrokeTriangle(BPoint(0, 0), BPoint(6, 0), BPoint(0, 6), B_SOLID_HIGH);
    EXPECT_EQ(18, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(1, 1));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(3, 3));
}

TEST(PainterTest, FillPolygonFillsAConcaveShape) {
    // An L shape.
    Canvas canvas(12, 12);
    const BPoint points[] = {BPoint(0, 0), BPoint(3, 0), BPoint(3, 6),
                             BPoint(9, 6), BPoint(9, 9), BPoint(0, 9)};
    canvas.painter.FillPolygon(points, 6, true, B_SOLID_HIGH);
    EXPECT_EQ(kBlack, canvas.surface.Rgb(1, 1));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(8, 8));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(6, 2));
    EXPECT_EQ(4 * 10 + 6 * 4, canvas.surface.CountPixels(kBlack));
}

TEST(PainterTest, OpenPolygonLeavesTheLastEdgeOut) {
    Canvas canvas(10, 10);
    const BPoint points[] = {BPoint(0, 0), BPoint(5, 0), BPoint(5, 5)};
    canvas.painter.StrokePolygon(points, 3, false, B_SOLID_HIGH);
    EXPECT_EQ(11, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(2, 2));
}

TEST(PainterTest, FillRegionFillsEachOfItsRects) {
    Canvas canvas(10, 10);
    BRegion region(BRect(0, 0, 1, 1));
    region.Include(BRect(5, 5, 7, 6));
    canvas.painter.FillRegion(region, B_SOLID_HIGH);
    EXPECT_EQ(4 + 6, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(7, 6));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(3, 3));
}

// #pragma mark - Ellipses, round rectangles, arcs

TEST(PainterTest, FillEllipseIsRoundAndInsideItsRect) {
    Canvas canvas(24, 24);
    canvas.painter.FillEllipse(BRect(2, 2, 21, 21), B_SOLID_HIGH);
    int count = canvas.surface.CountPixels(kBlack);
    EXPECT_NEAR(M_PI * 100.0, count, 20.0);
    EXPECT_EQ(BRect(2, 2, 21, 21), canvas.surface.InkBounds(kWhite));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(2, 2));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(11, 11));
    for (int y = 0; y < 24; y++) {
        for (int x = 0; x < 24; x++)
            ASSERT_EQ(canvas.surface.Rgb(x, y), canvas.surface.Rgb(23 - x, y)) << x << "," << y;
    }
}

TEST(PainterTest, StrokeEllipseLeavesTheInsideEmpty) {
    Canvas canvas(24, 24);
    canvas.painter.StrokeEllipse(BRect(2, 2, 21, 21), B_SOLID_HIGH);
    EXPECT_EQ(kWhite, canvas.surface.Rgb(11, 11));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(11, 2));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(2, 11));
    EXPECT_EQ(BRect(2, 2, 21, 21), canvas.surface.InkBounds(kWhite));
    int count = canvas.surface.CountPixels(kBlack);
    EXPECT_GT(count, 50);
    EXPECT_LT(count, 90);
}

TEST(PainterTest, FillRoundRectCutsItsCorners) {
    Canvas canvas(20, 20);
    canvas.painter.FillRoundRect(BRect(0, 0, 19, 19), 6, 6, B_SOLID_HIGH);
    EXPECT_EQ(kWhite, canvas.surface.Rgb(0, 0));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(19, 19));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(10, 0));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(0, 10));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(10, 10));
}

TEST(PainterTest, StrokeRoundRectLeavesTheInsideEmpty) {
    Canvas canvas(20, 20);
    canvas.painter.StrokeRoundRect(BRect(0, 0, 19, 19), 4, 4, B_SOLID_HIGH);
    EXPECT_EQ(kWhite, canvas.surface.Rgb(10, 10));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(10, 0));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(19, 10));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(0, 0));
}

TEST(PainterTest, FillArcCoversItsQuarter) {
    // 0 to 90 degrees, counter-clockwise: the upper right quarter.
    Canvas canvas(20, 20);
    canvas.painter.FillArc(BRect(0, 0, 19, 19), 0, 90, B_SOLID_HIGH);
    EXPECT_EQ(kBlack, canvas.surface.Rgb(14, 5));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(5, 5));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(14, 14));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(5, 14));
}

// #pragma mark - State: origin, clipping, patterns

TEST(PainterTest, OriginShiftsEverything) {
    Canvas canvas(20, 20);
    canvas.painter.SetOrigin(BPoint(10, 5));
    canvas.painter.FillRect(BRect(0, 0, 0, 0), B_SOLID_HIGH);
    EXPECT_EQ(kBlack, canvas.surface.Rgb(10, 5));
    EXPECT_EQ(1, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(BPoint(10, 5), canvas.painter.Origin());
}

TEST(PainterTest, ClippingLimitsDrawing) {
    Canvas canvas(10, 10);
    BRegion clipping(BRect(0, 0, 1, 1));
    clipping.Include(BRect(8, 8, 9, 9));
    canvas.painter.SetClipping(&clipping);
    canvas.painter.FillRect(BRect(0, 0, 9, 9), B_SOLID_HIGH);
    canvas.painter.StrokeLine(BPoint(0, 5), BPoint(9, 5), B_SOLID_HIGH);
    EXPECT_EQ(8, canvas.surface.CountPixels(kBlack));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(5, 5));

    canvas.painter.SetClipping(NULL);
    canvas.painter.FillRect(BRect(5, 5, 5, 5), B_SOLID_HIGH);
    EXPECT_EQ(kBlack, canvas.surface.Rgb(5, 5));
}

TEST(PainterTest, EmptyClippingDrawsNothing) {
    Canvas canvas(10, 10);
    BRegion nothing;
    canvas.painter.SetClipping(&nothing);
    canvas.painter.FillRect(BRect(0, 0, 9, 9), B_SOLID_HIGH);
    canvas.painter.FillEllipse(BRect(0, 0, 9, 9), B_SOLID_HIGH);
    canvas.painter.DrawString("Hi", 2, BPoint(1, 8), *be_plain_font, NULL);
    EXPECT_EQ(0, canvas.surface.CountPixelsNot(kWhite));
}

TEST(PainterTest, SolidLowPatternUsesTheLowColour) {
    Canvas canvas(4, 4, kBlack);
    canvas.painter.SetLowColor(kRed);
    canvas.painter.FillRect(BRect(0, 0, 3, 3), B_SOLID_LOW);
    EXPECT_EQ(16, canvas.surface.CountPixels(kRed));
}

TEST(PainterTest, MixedColoursPatternIsACheckerboard) {
    Canvas canvas(8, 8, kBlue);
    canvas.painter.FillRect(BRect(0, 0, 7, 7), B_MIXED_COLORS);
    for (int y = 0; y < 8; y++) {
        for (int x = 0; x < 8; x++)
            EXPECT_EQ((x + y) % 2 == 0 ? kBlack : kWhite, canvas.surface.Rgb(x, y));
    }
}

// #pragma mark - Targets

TEST(PainterTest, PainterWithoutAnImageSurfaceDoesNothing) {
    BPrivate::Painter painter(NULL);
    EXPECT_FALSE(painter.IsValid());
    painter.FillRect(BRect(0, 0, 10, 10), B_SOLID_HIGH);
    painter.StrokeLine(BPoint(0, 0), BPoint(5, 5), B_SOLID_HIGH);
    BPoint end = painter.DrawString("x", 1, BPoint(0, 10), *be_plain_font, NULL);
    EXPECT_GT(end.x, 0.0f);

    cairo_surface_t* a8 = cairo_image_surface_create(CAIRO_FORMAT_A8, 4, 4);
    BPrivate::Painter wrongFormat(a8);
    EXPECT_FALSE(wrongFormat.IsValid());
    wrongFormat.FillRect(BRect(0, 0, 3, 3), B_SOLID_HIGH);
    cairo_surface_destroy(a8);
}

TEST(PainterTest, Rgb24SurfacesAreDrawnToo) {
    testing_support::GraphicsTestSurface surface(4, 4, kWhite, CAIRO_FORMAT_RGB24);
    BPrivate::Painter painter(surface.Surface());
    ASSERT_TRUE(painter.IsValid());
    painter.SetHighColor(kRed);
    painter.SetDrawingMode(B_OP_BLEND);
    painter.FillRect(BRect(0, 0, 0, 0), B_SOLID_HIGH);
    EXPECT_EQ(make_color(255, 128, 128), surface.Rgb(0, 0));
}

TEST(PainterTest, NonFiniteCoordinatesDrawNothingHarmful) {
    Canvas canvas(8, 8);
    canvas.painter.FillRect(BRect(NAN, 0, 3, 3), B_SOLID_HIGH);
    canvas.painter.FillEllipse(BRect(-INFINITY, -INFINITY, INFINITY, INFINITY), B_SOLID_HIGH);
    canvas.painter.StrokeLine(BPoint(NAN, NAN), BPoint(3, 3), B_SOLID_HIGH);
    const BPoint points[] = {BPoint(1e30f, 0), BPoint(-1e30f, 5), BPoint(0, 1e30f)};
    canvas.painter.FillPolygon(points, 3, true, B_SOLID_HIGH);
    canvas.painter.DrawBitmap(NULL, BRect(0, 0, 1, 1), BRect(0, 0, 1, 1));
    canvas.painter.FillPolygon(NULL, 3, true, B_SOLID_HIGH);
    SUCCEED();
}
