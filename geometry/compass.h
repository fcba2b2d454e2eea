// The eight neighbours of a pixel, clockwise from the one above; index 8 is the pixel itself.
#ifndef VELQUAD_GEOMETRY_COMPASS_H
#define VELQUAD_GEOMETRY_COMPASS_H

#include "frame/convert.h"
#include "velquad/types.h"

namespace velquad::geometry {

inline constexpr int kCompassDirections = 8;
inline constexpr int kNoStep = 8;
inline constexpr frame::Int32 kCompassX[kCompassDirections + 1] = {0, 1, 1, 1, 0, -1, -1, -1, 0};
inline constexpr frame::Int32 kCompassY[kCompassDirections + 1] = {-1, -1, 0, 1, 1, 1, 0, -1, 0};

/// @return the neighbour of a pixel in a direction from 0 to 8.
constexpr tagPOINT neighbourOf(const tagPOINT& point, int direction) {
    return {frame::wrapAdd(point.x, kCompassX[direction]), frame::wrapAdd(point.y, kCompassY[direction])};
}

/// @return whether two pixels touch or coincide.
constexpr bool areNeighbours(const tagPOINT& a, const tagPOINT& b) {
    return frame::wrapAbs(frame::wrapSub(a.x, b.x)) <= 1 && frame::wrapAbs(frame::wrapSub(a.y, b.y)) <= 1;
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_COMPASS_H
