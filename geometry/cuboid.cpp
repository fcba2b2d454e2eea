// Cuboids that grow to hold points and other cuboids. Comparisons are strict, so a coordinate that is not a number
// widens nothing.
#include <initializer_list>

#include "velquad/geometry.h"

namespace {

/// The six numbers of a cuboid, by their place.
enum : int { kXMin, kXMax, kYMin, kYMax, kZMin, kZMax };

void widen(double& minimum, double& maximum, double value) {
    if (minimum > value) minimum = value;
    if (value > maximum) maximum = value;
}

}  // namespace

extern "C" bool matInitCuboid(double* cuboid, double xMin, double xMax, double yMin, double yMax, double zMin,
                              double zMax) {
    if (cuboid == nullptr) return false;
    cuboid[kXMin] = xMin;
    cuboid[kXMax] = xMax;
    cuboid[kYMin] = yMin;
    cuboid[kYMax] = yMax;
    cuboid[kZMin] = zMin;
    cuboid[kZMax] = zMax;
    return true;
}

extern "C" bool matSetMinimumCuboid(double* cuboid) {
    constexpr double kUnset = velquad::kExtentNotSet;
    return matInitCuboid(cuboid, kUnset, -kUnset, kUnset, -kUnset, kUnset, -kUnset);
}

extern "C" bool matGetBoundingCuboid(double* cuboid, const tagPOINT3D* point) {
    if (cuboid == nullptr || point == nullptr) return false;
    widen(cuboid[kXMin], cuboid[kXMax], point->x);
    widen(cuboid[kYMin], cuboid[kYMax], point->y);
    widen(cuboid[kZMin], cuboid[kZMax], point->z);
    return true;
}

extern "C" bool matMergeCuboids(double* out, const double* a, const double* b) {
    if (out == nullptr || a == nullptr || b == nullptr) return false;
    for (const int minimum : {kXMin, kYMin, kZMin}) {
        const int maximum = minimum + 1;
        out[minimum] = b[minimum] < a[minimum] ? b[minimum] : a[minimum];
        out[maximum] = b[maximum] > a[maximum] ? b[maximum] : a[maximum];
    }
    return true;
}
