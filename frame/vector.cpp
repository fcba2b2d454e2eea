// Cross product, normalisation and rotation of vectors.
#include <cmath>

#include "frame/math.h"
#include "frame/primitives.h"
#include "velquad/frame.h"

using velquad::frame::crossProduct;
using velquad::frame::isSmaller;
using velquad::frame::lengthOf;

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kFullTurnRad = 6.283185307179586;
constexpr double kNullLength = 1e-40;
constexpr double kPlaneTolerance = 1e-7;

}  // namespace

extern "C" int matCalcOrthogonal(double* result, const tagPOINT3D* p0, const tagPOINT3D* p1,
                                 const tagPOINT3D* p2) {
    if (result == nullptr || p0 == nullptr || p1 == nullptr || p2 == nullptr) return 0;
    const tagPOINT3D product = crossProduct(*p0, *p1, *p2);
    result[0] = product.x;
    result[1] = product.y;
    result[2] = product.z;
    return kPlaneTolerance > lengthOf(product) ? 0 : 1;
}

extern "C" int matCalcNormal(tagPOINT3D* result, const tagPOINT3D* p0, const tagPOINT3D* p1,
                             const tagPOINT3D* p2) {
    if (result == nullptr || p0 == nullptr || p1 == nullptr || p2 == nullptr) return 0;
    *result = crossProduct(*p0, *p1, *p2);
    return matNormalizeVector3D(result);
}

extern "C" int matNormalizeVector2D(tagPOINT2D* vector) {
    if (vector == nullptr) return 0;
    const double length = lengthOf(*vector);
    if (isSmaller(kNullLength, length)) {
        *vector = {0.0, 0.0};
        return 0;
    }
    const double reciprocal = 1.0 / length;
    *vector = {vector->x * reciprocal, vector->y * reciprocal};
    return 1;
}

extern "C" int matNormalizeVector3D(tagPOINT3D* vector) {
    if (vector == nullptr) return 0;
    const double length = lengthOf(*vector);
    if (isSmaller(kNullLength, length)) {
        *vector = {0.0, 0.0, 0.0};
        return 0;
    }
    const double reciprocal = 1.0 / length;
    *vector = {vector->x * reciprocal, vector->y * reciprocal, vector->z * reciprocal};
    return 1;
}

extern "C" int matRotatePoint(tagPOINT2D* point, const tagPOINT2D* center, double angle,
                              int isCounterClockwise, int isDegrees) {
    if (point == nullptr || center == nullptr) return 0;
    const double angleRad = isDegrees != 0 ? angle * kRadiansPerDegree : angle;
    const double phi = isCounterClockwise != 0 ? angleRad : kFullTurnRad - angleRad;
    const double cosine = velquad::frame::cos(phi);
    const double sine = velquad::frame::sin(phi);
    const double dx = point->x - center->x;
    const double dy = point->y - center->y;
    *point = {dx * cosine + center->x - dy * sine, dx * sine + center->y + dy * cosine};
    return 1;
}

extern "C" int matSetRect2D(tagMAT_RECT2D* rect, double left, double top, double right, double bottom) {
    if (rect == nullptr) return 0;
    *rect = {left, top, right, bottom};
    return 1;
}
