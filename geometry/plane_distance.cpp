// The distance of a point from a plane.
#include "frame/primitives.h"
#include "geometry/distance.h"
#include "velquad/geometry.h"

namespace {

/// A denominator below this means a direction within the plane.
constexpr double kParallelTolerance = 1e-40;

constexpr double dotProduct(const tagPOINT3D& a, const tagPOINT3D& b) {
    return a.y * b.y + a.x * b.x + a.z * b.z;
}

}  // namespace

extern "C" double matCalcDistanceToPlane(const tagPOINT3D* point, const tagPOINT3D* planePoint,
                                         const tagPOINT3D* normal, tagPOINT3D* foot, int isSquared) {
    return matCalcDirectedDistanceToPlane(point, normal, planePoint, normal, foot, isSquared);
}

extern "C" double matCalcDirectedDistanceToPlane(const tagPOINT3D* point, const tagPOINT3D* direction,
                                                 const tagPOINT3D* planePoint, const tagPOINT3D* normal,
                                                 tagPOINT3D* foot, int isSquared) {
    const double denominator = dotProduct(*normal, *direction);
    if (velquad::frame::isSmaller(kParallelTolerance, denominator)) return velquad::kNoValue;
    const tagPOINT3D toPlane{planePoint->x - point->x, planePoint->y - point->y, planePoint->z - point->z};
    const double t = dotProduct(*normal, toPlane) / denominator;
    // Kept: the step follows the normal, not `direction`, and so ends on the plane only when both have the same
    // product with the normal.
    const tagPOINT3D hit{point->x + t * normal->x, point->y + t * normal->y, point->z + t * normal->z};
    const double result = velquad::geometry::distance(*point, hit, isSquared != 0);
    if (foot != nullptr) *foot = hit;
    return result;
}
