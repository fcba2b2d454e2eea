// Small vectors of doubles with a dimension known at run time. Sums run from the first coordinate to the last.
#ifndef VELQUAD_CURVES_VECTOR_H
#define VELQUAD_CURVES_VECTOR_H

#include <cmath>

#include "curves/scratch_pool.h"

namespace velquad::curves {

/// The bound of every test for zero in the spline routines.
inline constexpr double kEpsilon = 2.220446049250313e-16;

inline void copyVector(double* destination, const double* source, Index d) {
    for (Index j = 0; j < d; ++j)
        destination[j] = source[j];
}

/// @return the largest absolute coordinate; 0 when there is none, a not-a-number when one is.
inline double maxNorm(const double* v, Index d) {
    double largest = 0.0;
    for (Index j = 0; j < d; ++j) {
        const double magnitude = std::fabs(v[j]);
        if (magnitude > largest || magnitude != magnitude) largest = magnitude;
    }
    return largest;
}

inline double dotProduct(const double* u, const double* v, Index d) {
    double sum = 0.0;
    for (Index j = 0; j < d; ++j)
        sum += u[j] * v[j];
    return sum;
}

inline double sumOfSquares(const double* v, Index d) {
    return dotProduct(v, v, d);
}

/// Copies a vector and scales the copy to length 1; a vector shorter than `kEpsilon` is only copied.
inline void unitVector(const double* source, double* destination, Index d) {
    copyVector(destination, source, d);
    const double length = std::sqrt(sumOfSquares(destination, d));
    if (kEpsilon > length) return;
    for (Index j = 0; j < d; ++j)
        destination[j] /= length;
}

/// The sine of the angle between two unit vectors, never negative. In the plane it is the cross product; in
/// space it comes from the cosine, and is 0 where rounding carries the cosine beyond 1.
inline double sinOfAngle(const double* u, const double* v, Index d) {
    if (d == 2) return std::fabs(v[1] * u[0] - u[1] * v[0]);
    const double cosine = dotProduct(u, v, 3);
    const double radicand = 1.0 - cosine * cosine;
    return radicand < 0.0 ? 0.0 : std::sqrt(radicand);
}

}  // namespace velquad::curves

#endif  // VELQUAD_CURVES_VECTOR_H
