#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "geometry/raster_line.h"
#include "tests/support/raster_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::referenceErrorTermLine;
using velquad::test::referenceRoundedPixel;
using velquad::test::WidePixel;
using Pixels = std::vector<WidePixel>;

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();
constexpr int kUntouched = -12345;

struct Ends {
    int x0;
    int y0;
    int x1;
    int y1;
};

Pixels toPixels(const std::vector<tagPOINT>& points) {
    Pixels pixels;
    for (const tagPOINT& p : points)
        pixels.emplace_back(p.x, p.y);
    return pixels;
}

/// All pixels by `matGetBresenhamLine`, with a guard behind the last.
Pixels strictLine(const Ends& e) {
    const unsigned int count = matGetBresenhamLine(e.x0, e.y0, e.x1, e.y1, nullptr, 0);
    std::vector<tagPOINT> points(count + 1, tagPOINT{kUntouched, kUntouched});
    EXPECT_EQ(matGetBresenhamLine(e.x0, e.y0, e.x1, e.y1, points.data(), count), count);
    EXPECT_EQ(points.back().x, kUntouched);
    EXPECT_EQ(points.back().y, kUntouched);
    points.pop_back();
    return toPixels(points);
}

/// The first `capacity` pixels by `matGetLine`, with a guard behind the last.
Pixels fittingLine(const Ends& e, unsigned int capacity) {
    std::vector<tagPOINT> points(capacity + 1, tagPOINT{kUntouched, kUntouched});
    const unsigned int count = matGetLine(e.x0, e.y0, e.x1, e.y1, points.data(), capacity);
    EXPECT_EQ(points.back().x, kUntouched);
    EXPECT_EQ(points.back().y, kUntouched);
    points.resize(count < capacity ? count : capacity);
    return toPixels(points);
}

/// At most `limit` pixels by `CMatBresenhamLine`.
Pixels walkedLine(const Ends& e, std::size_t limit) {
    CMatBresenhamLine line(CPoint(e.x0, e.y0), CPoint(e.x1, e.y1));
    Pixels pixels;
    for (CPoint p; pixels.size() < limit && line.GetNextPoint(p);)
        pixels.emplace_back(p.x, p.y);
    return pixels;
}

void expectAllForms(const Ends& e, const Pixels& expected) {
    EXPECT_EQ(strictLine(e), expected);
    EXPECT_EQ(fittingLine(e, static_cast<unsigned int>(expected.size())), expected);
    EXPECT_EQ(matGetLine(e.x0, e.y0, e.x1, e.y1, nullptr, 0), expected.size());
    EXPECT_EQ(walkedLine(e, expected.size() + 1), expected);
    CMatBresenhamLine line(CPoint(e.x0, e.y0), CPoint(e.x1, e.y1));
    EXPECT_EQ(line.GetPointCount(), static_cast<int>(expected.size()));
}

TEST(RasterLine, EqualEndsAreOnePixel) {
    expectAllForms({7, -3, 7, -3}, {{7, -3}});
    expectAllForms({kMin, kMax, kMin, kMax}, {{kMin, kMax}});
}

TEST(RasterLine, NeighboursAreTwoPixels) {
    expectAllForms({0, 0, 1, 0}, {{0, 0}, {1, 0}});
    expectAllForms({0, 0, 0, -1}, {{0, 0}, {0, -1}});
    expectAllForms({0, 0, -1, 1}, {{0, 0}, {-1, 1}});
}

TEST(RasterLine, AllFormsAgreeOnAGentleSlope) {
    expectAllForms({0, 0, 5, 2}, {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}, {5, 2}});
}

TEST(RasterLine, AllFormsAgreeInEveryOctant) {
    expectAllForms({0, 0, 2, 5}, {{0, 0}, {0, 1}, {1, 2}, {1, 3}, {2, 4}, {2, 5}});
    expectAllForms({0, 0, -2, 5}, {{0, 0}, {0, 1}, {-1, 2}, {-1, 3}, {-2, 4}, {-2, 5}});
    expectAllForms({0, 0, -5, 2}, {{0, 0}, {-1, 0}, {-2, 1}, {-3, 1}, {-4, 2}, {-5, 2}});
    expectAllForms({0, 0, -5, -2}, {{0, 0}, {-1, 0}, {-2, -1}, {-3, -1}, {-4, -2}, {-5, -2}});
    expectAllForms({0, 0, -2, -5}, {{0, 0}, {0, -1}, {-1, -2}, {-1, -3}, {-2, -4}, {-2, -5}});
    expectAllForms({0, 0, 2, -5}, {{0, 0}, {0, -1}, {1, -2}, {1, -3}, {2, -4}, {2, -5}});
    expectAllForms({0, 0, 5, -2}, {{0, 0}, {1, 0}, {2, -1}, {3, -1}, {4, -2}, {5, -2}});
}

TEST(RasterLine, FlatUprightAndDiagonalLines) {
    expectAllForms({3, 4, 0, 4}, {{3, 4}, {2, 4}, {1, 4}, {0, 4}});
    expectAllForms({3, 4, 3, 6}, {{3, 4}, {3, 5}, {3, 6}});
    expectAllForms({3, 4, 0, 7}, {{3, 4}, {2, 5}, {1, 6}, {0, 7}});
}

TEST(RasterLine, ReversedEndsMayTakeOtherPixels) {
    expectAllForms({0, 0, 2, 1}, {{0, 0}, {1, 1}, {2, 1}});
    expectAllForms({2, 1, 0, 0}, {{2, 1}, {1, 0}, {0, 0}});
}

TEST(GetBresenhamLine, TellsTheCountWithoutABuffer) {
    EXPECT_EQ(matGetBresenhamLine(0, 0, 5, 2, nullptr, 0), 6U);
    EXPECT_EQ(matGetBresenhamLine(0, 0, 5, 2, nullptr, 100), 6U);
}

TEST(GetBresenhamLine, StoresNothingWhenOneIsMissing) {
    std::vector<tagPOINT> points(6, tagPOINT{kUntouched, kUntouched});
    EXPECT_EQ(matGetBresenhamLine(0, 0, 5, 2, points.data(), 5), 0U);
    EXPECT_EQ(matGetBresenhamLine(0, 0, 5, 2, points.data(), 0), 0U);
    EXPECT_EQ(matGetBresenhamLine(0, 0, 0, 0, points.data(), 0), 0U);
    for (const tagPOINT& p : points) {
        EXPECT_EQ(p.x, kUntouched);
        EXPECT_EQ(p.y, kUntouched);
    }
}

TEST(GetLine, StoresWhatFitsAndTellsTheWholeCount) {
    const Pixels whole{{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}, {5, 2}};
    for (unsigned int capacity = 0; capacity <= 8; ++capacity) {
        std::vector<tagPOINT> points(8, tagPOINT{kUntouched, kUntouched});
        EXPECT_EQ(matGetLine(0, 0, 5, 2, points.data(), capacity), 6U);
        const std::size_t stored = capacity < 6 ? capacity : 6;
        EXPECT_EQ(toPixels({points.begin(), points.begin() + static_cast<std::ptrdiff_t>(stored)}),
                  Pixels(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(stored)));
        for (std::size_t i = stored; i < points.size(); ++i)
            EXPECT_EQ(points[i].x, kUntouched);
    }
}

TEST(GetLine, NullBufferStoresNothing) {
    EXPECT_EQ(matGetLine(0, 0, 5, 2, nullptr, 0), 6U);
    EXPECT_EQ(matGetLine(0, 0, 5, 2, nullptr, 4), 6U);
}

TEST(MatBresenhamLine, BeginsBeforeTheFirstPixel) {
    const CMatBresenhamLine line(CPoint(10, 20), CPoint(7, 25));
    EXPECT_EQ(line.start, CPoint(10, 20));
    EXPECT_EQ(line.end, CPoint(7, 25));
    EXPECT_EQ(line.step, -1);
    EXPECT_EQ(line.current, CPoint(10, 20));
    EXPECT_EQ(line.diagonalX, -1);
    EXPECT_EQ(line.diagonalY, 1);
    EXPECT_EQ(line.straightX, 0);
    EXPECT_EQ(line.straightY, 1);
    EXPECT_EQ(line.diagonalError, -4);
    EXPECT_EQ(line.straightError, 6);
    EXPECT_EQ(line.error, 1);
    EXPECT_EQ(line.major, 5);
    EXPECT_EQ(line.minor, 3);
}

TEST(MatBresenhamLine, SignOfNoDifferenceIsPlus) {
    const CMatBresenhamLine line(CPoint(1, 1), CPoint(1, 1));
    EXPECT_EQ(line.diagonalX, 1);
    EXPECT_EQ(line.diagonalY, 1);
    EXPECT_EQ(line.straightX, 1);
    EXPECT_EQ(line.straightY, 0);
}

TEST(MatBresenhamLine, CountsStepsAndUpdatesItsState) {
    CMatBresenhamLine line(CPoint(0, 0), CPoint(5, 2));
    CPoint p;
    ASSERT_TRUE(line.GetNextPoint(p));
    EXPECT_EQ(line.step, 0);
    EXPECT_EQ(line.error, -1);
    ASSERT_TRUE(line.GetNextPoint(p));
    EXPECT_EQ(line.step, 1);
    EXPECT_EQ(line.error, 3);
    EXPECT_EQ(line.current, CPoint(1, 0));
    ASSERT_TRUE(line.GetNextPoint(p));
    EXPECT_EQ(line.step, 2);
    EXPECT_EQ(line.error, -3);
    EXPECT_EQ(line.current, CPoint(2, 1));
}

TEST(MatBresenhamLine, LeavesThePointBehindTheEnd) {
    CMatBresenhamLine line(CPoint(0, 0), CPoint(1, 0));
    CPoint p;
    ASSERT_TRUE(line.GetNextPoint(p));
    ASSERT_TRUE(line.GetNextPoint(p));
    p = CPoint(kUntouched, kUntouched);
    EXPECT_FALSE(line.GetNextPoint(p));
    EXPECT_FALSE(line.GetNextPoint(p));
    EXPECT_EQ(p, CPoint(kUntouched, kUntouched));
    EXPECT_EQ(line.step, 1);
    EXPECT_EQ(line.current, CPoint(1, 0));
}

TEST(MatBresenhamLine, CopiesGoOnFromWhereTheOriginalStands) {
    CMatBresenhamLine line(CPoint(0, 0), CPoint(5, 2));
    CPoint p;
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(line.GetNextPoint(p));
    CMatBresenhamLine copy(line);
    CMatBresenhamLine assigned(CPoint(9, 9), CPoint(9, 9));
    assigned = line;
    static_assert(std::is_standard_layout_v<CMatBresenhamLine> && sizeof(CMatBresenhamLine) == 64);
    EXPECT_EQ(std::memcmp(&copy, &line, sizeof line), 0);
    EXPECT_EQ(std::memcmp(&assigned, &line, sizeof line), 0);
    for (CMatBresenhamLine* each : {&copy, &assigned, &line}) {
        ASSERT_TRUE(each->GetNextPoint(p));
        EXPECT_EQ(p, CPoint(3, 1));
    }
}

TEST(RasterLine, EveryShortLineMatchesRoundingAndTheTextbook) {
    for (int x = -12; x <= 12; ++x) {
        for (int y = -12; y <= 12; ++y) {
            SCOPED_TRACE(testing::Message() << "to " << x << ", " << y);
            const Ends e{3, -2, 3 + x, -2 + y};
            const Pixels expected = referenceErrorTermLine(e.x0, e.y0, e.x1, e.y1);
            for (std::size_t k = 0; k < expected.size(); ++k) {
                ASSERT_EQ(expected[k],
                          referenceRoundedPixel(e.x0, e.y0, e.x1, e.y1, static_cast<std::int64_t>(k)));
            }
            expectAllForms(e, expected);
        }
    }
}

TEST(RasterLine, RandomLinesMatchTheTextbook) {
    constexpr unsigned int kSeed = 20260301;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<int> anywhere(-1000000000, 1000000000);
    std::uniform_int_distribution<int> extent(-3000, 3000);
    for (int i = 0; i < 200; ++i) {
        const int x = anywhere(random);
        const int y = anywhere(random);
        const Ends e{x, y, x + extent(random), y + extent(random)};
        SCOPED_TRACE(testing::Message() << e.x0 << ", " << e.y0 << " to " << e.x1 << ", " << e.y1);
        const Pixels expected = referenceErrorTermLine(e.x0, e.y0, e.x1, e.y1);
        expectAllForms(e, expected);
    }
}

TEST(RasterLine, LinesOfTwoTo30StepsAreStraight) {
    constexpr int kHalf = 1 << 29;
    constexpr unsigned int kShown = 5000;
    for (const Ends& e :
         {Ends{-kHalf, 7, kHalf, 8}, Ends{-kHalf, -kHalf, kHalf, kHalf - 1}, Ends{5, kHalf, -1000000, -kHalf},
          Ends{kHalf, 0, -kHalf, 3 * (kHalf / 2)}, Ends{-kHalf, -kHalf, kHalf, kHalf}}) {
        SCOPED_TRACE(testing::Message() << e.x0 << ", " << e.y0 << " to " << e.x1 << ", " << e.y1);
        EXPECT_EQ(matGetLine(e.x0, e.y0, e.x1, e.y1, nullptr, 0), (1U << 30) + 1U);
        const Pixels pixels = fittingLine(e, kShown);
        ASSERT_EQ(pixels.size(), kShown);
        for (unsigned int k = 0; k < kShown; ++k)
            ASSERT_EQ(pixels[k], referenceRoundedPixel(e.x0, e.y0, e.x1, e.y1, k));
        EXPECT_EQ(walkedLine(e, kShown), pixels);
    }
}

TEST(RasterLine, TheErrorTermHoldsToTheEndOfALongLine) {
    // Jumps close to the end: the iterator's state is set to what it is after that many steps.
    constexpr int kLength = 1 << 30;
    constexpr int kRise = kLength - 3;
    CMatBresenhamLine line(CPoint(0, 0), CPoint(kLength, kRise));
    constexpr int kSkipped = kLength - 1000;
    const WidePixel place = referenceRoundedPixel(0, 0, kLength, kRise, kSkipped);
    line.step = kSkipped;
    line.current = CPoint(static_cast<int>(place.first), static_cast<int>(place.second));
    line.error = static_cast<int>(2LL * kRise * (kSkipped + 1LL) - kLength - 2LL * kLength * place.second);
    CPoint p;
    for (std::int64_t k = kSkipped + 1; k <= kLength; ++k) {
        ASSERT_TRUE(line.GetNextPoint(p));
        ASSERT_EQ(WidePixel(p.x, p.y), referenceRoundedPixel(0, 0, kLength, kRise, k));
    }
    EXPECT_FALSE(line.GetNextPoint(p));
    EXPECT_EQ(p, CPoint(kLength, kRise));
}

TEST(RasterLine, TheWholeRangeWrapsAround) {
    // The difference of the ends wraps to -1, and one step back leads from one end of the range to the other.
    expectAllForms({kMin, 0, kMax, 0}, {{kMin, 0}, {kMax, 0}});
    expectAllForms({0, kMin, 0, kMax}, {{0, kMin}, {0, kMax}});
    expectAllForms({kMin, kMin, kMax, kMax}, {{kMin, kMin}, {kMax, kMax}});
    expectAllForms({kMax, kMax, kMin, kMin + 1}, {{kMax, kMax}, {kMin, kMin}, {kMin, kMin + 1}});
}

TEST(RasterLine, AnExtentOfTwoTo31IsNeverTheMajorOne) {
    expectAllForms({0, 0, kMin, 0}, {{0, 0}});
    expectAllForms({0, 0, 0, kMin}, {{0, 0}});
    expectAllForms({0, 0, kMin, 2}, {{0, 0}, {0, 1}, {0, 2}});
}

TEST(RasterLine, BothExtentsOfTwoTo31EndToo) {
    constexpr unsigned int kCount = (1U << 31) + 1U;
    tagPOINT points[3] = {{kUntouched, kUntouched}, {kUntouched, kUntouched}, {kUntouched, kUntouched}};
    EXPECT_EQ(matGetBresenhamLine(0, 0, kMin, kMin, nullptr, 0), kCount);
    EXPECT_EQ(matGetBresenhamLine(0, 0, kMin, kMin, points, 3), 0U);
    EXPECT_EQ(points[0].x, kUntouched);
    EXPECT_EQ(matGetLine(0, 0, kMin, kMin, points, 3), kCount);
    EXPECT_EQ(points[2].x, -2);
    EXPECT_EQ(points[2].y, 0);
    CMatBresenhamLine line(CPoint(0, 0), CPoint(kMin, kMin));
    CPoint p;
    EXPECT_TRUE(line.GetNextPoint(p));
    EXPECT_FALSE(line.GetNextPoint(p));
    EXPECT_EQ(line.GetPointCount(), kMin + 1);
}

TEST(RasterLine, LinesBeyondTwoTo30StepsHaveTheToldLength) {
    EXPECT_EQ(matGetBresenhamLine(kMin, 0, -1, 0, nullptr, 0), 1U << 31);
    EXPECT_EQ(matGetLine(0, 5, 0, kMax, nullptr, 0), static_cast<unsigned int>(kMax - 5) + 1U);
    CMatBresenhamLine line(CPoint(0, 0), CPoint(kMax, 17));
    EXPECT_EQ(line.GetPointCount(), kMin);
    const Pixels pixels = fittingLine({0, 0, kMax, 17}, 1000);
    EXPECT_EQ(walkedLine({0, 0, kMax, 17}, 1000), pixels);
    for (std::size_t k = 0; k < pixels.size(); ++k)
        ASSERT_EQ(pixels[k].first, static_cast<std::int64_t>(k));
}

}  // namespace
