/// @file
/// Tolerant comparison and vector primitives: equality of numbers and points, the orientation of three points,
/// cross products and normalisation, rotation of a point.
///
/// **Results.** Truth values are 1 and 0. Tolerances are strict: a value equal to a tolerance is not small.
/// **Pointers.** The comparison predicates and the orientation tests do not test their pointers, which must be
/// valid. The other functions return 0 for a null pointer and then store nothing.
/// **Threads.** Pure functions of their arguments.
#ifndef VELQUAD_FRAME_H
#define VELQUAD_FRAME_H

#include "velquad/types.h"

/// Tells whether two numbers agree to a number of decimal places. Both tests must hold: the difference is below
/// 10^-decimals, and it is still below after it was rounded to `decimals` places. So 1.0 and 1.04 agree to one
/// place, 1.0 and 1.06 do not.
/// @param decimals  decimal places asked for; 0 compares to whole numbers.
/// @return 1 when they agree, else 0; 0 for a not-a-number.
VELQUAD_API int matIsEqual(double a, double b, unsigned int decimals);

extern "C" {

/// @return 1 when both coordinates are the same integers, else 0.
VELQUAD_API int matSamePoint(const tagPOINT* a, const tagPOINT* b);

/// @return 1 when every coordinate difference, wrapped to 32 bits, is 0: exact equality.
VELQUAD_API int matSameVector2L(const tagPOINT* a, const tagPOINT* b);

/// The form of `matSameVector2L` for three integers x, y, z.
VELQUAD_API int matSameVector3L(const int* a, const int* b);

/// Tells whether two points are the same up to 1e-40, absolutely or relative to the largest coordinate of `a`.
/// Points of ordinary size are the same only when they are identical: the test finds exact repeats and null
/// vectors, not near misses.
/// @return 1 or 0; 0 when a coordinate is not a number.
VELQUAD_API int matSameVector2D(const tagPOINT2D* a, const tagPOINT2D* b);

/// The form of `matSameVector2D` for points of space.
VELQUAD_API int matSameVector3D(const tagPOINT3D* a, const tagPOINT3D* b);

/// Tells whether three points are collinear: the determinant of p1 - p0 and p2 - p0 is below 1e-7, by itself or
/// divided by the largest absolute coordinate of the three points.
/// @return 1 or 0. A small triangle near the origin counts as collinear.
VELQUAD_API int matDetIsZero2D(const tagPOINT2D* p0, const tagPOINT2D* p1, const tagPOINT2D* p2);

/// The orientation of the way p0, p1, p2, with an answer for collinear points that tells their order.
///   (1)  1: counter-clockwise in mathematical axes, or collinear with p1 between p0 and p2 or on p0.
///   (2) -1: clockwise, or collinear with p0 strictly between p1 and p2.
///   (3)  0: collinear with p2 between p0 and p1 or on one of them; so also three equal points.
/// Differences, products and sums are 32-bit integers that wrap around.
/// @par Source  The three-way orientation test of R. Sedgewick, Algorithms, 1988.
VELQUAD_API int matIsCCW(const tagPOINT* p0, const tagPOINT* p1, const tagPOINT* p2);

/// The form of `matIsCCW` for doubles, without any tolerance.
VELQUAD_API int matIsCCW2D(const tagPOINT2D* p0, const tagPOINT2D* p1, const tagPOINT2D* p2);

/// The cross product (p1 - p0) x (p2 - p0), not normalised.
/// @param result  three doubles; they are stored whenever no pointer is null.
/// @return 1 when the points span a plane; 0 when the product is shorter than 1e-7 or a pointer is null.
VELQUAD_API int matCalcOrthogonal(double* result, const tagPOINT3D* p0, const tagPOINT3D* p1,
                                  const tagPOINT3D* p2);

/// The unit normal of the plane through three points.
/// @param result  the cross product (p1 - p0) x (p2 - p0) of length 1, or the null vector on result 0.
/// @return what `matNormalizeVector3D` returns for the product; 0 also for a null pointer.
VELQUAD_API int matCalcNormal(tagPOINT3D* result, const tagPOINT3D* p0, const tagPOINT3D* p1,
                              const tagPOINT3D* p2);

/// Scales a vector to length 1, by one division and multiplications with the reciprocal of the length.
/// @return 1; 0 for a null pointer, and for a length below 1e-40, which becomes the null vector.
VELQUAD_API int matNormalizeVector2D(tagPOINT2D* vector);

/// The form of `matNormalizeVector2D` for a vector of space.
VELQUAD_API int matNormalizeVector3D(tagPOINT3D* vector);

/// Rotates a point about a centre.
/// @param angle               in degrees when `isDegrees` is non-zero, else in radians.
/// @param isCounterClockwise  non-zero: by `angle`; zero: by a full turn less `angle`, so that angle 0 turns by
///                            2 pi and may change the last bits.
/// @return 1, or 0 for a null pointer.
VELQUAD_API int matRotatePoint(tagPOINT2D* point, const tagPOINT2D* center, double angle,
                               int isCounterClockwise, int isDegrees);

/// Stores four values in a rectangle. @return 1, or 0 for a null rectangle.
VELQUAD_API int matSetRect2D(tagMAT_RECT2D* rect, double left, double top, double right, double bottom);

}  // extern "C"

#endif  // VELQUAD_FRAME_H
