// Membership of a point in a closed outline, for integer and double points.
//
// Crossing count along a ray (M. Shimrat, Algorithm 112, Communications of the ACM 5, 1962). The ray is aimed
// exactly at a vertex, so that the first edge always settles on which side the outline arrives, and every later
// passage through a vertex is judged by the sides of its two neighbours. O(count), no allocation.
#ifndef VELQUAD_POLYGON_MEMBERSHIP_IMPL_H
#define VELQUAD_POLYGON_MEMBERSHIP_IMPL_H

#include <cmath>

#include "frame/primitives.h"
#include "geometry/line_intersection.h"
#include "polygon/edge_filter.h"
#include "polygon/point_traits.h"
#include "velquad/types.h"

namespace velquad::polygon {

inline constexpr int kOutside = 0;
inline constexpr int kInside = 1;
inline constexpr int kOnOutline = -1;

/// Parameters and sides below this are zero.
inline constexpr double kMembershipTolerance = 1e-7;
/// The parameters that lie on an edge, ends and tolerance included.
inline constexpr geometry::ParameterBand kOnEdge{-1e-7, 1.0000001};

constexpr int toleratedSign(double value) {
    if (kMembershipTolerance > value && value > -kMembershipTolerance) return 0;
    return value > 0.0 ? 1 : -1;
}

/// The state of a crossing count: a ray from `test` through `target`, and what was met so far.
template <class Point>
class RayCrossings {
  public:
    RayCrossings(const Point& test, const Point& target)
        : test_(test), target_(target), dx_(A::sub(target.x, test.x)), dy_(A::sub(target.y, test.y)) {}

    /// Takes the next edge of the outline into account.
    /// @return false when the test point lies on it.
    bool visit(const Point& current, const Point& next) {
        if (Traits::equal(current, next)) return true;
        const auto ratio = geometry::crossingRatio(test_, target_, current, next);
        if (isClearlyBehind(static_cast<double>(ratio.numerator), static_cast<double>(ratio.denominator))) {
            return true;
        }
        const geometry::LineCrossing crossing = geometry::lineCrossing(ratio);
        if (!crossing.exists) return true;
        if (crossing.isParallel) return areOnOneSideOfTest(current, next);
        const double onRay = crossing.parameterA;
        if (std::fabs(onRay) >= kMembershipTolerance && onRay <= 0.0) return true;
        const double onEdge = parameterOnEdge(current, next, onRay);
        if (!kOnEdge.contains(onEdge)) return true;
        if (frame::isSmaller(kMembershipTolerance, onRay)) return false;
        if (frame::isSmaller(kMembershipTolerance, onEdge)) {
            // The ray passes through the start: a crossing when the outline leaves on another side.
            if (arrivalSide_ != sideOf(next)) isInside_ = !isInside_;
        } else if (frame::isSmaller(kMembershipTolerance, 1.0 - onEdge)) {
            // The ray passes through the end: the next edge that leaves the ray decides.
            arrivalSide_ = sideOf(current);
        } else {
            isInside_ = !isInside_;
        }
        return true;
    }

    bool isInside() const { return isInside_; }

  private:
    using Traits = PointTraits<Point>;
    using Coordinate = typename Traits::Coordinate;
    using A = typename Traits::Arithmetic;

    /// Tells without a division that the parameter on the ray is negative by more than the tolerance: every other edge
    /// that crosses the ray's line does so behind the test point, and which ones cannot be foreseen.
    static bool isClearlyBehind(double numerator, double denominator) {
        constexpr double kMoreThanTolerance = 1.5 * kMembershipTolerance;
        return numerator * denominator < 0.0 &&
               std::fabs(numerator) > kMoreThanTolerance * std::fabs(denominator);
    }

    /// For an edge on the line of the ray.
    bool areOnOneSideOfTest(const Point& current, const Point& next) const {
        const double positionOfCurrent = Traits::positionOnLine(test_, target_, current);
        const double positionOfNext = Traits::positionOnLine(test_, target_, next);
        return toleratedSign(positionOfCurrent) == toleratedSign(positionOfNext);
    }

    /// Where the point at `onRay` of the ray stands on an edge, by y on a vertical edge and by x on any other.
    double parameterOnEdge(const Point& current, const Point& next, double onRay) const {
        if (next.x == current.x) {
            const double offset = static_cast<double>(dy_) * onRay + static_cast<double>(test_.y) -
                                  static_cast<double>(current.y);
            return offset / static_cast<double>(A::sub(next.y, current.y));
        }
        const double offset =
            static_cast<double>(dx_) * onRay + static_cast<double>(test_.x) - static_cast<double>(current.x);
        return offset / static_cast<double>(A::sub(next.x, current.x));
    }

    /// The side of the ray's line that a point lies on.
    int sideOf(const Point& point) const {
        const Coordinate side = A::add(A::mul(A::sub(point.y, test_.y), A::sub(test_.x, target_.x)),
                                       A::mul(A::sub(point.x, test_.x), dy_));
        return toleratedSign(static_cast<double>(side));
    }

    const Point test_;
    const Point target_;
    const Coordinate dx_;
    const Coordinate dy_;
    int arrivalSide_ = 0;
    bool isInside_ = false;
};

/// Where the ray may be aimed: the first edge whose line does not pass through the test point.
struct StartEdge {
    bool isFound;
    bool isTestOnVertex;  ///< A vertex met on the way equals the test point, which settles the question.
    DWORD index;
};

template <class Point>
StartEdge findStartEdge(const Point* points, DWORD count, const Point& test) {
    using Traits = PointTraits<Point>;
    for (DWORD i = 0; i < count; ++i) {
        const Point& current = points[i];
        const Point& next = points[i + 1 == count ? 0 : i + 1];
        if (Traits::equal(test, next)) return {false, true, i};
        if (Traits::equal(current, next)) continue;
        const geometry::LineCrossing crossing = geometry::crossLines(test, next, current, next);
        if (crossing.isParallel) continue;
        const tagPOINT2D point = geometry::pointOnLine(test, next, crossing.parameterA);
        const double onEdge = geometry::crossingParameterB(current, next, point);
        if (kOnEdge.contains(onEdge) && std::fabs(onEdge) >= kMembershipTolerance) return {true, false, i};
    }
    return {false, false, 0};
}

/// Visits the edges [first, last), edge i being points[i] to points[i + 1]; edges that cannot change the count
/// are passed over in bulk. @return false when the test point lies on an edge.
template <class Point>
bool visitEdges(const Point* points, DWORD first, DWORD last, const EdgeFilter<Point>& filter,
                RayCrossings<Point>& crossings) {
    for (DWORD i = filter.firstRelevantEdge(points, first, last); i < last;
         i = filter.firstRelevantEdge(points, i + 1, last)) {
        if (!crossings.visit(points[i], points[i + 1])) return false;
    }
    return true;
}

/// See `polyIsPointInside` and `poly2dIsPointInside`.
template <class Point>
int isPointInside(const Point* points, DWORD count, const Point& test) {
    using Traits = PointTraits<Point>;
    if (count == 0) return kOutside;
    while (count > 1 && Traits::equal(points[count - 1], points[0]))
        --count;
    if (count == 1) return Traits::equal(points[0], test) ? kOnOutline : kOutside;
    const StartEdge start = findStartEdge(points, count, test);
    if (start.isTestOnVertex) return kOnOutline;
    // Kept: a flat outline has no inside and no outline between its vertices.
    if (!start.isFound) return kOutside;
    const DWORD target = start.index + 1 == count ? 0 : start.index + 1;
    const EdgeFilter<Point> filter(test, points[target], points, count);
    RayCrossings<Point> crossings(test, points[target]);
    const bool isOffOutline = visitEdges(points, start.index, count - 1, filter, crossings) &&
                              crossings.visit(points[count - 1], points[0]) &&
                              visitEdges(points, 0, start.index, filter, crossings);
    if (!isOffOutline) return kOnOutline;
    return crossings.isInside() ? kInside : kOutside;
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_MEMBERSHIP_IMPL_H
