#include <Font.h>
#include <Region.h>

#include <string>

#include <PainterTestCanvas.h>

#include <gtest/gtest.h>

using namespace testing_support;

typedef PainterCanvas Canvas;

// #pragma mark - Text

TEST(PainterTextTest, DrawStringInksPixelsAndAdvancesThePen) {
    Canvas canvas(80, 20);
    BPoint end = canvas.painter.DrawString("Hello", 5, BPoint(2, 14), *be_plain_font, NULL);
    EXPECT_EQ(BPoint(2 + be_plain_font->StringWidth("Hello"), 14), end);
    BRect ink = canvas.surface.InkBounds(kWhite);
    ASSERT_TRUE(ink.IsValid());
    EXPECT_GE(ink.left, 2.0f);
    EXPECT_LE(ink.right, end.x + 1);
    EXPECT_GT(ink.Width(), 15.0f);
}

TEST(PainterTextTest, GlyphsSitOnTheBaselineRow) {
    Canvas canvas(30, 30);
    canvas.painter.DrawString("H", 1, BPoint(5, 20), *be_plain_font, NULL);
    BRect ink = canvas.surface.InkBounds(kWhite);
    EXPECT_EQ(20.0f, ink.bottom);
    EXPECT_LT(ink.top, 15.0f);
}

TEST(PainterTextTest, DrawStringStopsAtTheLength) {
    Canvas shortText(80, 20);
    Canvas fullText(80, 20);
    shortText.painter.DrawString("Hello", 2, BPoint(2, 14), *be_plain_font, NULL);
    fullText.painter.DrawString("He", -1, BPoint(2, 14), *be_plain_font, NULL);
    EXPECT_EQ(shortText.surface.InkBounds(kWhite), fullText.surface.InkBounds(kWhite));
}

TEST(PainterTextTest, RotatedTextRunsUpwards) {
    BFont font(be_plain_font);
    font.SetRotation(90.0f);
    float width = font.StringWidth("Terminal");

    Canvas canvas(30, 80);
    BPoint end = canvas.painter.DrawString("Terminal", -1, BPoint(20, 70), font, NULL);
    EXPECT_NEAR(20.0f, end.x, 0.01f);
    EXPECT_NEAR(70.0f - width, end.y, 0.01f);

    BRect ink = canvas.surface.InkBounds(kWhite);
    ASSERT_TRUE(ink.IsValid());
    EXPECT_GT(ink.Height(), 2 * ink.Width());
    // The string starts in the baseline pixel's row and runs up from there
    // (turned glyphs are not hinted: their edges may touch one more row).
    EXPECT_LE(ink.bottom, 71.0f);
    EXPECT_GE(ink.bottom, 68.0f);
    EXPECT_GE(ink.top, 70.0f - width - 1);
    // The glyphs stand to the left of the baseline column.
    EXPECT_LE(ink.right, 21.0f);
    EXPECT_LT(ink.left, 15.0f);
}

TEST(PainterTextTest, LevelTextIsWiderThanTall) {
    Canvas canvas(80, 30);
    canvas.painter.DrawString("Terminal", -1, BPoint(2, 20), *be_plain_font, NULL);
    BRect ink = canvas.surface.InkBounds(kWhite);
    EXPECT_GT(ink.Width(), 2 * ink.Height());
}

TEST(PainterTextTest, CopyModeTextFadesIntoTheLowColour) {
    Canvas canvas(60, 20, kBlue);
    canvas.painter.DrawString("Wave", -1, BPoint(2, 14), *be_plain_font, NULL);
    int changed = 0;
    for (int y = 0; y < 20; y++) {
        for (int x = 0; x < 60; x++) {
            rgb_color color = canvas.surface.Rgb(x, y);
            if (color == kBlue)
                continue;
            changed++;
            ASSERT_EQ(color.red, color.green);
            ASSERT_EQ(color.green, color.blue);
        }
    }
    EXPECT_GT(changed, 20);
}

TEST(PainterTextTest, OverModeTextFadesIntoTheTarget) {
    Canvas canvas(60, 20, kBlue);
    canvas.painter.SetDrawingMode(B_OP_OVER);
    canvas.painter.DrawString("Wave", -1, BPoint(2, 14), *be_plain_font, NULL);
    bool tinted = false;
    for (int y = 0; y < 20; y++) {
        for (int x = 0; x < 60; x++) {
            rgb_color color = canvas.surface.Rgb(x, y);
            if (color != kBlue && color != kBlack && color.blue > color.red)
                tinted = true;
        }
    }
    EXPECT_TRUE(tinted);
}

TEST(PainterTextTest, AliasedTextHasOnlyFullPixels) {
    BFont font(be_plain_font);
    font.SetFlags(B_DISABLE_ANTIALIASING);
    Canvas canvas(60, 20);
    canvas.painter.DrawString("Wave", -1, BPoint(2, 14), font, NULL);
    EXPECT_GT(canvas.surface.CountPixels(kBlack), 10);
    EXPECT_EQ(60 * 20, canvas.surface.CountPixels(kBlack) + canvas.surface.CountPixels(kWhite));
}

TEST(PainterTextTest, TextIsClippedToTheRegion) {
    Canvas canvas(60, 20);
    BRegion clipping(BRect(0, 0, 9, 19));
    canvas.painter.SetClipping(&clipping);
    canvas.painter.DrawString("Wave Wave", -1, BPoint(2, 14), *be_plain_font, NULL);
    BRect ink = canvas.surface.InkBounds(kWhite);
    ASSERT_TRUE(ink.IsValid());
    EXPECT_LE(ink.right, 9.0f);
}

TEST(PainterTextTest, SameTextDrawsTheSamePixelsEveryTime) {
    Canvas first(60, 20);
    Canvas second(60, 20);
    first.painter.DrawString("Glimrow", -1, BPoint(3, 14), *be_plain_font, NULL);
    second.painter.DrawString("Glimrow", -1, BPoint(3, 14), *be_plain_font, NULL);
    for (int y = 0; y < 20; y++) {
        for (int x = 0; x < 60; x++)
            ASSERT_EQ(first.surface.Pixel(x, y), second.surface.Pixel(x, y));
    }
}

TEST(PainterTextTest, ClippedTextDoesNotLimitLaterDrawing) {
    // Rendered strings are kept for redrawing; a clipped first drawing must
    // not cut later ones short.
    Canvas clipped(60, 20);
    BRegion clipping(BRect(0, 0, 9, 19));
    clipped.painter.SetClipping(&clipping);
    clipped.painter.DrawString("Kept text", -1, BPoint(2, 14), *be_plain_font, NULL);

    Canvas whole(60, 20);
    whole.painter.DrawString("Kept text", -1, BPoint(2, 14), *be_plain_font, NULL);
    EXPECT_GT(whole.surface.InkBounds(kWhite).right, 30.0f);
}

TEST(PainterTextTest, HugeTextIsDrawnOnlyWhereVisible) {
    BFont font(be_plain_font);
    font.SetSize(200.0f);
    std::string text(2000, 'W');
    Canvas canvas(40, 40);
    BPoint end = canvas.painter.DrawString(text.c_str(), -1, BPoint(0, 35), font, NULL);
    EXPECT_FLOAT_EQ(font.StringWidth(text.c_str()), end.x);
    EXPECT_GT(canvas.surface.CountPixelsNot(kWhite), 20);
}

TEST(PainterTextTest, FractionalBaselinesKeepTheirOwnRendering) {
    Canvas first(60, 20);
    Canvas second(60, 20);
    first.painter.DrawString("Ab", -1, BPoint(2.0f, 14.0f), *be_plain_font, NULL);
    second.painter.DrawString("Ab", -1, BPoint(7.0f, 14.0f), *be_plain_font, NULL);
    // The same string five pixels further right: the same pixels, moved.
    for (int y = 0; y < 20; y++) {
        for (int x = 0; x < 50; x++)
            ASSERT_EQ(first.surface.Pixel(x, y), second.surface.Pixel(x + 5, y));
    }
}
