// The simplicity test and the repair, against the loop over all pairs of edges with the same segment test.
#include "polygon/simplicity_impl.h"

#include <benchmark/benchmark.h>

#include <utility>
#include <vector>

#include "bench/polygon/outlines.h"
#include "velquad/polygon.h"

namespace {

using velquad::bench::raggedStar;
using velquad::bench::rippledCircle;

enum Shape { kSmooth, kRagged, kCrossingAtTheEnd };

/// The last one is smooth, but for a crossing of the last edges.
std::vector<tagPOINT> outline(int shape, int count) {
    if (shape == kRagged) return raggedStar(count, 16000.0);
    std::vector<tagPOINT> points = rippledCircle(count, 2.0);
    if (shape == kCrossingAtTheEnd) std::swap(points[points.size() - 10], points[points.size() - 5]);
    return points;
}

void isSimple(benchmark::State& state) {
    const std::vector<tagPOINT> points =
        outline(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    int result = 0;
    for (auto _ : state) {
        result = polyIsSimple(points.data(), static_cast<DWORD>(points.size()), 1, nullptr, nullptr);
        benchmark::DoNotOptimize(result);
    }
    state.counters["simple"] = result;
    state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(isSimple)
    ->ArgNames({"shape", "points"})
    ->ArgsProduct({{kSmooth, kRagged, kCrossingAtTheEnd}, {20, 1000, 10000}})
    ->ArgsProduct({{kSmooth, kCrossingAtTheEnd}, {100000, 1000000}})
    ->Unit(benchmark::kMicrosecond);

void isSimplePlain(benchmark::State& state) {
    const std::vector<tagPOINT> points =
        outline(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const auto count = static_cast<DWORD>(points.size());
    const velquad::polygon::EdgeChain<tagPOINT> chain{points.data(), count, count};
    velquad::polygon::EdgePair fault{};
    for (auto _ : state)
        benchmark::DoNotOptimize(fault = velquad::polygon::firstFaultOfPairs(chain));
    state.counters["simple"] = fault.first == velquad::polygon::kNoFault.first ? 1 : 0;
    state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(isSimplePlain)
    ->ArgNames({"shape", "points"})
    ->ArgsProduct({{kSmooth, kRagged, kCrossingAtTheEnd}, {20, 1000, 10000}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(isSimplePlain)
    ->ArgNames({"shape", "points"})
    ->Args({kSmooth, 100000})
    ->Iterations(1)
    ->Unit(benchmark::kMicrosecond);

/// A smooth outline with a small loop at every 500th point.
void makeSimple(benchmark::State& state) {
    std::vector<tagPOINT> points = rippledCircle(static_cast<int>(state.range(0)), 4.0);
    for (std::size_t i = 250; i + 3 < points.size(); i += 500)
        std::swap(points[i], points[i + 2]);
    std::vector<tagPOINT> work;
    DWORD result = 0;
    for (auto _ : state) {
        work = points;
        work.push_back(work.front());
        result = polyMakeSimple(work.data(), static_cast<DWORD>(points.size()), 1000);
        benchmark::DoNotOptimize(result);
    }
    state.counters["left"] = result;
}
BENCHMARK(makeSimple)->ArgName("points")->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMicrosecond);

}  // namespace
