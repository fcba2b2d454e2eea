#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "tests/support/matrix4_reference.h"
#include "velquad/transform.h"

using velquad::test::atRunTime;
using velquad::test::composed;
using velquad::test::expectEqual;
using velquad::test::expectNear;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::kCounting;
using velquad::test::kIdentity;
using velquad::test::Matrix;
using velquad::test::product;

namespace {

using Vector = std::array<double, 4>;

constexpr double kPi = 3.141592653589793;
constexpr double kRounding = 1e-15;

Vector imageOf(const Matrix& m, double x, double y, double z) {
    const Vector in{x, y, z, 1.0};
    Vector out{};
    EXPECT_EQ(matTransformVector4(out.data(), m.m, in.data(), 1), 1);
    return out;
}

void expectImage(const Matrix& m, const Vector& in, const Vector& expected) {
    const Vector image = imageOf(m, in[0], in[1], in[2]);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(image[i], expected[i], 1e-14) << "component " << i;
}

/// The elementary rotation, element by element.
Matrix rotation(double angle, bool isDegrees, int axis) {
    const double angleRad = atRunTime(isDegrees ? angle * 3.141592653589793 / 180.0 : angle);
    const double c = std::cos(angleRad);
    const double s = std::sin(angleRad);
    if (axis == 0) return {{{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, 0, 0, 1}}};
    if (axis == 1) return {{{c, 0, s, 0}, {0, 1, 0, 0}, {-s, 0, c, 0}, {0, 0, 0, 1}}};
    return {{{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
}

Matrix scaling(double x, double y, double z) {
    return {{{x, 0, 0, 0}, {0, y, 0, 0}, {0, 0, z, 0}, {0, 0, 0, 1}}};
}

/// Checks a composing function against the product with its elementary matrix, on either side and with flags
/// that are not 1.
template <class Function>
void expectComposes(const Matrix& elementary, Function compose) {
    for (const int multiplyFromLeft : {0, 1, -5}) {
        Matrix m = kCounting;
        EXPECT_EQ(compose(m.m, multiplyFromLeft), 1);
        expectSameBits(m, composed(kCounting, elementary, multiplyFromLeft != 0));
    }
}

}  // namespace

TEST(MatLoadIdentityMatrix4, OverwritesEveryElement) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matLoadIdentityMatrix4(m.m), 1);
    expectSameBits(m, kIdentity);
}

TEST(MatRotateMatrix4, QuarterTurnAboutZTakesXToY) {
    Matrix m = kIdentity;
    EXPECT_EQ(matRotateMatrix4(m.m, 90.0, 1, 2, 1), 1);
    expectImage(m, {1, 0, 0, 1}, {0, 1, 0, 1});
}

TEST(MatComputeRotationMatrix4, StoresSineAndCosineByAxis) {
    for (const int axis : {0, 1, 2}) {
        for (const double angle : {0.0, 30.0, -77.5, 90.0, 200.0, 1000.0}) {
            Matrix m = filledWith(7.0);
            EXPECT_EQ(matComputeRotationMatrix4(m.m, angle, 1, axis), 1);
            expectEqual(m, rotation(angle, true, axis));
            EXPECT_EQ(matComputeRotationMatrix4(m.m, angle, 0, axis), 1);
            expectEqual(m, rotation(angle, false, axis));
        }
    }
}

TEST(MatComputeRotationMatrix4, TurnsCounterClockwiseAboutEachAxis) {
    Matrix m;
    matComputeRotationMatrix4(m.m, 90.0, 1, 0);
    expectImage(m, {0, 1, 0, 1}, {0, 0, 1, 1});
    matComputeRotationMatrix4(m.m, 90.0, 1, 1);
    expectImage(m, {0, 0, 1, 1}, {1, 0, 0, 1});
    matComputeRotationMatrix4(m.m, kPi / 2.0, 0, 2);
    expectImage(m, {0, 1, 0, 1}, {-1, 0, 0, 1});
}

TEST(MatComputeRotationMatrix4, EveryOtherAxisCodeMeansZ) {
    Matrix z;
    matComputeRotationMatrix4(z.m, 25.0, 1, 2);
    for (const int axis : {7, 3, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        Matrix m;
        EXPECT_EQ(matComputeRotationMatrix4(m.m, 25.0, 1, axis), 1);
        expectSameBits(m, z);
    }
}

TEST(MatComputeRotationMatrix4, DegreesAreAnyNonZeroFlag) {
    Matrix m;
    Matrix expected;
    matComputeRotationMatrix4(expected.m, 25.0, 1, 0);
    matComputeRotationMatrix4(m.m, 25.0, -3, 0);
    expectSameBits(m, expected);
}

TEST(MatRotateMatrix4, ComposesTheElementaryMatrix) {
    for (const int axis : {0, 1, 2, 9}) {
        expectComposes(rotation(37.0, true, axis), [axis](double(*m)[4], int multiplyFromLeft) {
            return matRotateMatrix4(m, 37.0, 1, axis, multiplyFromLeft);
        });
    }
}

TEST(MatRotateMatrix4, SideDecidesWhichTransformActsFirst) {
    Matrix m = kIdentity;
    matTranslateMatrix4(m.m, 2.0, 0.0, 0.0, 1);
    matRotateMatrix4(m.m, 90.0, 1, 2, 1);
    expectImage(m, {0, 0, 0, 1}, {0, 2, 0, 1});
    expectImage(m, {1, 0, 0, 1}, {0, 3, 0, 1});
    m = kIdentity;
    matTranslateMatrix4(m.m, 2.0, 0.0, 0.0, 1);
    matRotateMatrix4(m.m, 90.0, 1, 2, 0);
    expectImage(m, {0, 0, 0, 1}, {2, 0, 0, 1});
    expectImage(m, {1, 0, 0, 1}, {2, 1, 0, 1});
}

TEST(MatComputeArbitraryRotationMatrix4, AgreesWithTheCoordinateAxes) {
    const double axes[3][3] = {{3, 0, 0}, {0, 0.5, 0}, {0, 0, 1e-3}};
    for (int axis = 0; axis < 3; ++axis) {
        Matrix m = filledWith(7.0);
        EXPECT_EQ(
            matComputeArbitraryRotationMatrix4(m.m, 40.0, 1, axes[axis][0], axes[axis][1], axes[axis][2]), 1);
        expectNear(m, rotation(40.0, true, axis), kRounding);
    }
}

TEST(MatComputeArbitraryRotationMatrix4, ThirdOfATurnAboutTheDiagonalPermutesTheAxes) {
    Matrix m;
    EXPECT_EQ(matComputeArbitraryRotationMatrix4(m.m, 2.0 * kPi / 3.0, 0, 1.0, 1.0, 1.0), 1);
    expectImage(m, {1, 2, 3, 1}, {3, 1, 2, 1});
}

TEST(MatComputeArbitraryRotationMatrix4, FollowsItsFormulaToTheLastBit) {
    const double length = std::sqrt(1.0 * 1.0 + -2.0 * -2.0 + 0.5 * 0.5);
    const double x = 1.0 * (1.0 / length);
    const double y = -2.0 * (1.0 / length);
    const double z = 0.5 * (1.0 / length);
    const double c = std::cos(atRunTime(33.0) * 3.141592653589793 / 180.0);
    const double s = std::sin(atRunTime(33.0) * 3.141592653589793 / 180.0);
    const double t = 1.0 - c;
    Matrix m;
    EXPECT_EQ(matComputeArbitraryRotationMatrix4(m.m, 33.0, 1, 1.0, -2.0, 0.5), 1);
    expectSameBits(m, {{{x * x * t + c, y * x * t - s * z, s * y + z * x * t, 0},
                        {y * x * t + s * z, y * y * t + c, z * y * t - s * x, 0},
                        {z * x * t - s * y, z * y * t + s * x, z * z * t + c, 0},
                        {0, 0, 0, 1}}});
}

TEST(MatComputeArbitraryRotationMatrix4, NullAxisIsRefusedAndLeavesTheMatrix) {
    Matrix m = kCounting;
    EXPECT_EQ(matComputeArbitraryRotationMatrix4(m.m, 30.0, 1, 0.0, 0.0, 0.0), 0);
    expectSameBits(m, kCounting);
}

TEST(MatComputeArbitraryRotationMatrix4, AxisMustReachTheShortestLength) {
    // Squares of axes around 1e-40 are denormal numbers of 1e-80: still exact enough to compare.
    Matrix m = kCounting;
    EXPECT_EQ(matComputeArbitraryRotationMatrix4(m.m, 90.0, 1, 0.0, 0.0, 0.999e-40), 0);
    expectSameBits(m, kCounting);
    EXPECT_EQ(matComputeArbitraryRotationMatrix4(m.m, 90.0, 1, 0.0, 0.0, 1.001e-40), 1);
    expectNear(m, rotation(90.0, true, 2), 1e-14);
}

TEST(MatArbitraryRotateMatrix4, ComposesTheElementaryMatrix) {
    Matrix elementary;
    matComputeArbitraryRotationMatrix4(elementary.m, 0.4, 0, 1.0, -2.0, 0.5);
    expectComposes(elementary, [](double(*m)[4], int multiplyFromLeft) {
        return matArbitraryRotateMatrix4(m, 0.4, 0, 1.0, -2.0, 0.5, multiplyFromLeft);
    });
}

TEST(MatArbitraryRotateMatrix4, NullAxisIsRefusedAndLeavesTheMatrix) {
    for (const int multiplyFromLeft : {0, 1}) {
        Matrix m = kCounting;
        EXPECT_EQ(matArbitraryRotateMatrix4(m.m, 30.0, 1, 0.0, 0.0, 0.0, multiplyFromLeft), 0);
        expectSameBits(m, kCounting);
    }
}

TEST(MatComputeShearMatrix4, TurnsEachAxisByItsAngle) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeShearMatrix4(m.m, 30.0, 60.0, 1), 1);
    const double root = std::sqrt(3.0) / 2.0;
    expectNear(m, {{{root, -root, 0, 0}, {0.5, 0.5, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}, kRounding);
    EXPECT_EQ(matComputeShearMatrix4(m.m, kPi / 6.0, kPi / 3.0, 0), 1);
    expectNear(m, {{{root, -root, 0, 0}, {0.5, 0.5, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}, kRounding);
}

TEST(MatComputeShearMatrix4, AddsTheQuarterTurnBeforeTheConversion) {
    Matrix m;
    matComputeShearMatrix4(m.m, 12.5, 7.3, 1);
    EXPECT_EQ(m.m[0][0], std::cos(atRunTime(12.5) * 3.141592653589793 / 180.0));
    EXPECT_EQ(m.m[1][0], std::sin(atRunTime(12.5) * 3.141592653589793 / 180.0));
    EXPECT_EQ(m.m[0][1], std::cos((atRunTime(7.3) + 90.0) * 3.141592653589793 / 180.0));
    EXPECT_EQ(m.m[1][1], std::sin((atRunTime(7.3) + 90.0) * 3.141592653589793 / 180.0));
    matComputeShearMatrix4(m.m, 0.2, 0.7, 0);
    EXPECT_EQ(m.m[0][1], std::cos(atRunTime(0.7) + 1.5707963267948966));
    EXPECT_EQ(m.m[1][1], std::sin(atRunTime(0.7) + 1.5707963267948966));
}

TEST(MatShearMatrix4, ComposesTheElementaryMatrix) {
    Matrix elementary;
    matComputeShearMatrix4(elementary.m, 10.0, 20.0, 1);
    expectComposes(elementary, [](double(*m)[4], int multiplyFromLeft) {
        return matShearMatrix4(m, 10.0, 20.0, 1, multiplyFromLeft);
    });
}

TEST(MatComputeSizeMatrix4, StoresTheDiagonal) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeSizeMatrix4(m.m, 2.0, -3.0, 0.5), 1);
    expectSameBits(m, scaling(2.0, -3.0, 0.5));
}

TEST(MatSizeMatrix4, ComposesTheElementaryMatrix) {
    expectComposes(scaling(2.0, -3.0, 0.5), [](double(*m)[4], int multiplyFromLeft) {
        return matSizeMatrix4(m, 2.0, -3.0, 0.5, multiplyFromLeft);
    });
}

TEST(MatComputeTranslationMatrix4, StoresTheLastColumn) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeTranslationMatrix4(m.m, 2.0, -3.0, 0.5), 1);
    expectSameBits(m, {{{1, 0, 0, 2.0}, {0, 1, 0, -3.0}, {0, 0, 1, 0.5}, {0, 0, 0, 1}}});
}

TEST(MatTranslateMatrix4, ComposesTheElementaryMatrix) {
    expectComposes({{{1, 0, 0, 2.0}, {0, 1, 0, -3.0}, {0, 0, 1, 0.5}, {0, 0, 0, 1}}},
                   [](double(*m)[4], int multiplyFromLeft) {
                       return matTranslateMatrix4(m, 2.0, -3.0, 0.5, multiplyFromLeft);
                   });
}

TEST(MatComputeDecompressMatrix4, StretchesAlongItsDirectionOnly) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeDecompressMatrix4(m.m, 30.0, 1, 3.0), 1);
    const double x = std::sqrt(3.0) / 2.0;
    expectImage(m, {x, 0.5, 1, 1}, {3.0 * x, 1.5, 1, 1});
    expectImage(m, {-0.5, x, 1, 1}, {-0.5, x, 1, 1});
}

TEST(MatComputeDecompressMatrix4, IsThreeProductsFromTheLeft) {
    for (const bool isDegrees : {true, false}) {
        const double angle = isDegrees ? 25.0 : 0.4;
        Matrix expected = composed(kIdentity, rotation(-angle, isDegrees, 2), true);
        expected = composed(expected, scaling(1.75, 1.0, 1.0), true);
        expected = composed(expected, rotation(angle, isDegrees, 2), true);
        Matrix m;
        EXPECT_EQ(matComputeDecompressMatrix4(m.m, angle, isDegrees ? 1 : 0, 1.75), 1);
        expectSameBits(m, expected);
    }
}

TEST(MatDecompressMatrix4, ComposesTheElementaryMatrix) {
    Matrix elementary;
    matComputeDecompressMatrix4(elementary.m, 25.0, 1, 1.75);
    expectComposes(elementary, [](double(*m)[4], int multiplyFromLeft) {
        return matDecompressMatrix4(m, 25.0, 1, 1.75, multiplyFromLeft);
    });
}

TEST(MatComputeTiltMatrix4, KeepsItsAxisAndTurnsWhatIsAcross) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeTiltMatrix4(m.m, 90.0, 30.0, 1), 1);
    const double x = std::sqrt(3.0) / 2.0;
    expectImage(m, {x, 0.5, 0, 1}, {x, 0.5, 0, 1});
    expectImage(m, {-0.5, x, 0, 1}, {0, 0, 1, 1});
}

TEST(MatComputeTiltMatrix4, IsThreeProductsFromTheLeft) {
    for (const bool isDegrees : {true, false}) {
        const double tilt = isDegrees ? 12.0 : 0.2;
        const double direction = isDegrees ? 55.0 : 0.9;
        Matrix expected = composed(kIdentity, rotation(-direction, isDegrees, 2), true);
        expected = composed(expected, rotation(tilt, isDegrees, 0), true);
        expected = composed(expected, rotation(direction, isDegrees, 2), true);
        Matrix m;
        EXPECT_EQ(matComputeTiltMatrix4(m.m, tilt, direction, isDegrees ? 1 : 0), 1);
        expectSameBits(m, expected);
    }
}

TEST(MatTiltMatrix4, ComposesTheElementaryMatrix) {
    Matrix elementary;
    matComputeTiltMatrix4(elementary.m, 12.0, 55.0, 1);
    expectComposes(elementary, [](double(*m)[4], int multiplyFromLeft) {
        return matTiltMatrix4(m, 12.0, 55.0, 1, multiplyFromLeft);
    });
}
