// Mapping of points with each lens model, and the fit.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "velquad/fitting.h"

namespace {

void putDots(svd::CSVDFitPoly2d& lens, unsigned int model, int side) {
    lens.Allocate(static_cast<unsigned int>(side * side), svd::PolyModelId(model), 1920, 1080);
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const double x = (column + 0.5) * 1920.0 / side;
            const double y = (row + 0.5) * 1080.0 / side;
            lens.PutCalibDot(x, y, x + x * y * 1e-5, y - x * x * 1e-5);
        }
    }
}

void predictPoints(benchmark::State& state) {
    svd::CSVDFitPoly2d lens;
    putDots(lens, static_cast<unsigned int>(state.range(0)), 12);
    svd::CSVDFitPoly2d::LensDistortionParams params;
    lens.Fit(params);
    constexpr int kPoints = 1920;
    for (auto _ : state) {
        double sum = 0.0;
        for (int column = 0; column < kPoints; ++column) {
            double x = 0.0;
            double y = 0.0;
            lens.Predict(params, column, 333.0, x, y);
            sum += x + y;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(predictPoints)->DenseRange(2, 9);

void fitDots(benchmark::State& state) {
    svd::CSVDFitPoly2d lens;
    putDots(lens, 9, static_cast<int>(state.range(0)));
    svd::CSVDFitPoly2d::LensDistortionParams params;
    for (auto _ : state)
        benchmark::DoNotOptimize(lens.Fit(params));
}
BENCHMARK(fitDots)->Arg(6)->Arg(12)->Arg(40)->Unit(benchmark::kMicrosecond);

}  // namespace
