// Convex hulls.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/hull_reference.h"
#include "tests/support/outline.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;
using velquad::test::outlineOf;
using velquad::test::reference::Outline;

struct Hull {
    DWORD count;
    Coordinates points;  ///< All points of the array.

    Coordinates vertices() const {
        return {points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count)};
    }
};

Hull hull(const Coordinates& coordinates) {
    Outline points = outlineOf(coordinates);
    const auto size = static_cast<DWORD>(points.size());
    const DWORD count = polyConvexHull(points.data(), size);
    EXPECT_LE(count, size);
    Hull result{count, coordinatesOf(points.data(), size)};
    Coordinates before = coordinates;
    Coordinates after = result.points;
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, before) << "the points are permuted, none is lost";
    return result;
}

TEST(PolyConvexHull, OfEqualPointsIsOne) {
    EXPECT_EQ(hull({{3, 4}}).count, 1U);
    EXPECT_EQ(hull({{3, 4}, {3, 4}}).count, 1U);
    EXPECT_EQ(hull({{3, 4}, {3, 4}, {3, 4}, {3, 4}}).count, 1U);
}

TEST(PolyConvexHull, OfNothingIsZero) {
    EXPECT_EQ(polyConvexHull(nullptr, 0), 0U);
}

TEST(PolyConvexHull, OfTwoPointsIsTwoAndTheLowerOneComesFirst) {
    EXPECT_EQ(hull({{3, 9}, {7, 4}}).points, (Coordinates{{7, 4}, {3, 9}}));
    EXPECT_EQ(hull({{3, 9}, {7, 4}}).count, 2U);
    EXPECT_EQ(hull({{7, 4}, {3, 9}}).count, 2U);
    EXPECT_EQ(hull({{7, 4}, {3, 4}}).points, (Coordinates{{3, 4}, {7, 4}}));
    EXPECT_EQ(hull({{7, 4}, {3, 4}}).count, 2U);
}

TEST(PolyConvexHull, OfAHorizontalLineIsItsEnds) {
    const Hull line = hull({{5, 2}, {9, 2}, {1, 2}, {7, 2}});
    EXPECT_EQ(line.count, 2U);
    EXPECT_EQ(line.vertices(), (Coordinates{{1, 2}, {9, 2}}));
}

TEST(PolyConvexHull, OfAnyLineIsItsEnds) {
    EXPECT_EQ(hull({{2, 2}, {5, 5}, {-3, -3}, {0, 0}}).vertices(), (Coordinates{{-3, -3}, {5, 5}}));
    EXPECT_EQ(hull({{2, -2}, {5, -5}, {-3, 3}, {0, 0}}).vertices(), (Coordinates{{5, -5}, {-3, 3}}));
    EXPECT_EQ(hull({{4, 2}, {4, 9}, {4, -1}, {4, 0}}).vertices(), (Coordinates{{4, -1}, {4, 9}}));
}

TEST(PolyConvexHull, OfASquareWithPointsOnItsSidesIsFourFromTheLowerLeftCounterClockwise) {
    const Hull square = hull({{5, 0}, {10, 10}, {10, 5}, {0, 10}, {5, 10}, {0, 0}, {0, 5}, {10, 0}});
    EXPECT_EQ(square.count, 4U);
    EXPECT_EQ(square.vertices(), (Coordinates{{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
}

TEST(PolyConvexHull, OfADiamondStartsAtItsLowestPoint) {
    EXPECT_EQ(hull({{0, 5}, {5, 10}, {5, 5}, {10, 5}, {5, 0}}).vertices(),
              (Coordinates{{5, 0}, {10, 5}, {5, 10}, {0, 5}}));
}

TEST(PolyConvexHull, ExchangesTheEndsOfTheLowestRowIntoTheFirstPlaces) {
    // The rightmost of the row stands where the leftmost goes, and the other way round.
    EXPECT_EQ(hull({{9, 0}, {1, 0}, {5, 7}}).points, (Coordinates{{1, 0}, {9, 0}, {5, 7}}));
    EXPECT_EQ(hull({{9, 0}, {5, 7}, {1, 0}}).points, (Coordinates{{1, 0}, {9, 0}, {5, 7}}));
    EXPECT_EQ(hull({{5, 7}, {9, 0}, {1, 0}}).points, (Coordinates{{1, 0}, {9, 0}, {5, 7}}));
}

TEST(PolyConvexHull, LeavesTheClosingPointAtTheEnd) {
    const Hull closed = hull({{10, 10}, {0, 10}, {0, 0}, {10, 0}, {5, 5}, {10, 10}});
    EXPECT_EQ(closed.vertices(), (Coordinates{{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
    EXPECT_EQ(closed.points.back(), (Coordinates::value_type{10, 10}));
}

TEST(PolyConvexHull, TakesOfPointsOnARayTheFarthest) {
    // From (0, 0) the ray through (1, 2) holds three points.
    EXPECT_EQ(hull({{-10, 1}, {1, 2}, {3, 6}, {2, 4}, {0, 0}, {1, 9}}).vertices(),
              (Coordinates{{0, 0}, {3, 6}, {1, 9}, {-10, 1}}));
}

TEST(PolyConvexHull, DirectionsThatDifferByLessThanTheMarginAreOne) {
    // From (0, 0) the directions of (n, 1) and (2 n - 1, 2) differ by 90 / (n + 1) - 90 / (n + 0.5), 45 / n^2.
    EXPECT_EQ(hull({{0, 0}, {10000, 1}, {19999, 2}, {0, 90}}).vertices(),
              (Coordinates{{0, 0}, {10000, 1}, {19999, 2}, {0, 90}}));
    EXPECT_EQ(hull({{0, 0}, {21200, 1}, {42399, 2}, {0, 90}}).count, 4U) << "1.0012e-7";
    EXPECT_EQ(hull({{0, 0}, {21300, 1}, {42599, 2}, {0, 90}}).count, 3U) << "9.92e-8";
    EXPECT_EQ(hull({{0, 0}, {40000, 1}, {79999, 2}, {0, 90}}).vertices(),
              (Coordinates{{0, 0}, {79999, 2}, {0, 90}}))
        << "the farther point is taken, although the nearer one lies outside";
}

TEST(PolyConvexHull, ARepeatOfTheFirstVertexIsAVertex) {
    EXPECT_EQ(hull({{0, 0}, {10, 0}, {0, 0}, {5, 10}}).vertices(),
              (Coordinates{{0, 0}, {10, 0}, {5, 10}, {0, 0}}));
    EXPECT_EQ(hull({{0, 0}, {10, 0}, {10, 0}, {5, 10}, {5, 10}}).count, 3U) << "repeats of others are none";
}

/// 3-D points as they can be compared.
std::vector<std::vector<double>> valuesOf(const std::vector<tagPOINT3D>& points) {
    std::vector<std::vector<double>> values;
    for (const tagPOINT3D& p : points)
        values.push_back({p.x, p.y, p.z});
    return values;
}

TEST(MatConvexHullP3D, CarriesTheHeightsAlong) {
    std::vector<tagPOINT3D> points{
        {1.0, 1.0, 5.0}, {0.0, 0.0, 1.0}, {0.5, 0.5, 9.0}, {1.0, 0.0, 2.0}, {0.0, 1.0, -7.0}};
    EXPECT_EQ(matConvexHullP3D(points.data(), 5), 4U);
    EXPECT_EQ(
        valuesOf(points),
        valuesOf({{0.0, 0.0, 1.0}, {1.0, 0.0, 2.0}, {1.0, 1.0, 5.0}, {0.0, 1.0, -7.0}, {0.5, 0.5, 9.0}}));
}

TEST(MatConvexHullP3D, LooksForNoClosingPoint) {
    std::vector<tagPOINT3D> points{{0.0, 0.0, 1.0}, {1.0, 0.0, 2.0}, {0.0, 1.0, 3.0}, {0.0, 0.0, 4.0}};
    EXPECT_EQ(matConvexHullP3D(points.data(), 4), 4U) << "the repeat of the first vertex";
    EXPECT_EQ(points[3].z, 4.0);
    EXPECT_EQ(matConvexHullP3D(points.data(), 1), 1U);
    EXPECT_EQ(matConvexHullP3D(nullptr, 0), 1U);
}

TEST(MatConvexHullP3D, RowOfLowestPointsHasATolerance) {
    // 5e-8 higher is the same row; 1.1e-7 is not.
    std::vector<tagPOINT3D> row{{0.0, 0.0, 0.0}, {1.0, 5e-8, 1.0}, {0.5, 1.0, 2.0}};
    EXPECT_EQ(matConvexHullP3D(row.data(), 3), 3U);
    EXPECT_EQ(row[1].z, 1.0);
    std::vector<tagPOINT3D> lowerLater{{0.0, 5e-8, 0.0}, {1.0, 0.0, 1.0}, {0.5, 1.0, 2.0}};
    EXPECT_EQ(matConvexHullP3D(lowerLater.data(), 3), 3U);
    EXPECT_EQ(lowerLater[0].z, 1.0) << "a strictly lower point begins a row of its own";
    EXPECT_EQ(lowerLater[1].z, 2.0);
}

TEST(MatConvexHullP3D, PointsThatAreNotNumbersAreNeverChosen) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    std::vector<tagPOINT3D> points{
        {0.0, 0.0, 0.0}, {1.0, 0.0, 1.0}, {kNaN, 0.5, 2.0}, {0.5, 1.0, 3.0}, {0.5, kNaN, 4.0}};
    EXPECT_EQ(matConvexHullP3D(points.data(), 5), 3U);
    EXPECT_EQ(points[2].z, 3.0);
}

TEST(PolyConvexHull, MatchesTheStepByStepVersionInTheOrderOfAllPoints) {
    std::mt19937 engine(51);
    const auto random = [&] { return static_cast<unsigned>(engine()); };
    for (int round = 0; round < 30000; ++round) {
        const unsigned side = 1 + random() % (random() % 2 == 0 ? 8 : 2000);
        const LONG scale = random() % 4 == 0 ? 1000000 : 1;
        Outline points(1 + random() % (random() % 8 == 0 ? 300 : 12));
        for (tagPOINT& p : points) {
            const auto x = static_cast<LONG>(random() % side);
            const auto y = static_cast<LONG>(random() % side);
            p = {x * scale, y * scale};
        }
        if (random() % 50 == 0) points[random() % points.size()] = {INT_MIN, INT_MAX};
        Outline expected = points;
        const bool isClosed = velquad::test::reference::same(points.front(), points.back());
        const std::size_t size = isClosed ? points.size() - 1 : points.size();
        const std::size_t expectedCount = velquad::test::reference::wrapHull(expected, size);
        const DWORD count = polyConvexHull(points.data(), static_cast<DWORD>(points.size()));
        ASSERT_EQ(count, expectedCount) << "seed 51, round " << round;
        const auto all = static_cast<DWORD>(points.size());
        ASSERT_EQ(coordinatesOf(points.data(), all), coordinatesOf(expected.data(), all))
            << "seed 51, round " << round;
    }
}

TEST(MatConvexHullP3D, MatchesTheStepByStepVersionInTheOrderOfAllPoints) {
    std::mt19937 engine(52);
    const auto random = [&] { return static_cast<unsigned>(engine()); };
    const double steps[] = {1.0, 3e-8, 1e-7, 0.1, 1e6};
    for (int round = 0; round < 20000; ++round) {
        const double step = steps[random() % 5];
        const unsigned side = 1 + random() % 30;
        std::vector<tagPOINT3D> points(1 + random() % (random() % 8 == 0 ? 200 : 10));
        for (tagPOINT3D& p : points) {
            p.x = step * static_cast<double>(random() % side);
            p.y = step * static_cast<double>(random() % side) + 4e-8 * static_cast<double>(random() % 4);
            p.z = static_cast<double>(random() % 1000);
        }
        std::vector<tagPOINT3D> expected = points;
        const std::size_t expectedCount = velquad::test::reference::wrapHull(expected, expected.size());
        ASSERT_EQ(matConvexHullP3D(points.data(), static_cast<DWORD>(points.size())), expectedCount)
            << "seed 52, round " << round;
        ASSERT_EQ(valuesOf(points), valuesOf(expected)) << "seed 52, round " << round;
    }
}

}  // namespace
