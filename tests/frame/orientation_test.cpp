#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

#include "velquad/frame.h"

namespace {

constexpr int kSmallest = std::numeric_limits<int>::min();
constexpr int kLargest = std::numeric_limits<int>::max();

int ccw2D(tagPOINT2D p0, tagPOINT2D p1, tagPOINT2D p2) {
    return matIsCCW2D(&p0, &p1, &p2);
}
int ccw(tagPOINT p0, tagPOINT p1, tagPOINT p2) {
    return matIsCCW(&p0, &p1, &p2);
}
int collinear(tagPOINT2D p0, tagPOINT2D p1, tagPOINT2D p2) {
    return matDetIsZero2D(&p0, &p1, &p2);
}

/// The orientation test in 64 bits, where products of small coordinates never wrap.
int wideOrientation(const tagPOINT& p0, const tagPOINT& p1, const tagPOINT& p2) {
    const std::int64_t dx1 = std::int64_t{p1.x} - p0.x;
    const std::int64_t dy1 = std::int64_t{p1.y} - p0.y;
    const std::int64_t dx2 = std::int64_t{p2.x} - p0.x;
    const std::int64_t dy2 = std::int64_t{p2.y} - p0.y;
    if (dx1 * dy2 != dy1 * dx2) return dx1 * dy2 > dy1 * dx2 ? 1 : -1;
    if (dx1 * dx2 < 0 || dy1 * dy2 < 0) return -1;
    return dx1 * dx1 + dy1 * dy1 < dx2 * dx2 + dy2 * dy2 ? 1 : 0;
}

}  // namespace

TEST(MatIsCCW2D, TellsTheTurn) {
    EXPECT_EQ(ccw2D({0, 0}, {1, 0}, {1, 1}), 1);
    EXPECT_EQ(ccw2D({0, 0}, {1, 0}, {1, -1}), -1);
    // No tolerance: the smallest turn counts.
    EXPECT_EQ(ccw2D({0, 0}, {1, 0}, {1, 5e-324}), 1);
    EXPECT_EQ(ccw2D({0, 0}, {1, 0}, {1, -5e-324}), -1);
}

TEST(MatIsCCW2D, TellsTheOrderOfCollinearPoints) {
    EXPECT_EQ(ccw2D({0, 0}, {1, 0}, {2, 0}), 1);
    EXPECT_EQ(ccw2D({0, 0}, {1, 0}, {-1, 0}), -1);
    EXPECT_EQ(ccw2D({0, 0}, {1, 0}, {0.5, 0}), 0);
    EXPECT_EQ(ccw2D({0, 0}, {0, 1}, {0, -1}), -1);
    EXPECT_EQ(ccw2D({0, 0}, {0, 1}, {0, 3}), 1);
}

TEST(MatIsCCW2D, GivesZeroForCoincidingPoints) {
    EXPECT_EQ(ccw2D({3, 4}, {3, 4}, {3, 4}), 0);
    EXPECT_EQ(ccw2D({0, 0}, {1, 1}, {1, 1}), 0);
    EXPECT_EQ(ccw2D({0, 0}, {1, 1}, {0, 0}), 0);
    // p1 equal to p0 lies "between" p0 and p2.
    EXPECT_EQ(ccw2D({0, 0}, {0, 0}, {1, 1}), 1);
}

TEST(MatIsCCW, TellsTurnAndOrder) {
    EXPECT_EQ(ccw({0, 0}, {1, 0}, {1, 1}), 1);
    EXPECT_EQ(ccw({0, 0}, {1, 0}, {1, -1}), -1);
    EXPECT_EQ(ccw({0, 0}, {1, 0}, {2, 0}), 1);
    EXPECT_EQ(ccw({0, 0}, {2, 0}, {-1, 0}), -1);
    EXPECT_EQ(ccw({0, 0}, {2, 0}, {1, 0}), 0);
    EXPECT_EQ(ccw({7, 7}, {7, 7}, {7, 7}), 0);
}

TEST(MatIsCCW, WrapsProductsAt32Bits) {
    // dx1 = dy2 = 65536: their product 2^32 wraps to 0, and so do the other products: "collinear", and both
    // squared lengths wrap to 0 as well.
    EXPECT_EQ(ccw({0, 0}, {65536, 0}, {0, 65536}), 0);
    // 46341^2 = 2147488281 wraps to -2147479015, which is below 0.
    EXPECT_EQ(ccw({0, 0}, {46341, 0}, {0, 46341}), -1);
}

TEST(MatIsCCW, WrapsTheProductsOfCollinearPoints) {
    // 46341^2 is negative in 32 bits: p0 seems to lie between two equal points.
    EXPECT_EQ(ccw({0, 0}, {46340, 0}, {46340, 0}), 0);
    EXPECT_EQ(ccw({0, 0}, {46341, 0}, {46341, 0}), -1);
    EXPECT_EQ(ccw({0, 0}, {0, 46341}, {0, 46341}), -1);
}

TEST(MatIsCCW, WrapsSquaredLengths) {
    EXPECT_EQ(ccw({0, 0}, {1, 0}, {46340, 0}), 1);
    EXPECT_EQ(ccw({0, 0}, {1, 0}, {46341, 0}), 0);
    // 32768^2 + 32768^2 = 2^31 wraps in the sum.
    EXPECT_EQ(ccw({0, 0}, {1, 1}, {32767, 32767}), 1);
    EXPECT_EQ(ccw({0, 0}, {1, 1}, {32768, 32768}), 0);
}

TEST(MatIsCCW, WrapsDifferencesAt32Bits) {
    // p1 - p0 = kLargest - kSmallest wraps to -1: the way seems to go left, then up.
    EXPECT_EQ(ccw({kSmallest, 0}, {kLargest, 0}, {kLargest, 1}), -1);
}

TEST(MatIsCCW, AgreesWithWideArithmeticWhereNothingWraps) {
    std::mt19937 random(20260801);
    std::uniform_int_distribution<int> small(-3, 3);
    std::uniform_int_distribution<int> large(-11000, 11000);
    for (int i = 0; i < 20000; ++i) {
        auto& range = i % 2 == 0 ? small : large;
        const tagPOINT p0{range(random), range(random)};
        const tagPOINT p1{range(random), range(random)};
        const tagPOINT p2{range(random), range(random)};
        ASSERT_EQ(ccw(p0, p1, p2), wideOrientation(p0, p1, p2))
            << p0.x << ',' << p0.y << ' ' << p1.x << ',' << p1.y << ' ' << p2.x << ',' << p2.y;
    }
}

TEST(MatDetIsZero2D, TakesSmallTrianglesAsCollinear) {
    // The determinant 1e-4 * 1e-4 = 1e-8 is small in itself, before any coordinate is looked at.
    EXPECT_EQ(collinear({0, 0}, {1e-4, 0}, {0, 1e-4}), 1);
    EXPECT_EQ(collinear({0, 0}, {1e-3, 0}, {0, 1e-3}), 0);
}

TEST(MatDetIsZero2D, IsStrictAtTheTolerance) {
    EXPECT_EQ(collinear({0, 0}, {1, 0}, {0, 1e-7}), 0);
    EXPECT_EQ(collinear({0, 0}, {1, 0}, {0, 9.9999999999999982e-08}), 1);
    EXPECT_EQ(collinear({0, 0}, {1, 0}, {0, -1e-7}), 0);
}

TEST(MatDetIsZero2D, IsRelativeToTheLargestCoordinate) {
    // Determinant 0.5; divided by 1e7 it is below the tolerance, divided by 1e6 it is not.
    EXPECT_EQ(collinear({1e7, 0}, {1e7 + 1, 0}, {1e7, 0.5}), 1);
    EXPECT_EQ(collinear({1e6, 0}, {1e6 + 1, 0}, {1e6, 0.5}), 0);
    EXPECT_EQ(collinear({0, -1e7}, {1, -1e7}, {0, -1e7 + 0.5}), 1);
}

TEST(MatDetIsZero2D, IsStrictAtTheRelativeTolerance) {
    // Determinants of -1; 1 / 1e7 is the tolerance itself.
    EXPECT_EQ(collinear({1e7, 0}, {1e7 - 1, 0}, {1e7, 1}), 0);
    EXPECT_EQ(collinear({1e7 + 1, 0}, {1e7, 0}, {1e7 + 1, 1}), 1);
}

TEST(MatDetIsZero2D, KnowsLines) {
    EXPECT_EQ(collinear({0, 0}, {1, 1}, {5, 5}), 1);
    EXPECT_EQ(collinear({0, 0}, {1, 1}, {5, 6}), 0);
    EXPECT_EQ(collinear({2, 3}, {2, 3}, {9, 9}), 1);
}
