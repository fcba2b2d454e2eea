// Least squares by singular values, next to Eigen's decompositions of the same matrix without tables, guards and
// copies, and the affine map between point sets, next to the same map from two systems of three unknowns by QR.
#include <benchmark/benchmark.h>

#include <Eigen/QR>
#include <Eigen/SVD>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/solver_reference.h"
#include "velquad/fitting.h"

namespace {

using velquad::test::OneBasedMatrix;

// Rows and columns of the systems: a parabola's window, an affine map of 50 points, a lens of 400 dots.
void systemSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Args({9, 3})->Args({100, 6})->Args({400, 21});
}

struct System {
    Eigen::MatrixXd matrix;
    Eigen::VectorXd side;
};

System randomSystem(benchmark::State& state) {
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> element(-1.0, 1.0);
    System system{Eigen::MatrixXd(state.range(0), state.range(1)), Eigen::VectorXd(state.range(0))};
    for (double& value : system.matrix.reshaped())
        value = element(random);
    for (double& value : system.side)
        value = element(random);
    return system;
}

void solveSystem(benchmark::State& state) {
    System system = randomSystem(state);
    const int rows = static_cast<int>(state.range(0));
    const int columns = static_cast<int>(state.range(1));
    OneBasedMatrix a(rows, columns);
    for (int row = 1; row <= rows; ++row) {
        for (int column = 1; column <= columns; ++column)
            a.at(row, column) = system.matrix(row - 1, column - 1);
    }
    double** const table = a.table();
    std::vector<double> x(static_cast<std::size_t>(columns) + 1);
    double residual = 0.0;
    for (auto _ : state) {
        svdsolve(table, system.side.data() - 1, rows, x.data(), columns, &residual);
        benchmark::DoNotOptimize(residual);
    }
}
BENCHMARK(solveSystem)->Apply(systemSizes)->Unit(benchmark::kMicrosecond);

void solveByEigenJacobi(benchmark::State& state) {
    const System system = randomSystem(state);
    for (auto _ : state) {
        const Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(system.matrix,
                                                              Eigen::ComputeThinU | Eigen::ComputeThinV);
        const Eigen::VectorXd x = decomposition.solve(system.side);
        benchmark::DoNotOptimize((system.matrix * x - system.side).squaredNorm());
    }
}
BENCHMARK(solveByEigenJacobi)->Apply(systemSizes)->Unit(benchmark::kMicrosecond);

// The fast way for systems of full rank, which gives no shortest solution where columns depend on each other.
void solveByEigenQr(benchmark::State& state) {
    const System system = randomSystem(state);
    for (auto _ : state) {
        const Eigen::VectorXd x = system.matrix.colPivHouseholderQr().solve(system.side);
        benchmark::DoNotOptimize((system.matrix * x - system.side).squaredNorm());
    }
}
BENCHMARK(solveByEigenQr)->Apply(systemSizes)->Unit(benchmark::kMicrosecond);

struct PointPairs {
    std::vector<double> source;  // x and y of each point
    std::vector<double> target;
};

PointPairs randomPairs(std::int64_t count) {
    std::mt19937_64 random(12);
    std::uniform_real_distribution<double> pixel(0.0, 1000.0);
    std::normal_distribution<double> noise(0.0, 0.5);
    PointPairs pairs;
    for (std::int64_t i = 0; i < count; ++i) {
        const double x = pixel(random);
        const double y = pixel(random);
        pairs.source.insert(pairs.source.end(), {x, y});
        pairs.target.push_back(0.9 * x - 0.1 * y + 20.0 + noise(random));
        pairs.target.push_back(0.1 * x + 0.9 * y - 30.0 + noise(random));
    }
    return pairs;
}

void fitAffineMap(benchmark::State& state) {
    const PointPairs pairs = randomPairs(state.range(0));
    const int count = static_cast<int>(state.range(0));
    OneBasedMatrix source(count, 2, pairs.source);
    OneBasedMatrix target(count, 2, pairs.target);
    OneBasedMatrix transform(3, 3);
    double** const sources = source.table();
    double** const targets = target.table();
    double** const rows = transform.table();
    double residual = 0.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(svdhomfit(targets, sources, count, rows, &residual));
        benchmark::DoNotOptimize(residual);
    }
}
BENCHMARK(fitAffineMap)->Arg(4)->Arg(50)->Arg(1000)->Unit(benchmark::kMicrosecond);

void fitAffineMapByEigenQr(benchmark::State& state) {
    using Points = Eigen::Matrix<double, Eigen::Dynamic, 2, Eigen::RowMajor>;
    const PointPairs pairs = randomPairs(state.range(0));
    const Eigen::Map<const Points> source(pairs.source.data(), state.range(0), 2);
    const Eigen::Map<const Points> target(pairs.target.data(), state.range(0), 2);
    for (auto _ : state) {
        Eigen::MatrixXd design(state.range(0), 3);
        design << source, Eigen::VectorXd::Ones(state.range(0));
        const Eigen::Matrix<double, 3, 2> map = design.colPivHouseholderQr().solve(target);
        benchmark::DoNotOptimize((design * map - target).squaredNorm());
    }
}
BENCHMARK(fitAffineMapByEigenQr)->Arg(4)->Arg(50)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
