// Runs of edges that lie clearly beside a ray; see EdgeFilter.
#ifndef VELQUAD_POLYGON_EDGE_SIDE_KERNELS_H
#define VELQUAD_POLYGON_EDGE_SIDE_KERNELS_H

#include <cstdint>

#include "velquad/types.h"

namespace velquad::polygon {

/// What makes an integer point clear: x and y from the test point on fit 16 bits, and `factorX` x + `factorY` y is more
/// than `above`. No product or sum of such numbers wraps around.
struct ClearSide2L {
    std::int32_t testX;
    std::int32_t testY;
    std::int16_t factorX;
    std::int16_t factorY;
    std::int32_t above;
};

/// What makes an edge of doubles clear: both ends satisfy `factorX` x - `factorY` y >= `least` and have coordinates of at most
/// `reach`, and the edge is exactly vertical or at least `leastWidth` wide.
struct ClearSide {
    double factorX;
    double factorY;
    double least;
    double reach;
    double leastWidth;
};

struct EdgeSideKernels {
    /// Counts points that are clear, in whole runs of some: the first ones of `count`.
    DWORD (*countClearPoints)(const tagPOINT* points, DWORD count, const ClearSide2L& side);
    /// Counts edges that are clear, in whole runs of some: the first ones of the `count` edges between points[0] and
    /// points[count]. The end of the last edge counted is not looked at but as its end in x.
    DWORD (*countClearEdges)(const tagPOINT2D* points, DWORD count, const ClearSide& side);
};

const EdgeSideKernels& edgeSideKernels();

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_EDGE_SIDE_KERNELS_H
