// The shortest least-squares solution of any linear system, by singular values. QR with column pivoting reduces a
// system with more rows than columns first; Jacobi rotations then reach small singular values with full relative
// accuracy, which bidiagonalising methods do not.
#include "fitting/svd_solve.h"

#include <Eigen/SVD>
#include <algorithm>
#include <limits>

#include "fitting/working_memory.h"
#include "velquad/fitting.h"

namespace velquad::fitting {

namespace {

using RowMajorMatrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

// Tables count from 1, matrices from 0.
Eigen::MatrixXd matrixOf(double** a, int rows, int columns) {
    Eigen::MatrixXd matrix(rows, columns);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            matrix(row, column) = a[row + 1][column + 1];
    }
    return matrix;
}

// The decomposition of a matrix that is not empty.
class ShortestSolver {
  public:
    explicit ShortestSolver(const Eigen::MatrixXd& matrix) : decomposition_(decompose(matrix)) {}

    Eigen::VectorXd solve(const Eigen::VectorXd& side) const {
        // A matrix that is not finite is left undecomposed, with whatever its memory held.
        if (decomposition_.info() == Eigen::InvalidInput) {
            return Eigen::VectorXd::Constant(decomposition_.cols(), std::numeric_limits<double>::quiet_NaN());
        }
        return decomposition_.solve(side);
    }

  private:
    using Decomposition = Eigen::JacobiSVD<Eigen::MatrixXd>;

    static Decomposition decompose(const Eigen::MatrixXd& matrix) {
        requireMemoryForDecomposition(static_cast<std::size_t>(matrix.rows()),
                                      static_cast<std::size_t>(matrix.cols()));
        return Decomposition(matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
    }

    Decomposition decomposition_;
};

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
            solution = ShortestSolver(matrix).solve(side);
            if (residual != nullptr) squaredError = (matrix * solution - side).squaredNorm();
        } else {
            squaredError = side.squaredNorm();
        }
    }
    for (int column = 0; column < columns; ++column)
        x[column + 1] = solution(column);
    if (residual != nullptr) *residual = squaredError;
}

void solveLeastSquares(const double* matrix, std::size_t rows, std::size_t columns,
                       std::initializer_list<LeastSquaresSide> sides) {
    if (rows == 0 || columns == 0) {
        for (const LeastSquaresSide& side : sides)
            std::fill_n(side.solution, columns, 0.0);
        return;
    }
    const auto rowCount = static_cast<Eigen::Index>(rows);
    const auto columnCount = static_cast<Eigen::Index>(columns);
    const ShortestSolver solver(Eigen::Map<const RowMajorMatrix>(matrix, rowCount, columnCount));
    for (const LeastSquaresSide& side : sides) {
        Eigen::Map<Eigen::VectorXd>(side.solution, columnCount) =
            solver.solve(Eigen::Map<const Eigen::VectorXd>(side.side, rowCount));
    }
}

}  // namespace velquad::fitting

void svdsolve(double** a, double* b, int rows, double* x, int columns, double* residual) {
    velquad::fitting::solveLeastSquares(a, b, rows, x, columns, residual);
}
