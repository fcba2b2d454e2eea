#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "frame/rounding.h"
#include "velquad/frame.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kSmallest = std::numeric_limits<int>::min();
constexpr int kLargest = std::numeric_limits<int>::max();

int sameVector2D(double ax, double ay, double bx, double by) {
    const tagPOINT2D a{ax, ay};
    const tagPOINT2D b{bx, by};
    return matSameVector2D(&a, &b);
}

int sameVector3D(tagPOINT3D a, tagPOINT3D b) {
    return matSameVector3D(&a, &b);
}

}  // namespace

TEST(MatIsEqual, FailsWhenTheDifferenceRoundsUpToTheTolerance) {
    EXPECT_EQ(matIsEqual(1.0, 1.04, 1), 1);
    EXPECT_EQ(matIsEqual(1.0, 1.06, 1), 0);
    EXPECT_EQ(matIsEqual(1.06, 1.0, 1), 0);
}

TEST(MatIsEqual, ComparesWholeNumbersAtZeroDecimals) {
    EXPECT_EQ(matIsEqual(7.0, 7.25, 0), 1);
    // 0.5 rounds to 1, which is the tolerance.
    EXPECT_EQ(matIsEqual(7.0, 7.5, 0), 0);
    EXPECT_EQ(matIsEqual(7.0, 7.4375, 0), 1);
}

TEST(MatIsEqual, HoldsForEqualNumbersAtEveryNumberOfDecimals) {
    for (unsigned int decimals = 0; decimals <= 300; decimals += 10)
        EXPECT_EQ(matIsEqual(0.1, 0.1, decimals), 1);
}

TEST(MatIsEqual, TakesTheNumberOfDecimalsAsASignedInteger) {
    // 0xFFFFFFFF is -1: the tolerance is 10, and 4 rounded to tens is 0.
    EXPECT_EQ(matIsEqual(0.0, 4.0, 0xFFFFFFFFu), 1);
    EXPECT_EQ(matIsEqual(0.0, 6.0, 0xFFFFFFFFu), 0);
}

TEST(MatIsEqual, RefusesWhatIsNotANumber) {
    EXPECT_EQ(matIsEqual(kNan, 1.0, 2), 0);
    EXPECT_EQ(matIsEqual(kInfinity, kInfinity, 2), 0);
    EXPECT_EQ(matIsEqual(kInfinity, 1.0, 2), 0);
}

TEST(MatRoundToDecimals, RoundsHalvesAwayFromZeroAtTheGuardDigit) {
    using velquad::frame::matRoundToDecimals;
    EXPECT_EQ(matRoundToDecimals(2.5, 0, 1), 3.0);
    EXPECT_EQ(matRoundToDecimals(-2.5, 0, 1), -3.0);
    EXPECT_EQ(matRoundToDecimals(0.0625, 1, 1), 0.1);
    EXPECT_EQ(matRoundToDecimals(0.03125, 1, 1), 0.0);
    EXPECT_FALSE(std::signbit(matRoundToDecimals(0.0, 1, 1)));
}

TEST(MatRoundToDecimals, AddsFiveForEveryGuardDigit) {
    using velquad::frame::matRoundToDecimals;
    // 2.4453125 * 100 = 244.53125; + 5 + 50 = 299.53125; / 100 cut to 2.
    EXPECT_EQ(matRoundToDecimals(2.4453125, 0, 2), 2.0);
    // 2.453125 * 100 = 245.3125; + 55 = 300.3125; / 100 cut to 3.
    EXPECT_EQ(matRoundToDecimals(2.453125, 0, 2), 3.0);
}

TEST(MatRoundToDecimals, LeavesAloneWhatScalingWouldOverflow) {
    using velquad::frame::matRoundToDecimals;
    EXPECT_EQ(matRoundToDecimals(1.7976931348623157e308, 0, 1), 1.7976931348623157e308);
    EXPECT_EQ(matRoundToDecimals(1.5e307, 1, 1), 1.5e307);
}

TEST(MatSamePoint, ComparesBothCoordinates) {
    const tagPOINT a{3, -4};
    const tagPOINT b{3, -4};
    const tagPOINT otherX{4, -4};
    const tagPOINT otherY{3, 4};
    EXPECT_EQ(matSamePoint(&a, &b), 1);
    EXPECT_EQ(matSamePoint(&a, &otherX), 0);
    EXPECT_EQ(matSamePoint(&a, &otherY), 0);
}

TEST(MatSameVector2L, IsExactEqualityUpToTheEndsOfTheRange) {
    const tagPOINT a{kSmallest, kLargest};
    const tagPOINT b{kSmallest, kLargest};
    const tagPOINT wrapped{kLargest, kLargest};
    EXPECT_EQ(matSameVector2L(&a, &b), 1);
    // The difference wraps to -1, which is not small.
    EXPECT_EQ(matSameVector2L(&a, &wrapped), 0);
}

TEST(MatSameVector3L, ComparesAllThreeCoordinates) {
    const int a[] = {1, 2, 3};
    EXPECT_EQ(matSameVector3L(a, a), 1);
    for (int axis = 0; axis < 3; ++axis) {
        int b[] = {1, 2, 3};
        ++b[axis];
        EXPECT_EQ(matSameVector3L(a, b), 0) << axis;
    }
}

TEST(MatSameVector2D, TellsApartWhatDiffersInTheLastBits) {
    EXPECT_EQ(sameVector2D(1.0, 2.0, 1.0, 2.0 + 1e-15), 0);
    EXPECT_EQ(sameVector2D(1.0, 2.0, 1.0, 2.0), 1);
    EXPECT_EQ(sameVector2D(1.0, 2.0, 1.0000000000000002, 2.0), 0);
}

TEST(MatSameVector2D, TakesTinyVectorsAsNull) {
    EXPECT_EQ(sameVector2D(0.0, 0.0, 1e-41, 0.0), 1);
    EXPECT_EQ(sameVector2D(0.0, 0.0, 9.999e-41, 0.0), 1);
    EXPECT_EQ(sameVector2D(0.0, 0.0, 1e-40, 0.0), 0);
    EXPECT_EQ(sameVector2D(0.0, 0.0, 0.0, 1e-40), 0);
    EXPECT_EQ(sameVector2D(0.0, 0.0, -1.0, 0.0), 0);
    // A difference below the tolerance decides alone, however large a part of the vector it is.
    EXPECT_EQ(sameVector2D(2e-40, 0.0, 2.9e-40, 0.0), 1);
    EXPECT_EQ(sameVector2D(2e-40, 0.0, 3.1e-40, 0.0), 0);
}

TEST(MatSameVector2D, TakesTwoNullVectorsAsTheSameThoughTheirDifferenceIsNotNull) {
    EXPECT_EQ(sameVector2D(9e-41, 0.0, -9e-41, 0.0), 1);
    EXPECT_EQ(sameVector2D(0.0, -9e-41, 0.0, 9e-41), 1);
    EXPECT_EQ(sameVector2D(9e-41, 0.0, -1e-40, 0.0), 0);
    EXPECT_EQ(sameVector2D(0.0, 9e-41, 0.0, -1e-40), 0);
    EXPECT_EQ(sameVector3D({0.0, 0.0, 9e-41}, {0.0, 0.0, -9e-41}), 1);
    // A first vector of exactly the tolerance is not null: the difference is all of it.
    EXPECT_EQ(sameVector2D(1e-40, 0.0, 0.0, 0.0), 0);
    EXPECT_EQ(sameVector2D(0.0, 1e-40, 0.0, 0.0), 0);
}

TEST(MatSameVector2D, IsRelativeToTheFirstVector) {
    // The difference 1e10 is below 1e-40 of 1e300 only if the quotient underflows to it: 1e-290 does.
    EXPECT_EQ(sameVector2D(1e300, 0.0, 1e300, 1e10), 1);
    EXPECT_EQ(sameVector2D(0.0, -1e300, 1e10, -1e300), 1);
    EXPECT_EQ(sameVector3D({0.0, 0.0, 1e300}, {1e10, 0.0, 1e300}), 1);
    EXPECT_EQ(sameVector2D(1.0, 0.0, 1.0, 1e-39), 0);
    EXPECT_EQ(sameVector2D(1.0, 0.0, 1.0, 9e-41), 1);
}

TEST(MatSameVector2D, RefusesWhatIsNotANumber) {
    EXPECT_EQ(sameVector2D(kNan, 1.0, kNan, 1.0), 0);
    EXPECT_EQ(sameVector2D(1.0, kNan, 1.0, kNan), 0);
    EXPECT_EQ(sameVector2D(1.0, 1.0, 1.0, kNan), 0);
    EXPECT_EQ(sameVector2D(kInfinity, 1.0, kInfinity, 1.0), 0);
}

TEST(MatSameVector3D, LooksAtEveryCoordinate) {
    EXPECT_EQ(sameVector3D({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}), 1);
    EXPECT_EQ(sameVector3D({1.0, 2.0, 3.0}, {1.5, 2.0, 3.0}), 0);
    EXPECT_EQ(sameVector3D({1.0, 2.0, 3.0}, {1.0, 2.5, 3.0}), 0);
    EXPECT_EQ(sameVector3D({1.0, 2.0, 3.0}, {1.0, 2.0, 3.5}), 0);
    EXPECT_EQ(sameVector3D({0.0, 0.0, 0.0}, {0.0, 0.0, 1e-41}), 1);
    EXPECT_EQ(sameVector3D({0.0, 0.0, 0.0}, {0.0, 0.0, 1e-39}), 0);
}
