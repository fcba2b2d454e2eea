#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kSentinel = 1.7976931348623157e308;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

double below(double value) {
    return std::nextafter(value, -kInfinity);
}
double above(double value) {
    return std::nextafter(value, kInfinity);
}

double turn(tagPOINT2D p0, tagPOINT2D p1, tagPOINT2D p2) {
    return matCalcAngle2D(&p0, &p1, &p2);
}

double sweep(tagPOINT2D first, tagPOINT2D second, int isCounterClockwise, int isDegrees) {
    const tagPOINT2D center{0.0, 0.0};
    return matCalcNormalizedAngle2D(&center, &first, &second, isCounterClockwise, isDegrees);
}

}  // namespace

TEST(MatNormalizeAngle, ReducesDegrees) {
    EXPECT_EQ(matNormalizeAngle(-90.0, 1), 270.0);
    EXPECT_EQ(matNormalizeAngle(360.0, 1), 0.0);
    EXPECT_EQ(matNormalizeAngle(0.0, 1), 0.0);
    EXPECT_EQ(matNormalizeAngle(450.0, 1), 90.0);
    EXPECT_EQ(matNormalizeAngle(-450.0, 1), 270.0);
    EXPECT_EQ(matNormalizeAngle(-720.0, 1), 0.0);
    EXPECT_EQ(matNormalizeAngle(359.0, -7), 359.0);
}

TEST(MatNormalizeAngle, ReducesRadians) {
    EXPECT_EQ(matNormalizeAngle(-kPi / 2.0, 0), 4.71238898038469);
    EXPECT_EQ(matNormalizeAngle(7.0, 0), 0.7168146928204138);
    EXPECT_EQ(matNormalizeAngle(-7.0, 0), 5.5663706143591725);
    EXPECT_EQ(matNormalizeAngle(100.0, 0), 5.752220392306214);
    EXPECT_EQ(matNormalizeAngle(kTwoPi, 0), 0.0);
    EXPECT_EQ(matNormalizeAngle(below(kTwoPi), 0), 0.0);
}

TEST(MatNormalizeAngle, TakesWholeTurnsWithinToleranceAsZero) {
    EXPECT_EQ(matNormalizeAngle(359.9999999999, 1), 0.0);
    EXPECT_EQ(matNormalizeAngle(below(1e-9), 1), 0.0);
    EXPECT_EQ(matNormalizeAngle(1e-9, 1), 1e-9);
    EXPECT_EQ(matNormalizeAngle(above(1e-9), 1), above(1e-9));
    EXPECT_EQ(matNormalizeAngle(1e-9, 0), 1e-9);
    EXPECT_EQ(matNormalizeAngle(-1e-9, 1), 359.999999999);
    EXPECT_EQ(matNormalizeAngle(359.999999998, 1), 359.999999998);
    // The difference from a full turn is 9.999894e-10.
    EXPECT_EQ(matNormalizeAngle(359.999999999, 1), 0.0);
    EXPECT_EQ(matNormalizeAngle(359.99999999899995, 1), 359.99999999899995);
}

TEST(MatNormalizeAngle, PassesTheSentinelThrough) {
    EXPECT_EQ(matNormalizeAngle(kSentinel, 1), kSentinel);
    EXPECT_EQ(matNormalizeAngle(kSentinel, 0), kSentinel);
    EXPECT_EQ(matNormalizeAngle(-kSentinel, 1), -kSentinel);
}

TEST(MatNormalizeAngle, CountsTurnsIn32Bits) {
    EXPECT_EQ(matNormalizeAngle(360.0 * 2147483647.0 + 90.0, 1), 90.0);
    EXPECT_EQ(matNormalizeAngle(1e13, 1), 10773094113280.0);
    EXPECT_EQ(matNormalizeAngle(-1e13, 1), -10773094112920.0);
    EXPECT_EQ(matNormalizeAngle(kInfinity, 1), kInfinity);
    EXPECT_EQ(matNormalizeAngle(-kInfinity, 1), -kInfinity);
    EXPECT_TRUE(std::isnan(matNormalizeAngle(std::nan(""), 1)));
}

TEST(MatNormalizeAngle, StaysInRangeAndKeepsTheDirection) {
    std::mt19937 random(4201);
    std::uniform_real_distribution<double> angles(-1e5, 1e5);
    for (int i = 0; i < 20000; ++i) {
        const double angle = angles(random);
        SCOPED_TRACE(angle);
        const double degrees = matNormalizeAngle(angle, 1);
        ASSERT_GE(degrees, 0.0);
        ASSERT_LT(degrees, 360.0);
        const double turns = (angle - degrees) / 360.0;
        ASSERT_NEAR(turns, std::round(turns), 1e-11);
        const double radians = matNormalizeAngle(angle, 0);
        ASSERT_GE(radians, 0.0);
        ASSERT_LT(radians, kTwoPi);
        ASSERT_NEAR(std::sin(radians), std::sin(angle), 1e-9);
        ASSERT_NEAR(std::cos(radians), std::cos(angle), 1e-9);
    }
}

TEST(MatMapNormalizedAngle, MapsByTwoBits) {
    EXPECT_EQ(matMapNormalizedAngle(270.0, 1, 1), -90.0);
    EXPECT_EQ(matMapNormalizedAngle(270.0, 1, 2), 90.0);
    EXPECT_EQ(matMapNormalizedAngle(180.0, 1, 1), 180.0);
    EXPECT_EQ(matMapNormalizedAngle(270.0, 1, 3), -90.0);
    EXPECT_EQ(matMapNormalizedAngle(270.0, 1, 0), 270.0);
    EXPECT_EQ(matMapNormalizedAngle(270.0, 1, 4), 270.0);
    EXPECT_EQ(matMapNormalizedAngle(270.0, 1, 0xfffffffeU), 90.0);
    EXPECT_EQ(matMapNormalizedAngle(-90.0, 1, 1), -90.0);
    EXPECT_EQ(matMapNormalizedAngle(-90.0, 1, 2), 90.0);
    EXPECT_EQ(matMapNormalizedAngle(90.0, 1, 1), 90.0);
    EXPECT_EQ(matMapNormalizedAngle(720.0, 1, 1), 0.0);
}

TEST(MatMapNormalizedAngle, TurnsBackOnlyAboveHalfAPeriod) {
    EXPECT_EQ(matMapNormalizedAngle(180.0, 1, 2), 180.0);
    EXPECT_EQ(matMapNormalizedAngle(below(180.0), 1, 1), below(180.0));
    EXPECT_EQ(matMapNormalizedAngle(above(180.0), 1, 1), above(180.0) - 360.0);
    EXPECT_EQ(matMapNormalizedAngle(kPi, 0, 1), kPi);
    EXPECT_EQ(matMapNormalizedAngle(above(kPi), 0, 1), above(kPi) - kTwoPi);
    EXPECT_EQ(matMapNormalizedAngle(4.71238898038469, 0, 1), -1.5707963267948966);
    EXPECT_EQ(matMapNormalizedAngle(4.71238898038469, 0, 2), 1.5707963267948966);
}

TEST(MatMapNormalizedAngle, TreatsTheSentinelAsAnAngleAboveHalfAPeriod) {
    EXPECT_EQ(matMapNormalizedAngle(kSentinel, 1, 0), kSentinel);
    EXPECT_EQ(matMapNormalizedAngle(kSentinel, 1, 1), kSentinel);
    EXPECT_EQ(matMapNormalizedAngle(kSentinel, 1, 2), -kSentinel);
}

TEST(MatCalcDistanceOfAngles, TakesTheShorterWayRound) {
    EXPECT_EQ(matCalcDistanceOfAngles(350.0, 10.0, 1), 20.0);
    EXPECT_EQ(matCalcDistanceOfAngles(10.0, 350.0, 1), 20.0);
    EXPECT_EQ(matCalcDistanceOfAngles(0.0, 180.0, 1), 180.0);
    EXPECT_EQ(matCalcDistanceOfAngles(90.0, -90.0, 1), 180.0);
    EXPECT_EQ(matCalcDistanceOfAngles(-10.0, 730.0, 1), 20.0);
    EXPECT_EQ(matCalcDistanceOfAngles(45.0, 45.0, 1), 0.0);
    EXPECT_EQ(matCalcDistanceOfAngles(0.1, kTwoPi - 0.1, 0), 0.1999999999999993);
}

TEST(MatCalcDistanceOfAngles, IsSymmetricAndAtMostHalfAPeriod) {
    std::mt19937 random(4202);
    std::uniform_real_distribution<double> angles(-1000.0, 1000.0);
    for (int i = 0; i < 20000; ++i) {
        const double a = angles(random);
        const double b = angles(random);
        SCOPED_TRACE(testing::Message() << a << " " << b);
        for (const int isDegrees : {0, 1}) {
            const double result = matCalcDistanceOfAngles(a, b, isDegrees);
            ASSERT_EQ(result, matCalcDistanceOfAngles(b, a, isDegrees));
            ASSERT_GE(result, 0.0);
            ASSERT_LE(result, isDegrees != 0 ? 180.0 : kPi);
            const double radians = isDegrees != 0 ? kPi / 180.0 : 1.0;
            ASSERT_NEAR(std::cos(result * radians), std::cos((a - b) * radians), 1e-9);
        }
    }
}

TEST(MatCalcAngle2D, GivesTheTurnWithItsSign) {
    EXPECT_EQ(turn({0, 0}, {1, 0}, {1, 1}), 1.5707963267948966);
    EXPECT_EQ(turn({0, 0}, {1, 0}, {1, -1}), -1.5707963267948966);
    EXPECT_EQ(turn({5, 5}, {5, 7}, {3, 7}), 1.5707963267948966);
    EXPECT_NEAR(turn({0, 0}, {1, 0}, {2, 1}), kPi / 4.0, 1e-15);
    EXPECT_NEAR(turn({0, 0}, {2, 0}, {1, -1}), -3.0 * kPi / 4.0, 1e-15);
}

TEST(MatCalcAngle2D, GivesZeroStraightOnAndPiForAReversal) {
    EXPECT_EQ(turn({0, 0}, {1, 1}, {2, 2}), 0.0);
    EXPECT_EQ(turn({0, 0}, {1, 0}, {7, 0}), 0.0);
    EXPECT_EQ(turn({0, 0}, {1, 0}, {0, 0}), kPi);
    EXPECT_EQ(turn({0, 0}, {1, 0}, {-3, 0}), kPi);
    EXPECT_EQ(turn({0, 0}, {1, 0}, {0.5, 0}), kPi);
}

TEST(MatCalcAngle2D, FlattensCosinesBeyondTheLimit) {
    // Cosines one step above the limit, and one step below it.
    EXPECT_EQ(turn({-1, 0}, {0, 0}, {1, 0.0004472136290205977}), 0.0);
    EXPECT_NEAR(turn({-1, 0}, {0, 0}, {1, 0.0004472136290205978}), 0.00044721359935729466, 1e-15);
    EXPECT_NEAR(turn({-1, 0}, {0, 0}, {1, -0.0004472136290205978}), -0.00044721359935729466, 1e-15);
    EXPECT_EQ(turn({-1, 0}, {0, 0}, {-1, 0.0004472136290205977}), kPi);
    EXPECT_EQ(turn({-1, 0}, {0, 0}, {-1, -0.0004472136290205977}), kPi);
    EXPECT_NEAR(turn({-1, 0}, {0, 0}, {-1, 0.0004472136290205978}), kPi - 0.00044721359935729466, 1e-12);
    EXPECT_NEAR(turn({-1, 0}, {0, 0}, {-1, -0.0004472136290205978}), 0.00044721359935729466 - kPi, 1e-12);
}

TEST(MatCalcAngle2D, KeepsATurnWhoseCosineIsTheLimit) {
    EXPECT_NEAR(turn({-1, 0}, {0, 0}, {13, 0.005813777175654122}), 0.00044721359910904126, 1e-15);
    EXPECT_NEAR(turn({-1, 0}, {0, 0}, {-13, 0.005813777175654122}), 3.141145439990684, 1e-12);
}

TEST(MatCalcAngle2D, GivesZeroForAStepWithoutLength) {
    EXPECT_EQ(turn({0, 0}, {0, 0}, {1, 1}), 0.0);
    EXPECT_EQ(turn({0, 0}, {1, 0}, {1, 0}), 0.0);
    EXPECT_EQ(turn({0, 0}, {0, below(1e-7)}, {1, 1}), 0.0);
    EXPECT_NE(turn({0, 0}, {0, 1e-7}, {1, 1e-7}), 0.0);
    EXPECT_NE(turn({0, 0}, {0, above(1e-7)}, {1, 1}), 0.0);
    EXPECT_EQ(turn({1, 1}, {0, 0}, {below(1e-7), 0}), 0.0);
    EXPECT_NE(turn({1, 1}, {0, 0}, {1e-7, 0}), 0.0);
}

TEST(MatCalcAngle2D, ChangesSignInTheMirror) {
    std::mt19937 random(4203);
    std::uniform_real_distribution<double> coordinates(-100.0, 100.0);
    for (int i = 0; i < 20000; ++i) {
        const tagPOINT2D p[3] = {{coordinates(random), coordinates(random)},
                                 {coordinates(random), coordinates(random)},
                                 {coordinates(random), coordinates(random)}};
        SCOPED_TRACE(testing::Message() << p[0].x << " " << p[0].y << " " << p[1].x << " " << p[1].y << " "
                                        << p[2].x << " " << p[2].y);
        const double angle = turn(p[0], p[1], p[2]);
        if (angle != kPi) {
            ASSERT_EQ(turn({p[0].x, -p[0].y}, {p[1].x, -p[1].y}, {p[2].x, -p[2].y}), -angle);
            ASSERT_EQ(turn(p[2], p[1], p[0]), -angle);
        }
        const double u[2] = {p[1].x - p[0].x, p[1].y - p[0].y};
        const double v[2] = {p[2].x - p[1].x, p[2].y - p[1].y};
        if (angle != 0.0 && angle != kPi) {
            ASSERT_NEAR(angle, std::atan2(u[0] * v[1] - u[1] * v[0], u[0] * v[0] + u[1] * v[1]), 1e-11);
        }
    }
}

TEST(MatCalcNormalizedAngle2D, SweepsInTheSenseAskedFor) {
    EXPECT_EQ(sweep({1, 0}, {0, 1}, 1, 1), 90.0);
    EXPECT_EQ(sweep({1, 0}, {0, 1}, 0, 1), 270.0);
    EXPECT_EQ(sweep({1, 0}, {0, 1}, 1, 0), 1.5707963267948966);
    EXPECT_EQ(sweep({1, 0}, {0, 1}, 0, 0), 4.71238898038469);
    EXPECT_EQ(sweep({0, 1}, {1, 0}, 1, 1), 270.0);
    EXPECT_EQ(sweep({0, 1}, {1, 0}, 0, 1), 90.0);
    EXPECT_EQ(sweep({1, 0}, {-1, 0}, 1, 1), 180.0);
    EXPECT_EQ(sweep({1, 0}, {-1, 0}, 0, 0), kPi);
    EXPECT_EQ(sweep({1, 0}, {1, -1}, 1, 1), 315.0);
    EXPECT_EQ(sweep({1, 0}, {1, -1}, -1, -1), 315.0);
}

TEST(MatCalcNormalizedAngle2D, MeasuresAboutTheCentre) {
    const tagPOINT2D center{3.0, -2.0};
    const tagPOINT2D first{5.0, -2.0};
    const tagPOINT2D second{3.0, 4.0};
    EXPECT_EQ(matCalcNormalizedAngle2D(&center, &first, &second, 1, 1), 90.0);
    EXPECT_EQ(matCalcNormalizedAngle2D(&center, &first, &second, 0, 1), 270.0);
}

TEST(MatCalcNormalizedAngle2D, GivesZeroForEqualRays) {
    for (const int isCounterClockwise : {0, 1}) {
        for (const int isDegrees : {0, 1}) {
            EXPECT_EQ(sweep({2, 3}, {2, 3}, isCounterClockwise, isDegrees), 0.0);
            EXPECT_EQ(sweep({2, 3}, {4, 6}, isCounterClockwise, isDegrees), 0.0);
            EXPECT_EQ(sweep({-1, 0}, {-5, 0}, isCounterClockwise, isDegrees), 0.0);
        }
    }
}

TEST(MatCalcNormalizedAngle2D, GivesZeroForAShortRay) {
    EXPECT_EQ(sweep({0, 0}, {0, 1}, 1, 1), 0.0);
    EXPECT_EQ(sweep({1, 0}, {0, 0}, 1, 1), 0.0);
    EXPECT_EQ(sweep({1, 0}, {0, below(1e-7)}, 1, 1), 0.0);
    EXPECT_EQ(sweep({1, 0}, {0, 1e-7}, 1, 1), 90.0);
    EXPECT_EQ(sweep({1, 0}, {0, above(1e-7)}, 1, 1), 90.0);
    EXPECT_EQ(sweep({below(1e-7), 0}, {0, 1}, 1, 1), 0.0);
    EXPECT_EQ(sweep({1e-7, 0}, {0, 1}, 1, 1), 90.0);
}

TEST(MatCalcNormalizedAngle2D, TakesTheLastStepBelowAFullTurnAsZeroInRadiansOnly) {
    EXPECT_EQ(sweep({-1, -1e-15}, {-1, -2e-16}, 1, 0), 0.0);
    EXPECT_EQ(sweep({-1, -1e-15}, {-1, -2e-16}, 1, 1), 359.99999999999994);
    EXPECT_EQ(sweep({-1, -2.2e-15}, {-1, -2e-16}, 1, 0), 6.2831853071795845);
    // Differences that rounding swallows make a full turn, which is 0.
    EXPECT_EQ(sweep({-1, -4e-16}, {-1, -2e-16}, 1, 0), 0.0);
    EXPECT_EQ(sweep({-1, -4e-16}, {-1, -2e-16}, 1, 1), 0.0);
}

TEST(MatCalcNormalizedAngle2D, LeavesADirectionOfZeroAtZero) {
    // Directions are taken towards the centre. As a full turn the first one would swallow the second.
    EXPECT_EQ(sweep({-1, 0}, {-1, -1e-17}, 1, 0), 1e-17);
    EXPECT_EQ(sweep({-1, -1e-17}, {-1, 0}, 0, 0), 1e-17);
}

TEST(MatCalcNormalizedAngle2D, ComplementsTheOtherSense) {
    std::mt19937 random(4204);
    std::uniform_real_distribution<double> coordinates(-10.0, 10.0);
    for (int i = 0; i < 20000; ++i) {
        const tagPOINT2D center{coordinates(random), coordinates(random)};
        const tagPOINT2D first{coordinates(random), coordinates(random)};
        const tagPOINT2D second{coordinates(random), coordinates(random)};
        SCOPED_TRACE(testing::Message() << center.x << " " << center.y << " " << first.x << " " << first.y
                                        << " " << second.x << " " << second.y);
        const double forwards = matCalcNormalizedAngle2D(&center, &first, &second, 1, 1);
        const double backwards = matCalcNormalizedAngle2D(&center, &first, &second, 0, 1);
        ASSERT_GE(forwards, 0.0);
        ASSERT_LT(forwards, 360.0);
        ASSERT_NEAR(forwards + backwards, 360.0, 1e-9);
        ASSERT_EQ(matCalcNormalizedAngle2D(&center, &second, &first, 0, 1), forwards);
        const double radians = matCalcNormalizedAngle2D(&center, &first, &second, 1, 0);
        ASSERT_NEAR(radians * 180.0 / kPi, forwards, 1e-9);
    }
}

TEST(MatCalcScaledAngle, GivesTheDirectionInDegrees) {
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {5, 0}, 1.0, 1.0), 0.0);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {1, 1}, 1.0, 1.0), 45.0);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {0, 9}, 1.0, 1.0), 90.0);
    EXPECT_EQ(matCalcScaledAngle({4, 2}, {1, 2}, 1.0, 1.0), 180.0);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {0, -9}, 1.0, 1.0), 270.0);
    EXPECT_EQ(matCalcScaledAngle({2, 2}, {3, 1}, 1.0, 1.0), 315.0);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {1, 1}, 1.0, 2.0), 63.43494882292201);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {1, 1}, 0.5, 1.0), 63.43494882292201);
}

TEST(MatCalcScaledAngle, GivesZeroForAShortVector) {
    EXPECT_EQ(matCalcScaledAngle({7, 7}, {7, 7}, 1.0, 1.0), 0.0);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {0, 1}, 1.0, below(1e-7)), 0.0);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {0, 1}, 1.0, 1e-7), 90.0);
}

TEST(MatCalcScaledAngle, WrapsDifferencesAt32Bits) {
    EXPECT_EQ(matCalcScaledAngle({kLowest, 0}, {kHighest, 0}, 1.0, 1.0), 180.0);
    EXPECT_EQ(matCalcScaledAngle({kHighest, 0}, {kLowest, 0}, 1.0, 1.0), 0.0);
    EXPECT_EQ(matCalcScaledAngle({0, kHighest}, {0, kLowest}, 1.0, 1.0), 90.0);
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {0, kLowest}, 1.0, 1.0), 270.0);
}
