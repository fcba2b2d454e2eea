// Discs, the peak of an image under one, and extremes of a sequence.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/array_data.h"
#include "tests/support/kernel_levels.h"
#include "velquad/array.h"

namespace {

using velquad::test::allocationCount;
using velquad::test::failAllocation;
using velquad::test::forEachFailingAllocation;
using velquad::test::forEachKernelLevel;
using velquad::test::LooseArray;

constexpr double kMaxDouble = std::numeric_limits<double>::max();

struct Disc {
    unsigned short** shape = nullptr;
    double* distances = nullptr;
    unsigned int maxIndex = 0;
    int* left = nullptr;
    int* right = nullptr;

    explicit Disc(int radius) {
        shape = matAllocCircularShape2w(radius, &distances, &maxIndex, &left, &right);
    }
    Disc(const Disc&) = delete;
    Disc& operator=(const Disc&) = delete;
    ~Disc() { EXPECT_EQ(1, matFreeCircularShape2w(shape, distances, left, right)); }

    unsigned int at(std::size_t y, std::size_t x) const {
        const unsigned char* row = nullptr;
        std::memcpy(&row, reinterpret_cast<const unsigned char*>(shape) + 8 * y, sizeof(row));
        std::uint16_t index = 0;
        std::memcpy(&index, row + 2 * x, sizeof(index));
        return index;
    }
};

TEST(CircularShape, OfRadiusZeroIsOneCell) {
    const Disc disc(0);
    ASSERT_NE(nullptr, disc.shape);
    EXPECT_EQ(0U, disc.at(0, 0));
    EXPECT_EQ(0, disc.left[0]);
    EXPECT_EQ(0, disc.right[0]);
    EXPECT_EQ(0.0, disc.distances[0]);
    EXPECT_EQ(0U, disc.maxIndex);
}

TEST(CircularShape, OfRadiusOneHasAllNineCells) {
    const Disc disc(1);
    ASSERT_NE(nullptr, disc.shape);
    constexpr unsigned int kShape[3][3] = {{2, 1, 2}, {1, 0, 1}, {2, 1, 2}};
    for (std::size_t y = 0; y < 3; ++y) {
        for (std::size_t x = 0; x < 3; ++x)
            EXPECT_EQ(kShape[y][x], disc.at(y, x));
        EXPECT_EQ(0, disc.left[y]);
        EXPECT_EQ(2, disc.right[y]);
    }
    EXPECT_EQ(2U, disc.maxIndex);
    EXPECT_EQ(0.0, disc.distances[0]);
    EXPECT_EQ(1.0, disc.distances[1]);
    EXPECT_EQ(std::sqrt(2.0), disc.distances[2]);
}

TEST(CircularShape, OfRadiusTwoLosesItsCorners) {
    const Disc disc(2);
    ASSERT_NE(nullptr, disc.shape);
    EXPECT_EQ(65535U, disc.at(0, 0));
    EXPECT_EQ(65535U, disc.at(4, 4));
    EXPECT_EQ(4U, disc.at(0, 1));  // Distances: 0, 1, sqrt 2, 2, sqrt 5, none.
    EXPECT_EQ(3U, disc.at(0, 2));
    EXPECT_EQ(5U, disc.maxIndex);
    EXPECT_EQ(std::sqrt(5.0), disc.distances[4]);
    EXPECT_EQ(kMaxDouble, disc.distances[5]);
    EXPECT_EQ(1, disc.left[0]);
    EXPECT_EQ(3, disc.right[0]);
    EXPECT_EQ(0, disc.left[1]);
    EXPECT_EQ(4, disc.right[1]);
    EXPECT_EQ(disc.left + 5, disc.right);
}

TEST(CircularShape, FollowsItsDefinition) {
    for (const int radius : {3, 7, 20}) {
        SCOPED_TRACE(radius);
        const Disc disc(radius);
        ASSERT_NE(nullptr, disc.shape);
        EXPECT_EQ(kMaxDouble, disc.distances[disc.maxIndex]);
        for (unsigned int i = 1; i <= disc.maxIndex; ++i)
            EXPECT_LT(disc.distances[i - 1] + 1e-7, disc.distances[i]);
        for (int y = -radius; y <= radius; ++y) {
            int first = 0x7FFFFFFF;
            int last = 0x7FFFFFFF;
            for (int x = -radius; x <= radius; ++x) {
                const double distance = std::sqrt(static_cast<double>(x * x + y * y));
                const auto index =
                    disc.at(static_cast<std::size_t>(y + radius), static_cast<std::size_t>(x + radius));
                if (std::lround(distance) > radius) {
                    EXPECT_EQ(65535U, index);
                    continue;
                }
                EXPECT_EQ(distance, disc.distances[index]);
                if (first == 0x7FFFFFFF) first = x + radius;
                last = x + radius;
            }
            EXPECT_EQ(first, disc.left[y + radius]);
            EXPECT_EQ(last, disc.right[y + radius]);
        }
    }
}

TEST(CircularShape, RefusesImpossibleRadii) {
    double untouched = 1.0;
    double* distances = &untouched;
    for (const int radius : {-1, std::numeric_limits<int>::min(), 11585, 0x7FFFFFFF}) {
        EXPECT_EQ(nullptr, matAllocCircularShape2w(radius, &distances, nullptr, nullptr, nullptr));
        EXPECT_EQ(&untouched, distances);
    }
}

TEST(CircularShape, HandsOutOnlyWhatIsAskedFor) {
    double* distances = nullptr;
    int* left = nullptr;
    unsigned short** shape = matAllocCircularShape2w(4, &distances, nullptr, &left, nullptr);
    ASSERT_NE(nullptr, shape);
    EXPECT_EQ(1, matFreeCircularShape2w(shape, distances, left, nullptr));
    EXPECT_EQ(1, matFreeCircularShape2w(nullptr, nullptr, nullptr, nullptr));
}

TEST(CircularShape, ReportsFailingAllocations) {
    const std::size_t count = forEachFailingAllocation([] {
        double* distances = nullptr;
        int* left = nullptr;
        unsigned short** shape = matAllocCircularShape2w(5, &distances, nullptr, &left, nullptr);
        EXPECT_EQ(shape == nullptr, distances == nullptr);
        EXPECT_EQ(shape == nullptr, left == nullptr);
        matFreeCircularShape2w(shape, distances, left, nullptr);
        return shape == nullptr;
    });
    EXPECT_LE(4U, count);
}

// The peak.

struct Peak {
    int x = -7;
    int y = -7;
    double value = -7.0;

    friend bool operator==(const Peak&, const Peak&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Peak& peak) {
        return out << peak.value << " at " << peak.x << ", " << peak.y;
    }
};

Peak peakOf(LooseArray& image, int width, int height, int radius) {
    tagPOINT at{-7, -7};
    Peak peak;
    EXPECT_EQ(1,
              matFindGlobalPeak2w(image.rows<unsigned short**>(), width, height, radius, &at, &peak.value));
    peak.x = static_cast<int>(at.x);
    peak.y = static_cast<int>(at.y);
    return peak;
}

/// The search as it is defined, cell by cell.
Peak definedPeak(const LooseArray& image, int width, int height, int radius) {
    Peak best{-1, -1, -3.4028234663852886e+38};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double sum = 0.0;
            double n = 0.0;
            for (int dy = -radius; dy <= radius; ++dy) {
                for (int dx = -radius; dx <= radius; ++dx) {
                    if (std::lround(std::sqrt(static_cast<double>(dx * dx + dy * dy))) > radius) continue;
                    if (y + dy < 0 || y + dy >= height || x + dx < 0 || x + dx >= width) continue;
                    sum += image.get<std::uint16_t>(static_cast<std::size_t>(y + dy),
                                                    static_cast<std::size_t>(x + dx));
                    n += 1.0;
                }
            }
            double mean = sum / n;
            if (1e-7 > std::fabs(mean)) mean = 0.0;
            if (mean >= best.value) best = {x, y, mean};
        }
    }
    return best;
}

TEST(GlobalPeak, OfZerosIsTheLastCell) {
    LooseArray image(6, 4, 4);
    for (const int radius : {0, 1, 3, 50})
        EXPECT_EQ((Peak{5, 3, 0.0}), peakOf(image, 6, 4, radius));
}

TEST(GlobalPeak, OfAnEmptyImageIsNowhere) {
    LooseArray image(6, 4, 4);
    const Peak none{-1, -1, -3.4028234663852886e+38};
    EXPECT_EQ(none, peakOf(image, 0, 4, 2));
    EXPECT_EQ(none, peakOf(image, 6, 0, 2));
    EXPECT_EQ(none, peakOf(image, -1, -1, 2));
    tagPOINT at{-7, -7};
    double value = -7.0;
    EXPECT_EQ(1, matFindGlobalPeak2w(nullptr, 6, 4, 2, &at, &value));
    EXPECT_EQ(-1, at.x);
    EXPECT_EQ(-1, at.y);
    EXPECT_EQ(none.value, value);
}

TEST(GlobalPeak, WithRadiusZeroIsTheLastLargestPixel) {
    LooseArray image(4, 3, 4);
    image.set(0, 2, std::uint16_t{65535});
    image.set(1, 1, std::uint16_t{65535});
    EXPECT_EQ((Peak{1, 1, 65535.0}), peakOf(image, 4, 3, 0));
}

TEST(GlobalPeak, DoesNotPenaliseTheBorder) {
    LooseArray image(5, 5, 4);
    // In the corner 4 of the 9 cells lie within the image: (100 + 0 + 0 + 0) / 4.
    image.set(0, 0, std::uint16_t{100});
    EXPECT_EQ((Peak{0, 0, 25.0}), peakOf(image, 5, 5, 1));
}

TEST(GlobalPeak, OutputsAreOptional) {
    LooseArray image(3, 3, 4);
    EXPECT_EQ(1, matFindGlobalPeak2w(image.rows<unsigned short**>(), 3, 3, 1, nullptr, nullptr));
}

TEST(GlobalPeak, EqualsItsDefinition) {
    std::mt19937 seeds(20240614);
    constexpr int kSizes[][2] = {{1, 1}, {1, 9}, {9, 1}, {12, 7}, {40, 33}, {3, 60}};
    for (const auto& size : kSizes) {
        for (const int radius : {0, 1, 2, 5, 9, 45}) {
            for (const unsigned int mask : {0xFFFFU, 3U, 1U}) {
                const auto seed = static_cast<unsigned int>(seeds());
                SCOPED_TRACE(testing::Message()
                             << size[0] << " x " << size[1] << " radius " << radius << " seed " << seed);
                std::mt19937 random(seed);
                LooseArray image(static_cast<std::size_t>(size[0]), static_cast<std::size_t>(size[1]), 4);
                for (std::size_t y = 0; y < static_cast<std::size_t>(size[1]); ++y) {
                    for (std::size_t x = 0; x < static_cast<std::size_t>(size[0]); ++x)
                        image.set(y, x, static_cast<std::uint16_t>(random() & mask));
                }
                const Peak expected = definedPeak(image, size[0], size[1], radius);
                forEachKernelLevel([&] { EXPECT_EQ(expected, peakOf(image, size[0], size[1], radius)); });
            }
        }
    }
}

TEST(GlobalPeak, NeedsMemoryForTheDiscOnly) {
    LooseArray image(20, 15, 4);
    std::mt19937 random(4);
    for (std::size_t y = 0; y < 15; ++y) {
        for (std::size_t x = 0; x < 20; ++x)
            image.set(y, x, static_cast<std::uint16_t>(random()));
    }
    const std::size_t before = allocationCount();
    const Peak expected = peakOf(image, 20, 15, 3);
    const std::size_t count = allocationCount() - before;
    const std::size_t discBefore = allocationCount();
    const Disc disc(3);
    const std::size_t discCount = allocationCount() - discBefore;
    ASSERT_LT(discCount, count);
    for (std::size_t number = 1; number <= count; ++number) {
        tagPOINT at{-7, -7};
        Peak peak;
        failAllocation(number);
        const int result = matFindGlobalPeak2w(image.rows<unsigned short**>(), 20, 15, 3, &at, &peak.value);
        failAllocation(0);
        peak.x = static_cast<int>(at.x);
        peak.y = static_cast<int>(at.y);
        EXPECT_EQ(number > discCount ? 1 : 0, result) << number;
        EXPECT_EQ(result == 1 ? expected : Peak{}, peak) << number;
    }
}

// Extremes of a sequence.

std::vector<int> marks(const std::vector<double>& values) {
    std::vector<unsigned char> flags(values.size() + 1, 33);
    EXPECT_EQ(1, matFindMinMaxValues(values.data(), flags.data(), static_cast<unsigned int>(values.size())));
    EXPECT_EQ(33, flags.back());
    return {flags.begin(), flags.end() - 1};
}

TEST(MinMaxValues, MarksTheMiddleOfAPlateau) {
    EXPECT_EQ((std::vector<int>{127, 127, 255, 127, 127}), marks({1, 3, 3, 3, 2}));
    EXPECT_EQ((std::vector<int>{127, 255, 127, 127}), marks({1, 3, 3, 2}));
    EXPECT_EQ((std::vector<int>{127, 127, 0, 127, 127}), marks({3, 1, 1, 1, 2}));
}

TEST(MinMaxValues, NeverMarksTheEnds) {
    EXPECT_EQ((std::vector<int>{127, 127, 127}), marks({5, 5, 5}));
    EXPECT_EQ((std::vector<int>{127, 127, 127}), marks({1, 2, 3}));
    EXPECT_EQ((std::vector<int>{127, 127, 127}), marks({3, 2, 1}));
    EXPECT_EQ((std::vector<int>{127}), marks({3}));
    EXPECT_EQ((std::vector<int>{}), marks({}));
}

TEST(MinMaxValues, AlternatesMaximaAndMinima) {
    EXPECT_EQ((std::vector<int>{127, 255, 0, 255, 127, 0, 127}), marks({0, 5, 1, 4, 3, 2, 9}));
    // The first run begins behind the equal values at the start.
    EXPECT_EQ((std::vector<int>{127, 127, 127, 255, 127}), marks({2, 2, 3, 4, 1}));
}

TEST(MinMaxValues, APlateauEndsWhereItsRunBegins) {
    // After the maximum at index 1 the falling run begins there; the minimum's plateau covers 2 to 3.
    EXPECT_EQ((std::vector<int>{127, 255, 0, 127, 127}), marks({1, 4, 2, 2, 3}));
}

TEST(MinMaxValues, NullPointersWriteNothing) {
    const double values[] = {1, 3, 2};
    unsigned char flags[] = {33, 33, 33};
    EXPECT_EQ(1, matFindMinMaxValues(nullptr, flags, 3));
    EXPECT_EQ(33, flags[1]);
    EXPECT_EQ(1, matFindMinMaxValues(values, nullptr, 3));
}

TEST(MinMaxValues, ANotANumberAtTheStartCountsAsDifferent) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    // Falling from the start; no comparison with the not-a-number stops it.
    EXPECT_EQ((std::vector<int>{127, 0, 127}), marks({nan, 1, 2}));
}

}  // namespace
