// Smoothing and differentiation by a polynomial fitted to a sliding window, as a convolution.
//
// A. Savitzky, M. J. E. Golay, "Smoothing and differentiation of data by simplified least squares procedures",
// Analytical Chemistry 36 (1964).
#include <cmath>
#include <cstddef>

#include "frame/kernels.h"
#include "signal/smoothing_kernels.h"
#include "velquad/signal.h"

namespace velquad::signal {

VELQUAD_DEFINE_KERNELS(SmoothingKernels, kSmoothingKernels, smoothingKernels)

}  // namespace velquad::signal

namespace {

using velquad::signal::Convolution;

constexpr unsigned int kMostWidth = velquad::signal::kConvolutionWidths;
constexpr unsigned int kMostDerivative = 2;

/// By derivative and width - 1.
constexpr Convolution kConvolutions[kMostDerivative + 1][kMostWidth] = {
    {{35, {-3, 12, 17, 12, -3}},
     {21, {-2, 3, 6, 7, 6, 3, -2}},
     {231, {-21, 14, 39, 54, 59, 54, 39, 14, -21}},
     {429, {-36, 9, 44, 69, 84, 89, 84, 69, 44, 9, -36}},
     {143, {-11, 0, 9, 16, 21, 24, 25, 24, 21, 16, 9, 0, -11}}},
    {{10, {-2, -1, 0, 1, 2}},
     {28, {-3, -2, -1, 0, 1, 2, 3}},
     {60, {-4, -3, -2, -1, 0, 1, 2, 3, 4}},
     {110, {-5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5}},
     {182, {-6, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6}}},
    {{7, {2, -1, -2, -1, 2}},
     {42, {5, 0, -3, -4, -3, 0, 5}},
     {462, {28, 7, -8, -17, -20, -17, -8, 7, 28}},
     {429, {15, 6, -1, -6, -9, -10, -9, -6, -1, 6, 15}},
     {1001, {22, 11, 2, -5, -10, -13, -14, -13, -10, -5, 2, 11, 22}}}};

}  // namespace

extern "C" unsigned int matSavitzkyGolay(const double* in, unsigned int n, double* out, unsigned int width,
                                         unsigned int derivative, int isAbsolute) {
    if (in == nullptr || out == nullptr || width < 1 || width > kMostWidth || derivative > kMostDerivative ||
        n <= width + 1) {
        return velquad::kSignalBadArgument;
    }
    const std::size_t half = width + 1;
    const std::size_t windows = n > 2 * half ? n - 2 * half : 0;
    if (windows > 0) {
        velquad::signal::smoothingKernels().convolve[width - 1](
            in, windows, kConvolutions[derivative][width - 1], out + half);
    }
    // Both ends repeat the nearest value. Without a whole window there is none.
    const double first = windows > 0 ? out[half] : 0.0;
    const double last = windows > 0 ? out[half + windows - 1] : 0.0;
    for (std::size_t i = 0; i < half; ++i)
        out[i] = first;
    for (std::size_t i = half + windows; i < n; ++i)
        out[i] = last;
    if (isAbsolute != 0) {
        for (std::size_t i = 0; i < n; ++i)
            out[i] = std::fabs(out[i]);
    }
    return velquad::kSignalOk;
}
