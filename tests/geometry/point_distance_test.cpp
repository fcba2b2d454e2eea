#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "tests/support/distance_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::cut;

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double dist2L(tagPOINT a, tagPOINT b, int isSquared) {
    const double result = matCalcDist2L(&a, &b, isSquared);
    EXPECT_EQ(matCalcDist(&a, &b, isSquared), result);
    return result;
}

double dist2D(tagPOINT2D a, tagPOINT2D b, int isSquared) {
    return matCalcDist2D(&a, &b, isSquared);
}

double dist3D(tagPOINT3D a, tagPOINT3D b, int isSquared) {
    return matCalcDist3D(&a, &b, isSquared);
}

double dist3L(int x, int y, int z, int isSquared) {
    const int a[3] = {1, 2, 3};
    const int b[3] = {1 + x, 2 + y, 3 + z};
    return matCalcDist3L(a, b, isSquared);
}

double scaled(tagPOINT a, tagPOINT b, double scaleX, double scaleY, int isSquared) {
    return matCalcPixelScaledDist(&a, &b, scaleX, scaleY, isSquared);
}

}  // namespace

TEST(MatCalcDist, TakesTheRootUnlessSquared) {
    EXPECT_EQ(dist2L({1, 2}, {4, 6}, 0), 5.0);
    EXPECT_EQ(dist2L({1, 2}, {4, 6}, 1), 25.0);
    EXPECT_EQ(dist2L({4, 6}, {1, 2}, -5), 25.0);
    EXPECT_EQ(dist2L({7, 7}, {7, 7}, 0), 0.0);
    EXPECT_EQ(dist2D({0.5, 0.5}, {3.5, 4.5}, 0), 5.0);
    EXPECT_EQ(dist2D({0.5, 0.5}, {3.5, 4.5}, 2), 25.0);
    EXPECT_EQ(dist3D({0.0, 0.0, 0.0}, {2.0, 3.0, 6.0}, 0), 7.0);
    EXPECT_EQ(dist3D({2.0, 3.0, 6.0}, {0.0, 0.0, 0.0}, 1), 49.0);
    EXPECT_EQ(dist3L(2, 3, 6, 0), 7.0);
    EXPECT_EQ(dist3L(-2, 3, -6, 1), 49.0);
}

TEST(MatCalcDist, WrapsIntegerDifferencesAt32Bits) {
    EXPECT_EQ(dist2L({kLowest, 0}, {kHighest, 0}, 0), 1.0);
    EXPECT_EQ(dist2L({0, kHighest}, {0, kLowest}, 0), 1.0);
    EXPECT_EQ(dist2L({0, 0}, {kLowest, 0}, 0), 2147483648.0);
    EXPECT_EQ(dist2L({-1, 0}, {kHighest, 0}, 0), 2147483648.0);
    const int lowest[3] = {kLowest, kLowest, kLowest};
    const int highest[3] = {kHighest, kHighest, kHighest};
    EXPECT_EQ(matCalcDist3L(lowest, highest, 1), 3.0);
}

TEST(MatCalcDist, SumsSquaresInDouble) {
    EXPECT_EQ(dist2L({0, 0}, {kHighest, kHighest}, 1), 2.0 * (2147483647.0 * 2147483647.0));
    EXPECT_EQ(dist2L({0, 0}, {65536, 0}, 1), 4294967296.0);
    EXPECT_EQ(dist3L(65536, 65536, 65536, 1), 12884901888.0);
    EXPECT_EQ(dist2D({0.0, 0.0}, {1e200, 0.0}, 0), kInfinity);
    EXPECT_EQ(dist2D({0.0, 0.0}, {1e-200, 0.0}, 0), 0.0);
    EXPECT_TRUE(std::isnan(dist2D({std::nan(""), 0.0}, {0.0, 0.0}, 0)));
}

TEST(MatCalcDist, SumsTheSquaresOfSpaceInTheOrderOfTheAxes) {
    EXPECT_EQ(dist3D({0, 0, 0}, {1e8, 1.0, 1.0}, 1), 1e16);
    EXPECT_EQ(dist3D({0, 0, 0}, {1.0, 1.0, 1e8}, 1), 1e16 + 2.0);
    EXPECT_EQ(dist3L(100000000, 1, 1, 1), 1e16);
    EXPECT_EQ(dist3L(1, 1, 100000000, 1), 1e16 + 2.0);
}

TEST(MatCalcDist, AgreesWithWideIntegers) {
    std::mt19937 random(4101);
    for (int i = 0; i < 20000; ++i) {
        const auto draw = [&random] { return static_cast<int>(random()); };
        const tagPOINT a{draw(), draw()};
        const tagPOINT b{draw(), draw()};
        SCOPED_TRACE(testing::Message() << a.x << " " << a.y << " " << b.x << " " << b.y);
        const double dx = static_cast<double>(cut(std::int64_t{b.x} - a.x));
        const double dy = static_cast<double>(cut(std::int64_t{b.y} - a.y));
        ASSERT_EQ(dist2L(a, b, 1), dx * dx + dy * dy);
        ASSERT_EQ(dist2L(a, b, 0), std::sqrt(dx * dx + dy * dy));
        ASSERT_EQ(dist2L(b, a, 1), dist2L(a, b, 1));
        const double x = dx * 0.75;
        const double y = dy * 1.3;
        ASSERT_EQ(scaled(a, b, 0.75, 1.3, 1), x * x + y * y);
    }
}

TEST(MatCalcPixelScaledDist, ScalesBeforeSquaring) {
    EXPECT_EQ(scaled({0, 0}, {3, 4}, 1.0, 1.0, 0), 5.0);
    EXPECT_EQ(scaled({0, 0}, {3, 4}, 2.0, 3.0, 1), 180.0);
    EXPECT_EQ(scaled({0, 0}, {3, 4}, 2.0, 3.0, 0), 13.416407864998739);
    EXPECT_EQ(scaled({3, 4}, {0, 0}, 0.0, 0.25, 0), 1.0);
    EXPECT_EQ(scaled({5, 5}, {5, 5}, 2.0, 3.0, 0), 0.0);
    EXPECT_EQ(scaled({kLowest, 0}, {kHighest, 0}, 0.5, 1.0, 0), 0.5);
}
