// Windows over a spectrum, its forms as one real curve, and smoothing by a window.
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "frame/math.h"
#include "frame/working_block.h"
#include "signal/fft_constants.h"
#include "velquad/signal.h"

namespace {

using namespace velquad;
using namespace velquad::signal;

constexpr unsigned int kFewestSmoothed = 16;
constexpr unsigned int kMostSmoothed = 65535;

/// The exponent of the largest power of two that is not above `n`, as the logarithm tells.
int binaryExponent(unsigned int n) {
    return static_cast<int>(frame::log(static_cast<double>(n)) / frame::log(2.0));
}

/// Elements that a window covers: the largest power of two up to `n`.
std::uint64_t windowLength(unsigned int n) {
    // Half of it, but for one element.
    const int exponent = binaryExponent(n);
    const std::uint64_t length = exponent == 0 ? 1 : std::uint64_t{1} << (exponent - 1);
    return length == n ? length : 2 * length;
}

/// Distance from the middle in units of half a window and a bit.
double fromMiddle(double i, double l) {
    return (i - (l - 1.0) * 0.5) / ((l + 1.0) * 0.5);
}

double triangular(double i, double l) {
    return 1.0 - std::fabs(fromMiddle(i, l));
}

double hann(double i, double l) {
    return (1.0 - frame::cos(i * kTwoPi / l)) * 0.5;
}

double welch(double i, double l) {
    const double t = fromMiddle(i, l);
    return 1.0 - t * t;
}

double blackman(double i, double l) {
    return frame::cos(i * kFourPi / l) * 0.08 + (0.42 - frame::cos(i * kTwoPi / l) * 0.5);
}

using Weight = double (*)(double i, double l);

/// @return null for the rectangular window.
Weight weightOf(unsigned short kind) {
    switch (kind) {
        case 1:
            return triangular;
        case 2:
            return hann;
        case 3:
            return welch;
        case 4:
            return blackman;
        default:
            return nullptr;
    }
}

template <class Map>
void mapEach(const double* real, const double* imaginary, double* out, std::size_t n, Map map) {
    for (std::size_t i = 0; i < n; ++i)
        out[i] = map(real[i], imaginary[i]);
}

/// Puts the signal into the middle of a period and goes on outwards on both sides by its mean slope over what is to be
/// filled.
// Kept: the ramps lead away from each other, so the period has a jump between them where the signal has a trend.
void continueByRamp(const double* in, std::size_t n, std::size_t offset, std::size_t length, double* period) {
    for (std::size_t i = 0; i < n; ++i)
        period[offset + i] = in[i];
    const double slope = (in[n - 1] - in[0]) / static_cast<double>(length - n + 1);
    for (std::size_t i = offset; i-- > 0;)
        period[i] = period[i + 1] - slope;
    for (std::size_t i = offset + n; i < length; ++i)
        period[i] = period[i - 1] + slope;
}

}  // namespace

extern "C" unsigned int matWindowFFT(double* real, double* imaginary, unsigned int n, unsigned short kind) {
    const Weight weight = weightOf(kind);
    if (n == 0 || weight == nullptr || real == nullptr || imaginary == nullptr) return kSignalOk;
    const std::uint64_t length = windowLength(n);
    const auto l = static_cast<double>(length);
    for (std::uint64_t i = 0; i < length; ++i) {
        const double w = weight(static_cast<double>(i), l);
        real[i] *= w;
        imaginary[i] *= w;
    }
    return kSignalOk;
}

extern "C" unsigned int matMapFFTData(const double* real, const double* imaginary, double* out,
                                      unsigned int n, unsigned short mode) {
    if (n != 0 && (real == nullptr || imaginary == nullptr || out == nullptr)) return kSignalBadArgument;
    switch (mode) {
        case 1:
            mapEach(real, imaginary, out, n, [](double re, double im) { return im * im + re * re; });
            return kSignalOk;
        case 2:
            mapEach(real, imaginary, out, n,
                    [](double re, double im) { return std::sqrt(re * re + im * im); });
            return kSignalOk;
        case 3:
            mapEach(real, imaginary, out, n, [](double re, double) { return re; });
            return kSignalOk;
        case 4:
            mapEach(real, imaginary, out, n, [](double re, double) { return std::fabs(re); });
            return kSignalOk;
        case 5:
            mapEach(real, imaginary, out, n, [](double, double im) { return im; });
            return kSignalOk;
        case 6:
            mapEach(real, imaginary, out, n, [](double, double im) { return std::fabs(im); });
            return kSignalOk;
        default:
            return kSignalBadArgument;
    }
}

extern "C" unsigned int matFFTSmooth(const double* in, unsigned int n, double* out, unsigned int kind) {
    if (in == nullptr || out == nullptr || n < kFewestSmoothed || n > kMostSmoothed)
        return kSignalBadArgument;
    // Up to twice the samples, so that there is a ramp even for a power of two.
    const auto length = 2U << binaryExponent(n);
    const frame::WorkingBlock real(length * sizeof(double));
    if (real.status() != kSignalOk) return static_cast<unsigned int>(real.status());
    const frame::WorkingBlock imaginary(length * sizeof(double));
    if (imaginary.status() != kSignalOk) return static_cast<unsigned int>(imaginary.status());
    auto* re = real.as<double>();
    auto* im = imaginary.as<double>();
    const std::size_t offset = (length - n) / 2;
    continueByRamp(in, n, offset, length, re);
    unsigned int status = matFFT(re, length, re, im);
    if (status == kSignalOk) status = matWindowFFT(re, im, length, static_cast<unsigned short>(kind));
    if (status == kSignalOk) status = matInvFFT(re, im, length, re);
    if (status != kSignalOk) return status;
    for (std::size_t i = 0; i < n; ++i)
        out[i] = re[offset + i];
    return kSignalOk;
}
