// Reading the pieces of an outline through their handles. A piece may stand in a block with room to spare.
#ifndef VELQUAD_TESTS_SUPPORT_PIECE_H
#define VELQUAD_TESTS_SUPPORT_PIECE_H

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "tests/support/outline.h"
#include "velquad/polygon.h"

namespace velquad::test {

/// Reads the polygon of an unlocked handle, checks that it is unlocked before and after and that its points fit its
/// block, and frees it.
inline Coordinates takePiece(void* handle) {
    EXPECT_NE(handle, nullptr);
    if (handle == nullptr) return {};
    EXPECT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, 0U);
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    EXPECT_GE(GlobalSize(handle), std::size_t{8} * record->count + 4U);
    Coordinates result = coordinatesOf(record->points, record->count);
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, 0U);
    EXPECT_EQ(polyFree(handle), 1);
    return result;
}

inline Coordinates coordinatesOf(const std::vector<tagPOINT>& points) {
    return coordinatesOf(points.data(), static_cast<DWORD>(points.size()));
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_PIECE_H
