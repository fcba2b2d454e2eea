#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "geometry/circle.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/circle_reference.h"
#include "velquad/geometry.h"

using velquad::test::BestCircle;
using velquad::test::bestCircleLiterally;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

struct Found {
    double center[2] = {-7.0, -8.0};
    double radius = -9.0;

    bool isUntouched() const { return center[0] == -7.0 && center[1] == -8.0 && radius == -9.0; }
};

Found search(const std::vector<tagPOINT2D>& points) {
    Found found;
    EXPECT_EQ(poly2dLeastSquareCircle(points.data(), static_cast<unsigned int>(points.size()), found.center,
                                      &found.radius),
              1);
    return found;
}

void expectAsLiteral(const std::vector<tagPOINT2D>& points) {
    const BestCircle expected = bestCircleLiterally(points.data(), points.size());
    const Found found = search(points);
    if (!expected.isFound) {
        EXPECT_TRUE(found.isUntouched());
        return;
    }
    EXPECT_EQ(bits(found.center[0]), bits(expected.center.x));
    EXPECT_EQ(bits(found.center[1]), bits(expected.center.y));
    EXPECT_EQ(bits(found.radius), bits(expected.radius));
}

}  // namespace

TEST(MatGetCircleThrough3Points, UnitCircleHasRadiusOne) {
    tagPOINT2D points[3] = {{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}};
    tagPOINT2D center{5.0, 5.0};
    double radius = 0.0;
    EXPECT_EQ(matGetCircleThrough3Points(points, &center, &radius), 1);
    EXPECT_EQ(center.x, 0.0);
    EXPECT_EQ(center.y, 0.0);
    EXPECT_EQ(radius, 1.0);
}

TEST(MatGetCircleThrough3Points, FindsCentreAwayFromTheOrigin) {
    // (x - 3)^2 + (y + 2)^2 = 25.
    tagPOINT2D points[3] = {{8.0, -2.0}, {6.0, 2.0}, {3.0, -7.0}};
    tagPOINT2D center{};
    double radius = 0.0;
    EXPECT_EQ(matGetCircleThrough3Points(points, &center, &radius), 1);
    EXPECT_NEAR(center.x, 3.0, 1e-12);
    EXPECT_NEAR(center.y, -2.0, 1e-12);
    EXPECT_NEAR(radius, 5.0, 1e-12);
}

TEST(MatGetCircleThrough3Points, NullPointsGiveZeroAndStoreNothing) {
    tagPOINT2D center{5.0, 6.0};
    double radius = 7.0;
    EXPECT_EQ(matGetCircleThrough3Points(nullptr, &center, &radius), 0);
    EXPECT_EQ(center.x, 5.0);
    EXPECT_EQ(center.y, 6.0);
    EXPECT_EQ(radius, 7.0);
}

TEST(MatGetCircleThrough3Points, OutputsAreOptional) {
    tagPOINT2D points[3] = {{2.0, 0.0}, {0.0, 2.0}, {-2.0, 0.0}};
    double radius = 0.0;
    tagPOINT2D center{9.0, 9.0};
    EXPECT_EQ(matGetCircleThrough3Points(points, nullptr, nullptr), 1);
    EXPECT_EQ(matGetCircleThrough3Points(points, nullptr, &radius), 1);
    EXPECT_EQ(radius, 2.0);
    EXPECT_EQ(matGetCircleThrough3Points(points, &center, nullptr), 1);
    EXPECT_EQ(center.x, 0.0);
}

TEST(MatGetCircleThrough3Points, CollinearPointsStoreWhatComesOut) {
    tagPOINT2D points[3] = {{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}};
    tagPOINT2D center{5.0, 5.0};
    double radius = 5.0;
    EXPECT_EQ(matGetCircleThrough3Points(points, &center, &radius), 1);
    EXPECT_FALSE(std::isfinite(center.x) && std::isfinite(center.y));
    EXPECT_FALSE(std::isfinite(radius));
}

TEST(MatGetCircleThrough3Points, NotANumberPassesOn) {
    tagPOINT2D points[3] = {{0.0, 0.0}, {1.0, kNaN}, {2.0, 2.0}};
    tagPOINT2D center{5.0, 5.0};
    double radius = 5.0;
    EXPECT_EQ(matGetCircleThrough3Points(points, &center, &radius), 1);
    EXPECT_TRUE(std::isnan(center.x));
    EXPECT_TRUE(std::isnan(radius));
}

TEST(MatGetCircleThrough3Points, LackOfMemoryGivesZeroAndStoresNothing) {
    const std::size_t count = velquad::test::forEachFailingAllocation([] {
        tagPOINT2D points[3] = {{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}};
        tagPOINT2D center{5.0, 6.0};
        double radius = 7.0;
        const bool hasFailed = matGetCircleThrough3Points(points, &center, &radius) == 0;
        if (hasFailed) {
            EXPECT_EQ(center.x, 5.0);
            EXPECT_EQ(center.y, 6.0);
            EXPECT_EQ(radius, 7.0);
        }
        return hasFailed;
    });
    EXPECT_GT(count, 0U);
}

/// The written-out solver and the general inverse agree in every bit of a finite circle.
TEST(CirclesThrough, HaveTheBitsOfTheGeneralInverse) {
    std::mt19937_64 random(20);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    std::uniform_int_distribution<int> grid(-3, 3);
    std::uniform_int_distribution<int> exponent(-30, 30);
    int finiteCount = 0;
    for (int round = 0; round < 60000; ++round) {
        SCOPED_TRACE(round);
        tagPOINT2D points[3];
        const double scale = round % 3 == 2 ? std::ldexp(1.0, exponent(random)) : 1.0;
        for (tagPOINT2D& p : points) {
            // Small integers bring zeros, equal sizes, equal points and collinear ones.
            p.x = round % 3 == 0 ? static_cast<double>(grid(random)) : coordinate(random) * scale;
            p.y = round % 3 == 0 ? static_cast<double>(grid(random)) : coordinate(random) * scale;
        }
        tagPOINT2D center{};
        double radius = 0.0;
        ASSERT_EQ(matGetCircleThrough3Points(points, &center, &radius), 1);
        const auto pair = velquad::geometry::circlesThrough(velquad::geometry::circleRows(points[0]),
                                                            velquad::geometry::circleRows(points[1]),
                                                            velquad::geometry::circleRows(points[2]));
        const bool isFinite = std::isfinite(center.x) && std::isfinite(center.y) && std::isfinite(radius);
        double x[2];
        double y[2];
        double r[2];
        _mm_storeu_pd(x, pair.x);
        _mm_storeu_pd(y, pair.y);
        _mm_storeu_pd(r, pair.radius);
        for (int lane = 0; lane < 2; ++lane) {
            if (!isFinite) {
                ASSERT_FALSE(std::isfinite(x[lane]) && std::isfinite(y[lane]) && std::isfinite(r[lane]));
                continue;
            }
            ++finiteCount;
            ASSERT_EQ(bits(x[lane]), bits(center.x));
            ASSERT_EQ(bits(y[lane]), bits(center.y));
            ASSERT_EQ(bits(r[lane]), bits(radius));
        }
    }
    EXPECT_GT(finiteCount, 90000);
}

TEST(Poly2dLeastSquareCircle, OfThreePointsIsTheirCircle) {
    const Found found = search({{8.0, -2.0}, {6.0, 2.0}, {3.0, -7.0}});
    EXPECT_NEAR(found.center[0], 3.0, 1e-12);
    EXPECT_NEAR(found.center[1], -2.0, 1e-12);
    EXPECT_NEAR(found.radius, 5.0, 1e-12);
    const std::vector<tagPOINT2D> points = {{8.0, -2.0}, {6.0, 2.0}, {3.0, -7.0}};
    EXPECT_NEAR(bestCircleLiterally(points.data(), 3).error, 0.0, 1e-24);
}

TEST(Poly2dLeastSquareCircle, StoresNothingBelowThreePoints) {
    EXPECT_TRUE(search({}).isUntouched());
    EXPECT_TRUE(search({{1.0, 2.0}}).isUntouched());
    EXPECT_TRUE(search({{1.0, 2.0}, {3.0, 4.0}}).isUntouched());
}

TEST(Poly2dLeastSquareCircle, StoresNothingWhenNoTripleHasACircle) {
    EXPECT_TRUE(search({{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}, {3.0, 3.0}}).isUntouched());
    EXPECT_TRUE(search({{4.0, 5.0}, {4.0, 5.0}, {4.0, 5.0}}).isUntouched());
    EXPECT_TRUE(search({{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}, {kNaN, 0.0}}).isUntouched());
    EXPECT_TRUE(search({{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}, {0.0, kInfinity}}).isUntouched());
    EXPECT_TRUE(search({{1e200, 0.0}, {0.0, 1e200}, {-1e200, 0.0}}).isUntouched());
}

TEST(Poly2dLeastSquareCircle, LeavesOneStrayPointAside) {
    // Eight points on the circle of radius 5 about the origin, all exact, and one that is 3 off.
    const Found found =
        search({{5, 0}, {4, 3}, {0, 5}, {-3, 4}, {-5, 0}, {-4, -3}, {0, -5}, {3, -4}, {8, 0}});
    EXPECT_NEAR(found.center[0], 0.0, 1e-12);
    EXPECT_NEAR(found.center[1], 0.0, 1e-12);
    EXPECT_NEAR(found.radius, 5.0, 1e-12);
}

TEST(Poly2dLeastSquareCircle, EarliestTripleWinsAmongEqualErrors) {
    // The corners of a square: four triples, one circle, whose bits differ from triple to triple.
    expectAsLiteral({{0.1, 0.2}, {10.1, 0.2}, {10.1, 10.2}, {0.1, 10.2}});
    // Mirror images of each other: (0, 1, 2) and (0, 1, 3) fit equally well; the first lies on the upper side.
    const Found found = search({{-1.0, 0.0}, {1.0, 0.0}, {0.0, 2.0}, {0.0, -2.0}});
    expectAsLiteral({{-1.0, 0.0}, {1.0, 0.0}, {0.0, 2.0}, {0.0, -2.0}});
    EXPECT_GT(found.center[1], 0.0);
}

TEST(Poly2dLeastSquareCircle, GivesTheBitsOfThePlainLoopsForNoisyCircles) {
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        std::normal_distribution<double> noise(0.0, std::pow(10.0, static_cast<double>(seed % 16) - 13.0));
        std::uniform_real_distribution<double> angle(0.0, seed % 2 == 0 ? 6.283185307179586 : 0.5);
        const double offset = seed % 5 == 0 ? 1e6 : 30.0;
        std::vector<tagPOINT2D> points(3 + seed % 20);
        for (tagPOINT2D& p : points) {
            const double a = angle(random);
            const double r = 100.0 + noise(random);
            p = {offset + r * std::cos(a), -offset + r * std::sin(a)};
        }
        expectAsLiteral(points);
    }
}

TEST(Poly2dLeastSquareCircle, GivesTheBitsOfThePlainLoopsForAnyPoints) {
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        std::uniform_int_distribution<int> grid(-3, 3);
        std::uniform_real_distribution<double> coordinate(-50.0, 50.0);
        std::uniform_int_distribution<int> exponent(-40, 40);
        std::vector<tagPOINT2D> points(3 + seed % 14);
        for (tagPOINT2D& p : points) {
            switch (seed % 4) {
                case 0:  // Many ties, repeats and collinear triples.
                    p = {static_cast<double>(grid(random)), static_cast<double>(grid(random))};
                    break;
                case 1:
                    p = {coordinate(random), coordinate(random)};
                    break;
                case 2:  // Nearly on a line: huge circles.
                    p.x = coordinate(random);
                    p.y = 2.0 * p.x + 1e-6 * coordinate(random);
                    break;
                default:
                    p = {std::ldexp(coordinate(random), exponent(random)),
                         std::ldexp(coordinate(random), exponent(random))};
            }
        }
        expectAsLiteral(points);
    }
}

TEST(Poly2dLeastSquareCircle, GivesTheBitsOfThePlainLoopsAtTheEndsOfTheRange) {
    for (const int exponent : {-540, -520, -300, -200, 200, 240, 260, 500, 510, 520}) {
        SCOPED_TRACE(exponent);
        std::mt19937_64 random(5);
        std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
        std::vector<tagPOINT2D> points(9);
        for (tagPOINT2D& p : points) {
            p.x = std::ldexp(coordinate(random), exponent);
            p.y = std::ldexp(coordinate(random), exponent);
        }
        expectAsLiteral(points);
    }
}

TEST(Poly2dLeastSquareCircle, NullPointsStoreNothing) {
    Found found;
    EXPECT_EQ(poly2dLeastSquareCircle(nullptr, 5, found.center, &found.radius), 1);
    EXPECT_TRUE(found.isUntouched());
    tagPOINT center{11, 12};
    EXPECT_EQ(polyLeastSquareCircle(nullptr, 5, &center, &found.radius), 1);
    EXPECT_EQ(center.x, 11);
    EXPECT_TRUE(found.isUntouched());
}

TEST(Poly2dLeastSquareCircle, NeedsNoMemory) {
    const std::size_t before = velquad::test::allocationCount();
    double center[2];
    double radius = 0.0;
    const tagPOINT2D points[4] = {{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}, {0.0, -1.1}};
    EXPECT_EQ(poly2dLeastSquareCircle(points, 4, center, &radius), 1);
    EXPECT_EQ(velquad::test::allocationCount(), before);
}

TEST(PolyLeastSquareCircle, RoundsTheCentreHalvesAwayFromZero) {
    // Rectangles 3 by 4: the centre lies at half a pixel and the radius is 2.5.
    const std::array<tagPOINT, 4> right = {{{0, 0}, {3, 0}, {3, 4}, {0, 4}}};
    tagPOINT center{};
    double radius = 0.0;
    EXPECT_EQ(polyLeastSquareCircle(right.data(), 4, &center, &radius), 1);
    EXPECT_EQ(center.x, 2);
    EXPECT_EQ(center.y, 2);
    EXPECT_EQ(radius, 2.5);
    const std::array<tagPOINT, 3> left = {{{-3, 0}, {0, 0}, {-3, -4}}};
    EXPECT_EQ(polyLeastSquareCircle(left.data(), 3, &center, &radius), 1);
    EXPECT_EQ(center.x, -2);
    EXPECT_EQ(center.y, -2);
    EXPECT_NEAR(radius, 2.5, 1e-14);
}

TEST(PolyLeastSquareCircle, StoresNothingWithoutACircle) {
    const std::array<tagPOINT, 3> collinear = {{{0, 0}, {1, 1}, {2, 2}}};
    for (const unsigned int count : {0U, 1U, 2U, 3U}) {
        tagPOINT center{11, 12};
        double radius = 13.0;
        EXPECT_EQ(polyLeastSquareCircle(collinear.data(), count, &center, &radius), 1);
        EXPECT_EQ(center.x, 11);
        EXPECT_EQ(center.y, 12);
        EXPECT_EQ(radius, 13.0);
    }
}

TEST(PolyLeastSquareCircle, LackOfMemoryGivesZeroAndStoresNothing) {
    const std::size_t count = velquad::test::forEachFailingAllocation([] {
        const std::array<tagPOINT, 3> points = {{{1, 0}, {0, 1}, {-1, 0}}};
        tagPOINT center{11, 12};
        double radius = 13.0;
        const bool hasFailed = polyLeastSquareCircle(points.data(), 3, &center, &radius) == 0;
        EXPECT_EQ(center.x, hasFailed ? 11 : 0);
        EXPECT_EQ(radius, hasFailed ? 13.0 : 1.0);
        return hasFailed;
    });
    EXPECT_EQ(count, 1U);
}
