// Removal of points that repeat the one before, for integer and double outlines.
//
// The obvious walk removes one point at a time by moving the tail down, which is quadratic in the number of
// points when many repeat. Where whole points move, the same points come out of one pass that copies each
// survivor once: a point is compared with the last survivor in both.
#ifndef VELQUAD_POLYGON_DOUBLE_POINTS_IMPL_H
#define VELQUAD_POLYGON_DOUBLE_POINTS_IMPL_H

#include <cstring>

#include "polygon/point_traits.h"

namespace velquad::polygon {

/// The number of points in front of the first one for which `isRepeat(point before, point)` holds.
template <class Point, class IsRepeat>
DWORD countBeforeRepeat(const Point* points, DWORD count, IsRepeat isRepeat) {
    if (count < 2) return count;
    DWORD i = 1;
    while (i < count && !isRepeat(points[i - 1], points[i]))
        ++i;
    return i;
}

/// Keeps the first point and each point for which `isRepeat(survivor, point)` is false, where `survivor` is
/// the last point kept. The kept points stand at the front, in order; what stands behind them is unspecified.
/// @return the number of points kept.
template <class Point, class IsRepeat>
DWORD removeRepeats(Point* points, DWORD count, IsRepeat isRepeat) {
    DWORD kept = countBeforeRepeat(points, count, isRepeat);
    for (DWORD i = kept; i < count; ++i) {
        if (!isRepeat(points[kept - 1], points[i])) points[kept++] = points[i];
    }
    return kept;
}

/// `removeRepeats` for an exact equality, where a point can be compared with the one before it instead of the
/// survivor, as the two are equal. That frees the loop from branches: each point is stored, and the next one
/// is stored over it when it was a repeat.
template <class Point>
DWORD removeExactRepeats(Point* points, DWORD count) {
    using Traits = PointTraits<Point>;
    DWORD kept = countBeforeRepeat(points, count, Traits::equal);
    if (kept == count) return count;
    Point previous = points[kept - 1];
    for (DWORD i = kept; i < count; ++i) {
        const Point point = points[i];
        points[kept] = point;
        kept += Traits::equal(previous, point) ? 0U : 1U;
        previous = point;
    }
    return kept;
}

/// The walk that moves `PointTraits::kMovedBytesPerPoint` bytes for each point behind a removed one. For
/// traits that move less than a point the result depends on every single move.
template <class Point>
DWORD removeDoublePointsByTailMoves(Point* points, DWORD count) {
    using Traits = PointTraits<Point>;
    DWORD i = 1;
    while (i < count) {
        if (!Traits::equal(points[i - 1], points[i])) {
            ++i;
            continue;
        }
        std::memmove(&points[i], &points[i + 1], (count - i - 1) * Traits::kMovedBytesPerPoint);
        --count;
    }
    return count;
}

/// See `polyRemoveDoublePoints`.
template <class Point>
DWORD removeDoublePoints(Point* points, DWORD count) {
    using Traits = PointTraits<Point>;
    if constexpr (Traits::kMovedBytesPerPoint == sizeof(Point)) {
        return removeExactRepeats(points, count);
    } else {
        return removeDoublePointsByTailMoves(points, count);
    }
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_DOUBLE_POINTS_IMPL_H
