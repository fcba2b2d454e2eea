// Equality of numbers to a number of decimal places, and equality of points.
#include <cmath>
#include <cstddef>

#include "frame/convert.h"
#include "frame/math.h"
#include "frame/primitives.h"
#include "frame/rounding.h"
#include "velquad/frame.h"

namespace velquad::frame {

double powerOfTen(int exponent) {
    constexpr float kBase = 10.0F;
    return pow(static_cast<double>(kBase), static_cast<double>(exponent));
}

double matRoundToDecimals(double value, int decimals, int guardDigits) {
    const double scale = powerOfTen(wrapAdd(decimals, guardDigits));
    if (!(kNoValue / scale > value)) return value;
    double scaled = scale * value;
    double half = 5.0;
    for (int digit = 0; digit < guardDigits; ++digit) {
        scaled = value < 0.0 ? scaled - half : scaled + half;
        half *= 10.0;
    }
    double integral = 0.0;
    std::modf(scaled / powerOfTen(guardDigits), &integral);
    return integral / powerOfTen(decimals);
}

}  // namespace velquad::frame

namespace {

using velquad::frame::isSmaller;
using velquad::frame::largest;
using velquad::frame::wrapSub;

constexpr double kIntegerTolerance = 1e-7;
constexpr double kNullTolerance = 1e-40;

bool sameInteger(int a, int b) {
    return isSmaller(kIntegerTolerance, static_cast<double>(wrapSub(b, a)));
}

/// Relative equality of two vectors; the dimension only decides how many coordinates take part.
template <std::size_t Dimension>
bool sameVector(const double (&a)[Dimension], const double (&b)[Dimension]) {
    double difference = 0.0;
    double magnitude = 0.0;
    bool isSecondNull = true;
    for (std::size_t i = 0; i < Dimension; ++i) {
        difference = largest(difference, std::fabs(b[i] - a[i]));
        magnitude = largest(magnitude, std::fabs(a[i]));
        isSecondNull = isSecondNull && isSmaller(kNullTolerance, b[i]);
    }
    if (isSmaller(kNullTolerance, difference)) return true;
    if (!isSmaller(kNullTolerance, magnitude)) return isSmaller(kNullTolerance, difference / magnitude);
    return isSecondNull;
}

}  // namespace

int matIsEqual(double a, double b, unsigned int decimals) {
    const int places = static_cast<int>(decimals);
    const double tolerance = 1.0 / velquad::frame::powerOfTen(places);
    const double difference = std::fabs(b - a);
    if (!(tolerance > difference)) return 0;
    return tolerance > velquad::frame::matRoundToDecimals(difference, places, 1) ? 1 : 0;
}

extern "C" int matSamePoint(const tagPOINT* a, const tagPOINT* b) {
    return velquad::frame::samePoint(*a, *b) ? 1 : 0;
}

extern "C" int matSameVector2L(const tagPOINT* a, const tagPOINT* b) {
    return sameInteger(a->x, b->x) && sameInteger(a->y, b->y) ? 1 : 0;
}

extern "C" int matSameVector3L(const int* a, const int* b) {
    return sameInteger(a[0], b[0]) && sameInteger(a[1], b[1]) && sameInteger(a[2], b[2]) ? 1 : 0;
}

extern "C" int matSameVector2D(const tagPOINT2D* a, const tagPOINT2D* b) {
    return sameVector({a->x, a->y}, {b->x, b->y}) ? 1 : 0;
}

extern "C" int matSameVector3D(const tagPOINT3D* a, const tagPOINT3D* b) {
    return sameVector({a->x, a->y, a->z}, {b->x, b->y, b->z}) ? 1 : 0;
}
