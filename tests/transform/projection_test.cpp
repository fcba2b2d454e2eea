#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "tests/support/matrix4_reference.h"
#include "velquad/transform.h"

using velquad::test::atRunTime;
using velquad::test::composed;
using velquad::test::expectEqual;
using velquad::test::expectNear;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::kCounting;
using velquad::test::Matrix;

namespace {

using Vector = std::array<double, 4>;

void expectImage(const Matrix& m, const Vector& in, const Vector& expected) {
    Vector image{};
    EXPECT_EQ(matTransformVector4(image.data(), m.m, in.data(), 1), 1);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(image[i], expected[i], 1e-14) << "component " << i;
}

template <class Function>
void expectComposes(const Matrix& elementary, Function compose) {
    for (const int multiplyFromLeft : {0, 1, -5}) {
        Matrix m = kCounting;
        EXPECT_EQ(compose(m.m, multiplyFromLeft), 1);
        expectSameBits(m, composed(kCounting, elementary, multiplyFromLeft != 0));
    }
}

}  // namespace

// cot(45 degrees) = 1, (1 + 3) / (1 - 3) = -2, 2 * 1 * 3 / (1 - 3) = -3.
TEST(MatComputePerspectiveMatrix4, StoresTheProjection) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputePerspectiveMatrix4(m.m, 90.0, 2.0, 1.0, 3.0), 1);
    expectNear(m, {{{0.5, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, -2, -3}, {0, 0, -1, 0}}}, 1e-15);
}

TEST(MatComputePerspectiveMatrix4, FollowsItsFormulaToTheLastBit) {
    const double x = atRunTime(37.3) * 0.017453292519943295 * 0.5;
    const double f = std::cos(x) / std::sin(x);
    Matrix m;
    EXPECT_EQ(matComputePerspectiveMatrix4(m.m, 37.3, 1.3, 0.7, 9.1), 1);
    expectEqual(m, {{{f / 1.3, 0, 0, 0},
                     {0, f, 0, 0},
                     {0, 0, (0.7 + 9.1) / (0.7 - 9.1), (2.0 * 0.7) * 9.1 / (0.7 - 9.1)},
                     {0, 0, -1, 0}}});
}

TEST(MatComputePerspectiveMatrix4, ClippingPlanesComeOutAtOneAndMinusOne) {
    Matrix m;
    matComputePerspectiveMatrix4(m.m, 60.0, 1.5, 2.0, 8.0);
    const double high = 2.0 * std::tan(30.0 * 0.017453292519943295);
    expectImage(m, {1.5 * high, high, -2.0, 1.0}, {1, 1, -1, 1});
    expectImage(m, {0.0, -4.0 * high, -8.0, 1.0}, {0, -1, 1, 1});
}

TEST(MatComputePerspectiveMatrix4, EmptyDepthDividesByZero) {
    Matrix m;
    EXPECT_EQ(matComputePerspectiveMatrix4(m.m, 60.0, 1.5, 2.0, 2.0), 1);
    EXPECT_TRUE(std::isinf(m.m[2][2]));
    EXPECT_TRUE(std::isinf(m.m[2][3]));
}

TEST(MatPerspectiveMatrix4, ComposesTheElementaryMatrix) {
    Matrix elementary;
    matComputePerspectiveMatrix4(elementary.m, 60.0, 1.5, 2.0, 8.0);
    expectComposes(elementary, [](double(*m)[4], int multiplyFromLeft) {
        return matPerspectiveMatrix4(m, 60.0, 1.5, 2.0, 8.0, multiplyFromLeft);
    });
}

TEST(MatComputeOrthoMatrix4, StoresTheProjection) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeOrthoMatrix4(m.m, 1.0, 5.0, -2.0, 6.0, 10.0, 12.0), 1);
    expectEqual(m, {{{0.5, 0, 0, -1.5}, {0, 0.25, 0, -0.5}, {0, 0, -1, -11}, {0, 0, 0, 1}}});
}

TEST(MatComputeOrthoMatrix4, CornersOfTheBoxComeOutAtOneAndMinusOne) {
    Matrix m;
    matComputeOrthoMatrix4(m.m, 1.0, 5.0, -2.0, 6.0, 10.0, 12.0);
    expectImage(m, {1, -2, -10, 1}, {-1, -1, -1, 1});
    expectImage(m, {5, 6, -12, 1}, {1, 1, 1, 1});
}

TEST(MatComputeOrthoMatrix4, FollowsItsFormulaToTheLastBit) {
    Matrix m;
    EXPECT_EQ(matComputeOrthoMatrix4(m.m, 0.1, 5.3, -2.7, 6.1, 0.7, 9.1), 1);
    expectEqual(m, {{{2.0 / (5.3 - 0.1), 0, 0, -(0.1 + 5.3) / (5.3 - 0.1)},
                     {0, 2.0 / (6.1 - -2.7), 0, -(-2.7 + 6.1) / (6.1 - -2.7)},
                     {0, 0, 2.0 / (0.7 - 9.1), -(0.7 + 9.1) / (9.1 - 0.7)},
                     {0, 0, 0, 1}}});
}

TEST(MatComputeOrthoMatrix4, EmptyRangesDivideByZero) {
    Matrix m;
    EXPECT_EQ(matComputeOrthoMatrix4(m.m, 2.0, 2.0, 3.0, 3.0, 4.0, 4.0), 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(std::isinf(m.m[i][i])) << i;
        EXPECT_TRUE(std::isinf(m.m[i][3])) << i;
    }
}

TEST(MatOrthoMatrix4, ComposesTheElementaryMatrix) {
    Matrix elementary;
    matComputeOrthoMatrix4(elementary.m, 1.0, 5.0, -2.0, 6.0, 10.0, 12.0);
    expectComposes(elementary, [](double(*m)[4], int multiplyFromLeft) {
        return matOrthoMatrix4(m, 1.0, 5.0, -2.0, 6.0, 10.0, 12.0, multiplyFromLeft);
    });
}

TEST(MatComputeFrustumMatrix4, StoresTheProjection) {
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeFrustumMatrix4(m.m, 1.0, 5.0, -2.0, 6.0, 2.0, 4.0), 1);
    expectEqual(m, {{{1, 0, 1.5, 0}, {0, 0.5, 0.5, 0}, {0, 0, -3, -8}, {0, 0, -1, 0}}});
}

TEST(MatComputeFrustumMatrix4, CornersOfTheWindowComeOutAtOneAndMinusOne) {
    Matrix m;
    matComputeFrustumMatrix4(m.m, 1.0, 5.0, -2.0, 6.0, 2.0, 4.0);
    expectImage(m, {1, -2, -2, 1}, {-1, -1, -1, 1});
    expectImage(m, {5, 6, -2, 1}, {1, 1, -1, 1});
    expectImage(m, {10, 12, -4, 1}, {1, 1, 1, 1});
}

TEST(MatComputeFrustumMatrix4, FollowsItsFormulaToTheLastBit) {
    const double twoNear = 2.0 * 0.7;
    Matrix m;
    EXPECT_EQ(matComputeFrustumMatrix4(m.m, 0.1, 5.3, -2.7, 6.1, 0.7, 9.1), 1);
    expectEqual(m, {{{twoNear / (5.3 - 0.1), 0, (0.1 + 5.3) / (5.3 - 0.1), 0},
                     {0, twoNear / (6.1 - -2.7), (-2.7 + 6.1) / (6.1 - -2.7), 0},
                     {0, 0, (0.7 + 9.1) / (0.7 - 9.1), twoNear * 9.1 / (0.7 - 9.1)},
                     {0, 0, -1, 0}}});
}

TEST(MatComputeFrustumMatrix4, EmptyRangesDivideByZero) {
    Matrix m;
    EXPECT_EQ(matComputeFrustumMatrix4(m.m, 2.0, 2.0, 3.0, 3.0, 4.0, 4.0), 1);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(std::isinf(m.m[i][i])) << i;
}

TEST(MatFrustumMatrix4, ComposesTheElementaryMatrix) {
    Matrix elementary;
    matComputeFrustumMatrix4(elementary.m, 1.0, 5.0, -2.0, 6.0, 2.0, 4.0);
    expectComposes(elementary, [](double(*m)[4], int multiplyFromLeft) {
        return matFrustumMatrix4(m, 1.0, 5.0, -2.0, 6.0, 2.0, 4.0, multiplyFromLeft);
    });
}

TEST(Projections, SymmetricFrustumIsThePerspective) {
    const double high = 2.0 * std::tan(30.0 * 0.017453292519943295);
    Matrix frustum;
    Matrix perspective;
    matComputeFrustumMatrix4(frustum.m, -1.5 * high, 1.5 * high, -high, high, 2.0, 8.0);
    matComputePerspectiveMatrix4(perspective.m, 60.0, 1.5, 2.0, 8.0);
    expectNear(frustum, perspective, 1e-14);
}
