#include <gtest/gtest.h>

#include "velquad/platform.h"

namespace {

TEST(SetRect, StoresTheFourCoordinatesInOrder) {
    RECT rect{9, 9, 9, 9};
    EXPECT_NE(SetRect(&rect, -1, 2, 2147483647, 4), 0);
    EXPECT_EQ(rect.left, -1);
    EXPECT_EQ(rect.top, 2);
    EXPECT_EQ(rect.right, 2147483647);
    EXPECT_EQ(rect.bottom, 4);
}

TEST(SetRect, RefusesANullRectangle) {
    EXPECT_EQ(SetRect(nullptr, 1, 2, 3, 4), 0);
}

TEST(CopyRect, CopiesAllCoordinates) {
    const RECT source{1, 2, 3, 4};
    RECT destination{9, 9, 9, 9};
    EXPECT_NE(CopyRect(&destination, &source), 0);
    EXPECT_EQ(destination.left, 1);
    EXPECT_EQ(destination.top, 2);
    EXPECT_EQ(destination.right, 3);
    EXPECT_EQ(destination.bottom, 4);
}

TEST(CopyRect, RefusesNullPointersAndLeavesTheDestinationAlone) {
    RECT rect{1, 2, 3, 4};
    EXPECT_EQ(CopyRect(&rect, nullptr), 0);
    EXPECT_EQ(CopyRect(nullptr, &rect), 0);
    EXPECT_EQ(rect.left, 1);
    EXPECT_EQ(rect.bottom, 4);
}

}  // namespace
