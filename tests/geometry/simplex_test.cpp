#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

double area2P(tagPOINT p0, tagPOINT p1, tagPOINT p2) {
    return matCalcSignedAreaOfTriangle2P(&p0, &p1, &p2);
}
double area2D(tagPOINT2D p0, tagPOINT2D p1, tagPOINT2D p2) {
    return matCalcSignedAreaOfTriangle2D(&p0, &p1, &p2);
}
double area3D(tagPOINT3D p0, tagPOINT3D p1, tagPOINT3D p2) {
    return matCalcUnsignedAreaOfTriangle(&p0, &p1, &p2);
}
double volume(tagPOINT3D p0, tagPOINT3D p1, tagPOINT3D p2, tagPOINT3D p3) {
    return matCalcSignedVolumeOfTetrahedron(&p0, &p1, &p2, &p3);
}

TEST(SignedAreaOfTriangle, IsPositiveForCounterClockwiseCorners) {
    EXPECT_EQ(area2P({0, 0}, {4, 0}, {0, 3}), 6.0);
    EXPECT_EQ(area2P({10, 10}, {11, 10}, {11, 11}), 0.5);
    EXPECT_EQ(area2D({0.0, 0.0}, {4.0, 0.0}, {0.0, 3.5}), 7.0);
}

TEST(SignedAreaOfTriangle, ChangesSignWhenTwoCornersChangePlaces) {
    EXPECT_EQ(area2P({0, 0}, {0, 3}, {4, 0}), -6.0);
    EXPECT_EQ(area2P({4, 0}, {0, 0}, {0, 3}), -6.0);
    EXPECT_EQ(area2P({0, 3}, {4, 0}, {0, 0}), -6.0);
    EXPECT_EQ(area2D({0.0, 0.0}, {0.0, 3.5}, {4.0, 0.0}), -7.0);
    EXPECT_EQ(area2D({4.0, 0.0}, {0.0, 0.0}, {0.0, 3.5}), -7.0);
    EXPECT_EQ(area2D({0.0, 3.5}, {4.0, 0.0}, {0.0, 0.0}), -7.0);
}

TEST(SignedAreaOfTriangle, OfCollinearCornersIsZero) {
    EXPECT_EQ(area2P({1, 1}, {2, 2}, {9, 9}), 0.0);
    EXPECT_EQ(area2P({1, 1}, {1, 1}, {1, 1}), 0.0);
    EXPECT_EQ(area2D({1.0, 1.0}, {2.0, 2.0}, {9.0, 9.0}), 0.0);
}

TEST(SignedAreaOfTriangle, WrapsAroundAt32Bits) {
    EXPECT_EQ(area2P({0, 0}, {65536, 0}, {0, 65536}), 0.0);
    EXPECT_EQ(area2P({0, 0}, {65536, 0}, {0, 32768}), -1073741824.0);
    EXPECT_EQ(area2P({0, 0}, {46341, 0}, {0, 46341}), -1073739507.5);
}

TEST(SignedAreaOfTriangle, AgreesWithWideIntegersWhereNothingWraps) {
    constexpr std::uint32_t kSeed = 41;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<int> coordinate(-10000, 10000);
    for (int i = 0; i < 20000; ++i) {
        const tagPOINT p0{coordinate(random), coordinate(random)};
        const tagPOINT p1{coordinate(random), coordinate(random)};
        const tagPOINT p2{coordinate(random), coordinate(random)};
        const std::int64_t twice = (std::int64_t{p1.x} - p0.x) * (std::int64_t{p2.y} - p0.y) -
                                   (std::int64_t{p2.x} - p0.x) * (std::int64_t{p1.y} - p0.y);
        ASSERT_EQ(area2P(p0, p1, p2), static_cast<double>(twice) / 2.0);
    }
}

TEST(SignedAreaOfTriangle, AgreesWithWrappedIntegersEverywhere) {
    constexpr std::uint32_t kSeed = 42;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<int> coordinate(kMin, kMax);
    const auto low = [](std::int64_t value) { return static_cast<std::uint32_t>(value); };
    for (int i = 0; i < 20000; ++i) {
        const tagPOINT p[] = {{coordinate(random), coordinate(random)},
                              {coordinate(random), coordinate(random)},
                              {coordinate(random), coordinate(random)}};
        const std::uint32_t x0 = low(p[0].x), y0 = low(p[0].y), x1 = low(p[1].x), y1 = low(p[1].y);
        const std::uint32_t x2 = low(p[2].x), y2 = low(p[2].y);
        // The cross product of two edges is the same sum modulo 2^32.
        const std::uint32_t twice = (x1 - x0) * (y2 - y0) - (x2 - x0) * (y1 - y0);
        ASSERT_EQ(area2P(p[0], p[1], p[2]), static_cast<std::int32_t>(twice) * 0.5);
    }
}

TEST(SignedAreaOfTriangle2D, SumsTrapezoidsInAFixedOrder) {
    EXPECT_EQ(area2D({0.1, 0.2}, {0.3, 0.7}, {0.9, 0.4}), -0.18);
}

TEST(UnsignedAreaOfTriangle, IsHalfTheLengthOfTheProduct) {
    EXPECT_EQ(area3D({0.0, 0.0, 0.0}, {4.0, 0.0, 0.0}, {0.0, 3.0, 0.0}), 6.0);
    EXPECT_EQ(area3D({0.0, 0.0, 0.0}, {0.0, 3.0, 0.0}, {4.0, 0.0, 0.0}), 6.0);
    EXPECT_EQ(area3D({1.0, 1.0, 1.0}, {1.0, 3.0, 1.0}, {1.0, 1.0, 6.0}), 5.0);
    EXPECT_EQ(area3D({1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}, {5.0, 5.0, 5.0}), 0.0);
    EXPECT_NEAR(area3D({1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}), std::sqrt(3.0) / 2.0, 1e-15);
}

TEST(SignedVolumeOfTetrahedron, IsPositiveForARightHandedSystem) {
    EXPECT_EQ(volume({0.0, 0.0, 0.0}, {6.0, 0.0, 0.0}, {0.0, 2.0, 0.0}, {0.0, 0.0, 5.0}), 10.0);
    EXPECT_EQ(volume({1.0, 2.0, 3.0}, {7.0, 2.0, 3.0}, {1.0, 4.0, 3.0}, {1.0, 2.0, 8.0}), 10.0);
}

TEST(SignedVolumeOfTetrahedron, ChangesSignWhenTwoCornersChangePlaces) {
    const tagPOINT3D a{0.0, 0.0, 0.0}, b{6.0, 0.0, 0.0}, c{0.0, 2.0, 0.0}, d{0.0, 0.0, 5.0};
    EXPECT_EQ(volume(b, a, c, d), -10.0);
    EXPECT_EQ(volume(c, b, a, d), -10.0);
    EXPECT_EQ(volume(d, b, c, a), -10.0);
    EXPECT_EQ(volume(a, c, b, d), -10.0);
    EXPECT_EQ(volume(a, d, c, b), -10.0);
    EXPECT_EQ(volume(a, b, d, c), -10.0);
    EXPECT_EQ(volume(a, b, c, {3.0, 1.0, 0.0}), 0.0);
}

double sphere(tagPOINT3D p0, tagPOINT3D p1, tagPOINT3D p2, tagPOINT3D p3, tagPOINT3D* center, int isSquared) {
    return matCalcCenterOfTetrahedron(&p0, &p1, &p2, &p3, center, isSquared);
}

TEST(CenterOfTetrahedron, IsTheCentreOfTheSphereThroughTheCorners) {
    tagPOINT3D center{};
    // Corner of a box of 2 by 4 by 4: the centre is the box's, the radius half its diagonal of 6.
    EXPECT_EQ(sphere({1.0, 1.0, 1.0}, {3.0, 1.0, 1.0}, {1.0, 5.0, 1.0}, {1.0, 1.0, 5.0}, &center, 0), 3.0);
    EXPECT_EQ(center.x, 2.0);
    EXPECT_EQ(center.y, 3.0);
    EXPECT_EQ(center.z, 3.0);
    EXPECT_EQ(sphere({1.0, 1.0, 1.0}, {3.0, 1.0, 1.0}, {1.0, 5.0, 1.0}, {1.0, 1.0, 5.0}, &center, 1), 9.0);
    EXPECT_EQ(sphere({1.0, 1.0, 1.0}, {3.0, 1.0, 1.0}, {1.0, 5.0, 1.0}, {1.0, 1.0, 5.0}, nullptr, -1), 9.0);
    EXPECT_EQ(sphere({1.0, 1.0, 1.0}, {1.0, 5.0, 1.0}, {3.0, 1.0, 1.0}, {1.0, 1.0, 5.0}, nullptr, 0), 3.0);
}

TEST(CenterOfTetrahedron, OfAFlatTetrahedronIsItsSecondCorner) {
    tagPOINT3D center{};
    EXPECT_EQ(sphere({0.0, 0.0, 0.0}, {1.0, 2.0, 0.0}, {0.0, 1.0, 0.0}, {4.0, 1.0, 0.0}, &center, 0), 0.0);
    EXPECT_EQ(center.x, 1.0);
    EXPECT_EQ(center.y, 2.0);
    EXPECT_EQ(center.z, 0.0);
    EXPECT_EQ(sphere({0.0, 0.0, 0.0}, {1.0, 2.0, 0.0}, {0.0, 1.0, 0.0}, {4.0, 1.0, 0.0}, nullptr, 1), 0.0);
}

TEST(CenterOfTetrahedron, IsFlatBelowTwiceADeterminantOf1eMinus20) {
    tagPOINT3D center{};
    const double half = 0.5e-20;
    const double below = std::nextafter(half, 0.0);
    sphere({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, half}, &center, 0);
    EXPECT_EQ(center.x, 0.5);
    EXPECT_EQ(sphere({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, below}, &center, 0), 0.0);
    EXPECT_EQ(center.x, 1.0);
    EXPECT_EQ(sphere({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, -below}, nullptr, 0), 0.0);
}

TEST(CenterOfTetrahedron, IsEquallyFarFromAllCornersAndMeasuredToTheRoundedCentre) {
    constexpr std::uint32_t kSeed = 43;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> coordinate(-10.0, 10.0);
    for (int i = 0; i < 5000; ++i) {
        tagPOINT3D p[4];
        for (tagPOINT3D& corner : p)
            corner = {coordinate(random), coordinate(random), coordinate(random)};
        if (std::fabs(volume(p[0], p[1], p[2], p[3])) < 1.0) continue;
        tagPOINT3D center{};
        const double radius = sphere(p[0], p[1], p[2], p[3], &center, 0);
        const double dx = center.x - p[0].x, dy = center.y - p[0].y, dz = center.z - p[0].z;
        ASSERT_EQ(radius, std::sqrt(dx * dx + dy * dy + dz * dz));
        ASSERT_EQ(sphere(p[0], p[1], p[2], p[3], nullptr, 1), dx * dx + dy * dy + dz * dz);
        for (const tagPOINT3D& corner : p) {
            const double distance = std::hypot(center.x - corner.x, center.y - corner.y, center.z - corner.z);
            ASSERT_NEAR(distance, radius, 1e-8 * radius);
        }
    }
}

}  // namespace
