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
/// **Results.** The two curves report a `velquad::CurveError`; the other functions say for themselves what they give.
/// **Ownership.** Rows that a callback sees belong to the library and are valid during that call only.
/// **Exceptions.** The general forms throw nothing of their own; an exception of a callback passes through, and
/// all memory is released.
/// **Threads.** No state is kept between calls.
#ifndef VELQUAD_CURVES_H
#define VELQUAD_CURVES_H

#include "velquad/platform.h"
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

/// @name Perimeters of chain codes
/// Two estimates of the length of a closed outline of pixels. Each whole pixel is scaled before any smoothing, so a
/// pixel may be wider than high. Both follow the centres of the border pixels.
///
/// |                          | curve                                             | of the two                |
/// | ------------------------ | ------------------------------------------------- | ------------------------- |
/// | `miniCalcInnerPerimeter` | quadratic B-spline with the pixels as its control | cuts corners, the shorter |
/// | `miniCalcOuterPerimeter` | Renner subspline through the pixels               | keeps corners, the longer |
/// @{

/// The length of the closed curve of `matFittingCurve`, order 3, as a chain of chords, two or more a step.
/// @param chain           its last point, which repeats the first one, is not used. Codes above 7 stay in place.
/// @param scaleX, scaleY  size of a pixel.
/// @return the length; 0.0 for fewer than 3 steps or a null chain; 7.0, which no one can tell from a length, when
///         memory is lacking.
VELQUAD_API double miniCalcInnerPerimeter(const tagMINIVEC* chain, double scaleX, double scaleY);

/// The sum of the parameter lengths of the curve of `matInterpolatingCurve` without rounded corners, which are
/// close to its arc lengths.
/// @param chain           4 steps or more, each of which moves.
/// @param scaleX, scaleY  size of a pixel.
/// @return the length; `velquad::kNoValue` for another chain, a null one, and when memory is lacking.
VELQUAD_API double miniCalcOuterPerimeter(const tagMINIVEC* chain, double scaleX, double scaleY);
/// @}

/// @name Natural cubic splines
/// Through points y(x), twice continuously differentiable, with no curvature at both ends.
/// @{

/// Tabulates a curve given by a few points at equal steps from its first to its last x, for instance a mapping of
/// grey levels.
/// @param xValues, yValues  `count` points, 3 or more, x strictly increasing.
/// @param lowerLimit        least value of the table; a value that is not a number ends here.
/// @param upperLimit        greatest value; the one that holds when the limits cross.
/// @param outValues         room for `outCount` values. A table of one value, whose step does not exist, holds
///                          the limited not-a-number.
/// @return `outCount`; 0, with nothing written, for other points, a null array, and when memory is lacking.
VELQUAD_API unsigned int matInterpolateIntensityCurve(const double* xValues, const double* yValues,
                                                      unsigned int count, double lowerLimit,
                                                      double upperLimit, double* outValues,
                                                      unsigned int outCount);

/// Scales the rows of an image to a new width: each row is a curve through its pixels, and target pixel o takes
/// its value at o * sourceWidth / targetWidth, rounded with halves away from zero and limited to what a pixel
/// holds.
///   (1) Of equal widths the rows stay as they are.
///   (2) When enlarging, the last target pixels lie beyond the last source pixel, where the last polynomial goes
///       on.
///   (3) The running application is kept in a wait; see `CWinApp::BeginWaitCursor`.
/// @param sourceWidth  3 or more.
/// @param pixelSize    1 for pixels of 8 bits; everything else means 16 bits.
/// @param sourceRows   `height` rows at any address.
/// @param targetRows   `height` rows with room for `targetWidth` pixels. A target row may be the source row of the
///                     same place and must not overlap others.
/// @return 0; 3 when memory is lacking; 12 for too few source pixels or a null table. A height of 0 is no failure.
/// @par Cost    O(height * (sourceWidth + targetWidth)); memory for four rows.
VELQUAD_API int matHorzStretchImage(unsigned int sourceWidth, unsigned int height, unsigned int pixelSize,
                                    const void* const* sourceRows, unsigned int targetWidth,
                                    void* const* targetRows);
/// @}

/// @name Resampling
/// The samples stand at 0, 1, ... `count` - 1. The first and the last value of the result are the first and the last
/// sample; the last one goes to `out[outCount - 1]`, but at least to `out[1]`, so `out` has room for two values or
/// more.
/// @return `velquad::SignalStatus`: 3 for a null array and for a count or an order of 0.
/// @{

/// Interpolates by local cubics, each of which depends on the six nearest samples, so an outlier has no effect
/// far away.
///   (1) A slope is the mean of the differences on both sides of its sample, each weighted by how much the
///       differences change on its own side; the paper takes the change on the other side, which favours the
///       calmer one.
///   (2) Before the start the differences go on with d1 = d2 - d3, not with a straight continuation, so even a line
///       begins with a slope of 0. Behind the end they go on straight.
///   (3) Two samples are a line, one is a constant.
/// @return 1 when memory is lacking, 2 when it cannot be locked; nothing is written then.
/// @par Source  H. Akima, Journal of the ACM 17 (1970).
VELQUAD_API int matAkima(const double* values, unsigned int count, double* out, int outCount);

/// Smooths by a B-spline whose control points are the samples, on open uniform knots.
///   (1) The steps divide the curve by `outCount`, not by one less, so the inner values stop short of its end.
///   (2) Orders 1 and 2 are the sample whose interval holds the place, and hats that are not normalised by the
///       distance of their knots; higher orders follow the recursion from order 2 up.
///   (3) Control points more than nine beyond the place are left out, which from order 11 on leaves terms out.
///   (4) With fewer samples than the order, all inner values are 0.
/// @param order  degree plus 1.
/// Throws std::bad_alloc for an order that memory does not suffice for.
/// @par Cost    O(order^2) per value.
/// @par Source  M. G. Cox, IMA Journal of Applied Mathematics 10 (1972); C. de Boor, Journal of Approximation
///              Theory 6 (1972).
VELQUAD_API int matBSpline(const double* values, unsigned int count, double* out, int outCount,
                           unsigned int order);
/// @}

}  // extern "C"

#endif  // VELQUAD_CURVES_H
