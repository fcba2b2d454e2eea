// Volume and circumsphere of a tetrahedron, both from the determinant of three edges that leave one corner.
#include <cmath>

#include "frame/primitives.h"
#include "velquad/geometry.h"

using velquad::frame::cross;
using velquad::frame::difference;
using velquad::frame::isSmaller;
using velquad::frame::lengthSquared;

namespace {

/// Twice a determinant below this belongs to a flat tetrahedron.
constexpr double kFlat = 1e-20;

double determinant(const tagPOINT3D& u, const tagPOINT3D& v, const tagPOINT3D& w) {
    return u.x * (w.z * v.y - v.z * w.y) - v.x * (w.z * u.y - u.z * w.y) + w.x * (v.z * u.y - u.z * v.y);
}

}  // namespace

extern "C" double matCalcSignedVolumeOfTetrahedron(const tagPOINT3D* p0, const tagPOINT3D* p1,
                                                   const tagPOINT3D* p2, const tagPOINT3D* p3) {
    return determinant(difference(*p0, *p1), difference(*p0, *p2), difference(*p0, *p3)) / 6.0;
}

extern "C" double matCalcCenterOfTetrahedron(const tagPOINT3D* p0, const tagPOINT3D* p1, const tagPOINT3D* p2,
                                             const tagPOINT3D* p3, tagPOINT3D* center, int isSquared) {
    const tagPOINT3D corner = *p0;
    const tagPOINT3D u = difference(corner, *p1);
    const tagPOINT3D v = difference(corner, *p2);
    const tagPOINT3D w = difference(corner, *p3);
    const double d = 2.0 * determinant(u, v, w);
    if (isSmaller(kFlat, d)) {
        if (center != nullptr) *center = *p1;
        return 0.0;
    }
    const double a = lengthSquared(u) / d;
    const double b = lengthSquared(v) / d;
    const double c = lengthSquared(w) / d;
    const tagPOINT3D vw = cross(v, w);
    const tagPOINT3D wu = cross(w, u);
    const tagPOINT3D uv = cross(u, v);
    const tagPOINT3D middle{corner.x + a * vw.x + b * wu.x + c * uv.x,
                            corner.y + a * vw.y + b * wu.y + c * uv.y,
                            corner.z + a * vw.z + b * wu.z + c * uv.z};
    if (center != nullptr) *center = middle;
    const double radiusSquared = lengthSquared(difference(corner, middle));
    return isSquared != 0 ? radiusSquared : std::sqrt(radiusSquared);
}
