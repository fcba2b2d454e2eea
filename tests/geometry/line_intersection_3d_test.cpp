#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

#include "velquad/geometry.h"

namespace {

constexpr double kNone = 1.7976931348623157e308;
constexpr double kUntouched = -77.25;

struct Result {
    int result = -1;
    tagPOINT3D point{kUntouched, kUntouched, kUntouched};
    double parameterA = kUntouched;
    double parameterB = kUntouched;
    int isParallel = -1;
};

Result cross(tagPOINT3D a0, tagPOINT3D a1, tagPOINT3D b0, tagPOINT3D b1) {
    Result r;
    r.result = matIntersectLines3D(&a0, &a1, &b0, &b1, &r.point, &r.parameterA, &r.parameterB, &r.isParallel);
    return r;
}

void expectCrossing(const Result& r, tagPOINT3D point, double parameterA, double parameterB, int isParallel) {
    EXPECT_EQ(r.result, 1);
    EXPECT_EQ(r.point.x, point.x);
    EXPECT_EQ(r.point.y, point.y);
    EXPECT_EQ(r.point.z, point.z);
    EXPECT_EQ(r.parameterA, parameterA);
    EXPECT_EQ(r.parameterB, parameterB);
    EXPECT_EQ(r.isParallel, isParallel);
}

void expectNone(const Result& r, int isParallel) {
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.point.x, kNone);
    EXPECT_EQ(r.point.y, kNone);
    EXPECT_EQ(r.point.z, kNone);
    EXPECT_EQ(r.parameterA, kNone);
    EXPECT_EQ(r.parameterB, kNone);
    EXPECT_EQ(r.isParallel, isParallel);
}

TEST(IntersectLines3D, CrossesWhicheverCoordinateIsDropped) {
    expectCrossing(cross({5.0, 0.0, 0.0}, {5.0, 2.0, 2.0}, {5.0, 0.0, 2.0}, {5.0, 2.0, 0.0}), {5.0, 1.0, 1.0},
                   0.5, 0.5, 0);
    expectCrossing(cross({0.0, 5.0, 0.0}, {2.0, 5.0, 2.0}, {0.0, 5.0, 2.0}, {2.0, 5.0, 0.0}), {1.0, 5.0, 1.0},
                   0.5, 0.5, 0);
    expectCrossing(cross({0.0, 0.0, 5.0}, {2.0, 2.0, 5.0}, {0.0, 2.0, 5.0}, {2.0, 0.0, 5.0}), {1.0, 1.0, 5.0},
                   0.5, 0.5, 0);
    expectCrossing(cross({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {4.0, 1.0, 0.0}, {4.0, 2.0, 0.0}), {4.0, 0.0, 0.0},
                   4.0, -1.0, 0);
}

TEST(IntersectLines3D, CrossesWhenTheNormalHasEqualComponents) {
    // The normal is (2, 2, 2): x is dropped.
    const Result r = cross({0.0, 0.0, 0.0}, {1.0, -1.0, 0.0}, {1.0, 0.0, -1.0}, {1.0, -2.0, 1.0});
    expectCrossing(r, {1.0, -1.0, 0.0}, 1.0, 0.5, 0);
}

TEST(IntersectLines3D, SkewLinesDoNotMeet) {
    expectNone(cross({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {0.0, 1.0, 1.0}), 0);
}

TEST(IntersectLines3D, LinesMeetWhenThePlacesDifferByLessThan1eMinus7) {
    const double below = std::nextafter(1e-7, 0.0);
    expectCrossing(cross({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.5, -1.0, below}, {0.5, 1.0, below}),
                   {0.5, 0.0, 0.0}, 0.5, 0.5, 0);
    expectNone(cross({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.5, -1.0, 1e-7}, {0.5, 1.0, 1e-7}), 0);
    expectNone(cross({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.5, -1.0, -1e-7}, {0.5, 1.0, -1e-7}), 0);
}

TEST(IntersectLines3D, ParallelLinesAtADistanceMeetInAnEndOfTheSecond) {
    expectCrossing(cross({0.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {1.0, 5.0, 0.0}, {3.0, 5.0, 0.0}), {1.0, 5.0, 0.0},
                   0.5, 0.0, 1);
    expectCrossing(cross({0.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {-3.0, 5.0, 0.0}, {1.0, 5.0, 0.0}),
                   {1.0, 5.0, 0.0}, 0.5, 1.0, 1);
}

TEST(IntersectLines3D, TieOfParallelLinesGivesTheSecondEnd) {
    expectCrossing(cross({0.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {-1.0, 0.0, 7.0}, {1.0, 0.0, 7.0}),
                   {1.0, 0.0, 7.0}, 0.5, 1.0, 1);
}

TEST(IntersectLines3D, OneLineIsParallelToItself) {
    expectCrossing(cross({0.0, 0.0, 0.0}, {2.0, 2.0, 2.0}, {1.0, 1.0, 1.0}, {4.0, 4.0, 4.0}), {1.0, 1.0, 1.0},
                   0.5, 0.0, 1);
}

TEST(IntersectLines3D, LinesAreParallelBelowANormalOf1eMinus7) {
    const double below = std::nextafter(1e-7, 0.0);
    expectCrossing(cross({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {3.0, 0.0, 0.0}, {4.0, below, 0.0}),
                   {3.0, 0.0, 0.0}, 3.0, 0.0, 1);
    expectCrossing(cross({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {3.0, 0.0, 0.0}, {4.0, 1e-7, 0.0}),
                   {3.0, 0.0, 0.0}, 3.0, 0.0, 0);
}

TEST(IntersectLines3D, NormalWithSmallComponentsHasNoResult) {
    // The normal is (6e-8, 6e-8, 6e-8) with a length of 1.04e-7.
    expectNone(cross({0.0, 0.0, 0.0}, {1.0, -1.0, 0.0}, {0.0, 0.0, 0.0}, {1.0, -1.0 + 6e-8, -6e-8}), 1);
}

TEST(IntersectLines3D, TwoPointsMeetWhenTheyAreTheSame) {
    const double below = std::nextafter(1e-7, 0.0);
    expectCrossing(cross({0.0, 0.0, 0.0}, {below, -below, below}, {below, below, -below}, {0.0, 0.0, 0.0}),
                   {0.0, 0.0, 0.0}, 0.0, 0.0, 1);
    expectNone(cross({0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 1e-7}, {0.0, 0.0, 1e-7}), 1);
    expectNone(cross({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, {1.0, 2.0, 4.0}, {1.0, 2.0, 4.0}), 1);
}

TEST(IntersectLines3D, APointMeetsAnyLine) {
    expectCrossing(cross({1.0, 9.0, 9.0}, {1.0, 9.0, 9.0}, {0.0, 0.0, 0.0}, {4.0, 0.0, 0.0}), {1.0, 9.0, 9.0},
                   0.0, 0.25, 1);
    expectCrossing(cross({0.0, 0.0, 0.0}, {4.0, 0.0, 0.0}, {1.0, 9.0, 9.0}, {1.0, 9.0, 9.0}), {1.0, 9.0, 9.0},
                   0.25, 0.0, 1);
}

TEST(IntersectLines3D, ALineOf1eMinus7IsNoPoint) {
    // The line along x is not a point, and it is parallel to the other one.
    expectCrossing(cross({0.0, 0.0, 0.0}, {1e-7, 0.0, 0.0}, {1e-7, 0.0, 0.0}, {4.0, 0.0, 0.0}),
                   {1e-7, 0.0, 0.0}, 1.0, 0.0, 1);
}

TEST(IntersectLines3D, AnyOutputMayBeNull) {
    const tagPOINT3D cases[][4] = {
        {{0.0, 0.0, 5.0}, {2.0, 2.0, 5.0}, {0.0, 2.0, 5.0}, {2.0, 0.0, 5.0}},
        {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {0.0, 1.0, 1.0}},
        {{0.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {1.0, 5.0, 0.0}, {3.0, 5.0, 0.0}},
    };
    for (const auto& p : cases) {
        const Result all = cross(p[0], p[1], p[2], p[3]);
        for (unsigned wanted = 0; wanted < 16; ++wanted) {
            SCOPED_TRACE(wanted);
            Result r;
            r.result = matIntersectLines3D(&p[0], &p[1], &p[2], &p[3], wanted & 1 ? &r.point : nullptr,
                                           wanted & 2 ? &r.parameterA : nullptr,
                                           wanted & 4 ? &r.parameterB : nullptr,
                                           wanted & 8 ? &r.isParallel : nullptr);
            EXPECT_EQ(r.result, all.result);
            EXPECT_EQ(r.point.x, wanted & 1 ? all.point.x : kUntouched);
            EXPECT_EQ(r.point.z, wanted & 1 ? all.point.z : kUntouched);
            EXPECT_EQ(r.parameterA, wanted & 2 ? all.parameterA : kUntouched);
            EXPECT_EQ(r.parameterB, wanted & 4 ? all.parameterB : kUntouched);
            EXPECT_EQ(r.isParallel, wanted & 8 ? all.isParallel : -1);
        }
    }
}

TEST(IntersectLines3D, FindsThePointThatLinesWereBuiltThrough) {
    constexpr std::uint32_t kSeed = 21;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<int> small(-8, 8);
    const auto point = [&] {
        return tagPOINT3D{static_cast<double>(small(random)), static_cast<double>(small(random)),
                          static_cast<double>(small(random))};
    };
    int crossings = 0;
    for (int i = 0; i < 20000; ++i) {
        const tagPOINT3D common = point(), da = point(), db = point();
        const double t = small(random), s = small(random);
        const tagPOINT3D a0{common.x - t * da.x, common.y - t * da.y, common.z - t * da.z};
        const tagPOINT3D b0{common.x - s * db.x, common.y - s * db.y, common.z - s * db.z};
        const tagPOINT3D a1{a0.x + da.x, a0.y + da.y, a0.z + da.z};
        const tagPOINT3D b1{b0.x + db.x, b0.y + db.y, b0.z + db.z};
        const Result r = cross(a0, a1, b0, b1);
        if (r.isParallel == 1) continue;
        // Whole numbers below 2^53: determinants are exact, and so is every quotient that is whole.
        expectCrossing(r, common, t, s, 0);
        if (HasFailure()) return;
        ++crossings;
    }
    EXPECT_GT(crossings, 15000);
}

}  // namespace
