// Smoothing and differentiation by a polynomial fitted to a sliding window, as a convolution.
//
// A. Savitzky, M. J. E. Golay, "Smoothing and differentiation of data by simplified least squares procedures",
// Analytical Chemistry 36 (1964).
#include <cmath>
#include <cstddef>

#include "velquad/signal.h"

namespace {

constexpr unsigned int kMostWidth = 5;
constexpr unsigned int kMostDerivative = 2;
constexpr std::size_t kMostTaps = 2 * kMostWidth + 3;

struct Convolution {
    double norm;
    double coefficients[kMostTaps];  ///< The first 2 * width + 3 of them.
};

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

/// Values computed side by side. Each keeps its own order of summing.
constexpr std::size_t kBlock = 8;

/// Convolves the windows that begin at in[0], in[1], ...
template <std::size_t Taps>
void convolve(const double* in, std::size_t count, const Convolution& convolution, double* out) {
    std::size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        double sums[kBlock] = {};
        for (std::size_t j = 0; j < Taps; ++j) {
            for (std::size_t lane = 0; lane < kBlock; ++lane)
                sums[lane] += convolution.coefficients[j] * in[i + j + lane];
        }
        for (std::size_t lane = 0; lane < kBlock; ++lane)
            out[i + lane] = sums[lane] / convolution.norm;
    }
    for (; i < count; ++i) {
        double sum = 0.0;
        for (std::size_t j = 0; j < Taps; ++j)
            sum += convolution.coefficients[j] * in[i + j];
        out[i] = sum / convolution.norm;
    }
}

using Convolve = void (*)(const double* in, std::size_t count, const Convolution& convolution, double* out);
constexpr Convolve kConvolve[kMostWidth] = {convolve<5>, convolve<7>, convolve<9>, convolve<11>,
                                            convolve<13>};

}  // namespace

extern "C" unsigned int matSavitzkyGolay(const double* in, unsigned int n, double* out, unsigned int width,
                                         unsigned int derivative, int isAbsolute) {
    if (in == nullptr || out == nullptr || width < 1 || width > kMostWidth || derivative > kMostDerivative ||
        n <= width + 1) {
        return velquad::kSignalBadArgument;
    }
    const std::size_t half = width + 1;
    const std::size_t windows = n > 2 * half ? n - 2 * half : 0;
    if (windows > 0) kConvolve[width - 1](in, windows, kConvolutions[derivative][width - 1], out + half);
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
