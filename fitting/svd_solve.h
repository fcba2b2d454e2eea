// Least squares by singular value decomposition, for the fits of this room.
#ifndef VELQUAD_FITTING_SVD_SOLVE_H
#define VELQUAD_FITTING_SVD_SOLVE_H

#include <cstddef>
#include <initializer_list>

namespace velquad::fitting {

/// `svdsolve` within the module.
void solveLeastSquares(double** a, const double* b, int rows, double* x, int columns, double* residual);

/// One right-hand side of a system, and where its solution goes.
struct LeastSquaresSide {
    const double* side;
    double* solution;
};

/// The shortest least-squares solutions, as of `svdsolve`, of one matrix and several right-hand sides. Nothing is
/// stored when memory is lacking for the decomposition.
/// @param matrix  `rows` times `columns` elements, row by row, from index 0, like the sides.
void solveLeastSquares(const double* matrix, std::size_t rows, std::size_t columns,
                       std::initializer_list<LeastSquaresSide> sides);

}  // namespace velquad::fitting

#endif  // VELQUAD_FITTING_SVD_SOLVE_H
