/// @file
/// Smooth curves through or near an ordered set of points.
///
/// Two curves are offered, each in a general form, which reads and writes points through callbacks, and in a form
/// for polygon handles:
///
/// | curve                      | points             | general form            | polygons                     |
/// | -------------------------- | ------------------ | ----------------------- | ---------------------------- |
/// | interpolating (Renner)     | lie on the curve   | `matInterpolatingCurve` | `polyCalcInterpolatingCurve` |
/// | fitting (uniform B-spline) | are control points | `matFittingCurve`       | `polyCalcFittingCurve`       |
///
/// **Closed or open.** A point set is closed when its first and last point agree within 1e-7 in each of the first
/// two coordinates (three from dimension 3 up). A closed curve is smooth across its start.
/// **Results.** Every function reports a `velquad::CurveError`.
/// **Ownership.** Rows that a callback sees belong to the library and are valid during that call only.
/// **Exceptions.** The general forms throw nothing of their own; an exception of a callback passes through, and
/// all memory is released.
/// **Threads.** No state is kept between calls.
#ifndef VELQUAD_CURVES_H
#define VELQUAD_CURVES_H

#include "velquad/types.h"

namespace velquad {

/// Result codes of the curve functions.
enum CurveError : unsigned int {
    kCurveOk = 0,
    kCurveStepTooSmall = 1,       ///< The step is below 2.220446049250313e-16.
    kCurveOrderTooSmall = 2,      ///< The order of the B-spline is below 3.
    kCurveDimensionTooSmall = 3,  ///< The dimension is below 2.
    kCurveTooFewForOrder = 4,     ///< Fewer control points than the order.
    kCurveInternal = 5,           ///< No room for rounded corners, a dimension above 3, or sampling failed.
    kCurveWriteFailed = 6,        ///< The write callback returned 0.
    kCurveNoMemory = 7,           ///< Out of memory, or a polygon that cannot be locked.
    kCurveNoPoints = 8,           ///< The read callback returned no points.
    kCurveTooFewPoints = 9,       ///< Fewer than the five points that an interpolating curve needs.
    kCurveEqualPoints = 10,       ///< Two consecutive points are equal.
    kCurveBadSampling = 11,       ///< Arguments that the B-spline sampler refuses.
};

}  // namespace velquad

extern "C" {

/// Delivers the points of a curve. Called once.
/// @param rows          `maximalCount` rows of `dimension` doubles to fill, all 0 at first.
/// @param maximalCount  the count that the curve function was called with.
/// @return the number of rows filled, which may be smaller; a larger number counts as `maximalCount`.
typedef unsigned int (*MatCurveReadCallback)(double** rows, unsigned int maximalCount, unsigned int dimension,
                                             void* user1, void* user2);

/// Takes samples of a curve, in their order along it. Called once or more.
/// @param rows  `count` rows of `dimension` doubles; `count` can be 0.
/// @return non-zero to go on, 0 to end the curve with `kCurveWriteFailed`.
typedef unsigned int (*MatCurveWriteCallback)(double** rows, unsigned int count, unsigned int dimension,
                                              void* user1, void* user2);

/// Draws a smooth curve through points: a Renner subspline, cubic between neighbouring points, with a continuous
/// tangent that depends on the nearest points only.
///   (1) Straight runs of points stay straight. Where two of them meet there is a corner: kept when
///       `cornerFactor` is 0 or less, or 1 or more; otherwise replaced by a point on each side, at the distance
///       cornerFactor times the shorter neighbouring chord.
///   (2) Each point of the curve's data (after corner rounding) is itself a sample.
///   (3) A closed curve's last sample lies within 1e-7 of its first, by a further sample where necessary.
/// A batch of samples is written for each segment.
/// @param count         most points that `read` can deliver.
/// @param user1, user2  passed to both callbacks as they are.
/// @param dimension     2 or 3.
/// @param step          distance of samples along the curve's parameter, which is close to arc length. A segment
///                      shorter than a step is sampled at its ends.
/// @param cornerFactor  see (1).
/// @return 0, or 1, 3, 5, 6, 7, 8, 9 or 10 of `velquad::CurveError`. Checked in this order before anything is
///         read: step (1), dimension below 2 (3). More than 2147483637 steps in a segment count as out of
///         memory.
/// @par Cost    Linear in points and samples, with a binary search over the segments for each; each rounded
///              corner moves the pointers of the points behind it.
/// @par Source  G. Renner, A method of shape description for mechanical engineering practice, Computers in
///              Industry 3 (1982).
VELQUAD_API unsigned int matInterpolatingCurve(unsigned int count, MatCurveReadCallback read,
                                               MatCurveWriteCallback write, void* user1, void* user2,
                                               unsigned int dimension, double step, double cornerFactor);

/// Draws a smooth curve near points: the uniform B-spline that has them as control points.
///   (1) An open curve starts at the first and ends at the last point; the knots are clamped there.
///   (2) A closed curve is periodic over its points without the closing one, and passes through none of them in
///       general. It has 1 + v * q samples for v control points, with q = (max(2 v + 1, estimate) - 1) / v in
///       integers.
///   (3) Consecutive points may be equal.
/// The estimate adds up, for each pair of neighbouring points, their largest coordinate difference cut to an
/// integer, divided by the step, cut to an integer again, and at least 1. All knot intervals get the same number
/// of samples, at least two. Samples are written one by one.
/// @param count         most points that `read` can deliver.
/// @param user1, user2  passed to both callbacks as they are.
/// @param dimension     2 or more.
/// @param step          wanted distance of samples, in the units of the points.
/// @param order         order of the spline, its degree plus 1: 3 or more, at most the number of control points
///                      (a closing point is none).
/// @return 0, or 1, 2, 3, 4, 6, 7, 8 or 11 of `velquad::CurveError`. Checked in this order before anything is
///         read: step (1), order (2), dimension (3).
/// @par Cost    Linear in points plus samples times order squared.
/// @par Source  C. de Boor, A Practical Guide to Splines, Springer, 1978.
VELQUAD_API unsigned int matFittingCurve(unsigned int count, MatCurveReadCallback read,
                                         MatCurveWriteCallback write, void* user1, void* user2,
                                         unsigned int dimension, double step, int order);

/// Draws the curve of `matInterpolatingCurve` through the points of a polygon. Samples are cut towards zero to
/// pixels, and runs of equal pixels are stored once. The curve of a closed polygon ends within 1e-7 of its start,
/// which after the cut can be the neighbouring pixel.
/// @param polygon  handle of a polygon, which is only read. Its lock count falls by one: a lock that the caller
///                 holds on it is taken away.
/// @param error    receives the result code of the curve; 7 when the polygon cannot be locked. May be null.
/// @return a new polygon, unlocked, for the caller to release with `polyFree`; null for every code but 0.
VELQUAD_API void* polyCalcInterpolatingCurve(void* polygon, double step, double cornerFactor,
                                             unsigned int* error);

/// Draws the curve of `matFittingCurve` near the points of a polygon. Samples are cut towards zero to pixels, and
/// runs of equal pixels are stored once.
/// @param polygon  handle of a polygon, which is only read. Locks of the caller on it stay.
/// @param error    receives the result code of the curve; 7 when the polygon cannot be locked. May be null.
/// @return a new polygon, unlocked, for the caller to release with `polyFree`; null for every code but 0.
VELQUAD_API void* polyCalcFittingCurve(void* polygon, double step, int order, unsigned int* error);

}  // extern "C"

#endif  // VELQUAD_CURVES_H
