// Regions of arrays as row tables of their own.
#include "array/roi.h"

#include <cstdint>

#include "array/array_2d.h"
#include "array/element.h"
#include "frame/convert.h"
#include "velquad/array.h"

namespace velquad::array {

namespace {

/// Kept: `right` and `bottom` may lie one beyond the last column and row, although they belong to the region.
bool isAccepted(const RECT& region, int width, int height) {
    return region.right <= width && region.bottom <= height && region.left >= 0 && region.top >= 0 &&
           region.left <= region.right && region.top <= region.bottom;
}

}  // namespace

RegionTable mapRegion(const void* rows, int width, int height, unsigned int type, unsigned int channels,
                      const RECT* roi) {
    RECT region;
    if (roi != nullptr) {
        region = *roi;
    } else {
        SetRect(&region, 0, 0, frame::wrapSub(width, 1), frame::wrapSub(height, 1));
    }
    if (rows == nullptr || !isAccepted(region, width, height)) return nullptr;
    const auto top = static_cast<std::size_t>(region.top);
    const std::size_t count = static_cast<std::size_t>(region.bottom) - top + 1;
    RegionTable table(static_cast<void**>(std::malloc(count * kRowEntrySize)));
    if (table == nullptr) return nullptr;
    const bool isPixel = type == MAT_ARRAY_BYTE3 || type == MAT_ARRAY_BYTE4;
    const std::uint32_t offset =
        static_cast<std::uint32_t>(region.left) * elementSize(type) * (isPixel ? 1 : channels);
    for (std::size_t i = 0; i < count; ++i)
        table.get()[i] = rowAt(rows, top + i) + offset;
    return table;
}

}  // namespace velquad::array

extern "C" void** matMapArrayToROI2v(void* const* rows, int width, unsigned int height, unsigned int type,
                                     unsigned int channels, const RECT* roi) {
    return velquad::array::mapRegion(rows, width, static_cast<int>(height), type, channels, roi).release();
}

extern "C" int matFreeArrayMappedToRoi2v(void** table) {
    if (table == nullptr) return 0;
    std::free(table);
    return 1;
}
