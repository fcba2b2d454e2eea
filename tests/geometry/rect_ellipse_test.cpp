#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/ellipse_reference.h"
#include "velquad/geometry.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;

constexpr tagPOINT kUntouched{-77, -78};

/// A buffer with a guard behind it.
class GuardedBuffer {
  public:
    explicit GuardedBuffer(unsigned int capacity) : capacity_(capacity), points_(capacity + 4, kUntouched) {}
    ~GuardedBuffer() {
        for (std::size_t i = capacity_; i < points_.size(); ++i) {
            EXPECT_EQ(points_[i].x, kUntouched.x) << "written behind the end";
        }
    }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    tagPOINT* data() { return points_.data(); }
    unsigned int capacity() const { return capacity_; }

  private:
    unsigned int capacity_;
    std::vector<tagPOINT> points_;
};

Coordinates quadrant(int a, int b) {
    GuardedBuffer buffer(300);
    const DWORD count = matCalcEllipseQuadrant(a, b, buffer.data(), buffer.capacity());
    return coordinatesOf(buffer.data(), count);
}

Coordinates ellipse(int left, int top, int right, int bottom) {
    const int rect[4] = {left, top, right, bottom};
    GuardedBuffer buffer(matEstimatePointsInEllipse(rect));
    const DWORD count = matCalcEllipse(rect, buffer.data(), buffer.capacity());
    return coordinatesOf(buffer.data(), count);
}

TEST(EllipseQuadrant, ListsTheTenBySixQuarter) {
    EXPECT_EQ(quadrant(10, 6), (Coordinates{{10, 0},
                                            {10, 1},
                                            {9, 2},
                                            {9, 3},
                                            {8, 4},
                                            {7, 4},
                                            {6, 5},
                                            {5, 5},
                                            {4, 5},
                                            {3, 6},
                                            {2, 6},
                                            {1, 6},
                                            {0, 6}}));
}

TEST(EllipseQuadrant, ListsTheSmallestEllipses) {
    EXPECT_EQ(quadrant(0, 0), (Coordinates{{0, 0}}));
    EXPECT_EQ(quadrant(0, 1), (Coordinates{{0, 0}}));
    EXPECT_EQ(quadrant(0, 5), (Coordinates{{0, 0}}));
    EXPECT_EQ(quadrant(1, 0), (Coordinates{{1, 0}, {0, 0}}));
    EXPECT_EQ(quadrant(5, 0), (Coordinates{{5, 0}, {4, 0}, {3, 0}, {2, 0}, {1, 0}, {0, 0}}));
    EXPECT_EQ(quadrant(1, 1), (Coordinates{{1, 0}, {0, 1}}));
    EXPECT_EQ(quadrant(2, 2), (Coordinates{{2, 0}, {2, 1}, {1, 2}, {0, 2}}));
    EXPECT_EQ(quadrant(1, 2), (Coordinates{{1, 0}, {1, 1}, {0, 2}}));
    EXPECT_EQ(quadrant(3, 1), (Coordinates{{3, 0}, {2, 1}, {1, 1}, {0, 1}}));
}

TEST(EllipseQuadrant, FailsForEveryCapacityThatIsTooSmall) {
    for (unsigned int capacity = 0; capacity < 13; ++capacity) {
        GuardedBuffer buffer(capacity);
        EXPECT_EQ(matCalcEllipseQuadrant(10, 6, buffer.data(), capacity), 0U);
    }
    GuardedBuffer buffer(13);
    EXPECT_EQ(matCalcEllipseQuadrant(10, 6, buffer.data(), 13), 13U);
    EXPECT_EQ(matCalcEllipseQuadrant(10, 6, nullptr, 13), 0U);
}

TEST(EllipseQuadrant, EqualsTheLiteralSteps) {
    for (int a = 0; a <= 60; ++a) {
        for (int b = 0; b <= 60; ++b)
            EXPECT_EQ(quadrant(a, b), velquad::test::referenceQuadrant(a, b)) << a << ' ' << b;
    }
}

TEST(EllipseQuadrant, EndsForSemiAxesWhoseTermsDoNotFit) {
    constexpr int kMax = std::numeric_limits<int>::max();
    constexpr int kMin = std::numeric_limits<int>::min();
    GuardedBuffer buffer(1000);
    for (const int a : {kMax, kMin, 1 << 30, 1 << 21, -1, 5}) {
        for (const int b : {kMax, kMin, 1 << 30, 1 << 21, -1, 5})
            EXPECT_LE(matCalcEllipseQuadrant(a, b, buffer.data(), 1000), 1000U) << a << ' ' << b;
    }
}

TEST(EllipseQuadrant, IsExactForAMillionPixels) {
    std::vector<tagPOINT> points(2500000);
    const DWORD count = matCalcEllipseQuadrant(1000000, 800000, points.data(), 2500000);
    ASSERT_GT(count, 1000000U);
    EXPECT_EQ(points[0].x, 1000000);
    EXPECT_EQ(points[count - 1].x, 0);
    EXPECT_EQ(points[count - 1].y, 800000);
    for (DWORD i = 0; i < count; i += 1000) {
        const double u = points[i].x / 1e6;
        const double v = points[i].y / 8e5;
        EXPECT_NEAR(u * u + v * v, 1.0, 3e-6);
    }
}

TEST(EllipseEstimate, IsTwelvePointsForEachPixelOfTheLongerSemiAxis) {
    const auto estimate = [](int left, int top, int right, int bottom) {
        const int rect[4] = {left, top, right, bottom};
        return matEstimatePointsInEllipse(rect);
    };
    EXPECT_EQ(estimate(0, 0, 0, 0), 12U);
    EXPECT_EQ(estimate(0, 0, 2, 2), 12U);
    EXPECT_EQ(estimate(0, 0, 3, 3), 12U);
    EXPECT_EQ(estimate(0, 0, 6, 4), 36U);
    EXPECT_EQ(estimate(0, 0, 7, 4), 36U);
    EXPECT_EQ(estimate(10, 20, 12, 30), 60U);
    EXPECT_EQ(estimate(5, 5, 0, 0), 12U);
    EXPECT_EQ(matEstimatePointsInEllipse(nullptr), 0U);
}

TEST(RectEllipse, OfAnOddSquareIsSymmetricAboutItsMiddlePixel) {
    EXPECT_EQ(ellipse(0, 0, 6, 6), (Coordinates{{6, 3},
                                                {6, 4},
                                                {5, 5},
                                                {4, 6},
                                                {3, 6},
                                                {2, 6},
                                                {1, 5},
                                                {0, 4},
                                                {0, 3},
                                                {0, 2},
                                                {1, 1},
                                                {2, 0},
                                                {3, 0},
                                                {4, 0},
                                                {5, 1},
                                                {6, 2},
                                                {6, 3}}));
}

TEST(RectEllipse, OfAnEvenSquareHasTwoMiddleColumnsAndRows) {
    EXPECT_EQ(ellipse(0, 0, 7, 7), (Coordinates{{7, 4}, {7, 5}, {6, 6}, {5, 7}, {4, 7}, {3, 7}, {2, 7},
                                                {1, 6}, {0, 5}, {0, 4}, {0, 3}, {0, 2}, {1, 1}, {2, 0},
                                                {3, 0}, {4, 0}, {5, 0}, {6, 1}, {7, 2}, {7, 3}, {7, 4}}));
}

TEST(RectEllipse, OfTheSmallestMirroredRectangles) {
    EXPECT_EQ(ellipse(0, 0, 3, 3),
              (Coordinates{{3, 2}, {2, 3}, {1, 3}, {0, 2}, {0, 1}, {1, 0}, {2, 0}, {3, 1}, {3, 2}}));
    EXPECT_EQ(ellipse(-3, 2, 3, 5), (Coordinates{{3, 4},
                                                 {2, 5},
                                                 {1, 5},
                                                 {0, 5},
                                                 {-1, 5},
                                                 {-2, 5},
                                                 {-3, 4},
                                                 {-3, 3},
                                                 {-2, 2},
                                                 {-1, 2},
                                                 {0, 2},
                                                 {1, 2},
                                                 {2, 2},
                                                 {3, 3},
                                                 {3, 4}}));
}

TEST(RectEllipse, OfANarrowRectangleIsThatOfTheParameterWalk) {
    const Coordinates twoWide{{1, 5}, {0, 5}, {1, 6}, {1, 7}, {1, 8}, {1, 9}, {0, 9}, {0, 8},
                              {0, 7}, {0, 6}, {0, 5}, {1, 5}, {0, 5}, {0, 4}, {0, 3}, {0, 2},
                              {1, 1}, {1, 2}, {1, 3}, {1, 4}, {0, 5}, {1, 5}};
    const int rect[4] = {0, 0, 1, 10};
    tagPOINT points[40];
    ASSERT_EQ(matCalcEllipse(rect, points, 40), twoWide.size());
    EXPECT_EQ(coordinatesOf(points, 22), twoWide);

    for (const auto& [width, height] :
         {std::pair{2, 10}, {10, 2}, {2, 2}, {0, 7}, {7, 0}, {1, 1}, {0, 0}, {3, 2}}) {
        const int narrow[4] = {4, 5, 4 + width, 5 + height};
        double center[2] = {4 + width * 0.5, 5 + height * 0.5};
        void* handle = polyGetRotatedEllipse(center, width * 0.5, height * 0.5, 0.0, 1, 0, 1.0, 1.0);
        ASSERT_NE(handle, nullptr);
        auto* record = static_cast<tagPOLY*>(GlobalLock(handle));
        const Coordinates expected = coordinatesOf(record->points, record->count);
        GlobalUnlock(handle);
        polyFree(handle);
        const DWORD count = matCalcEllipse(narrow, points, 40);
        EXPECT_EQ(coordinatesOf(points, count), expected) << width << ' ' << height;
    }
}

TEST(RectEllipse, OfANarrowRectangleIsCountedWithoutABufferAndLeavesATooSmallOneAlone) {
    const int rect[4] = {0, 0, 1, 10};
    EXPECT_EQ(matCalcEllipse(rect, nullptr, 0), 22U);
    std::vector<tagPOINT> points(22, kUntouched);
    EXPECT_EQ(matCalcEllipse(rect, points.data(), 21), 0U);
    EXPECT_EQ(matCalcEllipse(rect, points.data(), 0), 0U);
    for (const tagPOINT& point : points)
        EXPECT_EQ(point.x, kUntouched.x);
    EXPECT_EQ(matCalcEllipse(rect, points.data(), 22), 22U);
}

TEST(RectEllipse, OfAHugeNarrowRectangleEndsWithTheBuffer) {
    const int rect[4] = {0, 0, 2000000000, 1};
    GuardedBuffer buffer(1000);
    EXPECT_EQ(matCalcEllipse(rect, buffer.data(), 1000), 0U);
}

TEST(RectEllipse, FailsForEveryCapacityThatIsTooSmall) {
    for (const int size : {3, 6, 7, 12}) {
        const int rect[4] = {0, 0, size, size + 1};
        const auto needed = static_cast<unsigned int>(ellipse(0, 0, size, size + 1).size());
        for (unsigned int capacity = 0; capacity < needed; ++capacity) {
            GuardedBuffer buffer(capacity);
            EXPECT_EQ(matCalcEllipse(rect, buffer.data(), capacity), 0U);
        }
        GuardedBuffer buffer(needed);
        EXPECT_EQ(matCalcEllipse(rect, buffer.data(), needed), needed);
    }
}

TEST(RectEllipse, NeedsARectangleAndAMirroredOneABuffer) {
    tagPOINT point = kUntouched;
    const int rect[4] = {0, 0, 10, 10};
    EXPECT_EQ(matCalcEllipse(nullptr, &point, 1), 0U);
    EXPECT_EQ(point.x, kUntouched.x);
    EXPECT_EQ(matCalcEllipse(rect, nullptr, 1000), 0U);
}

TEST(RectEllipse, StaysInBoundsForAnyRectangle) {
    constexpr int kMax = std::numeric_limits<int>::max();
    constexpr int kMin = std::numeric_limits<int>::min();
    GuardedBuffer buffer(500);
    for (const int left : {kMin, 0, kMax}) {
        for (const int right : {kMin, kMax, 1 << 30, 5}) {
            for (const int bottom : {kMax, 1 << 30, 8}) {
                const int rect[4] = {left, 0, right, bottom};
                EXPECT_LE(matCalcEllipse(rect, buffer.data(), 500), 500U);
            }
        }
    }
}

class RandomRectEllipse : public testing::Test {
  protected:
    template <class Check>
    void forRandomRects(Check check) {
        std::mt19937 random(2024);
        for (int i = 0; i < 400; ++i) {
            const int left = static_cast<int>(random() % 2000) - 1000;
            const int top = static_cast<int>(random() % 2000) - 1000;
            const int right = left + 3 + static_cast<int>(random() % (i % 2 == 0 ? 30 : 400));
            const int bottom = top + 3 + static_cast<int>(random() % (i % 3 == 0 ? 30 : 400));
            SCOPED_TRACE(testing::Message()
                         << "rect " << left << ' ' << top << ' ' << right << ' ' << bottom);
            check(left, top, right, bottom);
        }
    }
};

TEST_F(RandomRectEllipse, EqualsTheLiteralSteps) {
    forRandomRects([](int left, int top, int right, int bottom) {
        EXPECT_EQ(ellipse(left, top, right, bottom),
                  velquad::test::referenceRectEllipse(left, top, right, bottom));
    });
}

TEST_F(RandomRectEllipse, IsClosedConnectedAndSymmetric) {
    forRandomRects([](int left, int top, int right, int bottom) {
        const Coordinates points = ellipse(left, top, right, bottom);
        ASSERT_GT(points.size(), 4U);
        EXPECT_EQ(points.front(), points.back());
        const std::set<std::pair<int, int>> pixels(points.begin(), points.end());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const auto [x, y] = points[i];
            EXPECT_TRUE(pixels.count({left + right - x, y}) == 1 && pixels.count({x, top + bottom - y}) == 1);
            EXPECT_TRUE(left <= x && x <= right && top <= y && y <= bottom);
            if (i == 0) continue;
            EXPECT_LE(std::abs(x - points[i - 1].first), 1);
            EXPECT_LE(std::abs(y - points[i - 1].second), 1);
        }
        EXPECT_EQ(points.front().first, right);
    });
}

TEST(PolygonOfRectEllipse, HoldsThePointsInABlockOfTheirSize) {
    const int rect[4] = {0, 0, 6, 6};
    void* handle = polyGetEllipse(rect);
    EXPECT_EQ(velquad::test::readPolygon(handle), ellipse(0, 0, 6, 6));
    polyFree(handle);
    const int pixel[4] = {3, 4, 3, 4};
    handle = polyGetEllipse(pixel);
    EXPECT_EQ(velquad::test::readPolygon(handle), (Coordinates{{3, 4}}));
    polyFree(handle);
    EXPECT_EQ(polyGetEllipse(nullptr), nullptr);
}

TEST(PolygonOfRectEllipse, OfNoPointsIsAPolygonAllTheSame) {
    // A narrow upright rectangle upside down: it gives a capacity of 12 and a chain longer than that.
    const int rect[4] = {0, 40, 1, 0};
    void* handle = polyGetEllipse(rect);
    EXPECT_EQ(velquad::test::readPolygon(handle), Coordinates{});
    polyFree(handle);
}

TEST(PolygonOfRectEllipse, IsNullWithoutMemoryAndLargerWhenItCannotBeCut) {
    const int rect[4] = {0, 0, 60, 40};
    const std::size_t count = ellipse(0, 0, 60, 40).size();
    EXPECT_EQ(velquad::test::forEachFailingAllocation([&] {
                  void* handle = polyGetEllipse(rect);
                  const bool isCut = GlobalSize(handle) == 8 * count + 4;
                  EXPECT_TRUE(handle == nullptr || GlobalSize(handle) >= 8 * count + 4);
                  polyFree(handle);
                  return !isCut;
              }),
              2U);
}

}  // namespace
