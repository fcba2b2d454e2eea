// Smoothing filters against their plain versions, which give the same bits.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/smoothing_reference.h"
#include "velquad/signal.h"

namespace {

using velquad::test::Curve;

constexpr unsigned int kSamples = 1000000;

Curve makeCurve() {
    std::mt19937 random(1);
    std::normal_distribution<double> value(0, 1);
    Curve curve(kSamples);
    double sum = 0.0;
    for (double& v : curve)
        v = sum += value(random);
    return curve;
}

void savitzkyGolay(benchmark::State& state) {
    const Curve in = makeCurve();
    Curve out(kSamples);
    for (auto _ : state) {
        matSavitzkyGolay(in.data(), kSamples, out.data(), 5, 0, 0);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSamples);
}

void savitzkyGolayPlain(benchmark::State& state) {
    const Curve in = makeCurve();
    const std::vector<int> table = {-11, 0, 9, 16, 21, 24, 25, 24, 21, 16, 9, 0, -11};
    for (auto _ : state)
        benchmark::DoNotOptimize(velquad::test::savitzkyGolayReference(in, table, 143));
    state.SetItemsProcessed(state.iterations() * kSamples);
}

void meanValue(benchmark::State& state) {
    const Curve in = makeCurve();
    Curve out(kSamples);
    for (auto _ : state) {
        matMeanValue(in.data(), kSamples, out.data(), static_cast<int>(state.range(0)));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSamples);
}

void meanValuePlain(benchmark::State& state) {
    const Curve in = makeCurve();
    for (auto _ : state)
        benchmark::DoNotOptimize(velquad::test::meanValueReference(in, static_cast<int>(state.range(0))));
    state.SetItemsProcessed(state.iterations() * kSamples);
}

void meanEnvelope(benchmark::State& state) {
    const Curve in = makeCurve();
    Curve out(kSamples);
    for (auto _ : state) {
        matMeanEnvelope(in.data(), kSamples, out.data(), 1, 20);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSamples);
}

void meanEnvelopePlain(benchmark::State& state) {
    const Curve in = makeCurve();
    for (auto _ : state)
        benchmark::DoNotOptimize(velquad::test::MeanEnvelopeReference::run(in, 1, 20));
    state.SetItemsProcessed(state.iterations() * kSamples);
}

BENCHMARK(savitzkyGolay)->Unit(benchmark::kMillisecond);
BENCHMARK(savitzkyGolayPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(meanValue)->Arg(9)->Arg(101)->Unit(benchmark::kMillisecond);
BENCHMARK(meanValuePlain)->Arg(9)->Arg(101)->Unit(benchmark::kMillisecond);
BENCHMARK(meanEnvelope)->Unit(benchmark::kMillisecond);
BENCHMARK(meanEnvelopePlain)->Unit(benchmark::kMillisecond);

}  // namespace
