// Angles of the plane as inner loops of other rooms use them: inline, without a call through the module's
// boundary.
#ifndef VELQUAD_GEOMETRY_ANGLE_H
#define VELQUAD_GEOMETRY_ANGLE_H

#include <cmath>

#include "frame/convert.h"
#include "frame/math.h"
#include "frame/primitives.h"
#include "velquad/types.h"

namespace velquad::geometry {

inline constexpr double kFullTurnDegrees = 360.0;
inline constexpr double kFullTurnRad = 6.283185307179586;
inline constexpr double kHalfTurnDegrees = 180.0;
inline constexpr double kHalfTurnRad = 3.141592653589793;

constexpr double fullTurn(bool isDegrees) {
    return isDegrees ? kFullTurnDegrees : kFullTurnRad;
}

constexpr double halfTurn(bool isDegrees) {
    return isDegrees ? kHalfTurnDegrees : kHalfTurnRad;
}

/// See `matNormalizeAngle`.
inline double normalizeAngle(double angle, bool isDegrees) {
    constexpr double kNullAngle = 1e-9;
    if (angle == kNoValue) return angle;
    const double period = fullTurn(isDegrees);
    const double magnitude = std::fabs(angle);
    // Kept: the turns are counted in 32 bits. A larger count becomes -2147483648 and the remainder is huge.
    const double turns = frame::truncToInt32(magnitude / period);
    const double rest = magnitude - turns * period;
    const double other = period - rest;
    if (frame::isSmaller(kNullAngle, rest) || frame::isSmaller(kNullAngle, other)) return 0.0;
    return angle > 0.0 ? rest : other;
}

/// The angle by which the way p0, p1, p2 turns at p1; see `matCalcAngle2D`.
inline double turningAngle(const tagPOINT2D& p0, const tagPOINT2D& p1, const tagPOINT2D& p2) {
    constexpr double kNullLength = 1e-7;
    constexpr double kStraightCosine = 0.9999999;
    const tagPOINT2D u{p1.x - p0.x, p1.y - p0.y};
    const tagPOINT2D v{p2.x - p1.x, p2.y - p1.y};
    const double lengthU = frame::lengthOf(u);
    const double lengthV = frame::lengthOf(v);
    if (kNullLength > lengthU || kNullLength > lengthV) return 0.0;
    const double reciprocalU = 1.0 / lengthU;
    const double reciprocalV = 1.0 / lengthV;
    const double cosine =
        (u.y * reciprocalU) * (v.y * reciprocalV) + (u.x * reciprocalU) * (v.x * reciprocalV);
    if (cosine > kStraightCosine) return 0.0;
    if (-kStraightCosine > cosine) return kHalfTurnRad;
    return frame::acos(cosine) * frame::orientation(p0, p1, p2);
}

/// The direction of a vector in radians, [0, 2 pi].
inline double directionOf(const tagPOINT2D& vector) {
    const double direction = frame::atan2(vector.y, vector.x);
    return direction < 0.0 ? direction + kFullTurnRad : direction;
}

/// How far one direction lies from another in a sense of rotation, in [0, one turn).
/// @param from, to  in radians, [0, 2 pi], as `directionOf` gives them.
inline double sweptAngle(double from, double to, bool isCounterClockwise, bool isDegrees) {
    constexpr double kDegreesPerRadian = 57.29577951308232;
    constexpr double kOneStepBelowFullTurnRad = 6.283185307179585;
    double angle = 0.0;
    if (isCounterClockwise) {
        angle = from > to ? kFullTurnRad - (from - to) : to - from;
    } else {
        angle = from >= to ? from - to : kFullTurnRad - (to - from);
    }
    if (isDegrees) {
        angle *= kDegreesPerRadian;
        return angle >= kFullTurnDegrees ? 0.0 : angle;
    }
    return angle >= kOneStepBelowFullTurnRad ? 0.0 : angle;
}

/// The angle from the ray centre-first to the ray centre-second; see `matCalcNormalizedAngle2D`.
inline double normalizedAngle(const tagPOINT2D& center, const tagPOINT2D& first, const tagPOINT2D& second,
                              bool isCounterClockwise, bool isDegrees) {
    constexpr double kNullLength = 1e-7;
    const tagPOINT2D toFirst{center.x - first.x, center.y - first.y};
    const tagPOINT2D toSecond{center.x - second.x, center.y - second.y};
    if (kNullLength > frame::lengthOf(toSecond) || kNullLength > frame::lengthOf(toFirst)) return 0.0;
    return sweptAngle(directionOf(toFirst), directionOf(toSecond), isCounterClockwise, isDegrees);
}

/// The shortest way from one angle to another; see `matCalcDistanceOfAngles`.
inline double distanceOfAngles(double a, double b, bool isDegrees) {
    const double period = fullTurn(isDegrees);
    const double angleA = normalizeAngle(a, isDegrees);
    const double angleB = normalizeAngle(b, isDegrees);
    double smallest = std::fabs(angleA - angleB);
    const double acrossZeroB = std::fabs(angleA - (period + angleB));
    if (acrossZeroB < smallest) smallest = acrossZeroB;
    const double acrossZeroA = std::fabs(angleB - (period + angleA));
    if (acrossZeroA < smallest) smallest = acrossZeroA;
    return smallest;
}

/// The direction from a to b in degrees, with pixels of a given size; see `matCalcScaledAngle`.
inline double scaledAngle(const tagPOINT& a, const tagPOINT& b, double scaleX, double scaleY) {
    const tagPOINT2D origin{0.0, 0.0};
    const tagPOINT2D xAxis{1.0, 0.0};
    const tagPOINT2D vector{frame::wrapSub(b.x, a.x) * scaleX, frame::wrapSub(b.y, a.y) * scaleY};
    return normalizedAngle(origin, xAxis, vector, true, true);
}

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_ANGLE_H
