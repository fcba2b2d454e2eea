// The ways in which arrays turn a double into an element. Three forms of rounding live side by side and give
// different results:
//
//   form             used by                      -0.5    2.5    beyond 32 bits
//   lround           conversion, clamp, transform   -1      3    low 32 bits of the 64-bit result
//   roundHalfAway    zoom                           -1      3    -2147483648
//   roundHalfUp      volumes                         0      3    -2147483648
//
// The first is frame::lroundToInt32. May be used in kernel files.
#ifndef VELQUAD_ARRAY_ROUNDING_H
#define VELQUAD_ARRAY_ROUNDING_H

#include <cstddef>
#include <cstdint>

#include "array/element.h"
#include "frame/convert.h"
#include "frame/inline.h"

namespace velquad::array {

inline constexpr double kLargestFloat = 3.4028234663852886e+38;

/// Adds 0.5 away from zero and truncates; -2147483648 beyond 32 bits and for a not-a-number.
VELQUAD_ALWAYS_INLINE std::int32_t roundHalfAway(double value) {
    return frame::truncToInt32(0.0 > value ? value - 0.5 : value + 0.5);
}

/// Adds 0.5, below zero takes 0.49 away, and truncates; -2147483648 beyond 32 bits and for a not-a-number.
/// Kept: 0.49 instead of 0.5, so that -0.5 gives 0 and only values below -0.51 reach -1.
VELQUAD_ALWAYS_INLINE std::int32_t roundHalfUp(double value) {
    return frame::truncToInt32(0.0 > value ? value - 0.49 : value + 0.5);
}

/// Limits `value` from above, then from below. A not-a-number stays.
template <class T>
VELQUAD_ALWAYS_INLINE constexpr T limited(T value, T lowest, T highest) {
    if (value > highest) value = highest;
    if (lowest > value) value = lowest;
    return value;
}

/// @name Rounders of volumes
/// The value that is to be stored, as a double. The limits come after the 32-bit truncation, so 3e9 is -2147483648
/// by then and ends at the lower limit.
/// @{
VELQUAD_ALWAYS_INLINE double matRoundToInt8(double value) {
    return limited(roundHalfUp(value), -128, 127);
}

VELQUAD_ALWAYS_INLINE double matRoundToUInt8(double value) {
    return limited(roundHalfUp(value), 0, 255);
}

VELQUAD_ALWAYS_INLINE double matRoundToInt16(double value) {
    return limited(roundHalfUp(value), -32768, 32767);
}

VELQUAD_ALWAYS_INLINE double matRoundToUInt16(double value) {
    return limited(roundHalfUp(value), 0, 65535);
}

/// The int32 rounder of the affine transform.
VELQUAD_ALWAYS_INLINE double matRoundToInt32(double value) {
    if (value > 2147483646.499999) return 2147483647.0;
    if (-2147483647.499999 > value) return -2147483648.0;
    return roundHalfUp(value);
}

/// The int32 rounder of the conversions and the blur.
/// Kept: its upper threshold is that of the unsigned rounder, so that 2147483647.5 and above give -2147483648.
VELQUAD_ALWAYS_INLINE double matRoundToInt32Wide(double value) {
    if (value > 4294967294.499999) return 2147483647.0;
    if (-2147483647.499999 > value) return -2147483648.0;
    return roundHalfUp(value);
}

/// Kept: no lower limit, a negative result wraps when it is stored; 2147483647.5 and above give -2147483648.
VELQUAD_ALWAYS_INLINE double matRoundToUInt32(double value) {
    if (value > 4294967294.499999) return 4294967295.0;
    return roundHalfUp(value);
}

VELQUAD_ALWAYS_INLINE double matRoundToFloat(double value) {
    return limited(value, -kLargestFloat, kLargestFloat);
}

VELQUAD_ALWAYS_INLINE double matRoundToDouble(double value) {
    return value;
}
/// @}

/// Which of the two int32 rounders a caller goes by.
enum class Int32Rounder { kNarrow, kWide };

/// The rounder of volumes for an element of codes 1 to 8.
template <class ElementType, Int32Rounder kInt32Rounder>
VELQUAD_ALWAYS_INLINE double roundForVolume(double value) {
    static_assert(ElementType::kComponents == 1);
    constexpr unsigned int kType = ElementType::kType;
    if constexpr (kType == MAT_ARRAY_INT8) return matRoundToInt8(value);
    if constexpr (kType == MAT_ARRAY_UINT8) return matRoundToUInt8(value);
    if constexpr (kType == MAT_ARRAY_INT16) return matRoundToInt16(value);
    if constexpr (kType == MAT_ARRAY_UINT16) return matRoundToUInt16(value);
    if constexpr (kType == MAT_ARRAY_INT32 && kInt32Rounder == Int32Rounder::kNarrow)
        return matRoundToInt32(value);
    if constexpr (kType == MAT_ARRAY_INT32 && kInt32Rounder == Int32Rounder::kWide)
        return matRoundToInt32Wide(value);
    if constexpr (kType == MAT_ARRAY_UINT32) return matRoundToUInt32(value);
    if constexpr (kType == MAT_ARRAY_FLOAT) return matRoundToFloat(value);
    if constexpr (kType == MAT_ARRAY_DOUBLE) return matRoundToDouble(value);
}

/// A double as an element without any rounding: integers of up to 32 signed bits truncated to 32 bits and cut to
/// their width, unsigned 32-bit ones truncated to 64 bits and cut, floats narrowed.
template <class ElementType>
VELQUAD_ALWAYS_INLINE typename ElementType::Value truncatedTo(double value) {
    using Value = typename ElementType::Value;
    constexpr unsigned int kType = ElementType::kType;
    if constexpr (kType == MAT_ARRAY_DOUBLE) {
        return value;
    } else if constexpr (kType == MAT_ARRAY_FLOAT) {
        return static_cast<float>(value);
    } else if constexpr (kType == MAT_ARRAY_UINT32) {
        return static_cast<Value>(static_cast<std::uint64_t>(frame::truncToInt64(value)) & 0xFFFFFFFFU);
    } else {
        return static_cast<Value>(frame::truncToInt32(value));
    }
}

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ROUNDING_H
