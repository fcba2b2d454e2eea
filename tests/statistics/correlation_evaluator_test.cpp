#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/correlation_reference.h"
#include "velquad/statistics.h"

namespace {

using velquad::test::ReferenceCorrelation;

constexpr double kNone = std::numeric_limits<double>::max();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kTwoTo53 = 9007199254740992.0;

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

static_assert(sizeof(ReferenceCorrelation) == sizeof(CMatCorrelationEvaluator));

/// The fields of an evaluator stand as those of the reference do.
ReferenceCorrelation fieldsOf(const CMatCorrelationEvaluator& evaluator) {
    ReferenceCorrelation fields;
    std::memcpy(&fields, reinterpret_cast<const char*>(&evaluator), sizeof fields);
    return fields;
}

void setFields(CMatCorrelationEvaluator& evaluator, const ReferenceCorrelation& fields) {
    std::memcpy(reinterpret_cast<char*>(&evaluator), &fields, sizeof fields);
}

std::uint64_t bitsOf(double value) {
    if (std::isnan(value)) value = kNan;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void expectSameBits(CMatCorrelationEvaluator& evaluator, const ReferenceCorrelation& reference) {
    const ReferenceCorrelation fields = fieldsOf(evaluator);
    EXPECT_EQ(bitsOf(fields.sumX), bitsOf(reference.sumX)) << fields.sumX << " " << reference.sumX;
    EXPECT_EQ(bitsOf(fields.sumXX), bitsOf(reference.sumXX)) << fields.sumXX << " " << reference.sumXX;
    EXPECT_EQ(bitsOf(fields.sumY), bitsOf(reference.sumY)) << fields.sumY << " " << reference.sumY;
    EXPECT_EQ(bitsOf(fields.sumYY), bitsOf(reference.sumYY)) << fields.sumYY << " " << reference.sumYY;
    EXPECT_EQ(bitsOf(fields.sumXY), bitsOf(reference.sumXY)) << fields.sumXY << " " << reference.sumXY;
    EXPECT_EQ(fields.count, reference.count);
    EXPECT_EQ(bitsOf(evaluator.ComputeCorrelation()), bitsOf(reference.correlation()));
}

TEST(CorrelationEvaluator, HasNoResultWithoutPairs) {
    CMatCorrelationEvaluator evaluator;
    EXPECT_EQ(evaluator.ComputeCorrelation(), kNone);
    expectSameBits(evaluator, ReferenceCorrelation());
}

TEST(CorrelationEvaluator, IsZeroForOnePair) {
    CMatCorrelationEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValuePair(3.0, -4.0), 1);
    EXPECT_EQ(evaluator.ComputeCorrelation(), 0.0);
}

TEST(CorrelationEvaluator, IsOneOnARisingLine) {
    CMatCorrelationEvaluator evaluator;
    for (int k = 0; k < 50; ++k)
        evaluator.AddValuePair(k, 2.5 * k - 7.0);
    EXPECT_NEAR(evaluator.ComputeCorrelation(), 1.0, 1e-12);
}

TEST(CorrelationEvaluator, IsMinusOneOnAFallingLine) {
    CMatCorrelationEvaluator evaluator;
    for (int k = 0; k < 50; ++k)
        evaluator.AddValuePair(k, 100.0 - 0.25 * k);
    EXPECT_NEAR(evaluator.ComputeCorrelation(), -1.0, 1e-12);
}

TEST(CorrelationEvaluator, IsZeroWhereOneChannelIsConstant) {
    CMatCorrelationEvaluator constantX;
    CMatCorrelationEvaluator constantY;
    for (int k = 0; k < 64; ++k) {
        constantX.AddValuePair(4.0, k * k);
        constantY.AddValuePair(k * k, 4.0);
    }
    EXPECT_EQ(constantX.ComputeCorrelation(), 0.0);
    EXPECT_EQ(constantY.ComputeCorrelation(), 0.0);
}

TEST(CorrelationEvaluator, MeasuresAFewPairs) {
    // Means 2.5 and 3, mean of squares 7.5 and 11.5, mean of products 8.75: 1.25 / sqrt(1.25 * 2.5).
    CMatCorrelationEvaluator evaluator;
    evaluator.AddValuePair(1.0, 1.0);
    evaluator.AddValuePair(2.0, 4.0);
    evaluator.AddValuePair(3.0, 2.0);
    evaluator.AddValuePair(4.0, 5.0);
    EXPECT_EQ(evaluator.ComputeCorrelation(), 1.25 / std::sqrt(1.25 * 2.5));
    EXPECT_EQ(evaluator.AddValuePair(kNone, 0.0), 1);
    EXPECT_EQ(fieldsOf(evaluator).count, 5U);
}

TEST(CorrelationEvaluator, IsNotANumberForANegativeVariance) {
    // Rounding leaves one variance below zero and the other above it.
    CMatCorrelationEvaluator evaluator;
    setFields(evaluator, {10.0, std::nextafter(10.0, 0.0), 0.0, 10.0, 1.0, 10});
    EXPECT_TRUE(std::isnan(evaluator.ComputeCorrelation()));
    // Two of them give a number again.
    setFields(evaluator, {10.0, 9.0, 10.0, 9.0, 5.0, 10});
    EXPECT_NEAR(evaluator.ComputeCorrelation(), -5.0, 1e-12);
}

TEST(CorrelationEvaluator, IsNotLimitedToOne) {
    CMatCorrelationEvaluator evaluator;
    setFields(evaluator, {0.0, 1.0, 0.0, 1.0, 3.0, 2});
    EXPECT_EQ(evaluator.ComputeCorrelation(), 3.0);
}

TEST(CorrelationEvaluator, WrapsTheCount) {
    CMatCorrelationEvaluator evaluator;
    setFields(evaluator, {1.0, 1.0, 1.0, 1.0, 1.0, 4294967295U});
    EXPECT_EQ(evaluator.AddValuePair(1.0, 1.0), 1);
    EXPECT_EQ(evaluator.ComputeCorrelation(), kNone);
    EXPECT_EQ(fieldsOf(evaluator).sumX, 2.0);
}

TEST(CorrelationEvaluator, CopiesAreIndependent) {
    CMatCorrelationEvaluator original;
    original.AddValuePair(1.0, 2.0);
    CMatCorrelationEvaluator copy(original);
    CMatCorrelationEvaluator assigned;
    EXPECT_EQ(&(assigned = original), &assigned);
    original.AddValuePair(5.0, 6.0);
    for (CMatCorrelationEvaluator* evaluator : {&copy, &assigned})
        expectSameBits(*evaluator, {1.0, 1.0, 2.0, 4.0, 2.0, 1});
    assigned = *&assigned;
    EXPECT_EQ(fieldsOf(assigned).count, 1U);
}

TEST(CorrelationEvaluator, AllocatesNothing) {
    const std::size_t before = velquad::test::allocationCount();
    CMatCorrelationEvaluator evaluator;
    unsigned char values[40] = {1, 2, 3};
    evaluator.AddValuePairs(values, values, 40);
    EXPECT_NEAR(evaluator.ComputeCorrelation(), 1.0, 1e-12);
    EXPECT_EQ(velquad::test::allocationCount(), before);
}

TEST(CorrelationArrays, OfNoPairsChangeNothing) {
    CMatCorrelationEvaluator evaluator;
    evaluator.AddValuePair(2.0, 3.0);
    EXPECT_EQ(evaluator.AddValuePairs(static_cast<unsigned char*>(nullptr), nullptr, 0), 1);
    EXPECT_EQ(evaluator.AddValuePairs(static_cast<unsigned short*>(nullptr), nullptr, 0), 1);
    EXPECT_EQ(evaluator.AddValuePairs(static_cast<float*>(nullptr), nullptr, 0), 1);
    EXPECT_EQ(evaluator.AddValuePairs(static_cast<double*>(nullptr), nullptr, 0), 1);
    for (unsigned int code = 1; code <= 8; ++code)
        EXPECT_EQ(evaluator.AddValuePairs(nullptr, nullptr, 0, code), 1);
    expectSameBits(evaluator, {2.0, 4.0, 3.0, 9.0, 6.0, 1});
}

TEST(CorrelationArrays, OfNegativeCountLowerTheCount) {
    CMatCorrelationEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValuePairs(static_cast<unsigned char*>(nullptr), nullptr, -1), 1);
    EXPECT_EQ(fieldsOf(evaluator).count, 4294967295U);
    EXPECT_EQ(evaluator.AddValuePairs(static_cast<unsigned short*>(nullptr), nullptr, -2), 1);
    EXPECT_EQ(fieldsOf(evaluator).count, 4294967293U);
    EXPECT_EQ(evaluator.AddValuePairs(static_cast<float*>(nullptr), nullptr, -1), 1);
    EXPECT_EQ(
        evaluator.AddValuePairs(static_cast<double*>(nullptr), nullptr, std::numeric_limits<int>::min()), 1);
    EXPECT_EQ(fieldsOf(evaluator).count, 2147483644U);
    for (unsigned int code = 1; code <= 8; ++code)
        EXPECT_EQ(evaluator.AddValuePairs(nullptr, nullptr, -1, code), 1);
    expectSameBits(evaluator, {0.0, 0.0, 0.0, 0.0, 0.0, 2147483636U});
}

TEST(CorrelationArrays, OfAnUnknownTypeChangeNothing) {
    double values[2] = {1.0, 2.0};
    for (const unsigned int code : {0U, 9U, 10U, 4294967295U}) {
        CMatCorrelationEvaluator evaluator;
        EXPECT_EQ(evaluator.AddValuePairs(values, values, 2, code), 0);
        EXPECT_EQ(evaluator.AddValuePairs(values, values, -1, code), 0);
        expectSameBits(evaluator, ReferenceCorrelation());
    }
}

TEST(CorrelationArrays, ReadBytesBySignednessOfTheirType) {
    unsigned char x[2] = {0, 255};
    unsigned char y[2] = {255, 2};
    CMatCorrelationEvaluator asUnsigned;
    EXPECT_EQ(asUnsigned.AddValuePairs(x, y, 2, 2), 1);
    expectSameBits(asUnsigned, {255.0, 65025.0, 257.0, 65029.0, 510.0, 2});
    CMatCorrelationEvaluator asSigned;
    EXPECT_EQ(asSigned.AddValuePairs(x, y, 2, 1), 1);
    expectSameBits(asSigned, {-1.0, 1.0, 1.0, 5.0, -2.0, 2});
}

TEST(CorrelationArrays, OfUnsignedIntegersRoundOnce) {
    // Each square is 1 and would be lost in a sum of 2^53; together they are not.
    CMatCorrelationEvaluator typed;
    CMatCorrelationEvaluator untyped;
    setFields(typed, {0.0, kTwoTo53, 0.0, kTwoTo53, kTwoTo53, 0});
    setFields(untyped, {0.0, kTwoTo53, 0.0, kTwoTo53, kTwoTo53, 0});
    std::vector<unsigned char> bytes(100, 1);
    EXPECT_EQ(typed.AddValuePairs(bytes.data(), bytes.data(), 100), 1);
    EXPECT_EQ(untyped.AddValuePairs(bytes.data(), bytes.data(), 100, 2), 1);
    EXPECT_EQ(fieldsOf(typed).sumXX, kTwoTo53 + 100.0);
    EXPECT_EQ(fieldsOf(typed).sumYY, kTwoTo53 + 100.0);
    EXPECT_EQ(fieldsOf(typed).sumXY, kTwoTo53 + 100.0);
    EXPECT_EQ(fieldsOf(untyped).sumXX, kTwoTo53);
    EXPECT_EQ(fieldsOf(untyped).sumYY, kTwoTo53);
    EXPECT_EQ(fieldsOf(untyped).sumXY, kTwoTo53);
    EXPECT_EQ(fieldsOf(typed).sumX, 100.0);
    EXPECT_EQ(fieldsOf(untyped).sumX, 100.0);
}

TEST(CorrelationArrays, OfExtremesSumExactly) {
    constexpr int kCount = 70001;
    struct Case {
        unsigned short x;
        unsigned short y;
    };
    for (const Case& ends :
         {Case{65535, 65535}, Case{0, 0}, Case{0, 65535}, Case{65535, 0}, Case{32768, 32767}}) {
        std::vector<unsigned short> x(kCount, ends.x);
        std::vector<unsigned short> y(kCount, ends.y);
        CMatCorrelationEvaluator evaluator;
        evaluator.AddValuePairs(x.data(), y.data(), kCount);
        const double a = ends.x;
        const double b = ends.y;
        expectSameBits(evaluator, {kCount * a, kCount * (a * a), kCount * b, kCount * (b * b),
                                   kCount * (a * b), kCount});
        EXPECT_EQ(evaluator.ComputeCorrelation(), 0.0);
    }
    std::vector<unsigned char> bytes(kCount, 255);
    CMatCorrelationEvaluator evaluator;
    evaluator.AddValuePairs(bytes.data(), bytes.data(), kCount);
    expectSameBits(evaluator, {kCount * 255.0, kCount * 65025.0, kCount * 255.0, kCount * 65025.0,
                               kCount * 65025.0, kCount});
}

template <class T>
class CorrelatedArrays : public testing::Test {};
using ElementTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                                    std::uint32_t, float, double>;
TYPED_TEST_SUITE(CorrelatedArrays, ElementTypes);

template <class T>
std::vector<T> randomValues(std::mt19937_64& random, std::size_t count) {
    std::vector<T> values(count);
    for (T& value : values) {
        const std::uint64_t bits = random();
        if constexpr (std::is_integral_v<T>) {
            value = static_cast<T>(bits);
        } else {
            const double unit = static_cast<double>(bits >> 20) * 0x1p-44 - 0.5;
            value = static_cast<T>(std::ldexp(unit, static_cast<int>(bits % 41) - 20));
        }
    }
    return values;
}

TYPED_TEST(CorrelatedArrays, EqualTheirPairsOneByOne) {
    using T = TypeParam;
    constexpr std::uint64_t kSeed = 630;
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", round " + std::to_string(round));
        CMatCorrelationEvaluator batch;
        CMatCorrelationEvaluator single;
        ReferenceCorrelation reference;
        for (int part = 0; part < 3; ++part) {
            const std::size_t count = round % 10 == 0 ? random() % 50000 : random() % 150;
            std::vector<T> x = randomValues<T>(random, count);
            std::vector<T> y = randomValues<T>(random, count);
            EXPECT_EQ(batch.AddValuePairs(x.data(), y.data(), static_cast<int>(count), kCode<T>), 1);
            reference.addInOrder(x.data(), y.data(), static_cast<int>(count));
            for (std::size_t i = 0; i < count; ++i)
                EXPECT_EQ(single.AddValuePair(static_cast<double>(x[i]), static_cast<double>(y[i])), 1);
        }
        expectSameBits(batch, reference);
        expectSameBits(single, reference);
    }
}

TYPED_TEST(CorrelatedArrays, EqualTheirPairsWhateverWasSummedBefore) {
    using T = TypeParam;
    constexpr std::uint64_t kSeed = 631;
    std::mt19937_64 random(kSeed);
    for (const double start :
         {0.0, 0.5, 3.0, kTwoTo53 - 8e13, kTwoTo53 - 1e6, kTwoTo53, kTwoTo53 + 2.0, -kTwoTo53 + 1e6,
          4 * kTwoTo53, 1e300, std::numeric_limits<double>::infinity(), kNan}) {
        for (int field = 0; field < 5; ++field) {
            for (const std::size_t count : {1U, 20U, 3000U}) {
                SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", start " << start << ", field "
                                                << field << ", count " << count);
                std::vector<T> x = randomValues<T>(random, count);
                std::vector<T> y = randomValues<T>(random, count);
                double sums[5] = {};
                sums[field] = start;
                ReferenceCorrelation reference{sums[0], sums[1], sums[2], sums[3], sums[4], 9};
                CMatCorrelationEvaluator evaluator;
                setFields(evaluator, reference);
                evaluator.AddValuePairs(x.data(), y.data(), static_cast<int>(count), kCode<T>);
                reference.addInOrder(x.data(), y.data(), static_cast<int>(count));
                expectSameBits(evaluator, reference);
            }
        }
    }
}

TYPED_TEST(CorrelatedArrays, StandAtAnyAddress) {
    using T = TypeParam;
    std::mt19937_64 random(5);
    for (std::size_t offset = 0; offset < 16; ++offset) {
        const std::vector<T> x = randomValues<T>(random, 77);
        const std::vector<T> y = randomValues<T>(random, 77);
        std::vector<char> bytesX(offset + sizeof(T) * 77);
        std::vector<char> bytesY(sizeof(T) * 77 + 15 - offset);
        std::memcpy(bytesX.data() + offset, x.data(), sizeof(T) * 77);
        std::memcpy(bytesY.data() + 15 - offset, y.data(), sizeof(T) * 77);
        CMatCorrelationEvaluator evaluator;
        ReferenceCorrelation reference;
        evaluator.AddValuePairs(bytesX.data() + offset, bytesY.data() + 15 - offset, 77, kCode<T>);
        reference.addInOrder(x.data(), y.data(), 77);
        expectSameBits(evaluator, reference);
    }
}

/// The forms with a type of their own.
template <class T>
class TypedCorrelatedArrays : public testing::Test {};
using UnsignedTypes = testing::Types<unsigned char, unsigned short>;
TYPED_TEST_SUITE(TypedCorrelatedArrays, UnsignedTypes);

TYPED_TEST(TypedCorrelatedArrays, EqualPlainSumsOfIntegers) {
    using T = TypeParam;
    constexpr std::uint64_t kSeed = 632;
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("seed " + std::to_string(kSeed) + ", round " + std::to_string(round));
        CMatCorrelationEvaluator evaluator;
        ReferenceCorrelation reference;
        reference.sumXX = round % 3 == 0 ? 0.0 : 1e15 * static_cast<double>(random() % 100);
        reference.sumX = round % 5 == 0 ? 0.3 : 0.0;
        setFields(evaluator, reference);
        for (int part = 0; part < 2; ++part) {
            const std::size_t count = round % 50 == 0 ? 100000 + random() % 500 : random() % 300;
            std::vector<T> x = randomValues<T>(random, count);
            std::vector<T> y = randomValues<T>(random, count);
            EXPECT_EQ(evaluator.AddValuePairs(x.data(), y.data(), static_cast<int>(count)), 1);
            reference.addAsIntegers(x.data(), y.data(), static_cast<int>(count));
        }
        expectSameBits(evaluator, reference);
    }
}

TYPED_TEST(TypedCorrelatedArrays, FitTheirSumsForEveryPositiveCount) {
    // The bound that sends a call to the other way of summing is met by negative counts only.
    const std::uint64_t limit = std::numeric_limits<TypeParam>::max();
    for (const std::int64_t count : {1, 2, 1000000, std::numeric_limits<int>::max()})
        EXPECT_LE(static_cast<std::uint64_t>(count) * limit * limit, 9223372036854775807U);
    for (const std::int64_t count : {-1, -1000, std::numeric_limits<int>::min()})
        EXPECT_GT(static_cast<std::uint64_t>(count) * limit * limit, 9223372036854775807U);
}

TEST(CorrelationArrays, OfFloatsAndDoublesKeepTheOrderOfTheirPairs) {
    std::vector<double> x{1e16, 1.0, -1e16, 1.0};
    std::vector<double> y{1.0, 1e16, 1.0, -1e16};
    CMatCorrelationEvaluator evaluator;
    EXPECT_EQ(evaluator.AddValuePairs(x.data(), y.data(), 4), 1);
    EXPECT_EQ(fieldsOf(evaluator).sumX, 1.0);
    EXPECT_EQ(fieldsOf(evaluator).sumY, 0.0);
    std::vector<float> a{16777216.0F, 1.5F, -16777216.0F};
    std::vector<float> b{1.0F, 2.0F, 3.0F};
    CMatCorrelationEvaluator ofFloats;
    EXPECT_EQ(ofFloats.AddValuePairs(a.data(), b.data(), 3), 1);
    EXPECT_EQ(fieldsOf(ofFloats).sumX, 1.5);
    EXPECT_EQ(fieldsOf(ofFloats).sumXY, 16777216.0 + 3.0 - 50331648.0);
}

}  // namespace
