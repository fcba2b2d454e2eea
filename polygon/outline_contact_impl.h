// Contact of two outlines, for integer and double points.
//
// The segment test rejects a pair whose bounding boxes are apart, by comparisons alone. Both outlines are halved
// again and again, and a pair of runs whose boxes are apart is dropped as a whole: its edges would be rejected
// one by one. Boxes are computed when they are needed, so nothing is allocated. Outlines that lie apart or run
// side by side cost O(n log n); edges whose boxes all overlap cost O(n^2), as the plain pair loop does.
#ifndef VELQUAD_POLYGON_OUTLINE_CONTACT_IMPL_H
#define VELQUAD_POLYGON_OUTLINE_CONTACT_IMPL_H

#include "geometry/line_intersection.h"
#include "polygon/point_traits.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// Consecutive edges of an outline with the box around their points.
template <class Point>
class EdgeRun {
  public:
    /// All edges of an outline: from each point to the next, and from the last to the first for a closed one.
    /// @param count  not 0, and not 1 for an open outline.
    EdgeRun(const Point* points, DWORD count, bool closed)
        : EdgeRun(points, count, 0, closed ? count : count - 1) {}

    DWORD size() const { return end_ - begin_; }
    EdgeRun firstHalf() const { return {points_, count_, begin_, begin_ + size() / 2}; }
    EdgeRun secondHalf() const { return {points_, count_, begin_ + size() / 2, end_}; }

    bool isApartFrom(const EdgeRun& other) const {
        return isApart(left_, right_, other.left_, other.right_) ||
               isApart(top_, bottom_, other.top_, other.bottom_);
    }

    /// Tests all edges against all edges of `other`. Edges without length are no edges.
    bool hasContactWith(const EdgeRun& other) const {
        for (DWORD i = begin_; i < end_; ++i) {
            const Point& a0 = start(i);
            const Point& a1 = end(i);
            if (Traits::equal(a0, a1)) continue;
            for (DWORD j = other.begin_; j < other.end_; ++j) {
                const Point& b0 = other.start(j);
                const Point& b1 = other.end(j);
                if (!Traits::equal(b0, b1) && geometry::crossSegments(a0, a1, b0, b1)) return true;
            }
        }
        return false;
    }

  private:
    using Traits = PointTraits<Point>;
    using Coordinate = typename Traits::Coordinate;
    using Segments = geometry::SegmentTraits<Point>;

    EdgeRun(const Point* points, DWORD count, DWORD begin, DWORD end)
        : points_(points), count_(count), begin_(begin), end_(end) {
        left_ = right_ = start(begin).x;
        top_ = bottom_ = start(begin).y;
        for (DWORD i = begin; i < end; ++i) {
            const Coordinate x = this->end(i).x;
            const Coordinate y = this->end(i).y;
            left_ = x < left_ ? x : left_;
            right_ = x > right_ ? x : right_;
            top_ = y < top_ ? y : top_;
            bottom_ = y > bottom_ ? y : bottom_;
        }
    }

    const Point& start(DWORD edge) const { return points_[edge]; }
    const Point& end(DWORD edge) const { return points_[edge + 1 == count_ ? 0 : edge + 1]; }

    /// The test of single segments. It is monotone in its bounds, so it holds for every pair of edges within.
    static bool isApart(Coordinate lowA, Coordinate highA, Coordinate lowB, Coordinate highB) {
        return Segments::isFarAbove(lowA, highB) || Segments::isFarBelow(highA, lowB);
    }

    const Point* points_;
    DWORD count_;
    DWORD begin_;
    DWORD end_;
    Coordinate left_;
    Coordinate top_;
    Coordinate right_;
    Coordinate bottom_;
};

/// Runs of at most this many edges are compared pair by pair.
inline constexpr DWORD kPairwiseEdges = 8;

/// Tells whether an edge of `a` has contact with an edge of `b`. The longer run is halved, so the depth is at
/// most 64.
template <class Point>
bool haveContact(const EdgeRun<Point>& a, const EdgeRun<Point>& b) {
    if (a.isApartFrom(b)) return false;
    if (a.size() <= kPairwiseEdges && b.size() <= kPairwiseEdges) return a.hasContactWith(b);
    if (a.size() >= b.size()) return haveContact(a.firstHalf(), b) || haveContact(a.secondHalf(), b);
    return haveContact(a, b.firstHalf()) || haveContact(a, b.secondHalf());
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_OUTLINE_CONTACT_IMPL_H
