// Removal of stings: thin spikes at which an outline runs out and back on one line.
//
// The obvious way removes one sting and begins anew. A sting that goes leaves everything before it free of stings,
// so that only the points around the gap need another look: one walk that keeps a stack of what it accepted finds
// the same stings in the same order, in linear time.
#include <algorithm>

#include "frame/convert.h"
#include "frame/primitives.h"
#include "polygon/double_points_impl.h"
#include "polygon/point_traits.h"
#include "velquad/polygon.h"

using velquad::frame::Int32;
using velquad::frame::samePoint;
using velquad::frame::wrapAdd;
using velquad::frame::wrapMul;
using velquad::frame::wrapSub;

namespace {

/// The result for an outline that collapsed. Two points may be left.
constexpr DWORD kCollapsed = 1;

/// Tells whether the outline runs from p to q and back along one line to r, at most the width away from p.
class StingTest {
  public:
    explicit StingTest(double width) : widthSquared_(width * width) {}

    bool isSting(const tagPOINT& p, const tagPOINT& q, const tagPOINT& r) const {
        const Int32 inX = wrapSub(q.x, p.x);
        const Int32 inY = wrapSub(q.y, p.y);
        const Int32 outX = wrapSub(r.x, q.x);
        const Int32 outY = wrapSub(r.y, q.y);
        const tagPOINT2D sum{static_cast<double>(wrapAdd(inX, outX)),
                             static_cast<double>(wrapAdd(inY, outY))};
        const bool isTooWide = velquad::frame::lengthSquared(sum) > widthSquared_;
        return !isTooWide && wrapSub(wrapMul(inX, outY), wrapMul(inY, outX)) == 0;
    }

  private:
    double widthSquared_;
};

/// Removes the stings among the points as an open chain, and the repeats that they leave. The first point and the
/// last one stay.
/// @param points  without repeats. @return the new count.
DWORD removeInnerStings(tagPOINT* points, DWORD count, const StingTest& test) {
    DWORD kept = 0;
    for (DWORD i = 0; i < count; ++i) {
        const tagPOINT point = points[i];
        const auto repeats = [&] { return kept != 0 && samePoint(points[kept - 1], point); };
        while (kept >= 2 && !repeats() && test.isSting(points[kept - 2], points[kept - 1], point))
            --kept;
        if (!repeats()) points[kept++] = point;
    }
    return kept;
}

/// What is left of a chain while points go at both of its ends.
struct Remainder {
    DWORD begin;
    DWORD end;

    DWORD count() const { return end - begin; }
};

/// Removes stings across the seam of an outline until it comes to an end of them or its ends meet.
Remainder removeSeamStings(const tagPOINT* points, DWORD count, const StingTest& test) {
    Remainder left{0, count};
    while (left.count() > 1 && !samePoint(points[left.begin], points[left.end - 1])) {
        const tagPOINT& last = points[left.end - 1];
        const tagPOINT& first = points[left.begin];
        if (test.isSting(points[left.end - 2], last, first)) {
            --left.end;
        } else if (test.isSting(last, first, points[left.begin + 1])) {
            ++left.begin;
        } else {
            break;
        }
    }
    return left;
}

/// An outline whose last point equals its first one; that point plays no part. @param points  without repeats.
DWORD removeStingsOfClosed(tagPOINT* points, DWORD count, const StingTest& test) {
    // The ends of the chain stay, and they differ.
    const DWORD left = removeInnerStings(points, count - 1, test);
    if (left <= 2) return kCollapsed;
    points[left] = points[0];
    return left + 1;
}

}  // namespace

extern "C" DWORD polyRemoveStings(tagPOINT* points, DWORD count, int noWrap, double width) {
    if (points == nullptr || count == 0) return count;
    const StingTest test(width);
    count = velquad::polygon::removeDoublePoints(points, count);
    if (count == 1) return kCollapsed;
    if (velquad::polygon::isClosed(points, count)) return removeStingsOfClosed(points, count, test);
    count = removeInnerStings(points, count, test);
    if (noWrap == 0) {
        const Remainder left = removeSeamStings(points, count, test);
        if (left.begin != 0) std::copy(points + left.begin, points + left.end, points);
        count = left.count();
    }
    // The ends may have met on the way. Two different points of a closed outline, or of a chain that may not lead back,
    // count as one.
    const DWORD largestCollapsed = velquad::polygon::isClosed(points, count) ? 3 : noWrap != 0 ? 2 : 1;
    return count <= largestCollapsed ? kCollapsed : count;
}
