#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/solver_reference.h"
#include "velquad/fitting.h"

namespace {

using velquad::test::allocationCount;
using velquad::test::failAllocation;
using velquad::test::gaussJordanLiterally;
using velquad::test::hasAllocationFailed;
using velquad::test::liveAllocations;
using velquad::test::OneBasedMatrix;

using Values = std::vector<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kOutside = -77.25;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Same bits, any two not-a-numbers being the same.
bool sameBits(const Values& first, const Values& second) {
    if (first.size() != second.size()) return false;
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (std::isnan(first[i]) && std::isnan(second[i])) continue;
        if (std::memcmp(&first[i], &second[i], sizeof(double)) != 0) return false;
    }
    return true;
}

TEST(GaussJordan, InvertsAndSolves) {
    OneBasedMatrix a(2, 2, Values{4, 2, 1, 1});
    OneBasedMatrix b(2, 3, Values{2, 4, 6, 1, 1, 2});
    EXPECT_TRUE(matGaussJordanElimination(a.table(), 2, b.table(), 3));
    EXPECT_EQ(a.values(), (Values{0.5, -1.0, -0.5, 2.0}));
    EXPECT_EQ(b.values(), (Values{0, 1, 1, 1, 0, 1}));
}

TEST(GaussJordan, InvertsASingleNumber) {
    OneBasedMatrix a(1, 1, Values{4});
    OneBasedMatrix b(1, 1, Values{2});
    EXPECT_TRUE(matGaussJordanElimination(a.table(), 1, b.table(), 1));
    EXPECT_EQ(a.at(1, 1), 0.25);
    EXPECT_EQ(b.at(1, 1), 0.5);
}

TEST(GaussJordan, PivotsOverAZeroDiagonal) {
    OneBasedMatrix a(2, 2, Values{0, 1, 1, 0});
    EXPECT_TRUE(matInvertMatrix(a.table(), 2, nullptr, 0));
    EXPECT_EQ(a.values(), (Values{0, 1, 1, 0}));
}

TEST(GaussJordan, RefusesSizesBelowOne) {
    OneBasedMatrix a(1, 1, Values{4});
    for (const int n : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_FALSE(matGaussJordanElimination(a.table(), n, nullptr, 0));
        EXPECT_FALSE(matInvertMatrix(a.table(), n, nullptr, 0));
        EXPECT_FALSE(matInvertMatrix(a.table(), a.table(), n));
    }
    EXPECT_FALSE(matGaussJordanElimination(a.table(), 1, nullptr, -1));
    EXPECT_EQ(a.at(1, 1), 4.0);
}

TEST(GaussJordan, RefusesZerosAndEqualRows) {
    OneBasedMatrix zeros(3, 3);
    EXPECT_FALSE(matGaussJordanElimination(zeros.table(), 3, nullptr, 0));
    OneBasedMatrix equalRows(2, 2, Values{1, 2, 1, 2});
    EXPECT_FALSE(matGaussJordanElimination(equalRows.table(), 2, nullptr, 0));
}

TEST(GaussJordan, BoundOfThePivotIsAbsolute) {
    const double epsilon = 2.220446049250313e-16;
    for (const double pivot : {epsilon, -epsilon, 1e-15}) {
        OneBasedMatrix a(1, 1, Values{pivot});
        EXPECT_TRUE(matGaussJordanElimination(a.table(), 1, nullptr, 0)) << pivot;
        EXPECT_EQ(a.at(1, 1), 1.0 / pivot);
    }
    for (const double pivot : {std::nextafter(epsilon, 0.0), -std::nextafter(epsilon, 0.0), 1e-17, 0.0}) {
        OneBasedMatrix a(1, 1, Values{pivot});
        EXPECT_FALSE(matGaussJordanElimination(a.table(), 1, nullptr, 0)) << pivot;
    }
    // The second pivot alone is too small; scaled, the same matrix is inverted.
    OneBasedMatrix smallPivot(2, 2, Values{1, 0, 0, 1e-17});
    EXPECT_FALSE(matGaussJordanElimination(smallPivot.table(), 2, nullptr, 0));
    OneBasedMatrix scaledPivot(2, 2, Values{1e17, 0, 0, 1});
    EXPECT_TRUE(matGaussJordanElimination(scaledPivot.table(), 2, nullptr, 0));
    EXPECT_EQ(scaledPivot.values(), (Values{1.0 / 1e17, 0, 0, 1}));
    OneBasedMatrix tiny(2, 2, Values{1e-17, 0, 0, 3e-17});
    EXPECT_FALSE(matGaussJordanElimination(tiny.table(), 2, nullptr, 0));
    OneBasedMatrix scaled(2, 2, Values{1, 0, 0, 4});
    EXPECT_TRUE(matGaussJordanElimination(scaled.table(), 2, nullptr, 0));
    EXPECT_EQ(scaled.values(), (Values{1, 0, 0, 0.25}));
}

TEST(GaussJordan, LeavesAPartlyReducedMatrix) {
    // The last of the ones is the pivot; the rest then is 0.
    OneBasedMatrix a(2, 2, Values{1, 1, 1, 1});
    OneBasedMatrix b(2, 1, Values{5, 7});
    EXPECT_FALSE(matGaussJordanElimination(a.table(), 2, b.table(), 1));
    EXPECT_EQ(a.values(), (Values{0, -1, 1, 1}));
    EXPECT_EQ(b.values(), (Values{-2, 7}));
}

TEST(GaussJordan, TakesTheLastOfEqualCandidates) {
    // With the last pivot first, row 2 is reduced by row 3 and so on; the first would leave other bits in between.
    OneBasedMatrix a(3, 3, Values{2, -2, 1, 2, 1, -2, 1, 2, -2});
    OneBasedMatrix expected = a;
    EXPECT_TRUE(matGaussJordanElimination(a.table(), 3, nullptr, 0));
    EXPECT_TRUE(gaussJordanLiterally(expected.table(), 3, nullptr, 0));
    EXPECT_TRUE(sameBits(a.values(), expected.values()));

    // One step shows which pivot was taken: a singular matrix of rank 1 stops in the second.
    OneBasedMatrix rankOne(2, 2, Values{1, -1, -1, 1});
    EXPECT_FALSE(matGaussJordanElimination(rankOne.table(), 2, nullptr, 0));
    EXPECT_EQ(rankOne.values(), (Values{0, 1, -1, 1}));
}

TEST(GaussJordan, EndsWhereNothingButNotANumbersIsLeft) {
    OneBasedMatrix a(2, 2, Values{kNan, kNan, kNan, kNan});
    EXPECT_FALSE(matGaussJordanElimination(a.table(), 2, nullptr, 0));
    OneBasedMatrix oneNumber(2, 2, Values{kNan, kNan, kNan, 2});
    EXPECT_FALSE(matGaussJordanElimination(oneNumber.table(), 2, nullptr, 0));
    EXPECT_EQ(oneNumber.at(2, 2), 0.5);
}

/// Elements of one kind or another, so that ties, zeros and singular matrices come about.
double randomElement(std::mt19937_64& random, int kind) {
    switch (kind) {
        case 0:
            return std::uniform_real_distribution<double>(-1.0, 1.0)(random);
        case 1:
            return static_cast<double>(std::uniform_int_distribution<int>(-2, 2)(random));
        case 2:
            return std::uniform_int_distribution<int>(0, 7)(random) == 0 ? kNan : 0.5;
        case 3:
            return std::uniform_int_distribution<int>(0, 7)(random) == 0
                       ? kInfinity
                       : std::uniform_real_distribution<double>(-1.0, 1.0)(random);
        default:
            return std::uniform_int_distribution<int>(0, 2)(random) == 0
                       ? -0.0
                       : 1e-16 * static_cast<double>(random() % 7U);
    }
}

TEST(GaussJordan, EndsForRowsThatOverlapAndStaysWithinThem) {
    double shared[] = {kOutside, -1, -2, 2};
    double last[] = {kOutside, 1, 2, 1};
    double* rows[] = {nullptr, shared, shared, last};
    EXPECT_FALSE(matGaussJordanElimination(rows, 3, nullptr, 0));
    std::mt19937 random(10);
    for (int round = 0; round < 3000; ++round) {
        SCOPED_TRACE(round);
        double values[16];
        std::fill_n(values, 16, kOutside);
        for (int i = 4; i < 12; ++i)
            values[i] = static_cast<double>(random() % 5) - 2;
        double* table[4] = {};
        for (int row = 1; row <= 3; ++row)
            table[row] = values + 3 + random() % 6;
        matGaussJordanElimination(table, 3, table, 3);
        for (int i = 0; i < 4; ++i) {
            ASSERT_EQ(values[i], kOutside);
            ASSERT_EQ(values[12 + i], kOutside);
        }
    }
}

TEST(GaussJordan, GivesTheBitsOfTheLiteralSteps) {
    constexpr std::uint64_t kSeed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(kSeed));
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 2000; ++round) {
        const int n = 1 + static_cast<int>(random() % (round % 50 == 0 ? 40 : 9));
        const int m = static_cast<int>(random() % 6);
        const int kind = round % 5;
        OneBasedMatrix a(n, n);
        OneBasedMatrix b(n, m == 0 ? 1 : m);
        for (int row = 1; row <= n; ++row) {
            for (int column = 1; column <= n; ++column)
                a.at(row, column) = randomElement(random, kind);
            for (int column = 1; column <= m; ++column)
                b.at(row, column) = randomElement(random, kind);
        }
        OneBasedMatrix expectedA = a;
        OneBasedMatrix expectedB = b;
        const bool expected = gaussJordanLiterally(expectedA.table(), n, expectedB.table(), m);
        ASSERT_EQ(matGaussJordanElimination(a.table(), n, m == 0 ? nullptr : b.table(), m), expected);
        ASSERT_TRUE(sameBits(a.values(), expectedA.values())) << "round " << round;
        ASSERT_TRUE(sameBits(b.values(), expectedB.values())) << "round " << round;
    }
}

TEST(GaussJordan, AllocatesNothingUpToSixteenAndOneBlockAbove) {
    for (const int n : {1, 4, 15, 16, 17, 64}) {
        OneBasedMatrix a(n, n);
        for (int i = 1; i <= n; ++i)
            a.at(i, i) = 2.0;
        double** table = a.table();
        const std::size_t before = allocationCount();
        EXPECT_TRUE(matGaussJordanElimination(table, n, nullptr, 0));
        EXPECT_EQ(allocationCount() - before, n <= 16 ? 0U : 1U) << n;
        EXPECT_EQ(a.at(n, n), 0.5);
    }
}

TEST(GaussJordan, LetsLackOfMemoryThroughWithNothingChanged) {
    constexpr int kSize = 20;
    OneBasedMatrix a(kSize, kSize, 3.0);
    const Values before = a.values();
    double** table = a.table();
    const std::ptrdiff_t live = liveAllocations();
    bool hasThrown = false;
    failAllocation(1);
    try {
        matGaussJordanElimination(table, kSize, nullptr, 0);
    } catch (const std::bad_alloc&) {
        hasThrown = true;
    }
    failAllocation(0);
    EXPECT_TRUE(hasThrown);
    EXPECT_EQ(liveAllocations(), live);
    EXPECT_EQ(a.values(), before);
}

TEST(InvertMatrixCopy, KeepsTheSource) {
    OneBasedMatrix source(2, 2, Values{4, 2, 1, 1});
    OneBasedMatrix result(2, 2, 7.0);
    EXPECT_TRUE(matInvertMatrix(source.table(), result.table(), 2));
    EXPECT_EQ(source.values(), (Values{4, 2, 1, 1}));
    EXPECT_EQ(result.values(), (Values{0.5, -1.0, -0.5, 2.0}));
    EXPECT_TRUE(matInvertMatrix(source.table(), source.table(), 2));
    EXPECT_EQ(source.values(), result.values());
}

TEST(InvertMatrixCopy, LeavesTheResultOnFailure) {
    OneBasedMatrix singular(2, 2, Values{1, 2, 2, 4});
    OneBasedMatrix result(2, 2, 7.0);
    EXPECT_FALSE(matInvertMatrix(singular.table(), result.table(), 2));
    EXPECT_EQ(result.values(), (Values{7, 7, 7, 7}));
    EXPECT_EQ(singular.values(), (Values{1, 2, 2, 4}));
    EXPECT_FALSE(matInvertMatrix(nullptr, result.table(), 2));
    EXPECT_FALSE(matInvertMatrix(singular.table(), nullptr, 2));
    EXPECT_EQ(result.values(), (Values{7, 7, 7, 7}));
}

TEST(InvertMatrixCopy, ReportsLackOfMemoryForTheCopy) {
    OneBasedMatrix source(2, 2, Values{4, 2, 1, 1});
    OneBasedMatrix result(2, 2, 7.0);
    double** from = source.table();
    double** to = result.table();
    const std::size_t count =
        velquad::test::forEachFailingAllocation([&] { return !matInvertMatrix(from, to, 2); });
    EXPECT_GE(count, 1U);
}

TEST(InvertMatrixCopy, ReleasesTheCopyWhenTheWorkBlockFails) {
    constexpr int kSize = 17;
    OneBasedMatrix source(kSize, kSize);
    for (int i = 1; i <= kSize; ++i)
        source.at(i, i) = 1.0;
    double** table = source.table();
    int failures = 0;
    for (std::size_t number = 1; number <= 8; ++number) {
        const std::ptrdiff_t live = liveAllocations();
        failAllocation(number);
        bool isDone = false;
        try {
            isDone = matInvertMatrix(table, table, kSize);
        } catch (const std::bad_alloc&) {
        }
        const bool hasFailed = hasAllocationFailed();
        failAllocation(0);
        EXPECT_EQ(isDone, !hasFailed);
        EXPECT_EQ(liveAllocations(), live);
        failures += hasFailed ? 1 : 0;
    }
    EXPECT_GE(failures, 2);
}

/// A table that counts from 0.
std::vector<double*> tableOf(Values& values, std::size_t n) {
    std::vector<double*> table(n);
    for (std::size_t row = 0; row < n; ++row)
        table[row] = values.data() + row * n;
    return table;
}

TEST(SolveLinearEquation, GivesInverseAndSolution) {
    Values a{4, 0, 0, 2};
    Values b{8, 3};
    EXPECT_TRUE(matSolveLinearEquation(tableOf(a, 2).data(), b.data(), 2));
    EXPECT_EQ(a, (Values{0.25, 0, 0, 0.5}));
    EXPECT_EQ(b, (Values{2, 1.5}));
    a = {0, 1, 1, 0};
    b = {3, 5};
    EXPECT_TRUE(matSolveLinearEquation(tableOf(a, 2).data(), b.data(), 2));
    EXPECT_EQ(a, (Values{0, 1, 1, 0}));
    EXPECT_EQ(b, (Values{5, 3}));
}

TEST(SolveLinearEquation, DoesNothingForNoRows) {
    EXPECT_TRUE(matSolveLinearEquation(nullptr, nullptr, 0));
    EXPECT_TRUE(matSolveLinearEquation(nullptr, nullptr, -3));
}

TEST(SolveLinearEquation, ReturnsTrueForASingularMatrix) {
    Values a{1, 2, 1, 2};
    Values b{1, 1};
    EXPECT_TRUE(matSolveLinearEquation(tableOf(a, 2).data(), b.data(), 2));
    EXPECT_FALSE(std::isfinite(a[0]));
    EXPECT_FALSE(std::isfinite(b[0]));
}

TEST(SolveLinearEquation, SolvesRandomSystems) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> element(-1.0, 1.0);
    for (std::size_t n = 1; n <= 24; ++n) {
        Values a(n * n);
        for (double& value : a)
            value = element(random);
        for (std::size_t i = 0; i < n; ++i)
            a[i * n + i] += 4.0;
        Values x(n);
        for (double& value : x)
            value = element(random);
        Values b(n);
        for (std::size_t row = 0; row < n; ++row) {
            for (std::size_t column = 0; column < n; ++column)
                b[row] += a[row * n + column] * x[column];
        }
        Values inverse = a;
        EXPECT_TRUE(matSolveLinearEquation(tableOf(inverse, n).data(), b.data(), static_cast<int>(n)));
        for (std::size_t i = 0; i < n; ++i)
            EXPECT_NEAR(b[i], x[i], 1e-11);
        double corner = 0.0;
        for (std::size_t k = 0; k < n; ++k)
            corner += a[k] * inverse[k * n];
        EXPECT_NEAR(corner, 1.0, 1e-11);
    }
}

}  // namespace
