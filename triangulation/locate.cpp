// The walk to the face that holds a point. A step goes to the neighbour beyond a side that has the point on its other
// side; which of two such sides is taken decides where the walk ends. Three sides are tried in their order, in doubles;
// here the cells of the corners are compared first, and only where these leave it open are positions (staged precision:
// J. R. Shewchuk, Adaptive precision floating-point arithmetic and fast robust geometric predicates, 1997).
#include <cstddef>
#include <cstdint>

#include "triangulation/delaunay.h"

namespace velquad::triangulation {
namespace {

/// A walk gives up after so many steps.
constexpr std::uint32_t kMostSteps = 0x1000000;

/// With so many faces, few of a walk's are found in the caches next to the processor.
constexpr std::size_t kManyFaces = 300000;

/// Tells whether p lies to the right of the line from `from` to `to`.
bool isRightOf(const tagPOINT2D& p, const tagPOINT2D& from, const tagPOINT2D& to) {
    return isCcw(p, to, from);
}

/// The turn at a side, by the positions.
Turn turnAt(const tagPOINT2D& p, const tagPOINT2D& from, const tagPOINT2D& corner, const tagPOINT2D& to) {
    if (!isRightOf(p, from, corner)) return Turn::kLeft;
    if (!isRightOf(p, corner, to)) return Turn::kRight;
    return Turn::kNone;
}

}  // namespace

EdgeRef CDelaunay2D::locate(const tagPOINT2D& p) const {
    if (!isInSuperTriangle(p)) return kNoEdge;
    const EdgeRef e = startingEdge_;
    const tagPOINT2D& from = orgPosition(e);
    const tagPOINT2D& to = destPosition(e);
    if (isSameVertex(from, p) || isSameVertex(to, p)) return e;
    const bool isBehind = isRightOf(p, from, to);
    return walk(isBehind ? sym(e) : e, p, isBehind ? 1 : 0);
}

/// The step from a side where the cells do not tell it at once.
CDelaunay2D::Step CDelaunay2D::closerStep(SideRef side, const tagPOINT2D& p, Cell from, Cell corner,
                                          Cell to) const {
    if (!grid_.mayBeSameVertex(corner)) {
        const Turn turn =
            turnAt(from, corner, to, CellGrid::sureTurn(from, corner), CellGrid::sureTurn(corner, to));
        if (turn != Turn::kUnsure) return {turn, false};
    }
    const EdgeRef e = edgeOf(side);
    const tagPOINT2D& position = destPosition(onext(e));
    return {turnAt(p, orgPosition(e), position, destPosition(e)), isSameVertex(position, p)};
}

/// Walks on from an edge that does not have p to its right, `steps` steps having been made.
EdgeRef CDelaunay2D::walk(EdgeRef start, const tagPOINT2D& p, std::uint32_t steps) const {
    const Cell here = grid_.cellOf(p);
    const std::int64_t sure = grid_.sureTurn();
    Cell from = grid_.cellOf(orgPosition(start)) - here;
    Cell to = grid_.cellOf(destPosition(start)) - here;
    Cell corner = grid_.cellOf(destPosition(onext(start))) - here;
    const bool areMany = faces_.size() >= kManyFaces;
    // From here on p is never to the right of a side: one is stepped to because p is not to the right of it.
    // Rounding can send a walk in circles; a side that comes back says so.
    SideRef side = this->side(start);
    SideRef landmark = side;
    std::uint32_t nextLandmark = 64;
    for (;;) {
        // What lies beyond both sides is fetched before it is known which one is wanted, and for many faces what lies
        // beyond that as well: nothing else takes as long as waiting for memory. (GCC drops calls of a function that
        // does nothing but fetch.)
        const Face& face = faces_[faceOf(side)];
        const Way left = face.way(cornerBefore(cornerOf(side)));
        const Way right = face.way(cornerAfter(cornerOf(side)));
        __builtin_prefetch(&faces_[faceOf(left.side)]);
        __builtin_prefetch(&faces_[faceOf(right.side)]);
        if (areMany) {
            const Face& atLeft = faces_[faceOf(left.side)];
            const Face& atRight = faces_[faceOf(right.side)];
            __builtin_prefetch(&faces_[faceOf(atLeft.beyond(cornerBefore(cornerOf(left.side))))]);
            __builtin_prefetch(&faces_[faceOf(atLeft.beyond(cornerAfter(cornerOf(left.side))))]);
            __builtin_prefetch(&faces_[faceOf(atRight.beyond(cornerBefore(cornerOf(right.side))))]);
            __builtin_prefetch(&faces_[faceOf(atRight.beyond(cornerAfter(cornerOf(right.side))))]);
        }
        Step step{turnAt(from, corner, to, sure, sure), false};
        if (step.turn == Turn::kUnsure) [[unlikely]]
            step = closerStep(side, p, from, corner, to);
        if (step.turn == Turn::kLeft) {
            to = corner;
            corner = left.corner - here;
            side = left.side;
        } else if (step.turn == Turn::kRight) {
            from = corner;
            corner = right.corner - here;
            side = right.side;
        } else {
            return edgeOf(side);
        }
        if (++steps == kMostSteps) return kNoEdge;
        if (step.isHere) return edgeOf(side);
        if (side == landmark) return kNoEdge;
        if (steps >= nextLandmark) {
            landmark = side;
            nextLandmark *= 2;
        }
    }
}

}  // namespace velquad::triangulation
