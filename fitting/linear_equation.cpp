// Linear equations by LU decomposition with partial pivoting. Of this room's solvers the only one that includes
// Eigen.
#include <Eigen/LU>

#include "velquad/fitting.h"

bool matSolveLinearEquation(double** a, double* b, int n) {
    if (n < 1) return true;
    Eigen::MatrixXd matrix(n, n);
    Eigen::VectorXd side(n);
    for (int row = 0; row < n; ++row) {
        for (int column = 0; column < n; ++column)
            matrix(row, column) = a[row][column];
        side(row) = b[row];
    }
    const Eigen::MatrixXd inverse = Eigen::PartialPivLU<Eigen::MatrixXd>(matrix).inverse();
    const Eigen::VectorXd solution = inverse * side;
    for (int row = 0; row < n; ++row) {
        for (int column = 0; column < n; ++column)
            a[row][column] = inverse(row, column);
        b[row] = solution(row);
    }
    return true;
}
