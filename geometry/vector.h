// Vectors of space, for the measures of lines, triangles and tetrahedra.
#ifndef VELQUAD_GEOMETRY_VECTOR_H
#define VELQUAD_GEOMETRY_VECTOR_H

#include "velquad/types.h"

namespace velquad::geometry {

/// to - from.
constexpr tagPOINT3D difference(const tagPOINT3D& from, const tagPOINT3D& to) {
    return {to.x - from.x, to.y - from.y, to.z - from.z};
}

/// a x b.
constexpr tagPOINT3D cross(const tagPOINT3D& a, const tagPOINT3D& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

constexpr double lengthSquared(const tagPOINT3D& v) {
    return v.x * v.x + v.y * v.y + v.z * v.z;
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_VECTOR_H
