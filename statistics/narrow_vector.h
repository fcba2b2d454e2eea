// The vector of integers that a kernel level has: 16 bytes everywhere, 32 from AVX2 on, 64 from AVX-512 on. Only for
// kernel files; everything here is local to the file that includes it.
#ifndef VELQUAD_STATISTICS_NARROW_VECTOR_H
#define VELQUAD_STATISTICS_NARROW_VECTOR_H

// GCC 12 takes the result that an instruction overwrites for an uninitialised operand.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop

#include <cstddef>
#include <cstdint>

#include "frame/inline.h"

namespace velquad::statistics {

namespace {

#if defined(__AVX512BW__)

struct Vector {
    __m512i bits;

    VELQUAD_ALWAYS_INLINE static Vector load(const void* at) { return {_mm512_loadu_si512(at)}; }
    VELQUAD_ALWAYS_INLINE void store(void* at) const { _mm512_storeu_si512(at, bits); }
    VELQUAD_ALWAYS_INLINE static Vector all8(int value) {
        return {_mm512_set1_epi8(static_cast<char>(value))};
    }
    VELQUAD_ALWAYS_INLINE static Vector all16(int value) {
        return {_mm512_set1_epi16(static_cast<short>(value))};
    }
    VELQUAD_ALWAYS_INLINE static Vector all32(int value) { return {_mm512_set1_epi32(value)}; }
};
#define VELQUAD_VECTOR_OPERATION(name) _mm512_##name
#define VELQUAD_VECTOR_XOR _mm512_xor_si512

#elif defined(__AVX2__)

struct Vector {
    __m256i bits;

    VELQUAD_ALWAYS_INLINE static Vector load(const void* at) {
        return {_mm256_loadu_si256(static_cast<const __m256i*>(at))};
    }
    VELQUAD_ALWAYS_INLINE void store(void* at) const { _mm256_storeu_si256(static_cast<__m256i*>(at), bits); }
    VELQUAD_ALWAYS_INLINE static Vector all8(int value) {
        return {_mm256_set1_epi8(static_cast<char>(value))};
    }
    VELQUAD_ALWAYS_INLINE static Vector all16(int value) {
        return {_mm256_set1_epi16(static_cast<short>(value))};
    }
    VELQUAD_ALWAYS_INLINE static Vector all32(int value) { return {_mm256_set1_epi32(value)}; }
};
#define VELQUAD_VECTOR_OPERATION(name) _mm256_##name
#define VELQUAD_VECTOR_XOR _mm256_xor_si256

#else

struct Vector {
    __m128i bits;

    VELQUAD_ALWAYS_INLINE static Vector load(const void* at) {
        return {_mm_loadu_si128(static_cast<const __m128i*>(at))};
    }
    VELQUAD_ALWAYS_INLINE void store(void* at) const { _mm_storeu_si128(static_cast<__m128i*>(at), bits); }
    VELQUAD_ALWAYS_INLINE static Vector all8(int value) { return {_mm_set1_epi8(static_cast<char>(value))}; }
    VELQUAD_ALWAYS_INLINE static Vector all16(int value) {
        return {_mm_set1_epi16(static_cast<short>(value))};
    }
    VELQUAD_ALWAYS_INLINE static Vector all32(int value) { return {_mm_set1_epi32(value)}; }
};
#define VELQUAD_VECTOR_OPERATION(name) _mm_##name
#define VELQUAD_VECTOR_XOR _mm_xor_si128

#endif

constexpr std::size_t kVectorBytes = sizeof(Vector);

VELQUAD_ALWAYS_INLINE Vector operator^(Vector a, Vector b) {
    return {VELQUAD_VECTOR_XOR(a.bits, b.bits)};
}
/// Bytes without a sign.
VELQUAD_ALWAYS_INLINE Vector min8(Vector a, Vector b) {
    return {VELQUAD_VECTOR_OPERATION(min_epu8)(a.bits, b.bits)};
}
VELQUAD_ALWAYS_INLINE Vector max8(Vector a, Vector b) {
    return {VELQUAD_VECTOR_OPERATION(max_epu8)(a.bits, b.bits)};
}
/// Lanes of 16 bits with a sign.
VELQUAD_ALWAYS_INLINE Vector min16(Vector a, Vector b) {
    return {VELQUAD_VECTOR_OPERATION(min_epi16)(a.bits, b.bits)};
}
VELQUAD_ALWAYS_INLINE Vector max16(Vector a, Vector b) {
    return {VELQUAD_VECTOR_OPERATION(max_epi16)(a.bits, b.bits)};
}
VELQUAD_ALWAYS_INLINE Vector add32(Vector a, Vector b) {
    return {VELQUAD_VECTOR_OPERATION(add_epi32)(a.bits, b.bits)};
}
VELQUAD_ALWAYS_INLINE Vector add64(Vector a, Vector b) {
    return {VELQUAD_VECTOR_OPERATION(add_epi64)(a.bits, b.bits)};
}
/// The upper halves of lanes of 32 bits.
VELQUAD_ALWAYS_INLINE Vector highHalves(Vector a) {
    return {VELQUAD_VECTOR_OPERATION(srli_epi32)(a.bits, 16)};
}
/// Bytes without a sign, eight neighbours summed into a lane of 64 bits.
VELQUAD_ALWAYS_INLINE Vector sumsOf8(Vector a) {
    return {VELQUAD_VECTOR_OPERATION(sad_epu8)(a.bits, Vector::all32(0).bits)};
}
/// Bytes without a sign as 16 bits: one half of them, and the other.
VELQUAD_ALWAYS_INLINE Vector widenOneHalf(Vector a) {
    return {VELQUAD_VECTOR_OPERATION(unpacklo_epi8)(a.bits, Vector::all32(0).bits)};
}
VELQUAD_ALWAYS_INLINE Vector widenOtherHalf(Vector a) {
    return {VELQUAD_VECTOR_OPERATION(unpackhi_epi8)(a.bits, Vector::all32(0).bits)};
}
/// Lanes of 16 bits with a sign: the products of two neighbours, added, modulo 2^32.
VELQUAD_ALWAYS_INLINE Vector products(Vector a, Vector b) {
    return {VELQUAD_VECTOR_OPERATION(madd_epi16)(a.bits, b.bits)};
}

#undef VELQUAD_VECTOR_OPERATION
#undef VELQUAD_VECTOR_XOR

template <class Lane>
struct LanesOf {
    static constexpr std::size_t kCount = kVectorBytes / sizeof(Lane);
    Lane lane[kCount];

    VELQUAD_ALWAYS_INLINE explicit LanesOf(Vector vector) { vector.store(lane); }
};

template <class Lane>
VELQUAD_ALWAYS_INLINE std::int64_t sumOfLanes(Vector vector) {
    std::int64_t sum = 0;
    for (const Lane lane : LanesOf<Lane>(vector).lane)
        sum += static_cast<std::int64_t>(lane);
    return sum;
}

template <class Lane>
VELQUAD_ALWAYS_INLINE Lane leastLane(Vector vector) {
    const LanesOf<Lane> lanes(vector);
    Lane least = lanes.lane[0];
    for (const Lane lane : lanes.lane)
        least = lane < least ? lane : least;
    return least;
}

template <class Lane>
VELQUAD_ALWAYS_INLINE Lane greatestLane(Vector vector) {
    const LanesOf<Lane> lanes(vector);
    Lane greatest = lanes.lane[0];
    for (const Lane lane : lanes.lane)
        greatest = lane > greatest ? lane : greatest;
    return greatest;
}

}  // namespace

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_NARROW_VECTOR_H
