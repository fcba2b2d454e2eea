// Line fits of clouds with a tenth of outliers. The counter `pairTrial` of the robust fits is the time for one pair
// and one slope that is tried, next to the same with the plain selection over all offsets.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/regression_reference.h"
#include "velquad/statistics.h"

namespace {

struct Cloud {
    std::vector<double> x;
    std::vector<double> y;
};

Cloud cloudWithOutliers(std::size_t count) {
    std::mt19937_64 random(20240611);
    std::uniform_real_distribution<double> place(-100.0, 100.0);
    std::normal_distribution<double> noise(0.0, 1.0);
    Cloud cloud;
    for (std::size_t i = 0; i < count; ++i) {
        cloud.x.push_back(place(random));
        cloud.y.push_back(0.3 * cloud.x.back() + 5.0 + noise(random) + (i % 10 == 0 ? 40.0 : 0.0));
    }
    return cloud;
}

void countPairTrials(benchmark::State& state, int trials) {
    state.counters["trials"] = trials;
    state.counters["pairTrial"] =
        benchmark::Counter(static_cast<double>(state.range(0)) * trials,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void regressionLine(benchmark::State& state) {
    const Cloud cloud = cloudWithOutliers(static_cast<std::size_t>(state.range(0)));
    double slope = 0.0;
    double intercept = 0.0;
    unsigned int yOfX = 0;
    for (auto _ : state) {
        matCalcRegressionLine(cloud.x.data(), cloud.y.data(), static_cast<unsigned int>(cloud.x.size()),
                              velquad::kNoValue, &slope, &intercept, &yOfX);
        benchmark::DoNotOptimize(slope);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(regressionLine)->Arg(1000)->Arg(1000000);

void robustLine(benchmark::State& state) {
    const Cloud cloud = cloudWithOutliers(static_cast<std::size_t>(state.range(0)));
    int trials = 0;
    velquad::test::referenceRobust(cloud.x, cloud.y, &trials);
    double slope = 0.0;
    double intercept = 0.0;
    int yOfX = 0;
    for (auto _ : state) {
        matRobustLineFit(cloud.x.data(), cloud.y.data(), static_cast<unsigned int>(cloud.x.size()), &slope,
                         &intercept, &yOfX);
        benchmark::DoNotOptimize(slope);
    }
    countPairTrials(state, trials);
}
BENCHMARK(robustLine)->Arg(1000)->Arg(30000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

void robustLinePlainSelection(benchmark::State& state) {
    const Cloud cloud = cloudWithOutliers(static_cast<std::size_t>(state.range(0)));
    int trials = 0;
    for (auto _ : state) {
        const auto line = velquad::test::referenceRobust(cloud.x, cloud.y, &trials);
        benchmark::DoNotOptimize(line);
    }
    countPairTrials(state, trials);
}
BENCHMARK(robustLinePlainSelection)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace
