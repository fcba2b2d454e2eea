// A tilted ellipse as a chain of pixels, found by following the curve. Each step costs five evaluations of the
// ellipse's equation and no square root or angle function.
#include "geometry/arbitrary_ellipse.h"

#include <cmath>

#include "frame/convert.h"
#include "frame/math.h"
#include "geometry/angle.h"
#include "geometry/compass.h"
#include "geometry/growing_outline.h"
#include "velquad/geometry.h"

namespace velquad::geometry {

namespace {

/// Half the angle between two compass directions, in degrees.
constexpr double kHalfCompassStep = 22.5;

/// The compass direction at most half a step counter-clockwise of a vector.
int directionBehind(const tagPOINT2D& vector) {
    constexpr tagPOINT2D kOrigin{0.0, 0.0};
    for (int direction = 0; direction < kCompassDirections; ++direction) {
        const tagPOINT2D step{static_cast<double>(kCompassX[direction]),
                              static_cast<double>(kCompassY[direction])};
        if (normalizedAngle(kOrigin, vector, step, true, true) <= kHalfCompassStep) return direction;
    }
    // Kept: only one side of a direction is looked at, so half of all tilts find none. The walk then starts in
    // direction 2, whatever the tilt.
    return kNoStep;
}

}  // namespace

CMatArbitraryEllipse::CMatArbitraryEllipse(PointCallback pointCallback, std::uint64_t arg1, std::int64_t arg2,
                                           double x, double y, double semiAxisA, double semiAxisB,
                                           double tilt, double pixelWidth, double pixelHeight)
    : CMatClosedCurve(pointCallback, arg1, arg2),
      centerX(x),
      centerY(y),
      angle(tilt),
      scaleX(pixelWidth),
      scaleY(pixelHeight),
      sinAngle(frame::sin(tilt)),
      cosAngle(frame::cos(tilt)),
      squaredSemiAxisA(semiAxisA * semiAxisA),
      squaredSemiAxisB(semiAxisB * semiAxisB) {
    constexpr int kQuarterTurn = 2;
    const tagPOINT2D axisEnd{cosAngle * semiAxisA / scaleX, sinAngle * semiAxisA / scaleY};
    startDirection = (directionBehind(axisEnd) + kQuarterTurn) % kCompassDirections;

    const tagPOINT rounded{frame::lroundToInt32(centerX / scaleX + axisEnd.x),
                           frame::lroundToInt32(centerY / scaleY + axisEnd.y)};
    double smallestError = GetNeighbourError(rounded, &startPoint, 0);
    for (int direction = 1; direction <= kNoStep; ++direction) {
        tagPOINT neighbour;
        const double error = GetNeighbourError(rounded, &neighbour, direction);
        if (!(smallestError > error)) continue;
        smallestError = error;
        startPoint = neighbour;
    }
}

double CMatArbitraryEllipse::GetNeighbourError(tagPOINT point, tagPOINT* neighbour, int direction) {
    *neighbour = neighbourOf(point, direction);
    const double x = neighbour->x * scaleX - centerX;
    const double y = neighbour->y * scaleY - centerY;
    const double u = x * cosAngle + y * sinAngle;
    const double v = y * cosAngle - x * sinAngle;
    return std::fabs(v * v / squaredSemiAxisB + u * u / squaredSemiAxisA - 1.0);
}

namespace {

/// The first size of the block that takes the points, and what it grows by.
constexpr SIZE_T kFirstBytes = 256;
constexpr SIZE_T kGrowthBytes = 128;

/// @return the result of the walk; 0 for an ellipse without extent.
DWORD walkEllipse(const tagPOINT2D* center, double semiAxisA, double semiAxisB, double angle,
                  bool isCounterClockwise, bool isDegrees, double scaleX, double scaleY,
                  PointCallback callback, std::uint64_t arg1, std::int64_t arg2) {
    if (center == nullptr) return 0;
    if (0.0 >= semiAxisA / scaleX || 0.0 >= semiAxisB / scaleY) return 0;
    double tilt = isCounterClockwise ? angle : -angle;
    if (isDegrees) tilt = tilt / kFullTurnDegrees * kFullTurnRad;
    CMatArbitraryEllipse ellipse(callback, arg1, arg2, center->x, center->y, semiAxisA, semiAxisB, tilt,
                                 scaleX, scaleY);
    return ellipse.Walk();
}

}  // namespace

}  // namespace velquad::geometry

extern "C" void* polyGetArbitraryEllipse(const tagPOINT2D* center, double semiAxisA, double semiAxisB,
                                         double angle, int isCounterClockwise, int isDegrees, double scaleX,
                                         double scaleY) {
    using namespace velquad::geometry;
    GrowingOutline outline(kFirstBytes, kGrowthBytes);
    const DWORD count =
        walkEllipse(center, semiAxisA, semiAxisB, angle, isCounterClockwise != 0, isDegrees != 0, scaleX,
                    scaleY, GrowingOutline::appendFromWalk, outline.callbackArgument(), 0);
    return count == 0 ? nullptr : outline.release();
}

extern "C" int matDrawArbitraryEllipse(const tagPOINT2D* center, double semiAxisA, double semiAxisB,
                                       double angle, int isCounterClockwise, int isDegrees, double scaleX,
                                       double scaleY, velquad::PointCallback callback, std::uint64_t arg1,
                                       std::int64_t arg2) {
    const DWORD count =
        velquad::geometry::walkEllipse(center, semiAxisA, semiAxisB, angle, isCounterClockwise != 0,
                                       isDegrees != 0, scaleX, scaleY, callback, arg1, arg2);
    return count == 0 ? 0 : 1;
}
