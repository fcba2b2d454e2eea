// Convex hull by package wrapping, for points of the plane and for points of space seen from above.
//
// Each step turns from the current vertex to the point of the least angle behind the last one (R. A. Jarvis,
// Information Processing Letters 2, 1973). Angles are compared by a substitute without trigonometry (R. Sedgewick,
// "Algorithms", 1983). All angles of a block of points are computed first, which needs no branches; most blocks hold
// nothing below the best angle so far and are left at once.
#ifndef VELQUAD_POLYGON_HULL_IMPL_H
#define VELQUAD_POLYGON_HULL_IMPL_H

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
    const double quotient = v.y / sum;
    double t = sum < kHullTolerance ? 0.0 : quotient;
    t = v.x < 0.0 ? 2.0 - t : v.y < 0.0 ? t + 4.0 : t;
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

/// The search for the next vertex of the hull.
template <class Point>
class HullStep {
  public:
    /// @param angle  that of the edge that leads to `current`.
    /// @param start  what is chosen when no other point is found: the place of the hull's first vertex.
    HullStep(const Point& current, double angle, DWORD start)
        : current_(current), lastAngle_(angle), chosen_(start) {}

    /// Takes the points [begin, end) into account.
    void visit(const Point* points, DWORD begin, DWORD end) {
        double angles[kBlock];
        for (DWORD i = begin; i < end;) {
            const DWORD size = end - i < kBlock ? end - i : kBlock;
            for (DWORD k = 0; k < size; ++k)
                angles[k] = hullAngle(hullOffset(current_, points[i + k]));
            if (holdsCandidate(angles, size)) {
                for (DWORD k = 0; k < size; ++k)
                    consider(i + k, angles[k], points[i + k]);
            }
            i += size;
        }
    }

    /// Takes a point into account that has the number `index`.
    void visitOne(DWORD index, const Point& point) {
        consider(index, hullAngle(hullOffset(current_, point)), point);
    }

    DWORD chosen() const { return chosen_; }
    double angle() const { return bestAngle_; }

  private:
    static constexpr DWORD kBlock = 64;

    /// Tells whether an angle may be less than the best one or one with it, with room for rounding.
    bool holdsCandidate(const double* angles, DWORD size) const {
        const double limit = bestAngle_ + 2.0 * kHullTolerance;
        int candidates = 0;
        for (DWORD k = 0; k < size; ++k)
            candidates |= static_cast<int>(angles[k] > lastAngle_) & static_cast<int>(angles[k] < limit);
        return candidates != 0;
    }

    void consider(DWORD index, double angle, const Point& point) {
        if (!(angle > lastAngle_)) return;
        if (frame::isSmaller(kHullTolerance, angle - bestAngle_)) {
            const double lengthSquared = frame::lengthSquared(hullOffset(current_, point));
            if (lengthSquared > bestLengthSquared_) {
                chosen_ = index;
                bestLengthSquared_ = lengthSquared;
            }
        } else if (angle < bestAngle_) {
            bestAngle_ = angle;
            chosen_ = index;
            bestLengthSquared_ = frame::lengthSquared(hullOffset(current_, point));
        }
    }

    const Point current_;
    const double lastAngle_;
    double bestAngle_ = kHullFullTurn;
    double bestLengthSquared_ = 0.0;
    DWORD chosen_;
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
