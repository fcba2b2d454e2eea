#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr double kUntouched = -77.25;

struct Result {
    int count = -1;
    tagPOINT2D first{kUntouched, kUntouched};
    tagPOINT2D second{kUntouched, kUntouched};
};

Result crossInRect(tagMAT_RECT2D rect, tagPOINT2D p0, tagPOINT2D p1) {
    double from[] = {p0.x, p0.y};
    double to[] = {p1.x, p1.y};
    double first[] = {kUntouched, kUntouched};
    double second[] = {kUntouched, kUntouched};
    Result r;
    r.count = matIntersectLineAndEllipse2D(&rect, from, to, first, second);
    r.first = {first[0], first[1]};
    r.second = {second[0], second[1]};
    return r;
}

Result crossInIntegerRect(int left, int top, int right, int bottom, tagPOINT2D p0, tagPOINT2D p1) {
    const int rect[] = {left, top, right, bottom};
    Result r;
    r.count = matIntersectLineAndEllipse(rect, &p0, &p1, &r.first, &r.second);
    return r;
}

void expectPoint(const tagPOINT2D& point, double x, double y) {
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
}

void expectNear(const tagPOINT2D& point, double x, double y) {
    EXPECT_NEAR(point.x, x, 1e-12);
    EXPECT_NEAR(point.y, y, 1e-12);
}

void expectUntouched(const Result& r) {
    EXPECT_EQ(r.count, 0);
    expectPoint(r.first, kUntouched, kUntouched);
    expectPoint(r.second, kUntouched, kUntouched);
}

constexpr tagMAT_RECT2D kUnitCircle{-1.0, -1.0, 1.0, 1.0};
constexpr tagMAT_RECT2D kFlat{10.0, 20.0, 18.0, 24.0};  // centre (14, 22), semi-axes 4 and 2

TEST(IntersectLineAndEllipse2D, HorizontalLineThroughTheCentreBeginsNearTheFirstPoint) {
    const Result fromLeft = crossInRect(kFlat, {0.0, 22.0}, {1.0, 22.0});
    EXPECT_EQ(fromLeft.count, 2);
    expectPoint(fromLeft.first, 10.0, 22.0);
    expectPoint(fromLeft.second, 18.0, 22.0);
    const Result fromRight = crossInRect(kFlat, {30.0, 22.0}, {1.0, 22.0});
    EXPECT_EQ(fromRight.count, 2);
    expectPoint(fromRight.first, 18.0, 22.0);
    expectPoint(fromRight.second, 10.0, 22.0);
}

TEST(IntersectLineAndEllipse2D, VerticalLineThroughTheCentre) {
    const Result r = crossInRect(kFlat, {14.0, 90.0}, {14.0, 80.0});
    EXPECT_EQ(r.count, 2);
    expectPoint(r.first, 14.0, 24.0);
    expectPoint(r.second, 14.0, 20.0);
}

TEST(IntersectLineAndEllipse2D, DiagonalIsSolvedForX) {
    const Result r = crossInRect(kUnitCircle, {-3.0, -3.0}, {3.0, 3.0});
    EXPECT_EQ(r.count, 2);
    expectNear(r.first, -std::sqrt(0.5), -std::sqrt(0.5));
    expectNear(r.second, std::sqrt(0.5), std::sqrt(0.5));
}

TEST(IntersectLineAndEllipse2D, SteepAndShallowLinesThroughTheCentreOfAFlatEllipse) {
    // x = 14 + u, y = 22 + 2 u: u^2 / 16 + 4 u^2 / 4 = 1; and y = 22 + u / 2: u^2 / 16 + u^2 / 16 = 1.
    const double steep = std::sqrt(16.0 / 17.0);
    const Result steepLine = crossInRect(kFlat, {13.0, 20.0}, {15.0, 24.0});
    EXPECT_EQ(steepLine.count, 2);
    expectNear(steepLine.first, 14.0 - steep, 22.0 - 2.0 * steep);
    expectNear(steepLine.second, 14.0 + steep, 22.0 + 2.0 * steep);
    const double shallow = std::sqrt(8.0);
    const Result shallowLine = crossInRect(kFlat, {16.0, 23.0}, {12.0, 21.0});
    EXPECT_EQ(shallowLine.count, 2);
    expectNear(shallowLine.first, 14.0 + shallow, 22.0 + 0.5 * shallow);
    expectNear(shallowLine.second, 14.0 - shallow, 22.0 - 0.5 * shallow);
}

TEST(IntersectLineAndEllipse2D, EquallyNearCrossingsBeginWithTheHighOne) {
    const Result horizontal = crossInRect(kUnitCircle, {0.0, 0.9}, {1.0, 0.9});
    EXPECT_EQ(horizontal.count, 2);
    expectNear(horizontal.first, 0.4358898943540673, 0.9);
    expectNear(horizontal.second, -0.4358898943540673, 0.9);
    const Result vertical = crossInRect(kUnitCircle, {0.9, 0.0}, {0.9, 1.0});
    EXPECT_EQ(vertical.count, 2);
    expectNear(vertical.first, 0.9, 0.4358898943540673);
}

TEST(IntersectLineAndEllipse2D, LineWithBothCrossingsOnOneSideOfTheCentreMayNotCount) {
    expectUntouched(crossInRect(kUnitCircle, {1.3, 0.0}, {0.0, 1.3}));
    // h^2 = 0.36 and q = 0.22 fall short of h^2 >= 2 q; h^2 = 0.25 and q = 0 do not.
    expectUntouched(crossInRect(kUnitCircle, {1.2, 0.0}, {0.0, 1.2}));
    EXPECT_EQ(crossInRect(kUnitCircle, {1.0, 0.0}, {0.0, 1.0}).count, 2);
    // q = 0.05125 and h^2 = 0.275625.
    EXPECT_EQ(crossInRect(kUnitCircle, {1.05, 0.0}, {0.0, 1.05}).count, 2);
}

TEST(IntersectLineAndEllipse2D, LineBesideTheEllipseHasNoCrossing) {
    expectUntouched(crossInRect(kUnitCircle, {-2.0, 1.5}, {2.0, 1.5}));
    expectUntouched(crossInRect(kFlat, {19.0, 0.0}, {19.0, 1.0}));
}

TEST(IntersectLineAndEllipse2D, TangentAtAVertexHasOneCrossingStoredTwice) {
    const Result top = crossInRect(kUnitCircle, {-2.0, 1.0}, {2.0, 1.0});
    EXPECT_EQ(top.count, 1);
    expectPoint(top.first, 0.0, 1.0);
    expectPoint(top.second, 0.0, 1.0);
    const Result side = crossInRect(kFlat, {18.0, 0.0}, {18.0, 1.0});
    EXPECT_EQ(side.count, 1);
    expectPoint(side.first, 18.0, 22.0);
}

TEST(IntersectLineAndEllipse2D, ObliqueTangentDoesNotCount) {
    const double reach = std::sqrt(2.0);
    expectUntouched(crossInRect(kUnitCircle, {reach, 0.0}, {0.0, reach}));
}

TEST(IntersectLineAndEllipse2D, LineMayPassAVertexByAMargin) {
    // A horizontal line at height c has q = c^2 - 1 = -D, and counts while 2 q is not above 5e-8.
    const double inside = std::sqrt(1.0 + 2.499e-8);
    const double outside = std::sqrt(1.0 + 2.501e-8);
    EXPECT_EQ(crossInRect(kUnitCircle, {-2.0, inside}, {2.0, inside}).count, 1);
    EXPECT_EQ(crossInRect(kUnitCircle, {-2.0, outside}, {2.0, outside}).count, 0);
}

TEST(IntersectLineAndEllipse2D, DiscriminantBelow1eMinus7IsATangent) {
    // Through the centre of a circle the discriminant is the squared radius.
    const double above = 0.00031622776601683794;  // its square is 1.0000000000000001e-7
    const double below = 0.0003162277660168379;   // its square is 9.999999999999997e-8
    EXPECT_EQ(crossInRect({-above, -above, above, above}, {-2.0, 0.0}, {2.0, 0.0}).count, 2);
    const Result tangent = crossInRect({-below, -below, below, below}, {-2.0, 0.0}, {2.0, 0.0});
    EXPECT_EQ(tangent.count, 1);
    expectPoint(tangent.first, 0.0, 0.0);
    expectPoint(tangent.second, 0.0, 0.0);
}

TEST(IntersectLineAndEllipse2D, NearbyPointsHaveNoDirection) {
    const double below = std::nextafter(1e-7, 0.0);
    expectUntouched(crossInRect(kUnitCircle, {0.0, 0.0}, {below, -below}));
    EXPECT_EQ(crossInRect(kUnitCircle, {0.0, 0.0}, {1e-7, 0.0}).count, 2);
    EXPECT_EQ(crossInRect(kUnitCircle, {0.0, 0.0}, {0.0, -1e-7}).count, 2);
}

TEST(IntersectLineAndEllipse2D, OutputsMayBeNull) {
    tagMAT_RECT2D rect = kUnitCircle;
    double p0[] = {-2.0, 0.0};
    double p1[] = {2.0, 0.0};
    double value[] = {kUntouched, kUntouched};
    EXPECT_EQ(matIntersectLineAndEllipse2D(&rect, p0, p1, nullptr, nullptr), 2);
    EXPECT_EQ(matIntersectLineAndEllipse2D(&rect, p0, p1, value, nullptr), 2);
    expectPoint({value[0], value[1]}, -1.0, 0.0);
    EXPECT_EQ(matIntersectLineAndEllipse2D(&rect, p0, p1, nullptr, value), 2);
    expectPoint({value[0], value[1]}, 1.0, 0.0);
    expectPoint({p0[0], p0[1]}, -2.0, 0.0);
    expectPoint({p1[0], p1[1]}, 2.0, 0.0);
}

TEST(IntersectLineAndEllipse, OddExtentsLoseHalfAPixel) {
    // Centre (2, 2), semi-axes 2.
    const Result r = crossInIntegerRect(0, 0, 5, 5, {-3.0, 2.0}, {1.0, 2.0});
    EXPECT_EQ(r.count, 2);
    expectPoint(r.first, 0.0, 2.0);
    expectPoint(r.second, 4.0, 2.0);
}

TEST(IntersectLineAndEllipse, QuotientsAreCutTowardsZero) {
    // Centre (-2, -2), semi-axes 2.
    const Result r = crossInIntegerRect(-5, -5, 0, 0, {-9.0, -2.0}, {1.0, -2.0});
    EXPECT_EQ(r.count, 2);
    expectPoint(r.first, -4.0, -2.0);
    expectPoint(r.second, 0.0, -2.0);
}

TEST(IntersectLineAndEllipse, SumsWrapAround) {
    // 2147483645 + 2147483647 is -4 in 32 bits: the centre is (-2, 0), the semi-axes are 1.
    const Result r = crossInIntegerRect(2147483645, -1, 2147483647, 1, {-9.0, 0.0}, {-8.0, 0.0});
    EXPECT_EQ(r.count, 2);
    expectPoint(r.first, -3.0, 0.0);
    expectPoint(r.second, -1.0, 0.0);
}

TEST(IntersectLineAndEllipse, OutputsMayBeNullAndStayOnNoCrossing) {
    const int rect[] = {-1, -1, 1, 1};
    const tagPOINT2D p0{-2.0, 0.0};
    const tagPOINT2D p1{2.0, 0.0};
    tagPOINT2D value{kUntouched, kUntouched};
    EXPECT_EQ(matIntersectLineAndEllipse(rect, &p0, &p1, nullptr, nullptr), 2);
    EXPECT_EQ(matIntersectLineAndEllipse(rect, &p0, &p1, nullptr, &value), 2);
    expectPoint(value, 1.0, 0.0);
    EXPECT_EQ(matIntersectLineAndEllipse(rect, &p0, &p1, &value, nullptr), 2);
    expectPoint(value, -1.0, 0.0);
    expectUntouched(crossInIntegerRect(-1, -1, 1, 1, {-2.0, 3.0}, {2.0, 3.0}));
    expectUntouched(crossInIntegerRect(-1, -1, 1, 1, {2.0, 0.0}, {2.0, 0.0}));
}

struct Tilted {
    double center[2] = {10.0, 20.0};
    double semiAxisX = 2.0;
    double semiAxisY = 1.0;
    double angle = 90.0;
    int isCounterClockwise = 1;
    int isDegrees = 1;
    double first[2] = {3.0, 4.0};
    double second[2] = {5.0, 6.0};

    int cross(tagPOINT2D from, tagPOINT2D to, bool isSecondWanted = true) {
        double p0[] = {from.x, from.y};
        double p1[] = {to.x, to.y};
        return matIntersectLineAndArbitraryEllipse(center, semiAxisX, semiAxisY, angle, isCounterClockwise,
                                                   isDegrees, p0, p1, first,
                                                   isSecondWanted ? second : nullptr);
    }
};

TEST(IntersectLineAndArbitraryEllipse, QuarterTurnSwapsTheAxes) {
    Tilted ellipse;
    EXPECT_EQ(ellipse.cross({10.0, 0.0}, {10.0, 1.0}), 2);
    expectNear({ellipse.first[0], ellipse.first[1]}, 10.0, 18.0);
    expectNear({ellipse.second[0], ellipse.second[1]}, 10.0, 22.0);
    EXPECT_EQ(ellipse.cross({30.0, 20.0}, {31.0, 20.0}), 2);
    expectNear({ellipse.first[0], ellipse.first[1]}, 11.0, 20.0);
    expectNear({ellipse.second[0], ellipse.second[1]}, 9.0, 20.0);
}

TEST(IntersectLineAndArbitraryEllipse, AngleHasASenseAndAUnit) {
    Tilted ellipse;
    ellipse.isDegrees = 0;
    for (const int isCounterClockwise : {1, 0}) {
        SCOPED_TRACE(isCounterClockwise);
        ellipse.isCounterClockwise = isCounterClockwise;
        ellipse.angle = std::atan2(isCounterClockwise == 1 ? 0.5 : -0.5, 1.0);
        // The line runs along the first axis, in the direction (2, 1).
        EXPECT_EQ(ellipse.cross({6.0, 18.0}, {8.0, 19.0}), 2);
        expectNear({ellipse.first[0], ellipse.first[1]}, 10.0 - 4.0 / std::sqrt(5.0),
                   20.0 - 2.0 / std::sqrt(5.0));
        expectNear({ellipse.second[0], ellipse.second[1]}, 10.0 + 4.0 / std::sqrt(5.0),
                   20.0 + 2.0 / std::sqrt(5.0));
    }
}

TEST(IntersectLineAndArbitraryEllipse, SecondOfATangentStaysRelativeToTheCentre) {
    Tilted ellipse;
    EXPECT_EQ(ellipse.cross({0.0, 22.0}, {1.0, 22.0}), 1);
    EXPECT_NEAR(ellipse.first[0], 10.0, 1e-7);
    EXPECT_NEAR(ellipse.first[1], 22.0, 1e-7);
    EXPECT_NEAR(ellipse.second[0], 0.0, 1e-7);
    EXPECT_NEAR(ellipse.second[1], 2.0, 1e-7);
}

TEST(IntersectLineAndArbitraryEllipse, WithoutCrossingTheBuffersAreTurned) {
    Tilted ellipse;
    EXPECT_EQ(ellipse.cross({0.0, 40.0}, {1.0, 40.0}), 0);
    expectNear({ellipse.first[0], ellipse.first[1]}, -4.0, 3.0);
    expectNear({ellipse.second[0], ellipse.second[1]}, -6.0, 5.0);
    Tilted clockwise;
    clockwise.isCounterClockwise = 0;
    EXPECT_EQ(clockwise.cross({0.0, 40.0}, {0.0, 40.0}), 0);
    expectNear({clockwise.first[0], clockwise.first[1]}, 4.0, -3.0);
}

TEST(IntersectLineAndArbitraryEllipse, SecondMayBeNull) {
    Tilted ellipse;
    EXPECT_EQ(ellipse.cross({10.0, 0.0}, {10.0, 1.0}, false), 2);
    expectNear({ellipse.first[0], ellipse.first[1]}, 10.0, 18.0);
    EXPECT_EQ(ellipse.cross({0.0, 22.0}, {1.0, 22.0}, false), 1);
    EXPECT_EQ(ellipse.cross({0.0, 40.0}, {1.0, 40.0}, false), 0);
    expectPoint({ellipse.second[0], ellipse.second[1]}, 5.0, 6.0);
}

TEST(IntersectLineAndArbitraryEllipse, CrossingsLieOnTheEllipseAndOnTheLine) {
    constexpr std::uint32_t kSeed = 31;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> size(0.5, 5.0);
    std::uniform_real_distribution<double> place(-4.0, 4.0);
    int found = 0;
    for (int i = 0; i < 5000; ++i) {
        Tilted ellipse;
        ellipse.semiAxisX = size(random);
        ellipse.semiAxisY = size(random);
        ellipse.angle = place(random);
        ellipse.isDegrees = 0;
        const tagPOINT2D p0{10.0 + place(random), 20.0 + place(random)};
        const tagPOINT2D p1{10.0 + place(random), 20.0 + place(random)};
        const double length = std::hypot(p1.x - p0.x, p1.y - p0.y);
        if (length < 0.1 || ellipse.cross(p0, p1) < 2) continue;
        ++found;
        for (const double* crossing : {ellipse.first, ellipse.second}) {
            const double x = crossing[0] - 10.0;
            const double y = crossing[1] - 20.0;
            const double along =
                (x * std::cos(ellipse.angle) + y * std::sin(ellipse.angle)) / ellipse.semiAxisX;
            const double across =
                (y * std::cos(ellipse.angle) - x * std::sin(ellipse.angle)) / ellipse.semiAxisY;
            ASSERT_NEAR(along * along + across * across, 1.0, 1e-9);
            const double offLine =
                ((crossing[0] - p0.x) * (p1.y - p0.y) - (crossing[1] - p0.y) * (p1.x - p0.x)) / length;
            ASSERT_NEAR(offLine, 0.0, 1e-9);
        }
        ASSERT_LE(std::hypot(ellipse.first[0] - p0.x, ellipse.first[1] - p0.y),
                  std::hypot(ellipse.second[0] - p0.x, ellipse.second[1] - p0.y) + 1e-9);
    }
    EXPECT_GT(found, 1000);
}

}  // namespace
