// Inner loops of bilinear and cubic zoom of 16-bit values in fixed point.
//
// A value of 16 bits depends on the first digits of an interpolated value only, but on more of them than a float has.
// Along x it is therefore computed in integers of 32 bits, whose last 14 bits are a fraction: products of 16-bit numbers
// are added in pairs by one instruction, and a weight is split into two such numbers. Across, doubles are added up in
// whatever order is fast. There is a bound for the error: where the value lies so close to the border between two
// integers that the error could matter, the cell is computed again in the order of operations that defines it. Fractions
// of the axes that are short in binary make the fixed-point numbers exact, so that values right on such a border are
// decided as well.
#ifndef VELQUAD_ARRAY_WORD_ZOOM_KERNELS_H
#define VELQUAD_ARRAY_WORD_ZOOM_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "array/rounded_zoom_kernels.h"
#include "array/zoom_kernels.h"

namespace velquad::array {

/// Columns that are worked on at once.
inline constexpr std::size_t kWordGroup = 16;
static_assert(kZoomPiece % kWordGroup == 0);

/// Values of a source row that fit a vector. A group may use two.
inline constexpr std::int32_t kWordWindow = 32;

/// Bits of a fraction, in the interpolation along x and in both parts of a weight.
inline constexpr int kWordBits = 14;

/// A strip of columns, filled up to whole groups with columns like the last one.
struct WordColumns {
    /// Per group: its first sample is this value of the source row.
    std::int32_t begin[kZoomPiece / kWordGroup];
    /// Per column: the first two samples, counted from `begin`, as two halves.
    alignas(64) std::uint32_t samples[kZoomPiece];
    /// Per column: the weights of the first two samples and of those behind them as two halves each. A weight is
    /// (coarse + fine * 2^-14) * 2^-14 up to 2^-29.
    alignas(64) std::uint32_t coarse[2][kZoomPiece];
    alignas(64) std::uint32_t fine[2][kZoomPiece];
    std::size_t groups = 0;
    bool isWide = false;   ///< Groups use two windows.
    bool isShort = false;  ///< The weights have no fine part.
};

/// The numbers of an interpolation along x are whole multiples of 2^-14, counted in these.
using WordLines = RoundedLines<double>;
using WordInterpolation = RoundedInterpolation<WordColumns, double>;

/// The interpolations of a type.
struct WordZoom {
    WordInterpolation bilinear;
    WordInterpolation bilinearDirect;
    WordInterpolation cubic;
};

/// The functions are null where the processor lacks the instructions to make it worthwhile.
struct WordZoomKernels {
    WordZoom ofSigned;
    WordZoom ofUnsigned;
};

const WordZoomKernels& wordZoomKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_WORD_ZOOM_KERNELS_H
