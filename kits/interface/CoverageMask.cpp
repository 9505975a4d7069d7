#include "CoverageMask.h"

#include <math.h>
#include <stdlib.h>

namespace BPrivate {

namespace {

int64 floor_divide(int64 numerator, int64 denominator) {
    int64 quotient = numerator / denominator;
    if ((numerator % denominator != 0) && ((numerator < 0) != (denominator < 0)))
        quotient--;
    return quotient;
}

} // namespace

int32 to_pixel(double value) {
    if (isnan(value))
        return 0;
    return (int32)std::clamp(floor(value), (double)-kCoordinateLimit, (double)kCoordinateLimit);
}

double to_path(double value) {
    if (isnan(value))
        return 0.0;
    return std::clamp(value, -kPathLimit, kPathLimit);
}

CoverageMask::CoverageMask(const PixelRect& area) : fArea(area) {
    if (area.IsEmpty())
        return;
    fSurface.reset(cairo_image_surface_create(CAIRO_FORMAT_A8, area.right - area.left,
                                              area.bottom - area.top));
    if (cairo_surface_status(fSurface.get()) != CAIRO_STATUS_SUCCESS)
        fSurface.reset();
}

cairo_t* CoverageMask::Context() {
    if (fContext == NULL) {
        fContext.reset(cairo_create(fSurface.get()));
        cairo_set_antialias(fContext.get(), CAIRO_ANTIALIAS_NONE);
        cairo_translate(fContext.get(), -fArea.left, -fArea.top);
    }
    return fContext.get();
}

void CoverageMask::SetLine(int32 x0, int32 y0, int32 x1, int32 y1) {
    int64 dx = (int64)x1 - x0;
    int64 dy = (int64)y1 - y0;
    if (llabs(dx) >= llabs(dy)) {
        if (dx < 0) {
            std::swap(x0, x1);
            std::swap(y0, y1);
            dx = -dx;
            dy = -dy;
        }
        int64 first = std::max<int64>(x0, fArea.left);
        int64 last = std::min<int64>(x1, fArea.right - 1);
        for (int64 x = first; x <= last; x++) {
            int64 y = y0;
            if (dx != 0)
                y += floor_divide(2 * (x - x0) * dy + dx, 2 * dx);
            _SetPixel(x, y);
        }
    } else {
        if (dy < 0) {
            std::swap(x0, x1);
            std::swap(y0, y1);
            dx = -dx;
            dy = -dy;
        }
        int64 first = std::max<int64>(y0, fArea.top);
        int64 last = std::min<int64>(y1, fArea.bottom - 1);
        for (int64 y = first; y <= last; y++)
            _SetPixel(x0 + floor_divide(2 * (y - y0) * dx + dy, 2 * dy), y);
    }
}

void CoverageMask::Flush() {
    fContext.reset();
    if (fSurface != NULL)
        cairo_surface_flush(fSurface.get());
}

void CoverageMask::_SetPixel(int64 x, int64 y) {
    if (x < fArea.left || x >= fArea.right || y < fArea.top || y >= fArea.bottom)
        return;
    if (fContext != NULL)
        Flush();
    uint8* data = cairo_image_surface_get_data(fSurface.get());
    data[(y - fArea.top) * cairo_image_surface_get_stride(fSurface.get()) + (x - fArea.left)] = 255;
}

void add_ellipse_path(cairo_t* context, double left, double top, double right, double bottom) {
    double radiusX = (right - left) / 2.0;
    double radiusY = (bottom - top) / 2.0;
    if (radiusX <= 0.0 || radiusY <= 0.0)
        return;
    cairo_save(context);
    cairo_translate(context, left + radiusX, top + radiusY);
    cairo_scale(context, radiusX, radiusY);
    cairo_new_sub_path(context);
    cairo_arc(context, 0.0, 0.0, 1.0, 0.0, 2.0 * M_PI);
    cairo_close_path(context);
    cairo_restore(context);
}

void add_round_rect_path(cairo_t* context, double left, double top, double right, double bottom,
                         double radiusX, double radiusY) {
    radiusX = std::clamp(radiusX, 0.0, (right - left) / 2.0);
    radiusY = std::clamp(radiusY, 0.0, (bottom - top) / 2.0);
    if (right <= left || bottom <= top)
        return;
    if (radiusX <= 0.0 || radiusY <= 0.0) {
        cairo_rectangle(context, left, top, right - left, bottom - top);
        return;
    }
    struct Corner {
        double x;
        double y;
        double start;
    };
    const Corner corners[4] = {{right - radiusX, top + radiusY, -M_PI / 2.0},
                               {right - radiusX, bottom - radiusY, 0.0},
                               {left + radiusX, bottom - radiusY, M_PI / 2.0},
                               {left + radiusX, top + radiusY, M_PI}};
    cairo_new_sub_path(context);
    for (const Corner& corner : corners) {
        cairo_save(context);
        cairo_translate(context, corner.x, corner.y);
        cairo_scale(context, radiusX, radiusY);
        cairo_arc(context, 0.0, 0.0, 1.0, corner.start, corner.start + M_PI / 2.0);
        cairo_restore(context);
    }
    cairo_close_path(context);
}

} // namespace BPrivate
