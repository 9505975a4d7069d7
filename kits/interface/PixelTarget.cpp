#include "PixelTarget.h"

namespace BPrivate {

PixelTarget::PixelTarget(cairo_surface_t* target) {
    if (target == NULL || cairo_surface_status(target) != CAIRO_STATUS_SUCCESS ||
        cairo_surface_get_type(target) != CAIRO_SURFACE_TYPE_IMAGE) {
        return;
    }
    cairo_format_t format = cairo_image_surface_get_format(target);
    if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24)
        return;

    surface = cairo_surface_reference(target);
    data = cairo_image_surface_get_data(target);
    stride = cairo_image_surface_get_stride(target);
    hasAlpha = format == CAIRO_FORMAT_ARGB32;
    bounds = PixelRect{0, 0, cairo_image_surface_get_width(target),
                       cairo_image_surface_get_height(target)};
    SetClipping(NULL);
}

PixelTarget::~PixelTarget() {
    if (surface != NULL)
        cairo_surface_destroy(surface);
}

void PixelTarget::SetClipping(const BRegion* region) {
    clipping.clear();
    if (region == NULL) {
        if (!bounds.IsEmpty())
            clipping.push_back(bounds);
    } else {
        int32 count = region->CountRects();
        for (int32 i = 0; i < count; i++) {
            clipping_rect rect = region->RectAtInt(i);
            PixelRect part =
                PixelRect{rect.left, rect.top, rect.right + 1, rect.bottom + 1}.Intersection(
                    bounds);
            if (!part.IsEmpty())
                clipping.push_back(part);
        }
    }

    PixelRect frame = {0, 0, 0, 0};
    for (const PixelRect& rect : clipping) {
        if (frame.IsEmpty())
            frame = rect;
        else {
            frame =
                PixelRect{std::min(frame.left, rect.left), std::min(frame.top, rect.top),
                          std::max(frame.right, rect.right), std::max(frame.bottom, rect.bottom)};
        }
    }
    clippingBounds = frame;
}

void PixelTarget::EndDrawing(const PixelRect& area) const {
    PixelRect touched = area.Intersection(clippingBounds);
    if (!touched.IsEmpty()) {
        cairo_surface_mark_dirty_rectangle(surface, touched.left, touched.top,
                                           touched.right - touched.left,
                                           touched.bottom - touched.top);
    }
}

void PixelTarget::CompositeRect(const PixelRect& area, const pattern& pattern) {
    const PatternAction actions[2] = {pattern_action(false, state), pattern_action(true, state)};
    for (const PixelRect& clip : clipping) {
        PixelRect part = area.Intersection(clip);
        if (part.IsEmpty())
            continue;
        for (int32 y = part.top; y < part.bottom; y++) {
            uint32* row = Row(y);
            uint8 bits = pattern.data[y & 7];
            if (bits == 0x00 || bits == 0xff) {
                const PatternAction& action = actions[bits != 0];
                if (action.action == PixelAction::kSkip)
                    continue;
                if (action.action == PixelAction::kStore) {
                    std::fill(row + part.left, row + part.right, action.value);
                    continue;
                }
            }
            for (int32 x = part.left; x < part.right; x++) {
                bool isHigh = (bits & (0x80 >> (x & 7))) != 0;
                const PatternAction& action = actions[isHigh];
                if (action.action == PixelAction::kStore)
                    row[x] = action.value;
                else if (action.action == PixelAction::kBlend)
                    row[x] = blend_pattern_pixel(Read(row, x), isHigh, 255, state);
            }
        }
    }
}

void PixelTarget::CompositeCoverage(const PixelRect& area, const uint8* coverage,
                                    int32 coverageStride, const pattern& pattern) {
    bool solidHigh = true;
    for (uint8 bits : pattern.data)
        solidHigh = solidHigh && bits == 0xff;
    if (solidHigh && state.mode == B_OP_COPY) {
        // Text in B_OP_COPY: each coverage value stands for one fixed colour.
        uint32 table[256];
        for (int32 amount = 1; amount < 256; amount++)
            table[amount] = blend_pattern_pixel(0, true, (uint8)amount, state);
        for (const PixelRect& clip : clipping) {
            PixelRect part = area.Intersection(clip);
            for (int32 y = part.top; y < part.bottom; y++) {
                uint32* row = Row(y);
                const uint8* cover = coverage + (int64)(y - area.top) * coverageStride - area.left;
                for (int32 x = part.left; x < part.right; x++) {
                    if (cover[x] != 0)
                        row[x] = table[cover[x]];
                }
            }
        }
        return;
    }

    const PatternAction actions[2] = {pattern_action(false, state), pattern_action(true, state)};
    for (const PixelRect& clip : clipping) {
        PixelRect part = area.Intersection(clip);
        if (part.IsEmpty())
            continue;
        for (int32 y = part.top; y < part.bottom; y++) {
            uint32* row = Row(y);
            const uint8* cover = coverage + (int64)(y - area.top) * coverageStride - area.left;
            for (int32 x = part.left; x < part.right; x++) {
                uint8 amount = cover[x];
                if (amount == 0)
                    continue;
                bool isHigh = pattern_bit(pattern, x, y);
                const PatternAction& action = actions[isHigh];
                if (amount == 255 && action.action == PixelAction::kStore)
                    row[x] = action.value;
                else if (action.action != PixelAction::kSkip || amount != 255)
                    row[x] = blend_pattern_pixel(Read(row, x), isHigh, amount, state);
            }
        }
    }
}

void PixelTarget::CompositeMask(CoverageMask& mask, const pattern& pattern) {
    if (!mask.IsValid())
        return;
    mask.Flush();
    CompositeCoverage(mask.Area(), mask.Data(), mask.Stride(), pattern);
}

} // namespace BPrivate
