// A region is a list of horizontal bands, top to bottom; each band covers the
// same rows over its whole height and holds sorted, disjoint spans of columns.
// Inside, edges are half-open (right and bottom are one past the last pixel),
// which makes the algebra exact; the public calls speak inclusive edges as BRect
// does. Every operation is a single sweep over the bands of both operands
// (union, intersection, difference, exclusive or), merging touching bands with
// equal spans so that the result is always in one canonical form.
#include <Region.h>

#include <inttypes.h>
#include <math.h>
#include <stdio.h>

#include <algorithm>
#include <vector>

namespace {

// Coordinates are kept well inside int32 so that the half-open edges and
// offsets never overflow.
const int32 kCoordinateLimit = 1 << 29;

struct Span {
    int32 left;
    int32 right;

    bool operator==(const Span& other) const = default;
};

struct Band {
    int32 top;
    int32 bottom;
    std::vector<Span> spans;
};

enum class Operation { kUnion, kIntersection, kDifference, kExclusiveOr };

int32 clamp_coordinate(int64 value) {
    return (int32)std::clamp<int64>(value, -kCoordinateLimit, kCoordinateLimit);
}

int32 clamp_coordinate(float value) {
    if (isnan(value))
        return 0;
    return (int32)std::clamp<float>(value, -kCoordinateLimit, kCoordinateLimit);
}

bool applies(Operation operation, bool inFirst, bool inSecond) {
    switch (operation) {
    case Operation::kUnion:
        return inFirst || inSecond;
    case Operation::kIntersection:
        return inFirst && inSecond;
    case Operation::kDifference:
        return inFirst && !inSecond;
    case Operation::kExclusiveOr:
        return inFirst != inSecond;
    }
    return false;
}

// Combines two sorted, disjoint span lists.
std::vector<Span> combine_spans(const std::vector<Span>& first, const std::vector<Span>& second,
                                Operation operation) {
    std::vector<int32> edges;
    edges.reserve(2 * (first.size() + second.size()));
    for (const Span& span : first) {
        edges.push_back(span.left);
        edges.push_back(span.right);
    }
    for (const Span& span : second) {
        edges.push_back(span.left);
        edges.push_back(span.right);
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

    std::vector<Span> result;
    size_t firstIndex = 0;
    size_t secondIndex = 0;
    for (size_t i = 0; i + 1 < edges.size(); i++) {
        int32 left = edges[i];
        int32 right = edges[i + 1];
        while (firstIndex < first.size() && first[firstIndex].right <= left)
            firstIndex++;
        while (secondIndex < second.size() && second[secondIndex].right <= left)
            secondIndex++;
        bool inFirst = firstIndex < first.size() && first[firstIndex].left <= left;
        bool inSecond = secondIndex < second.size() && second[secondIndex].left <= left;
        if (!applies(operation, inFirst, inSecond))
            continue;
        if (!result.empty() && result.back().right == left)
            result.back().right = right;
        else
            result.push_back(Span{left, right});
    }
    return result;
}

void append_band(std::vector<Band>& bands, int32 top, int32 bottom, std::vector<Span>&& spans) {
    if (spans.empty() || top >= bottom)
        return;
    if (!bands.empty() && bands.back().bottom == top && bands.back().spans == spans) {
        bands.back().bottom = bottom;
        return;
    }
    bands.push_back(Band{top, bottom, std::move(spans)});
}

std::vector<Band> combine(const std::vector<Band>& first, const std::vector<Band>& second,
                          Operation operation) {
    static const std::vector<Span> kNoSpans;
    const int32 kBeyond = kCoordinateLimit + 1;

    std::vector<Band> result;
    size_t firstIndex = 0;
    size_t secondIndex = 0;
    int32 y = -kBeyond;
    while (firstIndex < first.size() || secondIndex < second.size()) {
        const Band* firstBand = firstIndex < first.size() ? &first[firstIndex] : NULL;
        const Band* secondBand = secondIndex < second.size() ? &second[secondIndex] : NULL;
        int32 firstTop = firstBand != NULL ? std::max(firstBand->top, y) : kBeyond;
        int32 secondTop = secondBand != NULL ? std::max(secondBand->top, y) : kBeyond;
        int32 top = std::min(firstTop, secondTop);

        bool inFirst = firstBand != NULL && firstBand->top <= top;
        bool inSecond = secondBand != NULL && secondBand->top <= top;
        int32 bottom = kBeyond;
        if (firstBand != NULL)
            bottom = std::min(bottom, inFirst ? firstBand->bottom : firstBand->top);
        if (secondBand != NULL)
            bottom = std::min(bottom, inSecond ? secondBand->bottom : secondBand->top);

        append_band(result, top, bottom,
                    combine_spans(inFirst ? firstBand->spans : kNoSpans,
                                  inSecond ? secondBand->spans : kNoSpans, operation));

        y = bottom;
        if (inFirst && firstBand->bottom == bottom)
            firstIndex++;
        if (inSecond && secondBand->bottom == bottom)
            secondIndex++;
    }
    return result;
}

// Half-open bands from an inclusive integer rectangle; empty when it is invalid.
std::vector<Band> bands_for(const clipping_rect& rect) {
    std::vector<Band> bands;
    int32 left = clamp_coordinate((int64)rect.left);
    int32 top = clamp_coordinate((int64)rect.top);
    int32 right = clamp_coordinate((int64)rect.right + 1);
    int32 bottom = clamp_coordinate((int64)rect.bottom + 1);
    if (left < right && top < bottom)
        bands.push_back(Band{top, bottom, {Span{left, right}}});
    return bands;
}

clipping_rect to_clipping_rect(const BRect& rect) {
    if (!rect.IsValid())
        return clipping_rect{0, 0, -1, -1};
    return clipping_rect{clamp_coordinate(floorf(rect.left)), clamp_coordinate(floorf(rect.top)),
                         clamp_coordinate(ceilf(rect.right)), clamp_coordinate(ceilf(rect.bottom))};
}

BRect to_rect(const clipping_rect& rect) {
    return BRect(rect.left, rect.top, rect.right, rect.bottom);
}

} // namespace

struct BRegion::Private {
    std::vector<Band> bands;
    // The same area as inclusive rectangles, for RectAt().
    std::vector<clipping_rect> rects;

    void SetBands(std::vector<Band>&& newBands) {
        bands = std::move(newBands);
        rects.clear();
        for (const Band& band : bands) {
            for (const Span& span : band.spans)
                rects.push_back(
                    clipping_rect{span.left, band.top, span.right - 1, band.bottom - 1});
        }
    }

    void Combine(const std::vector<Band>& other, Operation operation) {
        SetBands(combine(bands, other, operation));
    }
};

BRegion::BRegion() : fPrivate(new Private) {}

BRegion::BRegion(const BRegion& other) : fPrivate(new Private(*other.fPrivate)) {}

BRegion::BRegion(const BRect rect) : fPrivate(new Private) {
    Set(rect);
}

BRegion::BRegion(const clipping_rect& rect) : fPrivate(new Private) {
    Set(rect);
}

BRegion::~BRegion() {
    delete fPrivate;
}

BRegion& BRegion::operator=(const BRegion& other) {
    if (this != &other)
        *fPrivate = *other.fPrivate;
    return *this;
}

bool BRegion::operator==(const BRegion& other) const {
    // The band form is canonical, so equal areas have equal rectangle lists.
    const std::vector<clipping_rect>& mine = fPrivate->rects;
    const std::vector<clipping_rect>& theirs = other.fPrivate->rects;
    if (mine.size() != theirs.size())
        return false;
    for (size_t i = 0; i < mine.size(); i++) {
        if (mine[i].left != theirs[i].left || mine[i].top != theirs[i].top ||
            mine[i].right != theirs[i].right || mine[i].bottom != theirs[i].bottom) {
            return false;
        }
    }
    return true;
}

void BRegion::Set(BRect rect) {
    Set(to_clipping_rect(rect));
}

void BRegion::Set(clipping_rect rect) {
    fPrivate->SetBands(bands_for(rect));
}

BRect BRegion::Frame() const {
    return to_rect(FrameInt());
}

clipping_rect BRegion::FrameInt() const {
    const std::vector<Band>& bands = fPrivate->bands;
    if (bands.empty())
        return clipping_rect{0, 0, -1, -1};

    clipping_rect frame = {bands.front().spans.front().left, bands.front().top,
                           bands.front().spans.back().right - 1, bands.back().bottom - 1};
    for (const Band& band : bands) {
        frame.left = std::min(frame.left, band.spans.front().left);
        frame.right = std::max(frame.right, band.spans.back().right - 1);
    }
    return frame;
}

BRect BRegion::RectAt(int32 index) const {
    return to_rect(RectAtInt(index));
}

clipping_rect BRegion::RectAtInt(int32 index) const {
    if (index < 0 || index >= CountRects())
        return clipping_rect{0, 0, -1, -1};
    return fPrivate->rects[index];
}

int32 BRegion::CountRects() const {
    return (int32)fPrivate->rects.size();
}

bool BRegion::Intersects(BRect rect) const {
    return Intersects(to_clipping_rect(rect));
}

bool BRegion::Intersects(clipping_rect rect) const {
    if (rect.left > rect.right || rect.top > rect.bottom)
        return false;
    for (const clipping_rect& mine : fPrivate->rects) {
        if (mine.left <= rect.right && mine.right >= rect.left && mine.top <= rect.bottom &&
            mine.bottom >= rect.top) {
            return true;
        }
    }
    return false;
}

bool BRegion::Contains(BPoint point) const {
    if (isnan(point.x) || isnan(point.y))
        return false;
    return Contains(clamp_coordinate(floorf(point.x)), clamp_coordinate(floorf(point.y)));
}

bool BRegion::Contains(int32 x, int32 y) const {
    for (const Band& band : fPrivate->bands) {
        if (y < band.top)
            return false;
        if (y >= band.bottom)
            continue;
        for (const Span& span : band.spans) {
            if (x >= span.left && x < span.right)
                return true;
        }
        return false;
    }
    return false;
}

void BRegion::PrintToStream() const {
    clipping_rect frame = FrameInt();
    printf("BRegion(frame: l:%" PRId32 " t:%" PRId32 " r:%" PRId32 " b:%" PRId32 ", %" PRId32
           " rects)\n",
           frame.left, frame.top, frame.right, frame.bottom, CountRects());
    for (const clipping_rect& rect : fPrivate->rects) {
        printf("    l:%" PRId32 " t:%" PRId32 " r:%" PRId32 " b:%" PRId32 "\n", rect.left, rect.top,
               rect.right, rect.bottom);
    }
}

void BRegion::OffsetBy(int32 x, int32 y) {
    if (x == 0 && y == 0)
        return;
    std::vector<Band> bands = fPrivate->bands;
    for (Band& band : bands) {
        band.top = clamp_coordinate((int64)band.top + y);
        band.bottom = clamp_coordinate((int64)band.bottom + y);
        for (Span& span : band.spans) {
            span.left = clamp_coordinate((int64)span.left + x);
            span.right = clamp_coordinate((int64)span.right + x);
        }
    }
    // Clamping at the limits may squash bands or spans to nothing; rebuilding
    // through a union drops them and restores the canonical form.
    fPrivate->SetBands(combine(bands, {}, Operation::kUnion));
}

void BRegion::OffsetBy(const BPoint& point) {
    OffsetBy(clamp_coordinate(floorf(point.x)), clamp_coordinate(floorf(point.y)));
}

void BRegion::MakeEmpty() {
    fPrivate->SetBands({});
}

void BRegion::Include(BRect rect) {
    Include(to_clipping_rect(rect));
}

void BRegion::Include(clipping_rect rect) {
    fPrivate->Combine(bands_for(rect), Operation::kUnion);
}

void BRegion::Include(const BRegion* region) {
    if (region == NULL)
        return;
    fPrivate->Combine(region->fPrivate->bands, Operation::kUnion);
}

void BRegion::Exclude(BRect rect) {
    Exclude(to_clipping_rect(rect));
}

void BRegion::Exclude(clipping_rect rect) {
    fPrivate->Combine(bands_for(rect), Operation::kDifference);
}

void BRegion::Exclude(const BRegion* region) {
    if (region == NULL)
        return;
    fPrivate->Combine(region->fPrivate->bands, Operation::kDifference);
}

void BRegion::IntersectWith(const BRegion* region) {
    if (region == NULL)
        return;
    fPrivate->Combine(region->fPrivate->bands, Operation::kIntersection);
}

void BRegion::ExclusiveInclude(const BRegion* region) {
    if (region == NULL)
        return;
    fPrivate->Combine(region->fPrivate->bands, Operation::kExclusiveOr);
}
