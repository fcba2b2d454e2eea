// Lines and segments crossed step by step in the plainest way, to compare the library with. Integer crossings are
// written twice: with 64-bit integers, which are right where nothing wraps around, and with unsigned 32-bit ones.
#ifndef VELQUAD_TESTS_SUPPORT_INTERSECTION_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_INTERSECTION_REFERENCE_H

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "velquad/types.h"

namespace velquad::test {

struct ReferenceCrossing {
    int result = 0;
    int isParallel = -1;  ///< -1: not stored.
    double parameterA = 0.0;
    double parameterB = 0.0;
    tagPOINT2D point{};
};

/// Exact as long as no intermediate value needs more than 32 bits.
struct WideIntegers {
    using Value = std::int64_t;
    static Value of(std::int64_t value) { return value; }
    static double toDouble(Value value) { return static_cast<double>(value); }
    static bool isLonger(Value a, Value b) { return std::abs(a) > std::abs(b); }
};

/// Wraps around like 32-bit registers.
struct WrappedIntegers {
    using Value = std::uint32_t;
    static Value of(std::int64_t value) { return static_cast<Value>(value); }
    static std::int32_t toSigned(Value value) { return static_cast<std::int32_t>(value); }
    static double toDouble(Value value) { return static_cast<double>(toSigned(value)); }
    static std::int32_t absolute(Value value) { return toSigned(toSigned(value) < 0 ? 0u - value : value); }
    static bool isLonger(Value a, Value b) { return absolute(a) > absolute(b); }
};

template <class Integers>
double referenceScaleFactor(const tagPOINT& a, const tagPOINT& b, const tagPOINT2D& p) {
    const auto dx = Integers::of(b.x) - Integers::of(a.x);
    const auto dy = Integers::of(b.y) - Integers::of(a.y);
    if (a.x == b.x && a.y == b.y) {
        return 1e-7 > std::fabs(a.x - p.x) && 1e-7 > std::fabs(a.y - p.y) ? 0.0 : 1.7976931348623157e308;
    }
    if (Integers::isLonger(dx, dy)) return (p.x - a.x) / Integers::toDouble(dx);
    return (p.y - a.y) / Integers::toDouble(dy);
}

template <class Integers>
ReferenceCrossing referenceLines(const tagPOINT& a0, const tagPOINT& a1, const tagPOINT& b0,
                                 const tagPOINT& b1) {
    const auto a0x = Integers::of(a0.x), a0y = Integers::of(a0.y);
    const auto a1x = Integers::of(a1.x), a1y = Integers::of(a1.y);
    const auto b0x = Integers::of(b0.x), b0y = Integers::of(b0.y);
    const auto b1x = Integers::of(b1.x), b1y = Integers::of(b1.y);
    const auto denominator = (a1y - a0y) * (b1x - b0x) + (a1x - a0x) * (b0y - b1y);
    const auto numerator = (b0x - a0x) * (b0y - b1y) + (b0y - a0y) * (b1x - b0x);
    ReferenceCrossing crossing;
    crossing.isParallel = denominator == 0 ? 1 : 0;
    crossing.result = denominator != 0 || numerator == 0 ? 1 : 0;
    crossing.parameterA = 1.7976931348623157e308;
    if (crossing.result == 0) return crossing;
    crossing.parameterA =
        denominator != 0 ? Integers::toDouble(numerator) / Integers::toDouble(denominator) : 0.0;
    crossing.point.x = Integers::toDouble(a1x - a0x) * crossing.parameterA + a0.x;
    crossing.point.y = Integers::toDouble(a1y - a0y) * crossing.parameterA + a0.y;
    crossing.parameterB = referenceScaleFactor<Integers>(b0, b1, crossing.point);
    return crossing;
}

inline bool isInWideBand(double parameter) {
    return -1e-7 < parameter && parameter < 1.0000001;
}

template <class Integers>
ReferenceCrossing referenceSegments(const tagPOINT& a0, const tagPOINT& a1, const tagPOINT& b0,
                                    const tagPOINT& b1) {
    ReferenceCrossing none;
    if (std::min(a0.x, a1.x) > std::max(b0.x, b1.x) || std::min(a0.y, a1.y) > std::max(b0.y, b1.y) ||
        std::max(a0.x, a1.x) < std::min(b0.x, b1.x) || std::max(a0.y, a1.y) < std::min(b0.y, b1.y)) {
        return none;
    }
    ReferenceCrossing crossing = referenceLines<Integers>(a0, a1, b0, b1);
    none.isParallel = crossing.isParallel;
    if (crossing.result == 0) return none;
    if (crossing.isParallel == 0) {
        return isInWideBand(crossing.parameterA) && isInWideBand(crossing.parameterB) ? crossing : none;
    }
    const tagPOINT* const ends[] = {&b0, &b1, &a0};
    for (int i = 0; i < 3; ++i) {
        const tagPOINT2D p{static_cast<double>(ends[i]->x), static_cast<double>(ends[i]->y)};
        const double parameter =
            i < 2 ? referenceScaleFactor<Integers>(a0, a1, p) : referenceScaleFactor<Integers>(b0, b1, p);
        if (!isInWideBand(parameter)) continue;
        crossing.point = p;
        crossing.parameterA = i < 2 ? parameter : 0.0;
        crossing.parameterB = i < 2 ? i : parameter;
        return crossing;
    }
    return none;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_INTERSECTION_REFERENCE_H
