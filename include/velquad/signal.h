/// @file
/// Transforms, smoothing, deconvolution and correlation of sampled curves.
#ifndef VELQUAD_SIGNAL_H
#define VELQUAD_SIGNAL_H

#include "velquad/platform.h"
#include "velquad/types.h"

extern "C" {

/// @name Correlation, differences and zero crossings of curves
/// @{

/// Prepares a pattern for `fnrDoCorrelation`: its mean is subtracted and its norm about the mean is kept.
/// @param pattern  `n` samples; copied.
/// @return a handle that `fnrExitCorrelation` releases; null for n < 2, a null pattern and when memory is lacking.
VELQUAD_API void* fnrInitCorrelation(const double* pattern, int n);

/// The normalised cross-correlation of a pattern with every stretch of a signal that is as long as the pattern.
///   (1) A result lies in [-1, 1] up to rounding: 1 where the stretch is the pattern times a positive factor plus
///       a constant.
///   (2) A flat stretch gives its sum of squares about the mean, 0 or a little less, in place of a quotient.
///   (3) Each result is summed over its own stretch in order, so it does not depend on the stretches around it nor
///       on the processor.
/// @param handle    from `fnrInitCorrelation`. Any number of threads may use it at once.
/// @param signal    `signalCount` samples.
/// @param result    room for min(signalCount - n + 1, maxCount) numbers, one for each shift from 0 up. May be
///                  `signal`.
/// @param maxCount  most results wanted.
/// @return the number of results; -1 for a null handle or array, a constant pattern, and when there is no result.
/// @par Cost    3 additions and a multiplication per sample of the pattern and shift.
/// @par Source  J. P. Lewis, Fast Normalized Cross-Correlation, 1995, gives the formula.
VELQUAD_API int fnrDoCorrelation(void* handle, const double* signal, unsigned int signalCount, double* result,
                                 int maxCount);

/// Releases a handle and sets it to null. Null, as the pointer or as the handle, is ignored.
VELQUAD_API void fnrExitCorrelation(void** handle);

/// The first difference: `out[i]` = `in[i + 1]` - `in[i]`.
/// @param out         `n` numbers; may be `in`.
/// @param isCircular  non-zero: the last one is `in[0]` - `in[n - 1]`; zero: it is 0.
VELQUAD_API void fnrDerivate(const double* in, double* out, int n, int isCircular);

/// Finds where a curve changes its sign, by linear interpolation between the last sample before and the first
/// sample behind the change. Positions are real-valued indices.
///   (1) Samples without a sign are skipped: a run of zeros between two signs is one crossing. A first sample
///       needs a size above 2.2e-308, the later ones above 1.2e-38.
///   (2) A non-circular curve gives positions in [0, n - 1].
/// @param rising, falling            positions where the curve becomes positive, or negative, in order; each list
///                                   may be null.
/// @param risingCount, fallingCount  in: capacity of the list, read only if the list is given; out: crossings
///                                   found, those beyond the capacity included. May be null without a list.
/// @param isCircular                 non-zero: the first sample follows the last one; a crossing between the two
///                                   stands at the end of its list, with a position of up to n.
/// @return 1; 0 when a list was too short for its crossings.
VELQUAD_API int fnrFindZeroPoint(const double* data, int n, double* rising, unsigned int* risingCount,
                                 double* falling, unsigned int* fallingCount, int isCircular);
/// @}

}  // extern "C"

#endif  // VELQUAD_SIGNAL_H
