// CGAL's answers about outlines; see outline_bench.cpp for those of the library.
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_2_algorithms.h>
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/peers/outline_queries.h"

namespace {

using namespace velquad::bench;
using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;

std::vector<Kernel::Point_2> cgalPoints(const std::vector<tagPOINT>& points) {
    std::vector<Kernel::Point_2> result;
    result.reserve(points.size());
    for (const tagPOINT& p : points)
        result.emplace_back(p.x, p.y);
    return result;
}

void cgalIsSimple(benchmark::State& state) {
    const std::vector<Kernel::Point_2> points = cgalPoints(outline(state));
    measureSimplicity(state, [&] { return CGAL::is_simple_2(points.begin(), points.end(), Kernel()); });
}

void cgalBoundedSide(benchmark::State& state) {
    const std::vector<Kernel::Point_2> points = cgalPoints(outline(state));
    measureMembership(state, [&](const tagPOINT& test) {
        return CGAL::bounded_side_2(points.begin(), points.end(), Kernel::Point_2(test.x, test.y),
                                    Kernel()) != CGAL::ON_UNBOUNDED_SIDE;
    });
}

BENCHMARK(cgalIsSimple)->Apply(simplicityArguments);
BENCHMARK(cgalBoundedSide)->Apply(membershipArguments);

}  // namespace
