// The shortest least-squares solution of any linear system, by singular values. QR with column pivoting reduces a
// system with more rows than columns first; Jacobi rotations then reach small singular values with full relative
// accuracy, which bidiagonalising methods do not.
#include "fitting/svd_solve.h"

#include <Eigen/SVD>
#include <algorithm>
#include <limits>

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

// Neither the matrix nor the side is empty.
Eigen::VectorXd shortestSolution(const Eigen::MatrixXd& matrix, const Eigen::VectorXd& side) {
    const Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
    // A matrix that is not finite is left undecomposed, with whatever its memory held.
    if (decomposition.info() == Eigen::InvalidInput) {
        return Eigen::VectorXd::Constant(matrix.cols(), std::numeric_limits<double>::quiet_NaN());
    }
    return decomposition.solve(side);
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
