// The length of a line's section through one pixel whose sides need not be equal.
#include <cmath>

#include "frame/convert.h"
#include "frame/math.h"
#include "frame/primitives.h"
#include "geometry/angle.h"
#include "velquad/geometry.h"

using velquad::frame::samePoint;
using velquad::frame::wrapAbs;
using velquad::frame::wrapSub;

namespace {

constexpr double kHalfTurnDegrees = 180.0;
constexpr double kPi = 3.141592653589793;

}  // namespace

extern "C" double matCalcPixelSection(const tagPOINT* a, const tagPOINT* b, double scaleX, double scaleY) {
    if (samePoint(*a, *b)) return (scaleX + scaleY) * 0.5;
    const tagPOINT2D direction{static_cast<double>(wrapAbs(wrapSub(b->x, a->x))) * scaleX,
                               static_cast<double>(wrapAbs(wrapSub(b->y, a->y))) * scaleY};
    const double angleDegrees =
        velquad::geometry::normalizedAngle({0.0, 0.0}, {1.0, 0.0}, direction, true, true);
    const double angleRad = angleDegrees / kHalfTurnDegrees * kPi;
    const double diagonalDegrees = velquad::frame::atan(scaleY / scaleX) / kPi * kHalfTurnDegrees;
    const bool leavesThroughSide = diagonalDegrees >= angleDegrees;
    return leavesThroughSide ? scaleX / std::fabs(velquad::frame::cos(angleRad))
                             : scaleY / std::fabs(velquad::frame::sin(angleRad));
}
