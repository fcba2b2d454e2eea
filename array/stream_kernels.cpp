// Copies that go to memory past the caches. Compiled for several instruction sets; see frame/kernels.h for what may be
// used here.
#include "array/stream_kernels.h"

#include <cstdint>

#include "frame/inline.h"

#if defined(__SSE2__)
#if !defined(__clang__)
// The compiler's own header leaves operands undefined that an instruction does not use.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#endif

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

constexpr std::size_t kCacheLine = 64;

#if defined(__AVX512F__)

VELQUAD_ALWAYS_INLINE void streamLine(const unsigned char* from, unsigned char* to) {
    _mm512_stream_si512(reinterpret_cast<__m512i*>(to), _mm512_loadu_si512(from));
}

#elif defined(__SSE2__)

VELQUAD_ALWAYS_INLINE void streamLine(const unsigned char* from, unsigned char* to) {
    for (std::size_t at = 0; at < kCacheLine; at += sizeof(__m128i)) {
        _mm_stream_si128(reinterpret_cast<__m128i*>(to + at),
                         _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(from + at)));
    }
}

#else

VELQUAD_ALWAYS_INLINE void streamLine(const unsigned char* from, unsigned char* to) {
    __builtin_memcpy(to, from, kCacheLine);
}

#endif

/// Lines that are written in part go through the caches.
void copy(const void* source, void* destination, std::size_t bytes) {
    const auto* from = static_cast<const unsigned char*>(source);
    auto* to = static_cast<unsigned char*>(destination);
    const std::size_t gap = (kCacheLine - reinterpret_cast<std::uintptr_t>(to) % kCacheLine) % kCacheLine;
    std::size_t at = gap < bytes ? gap : bytes;
    __builtin_memcpy(to, from, at);
    for (; at + kCacheLine <= bytes; at += kCacheLine)
        streamLine(from + at, to + at);
    __builtin_memcpy(to + at, from + at, bytes - at);
}

void finish() {
#if defined(__SSE2__)
    _mm_sfence();
#endif
}

}  // namespace

extern const StreamKernels kStreamKernels;
const StreamKernels kStreamKernels = {copy, finish};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
