// BRegion: an area made of whole pixels, kept as non-overlapping rectangles.
// Rectangles given in floats are widened to the pixels they touch (left and top
// rounded down, right and bottom rounded up).
#ifndef _REGION_H
#define _REGION_H

#include <Rect.h>

// An integer rectangle; like BRect its edges are inclusive.
typedef struct clipping_rect {
    int32 left;
    int32 top;
    int32 right;
    int32 bottom;
} clipping_rect;

class BRegion {
public:
    BRegion();
    BRegion(const BRegion& other);
    BRegion(const BRect rect);
    BRegion(const clipping_rect& rect);
    virtual ~BRegion();

    BRegion& operator=(const BRegion& other);
    bool operator==(const BRegion& other) const;

    void Set(BRect rect);
    void Set(clipping_rect rect);

    // The smallest rectangle holding the region; invalid when it is empty.
    BRect Frame() const;
    clipping_rect FrameInt() const;

    // The rectangles are sorted top to bottom, then left to right. An index out
    // of range gives an invalid rectangle.
    BRect RectAt(int32 index) const;
    clipping_rect RectAtInt(int32 index) const;
    int32 CountRects() const;

    bool Intersects(BRect rect) const;
    bool Intersects(clipping_rect rect) const;

    bool Contains(BPoint point) const;
    bool Contains(int32 x, int32 y) const;

    void PrintToStream() const;

    void OffsetBy(int32 x, int32 y);
    void OffsetBy(const BPoint& point);

    void MakeEmpty();

    void Include(BRect rect);
    void Include(clipping_rect rect);
    void Include(const BRegion* region);

    void Exclude(BRect rect);
    void Exclude(clipping_rect rect);
    void Exclude(const BRegion* region);

    void IntersectWith(const BRegion* region);

    // Keeps what lies in exactly one of the two regions.
    void ExclusiveInclude(const BRegion* region);

private:
    struct Private;
    Private* fPrivate;
};

#endif // _REGION_H
