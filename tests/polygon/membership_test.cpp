// Membership of a point in an outline.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "frame/kernels.h"
#include "tests/support/polygon_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::reference::Outline;

int inside(const Outline& outline, const tagPOINT& test) {
    return polyIsPointInside(outline.data(), static_cast<DWORD>(outline.size()), &test);
}

const Outline kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Outline kClosedSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};

struct Case {
    const char* name;
    Outline outline;
    tagPOINT test;
    int expected;
};

class Membership : public testing::TestWithParam<Case> {};

TEST_P(Membership, HasItsPlace) {
    EXPECT_EQ(inside(GetParam().outline, GetParam().test), GetParam().expected);
}

const Case kCases[] = {
    {"SquareMiddle", kSquare, {5, 5}, 1},
    {"SquareFarOff", kSquare, {20, 5}, 0},
    {"SquareEdge", kSquare, {10, 5}, -1},
    {"SquareVertex", kSquare, {10, 10}, -1},
    {"SquareFirstVertex", kSquare, {0, 0}, -1},
    {"SquareClosingEdge", kSquare, {0, 5}, -1},
    {"SquareExtensionOfEdge", kSquare, {20, 0}, 0},
    {"SquareExtensionOfEdgeBehind", kSquare, {-20, 0}, 0},
    {"ClosedSquareMiddle", kClosedSquare, {5, 5}, 1},
    {"ClosedSquareFarOff", kClosedSquare, {20, 5}, 0},
    {"ClosedSquareEdge", kClosedSquare, {10, 5}, -1},
    {"ClosedSquareVertex", kClosedSquare, {10, 10}, -1},
    {"ClosedSquareExtensionOfEdge", kClosedSquare, {20, 0}, 0},
    {"ManyClosingPoints", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {0, 0}, {0, 0}}, {5, 5}, 1},
    {"RepeatedPoints", {{0, 0}, {0, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 10}}, {5, 5}, 1},
    // The ray runs from (0, 0) along y = 0 to (4, 0), where the outline only touches it.
    {"RayTouchesVertexFromOutside", {{10, 5}, {4, 0}, {-10, 5}, {-10, 9}, {10, 9}}, {0, 0}, 0},
    {"RayTouchesVertexFromInside", {{8, 4}, {4, 0}, {2, 4}, {-9, 4}, {-9, -4}, {8, -4}}, {0, 0}, 1},
    // ... and where it crosses it.
    {"RayCrossesAtVertex", {{3, 5}, {4, 0}, {3, -5}, {-9, -5}, {-9, 5}}, {0, 0}, 1},
    // The ray goes on through (8, 0), touched from above, then (9, 0), crossed.
    {"RayTouchesThenCrosses", {{4, 9}, {4, 0}, {4, -9}, {9, 0}, {9, 8}, {8, 0}, {7, 9}}, {0, 0}, 0},
    // An edge on the ray, with the outline on different sides before and behind it, is a crossing ...
    {"EdgeOnRayCrossed", {{5, 5}, {5, 0}, {7, 0}, {7, -5}, {-9, -5}, {-9, 5}}, {0, 0}, 1},
    // ... and with the outline on one side it is not.
    {"EdgeOnRayTouched", {{5, 5}, {5, 0}, {7, 0}, {7, 5}}, {0, 0}, 0},
    {"TestOnEdgeOfRayLine", {{5, 5}, {5, 0}, {-7, 0}, {-7, 5}}, {0, 0}, -1},
    {"FlatBetweenVertices", {{0, 0}, {10, 0}, {20, 0}}, {5, 0}, 0},
    {"FlatBesideLine", {{0, 0}, {10, 0}, {20, 0}}, {5, 1}, 0},
    {"FlatAtVertex", {{0, 0}, {10, 0}, {20, 0}}, {10, 0}, -1},
    {"FlatBehind", {{0, 0}, {10, 0}, {20, 0}}, {30, 0}, 0},
    {"FlatDiagonalBetweenVertices", {{0, 0}, {10, 10}}, {5, 5}, 0},
    {"ThreeEqualPointsAtPoint", {{5, 0}, {5, 0}, {5, 0}}, {5, 0}, -1},
    {"ThreeEqualPointsElsewhere", {{5, 0}, {5, 0}, {5, 0}}, {6, 0}, 0},
    {"OnePointAtPoint", {{3, 4}}, {3, 4}, -1},
    {"OnePointElsewhere", {{3, 4}}, {3, 5}, 0},
    {"TwoPointsAtSecond", {{0, 0}, {4, 2}}, {4, 2}, -1},
    {"TwoPointsBeside", {{0, 0}, {4, 2}}, {2, 2}, 0},
    {"WoundRoundTwice", {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {9, 0}, {9, 9}, {0, 9}}, {4, 5}, 0},
    {"Empty", {}, {0, 0}, 0},
};

INSTANTIATE_TEST_SUITE_P(Table, Membership, testing::ValuesIn(kCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(MembershipTest, EmptyOutlineReadsNoPointer) {
    EXPECT_EQ(polyIsPointInside(nullptr, 0, nullptr), 0);
}

/// The edge from (667, 2) to (-333, -1) passes (0, 0) at a distance of 0.001. The ray goes up to (0, `height`), and the
/// edge meets it at -0.001 / height.
Outline outlineWithEdgeJustBelowOrigin(LONG height) {
    return {{-20000, height - 5}, {0, height}, {667, 2}, {-333, -1}};
}

TEST(MembershipTest, EdgeNearerThanTheToleranceOnTheRayIsTheOutline) {
    EXPECT_EQ(inside(outlineWithEdgeJustBelowOrigin(9999), {0, 0}), 1);
    EXPECT_EQ(inside(outlineWithEdgeJustBelowOrigin(10000), {0, 0}), 1);
    EXPECT_EQ(inside(outlineWithEdgeJustBelowOrigin(10001), {0, 0}), -1);
}

TEST(MembershipTest, EdgeNearerThanTheToleranceCountsOnLongRaysOnly) {
    // The same outline from its third point on: the ray is shorter, and the edge meets it farther off, relatively.
    EXPECT_EQ(inside({{667, 2}, {-333, -1}, {-20000, 9996}, {0, 10001}}, {0, 0}), 1);
}

/// The ray runs from (0, 0) through (4000, 1), where the outline crosses it, and on through (8000, 2). The outline
/// comes back to (7999, 2), just short of the ray's line, by a short edge, and crosses the line right behind that
/// vertex on the edge down to (7999, `depth`).
Outline outlineThatCrossesJustBehindAVertex(LONG depth) {
    return {{4000, -3000}, {4000, 1}, {9000, 3}, {7998, 2}, {7999, 2}, {7999, depth}};
}

TEST(MembershipTest, RayThatMissesAVertexWithinTheTolerancePassesThroughIt) {
    // Off the start of the edge by 1.0004e-7 of its length, the crossing is one like any other, the second.
    EXPECT_EQ(inside(outlineThatCrossesJustBehindAVertex(-2497), {0, 0}), 0);
    // Off by 9.996e-8 it is a passage through the vertex, judged by the side that was stored last, at (4000, 1). It
    // is the side that the outline leaves on, so the passage does not count.
    EXPECT_EQ(inside(outlineThatCrossesJustBehindAVertex(-2499), {0, 0}), 1);
}

TEST(MembershipTest, ProductsThatWrapAroundToZeroMakeEdgesParallel) {
    // From the middle of a square of side 2^17 every determinant is a multiple of 2^32: there is no edge to aim at.
    const Outline outline{{0, 0}, {131072, 0}, {131072, 131072}, {0, 131072}};
    EXPECT_EQ(inside(outline, {65536, 65536}), 0);
    EXPECT_EQ(inside({{0, 0}, {131070, 0}, {131070, 131070}, {0, 131070}}, {40, 30}), 1);
}

TEST(MembershipTest, AgreesWithWindingInWideArithmeticForStarShapedOutlines) {
    std::mt19937 random(2201);
    constexpr double kPi = 3.141592653589793;
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 2201, round " << round);
        Outline outline;
        const int corners = 3 + static_cast<int>(random() % 40);
        for (int k = 0; k < corners; ++k) {
            const double radius = 500.0 + static_cast<double>(random() % 9000);
            const double angle = 2.0 * kPi * k / corners;
            outline.push_back(
                {static_cast<LONG>(radius * std::cos(angle)), static_cast<LONG>(radius * std::sin(angle))});
        }
        for (int k = 0; k < 50; ++k) {
            const tagPOINT test{static_cast<LONG>(random() % 20000) - 10000,
                                static_cast<LONG>(random() % 20000) - 10000};
            // Even-odd rule for a horizontal ray, exact in 64 bits.
            bool isInside = false;
            bool isOnEdge = false;
            for (std::size_t i = 0; i < outline.size(); ++i) {
                const tagPOINT a = outline[i];
                const tagPOINT b = outline[(i + 1) % outline.size()];
                const std::int64_t cross =
                    (std::int64_t{b.x} - a.x) * (test.y - a.y) - (std::int64_t{b.y} - a.y) * (test.x - a.x);
                if (cross == 0 && std::min(a.x, b.x) <= test.x && test.x <= std::max(a.x, b.x) &&
                    std::min(a.y, b.y) <= test.y && test.y <= std::max(a.y, b.y)) {
                    isOnEdge = true;
                }
                if ((a.y > test.y) != (b.y > test.y) && (b.y > a.y) == (cross > 0)) isInside = !isInside;
            }
            EXPECT_EQ(inside(outline, test), isOnEdge ? -1 : isInside ? 1 : 0);
        }
    }
}

/// Outlines of few points on a small grid meet all degenerate cases; `shift` and `scale` carry them to where
/// products wrap around and where the tolerances matter.
void expectReferenceOnGrid(unsigned seed, int rounds, int side, int scale, int jitter, std::int64_t shift) {
    std::mt19937 random(seed);
    const auto coordinate = [&] {
        const auto cell = static_cast<std::int64_t>(random() % static_cast<unsigned>(side));
        const auto off =
            jitter == 0 ? 0 : static_cast<std::int64_t>(random() % static_cast<unsigned>(jitter));
        return static_cast<LONG>(velquad::test::reference::wrapped(cell * scale + off + shift));
    };
    int counts[3] = {0, 0, 0};
    for (int round = 0; round < rounds; ++round) {
        Outline outline(1 + random() % 14);
        for (tagPOINT& p : outline)
            p = {coordinate(), coordinate()};
        if (random() % 3 == 0) outline.push_back(outline.front());
        const tagPOINT test{coordinate(), coordinate()};
        const int expected = velquad::test::reference::isPointInside(outline, test);
        ++counts[expected + 1];
        ASSERT_EQ(inside(outline, test), expected) << "seed " << seed << ", round " << round;
    }
    EXPECT_GT(counts[0] + counts[2], 0) << "the outlines of seed " << seed << " are all elsewhere";
}

TEST(MembershipTest, MatchesTheReferenceOnSmallGrids) {
    expectReferenceOnGrid(1, 40000, 4, 1, 0, 0);
    expectReferenceOnGrid(2, 40000, 7, 1, 0, -3);
    expectReferenceOnGrid(3, 40000, 5, 8000, 0, 0);
    expectReferenceOnGrid(4, 20000, 200, 1, 0, 1048476);
}

TEST(MembershipTest, MatchesTheReferenceAtTheEdgeOfTheTolerance) {
    // Long edges whose ends miss the ray by a few units, relative sizes around 1e-7.
    expectReferenceOnGrid(11, 60000, 3, 16000, 3, -16000);
    expectReferenceOnGrid(12, 60000, 3, 32000, 4, -32000);
    expectReferenceOnGrid(13, 60000, 2, 32767, 2, 0);
    expectReferenceOnGrid(14, 60000, 3, 32767, 5, -32767);
    expectReferenceOnGrid(16, 60000, 3, 10000, 4, 2000000000);
    expectReferenceOnGrid(15, 40000, 3, 20000000, 3, -20000000);
}

TEST(MembershipTest, MatchesTheReferenceWhereProductsWrapAround) {
    expectReferenceOnGrid(21, 40000, 5, 65536, 2, 0);
    expectReferenceOnGrid(22, 40000, 4, 1 << 30, 0, INT_MIN);
    expectReferenceOnGrid(23, 40000, 3, INT_MAX, 3, INT_MIN);
    expectReferenceOnGrid(24, 40000, 7, 33000, 5, INT_MAX - 30000);
    // Differences are small, but only because they wrap around: the outline lies on both ends of the integers.
    expectReferenceOnGrid(25, 40000, 5, 1, 0, INT_MAX - 2);
    expectReferenceOnGrid(26, 40000, 200, 1, 0, INT_MAX - 100);
}

/// A point p with p.x * d.y - p.y * d.x equal to `side`, near the way from the origin to d. The components of d are
/// positive and without a common divisor.
tagPOINT pointOnSide(const tagPOINT& d, std::int64_t side) {
    // Steps of Euclid's algorithm: x * d.y is `rest` modulo d.x.
    std::int64_t x = 1;
    std::int64_t lastX = 0;
    std::int64_t rest = d.y % d.x;
    std::int64_t lastRest = d.x;
    while (rest > 1) {
        const std::int64_t quotient = lastRest / rest;
        lastX = std::exchange(x, lastX - quotient * x);
        lastRest = std::exchange(rest, lastRest - quotient * rest);
    }
    x = ((x * side) % d.x + d.x) % d.x;
    return {static_cast<LONG>(x), static_cast<LONG>((x * d.y - side) / d.x)};
}

TEST(MembershipTest, MatchesTheReferenceForVerticesBesideLongRays) {
    // Vertices a few thousandths of a pixel off the ray's line, with edges that lead far away from it: passages within
    // the tolerance, and just not.
    for (const std::int64_t shift : {0, 1000000, -1048576, 2000000000}) {
        std::mt19937 random(51);
        for (int round = 0; round < 10000; ++round) {
            SCOPED_TRACE(testing::Message() << "seed 51, shift " << shift << ", round " << round);
            tagPOINT d{static_cast<LONG>(2 + random() % 32766), static_cast<LONG>(2 + random() % 32766)};
            while (std::gcd(d.x, d.y) != 1)
                ++d.y;
            Outline outline{{d.x, -20000}, d};
            for (int k = 0; k < 12; ++k) {
                tagPOINT p = pointOnSide(d, static_cast<std::int64_t>(random() % 401) - 200);
                outline.push_back(p);
                if (random() % 4 == 0) continue;
                // Straight down or up from there, or just beside, or anywhere.
                if (random() % 3 != 0) p.x += static_cast<LONG>(random() % 3) - 1;
                if (random() % 4 == 0) p.x = static_cast<LONG>(random() % 65536) - 32768;
                p.y = random() % 2 == 0 ? -32768 : 32767;
                outline.push_back(p);
            }
            for (tagPOINT& p : outline) {
                p = {velquad::test::reference::wrapped(p.x + shift),
                     velquad::test::reference::wrapped(p.y + shift)};
            }
            const tagPOINT test{static_cast<LONG>(shift), static_cast<LONG>(shift)};
            ASSERT_EQ(inside(outline, test), velquad::test::reference::isPointInside(outline, test));
        }
    }
}

/// Runs a check at every level of the kernels that this machine has.
template <class Check>
void atEveryKernelLevel(Check check) {
    const std::size_t usual = velquad::frame::kernelLevel();
    for (std::size_t level = 0; level < velquad::frame::kernelLevelCount(); ++level) {
        SCOPED_TRACE(velquad::frame::kernelLevelName(level));
        velquad::frame::selectKernelLevel(level);
        check();
    }
    velquad::frame::selectKernelLevel(usual);
}

TEST(MembershipTest, MatchesTheReferenceOnLongOutlines) {
    atEveryKernelLevel([] {
        std::mt19937 random(31);
        for (int round = 0; round < 400; ++round) {
            SCOPED_TRACE(testing::Message() << "seed 31, round " << round);
            // A walk in steps of one pixel, as traced outlines are, now and then with a leap.
            const int reach = round % 4 == 0 ? 200000 : 300;
            Outline outline{{0, 0}};
            for (int k = 0; k < 300; ++k) {
                tagPOINT p = outline.back();
                p.x += static_cast<LONG>(random() % 3) - 1;
                p.y += static_cast<LONG>(random() % 3) - 1;
                if (random() % 40 == 0)
                    p.x += static_cast<LONG>(random() % static_cast<unsigned>(reach)) - reach / 2;
                outline.push_back(p);
            }
            for (int k = 0; k < 40; ++k) {
                tagPOINT test = outline[random() % outline.size()];
                test.x += static_cast<LONG>(random() % 5) - 2;
                test.y += static_cast<LONG>(random() % 5) - 2;
                ASSERT_EQ(inside(outline, test), velquad::test::reference::isPointInside(outline, test));
            }
        }
    });
}

TEST(MembershipTest, MatchesTheReferenceWhereLongOutlinesLeaveSixteenBits) {
    atEveryKernelLevel([] {
        std::mt19937 random(32);
        for (int round = 0; round < 400; ++round) {
            SCOPED_TRACE(testing::Message() << "seed 32, round " << round);
            // Seen from the test point: long runs within 16 bits, with some points at their limits and just beyond.
            const tagPOINT test{static_cast<LONG>(random() % 2000), static_cast<LONG>(random() % 2000)};
            Outline outline;
            for (int k = 0; k < 400; ++k) {
                const auto offset = [&](int low, int range) {
                    const int limits[] = {-32769, -32768, -32767, 32767, 32768};
                    return random() % 60 == 0
                               ? limits[random() % 5]
                               : low + static_cast<int>(random() % static_cast<unsigned>(range));
                };
                const int side = k / 130 % 2 == 0 ? 100 : -30100;
                outline.push_back({test.x + offset(-20000, 40000), test.y + offset(side, 30000)});
            }
            ASSERT_EQ(inside(outline, test), velquad::test::reference::isPointInside(outline, test));
        }
    });
}

TEST(MembershipTest, NotchIsFoundAtEveryPlaceOfALongRun) {
    atEveryKernelLevel([] {
        for (LONG notch = 3; notch < 150; ++notch) {
            SCOPED_TRACE(notch);
            Outline outline;
            for (LONG k = 0; k < 160; ++k)
                outline.push_back({10 * k, 100 + k % 2});
            outline.push_back({1600, 200});
            outline.push_back({-10, 200});
            const tagPOINT test{10 * notch, 0};
            EXPECT_EQ(inside(outline, test), 0);
            outline[static_cast<std::size_t>(notch)].y = -100;
            EXPECT_EQ(inside(outline, test), 1);
        }
    });
}

}  // namespace
