// Pixel rectangles and coverage masks for the painter (kit-private).
#ifndef _COVERAGE_MASK_H
#define _COVERAGE_MASK_H

#include "CairoPointers.h"

#include <GraphicsDefs.h>

#include <cairo.h>

#include <algorithm>

namespace BPrivate {

// Pixel coordinates stay far inside int32, and what is handed to cairo far
// inside its fixed-point range.
const int32 kCoordinateLimit = 1 << 28;
const double kPathLimit = 1 << 20;

// Half-open: right and bottom are one past the last pixel.
struct PixelRect {
    int32 left;
    int32 top;
    int32 right;
    int32 bottom;

    bool IsEmpty() const { return left >= right || top >= bottom; }
    PixelRect Intersection(const PixelRect& other) const {
        return PixelRect{std::max(left, other.left), std::max(top, other.top),
                         std::min(right, other.right), std::min(bottom, other.bottom)};
    }
};

// The pixel a coordinate falls in, kept inside the limit (NaN gives 0).
int32 to_pixel(double value);
// A coordinate for cairo paths, kept inside the limit (NaN gives 0).
double to_path(double value);

inline bool pattern_bit(const pattern& pattern, int32 x, int32 y) {
    return (pattern.data[y & 7] & (0x80 >> (x & 7))) != 0;
}

// How much of each pixel of an area one shape covers: an A8 surface into which
// cairo fills paths without antialiasing and thin lines are set pixel by pixel.
class CoverageMask {
public:
    explicit CoverageMask(const PixelRect& area);

    bool IsValid() const { return fSurface != NULL; }
    const PixelRect& Area() const { return fArea; }

    // A cairo context in target pixel coordinates, where (x, y) is the corner
    // of pixel (x, y) and its centre is (x + 0.5, y + 0.5).
    cairo_t* Context();

    // A line one pixel wide including both end pixels: along the longer axis
    // every pixel gets the nearest pixel of the other axis. Only the part inside
    // the mask is walked, so lines of any length cost their visible pixels.
    void SetLine(int32 x0, int32 y0, int32 x1, int32 y1);

    // Finishes cairo's work; the mask is then read directly.
    void Flush();

    const uint8* Data() const { return cairo_image_surface_get_data(fSurface.get()); }
    int32 Stride() const { return cairo_image_surface_get_stride(fSurface.get()); }

private:
    void _SetPixel(int64 x, int64 y);

    PixelRect fArea;
    SurfacePointer fSurface;
    ContextPointer fContext;
};

// An ellipse filling the box, as a closed sub-path.
void add_ellipse_path(cairo_t* context, double left, double top, double right, double bottom);
// A rectangle with elliptical corners, as a closed sub-path; the radii are
// clamped to half the box.
void add_round_rect_path(cairo_t* context, double left, double top, double right, double bottom,
                         double radiusX, double radiusY);

} // namespace BPrivate

#endif // _COVERAGE_MASK_H
