// Simplicity of outlines and membership of points: the library, Boost.Geometry and OpenCV on the same outlines.
#include <benchmark/benchmark.h>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench/polygon/outlines.h"
#include "velquad/polygon.h"

namespace {

using BoostPoint = boost::geometry::model::d2::point_xy<double>;
/// Counter-clockwise and closed, as the outlines here are.
using BoostPolygon = boost::geometry::model::polygon<BoostPoint, false, true>;

enum Shape { kSmooth, kRagged };

std::vector<tagPOINT> outline(benchmark::State& state) {
    const int count = static_cast<int>(state.range(1));
    return state.range(0) == kRagged ? velquad::bench::raggedStar(count, 16000.0)
                                     : velquad::bench::rippledCircle(count, 2.0);
}

BoostPolygon boostPolygon(const std::vector<tagPOINT>& points) {
    BoostPolygon polygon;
    for (const tagPOINT& p : points)
        polygon.outer().emplace_back(p.x, p.y);
    polygon.outer().push_back(polygon.outer().front());
    return polygon;
}

/// Test points all over the outline, so that no query is favoured.
std::vector<tagPOINT> testPoints(const std::vector<tagPOINT>& points) {
    std::vector<tagPOINT> tests;
    for (std::size_t k = 0; k < 64; ++k) {
        const tagPOINT& p = points[k * points.size() / 64];
        const auto tenths = static_cast<LONG>(k % 13);
        tests.push_back({p.x * tenths / 10, p.y * tenths / 10});
    }
    return tests;
}

template <class Query>
void measureSimplicity(benchmark::State& state, Query isSimple) {
    bool result = false;
    for (auto _ : state)
        benchmark::DoNotOptimize(result = isSimple());
    state.counters["simple"] = result ? 1 : 0;
}

void velquadIsSimple(benchmark::State& state) {
    const std::vector<tagPOINT> points = outline(state);
    measureSimplicity(state, [&] {
        return polyIsSimple(points.data(), static_cast<DWORD>(points.size()), 1, nullptr, nullptr) != 0;
    });
}

void boostIsValid(benchmark::State& state) {
    const BoostPolygon polygon = boostPolygon(outline(state));
    measureSimplicity(state, [&] { return boost::geometry::is_valid(polygon); });
}

template <class Query>
void measureMembership(benchmark::State& state, Query isInside) {
    const std::vector<tagPOINT> tests = testPoints(outline(state));
    std::size_t next = 0;
    int inside = 0;
    for (auto _ : state) {
        inside += isInside(tests[next % tests.size()]) ? 1 : 0;
        ++next;
    }
    benchmark::DoNotOptimize(inside);
    state.counters["inside"] = static_cast<double>(inside) / static_cast<double>(next);
}

void velquadIsPointInside(benchmark::State& state) {
    const std::vector<tagPOINT> points = outline(state);
    measureMembership(state, [&](const tagPOINT& test) {
        return polyIsPointInside(points.data(), static_cast<DWORD>(points.size()), &test) != 0;
    });
}

void boostCoveredBy(benchmark::State& state) {
    const BoostPolygon polygon = boostPolygon(outline(state));
    measureMembership(state, [&](const tagPOINT& test) {
        return boost::geometry::covered_by(BoostPoint(test.x, test.y), polygon);
    });
}

void opencvPointPolygonTest(benchmark::State& state) {
    std::vector<cv::Point> contour;
    for (const tagPOINT& p : outline(state))
        contour.emplace_back(p.x, p.y);
    measureMembership(state, [&](const tagPOINT& test) {
        const cv::Point2f point(static_cast<float>(test.x), static_cast<float>(test.y));
        return cv::pointPolygonTest(contour, point, false) >= 0.0;
    });
}

void simplicityArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"shape", "points"})->Unit(benchmark::kMicrosecond);
    benchmark->ArgsProduct({{kSmooth, kRagged}, {1000, 10000}})->Args({kSmooth, 100000});
}
BENCHMARK(velquadIsSimple)->Apply(simplicityArguments);
BENCHMARK(boostIsValid)->Apply(simplicityArguments);

void membershipArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"shape", "points"});
    benchmark->ArgsProduct({{kSmooth, kRagged}, {1000, 10000}})->Args({kSmooth, 100000});
}
BENCHMARK(velquadIsPointInside)->Apply(membershipArguments);
BENCHMARK(boostCoveredBy)->Apply(membershipArguments);
BENCHMARK(opencvPointPolygonTest)->Apply(membershipArguments);

}  // namespace
