// The running record of the shortest and longest of many pixel pairs, in units of measurement.
#include "geometry/angle.h"
#include "geometry/distance.h"
#include "velquad/geometry.h"

using velquad::kCoordinateNotSet;
using velquad::kNoValue;

namespace {

/// How much a pair must beat the one before; among pairs this close the earliest stays.
constexpr double kDistanceTolerance = 1e-10;
/// Directions from here on are turned back by half a turn.
constexpr double kUndirectedLimitDegrees = 179.9999999;

double undirectedAngle(const tagPOINT& from, const tagPOINT& to, double scaleX, double scaleY) {
    double angle = velquad::geometry::scaledAngle(from, to, scaleX, scaleY);
    if (angle >= kUndirectedLimitDegrees) angle -= velquad::geometry::kHalfTurnDegrees;
    return angle < 0.0 ? 0.0 : angle;
}

}  // namespace

extern "C" int matInitDistance(tagMAT_DISTANCE* record, double scaleX, double scaleY) {
    if (record == nullptr) return 0;
    constexpr tagPOINT kNotSet{kCoordinateNotSet, kCoordinateNotSet};
    record->shortestFrom = kNotSet;
    record->shortestTo = kNotSet;
    record->shortestDistance = kNoValue;
    record->shortestAngle = kNoValue;
    record->longestFrom = kNotSet;
    record->longestTo = kNotSet;
    record->longestDistance = kNoValue;
    record->longestAngle = kNoValue;
    record->meanDistance = 0.0;
    record->count = 0;
    record->scaleX = scaleX;
    record->scaleY = scaleY;
    return 1;
}

extern "C" int matCompareDistance(tagMAT_DISTANCE* record, tagPOINT a, tagPOINT b, double distance) {
    if (record == nullptr || a.x == kCoordinateNotSet || b.x == kCoordinateNotSet) return 0;
    if (distance == kNoValue) distance = matComputeCorrectedDistance(a, b, record->scaleX, record->scaleY);
    if (record->shortestDistance == kNoValue || record->shortestDistance - distance > kDistanceTolerance) {
        record->shortestFrom = a;
        record->shortestTo = b;
        record->shortestDistance = distance;
    }
    if (record->longestDistance == kNoValue || distance - record->longestDistance > kDistanceTolerance) {
        record->longestFrom = a;
        record->longestTo = b;
        record->longestDistance = distance;
    }
    record->meanDistance += distance;
    ++record->count;
    return 1;
}

extern "C" int matCompleteDistance(tagMAT_DISTANCE* record) {
    if (record == nullptr) return 0;
    if (record->count == 0) return 1;
    record->meanDistance /= record->count;
    record->longestAngle =
        undirectedAngle(record->longestFrom, record->longestTo, record->scaleX, record->scaleY);
    record->shortestAngle =
        undirectedAngle(record->shortestFrom, record->shortestTo, record->scaleX, record->scaleY);
    return 1;
}

extern "C" double matComputeCorrectedDistance(tagPOINT a, tagPOINT b, double scaleX, double scaleY) {
    return velquad::geometry::pixelScaledDistance(a, b, scaleX, scaleY) +
           matCalcPixelSection(&a, &b, scaleX, scaleY);
}
