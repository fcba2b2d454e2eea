// Lines through a cloud with outliers, the mean of directions, and a plane through points.
#include <velquad/statistics.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "noise.h"
#include "pictures.h"

namespace gallery {
namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;

/// A cloud along a line, of which the last quarter on the right was measured far too high.
std::vector<tagPOINT2D> cloudWithOutliers() {
    Noise noise(20240613);
    std::vector<tagPOINT2D> cloud;
    for (int i = 0; i < 48; ++i) {
        const double x = 3.0 + 54.0 * i / 47.0;
        const bool isOutlier = i >= 36 && i % 4 != 0;
        cloud.push_back({x, isOutlier ? 5.0 + 3.0 * noise.next() : 20.0 + 0.25 * x + 2.0 * noise.bell()});
    }
    return cloud;
}

/// Draws a fitted line across the columns of a canvas.
void strokeLine(Canvas& canvas, CMatRegressionLine& line, double lastColumn, Rgb colour) {
    double from[2] = {};
    double to[2] = {};
    if (line.CalcPointAt(0.0, from) == 0 || line.CalcPointAt(lastColumn, to) == 0) return;
    canvas.stroke({from[0], from[1]}, {to[0], to[1]}, 4.0, colour);
}

tagPOINT2D onCircle(const tagPOINT2D& middle, double radius, double degrees) {
    // Angles grow from the x axis towards the y axis, which points downwards here.
    return {middle.x + radius * std::cos(degrees * kRadiansPerDegree),
            middle.y + radius * std::sin(degrees * kRadiansPerDegree)};
}

void strokeArc(Canvas& canvas, const tagPOINT2D& middle, double radius, double from, double range,
               double width, Rgb colour) {
    constexpr int kSteps = 180;
    for (int i = 0; i < kSteps; ++i) {
        canvas.stroke(onCircle(middle, radius, from + range * i / kSteps),
                      onCircle(middle, radius, from + range * (i + 1) / kSteps), width, colour);
    }
}

/// Directions around a middle, with their mean and range.
void drawRose(Canvas& canvas, const tagPOINT2D& middle, double around, double spread, int count) {
    constexpr double kRadius = 15.0;
    Noise noise(static_cast<std::uint32_t>(count));
    CMatMomentOfAnglesEvaluator directions(1, 1);
    strokeArc(canvas, middle, kRadius, 0.0, 360.0, 1.5, kFaint);
    canvas.stroke(middle, onCircle(middle, kRadius + 2.0, 0.0), 1.5, kFaint);
    for (int i = 0; i < count; ++i) {
        const double direction = around + spread * noise.bell();
        directions.AddValue(direction);
        canvas.dot(onCircle(middle, kRadius, direction), 4.0, kBlue);
    }
    double mean = 0.0;
    double lowest = 0.0;
    directions.GetMean(&mean);
    directions.GetMin(&lowest);
    const double range = directions.GetRange(nullptr);
    const double deviation = directions.GetStdDev(nullptr);
    strokeArc(canvas, middle, kRadius - 2.5, lowest, range, 4.0, kOrange);
    strokeArc(canvas, middle, kRadius - 4.5, mean - deviation, 2.0 * deviation, 4.0, kGreen);
    canvas.stroke(middle, onCircle(middle, kRadius - 1.0, mean), 3.0, kInk);
    canvas.dot(middle, 5.0, kInk);
}

/// Space seen obliquely from above: x to the right, y backwards, z upwards.
tagPOINT2D project(const tagPOINT3D& p) {
    return {30.0 + p.x + 0.45 * p.y, 24.0 - 0.35 * p.y - p.z};
}

}  // namespace

Canvas drawFittedLines() {
    Canvas canvas(61, 41, 14);
    CMatRegressionLine leastSquares;
    CMatRobustLineFit leastDeviations;
    const std::vector<tagPOINT2D> cloud = cloudWithOutliers();
    for (const tagPOINT2D& point : cloud) {
        leastSquares.AddValue(point.x, point.y);
        leastDeviations.AddValue(point.x, point.y);
    }
    leastSquares.CalcRegressionLine(nullptr, nullptr, nullptr);
    leastDeviations.CalcRegressionLine(nullptr, nullptr, nullptr);
    strokeLine(canvas, leastSquares, 60.0, kOrange);
    strokeLine(canvas, leastDeviations, 60.0, kBlue);
    for (const tagPOINT2D& point : cloud)
        canvas.dot(point, 5.0, kInk);
    return canvas;
}

Canvas drawMeanDirections() {
    Canvas canvas(77, 41, 12);
    drawRose(canvas, {19.0, 20.0}, 0.0, 60.0, 24);
    drawRose(canvas, {57.0, 20.0}, 230.0, 150.0, 40);
    return canvas;
}

Canvas drawFittedPlane() {
    Canvas canvas(61, 45, 14);
    constexpr double kHalf = 18.0;  // of the side of the ground square
    Noise noise(5);
    std::vector<tagPOINT3D> points;
    for (int i = 0; i < 60; ++i) {
        const double x = kHalf * noise.next();
        const double y = kHalf * noise.next();
        points.push_back({x, y, 0.35 * x + 0.3 * y + 5.0 * noise.bell()});
    }
    tagPOINT3D centre{};
    tagPOINT3D normal{};
    matRegressionPlane(points.data(), static_cast<unsigned int>(points.size()), nullptr, &centre, &normal,
                       nullptr, nullptr, nullptr);
    const auto onPlane = [&](double x, double y) -> tagPOINT3D {
        return {x, y, centre.z - (normal.x * (x - centre.x) + normal.y * (y - centre.y)) / normal.z};
    };
    for (double t = -kHalf; t <= kHalf; t += kHalf / 4.0) {
        canvas.stroke(project(onPlane(t, -kHalf)), project(onPlane(t, kHalf)), 1.5, kOrange);
        canvas.stroke(project(onPlane(-kHalf, t)), project(onPlane(kHalf, t)), 1.5, kOrange);
    }
    for (const tagPOINT3D& p : points) {
        // The foot of the perpendicular.
        const double height =
            normal.x * (p.x - centre.x) + normal.y * (p.y - centre.y) + normal.z * (p.z - centre.z);
        const tagPOINT3D foot{p.x - height * normal.x, p.y - height * normal.y, p.z - height * normal.z};
        const Rgb colour = height * normal.z > 0.0 ? kBlue : kViolet;
        canvas.stroke(project(foot), project(p), 1.5, colour);
        canvas.dot(project(p), 4.5, colour);
    }
    const double up = normal.z > 0.0 ? 9.0 : -9.0;
    const tagPOINT3D tip{centre.x + up * normal.x, centre.y + up * normal.y, centre.z + up * normal.z};
    canvas.stroke(project(centre), project(tip), 4.0, kInk);
    canvas.dot(project(centre), 6.0, kInk);
    return canvas;
}

}  // namespace gallery
