// Crossings of two lines of the plane.
#include "geometry/line_intersection.h"

#include "velquad/geometry.h"

using velquad::geometry::crossingParameterB;
using velquad::geometry::crossLines;
using velquad::geometry::LineCrossing;
using velquad::geometry::pointOnLine;

namespace {

template <class Point>
int intersectLines(const Point* a0, const Point* a1, const Point* b0, const Point* b1, tagPOINT2D* point,
                   double* parameterA, double* parameterB, int* isParallel) {
    const LineCrossing crossing = crossLines(*a0, *a1, *b0, *b1);
    if (crossing.exists && (point != nullptr || parameterB != nullptr)) {
        const tagPOINT2D common = pointOnLine(*a0, *a1, crossing.parameterA);
        if (parameterB != nullptr) *parameterB = crossingParameterB(*b0, *b1, common);
        if (point != nullptr) *point = common;
    }
    if (parameterA != nullptr) *parameterA = crossing.parameterA;
    if (isParallel != nullptr) *isParallel = crossing.isParallel ? 1 : 0;
    return crossing.exists ? 1 : 0;
}

}  // namespace

extern "C" int matIntersectLines2D(const tagPOINT2D* a0, const tagPOINT2D* a1, const tagPOINT2D* b0,
                                   const tagPOINT2D* b1, tagPOINT2D* point, double* parameterA,
                                   double* parameterB, int* isParallel) {
    return intersectLines(a0, a1, b0, b1, point, parameterA, parameterB, isParallel);
}

extern "C" int matIntersectLines2L(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                   const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                   double* parameterB, int* isParallel) {
    return intersectLines(a0, a1, b0, b1, point, parameterA, parameterB, isParallel);
}

extern "C" int matIntersectLines(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                 const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                 double* parameterB, int* isParallel) {
    return intersectLines(a0, a1, b0, b1, point, parameterA, parameterB, isParallel);
}
