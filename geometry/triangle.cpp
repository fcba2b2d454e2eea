// Areas of triangles.
#include "geometry/triangle.h"

#include "frame/primitives.h"
#include "velquad/geometry.h"

extern "C" double matCalcSignedAreaOfTriangle2P(const tagPOINT* p0, const tagPOINT* p1, const tagPOINT* p2) {
    return velquad::geometry::signedArea(*p0, *p1, *p2);
}

extern "C" double matCalcSignedAreaOfTriangle2D(const tagPOINT2D* p0, const tagPOINT2D* p1,
                                                const tagPOINT2D* p2) {
    return velquad::geometry::signedArea(*p0, *p1, *p2);
}

extern "C" double matCalcUnsignedAreaOfTriangle(const tagPOINT3D* p0, const tagPOINT3D* p1,
                                                const tagPOINT3D* p2) {
    return velquad::frame::lengthOf(velquad::frame::crossProduct(*p0, *p1, *p2)) * 0.5;
}
