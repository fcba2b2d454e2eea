// Ellipses in points per second: the two walkers of tilted ellipses, the parameter walker with and without the table
// of angles, and the outline that is mirrored from a quarter. The callback does as little as can be.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "geometry/angle_table.h"
#include "velquad/geometry.h"
#include "velquad/polygon.h"

namespace {

constexpr double kTiltRad = 0.4;
constexpr double kThickness = 0.6;

int countPoint(tagPOINT point, DWORD, std::uint64_t arg1, std::int64_t) {
    auto* sum = reinterpret_cast<std::int64_t*>(static_cast<std::uintptr_t>(arg1));
    *sum += point.x;
    ++sum[1];
    return 1;
}

/// Keeps the angle table installed for one benchmark.
class InstalledTable {
  public:
    explicit InstalledTable(bool isWanted) {
        if (isWanted) velquad::geometry::installSinCosApproximator();
    }
    ~InstalledTable() { velquad::geometry::sinCosApproximator.reset(); }
    InstalledTable(const InstalledTable&) = delete;
    InstalledTable& operator=(const InstalledTable&) = delete;
};

template <bool kHasTable>
void parameterWalk(benchmark::State& state) {
    const InstalledTable table(kHasTable);
    const auto semiAxis = static_cast<double>(state.range(0));
    double center[2] = {semiAxis, semiAxis};
    std::int64_t sums[2] = {};
    for (auto _ : state) {
        matDrawRotatedEllipse(center, semiAxis, kThickness * semiAxis, kTiltRad, 1, 0, 1.0, 1.0, countPoint,
                              reinterpret_cast<std::uintptr_t>(sums), 0);
    }
    benchmark::DoNotOptimize(sums[0]);
    state.SetItemsProcessed(sums[1]);
}

void pixelWalk(benchmark::State& state) {
    const auto semiAxis = static_cast<double>(state.range(0));
    const tagPOINT2D center{semiAxis, semiAxis};
    std::int64_t sums[2] = {};
    for (auto _ : state) {
        matDrawArbitraryEllipse(&center, semiAxis, kThickness * semiAxis, kTiltRad, 1, 0, 1.0, 1.0,
                                countPoint, reinterpret_cast<std::uintptr_t>(sums), 0);
    }
    benchmark::DoNotOptimize(sums[0]);
    state.SetItemsProcessed(sums[1]);
}

void parameterPolygon(benchmark::State& state) {
    const auto semiAxis = static_cast<double>(state.range(0));
    double center[2] = {semiAxis, semiAxis};
    std::int64_t points = 0;
    for (auto _ : state) {
        void* handle =
            polyGetRotatedEllipse(center, semiAxis, kThickness * semiAxis, kTiltRad, 1, 0, 1.0, 1.0);
        points += static_cast<const tagPOLY*>(GlobalLock(handle))->count;
        polyFree(handle);
    }
    state.SetItemsProcessed(points);
}

void mirroredOutline(benchmark::State& state) {
    const auto side = static_cast<int>(state.range(0)) * 2;
    const int rect[4] = {0, 0, side, side * 3 / 5};
    const unsigned int capacity = matEstimatePointsInEllipse(rect);
    std::vector<tagPOINT> buffer(capacity);
    std::int64_t points = 0;
    for (auto _ : state) {
        points += matCalcEllipse(rect, buffer.data(), capacity);
        benchmark::DoNotOptimize(buffer.data());
    }
    state.SetItemsProcessed(points);
}

}  // namespace

BENCHMARK(parameterWalk<false>)->Name("ellipse/parameter/library")->RangeMultiplier(10)->Range(10, 1000);
BENCHMARK(parameterWalk<true>)->Name("ellipse/parameter/table")->RangeMultiplier(10)->Range(10, 1000);
BENCHMARK(parameterPolygon)->Name("ellipse/parameter/polygon")->RangeMultiplier(10)->Range(10, 1000);
BENCHMARK(pixelWalk)->Name("ellipse/pixel")->RangeMultiplier(10)->Range(10, 1000);
BENCHMARK(mirroredOutline)->Name("ellipse/mirrored")->RangeMultiplier(10)->Range(10, 1000);
