// Lines and parabolas through windows of a curve, and the peak locator over a whole focus curve, next to a parabola by
// the normal equations of centred samples.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "velquad/fitting.h"

namespace {

struct Curve {
    std::vector<double> x;
    std::vector<double> y;
};

// A peak of height 100 in the middle of noise.
Curve focusCurve(int count) {
    std::mt19937_64 random(13);
    std::normal_distribution<double> noise(10.0, 1.0);
    Curve curve;
    for (int i = 0; i < count; ++i) {
        const double distance = (i - 0.5 * count) / 10.0;
        curve.x.push_back(0.5 * i);
        curve.y.push_back(noise(random) + 100.0 / (1.0 + distance * distance));
    }
    return curve;
}

void fitLine(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const Curve curve = focusCurve(count);
    math::CSVDPolyFit poly(2);
    double slope = 0.0;
    double intercept = 0.0;
    for (auto _ : state) {
        poly.FitRangeLine(curve.x, curve.y, 0, count - 1, slope, intercept, nullptr);
        benchmark::DoNotOptimize(slope);
    }
}
BENCHMARK(fitLine)->Arg(9)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void fitParabola(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const Curve curve = focusCurve(count);
    math::CSVDPolyFit poly(2);
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    for (auto _ : state) {
        poly.FitRangeParabola(curve.x, curve.y, 0, count - 1, a, b, c, nullptr);
        benchmark::DoNotOptimize(a);
    }
}
BENCHMARK(fitParabola)->Arg(9)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// Loses half of the digits, and has no answer for windows with fewer than three different x.
void fitParabolaByNormalEquations(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const Curve curve = focusCurve(static_cast<int>(count));
    for (auto _ : state) {
        double meanX = 0.0;
        double meanY = 0.0;
        for (std::size_t i = 0; i < count; ++i) {
            meanX += curve.x[i];
            meanY += curve.y[i];
        }
        meanX /= static_cast<double>(count);
        meanY /= static_cast<double>(count);
        double s2 = 0.0;
        double s3 = 0.0;
        double s4 = 0.0;
        double t1 = 0.0;
        double t2 = 0.0;
        for (std::size_t i = 0; i < count; ++i) {
            const double u = curve.x[i] - meanX;
            const double v = curve.y[i] - meanY;
            s2 += u * u;
            s3 += u * u * u;
            s4 += u * u * u * u;
            t1 += u * v;
            t2 += u * u * v;
        }
        const double c2 = s4 - s2 * s2 / static_cast<double>(count);
        benchmark::DoNotOptimize((t2 * s2 - t1 * s3) / (c2 * s2 - s3 * s3));
    }
}
BENCHMARK(fitParabolaByNormalEquations)->Arg(9)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// Each sample of the curve is asked about.
void locatePeaks(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const Curve curve = focusCurve(count);
    math::CSVDPolyFit poly(2);
    for (auto _ : state) {
        int peaks = 0;
        for (int i = 0; i < count; ++i) {
            math::ParaFit fit;
            math::FitParabola(curve.x, curve.y, i, 6.0, fit, poly, false, 0.001, 3.0, 3.0);
            peaks += fit.isPeak ? 1 : 0;
        }
        benchmark::DoNotOptimize(peaks);
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(locatePeaks)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
