// A diagonally dominant tridiagonal system for the quadratic coefficients, from which the others follow.
#include "curves/natural_spline.h"

#include <cmath>

#include "curves/vector.h"

namespace velquad::curves {
namespace {

constexpr int kSplineDone = 0;
constexpr int kTooFewPoints = 2;
constexpr int kNoMemory = 3;
constexpr int kSingular = 6;

bool isPivotTooSmall(double pivot) {
    return kEpsilon > std::fabs(pivot);
}

/// Solves for c[1] ... c[n - 2] by elimination without pivoting: forward with row factors, then back.
int solveQuadratic(Index n, const double* y, const double* h, double* diagonal, double* c) {
    c[0] = 0.0;
    c[n - 1] = 0.0;
    for (Index i = 1; i < n - 1; ++i) {
        diagonal[i] = 2.0 * (h[i - 1] + h[i]);
        c[i] = 3.0 * ((y[i + 1] - y[i]) / h[i] - (y[i] - y[i - 1]) / h[i - 1]);
        if (i > 1) {
            const double factor = h[i - 1] / diagonal[i - 1];
            diagonal[i] -= factor * h[i - 1];
            c[i] -= factor * c[i - 1];
        }
        if (isPivotTooSmall(diagonal[i])) return kSingular;
    }
    c[n - 2] /= diagonal[n - 2];
    for (Index i = n - 3; i >= 1; --i)
        c[i] = (c[i] - h[i] * c[i + 1]) / diagonal[i];
    return kSplineDone;
}

}  // namespace

int cubicSplineNatural(Index n, const double* x, const double* y, double* a, double* b, double* c,
                       double* d) {
    if (n < 3) return kTooFewPoints;
    ScratchMemory memory;
    double* h = memory.vector(n - 1);
    double* diagonal = memory.vector(n);
    if (!memory.isOk()) return kNoMemory;
    for (Index i = 0; i < n - 1; ++i) {
        h[i] = x[i + 1] - x[i];
        if (h[i] <= 0.0) return static_cast<int>(-(i + 1));
    }
    const int code = solveQuadratic(n, y, h, diagonal, c);
    if (code != kSplineDone) return code;
    for (Index i = 0; i < n - 1; ++i) {
        a[i] = y[i];
        b[i] = (y[i + 1] - y[i]) / h[i] - h[i] * (2.0 * c[i] + c[i + 1]) / 3.0;
        d[i] = (c[i + 1] - c[i]) / (3.0 * h[i]);
    }
    return kSplineDone;
}

}  // namespace velquad::curves
