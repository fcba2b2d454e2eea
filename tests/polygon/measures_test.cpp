// Distance, centre of gravity, area and length of an outline.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "tests/support/polygon_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::kNoValue;
using velquad::test::reference::Outline;
namespace reference = velquad::test::reference;

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

const Outline kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Outline kClosedSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};

/// Compares bits, so that zeros of different sign differ and not-a-numbers are equal.
bool sameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

reference::Nearest distance(const Outline& outline, int closed, const tagPOINT& test, int isSquared) {
    reference::Nearest found;
    found.index = 77;
    found.fraction = 77.0;
    found.distance = polyCalcDistance(outline.data(), countOf(outline), closed, &test, isSquared,
                                      &found.point, &found.index, &found.fraction);
    return found;
}

void expectNearest(const reference::Nearest& actual, double distance, tagPOINT2D point, DWORD index,
                   double fraction) {
    EXPECT_DOUBLE_EQ(actual.distance, distance);
    EXPECT_DOUBLE_EQ(actual.point.x, point.x);
    EXPECT_DOUBLE_EQ(actual.point.y, point.y);
    EXPECT_EQ(actual.index, index);
    EXPECT_DOUBLE_EQ(actual.fraction, fraction);
}

TEST(PolyCalcDistance, FindsTheFootOnTheNearestEdge) {
    expectNearest(distance(kSquare, 1, {13, 4}, 0), 3.0, {10.0, 4.0}, 1, 0.4);
    expectNearest(distance(kSquare, 1, {13, 4}, 1), 9.0, {10.0, 4.0}, 1, 0.4);
    expectNearest(distance(kSquare, 1, {13, 14}, 0), 5.0, {10.0, 10.0}, 1, 1.0);
    expectNearest(distance(kSquare, 1, {3, 0}, 0), 0.0, {3.0, 0.0}, 0, 0.3);
}

TEST(PolyCalcDistance, ReportsTheLowerIndexAtEqualDistance) {
    expectNearest(distance(kSquare, 1, {5, 5}, 0), 5.0, {5.0, 0.0}, 0, 0.5);
    expectNearest(distance(kSquare, 1, {8, 8}, 0), 2.0, {10.0, 8.0}, 1, 0.8);
    expectNearest(distance(kSquare, 1, {10, 10}, 0), 0.0, {10.0, 10.0}, 1, 1.0);
}

TEST(PolyCalcDistance, ClosingEdgeCountsWhenAskedForAndNotStored) {
    expectNearest(distance(kSquare, 1, {-3, 5}, 0), 3.0, {0.0, 5.0}, 3, 0.5);
    expectNearest(distance(kSquare, 0, {-3, 5}, 1), 34.0, {0.0, 0.0}, 0, 0.0);
    expectNearest(distance(kClosedSquare, 1, {-3, 5}, 0), 3.0, {0.0, 5.0}, 3, 0.5);
    expectNearest(distance(kClosedSquare, 0, {-3, 5}, 0), 3.0, {0.0, 5.0}, 3, 0.5);
}

TEST(PolyCalcDistance, OfOnePointIsThatToThePoint) {
    expectNearest(distance({{3, 4}}, 0, {0, 0}, 0), 5.0, {3.0, 4.0}, 0, 0.0);
    expectNearest(distance({{3, 4}}, 1, {0, 0}, 1), 25.0, {3.0, 4.0}, 0, 0.0);
}

TEST(PolyCalcDistance, OfTwoEqualPointsIsThatToThePoint) {
    expectNearest(distance({{3, 4}, {3, 4}}, 1, {0, 0}, 0), 5.0, {3.0, 4.0}, 0, 0.0);
}

TEST(PolyCalcDistance, OfNothingIsTheLargestDouble) {
    for (const int closed : {0, 1}) {
        expectNearest(distance({}, closed, {1, 2}, 0), kNoValue, {kNoValue, kNoValue}, 0, 0.0);
        expectNearest(distance({}, closed, {1, 2}, 1), kNoValue, {kNoValue, kNoValue}, 0, 0.0);
    }
    EXPECT_EQ(polyCalcDistance(nullptr, 0, 1, nullptr, 0, nullptr, nullptr, nullptr), kNoValue);
}

TEST(PolyCalcDistance, OutputsAreOptional) {
    const tagPOINT test{13, 4};
    EXPECT_EQ(polyCalcDistance(kSquare.data(), 4, 1, &test, 0, nullptr, nullptr, nullptr), 3.0);
    DWORD index = 0;
    EXPECT_EQ(polyCalcDistance(kSquare.data(), 4, 1, &test, 0, nullptr, &index, nullptr), 3.0);
    EXPECT_EQ(index, 1U);
}

TEST(PolyCalcDistance, FootWithinTheToleranceBeyondAnEndKeepsItsPlace) {
    // The squared length of the first edge is 10004570, that of the shorter one 9998245, and the foot lies 1 / squared
    // length beyond an end: 9.995e-8 and 1.0002e-7.
    expectNearest(distance({{0, 0}, {1, 3163}}, 0, {-1, 0}, 1), 1.0 - 1.0 / 10004570,
                  {-1.0 / 10004570, -3163.0 / 10004570}, 0, -1.0 / 10004570);
    expectNearest(distance({{0, 0}, {1, 3162}}, 0, {-1, 0}, 1), 1.0, {0.0, 0.0}, 0, 0.0);
    EXPECT_GT(distance({{0, 0}, {1, 3163}}, 0, {2, 3163}, 1).fraction, 1.0);
    expectNearest(distance({{0, 0}, {1, 3162}}, 0, {2, 3162}, 1), 1.0, {1.0, 3162.0}, 0, 1.0);
}

TEST(PolyCalcDistance, EdgesWhoseRootsAreEqualGoByTheRoot) {
    // The feet have fractional coordinates here, so that squares differ in last bits while their roots agree.
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        const LONG a = static_cast<LONG>(random() % 30) + 1;
        const LONG b = static_cast<LONG>(random() % 30) + 1;
        // Mirror images of one edge, at mathematically equal distance from the origin.
        const Outline outline{{a, b}, {a + 7, b - 40}, {-a - 7, b - 40}, {-a, b}};
        const reference::Nearest expected = reference::distance(outline, true, {0, 0}, false);
        const reference::Nearest actual = distance(outline, 1, {0, 0}, 0);
        ASSERT_EQ(actual.index, expected.index) << "seed 5, round " << round;
        ASSERT_TRUE(sameBits(actual.distance, expected.distance)) << "seed 5, round " << round;
    }
}

void expectReferenceDistance(unsigned seed, int rounds, unsigned side, int scale, unsigned jitter,
                             std::int64_t shift, unsigned longest) {
    std::mt19937 random(seed);
    const auto coordinate = [&] {
        return static_cast<LONG>(reference::wrapped(static_cast<std::int64_t>(random() % side) * scale +
                                                    static_cast<std::int64_t>(random() % jitter) + shift));
    };
    for (int round = 0; round < rounds; ++round) {
        Outline outline(2 + random() % longest);
        for (tagPOINT& p : outline)
            p = {coordinate(), coordinate()};
        if (random() % 3 == 0) outline.push_back(outline.front());
        const tagPOINT test{coordinate(), coordinate()};
        const int closed = static_cast<int>(random() % 2);
        const int isSquared = static_cast<int>(random() % 2);
        const reference::Nearest expected = reference::distance(outline, closed != 0, test, isSquared != 0);
        const reference::Nearest actual = distance(outline, closed, test, isSquared);
        ASSERT_TRUE(sameBits(actual.distance, expected.distance) && actual.index == expected.index &&
                    sameBits(actual.fraction, expected.fraction) &&
                    sameBits(actual.point.x, expected.point.x) && sameBits(actual.point.y, expected.point.y))
            << "seed " << seed << ", round " << round << ": " << actual.distance << " at " << actual.index
            << ", " << expected.distance << " at " << expected.index;
    }
}

TEST(PolyCalcDistance, MatchesTheReference) {
    expectReferenceDistance(1, 20000, 5, 1, 1, 0, 10);
    expectReferenceDistance(2, 20000, 300, 1, 1, -150, 100);
    expectReferenceDistance(3, 20000, 4, 7000, 5, -12000, 60);
    expectReferenceDistance(4, 20000, 200, 1, 1, 1048476, 60);
}

TEST(PolyCalcDistance, MatchesTheReferenceWhereProductsWrapAround) {
    expectReferenceDistance(11, 20000, 4, 16383, 4, -16384, 80);
    expectReferenceDistance(12, 20000, 5, 40000, 3, 0, 80);
    expectReferenceDistance(15, 20000, 3, 32000, 700, -32000, 80);
    expectReferenceDistance(13, 20000, 4, 1 << 30, 9, INT_MIN, 40);
    expectReferenceDistance(14, 20000, 100, 1, 1, INT_MAX - 50, 40);
}

TEST(PolyCalcDistance, MatchesTheReferenceOnTracedOutlines) {
    std::mt19937 random(21);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 21, round " << round);
        Outline outline{{static_cast<LONG>(random() % 1000), static_cast<LONG>(random() % 1000)}};
        for (int k = 0; k < 500; ++k) {
            tagPOINT p = outline.back();
            p.x += static_cast<LONG>(random() % 4) - 1;
            p.y += static_cast<LONG>(random() % 3) - 1;
            if (random() % 60 == 0) p.y += static_cast<LONG>(random() % 40000) - 20000;
            outline.push_back(p);
        }
        for (int k = 0; k < 20; ++k) {
            tagPOINT test = outline[random() % outline.size()];
            test.x += static_cast<LONG>(random() % 61) - 30;
            test.y += static_cast<LONG>(random() % 61) - 30;
            for (const int isSquared : {0, 1}) {
                const reference::Nearest expected = reference::distance(outline, true, test, isSquared != 0);
                const reference::Nearest actual = distance(outline, 1, test, isSquared);
                ASSERT_TRUE(sameBits(actual.distance, expected.distance));
                ASSERT_EQ(actual.index, expected.index);
                ASSERT_TRUE(sameBits(actual.fraction, expected.fraction));
            }
        }
    }
}

TEST(PolyCalcCenterOfGravity, OfOnePointIsThePointWithResultZero) {
    const tagPOINT point{3, -4};
    tagPOINT2D out{99.0, 99.0};
    EXPECT_EQ(polyCalcCenterOfGravity(&point, 1, &out), 0);
    EXPECT_EQ(out.x, 3.0);
    EXPECT_EQ(out.y, -4.0);
}

TEST(PolyCalcCenterOfGravity, OfTwoPointsIsTheTruncatedMidpointWithResultZero) {
    tagPOINT2D out{99.0, 99.0};
    EXPECT_EQ(polyCalcCenterOfGravity(Outline{{0, 0}, {5, -5}}.data(), 2, &out), 0);
    EXPECT_EQ(out.x, 2.0);
    EXPECT_EQ(out.y, -2.0);
    EXPECT_EQ(polyCalcCenterOfGravity(Outline{{INT_MAX, INT_MIN}, {1, INT_MIN}}.data(), 2, &out), 0);
    EXPECT_EQ(out.x, -1073741824.0) << "the sum wraps around";
    EXPECT_EQ(out.y, 0.0);
}

TEST(PolyCalcCenterOfGravity, OfASquareIsOffByTheTruncatedTriangleCentres) {
    // Triangles (0,0)-(10,0)-(10,10) and (0,0)-(10,10)-(0,10) of area 50 with centres (6, 3) and (3, 6).
    tagPOINT2D out{99.0, 99.0};
    EXPECT_EQ(polyCalcCenterOfGravity(kSquare.data(), 4, &out), 1);
    EXPECT_EQ(out.x, 4.5);
    EXPECT_EQ(out.y, 4.5);
    tagPOINT2D ofClosed{99.0, 99.0};
    EXPECT_EQ(polyCalcCenterOfGravity(kClosedSquare.data(), 5, &ofClosed), 1);
    EXPECT_EQ(ofClosed.x, 4.5);
    EXPECT_EQ(ofClosed.y, 4.5);
}

TEST(PolyCalcCenterOfGravity, IsTheSameForTheReversedOutline) {
    const Outline reversed{{0, 0}, {0, 10}, {10, 10}, {10, 0}};
    tagPOINT2D out{99.0, 99.0};
    EXPECT_EQ(polyCalcCenterOfGravity(reversed.data(), 4, &out), 1);
    EXPECT_EQ(out.x, 4.5);
    EXPECT_EQ(out.y, 4.5);
}

TEST(PolyCalcCenterOfGravity, TruncatesTowardsZero) {
    // One triangle (0,0), (-10,0), (-1,-10): sums -11 and -10, thirds -3 and -3.
    tagPOINT2D out{99.0, 99.0};
    EXPECT_EQ(polyCalcCenterOfGravity(Outline{{0, 0}, {-10, 0}, {-1, -10}}.data(), 3, &out), 1);
    EXPECT_EQ(out.x, -3.0);
    EXPECT_EQ(out.y, -3.0);
}

TEST(PolyCalcCenterOfGravity, SumsOfThreeCoordinatesWrapAround) {
    // 6000000003 - 2^32 is 1705032707, and a third of it 568344235. The area, 4.5, does not wrap.
    const Outline triangle{{2000000000, 0}, {2000000003, 0}, {2000000000, 3}};
    tagPOINT2D out{99.0, 99.0};
    EXPECT_EQ(polyCalcCenterOfGravity(triangle.data(), 3, &out), 1);
    EXPECT_EQ(out.x, 568344235.0);
    EXPECT_EQ(out.y, 1.0);
}

TEST(PolyCalcCenterOfGravity, WithoutAreaLeavesTheOutputAlone) {
    tagPOINT2D out{99.0, 98.0};
    EXPECT_EQ(polyCalcCenterOfGravity(Outline{{0, 0}, {5, 5}, {9, 9}}.data(), 3, &out), 0);
    EXPECT_EQ(polyCalcCenterOfGravity(nullptr, 0, &out), 0);
    EXPECT_EQ(out.x, 99.0);
    EXPECT_EQ(out.y, 98.0);
}

TEST(PolyCalcCenterOfGravity, OutputIsOptional) {
    EXPECT_EQ(polyCalcCenterOfGravity(kSquare.data(), 4, nullptr), 1);
    EXPECT_EQ(polyCalcCenterOfGravity(kSquare.data(), 2, nullptr), 0);
    EXPECT_EQ(polyCalcCenterOfGravity(kSquare.data(), 1, nullptr), 0);
}

TEST(PolyCalcAreaExact, IsSignedByTheSense) {
    EXPECT_EQ(polyCalcAreaExact(kSquare.data(), 4), 100.0);
    EXPECT_EQ(polyCalcAreaExact(kClosedSquare.data(), 5), 100.0);
    EXPECT_EQ(polyCalcAreaExact(Outline{{0, 10}, {10, 10}, {10, 0}, {0, 0}}.data(), 4), -100.0);
    EXPECT_EQ(polyCalcAreaExact(Outline{{0, 0}, {1, 0}, {0, 1}}.data(), 3), 0.5);
}

TEST(PolyCalcAreaExact, OfFewPointsIsZero) {
    EXPECT_EQ(polyCalcAreaExact(nullptr, 0), 0.0);
    EXPECT_EQ(polyCalcAreaExact(kSquare.data(), 1), 0.0);
    EXPECT_EQ(polyCalcAreaExact(kSquare.data(), 2), 0.0);
    EXPECT_EQ(polyCalcAreaExact(Outline{{4, 5}, {4, 5}}.data(), 2), 0.0);
}

TEST(PolyCalcAreaExact, FarFromTheOriginDependsOnWrapAroundOnly) {
    // Sums of coordinates wrap around, but the trapezoids of a closed figure still cancel.
    Outline shifted = kSquare;
    for (tagPOINT& p : shifted) {
        p.x += 2000000000;
        p.y += 2000000000;
    }
    EXPECT_EQ(polyCalcAreaExact(shifted.data(), 4), 100.0);
}

TEST(PolyCalcAreaExact, TrianglesOfTwiceTheAreaBeyond32BitsWrapAround) {
    // Four triangles between the centre and a side, of side^2 / 2 each when doubled.
    const auto squareOfSide = [](LONG side) {
        return polyCalcAreaExact(Outline{{0, 0}, {side, 0}, {side, side}, {0, side}}.data(), 4);
    };
    EXPECT_EQ(squareOfSide(65534), 4294705156.0);
    EXPECT_EQ(squareOfSide(65536), -4294967296.0);
}

TEST(PolyCalcAreaExact, CentreIsTheMeanOfAllStoredPointsRounded) {
    // The doubled area, 70000^2, would wrap around in one piece. From (23333, 23333) the three parts do not, ...
    EXPECT_EQ(polyCalcAreaExact(Outline{{0, 0}, {70000, 0}, {0, 70000}}.data(), 3), 2450000000.0);
    // ... but with a closing point the mean is (17500, 17500), and the part beyond it wraps around.
    EXPECT_EQ(polyCalcAreaExact(Outline{{0, 0}, {70000, 0}, {0, 70000}, {0, 0}}.data(), 4), 302516352.0);
}

TEST(PolyCalcAreaExact, MatchesWideArithmeticWhereNothingWraps) {
    std::mt19937 random(41);
    for (int round = 0; round < 5000; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 41, round " << round);
        Outline outline(3 + random() % 30);
        for (tagPOINT& p : outline) {
            p = {static_cast<LONG>(random() % 10000) - 5000, static_cast<LONG>(random() % 10000) - 5000};
        }
        std::int64_t twiceArea = 0;
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const tagPOINT& a = outline[i];
            const tagPOINT& b = outline[(i + 1) % outline.size()];
            twiceArea += std::int64_t{a.x} * b.y - std::int64_t{b.x} * a.y;
        }
        const double area = polyCalcAreaExact(outline.data(), countOf(outline));
        ASSERT_EQ(area, 0.5 * static_cast<double>(twiceArea));
        const Outline reversed(outline.rbegin(), outline.rend());
        ASSERT_EQ(polyCalcAreaExact(reversed.data(), countOf(reversed)), -area);
    }
}

TEST(PolyCalcAreaExact, MatchesTheReferenceWhereProductsWrapAround) {
    std::mt19937 random(42);
    for (int round = 0; round < 20000; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 42, round " << round);
        Outline outline(1 + random() % 12);
        for (tagPOINT& p : outline)
            p = {static_cast<LONG>(random()), static_cast<LONG>(random())};
        if (random() % 2 == 0) outline.push_back(outline.front());
        ASSERT_TRUE(sameBits(polyCalcAreaExact(outline.data(), countOf(outline)), reference::area(outline)));
    }
}

TEST(PolyCalcLength, SumsTheEdges) {
    const Outline chain{{0, 0}, {3, 4}, {3, 10}};
    EXPECT_EQ(polyCalcLength(chain.data(), 3, 0, 0), 11.0);
    EXPECT_EQ(polyCalcLength(chain.data(), 3, 0, 1), 61.0);
    EXPECT_EQ(polyCalcLength(chain.data(), 3, 1, 0), 11.0 + std::sqrt(109.0));
    EXPECT_EQ(polyCalcLength(chain.data(), 3, 1, 1), 170.0);
}

TEST(PolyCalcLength, StoredClosingPointAddsNothing) {
    EXPECT_EQ(polyCalcLength(kClosedSquare.data(), 5, 1, 0), 40.0);
    EXPECT_EQ(polyCalcLength(kClosedSquare.data(), 5, 0, 0), 40.0);
    EXPECT_EQ(polyCalcLength(kSquare.data(), 4, 1, 0), 40.0);
    EXPECT_EQ(polyCalcLength(kSquare.data(), 4, 0, 0), 30.0);
}

TEST(PolyCalcLength, OfFewPoints) {
    EXPECT_EQ(polyCalcLength(nullptr, 0, 1, 0), 0.0);
    EXPECT_EQ(polyCalcLength(kSquare.data(), 1, 1, 0), 0.0);
    EXPECT_EQ(polyCalcLength(kSquare.data(), 2, 0, 0), 10.0);
    EXPECT_EQ(polyCalcLength(kSquare.data(), 2, 1, 0), 20.0);
}

TEST(PolyCalcLength, DifferencesWrapAround) {
    EXPECT_EQ(polyCalcLength(Outline{{INT_MAX, 0}, {INT_MIN, 0}}.data(), 2, 0, 0), 1.0);
}

}  // namespace
