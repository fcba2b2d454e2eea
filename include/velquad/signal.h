/// @file
/// Transforms, smoothing, deconvolution and correlation of sampled curves.
#ifndef VELQUAD_SIGNAL_H
#define VELQUAD_SIGNAL_H

#include "velquad/platform.h"
#include "velquad/types.h"

extern "C" {

/// @name Smoothing
/// From an array to another one of the same length.
/// @return `velquad::SignalStatus`: 3 for a null array and for the arguments that each function names.
/// @{

/// Fits a parabola (a cubic for derivatives 0 and 1 gives the same) to a sliding window and takes its value or a
/// derivative in the middle.
///   (1) Both ends, half a window each, repeat the nearest value that has a whole window. Without any whole window
///       all is 0.
///   (2) Derivatives are per sample.
/// @param width       1 to 5 for windows of 5, 7, 9, 11 or 13 samples.
/// @param derivative  0 to 2.
/// @param isAbsolute  non-zero: the absolute values of the result.
/// @return 3 also for another width or derivative, and for n <= width + 1.
/// @par Source  A. Savitzky, M. J. E. Golay, Analytical Chemistry 36 (1964).
VELQUAD_API unsigned int matSavitzkyGolay(const double* in, unsigned int n, double* out, unsigned int width,
                                          unsigned int derivative, int isAbsolute);

/// The mean of a sliding window, summed from left to right. At the ends the window is cut; one of even length
/// reaches one sample further to the left. A negative window copies.
/// @param n       a negative count gives 0 with nothing done.
/// @param window  samples; 0 gives 3, and so does n = 0.
/// @par Cost    O(n * window).
VELQUAD_API unsigned int matMeanValue(const double* in, int n, double* out, int window);

/// Lays a line between the upper and the lower extremes of a curve, as the mean of a walk from either end.
///   (1) Where an extreme follows the one before within `gap` samples, the line goes half way between it and the
///       chord of the opposite extremes around it.
///   (2) Over a longer stretch the line keeps the shape of the curve and fades to the curve itself.
///   (3) Behind the last extreme the line is straight.
/// @param rounds  how often the result is smoothed again in the same way; 0 gives 3, and so does n = 0.
/// @param gap     longest distance of extremes that are taken together.
/// @return 1 when memory is lacking, 2 when it cannot be locked. Nothing is written then.
/// @par Cost    O(rounds * n); memory for 3 n doubles.
VELQUAD_API unsigned int matMeanEnvelope(const double* in, unsigned int n, double* out, unsigned int rounds,
                                         unsigned int gap);
/// @}

/// @name Range and sum of a curve
/// @{

/// The extremes and the mean of a curve.
///   (1) The extremes start at the largest float and its negative: a curve that lies beyond on one side has that as
///       its extreme. Values that are not numbers leave them alone.
///   (2) The mean adds up partial sums of a hundred values, each divided by `count`.
/// @param values   `count` values.
/// @param minimum, maximum, mean  results; each may be null.
/// @return 1; 0, with nothing written, for no values.
VELQUAD_API int matGetRange(const double* values, unsigned int count, double* minimum, double* maximum,
                            double* mean);

/// Adds slope * value + offset of every value, one after the other, to one sum. No curve is written.
/// @param accumulator  the sum, which goes on from what it holds.
/// @return 0.
VELQUAD_API int matLinearCorrection(const double* values, double* accumulator, unsigned int count,
                                    double slope, double offset);
/// @}

}  // extern "C"

#endif  // VELQUAD_SIGNAL_H
