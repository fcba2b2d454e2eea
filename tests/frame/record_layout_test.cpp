// Callers walk these records by hand; a changed offset would break them silently, so it breaks the build.
#include <gtest/gtest.h>

#include <cstddef>

#include "velquad/types.h"

static_assert(sizeof(tagPOINT) == 8 && alignof(tagPOINT) == 4);
static_assert(offsetof(tagPOINT, x) == 0 && offsetof(tagPOINT, y) == 4);

static_assert(sizeof(tagPOINT2D) == 16 && offsetof(tagPOINT2D, x) == 0 && offsetof(tagPOINT2D, y) == 8);
static_assert(sizeof(tagPOINT3D) == 24 && offsetof(tagPOINT3D, y) == 8 && offsetof(tagPOINT3D, z) == 16);

static_assert(sizeof(RECT) == 16 && offsetof(RECT, left) == 0 && offsetof(RECT, top) == 4);
static_assert(offsetof(RECT, right) == 8 && offsetof(RECT, bottom) == 12);

static_assert(sizeof(tagMAT_RECT2D) == 32 && offsetof(tagMAT_RECT2D, left) == 0 &&
              offsetof(tagMAT_RECT2D, top) == 8);
static_assert(offsetof(tagMAT_RECT2D, right) == 16 && offsetof(tagMAT_RECT2D, bottom) == 24);

static_assert(sizeof(tagPOLY) == 12 && offsetof(tagPOLY, count) == 0 && offsetof(tagPOLY, points) == 4);

static_assert(sizeof(tagPOLY2D) == 24 && offsetof(tagPOLY2D, count) == 0 && offsetof(tagPOLY2D, points) == 8);

static_assert(sizeof(tagPOLY_POSITION) == 16 && offsetof(tagPOLY_POSITION, index) == 0);
static_assert(offsetof(tagPOLY_POSITION, fraction) == 8);

static_assert(sizeof(tagMINIVEC) == 16 && offsetof(tagMINIVEC, count) == 0 && offsetof(tagMINIVEC, x) == 4);
static_assert(offsetof(tagMINIVEC, y) == 8 && offsetof(tagMINIVEC, codes) == 12);

static_assert(sizeof(tagMAT_DISTANCE) == 96 && offsetof(tagMAT_DISTANCE, shortestFrom) == 0);
static_assert(offsetof(tagMAT_DISTANCE, shortestTo) == 8 &&
              offsetof(tagMAT_DISTANCE, shortestDistance) == 16);
static_assert(offsetof(tagMAT_DISTANCE, shortestAngle) == 24 && offsetof(tagMAT_DISTANCE, longestFrom) == 32);
static_assert(offsetof(tagMAT_DISTANCE, longestTo) == 40 && offsetof(tagMAT_DISTANCE, longestDistance) == 48);
static_assert(offsetof(tagMAT_DISTANCE, longestAngle) == 56 && offsetof(tagMAT_DISTANCE, meanDistance) == 64);
static_assert(offsetof(tagMAT_DISTANCE, count) == 72 && offsetof(tagMAT_DISTANCE, scaleX) == 80);
static_assert(offsetof(tagMAT_DISTANCE, scaleY) == 88);

TEST(Sentinels, AreTheLargestValuesOfTheirTypes) {
    EXPECT_EQ(velquad::kNoValue, 1.7976931348623157e308);
    EXPECT_EQ(velquad::kExtentNotSet, 3.4028234663852886e38);
    EXPECT_EQ(velquad::kCoordinateNotSet, 0x7fffffff);
}
