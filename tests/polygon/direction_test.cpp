// Sense of rotation and order of the points of an outline.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/polygon.h"

namespace {

using Outline = std::vector<tagPOINT>;

const Outline kCounterClockwise{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Outline kClockwise{{0, 10}, {10, 10}, {10, 0}, {0, 0}};

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

int isCcw(const Outline& outline) {
    return polyIsCCW(outline.data(), countOf(outline));
}

Outline closed(Outline outline) {
    outline.push_back(outline.front());
    return outline;
}

void expectPoints(const Outline& actual, const Outline& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        EXPECT_EQ(actual[i].x, expected[i].x) << "point " << i;
        EXPECT_EQ(actual[i].y, expected[i].y) << "point " << i;
    }
}

TEST(PolyIsCCW, TellsTheSenseWithOrWithoutAClosingPoint) {
    EXPECT_EQ(isCcw(kCounterClockwise), 1);
    EXPECT_EQ(isCcw(closed(kCounterClockwise)), 1);
    EXPECT_EQ(isCcw(kClockwise), 0);
    EXPECT_EQ(isCcw(closed(kClockwise)), 0);
}

TEST(PolyIsCCW, IgnoresRepeatedPoints) {
    EXPECT_EQ(isCcw({{0, 0}, {0, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 10}, {0, 0}, {0, 0}}), 1);
    EXPECT_EQ(isCcw({{0, 10}, {0, 10}, {10, 10}, {10, 0}, {10, 0}, {0, 0}}), 0);
}

TEST(PolyIsCCW, OfDentedOutlinesCountsTheWholeTurn) {
    EXPECT_EQ(isCcw({{0, 0}, {10, 0}, {10, 10}, {5, 1}, {0, 10}}), 1);
    EXPECT_EQ(isCcw({{0, 10}, {5, 1}, {10, 10}, {10, 0}, {0, 0}}), 0);
}

TEST(PolyIsCCW, OfFewOrEqualPoints) {
    EXPECT_EQ(isCcw({{3, 3}}), 0);
    EXPECT_EQ(isCcw({{3, 3}, {3, 3}, {3, 3}}), 0);
    EXPECT_EQ(isCcw({{0, 0}, {10, 0}}), 1) << "each of the two reversals turns by half a turn to the left";
    EXPECT_EQ(isCcw({{0, 0}, {10, 0}, {20, 0}}), 1);
}

TEST(PolyIsCCW, OfInvalidPointsIsZero) {
    EXPECT_EQ(polyIsCCW(nullptr, 4), 0);
    EXPECT_EQ(polyIsCCW(kCounterClockwise.data(), 0), 0);
    EXPECT_EQ(polyIsCCW(kCounterClockwise.data(), 0xFFFFFFFF), 0);
}

TEST(PolyIsCCW, LeavesItsPointsAlone) {
    Outline points{{0, 0}, {0, 0}, {10, 0}, {10, 10}};
    const Outline before = points;
    EXPECT_EQ(isCcw(points), 1);
    expectPoints(points, before);
}

TEST(PolyIsCCW, WithoutMemoryIsZeroAndLeavesNothingBehind) {
    const std::size_t allocations =
        velquad::test::forEachFailingAllocation([] { return polyIsCCW(kCounterClockwise.data(), 4) == 0; });
    EXPECT_GE(allocations, 1U);
}

TEST(PolyIsCCW, AgreesWithTheSignOfTheAreaForStarShapedOutlines) {
    std::mt19937 random(7);
    for (int round = 0; round < 500; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 7, round " << round);
        // One point in each octant around the origin, counter-clockwise.
        const auto length = [&] { return static_cast<LONG>(20 + random() % 1000); };
        Outline outline{{length(), 0},  {length(), 30},   {0, length()},  {-length(), 30},
                        {-length(), 0}, {-length(), -30}, {0, -length()}, {length(), -30}};
        if (polyCalcAreaExact(outline.data(), 8) <= 0.0) continue;
        std::int64_t twiceSmallestFan = 1;
        for (std::size_t i = 0; i < 8; ++i) {
            const tagPOINT& a = outline[i];
            const tagPOINT& b = outline[(i + 1) % 8];
            const std::int64_t fan = std::int64_t{a.x} * b.y - std::int64_t{a.y} * b.x;
            twiceSmallestFan = fan < twiceSmallestFan ? fan : twiceSmallestFan;
        }
        if (twiceSmallestFan <= 0) continue;
        ASSERT_EQ(isCcw(outline), 1);
        ASSERT_EQ(isCcw(Outline(outline.rbegin(), outline.rend())), 0);
    }
}

TEST(PolyMakeCCW, ReversesOnlyWhereNeeded) {
    Outline points = kCounterClockwise;
    EXPECT_EQ(polyMakeCCW(points.data(), 4, 1), 1);
    expectPoints(points, kCounterClockwise);
    EXPECT_EQ(polyMakeCCW(points.data(), 4, 0), 1);
    expectPoints(points, kClockwise);
    EXPECT_EQ(polyMakeCCW(points.data(), 4, 0), 1);
    expectPoints(points, kClockwise);
    EXPECT_EQ(polyMakeCCW(points.data(), 4, -5), 1);
    expectPoints(points, kCounterClockwise);
}

TEST(PolyMakeCCW, ReversesWhatHasNoSense) {
    // Outlines without a turn are not counter-clockwise; equal or single points look the same either way round.
    Outline one{{1, 2}};
    EXPECT_EQ(polyMakeCCW(one.data(), 1, 1), 1);
    expectPoints(one, {{1, 2}});
    EXPECT_EQ(polyMakeCCW(nullptr, 0, 1), 1);
    EXPECT_EQ(polyMakeCCW(nullptr, 5, 1), 1);
    EXPECT_EQ(polyMakeCCW(nullptr, 5, 0), 1);
}

TEST(PolyMakeCCW, WithoutMemoryTakesTheOutlineForClockwise) {
    Outline points = kCounterClockwise;
    velquad::test::failAllocation(1);
    EXPECT_EQ(polyMakeCCW(points.data(), 4, 1), 1);
    velquad::test::failAllocation(0);
    expectPoints(points, kClockwise);
}

TEST(PolyReverseOrder, ReversesInPlaceWithTheClosingPoint) {
    Outline odd{{1, 1}, {2, 2}, {3, 3}};
    EXPECT_EQ(polyReverseOrder(odd.data(), 3), 1);
    expectPoints(odd, {{3, 3}, {2, 2}, {1, 1}});
    Outline even{{1, 1}, {2, 2}, {3, 3}, {1, 1}};
    EXPECT_EQ(polyReverseOrder(even.data(), 4), 1);
    expectPoints(even, {{1, 1}, {3, 3}, {2, 2}, {1, 1}});
}

TEST(PolyReverseOrder, OfFewPointsChangesNothing) {
    Outline one{{1, 2}, {8, 8}};
    EXPECT_EQ(polyReverseOrder(one.data(), 1), 1);
    EXPECT_EQ(polyReverseOrder(one.data(), 0), 1);
    expectPoints(one, {{1, 2}, {8, 8}});
    EXPECT_EQ(polyReverseOrder(nullptr, 5), 0);
    EXPECT_EQ(polyReverseOrder(nullptr, 0), 0);
}

/// A locked record: the count and the points behind it.
class Record {
  public:
    explicit Record(const Outline& outline) : storage_(1 + 2 * outline.size() + 2) {
        tagPOLY* record = get();
        record->count = countOf(outline);
        if (!outline.empty()) std::memcpy(record->points, outline.data(), outline.size() * sizeof(tagPOINT));
    }
    tagPOLY* get() { return reinterpret_cast<tagPOLY*>(storage_.data()); }

  private:
    std::vector<DWORD> storage_;
};

int compare(const Outline& a, const Outline& b, int isClosed) {
    Record recordA(a);
    Record recordB(b);
    return polyCompareDirections(recordA.get(), recordB.get(), isClosed);
}

TEST(PolyCompareDirections, OfClosedOutlinesComparesTheirSense) {
    EXPECT_EQ(compare(kCounterClockwise, {{50, 50}, {60, 50}, {55, 60}}, 1), 1);
    EXPECT_EQ(compare(kCounterClockwise, kClockwise, 1), 0);
    EXPECT_EQ(compare(kClockwise, kClockwise, 7), 1);
    EXPECT_EQ(compare({}, kClockwise, 1), 1) << "an outline without points is not counter-clockwise either";
    EXPECT_EQ(compare({}, kCounterClockwise, 1), 0);
}

TEST(PolyCompareDirections, OfOpenChainsComparesTheirEnds) {
    const Outline chain{{0, 0}, {5, 9}, {10, 0}};
    EXPECT_EQ(compare(chain, {{1, 1}, {9, 1}}, 0), 1);
    EXPECT_EQ(compare(chain, {{9, 1}, {1, 1}}, 0), 0);
    // Only one of the two conditions holds.
    EXPECT_EQ(compare({{0, 0}, {1, 0}}, {{1, 0}, {5, 0}}, 0), 0);
    EXPECT_EQ(compare({{1, 0}, {5, 0}}, {{0, 0}, {1, 0}}, 0), 0);
}

TEST(PolyCompareDirections, EqualDistancesAreNotTheSameWay) {
    EXPECT_EQ(compare({{0, 0}, {10, 0}}, {{0, 5}, {0, -5}}, 0), 0);
    EXPECT_EQ(compare({{0, 0}}, {{0, 0}}, 0), 0);
    // The start at 5 is as far from 0 as from 10; for the other chain the condition holds.
    EXPECT_EQ(compare({{0, 0}, {10, 0}}, {{5, 0}, {20, 0}}, 0), 0);
    EXPECT_EQ(compare({{5, 0}, {20, 0}}, {{0, 0}, {10, 0}}, 0), 0);
    EXPECT_EQ(compare({{0, 0}, {11, 0}}, {{5, 0}, {20, 0}}, 0), 1);
}

TEST(PolyCompareDirections, OfNothingIsZero) {
    Record record(kClockwise);
    EXPECT_EQ(polyCompareDirections(nullptr, record.get(), 1), 0);
    EXPECT_EQ(polyCompareDirections(record.get(), nullptr, 0), 0);
    EXPECT_EQ(compare({}, kClockwise, 0), 0);
    EXPECT_EQ(compare(kClockwise, {}, 0), 0);
}

}  // namespace
