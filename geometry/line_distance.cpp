// The distance of a point from an infinite line, in the plane and in space.
#include "geometry/distance.h"
#include "geometry/foot_3d.h"
#include "velquad/geometry.h"

using velquad::geometry::footOnLine;
using velquad::geometry::storeFoot;

extern "C" double matCalcDistanceToLine2D(const tagPOINT2D* a, const tagPOINT2D* b, const tagPOINT2D* point,
                                          int isSquared, tagPOINT2D* closest, double* parameter) {
    return storeFoot<tagPOINT2D>(footOnLine(*a, *b, *point, isSquared != 0), closest, parameter);
}

extern "C" double matCalcDistanceToLine2L(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                          int isSquared, tagPOINT2D* closest, double* parameter) {
    return storeFoot<tagPOINT2D>(footOnLine(*a, *b, *point, isSquared != 0), closest, parameter);
}

extern "C" double matCalcDistanceToLine(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                        int isSquared, tagPOINT2D* closest, double* parameter) {
    return storeFoot<tagPOINT2D>(footOnLine(*a, *b, *point, isSquared != 0), closest, parameter);
}

extern "C" double matCalcDistanceToLine3D(const tagPOINT3D* a, const tagPOINT3D* b, const tagPOINT3D* point,
                                          int isSquared, tagPOINT3D* closest, double* parameter) {
    return storeFoot<tagPOINT3D>(footOnLine(*a, *b, *point, isSquared != 0), closest, parameter);
}
