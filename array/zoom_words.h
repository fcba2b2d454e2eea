// Zoom of strips of 16-bit values in fixed point; see word_zoom_kernels.h.
#ifndef VELQUAD_ARRAY_ZOOM_WORDS_H
#define VELQUAD_ARRAY_ZOOM_WORDS_H

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "array/word_zoom_kernels.h"
#include "array/zoom_bytes.h"
#include "array/zoom_job.h"
#include "array/zoom_strip.h"

namespace velquad::array {

/// A weight as two numbers of 16 bits: (coarse + fine * 2^-14) * 2^-14.
struct SplitWeight {
    std::int16_t coarse;
    std::int16_t fine;

    explicit SplitWeight(double weight) {
        constexpr double kOne = 1 << kWordBits;
        const double whole = std::nearbyint(weight * kOne);
        coarse = static_cast<std::int16_t>(whole);
        fine = static_cast<std::int16_t>(std::nearbyint((weight * kOne - whole) * kOne));
    }
};

/// Two numbers of 16 bits as the halves of a word.
inline std::uint32_t halves(std::int16_t low, std::int16_t high) {
    return static_cast<std::uint16_t>(low) | std::uint32_t{static_cast<std::uint16_t>(high)} << 16;
}

/// A strip of columns of 16-bit values.
class WordStrip {
  public:
    WordStrip(const Zoom& zoom, const WordInterpolation& interpolation, const ZoomColumns& columns)
        : zoom_(zoom), interpolation_(interpolation), columns_(columns) {}

    /// Fills in where the columns lie. `weights`: the arrays of weights of the columns, as many as there are taps.
    /// @return whether they lie close enough together.
    bool place(const double* const weights[4]) {
        const auto taps = static_cast<std::int32_t>(interpolation_.taps);
        const std::int32_t before = taps / 2 - 1;
        words_.groups = (columns_.count + kWordGroup - 1) / kWordGroup;
        words_.isShort = true;
        words_.isWide = false;
        for (std::size_t i = 0; i < words_.groups * kWordGroup; ++i) {
            const std::size_t column = i < columns_.count ? i : columns_.count - 1;
            std::int32_t& begin = words_.begin[i / kWordGroup];
            if (i % kWordGroup == 0) begin = columns_.index[i] - before;
            const std::int32_t offset = columns_.index[column] - before - begin;
            const std::int32_t span = offset + taps;
            if (begin < 0 || span > 2 * kWordWindow) return false;
            words_.isWide = words_.isWide || span > kWordWindow;
            words_.samples[i] = static_cast<std::uint32_t>(offset) * 0x10001U + 0x10000U;
            weighColumn(weights, i, column);
        }
        return true;
    }

    /// Interpolates one row of cells. `firstRow`: the first source row; `rowsAhead`: from there to that of the next
    /// cells; `weights`: as many as there are taps.
    void writeRow(unsigned int firstRow, unsigned int rowsAhead, const double* weights, unsigned char* to) {
        WordLines lines = {};
        lines.isShort = true;
        for (std::size_t k = 0; k < interpolation_.taps; ++k) {
            const unsigned int y = firstRow + static_cast<unsigned int>(k);
            const ZoomSource source = sourceAt(zoom_, y, rowsAhead);
            lines.source[k] = source.row;
            lines.ahead[k] = source.ahead;
            if (interpolation_.along != nullptr) lines.along[k] = alongRow(y, source);
            lines.weight[k] = weights[k];
            lines.isShort = lines.isShort && isMultiple(weights[k], kWordWeightUnit);
        }
        interpolation_.across(lines, columns_, words_, to);
    }

  private:
    struct Row {
        alignas(64) double value[kZoomPiece];
    };

    /// Fills in the weights of column `i`, which are those of `column`. The outer ones of four are taken away.
    void weighColumn(const double* const weights[4], std::size_t i, std::size_t column) {
        const std::size_t taps = interpolation_.taps;
        for (std::size_t k = 0; k < taps; k += 2) {
            const double left = weights[k][column];
            const double right = weights[k + 1][column];
            const SplitWeight first(taps == 4 && k == 0 ? -left : left);
            const SplitWeight second(taps == 4 && k == 2 ? -right : right);
            words_.coarse[k / 2][i] = halves(first.coarse, second.coarse);
            words_.fine[k / 2][i] = halves(first.fine, second.fine);
            words_.isShort =
                words_.isShort && isMultiple(left, kWordWeightUnit) && isMultiple(right, kWordWeightUnit);
        }
    }

    /// The interpolation of a source row along x, which is kept for the next cells.
    const double* alongRow(unsigned int y, const ZoomSource& source) {
        const auto along = [&](Row& row) {
            interpolation_.along(source.row, source.ahead, columns_, words_, row.value);
        };
        return rows_.get(y, along).value;
    }

    const Zoom& zoom_;
    const WordInterpolation& interpolation_;
    const ZoomColumns& columns_;
    WordColumns words_;
    HeldRows<Row, 4> rows_;
};

/// Whether there are loops in fixed point for a type.
inline bool hasFixedPoint(const Zoom& zoom, const WordZoomKernels& kernels) {
    const bool isWord = zoom.valueType == MAT_ARRAY_INT16 || zoom.valueType == MAT_ARRAY_UINT16;
    return isWord && kernels.ofUnsigned.bilinear.along != nullptr;
}

/// The loops for a type of 16 bits.
inline const WordZoom& wordZoomOf(const Zoom& zoom, const WordZoomKernels& kernels) {
    return zoom.valueType == MAT_ARRAY_INT16 ? kernels.ofSigned : kernels.ofUnsigned;
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_WORDS_H
