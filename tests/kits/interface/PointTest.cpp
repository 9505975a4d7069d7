#include <Point.h>
#include <Rect.h>

#include <gtest/gtest.h>

TEST(PointTest, PointDefaultsToOrigin) {
    BPoint point;
    EXPECT_EQ(0.0f, point.x);
    EXPECT_EQ(0.0f, point.y);
    EXPECT_EQ(point, B_ORIGIN);
}

TEST(PointTest, PointSetChangesBothCoordinates) {
    BPoint point;
    point.Set(3.5f, -2.0f);
    EXPECT_EQ(BPoint(3.5f, -2.0f), point);
}

TEST(PointTest, PointArithmeticAddsAndSubtracts) {
    BPoint first(1.0f, 2.0f);
    BPoint second(10.0f, 20.0f);
    EXPECT_EQ(BPoint(11.0f, 22.0f), first + second);
    EXPECT_EQ(BPoint(9.0f, 18.0f), second - first);
    EXPECT_EQ(BPoint(-1.0f, -2.0f), -first);
}

TEST(PointTest, PointCompoundAssignmentMovesPoint) {
    BPoint point(1.0f, 1.0f);
    point += BPoint(2.0f, 3.0f);
    EXPECT_EQ(BPoint(3.0f, 4.0f), point);
    point -= BPoint(1.0f, 1.0f);
    EXPECT_EQ(BPoint(2.0f, 3.0f), point);
}

TEST(PointTest, PointEqualityComparesBothCoordinates) {
    EXPECT_TRUE(BPoint(1.0f, 2.0f) == BPoint(1.0f, 2.0f));
    EXPECT_TRUE(BPoint(1.0f, 2.0f) != BPoint(1.0f, 3.0f));
    EXPECT_TRUE(BPoint(1.0f, 2.0f) != BPoint(0.0f, 2.0f));
}

TEST(PointTest, PointConstrainToClampsIntoRect) {
    BRect rect(0.0f, 0.0f, 10.0f, 5.0f);
    BPoint outside(-3.0f, 8.0f);
    outside.ConstrainTo(rect);
    EXPECT_EQ(BPoint(0.0f, 5.0f), outside);

    BPoint inside(4.0f, 2.0f);
    inside.ConstrainTo(rect);
    EXPECT_EQ(BPoint(4.0f, 2.0f), inside);
}
