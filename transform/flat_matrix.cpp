// Operations on flat matrices. Products and inverses go through the 4 by 4 form, so that both forms give the
// same numbers.
#include "transform/flat_matrix.h"

#include <cmath>

#include "velquad/transform.h"

using velquad::transform::fromFlat;
using velquad::transform::invert;
using velquad::transform::multiply;
using velquad::transform::transformPoint;
using velquad::transform::transformPointTransposed;

int matConvertMatrix16(double (*m)[4], double* flat, int toFlat) {
    if (toFlat != 0) {
        velquad::transform::toFlat(flat, m);
    } else {
        fromFlat(m, flat);
    }
    return 1;
}

int matMultiplyMatrix16(double* out, double* a, double* b) {
    double left[4][4];
    double right[4][4];
    double product[4][4];
    fromFlat(left, a);
    fromFlat(right, b);
    multiply(product, left, right);
    velquad::transform::toFlat(out, product);
    return 1;
}

int matInvertMatrix16(double* out, double* in, int isTransposed) {
    double m[4][4];
    fromFlat(m, in);
    if (!invert(m, m, isTransposed != 0)) return 0;
    velquad::transform::toFlat(out, m);
    return 1;
}

int matTransformVector16(double* vector, double* m, int transposed) {
    const bool isDone = transposed != 0 ? transformPointTransposed(vector, m) : transformPoint(vector, m);
    return isDone ? 1 : 0;
}

double matCalcDistanceOfMatrices16(double* a, double* b) {
    double largest = 0.0;
    for (int i = 0; i < 16; ++i) {
        const double difference = std::fabs(a[i] - b[i]);
        if (difference > largest) largest = difference;
    }
    return largest;
}
