#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "velquad/geometry.h"

namespace {

constexpr tagPOINT2D kUntouched{-7.0, -8.0};

struct Head {
    int result = -1;
    tagPOINT2D left = kUntouched;
    tagPOINT2D right = kUntouched;
};

Head arrow(tagPOINT2D tail, tagPOINT2D tip, double angle, int isDegrees, double length) {
    Head head;
    head.result = matComputeArrow(&tail, &tip, angle, isDegrees, length, &head.left, &head.right);
    return head;
}

void expectNear(const tagPOINT2D& actual, double x, double y) {
    EXPECT_NEAR(actual.x, x, 1e-13);
    EXPECT_NEAR(actual.y, y, 1e-13);
}

}  // namespace

TEST(Arrow, HeadLinesLieOnBothSidesOfTheShaft) {
    // The shaft comes from the left; turned counter-clockwise in mathematical axes its end goes down.
    const Head head = arrow({0.0, 0.0}, {10.0, 0.0}, 90.0, 1, 2.0);
    EXPECT_EQ(head.result, 1);
    expectNear(head.left, 10.0, -2.0);
    expectNear(head.right, 10.0, 2.0);
}

TEST(Arrow, AngleInDegreesOrRadians) {
    const double diagonal = std::sqrt(2.0);
    const Head degrees = arrow({0.0, 0.0}, {0.0, -5.0}, 45.0, 1, 2.0);
    expectNear(degrees.left, -diagonal, -5.0 + diagonal);
    expectNear(degrees.right, diagonal, -5.0 + diagonal);
    const Head radians = arrow({0.0, 0.0}, {0.0, -5.0}, 0.7853981633974483, 0, 2.0);
    expectNear(radians.left, -diagonal, -5.0 + diagonal);
    expectNear(radians.right, diagonal, -5.0 + diagonal);
}

TEST(Arrow, AngleZeroLiesOnTheShaft) {
    const Head head = arrow({1.0, 1.0}, {4.0, 5.0}, 0.0, 1, 10.0);
    // The tail turned by nothing, at twice its distance.
    EXPECT_EQ(head.left.x, -2.0);
    EXPECT_EQ(head.left.y, -3.0);
    expectNear(head.right, -2.0, -3.0);
}

TEST(Arrow, NegativeLengthPointsForward) {
    const Head head = arrow({0.0, 0.0}, {10.0, 0.0}, 0.0, 1, -2.0);
    EXPECT_EQ(head.left.x, 12.0);
    EXPECT_EQ(head.left.y, 0.0);
}

TEST(Arrow, WithoutAShaftThereIsNoHead) {
    const Head same = arrow({3.0, 4.0}, {3.0, 4.0}, 30.0, 1, 2.0);
    EXPECT_EQ(same.result, 0);
    EXPECT_EQ(same.left.x, kUntouched.x);
    EXPECT_EQ(same.right.y, kUntouched.y);
    EXPECT_EQ(arrow({0.0, 0.0}, {std::nextafter(1e-7, 0.0), 0.0}, 30.0, 1, 2.0).result, 0);
    EXPECT_EQ(arrow({0.0, 0.0}, {1e-7, 0.0}, 30.0, 1, 2.0).result, 1);
    EXPECT_EQ(arrow({0.0, 0.0}, {std::nextafter(1e-7, 1.0), 0.0}, 30.0, 1, 2.0).result, 1);
}

TEST(Arrow, NullEndsGiveZeroAndNullHeadsAreLeftOut) {
    const tagPOINT2D tail{0.0, 0.0};
    const tagPOINT2D tip{10.0, 0.0};
    tagPOINT2D left = kUntouched;
    tagPOINT2D right = kUntouched;
    EXPECT_EQ(matComputeArrow(nullptr, &tip, 30.0, 1, 2.0, &left, &right), 0);
    EXPECT_EQ(matComputeArrow(&tail, nullptr, 30.0, 1, 2.0, &left, &right), 0);
    EXPECT_EQ(left.x, kUntouched.x);
    EXPECT_EQ(right.x, kUntouched.x);
    EXPECT_EQ(matComputeArrow(&tail, &tip, 90.0, 1, 2.0, nullptr, &right), 1);
    expectNear(right, 10.0, 2.0);
    EXPECT_EQ(matComputeArrow(&tail, &tip, 90.0, 1, 2.0, &left, nullptr), 1);
    expectNear(left, 10.0, -2.0);
    EXPECT_EQ(matComputeArrow(&tail, &tip, 90.0, 1, 2.0, nullptr, nullptr), 1);
}

TEST(Arrow, NotANumberPassesOn) {
    const Head head = arrow({0.0, 0.0}, {std::numeric_limits<double>::quiet_NaN(), 0.0}, 30.0, 1, 2.0);
    EXPECT_EQ(head.result, 1);
    EXPECT_TRUE(std::isnan(head.left.x));
    EXPECT_TRUE(std::isnan(head.right.x));
}
