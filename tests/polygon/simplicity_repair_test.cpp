// Removal of self-crossings.
#include <gtest/gtest.h>

#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/outline.h"
#include "tests/support/random_outline.h"
#include "tests/support/simplicity_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;
using velquad::test::outlineOf;
using velquad::test::RandomOutline;
using velquad::test::reference::IntegerFamily;
using velquad::test::reference::Outline;
using velquad::test::reference::Repaired;

constexpr DWORD kNoLimit = 0xFFFFFFFFU;
constexpr tagPOINT kGuard{-777, 777};

struct Result {
    DWORD count;
    Coordinates points;

    bool operator==(const Result&) const = default;
};

/// Runs a repair over a copy of the points that has room for two more, which hold the guard.
template <class Repair>
Result repaired(const Coordinates& coordinates, Repair repair) {
    Outline points = outlineOf(coordinates);
    const DWORD count = static_cast<DWORD>(points.size());
    points.resize(points.size() + 2, kGuard);
    const DWORD result = repair(points.data(), count);
    return {result, coordinatesOf(points.data(), static_cast<DWORD>(points.size()))};
}

Result makeSimple(const Coordinates& points, DWORD limit) {
    return repaired(points, [=](tagPOINT* p, DWORD count) { return polyMakeSimple(p, count, limit); });
}

Result makeSimpleEx(const Coordinates& points, int closed, DWORD limit) {
    return repaired(points,
                    [=](tagPOINT* p, DWORD count) { return polyMakeSimpleEx(p, count, closed, limit); });
}

/// The first `count` of the points.
Coordinates front(const Result& result, std::size_t count) {
    return {result.points.begin(), result.points.begin() + static_cast<std::ptrdiff_t>(count)};
}

Coordinates withGuards(Coordinates points) {
    points.insert(points.end(), 2, {-777, 777});
    return points;
}

// The first edge runs up to the right and is crossed by edge 2 on its way back down; the triangle on the right has
// 10 + 10 + 10 steps from vertex 0 to vertex 2, the rest of the way is longer.
const Coordinates kSmallLoop{{0, 0}, {10, 10}, {10, 0}, {0, 10}, {-40, 10}, {-40, 0}, {0, 0}};

TEST(PolyMakeSimple, LeavesASimpleClosedOutlineAlone) {
    const Coordinates square{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
    EXPECT_EQ(makeSimple(square, 0), (Result{5, withGuards(square)}));
}

TEST(PolyMakeSimple, CountsAClosingPointThatItDoesNotWrite) {
    const Coordinates square{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    EXPECT_EQ(makeSimple(square, 0), (Result{5, withGuards(square)}));
}

TEST(PolyMakeSimple, CutsTheSmallerLoopOff) {
    const Result result = makeSimple(kSmallLoop, kNoLimit);
    EXPECT_EQ(result.count, 5U);
    EXPECT_EQ(front(result, 5), (Coordinates{{0, 0}, {0, 10}, {-40, 10}, {-40, 0}, {0, 0}}));
}

TEST(PolyMakeSimple, CutsOffOnlyWhatIsBelowTheLimit) {
    // The loop from vertex 0 to vertex 2 has 10 + 10 + 1 pixels. The whole outline has 21 + 10 + 40 + 10 + 40, and the
    // rest is 100.
    EXPECT_EQ(makeSimple(kSmallLoop, 22).count, 5U);
    EXPECT_EQ(makeSimple(kSmallLoop, 21), (Result{0, withGuards(kSmallLoop)}));
    EXPECT_EQ(makeSimple(kSmallLoop, 0), (Result{0, withGuards(kSmallLoop)}));
}

TEST(PolyMakeSimple, LimitHoldsTheOutlineBackOnlyWhenBothSidesReachIt) {
    // The rest, 100, is above the limit, but the loop is not, and it goes.
    EXPECT_EQ(makeSimple(kSmallLoop, 50).count, 5U);
}

TEST(PolyMakeSimple, KeepsTheLoopWhenTheRestIsSmaller) {
    // The same outline begun at vertex 3 less one: edge 0 is crossed by the last edge but one.
    const Coordinates points{{0, 10}, {10, 0}, {60, 0}, {60, 40}, {10, 40}, {10, 10}, {0, 0}, {0, 10}};
    // The faults are edge 0 and edge 5; from vertex 0 to 5 it is 10 + 50 + 40 + 50 + 30 + 1 = 181, the rest 20.
    const Result result = makeSimple(points, kNoLimit);
    EXPECT_EQ(result.count, 5U);
    EXPECT_EQ(front(result, 5), (Coordinates{{10, 0}, {60, 0}, {60, 40}, {10, 40}, {10, 0}}));
    EXPECT_EQ(makeSimple(points, 21), result) << "the rest is below the limit";
    EXPECT_EQ(makeSimple(points, 20), (Result{0, withGuards(points)}));
}

/// Edges 0 and 4 cross. The loop from vertex 0 to 4 has 6 + 6 + 7 + 6 + 1 = 26 pixels, and the rest
/// 6 + 8 + 5 + |x|.
Coordinates withRestThrough(int x) {
    return {{0, 0}, {6, 6}, {12, 6}, {12, -1}, {6, -1}, {0, 5}, {-8, 5}, {x, 0}, {0, 0}};
}

TEST(PolyMakeSimple, OfEqualSidesKeepsTheLoop) {
    const Result tie = makeSimple(withRestThrough(-7), kNoLimit);
    EXPECT_EQ(tie.count, 4U);
    EXPECT_EQ(front(tie, 4), (Coordinates{{6, 6}, {12, 6}, {12, -1}, {6, 6}}));
    const Result longerRest = makeSimple(withRestThrough(-8), kNoLimit);
    EXPECT_EQ(longerRest.count, 5U);
    EXPECT_EQ(front(longerRest, 5), (Coordinates{{0, 0}, {0, 5}, {-8, 5}, {-8, 0}, {0, 0}}));
}

TEST(PolyMakeSimple, GivesZeroWhenNothingWouldBeLeft) {
    // The two edges fold back on one another and no side is smaller.
    const Coordinates edge{{0, 0}, {10, 0}};
    EXPECT_EQ(makeSimple(edge, kNoLimit), (Result{0, withGuards(edge)}));
}

TEST(PolyMakeSimple, OfAnOutlineThatShrinksToAPointCountsItAndWritesNothing) {
    // Edges 1 and 3 cross; the loop has 10 + 10 + 1 pixels, the rest 20, and one point stands between the edges.
    const Coordinates eight{{10, 10}, {10, 0}, {0, 10}, {0, 0}};
    EXPECT_EQ(makeSimple(eight, kNoLimit), (Result{1, withGuards(eight)}));
}

TEST(PolyMakeSimple, OfAPointIsThePoint) {
    EXPECT_EQ(makeSimple({{4, 5}}, kNoLimit), (Result{1, withGuards({{4, 5}})}));
    EXPECT_EQ(polyMakeSimple(nullptr, 0, kNoLimit), 0U);
}

TEST(PolyMakeSimpleEx, OfAClosedOutlineIsPolyMakeSimple) {
    for (const Coordinates& points : {kSmallLoop, Coordinates{{0, 0}, {10, 0}, {10, 10}, {0, 10}}}) {
        for (const DWORD limit : {DWORD{0}, DWORD{21}, DWORD{22}, kNoLimit}) {
            EXPECT_EQ(makeSimpleEx(points, 1, limit), makeSimple(points, limit));
        }
    }
}

TEST(PolyMakeSimpleEx, CutsLoopsOffAnOpenChain) {
    const Coordinates chain{{0, 0}, {10, 10}, {10, 0}, {0, 10}, {-9, 20}};
    const Result result = makeSimpleEx(chain, 0, 22);
    EXPECT_EQ(result.count, 3U);
    EXPECT_EQ(front(result, 3), (Coordinates{{0, 0}, {0, 10}, {-9, 20}}));
    EXPECT_EQ(makeSimpleEx(chain, 0, 21), (Result{0, withGuards(chain)}))
        << "the loop has 10 + 10 + 1 pixels";
}

TEST(PolyMakeSimpleEx, CutsTheLoopOfAChainHoweverSmallTheRestIs) {
    const Coordinates chain{{0, 0}, {3, 3}, {90, 90}, {90, 0}, {0, 3}, {-1, 1}};
    const Result result = makeSimpleEx(chain, 0, kNoLimit);
    EXPECT_EQ(result.count, 3U);
    EXPECT_EQ(front(result, 3), (Coordinates{{0, 0}, {0, 3}, {-1, 1}}));
}

TEST(PolyMakeSimpleEx, LeavesASimpleChainAlone) {
    const Coordinates chain{{10, 10}, {10, 0}, {0, 10}, {0, 0}};
    EXPECT_EQ(makeSimpleEx(chain, 0, 0), (Result{4, withGuards(chain)}));
}

/// The points that the reference stores in front of those that it leaves.
Coordinates overlaid(const Repaired<IntegerFamily>& expected, const Outline& before) {
    Outline points = before;
    for (std::size_t i = 0; i < expected.stored.size(); ++i) {
        if (i < points.size()) {
            points[i] = expected.stored[i];
        } else {
            points.push_back(expected.stored[i]);
        }
    }
    return coordinatesOf(points.data(), static_cast<DWORD>(points.size()));
}

TEST(PolyMakeSimple, MatchesTheOneStepAtATimeVersion) {
    RandomOutline random(21);
    int counts[2] = {0, 0};
    for (int round = 0; round < 12000; ++round) {
        const Outline points = random.outline(round % 10 == 0 ? 120 : 25);
        const auto limit = static_cast<DWORD>(random.below(4) == 0 ? random.below(60) : 1000000000);
        const bool closed = random.below(2) == 0;
        const Repaired<IntegerFamily> expected =
            closed ? velquad::test::reference::makeSimple<IntegerFamily>(points, limit)
                   : velquad::test::reference::makeChainSimple<IntegerFamily>(points, limit);
        Outline work = points;
        const DWORD result =
            polyMakeSimpleEx(work.data(), static_cast<DWORD>(work.size()), closed ? 1 : 0, limit);
        ASSERT_EQ(result, expected.result) << "seed 21, round " << round;
        const Coordinates stored = overlaid(expected, points);
        const std::size_t checked = result == 0 ? points.size() : expected.stored.size();
        ASSERT_EQ(coordinatesOf(work.data(), static_cast<DWORD>(checked)),
                  Coordinates(stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(checked)))
            << "seed 21, round " << round;
        ++counts[result == 0 ? 0 : 1];
    }
    EXPECT_GT(counts[0], 500);
    EXPECT_GT(counts[1], 500);
}

TEST(PolyMakeSimple, GivesZeroWithoutMemoryForThePointsAndLeavesThemAlone) {
    // The first allocation is that of the copy; the others only make the test for faults slow.
    const Outline source = outlineOf(kSmallLoop);
    for (const int closed : {0, 1}) {
        const auto alive = velquad::test::liveAllocations();
        Outline work = source;
        velquad::test::failAllocation(1);
        const DWORD result = polyMakeSimpleEx(work.data(), 7, closed, kNoLimit);
        const bool hasFailed = velquad::test::hasAllocationFailed();
        velquad::test::failAllocation(0);
        EXPECT_TRUE(hasFailed);
        EXPECT_EQ(result, 0U);
        EXPECT_EQ(coordinatesOf(work.data(), 7), kSmallLoop);
        work = Outline();
        EXPECT_LE(velquad::test::liveAllocations(), alive);
    }
}

TEST(PolyMakeSimple, GivesTheSameOutlineWhenOnlyTheTestForFaultsHasNoMemory) {
    RandomOutline random(22);
    for (int round = 0; round < 200; ++round) {
        const Outline source = random.outline(200);
        Outline expected = source;
        const auto count = static_cast<DWORD>(source.size());
        const DWORD expectedResult = polyMakeSimpleEx(expected.data(), count, 0, kNoLimit);
        for (std::size_t number = 2; number <= 3; ++number) {
            Outline work = source;
            const auto alive = velquad::test::liveAllocations();
            velquad::test::failAllocation(number);
            const DWORD result = polyMakeSimpleEx(work.data(), count, 0, kNoLimit);
            velquad::test::failAllocation(0);
            EXPECT_EQ(velquad::test::liveAllocations(), alive);
            EXPECT_EQ(result, expectedResult);
            EXPECT_EQ(coordinatesOf(work.data(), expectedResult),
                      coordinatesOf(expected.data(), expectedResult));
        }
    }
}

}  // namespace
