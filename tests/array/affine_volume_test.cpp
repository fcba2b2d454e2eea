#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "frame/kernels.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/volume_data.h"
#include "tests/support/volume_reference.h"
#include "velquad/array.h"

namespace {

using velquad::test::LooseVolume;
namespace volume = velquad::test::volume;

constexpr DWORD kScaleMode = 0x80000000U;
constexpr DWORD kNearest = 1;

struct Matrix {
    double m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

/// Source x = destination x - shift.
Matrix shiftedBy(double shift) {
    Matrix matrix;
    matrix.m[0][3] = shift;
    return matrix;
}

/// A row of numbers sent through a shift along x.
template <class T>
std::vector<T> shiftRow(const std::vector<T>& source, std::size_t width, unsigned int type, double shift,
                        DWORD flags, double background) {
    LooseVolume from(source.size(), 1, 1, type);
    LooseVolume to(width, 1, 1, type);
    for (std::size_t x = 0; x < source.size(); ++x)
        from.set(0, 0, x, source[x]);
    Matrix matrix = shiftedBy(shift);
    EXPECT_EQ(_matAffinTransformArray3v(static_cast<unsigned int>(source.size()), 1, 1, 1, from.slices(),
                                        static_cast<unsigned int>(width), 1, 1, to.slices(), type, matrix.m,
                                        flags, &background),
              1);
    std::vector<T> result;
    for (std::size_t x = 0; x < width; ++x)
        result.push_back(to.get<T>(0, 0, x));
    return result;
}

TEST(AffineVolumeTest, TheIdentityReproducesTheSource) {
    std::mt19937 random(1);
    const Matrix identity;
    for (unsigned int type = 1; type <= 10; ++type) {
        SCOPED_TRACE(type);
        LooseVolume source(9, 5, 4, type);
        LooseVolume result(9, 5, 4, type);
        source.fill(random);
        if (type == 6) {
            for (std::size_t z = 0; z < 4; ++z) {
                for (std::size_t y = 0; y < 5; ++y) {
                    for (std::size_t x = 0; x < 9; ++x)
                        source.set(z, y, x, source.get<std::uint32_t>(z, y, x) & 0x7FFFFFFFU);
                }
            }
        }
        EXPECT_EQ(
            matAffinTransformArray3v(9, 5, 4, source.slices(), 9, 5, 4, result.slices(), type, identity.m, 0),
            1);
        EXPECT_TRUE(result.equals(source));
    }
}

TEST(AffineVolumeTest, LargeValuesOfType6EndAtTheIndefiniteInteger) {
    const auto row =
        shiftRow<std::uint32_t>({2147483647U, 2147483648U, 4000000000U, 4294967295U}, 4, 6, 0.0, 0, 0.0);
    EXPECT_EQ(row, (std::vector<std::uint32_t>{2147483647U, 0x80000000U, 0x80000000U, 0xFFFFFFFFU}));
}

TEST(AffineVolumeTest, Type5EndsAtItsOwnLimit) {
    // An extrapolation beyond 32 bits: 1.5 * 2147483647 - 0.5 * 0.
    const auto row = shiftRow<std::int32_t>({2147483647, 0}, 1, 5, 0.5, 0, 0.0);
    EXPECT_EQ(row, (std::vector<std::int32_t>{2147483647}));
}

TEST(AffineVolumeTest, ExtrapolatesInTheHalfVoxelBeforeTheFirst) {
    const auto row = shiftRow<float>({10.0F, 4.0F, 7.0F}, 1, 7, 0.5, 0, -1.0);
    EXPECT_EQ(row[0], 1.5F * 10.0F - 0.5F * 4.0F);
}

TEST(AffineVolumeTest, TheStripFromMinusOneToZeroIsInside) {
    // Position -0.75, and -1.0, which is outside; above -1 by less than the cell tolerance still is.
    EXPECT_EQ(shiftRow<double>({10.0, 6.0}, 1, 8, 0.75, 0, -1.0)[0], 10.0 * 1.75 + 6.0 * -0.75);
    EXPECT_EQ(shiftRow<double>({10.0, 6.0}, 1, 8, 1.0, 0, -1.0)[0], -1.0);
    EXPECT_EQ(shiftRow<double>({10.0, 6.0}, 1, 8, 1.0 - 0.9e-7, 0, -1.0)[0], -1.0);
    EXPECT_NE(shiftRow<double>({10.0, 6.0}, 1, 8, 1.0 - 1.1e-7, 0, -1.0)[0], -1.0);
}

TEST(AffineVolumeTest, TheLastCellHasNoUpperNeighbour) {
    // Positions 1.5, 2.5.
    const auto row = shiftRow<float>({1.0F, 3.0F, 9.0F}, 4, 7, -1.5, 0, -1.0);
    EXPECT_EQ(row, (std::vector<float>{6.0F, 9.0F, -1.0F, -1.0F}));
}

TEST(AffineVolumeTest, ThePositionOfTheWidthIsOutside) {
    EXPECT_EQ(shiftRow<float>({1.0F, 3.0F}, 1, 7, -2.0, 0, 8.0)[0], 8.0F);
    EXPECT_EQ(shiftRow<float>({1.0F, 3.0F}, 1, 7, -2.0 + 0.9e-7, 0, 8.0)[0], 8.0F);
    EXPECT_EQ(shiftRow<float>({1.0F, 3.0F}, 1, 7, -2.0 + 1.1e-7, 0, 8.0)[0], 3.0F);
}

TEST(AffineVolumeTest, PositionsJustBelowACellBelongToIt) {
    // Cell 1 with the weight -0.9e-7 of cell 2; from cell 0 the weights would be those of cells 0 and 1.
    const double shift = -1.0 + 0.9e-7;
    const double t = (0.5 - shift) - 0.5 - 1.0;
    const double expected = 3.0 * (1.0 - t) + 1000.0 * t;
    EXPECT_NEAR(shiftRow<double>({1.0, 3.0, 1000.0}, 1, 8, shift, 0, 0.0)[0], expected, 1e-9);
    EXPECT_LT(shiftRow<double>({1.0, 3.0, 1000.0}, 1, 8, shift, 0, 0.0)[0], 3.0 - 5e-5);
}

TEST(AffineVolumeTest, NearestSamplingRoundsPositions) {
    // Position 2.5 picks cell 3, position -0.5 cell 0.
    EXPECT_EQ(shiftRow<std::uint8_t>({10, 20, 30, 40, 50}, 1, 2, -2.5, kNearest, 0.0)[0], 40);
    EXPECT_EQ(shiftRow<std::uint8_t>({10, 20, 30, 40, 50}, 1, 2, 0.5, kNearest, 0.0)[0], 10);
    // Position 4.75 is limited to the last cell.
    EXPECT_EQ(shiftRow<std::uint8_t>({10, 20, 30, 40, 50}, 1, 2, -4.75, kNearest, 0.0)[0], 50);
    // Position 1.49 picks cell 1.
    EXPECT_EQ(shiftRow<std::uint8_t>({10, 20, 30, 40, 50}, 1, 2, -1.49, kNearest, 0.0)[0], 20);
}

TEST(AffineVolumeTest, NearestSamplingCopiesElementsUnrounded) {
    EXPECT_EQ(shiftRow<std::uint32_t>({3000000000U, 5}, 1, 6, 0.0, kNearest, 0.0)[0], 3000000000U);
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(std::isnan(shiftRow<float>({notANumber, 1.0F}, 1, 7, 0.0, kNearest, 0.0)[0]));
}

TEST(AffineVolumeTest, BackgroundsAreTruncatedWithoutLimits) {
    EXPECT_EQ(shiftRow<std::uint8_t>({1}, 1, 2, 5.0, 0, 300.7)[0], 44);
    EXPECT_EQ(shiftRow<std::int8_t>({1}, 1, 1, 5.0, 0, -1.9)[0], -1);
    EXPECT_EQ(shiftRow<std::int8_t>({1}, 1, 1, 5.0, 0, 200.0)[0], -56);
    EXPECT_EQ(shiftRow<std::uint16_t>({1}, 1, 4, 5.0, 0, 70000.0)[0], 70000 - 65536);
    EXPECT_EQ(shiftRow<std::int32_t>({1}, 1, 5, 5.0, 0, 3e9)[0], INT32_MIN);
    EXPECT_EQ(shiftRow<std::uint32_t>({1}, 1, 6, 5.0, 0, 4000000000.0)[0], 4000000000U);
    EXPECT_EQ(shiftRow<std::uint32_t>({1}, 1, 6, 5.0, 0, 1e30)[0], 0U);
    EXPECT_EQ(shiftRow<float>({1}, 1, 7, 5.0, 0, 0.1)[0], 0.1F);
    EXPECT_EQ(shiftRow<double>({1}, 1, 8, 5.0, 0, 1e300)[0], 1e300);
}

TEST(AffineVolumeTest, TheLargestDoubleIsNoBackground) {
    EXPECT_EQ(shiftRow<double>({1}, 1, 8, 5.0, 0, velquad::kNoValue)[0], 0.0);
    EXPECT_EQ(shiftRow<double>({1}, 1, 8, 5.0, 0, -velquad::kNoValue)[0], -velquad::kNoValue);
    EXPECT_TRUE(std::isnan(shiftRow<double>({1}, 1, 8, 5.0, 0, std::numeric_limits<double>::quiet_NaN())[0]));
    double background[3] = {7.0, velquad::kNoValue, 9.0};
    LooseVolume source(1, 1, 1, MAT_ARRAY_BYTE3);
    LooseVolume result(1, 1, 1, MAT_ARRAY_BYTE3);
    Matrix matrix = shiftedBy(9.0);
    EXPECT_EQ(_matAffinTransformArray3v(1, 1, 1, 77, source.slices(), 1, 1, 1, result.slices(),
                                        MAT_ARRAY_BYTE3, matrix.m, 0, background),
              1);
    const unsigned char* pixel = result.slice(0).row(0);
    EXPECT_EQ(pixel[0], 7);
    EXPECT_EQ(pixel[1], 0);
    EXPECT_EQ(pixel[2], 9);
}

TEST(AffineVolumeTest, PixelsHaveThreeChannelsWithoutBackground) {
    LooseVolume source(2, 1, 1, MAT_ARRAY_BYTE3);
    LooseVolume result(2, 1, 1, MAT_ARRAY_BYTE3);
    const std::uint8_t bytes[] = {10, 20, 30, 20, 40, 60};
    std::memcpy(source.slice(0).row(0), bytes, sizeof(bytes));
    std::memset(result.slice(0).row(0), 0xEE, 6);
    const Matrix matrix = shiftedBy(-0.5);
    EXPECT_EQ(matAffinTransformArray3v(2, 1, 1, source.slices(), 2, 1, 1, result.slices(), MAT_ARRAY_BYTE3,
                                       matrix.m, 0),
              1);
    // Positions 0.5 and 1.5.
    const std::vector<std::uint8_t> expected = {15, 30, 45, 20, 40, 60};
    EXPECT_EQ(std::vector<std::uint8_t>(result.slice(0).row(0), result.slice(0).row(0) + 6), expected);
    const Matrix outside = shiftedBy(-50.0);
    EXPECT_EQ(matAffinTransformArray3v(2, 1, 1, source.slices(), 2, 1, 1, result.slices(), MAT_ARRAY_BYTE3,
                                       outside.m, 0),
              1);
    EXPECT_EQ(std::vector<std::uint8_t>(result.slice(0).row(0), result.slice(0).row(0) + 6),
              std::vector<std::uint8_t>(6, 0));
}

TEST(AffineVolumeTest, ScaleModeHasNoShiftToCentres) {
    LooseVolume source(2, 1, 1, MAT_ARRAY_DOUBLE);
    LooseVolume result(4, 1, 1, MAT_ARRAY_DOUBLE);
    source.set(0, 0, 0, 10.0);
    source.set(0, 0, 1, 20.0);
    EXPECT_EQ(
        matAffinTransformArray3v(2, 1, 1, source.slices(), 4, 1, 1, result.slices(), 8, nullptr, kScaleMode),
        1);
    const double expected[] = {10.0, 15.0, 20.0, 20.0};
    for (std::size_t x = 0; x < 4; ++x)
        EXPECT_EQ(result.get<double>(0, 0, x), expected[x]) << x;
    EXPECT_EQ(matAffinTransformArray3v(2, 1, 1, source.slices(), 4, 1, 1, result.slices(), 8, nullptr,
                                       kScaleMode | kNearest | 6),
              1);
    const double nearest[] = {10.0, 20.0, 20.0, 20.0};
    for (std::size_t x = 0; x < 4; ++x)
        EXPECT_EQ(result.get<double>(0, 0, x), nearest[x]) << x;
}

TEST(AffineVolumeTest, AnEmptySourceGivesBackground) {
    for (const DWORD flags : {DWORD{0}, kNearest, kScaleMode, kScaleMode | kNearest}) {
        LooseVolume source(3, 0, 2, 2);
        LooseVolume result(3, 2, 2, 2);
        Matrix matrix;
        double background = 6.0;
        EXPECT_EQ(_matAffinTransformArray3v(3, 0, 2, 1, source.slices(), 3, 2, 2, result.slices(), 2,
                                            matrix.m, flags, &background),
                  1);
        for (std::size_t x = 0; x < 3; ++x)
            EXPECT_EQ(result.get<std::uint8_t>(1, 1, x), 6);
    }
}

TEST(AffineVolumeTest, RefusesNullAndUnknownTypes) {
    LooseVolume source(2, 2, 2, 8);
    LooseVolume result(2, 2, 2, 8);
    LooseVolume before(2, 2, 2, 8);
    source.set(0, 0, 0, 5.0);
    const Matrix matrix;
    EXPECT_EQ(matAffinTransformArray3v(2, 2, 2, nullptr, 2, 2, 2, result.slices(), 8, matrix.m, 0), 0);
    EXPECT_EQ(matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 2, 2, nullptr, 8, matrix.m, 0), 0);
    EXPECT_EQ(matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 2, 2, result.slices(), 8, nullptr, 0), 0);
    for (const unsigned int type : {0U, 11U, 0xFFFFFFFFU}) {
        EXPECT_EQ(
            matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 2, 2, result.slices(), type, matrix.m, 0),
            0);
        EXPECT_EQ(
            matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 2, 0, result.slices(), type, matrix.m, 0),
            0);
    }
    EXPECT_TRUE(result.equals(before));
}

TEST(AffineVolumeTest, AnEmptyDestinationIsDone) {
    LooseVolume source(2, 2, 2, 2);
    LooseVolume result(2, 2, 2, 2);
    const Matrix matrix;
    EXPECT_EQ(matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 2, 0, result.slices(), 2, matrix.m, 0),
              1);
    EXPECT_EQ(matAffinTransformArray3v(2, 2, 2, source.slices(), 0, 2, 2, result.slices(), 2, matrix.m, 0),
              1);
    EXPECT_EQ(
        matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 0, 2, result.slices(), 2, matrix.m, kScaleMode),
        1);
}

TEST(AffineVolumeTest, NoChannelsAreDone) {
    LooseVolume source(2, 2, 2, 2);
    LooseVolume result(2, 2, 2, 2);
    LooseVolume before(2, 2, 2, 2);
    source.set<std::uint8_t>(0, 0, 0, 9);
    Matrix matrix;
    EXPECT_EQ(_matAffinTransformArray3v(2, 2, 2, 0, source.slices(), 2, 2, 2, result.slices(), 2, matrix.m, 0,
                                        nullptr),
              1);
    EXPECT_TRUE(result.equals(before));
}

TEST(AffineVolumeTest, FailsWithoutMemoryForTheBackground) {
    LooseVolume source(2, 2, 2, 2);
    LooseVolume result(2, 2, 2, 2);
    const std::size_t allocations = velquad::test::forEachFailingAllocation([&] {
        return matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 2, 2, result.slices(), 2, nullptr,
                                        kScaleMode) == 0;
    });
    EXPECT_GE(allocations, 1U);
}

TEST(AffineVolumeTest, VoxelsAtInfinityTakeThePositionBefore) {
    // The weight of destination voxel x is proportional to 3.5 - (x + 0.5) and vanishes for x = 3.
    Matrix inverse;
    inverse.m[3][0] = -1.0;
    inverse.m[3][3] = 3.5;
    Matrix matrix;
    matInvertMatrix4(matrix.m, inverse.m, 0);
    std::mt19937 random(4);
    for (const bool isNearest : {false, true}) {
        LooseVolume source(8, 3, 3, MAT_ARRAY_FLOAT);
        LooseVolume result(8, 3, 3, MAT_ARRAY_FLOAT);
        LooseVolume expected(8, 3, 3, MAT_ARRAY_FLOAT);
        source.fill(random);
        const double background = 0.0;
        const volume::Shape shape = {8, 3, 3, MAT_ARRAY_FLOAT, 1};
        const double(*const rows)[4] = matrix.m;
        volume::resampleOfType(MAT_ARRAY_FLOAT, shape, source.slices(), 8U, 3U, 3U, expected.slices(), rows,
                               false, isNearest, &background);
        EXPECT_EQ(matAffinTransformArray3v(8, 3, 3, source.slices(), 8, 3, 3, result.slices(),
                                           MAT_ARRAY_FLOAT, matrix.m, isNearest ? kNearest : 0),
                  1);
        EXPECT_TRUE(result.equals(expected));
    }
}

TEST(AffineVolumeTest, ThePositionBeforeIsCarriedOverRowsAndSlices) {
    // Inverse: the weight of destination voxel x is -x, so each row begins at infinity; voxel (1, y, z) comes
    // from (1, y, z). All numbers are exact.
    const double matrix[4][4] = {{-1, 0, 0, 0}, {0, -1, 0, 0}, {0, 0, -1, 0}, {-2, 0, 0, 2}};
    LooseVolume source(2, 2, 2, MAT_ARRAY_DOUBLE);
    LooseVolume result(2, 2, 2, MAT_ARRAY_DOUBLE);
    for (std::size_t i = 0; i < 8; ++i)
        source.set(i / 4, i / 2 % 2, i % 2, 1.0 + static_cast<double>(i));
    EXPECT_EQ(matAffinTransformArray3v(2, 2, 2, source.slices(), 2, 2, 2, result.slices(), MAT_ARRAY_DOUBLE,
                                       matrix, 0),
              1);
    // Before the first voxel stands -0.5 on all axes: 1 - 0.5 * (1 + 2 + 4).
    const double expected[] = {-2.5, 2.0, 2.0, 4.0, 4.0, 6.0, 6.0, 8.0};
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(result.get<double>(i / 4, i / 2 % 2, i % 2), expected[i]) << i;
}

TEST(AffineVolumeTest, AFailedInversionLeavesAllPositionsAtMinusOneHalf) {
    const Matrix identity;
    std::size_t failedInversions = 0;
    for (std::size_t number = 1;; ++number) {
        SCOPED_TRACE(number);
        LooseVolume source(2, 1, 1, MAT_ARRAY_DOUBLE);
        LooseVolume result(2, 1, 1, MAT_ARRAY_DOUBLE);
        source.set(0, 0, 0, 10.0);
        source.set(0, 0, 1, 4.0);
        result.set(0, 0, 0, -1.0);
        result.set(0, 0, 1, -1.0);
        velquad::test::failAllocation(number);
        const int done = matAffinTransformArray3v(2, 1, 1, source.slices(), 2, 1, 1, result.slices(),
                                                  MAT_ARRAY_DOUBLE, identity.m, 0);
        const bool hasFailed = velquad::test::hasAllocationFailed();
        velquad::test::failAllocation(0);
        const std::vector<double> row = {result.get<double>(0, 0, 0), result.get<double>(0, 0, 1)};
        if (!hasFailed) {
            EXPECT_EQ(done, 1);
            EXPECT_EQ(row, (std::vector<double>{10.0, 4.0}));
            break;
        }
        if (done == 0) {
            EXPECT_EQ(row, (std::vector<double>{-1.0, -1.0}));
            continue;
        }
        // 1.5 * 10 - 0.5 * 4.
        EXPECT_EQ(row, (std::vector<double>{13.0, 13.0}));
        ++failedInversions;
    }
    EXPECT_GE(failedInversions, 1U);
}

/// Random maps: near the identity, turned and scaled, projective, singular, with infinities and
/// not-a-numbers.
void makeRandomMatrix(std::mt19937& random, Matrix& matrix) {
    std::uniform_real_distribution<double> entry(-1.5, 1.5);
    const auto kind = random() % 8;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            matrix.m[row][column] = (row == column ? 1.0 : 0.0) + (kind == 0 ? 0.0 : 0.5 * entry(random));
        matrix.m[row][3] = kind == 1 ? 0.5 * std::round(4.0 * entry(random)) : 3.0 * entry(random);
    }
    if (kind == 2 || kind == 3) {
        for (double& value : matrix.m[3])
            value += 0.1 * entry(random);
    }
    if (kind == 4) matrix.m[1][0] = matrix.m[1][1] = matrix.m[1][2] = 0.0;
    if (kind == 5) matrix.m[random() % 4][random() % 4] = std::numeric_limits<double>::infinity();
    if (kind == 6) matrix.m[3][3] = 2.0;
}

struct Sizes {
    unsigned int width;
    unsigned int height;
    unsigned int depth;
};

Sizes randomSizes(std::mt19937& random) {
    const auto size = [&random](unsigned int largest) {
        return static_cast<unsigned int>(random() % (largest + 1));
    };
    return random() % 6 == 0 ? Sizes{size(300), size(2), size(2)} : Sizes{size(12), size(6), size(5)};
}

class AffineVolumeLevels : public testing::TestWithParam<unsigned int> {
  protected:
    void TearDown() override { velquad::frame::selectKernelLevel(velquad::frame::kernelLevelCount() - 1); }
};

TEST_P(AffineVolumeLevels, EqualTheLoops) {
    const unsigned int type = GetParam();
    std::mt19937 random(200 + type);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(testing::Message() << "round " << round);
        const unsigned int pixelChannels = type == 9 ? 3 : type == 10 ? 4 : 0;
        const auto randomChannels = static_cast<unsigned int>(random() % 4 == 0 ? random() % 4 : 1);
        const unsigned int channels = pixelChannels != 0 ? pixelChannels : randomChannels;
        const unsigned int scalar = type >= 9 ? 2 : type;
        const Sizes from = randomSizes(random);
        const Sizes to = randomSizes(random);
        Matrix matrix;
        makeRandomMatrix(random, matrix);
        const bool isScaled = random() % 4 == 0;
        const bool isNearest = random() % 2 == 0;
        const DWORD flags =
            (isScaled ? kScaleMode : 0) | (isNearest ? kNearest : 0) | (random() % 2 == 0 ? 0x6EU : 0);
        double background[4] = {1.5, velquad::kNoValue, -77.7, 1e10};
        double filled[4] = {1.5, 0.0, -77.7, 1e10};
        LooseVolume source(std::size_t{from.width} * channels, from.height, from.depth, scalar);
        LooseVolume expected(std::size_t{to.width} * channels, to.height, to.depth, scalar);
        source.fill(random, round % 3 == 0);
        const volume::Shape shape = {from.width, from.height, from.depth, scalar, channels};
        const double(*const rows)[4] = matrix.m;
        const double* const colours = filled;
        volume::resampleOfType(scalar, shape, source.slices(), to.width, to.height, to.depth,
                               expected.slices(), rows, isScaled, isNearest, colours);
        for (std::size_t level = 0; level < velquad::frame::kernelLevelCount(); ++level) {
            SCOPED_TRACE(testing::Message() << "level " << level);
            velquad::frame::selectKernelLevel(level);
            LooseVolume result(std::size_t{to.width} * channels, to.height, to.depth, scalar);
            ASSERT_EQ(_matAffinTransformArray3v(from.width, from.height, from.depth,
                                                pixelChannels != 0 ? 99 : channels, source.slices(), to.width,
                                                to.height, to.depth, result.slices(), type, matrix.m, flags,
                                                background),
                      1);
            ASSERT_TRUE(result.equals(expected));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, AffineVolumeLevels, testing::Range(1U, 11U));

}  // namespace
