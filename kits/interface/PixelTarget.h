// PixelTarget: the pixels of a cairo image surface with clipping and a drawing
// state, and the one place where drawn pixels are combined with them
// (kit-private). Every covered pixel is combined once, so modes that read the
// target, like B_OP_INVERT, never see a pixel twice.
#ifndef _PIXEL_TARGET_H
#define _PIXEL_TARGET_H

#include "CoverageMask.h"
#include "DrawingModes.h"

#include <Region.h>

#include <cairo.h>

#include <vector>

namespace BPrivate {

struct PixelTarget {
    // Keeps a reference to an ARGB32 or RGB24 image surface; other surfaces
    // leave the target invalid.
    explicit PixelTarget(cairo_surface_t* surface);
    ~PixelTarget();

    PixelTarget(const PixelTarget&) = delete;
    PixelTarget& operator=(const PixelTarget&) = delete;

    bool IsValid() const { return data != NULL; }

    // Surface coordinates; NULL allows the whole surface.
    void SetClipping(const BRegion* region);

    uint32 Read(const uint32* row, int32 x) const {
        return hasAlpha ? row[x] : (row[x] | 0xff000000u);
    }
    uint32* Row(int32 y) const { return reinterpret_cast<uint32*>(data + (int64)y * stride); }

    // Around direct access to the pixels, as cairo asks.
    void BeginDrawing() const { cairo_surface_flush(surface); }
    void EndDrawing(const PixelRect& area) const;

    // Area and masks in surface coordinates; only the clipped part is drawn.
    void CompositeRect(const PixelRect& area, const pattern& pattern);
    void CompositeMask(CoverageMask& mask, const pattern& pattern);
    void CompositeCoverage(const PixelRect& area, const uint8* coverage, int32 coverageStride,
                           const pattern& pattern);

    cairo_surface_t* surface = NULL;
    uint8* data = NULL;
    int32 stride = 0;
    bool hasAlpha = true;
    PixelRect bounds = {0, 0, 0, 0};
    std::vector<PixelRect> clipping;
    PixelRect clippingBounds = {0, 0, 0, 0};
    DrawingState state;
};

} // namespace BPrivate

#endif // _PIXEL_TARGET_H
