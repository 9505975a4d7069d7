// The painter works on the target's pixels directly. Every primitive becomes
// either whole rectangles (fills, thin rectangle outlines, regions) or a
// coverage mask (CoverageMask.h): an A8 surface the size of the shape's part
// inside the clipping, into which cairo fills paths without antialiasing and
// thin lines are set pixel by pixel. Each covered pixel is then combined once
// with the target by the drawing mode (PixelTarget.h, DrawingModes.h). Text
// masks come antialiased from TextLayout and go through the same step; bitmaps
// are read pixel by pixel through the colour space conversions.
#include "Painter.h"

#include "ColorConversion.h"
#include "CoverageMask.h"
#include "PixelTarget.h"
#include "TextLayout.h"

#include <Bitmap.h>

#include <math.h>

#include <algorithm>
#include <vector>

namespace BPrivate {

struct Painter::Private : PixelTarget {
    explicit Private(cairo_surface_t* target) : PixelTarget(target) {}

    int32 originX = 0;
    int32 originY = 0;
    float penSize = 1.0f;

    bool IsThin() const { return !(penSize >= 1.5f); }

    int32 X(float x) const { return to_pixel((double)x + originX); }
    int32 Y(float y) const { return to_pixel((double)y + originY); }
    double PathX(float x) const { return to_path((double)X(x)); }
    double PathY(float y) const { return to_path((double)Y(y)); }

    // The pixels a view rectangle covers, in surface coordinates.
    PixelRect Pixels(const BRect& rect) const {
        if (!rect.IsValid())
            return PixelRect{0, 0, 0, 0};
        return PixelRect{X(rect.left), Y(rect.top), X(rect.right) + 1, Y(rect.bottom) + 1};
    }
};

// #pragma mark - Painter

Painter::Painter(cairo_surface_t* target) : fPrivate(new Private(target)) {}

Painter::~Painter() {
    delete fPrivate;
}

bool Painter::IsValid() const {
    return fPrivate->IsValid();
}

void Painter::SetOrigin(BPoint origin) {
    fPrivate->originX = to_pixel(origin.x);
    fPrivate->originY = to_pixel(origin.y);
}

BPoint Painter::Origin() const {
    return BPoint(fPrivate->originX, fPrivate->originY);
}

void Painter::SetClipping(const BRegion* region) {
    fPrivate->SetClipping(region);
}

void Painter::SetHighColor(rgb_color color) {
    fPrivate->state.high = color;
}

rgb_color Painter::HighColor() const {
    return fPrivate->state.high;
}

void Painter::SetLowColor(rgb_color color) {
    fPrivate->state.low = color;
}

rgb_color Painter::LowColor() const {
    return fPrivate->state.low;
}

void Painter::SetDrawingMode(drawing_mode mode) {
    if (mode < B_OP_COPY || mode > B_OP_ALPHA)
        return;
    fPrivate->state.mode = mode;
}

drawing_mode Painter::DrawingMode() const {
    return fPrivate->state.mode;
}

void Painter::SetBlendingMode(source_alpha sourceAlpha, alpha_function alphaFunction) {
    fPrivate->state.sourceAlpha = sourceAlpha;
    fPrivate->state.alphaFunction = alphaFunction;
}

void Painter::SetPenSize(float size) {
    if (isnan(size))
        return;
    fPrivate->penSize = std::clamp(size, 0.0f, 10000.0f);
}

float Painter::PenSize() const {
    return fPrivate->penSize;
}

// #pragma mark - Lines and rectangles

void Painter::StrokeLine(BPoint start, BPoint end, const pattern& pattern) {
    const BPoint points[2] = {start, end};
    StrokePolygon(points, 2, false, pattern);
}

void Painter::StrokeRect(BRect rect, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || !rect.IsValid())
        return;
    PixelRect area = painter.Pixels(rect);

    if (!painter.IsThin()) {
        double half = painter.penSize / 2.0;
        PixelRect outer = {to_pixel(area.left - half), to_pixel(area.top - half),
                           to_pixel(area.right + half) + 1, to_pixel(area.bottom + half) + 1};
        CoverageMask mask(outer.Intersection(painter.clippingBounds));
        if (!mask.IsValid())
            return;
        cairo_t* context = mask.Context();
        cairo_rectangle(context, to_path(area.left + 0.5), to_path(area.top + 0.5),
                        to_path((double)area.right - area.left - 1),
                        to_path((double)area.bottom - area.top - 1));
        cairo_set_line_width(context, painter.penSize);
        cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
        cairo_stroke(context);
        painter.BeginDrawing();
        painter.CompositeMask(mask, pattern);
        painter.EndDrawing(outer);
        return;
    }

    // Four disjoint pieces, so that no pixel is drawn twice.
    painter.BeginDrawing();
    painter.CompositeRect(PixelRect{area.left, area.top, area.right, area.top + 1}, pattern);
    if (area.bottom - area.top > 1) {
        painter.CompositeRect(PixelRect{area.left, area.bottom - 1, area.right, area.bottom},
                              pattern);
    }
    if (area.bottom - area.top > 2) {
        painter.CompositeRect(PixelRect{area.left, area.top + 1, area.left + 1, area.bottom - 1},
                              pattern);
        if (area.right - area.left > 1) {
            painter.CompositeRect(
                PixelRect{area.right - 1, area.top + 1, area.right, area.bottom - 1}, pattern);
        }
    }
    painter.EndDrawing(area);
}

void Painter::FillRect(BRect rect, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || !rect.IsValid())
        return;
    PixelRect area = painter.Pixels(rect);
    painter.BeginDrawing();
    painter.CompositeRect(area, pattern);
    painter.EndDrawing(area);
}

void Painter::InvertRect(BRect rect) {
    drawing_mode mode = fPrivate->state.mode;
    fPrivate->state.mode = B_OP_INVERT;
    FillRect(rect, B_SOLID_HIGH);
    fPrivate->state.mode = mode;
}

void Painter::FillRegion(const BRegion& region, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid())
        return;
    painter.BeginDrawing();
    int32 count = region.CountRects();
    for (int32 i = 0; i < count; i++) {
        clipping_rect rect = region.RectAtInt(i);
        PixelRect area = {to_pixel((double)rect.left + painter.originX),
                          to_pixel((double)rect.top + painter.originY),
                          to_pixel((double)rect.right + painter.originX) + 1,
                          to_pixel((double)rect.bottom + painter.originY) + 1};
        painter.CompositeRect(area, pattern);
    }
    BRect frame = region.Frame();
    painter.EndDrawing(painter.Pixels(frame));
}

// #pragma mark - Triangles and polygons

void Painter::StrokeTriangle(BPoint first, BPoint second, BPoint third, const pattern& pattern) {
    const BPoint points[3] = {first, second, third};
    StrokePolygon(points, 3, true, pattern);
}

void Painter::FillTriangle(BPoint first, BPoint second, BPoint third, const pattern& pattern) {
    const BPoint points[3] = {first, second, third};
    FillPolygon(points, 3, true, pattern);
}

void Painter::StrokePolygon(const BPoint* points, int32 count, bool closed,
                            const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || points == NULL || count <= 0)
        return;

    double half = painter.IsThin() ? 0.0 : painter.penSize / 2.0 + 1.0;
    PixelRect outer = {kCoordinateLimit, kCoordinateLimit, -kCoordinateLimit, -kCoordinateLimit};
    for (int32 i = 0; i < count; i++) {
        int32 x = painter.X(points[i].x);
        int32 y = painter.Y(points[i].y);
        outer = PixelRect{std::min(outer.left, to_pixel(x - half)),
                          std::min(outer.top, to_pixel(y - half)),
                          std::max(outer.right, to_pixel(x + half) + 1),
                          std::max(outer.bottom, to_pixel(y + half) + 1)};
    }
    CoverageMask mask(outer.Intersection(painter.clippingBounds));
    if (!mask.IsValid())
        return;

    int32 edges = closed && count > 2 ? count : count - 1;
    if (painter.IsThin()) {
        if (count == 1)
            mask.SetLine(painter.X(points[0].x), painter.Y(points[0].y), painter.X(points[0].x),
                         painter.Y(points[0].y));
        for (int32 i = 0; i < edges; i++) {
            const BPoint& from = points[i];
            const BPoint& to = points[(i + 1) % count];
            mask.SetLine(painter.X(from.x), painter.Y(from.y), painter.X(to.x), painter.Y(to.y));
        }
    } else {
        cairo_t* context = mask.Context();
        cairo_set_line_width(context, painter.penSize);
        cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
        cairo_set_line_cap(context, CAIRO_LINE_CAP_BUTT);
        if (count == 2 || !closed) {
            // Open lines cover their end pixels: each end grows by half a pixel.
            for (int32 i = 0; i < edges; i++) {
                double x0 = painter.PathX(points[i].x) + 0.5;
                double y0 = painter.PathY(points[i].y) + 0.5;
                double x1 = painter.PathX(points[i + 1].x) + 0.5;
                double y1 = painter.PathY(points[i + 1].y) + 0.5;
                double length = hypot(x1 - x0, y1 - y0);
                double dx = length > 0.0 ? (x1 - x0) / length * 0.5 : 0.5;
                double dy = length > 0.0 ? (y1 - y0) / length * 0.5 : 0.0;
                cairo_move_to(context, x0 - dx, y0 - dy);
                cairo_line_to(context, x1 + dx, y1 + dy);
                cairo_stroke(context);
            }
        } else {
            for (int32 i = 0; i < count; i++) {
                cairo_line_to(context, painter.PathX(points[i].x) + 0.5,
                              painter.PathY(points[i].y) + 0.5);
            }
            cairo_close_path(context);
            cairo_stroke(context);
        }
    }
    painter.BeginDrawing();
    painter.CompositeMask(mask, pattern);
    painter.EndDrawing(mask.Area());
}

void Painter::FillPolygon(const BPoint* points, int32 count, bool closed, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || points == NULL || count <= 0)
        return;

    PixelRect outer = {kCoordinateLimit, kCoordinateLimit, -kCoordinateLimit, -kCoordinateLimit};
    for (int32 i = 0; i < count; i++) {
        outer = PixelRect{std::min(outer.left, painter.X(points[i].x)),
                          std::min(outer.top, painter.Y(points[i].y)),
                          std::max(outer.right, painter.X(points[i].x) + 1),
                          std::max(outer.bottom, painter.Y(points[i].y) + 1)};
    }
    CoverageMask mask(outer.Intersection(painter.clippingBounds));
    if (!mask.IsValid())
        return;

    // The inside through the pixel centres, then the outline, so that the edge
    // pixels belong to the shape as they do for rectangles.
    cairo_t* context = mask.Context();
    for (int32 i = 0; i < count; i++)
        cairo_line_to(context, painter.PathX(points[i].x) + 0.5, painter.PathY(points[i].y) + 0.5);
    cairo_close_path(context);
    cairo_fill(context);
    for (int32 i = 0; i < count; i++) {
        const BPoint& from = points[i];
        const BPoint& to = points[(i + 1) % count];
        mask.SetLine(painter.X(from.x), painter.Y(from.y), painter.X(to.x), painter.Y(to.y));
    }

    painter.BeginDrawing();
    painter.CompositeMask(mask, pattern);
    painter.EndDrawing(mask.Area());
}

// #pragma mark - Ellipses, round rectangles, arcs

void Painter::StrokeEllipse(BRect rect, const pattern& pattern) {
    StrokeArc(rect, 0.0f, 360.0f, pattern);
}

void Painter::FillEllipse(BRect rect, const pattern& pattern) {
    FillArc(rect, 0.0f, 360.0f, pattern);
}

void Painter::StrokeRoundRect(BRect rect, float xRadius, float yRadius, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || !rect.IsValid())
        return;
    PixelRect area = painter.Pixels(rect);
    CoverageMask mask(area.Intersection(painter.clippingBounds));
    if (!mask.IsValid())
        return;

    // A ring between the outline and the outline moved in by the pen.
    double pen = painter.IsThin() ? 1.0 : painter.penSize;
    double radiusX = isnan(xRadius) ? 0.0 : xRadius;
    double radiusY = isnan(yRadius) ? 0.0 : yRadius;
    cairo_t* context = mask.Context();
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    add_round_rect_path(context, to_path(area.left), to_path(area.top), to_path(area.right),
                        to_path(area.bottom), radiusX, radiusY);
    add_round_rect_path(context, to_path(area.left + pen), to_path(area.top + pen),
                        to_path(area.right - pen), to_path(area.bottom - pen), radiusX - pen,
                        radiusY - pen);
    cairo_fill(context);

    painter.BeginDrawing();
    painter.CompositeMask(mask, pattern);
    painter.EndDrawing(mask.Area());
}

void Painter::FillRoundRect(BRect rect, float xRadius, float yRadius, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || !rect.IsValid())
        return;
    PixelRect area = painter.Pixels(rect);
    CoverageMask mask(area.Intersection(painter.clippingBounds));
    if (!mask.IsValid())
        return;

    cairo_t* context = mask.Context();
    add_round_rect_path(context, to_path(area.left), to_path(area.top), to_path(area.right),
                        to_path(area.bottom), isnan(xRadius) ? 0.0 : xRadius,
                        isnan(yRadius) ? 0.0 : yRadius);
    cairo_fill(context);

    painter.BeginDrawing();
    painter.CompositeMask(mask, pattern);
    painter.EndDrawing(mask.Area());
}

void Painter::StrokeArc(BRect rect, float startAngle, float arcAngle, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || !rect.IsValid() || !isfinite(startAngle) || !isfinite(arcAngle))
        return;
    PixelRect area = painter.Pixels(rect);
    CoverageMask mask(area.Intersection(painter.clippingBounds));
    if (!mask.IsValid())
        return;

    double pen = painter.IsThin() ? 1.0 : painter.penSize;
    double left = to_path(area.left);
    double top = to_path(area.top);
    double right = to_path(area.right);
    double bottom = to_path(area.bottom);
    cairo_t* context = mask.Context();
    if (fabsf(arcAngle) >= 360.0f) {
        // A whole ellipse: the ring between the outline and the outline moved in by the pen.
        cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
        add_ellipse_path(context, left, top, right, bottom);
        add_ellipse_path(context, left + pen, top + pen, right - pen, bottom - pen);
        cairo_fill(context);
    } else {
        double radiusX = (right - left - pen) / 2.0;
        double radiusY = (bottom - top - pen) / 2.0;
        if (radiusX > 0.0 && radiusY > 0.0) {
            // Angles turn counter-clockwise on the screen, whose y grows down.
            cairo_save(context);
            cairo_translate(context, (left + right) / 2.0, (top + bottom) / 2.0);
            cairo_scale(context, radiusX, radiusY);
            double start = -startAngle * M_PI / 180.0;
            double end = -(startAngle + arcAngle) * M_PI / 180.0;
            if (arcAngle >= 0.0f)
                cairo_arc_negative(context, 0.0, 0.0, 1.0, start, end);
            else
                cairo_arc(context, 0.0, 0.0, 1.0, start, end);
            cairo_restore(context);
            cairo_set_line_width(context, pen);
            cairo_stroke(context);
        }
    }

    painter.BeginDrawing();
    painter.CompositeMask(mask, pattern);
    painter.EndDrawing(mask.Area());
}

void Painter::FillArc(BRect rect, float startAngle, float arcAngle, const pattern& pattern) {
    Private& painter = *fPrivate;
    if (!IsValid() || !rect.IsValid() || !isfinite(startAngle) || !isfinite(arcAngle))
        return;
    PixelRect area = painter.Pixels(rect);
    CoverageMask mask(area.Intersection(painter.clippingBounds));
    if (!mask.IsValid())
        return;

    double left = to_path(area.left);
    double top = to_path(area.top);
    double right = to_path(area.right);
    double bottom = to_path(area.bottom);
    cairo_t* context = mask.Context();
    if (fabsf(arcAngle) >= 360.0f) {
        add_ellipse_path(context, left, top, right, bottom);
    } else if (right > left && bottom > top) {
        double centerX = (left + right) / 2.0;
        double centerY = (top + bottom) / 2.0;
        cairo_move_to(context, centerX, centerY);
        cairo_save(context);
        cairo_translate(context, centerX, centerY);
        cairo_scale(context, (right - left) / 2.0, (bottom - top) / 2.0);
        double start = -startAngle * M_PI / 180.0;
        double end = -(startAngle + arcAngle) * M_PI / 180.0;
        if (arcAngle >= 0.0f)
            cairo_arc_negative(context, 0.0, 0.0, 1.0, start, end);
        else
            cairo_arc(context, 0.0, 0.0, 1.0, start, end);
        cairo_restore(context);
        cairo_close_path(context);
    }
    cairo_fill(context);

    painter.BeginDrawing();
    painter.CompositeMask(mask, pattern);
    painter.EndDrawing(mask.Area());
}

// #pragma mark - Text and bitmaps

BPoint Painter::DrawString(const char* text, int32 length, BPoint baseline, const BFont& font,
                           const escapement_delta* delta) {
    Private& painter = *fPrivate;
    if (text == NULL || length == 0)
        return baseline;

    BPoint onSurface(baseline.x + painter.originX, baseline.y + painter.originY);
    BRect visible;
    if (!painter.clippingBounds.IsEmpty()) {
        visible = BRect(painter.clippingBounds.left, painter.clippingBounds.top,
                        painter.clippingBounds.right - 1, painter.clippingBounds.bottom - 1);
    }
    TextMask mask;
    float advance = TextLayout::RenderMask(font, text, length, delta, onSurface, visible, &mask);

    if (IsValid() && mask.surface != NULL) {
        cairo_surface_t* surface = mask.surface.get();
        PixelRect area = {mask.left, mask.top, mask.left + cairo_image_surface_get_width(surface),
                          mask.top + cairo_image_surface_get_height(surface)};
        painter.BeginDrawing();
        painter.CompositeCoverage(area, cairo_image_surface_get_data(surface),
                                  cairo_image_surface_get_stride(surface), B_SOLID_HIGH);
        painter.EndDrawing(area);
    }

    double rotation = font.Rotation() * M_PI / 180.0;
    return BPoint(baseline.x + (float)(advance * cos(rotation)),
                  baseline.y - (float)(advance * sin(rotation)));
}

void Painter::DrawBitmap(const BBitmap* bitmap, BRect source, BRect destination) {
    Private& painter = *fPrivate;
    if (!IsValid() || bitmap == NULL || !bitmap->IsValid() || !source.IsValid() ||
        !destination.IsValid()) {
        return;
    }

    BRect bounds = bitmap->Bounds();
    int32 bitmapWidth = bounds.IntegerWidth() + 1;
    int32 bitmapHeight = bounds.IntegerHeight() + 1;
    int64 sourceLeft = to_pixel((double)source.left - bounds.left);
    int64 sourceTop = to_pixel((double)source.top - bounds.top);
    int64 sourceWidth = (int64)to_pixel((double)source.right - bounds.left) - sourceLeft + 1;
    int64 sourceHeight = (int64)to_pixel((double)source.bottom - bounds.top) - sourceTop + 1;
    PixelRect area = painter.Pixels(destination);
    int64 width = (int64)area.right - area.left;
    int64 height = (int64)area.bottom - area.top;
    if (sourceWidth <= 0 || sourceHeight <= 0 || width <= 0 || height <= 0)
        return;

    const uint8* bits = static_cast<const uint8*>(bitmap->Bits());
    int32 bytesPerRow = bitmap->BytesPerRow();
    color_space space = bitmap->ColorSpace();
    bool copies = painter.state.mode == B_OP_COPY;
    bool overs = painter.state.mode == B_OP_OVER;

    // Nearest source pixel to the centre of each target pixel, -1 outside the bitmap.
    auto sourceFor = [](int64 offset, int64 sourceStart, int64 sourceSize, int64 size,
                        int64 limit) -> int64 {
        int64 source = sourceStart +
                       (sourceSize == size ? offset : ((2 * offset + 1) * sourceSize) / (2 * size));
        return source >= 0 && source < limit ? source : -1;
    };
    std::vector<int32> columns;
    std::vector<rgb_color> row(bitmapWidth);

    painter.BeginDrawing();
    for (const PixelRect& clip : painter.clipping) {
        PixelRect part = area.Intersection(clip);
        if (part.IsEmpty())
            continue;
        columns.resize(part.right - part.left);
        int32 firstColumn = bitmapWidth;
        int32 lastColumn = -1;
        for (int32 x = part.left; x < part.right; x++) {
            int64 column = sourceFor(x - area.left, sourceLeft, sourceWidth, width, bitmapWidth);
            columns[x - part.left] = (int32)column;
            if (column >= 0) {
                firstColumn = std::min(firstColumn, (int32)column);
                lastColumn = std::max(lastColumn, (int32)column);
            }
        }
        if (lastColumn < 0)
            continue;

        for (int32 y = part.top; y < part.bottom; y++) {
            int64 sourceY = sourceFor(y - area.top, sourceTop, sourceHeight, height, bitmapHeight);
            if (sourceY < 0)
                continue;
            // Only the columns that are drawn are converted.
            read_pixels(bits + sourceY * bytesPerRow, firstColumn, lastColumn - firstColumn + 1,
                        space, row.data() + firstColumn);
            uint32* target = painter.Row(y);
            for (int32 x = part.left; x < part.right; x++) {
                int32 column = columns[x - part.left];
                if (column < 0)
                    continue;
                const rgb_color& pixel = row[column];
                if (copies || (overs && pixel.alpha == 255)) {
                    target[x] = 0xff000000u | ((uint32)pixel.red << 16) |
                                ((uint32)pixel.green << 8) | pixel.blue;
                } else if (!(overs && pixel.alpha == 0)) {
                    target[x] = blend_bitmap_pixel(painter.Read(target, x), pixel, painter.state);
                }
            }
        }
    }
    painter.EndDrawing(area);
}

} // namespace BPrivate
