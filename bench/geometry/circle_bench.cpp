// The best circle of a noisy outline: the library's search beside the plain loops over all triples and points.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/circle_reference.h"
#include "velquad/geometry.h"

namespace {

constexpr double kFullTurnRad = 6.283185307179586;
constexpr double kRadius = 250.0;
constexpr double kNoise = 1.5;

/// Points around a circle with normal noise, in the order of an outline or of no order.
std::vector<tagPOINT2D> noisyCircle(std::size_t count, bool isShuffled) {
    std::mt19937_64 random(count);
    std::normal_distribution<double> noise(0.0, kNoise);
    std::vector<tagPOINT2D> points;
    for (std::size_t i = 0; i < count; ++i) {
        const double angle = kFullTurnRad * static_cast<double>(i) / static_cast<double>(count);
        const double radius = kRadius + noise(random);
        points.push_back({300.0 + radius * std::cos(angle), 400.0 + radius * std::sin(angle)});
    }
    if (isShuffled) {
        for (std::size_t i = count; i > 1; --i)
            std::swap(points[i - 1], points[random() % i]);
    }
    return points;
}

/// Points anywhere in a square: no circle fits, and the best one hardly ends the others.
std::vector<tagPOINT2D> scattered(std::size_t count) {
    std::mt19937_64 random(count);
    std::uniform_real_distribution<double> coordinate(0.0, 500.0);
    std::vector<tagPOINT2D> points;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = coordinate(random);
        points.push_back({x, coordinate(random)});
    }
    return points;
}

void search(benchmark::State& state, const std::vector<tagPOINT2D>& points) {
    double center[2] = {};
    double radius = 0.0;
    for (auto _ : state) {
        poly2dLeastSquareCircle(points.data(), static_cast<unsigned int>(points.size()), center, &radius);
        benchmark::DoNotOptimize(radius);
    }
}

void plainSearch(benchmark::State& state, const std::vector<tagPOINT2D>& points) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(velquad::test::bestCircleLiterally(points.data(), points.size()));
    }
}

void outline(benchmark::State& state) {
    search(state, noisyCircle(static_cast<std::size_t>(state.range(0)), false));
}
void outlinePlain(benchmark::State& state) {
    plainSearch(state, noisyCircle(static_cast<std::size_t>(state.range(0)), false));
}
void shuffled(benchmark::State& state) {
    search(state, noisyCircle(static_cast<std::size_t>(state.range(0)), true));
}
void shuffledPlain(benchmark::State& state) {
    plainSearch(state, noisyCircle(static_cast<std::size_t>(state.range(0)), true));
}
void square(benchmark::State& state) {
    search(state, scattered(static_cast<std::size_t>(state.range(0))));
}
void squarePlain(benchmark::State& state) {
    plainSearch(state, scattered(static_cast<std::size_t>(state.range(0))));
}

}  // namespace

BENCHMARK(outline)->Name("circle/outline")->Arg(15)->Arg(30)->Arg(60)->Unit(benchmark::kMicrosecond);
BENCHMARK(outlinePlain)
    ->Name("circle/outline/plain")
    ->Arg(15)
    ->Arg(30)
    ->Arg(60)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(shuffled)->Name("circle/shuffled")->Arg(15)->Arg(30)->Arg(60)->Unit(benchmark::kMicrosecond);
BENCHMARK(shuffledPlain)
    ->Name("circle/shuffled/plain")
    ->Arg(15)
    ->Arg(30)
    ->Arg(60)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(square)->Name("circle/square")->Arg(15)->Arg(30)->Arg(60)->Unit(benchmark::kMicrosecond);
BENCHMARK(squarePlain)->Name("circle/square/plain")->Arg(15)->Arg(30)->Arg(60)->Unit(benchmark::kMicrosecond);
