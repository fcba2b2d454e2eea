// Where a point lies along a line a -> b: 0 at a, 1 at b, measured along the dominant axis only. The point is
// not asked to lie on the line.
#ifndef VELQUAD_GEOMETRY_SCALE_FACTOR_H
#define VELQUAD_GEOMETRY_SCALE_FACTOR_H

#include <cmath>

#include "frame/convert.h"
#include "frame/primitives.h"
#include "velquad/types.h"

namespace velquad::geometry {

inline double axisLength(double value) {
    return std::fabs(value);
}
/// The smallest integer stays negative, so that an axis of that length never dominates.
constexpr frame::Int32 axisLength(frame::Int32 value) {
    return frame::wrapAbs(value);
}

/// The difference point - origin as a double; two integers are subtracted with wrap-around first.
constexpr double offsetFrom(double origin, double point) {
    return point - origin;
}
constexpr double offsetFrom(frame::Int32 origin, double point) {
    return point - static_cast<double>(origin);
}
constexpr double offsetFrom(frame::Int32 origin, frame::Int32 point) {
    return static_cast<double>(frame::wrapSub(point, origin));
}

/// The parameter of `point` on a -> b. A line shorter than `lineTolerance` in both axes is a point: 0.0 when
/// `point` is within `pointTolerance` of it in both axes, `kNoValue` elsewhere.
template <class LinePoint, class TestPoint>
double scaleFactor(const LinePoint& a, const LinePoint& b, const TestPoint& point, double lineTolerance,
                   double pointTolerance) {
    using Coordinate = typename frame::PointTraits<LinePoint>::Coordinate;
    using TestCoordinate = typename frame::PointTraits<TestPoint>::Coordinate;
    using A = frame::Arithmetic<Coordinate>;
    const Coordinate dx = A::sub(b.x, a.x);
    const Coordinate dy = A::sub(b.y, a.y);
    const double offsetX = offsetFrom(static_cast<Coordinate>(a.x), static_cast<TestCoordinate>(point.x));
    const double offsetY = offsetFrom(static_cast<Coordinate>(a.y), static_cast<TestCoordinate>(point.y));
    if (frame::isSmaller(lineTolerance, static_cast<double>(dx)) &&
        frame::isSmaller(lineTolerance, static_cast<double>(dy))) {
        const bool isAtPoint =
            frame::isSmaller(pointTolerance, offsetX) && frame::isSmaller(pointTolerance, offsetY);
        return isAtPoint ? 0.0 : kNoValue;
    }
    return axisLength(dx) > axisLength(dy) ? offsetX / static_cast<double>(dx)
                                           : offsetY / static_cast<double>(dy);
}

/// A double below this is nothing; for a difference of integers the test is equality.
inline constexpr double kScaleFactorNull = 1e-40;
/// How near a point must be to a line of integer points that has no length.
inline constexpr double kScaleFactorPointTolerance2L = 1e-7;
/// A line of space whose dominant component is below this has no length.
inline constexpr double kScaleFactorNoLength3D = 1e-7;

/// See `matGetScaleFactor2D`.
inline double scaleFactor2D(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& point) {
    return scaleFactor(a, b, point, kScaleFactorNull, kScaleFactorNull);
}

/// See `matGetScaleFactor2L`.
inline double scaleFactor2L(const tagPOINT& a, const tagPOINT& b, const tagPOINT2D& point) {
    return scaleFactor(a, b, point, kScaleFactorNull, kScaleFactorPointTolerance2L);
}

/// See `matGetScaleFactor2LL`.
inline double scaleFactor2LL(const tagPOINT& a, const tagPOINT& b, const tagPOINT& point) {
    return scaleFactor(a, b, point, kScaleFactorNull, kScaleFactorPointTolerance2L);
}

/// A line of space and a point, along the dominant axis of the line.
struct DominantAxis {
    double length;  ///< b - a, signed.
    double offset;  ///< point - a.
};

/// The largest component of b - a; of equal ones the first in the order x, y, z.
inline DominantAxis dominantAxis(const tagPOINT3D& a, const tagPOINT3D& b, const tagPOINT3D& point) {
    const tagPOINT3D direction = frame::difference(a, b);
    const tagPOINT3D toPoint = frame::difference(a, point);
    DominantAxis axis{direction.x, toPoint.x};
    if (std::fabs(direction.y) > std::fabs(axis.length)) axis = {direction.y, toPoint.y};
    if (std::fabs(direction.z) > std::fabs(axis.length)) axis = {direction.z, toPoint.z};
    return axis;
}

/// See `matGetScaleFactor3D`. Unlike in the plane a line without length gives 0.0, never `kNoValue`.
inline double scaleFactor3D(const tagPOINT3D& a, const tagPOINT3D& b, const tagPOINT3D& point) {
    const DominantAxis axis = dominantAxis(a, b, point);
    return frame::isSmaller(kScaleFactorNoLength3D, axis.length) ? 0.0 : axis.offset / axis.length;
}

/// The scale factor that belongs to lines of `Point`, for a tested point in doubles.
inline double scaleFactorOnLine(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& point) {
    return scaleFactor2D(a, b, point);
}
inline double scaleFactorOnLine(const tagPOINT& a, const tagPOINT& b, const tagPOINT2D& point) {
    return scaleFactor2L(a, b, point);
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_SCALE_FACTOR_H
