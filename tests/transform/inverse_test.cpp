#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/allocation_failure.h"
#include "tests/support/matrix4_reference.h"
#include "velquad/transform.h"

using velquad::test::expectEqual;
using velquad::test::expectNear;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::invertedLiterally;
using velquad::test::kCounting;
using velquad::test::kIdentity;
using velquad::test::Matrix;
using velquad::test::product;
using velquad::test::sameNumbers;
using velquad::test::transposed;

namespace {

/// Regular, and exact in every step of the elimination. The inverse was found by hand.
constexpr Matrix kRegular{{{2, 0, 0, 6}, {0, 4, 0, 8}, {0, 0, 8, -16}, {0, 0, 0, 1}}};
constexpr Matrix kRegularInverse{{{0.5, 0, 0, -3}, {0, 0.25, 0, -2}, {0, 0, 0.125, 2}, {0, 0, 0, 1}}};

Matrix randomRegularMatrix(std::mt19937_64& random) {
    std::uniform_real_distribution<double> element(-1.0, 1.0);
    Matrix m;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            m.m[i][j] = element(random) + (i == j ? 4.0 : 0.0);
    }
    return m;
}

}  // namespace

TEST(MatInvertMatrix4, InvertsScalingAndTranslationExactly) {
    Matrix out = filledWith(7.0);
    EXPECT_EQ(matInvertMatrix4(out.m, kRegular.m, 0), 1);
    expectEqual(out, kRegularInverse);
}

TEST(MatInvertMatrix4, IdentityIsItsOwnInverse) {
    Matrix out;
    EXPECT_EQ(matInvertMatrix4(out.m, kIdentity.m, 0), 1);
    expectEqual(out, kIdentity);
}

TEST(MatInvertMatrix4, PivotsOverZerosOnTheDiagonal) {
    const Matrix permutation{{{0, 0, 2, 0}, {4, 0, 0, 0}, {0, 0, 0, 8}, {0, 1, 0, 0}}};
    Matrix out;
    EXPECT_EQ(matInvertMatrix4(out.m, permutation.m, 0), 1);
    expectEqual(out, {{{0, 0.25, 0, 0}, {0, 0, 0, 1}, {0.5, 0, 0, 0}, {0, 0, 0.125, 0}}});
}

// Gauss-Jordan by hand: the inverse of this lower triangle is exact in small integers.
TEST(MatInvertMatrix4, InvertsLowerTriangle) {
    const Matrix lower{{{1, 0, 0, 0}, {2, 1, 0, 0}, {3, 4, 1, 0}, {5, 6, 7, 1}}};
    Matrix out;
    EXPECT_EQ(matInvertMatrix4(out.m, lower.m, 0), 1);
    expectNear(out, {{{1, 0, 0, 0}, {-2, 1, 0, 0}, {5, -4, 1, 0}, {-28, 22, -7, 1}}}, 1e-12);
}

TEST(MatInvertMatrix4, StoresTheTransposeWhenAsked) {
    Matrix out;
    EXPECT_EQ(matInvertMatrix4(out.m, kRegular.m, 1), 1);
    expectEqual(out, transposed(kRegularInverse));
    EXPECT_EQ(matInvertMatrix4(out.m, kRegular.m, -4), 1);
    expectEqual(out, transposed(kRegularInverse));
}

TEST(MatInvertMatrix4, ResultMayBeTheInput) {
    for (const int isTransposed : {0, 1}) {
        Matrix m = kRegular;
        EXPECT_EQ(matInvertMatrix4(m.m, m.m, isTransposed), 1);
        expectEqual(m, isTransposed != 0 ? transposed(kRegularInverse) : kRegularInverse);
    }
}

TEST(MatInvertMatrix4, TransposedInverseOfRotationIsTheRotation) {
    Matrix rotation;
    matComputeArbitraryRotationMatrix4(rotation.m, 33.0, 1, 1.0, -2.0, 0.5);
    Matrix out;
    EXPECT_EQ(matInvertMatrix4(out.m, rotation.m, 1), 1);
    expectNear(out, rotation, 1e-14);
}

TEST(MatInvertMatrix4, ZeroMatrixIsNotReported) {
    Matrix out = filledWith(7.0);
    EXPECT_EQ(matInvertMatrix4(out.m, filledWith(0.0).m, 0), 1);
    // Every pivot is 0, so that no element of the result is finite.
    for (const auto& row : out.m) {
        for (const double element : row)
            EXPECT_FALSE(std::isfinite(element));
    }
}

TEST(MatInvertMatrix4, SingularMatrixIsNotReported) {
    Matrix singular = kIdentity;
    singular.m[1][1] = 0.0;
    Matrix out = filledWith(7.0);
    EXPECT_EQ(matInvertMatrix4(out.m, singular.m, 0), 1);
    EXPECT_FALSE(std::isfinite(out.m[1][1]));
    EXPECT_EQ(matInvertMatrix4(out.m, kCounting.m, 0), 1);
}

TEST(MatInvertMatrix4, NotANumberIsNotReported) {
    Matrix m = kIdentity;
    m.m[0][0] = std::numeric_limits<double>::quiet_NaN();
    Matrix out;
    EXPECT_EQ(matInvertMatrix4(out.m, m.m, 0), 1);
    EXPECT_TRUE(std::isnan(out.m[0][0]));
}

TEST(MatInvertMatrix4, ProductWithTheInverseIsTheIdentity) {
    constexpr unsigned kSeed = 54;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 1000; ++round) {
        const Matrix m = randomRegularMatrix(random);
        Matrix inverse;
        ASSERT_EQ(matInvertMatrix4(inverse.m, m.m, 0), 1);
        expectNear(product(m, inverse), kIdentity, 1e-14);
        expectNear(product(inverse, m), kIdentity, 1e-14);
        Matrix turned;
        ASSERT_EQ(matInvertMatrix4(turned.m, m.m, 1), 1);
        expectSameBits(turned, transposed(inverse));
    }
}

// Scaling by a power of two changes exponents only, so that the inverse scales exactly.
TEST(MatInvertMatrix4, ScalesWithPowersOfTwo) {
    constexpr unsigned kSeed = 55;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 200; ++round) {
        Matrix m = randomRegularMatrix(random);
        Matrix inverse;
        matInvertMatrix4(inverse.m, m.m, 0);
        for (auto& row : m.m) {
            for (double& element : row)
                element *= 1024.0;
        }
        for (auto& row : inverse.m) {
            for (double& element : row)
                element /= 1024.0;
        }
        Matrix scaled;
        matInvertMatrix4(scaled.m, m.m, 0);
        expectSameBits(scaled, inverse);
    }
}

TEST(MatInvertMatrix4, EqualsEliminationBitForBit) {
    constexpr unsigned kSeed = 56;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_int_distribution<int> digit(-3, 3);
    for (int round = 0; round < 4000; ++round) {
        Matrix m = randomRegularMatrix(random);
        if (round % 2 == 1) {
            // Small integers: equal pivots, zeros, now and then a singular matrix.
            for (auto& row : m.m) {
                for (double& element : row)
                    element = digit(random);
            }
        }
        Matrix inverse;
        ASSERT_EQ(matInvertMatrix4(inverse.m, m.m, 0), 1);
        ASSERT_TRUE(sameNumbers(inverse, invertedLiterally(m))) << "round " << round;
    }
}

TEST(MatInvertMatrix4, LackOfMemoryGivesZeroAndLeavesOut) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        Matrix out = filledWith(7.0);
        const int result = matInvertMatrix4(out.m, kRegular.m, 0);
        expectEqual(out, result == 1 ? kRegularInverse : filledWith(7.0));
        return result == 0;
    });
    EXPECT_GT(allocations, 0U);
}

TEST(MatInvertMatrix4, LackOfMemoryLeavesAMatrixInvertedInPlace) {
    velquad::test::forEachFailingAllocation([] {
        Matrix m = kRegular;
        const int result = matInvertMatrix4(m.m, m.m, 0);
        expectEqual(m, result == 1 ? kRegularInverse : kRegular);
        return result == 0;
    });
}
