// Removal of stings, against removing one and beginning anew.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/polygon/outlines.h"
#include "tests/support/simplicity_reference.h"
#include "velquad/polygon.h"

namespace {

/// A smooth outline with a spike at every tenth point.
std::vector<tagPOINT> spikedOutline(int count) {
    const std::vector<tagPOINT> smooth = velquad::bench::rippledCircle(count, 4.0);
    std::vector<tagPOINT> points;
    for (std::size_t i = 0; i < smooth.size(); ++i) {
        points.push_back(smooth[i]);
        if (i % 10 != 5) continue;
        points.push_back({smooth[i].x + 7, smooth[i].y - 3});
        points.push_back(smooth[i]);
    }
    return points;
}

void removeStings(benchmark::State& state) {
    const std::vector<tagPOINT> points = spikedOutline(static_cast<int>(state.range(0)));
    std::vector<tagPOINT> work;
    DWORD left = 0;
    for (auto _ : state) {
        work = points;
        left = polyRemoveStings(work.data(), static_cast<DWORD>(work.size()), 0, 1.0);
        benchmark::DoNotOptimize(left);
    }
    state.counters["left"] = left;
}
BENCHMARK(removeStings)->ArgName("points")->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

void removeStingsPlain(benchmark::State& state) {
    const std::vector<tagPOINT> points = spikedOutline(static_cast<int>(state.range(0)));
    std::vector<tagPOINT> work;
    std::size_t left = 0;
    for (auto _ : state) {
        work = points;
        benchmark::DoNotOptimize(left = velquad::test::reference::removeStings(work, false, 1.0));
    }
    state.counters["left"] = static_cast<double>(left);
}
BENCHMARK(removeStingsPlain)->ArgName("points")->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace
