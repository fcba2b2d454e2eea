// Inner loops of the Fourier transform: butterflies over stages, all with the same operations on the same operands as
// one stage after the other.
#ifndef VELQUAD_SIGNAL_FFT_KERNELS_H
#define VELQUAD_SIGNAL_FFT_KERNELS_H

#include <cstddef>

namespace velquad::signal {

/// A spectrum in split form, and the factors of its stages: those of the stage that joins halves of h elements
/// stand at h ... 2 h - 1.
struct FftData {
    double* re;
    double* im;
    std::size_t n;  ///< A power of two.
    const double* cosines;
    const double* sines;
};

struct FftKernels {
    /// The stage that joins halves of `half` elements, 8 or more.
    void (*stage)(const FftData& data, std::size_t half);
    /// That stage and the next one.
    void (*twoStages)(const FftData& data, std::size_t half);
};

const FftKernels& fftKernels();

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_FFT_KERNELS_H
