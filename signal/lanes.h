// The vector of doubles that a kernel level has. Only for kernel files; everything here is local to the file that
// includes it.
#ifndef VELQUAD_SIGNAL_LANES_H
#define VELQUAD_SIGNAL_LANES_H

#include <cstddef>

#include "frame/inline.h"

namespace velquad::signal {

namespace {

#if defined(__AVX512F__)
constexpr std::size_t kLanes = 8;  // NOLINT(misc-definitions-in-headers): local to its file
#elif defined(__AVX__)
constexpr std::size_t kLanes = 4;  // NOLINT(misc-definitions-in-headers): local to its file
#else
constexpr std::size_t kLanes = 2;  // NOLINT(misc-definitions-in-headers): local to its file
#endif
using Lanes [[gnu::vector_size(kLanes * sizeof(double))]] = double;

VELQUAD_ALWAYS_INLINE Lanes load(const double* at) {
    Lanes lanes;
    __builtin_memcpy(&lanes, at, sizeof lanes);
    return lanes;
}

VELQUAD_ALWAYS_INLINE void store(double* at, Lanes lanes) {
    __builtin_memcpy(at, &lanes, sizeof lanes);
}

}  // namespace

}  // namespace velquad::signal

#endif  // VELQUAD_SIGNAL_LANES_H
