// Sums over pairs of integers of 8 and 16 bits, gathered as integers and therefore exact in any order.
#ifndef VELQUAD_STATISTICS_NARROW_PAIR_SUMS_H
#define VELQUAD_STATISTICS_NARROW_PAIR_SUMS_H

#include <cstddef>
#include <cstdint>

#include "statistics/narrow_sums.h"

namespace velquad::statistics {

struct NarrowPairSums {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t xx = 0;
    std::int64_t yy = 0;
    std::int64_t xy = 0;

    NarrowPairSums& operator+=(const NarrowPairSums& other) {
        x += other.x;
        y += other.y;
        xx += other.xx;
        yy += other.yy;
        xy += other.xy;
        return *this;
    }
};

/// Gathers up to `kNarrowBlock` pairs at any addresses.
template <class T>
NarrowPairSums narrowPairSums(const void* x, const void* y, std::size_t count);

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_NARROW_PAIR_SUMS_H
