// Arrays as blocks, their range, and regions of them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/array_data.h"
#include "tests/support/kernel_levels.h"
#include "velquad/array.h"
#include "velquad/statistics.h"

namespace {

using velquad::test::fillRandom;
using velquad::test::forEachFailingAllocation;
using velquad::test::LooseArray;

struct Header {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t type;
    std::uint32_t channels;
    std::uint32_t dataSize;
};

Header headerOf(void** rows) {
    Header header;
    std::memcpy(&header, reinterpret_cast<unsigned char*>(rows) - sizeof(header), sizeof(header));
    return header;
}

unsigned char* rowOf(void** rows, std::size_t y) {
    unsigned char* row = nullptr;
    std::memcpy(&row, reinterpret_cast<unsigned char*>(rows) + 8 * y, sizeof(row));
    return row;
}

TEST(ElementTypes, HaveTheirSizes) {
    constexpr unsigned int kSizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 3, 4, 0, 0};
    for (unsigned int type = 0; type < std::size(kSizes); ++type)
        EXPECT_EQ(kSizes[type], matCvtArrayTypeToSize2v(type)) << type;
    EXPECT_EQ(0U, matCvtArrayTypeToSize2v(0xFFFFFFFFU));
}

TEST(ElementTypes, AreToldBySizeOneWay) {
    constexpr unsigned int kTypes[] = {0, 2, 4, 9, 7, 0, 0, 0, 8, 0, 0};
    for (unsigned int size = 0; size < std::size(kTypes); ++size)
        EXPECT_EQ(kTypes[size], matCvtSizeToArrayType2v(size)) << size;
    EXPECT_EQ(0U, matCvtSizeToArrayType2v(0xFFFFFFFFU));
}

TEST(AllocArray, LaysTheBlockOutWithoutGaps) {
    void* data = nullptr;
    void** rows = matAllocArray2v(3, 2, 9, 1, &data);
    ASSERT_NE(nullptr, rows);
    const Header header = headerOf(rows);
    EXPECT_EQ(3U, header.width);
    EXPECT_EQ(2U, header.height);
    EXPECT_EQ(9U, header.type);
    EXPECT_EQ(1U, header.channels);
    EXPECT_EQ(18U, header.dataSize);
    EXPECT_EQ(reinterpret_cast<unsigned char*>(rows) + 16, data);
    EXPECT_EQ(data, rowOf(rows, 0));
    EXPECT_EQ(rowOf(rows, 0) + 9, rowOf(rows, 1));
    for (std::size_t i = 0; i < 18; ++i)
        EXPECT_EQ(0, static_cast<unsigned char*>(data)[i]);
    EXPECT_EQ(reinterpret_cast<unsigned char*>(rows) - 20,
              GlobalLock(GlobalHandle(reinterpret_cast<char*>(rows) - 20)));
    EXPECT_EQ(1, matFreeArray2v(rows));
}

TEST(AllocArray, ChannelsWidenTheRows) {
    void** rows = matAllocArray2v(5, 3, 4, 2, nullptr);
    EXPECT_EQ(20, rowOf(rows, 1) - rowOf(rows, 0));
    EXPECT_EQ(60U, headerOf(rows).dataSize);
    EXPECT_EQ(2U, matCvtArrayTypeToSize2v(4));
    EXPECT_EQ(1, matFreeArray2v(rows));
}

TEST(AllocArray, EmptyArraysHaveATable) {
    for (const auto& size :
         {std::pair{5U, 0U}, std::pair{0U, 5U}, std::pair{0U, 0U}, std::pair{0xFFFFFFFFU, 0U}}) {
        void** rows = matAllocArray2v(size.first, size.second, 8, 1, nullptr);
        ASSERT_NE(nullptr, rows);
        EXPECT_EQ(0U, headerOf(rows).dataSize);
        EXPECT_EQ(1, matZeroInitArray2v(rows));
        EXPECT_EQ(1, matFreeArray2v(rows));
    }
}

TEST(AllocArray, RowsOfAnUnknownTypeShareOneAddress) {
    void** rows = matAllocArray2v(5, 3, 11, 1, nullptr);
    ASSERT_NE(nullptr, rows);
    EXPECT_EQ(rowOf(rows, 0), rowOf(rows, 2));
    EXPECT_EQ(0U, headerOf(rows).dataSize);
    EXPECT_EQ(1, matFreeArray2v(rows));
}

TEST(AllocArray, RefusesSizesThatWrap) {
    void* data = &data;
    // 8 * 2^29 bytes are 0 in 32 bits.
    EXPECT_EQ(nullptr, matAllocArray2v(1U << 29, 1, 8, 1, &data));
    EXPECT_EQ(nullptr, matAllocArray2v(1U << 16, 1U << 16, 2, 1, &data));
    EXPECT_EQ(nullptr, matAllocArray2v(0xFFFFFFFFU, 0xFFFFFFFFU, 8, 0xFFFFFFFFU, &data));
    EXPECT_EQ(nullptr, matAllocArray2v(0, 1U << 29, 1, 1, &data)) << "the table alone wraps";
    EXPECT_EQ(&data, data) << "left alone";
}

TEST(AllocArray, ReportsFailingAllocations) {
    EXPECT_LE(1U, forEachFailingAllocation([] {
                  void* data = nullptr;
                  void** rows = matAllocArray2v(7, 5, 4, 1, &data);
                  const bool hasFailed = rows == nullptr;
                  EXPECT_EQ(hasFailed, data == nullptr);
                  matFreeArray2v(rows);
                  return hasFailed;
              }));
}

TEST(FreeArray, IgnoresForeignAddresses) {
    EXPECT_EQ(0, matFreeArray2v(nullptr));
    std::vector<unsigned char> foreign(64, 3);
    EXPECT_EQ(1, matFreeArray2v(reinterpret_cast<void**>(foreign.data() + 32)));
    EXPECT_EQ(1, matFreeArray2v(reinterpret_cast<void**>(std::uintptr_t{24})));
    EXPECT_EQ(std::vector<unsigned char>(64, 3), foreign);
}

TEST(DuplicateArray, CopiesTheRowsOfAnyTable) {
    std::mt19937 random(1);
    for (unsigned int type = 1; type <= 10; ++type) {
        LooseArray source(6, 4, type);
        fillRandom(source, 6, 4, type, random);
        void** copy = matDuplicateArray2v(source.rows(), 6, 4, type, 1);
        ASSERT_NE(nullptr, copy);
        for (std::size_t y = 0; y < 4; ++y)
            EXPECT_EQ(0, std::memcmp(source.row(y), rowOf(copy, y), source.rowBytes()));
        EXPECT_EQ(6U, headerOf(copy).width);
        EXPECT_EQ(type, headerOf(copy).type);
        EXPECT_EQ(1, matFreeArray2v(copy));
    }
}

TEST(DuplicateArray, CopiesAllChannels) {
    LooseArray source(6, 2, 4);
    source.set(1, 5, std::uint16_t{777});
    void** copy = matDuplicateArray2v(source.rows(), 2, 2, 4, 3);
    std::uint16_t last = 0;
    std::memcpy(&last, rowOf(copy, 1) + 10, 2);
    EXPECT_EQ(777, last);
    EXPECT_EQ(1, matFreeArray2v(copy));
}

TEST(DuplicateArray, ReportsFailingAllocationsAndNullRows) {
    LooseArray source(6, 4, 2);
    EXPECT_LE(1U, forEachFailingAllocation([&] {
                  void** copy = matDuplicateArray2v(source.rows(), 6, 4, 2, 1);
                  matFreeArray2v(copy);
                  return copy == nullptr;
              }));
    EXPECT_EQ(nullptr, matDuplicateArray2v(nullptr, 6, 4, 2, 1));
    void** empty = matDuplicateArray2v(nullptr, 6, 0, 2, 1);
    EXPECT_NE(nullptr, empty);
    matFreeArray2v(empty);
}

TEST(ZeroInitArray, ClearsTheData) {
    void** rows = matAllocArray2v(3, 3, 4, 1, nullptr);
    for (std::size_t y = 0; y < 3; ++y)
        std::memset(rowOf(rows, y), 0xEE, 6);
    EXPECT_EQ(1, matZeroInitArray2v(rows));
    for (std::size_t y = 0; y < 3; ++y) {
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_EQ(0, rowOf(rows, y)[i]);
    }
    EXPECT_EQ(3U, headerOf(rows).height);
    EXPECT_EQ(1, matFreeArray2v(rows));
    EXPECT_EQ(0, matZeroInitArray2v(nullptr));
}

// Range.

struct Range {
    int result = -1;
    double min[4] = {-1, -1, -1, -1};
    double max[4] = {-1, -1, -1, -1};
    double mean[4] = {-1, -1, -1, -1};
    double stdDev[4] = {-1, -1, -1, -1};
};

Range rangeOf(LooseArray& array, unsigned int type, unsigned int channels, unsigned int width,
              unsigned int height, void** mask = nullptr, int maskFlag = 0) {
    Range range;
    range.result = matGetRangeOfArray2v(array.rows(), type, channels, mask, maskFlag, width, height,
                                        range.min, range.max, range.mean, range.stdDev);
    return range;
}

TEST(RangeOfArray, MeasuresTheChannelsOfPixels) {
    LooseArray pixels(2, 1, 9);
    std::memcpy(pixels.row(0), "\x01\x02\x03\x05\x08\xFF", 6);
    const Range range = rangeOf(pixels, 9, 1, 2, 1);
    EXPECT_EQ(1, range.result);
    constexpr double kMin[] = {1, 2, 3, -1};
    constexpr double kMax[] = {5, 8, 255, -1};
    constexpr double kMean[] = {3, 5, 129, -1};
    constexpr double kStdDev[] = {2, 3, 126, -1};
    for (std::size_t c = 0; c < 4; ++c) {
        EXPECT_EQ(kMin[c], range.min[c]);
        EXPECT_EQ(kMax[c], range.max[c]);
        EXPECT_EQ(kMean[c], range.mean[c]);
        EXPECT_EQ(kStdDev[c], range.stdDev[c]);
    }
}

TEST(RangeOfArray, AMaskAdmitsItsPixels) {
    LooseArray values(4, 1, 3);
    LooseArray mask(4, 1, 2);
    constexpr std::int16_t kValues[] = {-5, 100, 7, 200};
    constexpr std::uint8_t kMask[] = {1, 0, 255, 0};
    for (std::size_t x = 0; x < 4; ++x) {
        values.set(0, x, kValues[x]);
        mask.set(0, x, kMask[x]);
    }
    const Range range = rangeOf(values, 3, 1, 4, 1, mask.rows());
    EXPECT_EQ(1, range.result);
    EXPECT_EQ(-5.0, range.min[0]);
    EXPECT_EQ(7.0, range.max[0]);
    EXPECT_EQ(1.0, range.mean[0]);
    EXPECT_EQ(6.0, range.stdDev[0]);
}

TEST(RangeOfArray, AMaskWithAFlagAdmitsNothing) {
    LooseArray values(2, 1, 2);
    LooseArray mask(2, 1, 2);
    mask.set(0, 0, std::uint8_t{1});
    for (const int flag : {1, -1, 256}) {
        const Range range = rangeOf(values, 2, 1, 2, 1, mask.rows(), flag);
        EXPECT_EQ(0, range.result);
        EXPECT_EQ(-1.0, range.min[0]);
    }
    EXPECT_EQ(1, rangeOf(values, 2, 1, 2, 1, nullptr, 1).result) << "without a mask the flag means nothing";
}

TEST(RangeOfArray, AnEmptyMaskGivesZero) {
    LooseArray values(2, 1, 2);
    LooseArray mask(2, 1, 2);
    const Range range = rangeOf(values, 2, 1, 2, 1, mask.rows());
    EXPECT_EQ(0, range.result);
    EXPECT_EQ(-1.0, range.min[0]);
    EXPECT_EQ(-1.0, range.stdDev[0]);
}

TEST(RangeOfArray, ChannelsBeforeAnEmptyOneKeepTheirResults) {
    LooseArray values(2, 1, 8);
    values.set(0, 0, 3.0);
    values.set(0, 1, std::numeric_limits<double>::max());
    const Range range = rangeOf(values, 8, 2, 1, 1);
    EXPECT_EQ(0, range.result);
    EXPECT_EQ(3.0, range.min[0]);
    EXPECT_EQ(-1.0, range.min[1]);
}

TEST(RangeOfArray, KnowsItsFailures) {
    LooseArray values(2, 1, 2);
    EXPECT_EQ(0, matGetRangeOfArray2v(nullptr, 2, 1, nullptr, 0, 2, 1, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, matGetRangeOfArray2v(nullptr, 11, 1, nullptr, 0, 2, 1, nullptr, nullptr, nullptr, nullptr));
    for (const unsigned int type : {0U, 11U}) {
        const Range range = rangeOf(values, type, 1, 2, 1);
        EXPECT_EQ(1, range.result);
        EXPECT_EQ(-1.0, range.min[0]);
    }
    const Range noChannels = rangeOf(values, 2, 0, 2, 1);
    EXPECT_EQ(1, noChannels.result);
    EXPECT_EQ(-1.0, noChannels.min[0]);
    EXPECT_EQ(0, rangeOf(values, 2, 1, 0, 1).result);
    EXPECT_EQ(0, rangeOf(values, 2, 1, 2, 0).result);
    EXPECT_EQ(
        1, matGetRangeOfArray2v(values.rows(), 2, 1, nullptr, 0, 2, 1, nullptr, nullptr, nullptr, nullptr));
}

template <class T>
void addElements(CMatMomentEvaluator& evaluator, const LooseArray& array, std::size_t stride,
                 std::size_t channel, std::size_t width, std::size_t height, const LooseArray* mask) {
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            if (mask != nullptr && mask->get<std::uint8_t>(y, x) == 0) continue;
            evaluator.AddValue(static_cast<double>(array.get<T>(y, x * stride + channel)));
        }
    }
}

void addElements(CMatMomentEvaluator& evaluator, unsigned int type, const LooseArray& array,
                 std::size_t stride, std::size_t channel, std::size_t width, std::size_t height,
                 const LooseArray* mask) {
    switch (type) {
        case 1:
            addElements<std::int8_t>(evaluator, array, stride, channel, width, height, mask);
            break;
        case 3:
            addElements<std::int16_t>(evaluator, array, stride, channel, width, height, mask);
            break;
        case 4:
            addElements<std::uint16_t>(evaluator, array, stride, channel, width, height, mask);
            break;
        case 5:
            addElements<std::int32_t>(evaluator, array, stride, channel, width, height, mask);
            break;
        case 6:
            addElements<std::uint32_t>(evaluator, array, stride, channel, width, height, mask);
            break;
        case 7:
            addElements<float>(evaluator, array, stride, channel, width, height, mask);
            break;
        case 8:
            addElements<double>(evaluator, array, stride, channel, width, height, mask);
            break;
        default:
            addElements<std::uint8_t>(evaluator, array, stride, channel, width, height, mask);
            break;
    }
}

bool sameNumber(double a, double b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0 || (std::isnan(a) && std::isnan(b));
}

TEST(RangeOfArray, EqualsTakingTheElementsOneByOne) {
    std::mt19937 seeds(20240613);
    constexpr unsigned int kSizes[][2] = {{1, 1}, {5, 3}, {300, 4}, {255, 40}, {9000, 1}, {256, 2}};
    for (unsigned int type = 1; type <= 10; ++type) {
        for (const auto& size : kSizes) {
            for (const unsigned int channels : {1U, 2U, 3U}) {
                for (const int variant : {0, 1, 2}) {
                    const auto seed = static_cast<unsigned int>(seeds());
                    SCOPED_TRACE(testing::Message()
                                 << "type " << type << " " << size[0] << " x " << size[1] << " x " << channels
                                 << " variant " << variant << " seed " << seed);
                    std::mt19937 random(seed);
                    LooseArray array(size[0] * channels, size[1], type);
                    fillRandom(array, size[0] * channels, size[1], type, random, variant == 1);
                    LooseArray mask(size[0], size[1], 2);
                    fillRandom(mask, size[0], size[1], 2, random);
                    const bool isMasked = variant == 2;
                    if (isMasked) mask.set(0, 0, std::uint8_t{1});
                    const unsigned int count = type < 9 ? channels : type - 6;
                    const Range range =
                        rangeOf(array, type, channels, size[0], size[1], isMasked ? mask.rows() : nullptr);
                    bool isEmpty = false;
                    for (unsigned int c = 0; c < count && !isEmpty; ++c) {
                        CMatMomentEvaluator evaluator;
                        addElements(evaluator, type, array, count, c, size[0], size[1],
                                    isMasked ? &mask : nullptr);
                        isEmpty = evaluator.GetCount() == 0;
                        if (isEmpty) break;
                        EXPECT_TRUE(sameNumber(evaluator.GetMin(), range.min[c]));
                        EXPECT_TRUE(sameNumber(evaluator.GetMax(), range.max[c]));
                        EXPECT_TRUE(sameNumber(evaluator.GetMean(), range.mean[c]));
                        EXPECT_TRUE(sameNumber(evaluator.GetStdDev(), range.stdDev[c]));
                    }
                    EXPECT_EQ(isEmpty ? 0 : 1, range.result);
                }
            }
        }
    }
}

// Regions.

TEST(Region, NullIsTheWholeArray) {
    LooseArray array(4, 3, 4);
    void** table = matMapArrayToROI2v(array.rows(), 4, 3, 4, 1, nullptr);
    ASSERT_NE(nullptr, table);
    for (std::size_t y = 0; y < 3; ++y)
        EXPECT_EQ(array.row(y), table[y]);
    EXPECT_EQ(1, matFreeArrayMappedToRoi2v(table));
}

TEST(Region, BeginsAtItsFirstElement) {
    LooseArray array(4, 3, 4);
    const RECT cell{2, 1, 2, 1};
    void** table = matMapArrayToROI2v(array.rows(), 4, 3, 4, 1, &cell);
    ASSERT_NE(nullptr, table);
    EXPECT_EQ(array.row(1) + 4, table[0]);
    matFreeArrayMappedToRoi2v(table);
    table = matMapArrayToROI2v(array.rows(), 4, 3, 4, 3, &cell);
    EXPECT_EQ(array.row(1) + 12, table[0]);
    matFreeArrayMappedToRoi2v(table);
}

TEST(Region, PixelsIgnoreChannels) {
    for (const unsigned int type : {9U, 10U}) {
        LooseArray array(4, 3, type);
        const RECT cell{2, 1, 3, 2};
        void** table = matMapArrayToROI2v(array.rows(), 4, 3, type, 7, &cell);
        ASSERT_NE(nullptr, table);
        EXPECT_EQ(array.row(1) + 2 * (type - 6), table[0]);
        EXPECT_EQ(array.row(2) + 2 * (type - 6), table[1]);
        matFreeArrayMappedToRoi2v(table);
    }
}

TEST(Region, MayEndOneBehindTheArray) {
    LooseArray array(4, 3, 2);
    const auto isAccepted = [&](RECT roi) {
        // One more row address than the array has.
        std::vector<void*> rows(5, array.row(0));
        void** table = matMapArrayToROI2v(rows.data(), 4, 3, 2, 1, &roi);
        return matFreeArrayMappedToRoi2v(table) == 1;
    };
    EXPECT_TRUE(isAccepted({0, 0, 4, 2}));
    EXPECT_FALSE(isAccepted({0, 0, 5, 2}));
    EXPECT_TRUE(isAccepted({0, 0, 3, 3}));
    EXPECT_FALSE(isAccepted({0, 0, 3, 4}));
    EXPECT_FALSE(isAccepted({-1, 0, 3, 2}));
    EXPECT_FALSE(isAccepted({0, -1, 3, 2}));
    EXPECT_FALSE(isAccepted({2, 0, 1, 2}));
    EXPECT_FALSE(isAccepted({0, 2, 3, 1}));
    EXPECT_TRUE(isAccepted({2, 2, 2, 2}));
}

TEST(Region, OfAnEmptyArrayIsRefused) {
    LooseArray array(4, 3, 2);
    EXPECT_EQ(nullptr, matMapArrayToROI2v(array.rows(), 0, 3, 2, 1, nullptr));
    EXPECT_EQ(nullptr, matMapArrayToROI2v(array.rows(), 4, 0, 2, 1, nullptr));
    EXPECT_EQ(nullptr, matMapArrayToROI2v(array.rows(), -4, 3, 2, 1, nullptr));
    EXPECT_EQ(nullptr, matMapArrayToROI2v(nullptr, 4, 3, 2, 1, nullptr));
}

TEST(Region, ReportsAFailingAllocation) {
    LooseArray array(4, 3, 2);
    EXPECT_EQ(1U, forEachFailingAllocation([&] {
                  void** table = matMapArrayToROI2v(array.rows(), 4, 3, 2, 1, nullptr);
                  matFreeArrayMappedToRoi2v(table);
                  return table == nullptr;
              }));
    EXPECT_EQ(0, matFreeArrayMappedToRoi2v(nullptr));
}

TEST(Region, IsAnArrayForOtherFunctions) {
    LooseArray array(5, 4, 2);
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 5; ++x)
            array.set(y, x, static_cast<std::uint8_t>(10 * y + x));
    }
    const RECT roi{1, 2, 3, 3};
    void** table = matMapArrayToROI2v(array.rows(), 5, 4, 2, 1, &roi);
    void** copy = matDuplicateArray2v(table, 3, 2, 2, 1);
    EXPECT_EQ(0, std::memcmp(rowOf(copy, 0), "\x15\x16\x17", 3));
    EXPECT_EQ(0, std::memcmp(rowOf(copy, 1), "\x1F\x20\x21", 3));
    EXPECT_EQ(1, matClearArray2v(table, 3, 2, 2, 99.0));
    EXPECT_EQ(99, array.get<std::uint8_t>(2, 1));
    EXPECT_EQ(20, array.get<std::uint8_t>(2, 0));
    EXPECT_EQ(24, array.get<std::uint8_t>(2, 4));
    matFreeArray2v(copy);
    matFreeArrayMappedToRoi2v(table);
}

}  // namespace
