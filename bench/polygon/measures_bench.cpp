// Distance, area, length and turning of outlines. The distance is compared with the plain walk over all edges.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "bench/polygon/outlines.h"
#include "tests/support/polygon_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::bench::rippledCircle;

std::vector<tagPOINT> testPoints(const std::vector<tagPOINT>& outline) {
    std::mt19937 random(1);
    const LONG reach = outline[0].x;
    std::uniform_int_distribution<LONG> coordinate(-reach, reach);
    std::vector<tagPOINT> points(64);
    for (tagPOINT& p : points)
        p = {coordinate(random), coordinate(random)};
    return points;
}

template <class Query>
void measure(benchmark::State& state, Query query) {
    const std::vector<tagPOINT> outline = rippledCircle(static_cast<int>(state.range(0)), 2.0);
    const std::vector<tagPOINT> tests = testPoints(outline);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(query(outline, tests[next]));
        next = (next + 1) % tests.size();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

DWORD countOf(const std::vector<tagPOINT>& outline) {
    return static_cast<DWORD>(outline.size());
}

void distance(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT& test) {
        return polyCalcDistance(outline.data(), countOf(outline), 1, &test, 0, nullptr, nullptr, nullptr);
    });
}
BENCHMARK(distance)->Arg(16)->Arg(1000)->Arg(30000);

void distancePlain(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT& test) {
        return velquad::test::reference::distance(outline, true, test, false).distance;
    });
}
BENCHMARK(distancePlain)->Arg(16)->Arg(1000)->Arg(30000);

void area(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT&) {
        return polyCalcAreaExact(outline.data(), countOf(outline));
    });
}
BENCHMARK(area)->Arg(16)->Arg(1000)->Arg(30000);

void centerOfGravity(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT&) {
        tagPOINT2D center{0.0, 0.0};
        polyCalcCenterOfGravity(outline.data(), countOf(outline), &center);
        return center.x;
    });
}
BENCHMARK(centerOfGravity)->Arg(16)->Arg(1000)->Arg(30000);

void length(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT&) {
        return polyCalcLength(outline.data(), countOf(outline), 1, 0);
    });
}
BENCHMARK(length)->Arg(16)->Arg(1000)->Arg(30000);

void isCounterClockwise(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT&) {
        return polyIsCCW(outline.data(), countOf(outline));
    });
}
BENCHMARK(isCounterClockwise)->Arg(16)->Arg(1000)->Arg(30000);

}  // namespace
