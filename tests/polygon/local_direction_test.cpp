// Regression line and direction around a vertex of an outline.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "velquad/polygon.h"

namespace {

using Outline = std::vector<tagPOINT>;

constexpr DWORD kAll = 7;

struct Line {
    int result;
    double slope;
    double intercept;
    DWORD orientation;
};

Line regression(const Outline& outline, DWORD index, DWORD halfWidth, DWORD selection) {
    Line line{0, 99.0, 98.0, 97};
    line.result =
        polyCalcLocalRegressionLine(outline.data(), static_cast<DWORD>(outline.size()), index, halfWidth,
                                    selection, &line.slope, &line.intercept, &line.orientation);
    return line;
}

void expectLine(const Line& line, double slope, double intercept, DWORD orientation) {
    EXPECT_EQ(line.result, 1);
    EXPECT_DOUBLE_EQ(line.slope, slope);
    EXPECT_DOUBLE_EQ(line.intercept, intercept);
    EXPECT_EQ(line.orientation, orientation);
}

void expectNothing(const Line& line) {
    EXPECT_EQ(line.result, 0);
    EXPECT_EQ(line.slope, 99.0);
    EXPECT_EQ(line.intercept, 98.0);
    EXPECT_EQ(line.orientation, 97U);
}

// y = x / 2 + 1 up to (8, 5), then up along x = 8.
const Outline kBend{{0, 1}, {2, 2}, {4, 3}, {6, 4}, {8, 5}, {8, 9}, {8, 13}, {8, 17}};

TEST(LocalRegressionLine, FitsYOverXWhereXSpreadsMore) {
    expectLine(regression(kBend, 2, 2, kAll), 0.5, 1.0, 1);
}

TEST(LocalRegressionLine, FitsXOverYOtherwise) {
    expectLine(regression(kBend, 6, 1, kAll), 0.0, 8.0, 0);
    expectLine(regression({{0, 0}, {1, 1}, {2, 2}}, 1, 1, kAll), 1.0, 0.0, 0);
}

TEST(LocalRegressionLine, SelectionPicksThePointsBeforeAtAndBehind) {
    expectLine(regression(kBend, 4, 2, 1), 0.5, 1.0, 1);         // (4, 3), (6, 4)
    expectLine(regression(kBend, 4, 2, 4), 0.0, 8.0, 0);         // (8, 9), (8, 13)
    expectLine(regression(kBend, 4, 1, 3), 0.5, 1.0, 1);         // (6, 4), (8, 5)
    expectLine(regression(kBend, 4, 1, 6), 0.0, 8.0, 0);         // (8, 5), (8, 9)
    expectLine(regression(kBend, 4, 1, 5), 0.4, 4.4, 0);         // (6, 4), (8, 9)
    expectLine(regression(kBend, 2, 1, kAll | 8), 0.5, 1.0, 1);  // further bits mean nothing
    expectNothing(regression(kBend, 4, 2, 2));                   // the vertex alone
    expectNothing(regression(kBend, 4, 2, 0));
    expectNothing(regression(kBend, 4, 2, 8));
}

TEST(LocalRegressionLine, OfScatteredPointsIsTheLeastSquaresLine) {
    // x 0 to 4, y 1, 0, 2, 1, 3: n = 5, Sx = 10, Sy = 7, Sxx = 30, Sxy = 19; slope (95 - 70) / (150 - 100).
    expectLine(regression({{0, 1}, {1, 0}, {2, 2}, {3, 1}, {4, 3}}, 2, 2, kAll), 0.5, 0.4, 1);
    expectLine(regression({{1, 0}, {0, 1}, {2, 2}, {1, 3}, {3, 4}}, 2, 2, kAll), 0.5, 0.4, 0);
}

TEST(LocalRegressionLine, LeavesOneClosingPointOut) {
    // Around vertex 0 of the closed outline stand (1, -1) and (3, 1), not the closing point.
    const Outline triangle{{2, 0}, {3, 1}, {1, -1}, {2, 0}};
    const Line line = regression(triangle, 0, 1, 5);
    expectLine(line, 1.0, -2.0 + 4.0, 0);
    // Two equal points are no closed outline: the neighbours are the point itself, which has no direction.
    expectNothing(regression({{5, 5}, {5, 5}}, 0, 1, kAll));
}

TEST(LocalRegressionLine, WrapsRoundOnOpenOutlinesToo) {
    expectLine(regression({{0, 0}, {50, 50}, {90, 80}, {2, 1}}, 0, 1, 3), 0.5, 0.0, 1);
}

TEST(LocalRegressionLine, TakesAPointTwiceWhereTheNeighbourhoodIsWider) {
    // (0, 0) twice before the vertex and once as the vertex, (4, 2) twice: still the one line.
    expectLine(regression({{0, 0}, {4, 2}}, 0, 2, kAll), 0.5, 0.0, 1);
    // Weights: around vertex 0 with half width 1 of three points all count once; behind with 3 the vertex again.
    expectLine(regression({{0, 0}, {4, 0}, {4, 4}}, 0, 6, 4),
               regression({{0, 0}, {4, 0}, {4, 4}}, 0, 3, 4).slope,
               regression({{0, 0}, {4, 0}, {4, 4}}, 0, 3, 4).intercept,
               regression({{0, 0}, {4, 0}, {4, 4}}, 0, 3, 4).orientation);
}

TEST(LocalRegressionLine, OfCoincidingPointsStoresNothing) {
    expectNothing(regression({{7, 3}, {7, 3}, {7, 3}, {1, 1}}, 1, 1, kAll));
}

TEST(LocalRegressionLine, OutputsAreOptional) {
    EXPECT_EQ(polyCalcLocalRegressionLine(kBend.data(), 8, 2, 2, kAll, nullptr, nullptr, nullptr), 1);
    double slope = 0.0;
    EXPECT_EQ(polyCalcLocalRegressionLine(kBend.data(), 8, 2, 2, kAll, &slope, nullptr, nullptr), 1);
    EXPECT_EQ(slope, 0.5);
}

TEST(LocalRegressionLine, SurvivesWhatNoCallerShouldAsk) {
    EXPECT_EQ(polyCalcLocalRegressionLine(nullptr, 0, 0, 1, kAll, nullptr, nullptr, nullptr), 0);
    expectLine(regression(kBend, 10, 2, kAll), 0.5, 1.0, 1);  // index 10 is vertex 2
    EXPECT_EQ(regression(kBend, 3, 1000, kAll).result, 1);
    EXPECT_EQ(regression(kBend, 0xFFFFFFFF, 3, kAll).result, 1);
    expectNothing(regression({{1, 1}}, 0, 5, kAll));
}

tagPOINT2D direction(const Outline& outline, DWORD index, int halfWidth, double slope, double intercept,
                     int xAxis) {
    tagPOINT2D out{99.0, 99.0};
    EXPECT_EQ(polyCalcLocalDirection(outline.data(), static_cast<DWORD>(outline.size()), index, halfWidth,
                                     slope, intercept, xAxis, &out),
              1);
    return out;
}

void expectVector(const tagPOINT2D& actual, double x, double y) {
    EXPECT_DOUBLE_EQ(actual.x, x);
    EXPECT_DOUBLE_EQ(actual.y, y);
}

TEST(LocalDirection, FollowsTheRunOfTheOutline) {
    expectVector(direction(kBend, 2, 2, 0.5, 1.0, 1), 8.0, 4.0);
    expectVector(direction(kBend, 6, 1, 0.0, 8.0, 0), 0.0, 8.0);
    const Outline reversed(kBend.rbegin(), kBend.rend());
    expectVector(direction(reversed, 5, 2, 0.5, 1.0, 1), -8.0, -4.0);
    expectVector(direction(reversed, 1, 1, 0.0, 8.0, 0), 0.0, -8.0);
}

TEST(LocalDirection, RunsAlongTheLineInBothOrientations) {
    // y 0, 3, 8 around vertex 1; x = 2 y + 5.
    expectVector(direction({{5, 0}, {11, 3}, {21, 8}}, 1, 1, 2.0, 5.0, 0), 16.0, 8.0);
    expectVector(direction({{21, 8}, {11, 3}, {5, 0}}, 1, 1, 2.0, 5.0, 0), -16.0, -8.0);
}

TEST(LocalDirection, EndsAreRoundedBeforeTheyAreSubtracted) {
    // Beside 1e16 the neighbouring doubles are 2 apart: 1e16 + 1.5 becomes 1e16 + 2, 1e16 + 0.5 becomes 1e16.
    expectVector(direction({{1, 0}, {3, 0}, {2, 0}}, 1, 1, 0.5, 1e16, 1), 2.0, 2.0);
    expectVector(direction({{0, 1}, {0, 3}, {0, 2}}, 1, 1, 0.5, 1e16, 0), 2.0, 2.0);
}

TEST(LocalDirection, FlagIsTestedForZero) {
    expectVector(direction(kBend, 2, 2, 0.5, 1.0, -3), 8.0, 4.0);
}

TEST(LocalDirection, TakesTheFirstOfEqualExtremes) {
    // x 0, 5, 0, 5, 1: the first minimum comes before the first maximum.
    expectVector(direction({{0, 0}, {5, 1}, {0, 2}, {5, 3}, {1, 4}}, 2, 2, 2.0, 7.0, 1), 5.0, 10.0);
    expectVector(direction({{5, 0}, {0, 1}, {5, 2}, {0, 3}, {1, 4}}, 2, 2, 2.0, 7.0, 1), -5.0, -10.0);
}

TEST(LocalDirection, WithoutSpreadIsTheNullVector) {
    expectVector(direction({{3, 0}, {3, 4}, {3, 9}}, 1, 1, 2.0, 7.0, 1), 0.0, 0.0);
    expectVector(direction(kBend, 2, 0, 0.5, 1.0, 1), 0.0, 0.0);
}

TEST(LocalDirection, OfANegativeHalfWidthIsTheNullVector) {
    expectVector(direction(kBend, 2, -1, 0.5, 1.0, 1), 0.0, 0.0);
    expectVector(direction(kBend, 2, INT_MIN, 0.5, 1.0, 0), 0.0, 0.0);
}

TEST(LocalDirection, WrapsRoundWithoutTheClosingPoint) {
    // Around vertex 0: (1, -5), (2, 0), (3, 1). The closing point would be met as (2, 0).
    const Outline triangle{{2, 0}, {3, 1}, {1, -5}, {2, 0}};
    expectVector(direction(triangle, 0, 1, 1.0, 0.0, 1), 2.0, 2.0);
}

TEST(LocalDirection, OfAHugeHalfWidthMeetsEveryVertex) {
    EXPECT_EQ(direction(kBend, 2, INT_MAX, 0.5, 1.0, 1).x * direction(kBend, 2, INT_MAX, 0.5, 1.0, 1).x,
              64.0);
    EXPECT_EQ(direction(kBend, 2, 20, 0.5, 1.0, 1).x * direction(kBend, 2, 20, 0.5, 1.0, 1).x, 64.0);
}

TEST(LocalDirection, SurvivesWhatNoCallerShouldAsk) {
    expectVector(direction({}, 0, 1, 1.0, 0.0, 1), 0.0, 0.0);
    expectVector(direction({{4, 4}}, 9, 3, 1.0, 0.0, 1), 0.0, 0.0);
    EXPECT_EQ(polyCalcLocalDirection(kBend.data(), 8, 2, 2, 0.5, 1.0, 1, nullptr), 1);
}

TEST(LocalDirection, DifferencesWrapAround) {
    const tagPOINT2D vector = direction({{INT_MIN, 0}, {INT_MAX, 0}, {0, 0}}, 1, 1, 0.0, 0.0, 1);
    EXPECT_EQ(vector.x, -1.0);
}

}  // namespace
