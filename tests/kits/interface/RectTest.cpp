#include <Rect.h>

#include <gtest/gtest.h>

TEST(RectTest, RectDefaultIsInvalid) {
    BRect rect;
    EXPECT_FALSE(rect.IsValid());
}

TEST(RectTest, OnePixelRectIsValidWithZeroWidth) {
    BRect rect(5.0f, 5.0f, 5.0f, 5.0f);
    EXPECT_TRUE(rect.IsValid());
    EXPECT_EQ(0.0f, rect.Width());
    EXPECT_EQ(0, rect.IntegerWidth());
}

TEST(RectTest, RectWidthIsRightMinusLeft) {
    BRect rect(1.0f, 2.0f, 4.0f, 12.0f);
    EXPECT_EQ(3.0f, rect.Width());
    EXPECT_EQ(10.0f, rect.Height());
    EXPECT_EQ(3, rect.IntegerWidth());
    EXPECT_EQ(10, rect.IntegerHeight());
}

TEST(RectTest, IntegerWidthRoundsUp) {
    BRect rect(0.0f, 0.0f, 2.25f, 0.5f);
    EXPECT_EQ(3, rect.IntegerWidth());
    EXPECT_EQ(1, rect.IntegerHeight());
}

TEST(RectTest, RectContainsPointsOnItsEdges) {
    BRect rect(0.0f, 0.0f, 3.0f, 3.0f);
    EXPECT_TRUE(rect.Contains(BPoint(0.0f, 0.0f)));
    EXPECT_TRUE(rect.Contains(BPoint(3.0f, 3.0f)));
    EXPECT_FALSE(rect.Contains(BPoint(3.5f, 1.0f)));
    EXPECT_FALSE(rect.Contains(BPoint(1.0f, -0.5f)));
}

TEST(RectTest, RectContainsRectInside) {
    BRect outer(0.0f, 0.0f, 10.0f, 10.0f);
    EXPECT_TRUE(outer.Contains(BRect(0.0f, 0.0f, 10.0f, 10.0f)));
    EXPECT_TRUE(outer.Contains(BRect(2.0f, 2.0f, 3.0f, 3.0f)));
    EXPECT_FALSE(outer.Contains(BRect(2.0f, 2.0f, 11.0f, 3.0f)));
    EXPECT_FALSE(outer.Contains(BRect()));
}

TEST(RectTest, RectsSharingAnEdgeIntersect) {
    BRect first(0.0f, 0.0f, 3.0f, 3.0f);
    EXPECT_TRUE(first.Intersects(BRect(3.0f, 3.0f, 5.0f, 5.0f)));
    EXPECT_FALSE(first.Intersects(BRect(4.0f, 0.0f, 5.0f, 3.0f)));
    EXPECT_FALSE(first.Intersects(BRect()));
}

TEST(RectTest, AndOperatorGivesIntersection) {
    BRect result = BRect(0.0f, 0.0f, 10.0f, 10.0f) & BRect(5.0f, -5.0f, 15.0f, 6.0f);
    EXPECT_EQ(BRect(5.0f, 0.0f, 10.0f, 6.0f), result);
    EXPECT_FALSE((BRect(0.0f, 0.0f, 1.0f, 1.0f) & BRect(5.0f, 5.0f, 6.0f, 6.0f)).IsValid());
}

TEST(RectTest, OrOperatorGivesEnclosingRect) {
    BRect result = BRect(0.0f, 0.0f, 1.0f, 1.0f) | BRect(5.0f, -2.0f, 6.0f, 3.0f);
    EXPECT_EQ(BRect(0.0f, -2.0f, 6.0f, 3.0f), result);
}

TEST(RectTest, InsetByMovesEveryEdgeInwards) {
    BRect rect(0.0f, 0.0f, 10.0f, 20.0f);
    rect.InsetBy(2.0f, 3.0f);
    EXPECT_EQ(BRect(2.0f, 3.0f, 8.0f, 17.0f), rect);
    rect.InsetBy(BPoint(-2.0f, -3.0f));
    EXPECT_EQ(BRect(0.0f, 0.0f, 10.0f, 20.0f), rect);
}

TEST(RectTest, InsetByCopyLeavesOriginalAlone) {
    BRect rect(0.0f, 0.0f, 10.0f, 10.0f);
    BRect copy = rect.InsetByCopy(1.0f, 1.0f);
    EXPECT_EQ(BRect(1.0f, 1.0f, 9.0f, 9.0f), copy);
    EXPECT_EQ(BRect(0.0f, 0.0f, 10.0f, 10.0f), rect);
    EXPECT_EQ(&rect, &rect.InsetBySelf(1.0f, 1.0f));
    EXPECT_EQ(copy, rect);
}

TEST(RectTest, OffsetByMovesWithoutResizing) {
    BRect rect(1.0f, 2.0f, 3.0f, 4.0f);
    rect.OffsetBy(10.0f, 20.0f);
    EXPECT_EQ(BRect(11.0f, 22.0f, 13.0f, 24.0f), rect);
    EXPECT_EQ(BRect(12.0f, 23.0f, 14.0f, 25.0f), rect.OffsetByCopy(BPoint(1.0f, 1.0f)));
}

TEST(RectTest, OffsetToPlacesLeftTopAndKeepsSize) {
    BRect rect(5.0f, 5.0f, 8.0f, 9.0f);
    rect.OffsetTo(0.0f, 1.0f);
    EXPECT_EQ(BRect(0.0f, 1.0f, 3.0f, 5.0f), rect);
    EXPECT_EQ(BRect(10.0f, 10.0f, 13.0f, 14.0f), rect.OffsetToCopy(BPoint(10.0f, 10.0f)));
    rect.OffsetToSelf(B_ORIGIN);
    EXPECT_EQ(BRect(0.0f, 0.0f, 3.0f, 4.0f), rect);
}

TEST(RectTest, CornerAccessorsNameTheRightCorners) {
    BRect rect(1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_EQ(BPoint(1.0f, 2.0f), rect.LeftTop());
    EXPECT_EQ(BPoint(3.0f, 4.0f), rect.RightBottom());
    EXPECT_EQ(BPoint(1.0f, 4.0f), rect.LeftBottom());
    EXPECT_EQ(BPoint(3.0f, 2.0f), rect.RightTop());

    rect.SetLeftTop(BPoint(0.0f, 0.0f));
    rect.SetRightBottom(BPoint(9.0f, 9.0f));
    EXPECT_EQ(BRect(0.0f, 0.0f, 9.0f, 9.0f), rect);
    rect.SetLeftBottom(BPoint(1.0f, 8.0f));
    rect.SetRightTop(BPoint(7.0f, 2.0f));
    EXPECT_EQ(BRect(1.0f, 2.0f, 7.0f, 8.0f), rect);
}

TEST(RectTest, ResizeToKeepsLeftTop) {
    BRect rect(2.0f, 3.0f, 4.0f, 5.0f);
    rect.ResizeTo(10.0f, 1.0f);
    EXPECT_EQ(BRect(2.0f, 3.0f, 12.0f, 4.0f), rect);
    rect.ResizeBy(-2.0f, 1.0f);
    EXPECT_EQ(BRect(2.0f, 3.0f, 10.0f, 5.0f), rect);
}

TEST(RectTest, RectFromTwoPointsSpansThem) {
    BRect rect(BPoint(1.0f, 2.0f), BPoint(5.0f, 6.0f));
    EXPECT_EQ(BRect(1.0f, 2.0f, 5.0f, 6.0f), rect);
}
