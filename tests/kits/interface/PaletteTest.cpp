#include <Bitmap.h>
#include <InterfaceDefs.h>

#include <gtest/gtest.h>

#include <limits.h>

namespace {

// The same weighted distance the palette lookups use.
int distance(rgb_color first, rgb_color second) {
    int redMean = (first.red + second.red) / 2;
    int red = first.red - second.red;
    int green = first.green - second.green;
    int blue = first.blue - second.blue;
    return (((512 + redMean) * red * red) >> 8) + 4 * green * green +
           (((767 - redMean) * blue * blue) >> 8);
}

uint8 nearest_by_search(rgb_color color) {
    const color_map* map = system_colors();
    int best = INT_MAX;
    uint8 index = 0;
    for (int i = 0; i < 255; i++) {
        int d = distance(color, map->color_list[i]);
        if (d < best) {
            best = d;
            index = (uint8)i;
        }
    }
    return index;
}

uint8 cmap8_index_for(rgb_color color) {
    uint8 pixel[4] = {color.blue, color.green, color.red, color.alpha};
    BBitmap bitmap(BRect(0, 0, 0, 0), B_CMAP8);
    EXPECT_EQ(B_OK, bitmap.ImportBits(pixel, 4, 4, 0, B_RGBA32));
    return *static_cast<uint8*>(bitmap.Bits());
}

} // namespace

TEST(PaletteTest, PaletteHoldsTheBeColorsAtTheirIndices) {
    const color_map* map = system_colors();
    ASSERT_NE(nullptr, map);
    EXPECT_EQ(make_color(0, 0, 0), map->color_list[0]);
    EXPECT_EQ(make_color(8, 8, 8), map->color_list[1]);
    EXPECT_EQ(make_color(216, 216, 216), map->color_list[27]);
    EXPECT_EQ(make_color(0, 0, 229), map->color_list[33]);
    EXPECT_EQ(make_color(0, 152, 51), map->color_list[62]);
    EXPECT_EQ(make_color(255, 255, 255), map->color_list[63]);
    EXPECT_EQ(make_color(230, 134, 0), map->color_list[152]);
    EXPECT_EQ(make_color(51, 102, 152), map->color_list[180]);
    EXPECT_EQ(make_color(255, 175, 19), map->color_list[189]);
    EXPECT_EQ(make_color(255, 227, 70), map->color_list[229]);
    EXPECT_EQ(make_color(255, 203, 0), map->color_list[249]);
    EXPECT_EQ(make_color(255, 255, 203), map->color_list[254]);
}

TEST(PaletteTest, TransparentIndexIsWhiteWithNoAlpha) {
    const color_map* map = system_colors();
    EXPECT_EQ(make_color(255, 255, 255, 0), map->color_list[B_TRANSPARENT_MAGIC_CMAP8]);
    for (int i = 0; i < 255; i++)
        EXPECT_EQ(255, map->color_list[i].alpha) << i;
}

TEST(PaletteTest, GreyRampStepsByEight) {
    const color_map* map = system_colors();
    for (int i = 0; i < 32; i++)
        EXPECT_EQ(make_color(8 * i, 8 * i, 8 * i), map->color_list[i]);
}

TEST(PaletteTest, IndexMapGivesTheNearestEntry) {
    const color_map* map = system_colors();
    for (int key = 0; key < 32768; key += 37) {
        int red = (key >> 10) & 0x1f;
        int green = (key >> 5) & 0x1f;
        int blue = key & 0x1f;
        rgb_color color = make_color((red << 3) | (red >> 2), (green << 3) | (green >> 2),
                                     (blue << 3) | (blue >> 2));
        uint8 index = map->index_map[key];
        ASSERT_NE(B_TRANSPARENT_MAGIC_CMAP8, index);
        ASSERT_EQ(distance(color, map->color_list[nearest_by_search(color)]),
                  distance(color, map->color_list[index]))
            << key;
    }
}

TEST(PaletteTest, InversionMapGivesTheNearestInvertedColor) {
    const color_map* map = system_colors();
    EXPECT_EQ(63, map->inversion_map[0]);
    // Grey 216 inverts to grey 39, nearest to index 5 (40, 40, 40).
    EXPECT_EQ(5, map->inversion_map[27]);
    // White, and the transparent entry, stay as they are.
    EXPECT_EQ(63, map->inversion_map[63]);
    EXPECT_EQ(255, map->inversion_map[255]);
}

TEST(PaletteTest, EveryOpaqueEntryConvertsBackToItsColor) {
    const color_map* map = system_colors();
    for (int i = 0; i < 255; i++) {
        uint8 index = cmap8_index_for(map->color_list[i]);
        EXPECT_EQ(map->color_list[i], map->color_list[index]) << i;
    }
    EXPECT_EQ(27, cmap8_index_for(make_color(216, 216, 216)));
    EXPECT_EQ(63, cmap8_index_for(make_color(255, 255, 255)));
    EXPECT_EQ(249, cmap8_index_for(make_color(255, 203, 0)));
}

TEST(PaletteTest, OffPaletteColorsTakeTheNearestEntry) {
    EXPECT_EQ(31, cmap8_index_for(make_color(250, 250, 250)));
    EXPECT_EQ(27, cmap8_index_for(make_color(217, 215, 216)));
    EXPECT_EQ(42, cmap8_index_for(make_color(250, 3, 2)));
    for (int sample = 0; sample < 4096; sample += 7) {
        rgb_color color =
            make_color((sample * 37) & 0xff, (sample * 101) & 0xff, (sample * 13) & 0xff);
        uint8 index = cmap8_index_for(color);
        ASSERT_EQ(distance(color, system_colors()->color_list[nearest_by_search(color)]),
                  distance(color, system_colors()->color_list[index]));
    }
}
