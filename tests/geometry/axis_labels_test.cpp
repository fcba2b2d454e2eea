#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr double kNone = 1.7976931348623157e308;
constexpr double kUntouched = -77.25;

struct Case {
    double low, high;
    unsigned int labelCount, mode;
    double step, roundedLow, roundedHigh;
};

class AxisLabels : public testing::TestWithParam<Case> {};

TEST_P(AxisLabels, GivesRoundStepAndBounds) {
    const Case& c = GetParam();
    double low = kUntouched;
    double high = kUntouched;
    EXPECT_EQ(matCalcLabsLinear(c.low, c.high, c.labelCount, c.mode, &low, &high), c.step);
    EXPECT_EQ(low, c.roundedLow);
    EXPECT_EQ(high, c.roundedHigh);
}

INSTANTIATE_TEST_SUITE_P(
    WantedStepIsRound, AxisLabels,
    testing::Values(Case{0.0, 100.0, 11, 1, 20.0, -20.0, 120.0}, Case{0.0, 100.0, 11, 2, 25.0, -25.0, 125.0},
                    Case{0.0, 100.0, 11, 3, 50.0, -50.0, 150.0}, Case{0.0, 100.0, 11, 0, 20.0, -20.0, 120.0},
                    Case{0.0, 100.0, 11, 4, 20.0, -20.0, 120.0}, Case{-20.0, 40.0, 7, 1, 20.0, -40.0, 60.0}));
INSTANTIATE_TEST_SUITE_P(WantedStepIsNotRound, AxisLabels,
                         testing::Values(Case{0.0, 100.0, 12, 1, 10.0, -10.0, 110.0},
                                         Case{3.0, 17.0, 5, 1, 5.0, 0.0, 20.0},
                                         Case{1e-3, 1e6, 9, 4, 200000.0, 0.0, 1200000.0}));
INSTANTIATE_TEST_SUITE_P(BoundsBelowZero, AxisLabels,
                         testing::Values(Case{-17.0, -3.0, 5, 1, 5.0, -20.0, 0.0},
                                         Case{-17.0, 3.0, 5, 2, 10.0, -20.0, 10.0},
                                         Case{-40.0, -20.0, 3, 1, 20.0, -60.0, -20.0},
                                         Case{20.0, 40.0, 3, 1, 20.0, 20.0, 60.0}));
INSTANTIATE_TEST_SUITE_P(FewerThanTwoLabelsAreTwo, AxisLabels,
                         testing::Values(Case{0.0, 700.0, 2, 1, 700.0, -700.0, 1400.0},
                                         Case{0.0, 700.0, 1, 1, 700.0, -700.0, 1400.0},
                                         Case{0.0, 700.0, 0, 1, 700.0, -700.0, 1400.0},
                                         Case{0.0, 499.0, 2, 1, 500.0, -500.0, 500.0}));
INSTANTIATE_TEST_SUITE_P(FirstCandidateIsAlreadyReached, AxisLabels,
                         testing::Values(Case{0.0, 500.0, 2, 1, 500.0, -500.0, 1000.0}));

TEST(AxisLabelsLimits, AxisOf1eMinus7OrLessHasNoLabels) {
    double low = kUntouched;
    double high = kUntouched;
    EXPECT_EQ(matCalcLabsLinear(0.0, 1e-7, 5, 1, &low, &high), kNone);
    EXPECT_EQ(matCalcLabsLinear(5.0, 5.0, 5, 1, &low, &high), kNone);
    EXPECT_EQ(matCalcLabsLinear(5.0, -5.0, 5, 1, &low, &high), kNone);
    EXPECT_EQ(low, kUntouched);
    EXPECT_EQ(high, kUntouched);
    EXPECT_NE(matCalcLabsLinear(0.0, std::nextafter(1e-7, 1.0), 5, 1, &low, &high), kNone);
    EXPECT_NE(low, kUntouched);
}

TEST(AxisLabelsLimits, BoundsMayBeNull) {
    double value = kUntouched;
    EXPECT_EQ(matCalcLabsLinear(0.0, 100.0, 11, 1, nullptr, nullptr), 20.0);
    EXPECT_EQ(matCalcLabsLinear(0.0, 100.0, 11, 1, &value, nullptr), 20.0);
    EXPECT_EQ(value, -20.0);
    EXPECT_EQ(matCalcLabsLinear(0.0, 100.0, 11, 1, nullptr, &value), 20.0);
    EXPECT_EQ(value, 120.0);
}

TEST(AxisLabelsLimits, HighBoundLessThanAStepBelowZeroIsNegativeZero) {
    double high = kUntouched;
    EXPECT_EQ(matCalcLabsLinear(-17.0, -3.0, 5, 1, nullptr, &high), 5.0);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(high), 0x8000000000000000U);
    EXPECT_EQ(matCalcLabsLinear(-17.0, -0.0, 5, 1, nullptr, &high), 5.0);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(high), 0x8000000000000000U);
    EXPECT_EQ(matCalcLabsLinear(-17.0, 0.0, 5, 1, nullptr, &high), 5.0);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(high), 0x0000000000000000U);
}

TEST(AxisLabelsLimits, EndsForTheLargestLabelCount) {
    double high = kUntouched;
    // The power of ten is the C library's, and as exact as that; see tests/digest/c_library.cpp.
    EXPECT_NEAR(matCalcLabsLinear(0.0, 1.0, 4294967295U, 1, nullptr, &high), 5e-10, 1e-24);
    EXPECT_GE(high, 1.0);
}

TEST(AxisLabelsLimits, EndsForExtremeBounds) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double largest = std::numeric_limits<double>::max();
    EXPECT_EQ(matCalcLabsLinear(-largest, largest, 3, 1, nullptr, nullptr), infinity);
    EXPECT_EQ(matCalcLabsLinear(0.0, infinity, 3, 1, nullptr, nullptr), infinity);
    EXPECT_EQ(matCalcLabsLinear(-infinity, 0.0, 3, 1, nullptr, nullptr), infinity);
    EXPECT_EQ(matCalcLabsLinear(infinity, infinity, 3, 1, nullptr, nullptr), kNone);
    EXPECT_EQ(matCalcLabsLinear(infinity, -infinity, 3, 1, nullptr, nullptr), kNone);
    EXPECT_TRUE(std::isnan(matCalcLabsLinear(nan, 1.0, 3, 1, nullptr, nullptr)));
    EXPECT_TRUE(std::isnan(matCalcLabsLinear(0.0, nan, 3, 1, nullptr, nullptr)));
    EXPECT_DOUBLE_EQ(matCalcLabsLinear(0.0, largest, 3, 1, nullptr, nullptr), 1e308);
    EXPECT_DOUBLE_EQ(matCalcLabsLinear(0.0, largest, 4294967295U, 1, nullptr, nullptr), 5e298);
}

TEST(AxisLabelsLimits, BoundsLieOutsideTheAxisOnMultiplesOfTheStep) {
    constexpr std::uint32_t kSeed = 51;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> value(-1000.0, 1000.0);
    std::uniform_real_distribution<double> exponent(-3.0, 4.0);
    std::uniform_int_distribution<unsigned int> labels(2, 30);
    for (int i = 0; i < 20000; ++i) {
        const double low = value(random);
        const double length = std::pow(10.0, exponent(random));
        const double high = low + length;
        const unsigned int count = labels(random);
        double roundedLow = 0.0;
        double roundedHigh = 0.0;
        const double step = matCalcLabsLinear(low, high, count, 1, &roundedLow, &roundedHigh);
        ASSERT_GE(step, (high - low) / (count - 1));
        ASSERT_LE(roundedLow, low + 1e-9 * step + 1e-12);
        ASSERT_GE(roundedHigh, high - 1e-9 * step - 1e-12);
        ASSERT_EQ(roundedLow, std::round(roundedLow / step) * step);
        ASSERT_EQ(roundedHigh, std::round(roundedHigh / step) * step);
    }
}

}  // namespace
