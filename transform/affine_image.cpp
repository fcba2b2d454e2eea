// What an affine transform does to an image: its extent, the size of its pixels, the shift back to the origin.
#include <cmath>

#include "transform/matrix4.h"
#include "velquad/transform.h"

namespace {

using namespace velquad::transform;

/// How close to 1 a component of an axis must be to select it.
constexpr double kUnitAxisTolerance = 1e-7;

struct Extent {
    double minX = velquad::kExtentNotSet;
    double minY = velquad::kExtentNotSet;
    double maxX = -velquad::kExtentNotSet;
    double maxY = -velquad::kExtentNotSet;

    void add(double x, double y) {
        if (x < minX) minX = x;
        if (y < minY) minY = y;
        if (x > maxX) maxX = x;
        if (y > maxY) maxY = y;
    }
};

Extent extentOfImage(double width, double height, ConstRows m) {
    const double corners[4][4] = {
        {0.0, 0.0, 0.0, 1.0}, {width, 0.0, 0.0, 1.0}, {width, height, 0.0, 1.0}, {0.0, height, 0.0, 1.0}};
    Extent extent;
    double image[4] = {0.0, 0.0, 0.0, 1.0};
    for (const auto& corner : corners) {
        // Kept: a corner with a vanishing weight is not left out, the image of the one before counts again.
        transformColumn(image, m, corner);
        extent.add(image[0], image[1]);
    }
    return extent;
}

/// The length in the old image of the step from the new origin to `step`.
double lengthOfStep(ConstRows inverse, double stepX, double stepY, double scaleX, double scaleY) {
    double origin[4] = {0.0, 0.0, 0.0, 1.0};
    double end[4] = {stepX, stepY, 0.0, 1.0};
    transformColumn(origin, inverse, origin);
    transformColumn(end, inverse, end);
    const double dx = (end[0] - origin[0]) * scaleX;
    const double dy = (end[1] - origin[1]) * scaleY;
    return std::sqrt(dy * dy + dx * dx);
}

}  // namespace

extern "C" int matCalcAffinImageSize(double width, double height, const double (*m)[4], double* minX,
                                     double* minY, double* maxX, double* maxY) {
    const Extent extent = extentOfImage(width, height, m);
    if (minX != nullptr) *minX = extent.minX;
    if (minY != nullptr) *minY = extent.minY;
    if (maxX != nullptr) *maxX = extent.maxX;
    if (maxY != nullptr) *maxY = extent.maxY;
    return 1;
}

extern "C" int matCalcAffinImageScale(double scaleX, double scaleY, const double (*m)[4], double* newScaleX,
                                      double* newScaleY) {
    double inverse[4][4];
    if (!invert(inverse, m, false)) return 0;
    if (newScaleX != nullptr) *newScaleX = lengthOfStep(inverse, 1.0, 0.0, scaleX, scaleY);
    if (newScaleY != nullptr) *newScaleY = lengthOfStep(inverse, 0.0, 1.0, scaleX, scaleY);
    return 1;
}

int matMoveMatrix4ToTopLeft(double width, double height, double (*m)[4]) {
    const Extent extent = extentOfImage(width, height, m);
    double translation[4][4];
    loadTranslation(translation, -extent.minX, -extent.minY, 0.0);
    compose(m, translation, true);
    return 1;
}

int matRotated4(double (*m)[4], double angleDegrees, double axisX, double axisY, double axisZ) {
    const double components[] = {axisX, axisY, axisZ};
    for (int axis = kAxisX; axis <= kAxisZ; ++axis) {
        if (!velquad::frame::isSmaller(kUnitAxisTolerance, 1.0 - components[axis])) continue;
        double rotation[4][4];
        computeRotation(rotation, angleDegrees, true, axis);
        compose(m, rotation, false);
        return 1;
    }
    return 0;
}
