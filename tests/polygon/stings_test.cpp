// Removal of stings.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <random>
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

/// The points that are left, or as many as the result says.
Coordinates withoutStings(const Coordinates& coordinates, int noWrap, double width) {
    Outline points = outlineOf(coordinates);
    const DWORD count = polyRemoveStings(points.data(), static_cast<DWORD>(points.size()), noWrap, width);
    EXPECT_LE(count, points.size());
    return coordinatesOf(points.data(), count);
}

TEST(PolyRemoveStings, CollapsesASpikeThatRunsBackToItsStart) {
    EXPECT_EQ(withoutStings({{0, 0}, {5, 0}, {5, 9}, {5, 0}, {9, 0}, {9, 20}}, 1, 1.0),
              (Coordinates{{0, 0}, {5, 0}, {9, 0}, {9, 20}}));
}

TEST(PolyRemoveStings, RemovesASpikeThatEndsWithinTheWidth) {
    const Coordinates chain{{0, 0}, {5, 0}, {5, 9}, {5, 2}, {9, 20}, {12, 20}};
    const Coordinates cut{{0, 0}, {5, 0}, {5, 2}, {9, 20}, {12, 20}};
    EXPECT_EQ(withoutStings(chain, 1, 2.5), cut);
    EXPECT_EQ(withoutStings(chain, 1, 2.0), cut) << "a distance of exactly the width";
    EXPECT_EQ(withoutStings(chain, 1, 1.999), chain);
    EXPECT_EQ(withoutStings(chain, 1, -2.0), cut) << "only the square counts";
}

TEST(PolyRemoveStings, LeavesSpikesWithAnOpening) {
    const Coordinates chain{{0, 0}, {5, 0}, {5, 9}, {6, 0}, {9, 0}};
    EXPECT_EQ(withoutStings(chain, 1, 100.0), (Coordinates{{0, 0}, {5, 0}, {5, 9}, {6, 0}, {9, 0}}));
}

TEST(PolyRemoveStings, APointOnTheWayWithinTheWidthIsASting) {
    // Straight on is on one line too.
    EXPECT_EQ(withoutStings({{0, 0}, {1, 0}, {2, 0}, {2, 50}}, 1, 2.0),
              (Coordinates{{0, 0}, {2, 0}, {2, 50}}));
    EXPECT_EQ(withoutStings({{0, 0}, {1, 0}, {2, 0}, {2, 50}}, 1, 1.0),
              (Coordinates{{0, 0}, {1, 0}, {2, 0}, {2, 50}}));
}

TEST(PolyRemoveStings, UnrollsALongSpikeStepByStep) {
    EXPECT_EQ(
        withoutStings({{-9, 0}, {0, 0}, {0, 5}, {0, 10}, {0, 15}, {0, 10}, {0, 5}, {0, 0}, {7, 0}}, 1, 0.0),
        (Coordinates{{-9, 0}, {0, 0}, {7, 0}}));
}

TEST(PolyRemoveStings, RepeatsGoFirst) {
    EXPECT_EQ(withoutStings({{0, 0}, {0, 0}, {5, 0}, {5, 0}, {5, 7}, {5, 7}}, 1, 0.0),
              (Coordinates{{0, 0}, {5, 0}, {5, 7}}));
}

TEST(PolyRemoveStings, OfAClosedOutlineKeepsTheClosingPoint) {
    EXPECT_EQ(withoutStings({{0, 0}, {10, 0}, {10, 10}, {15, 15}, {10, 10}, {0, 10}, {0, 0}}, 0, 0.0),
              (Coordinates{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}));
}

TEST(PolyRemoveStings, OfAClosedOutlineLeavesASpikeWhoseTipIsAtTheSeam) {
    const Coordinates outline{{20, 0}, {10, 0}, {10, 10}, {0, 10}, {10, 0}, {20, 0}};
    EXPECT_EQ(withoutStings(outline, 0, 0.0), outline);
    EXPECT_EQ(withoutStings(outline, 1, 0.0), outline);
}

TEST(PolyRemoveStings, LooksAcrossTheEndsOfAChainOnlyWhenAskedTo) {
    // The tip is the first point.
    const Coordinates tipFirst{{20, 0}, {10, 0}, {10, 10}, {0, 10}, {11, 0}};
    EXPECT_EQ(withoutStings(tipFirst, 1, 1.0), tipFirst);
    EXPECT_EQ(withoutStings(tipFirst, 0, 1.0), (Coordinates{{10, 0}, {10, 10}, {0, 10}, {11, 0}}));
    // The tip is the last point.
    const Coordinates tipLast{{10, 0}, {10, 10}, {0, 10}, {11, 0}, {20, 0}};
    EXPECT_EQ(withoutStings(tipLast, 1, 1.0), tipLast);
    EXPECT_EQ(withoutStings(tipLast, 0, 1.0), (Coordinates{{10, 0}, {10, 10}, {0, 10}, {11, 0}}));
}

TEST(PolyRemoveStings, StopsLookingAcrossTheEndsOnceTheyMeet) {
    // Without the tip at (7, 0) the last point is a closing point, and the tip at (5, 0) stays.
    const Coordinates closed{{5, 0}, {10, 0}, {10, 10}, {0, 10}, {10, 0}, {5, 0}};
    Coordinates chain = closed;
    chain.emplace_back(7, 0);
    EXPECT_EQ(withoutStings(chain, 0, 0.0), closed);
}

TEST(PolyRemoveStings, CollapsedOutlinesGiveOne) {
    EXPECT_EQ(withoutStings({{3, 4}}, 0, 0.0), (Coordinates{{3, 4}}));
    EXPECT_EQ(withoutStings({{3, 4}, {3, 4}, {3, 4}}, 0, 0.0), (Coordinates{{3, 4}}));
    EXPECT_EQ(withoutStings({{3, 4}, {9, 9}, {3, 4}}, 0, 0.0), (Coordinates{{3, 4}})) << "closed, two points";
    EXPECT_EQ(withoutStings({{3, 4}, {9, 9}}, 1, 0.0), (Coordinates{{3, 4}})) << "an edge without wrapping";
    EXPECT_EQ(withoutStings({{3, 4}, {9, 9}}, 0, 0.0), (Coordinates{{3, 4}})) << "there and back again";
    EXPECT_EQ(withoutStings({{3, 4}, {9, 9}, {15, 14}, {9, 9}, {3, 4}}, 0, 0.0), (Coordinates{{3, 4}}));
    EXPECT_EQ(polyRemoveStings(nullptr, 0, 0, 1.0), 0U);
}

TEST(PolyRemoveStings, WidthThatIsNotANumberTakesEverySpike) {
    EXPECT_EQ(withoutStings({{0, 0}, {5, 0}, {90, 0}, {30, 0}, {30, 9}}, 1,
                            std::numeric_limits<double>::quiet_NaN()),
              (Coordinates{{0, 0}, {30, 0}, {30, 9}}));
}

TEST(PolyRemoveStings, CrossProductWrapsAround) {
    // 65536 * 65536 is 0 in 32 bits, so the corner counts as a sting of a width beyond it.
    EXPECT_EQ(withoutStings({{0, 0}, {65536, 0}, {65536, 65536}, {0, 9}}, 1, 1e6),
              (Coordinates{{0, 0}, {65536, 65536}, {0, 9}}));
    EXPECT_EQ(withoutStings({{0, 0}, {65537, 0}, {65537, 65536}, {0, 9}}, 1, 1e6),
              (Coordinates{{0, 0}, {65537, 0}, {65537, 65536}, {0, 9}}));
}

void expectReference(const Outline& points, bool noWrap, double width) {
    Outline expected = points;
    const std::size_t expectedCount = velquad::test::reference::removeStings(expected, noWrap, width);
    Outline work = points;
    const DWORD count = polyRemoveStings(work.data(), static_cast<DWORD>(work.size()), noWrap ? 1 : 0, width);
    ASSERT_EQ(count, expectedCount);
    ASSERT_EQ(coordinatesOf(work.data(), count), coordinatesOf(expected.data(), count));
}

TEST(PolyRemoveStings, MatchesTheOneStingAtATimeVersion) {
    RandomOutline random(31);
    for (int round = 0; round < 30000; ++round) {
        SCOPED_TRACE(::testing::Message() << "seed 31, round " << round);
        const Outline points = random.outline(40);
        const double widths[] = {0.0, 1.0, 2.5, 7.0, 1e5, 1e10};
        const double width = widths[random.below(6)];
        expectReference(points, random.below(2) == 0, width);
        if (HasFatalFailure()) return;
    }
}

TEST(PolyRemoveStings, MatchesTheOneStingAtATimeVersionOnLinesAndSmallGrids) {
    std::mt19937 engine(32);
    const auto random = [&] { return static_cast<unsigned>(engine()); };
    for (int round = 0; round < 60000; ++round) {
        SCOPED_TRACE(::testing::Message() << "seed 32, round " << round);
        const unsigned side = 1 + random() % 3;
        Outline points(1 + random() % 12);
        for (tagPOINT& p : points) {
            const auto x = static_cast<LONG>(random() % 5);
            const auto y = static_cast<LONG>(random() % side);
            p = {x, y};
        }
        if (random() % 3 == 0) points.push_back(points.front());
        const double width = random() % 4;
        expectReference(points, random() % 2 == 0, width);
        if (HasFatalFailure()) return;
    }
}

}  // namespace
