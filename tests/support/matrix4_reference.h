// Literal versions of the 4 by 4 matrix operations, element by element and without any shortcut, and matrices
// to compare with.
#ifndef VELQUAD_TESTS_SUPPORT_MATRIX4_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_MATRIX4_REFERENCE_H

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <utility>

namespace velquad::test {

/// A matrix as a value.
struct Matrix {
    double m[4][4];
};

inline constexpr Matrix kIdentity{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
/// 1 to 16, row by row.
inline constexpr Matrix kCounting{{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}}};

/// 1 to 16 as a flat matrix: the transpose of `kCounting`.
inline std::array<double, 16> countingFlat() {
    std::array<double, 16> flat{};
    for (std::size_t i = 0; i < 16; ++i)
        flat[i] = static_cast<double>(i + 1);
    return flat;
}

inline Matrix filledWith(double value) {
    Matrix result;
    for (auto& row : result.m) {
        for (double& element : row)
            element = value;
    }
    return result;
}

inline Matrix transposed(const Matrix& a) {
    Matrix result;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            result.m[j][i] = a.m[i][j];
    }
    return result;
}

inline std::array<double, 16> flatOf(const Matrix& a) {
    std::array<double, 16> flat{};
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r)
            flat[4 * c + r] = a.m[r][c];
    }
    return flat;
}

/// The product into `out`, which may overlap the factors anywhere: every element is cleared, then formed.
inline void multiplyLiterally(double (*out)[4], const double (*a)[4], const double (*b)[4]) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            out[i][j] = 0.0;
            double sum = a[i][0] * b[0][j];
            sum = sum + 0.0;
            sum = sum + a[i][1] * b[1][j];
            sum = sum + a[i][2] * b[2][j];
            sum = sum + a[i][3] * b[3][j];
            out[i][j] = sum;
        }
    }
}

inline Matrix product(const Matrix& a, const Matrix& b) {
    Matrix result;
    multiplyLiterally(result.m, a.m, b.m);
    return result;
}

/// E M for `isFromLeft`, else M E.
inline Matrix composed(const Matrix& m, const Matrix& elementary, bool isFromLeft) {
    return isFromLeft ? product(elementary, m) : product(m, elementary);
}

/// The inverse by Gaussian elimination with row exchange, column by column of the unit matrix. Among pivots of
/// equal size the upper one wins. Multipliers are quotients, unless the pivot is 0; the back substitution multiplies
/// by the reciprocal of the pivot.
inline Matrix invertedLiterally(const Matrix& a) {
    Matrix lu = a;
    Matrix x = kIdentity;
    for (int k = 0; k < 4; ++k) {
        int pivot = k;
        for (int i = k + 1; i < 4; ++i) {
            if (std::fabs(lu.m[i][k]) > std::fabs(lu.m[pivot][k])) pivot = i;
        }
        for (int j = 0; j < 4; ++j) {
            std::swap(lu.m[k][j], lu.m[pivot][j]);
            std::swap(x.m[k][j], x.m[pivot][j]);
        }
        for (int i = k + 1; i < 4; ++i) {
            if (lu.m[k][k] != 0.0) lu.m[i][k] /= lu.m[k][k];
            for (int j = k + 1; j < 4; ++j)
                lu.m[i][j] -= lu.m[i][k] * lu.m[k][j];
        }
    }
    for (int j = 0; j < 4; ++j) {
        for (int i = 0; i < 4; ++i) {
            for (int k = 0; k < i; ++k)
                x.m[i][j] -= lu.m[i][k] * x.m[k][j];
        }
        for (int i = 3; i >= 0; --i) {
            for (int k = i + 1; k < 4; ++k)
                x.m[i][j] -= lu.m[i][k] * x.m[k][j];
            x.m[i][j] *= 1.0 / lu.m[i][i];
        }
    }
    return x;
}

/// A number that the compiler cannot see through, so that functions of it are computed while the test runs.
inline double atRunTime(double value) {
    volatile double opaque = value;
    return opaque;
}

/// Elements of many sizes and both signs, some of them zeros of either sign.
inline double randomElement(std::mt19937_64& random) {
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-12, 12);
    std::uniform_int_distribution<int> kind(0, 9);
    switch (kind(random)) {
        case 0:
            return 0.0;
        case 1:
            return -0.0;
        default:
            return std::ldexp(mantissa(random), exponent(random));
    }
}

inline Matrix randomMatrix(std::mt19937_64& random) {
    Matrix result;
    for (auto& row : result.m) {
        for (double& element : row)
            element = randomElement(random);
    }
    return result;
}

inline std::uint64_t bitsOf(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Equality of all bits, zeros of different sign included.
inline void expectSameBits(const Matrix& actual, const Matrix& expected) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_EQ(bitsOf(actual.m[i][j]), bitsOf(expected.m[i][j]))
                << "row " << i << ", column " << j << ": " << actual.m[i][j] << " is not "
                << expected.m[i][j];
        }
    }
}

/// Equality of all bits, except that any two not-a-numbers are equal.
inline bool sameNumbers(const Matrix& a, const Matrix& b) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            const bool bothAreNaN = std::isnan(a.m[i][j]) && std::isnan(b.m[i][j]);
            if (!bothAreNaN && bitsOf(a.m[i][j]) != bitsOf(b.m[i][j])) return false;
        }
    }
    return true;
}

/// Equality as numbers: zeros of either sign are equal.
inline void expectEqual(const Matrix& actual, const Matrix& expected) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(actual.m[i][j], expected.m[i][j]) << "row " << i << ", column " << j;
    }
}

inline void expectNear(const Matrix& actual, const Matrix& expected, double tolerance) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_NEAR(actual.m[i][j], expected.m[i][j], tolerance) << "row " << i << ", column " << j;
        }
    }
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_MATRIX4_REFERENCE_H
