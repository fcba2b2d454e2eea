// The faces of a subdivision as a walk reads them: half a cache line a triangle, with the ways to its three neighbours
// and the corners there on a grid of 2^24 by 2^24 cells. The cells of three positions nearly always tell which way these
// turn; where they do not, the positions themselves are to be asked.
#ifndef VELQUAD_TRIANGULATION_FACES_H
#define VELQUAD_TRIANGULATION_FACES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "velquad/types.h"

namespace velquad::triangulation {

/// Points nearer to one another than this are the same vertex; points this near to an edge lie on it.
inline constexpr double kVertexTolerance = 1e-6;

/// A side of a face: the number of the face times four plus the number of the corner opposite to the side. Corners
/// are numbered 0 to 2, counter-clockwise.
using SideRef = std::uint32_t;

constexpr std::uint32_t faceOf(SideRef side) {
    return side >> 2;
}
constexpr std::uint32_t cornerOf(SideRef side) {
    return side & 3;
}
constexpr SideRef sideOf(std::uint32_t face, std::uint32_t corner) {
    return face << 2 | corner;
}

/// The corners after and before one. The answers for 0, 1, 2 stand in two bits each of one number.
constexpr std::uint32_t cornerAfter(std::uint32_t corner) {
    return (0b00'10'01U >> (2 * corner)) & 3;
}
constexpr std::uint32_t cornerBefore(std::uint32_t corner) {
    return (0b01'00'10U >> (2 * corner)) & 3;
}

/// A cell of the grid, or the distance of two cells.
struct Cell {
    std::int64_t x;
    std::int64_t y;
};

constexpr Cell operator-(const Cell& a, const Cell& b) {
    return {a.x - b.x, a.y - b.y};
}

/// Maps positions to cells. Nothing is told by a grid over a box that is too thin, too large or too small for the
/// bounds given here: all of its positions share one cell.
class CellGrid {
  public:
    static constexpr int kBits = 24;

    CellGrid() = default;
    /// @param box  holds all positions, but for a millionth of its sizes.
    explicit CellGrid(const tagMAT_RECT2D& box);

    Cell cellOf(const tagPOINT2D& p) const {
        return {wholeOf((p.x - left_) * scaleX_), wholeOf((p.y - top_) * scaleY_)};
    }

    /// A turn, seen from the cell of a point p, from one cell to another is that of the positions when it is as far
    /// from 0 as this, whichever the cells are; and then p is not the vertex of either.
    std::int64_t sureTurn() const { return sureTurn_; }
    /// The same for two given cells, but for p, which may be the vertex of either.
    static std::int64_t sureTurn(const Cell& from, const Cell& to);
    /// Tells whether p may be the vertex of a cell seen from its own.
    bool mayBeSameVertex(const Cell& cell) const;

  private:
    /// The whole part; 0 for a not-a-number, which helpers at infinite places have on a grid that tells nothing.
    static std::int64_t wholeOf(double value) { return value > 0.0 ? static_cast<std::int64_t>(value) : 0; }

    double left_ = 0.0;
    double top_ = 0.0;
    double scaleX_ = 0.0;
    double scaleY_ = 0.0;
    std::int64_t reach_ = 0;  ///< One vertex's positions are no farther apart, in cells.
    std::int64_t sureTurn_ = std::numeric_limits<std::int64_t>::max();
};

/// Twice the area of the triangle of a cell and two others that are seen from it: positive when the cell lies to the
/// right of the line from one to the other.
constexpr std::int64_t turnOf(const Cell& from, const Cell& to) {
    return to.x * from.y - to.y * from.x;
}

/// Where a walk goes from a side of a face: beyond the side to the left of the corner opposite, beyond that to its
/// right, or nowhere.
enum class Turn { kLeft, kRight, kNone, kUnsure };

/// The turn at a side from one cell to another with a third one opposite, all seen from the cell of the point that is
/// looked for; unsure unless the cells' turns are as far from 0 as they have to be.
constexpr Turn turnAt(const Cell& from, const Cell& corner, const Cell& to, std::int64_t sureLeft,
                      std::int64_t sureRight) {
    const std::int64_t left = turnOf(from, corner);
    if (left <= -sureLeft) return Turn::kLeft;
    if (left < sureLeft) return Turn::kUnsure;
    const std::int64_t right = turnOf(corner, to);
    if (right <= -sureRight) return Turn::kRight;
    return right < sureRight ? Turn::kUnsure : Turn::kNone;
}

/// The way out of a face at one of its sides: the neighbour's side that lies there, and the corner opposite to that.
struct Way {
    SideRef side;
    Cell corner;
};

/// The ways out of a face, one for each of its corners, opposite to it. Since they tell the neighbours' corners, it is
/// known where to go from a neighbour while that is still being read.
class Face {
  public:
    SideRef beyond(std::uint32_t corner) const {
        SideRef side;
        std::memcpy(&side, ways_ + kWayBytes * corner, sizeof side);
        return side;
    }
    void setBeyond(std::uint32_t corner, SideRef side) {
        std::memcpy(ways_ + kWayBytes * corner, &side, sizeof side);
    }

    Way way(std::uint32_t corner) const {
        std::uint64_t word;
        std::memcpy(&word, ways_ + kWayBytes * corner + sizeof(SideRef), sizeof word);
        constexpr std::uint64_t kCoordinate = (std::uint64_t{1} << CellGrid::kBits) - 1;
        return {beyond(corner),
                {static_cast<std::int64_t>(word & kCoordinate),
                 static_cast<std::int64_t>(word >> CellGrid::kBits & kCoordinate)}};
    }
    void setWay(std::uint32_t corner, const Way& way) {
        const std::uint64_t word = static_cast<std::uint64_t>(way.corner.x) |
                                   static_cast<std::uint64_t>(way.corner.y) << CellGrid::kBits;
        setBeyond(corner, way.side);
        std::memcpy(ways_ + kWayBytes * corner + sizeof(SideRef), &word, kCellBytes);
    }

  private:
    static constexpr std::size_t kCellBytes = 2 * CellGrid::kBits / 8;
    static constexpr std::size_t kWayBytes = sizeof(SideRef) + kCellBytes;

    /// Cells are read as words of 64 bits, of which they are the lower 48.
    unsigned char ways_[2 * kWayBytes + sizeof(SideRef) + sizeof(std::uint64_t)] = {};
};
static_assert(sizeof(Face) == 32);

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_FACES_H
