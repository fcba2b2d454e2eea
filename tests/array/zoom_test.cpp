// Zoom: by hand where the result is short, else bit for bit against the loops that define it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/array_data.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/zoom_reference.h"
#include "velquad/array.h"

namespace {

using velquad::test::fillRandom;
using velquad::test::forEachKernelLevel;
using velquad::test::LooseArray;
using velquad::test::zoom::Job;
using velquad::test::zoom::zoomArray;

constexpr unsigned int kNearest = 1;
constexpr unsigned int kBilinear = 2;
constexpr unsigned int kCubic = 4;

template <class T>
LooseArray& filled(LooseArray& array, const std::vector<std::vector<T>>& rows) {
    for (std::size_t y = 0; y < rows.size(); ++y) {
        for (std::size_t x = 0; x < rows[y].size(); ++x)
            array.set(y, x, rows[y][x]);
    }
    return array;
}

template <class T>
std::vector<T> rowValues(const LooseArray& array, std::size_t y, std::size_t width) {
    std::vector<T> values;
    for (std::size_t x = 0; x < width; ++x)
        values.push_back(array.get<T>(y, x));
    return values;
}

TEST(Zoom, NearestPutsTheHalfwayCellOnTheNextSample) {
    LooseArray source(2, 1, 2);
    filled<std::uint8_t>(source, {{10, 20}});
    LooseArray destination(4, 2, 2);
    EXPECT_EQ(1, matZoomArray2v(2, 1, source.rows(), 4, 2, destination.rows(), 2, kNearest));
    // Positions 0, 0.5, 1, 1.5: 0.5 rounds up, 1.5 is limited to the last sample.
    EXPECT_EQ((std::vector<std::uint8_t>{10, 20, 20, 20}), rowValues<std::uint8_t>(destination, 0, 4));
    EXPECT_EQ((std::vector<std::uint8_t>{10, 20, 20, 20}), rowValues<std::uint8_t>(destination, 1, 4));
}

TEST(Zoom, BilinearIsNearestWhereNoSampleFollows) {
    LooseArray source(2, 2, 2);
    filled<std::uint8_t>(source, {{0, 100}, {200, 40}});
    LooseArray destination(4, 4, 2);
    EXPECT_EQ(1, matZoomArray2v(2, 2, source.rows(), 4, 4, destination.rows(), 2, kBilinear));
    // Columns 0 and 1 lie at 0 and 0.5; 2 and 3 have no sample behind them.
    EXPECT_EQ((std::vector<std::uint8_t>{0, 50, 100, 100}), rowValues<std::uint8_t>(destination, 0, 4));
    // (0 + 100 + 200 + 40) / 4 = 85; the columns on the right are nearest in y too, and 0.5 rounds to row 1.
    EXPECT_EQ((std::vector<std::uint8_t>{100, 85, 40, 40}), rowValues<std::uint8_t>(destination, 1, 4));
    EXPECT_EQ((std::vector<std::uint8_t>{200, 40, 40, 40}), rowValues<std::uint8_t>(destination, 2, 4));
    EXPECT_EQ((std::vector<std::uint8_t>{200, 40, 40, 40}), rowValues<std::uint8_t>(destination, 3, 4));
}

TEST(Zoom, CubicWeighsFourSamples) {
    LooseArray source(4, 4, 8);
    filled<double>(source, {{1, 2, 4, 8}, {1, 2, 4, 8}, {1, 2, 4, 8}, {1, 2, 4, 8}});
    LooseArray destination(8, 8, 8);
    EXPECT_EQ(1, matZoomArray2v(4, 4, source.rows(), 8, 8, destination.rows(), 8, kCubic));
    // At 1.5: a = d = 0.125, b = c = 0.625, so 2 * 0.625 - 0.125 + 4 * 0.625 - 8 * 0.125 = 2.625; on every row
    // with weights that add up to 1.
    EXPECT_EQ(2.0, destination.get<double>(2, 2));
    EXPECT_EQ(2.625, destination.get<double>(2, 3));
    EXPECT_EQ(2.625, destination.get<double>(3, 3));
    // Outside of the cubic rectangle: bilinear.
    EXPECT_EQ(1.5, destination.get<double>(2, 1));
    EXPECT_EQ(3.0, destination.get<double>(1, 3));
    EXPECT_EQ(6.0, destination.get<double>(3, 5));
}

TEST(Zoom, ASingleSampleFillsTheDestinationInEveryMode) {
    for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
        LooseArray source(1, 1, 4);
        source.set(0, 0, std::uint16_t{4711});
        LooseArray destination(5, 3, 4);
        EXPECT_EQ(1, matZoomArray2v(1, 1, source.rows(), 5, 3, destination.rows(), 4, flags));
        for (std::size_t y = 0; y < 3; ++y)
            EXPECT_EQ(std::vector<std::uint16_t>(5, 4711), rowValues<std::uint16_t>(destination, y, 5));
    }
}

TEST(Zoom, TwoByTwoHasNoCubicCell) {
    LooseArray source(2, 2, 8);
    filled<double>(source, {{0, 1}, {2, 3}});
    LooseArray cubic(6, 6, 8);
    LooseArray bilinear(6, 6, 8);
    matZoomArray2v(2, 2, source.rows(), 6, 6, cubic.rows(), 8, kCubic);
    matZoomArray2v(2, 2, source.rows(), 6, 6, bilinear.rows(), 8, kBilinear);
    EXPECT_EQ(bilinear.bytes(), cubic.bytes());
}

TEST(Zoom, CubicTakesPriorityAndOtherBitsAreIgnored) {
    std::mt19937 random(1);
    LooseArray source(6, 6, 8);
    fillRandom(source, 6, 6, 8, random);
    const auto zoomed = [&](unsigned int flags) {
        LooseArray destination(9, 9, 8);
        matZoomArray2v(6, 6, source.rows(), 9, 9, destination.rows(), 8, flags);
        return destination.bytes();
    };
    EXPECT_EQ(zoomed(4), zoomed(7));
    EXPECT_EQ(zoomed(4), zoomed(0xFFFFFFFCU));
    EXPECT_EQ(zoomed(2), zoomed(3));
    EXPECT_EQ(zoomed(2), zoomed(2 | 8));
    EXPECT_EQ(zoomed(0), zoomed(1));
    EXPECT_EQ(zoomed(0), zoomed(8));
    EXPECT_NE(zoomed(4), zoomed(2));
    EXPECT_NE(zoomed(2), zoomed(0));
}

TEST(Zoom, TheSameSizeReproducesTheSource) {
    std::mt19937 random(2);
    for (unsigned int type = 1; type <= 10; ++type) {
        for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
            SCOPED_TRACE(testing::Message() << "type " << type << " flags " << flags);
            LooseArray source(9, 7, type);
            LooseArray destination(9, 7, type);
            fillRandom(source, 9, 7, type, random);
            if (type == 6) {
                for (std::size_t y = 0; y < 7; ++y) {
                    for (std::size_t x = 0; x < 9; ++x)
                        source.set(y, x, source.get<std::uint32_t>(y, x) >> 1);
                }
            }
            matZoomArray2v(9, 7, source.rows(), 9, 7, destination.rows(), type, flags);
            EXPECT_EQ(source.bytes(), destination.bytes());
        }
    }
}

TEST(Zoom, LargeUnsignedWordsTurnIntoTheSmallestSignedOne) {
    // 3e9 is beyond signed 32 bits and below the limit of saturation: both interpolations store 0x80000000.
    for (const unsigned int flags : {kBilinear, kCubic}) {
        LooseArray source(5, 5, 6);
        for (std::size_t y = 0; y < 5; ++y) {
            for (std::size_t x = 0; x < 5; ++x)
                source.set(y, x, x == 1 ? 0xFFFFFFFFU : 3000000000U);
        }
        LooseArray destination(5, 5, 6);
        matZoomArray2v(5, 5, source.rows(), 5, 5, destination.rows(), 6, flags);
        EXPECT_EQ(0xFFFFFFFFU, destination.get<std::uint32_t>(1, 1));
        EXPECT_EQ(0x80000000U, destination.get<std::uint32_t>(1, 2));
        EXPECT_EQ(3000000000U, destination.get<std::uint32_t>(4, 4)) << "nearest copies";
    }
}

/// The first row of two equal samples in y, zoomed to 40 cells for each in x: cell x lies at x / 40.
template <class T>
std::vector<T> betweenTwo(T first, T second, unsigned int type) {
    LooseArray source(2, 2, type);
    filled<T>(source, {{first, second}, {first, second}});
    LooseArray destination(80, 2, type);
    EXPECT_EQ(1, matZoomArray2v(2, 2, source.rows(), 80, 2, destination.rows(), type, kBilinear));
    return rowValues<T>(destination, 0, 80);
}

TEST(Zoom, UnsignedWordsBeginAboveTheirLowerLimit) {
    // Below 0.55 the result is 0, although rounding 0.5 and 0.525 would give 1.
    const auto words = betweenTwo<std::uint32_t>(0, 1, 6);
    EXPECT_EQ(0U, words[20]);
    EXPECT_EQ(0U, words[21]);
    EXPECT_EQ(1U, words[23]);
    const auto integers = betweenTwo<std::int32_t>(0, 1, 5);
    EXPECT_EQ(0, integers[19]);
    EXPECT_EQ(1, integers[20]);
    EXPECT_EQ(1, integers[21]);
}

TEST(Zoom, WordsSaturateALittleBeforeTheyRound) {
    // 0.425 and 0.475 of the way to the largest and to the smallest integer: the limits lie at 0.45.
    const auto high = betweenTwo<std::int32_t>(2147483646, 2147483647, 5);
    EXPECT_EQ(2147483646, high[17]);
    EXPECT_EQ(2147483647, high[19]);
    const auto low = betweenTwo<std::int32_t>(-2147483647, INT32_MIN, 5);
    EXPECT_EQ(-2147483647, low[17]);
    EXPECT_EQ(INT32_MIN, low[19]);
    const auto words = betweenTwo<std::uint32_t>(4294967294U, 4294967295U, 6);
    EXPECT_EQ(0x80000000U, words[17]);
    EXPECT_EQ(0xFFFFFFFFU, words[19]);
}

TEST(Zoom, CubicOvershootIsLimitedToTheType) {
    LooseArray source(6, 6, 2);
    for (std::size_t y = 0; y < 6; ++y)
        filled<std::uint8_t>(source, std::vector<std::vector<std::uint8_t>>(6, {0, 0, 255, 255, 0, 0}));
    LooseArray destination(12, 12, 2);
    matZoomArray2v(6, 6, source.rows(), 12, 12, destination.rows(), 2, kCubic);
    // 255 * 0.625 + 255 * 0.625 = 318.75 between the bright samples, -255 / 8 beside them.
    EXPECT_EQ(255, destination.get<std::uint8_t>(4, 5));
    EXPECT_EQ(128, destination.get<std::uint8_t>(4, 3));  // 255 * 0.625 - 255 * 0.125 = 127.5
}

TEST(Zoom, AnUnknownTypeWritesNothing) {
    LooseArray source(3, 3, 8);
    LooseArray destination(4, 4, 8);
    const auto before = destination.bytes();
    for (const unsigned int type : {0U, 11U, 0xFFFFFFFFU}) {
        EXPECT_EQ(1, matZoomArray2v(3, 3, source.rows(), 4, 4, destination.rows(), type, kCubic));
    }
    EXPECT_EQ(before, destination.bytes());
}

TEST(Zoom, EmptySizesWriteNothing) {
    LooseArray source(3, 3, 2);
    LooseArray destination(4, 4, 2);
    source.set(0, 0, std::uint8_t{9});
    const auto before = destination.bytes();
    for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
        EXPECT_EQ(1, matZoomArray2v(0, 3, source.rows(), 4, 4, destination.rows(), 2, flags));
        EXPECT_EQ(1, matZoomArray2v(3, 0, source.rows(), 4, 4, destination.rows(), 2, flags));
        EXPECT_EQ(1, matZoomArray2v(3, 3, source.rows(), 0, 4, destination.rows(), 2, flags));
        EXPECT_EQ(1, matZoomArray2v(3, 3, source.rows(), 4, 0, destination.rows(), 2, flags));
    }
    EXPECT_EQ(before, destination.bytes());
}

TEST(Zoom, NullTablesWriteNothing) {
    LooseArray array(3, 3, 2);
    const auto before = array.bytes();
    EXPECT_EQ(1, matZoomArray2v(3, 3, nullptr, 3, 3, array.rows(), 2, kCubic));
    EXPECT_EQ(1, matZoomArray2v(3, 3, array.rows(), 3, 3, nullptr, 2, kCubic));
    EXPECT_EQ(0, matZoomArrayROI2v(3, 3, nullptr, nullptr, 3, 3, array.rows(), nullptr, 2, kCubic));
    EXPECT_EQ(0, matZoomArrayROI2v(3, 3, array.rows(), nullptr, 3, 3, nullptr, nullptr, 2, kCubic));
    EXPECT_EQ(before, array.bytes());
}

TEST(Zoom, CubicToASingleCellIsTheFirstSample) {
    // Three samples are enough for the cell at position 0; the one before it has the weight 0 and is not read.
    LooseArray source(3, 3, 8);
    filled<double>(source, {{7, 1, 2}, {3, 4, 5}, {6, 8, 9}});
    LooseArray destination(1, 1, 8);
    EXPECT_EQ(1, matZoomArray2v(3, 3, source.rows(), 1, 1, destination.rows(), 8, kCubic));
    EXPECT_EQ(7.0, destination.get<double>(0, 0));
}

TEST(Zoom, NeedsNoMemory) {
    std::mt19937 random(3);
    LooseArray source(40, 30, 2);
    fillRandom(source, 40, 30, 2, random);
    LooseArray destination(70, 80, 2);
    for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
        const std::size_t before = velquad::test::allocationCount();
        EXPECT_EQ(1, matZoomArray2v(40, 30, source.rows(), 70, 80, destination.rows(), 2, flags));
        EXPECT_EQ(before, velquad::test::allocationCount());
    }
}

void expectSameAsDefinition(unsigned int type, unsigned int flags, std::uint32_t srcWidth,
                            std::uint32_t srcHeight, std::uint32_t dstWidth, std::uint32_t dstHeight,
                            unsigned int seed, bool special) {
    SCOPED_TRACE(testing::Message() << "type " << type << " flags " << flags << " from " << srcWidth << " x "
                                    << srcHeight << " to " << dstWidth << " x " << dstHeight << " seed "
                                    << seed);
    std::mt19937 random(seed);
    LooseArray source(srcWidth, srcHeight, type);
    fillRandom(source, srcWidth, srcHeight, type, random, special);
    LooseArray expected(dstWidth, dstHeight, type);
    zoomArray({srcWidth, srcHeight, source.rows(), dstWidth, dstHeight, expected.rows()}, type, flags);
    forEachKernelLevel([&] {
        LooseArray actual(dstWidth, dstHeight, type);
        EXPECT_EQ(1, matZoomArray2v(srcWidth, srcHeight, source.rows(), dstWidth, dstHeight, actual.rows(),
                                    type, flags));
        EXPECT_TRUE(expected.bytes() == actual.bytes());
    });
}

TEST(Zoom, EqualsItsDefinitionForAllSmallSizes) {
    for (unsigned int type = 1; type <= 10; ++type) {
        for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
            for (std::uint32_t from = 0; from <= 5; ++from) {
                for (std::uint32_t to = 0; to <= 6; ++to) {
                    expectSameAsDefinition(type, flags, from, 4, to, 7, from + 8 * to, false);
                    expectSameAsDefinition(type, flags, 5, from, 3, to, from + 8 * to, false);
                }
            }
        }
    }
}

TEST(Zoom, EqualsItsDefinitionForRandomSizes) {
    std::mt19937 random(20240611);
    for (int round = 0; round < 12; ++round) {
        for (unsigned int type = 1; type <= 10; ++type) {
            for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
                const auto size = [&random](unsigned int most) { return 1 + random() % most; };
                // Destinations that are wider than one strip are among them.
                const auto dstWidth = round % 4 == 0 ? 500 + size(700) : size(90);
                expectSameAsDefinition(
                    type, flags, static_cast<std::uint32_t>(size(90)), static_cast<std::uint32_t>(size(60)),
                    static_cast<std::uint32_t>(dstWidth), static_cast<std::uint32_t>(size(60)),
                    static_cast<unsigned int>(random()), false);
            }
        }
    }
}

TEST(Zoom, DecidesBytesRightBetweenTwoIntegers) {
    // Fractions that are short in binary and those that are not; both meet values right between two integers, as the
    // sources hold few different bytes.
    constexpr std::uint32_t kSizes[][2] = {{64, 128}, {64, 256},  {150, 75}, {96, 144},  {40, 240}, {50, 300},
                                           {60, 85},  {300, 110}, {70, 70},  {128, 129}, {200, 60}, {9, 500}};
    std::mt19937 random(20261122);
    for (const unsigned int type : {2U, 9U, 10U}) {
        for (const unsigned int flags : {kBilinear, kCubic}) {
            for (const auto& size : kSizes) {
                for (const unsigned int steps : {1U, 2U, 255U}) {
                    SCOPED_TRACE(testing::Message()
                                 << "type " << type << " flags " << flags << " from " << size[0] << " to "
                                 << size[1] << " with " << steps << " steps");
                    LooseArray source(size[0], size[0], type);
                    for (std::size_t y = 0; y < size[0]; ++y) {
                        for (std::size_t x = 0; x < source.rowBytes(); ++x)
                            source.row(y)[x] =
                                static_cast<unsigned char>(random() % (steps + 1) * (255 / steps));
                    }
                    LooseArray expected(size[1], size[1], type);
                    zoomArray({size[0], size[0], source.rows(), size[1], size[1], expected.rows()}, type,
                              flags);
                    forEachKernelLevel([&] {
                        LooseArray actual(size[1], size[1], type);
                        matZoomArray2v(size[0], size[0], source.rows(), size[1], size[1], actual.rows(), type,
                                       flags);
                        EXPECT_TRUE(expected.bytes() == actual.bytes());
                    });
                }
            }
        }
    }
}

/// Compares a zoom of a square of 16-bit values, which `value(x, y)` gives, with its definition at all levels.
template <class ValueOf>
void expectWordsAsDefined(unsigned int type, unsigned int flags, std::uint32_t from, std::uint32_t to,
                          ValueOf value) {
    SCOPED_TRACE(testing::Message() << "type " << type << " flags " << flags << " from " << from << " to "
                                    << to);
    LooseArray source(from, from, type);
    for (std::size_t y = 0; y < from; ++y) {
        for (std::size_t x = 0; x < from; ++x)
            source.set(y, x, static_cast<std::uint16_t>(value(x, y)));
    }
    LooseArray expected(to, to, type);
    zoomArray({from, from, source.rows(), to, to, expected.rows()}, type, flags);
    forEachKernelLevel([&] {
        LooseArray actual(to, to, type);
        matZoomArray2v(from, from, source.rows(), to, to, actual.rows(), type, flags);
        EXPECT_TRUE(expected.bytes() == actual.bytes());
    });
}

TEST(Zoom, DecidesWordsRightBetweenTwoIntegers) {
    // Fractions that are short in binary and those that are not; both meet values right between two integers, as the
    // sources hold few different words. Among the sizes are those that take two vectors for a group of columns, and
    // too many.
    constexpr std::uint32_t kSizes[][2] = {{64, 128}, {64, 256}, {150, 75},  {96, 144}, {40, 240},
                                           {50, 300}, {60, 85},  {300, 110}, {70, 70},  {128, 129},
                                           {200, 60}, {9, 500},  {64, 512},  {300, 60}};
    std::mt19937 random(20261123);
    for (const unsigned int type : {3U, 4U}) {
        for (const unsigned int flags : {kBilinear, kCubic}) {
            for (const auto& size : kSizes) {
                for (const unsigned int steps : {1U, 2U, 5U, 65535U}) {
                    SCOPED_TRACE(testing::Message() << "with " << steps << " steps");
                    expectWordsAsDefined(type, flags, size[0], size[1], [&](std::size_t, std::size_t) {
                        return random() % (steps + 1) * (65535 / steps);
                    });
                }
            }
        }
    }
}

TEST(Zoom, DecidesAMillionWordsAsDefined) {
    // Among so many cells hundreds lie closer to the border of two integers than the error of a fast loop, and some on
    // the other side of it. Sums of neighbours that are small leave no other bits than those of the weights.
    std::mt19937 random(20261124);
    for (const unsigned int type : {3U, 4U}) {
        for (const unsigned int flags : {kBilinear, kCubic}) {
            expectWordsAsDefined(type, flags, 700, 1000, [&](std::size_t, std::size_t) { return random(); });
            expectWordsAsDefined(type, flags, 390, 400,
                                 [&](std::size_t, std::size_t) { return random() % 4; });
        }
    }
}

TEST(Zoom, LimitsTheLargestOvershootOfWords) {
    // The signs of the cubic weights in both directions make the highest and the lowest value of all.
    for (const unsigned int type : {3U, 4U}) {
        for (const unsigned int turn : {0U, 1U}) {
            for (const std::uint32_t to : {128U, 200U, 61U}) {
                const auto isInner = [](std::size_t i) { return i % 4 == 1 || i % 4 == 2; };
                expectWordsAsDefined(type, kCubic, 64, to, [&](std::size_t x, std::size_t y) {
                    const bool isHigh = (isInner(x) == isInner(y)) == (turn == 0);
                    return type == 3 ? (isHigh ? 0x7FFF : 0x8000) : (isHigh ? 0xFFFF : 0);
                });
            }
        }
    }
}

TEST(Zoom, EqualsItsDefinitionBeyondTheCaches) {
    // Destinations of more than 32 MB, wider than any strip.
    for (const unsigned int flags : {kNearest, kBilinear, kCubic})
        expectSameAsDefinition(8, flags, 1301, 211, 2111, 2003, 21 + flags, false);
    expectSameAsDefinition(9, kNearest, 301, 211, 5003, 2251, 22, false);
}

TEST(Zoom, CarriesInfinitiesAndNotANumbers) {
    std::mt19937 random(20240615);
    for (const unsigned int type : {7U, 8U}) {
        for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
            for (const std::uint32_t dstSize : {17U, 90U}) {
                SCOPED_TRACE(testing::Message()
                             << "type " << type << " flags " << flags << " to " << dstSize);
                LooseArray source(40, 40, type);
                fillRandom(source, 40, 40, type, random, true);
                LooseArray expected(dstSize, dstSize, type);
                zoomArray({40, 40, source.rows(), dstSize, dstSize, expected.rows()}, type, flags);
                forEachKernelLevel([&] {
                    LooseArray actual(dstSize, dstSize, type);
                    matZoomArray2v(40, 40, source.rows(), dstSize, dstSize, actual.rows(), type, flags);
                    for (std::size_t y = 0; y < dstSize; ++y) {
                        for (std::size_t x = 0; x < dstSize; ++x) {
                            const double e = type == 7 ? static_cast<double>(expected.get<float>(y, x))
                                                       : expected.get<double>(y, x);
                            const double a = type == 7 ? static_cast<double>(actual.get<float>(y, x))
                                                       : actual.get<double>(y, x);
                            // Which of several not-a-numbers a sum keeps is not defined.
                            EXPECT_TRUE((std::isnan(e) && std::isnan(a)) ||
                                        (e == a && std::signbit(e) == std::signbit(a)))
                                << e << " and " << a << " at " << x << ", " << y;
                        }
                    }
                });
            }
        }
    }
}

TEST(Zoom, RegionsTakeTheirOwnSizes) {
    std::mt19937 random(5);
    for (unsigned int type = 1; type <= 10; ++type) {
        for (const unsigned int flags : {kNearest, kBilinear, kCubic}) {
            SCOPED_TRACE(testing::Message() << "type " << type << " flags " << flags);
            LooseArray source(20, 18, type);
            fillRandom(source, 20, 18, type, random);
            const RECT from{3, 2, 14, 13};
            const RECT to{1, 4, 20, 19};
            LooseArray destination(24, 22, type);
            LooseArray expected(24, 22, type);
            // The same by tables made by hand.
            std::vector<const unsigned char*> sourceTable;
            std::vector<unsigned char*> expectedTable;
            const std::size_t bytes = velquad::test::kElementBytes[type];
            for (std::size_t y = 2; y <= 13; ++y)
                sourceTable.push_back(source.row(y) + 3 * bytes);
            for (std::size_t y = 4; y <= 19; ++y)
                expectedTable.push_back(expected.row(y) + bytes);
            zoomArray({12, 12, sourceTable.data(), 20, 16, expectedTable.data()}, type, flags);
            EXPECT_EQ(1, matZoomArrayROI2v(20, 18, source.rows(), &from, 24, 22, destination.rows(), &to,
                                           type, flags));
            EXPECT_EQ(expected.bytes(), destination.bytes());
        }
    }
}

TEST(Zoom, NullRegionsAreTheWholeArrays) {
    std::mt19937 random(6);
    LooseArray source(8, 9, 4);
    fillRandom(source, 8, 9, 4, random);
    LooseArray expected(13, 5, 4);
    LooseArray destination(13, 5, 4);
    matZoomArray2v(8, 9, source.rows(), 13, 5, expected.rows(), 4, kCubic);
    EXPECT_EQ(1,
              matZoomArrayROI2v(8, 9, source.rows(), nullptr, 13, 5, destination.rows(), nullptr, 4, kCubic));
    EXPECT_EQ(expected.bytes(), destination.bytes());
}

TEST(Zoom, ARefusedRegionWritesNothing) {
    LooseArray source(4, 4, 2);
    source.set(0, 0, std::uint8_t{1});
    LooseArray destination(4, 4, 2);
    const auto before = destination.bytes();
    const RECT outside{0, 0, 5, 3};
    const RECT crossed{2, 0, 1, 3};
    EXPECT_EQ(0, matZoomArrayROI2v(4, 4, source.rows(), &outside, 4, 4, destination.rows(), nullptr, 2, 1));
    EXPECT_EQ(0, matZoomArrayROI2v(4, 4, source.rows(), nullptr, 4, 4, destination.rows(), &crossed, 2, 1));
    EXPECT_EQ(0, matZoomArrayROI2v(0, 4, source.rows(), nullptr, 4, 4, destination.rows(), nullptr, 2, 1));
    EXPECT_EQ(before, destination.bytes());
}

TEST(Zoom, ARegionMayEndOneColumnBehindTheSource) {
    // A table whose rows go on behind the width that is told.
    std::vector<std::uint8_t> data = {10, 20, 30, 40};
    std::vector<std::uint8_t*> table = {data.data()};
    LooseArray destination(4, 1, 2);
    const RECT roi{0, 0, 3, 0};
    EXPECT_EQ(1, matZoomArrayROI2v(3, 1, reinterpret_cast<void**>(table.data()), &roi, 4, 1,
                                   destination.rows(), nullptr, 2, kNearest));
    EXPECT_EQ(data, rowValues<std::uint8_t>(destination, 0, 4));
}

TEST(Zoom, RegionsReportFailingAllocations) {
    LooseArray source(4, 4, 2);
    LooseArray destination(6, 6, 2);
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        return matZoomArrayROI2v(4, 4, source.rows(), nullptr, 6, 6, destination.rows(), nullptr, 2,
                                 kCubic) == 0;
    });
    EXPECT_EQ(2U, count);
}

TEST(ZoomImage, TellsTheTypeByTheSize) {
    std::mt19937 random(7);
    constexpr unsigned int kTypeOfSize[] = {0, 2, 4, 9, 7, 0, 0, 0, 8};
    for (const unsigned int bytes : {1U, 2U, 3U, 4U, 8U}) {
        SCOPED_TRACE(bytes);
        const unsigned int type = kTypeOfSize[bytes];
        LooseArray source(7, 6, type);
        fillRandom(source, 7, 6, type, random);
        LooseArray expected(10, 11, type);
        LooseArray destination(10, 11, type);
        matZoomArray2v(7, 6, source.rows(), 10, 11, expected.rows(), type, kBilinear);
        EXPECT_EQ(1,
                  matZoomImage(7, 6, bytes, source.rows(), nullptr, 10, 11, destination.rows(), nullptr, 1));
        EXPECT_EQ(expected.bytes(), destination.bytes());
    }
}

TEST(ZoomImage, TranslatesItsModes) {
    std::mt19937 random(8);
    LooseArray source(7, 6, 2);
    fillRandom(source, 7, 6, 2, random);
    constexpr unsigned int kFlagsOfMode[] = {1, 2, 4, 1, 1};
    for (const unsigned int mode : {0U, 1U, 2U, 3U, 4U}) {
        SCOPED_TRACE(mode);
        LooseArray expected(10, 11, 2);
        LooseArray destination(10, 11, 2);
        matZoomArray2v(7, 6, source.rows(), 10, 11, expected.rows(), 2, kFlagsOfMode[mode]);
        EXPECT_EQ(1,
                  matZoomImage(7, 6, 1, source.rows(), nullptr, 10, 11, destination.rows(), nullptr, mode));
        EXPECT_EQ(expected.bytes(), destination.bytes());
    }
}

TEST(ZoomImage, AnUnknownSizeWritesNothing) {
    LooseArray source(3, 3, 8);
    LooseArray destination(3, 3, 8);
    const auto before = destination.bytes();
    EXPECT_EQ(1, matZoomImage(3, 3, 5, source.rows(), nullptr, 3, 3, destination.rows(), nullptr, 2));
    EXPECT_EQ(before, destination.bytes());
}

}  // namespace
