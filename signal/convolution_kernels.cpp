// Inner loop of the convolution of two curves: many sums side by side, each in its own order. Compiled for several
// instruction sets; see frame/kernels.h for what may be used here.
#include "signal/convolution_kernels.h"

#include "signal/lanes.h"

namespace velquad::signal::VELQUAD_KERNEL_LEVEL {

namespace {

/// Vectors of sums formed side by side.
constexpr std::size_t kVectors = 4;
constexpr std::size_t kBlock = kVectors * kLanes;

/// Adds the terms from j = `begin` on to the sum of one place.
VELQUAD_ALWAYS_INLINE double finished(double sum, const double* a, const double* b, std::size_t begin,
                                      std::size_t i) {
    for (std::size_t j = begin; j <= i; ++j)
        sum += a[i - j] * b[j];
    return sum;
}

void convolve(const double* a, const double* b, std::size_t n, double* out) {
    std::size_t i = 0;
    for (; i + kBlock <= n; i += kBlock) {
        Lanes sums[kVectors] = {};
        for (std::size_t j = 0; j <= i; ++j) {
            for (std::size_t v = 0; v < kVectors; ++v)
                sums[v] += load(a + (i - j) + v * kLanes) * b[j];
        }
        for (std::size_t v = 0; v < kVectors; ++v)
            store(out + i + v * kLanes, sums[v]);
        for (std::size_t lane = 1; lane < kBlock; ++lane)
            out[i + lane] = finished(out[i + lane], a, b, i + 1, i + lane);
    }
    for (; i < n; ++i)
        out[i] = finished(0.0, a, b, 0, i);
}

}  // namespace

extern const ConvolutionKernels kConvolutionKernels;
const ConvolutionKernels kConvolutionKernels = {convolve};

}  // namespace velquad::signal::VELQUAD_KERNEL_LEVEL
