// Rotations as three angles of the z-y-z kind: R = Rz(first) Ry(tilt) Rz(last).
#include "frame/math.h"
#include "geometry/angle.h"
#include "transform/matrix4.h"
#include "velquad/geometry.h"
#include "velquad/transform.h"

namespace {

using namespace velquad::transform;
using velquad::geometry::halfTurn;
using velquad::geometry::normalizeAngle;

constexpr tagPOINT3D kUnitY{0.0, 1.0, 0.0};
constexpr tagPOINT3D kUnitZ{0.0, 0.0, 1.0};

/// A tilt below 0 by less than this is kept as it is.
constexpr double kNegativeTiltTolerance = 1e-7;
/// The smallest tilts that are too large: half a turn and 1e-7 of the unit.
constexpr double kTiltLimitDegrees = 180.0000001;
constexpr double kTiltLimitRad = 3.141592753589793;

struct UnifiedAngles {
    double tilt = 0.0;
    double first = 0.0;
    double last = 0.0;
};

void composeRotation(Rows m, double angle, bool isDegrees, const tagPOINT3D& axis) {
    double rotation[4][4];
    computeRotation(rotation, angle, isDegrees, axis);
    compose(m, rotation, false);
}

void computeRotationMatrix(Rows m, const UnifiedAngles& angles, bool isDegrees) {
    loadIdentity(m);
    composeRotation(m, angles.first, isDegrees, kUnitZ);
    composeRotation(m, angles.tilt, isDegrees, kUnitY);
    composeRotation(m, angles.last, isDegrees, kUnitZ);
}

/// The image of the z axis gives `tilt` and `first`. What is left of the rotation once these two are undone
/// turns the x axis by `last`.
/// @return false when memory for the inverse is lacking; `angles` is unchanged then.
bool findAngles(UnifiedAngles& angles, ConstRows m, bool isDegrees) {
    double zAxis[4] = {0.0, 0.0, 1.0, 1.0};
    transformColumn(zAxis, m, zAxis);
    double inclination = 0.0;
    double azimuth = 0.0;
    matComputePolarVector(zAxis, &inclination, &azimuth, isDegrees ? 1 : 0, 0, 1);

    double lean[4][4];
    loadIdentity(lean);
    composeRotation(lean, azimuth, isDegrees, kUnitZ);
    composeRotation(lean, inclination, isDegrees, kUnitY);
    if (!invert(lean, lean, false)) return false;
    double xAxis[4] = {1.0, 0.0, 0.0, 1.0};
    transformColumn(xAxis, m, xAxis);
    transformColumn(xAxis, lean, xAxis);

    double last = velquad::frame::atan2(xAxis[1], xAxis[0]);
    if (isDegrees) last = last * halfTurn(true) / halfTurn(false);
    angles = {normalizeAngle(inclination, isDegrees), normalizeAngle(azimuth, isDegrees),
              normalizeAngle(last, isDegrees)};
    return true;
}

}  // namespace

int matConvertUnifiedAnglesToRotationMatrix4(double (*m)[4], double tilt, double first, double last,
                                             int isDegrees) {
    computeRotationMatrix(m, {tilt, first, last}, isDegrees != 0);
    return 1;
}

int matConvertRotationMatrixToUnifiedAngles4(double (*m)[4], double* tilt, double* first, double* last,
                                             int isDegrees) {
    UnifiedAngles angles;
    if (!findAngles(angles, m, isDegrees != 0)) return 0;
    if (tilt != nullptr) *tilt = angles.tilt;
    if (first != nullptr) *first = angles.first;
    if (last != nullptr) *last = angles.last;
    return 1;
}

int matNormalizeUnifiedAngles4(double* tilt, double* first, double* last, int isDegrees) {
    const bool hasDegrees = isDegrees != 0;
    *last = normalizeAngle(*last, hasDegrees);
    *first = normalizeAngle(*first, hasDegrees);
    const double limit = hasDegrees ? kTiltLimitDegrees : kTiltLimitRad;
    if (-kNegativeTiltTolerance < *tilt && *tilt < limit) return 1;
    double rotation[4][4];
    computeRotationMatrix(rotation, {*tilt, *first, *last}, hasDegrees);
    return matConvertRotationMatrixToUnifiedAngles4(rotation, tilt, first, last, isDegrees);
}
