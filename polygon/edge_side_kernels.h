// Runs of edges of doubles that lie clearly beside a ray; see EdgeFilter<tagPOINT2D>.
#ifndef VELQUAD_POLYGON_EDGE_SIDE_KERNELS_H
#define VELQUAD_POLYGON_EDGE_SIDE_KERNELS_H

#include "velquad/types.h"

namespace velquad::polygon {

/// What makes an edge clear: both ends satisfy `factorX` x - `factorY` y >= `least` and have coordinates of at most
/// `reach`, and the edge is exactly vertical or at least `leastWidth` wide.
struct ClearSide {
    double factorX;
    double factorY;
    double least;
    double reach;
    double leastWidth;
};

struct EdgeSideKernels {
    /// Counts edges that are clear, in whole runs of some: the first ones of the `count` edges between points[0] and
    /// points[count]. The end of the last edge counted is not looked at but as its end in x.
    DWORD (*countClearEdges)(const tagPOINT2D* points, DWORD count, const ClearSide& side);
};

const EdgeSideKernels& edgeSideKernels();

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_EDGE_SIDE_KERNELS_H
