// The Fourier transform of a real signal, radix 2 with decimation in time.
//
// J. W. Cooley, J. W. Tukey, "An algorithm for the machine calculation of complex Fourier series", Mathematics of
// Computation 19 (1965).
//
// Every butterfly has the operands and the operations of the plain loops, stage by stage; only the order of
// butterflies that do not meet differs, and factors that no stage reads are not computed.
#include <cstddef>
#include <utility>

#include "frame/kernels.h"
#include "frame/math.h"
#include "frame/working_block.h"
#include "signal/fft_constants.h"
#include "signal/fft_kernels.h"
#include "velquad/signal.h"

namespace velquad::signal {

VELQUAD_DEFINE_KERNELS(FftKernels, kFftKernels, fftKernels)

namespace {

using frame::WorkingBlock;

/// Stages that join fewer elements than this are done in place, block by block.
constexpr std::size_t kBlock = 8;

enum class Direction { kForward, kInverse };

bool isPowerOfTwo(std::size_t n) {
    return n != 0 && (n & (n - 1)) == 0;
}

/// The factors of all stages, each stage's side by side.
void fillFactors(std::size_t n, Direction direction, double* cosines, double* sines) {
    const double w = kTwoPi / static_cast<double>(n);
    const std::size_t half = n / 2;
    for (std::size_t k = 0; k < half; ++k) {
        const double angle = static_cast<double>(k) * w;
        const double sine = frame::sin(angle);
        cosines[half + k] = frame::cos(angle);
        sines[half + k] = direction == Direction::kForward ? -sine : sine;
    }
    for (std::size_t h = half / 2; h >= 1; h /= 2) {
        for (std::size_t k = 0; k < h; ++k) {
            cosines[h + k] = cosines[2 * (h + k)];
            sines[h + k] = sines[2 * (h + k)];
        }
    }
}

void reverseBits(double* re, double* im, std::size_t n) {
    std::size_t j = 0;
    for (std::size_t i = 0; i + 1 < n; ++i) {
        if (i < j) {
            std::swap(re[i], re[j]);
            std::swap(im[i], im[j]);
        }
        std::size_t k = n / 2;
        for (; k <= j; k /= 2)
            j -= k;
        j += k;
    }
}

void butterfly(const FftData& data, std::size_t i, std::size_t half, double tr, double ti) {
    double* re = data.re;
    double* im = data.im;
    re[i + half] = re[i] - tr;
    im[i + half] = im[i] - ti;
    re[i] += tr;
    im[i] += ti;
}

/// The stages within blocks of `kBlock` elements.
void firstStages(const FftData& data) {
    const std::size_t block = data.n < kBlock ? data.n : kBlock;
    for (std::size_t begin = 0; begin < data.n; begin += block) {
        for (std::size_t half = 1; half < block; half *= 2) {
            for (std::size_t group = begin; group < begin + block; group += 2 * half) {
                butterfly(data, group, half, data.re[group + half], data.im[group + half]);
                for (std::size_t k = 1; k < half; ++k) {
                    const double c = data.cosines[half + k];
                    const double s = data.sines[half + k];
                    const double re = data.re[group + k + half];
                    const double im = data.im[group + k + half];
                    butterfly(data, group + k, half, re * c - s * im, s * re + im * c);
                }
            }
        }
    }
}

void runStages(const FftData& data) {
    firstStages(data);
    const FftKernels& kernels = fftKernels();
    std::size_t half = kBlock;
    for (; 2 * half < data.n; half *= 4)
        kernels.twoStages(data, half);
    if (half < data.n) kernels.stage(data, half);
}

SignalStatus transform(double* re, double* im, std::size_t n, Direction direction) {
    const WorkingBlock cosines(n * sizeof(double));
    if (cosines.status() != kSignalOk) return cosines.status();
    const WorkingBlock sines(n * sizeof(double));
    if (sines.status() != kSignalOk) return sines.status();
    fillFactors(n, direction, cosines.as<double>(), sines.as<double>());
    reverseBits(re, im, n);
    runStages({re, im, n, cosines.as<double>(), sines.as<double>()});
    return kSignalOk;
}

/// A sign that alternates in the signal moves the zero frequency to the middle of the spectrum.
void negateOdd(double* values, std::size_t n) {
    for (std::size_t k = 1; k < n; k += 2)
        values[k] = -values[k];
}

}  // namespace
}  // namespace velquad::signal

using namespace velquad;
using namespace velquad::signal;

extern "C" unsigned int matFFT(const double* in, unsigned int n, double* real, double* imaginary) {
    if (n == 0) return kSignalOk;
    if (!isPowerOfTwo(n) || in == nullptr || real == nullptr || imaginary == nullptr)
        return kSignalBadArgument;
    for (std::size_t k = 0; k < n; ++k) {
        real[k] = in[k];
        imaginary[k] = 0.0;
    }
    negateOdd(real, n);
    return static_cast<unsigned int>(transform(real, imaginary, n, Direction::kForward));
}

extern "C" unsigned int matInvFFT(double* real, double* imaginary, unsigned int n, double* out) {
    if (n == 0) return kSignalOk;
    if (!isPowerOfTwo(n) || real == nullptr || imaginary == nullptr || out == nullptr)
        return kSignalBadArgument;
    // Exact unless the quotient is subnormal, and then the same: n is a power of two.
    const double factor = 1.0 / static_cast<double>(n);
    for (std::size_t k = 0; k < n; ++k) {
        real[k] *= factor;
        imaginary[k] *= factor;
    }
    const SignalStatus status = transform(real, imaginary, n, Direction::kInverse);
    if (status != kSignalOk) return static_cast<unsigned int>(status);
    negateOdd(real, n);
    for (std::size_t k = 0; k < n; ++k)
        out[k] = real[k];
    return kSignalOk;
}
