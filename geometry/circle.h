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

#include <cmath>
#include <cstddef>

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

/// A row of the elimination: x, y and the column of ones as they stand, and the right-hand side.
struct CircleRow {
    double x;
    double y;
    double rightSide;
};

inline CircleRow circleRow(const tagPOINT2D& p) {
    return {p.x, p.y, -(p.x * p.x) - p.y * p.y};
}

/// The sum of three terms that belong to rows in pivoted order, in the order of the points: the first two in any
/// order, then the term of the third point.
inline double sumWithLast(const double (&terms)[3], int last) {
    const double others =
        last == 0 ? terms[1] + terms[2] : (last == 1 ? terms[0] + terms[2] : terms[0] + terms[1]);
    return others + (last == 0 ? terms[0] : (last == 1 ? terms[1] : terms[2]));
}

/// The circle through three points, given as rows.
inline Circle circleThrough(const CircleRow& r0, const CircleRow& r1, const CircleRow& r2) {
    // First column: the largest |x| goes on top by exchanging two rows; the upper one of equal ones.
    const double size0 = std::fabs(r0.x);
    const double size1 = std::fabs(r1.x);
    const double size2 = std::fabs(r2.x);
    const bool isSecondLarger = size1 > size0;
    const bool isThirdLargest = size2 > (isSecondLarger ? size1 : size0);
    const auto pick = [](bool condition, const CircleRow& a, const CircleRow& b) {
        return CircleRow{condition ? a.x : b.x, condition ? a.y : b.y, condition ? a.rightSide : b.rightSide};
    };
    const CircleRow top = pick(isThirdLargest, r2, pick(isSecondLarger, r1, r0));
    const CircleRow middle = pick(!isThirdLargest && isSecondLarger, r0, r1);
    const CircleRow bottom = pick(isThirdLargest, r0, r2);

    const double middleFactor0 = middle.x / top.x;
    const double bottomFactor0 = bottom.x / top.x;
    const double middleY = middle.y - middleFactor0 * top.y;
    const double bottomY = bottom.y - bottomFactor0 * top.y;

    // Second column.
    const bool isBottomLarger = std::fabs(bottomY) > std::fabs(middleY);
    const double y1 = isBottomLarger ? bottomY : middleY;
    const double y2 = isBottomLarger ? middleY : bottomY;
    const double factor1 = isBottomLarger ? bottomFactor0 : middleFactor0;
    const double factor2 = isBottomLarger ? middleFactor0 : bottomFactor0;
    const double b1 = isBottomLarger ? bottom.rightSide : middle.rightSide;
    const double b2 = isBottomLarger ? middle.rightSide : bottom.rightSide;
    const int last = isThirdLargest ? 0 : (isBottomLarger ? 1 : 2);

    const double one1 = 1.0 - factor1;
    const double factor21 = y2 / y1;
    const double one2 = (1.0 - factor2) - factor21 * one1;

    // The inverse column by column: forward through the factors, back through the reciprocal pivots. Column c
    // belongs to the row that stands at place c.
    const double reciprocal0 = 1.0 / top.x;
    const double reciprocal1 = 1.0 / y1;
    const double reciprocal2 = 1.0 / one2;
    const double forward1 = 0.0 - factor1;
    const double forward[3] = {(0.0 - factor2) - factor21 * forward1, 0.0 - factor21, 1.0};
    const double forwardMiddle[3] = {forward1, 1.0, 0.0};
    const double forwardTop[3] = {1.0, 0.0, 0.0};
    const double rightSide[3] = {top.rightSide, b1, b2};
    double termsD[3];
    double termsE[3];
    double termsF[3];
    for (int c = 0; c < 3; ++c) {
        const double inverse2 = forward[c] * reciprocal2;
        const double inverse1 = (forwardMiddle[c] - one1 * inverse2) * reciprocal1;
        const double inverse0 = ((forwardTop[c] - top.y * inverse1) - inverse2) * reciprocal0;
        termsD[c] = rightSide[c] * inverse0;
        termsE[c] = rightSide[c] * inverse1;
        termsF[c] = rightSide[c] * inverse2;
    }
    // The last column of the inverse holds zeros with the signs of the pivots.
    return circleOfEquation(sumWithLast(termsD, last) + 0.0 * reciprocal0,
                            sumWithLast(termsE, last) + 0.0 * reciprocal1,
                            sumWithLast(termsF, last) + 0.0 * reciprocal2);
}

/// How many circles are made at once, without a branch between them.
inline constexpr std::size_t kCircleBatch = 32;

/// The circles through two points and each of `count` third points.
inline void circlesThrough(const tagPOINT2D& p0, const tagPOINT2D& p1, const tagPOINT2D* thirdPoints,
                           std::size_t count, Circle* circles) {
    const CircleRow r0 = circleRow(p0);
    const CircleRow r1 = circleRow(p1);
    for (std::size_t i = 0; i < count; ++i)
        circles[i] = circleThrough(r0, r1, circleRow(thirdPoints[i]));
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_CIRCLE_H
