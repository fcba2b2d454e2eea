// Angles of the plane: reduction to a range, turning angles, angles between rays and between directions.
#include "geometry/angle.h"

#include "velquad/geometry.h"

namespace {

constexpr unsigned int kAroundZero = 1U;
constexpr unsigned int kUndirected = 2U;

}  // namespace

extern "C" double matCalcAngle2D(const tagPOINT2D* p0, const tagPOINT2D* p1, const tagPOINT2D* p2) {
    return velquad::geometry::turningAngle(*p0, *p1, *p2);
}

extern "C" double matNormalizeAngle(double angle, int isDegrees) {
    return velquad::geometry::normalizeAngle(angle, isDegrees != 0);
}

extern "C" double matCalcNormalizedAngle2D(const tagPOINT2D* center, const tagPOINT2D* first,
                                           const tagPOINT2D* second, int isCounterClockwise, int isDegrees) {
    return velquad::geometry::normalizedAngle(*center, *first, *second, isCounterClockwise != 0,
                                              isDegrees != 0);
}

extern "C" double matMapNormalizedAngle(double angle, int isDegrees, unsigned int mode) {
    const double normalized = velquad::geometry::normalizeAngle(angle, isDegrees != 0);
    const double period = velquad::geometry::fullTurn(isDegrees != 0);
    if (!(normalized > velquad::geometry::halfTurn(isDegrees != 0))) return normalized;
    if ((mode & kAroundZero) != 0) return normalized + -period;
    if ((mode & kUndirected) != 0) return period - normalized;
    return normalized;
}

extern "C" double matCalcDistanceOfAngles(double a, double b, int isDegrees) {
    return velquad::geometry::distanceOfAngles(a, b, isDegrees != 0);
}

extern "C" double matCalcScaledAngle(tagPOINT a, tagPOINT b, double scaleX, double scaleY) {
    return velquad::geometry::scaledAngle(a, b, scaleX, scaleY);
}
