// Distances between two points.
#include "frame/convert.h"
#include "geometry/distance.h"
#include "velquad/geometry.h"

using velquad::frame::lengthSquared;
using velquad::frame::wrapSub;
using velquad::geometry::rootUnless;

extern "C" double matCalcDist(const tagPOINT* a, const tagPOINT* b, int isSquared) {
    return velquad::geometry::distance(*a, *b, isSquared != 0);
}

extern "C" double matCalcDist2L(const tagPOINT* a, const tagPOINT* b, int isSquared) {
    return velquad::geometry::distance(*a, *b, isSquared != 0);
}

extern "C" double matCalcDist2D(const tagPOINT2D* a, const tagPOINT2D* b, int isSquared) {
    return velquad::geometry::distance(*a, *b, isSquared != 0);
}

extern "C" double matCalcDist3D(const tagPOINT3D* a, const tagPOINT3D* b, int isSquared) {
    return velquad::geometry::distance(*a, *b, isSquared != 0);
}

extern "C" double matCalcDist3L(const int* a, const int* b, int isSquared) {
    const tagPOINT3D difference{static_cast<double>(wrapSub(b[0], a[0])),
                                static_cast<double>(wrapSub(b[1], a[1])),
                                static_cast<double>(wrapSub(b[2], a[2]))};
    return rootUnless(isSquared != 0, lengthSquared(difference));
}

extern "C" double matCalcPixelScaledDist(const tagPOINT* a, const tagPOINT* b, double scaleX, double scaleY,
                                         int isSquared) {
    return velquad::geometry::pixelScaledDistance(*a, *b, scaleX, scaleY, isSquared != 0);
}
