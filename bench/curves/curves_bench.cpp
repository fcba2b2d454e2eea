// Points per second of the two curve functions. Time a point is constant as long as the cost is linear; the
// stairs of corners show what moving the points behind a rounded corner adds.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "velquad/curves.h"

namespace {

using Points = std::vector<double>;  // x and y by turns

unsigned int readPoints(double** rows, unsigned int maximal, unsigned int, void* user1, void*) {
    const auto& points = *static_cast<const Points*>(user1);
    for (unsigned int i = 0; i < maximal; ++i) {
        rows[i][0] = points[2 * i];
        rows[i][1] = points[2 * i + 1];
    }
    return maximal;
}

unsigned int countSamples(double**, unsigned int count, unsigned int, void*, void* user2) {
    *static_cast<std::size_t*>(user2) += count;
    return 1;
}

/// A closed outline like a measured one: a wobbling circle whose points lie some ten pixels apart.
Points outline(std::size_t count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> wobble(-3.0, 3.0);
    const double radius = static_cast<double>(count) * 10.0 / 6.283185307179586;
    Points points;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(count - 1);
        points.push_back(std::round(radius * std::cos(angle) + wobble(random)));
        points.push_back(std::round(radius * std::sin(angle) + wobble(random)));
    }
    points.push_back(points[0]);
    points.push_back(points[1]);
    return points;
}

/// Stairs with a corner at every second point.
Points stairs(std::size_t count) {
    Points points;
    double x = 0.0;
    double y = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        points.push_back(x);
        points.push_back(y);
        (i / 2 % 2 == 0 ? x : y) += 10.0;
    }
    return points;
}

void interpolate(benchmark::State& state, Points points, double step, double cornerFactor) {
    const auto count = static_cast<unsigned int>(points.size() / 2);
    std::size_t samples = 0;
    for (auto _ : state) {
        const unsigned int code =
            matInterpolatingCurve(count, readPoints, countSamples, &points, &samples, 2, step, cornerFactor);
        if (code != 0) state.SkipWithError("the curve failed");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
    state.counters["samples/s"] =
        benchmark::Counter(static_cast<double>(samples), benchmark::Counter::kIsRate);
}

void interpolatingPointsOnly(benchmark::State& state) {
    interpolate(state, outline(static_cast<std::size_t>(state.range(0))), 1e9, 0.0);
}
BENCHMARK(interpolatingPointsOnly)->RangeMultiplier(10)->Range(1000, 100000);

void interpolatingUnitStep(benchmark::State& state) {
    interpolate(state, outline(static_cast<std::size_t>(state.range(0))), 1.0, 0.5);
}
BENCHMARK(interpolatingUnitStep)->RangeMultiplier(10)->Range(1000, 100000);

void interpolatingStairs(benchmark::State& state) {
    interpolate(state, stairs(static_cast<std::size_t>(state.range(0))), 1e9, 0.25);
}
BENCHMARK(interpolatingStairs)->RangeMultiplier(10)->Range(1000, 100000);

void fitting(benchmark::State& state) {
    Points points = outline(static_cast<std::size_t>(state.range(0)));
    const auto count = static_cast<unsigned int>(points.size() / 2);
    const auto order = static_cast<int>(state.range(1));
    std::size_t samples = 0;
    for (auto _ : state) {
        const unsigned int code =
            matFittingCurve(count, readPoints, countSamples, &points, &samples, 2, 1.0, order);
        if (code != 0) state.SkipWithError("the curve failed");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
    state.counters["samples/s"] =
        benchmark::Counter(static_cast<double>(samples), benchmark::Counter::kIsRate);
}
BENCHMARK(fitting)->ArgsProduct({{1000, 10000, 100000}, {3, 4, 6}});

}  // namespace
