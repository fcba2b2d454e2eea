// Voronoi maps, against plain loops.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/voronoi_reference.h"
#include "velquad/triangulation.h"

namespace {

using velquad::test::ReferenceSeed;

std::vector<ReferenceSeed> scatteredSeeds(int size, int count) {
    std::mt19937 random(1);
    std::vector<ReferenceSeed> seeds;
    for (int i = 0; i < count; ++i) {
        const auto x = static_cast<std::int32_t>(random() % static_cast<unsigned>(size));
        const auto y = static_cast<std::int32_t>(random() % static_cast<unsigned>(size));
        seeds.push_back({x, y, i});
    }
    return seeds;
}

void computeVoronoi(benchmark::State& state) {
    const auto size = static_cast<int>(state.range(0));
    void* map = matAllocVoronoiMap2D(size, size);
    for (const ReferenceSeed& seed : scatteredSeeds(size, static_cast<int>(state.range(1)))) {
        const tagPOINT point{seed.x, seed.y};
        matAddPointToVoronoiMap2D(map, &point, seed.id);
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(matComputeVoronoiMap2D(map));
    state.SetItemsProcessed(state.iterations() * size * size);
    matFreeVoronoiMap2D(map);
}
BENCHMARK(computeVoronoi)
    ->Args({256, 100})
    ->Args({2048, 100})
    ->Args({2048, 5000})
    ->Args({2048, 100000})
    ->Unit(benchmark::kMillisecond);

void computeVoronoiPlain(benchmark::State& state) {
    const auto size = static_cast<int>(state.range(0));
    const std::vector<ReferenceSeed> seeds = scatteredSeeds(size, static_cast<int>(state.range(1)));
    for (auto _ : state)
        benchmark::DoNotOptimize(velquad::test::referenceVoronoi(size, size, seeds));
    state.SetItemsProcessed(state.iterations() * size * size);
}
BENCHMARK(computeVoronoiPlain)->Args({256, 100})->Args({512, 5000})->Unit(benchmark::kMillisecond);

}  // namespace
