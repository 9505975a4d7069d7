// BView drawing: the drawing state, the primitives and bitmaps (forwarded to
// the window's painter with the view's origin and clipping), and the view's part
// of the update pass. Text is in ViewText.cpp.
//
// The window keeps one painter for its back buffer. A view sets it up (origin,
// clipping, colours, modes, pen) only when the painter was last set up for
// another view or for another state, so a run of drawing calls costs one set-up.
// Clipping is the view's visible area minus its children, narrowed by the update
// in progress and by every constrained clipping region on the state stack.
#include <View.h>

#include "interface/ViewData.h"
#include "interface/WindowData.h"

#include <Bitmap.h>
#include <Region.h>
#include <String.h>
#include <Window.h>

#include <algorithm>
#include <math.h>
#include <string.h>

using BPrivate::Painter;

// #pragma mark - Painter set-up

const BRegion& BView::_DrawClip() {
    Private* data = fPrivate;
    BWindow::Private* window = data->window->fPrivate;
    _UpdateGeometry();
    uint64 update = window->inUpdate ? window->updateSerial : 0;
    if (data->drawClipGeometry == window->geometrySerial && data->drawClipUpdate == update &&
        data->drawClipState == data->stateSerial)
        return data->drawClip;

    data->drawClip = data->clipRegion;
    if (window->inUpdate)
        data->drawClip.IntersectWith(&window->updateRegion);
    auto constrain = [&](const std::unique_ptr<BRegion>& clipping) {
        if (clipping == NULL)
            return;
        BRegion converted(*clipping);
        converted.OffsetBy(data->windowOrigin);
        data->drawClip.IntersectWith(&converted);
    };
    for (const ViewState& saved : data->savedStates)
        constrain(saved.clipping);
    constrain(data->state.clipping);

    data->drawClipGeometry = window->geometrySerial;
    data->drawClipUpdate = update;
    data->drawClipState = data->stateSerial;
    return data->drawClip;
}

Painter* BView::_PrepareDrawing() {
    Private* data = fPrivate;
    BWindow* owner = data->window;
    if (owner == NULL)
        return NULL;
    _CheckLock();
    BWindow::Private* window = owner->fPrivate;
    Painter* painter = window->painter.get();
    if (painter == NULL)
        return NULL;

    const BRegion& clip = _DrawClip();
    uint64 update = window->inUpdate ? window->updateSerial : 0;
    if (window->painterView != this || window->painterState != data->stateSerial ||
        window->painterGeometry != window->geometrySerial || window->painterUpdate != update) {
        painter->SetOrigin(BPoint(roundf(data->windowOrigin.x), roundf(data->windowOrigin.y)));
        painter->SetClipping(&clip);
        const ViewState& state = data->state;
        painter->SetHighColor(state.highColor);
        painter->SetLowColor(state.lowColor);
        painter->SetDrawingMode(state.drawingMode);
        painter->SetBlendingMode(state.sourceAlpha, state.alphaFunction);
        painter->SetPenSize(state.penSize);
        window->painterView = this;
        window->painterState = data->stateSerial;
        window->painterGeometry = window->geometrySerial;
        window->painterUpdate = update;
    }
    // Drawing outside an update shows at the next flush.
    if (!window->inUpdate && data->presentSerial != window->presentSerial) {
        window->presentPending.Include(&clip);
        data->presentSerial = window->presentSerial;
    }
    return painter;
}

void BView::_StateChanged() {
    fPrivate->stateSerial++;
}

// #pragma mark - Update pass

void BView::_Draw(const BRegion& dirty) {
    Private* data = fPrivate;
    BWindow* owner = data->window;
    BWindow::Private* window = owner->fPrivate;
    BRect visible = _VisibleRect();
    if (!visible.IsValid() || !dirty.Intersects(visible))
        return;

    BRegion area(data->clipRegion);
    area.IntersectWith(&dirty);
    bool willDraw = (data->flags & B_WILL_DRAW) != 0;
    if (area.CountRects() > 0) {
        if (data->viewColor != B_TRANSPARENT_COLOR)
            owner->_Erase(area, data->viewColor);
        if (willDraw) {
            BRect updateRect = area.Frame().OffsetByCopy(-data->windowOrigin);
            Draw(updateRect);
        }
    }
    if (owner != data->window)
        return;

    std::vector<BView*> children = data->children;
    for (BView* child : children) {
        if (window->views.count(child) != 0 && child->fPrivate->parent == this)
            child->_Draw(dirty);
    }

    if (willDraw && (data->flags & B_DRAW_ON_CHILDREN) != 0 && data->window == owner) {
        // Drawn over the children: clipped to the whole visible part.
        BRegion saved = data->clipRegion;
        data->clipRegion.Set(visible);
        _StateChanged();
        BRegion whole(visible);
        whole.IntersectWith(&dirty);
        DrawAfterChildren(whole.Frame().OffsetByCopy(-data->windowOrigin));
        data->clipRegion = saved;
        _StateChanged();
    }
}

// #pragma mark - State

void BView::SetDrawingMode(drawing_mode mode) {
    _CheckLock();
    if (fPrivate->state.drawingMode == mode)
        return;
    fPrivate->state.drawingMode = mode;
    _StateChanged();
}

drawing_mode BView::DrawingMode() const {
    return fPrivate->state.drawingMode;
}

void BView::SetBlendingMode(source_alpha srcAlpha, alpha_function alphaFunc) {
    _CheckLock();
    fPrivate->state.sourceAlpha = srcAlpha;
    fPrivate->state.alphaFunction = alphaFunc;
    _StateChanged();
}

void BView::GetBlendingMode(source_alpha* srcAlpha, alpha_function* alphaFunc) const {
    if (srcAlpha != NULL)
        *srcAlpha = fPrivate->state.sourceAlpha;
    if (alphaFunc != NULL)
        *alphaFunc = fPrivate->state.alphaFunction;
}

void BView::SetPenSize(float size) {
    _CheckLock();
    if (!(size >= 0.0f))
        size = 0.0f;
    if (fPrivate->state.penSize == size)
        return;
    fPrivate->state.penSize = size;
    _StateChanged();
}

float BView::PenSize() const {
    return fPrivate->state.penSize;
}

void BView::SetViewColor(rgb_color color) {
    _CheckLock();
    if (fPrivate->viewColor == color)
        return;
    fPrivate->viewColor = color;
    if (fPrivate->window != NULL)
        Invalidate();
}

void BView::SetViewColor(uchar red, uchar green, uchar blue, uchar alpha) {
    SetViewColor(make_color(red, green, blue, alpha));
}

rgb_color BView::ViewColor() const {
    return fPrivate->viewColor;
}

void BView::SetHighColor(rgb_color color) {
    _CheckLock();
    if (fPrivate->state.highColor == color)
        return;
    fPrivate->state.highColor = color;
    _StateChanged();
}

void BView::SetHighColor(uchar red, uchar green, uchar blue, uchar alpha) {
    SetHighColor(make_color(red, green, blue, alpha));
}

rgb_color BView::HighColor() const {
    return fPrivate->state.highColor;
}

void BView::SetLowColor(rgb_color color) {
    _CheckLock();
    if (fPrivate->state.lowColor == color)
        return;
    fPrivate->state.lowColor = color;
    _StateChanged();
}

void BView::SetLowColor(uchar red, uchar green, uchar blue, uchar alpha) {
    SetLowColor(make_color(red, green, blue, alpha));
}

rgb_color BView::LowColor() const {
    return fPrivate->state.lowColor;
}

void BView::PushState() {
    _CheckLock();
    Private* data = fPrivate;
    data->savedStates.push_back(data->state);
    // The new state starts without a constraint of its own; the saved ones
    // still apply.
    data->state.clipping.reset();
    _StateChanged();
}

void BView::PopState() {
    _CheckLock();
    Private* data = fPrivate;
    if (data->savedStates.empty())
        return;
    data->state = data->savedStates.back();
    data->savedStates.pop_back();
    _StateChanged();
}

void BView::MovePenTo(BPoint point) {
    _CheckLock();
    fPrivate->state.penLocation = point;
}

void BView::MovePenTo(float x, float y) {
    MovePenTo(BPoint(x, y));
}

void BView::MovePenBy(float x, float y) {
    MovePenTo(fPrivate->state.penLocation + BPoint(x, y));
}

BPoint BView::PenLocation() const {
    return fPrivate->state.penLocation;
}

void BView::ConstrainClippingRegion(BRegion* region) {
    _CheckLock();
    fPrivate->state.clipping.reset(region != NULL ? new BRegion(*region) : NULL);
    _StateChanged();
}

void BView::GetClippingRegion(BRegion* region) const {
    if (region == NULL)
        return;
    _CheckLock();
    BView* self = const_cast<BView*>(this);
    if (fPrivate->window == NULL) {
        region->Set(Bounds());
        if (fPrivate->state.clipping != NULL)
            region->IntersectWith(fPrivate->state.clipping.get());
        return;
    }
    *region = self->_DrawClip();
    BPoint origin = fPrivate->windowOrigin;
    region->OffsetBy(-origin);
}

// #pragma mark - Primitives

void BView::StrokeLine(BPoint toPoint, ::pattern pattern) {
    StrokeLine(fPrivate->state.penLocation, toPoint, pattern);
}

void BView::StrokeLine(BPoint start, BPoint end, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->StrokeLine(start, end, pattern);
    fPrivate->state.penLocation = end;
}

void BView::BeginLineArray(int32 count) {
    _CheckLock();
    if (count <= 0)
        return;
    fPrivate->inLineArray = true;
    fPrivate->lines.clear();
    fPrivate->lines.reserve(std::min<int32>(count, 1024));
}

void BView::AddLine(BPoint start, BPoint end, rgb_color color) {
    if (!fPrivate->inLineArray)
        return;
    fPrivate->lines.push_back(Private::Line{start, end, color});
}

void BView::EndLineArray() {
    _CheckLock();
    if (!fPrivate->inLineArray)
        return;
    fPrivate->inLineArray = false;
    std::vector<Private::Line> lines;
    lines.swap(fPrivate->lines);
    rgb_color high = fPrivate->state.highColor;
    for (const Private::Line& line : lines) {
        SetHighColor(line.color);
        StrokeLine(line.start, line.end, B_SOLID_HIGH);
    }
    SetHighColor(high);
}

void BView::StrokePolygon(const BPoint* pointArray, int32 numPoints, bool isClosed,
                          ::pattern pattern) {
    if (pointArray == NULL || numPoints <= 0)
        return;
    if (Painter* painter = _PrepareDrawing())
        painter->StrokePolygon(pointArray, numPoints, isClosed, pattern);
}

void BView::StrokePolygon(const BPoint* pointArray, int32 numPoints, BRect bounds, bool isClosed,
                          ::pattern pattern) {
    StrokePolygon(pointArray, numPoints, isClosed, pattern);
}

void BView::FillPolygon(const BPoint* pointArray, int32 numPoints, ::pattern pattern) {
    if (pointArray == NULL || numPoints <= 0)
        return;
    if (Painter* painter = _PrepareDrawing())
        painter->FillPolygon(pointArray, numPoints, true, pattern);
}

void BView::FillPolygon(const BPoint* pointArray, int32 numPoints, BRect bounds,
                        ::pattern pattern) {
    FillPolygon(pointArray, numPoints, pattern);
}

void BView::StrokeTriangle(BPoint point1, BPoint point2, BPoint point3, BRect bounds,
                           ::pattern pattern) {
    StrokeTriangle(point1, point2, point3, pattern);
}

void BView::StrokeTriangle(BPoint point1, BPoint point2, BPoint point3, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->StrokeTriangle(point1, point2, point3, pattern);
}

void BView::FillTriangle(BPoint point1, BPoint point2, BPoint point3, BRect bounds,
                         ::pattern pattern) {
    FillTriangle(point1, point2, point3, pattern);
}

void BView::FillTriangle(BPoint point1, BPoint point2, BPoint point3, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->FillTriangle(point1, point2, point3, pattern);
}

void BView::StrokeRect(BRect rect, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->StrokeRect(rect, pattern);
}

void BView::FillRect(BRect rect, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->FillRect(rect, pattern);
}

void BView::FillRegion(BRegion* region, ::pattern pattern) {
    if (region == NULL)
        return;
    if (Painter* painter = _PrepareDrawing())
        painter->FillRegion(*region, pattern);
}

void BView::InvertRect(BRect rect) {
    if (Painter* painter = _PrepareDrawing())
        painter->InvertRect(rect);
}

void BView::StrokeRoundRect(BRect rect, float xRadius, float yRadius, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->StrokeRoundRect(rect, xRadius, yRadius, pattern);
}

void BView::FillRoundRect(BRect rect, float xRadius, float yRadius, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->FillRoundRect(rect, xRadius, yRadius, pattern);
}

void BView::StrokeEllipse(BPoint center, float xRadius, float yRadius, ::pattern pattern) {
    StrokeEllipse(
        BRect(center.x - xRadius, center.y - yRadius, center.x + xRadius, center.y + yRadius),
        pattern);
}

void BView::StrokeEllipse(BRect rect, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->StrokeEllipse(rect, pattern);
}

void BView::FillEllipse(BPoint center, float xRadius, float yRadius, ::pattern pattern) {
    FillEllipse(
        BRect(center.x - xRadius, center.y - yRadius, center.x + xRadius, center.y + yRadius),
        pattern);
}

void BView::FillEllipse(BRect rect, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->FillEllipse(rect, pattern);
}

void BView::StrokeArc(BPoint center, float xRadius, float yRadius, float startAngle, float arcAngle,
                      ::pattern pattern) {
    StrokeArc(BRect(center.x - xRadius, center.y - yRadius, center.x + xRadius, center.y + yRadius),
              startAngle, arcAngle, pattern);
}

void BView::StrokeArc(BRect rect, float startAngle, float arcAngle, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->StrokeArc(rect, startAngle, arcAngle, pattern);
}

void BView::FillArc(BPoint center, float xRadius, float yRadius, float startAngle, float arcAngle,
                    ::pattern pattern) {
    FillArc(BRect(center.x - xRadius, center.y - yRadius, center.x + xRadius, center.y + yRadius),
            startAngle, arcAngle, pattern);
}

void BView::FillArc(BRect rect, float startAngle, float arcAngle, ::pattern pattern) {
    if (Painter* painter = _PrepareDrawing())
        painter->FillArc(rect, startAngle, arcAngle, pattern);
}

// #pragma mark - Bitmaps

void BView::DrawBitmapAsync(const BBitmap* bitmap, BRect srcRect, BRect dstRect) {
    if (bitmap == NULL || !srcRect.IsValid() || !dstRect.IsValid())
        return;
    if (Painter* painter = _PrepareDrawing())
        painter->DrawBitmap(bitmap, srcRect, dstRect);
}

void BView::DrawBitmapAsync(const BBitmap* bitmap, BRect dstRect) {
    if (bitmap == NULL)
        return;
    DrawBitmapAsync(bitmap, bitmap->Bounds(), dstRect);
}

void BView::DrawBitmapAsync(const BBitmap* bitmap, BPoint where) {
    if (bitmap == NULL)
        return;
    BRect bounds = bitmap->Bounds();
    DrawBitmapAsync(bitmap, bounds, bounds.OffsetToCopy(where));
}

void BView::DrawBitmapAsync(const BBitmap* bitmap) {
    DrawBitmapAsync(bitmap, fPrivate->state.penLocation);
}

void BView::DrawBitmap(const BBitmap* bitmap, BRect srcRect, BRect dstRect) {
    DrawBitmapAsync(bitmap, srcRect, dstRect);
}

void BView::DrawBitmap(const BBitmap* bitmap, BRect dstRect) {
    DrawBitmapAsync(bitmap, dstRect);
}

void BView::DrawBitmap(const BBitmap* bitmap, BPoint where) {
    DrawBitmapAsync(bitmap, where);
}

void BView::DrawBitmap(const BBitmap* bitmap) {
    DrawBitmapAsync(bitmap);
}

// #pragma mark - Flushing

void BView::Flush() const {
    if (fPrivate->window != NULL)
        fPrivate->window->Flush();
}

void BView::Sync() const {
    if (fPrivate->window != NULL)
        fPrivate->window->Sync();
}
