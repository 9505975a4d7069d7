// How one drawn pixel combines with the pixel beneath it, for each drawing mode
// (kit-private). Targets hold cairo's premultiplied ARGB32 pixels (a native
// uint32 0xAARRGGBB); colours come in straight, as rgb_color.
#ifndef _DRAWING_MODES_H
#define _DRAWING_MODES_H

#include <GraphicsDefs.h>

namespace BPrivate {

struct DrawingState {
    drawing_mode mode = B_OP_COPY;
    rgb_color high = {0, 0, 0, 255};
    rgb_color low = {255, 255, 255, 255};
    source_alpha sourceAlpha = B_PIXEL_ALPHA;
    alpha_function alphaFunction = B_ALPHA_OVERLAY;
};

// What a fully covered pixel of a shape gets, for the pattern's high or low bit:
// left alone, replaced by a fixed pixel, or blended with what is there.
enum class PixelAction { kSkip, kStore, kBlend };

struct PatternAction {
    PixelAction action;
    uint32 value;
};

PatternAction pattern_action(bool isHigh, const DrawingState& state);

// A pixel of a shape or of text: the pattern's high or low colour with a
// coverage of 1 to 255. Text is drawn with the high colour; in B_OP_COPY its
// edges fade into the low colour, not into the pixels beneath.
uint32 blend_pattern_pixel(uint32 destination, bool isHigh, uint8 coverage,
                           const DrawingState& state);

// A bitmap pixel (straight colour with its alpha; transparent pixels have alpha
// 0). B_OP_COPY copies even transparent pixels, with their colour; B_OP_OVER
// skips them and blends partly transparent ones; B_OP_ALPHA blends by the pixel's
// alpha or by the high colour's (B_CONSTANT_ALPHA).
uint32 blend_bitmap_pixel(uint32 destination, rgb_color source, const DrawingState& state);

uint32 premultiplied_pixel(rgb_color color);
rgb_color straight_color(uint32 pixel);

} // namespace BPrivate

#endif // _DRAWING_MODES_H
