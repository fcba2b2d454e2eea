// Whether outlines are simple, and which edges are at fault first.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <ostream>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/outline.h"
#include "tests/support/random_outline.h"
#include "tests/support/simplicity_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::outlineOf;
using velquad::test::RandomOutline;
using velquad::test::reference::Fault;
using velquad::test::reference::findFault;
using velquad::test::reference::IntegerFamily;
using velquad::test::reference::Outline;

constexpr DWORD kUntouched = 0xABCDU;

struct Answer {
    int isSimple;
    DWORD first;
    DWORD second;

    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << answer.isSimple << " (" << answer.first << ", " << answer.second << ")";
}

const Answer kSimple{1, kUntouched, kUntouched};

Answer faultAt(DWORD first, DWORD second) {
    return {0, first, second};
}

Answer answer(const Outline& points, int closed) {
    Answer result{-1, kUntouched, kUntouched};
    result.isSimple =
        polyIsSimple(points.data(), static_cast<DWORD>(points.size()), closed, &result.first, &result.second);
    return result;
}

Answer answer(const Coordinates& points, int closed) {
    return answer(outlineOf(points), closed);
}

Answer reference(const Outline& points, bool closed) {
    const Fault fault = findFault<IntegerFamily>(points, closed);
    if (!fault.exists) return kSimple;
    return faultAt(static_cast<DWORD>(fault.first), static_cast<DWORD>(fault.second));
}

TEST(PolyIsSimple, AllPointsEqualAreSimple) {
    for (std::size_t count = 1; count <= 5; ++count) {
        const Outline points(count, tagPOINT{7, -3});
        EXPECT_EQ(answer(points, 0), kSimple);
        EXPECT_EQ(answer(points, 1), kSimple);
    }
}

TEST(PolyIsSimple, NoPointsAreSimple) {
    EXPECT_EQ(polyIsSimple(nullptr, 0, 1, nullptr, nullptr), 1);
}

TEST(PolyIsSimple, SquareIsSimpleWithAndWithoutClosingPoints) {
    Coordinates square{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    for (int closingPoints = 0; closingPoints < 3; ++closingPoints) {
        EXPECT_EQ(answer(square, 1), kSimple);
        EXPECT_EQ(answer(square, 0), kSimple);
        square.push_back(square.front());
    }
}

TEST(PolyIsSimple, TwoPointsAreAnEdgeWhenOpenAndFoldBackWhenClosed) {
    EXPECT_EQ(answer(Coordinates{{0, 0}, {5, 2}}, 0), kSimple);
    EXPECT_EQ(answer(Coordinates{{0, 0}, {5, 2}}, 1), faultAt(0, 1));
    EXPECT_EQ(answer(Coordinates{{0, 0}, {5, 2}, {0, 0}}, 0), kSimple) << "the closing point is left out";
}

TEST(PolyIsSimple, FigureOfEightNamesItsCrossingEdges) {
    const Coordinates eight{{0, 0}, {10, 10}, {10, 0}, {0, 10}};
    EXPECT_EQ(answer(eight, 1), faultAt(0, 2));
    EXPECT_EQ(answer(eight, 0), faultAt(0, 2));
    EXPECT_EQ(answer(Coordinates{{10, 10}, {10, 0}, {0, 10}, {0, 0}}, 1), faultAt(1, 3));
    EXPECT_EQ(answer(Coordinates{{10, 10}, {10, 0}, {0, 10}, {0, 0}}, 0), kSimple) << "no closing edge";
}

TEST(PolyIsSimple, OutputsAreOptional) {
    const Outline eight = outlineOf({{0, 0}, {10, 10}, {10, 0}, {0, 10}});
    DWORD edge = kUntouched;
    EXPECT_EQ(polyIsSimple(eight.data(), 4, 1, nullptr, nullptr), 0);
    EXPECT_EQ(polyIsSimple(eight.data(), 4, 1, &edge, nullptr), 0);
    EXPECT_EQ(edge, 0U);
    EXPECT_EQ(polyIsSimple(eight.data(), 4, 1, nullptr, &edge), 0);
    EXPECT_EQ(edge, 2U);
}

TEST(PolyIsSimple, FlagIsTestedForZero) {
    const Outline closedOnly = outlineOf({{10, 10}, {10, 0}, {0, 10}, {0, 0}});
    EXPECT_EQ(polyIsSimple(closedOnly.data(), 4, -1, nullptr, nullptr), 0);
    EXPECT_EQ(polyIsSimple(closedOnly.data(), 4, 256, nullptr, nullptr), 0);
}

TEST(PolyIsSimple, FirstFaultIsThatOfTheLowestFirstAndThenSecondEdge) {
    // The edge 1 is crossed by 3 and by 5, and 5 also crosses 3.
    EXPECT_EQ(answer(Coordinates{{0, -50}, {0, 0}, {30, 0}, {30, 5}, {5, -5}, {1, 20}, {25, -20}}, 0),
              faultAt(1, 3));
}

TEST(PolyIsSimple, IndicesCountTheLeadingRepeats) {
    const Coordinates eight{{0, 0}, {0, 0}, {0, 0}, {10, 10}, {10, 0}, {0, 10}};
    EXPECT_EQ(answer(eight, 1), faultAt(2, 4));
}

TEST(PolyIsSimple, RepeatsWithinAreNoEdgesAndKeepTheirIndices) {
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}}, 1), kSimple);
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 10}, {10, 10}, {10, 0}, {10, 0}, {0, 10}}, 1), faultAt(0, 4));
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 0}, {4, 0}}, 0), faultAt(0, 2)) << "still neighbours";
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 0}, {14, 0}}, 0), kSimple);
}

TEST(PolyIsSimple, TrailingRepeatsAreLeftOut) {
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 10}, {10, 10}}, 1), kSimple);
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 0}, {0, 0}}, 1), kSimple);
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 0}, {0, 0}}, 1), faultAt(0, 1)) << "two points remain";
}

TEST(PolyIsSimple, ChainMayGoStraightOnButNotFoldBack) {
    EXPECT_EQ(answer(Coordinates{{0, 0}, {5, 0}, {9, 0}}, 0), kSimple);
    EXPECT_EQ(answer(Coordinates{{0, 0}, {5, 5}, {6, 6}}, 0), kSimple);
    EXPECT_EQ(answer(Coordinates{{0, 0}, {5, 0}, {2, 0}}, 0), faultAt(0, 1));
    EXPECT_EQ(answer(Coordinates{{0, 0}, {5, 0}, {-2, 0}}, 0), faultAt(0, 1));
}

TEST(PolyIsSimple, ClosingEdgeMayMeetTheFirstEdgeOnlyAtTheirVertex) {
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {5, 10}}, 1), kSimple);
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 10}, {-5, 10}, {-5, 0}}, 1), kSimple)
        << "the closing edge leads straight on into the first one";
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 10}, {5, 10}, {5, 0}}, 1), faultAt(0, 3))
        << "the edge before the closing one touches the first";
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 10}, {20, 10}, {20, 0}}, 1), faultAt(0, 4))
        << "the closing edge runs over the first one";
}

TEST(PolyIsSimple, ChainFoldsBackUnlessItEndsBeyondTheToleranceOfTheEdge) {
    // Straight on by one pixel, which is 1 + 1 / size on the edge; 1.0000001 goes on.
    const auto chain = [](int size) { return Coordinates{{0, 0}, {size, 0}, {size + 1, 0}}; };
    EXPECT_EQ(answer(chain(9999999), 0), kSimple);
    EXPECT_EQ(answer(chain(10000000), 0), kSimple);
    EXPECT_EQ(answer(chain(10000001), 0), faultAt(0, 1));
}

TEST(PolyIsSimple, ClosingEdgeOverlapsUnlessItStartsBeyondTheToleranceOfTheFirstEdge) {
    // The closing edge leads straight on from one pixel before the first edge, at -1 / size of it.
    const auto outline = [](int size) { return Coordinates{{0, 0}, {size, 0}, {size, 5}, {-1, 5}, {-1, 0}}; };
    EXPECT_EQ(answer(outline(9999999), 1), kSimple);
    EXPECT_EQ(answer(outline(10000000), 1), kSimple) << "exactly -1e-7";
    EXPECT_EQ(answer(outline(10000001), 1), faultAt(0, 4));
}

TEST(PolyIsSimple, ClosingEdgeHasNoPrivilegeWithOtherEdges) {
    // The first vertex lies on edge 2, and so do edge 0 and the closing edge 4.
    EXPECT_EQ(answer(Coordinates{{5, 0}, {5, 9}, {20, 0}, {0, 0}, {0, 9}}, 1), faultAt(0, 2));
    EXPECT_EQ(answer(Coordinates{{5, 9}, {20, 0}, {0, 0}, {0, 9}, {5, 0}}, 1), faultAt(1, 3));
}

TEST(PolyIsSimple, TouchingIsAFault) {
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 5}, {5, 0}, {0, 5}}, 1), faultAt(0, 2));
    EXPECT_EQ(answer(Coordinates{{0, 0}, {10, 0}, {10, 5}, {5, 1}, {0, 5}}, 1), kSimple);
}

TEST(PolyIsSimple, OverlappingEdgesOfOneLineAreAFault) {
    // Edge 0 is (0, 0)-(10, 0); edge 3 lies on its line.
    const auto withEdge = [](int from, int to) {
        return Coordinates{{0, 0}, {10, 0}, {10, 9}, {from, 0}, {to, 0}};
    };
    EXPECT_EQ(answer(withEdge(2, 8), 0), faultAt(0, 2)) << "edge 2 arrives on edge 0";
    const auto beside = [](int from, int to) {
        return Coordinates{{0, 0}, {10, 0}, {20, -9}, {from, 0}, {to, 0}};
    };
    EXPECT_EQ(answer(beside(20, 30), 0), kSimple);
    EXPECT_EQ(answer(beside(20, 11), 0), kSimple);
    EXPECT_EQ(answer(beside(20, 10), 0), faultAt(0, 3)) << "the end is touched";
    EXPECT_EQ(answer(beside(20, -5), 0), faultAt(0, 3)) << "run over";
}

TEST(PolyIsSimple, EdgesThatMissEachOtherWithinTheToleranceMeet) {
    // Edge 2 crosses the line of edge 0 at 1 + 1 / (4000 * size) of it; 1e-7 is the strict limit.
    const auto chain = [](int size) {
        return Coordinates{{5000 - size, 5000 - size}, {5000, 5000}, {4001, 6000}, {6000, 3999}};
    };
    EXPECT_EQ(answer(chain(2501), 0), faultAt(0, 2));
    EXPECT_EQ(answer(chain(2500), 0), kSimple) << "exactly 1e-7 beyond the end of edge 0";
    EXPECT_EQ(answer(chain(2499), 0), kSimple);
}

/// The points with `pieces` more between point `before` and the next one.
Coordinates refined(const Coordinates& points, std::size_t before, int pieces) {
    Coordinates result;
    for (std::size_t i = 0; i < points.size(); ++i) {
        result.push_back(points[i]);
        for (int k = 1; i == before && k <= pieces; ++k) {
            const auto& [x, y] = points[i];
            const auto& [nextX, nextY] = points[i + 1];
            result.emplace_back(x + (nextX - x) * k / (pieces + 1), y + (nextY - y) * k / (pieces + 1));
        }
    }
    return result;
}

TEST(PolyIsSimple, FindsContactWithinTheToleranceInLongChainsToo) {
    // As above, with an edge between the two in pieces, which puts them far apart in the chain. The edge behind edge 0
    // is short, so that it stays off the last one.
    const auto chain = [](int size, int pieces) {
        const Coordinates coarse{{5000 - size, 5000 - size},
                                 {5000, 5000},
                                 {4900, 5000},
                                 {-9000, 5000},
                                 {-9000, 9000},
                                 {4001, 6000},
                                 {6000, 3999}};
        return refined(coarse, 2, pieces);
    };
    for (const int pieces : {0, 29, 60, 200}) {
        const auto second = static_cast<DWORD>(5 + pieces);
        EXPECT_EQ(answer(chain(2501, pieces), 0), faultAt(0, second)) << pieces;
        EXPECT_EQ(answer(chain(2500, pieces), 0), kSimple) << pieces;
    }
}

TEST(PolyIsSimple, ComputesWithWrapAround) {
    // The determinant of the directions, 65536 * 65536, is 0 in 32 bits, so that the edges count as parallel.
    const Coordinates cross{{0, 0}, {65536, 0}, {65536, 32768}, {32768, 32768}, {32768, -32768}};
    EXPECT_EQ(answer(cross, 0), reference(outlineOf(cross), false));
    EXPECT_EQ(answer(cross, 0), kSimple);
    const Coordinates smallCross{{0, 0}, {6552, 0}, {6552, 3276}, {3276, 3276}, {3276, -3276}};
    EXPECT_EQ(answer(smallCross, 0), faultAt(0, 3));
}

TEST(PolyIsSimple, WorksAtTheEndsOfTheRange) {
    const Coordinates square{{INT_MIN, INT_MIN}, {INT_MAX, INT_MIN}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MAX}};
    EXPECT_EQ(answer(square, 1), reference(outlineOf(square), true));
    const Coordinates corner{
        {INT_MAX - 9, INT_MAX - 9}, {INT_MAX, INT_MAX - 9}, {INT_MAX, INT_MAX}, {INT_MAX - 9, INT_MAX}};
    EXPECT_EQ(answer(corner, 1), kSimple);
}

/// A ragged star whose corners alternate between two radii, `count` points.
Outline star(int count, double innerRadius, double outerRadius) {
    Outline points;
    for (int k = 0; k < count; ++k) {
        const double angle = 6.283185307179586 * k / count;
        const double radius = k % 2 == 0 ? innerRadius : outerRadius - 5.0 * (k % 14);
        points.push_back({static_cast<LONG>(std::lround(radius * std::cos(angle))),
                          static_cast<LONG>(std::lround(radius * std::sin(angle)))});
    }
    return points;
}

TEST(PolyIsSimple, OfLongStarsFindsEveryFaultThatThePairLoopFinds) {
    const Outline simple = star(1400, 9000.0, 15000.0);
    ASSERT_EQ(answer(simple, 1), kSimple);
    ASSERT_EQ(reference(simple, true), kSimple);
    for (const std::size_t moved : {0U, 1U, 7U, 8U, 63U, 700U, 701U, 1023U, 1398U, 1399U}) {
        for (const std::size_t onto : {0U, 5U, 690U, 1024U, 1399U}) {
            Outline broken = simple;
            broken[moved] = simple[onto];
            EXPECT_EQ(answer(broken, 1), reference(broken, true)) << moved << " onto " << onto;
            EXPECT_EQ(answer(broken, 0), reference(broken, false)) << moved << " onto " << onto;
        }
    }
}

void expectReferences(unsigned seed, int rounds, int largestCount) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    RandomOutline random(seed);
    int simple = 0;
    for (int round = 0; round < rounds; ++round) {
        const Outline points = random.outline(largestCount);
        const Answer open = reference(points, false);
        ASSERT_EQ(answer(points, 0), open) << "round " << round;
        ASSERT_EQ(answer(points, 1), reference(points, true)) << "round " << round;
        simple += open.isSimple;
    }
    EXPECT_GT(simple, rounds / 20);
    EXPECT_LT(simple, rounds - rounds / 20);
}

TEST(PolyIsSimple, MatchesThePairLoopOnSmallOutlines) {
    expectReferences(1, 30000, 12);
}

TEST(PolyIsSimple, MatchesThePairLoopOnOutlinesOfAFewLeaves) {
    expectReferences(2, 20000, 90);
}

TEST(PolyIsSimple, MatchesThePairLoopOnLongOutlines) {
    expectReferences(3, 2000, 700);
}

TEST(PolyIsSimple, GivesTheSameAnswerWithoutMemory) {
    RandomOutline random(4);
    for (int round = 0; round < 300; ++round) {
        const Outline points = random.outline(300);
        const Answer expected = answer(points, 1);
        for (std::size_t number = 1; number <= 3; ++number) {
            const auto alive = velquad::test::liveAllocations();
            velquad::test::failAllocation(number);
            const Answer withoutMemory = answer(points, 1);
            velquad::test::failAllocation(0);
            EXPECT_EQ(withoutMemory, expected) << "round " << round;
            EXPECT_EQ(velquad::test::liveAllocations(), alive);
        }
    }
}

}  // namespace
