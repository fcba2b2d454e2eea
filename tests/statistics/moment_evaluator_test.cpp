#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "statistics/element_type.h"
#include "statistics/moments.h"
#include "statistics/narrow_sums.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/moment_reference.h"
#include "velquad/statistics.h"

namespace {

using velquad::statistics::Moments;
using velquad::test::ReferenceMoments;

constexpr double kNone = std::numeric_limits<double>::max();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kTwoTo53 = 9007199254740992.0;
constexpr double kTwoTo54 = 2 * kTwoTo53;
constexpr double kTwoTo55 = 4 * kTwoTo53;

/// The code of an element type.
template <class T>
constexpr unsigned int kCode = std::is_same_v<T, std::int8_t>     ? 1
                               : std::is_same_v<T, std::uint8_t>  ? 2
                               : std::is_same_v<T, std::int16_t>  ? 3
                               : std::is_same_v<T, std::uint16_t> ? 4
                               : std::is_same_v<T, std::int32_t>  ? 5
                               : std::is_same_v<T, std::uint32_t> ? 6
                               : std::is_same_v<T, float>         ? 7
                                                                  : 8;

/// The fields as they stand in the object, behind the pointer to its virtual functions.
struct Fields {
    double sum;
    double sumOfSquares;
    double least;
    double greatest;
    std::uint32_t count;
};

constexpr std::size_t kFieldsOffset = 8;

Fields fieldsOf(const CMatMomentEvaluator& evaluator) {
    Fields fields{};
    std::memcpy(&fields, reinterpret_cast<const char*>(&evaluator) + kFieldsOffset, sizeof fields);
    return fields;
}

void setFields(CMatMomentEvaluator& evaluator, const Fields& fields) {
    std::memcpy(reinterpret_cast<char*>(&evaluator) + kFieldsOffset, &fields, sizeof fields);
}

std::uint64_t bitsOf(double value) {
    if (std::isnan(value)) value = kNan;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void expectSameBits(const CMatMomentEvaluator& evaluator, const ReferenceMoments& reference) {
    const Fields fields = fieldsOf(evaluator);
    EXPECT_EQ(bitsOf(fields.sum), bitsOf(reference.sum)) << fields.sum << " " << reference.sum;
    EXPECT_EQ(bitsOf(fields.sumOfSquares), bitsOf(reference.sumOfSquares))
        << fields.sumOfSquares << " " << reference.sumOfSquares;
    EXPECT_EQ(bitsOf(fields.least), bitsOf(reference.min)) << fields.least << " " << reference.min;
    EXPECT_EQ(bitsOf(fields.greatest), bitsOf(reference.max)) << fields.greatest << " " << reference.max;
    EXPECT_EQ(fields.count, reference.count);
}

void expectEmpty(CMatMomentEvaluator& evaluator) {
    EXPECT_EQ(evaluator.GetMin(), kNone);
    EXPECT_EQ(evaluator.GetMax(), kNone);
    EXPECT_EQ(evaluator.GetMean(), kNone);
    EXPECT_EQ(evaluator.GetVariance(), kNone);
    EXPECT_EQ(evaluator.GetStdDev(), kNone);
    EXPECT_EQ(evaluator.GetCount(), 0U);
}

TEST(MomentEvaluator, HasNoResultsWithoutValues) {
    CMatMomentEvaluator evaluator;
    expectEmpty(evaluator);
    const Fields fields = fieldsOf(evaluator);
    EXPECT_EQ(bitsOf(fields.sum), bitsOf(0.0));
    EXPECT_EQ(bitsOf(fields.sumOfSquares), bitsOf(0.0));
    EXPECT_EQ(fields.least, kNone);
    EXPECT_EQ(fields.greatest, -kNone);
}

TEST(MomentEvaluator, ForgetsItsValuesOnReset) {
    CMatMomentEvaluator evaluator;
    evaluator.AddValue(3.0);
    evaluator.AddValue(-5.0);
    EXPECT_EQ(evaluator.Reset(), 1);
    expectEmpty(evaluator);
    EXPECT_EQ(evaluator.AddValue(4.0), 1);
    EXPECT_EQ(evaluator.GetMin(), 4.0);
    EXPECT_EQ(evaluator.GetMax(), 4.0);
}

TEST(MomentEvaluator, MeasuresAFewValues) {
    CMatMomentEvaluator evaluator;
    for (const double value : {2.0, 4.0, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0})
        EXPECT_EQ(evaluator.AddValue(value), 1);
    EXPECT_EQ(evaluator.GetMin(), 2.0);
    EXPECT_EQ(evaluator.GetMax(), 9.0);
    EXPECT_EQ(evaluator.GetMean(), 5.0);
    EXPECT_EQ(evaluator.GetVariance(), 4.0);
    EXPECT_EQ(evaluator.GetStdDev(), 2.0);
    EXPECT_EQ(evaluator.GetCount(), 8U);
}

TEST(MomentEvaluator, OfOneValueHasNoSpread) {
    for (const double value : {0.0, 1.0, -2.5, 0.1, 1e10, -1e-10, 123456.789}) {
        CMatMomentEvaluator evaluator;
        EXPECT_EQ(evaluator.AddValue(value), 1);
        EXPECT_EQ(evaluator.GetMin(), value);
        EXPECT_EQ(evaluator.GetMax(), value);
        EXPECT_EQ(evaluator.GetMean(), value);
        EXPECT_EQ(evaluator.GetVariance(), 0.0);
        EXPECT_EQ(evaluator.GetStdDev(), 0.0);
    }
}

TEST(MomentEvaluator, RaisesANegativeVarianceToZero) {
    // 0.1 * 0.1 three times over 3 rounds below the square of the mean.
    CMatMomentEvaluator evaluator;
    double mostNegative = 0.0;
    for (int k = 1; k <= 200; ++k) {
        evaluator.AddValue(0.1);
        const Fields fields = fieldsOf(evaluator);
        const double mean = fields.sum / k;
        mostNegative = std::min(mostNegative, fields.sumOfSquares / k - mean * mean);
        EXPECT_GE(evaluator.GetVariance(), 0.0);
        EXPECT_GE(evaluator.GetStdDev(), 0.0);
    }
    EXPECT_LT(mostNegative, 0.0);
}

TEST(MomentEvaluator, RefusesTheMark) {
    CMatMomentEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValue(kNone), 0);
    expectEmpty(evaluator);
    evaluator.AddValue(1.0);
    EXPECT_EQ(evaluator.AddValue(kNone), 0);
    EXPECT_EQ(evaluator.GetCount(), 1U);
    EXPECT_EQ(evaluator.GetMax(), 1.0);
    EXPECT_EQ(evaluator.AddValue(std::nextafter(kNone, 0.0)), 1);
    EXPECT_EQ(evaluator.GetMax(), std::nextafter(kNone, 0.0));
}

TEST(MomentEvaluator, AcceptsTheNegativeOfTheMark) {
    CMatMomentEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValue(-kNone), 1);
    EXPECT_EQ(evaluator.GetCount(), 1U);
    EXPECT_EQ(evaluator.GetMin(), -kNone);
    EXPECT_EQ(evaluator.GetMax(), -kNone);
    EXPECT_EQ(evaluator.GetMean(), -kNone);
}

TEST(MomentEvaluator, GivesNoSpreadWhereTheVarianceIsTheMark) {
    CMatMomentEvaluator evaluator;
    setFields(evaluator, {0.0, kNone, -1.0, 1.0, 1});
    EXPECT_EQ(evaluator.GetVariance(), kNone);
    EXPECT_EQ(evaluator.GetStdDev(), kNone);
}

TEST(MomentEvaluator, StopsCountingAtTheGreatestCount) {
    CMatMomentEvaluator evaluator;
    setFields(evaluator, {10.0, 30.0, -1.0, 1.0, 4294967294U});
    EXPECT_EQ(evaluator.AddValue(7.0), 1);
    EXPECT_EQ(evaluator.GetCount(), 4294967295U);
    const Fields before = fieldsOf(evaluator);
    EXPECT_EQ(evaluator.AddValue(9.0), 0);
    const Fields after = fieldsOf(evaluator);
    EXPECT_EQ(after.sum, before.sum);
    EXPECT_EQ(after.sumOfSquares, before.sumOfSquares);
    EXPECT_EQ(after.greatest, 7.0);
    EXPECT_EQ(after.count, 4294967295U);
}

TEST(MomentEvaluator, KeepsItsRangeForNotANumber) {
    CMatMomentEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValue(kNan), 1);
    EXPECT_EQ(evaluator.GetCount(), 1U);
    EXPECT_EQ(evaluator.GetMin(), kNone);
    EXPECT_EQ(evaluator.GetMax(), -kNone);
    EXPECT_TRUE(std::isnan(evaluator.GetMean()));
    EXPECT_TRUE(std::isnan(evaluator.GetVariance()));
    EXPECT_TRUE(std::isnan(evaluator.GetStdDev()));
    evaluator.AddValue(2.0);
    EXPECT_EQ(evaluator.GetMin(), 2.0);
    EXPECT_EQ(evaluator.GetMax(), 2.0);
}

TEST(MomentEvaluator, TakesInfinities) {
    CMatMomentEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValue(kInfinity), 1);
    EXPECT_EQ(evaluator.AddValue(-kInfinity), 1);
    EXPECT_EQ(evaluator.GetMin(), -kInfinity);
    EXPECT_EQ(evaluator.GetMax(), kInfinity);
    EXPECT_TRUE(std::isnan(evaluator.GetMean()));
}

TEST(MomentEvaluator, CopiesAreIndependent) {
    CMatMomentEvaluator original;
    original.AddValue(1.0);
    original.AddValue(3.0);
    CMatMomentEvaluator copy(original);
    CMatMomentEvaluator assigned;
    assigned.AddValue(77.0);
    EXPECT_EQ(&(assigned = original), &assigned);
    original.AddValue(100.0);
    for (CMatMomentEvaluator* evaluator : {&copy, &assigned}) {
        EXPECT_EQ(evaluator->GetCount(), 2U);
        EXPECT_EQ(evaluator->GetMin(), 1.0);
        EXPECT_EQ(evaluator->GetMax(), 3.0);
        EXPECT_EQ(evaluator->GetMean(), 2.0);
        EXPECT_EQ(evaluator->GetVariance(), 1.0);
    }
    EXPECT_EQ(original.GetCount(), 3U);
    assigned = *&assigned;
    EXPECT_EQ(assigned.GetMean(), 2.0);
}

TEST(MomentEvaluator, IsDestroyedThroughItsVirtualDestructor) {
    static_assert(std::has_virtual_destructor_v<CMatMomentEvaluator>);
    static_assert(sizeof(CMatMomentEvaluator) == 48);
    struct Derived : CMatMomentEvaluator {
        explicit Derived(int& counter) : destroyed(counter) {}
        Derived(const Derived&) = delete;
        Derived& operator=(const Derived&) = delete;
        ~Derived() override { ++destroyed; }
        int& destroyed;
    };
    int destroyed = 0;
    CMatMomentEvaluator* evaluator = new Derived(destroyed);
    delete evaluator;
    EXPECT_EQ(destroyed, 1);
}

TEST(MomentEvaluator, AllocatesNothing) {
    const std::size_t before = velquad::test::allocationCount();
    CMatMomentEvaluator evaluator;
    double values[3] = {1.0, 2.0, 3.0};
    evaluator.AddValue(1.0);
    evaluator.AddValues(values, 3);
    EXPECT_EQ(evaluator.GetMean(), 1.75);
    EXPECT_EQ(velquad::test::allocationCount(), before);
}

TEST(MomentEvaluatorArrays, SumTheMarkLikeAnyOtherValue) {
    for (const std::size_t place : {0U, 3U, 4U, 5U}) {
        double values[6] = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
        values[place] = kNone;
        CMatMomentEvaluator evaluator;
        EXPECT_EQ(evaluator.AddValues(values, 6), 1);
        EXPECT_EQ(evaluator.GetMax(), kNone);
        EXPECT_EQ(evaluator.GetMin(), place == 0 ? 2.0 : 1.0);
        EXPECT_EQ(evaluator.GetCount(), 6U);
        EXPECT_EQ(evaluator.GetMean(), kNone / 6.0);
    }
}

TEST(MomentEvaluatorArrays, OfNoElementsChangeNothing) {
    CMatMomentEvaluator evaluator;
    evaluator.AddValue(5.0);
    EXPECT_EQ(evaluator.AddValues(static_cast<double*>(nullptr), 0), 1);
    EXPECT_EQ(evaluator.AddValues(static_cast<unsigned char*>(nullptr), 0), 1);
    EXPECT_EQ(evaluator.AddValues(static_cast<unsigned short*>(nullptr), 0), 1);
    EXPECT_EQ(evaluator.AddValues(static_cast<float*>(nullptr), 0), 1);
    for (unsigned int code = 1; code <= 8; ++code)
        EXPECT_EQ(evaluator.AddValues(nullptr, 0, code), 1);
    EXPECT_EQ(evaluator.GetCount(), 1U);
    EXPECT_EQ(evaluator.GetMean(), 5.0);
    EXPECT_EQ(evaluator.GetVariance(), 0.0);
}

TEST(MomentEvaluatorArrays, WithoutAnAddressAreRefused) {
    CMatMomentEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValues(static_cast<double*>(nullptr), 5), 0);
    EXPECT_EQ(evaluator.AddValues(static_cast<unsigned char*>(nullptr), 100), 0);
    for (unsigned int code = 1; code <= 8; ++code)
        EXPECT_EQ(evaluator.AddValues(nullptr, 1, code), 0);
    expectEmpty(evaluator);
}

TEST(MomentEvaluatorArrays, OfNegativeCountLowerTheCount) {
    CMatMomentEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValues(static_cast<double*>(nullptr), -1), 1);
    EXPECT_EQ(evaluator.GetCount(), 4294967295U);
    EXPECT_EQ(evaluator.AddValues(static_cast<unsigned char*>(nullptr), -1), 1);
    EXPECT_EQ(evaluator.GetCount(), 4294967294U);
    EXPECT_EQ(evaluator.AddValues(static_cast<unsigned short*>(nullptr), -4), 1);
    EXPECT_EQ(evaluator.GetCount(), 4294967290U);
    EXPECT_EQ(evaluator.AddValues(static_cast<float*>(nullptr), std::numeric_limits<int>::min()), 1);
    EXPECT_EQ(evaluator.GetCount(), 2147483642U);
    for (unsigned int code = 1; code <= 8; ++code)
        EXPECT_EQ(evaluator.AddValues(nullptr, -1, code), 1);
    EXPECT_EQ(evaluator.GetCount(), 2147483634U);
    const Fields fields = fieldsOf(evaluator);
    EXPECT_EQ(fields.sum, 0.0);
    EXPECT_EQ(fields.least, kNone);
    EXPECT_EQ(fields.greatest, -kNone);
}

TEST(MomentEvaluatorArrays, WrapTheCount) {
    CMatMomentEvaluator evaluator;
    setFields(evaluator, {0.0, 0.0, 1.0, 1.0, 4294967295U});
    unsigned char values[3] = {1, 2, 3};
    EXPECT_EQ(evaluator.AddValues(values, 3), 1);
    EXPECT_EQ(evaluator.GetCount(), 2U);
    EXPECT_EQ(evaluator.GetMean(), 3.0);
}

TEST(MomentEvaluatorArrays, OfAnUnknownTypeChangeNothing) {
    double values[2] = {1.0, 2.0};
    for (const unsigned int code : {0U, 9U, 10U, 11U, 256U, 4294967295U}) {
        CMatMomentEvaluator evaluator;
        EXPECT_EQ(evaluator.AddValues(values, 2, code), 0) << code;
        EXPECT_EQ(evaluator.AddValues(values, -1, code), 0) << code;
        expectEmpty(evaluator);
    }
}

TEST(MomentEvaluatorArrays, ReadBytesBySignednessOfTheirType) {
    unsigned char values[2] = {0, 255};
    CMatMomentEvaluator asUnsigned;
    EXPECT_EQ(asUnsigned.AddValues(values, 2, 2), 1);
    EXPECT_EQ(asUnsigned.GetMin(), 0.0);
    EXPECT_EQ(asUnsigned.GetMax(), 255.0);
    CMatMomentEvaluator asSigned;
    EXPECT_EQ(asSigned.AddValues(values, 2, 1), 1);
    EXPECT_EQ(asSigned.GetMin(), -1.0);
    EXPECT_EQ(asSigned.GetMax(), 0.0);
}

TEST(MomentEvaluatorArrays, WithATypeOfTheirOwnEqualTheirCodes) {
    // Each sum by hand; as signed integers the last elements would be below zero.
    unsigned char bytes[3] = {0, 1, 255};
    unsigned short words[3] = {0, 2, 65535};
    float floats[3] = {-0.5F, 16777216.0F, 0.25F};
    double doubles[3] = {-0.5, 9007199254740992.0, 1.0};
    CMatMomentEvaluator ofBytes;
    CMatMomentEvaluator ofWords;
    CMatMomentEvaluator ofFloats;
    CMatMomentEvaluator ofDoubles;
    EXPECT_EQ(ofBytes.AddValues(bytes, 3), 1);
    EXPECT_EQ(ofWords.AddValues(words, 3), 1);
    EXPECT_EQ(ofFloats.AddValues(floats, 3), 1);
    EXPECT_EQ(ofDoubles.AddValues(doubles, 3), 1);
    expectSameBits(ofBytes, {256.0, 65026.0, 0.0, 255.0, 3});
    expectSameBits(ofWords, {65537.0, 4294836229.0, 0.0, 65535.0, 3});
    expectSameBits(ofFloats, {16777215.75, 281474976710656.3125, -0.5, 16777216.0, 3});
    // 2^53 - 0.5 is a tie and goes to 2^53, and so does 2^53 + 1; 2^106 swallows both squares.
    expectSameBits(ofDoubles, {kTwoTo53, kTwoTo53 * kTwoTo53, -0.5, kTwoTo53, 3});
    CMatMomentEvaluator byCode;
    EXPECT_EQ(byCode.AddValues(bytes, 3, 2), 1);
    EXPECT_EQ(byCode.AddValues(words, 3, 4), 1);
    EXPECT_EQ(byCode.AddValues(floats, 3, 7), 1);
    EXPECT_EQ(byCode.GetCount(), 9U);
    EXPECT_EQ(byCode.GetMin(), -0.5);
    EXPECT_EQ(byCode.GetMax(), 16777216.0);
}

template <class T>
class MomentArrays : public testing::Test {};
using ElementTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                                    std::uint32_t, float, double>;
TYPED_TEST_SUITE(MomentArrays, ElementTypes);

TYPED_TEST(MomentArrays, ReachBothEndsOfTheType) {
    using T = TypeParam;
    const T lowest = std::numeric_limits<T>::lowest();
    const T highest = std::numeric_limits<T>::max();
    // Long enough for every way of summing, and every place of the ends.
    for (std::size_t place = 0; place < 40; ++place) {
        std::vector<T> values(41, T{1});
        values[place] = highest;
        values[place + 1] = lowest;
        CMatMomentEvaluator evaluator;
        EXPECT_EQ(evaluator.AddValues(values.data(), 41, kCode<T>), 1);
        EXPECT_EQ(evaluator.GetMin(), static_cast<double>(lowest));
        EXPECT_EQ(evaluator.GetMax(), static_cast<double>(highest));
        EXPECT_EQ(evaluator.GetCount(), 41U);
    }
}

/// Random values of a type; floating point ones of many magnitudes, some of them zeros of either sign.
template <class T>
std::vector<T> randomValues(std::mt19937_64& random, std::size_t count) {
    std::vector<T> values(count);
    for (T& value : values) {
        const std::uint64_t bits = random();
        if constexpr (std::is_integral_v<T>) {
            value = static_cast<T>(bits);
        } else {
            const int exponent = static_cast<int>(bits % 41) - 20;
            const double unit = static_cast<double>(bits >> 20) * 0x1p-44 - 0.5;
            value = static_cast<T>(std::ldexp(bits % 7 == 0 ? std::copysign(0.0, unit) : unit, exponent));
        }
    }
    return values;
}

TYPED_TEST(MomentArrays, EqualTheirElementsOneByOne) {
    using T = TypeParam;
    constexpr std::uint64_t kSeed = 20261121;
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", round " + std::to_string(round));
        CMatMomentEvaluator batch;
        CMatMomentEvaluator single;
        ReferenceMoments reference;
        for (int part = 0; part < 4; ++part) {
            const std::size_t count =
                round % 10 == 0 ? random() % 40000 : (round % 2 == 0 ? random() % 70 : random() % 600);
            std::vector<T> values = randomValues<T>(random, count);
            const int n = static_cast<int>(count);
            EXPECT_EQ(batch.AddValues(values.data(), n, kCode<T>), 1);
            for (const T value : values)
                EXPECT_EQ(single.AddValue(static_cast<double>(value)), 1);
            reference.addValues(values.data(), n);
        }
        expectSameBits(batch, reference);
        expectSameBits(single, reference);
        EXPECT_EQ(bitsOf(batch.GetMin()), bitsOf(reference.getMin()));
        EXPECT_EQ(bitsOf(batch.GetMax()), bitsOf(reference.getMax()));
        EXPECT_EQ(bitsOf(batch.GetMean()), bitsOf(reference.getMean()));
        EXPECT_EQ(bitsOf(batch.GetVariance()), bitsOf(reference.getVariance()));
        EXPECT_EQ(bitsOf(batch.GetStdDev()), bitsOf(reference.getStdDev()));
    }
}

TYPED_TEST(MomentArrays, EqualTheirElementsWhateverWasSummedBefore) {
    using T = TypeParam;
    constexpr std::uint64_t kSeed = 6101;
    std::mt19937_64 random(kSeed);
    // Sums around the places where the spacing of doubles changes, odd and even, integers and others.
    const double squares[] = {0.0,
                              0.5,
                              1.0,
                              kTwoTo53 - 1e12,
                              kTwoTo53 - 1.0,
                              kTwoTo53,
                              kTwoTo53 + 2.0,
                              kTwoTo53 + 4.0,
                              kTwoTo53 + 1e12 + 6.0,
                              kTwoTo54 - 2.0,
                              kTwoTo54,
                              kTwoTo54 + 4.0,
                              kTwoTo55 - 1e12,
                              kTwoTo55 - 4.0,
                              kTwoTo55,
                              kTwoTo55 + 8.0,
                              2 * kTwoTo55 - 8.0,
                              1e300,
                              kInfinity,
                              kNan};
    const double sums[] = {0.0, -0.0, 3.0, -7.25, kTwoTo53 - 5e8, kTwoTo53, -kTwoTo53 + 10.0, 1e300, kNan};
    for (const double square : squares) {
        for (const double sum : sums) {
            for (const std::size_t count : {1U, 15U, 16U, 33U, 300U, 9000U}) {
                if (count == 9000U && sum != 3.0) continue;
                SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", squares " << square << ", sum "
                                                << sum << ", count " << count);
                std::vector<T> values = randomValues<T>(random, count);
                CMatMomentEvaluator evaluator;
                setFields(evaluator, {sum, square, 100.0, -100.0, 5});
                ReferenceMoments reference{sum, square, 100.0, -100.0, 5};
                for (int round = 0; round < 2; ++round) {
                    evaluator.AddValues(values.data(), static_cast<int>(count), kCode<T>);
                    reference.addValues(values.data(), static_cast<int>(count));
                }
                expectSameBits(evaluator, reference);
            }
        }
    }
}

TYPED_TEST(MomentArrays, StandAtAnyAddress) {
    using T = TypeParam;
    std::mt19937_64 random(77);
    for (std::size_t offset = 0; offset < 16; ++offset) {
        const std::vector<T> values = randomValues<T>(random, 101);
        std::vector<char> bytes(offset + sizeof(T) * values.size());
        std::memcpy(bytes.data() + offset, values.data(), sizeof(T) * values.size());
        const std::vector<char> original = bytes;
        CMatMomentEvaluator evaluator;
        ReferenceMoments reference;
        evaluator.AddValues(bytes.data() + offset, 101, kCode<T>);
        reference.addValues(values.data(), 101);
        expectSameBits(evaluator, reference);
        EXPECT_EQ(bytes, original);
    }
}

TYPED_TEST(MomentArrays, AreTakenOneByOneByOtherRooms) {
    using T = TypeParam;
    constexpr std::uint64_t kSeed = 4711;
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 80; ++round) {
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", round " + std::to_string(round));
        std::vector<T> values = randomValues<T>(random, random() % 3000);
        if constexpr (std::is_same_v<T, double>) {
            if (!values.empty() && round % 3 == 0) values[random() % values.size()] = kNone;
        }
        CMatMomentEvaluator evaluator;
        ReferenceMoments reference;
        const std::uint32_t start =
            round % 4 == 0 ? 4294967295U - static_cast<std::uint32_t>(random() % 2000) : 0;
        setFields(evaluator, {0.0, 0.0, kNone, -kNone, start});
        reference.count = start;
        Moments::addEach<T>(evaluator, values.data(), values.size());
        for (const T value : values)
            reference.addValue(static_cast<double>(value));
        expectSameBits(evaluator, reference);
    }
}

TEST(MomentEvaluatorArrays, KeepTheFirstOfZerosOfBothSigns) {
    constexpr double kZeros[2] = {0.0, -0.0};
    for (std::size_t first = 0; first < 9; ++first) {
        for (std::size_t second = 0; second < 9; ++second) {
            if (first == second) continue;
            for (const double other : {5.0, -5.0}) {
                std::vector<double> values(9, other);
                values[first] = kZeros[0];
                values[second] = kZeros[1];
                CMatMomentEvaluator evaluator;
                ReferenceMoments reference;
                evaluator.AddValues(values.data(), 9);
                reference.addValues(values.data(), 9);
                expectSameBits(evaluator, reference);
                const double zero = other > 0.0 ? evaluator.GetMin() : evaluator.GetMax();
                EXPECT_EQ(std::signbit(zero), second < first);
            }
        }
    }
}

TEST(MomentEvaluatorArrays, KeepTheirRangeForNotANumber) {
    for (std::size_t place = 0; place < 7; ++place) {
        double values[7] = {4.0, 2.0, 9.0, 3.0, 8.0, 2.0, 9.0};
        values[place] = kNan;
        float floats[7];
        std::transform(std::begin(values), std::end(values), std::begin(floats),
                       [](double value) { return static_cast<float>(value); });
        CMatMomentEvaluator ofDoubles;
        CMatMomentEvaluator ofFloats;
        ofDoubles.AddValues(values, 7);
        ofFloats.AddValues(floats, 7);
        for (CMatMomentEvaluator* evaluator : {&ofDoubles, &ofFloats}) {
            EXPECT_EQ(evaluator->GetMin(), 2.0);
            EXPECT_EQ(evaluator->GetMax(), 9.0);
            EXPECT_EQ(evaluator->GetCount(), 7U);
            EXPECT_TRUE(std::isnan(evaluator->GetMean()));
        }
    }
    double allNan[6] = {kNan, kNan, kNan, kNan, kNan, kNan};
    CMatMomentEvaluator evaluator;
    evaluator.AddValues(allNan, 6);
    EXPECT_EQ(evaluator.GetMin(), kNone);
    EXPECT_EQ(evaluator.GetMax(), -kNone);
}

TEST(MomentEvaluatorArrays, OfExtremesSumExactly) {
    // The most that a block can hold, in every accumulator.
    constexpr int kCount = 3 * static_cast<int>(velquad::statistics::kNarrowBlock) + 7;
    std::vector<std::uint16_t> words(kCount, 65535);
    std::vector<std::uint8_t> bytes(kCount, 255);
    std::vector<std::int16_t> lowWords(kCount, -32768);
    std::vector<std::int8_t> lowBytes(kCount, -128);
    CMatMomentEvaluator evaluator;
    evaluator.AddValues(words.data(), kCount);
    EXPECT_EQ(fieldsOf(evaluator).sum, kCount * 65535.0);
    EXPECT_EQ(fieldsOf(evaluator).sumOfSquares, kCount * (65535.0 * 65535.0));
    evaluator.Reset();
    evaluator.AddValues(bytes.data(), kCount);
    EXPECT_EQ(fieldsOf(evaluator).sum, kCount * 255.0);
    EXPECT_EQ(fieldsOf(evaluator).sumOfSquares, kCount * 65025.0);
    evaluator.Reset();
    evaluator.AddValues(lowWords.data(), kCount, 3);
    EXPECT_EQ(fieldsOf(evaluator).sum, kCount * -32768.0);
    EXPECT_EQ(fieldsOf(evaluator).sumOfSquares, kCount * 1073741824.0);
    evaluator.Reset();
    evaluator.AddValues(lowBytes.data(), kCount, 1);
    EXPECT_EQ(fieldsOf(evaluator).sum, kCount * -128.0);
    EXPECT_EQ(fieldsOf(evaluator).sumOfSquares, kCount * 16384.0);
    EXPECT_EQ(evaluator.GetMin(), -128.0);
    EXPECT_EQ(evaluator.GetMax(), -128.0);
}

TEST(MomentEvaluatorArrays, OfWordsRoundAsOneByOneUpToTheLastBit) {
    // Full words reach 2^53 after two million elements; both limits are passed and the doubles round from then on.
    std::mt19937 random(5);
    std::vector<unsigned short> values(300000);
    for (unsigned short& value : values)
        value = static_cast<unsigned short>(65535 - random() % 1000);
    CMatMomentEvaluator evaluator;
    ReferenceMoments reference;
    bool hasPassedBoth = false;
    for (int round = 0; round < 40; ++round) {
        evaluator.AddValues(values.data(), 300000);
        reference.addValues(values.data(), 300000);
        expectSameBits(evaluator, reference);
        hasPassedBoth = hasPassedBoth || reference.sumOfSquares > kTwoTo55;
    }
    EXPECT_TRUE(hasPassedBoth);
}

}  // namespace
