// Membership of a point in an outline, and the position of two outlines to one another.
#include "polygon/membership_impl.h"
#include "polygon/relative_position_impl.h"
#include "velquad/polygon.h"

using velquad::polygon::Outline;

extern "C" int polyIsPointInside(const tagPOINT* points, DWORD count, const tagPOINT* point) {
    if (count == 0) return velquad::polygon::kOutside;
    return velquad::polygon::isPointInside(points, count, *point);
}

extern "C" int polyGetRelativePosition(const tagPOINT* pointsA, DWORD countA, int closedA,
                                       const tagPOINT* pointsB, DWORD countB, int closedB) {
    return velquad::polygon::relativePosition(Outline<tagPOINT>{pointsA, countA, closedA != 0},
                                              Outline<tagPOINT>{pointsB, countB, closedB != 0});
}
