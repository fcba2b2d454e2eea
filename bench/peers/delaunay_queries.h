// The points and places that the triangulations are timed with, and the answers that all must give.
#ifndef VELQUAD_BENCH_PEERS_DELAUNAY_QUERIES_H
#define VELQUAD_BENCH_PEERS_DELAUNAY_QUERIES_H

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "velquad/types.h"

namespace velquad::bench {

/// Coordinates lie between 0 and this.
inline constexpr double kSide = 1024.0;

/// Different points, scattered evenly. Their coordinates are multiples of 1/64, which floats hold exactly, so that
/// all libraries work on the same points.
inline std::vector<tagPOINT2D> scatteredPoints(std::size_t count, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::set<std::pair<unsigned, unsigned>> known;
    std::vector<tagPOINT2D> points;
    while (points.size() < count) {
        const unsigned x = 1 + static_cast<unsigned>(random() % 65535U);
        const unsigned y = 1 + static_cast<unsigned>(random() % 65535U);
        if (known.insert({x, y}).second) points.push_back({x / 64.0, y / 64.0});
    }
    return points;
}

/// The places that are asked about. None lies near the border, outside all triangles.
inline std::vector<tagPOINT2D> scatteredPlaces() {
    std::vector<tagPOINT2D> places = scatteredPoints(1024, 2);
    for (tagPOINT2D& p : places)
        p = {kSide / 8.0 + p.x * 0.75, kSide / 8.0 + p.y * 0.75};
    return places;
}

inline double squaredDistance(const tagPOINT2D& a, const tagPOINT2D& b) {
    return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

/// The squared distance from a place to the nearest point, exact for the points above.
inline double nearestSquaredDistance(const std::vector<tagPOINT2D>& points, const tagPOINT2D& place) {
    double nearest = std::numeric_limits<double>::max();
    for (const tagPOINT2D& p : points)
        nearest = std::min(nearest, squaredDistance(p, place));
    return nearest;
}

/// Times `insertAll(points)`, which gives the number of vertices. A wrong number fails the benchmark.
template <class InsertAll>
void measureInsertion(benchmark::State& state, InsertAll insertAll) {
    const std::vector<tagPOINT2D> points = scatteredPoints(static_cast<std::size_t>(state.range(0)));
    std::size_t vertices = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(vertices = insertAll(points));
    if (vertices != points.size()) state.SkipWithError("wrong number of vertices");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Times `ask(place)` on one place after the other.
template <class Ask>
void measurePlaces(benchmark::State& state, Ask ask) {
    const std::vector<tagPOINT2D> places = scatteredPlaces();
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(ask(places[next++ % places.size()]));
}

/// Fails the benchmark unless `nearest(place)` is one of the nearest points. @return whether it is.
template <class Nearest>
bool checkNearest(benchmark::State& state, const std::vector<tagPOINT2D>& points, Nearest nearest) {
    const std::vector<tagPOINT2D> places = scatteredPlaces();
    for (std::size_t k = 0; k < 64; ++k) {
        const tagPOINT2D found = nearest(places[k]);
        if (squaredDistance(found, places[k]) == nearestSquaredDistance(points, places[k])) continue;
        state.SkipWithError("not the nearest point");
        return false;
    }
    return true;
}

/// Twice the signed area of a triangle.
inline double doubleArea(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

struct Triangle {
    tagPOINT2D corners[3];

    bool contains(const tagPOINT2D& place) const {
        const double total = doubleArea(corners[0], corners[1], corners[2]);
        bool isInside = total != 0.0;
        for (int k = 0; k < 3; ++k)
            isInside = isInside && total * doubleArea(corners[k], corners[(k + 1) % 3], place) >= 0.0;
        return isInside;
    }

    /// Tells whether no point lies within the circle through the corners, by more than rounding.
    bool isDelaunay(const std::vector<tagPOINT2D>& points) const {
        const auto [a, b, c] = corners;
        const double scale = 0.5 / doubleArea(a, b, c);
        const double ab = squaredDistance(a, b);
        const double ac = squaredDistance(a, c);
        const tagPOINT2D center{a.x + ((c.y - a.y) * ab - (b.y - a.y) * ac) * scale,
                                a.y + ((b.x - a.x) * ac - (c.x - a.x) * ab) * scale};
        constexpr double kRounding = 1e-6;
        return nearestSquaredDistance(points, center) >= squaredDistance(a, center) * (1.0 - kRounding);
    }
};

/// Fails the benchmark unless `locate(place)` is a triangle that holds the place, and whose circle is empty. Of such
/// triangles there is only one. @return whether it is.
template <class Locate>
bool checkLocated(benchmark::State& state, const std::vector<tagPOINT2D>& points, Locate locate) {
    const std::vector<tagPOINT2D> places = scatteredPlaces();
    for (std::size_t k = 0; k < 64; ++k) {
        const Triangle triangle = locate(places[k]);
        if (triangle.contains(places[k]) && triangle.isDelaunay(points)) continue;
        state.SkipWithError("not the triangle of the place");
        return false;
    }
    return true;
}

inline void insertionArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("points")->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

inline void placeArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("points")->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kNanosecond);
}

}  // namespace velquad::bench

#endif  // VELQUAD_BENCH_PEERS_DELAUNAY_QUERIES_H
