#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>

#include "tests/support/allocation_failure.h"
#include "velquad/fitting.h"

namespace {

constexpr double kNoValue = 1.7976931348623157e308;
constexpr std::int64_t kLeast64 = std::numeric_limits<std::int64_t>::min();

struct Rational {
    int status;
    int numerator;
    int denominator;
    bool operator==(const Rational& other) const {
        return status == other.status && numerator == other.numerator && denominator == other.denominator;
    }
};

constexpr int kUntouched = -77;

Rational rationalOf(double value, int digits = 6, unsigned int maxTerms = 10, double threshold = 1e-12) {
    Rational result{-1, kUntouched, kUntouched};
    result.status =
        matCvtDoubleToRational(value, &result.numerator, &result.denominator, digits, maxTerms, threshold);
    return result;
}

TEST(ConvertRational, DividesSignedNumbers) {
    EXPECT_EQ(matConvertRationalToDoublei64(7, 2), 3.5);
    EXPECT_EQ(matConvertRationalToDoublei64(-7, 2), -3.5);
    EXPECT_EQ(matConvertRationalToDoublei64(7, -2), -3.5);
    EXPECT_EQ(matConvertRationalToDoublei64(-7, -2), 3.5);
    EXPECT_EQ(matConvertRationalToDoublei64(0, 5), 0.0);
    EXPECT_EQ(matConvertRationalToDoublei64(1, 0), kNoValue);
    EXPECT_EQ(matConvertRationalToDoublei64(0, 0), kNoValue);
}

TEST(ConvertRational, HoldsTheQuotientThatDoesNotFit64Bits) {
    EXPECT_EQ(matConvertRationalToDoublei64(kLeast64, -1), 9223372036854775808.0);
    EXPECT_EQ(matConvertRationalToDoublei64(kLeast64, 1), -9223372036854775808.0);
    EXPECT_EQ(matConvertRationalToDoublei64(kLeast64, kLeast64), 1.0);
    EXPECT_EQ(matConvertRationalToDoublei64(5, -1), -5.0);
}

TEST(ConvertRational, SplitsTheWholePartOff) {
    // 2^54 + 3 is no double: dividing directly would round it to 2^54 + 4 first and give 2^53 + 2.
    const std::int64_t numerator = (std::int64_t{1} << 54) + 3;
    EXPECT_EQ(matConvertRationalToDoublei64(numerator, 4), 4503599627370496.75);
    EXPECT_EQ(matConvertRationalToDoubleu64(static_cast<std::uint64_t>(numerator), 4), 4503599627370496.75);
}

TEST(ConvertRational, TakesTheFullUnsignedRange) {
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(matConvertRationalToDoubleu64(most, 1), 18446744073709551616.0);
    EXPECT_EQ(matConvertRationalToDoubleu64(most, most), 1.0);
    EXPECT_EQ(matConvertRationalToDoubleu64(std::uint64_t{1} << 63, std::uint64_t{1} << 62), 2.0);
    EXPECT_EQ(matConvertRationalToDoubleu64(7, 2), 3.5);
    EXPECT_EQ(matConvertRationalToDoubleu64(7, 0), kNoValue);
}

TEST(GreatestCommonDivisor, IsNeverZero) {
    EXPECT_EQ(matCalcGreatestCommonDivisor(0, 0), 1U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(0, 12), 12U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(12, 0), 12U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(12, 18), 6U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(17, 5), 1U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(1, 1), 1U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(0x80000000U, 0x80000000U), 0x80000000U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(0xFFFFFFFFU, 0x80000000U), 1U);
    EXPECT_EQ(matCalcGreatestCommonDivisor(0xFFFFFFFFU, 3), 3U);
}

TEST(GreatestCommonDivisor, AgreesWithTheStandardLibrary) {
    std::mt19937 random(11);
    for (int round = 0; round < 5000; ++round) {
        const auto shift = static_cast<unsigned int>(round % 24);
        const auto a = static_cast<DWORD>(random() >> shift);
        const auto b = static_cast<DWORD>(random() >> (23U - shift));
        if (a == 0 && b == 0) continue;
        ASSERT_EQ(matCalcGreatestCommonDivisor(a, b), std::gcd(a, b)) << a << ", " << b;
    }
}

TEST(DoubleToRational, FindsSimpleFractions) {
    EXPECT_EQ(rationalOf(0.75), (Rational{0, 3, 4}));
    EXPECT_EQ(rationalOf(2.0), (Rational{0, 2, 1}));
    EXPECT_EQ(rationalOf(2.0, 6, 1), (Rational{0, 2, 1}));
    EXPECT_EQ(rationalOf(-0.5), (Rational{0, -1, 2}));
    EXPECT_EQ(rationalOf(-3.0), (Rational{0, -3, 1}));
    EXPECT_EQ(rationalOf(0.0), (Rational{0, 0, 1}));
    EXPECT_EQ(rationalOf(1.0 / 3.0), (Rational{0, 1, 3}));
}

TEST(DoubleToRational, StopsAtTheFirstConvergentWithinTheTolerance) {
    const double pi = 3.14159265358979;
    EXPECT_EQ(rationalOf(pi, 0), (Rational{0, 3, 1}));
    EXPECT_EQ(rationalOf(pi, 1), (Rational{0, 22, 7}));
    EXPECT_EQ(rationalOf(pi, 2), (Rational{0, 22, 7}));
    EXPECT_EQ(rationalOf(pi, 3), (Rational{0, 333, 106}));
    EXPECT_EQ(rationalOf(pi, 6), (Rational{0, 355, 113}));
    EXPECT_EQ(rationalOf(-pi, 6), (Rational{0, -355, 113}));
}

TEST(DoubleToRational, ScalesTheToleranceWithTheValue) {
    // log10(1234.5) rounds to 3, so two digits leave 10 and the first term is good enough.
    EXPECT_EQ(rationalOf(1234.5, 2), (Rational{0, 1234, 1}));
    EXPECT_EQ(rationalOf(1234.5, 4), (Rational{0, 2469, 2}));
    // log10(0.001) is -3: six digits leave 1e-9.
    EXPECT_EQ(rationalOf(0.001, 6), (Rational{0, 1, 1000}));
}

TEST(DoubleToRational, ToleranceIsStrict) {
    // The tolerance for 0.5 at no digit is 10^lround(-0.30) = 1 and the first term 0 is off by 0.5.
    EXPECT_EQ(rationalOf(0.5, 0), (Rational{0, 0, 1}));
    // 1.5: tolerance 1; 1 is within. 2.0 at no digit: 2 is exact.
    EXPECT_EQ(rationalOf(1.5, 0), (Rational{0, 1, 1}));
    // A value of exactly the threshold is not zero; one below is.
    EXPECT_EQ(rationalOf(0.25, 6, 10, 0.25), (Rational{0, 1, 4}));
    EXPECT_EQ(rationalOf(0.25, 6, 10, std::nextafter(0.25, 1.0)), (Rational{0, 0, 1}));
    EXPECT_EQ(rationalOf(-0.25, 6, 10, 0.5), (Rational{0, 0, 1}));
}

TEST(DoubleToRational, TellsWhatDoesNotFit32Bits) {
    EXPECT_EQ(rationalOf(2000000000.5, 12), (Rational{2, kUntouched, kUntouched}));
    EXPECT_EQ(rationalOf(2000000000.5, 5), (Rational{0, 2000000000, 1}));
    EXPECT_EQ(rationalOf(2147483647.0), (Rational{0, 2147483647, 1}));
    EXPECT_EQ(rationalOf(-2147483647.0), (Rational{0, -2147483647, 1}));
    EXPECT_EQ(rationalOf(2147483648.0).status, 2);
    // The largest numerator and denominator that fit, and one more.
    EXPECT_EQ(rationalOf(1073741823.5, 12), (Rational{0, 2147483647, 2}));
    EXPECT_EQ(rationalOf(-1073741823.5, 12), (Rational{0, -2147483647, 2}));
    EXPECT_EQ(rationalOf(1073741824.5, 12), (Rational{2, kUntouched, kUntouched}));
    EXPECT_EQ(rationalOf(1.0 / 2147483647.0, 9), (Rational{0, 1, 2147483647}));
    EXPECT_EQ(rationalOf(1.0 / 2147483648.0, 9).status, 2);
    EXPECT_EQ(rationalOf(1e300).status, 2);
    EXPECT_EQ(rationalOf(1e-11, 30, 10).status, 2);
}

TEST(DoubleToRational, TellsInfinitiesAndNotANumbers) {
    EXPECT_EQ(rationalOf(std::numeric_limits<double>::quiet_NaN()), (Rational{2, kUntouched, kUntouched}));
    EXPECT_EQ(rationalOf(std::numeric_limits<double>::infinity()).status, 2);
    EXPECT_EQ(rationalOf(-std::numeric_limits<double>::infinity()).status, 2);
}

TEST(DoubleToRational, GivesUpAfterItsTerms) {
    EXPECT_EQ(rationalOf(0.75, 6, 0), (Rational{3, kUntouched, kUntouched}));
    EXPECT_EQ(rationalOf(0.75, 6, 2), (Rational{3, kUntouched, kUntouched}));
    EXPECT_EQ(rationalOf(0.75, 6, 3), (Rational{0, 3, 4}));
}

TEST(DoubleToRational, TakesExtremeDigitCountsWithoutHanging) {
    EXPECT_EQ(rationalOf(0.75, std::numeric_limits<int>::max()).status, 2);
    EXPECT_EQ(rationalOf(0.75, std::numeric_limits<int>::min()), (Rational{0, 0, 1}));
    EXPECT_EQ(rationalOf(5e-324, 6, 10, 0.0).status, 2);
}

TEST(DoubleToRational, OutputsAreOptional) {
    int only = kUntouched;
    EXPECT_EQ(matCvtDoubleToRational(0.75, &only, nullptr, 6, 10, 1e-12), 0);
    EXPECT_EQ(only, 3);
    EXPECT_EQ(matCvtDoubleToRational(0.75, nullptr, &only, 6, 10, 1e-12), 0);
    EXPECT_EQ(only, 4);
    EXPECT_EQ(matCvtDoubleToRational(0.75, nullptr, nullptr, 6, 10, 1e-12), 0);
    EXPECT_EQ(matCvtDoubleToRational(0.0, nullptr, nullptr, 6, 10, 1e-12), 0);
}

TEST(DoubleToRational, ReportsLackOfMemory) {
    int numerator = kUntouched;
    int denominator = kUntouched;
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        numerator = denominator = kUntouched;
        const int status = matCvtDoubleToRational(0.75, &numerator, &denominator, 6, 10, 1e-12);
        EXPECT_EQ(numerator, status == 0 ? 3 : kUntouched);
        EXPECT_EQ(denominator, status == 0 ? 4 : kUntouched);
        return status == 1;
    });
    EXPECT_EQ(count, 1U);
}

TEST(DoubleToRational, FindsRandomFractionsAgainInLowestTerms) {
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round) {
        const int denominator = 1 + static_cast<int>(random() % 1000);
        const int numerator = 1 + static_cast<int>(random() % 1000);
        const int divisor = std::gcd(numerator, denominator);
        const double value = static_cast<double>(numerator) / denominator;
        ASSERT_EQ(rationalOf(value, 9, 40), (Rational{0, numerator / divisor, denominator / divisor}))
            << numerator << " / " << denominator;
    }
}

}  // namespace
