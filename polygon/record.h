// Polygon records for the other functions of the room and for the rooms that hand polygons out.
#ifndef VELQUAD_POLYGON_RECORD_H
#define VELQUAD_POLYGON_RECORD_H

#include <cstddef>
#include <cstdint>

#include "frame/global_block.h"
#include "velquad/types.h"

namespace velquad::polygon {

static_assert(offsetof(tagPOLY, count) == 0);
static_assert(offsetof(tagPOLY, points) == 4, "callers walk the record by hand");
static_assert(sizeof(tagPOINT) == 8 && sizeof(tagPOLY) == 12);

/// Bytes of a record of `count` points. Unlike `polyGetByteCount` it does not wrap.
constexpr SIZE_T recordBytes(std::uint64_t count) {
    return static_cast<SIZE_T>(8 * count + 4);
}

/// Allocates a zero-filled record with room for `count` points; its `count` field is 0.
/// @return an empty block when there is no memory.
inline frame::LockedBlock allocRecord(std::uint64_t count) {
    return frame::LockedBlock(frame::kZeroedMovable, recordBytes(count));
}

/// See `polyCopy`; the copy is still locked.
frame::LockedBlock copyRecord(const tagPOINT* points, DWORD count, bool close);

}  // namespace velquad::polygon

#endif  // VELQUAD_POLYGON_RECORD_H
