// Normalised cross-correlation of a pattern of 256 samples with a million: each kernel next to the literal loops.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "frame/kernels.h"
#include "signal/correlation_kernels.h"
#include "tests/support/pattern_correlation_reference.h"
#include "velquad/signal.h"

namespace {

using velquad::signal::CorrelationPattern;

constexpr std::size_t kPatternSize = 256;
constexpr std::size_t kSignalSize = 1000000;
constexpr std::size_t kCount = kSignalSize - kPatternSize + 1;
constexpr double kNorm = 3.0;

std::vector<double> randomCurve(std::size_t size) {
    std::mt19937_64 random(size);
    std::uniform_real_distribution<double> sample(-1.0, 1.0);
    std::vector<double> curve(size);
    for (double& value : curve)
        value = sample(random);
    return curve;
}

void correlateLiteralLoops(benchmark::State& state) {
    const std::vector<double> pattern = randomCurve(kPatternSize);
    const std::vector<double> signal = randomCurve(kSignalSize);
    std::vector<double> result(kCount);
    for (auto _ : state) {
        velquad::test::correlateLiterally(pattern.data(), kPatternSize, kNorm, signal.data(), kCount,
                                          result.data());
        benchmark::DoNotOptimize(result.data());
    }
}
BENCHMARK(correlateLiteralLoops)->Unit(benchmark::kMillisecond);

void correlateKernel(benchmark::State& state) {
    const auto level = static_cast<std::size_t>(state.range(0));
    if (level >= velquad::frame::kernelLevelCount()) {
        state.SkipWithError("not supported by this processor");
        return;
    }
    state.SetLabel(velquad::frame::kernelLevelName(level));
    const std::size_t usual = velquad::frame::kernelLevel();
    velquad::frame::selectKernelLevel(level);
    const std::vector<double> pattern = randomCurve(kPatternSize);
    const std::vector<double> signal = randomCurve(kSignalSize);
    std::vector<double> result(kCount);
    for (auto _ : state) {
        velquad::signal::correlationKernels().correlate(
            CorrelationPattern{pattern.data(), kPatternSize, kNorm}, signal.data(), kCount, result.data());
        benchmark::DoNotOptimize(result.data());
    }
    velquad::frame::selectKernelLevel(usual);
}
BENCHMARK(correlateKernel)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void correlateExport(benchmark::State& state) {
    const std::vector<double> pattern = randomCurve(kPatternSize);
    const std::vector<double> signal = randomCurve(kSignalSize);
    std::vector<double> result(kCount);
    void* handle = fnrInitCorrelation(pattern.data(), static_cast<int>(kPatternSize));
    for (auto _ : state) {
        fnrDoCorrelation(handle, signal.data(), static_cast<unsigned int>(kSignalSize), result.data(),
                         static_cast<int>(kCount));
        benchmark::DoNotOptimize(result.data());
    }
    fnrExitCorrelation(&handle);
}
BENCHMARK(correlateExport)->Unit(benchmark::kMillisecond);

}  // namespace
