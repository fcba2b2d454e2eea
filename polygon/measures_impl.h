// Distance, length and turning of an outline, for integer and double points.
#ifndef VELQUAD_POLYGON_MEASURES_IMPL_H
#define VELQUAD_POLYGON_MEASURES_IMPL_H

#include <limits>

#include "geometry/angle.h"
#include "geometry/distance.h"
#include "polygon/point_traits.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// A place on an outline and its distance from a point.
struct NearestPlace {
    double distance = kNoValue;
    tagPOINT2D point{kNoValue, kNoValue};
    DWORD index = 0;
    double fraction = 0.0;
};

/// Keeps the nearest of the edges that it is shown; the first one among equals.
template <class Point>
class NearestEdge {
  public:
    NearestEdge(const Point& test, bool isSquared)
        : test_(test),
          isSquared_(isSquared),
          limit_(isSquared ? kNoValue : std::numeric_limits<double>::infinity()) {}

    void visit(const Point& current, const Point& next, DWORD index) {
        const geometry::SegmentFoot foot = geometry::footOnSegment(current, next, test_, true);
        // A root is never smaller than that of a smaller square, so most roots need not be taken. Two different
        // squares can have one root: then the edge is no nearer.
        if (!(limit_ > foot.distance)) return;
        const double distance = geometry::rootUnless(isSquared_, foot.distance);
        if (!(place_.distance > distance)) return;
        limit_ = foot.distance;
        place_ = {distance, foot.closest, index, foot.parameter};
    }

    const NearestPlace& place() const { return place_; }

  private:
    const Point test_;
    const bool isSquared_;
    double limit_;  ///< The square of the smallest distance so far.
    NearestPlace place_;
};

/// See `polyCalcDistance` and `poly2dCalcDistance`.
template <class Point>
NearestPlace nearestPlace(const Point* points, DWORD count, bool closed, const Point& test, bool isSquared) {
    if (count == 0) return {};
    const Point& first = points[0];
    const Point& last = points[count - 1];
    if (count == 1)
        return {geometry::distance(first, test, isSquared), geometry::toDoublePoint(first), 0, 0.0};
    NearestEdge<Point> nearest(test, isSquared);
    for (DWORD i = 0; i + 1 < count; ++i)
        nearest.visit(points[i], points[i + 1], i);
    // Kept: exact equality for all kinds of points, also where the family tells points apart with a tolerance.
    const bool isClosingPointStored = first.x == last.x && first.y == last.y;
    if (closed && !isClosingPointStored) nearest.visit(last, first, count - 1);
    return nearest.place();
}

/// See `polyCalcLength` and `poly2dCalcLength`.
template <class Point>
double length(const Point* points, DWORD count, bool closed, bool isSquared) {
    if (count < 2) return 0.0;
    double sum = 0.0;
    for (DWORD i = 1; i < count; ++i)
        sum += geometry::distance(points[i - 1], points[i], isSquared);
    if (closed) sum += geometry::distance(points[0], points[count - 1], isSquared);
    return sum;
}

/// The sum of the turning angles at the corners of a closed outline, in radians.
/// @param count  points with the closing one; below 2 the sum is 0.
template <class Point>
double totalTurning(const Point* points, DWORD count) {
    if (count < 2) return 0.0;
    const DWORD corners = count - 1;
    double sum = 0.0;
    for (DWORD i = 1; i < count; ++i) {
        const DWORD corner = i == corners ? 0 : i;
        const DWORD next = corner + 1 == corners ? 0 : corner + 1;
        sum += geometry::turningAngle(geometry::toDoublePoint(points[i - 1]),
                                      geometry::toDoublePoint(points[corner]),
                                      geometry::toDoublePoint(points[next]));
    }
    return sum;
}

/// Tells whether two open chains run the same way: each one begins nearer to the other's beginning than to its
/// end. @param countA, countB  not 0.
template <class Point>
bool doChainsRunAlike(const Point* a, DWORD countA, const Point* b, DWORD countB) {
    const double betweenStarts = geometry::distanceSquared(a[0], b[0]);
    return geometry::distanceSquared(a[0], b[countB - 1]) > betweenStarts &&
           geometry::distanceSquared(b[0], a[countA - 1]) > geometry::distanceSquared(b[0], a[0]);
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_MEASURES_IMPL_H
