// Inner loops of the smoothing filters. Compiled for several instruction sets; see frame/kernels.h for what may be
// used here.
#include "signal/smoothing_kernels.h"

#include "signal/lanes.h"

namespace velquad::signal::VELQUAD_KERNEL_LEVEL {

namespace {

/// Vectors of windows computed side by side.
constexpr std::size_t kVectors = 4;
constexpr std::size_t kBlock = kVectors * kLanes;

/// Stores the sums of a block, each divided.
VELQUAD_ALWAYS_INLINE void storeQuotients(const Lanes (&sums)[kVectors], double divisor, double* out) {
    for (std::size_t v = 0; v < kVectors; ++v) {
        store(out + v * kLanes, sums[v] / divisor);
    }
}

template <std::size_t Taps>
void convolve(const double* in, std::size_t count, const Convolution& convolution, double* out) {
    const double norm = convolution.norm;
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        Lanes sums[kVectors] = {};
        for (std::size_t j = 0; j < Taps; ++j) {
            for (std::size_t v = 0; v < kVectors; ++v)
                sums[v] += convolution.coefficients[j] * load(in + i + j + v * kLanes);
        }
        storeQuotients(sums, norm, out + i);
    }
    for (; i < count; ++i) {
        double sum = 0.0;
        for (std::size_t j = 0; j < Taps; ++j)
            sum += convolution.coefficients[j] * in[i + j];
        out[i] = sum / norm;
    }
}

void means(const double* in, std::size_t count, std::size_t window, double* out) {
    const auto divisor = static_cast<double>(window);
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        Lanes sums[kVectors] = {};
        for (std::size_t j = 0; j < window; ++j) {
            for (std::size_t v = 0; v < kVectors; ++v)
                sums[v] += load(in + i + j + v * kLanes);
        }
        storeQuotients(sums, divisor, out + i);
    }
    for (; i < count; ++i) {
        double sum = 0.0;
        for (std::size_t j = 0; j < window; ++j)
            sum += in[i + j];
        out[i] = sum / divisor;
    }
}

}  // namespace

extern const SmoothingKernels kSmoothingKernels;
const SmoothingKernels kSmoothingKernels = {
    {convolve<5>, convolve<7>, convolve<9>, convolve<11>, convolve<13>}, means};

}  // namespace velquad::signal::VELQUAD_KERNEL_LEVEL
