// Distances between points, and from a point to a segment or an infinite line of the plane, as inner loops of
// other rooms use them: inline, one overload set for integer and double coordinates, and a square root only
// where the caller asks for one.
//
// The foot of a perpendicular is found by crossing the line a-b with a second line through the point, at right
// angles to it. Integer differences wrap around at 32 bits before they become doubles; all else is double.
#ifndef VELQUAD_GEOMETRY_DISTANCE_H
#define VELQUAD_GEOMETRY_DISTANCE_H

#include <cmath>
#include <optional>

#include "frame/convert.h"
#include "frame/primitives.h"
#include "geometry/line_intersection.h"
#include "velquad/types.h"

namespace velquad::geometry {

/// The distance that belongs to a squared one, or the squared one itself.
inline double rootUnless(bool isSquared, double distanceSquared) {
    return isSquared ? distanceSquared : std::sqrt(distanceSquared);
}

/// The squared distance of two points of the plane. Integer differences wrap around.
template <class Point>
constexpr double distanceSquared(const Point& a, const Point& b) {
    using A = frame::Arithmetic<typename frame::PointTraits<Point>::Coordinate>;
    return frame::lengthSquared(
        tagPOINT2D{static_cast<double>(A::sub(b.x, a.x)), static_cast<double>(A::sub(b.y, a.y))});
}

/// The squared distance of two points of space.
constexpr double distanceSquared(const tagPOINT3D& a, const tagPOINT3D& b) {
    return frame::lengthSquared(frame::difference(a, b));
}

/// See `matCalcDist`, `matCalcDist2D`, `matCalcDist3D`.
template <class Point>
double distance(const Point& a, const Point& b, bool isSquared = false) {
    return rootUnless(isSquared, distanceSquared(a, b));
}

/// See `matCalcPixelScaledDist`.
inline double pixelScaledDistance(const tagPOINT& a, const tagPOINT& b, double scaleX, double scaleY,
                                  bool isSquared = false) {
    const tagPOINT2D scaled{frame::wrapSub(b.x, a.x) * scaleX, frame::wrapSub(b.y, a.y) * scaleY};
    return rootUnless(isSquared, frame::lengthSquared(scaled));
}

/// The point of a segment or line that is nearest to a point.
template <class ClosestPoint>
struct LinearFoot {
    double distance;       ///< From `closest` to the point, squared where that was asked for.
    ClosestPoint closest;  ///< The nearest point.
    double parameter;      ///< Its place on a -> b: 0 at a, 1 at b.
};

using SegmentFoot = LinearFoot<tagPOINT2D>;

/// Hands a foot to a caller's optional outputs.
/// @return its distance; `kNoValue`, with nothing stored, when there is none.
template <class ClosestPoint>
double storeFoot(const std::optional<LinearFoot<ClosestPoint>>& foot, ClosestPoint* closest,
                 double* parameter) {
    if (!foot) return kNoValue;
    if (parameter != nullptr) *parameter = foot->parameter;
    if (closest != nullptr) *closest = foot->closest;
    return foot->distance;
}

/// Where segments and lines of integer and of double points differ, on purpose.
template <class Point>
struct FootTraits;

template <>
struct FootTraits<tagPOINT> {
    /// A foot in this band keeps its parameter, so it may lie a little beyond either end.
    static constexpr ParameterBand unclamped = kWholeSegment;

    static constexpr bool isSegmentPoint(const tagPOINT& a, const tagPOINT& b) {
        return frame::samePoint(a, b);
    }
    static bool isLinePoint(const tagPOINT& a, const tagPOINT& b) {
        constexpr double kNullLength = 1e-7;
        return frame::isSmaller(kNullLength, frame::wrapSub(b.x, a.x)) &&
               frame::isSmaller(kNullLength, frame::wrapSub(b.y, a.y));
    }
    static constexpr bool isAtEnd(double parameter) {
        return !unclamped.contains(parameter) && parameter > 1.0;
    }
    static constexpr bool isAtStart(double parameter) {
        return !unclamped.contains(parameter) && !(parameter > 1.0);
    }
};

template <>
struct FootTraits<tagPOINT2D> {
    static bool isSegmentPoint(const tagPOINT2D& a, const tagPOINT2D& b) {
        constexpr double kNullLength = 1e-40;
        return frame::isSmaller(kNullLength, a.x - b.x) && frame::isSmaller(kNullLength, a.y - b.y);
    }
    static bool isLinePoint(const tagPOINT2D& a, const tagPOINT2D& b) { return isSegmentPoint(a, b); }
    /// A foot within rounding of an end is that end.
    static constexpr bool isAtEnd(double parameter) {
        constexpr double kHighestInside = 0.9999999999999998;
        return parameter > kHighestInside;
    }
    static constexpr bool isAtStart(double parameter) {
        constexpr double kLowestInside = 2.220446049250313e-16;
        return kLowestInside > parameter;
    }
};

/// Segments of space follow the rules of double segments in the plane.
template <>
struct FootTraits<tagPOINT3D> {
    static bool isSegmentPoint(const tagPOINT3D& a, const tagPOINT3D& b) {
        constexpr double kNullLength = 1e-40;
        return frame::isSmaller(kNullLength, b.x - a.x) && frame::isSmaller(kNullLength, b.y - a.y) &&
               frame::isSmaller(kNullLength, b.z - a.z);
    }
    static bool isLinePoint(const tagPOINT3D& a, const tagPOINT3D& b) { return isSegmentPoint(a, b); }
    static constexpr bool isAtEnd(double parameter) { return FootTraits<tagPOINT2D>::isAtEnd(parameter); }
    static constexpr bool isAtStart(double parameter) { return FootTraits<tagPOINT2D>::isAtStart(parameter); }
};

constexpr tagPOINT2D toDoublePoint(const tagPOINT& p) {
    return frame::toPoint2D(p);
}
constexpr tagPOINT2D toDoublePoint(const tagPOINT2D& p) {
    return p;
}

/// Crosses the line a-b with its perpendicular through `point`.
template <class Point>
LineCrossing crossPerpendicular(const Point& a, const Point& b, const Point& point) {
    using A = frame::Arithmetic<typename frame::PointTraits<Point>::Coordinate>;
    const Point across{A::sub(point.x, A::sub(b.y, a.y)), A::add(point.y, A::sub(b.x, a.x))};
    return crossLines(a, b, point, across);
}

/// The foot at a place that is known.
template <class Point>
SegmentFoot footAt(const tagPOINT2D& closest, double parameter, const Point& point, bool isSquared) {
    return {distance(closest, toDoublePoint(point), isSquared), closest, parameter};
}

/// The point of the segment a-b nearest to `point`. See `matCalcDistanceToSegment2L` and
/// `matCalcDistanceToSegment2D`.
template <class Point>
SegmentFoot footOnSegment(const Point& a, const Point& b, const Point& point, bool isSquared = false) {
    using Traits = FootTraits<Point>;
    if (Traits::isSegmentPoint(a, b)) return footAt(toDoublePoint(a), 0.0, point, isSquared);
    // A perpendicular that is lost to rounding has the parameter `kNoValue`, which leads to b.
    const double parameter = crossPerpendicular(a, b, point).parameterA;
    if (Traits::isAtEnd(parameter)) return footAt(toDoublePoint(b), 1.0, point, isSquared);
    if (Traits::isAtStart(parameter)) return footAt(toDoublePoint(a), 0.0, point, isSquared);
    return footAt(pointOnLine(a, b, parameter), parameter, point, isSquared);
}

/// The point of the infinite line a-b nearest to `point`; nothing when the perpendicular is lost to rounding or
/// wrap-around. See `matCalcDistanceToLine2L` and `matCalcDistanceToLine2D`.
template <class Point>
std::optional<SegmentFoot> footOnLine(const Point& a, const Point& b, const Point& point,
                                      bool isSquared = false) {
    if (FootTraits<Point>::isLinePoint(a, b)) return footAt(toDoublePoint(a), 0.0, point, isSquared);
    const LineCrossing crossing = crossPerpendicular(a, b, point);
    if (!crossing.exists) return std::nullopt;
    return footAt(pointOnLine(a, b, crossing.parameterA), crossing.parameterA, point, isSquared);
}

/// The distance of `point` from the infinite line a-b, or `kNoValue`.
template <class Point>
double distanceToLine(const Point& a, const Point& b, const Point& point, bool isSquared = false) {
    const std::optional<SegmentFoot> foot = footOnLine(a, b, point, isSquared);
    return foot ? foot->distance : kNoValue;
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_DISTANCE_H
