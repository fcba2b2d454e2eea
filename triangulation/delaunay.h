// An incremental Delaunay triangulation of points of the plane: a quad-edge subdivision that is walked to locate a
// point and flipped after its insertion (L. Guibas, J. Stolfi, Primitives for the manipulation of general
// subdivisions and the computation of Voronoi diagrams, 1985).
//
// What callers see depends on the order of the edges and points, on which way each edge was made, on the edge where
// a walk ends, and on the flips; all of these follow the plain algorithm to the letter. What they do not see is
// where things lie in memory and how the nearest vertex is found.
//
// All predicates are evaluated in doubles as they stand, without translation or exact arithmetic.
#ifndef VELQUAD_TRIANGULATION_DELAUNAY_H
#define VELQUAD_TRIANGULATION_DELAUNAY_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "triangulation/faces.h"
#include "triangulation/growing_array.h"
#include "triangulation/nearest_index.h"
#include "velquad/types.h"

namespace velquad::triangulation {

/// An identifier that says there is none.
inline constexpr std::uint64_t kNoId = ~std::uint64_t{0};
/// A squared distance below this counts as distance 0.
inline constexpr double kNullDistanceSquared = 1e-7;
/// Margin of rectangles, least determinant.
inline constexpr double kMargin = 1e-7;
/// Margins of barycentric coordinates.
inline constexpr double kLowestBarycentric = -1e-7;
inline constexpr double kHighestBarycentric = 1.0000001;

/// A vertex, or a place that is asked about.
struct Point2d {
    double x = 0.0;
    double y = 0.0;
    double z = kNoValue;
    std::uint64_t id = kNoId;
    bool isHelper = false;
};

/// Twice the signed area of the triangle a, b, c.
constexpr double triArea(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Tells whether a, b, c turn counter-clockwise.
constexpr bool isCcw(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) {
    return triArea(a, b, c) > 0.0;
}

/// Tells whether two places are the same vertex: their distance is below `kVertexTolerance`.
constexpr bool isSameVertex(const tagPOINT2D& a, const tagPOINT2D& b) {
    // The smallest double whose root is not below the tolerance.
    constexpr double kToleranceSquared = 0x1.19799812dea10p-40;
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return dx * dx + dy * dy < kToleranceSquared;
}

inline double pointDistance(const tagPOINT2D& a, const tagPOINT2D& b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

/// The area of a triangle, whichever way it turns.
inline double triangleArea(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c) {
    return std::fabs(triArea(a, b, c)) * 0.5;
}

/// A directed edge: its group times four plus its place in the group. Places 0 and 2 are the edge and its reverse,
/// 1 and 3 their duals.
using EdgeRef = std::uint32_t;
inline constexpr EdgeRef kNoEdge = 0xFFFFFFFF;

constexpr EdgeRef rot(EdgeRef e) {
    return (e & ~EdgeRef{3}) | ((e + 1) & 3);
}
constexpr EdgeRef sym(EdgeRef e) {
    return e ^ 2;
}
constexpr EdgeRef invRot(EdgeRef e) {
    return (e & ~EdgeRef{3}) | ((e + 3) & 3);
}

class CDelaunay2D {
  public:
    static constexpr std::uint32_t kHelperCount = 3;

    /// @param extent  what the triangulation is made for; null or a left side of `kNoValue` makes an empty one.
    explicit CDelaunay2D(const tagMAT_RECT2D* extent);

    /// Gives an empty triangulation its extent.
    void init(const tagMAT_RECT2D& extent);

    /// @name What there is
    /// @{
    bool hasPoints() const { return !positions_.empty(); }
    const tagMAT_RECT2D& extent() const { return extent_; }
    /// Vertices in the order of insertion, the helpers first.
    std::uint32_t pointCount() const { return static_cast<std::uint32_t>(positions_.size()); }
    static bool isHelper(std::uint32_t point) { return point < kHelperCount; }
    const tagPOINT2D& position(std::uint32_t point) const { return positions_[point]; }
    double z(std::uint32_t point) const { return attributes_[point].z; }
    std::uint64_t id(std::uint32_t point) const { return attributes_[point].id; }
    Point2d point(std::uint32_t number) const {
        const tagPOINT2D& at = positions_[number];
        return {at.x, at.y, z(number), id(number), isHelper(number)};
    }
    void setZ(std::uint32_t point, double z) { attributes_[point].z = z; }
    void setId(std::uint32_t point, std::uint64_t id) { attributes_[point].id = id; }

    /// Edges in the order in which they were made, deleted ones left out: calls `visit(edge)` with each edge as it
    /// was directed.
    template <class Visit>
    void forEachEdge(const Visit& visit) const {
        for (const EdgeRef e : order_)
            if (e != kNoEdge) visit(e);
    }
    std::size_t edgeCount() const { return groups_.size() - freeGroups_; }
    EdgeRef startingEdge() const { return startingEdge_; }
    EdgeRef onext(EdgeRef e) const { return groups_[e >> 2].next[e & 3]; }
    EdgeRef oprev(EdgeRef e) const { return rot(onext(rot(e))); }
    EdgeRef lnext(EdgeRef e) const { return rot(onext(invRot(e))); }
    EdgeRef lprev(EdgeRef e) const { return sym(onext(e)); }
    EdgeRef dprev(EdgeRef e) const { return invRot(onext(invRot(e))); }
    std::uint32_t org(EdgeRef e) const { return numbers_[slotOfOrg(e)]; }
    std::uint32_t dest(EdgeRef e) const { return org(sym(e)); }
    const tagPOINT2D& orgPosition(EdgeRef e) const { return slots_[slotOfOrg(e)]; }
    const tagPOINT2D& destPosition(EdgeRef e) const { return orgPosition(sym(e)); }
    /// @}

    /// @name Questions
    /// @{
    bool isInSuperTriangle(const tagPOINT2D& p) const;
    bool isInExtent(const tagPOINT2D& p) const;
    bool isOnEdge(const tagPOINT2D& p, EdgeRef e) const;
    /// Walks to the face that holds a point.
    /// @return an edge with the point on it or in the face to its left; kNoEdge when there is none.
    EdgeRef locate(const tagPOINT2D& p) const;
    /// The first one of the nearest vertices, helpers left out.
    NearestIndex::Found nearestPoint(const tagPOINT2D& p, double limit) const {
        return index_.nearest(p.x, p.y, limit);
    }
    /// The first one of the nearest vertices of those with `accepts(point)`.
    template <class Accepts>
    NearestIndex::Found nearestPoint(const tagPOINT2D& p, double limit, const Accepts& accepts) const {
        return index_.nearest(p.x, p.y, limit, accepts);
    }
    /// The distance that belongs to a squared one: very small ones count as 0.
    static double foundDistance(double distanceSquared) {
        return distanceSquared < kNullDistanceSquared ? 0.0 : std::sqrt(distanceSquared);
    }
    /// Tells whether the nearest vertex is farther away than `radius`, or there is none.
    bool isFartherThan(const tagPOINT2D& p, double radius) const;
    /// The absolute tolerance that a caller's one means.
    double resolveTolerance(double tolerance) const;
    /// @}

    /// Inserts a point, unless a vertex is there already.
    /// @return false, with nothing changed, for a point outside. A failed allocation changes nothing either.
    bool insertSite(const Point2d& site);

  private:
    /// A quad edge, half a cache line. Every face is a triangle: the polygon that a new vertex lies in is cut into
    /// triangles at once, and flips exchange two for two.
    struct CQuadEdge {
        EdgeRef next[4];
        std::uint32_t ends[2];  ///< The slots of the edge's start and end.
        SideRef sides[2];       ///< The sides of the faces to its left and right that it is.
    };
    static_assert(sizeof(CQuadEdge) == 32);

    struct Step {
        Turn turn;
        bool isHere;  ///< The corner is the vertex looked for.
    };

    /// From so many groups on they are arranged in memory; fewer are near enough to one another in any order.
    static constexpr std::size_t kFirstArrangement = 40000;

    struct Attributes {
        double z;
        std::uint64_t id;
    };

    void reserve(std::size_t edgeCount, std::size_t pointCount);
    std::uint32_t appendPoint(const Point2d& point);
    EdgeRef makeEdge(std::uint32_t org, std::uint32_t dest);
    void setNext(EdgeRef e, EdgeRef next) { groups_[e >> 2].next[e & 3] = next; }
    std::uint32_t slotOfOrg(EdgeRef e) const { return groups_[e >> 2].ends[(e >> 1) & 1]; }
    void setOrg(EdgeRef e, std::uint32_t slot) { groups_[e >> 2].ends[(e >> 1) & 1] = slot; }
    SideRef side(EdgeRef e) const { return groups_[e >> 2].sides[(e >> 1) & 1]; }
    void setSide(EdgeRef e, SideRef side) { groups_[e >> 2].sides[(e >> 1) & 1] = side; }
    EdgeRef edgeOf(SideRef side) const;
    std::uint32_t appendFace();
    void keepNumber(EdgeRef e, std::uint32_t face);
    void noteFace(EdgeRef e, const tagPOINT2D& own, const tagPOINT2D& behind);
    void noteWaysBetween(EdgeRef e, EdgeRef next);
    Step closerStep(SideRef side, const tagPOINT2D& p, Cell from, Cell corner, Cell to) const;
    EdgeRef walk(EdgeRef start, const tagPOINT2D& p, std::uint32_t steps) const;
    void bindFace(EdgeRef a, EdgeRef b, EdgeRef c);
    void deleteEdge(EdgeRef e);
    void swap(EdgeRef e);
    template <std::size_t kSides, std::size_t kOldFaces>
    void joinToPolygon(const EdgeRef (&sides)[kSides], const std::uint32_t (&oldFaces)[kOldFaces],
                       std::uint32_t slot);
    void flipAround(EdgeRef e, const tagPOINT2D& v);
    void arrange() noexcept;
    void arrangeSlots();
    void arrangeGroups();
    void arrangeFaces();

    tagMAT_RECT2D extent_;
    EdgeRef startingEdge_ = kNoEdge;
    std::size_t freeGroups_ = 0;
    std::size_t nextArrangement_ = kFirstArrangement;
    GrowingArray<CQuadEdge> groups_;
    std::vector<EdgeRef> order_;
    std::vector<std::uint32_t> ranks_;  ///< The place of each group in the order of the edges.
    CellGrid grid_;
    GrowingArray<Face> faces_;
    std::vector<EdgeRef> faceEdges_;      ///< The edge of each face that is the side opposite to corner 0.
    GrowingArray<tagPOINT2D> slots_;      ///< The positions once more, those of neighbours close together.
    std::vector<std::uint32_t> numbers_;  ///< The vertex of each slot.
    std::vector<tagPOINT2D> positions_;
    std::vector<Attributes> attributes_;
    NearestIndex index_;
};

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_DELAUNAY_H
