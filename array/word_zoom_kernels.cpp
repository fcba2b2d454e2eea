// Inner loops of bilinear and cubic zoom of 16-bit values. Compiled for several instruction sets; see frame/kernels.h
// for what may be used here.
#include "array/word_zoom_kernels.h"

#include "array/element.h"
#include "array/rounding.h"
#include "array/zoom_cell.h"

#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512DQ__) && defined(__AVX512VL__)
#define VELQUAD_WORD_ZOOM 1
#if !defined(__clang__)
// The compiler's own header leaves operands undefined that an instruction does not use.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#else
#define VELQUAD_WORD_ZOOM 0
#endif

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

/// Multiples of 2^-7 have no fine part along x, and leave no more than the bits of a fraction across.
constexpr double kWeightUnit = 1.0 / (1 << (kWordBits / 2));

#if VELQUAD_WORD_ZOOM

constexpr int kOne = 1 << kWordBits;

/// A bilinear value in fixed point is above that in doubles by less than this, and below it by less than this and 1,
/// counted in 2^-14. Samples reach from -2^15 to 2^15 - 1. Along a row the weights err by 2^-29 at most, and by as much up
/// as down, since they add up to 1: samples that are 2^16 - 1 apart make less than 2 of it either way. The fine part is
/// cut to a whole number, which takes away less than 1. Across, the weights add up to 1, and each of 2 sums is rounded by
/// 1/2 at most. The doubles themselves err by less than 2^-18, which the missing step between samples makes up for.
/// Values occur that a smaller number would round to the wrong side, as those of `kCubicError` do.
constexpr int kBilinearError = 3;

/// The same for cubic values. Along a row 4 samples make 4, and less than 1 is cut away. Across, the weights that are
/// added make up 1.25 at most, those that are taken away 0.25, and 4 sums are rounded: the value is above by no more than
/// 1.25 * 4 + 0.25 * 5 + 2 = 8.25, and below by no more than 1.25 * 5 + 0.25 * 4 + 2 = 9.25.
constexpr int kCubicError = 9;

/// Taken away from the samples of unsigned types to make them signed. The weights add up to 1 in either direction, so
/// that the result is less by as much.
template <class Value>
constexpr int kCentre = Value(-1) < Value(0) ? 0 : 0x8000;

/// How values are interpolated.
struct Bilinear {
    static constexpr std::size_t kTaps = 2;
    static constexpr int kError = kBilinearError;

    VELQUAD_ALWAYS_INLINE static __m512d combined(const __m512d* p, const __m512d* w, __m512d start) {
        return _mm512_fmadd_pd(p[1], w[1], _mm512_fmadd_pd(p[0], w[0], start));
    }
    template <class Value>
    VELQUAD_ALWAYS_INLINE static double cell(const WordLines& lines, const ZoomColumns& columns,
                                             std::size_t i) {
        return bilinearCell<Value>(lines.source, lines.weight, columns, i);
    }
};

struct Cubic {
    static constexpr std::size_t kTaps = 4;
    static constexpr int kError = kCubicError;

    VELQUAD_ALWAYS_INLINE static __m512d combined(const __m512d* p, const __m512d* w, __m512d start) {
        const __m512d inner = _mm512_fmadd_pd(p[2], w[2], _mm512_fmadd_pd(p[1], w[1], start));
        return _mm512_fnmadd_pd(p[3], w[3], _mm512_fnmadd_pd(p[0], w[0], inner));
    }
    template <class Value>
    VELQUAD_ALWAYS_INLINE static double cell(const WordLines& lines, const ZoomColumns& columns,
                                             std::size_t i) {
        return cubicCell<Value>(lines.source, lines.weight, columns, i);
    }
};

/// The values of a source row from `begin` on as signed ones; anything behind its end.
template <class Value>
VELQUAD_ALWAYS_INLINE __m512i loadWindow(const void* sourceRow, std::int32_t begin, std::int32_t lastIndex) {
    const auto* from = static_cast<const unsigned char*>(sourceRow) + static_cast<std::ptrdiff_t>(begin) * 2;
    const std::int32_t rest = lastIndex - begin + 1;
    __m512i window = _mm512_setzero_si512();
    if (rest >= kWordWindow) {
        window = _mm512_loadu_si512(from);
    } else if (rest > 0) {
        window = _mm512_maskz_loadu_epi16(static_cast<__mmask32>((1U << rest) - 1), from);
    }
    if constexpr (kCentre<Value> == 0) return window;
    return _mm512_xor_si512(window, _mm512_set1_epi16(INT16_MIN));
}

/// The interpolation of a group along x in fixed point.
template <class Value, std::size_t kTaps, bool kIsWide>
VELQUAD_ALWAYS_INLINE __m512i alongGroup(const void* sourceRow, const void* ahead, const ZoomColumns& columns,
                                         const WordColumns& words, std::size_t group) {
    const std::size_t i = group * kWordGroup;
    const std::int32_t begin = words.begin[group];
    const auto* aheadOf = static_cast<const unsigned char*>(ahead) + static_cast<std::ptrdiff_t>(begin) * 2;
    __builtin_prefetch(aheadOf);
    const __m512i window = loadWindow<Value>(sourceRow, begin, columns.lastIndex);
    __m512i behind = window;
    if constexpr (kIsWide) {
        __builtin_prefetch(aheadOf + 2 * kWordWindow);
        behind = loadWindow<Value>(sourceRow, begin + kWordWindow, columns.lastIndex);
    }
    __m512i samples = _mm512_loadu_si512(words.samples + i);
    __m512i coarse = _mm512_setzero_si512();
    __m512i fine = coarse;
    for (std::size_t k = 0; k < kTaps / 2; ++k) {
        const __m512i two = kIsWide ? _mm512_permutex2var_epi16(window, samples, behind)
                                    : _mm512_permutexvar_epi16(samples, window);
        coarse = _mm512_add_epi32(coarse, _mm512_madd_epi16(two, _mm512_loadu_si512(words.coarse[k] + i)));
        fine = _mm512_add_epi32(fine, _mm512_madd_epi16(two, _mm512_loadu_si512(words.fine[k] + i)));
        samples = _mm512_add_epi32(samples, _mm512_set1_epi32(0x20002));
    }
    return _mm512_add_epi32(coarse, _mm512_srai_epi32(fine, kWordBits));
}

VELQUAD_ALWAYS_INLINE __m512d lowerAsDoubles(__m512i sum) {
    return _mm512_cvtepi32_pd(_mm512_castsi512_si256(sum));
}

VELQUAD_ALWAYS_INLINE __m512d upperAsDoubles(__m512i sum) {
    return _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(sum, 1));
}

template <class Value, std::size_t kTaps, bool kIsWide>
void alongWindows(const void* sourceRow, const void* ahead, const ZoomColumns& columns,
                  const WordColumns& words, double* result) {
    for (std::size_t group = 0; group < words.groups; ++group) {
        const __m512i sum = alongGroup<Value, kTaps, kIsWide>(sourceRow, ahead, columns, words, group);
        _mm512_storeu_pd(result + group * kWordGroup, lowerAsDoubles(sum));
        _mm512_storeu_pd(result + group * kWordGroup + 8, upperAsDoubles(sum));
    }
}

template <class Value, std::size_t kTaps>
void along(const void* sourceRow, const void* ahead, const ZoomColumns& columns, const WordColumns& words,
           double* result) {
    if (words.isWide) return alongWindows<Value, kTaps, true>(sourceRow, ahead, columns, words, result);
    alongWindows<Value, kTaps, false>(sourceRow, ahead, columns, words, result);
}

/// Computes the cells of a group that `mask` tells as they are defined.
template <class Value, class Kind>
void decideCells(std::uint32_t mask, const WordLines& lines, const ZoomColumns& columns, std::size_t i,
                 void* destination) {
    for (; mask != 0; mask &= mask - 1) {
        const std::size_t column = i + static_cast<std::size_t>(__builtin_ctz(mask));
        const std::int32_t rounded = roundHalfAway(Kind::template cell<Value>(lines, columns, column));
        const std::int32_t lowest = kCentre<Value> - 0x8000;
        storeElement(destination, column, static_cast<Value>(limited(rounded, lowest, lowest + 0xFFFF)));
    }
}

/// Values that 0.5 has been added to, in fixed point, as integers of their type.
template <class Value>
VELQUAD_ALWAYS_INLINE __m256i roundedDown(__m512i raised) {
    if constexpr (kCentre<Value> != 0) {
        const __m512i rounded = _mm512_srai_epi32(raised, kWordBits);
        return _mm512_cvtusepi32_epi16(_mm512_max_epi32(rounded, _mm512_setzero_si512()));
    } else {
        // Below zero, what lies right between two integers goes to the lower one.
        const __mmask16 isNegative = _mm512_cmplt_epi32_mask(raised, _mm512_set1_epi32(kOne / 2));
        raised = _mm512_mask_sub_epi32(raised, isNegative, raised, _mm512_set1_epi32(1));
        return _mm512_cvtsepi32_epi16(_mm512_srai_epi32(raised, kWordBits));
    }
}

/// Interpolates across and stores the values, a group at a time.
template <class Value, class Kind>
struct Across {
    const WordLines& lines;
    const ZoomColumns& columns;
    int error;
    __m512d w[Kind::kTaps];

    VELQUAD_ALWAYS_INLINE Across(const WordLines& wordLines, const ZoomColumns& zoomColumns,
                                 const WordColumns& words)
        : lines(wordLines),
          columns(zoomColumns),
          error(wordLines.isShort && words.isShort ? 0 : Kind::kError) {
        for (std::size_t k = 0; k < Kind::kTaps; ++k)
            w[k] = _mm512_set1_pd(lines.weight[k]);
    }

    /// `lower` and `upper`: the parts of the rows along x, of the first eight columns from `i` on and the next eight.
    VELQUAD_ALWAYS_INLINE void write(std::size_t i, const __m512d* lower, const __m512d* upper,
                                     void* destination) const {
        // Added to a double, this leaves a whole number, the last 32 bits of which are the last bits of the double.
        constexpr double kToBits = 0x1.8p52;
        const __m512d start = _mm512_set1_pd(kToBits + (kCentre<Value> + 0.5) * kOne);
        const __m512i lowHalves = _mm512_set_epi32(30, 28, 26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
        const __m512i raised =
            _mm512_permutex2var_epi32(_mm512_castpd_si512(Kind::combined(lower, w, start)), lowHalves,
                                      _mm512_castpd_si512(Kind::combined(upper, w, start)));
        const std::size_t rest = columns.count - i;
        const auto valid = static_cast<__mmask16>(rest >= kWordGroup ? 0xFFFFU : (1U << rest) - 1);
        auto* to = static_cast<unsigned char*>(destination) + i * sizeof(Value);
        _mm256_mask_storeu_epi16(to, valid, roundedDown<Value>(raised));
        // The way from `error` below the nearest integer, where the result changes. What lies `error` above is decided.
        const __m512i fromBorder =
            _mm512_and_si512(_mm512_add_epi32(raised, _mm512_set1_epi32(error)), _mm512_set1_epi32(kOne - 1));
        const __mmask16 isOpen =
            _mm512_mask_cmplt_epi32_mask(valid, fromBorder, _mm512_set1_epi32(2 * error));
        if (isOpen != 0) decideCells<Value, Kind>(isOpen, lines, columns, i, destination);
    }
};

template <class Value, class Kind>
void across(const WordLines& lines, const ZoomColumns& columns, const WordColumns& words, void* destination) {
    const Across<Value, Kind> across(lines, columns, words);
    for (std::size_t i = 0; i < columns.count; i += kWordGroup) {
        __m512d lower[Kind::kTaps];
        __m512d upper[Kind::kTaps];
        for (std::size_t k = 0; k < Kind::kTaps; ++k) {
            lower[k] = _mm512_loadu_pd(lines.along[k] + i);
            upper[k] = _mm512_loadu_pd(lines.along[k] + i + 8);
        }
        across.write(i, lower, upper, destination);
    }
}

template <class Value, bool kIsWide>
void directWindows(const WordLines& lines, const ZoomColumns& columns, const WordColumns& words,
                   void* destination) {
    const Across<Value, Bilinear> across(lines, columns, words);
    for (std::size_t group = 0; group < words.groups; ++group) {
        __m512d lower[Bilinear::kTaps];
        __m512d upper[Bilinear::kTaps];
        for (std::size_t k = 0; k < Bilinear::kTaps; ++k) {
            const __m512i sum = alongGroup<Value, Bilinear::kTaps, kIsWide>(lines.source[k], lines.ahead[k],
                                                                            columns, words, group);
            lower[k] = lowerAsDoubles(sum);
            upper[k] = upperAsDoubles(sum);
        }
        across.write(group * kWordGroup, lower, upper, destination);
    }
}

/// Both parts of a bilinear interpolation at once.
template <class Value>
void direct(const WordLines& lines, const ZoomColumns& columns, const WordColumns& words, void* destination) {
    if (words.isWide) return directWindows<Value, true>(lines, columns, words, destination);
    directWindows<Value, false>(lines, columns, words, destination);
}

template <class Value>
constexpr WordZoom kZoomOf = {{2, kWeightUnit, along<Value, 2>, across<Value, Bilinear>},
                              {2, kWeightUnit, nullptr, direct<Value>},
                              {4, kWeightUnit, along<Value, 4>, across<Value, Cubic>}};

constexpr WordZoom kSigned = kZoomOf<std::int16_t>;
constexpr WordZoom kUnsigned = kZoomOf<std::uint16_t>;

#else

constexpr WordZoom kSigned = {{2, kWeightUnit, nullptr, nullptr},
                              {2, kWeightUnit, nullptr, nullptr},
                              {4, kWeightUnit, nullptr, nullptr}};
constexpr WordZoom kUnsigned = kSigned;

#endif

}  // namespace

extern const WordZoomKernels kWordZoomKernels;
const WordZoomKernels kWordZoomKernels = {kSigned, kUnsigned};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
