// BRect: a rectangle given by its four edges. Edges are inclusive: a rectangle
// whose left equals its right is one pixel wide, so Width() is right - left and
// a rectangle is valid while left <= right and top <= bottom.
#ifndef _RECT_H
#define _RECT_H

#include <Point.h>

#include <math.h>

class BRect {
public:
    float left;
    float top;
    float right;
    float bottom;

    // The default rectangle is invalid (right < left), as on Be.
    constexpr BRect() : left(0.0f), top(0.0f), right(-1.0f), bottom(-1.0f) {}
    constexpr BRect(float l, float t, float r, float b) : left(l), top(t), right(r), bottom(b) {}
    constexpr BRect(const BRect& other) = default;
    constexpr BRect(BPoint leftTop, BPoint rightBottom)
        : left(leftTop.x), top(leftTop.y), right(rightBottom.x), bottom(rightBottom.y) {}
    // A square of the given side whose left-top is the origin.
    constexpr explicit BRect(float side) : left(0.0f), top(0.0f), right(side), bottom(side) {}

    BRect& operator=(const BRect& other) = default;

    void Set(float l, float t, float r, float b) {
        left = l;
        top = t;
        right = r;
        bottom = b;
    }

    void PrintToStream() const;

    BPoint LeftTop() const { return BPoint(left, top); }
    BPoint RightBottom() const { return BPoint(right, bottom); }
    BPoint LeftBottom() const { return BPoint(left, bottom); }
    BPoint RightTop() const { return BPoint(right, top); }

    void SetLeftTop(const BPoint point) {
        left = point.x;
        top = point.y;
    }
    void SetRightBottom(const BPoint point) {
        right = point.x;
        bottom = point.y;
    }
    void SetLeftBottom(const BPoint point) {
        left = point.x;
        bottom = point.y;
    }
    void SetRightTop(const BPoint point) {
        right = point.x;
        top = point.y;
    }

    // Insetting moves every edge inwards (negative values grow the rectangle).
    void InsetBy(BPoint inset) { InsetBy(inset.x, inset.y); }
    void InsetBy(float dx, float dy) {
        left += dx;
        right -= dx;
        top += dy;
        bottom -= dy;
    }
    void OffsetBy(BPoint delta) { OffsetBy(delta.x, delta.y); }
    void OffsetBy(float dx, float dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
    }
    void OffsetTo(BPoint point) { OffsetTo(point.x, point.y); }
    void OffsetTo(float x, float y) {
        right = x + right - left;
        bottom = y + bottom - top;
        left = x;
        top = y;
    }
    // Resizing keeps the left-top corner.
    void ResizeBy(BPoint delta) { ResizeBy(delta.x, delta.y); }
    void ResizeBy(float dx, float dy) {
        right += dx;
        bottom += dy;
    }
    void ResizeTo(BPoint size) { ResizeTo(size.x, size.y); }
    void ResizeTo(float width, float height) {
        right = left + width;
        bottom = top + height;
    }

    BRect& InsetBySelf(BPoint inset) {
        InsetBy(inset);
        return *this;
    }
    BRect& InsetBySelf(float dx, float dy) {
        InsetBy(dx, dy);
        return *this;
    }
    BRect InsetByCopy(BPoint inset) const {
        BRect copy(*this);
        copy.InsetBy(inset);
        return copy;
    }
    BRect InsetByCopy(float dx, float dy) const {
        BRect copy(*this);
        copy.InsetBy(dx, dy);
        return copy;
    }
    BRect& OffsetBySelf(BPoint delta) {
        OffsetBy(delta);
        return *this;
    }
    BRect& OffsetBySelf(float dx, float dy) {
        OffsetBy(dx, dy);
        return *this;
    }
    BRect OffsetByCopy(BPoint delta) const {
        BRect copy(*this);
        copy.OffsetBy(delta);
        return copy;
    }
    BRect OffsetByCopy(float dx, float dy) const {
        BRect copy(*this);
        copy.OffsetBy(dx, dy);
        return copy;
    }
    BRect& OffsetToSelf(BPoint point) {
        OffsetTo(point);
        return *this;
    }
    BRect& OffsetToSelf(float x, float y) {
        OffsetTo(x, y);
        return *this;
    }
    BRect OffsetToCopy(BPoint point) const {
        BRect copy(*this);
        copy.OffsetTo(point);
        return copy;
    }
    BRect OffsetToCopy(float x, float y) const {
        BRect copy(*this);
        copy.OffsetTo(x, y);
        return copy;
    }

    bool operator==(BRect other) const {
        return left == other.left && top == other.top && right == other.right &&
               bottom == other.bottom;
    }
    bool operator!=(BRect other) const { return !(*this == other); }

    // Intersection; the result is invalid when the rectangles do not meet.
    BRect operator&(BRect other) const {
        return BRect(fmaxf(left, other.left), fmaxf(top, other.top), fminf(right, other.right),
                     fminf(bottom, other.bottom));
    }
    // The smallest rectangle holding both.
    BRect operator|(BRect other) const {
        return BRect(fminf(left, other.left), fminf(top, other.top), fmaxf(right, other.right),
                     fmaxf(bottom, other.bottom));
    }

    bool IsValid() const { return left <= right && top <= bottom; }
    float Width() const { return right - left; }
    int32 IntegerWidth() const { return (int32)ceilf(right - left); }
    float Height() const { return bottom - top; }
    int32 IntegerHeight() const { return (int32)ceilf(bottom - top); }

    bool Intersects(BRect other) const {
        if (!IsValid() || !other.IsValid())
            return false;
        return !(other.left > right || other.right < left || other.top > bottom ||
                 other.bottom < top);
    }
    bool Contains(BPoint point) const {
        return point.x >= left && point.x <= right && point.y >= top && point.y <= bottom;
    }
    bool Contains(BRect other) const {
        if (!IsValid() || !other.IsValid())
            return false;
        return other.left >= left && other.right <= right && other.top >= top &&
               other.bottom <= bottom;
    }
};

#endif // _RECT_H
