// The inverse by Gauss-Jordan elimination with full pivoting, next to Eigen's inverse with full pivoting and to the
// literal elimination, which searches the whole matrix in each step.
#include <benchmark/benchmark.h>

#include <Eigen/LU>
#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/solver_reference.h"
#include "velquad/fitting.h"

namespace {

using velquad::test::OneBasedMatrix;

OneBasedMatrix randomMatrix(int n) {
    std::mt19937_64 random(static_cast<std::uint64_t>(n));
    std::uniform_real_distribution<double> element(-1.0, 1.0);
    OneBasedMatrix matrix(n, n);
    for (int row = 1; row <= n; ++row) {
        for (int column = 1; column <= n; ++column)
            matrix.at(row, column) = element(random);
    }
    return matrix;
}

// The inverse of the inverse of the inverse and so on: the matrix changes, its condition does not.
void invertGaussJordan(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    OneBasedMatrix matrix = randomMatrix(n);
    double** table = matrix.table();
    for (auto _ : state) {
        benchmark::DoNotOptimize(matGaussJordanElimination(table, n, nullptr, 0));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(invertGaussJordan)->Arg(4)->Arg(16)->Arg(64)->Arg(256);

void invertLiterally(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    OneBasedMatrix matrix = randomMatrix(n);
    double** table = matrix.table();
    for (auto _ : state) {
        benchmark::DoNotOptimize(velquad::test::gaussJordanLiterally(table, n, nullptr, 0));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(invertLiterally)->Arg(4)->Arg(16)->Arg(64)->Arg(256);

void invertEigenFullPivoting(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const OneBasedMatrix source = randomMatrix(n);
    Eigen::MatrixXd matrix(n, n);
    for (int row = 0; row < n; ++row) {
        for (int column = 0; column < n; ++column)
            matrix(row, column) = source.at(row + 1, column + 1);
    }
    for (auto _ : state) {
        matrix = Eigen::FullPivLU<Eigen::MatrixXd>(matrix).inverse();
        benchmark::DoNotOptimize(matrix.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(invertEigenFullPivoting)->Arg(4)->Arg(16)->Arg(64)->Arg(256);

}  // namespace
