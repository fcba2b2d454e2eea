// Uniform B-spline curves: evaluation by de Boor's recursion, and sampling of whole curves.
#ifndef VELQUAD_CURVES_BSPLINE_H
#define VELQUAD_CURVES_BSPLINE_H

#include "curves/curve_points.h"

namespace velquad::curves {

/// A uniform B-spline with knots at the integers. The parameter runs over [order - 1, order - 1 + segments].
struct BsplineCurve {
    const double* const* P;  ///< Control points.
    Index n;                 ///< Control points; a closed curve has each only once.
    Index order;             ///< Degree plus 1.
    Index dimension;         ///< Coordinates of a point.
    bool isOpen;             ///< Clamped at both ends; else periodic.

    Index segments() const { return isOpen ? n - order + 1 : n; }
};

/// Evaluates the curve at `t` in the interval that begins at the knot `L`.
/// @param L     order - 1 ... order - 2 + segments.
/// @param work  `order` rows; overwritten.
/// @param out   receives the point.
void bsplinePoint(const BsplineCurve& curve, double t, Index L, double** work, double* out);

/// Samples the whole curve and writes the points one by one: the first point, then the same number of points in
/// each interval, the last of them at the interval's end.
/// @param wanted  in: samples asked for; at least two an interval are made. out: samples made, once sampling
///                has begun.
/// @return 0; 6 when the sink wants no more; 7 out of memory; 11 for n below 3, an order below 3 or above n, or
///         a dimension below 2.
int bsplineSample(const BsplineCurve& curve, const CurveSink& sink, Index& wanted);

}  // namespace velquad::curves

#endif  // VELQUAD_CURVES_BSPLINE_H
