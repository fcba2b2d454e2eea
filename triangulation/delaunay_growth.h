// Triangulations that callers hold by handle: insertion that makes them grow, and removal.
#ifndef VELQUAD_TRIANGULATION_DELAUNAY_GROWTH_H
#define VELQUAD_TRIANGULATION_DELAUNAY_GROWTH_H

#include <memory>

#include "triangulation/delaunay.h"

namespace velquad::triangulation {

using Delaunay2DHandle = std::unique_ptr<CDelaunay2D>;

/// Inserts a point. Vertices within the tolerance give way to it, and a point outside the extent makes the
/// triangulation grow; in both cases `handle` holds another triangulation afterwards. On an exception it holds the
/// old one.
bool extend(Delaunay2DHandle& handle, const Point2d& point, double tolerance);

/// Removes the vertices within the tolerance of a place. `handle` holds another triangulation afterwards.
/// @return false, with nothing changed, when there are none.
bool reduce(Delaunay2DHandle& handle, const tagPOINT2D& place, double tolerance);

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_DELAUNAY_GROWTH_H
