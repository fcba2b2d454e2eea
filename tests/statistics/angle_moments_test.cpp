#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/angle_moment_reference.h"
#include "velquad/statistics.h"

namespace {

using velquad::test::ReferenceAngleMoments;

constexpr double kNone = std::numeric_limits<double>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kPi = 3.141592653589793;
constexpr DWORD kNoCount = 4294967295U;

using Evaluator = CMatMomentOfAnglesEvaluator;

/// The fields as they stand in the object.
struct Fields {
    const float* values;
    std::uint32_t count;
    std::uint32_t capacity;
    int failed;
    int degrees;
    int sense;
    double least;
    double greatest;
    std::uint32_t resultCount;
    double stdDev;
    double mean;
    double range;
};
static_assert(sizeof(Fields) == sizeof(Evaluator));

Fields fieldsOf(const Evaluator& evaluator) {
    Fields fields{};
    std::memcpy(&fields, reinterpret_cast<const char*>(&evaluator), sizeof fields);
    return fields;
}

void addAll(Evaluator& evaluator, const std::vector<double>& angles) {
    for (const double angle : angles)
        EXPECT_EQ(evaluator.AddValue(angle), 1);
}

void expectNoResults(Evaluator& evaluator) {
    EXPECT_EQ(evaluator.GetMin(nullptr), kNone);
    EXPECT_EQ(evaluator.GetMax(nullptr), kNone);
    EXPECT_EQ(evaluator.GetMean(nullptr), kNone);
    EXPECT_EQ(evaluator.GetStdDev(nullptr), kNone);
    EXPECT_EQ(evaluator.GetCount(nullptr), kNoCount);
}

/// The smallest turn between two angles in degrees.
double distance(double a, double b) {
    const double rest = std::fmod(std::fabs(a - b), 360.0);
    return std::min(rest, 360.0 - rest);
}

TEST(AngleMoments, HaveNoResultsWithoutValues) {
    Evaluator evaluator(1, 1);
    expectNoResults(evaluator);
    EXPECT_EQ(evaluator.GetRange(nullptr), kNone);
    double result = 1.0;
    DWORD count = 1;
    EXPECT_EQ(evaluator.GetMean(&result), kNone);
    EXPECT_EQ(result, kNone);
    EXPECT_EQ(evaluator.GetCount(&count), kNoCount);
    EXPECT_EQ(count, kNoCount);
    EXPECT_EQ(fieldsOf(evaluator).failed, 0);
    EXPECT_EQ(evaluator.AddValue(10.0), 1);
    EXPECT_EQ(evaluator.GetCount(nullptr), 1U);
}

TEST(AngleMoments, BeginWithFlagsAndNothingElse) {
    const Evaluator evaluator(3, 7);
    const Fields fields = fieldsOf(evaluator);
    EXPECT_EQ(fields.values, nullptr);
    EXPECT_EQ(fields.count, 0U);
    EXPECT_EQ(fields.capacity, 0U);
    EXPECT_EQ(fields.failed, 0);
    EXPECT_EQ(fields.sense, 3);
    EXPECT_EQ(fields.degrees, 7);
    EXPECT_EQ(fields.resultCount, kNoCount);
}

TEST(AngleMoments, AcrossTheZeroLine) {
    Evaluator evaluator(1, 1);
    addAll(evaluator, {350.0, 10.0});
    EXPECT_NEAR(distance(evaluator.GetMean(nullptr), 0.0), 0.0, 1e-6);
    EXPECT_NEAR(evaluator.GetStdDev(nullptr), 10.0, 1e-6);
    EXPECT_NEAR(evaluator.GetMin(nullptr), 350.0, 1e-6);
    EXPECT_NEAR(evaluator.GetMax(nullptr), 10.0, 1e-6);
    EXPECT_NEAR(evaluator.GetRange(nullptr), 20.0, 1e-6);
    EXPECT_EQ(evaluator.GetCount(nullptr), 2U);
}

TEST(AngleMoments, InRadians) {
    Evaluator evaluator(1, 0);
    addAll(evaluator, {0.5, 1.0, 1.5});
    EXPECT_NEAR(evaluator.GetMean(nullptr), 1.0, 1e-6);
    EXPECT_NEAR(evaluator.GetStdDev(nullptr), 1.0 / 3.0, 1e-6);
    EXPECT_NEAR(evaluator.GetMin(nullptr), 0.5, 1e-6);
    EXPECT_NEAR(evaluator.GetMax(nullptr), 1.5, 1e-6);
    EXPECT_NEAR(evaluator.GetRange(nullptr), 1.0, 1e-6);
}

TEST(AngleMoments, OfOneAngle) {
    for (const double angle : {0.0, 12.5, 90.0, 179.0, 180.0, 270.0, 359.0}) {
        Evaluator evaluator(1, 1);
        addAll(evaluator, {angle});
        EXPECT_NEAR(distance(evaluator.GetMean(nullptr), angle), 0.0, 1e-4);
        EXPECT_NEAR(evaluator.GetStdDev(nullptr), 0.0, 1e-4);
        EXPECT_NEAR(distance(evaluator.GetMin(nullptr), angle), 0.0, 1e-4);
        EXPECT_NEAR(distance(evaluator.GetMax(nullptr), angle), 0.0, 1e-4);
        EXPECT_NEAR(evaluator.GetRange(nullptr), 0.0, 1e-9);
        EXPECT_EQ(evaluator.GetCount(nullptr), 1U);
    }
}

TEST(AngleMoments, ReduceAnglesToOneTurnAndToFloats) {
    Evaluator evaluator(1, 1);
    addAll(evaluator, {-90.0, 725.0, 360.0, 1.0 / 3.0, -0.5e-9});
    const float* values = fieldsOf(evaluator).values;
    EXPECT_EQ(values[0], 270.0F);
    EXPECT_EQ(values[1], 5.0F);
    EXPECT_EQ(values[2], 0.0F);
    EXPECT_EQ(values[3], 1.0F / 3.0F);
    EXPECT_EQ(values[4], 0.0F);
}

TEST(AngleMoments, MeasureTheDeviationWithoutSquares) {
    // Four distances of 15 and two of 0; their root mean square would be above 12.
    Evaluator evaluator(1, 1);
    addAll(evaluator, {0.0, 0.0, 30.0, 30.0, 15.0, 15.0});
    EXPECT_NEAR(evaluator.GetMean(nullptr), 15.0, 1e-6);
    EXPECT_NEAR(evaluator.GetStdDev(nullptr), 10.0, 1e-6);
}

TEST(AngleMoments, FailWhereDirectionsCancelOut) {
    Evaluator evaluator(1, 1);
    addAll(evaluator, {0.0, 180.0});
    EXPECT_EQ(evaluator.GetMean(nullptr), kNone);
    EXPECT_EQ(fieldsOf(evaluator).failed, 1);
    EXPECT_EQ(evaluator.AddValue(45.0), 0);
    EXPECT_EQ(fieldsOf(evaluator).count, 2U);
    expectNoResults(evaluator);
    EXPECT_EQ(evaluator.ResetResults(), 1);
    EXPECT_EQ(evaluator.AddValue(45.0), 0);
    EXPECT_EQ(evaluator.Reset(), 1);
    EXPECT_EQ(evaluator.AddValue(45.0), 1);
    EXPECT_NEAR(evaluator.GetMean(nullptr), 45.0, 1e-6);
}

TEST(AngleMoments, HaveAMeanFromAVectorOfOneHundredThousandth) {
    const auto isFailing = [](float offset) {
        Evaluator evaluator(1, 0);
        // Two opposite directions turned towards each other by `offset`: a mean vector of about offset / 2.
        addAll(evaluator, {0.0, static_cast<double>(static_cast<float>(kPi) - offset)});
        const bool isMissing = evaluator.GetMean(nullptr) == kNone;
        EXPECT_EQ(fieldsOf(evaluator).failed != 0, isMissing);
        return isMissing;
    };
    // The literal steps tell on which side each float lies; the change is where the length passes 1e-5.
    int changes = 0;
    bool wasFailing = true;
    for (int k = 0; k < 400; ++k) {
        const float offset = 1e-5F + static_cast<float>(k) * 1e-7F;
        const double second = static_cast<double>(static_cast<float>(kPi) - offset);
        const double x = (1.0 + std::cos(second)) / 2.0;
        const double y = std::sin(second) / 2.0;
        const bool expected = 1e-5 > std::sqrt(y * y + x * x);
        EXPECT_EQ(isFailing(offset), expected) << offset;
        if (expected != wasFailing) ++changes;
        wasFailing = expected;
    }
    EXPECT_EQ(changes, 1);
}

TEST(AngleMoments, AreStoredThroughThePointersToo) {
    Evaluator evaluator(1, 1);
    addAll(evaluator, {10.0, 20.0, 60.0});
    std::array<double, 5> stored{};
    DWORD count = 0;
    EXPECT_EQ(evaluator.GetMean(&stored[0]), stored[0]);
    EXPECT_EQ(evaluator.GetStdDev(&stored[1]), stored[1]);
    EXPECT_EQ(evaluator.GetMin(&stored[2]), stored[2]);
    EXPECT_EQ(evaluator.GetMax(&stored[3]), stored[3]);
    EXPECT_EQ(evaluator.GetRange(&stored[4]), stored[4]);
    EXPECT_EQ(evaluator.GetCount(&count), 3U);
    EXPECT_EQ(count, 3U);
    EXPECT_NEAR(stored[2], 10.0, 1e-5);
    EXPECT_NEAR(stored[3], 60.0, 1e-5);
    EXPECT_NEAR(stored[4], 50.0, 1e-5);
}

TEST(AngleMoments, AreComputedByWhicheverGetterComesFirst) {
    double (Evaluator::*const getters[])(double*) = {&Evaluator::GetMin, &Evaluator::GetMax,
                                                     &Evaluator::GetRange, &Evaluator::GetMean,
                                                     &Evaluator::GetStdDev};
    for (const auto getter : getters) {
        Evaluator evaluator(1, 1);
        addAll(evaluator, {10.0, 30.0});
        EXPECT_NE((evaluator.*getter)(nullptr), kNone);
        EXPECT_EQ(fieldsOf(evaluator).resultCount, 2U);
    }
    Evaluator evaluator(1, 1);
    addAll(evaluator, {10.0, 30.0});
    EXPECT_EQ(evaluator.GetCount(nullptr), 2U);
    EXPECT_NEAR(fieldsOf(evaluator).mean, 20.0, 1e-5);
}

TEST(AngleMoments, StayAsComputedUntilTheResultsAreReset) {
    Evaluator evaluator(1, 1);
    addAll(evaluator, {10.0, 30.0});
    const double mean = evaluator.GetMean(nullptr);
    addAll(evaluator, {80.0});
    EXPECT_EQ(evaluator.GetMean(nullptr), mean);
    EXPECT_EQ(evaluator.GetCount(nullptr), 2U);
    EXPECT_NEAR(evaluator.GetMax(nullptr), 30.0, 1e-5);
    EXPECT_EQ(evaluator.ResetResults(), 1);
    EXPECT_EQ(evaluator.GetCount(nullptr), 3U);
    EXPECT_NEAR(evaluator.GetMax(nullptr), 80.0, 1e-5);
    EXPECT_NEAR(evaluator.GetRange(nullptr), 70.0, 1e-5);
}

TEST(AngleMoments, KeepTheRangeWhenResultsAreReset) {
    Evaluator evaluator(1, 1);
    addAll(evaluator, {10.0, 30.0});
    EXPECT_NEAR(evaluator.GetMean(nullptr), 20.0, 1e-5);
    EXPECT_NEAR(evaluator.GetRange(nullptr), 20.0, 1e-5);
    evaluator.ResetResults();
    addAll(evaluator, {90.0});
    EXPECT_NEAR(evaluator.GetRange(nullptr), 20.0, 1e-5);
    EXPECT_EQ(fieldsOf(evaluator).resultCount, kNoCount);
    evaluator.Reset();
    addAll(evaluator, {1.0, 6.0});
    EXPECT_NEAR(evaluator.GetRange(nullptr), 20.0, 1e-5);
    EXPECT_EQ(evaluator.GetCount(nullptr), 2U);
    EXPECT_NEAR(evaluator.GetRange(nullptr), 5.0, 1e-5);
}

TEST(AngleMoments, CountHalfATurnAsAheadOfTheMean) {
    Evaluator evaluator(1, 1);
    addAll(evaluator, {0.0, 0.0, 180.0});
    EXPECT_NEAR(distance(evaluator.GetMean(nullptr), 0.0), 0.0, 1e-6);
    EXPECT_NEAR(evaluator.GetRange(nullptr), 180.0, 1e-4);
    EXPECT_NEAR(evaluator.GetStdDev(nullptr), 60.0, 1e-4);
    EXPECT_NEAR(evaluator.GetMax(nullptr), 180.0, 1e-4);
}

TEST(AngleMoments, MirrorTheMeanInTheOtherSense) {
    Evaluator evaluator(0, 1);
    addAll(evaluator, {20.0, 40.0});
    EXPECT_NEAR(evaluator.GetMean(nullptr), 330.0, 1e-5);
    // Distances of 20 and 40 from 330, and offsets of -10 and 10 from it.
    EXPECT_NEAR(evaluator.GetStdDev(nullptr), 60.0, 1e-5);
    EXPECT_NEAR(evaluator.GetMin(nullptr), 320.0, 1e-5);
    EXPECT_NEAR(evaluator.GetMax(nullptr), 340.0, 1e-5);
    EXPECT_NEAR(evaluator.GetRange(nullptr), 20.0, 1e-5);
}

TEST(AngleMoments, TakeAnyNonZeroFlag) {
    Evaluator one(1, 1);
    Evaluator other(-8, 4096);
    addAll(one, {350.0, 20.0, 30.0});
    addAll(other, {350.0, 20.0, 30.0});
    EXPECT_EQ(one.GetMean(nullptr), other.GetMean(nullptr));
    EXPECT_EQ(one.GetMin(nullptr), other.GetMin(nullptr));
    EXPECT_EQ(one.GetStdDev(nullptr), other.GetStdDev(nullptr));
}

TEST(AngleMoments, StoreTheMarkAsAnInfinity) {
    Evaluator evaluator(1, 1);
    EXPECT_EQ(evaluator.AddValue(kNone), 1);
    EXPECT_EQ(fieldsOf(evaluator).values[0], std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(evaluator.GetMean(nullptr)));
    EXPECT_EQ(evaluator.GetCount(nullptr), 1U);
}

TEST(AngleMoments, AreNotNumbersForOddAngles) {
    for (const double odd : {kNone, kInfinity, -kInfinity, kNan}) {
        Evaluator evaluator(1, 1);
        addAll(evaluator, {10.0, odd, 20.0});
        EXPECT_TRUE(std::isnan(evaluator.GetMean(nullptr))) << odd;
        EXPECT_TRUE(std::isnan(evaluator.GetStdDev(nullptr))) << odd;
        EXPECT_TRUE(std::isnan(evaluator.GetMin(nullptr))) << odd;
        EXPECT_TRUE(std::isnan(evaluator.GetMax(nullptr))) << odd;
        EXPECT_TRUE(std::isnan(evaluator.GetRange(nullptr))) << odd;
        EXPECT_EQ(evaluator.GetCount(nullptr), 3U);
        EXPECT_EQ(fieldsOf(evaluator).failed, 0);
    }
}

TEST(AngleMoments, GrowByThirtyTwoValues) {
    Evaluator evaluator(1, 1);
    for (DWORD k = 0; k < 200; ++k) {
        EXPECT_EQ(evaluator.AddValue(k), 1);
        const Fields fields = fieldsOf(evaluator);
        EXPECT_EQ(fields.count, k + 1);
        EXPECT_EQ(fields.capacity, 32 * (k / 32 + 1));
        EXPECT_EQ(fields.values[k], static_cast<float>(k));
        EXPECT_EQ(fields.values[0], 0.0F);
    }
}

TEST(AngleMoments, AreFilledAgainAfterReset) {
    const std::ptrdiff_t live = velquad::test::liveAllocations();
    {
        Evaluator evaluator(1, 1);
        for (int k = 0; k < 40; ++k)
            evaluator.AddValue(k);
        EXPECT_EQ(evaluator.Reset(), 1);
        EXPECT_EQ(fieldsOf(evaluator).values, nullptr);
        EXPECT_EQ(fieldsOf(evaluator).count, 0U);
        EXPECT_EQ(fieldsOf(evaluator).capacity, 64U);
        EXPECT_EQ(velquad::test::liveAllocations(), live);
        expectNoResults(evaluator);
        // The first value takes a block of the old size, so that 64 fit without another.
        const std::size_t allocations = velquad::test::allocationCount();
        for (int k = 0; k < 64; ++k)
            EXPECT_EQ(evaluator.AddValue(100.0 + k), 1);
        EXPECT_EQ(velquad::test::allocationCount(), allocations + 1);
        EXPECT_EQ(evaluator.AddValue(164.0), 1);
        EXPECT_EQ(fieldsOf(evaluator).capacity, 96U);
        EXPECT_NEAR(evaluator.GetMin(nullptr), 100.0, 1e-4);
        EXPECT_NEAR(evaluator.GetMax(nullptr), 164.0, 1e-4);
        EXPECT_EQ(evaluator.GetCount(nullptr), 65U);
    }
    EXPECT_EQ(velquad::test::liveAllocations(), live);
}

TEST(AngleMoments, FailWithoutMemory) {
    const std::ptrdiff_t live = velquad::test::liveAllocations();
    {
        Evaluator evaluator(1, 1);
        for (int k = 0; k < 32; ++k)
            evaluator.AddValue(k);
        const double mean = evaluator.GetMean(nullptr);
        velquad::test::failAllocation(1);
        EXPECT_EQ(evaluator.AddValue(32.0), 0);
        velquad::test::failAllocation(0);
        const Fields fields = fieldsOf(evaluator);
        EXPECT_EQ(fields.failed, 1);
        EXPECT_EQ(fields.capacity, 64U);
        EXPECT_EQ(fields.values, nullptr);
        EXPECT_EQ(fields.count, 32U);
        EXPECT_EQ(velquad::test::liveAllocations(), live);
        EXPECT_EQ(evaluator.AddValue(32.0), 0);
        // What was computed before stays.
        EXPECT_EQ(evaluator.GetMean(nullptr), mean);
        evaluator.ResetResults();
        expectNoResults(evaluator);
        EXPECT_EQ(evaluator.Reset(), 1);
        EXPECT_EQ(evaluator.AddValue(5.0), 1);
        EXPECT_EQ(fieldsOf(evaluator).capacity, 64U);
        EXPECT_NEAR(evaluator.GetMean(nullptr), 5.0, 1e-6);
    }
    EXPECT_EQ(velquad::test::liveAllocations(), live);
}

TEST(AngleMoments, FailAtEveryAllocation) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        Evaluator evaluator(1, 1);
        bool hasFailed = false;
        for (int k = 0; k < 100; ++k)
            hasFailed = evaluator.AddValue(k) == 0 || hasFailed;
        EXPECT_EQ(evaluator.GetMean(nullptr) == kNone, hasFailed);
        return hasFailed;
    });
    EXPECT_EQ(allocations, 4U);
}

TEST(AngleMoments, ShareTheirValuesWhenAssigned) {
    const std::ptrdiff_t live = velquad::test::liveAllocations();
    {
        Evaluator original(1, 1);
        addAll(original, {10.0, 30.0});
        // An object that never reaches its destructor.
        alignas(Evaluator) unsigned char memory[sizeof(Evaluator)];
        auto* copy = new (memory) Evaluator(0, 0);
        EXPECT_EQ(&(*copy = original), copy);
        const Fields fields = fieldsOf(*copy);
        EXPECT_EQ(fields.count, 2U);
        EXPECT_EQ(fields.capacity, 32U);
        EXPECT_EQ(fields.sense, 1);
        EXPECT_EQ(fields.values, fieldsOf(original).values);
        EXPECT_EQ(fields.degrees, 1);
        EXPECT_NEAR(copy->GetMean(nullptr), 20.0, 1e-5);
        // Results are each object's own.
        EXPECT_EQ(fieldsOf(original).mean, kNone);
        *copy = *copy;
        EXPECT_EQ(fieldsOf(*copy).count, 2U);
    }
    EXPECT_EQ(velquad::test::liveAllocations(), live);
    static_assert(!std::is_copy_constructible_v<Evaluator>);
    static_assert(!std::is_polymorphic_v<Evaluator>);
}

std::uint64_t bitsOf(double value) {
    if (std::isnan(value)) value = kNan;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void expectSameBits(Evaluator& evaluator, const ReferenceAngleMoments& reference) {
    EXPECT_EQ(bitsOf(evaluator.GetMean(nullptr)), bitsOf(reference.mean));
    EXPECT_EQ(bitsOf(evaluator.GetStdDev(nullptr)), bitsOf(reference.stdDev));
    EXPECT_EQ(bitsOf(evaluator.GetMin(nullptr)), bitsOf(reference.min));
    EXPECT_EQ(bitsOf(evaluator.GetMax(nullptr)), bitsOf(reference.max));
    EXPECT_EQ(bitsOf(evaluator.GetRange(nullptr)), bitsOf(reference.range));
    EXPECT_EQ(evaluator.GetCount(nullptr), reference.count);
    EXPECT_EQ(fieldsOf(evaluator).failed != 0, reference.hasFailed);
}

TEST(RandomAngleMoments, EqualTheLiteralSteps) {
    constexpr std::uint64_t kSeed = 6202;
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 600; ++round) {
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", round " + std::to_string(round));
        const int sense = round % 3 == 0 ? 0 : 1;
        const int degrees = round % 2;
        const double turn = degrees != 0 ? 360.0 : 2 * kPi;
        // Narrow bundles anywhere, the whole circle, angles of several turns, and multiples of an eighth of a turn.
        const double width = turn * std::pow(0.5, round % 9);
        const double start = turn * static_cast<double>(random() % 1000) / 200.0 - 2 * turn;
        std::vector<double> angles(random() % 70);
        for (double& angle : angles) {
            const double unit = static_cast<double>(random() >> 11) * 0x1p-53;
            angle = round % 5 == 0 ? turn / 8.0 * static_cast<double>(random() % 16) : start + unit * width;
        }
        Evaluator evaluator(sense, degrees);
        addAll(evaluator, angles);
        expectSameBits(evaluator, {angles, sense, degrees});
    }
}

TEST(RandomAngleMoments, TurnWithTheirAngles) {
    constexpr std::uint64_t kSeed = 6203;
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", round " + std::to_string(round));
        std::vector<double> angles(5 + random() % 40);
        for (double& angle : angles)
            angle = static_cast<double>(random() % 120000) / 1000.0;
        const double turn = static_cast<double>(random() % 360000) / 1000.0;
        Evaluator original(1, 1);
        Evaluator turned(1, 1);
        addAll(original, angles);
        for (const double angle : angles)
            turned.AddValue(angle + turn);
        constexpr double kFloatRounding = 1e-4;
        EXPECT_LT(distance(turned.GetMean(nullptr), original.GetMean(nullptr) + turn), kFloatRounding);
        EXPECT_LT(distance(turned.GetMin(nullptr), original.GetMin(nullptr) + turn), kFloatRounding);
        EXPECT_LT(distance(turned.GetMax(nullptr), original.GetMax(nullptr) + turn), kFloatRounding);
        EXPECT_NEAR(turned.GetStdDev(nullptr), original.GetStdDev(nullptr), kFloatRounding);
        EXPECT_NEAR(turned.GetRange(nullptr), original.GetRange(nullptr), kFloatRounding);
        // Without the zero line inside, extremes are those of the numbers.
        EXPECT_NEAR(original.GetMin(nullptr), *std::min_element(angles.begin(), angles.end()),
                    kFloatRounding);
        EXPECT_NEAR(original.GetMax(nullptr), *std::max_element(angles.begin(), angles.end()),
                    kFloatRounding);
    }
}

}  // namespace
