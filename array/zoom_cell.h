// One cell of bilinear and cubic zoom in the order of operations that defines it, for the loops that work in another
// order and leave the close calls to this. May be used in kernel files.
#ifndef VELQUAD_ARRAY_ZOOM_CELL_H
#define VELQUAD_ARRAY_ZOOM_CELL_H

#include <cstddef>
#include <cstdint>

#include "array/element.h"
#include "array/zoom_kernels.h"
#include "frame/inline.h"

namespace velquad::array {

/// `rows` and `rowWeights`: the two source rows and their weights, rest first.
template <class Value>
VELQUAD_ALWAYS_INLINE double bilinearCell(const void* const* rows, const double* rowWeights,
                                          const ZoomColumns& columns, std::size_t i) {
    const auto at = [](const void* row, std::int32_t x) {
        return static_cast<double>(loadElement<Value>(row, static_cast<std::size_t>(x)));
    };
    const std::int32_t index = columns.index[i];
    const std::int32_t next = index + columns.step;
    const double rest = columns.rest[i];
    const double fraction = columns.fraction[i];
    return at(rows[0], index) * rest * rowWeights[0] + at(rows[0], next) * fraction * rowWeights[0] +
           at(rows[1], index) * rest * rowWeights[1] + at(rows[1], next) * fraction * rowWeights[1];
}

/// `rows` and `rowWeights`: the four source rows and their weights, all of them positive.
template <class Value>
VELQUAD_ALWAYS_INLINE double cubicCell(const void* const* rows, const double* rowWeights,
                                       const ZoomColumns& columns, std::size_t i) {
    double line[4];
    for (std::size_t k = 0; k < 4; ++k) {
        const auto at = [&](std::int32_t x) {
            const std::int32_t index = columns.index[i] + x * columns.step;
            return static_cast<double>(loadElement<Value>(rows[k], static_cast<std::size_t>(index)));
        };
        line[k] = at(0) * columns.weight[1][i] - at(-1) * columns.weight[0][i] +
                  at(1) * columns.weight[2][i] - at(2) * columns.weight[3][i];
    }
    return line[1] * rowWeights[1] - line[0] * rowWeights[0] + line[2] * rowWeights[2] -
           line[3] * rowWeights[3];
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_CELL_H
