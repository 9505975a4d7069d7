#include <Region.h>

#include <gtest/gtest.h>

#include <bitset>
#include <random>

namespace {

// A 64 x 64 pixel reference model of a region, to check the band algebra.
const int kModelSize = 64;
typedef std::bitset<kModelSize * kModelSize> PixelModel;

PixelModel model_of(const BRegion& region) {
    PixelModel model;
    for (int y = 0; y < kModelSize; y++) {
        for (int x = 0; x < kModelSize; x++)
            model[y * kModelSize + x] = region.Contains(x, y);
    }
    return model;
}

PixelModel model_of(const BRect& rect) {
    PixelModel model;
    for (int y = 0; y < kModelSize; y++) {
        for (int x = 0; x < kModelSize; x++)
            model[y * kModelSize + x] = rect.Contains(BPoint(x, y));
    }
    return model;
}

// The rectangles of a region, drawn into a model: they must not overlap.
PixelModel model_from_rects(const BRegion& region, bool* overlapping) {
    PixelModel model;
    *overlapping = false;
    for (int32 i = 0; i < region.CountRects(); i++) {
        clipping_rect rect = region.RectAtInt(i);
        for (int y = rect.top; y <= rect.bottom; y++) {
            for (int x = rect.left; x <= rect.right; x++) {
                if (x < 0 || y < 0 || x >= kModelSize || y >= kModelSize)
                    continue;
                if (model[y * kModelSize + x])
                    *overlapping = true;
                model[y * kModelSize + x] = true;
            }
        }
    }
    return model;
}

} // namespace

TEST(RegionTest, EmptyRegionHasNoRectsAndInvalidFrame) {
    BRegion region;
    EXPECT_EQ(0, region.CountRects());
    EXPECT_FALSE(region.Frame().IsValid());
    EXPECT_FALSE(region.Contains(BPoint(0.0f, 0.0f)));
}

TEST(RegionTest, RegionFromRectCoversItsPixelsInclusively) {
    BRegion region(BRect(0.0f, 0.0f, 3.0f, 0.0f));
    EXPECT_EQ(1, region.CountRects());
    EXPECT_EQ(BRect(0.0f, 0.0f, 3.0f, 0.0f), region.Frame());
    EXPECT_TRUE(region.Contains(3, 0));
    EXPECT_FALSE(region.Contains(4, 0));
    EXPECT_FALSE(region.Contains(0, 1));
}

TEST(RegionTest, FractionalRectWidensToTheTouchedPixels) {
    BRegion region(BRect(0.5f, 0.5f, 2.5f, 1.2f));
    EXPECT_EQ(BRect(0.0f, 0.0f, 3.0f, 2.0f), region.Frame());
}

TEST(RegionTest, InvalidRectLeavesRegionEmpty) {
    BRegion region;
    region.Include(BRect());
    EXPECT_EQ(0, region.CountRects());
    region.Set(BRect(5.0f, 5.0f, 4.0f, 6.0f));
    EXPECT_EQ(0, region.CountRects());
}

TEST(RegionTest, IncludeOverlappingRectsCoversTheirUnion) {
    BRegion region(BRect(0.0f, 0.0f, 9.0f, 9.0f));
    region.Include(BRect(5.0f, 5.0f, 14.0f, 14.0f));
    EXPECT_EQ(BRect(0.0f, 0.0f, 14.0f, 14.0f), region.Frame());
    EXPECT_TRUE(region.Contains(12, 12));
    EXPECT_TRUE(region.Contains(2, 2));
    EXPECT_FALSE(region.Contains(12, 2));
    EXPECT_FALSE(region.Contains(2, 12));
    // Three bands: top, the overlap, bottom.
    EXPECT_EQ(3, region.CountRects());
}

TEST(RegionTest, IncludeAdjacentRectsMergesThemIntoOne) {
    BRegion region(BRect(0.0f, 0.0f, 4.0f, 4.0f));
    region.Include(BRect(5.0f, 0.0f, 9.0f, 4.0f));
    EXPECT_EQ(1, region.CountRects());
    region.Include(BRect(0.0f, 5.0f, 9.0f, 7.0f));
    EXPECT_EQ(1, region.CountRects());
    EXPECT_EQ(BRect(0.0f, 0.0f, 9.0f, 7.0f), region.RectAt(0));
}

TEST(RegionTest, ExcludeCutsAHole) {
    BRegion region(BRect(0.0f, 0.0f, 9.0f, 9.0f));
    region.Exclude(BRect(3.0f, 3.0f, 6.0f, 6.0f));
    EXPECT_FALSE(region.Contains(3, 3));
    EXPECT_FALSE(region.Contains(6, 6));
    EXPECT_TRUE(region.Contains(2, 3));
    EXPECT_TRUE(region.Contains(7, 6));
    EXPECT_EQ(4, region.CountRects());
    EXPECT_EQ(BRect(0.0f, 0.0f, 9.0f, 9.0f), region.Frame());
}

TEST(RegionTest, IntersectWithKeepsTheCommonPart) {
    BRegion region(BRect(0.0f, 0.0f, 9.0f, 9.0f));
    BRegion other(BRect(5.0f, 5.0f, 20.0f, 20.0f));
    region.IntersectWith(&other);
    EXPECT_EQ(1, region.CountRects());
    EXPECT_EQ(BRect(5.0f, 5.0f, 9.0f, 9.0f), region.Frame());
}

TEST(RegionTest, ExclusiveIncludeKeepsWhatOnlyOneHolds) {
    BRegion region(BRect(0.0f, 0.0f, 9.0f, 0.0f));
    BRegion other(BRect(5.0f, 0.0f, 14.0f, 0.0f));
    region.ExclusiveInclude(&other);
    EXPECT_TRUE(region.Contains(4, 0));
    EXPECT_FALSE(region.Contains(5, 0));
    EXPECT_FALSE(region.Contains(9, 0));
    EXPECT_TRUE(region.Contains(10, 0));
    EXPECT_EQ(2, region.CountRects());
}

TEST(RegionTest, OffsetByMovesEveryRect) {
    BRegion region(BRect(0.0f, 0.0f, 1.0f, 1.0f));
    region.Include(BRect(5.0f, 5.0f, 6.0f, 6.0f));
    region.OffsetBy(10, 20);
    EXPECT_TRUE(region.Contains(10, 20));
    EXPECT_TRUE(region.Contains(16, 26));
    EXPECT_FALSE(region.Contains(0, 0));
    region.OffsetBy(BPoint(-10.0f, -20.0f));
    EXPECT_TRUE(region.Contains(0, 0));
}

TEST(RegionTest, IntersectsReportsAnySharedPixel) {
    BRegion region(BRect(0.0f, 0.0f, 3.0f, 3.0f));
    region.Include(BRect(10.0f, 10.0f, 13.0f, 13.0f));
    EXPECT_TRUE(region.Intersects(BRect(3.0f, 3.0f, 5.0f, 5.0f)));
    EXPECT_FALSE(region.Intersects(BRect(5.0f, 5.0f, 8.0f, 8.0f)));
    EXPECT_TRUE(region.Intersects(BRect(8.0f, 8.0f, 10.0f, 10.0f)));
    EXPECT_FALSE(region.Intersects(BRect()));
}

TEST(RegionTest, RegionsOfTheSameAreaCompareEqual) {
    BRegion first(BRect(0.0f, 0.0f, 4.0f, 9.0f));
    first.Include(BRect(5.0f, 0.0f, 9.0f, 9.0f));
    BRegion second(BRect(0.0f, 5.0f, 9.0f, 9.0f));
    second.Include(BRect(0.0f, 0.0f, 9.0f, 4.0f));
    EXPECT_TRUE(first == second);
    second.Exclude(BRect(0.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_FALSE(first == second);
}

TEST(RegionTest, RectAtOutOfRangeIsInvalid) {
    BRegion region(BRect(0.0f, 0.0f, 1.0f, 1.0f));
    EXPECT_FALSE(region.RectAt(-1).IsValid());
    EXPECT_FALSE(region.RectAt(1).IsValid());
    EXPECT_TRUE(region.RectAt(0).IsValid());
}

TEST(RegionTest, MakeEmptyRemovesEverything) {
    BRegion region(BRect(0.0f, 0.0f, 10.0f, 10.0f));
    region.MakeEmpty();
    EXPECT_EQ(0, region.CountRects());
}

TEST(RegionTest, CopiesAreIndependent) {
    BRegion region(BRect(0.0f, 0.0f, 10.0f, 10.0f));
    BRegion copy(region);
    copy.Exclude(BRect(0.0f, 0.0f, 10.0f, 10.0f));
    EXPECT_EQ(1, region.CountRects());
    BRegion assigned;
    assigned = region;
    region.MakeEmpty();
    EXPECT_TRUE(assigned.Contains(5, 5));
}

TEST(RegionTest, HugeAndNonFiniteCoordinatesAreClampedSafely) {
    BRegion region(BRect(-1e30f, -1e30f, 1e30f, 1e30f));
    EXPECT_TRUE(region.Contains(0, 0));
    // Pushed past the coordinate limit, the area squashes to nothing rather
    // than wrapping around.
    region.OffsetBy(2000000000, 2000000000);
    EXPECT_FALSE(region.Contains(0, 0));
    BRegion nan(BRect(NAN, 0.0f, 5.0f, 5.0f));
    EXPECT_EQ(0, nan.CountRects());
    EXPECT_FALSE(region.Contains(BPoint(NAN, NAN)));
}

TEST(RegionTest, IncludingItselfChangesNothing) {
    BRegion region(BRect(0.0f, 0.0f, 3.0f, 3.0f));
    region.Include(&region);
    EXPECT_EQ(BRect(0.0f, 0.0f, 3.0f, 3.0f), region.Frame());
    region.Exclude(&region);
    EXPECT_EQ(0, region.CountRects());
}

TEST(RegionTest, RandomAlgebraMatchesAPixelModel) {
    std::mt19937 random(1234);
    std::uniform_int_distribution<int> coordinate(-4, kModelSize + 3);
    std::uniform_int_distribution<int> operation(0, 3);
    for (int round = 0; round < 200; round++) {
        BRegion region;
        PixelModel expected;
        for (int step = 0; step < 12; step++) {
            int left = coordinate(random);
            int top = coordinate(random);
            BRect rect(left, top, left + coordinate(random) / 3, top + coordinate(random) / 3);
            BRegion other(rect);
            PixelModel rectModel = model_of(rect);
            switch (operation(random)) {
            case 0:
                region.Include(rect);
                expected |= rectModel;
                break;
            case 1:
                region.Exclude(rect);
                expected &= ~rectModel;
                break;
            case 2:
                region.IntersectWith(&other);
                expected &= rectModel;
                break;
            case 3:
                region.ExclusiveInclude(&other);
                expected ^= rectModel;
                break;
            }
            ASSERT_EQ(expected, model_of(region)) << "round " << round << " step " << step;
            bool overlapping = false;
            ASSERT_EQ(expected, model_from_rects(region, &overlapping));
            ASSERT_FALSE(overlapping);
        }
    }
}
