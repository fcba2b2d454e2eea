// Membership of points in outlines, against the plain walk over all edges.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "bench/polygon/outlines.h"
#include "tests/support/polygon_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::bench::rippledCircle;

/// Points in the square around an outline.
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

void isPointInside(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT& test) {
        return polyIsPointInside(outline.data(), static_cast<DWORD>(outline.size()), &test);
    });
}
BENCHMARK(isPointInside)->Arg(16)->Arg(1000)->Arg(30000);

void isPointInsidePlain(benchmark::State& state) {
    measure(state, [](const std::vector<tagPOINT>& outline, const tagPOINT& test) {
        return velquad::test::reference::isPointInside(outline, test);
    });
}
BENCHMARK(isPointInsidePlain)->Arg(16)->Arg(1000)->Arg(30000);

}  // namespace
