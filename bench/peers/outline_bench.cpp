// Simplicity of outlines and membership of points: the library, Boost.Geometry and OpenCV on the same outlines.
#include <benchmark/benchmark.h>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench/peers/outline_queries.h"
#include "velquad/polygon.h"

namespace {

using namespace velquad::bench;
using BoostPoint = boost::geometry::model::d2::point_xy<double>;
/// Counter-clockwise and closed, as the outlines here are.
using BoostPolygon = boost::geometry::model::polygon<BoostPoint, false, true>;

BoostPolygon boostPolygon(const std::vector<tagPOINT>& points) {
    BoostPolygon polygon;
    for (const tagPOINT& p : points)
        polygon.outer().emplace_back(p.x, p.y);
    polygon.outer().push_back(polygon.outer().front());
    return polygon;
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

BENCHMARK(velquadIsSimple)->Apply(simplicityArguments);
BENCHMARK(boostIsValid)->Apply(simplicityArguments);

BENCHMARK(velquadIsPointInside)->Apply(membershipArguments);
BENCHMARK(boostCoveredBy)->Apply(membershipArguments);
BENCHMARK(opencvPointPolygonTest)->Apply(membershipArguments);

}  // namespace
