// Splitting an outline, next to the plain steps on growing vectors, and decomposing it into arcs.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/polygon/outlines.h"
#include "tests/support/splitting_reference.h"
#include "velquad/polygon.h"

namespace {

namespace reference = velquad::test::reference;
using reference::Outline;
using velquad::bench::rippledCircle;

Outline closedCircle(benchmark::State& state) {
    Outline outline = rippledCircle(static_cast<int>(state.range(0)), 2.0);
    outline.push_back(outline.front());
    return outline;
}

/// A line across the outline, with a corner in the middle.
Outline cutAcross(const Outline& outline) {
    const tagPOINT& a = outline[outline.size() / 5];
    const tagPOINT& b = outline[outline.size() / 2];
    return {a, {0, 0}, b};
}

void split(benchmark::State& state) {
    const Outline outline = closedCircle(state);
    const Outline cut = cutAcross(outline);
    for (auto _ : state) {
        void* first = nullptr;
        void* second = nullptr;
        polySplit(outline.data(), static_cast<DWORD>(outline.size()), 1, 3.0, cut.data(), 3, &first, &second);
        benchmark::DoNotOptimize(first);
        polyFree(first);
        polyFree(second);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(split)->RangeMultiplier(10)->Range(100, 100000);

void splitPlain(benchmark::State& state) {
    const Outline outline = closedCircle(state);
    const Outline cut = cutAcross(outline);
    for (auto _ : state)
        benchmark::DoNotOptimize(reference::split(outline, true, 3.0, cut));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(splitPlain)->RangeMultiplier(10)->Range(100, 100000);

/// A position every hundred points or so, at all fractions.
reference::Positions positionsOn(const Outline& outline) {
    reference::Positions positions;
    for (std::size_t i = 3; i + 1 < outline.size(); i += 97)
        positions.push_back({static_cast<DWORD>(i), static_cast<double>(i % 10) * 0.1});
    return positions;
}

void decompose(benchmark::State& state) {
    const Outline outline = closedCircle(state);
    const reference::Positions positions = positionsOn(outline);
    std::vector<void*> handles(positions.size() + 1);
    for (auto _ : state) {
        DWORD number = 0;
        polyDecompose(outline.data(), static_cast<DWORD>(outline.size()), 1, 0.5, positions.data(),
                      static_cast<DWORD>(positions.size()), handles.data(),
                      static_cast<DWORD>(handles.size()), &number);
        for (DWORD i = 0; i < number; ++i)
            polyFree(handles[i]);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(decompose)->RangeMultiplier(10)->Range(100, 100000);

/// What copying the outline into one record costs, for scale.
void copy(benchmark::State& state) {
    const Outline outline = closedCircle(state);
    for (auto _ : state) {
        void* handle = polyCopy(outline.data(), static_cast<DWORD>(outline.size()), 0);
        benchmark::DoNotOptimize(handle);
        polyFree(handle);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(copy)->RangeMultiplier(10)->Range(100, 100000);

}  // namespace
