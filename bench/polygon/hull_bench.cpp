// Convex hulls of points in a disc, against wrapping point by point.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "tests/support/hull_reference.h"
#include "velquad/polygon.h"

namespace {

std::vector<tagPOINT> pointsInDisc(std::size_t count) {
    constexpr double kRadius = 20000.0;
    std::mt19937 engine(5);
    const auto random = [&] { return (static_cast<double>(engine()) / 2147483648.0 - 1.0) * kRadius; };
    std::vector<tagPOINT> points;
    while (points.size() < count) {
        const double x = random();
        const double y = random();
        if (x * x + y * y > kRadius * kRadius) continue;
        points.push_back({static_cast<LONG>(std::lround(x)), static_cast<LONG>(std::lround(y))});
    }
    return points;
}

void convexHull(benchmark::State& state) {
    const std::vector<tagPOINT> points = pointsInDisc(static_cast<std::size_t>(state.range(0)));
    std::vector<tagPOINT> work;
    DWORD vertices = 0;
    for (auto _ : state) {
        work = points;
        benchmark::DoNotOptimize(vertices = polyConvexHull(work.data(), static_cast<DWORD>(work.size())));
    }
    state.counters["vertices"] = vertices;
}
BENCHMARK(convexHull)->ArgName("points")->Arg(100)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void convexHull3D(benchmark::State& state) {
    std::vector<tagPOINT3D> points;
    for (const tagPOINT& p : pointsInDisc(static_cast<std::size_t>(state.range(0))))
        points.push_back({static_cast<double>(p.x), static_cast<double>(p.y), 0.0});
    std::vector<tagPOINT3D> work;
    for (auto _ : state) {
        work = points;
        benchmark::DoNotOptimize(matConvexHullP3D(work.data(), static_cast<DWORD>(work.size())));
    }
}
BENCHMARK(convexHull3D)->ArgName("points")->Arg(100)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void convexHullPlain(benchmark::State& state) {
    const std::vector<tagPOINT> points = pointsInDisc(static_cast<std::size_t>(state.range(0)));
    std::vector<tagPOINT> work;
    std::size_t vertices = 0;
    for (auto _ : state) {
        work = points;
        benchmark::DoNotOptimize(vertices = velquad::test::reference::wrapHull(work, work.size()));
    }
    state.counters["vertices"] = static_cast<double>(vertices);
}
BENCHMARK(convexHullPlain)
    ->ArgName("points")
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
