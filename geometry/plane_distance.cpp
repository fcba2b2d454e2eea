// The distance of a point from a plane.
#include "geometry/plane_distance.h"

#include "geometry/distance.h"
#include "velquad/geometry.h"

extern "C" double matCalcDistanceToPlane(const tagPOINT3D* point, const tagPOINT3D* planePoint,
                                         const tagPOINT3D* normal, tagPOINT3D* foot, int isSquared) {
    return matCalcDirectedDistanceToPlane(point, normal, planePoint, normal, foot, isSquared);
}

extern "C" double matCalcDirectedDistanceToPlane(const tagPOINT3D* point, const tagPOINT3D* direction,
                                                 const tagPOINT3D* planePoint, const tagPOINT3D* normal,
                                                 tagPOINT3D* foot, int isSquared) {
    const auto plane = velquad::geometry::directedPlane(*planePoint, *normal, *direction);
    if (!plane) return velquad::kNoValue;
    const tagPOINT3D hit = plane->hitOf(*point);
    const double result = velquad::geometry::distance(*point, hit, isSquared != 0);
    if (foot != nullptr) *foot = hit;
    return result;
}
