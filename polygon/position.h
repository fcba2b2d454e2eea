// Places on an outline of integer points, for the loops of this room.
#ifndef VELQUAD_POLYGON_POSITION_H
#define VELQUAD_POLYGON_POSITION_H

#include "frame/convert.h"
#include "frame/primitives.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// A fraction below this is the vertex itself.
inline constexpr double kFractionTolerance = 1e-7;

/// See `polyMakeInt`.
inline frame::Int32 makeInt(double value) {
    return frame::truncToInt32(value > 0.0 ? value + 0.5 : value - 0.5);
}

/// See `polyMakeInt`.
inline tagPOINT makeIntPoint(const tagPOINT2D& point) {
    return {makeInt(point.x), makeInt(point.y)};
}

/// The vertex behind `index` on an outline that stores its closing point. @param count  at least 2.
constexpr DWORD nextClosedIndex(DWORD index, DWORD count) {
    return (index + 1) % (count - 1);
}

/// See `polyCalcPoint`.
inline bool calcPoint(const tagPOINT* points, DWORD count, bool closed, DWORD index, double fraction,
                      tagPOINT2D* out) {
    if (out == nullptr || points == nullptr || index >= count) return false;
    const tagPOINT2D vertex = frame::toPoint2D(points[index]);
    if (frame::isSmaller(kFractionTolerance, fraction)) {
        *out = vertex;
        return true;
    }
    DWORD nextIndex = 0;
    if (closed) {
        if (count == 1) return false;
        nextIndex = nextClosedIndex(index, count);
    } else {
        if (index == count - 1 && fraction > 0.0) return false;
        // Kept: a negative fraction at the last point runs along the edge to the first one, backwards.
        nextIndex = (index + 1) % count;
    }
    const tagPOINT& next = points[nextIndex];
    const double dx = static_cast<double>(frame::wrapSub(next.x, points[index].x));
    const double dy = static_cast<double>(frame::wrapSub(next.y, points[index].y));
    *out = {dx * fraction + vertex.x, dy * fraction + vertex.y};
    return true;
}

/// See `polyReplacePointByVertex`.
bool replacePointByVertex(const tagPOINT* points, DWORD count, bool closed, DWORD* index, double* fraction,
                          double tolerance, tagPOINT2D* out);

/// See `polyComparePositions`.
inline int comparePositions(const tagPOLY_POSITION& a, const tagPOLY_POSITION& b) {
    constexpr double kSameFraction = 1e-7;
    if (a.index != b.index) return a.index < b.index ? -1 : 1;
    if (frame::isSmaller(kSameFraction, b.fraction - a.fraction)) return 0;
    return b.fraction > a.fraction ? -1 : 1;
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_POSITION_H
