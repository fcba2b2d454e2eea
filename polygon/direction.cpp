// Sense of rotation and order of the points of an outline.
#include "polygon/double_points_impl.h"
#include "polygon/measures_impl.h"
#include "polygon/record.h"
#include "polygon/reverse_order_impl.h"
#include "velquad/polygon.h"

extern "C" int polyIsCCW(const tagPOINT* points, DWORD count) {
    if (polyIsValid(points, count) == 0) return 0;
    const velquad::frame::LockedBlock copy = velquad::polygon::copyRecord(points, count, true);
    if (!copy) return 0;
    auto* record = copy.as<tagPOLY>();
    record->count = velquad::polygon::removeDoublePoints(record->points, record->count);
    return velquad::polygon::totalTurning(record->points, record->count) > 0.0 ? 1 : 0;
}

extern "C" int polyMakeCCW(tagPOINT* points, DWORD count, int wanted) {
    const bool isCounterClockwise = polyIsCCW(points, count) != 0;
    if (isCounterClockwise != (wanted != 0)) polyReverseOrder(points, count);
    return 1;
}

extern "C" int polyReverseOrder(tagPOINT* points, DWORD count) {
    if (points == nullptr) return 0;
    velquad::polygon::reverseOrder(points, count);
    return 1;
}

extern "C" int polyCompareDirections(const tagPOLY* a, const tagPOLY* b, int closed) {
    if (a == nullptr || b == nullptr) return 0;
    if (closed != 0) return polyIsCCW(a->points, a->count) == polyIsCCW(b->points, b->count) ? 1 : 0;
    if (a->count == 0 || b->count == 0) return 0;
    return velquad::polygon::doChainsRunAlike(a->points, a->count, b->points, b->count) ? 1 : 0;
}
