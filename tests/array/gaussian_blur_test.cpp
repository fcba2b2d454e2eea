#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "array/gaussian_filter.h"
#include "array/gaussian_rows.h"
#include "frame/kernels.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/volume_data.h"
#include "tests/support/volume_reference.h"
#include "velquad/array.h"

namespace {

using velquad::array::CGaussianBlurFilter3D;
using velquad::test::LooseVolume;
namespace volume = velquad::test::volume;

constexpr unsigned int kNoStep = 0xFFFFFFFFU;

/// Follows the callback, and stops it at a call.
struct Listener {
    unsigned int stopAt = 0;  ///< 0: never.
    std::vector<unsigned int> counters;
    unsigned int total = 0;

    static int hear(unsigned int current, unsigned int total, void* user) {
        auto* listener = static_cast<Listener*>(user);
        listener->counters.push_back(current);
        listener->total = total;
        return current == listener->stopAt ? 0 : 1;
    }
};

/// One blur as it is asked for.
struct Request {
    unsigned int size[3] = {1, 1, 1};
    unsigned int type = MAT_ARRAY_DOUBLE;
    unsigned int channels = 1;
    unsigned int strides[3] = {0, kNoStep, 0};
    bool hasStrides = false;
    double sigma[3] = {2.0, 2.0, 2.0};
    double radiusFactor[3] = {1.5, 1.5, 1.5};
    int convert = 0;
    Listener* listener = nullptr;

    void setSize(unsigned int width, unsigned int height, unsigned int depth) {
        size[0] = width;
        size[1] = height;
        size[2] = depth;
    }

    volume::Shape shape() const { return {size[0], size[1], size[2], type, channels}; }
    std::size_t rowElements() const { return std::size_t{size[0]} * channels; }

    DWORD blur(void*** slices) {
        return matGaussianBlurFilter3v(slices, size, type, channels, hasStrides ? strides : nullptr, sigma,
                                       radiusFactor, convert, listener == nullptr ? nullptr : &Listener::hear,
                                       listener);
    }

    /// The same by the plain loops.
    DWORD blurPlainly(void*** slices) const {
        volume::Blur filter;
        filter.sigma = sigma;
        filter.radiusFactor = radiusFactor;
        filter.callback = listener == nullptr ? nullptr : &Listener::hear;
        filter.callbackUser = listener;
        if (convert == 0 || type < 1 || type > 6) {
            filter.strides = hasStrides ? strides : nullptr;
            return static_cast<DWORD>(filter.run(slices, shape()));
        }
        const unsigned int copyType = type < 5 ? MAT_ARRAY_FLOAT : MAT_ARRAY_DOUBLE;
        LooseVolume copy(rowElements(), size[1], size[2], copyType);
        volume::convert(slices, type, copy.slices(), copyType, shape());
        volume::Shape copyShape = shape();
        copyShape.type = copyType;
        filter.run(copy.slices(), copyShape);
        volume::convert(copy.slices(), copyType, slices, type, shape());
        return 1;
    }
};

/// A row of doubles, blurred along x.
std::vector<double> blurredRow(const std::vector<double>& row, double sigma, double factor) {
    Request request;
    request.setSize(static_cast<unsigned int>(row.size()), 1, 1);
    request.sigma[0] = sigma;
    request.radiusFactor[0] = factor;
    LooseVolume data(row.size(), 1, 1, MAT_ARRAY_DOUBLE);
    for (std::size_t x = 0; x < row.size(); ++x)
        data.set(0, 0, x, row[x]);
    EXPECT_EQ(request.blur(data.slices()), 1U);
    std::vector<double> result;
    for (std::size_t x = 0; x < row.size(); ++x)
        result.push_back(data.get<double>(0, 0, x));
    return result;
}

TEST(GaussianBlurTest, SigmaTwoHasSevenTaps) {
    std::vector<double> impulse(15, 0.0);
    impulse[7] = 1.0;
    const std::vector<double> result = blurredRow(impulse, 2.0, 1.5);
    double sum = 0.0;
    for (int k = -3; k <= 3; ++k)
        sum += std::exp(-k * k / 8.0);
    for (int i = 0; i < 15; ++i) {
        const int k = i - 7;
        const double expected = k < -3 || k > 3 ? 0.0 : std::exp(-k * k / 8.0) / sum;
        EXPECT_DOUBLE_EQ(result[static_cast<std::size_t>(i)], expected) << i;
    }
}

TEST(GaussianBlurTest, WindowsAtTheEndsAreOneSided) {
    const std::vector<double> result = blurredRow({1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 64.0, 128.0}, 1.0, 1.0);
    const double w = std::exp(-0.5);
    EXPECT_DOUBLE_EQ(result[0], (1.0 + 2.0 * w) / (1.0 + w));
    EXPECT_DOUBLE_EQ(result[1], (1.0 * w + 2.0 + 4.0 * w) / (1.0 + 2.0 * w));
    EXPECT_DOUBLE_EQ(result[7], (64.0 * w + 128.0) / (1.0 + w));
}

TEST(GaussianBlurTest, AShortLineIsSeenWholeByEverySample) {
    const std::vector<double> result = blurredRow({3.0, 5.0}, 4.0, 2.0);
    const double w = std::exp(-1.0 / 32.0);
    EXPECT_DOUBLE_EQ(result[0], (3.0 + 5.0 * w) / (1.0 + w));
    EXPECT_DOUBLE_EQ(result[1], (3.0 * w + 5.0) / (1.0 + w));
    EXPECT_EQ(blurredRow({7.0}, 4.0, 2.0)[0], 7.0);
}

TEST(GaussianBlurTest, ARadiusOfZeroBlursNothing) {
    const std::vector<double> row = {1.0, -5.0, 9.0, 0.25};
    EXPECT_EQ(blurredRow(row, 0.5, 1.5), row);
    EXPECT_EQ(blurredRow(row, 0.0, 1.5), row);
    EXPECT_EQ(blurredRow(row, -0.5, 1.5), row);
    EXPECT_NE(blurredRow(row, 0.667, 1.5), row);
}

TEST(GaussianBlurTest, ASigmaWithoutASquareHasNoWeights) {
    // 0 / 0 in the exponent of the only weight.
    for (const double value : blurredRow({1.0, 2.0}, 1e-200, 1.5))
        EXPECT_TRUE(std::isnan(value));
    for (const int convert : {0, 1}) {
        Request request;
        request.setSize(2, 1, 1);
        request.type = MAT_ARRAY_INT16;
        request.convert = convert;
        request.sigma[0] = 1e-200;
        LooseVolume data(2, 1, 1, MAT_ARRAY_INT16);
        data.set<std::int16_t>(0, 0, 0, 5);
        EXPECT_EQ(request.blur(data.slices()), 1U);
        // The lowest 32-bit integer, limited to the type.
        EXPECT_EQ(data.get<std::int16_t>(0, 0, 0), -32768);
        EXPECT_EQ(data.get<std::int16_t>(0, 0, 1), -32768);
    }
}

TEST(GaussianBlurTest, ARadiusBeyond32BitsMakesZeros) {
    const std::vector<double> zeros(3, 0.0);
    EXPECT_EQ(blurredRow({1.0, 2.0, 3.0}, 1e10, 1.0), zeros);
    EXPECT_EQ(blurredRow({1.0, 2.0, 3.0}, std::numeric_limits<double>::quiet_NaN(), 1.0), zeros);
    EXPECT_EQ(blurredRow({1.0, 2.0, 3.0}, 0.0, std::numeric_limits<double>::infinity()), zeros);
}

TEST(GaussianBlurTest, ARadiusBeyondTheLineCostsNothing) {
    const std::vector<double> result = blurredRow({3.0, 5.0}, 1e8, 1.5);
    EXPECT_DOUBLE_EQ(result[0], 4.0);
    EXPECT_DOUBLE_EQ(result[1], 4.0);
}

TEST(GaussianBlurTest, ANegativeRadiusHasNoWindow) {
    const std::vector<double> row = {1.0, 2.0, 3.0};
    const std::vector<double> zeros(3, 0.0);
    EXPECT_EQ(blurredRow(row, -0.999, 1.0), row);
    EXPECT_EQ(blurredRow(row, -1.0, 1.0), zeros);
    EXPECT_EQ(blurredRow(row, 2.0, -1.5), zeros);
    EXPECT_EQ(blurredRow(row, -2147483647.0, 1.0), zeros);
    // Both signs cancel in the radius, and the weights know only the square.
    EXPECT_EQ(blurredRow(row, -2.0, -1.5), blurredRow(row, 2.0, 1.5));
}

TEST(GaussianBlurTest, ANegativeRadiusMakesEveryTypeZero) {
    Request request;
    request.setSize(3, 2, 2);
    request.sigma[1] = -2.0;
    for (const int convert : {0, 1}) {
        for (unsigned int type = 1; type <= 8; ++type) {
            SCOPED_TRACE(testing::Message() << type << " " << convert);
            request.type = type;
            request.convert = convert;
            std::mt19937 random(1);
            LooseVolume data(3, 2, 2, type);
            const LooseVolume zeros(3, 2, 2, type);
            data.fill(random);
            EXPECT_EQ(request.blur(data.slices()), 1U);
            EXPECT_TRUE(data.equals(zeros));
        }
    }
}

TEST(GaussianBlurTest, ANegativeRadiusMakesZerosLineByLineToo) {
    // Rows that overlap are filtered line by line.
    for (const double sigma : {-0.7, -2.0, -2147483647.0}) {
        std::vector<double> rows(6, 1.0);
        double* table[] = {rows.data(), rows.data() + 1, rows.data() + 2};
        void* slices[] = {table};
        Request request;
        request.setSize(4, 3, 1);
        request.sigma[1] = sigma;
        request.radiusFactor[1] = 1.5;
        EXPECT_EQ(request.blur(reinterpret_cast<void***>(slices)), 1U);
        EXPECT_EQ(rows, std::vector<double>(6, 0.0)) << sigma;
    }
}

TEST(GaussianBlurTest, SigmaZeroLeavesEveryTypeAsItIs) {
    std::mt19937 random(8);
    for (unsigned int type = 1; type <= 10; ++type) {
        for (const int convert : {0, 1}) {
            SCOPED_TRACE(testing::Message() << type << " " << convert);
            Request request;
            request.setSize(5, 4, 3);
            request.type = type;
            request.convert = convert;
            for (double& sigma : request.sigma)
                sigma = 0.0;
            LooseVolume data(5, 4, 3, type);
            LooseVolume before(5, 4, 3, type);
            data.fill(random);
            for (std::size_t z = 0; type == 6 && z < 3; ++z) {
                for (std::size_t y = 0; y < 4; ++y) {
                    for (std::size_t x = 0; x < 5; ++x)
                        data.set(z, y, x, data.get<std::uint32_t>(z, y, x) & 0x7FFFFFFFU);
                }
            }
            before.copyBytes(data);
            EXPECT_EQ(request.blur(data.slices()), 1U);
            EXPECT_TRUE(data.equals(before));
        }
    }
}

TEST(GaussianBlurTest, AConstantVolumeStaysConstant) {
    for (const unsigned int type : {1U, 2U, 3U, 4U, 5U, 6U}) {
        for (const int convert : {0, 1}) {
            Request request;
            request.setSize(9, 8, 7);
            request.type = type;
            request.convert = convert;
            LooseVolume data(9, 8, 7, type);
            LooseVolume before(9, 8, 7, type);
            for (std::size_t z = 0; z < 7; ++z) {
                for (std::size_t y = 0; y < 8; ++y)
                    std::memset(data.slice(z).row(y), 0x55, data.slice(z).rowBytes());
            }
            before.copyBytes(data);
            EXPECT_EQ(request.blur(data.slices()), 1U);
            EXPECT_TRUE(data.equals(before)) << type;
        }
    }
}

TEST(GaussianBlurTest, ConversionRoundsOnce) {
    // Half of 1, rounded after each axis, stays 1; a quarter of 1, rounded once, becomes 0.
    for (const int convert : {0, 1}) {
        Request request;
        request.setSize(2, 2, 1);
        request.type = MAT_ARRAY_UINT8;
        request.convert = convert;
        for (double& sigma : request.sigma)
            sigma = 1000.0;
        LooseVolume data(2, 2, 1, MAT_ARRAY_UINT8);
        data.set<std::uint8_t>(0, 1, 1, 1);
        EXPECT_EQ(request.blur(data.slices()), 1U);
        EXPECT_EQ(data.get<std::uint8_t>(0, 1, 1), convert == 0 ? 1 : 0);
    }
}

TEST(GaussianBlurTest, NullArgumentsFail) {
    LooseVolume data(1, 1, 1, 2);
    Request request;
    EXPECT_EQ(request.blur(nullptr), 0U);
    unsigned int size[] = {1, 1, 1};
    double numbers[] = {1.0, 1.0, 1.0};
    EXPECT_EQ(
        matGaussianBlurFilter3v(data.slices(), nullptr, 2, 1, nullptr, numbers, numbers, 0, nullptr, nullptr),
        0U);
    EXPECT_EQ(
        matGaussianBlurFilter3v(data.slices(), size, 2, 1, nullptr, nullptr, numbers, 0, nullptr, nullptr),
        0U);
    EXPECT_EQ(
        matGaussianBlurFilter3v(data.slices(), size, 2, 1, nullptr, numbers, nullptr, 0, nullptr, nullptr),
        0U);
}

TEST(GaussianBlurTest, ADepthOfOneHasTwoPasses) {
    Listener listener;
    Request request;
    request.setSize(5, 3, 1);
    request.listener = &listener;
    LooseVolume data(5, 3, 1, MAT_ARRAY_DOUBLE);
    EXPECT_EQ(request.blur(data.slices()), 1U);
    EXPECT_EQ(listener.total, 8U);
    EXPECT_EQ(listener.counters, (std::vector<unsigned int>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(GaussianBlurTest, EveryLineIsAnnouncedOnce) {
    Listener listener;
    Request request;
    request.setSize(5, 3, 4);
    request.channels = 2;
    request.listener = &listener;
    LooseVolume data(10, 3, 4, MAT_ARRAY_DOUBLE);
    EXPECT_EQ(request.blur(data.slices()), 1U);
    EXPECT_EQ(listener.total, (5U + 3U) * 4U + 15U);
    EXPECT_EQ(listener.counters.size(), listener.total);
}

TEST(GaussianBlurTest, PixelsPassThroughAllLinesUnchanged) {
    std::mt19937 random(2);
    for (const unsigned int type : {0U, 9U, 10U, 11U}) {
        for (const int convert : {0, 1}) {
            Listener listener;
            Request request;
            request.setSize(4, 3, 2);
            request.type = type;
            request.convert = convert;
            request.listener = &listener;
            LooseVolume data(4, 3, 2, 10);
            LooseVolume before(4, 3, 2, 10);
            data.fill(random);
            before.copyBytes(data);
            EXPECT_EQ(request.blur(data.slices()), 1U) << type;
            EXPECT_EQ(listener.counters.size(), (4U + 3U) * 2U + 12U);
            EXPECT_TRUE(data.equals(before));
        }
    }
}

TEST(GaussianBlurTest, ARefusalAtTheFirstCallChangesNothing) {
    std::mt19937 random(2);
    for (const unsigned int type : {1U, 2U, 3U, 4U, 5U, 7U, 8U}) {
        for (const int convert : {0, 1}) {
            Listener listener;
            listener.stopAt = 1;
            Request request;
            request.setSize(6, 5, 4);
            request.type = type;
            request.convert = convert;
            request.listener = &listener;
            LooseVolume data(6, 5, 4, type);
            LooseVolume before(6, 5, 4, type);
            data.fill(random);
            before.copyBytes(data);
            EXPECT_EQ(request.blur(data.slices()), convert != 0 && type < 7 ? 1U : 2U);
            EXPECT_EQ(listener.counters.size(), 1U);
            EXPECT_TRUE(data.equals(before));
        }
    }
}

TEST(GaussianBlurTest, ACancelledRunStopsAtExactlyThatLine) {
    std::mt19937 random(6);
    for (const unsigned int height : {1U, 3U}) {
        Request request;
        // Wider than one slab of a pass along Z.
        request.setSize(70, height, 3);
        request.type = MAT_ARRAY_UINT16;
        request.channels = 2;
        LooseVolume source(140, height, 3, MAT_ARRAY_UINT16);
        source.fill(random);
        const unsigned int total = (70 + height) * 3 + 70 * height;
        for (unsigned int stopAt = 1; stopAt <= total + 1;
             stopAt += stopAt < total - 2 ? 1 + static_cast<unsigned int>(random() % 4) : 1) {
            SCOPED_TRACE(stopAt);
            Listener heard;
            Listener expectedHeard;
            heard.stopAt = expectedHeard.stopAt = stopAt;
            LooseVolume data(140, height, 3, MAT_ARRAY_UINT16);
            LooseVolume expected(140, height, 3, MAT_ARRAY_UINT16);
            data.copyBytes(source);
            expected.copyBytes(source);
            request.listener = &heard;
            EXPECT_EQ(request.blur(data.slices()), stopAt <= total ? 2U : 1U);
            request.listener = &expectedHeard;
            request.blurPlainly(expected.slices());
            EXPECT_EQ(heard.total, expectedHeard.total);
            ASSERT_GE(heard.counters.size(), expectedHeard.counters.size());
            EXPECT_EQ(heard.counters, expectedHeard.counters);
            ASSERT_TRUE(data.equals(expected));
        }
    }
}

TEST(GaussianBlurTest, ACancelledCopyIsStoredAndDone) {
    std::mt19937 random(9);
    Request request;
    request.setSize(6, 5, 4);
    request.type = MAT_ARRAY_INT32;
    request.convert = 1;
    LooseVolume source(6, 5, 4, MAT_ARRAY_INT32);
    source.fill(random);
    for (const unsigned int stopAt : {2U, 31U, 40U, 70U}) {
        Listener heard;
        Listener expectedHeard;
        heard.stopAt = expectedHeard.stopAt = stopAt;
        LooseVolume data(6, 5, 4, MAT_ARRAY_INT32);
        LooseVolume expected(6, 5, 4, MAT_ARRAY_INT32);
        data.copyBytes(source);
        expected.copyBytes(source);
        request.listener = &heard;
        EXPECT_EQ(request.blur(data.slices()), 1U);
        request.listener = &expectedHeard;
        EXPECT_EQ(request.blurPlainly(expected.slices()), 1U);
        EXPECT_EQ(heard.counters, expectedHeard.counters);
        EXPECT_TRUE(data.equals(expected)) << stopAt;
    }
}

TEST(GaussianBlurTest, OnlyTheLineBuffersAndTheCopyMayFail) {
    std::mt19937 random(12);
    for (const int convert : {0, 1}) {
        Request request;
        request.setSize(6, 5, 2);
        request.type = MAT_ARRAY_UINT8;
        request.convert = convert;
        LooseVolume source(6, 5, 2, MAT_ARRAY_UINT8);
        LooseVolume expected(6, 5, 2, MAT_ARRAY_UINT8);
        source.fill(random);
        expected.copyBytes(source);
        EXPECT_EQ(request.blurPlainly(expected.slices()), 1U);
        int failures = 0;
        int successes = 0;
        for (std::size_t number = 1;; ++number) {
            SCOPED_TRACE(number);
            LooseVolume data(6, 5, 2, MAT_ARRAY_UINT8);
            data.copyBytes(source);
            const std::ptrdiff_t live = velquad::test::liveAllocations();
            velquad::test::failAllocation(number);
            const DWORD result = request.blur(data.slices());
            const bool hasFailed = velquad::test::hasAllocationFailed();
            velquad::test::failAllocation(0);
            EXPECT_EQ(velquad::test::liveAllocations(), live);
            // Without the memory for whole rows, the lines are filtered one by one with the same result.
            EXPECT_TRUE(data.equals(result == 1 ? expected : source));
            if (!hasFailed) {
                EXPECT_EQ(result, 1U);
                break;
            }
            (result == 0 ? failures : successes) += 1;
        }
        // The buffers of lines; with conversion also the copy, with two slices of two allocations each or
        // one.
        EXPECT_GE(failures, convert == 0 ? 1 : 4);
        EXPECT_GE(successes, 3);
    }
}

TEST(GaussianBlurTest, AKernelThatIsLackingFails) {
    // Rows that overlap are filtered line by line, and each pass needs its kernel.
    std::vector<double> rows(32, 1.0);
    double* table[] = {rows.data(), rows.data() + 1, rows.data() + 2};
    void* slices[] = {table};
    Request request;
    request.setSize(4, 3, 1);
    int failures = 0;
    for (std::size_t number = 1;; ++number) {
        velquad::test::failAllocation(number);
        const DWORD result = request.blur(reinterpret_cast<void***>(slices));
        const bool hasFailed = velquad::test::hasAllocationFailed();
        velquad::test::failAllocation(0);
        EXPECT_EQ(result, hasFailed ? 0U : 1U);
        if (!hasFailed) break;
        ++failures;
    }
    // The buffers of lines, and a kernel for each of two passes.
    EXPECT_EQ(failures, 3);
}

TEST(GaussianFilterTest, HasTheDefaultsAndClearsThem) {
    CGaussianBlurFilter3D filter;
    EXPECT_EQ(filter.m_kernel.windowLow, 0x7FFFFFFF);
    EXPECT_EQ(filter.m_kernel.windowHigh, 0x7FFFFFFF);
    EXPECT_EQ(filter.m_kernel.radius, 0x7FFFFFFF);
    EXPECT_EQ(filter.m_kernel.sigma, velquad::kNoValue);
    EXPECT_EQ(filter.m_kernel.weights, nullptr);
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(filter.m_sigma[axis], 2.0);
        EXPECT_EQ(filter.m_radiusFactor[axis], 1.5);
    }
    LooseVolume data(4, 3, 2, MAT_ARRAY_DOUBLE);
    const unsigned int size[] = {4, 3, 2};
    const unsigned int strides[] = {8, 0, 5};
    filter.m_callback = &Listener::hear;
    EXPECT_EQ(filter.Attach(data.slices(), size, MAT_ARRAY_DOUBLE, 1, strides), 1);
    EXPECT_EQ(filter.m_inLine[1], filter.m_inLine[0] + 4);
    EXPECT_EQ(filter.m_inLine[2], filter.m_inLine[0] + 7);
    EXPECT_EQ(filter.m_outLine[0], filter.m_inLine[0] + 9);
    EXPECT_EQ(filter.m_outLine[2], filter.m_inLine[0] + 16);
    EXPECT_EQ(filter.m_strideZ, 5U);
    EXPECT_EQ(filter.Detach(), 1);
    EXPECT_EQ(filter.m_inLine[0], nullptr);
    EXPECT_EQ(filter.m_callback, nullptr);
    EXPECT_EQ(filter.m_width + filter.m_height + filter.m_depth + filter.m_strideX + filter.m_strideZ, 0U);
}

TEST(GaussianFilterTest, FormsTheWindowOfEverySampleAnew) {
    CGaussianBlurFilter3D filter;
    LooseVolume data(20, 1, 1, MAT_ARRAY_DOUBLE);
    const unsigned int size[] = {20, 1, 1};
    ASSERT_EQ(filter.Attach(data.slices(), size, MAT_ARRAY_DOUBLE, 1, nullptr), 1);
    ASSERT_EQ(filter.LoadLine(0, 0, 0, 0, 0), 1);
    EXPECT_EQ(filter.FilterLine(0, 0, 0, 0, 0), 1);
    // The marks of a known window are never set.
    EXPECT_EQ(filter.m_kernel.windowLow, 0x7FFFFFFF);
    EXPECT_EQ(filter.m_kernel.windowHigh, 0x7FFFFFFF);
    EXPECT_EQ(filter.m_kernel.radius, 3);
    EXPECT_EQ(filter.m_kernel.sigma, 2.0);
    ASSERT_NE(filter.m_kernel.weights, nullptr);
    EXPECT_EQ(filter.m_kernel.window, filter.m_kernel.weights + 7);
    for (int k = -3; k <= 3; ++k)
        EXPECT_EQ(filter.m_kernel.weights[k + 3], std::exp(-(k * k) / 8.0));
    EXPECT_EQ(filter.FilterLine(3, 0, 0, 0, 0), 0);
    EXPECT_EQ(filter.FilterLine(-1, 0, 0, 0, 0), 0);
}

TEST(GaussianFilterTest, KeepsAKernelOfNearlyTheSameSigma) {
    CGaussianBlurFilter3D filter;
    LooseVolume data(20, 2, 1, MAT_ARRAY_DOUBLE);
    const unsigned int size[] = {20, 2, 1};
    ASSERT_EQ(filter.Attach(data.slices(), size, MAT_ARRAY_DOUBLE, 1, nullptr), 1);
    EXPECT_EQ(filter.FilterLine(0, 0, 0, 0, 0), 1);
    filter.m_sigma[0] = 2.0 + 0.9e-5;
    EXPECT_EQ(filter.FilterLine(0, 0, 1, 0, 0), 1);
    EXPECT_EQ(filter.m_kernel.sigma, 2.0);
    filter.m_sigma[0] = 2.0 + 1.1e-5;
    EXPECT_EQ(filter.FilterLine(0, 0, 1, 0, 0), 1);
    EXPECT_EQ(filter.m_kernel.sigma, 2.0 + 1.1e-5);
    filter.m_sigma[0] = 2.0;
    // The first line of a pass drops the kernel.
    EXPECT_EQ(filter.FilterLine(0, 0, 0, 0, 0), 1);
    EXPECT_EQ(filter.m_kernel.sigma, 2.0);
}

TEST(GaussianFilterTest, RefusesLinesOfOtherTypes) {
    CGaussianBlurFilter3D filter;
    LooseVolume data(4, 1, 1, 10);
    const unsigned int size[] = {4, 1, 1};
    for (const unsigned int type : {0U, 9U, 10U, 11U}) {
        ASSERT_EQ(filter.Attach(data.slices(), size, type, 1, nullptr), 1);
        EXPECT_EQ(filter.LoadLine(0, 0, 0, 0, 0), 0) << type;
        EXPECT_EQ(filter.StoreLine(0, 0, 0, 0, 0), 0) << type;
        filter.Detach();
    }
}

/// A volume in one block, with gaps between rows and slices, as steps describe it.
struct Block {
    std::vector<unsigned char> bytes;
    std::vector<unsigned char*> rows;
    std::vector<unsigned char**> slices;

    Block(const Request& request, std::size_t stepY, std::size_t stepZ) {
        bytes.resize(stepZ * request.size[2] + stepY * request.size[1] + 64 + 8 * request.rowElements());
        rows.resize(std::size_t{request.size[1]} * request.size[2] + 1);
        for (std::size_t z = 0; z < request.size[2]; ++z) {
            for (std::size_t y = 0; y < request.size[1]; ++y)
                rows[z * request.size[1] + y] = bytes.data() + 1 + z * stepZ + y * stepY;
            slices.push_back(rows.data() + z * request.size[1]);
        }
    }

    void*** volume() { return reinterpret_cast<void***>(slices.data()); }
};

TEST(GaussianBlurTest, GivenStepsReplaceTheTables) {
    std::mt19937 random(31);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        Request request;
        request.setSize(1 + static_cast<unsigned int>(random() % 9),
                        1 + static_cast<unsigned int>(random() % 5),
                        1 + static_cast<unsigned int>(random() % 4));
        request.type = 1 + static_cast<unsigned int>(random() % 6);
        request.channels = 1 + static_cast<unsigned int>(random() % 2);
        const auto bytes = static_cast<unsigned int>(volume::bytesOf(request.type));
        const unsigned int rowBytes = request.size[0] * request.channels * bytes;
        // The steps may also disagree with the tables, overlap, or be missing.
        const unsigned int stepY = rowBytes + static_cast<unsigned int>(random() % 5);
        const unsigned int stepZ = stepY * request.size[1] + static_cast<unsigned int>(random() % 7);
        request.hasStrides = true;
        request.strides[0] = random() % 4 == 0 ? 0 : request.channels * bytes;
        request.strides[1] = random() % 4 == 0 ? kNoStep : stepY;
        request.strides[2] = random() % 4 == 0 ? kNoStep : stepZ;
        if (random() % 8 == 0) request.strides[0] = bytes;
        if (random() % 8 == 0) request.strides[1] = rowBytes / 2;
        if (random() % 8 == 0) request.strides[2] = stepY;
        Block data(request, stepY, stepZ);
        Block expected(request, stepY, stepZ);
        for (unsigned char& byte : data.bytes)
            byte = static_cast<unsigned char>(random());
        expected.bytes = data.bytes;
        for (std::size_t i = 0; i < expected.rows.size() - 1; ++i)
            expected.rows[i] = expected.bytes.data() + (data.rows[i] - data.bytes.data());
        EXPECT_EQ(request.blur(data.volume()), 1U);
        EXPECT_EQ(request.blurPlainly(expected.volume()), 1U);
        ASSERT_EQ(data.bytes, expected.bytes);
    }
}

TEST(GaussianBlurTest, RowsThatShareMemoryAreFilteredLineByLine) {
    std::mt19937 random(37);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        Request request;
        request.setSize(7, 3, 4);
        request.type = MAT_ARRAY_UINT16;
        Block data(request, 14, 14 * 3);
        Block expected(request, 14, 14 * 3);
        for (unsigned char& byte : data.bytes)
            byte = static_cast<unsigned char>(random());
        expected.bytes = data.bytes;
        // Some rows lie on or over other ones, or anywhere.
        for (std::size_t i = 0; i + 1 < data.rows.size(); ++i) {
            std::size_t offset = 1 + 14 * i;
            if (random() % 4 == 0) offset = 1 + 14 * (random() % 12);
            if (round % 2 == 0 && random() % 8 == 0) offset = random() % 150;
            data.rows[i] = data.bytes.data() + offset;
            expected.rows[i] = expected.bytes.data() + offset;
        }
        EXPECT_EQ(request.blur(data.volume()), 1U);
        EXPECT_EQ(request.blurPlainly(expected.volume()), 1U);
        ASSERT_EQ(data.bytes, expected.bytes);
    }
}

class GaussianBlurLevels : public testing::TestWithParam<unsigned int> {
  protected:
    void TearDown() override { velquad::frame::selectKernelLevel(velquad::frame::kernelLevelCount() - 1); }
};

TEST_P(GaussianBlurLevels, EqualTheLoops) {
    const unsigned int type = GetParam();
    std::mt19937 random(300 + type);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(testing::Message() << "round " << round);
        const auto size = [&random](unsigned int largest) {
            return static_cast<unsigned int>(random() % (largest + 1));
        };
        Request request;
        request.setSize(size(round % 5 == 0 ? 600 : 20), size(7), size(6));
        request.type = type;
        request.channels = random() % 3 == 0 ? size(3) : 1;
        request.convert = static_cast<int>(random() % 2);
        for (int axis = 0; axis < 3; ++axis) {
            constexpr double kSigmas[] = {0.0, 0.3, 0.7, 1.0, 2.0, 3.7, 40.0, 100.0, 1e-200, 1e12, -2.0};
            request.sigma[axis] = kSigmas[random() % (random() % 4 == 0 ? 11 : 7)];
            request.radiusFactor[axis] = std::uniform_real_distribution<double>(0.5, 3.0)(random);
        }
        Listener heard;
        Listener expectedHeard;
        const bool hasCallback = random() % 2 == 0;
        heard.stopAt = expectedHeard.stopAt = random() % 3 == 0 ? size(300) : 0;
        LooseVolume source(request.rowElements(), request.size[1], request.size[2], type);
        LooseVolume expected(request.rowElements(), request.size[1], request.size[2], type);
        source.fill(random, round % 4 == 0);
        expected.copyBytes(source);
        request.listener = hasCallback ? &expectedHeard : nullptr;
        const DWORD expectedResult = request.blurPlainly(expected.slices());
        for (std::size_t level = 0; level < velquad::frame::kernelLevelCount(); ++level) {
            SCOPED_TRACE(testing::Message() << "level " << level);
            velquad::frame::selectKernelLevel(level);
            heard.counters.clear();
            request.listener = hasCallback ? &heard : nullptr;
            LooseVolume data(request.rowElements(), request.size[1], request.size[2], type);
            data.copyBytes(source);
            ASSERT_EQ(request.blur(data.slices()), expectedResult);
            ASSERT_EQ(heard.counters, expectedHeard.counters);
            ASSERT_TRUE(data.equals(expected));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, GaussianBlurLevels, testing::Range(1U, 11U));

}  // namespace
