// A plane through points, next to the passes over memory that it cannot do without: one for the centre, one for the
// scatter around it, and the statistics of the distances. The fit must not exceed these by three tenths.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <random>
#include <vector>

#include "velquad/geometry.h"
#include "velquad/statistics.h"

namespace {

std::vector<tagPOINT3D> tiltedPoints(std::size_t count) {
    std::mt19937_64 random(20240612);
    std::uniform_real_distribution<double> place(-100.0, 100.0);
    std::normal_distribution<double> noise(0.0, 0.5);
    std::vector<tagPOINT3D> points;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = place(random);
        const double y = place(random);
        points.push_back({x, y, 0.3 * x - 0.2 * y + 7.0 + noise(random)});
    }
    return points;
}

/// The sums of all coordinates.
std::array<double, 3> sumPass(const std::vector<tagPOINT3D>& points) {
    std::array<double, 3> sum{};
    for (const tagPOINT3D& p : points) {
        sum[0] += p.x;
        sum[1] += p.y;
        sum[2] += p.z;
    }
    return sum;
}

/// The six sums of products.
std::array<double, 6> productPass(const std::vector<tagPOINT3D>& points, const tagPOINT3D& centre) {
    std::array<double, 6> sum{};
    for (const tagPOINT3D& p : points) {
        const double x = p.x - centre.x;
        const double y = p.y - centre.y;
        const double z = p.z - centre.z;
        sum[0] += x * x;
        sum[1] += x * y;
        sum[2] += x * z;
        sum[3] += y * y;
        sum[4] += y * z;
        sum[5] += z * z;
    }
    return sum;
}

void planeWithStatistics(benchmark::State& state) {
    const std::vector<tagPOINT3D> points = tiltedPoints(static_cast<std::size_t>(state.range(0)));
    tagPOINT3D centre{};
    tagPOINT3D normal{};
    double mean = 0.0;
    double deviation = 0.0;
    for (auto _ : state) {
        matRegressionPlane(points.data(), static_cast<unsigned int>(points.size()), nullptr, &centre, &normal,
                           nullptr, &mean, &deviation);
        benchmark::DoNotOptimize(mean);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(planeWithStatistics)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

void plane(benchmark::State& state) {
    const std::vector<tagPOINT3D> points = tiltedPoints(static_cast<std::size_t>(state.range(0)));
    tagPOINT3D centre{};
    tagPOINT3D normal{};
    for (auto _ : state) {
        matRegressionPlane(points.data(), static_cast<unsigned int>(points.size()), nullptr, &centre, &normal,
                           nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(normal);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(plane)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

void twoPasses(benchmark::State& state) {
    const std::vector<tagPOINT3D> points = tiltedPoints(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        const auto sum = sumPass(points);
        const double reciprocal = 1.0 / static_cast<double>(points.size());
        const tagPOINT3D centre{sum[0] * reciprocal, sum[1] * reciprocal, sum[2] * reciprocal};
        auto products = productPass(points, centre);
        benchmark::DoNotOptimize(products);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(twoPasses)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

/// The distances from a known plane, one by one into the running statistic.
void statisticsAlone(benchmark::State& state) {
    const std::vector<tagPOINT3D> points = tiltedPoints(static_cast<std::size_t>(state.range(0)));
    tagPOINT3D centre{};
    tagPOINT3D normal{};
    matRegressionPlane(points.data(), static_cast<unsigned int>(points.size()), nullptr, &centre, &normal,
                       nullptr, nullptr, nullptr);
    for (auto _ : state) {
        CMatMomentEvaluator moments;
        for (const tagPOINT3D& p : points)
            moments.AddValue(matCalcDirectedDistanceToPlane(&p, &normal, &centre, &normal, nullptr, 0));
        double mean = moments.GetMean();
        benchmark::DoNotOptimize(mean);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(statisticsAlone)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace
