// Asking for memory before it is read.
#ifndef VELQUAD_STATISTICS_PREFETCH_H
#define VELQUAD_STATISTICS_PREFETCH_H

#include <cstdint>

#include "frame/inline.h"

namespace velquad::statistics {

/// Asks for what a loop that is at this address will read soon. Arrays beyond the caches are summed up to twice as fast,
/// as the processor's own guesses end with each page. Nothing is read, so the place asked for may lie behind the array.
VELQUAD_ALWAYS_INLINE void prefetchAhead(const void* at) {
    constexpr std::uintptr_t kBytesAhead = 2048;
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(at) + kBytesAhead));
}

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_PREFETCH_H
