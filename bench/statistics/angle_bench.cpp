// Moments of angles per value: taking them, and computing the results.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/angle_moment_reference.h"
#include "velquad/statistics.h"

namespace {

std::vector<double> makeAngles(std::size_t count) {
    std::mt19937 random(3);
    std::normal_distribution<double> normal(20.0, 30.0);
    std::vector<double> angles(count);
    for (double& angle : angles)
        angle = normal(random);
    return angles;
}

void addAngles(benchmark::State& state) {
    const std::vector<double> angles = makeAngles(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        CMatMomentOfAnglesEvaluator evaluator(1, 1);
        for (const double angle : angles)
            benchmark::DoNotOptimize(evaluator.AddValue(angle));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void computeAngleResults(benchmark::State& state) {
    const std::vector<double> angles = makeAngles(static_cast<std::size_t>(state.range(0)));
    CMatMomentOfAnglesEvaluator evaluator(1, 1);
    for (const double angle : angles)
        evaluator.AddValue(angle);
    for (auto _ : state) {
        evaluator.ResetResults();
        benchmark::DoNotOptimize(evaluator.GetMean(nullptr));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void literalAngleSteps(benchmark::State& state) {
    const std::vector<double> angles = makeAngles(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        velquad::test::ReferenceAngleMoments moments(angles, 1, 1);
        benchmark::DoNotOptimize(moments);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(addAngles)->Arg(100)->Arg(10'000)->Arg(1'000'000);
BENCHMARK(computeAngleResults)->Arg(100)->Arg(10'000)->Arg(1'000'000);
BENCHMARK(literalAngleSteps)->Arg(100)->Arg(10'000)->Arg(1'000'000);

}  // namespace
