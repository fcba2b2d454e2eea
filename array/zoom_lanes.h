// The neighbours of eight columns at a time, as vectors of doubles, for processors with 512-bit vectors. Only for kernel
// files; everything here is local to the file that includes it.
//
// Lanes are made from where the columns lie, which the rows of a strip share:
//
//   GatheredLanes  each column's neighbours are read as one word
//   WindowLanes    columns that lie close together: the samples around them are read at once and permuted, which a
//                  processor does in a fraction of the time
//
// `pair` gives the samples at a position and at the next one, `quad` also the one before and the one after those. None
// of them reads beyond the row while `isWithin` holds.
#ifndef VELQUAD_ARRAY_ZOOM_LANES_H
#define VELQUAD_ARRAY_ZOOM_LANES_H

#if !defined(__clang__)
// The compiler's own header leaves operands undefined that an instruction does not use.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "array/prefetch.h"
#include "array/zoom_kernels.h"
#include "frame/inline.h"

/// For the body of a loop that is given as a lambda.
#define VELQUAD_INLINE_LAMBDA __attribute__((always_inline))

namespace velquad::array {

namespace {

inline constexpr std::size_t kLaneCount = 8;

VELQUAD_ALWAYS_INLINE __m256i loadIndex(const std::int32_t* index) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i_u*>(index));
}

VELQUAD_ALWAYS_INLINE __m512d byteOf(__m256i words, int shift) {
    const __m256i bytes =
        _mm256_and_si256(_mm256_srl_epi32(words, _mm_cvtsi32_si128(shift)), _mm256_set1_epi32(255));
    return _mm512_cvtepi32_pd(bytes);
}

template <class Value>
struct GatheredLanes;

/// A word of four bytes reaches two bytes beyond a pair of the step 1, and no further than a pair of the step 3.
template <>
struct GatheredLanes<std::uint8_t> {
    __m256i index;
    int step;

    VELQUAD_ALWAYS_INLINE GatheredLanes(const ZoomColumns& columns, std::size_t i)
        : index(loadIndex(columns.index + i)), step(columns.step) {}
    VELQUAD_ALWAYS_INLINE static bool isWithin(const ZoomColumns& columns, std::size_t i) {
        return columns.step != 1 || columns.index[i + kLaneCount - 1] <= columns.lastIndex - 3;
    }
    VELQUAD_ALWAYS_INLINE void pair(const unsigned char* row, __m512d* p) const {
        const __m256i words =
            _mm256_i32gather_epi32(static_cast<const int*>(static_cast<const void*>(row)), index, 1);
        p[0] = byteOf(words, 0);
        p[1] = byteOf(words, 8 * step);
    }
    VELQUAD_ALWAYS_INLINE void quad(const unsigned char* row, __m512d* p) const {
        if (step == 1) {
            const __m256i words =
                _mm256_i32gather_epi32(static_cast<const int*>(static_cast<const void*>(row - 1)), index, 1);
            for (int i = 0; i < 4; ++i)
                p[i] = byteOf(words, 8 * i);
        } else {
            pair(row - step, p);
            pair(row + step, p + 2);
        }
    }
};

template <>
struct GatheredLanes<std::uint16_t> {
    __m256i index;

    VELQUAD_ALWAYS_INLINE GatheredLanes(const ZoomColumns& columns, std::size_t i)
        : index(loadIndex(columns.index + i)) {}
    VELQUAD_ALWAYS_INLINE static bool isWithin(const ZoomColumns& /*columns*/, std::size_t /*i*/) {
        return true;
    }
    VELQUAD_ALWAYS_INLINE void pair(const unsigned char* row, __m512d* p) const {
        const __m256i words =
            _mm256_i32gather_epi32(static_cast<const int*>(static_cast<const void*>(row)), index, 2);
        p[0] = _mm512_cvtepi32_pd(_mm256_and_si256(words, _mm256_set1_epi32(0xFFFF)));
        p[1] = _mm512_cvtepi32_pd(_mm256_srli_epi32(words, 16));
    }
    VELQUAD_ALWAYS_INLINE void quad(const unsigned char* row, __m512d* p) const {
        pair(row - 2, p);
        pair(row + 2, p + 2);
    }
};

template <>
struct GatheredLanes<float> {
    __m256i index;

    VELQUAD_ALWAYS_INLINE GatheredLanes(const ZoomColumns& columns, std::size_t i)
        : index(loadIndex(columns.index + i)) {}
    VELQUAD_ALWAYS_INLINE static bool isWithin(const ZoomColumns& /*columns*/, std::size_t /*i*/) {
        return true;
    }
    VELQUAD_ALWAYS_INLINE void pair(const unsigned char* row, __m512d* p) const {
        // A macro of GCC's own without optimisation, which converts its mask.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wsign-conversion"
        const __m512i words = _mm512_i32gather_epi64(index, row, 4);
#pragma GCC diagnostic pop
        p[0] = _mm512_cvtps_pd(_mm256_castsi256_ps(_mm512_cvtepi64_epi32(words)));
        p[1] = _mm512_cvtps_pd(_mm256_castsi256_ps(_mm512_cvtepi64_epi32(_mm512_srli_epi64(words, 32))));
    }
    VELQUAD_ALWAYS_INLINE void quad(const unsigned char* row, __m512d* p) const {
        pair(row - 4, p);
        pair(row + 4, p + 2);
    }
};

/// Doubles are read two or four at a time, column by column, and transposed.
template <>
struct GatheredLanes<double> {
    const std::int32_t* index;

    VELQUAD_ALWAYS_INLINE GatheredLanes(const ZoomColumns& columns, std::size_t i)
        : index(columns.index + i) {}
    VELQUAD_ALWAYS_INLINE static bool isWithin(const ZoomColumns& /*columns*/, std::size_t /*i*/) {
        return true;
    }

    /// Two doubles of the columns `lane`, `lane` + 2, `lane` + 4, `lane` + 6.
    VELQUAD_ALWAYS_INLINE __m512d twoOfEachOther(const unsigned char* row, std::size_t lane) const {
        __m512d v = _mm512_castpd128_pd512(twoAt(row, lane));
        v = _mm512_insertf64x2(v, twoAt(row, lane + 2), 1);
        v = _mm512_insertf64x2(v, twoAt(row, lane + 4), 2);
        return _mm512_insertf64x2(v, twoAt(row, lane + 6), 3);
    }
    VELQUAD_ALWAYS_INLINE __m128d twoAt(const unsigned char* row, std::size_t lane) const {
        const auto* at = row + static_cast<std::ptrdiff_t>(index[lane]) * 8;
        return _mm_loadu_pd(static_cast<const double*>(static_cast<const void*>(at)));
    }
    VELQUAD_ALWAYS_INLINE void pair(const unsigned char* row, __m512d* p) const {
        const __m512d even = twoOfEachOther(row, 0);
        const __m512d odd = twoOfEachOther(row, 1);
        p[0] = _mm512_unpacklo_pd(even, odd);
        p[1] = _mm512_unpackhi_pd(even, odd);
    }
    VELQUAD_ALWAYS_INLINE void quad(const unsigned char* row, __m512d* p) const {
        pair(row - 8, p);
        pair(row + 8, p + 2);
    }
};

/// Samples that a window holds, and that a window for four neighbours of eight columns may span.
inline constexpr std::int32_t kWindow = 32;

template <class Value>
inline constexpr bool kHasWindow = false;
template <>
inline constexpr bool kHasWindow<std::uint16_t> = true;
template <>
inline constexpr bool kHasWindow<float> = true;

template <class Value>
struct WindowLanes {
    std::size_t first;
    /// The columns (low half) and those behind them (high half), counted from the first column.
    __m512i which;

    VELQUAD_ALWAYS_INLINE WindowLanes(const ZoomColumns& columns, std::size_t i)
        : first(static_cast<std::size_t>(columns.index[i])) {
        const __m512i behind = _mm512_set_epi32(1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0);
        const __m512i twice = _mm512_broadcast_i64x4(loadIndex(columns.index + i));
        which = _mm512_add_epi32(_mm512_sub_epi32(twice, _mm512_set1_epi32(columns.index[i])), behind);
    }
    VELQUAD_ALWAYS_INLINE static bool isWithin(const ZoomColumns& columns, std::size_t i) {
        return columns.index[i] <= columns.lastIndex - (kWindow - 1);
    }
    VELQUAD_ALWAYS_INLINE void pair(const unsigned char* row, __m512d* p) const {
        twoOf(row + first * sizeof(Value), which, p);
    }
    /// The window begins one sample earlier.
    VELQUAD_ALWAYS_INLINE void quad(const unsigned char* row, __m512d* p) const {
        const unsigned char* window = row + (first - 1) * sizeof(Value);
        twoOf(window, which, p);
        twoOf(window, _mm512_add_epi32(which, _mm512_set1_epi32(2)), p + 2);
    }

  private:
    VELQUAD_ALWAYS_INLINE static void twoOf(const unsigned char* window, __m512i samples, __m512d* p) {
        if constexpr (sizeof(Value) == 2) {
            constexpr __mmask32 kLowWords = 0x55555555U;
            const __m512i words =
                _mm512_maskz_permutexvar_epi16(kLowWords, samples, _mm512_loadu_si512(window));
            p[0] = _mm512_cvtepi32_pd(_mm512_castsi512_si256(words));
            p[1] = _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(words, 1));
        } else {
            const __m512 found =
                _mm512_permutex2var_ps(_mm512_loadu_ps(window), samples, _mm512_loadu_ps(window + 64));
            p[0] = _mm512_cvtps_pd(_mm512_castps512_ps256(found));
            p[1] = _mm512_cvtps_pd(_mm512_extractf32x8_ps(found, 1));
        }
    }
};

/// Asks for what eight columns need of a row.
template <class Value>
VELQUAD_ALWAYS_INLINE void prefetchEight(const unsigned char* row, const ZoomColumns& columns,
                                         std::size_t i) {
    prefetchRange(row + static_cast<std::size_t>(columns.index[i]) * sizeof(Value),
                  (static_cast<std::size_t>(columns.spanOfEight) + 1) * sizeof(Value));
}

/// The end of the whole groups of eight columns, from `begin` on, that lanes may work on.
template <class Lanes>
VELQUAD_ALWAYS_INLINE std::size_t endOfLanes(const ZoomColumns& columns, std::size_t begin) {
    std::size_t end = begin + (columns.count - begin) / kLaneCount * kLaneCount;
    while (end > begin && !Lanes::isWithin(columns, end - kLaneCount))
        end -= kLaneCount;
    return end;
}

/// Calls `work(lanes, i)` for all groups of eight columns from `begin` on. @return the first column that is left.
template <class Lanes, class Work>
VELQUAD_ALWAYS_INLINE std::size_t forEachLanesOf(const ZoomColumns& columns, std::size_t begin, Work work) {
    const std::size_t end = endOfLanes<Lanes>(columns, begin);
    for (std::size_t i = begin; i < end; i += kLaneCount)
        work(Lanes(columns, i), i);
    return end;
}

/// The same with the lanes that suit the columns.
template <class Value, class Work>
VELQUAD_ALWAYS_INLINE std::size_t forEachLanes(const ZoomColumns& columns, std::size_t begin, Work work) {
    if constexpr (kHasWindow<Value>) {
        if (columns.spanOfEight + 4 <= kWindow)
            begin = forEachLanesOf<WindowLanes<Value>>(columns, begin, work);
    }
    return forEachLanesOf<GatheredLanes<Value>>(columns, begin, work);
}

}  // namespace

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ZOOM_LANES_H
