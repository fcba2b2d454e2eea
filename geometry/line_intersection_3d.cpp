// Crossing of two lines of space. The lines are projected along the dominant axis of their common normal, crossed
// in the plane, and have a common point when both parameters lead to the same place in space.
#include <cmath>

#include "frame/primitives.h"
#include "geometry/line_intersection.h"
#include "geometry/scale_factor.h"
#include "velquad/geometry.h"

using velquad::kNoValue;
using velquad::frame::cross;
using velquad::frame::difference;
using velquad::frame::isSmaller;
using velquad::frame::lengthOf;
using velquad::geometry::crossingParameterB;
using velquad::geometry::crossLines;
using velquad::geometry::LineCrossing;
using velquad::geometry::pointOnLine;
using velquad::geometry::scaleFactor3D;

namespace {

/// Points nearer than this in every coordinate are one point.
constexpr double kSamePlace = 1e-7;
/// A normal shorter than this belongs to parallel lines.
constexpr double kNoNormal = 1e-7;

struct SpaceCrossing {
    bool exists = false;
    bool isParallel = true;
    tagPOINT3D point{kNoValue, kNoValue, kNoValue};
    double parameterA = kNoValue;
    double parameterB = kNoValue;
};

bool isSamePlace(const tagPOINT3D& a, const tagPOINT3D& b) {
    return isSmaller(kSamePlace, a.x - b.x) && isSmaller(kSamePlace, a.y - b.y) &&
           isSmaller(kSamePlace, a.z - b.z);
}

tagPOINT3D pointOnSpaceLine(const tagPOINT3D& origin, const tagPOINT3D& direction, double parameter) {
    return {direction.x * parameter + origin.x, direction.y * parameter + origin.y,
            direction.z * parameter + origin.z};
}

/// Kept: a line without length meets any other line, wherever that one runs; its parameter there is taken along
/// the dominant axis. Only two points must be the same place.
SpaceCrossing crossWithPoints(const tagPOINT3D& a0, const tagPOINT3D& a1, bool isPointA, const tagPOINT3D& b0,
                              const tagPOINT3D& b1, bool isPointB) {
    SpaceCrossing result;
    if (isPointA && isPointB) {
        if (isSamePlace(a0, b0)) result = {true, true, a0, 0.0, 0.0};
    } else if (isPointA) {
        const double s = scaleFactor3D(b0, b1, a0);
        if (s != kNoValue) result = {true, true, a0, 0.0, s};
    } else {
        const double t = scaleFactor3D(a0, a1, b0);
        if (t != kNoValue) result = {true, true, b0, t, 0.0};
    }
    return result;
}

/// Kept: parallel lines need not be one line. Their point is the end of b with the smaller |parameter| on a; a tie
/// gives b1.
SpaceCrossing crossParallel(const tagPOINT3D& a0, const tagPOINT3D& a1, const tagPOINT3D& b0,
                            const tagPOINT3D& b1) {
    const double ta = scaleFactor3D(a0, a1, b0);
    const double tb = scaleFactor3D(a0, a1, b1);
    if (ta == kNoValue || tb == kNoValue) return {};
    if (std::fabs(tb) > std::fabs(ta)) return {true, true, b0, ta, 0.0};
    return {true, true, b1, tb, 1.0};
}

using Projection = tagPOINT2D (*)(const tagPOINT3D&);

tagPOINT2D dropX(const tagPOINT3D& p) {
    return {p.y, p.z};
}
tagPOINT2D dropY(const tagPOINT3D& p) {
    return {p.x, p.z};
}
tagPOINT2D dropZ(const tagPOINT3D& p) {
    return {p.x, p.y};
}

/// Drops the dominant coordinate of the normal; the earlier axis wins a tie. Null when even that one is small.
Projection projectionAlong(const tagPOINT3D& normal) {
    Projection projection = dropX;
    double dominant = std::fabs(normal.x);
    if (std::fabs(normal.y) > dominant) {
        projection = dropY;
        dominant = std::fabs(normal.y);
    }
    if (std::fabs(normal.z) > dominant) {
        projection = dropZ;
        dominant = std::fabs(normal.z);
    }
    return kNoNormal > dominant ? nullptr : projection;
}

SpaceCrossing crossSpaceLines(const tagPOINT3D& a0, const tagPOINT3D& a1, const tagPOINT3D& b0,
                              const tagPOINT3D& b1) {
    const bool isPointA = isSamePlace(a0, a1);
    const bool isPointB = isSamePlace(b0, b1);
    if (isPointA || isPointB) return crossWithPoints(a0, a1, isPointA, b0, b1, isPointB);

    const tagPOINT3D directionA = difference(a0, a1);
    const tagPOINT3D directionB = difference(b0, b1);
    const tagPOINT3D normal = cross(directionA, directionB);
    if (isSmaller(kNoNormal, lengthOf(normal))) return crossParallel(a0, a1, b0, b1);
    const Projection project = projectionAlong(normal);
    if (project == nullptr) return {};

    const tagPOINT2D flatA0 = project(a0);
    const tagPOINT2D flatA1 = project(a1);
    const tagPOINT2D flatB0 = project(b0);
    const tagPOINT2D flatB1 = project(b1);
    const LineCrossing flat = crossLines(flatA0, flatA1, flatB0, flatB1);
    if (!flat.exists) return {};
    const double t = flat.parameterA;
    const double s = crossingParameterB(flatB0, flatB1, pointOnLine(flatA0, flatA1, t));

    SpaceCrossing result;
    result.isParallel = false;
    const tagPOINT3D onA = pointOnSpaceLine(a0, directionA, t);
    const tagPOINT3D onB = pointOnSpaceLine(b0, directionB, s);
    if (isSamePlace(onA, onB)) result = {true, false, onA, t, s};
    return result;
}

}  // namespace

extern "C" int matIntersectLines3D(const tagPOINT3D* a0, const tagPOINT3D* a1, const tagPOINT3D* b0,
                                   const tagPOINT3D* b1, tagPOINT3D* point, double* parameterA,
                                   double* parameterB, int* isParallel) {
    const SpaceCrossing crossing = crossSpaceLines(*a0, *a1, *b0, *b1);
    if (point != nullptr) *point = crossing.point;
    if (parameterA != nullptr) *parameterA = crossing.parameterA;
    if (parameterB != nullptr) *parameterB = crossing.parameterB;
    if (isParallel != nullptr) *isParallel = crossing.isParallel ? 1 : 0;
    return crossing.exists ? 1 : 0;
}
