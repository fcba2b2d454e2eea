// Rectangles of any orientation around runs of edges. Long thin edges that run at a slant fill their upright boxes
// badly; two such edges side by side are told apart only by a direction of their own (strip trees: D. H. Ballard,
// Communications of the ACM 24, 1981; oriented boxes: S. Gottschalk, M. C. Lin, D. Manocha, SIGGRAPH 1996).
#ifndef VELQUAD_POLYGON_ORIENTED_BOX_H
#define VELQUAD_POLYGON_ORIENTED_BOX_H

#include <cmath>
#include <initializer_list>

#include "velquad/types.h"

namespace velquad::polygon {

/// Lowest and highest position along an axis.
struct Extent {
    double low;
    double high;

    void include(double position) {
        low = position < low ? position : low;
        high = position > high ? position : high;
    }
    void include(double position, double radius) {
        low = position - radius < low ? position - radius : low;
        high = position + radius > high ? position + radius : high;
    }
    double middle() const { return 0.5 * (low + high); }
    double radius() const { return 0.5 * (high - low); }
};

struct OrientedBox {
    tagPOINT2D center;
    tagPOINT2D axis;  ///< Unit vector along the length; the width runs across it.
    double halfLength;
    double halfWidth;

    double area() const { return halfLength * halfWidth; }
};

inline double dot(const tagPOINT2D& a, const tagPOINT2D& b) {
    return a.x * b.x + a.y * b.y;
}
inline double cross(const tagPOINT2D& a, const tagPOINT2D& b) {
    return a.x * b.y - a.y * b.x;
}
inline tagPOINT2D offset(const tagPOINT2D& from, const tagPOINT2D& to) {
    return {to.x - from.x, to.y - from.y};
}
/// The unit vector; that of the x axis for a vector so short that its square loses digits, where the quotients would
/// not be of length 1 and a box along them would be too small.
inline tagPOINT2D unitVector(const tagPOINT2D& v) {
    constexpr double kShortest = 1e-150;
    const double length = std::sqrt(dot(v, v));
    return length > kShortest ? tagPOINT2D{v.x / length, v.y / length} : tagPOINT2D{1.0, 0.0};
}

/// The box with this axis whose extents are given relative to `origin`.
inline OrientedBox boxFromExtents(const tagPOINT2D& origin, const tagPOINT2D& axis, const Extent& along,
                                  const Extent& across) {
    const double u = along.middle();
    const double v = across.middle();
    return {{origin.x + u * axis.x - v * axis.y, origin.y + u * axis.y + v * axis.x},
            axis,
            along.radius(),
            across.radius()};
}

/// The box with this axis around two boxes.
inline OrientedBox mergedAlong(const tagPOINT2D& axis, const OrientedBox& a, const OrientedBox& b) {
    Extent along{0.0, 0.0};
    Extent across{0.0, 0.0};
    bool isFirst = true;
    for (const OrientedBox* box : {&a, &b}) {
        const tagPOINT2D toCenter = offset(a.center, box->center);
        const double c = std::fabs(dot(axis, box->axis));
        const double s = std::fabs(cross(axis, box->axis));
        const double u = dot(axis, toCenter);
        const double v = cross(axis, toCenter);
        if (isFirst) {
            along = {u, u};
            across = {v, v};
            isFirst = false;
        }
        along.include(u, box->halfLength * c + box->halfWidth * s);
        across.include(v, box->halfLength * s + box->halfWidth * c);
    }
    return boxFromExtents(a.center, axis, along, across);
}

/// A box around two boxes: the smallest of those with the axis of one of them or with that from one to the other.
inline OrientedBox merged(const OrientedBox& a, const OrientedBox& b) {
    OrientedBox best = mergedAlong(a.axis, a, b);
    for (const tagPOINT2D& axis : {b.axis, unitVector(offset(a.center, b.center))}) {
        const OrientedBox candidate = mergedAlong(axis, a, b);
        if (candidate.area() < best.area()) best = candidate;
    }
    return best;
}

/// Tells whether a line along or across one of the boxes keeps them apart by more than `gap`. The test may miss that,
/// within rounding, but never claims it wrongly when `gap` is above the rounding errors of the coordinates.
inline bool areApartBy(double gap, const OrientedBox& a, const OrientedBox& b) {
    const tagPOINT2D d = offset(a.center, b.center);
    const double c = std::fabs(dot(a.axis, b.axis));
    const double s = std::fabs(cross(a.axis, b.axis));
    const bool isAlongA = std::fabs(dot(a.axis, d)) > a.halfLength + b.halfLength * c + b.halfWidth * s + gap;
    const bool isAcrossA =
        std::fabs(cross(a.axis, d)) > a.halfWidth + b.halfLength * s + b.halfWidth * c + gap;
    const bool isAlongB = std::fabs(dot(b.axis, d)) > b.halfLength + a.halfLength * c + a.halfWidth * s + gap;
    const bool isAcrossB =
        std::fabs(cross(b.axis, d)) > b.halfWidth + a.halfLength * s + a.halfWidth * c + gap;
    return isAlongA | isAcrossA | isAlongB | isAcrossB;
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_ORIENTED_BOX_H
