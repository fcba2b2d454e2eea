// The primitives of the frame that inner loops of other rooms use: inline, with one template for integer and
// double coordinates.
#ifndef VELQUAD_FRAME_PRIMITIVES_H
#define VELQUAD_FRAME_PRIMITIVES_H

#include <cmath>

#include "frame/convert.h"
#include "velquad/types.h"

namespace velquad::frame {

/// What integer and double coordinates differ in: integers wrap around at 32 bits.
template <class Coordinate>
struct Arithmetic {
    static constexpr Coordinate add(Coordinate a, Coordinate b) { return a + b; }
    static constexpr Coordinate sub(Coordinate a, Coordinate b) { return a - b; }
    static constexpr Coordinate mul(Coordinate a, Coordinate b) { return a * b; }
    static constexpr Coordinate neg(Coordinate a) { return -a; }
};

template <>
struct Arithmetic<Int32> {
    static constexpr Int32 add(Int32 a, Int32 b) { return wrapAdd(a, b); }
    static constexpr Int32 sub(Int32 a, Int32 b) { return wrapSub(a, b); }
    static constexpr Int32 mul(Int32 a, Int32 b) { return wrapMul(a, b); }
    static constexpr Int32 neg(Int32 a) { return wrapNeg(a); }
};

/// The coordinate type and arithmetic of a point type.
template <class Point>
struct PointTraits;

template <>
struct PointTraits<tagPOINT> {
    using Coordinate = Int32;
};

template <>
struct PointTraits<tagPOINT2D> {
    using Coordinate = double;
};

constexpr tagPOINT2D toPoint2D(const tagPOINT& p) {
    return {static_cast<double>(p.x), static_cast<double>(p.y)};
}

/// The larger of two numbers; not-a-number when either is not a number.
constexpr double largest(double a, double b) {
    return a > b || a != a ? a : b;
}

inline bool isSmaller(double tolerance, double value) {
    return tolerance > std::fabs(value);
}

/// See `matSamePoint`.
constexpr bool samePoint(const tagPOINT& a, const tagPOINT& b) {
    return a.x == b.x && a.y == b.y;
}

/// See `matIsCCW` and `matIsCCW2D`.
template <class Point>
constexpr int orientation(const Point& p0, const Point& p1, const Point& p2) {
    using Coordinate = typename PointTraits<Point>::Coordinate;
    using A = Arithmetic<Coordinate>;
    const Coordinate dx1 = A::sub(p1.x, p0.x);
    const Coordinate dy1 = A::sub(p1.y, p0.y);
    const Coordinate dx2 = A::sub(p2.x, p0.x);
    const Coordinate dy2 = A::sub(p2.y, p0.y);
    if (A::mul(dy2, dx1) > A::mul(dx2, dy1)) return 1;
    if (A::mul(dx2, dy1) > A::mul(dy2, dx1)) return -1;
    if (0 > A::mul(dx2, dx1) || 0 > A::mul(dy2, dy1)) return -1;
    const Coordinate lengthSquared1 = A::add(A::mul(dx1, dx1), A::mul(dy1, dy1));
    const Coordinate lengthSquared2 = A::add(A::mul(dx2, dx2), A::mul(dy2, dy2));
    return lengthSquared2 > lengthSquared1 ? 1 : 0;
}

/// to - from.
constexpr tagPOINT3D difference(const tagPOINT3D& from, const tagPOINT3D& to) {
    return {to.x - from.x, to.y - from.y, to.z - from.z};
}

/// a x b.
constexpr tagPOINT3D cross(const tagPOINT3D& a, const tagPOINT3D& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// The cross product (p1 - p0) x (p2 - p0).
constexpr tagPOINT3D crossProduct(const tagPOINT3D& p0, const tagPOINT3D& p1, const tagPOINT3D& p2) {
    return cross(difference(p0, p1), difference(p0, p2));
}

constexpr double lengthSquared(const tagPOINT2D& v) {
    return v.x * v.x + v.y * v.y;
}
constexpr double lengthSquared(const tagPOINT3D& v) {
    return v.x * v.x + v.y * v.y + v.z * v.z;
}

inline double lengthOf(const tagPOINT2D& v) {
    return std::sqrt(lengthSquared(v));
}
inline double lengthOf(const tagPOINT3D& v) {
    return std::sqrt(lengthSquared(v));
}

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_PRIMITIVES_H
