#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/solver_reference.h"
#include "velquad/fitting.h"
#include "velquad/framework.h"

namespace {

using velquad::test::gaussJordanLiterally;
using velquad::test::OneBasedMatrix;

using Values = std::vector<double>;

/// Calls that a basis function saw.
struct BasisCalls {
    std::vector<int> indices;
    Values carriedOver;
};

/// The straight line through x = index: basis (x, 1).
void lineBasis(int index, double* basis, int coefficientCount, void* user) {
    auto* calls = static_cast<BasisCalls*>(user);
    calls->indices.push_back(index);
    calls->carriedOver.push_back(basis[1]);
    EXPECT_EQ(coefficientCount, 2);
    basis[1] = index;
    basis[2] = 1.0;
}

TEST(LeastSquaresFit, FitsTheFunctionsOfTheCaller) {
    BasisCalls calls;
    Values y{-99, 5, 7, 9};
    Values coefficients{-99, 0, 0};
    double chiSquare = -1.0;
    EXPECT_TRUE(
        matLeastSquaresPolynomFit(y.data(), 3, coefficients.data(), 2, &chiSquare, lineBasis, &calls));
    EXPECT_EQ(coefficients[0], -99);
    EXPECT_NEAR(coefficients[1], 2.0, 1e-12);
    EXPECT_NEAR(coefficients[2], 3.0, 1e-12);
    EXPECT_EQ(calls.indices, (std::vector<int>{1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(calls.carriedOver, (Values{0, 1, 2, 3, 1, 2}));
    // Running sums 5, 12, 21: 0 + (7 - 12)^2 + (9 - 21)^2.
    EXPECT_NEAR(chiSquare, 169.0, 1e-9);
}

TEST(LeastSquaresFit, CallsTheBasisOnceASampleWithoutChiSquare) {
    BasisCalls calls;
    Values y{0, 5, 7, 9};
    Values coefficients(3);
    EXPECT_TRUE(matLeastSquaresPolynomFit(y.data(), 3, coefficients.data(), 2, nullptr, lineBasis, &calls));
    EXPECT_EQ(calls.indices, (std::vector<int>{1, 2, 3}));
}

TEST(LeastSquaresFit, LeavesItsOutputsOnFailure) {
    BasisCalls calls;
    Values y{0, 5};
    Values coefficients{7, 7, 7};
    double chiSquare = 7.0;
    EXPECT_FALSE(
        matLeastSquaresPolynomFit(y.data(), 1, coefficients.data(), 2, &chiSquare, lineBasis, &calls));
    EXPECT_FALSE(
        matLeastSquaresPolynomFit(y.data(), 0, coefficients.data(), 2, &chiSquare, lineBasis, &calls));
    EXPECT_FALSE(
        matLeastSquaresPolynomFit(nullptr, -5, coefficients.data(), 2, &chiSquare, lineBasis, &calls));
    EXPECT_EQ(coefficients, (Values{7, 7, 7}));
    EXPECT_EQ(chiSquare, 7.0);
}

TEST(PolynomFit, FitsALineThroughThreePoints) {
    Values x{0, 1, 2};
    Values y{1, 3, 5};
    Values coefficients(2);
    double chiSquare = -1.0;
    EXPECT_TRUE(matPolynomFit(x.data(), y.data(), 3, coefficients.data(), 2, &chiSquare));
    EXPECT_NEAR(coefficients[0], 2.0, 1e-14);
    EXPECT_NEAR(coefficients[1], 1.0, 1e-14);
    // Running sums 1, 4, 9: 0 + 1 + 16.
    EXPECT_NEAR(chiSquare, 17.0, 1e-12);
    EXPECT_TRUE(matPolynomFit(x.data(), y.data(), 3, coefficients.data(), 2, nullptr));
}

TEST(PolynomFit, OneCoefficientIsTheMean) {
    Values x{5, 5, 5, 5};
    Values y{1, 2, 3, 6};
    double mean = 0.0;
    EXPECT_TRUE(matPolynomFit(x.data(), y.data(), 4, &mean, 1, nullptr));
    EXPECT_EQ(mean, 3.0);
}

TEST(PolynomFit, ReadsNothingWithoutCoefficients) {
    double chiSquare = 7.0;
    EXPECT_FALSE(matPolynomFit(nullptr, nullptr, 3, nullptr, 2, &chiSquare));
    EXPECT_FALSE(matPolynomFit(nullptr, nullptr, 3, nullptr, 0, &chiSquare));
    EXPECT_EQ(chiSquare, 7.0);
}

TEST(PolynomFit, RefusesTooFewDifferentPoints) {
    Values x{1, 1, 1};
    Values y{1, 2, 3};
    Values coefficients{7, 7};
    double chiSquare = 7.0;
    EXPECT_FALSE(matPolynomFit(x.data(), y.data(), 3, coefficients.data(), 2, &chiSquare));
    EXPECT_FALSE(matPolynomFit(x.data(), y.data(), 0, coefficients.data(), 2, &chiSquare));
    EXPECT_FALSE(matPolynomFit(nullptr, nullptr, -1, coefficients.data(), 2, &chiSquare));
    EXPECT_EQ(coefficients, (Values{7, 7}));
    EXPECT_EQ(chiSquare, 7.0);
}

TEST(PolynomFit, ThrowsWithoutACoefficient) {
    Values y{1, 2};
    double coefficient = 7.0;
    for (const int count : {0, -1}) {
        int thrown = 0;
        try {
            // Thrown before the samples are looked at.
            matPolynomFit(nullptr, nullptr, 2, &coefficient, count, nullptr);
        } catch (CInvalidArgException* exception) {
            ++thrown;
            exception->Delete();
        }
        BasisCalls calls;
        try {
            matLeastSquaresPolynomFit(y.data(), 1, &coefficient, count, nullptr, lineBasis, &calls);
        } catch (CInvalidArgException* exception) {
            ++thrown;
            exception->Delete();
        }
        EXPECT_EQ(thrown, 2);
        EXPECT_TRUE(calls.indices.empty());
    }
    EXPECT_EQ(coefficient, 7.0);
}

TEST(PolynomFit, ReleasesEverythingWhenMemoryIsLacking) {
    Values x{0, 1, 2};
    Values y{1, 3, 5};
    Values coefficients{7, 7};
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        try {
            return !matPolynomFit(x.data(), y.data(), 3, coefficients.data(), 2, nullptr);
        } catch (const std::bad_alloc&) {
            return true;
        }
    });
    EXPECT_GE(count, 3U);
}

/// The fit step by step.
bool fitLiterally(const Values& x, const Values& y, int n, Values& coefficients, double& chiSquare) {
    OneBasedMatrix covariance(n, n);
    OneBasedMatrix side(n, 1);
    Values basis(static_cast<std::size_t>(n) + 1);
    const auto fill = [&](double at) {
        for (int j = 1; j <= n - 1; ++j)
            basis[static_cast<std::size_t>(j)] = std::pow(at, n - j);
        basis[static_cast<std::size_t>(n)] = 1.0;
    };
    for (std::size_t i = 0; i < x.size(); ++i) {
        fill(x[i]);
        for (int j = 1; j <= n; ++j) {
            const double t = basis[static_cast<std::size_t>(j)];
            for (int k = 1; k <= j; ++k)
                covariance.at(j, k) += t * basis[static_cast<std::size_t>(k)];
            side.at(j, 1) += y[i] * t;
        }
    }
    for (int j = 2; j <= n; ++j) {
        for (int k = 1; k <= j - 1; ++k)
            covariance.at(k, j) = covariance.at(j, k);
    }
    if (!gaussJordanLiterally(covariance.table(), n, side.table(), 1)) return false;
    coefficients = side.values();
    double s = 0.0;
    chiSquare = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        fill(x[i]);
        for (int j = 1; j <= n; ++j)
            s += coefficients[static_cast<std::size_t>(j - 1)] * basis[static_cast<std::size_t>(j)];
        chiSquare += (y[i] - s) * (y[i] - s);
    }
    return true;
}

TEST(PolynomFit, GivesTheBitsOfTheLiteralSteps) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> number(-3.0, 3.0);
    for (int round = 0; round < 300; ++round) {
        const int n = 1 + round % 6;
        Values x(random() % 30);
        Values y(x.size());
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = number(random);
            y[i] = number(random);
        }
        Values expected;
        double expectedChiSquare = 0.0;
        Values actual(static_cast<std::size_t>(n));
        double chiSquare = 0.0;
        const bool isExpected = fitLiterally(x, y, n, expected, expectedChiSquare);
        ASSERT_EQ(matPolynomFit(x.data(), y.data(), static_cast<int>(x.size()), actual.data(), n, &chiSquare),
                  isExpected);
        if (!isExpected) continue;
        ASSERT_EQ(std::memcmp(actual.data(), expected.data(), actual.size() * sizeof(double)), 0);
        ASSERT_EQ(chiSquare, expectedChiSquare);
    }
}

TEST(PolynomEval, SumsPowersFromTheConstantUpwards) {
    Values line{2, 1};
    double result = -1.0;
    EXPECT_TRUE(matPolynomEval(line.data(), 2, 3.0, result));
    EXPECT_EQ(result, 7.0);
    Values cubic{1, -2, 3, -4};
    EXPECT_TRUE(matPolynomEval(cubic.data(), 4, 2.0, result));
    EXPECT_EQ(result, 2.0);
    // Horner's rule would give 0: (1e16 * 1 - 1e16) + 1 and so on keep what this order loses.
    Values cancelling{-1e16, 1e16, 1.0};
    EXPECT_TRUE(matPolynomEval(cancelling.data(), 3, 1.0, result));
    EXPECT_EQ(result, 0.0);
}

TEST(PolynomEval, OneCoefficientIsTheValueEverywhere) {
    double constant = 4.5;
    double result = 0.0;
    for (const double x : {0.0, -3.0, 1e300, std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_TRUE(matPolynomEval(&constant, 1, x, result));
        EXPECT_EQ(result, 4.5);
    }
}

}  // namespace
