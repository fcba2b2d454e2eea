// Simplicity of an outline of doubles, its repair, and the length of its runs.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/polygon2d_reference.h"
#include "tests/support/random_outline_2d.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::RandomOutline2D;
using velquad::test::reference2d::Fault;
using velquad::test::reference2d::Outline;
using velquad::test::reference2d::Repair;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kBelowTolerance = std::nextafter(1e-7, 0.0);

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

int isSimple(const Outline& outline, int closed) {
    return poly2dIsSimple(outline.data(), countOf(outline), closed, nullptr, nullptr);
}

/// -1 for a simple outline, else 1000 * the first edge + the second one.
int faultOf(const Outline& outline, int closed) {
    DWORD first = 77;
    DWORD second = 77;
    const int result = poly2dIsSimple(outline.data(), countOf(outline), closed, &first, &second);
    if (result == 1) {
        EXPECT_EQ(first, 77U) << "outputs of a simple outline are left alone";
        EXPECT_EQ(second, 77U);
        return -1;
    }
    EXPECT_EQ(result, 0);
    EXPECT_LT(first, second);
    return static_cast<int>(1000 * first + second);
}

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

void expectPoints(const Outline& actual, const Outline& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(bits(actual[i].x), bits(expected[i].x)) << "point " << i;
        ASSERT_EQ(bits(actual[i].y), bits(expected[i].y)) << "point " << i;
    }
}

const Outline kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Outline kClosedSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
/// Edges 0 and 2 cross at (5, 5).
const Outline kEight{{0, 0}, {10, 10}, {10, 0}, {0, 10}};

TEST(Poly2dIsSimple, OfSquares) {
    EXPECT_EQ(isSimple(kSquare, 1), 1);
    EXPECT_EQ(isSimple(kSquare, 0), 1);
    EXPECT_EQ(isSimple(kClosedSquare, 1), 1) << "the closing point is left out";
    EXPECT_EQ(isSimple(kClosedSquare, 0), 1);
}

TEST(Poly2dIsSimple, OfPointsThatAreOne) {
    EXPECT_EQ(isSimple({}, 1), 1);
    EXPECT_EQ(isSimple({{3, 4}}, 1), 1);
    EXPECT_EQ(isSimple({{3, 4}, {3 + 5e-8, 4 - 5e-8}, {3, 4}}, 1), 1);
    EXPECT_EQ(isSimple({{3, 4}, {3 + 1e-6, 4}}, 1), 0) << "there and back";
    EXPECT_EQ(isSimple({{3, 4}, {3 + 1e-6, 4}}, 0), 1);
}

TEST(Poly2dIsSimple, NamesTheFirstTwoEdgesAtFault) {
    EXPECT_EQ(faultOf(kEight, 1), 2);
    EXPECT_EQ(faultOf(kEight, 0), 2);
    EXPECT_EQ(faultOf({{0, 0}, {5e-8, 0}, {10, 10}, {10, 0}, {0, 10}}, 1), 1003) << "of the caller's points";
}

TEST(Poly2dIsSimple, TakesEitherOutputAlone) {
    DWORD index = 0;
    EXPECT_EQ(poly2dIsSimple(kEight.data(), 4, 1, nullptr, &index), 0);
    EXPECT_EQ(index, 2U);
    EXPECT_EQ(poly2dIsSimple(kEight.data(), 4, 1, &index, nullptr), 0);
    EXPECT_EQ(index, 0U);
}

TEST(Poly2dIsSimple, GoesStraightOnButNotBack) {
    EXPECT_EQ(faultOf({{0, 0}, {5, 0}, {10, 0}}, 0), -1);
    EXPECT_EQ(faultOf({{0, 0}, {5, 0}, {3, 0}}, 0), 1);
    EXPECT_EQ(faultOf({{0, 0}, {5, 0}, {-3, 0}}, 0), 1);
    EXPECT_EQ(faultOf({{0, 0}, {5, 0}, {5, 0}, {3, 0}}, 0), 2) << "an edge without length stands between";
}

TEST(Poly2dIsSimple, FirstEdgeOfAContactIsHalfOpen) {
    // The third edge ends on the inside of the first one.
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 5}, {5, 0}}, 0), 2);
    // It ends on the start of the first one, which belongs to it ...
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 5}, {0, 0}, {0, 9}}, 0), 2);
    // ... and on its end, which belongs to the edge behind.
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 5}, {5, 5}, {10, 0}}, 0), 1003);
    // The last edge of a chain has nothing behind it, but here it is the second one of the pair.
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 1e-8}}, 0), 3);
    // As the first one of a pair the end of an edge touches nothing: edge 1 ends within edge 3, where edge 2 begins.
    EXPECT_EQ(faultOf({{0, 0}, {5, 5}, {10, 0}, {20, 5}, {20, 0}, {-5, 0}}, 0), 4);
}

TEST(Poly2dIsSimple, SecondEdgeReachesALittleFarther) {
    const auto withLastEdgeFrom = [](double y) {
        return faultOf({{0, 0}, {10, 0}, {10, 5}, {5, 1 + y}, {5, y}}, 0);
    };
    EXPECT_EQ(withLastEdgeFrom(0.9e-7), 3);
    EXPECT_EQ(withLastEdgeFrom(1.1e-7), -1);
}

TEST(Poly2dIsSimple, OverlappingEdgesOfOneLineAreAFault) {
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 5}, {12, 5}, {12, 0}, {5, 0}}, 0), 4);
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 5}, {20, 5}, {20, 0}, {12, 0}}, 0), -1) << "apart on one line";
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 5}, {-9, 5}, {-9, 0}, {-1, 0}}, 0), -1) << "apart before it";
}

TEST(Poly2dIsSimple, ClosingEdgeMayMeetTheFirstOneAtItsStart) {
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 10}}, 1), -1);
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 10}, {5, 0}}, 1), 2) << "but not along it";
    EXPECT_EQ(faultOf({{0, 0}, {10, 0}, {10, 10}, {-5, 0}}, 1), -1) << "straight on is right";
}

TEST(Poly2dIsSimple, PointsWithoutNumbersMeetNothing) {
    EXPECT_EQ(isSimple({{kNaN, 0}, {10, 10}, {10, 0}, {0, 10}}, 1), 1);
    EXPECT_EQ(isSimple({{0, 0}, {kInfinity, kInfinity}, {kInfinity, 0}, {0, 10}}, 1), 1);
    EXPECT_EQ(faultOf({{0, 0}, {10, 10}, {10, 0}, {0, 10}, {kNaN, kNaN}}, 1), 2);
}

void expectReferenceFault(const Outline& outline, bool closed) {
    const Fault expected = velquad::test::reference2d::firstFault(outline, closed);
    DWORD first = 0;
    DWORD second = 0;
    const int result = poly2dIsSimple(outline.data(), countOf(outline), closed ? 1 : 0, &first, &second);
    ASSERT_EQ(result, expected.isFound ? 0 : 1);
    ASSERT_EQ(first, expected.first);
    ASSERT_EQ(second, expected.second);
}

TEST(Poly2dIsSimple, MatchesThePairLoopAtEveryTolerance) {
    unsigned seed = 3200;
    int simple = 0;
    for (const RandomOutline2D::Grid& grid : velquad::test::kRandomGrids2D) {
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 6000; ++round) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
            const Outline outline = random.outline(1, random.below(3) == 0 ? 7 : 4);
            const bool closed = random.below(2) != 0;
            simple += isSimple(outline, closed ? 1 : 0);
            expectReferenceFault(outline, closed);
            if (HasFatalFailure()) return;
        }
    }
    EXPECT_GT(simple, 10000);
}

TEST(Poly2dIsSimple, MatchesThePairLoopOnLongOutlines) {
    std::mt19937 random(3300);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    int simple = 0;
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 3300, round " << round);
        // A ragged star; now and then a spoke leaves its place, a point comes again, or a run lies on one line.
        Outline outline;
        const int count = 40 + static_cast<int>(random() % 200);
        const double scale = std::pow(10.0, static_cast<int>(random() % 12) - 5);
        for (int k = 0; k < count; ++k) {
            const double angle = 6.283185307179586 * k / count;
            const double radius = scale * (1.0 + 0.3 * unit(random));
            outline.push_back({radius * std::cos(angle), radius * std::sin(angle)});
            if (random() % 300 == 0) outline.back().x *= -1.0;
            if (random() % 500 == 0) outline.back() = outline[random() % outline.size()];
            if (random() % 40 == 0) outline.push_back(outline.back());
            if (random() % 40 == 0) {
                const tagPOINT2D& a = outline[outline.size() - 1];
                const tagPOINT2D& b = outline[outline.size() > 1 ? outline.size() - 2 : 0];
                outline.insert(outline.end() - 1, {(a.x + b.x) * 0.5, (a.y + b.y) * 0.5});
            }
        }
        if (random() % 2 == 0) outline.push_back(outline.front());
        const bool closed = random() % 2 == 0;
        simple += isSimple(outline, closed ? 1 : 0);
        expectReferenceFault(outline, closed);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(simple, 300);
    EXPECT_LT(simple, 1300);
}

TEST(Poly2dIsSimple, MatchesThePairLoopOnCrowdedOutlines) {
    // Long and on few cells: every edge has many others around it, with each kind of contact.
    unsigned seed = 3400;
    for (RandomOutline2D::Grid grid : velquad::test::kRandomGrids2D) {
        grid.side = 400;
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 100; ++round) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
            // A comb of short edges, so that most pairs are apart and the first fault comes late.
            Outline outline;
            for (int k = 0; k < 120; ++k) {
                const tagPOINT2D off = random.point();
                outline.push_back({k * 10.0 * grid.spacing + off.x * 0.02, off.y * 0.02});
            }
            expectReferenceFault(outline, round % 2 == 0);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Poly2dIsSimple, WithoutMemoryGivesTheSameAnswer) {
    Outline outline;
    for (int k = 0; k < 200; ++k)
        outline.push_back({k * 1.0, k % 2 * 3.0});
    outline.push_back({100.25, -1.0});
    outline.push_back({100.25, 9.0});
    const int expected = faultOf(outline, 0);
    EXPECT_GE(expected, 1000);
    for (std::size_t number = 1; number < 4; ++number) {
        velquad::test::failAllocation(number);
        const int actual = faultOf(outline, 0);
        velquad::test::failAllocation(0);
        EXPECT_EQ(actual, expected);
    }
}

DWORD makeSimple(Outline& outline, double limit) {
    return poly2dMakeSimple(outline.data(), countOf(outline), limit);
}

/// A loop of length 4 + 2 * sqrt(2) hangs on a square of side 10: edges 1 and 4 cross at (10, 5).
const Outline kSquareWithLoop{{0, 0}, {10, 0}, {10, 6}, {11, 6}, {11, 5}, {9, 5}, {9, 10}, {0, 10}, {0, 0}};

TEST(Poly2dMakeSimple, CutsTheSmallerSideOff) {
    Outline outline = kSquareWithLoop;
    ASSERT_EQ(faultOf(outline, 1), 1004);
    EXPECT_EQ(makeSimple(outline, 1000.0), 6U);
    outline.resize(6);
    expectPoints(outline, {{0, 0}, {10, 0}, {9, 5}, {9, 10}, {0, 10}, {0, 0}});
}

TEST(Poly2dMakeSimple, KeepsTheLoopWhenTheRestIsSmaller) {
    // The same figure, entered at the loop: the part between the edges at fault is the square. Of it stay the points
    // between the starts of the two edges.
    Outline outline{{11, 6}, {11, 5}, {9, 5}, {9, 10}, {0, 10}, {0, 0}, {10, 0}, {10, 6}, {11, 6}};
    ASSERT_EQ(faultOf(outline, 1), 1006);
    EXPECT_EQ(makeSimple(outline, 1000.0), 5U);
    outline.resize(5);
    expectPoints(outline, {{9, 5}, {9, 10}, {0, 10}, {0, 0}, {9, 5}});
}

TEST(Poly2dMakeSimple, OfEqualSidesKeepsTheLoop) {
    // Two triangles that share the crossing point: both sides measure the same.
    Outline outline{{0, 0}, {4, 3}, {4, 0}, {0, 3}, {0, 0}};
    ASSERT_EQ(faultOf(outline, 1), 2);
    // The loop, from point 0 to point 2, is 5 + 3 long; so is the rest.
    EXPECT_EQ(poly2dGetMiniVecCount(outline.data(), 5, 0, 2, 0), 8.0);
    EXPECT_EQ(poly2dGetMiniVecCount(outline.data(), 5, 0, 4, 0), 16.0);
    EXPECT_EQ(makeSimple(outline, 9.0), 1U) << "one point stands between the edges; it closes itself";
    EXPECT_EQ(outline[0].x, 4.0);
    EXPECT_EQ(outline[0].y, 3.0);
}

TEST(Poly2dMakeSimple, RefusesSidesOfTheLimitAndAbove) {
    const Outline eight{{0, 0}, {4, 3}, {4, 0}, {0, 3}, {0, 0}};
    Outline outline = eight;
    EXPECT_EQ(makeSimple(outline, 8.0), 0U) << "8 is not below 8";
    expectPoints(outline, eight);
    EXPECT_EQ(makeSimple(outline, 0.0), 0U);
    EXPECT_EQ(makeSimple(outline, std::nextafter(8.0, 9.0)), 1U);
}

TEST(Poly2dMakeSimple, OneSideBelowTheLimitIsEnough) {
    // The loop from point 1 to point 4 measures 6 + 1 + 1 = 8.
    Outline outline = kSquareWithLoop;
    EXPECT_EQ(poly2dGetMiniVecCount(outline.data(), 9, 1, 4, 0), 8.0);
    EXPECT_EQ(makeSimple(outline, 8.0), 0U);
    expectPoints(outline, kSquareWithLoop);
    EXPECT_EQ(makeSimple(outline, std::nextafter(8.0, 9.0)), 6U);
}

TEST(Poly2dMakeSimple, CountsAClosingPointThatItDoesNotWrite) {
    Outline outline = kSquare;
    outline.push_back({77, 77});
    EXPECT_EQ(poly2dMakeSimple(outline.data(), 4, 1000.0), 5U);
    expectPoints(outline, {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {77, 77}});
    Outline open(kSquareWithLoop.begin(), kSquareWithLoop.end() - 1);
    open.push_back({77, 77});
    EXPECT_EQ(poly2dMakeSimple(open.data(), 8, 1000.0), 6U);
    EXPECT_EQ(open[4].y, 10.0);
    EXPECT_EQ(open[5].x, 9.0) << "the sixth point is the old one";
    EXPECT_EQ(open[8].x, 77.0);
}

TEST(Poly2dMakeSimple, ClosesWithinTheTolerance) {
    Outline outline{{0, 0}, {0.1, 0}, {0.1, 0.1}, {0, 0.1}, {0, kBelowTolerance}};
    EXPECT_EQ(makeSimple(outline, 1000.0), 5U) << "closed already";
    Outline open{{0, 0}, {0.1, 0}, {0.1, 0.1}, {0, 0.1}, {0, 1e-7}};
    EXPECT_EQ(makeSimple(open, 1000.0), 6U);
    const Outline both{{0, 0}, {0.1, 0}, {0.1, 0.1}, {0, 0.1}, {5e-8, 5e-8}};
    Outline kept = both;
    EXPECT_EQ(makeSimple(kept, 1000.0), 5U) << "closed in both coordinates";
    EXPECT_EQ(poly2dMakeSimpleEx(kept.data(), 5, 1, 1000.0), 5U);
    EXPECT_EQ(poly2dMakeSimpleEx(kept.data(), 5, 0, 0.0), 5U) << "nor is it a fault of an open chain";
    expectPoints(kept, both);
}

TEST(Poly2dMakeSimple, GivesUpWhenNothingWouldBeLeft) {
    // Two edges that fold back on one another, and no smaller side: nothing stands between them.
    const Outline there{{0, 0}, {5, 0}, {0, 0}};
    Outline outline = there;
    EXPECT_EQ(makeSimple(outline, 1000.0), 0U);
    expectPoints(outline, there);
}

TEST(Poly2dMakeSimple, OfNothingIsZero) {
    EXPECT_EQ(poly2dMakeSimple(nullptr, 0, 9.0), 0U);
    EXPECT_EQ(poly2dMakeSimple(nullptr, 5, 9.0), 0U);
    tagPOINT2D point{1, 2};
    EXPECT_EQ(poly2dMakeSimple(&point, 0, 9.0), 0U);
    EXPECT_EQ(poly2dMakeSimple(&point, 1, 9.0), 1U);
}

TEST(Poly2dMakeSimple, MatchesTheStepsAtEveryTolerance) {
    unsigned seed = 3500;
    int shortened = 0;
    for (const RandomOutline2D::Grid& grid : velquad::test::kRandomGrids2D) {
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 2500; ++round) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
            const Outline outline = random.outline(1, random.below(4) == 0 ? 60 : 9);
            const double limit = grid.spacing * random.below(40);
            const Repair expected = velquad::test::reference2d::makeSimple(outline, limit);
            Outline actual = outline;
            ASSERT_EQ(makeSimple(actual, limit), expected.count);
            expectPoints(actual, expected.points);
            if (HasFatalFailure()) return;
            shortened += expected.count != 0 && expected.count < outline.size() ? 1 : 0;
        }
    }
    EXPECT_GT(shortened, 1000);
}

TEST(Poly2dMakeSimpleEx, OfAClosedOutlineIsMakeSimple) {
    Outline outline = kSquareWithLoop;
    EXPECT_EQ(poly2dMakeSimpleEx(outline.data(), 9, -1, 1000.0), 6U);
    Outline open = kSquare;
    EXPECT_EQ(poly2dMakeSimpleEx(open.data(), 4, 1, 1000.0), 5U);
}

TEST(Poly2dMakeSimpleEx, OfAnOpenChainCutsTheLoop) {
    // The loop measures 5 + 3 = 8, from the start of the one edge to the start of the other.
    const Outline chain{{0, 0}, {4, 3}, {4, 0}, {0, 3}};
    Outline outline = chain;
    EXPECT_EQ(poly2dMakeSimpleEx(outline.data(), 4, 0, 8.0), 0U) << "8 is not below 8";
    expectPoints(outline, chain);
    EXPECT_EQ(poly2dMakeSimpleEx(outline.data(), 4, 0, std::nextafter(8.0, 9.0)), 2U);
    EXPECT_EQ(outline[1].x, 0.0);
    EXPECT_EQ(outline[1].y, 3.0);
    Outline simple = kSquare;
    EXPECT_EQ(poly2dMakeSimpleEx(simple.data(), 4, 0, 0.0), 4U) << "open chains count what they hold";
    EXPECT_EQ(poly2dMakeSimpleEx(nullptr, 4, 0, 9.0), 0U);
    EXPECT_EQ(poly2dMakeSimpleEx(nullptr, 0, 0, 9.0), 0U);
}

TEST(Poly2dMakeSimpleEx, MatchesTheStepsAtEveryTolerance) {
    unsigned seed = 3600;
    for (const RandomOutline2D::Grid& grid : velquad::test::kRandomGrids2D) {
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 2500; ++round) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
            const Outline outline = random.outline(1, random.below(4) == 0 ? 60 : 9);
            const double limit = grid.spacing * random.below(60);
            const Repair expected = velquad::test::reference2d::makeChainSimple(outline, limit);
            Outline actual = outline;
            ASSERT_EQ(poly2dMakeSimpleEx(actual.data(), countOf(actual), 0, limit), expected.count);
            expectPoints(actual, expected.points);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Poly2dMakeSimple, WithoutMemoryIsZeroAndLeavesThePoints) {
    for (const int closed : {0, 1}) {
        Outline outline = kSquareWithLoop;
        velquad::test::failAllocation(1);
        const DWORD count = poly2dMakeSimpleEx(outline.data(), 9, closed, 1000.0);
        velquad::test::failAllocation(0);
        EXPECT_EQ(count, 0U);
        expectPoints(outline, kSquareWithLoop);
    }
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    Outline outline = kSquareWithLoop;
    const std::ptrdiff_t own = velquad::test::liveAllocations() - before;
    EXPECT_EQ(makeSimple(outline, 1000.0), 6U);
    EXPECT_EQ(velquad::test::liveAllocations() - before, own);
}

TEST(Poly2dGetMiniVecCount, IsTheLengthOfTheRun) {
    const Outline chain{{0, 0}, {3, 4}, {3, 5.5}, {4.5, 5.5}};
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 4, 0, 3, 0), 8.0);
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 4, 0, 3, 0), poly2dCalcLength(chain.data(), 4, 0, 0));
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 4, 1, 3, 0), 3.0);
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 4, 2, 2, 0), 0.0);
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 4, 3, 1, 0), 0.0);
}

TEST(Poly2dGetMiniVecCount, OutsideIsTheRestAndReadsNothingBehind) {
    const Outline chain{{0, 0}, {3, 4}, {3, 5.5}, {4.5, 5.5}, {4.5, 8.5}};
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 5, 1, 3, 1), 8.0);
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 5, 0, 4, -1), 0.0);
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 5, 2, 2, 1), 11.0);
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 5, 1, 5, 1), 5.0);
    EXPECT_EQ(poly2dGetMiniVecCount(chain.data(), 5, 1, 0xFFFFFFFF, 1), 5.0);
    EXPECT_EQ(poly2dGetMiniVecCount(nullptr, 0, 0, 0, 1), 0.0);
    EXPECT_EQ(poly2dGetMiniVecCount(nullptr, 0, 0, 0, 0), 0.0);
}

TEST(Poly2dGetMiniVecCount, MatchesTheReference) {
    std::mt19937 engine(3700);
    RandomOutline2D random(3700, {9, 0.3, -1.0, 3, 0});
    for (int round = 0; round < 3000; ++round) {
        const Outline outline = random.outline(1, 20);
        const auto from = static_cast<DWORD>(engine() % outline.size());
        const auto to = static_cast<DWORD>(engine() % outline.size());
        const bool outside = engine() % 2 == 0;
        ASSERT_EQ(bits(poly2dGetMiniVecCount(outline.data(), countOf(outline), from, to, outside ? 1 : 0)),
                  bits(velquad::test::reference2d::runLength(outline, from, to, outside)))
            << "seed 3700, round " << round;
    }
}

}  // namespace
