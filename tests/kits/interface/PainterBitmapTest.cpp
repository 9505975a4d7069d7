#include <Bitmap.h>

#include <PainterTestCanvas.h>

#include <gtest/gtest.h>

using namespace testing_support;

typedef PainterCanvas Canvas;

namespace {

BBitmap* palette_bitmap(int width, int height, const uint8* indices) {
    BBitmap* bitmap = new BBitmap(BRect(0, 0, width - 1, height - 1), B_CMAP8);
    bitmap->ImportBits(indices, width * height, width, B_CMAP8, B_ORIGIN, B_ORIGIN, width, height);
    return bitmap;
}

BBitmap* rgba_bitmap(const rgb_color* pixels, int width, int height) {
    BBitmap* bitmap = new BBitmap(BRect(0, 0, width - 1, height - 1), B_RGBA32);
    uint8* bits = static_cast<uint8*>(bitmap->Bits());
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            uint8* pixel = bits + y * bitmap->BytesPerRow() + 4 * x;
            const rgb_color& color = pixels[y * width + x];
            pixel[0] = color.blue;
            pixel[1] = color.green;
            pixel[2] = color.red;
            pixel[3] = color.alpha;
        }
    }
    return bitmap;
}

} // namespace

// #pragma mark - Bitmaps

TEST(PainterBitmapTest, OverModeSkipsTheTransparentPaletteIndex) {
    Canvas canvas(2, 1, kRed);
    const uint8 indices[2] = {27, B_TRANSPARENT_MAGIC_CMAP8};
    BBitmap* bitmap = palette_bitmap(2, 1, indices);
    canvas.painter.SetDrawingMode(B_OP_OVER);
    canvas.painter.DrawBitmap(bitmap, bitmap->Bounds(), bitmap->Bounds());
    EXPECT_EQ(make_color(216, 216, 216), canvas.surface.Rgb(0, 0));
    EXPECT_EQ(kRed, canvas.surface.Rgb(1, 0));
    delete bitmap;
}

TEST(PainterBitmapTest, CopyModeDrawsTheTransparentIndexAsTheMagicColour) {
    Canvas canvas(2, 1, kRed);
    const uint8 indices[2] = {63, B_TRANSPARENT_MAGIC_CMAP8};
    BBitmap* bitmap = palette_bitmap(2, 1, indices);
    canvas.painter.DrawBitmap(bitmap, bitmap->Bounds(), bitmap->Bounds());
    EXPECT_EQ(kWhite, canvas.surface.Rgb(0, 0));
    EXPECT_EQ(make_color(0x77, 0x74, 0x77), canvas.surface.Rgb(1, 0));
    delete bitmap;
}

TEST(PainterBitmapTest, RgbBitmapIsCopiedPixelForPixel) {
    Canvas canvas(4, 4);
    BBitmap bitmap(BRect(0, 0, 1, 1), B_RGB32);
    uint8* bits = static_cast<uint8*>(bitmap.Bits());
    const uint8 pixels[4][4] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}, {10, 11, 12, 0}};
    for (int i = 0; i < 4; i++) {
        uint8* pixel = bits + (i / 2) * bitmap.BytesPerRow() + 4 * (i % 2);
        for (int j = 0; j < 4; j++)
            pixel[j] = pixels[i][j];
    }
    canvas.painter.DrawBitmap(&bitmap, bitmap.Bounds(), BRect(1, 1, 2, 2));
    EXPECT_EQ(make_color(3, 2, 1), canvas.surface.Rgb(1, 1));
    EXPECT_EQ(make_color(6, 5, 4), canvas.surface.Rgb(2, 1));
    EXPECT_EQ(make_color(12, 11, 10), canvas.surface.Rgb(2, 2));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(0, 0));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(3, 3));
}

TEST(PainterBitmapTest, OverModeSkipsClearAndBlendsTranslucentRgbaPixels) {
    Canvas canvas(3, 1, kWhite);
    const rgb_color pixels[3] = {make_color(0, 0, 0, 0), make_color(0, 0, 0, 255),
                                 make_color(0, 0, 0, 128)};
    BBitmap* bitmap = rgba_bitmap(pixels, 3, 1);
    canvas.painter.SetDrawingMode(B_OP_OVER);
    canvas.painter.DrawBitmap(bitmap, bitmap->Bounds(), bitmap->Bounds());
    EXPECT_EQ(kWhite, canvas.surface.Rgb(0, 0));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(1, 0));
    EXPECT_EQ(make_color(127, 127, 127), canvas.surface.Rgb(2, 0));
    delete bitmap;
}

TEST(PainterBitmapTest, ConstantAlphaBlendsBitmapsByTheHighColoursAlpha) {
    Canvas canvas(1, 1, kWhite);
    const rgb_color pixels[1] = {make_color(0, 0, 0, 255)};
    BBitmap* bitmap = rgba_bitmap(pixels, 1, 1);
    canvas.painter.SetDrawingMode(B_OP_ALPHA);
    canvas.painter.SetBlendingMode(B_CONSTANT_ALPHA, B_ALPHA_OVERLAY);
    canvas.painter.SetHighColor(make_color(0, 0, 0, 64));
    canvas.painter.DrawBitmap(bitmap, bitmap->Bounds(), bitmap->Bounds());
    EXPECT_EQ(make_color(191, 191, 191), canvas.surface.Rgb(0, 0));
    delete bitmap;
}

TEST(PainterBitmapTest, BitmapIsScaledWhenTheRectsDiffer) {
    Canvas canvas(4, 4);
    const uint8 indices[4] = {0, 63, 42, 52};
    BBitmap* bitmap = palette_bitmap(2, 2, indices);
    canvas.painter.DrawBitmap(bitmap, bitmap->Bounds(), BRect(0, 0, 3, 3));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(0, 0));
    EXPECT_EQ(kBlack, canvas.surface.Rgb(1, 1));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(2, 0));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(3, 1));
    EXPECT_EQ(kRed, canvas.surface.Rgb(0, 3));
    EXPECT_EQ(make_color(0, 255, 0), canvas.surface.Rgb(3, 3));
    delete bitmap;
}

TEST(PainterBitmapTest, BitmapSourceRectPicksAPart) {
    Canvas canvas(4, 4);
    const uint8 indices[4] = {0, 63, 42, 52};
    BBitmap* bitmap = palette_bitmap(2, 2, indices);
    canvas.painter.DrawBitmap(bitmap, BRect(1, 1, 1, 1), BRect(0, 0, 0, 0));
    EXPECT_EQ(make_color(0, 255, 0), canvas.surface.Rgb(0, 0));
    EXPECT_EQ(1, canvas.surface.CountPixelsNot(kWhite));
    delete bitmap;
}

TEST(PainterBitmapTest, BitmapWithOffsetBoundsReadsItsOwnCoordinates) {
    Canvas canvas(4, 4);
    BBitmap bitmap(BRect(10, 10, 11, 11), B_CMAP8);
    const uint8 indices[4] = {0, 63, 42, 52};
    bitmap.ImportBits(indices, 4, 2, B_CMAP8, B_ORIGIN, B_ORIGIN, 2, 2);
    canvas.painter.DrawBitmap(&bitmap, BRect(11, 10, 11, 10), BRect(0, 0, 0, 0));
    EXPECT_EQ(kWhite, canvas.surface.Rgb(0, 0));
    canvas.painter.DrawBitmap(&bitmap, BRect(10, 11, 10, 11), BRect(1, 0, 1, 0));
    EXPECT_EQ(kRed, canvas.surface.Rgb(1, 0));
}
