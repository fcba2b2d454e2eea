#include "curves/vector.h"

#include <gtest/gtest.h>

#include <limits>

using namespace velquad::curves;

namespace {

TEST(Vector, MaxNormIsTheLargestMagnitude) {
    const double v[] = {1.0, -7.0, 3.0};
    EXPECT_EQ(maxNorm(v, 0), 0.0);
    EXPECT_EQ(maxNorm(v, 1), 1.0);
    EXPECT_EQ(maxNorm(v, 3), 7.0);
    const double unknown[] = {1.0, std::numeric_limits<double>::quiet_NaN(), 9.0};
    EXPECT_EQ(maxNorm(unknown, 1), 1.0);
    EXPECT_TRUE(std::isnan(maxNorm(unknown, 2)));
    EXPECT_TRUE(std::isnan(maxNorm(unknown, 3)));
}

TEST(Vector, ProductsAndSquares) {
    const double u[] = {1.0, 2.0, 3.0};
    const double v[] = {4.0, -5.0, 6.0};
    EXPECT_EQ(dotProduct(u, v, 3), 12.0);
    EXPECT_EQ(dotProduct(u, v, 2), -6.0);
    EXPECT_EQ(dotProduct(u, v, 0), 0.0);
    EXPECT_EQ(sumOfSquares(v, 3), 77.0);
}

TEST(Vector, CopyTouchesOnlyItsCoordinates) {
    const double u[] = {1.0, 2.0, 3.0};
    double v[] = {9.0, 9.0, 9.0};
    copyVector(v, u, 2);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], 2.0);
    EXPECT_EQ(v[2], 9.0);
}

TEST(Vector, UnitVectorDividesByTheLength) {
    const double v[] = {3.0, -4.0};
    double e[2];
    unitVector(v, e, 2);
    EXPECT_EQ(e[0], 3.0 / 5.0);
    EXPECT_EQ(e[1], -4.0 / 5.0);
}

TEST(Vector, UnitVectorLeavesWhatIsShorterThanEpsilon) {
    const double epsilon = std::numeric_limits<double>::epsilon();
    double e[2];
    const double atBound[] = {epsilon, 0.0};
    unitVector(atBound, e, 2);
    EXPECT_EQ(e[0], 1.0);
    const double below[] = {std::nextafter(epsilon, 0.0), 0.0};
    unitVector(below, e, 2);
    EXPECT_EQ(e[0], below[0]);
    const double null[] = {0.0, 0.0};
    unitVector(null, e, 2);
    EXPECT_EQ(e[0], 0.0);
}

TEST(Vector, SineInThePlaneIsTheCrossProduct) {
    const double u[] = {1.0, 0.0};
    const double v[] = {0.6, 0.8};
    const double down[] = {0.6, -0.8};
    EXPECT_EQ(sinOfAngle(u, v, 2), 0.8);
    EXPECT_EQ(sinOfAngle(u, down, 2), 0.8) << "never negative";
    EXPECT_EQ(sinOfAngle(u, u, 2), 0.0);
}

TEST(Vector, SineInSpaceComesFromTheCosine) {
    const double u[] = {1.0, 0.0, 0.0};
    const double v[] = {0.6, 0.0, 0.8};
    EXPECT_EQ(sinOfAngle(u, v, 3), std::sqrt(1.0 - 0.6 * 0.6));
    const double longer[] = {1.0000001, 0.0, 0.0};
    EXPECT_EQ(sinOfAngle(longer, longer, 3), 0.0) << "a cosine beyond 1 is no turn";
    const double unknown[] = {std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0};
    EXPECT_TRUE(std::isnan(sinOfAngle(u, unknown, 3)));
}

}  // namespace
