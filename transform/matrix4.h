// Homogeneous 4 by 4 matrices as the code of the module works on them: `double[4][4]`, row by row, for column
// vectors. Inline and without the module's boundary, for inner loops of any room.
#ifndef VELQUAD_TRANSFORM_MATRIX4_H
#define VELQUAD_TRANSFORM_MATRIX4_H

#include <emmintrin.h>

#include <cstring>

#include "frame/primitives.h"

namespace velquad::transform {

using Rows = double (*)[4];
using ConstRows = const double (*)[4];

/// The axis codes of rotations; every other code means z.
inline constexpr int kAxisX = 0;
inline constexpr int kAxisY = 1;
inline constexpr int kAxisZ = 2;

/// A weight below this one marks a point at infinity.
inline constexpr double kVanishingWeight = 1e-7;

inline void copy(Rows to, ConstRows from) {
    std::memcpy(to, from, 16 * sizeof(double));
}

/// Stores a diagonal matrix, with 1 as its last element.
inline void loadDiagonal(Rows m, double x, double y, double z) {
    const double diagonal[4][4] = {
        {x, 0.0, 0.0, 0.0}, {0.0, y, 0.0, 0.0}, {0.0, 0.0, z, 0.0}, {0.0, 0.0, 0.0, 1.0}};
    copy(m, diagonal);
}

inline void loadIdentity(Rows m) {
    loadDiagonal(m, 1.0, 1.0, 1.0);
}

inline void loadTranslation(Rows m, double x, double y, double z) {
    loadIdentity(m);
    m[0][3] = x;
    m[1][3] = y;
    m[2][3] = z;
}

/// One element of the product a b, in the order of summation that all products of this room share. The 0.0 turns
/// a first term of -0.0 into 0.0.
inline double productElement(ConstRows a, ConstRows b, int row, int column) {
    return ((a[row][0] * b[0][column] + 0.0 + a[row][1] * b[1][column]) + a[row][2] * b[2][column]) +
           a[row][3] * b[3][column];
}

/// The product a b into a matrix that shares no memory with either; see `matMultiplyMatrix4`. A whole row is
/// formed before it is stored, so that the compiler may compute its columns side by side.
inline void multiply(Rows out, ConstRows a, ConstRows b) {
    for (int row = 0; row < 4; ++row) {
        double sums[4];
        for (int column = 0; column < 4; ++column)
            sums[column] = productElement(a, b, row, column);
        std::memcpy(out[row], sums, sizeof sums);
    }
}

/// Composes `n` onto `m`; see `multiplyFromLeft` in the public header.
inline void compose(Rows m, ConstRows n, bool isFromLeft) {
    double product[4][4];
    if (isFromLeft) {
        multiply(product, n, m);
    } else {
        multiply(product, m, n);
    }
    copy(m, product);
}

/// Divides a transformed vector by its weight into `out`.
/// @return false when the weight vanishes; `out` is unchanged then.
inline bool storeByWeight(double* out, const double (&r)[4]) {
    if (frame::isSmaller(kVanishingWeight, r[3])) return false;
    for (int i = 0; i < 4; ++i)
        out[i] = r[i] / r[3];
    return true;
}

/// The products of two neighbouring rows with a vector, side by side: x m0 + y m1 + z m2 + w m3 from left to
/// right for each row.
inline __m128d rowPairTimesVector(const double (&first)[4], const double (&second)[4], __m128d x, __m128d y,
                                  __m128d z, __m128d w) {
    const __m128d firstLow = _mm_loadu_pd(first);
    const __m128d firstHigh = _mm_loadu_pd(first + 2);
    const __m128d secondLow = _mm_loadu_pd(second);
    const __m128d secondHigh = _mm_loadu_pd(second + 2);
    __m128d sum = _mm_mul_pd(x, _mm_unpacklo_pd(firstLow, secondLow));
    sum = _mm_add_pd(sum, _mm_mul_pd(y, _mm_unpackhi_pd(firstLow, secondLow)));
    sum = _mm_add_pd(sum, _mm_mul_pd(z, _mm_unpacklo_pd(firstHigh, secondHigh)));
    return _mm_add_pd(sum, _mm_mul_pd(w, _mm_unpackhi_pd(firstHigh, secondHigh)));
}

/// M v, divided by its weight. `out` may be `in`.
/// @return false when the weight vanishes; `out` is unchanged then.
inline bool transformColumn(double* out, ConstRows m, const double* in) {
    const __m128d x = _mm_set1_pd(in[0]);
    const __m128d y = _mm_set1_pd(in[1]);
    const __m128d z = _mm_set1_pd(in[2]);
    const __m128d w = _mm_set1_pd(in[3]);
    double r[4];
    _mm_storeu_pd(r, rowPairTimesVector(m[0], m[1], x, y, z, w));
    _mm_storeu_pd(r + 2, rowPairTimesVector(m[2], m[3], x, y, z, w));
    return storeByWeight(out, r);
}

/// The row vector v times M, divided by its weight. `out` may be `in`.
/// @return false when the weight vanishes; `out` is unchanged then.
inline bool transformRow(double* out, ConstRows m, const double* in) {
    double r[4];
    for (int j = 0; j < 4; ++j)
        r[j] = in[0] * m[0][j] + in[1] * m[1][j] + in[2] * m[2][j] + in[3] * m[3][j];
    return storeByWeight(out, r);
}

/// The inverse, or its transpose; see `matInvertMatrix4`. `out` may be `in`.
/// @return false when memory is lacking; `out` is unchanged then.
bool invert(Rows out, ConstRows in, bool isTransposed);

/// See `matComputeRotationMatrix4`.
void computeRotation(Rows m, double angle, bool isDegrees, int axis);

/// See `matComputeArbitraryRotationMatrix4`. @return false for a null axis; `m` is unchanged then.
bool computeRotation(Rows m, double angle, bool isDegrees, const tagPOINT3D& axis);

}  // namespace velquad::transform

#endif  // VELQUAD_TRANSFORM_MATRIX4_H
