// CGAL's triangulations of the same points; see delaunay_bench.cpp for those of the library.
#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Triangulation_hierarchy_2.h>
#include <CGAL/Triangulation_hierarchy_vertex_base_2.h>
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/peers/delaunay_queries.h"

namespace {

using namespace velquad::bench;
using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_2;
using Flat = CGAL::Delaunay_triangulation_2<Kernel>;

using VertexBase = CGAL::Triangulation_hierarchy_vertex_base_2<CGAL::Triangulation_vertex_base_2<Kernel>>;
using Structure = CGAL::Triangulation_data_structure_2<VertexBase, CGAL::Triangulation_face_base_2<Kernel>>;
/// Triangulations of samples on top of each other, for short searches.
using Hierarchy = CGAL::Triangulation_hierarchy_2<CGAL::Delaunay_triangulation_2<Kernel, Structure>>;

std::vector<Point> cgalPoints(const std::vector<tagPOINT2D>& points) {
    std::vector<Point> result;
    result.reserve(points.size());
    for (const tagPOINT2D& p : points)
        result.emplace_back(p.x, p.y);
    return result;
}

/// Each search begins at the point inserted last.
void cgalInsertOneByOne(benchmark::State& state) {
    measureInsertion(state, [](const std::vector<tagPOINT2D>& points) {
        Flat triangulation;
        Flat::Face_handle last;
        for (const tagPOINT2D& p : points)
            last = triangulation.insert(Point(p.x, p.y), last)->face();
        return triangulation.number_of_vertices();
    });
}

void cgalHierarchyInsertOneByOne(benchmark::State& state) {
    measureInsertion(state, [](const std::vector<tagPOINT2D>& points) {
        Hierarchy triangulation;
        for (const tagPOINT2D& p : points)
            triangulation.insert(Point(p.x, p.y));
        return static_cast<std::size_t>(triangulation.number_of_vertices());
    });
}

/// All points at once, in an order of CGAL's choice.
void cgalInsertAllAtOnce(benchmark::State& state) {
    measureInsertion(state, [](const std::vector<tagPOINT2D>& points) {
        const std::vector<Point> all = cgalPoints(points);
        const Flat triangulation(all.begin(), all.end());
        return triangulation.number_of_vertices();
    });
}

template <class Triangulation>
void cgalNearestVertex(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = scatteredPoints(static_cast<std::size_t>(state.range(0)));
    const std::vector<Point> all = cgalPoints(points);
    const Triangulation triangulation(all.begin(), all.end());
    const auto nearest = [&](const tagPOINT2D& place) {
        const Point point = triangulation.nearest_vertex(Point(place.x, place.y))->point();
        return tagPOINT2D{point.x(), point.y()};
    };
    if (checkNearest(state, points, nearest)) measurePlaces(state, nearest);
}

template <class Triangulation>
void cgalLocate(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = scatteredPoints(static_cast<std::size_t>(state.range(0)));
    const std::vector<Point> all = cgalPoints(points);
    const Triangulation triangulation(all.begin(), all.end());
    const auto locate = [&](const tagPOINT2D& place) {
        const auto face = triangulation.locate(Point(place.x, place.y));
        Triangle result;
        for (int k = 0; k < 3; ++k)
            result.corners[k] = {face->vertex(k)->point().x(), face->vertex(k)->point().y()};
        return result;
    };
    if (checkLocated(state, points, locate)) measurePlaces(state, locate);
}

BENCHMARK(cgalInsertOneByOne)->Apply(insertionArguments);
BENCHMARK(cgalHierarchyInsertOneByOne)->Apply(insertionArguments);
BENCHMARK(cgalInsertAllAtOnce)->Apply(insertionArguments);
BENCHMARK(cgalNearestVertex<Flat>)->Name("cgalNearestVertex")->Apply(placeArguments);
BENCHMARK(cgalNearestVertex<Hierarchy>)->Name("cgalHierarchyNearestVertex")->Apply(placeArguments);
BENCHMARK(cgalLocate<Flat>)->Name("cgalLocate")->Apply(placeArguments);
BENCHMARK(cgalLocate<Hierarchy>)->Name("cgalHierarchyLocate")->Apply(placeArguments);

}  // namespace
