// Where faces, edges and positions lie in memory: along a Hilbert curve over the extent, so that a walk finds those of
// neighbouring triangles close together (D. Hilbert, Ueber die stetige Abbildung einer Linie auf ein
// Flaechenstueck, 1891). New ones are appended; each time there are half as many more, all are arranged anew.
// Nothing that callers see depends on it.
#include <algorithm>
#include <new>
#include <utility>

#include "triangulation/delaunay.h"

namespace velquad::triangulation {
namespace {

/// The curve runs through 2^16 by 2^16 cells.
constexpr std::uint32_t kLastCell = 0xFFFF;
/// For each so many groups one more has to come before all are arranged anew. Walks find those that came all over the
/// array, so that letting more of them come costs more than arranging does.
constexpr std::size_t kNewShare = 2;

/// The cell of a coordinate; those beyond the extent share its outermost cells.
std::uint32_t cellOf(double coordinate, double low, double high) {
    const double cell = (coordinate - low) / (high - low) * kLastCell;
    if (!(cell > 0.0)) return 0;
    return cell < kLastCell ? static_cast<std::uint32_t>(cell) : kLastCell;
}

/// How far along the curve a cell lies. Each step takes one of four quarters and looks at the curve within it.
std::uint32_t alongCurve(std::uint32_t x, std::uint32_t y) {
    std::uint32_t distance = 0;
    for (int bit = 15; bit >= 0; --bit) {
        const std::uint32_t isRight = (x >> bit) & 1;
        const std::uint32_t isBelow = (y >> bit) & 1;
        distance = distance << 2 | ((3 * isRight) ^ isBelow);
        // In the upper quarters the curve is mirrored at a diagonal. Selected by masks: the bits are as good as random.
        const std::uint32_t isMirrored = isBelow - 1;
        const std::uint32_t flipped = isMirrored & (0 - isRight) & kLastCell;
        x ^= flipped;
        y ^= flipped;
        const std::uint32_t exchanged = (x ^ y) & isMirrored;
        x ^= exchanged;
        y ^= exchanged;
    }
    return distance;
}

/// Numbers from 0 on in the order of their places on the curve. Those that were in order before cost little.
template <class PlaceOf>
std::vector<std::uint32_t> sortedByPlace(std::size_t count, const PlaceOf& placeOf) {
    // A key holds a place and, below it, a number.
    std::vector<std::uint64_t> keys(count);
    for (std::size_t i = 0; i < count; ++i)
        keys[i] = static_cast<std::uint64_t>(placeOf(i)) << 32 | i;
    const auto unsorted = std::is_sorted_until(keys.begin(), keys.end());
    std::sort(unsorted, keys.end());
    std::inplace_merge(keys.begin(), unsorted, keys.end());
    std::vector<std::uint32_t> numbers(count);
    for (std::size_t i = 0; i < count; ++i)
        numbers[i] = static_cast<std::uint32_t>(keys[i]);
    return numbers;
}

/// Where each number is to stand in the order of slots that belong to them, by counting.
template <class SlotOf>
std::vector<std::uint32_t> placesBySlot(std::size_t count, std::size_t slotCount, const SlotOf& slotOf) {
    std::vector<std::uint32_t> nextPlaces(slotCount + 1, 0);
    for (std::size_t i = 0; i < count; ++i)
        ++nextPlaces[slotOf(i) + 1];
    for (std::size_t slot = 1; slot < nextPlaces.size(); ++slot)
        nextPlaces[slot] += nextPlaces[slot - 1];
    std::vector<std::uint32_t> places(count);
    for (std::size_t i = 0; i < count; ++i)
        places[i] = nextPlaces[slotOf(i)]++;
    return places;
}

/// Where each number stands in an order.
std::vector<std::uint32_t> inverseOf(const std::vector<std::uint32_t>& order) {
    std::vector<std::uint32_t> places(order.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        places[order[i]] = static_cast<std::uint32_t>(i);
    return places;
}

}  // namespace

/// Arranges slots, groups and faces along the curve. Without the memory for that they stay as they are.
void CDelaunay2D::arrange() noexcept {
    nextArrangement_ = groups_.size() + groups_.size() / kNewShare;
    try {
        arrangeSlots();
        arrangeGroups();
        arrangeFaces();
    } catch (const std::bad_alloc&) {
        return;
    }
}

/// Brings the slots into the order of their places on the curve.
void CDelaunay2D::arrangeSlots() {
    const std::vector<std::uint32_t> oldSlots = sortedByPlace(slots_.size(), [this](std::size_t slot) {
        const tagPOINT2D& p = slots_[slot];
        return alongCurve(cellOf(p.x, extent_.left, extent_.right), cellOf(p.y, extent_.top, extent_.bottom));
    });
    const std::vector<std::uint32_t> newSlots = inverseOf(oldSlots);
    GrowingArray<tagPOINT2D> slots;
    slots.reserveMore(oldSlots.size() + oldSlots.size() / 2);
    std::vector<std::uint32_t> numbers;
    numbers.reserve(oldSlots.size() + oldSlots.size() / 2);
    for (const std::uint32_t old : oldSlots) {
        slots.append(slots_[old]);
        numbers.push_back(numbers_[old]);
    }
    for (std::size_t group = 0; group < groups_.size(); ++group) {
        for (std::uint32_t& end : groups_[group].ends)
            end = newSlots[end];
    }
    slots_ = std::move(slots);
    numbers_ = std::move(numbers);
}

/// Brings the groups into the order of their smaller slots.
void CDelaunay2D::arrangeGroups() {
    const std::vector<std::uint32_t> newGroups =
        placesBySlot(groups_.size(), slots_.size(), [this](std::size_t group) {
            const std::uint32_t* ends = groups_[group].ends;
            return std::min(ends[0], ends[1]);
        });
    const std::vector<std::uint32_t> oldGroups = inverseOf(newGroups);
    const auto renumbered = [&newGroups](EdgeRef e) { return newGroups[e >> 2] * 4 + (e & 3); };
    GrowingArray<CQuadEdge> groups;
    groups.reserveMore(nextArrangement_);
    std::vector<std::uint32_t> ranks;
    ranks.reserve(nextArrangement_);
    for (const std::uint32_t old : oldGroups) {
        CQuadEdge group = groups_[old];
        for (EdgeRef& next : group.next)
            next = renumbered(next);
        groups.append(group);
        ranks.push_back(ranks_[old]);
    }
    groups_ = std::move(groups);
    ranks_ = std::move(ranks);
    for (EdgeRef& e : order_)
        if (e != kNoEdge) e = renumbered(e);
    for (EdgeRef& e : faceEdges_)
        e = renumbered(e);
    startingEdge_ = renumbered(startingEdge_);
}

/// Brings the faces into the order of their smallest slots.
void CDelaunay2D::arrangeFaces() {
    const std::vector<std::uint32_t> newFaces =
        placesBySlot(faces_.size(), slots_.size(), [this](std::size_t face) {
            const EdgeRef e = faceEdges_[face];
            return std::min({slotOfOrg(e), slotOfOrg(sym(e)), slotOfOrg(sym(onext(e)))});
        });
    const auto renumbered = [&newFaces](SideRef side) {
        return sideOf(newFaces[faceOf(side)], cornerOf(side));
    };
    GrowingArray<Face> faces;
    faces.reserveMore(faces_.size() + faces_.size() / 2);
    std::vector<EdgeRef> faceEdges;
    faceEdges.reserve(faces_.size() + faces_.size() / 2);
    for (const std::uint32_t old : inverseOf(newFaces)) {
        Face face = faces_[old];
        for (std::uint32_t corner = 0; corner < 3; ++corner)
            face.setBeyond(corner, renumbered(face.beyond(corner)));
        faces.append(face);
        faceEdges.push_back(faceEdges_[old]);
    }
    faces_ = std::move(faces);
    faceEdges_ = std::move(faceEdges);
    for (std::size_t group = 0; group < groups_.size(); ++group)
        for (SideRef& side : groups_[group].sides)
            side = renumbered(side);
}

}  // namespace velquad::triangulation
