// The peak of an image under a disc, next to the loops that define it. Arguments: size, radius.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "tests/support/array_data.h"
#include "velquad/array.h"

namespace {

using velquad::test::fillRandom;
using velquad::test::LooseArray;

void peak(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    LooseArray image(size, size, 4);
    std::mt19937 random(3);
    fillRandom(image, size, size, 4, random);
    for (auto _ : state) {
        double value = 0.0;
        matFindGlobalPeak2w(image.rows<unsigned short**>(), static_cast<int>(size), static_cast<int>(size),
                            static_cast<int>(state.range(1)), nullptr, &value);
        benchmark::DoNotOptimize(value);
    }
}

double literalPeak(const LooseArray& image, int size, int radius, const int* left, const int* right) {
    double best = -3.4028234663852886e+38;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            double sum = 0.0;
            double n = 0.0;
            for (int j = 0; j <= 2 * radius; ++j) {
                const int row = y - radius + j;
                if (row < 0 || row >= size) continue;
                const unsigned char* words = image.row(static_cast<std::size_t>(row));
                for (int k = left[j]; k <= right[j]; ++k) {
                    const int column = x - radius + k;
                    if (column < 0 || column >= size) continue;
                    std::uint16_t word;
                    std::memcpy(&word, words + 2 * column, 2);
                    sum += word;
                    n += 1.0;
                }
            }
            double mean = n != 0.0 ? sum / n : 0.0;
            if (1e-7 > std::fabs(mean)) mean = 0.0;
            if (mean >= best) best = mean;
        }
    }
    return best;
}

void peakLiteral(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    LooseArray image(size, size, 4);
    std::mt19937 random(3);
    fillRandom(image, size, size, 4, random);
    double* distances = nullptr;
    int* left = nullptr;
    int* right = nullptr;
    unsigned short** shape =
        matAllocCircularShape2w(static_cast<int>(state.range(1)), &distances, nullptr, &left, &right);
    for (auto _ : state) {
        double value =
            literalPeak(image, static_cast<int>(size), static_cast<int>(state.range(1)), left, right);
        benchmark::DoNotOptimize(value);
    }
    matFreeCircularShape2w(shape, distances, left, right);
}

BENCHMARK(peak)->Args({256, 5})->Args({1024, 20})->Unit(benchmark::kMillisecond);
BENCHMARK(peakLiteral)->Args({256, 5})->Args({1024, 20})->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
