// Ellipses as chains of pixels, with the true curve on top.
#include <velquad/geometry.h>
#include <velquad/polygon.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "chains.h"
#include "pictures.h"

namespace gallery {
namespace {

constexpr int kZoom = 14;
constexpr double kPi = 3.14159265358979323846;

/// An ellipse in units of measurement; the angle, in degrees, turns from the x axis towards the y axis.
struct Ellipse {
    tagPOINT2D centre;
    double semiAxisA;
    double semiAxisB;
    double angle = 0.0;
    double pixelWidth = 1.0;
    double pixelHeight = 1.0;
};

void strokeCurve(Canvas& canvas, const Ellipse& ellipse) {
    constexpr int kSteps = 180;
    const double cosine = std::cos(ellipse.angle * kPi / 180);
    const double sine = std::sin(ellipse.angle * kPi / 180);
    const auto at = [&](int step) {
        const double a = ellipse.semiAxisA * std::cos(2 * kPi * step / kSteps);
        const double b = ellipse.semiAxisB * std::sin(2 * kPi * step / kSteps);
        return tagPOINT2D{(ellipse.centre.x + a * cosine - b * sine) / ellipse.pixelWidth,
                          (ellipse.centre.y + a * sine + b * cosine) / ellipse.pixelHeight};
    };
    for (int step = 0; step < kSteps; ++step)
        canvas.stroke(at(step), at(step + 1), 1.5, kInk);
}

std::vector<tagPOINT> ellipseIn(const int* rect) {
    std::vector<tagPOINT> points(matEstimatePointsInEllipse(rect));
    points.resize(matCalcEllipse(rect, points.data(), static_cast<unsigned int>(points.size())));
    return points;
}

std::vector<tagPOINT> ellipseAround(const tagPOINT& centre, int a, int b, int fullContour) {
    std::vector<tagPOINT> points(
        static_cast<std::size_t>(std::max(0, matGetEllipse(a, b, nullptr, 0, fullContour))));
    const int count = matGetEllipse(a, b, points.data(), static_cast<int>(points.size()), fullContour);
    if (count < 0) throw std::runtime_error("an ellipse was not drawn");
    points.resize(static_cast<std::size_t>(count));
    for (tagPOINT& point : points) {
        point.x += centre.x;
        point.y += centre.y;
    }
    return points;
}

bool contains(const std::vector<tagPOINT>& points, const tagPOINT& wanted) {
    return std::any_of(points.begin(), points.end(),
                       [&](const tagPOINT& point) { return point.x == wanted.x && point.y == wanted.y; });
}

}  // namespace

Canvas drawEllipsesInRectangles() {
    Canvas canvas(62, 44, kZoom);
    // From the left: odd by odd, even by even, even by odd. Below them wide ones; at the right narrow ones.
    const int rects[][4] = {{2, 2, 10, 10},   {14, 2, 23, 11},  {27, 2, 42, 12},  {2, 16, 22, 27},
                            {26, 16, 43, 27}, {2, 31, 42, 41},  {46, 2, 49, 18},  {53, 2, 55, 18},
                            {58, 2, 59, 18},  {46, 22, 59, 23}, {46, 27, 59, 29}, {46, 33, 59, 36},
                            {46, 40, 46, 40}, {50, 40, 51, 41}, {55, 39, 57, 41}};
    const Rgb colours[] = {kOrange, kBlue, kGreen, kRed, kViolet};
    int index = 0;
    for (const auto& rect : rects) {
        canvas.fillCells(ellipseIn(rect), colours[index % 5]);
        canvas.frame({rect[0] - 0.5, rect[1] - 0.5, rect[2] + 0.5, rect[3] + 0.5}, 1.5, kInk);
        strokeCurve(canvas, {{(rect[0] + rect[2]) / 2.0, (rect[1] + rect[3]) / 2.0},
                             (rect[2] - rect[0]) / 2.0,
                             (rect[3] - rect[1]) / 2.0});
        ++index;
    }
    return canvas;
}

Canvas drawEllipsesAroundOrigin() {
    Canvas canvas(63, 41, kZoom);
    const int semiAxes[][2] = {{14, 19}, {11, 14}, {13, 8}, {6, 4}, {2, 1}};
    const Rgb colours[] = {kOrange, kBlue, kGreen, kRed, kViolet};
    for (int fullContour = 1; fullContour >= 0; --fullContour) {
        const tagPOINT centre{fullContour != 0 ? 15 : 47, 20};
        int index = 0;
        for (const auto& axes : semiAxes) {
            canvas.fillCells(ellipseAround(centre, axes[0], axes[1], fullContour), colours[index]);
            ++index;
        }
        for (const auto& axes : semiAxes) {
            strokeCurve(canvas, {{static_cast<double>(centre.x), static_cast<double>(centre.y)},
                                 static_cast<double>(axes[0]),
                                 static_cast<double>(axes[1])});
        }
    }
    return canvas;
}

Canvas drawTiltedEllipses() {
    Canvas canvas(66, 44, kZoom);
    const Ellipse ellipses[] = {{{14.0, 10.0}, 12.0, 6.0, 25.0},
                                {{39.3, 10.6}, 10.5, 7.5, -40.0},
                                {{58.0, 11.0}, 10.0, 2.5, 65.0},
                                {{13.0, 32.0}, 12.0, 3.0, 135.0},
                                // Pixels twice as high as wide: the same curve is half as high on their grid.
                                {{39.0, 66.0}, 15.0, 9.0, 30.0, 1.0, 2.0},
                                // Pixels twice as wide as high.
                                {{116.0, 32.0}, 15.0, 8.0, 30.0, 2.0, 1.0}};
    constexpr int kTowardsY = 1;
    constexpr int kDegrees = 1;
    for (const Ellipse& e : ellipses) {
        double centre[] = {e.centre.x, e.centre.y};
        const std::vector<tagPOINT> rotated = pointsOf(polyGetRotatedEllipse(
            centre, e.semiAxisA, e.semiAxisB, e.angle, kTowardsY, kDegrees, e.pixelWidth, e.pixelHeight));
        const std::vector<tagPOINT> arbitrary = pointsOf(polyGetArbitraryEllipse(
            &e.centre, e.semiAxisA, e.semiAxisB, e.angle, kTowardsY, kDegrees, e.pixelWidth, e.pixelHeight));
        std::vector<tagPOINT> common;
        std::copy_if(rotated.begin(), rotated.end(), std::back_inserter(common),
                     [&](const tagPOINT& point) { return contains(arbitrary, point); });
        canvas.fillCells(rotated, kOrange);
        canvas.fillCells(arbitrary, kBlue);
        canvas.fillCells(common, kFaint);
        strokeCurve(canvas, e);
    }
    return canvas;
}

}  // namespace gallery
