#include "DrawingModes.h"

#include <algorithm>

namespace {

const rgb_color kTransparent = {0x77, 0x74, 0x77, 0x00};

uint8 clamp_byte(int32 value) {
    return (uint8)std::clamp<int32>(value, 0, 255);
}

// (a * b) / 255, rounded.
uint32 multiply(uint32 a, uint32 b) {
    uint32 product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

int32 brightness(rgb_color color) {
    return color.red * 299 + color.green * 587 + color.blue * 114;
}

bool same_rgb(rgb_color first, rgb_color second) {
    return first.red == second.red && first.green == second.green && first.blue == second.blue;
}

uint32 opaque_pixel(rgb_color color) {
    return 0xff000000u | ((uint32)color.red << 16) | ((uint32)color.green << 8) | color.blue;
}

// Paints an opaque colour over the destination with the given coverage.
uint32 cover(uint32 destination, rgb_color color, uint8 coverage) {
    if (coverage == 255)
        return opaque_pixel(color);
    uint32 inverse = 255 - coverage;
    uint32 alpha = coverage + multiply(destination >> 24, inverse);
    uint32 red = multiply(color.red, coverage) + multiply((destination >> 16) & 0xff, inverse);
    uint32 green = multiply(color.green, coverage) + multiply((destination >> 8) & 0xff, inverse);
    uint32 blue = multiply(color.blue, coverage) + multiply(destination & 0xff, inverse);
    return (alpha << 24) | (red << 16) | (green << 8) | blue;
}

// Blends a straight colour by an alpha of 0 to 255, either compositing (the
// result's alpha grows) or overlaying (the destination keeps its alpha).
uint32 blend_alpha(uint32 destination, rgb_color color, uint32 alpha, alpha_function function) {
    if (alpha == 0)
        return destination;
    if (function == B_ALPHA_COMPOSITE)
        return cover(destination, color, (uint8)alpha);

    uint32 destinationAlpha = destination >> 24;
    rgb_color beneath = BPrivate::straight_color(destination);
    uint32 inverse = 255 - alpha;
    rgb_color mixed = {
        (uint8)(multiply(color.red, alpha) + multiply(beneath.red, inverse)),
        (uint8)(multiply(color.green, alpha) + multiply(beneath.green, inverse)),
        (uint8)(multiply(color.blue, alpha) + multiply(beneath.blue, inverse)),
        (uint8)destinationAlpha,
    };
    return BPrivate::premultiplied_pixel(mixed);
}

} // namespace

namespace BPrivate {

uint32 premultiplied_pixel(rgb_color color) {
    uint32 alpha = color.alpha;
    return (alpha << 24) | (multiply(color.red, alpha) << 16) |
           (multiply(color.green, alpha) << 8) | multiply(color.blue, alpha);
}

rgb_color straight_color(uint32 pixel) {
    uint32 alpha = pixel >> 24;
    if (alpha == 255) {
        return rgb_color{(uint8)(pixel >> 16), (uint8)(pixel >> 8), (uint8)pixel, 255};
    }
    if (alpha == 0)
        return rgb_color{0, 0, 0, 0};
    auto unmultiply = [alpha](uint32 value) {
        return (uint8)std::min<uint32>(255, (value * 255 + alpha / 2) / alpha);
    };
    return rgb_color{unmultiply((pixel >> 16) & 0xff), unmultiply((pixel >> 8) & 0xff),
                     unmultiply(pixel & 0xff), (uint8)alpha};
}

PatternAction pattern_action(bool isHigh, const DrawingState& state) {
    switch (state.mode) {
    case B_OP_COPY:
        return {PixelAction::kStore, opaque_pixel(isHigh ? state.high : state.low)};
    case B_OP_OVER:
        if (!isHigh || state.high == kTransparent)
            return {PixelAction::kSkip, 0};
        return {PixelAction::kStore, opaque_pixel(state.high)};
    case B_OP_ERASE:
        if (!isHigh)
            return {PixelAction::kSkip, 0};
        return {PixelAction::kStore, opaque_pixel(state.low)};
    case B_OP_INVERT:
    case B_OP_SELECT:
        if (!isHigh)
            return {PixelAction::kSkip, 0};
        return {PixelAction::kBlend, 0};
    default:
        return {PixelAction::kBlend, 0};
    }
}

uint32 blend_pattern_pixel(uint32 destination, bool isHigh, uint8 coverage,
                           const DrawingState& state) {
    if (coverage == 0)
        return destination;
    rgb_color source = isHigh ? state.high : state.low;
    rgb_color beneath = straight_color(destination);

    switch (state.mode) {
    case B_OP_COPY: {
        if (coverage == 255)
            return opaque_pixel(source);
        // Antialiased edges fade into the low colour, whatever lies beneath.
        uint32 inverse = 255 - coverage;
        rgb_color mixed = {
            (uint8)(multiply(source.red, coverage) + multiply(state.low.red, inverse)),
            (uint8)(multiply(source.green, coverage) + multiply(state.low.green, inverse)),
            (uint8)(multiply(source.blue, coverage) + multiply(state.low.blue, inverse)), 255};
        return opaque_pixel(mixed);
    }
    case B_OP_OVER:
        if (!isHigh || state.high == kTransparent)
            return destination;
        return cover(destination, state.high, coverage);
    case B_OP_ERASE:
        if (!isHigh)
            return destination;
        return cover(destination, state.low, coverage);
    case B_OP_INVERT:
        if (!isHigh)
            return destination;
        return cover(destination,
                     rgb_color{(uint8)(255 - beneath.red), (uint8)(255 - beneath.green),
                               (uint8)(255 - beneath.blue), 255},
                     coverage);
    case B_OP_SELECT:
        if (!isHigh)
            return destination;
        if (same_rgb(beneath, state.high))
            return cover(destination, state.low, coverage);
        if (same_rgb(beneath, state.low))
            return cover(destination, state.high, coverage);
        return destination;
    case B_OP_ADD:
        return cover(destination,
                     rgb_color{clamp_byte(beneath.red + source.red),
                               clamp_byte(beneath.green + source.green),
                               clamp_byte(beneath.blue + source.blue), 255},
                     coverage);
    case B_OP_SUBTRACT:
        return cover(destination,
                     rgb_color{clamp_byte(beneath.red - source.red),
                               clamp_byte(beneath.green - source.green),
                               clamp_byte(beneath.blue - source.blue), 255},
                     coverage);
    case B_OP_BLEND:
        return cover(destination,
                     rgb_color{(uint8)((beneath.red + source.red + 1) / 2),
                               (uint8)((beneath.green + source.green + 1) / 2),
                               (uint8)((beneath.blue + source.blue + 1) / 2), 255},
                     coverage);
    case B_OP_MIN:
        if (brightness(source) < brightness(beneath))
            return cover(destination, source, coverage);
        return destination;
    case B_OP_MAX:
        if (brightness(source) > brightness(beneath))
            return cover(destination, source, coverage);
        return destination;
    case B_OP_ALPHA: {
        uint32 alpha = state.sourceAlpha == B_CONSTANT_ALPHA ? state.high.alpha : source.alpha;
        return blend_alpha(destination, source, multiply(alpha, coverage), state.alphaFunction);
    }
    }
    return destination;
}

uint32 blend_bitmap_pixel(uint32 destination, rgb_color source, const DrawingState& state) {
    switch (state.mode) {
    case B_OP_COPY:
        return opaque_pixel(source);
    case B_OP_OVER:
        if (source.alpha == 0)
            return destination;
        return cover(destination, source, source.alpha);
    case B_OP_ALPHA: {
        if (source.alpha == 0)
            return destination;
        uint32 alpha = state.sourceAlpha == B_CONSTANT_ALPHA ? state.high.alpha : source.alpha;
        return blend_alpha(destination, source, alpha, state.alphaFunction);
    }
    default: {
        // The other modes treat the bitmap's visible pixels as the high colour
        // of a pattern, drawn in the pixel's own colour.
        if (source.alpha == 0)
            return destination;
        DrawingState pixelState = state;
        pixelState.high = source;
        pixelState.high.alpha = 255;
        return blend_pattern_pixel(destination, true, 255, pixelState);
    }
    }
}

} // namespace BPrivate
