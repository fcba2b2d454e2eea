// A matrix of doubles with row pointers, as the curve routines take it.
#ifndef VELQUAD_TESTS_SUPPORT_MATRIX_H
#define VELQUAD_TESTS_SUPPORT_MATRIX_H

#include <cstddef>
#include <vector>

namespace velquad::test {

using Rows = std::vector<std::vector<double>>;

/// Row pointers in front of rows that are each an allocation of its own, so that a sanitizer sees every step
/// beyond a row.
class Matrix {
  public:
    Matrix(std::size_t rows, std::size_t columns) : content_(rows, std::vector<double>(columns, 0.0)) {
        for (auto& row : content_)
            pointers_.push_back(row.data());
    }
    /// The given rows, and `spare` rows of zeros behind them.
    explicit Matrix(const Rows& rows, std::size_t spare = 0) : Matrix(rows.size() + spare, rows[0].size()) {
        for (std::size_t i = 0; i < rows.size(); ++i)
            content_[i] = rows[i];
        for (std::size_t i = 0; i < content_.size(); ++i)
            pointers_[i] = content_[i].data();
    }
    Matrix(const Matrix&) = delete;
    Matrix& operator=(const Matrix&) = delete;

    double** rows() { return pointers_.data(); }
    double* operator[](std::size_t i) { return pointers_[i]; }

    /// The first rows in the order of their pointers.
    Rows copy(std::size_t count) const {
        Rows out;
        for (std::size_t i = 0; i < count; ++i) {
            out.emplace_back(pointers_[i], pointers_[i] + content_[0].size());
        }
        return out;
    }

  private:
    Rows content_;
    std::vector<double*> pointers_;
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_MATRIX_H
