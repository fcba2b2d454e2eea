// Polynomials through noisy points, a pattern found by correlation, and the zero crossings of a curve.
#include <velquad/fitting.h>
#include <velquad/signal.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

#include "noise.h"
#include "pictures.h"

namespace gallery {
namespace {

/// Joins points by straight lines.
void strokeCurve(Canvas& canvas, const std::vector<tagPOINT2D>& points, double width, Rgb colour) {
    for (std::size_t i = 1; i < points.size(); ++i)
        canvas.stroke(points[i - 1], points[i], width, colour);
}

/// Where the samples of a curve stand on a canvas. Values grow upwards.
struct Axes {
    double left = 0.0;
    double columnsPerSample = 1.0;
    double zeroRow = 0.0;
    double rowsPerUnit = 1.0;

    tagPOINT2D operator()(double position, double value) const {
        return {left + columnsPerSample * position, zeroRow - rowsPerUnit * value};
    }
};

/// The samples as points, the first one at `start`.
std::vector<tagPOINT2D> onAxes(const Axes& axes, const std::vector<double>& samples, double start = 0.0) {
    std::vector<tagPOINT2D> points;
    for (std::size_t i = 0; i < samples.size(); ++i)
        points.push_back(axes(start + static_cast<double>(i), samples[i]));
    return points;
}

/// Points around a cubic, with x in [-1, 1], where powers stay apart in size.
struct Samples {
    std::vector<double> x;
    std::vector<double> y;
};

Samples noisyCubic() {
    constexpr int kCount = 21;
    Noise noise(11);
    Samples samples;
    for (int i = 0; i < kCount; ++i) {
        const double x = -1.0 + 2.0 * i / (kCount - 1);
        samples.x.push_back(x);
        samples.y.push_back(2.2 * x * x * x - 1.5 * x + 0.2 + 0.5 * noise.bell());
    }
    return samples;
}

/// Fits a polynomial and draws it over the whole interval.
void strokeFit(Canvas& canvas, const Axes& axes, Samples& samples, int degree, Rgb colour) {
    std::vector<double> coefficients(static_cast<std::size_t>(degree) + 1);
    const int count = degree + 1;
    if (!matPolynomFit(samples.x.data(), samples.y.data(), static_cast<int>(samples.x.size()),
                       coefficients.data(), count, nullptr))
        throw std::runtime_error("no polynomial fits the points");
    constexpr int kSteps = 400;
    std::vector<tagPOINT2D> curve;
    for (int i = 0; i <= kSteps; ++i) {
        const double x = -1.0 + 2.0 * i / kSteps;
        double y = 0.0;
        matPolynomEval(coefficients.data(), count, x, y);
        curve.push_back(axes(x, y));
    }
    strokeCurve(canvas, curve, 4.0, colour);
}

/// A steep rise, a slower fall and an undershoot, within [-0.5, 1].
std::vector<double> pulse() {
    return {0.0,  0.05, 0.2,  0.55, 0.85, 1.0,   0.95,  0.8,  0.65,  0.5,   0.35,  0.2, 0.05,
            -0.1, -0.2, -0.3, -0.4, -0.5, -0.45, -0.35, -0.3, -0.25, -0.15, -0.05, -0.0};
}

constexpr std::size_t kUpright = 34;
constexpr std::size_t kUpsideDown = 98;

/// Noise on a slow bend, with the pulse added at two places, once upside down.
std::vector<double> signalWith(const std::vector<double>& pattern) {
    constexpr int kCount = 149;
    Noise noise(3);
    std::vector<double> signal;
    for (int i = 0; i < kCount; ++i) {
        const double t = 2.0 * i / (kCount - 1) - 1.0;
        signal.push_back(0.6 * t * t - 0.4 + 0.35 * noise.bell());
    }
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        signal[kUpright + i] += 0.7 * pattern[i];
        signal[kUpsideDown + i] -= 0.7 * pattern[i];
    }
    return signal;
}

/// One number for each shift of the pattern along the signal.
std::vector<double> correlate(const std::vector<double>& pattern, const std::vector<double>& signal) {
    std::vector<double> trace(signal.size());
    void* handle = fnrInitCorrelation(pattern.data(), static_cast<int>(pattern.size()));
    const int count = fnrDoCorrelation(handle, signal.data(), static_cast<unsigned int>(signal.size()),
                                       trace.data(), static_cast<int>(trace.size()));
    fnrExitCorrelation(&handle);
    if (count < 0) throw std::runtime_error("no correlation");
    trace.resize(static_cast<std::size_t>(count));
    return trace;
}

/// Marks the stretch of the signal that belongs to one shift, and the shift in the trace.
void markPlace(Canvas& canvas, const Axes& signalAxes, const std::vector<double>& signal,
               const std::vector<double>& pattern, const Axes& traceAxes, const std::vector<double>& trace,
               std::vector<double>::const_iterator found, Rgb colour) {
    const auto shift = found - trace.begin();
    const auto length = static_cast<std::ptrdiff_t>(pattern.size());
    const std::vector<double> stretch(signal.begin() + shift, signal.begin() + shift + length);
    const tagPOINT2D peak = traceAxes(static_cast<double>(shift), *found);
    const auto [lowest, highest] = std::minmax_element(stretch.begin(), stretch.end());
    const tagPOINT2D topLeft = signalAxes(static_cast<double>(shift), *highest);
    const tagPOINT2D bottomRight = signalAxes(static_cast<double>(shift + length - 1), *lowest);
    canvas.frame({topLeft.x, topLeft.y - 1.0, bottomRight.x, bottomRight.y + 1.0}, 1.5, colour);
    canvas.stroke({topLeft.x, bottomRight.y + 1.0}, peak, 1.5, colour);
    strokeCurve(canvas, onAxes(signalAxes, stretch, static_cast<double>(shift)), 4.0, colour);
    canvas.dot(peak, 6.0, colour);
}

constexpr int kBeforeZeros = 11;
constexpr int kBehindZeros = 15;

/// Oscillations, a run of zeros on the way up, and zeros that the curve touches from above.
std::vector<double> curveWithZeros() {
    return {-0.55, -0.9, -0.7, -0.15, 0.6,  1.0, 0.8,  0.3,   -0.4, -0.75, -0.6, -0.3, 0.0,
            0.0,   0.0,  0.5,  0.75,  0.45, 0.0, 0.0,  0.3,   0.65, 0.5,   0.1,  -0.5, -0.95,
            -0.8,  -0.2, 0.5,  0.85,  0.6,  0.2, -0.3, -0.45, -0.2, 0.15,  0.4,  0.3,  -0.1};
}

/// Marks positions on the zero line.
void markCrossings(Canvas& canvas, const Axes& axes, const std::vector<double>& positions, unsigned int count,
                   Rgb colour) {
    for (unsigned int i = 0; i < count; ++i) {
        canvas.stroke(axes(positions[i], -0.15), axes(positions[i], 0.15), 3.0, colour);
        canvas.dot(axes(positions[i], 0.0), 6.0, colour);
    }
}

}  // namespace

Canvas drawPolynomials() {
    Canvas canvas(61, 41, 14);
    const Axes axes{30.0, 28.0, 20.0, 14.0};
    Samples samples = noisyCubic();
    strokeFit(canvas, axes, samples, 1, kGreen);
    strokeFit(canvas, axes, samples, 11, kOrange);
    strokeFit(canvas, axes, samples, 3, kBlue);
    for (std::size_t i = 0; i < samples.x.size(); ++i)
        canvas.dot(axes(samples.x[i], samples.y[i]), 5.0, kInk);
    return canvas;
}

Canvas drawCorrelation() {
    Canvas canvas(77, 51, 12);
    const std::vector<double> pattern = pulse();
    const std::vector<double> signal = signalWith(pattern);
    const std::vector<double> trace = correlate(pattern, signal);
    const Axes patternAxes{32.0, 0.5, 7.5, 6.0};
    const Axes signalAxes{1.0, 0.5, 21.0, 10.0};
    const Axes traceAxes{1.0, 0.5, 42.0, 7.0};
    const double last = static_cast<double>(trace.size() - 1);
    for (const double level : {-1.0, 0.0, 1.0})
        canvas.stroke(traceAxes(0.0, level), traceAxes(last, level), 1.5, kFaint);
    strokeCurve(canvas, onAxes(patternAxes, pattern), 4.0, kBlue);
    strokeCurve(canvas, onAxes(signalAxes, signal), 2.5, kInk);
    strokeCurve(canvas, onAxes(traceAxes, trace), 2.5, kInk);
    const auto [lowest, highest] = std::minmax_element(trace.begin(), trace.end());
    markPlace(canvas, signalAxes, signal, pattern, traceAxes, trace, highest, kGreen);
    markPlace(canvas, signalAxes, signal, pattern, traceAxes, trace, lowest, kRed);
    return canvas;
}

Canvas drawZeroCrossings() {
    Canvas canvas(79, 35, 12);
    const Axes axes{1.0, 2.0, 17.0, 14.0};
    const std::vector<double> curve = curveWithZeros();
    std::vector<double> rising(curve.size());
    std::vector<double> falling(curve.size());
    auto risingCount = static_cast<unsigned int>(rising.size());
    auto fallingCount = static_cast<unsigned int>(falling.size());
    fnrFindZeroPoint(curve.data(), static_cast<int>(curve.size()), rising.data(), &risingCount,
                     falling.data(), &fallingCount, 0);
    canvas.stroke(axes(0.0, 0.0), axes(static_cast<double>(curve.size() - 1), 0.0), 2.0, kFaint);
    const std::vector<tagPOINT2D> points = onAxes(axes, curve);
    canvas.stroke(points[kBeforeZeros], points[kBehindZeros], 2.5, kFaint);
    strokeCurve(canvas, points, 2.5, kInk);
    for (const tagPOINT2D& point : points)
        canvas.dot(point, 3.5, kInk);
    markCrossings(canvas, axes, rising, risingCount, kGreen);
    markCrossings(canvas, axes, falling, fallingCount, kRed);
    return canvas;
}

}  // namespace gallery
