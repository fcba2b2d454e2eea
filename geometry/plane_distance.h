// The distance of a point from a plane along a direction, as inner loops of other rooms use it: inline, with the
// product that does not depend on the point taken once.
#ifndef VELQUAD_GEOMETRY_PLANE_DISTANCE_H
#define VELQUAD_GEOMETRY_PLANE_DISTANCE_H

#include <optional>

#include "frame/primitives.h"
#include "velquad/types.h"

namespace velquad::geometry {

constexpr double dotProduct(const tagPOINT3D& a, const tagPOINT3D& b) {
    return a.y * b.y + a.x * b.x + a.z * b.z;
}

/// A plane and the direction along which the distance from it is measured.
struct DirectedPlane {
    tagPOINT3D planePoint;
    tagPOINT3D normal;
    double denominator;  ///< Normal times direction.

    /// Where a point is taken to meet the plane. See `matCalcDirectedDistanceToPlane`.
    constexpr tagPOINT3D hitOf(const tagPOINT3D& point) const {
        const double t = dotProduct(normal, frame::difference(point, planePoint)) / denominator;
        // Kept: the step follows the normal, not the direction, and so ends on the plane only when both have the
        // same product with the normal.
        return {point.x + t * normal.x, point.y + t * normal.y, point.z + t * normal.z};
    }
};

/// @return nothing when the direction lies within the plane.
inline std::optional<DirectedPlane> directedPlane(const tagPOINT3D& planePoint, const tagPOINT3D& normal,
                                                  const tagPOINT3D& direction) {
    constexpr double kParallelTolerance = 1e-40;
    const double denominator = dotProduct(normal, direction);
    if (frame::isSmaller(kParallelTolerance, denominator)) return std::nullopt;
    return DirectedPlane{planePoint, normal, denominator};
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_PLANE_DISTANCE_H
