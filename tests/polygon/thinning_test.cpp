#include <gtest/gtest.h>

#include <limits>

#include "tests/support/allocation_failure.h"
#include "tests/support/block_failure.h"
#include "tests/support/outline.h"
#include "tests/support/outline_reference.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;
using velquad::test::liveAllocations;
using velquad::test::outlineOf;
using velquad::test::readPolygon;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The points (0, 0), (1, -1), (2, -2), ... whose x tells their index.
std::vector<tagPOINT> numberedPoints(DWORD count) {
    std::vector<tagPOINT> points;
    for (DWORD i = 0; i < count; ++i)
        points.push_back({static_cast<LONG>(i), -static_cast<LONG>(i)});
    return points;
}

Coordinates numbered(const std::vector<int>& indices) {
    Coordinates coordinates;
    for (const int i : indices)
        coordinates.emplace_back(i, -i);
    return coordinates;
}

Coordinates elapse(DWORD count, DWORD step) {
    auto points = numberedPoints(count);
    const DWORD kept = polyElapsePoints(points.data(), count, step);
    EXPECT_LE(kept, count);
    return coordinatesOf(points.data(), kept);
}

void* numberedPolygon(DWORD count) {
    const auto points = numberedPoints(count);
    return polyCopy(points.data(), count, 0);
}

TEST(PolyElapsePoints, KeepsMultiplesOfTheStepAndTheLastPoint) {
    EXPECT_EQ(elapse(7, 3), numbered({0, 3, 6}));
    EXPECT_EQ(elapse(8, 3), numbered({0, 3, 6, 7}));
    EXPECT_EQ(elapse(9, 3), numbered({0, 3, 6, 8}));
    EXPECT_EQ(elapse(5, 2), numbered({0, 2, 4}));
    EXPECT_EQ(elapse(6, 2), numbered({0, 2, 4, 5}));
}

TEST(PolyElapsePoints, KeepsAllPointsForStepsZeroAndOne) {
    EXPECT_EQ(elapse(4, 0), numbered({0, 1, 2, 3}));
    EXPECT_EQ(elapse(4, 1), numbered({0, 1, 2, 3}));
}

TEST(PolyElapsePoints, KeepsTheEndsForAStepBeyondTheCount) {
    for (const DWORD step : {DWORD{4}, DWORD{5}, DWORD{6}, DWORD{0x80000000}, DWORD{0xFFFFFFFF}}) {
        EXPECT_EQ(elapse(5, step), numbered({0, 4})) << step;
    }
}

TEST(PolyElapsePoints, KeepsShortOutlines) {
    EXPECT_EQ(elapse(1, 0), numbered({0}));
    EXPECT_EQ(elapse(1, 5), numbered({0}));
    EXPECT_EQ(elapse(2, 1), numbered({0, 1}));
    EXPECT_EQ(elapse(2, 2), numbered({0, 1}));
    EXPECT_EQ(elapse(2, 0xFFFFFFFF), numbered({0, 1}));
}

TEST(PolyElapsePoints, ReturnsZeroForNothing) {
    tagPOINT point{1, 2};
    EXPECT_EQ(polyElapsePoints(&point, 0, 3), 0U);
    EXPECT_EQ(polyElapsePoints(nullptr, 0, 3), 0U);
    EXPECT_EQ(polyElapsePoints(nullptr, 5, 3), 0U);
}

TEST(PolyElapsePoints, AgreesWithPickingPointByPoint) {
    for (DWORD count = 1; count <= 40; ++count) {
        for (DWORD step = 0; step <= 42; ++step) {
            const auto expected = velquad::test::everyNthPoint(numberedPoints(count), step);
            EXPECT_EQ(elapse(count, step),
                      coordinatesOf(expected.data(), static_cast<DWORD>(expected.size())))
                << count << " points, step " << step;
        }
    }
}

TEST(PolyApplyPointDistance, ThinsByTheRoundedDistanceAndCutsTheBlock) {
    struct Case {
        double distance;
        std::vector<int> kept;
    };
    for (const auto& [distance, kept] :
         {Case{3.0, {0, 3, 6, 7}}, Case{2.5, {0, 3, 6, 7}}, Case{3.4999, {0, 3, 6, 7}},
          Case{1.5, {0, 2, 4, 6, 7}}, Case{2.4999, {0, 2, 4, 6, 7}}, Case{1000.0, {0, 7}}}) {
        void* thinned = polyApplyPointDistance(numberedPolygon(8), distance);
        // Reading also checks that the block is unlocked and has the size of its points.
        EXPECT_EQ(readPolygon(thinned), numbered(kept)) << distance;
        EXPECT_EQ(polyFree(thinned), 1);
    }
}

TEST(PolyApplyPointDistance, ReturnsTheSameHandleForAStepBelowTwo) {
    for (const double distance : {0.0, 1.0, 1.4999, 0.5, -1.0, -100.0, kNaN, kInfinity, -kInfinity, 1e300}) {
        void* handle = numberedPolygon(8);
        EXPECT_EQ(polyApplyPointDistance(handle, distance), handle) << distance;
        EXPECT_EQ(readPolygon(handle), numbered({0, 1, 2, 3, 4, 5, 6, 7})) << distance;
        EXPECT_EQ(polyFree(handle), 1);
    }
}

TEST(PolyApplyPointDistance, TakesTheLowBitsOfAStepBeyondThirtyTwoBits) {
    void* thinned = polyApplyPointDistance(numberedPolygon(5), 4294967298.0);
    EXPECT_EQ(readPolygon(thinned), numbered({0, 2, 4}));
    polyFree(thinned);
    void* handle = numberedPolygon(5);
    EXPECT_EQ(polyApplyPointDistance(handle, 2147483648.0), handle);
    EXPECT_EQ(readPolygon(handle), numbered({0, 1, 2, 3, 4}));
    polyFree(handle);
}

TEST(PolyApplyPointDistance, CutsAnEmptyRecordToItsHeader) {
    void* handle = polyApplyPointDistance(polyAlloc(10), 5.0);
    EXPECT_EQ(readPolygon(handle), Coordinates{});
    EXPECT_EQ(polyFree(handle), 1);
}

TEST(PolyApplyPointDistance, ReturnsNullForNull) {
    EXPECT_EQ(polyApplyPointDistance(nullptr, 5.0), nullptr);
    EXPECT_EQ(polyApplyPointDistance(nullptr, 0.0), nullptr);
}

#if !defined(_WIN32)
TEST(PolyApplyPointDistance, FreesAPolygonThatCannotBeLocked) {
    const std::ptrdiff_t before = liveAllocations();
    void* handle = numberedPolygon(8);
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kLock);
    EXPECT_EQ(polyApplyPointDistance(handle, 3.0), nullptr);
    EXPECT_EQ(liveAllocations(), before);
    EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE);
}

TEST(PolyApplyPointDistance, LeavesTheThinnedPolygonWhenTheBlockCannotBeCut) {
    void* handle = numberedPolygon(8);
    velquad::test::failNextBlockCall(velquad::test::BlockCall::kReAlloc);
    EXPECT_EQ(polyApplyPointDistance(handle, 3.0), nullptr);
    EXPECT_EQ(velquad::test::lastBlockSize(), 36U);
    EXPECT_EQ(velquad::test::lastBlockFlags(), 2U);
    EXPECT_EQ(GlobalFlags(handle) & GMEM_LOCKCOUNT, 0U);
    EXPECT_EQ(GlobalSize(handle), 68U);
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->count, 4U);
    EXPECT_EQ(coordinatesOf(record->points, 4), numbered({0, 3, 6, 7}));
    GlobalUnlock(handle);
    EXPECT_EQ(polyFree(handle), 1);
}
#endif

}  // namespace
