// Nearest seeds of all cells of a raster.
#ifndef VELQUAD_TRIANGULATION_NEAREST_SEED_H
#define VELQUAD_TRIANGULATION_NEAREST_SEED_H

#include <cstdint>
#include <vector>

#include "frame/convert.h"

namespace velquad::triangulation {

/// A seed of a Voronoi map.
struct VoronoiPoint {
    std::int32_t x;
    std::int32_t y;
    std::int32_t id;
};

/// The squared distance of a cell from a seed. Differences, squares and sum wrap around at 32 bits, so a far seed
/// can seem near, or nearer than near.
constexpr std::int32_t wrappingDistanceSquared(std::int32_t x, std::int32_t y, const VoronoiPoint& seed) {
    const std::int32_t dx = frame::wrapSub(x, seed.x);
    const std::int32_t dy = frame::wrapSub(y, seed.y);
    return frame::wrapAdd(frame::wrapMul(dy, dy), frame::wrapMul(dx, dx));
}

/// Writes into each cell the identifier of the seed with the smallest `wrappingDistanceSquared`; among equals, of
/// the first one.
/// @param cells  `width` * `height` cells, row by row; both counts are 1 or more.
/// @param seeds  one seed or more.
void assignNearestSeeds(std::int32_t* cells, std::int32_t width, std::int32_t height,
                        const std::vector<VoronoiPoint>& seeds);

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_NEAREST_SEED_H
