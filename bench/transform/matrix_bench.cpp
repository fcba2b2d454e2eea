// Products, transformed vectors and inverses of 4 by 4 matrices. The inverse runs next to Eigen's own dynamic
// inverse, which it must not exceed by more than one half.
#include <benchmark/benchmark.h>

#include <Eigen/LU>
#include <cstddef>
#include <random>
#include <vector>

#include "velquad/transform.h"

namespace {

constexpr std::size_t kCount = 256;

struct Matrix {
    double m[4][4];
};

/// Matrices of general position, inputs of all benchmarks.
std::vector<Matrix> randomMatrices() {
    std::mt19937_64 random(20240607);
    std::uniform_real_distribution<double> element(-10.0, 10.0);
    std::vector<Matrix> matrices(kCount);
    for (Matrix& matrix : matrices) {
        for (auto& row : matrix.m) {
            for (double& value : row)
                value = element(random);
        }
    }
    return matrices;
}

void multiply(benchmark::State& state) {
    const std::vector<Matrix> matrices = randomMatrices();
    std::size_t i = 0;
    for (auto _ : state) {
        Matrix product;
        matMultiplyMatrix4(product.m, matrices[i % kCount].m, matrices[(i + 1) % kCount].m);
        benchmark::DoNotOptimize(product);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(multiply);

void multiplyInPlace(benchmark::State& state) {
    const std::vector<Matrix> matrices = randomMatrices();
    std::size_t i = 0;
    for (auto _ : state) {
        Matrix product = matrices[(i + 1) % kCount];
        matMultiplyMatrix4(product.m, matrices[i % kCount].m, product.m);
        benchmark::DoNotOptimize(product);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(multiplyInPlace);

void multiplyEigenFixed(benchmark::State& state) {
    std::vector<Eigen::Matrix4d> matrices;
    for (const Matrix& matrix : randomMatrices())
        matrices.emplace_back(Eigen::Map<const Eigen::Matrix4d>(matrix.m[0]));
    std::size_t i = 0;
    for (auto _ : state) {
        Eigen::Matrix4d product;
        product.noalias() = matrices[i % kCount] * matrices[(i + 1) % kCount];
        benchmark::DoNotOptimize(product);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(multiplyEigenFixed);

void multiplyFlat(benchmark::State& state) {
    std::vector<Matrix> matrices = randomMatrices();
    std::size_t i = 0;
    for (auto _ : state) {
        double product[16];
        matMultiplyMatrix16(product, matrices[i % kCount].m[0], matrices[(i + 1) % kCount].m[0]);
        benchmark::DoNotOptimize(product);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(multiplyFlat);

void transformVector(benchmark::State& state) {
    const std::vector<Matrix> matrices = randomMatrices();
    const double vector[4] = {1.0, 2.0, 3.0, 1.0};
    std::size_t i = 0;
    for (auto _ : state) {
        double image[4];
        matTransformVector4(image, matrices[i % kCount].m, vector, 1);
        benchmark::DoNotOptimize(image);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(transformVector);

void transformRowVector(benchmark::State& state) {
    const std::vector<Matrix> matrices = randomMatrices();
    const double vector[4] = {1.0, 2.0, 3.0, 1.0};
    std::size_t i = 0;
    for (auto _ : state) {
        double image[4];
        matTransformVector4(image, matrices[i % kCount].m, vector, 0);
        benchmark::DoNotOptimize(image);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(transformRowVector);

void invert(benchmark::State& state) {
    const std::vector<Matrix> matrices = randomMatrices();
    std::size_t i = 0;
    for (auto _ : state) {
        Matrix inverse;
        matInvertMatrix4(inverse.m, matrices[i % kCount].m, 0);
        benchmark::DoNotOptimize(inverse);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(invert);

/// Eigen's inverse of matrices that already are dynamic ones, in either order of storage.
template <class DynamicMatrix>
void invertEigen(benchmark::State& state) {
    std::vector<DynamicMatrix> matrices;
    for (const Matrix& matrix : randomMatrices()) {
        matrices.emplace_back(Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>>(matrix.m[0]));
    }
    std::size_t i = 0;
    for (auto _ : state) {
        DynamicMatrix inverse = matrices[i % kCount].inverse();
        benchmark::DoNotOptimize(inverse.data());
        benchmark::ClobberMemory();
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_TEMPLATE(invertEigen, Eigen::MatrixXd);
BENCHMARK_TEMPLATE(invertEigen, Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>);

void convertUnifiedAngles(benchmark::State& state) {
    std::size_t i = 0;
    for (auto _ : state) {
        double m[4][4];
        matConvertUnifiedAnglesToRotationMatrix4(m, static_cast<double>(i % 180), 30.0, 60.0, 1);
        double tilt = 0.0;
        double first = 0.0;
        double last = 0.0;
        matConvertRotationMatrixToUnifiedAngles4(m, &tilt, &first, &last, 1);
        benchmark::DoNotOptimize(tilt);
        benchmark::DoNotOptimize(first);
        benchmark::DoNotOptimize(last);
        ++i;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(convertUnifiedAngles);

}  // namespace
