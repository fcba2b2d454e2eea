#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kPi = 3.141592653589793;

struct Polar {
    int result;
    double inclination;
    double azimuth;
};

Polar toPolar(double x, double y, double z, int isDegrees, int isElevation) {
    double vector[3] = {x, y, z};
    Polar polar{-1, -77.0, -77.0};
    polar.result =
        matComputePolarVector(vector, &polar.inclination, &polar.azimuth, isDegrees, isElevation, 1);
    EXPECT_EQ(vector[0], x);
    EXPECT_EQ(vector[1], y);
    EXPECT_EQ(vector[2], z);
    return polar;
}

tagPOINT3D toVector(double inclination, double azimuth, int isDegrees, int isElevation) {
    double vector[3] = {-77.0, -77.0, -77.0};
    EXPECT_EQ(matComputePolarVector(vector, &inclination, &azimuth, isDegrees, isElevation, 0), 1);
    return {vector[0], vector[1], vector[2]};
}

}  // namespace

TEST(MatComputePolarVector, GivesZeroAnglesAlongTheZAxis) {
    const Polar polar = toPolar(0.0, 0.0, 1.0, 1, 0);
    EXPECT_EQ(polar.result, 1);
    EXPECT_EQ(polar.inclination, 0.0);
    EXPECT_EQ(polar.azimuth, 0.0);
}

TEST(MatComputePolarVector, MeasuresFromTheAxisOrFromThePlane) {
    EXPECT_EQ(toPolar(3.0, 0.0, 0.0, 1, 0).inclination, 90.0);
    EXPECT_EQ(toPolar(3.0, 0.0, 0.0, 1, 1).inclination, 0.0);
    EXPECT_EQ(toPolar(0.0, 0.0, 2.0, 1, 1).inclination, 90.0);
    EXPECT_EQ(toPolar(0.0, 0.0, -2.0, 1, 0).inclination, 180.0);
    EXPECT_EQ(toPolar(1.0, 0.0, 1.0, 1, 1).inclination, 45.0);
    EXPECT_EQ(toPolar(0.0, 0.0, 2.0, 0, 1).inclination, 1.5707963267948966);
}

TEST(MatComputePolarVector, MeasuresTheAzimuthFromXToY) {
    EXPECT_EQ(toPolar(0.0, 4.0, 0.0, 1, 0).azimuth, 90.0);
    EXPECT_EQ(toPolar(-4.0, 0.0, 0.0, 1, 0).azimuth, 180.0);
    EXPECT_EQ(toPolar(0.0, -4.0, 0.0, 1, 0).azimuth, 270.0);
    EXPECT_EQ(toPolar(0.0, -4.0, 0.0, 0, 0).azimuth, 4.71238898038469);
    EXPECT_EQ(toPolar(1.0, 1.0, 5.0, 1, 0).azimuth, 45.0);
}

TEST(MatComputePolarVector, GivesANegativeElevationAsALargeAngle) {
    EXPECT_EQ(toPolar(0.0, 0.0, -1.0, 1, 1).inclination, 270.0);
    EXPECT_EQ(toPolar(1.0, 0.0, -1.0, 1, 1).inclination, 315.0);
    EXPECT_EQ(toPolar(0.0, 0.0, -1.0, 0, 1).inclination, 4.71238898038469);
}

TEST(MatComputePolarVector, RefusesAShortVectorAndStoresNothing) {
    for (const double length : {0.0, std::nextafter(1e-7, 0.0)}) {
        const Polar polar = toPolar(0.0, length, 0.0, 1, 0);
        EXPECT_EQ(polar.result, 0);
        EXPECT_EQ(polar.inclination, -77.0);
        EXPECT_EQ(polar.azimuth, -77.0);
    }
    EXPECT_EQ(toPolar(0.0, 1e-7, 0.0, 1, 0).result, 1);
    EXPECT_EQ(toPolar(0.0, 1e-7, 0.0, 1, 0).azimuth, 90.0);
    EXPECT_EQ(toPolar(0.0, std::nextafter(1e-7, 1.0), 0.0, 1, 0).result, 1);
}

TEST(MatComputePolarVector, HasNoAzimuthNearTheAxisButKeepsTheInclination) {
    // rho / length is one step below the limit in the first case and on it in the second.
    const Polar along = toPolar(0.0, 0x1.4f8b588e7e9dcp-17, 1.0, 0, 0);
    EXPECT_EQ(along.azimuth, 0.0);
    EXPECT_NEAR(along.inclination, 1.00000000005e-05, 1e-15);
    const Polar beside = toPolar(0.0, 0x1.4f8b588e7e9ddp-17, 1.0, 0, 0);
    EXPECT_EQ(beside.azimuth, 1.5707963267948966);
    EXPECT_NEAR(beside.inclination, 1.00000000005e-05, 1e-15);
    EXPECT_EQ(toPolar(0.0, -2e-5, 1.0, 1, 0).azimuth, 270.0);
}

TEST(MatComputePolarVector, TakesNullForAnglesThatAreNotWanted) {
    double vector[3] = {0.0, 2.0, 0.0};
    double angle = -77.0;
    EXPECT_EQ(matComputePolarVector(vector, nullptr, &angle, 1, 1, 1), 1);
    EXPECT_EQ(angle, 90.0);
    EXPECT_EQ(matComputePolarVector(vector, &angle, nullptr, 1, 1, -1), 1);
    EXPECT_EQ(angle, 0.0);
    EXPECT_EQ(matComputePolarVector(vector, nullptr, nullptr, 1, 1, 1), 1);
    vector[1] = 0.0;
    EXPECT_EQ(matComputePolarVector(vector, nullptr, nullptr, 1, 1, 1), 0);
}

TEST(MatComputePolarVector, MakesUnitVectorsOfAngles) {
    tagPOINT3D v = toVector(0.0, 0.0, 1, 0);
    EXPECT_EQ(v.x, 0.0);
    EXPECT_EQ(v.y, 0.0);
    EXPECT_EQ(v.z, 1.0);
    v = toVector(90.0, 0.0, 1, 0);
    EXPECT_EQ(v.x, 1.0);
    EXPECT_EQ(v.y, 0.0);
    EXPECT_NEAR(v.z, 0.0, 1e-15);
    v = toVector(90.0, 90.0, 1, 0);
    EXPECT_NEAR(v.x, 0.0, 1e-15);
    EXPECT_EQ(v.y, 1.0);
    v = toVector(0.0, 0.0, 1, 1);
    EXPECT_EQ(v.x, 1.0);
    v = toVector(90.0, 123.0, 1, 1);
    EXPECT_EQ(v.x, 0.0);
    EXPECT_EQ(v.y, 0.0);
    EXPECT_EQ(v.z, 1.0);
    v = toVector(1.5707963267948966, 123.0, 0, 1);
    EXPECT_EQ(v.x, 0.0);
    EXPECT_EQ(v.z, 1.0);
}

TEST(MatComputePolarVector, ConvertsDegreesByProductAndQuotient) {
    std::mt19937 random(4205);
    std::uniform_real_distribution<double> angles(-400.0, 400.0);
    for (int i = 0; i < 5000; ++i) {
        const double inclination = angles(random);
        const double azimuth = angles(random);
        SCOPED_TRACE(testing::Message() << inclination << " " << azimuth);
        const int isElevation = i & 1;
        const double t = (isElevation != 0 ? 90.0 - inclination : inclination) * kPi / 180.0;
        const double p = azimuth * kPi / 180.0;
        const tagPOINT3D v = toVector(inclination, azimuth, 1, isElevation);
        ASSERT_EQ(v.x, std::cos(p) * std::sin(t));
        ASSERT_EQ(v.y, std::sin(p) * std::sin(t));
        ASSERT_EQ(v.z, std::cos(t));
        ASSERT_NEAR(v.x * v.x + v.y * v.y + v.z * v.z, 1.0, 1e-14);
    }
}

TEST(MatComputePolarVector, FindsDegreesByProductAndQuotient) {
    std::mt19937 random(4207);
    std::uniform_real_distribution<double> coordinates(0.1, 1.0);
    for (int i = 0; i < 5000; ++i) {
        // Angles of the first octant need no reduction.
        const double x = coordinates(random);
        const double y = coordinates(random);
        const double z = coordinates(random);
        SCOPED_TRACE(testing::Message() << x << " " << y << " " << z);
        const double elevation = std::atan2(z, std::sqrt(x * x + y * y));
        ASSERT_EQ(toPolar(x, y, z, 1, 1).azimuth, std::atan2(y, x) * 180.0 / kPi);
        ASSERT_EQ(toPolar(x, y, z, 1, 1).inclination, elevation * 180.0 / kPi);
        ASSERT_EQ(toPolar(x, y, z, 1, 0).inclination, (1.5707963267948966 - elevation) * 180.0 / kPi);
        ASSERT_EQ(toPolar(x, y, z, 0, 0).azimuth, std::atan2(y, x));
        ASSERT_EQ(toPolar(x, y, z, 0, 0).inclination, 1.5707963267948966 - elevation);
    }
}

TEST(MatComputePolarVector, GivesADirectionBack) {
    std::mt19937 random(4206);
    std::uniform_real_distribution<double> coordinates(-1.0, 1.0);
    for (int i = 0; i < 5000; ++i) {
        const tagPOINT3D source{coordinates(random), coordinates(random), coordinates(random)};
        SCOPED_TRACE(testing::Message() << source.x << " " << source.y << " " << source.z);
        const double length = std::sqrt(source.x * source.x + source.y * source.y + source.z * source.z);
        for (int flags = 0; flags < 4; ++flags) {
            const Polar polar = toPolar(source.x, source.y, source.z, flags & 1, flags & 2);
            ASSERT_EQ(polar.result, 1);
            const double period = (flags & 1) != 0 ? 360.0 : 2.0 * kPi;
            ASSERT_GE(polar.inclination, 0.0);
            ASSERT_LT(polar.inclination, period);
            ASSERT_GE(polar.azimuth, 0.0);
            ASSERT_LT(polar.azimuth, period);
            const tagPOINT3D back = toVector(polar.inclination, polar.azimuth, flags & 1, flags & 2);
            ASSERT_NEAR(back.x * length, source.x, 1e-8);
            ASSERT_NEAR(back.y * length, source.y, 1e-8);
            ASSERT_NEAR(back.z * length, source.z, 1e-8);
        }
    }
}

TEST(MatComputePolarVector, TakesAnInfiniteVectorForItsDirection) {
    const Polar polar = toPolar(kInfinity, 0.0, 0.0, 1, 0);
    EXPECT_EQ(polar.result, 1);
    EXPECT_EQ(polar.inclination, 90.0);
    EXPECT_EQ(polar.azimuth, 0.0);
}
