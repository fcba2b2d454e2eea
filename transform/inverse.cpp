// The inverse of a 4 by 4 matrix by LU decomposition with partial pivoting. The matrix is a dynamic one for
// Eigen: its inverse of matrices of a fixed size of 4 goes by cofactors and rounds differently. The only file of
// this room that includes Eigen.
#include <Eigen/LU>

#include "transform/matrix4.h"
#include "velquad/framework.h"

namespace {

using DynamicMatrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

}  // namespace

namespace velquad::transform {

bool invert(Rows out, ConstRows in, bool isTransposed) {
    try {
        DynamicMatrix matrix(4, 4);
        std::memcpy(matrix.data(), in, 16 * sizeof(double));
        const Eigen::PartialPivLU<DynamicMatrix> decomposition(matrix);
        matrix = decomposition.inverse();
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 4; ++column) {
                out[row][column] = isTransposed ? matrix(column, row) : matrix(row, column);
            }
        }
        return true;
    } catch (CException* exception) {
        // A host of the class framework may report lack of memory this way.
        exception->Delete();
        return false;
    } catch (...) {
        return false;
    }
}

}  // namespace velquad::transform
