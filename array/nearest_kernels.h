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

/// Pixels of three bytes that are copied at once, and samples of a source row that a vector of 16 bytes holds whole.
inline constexpr std::size_t kPixelGroup = 4;
inline constexpr std::int32_t kPixelWindow = 5;

/// Where the columns of a strip lie in the source, in rising order.
struct NearestColumns {
    std::int32_t index[kNearestStrip];    ///< Counted in elements of the row.
    std::uint16_t offset[kNearestStrip];  ///< The same, counted from the first column of the group.
    /// For pixels of three bytes, per group of four: from where in a vector that begins with the first sample its bytes
    /// come, or 128 where they come from the second one, which begins with the third sample; and the same for that one.
    alignas(64) unsigned char bytes[2][kNearestStrip * 4];
    std::size_t count = 0;
    std::int32_t spanOfGroup = 0;  ///< The largest offset, before it is cut to 16 bits.
    std::int32_t lastIndex = 0;    ///< The last element of a source row.
    std::int32_t spanOfPair =
        0;  ///< The most that two pixels of three bytes lie apart, from the even to the odd one.
};

/// A source row and one that is read after it.
struct NearestSource {
    const unsigned char* row;
    const unsigned char* ahead;
};

struct NearestKernels {
    /// By the bytes of an element, 1 to 4 and 8. Asks for the same columns of `ahead`, a row that follows, by the way: so
    /// many lines at once would have to wait for each other.
    void (*copy[9])(const NearestSource& source, const NearestColumns& columns, void* destination);
};

const NearestKernels& nearestKernels();

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_NEAREST_KERNELS_H
