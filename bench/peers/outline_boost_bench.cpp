// Boost.Geometry's answers about outlines; see outline_bench.cpp for those of the library.
#include <benchmark/benchmark.h>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <vector>

#include "bench/peers/outline_queries.h"

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

void boostIsValid(benchmark::State& state) {
    const BoostPolygon polygon = boostPolygon(outline(state));
    measureSimplicity(state, [&] { return boost::geometry::is_valid(polygon); });
}

void boostCoveredBy(benchmark::State& state) {
    const BoostPolygon polygon = boostPolygon(outline(state));
    measureMembership(state, [&](const tagPOINT& test) {
        return boost::geometry::covered_by(BoostPoint(test.x, test.y), polygon);
    });
}

BENCHMARK(boostIsValid)->Apply(simplicityArguments);
BENCHMARK(boostCoveredBy)->Apply(membershipArguments);

}  // namespace
