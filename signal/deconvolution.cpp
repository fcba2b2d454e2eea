// Removal of the repeated self-convolution of a distribution from itself: by the logarithm of its spectrum, or by the
// series of that logarithm in the time domain.
//
// The transform is the Danielson-Lanczos form with factors by recurrence: G. C. Danielson, C. Lanczos, Journal of the
// Franklin Institute 233 (1942).
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "frame/kernels.h"
#include "frame/math.h"
#include "frame/user_break.h"
#include "frame/working_block.h"
#include "signal/convolution_kernels.h"
#include "signal/fft_constants.h"
#include "velquad/signal.h"

namespace velquad::signal {

VELQUAD_DEFINE_KERNELS(ConvolutionKernels, kConvolutionKernels, convolutionKernels)

namespace {

using frame::WorkingBlock;

constexpr UINT kZeroedMovable = GMEM_MOVEABLE | GMEM_ZEROINIT;
constexpr unsigned short kFourierLog = 1;
constexpr unsigned short kSeries = 2;
constexpr unsigned int kFewestForFourierLog = 16;
/// Samples that the power law of the tail is fitted to, in two halves.
constexpr std::size_t kTail = 10;
constexpr double kPhaseJump = 1.570796326795;

struct Curve {
    const double* data;
    std::size_t count;
    std::size_t start;
    std::size_t end;

    std::size_t taper() const { return end - start; }
    std::size_t span() const { return count - start; }

    double sumUpTo(std::size_t stop) const {
        double sum = 0.0;
        for (std::size_t i = 0; i < stop; ++i)
            sum += data[i];
        return sum;
    }

    /// A rising cosine in place of the leading peak, up to the level of the first sample behind it.
    void storeTaper(double* curve) const {
        for (std::size_t i = 0; i < taper(); ++i) {
            curve[i] = (1.0 - frame::cos(static_cast<double>(i) * kPi / static_cast<double>(taper()))) *
                       data[end] * 0.5;
        }
    }

    void storeRest(double* curve) const {
        for (std::size_t i = taper(); i < span(); ++i)
            curve[i] = data[i + start];
    }
};

/// A spectrum of 2^k elements in split form.
struct Spectrum {
    double* re;
    double* im;
    std::size_t size;
};

void reverseBits(const Spectrum& spectrum) {
    std::size_t j = 0;
    for (std::size_t i = 0; i < spectrum.size; ++i) {
        if (i < j) {
            std::swap(spectrum.re[i], spectrum.re[j]);
            std::swap(spectrum.im[i], spectrum.im[j]);
        }
        std::size_t m = spectrum.size / 2;
        for (; m >= 1 && j >= m; m /= 2)
            j -= m;
        j += m;
    }
}

/// Joins halves of `half` elements.
void runStage(const Spectrum& spectrum, std::size_t half, double sign) {
    const auto stage = static_cast<double>(2 * half);
    const double halfSine = frame::sin(sign * kPi / stage);
    const double fullSine = frame::sin(2.0 * sign * kPi / stage);
    const double decay = -2.0 * halfSine * halfSine;
    double wr = 1.0;
    double wi = 0.0;
    for (std::size_t k = 0; k < half; ++k) {
        for (std::size_t a = k; a < spectrum.size; a += 2 * half) {
            const std::size_t b = a + half;
            const double tr = spectrum.re[b] * wr - spectrum.im[b] * wi;
            const double ti = spectrum.im[b] * wr + spectrum.re[b] * wi;
            spectrum.re[b] = spectrum.re[a] - tr;
            spectrum.im[b] = spectrum.im[a] - ti;
            spectrum.re[a] += tr;
            spectrum.im[a] += ti;
        }
        const double old = wr;
        wr = old + (old * decay - wi * fullSine);
        wi = wi + (wi * decay + old * fullSine);
    }
}

/// In place, not scaled in either direction.
void transform(const Spectrum& spectrum, double sign) {
    reverseBits(spectrum);
    for (std::size_t half = 1; half < spectrum.size; half *= 2)
        runStage(spectrum, half, sign);
}

/// The smallest power of two from `count` up, or the one above where the logarithm falls short.
std::size_t spectrumSize(unsigned int count) {
    const int exponent = static_cast<int>(frame::log(static_cast<double>(count)) / frame::log(2.0));
    const std::size_t size = std::size_t{1} << exponent;
    return size < count ? 2 * size : size;
}

double sumOf(const double* values, std::size_t count) {
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i)
        sum += values[i];
    return sum;
}

/// Continues a curve by a power law that reaches zero at the end of the spectrum.
/// @param level  Kept: a sample of the raw curve, which is another one unless the curve starts at 0.
void continueTail(double* re, std::size_t span, std::size_t size, double level) {
    const double upper = sumOf(re + (span - kTail / 2), kTail / 2);
    const double lower = sumOf(re + (span - kTail), kTail / 2);
    const auto n = static_cast<double>(span);
    const double power = 2.0 * frame::log(lower / upper) / frame::log(n / (n - static_cast<double>(kTail)));
    const double begin = 2.0 * n + 1.0;
    const double floor = frame::pow(begin / (2.0 * static_cast<double>(size)), power) * level;
    for (std::size_t i = span; i < size; ++i)
        re[i] = frame::pow(begin / (2.0 * static_cast<double>(i)), power) * level - floor;
}

/// Replaces a spectrum by its logarithm, with the phase followed across its jumps.
void takeLogarithm(const Spectrum& spectrum, double total) {
    const auto size = static_cast<double>(spectrum.size);
    double previous = 0.0;
    int jumps = 0;
    for (std::size_t k = 0; k < spectrum.size; ++k) {
        const double re = spectrum.re[k];
        const double im = spectrum.im[k];
        const double phase = frame::atan(im / re);
        const double step = phase - previous;
        previous = phase;
        if (step > kPhaseJump) {
            ++jumps;
        } else if (-kPhaseJump >= step) {
            --jumps;
        }
        spectrum.re[k] = frame::log(frame::hypot(im, re) / total) * total / size;
        spectrum.im[k] = (phase - jumps * kPi) * total / size;
    }
}

SignalStatus deconvolveByLogarithm(const Curve& curve, double scale, double* result) {
    const std::size_t size = spectrumSize(static_cast<unsigned int>(curve.count));
    const WorkingBlock imaginary(size * sizeof(double), kZeroedMovable);
    if (imaginary.status() != kSignalOk) return imaginary.status();
    const WorkingBlock real(size * sizeof(double), kZeroedMovable);
    if (real.status() != kSignalOk) return real.status();
    const Spectrum spectrum{real.as<double>(), imaginary.as<double>(), size};
    const std::size_t span = curve.span();
    const double total = curve.sumUpTo(curve.end) * scale;
    curve.storeTaper(spectrum.re);
    curve.storeRest(spectrum.re);
    continueTail(spectrum.re, span, size, curve.data[span - 1]);
    spectrum.re[0] = total;
    transform(spectrum, 1.0);
    takeLogarithm(spectrum, total);
    transform(spectrum, -1.0);
    for (std::size_t i = 0; i < span; ++i)
        result[i] = frame::hypot(spectrum.im[i], spectrum.re[i]);
    return kSignalOk;
}

/// The series of ln(1 + x) for convolutions: x - x * x / 2 + x * x * x / 3 - ...
void addSeries(const double* first, double* power, double* work, std::size_t span, unsigned short order,
               double* result) {
    for (unsigned int k = 2; k <= order; ++k) {
        if (frame::matPollUserBreak() != 0) return;
        convolutionKernels().convolve(first, power, span, work);
        const double inverse = 1.0 / k;
        const double c = k % 2 == 0 ? -inverse : inverse;
        for (std::size_t i = 0; i < span; ++i)
            result[i] += c * work[i];
        std::swap(power, work);
    }
}

SignalStatus deconvolveBySeries(const Curve& curve, unsigned short order, double* result) {
    const WorkingBlock firstBlock(curve.count * sizeof(double), kZeroedMovable);
    if (firstBlock.status() != kSignalOk) return firstBlock.status();
    const WorkingBlock powerBlock(curve.count * sizeof(double), kZeroedMovable);
    if (powerBlock.status() != kSignalOk) return powerBlock.status();
    const WorkingBlock workBlock(curve.count * sizeof(double), kZeroedMovable);
    if (workBlock.status() != kSignalOk) return workBlock.status();
    auto* first = firstBlock.as<double>();
    auto* power = powerBlock.as<double>();
    const std::size_t span = curve.span();

    curve.storeTaper(first);
    first[0] = curve.sumUpTo(curve.end);
    // Without a taper this overwrites the total.
    curve.storeRest(first);
    const double sum = curve.sumUpTo(span);
    for (std::size_t i = 0; i < span; ++i)
        first[i] = first[i] / sum;
    first[0] -= 1.0;
    for (std::size_t i = 0; i < span; ++i)
        result[i] = power[i] = first[i];
    result[0] += 1.0;
    addSeries(first, power, workBlock.as<double>(), span, order, result);
    result[0] += 1.0;
    for (std::size_t i = 0; i < span; ++i)
        result[i] *= sum;
    result[0] = 0.0;
    return kSignalOk;
}

/// Whether the leading peak lies within the curve.
bool isUsable(const double* data, const double* result, const Curve& curve) {
    return data != nullptr && result != nullptr && curve.start <= curve.end && curve.end < curve.count;
}

}  // namespace
}  // namespace velquad::signal

using namespace velquad;
using namespace velquad::signal;

extern "C" unsigned short matDeconvolution(const double* data, unsigned int count, double* result,
                                           unsigned int start, unsigned int end, double scale,
                                           unsigned short order, unsigned short method) {
    const Curve curve{data, count, start, end};
    SignalStatus status = kSignalBadArgument;
    if (isUsable(data, result, curve)) {
        if (method == kFourierLog && count >= kFewestForFourierLog && curve.span() > kTail) {
            status = deconvolveByLogarithm(curve, scale, result);
        } else if (method == kSeries) {
            status = deconvolveBySeries(curve, order, result);
        }
    }
    return static_cast<unsigned short>(status);
}
