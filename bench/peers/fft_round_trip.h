// The signals that the library and its peers transform and transform back.
#ifndef VELQUAD_BENCH_PEERS_FFT_ROUND_TRIP_H
#define VELQUAD_BENCH_PEERS_FFT_ROUND_TRIP_H

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace velquad::bench {

/// Times `roundTrip(signal, back)`, a forward and an inverse transform that give the signal again, and shows the
/// largest error of a sample in `error`.
template <class RoundTrip>
void measureRoundTrip(benchmark::State& state, RoundTrip roundTrip) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> value(-1, 1);
    std::vector<double> signal(static_cast<std::size_t>(state.range(0)));
    for (double& sample : signal)
        sample = value(random);
    std::vector<double> back(signal.size());
    for (auto _ : state) {
        roundTrip(signal, back);
        benchmark::DoNotOptimize(back.data());
        benchmark::ClobberMemory();
    }
    double error = 0.0;
    for (std::size_t i = 0; i < signal.size(); ++i) {
        const double difference = std::fabs(back[i] - signal[i]);
        if (!(error >= difference)) error = difference;
    }
    state.counters["error"] = error;
    if (!(1e-9 > error)) state.SkipWithError("the signal did not come back");
}

inline void fftSizes(benchmark::internal::Benchmark* family) {
    family->ArgName("samples")->Arg(1 << 10)->Arg(1 << 16)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);
}

}  // namespace velquad::bench

#endif  // VELQUAD_BENCH_PEERS_FFT_ROUND_TRIP_H
