// Strips of bytes for zoom in single precision; see byte_zoom_kernels.h.
#ifndef VELQUAD_ARRAY_ZOOM_BYTES_H
#define VELQUAD_ARRAY_ZOOM_BYTES_H

#include <cstddef>
#include <cstdint>

#include "array/byte_zoom_kernels.h"
#include "array/zoom_job.h"
#include "array/zoom_strip.h"
#include "velquad/array.h"

namespace velquad::array {

/// Fills in where the columns of a strip lie. `weights`: their arrays of weights, as many as there are taps.
/// @return whether they lie close enough together.
inline bool placeRounded(const ZoomColumns& columns, const ByteInterpolation& interpolation,
                         const double* const weights[4], ByteColumns& bytes) {
    const auto taps = static_cast<std::int32_t>(interpolation.taps);
    const std::int32_t before = (taps / 2 - 1) * columns.step;
    const std::int32_t reach = (taps - 1) * columns.step;
    bytes.groups = (columns.count + kByteGroup - 1) / kByteGroup;
    bytes.isShort = true;
    for (std::size_t i = 0; i < bytes.groups * kByteGroup; ++i) {
        const std::size_t column = i < columns.count ? i : columns.count - 1;
        std::int32_t& begin = bytes.begin[i / kByteGroup];
        // A group that begins within a pixel may go on with the same source pixel from its first byte.
        if (i % kByteGroup == 0) begin = columns.index[i] - columns.index[i] % columns.step - before;
        const std::int32_t offset = columns.index[column] - before - begin;
        if (begin < 0 || offset + reach >= kByteWindow) return false;
        // The lower half is a word, the upper half the one behind it.
        bytes.words[i] = static_cast<std::uint32_t>(offset / 2) * 0x10001U + 0x10000U;
        bytes.shift[i] = static_cast<std::uint32_t>(offset % 2) * 8;
        for (std::size_t k = 0; k < interpolation.taps; ++k) {
            bytes.weight[k][i] = static_cast<float>(weights[k][column]);
            bytes.isShort = bytes.isShort && isMultiple(weights[k][column], interpolation.weightUnit);
        }
    }
    return true;
}

/// Whether there are loops in floats for a type.
inline bool hasFloats(const Zoom& zoom, const ByteZoomKernels& kernels) {
    return zoom.valueType == MAT_ARRAY_UINT8 && kernels.bilinear.along != nullptr;
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_BYTES_H
