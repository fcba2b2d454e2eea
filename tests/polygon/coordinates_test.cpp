#include <gtest/gtest.h>

#include <cfloat>
#include <limits>

#include "tests/support/outline.h"
#include "velquad/polygon.h"

namespace {

using velquad::test::Coordinates;
using velquad::test::coordinatesOf;
using velquad::test::outlineOf;

constexpr int kIntMax = 2147483647;
constexpr int kIntMin = -kIntMax - 1;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(PolyTranslate, MovesAllPoints) {
    auto points = outlineOf({{0, 0}, {-5, 7}, {3, -2}});
    EXPECT_EQ(polyTranslate(points.data(), 3, 10, -20), 1);
    EXPECT_EQ(coordinatesOf(points.data(), 3), (Coordinates{{10, -20}, {5, -13}, {13, -22}}));
}

TEST(PolyTranslate, TouchesNoMoreThanCountPoints) {
    auto points = outlineOf({{0, 0}, {1, 1}});
    EXPECT_EQ(polyTranslate(points.data(), 1, 1, 2), 1);
    EXPECT_EQ(coordinatesOf(points.data(), 2), (Coordinates{{1, 2}, {1, 1}}));
}

TEST(PolyTranslate, WrapsAroundOnOverflow) {
    auto points = outlineOf({{kIntMax, kIntMin}, {kIntMin, kIntMax}});
    EXPECT_EQ(polyTranslate(points.data(), 2, 1, -1), 1);
    EXPECT_EQ(coordinatesOf(points.data(), 2), (Coordinates{{kIntMin, kIntMax}, {kIntMin + 1, kIntMax - 1}}));
}

TEST(PolyTranslate, MovingBackRestoresEveryPoint) {
    const Coordinates before = {{kIntMax, 3}, {-4, kIntMin}, {0, 1}, {17, -17}, {5, 5}};
    auto points = outlineOf(before);
    polyTranslate(points.data(), 5, 2000000000, -2000000000);
    polyTranslate(points.data(), 5, -2000000000, 2000000000);
    EXPECT_EQ(coordinatesOf(points.data(), 5), before);
}

TEST(PolyTranslate, ReturnsZeroForNothing) {
    auto points = outlineOf({{1, 2}});
    EXPECT_EQ(polyTranslate(nullptr, 1, 1, 1), 0);
    EXPECT_EQ(polyTranslate(points.data(), 0, 1, 1), 0);
    EXPECT_EQ(coordinatesOf(points.data(), 1), (Coordinates{{1, 2}}));
}

TEST(PolyScale, TruncatesTowardsZero) {
    auto points = outlineOf({{3, -3}, {-3, 3}, {5, -5}, {1, -1}});
    EXPECT_EQ(polyScale(points.data(), 4, 0.5, 0.5), 1);
    EXPECT_EQ(coordinatesOf(points.data(), 4), (Coordinates{{1, -1}, {-1, 1}, {2, -2}, {0, 0}}));
}

TEST(PolyScale, ScalesTheAxesIndependently) {
    auto points = outlineOf({{7, 7}, {-2, 100}});
    EXPECT_EQ(polyScale(points.data(), 2, -3.0, 0.29), 1);
    // 100 * 0.29 is 28.999999999999996 in doubles.
    EXPECT_EQ(coordinatesOf(points.data(), 2), (Coordinates{{-21, 2}, {6, 28}}));
}

TEST(PolyScale, KeepsTheExtremesAtScaleOne) {
    auto points = outlineOf({{kIntMax, kIntMin}, {kIntMin, kIntMax}});
    EXPECT_EQ(polyScale(points.data(), 2, 1.0, 1.0), 1);
    EXPECT_EQ(coordinatesOf(points.data(), 2), (Coordinates{{kIntMax, kIntMin}, {kIntMin, kIntMax}}));
}

TEST(PolyScale, GivesTheSmallestIntegerBeyondTheRange) {
    auto points = outlineOf({{kIntMin, kIntMax}, {1, -1}, {0, 0}});
    EXPECT_EQ(polyScale(points.data(), 1, -1.0, 1.0000001), 1);
    EXPECT_EQ(polyScale(points.data() + 1, 1, 1e300, 1e300), 1);
    EXPECT_EQ(polyScale(points.data() + 2, 1, kInfinity, kNaN), 1);
    EXPECT_EQ(coordinatesOf(points.data(), 3),
              (Coordinates{{kIntMin, kIntMin}, {kIntMin, kIntMin}, {kIntMin, kIntMin}}));
}

TEST(PolyScale, StaysInRangeUpToTheLastFraction) {
    auto points = outlineOf({{1, 1}, {1, 1}});
    EXPECT_EQ(polyScale(points.data(), 1, 2147483647.9999998, -2147483648.9999995), 1);
    EXPECT_EQ(polyScale(points.data() + 1, 1, 2147483648.0, -2147483649.0), 1);
    EXPECT_EQ(coordinatesOf(points.data(), 2), (Coordinates{{kIntMax, kIntMin}, {kIntMin, kIntMin}}));
}

TEST(PolyScale, ReturnsZeroForNothing) {
    auto points = outlineOf({{1, 2}});
    EXPECT_EQ(polyScale(nullptr, 1, 2.0, 2.0), 0);
    EXPECT_EQ(polyScale(points.data(), 0, 2.0, 2.0), 0);
    EXPECT_EQ(coordinatesOf(points.data(), 1), (Coordinates{{1, 2}}));
}

struct RoundingCase {
    double value;
    int expected;
};

class PolyMakeInt : public testing::TestWithParam<RoundingCase> {};

TEST_P(PolyMakeInt, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(polyMakeInt(GetParam().value), GetParam().expected) << GetParam().value;
}

INSTANTIATE_TEST_SUITE_P(Ordinary, PolyMakeInt,
                         testing::Values(RoundingCase{0.0, 0}, RoundingCase{-0.0, 0}, RoundingCase{0.25, 0},
                                         RoundingCase{-0.25, 0}, RoundingCase{0.5, 1}, RoundingCase{-0.5, -1},
                                         RoundingCase{1.5, 2}, RoundingCase{2.5, 3}, RoundingCase{-2.5, -3},
                                         RoundingCase{2.4999999, 2}, RoundingCase{-2.4999999, -2},
                                         RoundingCase{7.0, 7}, RoundingCase{-7.0, -7},
                                         RoundingCase{DBL_MIN, 0}));

// The sum with 0.5 is rounded to a double first.
INSTANTIATE_TEST_SUITE_P(JustBelowHalf, PolyMakeInt,
                         testing::Values(RoundingCase{0.49999999999999994, 1},
                                         RoundingCase{-0.49999999999999994, -1},
                                         RoundingCase{0.4999999999999999, 0}));

INSTANTIATE_TEST_SUITE_P(
    Extremes, PolyMakeInt,
    testing::Values(RoundingCase{2147483646.5, kIntMax}, RoundingCase{2147483647.0, kIntMax},
                    RoundingCase{2147483647.4, kIntMax}, RoundingCase{2147483647.5, kIntMin},
                    RoundingCase{-2147483648.0, kIntMin}, RoundingCase{-2147483648.4, kIntMin},
                    RoundingCase{-2147483647.4, -kIntMax}, RoundingCase{-2147483649.0, kIntMin},
                    RoundingCase{4294967297.0, kIntMin}, RoundingCase{1e300, kIntMin},
                    RoundingCase{DBL_MAX, kIntMin}, RoundingCase{-DBL_MAX, kIntMin},
                    RoundingCase{kInfinity, kIntMin}, RoundingCase{-kInfinity, kIntMin},
                    RoundingCase{kNaN, kIntMin}));

struct Bounds {
    int left;
    int top;
    int right;
    int bottom;
    bool operator==(const Bounds&) const = default;
};

void PrintTo(const Bounds& b, std::ostream* stream) {
    *stream << "(" << b.left << ", " << b.top << ", " << b.right << ", " << b.bottom << ")";
}

Bounds boundsOf(const tagPOINT* points, DWORD count) {
    RECT rect{1, 2, 3, 4};
    polyGetBoundingRect(points, count, &rect);
    return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
            static_cast<int>(rect.bottom)};
}

Bounds boundsOf(const Coordinates& coordinates) {
    const auto points = outlineOf(coordinates);
    return boundsOf(points.data(), static_cast<DWORD>(points.size()));
}

TEST(PolyGetBoundingRect, IncludesTheLargestCoordinates) {
    EXPECT_EQ(boundsOf({{3, 4}}), (Bounds{3, 4, 3, 4}));
    EXPECT_EQ(boundsOf({{3, 9}, {-5, 20}, {8, -1}}), (Bounds{-5, -1, 8, 20}));
    EXPECT_EQ(boundsOf({{-3, -9}, {-5, -20}}), (Bounds{-5, -20, -3, -9}));
}

TEST(PolyGetBoundingRect, FindsEachExtremeAtEveryIndex) {
    for (std::size_t i = 0; i < 11; ++i) {
        Coordinates coordinates(11, {5, 6});
        coordinates[i] = {-100, -200};
        EXPECT_EQ(boundsOf(coordinates), (Bounds{-100, -200, 5, 6})) << i;
        coordinates[i] = {100, 200};
        EXPECT_EQ(boundsOf(coordinates), (Bounds{5, 6, 100, 200})) << i;
    }
}

TEST(PolyGetBoundingRect, HoldsTheExtremeIntegers) {
    EXPECT_EQ(boundsOf({{kIntMax, kIntMax}}), (Bounds{kIntMax, kIntMax, kIntMax, kIntMax}));
    EXPECT_EQ(boundsOf({{kIntMin, kIntMin}}), (Bounds{kIntMin, kIntMin, kIntMin, kIntMin}));
    EXPECT_EQ(boundsOf({{kIntMin, 0}, {0, kIntMax}}), (Bounds{kIntMin, 0, 0, kIntMax}));
}

TEST(PolyGetBoundingRect, IsEmptyForNoPoints) {
    const tagPOINT point{1, 2};
    EXPECT_EQ(boundsOf(&point, 0), (Bounds{kIntMax, kIntMax, kIntMin, kIntMin}));
    EXPECT_EQ(boundsOf(nullptr, 0), (Bounds{kIntMax, kIntMax, kIntMin, kIntMin}));
    EXPECT_EQ(boundsOf(nullptr, 5), (Bounds{kIntMax, kIntMax, kIntMin, kIntMin}));
}

TEST(PolyGetBoundingRect, IgnoresANullRectangle) {
    auto points = outlineOf({{1, 2}});
    polyGetBoundingRect(points.data(), 1, nullptr);
    EXPECT_EQ(coordinatesOf(points.data(), 1), (Coordinates{{1, 2}}));
}

}  // namespace
