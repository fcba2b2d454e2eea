#include "statistics/selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/regression_reference.h"

using velquad::statistics::kthSmallest;
using velquad::test::comparable;
using velquad::test::referenceSelect;

TEST(KthSmallest, TakesEveryRankOfAShortArray) {
    const std::vector<double> values{-1.0, 5.0, 1.0, 4.0, 2.0, 3.0};
    for (std::size_t k = 1; k <= 5; ++k) {
        std::vector<double> work = values;
        EXPECT_EQ(kthSmallest(work.data(), 5, k), static_cast<double>(k));
        EXPECT_EQ(work[0], -1.0) << "the leading element is not used";
    }
}

TEST(KthSmallest, HandlesOneAndTwoElements) {
    double one[] = {0.0, 7.0};
    EXPECT_EQ(kthSmallest(one, 1, 1), 7.0);
    double two[] = {0.0, 7.0, 3.0};
    EXPECT_EQ(kthSmallest(two, 2, 1), 3.0);
    EXPECT_EQ(kthSmallest(two, 2, 2), 7.0);
}

TEST(KthSmallest, AgreesWithSorting) {
    constexpr unsigned int kSeed = 6401;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    for (int round = 0; round < 500; ++round) {
        const std::size_t n = 1 + random() % 200;
        // Few distinct values now and then, so that ties are many.
        const unsigned int distinct = round % 3 == 0 ? 4 : 1000000;
        std::vector<double> values(n + 1, 0.0);
        for (std::size_t i = 1; i <= n; ++i)
            values[i] = static_cast<double>(random() % distinct) - 2.0;
        std::vector<double> sorted(values.begin() + 1, values.end());
        std::sort(sorted.begin(), sorted.end());
        const std::size_t k = 1 + random() % n;
        EXPECT_EQ(kthSmallest(values.data(), n, k), sorted[k - 1]) << "n " << n << ", k " << k;
        EXPECT_TRUE(std::is_permutation(sorted.begin(), sorted.end(), values.begin() + 1));
    }
}

TEST(KthSmallest, FindsMediansOfSortedReversedAndEqualValues) {
    constexpr std::size_t kCount = 10001;
    std::vector<double> rising(kCount + 1), falling(kCount + 1), equal(kCount + 1, 3.0);
    for (std::size_t i = 1; i <= kCount; ++i) {
        rising[i] = static_cast<double>(i);
        falling[i] = static_cast<double>(kCount + 1 - i);
    }
    EXPECT_EQ(kthSmallest(rising.data(), kCount, 5001), 5001.0);
    EXPECT_EQ(kthSmallest(falling.data(), kCount, 5001), 5001.0);
    EXPECT_EQ(kthSmallest(equal.data(), kCount, 5001), 3.0);
}

TEST(KthSmallest, StaysWithinItsRangeWithNotANumbersAndTakesTheSameZeros) {
    constexpr unsigned int kSeed = 6402;
    SCOPED_TRACE(kSeed);
    constexpr double kOdd[] = {0.0,
                               -0.0,
                               std::numeric_limits<double>::quiet_NaN(),
                               1.0,
                               -1.0,
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity()};
    std::mt19937 random(kSeed);
    for (int round = 0; round < 2000; ++round) {
        const std::size_t n = 1 + random() % 40;
        std::vector<double> values(n + 1, 0.0);
        for (std::size_t i = 1; i <= n; ++i)
            values[i] = kOdd[random() % 7];
        std::vector<double> reference = values;
        const std::size_t k = 1 + random() % n;
        EXPECT_EQ(comparable(kthSmallest(values.data(), n, k)), comparable(referenceSelect(reference, k, n)));
        for (std::size_t i = 0; i <= n; ++i)
            EXPECT_EQ(comparable(values[i]), comparable(reference[i]));
    }
}
