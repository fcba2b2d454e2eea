// What a callback of the tilted ellipses was given, and walks that end when asked to.
#ifndef VELQUAD_TESTS_SUPPORT_ELLIPSE_WALK_H
#define VELQUAD_TESTS_SUPPORT_ELLIPSE_WALK_H

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "tests/support/outline.h"
#include "velquad/geometry.h"
#include "velquad/polygon.h"

namespace velquad::test {

/// Records the points of one walk; checks that indices count up from 0 and that user values come through.
struct WalkRecorder {
    static constexpr std::int64_t kSecondValue = -1234567890123;

    Coordinates points;
    std::size_t stopAt = std::numeric_limits<std::size_t>::max();  // the point at which the walk is ended

    std::uint64_t firstValue() { return reinterpret_cast<std::uintptr_t>(this); }

    static int record(tagPOINT point, DWORD index, std::uint64_t arg1, std::int64_t arg2) {
        auto* self = reinterpret_cast<WalkRecorder*>(static_cast<std::uintptr_t>(arg1));
        EXPECT_EQ(arg2, kSecondValue);
        EXPECT_EQ(index, self->points.size());
        self->points.emplace_back(point.x, point.y);
        // Anything but 0 goes on.
        return self->points.size() > self->stopAt ? 0 : -3;
    }
};

/// Reads a polygon whose block may be larger than its points, and frees it.
inline Coordinates takePolygon(void* handle, SIZE_T* blockBytes = nullptr) {
    EXPECT_NE(handle, nullptr);
    if (handle == nullptr) return {};
    EXPECT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, 0U);
    if (blockBytes != nullptr) *blockBytes = GlobalSize(handle);
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    Coordinates points = coordinatesOf(record->points, record->count);
    GlobalUnlock(handle);
    EXPECT_EQ(polyFree(handle), 1);
    return points;
}

/// Whether each point touches the one before and differs from it.
inline bool isConnected(const Coordinates& points) {
    for (std::size_t i = 1; i < points.size(); ++i) {
        const int dx = points[i].first - points[i - 1].first;
        const int dy = points[i].second - points[i - 1].second;
        if (dx < -1 || dx > 1 || dy < -1 || dy > 1 || (dx == 0 && dy == 0)) return false;
    }
    return true;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ELLIPSE_WALK_H
