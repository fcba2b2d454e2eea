// Zoom by bilinear and cubic interpolation.
//
// Interpolation is separable in exactly the order of its operations: the part along x depends on the source row and the
// column only, so a strip keeps it for the two or four source rows in use and computes it once per source row instead of
// once per destination cell.
#include "array/zoom_bytes.h"
#include "array/zoom_job.h"
#include "array/zoom_kernels.h"
#include "array/zoom_strip.h"
#include "array/zoom_words.h"
#include "frame/kernels.h"
#include "velquad/array.h"

namespace velquad::array {

VELQUAD_DEFINE_KERNELS(ByteZoomKernels, kByteZoomKernels, byteZoomKernels)
VELQUAD_DEFINE_KERNELS(WordZoomKernels, kWordZoomKernels, wordZoomKernels)
VELQUAD_DEFINE_KERNELS(ZoomKernels, kZoomKernels, zoomKernels)

namespace {

/// Below this scale hardly any source row serves two destination rows.
constexpr double kDirectScale = 0.8;

/// Values of a strip: so few that the interpolated source rows that are in use stay in the nearest cache.
constexpr std::size_t kValuesPerStrip = 896;

/// Values of a strip whose rows are kept. Floats take half the room of doubles, and pixels make strips of few cells.
std::size_t valuesOfKeptRows(const Zoom& zoom) {
    const bool isSmall = zoom.valuesPerElement > 1 && hasFloats(zoom, byteZoomKernels());
    return isSmall ? kZoomPiece : kValuesPerStrip;
}

/// Cells of a strip, a whole number of cache lines.
std::size_t cellsPerStrip(const Zoom& zoom, std::size_t values) {
    const std::size_t cellsOfLines = zoom.valuesPerElement == 4 ? 16 : 64;
    return values / zoom.valuesPerElement / cellsOfLines * cellsOfLines;
}

/// Convolution weights with the parameter -1, all of them kept positive.
CubicWeights cubicWeights(double t) {
    return {(1 - t) * t * (1 - t), 1 - (t + t) * t + t * t * t, ((1 - t) * t + 1) * t, (1 - t) * t * t};
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

void weighColumns(ZoomColumns& columns) {
    for (std::size_t i = 0; i < columns.count; ++i) {
        const CubicWeights weights = cubicWeights(columns.fraction[i]);
        columns.weight[0][i] = weights.a;
        columns.weight[1][i] = weights.b;
        columns.weight[2][i] = weights.c;
        columns.weight[3][i] = weights.d;
    }
}

void weighBilinearRows(double fraction, double* weights) {
    weights[0] = 1.0 - fraction;
    weights[1] = fraction;
}

void weighCubicRows(double fraction, double* weights) {
    const CubicWeights w = cubicWeights(fraction);
    weights[0] = w.a;
    weights[1] = w.b;
    weights[2] = w.c;
    weights[3] = w.d;
}

enum class Interpolation { kBilinear, kBilinearDirect, kCubic };

const WordInterpolation& wordInterpolation(const WordZoom& words, Interpolation interpolation) {
    if (interpolation == Interpolation::kCubic) return words.cubic;
    return interpolation == Interpolation::kBilinear ? words.bilinear : words.bilinearDirect;
}

/// Zoom of a strip by loops that make use of what results are rounded to, where its type has such loops and its columns
/// lie close enough together. @return whether that is so.
bool zoomRounded(const Zoom& zoom, const CellRect& rect, Interpolation interpolation,
                 const ZoomColumns& columns, StripWriter& writer) {
    const bool isCubic = interpolation == Interpolation::kCubic;
    const StripWeights bilinear = {weighBilinearRows, {columns.rest, columns.fraction, nullptr, nullptr}};
    const StripWeights cubic = {weighCubicRows,
                                {columns.weight[0], columns.weight[1], columns.weight[2], columns.weight[3]}};
    const StripWeights& weights = isCubic ? cubic : bilinear;
    if (hasFloats(zoom, byteZoomKernels())) {
        const ByteZoomKernels& kernels = byteZoomKernels();
        return zoomStrip(zoom, rect, isCubic ? kernels.cubic : kernels.bilinear, columns, weights, writer);
    }
    if (hasFixedPoint(zoom, wordZoomKernels())) {
        const WordZoom& words = wordZoomOf(zoom, wordZoomKernels());
        return zoomStrip(zoom, rect, wordInterpolation(words, interpolation), columns, weights, writer);
    }
    return false;
}

}  // namespace

void zoomBilinear(const Zoom& zoom, const CellRect& rect) {
    const ZoomValueKernels& kernels = zoomKernels().values[zoom.valueType];
    // Bytes have faster loops for any scale.
    const bool isDirect = !hasFloats(zoom, byteZoomKernels()) && kernels.bilinearDirect != nullptr &&
                          zoom.y.scale < kDirectScale && zoom.valuesPerElement <= 3;
    const auto interpolation = isDirect ? Interpolation::kBilinearDirect : Interpolation::kBilinear;
    // Rows that are not kept leave the cache to longer strips, which come from memory faster.
    const std::size_t valuesPerStrip = isDirect ? kZoomPiece : valuesOfKeptRows(zoom);
    ZoomColumns columns;
    forEachStrip(zoom, rect, cellsPerStrip(zoom, valuesPerStrip), [&](unsigned int left, std::size_t count) {
        placeColumns(zoom, left, count, columns);
        StripWriter writer(zoom, rect, left, count);
        if (zoomRounded(zoom, rect, interpolation, columns, writer)) return;
        HeldRows<BilinearRow, 2> rows;
        const auto rowOf = [&](unsigned int y, unsigned int rowsAhead) -> const BilinearRow& {
            return rows.get(y, [&](BilinearRow& row) {
                kernels.bilinearAlong(sourceAt(zoom, y, rowsAhead), columns, row);
            });
        };
        for (auto y = static_cast<unsigned int>(rect.top); y <= static_cast<unsigned int>(rect.bottom); ++y) {
            const Position at(zoom.y, y);
            const unsigned int rowsAhead = rowsToNextCells(zoom, y);
            writer.writeRow(y, [&](unsigned char* to) {
                if (isDirect) {
                    kernels.bilinearDirect(sourceAt(zoom, at.index, rowsAhead),
                                           sourceAt(zoom, at.index + 1, rowsAhead), columns, at.fraction, to);
                    return;
                }
                const BilinearRow& upper = rowOf(at.index, rowsAhead);
                kernels.bilinearAcross(upper, rowOf(at.index + 1, rowsAhead), at.fraction, to, columns.count);
            });
        }
    });
}

void zoomCubic(const Zoom& zoom, const CellRect& rect) {
    const ZoomValueKernels& kernels = zoomKernels().values[zoom.valueType];
    // Stands for the row before the first, which has the weight 0.
    static constexpr CubicRow kAbsentRow = {};
    ZoomColumns columns;
    forEachStrip(
        zoom, rect, cellsPerStrip(zoom, valuesOfKeptRows(zoom)), [&](unsigned int left, std::size_t count) {
            placeColumns(zoom, left, count, columns);
            weighColumns(columns);
            StripWriter writer(zoom, rect, left, count);
            if (zoomRounded(zoom, rect, Interpolation::kCubic, columns, writer)) return;
            HeldRows<CubicRow, 4> rows;
            const auto rowOf = [&](unsigned int y, unsigned int rowsAhead) -> const CubicRow* {
                return &rows.get(y, [&](CubicRow& row) {
                    kernels.cubicAlong(sourceAt(zoom, y, rowsAhead), columns, row);
                });
            };
            for (auto y = static_cast<unsigned int>(rect.top); y <= static_cast<unsigned int>(rect.bottom);
                 ++y) {
                const Position at(zoom.y, y);
                const unsigned int rowsAhead = rowsToNextCells(zoom, y);
                const CubicRow* const around[4] = {
                    at.index == 0 ? &kAbsentRow : rowOf(at.index - 1, rowsAhead), rowOf(at.index, rowsAhead),
                    rowOf(at.index + 1, rowsAhead), rowOf(at.index + 2, rowsAhead)};
                writer.writeRow(y, [&](unsigned char* to) {
                    kernels.cubicAcross(around, cubicWeights(at.fraction), to, columns.count);
                });
            }
        });
}

}  // namespace velquad::array
