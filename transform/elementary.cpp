// Elementary matrices of geometry, and their composition onto a matrix.
#include "frame/math.h"
#include "transform/matrix4.h"
#include "velquad/frame.h"
#include "velquad/transform.h"

namespace {

using namespace velquad::transform;

constexpr double kPi = 3.141592653589793;
constexpr double kHalfTurnDegrees = 180.0;
constexpr double kQuarterTurnDegrees = 90.0;
constexpr double kQuarterTurnRad = 1.5707963267948966;

double toRadians(double angle, bool isDegrees) {
    return isDegrees ? angle * kPi / kHalfTurnDegrees : angle;
}

void composeRotation(Rows m, double angle, bool isDegrees, int axis, bool isFromLeft) {
    double rotation[4][4];
    computeRotation(rotation, angle, isDegrees, axis);
    compose(m, rotation, isFromLeft);
}

void computeShear(Rows m, double angleX, double angleY, bool isDegrees) {
    const double a = toRadians(angleX, isDegrees);
    const double b = isDegrees ? toRadians(angleY + kQuarterTurnDegrees, true) : angleY + kQuarterTurnRad;
    loadIdentity(m);
    m[0][0] = velquad::frame::cos(a);
    m[1][0] = velquad::frame::sin(a);
    m[0][1] = velquad::frame::cos(b);
    m[1][1] = velquad::frame::sin(b);
}

void computeDecompression(Rows m, double angle, bool isDegrees, double factor) {
    double stretch[4][4];
    loadDiagonal(stretch, factor, 1.0, 1.0);
    loadIdentity(m);
    composeRotation(m, -angle, isDegrees, kAxisZ, true);
    compose(m, stretch, true);
    composeRotation(m, angle, isDegrees, kAxisZ, true);
}

void computeTilt(Rows m, double tilt, double direction, bool isDegrees) {
    loadIdentity(m);
    composeRotation(m, -direction, isDegrees, kAxisZ, true);
    composeRotation(m, tilt, isDegrees, kAxisX, true);
    composeRotation(m, direction, isDegrees, kAxisZ, true);
}

}  // namespace

namespace velquad::transform {

void computeRotation(Rows m, double angle, bool isDegrees, int axis) {
    const double angleRad = toRadians(angle, isDegrees);
    const double c = frame::cos(angleRad);
    const double s = frame::sin(angleRad);
    loadIdentity(m);
    if (axis == kAxisX) {
        m[1][1] = c;
        m[1][2] = -s;
        m[2][1] = s;
        m[2][2] = c;
    } else if (axis == kAxisY) {
        m[0][0] = c;
        m[0][2] = s;
        m[2][0] = -s;
        m[2][2] = c;
    } else {
        m[0][0] = c;
        m[0][1] = -s;
        m[1][0] = s;
        m[1][1] = c;
    }
}

bool computeRotation(Rows m, double angle, bool isDegrees, const tagPOINT3D& axis) {
    tagPOINT3D unit = axis;
    if (matNormalizeVector3D(&unit) == 0) return false;
    const auto [x, y, z] = unit;
    const double angleRad = toRadians(angle, isDegrees);
    const double c = frame::cos(angleRad);
    const double s = frame::sin(angleRad);
    const double t = 1.0 - c;
    const double rotation[4][4] = {{x * x * t + c, y * x * t - s * z, s * y + z * x * t, 0.0},
                                   {y * x * t + s * z, y * y * t + c, z * y * t - s * x, 0.0},
                                   {z * x * t - s * y, z * y * t + s * x, z * z * t + c, 0.0},
                                   {0.0, 0.0, 0.0, 1.0}};
    copy(m, rotation);
    return true;
}

}  // namespace velquad::transform

extern "C" int matLoadIdentityMatrix4(double (*m)[4]) {
    loadIdentity(m);
    return 1;
}

extern "C" int matComputeRotationMatrix4(double (*m)[4], double angle, int isDegrees, int axis) {
    computeRotation(m, angle, isDegrees != 0, axis);
    return 1;
}

extern "C" int matRotateMatrix4(double (*m)[4], double angle, int isDegrees, int axis, int multiplyFromLeft) {
    composeRotation(m, angle, isDegrees != 0, axis, multiplyFromLeft != 0);
    return 1;
}

extern "C" int matComputeShearMatrix4(double (*m)[4], double angleX, double angleY, int isDegrees) {
    computeShear(m, angleX, angleY, isDegrees != 0);
    return 1;
}

extern "C" int matShearMatrix4(double (*m)[4], double angleX, double angleY, int isDegrees,
                               int multiplyFromLeft) {
    double shear[4][4];
    computeShear(shear, angleX, angleY, isDegrees != 0);
    compose(m, shear, multiplyFromLeft != 0);
    return 1;
}

extern "C" int matComputeSizeMatrix4(double (*m)[4], double sizeX, double sizeY, double sizeZ) {
    loadDiagonal(m, sizeX, sizeY, sizeZ);
    return 1;
}

extern "C" int matSizeMatrix4(double (*m)[4], double sizeX, double sizeY, double sizeZ,
                              int multiplyFromLeft) {
    double scaling[4][4];
    loadDiagonal(scaling, sizeX, sizeY, sizeZ);
    compose(m, scaling, multiplyFromLeft != 0);
    return 1;
}

extern "C" int matComputeTranslationMatrix4(double (*m)[4], double x, double y, double z) {
    loadTranslation(m, x, y, z);
    return 1;
}

extern "C" int matTranslateMatrix4(double (*m)[4], double x, double y, double z, int multiplyFromLeft) {
    double translation[4][4];
    loadTranslation(translation, x, y, z);
    compose(m, translation, multiplyFromLeft != 0);
    return 1;
}

extern "C" int matComputeDecompressMatrix4(double (*m)[4], double angle, int isDegrees, double factor) {
    computeDecompression(m, angle, isDegrees != 0, factor);
    return 1;
}

extern "C" int matDecompressMatrix4(double (*m)[4], double angle, int isDegrees, double factor,
                                    int multiplyFromLeft) {
    double decompression[4][4];
    computeDecompression(decompression, angle, isDegrees != 0, factor);
    compose(m, decompression, multiplyFromLeft != 0);
    return 1;
}

extern "C" int matComputeTiltMatrix4(double (*m)[4], double tilt, double direction, int isDegrees) {
    computeTilt(m, tilt, direction, isDegrees != 0);
    return 1;
}

extern "C" int matTiltMatrix4(double (*m)[4], double tilt, double direction, int isDegrees,
                              int multiplyFromLeft) {
    double rotation[4][4];
    computeTilt(rotation, tilt, direction, isDegrees != 0);
    compose(m, rotation, multiplyFromLeft != 0);
    return 1;
}

int matComputeArbitraryRotationMatrix4(double (*m)[4], double angle, int isDegrees, double axisX,
                                       double axisY, double axisZ) {
    return computeRotation(m, angle, isDegrees != 0, {axisX, axisY, axisZ}) ? 1 : 0;
}

int matArbitraryRotateMatrix4(double (*m)[4], double angle, int isDegrees, double axisX, double axisY,
                              double axisZ, int multiplyFromLeft) {
    double rotation[4][4];
    if (!computeRotation(rotation, angle, isDegrees != 0, {axisX, axisY, axisZ})) return 0;
    compose(m, rotation, multiplyFromLeft != 0);
    return 1;
}
