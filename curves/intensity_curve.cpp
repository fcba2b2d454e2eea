// A table of equally spaced values of the natural cubic spline through a few points.
#include <atomic>
#include <cmath>
#include <cstddef>

#include "curves/natural_spline.h"
#include "curves/scratch_pool.h"
#include "curves/segments.h"
#include "velquad/curves.h"

namespace {

using namespace velquad::curves;

/// The interval of the latest evaluation, which the next one tries first. It changes no result, so threads may
/// overwrite one another's.
std::atomic<Index> cachedInterval{0};

/// Copies of the points' positions and the spline's coefficients.
struct IntensitySpline {
    Index count;
    double* x;
    double* a;
    double* b;
    double* c;
    double* d;

    double at(double value) const {
        const Index i = intervalOf(value);
        const double u = value - x[i];
        return ((d[i] * u + c[i]) * u + b[i]) * u + a[i];
    }

    Index intervalOf(double value) const {
        Index i = cachedInterval.load(std::memory_order_relaxed);
        // It may come from a curve of more points.
        if (i < count - 1 && x[i] <= value && value < x[i + 1]) return i;
        i = findInterval(count - 1, value, x);
        cachedInterval.store(i, std::memory_order_relaxed);
        return i;
    }
};

/// A not-a-number becomes the lower limit; of crossed limits the upper one holds.
double limited(double value, double lowerLimit, double upperLimit) {
    if (!(value > lowerLimit)) value = lowerLimit;
    if (!(upperLimit > value)) value = upperLimit;
    return value;
}

}  // namespace

extern "C" unsigned int matInterpolateIntensityCurve(const double* xValues, const double* yValues,
                                                     unsigned int count, double lowerLimit, double upperLimit,
                                                     double* outValues, unsigned int outCount) {
    if (xValues == nullptr || yValues == nullptr || outValues == nullptr) return 0;
    const auto n = static_cast<Index>(count);
    ScratchMemory memory;
    IntensitySpline spline{
        n, memory.vector(n), memory.vector(n), memory.vector(n), memory.vector(n), memory.vector(n)};
    if (!memory.isOk()) return 0;
    for (Index i = 0; i < n; ++i)
        spline.x[i] = xValues[i];
    if (cubicSplineNatural(n, spline.x, yValues, spline.a, spline.b, spline.c, spline.d) != 0) return 0;
    const double step = (spline.x[n - 1] - spline.x[0]) / static_cast<double>(outCount - 1U);
    for (unsigned int i = 0; i < outCount; ++i)
        outValues[i] = limited(spline.at(i * step + spline.x[0]), lowerLimit, upperLimit);
    return outCount;
}
