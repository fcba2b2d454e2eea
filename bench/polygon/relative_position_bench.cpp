// Position of two outlines to one another, against the loop over all pairs of edges.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/polygon/outlines.h"
#include "tests/support/polygon_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::bench::rippledCircle;

enum Layout { kSideBySide, kNested, kNestedClosely, kCrossing };

std::vector<tagPOINT> second(int layout, int count) {
    switch (layout) {
        case kSideBySide:
            return rippledCircle(count, 2.0, 1.0, 0.7 * count);
        case kNested:
            return rippledCircle(count, 2.0, 0.7);
        case kNestedClosely:
            return rippledCircle(count, 2.0, 0.999);
        default:
            return rippledCircle(count, 2.0, 1.0, 0.3 * count);
    }
}

template <class Query>
void measure(benchmark::State& state, Query query) {
    const int count = static_cast<int>(state.range(1));
    const std::vector<tagPOINT> a = rippledCircle(count, 2.0);
    const std::vector<tagPOINT> b = second(static_cast<int>(state.range(0)), count);
    int result = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(result = query(a, b));
    state.counters["result"] = result;
}

void relativePosition(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& a, const std::vector<tagPOINT>& b) {
        return polyGetRelativePosition(a.data(), static_cast<DWORD>(a.size()), 1, b.data(),
                                       static_cast<DWORD>(b.size()), 1);
    });
}
BENCHMARK(relativePosition)
    ->ArgNames({"layout", "points"})
    ->ArgsProduct({{kSideBySide, kNested, kNestedClosely, kCrossing}, {20, 1000, 10000}});

void relativePositionPlain(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& a, const std::vector<tagPOINT>& b) {
        return velquad::test::reference::relativePosition(a, true, b, true);
    });
}
BENCHMARK(relativePositionPlain)
    ->ArgNames({"layout", "points"})
    ->ArgsProduct({{kSideBySide, kNested, kNestedClosely, kCrossing}, {20, 1000, 10000}});

}  // namespace
