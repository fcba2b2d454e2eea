// Strips of columns, in which a rectangle is worked on: how it is cut, which source rows come next, where rows of cells
// are written, and the whole of it for interpolations that compute no more digits than their results are rounded to.
#ifndef VELQUAD_ARRAY_ZOOM_STRIP_H
#define VELQUAD_ARRAY_ZOOM_STRIP_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "array/array_2d.h"
#include "array/nearest_kernels.h"
#include "array/prefetch.h"
#include "array/rounded_zoom_kernels.h"
#include "array/stream_kernels.h"
#include "array/zoom_job.h"
#include "array/zoom_kernels.h"

namespace velquad::array {

/// Cells of a row up to the first that begins with a cache line; 0 where none does.
inline std::size_t cellsToCacheLine(const unsigned char* row, std::size_t elementSize) {
    constexpr std::size_t kCacheLine = 64;
    const std::size_t gap = (kCacheLine - reinterpret_cast<std::uintptr_t>(row) % kCacheLine) % kCacheLine;
    return gap % elementSize == 0 ? gap / elementSize : 0;
}

/// Calls `work(left, count)` for the strips of a rectangle. Those of wide rectangles begin with cache lines, in all rows
/// if a row is a whole number of them.
template <class Work>
void forEachStrip(const Zoom& zoom, const CellRect& rect, std::size_t columnsPerStrip, Work work) {
    if (rect.isEmpty()) return;
    const auto end = static_cast<std::size_t>(rect.right) + 1;
    auto left = static_cast<std::size_t>(rect.left);
    const unsigned char* first =
        zoom.destination(static_cast<unsigned int>(rect.top), static_cast<unsigned int>(left));
    std::size_t count = end - left > columnsPerStrip ? cellsToCacheLine(first, zoom.elementSize) : 0;
    if (count == 0) count = columnsPerStrip;
    for (; left < end; left += count, count = columnsPerStrip)
        work(static_cast<unsigned int>(left), end - left < count ? end - left : count);
}

/// Source rows from those of a row of cells to those of the next one, at least 1.
inline unsigned int rowsToNextCells(const Zoom& zoom, unsigned int y) {
    const unsigned int rows = Position(zoom.y, y + 1).index - Position(zoom.y, y).index;
    return rows < 1 ? 1 : rows;
}

/// A source row, and the one `rowsAhead` behind it or the last.
inline ZoomSource sourceAt(const Zoom& zoom, unsigned int y, unsigned int rowsAhead) {
    const unsigned int rest = zoom.y.sourceSize - 1 - y;
    return {rowAt(zoom.sourceRows, y), rowAt(zoom.sourceRows, y + (rest < rowsAhead ? rest : rowsAhead))};
}

/// Source rows that were interpolated along x, kept while cells need them.
template <class Row, unsigned int kCount>
class HeldRows {
  public:
    /// The row `y`, after `make(row)` if it is not at hand.
    template <class Make>
    const Row& get(unsigned int y, Make make) {
        Row& row = rows_[y % kCount];
        if (held_[y % kCount] != y + 1) make(row);
        held_[y % kCount] = y + 1;
        return row;
    }

  private:
    unsigned int held_[kCount] = {};  ///< The number of the row and 1, or 0.
    Row rows_[kCount];
};

/// Where a strip of destination rows is written: in place, or, where the destination is larger than the caches, in a
/// buffer that is streamed to its place.
class StripWriter {
  public:
    StripWriter(const Zoom& zoom, const CellRect& rect, unsigned int left, std::size_t count)
        : zoom_(zoom),
          bottom_(static_cast<unsigned int>(rect.bottom)),
          left_(left),
          bytes_(count * zoom.elementSize) {}

    /// Calls `write(to)` for the strip in row `y`.
    template <class Write>
    void writeRow(unsigned int y, Write write) {
        if (zoom_.isStreamed) {
            write(buffer_);
            copyRow(y);
            return;
        }
        if (y < bottom_) prefetchRange(zoom_.destination(y + 1, left_), bytes_);
        write(zoom_.destination(y, left_));
    }

    /// Writes what `writeRow` has written last to row `y` as well, which lies below it.
    void repeatRow(unsigned int y) {
        if (zoom_.isStreamed) {
            copyRow(y);
        } else {
            std::memmove(zoom_.destination(y, left_), zoom_.destination(y - 1, left_), bytes_);
        }
    }

  private:
    void copyRow(unsigned int y) { streamKernels().copy(buffer_, zoom_.destination(y, left_), bytes_); }

    const Zoom& zoom_;
    unsigned int bottom_;
    unsigned int left_;
    std::size_t bytes_;
    alignas(64) unsigned char buffer_[kNearestStrip * sizeof(double)];
};

/// The weights of the source rows around a position, and those of the columns of a strip, as many as there are taps.
struct StripWeights {
    void (*ofRows)(double fraction, double* weights);
    const double* const ofColumns[4];
};

/// Tells whether a number is a whole multiple of a power of 2.
inline bool isMultiple(double value, double unit) {
    const double quotient = value / unit;
    return quotient == std::trunc(quotient);
}

/// A strip of columns for an interpolation that computes no more digits than its results are rounded to. Each type
/// `Placed` has a function `placeRounded(columns, interpolation, weights, placed)`, which fills it in.
template <class Placed, class Along>
class RoundedStrip {
  public:
    using Interpolation = RoundedInterpolation<Placed, Along>;

    RoundedStrip(const Zoom& zoom, const Interpolation& interpolation, const ZoomColumns& columns)
        : zoom_(zoom), interpolation_(interpolation), columns_(columns) {}

    /// Fills in where the columns lie. `weights`: the arrays of weights of the columns, as many as there are taps.
    /// @return whether they lie close enough together.
    bool place(const double* const weights[4]) {
        return placeRounded(columns_, interpolation_, weights, placed_);
    }

    /// Interpolates one row of cells. `firstRow`: the first source row; `rowsAhead`: from there to that of the next
    /// cells; `weights`: as many as there are taps.
    void writeRow(unsigned int firstRow, unsigned int rowsAhead, const double* weights, unsigned char* to) {
        RoundedLines<Along> lines = {};
        lines.isShort = true;
        for (std::size_t k = 0; k < interpolation_.taps; ++k) {
            const unsigned int y = firstRow + static_cast<unsigned int>(k);
            lines.source[k] = rowAt(zoom_.sourceRows, y);
            if (interpolation_.along != nullptr) {
                lines.along[k] = alongRow(y, rowsAhead);
            } else {
                lines.ahead[k] = sourceAt(zoom_, y, rowsAhead).ahead;
            }
            lines.weight[k] = weights[k];
            lines.isShort = lines.isShort && isMultiple(weights[k], interpolation_.weightUnit);
        }
        interpolation_.across(lines, columns_, placed_, to);
    }

  private:
    struct Row {
        alignas(64) Along value[kZoomPiece];
    };

    /// The interpolation of a source row along x, which is kept for the next cells.
    const Along* alongRow(unsigned int y, unsigned int rowsAhead) {
        const auto along = [&](Row& row) {
            const ZoomSource source = sourceAt(zoom_, y, rowsAhead);
            interpolation_.along(source.row, source.ahead, columns_, placed_, row.value);
        };
        return rows_.get(y, along).value;
    }

    const Zoom& zoom_;
    const Interpolation& interpolation_;
    const ZoomColumns& columns_;
    Placed placed_;
    HeldRows<Row, 4> rows_;
};

/// Zoom of a strip by such an interpolation, where the columns lie as it needs them. @return whether they do.
template <class Placed, class Along>
bool zoomStrip(const Zoom& zoom, const CellRect& rect,
               const RoundedInterpolation<Placed, Along>& interpolation, const ZoomColumns& columns,
               const StripWeights& stripWeights, StripWriter& writer) {
    const auto top = static_cast<unsigned int>(rect.top);
    const auto bottom = static_cast<unsigned int>(rect.bottom);
    const auto behind = static_cast<unsigned int>(interpolation.taps / 2);
    if (Position(zoom.y, top).index + 1 < behind) return false;
    RoundedStrip<Placed, Along> strip(zoom, interpolation, columns);
    if (!strip.place(stripWeights.ofColumns)) return false;
    for (unsigned int y = top; y <= bottom; ++y) {
        const Position at(zoom.y, y);
        const unsigned int rowsAhead = rowsToNextCells(zoom, y);
        double weights[4] = {};
        stripWeights.ofRows(at.fraction, weights);
        writer.writeRow(
            y, [&](unsigned char* to) { strip.writeRow(at.index + 1 - behind, rowsAhead, weights, to); });
    }
    return true;
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_STRIP_H
