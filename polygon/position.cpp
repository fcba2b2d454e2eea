// Positions on an outline: the point at one, and snapping to a vertex.
#include "polygon/position.h"

#include "geometry/distance.h"
#include "velquad/polygon.h"

namespace velquad::polygon {

namespace {

/// Moves a position between the points `start` and `end` of its edge onto the one that is near enough.
bool snapToVertex(DWORD count, bool closed, const tagPOINT2D& start, const tagPOINT2D& end,
                  const tagPOINT2D& point, double tolerance, DWORD* index, double* fraction) {
    if (!(tolerance > geometry::distance(point, start))) {
        if (!(tolerance > geometry::distance(point, end))) return false;
        // The end of an open chain's edge exists, as `end` could be computed.
        *index = closed ? nextClosedIndex(*index, count) : *index + 1;
    }
    *fraction = 0.0;
    return true;
}

}  // namespace

bool replacePointByVertex(const tagPOINT* points, DWORD count, bool closed, DWORD* index, double* fraction,
                          double tolerance, tagPOINT2D* out) {
    if (points == nullptr || index == nullptr || fraction == nullptr) return false;
    if (out != nullptr) *out = {kNoValue, kNoValue};
    tagPOINT2D start;
    tagPOINT2D end;
    tagPOINT2D point;
    if (!calcPoint(points, count, closed, *index, 0.0, &start)) return false;
    if (!calcPoint(points, count, closed, *index, 1.0, &end)) return false;
    if (!calcPoint(points, count, closed, *index, *fraction, &point)) return false;
    bool hasMoved = false;
    if (frame::isSmaller(kFractionTolerance, *fraction)) {
        *fraction = 0.0;
    } else {
        hasMoved = snapToVertex(count, closed, start, end, point, tolerance, index, fraction);
    }
    if (out != nullptr) calcPoint(points, count, closed, *index, *fraction, out);
    return hasMoved;
}

}  // namespace velquad::polygon

extern "C" int polyCalcPoint(const tagPOINT* points, DWORD count, int closed, DWORD index, double fraction,
                             tagPOINT2D* out) {
    return velquad::polygon::calcPoint(points, count, closed != 0, index, fraction, out) ? 1 : 0;
}

extern "C" int polyReplacePointByVertex(const tagPOINT* points, DWORD count, int closed, DWORD* index,
                                        double* fraction, double tolerance, tagPOINT2D* out) {
    const bool hasMoved =
        velquad::polygon::replacePointByVertex(points, count, closed != 0, index, fraction, tolerance, out);
    return hasMoved ? 1 : 0;
}
