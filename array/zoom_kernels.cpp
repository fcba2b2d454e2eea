// Inner loops of zoom. Compiled for several instruction sets; see frame/kernels.h for what may be used here.
#include "array/zoom_kernels.h"

#include "array/rounding.h"

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

/// Stores the result of an interpolation.
template <class ElementType>
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
        constexpr int kLowest = Value(-1) < Value(0) ? -(1 << (8 * sizeof(Value) - 1)) : 0;
        constexpr int kHighest = kLowest + (1 << (8 * sizeof(Value))) - 1;
        const int rounded = static_cast<int>(v + (0.0 > v ? -0.5 : 0.5));
        return static_cast<Value>(limited(rounded, kLowest, kHighest));
    }
}

template <class ElementType>
void bilinearAlong(const void* sourceRow, const ZoomColumns& columns, BilinearRow& row) {
    using Value = typename ElementType::Value;
    const std::size_t count = columns.count;
    const auto* from = static_cast<const unsigned char*>(sourceRow);
    const auto* behind = from + static_cast<std::size_t>(columns.step) * sizeof(Value);
    for (std::size_t i = 0; i < count; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i]);
        row.left[i] = static_cast<double>(loadElement<Value>(from, index)) * columns.rest[i];
        row.right[i] = static_cast<double>(loadElement<Value>(behind, index)) * columns.fraction[i];
    }
}

template <class ElementType>
void bilinearAcross(const BilinearRow& upper, const BilinearRow& lower, double fraction, void* destination,
                    std::size_t count) {
    const double rest = 1.0 - fraction;
    for (std::size_t i = 0; i < count; ++i) {
        const double v = upper.left[i] * rest + upper.right[i] * rest + lower.left[i] * fraction +
                         lower.right[i] * fraction;
        storeElement(destination, i, stored<ElementType>(v));
    }
}

template <class ElementType>
void cubicAlong(const void* sourceRow, const ZoomColumns& columns, CubicRow& row) {
    using Value = typename ElementType::Value;
    const std::size_t count = columns.count;
    const std::size_t step = static_cast<std::size_t>(columns.step) * sizeof(Value);
    const auto* at = static_cast<const unsigned char*>(sourceRow);
    std::size_t i = 0;
    // Only a source that becomes one column puts a position on its first sample, with no sample before it. The
    // weight of that one is 0.
    for (; i < count && columns.index[i] < columns.step; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i]);
        row.value[i] = static_cast<double>(loadElement<Value>(at, index)) * columns.weight[1][i] - 0.0 +
                       static_cast<double>(loadElement<Value>(at + step, index)) * columns.weight[2][i] -
                       static_cast<double>(loadElement<Value>(at + 2 * step, index)) * columns.weight[3][i];
    }
    for (; i < count; ++i) {
        const auto index = static_cast<std::size_t>(columns.index[i] - columns.step);
        row.value[i] = static_cast<double>(loadElement<Value>(at + step, index)) * columns.weight[1][i] -
                       static_cast<double>(loadElement<Value>(at, index)) * columns.weight[0][i] +
                       static_cast<double>(loadElement<Value>(at + 2 * step, index)) * columns.weight[2][i] -
                       static_cast<double>(loadElement<Value>(at + 3 * step, index)) * columns.weight[3][i];
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
        storeElement(destination, i, stored<ElementType>(v));
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
