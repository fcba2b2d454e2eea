/// @file
/// Delaunay triangulation and Voronoi maps.
#ifndef VELQUAD_TRIANGULATION_H
#define VELQUAD_TRIANGULATION_H

#include <cstdint>

#include "velquad/platform.h"
#include "velquad/types.h"

extern "C" {

/// @name Voronoi map
/// A raster of cells, each of which holds the identifier of its nearest seed point.
///
///     void* map = matAllocVoronoiMap2D(640, 480);
///     matAddPointToVoronoiMap2D(map, &point, 7);          // as often as wanted
///     matComputeVoronoiMap2D(map);
///     int id = matGetIDFromNeighborInVoronoiMap2D(map, x, y);
///     matFreeVoronoiMap2D(map);
///
/// A map belongs to one thread at a time.
/// @{

/// Makes a map whose cells all hold 0, without seeds.
/// @param width, height  columns and rows. 0 gives a map without cells.
/// @return the map, to be released with `matFreeVoronoiMap2D`; null when memory is short or one count is below 0.
VELQUAD_API void* matAllocVoronoiMap2D(int width, int height);

/// Releases a map. Null is ignored.
VELQUAD_API void matFreeVoronoiMap2D(void* map);

/// Adds a seed. The cells stay as they are until the next computation.
/// @param point  where the seed lies, in cells; it may lie outside the map.
/// @param id     what cells nearest to it will hold; identifiers may repeat.
/// @return 1; 0 for a null map. Memory shortage throws `std::bad_alloc` and leaves the map as it was.
VELQUAD_API int matAddPointToVoronoiMap2D(void* map, const tagPOINT* point, int id);

/// Fills all cells.
///   (1) The nearest seed has the smallest (y - seed.y)^2 + (x - seed.x)^2; among equals the first one added wins.
///   (2) Differences, squares and sum wrap around at 32 bits and are compared with their sign. A seed farther away
///       than 46340 cells can therefore count as near; such seeds give what the formula gives.
/// Without seeds the map stays as it is and a `CInvalidArgException*` is thrown, unless the map has no cells.
/// @return 0, always; nothing is done for a null map.
/// @par Cost  near the number of cells, for any number of seeds spread over the map or in clusters. Only far
///            seeds, from some hundred thousand cells on, cost an operation each a cell.
VELQUAD_API int matComputeVoronoiMap2D(void* map);

/// Reads a cell.
/// @param x, y  column and row, 0 or more. Negative values are not checked one by one: they address the cells of
///              the rows above.
/// @return what the cell holds: an identifier, or 0 before the first computation. -1 for a null map, for x or y
///         beyond the last column or row, and for what lies before the first cell.
VELQUAD_API int matGetIDFromNeighborInVoronoiMap2D(void* map, int x, int y);

/// @}

}  // extern "C"

#endif  // VELQUAD_TRIANGULATION_H
