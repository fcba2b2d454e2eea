// Where a point lies along a line.
#include "geometry/scale_factor.h"

#include "velquad/geometry.h"

extern "C" double matGetScaleFactor2D(const tagPOINT2D* a, const tagPOINT2D* b, const tagPOINT2D* point) {
    return velquad::geometry::scaleFactor2D(*a, *b, *point);
}

extern "C" double matGetScaleFactor2L(const tagPOINT* a, const tagPOINT* b, const tagPOINT2D* point) {
    return velquad::geometry::scaleFactor2L(*a, *b, *point);
}

extern "C" double matGetScaleFactor(const tagPOINT* a, const tagPOINT* b, const tagPOINT2D* point) {
    return velquad::geometry::scaleFactor2L(*a, *b, *point);
}

extern "C" double matGetScaleFactor2LL(const tagPOINT* a, const tagPOINT* b, const tagPOINT* point) {
    return velquad::geometry::scaleFactor2LL(*a, *b, *point);
}

extern "C" double matGetScaleFactor3D(const tagPOINT3D* a, const tagPOINT3D* b, const tagPOINT3D* point) {
    return velquad::geometry::scaleFactor3D(*a, *b, *point);
}
