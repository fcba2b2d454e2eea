#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr double kSentinel = 1.7976931348623157e308;
constexpr int kNotSet = 0x7fffffff;

tagMAT_DISTANCE makeRecord(double scaleX = 1.0, double scaleY = 1.0) {
    tagMAT_DISTANCE record;
    std::memset(&record, 0x5a, sizeof record);
    EXPECT_EQ(matInitDistance(&record, scaleX, scaleY), 1);
    return record;
}

void expectPoint(const tagPOINT& point, int x, int y) {
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
}

double directionOf(tagPOINT a, tagPOINT b, double scaleX = 1.0, double scaleY = 1.0) {
    tagMAT_DISTANCE record = makeRecord(scaleX, scaleY);
    EXPECT_EQ(matCompareDistance(&record, a, b, 1.0), 1);
    EXPECT_EQ(matCompleteDistance(&record), 1);
    EXPECT_EQ(record.shortestAngle, record.longestAngle);
    return record.longestAngle;
}

}  // namespace

TEST(MatInitDistance, EmptiesARecord) {
    const tagMAT_DISTANCE record = makeRecord(0.25, 0.5);
    for (const tagPOINT* point :
         {&record.shortestFrom, &record.shortestTo, &record.longestFrom, &record.longestTo}) {
        expectPoint(*point, kNotSet, kNotSet);
    }
    EXPECT_EQ(record.shortestDistance, kSentinel);
    EXPECT_EQ(record.shortestAngle, kSentinel);
    EXPECT_EQ(record.longestDistance, kSentinel);
    EXPECT_EQ(record.longestAngle, kSentinel);
    EXPECT_EQ(record.meanDistance, 0.0);
    EXPECT_EQ(record.count, 0U);
    EXPECT_EQ(record.scaleX, 0.25);
    EXPECT_EQ(record.scaleY, 0.5);
}

TEST(MatInitDistance, RefusesANullRecord) {
    EXPECT_EQ(matInitDistance(nullptr, 1.0, 1.0), 0);
    EXPECT_EQ(matCompareDistance(nullptr, {0, 0}, {1, 1}, 1.0), 0);
    EXPECT_EQ(matCompleteDistance(nullptr), 0);
}

TEST(MatCompareDistance, KeepsTheShortestAndTheLongestPair) {
    tagMAT_DISTANCE record = makeRecord();
    EXPECT_EQ(matCompareDistance(&record, {1, 2}, {3, 4}, 5.0), 1);
    expectPoint(record.shortestFrom, 1, 2);
    expectPoint(record.longestTo, 3, 4);
    EXPECT_EQ(matCompareDistance(&record, {5, 6}, {7, 8}, 2.0), 1);
    EXPECT_EQ(matCompareDistance(&record, {9, 10}, {11, 12}, 8.0), 1);
    expectPoint(record.shortestFrom, 5, 6);
    expectPoint(record.shortestTo, 7, 8);
    EXPECT_EQ(record.shortestDistance, 2.0);
    expectPoint(record.longestFrom, 9, 10);
    expectPoint(record.longestTo, 11, 12);
    EXPECT_EQ(record.longestDistance, 8.0);
    EXPECT_EQ(record.meanDistance, 15.0);
    EXPECT_EQ(record.count, 3U);
    EXPECT_EQ(record.shortestAngle, kSentinel);
    EXPECT_EQ(matCompleteDistance(&record), 1);
    EXPECT_EQ(record.meanDistance, 5.0);
    EXPECT_EQ(record.shortestAngle, 45.0);
    EXPECT_EQ(record.longestAngle, 45.0);
}

TEST(MatCompareDistance, RefusesAPointWhoseXIsNotSet) {
    tagMAT_DISTANCE record = makeRecord();
    EXPECT_EQ(matCompareDistance(&record, {kNotSet, 0}, {1, 1}, 1.0), 0);
    EXPECT_EQ(matCompareDistance(&record, {1, 1}, {kNotSet, 0}, 1.0), 0);
    EXPECT_EQ(record.count, 0U);
    EXPECT_EQ(record.meanDistance, 0.0);
    EXPECT_EQ(record.shortestDistance, kSentinel);
    EXPECT_EQ(matCompareDistance(&record, {1, kNotSet}, {1, kNotSet}, 1.0), 1);
    EXPECT_EQ(record.count, 1U);
}

TEST(MatCompareDistance, LetsTheEarliestOfEqualPairsStand) {
    tagMAT_DISTANCE record = makeRecord();
    // Differences from 0.0 keep the tolerance exact.
    matCompareDistance(&record, {1, 1}, {1, 1}, 0.0);
    matCompareDistance(&record, {2, 2}, {2, 2}, 1e-10);
    EXPECT_EQ(record.longestFrom.x, 1);
    matCompareDistance(&record, {3, 3}, {3, 3}, std::nextafter(1e-10, 0.0));
    EXPECT_EQ(record.longestFrom.x, 1);
    matCompareDistance(&record, {4, 4}, {4, 4}, std::nextafter(1e-10, 1.0));
    EXPECT_EQ(record.longestFrom.x, 4);
    matCompareDistance(&record, {5, 5}, {5, 5}, -1e-10);
    EXPECT_EQ(record.shortestFrom.x, 1);
    matCompareDistance(&record, {6, 6}, {6, 6}, -std::nextafter(1e-10, 1.0));
    EXPECT_EQ(record.shortestFrom.x, 6);
    EXPECT_EQ(record.count, 6U);
}

TEST(MatCompareDistance, TakesTheFirstPairWhateverItsDistance) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    tagMAT_DISTANCE record = makeRecord();
    EXPECT_EQ(matCompareDistance(&record, {1, 2}, {3, 4}, kInfinity), 1);
    EXPECT_EQ(record.shortestDistance, kInfinity);
    EXPECT_EQ(record.longestDistance, kInfinity);
    expectPoint(record.shortestTo, 3, 4);
    EXPECT_EQ(matCompareDistance(&record, {5, 6}, {7, 8}, -1.0), 1);
    EXPECT_EQ(record.shortestDistance, -1.0);
    expectPoint(record.longestFrom, 1, 2);
}

TEST(MatCompareDistance, ComputesTheCorrectedDistanceForTheSentinel) {
    tagMAT_DISTANCE record = makeRecord(0.5, 2.0);
    EXPECT_EQ(matCompareDistance(&record, {4, 4}, {4, 4}, kSentinel), 1);
    EXPECT_EQ(record.shortestDistance, (0.5 + 2.0) * 0.5);
    EXPECT_EQ(record.meanDistance, 1.25);
    EXPECT_EQ(matCompareDistance(&record, {0, 0}, {3, 0}, kSentinel), 1);
    EXPECT_EQ(record.longestDistance, 2.0);
    EXPECT_EQ(record.meanDistance, 3.25);
}

TEST(MatComputeCorrectedDistance, AddsTheSectionThroughOnePixel) {
    EXPECT_EQ(matComputeCorrectedDistance({7, 7}, {7, 7}, 1.0, 3.0), 2.0);
    EXPECT_EQ(matComputeCorrectedDistance({0, 0}, {3, 0}, 1.0, 1.0), 4.0);
    EXPECT_EQ(matComputeCorrectedDistance({3, 0}, {0, 0}, 0.5, 1.0), 2.0);
    EXPECT_EQ(matComputeCorrectedDistance({0, 0}, {0, -3}, 1.0, 2.0), 8.0);
    EXPECT_NEAR(matComputeCorrectedDistance({0, 0}, {2, 2}, 1.0, 1.0), 3.0 * std::sqrt(2.0), 1e-14);
    std::mt19937 random(4111);
    std::uniform_int_distribution<int> coordinates(-50, 50);
    for (int i = 0; i < 2000; ++i) {
        const tagPOINT a{coordinates(random), coordinates(random)};
        const tagPOINT b{coordinates(random), coordinates(random)};
        SCOPED_TRACE(testing::Message() << a.x << " " << a.y << " " << b.x << " " << b.y);
        ASSERT_EQ(matComputeCorrectedDistance(a, b, 0.7, 1.1),
                  matCalcPixelScaledDist(&a, &b, 0.7, 1.1, 0) + matCalcPixelSection(&a, &b, 0.7, 1.1));
    }
}

TEST(MatCompleteDistance, LeavesAnEmptyRecordAlone) {
    tagMAT_DISTANCE record = makeRecord();
    const tagMAT_DISTANCE before = record;
    EXPECT_EQ(matCompleteDistance(&record), 1);
    EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
}

TEST(MatCompleteDistance, DividesTheMeanAgainWhenRunTwice) {
    tagMAT_DISTANCE record = makeRecord();
    matCompareDistance(&record, {0, 0}, {1, 0}, 6.0);
    matCompareDistance(&record, {0, 0}, {1, 0}, 10.0);
    EXPECT_EQ(matCompleteDistance(&record), 1);
    EXPECT_EQ(record.meanDistance, 8.0);
    EXPECT_EQ(matCompleteDistance(&record), 1);
    EXPECT_EQ(record.meanDistance, 4.0);
}

TEST(MatCompleteDistance, GivesDirectionsOfUndirectedLines) {
    EXPECT_EQ(directionOf({0, 0}, {5, 0}), 0.0);
    EXPECT_EQ(directionOf({5, 0}, {0, 0}), 0.0);
    EXPECT_EQ(directionOf({0, 0}, {2, 2}), 45.0);
    EXPECT_EQ(directionOf({2, 2}, {0, 0}), 45.0);
    EXPECT_EQ(directionOf({0, 0}, {0, -4}), 90.0);
    EXPECT_EQ(directionOf({0, 0}, {1, -1}), 135.0);
    EXPECT_EQ(directionOf({0, 0}, {1, 1}, 1.0, 2.0), 63.43494882292201);
}

TEST(MatCompleteDistance, FindsTheDirectionOfEachPair) {
    tagMAT_DISTANCE record = makeRecord(1.0, 2.0);
    matCompareDistance(&record, {0, 0}, {2, 1}, 3.0);
    matCompareDistance(&record, {0, 0}, {0, 5}, 9.0);
    EXPECT_EQ(matCompleteDistance(&record), 1);
    EXPECT_EQ(record.shortestAngle, 45.0);
    EXPECT_EQ(record.longestAngle, 90.0);
}

TEST(MatCompleteDistance, TurnsBackFromJustBelowHalfATurn) {
    // A slope of 1 in 1 000 000 000 is 5.7e-8 degrees from horizontal, one in 500 000 000 is 1.1e-7.
    EXPECT_EQ(directionOf({1000000000, 0}, {0, 1}), 0.0);
    EXPECT_NEAR(directionOf({500000000, 0}, {0, 1}), 180.0 - 1.1459156e-7, 1e-12);
    // Directions of exactly 179.9999999, and two steps of rounding below it.
    EXPECT_EQ(matCalcScaledAngle({0, 0}, {-1, 1}, 1.0, 1.7453292519943295e-9), 179.9999999);
    EXPECT_EQ(directionOf({0, 0}, {-1, 1}, 1.0, 1.7453292519943295e-9), 0.0);
    EXPECT_EQ(directionOf({0, 0}, {-1, 1}, 1.0, 1.7453300519943295e-9), 179.99999989999995);
    // Just below a full turn, and so just below half a turn when it is turned back.
    EXPECT_GT(directionOf({0, 0}, {1000000000, -1}), 179.9999999);
    EXPECT_LT(directionOf({0, 0}, {1000000000, -1}), 180.0);
}
