#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "velquad/geometry.h"

namespace {

constexpr double kNone = 1.7976931348623157e308;
constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

double factor2D(tagPOINT2D a, tagPOINT2D b, tagPOINT2D point) {
    return matGetScaleFactor2D(&a, &b, &point);
}
double factor2L(tagPOINT a, tagPOINT b, tagPOINT2D point) {
    return matGetScaleFactor2L(&a, &b, &point);
}
double factor2LL(tagPOINT a, tagPOINT b, tagPOINT point) {
    return matGetScaleFactor2LL(&a, &b, &point);
}
double factor3D(tagPOINT3D a, tagPOINT3D b, tagPOINT3D point) {
    return matGetScaleFactor3D(&a, &b, &point);
}

TEST(ScaleFactor2D, IsMeasuredAlongTheDominantAxisOnly) {
    EXPECT_EQ(factor2D({1.0, 2.0}, {5.0, 4.0}, {3.0, 1000.0}), 0.5);
    EXPECT_EQ(factor2D({1.0, 2.0}, {2.0, 6.0}, {1000.0, 3.0}), 0.25);
    EXPECT_EQ(factor2D({0.0, 0.0}, {-8.0, 2.0}, {4.0, 0.0}), -0.5);
}

TEST(ScaleFactor2D, EqualDifferencesAreMeasuredAlongY) {
    EXPECT_EQ(factor2D({0.0, 0.0}, {4.0, 4.0}, {1.0, 3.0}), 0.75);
    EXPECT_EQ(factor2D({0.0, 0.0}, {4.0, -4.0}, {1.0, 3.0}), -0.75);
}

TEST(ScaleFactor2D, OfALineWithoutLengthIsZeroAtItsPointOnly) {
    EXPECT_EQ(factor2D({3.0, 4.0}, {3.0, 4.0}, {3.0, 4.0}), 0.0);
    EXPECT_EQ(factor2D({3.0, 4.0}, {3.0, 4.0}, {3.0, 4.000001}), kNone);
    EXPECT_EQ(factor2D({3.0, 4.0}, {3.0, 4.0}, {0.0, 0.0}), kNone);
}

TEST(ScaleFactor2D, TakesALineFrom1eMinus40UpwardsForALine) {
    const double below = std::nextafter(1e-40, 0.0);
    EXPECT_EQ(factor2D({0.0, 0.0}, {1e-40, 0.0}, {1e-40, 0.0}), 1.0);
    EXPECT_EQ(factor2D({0.0, 0.0}, {0.0, -1e-40}, {0.0, 1e-40}), -1.0);
    EXPECT_EQ(factor2D({0.0, 0.0}, {below, below}, {1.0, 0.0}), kNone);
    EXPECT_EQ(factor2D({0.0, 0.0}, {below, -below}, {below, -below}), 0.0);
    EXPECT_EQ(factor2D({0.0, 0.0}, {0.0, 0.0}, {1e-40, 0.0}), kNone);
    EXPECT_EQ(factor2D({0.0, 0.0}, {0.0, 0.0}, {0.0, 1e-40}), kNone);
}

TEST(ScaleFactor2D, PassesNotANumberOn) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(factor2D({0.0, 0.0}, {1.0, 0.0}, {nan, 0.0})));
    EXPECT_TRUE(std::isnan(factor2D({0.0, 0.0}, {nan, 1.0}, {0.0, nan})));
    EXPECT_EQ(factor2D({0.0, 0.0}, {0.0, 0.0}, {nan, 0.0}), kNone);
}

TEST(ScaleFactor2L, IsMeasuredAlongTheDominantAxisOnly) {
    EXPECT_EQ(factor2L({1, 2}, {5, 4}, {2.5, 77.0}), 0.375);
    EXPECT_EQ(factor2L({1, 2}, {2, -6}, {77.0, 4.0}), -0.25);
    EXPECT_EQ(factor2L({0, 0}, {4, 4}, {1.0, 3.0}), 0.75);
}

TEST(ScaleFactor2L, OfEqualPointsIsZeroBelow1eMinus7) {
    const double below = std::nextafter(1e-7, 0.0);
    EXPECT_EQ(factor2L({0, 0}, {0, 0}, {below, -below}), 0.0);
    EXPECT_EQ(factor2L({0, 0}, {0, 0}, {1e-7, 0.0}), kNone);
    EXPECT_EQ(factor2L({0, 0}, {0, 0}, {0.0, -1e-7}), kNone);
    EXPECT_EQ(factor2L({5, 7}, {5, 7}, {5.0, 7.0}), 0.0);
    EXPECT_EQ(factor2L({5, 7}, {5, 7}, {5.0, 8.0}), kNone);
}

TEST(ScaleFactor2L, WrapsTheDifferencesOfTheLine) {
    // kMax - kMin is -1 in 32 bits; the point's offset is a double and does not wrap.
    EXPECT_EQ(factor2L({kMin, 0}, {kMax, 0}, {0.0, 0.0}), -2147483648.0);
    EXPECT_EQ(factor2L({kMin, 0}, {kMax, 2}, {0.0, 1.0}), 0.5);
}

TEST(ScaleFactor2L, AxisOfTheSmallestIntegerNeverDominates) {
    EXPECT_EQ(factor2L({0, 0}, {kMin, 2}, {0.0, 1.0}), 0.5);
    EXPECT_EQ(factor2L({0, 0}, {kMin, 0}, {-1.0, 1.0}), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(factor2L({0, 0}, {kMin, 0}, {-1.0, 0.0})));
    EXPECT_EQ(factor2L({0, 0}, {2, kMin}, {1.0, 0.0}), 0.5);
    EXPECT_TRUE(std::isnan(factor2L({0, 0}, {0, kMin}, {0.0, -1073741824.0})));
    EXPECT_EQ(factor2L({0, 0}, {kMin, kMin}, {0.0, -1073741824.0}), 0.5);
}

TEST(ScaleFactor2L, BareNameIsTheSameFunction) {
    const tagPOINT a{1, 2};
    const tagPOINT b{11, 7};
    const tagPOINT2D point{4.0, 0.0};
    EXPECT_EQ(matGetScaleFactor(&a, &b, &point), 0.3);
    EXPECT_EQ(matGetScaleFactor(&a, &a, &point), kNone);
}

TEST(ScaleFactor2LL, IsTheQuotientOfTwoIntegers) {
    EXPECT_EQ(factor2LL({0, 0}, {3, 1}, {1, 5}), 1.0 / 3.0);
    EXPECT_EQ(factor2LL({0, 0}, {3, -3}, {1, 2}), 2.0 / -3.0);
    EXPECT_TRUE(std::signbit(factor2LL({0, 0}, {-3, 1}, {0, 0})));
}

TEST(ScaleFactor2LL, OfEqualPointsIsZeroAtThePointOnly) {
    EXPECT_EQ(factor2LL({5, 7}, {5, 7}, {5, 7}), 0.0);
    EXPECT_EQ(factor2LL({5, 7}, {5, 7}, {5, 8}), kNone);
    EXPECT_EQ(factor2LL({kMin, 7}, {kMin, 7}, {kMax, 7}), kNone);
}

TEST(ScaleFactor2LL, WrapsTheOffsetOfThePointToo) {
    EXPECT_EQ(factor2LL({-1, 0}, {3, 0}, {kMax, 0}), -536870912.0);
    EXPECT_EQ(factor2LL({kMin, 0}, {kMax, 0}, {kMax, 0}), 1.0);
    EXPECT_EQ(factor2LL({0, 0}, {kMin, 0}, {0, 1}), std::numeric_limits<double>::infinity());
}

TEST(ScaleFactor3D, IsMeasuredAlongTheDominantAxisOnly) {
    EXPECT_EQ(factor3D({0.0, 0.0, 0.0}, {4.0, 1.0, -2.0}, {1.0, 50.0, 50.0}), 0.25);
    EXPECT_EQ(factor3D({0.0, 0.0, 0.0}, {1.0, -4.0, 2.0}, {50.0, 1.0, 50.0}), -0.25);
    EXPECT_EQ(factor3D({0.0, 0.0, 1.0}, {1.0, 2.0, 5.0}, {50.0, 50.0, 3.0}), 0.5);
}

TEST(ScaleFactor3D, FirstOfEqualAxesIsTaken) {
    EXPECT_EQ(factor3D({0.0, 0.0, 0.0}, {4.0, 4.0, 4.0}, {1.0, 2.0, 3.0}), 0.25);
    EXPECT_EQ(factor3D({0.0, 0.0, 0.0}, {1.0, 4.0, -4.0}, {1.0, 2.0, 3.0}), 0.5);
    EXPECT_EQ(factor3D({0.0, 0.0, 0.0}, {4.0, 1.0, 4.0}, {1.0, 2.0, 3.0}), 0.25);
}

TEST(ScaleFactor3D, OfALineWithoutLengthIsZeroEverywhere) {
    const double below = std::nextafter(1e-7, 0.0);
    EXPECT_EQ(factor3D({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}), 0.0);
    EXPECT_EQ(factor3D({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, {9.0, 9.0, 9.0}), 0.0);
    EXPECT_EQ(factor3D({0.0, 0.0, 0.0}, {below, -below, below}, {9.0, 9.0, 9.0}), 0.0);
    EXPECT_EQ(factor3D({0.0, 0.0, 0.0}, {0.0, 0.0, -1e-7}, {0.0, 0.0, 1e-7}), -1.0);
}

}  // namespace
