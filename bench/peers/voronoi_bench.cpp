// Voronoi maps of scattered seeds: the library, and OpenCV's distance transforms, which know the nearest seed only
// roughly (with labels) or only its distance (exact).
#include <benchmark/benchmark.h>

#include <cmath>
#include <opencv2/imgproc.hpp>
#include <random>
#include <vector>

#include "velquad/triangulation.h"

namespace {

constexpr int kSize = 2048;

/// Different cells.
std::vector<tagPOINT> scatteredSeeds(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    std::mt19937 random(1);
    cv::Mat1b isSeed(kSize, kSize, uchar{0});
    std::vector<tagPOINT> seeds;
    while (seeds.size() < count) {
        const auto x = static_cast<LONG>(random() % kSize);
        const auto y = static_cast<LONG>(random() % kSize);
        if (isSeed(y, x) != 0) continue;
        isSeed(y, x) = 1;
        seeds.push_back({x, y});
    }
    return seeds;
}

/// 0 where a seed stands, as the distance transforms want it.
cv::Mat1b seedImage(const std::vector<tagPOINT>& seeds) {
    cv::Mat1b image(kSize, kSize, uchar{255});
    for (const tagPOINT& seed : seeds)
        image(seed.y, seed.x) = 0;
    return image;
}

cv::Mat1f exactDistances(const std::vector<tagPOINT>& seeds) {
    cv::Mat1f distances;
    cv::distanceTransform(seedImage(seeds), distances, cv::DIST_L2, cv::DIST_MASK_PRECISE);
    return distances;
}

/// The share of cells whose seed, `seeds[seedOf(x, y)]`, is not the nearest one.
template <class SeedOf>
double wrongShare(const std::vector<tagPOINT>& seeds, SeedOf seedOf) {
    const cv::Mat1f distances = exactDistances(seeds);
    constexpr double kRounding = 1e-3;
    int wrong = 0;
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const tagPOINT& seed = seeds[seedOf(x, y)];
            const double distance = std::hypot(x - seed.x, y - seed.y);
            if (distance > static_cast<double>(distances(y, x)) + kRounding) ++wrong;
        }
    }
    return static_cast<double>(wrong) / (static_cast<double>(kSize) * kSize);
}

void velquadVoronoiMap(benchmark::State& state) {
    const std::vector<tagPOINT> seeds = scatteredSeeds(state);
    void* map = matAllocVoronoiMap2D(kSize, kSize);
    for (std::size_t i = 0; i < seeds.size(); ++i)
        matAddPointToVoronoiMap2D(map, &seeds[i], static_cast<int>(i));
    for (auto _ : state)
        benchmark::DoNotOptimize(matComputeVoronoiMap2D(map));
    const double wrong = wrongShare(seeds, [map](int x, int y) {
        return static_cast<std::size_t>(matGetIDFromNeighborInVoronoiMap2D(map, x, y));
    });
    matFreeVoronoiMap2D(map);
    if (wrong > 0.0) state.SkipWithError("not the nearest seed");
    state.counters["wrongShare"] = wrong;
}

/// Distances and nearest seeds, of which some are not the nearest.
void opencvLabelledDistances(benchmark::State& state) {
    cv::setNumThreads(1);
    const std::vector<tagPOINT> seeds = scatteredSeeds(state);
    const cv::Mat1b image = seedImage(seeds);
    cv::Mat1f distances;
    cv::Mat1i labels;
    for (auto _ : state)
        cv::distanceTransform(image, distances, labels, cv::DIST_L2, cv::DIST_MASK_5, cv::DIST_LABEL_PIXEL);
    std::vector<std::size_t> seedOfLabel(seeds.size() + 1);
    for (std::size_t i = 0; i < seeds.size(); ++i)
        seedOfLabel[static_cast<std::size_t>(labels(seeds[i].y, seeds[i].x))] = i;
    state.counters["wrongShare"] =
        wrongShare(seeds, [&](int x, int y) { return seedOfLabel[static_cast<std::size_t>(labels(y, x))]; });
}

/// Distances alone.
void opencvExactDistances(benchmark::State& state) {
    cv::setNumThreads(1);
    const cv::Mat1b image = seedImage(scatteredSeeds(state));
    cv::Mat1f distances;
    for (auto _ : state)
        cv::distanceTransform(image, distances, cv::DIST_L2, cv::DIST_MASK_PRECISE);
}

void voronoiArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("seeds")->Arg(100)->Arg(5000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(velquadVoronoiMap)->Apply(voronoiArguments);
BENCHMARK(opencvLabelledDistances)->Apply(voronoiArguments);
BENCHMARK(opencvExactDistances)->Apply(voronoiArguments);

}  // namespace
