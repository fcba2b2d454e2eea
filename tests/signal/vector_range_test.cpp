#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "velquad/signal.h"

namespace {

constexpr double kUntouched = 77.0;
constexpr double kLargestFloat = 3.4028234663852886e38;

TEST(Range, OneValueIsAllThree) {
    double low = 0, high = 0, mean = 0;
    const double value = -2.5;
    EXPECT_EQ(matGetRange(&value, 1, &low, &high, &mean), 1);
    EXPECT_EQ(low, -2.5);
    EXPECT_EQ(high, -2.5);
    EXPECT_EQ(mean, -2.5);
}

TEST(Range, NoValuesWriteNothing) {
    double low = kUntouched, high = kUntouched, mean = kUntouched;
    const double value = 1.0;
    EXPECT_EQ(matGetRange(&value, 0, &low, &high, &mean), 0);
    EXPECT_EQ(matGetRange(nullptr, 1, &low, &high, &mean), 0);
    EXPECT_EQ(low, kUntouched);
    EXPECT_EQ(high, kUntouched);
    EXPECT_EQ(mean, kUntouched);
}

TEST(Range, EachResultMayBeUnwanted) {
    const double values[] = {3, -1, 2};
    double result = 0;
    EXPECT_EQ(matGetRange(values, 3, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(matGetRange(values, 3, &result, nullptr, nullptr), 1);
    EXPECT_EQ(result, -1.0);
    EXPECT_EQ(matGetRange(values, 3, nullptr, &result, nullptr), 1);
    EXPECT_EQ(result, 3.0);
    EXPECT_EQ(matGetRange(values, 3, nullptr, nullptr, &result), 1);
    EXPECT_EQ(result, 4.0 / 3.0);
}

TEST(Range, TheMeanAddsUpPartsOfAHundred) {
    std::vector<double> values(250);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = 0.1 * static_cast<double>(i % 7) + 0.3;
    double parts[3] = {0, 0, 0};
    for (std::size_t i = 0; i < values.size(); ++i)
        parts[i / 100] += values[i];
    double mean = 0;
    EXPECT_EQ(matGetRange(values.data(), 250, nullptr, nullptr, &mean), 1);
    EXPECT_EQ(mean, parts[0] / 250 + parts[1] / 250 + parts[2] / 250);
    // The order shows: one sum and one division give other bits.
    double whole = 0;
    for (const double value : values)
        whole += value;
    EXPECT_NE(mean, whole / 250);
}

TEST(Range, AWholeNumberOfPartsHasAnEmptyRest) {
    const std::vector<double> values(200, 0.5);
    double mean = 0;
    EXPECT_EQ(matGetRange(values.data(), 200, nullptr, nullptr, &mean), 1);
    EXPECT_EQ(mean, 0.5);
}

TEST(Range, ExtremesStartAtTheLargestFloat) {
    const double values[] = {1e300, 1e299};
    double low = 0, high = 0;
    EXPECT_EQ(matGetRange(values, 2, &low, &high, nullptr), 1);
    EXPECT_EQ(low, kLargestFloat);
    EXPECT_EQ(high, 1e300);
    const double below[] = {-1e300, -1e299};
    EXPECT_EQ(matGetRange(below, 2, &low, &high, nullptr), 1);
    EXPECT_EQ(low, -1e300);
    EXPECT_EQ(high, -kLargestFloat);
}

TEST(Range, NotANumberLeavesTheExtremesAlone) {
    const double values[] = {std::numeric_limits<double>::quiet_NaN(), 2.0, 1.0};
    double low = 0, high = 0, mean = 0;
    EXPECT_EQ(matGetRange(values, 3, &low, &high, &mean), 1);
    EXPECT_EQ(low, 1.0);
    EXPECT_EQ(high, 2.0);
    EXPECT_NE(mean, mean);
}

TEST(Range, AResultMayBeOneOfTheValues) {
    double values[] = {3, -1, 7};
    double mean = 0;
    EXPECT_EQ(matGetRange(values, 3, &values[0], &values[2], &mean), 1);
    EXPECT_EQ(values[0], -1.0);
    EXPECT_EQ(values[2], 7.0);
    EXPECT_EQ(mean, 3.0);
}

TEST(LinearCorrection, AddsEveryTermToOneSum) {
    const double values[] = {1, 2, 4};
    double sum[2] = {100, kUntouched};
    EXPECT_EQ(matLinearCorrection(values, sum, 3, 2.0, 0.5), 0);
    EXPECT_EQ(sum[0], 115.5);
    EXPECT_EQ(sum[1], kUntouched);
}

TEST(LinearCorrection, TheSumMayBeOneOfTheValues) {
    // 10, then 10 + 2 * 1 + 0.5 = 12.5, then 12.5 + 2 * 12.5 + 0.5 = 38, then 38 + 2 * 4 + 0.5.
    double values[] = {1, 10, 4};
    EXPECT_EQ(matLinearCorrection(values, &values[1], 3, 2.0, 0.5), 0);
    EXPECT_EQ(values[1], 46.5);
    EXPECT_EQ(values[0], 1.0);
    EXPECT_EQ(values[2], 4.0);
    // 1 + 2.5, then 3.5 + 20.5, then 24 + 8.5.
    double fromTheFirst[] = {1, 10, 4};
    EXPECT_EQ(matLinearCorrection(fromTheFirst, &fromTheFirst[0], 3, 2.0, 0.5), 0);
    EXPECT_EQ(fromTheFirst[0], 32.5);
}

TEST(LinearCorrection, NoValuesLeaveTheSum) {
    double sum = 3.0;
    const double value = 1.0;
    EXPECT_EQ(matLinearCorrection(&value, &sum, 0, 2.0, 0.5), 0);
    EXPECT_EQ(sum, 3.0);
    EXPECT_EQ(matLinearCorrection(nullptr, &sum, 1, 2.0, 0.5), 0);
    EXPECT_EQ(matLinearCorrection(&value, nullptr, 1, 2.0, 0.5), 0);
    EXPECT_EQ(sum, 3.0);
}

TEST(LinearCorrection, AFlatSlopeAddsOffsetsOneByOne) {
    const std::vector<double> values(10, 1.0);
    double sum = 0.0;
    EXPECT_EQ(matLinearCorrection(values.data(), &sum, 10, 0.0, 0.1), 0);
    EXPECT_EQ(sum, 0.1 + 0.1 + 0.1 + 0.1 + 0.1 + 0.1 + 0.1 + 0.1 + 0.1 + 0.1);
    EXPECT_NE(sum, 1.0);
}

}  // namespace
