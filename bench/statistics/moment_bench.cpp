// Running moments of whole images, next to the plain loop over the elements: 64 x 64 from the cache up to 4096 x 4096
// from memory. Words come in 12 and in 16 bits; the squares of the latter leave the exact range of doubles on the way.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "statistics/moments.h"
#include "tests/support/moment_reference.h"
#include "velquad/statistics.h"

namespace {

using velquad::statistics::Moments;
using velquad::test::ReferenceMoments;

template <class T>
std::vector<T> makeImage(std::size_t count, unsigned int bits) {
    std::mt19937 random(7);
    std::vector<T> values(count);
    for (T& value : values)
        value = static_cast<T>(random() >> (32U - bits));
    return values;
}

template <class T, unsigned int kBits>
void plainLoop(benchmark::State& state) {
    const auto side = static_cast<std::size_t>(state.range(0));
    const std::vector<T> image = makeImage<T>(side * side, kBits);
    for (auto _ : state) {
        ReferenceMoments moments;
        moments.addValues(image.data(), static_cast<int>(image.size()));
        benchmark::DoNotOptimize(moments);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(image.size()));
}

template <class T, unsigned int kBits>
void batch(benchmark::State& state) {
    const auto side = static_cast<std::size_t>(state.range(0));
    const std::vector<T> image = makeImage<T>(side * side, kBits);
    for (auto _ : state) {
        CMatMomentEvaluator moments;
        Moments::addAll<T>(moments, image.data(), image.size());
        benchmark::DoNotOptimize(moments);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(image.size()));
}

#define VELQUAD_MOMENTS(type, bits)                                  \
    BENCHMARK(plainLoop<type, bits>)->Arg(64)->Arg(1024)->Arg(4096); \
    BENCHMARK(batch<type, bits>)->Arg(64)->Arg(1024)->Arg(4096)

VELQUAD_MOMENTS(std::int8_t, 8);
VELQUAD_MOMENTS(std::uint8_t, 8);
VELQUAD_MOMENTS(std::int16_t, 16);
VELQUAD_MOMENTS(std::uint16_t, 12);
VELQUAD_MOMENTS(std::uint16_t, 16);
VELQUAD_MOMENTS(std::int32_t, 32);
VELQUAD_MOMENTS(std::uint32_t, 32);
VELQUAD_MOMENTS(float, 16);
VELQUAD_MOMENTS(double, 16);

}  // namespace
