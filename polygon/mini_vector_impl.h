// The size of a run of an outline, for integer and double points: raster steps for the one, length for the other.
#ifndef VELQUAD_POLYGON_MINI_VECTOR_IMPL_H
#define VELQUAD_POLYGON_MINI_VECTOR_IMPL_H

#include "frame/convert.h"
#include "geometry/distance.h"
#include "polygon/point_traits.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// What the measures of integer and double runs differ in.
template <class Point>
struct MiniVectorTraits;

template <>
struct MiniVectorTraits<tagPOINT> {
    /// How many pixels a run covers. Sums are taken in 32 bits.
    using Size = DWORD;

    /// A run of no steps covers one pixel.
    static constexpr Size kStart = 1;

    // Kept: the run behind goes one step on, into the place behind the last point.
    static constexpr DWORD kStepsBehindEnd = 1;

    /// The steps of a raster line: the larger of |dx| and |dy|.
    static constexpr Size step(const tagPOINT& from, const tagPOINT& to) {
        const frame::Int32 dx = frame::wrapAbs(frame::wrapSub(to.x, from.x));
        const frame::Int32 dy = frame::wrapAbs(frame::wrapSub(to.y, from.y));
        return static_cast<Size>(dx > dy ? dx : dy);
    }
};

template <>
struct MiniVectorTraits<tagPOINT2D> {
    /// The length of a run.
    using Size = double;

    static constexpr Size kStart = 0.0;
    static constexpr DWORD kStepsBehindEnd = 0;

    static Size step(const tagPOINT2D& from, const tagPOINT2D& to) {
        return geometry::distance(from, to, false);
    }
};

template <class Point>
using MiniVectorSize = typename MiniVectorTraits<Point>::Size;

/// The steps from vertex `from` to vertex `to`, added to `size`.
template <class Point>
MiniVectorSize<Point> sizeOfSteps(const Point* points, DWORD from, DWORD to, MiniVectorSize<Point> size) {
    for (DWORD i = from; i < to; ++i)
        size += MiniVectorTraits<Point>::step(points[i], points[i + 1]);
    return size;
}

/// See `polyGetMiniVecCount` and `poly2dGetMiniVecCount`.
template <class Point>
MiniVectorSize<Point> miniVectorCount(const Point* points, DWORD count, DWORD from, DWORD to, bool outside) {
    using Traits = MiniVectorTraits<Point>;
    if (!outside) return sizeOfSteps(points, from, to, Traits::kStart);
    const MiniVectorSize<Point> before = sizeOfSteps(points, 0, from, Traits::kStart);
    if (to >= count) return before;
    return sizeOfSteps(points, to, count - 1 + Traits::kStepsBehindEnd, before);
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_MINI_VECTOR_IMPL_H
