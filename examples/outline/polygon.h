/// @file
/// How a C++ host keeps the library's polygons: an owner of the handle, and a view of the locked points.
///
/// The library hands polygons out as handles of movable memory blocks. A handle is not an address. To read or
/// write the points, the host locks the block, finds a `tagPOLY` record there, and unlocks it afterwards. Most
/// functions take the address of the first point and the number of points. Those that shorten a polygon return
/// the new number, and the host stores it in the record.
#ifndef OUTLINE_POLYGON_H
#define OUTLINE_POLYGON_H

#include <velquad/polygon.h>
#include <velquad/types.h>

#include <cstring>
#include <utility>
#include <vector>

#include "image.h"

namespace examples::outline {

/// Owns one polygon, or none.
class Polygon {
  public:
    Polygon() = default;
    /// Takes over a handle that a library function returned.
    explicit Polygon(HGLOBAL handle) : handle_(handle) {}
    ~Polygon() { polyFree(handle_); }  // A null handle is ignored.

    Polygon(Polygon&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Polygon& operator=(Polygon&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    Polygon(const Polygon&) = delete;
    Polygon& operator=(const Polygon&) = delete;

    explicit operator bool() const { return handle_ != nullptr; }
    HGLOBAL handle() const { return handle_; }

  private:
    HGLOBAL handle_ = nullptr;
};

/// The points of a polygon while it is locked. Keep it short-lived: functions that take a handle lock the block
/// themselves and want it unlocked.
class LockedPolygon {
  public:
    explicit LockedPolygon(const Polygon& polygon)
        : handle_(polygon.handle()), record_(static_cast<tagPOLY*>(GlobalLock(handle_))) {
        if (record_ == nullptr) throw Failure("a polygon cannot be locked");
    }
    ~LockedPolygon() { GlobalUnlock(handle_); }
    LockedPolygon(const LockedPolygon&) = delete;
    LockedPolygon& operator=(const LockedPolygon&) = delete;

    tagPOINT* points() const { return record_->points; }
    DWORD count() const { return record_->count; }
    void setCount(DWORD count) const { record_->count = count; }

    const tagPOINT* begin() const { return points(); }
    const tagPOINT* end() const { return points() + count(); }

  private:
    HGLOBAL handle_;
    tagPOLY* record_;
};

/// Makes a polygon of given points.
inline Polygon makePolygon(const std::vector<tagPOINT>& points) {
    const DWORD count = static_cast<DWORD>(points.size());
    Polygon polygon(polyAlloc(count));
    if (!polygon) throw Failure("no memory for a polygon");
    const LockedPolygon locked(polygon);
    if (!points.empty()) std::memcpy(locked.points(), points.data(), points.size() * sizeof(tagPOINT));
    locked.setCount(count);  // polyAlloc makes room; how much of it is used is the host's to say.
    return polygon;
}

/// Makes a copy that can be changed.
inline Polygon copyOf(const Polygon& polygon) {
    constexpr int kAsItIs = 0;
    const LockedPolygon locked(polygon);
    Polygon copy(polyCopy(locked.points(), locked.count(), kAsItIs));
    if (!copy) throw Failure("no memory for a polygon");
    return copy;
}

}  // namespace examples::outline

#endif  // OUTLINE_POLYGON_H
