// Inner loops of zoom. Compiled for several instruction sets; see frame/kernels.h for what may be used here.
#include "array/zoom_kernels.h"

#include "array/prefetch.h"
#include "array/rounding.h"

#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512DQ__) && defined(__AVX512VL__)
#define VELQUAD_ZOOM_GATHERS 1
#include "array/zoom_lanes.h"
#else
#define VELQUAD_ZOOM_GATHERS 0
#endif

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

/// The result of an interpolation as an element. `kIsWithin`: the result lies between the samples, up to rounding.
template <class ElementType, bool kIsWithin>
VELQUAD_ALWAYS_INLINE typename ElementType::Value stored(double v) {
    using Value = typename ElementType::Value;
    constexpr unsigned int kType = ElementType::kType;
    if constexpr (kType == MAT_ARRAY_DOUBLE) {
        return v;
    } else if constexpr (kType == MAT_ARRAY_FLOAT) {
        return static_cast<float>(limited(v, -kLargestFloat, kLargestFloat));
    } else if constexpr (kType == MAT_ARRAY_INT32) {
        if (v > 2147483646.45) return INT32_MAX;
        if (-2147483647.45 > v) return INT32_MIN;
        return roundHalfAway(v);
    } else if constexpr (kType == MAT_ARRAY_UINT32) {
        if (v > 4294967294.45) return UINT32_MAX;
        if (0.55 > v) return 0;
        // Kept: truncation to signed 32 bits, so that 2147483647.5 and above store 0x80000000.
        return static_cast<Value>(roundHalfAway(v));
    } else {
        // The weights never make more than nine times the largest 16-bit value, so the truncation stays within
        // 32 bits.
        constexpr bool kIsSigned = Value(-1) < Value(0);
        constexpr int kLowest = kIsSigned ? -(1 << (8 * sizeof(Value) - 1)) : 0;
        constexpr int kHighest = kLowest + (1 << (8 * sizeof(Value))) - 1;
        // What is below 0 ends at the lower limit of an unsigned type, whichever half is added.
        const int rounded = static_cast<int>(v + (kIsSigned ? __builtin_copysign(0.5, v) : 0.5));
        return static_cast<Value>(kIsWithin ? rounded : limited(rounded, kLowest, kHighest));
    }
}

#if VELQUAD_ZOOM_GATHERS

template <class Value>
VELQUAD_ALWAYS_INLINE void storeLanes(void* destination, std::size_t i, __m512d v) {
    auto* to = static_cast<unsigned char*>(destination) + i * sizeof(Value);
    if constexpr (sizeof(Value) == 8) {
        _mm512_storeu_pd(to, v);
    } else if constexpr (sizeof(Value) == 4) {
        v = _mm512_max_pd(_mm512_set1_pd(-kLargestFloat), _mm512_min_pd(_mm512_set1_pd(kLargestFloat), v));
        _mm256_storeu_ps(static_cast<float*>(static_cast<void*>(to)), _mm512_cvtpd_ps(v));
    } else {
        // What is below 0 ends there, whichever half is added.
        const __m256i rounded = _mm256_max_epi32(_mm512_cvttpd_epi32(_mm512_add_pd(v, _mm512_set1_pd(0.5))),
                                                 _mm256_setzero_si256());
        if constexpr (sizeof(Value) == 2) {
            _mm_storeu_si128(reinterpret_cast<__m128i_u*>(to), _mm256_cvtusepi32_epi16(rounded));
        } else {
            _mm_storel_epi64(reinterpret_cast<__m128i_u*>(to), _mm256_cvtusepi32_epi8(rounded));
        }
    }
}

/// Eight columns at a time. The operations and their order are those of the plain loops. @return the first column that
/// is left.
template <class Value>
std::size_t bilinearLanes(const ZoomSource& upper, const ZoomSource& lower, const ZoomColumns& columns,
                          double fraction, void* destination) {
    const __m512d down = _mm512_set1_pd(fraction);
    const __m512d up = _mm512_set1_pd(1.0 - fraction);
    return forEachLanes<Value>(columns, 0, [&](const auto& lanes, std::size_t i) VELQUAD_INLINE_LAMBDA {
        const __m512d right = _mm512_loadu_pd(columns.fraction + i);
        const __m512d left = _mm512_loadu_pd(columns.rest + i);
        prefetchEight<Value>(upper.ahead, columns, i);
        prefetchEight<Value>(lower.ahead, columns, i);
        __m512d p[2];
        lanes.pair(upper.row, p);
        __m512d v = _mm512_mul_pd(_mm512_mul_pd(p[0], left), up);
        v = _mm512_add_pd(v, _mm512_mul_pd(_mm512_mul_pd(p[1], right), up));
        lanes.pair(lower.row, p);
        v = _mm512_add_pd(v, _mm512_mul_pd(_mm512_mul_pd(p[0], left), down));
        v = _mm512_add_pd(v, _mm512_mul_pd(_mm512_mul_pd(p[1], right), down));
        storeLanes<Value>(destination, i, v);
    });
}

/// The part of bilinear interpolation along x.
template <class Value>
std::size_t bilinearLanesAlong(const ZoomSource& source, const ZoomColumns& columns, BilinearRow& row) {
    return forEachLanes<Value>(columns, 0, [&](const auto& lanes, std::size_t i) VELQUAD_INLINE_LAMBDA {
        prefetchEight<Value>(source.ahead, columns, i);
        __m512d p[2];
        lanes.pair(source.row, p);
        _mm512_storeu_pd(row.left + i, _mm512_mul_pd(p[0], _mm512_loadu_pd(columns.rest + i)));
        _mm512_storeu_pd(row.right + i, _mm512_mul_pd(p[1], _mm512_loadu_pd(columns.fraction + i)));
    });
}

template <class Value>
std::size_t cubicLanes(const ZoomSource& source, const ZoomColumns& columns, std::size_t begin,
                       CubicRow& row) {
    return forEachLanes<Value>(columns, begin, [&](const auto& lanes, std::size_t i) VELQUAD_INLINE_LAMBDA {
        prefetchEight<Value>(source.ahead, columns, i);
        __m512d p[4];
        lanes.quad(source.row, p);
        __m512d v = _mm512_mul_pd(p[1], _mm512_loadu_pd(columns.weight[1] + i));
        v = _mm512_sub_pd(v, _mm512_mul_pd(p[0], _mm512_loadu_pd(columns.weight[0] + i)));
        v = _mm512_add_pd(v, _mm512_mul_pd(p[2], _mm512_loadu_pd(columns.weight[2] + i)));
        v = _mm512_sub_pd(v, _mm512_mul_pd(p[3], _mm512_loadu_pd(columns.weight[3] + i)));
        _mm512_storeu_pd(row.value + i, v);
    });
}

template <class Value>
std::size_t bilinearLanesAcross(const BilinearRow& upper, const BilinearRow& lower, double fraction,
                                void* destination, std::size_t count) {
    const __m512d down = _mm512_set1_pd(fraction);
    const __m512d up = _mm512_set1_pd(1.0 - fraction);
    std::size_t i = 0;
    for (; i + kLaneCount <= count; i += kLaneCount) {
        __m512d v = _mm512_mul_pd(_mm512_loadu_pd(upper.left + i), up);
        v = _mm512_add_pd(v, _mm512_mul_pd(_mm512_loadu_pd(upper.right + i), up));
        v = _mm512_add_pd(v, _mm512_mul_pd(_mm512_loadu_pd(lower.left + i), down));
        v = _mm512_add_pd(v, _mm512_mul_pd(_mm512_loadu_pd(lower.right + i), down));
        storeLanes<Value>(destination, i, v);
    }
    return i;
}

template <class Value>
std::size_t cubicLanesAcross(const CubicRow* const rows[4], const CubicWeights& weights, void* destination,
                             std::size_t count) {
    const __m512d a = _mm512_set1_pd(weights.a);
    const __m512d b = _mm512_set1_pd(weights.b);
    const __m512d c = _mm512_set1_pd(weights.c);
    const __m512d d = _mm512_set1_pd(weights.d);
    std::size_t i = 0;
    for (; i + kLaneCount <= count; i += kLaneCount) {
        __m512d v = _mm512_mul_pd(_mm512_loadu_pd(rows[1]->value + i), b);
        v = _mm512_sub_pd(v, _mm512_mul_pd(_mm512_loadu_pd(rows[0]->value + i), a));
        v = _mm512_add_pd(v, _mm512_mul_pd(_mm512_loadu_pd(rows[2]->value + i), c));
        v = _mm512_sub_pd(v, _mm512_mul_pd(_mm512_loadu_pd(rows[3]->value + i), d));
        storeLanes<Value>(destination, i, v);
    }
    return i;
}

#endif

/// The types whose rows are interpolated directly where that is faster.
template <class ElementType>
constexpr bool kHasLanes = VELQUAD_ZOOM_GATHERS != 0 &&
                           (ElementType::kType == MAT_ARRAY_UINT8 || ElementType::kType == MAT_ARRAY_UINT16 ||
                            ElementType::kType == MAT_ARRAY_FLOAT || ElementType::kType == MAT_ARRAY_DOUBLE);

/// `kCount` neighbours of a source row.
template <class Value, std::size_t kCount>
struct Neighbours {
    Value value[kCount];
};

/// Gathers the neighbours that begin `back` values before the index of each column. Copying them as one word first
/// leaves contiguous loops for the arithmetic.
template <class Value, std::size_t kCount>
VELQUAD_ALWAYS_INLINE void gather(const void* sourceRow, const ZoomColumns& columns, std::size_t begin,
                                  std::int32_t back, Neighbours<Value, kCount>* neighbours) {
    const auto* from = static_cast<const unsigned char*>(sourceRow);
    for (std::size_t i = begin; i < columns.count; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i] - back);
        __builtin_memcpy(&neighbours[i], from + index * sizeof(Value), sizeof(neighbours[i]));
    }
}

/// Bytes that four bytes are stored beyond the last pixel of three.
constexpr std::size_t kSlack = 4;

/// Gathers the pixels at the index of each column, counted from `from`, three or four bytes each. They are read as
/// words of four bytes: `isLast` tells that no further pixel of the row may follow, so that a pixel of three bytes is
/// read with the byte before it instead of the one behind.
template <std::size_t kStep>
VELQUAD_ALWAYS_INLINE void gatherPixels(const unsigned char* from, const ZoomColumns& columns,
                                        std::size_t begin, bool isLast, unsigned char* pixels) {
    for (std::size_t i = begin; i < columns.count; i += kStep) {
        const auto* at = from + columns.index[i];
        std::uint32_t pixel;
        if (kStep == 3 && isLast) {
            __builtin_memcpy(&pixel, at - 1, 4);
            pixel >>= 8;
        } else {
            __builtin_memcpy(&pixel, at, 4);
        }
        __builtin_memcpy(pixels + i, &pixel, 4);
    }
}

template <std::size_t kStep>
VELQUAD_ALWAYS_INLINE void bilinearPixelsAlong(const void* sourceRow, const ZoomColumns& columns,
                                               BilinearRow& row) {
    unsigned char here[kZoomPiece + kSlack];
    unsigned char next[kZoomPiece + kSlack];
    const auto* from = static_cast<const unsigned char*>(sourceRow);
    gatherPixels<kStep>(from, columns, 0, false, here);
    gatherPixels<kStep>(from + kStep, columns, 0, true, next);
    for (std::size_t i = 0; i < columns.count; ++i)
        row.left[i] = here[i] * columns.rest[i];
    for (std::size_t i = 0; i < columns.count; ++i)
        row.right[i] = next[i] * columns.fraction[i];
}

/// Asks for all that the columns need of a row.
template <class Value>
VELQUAD_ALWAYS_INLINE void prefetchColumns(const unsigned char* row, const ZoomColumns& columns) {
    const auto begin = static_cast<std::size_t>(columns.index[0]);
    const auto end = static_cast<std::size_t>(columns.index[columns.count - 1]) + 1;
    prefetchRange(row + begin * sizeof(Value), (end - begin) * sizeof(Value));
}

template <class ElementType>
void bilinearAlong(const ZoomSource& source, const ZoomColumns& columns, BilinearRow& row) {
    using Value = typename ElementType::Value;
#if VELQUAD_ZOOM_GATHERS
    if constexpr (kHasLanes<ElementType>) {
        if (columns.step <= 3) {
            const unsigned char* from = source.row;
            const auto step = static_cast<std::size_t>(columns.step);
            for (std::size_t i = bilinearLanesAlong<Value>(source, columns, row); i < columns.count; ++i) {
                const auto index = static_cast<std::size_t>(columns.index[i]);
                row.left[i] = static_cast<double>(loadElement<Value>(from, index)) * columns.rest[i];
                row.right[i] =
                    static_cast<double>(loadElement<Value>(from, index + step)) * columns.fraction[i];
            }
            return;
        }
    }
#endif
    prefetchColumns<Value>(source.ahead, columns);
    if constexpr (ElementType::kType == MAT_ARRAY_UINT8) {
        if (columns.step == 3) return bilinearPixelsAlong<3>(source.row, columns, row);
        if (columns.step == 4) return bilinearPixelsAlong<4>(source.row, columns, row);
    }
    Neighbours<Value, 2> pairs[kZoomPiece];
    gather(source.row, columns, 0, 0, pairs);
    for (std::size_t i = 0; i < columns.count; ++i) {
        row.left[i] = static_cast<double>(pairs[i].value[0]) * columns.rest[i];
        row.right[i] = static_cast<double>(pairs[i].value[1]) * columns.fraction[i];
    }
}

template <class ElementType>
void bilinearAcross(const BilinearRow& upper, const BilinearRow& lower, double fraction, void* destination,
                    std::size_t count) {
    const double rest = 1.0 - fraction;
    std::size_t i = 0;
#if VELQUAD_ZOOM_GATHERS
    if constexpr (kHasLanes<ElementType>)
        i = bilinearLanesAcross<typename ElementType::Value>(upper, lower, fraction, destination, count);
#endif
    for (; i < count; ++i) {
        const double v = upper.left[i] * rest + upper.right[i] * rest + lower.left[i] * fraction +
                         lower.right[i] * fraction;
        storeElement(destination, i, stored<ElementType, true>(v));
    }
}

VELQUAD_ALWAYS_INLINE double weighed(double before, double here, double next, double last,
                                     const ZoomColumns& columns, std::size_t i) {
    return here * columns.weight[1][i] - before * columns.weight[0][i] + next * columns.weight[2][i] -
           last * columns.weight[3][i];
}

/// Columns on the first sample of the row, which has none before it. Only a source that becomes one column has them,
/// and the weight of that sample is 0.
/// @return the first other column.
template <class Value>
VELQUAD_ALWAYS_INLINE std::size_t cubicAtFirstSample(const void* sourceRow, const ZoomColumns& columns,
                                                     CubicRow& row) {
    const auto step = static_cast<std::size_t>(columns.step);
    std::size_t i = 0;
    for (; i < columns.count && columns.index[i] < columns.step; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i]);
        row.value[i] =
            weighed(0.0, static_cast<double>(loadElement<Value>(sourceRow, index)),
                    static_cast<double>(loadElement<Value>(sourceRow, index + step)),
                    static_cast<double>(loadElement<Value>(sourceRow, index + 2 * step)), columns, i);
    }
    return i;
}

#if VELQUAD_ZOOM_GATHERS
/// The columns that are left over by lanes.
template <class Value>
VELQUAD_ALWAYS_INLINE void cubicOneByOne(const void* sourceRow, const ZoomColumns& columns, std::size_t begin,
                                         CubicRow& row) {
    const auto step = static_cast<std::size_t>(columns.step);
    for (std::size_t i = begin; i < columns.count; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i]);
        const auto at = [sourceRow](std::size_t x) {
            return static_cast<double>(loadElement<Value>(sourceRow, x));
        };
        row.value[i] =
            weighed(at(index - step), at(index), at(index + step), at(index + 2 * step), columns, i);
    }
}
#endif

template <std::size_t kStep>
VELQUAD_ALWAYS_INLINE void cubicPixelsAlong(const void* sourceRow, const ZoomColumns& columns,
                                            std::size_t begin, CubicRow& row) {
    unsigned char pixels[4][kZoomPiece + kSlack];
    const auto* from = static_cast<const unsigned char*>(sourceRow);
    gatherPixels<kStep>(from - kStep, columns, begin, false, pixels[0]);
    gatherPixels<kStep>(from, columns, begin, false, pixels[1]);
    gatherPixels<kStep>(from + kStep, columns, begin, false, pixels[2]);
    gatherPixels<kStep>(from + 2 * kStep, columns, begin, true, pixels[3]);
    for (std::size_t i = begin; i < columns.count; ++i)
        row.value[i] = weighed(pixels[0][i], pixels[1][i], pixels[2][i], pixels[3][i], columns, i);
}

template <class ElementType>
void cubicAlong(const ZoomSource& source, const ZoomColumns& columns, CubicRow& row) {
    using Value = typename ElementType::Value;
    std::size_t begin = cubicAtFirstSample<Value>(source.row, columns, row);
#if VELQUAD_ZOOM_GATHERS
    if constexpr (kHasLanes<ElementType>) {
        if (columns.step <= 3) {
            begin = cubicLanes<Value>(source, columns, begin, row);
            cubicOneByOne<Value>(source.row, columns, begin, row);
            return;
        }
    }
#endif
    prefetchColumns<Value>(source.ahead, columns);
    if constexpr (ElementType::kType == MAT_ARRAY_UINT8) {
        if (columns.step == 3) return cubicPixelsAlong<3>(source.row, columns, begin, row);
        if (columns.step == 4) return cubicPixelsAlong<4>(source.row, columns, begin, row);
    }
    Neighbours<Value, 4> quads[kZoomPiece];
    gather(source.row, columns, begin, 1, quads);
    for (std::size_t i = begin; i < columns.count; ++i) {
        const auto& q = quads[i].value;
        row.value[i] = weighed(static_cast<double>(q[0]), static_cast<double>(q[1]),
                               static_cast<double>(q[2]), static_cast<double>(q[3]), columns, i);
    }
}

template <class ElementType>
void cubicAcross(const CubicRow* const rows[4], const CubicWeights& weights, void* destination,
                 std::size_t count) {
    const double* before = rows[0]->value;
    const double* here = rows[1]->value;
    const double* next = rows[2]->value;
    const double* last = rows[3]->value;
    const CubicWeights w = weights;
    std::size_t i = 0;
#if VELQUAD_ZOOM_GATHERS
    if constexpr (kHasLanes<ElementType>)
        i = cubicLanesAcross<typename ElementType::Value>(rows, weights, destination, count);
#endif
    for (; i < count; ++i) {
        const double v = here[i] * w.b - before[i] * w.a + next[i] * w.c - last[i] * w.d;
        storeElement(destination, i, stored<ElementType, false>(v));
    }
}

/// Both parts of a bilinear interpolation at once, for rows that serve one destination row only.
template <class ElementType>
void bilinearDirect(const ZoomSource& upper, const ZoomSource& lower, const ZoomColumns& columns,
                    double fraction, void* destination) {
    using Value = typename ElementType::Value;
    const double up = 1.0 - fraction;
    std::size_t i = 0;
#if VELQUAD_ZOOM_GATHERS
    i = bilinearLanes<Value>(upper, lower, columns, fraction, destination);
#endif
    for (; i < columns.count; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i]);
        const auto next = index + static_cast<std::size_t>(columns.step);
        const auto at = [](const void* row, std::size_t x) {
            return static_cast<double>(loadElement<Value>(row, x));
        };
        const double v = at(upper.row, index) * columns.rest[i] * up +
                         at(upper.row, next) * columns.fraction[i] * up +
                         at(lower.row, index) * columns.rest[i] * fraction +
                         at(lower.row, next) * columns.fraction[i] * fraction;
        storeElement(destination, i, stored<ElementType, true>(v));
    }
}

template <class ElementType>
constexpr ZoomValueKernels kernelsOf() {
    ZoomValueKernels kernels = {bilinearAlong<ElementType>, bilinearAcross<ElementType>, nullptr,
                                cubicAlong<ElementType>, cubicAcross<ElementType>};
    if constexpr (kHasLanes<ElementType>) kernels.bilinearDirect = bilinearDirect<ElementType>;
    return kernels;
}

}  // namespace

extern const ZoomKernels kZoomKernels;
const ZoomKernels kZoomKernels = {{{},
                                   kernelsOf<Int8Element>(),
                                   kernelsOf<UInt8Element>(),
                                   kernelsOf<Int16Element>(),
                                   kernelsOf<UInt16Element>(),
                                   kernelsOf<Int32Element>(),
                                   kernelsOf<UInt32Element>(),
                                   kernelsOf<FloatElement>(),
                                   kernelsOf<DoubleElement>()}};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
