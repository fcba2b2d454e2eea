// The mean of a sliding window.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "signal/smoothing_kernels.h"
#include "velquad/signal.h"

namespace {

using Index = std::int64_t;

/// The window of one value, cut at the ends of the curve.
double meanAt(const double* in, Index n, Index i, Index window) {
    const Index low = std::max<Index>(i - window / 2, 0);
    const Index high = std::min<Index>(i - window / 2 + window, n);
    if (low >= high) return in[i];
    double sum = 0.0;
    for (Index k = low; k < high; ++k)
        sum += in[k];
    return sum / static_cast<double>(high - low);
}

}  // namespace

extern "C" unsigned int matMeanValue(const double* in, int n, double* out, int window) {
    if (n == 0 || window == 0) return velquad::kSignalBadArgument;
    if (n < 0) return velquad::kSignalOk;
    if (in == nullptr || out == nullptr) return velquad::kSignalBadArgument;
    const Index before = window / 2;
    // Values from here to there have whole windows.
    const Index firstWhole = std::min<Index>(before, n);
    const Index endWhole = std::max<Index>(n - (window - before) + 1, firstWhole);
    if (window > 0) {
        for (Index i = 0; i < firstWhole; ++i)
            out[i] = meanAt(in, n, i, window);
        velquad::signal::smoothingKernels().means(in, static_cast<std::size_t>(endWhole - firstWhole),
                                                  static_cast<std::size_t>(window), out + firstWhole);
        for (Index i = endWhole; i < n; ++i)
            out[i] = meanAt(in, n, i, window);
    } else {
        for (Index i = 0; i < n; ++i)
            out[i] = meanAt(in, n, i, window);
    }
    return velquad::kSignalOk;
}
