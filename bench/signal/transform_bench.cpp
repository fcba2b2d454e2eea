// The transform, the series of convolutions and the block transform against their plain versions.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/fft_reference.h"
#include "velquad/signal.h"

namespace {

using velquad::test::Doubles;

Doubles makeSignal(std::size_t count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> value(-1, 1);
    Doubles signal(count);
    for (double& v : signal)
        v = value(random);
    return signal;
}

/// Forward and inverse.
void fft(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const Doubles signal = makeSignal(n);
    Doubles re(n), im(n), back(n);
    for (auto _ : state) {
        matFFT(signal.data(), static_cast<unsigned int>(n), re.data(), im.data());
        matInvFFT(re.data(), im.data(), static_cast<unsigned int>(n), back.data());
        benchmark::ClobberMemory();
    }
}

void fftPlain(benchmark::State& state) {
    const Doubles signal = makeSignal(static_cast<std::size_t>(state.range(0)));
    Doubles re, im;
    for (auto _ : state) {
        velquad::test::fftReference(signal, re, im);
        benchmark::DoNotOptimize(velquad::test::inverseReference(re, im));
    }
}

constexpr unsigned int kSpan = 4096;

Doubles makeDistribution() {
    Doubles data(kSpan);
    for (std::size_t i = 0; i < kSpan; ++i)
        data[i] = i < 3 ? 5000.0 : 100.0 * std::exp(-static_cast<double>(i) / 300.0);
    return data;
}

void series(benchmark::State& state) {
    const Doubles data = makeDistribution();
    Doubles result(kSpan);
    for (auto _ : state) {
        matDeconvolution(data.data(), kSpan, result.data(), 0, 3, 1.0, 8, 2);
        benchmark::ClobberMemory();
    }
}

void seriesPlain(benchmark::State& state) {
    const Doubles data = makeDistribution();
    for (auto _ : state)
        benchmark::DoNotOptimize(velquad::test::seriesReference(data, 0, 3, 8));
}

void amplitudes(benchmark::State& state) {
    constexpr int kSide = 4096;
    std::vector<unsigned char> pixels(static_cast<std::size_t>(kSide) * kSide);
    std::mt19937 random(2);
    for (unsigned char& pixel : pixels)
        pixel = static_cast<unsigned char>(random());
    double result[8];
    for (auto _ : state) {
        matGet8Amplitudes(pixels.data(), CSize(kSide, static_cast<int>(state.range(0))), result, 8);
        benchmark::DoNotOptimize(result);
    }
}

BENCHMARK(fft)->Arg(1024)->Arg(65536)->Arg(1048576)->Unit(benchmark::kMicrosecond);
BENCHMARK(fftPlain)->Arg(1024)->Arg(65536)->Arg(1048576)->Unit(benchmark::kMicrosecond);
BENCHMARK(series)->Unit(benchmark::kMillisecond);
BENCHMARK(seriesPlain)->Unit(benchmark::kMillisecond);
// The cost is that of one row of blocks, whatever the height.
BENCHMARK(amplitudes)->Arg(8)->Arg(4096)->Unit(benchmark::kMicrosecond);

}  // namespace
