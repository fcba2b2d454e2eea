#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr double kSentinel = 1.7976931348623157e308;

void expectPoint(const tagPOINT3D& point, double x, double y, double z) {
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
    EXPECT_EQ(point.z, z);
}

}  // namespace

TEST(MatCalcDistanceToPlane, FindsTheFootForANormalOfAnyLength) {
    const tagPOINT3D point{1, 2, 5};
    const tagPOINT3D planePoint{7, 8, 2};
    for (const double length : {1.0, -1.0, 4.0, 0.25}) {
        const tagPOINT3D normal{0, 0, length};
        tagPOINT3D foot{-77, -77, -77};
        EXPECT_EQ(matCalcDistanceToPlane(&point, &planePoint, &normal, &foot, 0), 3.0);
        expectPoint(foot, 1, 2, 2);
        EXPECT_EQ(matCalcDistanceToPlane(&point, &planePoint, &normal, nullptr, 1), 9.0);
    }
    const tagPOINT3D slanted{2, 3, 6};
    const tagPOINT3D origin{0, 0, 0};
    const tagPOINT3D above{4, 6, 12};
    tagPOINT3D foot{-77, -77, -77};
    EXPECT_EQ(matCalcDistanceToPlane(&above, &origin, &slanted, &foot, 0), 14.0);
    expectPoint(foot, 0, 0, 0);
}

TEST(MatCalcDistanceToPlane, GivesZeroOnThePlane) {
    const tagPOINT3D point{1, 2, 3};
    const tagPOINT3D planePoint{-4, 9, 3};
    const tagPOINT3D normal{0, 0, 2};
    tagPOINT3D foot{-77, -77, -77};
    EXPECT_EQ(matCalcDistanceToPlane(&point, &planePoint, &normal, &foot, 0), 0.0);
    expectPoint(foot, 1, 2, 3);
}

TEST(MatCalcDistanceToPlane, FailsForANormalWithoutLength) {
    const tagPOINT3D point{1, 2, 3};
    const tagPOINT3D planePoint{0, 0, 0};
    const tagPOINT3D none{0, 0, 0};
    tagPOINT3D foot{-77, -77, -77};
    EXPECT_EQ(matCalcDistanceToPlane(&point, &planePoint, &none, &foot, 0), kSentinel);
    EXPECT_EQ(matCalcDistanceToPlane(&point, &planePoint, &none, &foot, 1), kSentinel);
    expectPoint(foot, -77, -77, -77);
    const tagPOINT3D tiny{0, 0, 1e-20};
    const double squaredLength = 1e-20 * 1e-20;
    EXPECT_EQ(matCalcDistanceToPlane(&point, &planePoint, &tiny, &foot, 0) == kSentinel,
              1e-40 > squaredLength);
}

TEST(MatCalcDirectedDistanceToPlane, FailsForADirectionWithinThePlane) {
    const tagPOINT3D point{1, 2, 5};
    const tagPOINT3D planePoint{0, 0, 0};
    const tagPOINT3D normal{0, 0, 1};
    const tagPOINT3D within{1, 1, 0};
    tagPOINT3D foot{-77, -77, -77};
    for (const int isSquared : {0, 1}) {
        EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &within, &planePoint, &normal, &foot, isSquared),
                  kSentinel);
    }
    expectPoint(foot, -77, -77, -77);
}

TEST(MatCalcDirectedDistanceToPlane, ComparesTheDenominatorWithTheTolerance) {
    const tagPOINT3D point{0, 0, 1};
    const tagPOINT3D planePoint{0, 0, 0};
    const tagPOINT3D normal{0, 0, 1};
    tagPOINT3D direction{0, 0, std::nextafter(1e-40, 0.0)};
    EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &direction, &planePoint, &normal, nullptr, 0),
              kSentinel);
    direction.z = 1e-40;
    EXPECT_NEAR(matCalcDirectedDistanceToPlane(&point, &direction, &planePoint, &normal, nullptr, 0), 1e40,
                1e25);
    direction.z = std::nextafter(1e-40, 1.0);
    EXPECT_NEAR(matCalcDirectedDistanceToPlane(&point, &direction, &planePoint, &normal, nullptr, 0), 1e40,
                1e25);
    direction.z = -std::nextafter(1e-40, 0.0);
    EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &direction, &planePoint, &normal, nullptr, 0),
              kSentinel);
}

TEST(MatCalcDirectedDistanceToPlane, StepsAlongTheNormal) {
    const tagPOINT3D point{1, 2, 6};
    const tagPOINT3D planePoint{0, 0, 0};
    const tagPOINT3D normal{0, 0, 1};
    const tagPOINT3D slanted{5, 0, 2};
    tagPOINT3D foot{-77, -77, -77};
    // The step is -6 / 2 times the normal: it ends off the plane, and x and y stay.
    EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &slanted, &planePoint, &normal, &foot, 0), 3.0);
    expectPoint(foot, 1, 2, 3);
    EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &slanted, &planePoint, &normal, &foot, 1), 9.0);
    // A direction along the normal of another length still scales the step.
    const tagPOINT3D along{0, 0, -3};
    EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &along, &planePoint, &normal, &foot, 0), 2.0);
    expectPoint(foot, 1, 2, 8);
}

TEST(MatCalcDirectedDistanceToPlane, SumsTheDenominatorWithZLast) {
    const tagPOINT3D point{0, 0, 0};
    const tagPOINT3D planePoint{0, 0, 0};
    const tagPOINT3D direction{1, 1, 1};
    // In this order 1e16 - 1e16 leaves the last term; 1.0 would be lost beside 1e16.
    const tagPOINT3D kept{1e16, -1e16, 1.0};
    EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &direction, &planePoint, &kept, nullptr, 0), 0.0);
    const tagPOINT3D lost{1e16, 1.0, -1e16};
    EXPECT_EQ(matCalcDirectedDistanceToPlane(&point, &direction, &planePoint, &lost, nullptr, 0), kSentinel);
}

TEST(MatCalcDistanceToPlane, LeadsToAPointOfThePlane) {
    std::mt19937 random(4110);
    std::uniform_real_distribution<double> coordinates(-10.0, 10.0);
    for (int i = 0; i < 10000; ++i) {
        const tagPOINT3D point{coordinates(random), coordinates(random), coordinates(random)};
        const tagPOINT3D plane{coordinates(random), coordinates(random), coordinates(random)};
        const tagPOINT3D n{coordinates(random), coordinates(random), coordinates(random)};
        SCOPED_TRACE(testing::Message() << "pair " << i);
        const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
        if (length < 0.1) continue;
        tagPOINT3D foot{};
        const double distance = matCalcDistanceToPlane(&point, &plane, &n, &foot, 0);
        const double offset = n.x * (foot.x - plane.x) + n.y * (foot.y - plane.y) + n.z * (foot.z - plane.z);
        ASSERT_NEAR(offset / length, 0.0, 1e-10);
        const double height =
            n.x * (point.x - plane.x) + n.y * (point.y - plane.y) + n.z * (point.z - plane.z);
        ASSERT_NEAR(distance, std::fabs(height) / length, 1e-10);
        ASSERT_EQ(distance, matCalcDirectedDistanceToPlane(&point, &n, &plane, &n, nullptr, 0));
    }
}
