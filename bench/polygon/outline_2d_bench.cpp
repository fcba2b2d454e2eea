// Outlines of doubles, next to the plain versions of the same queries: loops over all edges and all pairs of them.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "bench/polygon/outlines_2d.h"
#include "tests/support/polygon2d_reference.h"
#include "velquad/polygon.h"

namespace {

namespace reference = velquad::test::reference2d;
using Outline = std::vector<tagPOINT2D>;
using velquad::bench::rippledCircle2D;

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

template <class Query>
void measure(benchmark::State& state, Query query) {
    const Outline outline = rippledCircle2D(static_cast<int>(state.range(0)), 2.0);
    for (auto _ : state)
        benchmark::DoNotOptimize(query(outline));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void isSimple2D(benchmark::State& state) {
    measure(state, [](const Outline& outline) {
        return poly2dIsSimple(outline.data(), countOf(outline), 1, nullptr, nullptr);
    });
}
BENCHMARK(isSimple2D)->RangeMultiplier(10)->Range(100, 1000000)->Unit(benchmark::kMicrosecond);

void isSimple2DPlain(benchmark::State& state) {
    measure(state, [](const Outline& outline) { return reference::firstFault(outline, true).isFound; });
}
BENCHMARK(isSimple2DPlain)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(isSimple2DPlain)->Arg(100000)->Iterations(1)->Unit(benchmark::kMicrosecond);

void isPointInside2D(benchmark::State& state) {
    measure(state, [](const Outline& outline) {
        const tagPOINT2D test{outline[0].x * 0.3, 1.0};
        return poly2dIsPointInside(outline.data(), countOf(outline), &test);
    });
}
BENCHMARK(isPointInside2D)->RangeMultiplier(10)->Range(100, 100000);

void isPointInside2DPlain(benchmark::State& state) {
    measure(state, [](const Outline& outline) {
        return reference::isPointInside(outline, {outline[0].x * 0.3, 1.0});
    });
}
BENCHMARK(isPointInside2DPlain)->RangeMultiplier(10)->Range(100, 100000);

void distance2D(benchmark::State& state) {
    measure(state, [](const Outline& outline) {
        const tagPOINT2D test{outline[0].x * 0.3, 1.0};
        return poly2dCalcDistance(outline.data(), countOf(outline), 1, &test, 0, nullptr, nullptr, nullptr);
    });
}
BENCHMARK(distance2D)->RangeMultiplier(10)->Range(100, 10000);

void distance2DPlain(benchmark::State& state) {
    measure(state, [](const Outline& outline) {
        return reference::distance(outline, true, {outline[0].x * 0.3, 1.0}, false).distance;
    });
}
BENCHMARK(distance2DPlain)->RangeMultiplier(10)->Range(100, 10000);

/// Nested outlines, with room between them and close to one another.
template <class Query>
void measureNested(benchmark::State& state, Query query) {
    const int count = static_cast<int>(state.range(0));
    const Outline outer = rippledCircle2D(count, 2.0);
    const Outline inner = rippledCircle2D(count, 2.0, state.range(1) == 0 ? 0.7 : 0.999);
    int result = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(result = query(outer, inner));
    state.counters["result"] = result;
}

void relativePosition2D(benchmark::State& state) {
    measureNested(state, [](const Outline& a, const Outline& b) {
        return poly2dGetRelativePosition(a.data(), countOf(a), 1, b.data(), countOf(b), 1);
    });
}
BENCHMARK(relativePosition2D)->ArgNames({"points", "close"})->ArgsProduct({{100, 1000, 10000}, {0, 1}});

void relativePosition2DPlain(benchmark::State& state) {
    measureNested(state, [](const Outline& a, const Outline& b) {
        return reference::relativePosition(a, true, b, true);
    });
}
BENCHMARK(relativePosition2DPlain)->ArgNames({"points", "close"})->ArgsProduct({{100, 1000, 10000}, {0, 1}});

}  // namespace
