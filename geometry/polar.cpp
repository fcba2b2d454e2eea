// Conversion between vectors of space and polar angles.
#include <cmath>

#include "frame/math.h"
#include "frame/primitives.h"
#include "geometry/angle.h"
#include "velquad/geometry.h"

using velquad::geometry::kHalfTurnRad;
using velquad::geometry::normalizeAngle;

namespace {

constexpr double kNullLength = 1e-7;
/// Sine of the angle to the z axis below which a vector has no azimuth.
constexpr double kAlongAxis = 1e-5;
constexpr double kRightAngleRad = 1.5707963267948966;
constexpr double kRightAngleDegrees = 90.0;

double toDegrees(double angleRad) {
    return angleRad * 180.0 / kHalfTurnRad;
}

double toRadians(double angleDegrees) {
    return angleDegrees * kHalfTurnRad / 180.0;
}

bool storePolarAngles(const tagPOINT3D& vector, double* inclination, double* azimuth, bool isDegrees,
                      bool isElevation) {
    const double length = velquad::frame::lengthOf(vector);
    if (kNullLength > length) return false;
    const double rho = std::sqrt(vector.x * vector.x + vector.y * vector.y);
    const bool isAlongAxis = kAlongAxis > rho / length;
    double azimuthValue = isAlongAxis ? 0.0 : velquad::frame::atan2(vector.y, vector.x);
    double inclinationValue = velquad::frame::atan2(vector.z, rho);
    if (!isElevation) inclinationValue = kRightAngleRad - inclinationValue;
    if (isDegrees) {
        azimuthValue = toDegrees(azimuthValue);
        inclinationValue = toDegrees(inclinationValue);
    }
    if (inclination != nullptr) *inclination = normalizeAngle(inclinationValue, isDegrees);
    if (azimuth != nullptr) *azimuth = normalizeAngle(azimuthValue, isDegrees);
    return true;
}

tagPOINT3D unitVector(double inclination, double azimuth, bool isDegrees, bool isElevation) {
    if (isElevation) inclination = (isDegrees ? kRightAngleDegrees : kRightAngleRad) - inclination;
    if (isDegrees) {
        inclination = toRadians(inclination);
        azimuth = toRadians(azimuth);
    }
    const double sine = velquad::frame::sin(inclination);
    return {velquad::frame::cos(azimuth) * sine, velquad::frame::sin(azimuth) * sine,
            velquad::frame::cos(inclination)};
}

}  // namespace

int matComputePolarVector(double* const vector, double* inclination, double* azimuth, int isDegrees,
                          int isElevation, int toPolar) {
    if (toPolar != 0) {
        const tagPOINT3D source{vector[0], vector[1], vector[2]};
        return storePolarAngles(source, inclination, azimuth, isDegrees != 0, isElevation != 0) ? 1 : 0;
    }
    const tagPOINT3D result = unitVector(*inclination, *azimuth, isDegrees != 0, isElevation != 0);
    vector[0] = result.x;
    vector[1] = result.y;
    vector[2] = result.z;
    return 1;
}
