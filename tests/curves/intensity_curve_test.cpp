#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "curves/natural_spline.h"
#include "tests/support/allocation_failure.h"
#include "velquad/curves.h"

using namespace velquad;
using namespace velquad::test;
using Doubles = std::vector<double>;

namespace {

constexpr double kUntouched = 77.0;
constexpr double kNoLimit = 1e300;

unsigned int tabulate(const Doubles& x, const Doubles& y, Doubles& out, double low = -kNoLimit,
                      double high = kNoLimit) {
    return matInterpolateIntensityCurve(x.data(), y.data(), static_cast<unsigned int>(x.size()), low, high,
                                        out.data(), static_cast<unsigned int>(out.size()));
}

TEST(IntensityCurve, NeedsThreePointsThatAscend) {
    Doubles out(4, kUntouched);
    EXPECT_EQ(tabulate({0, 1}, {0, 1}, out), 0U);
    EXPECT_EQ(tabulate({}, {}, out), 0U);
    EXPECT_EQ(tabulate({0, 2, 2}, {0, 1, 2}, out), 0U);
    EXPECT_EQ(tabulate({0, 2, 1}, {0, 1, 2}, out), 0U);
    EXPECT_EQ(out, Doubles(4, kUntouched));
}

TEST(IntensityCurve, NullArraysGiveNothing) {
    const double values[] = {0, 1, 2};
    double out[3] = {kUntouched, kUntouched, kUntouched};
    EXPECT_EQ(matInterpolateIntensityCurve(nullptr, values, 3, 0, 1, out, 3), 0U);
    EXPECT_EQ(matInterpolateIntensityCurve(values, nullptr, 3, 0, 1, out, 3), 0U);
    EXPECT_EQ(matInterpolateIntensityCurve(values, values, 3, 0, 1, nullptr, 3), 0U);
    EXPECT_EQ(out[0], kUntouched);
}

TEST(IntensityCurve, FollowsTheSplineByHand) {
    // c1 = 3 * (-2) / 4 = -1.5; b0 = 1 + 0.5 = 1.5, d0 = -0.5; b1 = -1 + 1 = 0, d1 = 0.5.
    Doubles out(5);
    EXPECT_EQ(tabulate({0, 1, 2}, {0, 1, 0}, out), 5U);
    EXPECT_EQ(out, (Doubles{0, 0.6875, 1, 0.6875, 0}));
}

TEST(IntensityCurve, MeetsItsPointsAndStartsAtTheFirstOne) {
    Doubles out(4);
    EXPECT_EQ(tabulate({10, 11, 12, 13}, {5, 1, 4, 2}, out), 4U);
    EXPECT_EQ(out[0], 5.0);
    EXPECT_EQ(out[1], 1.0);
    EXPECT_EQ(out[2], 4.0);
    // The last point is the end of its interval's polynomial.
    EXPECT_NEAR(out[3], 2.0, 1e-14);
}

TEST(IntensityCurve, ValuesStayWithinTheLimits) {
    Doubles out(5);
    EXPECT_EQ(tabulate({0, 1, 2}, {0, 1, 0}, out, 0.25, 0.75), 5U);
    EXPECT_EQ(out, (Doubles{0.25, 0.6875, 0.75, 0.6875, 0.25}));
}

TEST(IntensityCurve, OfCrossedLimitsTheUpperOneHolds) {
    Doubles out(3);
    EXPECT_EQ(tabulate({0, 1, 2}, {0, 1, 0}, out, 0.75, 0.25), 3U);
    EXPECT_EQ(out, (Doubles{0.25, 0.25, 0.25}));
    EXPECT_EQ(tabulate({0, 1, 2}, {0, 1, 0}, out, 0.5, 0.5), 3U);
    EXPECT_EQ(out, (Doubles{0.5, 0.5, 0.5}));
}

TEST(IntensityCurve, ASingleValueIsTheLowerLimit) {
    Doubles out(1);
    EXPECT_EQ(tabulate({0, 1, 2}, {3, 1, 3}, out, -4.0, 9.0), 1U);
    EXPECT_EQ(out[0], -4.0);
}

TEST(IntensityCurve, NoValuesAreWanted) {
    Doubles none;
    double out = kUntouched;
    const double x[] = {0, 1, 2};
    EXPECT_EQ(matInterpolateIntensityCurve(x, x, 3, 0, 1, &out, 0), 0U);
    EXPECT_EQ(out, kUntouched);
}

TEST(IntensityCurve, NotANumberEndsAtTheLowerLimit) {
    Doubles out(3);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(tabulate({0, 1, 2}, {nan, 1, 0}, out, 0.5, 2.0), 3U);
    EXPECT_EQ(out[0], 0.5);
}

TEST(IntensityCurve, AShortCurveAfterALongOneIsNotMisled) {
    // The long curve leaves its last interval behind, which the short one does not have.
    Doubles x(200), y(200);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = y[i] = static_cast<double>(i);
    Doubles out(400);
    EXPECT_EQ(tabulate(x, y, out), 400U);
    EXPECT_EQ(out.back(), 199.0);
    Doubles shortOut(5);
    EXPECT_EQ(tabulate({0, 1, 2}, {0, 1, 0}, shortOut), 5U);
    EXPECT_EQ(shortOut, (Doubles{0, 0.6875, 1, 0.6875, 0}));
}

TEST(IntensityCurve, TheTableMayTakeThePlaceOfThePoints) {
    Doubles points = {0, 1, 0};
    const Doubles x = {0, 1, 2};
    EXPECT_EQ(matInterpolateIntensityCurve(x.data(), points.data(), 3, -1, 2, points.data(), 3), 3U);
    EXPECT_EQ(points, (Doubles{0, 1, 0}));
}

TEST(IntensityCurve, LackOfMemoryGivesNothing) {
    Doubles out(3, kUntouched);
    forEachFailingAllocation([&] {
        out[0] = kUntouched;
        const double x[] = {0, 1, 2};
        const unsigned int count = matInterpolateIntensityCurve(x, x, 3, 0, 1, out.data(), 3);
        if (count == 0) {
            EXPECT_EQ(out[0], kUntouched);
        }
        return count == 0;
    });
}

}  // namespace
