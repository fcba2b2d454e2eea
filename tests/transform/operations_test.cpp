#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "tests/support/matrix4_reference.h"
#include "velquad/transform.h"

using velquad::test::bitsOf;
using velquad::test::expectEqual;
using velquad::test::expectSameBits;
using velquad::test::filledWith;
using velquad::test::kCounting;
using velquad::test::kIdentity;
using velquad::test::Matrix;
using velquad::test::multiplyLiterally;
using velquad::test::product;
using velquad::test::randomElement;
using velquad::test::randomMatrix;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kWeightTolerance = 1e-7;
const double kBelowWeightTolerance = std::nextafter(kWeightTolerance, 0.0);

using Vector = std::array<double, 4>;

/// The identity with another last diagonal element: the weight of the image of (x, y, z, 1).
Matrix withWeight(double weight) {
    Matrix m = kIdentity;
    m.m[3][3] = weight;
    return m;
}

}  // namespace

TEST(MatMultiplyMatrix4, FormsRowsTimesColumns) {
    const Matrix a = kCounting;
    const Matrix b{{{2, 0, 1, 0}, {0, 3, 0, 1}, {1, 0, 4, 0}, {0, 1, 0, 5}}};
    Matrix out = filledWith(kNaN);
    EXPECT_EQ(matMultiplyMatrix4(out.m, a.m, b.m), 1);
    expectEqual(out, {{{5, 10, 13, 22}, {17, 26, 33, 46}, {29, 42, 53, 70}, {41, 58, 73, 94}}});
}

TEST(MatMultiplyMatrix4, FactorsMayBeOneMatrix) {
    Matrix out;
    EXPECT_EQ(matMultiplyMatrix4(out.m, kCounting.m, kCounting.m), 1);
    expectEqual(out,
                {{{90, 100, 110, 120}, {202, 228, 254, 280}, {314, 356, 398, 440}, {426, 484, 542, 600}}});
}

TEST(MatMultiplyMatrix4, ProductOfNegativeZerosIsPositiveZero) {
    Matrix a = filledWith(0.0);
    Matrix out;
    const Matrix b = filledWith(-1.0);
    EXPECT_EQ(matMultiplyMatrix4(out.m, a.m, b.m), 1);
    // Each term is -0.0; without the 0.0 in the sum it would stay so.
    expectSameBits(out, filledWith(0.0));
}

TEST(MatMultiplyMatrix4, IdentityMultipliedInPlaceByTheIdentityVanishes) {
    Matrix m = kIdentity;
    EXPECT_EQ(matMultiplyMatrix4(m.m, kIdentity.m, m.m), 1);
    expectEqual(m, filledWith(0.0));
    m = kIdentity;
    EXPECT_EQ(matMultiplyMatrix4(m.m, m.m, kIdentity.m), 1);
    expectEqual(m, filledWith(0.0));
    m = kIdentity;
    EXPECT_EQ(matMultiplyMatrix4(m.m, m.m, m.m), 1);
    expectEqual(m, filledWith(0.0));
}

// Worked by hand. Column 0 of `out` holds 1, 5, 9, 13 at first. Row 0: 1 * 0 + 1 * 5 + 1 * 9 + 1 * 13 = 27, row 1:
// 27 + 0 + 9 + 13 = 49, row 2: 27 + 49 + 0 + 13 = 89, row 3: 27 + 49 + 89 + 0 = 165.
TEST(MatMultiplyMatrix4, SecondFactorInPlaceSeesClearedAndChangedElements) {
    Matrix m = kCounting;
    EXPECT_EQ(matMultiplyMatrix4(m.m, filledWith(1.0).m, m.m), 1);
    expectEqual(m, {{{27, 30, 33, 36}, {49, 54, 59, 64}, {89, 98, 107, 116}, {165, 182, 199, 216}}});
}

// Row 0 holds 1, 2, 3, 4 at first. 0 + 2 + 3 + 4 = 9, 9 + 0 + 3 + 4 = 16, 9 + 16 + 0 + 4 = 29, 9 + 16 + 29 + 0 = 54.
TEST(MatMultiplyMatrix4, FirstFactorInPlaceSeesClearedAndChangedElements) {
    Matrix m = kCounting;
    EXPECT_EQ(matMultiplyMatrix4(m.m, m.m, filledWith(1.0).m), 1);
    expectEqual(m, {{{9, 16, 29, 54}, {21, 36, 65, 122}, {33, 56, 101, 190}, {45, 76, 137, 258}}});
}

TEST(MatMultiplyMatrix4, EqualsLiteralVersionBitForBit) {
    constexpr unsigned kSeed = 51;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 2000; ++round) {
        const Matrix a = randomMatrix(random);
        const Matrix b = randomMatrix(random);
        Matrix out;
        matMultiplyMatrix4(out.m, a.m, b.m);
        expectSameBits(out, product(a, b));
        Matrix actual = b;
        Matrix expected = b;
        matMultiplyMatrix4(actual.m, a.m, actual.m);
        multiplyLiterally(expected.m, a.m, expected.m);
        expectSameBits(actual, expected);
        actual = a;
        expected = a;
        matMultiplyMatrix4(actual.m, actual.m, b.m);
        multiplyLiterally(expected.m, expected.m, b.m);
        expectSameBits(actual, expected);
        actual = a;
        expected = a;
        matMultiplyMatrix4(actual.m, actual.m, actual.m);
        multiplyLiterally(expected.m, expected.m, expected.m);
        expectSameBits(actual, expected);
    }
}

// A block of ten rows in which the result begins 0 to 3 rows before or behind a factor.
TEST(MatMultiplyMatrix4, PartlyOverlappingMatricesFollowTheSameOrder) {
    constexpr unsigned kSeed = 52;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int outRow = 0; outRow <= 6; ++outRow) {
        for (int aRow = 0; aRow <= 6; ++aRow) {
            double actual[10][4];
            double expected[10][4];
            for (int i = 0; i < 10; ++i) {
                for (int j = 0; j < 4; ++j)
                    actual[i][j] = expected[i][j] = randomElement(random);
            }
            matMultiplyMatrix4(actual + outRow, actual + aRow, actual + 3);
            multiplyLiterally(expected + outRow, expected + aRow, expected + 3);
            for (int i = 0; i < 10; ++i) {
                for (int j = 0; j < 4; ++j) {
                    ASSERT_EQ(bitsOf(actual[i][j]), bitsOf(expected[i][j]))
                        << "result at row " << outRow << ", first factor at row " << aRow;
                }
            }
        }
    }
}

TEST(MatTransformVector4, MultipliesMatrixByColumn) {
    const Vector in{1, 2, 3, 4};
    Vector out{};
    EXPECT_EQ(matTransformVector4(out.data(), kCounting.m, in.data(), 1), 1);
    EXPECT_EQ(out, (Vector{30.0 / 150.0, 70.0 / 150.0, 110.0 / 150.0, 1.0}));
}

TEST(MatTransformVector4, MultipliesRowByMatrixWithoutFlag) {
    const Vector in{1, 2, 3, 4};
    Vector out{};
    EXPECT_EQ(matTransformVector4(out.data(), kCounting.m, in.data(), 0), 1);
    EXPECT_EQ(out, (Vector{90.0 / 120.0, 100.0 / 120.0, 110.0 / 120.0, 1.0}));
}

TEST(MatTransformVector4, FlagIsAnyNonZeroValue) {
    const Vector in{1, 2, 3, 4};
    Vector out{};
    EXPECT_EQ(matTransformVector4(out.data(), kCounting.m, in.data(), -2), 1);
    EXPECT_EQ(out[0], 30.0 / 150.0);
}

TEST(MatTransformVector4, ResultMayBeTheInput) {
    Vector column{1, 2, 3, 4};
    EXPECT_EQ(matTransformVector4(column.data(), kCounting.m, column.data(), 1), 1);
    EXPECT_EQ(column, (Vector{30.0 / 150.0, 70.0 / 150.0, 110.0 / 150.0, 1.0}));
    Vector row{1, 2, 3, 4};
    EXPECT_EQ(matTransformVector4(row.data(), kCounting.m, row.data(), 0), 1);
    EXPECT_EQ(row, (Vector{90.0 / 120.0, 100.0 / 120.0, 110.0 / 120.0, 1.0}));
}

TEST(MatTransformVector4, PointAtInfinityIsRefusedAndLeavesOut) {
    const Vector in{1, 2, 3, 0};
    for (const int rowTimesVector : {0, 1}) {
        Vector out{7, 8, 9, 10};
        EXPECT_EQ(matTransformVector4(out.data(), kIdentity.m, in.data(), rowTimesVector), 0);
        EXPECT_EQ(out, (Vector{7, 8, 9, 10}));
    }
}

TEST(MatTransformVector4, WeightsBelowTheToleranceAreRefused) {
    const Vector in{1, 2, 3, 1};
    for (const int rowTimesVector : {0, 1}) {
        for (const double sign : {1.0, -1.0}) {
            Vector out{7, 8, 9, 10};
            EXPECT_EQ(matTransformVector4(out.data(), withWeight(sign * kBelowWeightTolerance).m, in.data(),
                                          rowTimesVector),
                      0);
            EXPECT_EQ(out, (Vector{7, 8, 9, 10}));
            EXPECT_EQ(matTransformVector4(out.data(), withWeight(sign * kWeightTolerance).m, in.data(),
                                          rowTimesVector),
                      1);
            EXPECT_EQ(out, (Vector{1.0 / (sign * kWeightTolerance), 2.0 / (sign * kWeightTolerance),
                                   3.0 / (sign * kWeightTolerance), 1.0}));
        }
    }
}

TEST(MatTransformVector4, WeightThatIsNoNumberIsNotRefused) {
    const Vector in{1, 2, 3, 1};
    Vector out{7, 8, 9, 10};
    EXPECT_EQ(matTransformVector4(out.data(), withWeight(kNaN).m, in.data(), 1), 1);
    for (const double value : out)
        EXPECT_TRUE(std::isnan(value));
}

TEST(MatTransformVector4, SumsFromLeftToRightBitForBit) {
    constexpr unsigned kSeed = 53;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 5000; ++round) {
        const Matrix m = randomMatrix(random);
        Vector in{};
        for (double& value : in)
            value = randomElement(random);
        for (const bool isColumn : {false, true}) {
            Vector r{};
            for (std::size_t i = 0; i < 4; ++i) {
                auto element = [&](std::size_t k) { return isColumn ? m.m[i][k] : m.m[k][i]; };
                r[i] = in[0] * element(0);
                r[i] = r[i] + in[1] * element(1);
                r[i] = r[i] + in[2] * element(2);
                r[i] = r[i] + in[3] * element(3);
            }
            Vector out{7, 8, 9, 10};
            const int result = matTransformVector4(out.data(), m.m, in.data(), isColumn ? 1 : 0);
            ASSERT_EQ(result, kWeightTolerance > std::fabs(r[3]) ? 0 : 1);
            const Vector kept{7, 8, 9, 10};
            for (std::size_t i = 0; i < 4; ++i) {
                ASSERT_EQ(bitsOf(out[i]), bitsOf(result == 1 ? r[i] / r[3] : kept[i]));
            }
        }
    }
}

TEST(MatCalcDistanceOfMatrices4, IsTheLargestDifference) {
    Matrix a = kCounting;
    Matrix b = kCounting;
    EXPECT_EQ(matCalcDistanceOfMatrices4(a.m, b.m), 0.0);
    b.m[0][0] = 1.5;
    b.m[2][1] = 7.0;
    b.m[3][3] = 18.0;
    EXPECT_EQ(matCalcDistanceOfMatrices4(a.m, b.m), 3.0);
    EXPECT_EQ(matCalcDistanceOfMatrices4(b.m, a.m), 3.0);
    b.m[3][3] = -kInfinity;
    EXPECT_EQ(matCalcDistanceOfMatrices4(a.m, b.m), kInfinity);
}

TEST(MatCalcDistanceOfMatrices4, LooksAtEveryElement) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            Matrix a = kIdentity;
            Matrix b = kIdentity;
            b.m[i][j] -= 0.25;
            EXPECT_EQ(matCalcDistanceOfMatrices4(a.m, b.m), 0.25) << i << ", " << j;
        }
    }
}

TEST(MatCalcAbsoluteMaxOfMatrix4, IsTheLargestMagnitude) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            Matrix m = kIdentity;
            m.m[i][j] = -17.5;
            EXPECT_EQ(matCalcAbsoluteMaxOfMatrix4(m.m), 17.5) << i << ", " << j;
        }
    }
    Matrix zero = filledWith(-0.0);
    EXPECT_EQ(bitsOf(matCalcAbsoluteMaxOfMatrix4(zero.m)), bitsOf(0.0));
}

TEST(MatrixMeasures, NotANumberDoesNotCount) {
    Matrix a = kCounting;
    Matrix b = filledWith(0.0);
    a.m[0][0] = kNaN;
    EXPECT_EQ(matCalcAbsoluteMaxOfMatrix4(a.m), 16.0);
    EXPECT_EQ(matCalcDistanceOfMatrices4(a.m, b.m), 16.0);
    a.m[3][3] = kNaN;
    EXPECT_EQ(matCalcAbsoluteMaxOfMatrix4(a.m), 15.0);
    EXPECT_EQ(matCalcDistanceOfMatrices4(a.m, b.m), 15.0);
}
