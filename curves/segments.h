// Piecewise cubic curves: their coefficients, the search for a parameter's segment, and sampling.
#ifndef VELQUAD_CURVES_SEGMENTS_H
#define VELQUAD_CURVES_SEGMENTS_H

#include "curves/scratch_pool.h"

namespace velquad::curves {

/// A curve of `m` cubic segments through `m + 1` points. On segment i, with u in [0, len[i]],
///
///     S(u) = P[i] + b[i] * u + c[i] * u^2 + d[i] * u^3.
///
/// The record does not own its arrays.
struct SplineSegmentSet {
    Index m;          ///< Segments; also the index of the last point.
    Index dimension;  ///< Coordinates of a point.
    double** P;       ///< The points, which are the constant terms too.
    double** b;       ///< Coefficients of the first power.
    double** c;       ///< Coefficients of the second power.
    double** d;       ///< Coefficients of the third power.
    double* len;      ///< Parameter lengths of the segments.
};

/// Finds the interval of a value among the ascending knots [0] ... [n] by bisection.
/// @return the index of the last knot that is not above `value`, limited to [0, n - 1]; 0 for n below 2.
inline Index findInterval(Index n, double value, const double* knots) {
    Index mid = n / 2;
    if (mid == 0) return 0;
    Index lo = 0;
    Index hi = n;
    while (mid != lo) {
        if (knots[mid] > value) {
            hi = mid;
        } else {
            lo = mid;
        }
        mid = (lo + hi) / 2;
    }
    return mid;
}

/// Samples a curve at the parameters t0, t0 + h, ... below t1, at each knot on the way, and at t1. Beyond the
/// ends the first and the last segment go on. Each segment starts afresh at its knot.
/// @param knots      m + 1 ascending parameters; knots[i] is the parameter of point i.
/// @param maxIndex   largest index of a row of `out`; samples beyond it are not written.
/// @param lastIndex  receives the index of the last row written, -1 for none.
/// @return 0; 1 for t0 > t1; 2 for a step that is 0 or negative.
int sampleSegments(const SplineSegmentSet& set, const double* knots, double t0, double t1, double h,
                   Index maxIndex, double** out, Index& lastIndex);

}  // namespace velquad::curves

#endif  // VELQUAD_CURVES_SEGMENTS_H
