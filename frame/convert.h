// Integer arithmetic that wraps around at 32 bits, and conversions of doubles to integers with a defined
// result for every input. Nothing here is undefined behaviour for any argument.
#ifndef VELQUAD_FRAME_CONVERT_H
#define VELQUAD_FRAME_CONVERT_H

#include <cmath>
#include <cstdint>

#include "frame/inline.h"

namespace velquad::frame {

using Int32 = std::int32_t;

VELQUAD_ALWAYS_INLINE constexpr Int32 wrapAdd(Int32 a, Int32 b) {
    return static_cast<Int32>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

VELQUAD_ALWAYS_INLINE constexpr Int32 wrapSub(Int32 a, Int32 b) {
    return static_cast<Int32>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

VELQUAD_ALWAYS_INLINE constexpr Int32 wrapMul(Int32 a, Int32 b) {
    return static_cast<Int32>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

/// Negation; the smallest integer stays as it is.
VELQUAD_ALWAYS_INLINE constexpr Int32 wrapNeg(Int32 a) {
    return wrapSub(0, a);
}

/// |a|; the smallest integer stays as it is.
VELQUAD_ALWAYS_INLINE constexpr Int32 wrapAbs(Int32 a) {
    return a < 0 ? wrapNeg(a) : a;
}

/// Truncation towards zero; -2147483648 for a value beyond 32 bits, an infinity or a not-a-number.
VELQUAD_ALWAYS_INLINE constexpr Int32 truncToInt32(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return INT32_MIN;
    return static_cast<Int32>(value);
}

/// Truncation towards zero; the smallest 64-bit integer for a value beyond 64 bits, an infinity or a
/// not-a-number.
VELQUAD_ALWAYS_INLINE constexpr std::int64_t truncToInt64(double value) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (!(value >= -kTwoTo63 && value < kTwoTo63)) return INT64_MIN;
    return static_cast<std::int64_t>(value);
}

/// Rounding with halves away from zero, narrowed to the low 32 bits of the 64-bit result; 0 for a value beyond
/// 64 bits, an infinity or a not-a-number.
VELQUAD_ALWAYS_INLINE Int32 lroundToInt32(double value) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (!(std::fabs(value) < kTwoTo63)) return 0;
    return static_cast<Int32>(static_cast<std::uint32_t>(std::llround(value)));
}

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_CONVERT_H
