// Distances from one point to all vertices or edges of an outline, as a search for the nearest one runs them. The
// inline forms that other rooms call in their loops stand next to the exported ones.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "geometry/distance.h"
#include "velquad/geometry.h"

namespace {

using velquad::geometry::distance;
using velquad::geometry::footOnSegment;

/// A star-shaped outline, so that neighbouring edges have different directions and lengths.
template <class Point>
std::vector<Point> makeOutline(std::size_t count) {
    constexpr double kRadius = 4000.0;
    constexpr double kFullTurnRad = 6.283185307179586;
    std::vector<Point> points;
    points.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double angle = kFullTurnRad * static_cast<double>(i) / static_cast<double>(count);
        const double radius = kRadius * (1.0 + 0.3 * std::sin(7.0 * angle));
        points.push_back({static_cast<decltype(Point::x)>(radius * std::cos(angle)),
                          static_cast<decltype(Point::y)>(radius * std::sin(angle))});
    }
    return points;
}

double exportedDistance(const tagPOINT& a, const tagPOINT& b) {
    return matCalcDist2L(&a, &b, 1);
}
double exportedDistance(const tagPOINT2D& a, const tagPOINT2D& b) {
    return matCalcDist2D(&a, &b, 1);
}
double exportedSegment(const tagPOINT& a, const tagPOINT& b, const tagPOINT& point, tagPOINT2D* closest,
                       double* parameter) {
    return matCalcDistanceToSegment2L(&a, &b, &point, 1, closest, parameter);
}
double exportedSegment(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& point, tagPOINT2D* closest,
                       double* parameter) {
    return matCalcDistanceToSegment2D(&a, &b, &point, 1, closest, parameter);
}

template <class Point, bool kIsInline>
void nearestVertex(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<Point> points = makeOutline<Point>(count);
    const Point test{1234, -567};
    for (auto _ : state) {
        double shortest = velquad::kNoValue;
        for (std::size_t i = 0; i < count; ++i) {
            const double squared =
                kIsInline ? distance(points[i], test, true) : exportedDistance(points[i], test);
            if (squared < shortest) shortest = squared;
        }
        benchmark::DoNotOptimize(shortest);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Point, bool kIsInline>
void nearestEdge(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<Point> points = makeOutline<Point>(count);
    const Point test{1234, -567};
    for (auto _ : state) {
        double shortest = velquad::kNoValue;
        double parameterAtShortest = 0.0;
        for (std::size_t i = 0; i + 1 < count; ++i) {
            double squared = 0.0;
            double parameter = 0.0;
            if constexpr (kIsInline) {
                const auto foot = footOnSegment(points[i], points[i + 1], test, true);
                squared = foot.distance;
                parameter = foot.parameter;
            } else {
                tagPOINT2D closest;
                squared = exportedSegment(points[i], points[i + 1], test, &closest, &parameter);
            }
            if (squared < shortest) {
                shortest = squared;
                parameterAtShortest = parameter;
            }
        }
        benchmark::DoNotOptimize(shortest);
        benchmark::DoNotOptimize(parameterAtShortest);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void segmentOfSpace(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<tagPOINT2D> outline = makeOutline<tagPOINT2D>(count);
    std::vector<tagPOINT3D> points;
    for (const tagPOINT2D& p : outline) {
        points.push_back({p.x, p.y, 0.01 * p.x + 0.02 * p.y});
    }
    const tagPOINT3D test{1234.0, -567.0, 89.0};
    for (auto _ : state) {
        double sum = 0.0;
        for (std::size_t i = 0; i + 1 < count; ++i) {
            sum += matCalcDistanceToSegment3D(&points[i], &points[i + 1], &test, 1, nullptr, nullptr);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(nearestVertex<tagPOINT, true>)->Name("vertex/2L/inline")->RangeMultiplier(16)->Range(64, 16384);
BENCHMARK(nearestVertex<tagPOINT, false>)->Name("vertex/2L/exported")->RangeMultiplier(16)->Range(64, 16384);
BENCHMARK(nearestVertex<tagPOINT2D, true>)->Name("vertex/2D/inline")->RangeMultiplier(16)->Range(64, 16384);
BENCHMARK(nearestVertex<tagPOINT2D, false>)
    ->Name("vertex/2D/exported")
    ->RangeMultiplier(16)
    ->Range(64, 16384);
BENCHMARK(nearestEdge<tagPOINT, true>)->Name("edge/2L/inline")->RangeMultiplier(16)->Range(64, 16384);
BENCHMARK(nearestEdge<tagPOINT, false>)->Name("edge/2L/exported")->RangeMultiplier(16)->Range(64, 16384);
BENCHMARK(nearestEdge<tagPOINT2D, true>)->Name("edge/2D/inline")->RangeMultiplier(16)->Range(64, 16384);
BENCHMARK(nearestEdge<tagPOINT2D, false>)->Name("edge/2D/exported")->RangeMultiplier(16)->Range(64, 16384);
BENCHMARK(segmentOfSpace)->Name("edge/3D/exported")->RangeMultiplier(16)->Range(64, 16384);
