// The circle through three points for inner loops: the inverse of
//
//     | x0 y0 1 0 |
//     | x1 y1 1 0 |      by LU decomposition with partial pivoting, times (b0, b1, b2, 1),
//     | x2 y2 1 0 |      b = -x^2 - y^2,
//     |  0  0 0 1 |
//
// written out. Every operation that can change a bit of the result is done in the order of the general inverse
// of the transforms; what the last row and column contribute are additions of zero. Where a pivot vanishes or a
// number overflows, centre or radius are infinite or not a number, here as there, but which of them may differ.
#ifndef VELQUAD_GEOMETRY_CIRCLE_H
#define VELQUAD_GEOMETRY_CIRCLE_H

#include <emmintrin.h>

#include <cmath>

#include "velquad/types.h"

namespace velquad::geometry {

struct Circle {
    double x = 0.0;
    double y = 0.0;
    double radius = 0.0;
};

/// The circle x^2 + y^2 + d x + e y + f = 0.
inline Circle circleOfEquation(double d, double e, double f) {
    const double x = -d * 0.5;
    const double y = -e * 0.5;
    return {x, y, std::sqrt(x * x + y * y - f)};
}

/// Two circles side by side.
struct CirclePair {
    __m128d x;
    __m128d y;
    __m128d radius;
};

/// Two rows of the elimination side by side: x, y and the right-hand side. The third column holds ones.
struct CircleRows {
    __m128d x;
    __m128d y;
    __m128d rightSide;
};

inline CircleRows circleRows(__m128d x, __m128d y) {
    const __m128d minusXX = _mm_xor_pd(_mm_mul_pd(x, x), _mm_set1_pd(-0.0));
    return {x, y, _mm_sub_pd(minusXX, _mm_mul_pd(y, y))};
}

/// The rows of one point, twice.
inline CircleRows circleRows(const tagPOINT2D& p) {
    return circleRows(_mm_set1_pd(p.x), _mm_set1_pd(p.y));
}

/// The rows of two points.
inline CircleRows circleRows(const tagPOINT2D& first, const tagPOINT2D& second) {
    const __m128d a = _mm_loadu_pd(&first.x);
    const __m128d b = _mm_loadu_pd(&second.x);
    return circleRows(_mm_unpacklo_pd(a, b), _mm_unpackhi_pd(a, b));
}

inline __m128d absolute(__m128d value) {
    return _mm_andnot_pd(_mm_set1_pd(-0.0), value);
}

/// `a` where the mask is set, else `b`.
inline __m128d select(__m128d mask, __m128d a, __m128d b) {
    return _mm_or_pd(_mm_and_pd(mask, a), _mm_andnot_pd(mask, b));
}

inline CircleRows select(__m128d mask, const CircleRows& a, const CircleRows& b) {
    return {select(mask, a.x, b.x), select(mask, a.y, b.y), select(mask, a.rightSide, b.rightSide)};
}

/// One row of the inverse times the right-hand side, with the terms in pivoted order. The sum runs in the order of
/// the points: two terms in either order, then that of the third point. The last column of the inverse holds a
/// zero with the sign of the pivot.
inline __m128d solutionElement(const __m128d (&terms)[3], __m128d isThirdOnTop, __m128d isThirdInMiddle,
                               __m128d reciprocalPivot) {
    const __m128d last = select(isThirdOnTop, terms[0], select(isThirdInMiddle, terms[1], terms[2]));
    const __m128d a = select(isThirdOnTop, terms[1], terms[0]);
    const __m128d b = select(_mm_or_pd(isThirdOnTop, isThirdInMiddle), terms[2], terms[1]);
    const __m128d sum = _mm_add_pd(_mm_add_pd(a, b), last);
    return _mm_add_pd(sum, _mm_mul_pd(_mm_setzero_pd(), reciprocalPivot));
}

/// The circles through three points each, without a branch.
inline CirclePair circlesThrough(const CircleRows& r0, const CircleRows& r1, const CircleRows& r2) {
    const __m128d zero = _mm_setzero_pd();
    const __m128d one = _mm_set1_pd(1.0);

    // First column: the row of the largest |x| goes on top in exchange for the first one; the upper of equal ones.
    const __m128d size0 = absolute(r0.x);
    const __m128d size1 = absolute(r1.x);
    const __m128d isSecondLarger = _mm_cmpgt_pd(size1, size0);
    const __m128d isThirdOnTop = _mm_cmpgt_pd(absolute(r2.x), select(isSecondLarger, size1, size0));
    const CircleRows larger = select(isSecondLarger, r1, r0);
    const CircleRows smaller = select(isSecondLarger, r0, r1);
    const CircleRows top = select(isThirdOnTop, r2, larger);
    const CircleRows middle = select(isThirdOnTop, r1, smaller);
    const CircleRows bottom = select(isThirdOnTop, r0, r2);
    const __m128d middleFactor = _mm_div_pd(middle.x, top.x);
    const __m128d bottomFactor = _mm_div_pd(bottom.x, top.x);
    const __m128d middleY = _mm_sub_pd(middle.y, _mm_mul_pd(middleFactor, top.y));
    const __m128d bottomY = _mm_sub_pd(bottom.y, _mm_mul_pd(bottomFactor, top.y));

    // Second column: the larger |y| of what is left goes to the middle.
    const __m128d isExchanged = _mm_cmpgt_pd(absolute(bottomY), absolute(middleY));
    const __m128d isThirdInMiddle = _mm_andnot_pd(isThirdOnTop, isExchanged);
    const __m128d y1 = select(isExchanged, bottomY, middleY);
    const __m128d y2 = select(isExchanged, middleY, bottomY);
    const __m128d factor1 = select(isExchanged, bottomFactor, middleFactor);
    const __m128d factor2 = select(isExchanged, middleFactor, bottomFactor);
    const __m128d rightSides[3] = {top.rightSide, select(isExchanged, bottom.rightSide, middle.rightSide),
                                   select(isExchanged, middle.rightSide, bottom.rightSide)};
    const __m128d factor21 = _mm_div_pd(y2, y1);
    const __m128d one1 = _mm_sub_pd(one, factor1);
    const __m128d one2 = _mm_sub_pd(_mm_sub_pd(one, factor2), _mm_mul_pd(factor21, one1));

    // The inverse, a column for each row in pivoted order: forward through the factors, back through the
    // reciprocals of the pivots.
    const __m128d reciprocal0 = _mm_div_pd(one, top.x);
    const __m128d reciprocal1 = _mm_div_pd(one, y1);
    const __m128d reciprocal2 = _mm_div_pd(one, one2);
    const __m128d minusFactor1 = _mm_sub_pd(zero, factor1);
    const __m128d forward0[3] = {one, zero, zero};
    const __m128d forward1[3] = {minusFactor1, one, zero};
    const __m128d forward2[3] = {_mm_sub_pd(_mm_sub_pd(zero, factor2), _mm_mul_pd(factor21, minusFactor1)),
                                 _mm_sub_pd(zero, factor21), one};
    __m128d terms0[3];
    __m128d terms1[3];
    __m128d terms2[3];
    for (int c = 0; c < 3; ++c) {
        const __m128d inverse2 = _mm_mul_pd(forward2[c], reciprocal2);
        const __m128d inverse1 = _mm_mul_pd(_mm_sub_pd(forward1[c], _mm_mul_pd(one1, inverse2)), reciprocal1);
        const __m128d inverse0 = _mm_mul_pd(
            _mm_sub_pd(_mm_sub_pd(forward0[c], _mm_mul_pd(top.y, inverse1)), inverse2), reciprocal0);
        terms0[c] = _mm_mul_pd(rightSides[c], inverse0);
        terms1[c] = _mm_mul_pd(rightSides[c], inverse1);
        terms2[c] = _mm_mul_pd(rightSides[c], inverse2);
    }
    const __m128d d = solutionElement(terms0, isThirdOnTop, isThirdInMiddle, reciprocal0);
    const __m128d e = solutionElement(terms1, isThirdOnTop, isThirdInMiddle, reciprocal1);
    const __m128d f = solutionElement(terms2, isThirdOnTop, isThirdInMiddle, reciprocal2);

    const __m128d minusHalf = _mm_set1_pd(-0.5);
    const __m128d x = _mm_mul_pd(d, minusHalf);
    const __m128d y = _mm_mul_pd(e, minusHalf);
    const __m128d squared = _mm_sub_pd(_mm_add_pd(_mm_mul_pd(x, x), _mm_mul_pd(y, y)), f);
    return {x, y, _mm_sqrt_pd(squared)};
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_CIRCLE_H
