#include <gtest/gtest.h>

#include <cstddef>
#include <utility>

#include "polygon/record.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/block_failure.h"
#include "tests/support/outline.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::forEachFailingAllocation;
using velquad::test::liveAllocations;
using velquad::test::outlineOf;
using velquad::test::readPolygon;

const Coordinates kOpenSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const Coordinates kClosedSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};

/// Copies a polygon and reads the copy through its handle.
Coordinates copyOf(const Coordinates& coordinates, int close) {
    const auto points = outlineOf(coordinates);
    void* handle = polyCopy(points.data(), static_cast<DWORD>(points.size()), close);
    Coordinates copy = readPolygon(handle);
    EXPECT_EQ(polyFree(handle), 1);
    return copy;
}

int typeOf(const Coordinates& coordinates) {
    const auto points = outlineOf(coordinates);
    return polyGetType(points.data(), static_cast<DWORD>(points.size()));
}

TEST(PolygonRecord, PointsFollowTheCountWithoutGap) {
    tagPOLY record{};
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    EXPECT_EQ(reinterpret_cast<const unsigned char*>(&record.points[0].x) - bytes, 4);
    EXPECT_EQ(reinterpret_cast<const unsigned char*>(&record.points[0].y) - bytes, 8);
    EXPECT_EQ(sizeof(tagPOLY), 12U);
}

TEST(PolyAlloc, GivesAnUnlockedZeroedBlockForTheCount) {
    void* handle = polyAlloc(5);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(GlobalSize(handle), 44U);
    EXPECT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, 0U);
    const auto* bytes = static_cast<const unsigned char*>(GlobalLock(handle));
    ASSERT_NE(bytes, nullptr);
    for (int i = 0; i < 44; ++i)
        EXPECT_EQ(bytes[i], 0) << "byte " << i;
    GlobalUnlock(handle);
    EXPECT_EQ(polyFree(handle), 1);
}

TEST(PolyAlloc, LeavesTheCountOfTheRecordAtZero) {
    void* handle = polyAlloc(3);
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->count, 0U);
    GlobalUnlock(handle);
    polyFree(handle);
}

TEST(PolyAlloc, MakesRoomForOnePointWhenAskedForNone) {
    for (const DWORD count : {DWORD{0}, DWORD{1}}) {
        void* handle = polyAlloc(count);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(GlobalSize(handle), 12U);
        const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->count, 0U);
        GlobalUnlock(handle);
        polyFree(handle);
    }
}

TEST(PolyAlloc, ReportsAFailingAllocation) {
    forEachFailingAllocation([] {
        void* handle = polyAlloc(100);
        const bool hasFailed = handle == nullptr;
        polyFree(handle);
        return hasFailed;
    });
}

#if !defined(_WIN32)
TEST(PolyAlloc, ComputesTheSizeWithoutWrapping) {
    for (const auto& [count, size] : {std::pair<DWORD, SIZE_T>{0x20000000U, 4294967300U},
                                      std::pair<DWORD, SIZE_T>{0xFFFFFFFFU, 34359738364U}}) {
        velquad::test::failNextBlockCall(velquad::test::BlockCall::kAlloc);
        EXPECT_EQ(polyAlloc(count), nullptr);
        EXPECT_EQ(velquad::test::lastBlockSize(), size);
        EXPECT_EQ(velquad::test::lastBlockFlags(), 0x42U);
    }
}
#endif

TEST(PolyFree, ReturnsZeroForANullHandle) {
    EXPECT_EQ(polyFree(nullptr), 0);
}

TEST(PolyFree, ReleasesUnlockedAndLockedPolygons) {
    const std::ptrdiff_t before = liveAllocations();
    EXPECT_EQ(polyFree(polyAlloc(4)), 1);
    void* locked = polyAlloc(4);
    GlobalLock(locked);
    EXPECT_EQ(polyFree(locked), 1);
    EXPECT_EQ(liveAllocations(), before);
}

TEST(PolyIsValid, NeedsAPointerAndACountBetweenTheExtremes) {
    const tagPOINT point{1, 2};
    EXPECT_EQ(polyIsValid(&point, 1), 1);
    EXPECT_EQ(polyIsValid(&point, 0x7FFFFFFF), 1);
    EXPECT_EQ(polyIsValid(&point, 0x80000000), 1);
    EXPECT_EQ(polyIsValid(&point, 0xFFFFFFFE), 1);
    EXPECT_EQ(polyIsValid(&point, 0xFFFFFFFF), 0);
    EXPECT_EQ(polyIsValid(&point, 0), 0);
    EXPECT_EQ(polyIsValid(nullptr, 1), 0);
    EXPECT_EQ(polyIsValid(nullptr, 0), 0);
}

TEST(PolyGetByteCount, WrapsAtThirtyTwoBits) {
    EXPECT_EQ(polyGetByteCount(0), 4U);
    EXPECT_EQ(polyGetByteCount(1), 12U);
    EXPECT_EQ(polyGetByteCount(7), 60U);
    EXPECT_EQ(polyGetByteCount(0x1FFFFFFF), 4294967292U);
    EXPECT_EQ(polyGetByteCount(0x20000000), 4U);
    EXPECT_EQ(polyGetByteCount(0xFFFFFFFF), 4294967292U);
}

TEST(PolygonRecordBytes, DoNotWrap) {
    EXPECT_EQ(velquad::polygon::recordBytes(0), 4U);
    EXPECT_EQ(velquad::polygon::recordBytes(1), 12U);
    EXPECT_EQ(velquad::polygon::recordBytes(0x20000000), 4294967300U);
    EXPECT_EQ(velquad::polygon::recordBytes(0x100000000U), 34359738372U);
}

TEST(PolyConvertFromPoint, GivesARecordOfOnePoint) {
    const tagPOINT point{-7, 2147483647};
    void* handle = polyConvertFromPoint(&point);
    EXPECT_EQ(readPolygon(handle), (Coordinates{{-7, 2147483647}}));
    EXPECT_EQ(polyFree(handle), 1);
}

TEST(PolyConvertFromPoint, ReturnsNullForNull) {
    EXPECT_EQ(polyConvertFromPoint(nullptr), nullptr);
}

TEST(PolyConvertFromPoint, ReportsAFailingAllocation) {
    forEachFailingAllocation([] {
        const tagPOINT point{1, 2};
        void* handle = polyConvertFromPoint(&point);
        const bool hasFailed = handle == nullptr;
        polyFree(handle);
        return hasFailed;
    });
}

TEST(PolyCopy, CopiesAsItIsWithoutTheCloseFlag) {
    EXPECT_EQ(copyOf(kOpenSquare, 0), kOpenSquare);
    EXPECT_EQ(copyOf(kClosedSquare, 0), kClosedSquare);
    EXPECT_EQ(copyOf({{3, 4}}, 0), (Coordinates{{3, 4}}));
    EXPECT_EQ(copyOf({{3, 4}, {5, 6}}, 0), (Coordinates{{3, 4}, {5, 6}}));
}

TEST(PolyCopy, AddsTheClosingPointForEveryNonZeroFlag) {
    for (const int close : {1, 2, -1})
        EXPECT_EQ(copyOf(kOpenSquare, close), kClosedSquare) << close;
    EXPECT_EQ(copyOf({{3, 4}, {5, 6}}, 1), (Coordinates{{3, 4}, {5, 6}, {3, 4}}));
}

TEST(PolyCopy, ComparesBothCoordinatesForClosing) {
    EXPECT_EQ(copyOf({{3, 4}, {5, 6}, {3, 5}}, 1), (Coordinates{{3, 4}, {5, 6}, {3, 5}, {3, 4}}));
    EXPECT_EQ(copyOf({{3, 4}, {5, 6}, {2, 4}}, 1), (Coordinates{{3, 4}, {5, 6}, {2, 4}, {3, 4}}));
}

TEST(PolyCopy, KeepsTheCountOfAClosedPolygon) {
    EXPECT_EQ(copyOf(kClosedSquare, 1), kClosedSquare);
    EXPECT_EQ(copyOf({{3, 4}, {3, 4}}, 1), (Coordinates{{3, 4}, {3, 4}}));
}

TEST(PolyCopy, NeverDoublesASinglePoint) {
    EXPECT_EQ(copyOf({{3, 4}}, 1), (Coordinates{{3, 4}}));
}

TEST(PolyCopy, ReturnsNullForNothing) {
    const tagPOINT point{1, 2};
    EXPECT_EQ(polyCopy(nullptr, 1, 0), nullptr);
    EXPECT_EQ(polyCopy(nullptr, 0, 1), nullptr);
    EXPECT_EQ(polyCopy(&point, 0, 0), nullptr);
    EXPECT_EQ(polyCopy(&point, 0, 1), nullptr);
}

TEST(PolyCopy, TakesThePointsOfALockedRecord) {
    const auto points = outlineOf(kOpenSquare);
    void* first = polyCopy(points.data(), 4, 0);
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(first));
    ASSERT_NE(record, nullptr);
    void* second = polyCopy(record->points, record->count, 1);
    EXPECT_EQ(GlobalFlags(first) & GMEM_LOCKCOUNT, 1U);
    GlobalUnlock(first);
    EXPECT_NE(first, second);
    EXPECT_EQ(readPolygon(first), kOpenSquare);
    EXPECT_EQ(readPolygon(second), kClosedSquare);
    polyFree(first);
    polyFree(second);
}

TEST(PolyCopy, ReportsAFailingAllocation) {
    for (const int close : {0, 1}) {
        forEachFailingAllocation([close] {
            const tagPOINT points[] = {{1, 2}, {3, 4}, {5, 6}};
            void* handle = polyCopy(points, 3, close);
            const bool hasFailed = handle == nullptr;
            polyFree(handle);
            return hasFailed;
        });
    }
}

#if !defined(_WIN32)
TEST(PolyCopy, LeavesNoBlockBehindWhenItCannotBeLocked) {
    const tagPOINT points[] = {{1, 2}, {3, 4}};
    polyFree(polyCopy(points, 2, 1));
    const std::ptrdiff_t before = liveAllocations();
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kLock);
    EXPECT_EQ(polyCopy(points, 2, 1), nullptr);
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kLock);
    EXPECT_EQ(polyConvertFromPoint(points), nullptr);
    EXPECT_EQ(liveAllocations(), before);
}

TEST(PolyCopy, AllocatesAZeroedMovableBlockOfTheFinalSize) {
    const tagPOINT points[] = {{1, 2}, {3, 4}};
    polyFree(polyCopy(points, 2, 1));
    EXPECT_EQ(velquad::test::lastBlockSize(), 28U);
    EXPECT_EQ(velquad::test::lastBlockFlags(), 0x42U);
}
#endif

TEST(PolyGetType, TellsPointChainAndPolygonApart) {
    EXPECT_EQ(typeOf({{3, 4}}), 0);
    EXPECT_EQ(typeOf({{3, 4}, {5, 6}}), 1);
    EXPECT_EQ(typeOf(kOpenSquare), 1);
    EXPECT_EQ(typeOf(kClosedSquare), 2);
    EXPECT_EQ(typeOf({{3, 4}, {5, 6}, {3, 4}}), 2);
}

TEST(PolyGetType, ComparesBothCoordinates) {
    EXPECT_EQ(typeOf({{3, 4}, {5, 6}, {3, 5}}), 1);
    EXPECT_EQ(typeOf({{3, 4}, {5, 6}, {2, 4}}), 1);
}

TEST(PolyGetType, TakesTwoEqualPointsForAClosedPolygon) {
    EXPECT_EQ(typeOf({{3, 4}, {3, 4}}), 2);
}

TEST(PolyGetType, AnswersNothingWithZero) {
    const tagPOINT point{1, 2};
    EXPECT_EQ(polyGetType(&point, 0), 0);
    EXPECT_EQ(polyGetType(nullptr, 3), 0);
}

TEST(PolygonRecord, IsFilledThroughItsHandle) {
    const std::ptrdiff_t before = liveAllocations();
    void* handle = polyAlloc(3);
    auto* record = static_cast<tagPOLY*>(GlobalLock(handle));
    ASSERT_NE(record, nullptr);
    for (LONG i = 0; i < 3; ++i)
        record->points[i] = {i, -i};
    record->count = 3;
    GlobalUnlock(handle);
    EXPECT_EQ(readPolygon(handle), (Coordinates{{0, 0}, {1, -1}, {2, -2}}));
    EXPECT_EQ(polyFree(handle), 1);
    EXPECT_EQ(liveAllocations(), before);
}

}  // namespace
