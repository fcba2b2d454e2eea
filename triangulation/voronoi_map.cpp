// A raster Voronoi diagram behind a handle.
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <vector>

#include "triangulation/nearest_seed.h"
#include "velquad/framework.h"
#include "velquad/triangulation.h"

namespace velquad::triangulation {
namespace {

struct CellDeleter {
    void operator()(std::int32_t* cells) const { std::free(cells); }
};

class CVoronoiMap2D {
  public:
    /// Leaves the map without cells when memory is short. A count below 0 is refused in the same way, unless both
    /// are: then the map is one that neither computes nor answers.
    CVoronoiMap2D(std::int32_t width, std::int32_t height) : width_(width), height_(height) {
        const std::uint64_t byteCount =
            static_cast<std::uint64_t>(static_cast<std::int64_t>(width) * height) * sizeof(std::int32_t);
        if (byteCount > kMostBytes) return;
        // An empty map is a map; not every system gives a block for no bytes.
        cells_.reset(static_cast<std::int32_t*>(
            std::calloc(byteCount == 0 ? 1 : static_cast<std::size_t>(byteCount), 1)));
        cellCount_ = static_cast<std::int64_t>(byteCount / sizeof(std::int32_t));
    }

    bool hasCells() const { return cells_ != nullptr; }

    void addPoint(const VoronoiPoint& point) { points_.push_back(point); }

    void compute() {
        if (height_ < 1 || width_ < 1) return;
        if (points_.empty()) AfxThrowInvalidArgException();
        assignNearestSeeds(cells_.get(), width_, height_, points_);
    }

    /// Kept: only the upper limits are checked, so x = -1 is the last cell of the row above. What would lie outside
    /// the cells altogether has no identifier.
    std::int32_t idAt(std::int32_t x, std::int32_t y) const {
        if (x >= width_ || y >= height_) return kNoId;
        const std::int64_t index = static_cast<std::int64_t>(y) * width_ + x;
        return index >= 0 && index < cellCount_ ? cells_.get()[index] : kNoId;
    }

    static constexpr std::int32_t kNoId = -1;

  private:
    static constexpr std::uint64_t kMostBytes = PTRDIFF_MAX;

    std::unique_ptr<std::int32_t, CellDeleter> cells_;
    std::int64_t cellCount_ = 0;
    std::int32_t width_;
    std::int32_t height_;
    std::vector<VoronoiPoint> points_;
};

}  // namespace
}  // namespace velquad::triangulation

using velquad::triangulation::CVoronoiMap2D;

extern "C" void* matAllocVoronoiMap2D(int width, int height) {
    std::unique_ptr<CVoronoiMap2D> map(new (std::nothrow) CVoronoiMap2D(width, height));
    return map != nullptr && map->hasCells() ? map.release() : nullptr;
}

extern "C" void matFreeVoronoiMap2D(void* map) {
    delete static_cast<CVoronoiMap2D*>(map);
}

extern "C" int matAddPointToVoronoiMap2D(void* map, const tagPOINT* point, int id) {
    if (map == nullptr || point == nullptr) return 0;
    static_cast<CVoronoiMap2D*>(map)->addPoint(
        {static_cast<std::int32_t>(point->x), static_cast<std::int32_t>(point->y), id});
    return 1;
}

extern "C" int matComputeVoronoiMap2D(void* map) {
    if (map != nullptr) static_cast<CVoronoiMap2D*>(map)->compute();
    return 0;
}

extern "C" int matGetIDFromNeighborInVoronoiMap2D(void* map, int x, int y) {
    return map == nullptr ? CVoronoiMap2D::kNoId : static_cast<const CVoronoiMap2D*>(map)->idAt(x, y);
}
