#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "tests/support/matrix4_reference.h"
#include "velquad/transform.h"

using velquad::test::bitsOf;
using velquad::test::countingFlat;
using velquad::test::expectEqual;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::flatOf;
using velquad::test::kCounting;
using velquad::test::kIdentity;
using velquad::test::Matrix;
using velquad::test::multiplyLiterally;
using velquad::test::product;
using velquad::test::randomElement;
using velquad::test::randomMatrix;
using velquad::test::transposed;

namespace {

using Flat = std::array<double, 16>;
using Point = std::array<double, 3>;
using Viewport = std::array<int, 4>;
using DepthRange = std::array<double, 2>;

/// A window of 640 by 480 pixels at (10, 20), depths from 0.25 to 0.75.
Viewport window() {
    return {10, 20, 640, 480};
}
DepthRange depths() {
    return {0.25, 0.75};
}

Matrix perspective() {
    Matrix m;
    matComputePerspectiveMatrix4(m.m, 60.0, 4.0 / 3.0, 1.0, 20.0);
    return m;
}

Matrix modelView() {
    Matrix m = kIdentity;
    matTiltMatrix4(m.m, 20.0, 35.0, 1, 1);
    matTranslateMatrix4(m.m, 0.5, -0.25, -6.0, 1);
    return m;
}

Flat inverseFlat(const Matrix& m) {
    Flat flat = flatOf(m);
    EXPECT_EQ(matInvertMatrix16(flat.data(), flat.data(), 0), 1);
    return flat;
}

}  // namespace

TEST(MatViewPortTransformation16, CornersOfTheCubeMapToTheWindow) {
    Viewport viewport = window();
    DepthRange depthRange = depths();
    Point p{-1, -1, -1};
    EXPECT_EQ(matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 0), 1);
    EXPECT_EQ(p, (Point{10, 20, 0.25}));
    p = {1, 1, 1};
    EXPECT_EQ(matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 0), 1);
    EXPECT_EQ(p, (Point{650, 500, 0.75}));
    p = {0, 0, 0};
    EXPECT_EQ(matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 0), 1);
    EXPECT_EQ(p, (Point{330, 260, 0.5}));
}

TEST(MatViewPortTransformation16, LowCornerGoesThereAndBack) {
    Viewport viewport = window();
    DepthRange depthRange = depths();
    for (const int inverse : {1, -7}) {
        Point p{-1, -1, -1};
        matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 0);
        EXPECT_EQ(p, (Point{10, 20, 0.25}));
        EXPECT_EQ(matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), inverse), 1);
        EXPECT_EQ(p, (Point{-1, -1, -1}));
    }
}

TEST(MatViewPortTransformation16, FollowsItsFormulaToTheLastBit) {
    constexpr unsigned kSeed = 65;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_int_distribution<int> pixel(-3000, 3000);
    for (int round = 0; round < 1000; ++round) {
        Viewport viewport{pixel(random), pixel(random), pixel(random) * 2 + 1, pixel(random) * 2 + 1};
        DepthRange depthRange{randomElement(random), randomElement(random)};
        const Point in{randomElement(random), randomElement(random), randomElement(random)};
        const double width = viewport[2];
        const double height = viewport[3];
        Point p = in;
        matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 0);
        EXPECT_EQ(p[0], (width * 0.5) * (in[0] + 1.0) + viewport[0]);
        EXPECT_EQ(p[1], (height * 0.5) * (in[1] + 1.0) + viewport[1]);
        EXPECT_EQ(p[2], ((depthRange[1] - depthRange[0]) * 0.5) * (in[2] + 1.0) + depthRange[0]);
        p = in;
        matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 1);
        EXPECT_EQ(p[0], (in[0] - viewport[0]) / (width * 0.5) - 1.0);
        EXPECT_EQ(p[1], (in[1] - viewport[1]) / (height * 0.5) - 1.0);
        if (depthRange[1] != depthRange[0]) {
            EXPECT_EQ(p[2], (in[2] - depthRange[0]) / ((depthRange[1] - depthRange[0]) * 0.5) - 1.0);
        }
    }
}

TEST(MatViewPortTransformation16, EmptyViewportDividesByZeroOnTheWayBack) {
    Viewport viewport{10, 20, 0, 0};
    DepthRange depthRange{0.5, 0.5};
    Point p{11, 19, 0.5};
    EXPECT_EQ(matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 1), 1);
    EXPECT_EQ(p[0], HUGE_VAL);
    EXPECT_EQ(p[1], -HUGE_VAL);
    EXPECT_TRUE(std::isnan(p[2]));
    p = {0.5, 0.5, 0.5};
    EXPECT_EQ(matViewPortTransformation16(p.data(), viewport.data(), depthRange.data(), 0), 1);
    EXPECT_EQ(p, (Point{10, 20, 0.5}));
}

TEST(MatProjectionTransformVector16, AllStepsLeftOutKeepThePoint) {
    Point p{1, 2, 3};
    EXPECT_EQ(matProjectionTransformVector16(p.data(), nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(p, (Point{1, 2, 3}));
    DepthRange depthRange = depths();
    EXPECT_EQ(matProjectionTransformVector16(p.data(), nullptr, nullptr, nullptr, depthRange.data()), 1);
    EXPECT_EQ(p, (Point{1, 2, 3}));
}

TEST(MatProjectionTransformVector16, MissingDepthRangeLeavesTheViewportOut) {
    Viewport viewport = window();
    Point p{1, 2, 3};
    EXPECT_EQ(matProjectionTransformVector16(p.data(), nullptr, nullptr, viewport.data(), nullptr), 1);
    EXPECT_EQ(p, (Point{1, 2, 3}));
    EXPECT_EQ(matInverseProjectionTransformVector16(p.data(), nullptr, nullptr, viewport.data(), nullptr), 1);
    EXPECT_EQ(p, (Point{1, 2, 3}));
}

// Model view: translation by (1, 2, 3). Projection: scaling by 2. Window of 4 by 8 at the origin, depths 0 to 2.
TEST(MatProjectionTransformVector16, EachStepIsOptional) {
    Flat move{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};
    Flat scale{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    Viewport viewport{0, 0, 4, 8};
    DepthRange depthRange{0, 2};
    Point p{1, 1, 1};
    EXPECT_EQ(matProjectionTransformVector16(p.data(), move.data(), nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(p, (Point{2, 3, 4}));
    EXPECT_EQ(matProjectionTransformVector16(p.data(), nullptr, scale.data(), nullptr, nullptr), 1);
    EXPECT_EQ(p, (Point{4, 6, 8}));
    EXPECT_EQ(matProjectionTransformVector16(p.data(), nullptr, nullptr, viewport.data(), depthRange.data()),
              1);
    EXPECT_EQ(p, (Point{10, 28, 9}));
    p = {1, 1, 1};
    EXPECT_EQ(matProjectionTransformVector16(p.data(), move.data(), scale.data(), viewport.data(),
                                             depthRange.data()),
              1);
    EXPECT_EQ(p, (Point{10, 28, 9}));
}

TEST(MatProjectionTransformVector16, VanishingWeightLeavesThatStepOut) {
    Flat atInfinity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 0};
    Flat scale{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    Point p{1, 1, 1};
    EXPECT_EQ(matProjectionTransformVector16(p.data(), atInfinity.data(), scale.data(), nullptr, nullptr), 1);
    EXPECT_EQ(p, (Point{2, 2, 2}));
    p = {1, 1, 1};
    EXPECT_EQ(matProjectionTransformVector16(p.data(), scale.data(), atInfinity.data(), nullptr, nullptr), 1);
    EXPECT_EQ(p, (Point{2, 2, 2}));
    p = {1, 1, 1};
    EXPECT_EQ(
        matInverseProjectionTransformVector16(p.data(), scale.data(), atInfinity.data(), nullptr, nullptr),
        1);
    EXPECT_EQ(p, (Point{2, 2, 2}));
}

TEST(MatInverseProjectionTransformVector16, AllStepsLeftOutKeepThePoint) {
    Point p{1, 2, 3};
    EXPECT_EQ(matInverseProjectionTransformVector16(p.data(), nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(p, (Point{1, 2, 3}));
}

TEST(MatInverseProjectionTransformVector16, TakesTheStepsInReverseOrder) {
    Flat moveBack{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -3, 1};
    Flat half{0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1};
    Viewport viewport{0, 0, 4, 8};
    DepthRange depthRange{0, 2};
    Point p{10, 28, 9};
    EXPECT_EQ(matInverseProjectionTransformVector16(p.data(), moveBack.data(), half.data(), viewport.data(),
                                                    depthRange.data()),
              1);
    EXPECT_EQ(p, (Point{1, 1, 1}));
}

TEST(MatInverseProjectionTransformVector16, BringsPointsOfTheWindowBack) {
    constexpr unsigned kSeed = 66;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> coordinate(-2.0, 2.0);
    Flat flatModelView = flatOf(modelView());
    Flat flatProjection = flatOf(perspective());
    Flat inverseModelView = inverseFlat(modelView());
    Flat inverseProjection = inverseFlat(perspective());
    Viewport viewport = window();
    DepthRange depthRange = depths();
    for (int round = 0; round < 500; ++round) {
        const Point in{coordinate(random), coordinate(random), coordinate(random)};
        Point p = in;
        ASSERT_EQ(matProjectionTransformVector16(p.data(), flatModelView.data(), flatProjection.data(),
                                                 viewport.data(), depthRange.data()),
                  1);
        EXPECT_GT(p[2], depthRange[0]);
        EXPECT_LT(p[2], depthRange[1]);
        ASSERT_EQ(
            matInverseProjectionTransformVector16(p.data(), inverseModelView.data(), inverseProjection.data(),
                                                  viewport.data(), depthRange.data()),
            1);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(p[i], in[i], 1e-11);
    }
}

TEST(MatComputeViewPortMatrix4, StoresScalingTimesTranslation) {
    Viewport viewport = window();
    DepthRange depthRange = depths();
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeViewPortMatrix4(m.m, viewport.data(), depthRange.data()), 1);
    expectEqual(m, {{{320, 0, 0, 330}, {0, 240, 0, 260}, {0, 0, 0.25, 0.5}, {0, 0, 0, 1}}});
}

TEST(MatComputeViewPortMatrix4, OddSizesHaveHalfPixels) {
    Viewport viewport{-3, 4, 5, 7};
    DepthRange depthRange{1.0, -2.0};
    Matrix m;
    EXPECT_EQ(matComputeViewPortMatrix4(m.m, viewport.data(), depthRange.data()), 1);
    expectEqual(m, {{{2.5, 0, 0, -0.5}, {0, 3.5, 0, 7.5}, {0, 0, -1.5, -0.5}, {0, 0, 0, 1}}});
}

TEST(MatComputeFullProjectionMatrix4, IdentitiesOnAUnitViewportVanish) {
    Flat identity = flatOf(kIdentity);
    Viewport viewport{0, 0, 2, 2};
    DepthRange depthRange{-1, 1};
    Matrix m = filledWith(7.0);
    EXPECT_EQ(matComputeFullProjectionMatrix4(m.m, identity.data(), identity.data(), viewport.data(),
                                              depthRange.data()),
              1);
    expectEqual(m, filledWith(0.0));
}

// All by hand. With a factor of ones each element becomes the sum of the others of its column, the earlier ones as
// changed already. Columns of the identity: (1, 0, 0, 0) gives 0, 0, 0, 0; (0, 1, 0, 0) gives 1, 1, 2, 4;
// (0, 0, 1, 0) gives 1, 2, 3, 6; (0, 0, 0, 1) gives 1, 2, 4, 7. A second time: (1, 1, 2, 4) gives 7, 13, 24, 44;
// (1, 2, 3, 6) gives 11, 20, 37, 68; (1, 2, 4, 7) gives 13, 24, 44, 81. The viewport matrix is
// diagonal (1, 2, 3, 1) with the last column (5, 8, 7, 1): row 0 becomes 5 times the last row, row 1 8 times, row 2
// 7 times, and the last row, which meets its own cleared place, 0.
TEST(MatComputeFullProjectionMatrix4, MultipliesInPlaceThreeTimes) {
    Flat ones{};
    ones.fill(1.0);
    Viewport viewport{4, 6, 2, 4};
    DepthRange depthRange{4, 10};
    Matrix m = filledWith(7.0);
    EXPECT_EQ(
        matComputeFullProjectionMatrix4(m.m, ones.data(), ones.data(), viewport.data(), depthRange.data()),
        1);
    expectEqual(m, {{{0, 220, 340, 405}, {0, 352, 544, 648}, {0, 308, 476, 567}, {0, 0, 0, 0}}});
}

TEST(MatComputeFullProjectionMatrix4, EqualsLiteralProductsBitForBit) {
    constexpr unsigned kSeed = 67;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 1000; ++round) {
        const Matrix model = randomMatrix(random);
        const Matrix projection = randomMatrix(random);
        Viewport viewport{round, -round, 3 * round + 1, 480};
        DepthRange depthRange{randomElement(random), randomElement(random)};
        Matrix port;
        matComputeViewPortMatrix4(port.m, viewport.data(), depthRange.data());
        Matrix expected = kIdentity;
        for (const Matrix& factor : {model, projection, port})
            multiplyLiterally(expected.m, factor.m, expected.m);
        Flat flatModel = flatOf(model);
        Flat flatProjection = flatOf(projection);
        Matrix m;
        EXPECT_EQ(matComputeFullProjectionMatrix4(m.m, flatModel.data(), flatProjection.data(),
                                                  viewport.data(), depthRange.data()),
                  1);
        expectSameBits(m, expected);
        if (HasFailure()) return;
    }
}
