// The distance of a point from a segment, in the plane and in space.
#include "geometry/distance.h"
#include "geometry/foot_3d.h"
#include "velquad/geometry.h"

using velquad::geometry::footOnSegment;
using velquad::geometry::storeFoot;

extern "C" double matCalcDistanceToSegment2D(const tagPOINT2D* a, const tagPOINT2D* b,
                                             const tagPOINT2D* point, int isSquared, tagPOINT2D* closest,
                                             double* parameter) {
    return storeFoot<tagPOINT2D>(footOnSegment(*a, *b, *point, isSquared != 0), closest, parameter);
}

extern "C" double matCalcDistanceToSegment2L(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                             int isSquared, tagPOINT2D* closest, double* parameter) {
    return storeFoot<tagPOINT2D>(footOnSegment(*a, *b, *point, isSquared != 0), closest, parameter);
}

extern "C" double matCalcDistanceToSegment(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point,
                                           int isSquared, tagPOINT2D* closest, double* parameter) {
    return storeFoot<tagPOINT2D>(footOnSegment(*a, *b, *point, isSquared != 0), closest, parameter);
}

extern "C" double matCalcDistanceToSegment3D(const tagPOINT3D* a, const tagPOINT3D* b,
                                             const tagPOINT3D* point, int isSquared, tagPOINT3D* closest,
                                             double* parameter) {
    return storeFoot<tagPOINT3D>(footOnSegment(*a, *b, *point, isSquared != 0), closest, parameter);
}
