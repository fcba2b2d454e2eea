#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "velquad/geometry.h"

namespace {

struct Answer {
    int place;
    double distance;
    bool operator==(const Answer&) const = default;
};

constexpr double kUnset = -5.0;

Answer ask(int left, int top, int right, int bottom, int x, int y) {
    const int rect[4] = {left, top, right, bottom};
    const tagPOINT point{x, y};
    Answer answer{0, kUnset};
    answer.place = matIsPointInsideEllipse(rect, &point, &answer.distance);
    EXPECT_EQ(matIsPointInsideEllipse(rect, &point, nullptr), answer.place);
    return answer;
}

TEST(PointInEllipse, AtTheCentreIsInsideWithoutADistance) {
    EXPECT_EQ(ask(0, 0, 10, 6, 5, 3), (Answer{1, kUnset}));
    EXPECT_EQ(ask(0, 0, 11, 7, 5, 3), (Answer{1, kUnset}));
    EXPECT_EQ(ask(-11, -7, 0, 0, -5, -3), (Answer{1, kUnset}));
    EXPECT_EQ(ask(4, 4, 4, 4, 4, 4), (Answer{1, kUnset}));
}

TEST(PointInEllipse, OnAnAxis) {
    EXPECT_EQ(ask(0, 0, 10, 6, 10, 3), (Answer{-1, 0.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 0, 3), (Answer{-1, 0.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 5, 0), (Answer{-1, 0.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 5, 6), (Answer{-1, 0.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 8, 3), (Answer{1, 2.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 2, 3), (Answer{1, 2.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 12, 3), (Answer{0, 2.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, -2, 3), (Answer{0, 2.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 5, 10), (Answer{0, 4.0}));
    EXPECT_EQ(ask(0, 0, 10, 6, 5, -1), (Answer{0, 1.0}));
}

TEST(PointInEllipse, OffTheAxesFollowsTheEquation) {
    for (int x = -30; x <= 50; ++x) {
        for (int y = -30; y <= 40; ++y) {
            if (x == 10 && y == 5) continue;
            // Semi-axes 25 and 15, which meet whole pixels at (10 +- 15, 5 +- 12) and (10 +- 20, 5 +- 9).
            const int form = 9 * (x - 10) * (x - 10) + 25 * (y - 5) * (y - 5);
            const Answer answer = ask(-15, -10, 35, 20, x, y);
            EXPECT_EQ(answer.place, form < 5625 ? 1 : (form > 5625 ? 0 : -1)) << x << ' ' << y;
            const double fromCenter = std::hypot(x - 10, y - 5);
            const double toCurve = std::fabs(fromCenter - fromCenter * std::sqrt(5625.0 / form));
            EXPECT_NEAR(answer.distance, toCurve, 1e-9);
        }
    }
}

TEST(PointInEllipse, IsOnTheCurveWithinATenMillionthOfTheChord) {
    // One pixel is 5e-8 of the long axis here.
    constexpr int kA = 10000000;
    EXPECT_EQ(ask(-kA, -10, kA, 10, kA - 1, 0).place, -1);
    EXPECT_EQ(ask(-kA, -10, kA, 10, kA + 1, 0).place, -1);
    EXPECT_EQ(ask(-kA, -10, kA, 10, kA - 3, 0).place, 1);
    EXPECT_EQ(ask(-kA, -10, kA, 10, kA + 3, 0).place, 0);
    EXPECT_EQ(ask(-kA, -10, kA, 10, -kA + 1, 0).place, -1);
    EXPECT_EQ(ask(-kA, -10, kA, 10, -kA - 1, 0).place, -1);
    EXPECT_EQ(ask(-kA, -10, kA, 10, -kA + 3, 0).place, 1);
    EXPECT_EQ(ask(-kA, -10, kA, 10, -kA - 3, 0).place, 0);
}

TEST(PointInEllipse, IsNeverInsideOneWithoutWidth) {
    EXPECT_EQ(ask(5, 0, 5, 10, 8, 5), (Answer{0, 3.0}));
    EXPECT_EQ(ask(5, 0, 5, 10, 5, 8).place, 0);
}

TEST(PointInEllipse, TakesACentreThatWraps) {
    constexpr int kMax = std::numeric_limits<int>::max();
    EXPECT_EQ(ask(kMax, 0, kMax, 0, -1, 0), (Answer{1, kUnset}));
}

}  // namespace
