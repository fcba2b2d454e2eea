// The shortest least-squares solution of any linear system, by singular values. QR with column pivoting reduces a
// system with more rows than columns first; Jacobi rotations then reach small singular values with full relative
// accuracy, which bidiagonalising methods do not.
#include "fitting/svd_solve.h"

#include <Eigen/SVD>
#include <algorithm>
#include <limits>
#include <new>

#include "velquad/fitting.h"

namespace velquad::fitting {

namespace {

// Tables count from 1, matrices from 0.
Eigen::MatrixXd matrixOf(double** a, int rows, int columns) {
    Eigen::MatrixXd matrix(rows, columns);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            matrix(row, column) = a[row + 1][column + 1];
    }
    return matrix;
}

using Decomposition = Eigen::JacobiSVD<Eigen::MatrixXd>;

// A decomposition that is not destroyed when it fails for lack of memory. It destroys its QR part before it makes a
// new one in its place, so that a failure in between would release memory twice. Some memory is lost instead.
class GuardedDecomposition {
  public:
    explicit GuardedDecomposition(const Eigen::MatrixXd& matrix)
        : decomposition_(new (storage_) Decomposition) {
        decomposition_->compute(matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
    }
    GuardedDecomposition(const GuardedDecomposition&) = delete;
    GuardedDecomposition& operator=(const GuardedDecomposition&) = delete;
    ~GuardedDecomposition() { decomposition_->~Decomposition(); }

    const Decomposition* operator->() const { return decomposition_; }

  private:
    alignas(Decomposition) unsigned char storage_[sizeof(Decomposition)];
    Decomposition* decomposition_;
};

// Neither the matrix nor the side is empty.
Eigen::VectorXd shortestSolution(const Eigen::MatrixXd& matrix, const Eigen::VectorXd& side) {
    const GuardedDecomposition decomposition(matrix);
    // A matrix that is not finite is left undecomposed, with whatever its memory held.
    if (decomposition->info() == Eigen::InvalidInput) {
        return Eigen::VectorXd::Constant(matrix.cols(), std::numeric_limits<double>::quiet_NaN());
    }
    return decomposition->solve(side);
}

}  // namespace

void solveLeastSquares(double** a, const double* b, int rows, double* x, int columns, double* residual) {
    rows = std::max(rows, 0);
    columns = std::max(columns, 0);
    Eigen::VectorXd solution = Eigen::VectorXd::Zero(columns);
    double squaredError = 0.0;
    if (rows > 0) {
        const Eigen::VectorXd side = Eigen::Map<const Eigen::VectorXd>(b + 1, rows);
        if (columns > 0) {
            const Eigen::MatrixXd matrix = matrixOf(a, rows, columns);
            solution = shortestSolution(matrix, side);
            if (residual != nullptr) squaredError = (matrix * solution - side).squaredNorm();
        } else {
            squaredError = side.squaredNorm();
        }
    }
    for (int column = 0; column < columns; ++column)
        x[column + 1] = solution(column);
    if (residual != nullptr) *residual = squaredError;
}

}  // namespace velquad::fitting

void svdsolve(double** a, double* b, int rows, double* x, int columns, double* residual) {
    velquad::fitting::solveLeastSquares(a, b, rows, x, columns, residual);
}
