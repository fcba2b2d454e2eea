// Contact of two segments of the plane.
#include "geometry/line_intersection.h"
#include "velquad/geometry.h"

using velquad::geometry::areBoxesApart;
using velquad::geometry::crossSegmentsInTouchingBoxes;
using velquad::geometry::SegmentCrossing;

namespace {

template <class Point>
int intersectSegments(const Point* a0, const Point* a1, const Point* b0, const Point* b1, tagPOINT2D* point,
                      double* parameterA, double* parameterB, int* isParallel) {
    if (areBoxesApart(*a0, *a1, *b0, *b1)) return 0;
    SegmentCrossing crossing;
    const bool hasContact = crossSegmentsInTouchingBoxes(*a0, *a1, *b0, *b1, &crossing);
    if (isParallel != nullptr) *isParallel = crossing.isParallel ? 1 : 0;
    if (!hasContact) return 0;
    if (point != nullptr) *point = crossing.point;
    if (parameterA != nullptr) *parameterA = crossing.parameterA;
    if (parameterB != nullptr) *parameterB = crossing.parameterB;
    return 1;
}

}  // namespace

extern "C" int matIntersectSegments2D(const tagPOINT2D* a0, const tagPOINT2D* a1, const tagPOINT2D* b0,
                                      const tagPOINT2D* b1, tagPOINT2D* point, double* parameterA,
                                      double* parameterB, int* isParallel) {
    return intersectSegments(a0, a1, b0, b1, point, parameterA, parameterB, isParallel);
}

extern "C" int matIntersectSegments2L(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                      const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                      double* parameterB, int* isParallel) {
    return intersectSegments(a0, a1, b0, b1, point, parameterA, parameterB, isParallel);
}

extern "C" int matIntersectSegments(const tagPOINT* a0, const tagPOINT* a1, const tagPOINT* b0,
                                    const tagPOINT* b1, tagPOINT2D* point, double* parameterA,
                                    double* parameterB, int* isParallel) {
    return intersectSegments(a0, a1, b0, b1, point, parameterA, parameterB, isParallel);
}
