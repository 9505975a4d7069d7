#include "ColorConversion.h"

#include "SystemPalette.h"

#include <limits.h>

namespace {

const rgb_color kTransparent = {0x77, 0x74, 0x77, 0x00};

bool is_magic_transparent(uint8 red, uint8 green, uint8 blue) {
    return red == kTransparent.red && green == kTransparent.green && blue == kTransparent.blue;
}

rgb_color opaque_or_magic(uint8 red, uint8 green, uint8 blue) {
    if (is_magic_transparent(red, green, blue))
        return kTransparent;
    return rgb_color{red, green, blue, 255};
}

// Spreads an n-bit component over 8 bits so that all ones means 255.
uint8 expand(uint32 value, int32 bits) {
    value &= (1u << bits) - 1;
    return (uint8)((value << (8 - bits)) | (value >> (2 * bits - 8)));
}

uint16 read16(const uint8* bytes, bool bigEndian) {
    return bigEndian ? (uint16)((bytes[0] << 8) | bytes[1]) : (uint16)(bytes[0] | (bytes[1] << 8));
}

void write16(uint8* bytes, uint16 value, bool bigEndian) {
    if (bigEndian) {
        bytes[0] = (uint8)(value >> 8);
        bytes[1] = (uint8)value;
    } else {
        bytes[0] = (uint8)value;
        bytes[1] = (uint8)(value >> 8);
    }
}

bool is_big_endian(color_space space) {
    return (space & 0x1000) != 0;
}

} // namespace

namespace BPrivate {

bool is_supported_color_space(color_space space) {
    return bits_per_pixel(space) != 0;
}

int32 bits_per_pixel(color_space space) {
    switch (space) {
    case B_RGB32:
    case B_RGBA32:
    case B_RGB32_BIG:
    case B_RGBA32_BIG:
        return 32;
    case B_RGB24:
    case B_RGB24_BIG:
        return 24;
    case B_RGB16:
    case B_RGB16_BIG:
    case B_RGB15:
    case B_RGB15_BIG:
    case B_RGBA15:
    case B_RGBA15_BIG:
        return 16;
    case B_CMAP8:
    case B_GRAY8:
        return 8;
    default:
        return 0;
    }
}

int32 bytes_per_row_for(color_space space, int32 width) {
    int64 bits = bits_per_pixel(space);
    if (bits == 0 || width < 0)
        return -1;
    int64 bytes = (width * bits + 31) / 32 * 4;
    if (bytes > INT32_MAX)
        return -1;
    return (int32)bytes;
}

void read_pixels(const uint8* row, int32 first, int32 count, color_space space, rgb_color* pixels) {
    const rgb_color* palette = system_palette();
    bool big = is_big_endian(space);
    const uint8* source = row + (int64)first * (bits_per_pixel(space) / 8);

    // The spaces icons come in get loops of their own; the rest share one.
    if (space == B_CMAP8) {
        for (int32 i = 0; i < count; i++)
            pixels[i] = source[i] == 255 ? kTransparent : palette[source[i]];
        return;
    }
    if (space == B_RGBA32) {
        for (int32 i = 0; i < count; i++, source += 4)
            pixels[i] = rgb_color{source[2], source[1], source[0], source[3]};
        return;
    }

    for (int32 i = 0; i < count; i++) {
        rgb_color& pixel = pixels[i];
        switch (space) {
        case B_CMAP8:
            pixel = source[i] == 255 ? kTransparent : palette[source[i]];
            break;
        case B_GRAY8:
            pixel = rgb_color{source[i], source[i], source[i], 255};
            break;
        case B_RGB32:
            pixel = opaque_or_magic(source[4 * i + 2], source[4 * i + 1], source[4 * i]);
            break;
        case B_RGBA32:
            pixel =
                rgb_color{source[4 * i + 2], source[4 * i + 1], source[4 * i], source[4 * i + 3]};
            break;
        case B_RGB32_BIG:
            pixel = opaque_or_magic(source[4 * i + 1], source[4 * i + 2], source[4 * i + 3]);
            break;
        case B_RGBA32_BIG:
            pixel =
                rgb_color{source[4 * i + 1], source[4 * i + 2], source[4 * i + 3], source[4 * i]};
            break;
        case B_RGB24:
            pixel = rgb_color{source[3 * i + 2], source[3 * i + 1], source[3 * i], 255};
            break;
        case B_RGB24_BIG:
            pixel = rgb_color{source[3 * i], source[3 * i + 1], source[3 * i + 2], 255};
            break;
        case B_RGB16:
        case B_RGB16_BIG: {
            uint16 value = read16(source + 2 * i, big);
            pixel = rgb_color{expand(value >> 11, 5), expand(value >> 5, 6), expand(value, 5), 255};
            break;
        }
        case B_RGB15:
        case B_RGB15_BIG:
        case B_RGBA15:
        case B_RGBA15_BIG: {
            uint16 value = read16(source + 2 * i, big);
            uint8 alpha = 255;
            if ((space & 0x2000) != 0)
                alpha = (value & 0x8000) != 0 ? 255 : 0;
            pixel =
                rgb_color{expand(value >> 10, 5), expand(value >> 5, 5), expand(value, 5), alpha};
            break;
        }
        default:
            pixel = kTransparent;
            break;
        }
    }
}

void write_pixels(uint8* row, int32 first, int32 count, color_space space, const rgb_color* pixels,
                  PaletteIndexCache& cache) {
    bool big = is_big_endian(space);
    uint8* target = row + (int64)first * (bits_per_pixel(space) / 8);
    for (int32 i = 0; i < count; i++) {
        const rgb_color& pixel = pixels[i];
        bool transparent = pixel.alpha < 128;
        switch (space) {
        case B_CMAP8:
            target[i] = transparent ? 255 : cache.IndexFor(pixel.red, pixel.green, pixel.blue);
            break;
        case B_GRAY8:
            target[i] =
                (uint8)((pixel.red * 299 + pixel.green * 587 + pixel.blue * 114 + 500) / 1000);
            break;
        case B_RGB32:
        case B_RGB32_BIG: {
            rgb_color color = transparent ? kTransparent : pixel;
            uint8 alpha = transparent ? 0 : 255;
            uint8* bytes = target + 4 * i;
            if (big) {
                bytes[0] = alpha;
                bytes[1] = color.red;
                bytes[2] = color.green;
                bytes[3] = color.blue;
            } else {
                bytes[0] = color.blue;
                bytes[1] = color.green;
                bytes[2] = color.red;
                bytes[3] = alpha;
            }
            break;
        }
        case B_RGBA32:
            target[4 * i] = pixel.blue;
            target[4 * i + 1] = pixel.green;
            target[4 * i + 2] = pixel.red;
            target[4 * i + 3] = pixel.alpha;
            break;
        case B_RGBA32_BIG:
            target[4 * i] = pixel.alpha;
            target[4 * i + 1] = pixel.red;
            target[4 * i + 2] = pixel.green;
            target[4 * i + 3] = pixel.blue;
            break;
        case B_RGB24:
            target[3 * i] = pixel.blue;
            target[3 * i + 1] = pixel.green;
            target[3 * i + 2] = pixel.red;
            break;
        case B_RGB24_BIG:
            target[3 * i] = pixel.red;
            target[3 * i + 1] = pixel.green;
            target[3 * i + 2] = pixel.blue;
            break;
        case B_RGB16:
        case B_RGB16_BIG:
            write16(
                target + 2 * i,
                (uint16)(((pixel.red >> 3) << 11) | ((pixel.green >> 2) << 5) | (pixel.blue >> 3)),
                big);
            break;
        case B_RGB15:
        case B_RGB15_BIG:
        case B_RGBA15:
        case B_RGBA15_BIG: {
            uint16 value =
                (uint16)(((pixel.red >> 3) << 10) | ((pixel.green >> 3) << 5) | (pixel.blue >> 3));
            if ((space & 0x2000) == 0 || !transparent)
                value |= 0x8000;
            write16(target + 2 * i, value, big);
            break;
        }
        default:
            break;
        }
    }
}

} // namespace BPrivate
