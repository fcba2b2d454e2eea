/// @file
/// Transforms, smoothing, deconvolution and correlation of sampled curves.
#ifndef VELQUAD_SIGNAL_H
#define VELQUAD_SIGNAL_H

#include "velquad/platform.h"
#include "velquad/types.h"

extern "C" {

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
