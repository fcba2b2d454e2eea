// Splitting an outline along a cut line.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/block_failure.h"
#include "tests/support/piece.h"
#include "tests/support/splitting_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::kNoValue;
using velquad::test::Coordinates;
using velquad::test::takePiece;
using velquad::test::reference::Outline;

int marker = 0;
/// What an output holds before a call.
void* const kUntouched = &marker;

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

struct Split {
    bool isDone;
    Coordinates first;
    Coordinates second;
};

/// Splits and takes both pieces of a closed outline, or the one of an open chain.
Split split(const Outline& outline, int closed, double tolerance, const Outline& cut) {
    void* out1 = kUntouched;
    void* out2 = kUntouched;
    Split result{};
    result.isDone = polySplit(outline.data(), countOf(outline), closed, tolerance, cut.data(), countOf(cut),
                              &out1, &out2);
    if (!result.isDone) {
        EXPECT_EQ(out1, nullptr);
        EXPECT_EQ(out2, nullptr);
        return result;
    }
    result.first = takePiece(out1);
    if (closed != 0) {
        result.second = takePiece(out2);
    } else {
        EXPECT_EQ(out2, kUntouched);
    }
    return result;
}

const Outline kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};

TEST(PolySplit, AcrossASquareGivesTwoClosedHalves) {
    const Split halves = split(kSquare, 1, 0.0, {{5, 0}, {5, 10}});
    ASSERT_TRUE(halves.isDone);
    EXPECT_EQ(halves.first, (Coordinates{{10, 0}, {10, 10}, {5, 10}, {5, 0}, {10, 0}}));
    EXPECT_EQ(halves.second, (Coordinates{{0, 10}, {0, 0}, {5, 0}, {5, 10}, {0, 10}}));
}

TEST(PolySplit, RoundsThePlacesOfTheCut) {
    const Outline triangle{{0, 0}, {3, 1}, {0, 9}, {0, 0}};
    // The foot of (1, 0) on the first edge is at 0.3 of it: (0.9, 0.3), which rounds to (1, 0).
    const Split parts = split(triangle, 1, 0.0, {{1, 0}, {0, 5}});
    ASSERT_TRUE(parts.isDone);
    EXPECT_EQ(parts.first, (Coordinates{{3, 1}, {0, 9}, {0, 5}, {1, 0}, {3, 1}}));
    EXPECT_EQ(parts.second, (Coordinates{{0, 0}, {1, 0}, {0, 5}, {0, 0}}));
}

TEST(PolySplit, TakesTheInnerPointsOfTheCutIntoBothPieces) {
    const Split parts = split(kSquare, 1, 0.0, {{5, 0}, {4, 3}, {6, 6}, {5, 10}});
    ASSERT_TRUE(parts.isDone);
    EXPECT_EQ(parts.first, (Coordinates{{10, 0}, {10, 10}, {5, 10}, {6, 6}, {4, 3}, {5, 0}, {10, 0}}));
    EXPECT_EQ(parts.second, (Coordinates{{0, 10}, {0, 0}, {5, 0}, {4, 3}, {6, 6}, {5, 10}, {0, 10}}));
}

TEST(PolySplit, GivesTheSamePiecesWhicheverWayTheCutRuns) {
    const Split parts = split(kSquare, 1, 0.0, {{5, 10}, {6, 6}, {4, 3}, {5, 0}});
    ASSERT_TRUE(parts.isDone);
    EXPECT_EQ(parts.first, (Coordinates{{10, 0}, {10, 10}, {5, 10}, {6, 6}, {4, 3}, {5, 0}, {10, 0}}));
    EXPECT_EQ(parts.second, (Coordinates{{0, 10}, {0, 0}, {5, 0}, {4, 3}, {6, 6}, {5, 10}, {0, 10}}));
}

TEST(PolySplit, WithinTheToleranceOfAVertexUsesTheVertex) {
    // The first end lies 2 off the vertex (10, 0), the second one on (0, 10).
    const Split snapped = split(kSquare, 1, 2.5, {{8, 0}, {0, 10}});
    ASSERT_TRUE(snapped.isDone);
    EXPECT_EQ(snapped.first, (Coordinates{{10, 0}, {10, 10}, {0, 10}, {10, 0}}));
    EXPECT_EQ(snapped.second, (Coordinates{{0, 10}, {0, 0}, {10, 0}, {0, 10}}));
    const Split atTolerance = split(kSquare, 1, 2.0, {{8, 0}, {0, 10}});
    EXPECT_EQ(atTolerance.first, (Coordinates{{10, 0}, {10, 10}, {0, 10}, {8, 0}, {10, 0}}));
    EXPECT_EQ(split(kSquare, 1, std::nextafter(2.0, 3.0), {{8, 0}, {0, 10}}).first, snapped.first);
}

TEST(PolySplit, LargestDoubleSnapsNothing) {
    const Split unsnapped = split(kSquare, 1, 0.0, {{8, 0}, {1, 10}});
    const Split marked = split(kSquare, 1, kNoValue, {{8, 0}, {1, 10}});
    ASSERT_TRUE(marked.isDone);
    EXPECT_EQ(marked.first, unsnapped.first);
    EXPECT_EQ(marked.second, unsnapped.second);
    EXPECT_EQ(marked.first, (Coordinates{{10, 0}, {10, 10}, {1, 10}, {8, 0}, {10, 0}}));
    // Any other huge tolerance snaps everything.
    EXPECT_EQ(split(kSquare, 1, 1e308, {{8, 0}, {1, 10}}).first,
              (Coordinates{{0, 0}, {10, 0}, {10, 10}, {0, 0}}));
}

TEST(PolySplit, WithBothEndsInOnePlaceHasNoWayBackThere) {
    const Split parts = split(kSquare, 1, 0.0, {{5, 0}, {4, 4}, {6, 4}, {5, -3}});
    ASSERT_TRUE(parts.isDone);
    EXPECT_EQ(parts.first, (Coordinates{{5, 0}, {6, 4}, {4, 4}, {5, 0}}));
    EXPECT_EQ(parts.second,
              (Coordinates{{10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}, {4, 4}, {6, 4}, {5, 0}, {10, 0}}));
    const Split atVertex = split(kSquare, 1, 0.0, {{10, 0}, {8, 5}, {11, -1}});
    EXPECT_EQ(atVertex.first, (Coordinates{{10, 0}, {8, 5}, {10, 0}}));
    EXPECT_EQ(atVertex.second, (Coordinates{{10, 0}, {10, 10}, {0, 10}, {0, 0}, {10, 0}, {8, 5}, {10, 0}}));
    const Split point = split(kSquare, 1, 0.0, {{5, 0}, {5, 0}});
    EXPECT_EQ(point.first, (Coordinates{{5, 0}}));
}

TEST(PolySplit, OfAnOpenChainGivesOnePiece) {
    const Outline chain{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const Split part = split(chain, 0, 0.0, {{5, -1}, {5, 5}, {5, 11}});
    ASSERT_TRUE(part.isDone);
    EXPECT_EQ(part.first, (Coordinates{{10, 0}, {10, 10}, {5, 10}, {5, 5}, {5, 0}, {10, 0}}));
    const Split whole = split(chain, 0, 1.0, {{0, 0}, {0, 10}});
    EXPECT_EQ(whole.first, (Coordinates{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}));
}

TEST(PolySplit, TakesEitherOutputAlone) {
    const Outline cut{{5, 0}, {5, 10}};
    void* out = nullptr;
    EXPECT_TRUE(polySplit(kSquare.data(), 5, 1, 0.0, cut.data(), 2, &out, nullptr));
    EXPECT_EQ(takePiece(out), (Coordinates{{10, 0}, {10, 10}, {5, 10}, {5, 0}, {10, 0}}));
    EXPECT_TRUE(polySplit(kSquare.data(), 5, 7, 0.0, cut.data(), 2, nullptr, &out));
    EXPECT_EQ(takePiece(out), (Coordinates{{0, 10}, {0, 0}, {5, 0}, {5, 10}, {0, 10}}));
    EXPECT_TRUE(polySplit(kSquare.data(), 5, 1, 0.0, cut.data(), 2, nullptr, nullptr));
    out = kUntouched;
    EXPECT_TRUE(polySplit(kSquare.data(), 5, 0, 0.0, cut.data(), 2, nullptr, &out));
    EXPECT_EQ(out, kUntouched);
}

TEST(PolySplit, RefusesWhatIsTooLittle) {
    const Outline cut{{5, 0}, {5, 10}};
    const auto refuses = [](const Outline* outline, DWORD count, const Outline* line, DWORD lineCount) {
        void* out1 = kUntouched;
        void* out2 = kUntouched;
        const bool isDone = polySplit(outline == nullptr ? nullptr : outline->data(), count, 1, 0.0,
                                      line == nullptr ? nullptr : line->data(), lineCount, &out1, &out2);
        return !isDone && out1 == nullptr && out2 == nullptr;
    };
    EXPECT_TRUE(refuses(nullptr, 5, &cut, 2));
    EXPECT_TRUE(refuses(&kSquare, 2, &cut, 2));
    EXPECT_TRUE(refuses(&kSquare, 0, &cut, 2));
    EXPECT_TRUE(refuses(&kSquare, 5, nullptr, 2));
    EXPECT_TRUE(refuses(&kSquare, 5, &cut, 1));
    EXPECT_TRUE(refuses(&kSquare, 5, &cut, 0));
    EXPECT_FALSE(polySplit(nullptr, 5, 1, 0.0, cut.data(), 2, nullptr, nullptr));
    EXPECT_EQ(split({{0, 0}, {9, 0}, {0, 0}}, 1, 0.0, cut).isDone, true) << "three points are enough";
}

TEST(PolySplit, WithoutMemoryLeavesNothingBehind) {
    const Outline cut{{5, 0}, {5, 5}, {5, 10}};
    const Outline before = kSquare;
    const std::size_t allocations = velquad::test::forEachFailingAllocation([&] {
        void* out1 = kUntouched;
        void* out2 = kUntouched;
        const bool isDone = polySplit(kSquare.data(), 5, 1, 0.0, cut.data(), 3, &out1, &out2);
        if (!isDone) return out1 == nullptr && out2 == nullptr;
        polyFree(out1);
        polyFree(out2);
        return false;
    });
    EXPECT_GE(allocations, 2U);
    EXPECT_EQ(velquad::test::coordinatesOf(kSquare), velquad::test::coordinatesOf(before));
}

TEST(PolySplit, AsksForBlocksThatHoldEveryPoint) {
    // 2 - 0 indices, 3 points of the cut: (2 + 3) * 8 + 12, zero-filled and movable; and (0 - 2 + 4 + 3) * 8 + 12.
    const Outline cut{{5, 0}, {5, 5}, {5, 10}};
    void* out = nullptr;
    EXPECT_TRUE(polySplit(kSquare.data(), 5, 1, 0.0, cut.data(), 3, &out, nullptr));
    EXPECT_EQ(velquad::test::lastBlockSize(), 52U);
    EXPECT_EQ(velquad::test::lastBlockFlags(), 0x42U);
    polyFree(out);
    EXPECT_TRUE(polySplit(kSquare.data(), 5, 1, 0.0, cut.data(), 3, nullptr, &out));
    EXPECT_EQ(velquad::test::lastBlockSize(), 52U);
    EXPECT_EQ(velquad::test::lastBlockFlags(), 0x42U);
    polyFree(out);
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kLock);
    EXPECT_FALSE(split(kSquare, 1, 0.0, cut).isDone);
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kNone);
}

/// Outlines of few points on a small grid, which `scale` and `shift` carry to where products wrap around.
void expectReference(unsigned seed, int rounds, unsigned side, int scale, std::int64_t shift) {
    std::mt19937 random(seed);
    const auto point = [&] {
        const auto coordinate = [&] {
            return static_cast<LONG>(velquad::test::reference::wrapped(
                static_cast<std::int64_t>(random() % side) * scale + shift));
        };
        const LONG x = coordinate();
        return tagPOINT{x, coordinate()};
    };
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
        Outline outline(3 + random() % 9);
        for (tagPOINT& p : outline)
            p = point();
        if (random() % 4 != 0) outline.back() = outline.front();
        Outline cut(2 + random() % 4);
        for (tagPOINT& p : cut)
            p = point();
        if (random() % 6 == 0) cut.back() = cut.front();
        const bool closed = random() % 3 != 0;
        const double tolerances[] = {0.0, kNoValue, 0.5 * scale, 1.0 * scale, 1.5 * scale, -1.0};
        const double tolerance = tolerances[random() % std::size(tolerances)];
        const auto expected = velquad::test::reference::split(outline, closed, tolerance, cut);
        const Split actual = split(outline, closed ? 1 : 0, tolerance, cut);
        ASSERT_TRUE(actual.isDone);
        ASSERT_EQ(actual.first, velquad::test::coordinatesOf(expected.first));
        if (closed) {
            ASSERT_EQ(actual.second, velquad::test::coordinatesOf(expected.second));
        }
    }
}

TEST(PolySplit, MatchesTheStepsOnGrids) {
    expectReference(2401, 15000, 4, 1, 0);
    expectReference(2402, 15000, 9, 3, -12);
    expectReference(2403, 10000, 200, 1, -100);
    expectReference(2404, 10000, 12, 900, -5000);
}

TEST(PolySplit, MatchesTheStepsWhereProductsWrapAround) {
    expectReference(2405, 10000, 5, 1 << 29, INT_MIN);
    expectReference(2406, 10000, 300, 77777, -11000000);
}

}  // namespace
