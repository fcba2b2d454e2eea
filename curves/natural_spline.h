// The natural cubic spline of a function y(x).
#ifndef VELQUAD_CURVES_NATURAL_SPLINE_H
#define VELQUAD_CURVES_NATURAL_SPLINE_H

#include "curves/scratch_pool.h"

namespace velquad::curves {

/// Computes the twice continuously differentiable cubic spline through (x[i], y[i]) whose second derivative is 0
/// at both ends. On interval i, with u = x - x[i],
///
///     S(x) = ((d[i] * u + c[i]) * u + b[i]) * u + a[i].
///
/// @param n           points, three or more.
/// @param x           strictly increasing.
/// @param a, b, c, d  receive n - 1 coefficients each; `c` has n entries, the last one 0.
/// @return 0; 2 for fewer than three points; -(i + 1) when x[i + 1] is not above x[i]; 3 out of memory; 6 for a
///         pivot below 2.220446049250313e-16.
/// @par Source  G. H. Golub, C. F. Van Loan, Matrix Computations, 1983 (tridiagonal elimination).
int cubicSplineNatural(Index n, const double* x, const double* y, double* a, double* b, double* c, double* d);

}  // namespace velquad::curves

#endif  // VELQUAD_CURVES_NATURAL_SPLINE_H
