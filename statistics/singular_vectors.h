// Singular values and vectors of the small matrices that line and plane fits decompose.
#ifndef VELQUAD_STATISTICS_SINGULAR_VECTORS_H
#define VELQUAD_STATISTICS_SINGULAR_VECTORS_H

#include <array>
#include <cstddef>
#include <optional>

namespace velquad::statistics {

template <std::size_t Size>
using SquareMatrix = std::array<std::array<double, Size>, Size>;

/// A = U S V^T without U. Everything is not-a-number for a matrix that is not finite.
template <std::size_t Size>
struct SingularVectors {
    std::array<double, Size> values;  ///< The diagonal of S, falling.
    SquareMatrix<Size> vectors;       ///< V; each column belongs to the value with its index.

    std::array<double, Size> column(std::size_t index) const {
        std::array<double, Size> result{};
        for (std::size_t row = 0; row < Size; ++row)
            result[row] = vectors[row][index];
        return result;
    }
};

/// @return nothing when memory is lacking.
std::optional<SingularVectors<2>> decompose(const SquareMatrix<2>& matrix);
std::optional<SingularVectors<3>> decompose(const SquareMatrix<3>& matrix);

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_SINGULAR_VECTORS_H
