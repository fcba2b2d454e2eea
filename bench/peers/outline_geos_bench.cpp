// GEOS's answers about outlines; see outline_bench.cpp for those of the library.

// Its C++ interface asks for this acknowledgement. The C interface would hide neither the algorithms nor their cost.
#define USE_UNSTABLE_GEOS_CPP_API
#include <benchmark/benchmark.h>
#include <geos/algorithm/RayCrossingCounter.h>
#include <geos/geom/Coordinate.h>
#include <geos/geom/CoordinateArraySequence.h>
#include <geos/geom/GeometryFactory.h>
#include <geos/geom/LinearRing.h>
#include <geos/geom/Location.h>
#include <geos/operation/valid/IsSimpleOp.h>

#include <memory>
#include <vector>

#include "bench/peers/outline_queries.h"

namespace {

using namespace velquad::bench;

/// A closed ring.
std::unique_ptr<geos::geom::LinearRing> geosRing(const std::vector<tagPOINT>& points) {
    std::vector<geos::geom::Coordinate> coordinates;
    coordinates.reserve(points.size() + 1);
    for (const tagPOINT& p : points)
        coordinates.emplace_back(p.x, p.y);
    coordinates.push_back(coordinates.front());
    auto sequence = std::make_unique<geos::geom::CoordinateArraySequence>(std::move(coordinates));
    return geos::geom::GeometryFactory::getDefaultInstance()->createLinearRing(std::move(sequence));
}

void geosIsSimple(benchmark::State& state) {
    const auto ring = geosRing(outline(state));
    measureSimplicity(state, [&] { return geos::operation::valid::IsSimpleOp::isSimple(*ring); });
}

void geosLocatePoint(benchmark::State& state) {
    const auto ring = geosRing(outline(state));
    const geos::geom::CoordinateSequence& coordinates = *ring->getCoordinatesRO();
    measureMembership(state, [&](const tagPOINT& test) {
        const geos::geom::Coordinate point(test.x, test.y);
        return geos::algorithm::RayCrossingCounter::locatePointInRing(point, coordinates) !=
               geos::geom::Location::EXTERIOR;
    });
}

BENCHMARK(geosIsSimple)->Apply(simplicityArguments);
BENCHMARK(geosLocatePoint)->Apply(membershipArguments);

}  // namespace
