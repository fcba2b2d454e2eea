// Inner loops of bilinear and cubic zoom of bytes in single precision.
//
// A byte depends on the first few digits of an interpolated value only. It is computed in floats, sixteen columns at a
// time, with a bound for the error: where the value lies so close to the border between two bytes that the error could
// matter, the cell is computed again in doubles, in the order of operations that defines it. Fractions of the axes that
// are short in binary make even the floats exact, so that values right on such a border are decided as well. (Shewchuk
// 1997, Adaptive precision floating-point arithmetic, uses the like for geometric predicates.)
#ifndef VELQUAD_ARRAY_BYTE_ZOOM_KERNELS_H
#define VELQUAD_ARRAY_BYTE_ZOOM_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "array/rounded_zoom_kernels.h"
#include "array/zoom_kernels.h"

namespace velquad::array {

/// Columns that are worked on at once.
inline constexpr std::size_t kByteGroup = 16;
static_assert(kZoomPiece % kByteGroup == 0);

/// Bytes of a source row that a group may use.
inline constexpr std::int32_t kByteWindow = 64;

/// A strip of columns, filled up to whole groups with columns like the last one.
struct ByteColumns {
    /// Per group: its first sample is this value of the source row.
    std::int32_t begin[kZoomPiece / kByteGroup];
    /// Per column: the two words behind each other that begin with its first sample or the byte before, counted from
    /// `begin`, as two halves.
    alignas(64) std::uint32_t words[kZoomPiece];
    /// Per column: the bits of the words before the first sample.
    alignas(64) std::uint32_t shift[kZoomPiece];
    alignas(64) float weight[4][kZoomPiece];  ///< Bilinear: rest, fraction. Cubic: a, b, c, d.
    std::size_t groups = 0;
    bool isShort = false;  ///< The weights are so short in binary that floats stay exact.
};

using ByteLines = RoundedLines<float>;
using ByteInterpolation = RoundedInterpolation<ByteColumns, float>;

/// The functions are null where the processor lacks the instructions to make it worthwhile.
struct ByteZoomKernels {
    ByteInterpolation bilinear;
    ByteInterpolation cubic;
};

const ByteZoomKernels& byteZoomKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_BYTE_ZOOM_KERNELS_H
