// Inner loops over the elements of a row. Compiled for several instruction sets; see frame/kernels.h for what may be
// used here.
#include "array/element_kernels.h"

#include "array/rounding.h"

namespace velquad::array::VELQUAD_KERNEL_LEVEL {

namespace {

/// The largest double below 0.5.
constexpr double kBelowHalf = 0.49999999999999994;

/// `lround` where the result is known to fit 32 bits: adding the largest double below 0.5 and truncating gives the
/// same number, as a sum that reaches the next integer only by rounding is one that started at its half.
VELQUAD_ALWAYS_INLINE int lroundNarrow(double value) {
    return static_cast<int>(value + __builtin_copysign(kBelowHalf, value));
}

/// The same for a result that is limited to 0 and more: what is below 0 stays at most 0.
VELQUAD_ALWAYS_INLINE int lroundNarrowUnsigned(double value) {
    return static_cast<int>(value + kBelowHalf);
}

/// The number, or 0 for a not-a-number, which is what `lround` makes of it.
VELQUAD_ALWAYS_INLINE double numberOrZero(double value) {
    return value == value ? value : 0.0;
}

/// The larger of 0 and the number; 0 for a not-a-number.
VELQUAD_ALWAYS_INLINE double atLeastZero(double value) {
    return value > 0.0 ? value : 0.0;
}

// To float.

template <class Value>
void widenToFloat(const void* source, void* destination, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        storeElement(destination, i, static_cast<float>(loadElement<Value>(source, i)));
}

template <std::size_t kBytes>
void meanToFloat(const void* source, void* destination, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const int sum = loadElement<std::uint8_t>(source, kBytes * i) +
                        loadElement<std::uint8_t>(source, kBytes * i + 1) +
                        loadElement<std::uint8_t>(source, kBytes * i + 2);
        storeElement(destination, i, static_cast<float>(sum / 3.0));
    }
}

template <std::size_t kBytes>
void largestToFloat(const void* source, void* destination, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto b0 = loadElement<std::uint8_t>(source, kBytes * i);
        const auto b1 = loadElement<std::uint8_t>(source, kBytes * i + 1);
        const auto b2 = loadElement<std::uint8_t>(source, kBytes * i + 2);
        const auto largest = b0 > b1 ? b0 : b1;
        storeElement(destination, i, static_cast<float>(largest > b2 ? largest : b2));
    }
}

// From float. Normalised values lie between 0 and the span of the type or are not numbers.

VELQUAD_ALWAYS_INLINE double normalised(const void* source, std::size_t index,
                                        const Normalisation& normalisation) {
    return (static_cast<double>(loadElement<float>(source, index)) - normalisation.min) * normalisation.scale;
}

template <class Value>
void fromFloatUnsigned(const void* source, void* destination, std::size_t count,
                       const Normalisation& normalisation) {
    const Normalisation n = normalisation;
    for (std::size_t i = 0; i < count; ++i)
        storeElement(destination, i,
                     static_cast<Value>(lroundNarrowUnsigned(atLeastZero(normalised(source, i, n)))));
}

template <class Value>
void fromFloatSigned(const void* source, void* destination, std::size_t count,
                     const Normalisation& normalisation) {
    constexpr double kLowest = sizeof(Value) == 1 ? -128.0 : -32768.0;
    const Normalisation n = normalisation;
    for (std::size_t i = 0; i < count; ++i) {
        // Keeping the low bits moves the span down by half of it.
        const int rounded = lroundNarrow(numberOrZero(normalised(source, i, n) - kLowest));
        storeElement(destination, i, static_cast<Value>(static_cast<unsigned int>(rounded)));
    }
}

void fromFloatInt32(const void* source, void* destination, std::size_t count,
                    const Normalisation& normalisation) {
    for (std::size_t i = 0; i < count; ++i) {
        const double t = normalised(source, i, normalisation) - (-2147483648.0);
        std::int32_t value = 0;
        // Kept: no normalised value is below 0, so every number saturates.
        if (t > 2147483646.5) {
            value = INT32_MAX;
        } else if (-2147483647.5 > t) {
            value = INT32_MIN;
        } else {
            value = frame::lroundToInt32(t);
        }
        storeElement(destination, i, value);
    }
}

void fromFloatUInt32(const void* source, void* destination, std::size_t count,
                     const Normalisation& normalisation) {
    for (std::size_t i = 0; i < count; ++i) {
        const double v = normalised(source, i, normalisation);
        std::uint32_t value = 0;
        if (v > 4294967294.5) {
            value = UINT32_MAX;
        } else if (!(0.5000001 > v)) {
            value = truncatedTo<UInt32Element>(v + 0.5);
        }
        storeElement(destination, i, value);
    }
}

void fromFloatCopied(const void* source, void* destination, std::size_t count,
                     const Normalisation& /*unused*/) {
    __builtin_memmove(destination, source, count * sizeof(float));
}

void fromFloatWidened(const void* source, void* destination, std::size_t count,
                      const Normalisation& /*unused*/) {
    for (std::size_t i = 0; i < count; ++i)
        storeElement(destination, i, static_cast<double>(loadElement<float>(source, i)));
}

template <std::size_t kBytes>
void fromFloatPixel(const void* source, void* destination, std::size_t count,
                    const Normalisation& normalisation) {
    const Normalisation n = normalisation;
    for (std::size_t i = 0; i < count; ++i) {
        const auto value =
            static_cast<std::uint8_t>(lroundNarrowUnsigned(atLeastZero(normalised(source, i, n))));
        for (std::size_t byte = 0; byte < 3; ++byte)
            storeElement(destination, kBytes * i + byte, value);
        if constexpr (kBytes == 4) storeElement(destination, 4 * i + 3, std::uint8_t{1});
    }
}

// Fill.

template <class Value>
void fill(void* row, std::size_t count, const void* element) {
    const Value value = loadElement<Value>(element, 0);
    for (std::size_t i = 0; i < count; ++i)
        storeElement(row, i, value);
}

void fillByte3(void* row, std::size_t count, const void* element) {
    constexpr std::size_t kPixels = 64;
    unsigned char block[3 * kPixels];
    for (std::size_t i = 0; i < kPixels; ++i)
        __builtin_memcpy(block + 3 * i, element, 3);
    auto* to = static_cast<unsigned char*>(row);
    for (; count >= kPixels; count -= kPixels, to += sizeof(block))
        __builtin_memcpy(to, block, sizeof(block));
    __builtin_memcpy(to, block, 3 * count);
}

void fillByte4(void* row, std::size_t count, const void* element) {
    const std::uint32_t value = loadElement<std::uint32_t>(element, 0) & 0x00FFFFFFU;
    for (std::size_t i = 0; i < count; ++i)
        storeElement(row, i, (loadElement<std::uint32_t>(row, i) & 0xFF000000U) | value);
}

// Limits.

template <class Value>
VELQUAD_ALWAYS_INLINE Value clamped(Value value, Value high, Value low) {
    value = value > high ? high : value;
    return value < low ? low : value;
}

template <class ElementType>
void clamp(void* row, std::size_t count, const ClampBounds& bounds) {
    using Value = typename ElementType::Value;
    const Value high = loadElement<Value>(bounds.high, 0);
    const Value low = loadElement<Value>(bounds.low, 0);
    for (std::size_t i = 0; i < count * ElementType::kComponents; ++i)
        storeElement(row, i, clamped(loadElement<Value>(row, i), high, low));
}

void clampByte4(void* row, std::size_t count, const ClampBounds& bounds) {
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t byte = 0; byte < 3; ++byte) {
            const auto value = loadElement<std::uint8_t>(row, 4 * i + byte);
            storeElement(row, 4 * i + byte, clamped(value, bounds.high[0], bounds.low[0]));
        }
    }
}

// Linear map.

VELQUAD_ALWAYS_INLINE double mapped(double value, const LinearMap& map) {
    return (value + map.offset) * map.scale + map.bias;
}

/// `kIsNarrow`: results lie within 32 bits.
template <class Value, bool kIsNarrow>
VELQUAD_ALWAYS_INLINE Value mappedTo(Value value, const LinearMap& map) {
    constexpr int kLowest = Value(-1) < Value(0) ? -(1 << (8 * sizeof(Value) - 1)) : 0;
    constexpr int kHighest = kLowest + (1 << (8 * sizeof(Value))) - 1;
    const double t = mapped(value, map);
    const int rounded = !kIsNarrow     ? frame::lroundToInt32(t)
                        : kLowest == 0 ? lroundNarrowUnsigned(t)
                                       : lroundNarrow(t);
    return static_cast<Value>(limited(rounded, kLowest, kHighest));
}

template <class ElementType>
void transform(void* row, std::size_t count, const LinearMap& map) {
    using Value = typename ElementType::Value;
    const LinearMap m = map;
    const std::size_t values = count * ElementType::kComponents;
    if (m.isNarrow) {
        for (std::size_t i = 0; i < values; ++i)
            storeElement(row, i, mappedTo<Value, true>(loadElement<Value>(row, i), m));
    } else {
        for (std::size_t i = 0; i < values; ++i)
            storeElement(row, i, mappedTo<Value, false>(loadElement<Value>(row, i), m));
    }
}

void transformByte4(void* row, std::size_t count, const LinearMap& map) {
    const LinearMap m = map;
    for (std::size_t i = 0; i < 4 * count; i += 4) {
        for (std::size_t byte = i; byte < i + 3; ++byte) {
            const auto value = loadElement<std::uint8_t>(row, byte);
            storeElement(row, byte,
                         m.isNarrow ? mappedTo<std::uint8_t, true>(value, m)
                                    : mappedTo<std::uint8_t, false>(value, m));
        }
    }
}

void transformInt32(void* row, std::size_t count, const LinearMap& map) {
    for (std::size_t i = 0; i < count; ++i) {
        double t = mapped(loadElement<std::int32_t>(row, i), map);
        if (t > 2147483647.0) t = 2147483647.0;
        if (t < -2147483648.0) t = -2147483648.0;
        storeElement(row, i, frame::lroundToInt32(t));
    }
}

void transformUInt32(void* row, std::size_t count, const LinearMap& map) {
    for (std::size_t i = 0; i < count; ++i) {
        double t = mapped(loadElement<std::uint32_t>(row, i), map);
        if (t > 4294967295.0) t = 4294967295.0;
        if (t < 0.0) t = 0.0;
        storeElement(row, i, truncatedTo<UInt32Element>(t + 0.5));
    }
}

template <class Value>
void transformFloating(void* row, std::size_t count, const LinearMap& map) {
    const LinearMap m = map;
    for (std::size_t i = 0; i < count; ++i)
        storeElement(row, i, static_cast<Value>(mapped(static_cast<double>(loadElement<Value>(row, i)), m)));
}

}  // namespace

extern const ElementKernels kElementKernels;
const ElementKernels kElementKernels = {
    // Kept: type 1 is read as unsigned, types 3 and 5 are missing.
    {nullptr, widenToFloat<std::uint8_t>, widenToFloat<std::uint8_t>, nullptr, widenToFloat<std::uint16_t>,
     nullptr, widenToFloat<std::uint32_t>, widenToFloat<float>, widenToFloat<double>, meanToFloat<3>,
     meanToFloat<4>},
    {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, largestToFloat<3>,
     largestToFloat<4>},
    {nullptr, fromFloatSigned<std::int8_t>, fromFloatUnsigned<std::uint8_t>, fromFloatSigned<std::int16_t>,
     fromFloatUnsigned<std::uint16_t>, fromFloatInt32, fromFloatUInt32, fromFloatCopied, fromFloatWidened,
     fromFloatPixel<3>, fromFloatPixel<4>},
    {nullptr, fill<std::uint8_t>, fill<std::uint8_t>, fill<std::uint16_t>, fill<std::uint16_t>,
     fill<std::uint32_t>, fill<std::uint32_t>, fill<std::uint32_t>, fill<std::uint64_t>, fillByte3,
     fillByte4},
    {nullptr, clamp<Int8Element>, clamp<UInt8Element>, clamp<Int16Element>, clamp<UInt16Element>,
     clamp<Int32Element>, clamp<UInt32Element>, clamp<FloatElement>, clamp<DoubleElement>,
     clamp<Byte3Element>, clampByte4},
    {nullptr, transform<Int8Element>, transform<UInt8Element>, transform<Int16Element>,
     transform<UInt16Element>, transformInt32, transformUInt32, transformFloating<float>,
     transformFloating<double>, transform<Byte3Element>, transformByte4}};

}  // namespace velquad::array::VELQUAD_KERNEL_LEVEL
