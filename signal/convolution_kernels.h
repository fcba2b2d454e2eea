// Inner loop of the convolution of two curves.
#ifndef VELQUAD_SIGNAL_CONVOLUTION_KERNELS_H
#define VELQUAD_SIGNAL_CONVOLUTION_KERNELS_H

#include <cstddef>

namespace velquad::signal {

struct ConvolutionKernels {
    /// out[i] = sum of a[i - j] * b[j] over j from 0 to i, for each i below `n`. `out` is neither of them.
    void (*convolve)(const double* a, const double* b, std::size_t n, double* out);
};

const ConvolutionKernels& convolutionKernels();

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_CONVOLUTION_KERNELS_H
