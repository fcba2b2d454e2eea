// Runs of edges that lie clearly beside a ray. Compiled for several instruction sets; see frame/kernels.h
// for what may be used here.
//
// Points are x and y in turn. Of two vectors of them one is made of every x and one of every y, or of the shorter forms
// of both, in an order that costs one instruction each; a run is judged as a whole, so the order does not matter.
#include "polygon/edge_side_kernels.h"

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "frame/inline.h"

namespace velquad::polygon::VELQUAD_KERNEL_LEVEL {

namespace {

#if defined(__AVX512BW__)
constexpr std::size_t kBytes = 64;
#elif defined(__AVX2__)
constexpr std::size_t kBytes = 32;
#else
constexpr std::size_t kBytes = 16;
#endif
constexpr std::size_t kLanes = kBytes / sizeof(double);
using Lanes [[gnu::vector_size(kBytes)]] = double;
/// The result of a comparison of doubles: all bits of a lane, or none.
using Mask [[gnu::vector_size(kBytes)]] = std::int64_t;
using Words [[gnu::vector_size(kBytes)]] = std::uint32_t;
using SignedWords [[gnu::vector_size(kBytes)]] = std::int32_t;

template <class To, class From>
VELQUAD_ALWAYS_INLINE To bitsAs(From from) {
    static_assert(sizeof(To) == sizeof(From));
    To to;
    __builtin_memcpy(&to, &from, sizeof to);
    return to;
}

template <class Vector>
VELQUAD_ALWAYS_INLINE Vector load(const void* at) {
    Vector vector;
    __builtin_memcpy(&vector, at, sizeof vector);
    return vector;
}

#if defined(__AVX512BW__)
template <class Vector>
VELQUAD_ALWAYS_INLINE bool isZero(Vector vector) {
    const auto bits = bitsAs<__m512i>(vector);
    return _mm512_test_epi32_mask(bits, bits) == 0;
}
/// The low halves of words that fit 16 bits.
VELQUAD_ALWAYS_INLINE __m512i halves(Words a, Words b) {
    return _mm512_packs_epi32(bitsAs<__m512i>(a), bitsAs<__m512i>(b));
}
VELQUAD_ALWAYS_INLINE SignedWords sumsOfProducts(__m512i a, Words b) {
    return bitsAs<SignedWords>(_mm512_madd_epi16(a, bitsAs<__m512i>(b)));
}
VELQUAD_ALWAYS_INLINE Lanes everyX(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);
}
VELQUAD_ALWAYS_INLINE Lanes everyY(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
}
#elif defined(__AVX2__)
template <class Vector>
VELQUAD_ALWAYS_INLINE bool isZero(Vector vector) {
    const auto bits = bitsAs<__m256i>(vector);
    return _mm256_testz_si256(bits, bits) != 0;
}
/// The low halves of words that fit 16 bits.
VELQUAD_ALWAYS_INLINE __m256i halves(Words a, Words b) {
    return _mm256_packs_epi32(bitsAs<__m256i>(a), bitsAs<__m256i>(b));
}
VELQUAD_ALWAYS_INLINE SignedWords sumsOfProducts(__m256i a, Words b) {
    return bitsAs<SignedWords>(_mm256_madd_epi16(a, bitsAs<__m256i>(b)));
}
VELQUAD_ALWAYS_INLINE Lanes everyX(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 0, 4, 2, 6);
}
VELQUAD_ALWAYS_INLINE Lanes everyY(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 1, 5, 3, 7);
}
#else
template <class Vector>
VELQUAD_ALWAYS_INLINE bool isZero(Vector vector) {
    const __m128i isNull = _mm_cmpeq_epi32(bitsAs<__m128i>(vector), _mm_setzero_si128());
    return _mm_movemask_epi8(isNull) == 0xFFFF;
}
/// The low halves of words that fit 16 bits.
VELQUAD_ALWAYS_INLINE __m128i halves(Words a, Words b) {
    return _mm_packs_epi32(bitsAs<__m128i>(a), bitsAs<__m128i>(b));
}
VELQUAD_ALWAYS_INLINE SignedWords sumsOfProducts(__m128i a, Words b) {
    return bitsAs<SignedWords>(_mm_madd_epi16(a, bitsAs<__m128i>(b)));
}
VELQUAD_ALWAYS_INLINE Lanes everyX(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 0, 2);
}
VELQUAD_ALWAYS_INLINE Lanes everyY(Lanes a, Lanes b) {
    return __builtin_shufflevector(a, b, 1, 3);
}
#endif

/// What a run of integer points is compared with, in every lane that it is needed in.
struct Side2L {
    Words test;
    Words factors;
    SignedWords above;

    VELQUAD_ALWAYS_INLINE explicit Side2L(const ClearSide2L& side) : above(SignedWords{} + side.above) {
        const auto factorX = std::uint32_t{static_cast<std::uint16_t>(side.factorX)};
        const auto factorY = std::uint32_t{static_cast<std::uint16_t>(side.factorY)};
        factors = Words{} + (factorX | factorY << 16);
        for (std::size_t lane = 0; lane < kBytes / sizeof(std::uint32_t); lane += 2) {
            test[lane] = static_cast<std::uint32_t>(side.testX);
            test[lane + 1] = static_cast<std::uint32_t>(side.testY);
        }
    }
};

/// Integer points that are judged together.
constexpr DWORD kRun2L = 32;
constexpr DWORD kPointsPerVector = kBytes / sizeof(tagPOINT);
static_assert(sizeof(tagPOINT) == 8);

VELQUAD_ALWAYS_INLINE bool isRunClear2L(const tagPOINT* points, const Side2L& side) {
    constexpr std::uint32_t kHalf = 32768;
    Words excess{};
    SignedWords isClear = ~SignedWords{};
    for (DWORD i = 0; i < kRun2L; i += 2 * kPointsPerVector) {
        const Words low = load<Words>(points + i) - side.test;
        const Words high = load<Words>(points + i + kPointsPerVector) - side.test;
        // What fits 16 bits has no bits beyond them when moved up by half their range.
        excess |= (low + kHalf) | (high + kHalf);
        isClear &= sumsOfProducts(halves(low, high), side.factors) > side.above;
    }
    return isZero((excess >> 16) | bitsAs<Words>(~isClear));
}

DWORD countClearPoints(const tagPOINT* points, DWORD count, const ClearSide2L& side) {
    const Side2L lanes(side);
    DWORD clear = 0;
    while (count - clear >= kRun2L && isRunClear2L(points + clear, lanes))
        clear += kRun2L;
    return clear;
}

/// Edges of doubles that are judged together.
constexpr DWORD kRun = 16;

VELQUAD_ALWAYS_INLINE Lanes magnitude(Lanes value) {
    constexpr std::int64_t kAllButSign = 0x7FFFFFFFFFFFFFFF;
    return bitsAs<Lanes>(bitsAs<Mask>(value) & kAllButSign);
}

/// Not-a-numbers are not clear: the side of one is none.
VELQUAD_ALWAYS_INLINE bool isRunClear(const tagPOINT2D* points, const ClearSide& side) {
    Mask isClear = ~Mask{};
    for (DWORD i = 0; i < kRun; i += kLanes) {
        const Lanes a = load<Lanes>(points + i);
        const Lanes b = load<Lanes>(points + i + kLanes / 2);
        const Lanes nextA = load<Lanes>(points + i + 1);
        const Lanes nextB = load<Lanes>(points + i + kLanes / 2 + 1);
        const Lanes width = everyX(nextA, nextB) - everyX(a, b);
        isClear &= everyX(a, b) * side.factorX - everyY(a, b) * side.factorY >= side.least;
        isClear &= (magnitude(a) <= side.reach) & (magnitude(b) <= side.reach);
        isClear &= (width == 0.0) | (magnitude(width) >= side.leastWidth);
    }
    return isZero(~isClear);
}

DWORD countClearEdges(const tagPOINT2D* points, DWORD count, const ClearSide& side) {
    DWORD edges = 0;
    while (count - edges >= kRun && isRunClear(points + edges, side))
        edges += kRun;
    return edges;
}

}  // namespace

extern const EdgeSideKernels kEdgeSideKernels;
const EdgeSideKernels kEdgeSideKernels = {countClearPoints, countClearEdges};

}  // namespace velquad::polygon::VELQUAD_KERNEL_LEVEL
