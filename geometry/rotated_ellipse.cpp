// A tilted ellipse as a chain of pixels, found by stepping the parameter: as many steps as the circle around the
// ellipse has pixels, each rounded, corrected by one pixel towards the centre where that lies nearer to the curve,
// and joined to the one before by a line.
#include "geometry/rotated_ellipse.h"

#include <cmath>

#include "frame/convert.h"
#include "frame/math.h"
#include "frame/primitives.h"
#include "geometry/angle.h"
#include "geometry/angle_table.h"
#include "geometry/compass.h"
#include "geometry/growing_outline.h"
#include "geometry/raster_line.h"

namespace velquad::geometry {

using frame::isSmaller;
using frame::lroundToInt32;

namespace {

/// A pixel smaller than this has no size, and a semi-axis below its negative is invalid.
constexpr double kNullSize = 1e-7;
/// A squared semi-axis below this has no extent.
constexpr double kNullSquare = 1e-10;
/// A pixel with a smaller error lies on the curve.
constexpr double kOnCurve = 1e-7;
/// Up to this longest semi-axis in pixels, an ellipse is one pixel.
constexpr double kOnePixel = 1.0000001;
constexpr double kIrregularSemiAxis = 3.0;
constexpr double kIrregularRatio = 10.0;
constexpr double kIrregularScaleDifference = 0.1;

/// The larger of two lengths; the first one unless it is smaller.
constexpr double larger(double a, double b) {
    return a < b ? b : a;
}

}  // namespace

CMatRotatedEllipse::CMatRotatedEllipse(const double* center, double a, double b, double rotation,
                                       bool isCounterClockwise, bool isDegrees, double pixelWidth,
                                       double pixelHeight, PointCallback pointCallback, std::uint64_t arg1,
                                       std::int64_t arg2)
    : centerX(center[0]),
      centerY(center[1]),
      semiAxisA(std::fabs(a)),
      semiAxisB(std::fabs(b)),
      angle(normalizeAngle(isCounterClockwise ? rotation : -rotation, isDegrees)),
      scaleX(pixelWidth),
      scaleY(pixelHeight),
      squaredSemiAxisA(semiAxisA * semiAxisA),
      squaredSemiAxisB(semiAxisB * semiAxisB),
      diagonalLength(std::sqrt(2.0)),
      callback(pointCallback),
      callbackArg1(arg1),
      callbackArg2(arg2) {
    if (isDegrees) angle = angle / kHalfTurnDegrees * kHalfTurnRad;
    sinAngle = frame::sin(angle);
    cosAngle = frame::cos(angle);
    if (!IsValid()) return;
    const double pixelsA = std::fabs(semiAxisA / scaleX);
    const double pixelsB = std::fabs(semiAxisB / scaleY);
    const double longer = larger(pixelsA, pixelsB);
    const double shorter = pixelsA < pixelsB ? pixelsA : pixelsB;
    const bool isSmallOrThin = kIrregularSemiAxis > shorter || longer / shorter > kIrregularRatio;
    const bool isPixelOblong = std::fabs(std::fabs(scaleX) - std::fabs(scaleY)) > kIrregularScaleDifference;
    isIrregular = isSmallOrThin || isPixelOblong ? 1 : 0;
}

bool CMatRotatedEllipse::IsValid() {
    if (validity < 0) {
        const bool isInvalid = isSmaller(kNullSize, scaleX) || isSmaller(kNullSize, scaleY) ||
                               -kNullSize > semiAxisA || -kNullSize > semiAxisB;
        validity = isInvalid ? 0 : 1;
    }
    return validity != 0;
}

tagPOINT2D CMatRotatedEllipse::Offset(double t) const {
    const CMatAngleInterpolator* table = sinCosTable;
    const double c = table != nullptr ? AngleTable::sine(*table, t + kQuarterTurnRad, false) : frame::cos(t);
    const double s = table != nullptr ? AngleTable::sine(*table, t, false) : frame::sin(t);
    const double u = c * semiAxisA;
    const double v = s * semiAxisB;
    return {(u * cosAngle - v * sinAngle) / scaleX, (v * cosAngle + u * sinAngle) / scaleY};
}

double CMatRotatedEllipse::Error(const tagPOINT& pixel) const {
    const double x = scaleX * pixel.x - centerX;
    const double y = scaleY * pixel.y - centerY;
    const double u = sinAngle * y + cosAngle * x;
    const double v = cosAngle * y - sinAngle * x;
    const bool isFlatA = isSmaller(kNullSquare, squaredSemiAxisA);
    const bool isFlatB = isSmaller(kNullSquare, squaredSemiAxisB);
    if (isFlatA && isFlatB) return std::sqrt(v * v + u * u);
    if (isFlatB) return std::fabs(v);
    if (isFlatA) return std::fabs(u);
    return std::fabs(v * v / squaredSemiAxisB + u * u / squaredSemiAxisA - 1.0);
}

int CMatRotatedEllipse::nearestDirection(const tagPOINT2D& offset) const {
    int nearest = 0;
    double largest = 0.0;
    for (int direction = 0; direction < kCompassDirections; ++direction) {
        const double length = direction % 2 == 0 ? 1.0 : diagonalLength;
        const double projection =
            (kCompassX[direction] * offset.x + kCompassY[direction] * offset.y) / length;
        if (direction != 0 && !(projection > largest)) continue;
        largest = projection;
        nearest = direction;
    }
    return nearest;
}

void CMatRotatedEllipse::CurvePoint(double t, tagPOINT& pixel) {
    lastRounded = pixel;
    const tagPOINT2D offset = Offset(t);
    pixel = {lroundToInt32(centerX / scaleX + offset.x), lroundToInt32(centerY / scaleY + offset.y)};
    // Kept: the comparison is with what the caller passed in, which is (0, 0) in a walk. Only a curve that
    // passes through that very pixel repeats the choice made before, which may lie elsewhere.
    if (frame::samePoint(pixel, lastRounded) && lastChosen.x != kCoordinateNotSet) {
        pixel = lastChosen;
        return;
    }
    const double error = Error(pixel);
    if (kOnCurve > error) {
        lastChosen = pixel;
        return;
    }
    // Kept: the error has no sign, so a pixel inside the curve is never moved outwards.
    const int outward = nearestDirection(offset);
    const tagPOINT candidate{frame::wrapSub(pixel.x, kCompassX[outward]),
                             frame::wrapSub(pixel.y, kCompassY[outward])};
    if (error > std::fabs(Error(candidate))) pixel = candidate;
    // Kept: the candidate is remembered even when it was not chosen.
    lastChosen = candidate;
}

bool CMatRotatedEllipse::deliver(const tagPOINT& point) {
    const DWORD index = pointCount++;
    return callback == nullptr || callback(point, index, callbackArg1, callbackArg2) != 0;
}

bool CMatRotatedEllipse::deliverLine(const tagPOINT& previous, const tagPOINT& current) {
    const RasterSteps steps = rasterSteps(previous.x, previous.y, current.x, current.y);
    RasterCursor cursor{static_cast<Int32>(previous.x), static_cast<Int32>(previous.y), steps.error};
    for (Int32 i = 0; i < steps.major; ++i) {
        cursor.advance(steps);
        if (!deliver({cursor.x, cursor.y})) return false;
    }
    return true;
}

DWORD CMatRotatedEllipse::Trace() {
    if (!IsValid()) return 0;
    const double longest = larger(semiAxisA / scaleX, semiAxisB / scaleY);
    const frame::Int32 stepCount = lroundToInt32(longest * kFullTurnRad);
    if (stepCount == 0 || kOnePixel > longest) {
        const tagPOINT middle{lroundToInt32(centerX / scaleX), lroundToInt32(centerY / scaleY)};
        return deliver(middle) ? pointCount : 0;
    }
    const double step = kFullTurnRad / stepCount;
    tagPOINT previous{0, 0};
    CurvePoint(0.0, previous);
    if (!deliver(previous)) return 0;
    // 64 bits, so that the loop ends for the largest count too.
    for (std::int64_t i = 1; i <= stepCount; ++i) {
        tagPOINT current{0, 0};
        CurvePoint(static_cast<double>(i) * step, current);
        if (frame::samePoint(current, previous)) continue;
        const bool goesOn =
            areNeighbours(current, previous) ? deliver(current) : deliverLine(previous, current);
        if (!goesOn) return 0;
        previous = current;
    }
    return pointCount;
}

namespace {

/// Points that the block has room for at first, and that it grows by.
constexpr SIZE_T kPointsPerGrowth = 64;
constexpr SIZE_T kGrowthBytes = kPointsPerGrowth * sizeof(tagPOINT);
constexpr SIZE_T kFirstBytes = offsetof(tagPOLY, points) + kGrowthBytes;

}  // namespace

}  // namespace velquad::geometry

void* polyGetRotatedEllipse(double* const center, double semiAxisA, double semiAxisB, double angle,
                            int isCounterClockwise, int isDegrees, double scaleX, double scaleY) {
    using namespace velquad::geometry;
    if (center == nullptr) return nullptr;
    GrowingOutline outline(kFirstBytes, kGrowthBytes);
    CMatRotatedEllipse ellipse(center, semiAxisA, semiAxisB, angle, isCounterClockwise != 0, isDegrees != 0,
                               scaleX, scaleY, GrowingOutline::appendFromWalk, outline.callbackArgument(), 0);
    return ellipse.Trace() == 0 ? nullptr : outline.release();
}

int matDrawRotatedEllipse(double* const center, double semiAxisA, double semiAxisB, double angle,
                          int isCounterClockwise, int isDegrees, double scaleX, double scaleY,
                          velquad::PointCallback callback, std::uint64_t arg1, std::int64_t arg2) {
    if (center == nullptr) return 0;
    velquad::geometry::CMatRotatedEllipse ellipse(center, semiAxisA, semiAxisB, angle,
                                                  isCounterClockwise != 0, isDegrees != 0, scaleX, scaleY,
                                                  callback, arg1, arg2);
    return ellipse.Trace() == 0 ? 0 : 1;
}
