// The peak locator step by step around a given polynomial fit.
#ifndef VELQUAD_TESTS_SUPPORT_PARABOLA_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_PARABOLA_REFERENCE_H

#include <cmath>
#include <vector>

#include "velquad/fitting.h"

namespace velquad::test {

struct PeakLimits {
    double minCurvature;
    double backgroundFactor;
    double noiseFactor;
};

/// What `math::FitParabola` stores for an index of the curve.
inline bool fitParabolaLiterally(const std::vector<double>& x, const std::vector<double>& y, int index,
                                 double width, const PeakLimits& limits, math::ParaFit& fit) {
    const int n = static_cast<int>(x.size());
    const auto at = [](const std::vector<double>& v, int i) { return v[static_cast<std::size_t>(i)]; };
    fit.vertexY = fit.curvature = 0.0;
    fit.isPeak = false;
    int left = index;
    for (int steps = 0; index - steps >= 0; ++steps) {
        const bool isFar = at(x, index) - at(x, index - steps) >= width * 0.5;
        if (isFar && steps >= 3) break;
        left = index - steps;
    }
    int right = index;
    while (right + 1 < n && !(at(x, right + 1) - at(x, index) >= width * 0.5 && right + 1 - index >= 3))
        ++right;
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double residual = 0.0;
    math::CSVDPolyFit poly(2);
    if (!poly.FitRangeParabola(x, y, left, right, a, b, c, &residual)) return false;
    if (!(std::fabs(a) > limits.minCurvature)) return false;
    fit.vertexY = c - (b * b) / (a * 4.0);
    fit.vertexX = -b / (a * 2.0);
    fit.curvature = a;
    fit.residual = residual;
    fit.left = left;
    fit.right = right;
    const double yLeft = (at(x, left) * a) * at(x, left) + at(x, left) * b + c;
    const double yRight = (at(x, right) * a) * at(x, right) + at(x, right) * b + c;
    const double low = yLeft > yRight ? yRight : yLeft;
    std::vector<double> background;
    int i = left - 1;
    while (i >= 0 && at(y, left) > at(y, i))
        --i;
    for (; i >= 0; --i)
        background.push_back(at(y, i));
    i = right + 1;
    while (i < n && at(y, right) > at(y, i))
        ++i;
    for (; i < n; ++i)
        background.push_back(at(y, i));
    double threshold = 0.0;
    if (n - right - 1 + left > 2 && background.size() > 3) {
        double sum = 0.0;
        double squares = 0.0;
        for (const double value : background) {
            sum += value;
            squares += value * value;
        }
        const auto m = static_cast<double>(background.size());
        const double variance = squares / (m - 1) - sum * sum / ((m - 1) * m);
        threshold = (variance > 0.0 ? std::sqrt(variance) : 0.0) * limits.backgroundFactor + sum / m;
    }
    fit.isPeak = a < 0.0 && fit.vertexY - low >= std::sqrt(residual) * limits.noiseFactor &&
                 fit.vertexX > at(x, left) && at(x, right) > fit.vertexX && fit.vertexY > threshold;
    for (i = index; i > 0 && at(y, i) == at(y, index);)
        --i;
    fit.plateauLeftX = at(x, i);
    for (i = index; i < n - 1 && at(y, i) == at(y, index);)
        ++i;
    fit.plateauRightX = at(x, i);
    return true;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_PARABOLA_REFERENCE_H
