// OpenCV's subdivision of the same points; see delaunay_bench.cpp for the triangulation of the library.
#include <benchmark/benchmark.h>

#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench/peers/delaunay_queries.h"

namespace {

using namespace velquad::bench;

cv::Point2f toFloats(const tagPOINT2D& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y)};
}

cv::Subdiv2D subdivision(const std::vector<tagPOINT2D>& points) {
    constexpr int kReach = static_cast<int>(kSide);
    cv::Subdiv2D result(cv::Rect(0, 0, kReach, kReach));
    for (const tagPOINT2D& p : points)
        result.insert(toFloats(p));
    return result;
}

/// The vertices are numbered in the order of insertion; the first four are helpers.
void opencvInsertOneByOne(benchmark::State& state) {
    measureInsertion(state, [](const std::vector<tagPOINT2D>& points) {
        constexpr int kHelpers = 4;
        cv::Subdiv2D result = subdivision({points.begin(), points.end() - 1});
        return static_cast<std::size_t>(result.insert(toFloats(points.back())) + 1 - kHelpers);
    });
}

void opencvNearestVertex(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = scatteredPoints(static_cast<std::size_t>(state.range(0)));
    cv::Subdiv2D triangulation = subdivision(points);
    const auto nearest = [&](const tagPOINT2D& place) {
        cv::Point2f vertex;
        triangulation.findNearest(toFloats(place), &vertex);
        return tagPOINT2D{static_cast<double>(vertex.x), static_cast<double>(vertex.y)};
    };
    // The first question computes the Voronoi cells of all points.
    if (checkNearest(state, points, nearest)) measurePlaces(state, nearest);
}

void opencvLocate(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = scatteredPoints(static_cast<std::size_t>(state.range(0)));
    cv::Subdiv2D triangulation = subdivision(points);
    const auto locate = [&](const tagPOINT2D& place) {
        int edge = 0;
        int vertex = 0;
        triangulation.locate(toFloats(place), edge, vertex);
        Triangle result{};
        for (tagPOINT2D& corner : result.corners) {
            cv::Point2f origin;
            triangulation.edgeOrg(edge, &origin);
            corner = {static_cast<double>(origin.x), static_cast<double>(origin.y)};
            edge = triangulation.getEdge(edge, cv::Subdiv2D::NEXT_AROUND_LEFT);
        }
        return result;
    };
    if (checkLocated(state, points, locate)) measurePlaces(state, locate);
}

BENCHMARK(opencvInsertOneByOne)->Apply(insertionArguments);
BENCHMARK(opencvNearestVertex)->Apply(placeArguments);
BENCHMARK(opencvLocate)->Apply(placeArguments);

}  // namespace
