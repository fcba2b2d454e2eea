// Orientation and collinearity of three points of the plane.
#include <cmath>
#include <initializer_list>

#include "frame/primitives.h"
#include "velquad/frame.h"

using velquad::frame::isSmaller;
using velquad::frame::largest;

namespace {

constexpr double kCollinearTolerance = 1e-7;

double largestCoordinate(std::initializer_list<const tagPOINT2D*> points) {
    double result = 0.0;
    for (const tagPOINT2D* point : points) {
        result = largest(largest(result, std::fabs(point->x)), std::fabs(point->y));
    }
    return result;
}

}  // namespace

extern "C" int matDetIsZero2D(const tagPOINT2D* p0, const tagPOINT2D* p1, const tagPOINT2D* p2) {
    const double determinant = (p1->x - p0->x) * (p2->y - p0->y) - (p2->x - p0->x) * (p1->y - p0->y);
    if (isSmaller(kCollinearTolerance, determinant)) return 1;
    const double magnitude = largestCoordinate({p0, p1, p2});
    if (isSmaller(kCollinearTolerance, magnitude)) return 0;
    return isSmaller(kCollinearTolerance, determinant / magnitude) ? 1 : 0;
}

extern "C" int matIsCCW(const tagPOINT* p0, const tagPOINT* p1, const tagPOINT* p2) {
    return velquad::frame::orientation(*p0, *p1, *p2);
}

extern "C" int matIsCCW2D(const tagPOINT2D* p0, const tagPOINT2D* p1, const tagPOINT2D* p2) {
    return velquad::frame::orientation(*p0, *p1, *p2);
}
