// Operations on 4 by 4 matrices: product, transformed vector, and how far matrices are apart.
#include <cmath>
#include <cstdint>

#include "transform/matrix4.h"
#include "velquad/transform.h"

namespace {

using namespace velquad::transform;

bool sharesMemory(ConstRows a, ConstRows b) {
    constexpr std::uintptr_t kSize = 16 * sizeof(double);
    const auto first = reinterpret_cast<std::uintptr_t>(a);
    const auto second = reinterpret_cast<std::uintptr_t>(b);
    return first < second + kSize && second < first + kSize;
}

/// The product into a matrix that shares memory with a factor.
/// Kept: the place of an element is cleared before its sum is formed, and later sums read the results that
/// already stand. So a factor that is multiplied in place yields other numbers than the product; the identity,
/// multiplied in place by the identity, becomes the zero matrix.
void multiplyInPlace(Rows out, ConstRows a, ConstRows b) {
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            out[row][column] = 0.0;
            out[row][column] = productElement(a, b, row, column);
        }
    }
}

}  // namespace

extern "C" int matMultiplyMatrix4(double (*out)[4], const double (*a)[4], const double (*b)[4]) {
    if (sharesMemory(out, a) || sharesMemory(out, b)) {
        multiplyInPlace(out, a, b);
    } else {
        multiply(out, a, b);
    }
    return 1;
}

extern "C" int matTransformVector4(double* out, const double (*m)[4], const double* in, int rowTimesVector) {
    const bool isDone = rowTimesVector != 0 ? transformColumn(out, m, in) : transformRow(out, m, in);
    return isDone ? 1 : 0;
}

extern "C" int matInvertMatrix4(double (*out)[4], const double (*in)[4], int isTransposed) {
    return invert(out, in, isTransposed != 0) ? 1 : 0;
}

double matCalcDistanceOfMatrices4(double (*a)[4], double (*b)[4]) {
    double largest = 0.0;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const double difference = std::fabs(a[row][column] - b[row][column]);
            if (difference > largest) largest = difference;
        }
    }
    return largest;
}

double matCalcAbsoluteMaxOfMatrix4(double (*m)[4]) {
    double largest = 0.0;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const double magnitude = std::fabs(m[row][column]);
            if (magnitude > largest) largest = magnitude;
        }
    }
    return largest;
}
