// The life of a polygon record, and the removal of double points: in one pass, next to the walk that moves the
// tail for each of them.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "polygon/double_points_impl.h"
#include "velquad/polygon.h"

namespace {

/// A traced outline: a staircase that stands still at a place for `repeats` points on average.
std::vector<tagPOINT> staircase(std::int64_t count, unsigned repeats) {
    std::mt19937 random(20210);
    std::vector<tagPOINT> points;
    tagPOINT point{0, 0};
    while (static_cast<std::int64_t>(points.size()) < count) {
        if (random() % repeats == 0) (points.size() % 2 == 0 ? point.x : point.y) += 1;
        points.push_back(point);
    }
    return points;
}

void countPoints(benchmark::State& state, std::size_t count) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

void allocAndFree(benchmark::State& state) {
    for (auto _ : state) {
        void* handle = polyAlloc(static_cast<DWORD>(state.range(0)));
        benchmark::DoNotOptimize(handle);
        polyFree(handle);
    }
}
BENCHMARK(allocAndFree)->Arg(1)->Arg(1000)->Arg(100000);

void copyAndFree(benchmark::State& state) {
    const auto points = staircase(state.range(0), 1);
    for (auto _ : state) {
        void* handle = polyCopy(points.data(), static_cast<DWORD>(points.size()), 1);
        benchmark::DoNotOptimize(handle);
        polyFree(handle);
    }
    countPoints(state, points.size());
}
BENCHMARK(copyAndFree)->Arg(10)->Arg(1000)->Arg(100000);

template <DWORD (*Remove)(tagPOINT*, DWORD)>
void removeDoublePoints(benchmark::State& state) {
    const auto points = staircase(state.range(0), static_cast<unsigned>(state.range(1)));
    std::vector<tagPOINT> work(points.size());
    for (auto _ : state) {
        work.assign(points.begin(), points.end());
        benchmark::DoNotOptimize(Remove(work.data(), static_cast<DWORD>(work.size())));
        benchmark::ClobberMemory();
    }
    countPoints(state, points.size());
}
BENCHMARK(removeDoublePoints<polyRemoveDoublePoints>)->ArgsProduct({{100, 1000, 10000}, {1, 2, 10}});
BENCHMARK(removeDoublePoints<velquad::polygon::removeDoublePointsByTailMoves<tagPOINT>>)
    ->ArgsProduct({{100, 1000, 10000}, {1, 2, 10}});

void scale(benchmark::State& state) {
    auto points = staircase(state.range(0), 1);
    for (auto _ : state) {
        polyScale(points.data(), static_cast<DWORD>(points.size()), 1.0, -1.0);
        benchmark::ClobberMemory();
    }
    countPoints(state, points.size());
}
BENCHMARK(scale)->Arg(100)->Arg(10000);

void boundingRect(benchmark::State& state) {
    const auto points = staircase(state.range(0), 1);
    for (auto _ : state) {
        RECT rect;
        polyGetBoundingRect(points.data(), static_cast<DWORD>(points.size()), &rect);
        benchmark::DoNotOptimize(rect);
    }
    countPoints(state, points.size());
}
BENCHMARK(boundingRect)->Arg(100)->Arg(10000);

}  // namespace
