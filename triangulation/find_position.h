// Where a place lies in a triangulation, and what z value belongs to it.
#ifndef VELQUAD_TRIANGULATION_FIND_POSITION_H
#define VELQUAD_TRIANGULATION_FIND_POSITION_H

#include <cstdint>

#include "triangulation/delaunay.h"

namespace velquad::triangulation {

/// The vertices that a place was found between: one vertex, the ends of an edge, or the corners of a triangle.
struct FoundCorners {
    std::uint32_t count = 0;  ///< 0 when nothing was found.
    Point2d corners[3];
};

/// Finds the corners for a place and moves the place to where its z value belongs.
/// @param query         x, y and the identifier asked for. Changed only when corners are found, and then holds the
///                      place and its z value.
/// @param isOutside     receives 1 or 0; may be null.
/// @param filtersByIds  whether only vertices with the identifier asked for count.
FoundCorners findPosition(const CDelaunay2D& triangulation, Point2d& query, int* isOutside,
                          unsigned int flags, bool filtersByIds);

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_FIND_POSITION_H
