// Noisy curves smoothed, their spectra under windows, a line between extremes, and a distribution freed of its
// self-convolution.
#include <velquad/signal.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "noise.h"
#include "pictures.h"
#include "plot.h"

namespace gallery {
namespace {

using Samples = std::vector<double>;

constexpr int kZoom = 7;
/// Columns of a canvas of panels, one below the other, with `kMargin` cells around them.
constexpr int kColumns = 134;
constexpr int kMargin = 2;
constexpr unsigned int kCount = 128;
/// One sample a column, and a free one on each side.
constexpr Interval kPlaces{-1.0, 128.0};

void expectDone(unsigned int status, const char* name) {
    if (status != 0) throw std::runtime_error(std::string(name) + " failed");
}

tagMAT_RECT2D panel(int index, int rows) {
    const int top = kMargin + index * (rows + kMargin);
    return {static_cast<double>(kMargin), static_cast<double>(top),
            static_cast<double>(kColumns - 1 - kMargin), static_cast<double>(top + rows - 1)};
}

/// 1 in the middle, with zeros of fourth order at a distance of 1: a bell, made of products alone.
double bell(double t) {
    const double inside = std::max(0.0, 1.0 - t * t);
    return inside * inside * inside * inside;
}

/// Two broad bells, two narrow ones and a plateau with steep edges.
Samples cleanProfile() {
    Samples profile(kCount);
    for (unsigned int i = 0; i < kCount; ++i) {
        const double x = i;
        profile[i] = 0.6 * bell((x - 22.0) / 26.0) + 0.9 * bell((x - 50.0) / 8.0) +
                     0.75 * bell((x - 63.0) / 8.0) + (i >= 78 && i < 96 ? 0.7 : 0.0) +
                     0.5 * bell((x - 112.0) / 20.0);
    }
    return profile;
}

Samples noisyProfile() {
    Noise noise(1964);
    Samples profile = cleanProfile();
    for (double& sample : profile)
        sample += 0.16 * noise.bell();
    return profile;
}

struct Spectrum {
    Samples real;
    Samples imaginary;
};

/// Amplitudes in powers of ten.
Samples decades(const Spectrum& spectrum) {
    Samples amplitudes(kCount);
    expectDone(matMapFFTData(spectrum.real.data(), spectrum.imaginary.data(), amplitudes.data(), kCount, 2),
               "matMapFFTData");
    for (double& amplitude : amplitudes)
        amplitude = amplitude > 0.0 ? std::log10(amplitude) : -100.0;
    return amplitudes;
}

/// Bends upwards and downwards by turns, each for one unit of t; made of products alone.
double wave(double t) {
    const double whole = std::floor(t);
    const double part = t - whole;
    const double bend = 4.0 * part * (1.0 - part);
    return std::fmod(whole, 2.0) == 0.0 ? bend : -bend;
}

/// A slow wave that carries a quick one of changing strength, which pauses once.
Samples carriedWave() {
    Samples curve(kCount);
    for (unsigned int i = 0; i < kCount; ++i) {
        const double x = i;
        const double strength = i < 60 ? 0.25 + 0.5 * bell((x - 24.0) / 30.0) : i < 88 ? 0.0 : 0.5;
        curve[i] = 0.8 * wave(x / 48.0) + strength * wave(x / 3.0);
    }
    return curve;
}

/// A distribution of single events, in parts of all measurements.
Samples singleEvents() {
    Samples events(kCount);
    for (unsigned int i = 6; i < kCount; ++i) {
        const double x = i;
        events[i] = 0.045 * bell((x - 30.0) / 14.0) + 0.012 * bell((x - 38.0) / 20.0) + 0.02 / (x * x);
    }
    return events;
}

/// Samples of the leading peak, which no event makes.
constexpr unsigned int kPeak = 3;

/// What is measured of single events that meet by chance: nothing, one, two at once and so on, by a series of
/// convolutions. Nothing has the area 1.
Samples measured(const Samples& events) {
    constexpr int kMostAtOnce = 24;
    Samples sum(kCount);
    Samples term(kCount);
    term[0] = 1.0;
    for (int k = 1; k <= kMostAtOnce; ++k) {
        Samples next(kCount);
        for (std::size_t i = 0; i < kCount; ++i) {
            for (std::size_t j = 0; j <= i; ++j)
                next[i] += term[i - j] * events[j] / k;
            sum[i] += next[i];
        }
        term = next;
    }
    const double peak[kPeak] = {0.75, 0.21, 0.04};
    for (std::size_t i = 0; i < kPeak; ++i)
        sum[i] += peak[i];
    return sum;
}

double areaOf(const Samples& curve, unsigned int count) {
    double area = 0.0;
    for (unsigned int i = 0; i < count; ++i)
        area += curve[i];
    return area;
}

}  // namespace

Canvas drawSmoothing() {
    constexpr int kRows = 25;
    constexpr unsigned int kWidthOf13 = 5;
    constexpr unsigned int kBlackman = 4;
    Canvas canvas(kColumns, kMargin + 3 * (kRows + kMargin), kZoom);
    const Samples clean = cleanProfile();
    const Samples noisy = noisyProfile();
    Samples smooth[3] = {Samples(kCount), Samples(kCount), Samples(kCount)};
    expectDone(matSavitzkyGolay(noisy.data(), kCount, smooth[0].data(), kWidthOf13, 0, 0),
               "matSavitzkyGolay");
    expectDone(matMeanValue(noisy.data(), static_cast<int>(kCount), smooth[1].data(), 13), "matMeanValue");
    expectDone(matFFTSmooth(noisy.data(), kCount, smooth[2].data(), kBlackman), "matFFTSmooth");
    const Rgb colours[] = {kOrange, kBlue, kGreen};
    for (int i = 0; i < 3; ++i) {
        const Plot plot(canvas, panel(i, kRows), kPlaces, {-0.2, 1.1});
        plot.level(0.0, 1.5, kFaint);
        plot.dots(noisy, 2.5, kFaint);
        plot.curve(clean, 1.5, kInk);
        plot.curve(smooth[i], 3.0, colours[i]);
    }
    return canvas;
}

Canvas drawWindows() {
    constexpr int kRows = 21;
    Canvas canvas(kColumns, kMargin + 4 * (kRows + kMargin), kZoom);
    const Samples noisy = noisyProfile();
    Spectrum spectrum{Samples(kCount), Samples(kCount)};
    expectDone(matFFT(noisy.data(), kCount, spectrum.real.data(), spectrum.imaginary.data()), "matFFT");
    const Rgb colours[] = {kOrange, kBlue, kGreen, kViolet};
    for (unsigned short kind = 1; kind <= 4; ++kind) {
        const tagMAT_RECT2D area = panel(kind - 1, kRows);
        const Plot plot(canvas, area, kPlaces, {-2.5, 2.0});
        Spectrum windowed = spectrum;
        matWindowFFT(windowed.real.data(), windowed.imaginary.data(), kCount, kind);
        plot.bars(decades(spectrum), 4.0, kFaint);
        plot.bars(decades(windowed), 4.0, colours[kind - 1]);
        // A spectrum of ones becomes the window itself.
        Spectrum ones{Samples(kCount, 1.0), Samples(kCount)};
        matWindowFFT(ones.real.data(), ones.imaginary.data(), kCount, kind);
        Plot(canvas, area, kPlaces, {0.0, 1.05}).curve(ones.real, 2.0, kInk);
    }
    return canvas;
}

Canvas drawMeanEnvelope() {
    constexpr int kRows = 37;
    Canvas canvas(kColumns, kMargin + 2 * (kRows + kMargin), kZoom);
    const Samples curve = carriedWave();
    int index = 0;
    for (const unsigned int rounds : {1U, 4U}) {
        Samples line(kCount);
        expectDone(matMeanEnvelope(curve.data(), kCount, line.data(), rounds, 8), "matMeanEnvelope");
        const Plot plot(canvas, panel(index, kRows), kPlaces, {-1.1, 1.7});
        plot.level(0.0, 1.5, kFaint);
        plot.curve(curve, 1.5, kInk);
        plot.dots(curve, 2.5, kInk);
        plot.curve(line, 3.5, index == 0 ? kOrange : kBlue);
        ++index;
    }
    return canvas;
}

Canvas drawDeconvolution() {
    constexpr int kRows = 37;
    constexpr unsigned short kHighestTerm = 40;
    Canvas canvas(kColumns, kMargin + 2 * (kRows + kMargin), kZoom);
    const Samples events = singleEvents();
    const Samples curve = measured(events);
    int index = 0;
    for (unsigned short method = 1; method <= 2; ++method) {
        Samples result(kCount);
        expectDone(matDeconvolution(curve.data(), kCount, result.data(), 0, kPeak, 1.0, kHighestTerm, method),
                   "matDeconvolution");
        // The first method counts in areas of the peak, the second one in areas of the curve.
        const double unit = areaOf(curve, method == 1 ? kPeak : kCount);
        for (double& value : result)
            value /= unit;
        const Plot plot(canvas, panel(index, kRows), kPlaces, {0.0, 0.06});
        plot.bars(curve, 4.0, kFaint);
        plot.curve(result, 3.5, index == 0 ? kOrange : kBlue);
        plot.dots(events, 2.0, kInk);
        ++index;
    }
    return canvas;
}

}  // namespace gallery
