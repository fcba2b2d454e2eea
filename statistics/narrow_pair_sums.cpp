// Sums over pairs of integers of 8 and 16 bits. With moved elements x = u + s, y = v + s the sums of x and y follow
// from those of u and v: sum x y = sum u v + s (sum u + sum v) + n s^2.
#include "statistics/narrow_pair_sums.h"

#include "statistics/element_type.h"
#include "statistics/narrow_lanes.h"

namespace velquad::statistics {

namespace {

/// Sum of the products of neighbouring 16-bit lanes, added to 32-bit lanes.
__m128i addProducts(__m128i sums, __m128i a, __m128i b) {
    return _mm_add_epi32(sums, _mm_madd_epi16(a, b));
}

/// Elements of 8 bits as 0 ... 255. Lanes of products grow by at most 4 * 255^2 with each vector.
NarrowPairSums gather(const char* x, const char* y, std::size_t vectorCount, std::uint8_t flip) {
    static_assert(kNarrowBlock / kVectorBytes * 4 * 255 * 255 < (1U << 31));
    const __m128i zero = _mm_setzero_si128();
    const __m128i mask = _mm_set1_epi8(static_cast<char>(flip));
    __m128i sumX = zero;
    __m128i sumY = zero;
    __m128i sumXX = zero;
    __m128i sumYY = zero;
    __m128i sumXY = zero;
    for (std::size_t i = 0; i < vectorCount; ++i) {
        const __m128i u = _mm_xor_si128(load(x + i * kVectorBytes), mask);
        const __m128i v = _mm_xor_si128(load(y + i * kVectorBytes), mask);
        sumX = _mm_add_epi64(sumX, _mm_sad_epu8(u, zero));
        sumY = _mm_add_epi64(sumY, _mm_sad_epu8(v, zero));
        const __m128i uLow = _mm_unpacklo_epi8(u, zero);
        const __m128i vLow = _mm_unpacklo_epi8(v, zero);
        const __m128i uHigh = _mm_unpackhi_epi8(u, zero);
        const __m128i vHigh = _mm_unpackhi_epi8(v, zero);
        sumXX = addProducts(addProducts(sumXX, uLow, uLow), uHigh, uHigh);
        sumYY = addProducts(addProducts(sumYY, vLow, vLow), vHigh, vHigh);
        sumXY = addProducts(addProducts(sumXY, uLow, vLow), uHigh, vHigh);
    }
    return {sumOfLanes<std::int64_t>(sumX), sumOfLanes<std::int64_t>(sumY), sumOfLanes<std::int32_t>(sumXX),
            sumOfLanes<std::int32_t>(sumYY), sumOfLanes<std::int32_t>(sumXY)};
}

/// Sums of unsigned 32-bit lanes, modulo 2^32 and by their high halves.
struct Parts {
    __m128i low = _mm_setzero_si128();
    __m128i high = _mm_setzero_si128();

    void add(__m128i values) {
        low = _mm_add_epi32(low, values);
        high = _mm_add_epi32(high, _mm_srli_epi32(values, 16));
    }
    std::int64_t sum() const { return sumFromParts(low, high); }
};

/// Elements of 16 bits as -32768 ... 32767. Two squares add up to at most 2^31, which is right as an unsigned number.
/// Two products add up to no less than -2^31 + 2^16 and no more than 2^31; raised by 2^31 - 2^16 they are unsigned too.
NarrowPairSums gather(const char* x, const char* y, std::size_t vectorCount, std::uint16_t flip) {
    static_assert(kNarrowBlock / (kVectorBytes / 2) <= kMaxVectorsOfParts);
    constexpr std::int32_t kRaise = 0x7fff0000;
    const __m128i ones = _mm_set1_epi16(1);
    const __m128i mask = _mm_set1_epi16(static_cast<short>(flip));
    const __m128i raise = _mm_set1_epi32(kRaise);
    __m128i sumX = _mm_setzero_si128();
    __m128i sumY = sumX;
    Parts xx;
    Parts yy;
    Parts xy;
    for (std::size_t i = 0; i < vectorCount; ++i) {
        const __m128i u = _mm_xor_si128(load(x + i * kVectorBytes), mask);
        const __m128i v = _mm_xor_si128(load(y + i * kVectorBytes), mask);
        sumX = addProducts(sumX, u, ones);
        sumY = addProducts(sumY, v, ones);
        xx.add(_mm_madd_epi16(u, u));
        yy.add(_mm_madd_epi16(v, v));
        xy.add(_mm_add_epi32(_mm_madd_epi16(u, v), raise));
    }
    const auto raised =
        static_cast<std::int64_t>(vectorCount * LanesOf<std::int32_t>::kCount) * std::int64_t{kRaise};
    return {sumOfLanes<std::int32_t>(sumX), sumOfLanes<std::int32_t>(sumY), xx.sum(), yy.sum(),
            xy.sum() - raised};
}

}  // namespace

template <class T>
NarrowPairSums narrowPairSums(const void* x, const void* y, std::size_t count) {
    constexpr std::size_t kPerVector = kVectorBytes / sizeof(T);
    constexpr std::int64_t s = Move<T>::kShift;
    const std::size_t vectorCount = count / kPerVector;
    const std::size_t inVectors = vectorCount * kPerVector;
    const auto n = static_cast<std::int64_t>(inVectors);
    const NarrowPairSums moved =
        gather(static_cast<const char*>(x), static_cast<const char*>(y), vectorCount, Move<T>::kFlip);
    NarrowPairSums sums{moved.x + n * s, moved.y + n * s, moved.xx + 2 * s * moved.x + n * s * s,
                        moved.yy + 2 * s * moved.y + n * s * s,
                        moved.xy + s * (moved.x + moved.y) + n * s * s};
    for (std::size_t i = inVectors; i < count; ++i) {
        const std::int64_t a = elementAt<T>(x, i);
        const std::int64_t b = elementAt<T>(y, i);
        sums += {a, b, a * a, b * b, a * b};
    }
    return sums;
}

template NarrowPairSums narrowPairSums<std::int8_t>(const void*, const void*, std::size_t);
template NarrowPairSums narrowPairSums<std::uint8_t>(const void*, const void*, std::size_t);
template NarrowPairSums narrowPairSums<std::int16_t>(const void*, const void*, std::size_t);
template NarrowPairSums narrowPairSums<std::uint16_t>(const void*, const void*, std::size_t);

}  // namespace velquad::statistics
