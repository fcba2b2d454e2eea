// How two outlines lie to one another, for integer and double points.
#ifndef VELQUAD_POLYGON_RELATIVE_POSITION_IMPL_H
#define VELQUAD_POLYGON_RELATIVE_POSITION_IMPL_H

#include "polygon/membership_impl.h"
#include "polygon/outline_contact_impl.h"
#include "velquad/types.h"

namespace velquad::polygon {

inline constexpr int kApart = 0;
inline constexpr int kOutlinesMeet = 1;
inline constexpr int kSecondInsideFirst = 2;
inline constexpr int kFirstInsideSecond = 3;

/// Points that someone else owns, as an outline.
template <class Point>
struct Outline {
    const Point* points;
    DWORD count;
    bool closed;

    bool hasEdges() const { return count > 1; }
    bool encloses(const Outline& other) const {
        return closed && other.count != 0 && isPointInside(points, count, other.points[0]) != kOutside;
    }
};

/// See `polyGetRelativePosition` and `poly2dGetRelativePosition`.
template <class Point>
int relativePosition(const Outline<Point>& a, const Outline<Point>& b) {
    if (a.hasEdges() && b.hasEdges()) {
        const EdgeRun<Point> edgesOfA(a.points, a.count, a.closed);
        const EdgeRun<Point> edgesOfB(b.points, b.count, b.closed);
        if (haveContact(edgesOfA, edgesOfB)) return kOutlinesMeet;
    }
    // As the outlines do not meet, one point of each tells for all of them.
    if (a.encloses(b)) return kSecondInsideFirst;
    if (b.encloses(a)) return kFirstInsideSecond;
    return kApart;
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_RELATIVE_POSITION_IMPL_H
