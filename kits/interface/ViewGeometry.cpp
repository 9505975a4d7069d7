// BView geometry: bounds and frames, the cached place of a view in its window,
// coordinate conversions, moving, resizing (with the resizing modes), scrolling,
// hiding, and invalidation.
#include <View.h>

#include "interface/ViewData.h"
#include "interface/ViewPrivate.h"
#include "interface/WindowData.h"

#include <Message.h>
#include <Region.h>
#include <Window.h>

#include <math.h>
#include <mutex>

namespace {

std::mutex sUpdaterLock;
BPrivate::scroll_bar_updater sScrollBarUpdater = NULL;

} // namespace

namespace BPrivate {

void ViewPrivate::SetScrollBar(orientation posture, BScrollBar* bar) {
    if (posture == B_VERTICAL)
        fView->fPrivate->verticalScrollBar = bar;
    else
        fView->fPrivate->horizontalScrollBar = bar;
}

void ViewPrivate::SetScrollBarUpdater(scroll_bar_updater updater) {
    std::lock_guard<std::mutex> lock(sUpdaterLock);
    sScrollBarUpdater = updater;
}

} // namespace BPrivate

// #pragma mark - Geometry

BRect BView::Bounds() const {
    const Private* data = fPrivate;
    return BRect(data->scrollOrigin.x, data->scrollOrigin.y,
                 data->scrollOrigin.x + data->frame.Width(),
                 data->scrollOrigin.y + data->frame.Height());
}

BRect BView::Frame() const {
    return fPrivate->frame;
}

BPoint BView::LeftTop() const {
    return fPrivate->scrollOrigin;
}

void BView::_UpdateGeometry() {
    Private* data = fPrivate;
    BWindow* window = data->window;
    if (window == NULL || data->geometrySerial == window->fPrivate->geometrySerial)
        return;
    BView* parent = data->parent;
    if (parent == NULL) {
        data->windowOrigin = data->frame.LeftTop() - data->scrollOrigin;
        data->visibleRect = data->showLevel > 0 ? BRect() : data->frame;
    } else {
        parent->_UpdateGeometry();
        BPoint parentOrigin = parent->fPrivate->windowOrigin;
        data->windowOrigin = parentOrigin + data->frame.LeftTop() - data->scrollOrigin;
        BRect frame = data->frame.OffsetByCopy(parentOrigin);
        BRect parentVisible = parent->fPrivate->visibleRect;
        if (data->showLevel > 0 || !parentVisible.IsValid() || !frame.IsValid())
            data->visibleRect = BRect();
        else
            data->visibleRect = frame & parentVisible;
    }
    data->clipRegion.MakeEmpty();
    if (data->visibleRect.IsValid()) {
        data->clipRegion.Set(data->visibleRect);
        for (BView* child : data->children) {
            Private* childData = child->fPrivate;
            if (childData->showLevel > 0 || !childData->frame.IsValid())
                continue;
            data->clipRegion.Exclude(childData->frame.OffsetByCopy(data->windowOrigin) &
                                     data->visibleRect);
        }
    }
    data->geometrySerial = window->fPrivate->geometrySerial;
}

BRect BView::_VisibleRect() {
    _UpdateGeometry();
    return fPrivate->window != NULL ? fPrivate->visibleRect : BRect();
}

BPoint BView::_WindowOrigin() {
    _UpdateGeometry();
    return fPrivate->windowOrigin;
}

BView* BView::_ViewAt(BPoint where) {
    if (!_VisibleRect().Contains(where))
        return NULL;
    const std::vector<BView*>& children = fPrivate->children;
    for (auto child = children.rbegin(); child != children.rend(); child++) {
        if (BView* hit = (*child)->_ViewAt(where))
            return hit;
    }
    return this;
}

void BView::ConvertToParent(BPoint* point) const {
    if (point != NULL)
        *point += fPrivate->frame.LeftTop() - fPrivate->scrollOrigin;
}

BPoint BView::ConvertToParent(BPoint point) const {
    ConvertToParent(&point);
    return point;
}

void BView::ConvertFromParent(BPoint* point) const {
    if (point != NULL)
        *point -= fPrivate->frame.LeftTop() - fPrivate->scrollOrigin;
}

BPoint BView::ConvertFromParent(BPoint point) const {
    ConvertFromParent(&point);
    return point;
}

void BView::ConvertToParent(BRect* rect) const {
    if (rect != NULL)
        rect->OffsetBy(fPrivate->frame.LeftTop() - fPrivate->scrollOrigin);
}

BRect BView::ConvertToParent(BRect rect) const {
    ConvertToParent(&rect);
    return rect;
}

void BView::ConvertFromParent(BRect* rect) const {
    if (rect != NULL)
        rect->OffsetBy(fPrivate->scrollOrigin - fPrivate->frame.LeftTop());
}

BRect BView::ConvertFromParent(BRect rect) const {
    ConvertFromParent(&rect);
    return rect;
}

void BView::ConvertToScreen(BPoint* point) const {
    if (point == NULL)
        return;
    for (const BView* view = this; view != NULL; view = view->fPrivate->parent)
        view->ConvertToParent(point);
    if (fPrivate->window != NULL)
        fPrivate->window->ConvertToScreen(point);
}

BPoint BView::ConvertToScreen(BPoint point) const {
    ConvertToScreen(&point);
    return point;
}

void BView::ConvertFromScreen(BPoint* point) const {
    if (point == NULL)
        return;
    BPoint origin(0, 0);
    ConvertToScreen(&origin);
    *point -= origin;
}

BPoint BView::ConvertFromScreen(BPoint point) const {
    ConvertFromScreen(&point);
    return point;
}

void BView::ConvertToScreen(BRect* rect) const {
    if (rect == NULL)
        return;
    BPoint origin(0, 0);
    ConvertToScreen(&origin);
    rect->OffsetBy(origin);
}

BRect BView::ConvertToScreen(BRect rect) const {
    ConvertToScreen(&rect);
    return rect;
}

void BView::ConvertFromScreen(BRect* rect) const {
    if (rect == NULL)
        return;
    BPoint origin(0, 0);
    ConvertToScreen(&origin);
    rect->OffsetBy(-origin);
}

BRect BView::ConvertFromScreen(BRect rect) const {
    ConvertFromScreen(&rect);
    return rect;
}

void BView::_SetFrame(BRect newFrame) {
    Private* data = fPrivate;
    BRect oldFrame = data->frame;
    if (oldFrame == newFrame)
        return;
    bool moved = oldFrame.LeftTop() != newFrame.LeftTop();
    float deltaWidth = newFrame.Width() - oldFrame.Width();
    float deltaHeight = newFrame.Height() - oldFrame.Height();
    bool resized = deltaWidth != 0.0f || deltaHeight != 0.0f;

    BWindow* window = data->window;
    if (window == NULL) {
        data->frame = newFrame;
    } else {
        BRegion before(_VisibleRect());
        data->frame = newFrame;
        window->fPrivate->geometrySerial++;
        BRegion after(_VisibleRect());
        // Without B_FULL_UPDATE_ON_RESIZE a view that keeps its place only
        // redraws what it gained; its parent redraws what it gave up.
        if (moved || (data->flags & B_FULL_UPDATE_ON_RESIZE) != 0)
            before.Include(&after);
        else
            before.ExclusiveInclude(&after);
        window->_Invalidate(before);

        if ((data->flags & B_FRAME_EVENTS) != 0) {
            bigtime_t now = system_time();
            if (moved) {
                BMessage message(B_VIEW_MOVED);
                message.AddInt64("when", now);
                message.AddPoint("where", newFrame.LeftTop());
                window->PostMessage(&message, this);
            }
            if (resized) {
                BMessage message(B_VIEW_RESIZED);
                message.AddInt64("when", now);
                message.AddInt32("width", (int32)newFrame.Width());
                message.AddInt32("height", (int32)newFrame.Height());
                window->PostMessage(&message, this);
            }
        }
    }
    if (resized) {
        for (BView* child : data->children)
            child->_ParentResized(deltaWidth, deltaHeight);
    }
}

void BView::_ParentResized(float deltaWidth, float deltaHeight) {
    uint32 mode = fPrivate->resizingMode;
    uint32 top = (mode >> 12) & 0xf;
    uint32 left = (mode >> 8) & 0xf;
    uint32 bottom = (mode >> 4) & 0xf;
    uint32 right = mode & 0xf;
    auto shift = [](uint32 rule, float delta, uint32 far) {
        if (rule == far)
            return delta;
        if (rule == _VIEW_CENTER_)
            return roundf(delta / 2);
        return 0.0f;
    };
    BRect frame = fPrivate->frame;
    frame.left += shift(left, deltaWidth, _VIEW_RIGHT_);
    frame.right += shift(right, deltaWidth, _VIEW_RIGHT_);
    frame.top += shift(top, deltaHeight, _VIEW_BOTTOM_);
    frame.bottom += shift(bottom, deltaHeight, _VIEW_BOTTOM_);
    _SetFrame(frame);
}

void BView::MoveBy(float dh, float dv) {
    MoveTo(fPrivate->frame.left + dh, fPrivate->frame.top + dv);
}

void BView::MoveTo(BPoint where) {
    MoveTo(where.x, where.y);
}

void BView::MoveTo(float x, float y) {
    if (!isfinite(x) || !isfinite(y))
        return;
    _CheckLock();
    _SetFrame(fPrivate->frame.OffsetToCopy(roundf(x), roundf(y)));
}

void BView::ResizeBy(float dh, float dv) {
    ResizeTo(fPrivate->frame.Width() + dh, fPrivate->frame.Height() + dv);
}

void BView::ResizeTo(float width, float height) {
    if (!isfinite(width) || !isfinite(height))
        return;
    _CheckLock();
    BRect frame = fPrivate->frame;
    frame.right = frame.left + roundf(width);
    frame.bottom = frame.top + roundf(height);
    _SetFrame(frame);
}

void BView::ScrollBy(float dh, float dv) {
    ScrollTo(BPoint(fPrivate->scrollOrigin.x + dh, fPrivate->scrollOrigin.y + dv));
}

void BView::ScrollTo(BPoint where) {
    if (!isfinite(where.x) || !isfinite(where.y))
        return;
    _CheckLock();
    where.Set(roundf(where.x), roundf(where.y));
    if (where == fPrivate->scrollOrigin)
        return;
    BPoint previous = fPrivate->scrollOrigin;
    fPrivate->scrollOrigin = where;
    if (fPrivate->window != NULL) {
        fPrivate->window->fPrivate->geometrySerial++;
        _InvalidateVisible();
    }

    BPrivate::scroll_bar_updater updater;
    {
        std::lock_guard<std::mutex> lock(sUpdaterLock);
        updater = sScrollBarUpdater;
    }
    if (updater == NULL)
        return;
    // The bars follow; a bar that set the value itself sees no change.
    if (fPrivate->horizontalScrollBar != NULL && where.x != previous.x)
        updater(fPrivate->horizontalScrollBar, where.x);
    if (fPrivate->verticalScrollBar != NULL && where.y != previous.y)
        updater(fPrivate->verticalScrollBar, where.y);
}

void BView::SetResizingMode(uint32 mode) {
    _CheckLock();
    fPrivate->resizingMode = mode & _RESIZE_MASK_;
}

uint32 BView::ResizingMode() const {
    return fPrivate->resizingMode;
}

void BView::SetFlags(uint32 flags) {
    _CheckLock();
    fPrivate->flags = flags & ~(uint32)_RESIZE_MASK_;
    if (fPrivate->window != NULL)
        fPrivate->window->_UpdatePulse();
}

uint32 BView::Flags() const {
    return fPrivate->flags;
}

void BView::Show() {
    _CheckLock();
    fPrivate->showLevel--;
    if (fPrivate->showLevel == 0 && fPrivate->window != NULL) {
        fPrivate->window->fPrivate->geometrySerial++;
        _InvalidateVisible();
    }
}

void BView::Hide() {
    _CheckLock();
    if (fPrivate->showLevel == 0 && fPrivate->window != NULL) {
        _InvalidateVisible();
        fPrivate->window->fPrivate->geometrySerial++;
    }
    fPrivate->showLevel++;
}

bool BView::IsHidden(const BView* lookingFrom) const {
    for (const BView* view = this; view != NULL && view != lookingFrom;
         view = view->fPrivate->parent) {
        if (view->fPrivate->showLevel > 0)
            return true;
    }
    return fPrivate->window != NULL && fPrivate->window->IsHidden() && lookingFrom == NULL;
}

bool BView::IsHidden() const {
    return IsHidden(NULL);
}

// #pragma mark - Invalidation

void BView::_InvalidateVisible() {
    if (fPrivate->window == NULL)
        return;
    BRect visible = _VisibleRect();
    if (visible.IsValid())
        fPrivate->window->_Invalidate(BRegion(visible));
}

void BView::Invalidate(BRect invalRect) {
    if (fPrivate->window == NULL)
        return;
    _CheckLock();
    invalRect.Set(floorf(invalRect.left), floorf(invalRect.top), ceilf(invalRect.right),
                  ceilf(invalRect.bottom));
    invalRect = invalRect & Bounds();
    if (!invalRect.IsValid())
        return;
    invalRect.OffsetBy(_WindowOrigin());
    invalRect = invalRect & _VisibleRect();
    if (invalRect.IsValid())
        fPrivate->window->_Invalidate(BRegion(invalRect));
}

void BView::Invalidate(const BRegion* invalRegion) {
    if (invalRegion == NULL || fPrivate->window == NULL)
        return;
    int32 count = invalRegion->CountRects();
    for (int32 index = 0; index < count; index++)
        Invalidate(invalRegion->RectAt(index));
}

void BView::Invalidate() {
    Invalidate(Bounds());
}
