// Strips of 16-bit values for zoom in fixed point; see word_zoom_kernels.h.
#ifndef VELQUAD_ARRAY_ZOOM_WORDS_H
#define VELQUAD_ARRAY_ZOOM_WORDS_H

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "array/word_zoom_kernels.h"
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

/// Fills in the weights of column `i`, which are those of `column`. The outer ones of four are taken away.
inline void weighColumn(const WordInterpolation& interpolation, const double* const weights[4], std::size_t i,
                        std::size_t column, WordColumns& words) {
    const std::size_t taps = interpolation.taps;
    const double unit = interpolation.weightUnit;
    for (std::size_t k = 0; k < taps; k += 2) {
        const double left = weights[k][column];
        const double right = weights[k + 1][column];
        const SplitWeight first(taps == 4 && k == 0 ? -left : left);
        const SplitWeight second(taps == 4 && k == 2 ? -right : right);
        words.coarse[k / 2][i] = halves(first.coarse, second.coarse);
        words.fine[k / 2][i] = halves(first.fine, second.fine);
        words.isShort = words.isShort && isMultiple(left, unit) && isMultiple(right, unit);
    }
}

/// Fills in where the columns of a strip lie. `weights`: their arrays of weights, as many as there are taps.
/// @return whether they lie close enough together.
inline bool placeRounded(const ZoomColumns& columns, const WordInterpolation& interpolation,
                         const double* const weights[4], WordColumns& words) {
    const auto taps = static_cast<std::int32_t>(interpolation.taps);
    const std::int32_t before = taps / 2 - 1;
    words.groups = (columns.count + kWordGroup - 1) / kWordGroup;
    words.isShort = true;
    words.isWide = false;
    for (std::size_t i = 0; i < words.groups * kWordGroup; ++i) {
        const std::size_t column = i < columns.count ? i : columns.count - 1;
        std::int32_t& begin = words.begin[i / kWordGroup];
        if (i % kWordGroup == 0) begin = columns.index[i] - before;
        const std::int32_t offset = columns.index[column] - before - begin;
        const std::int32_t span = offset + taps;
        if (begin < 0 || span > 2 * kWordWindow) return false;
        words.isWide = words.isWide || span > kWordWindow;
        words.samples[i] = static_cast<std::uint32_t>(offset) * 0x10001U + 0x10000U;
        weighColumn(interpolation, weights, i, column, words);
    }
    return true;
}

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
