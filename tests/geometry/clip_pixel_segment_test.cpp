#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>

#include "tests/support/clip_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::referenceClip2L;

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();
constexpr int kRect[] = {0, 0, 10, 10};

struct Clipped {
    int result;
    tagPOINT p1;
    tagPOINT p2;
};

/// Also checks that both names do the same.
Clipped clip(const int* rect, tagPOINT p1, tagPOINT p2) {
    Clipped c{-1, p1, p2};
    c.result = matClipLine2L(rect, &c.p1, &c.p2);
    EXPECT_EQ(matClipLine(rect, &p1, &p2), c.result);
    EXPECT_EQ(p1.x, c.p1.x);
    EXPECT_EQ(p1.y, c.p1.y);
    EXPECT_EQ(p2.x, c.p2.x);
    EXPECT_EQ(p2.y, c.p2.y);
    return c;
}

void expectClipped(const Clipped& c, int result, tagPOINT p1, tagPOINT p2) {
    EXPECT_EQ(c.result, result);
    EXPECT_EQ(c.p1.x, p1.x);
    EXPECT_EQ(c.p1.y, p1.y);
    EXPECT_EQ(c.p2.x, p2.x);
    EXPECT_EQ(c.p2.y, p2.y);
}

TEST(ClipLine2L, SegmentInsideStays) {
    expectClipped(clip(kRect, {1, 2}, {9, 8}), 1, {1, 2}, {9, 8});
    expectClipped(clip(kRect, {0, 0}, {10, 10}), 1, {0, 0}, {10, 10});
    expectClipped(clip(kRect, {10, 0}, {0, 10}), 1, {10, 0}, {0, 10});
}

TEST(ClipLine2L, BothEndsBeyondOneEdgeGiveNothing) {
    expectClipped(clip(kRect, {11, 5}, {20, 6}), 0, {11, 5}, {20, 6});
    expectClipped(clip(kRect, {-1, 5}, {-9, 50}), 0, {-1, 5}, {-9, 50});
    expectClipped(clip(kRect, {5, 11}, {-6, 12}), 0, {5, 11}, {-6, 12});
    expectClipped(clip(kRect, {5, -1}, {5, -2}), 0, {5, -1}, {5, -2});
}

TEST(ClipLine2L, SegmentPastACornerLeavesTheEnds) {
    expectClipped(clip(kRect, {-5, 8}, {3, 16}), 0, {-5, 8}, {3, 16});
    expectClipped(clip(kRect, {3, 16}, {-5, 8}), 0, {3, 16}, {-5, 8});
    expectClipped(clip(kRect, {8, -5}, {16, 3}), 0, {8, -5}, {16, 3});
}

TEST(ClipLine2L, SegmentThroughTheRectangleKeepsItsDirection) {
    expectClipped(clip(kRect, {-10, 5}, {20, 5}), 1, {0, 5}, {10, 5});
    expectClipped(clip(kRect, {20, 5}, {-10, 5}), 1, {10, 5}, {0, 5});
    expectClipped(clip(kRect, {5, -10}, {5, 20}), 1, {5, 0}, {5, 10});
    expectClipped(clip(kRect, {5, 20}, {5, -10}), 1, {5, 10}, {5, 0});
    expectClipped(clip(kRect, {-5, -5}, {15, 15}), 1, {0, 0}, {10, 10});
    expectClipped(clip(kRect, {15, 15}, {-5, -5}), 1, {10, 10}, {0, 0});
    expectClipped(clip(kRect, {4, 4}, {-5, 4}), 1, {4, 4}, {0, 4});
}

TEST(ClipLine2L, PointOnePixelOutsideMovesToTheEdge) {
    expectClipped(clip(kRect, {11, 5}, {5, 5}), 1, {10, 5}, {5, 5});
    expectClipped(clip(kRect, {5, 5}, {11, 5}), 1, {5, 5}, {10, 5});
    expectClipped(clip(kRect, {-1, 5}, {5, 5}), 1, {0, 5}, {5, 5});
    expectClipped(clip(kRect, {5, 11}, {5, 5}), 1, {5, 10}, {5, 5});
    expectClipped(clip(kRect, {5, -1}, {5, 5}), 1, {5, 0}, {5, 5});
    expectClipped(clip(kRect, {11, 7}, {5, 5}), 1, {10, 7}, {5, 5});
}

TEST(ClipLine2L, OffsetIsTruncatedTowardsZero) {
    // 3 * 5 / 10 = 1.5 either way.
    expectClipped(clip(kRect, {-3, 0}, {7, 5}), 1, {0, 1}, {7, 5});
    expectClipped(clip(kRect, {-3, 5}, {7, 0}), 1, {0, 4}, {7, 0});
    expectClipped(clip(kRect, {0, -3}, {5, 7}), 1, {1, 0}, {5, 7});
    expectClipped(clip(kRect, {5, 13}, {0, 3}), 1, {4, 10}, {0, 3});
}

TEST(ClipLine2L, XEdgesComeBeforeYEdges) {
    // Left first: y = -7 + 2 * 15 / 8 = -4, then top: x = 0 + 4 * 6 / 12 = 2. Top first would give
    // x = -2 + 7 * 8 / 15 = 1.
    expectClipped(clip(kRect, {-2, -7}, {6, 8}), 1, {2, 0}, {6, 8});
    // Right first: y = 12 + 1 * -9 / 9 = 11, then bottom: x = 10 + 1 * -8 / 8 = 9.
    expectClipped(clip(kRect, {11, 12}, {2, 3}), 1, {9, 10}, {2, 3});
}

TEST(ClipLine2L, TouchedCornerIsBothEnds) {
    expectClipped(clip(kRect, {-5, 5}, {5, -5}), 1, {0, 0}, {0, 0});
    expectClipped(clip(kRect, {5, 15}, {15, 5}), 1, {10, 10}, {10, 10});
}

TEST(ClipLine2L, SegmentWithoutLength) {
    expectClipped(clip(kRect, {3, 3}, {3, 3}), 1, {3, 3}, {3, 3});
    expectClipped(clip(kRect, {11, 3}, {11, 3}), 0, {11, 3}, {11, 3});
}

TEST(ClipLine2L, RectangleOfOnePixel) {
    const int rect[] = {4, 4, 4, 4};
    expectClipped(clip(rect, {0, 4}, {9, 4}), 1, {4, 4}, {4, 4});
    expectClipped(clip(rect, {0, 0}, {9, 9}), 1, {4, 4}, {4, 4});
    expectClipped(clip(rect, {0, 5}, {9, 5}), 0, {0, 5}, {9, 5});
}

TEST(ClipLine2L, NullPointersGiveNothing) {
    tagPOINT p1{-5, 5};
    tagPOINT p2{5, 5};
    EXPECT_EQ(matClipLine2L(nullptr, &p1, &p2), 0);
    EXPECT_EQ(matClipLine2L(kRect, nullptr, &p2), 0);
    EXPECT_EQ(matClipLine2L(kRect, &p1, nullptr), 0);
    EXPECT_EQ(matClipLine(nullptr, &p1, &p2), 0);
    EXPECT_EQ(matClipLine(kRect, nullptr, &p2), 0);
    EXPECT_EQ(matClipLine(kRect, &p1, nullptr), 0);
    EXPECT_EQ(p1.x, -5);
    EXPECT_EQ(p2.x, 5);
}

TEST(ClipLine2L, ExchangedSidesHaveNoInside) {
    const int exchangedX[] = {10, 0, 0, 10};
    const int exchangedY[] = {0, 10, 10, 0};
    for (const int* rect : {exchangedX, exchangedY}) {
        expectClipped(clip(rect, {5, 5}, {6, 6}), 0, {5, 5}, {6, 6});
        expectClipped(clip(rect, {-5, -4}, {20, 21}), 0, {-5, -4}, {20, 21});
        expectClipped(clip(rect, {20, 21}, {-5, -4}), 0, {20, 21}, {-5, -4});
    }
}

TEST(ClipLine2L, WholeRangeOf32Bits) {
    const int whole[] = {kMin, kMin, kMax, kMax};
    expectClipped(clip(whole, {kMin, kMax}, {kMax, kMin}), 1, {kMin, kMax}, {kMax, kMin});
    const int middle[] = {100, -1000, 200, 1000};
    expectClipped(clip(middle, {kMin, kMin}, {kMax, kMax}), 1, {100, 100}, {200, 200});
    expectClipped(clip(middle, {kMax, kMax}, {kMin, kMin}), 1, {200, 200}, {100, 100});
    // The antidiagonal is y = -1 - x.
    expectClipped(clip(middle, {kMin, kMax}, {kMax, kMin}), 1, {100, -101}, {200, -201});
    const int corner[] = {kMax, kMax, kMax, kMax};
    expectClipped(clip(corner, {kMin, kMin}, {kMax, kMax}), 1, {kMax, kMax}, {kMax, kMax});
    expectClipped(clip(corner, {kMin, kMin}, {kMax, kMax - 1}), 0, {kMin, kMin}, {kMax, kMax - 1});
}

TEST(ClipLine2L, OrderHoldsForDistancesBeyond64Bits) {
    // The squared distance of the far end is nearly 2^65.
    const int rect[] = {0, 0, kMax - 1, kMax - 1};
    expectClipped(clip(rect, {kMin, kMin}, {kMax, kMax}), 1, {0, 0}, {kMax - 1, kMax - 1});
    expectClipped(clip(rect, {kMax, kMax}, {kMin, kMin}), 1, {kMax - 1, kMax - 1}, {0, 0});
}

TEST(ClipLine2L, RandomSegmentsMatchTheReference) {
    constexpr unsigned int kSeed = 20260302;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    for (const int extent : {6, 40, 1000000, 1 << 29}) {
        std::uniform_int_distribution<int> any(-extent, extent);
        int cut = 0;
        for (int i = 0; i < 20000; ++i) {
            const int x = any(random);
            const int y = any(random);
            const int rect[] = {std::min(x, any(random)), std::min(y, any(random)), x, y};
            const tagPOINT p1{any(random), any(random)};
            const tagPOINT p2{any(random), any(random)};
            SCOPED_TRACE(testing::Message()
                         << "rect " << rect[0] << " " << rect[1] << " " << rect[2] << " " << rect[3] << ", "
                         << p1.x << " " << p1.y << " to " << p2.x << " " << p2.y);
            tagPOINT expected1 = p1;
            tagPOINT expected2 = p2;
            const int expected = referenceClip2L(rect, expected1, expected2);
            expectClipped(clip(rect, p1, p2), expected, expected1, expected2);
            cut += expected;
        }
        EXPECT_GT(cut, 1000);
    }
}

TEST(ClipLine2L, AnySegmentEndsInsideInOrder) {
    constexpr unsigned int kSeed = 20260303;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<int> any(kMin, kMax);
    std::uniform_int_distribution<int> choice(0, 5);
    const auto extreme = [&] {
        const int extremes[] = {kMin, kMin + 1, 0, kMax - 1, kMax};
        const int chosen = choice(random);
        return chosen < 5 ? extremes[chosen] : any(random);
    };
    const auto distance = [](const tagPOINT& a, const tagPOINT& b) {
        const auto dx = static_cast<long double>(a.x) - static_cast<long double>(b.x);
        const auto dy = static_cast<long double>(a.y) - static_cast<long double>(b.y);
        return dx * dx + dy * dy;
    };
    int cut = 0;
    for (int i = 0; i < 20000; ++i) {
        const bool isExtreme = i % 2 == 0;
        const auto next = [&] { return isExtreme ? extreme() : any(random); };
        const int x[] = {next(), next()};
        const int y[] = {next(), next()};
        const int rect[] = {std::min(x[0], x[1]), std::min(y[0], y[1]), std::max(x[0], x[1]),
                            std::max(y[0], y[1])};
        const tagPOINT p1{next(), next()};
        const tagPOINT p2{next(), next()};
        SCOPED_TRACE(testing::Message()
                     << "rect " << rect[0] << " " << rect[1] << " " << rect[2] << " " << rect[3] << ", "
                     << p1.x << " " << p1.y << " to " << p2.x << " " << p2.y);
        const Clipped c = clip(rect, p1, p2);
        if (c.result == 0) {
            expectClipped(c, 0, p1, p2);
            continue;
        }
        ++cut;
        for (const tagPOINT& p : {c.p1, c.p2}) {
            ASSERT_TRUE(rect[0] <= p.x && p.x <= rect[2] && rect[1] <= p.y && p.y <= rect[3]);
            ASSERT_TRUE(std::min(p1.x, p2.x) <= p.x && p.x <= std::max(p1.x, p2.x));
            ASSERT_TRUE(std::min(p1.y, p2.y) <= p.y && p.y <= std::max(p1.y, p2.y));
        }
        ASSERT_LE(distance(p1, c.p1), distance(p1, c.p2));
    }
    EXPECT_GT(cut, 1000);
}

}  // namespace
