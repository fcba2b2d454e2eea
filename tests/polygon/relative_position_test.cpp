// The position of two outlines to one another.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <random>
#include <vector>

#include "tests/support/polygon_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::reference::Outline;

int position(const Outline& a, int closedA, const Outline& b, int closedB) {
    return polyGetRelativePosition(a.data(), static_cast<DWORD>(a.size()), closedA, b.data(),
                                   static_cast<DWORD>(b.size()), closedB);
}

const Outline kOuter{{0, 0}, {20, 0}, {20, 20}, {0, 20}};
const Outline kInner{{5, 5}, {9, 5}, {9, 9}, {5, 9}};
const Outline kApartFromBoth{{30, 0}, {40, 0}, {40, 20}};

TEST(RelativePosition, OfNestedOutlinesTellsWhichOneIsInside) {
    EXPECT_EQ(position(kOuter, 1, kInner, 1), 2);
    EXPECT_EQ(position(kInner, 1, kOuter, 1), 3);
}

TEST(RelativePosition, OfOutlinesApartIsZero) {
    EXPECT_EQ(position(kOuter, 1, kApartFromBoth, 1), 0);
    EXPECT_EQ(position(kApartFromBoth, 1, kInner, 1), 0);
}

TEST(RelativePosition, OfCrossingOutlinesIsOne) {
    EXPECT_EQ(position(kOuter, 1, {{10, 10}, {30, 10}, {30, 15}}, 1), 1);
}

TEST(RelativePosition, TouchingIsContact) {
    EXPECT_EQ(position(kOuter, 1, {{20, 20}, {30, 20}, {30, 30}}, 1), 1) << "vertex on vertex";
    EXPECT_EQ(position(kOuter, 1, {{20, 10}, {30, 5}, {30, 15}}, 1), 1) << "vertex on edge";
    EXPECT_EQ(position(kOuter, 1, {{20, 5}, {20, 15}, {30, 15}}, 1), 1) << "edge on edge";
    EXPECT_EQ(position(kOuter, 1, {{21, 5}, {21, 15}, {30, 15}}, 1), 0) << "one pixel apart";
}

TEST(RelativePosition, StoredClosingPointChangesNothing) {
    Outline outer = kOuter;
    outer.push_back(outer.front());
    Outline inner = kInner;
    inner.push_back(inner.front());
    EXPECT_EQ(position(outer, 1, inner, 1), 2);
    EXPECT_EQ(position(outer, 1, kInner, 1), 2);
    EXPECT_EQ(position(inner, 1, outer, 1), 3);
    EXPECT_EQ(position(outer, 1, kApartFromBoth, 1), 0);
}

TEST(RelativePosition, OpenChainHasNoClosingEdge) {
    // The closing edge of kOuter is x = 0.
    const Outline across{{-5, 10}, {5, 10}};
    EXPECT_EQ(position(kOuter, 1, across, 0), 1);
    EXPECT_EQ(position(kOuter, 0, across, 0), 0);
    EXPECT_EQ(position(across, 0, kOuter, 0), 0);
}

TEST(RelativePosition, OpenChainCanLieInsideButHasNoInside) {
    EXPECT_EQ(position(kOuter, 1, kInner, 0), 2);
    EXPECT_EQ(position(kOuter, 0, kInner, 1), 0);
    EXPECT_EQ(position(kInner, 0, kOuter, 1), 3);
    EXPECT_EQ(position(kInner, 1, kOuter, 0), 0);
    EXPECT_EQ(position(kOuter, 0, kInner, 0), 0);
}

TEST(RelativePosition, FlagsAreTestedForZero) {
    EXPECT_EQ(position(kOuter, -1, kInner, 256), 2);
}

TEST(RelativePosition, OnlyFirstPointsAreTried) {
    // A single point has no edge, so it cannot make contact, not even where it lies on the other outline.
    EXPECT_EQ(position(kOuter, 1, {{10, 10}}, 1), 2);
    EXPECT_EQ(position(kOuter, 1, {{20, 10}}, 1), 2);
    EXPECT_EQ(position(kOuter, 1, {{20, 10}}, 0), 2);
    EXPECT_EQ(position(kOuter, 1, {{25, 10}}, 1), 0);
    EXPECT_EQ(position({{20, 10}}, 1, kOuter, 1), 3);
    EXPECT_EQ(position({{7, 7}}, 1, {{7, 7}}, 1), 2);
}

TEST(RelativePosition, RepeatedPointsAreNoEdges) {
    const Outline repeated{{10, 0}, {10, 0}, {10, 0}};
    EXPECT_EQ(position(kOuter, 1, repeated, 1), 2) << "on the outline, but without an edge";
    EXPECT_EQ(position({{0, 0}, {0, 0}, {20, 0}, {20, 20}, {20, 20}, {0, 20}}, 1, kInner, 1), 2);
}

TEST(RelativePosition, OfNothingIsApart) {
    EXPECT_EQ(polyGetRelativePosition(nullptr, 0, 1, kOuter.data(), 4, 1), 0);
    EXPECT_EQ(polyGetRelativePosition(kOuter.data(), 4, 1, nullptr, 0, 1), 0);
    EXPECT_EQ(polyGetRelativePosition(nullptr, 0, 0, nullptr, 0, 0), 0);
}

TEST(RelativePosition, SegmentsThatMissEachOtherWithinTheToleranceMeet) {
    // The second segment crosses the line of the first one at 1 + 1 / (4000 * size) of it.
    const Outline crossing{{4001, 6000}, {6000, 3999}};
    const auto segmentOfSize = [](LONG size) { return Outline{{5000 - size, 5000 - size}, {5000, 5000}}; };
    EXPECT_EQ(position(segmentOfSize(2501), 0, crossing, 0), 1);
    EXPECT_EQ(position(segmentOfSize(2500), 0, crossing, 0), 0) << "exactly 1e-7 is too much";
    EXPECT_EQ(position(segmentOfSize(2499), 0, crossing, 0), 0);
}

/// A rough circle of `count` points.
Outline circle(int count, double radius, double centerX, double centerY, double ripple) {
    Outline outline;
    for (int k = 0; k < count; ++k) {
        const double angle = 6.283185307179586 * k / count;
        const double r = radius + ripple * std::sin(37.0 * angle);
        outline.push_back({static_cast<LONG>(std::lround(centerX + r * std::cos(angle))),
                           static_cast<LONG>(std::lround(centerY + r * std::sin(angle)))});
    }
    return outline;
}

TEST(RelativePosition, OfLongOutlinesMatchesThePairLoop) {
    const Outline outer = circle(700, 9000.0, 0.0, 0.0, 150.0);
    for (const Outline& other :
         {circle(650, 5000.0, 0.0, 0.0, 90.0), circle(650, 8990.0, 0.0, 0.0, 150.0),
          circle(650, 8840.0, 0.0, 0.0, 0.0), circle(650, 9000.0, 18302.0, 0.0, 0.0),
          circle(650, 9000.0, 17900.0, 20.0, 150.0), circle(3, 40000.0, 0.0, 0.0, 0.0)}) {
        for (const bool closed : {false, true}) {
            const int expected = velquad::test::reference::relativePosition(outer, closed, other, true);
            EXPECT_EQ(position(outer, closed ? 1 : 0, other, 1), expected);
            const int swapped = velquad::test::reference::relativePosition(other, true, outer, closed);
            EXPECT_EQ(position(other, 1, outer, closed ? 1 : 0), swapped);
        }
    }
}

void expectReference(unsigned seed, int rounds, unsigned side, int scale, std::int64_t shift) {
    std::mt19937 engine(seed);
    const auto random = [&] { return static_cast<unsigned>(engine()); };
    const auto coordinate = [&](unsigned from, unsigned width) {
        return static_cast<LONG>(velquad::test::reference::wrapped(
            static_cast<std::int64_t>(from + random() % width) * scale + shift));
    };
    const auto outline = [&] {
        // A window of the grid, so that all answers come about.
        const unsigned width = 2 + random() % (side - 1);
        const unsigned fromX = random() % (side - width + 1);
        const unsigned fromY = random() % (side - width + 1);
        Outline points(1 + random() % (random() % 4 == 0 ? 60 : 6));
        for (tagPOINT& p : points)
            p = {coordinate(fromX, width), coordinate(fromY, width)};
        if (random() % 3 == 0) points.push_back(points.front());
        return points;
    };
    int counts[4] = {0, 0, 0, 0};
    for (int round = 0; round < rounds; ++round) {
        const Outline a = outline();
        const Outline b = outline();
        const bool closedA = random() % 3 != 0;
        const bool closedB = random() % 3 != 0;
        const int expected = velquad::test::reference::relativePosition(a, closedA, b, closedB);
        ++counts[expected];
        ASSERT_EQ(position(a, closedA ? 1 : 0, b, closedB ? 1 : 0), expected)
            << "seed " << seed << ", round " << round;
    }
    for (const int count : counts)
        EXPECT_GT(count, 0);
}

TEST(RelativePosition, MatchesThePairLoopOnGrids) {
    expectReference(1, 20000, 6, 1, 0);
    expectReference(2, 20000, 30, 1, -10);
    expectReference(3, 20000, 20, 1000, -10000);
}

TEST(RelativePosition, MatchesThePairLoopWhereProductsWrapAround) {
    expectReference(11, 20000, 9, 33333, -100000);
    expectReference(12, 20000, 16, 1 << 28, INT_MIN);
}

}  // namespace
