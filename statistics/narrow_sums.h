// Sums over integers of 8 and 16 bits, gathered as integers and therefore exact in any order.
#ifndef VELQUAD_STATISTICS_NARROW_SUMS_H
#define VELQUAD_STATISTICS_NARROW_SUMS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace velquad::statistics {

/// The elements that one call may gather.
inline constexpr std::size_t kNarrowBlock = 16384;

struct NarrowSums {
    std::int64_t sum;
    std::int64_t sumOfSquares;
    std::int32_t min;
    std::int32_t max;
};

struct NarrowPairSums {
    std::int64_t x;
    std::int64_t y;
    std::int64_t xx;
    std::int64_t yy;
    std::int64_t xy;
};

/// The loops for one element type. Arrays stand at any address and have 1 to `kNarrowBlock` elements.
struct NarrowTypeKernels {
    NarrowSums (*sums)(const void* values, std::size_t count);
    NarrowPairSums (*pairSums)(const void* x, const void* y, std::size_t count);
    /// The number of odd elements.
    std::size_t (*oddCount)(const void* values, std::size_t count);
};

struct NarrowKernels {
    NarrowTypeKernels types[4];
};

const NarrowKernels& narrowKernels();

template <class T>
const NarrowTypeKernels& narrowKernelsFor() {
    static_assert(std::is_integral_v<T> && sizeof(T) <= 2);
    return narrowKernels().types[2 * (sizeof(T) - 1) + (std::is_unsigned_v<T> ? 1 : 0)];
}

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_NARROW_SUMS_H
