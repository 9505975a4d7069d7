#include <GraphicsDefs.h>

const screen_id B_MAIN_SCREEN_ID = {0};

const pattern B_SOLID_HIGH = {{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}};
const pattern B_MIXED_COLORS = {{0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55}};
const pattern B_SOLID_LOW = {{0, 0, 0, 0, 0, 0, 0, 0}};

const rgb_color B_TRANSPARENT_COLOR = {0x77, 0x74, 0x77, 0x00};
const uint8 B_TRANSPARENT_MAGIC_CMAP8 = 0xff;
const uint16 B_TRANSPARENT_MAGIC_RGBA15 = 0x39ce;
const uint16 B_TRANSPARENT_MAGIC_RGBA15_BIG = 0xce39;
const uint32 B_TRANSPARENT_MAGIC_RGBA32 = 0x00777477;
const uint32 B_TRANSPARENT_MAGIC_RGBA32_BIG = 0x77747700;
const uint8 B_TRANSPARENT_8_BIT = 0xff;
const rgb_color B_TRANSPARENT_32_BIT = {0x77, 0x74, 0x77, 0x00};

status_t get_pixel_size_for(color_space space, size_t* pixelChunk, size_t* rowAlignment,
                            size_t* pixelsPerChunk) {
    size_t chunk = 0;
    size_t pixels = 1;
    switch (space) {
    case B_RGB32:
    case B_RGBA32:
    case B_RGB32_BIG:
    case B_RGBA32_BIG:
        chunk = 4;
        break;
    case B_RGB24:
    case B_RGB24_BIG:
        chunk = 3;
        break;
    case B_RGB16:
    case B_RGB15:
    case B_RGBA15:
    case B_RGB16_BIG:
    case B_RGB15_BIG:
    case B_RGBA15_BIG:
        chunk = 2;
        break;
    case B_CMAP8:
    case B_GRAY8:
        chunk = 1;
        break;
    case B_GRAY1:
        chunk = 1;
        pixels = 8;
        break;
    default:
        return B_BAD_VALUE;
    }

    if (pixelChunk != NULL)
        *pixelChunk = chunk;
    if (rowAlignment != NULL)
        *rowAlignment = 4;
    if (pixelsPerChunk != NULL)
        *pixelsPerChunk = pixels;
    return B_OK;
}

bool bitmaps_support_space(color_space space, uint32* supportFlags) {
    // Views draw the spaces the painter converts; bitmaps may accept views in
    // the spaces a back buffer can be made of.
    uint32 flags = 0;
    switch (space) {
    case B_RGB32:
    case B_RGBA32:
        flags = B_VIEWS_SUPPORT_DRAW_BITMAP | B_BITMAPS_SUPPORT_ATTACHED_VIEWS;
        break;
    case B_CMAP8:
    case B_GRAY8:
        flags = B_VIEWS_SUPPORT_DRAW_BITMAP;
        break;
    default:
        break;
    }
    if (supportFlags != NULL)
        *supportFlags = flags;
    return flags != 0;
}
