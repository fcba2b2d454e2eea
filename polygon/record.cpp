// Polygon records: their life cycle, their copies and their kind.
#include "polygon/record.h"

#include <cstring>

#include "polygon/point_traits.h"
#include "velquad/polygon.h"

namespace velquad::polygon {

frame::LockedBlock copyRecord(const tagPOINT* points, DWORD count, bool close) {
    if (points == nullptr || count == 0) return {};
    const bool addsClosingPoint = close && !isClosed(points, count);
    const std::uint64_t copiedCount = std::uint64_t{count} + (addsClosingPoint ? 1 : 0);
    frame::LockedBlock block = allocRecord(copiedCount);
    if (!block) return block;
    tagPOLY* record = block.as<tagPOLY>();
    std::memcpy(record->points, points, std::size_t{count} * sizeof(tagPOINT));
    if (addsClosingPoint) record->points[count] = points[0];
    record->count = static_cast<DWORD>(copiedCount);
    return block;
}

}  // namespace velquad::polygon

namespace {

constexpr DWORD kInvalidCount = 0xFFFFFFFF;

enum PolygonType { kPoint = 0, kOpenChain = 1, kClosedPolygon = 2 };

}  // namespace

extern "C" void* polyAlloc(DWORD count) {
    return GlobalAlloc(velquad::frame::kZeroedMovable, velquad::polygon::recordBytes(count == 0 ? 1 : count));
}

extern "C" int polyFree(void* handle) {
    if (handle == nullptr) return 0;
    GlobalFree(handle);
    return 1;
}

extern "C" int polyIsValid(const tagPOINT* points, DWORD count) {
    return points != nullptr && count != 0 && count != kInvalidCount ? 1 : 0;
}

extern "C" DWORD polyGetByteCount(DWORD count) {
    return 8 * count + 4;
}

extern "C" void* polyConvertFromPoint(const tagPOINT* point) {
    if (point == nullptr) return nullptr;
    return velquad::polygon::copyRecord(point, 1, false).releaseHandle();
}

extern "C" void* polyCopy(const tagPOINT* points, DWORD count, int close) {
    return velquad::polygon::copyRecord(points, count, close != 0).releaseHandle();
}

extern "C" int polyGetType(const tagPOINT* points, DWORD count) {
    if (points == nullptr || count <= 1) return kPoint;
    return velquad::polygon::isClosed(points, count) ? kClosedPolygon : kOpenChain;
}
