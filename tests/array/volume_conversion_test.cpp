#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "array/volume_rounding.h"
#include "frame/kernels.h"
#include "tests/support/volume_data.h"
#include "tests/support/volume_reference.h"
#include "velquad/array.h"

namespace {

using velquad::test::LooseArray;
using velquad::test::LooseVolume;
namespace volume = velquad::test::volume;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/// One double converted to one element.
template <class T>
T fromDouble(double value, unsigned int type) {
    LooseVolume source(1, 1, 1, MAT_ARRAY_DOUBLE);
    LooseVolume destination(1, 1, 1, type);
    source.set(0, 0, 0, value);
    EXPECT_EQ(matConvertFromDouble3v(source.slices<double***>(), destination.slices(), 1, 1, 1, type, 1), 1);
    return destination.get<T>(0, 0, 0);
}

TEST(VolumeConversionTest, RoundsAndLimitsUnsignedBytes) {
    EXPECT_EQ(fromDouble<std::uint8_t>(254.5, 2), 255);
    EXPECT_EQ(fromDouble<std::uint8_t>(254.4, 2), 254);
    EXPECT_EQ(fromDouble<std::uint8_t>(-0.4, 2), 0);
    EXPECT_EQ(fromDouble<std::uint8_t>(300.0, 2), 255);
    EXPECT_EQ(fromDouble<std::uint8_t>(-300.0, 2), 0);
}

TEST(VolumeConversionTest, RoundsNegativeHalvesUp) {
    EXPECT_EQ(fromDouble<std::int8_t>(-0.5, 1), 0);
    EXPECT_EQ(fromDouble<std::int8_t>(-0.51, 1), -1);
    EXPECT_EQ(fromDouble<std::int8_t>(-0.509, 1), 0);
    EXPECT_EQ(fromDouble<std::int8_t>(0.5, 1), 1);
    EXPECT_EQ(fromDouble<std::int8_t>(-1.5, 1), -1);
    EXPECT_EQ(fromDouble<std::int8_t>(-1.51, 1), -2);
    EXPECT_EQ(fromDouble<std::int8_t>(127.5, 1), 127);
    EXPECT_EQ(fromDouble<std::int8_t>(-200.0, 1), -128);
}

TEST(VolumeConversionTest, Limits16BitsAfterTruncation) {
    EXPECT_EQ(fromDouble<std::int16_t>(40000.0, 3), 32767);
    EXPECT_EQ(fromDouble<std::int16_t>(-40000.0, 3), -32768);
    EXPECT_EQ(fromDouble<std::uint16_t>(70000.0, 4), 65535);
    EXPECT_EQ(fromDouble<std::uint16_t>(-1.0, 4), 0);
    // Beyond 32 bits everything is the lowest integer before the limits come.
    EXPECT_EQ(fromDouble<std::uint8_t>(3e9, 2), 0);
    EXPECT_EQ(fromDouble<std::int8_t>(3e9, 1), -128);
    EXPECT_EQ(fromDouble<std::int16_t>(kInfinity, 3), -32768);
    EXPECT_EQ(fromDouble<std::uint16_t>(kNotANumber, 4), 0);
}

TEST(VolumeConversionTest, WrapsNegativeValuesOfType6) {
    EXPECT_EQ(fromDouble<std::uint32_t>(-1.0, 6), 0xFFFFFFFFU);
    EXPECT_EQ(fromDouble<std::uint32_t>(-2.0, 6), 0xFFFFFFFEU);
    EXPECT_EQ(fromDouble<std::uint32_t>(-0.5, 6), 0U);
}

TEST(VolumeConversionTest, Type6HasItsGap) {
    EXPECT_EQ(fromDouble<std::uint32_t>(2147483647.0, 6), 2147483647U);
    EXPECT_EQ(fromDouble<std::uint32_t>(2147483647.4, 6), 2147483647U);
    EXPECT_EQ(fromDouble<std::uint32_t>(2147483647.5, 6), 0x80000000U);
    EXPECT_EQ(fromDouble<std::uint32_t>(3000000000.0, 6), 0x80000000U);
    EXPECT_EQ(fromDouble<std::uint32_t>(4294967294.499999, 6), 0x80000000U);
    EXPECT_EQ(fromDouble<std::uint32_t>(std::nextafter(4294967294.499999, 5e9), 6), 0xFFFFFFFFU);
    EXPECT_EQ(fromDouble<std::uint32_t>(kInfinity, 6), 0xFFFFFFFFU);
    EXPECT_EQ(fromDouble<std::uint32_t>(-kInfinity, 6), 0x80000000U);
    EXPECT_EQ(fromDouble<std::uint32_t>(kNotANumber, 6), 0x80000000U);
}

TEST(VolumeConversionTest, Type5HasItsGap) {
    EXPECT_EQ(fromDouble<std::int32_t>(3000000000.0, 5), INT32_MIN);
    EXPECT_EQ(fromDouble<std::int32_t>(5000000000.0, 5), INT32_MAX);
    EXPECT_EQ(fromDouble<std::int32_t>(2147483647.0, 5), INT32_MAX);
    EXPECT_EQ(fromDouble<std::int32_t>(2147483647.5, 5), INT32_MIN);
    EXPECT_EQ(fromDouble<std::int32_t>(-2147483647.4, 5), -2147483647);
    EXPECT_EQ(fromDouble<std::int32_t>(-2147483647.499999, 5), -2147483647);
    EXPECT_EQ(fromDouble<std::int32_t>(std::nextafter(-2147483647.499999, -3e9), 5), INT32_MIN);
    EXPECT_EQ(fromDouble<std::int32_t>(-3e9, 5), INT32_MIN);
    EXPECT_EQ(fromDouble<std::int32_t>(kNotANumber, 5), INT32_MIN);
}

TEST(VolumeConversionTest, LimitsFloats) {
    EXPECT_EQ(fromDouble<float>(1e300, 7), std::numeric_limits<float>::max());
    EXPECT_EQ(fromDouble<float>(-kInfinity, 7), -std::numeric_limits<float>::max());
    EXPECT_TRUE(std::isnan(fromDouble<float>(kNotANumber, 7)));
    EXPECT_EQ(fromDouble<float>(0.1, 7), 0.1F);
    EXPECT_EQ(fromDouble<double>(1e300, 8), 1e300);
}

TEST(VolumeConversionTest, HonoursSignedTypes) {
    LooseVolume bytes(1, 1, 1, MAT_ARRAY_INT8);
    LooseVolume floats(1, 1, 1, MAT_ARRAY_FLOAT);
    bytes.set<std::uint8_t>(0, 0, 0, 0xFF);
    EXPECT_EQ(matConvertToFloat3v(floats.slices<float***>(), bytes.slices(), 1, 1, 1, MAT_ARRAY_INT8, 1), 1);
    EXPECT_EQ(floats.get<float>(0, 0, 0), -1.0F);
    EXPECT_EQ(matConvertToFloat3v(floats.slices<float***>(), bytes.slices(), 1, 1, 1, MAT_ARRAY_UINT8, 1), 1);
    EXPECT_EQ(floats.get<float>(0, 0, 0), 255.0F);
}

TEST(VolumeConversionTest, RefusesPixelsAndUnknownTypes) {
    LooseVolume data(4, 1, 1, MAT_ARRAY_DOUBLE);
    LooseVolume before(4, 1, 1, MAT_ARRAY_DOUBLE);
    for (const unsigned int type : {0U, 9U, 10U, 11U, 0xFFFFFFFFU}) {
        EXPECT_EQ(matConvertToFloat3v(data.slices<float***>(), data.slices(), 1, 1, 1, type, 1), 0) << type;
        EXPECT_EQ(matConvertToDouble3v(data.slices<double***>(), data.slices(), 1, 1, 1, type, 1), 0) << type;
        EXPECT_EQ(matConvertFromFloat3v(data.slices<float***>(), data.slices(), 1, 1, 1, type, 1), 0) << type;
        EXPECT_EQ(matConvertFromDouble3v(data.slices<double***>(), data.slices(), 1, 1, 1, type, 1), 0)
            << type;
        EXPECT_EQ(matConvertFromDouble3v(data.slices<double***>(), data.slices(), 1, 1, 0, type, 1), 0)
            << type;
        LooseArray& slice = data.slice(0);
        EXPECT_EQ(matConvertToFloat2v(slice.rows<float**>(), slice.rows(), 1, 1, type, 1), 0) << type;
        EXPECT_EQ(matConvertFromDouble2v(slice.rows<double**>(), slice.rows(), 1, 1, type, 1), 0) << type;
    }
    EXPECT_TRUE(data.equals(before));
}

TEST(VolumeConversionTest, RefusesNullTables) {
    LooseVolume data(1, 1, 1, MAT_ARRAY_DOUBLE);
    auto*** doubles = data.slices<double***>();
    auto*** floats = data.slices<float***>();
    EXPECT_EQ(matConvertToDouble3v(nullptr, data.slices(), 1, 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertToDouble3v(doubles, nullptr, 1, 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertToFloat3v(nullptr, data.slices(), 1, 1, 0, 2, 1), 0);
    EXPECT_EQ(matConvertFromFloat3v(floats, nullptr, 1, 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertFromDouble3v(nullptr, data.slices(), 1, 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertToDouble2v(nullptr, data.slice(0).rows(), 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertToFloat2v(data.slice(0).rows<float**>(), nullptr, 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertFromDouble2v(nullptr, data.slice(0).rows(), 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertFromFloat2v(data.slice(0).rows<float**>(), nullptr, 1, 1, 2, 1), 0);
    EXPECT_EQ(matConvertToDouble3v(doubles, data.slices(), 1, 1, 0, 2, 1), 1);
}

TEST(VolumeConversionTest, SlicesConvertAsVolumesOfDepthOne) {
    LooseArray bytes(6, 2, MAT_ARRAY_UINT8);
    LooseArray doubles(6, 2, MAT_ARRAY_DOUBLE);
    LooseArray floats(6, 2, MAT_ARRAY_FLOAT);
    LooseArray back(6, 2, MAT_ARRAY_UINT8);
    bytes.set<std::uint8_t>(1, 5, 200);
    EXPECT_EQ(matConvertToDouble2v(doubles.rows<double**>(), bytes.rows(), 2, 2, MAT_ARRAY_UINT8, 3), 1);
    EXPECT_EQ(doubles.get<double>(1, 5), 200.0);
    EXPECT_EQ(matConvertToFloat2v(floats.rows<float**>(), bytes.rows(), 2, 2, MAT_ARRAY_UINT8, 3), 1);
    EXPECT_EQ(floats.get<float>(1, 5), 200.0F);
    EXPECT_EQ(matConvertFromDouble2v(doubles.rows<double**>(), back.rows(), 2, 2, MAT_ARRAY_UINT8, 3), 1);
    EXPECT_EQ(back.bytes(), bytes.bytes());
    back.set<std::uint8_t>(1, 5, 0);
    EXPECT_EQ(matConvertFromFloat2v(floats.rows<float**>(), back.rows(), 2, 2, MAT_ARRAY_UINT8, 3), 1);
    EXPECT_EQ(back.bytes(), bytes.bytes());
}

/// Numbers around every threshold of the rounders, and random ones of all sizes.
double testNumber(std::mt19937& random) {
    constexpr double kPlaces[] = {0.0,          -0.5,         0.5,           -0.49,          -0.51,
                                  127.5,        -128.5,       255.5,         32767.5,        -32768.5,
                                  65535.5,      2147483646.5, 2147483647.5,  -2147483647.5,  -2147483648.5,
                                  4294967294.5, 4294967295.0, 3.4028235e+38, -3.4028235e+38, 1e300,
                                  kInfinity,    -kInfinity,   kNotANumber,   1e-310};
    const double place = kPlaces[random() % (sizeof(kPlaces) / sizeof(double))];
    switch (random() % 5) {
        case 0:
            return place;
        case 1:
            return std::nextafter(place, random() % 2 == 0 ? -kInfinity : kInfinity);
        case 2:
            return place + std::uniform_real_distribution<double>(-2.0, 2.0)(random);
        case 3:
            return std::uniform_real_distribution<double>(-400.0, 400.0)(random);
        default:
            return std::uniform_real_distribution<double>(-6e9, 6e9)(random);
    }
}

template <class ElementType>
void expectSameRounding(double value) {
    using velquad::array::Int32Rounder;
    const auto wide = velquad::array::roundedTo<ElementType, Int32Rounder::kWide>(value);
    const auto narrow = velquad::array::roundedTo<ElementType, Int32Rounder::kNarrow>(value);
    const auto told = [value](bool isWide) {
        unsigned char place[8];
        volume::write(ElementType::kType, place, volume::rounderOf(ElementType::kType, isWide)(value));
        return volume::load<typename ElementType::Value>(place);
    };
    if (std::isnan(value) && ElementType::kType >= MAT_ARRAY_FLOAT) return;
    EXPECT_EQ(wide, told(true)) << value;
    EXPECT_EQ(narrow, told(false)) << value;
}

TEST(VolumeRoundingTest, OneChainOfSelectionsGivesTheRoundersResults) {
    std::mt19937 random(5);
    for (int i = 0; i < 20000; ++i) {
        const double value = testNumber(random);
        expectSameRounding<velquad::array::Int8Element>(value);
        expectSameRounding<velquad::array::UInt8Element>(value);
        expectSameRounding<velquad::array::Int16Element>(value);
        expectSameRounding<velquad::array::UInt16Element>(value);
        expectSameRounding<velquad::array::Int32Element>(value);
        expectSameRounding<velquad::array::UInt32Element>(value);
        expectSameRounding<velquad::array::FloatElement>(value);
        expectSameRounding<velquad::array::DoubleElement>(value);
        if (HasFailure()) return;
    }
}

TEST(VolumeRoundingTest, TheTwoInt32RoundersDiffer) {
    using velquad::array::Int32Element;
    using velquad::array::Int32Rounder;
    EXPECT_EQ((velquad::array::roundedTo<Int32Element, Int32Rounder::kNarrow>(3e9)), INT32_MAX);
    EXPECT_EQ((velquad::array::roundedTo<Int32Element, Int32Rounder::kWide>(3e9)), INT32_MIN);
}

class VolumeConversionLevels : public testing::TestWithParam<unsigned int> {
  protected:
    void TearDown() override { velquad::frame::selectKernelLevel(velquad::frame::kernelLevelCount() - 1); }
};

TEST_P(VolumeConversionLevels, EqualTheLoops) {
    const unsigned int type = GetParam();
    std::mt19937 random(100 + type);
    for (std::size_t level = 0; level < velquad::frame::kernelLevelCount(); ++level) {
        velquad::frame::selectKernelLevel(level);
        for (int round = 0; round < 60; ++round) {
            SCOPED_TRACE(testing::Message() << "level " << level << " round " << round);
            const volume::Shape shape = {
                static_cast<unsigned int>(random() % 70), static_cast<unsigned int>(random() % 3),
                static_cast<unsigned int>(random() % 3), type, static_cast<unsigned int>(random() % 3)};
            const std::size_t count = std::size_t{shape.width} * shape.channels;
            for (const unsigned int other : {7U, 8U}) {
                LooseVolume elements(count, shape.height, shape.depth, type);
                LooseVolume numbers(count, shape.height, shape.depth, other);
                LooseVolume expectedElements(count, shape.height, shape.depth, type);
                LooseVolume expectedNumbers(count, shape.height, shape.depth, other);
                elements.fill(random, true);
                volume::convert(elements.slices(), type, expectedNumbers.slices(), other, shape);
                const int widened =
                    other == 7
                        ? matConvertToFloat3v(numbers.slices<float***>(), elements.slices(), shape.width,
                                              shape.height, shape.depth, type, shape.channels)
                        : matConvertToDouble3v(numbers.slices<double***>(), elements.slices(), shape.width,
                                               shape.height, shape.depth, type, shape.channels);
                EXPECT_EQ(widened, 1);
                EXPECT_TRUE(numbers.equals(expectedNumbers));
                for (std::size_t z = 0; z < shape.depth; ++z) {
                    for (std::size_t y = 0; y < shape.height; ++y) {
                        for (std::size_t i = 0; i < count; ++i)
                            volume::write(other, numbers.slice(z).row(y) + i * volume::bytesOf(other),
                                          volume::rounderOf(other, true)(testNumber(random)));
                    }
                }
                volume::convert(numbers.slices(), other, expectedElements.slices(), type, shape);
                const int stored =
                    other == 7
                        ? matConvertFromFloat3v(numbers.slices<float***>(), elements.slices(), shape.width,
                                                shape.height, shape.depth, type, shape.channels)
                        : matConvertFromDouble3v(numbers.slices<double***>(), elements.slices(), shape.width,
                                                 shape.height, shape.depth, type, shape.channels);
                EXPECT_EQ(stored, 1);
                EXPECT_TRUE(elements.equals(expectedElements));
            }
            if (HasFailure()) return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, VolumeConversionLevels, testing::Range(1U, 9U));

}  // namespace
