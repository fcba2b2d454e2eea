// The affine map between two sets of points, by least squares. Each pair of points gives two rows for the six
// unknowns: one for the target's x, one for its y.
#include <limits>
#include <new>

#include "fitting/svd_solve.h"
#include "velquad/fitting.h"
#include "velquad/framework.h"

namespace {

constexpr int kUnknowns = 6;

void storeRow(double* row, double first, double second, double third, double fourth, double fifth,
              double sixth) {
    row[1] = first;
    row[2] = second;
    row[3] = third;
    row[4] = fourth;
    row[5] = fifth;
    row[6] = sixth;
}

void storeTransform(const double* map, double** transform) {
    transform[1][1] = map[1];
    transform[1][2] = map[2];
    transform[2][1] = map[3];
    transform[2][2] = map[4];
    transform[1][3] = map[5];
    transform[2][3] = map[6];
    transform[3][1] = 0.0;
    transform[3][2] = 0.0;
    transform[3][3] = 1.0;
}

void fitAffineMap(double** target, double** source, int count, double** transform, double* residual) {
    // There is no memory for twice as many rows as an int counts, nor for less than none.
    if (count < 0 || count > std::numeric_limits<int>::max() / 2) throw std::bad_alloc();
    const int rowCount = 2 * count;
    svd::CDMatrix design(1, rowCount, 1, kUnknowns);
    svd::CDVector side(1, rowCount);
    double** const rows = design.get();
    double* const values = side.get();
    for (int i = 1; i <= count; ++i) {
        const int row = 2 * i - 1;
        const double x = source[i][1];
        const double y = source[i][2];
        storeRow(rows[row], x, y, 0.0, 0.0, 1.0, 0.0);
        storeRow(rows[row + 1], 0.0, 0.0, x, y, 0.0, 1.0);
        values[row] = target[i][1];
        values[row + 1] = target[i][2];
    }
    svd::CDVector map(1, kUnknowns);
    velquad::fitting::solveLeastSquares(rows, values, rowCount, map.get(), kUnknowns, residual);
    storeTransform(map.get(), transform);
}

// Kept: a null table and no memory are passed over in silence, with nothing computed.
void tryToFitAffineMap(double** target, double** source, int count, double** transform, double* residual) {
    if (target == nullptr || source == nullptr || transform == nullptr || residual == nullptr) return;
    try {
        fitAffineMap(target, source, count, transform, residual);
    } catch (const std::bad_alloc&) {
        return;
    }
}

}  // namespace

bool svdhomfit(double** target, double** source, int count, double** transform, double* residual) {
    try {
        tryToFitAffineMap(target, source, count, transform, residual);
        return true;
    } catch (CException* exception) {
        // A host of the class framework may report lack of memory this way.
        exception->Delete();
    } catch (...) {
    }
    *residual = velquad::kNoValue;
    return false;
}
