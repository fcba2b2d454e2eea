// Sense of rotation, order and double points of an outline of doubles.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "tests/support/outline_reference.h"
#include "tests/support/random_outline_2d.h"
#include "velquad/geometry.h"
#include "velquad/polygon.h"

namespace {

using Outline = std::vector<tagPOINT2D>;
using velquad::test::RandomOutline2D;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Outline kCounterClockwise{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
const Outline kClockwise{{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}};
/// A figure of eight: its turns cancel.
const Outline kEight{{0, 0}, {10, 10}, {10, 0}, {0, 10}, {0, 0}};

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

int isCcw(const Outline& outline) {
    return poly2dIsCCW(outline.data(), countOf(outline));
}

void expectPoints(const Outline& actual, const Outline& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        EXPECT_EQ(actual[i].x, expected[i].x) << "point " << i;
        EXPECT_EQ(actual[i].y, expected[i].y) << "point " << i;
    }
}

TEST(Poly2dIsCCW, TellsTheSenseOfClosedOutlines) {
    EXPECT_EQ(isCcw(kCounterClockwise), 1);
    EXPECT_EQ(isCcw(kClockwise), 0);
}

TEST(Poly2dIsCCW, HasNoAnswerWhereTurnsCancel) {
    EXPECT_EQ(isCcw(kEight), -1);
}

TEST(Poly2dIsCCW, HasNoAnswerForFewOrEqualPoints) {
    EXPECT_EQ(poly2dIsCCW(nullptr, 0), -1);
    EXPECT_EQ(poly2dIsCCW(nullptr, 5), -1);
    EXPECT_EQ(isCcw({{1, 2}}), -1);
    EXPECT_EQ(isCcw({{1, 2}, {7, 8}}), -1) << "the only corner looks from its point to its point";
    EXPECT_EQ(isCcw({{1, 2}, {1, 2}, {1, 2}, {1, 2}}), -1);
}

TEST(Poly2dIsCCW, OfAFlatOutlineThatDoesNotTurnHasNoAnswer) {
    // Steps below 1e-7 have no angle, not even where they turn back.
    EXPECT_EQ(isCcw({{0, 0}, {4e-8, 0}, {8e-8, 0}, {0, 0}}), -1);
    EXPECT_EQ(isCcw({{0, 0}, {5, 0}, {5, 0}, {0, 0}, {0, 0}}), -1) << "nor does a repeated point";
}

TEST(Poly2dIsCCW, OfAFlatOutlineThatDoublesBackTurnsLeft) {
    EXPECT_EQ(isCcw({{0, 0}, {1, 0}, {2, 0}, {0, 0}}), 1);
    EXPECT_EQ(isCcw({{0, 0}, {5, 5}, {0, 0}}), 1);
    EXPECT_EQ(isCcw({{0, 0}, {1, 0}, {2, 0}}), 1) << "the two points before the last, there and back";
}

TEST(Poly2dIsCCW, MissesACornerWithoutAClosingPoint) {
    // The outline runs counter-clockwise, but its first three points, all that is looked at, do not.
    EXPECT_EQ(isCcw({{0, 0}, {4, 0}, {5, -1}, {2, 9}, {0, 0}}), 1);
    EXPECT_EQ(isCcw({{0, 0}, {4, 0}, {5, -1}, {2, 9}}), 0);
    EXPECT_EQ(isCcw({{0, 0}, {4, 0}, {5, -1}, {kNaN, kNaN}}), 0)
        << "the last point is taken for the closing one";
}

TEST(Poly2dIsCCW, TakesDoublePointsAsTheyStand) {
    // A repeated corner has no angle from either side, so its turn is lost: 270 degrees are left of a square ...
    EXPECT_EQ(isCcw({{0, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}), 1);
    // ... and of a square with all its corners repeated nothing.
    EXPECT_EQ(isCcw({{0, 0}, {0, 0}, {10, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}, {0, 10}, {0, 0}, {0, 0}}),
              -1);
}

TEST(Poly2dIsCCW, OfPointsWithoutNumbersIsZero) {
    EXPECT_EQ(isCcw({{0, 0}, {kNaN, 0}, {10, 10}, {0, 0}}), 0);
}

TEST(Poly2dIsCCW, IsTheSignOfTheSummedAngles) {
    unsigned seed = 3000;
    int counts[3] = {0, 0, 0};
    for (const RandomOutline2D::Grid& grid : velquad::test::kRandomGrids2D) {
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 2000; ++round) {
            const Outline outline = random.outline(1, 9);
            const DWORD count = countOf(outline);
            double sum = 0.0;
            for (DWORD i = 1; i < count; ++i) {
                sum += matCalcAngle2D(&outline[i - 1], &outline[i % (count - 1)],
                                      &outline[(i + 1) % (count - 1)]);
            }
            const int expected = 1e-7 > std::fabs(sum) ? -1 : sum > 0.0 ? 1 : 0;
            ++counts[expected + 1];
            ASSERT_EQ(isCcw(outline), expected) << "seed " << seed << ", round " << round;
        }
    }
    for (const int count : counts)
        EXPECT_GT(count, 100);
}

TEST(Poly2dMakeCCW, ReversesOnlyWhereNeeded) {
    Outline points = kCounterClockwise;
    EXPECT_EQ(poly2dMakeCCW(points.data(), 5, 1), 1);
    expectPoints(points, kCounterClockwise);
    EXPECT_EQ(poly2dMakeCCW(points.data(), 5, 0), 1);
    expectPoints(points, kClockwise);
    EXPECT_EQ(poly2dMakeCCW(points.data(), 5, 0), 1);
    expectPoints(points, kClockwise);
    EXPECT_EQ(poly2dMakeCCW(points.data(), 5, -5), 1);
    expectPoints(points, kCounterClockwise);
}

TEST(Poly2dMakeCCW, TakesNoDirectionForCounterClockwise) {
    Outline points = kEight;
    EXPECT_EQ(poly2dMakeCCW(points.data(), 5, 1), 1);
    expectPoints(points, kEight);
    EXPECT_EQ(poly2dMakeCCW(points.data(), 5, 0), 1);
    expectPoints(points, {{0, 0}, {0, 10}, {10, 0}, {10, 10}, {0, 0}});
    Outline two{{1, 2}, {3, 4}};
    EXPECT_EQ(poly2dMakeCCW(two.data(), 2, 0), 1);
    expectPoints(two, {{3, 4}, {1, 2}});
    EXPECT_EQ(poly2dMakeCCW(nullptr, 0, 0), 1);
    EXPECT_EQ(poly2dMakeCCW(nullptr, 3, 1), 1);
}

TEST(Poly2dReverseOrder, ReversesInPlaceWithTheClosingPoint) {
    Outline odd{{1, 1.5}, {2, 2.5}, {3, 3.5}};
    EXPECT_EQ(poly2dReverseOrder(odd.data(), 3), 1);
    expectPoints(odd, {{3, 3.5}, {2, 2.5}, {1, 1.5}});
    Outline even{{1, 1}, {2, 2}, {3, 3}, {1, 1}};
    EXPECT_EQ(poly2dReverseOrder(even.data(), 4), 1);
    expectPoints(even, {{1, 1}, {3, 3}, {2, 2}, {1, 1}});
}

TEST(Poly2dReverseOrder, OfFewPointsChangesNothing) {
    Outline one{{1, 2}, {8, 8}};
    EXPECT_EQ(poly2dReverseOrder(one.data(), 1), 1);
    EXPECT_EQ(poly2dReverseOrder(one.data(), 0), 1);
    expectPoints(one, {{1, 2}, {8, 8}});
    EXPECT_EQ(poly2dReverseOrder(nullptr, 5), 0);
    EXPECT_EQ(poly2dReverseOrder(nullptr, 0), 0);
}

/// A record of doubles, laid out as callers do: the count, four bytes of padding, the points.
class Record2D {
  public:
    explicit Record2D(const Outline& outline) : storage_(1 + 2 * outline.size() + 2) {
        const DWORD count = countOf(outline);
        auto* bytes = reinterpret_cast<unsigned char*>(storage_.data());
        std::memcpy(bytes, &count, sizeof count);
        if (count != 0) std::memcpy(bytes + 8, outline.data(), outline.size() * sizeof(tagPOINT2D));
    }
    const tagPOLY2D* get() const { return reinterpret_cast<const tagPOLY2D*>(storage_.data()); }

  private:
    std::vector<double> storage_;
};

int compare(const Outline& a, const Outline& b, int isClosed) {
    const Record2D recordA(a);
    const Record2D recordB(b);
    return poly2dCompareDirections(recordA.get(), recordB.get(), isClosed);
}

TEST(Poly2dCompareDirections, OfClosedOutlinesComparesAllThreeAnswers) {
    EXPECT_EQ(compare(kCounterClockwise, {{50, 50}, {60, 50}, {55, 60}, {50, 50}}, 1), 1);
    EXPECT_EQ(compare(kCounterClockwise, kClockwise, 1), 0);
    EXPECT_EQ(compare(kClockwise, kClockwise, 7), 1);
    EXPECT_EQ(compare(kEight, kEight, 1), 1);
    EXPECT_EQ(compare(kEight, kCounterClockwise, 1), 0);
    EXPECT_EQ(compare(kEight, kClockwise, 1), 0);
    EXPECT_EQ(compare({}, kEight, 1), 1);
}

TEST(Poly2dCompareDirections, OfOpenChainsComparesTheirEnds) {
    const Outline chain{{0, 0}, {5, 9}, {10, 0}};
    EXPECT_EQ(compare(chain, {{1, 1}, {9, 1}}, 0), 1);
    EXPECT_EQ(compare(chain, {{9, 1}, {1, 1}}, 0), 0);
    // Only one of the two conditions holds.
    EXPECT_EQ(compare({{0, 0}, {1, 0}}, {{1, 0}, {5, 0}}, 0), 0);
    EXPECT_EQ(compare({{1, 0}, {5, 0}}, {{0, 0}, {1, 0}}, 0), 0);
}

TEST(Poly2dCompareDirections, EqualDistancesAreNotTheSameWay) {
    EXPECT_EQ(compare({{0, 0}, {10, 0}}, {{0, 5}, {0, -5}}, 0), 0);
    EXPECT_EQ(compare({{0, 0}, {10, 0}}, {{0, 5}, {0, -5.0000001}}, 0), 1);
    EXPECT_EQ(compare({{0, 0}}, {{0, 0}}, 0), 0);
}

TEST(Poly2dCompareDirections, OfNothingIsZero) {
    const Record2D record(kClockwise);
    EXPECT_EQ(poly2dCompareDirections(nullptr, record.get(), 1), 0);
    EXPECT_EQ(poly2dCompareDirections(record.get(), nullptr, 0), 0);
    EXPECT_EQ(compare({}, kClockwise, 0), 0);
    EXPECT_EQ(compare(kClockwise, {}, 0), 0);
}

TEST(Poly2dRemoveDoublePoints, ComparesWithinTheTolerance) {
    const double below = std::nextafter(1e-7, 0.0);
    Outline one{{0, 0}, {below, -below}};
    EXPECT_EQ(poly2dRemoveDoublePoints(one.data(), 2), 1U);
    Outline x{{0, 0}, {1e-7, 0}};
    EXPECT_EQ(poly2dRemoveDoublePoints(x.data(), 2), 2U);
    Outline y{{0, 0}, {0, -1e-7}};
    EXPECT_EQ(poly2dRemoveDoublePoints(y.data(), 2), 2U);
    Outline lost{{kNaN, 0}, {kNaN, 0}};
    EXPECT_EQ(poly2dRemoveDoublePoints(lost.data(), 2), 2U);
    Outline same{{0, 0}, {5e-8, 5e-8}};
    EXPECT_EQ(poly2dRemoveDoublePoints(same.data(), 2), 1U);
}

TEST(Poly2dRemoveDoublePoints, MovesHalfOfTheTail) {
    // Behind the removed point stand seven points; half of them are three and a half.
    Outline points{{0, 0}, {0, 0}, {2, 20}, {3, 30}, {4, 40}, {5, 50}, {6, 60}, {7, 70}, {8, 80}};
    EXPECT_EQ(poly2dRemoveDoublePoints(points.data(), 9), 8U);
    expectPoints(points, {{0, 0}, {2, 20}, {3, 30}, {4, 40}, {5, 40}, {5, 50}, {6, 60}, {7, 70}, {8, 80}});
}

/// (0, 0), (1, -1), (2, -2) ... with a double point at index 11.
Outline diagonalWithDoublePoint(int count) {
    Outline points;
    for (int i = 0; i < count; ++i)
        points.push_back({static_cast<double>(i), static_cast<double>(-i)});
    points[11] = points[10];
    return points;
}

TEST(Poly2dRemoveDoublePoints, LeavesTheBackHalfOfALongList) {
    Outline points = diagonalWithDoublePoint(99);
    const Outline before = points;
    EXPECT_EQ(poly2dRemoveDoublePoints(points.data(), 99), 98U);
    // 87 points stand behind the removed one; 43 of them move down, and the x of one more.
    for (std::size_t i = 11; i < 54; ++i)
        EXPECT_EQ(points[i].x, before[i + 1].x);
    EXPECT_EQ(points[54].x, 55.0);
    EXPECT_EQ(points[54].y, -54.0);
    for (std::size_t i = 55; i < 99; ++i)
        EXPECT_EQ(points[i].x, before[i].x) << "this half stays";
}

TEST(Poly2dRemoveDoublePoints, FindsTheDoublePointThatAnEvenTailLeaves) {
    Outline points = diagonalWithDoublePoint(100);
    // 88 points stand behind: 44 move down, so that the point at 55 stands at 54 and 55, and one of them goes. Of the
    // 43 behind that one 21 and a half move, which leaves no double point.
    EXPECT_EQ(poly2dRemoveDoublePoints(points.data(), 100), 98U);
    EXPECT_EQ(points[54].x, 55.0);
    EXPECT_EQ(points[55].x, 56.0);
    EXPECT_EQ(points[75].x, 76.0);
    EXPECT_EQ(points[75].y, -76.0);
    EXPECT_EQ(points[76].x, 77.0);
    EXPECT_EQ(points[76].y, -76.0);
    EXPECT_EQ(points[77].x, 77.0);
}

TEST(Poly2dRemoveDoublePoints, ReturnsCountsBelowTwoUnchanged) {
    Outline points{{1, 1}, {1, 1}};
    EXPECT_EQ(poly2dRemoveDoublePoints(points.data(), 0), 0U);
    EXPECT_EQ(poly2dRemoveDoublePoints(points.data(), 1), 1U);
    EXPECT_EQ(poly2dRemoveDoublePoints(nullptr, 0), 0U);
    EXPECT_EQ(poly2dRemoveDoublePoints(nullptr, 6), 6U);
}

TEST(Poly2dRemoveDoublePoints, AgreesWithMovingDoubleByDouble) {
    unsigned seed = 3100;
    for (RandomOutline2D::Grid grid : velquad::test::kRandomGrids2D) {
        grid.specialOdds = 0;
        grid.side = 2;
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 2000; ++round) {
            Outline points = random.outline(1, 30);
            std::vector<double> values;
            for (const tagPOINT2D& p : points)
                values.insert(values.end(), {p.x, p.y});
            std::size_t expectedCount = points.size();
            const auto expected = velquad::test::removeDoublePointsMovingHalfTails(values, &expectedCount);
            ASSERT_EQ(poly2dRemoveDoublePoints(points.data(), countOf(points)), expectedCount)
                << "seed " << seed << ", round " << round;
            for (std::size_t i = 0; i < points.size(); ++i) {
                ASSERT_EQ(points[i].x, expected[2 * i]) << "seed " << seed << ", round " << round;
                ASSERT_EQ(points[i].y, expected[2 * i + 1]) << "seed " << seed << ", round " << round;
            }
        }
    }
}

}  // namespace
