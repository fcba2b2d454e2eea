// Rectangles of any orientation around runs of edges.
#include "polygon/oriented_box.h"

#include <gtest/gtest.h>

namespace {

using velquad::polygon::areApartBy;
using velquad::polygon::merged;
using velquad::polygon::OrientedBox;
using velquad::polygon::unitVector;

OrientedBox bar(double x, double y) {
    return {{x, y}, {1.0, 0.0}, 1000.0, 1.0};
}

TEST(OrientedBox, AxisIsOfLengthOneForVectorsWhoseSquareLosesDigits) {
    // The square of 3e-162 is rounded to two units of the smallest double, whose root is 3.14e-162.
    for (const double size : {0.0, 5e-324, 3e-162, 1e-160, 1e-140, 1.0, 1e100}) {
        const tagPOINT2D axis = unitVector({0.0, size});
        EXPECT_DOUBLE_EQ(axis.x * axis.x + axis.y * axis.y, 1.0) << size;
    }
}

TEST(OrientedBox, OfTwoBoxesWithAlmostOneCenterCoversBoth) {
    const OrientedBox both = merged(bar(0.0, 0.0), bar(3e-162, 0.0));
    EXPECT_GE(both.halfLength, 1000.0);
    EXPECT_GE(both.halfWidth, 1.0);
    const OrientedBox atItsEnd{{1001.0, 0.0}, {0.0, 1.0}, 1.0, 1.0};
    EXPECT_FALSE(areApartBy(0.0, both, atItsEnd)) << "they touch";
    EXPECT_TRUE(areApartBy(0.0, both, {{1003.0, 0.0}, {0.0, 1.0}, 1.0, 1.0}));
}

}  // namespace
