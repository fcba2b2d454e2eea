// Zoom by nearest, bilinear and cubic interpolation.
//
// The destination is cut into rectangles by how much of a position's neighbourhood the source has. Each rectangle is
// worked on in strips of a few hundred columns, so that what belongs to the columns (source index, weights) is
// computed once, stands on the stack, and stays in the nearest cache. Interpolation is separable in exactly the
// order of its operations: the part along x depends on the source row and the column only, so a strip keeps it for
// the two or four source rows in use and computes it once per source row instead of once per destination cell.
#include <cmath>
#include <cstdint>
#include <cstring>

#include "array/array_2d.h"
#include "array/byte_zoom_kernels.h"
#include "array/element.h"
#include "array/nearest_kernels.h"
#include "array/prefetch.h"
#include "array/roi.h"
#include "array/stream_kernels.h"
#include "array/zoom_kernels.h"
#include "frame/kernels.h"
#include "velquad/array.h"

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(ByteZoomKernels, kByteZoomKernels, byteZoomKernels)
VELQUAD_DEFINE_KERNELS(NearestKernels, kNearestKernels, nearestKernels)
VELQUAD_DEFINE_KERNELS(ZoomKernels, kZoomKernels, zoomKernels)

}  // namespace velquad::array

using velquad::array::BilinearRow;
using velquad::array::ByteColumns;
using velquad::array::ByteInterpolation;
using velquad::array::ByteLines;
using velquad::array::byteZoomKernels;
using velquad::array::CubicRow;
using velquad::array::CubicWeights;
using velquad::array::kByteGroup;
using velquad::array::kByteWindow;
using velquad::array::kNearestGroup;
using velquad::array::kNearestStrip;
using velquad::array::kStreamedBytes;
using velquad::array::kZoomPiece;
using velquad::array::NearestColumns;
using velquad::array::nearestKernels;
using velquad::array::prefetchRange;
using velquad::array::rowAt;
using velquad::array::streamKernels;
using velquad::array::ZoomColumns;
using velquad::array::ZoomKernels;
using velquad::array::zoomKernels;
using velquad::array::ZoomSource;
using velquad::array::ZoomValueKernels;

namespace {

/// A source must have this much more than the samples that a position needs.
constexpr double kNeighbourMargin = 1e-7;

/// Below this scale hardly any source row serves two destination rows.
constexpr double kDirectScale = 0.8;

constexpr unsigned int kBilinearFlag = 2;
constexpr unsigned int kCubicFlag = 4;

/// Inclusive on all sides; empty when right < left or bottom < top.
struct CellRect {
    int left = 0;
    int top = 0;
    int right = -1;
    int bottom = -1;

    bool isEmpty() const { return right < left || bottom < top; }
};

/// One axis of a zoom.
struct Axis {
    unsigned int sourceSize;
    unsigned int destinationSize;
    double scale;

    Axis(unsigned int source, unsigned int destination)
        : sourceSize(source),
          destinationSize(destination),
          scale(static_cast<double>(destination) / static_cast<double>(source)) {}

    double position(unsigned int cell) const { return static_cast<double>(cell) / scale; }

    /// The first cell that has a sample before its position; 0 when there is none.
    int firstWithSampleBefore() const {
        for (unsigned int cell = 0; cell < destinationSize; ++cell) {
            if (std::trunc(position(cell)) > 0.0) return static_cast<int>(cell);
        }
        return 0;
    }

    /// The last cell that has `needed` samples behind its position; -1 when there is none.
    int lastWithSamplesBehind(double needed) const {
        for (unsigned int cell = destinationSize; cell-- > 0;) {
            if (sourceSize > std::trunc(position(cell)) + needed + kNeighbourMargin)
                return static_cast<int>(cell);
        }
        return -1;
    }

    int lastCell() const { return static_cast<int>(destinationSize - 1); }

    /// The sample nearest to a cell's position.
    unsigned int nearestSample(unsigned int cell) const {
        const double sample = std::trunc(position(cell) + 0.5);
        return sample < sourceSize - 1 ? static_cast<unsigned int>(sample) : sourceSize - 1;
    }
};

/// A whole number and the way to the next one.
struct Position {
    unsigned int index;
    double fraction;

    Position(const Axis& axis, unsigned int cell) {
        const double position = axis.position(cell);
        index = static_cast<unsigned int>(position);
        fraction = position - index;
    }
};

struct Zoom {
    Axis x;
    Axis y;
    const void* sourceRows;
    const void* destinationRows;
    std::size_t elementSize;        ///< Bytes of an element.
    unsigned int valueType;         ///< Type code of the values of an element.
    unsigned int valuesPerElement;  ///< 3 or 4 for pixels of bytes, else 1.
    bool isStreamed;                ///< The destination is written past the caches.

    unsigned char* destination(unsigned int row, unsigned int column) const {
        return rowAt(destinationRows, row) + column * elementSize;
    }
};

/// The cells that have all samples for bilinear interpolation.
CellRect bilinearRect(const Zoom& zoom) {
    return {0, 0, zoom.x.lastWithSamplesBehind(1.0), zoom.y.lastWithSamplesBehind(1.0)};
}

/// The cells that have all samples for cubic interpolation.
CellRect cubicRect(const Zoom& zoom) {
    return {zoom.x.firstWithSampleBefore(), zoom.y.firstWithSampleBefore(), zoom.x.lastWithSamplesBehind(2.0),
            zoom.y.lastWithSamplesBehind(2.0)};
}

/// Convolution weights with the parameter -1, all of them kept positive.
CubicWeights cubicWeights(double t) {
    return {(1 - t) * t * (1 - t), 1 - (t + t) * t + t * t * t, ((1 - t) * t + 1) * t, (1 - t) * t * t};
}

/// Cells of a row up to the first that begins with a cache line; 0 where none does.
std::size_t cellsToCacheLine(const unsigned char* row, std::size_t elementSize) {
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

/// The bytes of a source row that a strip of columns reads.
struct SourceSpan {
    std::size_t begin;
    std::size_t end;

    SourceSpan(const std::int32_t* index, std::size_t count, std::size_t indexedBytes)
        : begin(static_cast<std::size_t>(index[0]) * indexedBytes),
          end((static_cast<std::size_t>(index[count - 1]) + 1) * indexedBytes) {}

    /// Asks for a row ahead of its use. Strips are too short for the processor to see by itself where the next one
    /// begins.
    void prefetch(const void* sourceRows, unsigned int y) const {
        prefetchRange(rowAt(sourceRows, y) + begin, end - begin);
    }
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

/// Fills in where the columns of a strip lie.
void placeColumns(const Zoom& zoom, unsigned int left, std::size_t count, NearestColumns& columns) {
    columns.count = count;
    columns.lastIndex = static_cast<std::int32_t>(zoom.x.sourceSize - 1);
    columns.spanOfGroup = 0;
    for (std::size_t i = 0; i < count; ++i) {
        columns.index[i] =
            static_cast<std::int32_t>(zoom.x.nearestSample(left + static_cast<unsigned int>(i)));
        const std::int32_t offset = columns.index[i] - columns.index[i / kNearestGroup * kNearestGroup];
        columns.offset[i] = static_cast<std::uint16_t>(offset);
        if (offset > columns.spanOfGroup) columns.spanOfGroup = offset;
    }
}

void zoomNearest(const Zoom& zoom, const CellRect& rect) {
    const auto copyRow = nearestKernels().copy[zoom.elementSize];
    NearestColumns columns;
    forEachStrip(zoom, rect, kNearestStrip, [&](unsigned int left, std::size_t count) {
        placeColumns(zoom, left, count, columns);
        const SourceSpan span(columns.index, count, zoom.elementSize);
        StripWriter writer(zoom, rect, left, count);
        const auto top = static_cast<unsigned int>(rect.top);
        unsigned int sampleBefore = 0;
        for (unsigned int y = top; y <= static_cast<unsigned int>(rect.bottom); ++y) {
            const unsigned int sample = zoom.y.nearestSample(y);
            if (y != top && sample == sampleBefore) {
                writer.repeatRow(y);
            } else {
                if (y != static_cast<unsigned int>(rect.bottom))
                    span.prefetch(zoom.sourceRows, zoom.y.nearestSample(y + 1));
                writer.writeRow(
                    y, [&](unsigned char* to) { copyRow(rowAt(zoom.sourceRows, sample), columns, to); });
            }
            sampleBefore = sample;
        }
    });
}

/// Fills in where the columns of a strip lie.
void placeColumns(const Zoom& zoom, unsigned int left, std::size_t elementCount, ZoomColumns& columns) {
    const unsigned int parts = zoom.valuesPerElement;
    columns.count = elementCount * parts;
    columns.step = static_cast<std::int32_t>(parts);
    columns.lastIndex = static_cast<std::int32_t>(zoom.x.sourceSize * parts - 1);
    for (std::size_t i = 0; i < elementCount; ++i) {
        const Position at(zoom.x, left + static_cast<unsigned int>(i));
        for (std::size_t part = 0; part < parts; ++part) {
            const std::size_t column = i * parts + part;
            columns.index[column] = static_cast<std::int32_t>(at.index * parts + part);
            columns.fraction[column] = at.fraction;
            columns.rest[column] = 1 - at.fraction;
        }
    }
    columns.spanOfEight = 0;
    for (std::size_t i = 7; i < columns.count; ++i) {
        const std::int32_t span = columns.index[i] - columns.index[i - 7];
        if (span > columns.spanOfEight) columns.spanOfEight = span;
    }
}

/// Values of a strip: so few that the interpolated source rows that are in use stay in the nearest cache.
constexpr std::size_t kValuesPerStrip = 896;

/// Cells of a strip, a whole number of cache lines.
std::size_t cellsPerStrip(const Zoom& zoom, std::size_t values) {
    const std::size_t cellsOfLines = zoom.valuesPerElement == 4 ? 16 : 64;
    return values / zoom.valuesPerElement / cellsOfLines * cellsOfLines;
}

/// Source rows from those of a row of cells to those of the next one, at least 1.
unsigned int rowsToNextCells(const Zoom& zoom, unsigned int y) {
    const unsigned int rows = Position(zoom.y, y + 1).index - Position(zoom.y, y).index;
    return rows < 1 ? 1 : rows;
}

/// A source row, and the one `rowsAhead` behind it or the last.
ZoomSource sourceAt(const Zoom& zoom, unsigned int y, unsigned int rowsAhead) {
    const unsigned int rest = zoom.y.sourceSize - 1 - y;
    return {rowAt(zoom.sourceRows, y), rowAt(zoom.sourceRows, y + (rest < rowsAhead ? rest : rowsAhead))};
}

bool isMultiple(double value, double unit) {
    const double quotient = value / unit;
    return quotient == std::trunc(quotient);
}

/// Zoom of bytes in floats; see byte_zoom_kernels.h.
class ByteStrip {
  public:
    /// `weights`: the arrays of weights of the columns, as many as there are taps.
    ByteStrip(const Zoom& zoom, const ByteInterpolation& interpolation, const ZoomColumns& columns)
        : zoom_(zoom), interpolation_(interpolation), columns_(columns) {}

    /// Fills in where the columns lie. @return whether they lie close enough together.
    bool place(const double* const weights[4]) {
        const auto taps = static_cast<std::int32_t>(interpolation_.taps);
        const std::int32_t before = (taps / 2 - 1) * columns_.step;
        const std::int32_t reach = (taps - 1) * columns_.step;
        bytes_.groups = (columns_.count + kByteGroup - 1) / kByteGroup;
        bytes_.isShort = true;
        for (std::size_t i = 0; i < bytes_.groups * kByteGroup; ++i) {
            const std::size_t column = i < columns_.count ? i : columns_.count - 1;
            std::int32_t& begin = bytes_.begin[i / kByteGroup];
            // A group that begins within a pixel may go on with the same source pixel from its first byte.
            if (i % kByteGroup == 0) begin = columns_.index[i] - columns_.index[i] % columns_.step - before;
            const std::int32_t offset = columns_.index[column] - before - begin;
            if (begin < 0 || offset + reach >= kByteWindow) return false;
            // The lower half is a word, the upper half the one behind it.
            bytes_.words[i] = static_cast<std::uint32_t>(offset / 2) * 0x10001U + 0x10000U;
            bytes_.shift[i] = static_cast<std::uint32_t>(offset % 2) * 8;
            for (std::size_t k = 0; k < interpolation_.taps; ++k) {
                bytes_.weight[k][i] = static_cast<float>(weights[k][column]);
                bytes_.isShort = bytes_.isShort && isMultiple(weights[k][column], interpolation_.weightUnit);
            }
        }
        return true;
    }

    /// Interpolates one row of cells. `firstRow`: the first source row; `rowsAhead`: from there to that of the next
    /// cells; `weights`: as many as there are taps.
    void writeRow(unsigned int firstRow, unsigned int rowsAhead, const double* weights, unsigned char* to) {
        ByteLines lines = {};
        lines.isShort = true;
        for (std::size_t k = 0; k < interpolation_.taps; ++k) {
            const unsigned int y = firstRow + static_cast<unsigned int>(k);
            lines.source[k] = rowAt(zoom_.sourceRows, y);
            lines.along[k] = alongRow(y, rowsAhead);
            lines.weight[k] = weights[k];
            lines.isShort = lines.isShort && isMultiple(weights[k], interpolation_.weightUnit);
        }
        interpolation_.across(lines, columns_, bytes_, to);
    }

  private:
    static constexpr unsigned int kNoRow = 0xFFFFFFFFU;

    /// The interpolation of a source row along x, which is kept for the next cells.
    const float* alongRow(unsigned int y, unsigned int rowsAhead) {
        float* row = rows_[y % 4];
        if (held_[y % 4] != y) {
            const unsigned int last = zoom_.y.sourceSize - 1;
            const unsigned int ahead = last - y < rowsAhead ? last : y + rowsAhead;
            interpolation_.along(rowAt(zoom_.sourceRows, y), rowAt(zoom_.sourceRows, ahead), columns_, bytes_,
                                 row);
        }
        held_[y % 4] = y;
        return row;
    }

    const Zoom& zoom_;
    const ByteInterpolation& interpolation_;
    const ZoomColumns& columns_;
    ByteColumns bytes_;
    unsigned int held_[4] = {kNoRow, kNoRow, kNoRow, kNoRow};
    float rows_[4][kZoomPiece];
};

/// Zoom of a strip of bytes in floats where that is possible. `first`: the first source row that a position needs, and
/// the weights of the rows from there on.
template <class RowWeights>
bool zoomByteStrip(const Zoom& zoom, const CellRect& rect, const ByteInterpolation& interpolation,
                   const ZoomColumns& columns, const double* const columnWeights[4], StripWriter& writer,
                   RowWeights rowWeights) {
    const auto top = static_cast<unsigned int>(rect.top);
    const auto bottom = static_cast<unsigned int>(rect.bottom);
    const auto behind = static_cast<unsigned int>(interpolation.taps / 2);
    if (zoom.valueType != MAT_ARRAY_UINT8 || interpolation.along == nullptr) return false;
    if (Position(zoom.y, top).index + 1 < behind) return false;
    ByteStrip strip(zoom, interpolation, columns);
    if (!strip.place(columnWeights)) return false;
    for (unsigned int y = top; y <= bottom; ++y) {
        const Position at(zoom.y, y);
        const unsigned int rowsAhead = rowsToNextCells(zoom, y);
        double weights[4];
        rowWeights(at.fraction, weights);
        writer.writeRow(
            y, [&](unsigned char* to) { strip.writeRow(at.index + 1 - behind, rowsAhead, weights, to); });
    }
    return true;
}

void zoomBilinear(const Zoom& zoom, const CellRect& rect) {
    constexpr unsigned int kNoRow = 0xFFFFFFFFU;
    const ZoomValueKernels& kernels = zoomKernels().values[zoom.valueType];
    const bool isDirect =
        kernels.bilinearDirect != nullptr && zoom.y.scale < kDirectScale && zoom.valuesPerElement <= 3;
    ZoomColumns columns;
    forEachStrip(
        zoom, rect, cellsPerStrip(zoom, isDirect ? kZoomPiece : kValuesPerStrip),
        [&](unsigned int left, std::size_t count) {
            placeColumns(zoom, left, count, columns);
            StripWriter writer(zoom, rect, left, count);
            const double* const weights[4] = {columns.rest, columns.fraction, nullptr, nullptr};
            const auto weighRows = [](double fraction, double* result) {
                result[0] = 1.0 - fraction;
                result[1] = fraction;
            };
            if (zoomByteStrip(zoom, rect, byteZoomKernels().bilinear, columns, weights, writer, weighRows))
                return;
            BilinearRow rows[2];
            unsigned int held[2] = {kNoRow, kNoRow};
            const auto rowOf = [&](unsigned int y, unsigned int rowsAhead) -> const BilinearRow& {
                if (held[y % 2] != y)
                    kernels.bilinearAlong(sourceAt(zoom, y, rowsAhead), columns, rows[y % 2]);
                held[y % 2] = y;
                return rows[y % 2];
            };
            for (auto y = static_cast<unsigned int>(rect.top); y <= static_cast<unsigned int>(rect.bottom);
                 ++y) {
                const Position at(zoom.y, y);
                const unsigned int rowsAhead = rowsToNextCells(zoom, y);
                writer.writeRow(y, [&](unsigned char* to) {
                    if (isDirect) {
                        kernels.bilinearDirect(sourceAt(zoom, at.index, rowsAhead),
                                               sourceAt(zoom, at.index + 1, rowsAhead), columns, at.fraction,
                                               to);
                        return;
                    }
                    const BilinearRow& upper = rowOf(at.index, rowsAhead);
                    kernels.bilinearAcross(upper, rowOf(at.index + 1, rowsAhead), at.fraction, to,
                                           columns.count);
                });
            }
        });
}

void weighColumns(ZoomColumns& columns) {
    for (std::size_t i = 0; i < columns.count; ++i) {
        const CubicWeights weights = cubicWeights(columns.fraction[i]);
        columns.weight[0][i] = weights.a;
        columns.weight[1][i] = weights.b;
        columns.weight[2][i] = weights.c;
        columns.weight[3][i] = weights.d;
    }
}

void zoomCubic(const Zoom& zoom, const CellRect& rect) {
    constexpr unsigned int kNoRow = 0xFFFFFFFFU;
    const ZoomValueKernels& kernels = zoomKernels().values[zoom.valueType];
    // Stands for the row before the first, which has the weight 0.
    static constexpr CubicRow kAbsentRow = {};
    ZoomColumns columns;
    forEachStrip(zoom, rect, cellsPerStrip(zoom, kValuesPerStrip), [&](unsigned int left, std::size_t count) {
        placeColumns(zoom, left, count, columns);
        weighColumns(columns);
        StripWriter writer(zoom, rect, left, count);
        const double* const weights[4] = {columns.weight[0], columns.weight[1], columns.weight[2],
                                          columns.weight[3]};
        const auto weighRows = [](double fraction, double* result) {
            const CubicWeights w = cubicWeights(fraction);
            result[0] = w.a;
            result[1] = w.b;
            result[2] = w.c;
            result[3] = w.d;
        };
        if (zoomByteStrip(zoom, rect, byteZoomKernels().cubic, columns, weights, writer, weighRows)) return;
        CubicRow rows[4];
        unsigned int held[4] = {kNoRow, kNoRow, kNoRow, kNoRow};
        const auto rowOf = [&](unsigned int y, unsigned int rowsAhead) -> const CubicRow* {
            if (held[y % 4] != y) kernels.cubicAlong(sourceAt(zoom, y, rowsAhead), columns, rows[y % 4]);
            held[y % 4] = y;
            return &rows[y % 4];
        };
        for (auto y = static_cast<unsigned int>(rect.top); y <= static_cast<unsigned int>(rect.bottom); ++y) {
            const Position at(zoom.y, y);
            const unsigned int rowsAhead = rowsToNextCells(zoom, y);
            const CubicRow* const around[4] = {at.index == 0 ? &kAbsentRow : rowOf(at.index - 1, rowsAhead),
                                               rowOf(at.index, rowsAhead), rowOf(at.index + 1, rowsAhead),
                                               rowOf(at.index + 2, rowsAhead)};
            writer.writeRow(y, [&](unsigned char* to) {
                kernels.cubicAcross(around, cubicWeights(at.fraction), to, columns.count);
            });
        }
    });
}

/// Nearest samples where the source ends right of or below a bilinear rectangle.
void zoomNearestAround(const Zoom& zoom, const CellRect& bilinear) {
    zoomNearest(zoom, {bilinear.right + 1, 0, zoom.x.lastCell(), zoom.y.lastCell()});
    zoomNearest(zoom, {0, bilinear.bottom + 1, bilinear.right, zoom.y.lastCell()});
}

/// Bilinear interpolation above, below, left and right of a cubic rectangle.
void zoomBilinearAround(const Zoom& zoom, const CellRect& cubic, const CellRect& bilinear) {
    zoomBilinear(zoom, {0, 0, bilinear.right, cubic.top - 1});
    zoomBilinear(zoom, {0, cubic.bottom + 1, bilinear.right, bilinear.bottom});
    zoomBilinear(zoom, {0, cubic.top, cubic.left - 1, cubic.bottom});
    zoomBilinear(zoom, {cubic.right + 1, cubic.top, bilinear.right, cubic.bottom});
}

void zoomByFlags(const Zoom& zoom, unsigned int flags) {
    if ((flags & (kCubicFlag | kBilinearFlag)) == 0) {
        zoomNearest(zoom, {0, 0, zoom.x.lastCell(), zoom.y.lastCell()});
        return;
    }
    const CellRect bilinear = bilinearRect(zoom);
    if ((flags & kCubicFlag) != 0) {
        const CellRect cubic = cubicRect(zoom);
        zoomCubic(zoom, cubic);
        zoomBilinearAround(zoom, cubic, bilinear);
    } else {
        zoomBilinear(zoom, bilinear);
    }
    zoomNearestAround(zoom, bilinear);
}

/// Rows that hold more values than this cannot be indexed by the kernels.
constexpr std::uint64_t kMaxValuesPerRow = 0x7FFFFFFFU;

void zoomArray(unsigned int srcWidth, unsigned int srcHeight, const void* srcRows, unsigned int dstWidth,
               unsigned int dstHeight, const void* dstRows, unsigned int type, unsigned int flags) {
    if (srcWidth == 0 || srcHeight == 0 || dstWidth == 0 || dstHeight == 0) return;
    if (srcRows == nullptr || dstRows == nullptr) return;
    velquad::array::dispatchElement(type, [&]<class ElementType>(ElementType /*element*/) {
        if (std::uint64_t{srcWidth} * ElementType::kComponents > kMaxValuesPerRow) return;
        const Zoom zoom{Axis(srcWidth, dstWidth),
                        Axis(srcHeight, dstHeight),
                        srcRows,
                        dstRows,
                        ElementType::kBytes,
                        ElementType::kComponents == 1 ? ElementType::kType : MAT_ARRAY_UINT8,
                        ElementType::kComponents,
                        std::size_t{dstWidth} * dstHeight >= kStreamedBytes / ElementType::kBytes};
        zoomByFlags(zoom, flags);
        if (zoom.isStreamed) streamKernels().finish();
    });
}

unsigned int widthOf(const RECT* roi, unsigned int width) {
    return roi == nullptr ? width : static_cast<unsigned int>(roi->right - roi->left) + 1;
}

unsigned int heightOf(const RECT* roi, unsigned int height) {
    return roi == nullptr ? height : static_cast<unsigned int>(roi->bottom - roi->top) + 1;
}

int zoomRegions(unsigned int srcWidth, unsigned int srcHeight, const void* srcRows, const RECT* srcRoi,
                unsigned int dstWidth, unsigned int dstHeight, const void* dstRows, const RECT* dstRoi,
                unsigned int type, unsigned int flags) {
    using velquad::array::mapRegion;
    const auto source =
        mapRegion(srcRows, static_cast<int>(srcWidth), static_cast<int>(srcHeight), type, 1, srcRoi);
    const auto destination =
        mapRegion(dstRows, static_cast<int>(dstWidth), static_cast<int>(dstHeight), type, 1, dstRoi);
    if (source == nullptr || destination == nullptr) return 0;
    zoomArray(widthOf(srcRoi, srcWidth), heightOf(srcRoi, srcHeight), source.get(), widthOf(dstRoi, dstWidth),
              heightOf(dstRoi, dstHeight), destination.get(), type, flags);
    return 1;
}

}  // namespace

extern "C" int matZoomArray2v(unsigned int srcWidth, unsigned int srcHeight, const void* const* srcRows,
                              unsigned int dstWidth, unsigned int dstHeight, void* const* dstRows,
                              unsigned int type, unsigned int flags) {
    zoomArray(srcWidth, srcHeight, srcRows, dstWidth, dstHeight, dstRows, type, flags);
    return 1;
}

extern "C" int matZoomArrayROI2v(unsigned int srcWidth, unsigned int srcHeight, const void* const* srcRows,
                                 const RECT* srcRoi, unsigned int dstWidth, unsigned int dstHeight,
                                 void* const* dstRows, const RECT* dstRoi, unsigned int type,
                                 unsigned int flags) {
    return zoomRegions(srcWidth, srcHeight, srcRows, srcRoi, dstWidth, dstHeight, dstRows, dstRoi, type,
                       flags);
}

extern "C" int matZoomImage(unsigned int srcWidth, unsigned int srcHeight, unsigned int bytesPerPixel,
                            const void* const* srcRows, const RECT* srcRoi, unsigned int dstWidth,
                            unsigned int dstHeight, void* const* dstRows, const RECT* dstRoi,
                            unsigned int mode) {
    const unsigned int type = velquad::array::typeOfSize(bytesPerPixel);
    const unsigned int flags = mode == 2 ? kCubicFlag : mode == 1 ? kBilinearFlag : 1U;
    return zoomRegions(srcWidth, srcHeight, srcRows, srcRoi, dstWidth, dstHeight, dstRows, dstRoi, type,
                       flags);
}
