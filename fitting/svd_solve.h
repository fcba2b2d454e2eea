// Least squares by singular value decomposition, for the fits of this room.
#ifndef VELQUAD_FITTING_SVD_SOLVE_H
#define VELQUAD_FITTING_SVD_SOLVE_H

namespace velquad::fitting {

/// `svdsolve` within the module.
void solveLeastSquares(double** a, const double* b, int rows, double* x, int columns, double* residual);

}  // namespace velquad::fitting

#endif  // VELQUAD_FITTING_SVD_SOLVE_H
