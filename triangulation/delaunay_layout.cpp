// Where the edges lie in memory: along a Hilbert curve over the extent, so that a walk finds the edges of neighbouring
// triangles close together (D. Hilbert, Ueber die stetige Abbildung einer Linie auf ein Flaechenstueck, 1891). New
// edges are appended; each time there are half as many again, all are arranged anew. Nothing that callers see depends
// on it.
#include <algorithm>
#include <new>
#include <utility>

#include "triangulation/delaunay.h"

namespace velquad::triangulation {
namespace {

/// The curve runs through 2^16 by 2^16 cells.
constexpr std::uint32_t kLastCell = 0xFFFF;

/// The cell of a coordinate; those beyond the extent share its outermost cells.
std::uint32_t cellOf(double coordinate, double low, double high) {
    const double cell = (coordinate - low) / (high - low) * kLastCell;
    if (!(cell > 0.0)) return 0;
    return cell < kLastCell ? static_cast<std::uint32_t>(cell) : kLastCell;
}

/// How far along the curve a cell lies.
std::uint32_t alongCurve(std::uint32_t x, std::uint32_t y) {
    std::uint32_t distance = 0;
    for (std::uint32_t bit = (kLastCell + 1) / 2; bit != 0; bit /= 2) {
        const bool isRight = (x & bit) != 0;
        const bool isBelow = (y & bit) != 0;
        distance = distance * 4 + (isRight ? (isBelow ? 2 : 3) : (isBelow ? 1 : 0));
        if (isBelow) continue;
        if (isRight) {
            x = kLastCell - x;
            y = kLastCell - y;
        }
        std::swap(x, y);
    }
    return distance;
}

}  // namespace

/// Arranges the groups along the curve. A shortage of memory leaves them as they are.
void CDelaunay2D::arrangeGroups() noexcept {
    nextArrangement_ = groups_.size() + groups_.size() / 2;
    try {
        // Each key holds a place on the curve and, below it, a group.
        std::vector<std::uint64_t> keys(groups_.size());
        for (std::size_t group = 0; group < keys.size(); ++group) {
            const auto* ends = groups_[group].positions;
            const std::uint32_t place =
                alongCurve(cellOf((ends[0].x + ends[1].x) * 0.5, extent_.left, extent_.right),
                           cellOf((ends[0].y + ends[1].y) * 0.5, extent_.top, extent_.bottom));
            keys[group] = static_cast<std::uint64_t>(place) << 32 | group;
        }
        std::sort(keys.begin(), keys.end());
        moveGroups(keys);
    } catch (const std::bad_alloc&) {
        return;
    }
}

/// Moves the groups into the order of the keys' lower halves.
void CDelaunay2D::moveGroups(const std::vector<std::uint64_t>& keys) {
    std::vector<std::uint32_t> newGroups(keys.size());
    GrowingArray<CQuadEdge> moved;
    moved.reserveMore(nextArrangement_);
    for (std::size_t i = 0; i < keys.size(); ++i)
        newGroups[static_cast<std::uint32_t>(keys[i])] = static_cast<std::uint32_t>(i);
    const auto renumbered = [&newGroups](EdgeRef e) { return newGroups[e >> 2] * 4 + (e & 3); };
    for (const std::uint64_t key : keys) {
        CQuadEdge group = groups_[static_cast<std::uint32_t>(key)];
        for (EdgeRef& next : group.next)
            next = renumbered(next);
        moved.append(group);
    }
    groups_ = std::move(moved);
    for (EdgeRef& e : order_)
        if (e != kNoEdge) e = renumbered(e);
    startingEdge_ = renumbered(startingEdge_);
}

}  // namespace velquad::triangulation
