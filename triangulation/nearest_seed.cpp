// Nearest seeds of all cells of a raster, exactly, by divide and conquer over tiles.
//
// Each tile carries the seeds that can be nearest to one of its cells. A tile is quartered; a quarter drops every
// seed that one reference seed beats at all its cells. That takes one look at a corner: the difference of two
// squared distances is a linear function of the cell, so its least value over a tile lies at a known corner. A
// tile with a single seed left is filled; a smallest tile compares its few seeds cell by cell.
//
// Distances wrap around at 32 bits. As long as a seed's distance stays within one turn of 2^32 over a tile, it is
// a quadratic function less a constant and all of the above holds. A seed that changes turns within a tile is
// kept, and never is a reference.
//
// Cost: a few operations a cell for seeds spread over the map, whatever their number; cells times seeds only for
// seeds so far away that each changes turns within every small tile.
#include "triangulation/nearest_seed.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace velquad::triangulation {
namespace {

/// Width and height of the tiles that are compared cell by cell.
constexpr std::int32_t kLeafSize = 8;
/// Width and height of the tiles that the map is cut into at first; keeps squares of coordinates within 64 bits.
constexpr std::int32_t kRootSize = 4096;

/// Cells [x, x + width) by [y, y + height).
struct Tile {
    std::int32_t x;
    std::int32_t y;
    std::int32_t width;
    std::int32_t height;
};

/// The vector from a seed to the first cell of a tile: any vector that is right modulo 2^32 will do.
struct Offset {
    std::int64_t x;
    std::int64_t y;

    Offset(const Tile& tile, const VoronoiPoint& seed)
        : x(frame::wrapSub(tile.x, seed.x)), y(frame::wrapSub(tile.y, seed.y)) {}
};

/// x * x + y * y; below 2^64 for offsets of 2^31 and tiles of `kRootSize`.
std::uint64_t lengthSquared(std::int64_t x, std::int64_t y) {
    return static_cast<std::uint64_t>(x * x) + static_cast<std::uint64_t>(y * y);
}

/// What 32 bits keep of a squared distance.
std::int64_t wrapped(std::uint64_t distanceSquared) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(distanceSquared));
}

/// The number of turns of 2^32 that wrapping takes off a squared distance.
std::uint64_t turns(std::uint64_t distanceSquared) {
    return (distanceSquared + 0x80000000U) >> 32;
}

/// The value of [low, low + extent) that is nearest to 0.
std::int64_t nearestToZero(std::int64_t low, std::int32_t extent) {
    const std::int64_t high = low + extent - 1;
    if (low > 0) return low;
    return high < 0 ? high : 0;
}

/// The value of [low, low + extent) that is farthest from 0.
std::int64_t farthestFromZero(std::int64_t low, std::int32_t extent) {
    const std::int64_t high = low + extent - 1;
    return -low > high ? low : high;
}

/// Tells whether the distances of all cells of a tile lie in one turn.
bool staysInOneTurn(const Offset& offset, const Tile& tile) {
    const std::uint64_t lowest =
        lengthSquared(nearestToZero(offset.x, tile.width), nearestToZero(offset.y, tile.height));
    const std::uint64_t highest =
        lengthSquared(farthestFromZero(offset.x, tile.width), farthestFromZero(offset.y, tile.height));
    return turns(lowest) == turns(highest);
}

class TileAssignment {
  public:
    TileAssignment(std::int32_t* cells, std::int32_t width, const std::vector<VoronoiPoint>& seeds,
                   bool mayWrap)
        : cells_(cells), width_(width), seeds_(seeds), mayWrap_(mayWrap) {}

    void assignRoot(const Tile& tile) {
        candidates_.clear();
        for (std::size_t i = 0; i < seeds_.size(); ++i)
            candidates_.push_back(static_cast<std::uint32_t>(i));
        assign(tile, 0);
    }

  private:
    /// Assigns a tile whose possible seeds are candidates_[begin ..], in their order. Leaves those as they are.
    void assign(const Tile& tile, std::size_t begin) {
        const std::size_t end = candidates_.size();
        keepPossible(tile, begin);
        if (candidates_.size() - end == 1) {
            fill(tile, seeds_[candidates_[end]].id);
        } else if (tile.width <= kLeafSize && tile.height <= kLeafSize) {
            compare(tile, end);
        } else {
            quarter(tile, end);
        }
        candidates_.resize(end);
    }

    void quarter(const Tile& tile, std::size_t begin) {
        const std::int32_t leftWidth = firstHalf(tile.width);
        const std::int32_t topHeight = firstHalf(tile.height);
        for (const bool isBottom : {false, true}) {
            for (const bool isRight : {false, true}) {
                const Tile part{isRight ? tile.x + leftWidth : tile.x, isBottom ? tile.y + topHeight : tile.y,
                                isRight ? tile.width - leftWidth : leftWidth,
                                isBottom ? tile.height - topHeight : topHeight};
                if (part.width > 0 && part.height > 0) assign(part, begin);
            }
        }
    }

    /// The larger half, a power of two times `kLeafSize`, so that most smallest tiles are whole ones.
    static std::int32_t firstHalf(std::int32_t extent) {
        std::int32_t half = kLeafSize;
        while (half * 2 < extent)
            half *= 2;
        return half < extent ? half : extent;
    }

    /// Tells whether a seed's distance is a plain quadratic function over a tile.
    bool isPlain(const Offset& offset, const Tile& tile) const {
        return !mayWrap_ || staysInOneTurn(offset, tile);
    }

    /// Appends those of candidates_[begin ..] that the reference seed does not beat everywhere in the tile.
    void keepPossible(const Tile& tile, std::size_t begin) {
        const std::size_t end = candidates_.size();
        const std::uint32_t reference = referenceSeed(tile, begin, end);
        if (reference == kNoReference) {
            for (std::size_t i = begin; i < end; ++i)
                candidates_.push_back(candidates_[i]);
            return;
        }
        const Offset from(tile, seeds_[reference]);
        const std::int64_t value = wrapped(lengthSquared(from.x, from.y));
        for (std::size_t i = begin; i < end; ++i) {
            const std::uint32_t seed = candidates_[i];
            const Offset offset(tile, seeds_[seed]);
            if (isPlain(offset, tile)) {
                // The least lead of the reference seed, over all cells of the tile.
                std::int64_t lead = wrapped(lengthSquared(offset.x, offset.y)) - value;
                const std::int64_t slopeX = 2 * (offset.x - from.x);
                const std::int64_t slopeY = 2 * (offset.y - from.y);
                if (slopeX < 0) lead += slopeX * (tile.width - 1);
                if (slopeY < 0) lead += slopeY * (tile.height - 1);
                if (lead > 0 || (lead == 0 && reference < seed)) continue;
            }
            candidates_.push_back(seed);
        }
    }

    /// The plain seed nearest to the middle of the tile.
    std::uint32_t referenceSeed(const Tile& tile, std::size_t begin, std::size_t end) const {
        std::uint32_t best = kNoReference;
        std::int64_t bestValue = 0;
        for (std::size_t i = begin; i < end; ++i) {
            const Offset offset(tile, seeds_[candidates_[i]]);
            if (!isPlain(offset, tile)) continue;
            const std::int64_t value =
                wrapped(lengthSquared(offset.x + tile.width / 2, offset.y + tile.height / 2));
            if (best != kNoReference && value >= bestValue) continue;
            best = candidates_[i];
            bestValue = value;
        }
        return best;
    }

    void fill(const Tile& tile, std::int32_t id) {
        for (std::int32_t row = 0; row < tile.height; ++row)
            std::fill_n(rowOf(tile, row), tile.width, id);
    }

    /// Compares candidates_[begin ..] cell by cell.
    void compare(const Tile& tile, std::size_t begin) {
        std::int32_t distances[kLeafSize][kLeafSize];
        std::int32_t ids[kLeafSize][kLeafSize];
        for (auto& row : distances)
            std::fill_n(row, kLeafSize, 0x7FFFFFFF);
        // Should all distances of a cell be the largest integer, the first seed still has it.
        for (auto& row : ids)
            std::fill_n(row, kLeafSize, seeds_[candidates_[begin]].id);
        for (std::size_t i = begin; i < candidates_.size(); ++i)
            compareSeed(tile, seeds_[candidates_[i]], distances, ids);
        for (std::int32_t row = 0; row < tile.height; ++row)
            std::copy_n(ids[row], tile.width, rowOf(tile, row));
    }

    static void compareSeed(const Tile& tile, const VoronoiPoint& seed,
                            std::int32_t (&distances)[kLeafSize][kLeafSize],
                            std::int32_t (&ids)[kLeafSize][kLeafSize]) {
        std::int32_t squaresX[kLeafSize];
        for (std::int32_t column = 0; column < kLeafSize; ++column) {
            const std::int32_t dx = frame::wrapSub(frame::wrapAdd(tile.x, column), seed.x);
            squaresX[column] = frame::wrapMul(dx, dx);
        }
        for (std::int32_t row = 0; row < kLeafSize; ++row) {
            const std::int32_t dy = frame::wrapSub(frame::wrapAdd(tile.y, row), seed.y);
            const std::int32_t squareY = frame::wrapMul(dy, dy);
            for (std::int32_t column = 0; column < kLeafSize; ++column) {
                const std::int32_t distance = frame::wrapAdd(squareY, squaresX[column]);
                const bool isNearer = distance < distances[row][column];
                distances[row][column] = isNearer ? distance : distances[row][column];
                ids[row][column] = isNearer ? seed.id : ids[row][column];
            }
        }
    }

    std::int32_t* rowOf(const Tile& tile, std::int32_t row) const {
        return cells_ + static_cast<std::size_t>(tile.y + row) * static_cast<std::size_t>(width_) + tile.x;
    }

    static constexpr std::uint32_t kNoReference = 0xFFFFFFFF;

    std::int32_t* cells_;
    std::int32_t width_;
    const std::vector<VoronoiPoint>& seeds_;
    bool mayWrap_;
    std::vector<std::uint32_t>
        candidates_;  ///< A stack: the seeds of a tile behind those of the tile around it.
};

/// Tells whether a distance on the map can reach 2^31.
bool canWrap(std::int32_t width, std::int32_t height, const std::vector<VoronoiPoint>& seeds) {
    constexpr std::int64_t kFarthest = 0x7FFFFFFF;
    for (const VoronoiPoint& seed : seeds) {
        const std::int64_t dx = farthestFromZero(-static_cast<std::int64_t>(seed.x), width);
        const std::int64_t dy = farthestFromZero(-static_cast<std::int64_t>(seed.y), height);
        if (dx > 0xFFFF || dx < -0xFFFF || dy > 0xFFFF || dy < -0xFFFF) return true;
        if (dx * dx + dy * dy > kFarthest) return true;
    }
    return false;
}

void assignByTiles(std::int32_t* cells, std::int32_t width, std::int32_t height,
                   const std::vector<VoronoiPoint>& seeds) {
    TileAssignment assignment(cells, width, seeds, canWrap(width, height, seeds));
    for (std::int64_t y = 0; y < height; y += kRootSize) {
        for (std::int64_t x = 0; x < width; x += kRootSize) {
            const auto left = static_cast<std::int32_t>(x);
            const auto top = static_cast<std::int32_t>(y);
            assignment.assignRoot(
                {left, top, std::min(kRootSize, width - left), std::min(kRootSize, height - top)});
        }
    }
}

/// Compares all seeds at all cells. Needs no memory.
void assignByComparison(std::int32_t* cells, std::int32_t width, std::int32_t height,
                        const std::vector<VoronoiPoint>& seeds) {
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const VoronoiPoint* nearest = seeds.data();
            std::int32_t best = wrappingDistanceSquared(x, y, *nearest);
            for (const VoronoiPoint& seed : seeds) {
                const std::int32_t distance = wrappingDistanceSquared(x, y, seed);
                if (best <= distance) continue;
                best = distance;
                nearest = &seed;
            }
            *cells++ = nearest->id;
        }
    }
}

}  // namespace

void assignNearestSeeds(std::int32_t* cells, std::int32_t width, std::int32_t height,
                        const std::vector<VoronoiPoint>& seeds) {
    try {
        assignByTiles(cells, width, height, seeds);
    } catch (const std::bad_alloc&) {
        assignByComparison(cells, width, height, seeds);
    }
}

}  // namespace velquad::triangulation
