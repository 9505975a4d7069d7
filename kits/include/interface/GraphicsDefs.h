// Colours, colour spaces, patterns and drawing modes.
#ifndef _GRAPHICS_DEFS_H
#define _GRAPHICS_DEFS_H

#include <SupportDefs.h>

// Screens are named by an id; this system has one screen.
typedef struct screen_id {
    int32 id;
} screen_id;

extern const struct screen_id B_MAIN_SCREEN_ID;

// An 8 x 8 one-bit pattern, one byte per row; a set bit draws the high colour.
typedef struct pattern {
    uint8 data[8];
} pattern;

extern const pattern B_SOLID_HIGH;
extern const pattern B_MIXED_COLORS;
extern const pattern B_SOLID_LOW;

// Four bytes in this memory order: it is also the B_RGB_COLOR_TYPE flattening.
typedef struct rgb_color {
    uint8 red;
    uint8 green;
    uint8 blue;
    uint8 alpha;

    rgb_color& set_to(uint8 r, uint8 g, uint8 b, uint8 a = 255) {
        red = r;
        green = g;
        blue = b;
        alpha = a;
        return *this;
    }

    bool operator==(const rgb_color& other) const {
        return red == other.red && green == other.green && blue == other.blue &&
               alpha == other.alpha;
    }
    bool operator!=(const rgb_color& other) const { return !(*this == other); }
} rgb_color;

inline rgb_color make_color(uint8 red, uint8 green, uint8 blue, uint8 alpha = 255) {
    rgb_color color = {red, green, blue, alpha};
    return color;
}

extern const rgb_color B_TRANSPARENT_COLOR;
extern const uint8 B_TRANSPARENT_MAGIC_CMAP8;
extern const uint16 B_TRANSPARENT_MAGIC_RGBA15;
extern const uint16 B_TRANSPARENT_MAGIC_RGBA15_BIG;
extern const uint32 B_TRANSPARENT_MAGIC_RGBA32;
extern const uint32 B_TRANSPARENT_MAGIC_RGBA32_BIG;
extern const uint8 B_TRANSPARENT_8_BIT;
extern const rgb_color B_TRANSPARENT_32_BIT;

// The 8-bit system palette. index_map is indexed by a 15-bit colour: the top five
// bits of red in bits 10-14, of green in 5-9, of blue in 0-4.
typedef struct color_map {
    int32 id;
    rgb_color color_list[256];
    uint8 inversion_map[256];
    uint8 index_map[32768];
} color_map;

typedef struct overlay_rect_limits {
    uint16 horizontal_alignment;
    uint16 vertical_alignment;
    uint16 width_alignment;
    uint16 height_alignment;
    uint16 min_width;
    uint16 max_width;
    uint16 min_height;
    uint16 max_height;
    uint32 reserved[8];
} overlay_rect_limits;

// The 0x1000 bit marks big-endian layouts, the 0x2000 bit an alpha channel. The
// little-endian 32-bit spaces hold the bytes B, G, R, A (or unused) in memory.
typedef enum {
    B_NO_COLOR_SPACE = 0x0000,

    B_RGB32 = 0x0008,
    B_RGBA32 = 0x2008,
    B_RGB24 = 0x0003,
    B_RGB16 = 0x0005,
    B_RGB15 = 0x0010,
    B_RGBA15 = 0x2010,
    B_CMAP8 = 0x0004,
    B_GRAY8 = 0x0002,
    B_GRAY1 = 0x0001,

    B_RGB32_BIG = 0x1008,
    B_RGBA32_BIG = 0x3008,
    B_RGB24_BIG = 0x1003,
    B_RGB16_BIG = 0x1005,
    B_RGB15_BIG = 0x1010,
    B_RGBA15_BIG = 0x3010,

    B_RGB32_LITTLE = B_RGB32,
    B_RGBA32_LITTLE = B_RGBA32,
    B_RGB24_LITTLE = B_RGB24,
    B_RGB16_LITTLE = B_RGB16,
    B_RGB15_LITTLE = B_RGB15,
    B_RGBA15_LITTLE = B_RGBA15,

    B_YCbCr422 = 0x4000,
    B_YCbCr411 = 0x4001,
    B_YCbCr444 = 0x4003,
    B_YCbCr420 = 0x4004,

    B_YUV422 = 0x4020,
    B_YUV411 = 0x4021,
    B_YUV444 = 0x4023,
    B_YUV420 = 0x4024,
    B_YUV9 = 0x402C,
    B_YUV12 = 0x402D,

    // Older names.
    B_MONOCHROME_1_BIT = B_GRAY1,
    B_GRAYSCALE_8_BIT = B_GRAY8,
    B_COLOR_8_BIT = B_CMAP8,
    B_RGB_32_BIT = B_RGB32,
    B_RGB_16_BIT = B_RGB15,
    B_BIG_RGB_32_BIT = B_RGB32_BIG,
    B_BIG_RGB_16_BIT = B_RGB15_BIG
} color_space;

// Bytes per pixel chunk, row alignment and pixels per chunk of a colour space.
// Returns B_BAD_VALUE for spaces without a fixed chunk size.
status_t get_pixel_size_for(color_space space, size_t* pixelChunk, size_t* rowAlignment,
                            size_t* pixelsPerChunk);

// Flags for bitmaps_support_space().
enum {
    B_VIEWS_SUPPORT_DRAW_BITMAP = 0x1,
    B_BITMAPS_SUPPORT_ATTACHED_VIEWS = 0x2,
    B_BITMAPS_SUPPORT_OVERLAY = 0x4
};

bool bitmaps_support_space(color_space space, uint32* supportFlags);

typedef enum {
    B_OP_COPY,
    B_OP_OVER,
    B_OP_ERASE,
    B_OP_INVERT,
    B_OP_ADD,
    B_OP_SUBTRACT,
    B_OP_BLEND,
    B_OP_MIN,
    B_OP_MAX,
    B_OP_SELECT,
    B_OP_ALPHA
} drawing_mode;

enum source_alpha { B_PIXEL_ALPHA = 0, B_CONSTANT_ALPHA };

enum alpha_function { B_ALPHA_OVERLAY = 0, B_ALPHA_COMPOSITE };

#endif // _GRAPHICS_DEFS_H
