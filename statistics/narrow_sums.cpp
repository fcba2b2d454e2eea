// Sums over integers of 8 and 16 bits with the vector instructions that every x86-64 has.
//
// The elements are moved first so that one body serves signed and unsigned types: those of 8 bits to 0 ... 255,
// those of 16 bits to -32768 ... 32767, where the products of neighbours are added by one instruction. With
// x = y + s the sums of x follow from those of y: sum x = sum y + n s, sum x^2 = sum y^2 + 2 s sum y + n s^2.
#include "statistics/narrow_sums.h"

#include <emmintrin.h>

#include <limits>

#include "statistics/element_type.h"

namespace velquad::statistics {

namespace {

constexpr std::size_t kVectorBytes = 16;

__m128i load(const char* at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

template <class Lane>
std::int64_t sumOfLanes(__m128i vector) {
    Lane lanes[kVectorBytes / sizeof(Lane)];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), vector);
    std::int64_t sum = 0;
    for (const Lane lane : lanes)
        sum += static_cast<std::int64_t>(lane);
    return sum;
}

template <class Lane>
Lane leastLane(__m128i vector) {
    Lane lanes[kVectorBytes / sizeof(Lane)];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), vector);
    Lane least = lanes[0];
    for (const Lane lane : lanes)
        least = lane < least ? lane : least;
    return least;
}

template <class Lane>
Lane greatestLane(__m128i vector) {
    Lane lanes[kVectorBytes / sizeof(Lane)];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), vector);
    Lane greatest = lanes[0];
    for (const Lane lane : lanes)
        greatest = lane > greatest ? lane : greatest;
    return greatest;
}

/// Sums of the moved elements.
struct MovedSums {
    std::int64_t sum = 0;
    std::int64_t sumOfSquares = 0;
    std::int32_t min = std::numeric_limits<std::int32_t>::max();
    std::int32_t max = std::numeric_limits<std::int32_t>::min();

    void add(std::int32_t y) {
        sum += y;
        sumOfSquares += static_cast<std::int64_t>(y) * y;
        min = y < min ? y : min;
        max = y > max ? y : max;
    }
};

/// Elements of 8 bits as 0 ... 255. Lanes of squares grow by at most 4 * 255^2 with each vector.
MovedSums gather(const char* values, std::size_t vectorCount, std::uint8_t flip) {
    static_assert(kNarrowBlock / kVectorBytes * 4 * 255 * 255 < (1U << 31));
    const __m128i zero = _mm_setzero_si128();
    const __m128i mask = _mm_set1_epi8(static_cast<char>(flip));
    __m128i least = _mm_set1_epi8(-1);
    __m128i greatest = zero;
    __m128i sums = zero;
    __m128i squaresLow = zero;
    __m128i squaresHigh = zero;
    for (std::size_t i = 0; i < vectorCount; ++i) {
        const __m128i y = _mm_xor_si128(load(values + i * kVectorBytes), mask);
        least = _mm_min_epu8(least, y);
        greatest = _mm_max_epu8(greatest, y);
        sums = _mm_add_epi64(sums, _mm_sad_epu8(y, zero));
        const __m128i low = _mm_unpacklo_epi8(y, zero);
        const __m128i high = _mm_unpackhi_epi8(y, zero);
        squaresLow = _mm_add_epi32(squaresLow, _mm_madd_epi16(low, low));
        squaresHigh = _mm_add_epi32(squaresHigh, _mm_madd_epi16(high, high));
    }
    return {sumOfLanes<std::int64_t>(sums),
            sumOfLanes<std::uint32_t>(squaresLow) + sumOfLanes<std::uint32_t>(squaresHigh),
            leastLane<std::uint8_t>(least), greatestLane<std::uint8_t>(greatest)};
}

/// A sum of up to 2^15 unsigned 32-bit values, from its low 32 bits and the sum of their high halves, which tells
/// it up to 2^15 * 2^16: between the two there is one number only.
std::int64_t sumFromParts(std::uint32_t lowBits, std::uint32_t highHalves) {
    const std::uint64_t floor = static_cast<std::uint64_t>(highHalves) << 16;
    return static_cast<std::int64_t>(floor + (lowBits - static_cast<std::uint32_t>(floor)));
}

/// Elements of 16 bits as -32768 ... 32767. The squares of two neighbours add up to at most 2^31, which is right as
/// an unsigned number. Their lanes are summed modulo 2^32 and by their high halves.
MovedSums gather(const char* values, std::size_t vectorCount, std::uint16_t flip) {
    static_assert(kNarrowBlock / (kVectorBytes / 2) <= (1U << 15));
    const __m128i ones = _mm_set1_epi16(1);
    const __m128i mask = _mm_set1_epi16(static_cast<short>(flip));
    __m128i least = _mm_set1_epi16(std::numeric_limits<short>::max());
    __m128i greatest = _mm_set1_epi16(std::numeric_limits<short>::min());
    __m128i sums = _mm_setzero_si128();
    __m128i squaresLow = sums;
    __m128i squaresHigh = sums;
    for (std::size_t i = 0; i < vectorCount; ++i) {
        const __m128i y = _mm_xor_si128(load(values + i * kVectorBytes), mask);
        least = _mm_min_epi16(least, y);
        greatest = _mm_max_epi16(greatest, y);
        sums = _mm_add_epi32(sums, _mm_madd_epi16(y, ones));
        const __m128i squares = _mm_madd_epi16(y, y);
        squaresLow = _mm_add_epi32(squaresLow, squares);
        squaresHigh = _mm_add_epi32(squaresHigh, _mm_srli_epi32(squares, 16));
    }
    MovedSums result{sumOfLanes<std::int32_t>(sums), 0, leastLane<short>(least),
                     greatestLane<short>(greatest)};
    std::uint32_t low[kVectorBytes / 4];
    std::uint32_t high[kVectorBytes / 4];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(low), squaresLow);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(high), squaresHigh);
    for (std::size_t k = 0; k < kVectorBytes / 4; ++k)
        result.sumOfSquares += sumFromParts(low[k], high[k]);
    return result;
}

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

}  // namespace

template <class T>
NarrowSums narrowSums(const void* values, std::size_t count) {
    constexpr std::size_t kPerVector = kVectorBytes / sizeof(T);
    constexpr std::int64_t s = Move<T>::kShift;
    const std::size_t vectorCount = count / kPerVector;
    MovedSums moved;
    if (vectorCount > 0) moved = gather(static_cast<const char*>(values), vectorCount, Move<T>::kFlip);
    for (std::size_t i = vectorCount * kPerVector; i < count; ++i)
        moved.add(elementAt<T>(values, i) - Move<T>::kShift);
    const auto n = static_cast<std::int64_t>(count);
    return {moved.sum + n * s, static_cast<std::uint64_t>(moved.sumOfSquares + 2 * s * moved.sum + n * s * s),
            moved.min + Move<T>::kShift, moved.max + Move<T>::kShift};
}

template <class T>
std::uint64_t countOdd(const void* values, std::size_t count) {
    std::uint64_t odd = 0;
    for (std::size_t begin = 0; begin < count; begin += kNarrowBlock) {
        const std::size_t end = count - begin < kNarrowBlock ? count : begin + kNarrowBlock;
        std::uint16_t oddInBlock = 0;
        for (std::size_t i = begin; i < end; ++i)
            oddInBlock = static_cast<std::uint16_t>(oddInBlock + (elementAt<T>(values, i) & 1));
        odd += oddInBlock;
    }
    return odd;
}

template NarrowSums narrowSums<std::int8_t>(const void*, std::size_t);
template NarrowSums narrowSums<std::uint8_t>(const void*, std::size_t);
template NarrowSums narrowSums<std::int16_t>(const void*, std::size_t);
template NarrowSums narrowSums<std::uint16_t>(const void*, std::size_t);
template std::uint64_t countOdd<std::int8_t>(const void*, std::size_t);
template std::uint64_t countOdd<std::uint8_t>(const void*, std::size_t);
template std::uint64_t countOdd<std::int16_t>(const void*, std::size_t);
template std::uint64_t countOdd<std::uint16_t>(const void*, std::size_t);

}  // namespace velquad::statistics
