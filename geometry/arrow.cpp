// The head of a drawn arrow.
#include "geometry/distance.h"
#include "velquad/frame.h"
#include "velquad/geometry.h"

namespace {

constexpr double kNoShaft = 1e-7;

/// `tail` turned about `tip`, at the distance `scale` times that of `tail`.
tagPOINT2D headEnd(const tagPOINT2D& tail, const tagPOINT2D& tip, double angle, bool isCounterClockwise,
                   int isDegrees, double scale) {
    tagPOINT2D turned = tail;
    matRotatePoint(&turned, &tip, angle, isCounterClockwise ? 1 : 0, isDegrees);
    return {(turned.x - tip.x) * scale + tip.x, (turned.y - tip.y) * scale + tip.y};
}

}  // namespace

extern "C" int matComputeArrow(const tagPOINT2D* tail, const tagPOINT2D* tip, double angle, int isDegrees,
                               double length, tagPOINT2D* left, tagPOINT2D* right) {
    if (tail == nullptr || tip == nullptr) return 0;
    // Values, as a result may be stored over an input.
    const tagPOINT2D from = *tail;
    const tagPOINT2D to = *tip;
    const double shaft = velquad::geometry::distance(from, to);
    if (kNoShaft > shaft) return 0;
    const double scale = length / shaft;
    if (left != nullptr) *left = headEnd(from, to, angle, true, isDegrees, scale);
    if (right != nullptr) *right = headEnd(from, to, angle, false, isDegrees, scale);
    return 1;
}
