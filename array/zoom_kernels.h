// Inner loops of zoom: one piece of a row at a time, all columns of a piece with the same operations.
#ifndef VELQUAD_ARRAY_ZOOM_KERNELS_H
#define VELQUAD_ARRAY_ZOOM_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "array/element.h"

namespace velquad::array {

/// Values that one piece of a row holds at most. Long pieces of source rows come from memory faster.
inline constexpr std::size_t kZoomPiece = 1536;

/// Where the columns of a piece lie in the source. A column is one value: pixels of bytes have one for each byte.
struct ZoomColumns {
    alignas(64) std::int32_t
        index[kZoomPiece];  ///< The value at or before the position, counted in values of the row.
    alignas(64) double fraction[kZoomPiece];   ///< Way from there to the next pixel, in [0, 1).
    alignas(64) double rest[kZoomPiece];       ///< 1 - fraction.
    alignas(64) double weight[4][kZoomPiece];  ///< Cubic: a, b, c, d.
    std::int32_t lastIndex = 0;                ///< The last value of a source row.
    std::size_t count = 0;                     ///< Columns of this piece.
    std::int32_t spanOfEight = 0;  ///< The most that eight columns in a row lie apart, counted in values.
    std::int32_t step = 1;         ///< From a value to the same one of the next pixel.
};

/// A source row as bilinear zoom needs it: left * (1 - fraction) and right * fraction of each column.
struct BilinearRow {
    alignas(64) double left[kZoomPiece];
    alignas(64) double right[kZoomPiece];
};

/// A source row as cubic zoom needs it: its interpolation along x.
struct CubicRow {
    alignas(64) double value[kZoomPiece];
};

/// The four weights of a position between two samples.
struct CubicWeights {
    double a;
    double b;
    double c;
    double d;
};

/// A source row, and the one whose columns are asked for by the way: so many lines at once would have to wait for each
/// other.
struct ZoomSource {
    const unsigned char* row;
    const unsigned char* ahead;
};

/// The functions for one type of value.
struct ZoomValueKernels {
    void (*bilinearAlong)(const ZoomSource& source, const ZoomColumns& columns, BilinearRow& row);
    void (*bilinearAcross)(const BilinearRow& upper, const BilinearRow& lower, double fraction,
                           void* destination, std::size_t count);
    /// Both steps of bilinear zoom in one, for pixels of up to three values; null where it is not faster even if each
    /// source row serves one destination row only.
    void (*bilinearDirect)(const ZoomSource& upper, const ZoomSource& lower, const ZoomColumns& columns,
                           double fraction, void* destination);
    void (*cubicAlong)(const ZoomSource& source, const ZoomColumns& columns, CubicRow& row);
    void (*cubicAcross)(const CubicRow* const rows[4], const CubicWeights& weights, void* destination,
                        std::size_t count);
};

struct ZoomKernels {
    /// By the type code of a value, 1 to 8.
    ZoomValueKernels values[9];
};

const ZoomKernels& zoomKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_KERNELS_H
