// Inner loops of bilinear and cubic zoom of bytes. Compiled for several instruction sets; see frame/kernels.h for what
// may be used here.
#include "array/byte_zoom_kernels.h"

#include "array/rounding.h"
#include "array/zoom_cell.h"

#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512DQ__) && defined(__AVX512VL__)
#define VELQUAD_BYTE_ZOOM 1
#if !defined(__clang__)
// The compiler's own header leaves operands undefined that an instruction does not use.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#else
#define VELQUAD_BYTE_ZOOM 0
#endif

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

/// Multiples of 2^-8 and bytes make products of 24 bits at most in both directions; those of 2^-6 leave room for what
/// cubic weights overshoot.
constexpr double kBilinearUnit = 1.0 / 256;
constexpr double kCubicUnit = 1.0 / 64;

#if VELQUAD_BYTE_ZOOM

/// No bilinear value in floats is as far from that in doubles as this, counted in 2^-17, by which a rounding below 256
/// errs at most. The weights of a direction add up to 1. Each errs by no more than 2^-25 when it becomes a float, and so
/// do both together: a whole multiple of the finer of their two grids, which exceeds 2^-25 by half a step of it at most.
/// With samples of up to 255 this makes less than 1, product and sum make 1 each: less than 3 along a row, and as much
/// again across, where the weights add up to 1. Errors of 5.8 occur. The doubles themselves err by less than 2^-20.
constexpr float kBilinearError = 6 * 0x1p-17F;

/// The same for cubic values, which stay below 512, counted in 2^-16, by which a rounding errs at most there. The inner
/// weights err by no more than 2^-25, the outer ones, which are below 1/4, by 2^-27. With samples of up to 255 this makes
/// less than 1.25 along a row, the first product, below 256, makes 0.5, the three sums make 1 each: less than 4.75.
/// Across, the sizes of the weights add up to 1.5 at most: 7.125 from the rows. Their values of up to 1.25 * 255 make
/// less than 1.6 with the errors of the weights, and 4 sums are rounded: less than 12.75. Errors of 9.3 occur.
constexpr float kCubicError = 13 * 0x1p-16F;

/// A result as a byte.
VELQUAD_ALWAYS_INLINE std::uint8_t roundedByte(double v) {
    return static_cast<std::uint8_t>(limited(roundHalfAway(v), 0, 255));
}

/// How values are interpolated: in floats with whatever order is fast, and one cell as it is defined.
struct Bilinear {
    static constexpr std::size_t kTaps = 2;
    static constexpr float kError = kBilinearError;

    VELQUAD_ALWAYS_INLINE static __m512 combined(const __m512* p, const __m512* w, __m512 start) {
        return _mm512_fmadd_ps(p[1], w[1], _mm512_fmadd_ps(p[0], w[0], start));
    }
    VELQUAD_ALWAYS_INLINE static double cell(const ByteLines& lines, const ZoomColumns& columns,
                                             std::size_t i) {
        return bilinearCell<std::uint8_t>(lines.source, lines.weight, columns, i);
    }
};

struct Cubic {
    static constexpr std::size_t kTaps = 4;
    static constexpr float kError = kCubicError;

    VELQUAD_ALWAYS_INLINE static __m512 combined(const __m512* p, const __m512* w, __m512 start) {
        const __m512 inner = _mm512_fmadd_ps(p[2], w[2], _mm512_fmadd_ps(p[1], w[1], start));
        return _mm512_fnmadd_ps(p[3], w[3], _mm512_fnmadd_ps(p[0], w[0], inner));
    }
    VELQUAD_ALWAYS_INLINE static double cell(const ByteLines& lines, const ZoomColumns& columns,
                                             std::size_t i) {
        return cubicCell<std::uint8_t>(lines.source, lines.weight, columns, i);
    }
};

/// The bytes of a source row from `begin` on, zeros behind its end.
VELQUAD_ALWAYS_INLINE __m512i loadWindow(const void* sourceRow, std::int32_t begin, std::int32_t lastIndex) {
    const auto* from = static_cast<const unsigned char*>(sourceRow) + begin;
    const std::int32_t rest = lastIndex - begin + 1;
    if (rest >= kByteWindow) return _mm512_loadu_si512(from);
    return _mm512_maskz_loadu_epi8((std::uint64_t{1} << rest) - 1, from);
}

/// The samples `distance` values behind the first one of each column.
VELQUAD_ALWAYS_INLINE __m512 samplesAt(__m512i window, __m512i words, __m512i shift, int distance) {
    // Another word for every two bytes; an odd distance leaves the second byte.
    const __m512i which = _mm512_add_epi32(words, _mm512_set1_epi32(distance / 2 * 0x10001));
    __m512i found = _mm512_srlv_epi32(_mm512_permutexvar_epi16(which, window), shift);
    if (distance % 2 != 0) found = _mm512_srli_epi32(found, 8);
    return _mm512_cvtepi32_ps(_mm512_and_si512(found, _mm512_set1_epi32(255)));
}

template <class Kind, int kStep>
void alongWithStep(const void* sourceRow, const void* ahead, const ZoomColumns& columns,
                   const ByteColumns& bytes, float* result) {
    for (std::size_t group = 0; group < bytes.groups; ++group) {
        const std::size_t i = group * kByteGroup;
        __builtin_prefetch(static_cast<const unsigned char*>(ahead) + bytes.begin[group]);
        const __m512i window = loadWindow(sourceRow, bytes.begin[group], columns.lastIndex);
        const __m512i words = _mm512_loadu_si512(bytes.words + i);
        const __m512i shift = _mm512_loadu_si512(bytes.shift + i);
        __m512 p[Kind::kTaps];
        __m512 w[Kind::kTaps];
        for (std::size_t k = 0; k < Kind::kTaps; ++k) {
            p[k] = samplesAt(window, words, shift, static_cast<int>(k) * kStep);
            w[k] = _mm512_loadu_ps(bytes.weight[k] + i);
        }
        _mm512_storeu_ps(result + i, Kind::combined(p, w, _mm512_setzero_ps()));
    }
}

template <class Kind>
void along(const void* sourceRow, const void* ahead, const ZoomColumns& columns, const ByteColumns& bytes,
           float* result) {
    if (columns.step == 1) return alongWithStep<Kind, 1>(sourceRow, ahead, columns, bytes, result);
    if (columns.step == 3) return alongWithStep<Kind, 3>(sourceRow, ahead, columns, bytes, result);
    alongWithStep<Kind, 4>(sourceRow, ahead, columns, bytes, result);
}

/// Computes the cells of a group that `mask` tells as they are defined.
template <class Kind>
void decideCells(std::uint32_t mask, const ByteLines& lines, const ZoomColumns& columns, std::size_t i,
                 unsigned char* to) {
    for (; mask != 0; mask &= mask - 1) {
        const std::size_t column = i + static_cast<std::size_t>(__builtin_ctz(mask));
        to[column] = roundedByte(Kind::cell(lines, columns, column));
    }
}

template <class Kind>
void across(const ByteLines& lines, const ZoomColumns& columns, const ByteColumns& bytes, void* destination) {
    auto* to = static_cast<unsigned char*>(destination);
    __m512 w[Kind::kTaps];
    for (std::size_t k = 0; k < Kind::kTaps; ++k)
        w[k] = _mm512_set1_ps(static_cast<float>(lines.weight[k]));
    const __m512 error = _mm512_set1_ps(lines.isShort && bytes.isShort ? 0.0F : Kind::kError);
    for (std::size_t i = 0; i < columns.count; i += kByteGroup) {
        __m512 p[Kind::kTaps];
        for (std::size_t k = 0; k < Kind::kTaps; ++k)
            p[k] = _mm512_loadu_ps(lines.along[k] + i);
        const __m512 raised = Kind::combined(p, w, _mm512_set1_ps(0.5F));
        const std::size_t rest = columns.count - i;
        const auto valid = static_cast<__mmask16>(rest >= kByteGroup ? 0xFFFFU : (1U << rest) - 1);
        const __m512i rounded = _mm512_max_epi32(_mm512_cvttps_epi32(raised), _mm512_setzero_si512());
        _mm_mask_storeu_epi8(to + i, valid, _mm512_cvtusepi32_epi8(rounded));
        // The way to the nearest integer, where the byte changes.
        const __m512 way = _mm512_abs_ps(_mm512_reduce_ps(raised, 0));
        const __mmask16 isOpen = _mm512_mask_cmp_ps_mask(valid, way, error, _CMP_LT_OQ);
        if (isOpen != 0) decideCells<Kind>(isOpen, lines, columns, i, to);
    }
}

constexpr ByteInterpolation kBilinear = {2, kBilinearUnit, along<Bilinear>, across<Bilinear>};
constexpr ByteInterpolation kCubic = {4, kCubicUnit, along<Cubic>, across<Cubic>};

#else

constexpr ByteInterpolation kBilinear = {2, kBilinearUnit, nullptr, nullptr};
constexpr ByteInterpolation kCubic = {4, kCubicUnit, nullptr, nullptr};

#endif

}  // namespace

extern const ByteZoomKernels kByteZoomKernels;
const ByteZoomKernels kByteZoomKernels = {kBilinear, kCubic};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
