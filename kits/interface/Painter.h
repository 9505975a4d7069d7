// Painter: draws with Be semantics into a cairo ARGB32 (or RGB24) image surface,
// a window's back buffer or a bitmap's pixels (kit-private). BView's drawing
// calls forward here.
//
// Coordinates are the view's; SetOrigin() gives the whole-pixel offset of the
// view on the surface. A point names the pixel it falls in, and rectangles cover
// their edge pixels: FillRect(BRect(0, 0, 3, 0)) colours four pixels, as does
// StrokeLine((0, 0), (3, 0)). Thin lines are crisp single pixels; shapes are not
// antialiased, text is. Patterns are aligned to the surface.
#ifndef _PAINTER_H
#define _PAINTER_H

#include <Font.h>
#include <GraphicsDefs.h>
#include <Region.h>

#include <cairo.h>

class BBitmap;

namespace BPrivate {

class Painter {
public:
    // Keeps a reference to the surface while it lives.
    Painter(cairo_surface_t* target);
    ~Painter();

    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    // Whether the target is an image surface that can be drawn into.
    bool IsValid() const;

    void SetOrigin(BPoint origin);
    BPoint Origin() const;
    // Surface coordinates; NULL draws anywhere on the surface. The region is copied.
    void SetClipping(const BRegion* region);

    void SetHighColor(rgb_color color);
    rgb_color HighColor() const;
    void SetLowColor(rgb_color color);
    rgb_color LowColor() const;
    void SetDrawingMode(drawing_mode mode);
    drawing_mode DrawingMode() const;
    void SetBlendingMode(source_alpha sourceAlpha, alpha_function alphaFunction);
    // Below 1.5 lines are one pixel wide.
    void SetPenSize(float size);
    float PenSize() const;

    void StrokeLine(BPoint start, BPoint end, const pattern& pattern);
    void StrokeRect(BRect rect, const pattern& pattern);
    void FillRect(BRect rect, const pattern& pattern);
    void InvertRect(BRect rect);
    void StrokeTriangle(BPoint first, BPoint second, BPoint third, const pattern& pattern);
    void FillTriangle(BPoint first, BPoint second, BPoint third, const pattern& pattern);
    void FillRegion(const BRegion& region, const pattern& pattern);
    void StrokeEllipse(BRect rect, const pattern& pattern);
    void FillEllipse(BRect rect, const pattern& pattern);
    void StrokeRoundRect(BRect rect, float xRadius, float yRadius, const pattern& pattern);
    void FillRoundRect(BRect rect, float xRadius, float yRadius, const pattern& pattern);
    // Angles in degrees, counter-clockwise from the positive x axis.
    void StrokeArc(BRect rect, float startAngle, float arcAngle, const pattern& pattern);
    void FillArc(BRect rect, float startAngle, float arcAngle, const pattern& pattern);
    void StrokePolygon(const BPoint* points, int32 count, bool closed, const pattern& pattern);
    void FillPolygon(const BPoint* points, int32 count, bool closed, const pattern& pattern);

    // Draws length bytes of UTF-8 (up to a NUL) with the baseline origin at the
    // point; glyphs sit on the baseline's pixel row. Returns the pen location
    // after the string, along the font's rotation.
    BPoint DrawString(const char* text, int32 length, BPoint baseline, const BFont& font,
                      const escapement_delta* delta);

    // Draws the source part of the bitmap (its own coordinates) into the
    // destination rectangle, scaled (nearest pixel) when the sizes differ.
    void DrawBitmap(const BBitmap* bitmap, BRect source, BRect destination);

private:
    struct Private;
    Private* fPrivate;
};

} // namespace BPrivate

#endif // _PAINTER_H
