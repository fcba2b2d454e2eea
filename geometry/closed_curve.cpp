#include "geometry/closed_curve.h"

#include "geometry/compass.h"

namespace velquad::geometry {

namespace {

/// The sharpest turn of one step, in compass directions.
constexpr int kSharpestTurn = 2;
/// A curve longer than this is given up.
constexpr DWORD kLargestIndex = 0x20000;

/// The compass direction for any integer.
constexpr int toCompass(int direction) {
    return direction & (kCompassDirections - 1);
}

}  // namespace

void CMatClosedCurve::step(tagPOINT& current, int& direction) {
    isFirstStep = 0;
    int chosen = toCompass(direction - kSharpestTurn);
    tagPOINT nearest;
    double smallestError = GetNeighbourError(current, &nearest, chosen);
    for (int turn = -kSharpestTurn + 1; turn <= kSharpestTurn; ++turn) {
        const int candidate = toCompass(direction + turn);
        tagPOINT neighbour;
        const double error = GetNeighbourError(current, &neighbour, candidate);
        if (!(smallestError > error)) continue;
        smallestError = error;
        nearest = neighbour;
        chosen = candidate;
    }
    current = nearest;
    direction = chosen;
}

DWORD CMatClosedCurve::Follow(tagPOINT start, int direction) {
    if (!deliver(start, 0)) return 0;
    tagPOINT current = start;
    DWORD index = 1;
    for (;;) {
        step(current, direction);
        if (!deliver(current, index)) return 0;
        ++index;
        if (index > 2 && areNeighbours(current, start)) break;
        if (index > kLargestIndex) return 0;
    }
    if (!deliver(start, index)) return 0;
    return index + 1;
}

}  // namespace velquad::geometry
