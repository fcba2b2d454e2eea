// Insertion one by one, questions and enumeration, against the plain version.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/delaunay_queries_reference.h"
#include "tests/support/delaunay_reference.h"
#include "velquad/triangulation.h"

namespace {

namespace plain = velquad::test::delaunay;

constexpr double kDefaultTolerance = 1.7976931348623157e308;

std::vector<tagPOINT3D> scattered(std::size_t count, double low = 0.0, double high = 1000.0) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(low, high);
    std::vector<tagPOINT3D> points(count);
    for (tagPOINT3D& p : points) {
        p.x = coordinate(random);
        p.y = coordinate(random);
        p.z = coordinate(random);
    }
    return points;
}

void* triangulate(const std::vector<tagPOINT3D>& points) {
    void* handle = matInitDelaunay2D(nullptr);
    for (const tagPOINT3D& p : points)
        matExtentDelaunay2D(&handle, &p, kDefaultTolerance);
    return handle;
}

void insertOneByOne(benchmark::State& state) {
    const std::vector<tagPOINT3D> points = scattered(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        matExitDelaunay2D(triangulate(points));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(insertOneByOne)->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMillisecond);

// 100 000 points take most of a minute.
void insertOneByOnePlain(benchmark::State& state) {
    const std::vector<tagPOINT3D> points = scattered(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        auto handle = std::make_unique<plain::Triangulation>(nullptr);
        for (const tagPOINT3D& p : points)
            plain::Triangulation::extend(handle, p, plain::kNoId, kDefaultTolerance);
        benchmark::DoNotOptimize(handle->startingEdge);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(insertOneByOnePlain)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void findPosition(benchmark::State& state) {
    void* handle = triangulate(scattered(static_cast<std::size_t>(state.range(0))));
    const std::vector<tagPOINT3D> places = scattered(1024, 1.0, 999.0);
    std::size_t next = 0;
    for (auto _ : state) {
        tagPOINT3D place = places[next++ % places.size()];
        benchmark::DoNotOptimize(matFindPositionInDelaunay2DEx(handle, &place, nullptr, nullptr,
                                                               static_cast<unsigned>(state.range(1))));
    }
    matExitDelaunay2D(handle);
}
BENCHMARK(findPosition)->ArgsProduct({{1000, 100000}, {1, 8}});

void enumerateInRect(benchmark::State& state) {
    void* handle = triangulate(scattered(static_cast<std::size_t>(state.range(0))));
    const tagMAT_RECT2D rect{400, 400, 600, 600};
    const auto visit = [](tagPOINT3D*, void*) { return 1; };
    for (auto _ : state)
        benchmark::DoNotOptimize(matEnumDelaunayPositionsInRect(
            handle, &rect, static_cast<unsigned>(state.range(1)), visit, nullptr));
    matExitDelaunay2D(handle);
}
BENCHMARK(enumerateInRect)->ArgsProduct({{10000, 100000}, {0, 2}})->Unit(benchmark::kMillisecond);

}  // namespace
