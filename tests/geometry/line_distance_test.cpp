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

template <class Point>
struct Foot {
    double distance;
    Point closest;
    double parameter;
};

Foot<tagPOINT2D> line(tagPOINT2D a, tagPOINT2D b, tagPOINT2D point, int isSquared = 0) {
    Foot<tagPOINT2D> foot{-1.0, {-77.0, -77.0}, -77.0};
    foot.distance = matCalcDistanceToLine2D(&a, &b, &point, isSquared, &foot.closest, &foot.parameter);
    return foot;
}

Foot<tagPOINT2D> line(tagPOINT a, tagPOINT b, tagPOINT point, int isSquared = 0) {
    Foot<tagPOINT2D> foot{-1.0, {-77.0, -77.0}, -77.0};
    foot.distance = matCalcDistanceToLine2L(&a, &b, &point, isSquared, &foot.closest, &foot.parameter);
    Foot<tagPOINT2D> bare{-1.0, {-77.0, -77.0}, -77.0};
    bare.distance = matCalcDistanceToLine(&a, &b, &point, isSquared, &bare.closest, &bare.parameter);
    EXPECT_EQ(bits(bare.distance), bits(foot.distance));
    EXPECT_EQ(bits(bare.closest.x), bits(foot.closest.x));
    EXPECT_EQ(bits(bare.closest.y), bits(foot.closest.y));
    EXPECT_EQ(bits(bare.parameter), bits(foot.parameter));
    return foot;
}

Foot<tagPOINT3D> line(tagPOINT3D a, tagPOINT3D b, tagPOINT3D point, int isSquared = 0) {
    Foot<tagPOINT3D> foot{-1.0, {-77.0, -77.0, -77.0}, -77.0};
    foot.distance = matCalcDistanceToLine3D(&a, &b, &point, isSquared, &foot.closest, &foot.parameter);
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

}  // namespace

TEST(MatCalcDistanceToLine2D, NeverClamps) {
    expectFoot(line(tagPOINT2D{0.0, 0.0}, {4.0, 0.0}, {1.0, 4.0}), 4.0, 1.0, 0.0, 0.25);
    expectFoot(line(tagPOINT2D{0.0, 0.0}, {4.0, 0.0}, {7.0, 4.0}, 1), 16.0, 7.0, 0.0, 1.75);
    expectFoot(line(tagPOINT2D{0.0, 0.0}, {4.0, 0.0}, {-3.0, -4.0}), 4.0, -3.0, 0.0, -0.75);
    EXPECT_EQ(line(tagPOINT2D{0.0, 0.0}, {1.0, 0.0}, {1e-17, 0.0}).parameter, 1e-17);
}

TEST(MatCalcDistanceToLine2D, TakesAPointForALineWithoutLength) {
    expectFoot(line(tagPOINT2D{2.0, 3.0}, {2.0, 3.0}, {5.0, 7.0}), 5.0, 2.0, 3.0, 0.0);
    const double below = std::nextafter(1e-40, 0.0);
    expectFoot(line(tagPOINT2D{0.0, 0.0}, {below, below}, {1.0, 0.0}), 1.0, 0.0, 0.0, 0.0);
    EXPECT_DOUBLE_EQ(line(tagPOINT2D{0.0, 0.0}, {1e-40, 0.0}, {1.0, 0.0}).parameter, 1e40);
    EXPECT_DOUBLE_EQ(line(tagPOINT2D{0.0, 0.0}, {0.0, 1e-40}, {0.0, 1.0}).parameter, 1e40);
}

TEST(MatCalcDistanceToLine2D, FailsWhenRoundingSwallowsThePerpendicular) {
    for (const int isSquared : {0, 1}) {
        expectFoot(line(tagPOINT2D{0.0, 0.0}, {1.0, 1e-200}, {0.0, 1e180}, isSquared), kSentinel, -77.0,
                   -77.0, -77.0);
    }
    // Where nothing is left of the perpendicular the lines count as one, with a as their common point.
    expectFoot(line(tagPOINT2D{0.0, 0.0}, {1.0, 0.0}, {5.0, 1e20}), 1e20, 0.0, 0.0, 0.0);
}

TEST(MatCalcDistanceToLine2D, TakesNullOutputs) {
    const tagPOINT2D a{0.0, 0.0};
    const tagPOINT2D b{4.0, 0.0};
    const tagPOINT2D point{7.0, 4.0};
    EXPECT_EQ(matCalcDistanceToLine2D(&a, &b, &point, 0, nullptr, nullptr), 4.0);
}

TEST(MatCalcDistanceToLine2D, AgreesWithTheDeterminant) {
    std::mt19937 random(4107);
    std::uniform_real_distribution<double> coordinates(-100.0, 100.0);
    for (int i = 0; i < 20000; ++i) {
        const tagPOINT2D a{coordinates(random), coordinates(random)};
        const tagPOINT2D b{coordinates(random), coordinates(random)};
        const tagPOINT2D point{coordinates(random), coordinates(random)};
        SCOPED_TRACE(testing::Message()
                     << a.x << " " << a.y << " " << b.x << " " << b.y << " " << point.x << " " << point.y);
        const Foot<tagPOINT2D> foot = line(a, b, point);
        const double dx = b.x - a.x;
        const double dy = b.y - a.y;
        const double length = std::hypot(dx, dy);
        if (length < 0.01) continue;
        const double determinant = dx * (point.y - a.y) - dy * (point.x - a.x);
        ASSERT_NEAR(foot.distance, std::fabs(determinant) / length, 1e-8);
        ASSERT_EQ(bits(foot.closest.x), bits((b.x - a.x) * foot.parameter + a.x));
        ASSERT_EQ(bits(foot.closest.y), bits((b.y - a.y) * foot.parameter + a.y));
        double parameter = 0.0;
        const tagPOINT2D across{point.x - dy, point.y + dx};
        matIntersectLines2D(&a, &b, &point, &across, nullptr, &parameter, nullptr, nullptr);
        ASSERT_EQ(bits(foot.parameter), bits(parameter));
        ASSERT_EQ(velquad::geometry::distanceToLine(a, b, point), foot.distance);
    }
}

TEST(MatCalcDistanceToLine2L, NeverClamps) {
    expectFoot(line(tagPOINT{0, 0}, {4, 0}, {1, 4}), 4.0, 1.0, 0.0, 0.25);
    expectFoot(line(tagPOINT{0, 0}, {4, 0}, {7, 4}, 1), 16.0, 7.0, 0.0, 1.75);
    expectFoot(line(tagPOINT{0, 0}, {4, 0}, {-3, -4}), 4.0, -3.0, 0.0, -0.75);
    EXPECT_EQ(bits(line(tagPOINT{0, 0}, {4, 0}, {0, 9}).parameter), bits(-0.0));
}

TEST(MatCalcDistanceToLine2L, TakesAPointForEqualEnds) {
    expectFoot(line(tagPOINT{2, 3}, {2, 3}, {5, 7}), 5.0, 2.0, 3.0, 0.0);
    EXPECT_EQ(line(tagPOINT{2, 3}, {3, 3}, {5, 7}).parameter, 3.0);
    EXPECT_EQ(line(tagPOINT{2, 3}, {2, 4}, {5, 7}).parameter, 4.0);
}

TEST(MatCalcDistanceToLine2L, FailsWhenWrappingMakesThePerpendicularParallel) {
    for (const int isSquared : {0, 1}) {
        expectFoot(line(tagPOINT{0, 0}, {65536, 0}, {1, 0}, isSquared), kSentinel, -77.0, -77.0, -77.0);
    }
    EXPECT_EQ(velquad::geometry::distanceToLine(tagPOINT{0, 0}, tagPOINT{65536, 0}, tagPOINT{1, 0}),
              kSentinel);
    // The same line with a numerator of 0 counts as the perpendicular itself.
    expectFoot(line(tagPOINT{0, 0}, {65536, 0}, {0, 3}), 3.0, 0.0, 0.0, 0.0);
}

TEST(MatCalcDistanceToLine2L, WrapsDifferencesAtTheEndsOfTheRange) {
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    // b - a wraps to (-1, 0): the line runs to the left of a in steps of one.
    const Foot<tagPOINT2D> foot = line(tagPOINT{kLowest, 0}, {kHighest, 0}, {kLowest + 2, 5});
    EXPECT_EQ(foot.parameter, -2.0);
    EXPECT_EQ(foot.closest.x, -2147483646.0);
    EXPECT_EQ(foot.distance, 5.0);
}

TEST(MatCalcDistanceToLine2L, AgreesWithTheReference) {
    std::mt19937 random(4108);
    int failed = 0;
    for (int i = 0; i < 30000; ++i) {
        // Full 32 bits, moderate outlines, and lines whose squared length is 0 in 32 bits.
        const auto draw = [&] {
            const int value = static_cast<int>(random());
            return i % 3 == 0 ? value : i % 3 == 1 ? value % 8000 : (value % 3) * 65536;
        };
        const tagPOINT a{draw(), draw()};
        const tagPOINT b{draw(), draw()};
        const tagPOINT point{i % 3 == 2 ? draw() + i % 5 : draw(), draw()};
        SCOPED_TRACE(testing::Message() << i << ": " << a.x << " " << a.y << " " << b.x << " " << b.y << " "
                                        << point.x << " " << point.y);
        const Foot<tagPOINT2D> foot = line(a, b, point, 1);
        if (a.x == b.x && a.y == b.y) {
            ASSERT_EQ(foot.parameter, 0.0);
            ASSERT_EQ(foot.distance, matCalcDist(&a, &point, 1));
            continue;
        }
        using velquad::test::cut;
        const std::int64_t qx = cut(cut(std::int64_t{point.x} - b.y) + a.y);
        const std::int64_t qy = cut(cut(std::int64_t{point.y} - a.x) + b.x);
        const tagPOINT across{static_cast<int>(qx), static_cast<int>(qy)};
        double parameter = -77.0;
        tagPOINT2D crossing{-77.0, -77.0};
        if (matIntersectLines2L(&a, &b, &point, &across, &crossing, &parameter, nullptr, nullptr) == 0) {
            ++failed;
            ASSERT_EQ(foot.distance, kSentinel);
            ASSERT_EQ(foot.parameter, -77.0);
            continue;
        }
        ASSERT_EQ(bits(foot.parameter), bits(parameter));
        ASSERT_EQ(bits(foot.closest.x), bits(crossing.x));
        ASSERT_EQ(bits(foot.closest.y), bits(crossing.y));
        const double dx = crossing.x - static_cast<double>(point.x);
        const double dy = crossing.y - static_cast<double>(point.y);
        ASSERT_EQ(bits(foot.distance), bits(dy * dy + dx * dx));
    }
    EXPECT_GT(failed, 0);
    EXPECT_LT(failed, 10000);
}

TEST(MatCalcDistanceToLine3D, NeverClamps) {
    expectFoot(line(tagPOINT3D{0, 0, 0}, {8, 0, 0}, {2, 3, 4}), 5.0, {2, 0, 0}, 0.25);
    expectFoot(line(tagPOINT3D{0, 0, 0}, {4, 0, 0}, {6, 3, 4}, 1), 25.0, {6, 0, 0}, 1.5);
    expectFoot(line(tagPOINT3D{0, 0, 0}, {4, 0, 0}, {-2, 3, 4}), 5.0, {-2, 0, 0}, -0.5);
    expectFoot(line(tagPOINT3D{0, 0, 0}, {4, 0, 0}, {-2, 0, 0}), 0.0, {-2, 0, 0}, -0.5);
    expectFoot(line(tagPOINT3D{0, 0, 0}, {0, 0, 4}, {0, 0, 5}), 0.0, {0, 0, 5}, 1.25);
}

TEST(MatCalcDistanceToLine3D, TakesAPointForALineWithoutLength) {
    expectFoot(line(tagPOINT3D{1, 2, 3}, {1, 2, 3}, {3, 5, 9}), 7.0, {1, 2, 3}, 0.0);
    const double below = std::nextafter(1e-40, 0.0);
    EXPECT_EQ(line(tagPOINT3D{0, 0, 0}, {below, below, below}, {1, 0, 0}).parameter, 0.0);
    EXPECT_EQ(line(tagPOINT3D{0, 0, 0}, {1e-40, 0, 0}, {1, 0, 0}).parameter, 1e40);
    EXPECT_EQ(line(tagPOINT3D{0, 0, 0}, {0, 1e-40, 0}, {0, 1, 0}).parameter, 1e40);
    EXPECT_EQ(line(tagPOINT3D{0, 0, 0}, {0, 0, 1e-40}, {0, 0, 1}).parameter, 1e40);
}

TEST(MatCalcDistanceToLine3D, FailsWhenThePerpendicularMissesTheLine) {
    // At coordinates this large the two lines miss each other by more than 1e-7 through rounding alone.
    const tagPOINT3D a{-173657335, 359484065, -686572767};
    const tagPOINT3D b{186628643, -852099747, -945071610};
    for (const int isSquared : {0, 1}) {
        expectFoot(line(a, b, {10063029, -587682879, 694704236}, isSquared), kSentinel, {-77, -77, -77}, -77);
    }
}

TEST(MatCalcDistanceToLine3D, TakesAPointWithinToleranceForAPointOfTheLine) {
    // The product of the directions is as long as the point is far.
    const Foot<tagPOINT3D> on = line(tagPOINT3D{0, 0, 0}, {1, 0, 0}, {0.25, std::nextafter(1e-7, 0.0), 0});
    EXPECT_EQ(on.parameter, 0.25);
    EXPECT_EQ(on.distance, std::nextafter(1e-7, 0.0));
    const Foot<tagPOINT3D> off = line(tagPOINT3D{0, 0, 0}, {1, 0, 0}, {0.25, 1e-7, 0});
    EXPECT_EQ(off.distance, 1e-7);
    EXPECT_EQ(off.parameter, 0.25);
    // Beside a slanted line the coordinate and the foot of the perpendicular are two places.
    const double below = std::nextafter(1e-7, 0.0);
    const tagPOINT3D a{0, 0, 0};
    const tagPOINT3D b{1024, 1024, 0};
    EXPECT_EQ(line(a, b, {below / 1024, 0, 0}).parameter, below / 1024 / 1024);
    EXPECT_NEAR(line(a, b, {1e-7 / 1024, 0, 0}).parameter, 1e-7 / 1024 / 2048, 1e-20);
}

TEST(MatCalcDistanceToLine3D, AgreesWithTheReference) {
    std::mt19937 random(4109);
    // Whole numbers meet the line often; the largest numbers miss it by rounding.
    const double ranges[4] = {3.0, 50.0, 1e5, 1e9};
    int missed = 0;
    for (int i = 0; i < 30000; ++i) {
        const double range = ranges[i % 4];
        std::uniform_real_distribution<double> coordinates(-range, range);
        const auto draw = [&] { return i % 4 == 0 ? std::trunc(coordinates(random)) : coordinates(random); };
        const tagPOINT3D a{draw(), draw(), draw()};
        const tagPOINT3D b{draw(), draw(), draw()};
        const tagPOINT3D point{draw(), draw(), draw()};
        SCOPED_TRACE(testing::Message()
                     << i << ": " << a.x << " " << a.y << " " << a.z << " " << b.x << " " << b.y << " " << b.z
                     << " " << point.x << " " << point.y << " " << point.z);
        const Foot<tagPOINT3D> foot = line(a, b, point, i % 2);
        const auto expected = velquad::test::reference3D(a, b, point, i % 2 != 0, false);
        ASSERT_EQ(bits(foot.distance), bits(expected.distance));
        if (foot.distance == kSentinel) {
            ++missed;
            ASSERT_EQ(foot.parameter, -77.0);
            ASSERT_EQ(foot.closest.x, -77.0);
            continue;
        }
        ASSERT_EQ(bits(foot.closest.x), bits(expected.closest.x));
        ASSERT_EQ(bits(foot.closest.y), bits(expected.closest.y));
        ASSERT_EQ(bits(foot.closest.z), bits(expected.closest.z));
        ASSERT_EQ(bits(foot.parameter), bits(expected.parameter));
    }
    EXPECT_GT(missed, 0);
    EXPECT_LT(missed, 10000);
}
