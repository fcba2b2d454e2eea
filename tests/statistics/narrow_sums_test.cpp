#include "statistics/narrow_sums.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/correlation_reference.h"
#include "tests/support/kernel_levels.h"
#include "tests/support/moment_reference.h"
#include "velquad/statistics.h"

namespace {

using velquad::statistics::kNarrowBlock;
using velquad::statistics::narrowKernelsFor;
using velquad::statistics::NarrowPairSums;
using velquad::statistics::NarrowSums;
using velquad::test::forEachKernelLevel;

/// The same number, with room for its products.
template <class T>
std::int64_t widened(T element) {
    return element;
}

template <class T>
void expectSums(const std::vector<T>& x, const std::vector<T>& y) {
    NarrowSums expected{0, 0, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
    NarrowPairSums expectedPairs{};
    std::size_t odd = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const std::int64_t a = widened(x[i]);
        const std::int64_t b = widened(y[i]);
        expected.sum += a;
        expected.sumOfSquares += a * a;
        if (a < expected.min) expected.min = static_cast<int>(a);
        if (a > expected.max) expected.max = static_cast<int>(a);
        if (a % 2 != 0) ++odd;
        expectedPairs.x += a;
        expectedPairs.y += b;
        expectedPairs.xx += a * a;
        expectedPairs.yy += b * b;
        expectedPairs.xy += a * b;
    }
    const NarrowSums sums = narrowKernelsFor<T>().sums(x.data(), x.size());
    EXPECT_EQ(sums.sum, expected.sum);
    EXPECT_EQ(sums.sumOfSquares, expected.sumOfSquares);
    EXPECT_EQ(sums.min, expected.min);
    EXPECT_EQ(sums.max, expected.max);
    const NarrowPairSums pairs = narrowKernelsFor<T>().pairSums(x.data(), y.data(), x.size());
    EXPECT_EQ(pairs.x, expectedPairs.x);
    EXPECT_EQ(pairs.y, expectedPairs.y);
    EXPECT_EQ(pairs.xx, expectedPairs.xx);
    EXPECT_EQ(pairs.yy, expectedPairs.yy);
    EXPECT_EQ(pairs.xy, expectedPairs.xy);
    EXPECT_EQ(narrowKernelsFor<T>().oddCount(x.data(), x.size()), odd);
}

template <class T>
class NarrowSumsOf : public testing::Test {};
using NarrowTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t>;
TYPED_TEST_SUITE(NarrowSumsOf, NarrowTypes);

TYPED_TEST(NarrowSumsOf, AreExactForEveryCount) {
    using T = TypeParam;
    forEachKernelLevel([] {
        constexpr unsigned int kSeed = 99;
        std::mt19937 random(kSeed);
        for (std::size_t count = 1; count <= 300; ++count) {
            SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", count " << count);
            std::vector<T> x(count);
            std::vector<T> y(count);
            for (std::size_t i = 0; i < count; ++i) {
                x[i] = static_cast<T>(random());
                y[i] = static_cast<T>(random());
            }
            expectSums(x, y);
        }
    });
}

TYPED_TEST(NarrowSumsOf, AreExactForBlocksOfExtremes) {
    using T = TypeParam;
    const T lowest = std::numeric_limits<T>::min();
    const T highest = std::numeric_limits<T>::max();
    forEachKernelLevel([&] {
        for (const std::size_t count : {kNarrowBlock, kNarrowBlock - 1, std::size_t{77}}) {
            for (const T a : {lowest, highest, T{0}}) {
                for (const T b : {lowest, highest, T{1}})
                    expectSums(std::vector<T>(count, a), std::vector<T>(count, b));
            }
            // Both extremes by turns.
            std::vector<T> x(count, lowest);
            std::vector<T> y(count, highest);
            for (std::size_t i = 0; i < count; i += 2)
                std::swap(x[i], y[i]);
            expectSums(x, y);
            expectSums(x, x);
        }
    });
}

TYPED_TEST(NarrowSumsOf, FindTheRangeWhereverItIs) {
    using T = TypeParam;
    forEachKernelLevel([] {
        for (std::size_t place = 0; place < 200; ++place) {
            std::vector<T> values(200, T{50});
            values[place] = T{3};
            values[199 - place] = T{100};
            const NarrowSums sums = narrowKernelsFor<T>().sums(values.data(), values.size());
            EXPECT_EQ(sums.min, 3);
            EXPECT_EQ(sums.max, 100);
        }
    });
}

TEST(Levels, GiveTheSameMomentsAndCorrelation) {
    // Words whose squares pass 2^53 and 2^55 on the way.
    std::mt19937 random(12);
    std::vector<unsigned short> x(400000);
    std::vector<unsigned short> y(400000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = static_cast<unsigned short>(65535 - random() % 100);
        y[i] = static_cast<unsigned short>(random());
    }
    velquad::test::ReferenceMoments moments;
    velquad::test::ReferenceCorrelation correlation;
    for (int round = 0; round < 30; ++round) {
        moments.addValues(x.data(), 400000);
        correlation.addAsIntegers(x.data(), y.data(), 400000);
    }
    forEachKernelLevel([&] {
        CMatMomentEvaluator momentEvaluator;
        CMatCorrelationEvaluator correlationEvaluator;
        for (int round = 0; round < 30; ++round) {
            momentEvaluator.AddValues(x.data(), 400000);
            correlationEvaluator.AddValuePairs(x.data(), y.data(), 400000);
        }
        EXPECT_EQ(momentEvaluator.GetMean(), moments.getMean());
        EXPECT_EQ(momentEvaluator.GetVariance(), moments.getVariance());
        EXPECT_EQ(momentEvaluator.GetMin(), moments.getMin());
        EXPECT_EQ(momentEvaluator.GetMax(), moments.getMax());
        EXPECT_EQ(correlationEvaluator.ComputeCorrelation(), correlation.correlation());
    });
}

}  // namespace
