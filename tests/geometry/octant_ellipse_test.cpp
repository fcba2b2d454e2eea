#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <set>
#include <vector>

#include "tests/support/ellipse_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;

constexpr int kMax = std::numeric_limits<int>::max();
constexpr tagPOINT kUntouched{-77, -78};

/// Counts first, then fills a buffer of just that size.
Coordinates ellipse(int a, int b, int fullContour) {
    const int count = matGetEllipse(a, b, nullptr, 0, fullContour);
    EXPECT_GT(count, 0);
    std::vector<tagPOINT> points(static_cast<std::size_t>(count) + 2, kUntouched);
    EXPECT_EQ(matGetEllipse(a, b, points.data(), count, fullContour), count);
    EXPECT_EQ(points[static_cast<std::size_t>(count)].x, kUntouched.x);
    return coordinatesOf(points.data(), static_cast<DWORD>(count));
}

TEST(OctantEllipse, OfFiveByThree) {
    EXPECT_EQ(matGetEllipse(5, 3, nullptr, 0, 1), 24);
    EXPECT_EQ(ellipse(5, 3, 1),
              (Coordinates{{5, 0},   {5, -1},  {4, -2},  {3, -3},  {2, -3}, {1, -3}, {0, -3}, {-1, -3},
                           {-2, -3}, {-3, -3}, {-4, -2}, {-5, -1}, {-5, 0}, {-5, 1}, {-4, 2}, {-3, 3},
                           {-2, 3},  {-1, 3},  {0, 3},   {1, 3},   {2, 3},  {3, 3},  {4, 2},  {5, 1}}));
}

TEST(OctantEllipse, ZigzagLosesTheTop) {
    EXPECT_EQ(ellipse(5, 3, 0), (Coordinates{{5, 0},
                                             {-5, -1},
                                             {4, -2},
                                             {-3, -3},
                                             {2, -3},
                                             {-1, -3},
                                             {-5, 0},
                                             {-1, 3},
                                             {2, 3},
                                             {-3, 3},
                                             {4, 2},
                                             {-5, 1}}));
}

TEST(OctantEllipse, WithSmallSemiAxes) {
    EXPECT_EQ(ellipse(1, 1, 1),
              (Coordinates{{1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}}));
    EXPECT_EQ(ellipse(2, 1, 1), (Coordinates{{2, 0},
                                             {2, -1},
                                             {1, -1},
                                             {0, -1},
                                             {-1, -1},
                                             {-2, -1},
                                             {-2, 0},
                                             {-2, 1},
                                             {-1, 1},
                                             {0, 1},
                                             {1, 1},
                                             {2, 1}}));
    EXPECT_EQ(ellipse(1, 2, 1), (Coordinates{{1, 0},
                                             {1, -1},
                                             {1, -2},
                                             {0, -2},
                                             {-1, -2},
                                             {-1, -1},
                                             {-1, 0},
                                             {-1, 1},
                                             {-1, 2},
                                             {0, 2},
                                             {1, 2},
                                             {1, 1}}));
    EXPECT_EQ(ellipse(2, 2, 1), (Coordinates{{2, 0},
                                             {2, -1},
                                             {1, -2},
                                             {0, -2},
                                             {-1, -2},
                                             {-2, -1},
                                             {-2, 0},
                                             {-2, 1},
                                             {-1, 2},
                                             {0, 2},
                                             {1, 2},
                                             {2, 1}}));
    EXPECT_EQ(ellipse(3, 3, 1), (Coordinates{{3, 0},
                                             {3, -1},
                                             {2, -2},
                                             {1, -3},
                                             {0, -3},
                                             {-1, -3},
                                             {-2, -2},
                                             {-3, -1},
                                             {-3, 0},
                                             {-3, 1},
                                             {-2, 2},
                                             {-1, 3},
                                             {0, 3},
                                             {1, 3},
                                             {2, 2},
                                             {3, 1}}));
}

TEST(OctantEllipse, WithASemiAxisBelowThreeIsAlwaysWhole) {
    for (const auto& [a, b] : {std::pair{1, 1}, {2, 2}, {2, 9}, {9, 2}, {1, 30}, {30, 1}})
        EXPECT_EQ(ellipse(a, b, 0), ellipse(a, b, 1));
}

TEST(OctantEllipse, WithASemiAxisOfZeroIsALine) {
    const Coordinates upright{{0, -5}, {0, -4}, {0, -3}, {0, -2}, {0, -1}, {0, 0},
                              {0, 1},  {0, 2},  {0, 3},  {0, 4},  {0, 5}};
    EXPECT_EQ(ellipse(0, 5, 1), upright);
    EXPECT_EQ(ellipse(0, 5, 0), upright);
    EXPECT_EQ(ellipse(2, 0, 1), (Coordinates{{-2, 0}, {-1, 0}, {0, 0}, {1, 0}, {2, 0}}));
    EXPECT_EQ(ellipse(0, 0, 1), (Coordinates{{0, 0}}));
}

TEST(OctantEllipse, StoresWhatFitsOfALine) {
    std::vector<tagPOINT> points(5, kUntouched);
    EXPECT_EQ(matGetEllipse(0, 5, points.data(), 3, 1), 11);
    EXPECT_EQ(points[2].y, -3);
    EXPECT_EQ(points[3].y, kUntouched.y);
    points.assign(5, kUntouched);
    EXPECT_EQ(matGetEllipse(0, 5, points.data(), -1, 1), 11);
    EXPECT_EQ(points[0].y, kUntouched.y);
}

TEST(OctantEllipse, FailsForANegativeSemiAxis) {
    tagPOINT point = kUntouched;
    EXPECT_EQ(matGetEllipse(-1, 5, &point, 1, 1), -1);
    EXPECT_EQ(matGetEllipse(5, -1, &point, 1, 1), -1);
    EXPECT_EQ(matGetEllipse(-1, 0, nullptr, 0, 1), -1);
    EXPECT_EQ(matGetEllipse(0, -1, nullptr, 0, 1), -1);
    EXPECT_EQ(point.x, kUntouched.x);
}

TEST(OctantEllipse, FailsForEveryCapacityThatIsTooSmall) {
    for (const auto& [a, b] : {std::pair{5, 3}, {3, 5}, {12, 12}, {1, 6}, {40, 3}, {1, 1}}) {
        for (const int full : {0, 1}) {
            const int count = matGetEllipse(a, b, nullptr, 0, full);
            for (int capacity = -3; capacity < count; ++capacity) {
                std::vector<tagPOINT> points(static_cast<std::size_t>(count) + 1, kUntouched);
                EXPECT_EQ(matGetEllipse(a, b, points.data(), capacity, full), -1);
                for (int i = capacity < 0 ? 0 : capacity; i <= count; ++i)
                    EXPECT_EQ(points[static_cast<std::size_t>(i)].x, kUntouched.x)
                        << "written behind the end";
            }
        }
    }
}

TEST(OctantEllipse, EqualsTheLiteralStepsInEveryCapacityThatSuffices) {
    for (int a = 1; a <= 48; ++a) {
        for (int b = 1; b <= 48; ++b) {
            for (const int full : {0, 1}) {
                SCOPED_TRACE(testing::Message() << a << ' ' << b << ' ' << full);
                const Coordinates expected = velquad::test::referenceEllipseAroundOrigin(a, b, full != 0);
                EXPECT_EQ(ellipse(a, b, full), expected);
                tagPOINT points[1000];
                const int count = matGetEllipse(a, b, points, 1000, full);
                EXPECT_EQ(coordinatesOf(points, static_cast<DWORD>(count)), expected);
            }
        }
    }
}

TEST(OctantEllipse, IsConnectedClosedAndSymmetric) {
    for (int a = 1; a <= 90; a += 3) {
        for (int b = 1; b <= 90; b += 2) {
            SCOPED_TRACE(testing::Message() << a << ' ' << b);
            const Coordinates points = ellipse(a, b, 1);
            const std::set<std::pair<int, int>> pixels(points.begin(), points.end());
            EXPECT_EQ(pixels.size(), points.size());
            for (std::size_t i = 0; i < points.size(); ++i) {
                const auto [x, y] = points[i];
                const auto [nextX, nextY] = points[(i + 1) % points.size()];
                EXPECT_TRUE(std::abs(nextX - x) <= 1 && std::abs(nextY - y) <= 1);
                EXPECT_TRUE(pixels.count({-x, y}) == 1 && pixels.count({x, -y}) == 1);
            }
        }
    }
}

TEST(OctantEllipse, RefusesSemiAxesWhoseTermsDoNotFit) {
    EXPECT_EQ(matGetEllipse(kMax, kMax, nullptr, 0, 1), -1);
    EXPECT_EQ(matGetEllipse(kMax, 3, nullptr, 0, 1), -1);
    EXPECT_EQ(matGetEllipse(3, kMax, nullptr, 0, 1), -1);
    // 2 a^3 reaches 2^63 between these two.
    EXPECT_EQ(matGetEllipse(1664511, 1664511, nullptr, 0, 1), -1);
    EXPECT_GT(matGetEllipse(1664510, 1664510, nullptr, 0, 1), 4 * 1664510);
}

}  // namespace
