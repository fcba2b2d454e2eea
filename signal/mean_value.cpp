// The mean of a sliding window.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "velquad/signal.h"

namespace {

using Index = std::int64_t;

/// Values computed side by side. Each keeps its own order of summing.
constexpr Index kBlock = 8;

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

/// The means of `kBlock` whole windows, the first of which begins at in[0].
void meansOfWholeWindows(const double* in, Index window, double* out) {
    double sums[kBlock] = {};
    for (Index k = 0; k < window; ++k) {
        for (Index lane = 0; lane < kBlock; ++lane)
            sums[lane] += in[k + lane];
    }
    const auto divisor = static_cast<double>(window);
    for (Index lane = 0; lane < kBlock; ++lane)
        out[lane] = sums[lane] / divisor;
}

}  // namespace

extern "C" unsigned int matMeanValue(const double* in, int n, double* out, int window) {
    if (in == nullptr || out == nullptr || n == 0 || window == 0) return velquad::kSignalBadArgument;
    const Index before = window / 2;
    // Values from here to there have whole windows.
    const Index firstWhole = before;
    const Index endWhole = n - (window - before) + 1;
    Index i = 0;
    while (i < n) {
        if (window > 0 && i >= firstWhole && i + kBlock <= endWhole) {
            meansOfWholeWindows(in + (i - before), window, out + i);
            i += kBlock;
        } else {
            out[i] = meanAt(in, n, i, window);
            ++i;
        }
    }
    return velquad::kSignalOk;
}
