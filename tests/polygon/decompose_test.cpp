// Decomposition of an outline at positions.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
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
using velquad::test::reference::Positions;

constexpr DWORD kNowhere = 0xFFFFFFFF;
constexpr int kLost = INT_MIN;

int marker = 0;
/// What an output holds before a call.
void* const kUntouched = &marker;

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

struct Arcs {
    bool isDone;
    Coordinates first;
    Coordinates second;
};

Arcs arcs(const Outline& outline, int closed, tagPOLY_POSITION a, tagPOLY_POSITION b,
          double tolerance = 0.0) {
    void* out1 = kUntouched;
    void* out2 = kUntouched;
    Arcs result{};
    result.isDone = matDecomposePolygon(outline.data(), countOf(outline), closed, tolerance, a.index,
                                        a.fraction, b.index, b.fraction, &out1, &out2);
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
const Outline kChain{{0, 0}, {10, 0}, {10, 10}, {0, 10}};

TEST(MatDecomposePolygon, GivesTheArcAndTheRest) {
    const Arcs parts = arcs(kSquare, 1, {0, 0.5}, {2, 0.3});
    ASSERT_TRUE(parts.isDone);
    EXPECT_EQ(parts.first, (Coordinates{{5, 0}, {10, 0}, {10, 10}, {7, 10}}));
    EXPECT_EQ(parts.second, (Coordinates{{7, 10}, {0, 10}, {0, 0}, {5, 0}}));
}

TEST(MatDecomposePolygon, TakesThePositionsInAnyOrder) {
    const Arcs parts = arcs(kSquare, 1, {2, 0.3}, {0, 0.5});
    ASSERT_TRUE(parts.isDone);
    EXPECT_EQ(parts.first, (Coordinates{{5, 0}, {10, 0}, {10, 10}, {7, 10}}));
    EXPECT_EQ(parts.second, (Coordinates{{7, 10}, {0, 10}, {0, 0}, {5, 0}}));
}

TEST(MatDecomposePolygon, MeetsVerticesOnce) {
    const Arcs parts = arcs(kSquare, 1, {1, 0.0}, {3, 0.0});
    EXPECT_EQ(parts.first, (Coordinates{{10, 0}, {10, 10}, {0, 10}}));
    EXPECT_EQ(parts.second, (Coordinates{{0, 10}, {0, 0}, {10, 0}}));
}

TEST(MatDecomposePolygon, RoundsHalvesAwayFromZero) {
    const Outline outline{{0, 0}, {-5, 5}, {0, 10}, {0, 0}};
    EXPECT_EQ(arcs(outline, 1, {0, 0.5}, {0, 0.9}).first, (Coordinates{{-3, 3}, {-5, 5}}));
}

TEST(MatDecomposePolygon, OfAnOpenChainGivesTheArcOnly) {
    const Arcs part = arcs(kChain, 0, {0, 0.5}, {2, 0.3});
    ASSERT_TRUE(part.isDone);
    EXPECT_EQ(part.first, (Coordinates{{5, 0}, {10, 0}, {10, 10}, {7, 10}}));
}

TEST(MatDecomposePolygon, WithoutASecondPositionGivesOnePoint) {
    for (const tagPOLY_POSITION nowhere : {tagPOLY_POSITION{kNowhere, 0.5}, tagPOLY_POSITION{2, kNoValue}}) {
        const Arcs parts = arcs(kSquare, 1, {0, 0.5}, nowhere);
        ASSERT_TRUE(parts.isDone);
        EXPECT_EQ(parts.first, (Coordinates{{5, 0}}));
        EXPECT_EQ(parts.second, (Coordinates{{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}}))
            << "all the way round";
    }
}

TEST(MatDecomposePolygon, RefusesWhatIsTooLittle) {
    EXPECT_FALSE(arcs(kSquare, 1, {kNowhere, 0.5}, {2, 0.3}).isDone);
    EXPECT_FALSE(arcs(kSquare, 1, {0, kNoValue}, {2, 0.3}).isDone);
    EXPECT_FALSE(arcs({{1, 2}}, 0, {0, 0.0}, {0, 0.0}).isDone);
    void* out = kUntouched;
    EXPECT_FALSE(matDecomposePolygon(nullptr, 5, 1, 0.0, 0, 0.0, 1, 0.0, &out, nullptr));
    EXPECT_EQ(out, nullptr);
    EXPECT_FALSE(matDecomposePolygon(kSquare.data(), 0, 1, 0.0, 0, 0.0, 1, 0.0, nullptr, nullptr));
    EXPECT_TRUE(arcs({{1, 2}, {5, 2}}, 0, {0, 0.0}, {0, 0.5}).isDone) << "two points are enough";
}

TEST(MatDecomposePolygon, RefusesArcsBeyondTheOutline) {
    EXPECT_FALSE(arcs(kSquare, 1, {0, 0.5}, {5, 0.0}).isDone);
    EXPECT_FALSE(arcs(kChain, 0, {0xFFFFFFFE, 0.0}, {1, 0.0}).isDone);
}

TEST(MatDecomposePolygon, PositionsThatDoNotExistAreLost) {
    // The last point of an open chain has no edge behind it, so no position there can be looked up.
    EXPECT_EQ(arcs(kChain, 0, {2, 0.5}, {3, 0.0}).first, (Coordinates{{5, 10}, {0, 10}, {kLost, kLost}}));
    EXPECT_EQ(arcs(kChain, 0, {9, 0.5}, {9, 0.5}).first, (Coordinates{{kLost, kLost}}));
}

TEST(MatDecomposePolygon, SnapsToVertices) {
    EXPECT_EQ(arcs(kSquare, 1, {0, 0.75}, {2, 0.5}, 3.0).first, (Coordinates{{10, 0}, {10, 10}, {5, 10}}));
    EXPECT_EQ(arcs(kSquare, 1, {0, 0.75}, {2, 0.5}, 2.5).first,
              (Coordinates{{8, 0}, {10, 0}, {10, 10}, {5, 10}}))
        << "a distance of exactly the tolerance does not snap";
    EXPECT_EQ(arcs(kSquare, 1, {0, 0.75}, {2, 0.5}, kNoValue).first,
              (Coordinates{{8, 0}, {10, 0}, {10, 10}, {5, 10}}))
        << "the largest double snaps nothing";
    // The end of the last edge is the first vertex, so that the positions change places.
    EXPECT_EQ(arcs(kSquare, 1, {3, 0.75}, {1, 0.5}, 3.0).first, (Coordinates{{0, 0}, {10, 0}, {10, 5}}));
    // The end of an open chain can be reached from its last edge.
    EXPECT_EQ(arcs(kChain, 0, {1, 0.5}, {2, 1.0}, 1e-3).first, (Coordinates{{10, 5}, {10, 10}, {0, 10}}));
}

TEST(MatDecomposePolygon, TakesTheClosingPointForAVertex) {
    // The closing point is vertex 4, with vertex 1 behind it.
    EXPECT_EQ(arcs(kSquare, 1, {4, 0.0}, {1, 0.0}).first, (Coordinates{{10, 0}, {10, 10}, {0, 10}, {0, 0}}));
    EXPECT_EQ(arcs(kSquare, 1, {4, 0.0}, {1, 0.0}).second, (Coordinates{{0, 0}, {10, 0}}));
    EXPECT_EQ(arcs(kSquare, 1, {4, 0.0}, {0, 0.0}).second, (Coordinates{{0, 0}}));
    EXPECT_EQ(arcs(kSquare, 1, {4, 0.5}, {4, 0.5}).second,
              (Coordinates{{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}}));
}

TEST(MatDecomposePolygon, AsksForBlocksThatHoldEveryPoint) {
    void* out = nullptr;
    EXPECT_TRUE(matDecomposePolygon(kSquare.data(), 5, 1, 0.0, 0, 0.5, 2, 0.5, &out, nullptr));
    EXPECT_EQ(velquad::test::lastBlockSize(), 36U) << "(2 - 0) * 8 + 20";
    EXPECT_EQ(velquad::test::lastBlockFlags(), 0x42U);
    polyFree(out);
    EXPECT_TRUE(matDecomposePolygon(kSquare.data(), 5, 1, 0.0, 0, 0.5, 2, 0.5, nullptr, &out));
    EXPECT_EQ(velquad::test::lastBlockSize(), 44U) << "(4 - 2 + 0) * 8 + 28";
    EXPECT_EQ(velquad::test::lastBlockFlags(), 0x42U);
    polyFree(out);
}

TEST(MatDecomposePolygon, WithoutMemoryLeavesNothingBehind) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        void* out1 = kUntouched;
        void* out2 = kUntouched;
        if (!matDecomposePolygon(kSquare.data(), 5, 1, 0.0, 0, 0.5, 2, 0.5, &out1, &out2)) {
            return out1 == nullptr && out2 == nullptr;
        }
        polyFree(out1);
        polyFree(out2);
        return false;
    });
    EXPECT_GE(allocations, 2U);
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kLock);
    EXPECT_FALSE(arcs(kSquare, 1, {0, 0.5}, {2, 0.5}).isDone);
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kNone);
}

struct List {
    bool isDone;
    std::vector<Coordinates> pieces;
};

/// Decomposes into an array of `room` entries, checks that entries behind the pieces are left alone, and takes the
/// pieces.
List decompose(const Outline& outline, int closed, const Positions& positions, DWORD room,
               double tolerance = 0.0) {
    std::vector<void*> handles(room + 1, kUntouched);
    DWORD number = 99;
    List list{};
    list.isDone = polyDecompose(outline.data(), countOf(outline), closed, tolerance, positions.data(),
                                static_cast<DWORD>(positions.size()), handles.data(), room, &number);
    if (!list.isDone) {
        EXPECT_EQ(number, 0U);
        for (void* handle : handles)
            EXPECT_TRUE(handle == nullptr || handle == kUntouched);
        return list;
    }
    EXPECT_LT(number, room) << "one entry stays free";
    for (DWORD i = 0; i <= room; ++i) {
        if (i < number) {
            list.pieces.push_back(takePiece(handles[i]));
        } else {
            EXPECT_EQ(handles[i], kUntouched);
        }
    }
    return list;
}

using Pieces = std::vector<Coordinates>;

TEST(PolyDecompose, OfAnOpenChainGoesFromPositionToPosition) {
    const List list = decompose(kChain, 0, {{0, 0.5}, {1, 0.5}, {2, 0.5}}, 9);
    ASSERT_TRUE(list.isDone);
    EXPECT_EQ(list.pieces, (Pieces{{{0, 0}, {5, 0}},
                                   {{5, 0}, {10, 0}, {10, 5}},
                                   {{10, 5}, {10, 10}, {5, 10}},
                                   // The last piece leads from the start of the chain, not to its end.
                                   {{0, 0}, {10, 0}, {10, 10}, {5, 10}}}));
}

TEST(PolyDecompose, OfAnOpenChainFromItsStartHasNoLeadingPiece) {
    const List list = decompose(kChain, 0, {{0, 0.0}, {1, 0.5}}, 9);
    ASSERT_TRUE(list.isDone);
    EXPECT_EQ(list.pieces, (Pieces{{{0, 0}, {10, 0}, {10, 5}}, {{0, 0}, {10, 0}, {10, 5}}}));
    EXPECT_EQ(decompose(kChain, 0, {{0, 1e-7}, {1, 0.5}}, 9).pieces.size(), 2U);
    EXPECT_EQ(decompose(kChain, 0, {{0, std::nextafter(1e-7, 1.0)}, {1, 0.5}}, 9).pieces.size(), 3U);
    EXPECT_EQ(decompose(kChain, 0, {{0, -0.5}, {1, 0.5}}, 9).pieces.size(), 2U);
    EXPECT_EQ(decompose(kChain, 0, {{1, 0.0}, {1, 0.5}}, 9).pieces.size(), 3U);
}

TEST(PolyDecompose, OfAnOpenChainToItsLastPointHasNoTrailingPiece) {
    const List list = decompose(kChain, 0, {{1, 0.5}, {3, 0.0}}, 9);
    ASSERT_TRUE(list.isDone);
    EXPECT_EQ(list.pieces,
              (Pieces{{{0, 0}, {10, 0}, {10, 5}}, {{10, 5}, {10, 10}, {0, 10}, {kLost, kLost}}}));
}

TEST(PolyDecompose, OfAnOpenChainAtOnePosition) {
    EXPECT_EQ(decompose(kChain, 0, {{1, 0.5}}, 9).pieces,
              (Pieces{{{0, 0}, {10, 0}, {10, 5}}, {{0, 0}, {10, 0}, {10, 5}}}));
    EXPECT_EQ(decompose(kChain, 0, {{0, 0.0}}, 9).pieces, (Pieces{{{0, 0}}}));
}

TEST(PolyDecompose, OfAClosedOutlineGoesRound) {
    const List list = decompose(kSquare, 1, {{0, 0.5}, {1, 0.5}, {3, 0.5}}, 9);
    ASSERT_TRUE(list.isDone);
    EXPECT_EQ(
        list.pieces,
        (Pieces{{{5, 0}, {10, 0}, {10, 5}}, {{10, 5}, {10, 10}, {0, 10}, {0, 5}}, {{0, 5}, {0, 0}, {5, 0}}}));
}

TEST(PolyDecompose, OfAClosedOutlineAtTwoPositionsWithRoomForThree) {
    const List list = decompose(kSquare, 1, {{0, 0.5}, {2, 0.5}}, 3);
    ASSERT_TRUE(list.isDone);
    EXPECT_EQ(list.pieces,
              (Pieces{{{5, 0}, {10, 0}, {10, 10}, {5, 10}}, {{5, 10}, {0, 10}, {0, 0}, {5, 0}}}));
}

TEST(PolyDecompose, OfAClosedOutlineAtOnePositionGoesAllTheWayRound) {
    EXPECT_EQ(decompose(kSquare, 1, {{0, 0.5}}, 2).pieces,
              (Pieces{{{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}}}));
}

TEST(PolyDecompose, MakesOnePieceLessThanThereIsRoom) {
    const Positions positions{{0, 0.5}, {1, 0.5}, {2, 0.5}};
    for (DWORD room = 1; room < 8; ++room) {
        SCOPED_TRACE(room);
        const List chain = decompose(kChain, 0, positions, room);
        EXPECT_TRUE(chain.isDone);
        EXPECT_EQ(chain.pieces.size(), room - 1 < 4 ? room - 1 : 4);
        const List ring = decompose(kSquare, 1, positions, room);
        EXPECT_TRUE(ring.isDone);
        EXPECT_EQ(ring.pieces.size(), room - 1 < 3 ? room - 1 : 3);
        const List fromStart = decompose(kChain, 0, {{0, 0.0}, {1, 0.5}}, room);
        EXPECT_TRUE(fromStart.isDone);
        EXPECT_EQ(fromStart.pieces.size(), room - 1 < 2 ? room - 1 : 2);
    }
}

TEST(PolyDecompose, SnapsEachPosition) {
    const Positions positions{{0, 0.75}, {1, 0.5}};
    EXPECT_EQ(decompose(kSquare, 1, positions, 9, 3.0).pieces,
              (Pieces{{{10, 0}, {10, 5}}, {{10, 5}, {10, 10}, {0, 10}, {0, 0}, {10, 0}}}));
    EXPECT_EQ(decompose(kSquare, 1, positions, 9, kNoValue).pieces,
              (Pieces{{{8, 0}, {10, 0}, {10, 5}}, {{10, 5}, {10, 10}, {0, 10}, {0, 0}, {8, 0}}}));
}

TEST(PolyDecompose, FreesAllPiecesWhenOneCannotBeMade) {
    const Positions positions{{0, 0.5}, {1, 0.5}, {kNowhere, 0.0}, {2, 0.5}};
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    void* handles[8];
    for (const int closed : {0, 1}) {
        std::fill(std::begin(handles), std::end(handles), kUntouched);
        DWORD number = 99;
        EXPECT_FALSE(polyDecompose(kSquare.data(), 5, closed, 0.0, positions.data(), 4, handles, 8, &number));
        EXPECT_EQ(number, 0U);
        // Two or three pieces were made: the one to nowhere is a single point.
        const int made = closed != 0 ? 2 : 3;
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(handles[i], i < made ? nullptr : kUntouched) << i;
    }
    EXPECT_EQ(velquad::test::liveAllocations(), before);
}

TEST(PolyDecompose, RefusesMissingArguments) {
    const tagPOLY_POSITION position{0, 0.5};
    void* handles[2] = {kUntouched, kUntouched};
    DWORD number = 99;
    EXPECT_FALSE(polyDecompose(nullptr, 5, 1, 0.0, &position, 1, handles, 2, &number));
    EXPECT_EQ(number, 0U);
    EXPECT_FALSE(polyDecompose(kSquare.data(), 5, 1, 0.0, nullptr, 1, handles, 2, &number));
    EXPECT_FALSE(polyDecompose(kSquare.data(), 5, 1, 0.0, &position, 0, handles, 2, &number));
    EXPECT_FALSE(polyDecompose(kSquare.data(), 5, 1, 0.0, &position, 1, nullptr, 2, &number));
    EXPECT_FALSE(polyDecompose(kSquare.data(), 5, 1, 0.0, &position, 1, handles, 0, &number));
    EXPECT_FALSE(polyDecompose(kSquare.data(), 5, 1, 0.0, &position, 1, handles, 2, nullptr));
    EXPECT_FALSE(polyDecompose(kSquare.data(), 1, 1, 0.0, &position, 1, handles, 2, &number));
    EXPECT_EQ(handles[0], kUntouched);
    EXPECT_EQ(handles[1], kUntouched);
}

TEST(PolyDecompose, WithoutMemoryLeavesNothingBehind) {
    for (const int closed : {0, 1}) {
        const std::size_t allocations = velquad::test::forEachFailingAllocation([closed] {
            const tagPOLY_POSITION positions[] = {{0, 0.5}, {1, 0.5}, {2, 0.5}};
            void* handles[6] = {};
            DWORD number = 99;
            const bool isDone =
                polyDecompose(kSquare.data(), 5, closed, 0.0, positions, 3, handles, 6, &number);
            if (isDone) {
                for (DWORD i = 0; i < number; ++i)
                    polyFree(handles[i]);
                return false;
            }
            bool isEmpty = number == 0;
            for (void* handle : handles)
                isEmpty = isEmpty && handle == nullptr;
            return isEmpty;
        });
        EXPECT_GE(allocations, 3U);
    }
}

/// Positions on outlines of few points, sorted or not, now and then nowhere.
void expectReference(unsigned seed, int rounds, unsigned side, int scale, std::int64_t shift) {
    std::mt19937 random(seed);
    const auto coordinate = [&] {
        return static_cast<LONG>(
            velquad::test::reference::wrapped(static_cast<std::int64_t>(random() % side) * scale + shift));
    };
    const double fractions[] = {0.0,  0.5,       0.25,    1.0,      0.999999, 1e-7,         0.5e-7,   -0.5e-7,
                                -0.5, 1.0000001, 0.75001, kNoValue, 7.5,      0.5 + 0.5e-7, 1.0 / 3.0};
    int failures = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
        Outline outline(2 + random() % 8);
        for (tagPOINT& p : outline)
            p = {coordinate(), coordinate()};
        if (random() % 3 != 0) outline.back() = outline.front();
        const bool closed = random() % 2 != 0;
        Positions positions(1 + random() % 5);
        for (tagPOLY_POSITION& position : positions) {
            const DWORD index = static_cast<DWORD>(random() % (outline.size() + (random() % 8 == 0 ? 2 : 0)));
            position = {random() % 40 == 0 ? kNowhere : index, fractions[random() % std::size(fractions)]};
            if (position.fraction == kNoValue && random() % 4 != 0) position.fraction = 0.125;
        }
        if (random() % 3 != 0) {
            positions.resize(polySortPositions(positions.data(), static_cast<DWORD>(positions.size()),
                                               static_cast<int>(random() % 2)));
        }
        const double tolerances[] = {0.0, kNoValue, 0.5 * scale, 1.5 * scale};
        const double tolerance = tolerances[random() % std::size(tolerances)];
        const tagPOLY_POSITION& other = positions.back();
        const auto expectedArcs =
            velquad::test::reference::decompose(outline, closed, tolerance, positions[0], other);
        const Arcs actualArcs = arcs(outline, closed ? 1 : 0, positions[0], other, tolerance);
        ASSERT_EQ(actualArcs.isDone, expectedArcs.has_value());
        if (expectedArcs) {
            ASSERT_EQ(actualArcs.first, velquad::test::coordinatesOf(expectedArcs->first));
            if (closed) {
                ASSERT_EQ(actualArcs.second, velquad::test::coordinatesOf(expectedArcs->second));
            }
        }
        const auto room = static_cast<DWORD>(1 + random() % 8);
        const auto expected =
            velquad::test::reference::decompose(outline, closed, tolerance, positions, room);
        const List actual = decompose(outline, closed ? 1 : 0, positions, room, tolerance);
        ASSERT_EQ(actual.isDone, expected.has_value());
        failures += actual.isDone ? 0 : 1;
        if (!expected) continue;
        ASSERT_EQ(actual.pieces.size(), expected->size());
        for (std::size_t i = 0; i < expected->size(); ++i)
            ASSERT_EQ(actual.pieces[i], velquad::test::coordinatesOf((*expected)[i])) << "piece " << i;
    }
    EXPECT_GT(failures, rounds / 100);
    EXPECT_LT(failures, rounds / 2);
}

TEST(PolyDecompose, MatchesTheStepsOnGrids) {
    expectReference(2411, 15000, 4, 1, 0);
    expectReference(2412, 15000, 40, 3, -50);
    expectReference(2413, 10000, 9, 1001, -4000);
}

TEST(PolyDecompose, MatchesTheStepsWhereDifferencesWrapAround) {
    expectReference(2414, 10000, 5, 1 << 30, INT_MIN);
}

}  // namespace
