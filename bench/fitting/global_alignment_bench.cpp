// Mosaics of square grids of tiles with all pairs of neighbours, next to one decomposition of the equations of both
// axes.
#include <benchmark/benchmark.h>

#include <Eigen/SVD>
#include <random>
#include <vector>

#include "tests/support/alignment_reference.h"
#include "velquad/fitting.h"

namespace {

using velquad::test::AlignmentStatement;
using velquad::test::FullAlignment;

std::vector<AlignmentStatement> mosaic(int side) {
    std::mt19937 random(1);
    std::normal_distribution<double> noise(0.0, 1.5);
    std::vector<AlignmentStatement> pairs;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const int tile = side * row + column;
            if (column + 1 < side)
                pairs.push_back({tile, tile + 1, 400.0 + noise(random), noise(random), 1.0});
            if (row + 1 < side)
                pairs.push_back({tile, tile + side, noise(random), 300.0 + noise(random), 1.0});
        }
    }
    return pairs;
}

void alignMosaic(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    const std::vector<AlignmentStatement> pairs = mosaic(side);
    svd::CSVDGlobAln alignment;
    alignment.Allocate(static_cast<unsigned int>(pairs.size()), static_cast<unsigned int>(side * side));
    for (const AlignmentStatement& pair : pairs)
        alignment.PutPair(pair.first, pair.second, pair.x, pair.y, pair.weight);
    for (auto _ : state)
        benchmark::DoNotOptimize(alignment.GlobalAlign());
}
BENCHMARK(alignMosaic)->Arg(4)->Arg(10)->Arg(20)->Unit(benchmark::kMillisecond);

void alignFullSystem(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    const std::vector<AlignmentStatement> pairs = mosaic(side);
    FullAlignment full(pairs.size(), static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (const AlignmentStatement& pair : pairs)
        full.put(pair);
    for (auto _ : state)
        benchmark::DoNotOptimize(full.solve<Eigen::BDCSVD<Eigen::MatrixXd>>());
}
BENCHMARK(alignFullSystem)->Arg(4)->Arg(10)->Arg(20)->Unit(benchmark::kMillisecond);

}  // namespace
