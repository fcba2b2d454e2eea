// Projections onto normalised coordinates, and their composition onto a matrix.
#include "frame/math.h"
#include "transform/matrix4.h"
#include "velquad/transform.h"

namespace {

using namespace velquad::transform;

constexpr double kRadiansPerDegree = 0.017453292519943295;

/// The box or window of a projection.
struct Clipping {
    double left;
    double right;
    double bottom;
    double top;
    double nearPlane;
    double farPlane;
};

void computePerspective(Rows m, double fieldOfViewDegrees, double aspect, double nearPlane, double farPlane) {
    const double halfAngleRad = fieldOfViewDegrees * kRadiansPerDegree * 0.5;
    const double f = velquad::frame::cos(halfAngleRad) / velquad::frame::sin(halfAngleRad);
    const double depth = nearPlane - farPlane;
    const double projection[4][4] = {
        {f / aspect, 0.0, 0.0, 0.0},
        {0.0, f, 0.0, 0.0},
        {0.0, 0.0, (nearPlane + farPlane) / depth, 2.0 * nearPlane * farPlane / depth},
        {0.0, 0.0, -1.0, 0.0}};
    copy(m, projection);
}

void computeOrtho(Rows m, const Clipping& box) {
    const double width = box.right - box.left;
    const double height = box.top - box.bottom;
    loadIdentity(m);
    m[0][0] = 2.0 / width;
    m[1][1] = 2.0 / height;
    m[2][2] = 2.0 / (box.nearPlane - box.farPlane);
    m[0][3] = -(box.left + box.right) / width;
    m[1][3] = -(box.bottom + box.top) / height;
    m[2][3] = -(box.nearPlane + box.farPlane) / (box.farPlane - box.nearPlane);
}

void computeFrustum(Rows m, const Clipping& window) {
    const double width = window.right - window.left;
    const double height = window.top - window.bottom;
    const double depth = window.nearPlane - window.farPlane;
    const double twoNear = 2.0 * window.nearPlane;
    const double projection[4][4] = {
        {twoNear / width, 0.0, (window.left + window.right) / width, 0.0},
        {0.0, twoNear / height, (window.bottom + window.top) / height, 0.0},
        {0.0, 0.0, (window.nearPlane + window.farPlane) / depth, twoNear * window.farPlane / depth},
        {0.0, 0.0, -1.0, 0.0}};
    copy(m, projection);
}

}  // namespace

extern "C" int matComputePerspectiveMatrix4(double (*m)[4], double fieldOfViewDegrees, double aspect,
                                            double nearPlane, double farPlane) {
    computePerspective(m, fieldOfViewDegrees, aspect, nearPlane, farPlane);
    return 1;
}

extern "C" int matPerspectiveMatrix4(double (*m)[4], double fieldOfViewDegrees, double aspect,
                                     double nearPlane, double farPlane, int multiplyFromLeft) {
    double projection[4][4];
    computePerspective(projection, fieldOfViewDegrees, aspect, nearPlane, farPlane);
    compose(m, projection, multiplyFromLeft != 0);
    return 1;
}

extern "C" int matComputeOrthoMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                                      double nearPlane, double farPlane) {
    computeOrtho(m, {left, right, bottom, top, nearPlane, farPlane});
    return 1;
}

extern "C" int matOrthoMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                               double nearPlane, double farPlane, int multiplyFromLeft) {
    double projection[4][4];
    computeOrtho(projection, {left, right, bottom, top, nearPlane, farPlane});
    compose(m, projection, multiplyFromLeft != 0);
    return 1;
}

extern "C" int matComputeFrustumMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                                        double nearPlane, double farPlane) {
    computeFrustum(m, {left, right, bottom, top, nearPlane, farPlane});
    return 1;
}

extern "C" int matFrustumMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                                 double nearPlane, double farPlane, int multiplyFromLeft) {
    double projection[4][4];
    computeFrustum(projection, {left, right, bottom, top, nearPlane, farPlane});
    compose(m, projection, multiplyFromLeft != 0);
    return 1;
}
