// Outlines of double points. Every function is the instantiation of the template that its integer twin uses; what
// the two families differ in stands in the traits of the points and, where an answer differs, here.
#include "polygon/double_points_impl.h"
#include "polygon/measures_impl.h"
#include "polygon/membership_impl.h"
#include "polygon/mini_vector_impl.h"
#include "polygon/relative_position_impl.h"
#include "polygon/reverse_order_impl.h"
#include "polygon/simplicity_impl.h"
#include "polygon/simplicity_repair_impl.h"
#include "velquad/polygon.h"

using velquad::polygon::NearestPlace;
using Outline2D = velquad::polygon::Outline<tagPOINT2D>;

static_assert(offsetof(tagPOLY2D, count) == 0);
static_assert(offsetof(tagPOLY2D, points) == 8, "callers walk the record by hand");
static_assert(sizeof(tagPOINT2D) == 16 && sizeof(tagPOLY2D) == 24);

namespace {

/// A total turning below this has no direction.
constexpr double kNoTurning = 1e-7;

enum Direction { kClockwise = 0, kCounterClockwise = 1, kNoDirection = -1 };

}  // namespace

extern "C" int poly2dIsPointInside(const tagPOINT2D* points, DWORD count, const tagPOINT2D* point) {
    if (count == 0) return velquad::polygon::kOutside;
    return velquad::polygon::isPointInside(points, count, *point);
}

extern "C" int poly2dGetRelativePosition(const tagPOINT2D* pointsA, DWORD countA, int closedA,
                                         const tagPOINT2D* pointsB, DWORD countB, int closedB) {
    return velquad::polygon::relativePosition(Outline2D{pointsA, countA, closedA != 0},
                                              Outline2D{pointsB, countB, closedB != 0});
}

extern "C" double poly2dCalcDistance(const tagPOINT2D* points, DWORD count, int closed,
                                     const tagPOINT2D* point, int isSquared, tagPOINT2D* nearest,
                                     DWORD* index, double* fraction) {
    NearestPlace place;
    if (count != 0) {
        place = velquad::polygon::nearestPlace(points, count, closed != 0, *point, isSquared != 0);
    }
    if (nearest != nullptr) *nearest = place.point;
    if (index != nullptr) *index = place.index;
    if (fraction != nullptr) *fraction = place.fraction;
    return place.distance;
}

extern "C" double poly2dCalcLength(const tagPOINT2D* points, DWORD count, int closed, int isSquared) {
    return velquad::polygon::length(points, count, closed != 0, isSquared != 0);
}

extern "C" int poly2dIsCCW(const tagPOINT2D* points, DWORD count) {
    if (points == nullptr) return kNoDirection;
    // Kept: neither closed nor cleared of double points. An outline without its closing point lacks a corner.
    const double turning = velquad::polygon::totalTurning(points, count);
    if (velquad::frame::isSmaller(kNoTurning, turning)) return kNoDirection;
    return turning > 0.0 ? kCounterClockwise : kClockwise;
}

extern "C" int poly2dMakeCCW(tagPOINT2D* points, DWORD count, int wanted) {
    // Kept: an outline without direction counts as counter-clockwise.
    const bool isCounterClockwise = poly2dIsCCW(points, count) != kClockwise;
    if (isCounterClockwise != (wanted != 0)) poly2dReverseOrder(points, count);
    return 1;
}

extern "C" int poly2dReverseOrder(tagPOINT2D* points, DWORD count) {
    if (points == nullptr) return 0;
    velquad::polygon::reverseOrder(points, count);
    return 1;
}

extern "C" int poly2dCompareDirections(const tagPOLY2D* a, const tagPOLY2D* b, int closed) {
    if (a == nullptr || b == nullptr) return 0;
    if (closed != 0) return poly2dIsCCW(a->points, a->count) == poly2dIsCCW(b->points, b->count) ? 1 : 0;
    if (a->count == 0 || b->count == 0) return 0;
    return velquad::polygon::doChainsRunAlike(a->points, a->count, b->points, b->count) ? 1 : 0;
}

extern "C" DWORD poly2dRemoveDoublePoints(tagPOINT2D* points, DWORD count) {
    if (points == nullptr) return count;
    return velquad::polygon::removeDoublePoints(points, count);
}

extern "C" int poly2dIsSimple(const tagPOINT2D* points, DWORD count, int closed, DWORD* first,
                              DWORD* second) {
    return velquad::polygon::isSimple(points, count, closed != 0, first, second);
}

extern "C" DWORD poly2dMakeSimple(tagPOINT2D* points, DWORD count, double maximalLoopSize) {
    return velquad::polygon::makeSimple(points, count, maximalLoopSize);
}

extern "C" DWORD poly2dMakeSimpleEx(tagPOINT2D* points, DWORD count, int closed, double maximalLoopSize) {
    return velquad::polygon::makeSimpleEx(points, count, closed != 0, maximalLoopSize);
}

extern "C" double poly2dGetMiniVecCount(const tagPOINT2D* points, DWORD count, DWORD from, DWORD to,
                                        int outside) {
    return velquad::polygon::miniVectorCount(points, count, from, to, outside != 0);
}
