// The curve functions for polygon handles: pixels in, pixels out.
#include <utility>

#include "curves/scratch_pool.h"
#include "frame/convert.h"
#include "frame/global_block.h"
#include "frame/primitives.h"
#include "velquad/curves.h"

namespace velquad::curves {
namespace {

/// Points by which a growing polygon is ahead of its need.
constexpr SIZE_T kGrowth = 4096;

constexpr SIZE_T byteCount(SIZE_T points) {
    return points * sizeof(tagPOINT) + sizeof(DWORD);
}

/// The polygon that a curve is written to: a locked record that grows.
class GrowingPolygon {
  public:
    GrowingPolygon() = default;
    GrowingPolygon(const GrowingPolygon&) = delete;
    GrowingPolygon& operator=(const GrowingPolygon&) = delete;
    ~GrowingPolygon() { frame::matGlobalFreeLocked(record_); }

    /// Makes room for a batch of points. @return false when there is none; what was stored stays.
    bool reserve(SIZE_T batch) {
        if (record_ == nullptr) {
            const SIZE_T capacity = batch + kGrowth;
            record_ = static_cast<tagPOLY*>(
                frame::matGlobalAllocLocked(frame::kZeroedMovable, byteCount(capacity)));
            if (record_ == nullptr) return false;
            record_->count = 0;
            capacity_ = capacity;
            return true;
        }
        const SIZE_T needed = record_->count + batch;
        if (needed <= capacity_) return true;
        const SIZE_T capacity = needed + kGrowth;
        void* moved = frame::matGlobalReAllocLocked(record_, byteCount(capacity), GMEM_ZEROINIT);
        if (moved == nullptr) return false;
        record_ = static_cast<tagPOLY*>(moved);
        capacity_ = capacity;
        return true;
    }

    /// Appends a point unless it repeats the last one. There must be room.
    void append(const tagPOINT& point) {
        tagPOINT* points = record_->points;
        const DWORD count = record_->count;
        if (count > 0 && frame::samePoint(points[count - 1], point)) return;
        points[count] = point;
        record_->count = count + 1;
    }

    DWORD count() const { return record_->count; }

    /// Gives the polygon up, unlocked and cut to its points. @return its handle; null when nothing was stored.
    HGLOBAL release() {
        tagPOLY* record = std::exchange(record_, nullptr);
        return record == nullptr ? nullptr : frame::shrinkToHandle(record, byteCount(record->count));
    }

  private:
    tagPOLY* record_ = nullptr;
    SIZE_T capacity_ = 0;
};

extern "C" {

/// user1 is the source record.
static unsigned int readPolygon(double** rows, unsigned int maximalCount, unsigned int, void* user1, void*) {
    const tagPOINT* points = static_cast<const tagPOLY*>(user1)->points;
    for (unsigned int i = 0; i < maximalCount; ++i) {
        rows[i][0] = points[i].x;
        rows[i][1] = points[i].y;
    }
    return maximalCount;
}

/// user2 is the growing target. The result is its count, so an empty batch into an empty polygon ends the curve.
static unsigned int writePolygon(double** rows, unsigned int count, unsigned int, void*, void* user2) {
    auto& target = *static_cast<GrowingPolygon*>(user2);
    if (!target.reserve(count)) return 0;
    for (unsigned int i = 0; i < count; ++i) {
        target.append({frame::truncToInt32(rows[i][0]), frame::truncToInt32(rows[i][1])});
    }
    return target.count();
}

}  // extern "C"

/// Runs `drawCurve(sourceRecord, target)` on a locked polygon. @return the new polygon, or null.
template <class DrawCurve>
HGLOBAL drawPolygon(HGLOBAL polygon, unsigned int* error, DrawCurve drawCurve) {
    GrowingPolygon target;
    unsigned int result = kCurveNoMemory;
    {
        const frame::BlockLock source(polygon);
        if (source) result = drawCurve(source.as<tagPOLY>(), &target);
    }
    if (error != nullptr) *error = result;
    return result == kCurveOk ? target.release() : nullptr;
}

}  // namespace
}  // namespace velquad::curves

extern "C" void* polyCalcInterpolatingCurve(void* polygon, double step, double cornerFactor,
                                            unsigned int* error) {
    using namespace velquad::curves;
    const auto drawCurve = [=](tagPOLY* source, GrowingPolygon* target) {
        const unsigned int result = matInterpolatingCurve(source->count, readPolygon, writePolygon, source,
                                                          target, 2, step, cornerFactor);
        // Kept: a second unlock beside the lock's own. A lock that the caller holds on the polygon is gone
        // when this function returns.
        GlobalUnlock(polygon);
        return result;
    };
    return drawPolygon(polygon, error, drawCurve);
}

extern "C" void* polyCalcFittingCurve(void* polygon, double step, int order, unsigned int* error) {
    using namespace velquad::curves;
    const auto drawCurve = [=](tagPOLY* source, GrowingPolygon* target) {
        return matFittingCurve(source->count, readPolygon, writePolygon, source, target, 2, step, order);
    };
    return drawPolygon(polygon, error, drawCurve);
}
