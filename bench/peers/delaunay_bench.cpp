// Triangulation of scattered points, inserted one by one, and questions about places. The peers' answers to the same
// questions stand in the files delaunay_<peer>_bench.cpp.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <limits>
#include <vector>

#include "bench/peers/delaunay_queries.h"
#include "velquad/triangulation.h"

namespace {

using namespace velquad::bench;

constexpr double kDefaultTolerance = std::numeric_limits<double>::max();

class Triangulation {
  public:
    explicit Triangulation(const std::vector<tagPOINT2D>& points) {
        const tagMAT_RECT2D extent{0.0, 0.0, kSide, kSide};
        handle_ = matInitDelaunay2D(&extent);
        for (const tagPOINT2D& p : points) {
            const tagPOINT3D vertex{p.x, p.y, 0.0};
            matExtentDelaunay2D(&handle_, &vertex, kDefaultTolerance);
        }
    }
    ~Triangulation() { matExitDelaunay2D(handle_); }
    Triangulation(const Triangulation&) = delete;
    Triangulation& operator=(const Triangulation&) = delete;

    void* handle() const { return handle_; }
    unsigned size() const { return matGetPointListOfDelaunay2D(handle_, nullptr); }

    /// Finds the vertex nearest to a place by giving it a mark.
    tagPOINT2D nearest(const tagPOINT2D& place) const {
        constexpr double kMark = 1.0;
        const tagPOINT3D marked{place.x, place.y, kMark};
        matSetZValueOfDelaunayPosition(handle_, &marked, kSide);
        std::vector<tagPOINT3D> vertices(size());
        matGetPointListOfDelaunay2D(handle_, vertices.data());
        for (const tagPOINT3D& v : vertices) {
            if (v.z != kMark) continue;
            const tagPOINT3D unmarked{v.x, v.y, 0.0};
            matSetZValueOfDelaunayPosition(handle_, &unmarked, kSide);
            return {v.x, v.y};
        }
        return {-kSide, -kSide};
    }

  private:
    void* handle_;
};

void velquadInsertOneByOne(benchmark::State& state) {
    measureInsertion(state, [](const std::vector<tagPOINT2D>& points) {
        return std::size_t{Triangulation(points).size()};
    });
}

void velquadNearestVertex(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = scatteredPoints(static_cast<std::size_t>(state.range(0)));
    const Triangulation triangulation(points);
    const auto nearest = [&](const tagPOINT2D& place) { return triangulation.nearest(place); };
    if (!checkNearest(state, points, nearest)) return;
    measurePlaces(state, [&](const tagPOINT2D& place) {
        const tagPOINT3D vertex{place.x, place.y, 0.0};
        return matSetZValueOfDelaunayPosition(triangulation.handle(), &vertex, kSide);
    });
}

/// Interpolates as well.
void velquadLocate(benchmark::State& state) {
    const std::vector<tagPOINT2D> points = scatteredPoints(static_cast<std::size_t>(state.range(0)));
    const Triangulation triangulation(points);
    const auto locate = [&](const tagPOINT2D& place) {
        tagPOINT3D position{place.x, place.y, 0.0};
        tagPOINT3D corners[3] = {};
        matFindPositionInDelaunay2D(triangulation.handle(), &position, corners, nullptr);
        return Triangle{
            {{corners[0].x, corners[0].y}, {corners[1].x, corners[1].y}, {corners[2].x, corners[2].y}}};
    };
    if (checkLocated(state, points, locate)) measurePlaces(state, locate);
}

BENCHMARK(velquadInsertOneByOne)->Apply(insertionArguments);
BENCHMARK(velquadNearestVertex)->Apply(placeArguments);
BENCHMARK(velquadLocate)->Apply(placeArguments);

}  // namespace
