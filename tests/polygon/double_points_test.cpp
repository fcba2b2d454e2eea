#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "polygon/double_points_impl.h"
#include "polygon/reverse_order_impl.h"
#include "tests/support/outline.h"
#include "tests/support/outline_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;
using velquad::test::outlineOf;

constexpr int kIntMax = 2147483647;
constexpr int kIntMin = -kIntMax - 1;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Coordinates withoutDoublePoints(const Coordinates& coordinates) {
    auto points = outlineOf(coordinates);
    const DWORD count = polyRemoveDoublePoints(points.data(), static_cast<DWORD>(points.size()));
    return coordinatesOf(points.data(), count);
}

Coordinates withoutDoublePoints(const Coordinates& coordinates, double tolerance) {
    auto points = outlineOf(coordinates);
    const DWORD count = polyRemoveDoublePointsEx(points.data(), static_cast<DWORD>(points.size()), tolerance);
    return coordinatesOf(points.data(), count);
}

std::vector<double> doublesOf(const tagPOINT2D* points, std::size_t count) {
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i)
        values.insert(values.end(), {points[i].x, points[i].y});
    return values;
}

/// A walk on a small grid with steps of up to 2 and many pauses.
std::vector<tagPOINT> randomWalk(std::mt19937* random, std::size_t count) {
    std::vector<tagPOINT> points;
    tagPOINT point{0, 0};
    for (std::size_t i = 0; i < count; ++i) {
        if ((*random)() % 2 == 0) {
            point.x += static_cast<LONG>((*random)() % 5) - 2;
            point.y += static_cast<LONG>((*random)() % 5) - 2;
        }
        points.push_back(point);
    }
    return points;
}

TEST(PolyRemoveDoublePoints, RemovesEachPointThatRepeatsItsPredecessor) {
    EXPECT_EQ(withoutDoublePoints({{1, 1}, {1, 1}, {2, 2}, {2, 2}, {2, 2}, {3, 3}}),
              (Coordinates{{1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(withoutDoublePoints({{1, 1}, {2, 2}, {3, 3}, {3, 3}}), (Coordinates{{1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(withoutDoublePoints({{5, 5}, {5, 5}, {5, 5}, {5, 5}}), (Coordinates{{5, 5}}));
}

TEST(PolyRemoveDoublePoints, ComparesBothCoordinates) {
    const Coordinates coordinates = {{1, 1}, {1, 2}, {2, 2}, {2, 1}};
    EXPECT_EQ(withoutDoublePoints(coordinates), coordinates);
}

TEST(PolyRemoveDoublePoints, ComparesNeighboursOnly) {
    const Coordinates alternating = {{1, 1}, {2, 2}, {1, 1}, {2, 2}};
    EXPECT_EQ(withoutDoublePoints(alternating), alternating);
}

TEST(PolyRemoveDoublePoints, KeepsTheClosingPoint) {
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {0, 0}, {9, 0}, {9, 9}, {9, 9}, {0, 0}}),
              (Coordinates{{0, 0}, {9, 0}, {9, 9}, {0, 0}}));
}

TEST(PolyRemoveDoublePoints, ReturnsCountsBelowTwoUnchanged) {
    tagPOINT point{1, 2};
    EXPECT_EQ(polyRemoveDoublePoints(&point, 0), 0U);
    EXPECT_EQ(polyRemoveDoublePoints(&point, 1), 1U);
    EXPECT_EQ(polyRemoveDoublePoints(nullptr, 0), 0U);
    EXPECT_EQ(polyRemoveDoublePoints(nullptr, 1), 1U);
    EXPECT_EQ(polyRemoveDoublePoints(nullptr, 7), 7U);
    EXPECT_EQ(withoutDoublePoints({{1, 2}, {1, 2}}), (Coordinates{{1, 2}}));
    EXPECT_EQ(withoutDoublePoints({{1, 2}, {1, 3}}), (Coordinates{{1, 2}, {1, 3}}));
}

TEST(PolyRemoveDoublePoints, AgreesWithRemovingOneByOne) {
    constexpr unsigned kSeed = 20210;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    for (int round = 0; round < 500; ++round) {
        const auto points = randomWalk(&random, random() % 60);
        const Coordinates coordinates = coordinatesOf(points.data(), static_cast<DWORD>(points.size()));
        const auto expected = velquad::test::removeRepeatsOneByOne(
            points, [](const tagPOINT& a, const tagPOINT& b) { return a.x == b.x && a.y == b.y; });
        EXPECT_EQ(withoutDoublePoints(coordinates),
                  coordinatesOf(expected.data(), static_cast<DWORD>(expected.size())))
            << "round " << round;
    }
}

TEST(PolyRemoveDoublePointsEx, RemovesBelowTheToleranceOnly) {
    const Coordinates five = {{0, 0}, {3, 4}};
    EXPECT_EQ(withoutDoublePoints(five, 5.0), five);
    EXPECT_EQ(withoutDoublePoints(five, std::nextafter(5.0, 0.0)), five);
    EXPECT_EQ(withoutDoublePoints(five, std::nextafter(5.0, 6.0)), (Coordinates{{0, 0}}));
}

TEST(PolyRemoveDoublePointsEx, RemovesNothingWithToleranceZero) {
    const Coordinates repeats = {{1, 1}, {1, 1}, {1, 1}, {2, 2}};
    EXPECT_EQ(withoutDoublePoints(repeats, 0.0), repeats);
    EXPECT_EQ(withoutDoublePoints(repeats, -0.0), repeats);
    // The square of such a tolerance is 0.
    EXPECT_EQ(withoutDoublePoints(repeats, 1e-200), repeats);
}

TEST(PolyRemoveDoublePointsEx, RemovesExactRepeatsWithTheSmallestTolerance) {
    EXPECT_EQ(withoutDoublePoints({{1, 1}, {1, 1}, {1, 1}, {2, 1}}, 1e-160), (Coordinates{{1, 1}, {2, 1}}));
}

TEST(PolyRemoveDoublePointsEx, UsesTheSquareOfANegativeTolerance) {
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {3, 4}, {9, 9}}, -6.0), (Coordinates{{0, 0}, {9, 9}}));
}

TEST(PolyRemoveDoublePointsEx, MeasuresFromTheSurvivingPoint) {
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {2, 0}, {4, 0}, {6, 0}, {8, 0}}, 3.0),
              (Coordinates{{0, 0}, {4, 0}, {8, 0}}));
}

TEST(PolyRemoveDoublePointsEx, GivesTheLastPointNoPrivilege) {
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {10, 0}, {0, 1}, {0, 0}}, 2.0),
              (Coordinates{{0, 0}, {10, 0}, {0, 1}}));
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {10, 0}, {0, 5}, {0, 0}}, 2.0),
              (Coordinates{{0, 0}, {10, 0}, {0, 5}, {0, 0}}));
}

TEST(PolyRemoveDoublePointsEx, WrapsTheDifferenceOfTheCoordinates) {
    // The wrapped distance of the two extremes is 1.
    EXPECT_EQ(withoutDoublePoints({{kIntMin, 0}, {kIntMax, 0}, {0, 0}}, 2.0),
              (Coordinates{{kIntMin, 0}, {0, 0}}));
}

TEST(PolyRemoveDoublePointsEx, TakesToleranceBeyondAllNumbers) {
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {kIntMax, kIntMax}, {7, 8}}, kInfinity), (Coordinates{{0, 0}}));
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {kIntMax, kIntMax}, {7, 8}}, 1e200), (Coordinates{{0, 0}}));
    EXPECT_EQ(withoutDoublePoints({{0, 0}, {0, 0}}, kNaN), (Coordinates{{0, 0}, {0, 0}}));
}

TEST(PolyRemoveDoublePointsEx, ReturnsCountsBelowTwoUnchanged) {
    tagPOINT point{1, 2};
    EXPECT_EQ(polyRemoveDoublePointsEx(&point, 0, 5.0), 0U);
    EXPECT_EQ(polyRemoveDoublePointsEx(&point, 1, 5.0), 1U);
    EXPECT_EQ(polyRemoveDoublePointsEx(nullptr, 0, 5.0), 0U);
    EXPECT_EQ(polyRemoveDoublePointsEx(nullptr, 7, 5.0), 7U);
}

TEST(PolyRemoveDoublePointsEx, AgreesWithRemovingOneByOne) {
    constexpr unsigned kSeed = 20211;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    for (int round = 0; round < 500; ++round) {
        const auto points = randomWalk(&random, random() % 60);
        const double tolerance = static_cast<double>(random() % 16) / 4.0;
        const Coordinates coordinates = coordinatesOf(points.data(), static_cast<DWORD>(points.size()));
        const auto expected =
            velquad::test::removeRepeatsOneByOne(points, [tolerance](const tagPOINT& a, const tagPOINT& b) {
                const double dx = a.x - b.x;
                const double dy = a.y - b.y;
                return tolerance * tolerance > dx * dx + dy * dy;
            });
        EXPECT_EQ(withoutDoublePoints(coordinates, tolerance),
                  coordinatesOf(expected.data(), static_cast<DWORD>(expected.size())))
            << "round " << round << ", tolerance " << tolerance;
    }
}

TEST(RemoveDoublePointsTemplate, MovesHalfOfTheTailOfDoublePoints) {
    tagPOINT2D points[] = {{0, 0}, {0, 0}, {1, 1}, {2, 2}, {3, 3}};
    EXPECT_EQ(velquad::polygon::removeDoublePoints(points, 5), 4U);
    // Three doubles moved down: (1, 1) and the x of (2, 2).
    EXPECT_EQ(doublesOf(points, 5), (std::vector<double>{0, 0, 1, 1, 2, 1, 2, 2, 3, 3}));
}

TEST(RemoveDoublePointsTemplate, TakesDoublePointsBelowTheToleranceForEqual) {
    const double nearly = std::nextafter(1e-7, 0.0);
    tagPOINT2D inside[] = {{0, 0}, {nearly, -nearly}};
    tagPOINT2D atX[] = {{0, 0}, {1e-7, 0}};
    tagPOINT2D atY[] = {{0, 0}, {0, -1e-7}};
    tagPOINT2D lost[] = {{0, 0}, {kNaN, 0}};
    EXPECT_EQ(velquad::polygon::removeDoublePoints(inside, 2), 1U);
    EXPECT_EQ(velquad::polygon::removeDoublePoints(atX, 2), 2U);
    EXPECT_EQ(velquad::polygon::removeDoublePoints(atY, 2), 2U);
    EXPECT_EQ(velquad::polygon::removeDoublePoints(lost, 2), 2U);
    EXPECT_EQ(velquad::polygon::removeDoublePoints(lost, 1), 1U);
    EXPECT_EQ(velquad::polygon::removeDoublePoints(lost, 0), 0U);
}

TEST(RemoveDoublePointsTemplate, AgreesWithMovingDoubleByDouble) {
    constexpr unsigned kSeed = 20212;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    for (int round = 0; round < 500; ++round) {
        const std::size_t pointCount = 1 + random() % 40;
        std::vector<tagPOINT2D> points;
        std::vector<double> values;
        for (std::size_t i = 0; i < pointCount; ++i) {
            points.push_back({static_cast<double>(random() % 2), static_cast<double>(random() % 3)});
            values.push_back(points.back().x);
            values.push_back(points.back().y);
        }
        std::size_t expectedCount = pointCount;
        const auto expected = velquad::test::removeDoublePointsMovingHalfTails(values, &expectedCount);
        const DWORD count =
            velquad::polygon::removeDoublePoints(points.data(), static_cast<DWORD>(pointCount));
        ASSERT_EQ(count, expectedCount) << "round " << round;
        EXPECT_EQ(doublesOf(points.data(), pointCount), expected) << "round " << round;
    }
}

TEST(RemoveDoublePointsTemplate, GivesTheSameIntegerPointsEitherWay) {
    constexpr unsigned kSeed = 20213;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    for (int round = 0; round < 200; ++round) {
        auto onePass = randomWalk(&random, random() % 60);
        auto tailMoves = onePass;
        const auto pointCount = static_cast<DWORD>(onePass.size());
        const DWORD count = velquad::polygon::removeDoublePoints(onePass.data(), pointCount);
        ASSERT_EQ(velquad::polygon::removeDoublePointsByTailMoves(tailMoves.data(), pointCount), count);
        EXPECT_EQ(coordinatesOf(onePass.data(), count), coordinatesOf(tailMoves.data(), count));
    }
}

template <class Point>
class ReverseOrderTemplate : public testing::Test {};

using PointTypes = testing::Types<tagPOINT, tagPOINT2D>;
TYPED_TEST_SUITE(ReverseOrderTemplate, PointTypes);

TYPED_TEST(ReverseOrderTemplate, ExchangesTheEndsUpToTheMiddle) {
    for (DWORD count = 0; count < 6; ++count) {
        TypeParam points[6];
        for (int i = 0; i < 6; ++i)
            points[i] = {static_cast<decltype(points->x)>(i), 0};
        velquad::polygon::reverseOrder(points, count);
        for (DWORD i = 0; i < 6; ++i)
            EXPECT_EQ(points[i].x, i < count ? count - 1 - i : i) << count;
    }
}

}  // namespace
