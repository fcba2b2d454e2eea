// Sizes of runs and thinning by percentage and deviation.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/outline.h"
#include "tests/support/polygon_reference.h"
#include "velquad/geometry.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;
using velquad::test::outlineOf;
using velquad::test::reference::Outline;

DWORD sizeOf(const Coordinates& coordinates, DWORD from, DWORD to, int outside = 0) {
    const Outline points = outlineOf(coordinates);
    return polyGetMiniVecCount(points.data(), static_cast<DWORD>(points.size()), from, to, outside);
}

TEST(PolyGetMiniVecCount, SumsTheStepsOfRasterLinesAndAddsOne) {
    EXPECT_EQ(sizeOf({{0, 0}, {3, 1}, {3, 4}}, 0, 2), 7U);
    EXPECT_EQ(sizeOf({{0, 0}, {3, 1}, {3, 4}}, 0, 1), 4U);
    EXPECT_EQ(sizeOf({{0, 0}, {3, 1}, {3, 4}}, 1, 2), 4U);
    EXPECT_EQ(sizeOf({{0, 0}, {-3, 1}, {-3, -5}}, 0, 2), 10U);
}

TEST(PolyGetMiniVecCount, OfAnEmptyRunIsOne) {
    EXPECT_EQ(sizeOf({{0, 0}, {3, 1}, {3, 4}}, 1, 1), 1U);
    EXPECT_EQ(sizeOf({{0, 0}, {3, 1}, {3, 4}}, 2, 0), 1U);
}

TEST(PolyGetMiniVecCount, OutsideGoesOnIntoThePlaceBehindTheLastPoint) {
    // Four points and the element behind them, from which the last step of 10 comes.
    const Outline points = outlineOf({{0, 0}, {1, 0}, {3, 0}, {7, 0}, {17, 0}});
    EXPECT_EQ(polyGetMiniVecCount(points.data(), 4, 1, 2, 1), 1U + 4U + 10U + 1U);
    EXPECT_EQ(polyGetMiniVecCount(points.data(), 4, 0, 3, 1), 0U + 10U + 1U);
    EXPECT_EQ(polyGetMiniVecCount(points.data(), 4, 2, 0, -1), 3U + 17U + 1U)
        << "in any order of the vertices";
}

TEST(PolyGetMiniVecCount, OutsideLeavesTheSecondRunOutFromTheCountOn) {
    const Outline points = outlineOf({{0, 0}, {1, 0}, {3, 0}, {7, 0}});
    EXPECT_EQ(polyGetMiniVecCount(points.data(), 4, 2, 4, 1), 4U);
    EXPECT_EQ(polyGetMiniVecCount(points.data(), 4, 0, 0xFFFFFFFFU, 1), 1U);
}

TEST(PolyGetMiniVecCount, WrapsAround) {
    EXPECT_EQ(sizeOf({{INT_MIN, 0}, {INT_MAX, 0}}, 0, 1), 2U) << "the difference is -1";
    EXPECT_EQ(sizeOf({{INT_MIN, 0}, {0, 5}}, 0, 1), 6U) << "the smallest integer has no positive counterpart";
    EXPECT_EQ(sizeOf({{0, 0}, {INT_MAX, 0}, {0, 0}, {1, 0}, {2, 0}}, 0, 4), 1U);
}

/// The points (0, 0), (1, 7), (2, 14), ... and what is kept of them.
Coordinates numbered(const std::vector<int>& indices) {
    Coordinates points;
    for (const int i : indices)
        points.emplace_back(i, 7 * i);
    return points;
}

Coordinates reduced(DWORD count, DWORD percent) {
    Outline points;
    for (DWORD i = 0; i < count; ++i)
        points.push_back({static_cast<LONG>(i), static_cast<LONG>(7 * i)});
    const DWORD left = polyReducePoints(points.data(), count, percent);
    EXPECT_LE(left, count);
    return coordinatesOf(points.data(), left);
}

TEST(PolyReducePoints, ChangesNothingAtAHundredPercentAndAbove) {
    const Coordinates all = numbered({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(reduced(10, 100), all);
    EXPECT_EQ(reduced(10, 60), all) << "the step is 10 / 6 = 1";
    EXPECT_EQ(reduced(10, 200), all) << "the step is 0";
}

TEST(PolyReducePoints, KeepsEveryStepAndTheLastPoint) {
    EXPECT_EQ(reduced(10, 50), numbered({0, 2, 4, 6, 8, 9}));
    EXPECT_EQ(reduced(9, 50), numbered({0, 2, 4, 6, 8})) << "9 * 50 / 100 = 4 and 9 / 4 = 2";
    EXPECT_EQ(reduced(10, 30), numbered({0, 3, 6, 9}));
    EXPECT_EQ(reduced(10, 10), numbered({0, 9}));
    EXPECT_EQ(reduced(2, 50), numbered({0, 1}));
}

TEST(PolyReducePoints, ComparesTheLastPointsByTheirCoordinates) {
    Outline closed = outlineOf({{0, 0}, {1, 0}, {2, 5}, {9, 9}, {2, 5}, {2, 5}});
    EXPECT_EQ(polyReducePoints(closed.data(), 6, 50), 3U) << "point 4 equals the last one";
    EXPECT_EQ(coordinatesOf(closed.data(), 3), (Coordinates{{0, 0}, {2, 5}, {2, 5}}));
}

TEST(PolyReducePoints, WithoutAWholePointOfThePercentageIsZeroAndChangesNothing) {
    Outline points = outlineOf({{0, 0}, {1, 0}, {2, 5}});
    EXPECT_EQ(polyReducePoints(points.data(), 3, 33), 0U);
    EXPECT_EQ(polyReducePoints(points.data(), 3, 0), 0U);
    EXPECT_EQ(coordinatesOf(points.data(), 3), (Coordinates{{0, 0}, {1, 0}, {2, 5}}));
    EXPECT_EQ(polyReducePoints(nullptr, 0, 50), 0U);
}

TEST(PolyReducePoints, ProductOfCountAndPercentWrapsAround) {
    Outline points(8, tagPOINT{1, 1});
    // 8 * 0x20000000 is 0 in 32 bits.
    EXPECT_EQ(polyReducePoints(points.data(), 8, 0x20000000U), 0U);
    // 8 * 0x20000019 is 200, of which 2 are one in a hundred.
    points.assign({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {7, 0}});
    EXPECT_EQ(polyReducePoints(points.data(), 8, 0x20000019U), 3U);
    EXPECT_EQ(coordinatesOf(points.data(), 3), (Coordinates{{0, 0}, {4, 0}, {7, 0}}));
}

Coordinates reducedEx(const Coordinates& coordinates, double deviation, DWORD passes) {
    Outline points = outlineOf(coordinates);
    const DWORD left =
        polyReducePointsEx(points.data(), static_cast<DWORD>(points.size()), deviation, passes);
    EXPECT_LE(left, points.size());
    return coordinatesOf(points.data(), left);
}

TEST(PolyReducePointsEx, HalvesPointsOfOneLinePassAfterPass) {
    const Coordinates line = numbered({0, 1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(reducedEx(line, 0.0, 1), numbered({0, 2, 4, 6, 8}));
    EXPECT_EQ(reducedEx(line, 0.0, 2), numbered({0, 4, 8}));
    EXPECT_EQ(reducedEx(line, 0.0, 3), numbered({0, 8}));
    EXPECT_EQ(reducedEx(line, 0.0, 100), numbered({0, 8}));
}

TEST(PolyReducePointsEx, WithoutPassesChangesNothing) {
    EXPECT_EQ(reducedEx(numbered({0, 1, 2, 3}), 0.0, 0), numbered({0, 1, 2, 3}));
}

TEST(PolyReducePointsEx, NeverTriesTheLastPointButOneOfAnEvenNumber) {
    EXPECT_EQ(reducedEx(numbered({0, 1, 2, 3, 4, 5}), 0.0, 1), numbered({0, 2, 4, 5}));
    EXPECT_EQ(reducedEx(numbered({0, 1, 2, 3, 4, 5}), 0.0, 2), numbered({0, 4, 5}));
    EXPECT_EQ(reducedEx(numbered({0, 1, 2, 3, 4, 5}), 0.0, 3), numbered({0, 5}));
}

TEST(PolyReducePointsEx, OfTwoPointsIsBoth) {
    EXPECT_EQ(reducedEx({{1, 1}, {5, 5}}, 100.0, 5), (Coordinates{{1, 1}, {5, 5}}));
    EXPECT_EQ(reducedEx({{1, 1}}, 100.0, 5), (Coordinates{{1, 1}}));
    EXPECT_EQ(reducedEx({{1, 1}, {1, 1}}, 100.0, 5), (Coordinates{{1, 1}})) << "the last point is the first";
    EXPECT_EQ(polyReducePointsEx(nullptr, 0, 1.0, 1), 0U);
}

TEST(PolyReducePointsEx, ComparesTheSquaredDistanceWithTheDeviationAsItIs) {
    // The middle is 3 off the line.
    const Coordinates bent{{0, 0}, {5, 3}, {10, 0}};
    EXPECT_EQ(reducedEx(bent, 8.999, 1), bent);
    EXPECT_EQ(reducedEx(bent, 9.0, 1), (Coordinates{{0, 0}, {10, 0}})) << "exactly the limit goes";
    EXPECT_EQ(reducedEx(bent, 3.0, 1), bent);
}

TEST(PolyReducePointsEx, MeasuresFromTheInfiniteLine) {
    // The middle lies on the line, far behind its end.
    EXPECT_EQ(reducedEx({{0, 0}, {90, 0}, {10, 0}}, 0.0, 1), (Coordinates{{0, 0}, {10, 0}}));
    EXPECT_EQ(reducedEx({{0, 0}, {3, 4}, {0, 0}}, 24.0, 1), (Coordinates{{0, 0}, {3, 4}, {0, 0}}));
    EXPECT_EQ(reducedEx({{0, 0}, {3, 4}, {0, 0}}, 25.0, 1), (Coordinates{{0, 0}, {0, 0}}))
        << "a line of one point";
}

TEST(PolyReducePointsEx, EndsWhenAPassRemovesNothing) {
    // A kept middle stays a middle.
    const Coordinates zigzag{{0, 0}, {5, 5}, {10, 0}, {15, 5}, {20, 0}};
    EXPECT_EQ(reducedEx(zigzag, 1.0, 1000000000U), zigzag);
}

TEST(PolyReducePointsEx, DeviationThatIsNotANumberRemovesAll) {
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(reducedEx({{0, 0}, {5, 5}, {10, 0}, {15, 5}, {20, 0}}, notANumber, 9),
              (Coordinates{{0, 0}, {20, 0}}));
}

/// One list read and another written, pass after pass.
Outline reducedPlainly(Outline points, double deviation, DWORD passes) {
    for (DWORD pass = 0; pass < passes; ++pass) {
        Outline out{points[0]};
        bool hasRemoved = false;
        for (std::size_t i = 2; i < points.size(); i += 2) {
            const double distance =
                matCalcDistanceToLine2L(&points[i - 2], &points[i], &points[i - 1], 1, nullptr, nullptr);
            if (distance > deviation) {
                out.push_back(points[i - 1]);
            } else {
                hasRemoved = true;
            }
            out.push_back(points[i]);
        }
        if (!velquad::test::reference::same(out.back(), points.back())) out.push_back(points.back());
        points = out;
        if (!hasRemoved) break;
    }
    return points;
}

TEST(PolyReducePointsEx, MatchesTheVersionWithASecondList) {
    std::mt19937 engine(61);
    const auto random = [&] { return static_cast<unsigned>(engine()); };
    for (int round = 0; round < 20000; ++round) {
        const unsigned side = 1 + random() % 20;
        const int scale = random() % 10 == 0 ? 100000000 : 1;
        Outline points(1 + random() % 40);
        for (tagPOINT& p : points) {
            const int x = static_cast<int>(random() % side) * scale;
            const int y = static_cast<int>(random() % side) * scale;
            p = {x, y};
        }
        const double deviation = static_cast<double>(random() % 60) * 0.5;
        const DWORD passes = random() % 5;
        const Outline expected = reducedPlainly(points, deviation, passes);
        const DWORD left =
            polyReducePointsEx(points.data(), static_cast<DWORD>(points.size()), deviation, passes);
        ASSERT_EQ(left, expected.size()) << "seed 61, round " << round;
        ASSERT_EQ(coordinatesOf(points.data(), left), coordinatesOf(expected.data(), left))
            << "seed 61, round " << round;
    }
}

}  // namespace
