#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "tests/support/allocation_failure.h"
#include "tests/support/matrix4_reference.h"
#include "velquad/transform.h"

using velquad::test::bitsOf;
using velquad::test::countingFlat;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::flatOf;
using velquad::test::kCounting;
using velquad::test::kIdentity;
using velquad::test::Matrix;
using velquad::test::randomElement;
using velquad::test::randomMatrix;
using velquad::test::transposed;

namespace {

using Flat = std::array<double, 16>;
using Point = std::array<double, 3>;

constexpr double kWeightTolerance = 1e-7;

/// Equality of all bits, zeros of different sign included.
void expectSameFlat(const Flat& actual, const Flat& expected) {
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(bitsOf(actual[i]), bitsOf(expected[i])) << "index " << i;
}

}  // namespace

TEST(MatConvertMatrix16, FlatMatrixHoldsColumns) {
    Flat flat = countingFlat();
    Matrix m = filledWith(0.0);
    EXPECT_EQ(matConvertMatrix16(m.m, flat.data(), 0), 1);
    expectSameBits(m, {{{1, 5, 9, 13}, {2, 6, 10, 14}, {3, 7, 11, 15}, {4, 8, 12, 16}}});
    expectSameFlat(flat, countingFlat());
}

TEST(MatConvertMatrix16, WritesColumnsToTheFlatMatrix) {
    for (const int toFlat : {1, -2}) {
        Flat flat{};
        Matrix m = kCounting;
        EXPECT_EQ(matConvertMatrix16(m.m, flat.data(), toFlat), 1);
        EXPECT_EQ(flat, (Flat{1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 4, 8, 12, 16}));
        expectSameBits(m, kCounting);
    }
}

TEST(MatConvertMatrix16, RoundTripIsExact) {
    constexpr unsigned kSeed = 61;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 100; ++round) {
        Flat flat{};
        for (double& value : flat)
            value = randomElement(random);
        Flat back{};
        Matrix m;
        EXPECT_EQ(matConvertMatrix16(m.m, flat.data(), 0), 1);
        EXPECT_EQ(matConvertMatrix16(m.m, back.data(), 1), 1);
        expectSameFlat(back, flat);
    }
}

// The flat matrix of 1 to 16 has the columns (1, 2, 3, 4), (5, 6, 7, 8), ...; its square by hand.
TEST(MatMultiplyMatrix16, MultipliesColumnMatrices) {
    Flat a = countingFlat();
    Flat b = countingFlat();
    Flat out{};
    EXPECT_EQ(matMultiplyMatrix16(out.data(), a.data(), b.data()), 1);
    EXPECT_EQ(out, (Flat{90, 100, 110, 120, 202, 228, 254, 280, 314, 356, 398, 440, 426, 484, 542, 600}));
}

TEST(MatMultiplyMatrix16, EqualsTheFourByFourForm) {
    constexpr unsigned kSeed = 62;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 1000; ++round) {
        const Matrix a = randomMatrix(random);
        const Matrix b = randomMatrix(random);
        Matrix expected;
        matMultiplyMatrix4(expected.m, a.m, b.m);
        Flat flatA = flatOf(a);
        Flat flatB = flatOf(b);
        Flat out{};
        EXPECT_EQ(matMultiplyMatrix16(out.data(), flatA.data(), flatB.data()), 1);
        expectSameFlat(out, flatOf(expected));
        Flat first = flatA;
        EXPECT_EQ(matMultiplyMatrix16(first.data(), first.data(), flatB.data()), 1);
        expectSameFlat(first, flatOf(expected));
        EXPECT_EQ(matMultiplyMatrix16(flatB.data(), flatA.data(), flatB.data()), 1);
        expectSameFlat(flatB, flatOf(expected));
    }
}

TEST(MatInvertMatrix16, EqualsTheFourByFourForm) {
    constexpr unsigned kSeed = 63;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> element(-1.0, 1.0);
    for (int round = 0; round < 300; ++round) {
        Matrix m;
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j)
                m.m[i][j] = element(random) + (i == j ? 4.0 : 0.0);
        }
        for (const int isTransposed : {0, 1, -3}) {
            Matrix expected;
            ASSERT_EQ(matInvertMatrix4(expected.m, m.m, isTransposed), 1);
            Flat in = flatOf(m);
            Flat out{};
            EXPECT_EQ(matInvertMatrix16(out.data(), in.data(), isTransposed), 1);
            expectSameFlat(out, flatOf(expected));
            expectSameFlat(in, flatOf(m));
            EXPECT_EQ(matInvertMatrix16(in.data(), in.data(), isTransposed), 1);
            expectSameFlat(in, flatOf(expected));
        }
    }
}

TEST(MatInvertMatrix16, SingularMatrixIsNotReported) {
    Flat in{};
    Flat out = countingFlat();
    EXPECT_EQ(matInvertMatrix16(out.data(), in.data(), 0), 1);
    for (const double value : out)
        EXPECT_FALSE(std::isfinite(value));
}

TEST(MatInvertMatrix16, LackOfMemoryGivesZeroAndLeavesOut) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        Flat in{2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 8, 0, 6, 8, -16, 1};
        Flat out = countingFlat();
        const int result = matInvertMatrix16(out.data(), in.data(), 0);
        const Flat inverse{0.5, 0, 0, 0, 0, 0.25, 0, 0, 0, 0, 0.125, 0, -3, -2, 2, 1};
        EXPECT_EQ(out, result == 1 ? inverse : countingFlat());
        return result == 0;
    });
    EXPECT_GT(allocations, 0U);
}

// 1 + 2 * 5 + 3 * 9 + 13 = 51, then 58, 65, 72.
TEST(MatTransformVector16, TransformsByColumns) {
    Flat m = countingFlat();
    Point p{1, 2, 3};
    EXPECT_EQ(matTransformVector16(p.data(), m.data(), 0), 1);
    EXPECT_EQ(p, (Point{51.0 / 72.0, 58.0 / 72.0, 65.0 / 72.0}));
}

// 1 + 2 * 2 + 3 * 3 + 4 = 18, then 5 + 12 + 21 + 8 = 46, 74, 102.
TEST(MatTransformVector16, TransformsByTheTranspose) {
    Flat m = countingFlat();
    for (const int isTransposed : {1, -2}) {
        Point p{1, 2, 3};
        EXPECT_EQ(matTransformVector16(p.data(), m.data(), isTransposed), 1);
        EXPECT_EQ(p, (Point{18.0 / 102.0, 46.0 / 102.0, 74.0 / 102.0}));
    }
}

TEST(MatTransformVector16, EqualsTheFourByFourForm) {
    constexpr unsigned kSeed = 64;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 3000; ++round) {
        const Matrix m = randomMatrix(random);
        Flat flat = flatOf(m);
        const std::array<double, 4> in{randomElement(random), randomElement(random), randomElement(random),
                                       1.0};
        for (const int isTransposed : {0, 1}) {
            std::array<double, 4> expected = in;
            const int result = matTransformVector4(expected.data(), m.m, in.data(), 1 - isTransposed);
            Point p{in[0], in[1], in[2]};
            ASSERT_EQ(matTransformVector16(p.data(), flat.data(), isTransposed), result);
            for (std::size_t i = 0; i < 3; ++i)
                ASSERT_EQ(bitsOf(p[i]), bitsOf(expected[i]));
        }
    }
}

TEST(MatTransformVector16, WeightsBelowTheToleranceAreRefusedAndLeaveTheVector) {
    const double below = std::nextafter(kWeightTolerance, 0.0);
    for (const int isTransposed : {0, 1}) {
        for (const double sign : {1.0, -1.0}) {
            Flat m = flatOf(kIdentity);
            Point p{1, 2, 3};
            m[15] = 0.0;
            EXPECT_EQ(matTransformVector16(p.data(), m.data(), isTransposed), 0);
            EXPECT_EQ(p, (Point{1, 2, 3}));
            m[15] = sign * below;
            EXPECT_EQ(matTransformVector16(p.data(), m.data(), isTransposed), 0);
            EXPECT_EQ(p, (Point{1, 2, 3}));
            m[15] = sign * kWeightTolerance;
            EXPECT_EQ(matTransformVector16(p.data(), m.data(), isTransposed), 1);
            EXPECT_EQ(p, (Point{1 / (sign * kWeightTolerance), 2 / (sign * kWeightTolerance),
                                3 / (sign * kWeightTolerance)}));
        }
    }
}

TEST(MatTransformVector16, WeightThatIsNoNumberIsNotRefused) {
    Flat m = flatOf(kIdentity);
    m[15] = std::numeric_limits<double>::quiet_NaN();
    Point p{1, 2, 3};
    EXPECT_EQ(matTransformVector16(p.data(), m.data(), 0), 1);
    for (const double value : p)
        EXPECT_TRUE(std::isnan(value));
}

TEST(MatCalcDistanceOfMatrices16, IsTheLargestDifference) {
    Flat a = countingFlat();
    Flat b = countingFlat();
    EXPECT_EQ(matCalcDistanceOfMatrices16(a.data(), b.data()), 0.0);
    for (std::size_t i = 0; i < 16; ++i) {
        b = a;
        b[(i + 5) % 16] += 0.5;
        b[i] -= 2.5;
        EXPECT_EQ(matCalcDistanceOfMatrices16(a.data(), b.data()), 2.5) << "index " << i;
        EXPECT_EQ(matCalcDistanceOfMatrices16(b.data(), a.data()), 2.5) << "index " << i;
    }
}

TEST(MatCalcDistanceOfMatrices16, NotANumberDoesNotCount) {
    Flat a = countingFlat();
    Flat b{};
    b[15] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(matCalcDistanceOfMatrices16(a.data(), b.data()), 15.0);
}
