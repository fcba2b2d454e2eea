// Flat matrices, `double[16]` with one column after the other, and points that they transform in place.
#ifndef VELQUAD_TRANSFORM_FLAT_MATRIX_H
#define VELQUAD_TRANSFORM_FLAT_MATRIX_H

#include "transform/matrix4.h"

namespace velquad::transform {

inline void fromFlat(Rows m, const double* flat) {
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row)
            m[row][column] = flat[4 * column + row];
    }
}

inline void toFlat(double* flat, ConstRows m) {
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row)
            flat[4 * column + row] = m[row][column];
    }
}

/// Divides a transformed point by its weight into `vector`.
/// @return false when the weight vanishes; `vector` is unchanged then.
inline bool storePointByWeight(double* vector, const double (&r)[4]) {
    if (frame::isSmaller(kVanishingWeight, r[3])) return false;
    for (int i = 0; i < 3; ++i)
        vector[i] = r[i] / r[3];
    return true;
}

/// M v for a point, divided by its weight.
inline bool transformPoint(double* vector, const double* m) {
    double r[4];
    for (int k = 0; k < 4; ++k)
        r[k] = vector[0] * m[k] + vector[1] * m[4 + k] + vector[2] * m[8 + k] + m[12 + k];
    return storePointByWeight(vector, r);
}

/// The transpose of M times v for a point, divided by its weight.
inline bool transformPointTransposed(double* vector, const double* m) {
    double r[4];
    for (int i = 0; i < 4; ++i) {
        const double* column = m + 4 * i;
        r[i] = vector[0] * column[0] + vector[1] * column[1] + vector[2] * column[2] + column[3];
    }
    return storePointByWeight(vector, r);
}

}  // namespace velquad::transform

#endif  // VELQUAD_TRANSFORM_FLAT_MATRIX_H
