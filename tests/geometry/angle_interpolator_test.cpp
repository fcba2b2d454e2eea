#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>

#include "geometry/angle_table.h"
#include "tests/support/allocation_failure.h"
#include "velquad/geometry.h"

namespace {

using velquad::geometry::AngleTable;

constexpr double kRightAngle = 1.5707963267948966;

TEST(AngleInterpolator, HoldsTheSinesOfOneQuadrant) {
    const CMatAngleInterpolator angles(4);
    EXPECT_EQ(AngleTable::steps(angles), 360U);
    EXPECT_EQ(AngleTable::epsilon(angles), 1e-7 / 360.0);
    ASSERT_EQ(AngleTable::table(angles).size(), 361U);
    EXPECT_EQ(AngleTable::table(angles)[0], 0.0);
    EXPECT_EQ(AngleTable::table(angles)[120], std::sin(120 * kRightAngle / 360.0));
    EXPECT_EQ(AngleTable::table(angles)[360], 1.0);
}

TEST(AngleInterpolator, IsExactAtMultiplesOfAQuarterTurn) {
    for (const std::uint64_t stepsPerDegree : {1U, 3U, 1000U}) {
        CMatAngleInterpolator angles(stepsPerDegree);
        EXPECT_EQ(angles.sin(0.0, true), 0.0);
        EXPECT_FALSE(std::signbit(angles.sin(0.0, true)));
        EXPECT_EQ(angles.sin(90.0, true), 1.0);
        EXPECT_EQ(angles.sin(180.0, true), 0.0);
        EXPECT_FALSE(std::signbit(angles.sin(180.0, true)));
        EXPECT_EQ(angles.sin(270.0, true), -1.0);
        EXPECT_EQ(angles.sin(-90.0, true), angles.sin(270.0, true));
        EXPECT_EQ(angles.cos(0.0, true), 1.0);
        EXPECT_EQ(angles.cos(90.0, true), 0.0);
        EXPECT_EQ(angles.cos(180.0, true), -1.0);
        EXPECT_EQ(angles.cos(0.0, false), 1.0);
        EXPECT_EQ(angles.sin(kRightAngle, false), 1.0);
    }
}

TEST(AngleInterpolator, GivesMinusZeroForAFullTurn) {
    CMatAngleInterpolator angles(2);
    EXPECT_EQ(angles.sin(360.0, true), 0.0);
    EXPECT_TRUE(std::signbit(angles.sin(360.0, true)));
    EXPECT_TRUE(std::signbit(angles.sin(720.0, true)));
    EXPECT_TRUE(std::signbit(angles.cos(270.0, true)));
    EXPECT_FALSE(std::signbit(angles.sin(-360.0, true)));
    EXPECT_FALSE(std::signbit(angles.sin(-720.0, true)));
}

TEST(AngleInterpolator, TakesTheNearestEntryAndHalvesUpwards) {
    CMatAngleInterpolator angles(1);
    const auto entry = [&](int k) { return AngleTable::table(angles)[static_cast<std::size_t>(k)]; };
    EXPECT_EQ(angles.sin(30.25, true), entry(30));
    EXPECT_EQ(angles.sin(45.0, true), entry(45));
    EXPECT_EQ(angles.sin(44.75, true), entry(45));
    EXPECT_EQ(angles.sin(22.5, true), entry(23));
    EXPECT_EQ(angles.sin(std::nextafter(22.5, 0.0), true), entry(22));
    EXPECT_EQ(angles.sin(157.5, true), entry(23));
    EXPECT_EQ(angles.sin(202.5, true), -entry(23));
    EXPECT_EQ(angles.sin(337.5, true), -entry(23));
    EXPECT_EQ(angles.sin(-22.5, true), -entry(23));
}

TEST(AngleInterpolator, ReachesBeyondAQuadrantByItsMargin) {
    CMatAngleInterpolator angles(1);
    const double e = 1e-7 / 90.0;
    // Just within the margin of 180 degrees the entry is 0 with a plus sign, beyond it with a minus sign.
    EXPECT_FALSE(std::signbit(angles.sin(180.0 + e * 0.5, true)));
    EXPECT_TRUE(std::signbit(angles.sin(180.0 + e * 2.0, true)));
    EXPECT_EQ(angles.sin(90.0 + e, true), 1.0);
    EXPECT_EQ(angles.sin(270.0 + e, true), -1.0);
}

TEST(AngleInterpolator, StaysWithinHalfAStepOfTheSine) {
    CMatAngleInterpolator angles(100);
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> anyAngle(-2000.0, 2000.0);
    const double halfStep = kRightAngle / 9000.0 / 2.0;
    for (int i = 0; i < 20000; ++i) {
        const double angle = anyAngle(random);
        SCOPED_TRACE(angle);
        EXPECT_NEAR(angles.sin(angle, false), std::sin(angle), halfStep * 1.0001);
        EXPECT_NEAR(angles.cos(angle, false), std::cos(angle), halfStep * 1.0001);
        EXPECT_NEAR(angles.sin(angle, true), std::sin(angle / 90.0 * kRightAngle), halfStep * 1.0001);
    }
}

TEST(AngleReduction, IsThatOfRepeatedFullTurns) {
    const auto byTurns = [](double degrees) {
        while (degrees > 360.0)
            degrees += -360.0;
        while (0.0 > degrees)
            degrees += 360.0;
        return degrees;
    };
    const auto expectSame = [&](double degrees) {
        SCOPED_TRACE(degrees);
        const double expected = byTurns(degrees);
        const double actual = velquad::geometry::reduceToTurn(degrees);
        EXPECT_EQ(actual, expected);
        EXPECT_EQ(std::signbit(actual), std::signbit(expected));
    };
    for (const double value :
         {0.0, 1e-300, 1e-20, 0.5, 359.0, 360.0, 719.0, 720.0, 721.5, 3600.0, 12345678.9}) {
        for (const double angle : {value, std::nextafter(value, 1e300), std::nextafter(value, -1e300)}) {
            expectSame(angle);
            expectSame(-angle);
        }
    }
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> exponent(-30.0, 20.0);
    for (int i = 0; i < 2000; ++i) {
        const double angle = std::exp2(exponent(random)) * 1.1;
        expectSame(angle);
        expectSame(-angle);
    }
}

TEST(AngleInterpolator, AnswersAnyAngleInBoundedTime) {
    CMatAngleInterpolator angles(1);
    const double infinity = std::numeric_limits<double>::infinity();
    for (const bool isDegrees : {false, true}) {
        EXPECT_LE(std::fabs(angles.sin(1e300, isDegrees)), 1.0);
        EXPECT_LE(std::fabs(angles.cos(-1e300, isDegrees)), 1.0);
        EXPECT_TRUE(std::isnan(angles.sin(infinity, isDegrees)));
        EXPECT_TRUE(std::isnan(angles.cos(-infinity, isDegrees)));
        EXPECT_TRUE(std::isnan(angles.sin(std::nan(""), isDegrees)));
    }
}

TEST(AngleInterpolator, WithoutStepsKnowsNoAngle) {
    CMatAngleInterpolator angles(0);
    EXPECT_EQ(AngleTable::table(angles).size(), 1U);
    EXPECT_TRUE(std::isnan(angles.sin(200.0, true)));
    AngleTable::selfTest(angles);
}

TEST(AngleInterpolator, IsCopiedAndMoved) {
    CMatAngleInterpolator angles(2);
    CMatAngleInterpolator copy(angles);
    EXPECT_EQ(copy.sin(33.0, true), angles.sin(33.0, true));
    CMatAngleInterpolator other(1);
    other = angles;
    EXPECT_EQ(AngleTable::steps(other), 180U);
    EXPECT_EQ(other.sin(12.5, true), angles.sin(12.5, true));
    const double* entries = AngleTable::table(copy).data();
    CMatAngleInterpolator moved(std::move(copy));
    EXPECT_EQ(AngleTable::table(moved).data(), entries);
    other = std::move(moved);
    EXPECT_EQ(AngleTable::table(other).data(), entries);
    EXPECT_EQ(AngleTable::epsilon(other), 1e-7 / 180.0);
}

TEST(AngleInterpolator, SelfTestChangesNothing) {
    CMatAngleInterpolator angles(3);
    const std::vector<double> before = AngleTable::table(angles);
    AngleTable::selfTest(angles);
    EXPECT_EQ(AngleTable::table(angles), before);
    EXPECT_EQ(AngleTable::steps(angles), 270U);
}

TEST(SinCosApproximator, IsInstalledOnceAndReleasedWithItsHolder) {
    using velquad::geometry::sinCosApproximator;
    using velquad::geometry::sinCosTable;
    EXPECT_EQ(sinCosTable, nullptr);
    EXPECT_EQ(sinCosApproximator, nullptr);
    velquad::geometry::installSinCosApproximator();
    ASSERT_NE(sinCosTable, nullptr);
    const CMatAngleInterpolator* installed = sinCosTable;
    EXPECT_EQ(sinCosApproximator->get(), installed);
    EXPECT_EQ(AngleTable::steps(*installed), 90000U);
    EXPECT_EQ(AngleTable::table(*installed).size(), 90001U);
    velquad::geometry::installSinCosApproximator();
    EXPECT_EQ(sinCosTable, installed);
    sinCosApproximator.reset();
    EXPECT_EQ(sinCosTable, nullptr);
}

TEST(SinCosApproximator, IsNotInstalledWithoutMemory) {
    const std::size_t allocations = velquad::test::forEachFailingAllocation([] {
        bool hasFailed = false;
        try {
            velquad::geometry::installSinCosApproximator();
        } catch (const std::bad_alloc&) {
            hasFailed = true;
        }
        EXPECT_EQ(velquad::geometry::sinCosTable == nullptr, hasFailed);
        velquad::geometry::sinCosApproximator.reset();
        return hasFailed;
    });
    EXPECT_EQ(allocations, 3U);
}

}  // namespace
