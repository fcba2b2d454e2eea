#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "velquad/frame.h"

namespace {

constexpr double kPi = 3.141592653589793;

void expectPoint(const tagPOINT3D& actual, double x, double y, double z) {
    EXPECT_EQ(actual.x, x);
    EXPECT_EQ(actual.y, y);
    EXPECT_EQ(actual.z, z);
}

const tagPOINT3D kOrigin{0, 0, 0};
const tagPOINT3D kX{2, 0, 0};
const tagPOINT3D kY{0, 3, 0};

}  // namespace

TEST(MatCalcOrthogonal, IsTheCrossProductOfTheDifferences) {
    double product[3] = {};
    EXPECT_EQ(matCalcOrthogonal(product, &kOrigin, &kX, &kY), 1);
    EXPECT_EQ(product[0], 0.0);
    EXPECT_EQ(product[1], 0.0);
    EXPECT_EQ(product[2], 6.0);

    const tagPOINT3D p0{1, 1, 1};
    const tagPOINT3D p1{2, 3, 4};
    const tagPOINT3D p2{5, 7, 6};
    // (1, 2, 3) x (4, 6, 5) = (2*5 - 3*6, 3*4 - 1*5, 1*6 - 2*4)
    EXPECT_EQ(matCalcOrthogonal(product, &p0, &p1, &p2), 1);
    EXPECT_EQ(product[0], -8.0);
    EXPECT_EQ(product[1], 7.0);
    EXPECT_EQ(product[2], -2.0);
}

TEST(MatCalcOrthogonal, StoresTheProductOfCollinearPointsAndReturnsZero) {
    const tagPOINT3D p1{1, 1, 0};
    const tagPOINT3D p2{2, 2, 1e-8};
    double product[3] = {9, 9, 9};
    EXPECT_EQ(matCalcOrthogonal(product, &kOrigin, &p1, &p2), 0);
    EXPECT_EQ(product[0], 1e-8);
    EXPECT_EQ(product[1], -1e-8);
    EXPECT_EQ(product[2], 0.0);
}

TEST(MatCalcOrthogonal, CountsALengthEqualToTheTolerance) {
    const tagPOINT3D p1{1, 0, 0};
    const tagPOINT3D at{0, 1e-7, 0};
    const tagPOINT3D below{0, 9.9999999999999982e-08, 0};
    double product[3] = {};
    EXPECT_EQ(matCalcOrthogonal(product, &kOrigin, &p1, &at), 1);
    EXPECT_EQ(matCalcOrthogonal(product, &kOrigin, &p1, &below), 0);
}

TEST(MatCalcOrthogonal, RefusesNullPointersAndStoresNothing) {
    double product[3] = {9, 9, 9};
    EXPECT_EQ(matCalcOrthogonal(nullptr, &kOrigin, &kX, &kY), 0);
    EXPECT_EQ(matCalcOrthogonal(product, nullptr, &kX, &kY), 0);
    EXPECT_EQ(matCalcOrthogonal(product, &kOrigin, nullptr, &kY), 0);
    EXPECT_EQ(matCalcOrthogonal(product, &kOrigin, &kX, nullptr), 0);
    for (double value : product)
        EXPECT_EQ(value, 9.0);
}

TEST(MatCalcNormal, HasLengthOne) {
    tagPOINT3D normal{};
    EXPECT_EQ(matCalcNormal(&normal, &kOrigin, &kX, &kY), 1);
    // 6 * (1.0 / 6.0) is exactly 1.
    expectPoint(normal, 0.0, 0.0, 1.0);
}

TEST(MatCalcNormal, AcceptsTrianglesFarBelowTheToleranceOfTheProduct) {
    const tagPOINT3D p1{1e-10, 0, 0};
    const tagPOINT3D p2{0, 1e-10, 0};
    tagPOINT3D normal{};
    EXPECT_EQ(matCalcNormal(&normal, &kOrigin, &p1, &p2), 1);
    EXPECT_NEAR(normal.z, 1.0, 1e-15);
}

TEST(MatCalcNormal, GivesTheNullVectorForCollinearPoints) {
    const tagPOINT3D p1{1, 2, 3};
    const tagPOINT3D p2{2, 4, 6};
    tagPOINT3D normal{9, 9, 9};
    EXPECT_EQ(matCalcNormal(&normal, &kOrigin, &p1, &p2), 0);
    expectPoint(normal, 0.0, 0.0, 0.0);
}

TEST(MatCalcNormal, RefusesNullPointersAndStoresNothing) {
    tagPOINT3D normal{9, 9, 9};
    EXPECT_EQ(matCalcNormal(nullptr, &kOrigin, &kX, &kY), 0);
    EXPECT_EQ(matCalcNormal(&normal, nullptr, &kX, &kY), 0);
    EXPECT_EQ(matCalcNormal(&normal, &kOrigin, nullptr, &kY), 0);
    EXPECT_EQ(matCalcNormal(&normal, &kOrigin, &kX, nullptr), 0);
    expectPoint(normal, 9.0, 9.0, 9.0);
}

TEST(MatNormalizeVector2D, MultipliesByTheReciprocalOfTheLength) {
    tagPOINT2D v{3, 4};
    EXPECT_EQ(matNormalizeVector2D(&v), 1);
    EXPECT_EQ(v.x, 3 * 0.2);  // 0.6000000000000001, where 3 / 5 would be 0.6
    EXPECT_EQ(v.y, 4 * 0.2);
}

TEST(MatNormalizeVector2D, ClearsANullVector) {
    tagPOINT2D v{0, 0};
    EXPECT_EQ(matNormalizeVector2D(&v), 0);
    EXPECT_EQ(v.x, 0.0);
    EXPECT_EQ(v.y, 0.0);
    v = {1e-41, -1e-41};
    EXPECT_EQ(matNormalizeVector2D(&v), 0);
    EXPECT_EQ(v.x, 0.0);
    EXPECT_EQ(v.y, 0.0);
    EXPECT_EQ(matNormalizeVector2D(nullptr), 0);
}

TEST(MatNormalizeVector3D, ScalesToLengthOne) {
    tagPOINT3D v{0, 0, -4};
    EXPECT_EQ(matNormalizeVector3D(&v), 1);
    expectPoint(v, 0.0, 0.0, -1.0);
    v = {2, 3, 6};
    EXPECT_EQ(matNormalizeVector3D(&v), 1);
    const double seventh = 1.0 / 7.0;
    expectPoint(v, 2 * seventh, 3 * seventh, 6 * seventh);
    v = {0, 0, 0};
    EXPECT_EQ(matNormalizeVector3D(&v), 0);
    expectPoint(v, 0.0, 0.0, 0.0);
    EXPECT_EQ(matNormalizeVector3D(nullptr), 0);
}

TEST(MatNormalizeVector, TakesALengthEqualToTheTolerance) {
    for (const double length : {1e-40, std::nextafter(1e-40, 1.0)}) {
        tagPOINT2D flat{0, -length};
        tagPOINT3D v{0, 0, -length};
        EXPECT_EQ(matNormalizeVector2D(&flat), 1);
        EXPECT_EQ(matNormalizeVector3D(&v), 1);
        EXPECT_DOUBLE_EQ(flat.y, -1.0);
        EXPECT_DOUBLE_EQ(v.z, -1.0);
    }
    const double below = std::nextafter(1e-40, 0.0);
    tagPOINT2D flat{0, -below};
    tagPOINT3D v{0, 0, -below};
    EXPECT_EQ(matNormalizeVector2D(&flat), 0);
    EXPECT_EQ(matNormalizeVector3D(&v), 0);
    EXPECT_EQ(flat.y, 0.0);
    expectPoint(v, 0.0, 0.0, 0.0);
}

TEST(MatNormalizeVector3D, MultipliesByTheReciprocalOfTheLength) {
    tagPOINT3D v{3, 0, 4};
    EXPECT_EQ(matNormalizeVector3D(&v), 1);
    expectPoint(v, 3 * 0.2, 0.0, 4 * 0.2);
}

TEST(MatRotatePoint, TurnsCounterClockwise) {
    tagPOINT2D point{2, 1};
    const tagPOINT2D center{1, 1};
    EXPECT_EQ(matRotatePoint(&point, &center, 90.0, 1, 1), 1);
    EXPECT_NEAR(point.x, 1.0, 1e-15);
    EXPECT_EQ(point.y, 2.0);
    point = {2, 1};
    EXPECT_EQ(matRotatePoint(&point, &center, kPi / 2, 7, 0), 1);
    EXPECT_NEAR(point.x, 1.0, 1e-15);
    EXPECT_EQ(point.y, 2.0);
}

TEST(MatRotatePoint, TurnsClockwiseByTheRestOfAFullTurn) {
    tagPOINT2D point{1, 0};
    const tagPOINT2D center{0, 0};
    EXPECT_EQ(matRotatePoint(&point, &center, 90.0, 0, 1), 1);
    EXPECT_NEAR(point.x, 0.0, 1e-15);
    EXPECT_NEAR(point.y, -1.0, 1e-15);
}

TEST(MatRotatePoint, ClockwiseByNothingIsAFullTurnWithItsRounding) {
    tagPOINT2D point{1, 0};
    const tagPOINT2D center{0, 0};
    EXPECT_EQ(matRotatePoint(&point, &center, 0.0, 0, 0), 1);
    EXPECT_EQ(point.x, 1.0);
    // The sine of the double next to 2 pi; C libraries that keep 66 bits of pi miss it by 1e-21.
    EXPECT_NEAR(point.y, -2.4492935982947064e-16, 1e-20);
}

TEST(MatRotatePoint, AddsTheCentreBeforeTheLastProduct) {
    std::mt19937 random(1201);
    std::uniform_real_distribution<double> coordinates(-100.0, 100.0);
    for (int i = 0; i < 1000; ++i) {
        const tagPOINT2D center{coordinates(random), coordinates(random)};
        const tagPOINT2D start{coordinates(random), coordinates(random)};
        const double angle = coordinates(random);
        SCOPED_TRACE(testing::Message() << i << ": " << center.x << " " << center.y << " " << start.x << " "
                                        << start.y << " " << angle);
        const int isDegrees = i & 1;
        const int isCounterClockwise = i & 2;
        const double a = isDegrees != 0 ? angle * 0.017453292519943295 : angle;
        const double phi = isCounterClockwise != 0 ? a : 6.283185307179586 - a;
        const double dx = start.x - center.x;
        const double dy = start.y - center.y;
        tagPOINT2D point = start;
        ASSERT_EQ(matRotatePoint(&point, &center, angle, isCounterClockwise, isDegrees), 1);
        ASSERT_EQ(point.x, (dx * std::cos(phi) + center.x) - dy * std::sin(phi));
        ASSERT_EQ(point.y, (dx * std::sin(phi) + center.y) + dy * std::cos(phi));
    }
}

TEST(MatRotatePoint, RefusesNullPointers) {
    tagPOINT2D point{5, 6};
    EXPECT_EQ(matRotatePoint(nullptr, &point, 1.0, 1, 0), 0);
    EXPECT_EQ(matRotatePoint(&point, nullptr, 1.0, 1, 0), 0);
    EXPECT_EQ(point.x, 5.0);
    EXPECT_EQ(point.y, 6.0);
}

TEST(MatSetRect2D, StoresInTheOrderOfItsArguments) {
    tagMAT_RECT2D rect{};
    EXPECT_EQ(matSetRect2D(&rect, 1.5, -2.5, 3.5, -4.5), 1);
    EXPECT_EQ(rect.left, 1.5);
    EXPECT_EQ(rect.top, -2.5);
    EXPECT_EQ(rect.right, 3.5);
    EXPECT_EQ(rect.bottom, -4.5);
    EXPECT_EQ(matSetRect2D(nullptr, 1, 2, 3, 4), 0);
}
