// What the integer and the double outlines differ in. An algorithm that both families share is a template
// over the point type, and asks these traits for everything that is not the same.
#ifndef VELQUAD_POLYGON_POINT_TRAITS_H
#define VELQUAD_POLYGON_POINT_TRAITS_H

#include <cstddef>

#include "frame/primitives.h"
#include "geometry/scale_factor.h"
#include "velquad/types.h"

namespace velquad::polygon {

template <class Point>
struct PointTraits;

template <>
struct PointTraits<tagPOINT> {
    using Coordinate = frame::Int32;
    using Arithmetic = frame::Arithmetic<Coordinate>;

    /// Bytes that move down for each point behind a removed one: the whole point.
    static constexpr std::size_t kMovedBytesPerPoint = sizeof(tagPOINT);

    /// Both coordinates are the same integers.
    static constexpr bool equal(const tagPOINT& a, const tagPOINT& b) { return frame::samePoint(a, b); }

    /// The parameter of `point` on the line a -> b, measured along the dominant axis.
    static double positionOnLine(const tagPOINT& a, const tagPOINT& b, const tagPOINT& point) {
        return geometry::scaleFactor2LL(a, b, point);
    }
};

template <>
struct PointTraits<tagPOINT2D> {
    using Coordinate = double;
    using Arithmetic = frame::Arithmetic<Coordinate>;

    /// Points whose coordinates both differ by less than this are one point.
    static constexpr double kEqualTolerance = 1e-7;

    // Kept: half of a point. Behind a removed double point only the front half of the tail moves down, so the
    // points behind it are not the ones of the input.
    static constexpr std::size_t kMovedBytesPerPoint = sizeof(tagPOINT2D) / 2;

    static bool equal(const tagPOINT2D& a, const tagPOINT2D& b) {
        return frame::isSmaller(kEqualTolerance, b.x - a.x) && frame::isSmaller(kEqualTolerance, b.y - a.y);
    }

    /// The same for doubles. A line between equal points is a point: 0 for a point equal to it, else `kNoValue`.
    static double positionOnLine(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& point) {
        return geometry::scaleFactor(a, b, point, kEqualTolerance, kEqualTolerance);
    }
};

/// The closing test of all functions that look at the points. @param count  not 0.
template <class Point>
constexpr bool isClosed(const Point* points, DWORD count) {
    return PointTraits<Point>::equal(points[0], points[count - 1]);
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_POINT_TRAITS_H
