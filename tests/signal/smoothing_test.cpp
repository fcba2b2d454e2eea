#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "frame/kernels.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/block_failure.h"
#include "tests/support/smoothing_reference.h"
#include "velquad/signal.h"

using namespace velquad;
using namespace velquad::test;

namespace {

constexpr double kUntouched = 77.0;

struct Table {
    unsigned int derivative;
    unsigned int width;
    double norm;
    std::vector<int> coefficients;
};

/// The convolutions, as they are published.
const std::vector<Table>& tables() {
    static const std::vector<Table> all = {
        {0, 1, 35, {-3, 12, 17, 12, -3}},
        {0, 2, 21, {-2, 3, 6, 7, 6, 3, -2}},
        {0, 3, 231, {-21, 14, 39, 54, 59, 54, 39, 14, -21}},
        {0, 4, 429, {-36, 9, 44, 69, 84, 89, 84, 69, 44, 9, -36}},
        {0, 5, 143, {-11, 0, 9, 16, 21, 24, 25, 24, 21, 16, 9, 0, -11}},
        {1, 1, 10, {-2, -1, 0, 1, 2}},
        {1, 2, 28, {-3, -2, -1, 0, 1, 2, 3}},
        {1, 3, 60, {-4, -3, -2, -1, 0, 1, 2, 3, 4}},
        {1, 4, 110, {-5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5}},
        {1, 5, 182, {-6, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6}},
        {2, 1, 7, {2, -1, -2, -1, 2}},
        {2, 2, 42, {5, 0, -3, -4, -3, 0, 5}},
        {2, 3, 462, {28, 7, -8, -17, -20, -17, -8, 7, 28}},
        {2, 4, 429, {15, 6, -1, -6, -9, -10, -9, -6, -1, 6, 15}},
        {2, 5, 1001, {22, 11, 2, -5, -10, -13, -14, -13, -10, -5, 2, 11, 22}}};
    return all;
}

Curve savitzkyGolay(const Curve& in, unsigned int width, unsigned int derivative, int isAbsolute = 0) {
    Curve out(in.size(), kUntouched);
    EXPECT_EQ(matSavitzkyGolay(in.data(), static_cast<unsigned int>(in.size()), out.data(), width, derivative,
                               isAbsolute),
              0U);
    return out;
}

Curve randomCurve(std::mt19937& random, std::size_t count) {
    std::uniform_real_distribution<double> value(-100, 100);
    Curve curve(count);
    for (double& v : curve)
        v = value(random);
    return curve;
}

/// Runs `check` with the inner loops of every instruction set that the machine has.
template <class Check>
void onEveryLevel(Check check) {
    const std::size_t usual = frame::kernelLevel();
    for (std::size_t level = 0; level < frame::kernelLevelCount(); ++level) {
        SCOPED_TRACE(frame::kernelLevelName(level));
        frame::selectKernelLevel(level);
        check();
    }
    frame::selectKernelLevel(usual);
}

TEST(SavitzkyGolay, RefusesWhatItHasNoTableFor) {
    const Curve in(20, 1.0);
    Curve out(20, kUntouched);
    EXPECT_EQ(matSavitzkyGolay(in.data(), 0, out.data(), 1, 0, 0), 3U);
    EXPECT_EQ(matSavitzkyGolay(in.data(), 20, out.data(), 0, 0, 0), 3U);
    EXPECT_EQ(matSavitzkyGolay(in.data(), 20, out.data(), 6, 0, 0), 3U);
    EXPECT_EQ(matSavitzkyGolay(in.data(), 20, out.data(), 1, 3, 0), 3U);
    EXPECT_EQ(matSavitzkyGolay(nullptr, 20, out.data(), 1, 0, 0), 3U);
    EXPECT_EQ(matSavitzkyGolay(in.data(), 20, nullptr, 1, 0, 0), 3U);
    EXPECT_EQ(out, Curve(20, kUntouched));
}

TEST(SavitzkyGolay, ShortCurvesAreRefusedOrZero) {
    for (unsigned int width = 1; width <= 5; ++width) {
        const Curve in(width + 2, 1.0);
        Curve out(width + 2, kUntouched);
        EXPECT_EQ(matSavitzkyGolay(in.data(), width + 1, out.data(), width, 0, 0), 3U);
        EXPECT_EQ(out[0], kUntouched);
        EXPECT_EQ(matSavitzkyGolay(in.data(), width + 2, out.data(), width, 0, 0), 0U);
        EXPECT_EQ(out, Curve(width + 2, 0.0));
    }
}

TEST(SavitzkyGolay, ASpikeShowsTheTable) {
    for (const Table& table : tables()) {
        SCOPED_TRACE(testing::Message() << table.derivative << " " << table.width);
        const std::size_t taps = table.coefficients.size();
        Curve in(3 * taps, 0.0);
        in[taps + taps / 2] = 1.0;
        const Curve out = savitzkyGolay(in, table.width, table.derivative);
        for (std::size_t j = 0; j < taps; ++j)
            EXPECT_EQ(out[taps + j], table.coefficients[taps - 1 - j] / table.norm);
        EXPECT_EQ(out[taps - 1], 0.0);
        EXPECT_EQ(out[2 * taps], 0.0);
    }
}

TEST(SavitzkyGolay, ARampKeepsItsSlopeEverywhere) {
    Curve in(30);
    for (std::size_t i = 0; i < in.size(); ++i)
        in[i] = 3.0 * static_cast<double>(i) - 7.0;
    for (unsigned int width = 1; width <= 5; ++width) {
        EXPECT_EQ(savitzkyGolay(in, width, 1), Curve(30, 3.0));
        EXPECT_EQ(savitzkyGolay(in, width, 2), Curve(30, 0.0));
    }
}

TEST(SavitzkyGolay, AParabolaHasItsSecondDerivative) {
    Curve in(20);
    for (std::size_t i = 0; i < in.size(); ++i)
        in[i] = static_cast<double>(i * i);
    for (unsigned int width = 1; width <= 5; ++width)
        EXPECT_EQ(savitzkyGolay(in, width, 2), Curve(20, 2.0));
}

TEST(SavitzkyGolay, EndsRepeatTheNearestWholeWindow) {
    // Windows of five: the values 2 and 3 have one.
    const Curve out = savitzkyGolay({0, 0, 35, 0, 0, 70}, 1, 0);
    EXPECT_EQ(out, (Curve{17, 17, 17, 6, 6, 6}));
}

TEST(SavitzkyGolay, AbsoluteValuesComeLast) {
    const Curve falling = {9, 8, 7, 6, 5, 4};
    EXPECT_EQ(savitzkyGolay(falling, 1, 1), Curve(6, -1.0));
    EXPECT_EQ(savitzkyGolay(falling, 1, 1, 1), Curve(6, 1.0));
    EXPECT_EQ(savitzkyGolay(falling, 1, 1, -5), Curve(6, 1.0));
}

TEST(SavitzkyGolay, EveryLevelGivesTheBitsOfThePlainSum) {
    std::mt19937 random(821);
    onEveryLevel([&] {
        for (int round = 0; round < 40; ++round) {
            for (const Table& table : tables()) {
                SCOPED_TRACE(testing::Message() << round << ": " << table.derivative << " " << table.width);
                const Curve in = randomCurve(random, table.width + 2 + random() % 60);
                ASSERT_EQ(savitzkyGolay(in, table.width, table.derivative),
                          savitzkyGolayReference(in, table.coefficients, table.norm));
            }
        }
    });
}

Curve meanValue(const Curve& in, int window) {
    Curve out(in.size(), kUntouched);
    EXPECT_EQ(matMeanValue(in.data(), static_cast<int>(in.size()), out.data(), window), 0U);
    return out;
}

TEST(MeanValue, RefusesCountsOfZero) {
    double value = 1.0;
    double out = kUntouched;
    EXPECT_EQ(matMeanValue(&value, 0, &out, 3), 3U);
    EXPECT_EQ(matMeanValue(&value, 1, &out, 0), 3U);
    EXPECT_EQ(matMeanValue(nullptr, 1, &out, 1), 3U);
    EXPECT_EQ(matMeanValue(&value, 1, nullptr, 1), 3U);
    EXPECT_EQ(matMeanValue(&value, -1, &out, 3), 0U);
    EXPECT_EQ(matMeanValue(&value, std::numeric_limits<int>::min(), &out, 3), 0U);
    EXPECT_EQ(matMeanValue(nullptr, -1, nullptr, 3), 0U);
    EXPECT_EQ(matMeanValue(&value, -1, &out, 0), 3U);
    EXPECT_EQ(out, kUntouched);
}

TEST(MeanValue, AWindowOfOneCopies) {
    EXPECT_EQ(meanValue({3, 1, 4, 1, 5}, 1), (Curve{3, 1, 4, 1, 5}));
}

TEST(MeanValue, ANegativeWindowCopies) {
    EXPECT_EQ(meanValue({3, 1, 4, 1, 5}, -3), (Curve{3, 1, 4, 1, 5}));
    EXPECT_EQ(meanValue({3, 1, 4}, std::numeric_limits<int>::min()), (Curve{3, 1, 4}));
}

TEST(MeanValue, TheWindowIsCutAtTheEnds) {
    EXPECT_EQ(meanValue({3, 1, 5, 9, 2}, 3), (Curve{2, 3, 5, 16.0 / 3.0, 5.5}));
}

TEST(MeanValue, AnEvenWindowReachesFurtherToTheLeft) {
    EXPECT_EQ(meanValue({3, 1, 5, 9}, 2), (Curve{3, 2, 3, 7}));
    EXPECT_EQ(meanValue({4, 8, 12, 16, 20}, 4), (Curve{6, 8, 10, 14, 16}));
}

TEST(MeanValue, AWideWindowIsTheWholeCurve) {
    EXPECT_EQ(meanValue({1, 2, 6}, 100), (Curve{3, 3, 3}));
    EXPECT_EQ(meanValue({1, 2, 6}, std::numeric_limits<int>::max()), (Curve{3, 3, 3}));
}

TEST(MeanValue, EveryLevelGivesTheBitsOfThePlainSum) {
    std::mt19937 random(822);
    onEveryLevel([&] {
        for (int round = 0; round < 1000; ++round) {
            SCOPED_TRACE(round);
            const Curve in = randomCurve(random, 1 + random() % 80);
            const int window = static_cast<int>(random() % 40) - 5;
            if (window == 0) continue;
            ASSERT_EQ(meanValue(in, window), meanValueReference(in, window)) << window;
        }
    });
}

Curve meanEnvelope(const Curve& in, unsigned int rounds, unsigned int gap) {
    Curve out(in.size(), kUntouched);
    EXPECT_EQ(matMeanEnvelope(in.data(), static_cast<unsigned int>(in.size()), out.data(), rounds, gap), 0U);
    return out;
}

TEST(MeanEnvelope, RefusesCountsOfZero) {
    const double in[] = {1, 2};
    double out = kUntouched;
    EXPECT_EQ(matMeanEnvelope(in, 0, &out, 1, 5), 3U);
    EXPECT_EQ(matMeanEnvelope(in, 2, &out, 0, 5), 3U);
    EXPECT_EQ(matMeanEnvelope(nullptr, 2, &out, 1, 5), 3U);
    EXPECT_EQ(matMeanEnvelope(in, 2, nullptr, 1, 5), 3U);
    EXPECT_EQ(out, kUntouched);
}

TEST(MeanEnvelope, OneValueIsItself) {
    EXPECT_EQ(meanEnvelope({5}, 1, 3), (Curve{5}));
    EXPECT_EQ(meanEnvelope({5}, 2, 3), (Curve{5}));
    EXPECT_EQ(meanEnvelope({1e308}, 1, 3), (Curve{1e308}));
}

TEST(MeanEnvelope, AZigzagByHand) {
    // Minima 0 2 4; maxima 0 1 3, the first of them because the window lags. Forwards: at 1 the chord of the minima is
    // 0, so the line goes half way to 2; at 2 the chord of the maxima is 4: 2. Both lists are at their ends now, so one
    // more round leads to 3, with 2 again. Behind it the line has the slope of the curve, (0 - 4) / 1: -2. So forwards
    // 0 2 2 2 -2, backwards the same from the other end.
    EXPECT_EQ(meanEnvelope({0, 4, 0, 4, 0}, 1, 10), (Curve{-1, 2, 2, 2, -1}));
    // Within no gap all stretches keep the curve.
    EXPECT_EQ(meanEnvelope({0, 4, 0, 4, 0}, 1, 0), (Curve{0, 4, 0, 4, 0}));
}

TEST(MeanEnvelope, AStraightLineStays) {
    Curve line(20);
    for (std::size_t i = 0; i < line.size(); ++i)
        line[i] = static_cast<double>(i);
    EXPECT_EQ(meanEnvelope(line, 1, 100), line);
}

TEST(MeanEnvelope, ALongSineLeavesALineNearItsMiddle) {
    Curve sine(400);
    for (std::size_t i = 0; i < sine.size(); ++i)
        sine[i] = std::sin(static_cast<double>(i) * 2.0 * 3.14159265358979 / 40.0);
    const Curve out = meanEnvelope(sine, 1, 100);
    for (std::size_t i = 40; i < 360; ++i)
        EXPECT_NEAR(out[i], 0.0, 0.02) << i;
}

TEST(MeanEnvelope, LongStretchesKeepTheCurve) {
    Curve sine(400);
    for (std::size_t i = 0; i < sine.size(); ++i)
        sine[i] = std::sin(static_cast<double>(i) * 2.0 * 3.14159265358979 / 40.0);
    // No two extremes lie within two samples, so every stretch goes from extreme to extreme along the curve.
    const Curve out = meanEnvelope(sine, 1, 2);
    for (std::size_t i = 40; i < 360; ++i)
        EXPECT_NEAR(out[i], sine[i], 1e-12) << i;
}

TEST(MeanEnvelope, TheInputIsLeftAlone) {
    std::mt19937 random(823);
    const Curve in = randomCurve(random, 100);
    const Curve before = in;
    meanEnvelope(in, 3, 5);
    EXPECT_EQ(in, before);
}

TEST(MeanEnvelope, MoreRoundsSmoothTheResultAgain) {
    std::mt19937 random(824);
    const Curve in = randomCurve(random, 100);
    const Curve once = meanEnvelope(in, 1, 5);
    const Curve twice = meanEnvelope(in, 2, 5);
    EXPECT_EQ(twice, meanEnvelope(once, 1, 5));
    EXPECT_EQ(meanEnvelope(in, 3, 5), meanEnvelope(twice, 1, 5));
}

TEST(MeanEnvelope, GivesTheBitsOfThePlainWalk) {
    std::mt19937 random(825);
    for (int round = 0; round < 4000; ++round) {
        SCOPED_TRACE(round);
        Curve in = randomCurve(random, 2 + random() % 60);
        if (round % 3 == 0) {
            // Few levels give flat stretches.
            for (double& value : in)
                value = static_cast<double>(random() % 3);
        }
        const auto rounds = static_cast<unsigned int>(1 + random() % 4);
        const auto gap = static_cast<unsigned int>(random() % 8);
        const Curve out = meanEnvelope(in, rounds, gap);
        const Curve expected = MeanEnvelopeReference::run(in, rounds, gap);
        for (std::size_t i = 0; i < in.size(); ++i) {
            const bool isSame = out[i] == expected[i] || (out[i] != out[i] && expected[i] != expected[i]);
            ASSERT_TRUE(isSame) << i << ": " << out[i] << " not " << expected[i];
        }
    }
}

TEST(MeanEnvelope, NotANumbersEnd) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::mt19937 random(826);
    for (int round = 0; round < 500; ++round) {
        Curve in = randomCurve(random, 2 + random() % 30);
        for (double& value : in) {
            if (random() % 3 == 0) value = nan;
        }
        Curve out(in.size());
        ASSERT_EQ(matMeanEnvelope(in.data(), static_cast<unsigned int>(in.size()), out.data(), 2, 4), 0U);
    }
}

TEST(MeanEnvelope, WhatTheOutputHeldDoesNotCount) {
    // The first value has a not-a-number beside it, so no extreme stands at the start.
    const Curve in = {5, std::numeric_limits<double>::quiet_NaN(), 3, 4, 2, 6, 1};
    Curve one(in.size(), kUntouched);
    Curve other(in.size(), -1e9);
    EXPECT_EQ(matMeanEnvelope(in.data(), 7, one.data(), 1, 0), 0U);
    EXPECT_EQ(matMeanEnvelope(in.data(), 7, other.data(), 1, 0), 0U);
    for (std::size_t i = 0; i < in.size(); ++i) {
        const bool isSame = one[i] == other[i] || (one[i] != one[i] && other[i] != other[i]);
        EXPECT_TRUE(isSame) << i << ": " << one[i] << " not " << other[i];
    }
}

TEST(MeanEnvelope, LackOfMemoryAndOfALockHaveTheirOwnStatus) {
    const Curve in = {0, 4, 0, 4, 0};
    Curve out(5, kUntouched);
    forEachFailingAllocation([&] {
        out.assign(5, kUntouched);
        const unsigned int status = matMeanEnvelope(in.data(), 5, out.data(), 2, 3);
        if (status == 1) {
            EXPECT_EQ(out[0], kUntouched);
        }
        return status == 1;
    });
    failNextBlockCall(BlockCall::kLock);
    EXPECT_EQ(matMeanEnvelope(in.data(), 5, out.data(), 2, 3), 2U);
}

}  // namespace
