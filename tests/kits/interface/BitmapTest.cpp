#include <Bitmap.h>

#include <gtest/gtest.h>

#include <string.h>

#include <memory>
#include <vector>

namespace {

// B, G, R, A in memory.
void put_bgra(uint8* pixel, uint8 red, uint8 green, uint8 blue, uint8 alpha) {
    pixel[0] = blue;
    pixel[1] = green;
    pixel[2] = red;
    pixel[3] = alpha;
}

rgb_color bgra_at(const BBitmap& bitmap, int x, int y) {
    const uint8* pixel =
        static_cast<const uint8*>(bitmap.Bits()) + y * bitmap.BytesPerRow() + 4 * x;
    return rgb_color{pixel[2], pixel[1], pixel[0], pixel[3]};
}

uint8 index_at(const BBitmap& bitmap, int x, int y) {
    return static_cast<const uint8*>(bitmap.Bits())[y * bitmap.BytesPerRow() + x];
}

} // namespace

TEST(BitmapTest, RowsArePaddedToFourBytes) {
    EXPECT_EQ(16, BBitmap(BRect(0, 0, 14, 0), B_CMAP8).BytesPerRow());
    EXPECT_EQ(16, BBitmap(BRect(0, 0, 15, 0), B_CMAP8).BytesPerRow());
    EXPECT_EQ(20, BBitmap(BRect(0, 0, 16, 0), B_CMAP8).BytesPerRow());
    EXPECT_EQ(12, BBitmap(BRect(0, 0, 2, 0), B_RGB32).BytesPerRow());
    EXPECT_EQ(8, BBitmap(BRect(0, 0, 2, 0), B_RGB16).BytesPerRow());
    EXPECT_EQ(12, BBitmap(BRect(0, 0, 3, 0), B_RGB24).BytesPerRow());
}

TEST(BitmapTest, BitsLengthIsRowsTimesBytesPerRow) {
    BBitmap bitmap(BRect(0, 0, 31, 31), B_CMAP8);
    ASSERT_EQ(B_OK, bitmap.InitCheck());
    EXPECT_EQ(32 * 32, bitmap.BitsLength());
    BBitmap wide(BRect(0, 0, 4, 2), B_RGBA32);
    EXPECT_EQ(3 * 20, wide.BitsLength());
    EXPECT_NE(nullptr, wide.Bits());
}

TEST(BitmapTest, BoundsAndColorSpaceAreKept) {
    BBitmap bitmap(BRect(0, 0, 15, 15), B_RGBA32);
    EXPECT_TRUE(bitmap.IsValid());
    EXPECT_EQ(BRect(0, 0, 15, 15), bitmap.Bounds());
    EXPECT_EQ(B_RGBA32, bitmap.ColorSpace());
}

TEST(BitmapTest, InvalidBoundsFailInitCheck) {
    BBitmap bitmap(BRect(), B_RGB32);
    EXPECT_EQ(B_BAD_VALUE, bitmap.InitCheck());
    EXPECT_FALSE(bitmap.IsValid());
    EXPECT_EQ(nullptr, bitmap.Bits());
    EXPECT_EQ(0, bitmap.BitsLength());
    BBitmap notFinite(BRect(0, 0, INFINITY, 3), B_RGB32);
    EXPECT_EQ(B_BAD_VALUE, notFinite.InitCheck());
}

TEST(BitmapTest, UnsupportedColorSpaceFailsInitCheck) {
    BBitmap bitmap(BRect(0, 0, 3, 3), B_YUV422);
    EXPECT_EQ(B_BAD_VALUE, bitmap.InitCheck());
    BBitmap none(BRect(0, 0, 3, 3), B_NO_COLOR_SPACE);
    EXPECT_EQ(B_BAD_VALUE, none.InitCheck());
}

TEST(BitmapTest, HugeBitmapFailsCleanly) {
    BBitmap bitmap(BRect(0, 0, 1e9f, 1e9f), B_RGBA32);
    EXPECT_NE(B_OK, bitmap.InitCheck());
    BBitmap big(BRect(0, 0, 30000, 30000), B_RGBA32);
    EXPECT_EQ(B_NO_MEMORY, big.InitCheck());
}

TEST(BitmapTest, AcceptsViewsIsRecordedInTheFlags) {
    BBitmap bitmap(BRect(0, 0, 7, 7), B_RGB32, true);
    EXPECT_NE(0u, bitmap.Flags() & B_BITMAP_ACCEPTS_VIEWS);
    BBitmap plain(BRect(0, 0, 7, 7), B_RGB32);
    EXPECT_EQ(0u, plain.Flags() & B_BITMAP_ACCEPTS_VIEWS);
}

TEST(BitmapTest, ClearToWhiteUsesTheWhiteEntryInPaletteBitmaps) {
    BBitmap bitmap(BRect(0, 0, 3, 3), B_BITMAP_CLEAR_TO_WHITE, B_CMAP8);
    ASSERT_EQ(B_OK, bitmap.InitCheck());
    EXPECT_EQ(63, index_at(bitmap, 2, 2));
    BBitmap rgb(BRect(0, 0, 3, 3), B_BITMAP_CLEAR_TO_WHITE, B_RGB32);
    EXPECT_EQ(make_color(255, 255, 255, 255), bgra_at(rgb, 1, 1));
}

TEST(BitmapTest, ExplicitBytesPerRowMustHoldARow) {
    BBitmap padded(BRect(0, 0, 3, 1), 0, B_CMAP8, 64);
    ASSERT_EQ(B_OK, padded.InitCheck());
    EXPECT_EQ(64, padded.BytesPerRow());
    EXPECT_EQ(128, padded.BitsLength());
    BBitmap tooNarrow(BRect(0, 0, 3, 1), 0, B_RGB32, 8);
    EXPECT_EQ(B_BAD_VALUE, tooNarrow.InitCheck());
}

TEST(BitmapTest, ImportBitsInTheSameSpaceCopiesBytes) {
    BBitmap bitmap(BRect(0, 0, 1, 1), B_RGBA32);
    uint8 data[16];
    for (int i = 0; i < 16; i++)
        data[i] = (uint8)(i * 13);
    ASSERT_EQ(B_OK, bitmap.ImportBits(data, sizeof(data), 8, 0, B_RGBA32));
    EXPECT_EQ(0, memcmp(data, bitmap.Bits(), sizeof(data)));
}

TEST(BitmapTest, PaletteBitsConvertToRgbaThroughThePalette) {
    BBitmap bitmap(BRect(0, 0, 2, 0), B_RGBA32);
    uint8 indices[4] = {27, 249, B_TRANSPARENT_MAGIC_CMAP8, 0};
    ASSERT_EQ(B_OK, bitmap.ImportBits(indices, 4, 4, 0, B_CMAP8));
    EXPECT_EQ(make_color(216, 216, 216, 255), bgra_at(bitmap, 0, 0));
    EXPECT_EQ(make_color(255, 203, 0, 255), bgra_at(bitmap, 1, 0));
    EXPECT_EQ(0, bgra_at(bitmap, 2, 0).alpha);
}

TEST(BitmapTest, TransparentPaletteIndexBecomesTheMagicColorInRgb32) {
    BBitmap bitmap(BRect(0, 0, 0, 0), B_RGB32);
    uint8 index = B_TRANSPARENT_MAGIC_CMAP8;
    ASSERT_EQ(B_OK, bitmap.ImportBits(&index, 1, 4, 0, B_CMAP8));
    uint32 pixel;
    memcpy(&pixel, bitmap.Bits(), 4);
    EXPECT_EQ(B_TRANSPARENT_MAGIC_RGBA32, pixel);
}

TEST(BitmapTest, RgbBitsConvertToTheNearestPaletteIndex) {
    BBitmap bitmap(BRect(0, 0, 3, 0), B_CMAP8);
    uint8 pixels[16];
    put_bgra(pixels, 216, 216, 216, 255);
    put_bgra(pixels + 4, 255, 255, 255, 255);
    put_bgra(pixels + 8, 250, 250, 250, 255);
    put_bgra(pixels + 12, 0, 0, 229, 255);
    ASSERT_EQ(B_OK, bitmap.ImportBits(pixels, sizeof(pixels), 16, 0, B_RGB32));
    EXPECT_EQ(27, index_at(bitmap, 0, 0));
    EXPECT_EQ(63, index_at(bitmap, 1, 0));
    EXPECT_EQ(31, index_at(bitmap, 2, 0));
    EXPECT_EQ(33, index_at(bitmap, 3, 0));
}

TEST(BitmapTest, TransparentRgbaBecomesTheTransparentIndex) {
    BBitmap bitmap(BRect(0, 0, 2, 0), B_CMAP8);
    uint8 pixels[12];
    put_bgra(pixels, 10, 20, 30, 0);
    put_bgra(pixels + 4, 0, 0, 0, 100);
    put_bgra(pixels + 8, 0, 0, 0, 200);
    ASSERT_EQ(B_OK, bitmap.ImportBits(pixels, sizeof(pixels), 12, 0, B_RGBA32));
    EXPECT_EQ(B_TRANSPARENT_MAGIC_CMAP8, index_at(bitmap, 0, 0));
    // Spaces without alpha cut at half transparency.
    EXPECT_EQ(B_TRANSPARENT_MAGIC_CMAP8, index_at(bitmap, 1, 0));
    EXPECT_EQ(0, index_at(bitmap, 2, 0));
}

TEST(BitmapTest, MagicColorInRgb32BecomesTheTransparentIndex) {
    BBitmap bitmap(BRect(0, 0, 0, 0), B_CMAP8);
    uint32 pixel = B_TRANSPARENT_MAGIC_RGBA32;
    ASSERT_EQ(B_OK, bitmap.ImportBits(&pixel, 4, 4, 0, B_RGB32));
    EXPECT_EQ(B_TRANSPARENT_MAGIC_CMAP8, index_at(bitmap, 0, 0));
}

TEST(BitmapTest, SetBitsReadsPaletteRowsUnpadded) {
    BBitmap bitmap(BRect(0, 0, 2, 2), B_RGB32);
    // Three rows of three indices, back to back.
    uint8 indices[9] = {0, 63, 0, 63, 0, 63, 27, 27, 27};
    bitmap.SetBits(indices, sizeof(indices), 0, B_CMAP8);
    EXPECT_EQ(make_color(255, 255, 255), bgra_at(bitmap, 1, 0));
    EXPECT_EQ(make_color(255, 255, 255), bgra_at(bitmap, 0, 1));
    EXPECT_EQ(make_color(0, 0, 0), bgra_at(bitmap, 1, 1));
    EXPECT_EQ(make_color(216, 216, 216), bgra_at(bitmap, 2, 2));
}

TEST(BitmapTest, SetBitsStartsAtTheByteOffset) {
    BBitmap bitmap(BRect(0, 0, 3, 1), B_CMAP8);
    uint8 indices[2] = {5, 6};
    bitmap.SetBits(indices, 2, 6, B_CMAP8);
    EXPECT_EQ(0, index_at(bitmap, 1, 1));
    EXPECT_EQ(5, index_at(bitmap, 2, 1));
    EXPECT_EQ(6, index_at(bitmap, 3, 1));
}

TEST(BitmapTest, ImportBitsNeverReadsPastTheLength) {
    BBitmap bitmap(BRect(0, 0, 3, 3), B_RGBA32);
    // Exactly six pixels on the heap: the sanitizers catch any over-read.
    std::unique_ptr<uint8[]> data(new uint8[24]);
    for (int i = 0; i < 6; i++)
        put_bgra(data.get() + 4 * i, 1, 2, 3, 255);
    ASSERT_EQ(B_OK, bitmap.ImportBits(data.get(), 24, 16, 0, B_RGBA32));
    EXPECT_EQ(make_color(1, 2, 3, 255), bgra_at(bitmap, 3, 0));
    EXPECT_EQ(make_color(1, 2, 3, 255), bgra_at(bitmap, 1, 1));
    EXPECT_EQ(make_color(0, 0, 0, 0), bgra_at(bitmap, 2, 1));
}

TEST(BitmapTest, ImportBitsRejectsBadArguments) {
    BBitmap bitmap(BRect(0, 0, 3, 3), B_RGBA32);
    uint8 data[64] = {};
    EXPECT_EQ(B_BAD_VALUE, bitmap.ImportBits(NULL, 64, 16, 0, B_RGBA32));
    EXPECT_EQ(B_BAD_VALUE, bitmap.ImportBits(data, -1, 16, 0, B_RGBA32));
    EXPECT_EQ(B_BAD_VALUE, bitmap.ImportBits(data, 64, 16, -4, B_RGBA32));
    EXPECT_EQ(B_BAD_VALUE, bitmap.ImportBits(data, 64, 16, 1000, B_RGBA32));
    EXPECT_EQ(B_BAD_VALUE, bitmap.ImportBits(data, 64, 2, 0, B_RGBA32));
    EXPECT_EQ(B_BAD_VALUE, bitmap.ImportBits(data, 64, 16, 0, B_YUV420));
    BBitmap invalid(BRect(), B_RGBA32);
    EXPECT_EQ(B_NO_INIT, invalid.ImportBits(data, 64, 16, 0, B_RGBA32));
}

TEST(BitmapTest, ImportBitsCopiesAPartIntoPlace) {
    BBitmap bitmap(BRect(0, 0, 3, 3), B_CMAP8);
    // A 4 x 2 source; its right half goes to the bitmap's bottom-left corner.
    uint8 source[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_EQ(B_OK, bitmap.ImportBits(source, 8, 4, B_CMAP8, BPoint(2, 0), BPoint(0, 2), 2, 2));
    EXPECT_EQ(3, index_at(bitmap, 0, 2));
    EXPECT_EQ(4, index_at(bitmap, 1, 2));
    EXPECT_EQ(7, index_at(bitmap, 0, 3));
    EXPECT_EQ(8, index_at(bitmap, 1, 3));
    EXPECT_EQ(0, index_at(bitmap, 2, 2));
    EXPECT_EQ(0, index_at(bitmap, 0, 0));
}

TEST(BitmapTest, ImportBitsClipsToTheBitmap) {
    BBitmap bitmap(BRect(0, 0, 1, 1), B_CMAP8);
    uint8 source[16];
    for (int i = 0; i < 16; i++)
        source[i] = (uint8)(i + 1);
    ASSERT_EQ(B_OK, bitmap.ImportBits(source, 16, 4, B_CMAP8, BPoint(0, 0), BPoint(-1, -1), 4, 4));
    EXPECT_EQ(6, index_at(bitmap, 0, 0));
    EXPECT_EQ(7, index_at(bitmap, 1, 0));
    EXPECT_EQ(10, index_at(bitmap, 0, 1));
    EXPECT_EQ(11, index_at(bitmap, 1, 1));
}

TEST(BitmapTest, ImportBitsFromAnotherBitmapConverts) {
    BBitmap source(BRect(0, 0, 1, 0), B_CMAP8);
    uint8 indices[2] = {27, B_TRANSPARENT_MAGIC_CMAP8};
    ASSERT_EQ(B_OK, source.ImportBits(indices, 2, 4, 0, B_CMAP8));
    BBitmap target(BRect(0, 0, 1, 0), B_RGBA32);
    ASSERT_EQ(B_OK, target.ImportBits(&source));
    EXPECT_EQ(make_color(216, 216, 216, 255), bgra_at(target, 0, 0));
    EXPECT_EQ(0, bgra_at(target, 1, 0).alpha);

    BBitmap otherSize(BRect(0, 0, 5, 5), B_RGBA32);
    EXPECT_EQ(B_BAD_VALUE, otherSize.ImportBits(&source));
    EXPECT_EQ(B_BAD_VALUE, target.ImportBits((const BBitmap*)NULL));
}

TEST(BitmapTest, CopiesHaveTheirOwnPixels) {
    BBitmap bitmap(BRect(0, 0, 1, 1), B_CMAP8);
    static_cast<uint8*>(bitmap.Bits())[0] = 42;
    BBitmap copy(bitmap);
    ASSERT_EQ(B_OK, copy.InitCheck());
    EXPECT_EQ(42, index_at(copy, 0, 0));
    static_cast<uint8*>(copy.Bits())[0] = 7;
    EXPECT_EQ(42, index_at(bitmap, 0, 0));

    BBitmap fromPointer(&bitmap, true);
    EXPECT_EQ(42, index_at(fromPointer, 0, 0));
    EXPECT_NE(0u, fromPointer.Flags() & B_BITMAP_ACCEPTS_VIEWS);
}

TEST(BitmapTest, RgbaRoundTripsThroughOtherSpaces) {
    const color_space spaces[] = {B_RGB32, B_RGB32_BIG, B_RGBA32_BIG, B_RGB24, B_RGB24_BIG};
    uint8 pixel[4];
    put_bgra(pixel, 12, 200, 99, 255);
    for (color_space space : spaces) {
        BBitmap middle(BRect(0, 0, 0, 0), space);
        ASSERT_EQ(B_OK, middle.ImportBits(pixel, 4, 4, 0, B_RGBA32)) << space;
        BBitmap back(BRect(0, 0, 0, 0), B_RGBA32);
        ASSERT_EQ(B_OK, back.ImportBits(&middle)) << space;
        EXPECT_EQ(make_color(12, 200, 99, 255), bgra_at(back, 0, 0)) << space;
    }
}
