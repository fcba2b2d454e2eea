// The Fourier transform of a real signal, radix 2 with decimation in time.
//
// J. W. Cooley, J. W. Tukey, "An algorithm for the machine calculation of complex Fourier series", Mathematics of
// Computation 19 (1965).
//
// Every butterfly has the operands and the operations of the plain loops, stage by stage; only the order of
// butterflies that do not meet differs, and factors that no stage reads are not computed.
#include <algorithm>
#include <cstddef>
#include <cstring>
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

/// Shorter spectra are not worth the kernel of the first stages.
constexpr std::size_t kLeastOfKernel = 64;

/// Elements whose stages are all done before those of the next ones, so that they stay in the cache.
constexpr std::size_t kCached = 32768;

/// Spectra of up to so many elements take their factors from a table that is made once.
constexpr std::size_t kTabulated = 4096;

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

/// The stages within blocks of `kFftBlock` elements.
void firstStages(const FftData& data) {
    const std::size_t block = data.n < kFftBlock ? data.n : kFftBlock;
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

/// The stages from that which joins halves of `half` elements on.
void runStages(const FftData& data, std::size_t half) {
    const FftKernels& kernels = fftKernels();
    for (; 2 * half < data.n; half *= 4)
        kernels.twoStages(data, half);
    if (half < data.n) kernels.stage(data, half);
}

void runLaterStages(const FftData& data) {
    if (data.n <= kCached) {
        runStages(data, kFftBlock);
        return;
    }
    for (std::size_t begin = 0; begin < data.n; begin += kCached)
        runStages({data.re + begin, data.im + begin, kCached, data.cosines, data.sines}, kFftBlock);
    runStages(data, kCached);
}

/// A stage has the same factors in spectra of all sizes: the angles differ by powers of two, which cancel.
class FactorTable {
  public:
    FactorTable() {
        fillFactors(kTabulated, Direction::kInverse, cosines_, sines_);
        for (std::size_t k = 0; k < kTabulated; ++k)
            negatedSines_[k] = -sines_[k];
    }

    const double* cosines() const { return cosines_; }
    const double* sines(Direction direction) const {
        return direction == Direction::kForward ? negatedSines_ : sines_;
    }

  private:
    double cosines_[kTabulated] = {};
    double sines_[kTabulated] = {};
    double negatedSines_[kTabulated] = {};
};

const FactorTable& factorTable() {
    static const FactorTable table;
    return table;
}

/// @param prepare  stores the elements to transform in the arrays that it is given, those of the result or others.
template <class Prepare>
SignalStatus transform(double* re, double* im, std::size_t n, Direction direction, Prepare prepare) {
    // Without memory the result holds the elements as they were prepared.
    const auto refuse = [&](const WorkingBlock& block) {
        prepare(re, im);
        return block.status();
    };
    const WorkingBlock first(n * sizeof(double));
    if (first.status() != kSignalOk) return refuse(first);
    const WorkingBlock second(n * sizeof(double));
    if (second.status() != kSignalOk) return refuse(second);
    auto* const firstBuffer = first.as<double>();
    auto* const secondBuffer = second.as<double>();
    FftData data = {re, im, n, factorTable().cosines(), factorTable().sines(direction)};
    if (n < kLeastOfKernel) {
        prepare(re, im);
        reverseBits(re, im, n);
        firstStages(data);
    } else {
        prepare(firstBuffer, secondBuffer);
        fftKernels().firstStages({firstBuffer, secondBuffer}, data);
    }
    if (n > kTabulated) {
        fillFactors(n, direction, firstBuffer, secondBuffer);
        data.cosines = firstBuffer;
        data.sines = secondBuffer;
    }
    runLaterStages(data);
    return kSignalOk;
}

/// A sign that alternates in the signal moves the zero frequency to the middle of the spectrum.
void copyAlternating(const double* from, std::size_t n, double* to) {
    for (std::size_t k = 0; k + 1 < n; k += 2) {
        to[k] = from[k];
        to[k + 1] = -from[k + 1];
    }
    if (n == 1) to[0] = from[0];
}

}  // namespace
}  // namespace velquad::signal

using namespace velquad;
using namespace velquad::signal;

extern "C" unsigned int matFFT(const double* in, unsigned int n, double* real, double* imaginary) {
    if (n == 0) return kSignalOk;
    if (!isPowerOfTwo(n) || in == nullptr || real == nullptr || imaginary == nullptr)
        return kSignalBadArgument;
    const auto shiftedSignal = [&](double* re, double* im) {
        copyAlternating(in, n, re);
        std::fill_n(im, n, 0.0);
    };
    return static_cast<unsigned int>(transform(real, imaginary, n, Direction::kForward, shiftedSignal));
}

extern "C" unsigned int matInvFFT(double* real, double* imaginary, unsigned int n, double* out) {
    if (n == 0) return kSignalOk;
    if (!isPowerOfTwo(n) || real == nullptr || imaginary == nullptr || out == nullptr)
        return kSignalBadArgument;
    // Exact unless the quotient is subnormal, and then the same: n is a power of two.
    const double factor = 1.0 / static_cast<double>(n);
    const auto scaledSpectrum = [&](double* re, double* im) {
        for (std::size_t k = 0; k < n; ++k) {
            re[k] = real[k] * factor;
            im[k] = imaginary[k] * factor;
        }
    };
    const SignalStatus status = transform(real, imaginary, n, Direction::kInverse, scaledSpectrum);
    if (status != kSignalOk) return static_cast<unsigned int>(status);
    copyAlternating(real, n, real);
    std::memmove(out, real, n * sizeof(double));
    return kSignalOk;
}
