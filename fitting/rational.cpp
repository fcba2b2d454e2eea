// Fractions of integers: conversion to doubles, common divisors, and the fraction close to a double.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>

#include "frame/convert.h"
#include "frame/math.h"
#include "velquad/fitting.h"

namespace {

constexpr std::int64_t kLeastInt32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kGreatestInt32 = std::numeric_limits<std::int32_t>::max();

enum RationalStatus : int { kDone = 0, kNoMemory = 1, kOutOfRange = 2, kNotFound = 3 };

struct Fraction {
    std::int64_t numerator;
    std::int64_t denominator;
};

bool fitsInt32(std::int64_t value) {
    return value >= kLeastInt32 && value <= kGreatestInt32;
}

struct FreeBlock {
    void operator()(void* block) const { std::free(block); }
};
using Terms = std::unique_ptr<std::int32_t[], FreeBlock>;

// 10^-digits in the scale of the value, by repeated multiplication and division: the roundings of each step
// decide which fraction is accepted.
double toleranceOf(double value, int digits) {
    const int exponent = velquad::frame::lroundToInt32(velquad::frame::log10(std::fabs(value)));
    double tolerance = 1.0;
    for (int i = 0; i < exponent; ++i)
        tolerance *= 10.0;
    for (int i = 0; i > exponent; --i)
        tolerance /= 10.0;
    // Once it is 0, it stays so.
    for (int i = 0; i < digits && tolerance != 0.0; ++i)
        tolerance /= 10.0;
    return tolerance;
}

// The value of the continued fraction [terms[0]; terms[1], ..., terms[last]]. Numerators only grow on the way, so
// one that leaves 32 bits decides at once and nothing overflows in 64.
bool convergent(const std::int32_t* terms, unsigned int last, Fraction& fraction) {
    fraction = {terms[last], 1};
    for (unsigned int i = last; i-- > 0;) {
        fraction = {fraction.denominator + terms[i] * fraction.numerator, fraction.numerator};
        if (!fitsInt32(fraction.numerator) || !fitsInt32(fraction.denominator)) return false;
    }
    return true;
}

RationalStatus approximate(double magnitude, double tolerance, unsigned int maxTerms, Fraction& fraction) {
    // Fewer than 48 terms fit, as convergents grow at least like Fibonacci numbers; untouched memory costs nothing.
    const Terms terms(
        static_cast<std::int32_t*>(std::calloc(maxTerms == 0 ? 1 : maxTerms, sizeof(std::int32_t))));
    if (terms == nullptr) return kNoMemory;
    double x = magnitude;
    for (unsigned int k = 0; k < maxTerms; ++k) {
        const double whole = std::floor(x);
        if (!(whole <= static_cast<double>(kGreatestInt32))) return kOutOfRange;
        terms[k] = static_cast<std::int32_t>(whole);
        if (!convergent(terms.get(), k, fraction)) return kOutOfRange;
        const double quotient =
            static_cast<double>(fraction.numerator) / static_cast<double>(fraction.denominator);
        if (tolerance > std::fabs(quotient - magnitude)) return kDone;
        x = 1.0 / (x - whole);
    }
    return kNotFound;
}

}  // namespace

extern "C" double matConvertRationalToDoublei64(std::int64_t numerator, std::int64_t denominator) {
    if (denominator == 0) return velquad::kNoValue;
    // The one quotient that 64 bits do not hold.
    if (numerator == std::numeric_limits<std::int64_t>::min() && denominator == -1)
        return 9223372036854775808.0;
    return static_cast<double>(numerator % denominator) / static_cast<double>(denominator) +
           static_cast<double>(numerator / denominator);
}

extern "C" double matConvertRationalToDoubleu64(std::uint64_t numerator, std::uint64_t denominator) {
    if (denominator == 0) return velquad::kNoValue;
    return static_cast<double>(numerator % denominator) / static_cast<double>(denominator) +
           static_cast<double>(numerator / denominator);
}

extern "C" DWORD matCalcGreatestCommonDivisor(DWORD a, DWORD b) {
    if (a == 0 && b == 0) return 1;
    if (a == 0 || b == 0) return a | b;
    const int commonTwos = std::countr_zero(a | b);
    a >>= std::countr_zero(a);
    // Both are odd in the comparison, so that their difference is even.
    while (b != 0) {
        b >>= std::countr_zero(b);
        const DWORD difference = a > b ? a - b : b - a;
        a = a < b ? a : b;
        b = difference / 2;
    }
    return a << commonTwos;
}

extern "C" int matCvtDoubleToRational(double value, int* numerator, int* denominator, int significantDigits,
                                      unsigned int maxTerms, double zeroThreshold) {
    Fraction fraction{0, 1};
    const double magnitude = std::fabs(value);
    if (!(zeroThreshold > magnitude)) {
        const double tolerance = toleranceOf(value, significantDigits);
        const RationalStatus status = approximate(magnitude, tolerance, maxTerms, fraction);
        if (status != kDone) return status;
        if (value < 0.0) fraction.numerator = -fraction.numerator;
    }
    if (denominator != nullptr) *denominator = static_cast<int>(fraction.denominator);
    if (numerator != nullptr) *numerator = static_cast<int>(fraction.numerator);
    return kDone;
}
