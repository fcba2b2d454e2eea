// The direction encoder: encoding of random directions, beside the arithmetic of the lattice without a table, and
// the building of its tables.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "velquad/geometry.h"

namespace {

constexpr std::size_t kDirectionCount = 4096;

std::vector<float> randomDirections() {
    std::mt19937_64 random(7);
    std::normal_distribution<float> component;
    std::vector<float> directions(3 * kDirectionCount);
    for (float& value : directions)
        value = component(random);
    return directions;
}

void encode(benchmark::State& state) {
    CMatNormalEncoder encoder(static_cast<int>(state.range(0)));
    std::vector<float> directions = randomDirections();
    for (auto _ : state) {
        int sum = 0;
        for (std::size_t i = 0; i < kDirectionCount; ++i)
            sum += encoder.GetEncodedDirection(&directions[3 * i]);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kDirectionCount));
}

/// The nearest direction by its largest scalar product with all of them.
void encodePlain(benchmark::State& state) {
    CMatNormalEncoder encoder(static_cast<int>(state.range(0)));
    const float* table = encoder.GetDecodedGradientTable();
    const int count = encoder.GetNumberOfEncodedDirections() - 1;
    const std::vector<float> directions = randomDirections();
    std::size_t next = 0;
    for (auto _ : state) {
        const float* v = &directions[3 * next];
        next = (next + 1) % kDirectionCount;
        int nearest = 0;
        float largest = -2.0F;
        for (int i = 0; i < count; ++i) {
            const float* d = table + 3 * i;
            const float product = v[0] * d[0] + v[1] * d[1] + v[2] * d[2];
            if (product > largest) {
                largest = product;
                nearest = i;
            }
        }
        benchmark::DoNotOptimize(nearest);
    }
    state.SetItemsProcessed(state.iterations());
}

void build(benchmark::State& state) {
    for (auto _ : state) {
        CMatNormalEncoder encoder(static_cast<int>(state.range(0)));
        benchmark::DoNotOptimize(encoder.GetDecodedGradientTable());
    }
}

}  // namespace

BENCHMARK(encode)->Name("encoder/encode")->Arg(2)->Arg(5)->Arg(8);
BENCHMARK(encodePlain)->Name("encoder/encode/all_products")->Arg(2)->Arg(5)->Arg(8);
BENCHMARK(build)->Name("encoder/build")->Arg(2)->Arg(5)->Arg(8)->Unit(benchmark::kMicrosecond);
