// The three forms of rounding and the rounders of volumes, at their limits.
#include "array/rounding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using namespace velquad::array;
using velquad::frame::lroundToInt32;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double after(double value) {
    return std::nextafter(value, kInfinity);
}

double before(double value) {
    return std::nextafter(value, -kInfinity);
}

TEST(Rounding, FormsDifferAtHalvesAndBeyond32Bits) {
    EXPECT_EQ(-1, lroundToInt32(-0.5));
    EXPECT_EQ(-1, roundHalfAway(-0.5));
    EXPECT_EQ(0, roundHalfUp(-0.5));
    EXPECT_EQ(0, lroundToInt32(0.49999999999999994));
    EXPECT_EQ(1, roundHalfAway(0.49999999999999994)) << "the sum rounds to 1";
    EXPECT_EQ(1, roundHalfUp(0.49999999999999994));
    EXPECT_EQ(-1294967296, lroundToInt32(3e9));
    EXPECT_EQ(INT32_MIN, roundHalfAway(3e9));
    EXPECT_EQ(INT32_MIN, roundHalfUp(3e9));
    EXPECT_EQ(0, lroundToInt32(kNan));
    EXPECT_EQ(INT32_MIN, roundHalfAway(kNan));
    EXPECT_EQ(INT32_MIN, roundHalfUp(kNan));
}

TEST(Rounding, BelowZeroVolumesRoundAt51Hundredths) {
    EXPECT_EQ(0, roundHalfUp(-0.5));
    EXPECT_EQ(-1, roundHalfUp(-0.51));
    EXPECT_EQ(0, roundHalfUp(-0.50999));
    EXPECT_EQ(3, roundHalfUp(2.5));
    EXPECT_EQ(-2, roundHalfUp(-2.5));
}

TEST(Rounding, LimitsComeAfterThe32BitTruncation) {
    EXPECT_EQ(-128.0, matRoundToInt8(3e9));
    EXPECT_EQ(0.0, matRoundToUInt8(3e9));
    EXPECT_EQ(-32768.0, matRoundToInt16(kInfinity));
    EXPECT_EQ(0.0, matRoundToUInt16(kNan));
    EXPECT_EQ(127.0, matRoundToInt8(300.0));
    EXPECT_EQ(-128.0, matRoundToInt8(-300.0));
    EXPECT_EQ(255.0, matRoundToUInt8(254.5));
    EXPECT_EQ(254.0, matRoundToUInt8(before(254.5)));
    EXPECT_EQ(32767.0, matRoundToInt16(40000.0));
    EXPECT_EQ(65535.0, matRoundToUInt16(70000.0));
}

TEST(Rounding, TheTwoInt32RoundersDifferBetweenTheirLimits) {
    EXPECT_EQ(2147483647.0, matRoundToInt32(after(2147483646.499999)));
    EXPECT_EQ(2147483646.0, matRoundToInt32(2147483646.25));
    EXPECT_EQ(2147483647.0, matRoundToInt32(3e9));
    EXPECT_EQ(-2147483648.0, matRoundToInt32Wide(3e9));
    EXPECT_EQ(-2147483648.0, matRoundToInt32Wide(2147483647.5));
    EXPECT_EQ(2147483647.0, matRoundToInt32Wide(2147483647.25));
    EXPECT_EQ(2147483647.0, matRoundToInt32Wide(after(4294967294.499999)));
    EXPECT_EQ(-2147483648.0, matRoundToInt32Wide(4294967294.499999));
    EXPECT_EQ(2147483647.0, matRoundToInt32Wide(5e9));
    EXPECT_EQ(-2147483648.0, matRoundToInt32(-3e9));
    EXPECT_EQ(-2147483648.0, matRoundToInt32(kNan));
}

TEST(Rounding, UnsignedIntegersHaveNoLowerLimit) {
    EXPECT_EQ(-1.0, matRoundToUInt32(-1.0));
    EXPECT_EQ(0xFFFFFFFFU, truncatedTo<UInt32Element>(matRoundToUInt32(-1.0)));
    EXPECT_EQ(0x80000000U, truncatedTo<UInt32Element>(matRoundToUInt32(3e9)));
    EXPECT_EQ(4294967295.0, matRoundToUInt32(after(4294967294.499999)));
}

TEST(Rounding, FloatsAreLimitedWithoutRounding) {
    EXPECT_EQ(kLargestFloat, matRoundToFloat(kInfinity));
    EXPECT_EQ(-kLargestFloat, matRoundToFloat(-1e300));
    EXPECT_EQ(0.1, matRoundToFloat(0.1));
    EXPECT_TRUE(std::isnan(matRoundToFloat(kNan)));
    EXPECT_EQ(kInfinity, matRoundToDouble(kInfinity));
}

TEST(Rounding, TruncatedValuesKeepTheirLowBits) {
    EXPECT_EQ(44, truncatedTo<UInt8Element>(300.7));
    EXPECT_EQ(-1, truncatedTo<Int8Element>(255.0));
    EXPECT_EQ(4000000000U, truncatedTo<UInt32Element>(4000000000.0));
    EXPECT_EQ(0U, truncatedTo<UInt32Element>(1e30));
    EXPECT_EQ(INT32_MIN, truncatedTo<Int32Element>(1e10));
}

TEST(Rounding, EveryTypeHasItsRounder) {
    constexpr Int32Rounder kNarrow = Int32Rounder::kNarrow;
    constexpr Int32Rounder kWide = Int32Rounder::kWide;
    EXPECT_EQ(127.0, (roundForVolume<Int8Element, kWide>(1000.0)));
    EXPECT_EQ(255.0, (roundForVolume<UInt8Element, kWide>(1000.0)));
    EXPECT_EQ(32767.0, (roundForVolume<Int16Element, kWide>(1e5)));
    EXPECT_EQ(65535.0, (roundForVolume<UInt16Element, kWide>(1e5)));
    EXPECT_EQ(2147483647.0, (roundForVolume<Int32Element, kNarrow>(3e9)));
    EXPECT_EQ(-2147483648.0, (roundForVolume<Int32Element, kWide>(3e9)));
    EXPECT_EQ(-2.0, (roundForVolume<UInt32Element, kWide>(-1.6)));
    EXPECT_EQ(kLargestFloat, (roundForVolume<FloatElement, kWide>(1e39)));
    EXPECT_EQ(1e39, (roundForVolume<DoubleElement, kWide>(1e39)));
}

}  // namespace
