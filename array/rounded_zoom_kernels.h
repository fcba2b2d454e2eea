// What the inner loops of zoom have in common that compute no more digits than their results are rounded to: of bytes in
// floats (byte_zoom_kernels.h), of 16-bit values in fixed point (word_zoom_kernels.h).
#ifndef VELQUAD_ARRAY_ROUNDED_ZOOM_KERNELS_H
#define VELQUAD_ARRAY_ROUNDED_ZOOM_KERNELS_H

#include <cstddef>

#include "array/zoom_kernels.h"

namespace velquad::array {

/// Source rows with their parts along x, and their weights.
template <class Along>
struct RoundedLines {
    const void* source[4];
    const Along* along[4];  ///< Null where there are no such parts.
    const void* ahead[4];   ///< There, the rows that are used for the next cells.
    double weight[4];       ///< Bilinear: rest, fraction. Cubic: a, b, c, d.
    bool isShort = false;   ///< The weights are so short in binary that the loops stay exact.
};

/// `Placed`: a strip of columns as the loops need it. `Along`: a number of an interpolation along x.
template <class Placed, class Along>
struct RoundedInterpolation {
    std::size_t taps;   ///< Samples per direction.
    double weightUnit;  ///< The weights are short if they are whole multiples of this.
    /// Interpolates a source row along x and asks for the same columns of the row `ahead` by the way: so many lines
    /// at once would have to wait for each other. Null where `across` does it, for rows that serve one row of cells
    /// only.
    void (*along)(const void* sourceRow, const void* ahead, const ZoomColumns& columns, const Placed& placed,
                  Along* result);
    /// Interpolates the rows across and stores the values.
    void (*across)(const RoundedLines<Along>& lines, const ZoomColumns& columns, const Placed& placed,
                   void* destination);
};

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ROUNDED_ZOOM_KERNELS_H
