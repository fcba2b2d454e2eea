// A bounding hierarchy over the edges of one outline, for integer and double points.
//
// A leaf holds eight consecutive edges, and each node above covers two below it, so the tree is a few arrays without
// pointers. Two kinds of bounds tell that no edge of one node can have contact with an edge of another:
//
// Upright boxes. The segment test itself begins by rejecting segments whose boxes are apart. Its comparisons are
// monotone, so boxes around runs of edges that are apart stand for the rejection of every pair. This holds for all
// coordinates, whatever wraps around afterwards.
//
// Oriented boxes. Where no arithmetic wraps around or overflows, two segments that the test finds in contact lie
// within 1e-7 (|a| + |b|) + 2e-7 of one another, up to rounding:
//   - The parameter t on a was accepted, so the point p at t lies on a or less than 1e-7 |a| beyond its ends.
//   - t = numerator / denominator with errors below E = 8 u D |b| each, u = 2^-53 and D the extent of the outline, so p
//     is within 3 E / |b| of the line of b, however small the denominator is.
//   - The parameter on b is that of the point of the line of b that has the dominant coordinate of p, and it was
//     accepted, so this point lies on b or less than 1e-7 |b| beyond its ends, and within sqrt(2) 3 E / |b| of p.
//   - Parallel segments in contact lie on one line, to within E / |b|, and their boxes, with a margin of 1e-7,
//     overlap.
// Nodes whose oriented boxes are farther apart than a generous bound of this kind hold no pair in contact.
#ifndef VELQUAD_POLYGON_EDGE_TREE_IMPL_H
#define VELQUAD_POLYGON_EDGE_TREE_IMPL_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "frame/primitives.h"
#include "geometry/line_intersection.h"
#include "polygon/oriented_box.h"
#include "polygon/point_traits.h"
#include "polygon/scratch_array.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// The edges of an outline: edge i leads from point i to the next one, and behind the last point to the first.
template <class Point>
struct EdgeChain {
    const Point* points;
    DWORD pointCount;
    DWORD edgeCount;  ///< As many as points, or one less for an open chain.

    const Point& start(DWORD edge) const { return points[edge]; }
    const Point& end(DWORD edge) const { return points[edge + 1 == pointCount ? 0 : edge + 1]; }
    bool isPoint(DWORD edge) const { return PointTraits<Point>::equal(start(edge), end(edge)); }
};

/// An upright box.
template <class Point>
struct EdgeBox {
    using Coordinate = typename PointTraits<Point>::Coordinate;
    using Segments = geometry::SegmentTraits<Point>;

    Coordinate left;
    Coordinate top;
    Coordinate right;
    Coordinate bottom;

    static EdgeBox around(const Point& point) { return {point.x, point.y, point.x, point.y}; }
    static EdgeBox around(const Point& a, const Point& b) {
        EdgeBox box = around(a);
        box.include(around(b));
        return box;
    }

    void include(const EdgeBox& other) {
        left = other.left < left ? other.left : left;
        top = other.top < top ? other.top : top;
        right = other.right > right ? other.right : right;
        bottom = other.bottom > bottom ? other.bottom : bottom;
    }

    /// The test of single segments.
    bool isApartFrom(const EdgeBox& other) const {
        const bool isApartInX =
            Segments::isFarAbove(left, other.right) | Segments::isFarBelow(right, other.left);
        const bool isApartInY =
            Segments::isFarAbove(top, other.bottom) | Segments::isFarBelow(bottom, other.top);
        return isApartInX | isApartInY;
    }
};

/// What integer and double outlines differ in: where oriented boxes can be relied on.
template <class Point>
struct OrientedBoxTraits;

template <>
struct OrientedBoxTraits<tagPOINT> {
    /// Each product of the segment test has a component of an edge as a factor, and sums two of them.
    static constexpr double kLargestProduct = 1073741823.0;

    static bool areReliable(double extent, double /*largest*/, double longest) {
        return extent <= 2147483647.0 && extent * longest <= kLargestProduct;
    }
};

template <>
struct OrientedBoxTraits<tagPOINT2D> {
    /// Far below where products overflow. Comparisons with a not-a-number are false.
    static constexpr double kLargestCoordinate = 1e100;

    static bool areReliable(double extent, double largest, double longest) {
        return extent <= kLargestCoordinate && largest <= kLargestCoordinate && longest <= kLargestCoordinate;
    }
};

template <class Point>
class EdgeTree {
  public:
    using Coordinate = typename PointTraits<Point>::Coordinate;
    using Box = EdgeBox<Point>;

    /// A node by its level, 0 for leaves, and its place in the level.
    struct Node {
        unsigned level;
        std::size_t index;

        Node firstChild() const { return {level - 1, 2 * index}; }
        Node secondChild() const { return {level - 1, 2 * index + 1}; }
    };

    /// Builds the tree. @return false without memory.
    bool build(const EdgeChain<Point>& chain) {
        chain_ = chain;
        layOutLevels();
        if (!boxes_.reserve(nodeCount_)) return false;
        measure();
        if (hasOrientedBoxes_ && !orientedBoxes_.reserve(nodeCount_)) return false;
        for (std::size_t i = 0; i < levelSize_[0]; ++i)
            bindLeaf(i);
        for (unsigned level = 1; level < levelCount_; ++level) {
            for (std::size_t i = 0; i < levelSize_[level]; ++i)
                bindInner({level, i});
        }
        return true;
    }

    const EdgeChain<Point>& chain() const { return chain_; }
    Node root() const { return {levelCount_ - 1, 0}; }
    bool exists(const Node& node) const { return node.index < levelSize_[node.level]; }

    DWORD begin(const Node& node) const {
        return static_cast<DWORD>(std::uint64_t{node.index} << (node.level + kLeafBits));
    }
    DWORD end(const Node& node) const {
        const std::uint64_t end = std::uint64_t{node.index + 1} << (node.level + kLeafBits);
        return end < chain_.edgeCount ? static_cast<DWORD>(end) : chain_.edgeCount;
    }

    const Box& box(const Node& node) const { return boxes_[place(node)]; }

    /// Tells that no edge of one node can have contact with an edge of the other.
    bool areApart(const Node& a, const Node& b) const {
        const std::size_t placeA = place(a);
        const std::size_t placeB = place(b);
        if (boxes_[placeA].isApartFrom(boxes_[placeB])) return true;
        return hasOrientedBoxes_ && areApartBy(gap_, orientedBoxes_[placeA], orientedBoxes_[placeB]);
    }

  private:
    static constexpr unsigned kLeafBits = 3;
    static constexpr unsigned kMaxLevels = 32;

    std::size_t place(const Node& node) const { return levelStart_[node.level] + node.index; }

    void layOutLevels() {
        constexpr std::uint64_t kLeafEdges = 1U << kLeafBits;
        auto size = static_cast<std::size_t>((chain_.edgeCount + kLeafEdges - 1) / kLeafEdges);
        nodeCount_ = 0;
        levelCount_ = 0;
        while (true) {
            levelStart_[levelCount_] = nodeCount_;
            levelSize_[levelCount_] = size;
            nodeCount_ += size;
            ++levelCount_;
            if (size <= 1) return;
            size = (size + 1) / 2;
        }
    }

    /// Looks how large the coordinates are, and settles whether oriented boxes are used and at which gap.
    void measure() {
        const auto asDouble = [](const Point& p) {
            return tagPOINT2D{static_cast<double>(p.x), static_cast<double>(p.y)};
        };
        tagPOINT2D previous = asDouble(chain_.points[chain_.pointCount - 1]);
        Extent x{previous.x, previous.x};
        Extent y{previous.y, previous.y};
        Extent step{0.0, 0.0};
        double anyNotFinite = 0.0;
        for (DWORD i = 0; i < chain_.pointCount; ++i) {
            const tagPOINT2D point = asDouble(chain_.points[i]);
            x.include(point.x);
            y.include(point.y);
            step.include(point.x - previous.x);
            step.include(point.y - previous.y);
            // 0 stays 0 with finite coordinates and becomes not-a-number with any other.
            anyNotFinite += (point.x - point.x) + (point.y - point.y);
            previous = point;
        }
        const double extent = frame::largest(x.high - x.low, y.high - y.low);
        const double longest = frame::largest(step.high, -step.low);
        const double largest = frame::largest(frame::largest(std::fabs(x.low), std::fabs(x.high)),
                                              frame::largest(std::fabs(y.low), std::fabs(y.high)));
        hasOrientedBoxes_ =
            anyNotFinite == 0.0 && OrientedBoxTraits<Point>::areReliable(extent, largest, longest);
        gap_ = 1e-6 + 1e-6 * longest + 1e-12 * largest;
    }

    /// The box of a node without bounds, for coordinates that are not numbers: apart from nothing.
    static Box unbounded() {
        using Limits = std::numeric_limits<Coordinate>;
        constexpr Coordinate kLowest = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
        constexpr Coordinate kHighest = Limits::has_infinity ? Limits::infinity() : Limits::max();
        return {kLowest, kLowest, kHighest, kHighest};
    }

    void bindLeaf(std::size_t index) {
        const Node node{0, index};
        Box box = Box::around(chain_.start(begin(node)));
        bool isNumber = box.left == box.left && box.top == box.top;
        for (DWORD i = begin(node); i < end(node); ++i) {
            const Box point = Box::around(chain_.end(i));
            isNumber = isNumber && point.left == point.left && point.top == point.top;
            box.include(point);
        }
        boxes_[place(node)] = isNumber ? box : unbounded();
        if (hasOrientedBoxes_) orientedBoxes_[place(node)] = orientedBoxOfLeaf(node);
    }

    /// The box along the longest edge.
    OrientedBox orientedBoxOfLeaf(const Node& node) const {
        const auto toOrigin = [origin = chain_.start(begin(node))](const Point& p) {
            return tagPOINT2D{static_cast<double>(p.x) - static_cast<double>(origin.x),
                              static_cast<double>(p.y) - static_cast<double>(origin.y)};
        };
        tagPOINT2D longest{0.0, 0.0};
        tagPOINT2D previous{0.0, 0.0};
        for (DWORD i = begin(node); i < end(node); ++i) {
            const tagPOINT2D point = toOrigin(chain_.end(i));
            const tagPOINT2D edge = offset(previous, point);
            if (dot(edge, edge) > dot(longest, longest)) longest = edge;
            previous = point;
        }
        const tagPOINT2D axis = unitVector(longest);
        Extent along{0.0, 0.0};
        Extent across{0.0, 0.0};
        for (DWORD i = begin(node); i < end(node); ++i) {
            const tagPOINT2D point = toOrigin(chain_.end(i));
            along.include(dot(axis, point));
            across.include(cross(axis, point));
        }
        const Point& start = chain_.start(begin(node));
        const tagPOINT2D origin{static_cast<double>(start.x), static_cast<double>(start.y)};
        return boxFromExtents(origin, axis, along, across);
    }

    void bindInner(const Node& node) {
        const std::size_t first = place(node.firstChild());
        const bool hasSecond = exists(node.secondChild());
        boxes_[place(node)] = boxes_[first];
        if (hasSecond) boxes_[place(node)].include(boxes_[first + 1]);
        if (!hasOrientedBoxes_) return;
        orientedBoxes_[place(node)] =
            hasSecond ? merged(orientedBoxes_[first], orientedBoxes_[first + 1]) : orientedBoxes_[first];
    }

    EdgeChain<Point> chain_{};
    ScratchArray<Box> boxes_;
    ScratchArray<OrientedBox> orientedBoxes_;
    std::size_t levelStart_[kMaxLevels];
    std::size_t levelSize_[kMaxLevels];
    std::size_t nodeCount_ = 0;
    unsigned levelCount_ = 0;
    bool hasOrientedBoxes_ = false;
    double gap_ = 0.0;
};

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_EDGE_TREE_IMPL_H
