// Distance and length of an outline of doubles.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "tests/support/polygon2d_reference.h"
#include "tests/support/random_outline_2d.h"
#include "velquad/polygon.h"

namespace {

using velquad::kNoValue;
using velquad::test::RandomOutline2D;
using velquad::test::reference2d::Nearest;
using velquad::test::reference2d::Outline;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

Nearest nearest(const Outline& outline, int closed, const tagPOINT2D& test, int isSquared = 0) {
    Nearest place{-1.0, {-1.0, -1.0}, 77, -1.0};
    place.distance = poly2dCalcDistance(outline.data(), countOf(outline), closed, &test, isSquared,
                                        &place.point, &place.index, &place.fraction);
    return place;
}

void expectPlace(const Nearest& place, double distance, tagPOINT2D point, DWORD index, double fraction) {
    EXPECT_EQ(place.distance, distance);
    EXPECT_EQ(place.point.x, point.x);
    EXPECT_EQ(place.point.y, point.y);
    EXPECT_EQ(place.index, index);
    EXPECT_EQ(place.fraction, fraction);
}

const Outline kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}};

TEST(Distance2D, IsThatOfTheNearestEdge) {
    expectPlace(nearest(kSquare, 1, {7.5, -2}), 2.0, {7.5, 0}, 0, 0.75);
    expectPlace(nearest(kSquare, 1, {12.5, 2.5}, 1), 6.25, {10, 2.5}, 1, 0.25);
    expectPlace(nearest(kSquare, 1, {-3, -4}), 5.0, {0, 0}, 0, 0.0);
}

TEST(Distance2D, OfEqualEdgesTakesTheFirst) {
    expectPlace(nearest(kSquare, 1, {5, 5}), 5.0, {5, 0}, 0, 0.5);
    expectPlace(nearest(kSquare, 0, {11, 11}, 1), 2.0, {10, 10}, 1, 1.0);
}

TEST(Distance2D, CountsTheClosingEdgeByFlag) {
    expectPlace(nearest(kSquare, 1, {-1, 4}), 1.0, {0, 4}, 3, 0.6);
    expectPlace(nearest(kSquare, 0, {-1, 4}, 1), 17.0, {0, 0}, 0, 0.0);
}

TEST(Distance2D, ComparesTheClosingPointExactly) {
    // From (0.9, -1) the foot on the edge (0, 0) - (1, 0) is (0.9, 0). The closing edge, if there is one, leads from
    // the last point to the first and is nearest to a point beside it.
    const Outline stored{{0, 0}, {1, 0}, {1, 1}, {0, 0}};
    expectPlace(nearest(stored, 1, {-1, 0}), 1.0, {0, 0}, 0, 0.0);
    // Five hundredths of a millionth apart are one point everywhere else; here an edge leads over the gap.
    const Outline almost{{0, 0}, {1, 0}, {1, 1}, {0, 5e-8}};
    expectPlace(nearest(almost, 1, {-1, 2.5e-8}, 0), 1.0, {0, 2.5e-8}, 3, 0.5);
    EXPECT_LT(nearest(almost, 0, {-1, 2.5e-8}, 0).index, 3U);
    // The same with a gap in both coordinates, and a test point straight off its middle.
    const Outline aslant{{0, 0}, {1, 0}, {1, 1}, {5e-8, 5e-8}};
    EXPECT_EQ(nearest(aslant, 1, {-7.5e-8, 1.25e-7}).index, 3U);
    EXPECT_NEAR(nearest(aslant, 1, {-7.5e-8, 1.25e-7}).fraction, 0.5, 1e-9);
    EXPECT_LT(nearest(aslant, 0, {-7.5e-8, 1.25e-7}).index, 3U);
}

TEST(Distance2D, OfASinglePointIsMeasuredToIt) {
    expectPlace(nearest({{3, 4}}, 0, {0, 0}), 5.0, {3, 4}, 0, 0.0);
    expectPlace(nearest({{3, 4}}, 1, {0, 0}, 1), 25.0, {3, 4}, 0, 0.0);
}

TEST(Distance2D, OfNothingIsTheMark) {
    expectPlace(nearest({}, 0, {0, 0}), kNoValue, {kNoValue, kNoValue}, 0, 0.0);
    expectPlace(nearest({}, 1, {0, 0}), kNoValue, {kNoValue, kNoValue}, 0, 0.0);
    EXPECT_EQ(poly2dCalcDistance(nullptr, 0, 0, nullptr, 0, nullptr, nullptr, nullptr), kNoValue);
}

TEST(Distance2D, OfEdgesWithoutNumbersIsTheMark) {
    expectPlace(nearest({{kNaN, 0}, {kNaN, 5}}, 1, {0, 0}), kNoValue, {kNoValue, kNoValue}, 0, 0.0);
    expectPlace(nearest({{kNaN, 0}, {0, 3}, {4, 3}}, 0, {0, 0}), 3.0, {0, 3}, 1, 0.0);
}

TEST(Distance2D, StoresOnlyWhatIsAskedFor) {
    const tagPOINT2D test{7.5, -2};
    EXPECT_EQ(poly2dCalcDistance(kSquare.data(), 4, 1, &test, 0, nullptr, nullptr, nullptr), 2.0);
    DWORD index = 9;
    EXPECT_EQ(poly2dCalcDistance(kSquare.data(), 4, 1, &test, 7, nullptr, &index, nullptr), 4.0);
    EXPECT_EQ(index, 0U);
}

TEST(Distance2D, HoldsTheFootBetweenTheEndsOfItsEdge) {
    const Outline edge{{0, 0}, {1, 0}};
    expectPlace(nearest(edge, 0, {1.00000005, 0}), 1.00000005 - 1.0, {1, 0}, 0, 1.0);
    const double justInside = 0.9999999999999998;
    EXPECT_EQ(nearest(edge, 0, {justInside, 0}).fraction, justInside);
    EXPECT_EQ(nearest(edge, 0, {std::nextafter(justInside, 2.0), 0}).fraction, 1.0);
    const double epsilon = 2.220446049250313e-16;
    EXPECT_EQ(nearest(edge, 0, {epsilon, 0}).fraction, epsilon);
    EXPECT_EQ(nearest(edge, 0, {std::nextafter(epsilon, 0.0), 0}).fraction, 0.0);
}

/// Not-a-numbers are equal, whatever their bits; anything else has to be the same to the last bit.
std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(std::isnan(value) ? kNaN : value);
}

TEST(Distance2D, MatchesTheReferenceAtEveryTolerance) {
    unsigned seed = 2800;
    for (const RandomOutline2D::Grid& grid : velquad::test::kRandomGrids2D) {
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 3000; ++round) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
            const Outline outline = random.outline(1, random.below(10) == 0 ? 80 : 8);
            const bool closed = random.below(2) != 0;
            const bool isSquared = random.below(2) != 0;
            const tagPOINT2D test = random.point();
            const Nearest expected = velquad::test::reference2d::distance(outline, closed, test, isSquared);
            const Nearest actual = nearest(outline, closed ? 1 : 0, test, isSquared ? 1 : 0);
            ASSERT_EQ(bits(actual.distance), bits(expected.distance));
            ASSERT_EQ(bits(actual.point.x), bits(expected.point.x));
            ASSERT_EQ(bits(actual.point.y), bits(expected.point.y));
            ASSERT_EQ(actual.index, expected.index);
            ASSERT_EQ(bits(actual.fraction), bits(expected.fraction));
        }
    }
}

TEST(Length2D, SumsTheEdges) {
    const Outline chain{{0, 0}, {3, 4}, {3, 5.5}};
    EXPECT_EQ(poly2dCalcLength(chain.data(), 3, 0, 0), 6.5);
    EXPECT_EQ(poly2dCalcLength(chain.data(), 3, 0, 1), 27.25);
    EXPECT_EQ(poly2dCalcLength(kSquare.data(), 4, 1, 0), 40.0);
    EXPECT_EQ(poly2dCalcLength(kSquare.data(), 4, 0, 0), 30.0);
    EXPECT_EQ(poly2dCalcLength(kSquare.data(), 4, 5, -1), 400.0);
}

TEST(Length2D, OfFewerThanTwoPointsIsZero) {
    EXPECT_EQ(poly2dCalcLength(nullptr, 0, 1, 0), 0.0);
    EXPECT_EQ(poly2dCalcLength(kSquare.data(), 1, 1, 0), 0.0);
    EXPECT_EQ(poly2dCalcLength(kSquare.data(), 2, 1, 0), 20.0);
}

TEST(Length2D, StoredClosingPointAddsNothing) {
    Outline closed = kSquare;
    closed.push_back(closed.front());
    EXPECT_EQ(poly2dCalcLength(closed.data(), 5, 1, 0), 40.0);
    EXPECT_EQ(poly2dCalcLength(closed.data(), 5, 0, 0), 40.0);
}

TEST(Length2D, MatchesTheReference) {
    unsigned seed = 2900;
    for (const RandomOutline2D::Grid& grid : velquad::test::kRandomGrids2D) {
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 1000; ++round) {
            const Outline outline = random.outline(1, 20);
            const bool closed = random.below(2) != 0;
            const bool isSquared = random.below(2) != 0;
            ASSERT_EQ(
                bits(poly2dCalcLength(outline.data(), countOf(outline), closed ? 1 : 0, isSquared ? 1 : 0)),
                bits(velquad::test::reference2d::length(outline, closed, isSquared)))
                << "seed " << seed << ", round " << round;
        }
    }
}

}  // namespace
