// Inner loops of zoom by nearest samples: copies of the elements that a strip of columns shows.
#ifndef VELQUAD_ARRAY_NEAREST_KERNELS_H
#define VELQUAD_ARRAY_NEAREST_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace velquad::array {

/// Columns that a strip holds at most.
inline constexpr std::size_t kNearestStrip = 2048;

/// Columns that are copied at once where their samples lie close together.
inline constexpr std::size_t kNearestGroup = 16;

/// Where the columns of a strip lie in the source, in rising order.
struct NearestColumns {
    std::int32_t index[kNearestStrip];    ///< Counted in elements of the row.
    std::uint16_t offset[kNearestStrip];  ///< The same, counted from the first column of the group.
    std::size_t count = 0;
    std::int32_t spanOfGroup = 0;  ///< The largest offset, before it is cut to 16 bits.
    std::int32_t lastIndex = 0;    ///< The last element of a source row.
};

struct NearestKernels {
    /// By the bytes of an element, 1 to 4 and 8.
    void (*copy[9])(const void* sourceRow, const NearestColumns& columns, void* destination);
};

const NearestKernels& nearestKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_NEAREST_KERNELS_H
