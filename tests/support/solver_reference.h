// Gauss-Jordan elimination step by step, with the whole remaining matrix searched for each pivot.
#ifndef VELQUAD_TESTS_SUPPORT_SOLVER_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_SOLVER_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace velquad::test {

/// A matrix of rows by columns and its table, both counting from 1.
class OneBasedMatrix {
  public:
    OneBasedMatrix(int rows, int columns, double value = 0.0)
        : rows_(rows), columns_(columns), values_(static_cast<std::size_t>(rows * columns) + 1, value) {}
    OneBasedMatrix(int rows, int columns, const std::vector<double>& values) : OneBasedMatrix(rows, columns) {
        for (std::size_t i = 0; i < values.size(); ++i)
            values_[i + 1] = values[i];
    }
    /// The table; valid until the object is copied from or changes.
    double** table() {
        pointers_.assign(static_cast<std::size_t>(rows_) + 1, nullptr);
        for (int row = 1; row <= rows_; ++row)
            pointers_[static_cast<std::size_t>(row)] = values_.data() + (row - 1) * columns_;
        return pointers_.data();
    }
    double& at(int row, int column) {
        return values_[static_cast<std::size_t>((row - 1) * columns_ + column)];
    }
    double at(int row, int column) const {
        return values_[static_cast<std::size_t>((row - 1) * columns_ + column)];
    }
    /// All elements row by row.
    std::vector<double> values() const { return {values_.begin() + 1, values_.end()}; }

  private:
    int rows_;
    int columns_;
    std::vector<double> values_;
    std::vector<double*> pointers_;
};

/// The literal elimination.
inline bool gaussJordanLiterally(double** a, int n, double** b, int m) {
    if (n < 1 || m < 0) return false;
    std::vector<int> pivotColumn(static_cast<std::size_t>(n) + 1);
    std::vector<int> pivotRow(static_cast<std::size_t>(n) + 1);
    std::vector<int> pivotUse(static_cast<std::size_t>(n) + 1);
    const auto use = [&pivotUse](int k) -> int& { return pivotUse[static_cast<std::size_t>(k)]; };
    for (int i = 1; i <= n; ++i) {
        double big = 0.0;
        int pr = -1;
        int pc = -1;
        for (int j = 1; j <= n; ++j) {
            if (use(j) == 1) continue;
            for (int k = 1; k <= n; ++k) {
                if (use(k) == 0) {
                    if (std::fabs(a[j][k]) >= big) {
                        big = std::fabs(a[j][k]);
                        pr = j;
                        pc = k;
                    }
                } else if (use(k) > 1) {
                    return false;
                }
            }
        }
        if (pr == -1) return false;
        ++use(pc);
        if (pr != pc) {
            for (int l = 1; l <= n; ++l)
                std::swap(a[pr][l], a[pc][l]);
            for (int l = 1; l <= m; ++l)
                std::swap(b[pr][l], b[pc][l]);
        }
        pivotRow[static_cast<std::size_t>(i)] = pr;
        pivotColumn[static_cast<std::size_t>(i)] = pc;
        if (2.220446049250313e-16 > std::fabs(a[pc][pc])) return false;
        const double p = 1.0 / a[pc][pc];
        a[pc][pc] = 1.0;
        for (int l = 1; l <= n; ++l)
            a[pc][l] *= p;
        for (int l = 1; l <= m; ++l)
            b[pc][l] *= p;
        for (int q = 1; q <= n; ++q) {
            if (q == pc) continue;
            const double d = a[q][pc];
            a[q][pc] = 0.0;
            for (int l = 1; l <= n; ++l)
                a[q][l] -= a[pc][l] * d;
            for (int l = 1; l <= m; ++l)
                b[q][l] -= b[pc][l] * d;
        }
    }
    for (int l = n; l >= 1; --l) {
        const int first = pivotRow[static_cast<std::size_t>(l)];
        const int second = pivotColumn[static_cast<std::size_t>(l)];
        if (first == second) continue;
        for (int k = 1; k <= n; ++k)
            std::swap(a[k][first], a[k][second]);
    }
    return true;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_SOLVER_REFERENCE_H
