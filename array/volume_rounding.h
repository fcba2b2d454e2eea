// The rounders of volumes in a form that compilers turn into vector code: one chain of selections that ends
// in one conversion. The results are those of `truncatedTo(roundForVolume(value))`. May be used in kernel
// files.
#ifndef VELQUAD_ARRAY_VOLUME_ROUNDING_H
#define VELQUAD_ARRAY_VOLUME_ROUNDING_H

#include <cstdint>

#include "array/element.h"
#include "array/rounding.h"

namespace velquad::array {

/// The 32-bit integer that a double is rounded to before the limits of narrower types.
template <class ElementType, Int32Rounder kInt32Rounder>
VELQUAD_ALWAYS_INLINE std::int32_t roundedToInt32(double value) {
    double rounded = 0.0 > value ? value - 0.49 : value + 0.5;
    rounded = rounded > -2147483649.0 && rounded < 2147483648.0 ? rounded : -2147483648.0;
    if constexpr (ElementType::kType == MAT_ARRAY_INT32) {
        constexpr bool kIsWide = kInt32Rounder == Int32Rounder::kWide;
        constexpr double kUpper = kIsWide ? 4294967294.499999 : 2147483646.499999;
        rounded = value > kUpper ? 2147483647.0 : rounded;
        rounded = -2147483647.499999 > value ? -2147483648.0 : rounded;
    }
    if constexpr (ElementType::kType == MAT_ARRAY_UINT32) {
        // All bits set.
        rounded = value > 4294967294.499999 ? -1.0 : rounded;
    }
    return static_cast<std::int32_t>(rounded);
}

/// A double rounded and limited to an element of codes 1 to 8.
template <class ElementType, Int32Rounder kInt32Rounder>
VELQUAD_ALWAYS_INLINE typename ElementType::Value roundedTo(double value) {
    using Value = typename ElementType::Value;
    constexpr unsigned int kType = ElementType::kType;
    if constexpr (kType == MAT_ARRAY_DOUBLE) {
        return value;
    } else if constexpr (kType == MAT_ARRAY_FLOAT) {
        return static_cast<float>(limited(value, -kLargestFloat, kLargestFloat));
    } else {
        const std::int32_t rounded = roundedToInt32<ElementType, kInt32Rounder>(value);
        if constexpr (kType == MAT_ARRAY_INT8) return static_cast<Value>(limited(rounded, -128, 127));
        if constexpr (kType == MAT_ARRAY_UINT8) return static_cast<Value>(limited(rounded, 0, 255));
        if constexpr (kType == MAT_ARRAY_INT16) return static_cast<Value>(limited(rounded, -32768, 32767));
        if constexpr (kType == MAT_ARRAY_UINT16) return static_cast<Value>(limited(rounded, 0, 65535));
        if constexpr (sizeof(Value) == 4) return static_cast<Value>(rounded);
    }
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_VOLUME_ROUNDING_H
