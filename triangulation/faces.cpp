// How positions are mapped to cells, and when cells can be trusted.
#include "triangulation/faces.h"

#include <cstdlib>

namespace velquad::triangulation {
namespace {

/// Cells that are left free on each side of the box.
constexpr double kMarginCells = 64.0;
constexpr double kMostCells = static_cast<double>(1 << CellGrid::kBits) - 2.0 * kMarginCells;
/// Products of distances neither vanish nor overflow with so many cells to a unit.
constexpr double kFewestPerUnit = 0x1p-400;
constexpr double kMostPerUnit = 0x1p400;
/// A grid finer than this compared to a vertex would be asked in vain too often.
constexpr double kMostReach = 1 << 16;

bool isUsable(double scale) {
    return scale >= kFewestPerUnit && scale <= kMostPerUnit;
}

}  // namespace

// A cell is a position in cell widths less a part of one, and the mapping rounds by far less than 2^-26 of one. The
// distance of two cells so differs from that of the positions by less than d = 1 + 2^-25, and a turn of distances a, b
// from a turn of positions by less than d (|a.x| + |a.y| + |b.x| + |b.y|) + 2 d^2, where the sum is at most 2^26.
// Together with the rounding of the turn of positions in doubles, less than a whole, that is below the sum and 8.
std::int64_t CellGrid::sureTurn(const Cell& from, const Cell& to) {
    constexpr std::int64_t kRest = 8;
    return std::llabs(from.x) + std::llabs(from.y) + std::llabs(to.x) + std::llabs(to.y) + kRest;
}

// Whatever the cells are, the sum above is at most 2^26, and when one cell is within reach of the other point's, the
// turn is at most the reach times 2^25. A reach is at least 2, which makes the second bound the larger one.
CellGrid::CellGrid(const tagMAT_RECT2D& box) {
    const double scaleX = kMostCells / (box.right - box.left);
    const double scaleY = kMostCells / (box.bottom - box.top);
    if (!isUsable(scaleX) || !isUsable(scaleY)) return;
    const double reach = kVertexTolerance * (scaleX > scaleY ? scaleX : scaleY);
    if (!(reach < kMostReach)) return;
    left_ = box.left - kMarginCells / scaleX;
    top_ = box.top - kMarginCells / scaleY;
    scaleX_ = scaleX;
    scaleY_ = scaleY;
    reach_ = static_cast<std::int64_t>(reach) + 2;
    sureTurn_ = (reach_ << (kBits + 1)) + 8;
}

bool CellGrid::mayBeSameVertex(const Cell& cell) const {
    return std::llabs(cell.x) <= reach_ && std::llabs(cell.y) <= reach_;
}

}  // namespace velquad::triangulation
