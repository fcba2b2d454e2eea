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

/// Elements in their own order, apart from those of the spectrum.
struct FftSource {
    const double* re;
    const double* im;
};

/// Elements that the first three stages join.
constexpr std::size_t kFftBlock = 8;

struct FftKernels {
    /// The elements in bit-reversed order, and the stages within blocks of `kFftBlock`. 64 elements or more.
    void (*firstStages)(const FftSource& source, const FftData& data);
    /// The stage that joins halves of `half` elements, 8 or more.
    void (*stage)(const FftData& data, std::size_t half);
    /// That stage and the next one.
    void (*twoStages)(const FftData& data, std::size_t half);
};

const FftKernels& fftKernels();

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_FFT_KERNELS_H
