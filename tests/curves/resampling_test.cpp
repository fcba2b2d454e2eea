#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/block_failure.h"
#include "tests/support/resampling_reference.h"
#include "velquad/curves.h"

using namespace velquad;
using namespace velquad::test;

namespace {

using Doubles = std::vector<double>;

constexpr double kUntouched = 77.0;

Doubles akima(const Doubles& values, int outCount) {
    Doubles out(static_cast<std::size_t>(outCount) + 3, kUntouched);
    EXPECT_EQ(matAkima(values.data(), static_cast<unsigned int>(values.size()), out.data(), outCount),
              kSignalOk);
    EXPECT_EQ(out[static_cast<std::size_t>(outCount) + 1], kUntouched);
    out.resize(static_cast<std::size_t>(outCount));
    return out;
}

Doubles bspline(const Doubles& values, int outCount, unsigned int order) {
    Doubles out(static_cast<std::size_t>(outCount) + 3, kUntouched);
    EXPECT_EQ(
        matBSpline(values.data(), static_cast<unsigned int>(values.size()), out.data(), outCount, order),
        kSignalOk);
    EXPECT_EQ(out[static_cast<std::size_t>(outCount) + 1], kUntouched);
    out.resize(static_cast<std::size_t>(outCount));
    return out;
}

Doubles randomValues(std::mt19937& random, std::size_t count) {
    std::uniform_real_distribution<double> value(-10, 10);
    std::uniform_int_distribution<int> level(0, 2);
    const bool hasLevels = random() % 2 == 0;
    Doubles values(count);
    for (double& v : values)
        v = hasLevels ? level(random) : value(random);
    return values;
}

TEST(Akima, RefusesCountsOfZeroAndNullArrays) {
    double out[2] = {kUntouched, kUntouched};
    const double values[] = {1, 2, 3};
    EXPECT_EQ(matAkima(values, 0, out, 2), 3);
    EXPECT_EQ(matAkima(values, 3, out, 0), 3);
    EXPECT_EQ(matAkima(nullptr, 3, out, 2), 3);
    EXPECT_EQ(matAkima(values, 3, nullptr, 2), 3);
    EXPECT_EQ(out[0], kUntouched);
    EXPECT_EQ(out[1], kUntouched);
}

TEST(Akima, TwoValuesAreTheFirstAndTheLastSample) {
    double out[3] = {kUntouched, kUntouched, kUntouched};
    const double values[] = {1, 5, 2, 8};
    EXPECT_EQ(matAkima(values, 4, out, 2), 0);
    EXPECT_EQ(out[0], 1.0);
    EXPECT_EQ(out[1], 8.0);
    EXPECT_EQ(out[2], kUntouched);
}

TEST(Akima, OneValueIsStillTwo) {
    double out[3] = {kUntouched, kUntouched, kUntouched};
    const double values[] = {1, 5, 2, 8};
    EXPECT_EQ(matAkima(values, 4, out, 1), 0);
    EXPECT_EQ(out[0], 1.0);
    EXPECT_EQ(out[1], 8.0);
    EXPECT_EQ(out[2], kUntouched);
}

TEST(Akima, ANegativeCountIsTreatedAsOne) {
    const double values[] = {1, 5, 2, 8};
    for (const int outCount : {-1, -5, std::numeric_limits<int>::min()}) {
        double out[3] = {kUntouched, kUntouched, kUntouched};
        EXPECT_EQ(matAkima(values, 4, out, outCount), 0);
        EXPECT_EQ(out[0], 1.0);
        EXPECT_EQ(out[1], 8.0);
        EXPECT_EQ(out[2], kUntouched);
    }
}

TEST(Akima, FollowsALineFromTheSecondSampleOn) {
    // Before the start the differences go on with 0 and -2, not with 2: the first slope is 0. On the first interval
    // c2 = 6 - 0 - 2 = 4, c3 = 0 + 2 - 4 = -2.
    EXPECT_EQ(akima({1, 3, 5, 7}, 7), (Doubles{1, 1.75, 3, 4, 5, 6, 7}));
}

TEST(Akima, EqualDifferencesOnBothSidesGiveTheirMean) {
    // Differences 1, 1, 3, 3: at the middle sample both sides are calm, so the slope is (1 + 3) / 2 = 2. On the second
    // interval the slopes are 1 and 2 around a difference of 1: with f = 1/2, c3 = 1 + 2 - 2 = 1 and
    // c2 = 3 - 2 - 2 = -1, ((0.5 - 1) * 0.5 + 1) * 0.5 + 1 = 1.375.
    EXPECT_EQ(akima({0, 1, 2, 5, 8}, 9)[3], 1.375);
}

TEST(Akima, WeighsEachDifferenceByTheChangeOnItsOwnSide) {
    // Differences 0, 0, 0, 2, 1, continued by 0, 0 and 0, -1. At sample 3 the changes are a = |0 - 0| = 0 and
    // b = |2 - 1| = 1, so the slope is (0 * 0 + 2 * 1) / 1 = 2; the paper has 0. At sample 4: a = 2, b = 1, slope
    // (2 * 2 + 1 * 1) / 3 = 5 / 3. Half way: c3 = 2 + 5/3 - 4 = -1/3, c2 = 6 - 4 - 5/3 = 1/3, so the value is
    // ((-1/6 + 1/3) / 2 + 2) / 2 = 25 / 24.
    EXPECT_NEAR(akima({0, 0, 0, 0, 2, 3}, 11)[7], 25.0 / 24.0, 1e-15);
}

TEST(Akima, TheLastButOneValueBelongsToTheLastInterval) {
    // Slope (5 * 2 + 7 * 2) / 4 = 6 at sample 3 and (7 * 2 + 9 * 2) / 4 = 8 at sample 4, difference 7: a parabola
    // with c3 = 0 and c2 = 21 - 12 - 8 = 1. Half way: (1 * 0.5 + 6) * 0.5 + 9 = 12.25.
    EXPECT_EQ(akima({0, 1, 4, 9, 16}, 9)[7], 12.25);
}

TEST(Akima, TwoSamplesAreALineAndOneIsAConstant) {
    EXPECT_EQ(akima({2, 6}, 5), (Doubles{2, 3, 4, 5, 6}));
    EXPECT_EQ(akima({2}, 4), (Doubles{2, 2, 2, 2}));
}

TEST(Akima, GivesTheBitsOfThePlainVersion) {
    std::mt19937 random(95);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        const Doubles values = randomValues(random, 3 + random() % 20);
        const int outCount = static_cast<int>(1 + random() % 60);
        Doubles expected(static_cast<std::size_t>(outCount) + 1);
        akimaReference(values, expected, outCount);
        expected.resize(static_cast<std::size_t>(outCount));
        ASSERT_EQ(akima(values, outCount), expected);
    }
}

TEST(Akima, LackOfMemoryAndOfALockHaveTheirOwnStatus) {
    const double values[] = {1, 5, 2, 8};
    double out[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    forEachFailingAllocation([&] {
        out[0] = kUntouched;
        const int status = matAkima(values, 4, out, 4);
        if (status == kSignalNoMemory) {
            EXPECT_EQ(out[0], kUntouched);
        }
        return status == kSignalNoMemory;
    });
    out[0] = kUntouched;
    failNextBlockCall(BlockCall::kLock);
    EXPECT_EQ(matAkima(values, 4, out, 4), kSignalLockFailed);
    EXPECT_EQ(out[0], kUntouched);
}

TEST(BSpline, RefusesCountsAndOrdersOfZeroAndNullArrays) {
    double out[2] = {kUntouched, kUntouched};
    const double values[] = {1, 2, 3};
    EXPECT_EQ(matBSpline(values, 0, out, 2, 3), 3);
    EXPECT_EQ(matBSpline(values, 3, out, 0, 3), 3);
    EXPECT_EQ(matBSpline(values, 3, out, 2, 0), 3);
    EXPECT_EQ(matBSpline(nullptr, 3, out, 2, 3), 3);
    EXPECT_EQ(matBSpline(values, 3, nullptr, 2, 3), 3);
    EXPECT_EQ(out[0], kUntouched);
    EXPECT_EQ(out[1], kUntouched);
}

TEST(BSpline, TwoValuesAreTheFirstAndTheLastSampleAndOneIsStillTwo) {
    for (const int outCount : {1, 2}) {
        double out[3] = {kUntouched, kUntouched, kUntouched};
        const double values[] = {1, 5, 2, 8};
        EXPECT_EQ(matBSpline(values, 4, out, outCount, 3), 0);
        EXPECT_EQ(out[0], 1.0);
        EXPECT_EQ(out[1], 8.0);
        EXPECT_EQ(out[2], kUntouched);
    }
}

TEST(BSpline, ANegativeCountIsTreatedAsOne) {
    const double values[] = {1, 5, 2, 8};
    for (const unsigned int order : {3U, 9U}) {
        for (const int outCount : {-1, -5, std::numeric_limits<int>::min()}) {
            double out[3] = {kUntouched, kUntouched, kUntouched};
            EXPECT_EQ(matBSpline(values, 4, out, outCount, order), 0);
            EXPECT_EQ(out[0], 1.0);
            EXPECT_EQ(out[1], 8.0);
            EXPECT_EQ(out[2], kUntouched);
        }
    }
}

TEST(BSpline, OrderOneTakesTheSampleWhoseIntervalHoldsThePlace) {
    // Four samples, eight values: u = j / 2.
    EXPECT_EQ(bspline({1, 5, 2, 8}, 8, 1), (Doubles{1, 1, 5, 5, 2, 2, 8, 8}));
}

TEST(BSpline, OrderTwoIsASumOfHats) {
    // Four samples, six values: u = j / 2, hats of width 2. At the whole numbers only the hat on top counts: its
    // rising and falling side meet and the sum of 2 is halved.
    EXPECT_EQ(bspline({1, 5, 2, 8}, 6, 2), (Doubles{1, 3, 5, 3.5, 2, 8}));
}

TEST(BSpline, OrderThreeByHand) {
    // Knots 0 0 0 1 2 2 2, u = j / 2. At u = 1/2 the functions of order 2 over 0 0 1 and 0 1 2 are 1/2. Order 3:
    // N0 = (1 - u) / 1 * 1/2 = 1/4, N1 = u / 1 * 1/2 + (2 - u) / 2 * 1/2 = 5/8, N2 = u / 2 * 1/2 = 1/8.
    const Doubles out = bspline({8, 16, 24, 0}, 4, 3);
    EXPECT_EQ(out[1], 8 * 0.25 + 16 * 0.625 + 24 * 0.125);
    EXPECT_EQ(out[0], 8.0);
    EXPECT_EQ(out[3], 0.0);
}

TEST(BSpline, SamplesMoreThanNineBeyondThePlaceAreLeftOut) {
    // The first inner value of order 12 lies at 29 / 40 and depends on the samples 0 to 11.
    Doubles values(30, 0.0);
    values[10] = values[11] = 1e30;
    EXPECT_EQ(bspline(values, 40, 12)[1], 0.0);
    values[9] = 1.0;
    EXPECT_GT(bspline(values, 40, 12)[1], 0.0);
    EXPECT_LT(bspline(values, 40, 12)[1], 1e-6);
    // Order 10 depends on no such sample.
    EXPECT_NEAR(bspline(Doubles(30, 1.0), 40, 10)[1], 1.0, 1e-14);
}

TEST(BSpline, FewerSamplesThanTheOrderGiveZeros) {
    EXPECT_EQ(bspline({3, 4}, 5, 3), (Doubles{3, 0, 0, 0, 4}));
    EXPECT_EQ(bspline({3, 4}, 5, 9), (Doubles{3, 0, 0, 0, 4}));
    EXPECT_EQ(bspline({3, 4}, 5, 0xFFFFFFFFU), (Doubles{3, 0, 0, 0, 4}));
    EXPECT_EQ(bspline({3}, 4, 1), (Doubles{3, 3, 3, 3}));
}

TEST(BSpline, GivesTheBitsOfThePlainRecursion) {
    std::mt19937 random(96);
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE(round);
        const Doubles values = randomValues(random, 1 + random() % 20);
        const int outCount = static_cast<int>(1 + random() % 40);
        const auto order = static_cast<unsigned int>(1 + random() % 7);
        Doubles expected(static_cast<std::size_t>(outCount) + 1);
        bsplineResampleReference(values, expected, outCount, order);
        expected.resize(static_cast<std::size_t>(outCount));
        ASSERT_EQ(bspline(values, outCount, order), expected) << "order " << order << " of " << values.size();
    }
}

TEST(BSpline, ManyOutputsKeepTheBitsOfTheRepeatedAddition) {
    std::mt19937 random(97);
    const Doubles values = randomValues(random, 500);
    Doubles expected(5000);
    bsplineResampleReference(values, expected, 5000, 4);
    EXPECT_EQ(bspline(values, 5000, 4), expected);
}

TEST(BSpline, LackOfMemoryLeavesAsTheException) {
    const Doubles values(20, 1.0);
    Doubles out(10);
    forEachFailingAllocation([&] {
        try {
            matBSpline(values.data(), 20, out.data(), 10, 4);
            return false;
        } catch (const std::bad_alloc&) {
            return true;
        }
    });
}

}  // namespace
