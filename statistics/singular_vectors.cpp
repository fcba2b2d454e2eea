// Singular value decomposition by two-sided Jacobi rotations. The only file of this room that includes Eigen.
#include "statistics/singular_vectors.h"

#include <Eigen/SVD>
#include <limits>

#include "velquad/framework.h"

namespace {

template <std::size_t Size>
velquad::statistics::SingularVectors<Size> decomposeOrThrow(
    const velquad::statistics::SquareMatrix<Size>& matrix) {
    constexpr auto kSize = static_cast<Eigen::Index>(Size);
    Eigen::MatrixXd source(kSize, kSize);
    for (std::size_t row = 0; row < Size; ++row) {
        for (std::size_t column = 0; column < Size; ++column)
            source(static_cast<Eigen::Index>(row), static_cast<Eigen::Index>(column)) = matrix[row][column];
    }
    const Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(source, Eigen::ComputeThinV);
    // A matrix that is not finite is left undecomposed, with whatever its memory held.
    const bool isValid = decomposition.info() != Eigen::InvalidInput;
    velquad::statistics::SingularVectors<Size> result{};
    for (std::size_t row = 0; row < Size; ++row) {
        constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
        const auto i = static_cast<Eigen::Index>(row);
        result.values[row] = isValid ? decomposition.singularValues()(i) : kNotANumber;
        for (std::size_t column = 0; column < Size; ++column) {
            result.vectors[row][column] =
                isValid ? decomposition.matrixV()(i, static_cast<Eigen::Index>(column)) : kNotANumber;
        }
    }
    return result;
}

template <std::size_t Size>
std::optional<velquad::statistics::SingularVectors<Size>> decomposeGuarded(
    const velquad::statistics::SquareMatrix<Size>& matrix) {
    try {
        return decomposeOrThrow(matrix);
    } catch (CException* exception) {
        // A host of the class framework may report lack of memory this way.
        exception->Delete();
        return std::nullopt;
    } catch (...) {
        return std::nullopt;
    }
}

}  // namespace

namespace velquad::statistics {

std::optional<SingularVectors<2>> decompose(const SquareMatrix<2>& matrix) {
    return decomposeGuarded(matrix);
}

std::optional<SingularVectors<3>> decompose(const SquareMatrix<3>& matrix) {
    return decomposeGuarded(matrix);
}

}  // namespace velquad::statistics
