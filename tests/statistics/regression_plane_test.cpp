#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/frame.h"
#include "velquad/geometry.h"
#include "velquad/statistics.h"

using velquad::kNoValue;

namespace {

/// The outputs of a fit, with values that no fit gives.
struct Fit {
    tagPOINT3D centre{-71.0, -72.0, -73.0};
    tagPOINT3D normal{-74.0, -75.0, -76.0};
    double mean = -77.0;
    double deviation = -78.0;
};

int fit(const std::vector<tagPOINT3D>& points, Fit& out, const tagPOINT3D* scale = nullptr,
        const tagPOINT3D* direction = nullptr) {
    return matRegressionPlane(points.data(), static_cast<unsigned int>(points.size()), scale, &out.centre,
                              &out.normal, direction, &out.mean, &out.deviation);
}

void expectUntouched(const Fit& out) {
    EXPECT_EQ(out.centre.x, -71.0);
    EXPECT_EQ(out.centre.z, -73.0);
    EXPECT_EQ(out.normal.x, -74.0);
    EXPECT_EQ(out.normal.z, -76.0);
    EXPECT_EQ(out.mean, -77.0);
    EXPECT_EQ(out.deviation, -78.0);
}

tagPOINT3D random3D(std::mt19937_64& random, double spread) {
    std::uniform_real_distribution<double> coordinate(-spread, spread);
    const double x = coordinate(random);
    const double y = coordinate(random);
    return {x, y, coordinate(random)};
}

/// Points around a plane through `centre`, with heights above it.
std::vector<tagPOINT3D> tiltedCloud(std::mt19937_64& random, std::size_t count, const tagPOINT3D& normal,
                                    const tagPOINT3D& centre, double height) {
    std::vector<tagPOINT3D> points;
    std::normal_distribution<double> noise(0.0, height);
    for (std::size_t i = 0; i < count; ++i) {
        tagPOINT3D p = random3D(random, 10.0);
        const double off = p.x * normal.x + p.y * normal.y + p.z * normal.z - noise(random);
        points.push_back({p.x - off * normal.x + centre.x, p.y - off * normal.y + centre.y,
                          p.z - off * normal.z + centre.z});
    }
    return points;
}

double dot(const tagPOINT3D& a, const tagPOINT3D& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// Mean and deviation over single values, as a caller would gather them.
Fit gathered(const std::vector<tagPOINT3D>& points, const Fit& fitted, const tagPOINT3D& direction) {
    CMatMomentEvaluator moments;
    for (const tagPOINT3D& p : points)
        moments.AddValue(
            matCalcDirectedDistanceToPlane(&p, &direction, &fitted.centre, &fitted.normal, nullptr, 0));
    Fit result = fitted;
    result.mean = moments.GetMean();
    result.deviation = moments.GetStdDev();
    return result;
}

const std::vector<tagPOINT3D> kLevel{{0.0, 0.0, 5.0}, {4.0, 0.0, 5.0}, {0.0, 8.0, 5.0}, {4.0, 8.0, 5.0}};

/// The corners of a 4 by 8 rectangle, lifted and lowered by 1 in turn.
const std::vector<tagPOINT3D> kSaddle{{0.0, 0.0, 6.0}, {4.0, 0.0, 4.0}, {0.0, 8.0, 4.0}, {4.0, 8.0, 6.0}};

}  // namespace

TEST(MatRegressionPlane, PointsOfOneHeightLieInALevelPlane) {
    Fit out;
    EXPECT_EQ(fit(kLevel, out), 1);
    EXPECT_EQ(out.centre.x, 2.0);
    EXPECT_EQ(out.centre.y, 4.0);
    EXPECT_EQ(out.centre.z, 5.0);
    EXPECT_EQ(out.normal.x, 0.0);
    EXPECT_EQ(out.normal.y, 0.0);
    EXPECT_EQ(std::fabs(out.normal.z), 1.0);
    EXPECT_EQ(out.mean, 0.0);
    EXPECT_EQ(out.deviation, 0.0);
}

TEST(MatRegressionPlane, DistancesAreUnsigned) {
    Fit out;
    EXPECT_EQ(fit(kSaddle, out), 1);
    EXPECT_EQ(out.centre.z, 5.0);
    EXPECT_EQ(std::fabs(out.normal.z), 1.0);
    EXPECT_EQ(out.mean, 1.0) << "the signed mean would be 0";
    EXPECT_EQ(out.deviation, 0.0);
}

TEST(MatRegressionPlane, CentreIsTheSumTimesTheReciprocalOfTheCount) {
    // 49 * (1 / 49) is not 1.
    const std::vector<tagPOINT3D> points(49, tagPOINT3D{1.0, 2.0, 4.0});
    Fit out;
    EXPECT_EQ(fit(points, out), 1);
    EXPECT_EQ(out.centre.x, 0.99999999999999989);
    EXPECT_EQ(out.centre.y, 1.9999999999999998);
    EXPECT_EQ(out.centre.z, 3.9999999999999996);
}

TEST(MatRegressionPlane, OutputsAreOptional) {
    Fit out;
    EXPECT_EQ(matRegressionPlane(kSaddle.data(), 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(matRegressionPlane(kSaddle.data(), 4, nullptr, &out.centre, nullptr, nullptr, nullptr, nullptr),
              1);
    EXPECT_EQ(out.centre.z, 5.0);
    EXPECT_EQ(matRegressionPlane(kSaddle.data(), 4, nullptr, nullptr, &out.normal, nullptr, nullptr, nullptr),
              1);
    EXPECT_EQ(std::fabs(out.normal.z), 1.0);
    EXPECT_EQ(matRegressionPlane(kSaddle.data(), 4, nullptr, nullptr, nullptr, nullptr, &out.mean, nullptr),
              1);
    EXPECT_EQ(out.mean, 1.0);
    EXPECT_EQ(
        matRegressionPlane(kSaddle.data(), 4, nullptr, nullptr, nullptr, nullptr, nullptr, &out.deviation),
        1);
    EXPECT_EQ(out.deviation, 0.0);
    EXPECT_EQ(matRegressionPlane(nullptr, 4, nullptr, &out.centre, nullptr, nullptr, nullptr, nullptr), 0);
}

TEST(MatRegressionPlane, FindsTiltedPlanes) {
    constexpr unsigned int kSeed = 6431;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 100; ++round) {
        tagPOINT3D normal = random3D(random, 1.0);
        ASSERT_EQ(matNormalizeVector3D(&normal), 1);
        const tagPOINT3D centre = random3D(random, 100.0);
        const std::vector<tagPOINT3D> points = tiltedCloud(random, 60, normal, centre, 0.0);
        Fit out;
        ASSERT_EQ(fit(points, out), 1);
        EXPECT_NEAR(std::fabs(dot(out.normal, normal)), 1.0, 1e-13);
        EXPECT_NEAR(dot(out.normal, out.normal), 1.0, 1e-15);
        EXPECT_NEAR(out.mean, 0.0, 1e-12);
        EXPECT_NEAR(out.deviation, 0.0, 1e-12);
    }
}

TEST(MatRegressionPlane, NoOtherNormalGivesLessSpread) {
    constexpr unsigned int kSeed = 6432;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 50; ++round) {
        tagPOINT3D tilt = random3D(random, 1.0);
        ASSERT_EQ(matNormalizeVector3D(&tilt), 1);
        const std::vector<tagPOINT3D> points = tiltedCloud(random, 40, tilt, random3D(random, 9.0), 1.0);
        Fit out;
        ASSERT_EQ(fit(points, out), 1);
        const auto spread = [&](const tagPOINT3D& normal) {
            double sum = 0.0;
            for (const tagPOINT3D& p : points) {
                const tagPOINT3D d{p.x - out.centre.x, p.y - out.centre.y, p.z - out.centre.z};
                sum += dot(d, normal) * dot(d, normal);
            }
            return sum;
        };
        const double least = spread(out.normal);
        for (int trial = 0; trial < 40; ++trial) {
            const tagPOINT3D step = random3D(random, trial % 2 == 0 ? 0.01 : 1.0);
            tagPOINT3D other{out.normal.x + step.x, out.normal.y + step.y, out.normal.z + step.z};
            ASSERT_EQ(matNormalizeVector3D(&other), 1);
            EXPECT_GE(spread(other), least * (1.0 - 1e-12));
        }
    }
}

TEST(MatRegressionPlane, StatisticsAreThoseOfTheSingleDistancesToTheBit) {
    constexpr unsigned int kSeed = 6433;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (const std::size_t count : {1U, 2U, 3U, 255U, 256U, 257U, 1000U}) {
        SCOPED_TRACE(count);
        tagPOINT3D tilt = random3D(random, 1.0);
        ASSERT_EQ(matNormalizeVector3D(&tilt), 1);
        const std::vector<tagPOINT3D> points = tiltedCloud(random, count, tilt, {1.0, 2.0, 3.0}, 0.5);
        Fit out;
        ASSERT_EQ(fit(points, out), 1);
        const Fit along = gathered(points, out, out.normal);
        EXPECT_EQ(out.mean, along.mean);
        EXPECT_EQ(out.deviation, along.deviation);
        const tagPOINT3D direction{0.3, -1.0, 2.0};
        Fit oblique;
        ASSERT_EQ(fit(points, oblique, nullptr, &direction), 1);
        const Fit expected = gathered(points, oblique, direction);
        EXPECT_EQ(oblique.mean, expected.mean);
        EXPECT_EQ(oblique.deviation, expected.deviation);
    }
}

TEST(MatRegressionPlane, DistancesAreMeasuredAlongTheDirection) {
    const tagPOINT3D direction{0.0, 0.0, 2.0};
    Fit out;
    EXPECT_EQ(fit(kSaddle, out, nullptr, &direction), 1);
    // The step follows the normal and is divided by normal times direction, here 2.
    EXPECT_EQ(out.mean, 0.5);
    EXPECT_EQ(out.deviation, 0.0);
}

TEST(MatRegressionPlane, ADirectionWithinThePlaneHasNoDistances) {
    const tagPOINT3D direction{1.0, 0.0, 0.0};
    Fit out;
    EXPECT_EQ(fit(kLevel, out, nullptr, &direction), 1);
    EXPECT_EQ(std::fabs(out.normal.z), 1.0);
    EXPECT_EQ(out.mean, kNoValue);
    EXPECT_EQ(out.deviation, kNoValue);
}

TEST(MatRegressionPlane, ADirectionIsParallelBelowItsTolerance) {
    const tagPOINT3D within{1.0, 0.0, 0.99e-40};
    const tagPOINT3D at{1.0, 0.0, 1e-40};
    Fit out;
    EXPECT_EQ(fit(kLevel, out, nullptr, &within), 1);
    EXPECT_EQ(out.mean, kNoValue);
    EXPECT_EQ(fit(kLevel, out, nullptr, &at), 1);
    EXPECT_EQ(out.mean, 0.0);
}

TEST(MatRegressionPlane, AScaleOfOneIsNoScale) {
    constexpr unsigned int kSeed = 6434;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    const std::vector<tagPOINT3D> points = tiltedCloud(random, 30, {0.6, 0.0, 0.8}, {1.0, 2.0, 3.0}, 0.5);
    const tagPOINT3D one{1.0, 1.0, 1.0};
    Fit plain;
    Fit scaled;
    ASSERT_EQ(fit(points, plain), 1);
    ASSERT_EQ(fit(points, scaled, &one), 1);
    EXPECT_EQ(plain.normal.x, scaled.normal.x);
    EXPECT_EQ(plain.normal.y, scaled.normal.y);
    EXPECT_EQ(plain.normal.z, scaled.normal.z);
    EXPECT_EQ(plain.mean, scaled.mean);
    EXPECT_EQ(plain.deviation, scaled.deviation);
}

TEST(MatRegressionPlane, TheNormalOfAPlaneDoesNotDependOnTheScale) {
    // Points on z = x / 2; in the scaled space the plane is z / 4 = x / 2, and the normal is taken back from there.
    const std::vector<tagPOINT3D> points{{0.0, 0.0, 0.0}, {2.0, 0.0, 1.0}, {0.0, 3.0, 0.0}, {2.0, 3.0, 1.0}};
    const tagPOINT3D scale{1.0, 1.0, 4.0};
    Fit out;
    ASSERT_EQ(fit(points, out, &scale), 1);
    const double sign = out.normal.z < 0.0 ? -1.0 : 1.0;
    EXPECT_NEAR(sign * out.normal.x, -1.0 / std::sqrt(5.0), 1e-14);
    EXPECT_NEAR(out.normal.y, 0.0, 1e-14);
    EXPECT_NEAR(sign * out.normal.z, 2.0 / std::sqrt(5.0), 1e-14);
    EXPECT_NEAR(out.mean, 0.0, 1e-14);
}

TEST(MatRegressionPlane, TheScaledSpreadIsTheLeastThereIs) {
    // The normal divided by the scale is the one of the scaled points, so no other makes their spread less.
    constexpr unsigned int kSeed = 6435;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    const tagPOINT3D scale{0.5, 3.0, 1.25};
    for (int round = 0; round < 50; ++round) {
        tagPOINT3D tilt = random3D(random, 1.0);
        ASSERT_EQ(matNormalizeVector3D(&tilt), 1);
        const std::vector<tagPOINT3D> points = tiltedCloud(random, 40, tilt, random3D(random, 9.0), 2.0);
        Fit out;
        ASSERT_EQ(fit(points, out, &scale), 1);
        EXPECT_NEAR(dot(out.normal, out.normal), 1.0, 1e-15);
        tagPOINT3D fitted{out.normal.x / scale.x, out.normal.y / scale.y, out.normal.z / scale.z};
        ASSERT_EQ(matNormalizeVector3D(&fitted), 1);
        const auto spread = [&](const tagPOINT3D& normal) {
            double sum = 0.0;
            for (const tagPOINT3D& p : points) {
                const tagPOINT3D d{(p.x - out.centre.x) * scale.x, (p.y - out.centre.y) * scale.y,
                                   (p.z - out.centre.z) * scale.z};
                sum += dot(d, normal) * dot(d, normal);
            }
            return sum;
        };
        const double least = spread(fitted);
        for (int trial = 0; trial < 40; ++trial) {
            const tagPOINT3D step = random3D(random, trial % 2 == 0 ? 0.01 : 1.0);
            tagPOINT3D other{fitted.x + step.x, fitted.y + step.y, fitted.z + step.z};
            ASSERT_EQ(matNormalizeVector3D(&other), 1);
            EXPECT_GE(spread(other), least * (1.0 - 1e-12));
        }
        const Fit expected = gathered(points, out, out.normal);
        EXPECT_EQ(out.mean, expected.mean) << "distances are not scaled";
        EXPECT_EQ(out.deviation, expected.deviation);
    }
}

TEST(MatRegressionPlane, OfEqualSpreadsTheFirstCounts) {
    // Along x nothing spreads in y and z; of these the decomposition tells y first.
    Fit out;
    EXPECT_EQ(fit({{-1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}}, out), 1);
    EXPECT_EQ(out.centre.x, 0.0);
    EXPECT_EQ(out.normal.x, 0.0);
    EXPECT_EQ(std::fabs(out.normal.y), 1.0);
    EXPECT_EQ(out.normal.z, 0.0);
    EXPECT_EQ(out.mean, 0.0);
}

TEST(MatRegressionPlane, InputsMayBeOutputsOfTheSameCall) {
    // The scale is read before the centre is stored; the direction is read after the normal.
    const tagPOINT3D scale{1.0, 1.0, 4.0};
    Fit expected;
    ASSERT_EQ(fit(kSaddle, expected, &scale), 1);
    tagPOINT3D scaleAndCentre = scale;
    tagPOINT3D normalAndDirection{1.0, 0.0, 0.0};
    double mean = 0.0;
    EXPECT_EQ(matRegressionPlane(kSaddle.data(), 4, &scaleAndCentre, &scaleAndCentre, &normalAndDirection,
                                 &normalAndDirection, &mean, nullptr),
              1);
    EXPECT_EQ(scaleAndCentre.z, expected.centre.z);
    EXPECT_EQ(normalAndDirection.x, expected.normal.x);
    EXPECT_EQ(normalAndDirection.z, expected.normal.z);
    EXPECT_EQ(mean, expected.mean);
}

TEST(MatRegressionPlane, DeviationsAreTakenBeforeTheyAreScaled) {
    // On z = x far up: deviations of z are exact, while a tenth of z itself is rounded to a 64th.
    const double top = 1e15;
    const std::vector<tagPOINT3D> points{
        {-1.0, 0.0, top - 1.0}, {1.0, 0.0, top + 1.0}, {-1.0, 5.0, top - 1.0}, {1.0, 5.0, top + 1.0}};
    const tagPOINT3D scale{1.0, 1.0, 0.1};
    Fit out;
    ASSERT_EQ(fit(points, out, &scale), 1);
    EXPECT_EQ(out.centre.z, top);
    const double rootHalf = 0.7071067811865476;
    const double sign = out.normal.z < 0.0 ? -1.0 : 1.0;
    EXPECT_NEAR(sign * out.normal.x, -rootHalf, 1e-12);
    EXPECT_NEAR(out.normal.y, 0.0, 1e-12);
    EXPECT_NEAR(sign * out.normal.z, rootHalf, 1e-12);
}

TEST(MatRegressionPlane, AnAxisWithoutWeightLeavesTheNullVector) {
    const tagPOINT3D scale{1.0, 1.0, 0.0};
    Fit out;
    EXPECT_EQ(fit(kSaddle, out, &scale), 1);
    EXPECT_EQ(out.centre.z, 5.0);
    EXPECT_EQ(out.normal.x, 0.0);
    EXPECT_EQ(out.normal.y, 0.0);
    EXPECT_EQ(out.normal.z, 0.0);
    EXPECT_EQ(out.mean, kNoValue) << "there is no distance along the null vector";
    EXPECT_EQ(out.deviation, kNoValue);
    const tagPOINT3D direction{0.0, 0.0, 1.0};
    EXPECT_EQ(fit(kSaddle, out, &scale, &direction), 1);
    EXPECT_EQ(out.mean, kNoValue);
}

TEST(MatRegressionPlane, CoincidentPointsHaveTheFirstAxisAsNormal) {
    Fit out;
    EXPECT_EQ(fit({{1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}}, out), 1);
    EXPECT_EQ(out.centre.y, 2.0);
    EXPECT_EQ(out.normal.x, 1.0);
    EXPECT_EQ(out.normal.y, 0.0);
    EXPECT_EQ(out.normal.z, 0.0);
    EXPECT_EQ(out.mean, 0.0);
    EXPECT_EQ(out.deviation, 0.0);
}

TEST(MatRegressionPlane, NoPointsHaveNoCentreAndNoDistances) {
    Fit out;
    EXPECT_EQ(matRegressionPlane(kLevel.data(), 0, nullptr, &out.centre, &out.normal, nullptr, &out.mean,
                                 &out.deviation),
              1);
    EXPECT_TRUE(std::isnan(out.centre.x));
    EXPECT_TRUE(std::isnan(out.centre.z));
    EXPECT_EQ(out.normal.x, 1.0) << "the sums over no points are 0";
    EXPECT_EQ(out.mean, kNoValue);
    EXPECT_EQ(out.deviation, kNoValue);
}

TEST(MatRegressionPlane, PointsThatAreNotFiniteGiveNotANumbers) {
    std::vector<tagPOINT3D> points = kSaddle;
    points[1].y = std::numeric_limits<double>::infinity();
    Fit out;
    EXPECT_EQ(fit(points, out), 1);
    EXPECT_EQ(out.centre.x, 2.0);
    EXPECT_TRUE(std::isnan(out.normal.x));
    EXPECT_TRUE(std::isnan(out.normal.z));
    EXPECT_TRUE(std::isnan(out.mean));
}

TEST(MatRegressionPlane, FailsWithoutMemoryAndWritesNothing) {
    EXPECT_GE(velquad::test::forEachFailingAllocation([] {
                  Fit out;
                  const bool hasFailed = fit(kSaddle, out) == 0;
                  if (hasFailed) expectUntouched(out);
                  return hasFailed;
              }),
              1U);
}
