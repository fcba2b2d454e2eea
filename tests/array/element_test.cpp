// Conversion, fill, limits, linear map, and one number as an element.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/array_data.h"
#include "tests/support/element_reference.h"
#include "tests/support/kernel_levels.h"
#include "velquad/array.h"

namespace {

namespace reference = velquad::test::elements;
using velquad::test::fillRandom;
using velquad::test::forEachKernelLevel;
using velquad::test::LooseArray;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// One row as an array.
template <class T>
class Row {
  public:
    explicit Row(std::vector<T> values) : values_(std::move(values)) {}

    template <class Table = void**>
    Table rows() {
        return reinterpret_cast<Table>(&address_);
    }
    const std::vector<T>& values() const { return values_; }

  private:
    std::vector<T> values_;
    T* address_ = values_.data();
};

template <class T>
Row(std::vector<T>) -> Row<T>;

// Conversion to float.

TEST(ConvertToFloat, ReadsSignedBytesAsUnsigned) {
    Row source(std::vector<std::uint8_t>{0xFF, 0x80, 1});
    Row destination(std::vector<float>(3));
    EXPECT_EQ(1, matConvertArrayToFloat2v(source.rows(), destination.rows<float**>(), 3, 1, 1, 0));
    EXPECT_EQ((std::vector<float>{255.0F, 128.0F, 1.0F}), destination.values());
}

TEST(ConvertToFloat, RefusesSignedWordsAndUnknownTypes) {
    Row source(std::vector<std::int32_t>{1, 2});
    Row destination(std::vector<float>{7.0F, 8.0F});
    for (const unsigned int type : {0U, 3U, 5U, 11U}) {
        EXPECT_EQ(0, matConvertArrayToFloat2v(source.rows(), destination.rows<float**>(), 2, 1, type, 0));
        EXPECT_EQ((std::vector<float>{7.0F, 8.0F}), destination.values());
    }
}

TEST(ConvertToFloat, RefusesNullTables) {
    Row row(std::vector<float>{1.0F});
    EXPECT_EQ(0, matConvertArrayToFloat2v(nullptr, row.rows<float**>(), 1, 1, 2, 0));
    EXPECT_EQ(0, matConvertArrayToFloat2v(row.rows(), nullptr, 1, 1, 2, 0));
}

TEST(ConvertToFloat, TakesMeanOrLargestOfAPixel) {
    Row pixels(std::vector<std::uint8_t>{1, 2, 4, 200, 9, 3, 5, 1});
    Row destination(std::vector<float>(2));
    EXPECT_EQ(1, matConvertArrayToFloat2v(pixels.rows(), destination.rows<float**>(), 2, 1, 10, 0));
    EXPECT_EQ((std::vector<float>{static_cast<float>(7 / 3.0), static_cast<float>(17 / 3.0)}),
              destination.values());
    EXPECT_EQ(1, matConvertArrayToFloat2v(pixels.rows(), destination.rows<float**>(), 2, 1, 10, 1));
    EXPECT_EQ((std::vector<float>{4.0F, 9.0F}), destination.values());
    EXPECT_EQ(1, matConvertArrayToFloat2v(pixels.rows(), destination.rows<float**>(), 2, 1, 9, 3));
    EXPECT_EQ((std::vector<float>{4.0F, 200.0F}), destination.values());
    EXPECT_EQ(1, matConvertArrayToFloat2v(pixels.rows(), destination.rows<float**>(), 2, 1, 9, 2));
    EXPECT_EQ((std::vector<float>{static_cast<float>(7 / 3.0), static_cast<float>(212 / 3.0)}),
              destination.values());
}

TEST(ConvertToFloat, AnEmptyArrayIsDone) {
    Row row(std::vector<float>{1.0F});
    EXPECT_EQ(1, matConvertArrayToFloat2v(row.rows(), row.rows<float**>(), 1, 0, 2, 0));
    EXPECT_EQ(0, matConvertArrayToFloat2v(row.rows(), row.rows<float**>(), 1, 0, 3, 0));
}

// Conversion from float.

template <class T>
std::vector<T> fromFloats(std::vector<float> floats, unsigned int type, std::size_t valuesPerElement = 1) {
    const auto count = static_cast<unsigned int>(floats.size());
    Row<float> source(std::move(floats));
    Row<T> destination(std::vector<T>(count * valuesPerElement, T{77}));
    EXPECT_EQ(1, matConvertArrayFromFloat2v(source.rows<float**>(), destination.rows(), count, 1, type));
    return destination.values();
}

TEST(ConvertFromFloat, AFlatArrayGivesTheSmallestValues) {
    const std::vector<float> flat = {3.5F, 3.5F};
    EXPECT_EQ((std::vector<std::int8_t>{-128, -128}), fromFloats<std::int8_t>(flat, 1));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0}), fromFloats<std::uint8_t>(flat, 2));
    EXPECT_EQ((std::vector<std::int16_t>{-32768, -32768}), fromFloats<std::int16_t>(flat, 3));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 0}), fromFloats<std::uint16_t>(flat, 4));
    EXPECT_EQ((std::vector<std::uint32_t>{0, 0}), fromFloats<std::uint32_t>(flat, 6));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0, 0, 0, 0, 0}), fromFloats<std::uint8_t>(flat, 9, 3));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0, 0, 1, 0, 0, 0, 1}), fromFloats<std::uint8_t>(flat, 10, 4));
}

TEST(ConvertFromFloat, StretchesTheRange) {
    const std::vector<float> ramp = {0.0F, 0.5F, 1.0F};
    EXPECT_EQ((std::vector<std::int8_t>{-128, 0, 127}), fromFloats<std::int8_t>(ramp, 1));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 128, 255}), fromFloats<std::uint8_t>(ramp, 2));
    EXPECT_EQ((std::vector<std::int16_t>{-32768, 0, 32767}), fromFloats<std::int16_t>(ramp, 3));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 32768, 65535}), fromFloats<std::uint16_t>(ramp, 4));
    EXPECT_EQ((std::vector<std::uint32_t>{0, 2147483648U, 4294967295U}), fromFloats<std::uint32_t>(ramp, 6));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0, 0, 128, 128, 128, 255, 255, 255}),
              fromFloats<std::uint8_t>(ramp, 9, 3));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0, 0, 1, 128, 128, 128, 1, 255, 255, 255, 1}),
              fromFloats<std::uint8_t>(ramp, 10, 4));
}

TEST(ConvertFromFloat, SignedIntegersAreAllMaximal) {
    EXPECT_EQ((std::vector<std::int32_t>(4, 0x7FFFFFFF)),
              fromFloats<std::int32_t>({0.0F, -5.0F, 1.0F, 9.0F}, 5));
    EXPECT_EQ((std::vector<std::int32_t>(2, 0x7FFFFFFF)), fromFloats<std::int32_t>({2.0F, 2.0F}, 5));
}

TEST(ConvertFromFloat, UnsignedIntegersBeginAboveTheirLowerLimit) {
    // The scale is 4294967295 / 2^32. One step above 0.5 gives 0.50000006, which is still below the limit of 0.5000001;
    // two steps give 0.50000012, which half more makes 1.
    const float step = std::ldexp(1.0F, -24);
    EXPECT_EQ((std::vector<std::uint32_t>{0, 0, 0, 1, 0xFFFFFFFFU}),
              fromFloats<std::uint32_t>({0.0F, 0.5F, 0.5F + step, 0.5F + 2 * step, 4294967296.0F}, 6));
}

TEST(ConvertFromFloat, FloatingTypesAreNotNormalised) {
    EXPECT_EQ((std::vector<float>{3.0F, -7.5F}), fromFloats<float>({3.0F, -7.5F}, 7));
    EXPECT_EQ((std::vector<double>{3.0, -7.5}), fromFloats<double>({3.0F, -7.5F}, 8));
}

TEST(ConvertFromFloat, TheFlatLimitIsStrict) {
    // A range just below 1e-7 is flat, one just above is stretched.
    const float below = 9.99e-8F;
    const float above = 1.001e-7F;
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0}), fromFloats<std::uint8_t>({0.0F, below}, 2));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 255}), fromFloats<std::uint8_t>({0.0F, above}, 2));
}

TEST(ConvertFromFloat, RefusesEmptyArraysNullTablesAndUnknownTypes) {
    Row source(std::vector<float>{1.0F, 2.0F});
    Row destination(std::vector<std::uint8_t>{9, 9});
    const auto floats = source.rows<float**>();
    EXPECT_EQ(0, matConvertArrayFromFloat2v(floats, destination.rows(), 2, 0, 2));
    EXPECT_EQ(0, matConvertArrayFromFloat2v(floats, destination.rows(), 0, 1, 2));
    EXPECT_EQ(0, matConvertArrayFromFloat2v(nullptr, destination.rows(), 2, 1, 2));
    EXPECT_EQ(0, matConvertArrayFromFloat2v(floats, nullptr, 2, 1, 2));
    EXPECT_EQ(0, matConvertArrayFromFloat2v(floats, destination.rows(), 2, 1, 0));
    EXPECT_EQ(0, matConvertArrayFromFloat2v(floats, destination.rows(), 2, 1, 11));
    EXPECT_EQ((std::vector<std::uint8_t>{9, 9}), destination.values());
}

TEST(ConvertFromFloat, InfinitiesFlattenTheRange) {
    const float infinity = std::numeric_limits<float>::infinity();
    // 1 / infinity is 0, and 0 times infinity is not a number: all give the low bits of 0.
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0, 0}), fromFloats<std::uint8_t>({1.0F, infinity, 2.0F}, 2));
    EXPECT_EQ((std::vector<std::int8_t>{-128, 0}), fromFloats<std::int8_t>({1.0F, infinity}, 1));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 0}), fromFloats<std::uint16_t>({infinity, infinity}, 4));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 0}), fromFloats<std::uint16_t>({-infinity, -infinity}, 4));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ((std::vector<std::uint8_t>{0, 0}), fromFloats<std::uint8_t>({nan, nan}, 2));
}

TEST(ConvertFromFloat, ANotANumberIsTheLowBitsOfZero) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ((std::vector<std::int8_t>{-128, 0, 127}), fromFloats<std::int8_t>({0.0F, nan, 1.0F}, 1));
    EXPECT_EQ((std::vector<std::uint16_t>{0, 0, 65535}), fromFloats<std::uint16_t>({0.0F, nan, 1.0F}, 4));
    EXPECT_EQ((std::vector<std::int32_t>{INT32_MAX, 0}), fromFloats<std::int32_t>({0.0F, nan}, 5));
}

// One number.

template <class T>
T mapped(double value, unsigned int type) {
    unsigned char out[9] = {};
    EXPECT_EQ(1, matMapValue1d(value, out + 1, type));
    return reference::load<T>(out + 1, 0);
}

TEST(MapValue, RoundsAndLimitsSmallIntegers) {
    EXPECT_EQ(-128, mapped<std::int8_t>(-1e300, 1));
    EXPECT_EQ(127, mapped<std::int8_t>(127.4, 1));
    EXPECT_EQ(-1, mapped<std::int8_t>(-0.5, 1));
    EXPECT_EQ(0, mapped<std::uint8_t>(-3.0, 2));
    EXPECT_EQ(3, mapped<std::uint8_t>(2.5, 2));
    EXPECT_EQ(255, mapped<std::uint8_t>(kInfinity, 2));
    EXPECT_EQ(0, mapped<std::uint8_t>(kNan, 2));
    EXPECT_EQ(-32768, mapped<std::int16_t>(-40000.0, 3));
    EXPECT_EQ(65535, mapped<std::uint16_t>(65534.5, 4));
}

TEST(MapValue, SaturatesSignedIntegers) {
    EXPECT_EQ(0x7FFFFFFF, mapped<std::int32_t>(2147483646.5, 5));
    EXPECT_EQ(2147483646, mapped<std::int32_t>(std::nextafter(2147483646.5, 0.0), 5));
    EXPECT_EQ(INT32_MIN, mapped<std::int32_t>(std::nextafter(-2147483647.5, -1e10), 5));
    EXPECT_EQ(-2147483647 - 1, mapped<std::int32_t>(-2147483647.5, 5));
    EXPECT_EQ(-2147483647, mapped<std::int32_t>(-2147483647.25, 5));
    EXPECT_EQ(0, mapped<std::int32_t>(kNan, 5));
}

TEST(MapValue, LargeUnsignedIntegersTurnIntoTheSmallestSignedOne) {
    EXPECT_EQ(0x80000000U, mapped<std::uint32_t>(3000000000.0, 6));
    EXPECT_EQ(0x80000000U, mapped<std::uint32_t>(2147483647.5, 6));
    EXPECT_EQ(0x7FFFFFFFU, mapped<std::uint32_t>(2147483647.25, 6));
    EXPECT_EQ(0x80000000U, mapped<std::uint32_t>(std::nextafter(4294967294.5, 0.0), 6));
    EXPECT_EQ(0xFFFFFFFFU, mapped<std::uint32_t>(4294967294.5, 6));
    EXPECT_EQ(0U, mapped<std::uint32_t>(-5.0, 6));
    EXPECT_EQ(0U, mapped<std::uint32_t>(0.25, 6));
    EXPECT_EQ(1U, mapped<std::uint32_t>(0.5, 6));
}

TEST(MapValue, FloatsAreLimitedAndDoublesAreNot) {
    EXPECT_EQ(std::numeric_limits<float>::max(), mapped<float>(1e300, 7));
    EXPECT_EQ(-std::numeric_limits<float>::max(), mapped<float>(-kInfinity, 7));
    EXPECT_EQ(1e300, mapped<double>(1e300, 8));
}

TEST(MapValue, PixelsArePackedLowByteFirst) {
    unsigned char out[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_EQ(1, matMapValue1d(0x0A0B0C0D + 0.9, out, 9));
    EXPECT_EQ(0x0D, out[0]);
    EXPECT_EQ(0x0C, out[1]);
    EXPECT_EQ(0x0B, out[2]);
    EXPECT_EQ(9, out[3]);
    EXPECT_EQ(1, matMapValue1d(-1.0, out, 10));
    EXPECT_EQ(0xFF, out[3]);
    EXPECT_EQ(9, out[4]);
    EXPECT_EQ(1, matMapValue1d(1e30, out, 10));
    EXPECT_EQ(0, out[0]) << "beyond 64 bits the low bytes are 0";
}

TEST(MapValue, RefusesUnknownTypes) {
    unsigned char out[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(0, matMapValue1d(5.0, out, 0));
    EXPECT_EQ(0, matMapValue1d(5.0, out, 11));
    EXPECT_EQ(0, matMapValue1d(5.0, nullptr, 2));
    EXPECT_EQ(1, out[0]);
}

// Fill.

TEST(Clear, KeepsTheFourthByteOfPixels) {
    Row row(std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(1, matClearArray2v(row.rows(), 2, 1, 10, 0xAABBCCDD));
    EXPECT_EQ((std::vector<std::uint8_t>{0xDD, 0xCC, 0xBB, 4, 0xDD, 0xCC, 0xBB, 8}), row.values());
}

TEST(Clear, StoresDoublesUnlimited) {
    Row row(std::vector<double>{1.0, 2.0});
    EXPECT_EQ(1, matClearArray2v(row.rows(), 2, 1, 8, -kInfinity));
    EXPECT_EQ((std::vector<double>{-kInfinity, -kInfinity}), row.values());
}

TEST(Clear, RefusesUnknownTypes) {
    EXPECT_EQ(0, matClearArray2v(nullptr, 2, 1, 0, 1.0));
    EXPECT_EQ(0, matClearArray2v(nullptr, 2, 1, 11, 1.0));
    EXPECT_EQ(1, matClearArray2v(nullptr, 2, 0, 2, 1.0)) << "no row is touched";
    EXPECT_EQ(0, matClearArray2v(nullptr, 2, 1, 2, 1.0));
}

// Limits.

template <class T>
std::vector<T> clampedTo(std::vector<T> values, unsigned int type, double low, double high,
                         std::size_t valuesPerElement = 1) {
    const auto count = static_cast<unsigned int>(values.size() / valuesPerElement);
    Row<T> row(std::move(values));
    EXPECT_EQ(1, matClampArray2v(row.rows(), count, 1, type, low, high));
    return row.values();
}

TEST(Clamp, SignedIntegersBecomeTheHighBound) {
    EXPECT_EQ((std::vector<std::int32_t>(3, 20)), clampedTo<std::int32_t>({-5, 15, 25}, 5, 10.0, 20.0));
    EXPECT_EQ((std::vector<std::int32_t>(3, 20)),
              clampedTo<std::int32_t>({-5, 15, 25}, 5, 2147483646.0, 20.0));
    EXPECT_EQ((std::vector<std::int32_t>{-5, 15, 20}), clampedTo<std::int32_t>({-5, 15, 25}, 5, -3e9, 20.0));
}

TEST(Clamp, BoundsOfSignedIntegersSaturateAtTheirLimits) {
    // -2147483647.0 lies within the range, the next number below it does not.
    EXPECT_EQ((std::vector<std::int32_t>(2, 20)), clampedTo<std::int32_t>({-5, 25}, 5, -2147483647.0, 20.0));
    EXPECT_EQ((std::vector<std::int32_t>{-5, 20}),
              clampedTo<std::int32_t>({-5, 25}, 5, std::nextafter(-2147483647.0, -1e10), 20.0));
    EXPECT_EQ((std::vector<std::int32_t>{-5, INT32_MAX}),
              clampedTo<std::int32_t>({-5, INT32_MAX}, 5, -3e9, 2147483646.0));
    EXPECT_EQ((std::vector<std::int32_t>{-5, 2147483646}),
              clampedTo<std::int32_t>({-5, INT32_MAX}, 5, -3e9, std::nextafter(2147483646.0, 0.0)));
    EXPECT_EQ((std::vector<std::int32_t>(2, INT32_MIN)), clampedTo<std::int32_t>({-5, 25}, 5, -3e9, -3e9));
    // The low bound is what 3e9 leaves in 32 bits; the high one is the largest integer.
    EXPECT_EQ((std::vector<std::int32_t>{-1294967296, 25}),
              clampedTo<std::int32_t>({-2000000000, 25}, 5, 10.0, 3e9));
}

TEST(Clamp, BoundsOfUnsignedIntegersSaturateAndRoundHalvesUp) {
    EXPECT_EQ((std::vector<std::uint32_t>{10, 21}), clampedTo<std::uint32_t>({5, 30}, 6, 9.5, 20.5));
    EXPECT_EQ((std::vector<std::uint32_t>{0, 0xFFFFFFFFU}),
              clampedTo<std::uint32_t>({0, 0xFFFFFFFFU}, 6, -5.0, 4294967296.0));
    EXPECT_EQ((std::vector<std::uint32_t>{0, 0xFFFFFFFFU}),
              clampedTo<std::uint32_t>({0, 0xFFFFFFFFU}, 6, -5.0, 4294967295.0));
    EXPECT_EQ((std::vector<std::uint32_t>{0, 0}), clampedTo<std::uint32_t>({0, 30}, 6, -5.0, -1.0));
}

TEST(Clamp, CrossedBoundsAreDecidedPerType) {
    EXPECT_EQ((std::vector<std::uint16_t>(3, 50)), clampedTo<std::uint16_t>({0, 30, 70}, 4, 50.0, 20.0));
    EXPECT_EQ((std::vector<std::int16_t>(3, 20)), clampedTo<std::int16_t>({0, 30, 70}, 3, 50.0, 20.0));
    EXPECT_EQ((std::vector<float>(3, 50.0F)), clampedTo<float>({0.0F, 30.0F, 70.0F}, 7, 50.0, 20.0));
    EXPECT_EQ((std::vector<double>(3, 50.0)), clampedTo<double>({0.0, 30.0, 70.0}, 8, 50.0, 20.0));
    EXPECT_EQ((std::vector<std::uint8_t>(3, 20)), clampedTo<std::uint8_t>({0, 30, 70}, 2, 50.0, 20.0));
    EXPECT_EQ((std::vector<std::int8_t>(3, 20)), clampedTo<std::int8_t>({0, 30, 70}, 1, 50.0, 20.0));
    EXPECT_EQ((std::vector<std::uint32_t>(3, 20)), clampedTo<std::uint32_t>({0, 30, 70}, 6, 50.0, 20.0));
}

TEST(Clamp, ABoundBeyondTheOtherEndLosesItsHighBits) {
    // -1 as a high bound of bytes is 255, 257 as a low bound is 1.
    EXPECT_EQ((std::vector<std::uint8_t>{1, 1, 200}), clampedTo<std::uint8_t>({0, 1, 200}, 2, 257.0, -1.0));
    EXPECT_EQ((std::vector<std::uint8_t>{10, 20}), clampedTo<std::uint8_t>({5, 30}, 2, 9.5, 20.49));
}

TEST(Clamp, LeavesTheFourthByteOfPixels) {
    EXPECT_EQ((std::vector<std::uint8_t>{10, 20, 15, 0, 20, 20, 10, 255}),
              clampedTo<std::uint8_t>({0, 99, 15, 0, 255, 20, 9, 255}, 10, 10.0, 20.0, 4));
    EXPECT_EQ((std::vector<std::uint8_t>{10, 20, 15}),
              clampedTo<std::uint8_t>({0, 99, 15}, 9, 10.0, 20.0, 3));
}

TEST(Clamp, KeepsNotANumbersAndIgnoresThemAsBounds) {
    EXPECT_TRUE(std::isnan(clampedTo<double>({kNan}, 8, 0.0, 1.0)[0]));
    EXPECT_EQ((std::vector<double>{-5.0, 1.0}), clampedTo<double>({-5.0, 3.0}, 8, kNan, 1.0));
}

TEST(Clamp, RefusesUnknownTypes) {
    EXPECT_EQ(0, matClampArray2v(nullptr, 1, 1, 0, 0.0, 1.0));
    EXPECT_EQ(0, matClampArray2v(nullptr, 1, 1, 11, 0.0, 1.0));
    EXPECT_EQ(1, matClampArray2v(nullptr, 1, 0, 5, 0.0, 1.0));
    EXPECT_EQ(0, matClampArray2v(nullptr, 1, 1, 5, 0.0, 1.0));
}

// Linear map.

template <class T>
std::vector<T> transformed(std::vector<T> values, unsigned int type, double offset, double scale, double bias,
                           std::size_t valuesPerElement = 1) {
    const auto count = static_cast<unsigned int>(values.size() / valuesPerElement);
    Row<T> row(std::move(values));
    EXPECT_EQ(type == 1 ? 0 : 1, matTransformArray2v(row.rows(), count, 1, type, offset, scale, bias));
    return row.values();
}

TEST(Transform, SignedBytesAreChangedAndStillGiveZero) {
    EXPECT_EQ((std::vector<std::int8_t>{-128, 3, 127}),
              transformed<std::int8_t>({-100, 1, 100}, 1, 0.5, 2.0, 0.0));
}

TEST(Transform, RoundsHalvesAwayFromZero) {
    EXPECT_EQ((std::vector<std::int16_t>{-2, -1, 1, 2}),
              transformed<std::int16_t>({-3, -1, 1, 3}, 3, 0.0, 0.5, 0.0));
    EXPECT_EQ((std::vector<std::uint8_t>{0, 1, 95}),
              transformed<std::uint8_t>({10, 11, 200}, 2, -10.0, 0.5, 0.0));
}

TEST(Transform, LargeUnsignedIntegersKeepTheirValue) {
    EXPECT_EQ((std::vector<std::uint32_t>{3000000000U, 0xFFFFFFFFU, 0U}),
              transformed<std::uint32_t>({1500000000U, 4000000000U, 0U}, 6, 0.0, 2.0, 0.0));
}

TEST(Transform, ResultsBeyondLongKeepTheirLowBits) {
    // 2^32 + 5 is 5 in 32 bits, 1e30 has no result and gives 0.
    EXPECT_EQ((std::vector<std::uint8_t>{5}), transformed<std::uint8_t>({0}, 2, 0.0, 1.0, 4294967301.0));
    EXPECT_EQ((std::vector<std::uint8_t>{0}), transformed<std::uint8_t>({7}, 2, 0.0, 1.0, 1e30));
    EXPECT_EQ((std::vector<std::uint8_t>{0}), transformed<std::uint8_t>({7}, 2, kNan, 1.0, 1.0));
}

TEST(Transform, LeavesTheFourthByteOfPixels) {
    EXPECT_EQ((std::vector<std::uint8_t>{2, 4, 255, 7}),
              transformed<std::uint8_t>({1, 2, 200, 7}, 10, 0, 2, 0, 4));
    EXPECT_EQ((std::vector<std::uint8_t>{2, 4, 255}), transformed<std::uint8_t>({1, 2, 200}, 9, 0, 2, 0, 3));
}

TEST(Transform, RefusesNullAndUnknownTypes) {
    Row row(std::vector<std::uint8_t>{1});
    EXPECT_EQ(0, matTransformArray2v(nullptr, 1, 1, 2, 0.0, 1.0, 1.0));
    EXPECT_EQ(0, matTransformArray2v(row.rows(), 1, 1, 0, 0.0, 1.0, 1.0));
    EXPECT_EQ(0, matTransformArray2v(row.rows(), 1, 1, 11, 0.0, 1.0, 1.0));
    EXPECT_EQ(0, matTransformArray2v(row.rows(), 1, 0, 1, 0.0, 1.0, 1.0));
    EXPECT_EQ(1, matTransformArray2v(row.rows(), 1, 0, 2, 0.0, 1.0, 1.0));
    EXPECT_EQ(1, row.values()[0]);
}

// All of them against their definitions.

/// The bytes of an array, with all not-a-numbers of floating types made the same.
std::vector<unsigned char> comparable(LooseArray& array, std::size_t width, std::size_t height,
                                      unsigned int type) {
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            if (type == 7 && std::isnan(array.get<float>(y, x)))
                array.set(y, x, std::numeric_limits<float>::quiet_NaN());
            if (type == 8 && std::isnan(array.get<double>(y, x))) array.set(y, x, kNan);
        }
    }
    return array.bytes();
}

class AgainstDefinition : public testing::TestWithParam<unsigned int> {
  protected:
    static constexpr unsigned int kSizes[][2] = {{0, 0}, {0, 3},  {3, 0},   {1, 1},
                                                 {2, 5}, {67, 3}, {700, 2}, {5000, 2}};

    /// Calls `check(width, height, array)` with random arrays of the type.
    template <class Check>
    void forEachArray(Check check) {
        for (const auto& size : kSizes) {
            for (const bool special : {false, true}) {
                const auto seed = static_cast<unsigned int>(random_());
                SCOPED_TRACE(testing::Message() << size[0] << " x " << size[1] << " seed " << seed);
                std::mt19937 random(seed);
                LooseArray array(size[0], size[1], GetParam());
                fillRandom(array, size[0], size[1], GetParam(), random, special);
                check(size[0], size[1], array);
            }
        }
    }

    /// Applies two versions of an operation to copies of an array and compares all bytes.
    template <class Actual, class Expected>
    void expectSame(unsigned int width, unsigned int height, const LooseArray& array, Actual actual,
                    Expected expected) {
        const unsigned int type = GetParam();
        LooseArray wanted(width, height, type);
        wanted.copyBytes(array);
        const int wantedResult = expected(wanted.rows());
        forEachKernelLevel([&] {
            LooseArray got(width, height, type);
            got.copyBytes(array);
            EXPECT_EQ(wantedResult, actual(got.rows()));
            EXPECT_TRUE(comparable(wanted, width, height, type) == comparable(got, width, height, type));
        });
    }

    static constexpr double kNumbers[] = {0.0,           1.0,
                                          -1.0,          0.5,
                                          -0.5,          0.5000001,
                                          127.5,         -128.5,
                                          255.5,         254.49999999999997,
                                          32767.5,       -32768.5,
                                          65535.5,       1e-7,
                                          9e-8,          2147483646.0,
                                          2147483646.5,  2147483647.5,
                                          -2147483647.0, -2147483647.5,
                                          -2147483649.,  4294967294.5,
                                          4294967295.0,  4294967296.5,
                                          1e18,          1e300,
                                          -1e300,        0.49999999999999994,
                                          kInfinity,     -kInfinity,
                                          kNan,          3.4028234663852886e+38,
                                          1234.5678};

    std::mt19937 random_{20240612};
};

TEST_P(AgainstDefinition, ConvertsToFloat) {
    const unsigned int type = GetParam();
    forEachArray([&](unsigned int width, unsigned int height, LooseArray& array) {
        for (const int flags : {0, 1}) {
            LooseArray wanted(width, height, 7);
            const int result =
                reference::convertToFloat(array.rows(), wanted.rows(), width, height, type, flags);
            forEachKernelLevel([&] {
                LooseArray got(width, height, 7);
                EXPECT_EQ(result, matConvertArrayToFloat2v(array.rows(), got.rows<float**>(), width, height,
                                                           type, flags));
                EXPECT_TRUE(comparable(wanted, width, height, 7) == comparable(got, width, height, 7));
            });
        }
    });
}

TEST_P(AgainstDefinition, ConvertsFromFloat) {
    const unsigned int type = GetParam();
    for (const auto& size : kSizes) {
        for (const bool special : {false, true}) {
            const auto seed = static_cast<unsigned int>(random_());
            SCOPED_TRACE(testing::Message() << size[0] << " x " << size[1] << " seed " << seed);
            std::mt19937 random(seed);
            LooseArray floats(size[0], size[1], 7);
            fillRandom(floats, size[0], size[1], 7, random, special);
            LooseArray wanted(size[0], size[1], type);
            const int result =
                reference::convertFromFloat(floats.rows(), wanted.rows(), size[0], size[1], type);
            forEachKernelLevel([&] {
                LooseArray got(size[0], size[1], type);
                EXPECT_EQ(result, matConvertArrayFromFloat2v(floats.rows<float**>(), got.rows(), size[0],
                                                             size[1], type));
                EXPECT_TRUE(comparable(wanted, size[0], size[1], type) ==
                            comparable(got, size[0], size[1], type));
            });
        }
    }
}

TEST_P(AgainstDefinition, MapsNumbers) {
    for (const double number : kNumbers) {
        SCOPED_TRACE(number);
        unsigned char wanted[8] = {};
        unsigned char got[8] = {};
        EXPECT_EQ(reference::mapValue(number, wanted, GetParam()), matMapValue1d(number, got, GetParam()));
        EXPECT_EQ(0, std::memcmp(wanted, got, sizeof(got)));
    }
}

TEST_P(AgainstDefinition, Clears) {
    forEachArray([&](unsigned int width, unsigned int height, LooseArray& array) {
        for (const double number : kNumbers) {
            expectSame(
                width, height, array,
                [&](void** rows) { return matClearArray2v(rows, width, height, GetParam(), number); },
                [&](void** rows) { return reference::clear(rows, width, height, GetParam(), number); });
        }
    });
}

TEST_P(AgainstDefinition, Clamps) {
    forEachArray([&](unsigned int width, unsigned int height, LooseArray& array) {
        for (int round = 0; round < 60; ++round) {
            const double low = kNumbers[random_() % std::size(kNumbers)];
            const double high = kNumbers[random_() % std::size(kNumbers)];
            SCOPED_TRACE(testing::Message() << low << " to " << high);
            expectSame(
                width, height, array,
                [&](void** rows) { return matClampArray2v(rows, width, height, GetParam(), low, high); },
                [&](void** rows) { return reference::clamp(rows, width, height, GetParam(), low, high); });
        }
    });
}

TEST_P(AgainstDefinition, Transforms) {
    forEachArray([&](unsigned int width, unsigned int height, LooseArray& array) {
        for (int round = 0; round < 60; ++round) {
            const bool isOrdinary = round % 2 == 0;
            const double offset = isOrdinary ? std::uniform_real_distribution<double>(-50, 50)(random_)
                                             : kNumbers[random_() % std::size(kNumbers)];
            const double scale = isOrdinary ? std::ldexp(1.0, static_cast<int>(random_() % 6) - 3)
                                            : kNumbers[random_() % std::size(kNumbers)];
            const double bias = isOrdinary ? 0.5 * static_cast<double>(random_() % 8)
                                           : kNumbers[random_() % std::size(kNumbers)];
            SCOPED_TRACE(testing::Message() << "(e + " << offset << ") * " << scale << " + " << bias);
            expectSame(
                width, height, array,
                [&](void** rows) {
                    return matTransformArray2v(rows, width, height, GetParam(), offset, scale, bias);
                },
                [&](void** rows) {
                    return reference::transform(rows, width, height, GetParam(), offset, scale, bias);
                });
        }
    });
}

// Arrays beyond the caches, which are written past them.

constexpr unsigned int kLargeWidth = 4099;
constexpr unsigned int kLargeHeight = 2801;

TEST(LargeArrays, AreConvertedAsSmallOnes) {
    std::mt19937 random(20261121);
    LooseArray bytes(kLargeWidth, kLargeHeight, 2);
    fillRandom(bytes, kLargeWidth, kLargeHeight, 2, random);
    LooseArray floats(kLargeWidth, kLargeHeight, 7);
    reference::convertToFloat(bytes.rows(), floats.rows(), kLargeWidth, kLargeHeight, 2, 0);
    LooseArray doubles(kLargeWidth, kLargeHeight, 8);
    reference::convertFromFloat(floats.rows(), doubles.rows(), kLargeWidth, kLargeHeight, 8);
    forEachKernelLevel([&] {
        LooseArray gotFloats(kLargeWidth, kLargeHeight, 7);
        EXPECT_EQ(1, matConvertArrayToFloat2v(bytes.rows(), gotFloats.rows<float**>(), kLargeWidth,
                                              kLargeHeight, 2, 0));
        EXPECT_TRUE(floats.bytes() == gotFloats.bytes());
        LooseArray gotDoubles(kLargeWidth, kLargeHeight, 8);
        EXPECT_EQ(1, matConvertArrayFromFloat2v(floats.rows<float**>(), gotDoubles.rows(), kLargeWidth,
                                                kLargeHeight, 8));
        EXPECT_TRUE(doubles.bytes() == gotDoubles.bytes());
    });
}

TEST(LargeArrays, AreFilledAsSmallOnes) {
    for (const unsigned int type : {7U, 9U, 10U}) {
        SCOPED_TRACE(type);
        LooseArray wanted(kLargeWidth, kLargeHeight, type);
        reference::clear(wanted.rows(), kLargeWidth, kLargeHeight, type, 1193046.0);
        forEachKernelLevel([&] {
            LooseArray got(kLargeWidth, kLargeHeight, type);
            EXPECT_EQ(1, matClearArray2v(got.rows(), kLargeWidth, kLargeHeight, type, 1193046.0));
            EXPECT_TRUE(wanted.bytes() == got.bytes());
        });
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, AgainstDefinition, testing::Range(1U, 11U));

}  // namespace
