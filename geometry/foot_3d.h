// The foot of a perpendicular on a line of space, shared by segments and infinite lines.
#ifndef VELQUAD_GEOMETRY_FOOT_3D_H
#define VELQUAD_GEOMETRY_FOOT_3D_H

#include <optional>

#include "frame/primitives.h"
#include "geometry/distance.h"
#include "geometry/scale_factor.h"
#include "velquad/geometry.h"
#include "velquad/types.h"

namespace velquad::geometry {

/// The parameter of the foot of the perpendicular from `point` on the line a-b; a and b are apart.
/// @return the parameter; nothing when the perpendicular misses the line through rounding.
inline std::optional<double> perpendicularParameter(const tagPOINT3D& a, const tagPOINT3D& b,
                                                    const tagPOINT3D& point) {
    constexpr double kOnLineTolerance = 1e-7;
    const tagPOINT3D normal = frame::crossProduct(a, b, point);
    if (kOnLineTolerance > frame::lengthOf(normal)) {
        // A point of the line itself.
        const DominantAxis axis = dominantAxis(a, b, point);
        return axis.offset / axis.length;
    }
    // Across the line within the plane of a, b and point: the second product is perpendicular to both.
    const tagPOINT3D aside{normal.x + a.x, normal.y + a.y, normal.z + a.z};
    const tagPOINT3D across = frame::crossProduct(a, b, aside);
    const tagPOINT3D beyond{across.x + point.x, across.y + point.y, across.z + point.z};
    double parameter = 0.0;
    if (matIntersectLines3D(&a, &b, &point, &beyond, nullptr, &parameter, nullptr, nullptr) == 0) {
        return std::nullopt;
    }
    return parameter;
}

/// The point (b - a) * parameter + a.
constexpr tagPOINT3D pointOnLine(const tagPOINT3D& a, const tagPOINT3D& b, double parameter) {
    return {(b.x - a.x) * parameter + a.x, (b.y - a.y) * parameter + a.y, (b.z - a.z) * parameter + a.z};
}

using SpaceFoot = LinearFoot<tagPOINT3D>;

/// The foot at a place that is known.
inline SpaceFoot footAt(const tagPOINT3D& closest, double parameter, const tagPOINT3D& point,
                        bool isSquared) {
    return {distance(closest, point, isSquared), closest, parameter};
}

/// The point of the segment a-b nearest to `point`; nothing as for `perpendicularParameter`.
inline std::optional<SpaceFoot> footOnSegment(const tagPOINT3D& a, const tagPOINT3D& b,
                                              const tagPOINT3D& point, bool isSquared = false) {
    using Traits = FootTraits<tagPOINT3D>;
    if (Traits::isSegmentPoint(a, b)) return footAt(a, 0.0, point, isSquared);
    const std::optional<double> parameter = perpendicularParameter(a, b, point);
    if (!parameter) return std::nullopt;
    if (Traits::isAtEnd(*parameter)) return footAt(b, 1.0, point, isSquared);
    if (Traits::isAtStart(*parameter)) return footAt(a, 0.0, point, isSquared);
    return footAt(pointOnLine(a, b, *parameter), *parameter, point, isSquared);
}

/// The point of the infinite line a-b nearest to `point`; nothing as for `perpendicularParameter`.
inline std::optional<SpaceFoot> footOnLine(const tagPOINT3D& a, const tagPOINT3D& b, const tagPOINT3D& point,
                                           bool isSquared = false) {
    if (FootTraits<tagPOINT3D>::isLinePoint(a, b)) return footAt(a, 0.0, point, isSquared);
    const std::optional<double> parameter = perpendicularParameter(a, b, point);
    if (!parameter) return std::nullopt;
    return footAt(pointOnLine(a, b, *parameter), *parameter, point, isSquared);
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_FOOT_3D_H
