// The subdivision: its operators, and the insertion of a point.
#include "triangulation/delaunay.h"

#include <stdexcept>
#include <utility>

namespace velquad::triangulation {
namespace {

/// More groups than this have no numbers for their edges.
constexpr std::size_t kMostGroups = 0x3FFFFFFF;

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
    const EdgeRef ab = makeEdge(a, b);
    const EdgeRef bc = makeEdge(b, c);
    const EdgeRef ca = makeEdge(c, a);
    bindFace(ab, bc, ca);
    bindFace(sym(ca), sym(bc), sym(ab));
    grid_ = CellGrid({positions_[a].x, top, positions_[b].x, positions_[c].y});
    // The triangle and what lies outside of it are the faces around corner a.
    keepNumber(ab, appendFace());
    keepNumber(sym(ca), appendFace());
    noteFace(bc, positions_[a], positions_[a]);
    noteFace(sym(bc), positions_[a], positions_[a]);
    noteWaysBetween(bc, sym(bc));
    noteWaysBetween(sym(bc), bc);
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
    if (!isInExtent(v)) return false;
    const EdgeRef e = locate(v);
    if (e == kNoEdge) return false;
    if (isSameVertex(orgPosition(e), v) || isSameVertex(destPosition(e), v)) return true;
    const bool splitsEdge = isOnEdge(v, e);
    // All that can fail comes before the first change.
    reserve(splitsEdge ? 4 : 3, 1);
    index_.prepare(v.x, v.y);
    const std::uint32_t point = appendPoint(site);
    index_.add(v.x, v.y, point);
    const std::uint32_t leftFace = faceOf(side(e));
    if (splitsEdge) {
        deleteEdge(e);
        joinToPolygon({lnext(sym(e)), lprev(sym(e)), lnext(e), lprev(e)}, {faceOf(side(sym(e))), leftFace},
                      point);
    } else {
        joinToPolygon({e, lnext(e), lprev(e)}, {leftFace}, point);
    }
    if (groups_.size() >= nextArrangement_) arrange();
    return true;
}

/// Makes room for edges and points, and for a face with each edge.
void CDelaunay2D::reserve(std::size_t edgeCount, std::size_t pointCount) {
    if (groups_.size() + edgeCount > kMostGroups) throw std::length_error("too many edges");
    groups_.reserveMore(edgeCount);
    reserveMore(order_, edgeCount);
    reserveMore(ranks_, edgeCount);
    faces_.reserveMore(edgeCount);
    reserveMore(faceEdges_, edgeCount);
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

/// Appends an edge from one slot to another, which is to be bound to its faces.
EdgeRef CDelaunay2D::makeEdge(std::uint32_t org, std::uint32_t dest) {
    const auto e = static_cast<EdgeRef>(groups_.size() * 4);
    groups_.append({{e, e, e, e}, {org, dest}, {0, 0}});
    ranks_.push_back(static_cast<std::uint32_t>(order_.size()));
    order_.push_back(e);
    return e;
}

/// Binds three edges, each of which starts where the one before ends, to the face to their left.
void CDelaunay2D::bindFace(EdgeRef a, EdgeRef b, EdgeRef c) {
    const auto bind = [this](EdgeRef e, EdgeRef before, EdgeRef after) {
        setNext(e, sym(before));
        setNext(invRot(e), invRot(after));
    };
    bind(a, c, b);
    bind(b, a, c);
    bind(c, b, a);
}

/// Takes an edge out of the order of the edges, where its place stays free: each deletion goes with four new edges, so
/// at most a quarter of the places ever are.
void CDelaunay2D::deleteEdge(EdgeRef e) {
    order_[ranks_[e >> 2]] = kNoEdge;
    ++freeGroups_;
}

/// Turns an edge into the other diagonal of the quadrilateral around it.
void CDelaunay2D::swap(EdgeRef e) {
    const EdgeRef a = oprev(e);
    const EdgeRef b = lnext(e);
    const EdgeRef afterA = lnext(a);
    const EdgeRef afterB = lnext(b);
    setOrg(e, slotOfOrg(afterA));
    setOrg(sym(e), slotOfOrg(afterB));
    bindFace(e, afterB, a);
    bindFace(sym(e), afterA, b);
}

/// Joins a new point to all corners of a polygon and restores the Delaunay property.
/// @param sides  edges around the polygon, which lies to their left; the new edges are made in their order.
/// @param oldFaces  the numbers of the faces that the polygon is made of; they are given to new ones.
template <std::size_t kSides, std::size_t kOldFaces>
void CDelaunay2D::joinToPolygon(const EdgeRef (&sides)[kSides], const std::uint32_t (&oldFaces)[kOldFaces],
                                std::uint32_t slot) {
    EdgeRef spokes[kSides];
    for (std::size_t i = 0; i < kSides; ++i) {
        spokes[i] = makeEdge(slotOfOrg(sides[i]), slot);
        keepNumber(sym(spokes[i]), i < kOldFaces ? oldFaces[i] : appendFace());
    }
    for (std::size_t i = 0; i < kSides; ++i)
        bindFace(sides[i], spokes[(i + 1) % kSides], sym(spokes[i]));
    startingEdge_ = spokes[0];
    flipAround(sides[kSides - 1], slots_[slot]);
}

/// The edge that is a side of a face, with the face to its left.
EdgeRef CDelaunay2D::edgeOf(SideRef side) const {
    EdgeRef e = faceEdges_[faceOf(side)];
    for (std::uint32_t corner = 0; corner != cornerOf(side); ++corner)
        e = lnext(e);
    return e;
}

std::uint32_t CDelaunay2D::appendFace() {
    faces_.append({});
    faceEdges_.push_back(kNoEdge);
    return static_cast<std::uint32_t>(faces_.size() - 1);
}

/// Lets an edge keep the number of the face to its left until that is noted.
void CDelaunay2D::keepNumber(EdgeRef e, std::uint32_t face) {
    setSide(e, sideOf(face, 0));
}

/// Names the corners of the face to the left of `e`, whose number the edge before keeps, so that `e` is opposite to
/// corner 0, and notes the ways through `e`.
/// @param own, behind  the corners opposite to `e` on its two sides.
void CDelaunay2D::noteFace(EdgeRef e, const tagPOINT2D& own, const tagPOINT2D& behind) {
    const EdgeRef before = lprev(e);
    const std::uint32_t face = faceOf(side(before));
    faceEdges_[face] = e;
    setSide(e, sideOf(face, 0));
    setSide(lnext(e), sideOf(face, 1));
    setSide(before, sideOf(face, 2));
    const SideRef outside = side(sym(e));
    faces_[face].setWay(0, {outside, grid_.cellOf(behind)});
    faces_[faceOf(outside)].setWay(cornerOf(outside), {side(e), grid_.cellOf(own)});
}

/// Notes the ways between two faces that share their corner 0, one to the left of `e` and the next one clockwise to the
/// left of `next`.
void CDelaunay2D::noteWaysBetween(EdgeRef e, EdgeRef next) {
    const std::uint32_t face = faceOf(side(e));
    const std::uint32_t nextFace = faceOf(side(next));
    faces_[face].setWay(2, {sideOf(nextFace, 1), grid_.cellOf(orgPosition(next))});
    faces_[nextFace].setWay(1, {sideOf(face, 2), grid_.cellOf(destPosition(e))});
}

/// Walks clockwise around the new vertex `v` along the edges that face it, flips those that are to be flipped, and notes
/// the faces that stay: `v` becomes their corner 0.
void CDelaunay2D::flipAround(EdgeRef e, const tagPOINT2D& v) {
    EdgeRef first = kNoEdge;
    EdgeRef last = kNoEdge;
    for (;;) {
        const tagPOINT2D& corner = destPosition(oprev(e));
        // A face at v is never taken in again, whatever rounding does: its corner would be v itself, for which the
        // terms of the test cancel out. So there are fewer flips than faces.
        if (isCcw(corner, destPosition(e), orgPosition(e)) &&
            isInCircle(orgPosition(e), corner, destPosition(e), v)) {
            // The face beyond is taken in; the edge turned is one away from v with that face's number.
            const std::uint32_t beyond = faceOf(side(sym(e)));
            swap(e);
            keepNumber(sym(e), beyond);
            e = oprev(e);
            continue;
        }
        noteFace(e, v, corner);
        if (last == kNoEdge)
            first = e;
        else
            noteWaysBetween(last, e);
        last = e;
        if (onext(e) == startingEdge_) break;
        e = lprev(onext(e));
    }
    noteWaysBetween(last, first);
}

}  // namespace velquad::triangulation
