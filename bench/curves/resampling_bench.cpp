// Resampling and stretching against their plain versions, which give the same bits.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/resampling_reference.h"
#include "velquad/curves.h"

namespace {

std::vector<double> makeSamples(std::size_t count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> value(-1, 1);
    std::vector<double> samples(count);
    for (double& sample : samples)
        sample = value(random);
    return samples;
}

constexpr std::size_t kSamples = 20000;
constexpr int kOutputs = 100000;

void bspline(benchmark::State& state) {
    const std::vector<double> samples = makeSamples(kSamples);
    std::vector<double> out(kOutputs);
    for (auto _ : state) {
        matBSpline(samples.data(), kSamples, out.data(), kOutputs, 4);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kOutputs);
}

void bsplinePlain(benchmark::State& state) {
    const std::vector<double> samples = makeSamples(kSamples);
    std::vector<double> out(kOutputs);
    for (auto _ : state) {
        velquad::test::bsplineResampleReference(samples, out, kOutputs, 4);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kOutputs);
}

void akima(benchmark::State& state) {
    const std::vector<double> samples = makeSamples(kSamples);
    std::vector<double> out(kOutputs);
    for (auto _ : state) {
        matAkima(samples.data(), kSamples, out.data(), kOutputs);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kOutputs);
}

constexpr std::size_t kSide = 4096;

template <class Pixel>
std::vector<std::vector<Pixel>> makeImage(std::size_t width, std::size_t height) {
    std::mt19937 random(2);
    std::vector<std::vector<Pixel>> image(height, std::vector<Pixel>(width));
    for (auto& row : image) {
        for (Pixel& pixel : row)
            pixel = static_cast<Pixel>(random());
    }
    return image;
}

template <class Pixel>
void stretch(benchmark::State& state) {
    auto source = makeImage<Pixel>(kSide, kSide);
    const auto targetWidth = static_cast<std::size_t>(state.range(0));
    auto target = makeImage<Pixel>(targetWidth, kSide);
    std::vector<void*> from, to;
    for (std::size_t row = 0; row < kSide; ++row) {
        from.push_back(source[row].data());
        to.push_back(target[row].data());
    }
    for (auto _ : state)
        matHorzStretchImage(kSide, kSide, sizeof(Pixel), from.data(), static_cast<unsigned int>(targetWidth),
                            to.data());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kSide * targetWidth));
}

template <class Pixel>
void stretchPlain(benchmark::State& state) {
    const auto source = makeImage<Pixel>(kSide, kSide);
    const auto targetWidth = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        for (const auto& row : source) {
            benchmark::DoNotOptimize(
                velquad::test::stretchReference(row, targetWidth, sizeof(Pixel) == 1 ? 255 : 65535));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kSide * targetWidth));
}

BENCHMARK(bspline);
BENCHMARK(bsplinePlain);
BENCHMARK(akima);
BENCHMARK(stretch<std::uint8_t>)->Arg(4096)->Arg(6000)->Unit(benchmark::kMillisecond);
BENCHMARK(stretchPlain<std::uint8_t>)->Arg(4096)->Arg(6000)->Unit(benchmark::kMillisecond);
BENCHMARK(stretch<std::uint16_t>)->Arg(4096)->Arg(6000)->Unit(benchmark::kMillisecond);
BENCHMARK(stretchPlain<std::uint16_t>)->Arg(4096)->Arg(6000)->Unit(benchmark::kMillisecond);

}  // namespace
