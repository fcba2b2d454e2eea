#include "frame/convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace velquad::frame;

namespace {

constexpr int kSmallest = std::numeric_limits<int>::min();
constexpr int kLargest = std::numeric_limits<int>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(WrapAround, CarriesOverTheEndsOfTheRange) {
    EXPECT_EQ(wrapAdd(kLargest, 1), kSmallest);
    EXPECT_EQ(wrapSub(kSmallest, 1), kLargest);
    EXPECT_EQ(wrapMul(65536, 65536), 0);
    EXPECT_EQ(wrapMul(46341, 46341), -2147479015);
    EXPECT_EQ(wrapNeg(kSmallest), kSmallest);
    EXPECT_EQ(wrapAbs(kSmallest), kSmallest);
    EXPECT_EQ(wrapAbs(-7), 7);
}

TEST(TruncToInt32, CutsTowardsZeroAndMarksWhatDoesNotFit) {
    EXPECT_EQ(truncToInt32(2.9), 2);
    EXPECT_EQ(truncToInt32(-2.9), -2);
    EXPECT_EQ(truncToInt32(2147483647.9), kLargest);
    EXPECT_EQ(truncToInt32(2147483648.0), kSmallest);
    EXPECT_EQ(truncToInt32(-2147483648.9), kSmallest);
    EXPECT_EQ(truncToInt32(3e9), kSmallest);
    EXPECT_EQ(truncToInt32(kInfinity), kSmallest);
    EXPECT_EQ(truncToInt32(kNan), kSmallest);
}

TEST(TruncToInt64, CutsTowardsZeroAndMarksWhatDoesNotFit) {
    EXPECT_EQ(truncToInt64(-4294967296.5), -4294967296);
    EXPECT_EQ(truncToInt64(9.3e18), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(truncToInt64(kNan), std::numeric_limits<std::int64_t>::min());
}

TEST(LroundToInt32, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(lroundToInt32(0.5), 1);
    EXPECT_EQ(lroundToInt32(-0.5), -1);
    EXPECT_EQ(lroundToInt32(2.4999999999999996), 2);
    EXPECT_EQ(lroundToInt32(0.49999999999999994), 0);
}

TEST(LroundToInt32, KeepsTheLow32BitsOfTheWideResult) {
    EXPECT_EQ(lroundToInt32(4294967297.0), 1);
    EXPECT_EQ(lroundToInt32(2147483648.0), kSmallest);
    EXPECT_EQ(lroundToInt32(-4294967297.0), -1);
}

TEST(LroundToInt32, GivesZeroBeyond64Bits) {
    EXPECT_EQ(lroundToInt32(9223372036854775808.0), 0);
    EXPECT_EQ(lroundToInt32(-1e300), 0);
    EXPECT_EQ(lroundToInt32(kInfinity), 0);
    EXPECT_EQ(lroundToInt32(kNan), 0);
}
