// Thinning of an outline by step, and removal of points that repeat their predecessor. All in place and in
// one pass.
#include "frame/convert.h"
#include "frame/global_block.h"
#include "geometry/distance.h"
#include "polygon/double_points_impl.h"
#include "velquad/polygon.h"

extern "C" DWORD polyElapsePoints(tagPOINT* points, DWORD count, DWORD step) {
    if (points == nullptr || count == 0) return 0;
    if (step <= 1) return count;
    const DWORD lastIndex = count - 1;
    DWORD kept = 1;
    // The index is compared by its distance to the end, as the next multiple of the step can exceed 32 bits.
    for (DWORD i = 0; lastIndex - i >= step; ++kept) {
        i += step;
        points[kept] = points[i];
    }
    if (lastIndex % step != 0) points[kept++] = points[lastIndex];
    return kept;
}

extern "C" void* polyApplyPointDistance(void* handle, double distance) {
    const velquad::frame::Int32 step = velquad::frame::lroundToInt32(distance);
    if (handle == nullptr) return nullptr;
    if (step < 2) return handle;
    auto* record = static_cast<tagPOLY*>(GlobalLock(handle));
    if (record == nullptr) {
        GlobalFree(handle);
        return nullptr;
    }
    const DWORD count = polyElapsePoints(record->points, record->count, static_cast<DWORD>(step));
    record->count = count;
    GlobalUnlock(handle);
    return GlobalReAlloc(handle, polyGetByteCount(count), GMEM_MOVEABLE);
}

extern "C" DWORD polyRemoveDoublePoints(tagPOINT* points, DWORD count) {
    if (points == nullptr) return count;
    return velquad::polygon::removeDoublePoints(points, count);
}

extern "C" DWORD polyRemoveDoublePointsEx(tagPOINT* points, DWORD count, double tolerance) {
    if (points == nullptr) return count;
    const double toleranceSquared = tolerance * tolerance;
    return velquad::polygon::removeRepeats(
        points, count, [=](const tagPOINT& survivor, const tagPOINT& point) {
            return toleranceSquared > velquad::geometry::distanceSquared(survivor, point);
        });
}
