// Crossings of a line and an ellipse. The line is written as y = k x + c, or as x = k y + c when it is steeper
// than the diagonal, and put into the equation of the ellipse; the quadratic's roots are the crossings.
#include <cmath>

#include "frame/convert.h"
#include "frame/primitives.h"
#include "velquad/frame.h"
#include "velquad/geometry.h"

using velquad::frame::Int32;
using velquad::frame::isSmaller;
using velquad::frame::wrapAdd;
using velquad::frame::wrapSub;

namespace {

/// A line whose points are nearer than this in both coordinates has no direction.
constexpr double kNoDirection = 1e-7;
/// How far the discriminant may fall short of the product of the roots.
constexpr double kRootProductMargin = 5e-8;
/// A discriminant below this belongs to a tangent.
constexpr double kTangent = 1e-7;

struct Ellipse {
    tagPOINT2D center;
    double semiAxisX;
    double semiAxisY;
};

struct Roots {
    int count;
    double low;
    double high;
};

/// Solves w^2 + 2 h w + q = 0 for the coordinate w along the line v = slope w + intercept. `alongAxis` is the
/// semi-axis in the direction of w, `acrossAxis` the other one.
Roots solveAlong(double slope, double intercept, double alongAxis, double acrossAxis) {
    const double ratio = (acrossAxis * acrossAxis) / (alongAxis * alongAxis);
    const double divisor = ratio + slope * slope;
    const double h = intercept * slope / divisor;
    const double q = (intercept * intercept - acrossAxis * acrossAxis) / divisor;
    const double discriminant = h * h - q;
    // Kept: the discriminant is compared with the product of the roots, not with 0. A line that cuts the ellipse
    // in two points of the same sign of w counts only when h^2 reaches 2 q.
    if (q - kRootProductMargin > discriminant) return {0, 0.0, 0.0};
    if (isSmaller(kTangent, discriminant)) return {1, -h, -h};
    const double root = std::sqrt(discriminant);
    return {2, -h - root, root - h};
}

double distanceSquared(const tagPOINT2D& a, const tagPOINT2D& b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return dx * dx + dy * dy;
}

int intersectLine(const Ellipse& ellipse, const tagPOINT2D& p0, const tagPOINT2D& p1, tagPOINT2D* first,
                  tagPOINT2D* second) {
    if (isSmaller(kNoDirection, p0.x - p1.x) && isSmaller(kNoDirection, p0.y - p1.y)) return 0;
    const tagPOINT2D& center = ellipse.center;
    const tagPOINT2D u{p0.x - center.x, p0.y - center.y};
    const tagPOINT2D v{p1.x - center.x, p1.y - center.y};
    const double dx = u.x - v.x;
    const double dy = u.y - v.y;

    Roots roots;
    tagPOINT2D low;
    tagPOINT2D high;
    if (std::fabs(dy) > std::fabs(dx)) {
        const double slope = dx / dy;
        const double intercept = u.x - u.y * slope;
        roots = solveAlong(slope, intercept, ellipse.semiAxisY, ellipse.semiAxisX);
        low = {slope * roots.low + intercept, roots.low};
        high = {slope * roots.high + intercept, roots.high};
    } else {
        const double slope = dy / dx;
        const double intercept = u.y - u.x * slope;
        roots = solveAlong(slope, intercept, ellipse.semiAxisX, ellipse.semiAxisY);
        low = {roots.low, slope * roots.low + intercept};
        high = {roots.high, slope * roots.high + intercept};
    }
    if (roots.count == 0) return 0;

    low = {low.x + center.x, low.y + center.y};
    high = {high.x + center.x, high.y + center.y};
    const bool isLowFirst = distanceSquared(low, p0) < distanceSquared(high, p0);
    if (first != nullptr) *first = isLowFirst ? low : high;
    if (second != nullptr) *second = isLowFirst ? high : low;
    return roots.count;
}

int intersectLineAndRect(const tagMAT_RECT2D& rect, const tagPOINT2D& p0, const tagPOINT2D& p1,
                         tagPOINT2D* first, tagPOINT2D* second) {
    const Ellipse ellipse{{(rect.left + rect.right) * 0.5, (rect.top + rect.bottom) * 0.5},
                          (rect.right - rect.left) * 0.5,
                          (rect.bottom - rect.top) * 0.5};
    return intersectLine(ellipse, p0, p1, first, second);
}

tagPOINT2D loadPoint(const double* values) {
    return {values[0], values[1]};
}

void storePoint(double* values, const tagPOINT2D& point) {
    values[0] = point.x;
    values[1] = point.y;
}

}  // namespace

extern "C" int matIntersectLineAndEllipse(const int* rect, const tagPOINT2D* p0, const tagPOINT2D* p1,
                                          tagPOINT2D* first, tagPOINT2D* second) {
    const Int32 left = rect[0];
    const Int32 top = rect[1];
    const Int32 right = rect[2];
    const Int32 bottom = rect[3];
    // Kept: whole quotients, so that an odd width or height loses its half pixel.
    const Ellipse ellipse{
        {static_cast<double>(wrapAdd(left, right) / 2), static_cast<double>(wrapAdd(top, bottom) / 2)},
        static_cast<double>(wrapSub(right, left) / 2),
        static_cast<double>(wrapSub(bottom, top) / 2)};
    return intersectLine(ellipse, *p0, *p1, first, second);
}

int matIntersectLineAndEllipse2D(tagMAT_RECT2D* rect, double* p0, double* p1, double* first, double* second) {
    tagPOINT2D firstPoint;
    tagPOINT2D secondPoint;
    const int count = intersectLineAndRect(*rect, loadPoint(p0), loadPoint(p1), &firstPoint, &secondPoint);
    if (count == 0) return 0;
    if (first != nullptr) storePoint(first, firstPoint);
    if (second != nullptr) storePoint(second, secondPoint);
    return count;
}

int matIntersectLineAndArbitraryEllipse(double* const center, double semiAxisX, double semiAxisY,
                                        double angle, int isCounterClockwise, int isDegrees, double* p0,
                                        double* p1, double* first, double* second) {
    const tagPOINT2D middle = loadPoint(center);
    const tagPOINT2D origin{0.0, 0.0};
    const auto turnUpright = [&](const tagPOINT2D& point) {
        tagPOINT2D turned{point.x - middle.x, point.y - middle.y};
        matRotatePoint(&turned, &origin, angle, isCounterClockwise == 0 ? 1 : 0, isDegrees);
        return turned;
    };
    const tagPOINT2D start = turnUpright(loadPoint(p0));
    const tagPOINT2D end = turnUpright(loadPoint(p1));
    const tagMAT_RECT2D rect{-semiAxisX, -semiAxisY, semiAxisX, semiAxisY};

    tagPOINT2D results[2] = {};
    double* const outputs[2] = {first, second};
    for (int i = 0; i < 2; ++i) {
        if (outputs[i] != nullptr) results[i] = loadPoint(outputs[i]);
    }
    const int count = intersectLineAndRect(rect, start, end, &results[0], &results[1]);
    for (int i = 0; i < 2; ++i) {
        if (outputs[i] == nullptr) continue;
        matRotatePoint(&results[i], &origin, angle, isCounterClockwise, isDegrees);
        // Kept: what is no crossing of its own is turned too, but not moved: both buffers when there is none, and
        // the second one of a tangent, which stays relative to the centre.
        if (count > i) results[i] = {results[i].x + middle.x, results[i].y + middle.y};
        storePoint(outputs[i], results[i]);
    }
    return count;
}
