#include "geometry/rotated_ellipse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <random>

#include "geometry/angle_table.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/ellipse_reference.h"
#include "tests/support/ellipse_walk.h"
#include "velquad/geometry.h"

namespace {

using velquad::geometry::CMatRotatedEllipse;
using velquad::test::Coordinates;
using velquad::test::takePolygon;
using velquad::test::TiltedEllipse;
using velquad::test::WalkRecorder;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kPi = 3.141592653589793;

Coordinates polygonOf(const TiltedEllipse& q, SIZE_T* blockBytes = nullptr) {
    double center[2] = {q.centerX, q.centerY};
    return takePolygon(polyGetRotatedEllipse(center, q.a, q.b, q.angle, 1, 0, q.scaleX, q.scaleY),
                       blockBytes);
}

Coordinates literalSteps(const TiltedEllipse& q) {
    return velquad::test::referenceRotatedEllipse(
        q, [](double t) { return std::sin(t); }, [](double t) { return std::cos(t); });
}

CMatRotatedEllipse makeEllipse(double a, double b, double angle, bool isCounterClockwise, bool isDegrees,
                               double scaleX, double scaleY) {
    const double center[2] = {3.0, 4.0};
    return {center, a, b, angle, isCounterClockwise, isDegrees, scaleX, scaleY, nullptr, 7, -8};
}

TEST(RotatedEllipse, UpToOnePixelIsItsCentre) {
    EXPECT_EQ(polygonOf({7.4, -2.6, 0.5, 0.5, 0.0, 1.0, 1.0}), (Coordinates{{7, -3}}));
    EXPECT_EQ(polygonOf({7.5, -2.5, 0.0, 0.0, 0.3, 1.0, 1.0}), (Coordinates{{8, -3}}));
    EXPECT_EQ(polygonOf({10.0, 10.0, 1.0, 1.0, 0.0, 1.0, 1.0}), (Coordinates{{10, 10}}));
    EXPECT_EQ(polygonOf({10.0, 10.0, 1.0000001, 1.0, 0.0, 1.0, 1.0}).size(),
              literalSteps({10.0, 10.0, 1.0000001, 1.0, 0.0, 1.0, 1.0}).size());
    EXPECT_GT(polygonOf({10.0, 10.0, 1.0000001, 1.0, 0.0, 1.0, 1.0}).size(), 1U);
    EXPECT_EQ(polygonOf({10.0, 10.0, std::nextafter(1.0000001, 0.0), 1.0, 0.0, 1.0, 1.0}).size(), 1U);
    // A pixel as large as the ellipse.
    EXPECT_EQ(polygonOf({100.0, 50.0, 20.0, 10.0, 0.4, 20.0, 20.0}), (Coordinates{{5, 3}}));
}

TEST(RotatedEllipse, WithASemiAxisOfZeroIsALineThereAndBack) {
    EXPECT_EQ(polygonOf({10.0, 10.0, 5.0, 0.0, 0.0, 1.0, 1.0}),
              (Coordinates{{15, 10}, {14, 10}, {13, 10}, {12, 10}, {11, 10}, {10, 10}, {9, 10},
                           {8, 10},  {7, 10},  {6, 10},  {5, 10},  {6, 10},  {7, 10},  {8, 10},
                           {9, 10},  {10, 10}, {11, 10}, {12, 10}, {13, 10}, {14, 10}, {15, 10}}));
}

TEST(RotatedEllipse, TiltedByThirtyDegrees) {
    const Coordinates expected{{23, 12}, {23, 13}, {22, 13}, {21, 12}, {20, 12}, {19, 12}, {18, 11}, {17, 10},
                               {17, 9},  {16, 8},  {17, 8},  {18, 7},  {19, 8},  {20, 8},  {19, 8},  {20, 8},
                               {21, 8},  {22, 9},  {23, 10}, {23, 11}, {24, 12}, {23, 12}};
    EXPECT_EQ(polygonOf({20.0, 10.0, 4.0, 2.0, kPi / 6, 1.0, 1.0}), expected);
    double center[2] = {20.0, 10.0};
    EXPECT_EQ(takePolygon(polyGetRotatedEllipse(center, -4.0, -2.0, 30.0, 1, 1, 1.0, 1.0)), expected);
    EXPECT_EQ(takePolygon(polyGetRotatedEllipse(center, 4.0, 2.0, -30.0, 0, 1, 1.0, 1.0)), expected);
}

TEST(RotatedEllipse, OnOblongPixels) {
    EXPECT_EQ(
        polygonOf({20.0, 10.0, 4.0, 2.0, 0.5, 1.0, 0.5}),
        (Coordinates{{24, 24}, {23, 25}, {22, 25}, {21, 25}, {20, 24}, {19, 23}, {18, 23}, {18, 22}, {17, 21},
                     {17, 20}, {17, 19}, {16, 18}, {16, 17}, {17, 16}, {17, 15}, {18, 15}, {19, 15}, {20, 16},
                     {21, 17}, {22, 18}, {23, 19}, {23, 20}, {23, 21}, {24, 22}, {24, 23}, {24, 24}}));
}

TEST(RotatedEllipse, RepeatsAnEarlierChoiceAtPixelZeroZero) {
    EXPECT_EQ(polygonOf({3.0, 0.0, 3.0, 2.0, 0.0, 1.0, 1.0}),
              (Coordinates{{6, 0},  {6, 1},  {5, 1},  {5, 2},  {4, 2},  {3, 2},  {2, 2},
                           {1, 1},  {0, 1},  {1, 1},  {0, 0},  {0, -1}, {1, -1}, {2, -2},
                           {3, -2}, {4, -2}, {5, -2}, {5, -1}, {6, -1}, {6, 0}}));
}

TEST(RotatedEllipse, KnowsItsState) {
    const CMatRotatedEllipse ellipse = makeEllipse(-30.0, 20.0, 30.0, false, true, 1.0, 1.0);
    EXPECT_EQ(ellipse.centerX, 3.0);
    EXPECT_EQ(ellipse.centerY, 4.0);
    EXPECT_EQ(ellipse.semiAxisA, 30.0);
    EXPECT_EQ(ellipse.semiAxisB, 20.0);
    EXPECT_EQ(ellipse.squaredSemiAxisA, 900.0);
    EXPECT_EQ(ellipse.squaredSemiAxisB, 400.0);
    EXPECT_EQ(ellipse.angle, 330.0 / 180.0 * kPi);
    EXPECT_EQ(ellipse.sinAngle, std::sin(330.0 / 180.0 * kPi));
    EXPECT_EQ(ellipse.cosAngle, std::cos(330.0 / 180.0 * kPi));
    EXPECT_EQ(ellipse.diagonalLength, std::sqrt(2.0));
    EXPECT_EQ(ellipse.validity, 1);
    EXPECT_EQ(ellipse.pointCount, 0U);
    EXPECT_EQ(ellipse.lastRounded.x, 0x7fffffff);
    EXPECT_EQ(ellipse.lastRounded.y, 0x7fffffff);
    EXPECT_EQ(ellipse.lastChosen.x, 0x7fffffff);
    EXPECT_EQ(ellipse.lastChosen.y, 0x7fffffff);
    EXPECT_EQ(ellipse.callbackArg1, 7U);
    EXPECT_EQ(ellipse.callbackArg2, -8);
}

TEST(RotatedEllipse, CarriesMomentsThatNothingFeeds) {
    CMatRotatedEllipse ellipse = makeEllipse(30.0, 20.0, 30.0, true, true, 1.0, 1.0);
    EXPECT_GT(ellipse.Trace(), 100U);
    EXPECT_EQ(ellipse.moments.GetCount(), 0U);
    EXPECT_EQ(ellipse.moments.GetMean(), velquad::kNoValue);
    // A copy has moments of its own.
    CMatRotatedEllipse copy = ellipse;
    EXPECT_EQ(copy.moments.AddValue(2.5), 1);
    EXPECT_EQ(copy.moments.GetCount(), 1U);
    EXPECT_EQ(ellipse.moments.GetCount(), 0U);
}

TEST(RotatedEllipse, HasItsFieldsInOrder) {
    const CMatRotatedEllipse e = makeEllipse(30.0, 20.0, 30.0, true, true, 1.0, 1.0);
    const void* const fields[] = {
        &e.centerX,   &e.centerY,        &e.semiAxisA,        &e.semiAxisB,        &e.angle,
        &e.scaleX,    &e.scaleY,         &e.squaredSemiAxisA, &e.squaredSemiAxisB, &e.sinAngle,
        &e.cosAngle,  &e.diagonalLength, &e.pointCount,       &e.isIrregular,      &e.moments,
        &e.callback,  &e.callbackArg1,   &e.callbackArg2,     &e.validity,         &e.lastRounded,
        &e.lastChosen};
    EXPECT_EQ(fields[0], &e);
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<const void*>()));
}

TEST(RotatedEllipse, CallsSmallThinAndOblongOnesIrregular) {
    const auto isIrregular = [](double a, double b, double scaleX, double scaleY) {
        return makeEllipse(a, b, 0.0, true, false, scaleX, scaleY).isIrregular;
    };
    EXPECT_EQ(isIrregular(30.0, 20.0, 1.0, 1.0), 0);
    EXPECT_EQ(isIrregular(3.0, 3.0, 1.0, 1.0), 0);
    EXPECT_EQ(isIrregular(std::nextafter(3.0, 0.0), 3.0, 1.0, 1.0), 1);
    EXPECT_EQ(isIrregular(3.0, std::nextafter(3.0, 0.0), 1.0, 1.0), 1);
    EXPECT_EQ(isIrregular(30.0, 3.0, 1.0, 1.0), 0);
    EXPECT_EQ(isIrregular(3.0, std::nextafter(30.0, 31.0), 1.0, 1.0), 1);
    EXPECT_EQ(isIrregular(30.0, 20.0, 1.0, -1.05), 0);
    EXPECT_EQ(isIrregular(30.0, 20.0, 1.0, 1.15), 1);
    EXPECT_EQ(isIrregular(1.0, 1.0, 0.0, 1.0), 0);
}

TEST(RotatedEllipse, IsInvalidOnlyOnPixelsWithoutSize) {
    const auto validity = [](double scaleX, double scaleY) {
        return makeEllipse(5.0, 5.0, 0.0, true, false, scaleX, scaleY).validity;
    };
    const double below = std::nextafter(1e-7, 0.0);
    EXPECT_EQ(validity(1e-7, 1.0), 1);
    EXPECT_EQ(validity(1.0, -1e-7), 1);
    EXPECT_EQ(validity(below, 1.0), 0);
    EXPECT_EQ(validity(1.0, -below), 0);
    EXPECT_EQ(validity(0.0, 1.0), 0);
    double center[2] = {0.0, 0.0};
    EXPECT_EQ(polyGetRotatedEllipse(center, 5.0, 5.0, 0.0, 1, 0, 0.0, 1.0), nullptr);
    WalkRecorder walk;
    EXPECT_EQ(matDrawRotatedEllipse(center, 5.0, 5.0, 0.0, 1, 0, 1.0, below, WalkRecorder::record,
                                    walk.firstValue(), WalkRecorder::kSecondValue),
              0);
    EXPECT_TRUE(walk.points.empty());
    // The test of the semi-axes sees their absolute values; it only counts when a field is changed.
    CMatRotatedEllipse ellipse = makeEllipse(5.0, 5.0, 0.0, true, false, 1.0, 1.0);
    ellipse.semiAxisA = -2e-7;
    EXPECT_TRUE(ellipse.IsValid());
    ellipse.validity = -1;
    EXPECT_FALSE(ellipse.IsValid());
}

TEST(RotatedEllipse, MeasuresTheErrorByTheAxesThatHaveExtent) {
    const auto error = [](double a, double b) {
        return makeEllipse(a, b, 0.0, true, false, 1.0, 1.0).Error({6, 8});
    };
    EXPECT_EQ(error(2.0, 4.0), std::fabs(16.0 / 16.0 + 9.0 / 4.0 - 1.0));
    EXPECT_EQ(error(2.0, 0.0), 4.0);
    EXPECT_EQ(error(0.0, 2.0), 3.0);
    EXPECT_EQ(error(0.0, 0.0), 5.0);
    // The square of 1e-5 is the smallest that counts, or just misses it by rounding.
    const double smallest = 1.0000001e-5;
    EXPECT_GT(error(2.0, smallest), 1e10);
    EXPECT_EQ(error(2.0, 0.9999999e-5), 4.0);
}

TEST(RotatedEllipse, CallsBackWithIndexAndUserValues) {
    double center[2] = {20.0, 10.0};
    WalkRecorder walk;
    EXPECT_EQ(matDrawRotatedEllipse(center, 40.0, 21.0, 0.7, 1, 0, 1.0, 1.0, WalkRecorder::record,
                                    walk.firstValue(), WalkRecorder::kSecondValue),
              1);
    EXPECT_EQ(walk.points, polygonOf({20.0, 10.0, 40.0, 21.0, 0.7, 1.0, 1.0}));
    EXPECT_EQ(matDrawRotatedEllipse(center, 40.0, 21.0, 0.7, 1, 0, 1.0, 1.0, nullptr, 0, 0), 1);
}

TEST(RotatedEllipse, StopsWhereTheCallbackSaysSo) {
    double center[2] = {20.0, 10.0};
    const Coordinates all = polygonOf({20.0, 10.0, 12.0, 0.2, 0.7, 1.0, 1.0});
    for (std::size_t stop = 0; stop < all.size(); ++stop) {
        WalkRecorder walk;
        walk.stopAt = stop;
        EXPECT_EQ(matDrawRotatedEllipse(center, 12.0, 0.2, 0.7, 1, 0, 1.0, 1.0, WalkRecorder::record,
                                        walk.firstValue(), WalkRecorder::kSecondValue),
                  0);
        EXPECT_EQ(walk.points.size(), stop + 1);
    }
    WalkRecorder pixel;
    pixel.stopAt = 0;
    EXPECT_EQ(matDrawRotatedEllipse(center, 0.1, 0.2, 0.7, 1, 0, 1.0, 1.0, WalkRecorder::record,
                                    pixel.firstValue(), WalkRecorder::kSecondValue),
              0);
    EXPECT_EQ(pixel.points.size(), 1U);
}

TEST(RotatedEllipse, GrowsItsBlockBySixtyFourPoints) {
    for (const double a : {0.5, 4.0, 10.0, 11.0, 20.0, 100.0, 1000.0}) {
        SIZE_T bytes = 0;
        const Coordinates points = polygonOf({0.5, 0.5, a, a, 0.0, 1.0, 1.0}, &bytes);
        const SIZE_T blocks = (points.size() + 63) / 64;
        EXPECT_EQ(bytes, 4 + blocks * 512) << points.size();
    }
}

TEST(RotatedEllipse, FreesItsBlockWithoutMemory) {
    double center[2] = {0.0, 0.0};
    EXPECT_GT(velquad::test::forEachFailingAllocation([&] {
                  void* handle = polyGetRotatedEllipse(center, 40.0, 30.0, 0.2, 1, 0, 1.0, 1.0);
                  const bool hasFailed = handle == nullptr;
                  polyFree(handle);
                  return hasFailed;
              }),
              3U);
}

TEST(RotatedEllipse, EndsForOddNumbers) {
    double center[2] = {3.0, 4.0};
    for (const double value : {kNan, kInfinity, -kInfinity, 1e300, -1e300}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(takePolygon(polyGetRotatedEllipse(center, value, 5.0, 0.0, 1, 0, 1.0, 1.0)).size() > 0,
                  true);
        EXPECT_GT(takePolygon(polyGetRotatedEllipse(center, 5.0, 4.0, value, 1, 1, 1.0, 1.0)).size(), 0U);
        EXPECT_GT(takePolygon(polyGetRotatedEllipse(center, 5.0, 4.0, 0.0, 1, 1, value, 1.0)).size(), 0U);
        double oddCenter[2] = {value, 4.0};
        EXPECT_GT(takePolygon(polyGetRotatedEllipse(oddCenter, 5.0, 4.0, 0.0, 1, 1, 1.0, 1.0)).size(), 0U);
    }
    EXPECT_EQ(takePolygon(polyGetRotatedEllipse(center, 50.0, 40.0, 0.0, 1, 1, -1.0, -1.0)),
              (Coordinates{{-3, -4}}));
    EXPECT_EQ(polyGetRotatedEllipse(nullptr, 5.0, 4.0, 0.0, 1, 1, 1.0, 1.0), nullptr);
    EXPECT_EQ(matDrawRotatedEllipse(nullptr, 5.0, 4.0, 0.0, 1, 1, 1.0, 1.0, nullptr, 0, 0), 0);
}

TEST(RotatedEllipse, ThinAtAnyTiltIsConnectedAndBounded) {
    for (int degrees = 0; degrees < 360; degrees += 7) {
        for (const double b : {0.0, 1e-6, 0.01, 0.4, 1.0, 2.0}) {
            SCOPED_TRACE(testing::Message() << degrees << ' ' << b);
            double center[2] = {100.3, 50.7};
            const Coordinates points =
                takePolygon(polyGetRotatedEllipse(center, 60.0, b, degrees, 1, 1, 1.0, 1.0));
            EXPECT_TRUE(velquad::test::isConnected(points));
            // No more than three pixels a step.
            EXPECT_LE(points.size(), 3U * 377U);
            EXPECT_GE(points.size(), 80U);
        }
    }
}

class RandomRotatedEllipse : public testing::Test {
  protected:
    template <class Check>
    void forRandomEllipses(int count, Check check) {
        std::mt19937_64 random(77);
        const auto between = [&](double low, double high) {
            return std::uniform_real_distribution<double>(low, high)(random);
        };
        for (int i = 0; i < count; ++i) {
            const bool isAroundOrigin = i % 3 == 0;
            const double range = isAroundOrigin ? 20.0 : 1000.0;
            // Angles that reduction to one turn leaves as they are.
            const TiltedEllipse q{between(-range, range), between(-range, range),
                                  between(0.0, 40.0),     between(0.0, i % 2 == 0 ? 40.0 : 1.5),
                                  between(0.1, 6.2),      between(0.3, 2.0),
                                  between(0.3, 2.0)};
            SCOPED_TRACE(testing::Message()
                         << "ellipse " << i << ": " << q.centerX << ' ' << q.centerY << ' ' << q.a << ' '
                         << q.b << ' ' << q.angle << ' ' << q.scaleX << ' ' << q.scaleY);
            check(q);
        }
    }
};

TEST_F(RandomRotatedEllipse, EqualsTheLiteralSteps) {
    forRandomEllipses(400, [](const TiltedEllipse& q) { EXPECT_EQ(polygonOf(q), literalSteps(q)); });
}

TEST_F(RandomRotatedEllipse, EqualsTheLiteralStepsWithTheAngleTable) {
    velquad::geometry::installSinCosApproximator();
    CMatAngleInterpolator table(1000);
    forRandomEllipses(200, [&](const TiltedEllipse& q) {
        EXPECT_EQ(polygonOf(q), velquad::test::referenceRotatedEllipse(
                                    q, [&](double t) { return table.sin(t, false); },
                                    [&](double t) { return table.sin(t + 1.5707963267948966, false); }));
    });
    velquad::geometry::sinCosApproximator.reset();
}

TEST_F(RandomRotatedEllipse, IsConnectedAndCloseToTheCurve) {
    forRandomEllipses(300, [](const TiltedEllipse& q) {
        const Coordinates points = polygonOf(q);
        EXPECT_TRUE(velquad::test::isConnected(points));
        const double largest = std::max(q.a / q.scaleX, q.b / q.scaleY);
        for (const auto& [x, y] : points) {
            const double dx = x - q.centerX / q.scaleX;
            const double dy = y - q.centerY / q.scaleY;
            EXPECT_LE(std::hypot(dx * q.scaleX, dy * q.scaleY),
                      std::max(q.a, q.b) + 3.0 * std::max(q.scaleX, q.scaleY))
                << largest;
        }
    });
}

}  // namespace
