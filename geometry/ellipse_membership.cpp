// Whether a pixel lies inside the ellipse in a pixel rectangle: the line from the centre through the pixel is cut with
// the ellipse, and the pixel's place between the two crossings tells.
#include "frame/convert.h"
#include "frame/primitives.h"
#include "geometry/distance.h"
#include "geometry/scale_factor.h"
#include "velquad/geometry.h"

using velquad::frame::isSmaller;
using velquad::frame::wrapAdd;

namespace {

constexpr int kInside = 1;
constexpr int kOutside = 0;
constexpr int kOnCurve = -1;
/// A pixel this near to the centre in both coordinates is the centre.
constexpr double kAtCenter = 1e-7;
/// A parameter this near to that of a crossing is the crossing.
constexpr double kAtCrossing = 1e-7;
constexpr double kBehindSecondCrossing = 1.0000001;

}  // namespace

extern "C" int matIsPointInsideEllipse(const int* rect, const tagPOINT* point, double* distance) {
    const tagPOINT2D center{static_cast<double>(wrapAdd(rect[0], rect[2]) / 2),
                            static_cast<double>(wrapAdd(rect[1], rect[3]) / 2)};
    const tagPOINT2D test = velquad::frame::toPoint2D(*point);
    if (isSmaller(kAtCenter, test.x - center.x) && isSmaller(kAtCenter, test.y - center.y)) return kInside;

    tagPOINT2D first{};
    tagPOINT2D second{};
    matIntersectLineAndEllipse(rect, &center, &test, &first, &second);
    const double t = velquad::geometry::scaleFactor2D(first, second, test);
    if (distance != nullptr) {
        const double toSecond = velquad::geometry::distance(test, second);
        const double toFirst = velquad::geometry::distance(test, first);
        *distance = toFirst < toSecond ? toFirst : toSecond;
    }
    if (isSmaller(kAtCrossing, t) || isSmaller(kAtCrossing, 1.0 - t)) return kOnCurve;
    if (!(t > -kAtCrossing)) return kOutside;
    return kBehindSecondCrossing > t ? kInside : kOutside;
}
