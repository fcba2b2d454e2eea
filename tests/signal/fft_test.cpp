#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <vector>

#include "frame/kernels.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/block_failure.h"
#include "tests/support/fft_reference.h"
#include "velquad/signal.h"

using namespace velquad;
using namespace velquad::test;

namespace {

constexpr double kUntouched = 77.0;

Doubles randomSignal(std::mt19937& random, std::size_t count) {
    std::uniform_real_distribution<double> value(-10, 10);
    Doubles signal(count);
    for (double& v : signal)
        v = value(random);
    return signal;
}

unsigned int sizeOf(const Doubles& values) {
    return static_cast<unsigned int>(values.size());
}

struct Spectrum {
    Doubles re;
    Doubles im;

    explicit Spectrum(const Doubles& signal) : re(signal.size(), kUntouched), im(signal.size(), kUntouched) {
        EXPECT_EQ(matFFT(signal.data(), sizeOf(signal), re.data(), im.data()), 0U);
    }
};

TEST(Fft, OneValueIsItsOwnSpectrum) {
    const Spectrum spectrum({5.0});
    EXPECT_EQ(spectrum.re[0], 5.0);
    EXPECT_EQ(spectrum.im[0], 0.0);
    double re = 5.0, im = 1.0, out = 0.0;
    EXPECT_EQ(matInvFFT(&re, &im, 1, &out), 0U);
    EXPECT_EQ(out, 5.0);
}

TEST(Fft, TwoAndFourValuesByHand) {
    // Zero frequency stands at n / 2.
    const Spectrum two({3.0, 1.0});
    EXPECT_EQ(two.re, (Doubles{2.0, 4.0}));
    EXPECT_EQ(two.im, (Doubles{0.0, 0.0}));
    const Spectrum four({1.0, 2.0, 3.0, 4.0});
    EXPECT_EQ(four.re[0], -2.0);
    EXPECT_EQ(four.re[2], 10.0);
    EXPECT_NEAR(four.re[1], -2.0, 1e-10);
    EXPECT_NEAR(four.im[1], -2.0, 1e-10);
    EXPECT_NEAR(four.re[3], -2.0, 1e-10);
    EXPECT_NEAR(four.im[3], 2.0, 1e-10);
}

TEST(Fft, AConstantSignalPeaksInTheMiddle) {
    const Spectrum spectrum(Doubles(64, 1.0));
    for (std::size_t k = 0; k < 64; ++k) {
        EXPECT_NEAR(spectrum.re[k], k == 32 ? 64.0 : 0.0, 1e-9) << k;
        EXPECT_NEAR(spectrum.im[k], 0.0, 1e-9) << k;
    }
}

TEST(Fft, NoValuesAreDoneAtOnce) {
    double re = kUntouched, im = kUntouched, out = kUntouched;
    EXPECT_EQ(matFFT(&out, 0, &re, &im), 0U);
    EXPECT_EQ(matInvFFT(&re, &im, 0, &out), 0U);
    EXPECT_EQ(re, kUntouched);
    EXPECT_EQ(im, kUntouched);
    EXPECT_EQ(out, kUntouched);
}

TEST(Fft, OtherCountsThanPowersOfTwoAreRefused) {
    for (const unsigned int n : {3U, 5U, 6U, 12U, 1000U, 0xFFFFFFFFU}) {
        double re = kUntouched, im = kUntouched, out = kUntouched;
        EXPECT_EQ(matFFT(&out, n, &re, &im), 3U);
        EXPECT_EQ(matInvFFT(&re, &im, n, &out), 3U);
        EXPECT_EQ(re, kUntouched);
        EXPECT_EQ(im, kUntouched);
        EXPECT_EQ(out, kUntouched);
    }
}

TEST(Fft, NullArraysAreRefused) {
    double values[2] = {1, 2};
    EXPECT_EQ(matFFT(nullptr, 2, values, values), 3U);
    EXPECT_EQ(matFFT(values, 2, nullptr, values), 3U);
    EXPECT_EQ(matFFT(values, 2, values, nullptr), 3U);
    EXPECT_EQ(matInvFFT(nullptr, values, 2, values), 3U);
    EXPECT_EQ(matInvFFT(values, nullptr, 2, values), 3U);
    EXPECT_EQ(matInvFFT(values, values, 2, nullptr), 3U);
}

TEST(Fft, ThereAndBackIsTheSignalButForTheConstant) {
    std::mt19937 random(811);
    for (std::size_t n = 1; n <= 4096; n *= 2) {
        const Doubles signal = randomSignal(random, n);
        Spectrum spectrum(signal);
        Doubles back(n);
        EXPECT_EQ(matInvFFT(spectrum.re.data(), spectrum.im.data(), sizeOf(signal), back.data()), 0U);
        for (std::size_t k = 0; k < n; ++k)
            EXPECT_NEAR(back[k], signal[k], 1e-10) << n << " " << k;
    }
}

TEST(Fft, IsTheDirectSumButForTheConstant) {
    std::mt19937 random(812);
    const std::size_t n = 128;
    const Doubles signal = randomSignal(random, n);
    const Spectrum spectrum(signal);
    const long double pi = 3.14159265358979323846264338327950288L;
    for (std::size_t m = 0; m < n; ++m) {
        std::complex<long double> sum = 0;
        for (std::size_t k = 0; k < n; ++k) {
            const long double angle = -2.0L * pi * static_cast<long double>(k) *
                                      (static_cast<long double>(m) - static_cast<long double>(n) / 2) /
                                      static_cast<long double>(n);
            sum += static_cast<long double>(signal[k]) *
                   std::complex<long double>(std::cos(angle), std::sin(angle));
        }
        // 6.28318530718 is off by 4e-13; angles of up to 7 stages, sums of 128 values below 10.
        EXPECT_NEAR(spectrum.re[m], static_cast<double>(sum.real()), 1e-9);
        EXPECT_NEAR(spectrum.im[m], static_cast<double>(sum.imag()), 1e-9);
    }
}

TEST(Fft, TheSignalMayBeTheRealPart) {
    std::mt19937 random(813);
    Doubles signal = randomSignal(random, 64);
    const Spectrum apart(signal);
    Doubles im(64);
    EXPECT_EQ(matFFT(signal.data(), 64, signal.data(), im.data()), 0U);
    EXPECT_EQ(signal, apart.re);
    EXPECT_EQ(im, apart.im);
}

/// Bit for bit but for not-a-numbers, whose sign and payload do not count.
void expectSame(const Doubles& actual, const Doubles& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        const bool isSame =
            (actual[i] == expected[i] && std::signbit(actual[i]) == std::signbit(expected[i])) ||
            (actual[i] != actual[i] && expected[i] != expected[i]);
        ASSERT_TRUE(isSame) << i << ": " << actual[i] << " not " << expected[i];
    }
}

TEST(Fft, EveryLevelGivesTheBitsOfThePlainLoops) {
    std::mt19937 random(814);
    const std::size_t usual = frame::kernelLevel();
    for (std::size_t level = 0; level < frame::kernelLevelCount(); ++level) {
        frame::selectKernelLevel(level);
        for (std::size_t n = 1; n <= 131072; n *= 2) {
            SCOPED_TRACE(testing::Message() << frame::kernelLevelName(level) << " " << n);
            Doubles signal = randomSignal(random, n);
            if (n > 4) signal[n / 3] = -0.0;
            if (n == 32) signal[5] = std::numeric_limits<double>::infinity();
            Spectrum spectrum(signal);
            Doubles re, im;
            fftReference(signal, re, im);
            expectSame(spectrum.re, re);
            expectSame(spectrum.im, im);
            Doubles back(n);
            const Doubles expected = inverseReference(re, im);
            ASSERT_EQ(matInvFFT(spectrum.re.data(), spectrum.im.data(), sizeOf(signal), back.data()), 0U);
            expectSame(back, expected);
        }
    }
    frame::selectKernelLevel(usual);
}

TEST(Fft, ZerosKeepTheirSigns) {
    Doubles signal(64, 0.0);
    for (std::size_t k = 0; k < 64; k += 3)
        signal[k] = -0.0;
    const Spectrum spectrum(signal);
    Doubles re, im;
    fftReference(signal, re, im);
    expectSame(spectrum.re, re);
    expectSame(spectrum.im, im);
}

TEST(Fft, LackOfMemoryAndOfALockHaveTheirOwnStatus) {
    Doubles re(16, 1.0), im(16, 1.0);
    forEachFailingAllocation([&] { return matFFT(re.data(), 16, re.data(), im.data()) == 1; });
    forEachFailingAllocation([&] { return matInvFFT(re.data(), im.data(), 16, re.data()) == 1; });
    failNextBlockCall(BlockCall::kLock);
    EXPECT_EQ(matFFT(re.data(), 16, re.data(), im.data()), 2U);
    failNextBlockCall(BlockCall::kLock);
    EXPECT_EQ(matInvFFT(re.data(), im.data(), 16, re.data()), 2U);
}

TEST(Fft, WithoutMemoryTheResultHoldsThePreparedElements) {
    for (const unsigned int n : {4U, 128U}) {
        const Doubles signal(n, 3.0);
        Doubles re(n, kUntouched), im(n, kUntouched), out(n, kUntouched);
        failNextBlockCall(BlockCall::kLock);
        EXPECT_EQ(matFFT(signal.data(), n, re.data(), im.data()), 2U);
        for (std::size_t k = 0; k < n; ++k) {
            EXPECT_EQ(re[k], k % 2 == 0 ? 3.0 : -3.0);
            EXPECT_EQ(im[k], 0.0);
            im[k] = 2.0;
        }
        failNextBlockCall(BlockCall::kLock);
        EXPECT_EQ(matInvFFT(re.data(), im.data(), n, out.data()), 2U);
        for (std::size_t k = 0; k < n; ++k) {
            EXPECT_EQ(re[k], (k % 2 == 0 ? 3.0 : -3.0) / n);
            EXPECT_EQ(im[k], 2.0 / n);
            EXPECT_EQ(out[k], kUntouched);
        }
    }
}

TEST(WindowFft, CoversTheLargestPowerOfTwo) {
    Doubles re(1000, 1.0), im(1000, 2.0);
    EXPECT_EQ(matWindowFFT(re.data(), im.data(), 1000, 1), 0U);
    for (std::size_t i = 0; i < 1000; ++i) {
        EXPECT_EQ(re[i] == 1.0, i >= 512) << i;
        EXPECT_EQ(im[i], 2.0 * re[i]) << i;
    }
    EXPECT_LT(re[511], 0.01);
}

TEST(WindowFft, EveryPowerOfTwoIsCoveredWhole) {
    for (unsigned int n = 1; n <= 65536; n *= 2) {
        Doubles re(n + 1, 1.0), im(n + 1, 1.0);
        EXPECT_EQ(matWindowFFT(re.data(), im.data(), n, 1), 0U);
        EXPECT_NE(re[n - 1], n == 1 ? 0.0 : 1.0) << n;
        EXPECT_EQ(re[n], 1.0) << n;
    }
    Doubles re(4, 1.0), im(4, 1.0);
    EXPECT_EQ(matWindowFFT(re.data(), im.data(), 3, 1), 0U);
    EXPECT_NE(re[1], 1.0);
    EXPECT_EQ(re[2], 1.0);
}

TEST(WindowFft, WeightsByHand) {
    const auto window = [](unsigned short kind) {
        Doubles re(4, 1.0), im(4, -2.0);
        EXPECT_EQ(matWindowFFT(re.data(), im.data(), 4, kind), 0U);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(im[i], -2.0 * re[i]);
        return re;
    };
    // (i - 1.5) / 2.5
    EXPECT_EQ(window(1), (Doubles{1 - 0.6, 1 - 0.2, 1 - 0.2, 1 - 0.6}));
    EXPECT_EQ(window(3), (Doubles{1 - 0.6 * 0.6, 1 - 0.2 * 0.2, 1 - 0.2 * 0.2, 1 - 0.6 * 0.6}));
    const Doubles hann = window(2);
    EXPECT_EQ(hann[0], 0.0);
    EXPECT_NEAR(hann[1], 0.5, 1e-12);
    EXPECT_NEAR(hann[2], 1.0, 1e-12);
    EXPECT_NEAR(hann[3], 0.5, 1e-12);
    const Doubles blackman = window(4);
    EXPECT_NEAR(blackman[0], 0.0, 1e-12);
    EXPECT_NEAR(blackman[1], 0.34, 1e-12);
    EXPECT_NEAR(blackman[2], 1.0, 1e-12);
    EXPECT_NEAR(blackman[3], 0.34, 1e-12);
}

TEST(WindowFft, WeightsHaveTheBitsOfTheirFormulas) {
    const auto weightOf = [](unsigned short kind, double i, double l) {
        const double t = (i - (l - 1.0) * 0.5) / ((l + 1.0) * 0.5);
        const double turn = i * 6.28318530718 / l;
        switch (kind) {
            case 1:
                return 1.0 - std::fabs(t);
            case 2:
                return (1.0 - std::cos(turn)) * 0.5;
            case 3:
                return 1.0 - t * t;
            default:
                return std::cos(i * 12.56637061436 / l) * 0.08 + (0.42 - std::cos(turn) * 0.5);
        }
    };
    std::mt19937 random(816);
    const Doubles signal = randomSignal(random, 300);
    for (const unsigned short kind : std::initializer_list<unsigned short>{1, 2, 3, 4}) {
        Doubles re = signal, im(signal.rbegin(), signal.rend());
        EXPECT_EQ(matWindowFFT(re.data(), im.data(), 300, kind), 0U);
        for (std::size_t i = 0; i < 300; ++i) {
            const double weight = i < 256 ? weightOf(kind, static_cast<double>(i), 256.0) : 1.0;
            EXPECT_EQ(re[i], signal[i] * weight) << kind << ", " << i;
            EXPECT_EQ(im[i], signal[299 - i] * weight) << kind << ", " << i;
        }
    }
}

TEST(WindowFft, OtherKindsChangeNothing) {
    for (const unsigned short kind : std::initializer_list<unsigned short>{0, 5, 65535}) {
        Doubles re = {1, 2, 3, 4}, im = {5, 6, 7, 8};
        EXPECT_EQ(matWindowFFT(re.data(), im.data(), 4, kind), 0U);
        EXPECT_EQ(re, (Doubles{1, 2, 3, 4}));
        EXPECT_EQ(im, (Doubles{5, 6, 7, 8}));
    }
}

TEST(WindowFft, NoElementsAreLeftAlone) {
    double re = kUntouched, im = kUntouched;
    EXPECT_EQ(matWindowFFT(&re, &im, 0, 1), 0U);
    EXPECT_EQ(matWindowFFT(nullptr, nullptr, 4, 1), 0U);
    EXPECT_EQ(re, kUntouched);
}

TEST(MapFft, EachMode) {
    const Doubles re = {3, -2}, im = {-4, 0.5};
    const auto map = [&](unsigned short mode) {
        Doubles out(2, kUntouched);
        EXPECT_EQ(matMapFFTData(re.data(), im.data(), out.data(), 2, mode), 0U);
        return out;
    };
    EXPECT_EQ(map(1), (Doubles{25, 4.25}));
    EXPECT_EQ(map(2), (Doubles{5, std::sqrt(4.25)}));
    EXPECT_EQ(map(3), re);
    EXPECT_EQ(map(4), (Doubles{3, 2}));
    EXPECT_EQ(map(5), im);
    EXPECT_EQ(map(6), (Doubles{4, 0.5}));
}

TEST(MapFft, OtherModesAndNullArraysWriteNothing) {
    const double value = 1.0;
    double out = kUntouched;
    for (const unsigned short mode : std::initializer_list<unsigned short>{0, 7, 65535})
        EXPECT_EQ(matMapFFTData(&value, &value, &out, 1, mode), 3U);
    EXPECT_EQ(matMapFFTData(nullptr, &value, &out, 1, 1), 3U);
    EXPECT_EQ(matMapFFTData(&value, nullptr, &out, 1, 1), 3U);
    EXPECT_EQ(matMapFFTData(&value, &value, nullptr, 1, 1), 3U);
    EXPECT_EQ(matMapFFTData(&value, &value, &out, 0, 1), 0U);
    EXPECT_EQ(matMapFFTData(nullptr, nullptr, nullptr, 0, 1), 0U);
    EXPECT_EQ(matMapFFTData(nullptr, nullptr, nullptr, 0, 7), 3U);
    EXPECT_EQ(out, kUntouched);
}

TEST(FftSmooth, NeedsSixteenSamplesAndFewerThan65536) {
    Doubles in(65536, 1.0), out(65536, kUntouched);
    EXPECT_EQ(matFFTSmooth(in.data(), 0, out.data(), 1), 3U);
    EXPECT_EQ(matFFTSmooth(in.data(), 15, out.data(), 1), 3U);
    EXPECT_EQ(matFFTSmooth(in.data(), 65536, out.data(), 1), 3U);
    EXPECT_EQ(matFFTSmooth(in.data(), 0x10000001U, out.data(), 1), 3U);
    EXPECT_EQ(matFFTSmooth(in.data(), 0xFFFFFFFFU, out.data(), 1), 3U);
    EXPECT_EQ(matFFTSmooth(nullptr, 16, out.data(), 1), 3U);
    EXPECT_EQ(matFFTSmooth(in.data(), 16, nullptr, 1), 3U);
    EXPECT_EQ(out[0], kUntouched);
    EXPECT_EQ(matFFTSmooth(in.data(), 16, out.data(), 1), 0U);
    EXPECT_EQ(matFFTSmooth(in.data(), 65535, out.data(), 1), 0U);
}

TEST(FftSmooth, WithoutAWindowTheSamplesComeBack) {
    std::mt19937 random(821);
    for (const std::size_t n : {16U, 17U, 31U, 32U, 63U, 64U, 1000U}) {
        const Doubles in = randomSignal(random, n);
        Doubles out(n + 1, kUntouched);
        EXPECT_EQ(matFFTSmooth(in.data(), sizeOf(in), out.data(), 0), 0U);
        for (std::size_t i = 0; i < n; ++i)
            EXPECT_NEAR(out[i], in[i], 1e-9);
        EXPECT_EQ(out[n], kUntouched);
    }
}

TEST(FftSmooth, AWindowTakesTheHighFrequencies) {
    Doubles in(100), out(100);
    for (std::size_t i = 0; i < in.size(); ++i)
        in[i] = i % 2 == 0 ? 1.0 : -1.0;
    for (const unsigned int kind : {1U, 2U, 3U, 4U}) {
        EXPECT_EQ(matFFTSmooth(in.data(), 100, out.data(), kind), 0U);
        for (std::size_t i = 10; i < 90; ++i)
            EXPECT_LT(std::fabs(out[i]), 0.05) << kind;
    }
}

TEST(FftSmooth, IsWindowingTheSpectrumOfTheSamplesAndTheirRamp) {
    // 17 samples in the middle of 32: 7 before, 8 behind, along a slope of (16 * 16 - 0) / 16.
    Doubles in(17);
    for (std::size_t i = 0; i < 17; ++i)
        in[i] = static_cast<double>(i * i);
    Doubles period(32);
    for (std::size_t i = 0; i < 17; ++i)
        period[7 + i] = in[i];
    for (std::size_t i = 7; i-- > 0;)
        period[i] = period[i + 1] - 16.0;
    for (std::size_t i = 24; i < 32; ++i)
        period[i] = period[i - 1] + 16.0;
    EXPECT_EQ(period[0], -112.0);
    EXPECT_EQ(period[31], 384.0);
    Spectrum spectrum(period);
    matWindowFFT(spectrum.re.data(), spectrum.im.data(), 32, 2);
    Doubles back(32);
    matInvFFT(spectrum.re.data(), spectrum.im.data(), 32, back.data());
    Doubles out(17);
    EXPECT_EQ(matFFTSmooth(in.data(), 17, out.data(), 2), 0U);
    EXPECT_EQ(out, Doubles(back.begin() + 7, back.begin() + 24));
    // The low 16 bits of the kind count.
    Doubles again(17);
    EXPECT_EQ(matFFTSmooth(in.data(), 17, again.data(), 0x10002), 0U);
    EXPECT_EQ(again, out);
}

TEST(FftSmooth, TheRampAddsUpStepByStep) {
    std::mt19937 random(817);
    for (const std::size_t n : {16U, 31U, 50U, 63U, 64U}) {
        const Doubles in = randomSignal(random, n);
        const std::size_t length = n < 32 ? 32 : n < 64 ? 64 : 128;
        const std::size_t offset = (length - n) / 2;
        const double slope = (in[n - 1] - in[0]) / static_cast<double>(length - n + 1);
        Doubles period(length);
        for (std::size_t i = 0; i < n; ++i)
            period[offset + i] = in[i];
        for (std::size_t i = offset; i-- > 0;)
            period[i] = period[i + 1] - slope;
        for (std::size_t i = offset + n; i < length; ++i)
            period[i] = period[i - 1] + slope;
        Spectrum spectrum(period);
        matWindowFFT(spectrum.re.data(), spectrum.im.data(), sizeOf(period), 4);
        Doubles back(length), out(n);
        matInvFFT(spectrum.re.data(), spectrum.im.data(), sizeOf(period), back.data());
        EXPECT_EQ(matFFTSmooth(in.data(), sizeOf(in), out.data(), 4), 0U);
        for (std::size_t i = 0; i < n; ++i)
            EXPECT_EQ(out[i], back[offset + i]) << n << ", " << i;
    }
}

TEST(FftSmooth, LackOfMemoryAndOfALockHaveTheirOwnStatus) {
    const Doubles in(20, 1.0);
    Doubles out(20, kUntouched);
    forEachFailingAllocation([&] { return matFFTSmooth(in.data(), 20, out.data(), 1) == 1; });
    failNextBlockCall(BlockCall::kLock);
    EXPECT_EQ(matFFTSmooth(in.data(), 20, out.data(), 1), 2U);
}

template <class Pixel>
Doubles amplitudesOf(const std::vector<Pixel>& pixels, int width, int height, int count) {
    Doubles amplitudes(10, kUntouched);
    matGet8Amplitudes(pixels.data(), CSize(width, height), amplitudes.data(), count);
    return amplitudes;
}

TEST(Amplitudes, AConstantImageLiesInBinZero) {
    const std::vector<unsigned char> pixels(16 * 16, 10);
    const Doubles amplitudes = amplitudesOf(pixels, 16, 16, 8);
    // Two blocks of (8 * 10)^2 over 256 pixels.
    EXPECT_NEAR(amplitudes[0], 2 * 6400.0 / 256.0, 1e-4);
    for (std::size_t bin = 1; bin < 8; ++bin)
        EXPECT_NEAR(amplitudes[bin], 0.0, 1e-6);
    EXPECT_EQ(amplitudes[8], kUntouched);
}

TEST(Amplitudes, OnlyTheLastRowOfBlocksCounts) {
    std::vector<unsigned short> pixels(8 * 24, 0);
    for (std::size_t i = 0; i < 8 * 16; ++i)
        pixels[i] = static_cast<unsigned short>(i * 31);
    EXPECT_EQ(amplitudesOf(pixels, 8, 24, 8), (Doubles{0, 0, 0, 0, 0, 0, 0, 0, kUntouched, kUntouched}));
    pixels[8 * 16] = 64;
    EXPECT_GT(amplitudesOf(pixels, 8, 24, 8)[0], 0.0);
}

TEST(Amplitudes, AHeightThatIsNoMultipleReadsBelowTheImage) {
    std::vector<unsigned char> pixels(8 * 16, 0);
    for (std::size_t i = 8 * 15; i < pixels.size(); ++i)
        pixels[i] = 100;
    EXPECT_GT(amplitudesOf(pixels, 8, 9, 8)[0], 0.0);
}

TEST(Amplitudes, ColumnsOnTheLeftMayTakeNoPart) {
    std::vector<unsigned char> pixels(11 * 8, 0);
    for (std::size_t row = 0; row < 8; ++row)
        pixels[row * 11] = pixels[row * 11 + 2] = 255;
    EXPECT_EQ(amplitudesOf(pixels, 11, 8, 8)[0], 0.0);
    pixels[3] = 255;
    EXPECT_GT(amplitudesOf(pixels, 11, 8, 8)[0], 0.0);
}

TEST(Amplitudes, ANarrowImageHasNone) {
    const std::vector<unsigned char> pixels(7 * 8, 200);
    EXPECT_EQ(amplitudesOf(pixels, 7, 8, 3), (Doubles{0, 0, 0, kUntouched, kUntouched, kUntouched, kUntouched,
                                                      kUntouched, kUntouched, kUntouched}));
}

TEST(Amplitudes, AnEmptyImageWritesNothing) {
    const std::vector<unsigned char> pixels(8, 200);
    for (const auto& [width, height] : {std::pair{0, 8}, {8, 0}, {-8, 8}, {8, -8}})
        EXPECT_EQ(amplitudesOf(pixels, width, height, 8), Doubles(10, kUntouched));
}

TEST(Amplitudes, NullArraysAreLeftAlone) {
    const std::vector<unsigned char> pixels(64, 200);
    Doubles amplitudes(8, kUntouched);
    const unsigned char* none = nullptr;
    matGet8Amplitudes(none, CSize(8, 8), amplitudes.data(), 8);
    matGet8Amplitudes(pixels.data(), CSize(8, 8), nullptr, 8);
    EXPECT_EQ(amplitudes, Doubles(8, kUntouched));
}

TEST(Amplitudes, EightAreWrittenAtMost) {
    const std::vector<unsigned char> pixels(64, 200);
    const Doubles amplitudes = amplitudesOf(pixels, 8, 8, 100);
    EXPECT_NE(amplitudes[7], kUntouched);
    EXPECT_EQ(amplitudes[8], kUntouched);
    EXPECT_EQ(amplitudesOf(pixels, 8, 8, 0), Doubles(10, kUntouched));
    EXPECT_EQ(amplitudesOf(pixels, 8, 8, -3), Doubles(10, kUntouched));
}

TEST(Amplitudes, ACosineLiesInTheBinOfItsFrequency) {
    // Frequency (3, 4): the distance 5.
    std::vector<unsigned short> pixels(64);
    const double pi = 3.14159265358979;
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            pixels[static_cast<std::size_t>(8 * y + x)] = static_cast<unsigned short>(
                30000.5 + 20000 * std::cos((2 * x + 1) * 3 * pi / 16) * std::cos((2 * y + 1) * 4 * pi / 16));
        }
    }
    const Doubles amplitudes = amplitudesOf(pixels, 8, 8, 8);
    for (std::size_t bin = 1; bin < 8; ++bin) {
        if (bin != 5) {
            EXPECT_LT(amplitudes[bin], 1e-3 * amplitudes[5]) << bin;
        }
    }
    // The coefficient is 20000 * 4 = 80000; bin 5 has the 8 places with distances from 4.5 to 5.5.
    EXPECT_NEAR(amplitudes[5], 80000.0 * 80000.0 / 8 / 64, 1e-3 * amplitudes[5]);
}

/// The last row of blocks, transformed in single precision along the rows and then along the columns.
Doubles amplitudesReference(const std::vector<unsigned short>& pixels, int width, int height) {
    constexpr std::size_t kSide = 8;
    float basis[kSide][kSide];
    for (std::size_t u = 0; u < kSide; ++u) {
        for (std::size_t x = 0; x < kSide; ++x) {
            const double angle = static_cast<double>((2 * x + 1) * u) * 3.141592653589793 / 16.0;
            basis[u][x] = static_cast<float>((u == 0 ? std::sqrt(0.125) : 0.5) * std::cos(angle));
        }
    }
    const auto columns = static_cast<std::size_t>(width);
    const std::size_t firstRow = (static_cast<std::size_t>(height) - 1) / kSide * kSide;
    double sums[kSide][kSide] = {};
    for (std::size_t block = 1; block <= columns / kSide; ++block) {
        float along[kSide][kSide] = {};
        for (std::size_t y = 0; y < kSide; ++y) {
            const unsigned short* row = &pixels[(firstRow + y) * columns + columns - block * kSide];
            for (std::size_t u = 0; u < kSide; ++u) {
                for (std::size_t x = 0; x < kSide; ++x)
                    along[y][u] += static_cast<float>(row[x]) * basis[u][x];
            }
        }
        for (std::size_t u = 0; u < kSide; ++u) {
            for (std::size_t v = 0; v < kSide; ++v) {
                float coefficient = 0.0F;
                for (std::size_t y = 0; y < kSide; ++y)
                    coefficient += basis[v][y] * along[y][u];
                sums[u][v] += static_cast<double>(coefficient * coefficient);
            }
        }
    }
    Doubles amplitudes(10, kUntouched);
    for (std::size_t bin = 0; bin < 8; ++bin) {
        double sum = 0.0, weight = 0.0;
        for (std::size_t r = 0; r < kSide; ++r) {
            for (std::size_t c = 0; c < kSide; ++c) {
                const double distance = std::sqrt(static_cast<double>(r * r + c * c));
                if (distance < static_cast<double>(bin) - 0.5 || distance >= static_cast<double>(bin) + 0.5)
                    continue;
                sum += sums[r][c];
                weight += 1.0;
            }
        }
        amplitudes[bin] = sum / weight / (static_cast<double>(width) * static_cast<double>(height));
    }
    return amplitudes;
}

TEST(Amplitudes, HaveTheBitsOfThePlainSums) {
    std::mt19937 random(818);
    for (const auto& [width, height] : {std::pair{8, 8}, {13, 8}, {41, 24}, {64, 19}}) {
        std::vector<unsigned short> pixels(static_cast<std::size_t>(width) * 24);
        for (unsigned short& pixel : pixels)
            pixel = static_cast<unsigned short>(random());
        EXPECT_EQ(amplitudesOf(pixels, width, height, 8), amplitudesReference(pixels, width, height))
            << width << " by " << height;
    }
}

TEST(Amplitudes, TwoNegativeSizesHaveNone) {
    const std::vector<unsigned char> pixels(64, 200);
    EXPECT_EQ(amplitudesOf(pixels, -8, -8, 8), (Doubles{0, 0, 0, 0, 0, 0, 0, 0, kUntouched, kUntouched}));
}

TEST(Amplitudes, BothPixelTypesGiveTheSameBits) {
    std::mt19937 random(815);
    std::vector<unsigned char> bytes(40 * 24);
    std::vector<unsigned short> words(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
        words[i] = bytes[i] = static_cast<unsigned char>(random());
    EXPECT_EQ(amplitudesOf(bytes, 40, 24, 8), amplitudesOf(words, 40, 24, 8));
}

}  // namespace
