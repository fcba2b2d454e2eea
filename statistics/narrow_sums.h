// Sums over integers of 8 and 16 bits, gathered as integers and therefore exact in any order.
#ifndef VELQUAD_STATISTICS_NARROW_SUMS_H
#define VELQUAD_STATISTICS_NARROW_SUMS_H

#include <cstddef>
#include <cstdint>

namespace velquad::statistics {

/// The elements that one call may gather.
inline constexpr std::size_t kNarrowBlock = 8192;

struct NarrowSums {
    std::int64_t sum = 0;
    std::uint64_t sumOfSquares = 0;
    std::int32_t min = 0;
    std::int32_t max = 0;
};

/// Gathers 1 to `kNarrowBlock` elements at any address.
template <class T>
NarrowSums narrowSums(const void* values, std::size_t count);

/// The number of odd elements, of any count of them.
template <class T>
std::uint64_t countOdd(const void* values, std::size_t count);

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_NARROW_SUMS_H
