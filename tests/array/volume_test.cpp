#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include "tests/support/allocation_failure.h"
#include "tests/support/volume_data.h"
#include "tests/support/volume_reference.h"
#include "velquad/array.h"
#include "velquad/statistics.h"

namespace {

using velquad::test::forEachFailingAllocation;
using velquad::test::LooseVolume;
namespace volume = velquad::test::volume;

/// The words in front of a slice table.
std::uint32_t headerWord(void*** slices, std::ptrdiff_t index) {
    std::uint32_t word = 0;
    std::memcpy(&word, reinterpret_cast<unsigned char*>(slices) - 32 + 4 * index, sizeof(word));
    return word;
}

void setHeaderWord(void*** slices, std::ptrdiff_t index, std::uint32_t word) {
    std::memcpy(reinterpret_cast<unsigned char*>(slices) - 32 + 4 * index, &word, sizeof(word));
}

TEST(VolumeAllocTest, WritesTheHeaderAndSlicesOfZeros) {
    void*** slices = matAllocArray3v(3, 2, 4, MAT_ARRAY_UINT16, 5, nullptr);
    ASSERT_NE(slices, nullptr);
    const std::uint32_t expected[] = {3, 2, 4, 4, 5, 2 * 5 * 3 * 2 * 4, 0, 0};
    for (std::ptrdiff_t i = 0; i < 8; ++i)
        EXPECT_EQ(headerWord(slices, i), expected[i]) << i;
    for (std::size_t z = 0; z < 4; ++z) {
        for (std::size_t y = 0; y < 2; ++y) {
            const unsigned char* row = volume::rowOf(slices, z, y);
            for (std::size_t i = 0; i < 2 * 5 * 3; ++i)
                ASSERT_EQ(row[i], 0);
        }
        // Each slice is an array of its own, with a header of five words.
        std::uint32_t words[5];
        std::memcpy(words, volume::entry(slices, z) - 20, sizeof(words));
        EXPECT_EQ(words[0], 3U);
        EXPECT_EQ(words[1], 2U);
        EXPECT_EQ(words[2], 4U);
        EXPECT_EQ(words[3], 5U);
        EXPECT_EQ(words[4], 60U);
    }
    EXPECT_EQ(matIsArray3v(slices), 1);
    EXPECT_EQ(matFreeArray3v(slices), 1);
}

TEST(VolumeAllocTest, MakesAnEmptyVolume) {
    void*** slices = matAllocArray3v(7, 8, 0, MAT_ARRAY_FLOAT, 1, nullptr);
    ASSERT_NE(slices, nullptr);
    EXPECT_EQ(matIsArray3v(slices), 1);
    EXPECT_EQ(matZeroInitArray3v(slices), 1);
    EXPECT_EQ(matFreeArray3v(slices), 1);
}

TEST(VolumeAllocTest, GivesNullForTheDataOfAVolume) {
    int something = 0;
    void* data = &something;
    void*** slices = matAllocArray3v(1, 1, 1, MAT_ARRAY_UINT8, 1, &data);
    ASSERT_NE(slices, nullptr);
    EXPECT_EQ(data, nullptr);
    matFreeArray3v(slices);
}

TEST(VolumeAllocTest, TakesAnUnknownTypeAsOneOfNoBytes) {
    void*** slices = matAllocArray3v(5, 2, 2, 77, 1, nullptr);
    ASSERT_NE(slices, nullptr);
    EXPECT_EQ(headerWord(slices, 5), 0U);
    EXPECT_EQ(matIsArray3v(slices), 1);
    EXPECT_EQ(matZeroInitArray3v(slices), 1);
    EXPECT_EQ(matFreeArray3v(slices), 1);
}

TEST(VolumeAllocTest, LeavesNothingBehindOnFailure) {
    int something = 0;
    const std::size_t allocations = forEachFailingAllocation([&something] {
        void* data = &something;
        void*** slices = matAllocArray3v(2, 2, 3, MAT_ARRAY_UINT8, 1, &data);
        EXPECT_EQ(data, slices == nullptr ? &something : nullptr);
        matFreeArray3v(slices);
        return slices == nullptr;
    });
    EXPECT_GE(allocations, 4U);
}

TEST(VolumeAllocTest, RefusesSlicesWhoseSizeWraps) {
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    EXPECT_EQ(matAllocArray3v(0x40000000U, 4, 1, MAT_ARRAY_UINT16, 1, nullptr), nullptr);
    EXPECT_EQ(matAllocArray3v(65536, 65536, 2, MAT_ARRAY_UINT8, 1, nullptr), nullptr);
    EXPECT_EQ(velquad::test::liveAllocations(), before);
}

TEST(VolumeSignatureTest, RefusesNullAndAChangedSize) {
    EXPECT_EQ(matIsArray3v(nullptr), 0);
    EXPECT_EQ(matFreeArray3v(nullptr), 0);
    EXPECT_EQ(matZeroInitArray3v(nullptr), 0);
    void*** slices = matAllocArray3v(2, 3, 4, MAT_ARRAY_UINT8, 1, nullptr);
    ASSERT_NE(slices, nullptr);
    volume::rowOf(slices, 1, 1)[0] = 9;
    const std::ptrdiff_t live = velquad::test::liveAllocations();
    setHeaderWord(slices, 5, 25);
    EXPECT_EQ(matIsArray3v(slices), 0);
    EXPECT_EQ(matFreeArray3v(slices), 0);
    EXPECT_EQ(matZeroInitArray3v(slices), 0);
    EXPECT_EQ(velquad::test::liveAllocations(), live);
    EXPECT_EQ(volume::rowOf(slices, 1, 1)[0], 9);
    setHeaderWord(slices, 5, 24);
    EXPECT_EQ(matIsArray3v(slices), 1);
    EXPECT_EQ(matFreeArray3v(slices), 1);
}

TEST(VolumeSignatureTest, ComparesTheProductModulo32Bits) {
    void*** slices = matAllocArray3v(2, 3, 4, MAT_ARRAY_UINT8, 1, nullptr);
    ASSERT_NE(slices, nullptr);
    // 65536 * 65536 * 4 is 0 modulo 2^32.
    setHeaderWord(slices, 0, 65536);
    setHeaderWord(slices, 1, 65536);
    setHeaderWord(slices, 5, 0);
    EXPECT_EQ(matIsArray3v(slices), 1);
    setHeaderWord(slices, 0, 2);
    setHeaderWord(slices, 1, 3);
    setHeaderWord(slices, 5, 24);
    EXPECT_EQ(matFreeArray3v(slices), 1);
}

TEST(VolumeSignatureTest, RefusesUnreadableAddresses) {
    EXPECT_EQ(matIsArray3v(reinterpret_cast<void***>(std::uintptr_t{4096})), 0);
    EXPECT_EQ(matFreeArray3v(reinterpret_cast<void***>(std::uintptr_t{8})), 0);
}

TEST(VolumeSignatureTest, ForeignMemoryThatPassesIsLeftAlone) {
    // 32 words of zeros look like an empty volume.
    std::uint64_t zeros[16] = {};
    auto*** slices = reinterpret_cast<void***>(zeros + 8);
    EXPECT_EQ(matIsArray3v(slices), 1);
    EXPECT_EQ(matZeroInitArray3v(slices), 1);
    EXPECT_EQ(matFreeArray3v(slices), 1);
    for (const std::uint64_t word : zeros)
        EXPECT_EQ(word, 0U);
}

TEST(VolumeZeroTest, ClearsThroughTheTables) {
    void*** slices = matAllocArray3v(3, 2, 2, MAT_ARRAY_FLOAT, 2, nullptr);
    ASSERT_NE(slices, nullptr);
    for (std::size_t z = 0; z < 2; ++z) {
        for (std::size_t y = 0; y < 2; ++y)
            std::memset(volume::rowOf(slices, z, y), 0xEE, 24);
    }
    EXPECT_EQ(matZeroInitArray3v(slices), 1);
    for (std::size_t z = 0; z < 2; ++z) {
        for (std::size_t y = 0; y < 2; ++y) {
            for (std::size_t i = 0; i < 24; ++i)
                ASSERT_EQ(volume::rowOf(slices, z, y)[i], 0);
        }
    }
    matFreeArray3v(slices);
}

TEST(VolumeCopyTest, CopiesTheRowsOfEveryType) {
    std::mt19937 random(3);
    for (unsigned int type = 1; type <= 10; ++type) {
        SCOPED_TRACE(type);
        LooseVolume source(2 * 3, 4, 5, type);
        LooseVolume copy(2 * 3, 4, 5, type);
        source.fill(random);
        EXPECT_EQ(matCopyArray3v(copy.slices(), source.slices(), 3, 4, 5, type, 2), 1);
        EXPECT_TRUE(copy.equals(source));
    }
}

TEST(VolumeCopyTest, CopiesNothingForSizesBelowOne) {
    EXPECT_EQ(matCopyArray3v(nullptr, nullptr, 3, 3, 0, 2, 1), 1);
    EXPECT_EQ(matCopyArray3v(nullptr, nullptr, 3, 3, -1, 2, 1), 1);
    LooseVolume source(3, 3, 3, 2);
    LooseVolume copy(3, 3, 3, 2);
    LooseVolume before(3, 3, 3, 2);
    source.set<std::uint8_t>(0, 0, 0, 5);
    EXPECT_EQ(matCopyArray3v(copy.slices(), source.slices(), 3, 0, 3, 2, 1), 1);
    EXPECT_EQ(matCopyArray3v(copy.slices(), source.slices(), 3, -2, 3, 2, 1), 1);
    EXPECT_EQ(matCopyArray3v(copy.slices(), source.slices(), 3, 3, 3, 99, 1), 1);
    EXPECT_TRUE(copy.equals(before));
}

struct Range {
    double min[4] = {-1, -1, -1, -1};
    double max[4] = {-1, -1, -1, -1};
    double mean[4] = {-1, -1, -1, -1};
    double stdDev[4] = {-1, -1, -1, -1};

    int measure(LooseVolume& data, unsigned int type, unsigned int channels, unsigned int width,
                unsigned int height, unsigned int depth) {
        return matGetRangeOfArray3v(data.slices(), type, channels, width, height, depth, min, max, mean,
                                    stdDev);
    }
};

TEST(VolumeRangeTest, MeasuresSmallVolumes) {
    LooseVolume data(2, 1, 2, MAT_ARRAY_INT16);
    data.set<std::int16_t>(0, 0, 0, -3);
    data.set<std::int16_t>(0, 0, 1, 5);
    data.set<std::int16_t>(1, 0, 0, 1);
    data.set<std::int16_t>(1, 0, 1, 1);
    Range range;
    EXPECT_EQ(range.measure(data, MAT_ARRAY_INT16, 1, 2, 1, 2), 1);
    EXPECT_EQ(range.min[0], -3.0);
    EXPECT_EQ(range.max[0], 5.0);
    EXPECT_EQ(range.mean[0], 1.0);
    EXPECT_EQ(range.stdDev[0], std::sqrt(8.0));
    EXPECT_EQ(range.min[1], -1.0);
}

TEST(VolumeRangeTest, PixelsHaveTheirOwnChannels) {
    LooseVolume data(1, 1, 2, MAT_ARRAY_BYTE3);
    const std::uint8_t bytes[] = {10, 20, 30, 12, 24, 36};
    std::memcpy(data.slice(0).row(0), bytes, 3);
    std::memcpy(data.slice(1).row(0), bytes + 3, 3);
    Range range;
    EXPECT_EQ(range.measure(data, MAT_ARRAY_BYTE3, 1, 1, 1, 2), 1);
    EXPECT_EQ(range.mean[0], 11.0);
    EXPECT_EQ(range.mean[1], 22.0);
    EXPECT_EQ(range.mean[2], 33.0);
    EXPECT_EQ(range.mean[3], -1.0);
}

TEST(VolumeRangeTest, PixelsOfFourBytesHaveFourChannels) {
    LooseVolume data(1, 1, 2, MAT_ARRAY_BYTE4);
    const std::uint8_t bytes[] = {10, 20, 30, 250, 12, 24, 36, 254};
    std::memcpy(data.slice(0).row(0), bytes, 4);
    std::memcpy(data.slice(1).row(0), bytes + 4, 4);
    Range range;
    EXPECT_EQ(range.measure(data, MAT_ARRAY_BYTE4, 0, 1, 1, 2), 1);
    EXPECT_EQ(range.min[3], 250.0);
    EXPECT_EQ(range.max[3], 254.0);
    EXPECT_EQ(range.mean[3], 252.0);
    EXPECT_EQ(range.stdDev[3], 2.0);
}

TEST(VolumeRangeTest, RefusesNullAndUnknownTypes) {
    LooseVolume data(1, 1, 1, 2);
    Range range;
    for (const unsigned int type : {0U, 11U, 0xFFFFFFFFU})
        EXPECT_EQ(range.measure(data, type, 1, 1, 1, 1), 0) << type;
    EXPECT_EQ(matGetRangeOfArray3v(nullptr, 2, 1, 1, 1, 1, range.min, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(range.min[0], -1.0);
}

TEST(VolumeRangeTest, AnEmptyVolumeGivesNoValues) {
    LooseVolume data(1, 1, 1, 2);
    Range range;
    EXPECT_EQ(range.measure(data, MAT_ARRAY_UINT8, 1, 1, 1, 0), 1);
    for (const double value : {range.min[0], range.max[0], range.mean[0], range.stdDev[0]})
        EXPECT_EQ(value, velquad::kNoValue);
    Range untouched;
    EXPECT_EQ(untouched.measure(data, MAT_ARRAY_UINT8, 0, 1, 1, 1), 1);
    EXPECT_EQ(untouched.min[0], -1.0);
}

TEST(VolumeRangeTest, OutputsMayBeNull) {
    LooseVolume data(1, 1, 1, 2);
    data.set<std::uint8_t>(0, 0, 0, 7);
    double mean = 0.0;
    EXPECT_EQ(matGetRangeOfArray3v(data.slices(), 2, 1, 1, 1, 1, nullptr, nullptr, &mean, nullptr), 1);
    EXPECT_EQ(mean, 7.0);
    EXPECT_EQ(matGetRangeOfArray3v(data.slices(), 2, 1, 1, 1, 1, nullptr, nullptr, nullptr, nullptr), 1);
}

TEST(VolumeRangeTest, RefusesTheLargestDouble) {
    LooseVolume data(3, 1, 1, MAT_ARRAY_DOUBLE);
    data.set(0, 0, 0, 1.0);
    data.set(0, 0, 1, velquad::kNoValue);
    data.set(0, 0, 2, 2.0);
    Range range;
    EXPECT_EQ(range.measure(data, MAT_ARRAY_DOUBLE, 1, 3, 1, 1), 1);
    EXPECT_EQ(range.max[0], 2.0);
    EXPECT_EQ(range.mean[0], 1.5);
}

TEST(VolumeRangeTest, EqualsAddingValuesOneByOne) {
    std::mt19937 random(17);
    for (unsigned int type = 1; type <= 8; ++type) {
        for (int round = 0; round < 12; ++round) {
            SCOPED_TRACE(testing::Message() << "type " << type << " round " << round);
            const unsigned int channels = 1 + static_cast<unsigned int>(random() % 3);
            const unsigned int width = round == 11 ? 700 : static_cast<unsigned int>(random() % 9);
            const auto height = static_cast<unsigned int>(random() % 4);
            const auto depth = static_cast<unsigned int>(random() % 4);
            LooseVolume data(std::size_t{width} * channels, height, depth, type);
            data.fill(random, round % 2 == 0);
            Range range;
            ASSERT_EQ(range.measure(data, type, channels, width, height, depth), 1);
            for (unsigned int c = 0; c < channels; ++c) {
                CMatMomentEvaluator evaluator;
                for (std::size_t z = 0; z < depth; ++z) {
                    for (std::size_t y = 0; y < height; ++y) {
                        for (std::size_t x = 0; x < width; ++x) {
                            const unsigned char* row = data.slice(z).row(y);
                            evaluator.AddValue(
                                volume::read(type, row + (x * channels + c) * volume::bytesOf(type)));
                        }
                    }
                }
                const double expected[] = {evaluator.GetMin(), evaluator.GetMax(), evaluator.GetMean(),
                                           evaluator.GetStdDev()};
                const double actual[] = {range.min[c], range.max[c], range.mean[c], range.stdDev[c]};
                for (int i = 0; i < 4; ++i) {
                    EXPECT_TRUE(expected[i] == actual[i] ||
                                (std::isnan(expected[i]) && std::isnan(actual[i])))
                        << i << ": " << expected[i] << " and " << actual[i];
                }
            }
        }
    }
}

}  // namespace
