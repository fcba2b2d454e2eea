// Inner loops of zoom. Compiled for several instruction sets; see frame/kernels.h for what may be used here.
#include "array/zoom_kernels.h"

#include "array/rounding.h"

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

/// Gathers the pixels that lie `kPixel` pixels behind the index of each column, three or four bytes each. The pixel
/// behind is in the row too unless it is the `last` one in use; then the one before is.
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

template <class ElementType>
void bilinearAlong(const void* sourceRow, const ZoomColumns& columns, BilinearRow& row) {
    using Value = typename ElementType::Value;
    if constexpr (ElementType::kType == MAT_ARRAY_UINT8) {
        if (columns.step == 3) return bilinearPixelsAlong<3>(sourceRow, columns, row);
        if (columns.step == 4) return bilinearPixelsAlong<4>(sourceRow, columns, row);
    }
    Neighbours<Value, 2> pairs[kZoomPiece];
    gather(sourceRow, columns, 0, 0, pairs);
    for (std::size_t i = 0; i < columns.count; ++i) {
        row.left[i] = static_cast<double>(pairs[i].value[0]) * columns.rest[i];
        row.right[i] = static_cast<double>(pairs[i].value[1]) * columns.fraction[i];
    }
}

template <class ElementType>
void bilinearAcross(const BilinearRow& upper, const BilinearRow& lower, double fraction, void* destination,
                    std::size_t count) {
    const double rest = 1.0 - fraction;
    for (std::size_t i = 0; i < count; ++i) {
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
void cubicAlong(const void* sourceRow, const ZoomColumns& columns, CubicRow& row) {
    using Value = typename ElementType::Value;
    const std::size_t begin = cubicAtFirstSample<Value>(sourceRow, columns, row);
    if constexpr (ElementType::kType == MAT_ARRAY_UINT8) {
        if (columns.step == 3) return cubicPixelsAlong<3>(sourceRow, columns, begin, row);
        if (columns.step == 4) return cubicPixelsAlong<4>(sourceRow, columns, begin, row);
    }
    Neighbours<Value, 4> quads[kZoomPiece];
    gather(sourceRow, columns, begin, 1, quads);
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
    for (std::size_t i = 0; i < count; ++i) {
        const double v = here[i] * w.b - before[i] * w.a + next[i] * w.c - last[i] * w.d;
        storeElement(destination, i, stored<ElementType, false>(v));
    }
}

/// Bytes that are copied as one.
template <std::size_t kSize>
struct Bytes {
    unsigned char byte[kSize];
};

template <class Value>
void nearest(const void* sourceRow, const std::int32_t* index, void* destination, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        storeElement(destination, i, loadElement<Value>(sourceRow, static_cast<std::size_t>(index[i])));
}

template <class ElementType>
constexpr ZoomValueKernels kernelsOf() {
    return {bilinearAlong<ElementType>, bilinearAcross<ElementType>, cubicAlong<ElementType>,
            cubicAcross<ElementType>};
}

}  // namespace

extern const ZoomKernels kZoomKernels;
const ZoomKernels kZoomKernels = {
    {{},
     kernelsOf<Int8Element>(),
     kernelsOf<UInt8Element>(),
     kernelsOf<Int16Element>(),
     kernelsOf<UInt16Element>(),
     kernelsOf<Int32Element>(),
     kernelsOf<UInt32Element>(),
     kernelsOf<FloatElement>(),
     kernelsOf<DoubleElement>()},
    {nullptr, nearest<std::uint8_t>, nearest<std::uint16_t>, nearest<Bytes<3>>, nearest<std::uint32_t>,
     nullptr, nullptr, nullptr, nearest<std::uint64_t>}};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
