// Sums over integers of 8 and 16 bits with the vector instructions that every x86-64 has. With moved elements
// x = y + s the sums of x follow from those of y: sum x = sum y + n s, sum x^2 = sum y^2 + 2 s sum y + n s^2.
#include "statistics/narrow_sums.h"

#include <limits>

#include "statistics/element_type.h"
#include "statistics/narrow_lanes.h"

namespace velquad::statistics {

namespace {

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

/// Elements of 16 bits as -32768 ... 32767. The squares of two neighbours add up to at most 2^31, which is right as
/// an unsigned number. Their lanes are summed modulo 2^32 and by their high halves.
MovedSums gather(const char* values, std::size_t vectorCount, std::uint16_t flip) {
    static_assert(kNarrowBlock / (kVectorBytes / 2) <= kMaxVectorsOfParts);
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
    result.sumOfSquares = sumFromParts(squaresLow, squaresHigh);
    return result;
}

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
