#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "velquad/geometry.h"

namespace {

double section(tagPOINT a, tagPOINT b, double scaleX, double scaleY) {
    return matCalcPixelSection(&a, &b, scaleX, scaleY);
}

TEST(PixelSection, OfOnePixelIsTheMeanOfItsSides) {
    EXPECT_EQ(section({7, 7}, {7, 7}, 2.0, 5.0), 3.5);
}

TEST(PixelSection, AlongAnAxisIsTheSide) {
    EXPECT_EQ(section({0, 0}, {9, 0}, 2.0, 5.0), 2.0);
    EXPECT_EQ(section({0, 0}, {-9, 0}, 2.0, 5.0), 2.0);
    EXPECT_DOUBLE_EQ(section({0, 0}, {0, 9}, 2.0, 5.0), 5.0);
    EXPECT_DOUBLE_EQ(section({0, 0}, {0, -9}, 2.0, 5.0), 5.0);
}

TEST(PixelSection, AlongTheDiagonalIsTheDiagonal) {
    EXPECT_NEAR(section({0, 0}, {5, 5}, 1.0, 1.0), std::sqrt(2.0), 1e-14);
    EXPECT_NEAR(section({0, 0}, {-5, 5}, 1.0, 1.0), std::sqrt(2.0), 1e-14);
    EXPECT_NEAR(section({3, 4}, {6, 1}, 3.0, 4.0), 5.0, 1e-13);
}

TEST(PixelSection, LeavesThroughTheSideOrThroughTheTop) {
    // Shallow: 1 right and 1/2 up in a square pixel. Steep: 1/3 right and 1 up.
    EXPECT_NEAR(section({0, 0}, {4, 2}, 1.0, 1.0), std::sqrt(1.25), 1e-14);
    EXPECT_NEAR(section({0, 0}, {2, 6}, 1.0, 1.0), std::sqrt(1.0 + 1.0 / 9.0), 1e-14);
    // A pixel of 2 by 1 and the vector (2, 2): it crosses 1 by 1.
    EXPECT_NEAR(section({0, 0}, {1, 2}, 2.0, 1.0), std::sqrt(2.0), 1e-14);
}

TEST(PixelSection, DifferencesWrapAround) {
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    // The difference of the ends is -1 in 32 bits.
    EXPECT_NEAR(section({kMin, 0}, {kMax, 1}, 1.0, 1.0), std::sqrt(2.0), 1e-14);
    EXPECT_EQ(section({kMin, 0}, {kMax, 0}, 2.0, 5.0), 2.0);
}

}  // namespace
