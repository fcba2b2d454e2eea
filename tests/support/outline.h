// Outlines in tests: point lists that can be compared and printed, and reading a polygon through its handle
// as a caller does who walks the record by hand.
#ifndef VELQUAD_TESTS_SUPPORT_OUTLINE_H
#define VELQUAD_TESTS_SUPPORT_OUTLINE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "velquad/types.h"

namespace velquad::test {

/// Coordinates as googletest can compare and print them.
using Coordinates = std::vector<std::pair<int, int>>;

inline Coordinates coordinatesOf(const tagPOINT* points, DWORD count) {
    Coordinates result;
    for (DWORD i = 0; i < count; ++i)
        result.emplace_back(points[i].x, points[i].y);
    return result;
}

inline std::vector<tagPOINT> outlineOf(const Coordinates& coordinates) {
    std::vector<tagPOINT> points;
    for (const auto& [x, y] : coordinates)
        points.push_back({x, y});
    return points;
}

/// Reads the polygon of an unlocked handle byte by byte, checks that it is unlocked before and after, and
/// that its block has the size of its points.
inline Coordinates readPolygon(void* handle) {
    EXPECT_NE(handle, nullptr);
    if (handle == nullptr) return {};
    EXPECT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, 0U);
    const auto* bytes = static_cast<const unsigned char*>(GlobalLock(handle));
    std::uint32_t count = 0;
    std::memcpy(&count, bytes, sizeof count);
    EXPECT_EQ(GlobalSize(handle), 8U * count + 4U);
    Coordinates result;
    for (std::uint32_t i = 0; i < count && 8U * i + 12U <= GlobalSize(handle); ++i) {
        std::int32_t point[2];
        std::memcpy(point, bytes + 4 + std::size_t{8} * i, sizeof point);
        result.emplace_back(point[0], point[1]);
    }
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, 0U);
    return result;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_OUTLINE_H
