// Zoom of strips of bytes in single precision; see byte_zoom_kernels.h.
#ifndef VELQUAD_ARRAY_ZOOM_BYTES_H
#define VELQUAD_ARRAY_ZOOM_BYTES_H

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "array/byte_zoom_kernels.h"
#include "array/zoom_job.h"
#include "array/zoom_strip.h"
#include "velquad/array.h"

namespace velquad::array {

/// Tells whether a number is a whole multiple of a power of 2.
inline bool isMultiple(double value, double unit) {
    const double quotient = value / unit;
    return quotient == std::trunc(quotient);
}

/// A strip of columns of bytes.
class ByteStrip {
  public:
    ByteStrip(const Zoom& zoom, const ByteInterpolation& interpolation, const ZoomColumns& columns)
        : zoom_(zoom), interpolation_(interpolation), columns_(columns) {}

    /// Fills in where the columns lie. `weights`: the arrays of weights of the columns, as many as there are taps.
    /// @return whether they lie close enough together.
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
    struct Row {
        alignas(64) float value[kZoomPiece];
    };

    /// The interpolation of a source row along x, which is kept for the next cells.
    const float* alongRow(unsigned int y, unsigned int rowsAhead) {
        const auto along = [&](Row& row) {
            const ZoomSource source = sourceAt(zoom_, y, rowsAhead);
            interpolation_.along(source.row, source.ahead, columns_, bytes_, row.value);
        };
        return rows_.get(y, along).value;
    }

    const Zoom& zoom_;
    const ByteInterpolation& interpolation_;
    const ZoomColumns& columns_;
    ByteColumns bytes_;
    HeldRows<Row, 4> rows_;
};

/// Whether there are loops in floats for a type.
inline bool hasFloats(const Zoom& zoom, const ByteZoomKernels& kernels) {
    return zoom.valueType == MAT_ARRAY_UINT8 && kernels.bilinear.along != nullptr;
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_BYTES_H
