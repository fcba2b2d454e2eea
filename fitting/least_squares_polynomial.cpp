// Linear least squares by the normal equations, and polynomials on top of it. The tables of the solver count from
// 1, and so do all arrays here.
#include <algorithm>
#include <cstddef>
#include <vector>

#include "fitting/gauss_jordan.h"
#include "frame/math.h"
#include "velquad/fitting.h"
#include "velquad/framework.h"

namespace {

using BasisFunction = void (*)(int index, double* basis, int coefficientCount, void* user);

struct Samples {
    const double* values;  // from index 1
    int count;
    BasisFunction basis;
    void* user;
};

// A matrix of zeros and its table, both counting from 1.
class Table {
  public:
    Table(std::size_t rows, std::size_t columns) : values_(rows * columns + 1), rows_(rows + 1) {
        for (std::size_t row = 1; row <= rows; ++row)
            rows_[row] = values_.data() + (row - 1) * columns;
    }
    double** rows() { return rows_.data(); }
    double* operator[](std::size_t row) { return rows_[row]; }

  private:
    std::vector<double> values_;
    std::vector<double*> rows_;
};

void accumulate(const Samples& samples, double* basis, Table& covariance, Table& side, std::size_t n) {
    for (int i = 1; i <= samples.count; ++i) {
        samples.basis(i, basis, static_cast<int>(n), samples.user);
        const double sample = samples.values[i];
        for (std::size_t j = 1; j <= n; ++j) {
            const double term = basis[j];
            double* const row = covariance[j];
            for (std::size_t k = 1; k <= j; ++k)
                row[k] += term * basis[k];
            side[j][1] += sample * term;
        }
    }
    for (std::size_t j = 2; j <= n; ++j) {
        for (std::size_t k = 1; k < j; ++k)
            covariance[k][j] = covariance[j][k];
    }
}

// Kept: the model value runs on from sample to sample, so that exact data do not give 0.
double runningChiSquare(const Samples& samples, double* basis, const double* coefficients, std::size_t n) {
    double model = 0.0;
    double total = 0.0;
    for (int i = 1; i <= samples.count; ++i) {
        samples.basis(i, basis, static_cast<int>(n), samples.user);
        for (std::size_t j = 1; j <= n; ++j)
            model += coefficients[j] * basis[j];
        const double difference = samples.values[i] - model;
        total += difference * difference;
    }
    return total;
}

bool fitLeastSquares(const Samples& samples, double* coefficients, int coefficientCount, double* chiSquare) {
    if (coefficientCount < 1) AfxThrowInvalidArgException();
    const auto n = static_cast<std::size_t>(coefficientCount);
    Table side(n, 1);
    Table covariance(n, n);
    std::vector<double> basis(n + 1);
    accumulate(samples, basis.data(), covariance, side, n);
    if (!velquad::fitting::eliminateGaussJordan(covariance.rows(), coefficientCount, side.rows(), 1))
        return false;
    for (std::size_t j = 1; j <= n; ++j)
        coefficients[j] = side[j][1];
    if (chiSquare != nullptr) *chiSquare = runningChiSquare(samples, basis.data(), coefficients, n);
    return true;
}

// Powers of the x that `user` points to, the highest first.
void storePowers(int index, double* basis, int coefficientCount, void* user) {
    const double x = static_cast<const double*>(user)[index];
    for (int j = 1; j < coefficientCount; ++j)
        basis[j] = velquad::frame::pow(x, coefficientCount - j);
    basis[coefficientCount] = 1.0;
}

// A copy that counts from 1.
std::vector<double> copiedFromOne(const double* values, int count) {
    std::vector<double> copy(static_cast<std::size_t>(std::max(count, 0)) + 1);
    if (count > 0) std::copy_n(values, count, copy.begin() + 1);
    return copy;
}

}  // namespace

bool matLeastSquaresPolynomFit(double* y, int dataCount, double* coefficients, int coefficientCount,
                               double* chiSquare,
                               void (*basis)(int index, double* basis, int coefficientCount, void* user),
                               void* user) {
    return fitLeastSquares({y, dataCount, basis, user}, coefficients, coefficientCount, chiSquare);
}

bool matPolynomFit(double* x, double* y, int dataCount, double* coefficients, int coefficientCount,
                   double* chiSquare) {
    if (coefficients == nullptr) return false;
    if (coefficientCount < 1) AfxThrowInvalidArgException();
    std::vector<double> abscissas = copiedFromOne(x, dataCount);
    const std::vector<double> ordinates = copiedFromOne(y, dataCount);
    std::vector<double> work(static_cast<std::size_t>(coefficientCount) + 1);
    double workChiSquare = 0.0;
    const Samples samples{ordinates.data(), dataCount, storePowers, abscissas.data()};
    if (!fitLeastSquares(samples, work.data(), coefficientCount, &workChiSquare)) return false;
    std::copy_n(work.begin() + 1, coefficientCount, coefficients);
    if (chiSquare != nullptr) *chiSquare = workChiSquare;
    return true;
}

bool matPolynomEval(double* coefficients, int coefficientCount, double x, double& result) {
    double sum = coefficients[coefficientCount - 1];
    double power = x;
    for (int i = coefficientCount - 2; i >= 0; --i) {
        sum += power * coefficients[i];
        power *= x;
    }
    result = sum;
    return true;
}
