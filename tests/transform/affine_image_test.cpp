#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/allocation_failure.h"
#include "tests/support/matrix4_reference.h"
#include "velquad/transform.h"

using velquad::test::composed;
using velquad::test::expectNear;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::kCounting;
using velquad::test::kIdentity;
using velquad::test::Matrix;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargestFloat = 3.4028234663852886e38;

struct Extent {
    double minX;
    double minY;
    double maxX;
    double maxY;
};

Extent extentOf(double width, double height, const Matrix& m) {
    Extent extent{7, 7, 7, 7};
    EXPECT_EQ(
        matCalcAffinImageSize(width, height, m.m, &extent.minX, &extent.minY, &extent.maxX, &extent.maxY), 1);
    return extent;
}

void expectExtent(const Extent& extent, const Extent& expected, double tolerance) {
    EXPECT_NEAR(extent.minX, expected.minX, tolerance);
    EXPECT_NEAR(extent.minY, expected.minY, tolerance);
    EXPECT_NEAR(extent.maxX, expected.maxX, tolerance);
    EXPECT_NEAR(extent.maxY, expected.maxY, tolerance);
}

struct Scale {
    double x;
    double y;
};

Scale scaleOf(double scaleX, double scaleY, const Matrix& m) {
    Scale scale{7, 7};
    EXPECT_EQ(matCalcAffinImageScale(scaleX, scaleY, m.m, &scale.x, &scale.y), 1);
    return scale;
}

Matrix rotationAboutZ(double degrees) {
    Matrix m;
    matComputeRotationMatrix4(m.m, degrees, 1, 2);
    return m;
}

}  // namespace

TEST(MatCalcAffinImageSize, IdentityKeepsTheImage) {
    expectExtent(extentOf(640, 480, kIdentity), {0, 0, 640, 480}, 0.0);
}

TEST(MatCalcAffinImageSize, QuarterTurnExchangesWidthAndHeight) {
    expectExtent(extentOf(640, 480, rotationAboutZ(90.0)), {-480, 0, 0, 640}, 1e-12);
}

TEST(MatCalcAffinImageSize, EighthOfATurnSpansTheDiagonal) {
    const double half = 100.0 / std::sqrt(2.0);
    expectExtent(extentOf(100, 100, rotationAboutZ(45.0)), {-half, 0, half, 2 * half}, 1e-12);
}

TEST(MatCalcAffinImageSize, EveryCornerCounts) {
    // Each of the four rotations brings another corner to the lower left.
    expectExtent(extentOf(3, 2, rotationAboutZ(180.0)), {-3, -2, 0, 0}, 1e-14);
    expectExtent(extentOf(3, 2, rotationAboutZ(270.0)), {0, -3, 2, 0}, 1e-14);
    const Matrix shear{{{1, 2, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    expectExtent(extentOf(3, 2, shear), {0, 0, 7, 2}, 0.0);
}

TEST(MatCalcAffinImageSize, NegativeSizesReachBelowTheOrigin) {
    expectExtent(extentOf(-3, -2, kIdentity), {-3, -2, 0, 0}, 0.0);
}

TEST(MatCalcAffinImageSize, OutputsAreOptional) {
    EXPECT_EQ(matCalcAffinImageSize(3, 2, kIdentity.m, nullptr, nullptr, nullptr, nullptr), 1);
    double value = 7;
    EXPECT_EQ(matCalcAffinImageSize(3, 2, kIdentity.m, &value, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(matCalcAffinImageSize(3, 2, kIdentity.m, nullptr, nullptr, &value, nullptr), 1);
    EXPECT_EQ(value, 3.0);
    EXPECT_EQ(matCalcAffinImageSize(3, 2, kIdentity.m, nullptr, &value, nullptr, nullptr), 1);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(matCalcAffinImageSize(3, 2, kIdentity.m, nullptr, nullptr, nullptr, &value), 1);
    EXPECT_EQ(value, 2.0);
}

// The weight 4 - x vanishes at the two right corners, for which the image of the one before counts again.
TEST(MatCalcAffinImageSize, CornerAtInfinityCountsAsTheOneBefore) {
    const Matrix m{{{1, 0, 0, 8}, {0, 1, 0, 4}, {0, 0, 1, 0}, {-1, 0, 0, 4}}};
    expectExtent(extentOf(4, 2, m), {2, 1, 2, 1.5}, 0.0);
}

// The weight x vanishes at both left corners: the first counts as the origin, the last as the third one.
TEST(MatCalcAffinImageSize, FirstCornerAtInfinityCountsAsTheOrigin) {
    const Matrix m{{{1, 0, 0, 5}, {0, 1, 0, 7}, {0, 0, 1, 0}, {1, 0, 0, 0}}};
    expectExtent(extentOf(1, 1, m), {0, 0, 6, 8}, 0.0);
}

TEST(MatCalcAffinImageSize, NotANumberSetsNoExtent) {
    const Extent extent = extentOf(3, 2, filledWith(kNaN));
    expectExtent(extent, {kLargestFloat, kLargestFloat, -kLargestFloat, -kLargestFloat}, 0.0);
}

TEST(MatCalcAffinImageSize, CoordinatesBeyondTheInitialExtentDoNotCount) {
    const Matrix remote{{{1, 0, 0, 1e39}, {0, 1, 0, -1e39}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    expectExtent(extentOf(3, 2, remote), {kLargestFloat, -1e39, 1e39, -kLargestFloat}, 0.0);
}

TEST(MatCalcAffinImageScale, IdentityKeepsTheScale) {
    const Scale scale = scaleOf(0.25, 0.75, kIdentity);
    EXPECT_EQ(scale.x, 0.25);
    EXPECT_EQ(scale.y, 0.75);
}

TEST(MatCalcAffinImageScale, EnlargedImagesHaveSmallerPixels) {
    const Matrix m{{{2, 0, 0, 5}, {0, 8, 0, 6}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    const Scale scale = scaleOf(3.0, 4.0, m);
    EXPECT_EQ(scale.x, 1.5);
    EXPECT_EQ(scale.y, 0.5);
}

TEST(MatCalcAffinImageScale, QuarterTurnExchangesTheScales) {
    const Scale scale = scaleOf(0.25, 0.75, rotationAboutZ(90.0));
    EXPECT_NEAR(scale.x, 0.75, 1e-15);
    EXPECT_NEAR(scale.y, 0.25, 1e-15);
}

// The inverse takes (1, 0) to (3, 4) and (0, 1) to (-4, 3): steps (6, 12) and (-8, 9) in units of 2 by 3.
TEST(MatCalcAffinImageScale, MeasuresTheStepInOldUnits) {
    const Matrix m{{{0.12, 0.16, 0, 0}, {-0.16, 0.12, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    const Scale scale = scaleOf(2.0, 3.0, m);
    EXPECT_NEAR(scale.x, std::sqrt(180.0), 1e-13);
    EXPECT_NEAR(scale.y, std::sqrt(145.0), 1e-13);
}

TEST(MatCalcAffinImageScale, OutputsAreOptional) {
    double value = 7;
    EXPECT_EQ(matCalcAffinImageScale(0.25, 0.75, kIdentity.m, nullptr, nullptr), 1);
    EXPECT_EQ(matCalcAffinImageScale(0.25, 0.75, kIdentity.m, &value, nullptr), 1);
    EXPECT_EQ(value, 0.25);
    EXPECT_EQ(matCalcAffinImageScale(0.25, 0.75, kIdentity.m, nullptr, &value), 1);
    EXPECT_EQ(value, 0.75);
}

TEST(MatCalcAffinImageScale, SingularTransformIsNotReported) {
    const Scale scale = scaleOf(0.25, 0.75, filledWith(0.0));
    EXPECT_FALSE(std::isfinite(scale.x));
    EXPECT_FALSE(std::isfinite(scale.y));
}

TEST(MatCalcAffinImageScale, FollowsItsStepsToTheLastBit) {
    constexpr unsigned kSeed = 71;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> element(-1.0, 1.0);
    for (int round = 0; round < 500; ++round) {
        Matrix m = kIdentity;
        for (int i = 0; i < 2; ++i) {
            for (int j = 0; j < 4; ++j)
                m.m[i][j] = element(random) + (i == j ? 3.0 : 0.0);
        }
        Matrix inverse;
        matInvertMatrix4(inverse.m, m.m, 0);
        const double steps[3][4] = {{0, 0, 0, 1}, {1, 0, 0, 1}, {0, 1, 0, 1}};
        double image[3][4];
        for (int i = 0; i < 3; ++i)
            matTransformVector4(image[i], inverse.m, steps[i], 1);
        double expected[2];
        for (int i = 0; i < 2; ++i) {
            const double dx = (image[i + 1][0] - image[0][0]) * 0.3;
            const double dy = (image[i + 1][1] - image[0][1]) * 0.7;
            expected[i] = std::sqrt(dy * dy + dx * dx);
        }
        const Scale scale = scaleOf(0.3, 0.7, m);
        EXPECT_EQ(scale.x, expected[0]);
        EXPECT_EQ(scale.y, expected[1]);
    }
}

TEST(MatCalcAffinImageScale, LackOfMemoryGivesZeroAndStoresNothing) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        Scale scale{7, 7};
        const int result = matCalcAffinImageScale(0.25, 0.75, kIdentity.m, &scale.x, &scale.y);
        EXPECT_EQ(scale.x, result == 1 ? 0.25 : 7);
        EXPECT_EQ(scale.y, result == 1 ? 0.75 : 7);
        return result == 0;
    });
    EXPECT_GT(allocations, 0U);
}

TEST(MatMoveMatrix4ToTopLeft, TurnedImageBeginsAtTheOrigin) {
    Matrix m = rotationAboutZ(90.0);
    EXPECT_EQ(matMoveMatrix4ToTopLeft(640, 480, m.m), 1);
    expectExtent(extentOf(640, 480, m), {0, 0, 480, 640}, 1e-12);
    m = rotationAboutZ(33.0);
    matTranslateMatrix4(m.m, 17.0, -4.0, 9.0, 1);
    EXPECT_EQ(matMoveMatrix4ToTopLeft(640, 480, m.m), 1);
    const Extent extent = extentOf(640, 480, m);
    EXPECT_NEAR(extent.minX, 0.0, 1e-12);
    EXPECT_NEAR(extent.minY, 0.0, 1e-12);
    EXPECT_EQ(m.m[2][3], 9.0);
}

TEST(MatMoveMatrix4ToTopLeft, TranslatesFromTheLeft) {
    const Matrix turned = rotationAboutZ(200.0);
    const Extent extent = extentOf(64, 48, turned);
    const Matrix translation{{{1, 0, 0, -extent.minX}, {0, 1, 0, -extent.minY}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    Matrix m = turned;
    EXPECT_EQ(matMoveMatrix4ToTopLeft(64, 48, m.m), 1);
    expectSameBits(m, composed(turned, translation, true));
}

TEST(MatRotated4, UnitAxesComposeFromTheRight) {
    const double axes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int axis = 0; axis < 3; ++axis) {
        Matrix rotation;
        matComputeRotationMatrix4(rotation.m, 35.0, 1, axis);
        Matrix m = kCounting;
        EXPECT_EQ(matRotated4(m.m, 35.0, axes[axis][0], axes[axis][1], axes[axis][2]), 1);
        expectSameBits(m, composed(kCounting, rotation, false));
    }
}

TEST(MatRotated4, OtherAxesAreRefusedAndLeaveTheMatrix) {
    const double axes[][3] = {{0.5, 0.5, 0}, {0, 0, 0}, {-1, 0, 0},
                              {0, -1, -1},   {2, 2, 2}, {kNaN, kNaN, kNaN}};
    for (const auto& axis : axes) {
        Matrix m = kCounting;
        EXPECT_EQ(matRotated4(m.m, 35.0, axis[0], axis[1], axis[2]), 0);
        expectSameBits(m, kCounting);
    }
}

TEST(MatRotated4, FirstUnitComponentSelectsTheAxis) {
    Matrix x = kIdentity;
    Matrix y = kIdentity;
    matRotated4(x.m, 35.0, 1, 0, 0);
    matRotated4(y.m, 35.0, 0, 1, 0);
    Matrix m = kIdentity;
    EXPECT_EQ(matRotated4(m.m, 35.0, 1, 1, 1), 1);
    expectSameBits(m, x);
    m = kIdentity;
    EXPECT_EQ(matRotated4(m.m, 35.0, 5, 1, 1), 1);
    expectSameBits(m, y);
}

TEST(MatRotated4, ComponentsNearOneSelectTheAxis) {
    for (const double sign : {1.0, -1.0}) {
        for (int axis = 0; axis < 3; ++axis) {
            double direction[3] = {0, 0, 0};
            Matrix m = kIdentity;
            direction[axis] = 1.0 + sign * 0.99e-7;
            EXPECT_EQ(matRotated4(m.m, 35.0, direction[0], direction[1], direction[2]), 1);
            direction[axis] = 1.0 + sign * 1.01e-7;
            EXPECT_EQ(matRotated4(m.m, 35.0, direction[0], direction[1], direction[2]), 0);
        }
    }
}
