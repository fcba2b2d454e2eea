#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <random>
#include <thread>
#include <vector>

#include "frame/kernels.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/block_failure.h"
#include "tests/support/fft_reference.h"
#include "velquad/platform.h"
#include "velquad/signal.h"

using namespace velquad;
using namespace velquad::test;

namespace {

constexpr double kUntouched = 77.0;

/// A narrow peak at the start and a decaying tail.
Doubles makeCurve(std::mt19937& random, std::size_t count, std::size_t end) {
    std::uniform_real_distribution<double> noise(0.9, 1.1);
    Doubles data(count);
    for (std::size_t i = 0; i < count; ++i) {
        data[i] = i < end ? 5000.0 * noise(random)
                          : 1000.0 * noise(random) * std::exp(-static_cast<double>(i) / 20.0) + 0.01;
    }
    return data;
}

Doubles deconvolve(const Doubles& data, unsigned int start, unsigned int end, double scale,
                   unsigned short order, unsigned short method) {
    Doubles result(data.size() - start + 1, kUntouched);
    EXPECT_EQ(matDeconvolution(data.data(), static_cast<unsigned int>(data.size()), result.data(), start, end,
                               scale, order, method),
              0);
    EXPECT_EQ(result.back(), kUntouched);
    result.pop_back();
    return result;
}

void expectSame(const Doubles& actual, const Doubles& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        const bool isSame =
            actual[i] == expected[i] || (actual[i] != actual[i] && expected[i] != expected[i]);
        ASSERT_TRUE(isSame) << i << ": " << actual[i] << " not " << expected[i];
    }
}

TEST(Deconvolution, OtherMethodsAreRefused) {
    const Doubles data(32, 1.0);
    Doubles result(32, kUntouched);
    for (const unsigned short method : std::initializer_list<unsigned short>{0, 3, 65535})
        EXPECT_EQ(matDeconvolution(data.data(), 32, result.data(), 0, 2, 1.0, 4, method), 3);
    EXPECT_EQ(result, Doubles(32, kUntouched));
}

TEST(Deconvolution, TheLogarithmNeedsSixteenSamples) {
    const Doubles data(16, 1.0);
    Doubles result(16, kUntouched);
    EXPECT_EQ(matDeconvolution(data.data(), 15, result.data(), 0, 2, 1.0, 4, 1), 3);
    EXPECT_EQ(matDeconvolution(data.data(), 16, result.data(), 6, 7, 1.0, 4, 1), 3);
    EXPECT_EQ(result[0], kUntouched);
    EXPECT_EQ(matDeconvolution(data.data(), 16, result.data(), 5, 7, 1.0, 4, 1), 0);
    // The series has no such limit.
    EXPECT_EQ(matDeconvolution(data.data(), 15, result.data(), 0, 2, 1.0, 4, 2), 0);
    EXPECT_EQ(matDeconvolution(data.data(), 2, result.data(), 0, 1, 1.0, 1, 2), 0);
}

TEST(Deconvolution, APeakOutsideTheCurveIsRefused) {
    const Doubles data(32, 1.0);
    Doubles result(32, kUntouched);
    for (const unsigned short method : std::initializer_list<unsigned short>{1, 2}) {
        EXPECT_EQ(matDeconvolution(data.data(), 32, result.data(), 5, 4, 1.0, 4, method), 3);
        EXPECT_EQ(matDeconvolution(data.data(), 32, result.data(), 0, 32, 1.0, 4, method), 3);
        EXPECT_EQ(matDeconvolution(data.data(), 32, result.data(), 40, 50, 1.0, 4, method), 3);
        EXPECT_EQ(matDeconvolution(data.data(), 0, result.data(), 0, 0, 1.0, 4, method), 3);
        EXPECT_EQ(matDeconvolution(nullptr, 32, result.data(), 0, 2, 1.0, 4, method), 3);
        EXPECT_EQ(matDeconvolution(data.data(), 32, nullptr, 0, 2, 1.0, 4, method), 3);
    }
    EXPECT_EQ(result, Doubles(32, kUntouched));
}

TEST(DeconvolutionSeries, WithoutTermsTheCurveComesBackWithoutItsPeak) {
    const Doubles data = {8, 4, 2, 1, 1};
    for (const unsigned short order : std::initializer_list<unsigned short>{0, 1}) {
        // The taper of one sample is 0 and then the total; everything is divided by the sum, 16, and multiplied again.
        EXPECT_EQ(deconvolve(data, 0, 1, 1.0, order, 2), (Doubles{0, 4, 2, 1, 1}));
    }
}

TEST(DeconvolutionSeries, TwoTermsByHand) {
    // first = (8 - 16, 4, 2, 1, 1) / 16 = (-0.5, 0.25, 0.125, 0.0625, 0.0625). Its square, cut: 0.25, -0.25,
    // -0.125 + 0.0625 = -0.0625, -0.0625 + 0.0625 = 0, -0.0625 + 0.03125 + 0.015625 = -0.015625. Half of it is taken
    // away, and all is multiplied by 16.
    const Doubles result = deconvolve({8, 4, 2, 1, 1}, 0, 1, 1.0, 2, 2);
    EXPECT_EQ(result, (Doubles{0, 6, 2.5, 1, 1.125}));
}

TEST(DeconvolutionSeries, WithoutATaperTheFirstSampleStays) {
    // first = (4, 2, 2) / 8 less 1 at the start: (-0.5, 0.25, 0.25); square: 0.25, -0.25, -0.25 + 0.0625.
    EXPECT_EQ(deconvolve({4, 2, 2}, 0, 0, 1.0, 2, 2), (Doubles{0, 3, 2.75}));
}

TEST(DeconvolutionSeries, TheSumIsThatOfTheRawCurve) {
    // start 2: the working curve is (total = 4, 2, 1); the sum is that of the first three samples, 3 + 1 + 0 = 4.
    // first = (4 / 4 - 1, 0.5, 0.25).
    EXPECT_EQ(deconvolve({3, 1, 0, 2, 1}, 2, 3, 1.0, 1, 2), (Doubles{0, 2, 1}));
}

TEST(DeconvolutionSeries, TheScaleIsNotUsed) {
    std::mt19937 random(831);
    const Doubles data = makeCurve(random, 50, 3);
    EXPECT_EQ(deconvolve(data, 1, 3, 1.0, 5, 2), deconvolve(data, 1, 3, 9.0, 5, 2));
}

TEST(DeconvolutionSeries, EveryLevelGivesTheBitsOfThePlainSums) {
    std::mt19937 random(832);
    const std::size_t usual = frame::kernelLevel();
    for (std::size_t level = 0; level < frame::kernelLevelCount(); ++level) {
        frame::selectKernelLevel(level);
        for (int round = 0; round < 60; ++round) {
            SCOPED_TRACE(testing::Message() << frame::kernelLevelName(level) << " " << round);
            const std::size_t count = 4 + random() % 200;
            const std::size_t end = random() % (count - 1);
            const std::size_t start = end == 0 ? 0 : random() % (end + 1);
            const auto order = static_cast<unsigned short>(random() % 7);
            const Doubles data = makeCurve(random, count, end);
            expectSame(deconvolve(data, static_cast<unsigned int>(start), static_cast<unsigned int>(end), 1.0,
                                  order, 2),
                       seriesReference(data, start, end, order));
        }
    }
    frame::selectKernelLevel(usual);
}

TEST(DeconvolutionSeries, UndoesSelfConvolution) {
    // A known distribution q and what is measured of it: e^(q - |q|) as a series of convolutions, so that the part
    // without events is the peak at 0.
    const std::size_t n = 64;
    Doubles q(n);
    for (std::size_t i = 1; i < n; ++i)
        q[i] = 0.02 * std::exp(-static_cast<double>(i) / 8.0);
    Doubles measured(n), term(n);
    term[0] = measured[0] = 1.0;
    for (int k = 1; k < 12; ++k) {
        Doubles next(n);
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j <= i; ++j)
                next[i] += term[i - j] * q[j] / k;
        }
        term = next;
        for (std::size_t i = 0; i < n; ++i)
            measured[i] += term[i];
    }
    double sum = 0.0;
    for (const double value : measured)
        sum += value;
    // The logarithm of the normalised curve is q but for element 0, in units of the sum.
    const Doubles result = deconvolve(measured, 0, 1, 1.0, 60, 2);
    for (std::size_t i = 1; i < n; ++i)
        EXPECT_NEAR(result[i] / sum, q[i], 1e-9) << i;
}

void postKey(DWORD thread, unsigned int message, WPARAM key) {
    std::thread([=] {
        while (PostThreadMessageW(thread, message, key, 0) == 0)
            std::this_thread::yield();
    }).join();
}

class DeconvolutionBreak : public testing::Test {
  protected:
    void SetUp() override { drain(); }
    void TearDown() override { drain(); }
    static void drain() {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        }
    }
};

TEST_F(DeconvolutionBreak, EscapeEndsTheSeriesWithWhatWasSummed) {
    std::mt19937 random(833);
    const Doubles data = makeCurve(random, 40, 2);
    postKey(GetCurrentThreadId(), WM_CHAR, 27);
    EXPECT_EQ(deconvolve(data, 0, 2, 1.0, 9, 2), seriesReference(data, 0, 2, 1));
    // The key is used up.
    EXPECT_EQ(deconvolve(data, 0, 2, 1.0, 9, 2), seriesReference(data, 0, 2, 9));
}

TEST_F(DeconvolutionBreak, OtherKeysAreTakenOneATerm) {
    std::mt19937 random(834);
    const Doubles data = makeCurve(random, 40, 2);
    postKey(GetCurrentThreadId(), WM_CHAR, 'a');
    postKey(GetCurrentThreadId(), WM_KEYUP, 'A');
    postKey(GetCurrentThreadId(), WM_CHAR, 27);
    EXPECT_EQ(deconvolve(data, 0, 2, 1.0, 9, 2), seriesReference(data, 0, 2, 3));
}

TEST_F(DeconvolutionBreak, MessagesThatAreNoKeysStay) {
    std::mt19937 random(835);
    const Doubles data = makeCurve(random, 40, 2);
    postKey(GetCurrentThreadId(), WM_USER, 27);
    EXPECT_EQ(deconvolve(data, 0, 2, 1.0, 5, 2), seriesReference(data, 0, 2, 5));
    MSG message;
    ASSERT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), 0);
    EXPECT_EQ(message.message, static_cast<UINT>(WM_USER));
}

TEST_F(DeconvolutionBreak, TheLogarithmDoesNotLookForKeys) {
    std::mt19937 random(836);
    const Doubles data = makeCurve(random, 40, 2);
    postKey(GetCurrentThreadId(), WM_CHAR, 27);
    expectSame(deconvolve(data, 0, 2, 1.0, 9, 1), logarithmReference(data, 0, 2, 1.0));
    MSG message;
    EXPECT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), 0);
}

TEST(DeconvolutionLogarithm, GivesTheBitsOfThePlainTransform) {
    std::mt19937 random(837);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const std::size_t count = 16 + random() % 120;
        const std::size_t end = random() % (count - 11);
        const std::size_t start = end == 0 ? 0 : random() % (end + 1);
        const Doubles data = makeCurve(random, count, end);
        const double scale = 0.5 + static_cast<double>(random() % 4);
        expectSame(
            deconvolve(data, static_cast<unsigned int>(start), static_cast<unsigned int>(end), scale, 0, 1),
            logarithmReference(data, start, end, scale));
    }
}

TEST(DeconvolutionLogarithm, FollowsThePhaseAcrossItsJumps) {
    // A peak that is small beside the rest does not keep the spectrum in the right half of the plane.
    std::mt19937 random(842);
    int upJumps = 0;
    int downJumps = 0;
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        const std::size_t count = 24 + random() % 100;
        Doubles data = makeCurve(random, count, 2);
        data[0] = 30.0;
        data[1] = 50.0 + static_cast<double>(random() % 900);
        // Noise gives steps of every size, also next to the quarter of a turn that a jump begins at.
        for (std::size_t i = 2; round % 2 == 0 && i < count; ++i)
            data[i] = 1.0 + static_cast<double>(random() % 1000);
        expectSame(deconvolve(data, 0, 2, 1.0, 0, 1),
                   logarithmReference(data, 0, 2, 1.0, &upJumps, &downJumps));
    }
    EXPECT_GT(upJumps, 20);
    EXPECT_GT(downJumps, 20);
}

TEST(DeconvolutionLogarithm, APowerOfTwoIsItsOwnSize) {
    std::mt19937 random(838);
    const Doubles data = makeCurve(random, 64, 4);
    expectSame(deconvolve(data, 0, 4, 1.0, 0, 1), logarithmReference(data, 0, 4, 1.0));
    expectSame(deconvolve(data, 3, 4, 1.0, 0, 1), logarithmReference(data, 3, 4, 1.0));
}

TEST(DeconvolutionLogarithm, WithoutATaperTheAreaStillTakesTheFirstPlace) {
    std::mt19937 random(841);
    Doubles data = makeCurve(random, 100, 4);
    const Doubles result = deconvolve(data, 4, 4, 1.0, 0, 1);
    expectSame(result, logarithmReference(data, 4, 4, 1.0));
    // So the sample at the start does not count.
    data[4] = 1e6;
    expectSame(deconvolve(data, 4, 4, 1.0, 0, 1), result);
}

TEST(DeconvolutionLogarithm, ResultsAreMagnitudes) {
    std::mt19937 random(839);
    for (const double value : deconvolve(makeCurve(random, 100, 4), 2, 4, 1.0, 0, 1))
        EXPECT_GE(value, 0.0);
}

TEST(DeconvolutionLogarithm, AnEmptyPeakGivesNoNumbers) {
    Doubles data(32, 1.0);
    data[0] = 0.0;
    // No peak: the total is 0.
    const Doubles result = deconvolve(data, 0, 1, 1.0, 0, 1);
    EXPECT_NE(result[0], result[0]);
}

TEST(Deconvolution, LackOfMemoryAndOfALockHaveTheirOwnStatus) {
    std::mt19937 random(840);
    const Doubles data = makeCurve(random, 40, 2);
    Doubles result(40, kUntouched);
    for (const unsigned short method : std::initializer_list<unsigned short>{1, 2}) {
        forEachFailingAllocation([&] {
            result.assign(40, kUntouched);
            const unsigned short status =
                matDeconvolution(data.data(), 40, result.data(), 0, 2, 1.0, 3, method);
            if (status == 1) {
                EXPECT_EQ(result[0], kUntouched);
            }
            return status == 1;
        });
        result.assign(40, kUntouched);
        failNextBlockCall(BlockCall::kLock);
        EXPECT_EQ(matDeconvolution(data.data(), 40, result.data(), 0, 2, 1.0, 3, method), 2);
        EXPECT_EQ(result[0], kUntouched);
    }
}

}  // namespace
