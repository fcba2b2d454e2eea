#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "velquad/geometry.h"

namespace {

using Cuboid = std::array<double, 6>;

constexpr double kUnset = 3.4028234663852886e38;

TEST(Cuboid, InitStoresSixValuesInOrder) {
    Cuboid cuboid{};
    EXPECT_TRUE(matInitCuboid(cuboid.data(), 1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
    EXPECT_EQ(cuboid, (Cuboid{1.0, 2.0, 3.0, 4.0, 5.0, 6.0}));
    EXPECT_FALSE(matInitCuboid(nullptr, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
}

TEST(Cuboid, MinimumCuboidHoldsNothing) {
    Cuboid cuboid{};
    EXPECT_TRUE(matSetMinimumCuboid(cuboid.data()));
    EXPECT_EQ(cuboid, (Cuboid{kUnset, -kUnset, kUnset, -kUnset, kUnset, -kUnset}));
    EXPECT_FALSE(matSetMinimumCuboid(nullptr));
}

TEST(Cuboid, FirstPointSetsAllSides) {
    Cuboid cuboid{};
    const tagPOINT3D point{1.0, -2.0, 3.0};
    matSetMinimumCuboid(cuboid.data());
    EXPECT_TRUE(matGetBoundingCuboid(cuboid.data(), &point));
    EXPECT_EQ(cuboid, (Cuboid{1.0, 1.0, -2.0, -2.0, 3.0, 3.0}));
}

TEST(Cuboid, PointWidensOnlyTheSidesItPasses) {
    Cuboid cuboid{0.0, 1.0, 0.0, 1.0, 0.0, 1.0};
    const tagPOINT3D inside{0.5, 0.0, 1.0};
    EXPECT_TRUE(matGetBoundingCuboid(cuboid.data(), &inside));
    EXPECT_EQ(cuboid, (Cuboid{0.0, 1.0, 0.0, 1.0, 0.0, 1.0}));
    const tagPOINT3D outside{-1.0, 0.5, 7.0};
    EXPECT_TRUE(matGetBoundingCuboid(cuboid.data(), &outside));
    EXPECT_EQ(cuboid, (Cuboid{-1.0, 1.0, 0.0, 1.0, 0.0, 7.0}));
    const tagPOINT3D above{0.0, 2.0, -3.0};
    EXPECT_TRUE(matGetBoundingCuboid(cuboid.data(), &above));
    EXPECT_EQ(cuboid, (Cuboid{-1.0, 1.0, 0.0, 2.0, -3.0, 7.0}));
}

TEST(Cuboid, NotANumberWidensNothing) {
    Cuboid cuboid{0.0, 1.0, 0.0, 1.0, 0.0, 1.0};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const tagPOINT3D point{nan, nan, 2.0};
    EXPECT_TRUE(matGetBoundingCuboid(cuboid.data(), &point));
    EXPECT_EQ(cuboid, (Cuboid{0.0, 1.0, 0.0, 1.0, 0.0, 2.0}));
}

TEST(Cuboid, NullPointersLeaveTheCuboid) {
    Cuboid cuboid{0.0, 1.0, 0.0, 1.0, 0.0, 1.0};
    const tagPOINT3D point{5.0, 5.0, 5.0};
    EXPECT_FALSE(matGetBoundingCuboid(cuboid.data(), nullptr));
    EXPECT_FALSE(matGetBoundingCuboid(nullptr, &point));
    EXPECT_FALSE(matMergeCuboids(cuboid.data(), nullptr, cuboid.data()));
    EXPECT_FALSE(matMergeCuboids(cuboid.data(), cuboid.data(), nullptr));
    EXPECT_FALSE(matMergeCuboids(nullptr, cuboid.data(), cuboid.data()));
    EXPECT_EQ(cuboid, (Cuboid{0.0, 1.0, 0.0, 1.0, 0.0, 1.0}));
}

TEST(Cuboid, MergeHoldsBoth) {
    const Cuboid a{0.0, 1.0, 5.0, 6.0, -3.0, 3.0};
    const Cuboid b{-1.0, 0.5, 5.5, 9.0, -2.0, 2.0};
    const Cuboid both{-1.0, 1.0, 5.0, 9.0, -3.0, 3.0};
    Cuboid out{};
    EXPECT_TRUE(matMergeCuboids(out.data(), a.data(), b.data()));
    EXPECT_EQ(out, both);
    EXPECT_TRUE(matMergeCuboids(out.data(), b.data(), a.data()));
    EXPECT_EQ(out, both);
}

TEST(Cuboid, MergeMayWriteToAnInput) {
    Cuboid a{0.0, 1.0, 5.0, 6.0, -3.0, 3.0};
    Cuboid b{-1.0, 0.5, 5.5, 9.0, -2.0, 2.0};
    const Cuboid both{-1.0, 1.0, 5.0, 9.0, -3.0, 3.0};
    Cuboid first = a;
    EXPECT_TRUE(matMergeCuboids(first.data(), first.data(), b.data()));
    EXPECT_EQ(first, both);
    EXPECT_TRUE(matMergeCuboids(b.data(), a.data(), b.data()));
    EXPECT_EQ(b, both);
}

TEST(Cuboid, MergeWithTheMinimumCuboidChangesNothing) {
    const Cuboid a{0.0, 1.0, 5.0, 6.0, -3.0, 3.0};
    Cuboid nothing{};
    matSetMinimumCuboid(nothing.data());
    Cuboid out{};
    EXPECT_TRUE(matMergeCuboids(out.data(), nothing.data(), a.data()));
    EXPECT_EQ(out, a);
}

}  // namespace
