#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/first_allocations.h"
#include "tests/support/object_layout.h"
#include "tests/support/solver_reference.h"
#include "velquad/fitting.h"
#include "velquad/framework.h"

namespace {

using velquad::test::failAllocation;
using velquad::test::failFirstAllocations;
using velquad::test::forEachFailingAllocation;
using velquad::test::layoutOf;
using velquad::test::liveAllocations;
using velquad::test::OneBasedMatrix;

using Values = std::vector<double>;

constexpr double kUntouched = -77.5;
constexpr int kMostInt = std::numeric_limits<int>::max();

// The fields in the order that callers of older builds rely on.
struct VectorLayout {
    double* data;
    int nl;
    int nh;
};

struct MatrixLayout {
    double** rows;
    double* data;
    int nrl;
    int nrh;
    int ncl;
    int nch;
};

struct Solution {
    Values x;
    double residual;
};

Solution solutionOf(int rows, int columns, const Values& a, const Values& b) {
    OneBasedMatrix matrix(rows, columns, a);
    Values side(static_cast<std::size_t>(rows) + 1, kUntouched);
    for (std::size_t i = 0; i < b.size(); ++i)
        side[i + 1] = b[i];
    Values x(static_cast<std::size_t>(columns) + 1, kUntouched);
    Solution solution{{}, kUntouched};
    svdsolve(matrix.table(), side.data(), rows, x.data(), columns, &solution.residual);
    EXPECT_EQ(x[0], kUntouched);
    solution.x.assign(x.begin() + 1, x.end());
    return solution;
}

TEST(SvdVector, CountsFromZeroToItsHighestIndex) {
    svd::CDVector vector(1, 3);
    vector.get()[0] = 5.0;
    vector[3] = 7.0;
    EXPECT_EQ(vector[0], 5.0);
    EXPECT_EQ(vector.get()[3], 7.0);
    EXPECT_EQ(&vector[2], vector.get() + 2);
    EXPECT_EQ(svd::CDVector().get(), nullptr);
}

TEST(SvdVector, KeepsItsBlockWhenMovedFrom) {
    svd::CDVector source(1, 2);
    source[1] = 4.0;
    svd::CDVector moved(std::move(source));
    EXPECT_EQ(moved.get(), nullptr);
    EXPECT_EQ(source[1], 4.0);  // NOLINT(bugprone-use-after-move): this is what is promised
}

TEST(SvdVector, KnowsItsRange) {
    svd::CDVector vector(2, 7);
    const auto layout = layoutOf<VectorLayout>(vector);
    EXPECT_EQ(layout.data, vector.get());
    EXPECT_EQ(layout.nl, 2);
    EXPECT_EQ(layout.nh, 7);
    const auto empty = layoutOf<VectorLayout>(svd::CDVector());
    EXPECT_EQ(empty.data, nullptr);
    EXPECT_EQ(empty.nl, 0);
    EXPECT_EQ(empty.nh, 0);
    const auto moved = layoutOf<VectorLayout>(svd::CDVector(std::move(vector)));
    EXPECT_EQ(moved.nl, 0);
    EXPECT_EQ(moved.nh, 0);
}

TEST(SvdVector, RefusesCountsThatDoNotFit) {
    EXPECT_THROW((svd::CDVector{1, -2}), std::bad_alloc);
    EXPECT_THROW((svd::CDVector{1, kMostInt}), std::bad_alloc);
    EXPECT_THROW((svd::CDVector{1, std::numeric_limits<int>::min()}), std::bad_alloc);
    EXPECT_NO_THROW((svd::CDVector{0, -1}));
}

TEST(SvdMatrix, SetsItsRowsFromTheLowestOn) {
    svd::CDMatrix m(1, 3, 1, 3);
    m[3][3] = 9.0;
    EXPECT_EQ(m.get()[3][3], 9.0);
    EXPECT_EQ(m.get()[2], m[2]);
    EXPECT_EQ(m[2] - m[1], 4);
    EXPECT_EQ(m[3] - m[2], 4);
    EXPECT_EQ(svd::CDMatrix().get(), nullptr);
    EXPECT_NE(svd::CDMatrix(1, 0, 1, 6).get(), nullptr);
}

TEST(SvdMatrix, KnowsItsRanges) {
    svd::CDMatrix matrix(2, 4, 3, 6);
    const auto layout = layoutOf<MatrixLayout>(matrix);
    EXPECT_EQ(layout.rows, matrix.get());
    EXPECT_EQ(layout.nrl, 2);
    EXPECT_EQ(layout.nrh, 4);
    EXPECT_EQ(layout.ncl, 3);
    EXPECT_EQ(layout.nch, 6);
    // Row i begins i rows of seven elements into the block, whatever the lowest row and column.
    EXPECT_EQ(matrix[2], layout.data + 14);
    EXPECT_EQ(matrix[4], layout.data + 28);
    const svd::CDMatrix moved(std::move(matrix));
    const auto taken = layoutOf<MatrixLayout>(moved);
    EXPECT_EQ(taken.data, layout.data);
    EXPECT_EQ(taken.nrl, 2);
    EXPECT_EQ(taken.nrh, 4);
    EXPECT_EQ(taken.ncl, 3);
    EXPECT_EQ(taken.nch, 6);
    const auto left = layoutOf<MatrixLayout>(matrix);  // NOLINT(bugprone-use-after-move): bounds stay
    EXPECT_EQ(left.data, nullptr);
    EXPECT_EQ(left.nrh, 4);
    EXPECT_EQ(left.nch, 6);
    const auto empty = layoutOf<MatrixLayout>(svd::CDMatrix());
    EXPECT_EQ(empty.rows, nullptr);
    EXPECT_EQ(empty.data, nullptr);
    EXPECT_EQ(empty.nrl + empty.nrh + empty.ncl + empty.nch, 0);
}

TEST(SvdMatrix, SetsRowZeroWhenItIsInUse) {
    for (const int lowest : {0, -2}) {
        svd::CDMatrix matrix(lowest, 2, 0, 1);
        EXPECT_EQ(matrix[0], layoutOf<MatrixLayout>(matrix).data);
        EXPECT_EQ(matrix[2], matrix[0] + 4);
    }
}

TEST(SvdMatrix, HandsItsMemoryOnWhenMovedFrom) {
    svd::CDMatrix source(1, 2, 1, 2);
    source[2][2] = 4.0;
    double** const table = source.get();
    svd::CDMatrix moved(std::move(source));
    EXPECT_EQ(moved.get(), table);
    EXPECT_EQ(moved[2][2], 4.0);
    EXPECT_EQ(source.get(), nullptr);  // NOLINT(bugprone-use-after-move): this is what is promised
}

TEST(SvdMatrix, RefusesCountsThatDoNotFit) {
    EXPECT_THROW((svd::CDMatrix{1, 65535, 1, 65535}), std::bad_alloc);
    EXPECT_THROW((svd::CDMatrix{1, 50000, 1, 50000}), std::bad_alloc);
    EXPECT_THROW((svd::CDMatrix{1, -2, 1, -3}), std::bad_alloc);
    EXPECT_THROW((svd::CDMatrix{1, 3, 1, -3}), std::bad_alloc);
    EXPECT_THROW((svd::CDMatrix{1, kMostInt, 1, 0}), std::bad_alloc);
}

TEST(SvdMatrix, LosesNothingWhenMemoryIsLacking) {
    EXPECT_EQ(forEachFailingAllocation([] {
                  try {
                      svd::CDMatrix matrix(1, 3, 1, 3);
                      return matrix.get() == nullptr;
                  } catch (const std::bad_alloc&) {
                      return true;
                  }
              }),
              2U);
}

TEST(SvdSolve, FindsTheClosestSolution) {
    const Solution solution = solutionOf(3, 2, {2, 0, 0, 4, 0, 0}, {2, 8, 3});
    EXPECT_NEAR(solution.x[0], 1.0, 1e-15);
    EXPECT_NEAR(solution.x[1], 2.0, 1e-15);
    EXPECT_NEAR(solution.residual, 9.0, 1e-14);
}

TEST(SvdSolve, FindsTheShortestOfManySolutions) {
    const Solution twice = solutionOf(2, 2, {1, 1, 1, 1}, {2, 4});
    EXPECT_NEAR(twice.x[0], 1.5, 1e-15);
    EXPECT_NEAR(twice.x[1], 1.5, 1e-15);
    EXPECT_NEAR(twice.residual, 2.0, 1e-14);
    const Solution wide = solutionOf(1, 3, {1, 2, 2}, {9});
    EXPECT_NEAR(wide.x[0], 1.0, 1e-14);
    EXPECT_NEAR(wide.x[1], 2.0, 1e-14);
    EXPECT_NEAR(wide.x[2], 2.0, 1e-14);
    EXPECT_NEAR(wide.residual, 0.0, 1e-28);
    const Solution nothing = solutionOf(2, 2, {0, 0, 0, 0}, {3, 4});
    EXPECT_EQ(nothing.x, (Values{0, 0}));
    EXPECT_EQ(nothing.residual, 25.0);
}

TEST(SvdSolve, CountsSingularValuesFromItsToleranceOn) {
    // The tolerance is the smaller of the two sizes times 2^-52, here 2^-51; 2^-51 itself counts.
    constexpr double kBound = 0x1p-51;
    EXPECT_EQ(solutionOf(2, 2, {1, 0, 0, kBound}, {3, kBound}).x, (Values{3, 1}));
    EXPECT_EQ(solutionOf(2, 2, {1, 0, 0, std::nextafter(kBound, 0.0)}, {3, kBound}).x, (Values{3, 0}));
    EXPECT_EQ(solutionOf(2, 2, {8, 0, 0, 8 * kBound}, {8, 8 * kBound}).x, (Values{1, 1}));
    EXPECT_EQ(solutionOf(2, 2, {8, 0, 0, 4 * kBound}, {8, 8 * kBound}).x, (Values{1, 0}));
    // Three columns in two rows have the same tolerance.
    EXPECT_NEAR(solutionOf(2, 3, {1, 0, 0, 0, 1.25 * kBound, 0}, {3, 5 * kBound}).x[1], 4.0, 1e-12);
    EXPECT_EQ(solutionOf(2, 3, {1, 0, 0, 0, 0.75 * kBound, 0}, {3, 6 * kBound}).x[1], 0.0);
}

TEST(SvdSolve, ReadsOnlyWhatItIsTold) {
    // The row and the column 0, as those behind the last ones, hold what would spoil the result.
    Values elements(16, std::numeric_limits<double>::quiet_NaN());
    Values side(4, std::numeric_limits<double>::quiet_NaN());
    Values x(4, kUntouched);
    double* table[4] = {nullptr, elements.data() + 4, elements.data() + 8, nullptr};
    table[1][1] = 2.0;
    table[1][2] = 1.0;
    table[2][1] = 1.0;
    table[2][2] = 3.0;
    side[1] = 5.0;
    side[2] = 10.0;
    double residual = kUntouched;
    svdsolve(table, side.data(), 2, x.data(), 2, &residual);
    EXPECT_EQ(x[0], kUntouched);
    EXPECT_NEAR(x[1], 1.0, 1e-14);
    EXPECT_NEAR(x[2], 3.0, 1e-14);
    EXPECT_EQ(x[3], kUntouched);
    EXPECT_NEAR(residual, 0.0, 1e-27);
}

TEST(SvdSolve, TakesEmptySystems) {
    EXPECT_EQ(solutionOf(0, 2, {}, {}).x, (Values{0, 0}));
    EXPECT_EQ(solutionOf(0, 2, {}, {}).residual, 0.0);
    EXPECT_EQ(solutionOf(2, 0, {}, {3, 4}).residual, 25.0);
    double residual = kUntouched;
    svdsolve(nullptr, nullptr, 0, nullptr, 0, &residual);
    EXPECT_EQ(residual, 0.0);
}

TEST(SvdSolve, TakesANullResidual) {
    OneBasedMatrix a(1, 1, Values{2});
    Values b{0, 6};
    Values x{0, 0};
    svdsolve(a.table(), b.data(), 1, x.data(), 1, nullptr);
    EXPECT_NEAR(x[1], 3.0, 1e-15);
}

TEST(SvdSolve, AnswersNotANumberWithNotANumber) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        const Solution solution = solutionOf(2, 2, {1, 2, bad, 4}, {1, 2});
        EXPECT_TRUE(std::isnan(solution.x[0]) && std::isnan(solution.x[1]));
        EXPECT_TRUE(std::isnan(solution.residual));
    }
}

// At the least sum of squares the errors are orthogonal to every column; of equal columns the shortest solution
// gives each the same weight.
TEST(SvdSolve, MeetsTheNormalEquations) {
    std::mt19937 random(103);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    for (int run = 0; run < 200; ++run) {
        SCOPED_TRACE(run);
        const int rows = 1 + run % 23;
        const int columns = 2 + run % 5;
        OneBasedMatrix a(rows, columns);
        Values b;
        for (int row = 1; row <= rows; ++row) {
            for (int column = 1; column < columns; ++column)
                a.at(row, column) = value(random);
            a.at(row, columns) = a.at(row, 1);
            b.push_back(value(random));
        }
        const Solution solution = solutionOf(rows, columns, a.values(), b);
        Values errors;
        double squares = 0.0;
        for (int row = 1; row <= rows; ++row) {
            double error = -b[static_cast<std::size_t>(row) - 1];
            for (int column = 1; column <= columns; ++column)
                error += a.at(row, column) * solution.x[static_cast<std::size_t>(column) - 1];
            errors.push_back(error);
            squares += error * error;
        }
        for (int column = 1; column <= columns; ++column) {
            double product = 0.0;
            for (int row = 1; row <= rows; ++row)
                product += a.at(row, column) * errors[static_cast<std::size_t>(row) - 1];
            EXPECT_NEAR(product, 0.0, 1e-11);
        }
        EXPECT_NEAR(solution.residual, squares, 1e-12);
        EXPECT_NEAR(solution.x.front(), solution.x.back(), 1e-9);
    }
}

TEST(SvdSolve, StoresNothingWhenMemoryIsLacking) {
    OneBasedMatrix a(3, 2, Values{2, 0, 0, 4, 0, 1});
    Values b{0, 2, 8, 3};
    double** const table = a.table();
    failFirstAllocations(4, [&b, table] {
        double x[3] = {kUntouched, kUntouched, kUntouched};
        double residual = kUntouched;
        try {
            svdsolve(table, b.data(), 3, x, 2, &residual);
            return false;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(x[1], kUntouched);
            EXPECT_EQ(x[2], kUntouched);
            EXPECT_EQ(residual, kUntouched);
            return true;
        }
    });
}

struct AffineFit {
    bool result;
    Values transform;  // row by row
    double residual;
};

AffineFit affineFitOf(const Values& source, const Values& target, int count) {
    OneBasedMatrix sources(count, 2, source);
    OneBasedMatrix targets(count, 2, target);
    OneBasedMatrix transform(3, 3, kUntouched);
    AffineFit fit{false, {}, kUntouched};
    fit.result = svdhomfit(targets.table(), sources.table(), count, transform.table(), &fit.residual);
    fit.transform = transform.values();
    return fit;
}

void expectTransform(const AffineFit& fit, const Values& expected) {
    EXPECT_TRUE(fit.result);
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NEAR(fit.transform[i], expected[i], 1e-13) << i;
    EXPECT_EQ(fit.transform[6], 0.0);
    EXPECT_EQ(fit.transform[7], 0.0);
    EXPECT_EQ(fit.transform[8], 1.0);
}

TEST(SvdHomogeneousFit, RecoversAnAffineMap) {
    // u = 2 x + 3 y + 5, v = -x + 4 y - 7
    const AffineFit fit = affineFitOf({0, 0, 1, 0, 0, 1}, {5, -7, 7, -8, 8, -3}, 3);
    expectTransform(fit, {2, 3, 5, -1, 4, -7});
    EXPECT_NEAR(fit.residual, 0.0, 1e-24);
}

TEST(SvdHomogeneousFit, LeavesTheErrorsThatNoMapExplains) {
    // The errors (1, -1, -1, 1) / 2 of u and (1, -1, -1, 1) of v are orthogonal to x, y and 1.
    const AffineFit fit = affineFitOf({1, 1, 1, -1, -1, 1, -1, -1}, {1.5, 2, 0.5, -2, -1.5, 0, -0.5, 0}, 4);
    expectTransform(fit, {1, 0, 0, 0, 1, 0});
    EXPECT_NEAR(fit.residual, 5.0, 1e-13);
}

TEST(SvdHomogeneousFit, FindsTheLeastSquaresMapOfNoisyPoints) {
    // By the normal equations in rational numbers.
    const AffineFit fit =
        affineFitOf({0, 0, 10, 1, 2, 8, 9, 11, 5, 4}, {3, -2, 24, 5, 9, 21, 26, 30, 13, 9}, 5);
    expectTransform(fit, {2.136672911941623, 0.3552904052854748, 2.183906912533281, 0.347204417710285,
                          2.645005423528252, -1.9014890050290898});
    EXPECT_NEAR(fit.residual, 6.707819741642836, 1e-12);
}

TEST(SvdHomogeneousFit, TakesTheSmallestMapOfPointsOnALine) {
    expectTransform(affineFitOf({1, 1, 2, 2, 3, 3}, {4, 0, 8, 0, 12, 0}, 3), {2, 2, 0, 0, 0, 0});
    expectTransform(affineFitOf({1, 0, 2, 0, 3, 0}, {2, 10, 4, 10, 6, 10}, 3), {2, 0, 0, 0, 0, 10});
    expectTransform(affineFitOf({3, 4}, {26, -52}, 1), {3, 4, 1, -6, -8, -2});
}

TEST(SvdHomogeneousFit, TakesNoPoints) {
    const AffineFit fit = affineFitOf({}, {}, 0);
    expectTransform(fit, {0, 0, 0, 0, 0, 0});
    EXPECT_EQ(fit.residual, 0.0);
}

TEST(SvdHomogeneousFit, ComputesNothingForANullTable) {
    OneBasedMatrix points(3, 2, Values{0, 0, 1, 0, 0, 1});
    OneBasedMatrix transform(3, 3, kUntouched);
    double** const table = points.table();
    double residual = kUntouched;
    EXPECT_TRUE(svdhomfit(table, table, 3, nullptr, &residual));
    EXPECT_TRUE(svdhomfit(nullptr, table, 3, transform.table(), &residual));
    EXPECT_TRUE(svdhomfit(table, nullptr, 3, transform.table(), &residual));
    EXPECT_TRUE(svdhomfit(table, table, 3, transform.table(), nullptr));
    EXPECT_EQ(residual, kUntouched);
    EXPECT_EQ(transform.values(), Values(9, kUntouched));
}

TEST(SvdHomogeneousFit, ComputesNothingForCountsWithoutMemory) {
    OneBasedMatrix points(1, 2, Values{0, 0});
    OneBasedMatrix transform(3, 3, kUntouched);
    double residual = kUntouched;
    for (const int count : {-1, std::numeric_limits<int>::min(), kMostInt, 1 << 30}) {
        EXPECT_TRUE(svdhomfit(points.table(), points.table(), count, transform.table(), &residual));
        EXPECT_EQ(residual, kUntouched);
        EXPECT_EQ(transform.values(), Values(9, kUntouched));
    }
}

void throwNumber() {
    throw 5;
}

void throwFrameworkException() {
    AfxThrowInvalidArgException();
}

TEST(SvdHomogeneousFit, ReportsExceptionsThatAreNotOfLackingMemory) {
    OneBasedMatrix points(3, 2, Values{0, 0, 1, 0, 0, 1});
    OneBasedMatrix transform(3, 3, kUntouched);
    double** const table = points.table();
    double** const rows = transform.table();
    for (const std::new_handler handler : {throwNumber, throwFrameworkException}) {
        const std::ptrdiff_t before = liveAllocations();
        double residual = kUntouched;
        const std::new_handler previous = std::set_new_handler(handler);
        failAllocation(1);
        const bool result = svdhomfit(table, table, 3, rows, &residual);
        failAllocation(0);
        std::set_new_handler(previous);
        EXPECT_FALSE(result);
        EXPECT_EQ(residual, 1.7976931348623157e308);
        EXPECT_EQ(transform.values(), Values(9, kUntouched));
        EXPECT_EQ(liveAllocations(), before);
    }
}

TEST(SvdHomogeneousFit, KeepsSilentWhenMemoryIsLacking) {
    OneBasedMatrix points(3, 2, Values{0, 0, 1, 0, 0, 1});
    OneBasedMatrix transform(3, 3, 0.0);
    double** const table = points.table();
    double** const rows = transform.table();
    failFirstAllocations(8, [&transform, table, rows] {
        for (int i = 1; i <= 9; ++i)
            transform.at(1 + (i - 1) / 3, 1 + (i - 1) % 3) = kUntouched;
        double residual = kUntouched;
        EXPECT_TRUE(svdhomfit(table, table, 3, rows, &residual));
        const bool isUntouched = transform.at(3, 3) == kUntouched;
        EXPECT_EQ(residual == kUntouched, isUntouched);
        EXPECT_EQ(transform.at(1, 1) == kUntouched, isUntouched);
        return isUntouched;
    });
}

}  // namespace
