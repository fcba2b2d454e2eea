#include "geometry/arbitrary_ellipse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "geometry/compass.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/ellipse_reference.h"
#include "tests/support/ellipse_walk.h"
#include "velquad/geometry.h"

namespace {

using velquad::geometry::CMatArbitraryEllipse;
using velquad::test::Coordinates;
using velquad::test::takePolygon;
using velquad::test::TiltedEllipse;
using velquad::test::WalkRecorder;

constexpr double kPi = 3.141592653589793;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Coordinates polygonOf(const TiltedEllipse& q, SIZE_T* blockBytes = nullptr) {
    const tagPOINT2D center{q.centerX, q.centerY};
    return takePolygon(polyGetArbitraryEllipse(&center, q.a, q.b, q.angle, 1, 0, q.scaleX, q.scaleY),
                       blockBytes);
}

CMatArbitraryEllipse makeEllipse(const TiltedEllipse& q) {
    return {nullptr, 7, -8, q.centerX, q.centerY, q.a, q.b, q.angle, q.scaleX, q.scaleY};
}

TEST(Compass, TurnsClockwiseFromAboveAndEndsAtThePixelItself) {
    const Coordinates steps{{0, -1}, {1, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, 0}};
    for (int i = 0; i <= 8; ++i) {
        EXPECT_EQ(velquad::geometry::kCompassX[i], steps[static_cast<std::size_t>(i)].first);
        EXPECT_EQ(velquad::geometry::kCompassY[i], steps[static_cast<std::size_t>(i)].second);
    }
}

TEST(ArbitraryEllipse, OfACircle) {
    EXPECT_EQ(polygonOf({0.0, 0.0, 3.0, 3.0, 0.0, 1.0, 1.0}), (Coordinates{{3, 0},
                                                                           {3, 1},
                                                                           {2, 2},
                                                                           {1, 3},
                                                                           {0, 3},
                                                                           {-1, 3},
                                                                           {-2, 2},
                                                                           {-3, 1},
                                                                           {-3, 0},
                                                                           {-3, -1},
                                                                           {-2, -2},
                                                                           {-1, -3},
                                                                           {0, -3},
                                                                           {1, -3},
                                                                           {2, -2},
                                                                           {3, -1},
                                                                           {3, 0}}));
}

TEST(ArbitraryEllipse, OnOblongPixels) {
    EXPECT_EQ(
        polygonOf({20.0, 10.0, 4.0, 2.0, 0.5, 1.0, 0.5}),
        (Coordinates{{23, 25}, {23, 24}, {24, 23}, {24, 22}, {23, 21}, {23, 20}, {23, 19}, {22, 18}, {21, 17},
                     {20, 16}, {19, 15}, {18, 15}, {17, 15}, {17, 16}, {16, 17}, {16, 18}, {17, 19}, {17, 20},
                     {17, 21}, {18, 22}, {19, 23}, {20, 24}, {21, 25}, {22, 25}, {23, 25}}));
}

TEST(ArbitraryEllipse, MayCloseBeforeItHasGoneRound) {
    // The walk turns back on the upper side and meets its start again.
    const Coordinates expected{{23, 12}, {22, 13}, {21, 12}, {20, 12}, {19, 12}, {18, 11},
                               {17, 10}, {17, 9},  {17, 8},  {16, 8},  {16, 9},  {17, 10},
                               {18, 11}, {19, 12}, {20, 12}, {21, 12}, {22, 13}, {23, 12}};
    EXPECT_EQ(polygonOf({20.0, 10.0, 4.0, 2.0, kPi / 6, 1.0, 1.0}), expected);
    const tagPOINT2D center{20.0, 10.0};
    EXPECT_EQ(takePolygon(polyGetArbitraryEllipse(&center, 4.0, 2.0, 30.0, 1, 1, 1.0, 1.0)), expected);
    EXPECT_EQ(takePolygon(polyGetArbitraryEllipse(&center, 4.0, 2.0, -30.0, 0, 1, 1.0, 1.0)), expected);
    EXPECT_EQ(takePolygon(polyGetArbitraryEllipse(&center, 4.0, 2.0, -kPi / 6, 0, 0, 1.0, 1.0)), expected);
}

TEST(ArbitraryEllipse, SmallerThanAPixelClosesAtOnce) {
    const Coordinates points = polygonOf({0.0, 0.0, 0.2, 0.2, 0.0, 1.0, 1.0});
    ASSERT_EQ(points.size(), 4U);
    EXPECT_EQ(points.front(), points.back());
}

TEST(ArbitraryEllipse, WithoutExtentIsNone) {
    const tagPOINT2D center{5.0, 5.0};
    const auto polygon = [&](double a, double b, double scaleX, double scaleY) {
        return polyGetArbitraryEllipse(&center, a, b, 0.0, 1, 0, scaleX, scaleY);
    };
    EXPECT_EQ(polygon(0.0, 5.0, 1.0, 1.0), nullptr);
    EXPECT_EQ(polygon(5.0, 0.0, 1.0, 1.0), nullptr);
    EXPECT_EQ(polygon(-5.0, 5.0, 1.0, 1.0), nullptr);
    EXPECT_EQ(polygon(5.0, 5.0, 1.0, -1.0), nullptr);
    EXPECT_EQ(polygon(5.0, 5.0, kInfinity, 1.0), nullptr);
    WalkRecorder walk;
    EXPECT_EQ(matDrawArbitraryEllipse(&center, 0.0, 5.0, 0.0, 1, 0, 1.0, 1.0, WalkRecorder::record,
                                      walk.firstValue(), WalkRecorder::kSecondValue),
              0);
    EXPECT_TRUE(walk.points.empty());
    EXPECT_EQ(polyGetArbitraryEllipse(nullptr, 5.0, 5.0, 0.0, 1, 0, 1.0, 1.0), nullptr);
    EXPECT_EQ(matDrawArbitraryEllipse(nullptr, 5.0, 5.0, 0.0, 1, 0, 1.0, 1.0, nullptr, 0, 0), 0);
    // Two negative signs are an extent.
    EXPECT_EQ(takePolygon(polygon(-5.0, -5.0, -1.0, -1.0)).empty(), false);
}

TEST(ArbitraryEllipse, KnowsItsState) {
    CMatArbitraryEllipse ellipse = makeEllipse({20.0, 10.0, 8.0, 4.0, 0.0, 2.0, 1.0});
    EXPECT_EQ(ellipse.centerX, 20.0);
    EXPECT_EQ(ellipse.centerY, 10.0);
    EXPECT_EQ(ellipse.squaredSemiAxisA, 64.0);
    EXPECT_EQ(ellipse.squaredSemiAxisB, 16.0);
    EXPECT_EQ(ellipse.sinAngle, 0.0);
    EXPECT_EQ(ellipse.cosAngle, 1.0);
    EXPECT_EQ(ellipse.startPoint.x, 14);
    EXPECT_EQ(ellipse.startPoint.y, 10);
    EXPECT_EQ(ellipse.startDirection, 4);
    EXPECT_EQ(ellipse.isFirstStep, 1);
    EXPECT_EQ(ellipse.callbackArg1, 7U);
    EXPECT_EQ(ellipse.callbackArg2, -8);
    EXPECT_GT(ellipse.Walk(), 2U);
    EXPECT_EQ(ellipse.isFirstStep, 0);
}

TEST(ArbitraryEllipse, MeasuresTheErrorOfANeighbour) {
    CMatArbitraryEllipse ellipse = makeEllipse({20.0, 10.0, 8.0, 4.0, 0.0, 2.0, 1.0});
    tagPOINT neighbour{};
    EXPECT_EQ(ellipse.GetNeighbourError({12, 11}, &neighbour, 1), std::fabs(0.0 / 16.0 + 36.0 / 64.0 - 1.0));
    EXPECT_EQ(neighbour.x, 13);
    EXPECT_EQ(neighbour.y, 10);
    EXPECT_EQ(ellipse.GetNeighbourError({12, 11}, &neighbour, 8), std::fabs(1.0 / 16.0 + 16.0 / 64.0 - 1.0));
    EXPECT_EQ(neighbour.x, 12);
}

TEST(ArbitraryEllipse, LooksForItsDirectionOnOneSideOnly) {
    const auto startDirection = [](double degrees) {
        return makeEllipse({0.0, 0.0, 100.0, 50.0, degrees / 180.0 * kPi, 1.0, 1.0}).startDirection;
    };
    // The end of the axis at 0 degrees is compass direction 2, at 45 degrees 3, and so on.
    EXPECT_EQ(startDirection(0.0), 4);
    EXPECT_EQ(startDirection(30.0), 5);
    EXPECT_EQ(startDirection(50.0), 2);
    EXPECT_EQ(startDirection(70.0), 6);
    EXPECT_EQ(startDirection(115.0), 7);
    EXPECT_EQ(startDirection(160.0), 0);
    EXPECT_EQ(startDirection(205.0), 1);
    EXPECT_EQ(startDirection(250.0), 2);
    EXPECT_EQ(startDirection(300.0), 3);
    EXPECT_EQ(startDirection(340.0), 4);
    for (const double degrees : {10.0, 95.0, 140.0, 185.0, 230.0, 275.0, 320.0})
        EXPECT_EQ(startDirection(degrees), 2) << degrees;
}

TEST(ArbitraryEllipse, CallsBackWithIndexAndUserValues) {
    const tagPOINT2D center{20.0, 10.0};
    WalkRecorder walk;
    EXPECT_EQ(matDrawArbitraryEllipse(&center, 40.0, 21.0, 0.7, 1, 0, 1.0, 1.0, WalkRecorder::record,
                                      walk.firstValue(), WalkRecorder::kSecondValue),
              1);
    EXPECT_EQ(walk.points, polygonOf({20.0, 10.0, 40.0, 21.0, 0.7, 1.0, 1.0}));
    EXPECT_EQ(matDrawArbitraryEllipse(&center, 40.0, 21.0, 0.7, 1, 0, 1.0, 1.0, nullptr, 0, 0), 1);
}

TEST(ArbitraryEllipse, StopsWhereTheCallbackSaysSo) {
    const tagPOINT2D center{20.0, 10.0};
    const std::size_t count = polygonOf({20.0, 10.0, 12.0, 7.0, 0.7, 1.0, 1.0}).size();
    for (std::size_t stop = 0; stop < count; ++stop) {
        WalkRecorder walk;
        walk.stopAt = stop;
        EXPECT_EQ(matDrawArbitraryEllipse(&center, 12.0, 7.0, 0.7, 1, 0, 1.0, 1.0, WalkRecorder::record,
                                          walk.firstValue(), WalkRecorder::kSecondValue),
                  0);
        EXPECT_EQ(walk.points.size(), stop + 1);
    }
}

TEST(ArbitraryEllipse, GivesUpAfter131072Points) {
    const tagPOINT2D center{0.0, 0.0};
    WalkRecorder walk;
    EXPECT_EQ(matDrawArbitraryEllipse(&center, 1e6, 1e6, 0.0, 1, 0, 1.0, 1.0, WalkRecorder::record,
                                      walk.firstValue(), WalkRecorder::kSecondValue),
              0);
    EXPECT_EQ(walk.points.size(), 131073U);
    EXPECT_EQ(polyGetArbitraryEllipse(&center, 1e6, 1e6, 0.0, 1, 0, 1.0, 1.0), nullptr);
    // A circle of this size still closes.
    EXPECT_GT(polygonOf({0.0, 0.0, 20000.0, 20000.0, 0.0, 1.0, 1.0}).size(), 110000U);
}

TEST(ArbitraryEllipse, GrowsItsBlockBy128BytesWhenAPointWouldNotFit) {
    for (const double a : {0.3, 3.0, 5.0, 5.5, 6.0, 9.0, 30.0, 300.0}) {
        SIZE_T bytes = 0;
        const std::size_t count = polygonOf({0.0, 0.0, a, a, 0.0, 1.0, 1.0}, &bytes).size();
        SIZE_T expected = 256;
        while (4 + 8 * count > expected)
            expected += 128;
        EXPECT_EQ(bytes, expected) << count;
    }
}

TEST(ArbitraryEllipse, FreesItsBlockWithoutMemory) {
    const tagPOINT2D center{0.0, 0.0};
    EXPECT_GT(velquad::test::forEachFailingAllocation([&] {
                  void* handle = polyGetArbitraryEllipse(&center, 40.0, 30.0, 0.2, 1, 0, 1.0, 1.0);
                  const bool hasFailed = handle == nullptr;
                  polyFree(handle);
                  return hasFailed;
              }),
              3U);
}

TEST(ArbitraryEllipse, EndsForOddNumbers) {
    const auto walkEnds = [](double x, double a, double angle, double scale) {
        const tagPOINT2D center{x, 4.0};
        WalkRecorder walk;
        const int result =
            matDrawArbitraryEllipse(&center, a, 5.0, angle, 1, 0, scale, 1.0, WalkRecorder::record,
                                    walk.firstValue(), WalkRecorder::kSecondValue);
        EXPECT_LE(walk.points.size(), 131074U);
        return result == 0 || walk.points.front() == walk.points.back();
    };
    for (const double value : {kNan, kInfinity, -kInfinity, 1e300, 1e-300, 0.0}) {
        SCOPED_TRACE(value);
        EXPECT_TRUE(walkEnds(value, 6.0, 0.0, 1.0));
        EXPECT_TRUE(walkEnds(3.0, value, 0.0, 1.0));
        EXPECT_TRUE(walkEnds(3.0, 6.0, value, 1.0));
        EXPECT_TRUE(walkEnds(3.0, 6.0, 0.0, value));
    }
    EXPECT_TRUE(walkEnds(2147483647.0, 6.0, 0.0, 1.0));
}

class RandomArbitraryEllipse : public testing::Test {
  protected:
    template <class Check>
    void forRandomEllipses(Check check) {
        std::mt19937_64 random(99);
        const auto between = [&](double low, double high) {
            return std::uniform_real_distribution<double>(low, high)(random);
        };
        for (int i = 0; i < 60; ++i) {
            const TiltedEllipse q{between(-500.0, 500.0), between(-500.0, 500.0),
                                  between(0.1, 40.0),     between(0.1, i % 3 == 0 ? 1.5 : 40.0),
                                  between(-9.0, 9.0),     between(0.3, 2.0),
                                  between(0.3, 2.0)};
            SCOPED_TRACE(testing::Message()
                         << "ellipse " << i << ": " << q.centerX << ' ' << q.centerY << ' ' << q.a << ' '
                         << q.b << ' ' << q.angle << ' ' << q.scaleX << ' ' << q.scaleY);
            check(q);
        }
    }
};

TEST_F(RandomArbitraryEllipse, EqualsTheLiteralStepsOrDoesNotClose) {
    int closedCount = 0;
    forRandomEllipses([&](const TiltedEllipse& q) {
        const CMatArbitraryEllipse ellipse = makeEllipse(q);
        const Coordinates expected = velquad::test::referencePixelWalk(
            q, {ellipse.startPoint.x, ellipse.startPoint.y}, ellipse.startDirection);
        if (expected.empty()) {
            const tagPOINT2D center{q.centerX, q.centerY};
            EXPECT_EQ(polyGetArbitraryEllipse(&center, q.a, q.b, q.angle, 1, 0, q.scaleX, q.scaleY), nullptr);
        } else {
            EXPECT_EQ(polygonOf(q), expected);
            ++closedCount;
        }
    });
    EXPECT_GT(closedCount, 30);
}

TEST_F(RandomArbitraryEllipse, StartsAtTheBestPixelAroundTheEndOfItsAxis) {
    forRandomEllipses([](const TiltedEllipse& q) {
        CMatArbitraryEllipse ellipse = makeEllipse(q);
        const double endX = q.centerX / q.scaleX + std::cos(q.angle) * q.a / q.scaleX;
        const double endY = q.centerY / q.scaleY + std::sin(q.angle) * q.a / q.scaleY;
        const tagPOINT rounded{static_cast<int>(std::lround(endX)), static_cast<int>(std::lround(endY))};
        tagPOINT unused{};
        const double startError = ellipse.GetNeighbourError(ellipse.startPoint, &unused, 8);
        bool isAmongThem = false;
        for (int i = 0; i <= 8; ++i) {
            tagPOINT neighbour{};
            EXPECT_GE(ellipse.GetNeighbourError(rounded, &neighbour, i), startError);
            isAmongThem =
                isAmongThem || (neighbour.x == ellipse.startPoint.x && neighbour.y == ellipse.startPoint.y);
        }
        EXPECT_TRUE(isAmongThem);
    });
}

}  // namespace
