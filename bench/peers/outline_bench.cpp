// Simplicity of outlines and membership of points. The peers' answers to the same questions stand in the files
// outline_<peer>_bench.cpp.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/peers/outline_queries.h"
#include "velquad/polygon.h"

namespace {

using namespace velquad::bench;

std::vector<tagPOINT2D> inDoubles(const std::vector<tagPOINT>& points) {
    std::vector<tagPOINT2D> result;
    result.reserve(points.size());
    for (const tagPOINT& p : points)
        result.push_back({static_cast<double>(p.x), static_cast<double>(p.y)});
    return result;
}

void velquadIsSimple(benchmark::State& state) {
    const std::vector<tagPOINT> points = outline(state);
    measureSimplicity(state, [&] {
        return polyIsSimple(points.data(), static_cast<DWORD>(points.size()), 1, nullptr, nullptr) != 0;
    });
}

void velquadIsSimple2D(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = inDoubles(outline(state));
    measureSimplicity(state, [&] {
        return poly2dIsSimple(points.data(), static_cast<DWORD>(points.size()), 1, nullptr, nullptr) != 0;
    });
}

void velquadIsPointInside(benchmark::State& state) {
    const std::vector<tagPOINT> points = outline(state);
    measureMembership(state, [&](const tagPOINT& test) {
        return polyIsPointInside(points.data(), static_cast<DWORD>(points.size()), &test) != 0;
    });
}

void velquadIsPointInside2D(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = inDoubles(outline(state));
    measureMembership(state, [&](const tagPOINT& test) {
        const tagPOINT2D place{static_cast<double>(test.x), static_cast<double>(test.y)};
        return poly2dIsPointInside(points.data(), static_cast<DWORD>(points.size()), &place) != 0;
    });
}

/// The usual short loop, in integers: an edge above, below or left of the point is passed over.
bool scanByRows(const std::vector<tagPOINT>& points, const tagPOINT& test) {
    bool isInside = false;
    tagPOINT a = points.back();
    for (const tagPOINT& b : points) {
        const tagPOINT start = a;
        a = b;
        if ((start.y < test.y && b.y < test.y) || (start.y > test.y && b.y > test.y) ||
            (start.x < test.x && b.x < test.x)) {
            continue;
        }
        const std::int64_t ax = std::int64_t{start.x} - test.x;
        const std::int64_t ay = std::int64_t{start.y} - test.y;
        const std::int64_t bx = std::int64_t{b.x} - test.x;
        const std::int64_t by = std::int64_t{b.y} - test.y;
        const std::int64_t side = ax * by - ay * bx;
        if (side == 0 && ax * bx <= 0 && ay * by <= 0) return true;
        if ((ay > 0) != (by > 0) && (by > ay) == (side > 0)) isInside = !isInside;
    }
    return isInside;
}

void plainScanByRows(benchmark::State& state) {
    const std::vector<tagPOINT> points = outline(state);
    measureMembership(state, [&](const tagPOINT& test) { return scanByRows(points, test); });
}

BENCHMARK(velquadIsSimple)->Apply(simplicityArguments);
BENCHMARK(velquadIsSimple2D)->Apply(simplicityArguments);

BENCHMARK(velquadIsPointInside)->Apply(membershipArguments);
BENCHMARK(velquadIsPointInside2D)->Apply(membershipArguments);
BENCHMARK(plainScanByRows)->Apply(membershipArguments);

}  // namespace
