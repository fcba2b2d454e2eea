// Positions on an outline: the point at one, and snapping to a vertex.
#include "polygon/position.h"

#include "geometry/distance.h"
#include "velquad/polygon.h"

using velquad::geometry::distance;
using velquad::polygon::calcPoint;

namespace {

/// Moves a position between the points `start` and `end` of its edge onto the one that is near enough.
bool snapToVertex(DWORD count, bool closed, const tagPOINT2D& start, const tagPOINT2D& end,
                  const tagPOINT2D& point, double tolerance, DWORD* index, double* fraction) {
    if (!(tolerance > distance(point, start))) {
        if (!(tolerance > distance(point, end))) return false;
        // The end of an open chain's edge exists, as `end` could be computed.
        *index = closed ? velquad::polygon::nextClosedIndex(*index, count) : *index + 1;
    }
    *fraction = 0.0;
    return true;
}

}  // namespace

extern "C" int polyCalcPoint(const tagPOINT* points, DWORD count, int closed, DWORD index, double fraction,
                             tagPOINT2D* out) {
    return calcPoint(points, count, closed != 0, index, fraction, out) ? 1 : 0;
}

extern "C" int polyReplacePointByVertex(const tagPOINT* points, DWORD count, int closed, DWORD* index,
                                        double* fraction, double tolerance, tagPOINT2D* out) {
    if (points == nullptr || index == nullptr || fraction == nullptr) return 0;
    if (out != nullptr) *out = {velquad::kNoValue, velquad::kNoValue};
    const bool isClosed = closed != 0;
    tagPOINT2D start;
    tagPOINT2D end;
    tagPOINT2D point;
    if (!calcPoint(points, count, isClosed, *index, 0.0, &start)) return 0;
    if (!calcPoint(points, count, isClosed, *index, 1.0, &end)) return 0;
    if (!calcPoint(points, count, isClosed, *index, *fraction, &point)) return 0;
    bool hasMoved = false;
    if (velquad::frame::isSmaller(velquad::polygon::kFractionTolerance, *fraction)) {
        *fraction = 0.0;
    } else {
        hasMoved = snapToVertex(count, isClosed, start, end, point, tolerance, index, fraction);
    }
    if (out != nullptr) calcPoint(points, count, isClosed, *index, *fraction, out);
    return hasMoved ? 1 : 0;
}
