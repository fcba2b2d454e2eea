// Asking for memory before it is read or written.
#ifndef VELQUAD_ARRAY_PREFETCH_H
#define VELQUAD_ARRAY_PREFETCH_H

#include <cstddef>

#include "frame/inline.h"

namespace velquad::array {

/// Asks for the cache lines of a range. The processor's own guesses end with each page, and are given up early when
/// other programs use the memory too; a loop that asks one part ahead runs at the speed of a plain copy. Destinations
/// profit most, as a store that has to wait for its line holds up all that follow.
VELQUAD_ALWAYS_INLINE void prefetchRange(const unsigned char* begin, std::size_t bytes) {
    constexpr std::size_t kCacheLine = 64;
    for (std::size_t at = 0; at < bytes; at += kCacheLine)
        __builtin_prefetch(begin + at);
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_PREFETCH_H
