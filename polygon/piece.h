// Pieces of an outline: places where it is cut, and the records that pieces are written into.
#ifndef VELQUAD_POLYGON_PIECE_H
#define VELQUAD_POLYGON_PIECE_H

#include <algorithm>
#include <cstdint>
#include <utility>

#include "frame/global_block.h"
#include "frame/primitives.h"
#include "polygon/double_points_impl.h"
#include "polygon/position.h"
#include "polygon/record.h"
#include "velquad/types.h"

namespace velquad::polygon {

/// A place where an outline is cut.
struct CutPlace {
    tagPOLY_POSITION position;
    tagPOINT2D point;

    /// Tells whether the place lies behind the vertex of its index rather than on it.
    bool isBehindVertex() const { return !frame::isSmaller(kFractionTolerance, position.fraction); }
    tagPOINT roundedPoint() const { return makeIntPoint(point); }
};

/// The tolerance that a caller's value stands for: the largest double switches snapping off.
constexpr double snapTolerance(double tolerance) {
    return tolerance == kNoValue ? 0.0 : tolerance;
}

/// The place of a position after it was moved onto a vertex that is near enough. A position that does not exist
/// keeps its numbers, and its point is the largest double.
inline CutPlace snappedPlace(const tagPOINT* points, DWORD count, bool closed, tagPOLY_POSITION position,
                             double tolerance) {
    CutPlace place{position, {kNoValue, kNoValue}};
    replacePointByVertex(points, count, closed, &place.position.index, &place.position.fraction, tolerance,
                         &place.point);
    return place;
}

/// Two places in the order of the outline.
struct CutSpan {
    CutPlace low;
    CutPlace high;
    int order;  ///< `comparePositions` of the places as they were given; above 0 they are exchanged.
};

inline CutSpan spanBetween(const CutPlace& a, const CutPlace& b) {
    const int order = comparePositions(a.position, b.position);
    return order > 0 ? CutSpan{b, a, order} : CutSpan{a, b, order};
}

/// The points of an outline without one stored closing point. @param count  not 0.
inline DWORD countWithoutClosingPoint(const tagPOINT* points, DWORD count) {
    return isClosed(points, count) ? count - 1 : count;
}

/// Writes the points of a piece into a new record.
class PieceWriter {
  public:
    /// @param room  as many points as will be added, at most.
    explicit PieceWriter(std::uint64_t room) : block_(allocRecord(room)) {
        if (block_) points_ = block_.as<tagPOLY>()->points;
    }

    /// False without memory. Then nothing may be added.
    explicit operator bool() const { return points_ != nullptr; }

    void add(const tagPOINT& point) { points_[count_++] = point; }

    /// Adds points[first] to points[end - 1].
    void addVertices(const tagPOINT* points, std::uint64_t first, std::uint64_t end) {
        if (first >= end) return;
        std::copy(points + first, points + end, points_ + count_);
        count_ += static_cast<DWORD>(end - first);
    }

    /// Adds `number` vertices from `first` on, going round after vertex `period` - 1.
    /// @param number  not above `period`.
    void addVerticesAround(const tagPOINT* points, DWORD period, std::uint64_t first, std::uint64_t number) {
        const std::uint64_t start = first % period;
        const std::uint64_t beforeSeam = std::min<std::uint64_t>(number, period - start);
        addVertices(points, start, start + beforeSeam);
        addVertices(points, 0, number - beforeSeam);
    }

    /// Adds the first point once more.
    void addClosingPoint() { add(points_[0]); }

    /// Ends the piece without its double points. @return the locked record.
    frame::LockedBlock finish() {
        block_.as<tagPOLY>()->count = removeDoublePoints(points_, count_);
        return std::move(block_);
    }

  private:
    frame::LockedBlock block_;
    tagPOINT* points_ = nullptr;
    DWORD count_ = 0;
};

/// The two records that a cut can give; those that are not wanted stay empty.
struct CutPieces {
    frame::LockedBlock first;
    frame::LockedBlock second;

    /// Hands the pieces to whom they are wanted by.
    void release(void** out1, void** out2) {
        if (first && out1 != nullptr) *out1 = first.releaseHandle();
        if (second && out2 != nullptr) *out2 = second.releaseHandle();
    }
};

/// The answer of a cut that cannot be made.
inline bool refuseCut(void** out1, void** out2) {
    if (out1 != nullptr) *out1 = nullptr;
    if (out2 != nullptr) *out2 = nullptr;
    return false;
}

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_PIECE_H
