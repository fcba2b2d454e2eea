// Lists of places on an outline.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/polygon_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::reference::Outline;
using velquad::test::reference::Positions;

constexpr DWORD kNotFound = 0xFFFFFFFF;

void expectPositions(const Positions& actual, const Positions& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(actual[i].index, expected[i].index) << "position " << i;
        ASSERT_EQ(actual[i].fraction, expected[i].fraction) << "position " << i;
    }
}

TEST(PolyComparePositions, GoesByIndexThenByFraction) {
    EXPECT_EQ(polyComparePositions(1, 0.9, 2, 0.1), -1);
    EXPECT_EQ(polyComparePositions(2, 0.1, 1, 0.9), 1);
    EXPECT_EQ(polyComparePositions(4, 0.1, 4, 0.9), -1);
    EXPECT_EQ(polyComparePositions(4, 0.9, 4, 0.1), 1);
    EXPECT_EQ(polyComparePositions(0, 0.0, 0xFFFFFFFF, 0.0), -1);
    EXPECT_EQ(polyComparePositions(0xFFFFFFFF, 0.0, 0, 0.0), 1);
    EXPECT_EQ(polyComparePositions(4, 0.5, 5, 0.5), -1) << "equal fractions of different edges";
}

TEST(PolyComparePositions, FractionsNearerThanTheToleranceAreEqual) {
    EXPECT_EQ(polyComparePositions(3, 0.5, 3, 0.5 + 5e-8), 0);
    EXPECT_EQ(polyComparePositions(3, 0.5 + 5e-8, 3, 0.5), 0);
    EXPECT_EQ(polyComparePositions(3, 0.0, 3, std::nextafter(1e-7, 0.0)), 0);
    EXPECT_EQ(polyComparePositions(3, 0.0, 3, 1e-7), -1);
    EXPECT_EQ(polyComparePositions(3, 1e-7, 3, 0.0), 1);
    EXPECT_EQ(polyComparePositions(3, 0.0, 3, std::nextafter(1e-7, 1.0)), -1);
}

TEST(PolyComparePositions, NotANumberComesLast) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(polyComparePositions(3, nan, 3, 0.0), 1);
    EXPECT_EQ(polyComparePositions(3, 0.0, 3, nan), 1);
    EXPECT_EQ(polyComparePositions(2, nan, 3, 0.0), -1);
}

Positions sorted(Positions positions, int removeEqual) {
    const DWORD count =
        polySortPositions(positions.data(), static_cast<DWORD>(positions.size()), removeEqual);
    EXPECT_LE(count, positions.size());
    positions.resize(count);
    return positions;
}

TEST(PolySortPositions, SortsAscending) {
    expectPositions(sorted({{3, 0.5}, {1, 0.7}, {1, 0.2}, {0, 0.9}}, 0),
                    {{0, 0.9}, {1, 0.2}, {1, 0.7}, {3, 0.5}});
    expectPositions(sorted({{3, 0.5}, {1, 0.7}, {1, 0.2}, {0, 0.9}}, 1),
                    {{0, 0.9}, {1, 0.2}, {1, 0.7}, {3, 0.5}});
}

TEST(PolySortPositions, KeepsTheLaterOfEqualEntries) {
    expectPositions(sorted({{1, 0.25}, {1, 0.25 + 5e-8}}, 1), {{1, 0.25 + 5e-8}});
    expectPositions(sorted({{1, 0.25 + 5e-8}, {1, 0.25}}, 1), {{1, 0.25}});
    expectPositions(sorted({{1, 0.25}, {0, 0.5}, {1, 0.25 + 5e-8}}, -1), {{0, 0.5}, {1, 0.25 + 5e-8}});
}

TEST(PolySortPositions, WithoutTheFlagEqualEntriesStayInOrder) {
    expectPositions(sorted({{1, 0.25 + 5e-8}, {1, 0.25}, {0, 0.0}}, 0),
                    {{0, 0.0}, {1, 0.25 + 5e-8}, {1, 0.25}});
}

TEST(PolySortPositions, EqualityIsNotTransitive) {
    // Neighbours are equal, the ends are not: nothing is exchanged, or all but the last go.
    const Positions chain{{1, 12e-8}, {1, 6e-8}, {1, 0.0}};
    expectPositions(sorted(chain, 0), chain);
    expectPositions(sorted(chain, 1), {{1, 0.0}});
    expectPositions(sorted({{1, 12e-8}, {1, 0.0}, {1, 6e-8}}, 1), {{1, 6e-8}});
}

TEST(PolySortPositions, EachRemovalBeginsANewPass) {
    // Going on in the pass with the same pair would leave (1, 0.0) in front of the last one, ...
    expectPositions(sorted({{1, 0.0}, {1, 12e-8}, {1, 6e-8}, {1, 12e-8}}, 1), {{1, 12e-8}});
    // ... and going on with the next pair would do so here.
    expectPositions(sorted({{1, 0.0}, {1, 0.0}, {1, 6e-8}, {1, 12e-8}}, 1), {{1, 12e-8}});
}

TEST(PolySortPositions, OfFewPositions) {
    EXPECT_EQ(polySortPositions(nullptr, 0, 1), 0U);
    expectPositions(sorted({{5, 0.5}}, 1), {{5, 0.5}});
    expectPositions(sorted({{5, 0.5}, {4, 0.5}}, 1), {{4, 0.5}, {5, 0.5}});
    expectPositions(sorted({{5, 0.5}, {5, 0.5}, {5, 0.5}}, 1), {{5, 0.5}});
}

TEST(PolySortPositions, EndsOnFractionsThatAreNotNumbers) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(sorted({{1, nan}, {1, nan}, {1, 0.5}}, 0).size(), 3U);
    EXPECT_EQ(sorted({{1, infinity}, {1, infinity}, {0, 0.5}, {2, nan}, {2, nan}}, 1).size(), 5U);
}

TEST(PolySortPositions, MatchesThePlainBubbleSort) {
    std::mt19937 random(9);
    for (int round = 0; round < 20000; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 9, round " << round);
        Positions positions(random() % 12);
        for (tagPOLY_POSITION& p : positions) {
            p.index = static_cast<DWORD>(random() % 3);
            p.fraction = static_cast<double>(random() % 8) * 4e-8;
        }
        for (const int removeEqual : {0, 1}) {
            Positions expected = positions;
            velquad::test::reference::sortPositions(expected, removeEqual != 0);
            expectPositions(sorted(positions, removeEqual), expected);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
}

const Outline kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};

DWORD find(double tolerance, const Positions& positions, tagPOINT test, int closed = 1) {
    return polyFindPosition(kSquare.data(), 5, closed, tolerance, positions.data(),
                            static_cast<DWORD>(positions.size()), test);
}

TEST(PolyFindPosition, FindsTheFirstInArrayOrder) {
    const Positions positions{{2, 0.5}, {0, 0.3}, {0, 0.3}, {1, 0.0}};
    EXPECT_EQ(find(0.0, positions, {3, 0}), 1U);
    EXPECT_EQ(find(0.0, positions, {5, 10}), 0U);
    EXPECT_EQ(find(0.0, positions, {10, 0}), 3U);
    EXPECT_EQ(find(0.0, positions, {9, 9}), kNotFound);
}

TEST(PolyFindPosition, RoundsBeforeItCompares) {
    const Positions positions{{0, 0.25}};  // (2.5, 0)
    EXPECT_EQ(find(0.0, positions, {3, 0}), 0U);
    EXPECT_EQ(find(0.0, positions, {2, 0}), kNotFound);
    EXPECT_EQ(find(0.0, {{0, 0.34}}, {3, 0}), 0U);
}

TEST(PolyFindPosition, ToleranceIsInclusiveWithAMargin) {
    const Positions positions{{0, 0.0}};
    EXPECT_EQ(find(5.0, positions, {3, 4}), 0U);
    EXPECT_EQ(find(5.0 - 1e-7, positions, {3, 4}), 0U);
    EXPECT_EQ(find(5.0 - 2e-7, positions, {3, 4}), kNotFound);
    EXPECT_EQ(find(-1e-7, positions, {0, 0}), 0U);
    EXPECT_EQ(find(-2e-7, positions, {0, 0}), kNotFound);
    EXPECT_EQ(find(std::numeric_limits<double>::quiet_NaN(), positions, {0, 0}), kNotFound);
}

TEST(PolyFindPosition, ClosedOutlineStoresItsClosingPoint) {
    EXPECT_EQ(find(0.0, {{3, 0.5}}, {0, 5}), 0U);
    EXPECT_EQ(find(0.0, {{4, 0.5}}, {5, 0}), 0U) << "the closing point leads to vertex 1";
    EXPECT_EQ(find(0.0, {{4, 0.5}}, {5, 0}, 0), kNotFound) << "nothing lies behind an open chain";
}

TEST(PolyFindPosition, PositionThatDoesNotExistLiesAtTheCorner) {
    EXPECT_EQ(find(0.0, {{9, 0.5}}, {INT_MIN, INT_MIN}), 0U);
    EXPECT_EQ(find(0.0, {{9, 0.5}}, {0, 0}), 0U) << "the square of the distance, 2^63, wraps around to 0";
    EXPECT_EQ(find(0.0, {{9, 0.5}}, {1, 0}), kNotFound);
}

TEST(PolyFindPosition, SquareThatWrapsAroundToANegativeNumberMatchesNothing) {
    // 40 000^2 + 30 000^2 = 2.5e9 wraps around below 0.
    EXPECT_EQ(find(1e9, {{0, 0.0}}, {40000, 30000}), kNotFound);
    EXPECT_EQ(find(50000.0, {{0, 0.0}}, {30000, 30000}), 0U);
    EXPECT_EQ(find(0.0, {{0, 0.0}}, {65536, 0}), 0U) << "2^32 wraps around to 0";
}

TEST(PolyFindPosition, OfNothingFindsNothing) {
    EXPECT_EQ(polyFindPosition(kSquare.data(), 5, 1, 1e9, nullptr, 0, {0, 0}), kNotFound);
    const Positions one{{0, 0.5}};
    const tagPOINT point{3, 3};
    EXPECT_EQ(polyFindPosition(&point, 1, 1, 0.0, one.data(), 1, {3, 3}), kNotFound);
}

DWORD removeAll(double tolerance, Positions& positions, tagPOINT test) {
    const DWORD count = polyRemovePosition(kSquare.data(), 5, 1, tolerance, positions.data(),
                                           static_cast<DWORD>(positions.size()), test);
    EXPECT_LE(count, positions.size());
    positions.resize(count);
    return count;
}

TEST(PolyRemovePosition, RemovesAllMatchesAndKeepsTheOrder) {
    Positions positions{{0, 0.3}, {2, 0.5}, {0, 0.32}, {1, 0.5}, {0, 0.28}};
    EXPECT_EQ(removeAll(0.0, positions, {3, 0}), 2U);
    expectPositions(positions, {{2, 0.5}, {1, 0.5}});
}

TEST(PolyRemovePosition, WithoutAMatchReturnsTheCount) {
    Positions positions{{0, 0.3}, {2, 0.5}};
    EXPECT_EQ(removeAll(0.0, positions, {7, 7}), 2U);
    expectPositions(positions, {{0, 0.3}, {2, 0.5}});
    EXPECT_EQ(polyRemovePosition(kSquare.data(), 5, 1, 0.0, nullptr, 0, {0, 0}), 0U);
}

TEST(PolyRemovePosition, CanRemoveEverything) {
    Positions positions{{0, 0.3}, {2, 0.5}, {1, 0.1}};
    EXPECT_EQ(removeAll(100.0, positions, {5, 5}), 0U);
}

TEST(PolyRemovePosition, MatchesRepeatedSearchAndRemoval) {
    std::mt19937 random(12);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 12, round " << round);
        Positions positions(random() % 12);
        for (tagPOLY_POSITION& p : positions) {
            p.index = static_cast<DWORD>(random() % 6);
            p.fraction = static_cast<double>(random() % 5) * 0.25;
        }
        const tagPOINT test{static_cast<LONG>(random() % 11), 0};
        const double tolerance = static_cast<double>(random() % 6);
        Positions expected = positions;
        for (DWORD i = find(tolerance, expected, test); i != kNotFound; i = find(tolerance, expected, test)) {
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(i));
        }
        removeAll(tolerance, positions, test);
        expectPositions(positions, expected);
        ASSERT_FALSE(HasFatalFailure());
    }
}

}  // namespace
