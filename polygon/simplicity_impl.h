// Whether an outline is simple, for integer and double points.
//
// The answer is that of the loop over all pairs of edges, in order, that stops at the first fault. A bounding
// hierarchy leaves out the pairs that cannot have contact; those that remain are judged by the segment test itself.
// The join of the hierarchy with itself visits pairs roughly in the order of the loop and keeps the least fault, so
// that once a fault is known, only what comes before it is looked at. O(n log n) for outlines whose edges have few
// others around them; O(n^2) when the bounds of most edges overlap.
#ifndef VELQUAD_POLYGON_SIMPLICITY_IMPL_H
#define VELQUAD_POLYGON_SIMPLICITY_IMPL_H

#include "geometry/line_intersection.h"
#include "polygon/edge_tree_impl.h"
#include "polygon/point_traits.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// Two edges that must not meet as they do, the first before the second.
struct EdgePair {
    DWORD first;
    DWORD second;

    bool isBefore(const EdgePair& other) const {
        return first < other.first || (first == other.first && second < other.second);
    }
};

/// Behind every pair of edges.
inline constexpr EdgePair kNoFault{0xFFFFFFFFU, 0xFFFFFFFFU};

/// Parameters on an edge up to its end and from its start on, with the tolerance of the segment test.
inline constexpr double kBehindEnd = 1.0000001;
inline constexpr double kBeforeStart = -1e-7;

/// Tells whether a contact of two edges is a fault.
template <class Point>
class FaultTest {
  public:
    explicit FaultTest(const EdgeChain<Point>& chain) : chain_(chain) {}

    /// @param first, second  edges with a length, the first before the second.
    bool isFault(DWORD first, DWORD second) const {
        geometry::SegmentCrossing crossing;
        const bool hasContact = geometry::crossSegments(chain_.start(first), chain_.end(first),
                                                        chain_.start(second), chain_.end(second), &crossing);
        if (!hasContact) return false;
        const bool areNeighbors = isNext(first, second);
        // Only the closing edge of an outline meets the first edge at a vertex of both.
        const bool closesOutline = first == 0 && second + 1 == chain_.pointCount;
        return crossing.isParallel ? isOverlap(first, second, areNeighbors, closesOutline)
                                   : !areNeighbors && !closesOutline;
    }

  private:
    /// No edge with a length stands between the two.
    bool isNext(DWORD first, DWORD second) const {
        for (DWORD edge = first + 1; edge < second; ++edge) {
            if (!chain_.isPoint(edge)) return false;
        }
        return true;
    }

    /// For edges of one line that have contact.
    bool isOverlap(DWORD first, DWORD second, bool areNeighbors, bool closesOutline) const {
        const auto position = [&](const Point& point) {
            return PointTraits<Point>::positionOnLine(chain_.start(first), chain_.end(first), point);
        };
        const double end = position(chain_.end(second));
        if (areNeighbors) return end < kBehindEnd;
        const double start = position(chain_.start(second));
        if (closesOutline) return start > kBeforeStart;
        if (start > kBehindEnd) return !(end > kBehindEnd);
        return !(start < kBeforeStart && end < kBeforeStart);
    }

    EdgeChain<Point> chain_;
};

/// Finds the least fault by testing all pairs, and needs no memory.
template <class Point>
EdgePair firstFaultOfPairs(const EdgeChain<Point>& chain) {
    const FaultTest<Point> test(chain);
    for (DWORD i = 0; i < chain.edgeCount; ++i) {
        if (chain.isPoint(i)) continue;
        for (DWORD j = i + 1; j < chain.edgeCount; ++j) {
            if (!chain.isPoint(j) && test.isFault(i, j)) return {i, j};
        }
    }
    return kNoFault;
}

/// Finds the least fault by joining a tree with itself.
template <class Point>
class FaultSearch {
  public:
    explicit FaultSearch(const EdgeTree<Point>& tree) : tree_(tree), test_(tree.chain()) {}

    EdgePair firstFault() {
        joinWithin(tree_.root());
        return fault_;
    }

  private:
    using Node = typename EdgeTree<Point>::Node;
    using Box = EdgeBox<Point>;

    bool canHoldBefore(DWORD first, DWORD second) const { return EdgePair{first, second}.isBefore(fault_); }

    /// All pairs of edges of one node.
    void joinWithin(const Node& node) {
        if (!tree_.exists(node) || !canHoldBefore(tree_.begin(node), tree_.begin(node) + 1)) return;
        if (node.level == 0) return joinLeafWithin(node);
        joinWithin(node.firstChild());
        joinBetween(node.firstChild(), node.secondChild());
        joinWithin(node.secondChild());
    }

    /// All pairs of an edge of `a` with an edge of `b`, which stands behind `a`. Both are of one level.
    void joinBetween(const Node& a, const Node& b) {
        if (!tree_.exists(b) || !canHoldBefore(tree_.begin(a), tree_.begin(b))) return;
        // Neighbours share a vertex.
        const bool areNeighbors = a.index + 1 == b.index;
        if (!areNeighbors && tree_.areApart(a, b)) return;
        if (a.level == 0) return joinLeaves(a, b);
        joinBetween(a.firstChild(), b.firstChild());
        joinBetween(a.firstChild(), b.secondChild());
        joinBetween(a.secondChild(), b.firstChild());
        joinBetween(a.secondChild(), b.secondChild());
    }

    void joinLeafWithin(const Node& leaf) {
        for (DWORD i = tree_.begin(leaf); i < tree_.end(leaf); ++i)
            joinEdge(i, i + 1, tree_.end(leaf));
    }

    void joinLeaves(const Node& a, const Node& b) {
        const EdgeChain<Point>& chain = tree_.chain();
        for (DWORD i = tree_.begin(a); i < tree_.end(a); ++i) {
            if (Box::around(chain.start(i), chain.end(i)).isApartFrom(tree_.box(b))) continue;
            joinEdge(i, tree_.begin(b), tree_.end(b));
        }
    }

    /// The edge `i` with those in [begin, end).
    void joinEdge(DWORD i, DWORD begin, DWORD end) {
        const EdgeChain<Point>& chain = tree_.chain();
        if (chain.isPoint(i)) return;
        for (DWORD j = begin; j < end && canHoldBefore(i, j); ++j) {
            if (!chain.isPoint(j) && test_.isFault(i, j)) fault_ = {i, j};
        }
    }

    const EdgeTree<Point>& tree_;
    const FaultTest<Point> test_;
    EdgePair fault_ = kNoFault;
};

/// The part of a point array that the simplicity test works on: no repeats at its beginning, neither repeats nor
/// closing points at its end. Repeats within stay.
template <class Point>
struct TrimmedOutline {
    const Point* points;
    DWORD count;
    DWORD skipped;  ///< Points left out at the beginning.

    TrimmedOutline(const Point* allPoints, DWORD allCount) : points(allPoints), count(allCount), skipped(0) {
        using Traits = PointTraits<Point>;
        while (skipped + 1 < allCount && Traits::equal(allPoints[skipped], allPoints[skipped + 1]))
            ++skipped;
        points += skipped;
        count -= skipped;
        while (count > 1 && Traits::equal(points[count - 1], points[0]))
            --count;
        while (count > 1 && Traits::equal(points[count - 1], points[count - 2]))
            --count;
    }
};

/// The simplicity test. It keeps its working memory, so that the steps of a repair share it.
template <class Point>
class SimplicityTest {
  public:
    /// Finds the first fault, by the lower and then by the higher edge.
    /// @return its edges as indices of `points`, or `kNoFault` for a simple outline.
    EdgePair firstFault(const Point* points, DWORD count, bool closed) {
        if (count < 2) return kNoFault;
        const TrimmedOutline<Point> outline(points, count);
        if (outline.count < 2) return kNoFault;
        const EdgeChain<Point> chain{outline.points, outline.count,
                                     closed ? outline.count : outline.count - 1};
        EdgePair fault = kNoFault;
        // Without memory the pairs are tested one by one: slow, with the same answer.
        if (chain.edgeCount > kPairwiseEdges && tree_.build(chain)) {
            fault = FaultSearch<Point>(tree_).firstFault();
        } else {
            fault = firstFaultOfPairs(chain);
        }
        if (isSimple(fault)) return kNoFault;
        return {fault.first + outline.skipped, fault.second + outline.skipped};
    }

    static bool isSimple(const EdgePair& fault) { return fault.first == kNoFault.first; }

  private:
    /// Outlines of at most this many edges are not worth a tree.
    static constexpr DWORD kPairwiseEdges = 32;

    EdgeTree<Point> tree_;
};

/// See `polyIsSimple` and `poly2dIsSimple`.
template <class Point>
int isSimple(const Point* points, DWORD count, bool closed, DWORD* first, DWORD* second) {
    SimplicityTest<Point> test;
    const EdgePair fault = test.firstFault(points, count, closed);
    if (test.isSimple(fault)) return 1;
    if (first != nullptr) *first = fault.first;
    if (second != nullptr) *second = fault.second;
    return 0;
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_SIMPLICITY_IMPL_H
