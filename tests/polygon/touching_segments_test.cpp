// Separation of touching edges.
#include <gtest/gtest.h>

#include <vector>

#include "tests/support/outline.h"
#include "tests/support/random_outline.h"
#include "tests/support/simplicity_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;
using velquad::test::outlineOf;
using velquad::test::RandomOutline;
using velquad::test::reference::Outline;

constexpr DWORD kStuck = 0xFFFFFFFFU;

struct Result {
    DWORD count;
    Coordinates points;

    bool operator==(const Result&) const = default;
};

/// All points of the array, also those behind a smaller count.
Result separated(const Coordinates& coordinates) {
    Outline points = outlineOf(coordinates);
    const DWORD count = polySeperateTouchingSegments(points.data(), static_cast<DWORD>(points.size()));
    return {count, coordinatesOf(points.data(), static_cast<DWORD>(points.size()))};
}

TEST(PolySeperateTouchingSegments, OfASimpleOutlineRemovesRepeatsOnly) {
    const Result result = separated({{0, 0}, {0, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}});
    EXPECT_EQ(result.count, 4U);
    const Coordinates left(result.points.begin(), result.points.begin() + 4);
    EXPECT_EQ(left, (Coordinates{{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
}

TEST(PolySeperateTouchingSegments, MovesTheStartOfTheFirstEdgeAtFaultUpFirst) {
    // Edge 2 touches edge 0 at (5, 0). With vertex 0 one up, edge 0 passes (5, -0.5).
    EXPECT_EQ(separated({{0, 0}, {10, 0}, {10, 8}, {5, 0}, {0, 8}}),
              (Result{5, {{0, -1}, {10, 0}, {10, 8}, {5, 0}, {0, 8}}}));
}

TEST(PolySeperateTouchingSegments, TriesTheNeighboursInOrder) {
    // Mirrored: edge 0 must go down, which of the neighbours (1, 1), (0, 1) and (-1, 1) do; (1, 1) comes first.
    EXPECT_EQ(separated({{0, 0}, {10, 0}, {10, -8}, {5, 0}, {0, -8}}),
              (Result{5, {{1, 1}, {10, 0}, {10, -8}, {5, 0}, {0, -8}}}));
}

TEST(PolySeperateTouchingSegments, IsStuckWhenNoMoveHelps) {
    const Coordinates eight{{0, 0}, {100, 100}, {100, 0}, {0, 100}};
    EXPECT_EQ(separated(eight), (Result{kStuck, eight}));
    const Coordinates twoPoints{{0, 0}, {5, 5}};
    EXPECT_EQ(separated(twoPoints), (Result{kStuck, twoPoints}));
}

TEST(PolySeperateTouchingSegments, OfNothingAndOfAPointIsTheCount) {
    EXPECT_EQ(polySeperateTouchingSegments(nullptr, 0), 0U);
    EXPECT_EQ(separated({{3, 3}}), (Result{1, {{3, 3}}}));
    EXPECT_EQ(separated({{3, 3}, {3, 3}}).count, 1U);
}

TEST(PolySeperateTouchingSegments, OneMoveMaySeparateSeveralContacts) {
    EXPECT_EQ(separated({{0, 0}, {40, 0}, {40, 20}, {30, 0}, {20, 20}, {10, 0}, {0, 20}}),
              (Result{7, {{0, -1}, {40, 0}, {40, 20}, {30, 0}, {20, 20}, {10, 0}, {0, 20}}}));
}

TEST(PolySeperateTouchingSegments, SeparatesOneContactAfterTheOther) {
    // Edge 6 touches the bottom, edge 0, and edge 4 the top, edge 2, which comes up once edge 0 is free.
    EXPECT_EQ(
        separated({{0, 0}, {40, 0}, {40, 40}, {0, 40}, {0, 30}, {20, 40}, {10, 20}, {20, 0}, {0, 10}}),
        (Result{9, {{0, -1}, {40, 0}, {41, 41}, {0, 40}, {0, 30}, {20, 40}, {10, 20}, {20, 0}, {0, 10}}}));
}

TEST(PolySeperateTouchingSegments, MatchesThePlainVersion) {
    RandomOutline random(41);
    int stuck = 0;
    for (int round = 0; round < 6000; ++round) {
        const Outline points = random.outline(round % 20 == 0 ? 60 : 14);
        Outline expected = points;
        const std::uint32_t expectedResult = velquad::test::reference::separateTouchingSegments(expected);
        Outline work = points;
        const DWORD result = polySeperateTouchingSegments(work.data(), static_cast<DWORD>(work.size()));
        ASSERT_EQ(result, expectedResult) << "seed 41, round " << round;
        const auto count = static_cast<DWORD>(expected.size());
        ASSERT_EQ(coordinatesOf(work.data(), count), coordinatesOf(expected.data(), count))
            << "seed 41, round " << round;
        stuck += result == kStuck ? 1 : 0;
    }
    EXPECT_GT(stuck, 1000);
    EXPECT_LT(stuck, 5500);
}

}  // namespace
