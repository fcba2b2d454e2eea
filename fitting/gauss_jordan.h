// Gauss-Jordan elimination as the other files of this room call it.
#ifndef VELQUAD_FITTING_GAUSS_JORDAN_H
#define VELQUAD_FITTING_GAUSS_JORDAN_H

namespace velquad::fitting {

/// The elimination behind `matGaussJordanElimination`, with its tables and its result.
bool eliminateGaussJordan(double** a, int n, double** b, int m);

}  // namespace velquad::fitting

#endif  // VELQUAD_FITTING_GAUSS_JORDAN_H
