// Distance, length and turning of an outline, for integer and double points.
#ifndef VELQUAD_POLYGON_MEASURES_IMPL_H
#define VELQUAD_POLYGON_MEASURES_IMPL_H

#include <cmath>
#include <limits>

#include "geometry/angle.h"
#include "geometry/distance.h"
#include "polygon/far_run_filter.h"
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
        reach_ = smaller(reach_, isSquared_ ? std::sqrt(distance) : distance);
    }

    /// Takes notice that some edge has this foot, without keeping it.
    void expect(const geometry::SegmentFoot& foot) { reach_ = smaller(reach_, foot.distance); }

    /// No edge farther away than this can be the nearest one.
    double reach() const { return reach_; }

    const NearestPlace& place() const { return place_; }

  private:
    static double smaller(double a, double b) { return b < a ? b : a; }

    const Point test_;
    const bool isSquared_;
    double limit_;  ///< The square of the smallest distance so far.
    double reach_ = kNoValue;
    NearestPlace place_;
};

/// Shows `nearest` the edges between points[0] and points[count - 1] in order, without runs that lie too far away.
template <class Point>
void visitChain(const Point* points, DWORD count, const Point& test, NearestEdge<Point>& nearest) {
    using Filter = FarRunFilter<Point>;
    const Filter filter(test);
    const DWORD edges = count - 1;
    DWORD i = 0;
    if (filter.isEnabled() && edges >= Filter::kRun) {
        // The edge behind the nearest of some points tells early how far is too far.
        DWORD sample = 0;
        for (DWORD k = 0; edges - k > Filter::kRun;) {
            k += Filter::kRun;
            if (geometry::distanceSquared(points[k], test) <
                geometry::distanceSquared(points[sample], test)) {
                sample = k;
            }
        }
        nearest.expect(geometry::footOnSegment(points[sample], points[sample + 1], test));
        for (; edges - i >= Filter::kRun; i += Filter::kRun) {
            if (filter.isFarther(points + i, nearest.reach())) continue;
            for (DWORD k = i; k < i + Filter::kRun; ++k)
                nearest.visit(points[k], points[k + 1], k);
        }
    }
    for (; i < edges; ++i)
        nearest.visit(points[i], points[i + 1], i);
}

/// See `polyCalcDistance` and `poly2dCalcDistance`.
template <class Point>
NearestPlace nearestPlace(const Point* points, DWORD count, bool closed, const Point& test, bool isSquared) {
    if (count == 0) return {};
    const Point& first = points[0];
    const Point& last = points[count - 1];
    if (count == 1)
        return {geometry::distance(first, test, isSquared), geometry::toDoublePoint(first), 0, 0.0};
    NearestEdge<Point> nearest(test, isSquared);
    visitChain(points, count, test, nearest);
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
