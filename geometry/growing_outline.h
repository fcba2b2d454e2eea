// The polygon that an ellipse walker fills: a movable block that grows by the same number of bytes whenever it is
// full.
#ifndef VELQUAD_GEOMETRY_GROWING_OUTLINE_H
#define VELQUAD_GEOMETRY_GROWING_OUTLINE_H

#include <cstddef>
#include <cstdint>
#include <utility>

#include "frame/global_block.h"
#include "velquad/types.h"

namespace velquad::geometry {

class GrowingOutline {
  public:
    GrowingOutline(SIZE_T firstBytes, SIZE_T growthBytes) : bytes_(firstBytes), growthBytes_(growthBytes) {}
    GrowingOutline(const GrowingOutline&) = delete;
    GrowingOutline& operator=(const GrowingOutline&) = delete;
    ~GrowingOutline() { frame::matGlobalFreeLocked(record_); }

    /// Appends a point. @return false when there is no room for it; what was stored stays.
    bool append(const tagPOINT& point) {
        constexpr DWORD kLargestCount = 0xFFFFFFFF;
        if (count_ == kLargestCount) return false;
        if (record_ == nullptr) {
            record_ = static_cast<tagPOLY*>(frame::matGlobalAllocLocked(frame::kZeroedMovable, bytes_));
            if (record_ == nullptr) return false;
        }
        const SIZE_T needed = offsetof(tagPOLY, points) + (SIZE_T{count_} + 1) * sizeof(tagPOINT);
        if (needed > bytes_ && !grow()) return false;
        record_->points[count_] = point;
        ++count_;
        return true;
    }

    /// Gives the polygon up, unlocked, in a block as large as it has grown. @return null when nothing was stored.
    HGLOBAL release() {
        if (record_ == nullptr) return nullptr;
        record_->count = count_;
        return frame::unlockToHandle(std::exchange(record_, nullptr));
    }

    /// A walker's callback; `arg1` is the address of the outline.
    static int appendFromWalk(tagPOINT point, DWORD, std::uint64_t arg1, std::int64_t) {
        auto* outline = reinterpret_cast<GrowingOutline*>(static_cast<std::uintptr_t>(arg1));
        return outline->append(point) ? 1 : 0;
    }

    /// What `appendFromWalk` expects as `arg1`.
    std::uint64_t callbackArgument() { return reinterpret_cast<std::uintptr_t>(this); }

  private:
    bool grow() {
        void* moved = frame::matGlobalReAllocLocked(record_, bytes_ + growthBytes_, GMEM_ZEROINIT);
        if (moved == nullptr) return false;
        record_ = static_cast<tagPOLY*>(moved);
        bytes_ += growthBytes_;
        return true;
    }

    tagPOLY* record_ = nullptr;
    DWORD count_ = 0;
    SIZE_T bytes_;
    SIZE_T growthBytes_;
};

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_GROWING_OUTLINE_H
