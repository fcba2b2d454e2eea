#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "tests/support/clip_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::referenceClip2D;

constexpr tagMAT_RECT2D kRect{0.0, 0.0, 10.0, 10.0};
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Clipped {
    int result;
    tagPOINT2D p1;
    tagPOINT2D p2;
};

Clipped clip(const tagMAT_RECT2D& rect, tagPOINT2D p1, tagPOINT2D p2) {
    const int result = matClipLine2D(&rect, &p1, &p2);
    return {result, p1, p2};
}

void expectClipped(const Clipped& c, int result, tagPOINT2D p1, tagPOINT2D p2) {
    EXPECT_EQ(c.result, result);
    EXPECT_EQ(c.p1.x, p1.x);
    EXPECT_EQ(c.p1.y, p1.y);
    EXPECT_EQ(c.p2.x, p2.x);
    EXPECT_EQ(c.p2.y, p2.y);
}

TEST(ClipLine2D, SegmentInsideStays) {
    expectClipped(clip(kRect, {1.0, 2.0}, {9.0, 8.0}), 1, {1.0, 2.0}, {9.0, 8.0});
    expectClipped(clip(kRect, {0.0, 10.0}, {10.0, 0.0}), 1, {0.0, 10.0}, {10.0, 0.0});
}

TEST(ClipLine2D, CutsAtEachEdgeInBothDirections) {
    expectClipped(clip(kRect, {-5.0, 5.0}, {15.0, 5.0}), 1, {0.0, 5.0}, {10.0, 5.0});
    expectClipped(clip(kRect, {15.0, 5.0}, {-5.0, 5.0}), 1, {10.0, 5.0}, {0.0, 5.0});
    expectClipped(clip(kRect, {5.0, -5.0}, {5.0, 15.0}), 1, {5.0, 0.0}, {5.0, 10.0});
    expectClipped(clip(kRect, {5.0, 15.0}, {5.0, -5.0}), 1, {5.0, 10.0}, {5.0, 0.0});
    expectClipped(clip(kRect, {-2.0, 3.0}, {6.0, 5.0}), 1, {0.0, 3.5}, {6.0, 5.0});
    expectClipped(clip(kRect, {6.0, 5.0}, {-2.0, 3.0}), 1, {6.0, 5.0}, {0.0, 3.5});
    expectClipped(clip(kRect, {8.0, 3.0}, {12.0, 5.0}), 1, {8.0, 3.0}, {10.0, 4.0});
    expectClipped(clip(kRect, {3.0, 8.0}, {5.0, 12.0}), 1, {3.0, 8.0}, {4.0, 10.0});
    expectClipped(clip(kRect, {3.0, -2.0}, {5.0, 6.0}), 1, {3.5, 0.0}, {5.0, 6.0});
}

TEST(ClipLine2D, CutsOneEndAtTwoEdges) {
    // Left at (0, -2), then top at (2, 0).
    expectClipped(clip(kRect, {-4.0, -6.0}, {8.0, 6.0}), 1, {2.0, 0.0}, {8.0, 6.0});
    expectClipped(clip(kRect, {8.0, 6.0}, {-4.0, -6.0}), 1, {8.0, 6.0}, {2.0, 0.0});
    // Right at (10, 12), then bottom at (8, 10).
    expectClipped(clip(kRect, {14.0, 16.0}, {4.0, 6.0}), 1, {8.0, 10.0}, {4.0, 6.0});
}

TEST(ClipLine2D, BothEndsBeyondOneEdgeGiveNothing) {
    expectClipped(clip(kRect, {-1.0, 5.0}, {-3.0, 50.0}), 0, {-1.0, 5.0}, {-3.0, 50.0});
    expectClipped(clip(kRect, {11.0, 5.0}, {12.0, 5.0}), 0, {11.0, 5.0}, {12.0, 5.0});
    expectClipped(clip(kRect, {5.0, -1.0}, {50.0, -2.0}), 0, {5.0, -1.0}, {50.0, -2.0});
    expectClipped(clip(kRect, {5.0, 11.0}, {5.0, 12.0}), 0, {5.0, 11.0}, {5.0, 12.0});
}

TEST(ClipLine2D, SegmentPastACornerLeavesTheEnds) {
    expectClipped(clip(kRect, {-5.0, 8.0}, {3.0, 16.0}), 0, {-5.0, 8.0}, {3.0, 16.0});
    expectClipped(clip(kRect, {5.0, -10.0}, {25.0, 10.0}), 0, {5.0, -10.0}, {25.0, 10.0});
    expectClipped(clip(kRect, {25.0, 10.0}, {5.0, -10.0}), 0, {25.0, 10.0}, {5.0, -10.0});
}

TEST(ClipLine2D, PointHalfAMarginOutsideIsInside) {
    expectClipped(clip(kRect, {10.00000005, 5.0}, {5.0, 5.0}), 1, {10.00000005, 5.0}, {5.0, 5.0});
    expectClipped(clip(kRect, {-0.5e-7, 5.0}, {5.0, 10.00000005}), 1, {-0.5e-7, 5.0}, {5.0, 10.00000005});
    // One end further out is cut; the other stays within the margin.
    expectClipped(clip(kRect, {10.00000005, 5.0}, {-5.0, 5.0}), 1, {10.00000005, 5.0}, {0.0, 5.0});
}

TEST(ClipLine2D, MarginEndsBehind1eMinus7) {
    const double right = 10.0 + 1e-7;
    const double beyondRight = std::nextafter(right, 20.0);
    expectClipped(clip(kRect, {right, 5.0}, {5.0, 5.0}), 1, {right, 5.0}, {5.0, 5.0});
    expectClipped(clip(kRect, {beyondRight, 5.0}, {5.0, 5.0}), 1, {10.0, 5.0}, {5.0, 5.0});
    expectClipped(clip(kRect, {5.0, right}, {5.0, 5.0}), 1, {5.0, right}, {5.0, 5.0});
    expectClipped(clip(kRect, {5.0, beyondRight}, {5.0, 5.0}), 1, {5.0, 10.0}, {5.0, 5.0});
    const double beyondLeft = std::nextafter(-1e-7, -1.0);
    expectClipped(clip(kRect, {-1e-7, 5.0}, {5.0, 5.0}), 1, {-1e-7, 5.0}, {5.0, 5.0});
    expectClipped(clip(kRect, {beyondLeft, 5.0}, {5.0, 5.0}), 1, {0.0, 5.0}, {5.0, 5.0});
    expectClipped(clip(kRect, {5.0, -1e-7}, {5.0, 5.0}), 1, {5.0, -1e-7}, {5.0, 5.0});
    expectClipped(clip(kRect, {5.0, beyondLeft}, {5.0, 5.0}), 1, {5.0, 0.0}, {5.0, 5.0});
}

TEST(ClipLine2D, SegmentWithoutLength) {
    expectClipped(clip(kRect, {3.0, 3.0}, {3.0, 3.0}), 1, {3.0, 3.0}, {3.0, 3.0});
    expectClipped(clip(kRect, {11.0, 3.0}, {11.0, 3.0}), 0, {11.0, 3.0}, {11.0, 3.0});
    tagPOINT2D same{3.0, 3.0};
    EXPECT_EQ(matClipLine2D(&kRect, &same, &same), 1);
}

TEST(ClipLine2D, EndsCloserThan1eMinus7AreOnePoint) {
    // -1e-7 lies within the margin, the other end beyond it.
    const double close = std::nextafter(-2e-7, 0.0);
    expectClipped(clip(kRect, {5.0, -1e-7}, {5.0, close}), 1, {5.0, -1e-7}, {5.0, close});
    expectClipped(clip(kRect, {5.0, close}, {5.0, -1e-7}), 1, {5.0, close}, {5.0, -1e-7});
    expectClipped(clip(kRect, {5.0, -1e-7}, {5.0, -2e-7}), 1, {5.0, -1e-7}, {5.0, 0.0});
    // Close in one coordinate only.
    expectClipped(clip(kRect, {5.0, -5.0}, {5.0, 5.0}), 1, {5.0, 0.0}, {5.0, 5.0});
    expectClipped(clip(kRect, {-5.0, 5.0}, {5.0, 5.0}), 1, {0.0, 5.0}, {5.0, 5.0});
}

TEST(ClipLine2D, NotANumberIsBeyondNoEdge) {
    const Clipped inside = clip(kRect, {kNaN, 5.0}, {5.0, 5.0});
    EXPECT_EQ(inside.result, 1);
    EXPECT_TRUE(std::isnan(inside.p1.x));
    const Clipped below = clip(kRect, {kNaN, 20.0}, {5.0, 5.0});
    EXPECT_EQ(below.result, 1);
    EXPECT_TRUE(std::isnan(below.p1.x));
    EXPECT_EQ(below.p1.y, 10.0);
}

TEST(ClipLine2D, RandomSegmentsMatchTheReferenceToTheLastBit) {
    constexpr unsigned int kSeed = 20260304;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> place(-20.0, 30.0);
    std::uniform_int_distribution<int> whole(-3, 13);
    std::uniform_int_distribution<int> exponent(-10, 60);
    std::uniform_int_distribution<int> kind(0, 3);
    std::uniform_real_distribution<double> besideEdge(-2e-7, 2e-7);
    const auto coordinate = [&] {
        switch (kind(random)) {
            case 0:
                return place(random);
            case 1:
                return static_cast<double>(whole(random));
            case 2:
                return std::ldexp(place(random), exponent(random));
            default:
                return (whole(random) < 5 ? 0.0 : 10.0) + besideEdge(random);
        }
    };
    int cut = 0;
    for (int i = 0; i < 100000; ++i) {
        const tagPOINT2D p1{coordinate(), coordinate()};
        const tagPOINT2D p2{coordinate(), coordinate()};
        SCOPED_TRACE(testing::Message() << p1.x << " " << p1.y << " to " << p2.x << " " << p2.y);
        tagPOINT2D expected1 = p1;
        tagPOINT2D expected2 = p2;
        const int expected = referenceClip2D(kRect, expected1, expected2);
        const Clipped c = clip(kRect, p1, p2);
        ASSERT_EQ(c.result, expected);
        const double got[] = {c.p1.x, c.p1.y, c.p2.x, c.p2.y};
        const double want[] = {expected1.x, expected1.y, expected2.x, expected2.y};
        for (int k = 0; k < 4; ++k)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(got[k]), std::bit_cast<std::uint64_t>(want[k]));
        cut += expected;
    }
    EXPECT_GT(cut, 10000);
}

}  // namespace
