// Convex hull by package wrapping, for points of the plane and for points of space seen from above.
//
// Each step turns from the current vertex to the point of the least angle behind the last one (R. A. Jarvis,
// Information Processing Letters 2, 1973). Angles are compared by a substitute without trigonometry (R. Sedgewick,
// "Algorithms", 1983). Most points lie clearly to the left of the best direction so far, which a cross product tells
// without the division that an angle takes.
#ifndef VELQUAD_POLYGON_HULL_IMPL_H
#define VELQUAD_POLYGON_HULL_IMPL_H

#include <emmintrin.h>

#include <cmath>
#include <utility>

#include "frame/convert.h"
#include "frame/primitives.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// Lengths below this are nothing, and angles that differ by less are one direction.
inline constexpr double kHullTolerance = 1e-7;
inline constexpr double kHullFullTurn = 360.0;

/// b - a in x and y; integer differences wrap around first.
inline tagPOINT2D hullOffset(const tagPOINT& a, const tagPOINT& b) {
    return {static_cast<double>(frame::wrapSub(b.x, a.x)), static_cast<double>(frame::wrapSub(b.y, a.y))};
}
inline tagPOINT2D hullOffset(const tagPOINT3D& a, const tagPOINT3D& b) {
    return {b.x - a.x, b.y - a.y};
}

/// The direction of a vector on a scale from 0 to 360, monotone in its angle and equal to it at the axes.
inline double hullAngle(const tagPOINT2D& v) {
    const double sum = std::fabs(v.x) + std::fabs(v.y);
    double t = sum < kHullTolerance ? 0.0 : v.y / sum;
    if (v.x < 0.0) {
        t = 2.0 - t;
    } else if (v.y < 0.0) {
        t = t + 4.0;
    }
    return t * 90.0;
}

/// The two ends of the lowest row of points, as indices.
struct LowestRow {
    DWORD leftmost;
    DWORD rightmost;
};

/// @param count  not 0.
template <class Point>
LowestRow findLowestRow(const Point* points, DWORD count) {
    LowestRow row{0, 0};
    Point lowest = points[0];
    for (DWORD i = 1; i < count; ++i) {
        const Point& point = points[i];
        if (point.y < lowest.y) {
            row = {i, i};
            lowest = point;
        } else if (frame::isSmaller(kHullTolerance, hullOffset(lowest, point).y)) {
            if (point.x < points[row.leftmost].x) row.leftmost = i;
            if (point.x > points[row.rightmost].x) row.rightmost = i;
        }
    }
    return row;
}

/// Moves the ends of the lowest row to the first places. @return how many there are, less one.
template <class Point>
DWORD placeLowestRow(Point* points, DWORD count) {
    if (count == 0) return 0;
    LowestRow row = findLowestRow(points, count);
    std::swap(points[0], points[row.leftmost]);
    if (row.rightmost == 0) {
        row.rightmost = row.leftmost;
    } else if (row.rightmost == row.leftmost) {
        row.rightmost = 0;
    }
    if (row.rightmost == 0) return 0;
    std::swap(points[1], points[row.rightmost]);
    return 1;
}

/// Tells which points lie clearly to the left of a direction d, seen from a point: d x v > 1e-5 |d| |v|, the lengths
/// being sums of absolute components. Such a v is ahead of d by 1e-5 to pi - 1e-5 radians, and its angle by 4.5e-4 to
/// 180 - 4.5e-4 on the scale of `hullAngle`, as that rises by 45 to 90 for a radian; 360 less beyond the full turn.
template <class Point>
class LeftOfDirection {
  public:
    explicit LeftOfDirection(const Point& origin) : origin_(origin) {}

    void setDirection(const tagPOINT2D& direction) {
        const double length = std::fabs(direction.x) + std::fabs(direction.y);
        direction_ = direction;
        margin_ = 1e-5 * length;
        isUsable_ = hasProperAngle(length);
    }

    /// False while there is no direction, and when products might overflow or the direction has no angle of its own.
    bool isUsable() const { return isUsable_; }

    /// @return the first point in [begin, end) that is not clearly to the left; `end` when there is none.
    DWORD firstOther(const Point* points, DWORD begin, DWORD end) const {
        DWORD i = begin;
        while (i < end && isLeft(points[i]))
            ++i;
        return i;
    }

  private:
    /// A shorter vector is given the angle of an axis, and the products of longer ones might overflow.
    static constexpr bool hasProperAngle(double length) {
        constexpr double kLongest = 1e100;
        return kHullTolerance <= length && length < kLongest;
    }

    bool isLeft(const Point& point) const {
        const tagPOINT2D v = hullOffset(origin_, point);
        const double length = std::fabs(v.x) + std::fabs(v.y);
        return hasProperAngle(length) && direction_.x * v.y - direction_.y * v.x > margin_ * length;
    }

    bool areTwoLeft(const tagPOINT* points) const {
        const __m128i origin = _mm_set_epi32(origin_.y, origin_.x, origin_.y, origin_.x);
        const __m128i both = _mm_sub_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(points)), origin);
        const __m128d first = _mm_cvtepi32_pd(both);
        const __m128d second = _mm_cvtepi32_pd(_mm_unpackhi_epi64(both, both));
        const __m128d x = _mm_unpacklo_pd(first, second);
        const __m128d y = _mm_unpackhi_pd(first, second);
        const __m128d cross =
            _mm_sub_pd(_mm_mul_pd(_mm_set1_pd(direction_.x), y), _mm_mul_pd(_mm_set1_pd(direction_.y), x));
        const __m128d sign = _mm_set1_pd(-0.0);
        const __m128d length = _mm_add_pd(_mm_andnot_pd(sign, x), _mm_andnot_pd(sign, y));
        return _mm_movemask_pd(_mm_cmpgt_pd(cross, _mm_mul_pd(_mm_set1_pd(margin_), length))) == 3;
    }

    const Point origin_;
    tagPOINT2D direction_{};
    double margin_ = 0.0;
    bool isUsable_ = false;
};

template <>
inline DWORD LeftOfDirection<tagPOINT>::firstOther(const tagPOINT* points, DWORD begin, DWORD end) const {
    DWORD i = begin;
    while (end - i >= 2 && areTwoLeft(points + i))
        i += 2;
    while (i < end && isLeft(points[i]))
        ++i;
    return i;
}

/// The search for the next vertex of the hull.
template <class Point>
class HullStep {
  public:
    /// @param angle  that of the edge that leads to `current`.
    /// @param start  what is chosen when no other point is found: the place of the hull's first vertex.
    HullStep(const Point& current, double angle, DWORD start)
        : current_(current), lastAngle_(angle), chosen_(start), filter_(current) {}

    /// Takes the points [begin, end) into account.
    void visit(const Point* points, DWORD begin, DWORD end) {
        for (DWORD i = begin; i < end; ++i) {
            // A point to the left comes behind the best direction. If it comes so far behind that the scale has begun
            // anew, it is not ahead of the last direction either.
            if (filter_.isUsable() && bestAngle_ < lastAngle_ + kAlmostHalfTurn) {
                i = filter_.firstOther(points, i, end);
                if (i == end) return;
            }
            visitOne(i, points[i]);
        }
    }

    /// Takes a point into account that has the number `index`.
    void visitOne(DWORD index, const Point& point) {
        const tagPOINT2D v = hullOffset(current_, point);
        const double angle = hullAngle(v);
        if (!(angle > lastAngle_)) return;
        const double lengthSquared = frame::lengthSquared(v);
        if (frame::isSmaller(kHullTolerance, angle - bestAngle_)) {
            if (lengthSquared > bestLengthSquared_) {
                chosen_ = index;
                bestLengthSquared_ = lengthSquared;
            }
        } else if (angle < bestAngle_) {
            bestAngle_ = angle;
            chosen_ = index;
            bestLengthSquared_ = lengthSquared;
            filter_.setDirection(v);
        }
    }

    DWORD chosen() const { return chosen_; }
    double angle() const { return bestAngle_; }

  private:
    static constexpr double kAlmostHalfTurn = 179.0;

    const Point current_;
    const double lastAngle_;
    double bestAngle_ = kHullFullTurn;
    double bestLengthSquared_ = 0.0;
    DWORD chosen_;
    LeftOfDirection<Point> filter_;
};

/// See `polyConvexHull` and `matConvexHullP3D`.
template <class Point>
DWORD wrapHull(Point* points, DWORD count) {
    DWORD place = placeLowestRow(points, count);
    DWORD chosen = place;
    double angle = 0.0;
    while (place < count) {
        std::swap(points[place], points[chosen]);
        HullStep<Point> step(points[place], angle, count);
        ++place;
        step.visit(points, place, count);
        step.visitOne(count, points[0]);
        if (step.chosen() == count) return place;
        chosen = step.chosen();
        angle = step.angle();
    }
    return place + 1;
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_HULL_IMPL_H
