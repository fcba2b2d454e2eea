#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/allocation_failure.h"
#include "tests/support/matrix4_reference.h"
#include "velquad/geometry.h"
#include "velquad/transform.h"

using velquad::test::bitsOf;
using velquad::test::composed;
using velquad::test::expectEqual;
using velquad::test::expectNear;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::kIdentity;
using velquad::test::Matrix;

namespace {

constexpr double kPi = 3.141592653589793;

struct Angles {
    double tilt;
    double first;
    double last;
};

Matrix matrixOf(const Angles& angles, int isDegrees) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(
        matConvertUnifiedAnglesToRotationMatrix4(m.m, angles.tilt, angles.first, angles.last, isDegrees), 1);
    return m;
}

Angles anglesOf(Matrix m, int isDegrees) {
    Angles angles{7, 7, 7};
    EXPECT_EQ(
        matConvertRotationMatrixToUnifiedAngles4(m.m, &angles.tilt, &angles.first, &angles.last, isDegrees),
        1);
    return angles;
}

Angles normalized(Angles angles, int isDegrees) {
    EXPECT_EQ(matNormalizeUnifiedAngles4(&angles.tilt, &angles.first, &angles.last, isDegrees), 1);
    return angles;
}

void expectAngles(const Angles& actual, const Angles& expected, double tolerance) {
    EXPECT_NEAR(actual.tilt, expected.tilt, tolerance);
    EXPECT_NEAR(actual.first, expected.first, tolerance);
    EXPECT_NEAR(actual.last, expected.last, tolerance);
}

/// The distance of two angles on the circle.
double apart(double a, double b, double fullTurn) {
    const double d = std::fabs(std::remainder(a - b, fullTurn));
    return d;
}

/// The angles of a rotation by way of the exported functions, one step after the other.
Angles anglesLiterally(const Matrix& m, int isDegrees) {
    double w[4] = {0, 0, 1, 1};
    matTransformVector4(w, m.m, w, 1);
    double inclination = 0.0;
    double azimuth = 0.0;
    matComputePolarVector(w, &inclination, &azimuth, isDegrees, 0, 1);
    Matrix q = kIdentity;
    matArbitraryRotateMatrix4(q.m, azimuth, isDegrees, 0, 0, 1, 0);
    matArbitraryRotateMatrix4(q.m, inclination, isDegrees, 0, 1, 0, 0);
    matInvertMatrix4(q.m, q.m, 0);
    double u[4] = {1, 0, 0, 1};
    matTransformVector4(u, m.m, u, 1);
    matTransformVector4(u, q.m, u, 1);
    double last = std::atan2(u[1], u[0]);
    if (isDegrees != 0) last = last * 180.0 / 3.141592653589793;
    return {matNormalizeAngle(inclination, isDegrees), matNormalizeAngle(azimuth, isDegrees),
            matNormalizeAngle(last, isDegrees)};
}

}  // namespace

TEST(MatConvertUnifiedAnglesToRotationMatrix4, NoAnglesGiveTheIdentity) {
    expectEqual(matrixOf({0, 0, 0}, 1), kIdentity);
    expectEqual(matrixOf({0, 0, 0}, 0), kIdentity);
}

TEST(MatConvertUnifiedAnglesToRotationMatrix4, EachAngleTurnsAboutItsAxis) {
    Matrix z;
    matComputeRotationMatrix4(z.m, 25.0, 1, 2);
    Matrix y;
    matComputeRotationMatrix4(y.m, 25.0, 1, 1);
    expectNear(matrixOf({0, 25, 0}, 1), z, 1e-15);
    expectNear(matrixOf({0, 0, 25}, 1), z, 1e-15);
    expectNear(matrixOf({25, 0, 0}, 1), y, 1e-15);
}

// A quarter turn each: z goes to x by the tilt and then to y by the first angle. x turns to y by the last angle,
// stays there under the tilt, and goes to -x.
TEST(MatConvertUnifiedAnglesToRotationMatrix4, LastActsFirst) {
    expectNear(matrixOf({90, 90, 90}, 1), {{{-1, 0, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0}, {0, 0, 0, 1}}}, 1e-15);
    expectNear(matrixOf({kPi / 2, kPi / 2, kPi / 2}, 0),
               {{{-1, 0, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0}, {0, 0, 0, 1}}}, 1e-15);
}

TEST(MatConvertUnifiedAnglesToRotationMatrix4, ComposesThreeRotationsFromTheRight) {
    for (const int isDegrees : {0, 1, -3}) {
        Matrix expected = kIdentity;
        Matrix rotation;
        matComputeArbitraryRotationMatrix4(rotation.m, 0.7, isDegrees, 0, 0, 1);
        expected = composed(expected, rotation, false);
        matComputeArbitraryRotationMatrix4(rotation.m, 1.9, isDegrees, 0, 1, 0);
        expected = composed(expected, rotation, false);
        matComputeArbitraryRotationMatrix4(rotation.m, -2.3, isDegrees, 0, 0, 1);
        expected = composed(expected, rotation, false);
        expectSameBits(matrixOf({1.9, 0.7, -2.3}, isDegrees), expected);
    }
}

TEST(MatConvertRotationMatrixToUnifiedAngles4, FindsTheAnglesAgain) {
    expectAngles(anglesOf(matrixOf({30, 40, 50}, 1), 1), {30, 40, 50}, 1e-12);
    expectAngles(anglesOf(matrixOf({150, 300, 200}, 1), 1), {150, 300, 200}, 1e-12);
    expectAngles(anglesOf(matrixOf({0.5, 4.0, 6.0}, 0), 0), {0.5, 4.0, 6.0}, 1e-14);
    expectAngles(anglesOf(matrixOf({30, 40, 50}, 1), 0), {kPi / 6, kPi * 2 / 9, kPi * 5 / 18}, 1e-14);
}

TEST(MatConvertRotationMatrixToUnifiedAngles4, RoundTripOfRandomAngles) {
    constexpr unsigned kSeed = 73;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> tilt(0.01, 0.49);
    std::uniform_real_distribution<double> turn(0.0, 1.0);
    for (int round = 0; round < 1000; ++round) {
        for (const int isDegrees : {0, 1}) {
            const double full = isDegrees != 0 ? 360.0 : 2.0 * kPi;
            const Angles angles{tilt(random) * full, turn(random) * full, turn(random) * full};
            const Matrix m = matrixOf(angles, isDegrees);
            const Angles found = anglesOf(m, isDegrees);
            ASSERT_NEAR(found.tilt, angles.tilt, 1e-11);
            ASSERT_LT(apart(found.first, angles.first, full), 1e-11);
            ASSERT_LT(apart(found.last, angles.last, full), 1e-11);
            ASSERT_GE(found.first, 0.0);
            ASSERT_LT(found.first, full);
            ASSERT_GE(found.last, 0.0);
            ASSERT_LT(found.last, full);
            expectNear(matrixOf(found, isDegrees), m, 1e-12);
        }
    }
}

TEST(MatConvertRotationMatrixToUnifiedAngles4, FollowsItsStepsToTheLastBit) {
    constexpr unsigned kSeed = 74;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> degrees(-400.0, 400.0);
    for (int round = 0; round < 1000; ++round) {
        const Matrix m = matrixOf({degrees(random), degrees(random), degrees(random)}, 1);
        for (const int isDegrees : {0, 1}) {
            const Angles expected = anglesLiterally(m, isDegrees);
            const Angles found = anglesOf(m, isDegrees);
            ASSERT_EQ(bitsOf(found.tilt), bitsOf(expected.tilt));
            ASSERT_EQ(bitsOf(found.first), bitsOf(expected.first));
            ASSERT_EQ(bitsOf(found.last), bitsOf(expected.last));
        }
    }
}

TEST(MatConvertRotationMatrixToUnifiedAngles4, WithoutTiltTheWholeTurnIsTheLastAngle) {
    expectAngles(anglesOf(kIdentity, 1), {0, 0, 0}, 0.0);
    expectAngles(anglesOf(matrixOf({0, 40, 50}, 1), 1), {0, 0, 90}, 1e-12);
    expectAngles(anglesOf(matrixOf({0, 200, 300}, 1), 1), {0, 0, 140}, 1e-12);
    expectAngles(anglesOf(matrixOf({180, 40, 50}, 1), 1), {180, 0, 10}, 1e-12);
}

TEST(MatConvertRotationMatrixToUnifiedAngles4, OutputsAreOptional) {
    Matrix m = matrixOf({30, 40, 50}, 1);
    double value = 7;
    EXPECT_EQ(matConvertRotationMatrixToUnifiedAngles4(m.m, nullptr, nullptr, nullptr, 1), 1);
    EXPECT_EQ(matConvertRotationMatrixToUnifiedAngles4(m.m, &value, nullptr, nullptr, 1), 1);
    EXPECT_NEAR(value, 30.0, 1e-12);
    EXPECT_EQ(matConvertRotationMatrixToUnifiedAngles4(m.m, nullptr, &value, nullptr, 1), 1);
    EXPECT_NEAR(value, 40.0, 1e-12);
    EXPECT_EQ(matConvertRotationMatrixToUnifiedAngles4(m.m, nullptr, nullptr, &value, 1), 1);
    EXPECT_NEAR(value, 50.0, 1e-12);
}

TEST(MatConvertRotationMatrixToUnifiedAngles4, MatricesThatAreNoRotationHaveAngles) {
    // Every weight vanishes: the axes count as they are.
    expectAngles(anglesOf(filledWith(0.0), 1), {0, 0, 0}, 0.0);
    // The axes shrink to the origin, which has no direction.
    expectAngles(anglesOf({{{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 1}}}, 1), {0, 0, 0}, 0.0);
}

TEST(MatConvertRotationMatrixToUnifiedAngles4, LackOfMemoryGivesZeroAndStoresNothing) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        Matrix m = matrixOf({30, 40, 50}, 1);
        Angles angles{7, 7, 7};
        const int result =
            matConvertRotationMatrixToUnifiedAngles4(m.m, &angles.tilt, &angles.first, &angles.last, 1);
        expectAngles(angles, result == 1 ? Angles{30, 40, 50} : Angles{7, 7, 7}, 1e-12);
        return result == 0;
    });
    EXPECT_GT(allocations, 0U);
}

TEST(MatNormalizeUnifiedAngles4, NegativeTiltTurnsOver) {
    expectAngles(normalized({-10, 20, 30}, 1), {10, 200, 210}, 1e-12);
    expectAngles(normalized({-0.5, 1.0, 5.0}, 0), {0.5, 1.0 + kPi, 5.0 - kPi}, 1e-14);
}

TEST(MatNormalizeUnifiedAngles4, TiltBeyondHalfATurnTurnsOver) {
    expectAngles(normalized({190, 20, 30}, 1), {170, 200, 210}, 1e-12);
    expectAngles(normalized({400, 20, 30}, 1), {40, 20, 30}, 1e-12);
}

TEST(MatNormalizeUnifiedAngles4, OtherAnglesAreNormalizedAndTheTiltIsKept) {
    const Angles angles = normalized({33.0, -90.0, 725.0}, 1);
    EXPECT_EQ(angles.tilt, 33.0);
    EXPECT_EQ(angles.first, 270.0);
    EXPECT_EQ(angles.last, 5.0);
    // No tilt: the sum is not collected in one angle, as the conversion of a matrix would.
    expectAngles(normalized({0.0, 20.0, 30.0}, 1), {0, 20, 30}, 0.0);
    expectAngles(normalized({1.0, -kPi, 1.5}, 0), {1.0, kPi, 1.5}, 1e-15);
}

TEST(MatNormalizeUnifiedAngles4, DescribesTheSameRotation) {
    constexpr unsigned kSeed = 75;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> degrees(-800.0, 800.0);
    for (int round = 0; round < 1000; ++round) {
        const Angles angles{degrees(random), degrees(random), degrees(random)};
        const Angles normal = normalized(angles, 1);
        EXPECT_GE(normal.tilt, 0.0);
        EXPECT_LE(normal.tilt, 180.0);
        expectNear(matrixOf(normal, 1), matrixOf(angles, 1), 1e-11);
    }
}

TEST(MatNormalizeUnifiedAngles4, TiltBelowZeroByRoundingIsKept) {
    for (const int isDegrees : {0, 1}) {
        const double kept = std::nextafter(-1e-7, 0.0);
        EXPECT_EQ(normalized({kept, 1.0, 2.0}, isDegrees).tilt, kept);
        EXPECT_EQ(normalized({kept, 1.0, 2.0}, isDegrees).first, 1.0);
        // At the tolerance the triple is converted: so little tilt has no direction, and all goes to `last`.
        expectAngles(normalized({-1e-7, 1.0, 2.0}, isDegrees), {1e-7, 0.0, 3.0}, 1e-9);
    }
}

TEST(MatNormalizeUnifiedAngles4, TiltAboveHalfATurnByRoundingIsKept) {
    struct Case {
        int isDegrees;
        double halfTurn;
        double limit;
    };
    for (const Case& c : {Case{1, 180.0, 180.0000001}, Case{0, kPi, 3.141592753589793}}) {
        SCOPED_TRACE(c.isDegrees);
        expectAngles(normalized({c.halfTurn, 1.0, 2.0}, c.isDegrees), {c.halfTurn, 1.0, 2.0}, 0.0);
        const double kept = std::nextafter(c.limit, 0.0);
        expectAngles(normalized({kept, 1.0, 2.0}, c.isDegrees), {kept, 1.0, 2.0}, 0.0);
        // At the limit the triple is converted: so near to half a turn only the difference of the others counts.
        const Angles converted = normalized({c.limit, 1.0, 2.0}, c.isDegrees);
        expectAngles(converted, {c.halfTurn, 0.0, 1.0}, 1e-6);
        EXPECT_LE(converted.tilt, c.halfTurn);
    }
}

TEST(MatNormalizeUnifiedAngles4, NotANumberIsConverted) {
    const Angles angles = normalized({std::numeric_limits<double>::quiet_NaN(), 1.0, 2.0}, 1);
    EXPECT_TRUE(std::isnan(angles.tilt));
    EXPECT_TRUE(std::isnan(angles.first));
    EXPECT_TRUE(std::isnan(angles.last));
}

TEST(MatNormalizeUnifiedAngles4, LackOfMemoryGivesZeroAndLeavesTheTilt) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        Angles angles{-10, -20, 370};
        const int result = matNormalizeUnifiedAngles4(&angles.tilt, &angles.first, &angles.last, 1);
        expectAngles(angles, result == 1 ? Angles{10, 160, 190} : Angles{-10, 340, 10}, 1e-12);
        return result == 0;
    });
    EXPECT_GT(allocations, 0U);
}
