// Inner loops of the smoothing filters: many windows side by side, each summed in its own order.
#ifndef VELQUAD_SIGNAL_SMOOTHING_KERNELS_H
#define VELQUAD_SIGNAL_SMOOTHING_KERNELS_H

#include <cstddef>

namespace velquad::signal {

/// Widths of the windows of `matSavitzkyGolay`.
inline constexpr std::size_t kConvolutionWidths = 5;
inline constexpr std::size_t kMostTaps = 2 * kConvolutionWidths + 3;

struct Convolution {
    double norm;
    double coefficients[kMostTaps];
};

struct SmoothingKernels {
    /// By width - 1: convolves the `count` windows of 2 * width + 3 values that begin at in[0], in[1], ...
    void (*convolve[kConvolutionWidths])(const double* in, std::size_t count, const Convolution& convolution,
                                         double* out);
    /// The means of the `count` windows that begin at in[0], in[1], ...
    void (*means)(const double* in, std::size_t count, std::size_t window, double* out);
};

const SmoothingKernels& smoothingKernels();

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_SMOOTHING_KERNELS_H
