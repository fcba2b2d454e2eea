#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/statistics.h"

namespace {

constexpr double kRootHalf = 0.7071067811865476;

/// The outputs of a fit, with values that no fit gives.
struct Fit {
    tagPOINT2D centre{-71.0, -72.0};
    tagPOINT2D direction{-73.0, -74.0};
};

int fit(const std::vector<tagPOINT2D>& points, Fit& out) {
    return matFittingLineEx(points.data(), static_cast<unsigned int>(points.size()), &out.centre,
                            &out.direction);
}

/// |sin| of the angle between two unit vectors of either sign.
double deviation(const tagPOINT2D& a, const tagPOINT2D& b) {
    return std::fabs(a.x * b.y - a.y * b.x);
}

void expectUntouched(const Fit& out) {
    EXPECT_EQ(out.centre.x, -71.0);
    EXPECT_EQ(out.centre.y, -72.0);
    EXPECT_EQ(out.direction.x, -73.0);
    EXPECT_EQ(out.direction.y, -74.0);
}

}  // namespace

TEST(MatFittingLineEx, FollowsPointsOnTheDiagonal) {
    Fit out;
    EXPECT_EQ(fit({{-1.0, -1.0}, {0.0, 0.0}, {1.0, 1.0}, {4.0, 4.0}}, out), 1);
    EXPECT_EQ(out.centre.x, 1.0);
    EXPECT_EQ(out.centre.y, 1.0);
    EXPECT_NEAR(deviation(out.direction, {kRootHalf, kRootHalf}), 0.0, 1e-15);
    EXPECT_NEAR(std::hypot(out.direction.x, out.direction.y), 1.0, 1e-15);
}

TEST(MatFittingLineEx, FollowsTheAxesAndTheOtherDiagonal) {
    Fit out;
    EXPECT_EQ(fit({{0.0, 5.0}, {2.0, 5.0}, {7.0, 5.0}}, out), 1);
    EXPECT_EQ(out.centre.x, 3.0);
    EXPECT_EQ(out.centre.y, 5.0);
    EXPECT_EQ(std::fabs(out.direction.x), 1.0);
    EXPECT_EQ(out.direction.y, 0.0);
    EXPECT_EQ(fit({{5.0, 0.0}, {5.0, 2.0}, {5.0, 7.0}}, out), 1);
    EXPECT_EQ(out.direction.x, 0.0);
    EXPECT_EQ(std::fabs(out.direction.y), 1.0);
    EXPECT_EQ(fit({{0.0, 3.0}, {1.0, 2.0}, {3.0, 0.0}}, out), 1);
    EXPECT_NEAR(deviation(out.direction, {kRootHalf, -kRootHalf}), 0.0, 1e-15);
}

TEST(MatFittingLineEx, TakesTheAxisOfGreatestSpread) {
    // Corners of a rectangle of 8 by 2: the covariance is diagonal.
    Fit out;
    EXPECT_EQ(fit({{0.0, 0.0}, {8.0, 0.0}, {8.0, 2.0}, {0.0, 2.0}}, out), 1);
    EXPECT_EQ(out.centre.x, 4.0);
    EXPECT_EQ(out.centre.y, 1.0);
    EXPECT_EQ(std::fabs(out.direction.x), 1.0);
    EXPECT_EQ(std::fabs(out.direction.y), 0.0);
}

TEST(MatFittingLineEx, CentreIsTheSumDividedByTheCount) {
    // 49 * (1 / 49) is not 1, unlike 49 / 49.
    Fit out;
    EXPECT_EQ(fit(std::vector<tagPOINT2D>(49, tagPOINT2D{1.0, 2.0}), out), 1);
    EXPECT_EQ(out.centre.x, 1.0);
    EXPECT_EQ(out.centre.y, 2.0);
}

TEST(MatFittingLineEx, AgreesWithTheAngleOfThePrincipalAxis) {
    constexpr unsigned int kSeed = 6421;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    std::normal_distribution<double> normal;
    for (int round = 0; round < 200; ++round) {
        const double spread = 1.5 + static_cast<double>(random() % 10);
        const double tilt = static_cast<double>(random() % 628) * 0.01;
        std::vector<tagPOINT2D> points;
        for (int i = 0; i < 40; ++i) {
            const double along = spread * normal(random);
            const double across = normal(random);
            points.push_back({along * std::cos(tilt) - across * std::sin(tilt) + 5.0,
                              along * std::sin(tilt) + across * std::cos(tilt) - 7.0});
        }
        double mx = 0.0, my = 0.0, cxx = 0.0, cyy = 0.0, cxy = 0.0;
        for (const tagPOINT2D& p : points) {
            mx += p.x;
            my += p.y;
        }
        mx /= 40.0;
        my /= 40.0;
        for (const tagPOINT2D& p : points) {
            cxx += (p.x - mx) * (p.x - mx);
            cyy += (p.y - my) * (p.y - my);
            cxy += (p.x - mx) * (p.y - my);
        }
        const double angle = 0.5 * std::atan2(2.0 * cxy, cxx - cyy);
        Fit out;
        ASSERT_EQ(fit(points, out), 1);
        EXPECT_NEAR(out.centre.x, mx, 1e-13);
        EXPECT_NEAR(out.centre.y, my, 1e-13);
        EXPECT_NEAR(deviation(out.direction, {std::cos(angle), std::sin(angle)}), 0.0, 1e-12);
    }
}

TEST(MatFittingLineEx, CoincidentPointsGiveSomeUnitVector) {
    Fit out;
    EXPECT_EQ(fit({{3.0, 4.0}}, out), 1);
    EXPECT_EQ(out.centre.x, 3.0);
    EXPECT_EQ(out.centre.y, 4.0);
    // The null matrix decomposes into unit vectors, and the second one counts.
    EXPECT_EQ(out.direction.x, 0.0);
    EXPECT_EQ(out.direction.y, 1.0);
}

TEST(MatFittingLineEx, NoPointsAndPointsThatAreNotFiniteGiveNotANumbers) {
    const tagPOINT2D unused{};
    Fit out;
    EXPECT_EQ(matFittingLineEx(&unused, 0, &out.centre, &out.direction), 1);
    EXPECT_TRUE(std::isnan(out.centre.x));
    EXPECT_TRUE(std::isnan(out.centre.y));
    EXPECT_TRUE(std::isnan(out.direction.x));
    EXPECT_TRUE(std::isnan(out.direction.y));
    EXPECT_EQ(fit({{0.0, 1.0}, {std::numeric_limits<double>::infinity(), 1.0}}, out), 1);
    EXPECT_EQ(out.centre.y, 1.0);
    EXPECT_TRUE(std::isnan(out.direction.x));
    EXPECT_TRUE(std::isnan(out.direction.y));
}

TEST(MatFittingLineEx, RefusesNullPointers) {
    const tagPOINT2D points[] = {{0.0, 0.0}, {1.0, 1.0}};
    Fit out;
    EXPECT_EQ(matFittingLineEx(nullptr, 2, &out.centre, &out.direction), 0);
    EXPECT_EQ(matFittingLineEx(points, 2, nullptr, &out.direction), 0);
    EXPECT_EQ(matFittingLineEx(points, 2, &out.centre, nullptr), 0);
    expectUntouched(out);
}

TEST(MatFittingLineEx, FailsWithoutMemoryAndWritesNothing) {
    const std::vector<tagPOINT2D> points{{0.0, 0.0}, {1.0, 1.0}, {2.0, 3.0}};
    EXPECT_GE(velquad::test::forEachFailingAllocation([&points] {
                  Fit out;
                  const bool hasFailed = fit(points, out) == 0;
                  if (hasFailed) expectUntouched(out);
                  return hasFailed;
              }),
              1U);
}
