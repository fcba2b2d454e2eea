// Gauss-Jordan elimination with full pivoting, in place.
//
// The search for a pivot would read the whole matrix once a step. Each row's largest candidate is found instead
// right after the row was reduced, while it is in the first cache; a step then compares one number a row and
// looks for the column in one row only. Which element wins is the same. All loops over rows are two doubles wide.
#include "fitting/gauss_jordan.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "velquad/fitting.h"

namespace velquad::fitting {

namespace {

constexpr double kSmallestPivot = 2.220446049250313e-16;
// Matrices up to this size work on the stack alone.
constexpr std::size_t kStackSize = 16;

// Working memory of one elimination, every array counting from 0.
struct Workspace {
    double* candidateMask;  // all bits set for a column without a pivot, none for one with
    double* rowLargest;     // of each row without a pivot: its largest candidate, by absolute value
    int* pivotRow;          // of each step
    int* pivotColumn;       // of each step
    bool* hasPivot;         // of each row and column

    // The bytes that a workspace for n rows takes.
    static std::size_t byteCount(std::size_t n) {
        return n * (2 * sizeof(double) + 2 * sizeof(int) + sizeof(bool));
    }
    Workspace(unsigned char* bytes, std::size_t n)
        : candidateMask(new (bytes) double[n]),
          rowLargest(new (bytes + n * sizeof(double)) double[n]),
          pivotRow(new (bytes + 2 * n * sizeof(double)) int[n]),
          pivotColumn(new (bytes + 2 * n * sizeof(double) + n * sizeof(int)) int[n]),
          hasPivot(new (bytes + 2 * n * sizeof(double) + 2 * n * sizeof(int)) bool[n]) {}
};

struct Position {
    std::size_t row;
    std::size_t column;
};

class Elimination {
  public:
    // The tables count from 1.
    Elimination(double** a, std::size_t n, double** b, std::size_t m, const Workspace& work)
        : a_(a + 1), b_(b == nullptr ? nullptr : b + 1), n_(n), m_(b == nullptr ? 0 : m), work_(work) {
        const double allBits = _mm_cvtsd_f64(_mm_castsi128_pd(_mm_set1_epi64x(-1)));
        std::fill_n(work_.hasPivot, n_, false);
        std::fill_n(work_.candidateMask, n_, allBits);
        for (std::size_t row = 0; row < n_; ++row)
            work_.rowLargest[row] = largestCandidate(elements(row));
    }

    bool run() {
        for (std::size_t step = 0; step < n_; ++step) {
            Position pivot{};
            if (!findPivot(pivot)) return false;
            work_.hasPivot[pivot.column] = true;
            work_.candidateMask[pivot.column] = 0.0;
            if (pivot.row != pivot.column) exchangeRows(pivot.row, pivot.column);
            work_.pivotRow[step] = static_cast<int>(pivot.row);
            work_.pivotColumn[step] = static_cast<int>(pivot.column);
            double& element = elements(pivot.column)[pivot.column];
            if (kSmallestPivot > std::fabs(element)) return false;
            const double factor = 1.0 / element;
            element = 1.0;
            scale(elements(pivot.column), n_, factor);
            if (m_ > 0) scale(sides(pivot.column), m_, factor);
            reduceOtherRows(pivot.column);
        }
        undoColumnExchanges();
        return true;
    }

  private:
    double* elements(std::size_t row) const { return a_[row] + 1; }
    double* sides(std::size_t row) const { return b_[row] + 1; }

    // The largest absolute value in the columns without a pivot, 0 if there is none but zeros and not-a-numbers.
    // MAXPD gives its second operand when the first is not a number.
    double largestCandidate(const double* row) const {
        const __m128d sign = _mm_set1_pd(-0.0);
        __m128d first = _mm_setzero_pd();
        __m128d second = _mm_setzero_pd();
        std::size_t k = 0;
        for (; k + 4 <= n_; k += 4) {
            const __m128d low = _mm_and_pd(_mm_loadu_pd(row + k), _mm_loadu_pd(work_.candidateMask + k));
            const __m128d high =
                _mm_and_pd(_mm_loadu_pd(row + k + 2), _mm_loadu_pd(work_.candidateMask + k + 2));
            first = _mm_max_pd(_mm_andnot_pd(sign, low), first);
            second = _mm_max_pd(_mm_andnot_pd(sign, high), second);
        }
        for (; k < n_; ++k) {
            const __m128d value = _mm_and_pd(_mm_load_sd(row + k), _mm_load_sd(work_.candidateMask + k));
            first = _mm_max_pd(_mm_andnot_pd(sign, value), first);
        }
        first = _mm_max_pd(first, second);
        return _mm_cvtsd_f64(_mm_max_sd(first, _mm_unpackhi_pd(first, first)));
    }

    // The last of the largest candidates in the order of rows and columns.
    bool findPivot(Position& pivot) const {
        double largest = 0.0;
        for (std::size_t row = 0; row < n_; ++row) {
            if (work_.hasPivot[row] || !(work_.rowLargest[row] >= largest)) continue;
            largest = work_.rowLargest[row];
            pivot.row = row;
        }
        if (largest == 0.0) return findZeroPivot(pivot);
        const double* row = elements(pivot.row);
        for (std::size_t column = n_; column-- > 0;) {
            if (work_.hasPivot[column] || std::fabs(row[column]) != largest) continue;
            pivot.column = column;
            return true;
        }
        // Only a row that overlaps others, against the rules, can have lost its largest candidate.
        return false;
    }

    // The last zero, when nothing but zeros and not-a-numbers is left.
    bool findZeroPivot(Position& pivot) const {
        for (std::size_t row = n_; row-- > 0;) {
            if (work_.hasPivot[row]) continue;
            for (std::size_t column = n_; column-- > 0;) {
                if (work_.hasPivot[column] || elements(row)[column] != 0.0) continue;
                pivot = {row, column};
                return true;
            }
        }
        return false;
    }

    void exchangeRows(std::size_t first, std::size_t second) {
        std::swap_ranges(elements(first), elements(first) + n_, elements(second));
        if (m_ > 0) std::swap_ranges(sides(first), sides(first) + m_, sides(second));
    }

    static void scale(double* row, std::size_t count, double factor) {
        for (std::size_t k = 0; k < count; ++k)
            row[k] *= factor;
    }

    static void subtractMultiple(double* row, const double* other, std::size_t count, double factor) {
        const __m128d factors = _mm_set1_pd(factor);
        std::size_t k = 0;
        for (; k + 4 <= count; k += 4) {
            const __m128d low = _mm_mul_pd(_mm_loadu_pd(other + k), factors);
            const __m128d high = _mm_mul_pd(_mm_loadu_pd(other + k + 2), factors);
            _mm_storeu_pd(row + k, _mm_sub_pd(_mm_loadu_pd(row + k), low));
            _mm_storeu_pd(row + k + 2, _mm_sub_pd(_mm_loadu_pd(row + k + 2), high));
        }
        for (; k < count; ++k)
            row[k] -= other[k] * factor;
    }

    void reduceOtherRows(std::size_t pivot) {
        for (std::size_t row = 0; row < n_; ++row) {
            if (row == pivot) continue;
            double* const reduced = elements(row);
            const double factor = std::exchange(reduced[pivot], 0.0);
            subtractMultiple(reduced, elements(pivot), n_, factor);
            if (m_ > 0) subtractMultiple(sides(row), sides(pivot), m_, factor);
            if (!work_.hasPivot[row]) work_.rowLargest[row] = largestCandidate(reduced);
        }
    }

    void undoColumnExchanges() {
        for (std::size_t row = 0; row < n_; ++row) {
            double* const exchanged = elements(row);
            for (std::size_t step = n_; step-- > 0;) {
                // A column exchanged with itself stays.
                std::swap(exchanged[work_.pivotRow[step]], exchanged[work_.pivotColumn[step]]);
            }
        }
    }

    double** a_;
    double** b_;
    std::size_t n_;
    std::size_t m_;
    Workspace work_;
};

}  // namespace

bool eliminateGaussJordan(double** a, int n, double** b, int m) {
    if (n < 1 || m < 0) return false;
    const auto size = static_cast<std::size_t>(n);
    const auto sideCount = static_cast<std::size_t>(m);
    if (size <= kStackSize) {
        constexpr std::size_t kBytes = kStackSize * (2 * sizeof(double) + 2 * sizeof(int) + sizeof(bool));
        alignas(double) unsigned char bytes[kBytes];
        return Elimination(a, size, b, sideCount, Workspace(bytes, size)).run();
    }
    const std::unique_ptr<unsigned char[]> bytes(new unsigned char[Workspace::byteCount(size)]);
    return Elimination(a, size, b, sideCount, Workspace(bytes.get(), size)).run();
}

}  // namespace velquad::fitting

namespace {

// A square matrix of its own behind a table that counts from 1.
class SquareCopy {
  public:
    // Leaves the copy empty when memory is lacking.
    SquareCopy(double** source, std::size_t n) {
        if (n >= std::numeric_limits<std::size_t>::max() / sizeof(double) / n) return;
        values_.reset(new (std::nothrow) double[n * n + 1]);
        rows_.reset(new (std::nothrow) double*[n + 1]);
        if (values_ == nullptr || rows_ == nullptr) return;
        for (std::size_t row = 1; row <= n; ++row) {
            // One before the row's first element, which is at index 1.
            rows_[row] = values_.get() + (row - 1) * n;
            std::copy_n(source[row] + 1, n, rows_[row] + 1);
        }
        isFilled_ = true;
    }
    bool isFilled() const { return isFilled_; }
    double** table() const { return rows_.get(); }

  private:
    std::unique_ptr<double[]> values_;
    std::unique_ptr<double*[]> rows_;
    bool isFilled_ = false;
};

}  // namespace

bool matGaussJordanElimination(double** a, int n, double** b, int m) {
    return velquad::fitting::eliminateGaussJordan(a, n, b, m);
}

bool matInvertMatrix(double** a, int n, double** b, int m) {
    return velquad::fitting::eliminateGaussJordan(a, n, b, m);
}

bool matInvertMatrix(double** source, double** result, int n) {
    if (source == nullptr || result == nullptr || n < 1) return false;
    const auto size = static_cast<std::size_t>(n);
    const SquareCopy copy(source, size);
    if (!copy.isFilled() || !velquad::fitting::eliminateGaussJordan(copy.table(), n, nullptr, 0))
        return false;
    for (std::size_t row = 1; row <= size; ++row)
        std::copy_n(copy.table()[row] + 1, size, result[row] + 1);
    return true;
}
