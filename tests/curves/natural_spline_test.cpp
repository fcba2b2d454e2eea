#include "curves/natural_spline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"

using namespace velquad::curves;
using Doubles = std::vector<double>;

namespace {

struct Spline {
    Doubles a, b, c, d;
    int code;

    Spline(const Doubles& x, const Doubles& y)
        : a(x.size()),
          b(x.size()),
          c(x.size(), 99.0),
          d(x.size()),
          code(cubicSplineNatural(static_cast<Index>(x.size()), x.data(), y.data(), a.data(), b.data(),
                                  c.data(), d.data())) {}
};

TEST(CubicSplineNatural, ThreePointsAreOneDivision) {
    const Spline s({0, 1, 3}, {0, 2, 0});
    ASSERT_EQ(s.code, 0);
    EXPECT_EQ(s.c[0], 0.0);
    EXPECT_EQ(s.c[1], 3.0 * (-1.0 - 2.0) / (2.0 * (1.0 + 2.0)));
    EXPECT_EQ(s.c[2], 0.0);
    EXPECT_EQ(s.a[0], 0.0);
    EXPECT_EQ(s.a[1], 2.0);
    EXPECT_EQ(s.b[0], 2.5);
    EXPECT_EQ(s.b[1], 1.0);
    EXPECT_EQ(s.d[0], -0.5);
    EXPECT_EQ(s.d[1], 0.25);
}

TEST(CubicSplineNatural, FourPointsSolvedByHand) {
    const Spline s({0, 1, 2, 3}, {0, 1, 0, 1});
    ASSERT_EQ(s.code, 0);
    EXPECT_EQ(s.c, (Doubles{0.0, -2.0, 2.0, 0.0}));
    EXPECT_EQ(s.b[0], 1.0 - 1.0 * -2.0 / 3.0);
    EXPECT_EQ(s.b[1], -1.0 - 1.0 * -2.0 / 3.0);
    EXPECT_EQ(s.d[0], -2.0 / 3.0);
    EXPECT_EQ(s.d[1], 4.0 / 3.0);
    EXPECT_EQ(s.d[2], -2.0 / 3.0);
}

TEST(CubicSplineNatural, NeedsThreePoints) {
    EXPECT_EQ(Spline({}, {}).code, 2);
    EXPECT_EQ(Spline({0}, {0}).code, 2);
    EXPECT_EQ(Spline({0, 1}, {0, 1}).code, 2);
}

TEST(CubicSplineNatural, NamesTheFirstPointThatDoesNotAdvance) {
    EXPECT_EQ(Spline({0, 0, 1, 2}, {0, 1, 2, 3}).code, -1);
    EXPECT_EQ(Spline({0, 1, 0.5, 0.5}, {0, 1, 2, 3}).code, -2);
    EXPECT_EQ(Spline({0, 1, 2, 2}, {0, 1, 2, 3}).code, -3);
}

TEST(CubicSplineNatural, RefusesPivotsBelowEpsilon) {
    const double atBound = std::ldexp(1.0, -54);  // the pivot is four times this
    EXPECT_EQ(Spline({0, atBound, 2 * atBound}, {0, 0, 0}).code, 0);
    const double below = std::nextafter(atBound, 0.0);
    EXPECT_EQ(Spline({0, below, 2 * below}, {0, 0, 0}).code, 6);
    EXPECT_EQ(Spline({0, below, 2 * below, 1, 2}, {0, 0, 0, 0, 0}).code, 6);
}

TEST(CubicSplineNatural, IsSmoothToTheSecondDerivative) {
    for (unsigned seed = 1; seed <= 50; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> value(0.1, 5.0);
        Doubles x{value(random)}, y{value(random)};
        const std::size_t n = 3 + random() % 30;
        while (x.size() < n) {
            x.push_back(x.back() + value(random));
            y.push_back(value(random));
        }
        const Spline s(x, y);
        ASSERT_EQ(s.code, 0);
        EXPECT_EQ(s.c[0], 0.0);
        EXPECT_EQ(s.c[n - 1], 0.0);
        for (std::size_t i = 0; i + 1 < n; ++i) {
            const double u = x[i + 1] - x[i];
            EXPECT_NEAR(((s.d[i] * u + s.c[i]) * u + s.b[i]) * u + s.a[i], y[i + 1], 1e-11);
            EXPECT_NEAR(3.0 * s.d[i] * u + s.c[i], s.c[i + 1], 1e-10);
            if (i + 2 < n) {
                EXPECT_NEAR((3.0 * s.d[i] * u + 2.0 * s.c[i]) * u + s.b[i], s.b[i + 1], 1e-10);
            }
        }
    }
}

TEST(CubicSplineNatural, ReportsEveryFailingAllocation) {
    const double x[] = {0, 1, 2, 3};
    const double y[] = {0, 1, 0, 1};
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        double a[4], b[4], c[4], d[4];
        const int code = cubicSplineNatural(4, x, y, a, b, c, d);
        EXPECT_TRUE(code == 0 || code == 3) << code;
        return code == 3;
    });
    EXPECT_GT(count, 0u);
}

}  // namespace
