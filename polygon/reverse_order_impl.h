// Reversal of the point order, for integer and double outlines.
#ifndef VELQUAD_POLYGON_REVERSE_ORDER_IMPL_H
#define VELQUAD_POLYGON_REVERSE_ORDER_IMPL_H

#include <algorithm>

#include "velquad/types.h"

namespace velquad::polygon {

/// Turns the order of the points round, a closing point included. Fewer than two points stay as they are.
template <class Point>
void reverseOrder(Point* points, DWORD count) {
    std::reverse(points, points + count);
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_REVERSE_ORDER_IMPL_H
