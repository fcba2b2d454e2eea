// Membership of a point in an outline of doubles, and the position of two such outlines to one another.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "frame/kernels.h"
#include "tests/support/polygon2d_reference.h"
#include "tests/support/random_outline_2d.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::RandomOutline2D;
using velquad::test::reference2d::Outline;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kBelowTolerance = std::nextafter(1e-7, 0.0);

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

int inside(const Outline& outline, const tagPOINT2D& test) {
    return poly2dIsPointInside(outline.data(), countOf(outline), &test);
}

int position(const Outline& a, int closedA, const Outline& b, int closedB) {
    return poly2dGetRelativePosition(a.data(), countOf(a), closedA, b.data(), countOf(b), closedB);
}

const Outline kSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Outline kClosedSquare{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};

struct Case {
    const char* name;
    Outline outline;
    tagPOINT2D test;
    int expected;
};

class Membership2D : public testing::TestWithParam<Case> {};

TEST_P(Membership2D, HasItsPlace) {
    EXPECT_EQ(inside(GetParam().outline, GetParam().test), GetParam().expected);
}

const Case kCases[] = {
    {"SquareMiddle", kSquare, {5.5, 4.5}, 1},
    {"SquareFarOff", kSquare, {20, 5}, 0},
    {"SquareEdge", kSquare, {10, 5.25}, -1},
    {"SquareVertex", kSquare, {10, 10}, -1},
    {"SquareClosingEdge", kSquare, {0, 5}, -1},
    {"SquareExtensionOfEdge", kSquare, {20, 0}, 0},
    {"ClosedSquareMiddle", kClosedSquare, {5, 5}, 1},
    {"ClosedSquareFarOff", kClosedSquare, {20, 5}, 0},
    {"ClosedSquareEdge", kClosedSquare, {10, 5}, -1},
    {"ClosedSquareVertex", kClosedSquare, {10, 10}, -1},
    {"ManyClosingPoints", {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {5e-8, 0}, {0, -5e-8}}, {5, 5}, 1},
    {"RepeatedPoints", {{0, 0}, {5e-8, 5e-8}, {10, 0}, {10, 10}, {10, 10}, {0, 10}}, {5, 5}, 1},
    {"RayTouchesVertexFromOutside", {{10, 5}, {4, 0}, {-10, 5}, {-10, 9}, {10, 9}}, {0, 0}, 0},
    {"RayTouchesVertexFromInside", {{8, 4}, {4, 0}, {2, 4}, {-9, 4}, {-9, -4}, {8, -4}}, {0, 0}, 1},
    {"RayCrossesAtVertex", {{3, 5}, {4, 0}, {3, -5}, {-9, -5}, {-9, 5}}, {0, 0}, 1},
    {"RayTouchesThenCrosses", {{4, 9}, {4, 0}, {4, -9}, {9, 0}, {9, 8}, {8, 0}, {7, 9}}, {0, 0}, 0},
    {"EdgeOnRayCrossed", {{5, 5}, {5, 0}, {7, 0}, {7, -5}, {-9, -5}, {-9, 5}}, {0, 0}, 1},
    {"EdgeOnRayTouched", {{5, 5}, {5, 0}, {7, 0}, {7, 5}}, {0, 0}, 0},
    {"TestOnEdgeOfRayLine", {{5, 5}, {5, 0}, {-7, 0}, {-7, 5}}, {0, 0}, -1},
    {"FlatBetweenVertices", {{0, 0}, {10, 0}, {20, 0}}, {5, 0}, 0},
    {"FlatAtVertex", {{0, 0}, {10, 0}, {20, 0}}, {10, 0}, -1},
    {"FlatBesideLine", {{0, 0}, {10, 0}, {20, 0}}, {5, 1}, 0},
    {"ThreePointsThatAreOneAtPoint", {{5, 0}, {5 + 5e-8, 0}, {5, 5e-8}}, {5, 0}, -1},
    {"ThreePointsThatAreOneElsewhere", {{5, 0}, {5 + 5e-8, 0}, {5, 5e-8}}, {5, 1}, 0},
    {"OnePointWithinTolerance", {{0, 0}}, {-5e-8, 5e-8}, -1},
    {"OnePointElsewhere", {{3, 4}}, {3, 5}, 0},
    {"WoundRoundTwice", {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {9, 0}, {9, 9}, {0, 9}}, {4, 5}, 0},
    {"TestIsNoNumber", kSquare, {kNaN, 5}, 0},
    {"TestIsInfinite", kSquare, {kInfinity, 5}, 0},
    {"NoNumbersAtAll", {{kNaN, kNaN}, {kNaN, kNaN}, {kNaN, kNaN}}, {0, 0}, 0},
    {"Empty", {}, {0, 0}, 0},
};

INSTANTIATE_TEST_SUITE_P(Table, Membership2D, testing::ValuesIn(kCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(Membership2DTest, EmptyOutlineReadsNoPointer) {
    EXPECT_EQ(poly2dIsPointInside(nullptr, 0, nullptr), 0);
}

TEST(Membership2DTest, VertexIsMetWithinTheTolerance) {
    const Outline flat{{0, 0}, {10, 0}, {20, 0}};
    // On the line of a flat outline only vertices are met, so that nothing else answers -1.
    EXPECT_EQ(inside(flat, {kBelowTolerance, 0}), -1);
    EXPECT_EQ(inside(flat, {1e-7, 0}), 0);
    EXPECT_EQ(inside(flat, {-kBelowTolerance, 0}), -1);
    EXPECT_EQ(inside(flat, {-1e-7, 0}), 0);
    EXPECT_EQ(inside(flat, {-2e-7, 0}), 0);
}

TEST(Membership2DTest, ClosingPointIsDroppedWithinTheTolerance) {
    // Two points that are one with the first: a single point is left.
    EXPECT_EQ(inside({{0, 0}, {kBelowTolerance, 0}}, {0, 0}), -1);
    EXPECT_EQ(inside({{0, 0}, {kBelowTolerance, 0}}, {2e-7, 0}), 0);
    // At the tolerance two points are left. The test point meets the second one first.
    EXPECT_EQ(inside({{0, 0}, {1e-7, 0}}, {1e-7, 0}), -1);
    EXPECT_EQ(inside({{0, 0}, {1e-7, 0}}, {1.9e-7, 0}), -1) << "one with the second point";
}

TEST(Membership2DTest, EdgeNearerThanTheToleranceOnTheRayIsTheOutline) {
    // The first edge makes (0, 10) the target; the ray meets the lower edge at `below` / -10 of its length.
    const auto withLowerEdgeAt = [](double y) {
        return inside({{-20, 5}, {0, 10}, {20, 5}, {20, y}, {-20, y}}, {0, 0});
    };
    EXPECT_EQ(withLowerEdgeAt(-9.99e-7), -1);
    EXPECT_EQ(withLowerEdgeAt(-1.01e-6), 1);
    EXPECT_EQ(withLowerEdgeAt(9.99e-7), -1);
    EXPECT_EQ(withLowerEdgeAt(1.01e-6), 0);
}

TEST(Membership2DTest, AgreesWithTheIntegerTwinOnSmallIntegers) {
    std::mt19937 random(26);
    for (int round = 0; round < 20000; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 26, round " << round);
        std::vector<tagPOINT> integers(1 + random() % 9);
        Outline doubles;
        for (tagPOINT& p : integers) {
            p = {static_cast<LONG>(random() % 9), static_cast<LONG>(random() % 9)};
            doubles.push_back({static_cast<double>(p.x), static_cast<double>(p.y)});
        }
        const tagPOINT test{static_cast<LONG>(random() % 9), static_cast<LONG>(random() % 9)};
        ASSERT_EQ(inside(doubles, {static_cast<double>(test.x), static_cast<double>(test.y)}),
                  polyIsPointInside(integers.data(), static_cast<DWORD>(integers.size()), &test));
    }
}

TEST(Membership2DTest, MatchesTheReferenceAtEveryTolerance) {
    unsigned seed = 2600;
    int counts[3] = {0, 0, 0};
    for (const RandomOutline2D::Grid& grid : velquad::test::kRandomGrids2D) {
        RandomOutline2D random(++seed, grid);
        for (int round = 0; round < 8000; ++round) {
            const Outline outline = random.outline(1, 12);
            const tagPOINT2D test =
                random.below(8) == 0 ? outline[random.below(countOf(outline))] : random.point();
            const int expected = velquad::test::reference2d::isPointInside(outline, test);
            ++counts[expected + 1];
            ASSERT_EQ(inside(outline, test), expected) << "seed " << seed << ", round " << round;
        }
    }
    for (const int count : counts)
        EXPECT_GT(count, 5000);
}

TEST(Membership2DTest, MatchesTheReferenceOnLongOutlines) {
    std::mt19937 random(2650);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(testing::Message() << "seed 2650, round " << round);
        Outline outline{{0, 0}};
        for (int k = 0; k < 400; ++k)
            outline.push_back({outline.back().x + unit(random), outline.back().y + unit(random)});
        for (int k = 0; k < 40; ++k) {
            tagPOINT2D test = outline[random() % outline.size()];
            test.x += unit(random);
            test.y += unit(random);
            ASSERT_EQ(inside(outline, test), velquad::test::reference2d::isPointInside(outline, test));
        }
    }
}

/// Long outlines with all that keeps an edge from being passed over: steps across the line from the test point to the
/// second vertex, vertices just beside it, edges that are vertical but for a few bits, leaps, and no numbers.
class OutlineBesideRay {
  public:
    OutlineBesideRay(unsigned seed, double scale) : random_(seed), scale_(scale) {}

    /// @param test  receives the test point.
    Outline outline(tagPOINT2D& test) {
        test = {scale_ * unit(), scale_ * unit()};
        target_ = {scale_ * unit(), scale_ * unit()};
        Outline result{{scale_ * unit(), scale_ * unit()}, target_};
        const std::size_t count = 20 + random_() % 300;
        while (result.size() < count)
            result.push_back(next(result.back(), test));
        return result;
    }

  private:
    double unit() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random_); }

    tagPOINT2D next(const tagPOINT2D& last, const tagPOINT2D& test) {
        const double step = scale_ / 64.0;
        switch (random_() % 128) {
            case 0:
            case 1:
            case 2:
                return {scale_ * unit(), scale_ * unit()};
            case 3:
                return {8.0 * scale_ * unit(), 8.0 * scale_ * unit()};
            case 4:
                return random_() % 4 == 0 ? tagPOINT2D{kNaN, last.y} : last;
            case 5:
                return random_() % 4 == 0 ? tagPOINT2D{last.x, kInfinity} : last;
            case 6:
            case 7:
            case 8:
            case 9:
            case 10: {
                const double along = 2.0 * unit();
                const double beside = std::ldexp(unit(), -10 - static_cast<int>(random_() % 44));
                const double dx = target_.x - test.x;
                const double dy = target_.y - test.y;
                return {test.x + along * dx - beside * dy, test.y + along * dy + beside * dx};
            }
            default:
                break;
        }
        if (random_() % 3 != 0) return {last.x + step * unit(), last.y + step * unit()};
        // A width from just above the rounding of coordinates on, or none.
        const double width = random_() % 2 == 0 ? 0.0 : std::ldexp(unit(), -static_cast<int>(random_() % 54));
        return {last.x + scale_ * width, last.y + step * unit()};
    }

    std::mt19937 random_;
    double scale_;
    tagPOINT2D target_{};
};

TEST(Membership2DTest, MatchesTheReferenceForEdgesBesideTheRayAtEveryKernelLevel) {
    const std::size_t usual = velquad::frame::kernelLevel();
    for (std::size_t level = 0; level < velquad::frame::kernelLevelCount(); ++level) {
        velquad::frame::selectKernelLevel(level);
        for (const double scale : {1e-6, 1.0, 100.0, 30000.0, 1e12, 1e99, 1e150}) {
            SCOPED_TRACE(testing::Message() << "seed 2660, level " << level << ", scale " << scale);
            OutlineBesideRay random(2660, scale);
            int counts[3] = {0, 0, 0};
            for (int round = 0; round < 1500; ++round) {
                tagPOINT2D test{};
                const Outline outline = random.outline(test);
                const int expected = velquad::test::reference2d::isPointInside(outline, test);
                ++counts[expected + 1];
                ASSERT_EQ(inside(outline, test), expected) << "round " << round;
            }
            EXPECT_GT(counts[1], 100);
            EXPECT_GT(counts[2], 100);
        }
    }
    velquad::frame::selectKernelLevel(usual);
}

TEST(Membership2DTest, NotchIsFoundAtEveryPlaceOfALongRun) {
    const std::size_t usual = velquad::frame::kernelLevel();
    for (std::size_t level = 0; level < velquad::frame::kernelLevelCount(); ++level) {
        velquad::frame::selectKernelLevel(level);
        for (int notch = 3; notch < 150; ++notch) {
            SCOPED_TRACE(testing::Message() << "level " << level << ", notch " << notch);
            Outline outline;
            for (int k = 0; k < 160; ++k)
                outline.push_back({10.0 * k, 100.25 + k % 2});
            outline.push_back({1600.5, 200.5});
            outline.push_back({-10.5, 200.5});
            const tagPOINT2D test{10.0 * notch, 0.5};
            EXPECT_EQ(inside(outline, test), 0);
            outline[static_cast<std::size_t>(notch)].y = -100.0;
            EXPECT_EQ(inside(outline, test), 1);
        }
    }
    velquad::frame::selectKernelLevel(usual);
}

const Outline kOuter{{0, 0}, {20, 0}, {20, 20}, {0, 20}};
const Outline kInner{{5, 5}, {9, 5}, {9, 9}, {5, 9}};
const Outline kApartFromBoth{{30, 0}, {40, 0}, {40, 20}};

TEST(RelativePosition2D, OfNestedOutlinesTellsWhichOneIsInside) {
    EXPECT_EQ(position(kOuter, 1, kInner, 1), 2);
    EXPECT_EQ(position(kInner, 1, kOuter, 1), 3);
    EXPECT_EQ(position(kOuter, 1, kInner, 0), 2);
    EXPECT_EQ(position(kOuter, 0, kInner, 1), 0);
    EXPECT_EQ(position(kInner, 0, kOuter, 1), 3);
}

TEST(RelativePosition2D, OfOutlinesApartIsZero) {
    EXPECT_EQ(position(kOuter, 1, kApartFromBoth, 1), 0);
    EXPECT_EQ(position(kApartFromBoth, 1, kInner, 1), 0);
    EXPECT_EQ(poly2dGetRelativePosition(nullptr, 0, 1, kOuter.data(), 4, 1), 0);
    EXPECT_EQ(poly2dGetRelativePosition(kOuter.data(), 4, 1, nullptr, 0, 1), 0);
    EXPECT_EQ(poly2dGetRelativePosition(nullptr, 0, 0, nullptr, 0, 0), 0);
}

TEST(RelativePosition2D, OfCrossingOutlinesIsOne) {
    EXPECT_EQ(position(kOuter, -1, {{10, 10}, {30, 10}, {30, 15}}, 256), 1);
    EXPECT_EQ(position(kOuter, 0, {{-5, 10}, {5, 10}}, 0), 0) << "an open chain has no closing edge";
}

TEST(RelativePosition2D, EdgesOfTheFirstOutlineEndBeforeTheirEnd) {
    const Outline chain{{0, 0}, {10, 0}};
    const Outline across{{10, -5}, {10, 5}};
    EXPECT_EQ(position(chain, 0, across, 0), 0) << "the chain ends on the other one";
    EXPECT_EQ(position(across, 0, chain, 0), 1) << "the inside of an edge is touched";
    const Outline turned{{10, 0}, {0, 0}};
    EXPECT_EQ(position(turned, 0, across, 0), 1) << "the chain starts on the other one";
    EXPECT_EQ(position({{0, 0}, {10, 0}, {10, 1}}, 0, {{10, -5}, {15, 5}, {10, 0}}, 0), 1)
        << "the end of an edge is the start of the next one";
}

TEST(RelativePosition2D, EdgesOfTheSecondOutlineReachATouchBeyondTheirEnds) {
    const Outline across{{0, -5}, {0, 5}};
    EXPECT_EQ(position(across, 0, {{1 + 0.9e-7, 0}, {0.9e-7, 0}}, 0), 1);
    EXPECT_EQ(position(across, 0, {{1 + 1.1e-7, 0}, {1.1e-7, 0}}, 0), 0);
    EXPECT_EQ(position(across, 0, {{0.9e-7, 0}, {1 + 0.9e-7, 0}}, 0), 1);
    EXPECT_EQ(position(across, 0, {{1.1e-7, 0}, {1 + 1.1e-7, 0}}, 0), 0);
}

TEST(RelativePosition2D, PointsThatAreOneMakeNoEdge) {
    const Outline speck{{10, 0}, {10 + 5e-8, 5e-8}, {10, 0}};
    EXPECT_EQ(position(kOuter, 1, speck, 1), 2) << "on the outline, but without an edge";
    const Outline tiny{{10, 0}, {10, 1e-7}, {10, 0}};
    EXPECT_EQ(position(kOuter, 1, tiny, 1), 1) << "an edge from the tolerance on";
}

TEST(RelativePosition2D, PointsWithoutNumbersHaveNoContact) {
    EXPECT_EQ(position(kOuter, 0, {{kNaN, 5}, {30, 5}, {5, kNaN}}, 0), 0);
    EXPECT_EQ(position({{kNaN, 0}, {20, 0}, {20, 20}}, 0, {{15, 10}, {25, 10}}, 0), 1);
}

TEST(RelativePosition2D, MatchesThePairLoopAtEveryTolerance) {
    unsigned seed = 2700;
    int counts[4] = {0, 0, 0, 0};
    for (RandomOutline2D::Grid grid : velquad::test::kRandomGrids2D) {
        for (const unsigned side : {grid.side, 30U}) {
            grid.side = side;
            RandomOutline2D random(++seed, grid);
            for (int round = 0; round < 3000; ++round) {
                const Outline a = random.outline(1, random.below(5) == 0 ? 40 : 5);
                Outline b = random.outline(1, random.below(5) == 0 ? 40 : 5);
                // Drawn together about a point, so that one can lie within the other.
                if (random.below(3) == 0) {
                    const tagPOINT2D center = random.point();
                    for (tagPOINT2D& p : b)
                        p = {center.x + (p.x - center.x) * 0.0625, center.y + (p.y - center.y) * 0.0625};
                }
                const bool closedA = random.below(3) != 0;
                const bool closedB = random.below(3) != 0;
                const int expected = velquad::test::reference2d::relativePosition(a, closedA, b, closedB);
                ++counts[expected];
                ASSERT_EQ(position(a, closedA ? 1 : 0, b, closedB ? 1 : 0), expected)
                    << "seed " << seed << ", round " << round;
            }
        }
    }
    for (const int count : counts)
        EXPECT_GT(count, 100);
}

}  // namespace
