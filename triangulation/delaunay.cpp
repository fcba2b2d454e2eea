// The subdivision: its operators, the walk, and the insertion of a point.
#include "triangulation/delaunay.h"

#include <stdexcept>
#include <utility>

namespace velquad::triangulation {
namespace {

/// The smallest double whose root is not below `kVertexTolerance`.
constexpr double kVertexToleranceSquared = 0x1.19799812dea10p-40;
/// A walk gives up after so many steps.
constexpr std::uint32_t kMostSteps = 0x1000000;
/// More groups than this have no numbers for their edges.
constexpr std::size_t kMostGroups = 0x3FFFFFFF;

/// A position as seen from the point that is looked for.
struct Relative {
    double x;
    double y;

    Relative(const tagPOINT2D& position, const tagPOINT2D& p) : x(position.x - p.x), y(position.y - p.y) {}

    /// Tells whether this is the vertex that is looked for: the root of the sum is below the tolerance.
    bool isHere() const { return x * x + y * y < kVertexToleranceSquared; }
};

/// Tells whether the point looked for lies to the right of the edge from `from` to `to`.
bool isRightOf(const Relative& from, const Relative& to) {
    return to.x * from.y - to.y * from.x > 0.0;
}

constexpr double lengthSquared(const tagPOINT2D& p) {
    return p.x * p.x + p.y * p.y;
}

/// Tells whether d lies within the circle through a, b, c, strictly; points of one circle do not.
bool isInCircle(const tagPOINT2D& a, const tagPOINT2D& b, const tagPOINT2D& c, const tagPOINT2D& d) {
    return lengthSquared(a) * triArea(b, c, d) - lengthSquared(b) * triArea(a, c, d) +
               lengthSquared(c) * triArea(a, b, d) - lengthSquared(d) * triArea(a, b, c) >
           0.0;
}

bool isEmptyExtent(const tagMAT_RECT2D* extent) {
    return extent == nullptr || extent->left == kNoValue;
}

}  // namespace

CDelaunay2D::CDelaunay2D(const tagMAT_RECT2D* extent)
    : extent_{kNoValue, kNoValue, kNoValue, kNoValue}, index_(extent_) {
    if (!isEmptyExtent(extent)) init(*extent);
}

void CDelaunay2D::init(const tagMAT_RECT2D& extent) {
    if (isEmptyExtent(&extent)) return;
    reserve(3, kHelperCount);
    extent_ = extent;
    index_ = NearestIndex(extent);
    const double width = extent.right - extent.left;
    const double height = extent.bottom - extent.top;
    const double top = extent.top - height * 0.25;
    const std::uint32_t a = appendPoint({extent.left - width * 3 * 0.25, top, kNoValue, kNoId, true});
    const std::uint32_t b = appendPoint({extent.right + width * 3 * 0.25, top, kNoValue, kNoId, true});
    const std::uint32_t c =
        appendPoint({extent.left + width * 0.5, extent.bottom + height * 1.25, kNoValue, kNoId, true});
    const EdgeRef ab = makeEdge();
    setOrg(ab, a);
    setOrg(sym(ab), b);
    const EdgeRef bc = makeEdge();
    setOrg(bc, b);
    setOrg(sym(bc), c);
    splice(sym(ab), bc);
    const EdgeRef ca = makeEdge();
    setOrg(ca, c);
    setOrg(sym(ca), a);
    splice(sym(bc), ca);
    splice(sym(ca), ab);
    noteApexes(ab);
    noteApexes(sym(ab));
    startingEdge_ = ab;
}

bool CDelaunay2D::isInSuperTriangle(const tagPOINT2D& p) const {
    if (!hasPoints()) return false;
    const tagPOINT2D& a = positions_[0];
    const tagPOINT2D& b = positions_[1];
    const tagPOINT2D& c = positions_[2];
    const double determinant = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (std::fabs(determinant) < kMargin) return false;
    const double u = ((p.x - a.x) * (c.y - a.y) - (p.y - a.y) * (c.x - a.x)) / determinant;
    const double v = ((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / determinant;
    if (u < kLowestBarycentric || v < kLowestBarycentric) return false;
    return u + v > kLowestBarycentric && u + v < kHighestBarycentric;
}

bool CDelaunay2D::isInExtent(const tagPOINT2D& p) const {
    return !(extent_.left - kMargin > p.x) && !(p.x > extent_.right + kMargin) &&
           !(extent_.top - kMargin > p.y) && !(p.y > extent_.bottom + kMargin);
}

bool CDelaunay2D::isOnEdge(const tagPOINT2D& p, EdgeRef e) const {
    const tagPOINT2D& from = orgPosition(e);
    const tagPOINT2D& to = destPosition(e);
    const double toStart = pointDistance(p, from);
    const double toEnd = pointDistance(p, to);
    if (toStart < kVertexTolerance || toEnd < kVertexTolerance) return true;
    const double length = pointDistance(from, to);
    if (toStart > length || toEnd > length) return false;
    const double normalX = (to.y - from.y) / length;
    const double normalY = -(to.x - from.x) / length;
    return std::fabs(normalX * (p.x - from.x) + normalY * (p.y - from.y)) < kVertexTolerance;
}

EdgeRef CDelaunay2D::locate(const tagPOINT2D& p) const {
    if (!isInSuperTriangle(p)) return kNoEdge;
    EdgeRef e = startingEdge_;
    Relative from(orgPosition(e), p);
    Relative to(destPosition(e), p);
    if (from.isHere() || to.isHere()) return e;
    std::uint32_t steps = 0;
    if (isRightOf(from, to)) {
        e = sym(e);
        std::swap(from, to);
        ++steps;
    }
    // From here on p is never to the right of e: an edge is stepped to because p is not to the right of it.
    // Rounding can send a walk in circles; an edge that comes back says so.
    EdgeRef landmark = e;
    std::uint32_t nextLandmark = 64;
    for (;;) {
        // Both edges lead to the third corner of the face. They and what lies beyond them are fetched before it is
        // known which one is wanted: nothing else takes as long as waiting for memory. (GCC drops calls of a
        // function that does nothing but fetch.)
        const EdgeRef left = onext(e);
        const EdgeRef right = dprev(e);
        __builtin_prefetch(&groups_[left >> 2]);
        __builtin_prefetch(&groups_[right >> 2]);
        __builtin_prefetch(&slots_[apex(left)]);
        __builtin_prefetch(&slots_[apex(right)]);
        __builtin_prefetch(&groups_[onext(left) >> 2]);
        __builtin_prefetch(&groups_[dprev(left) >> 2]);
        __builtin_prefetch(&groups_[onext(right) >> 2]);
        __builtin_prefetch(&groups_[dprev(right) >> 2]);
        const Relative corner(slots_[apex(e)], p);
        if (!isRightOf(from, corner)) {
            e = left;
            to = corner;
        } else if (!isRightOf(corner, to)) {
            e = right;
            from = corner;
        } else {
            return e;
        }
        if (++steps == kMostSteps) return kNoEdge;
        if (corner.isHere()) return e;
        if (e == landmark) return kNoEdge;
        if (steps >= nextLandmark) {
            landmark = e;
            nextLandmark *= 2;
        }
    }
}

bool CDelaunay2D::isFartherThan(const tagPOINT2D& p, double radius) const {
    if (radius != radius) return false;
    // Whatever lies beyond the limit is farther away than the radius, rounded or not.
    constexpr double kAbove = 1.000001;
    double limit = radius * radius * kAbove;
    if (limit < kNullDistanceSquared) limit = kNullDistanceSquared;
    if (!(limit < kNoValue)) limit = kNoValue;
    const NearestIndex::Found found = nearestPoint(p, limit);
    if (found.point == NearestIndex::kNone) return limit < kNoValue || kNoValue > radius;
    return foundDistance(found.distanceSquared) > radius;
}

double CDelaunay2D::resolveTolerance(double tolerance) const {
    if (tolerance == kNoValue) return kVertexTolerance;
    if (!(tolerance < 0.0)) return tolerance;
    const double width = extent_.right - extent_.left;
    const double height = extent_.bottom - extent_.top;
    return -tolerance * (width > height ? width : height);
}

bool CDelaunay2D::insertSite(const Point2d& site) {
    const tagPOINT2D v{site.x, site.y};
    if (!isInSuperTriangle(v) || !isInExtent(v)) return false;
    EdgeRef e = locate(v);
    if (e == kNoEdge) return false;
    if (Relative(orgPosition(e), v).isHere() || Relative(destPosition(e), v).isHere()) return true;
    const bool splitsEdge = isOnEdge(v, e);
    // All that can fail comes before the first change.
    reserve(countFaceEdges(e) + (splitsEdge ? countFaceEdges(sym(e)) : 0), 1);
    index_.prepare(v.x, v.y);
    if (splitsEdge) {
        e = oprev(e);
        deleteEdge(onext(e));
    }
    const std::uint32_t point = appendPoint(site);
    index_.add(v.x, v.y, point);
    joinToFace(e, point);
    if (groups_.size() >= nextArrangement_) arrange();
    return true;
}

/// Makes room for edges and points.
void CDelaunay2D::reserve(std::size_t edgeCount, std::size_t pointCount) {
    if (groups_.size() + edgeCount > kMostGroups) throw std::length_error("too many edges");
    groups_.reserveMore(edgeCount);
    reserveMore(order_, edgeCount);
    reserveMore(ranks_, edgeCount);
    slots_.reserveMore(pointCount);
    reserveMore(numbers_, pointCount);
    reserveMore(positions_, pointCount);
    reserveMore(attributes_, pointCount);
}

/// Appends a vertex. Its slot has its number until the slots are arranged.
std::uint32_t CDelaunay2D::appendPoint(const Point2d& point) {
    const std::uint32_t number = pointCount();
    const tagPOINT2D position{point.x, point.y};
    positions_.push_back(position);
    attributes_.push_back({point.z, point.id});
    slots_.append(position);
    numbers_.push_back(number);
    return number;
}

/// Appends an edge without connections.
EdgeRef CDelaunay2D::makeEdge() {
    const auto e = static_cast<EdgeRef>(groups_.size() * 4);
    groups_.append({{e, e + 3, e + 2, e + 1}, {0, 0}, {0, 0}});
    ranks_.push_back(static_cast<std::uint32_t>(order_.size()));
    order_.push_back(e);
    return e;
}

void CDelaunay2D::splice(EdgeRef a, EdgeRef b) {
    const EdgeRef alpha = rot(onext(a));
    const EdgeRef beta = rot(onext(b));
    std::swap(groups_[a >> 2].next[a & 3], groups_[b >> 2].next[b & 3]);
    std::swap(groups_[alpha >> 2].next[alpha & 3], groups_[beta >> 2].next[beta & 3]);
}

/// Makes an edge from the end of `a` to the start of `b`, which have their left face in common.
EdgeRef CDelaunay2D::connect(EdgeRef a, EdgeRef b) {
    const EdgeRef e = makeEdge();
    splice(e, lnext(a));
    splice(sym(e), b);
    setOrg(e, slotOfOrg(sym(a)));
    setOrg(sym(e), slotOfOrg(b));
    return e;
}

/// Takes an edge out. Its place in the order of the edges stays free: each deletion goes with four new edges, so at
/// most a quarter of the places ever are.
void CDelaunay2D::deleteEdge(EdgeRef e) {
    splice(e, oprev(e));
    splice(sym(e), oprev(sym(e)));
    order_[ranks_[e >> 2]] = kNoEdge;
    ++freeGroups_;
}

/// Turns an edge into the other diagonal of the quadrilateral around it.
void CDelaunay2D::swap(EdgeRef e) {
    const EdgeRef a = oprev(e);
    const EdgeRef b = oprev(sym(e));
    splice(e, a);
    splice(sym(e), b);
    splice(e, lnext(a));
    splice(sym(e), lnext(b));
    setOrg(e, slotOfOrg(sym(a)));
    setOrg(sym(e), slotOfOrg(sym(b)));
}

std::size_t CDelaunay2D::countFaceEdges(EdgeRef e) const {
    std::size_t count = 1;
    for (EdgeRef next = lnext(e); next != e; next = lnext(next))
        ++count;
    return count;
}

/// Joins a new point to all corners of the face to the left of `e` and restores the Delaunay property.
void CDelaunay2D::joinToFace(EdgeRef e, std::uint32_t slot) {
    EdgeRef base = makeEdge();
    setOrg(base, slotOfOrg(e));
    setOrg(sym(base), slot);
    splice(base, e);
    startingEdge_ = base;
    do {
        base = connect(e, sym(base));
        e = oprev(base);
    } while (lnext(e) != startingEdge_);
    flipAround(e, slots_[slot]);
    noteApexesAround(sym(startingEdge_));
}

/// Notes the corners of the triangle to the left of `e` at its three edges.
void CDelaunay2D::noteApexes(EdgeRef e) {
    const EdgeRef second = lnext(e);
    const EdgeRef third = lnext(second);
    setApex(e, slotOfOrg(third));
    setApex(second, slotOfOrg(e));
    setApex(third, slotOfOrg(second));
}

/// Notes the corners of all triangles around the start of `e`. After an insertion these are the ones that changed:
/// every flip joins the new vertex to one corner more.
void CDelaunay2D::noteApexesAround(EdgeRef e) {
    const EdgeRef first = e;
    do {
        noteApexes(e);
        e = onext(e);
    } while (e != first);
}

/// Walks around the new vertex `v` and flips the edges that face it, as long as one is to be flipped.
void CDelaunay2D::flipAround(EdgeRef e, const tagPOINT2D& v) {
    // Each flip gives v one more edge, so there are fewer than there are edges; only a subdivision that is none any
    // more, by rounding, could go on.
    for (std::size_t rest = groups_.size() * 8; rest != 0; --rest) {
        const EdgeRef t = oprev(e);
        const tagPOINT2D& corner = destPosition(t);
        if (isCcw(corner, destPosition(e), orgPosition(e)) &&
            isInCircle(orgPosition(e), corner, destPosition(e), v)) {
            swap(e);
            e = oprev(e);
        } else if (onext(e) == startingEdge_) {
            return;
        } else {
            e = lprev(onext(e));
        }
    }
}

}  // namespace velquad::triangulation
