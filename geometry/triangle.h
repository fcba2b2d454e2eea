// The signed area of a triangle of the plane, inline for the fans and sums over outlines.
#ifndef VELQUAD_GEOMETRY_TRIANGLE_H
#define VELQUAD_GEOMETRY_TRIANGLE_H

#include "frame/primitives.h"
#include "velquad/types.h"

namespace velquad::geometry {

/// Half the sum of the trapezoids under the three edges. Integer differences, sums and products wrap around at
/// 32 bits. See `matCalcSignedAreaOfTriangle2P` and `matCalcSignedAreaOfTriangle2D`.
template <class Point>
constexpr double signedArea(const Point& p0, const Point& p1, const Point& p2) {
    using Coordinate = typename frame::PointTraits<Point>::Coordinate;
    using A = frame::Arithmetic<Coordinate>;
    const Coordinate trapezoid12 = A::mul(A::sub(p1.x, p2.x), A::add(p1.y, p2.y));
    const Coordinate trapezoid20 = A::mul(A::sub(p2.x, p0.x), A::add(p2.y, p0.y));
    const Coordinate trapezoid01 = A::mul(A::sub(p1.x, p0.x), A::add(p1.y, p0.y));
    return static_cast<double>(A::sub(A::add(trapezoid12, trapezoid20), trapezoid01)) * 0.5;
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_TRIANGLE_H
