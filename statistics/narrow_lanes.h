// Vectors of integers of 8 and 16 bits, and the sums of their lanes, with the instructions that every x86-64 has.
//
// Elements are moved so that one loop serves signed and unsigned types: those of 8 bits to 0 ... 255, those of 16 bits
// to -32768 ... 32767, where one instruction adds the products of neighbours.
#ifndef VELQUAD_STATISTICS_NARROW_LANES_H
#define VELQUAD_STATISTICS_NARROW_LANES_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace velquad::statistics {

inline constexpr std::size_t kVectorBytes = 16;

/// How the elements of a type are moved: which bits are flipped, and how far an element lies above the moved one.
template <class T>
struct Move;
template <>
struct Move<std::int8_t> {
    static constexpr std::uint8_t kFlip = 0x80;
    static constexpr std::int32_t kShift = -128;
};
template <>
struct Move<std::uint8_t> {
    static constexpr std::uint8_t kFlip = 0;
    static constexpr std::int32_t kShift = 0;
};
template <>
struct Move<std::int16_t> {
    static constexpr std::uint16_t kFlip = 0;
    static constexpr std::int32_t kShift = 0;
};
template <>
struct Move<std::uint16_t> {
    static constexpr std::uint16_t kFlip = 0x8000;
    static constexpr std::int32_t kShift = 32768;
};

/// Sixteen bytes from any address.
inline __m128i load(const char* at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

template <class Lane>
struct LanesOf {
    static constexpr std::size_t kCount = kVectorBytes / sizeof(Lane);
    Lane lane[kCount];

    explicit LanesOf(__m128i vector) { _mm_storeu_si128(reinterpret_cast<__m128i*>(lane), vector); }
};

template <class Lane>
std::int64_t sumOfLanes(__m128i vector) {
    std::int64_t sum = 0;
    for (const Lane lane : LanesOf<Lane>(vector).lane)
        sum += static_cast<std::int64_t>(lane);
    return sum;
}

template <class Lane>
Lane leastLane(__m128i vector) {
    const LanesOf<Lane> lanes(vector);
    Lane least = lanes.lane[0];
    for (const Lane lane : lanes.lane)
        least = lane < least ? lane : least;
    return least;
}

template <class Lane>
Lane greatestLane(__m128i vector) {
    const LanesOf<Lane> lanes(vector);
    Lane greatest = lanes.lane[0];
    for (const Lane lane : lanes.lane)
        greatest = lane > greatest ? lane : greatest;
    return greatest;
}

/// Vectors whose unsigned 32-bit lanes `sumFromParts` can tell the sum of.
inline constexpr std::size_t kMaxVectorsOfParts = std::size_t{1} << 15;

/// The sum over all lanes of unsigned 32-bit values that were summed twice: modulo 2^32, and by their high halves.
/// The latter tell each lane's sum up to 2^15 * 2^16, and between these bounds one number only fits the former.
inline std::int64_t sumFromParts(__m128i moduloSums, __m128i highHalfSums) {
    const LanesOf<std::uint32_t> low(moduloSums);
    const LanesOf<std::uint32_t> high(highHalfSums);
    std::uint64_t sum = 0;
    for (std::size_t k = 0; k < LanesOf<std::uint32_t>::kCount; ++k) {
        const std::uint64_t floor = static_cast<std::uint64_t>(high.lane[k]) << 16;
        sum += floor + (low.lane[k] - static_cast<std::uint32_t>(floor));
    }
    return static_cast<std::int64_t>(sum);
}

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_NARROW_LANES_H
