#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "geometry/distance.h"
#include "tests/support/distance_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::bits;

constexpr double kSentinel = 1.7976931348623157e308;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class Point>
struct Foot {
    double distance;
    Point closest;
    double parameter;
};

Foot<tagPOINT2D> segment(tagPOINT2D a, tagPOINT2D b, tagPOINT2D point, int isSquared = 0) {
    Foot<tagPOINT2D> foot{-1.0, {-77.0, -77.0}, -77.0};
    foot.distance = matCalcDistanceToSegment2D(&a, &b, &point, isSquared, &foot.closest, &foot.parameter);
    return foot;
}

Foot<tagPOINT2D> segment(tagPOINT a, tagPOINT b, tagPOINT point, int isSquared = 0) {
    Foot<tagPOINT2D> foot{-1.0, {-77.0, -77.0}, -77.0};
    foot.distance = matCalcDistanceToSegment2L(&a, &b, &point, isSquared, &foot.closest, &foot.parameter);
    Foot<tagPOINT2D> bare{-1.0, {-77.0, -77.0}, -77.0};
    bare.distance = matCalcDistanceToSegment(&a, &b, &point, isSquared, &bare.closest, &bare.parameter);
    EXPECT_EQ(bits(bare.distance), bits(foot.distance));
    EXPECT_EQ(bits(bare.closest.x), bits(foot.closest.x));
    EXPECT_EQ(bits(bare.closest.y), bits(foot.closest.y));
    EXPECT_EQ(bits(bare.parameter), bits(foot.parameter));
    return foot;
}

Foot<tagPOINT3D> segment(tagPOINT3D a, tagPOINT3D b, tagPOINT3D point, int isSquared = 0) {
    Foot<tagPOINT3D> foot{-1.0, {-77.0, -77.0, -77.0}, -77.0};
    foot.distance = matCalcDistanceToSegment3D(&a, &b, &point, isSquared, &foot.closest, &foot.parameter);
    return foot;
}

void expectFoot(const Foot<tagPOINT2D>& foot, double distance, double x, double y, double parameter) {
    EXPECT_EQ(foot.distance, distance);
    EXPECT_EQ(foot.closest.x, x);
    EXPECT_EQ(foot.closest.y, y);
    EXPECT_EQ(foot.parameter, parameter);
}

void expectFoot(const Foot<tagPOINT3D>& foot, double distance, tagPOINT3D closest, double parameter) {
    EXPECT_EQ(foot.distance, distance);
    EXPECT_EQ(foot.closest.x, closest.x);
    EXPECT_EQ(foot.closest.y, closest.y);
    EXPECT_EQ(foot.closest.z, closest.z);
    EXPECT_EQ(foot.parameter, parameter);
}

void expectSame(const Foot<tagPOINT2D>& foot, const velquad::test::ReferenceFoot<tagPOINT2D>& expected) {
    ASSERT_EQ(bits(foot.distance), bits(expected.distance));
    ASSERT_EQ(bits(foot.closest.x), bits(expected.closest.x));
    ASSERT_EQ(bits(foot.closest.y), bits(expected.closest.y));
    ASSERT_EQ(bits(foot.parameter), bits(expected.parameter));
}

}  // namespace

TEST(MatCalcDistanceToSegment2D, TakesAPointForASegmentWithoutLength) {
    expectFoot(segment(tagPOINT2D{2.0, 3.0}, {2.0, 3.0}, {5.0, 7.0}), 5.0, 2.0, 3.0, 0.0);
    expectFoot(segment(tagPOINT2D{2.0, 3.0}, {2.0, 3.0}, {5.0, 7.0}, 1), 25.0, 2.0, 3.0, 0.0);
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {std::nextafter(1e-40, 0.0), 0.0}, {1.0, 0.0}), 1.0, 0.0, 0.0,
               0.0);
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {0.0, std::nextafter(1e-40, 0.0)}, {0.0, 1.0}), 1.0, 0.0, 0.0,
               0.0);
    EXPECT_EQ(segment(tagPOINT2D{0.0, 0.0}, {1e-40, 0.0}, {1.0, 0.0}).parameter, 1.0);
    EXPECT_EQ(segment(tagPOINT2D{0.0, 0.0}, {0.0, 1e-40}, {0.0, 1.0}).parameter, 1.0);
}

TEST(MatCalcDistanceToSegment2D, FindsTheFootInside) {
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {8.0, 0.0}, {2.0, 3.0}), 3.0, 2.0, 0.0, 0.25);
    expectFoot(segment(tagPOINT2D{8.0, 0.0}, {0.0, 0.0}, {2.0, -3.0}, 1), 9.0, 2.0, 0.0, 0.75);
    expectFoot(segment(tagPOINT2D{1.0, 1.0}, {5.0, 5.0}, {1.0, 5.0}, 1), 8.0, 3.0, 3.0, 0.5);
}

TEST(MatCalcDistanceToSegment2D, StopsAtTheEnds) {
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {4.0, 0.0}, {7.0, 4.0}), 5.0, 4.0, 0.0, 1.0);
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {4.0, 0.0}, {-3.0, 4.0}), 5.0, 0.0, 0.0, 0.0);
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {4.0, 0.0}, {4.0, 2.0}), 2.0, 4.0, 0.0, 1.0);
    const Foot<tagPOINT2D> atStart = segment(tagPOINT2D{0.0, 0.0}, {4.0, 0.0}, {0.0, 2.0});
    EXPECT_EQ(bits(atStart.parameter), bits(0.0));
}

TEST(MatCalcDistanceToSegment2D, MovesAFootWithinRoundingToTheEnd) {
    const tagPOINT2D a{0.0, 0.0};
    const tagPOINT2D b{1.0, 0.0};
    const double high = 0.9999999999999998;
    EXPECT_EQ(segment(a, b, {std::nextafter(high, 0.0), 0.0}).parameter, std::nextafter(high, 0.0));
    EXPECT_EQ(segment(a, b, {high, 0.0}).parameter, high);
    EXPECT_EQ(segment(a, b, {high, 0.0}).closest.x, high);
    expectFoot(segment(a, b, {std::nextafter(high, 1.0), 0.0}), 1.0 - std::nextafter(high, 1.0), 1.0, 0.0,
               1.0);
    const double low = 2.220446049250313e-16;
    EXPECT_EQ(segment(a, b, {std::nextafter(low, 1.0), 0.0}).parameter, std::nextafter(low, 1.0));
    EXPECT_EQ(segment(a, b, {low, 0.0}).parameter, low);
    expectFoot(segment(a, b, {std::nextafter(low, 0.0), 0.0}), std::nextafter(low, 0.0), 0.0, 0.0, 0.0);
}

TEST(MatCalcDistanceToSegment2D, GoesToAnEndWhenRoundingSwallowsThePerpendicular) {
    // Both points of the perpendicular are one: the lines count as one, and their common point is a.
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {1.0, 0.0}, {5.0, 1e20}), 1e20, 0.0, 0.0, 0.0);
    // The perpendicular is left with a direction that makes it parallel.
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {1.0, 1e-200}, {0.0, 1e100}), 1e100, 0.0, 0.0, 0.0);
    expectFoot(segment(tagPOINT2D{0.0, 0.0}, {1.0, 1e-200}, {0.0, 1e180}, 1), kInfinity, 1.0, 1e-200, 1.0);
}

TEST(MatCalcDistanceToSegment2D, PassesNotANumberOn) {
    const Foot<tagPOINT2D> foot = segment(tagPOINT2D{0.0, 0.0}, {1.0, 0.0}, {std::nan(""), 1.0});
    EXPECT_TRUE(std::isnan(foot.distance));
    EXPECT_TRUE(std::isnan(foot.parameter));
}

TEST(MatCalcDistanceToSegment2D, TakesNullOutputs) {
    const tagPOINT2D a{0.0, 0.0};
    const tagPOINT2D b{8.0, 0.0};
    const tagPOINT2D point{2.0, 3.0};
    tagPOINT2D closest{-77.0, -77.0};
    double parameter = -77.0;
    EXPECT_EQ(matCalcDistanceToSegment2D(&a, &b, &point, 0, nullptr, nullptr), 3.0);
    EXPECT_EQ(matCalcDistanceToSegment2D(&a, &b, &point, 0, &closest, nullptr), 3.0);
    EXPECT_EQ(closest.x, 2.0);
    EXPECT_EQ(matCalcDistanceToSegment2D(&a, &b, &point, 0, nullptr, &parameter), 3.0);
    EXPECT_EQ(parameter, 0.25);
}

TEST(MatCalcDistanceToSegment2D, AllowsTheFootToOverwriteThePoint) {
    const tagPOINT2D a{0.0, 0.0};
    const tagPOINT2D b{8.0, 0.0};
    tagPOINT2D point{2.0, 3.0};
    EXPECT_EQ(matCalcDistanceToSegment2D(&a, &b, &point, 0, &point, nullptr), 3.0);
    EXPECT_EQ(point.y, 0.0);
}

TEST(MatCalcDistanceToSegment2D, AgreesWithTheReference) {
    std::mt19937 random(4102);
    for (int i = 0; i < 60000; ++i) {
        // Whole numbers of a small range meet the ends and degenerate segments often.
        const double range = i % 3 == 0 ? 3.0 : 1000.0;
        std::uniform_real_distribution<double> coordinates(-range, range);
        const auto draw = [&] { return i % 3 == 2 ? coordinates(random) : std::trunc(coordinates(random)); };
        const tagPOINT2D a{draw(), draw()};
        const tagPOINT2D b{draw(), draw()};
        const tagPOINT2D point{draw(), draw()};
        SCOPED_TRACE(testing::Message() << i << ": " << a.x << " " << a.y << " " << b.x << " " << b.y << " "
                                        << point.x << " " << point.y);
        const bool isSquared = i % 2 != 0;
        expectSame(segment(a, b, point, isSquared ? 1 : 0),
                   velquad::test::referenceSegment2D(a, b, point, isSquared));
        if (HasFatalFailure()) return;
    }
}

TEST(MatCalcDistanceToSegment2D, IsNotFartherThanAnyPointOfTheSegment) {
    std::mt19937 random(4103);
    std::uniform_real_distribution<double> coordinates(-100.0, 100.0);
    for (int i = 0; i < 2000; ++i) {
        const tagPOINT2D a{coordinates(random), coordinates(random)};
        const tagPOINT2D b{coordinates(random), coordinates(random)};
        const tagPOINT2D point{coordinates(random), coordinates(random)};
        SCOPED_TRACE(testing::Message()
                     << a.x << " " << a.y << " " << b.x << " " << b.y << " " << point.x << " " << point.y);
        const double distance = segment(a, b, point).distance;
        for (int step = 0; step <= 16; ++step) {
            const double t = step / 16.0;
            const double x = a.x + (b.x - a.x) * t;
            const double y = a.y + (b.y - a.y) * t;
            ASSERT_LE(distance, std::hypot(point.x - x, point.y - y) + 1e-10);
        }
    }
}

TEST(MatCalcDistanceToSegment2L, TakesAPointForEqualEnds) {
    expectFoot(segment(tagPOINT{2, 3}, {2, 3}, {5, 7}), 5.0, 2.0, 3.0, 0.0);
    expectFoot(segment(tagPOINT{2, 3}, {3, 3}, {3, 7}), 4.0, 3.0, 3.0, 1.0);
}

TEST(MatCalcDistanceToSegment2L, FindsTheFootInDoubles) {
    expectFoot(segment(tagPOINT{0, 0}, {8, 0}, {2, 3}), 3.0, 2.0, 0.0, 0.25);
    expectFoot(segment(tagPOINT{0, 0}, {1, 1}, {1, 0}, 1), 0.5, 0.5, 0.5, 0.5);
    expectFoot(segment(tagPOINT{0, 0}, {4, 0}, {7, 4}), 5.0, 4.0, 0.0, 1.0);
    expectFoot(segment(tagPOINT{0, 0}, {4, 0}, {-3, 4}), 5.0, 0.0, 0.0, 0.0);
}

TEST(MatCalcDistanceToSegment2L, KeepsTheSignOfAZeroParameter) {
    const Foot<tagPOINT2D> foot = segment(tagPOINT{0, 0}, {10, 0}, {0, 5});
    EXPECT_EQ(bits(foot.parameter), bits(-0.0));
    EXPECT_EQ(foot.distance, 5.0);
    EXPECT_EQ(bits(foot.closest.x), bits(0.0));
}

TEST(MatCalcDistanceToSegment2L, KeepsAFootLittleBeyondAnEnd) {
    // The squared length is 19999625, and the foot lies 1 / 19999625 beyond b.
    Foot<tagPOINT2D> foot = segment(tagPOINT{0, 0}, {4472, 29}, {4477, -742});
    EXPECT_EQ(foot.parameter, 1.0000000500009376);
    EXPECT_EQ(foot.closest.x, 4472.0 * 1.0000000500009376);
    EXPECT_EQ(foot.closest.y, 29.0 * 1.0000000500009376);
    EXPECT_GT(foot.closest.x, 4472.0);
    foot = segment(tagPOINT{4472, 29}, {0, 0}, {4477, -742});
    EXPECT_NEAR(foot.parameter, -5.0000937e-8, 1e-14);
    EXPECT_GT(foot.closest.x, 4472.0);
}

TEST(MatCalcDistanceToSegment2L, ClampsFromTheEndsOfTheBandOn) {
    // A foot 1 / 10000010 beyond an end is within the band, one of 1 / 9999977 is not.
    EXPECT_EQ(segment(tagPOINT{0, 0}, {2741, 1577}, {2783, 1504}).parameter, 10000011.0 / 10000010.0);
    EXPECT_EQ(segment(tagPOINT{0, 0}, {2741, 1577}, {-42, 73}).parameter, -1.0 / 10000010.0);
    EXPECT_EQ(segment(tagPOINT{0, 0}, {2611, 1784}, {1966, 2728}).parameter, 1.0);
    EXPECT_EQ(segment(tagPOINT{0, 0}, {2611, 1784}, {645, -944}).parameter, 0.0);
    // Quotients equal to the limits themselves: 64 / 640000000 is 1e-7.
    EXPECT_EQ(segment(tagPOINT{0, 0}, {19648, 15936}, {-73, 90}).parameter, 0.0);
    EXPECT_EQ(segment(tagPOINT{0, 0}, {19648, 15936}, {19721, 15846}).parameter, 1.0);
    EXPECT_EQ(segment(tagPOINT{0, 0}, {19648, 15936}, {19721, 15846}).closest.x, 19648.0);
}

TEST(MatCalcDistanceToSegment2L, GoesToTheEndWhenWrappingMakesThePerpendicularParallel) {
    // 65536 squared is 0 in 32 bits.
    expectFoot(segment(tagPOINT{0, 0}, {65536, 0}, {1, 0}), 65535.0, 65536.0, 0.0, 1.0);
    expectFoot(segment(tagPOINT{0, 0}, {65536, 0}, {0, 3}), 3.0, 0.0, 0.0, 0.0);
}

TEST(MatCalcDistanceToSegment2L, AgreesWithWideIntegersWhereNothingWraps) {
    std::mt19937 random(4104);
    std::uniform_int_distribution<int> coordinates(-8000, 8000);
    for (int i = 0; i < 20000; ++i) {
        const tagPOINT a{coordinates(random), coordinates(random)};
        const tagPOINT b{coordinates(random), coordinates(random)};
        const tagPOINT point{coordinates(random), coordinates(random)};
        SCOPED_TRACE(testing::Message()
                     << a.x << " " << a.y << " " << b.x << " " << b.y << " " << point.x << " " << point.y);
        const std::int64_t dx = b.x - a.x;
        const std::int64_t dy = b.y - a.y;
        const std::int64_t along = dx * (point.x - a.x) + dy * (point.y - a.y);
        const std::int64_t length = dx * dx + dy * dy;
        if (length == 0) continue;
        const Foot<tagPOINT2D> foot = segment(a, b, point);
        const double exact = static_cast<double>(along) / static_cast<double>(length);
        if (along > 0 && along < length) {
            ASSERT_EQ(foot.parameter, exact);
            const long double area = static_cast<long double>(dx * (point.y - a.y) - dy * (point.x - a.x));
            ASSERT_NEAR(foot.distance,
                        static_cast<double>(std::fabs(area) / std::sqrt(static_cast<long double>(length))),
                        1e-8);
        } else if (exact >= 1.0000001) {
            ASSERT_EQ(foot.parameter, 1.0);
            ASSERT_EQ(foot.distance, matCalcDist(&b, &point, 0));
        } else if (exact <= -1e-7) {
            ASSERT_EQ(foot.parameter, 0.0);
            ASSERT_EQ(foot.distance, matCalcDist(&a, &point, 0));
        }
    }
}

TEST(MatCalcDistanceToSegment2L, WrapsLikeTheReference) {
    std::mt19937 random(4105);
    for (int i = 0; i < 60000; ++i) {
        // Full 32 bits, the ends of the range, and small outlines.
        const auto draw = [&] {
            const int value = static_cast<int>(random());
            if (i % 3 == 0) return value;
            if (i % 3 == 1) return value % 4;
            return static_cast<int>(velquad::test::cut(std::int64_t{0x7fffffff} + value % 1000));
        };
        const tagPOINT a{draw(), draw()};
        const tagPOINT b{draw(), draw()};
        const tagPOINT point{draw(), draw()};
        SCOPED_TRACE(testing::Message() << i << ": " << a.x << " " << a.y << " " << b.x << " " << b.y << " "
                                        << point.x << " " << point.y);
        const bool isSquared = i % 2 != 0;
        const Foot<tagPOINT2D> foot = segment(a, b, point, isSquared ? 1 : 0);
        expectSame(foot, velquad::test::referenceSegment2L(a, b, point, isSquared));
        if (HasFatalFailure()) return;
        ASSERT_EQ(bits(velquad::geometry::footOnSegment(a, b, point, isSquared).distance),
                  bits(foot.distance));
    }
}

TEST(MatCalcDistanceToSegment3D, TakesAPointForASegmentWithoutLength) {
    expectFoot(segment(tagPOINT3D{1, 2, 3}, {1, 2, 3}, {3, 5, 9}), 7.0, {1, 2, 3}, 0.0);
    const double below = std::nextafter(1e-40, 0.0);
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {below, below, below}, {2, 3, 6}, 1), 49.0, {0, 0, 0}, 0.0);
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {0, 0, 1e-40}, {0, 0, 1}).parameter, 1.0);
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {0, 1e-40, 0}, {0, 1, 0}).parameter, 1.0);
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {1e-40, 0, 0}, {1, 0, 0}).parameter, 1.0);
}

TEST(MatCalcDistanceToSegment3D, FindsTheFootInside) {
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {8, 0, 0}, {2, 3, 4}), 5.0, {2, 0, 0}, 0.25);
    expectFoot(segment(tagPOINT3D{1, 1, 1}, {1, 1, 9}, {1, 4, 3}, 1), 9.0, {1, 1, 3}, 0.25);
}

TEST(MatCalcDistanceToSegment3D, StopsAtTheEnds) {
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {4, 0, 0}, {6, 3, 6}), 7.0, {4, 0, 0}, 1.0);
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {4, 0, 0}, {-2, 3, 6}), 7.0, {0, 0, 0}, 0.0);
}

TEST(MatCalcDistanceToSegment3D, PlacesAPointOfTheLineByTheDominantCoordinate) {
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {4, 2, 1}, {2, 1, 0.5}), 0.0, {2, 1, 0.5}, 0.5);
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {1, 4, 2}, {0.25, 1, 0.5}), 0.0, {0.25, 1, 0.5}, 0.25);
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {1, 2, 4}, {0.75, 1.5, 3}), 0.0, {0.75, 1.5, 3}, 0.75);
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {4, 0, 0}, {7, 0, 0}), 3.0, {4, 0, 0}, 1.0);
    expectFoot(segment(tagPOINT3D{0, 0, 0}, {4, 0, 0}, {-3, 0, 0}), 3.0, {0, 0, 0}, 0.0);
    // The largest component by its absolute value.
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {-4, 2, 1}, {-2, 1 + 1e-8, 0.5}).parameter, 0.5);
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {1, 2, -4}, {0.5, 1 + 1e-8, -2}).parameter, 0.5);
    // Equal components: x before y before z.
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {1, 1, 1}, {0.5, 0.5 + 1e-8, 0.5 + 1e-8}).parameter, 0.5);
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {0, 1, 1}, {0, 0.5, 0.5 + 1e-8}).parameter, 0.5);
    EXPECT_EQ(segment(tagPOINT3D{0, 0, 0}, {1, 0, 1}, {0.5, 0, 0.5 + 1e-8}).parameter, 0.5);
}

TEST(MatCalcDistanceToSegment3D, TakesAPointWithinToleranceForAPointOfTheLine) {
    const double below = std::nextafter(1e-7, 0.0);
    const tagPOINT3D a{0, 0, 0};
    const tagPOINT3D b{1024, 1024, 0};
    EXPECT_EQ(segment(a, b, {below / 1024, 0, 0}).parameter, below / 1024 / 1024);
    EXPECT_NEAR(segment(a, b, {1e-7 / 1024, 0, 0}).parameter, 1e-7 / 1024 / 2048, 1e-20);
}

TEST(MatCalcDistanceToSegment3D, MovesAFootWithinRoundingToTheEnd) {
    const tagPOINT3D a{0, 0, 0};
    const tagPOINT3D b{1, 0, 0};
    const double high = 0.9999999999999998;
    EXPECT_EQ(segment(a, b, {high, 0, 0}).parameter, high);
    EXPECT_EQ(segment(a, b, {std::nextafter(high, 1.0), 0, 0}).parameter, 1.0);
    const double low = 2.220446049250313e-16;
    EXPECT_EQ(segment(a, b, {low, 0, 0}).parameter, low);
    EXPECT_EQ(segment(a, b, {std::nextafter(low, 0.0), 0, 0}).parameter, 0.0);
}

TEST(MatCalcDistanceToSegment3D, FailsWhenThePerpendicularMissesTheLine) {
    // At coordinates this large the two lines miss each other by more than 1e-7 through rounding alone.
    const tagPOINT3D a{-173657335, 359484065, -686572767};
    const tagPOINT3D b{186628643, -852099747, -945071610};
    for (const int isSquared : {0, 1}) {
        expectFoot(segment(a, b, {10063029, -587682879, 694704236}, isSquared), kSentinel, {-77, -77, -77},
                   -77);
    }
}

TEST(MatCalcDistanceToSegment3D, TakesNullOutputs) {
    const tagPOINT3D a{0, 0, 0};
    const tagPOINT3D b{8, 0, 0};
    const tagPOINT3D point{2, 3, 4};
    EXPECT_EQ(matCalcDistanceToSegment3D(&a, &b, &point, 0, nullptr, nullptr), 5.0);
    EXPECT_EQ(matCalcDistanceToSegment3D(&a, &b, &point, 1, nullptr, nullptr), 25.0);
}

TEST(MatCalcDistanceToSegment3D, AgreesWithTheReference) {
    std::mt19937 random(4106);
    // Whole numbers meet lines and ends often; the largest numbers miss the line by rounding.
    const double ranges[4] = {3.0, 50.0, 1e5, 1e9};
    int missed = 0;
    for (int i = 0; i < 60000; ++i) {
        const double range = ranges[i % 4];
        std::uniform_real_distribution<double> coordinates(-range, range);
        const auto draw = [&] { return i % 4 == 0 ? std::trunc(coordinates(random)) : coordinates(random); };
        const tagPOINT3D a{draw(), draw(), draw()};
        const tagPOINT3D b{draw(), draw(), draw()};
        const tagPOINT3D point{draw(), draw(), draw()};
        SCOPED_TRACE(testing::Message()
                     << i << ": " << a.x << " " << a.y << " " << a.z << " " << b.x << " " << b.y << " " << b.z
                     << " " << point.x << " " << point.y << " " << point.z);
        const bool isSquared = i % 2 != 0;
        const Foot<tagPOINT3D> foot = segment(a, b, point, isSquared ? 1 : 0);
        const auto expected = velquad::test::reference3D(a, b, point, isSquared, true);
        ASSERT_EQ(bits(foot.distance), bits(expected.distance));
        if (foot.distance == kSentinel) {
            ++missed;
            ASSERT_EQ(foot.parameter, -77.0);
            continue;
        }
        ASSERT_EQ(bits(foot.closest.x), bits(expected.closest.x));
        ASSERT_EQ(bits(foot.closest.y), bits(expected.closest.y));
        ASSERT_EQ(bits(foot.closest.z), bits(expected.closest.z));
        ASSERT_EQ(bits(foot.parameter), bits(expected.parameter));
    }
    EXPECT_GT(missed, 0);
    EXPECT_LT(missed, 20000);
}
