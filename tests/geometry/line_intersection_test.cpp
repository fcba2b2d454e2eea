#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "geometry/line_intersection.h"
#include "tests/support/intersection_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::referenceLines;
using velquad::test::WideIntegers;
using velquad::test::WrappedIntegers;

constexpr double kNone = 1.7976931348623157e308;
constexpr double kUntouched = -77.25;

struct Result {
    int result = -1;
    tagPOINT2D point{kUntouched, kUntouched};
    double parameterA = kUntouched;
    double parameterB = kUntouched;
    int isParallel = -1;
};

Result cross2D(tagPOINT2D a0, tagPOINT2D a1, tagPOINT2D b0, tagPOINT2D b1) {
    Result r;
    r.result = matIntersectLines2D(&a0, &a1, &b0, &b1, &r.point, &r.parameterA, &r.parameterB, &r.isParallel);
    return r;
}

Result cross2L(tagPOINT a0, tagPOINT a1, tagPOINT b0, tagPOINT b1) {
    Result r;
    r.result = matIntersectLines2L(&a0, &a1, &b0, &b1, &r.point, &r.parameterA, &r.parameterB, &r.isParallel);
    return r;
}

void expectCrossing(const Result& r, tagPOINT2D point, double parameterA, double parameterB, int isParallel) {
    EXPECT_EQ(r.result, 1);
    EXPECT_EQ(r.point.x, point.x);
    EXPECT_EQ(r.point.y, point.y);
    EXPECT_EQ(r.parameterA, parameterA);
    EXPECT_EQ(r.parameterB, parameterB);
    EXPECT_EQ(r.isParallel, isParallel);
}

void expectApart(const Result& r) {
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.point.x, kUntouched);
    EXPECT_EQ(r.point.y, kUntouched);
    EXPECT_EQ(r.parameterA, kNone);
    EXPECT_EQ(r.parameterB, kUntouched);
    EXPECT_EQ(r.isParallel, 1);
}

TEST(IntersectLines2D, CrossesInOnePoint) {
    expectCrossing(cross2D({0.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}, {2.0, 0.0}), {1.0, 1.0}, 0.5, 0.5, 0);
    expectCrossing(cross2D({0.0, 0.0}, {1.0, 0.0}, {4.0, 1.0}, {4.0, 2.0}), {4.0, 0.0}, 4.0, -1.0, 0);
}

TEST(IntersectLines2D, OneLineMeetsInItsFirstPoint) {
    expectCrossing(cross2D({1.0, 1.0}, {2.0, 2.0}, {5.0, 5.0}, {7.0, 7.0}), {1.0, 1.0}, 0.0, -2.0, 1);
}

TEST(IntersectLines2D, ParallelLinesLeavePointAndSecondParameter) {
    expectApart(cross2D({0.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}, {1.0, 2.0}));
    expectApart(cross2D({0.0, 0.0}, {1.0, 1.0}, {1.0, 2.0}, {0.0, 1.0}));
}

TEST(IntersectLines2D, LinesAreOneBelow1eMinus40) {
    const double below = std::nextafter(1e-40, 0.0);
    EXPECT_EQ(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, below}, {1.0, below}).result, 1);
    EXPECT_EQ(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, -below}, {1.0, -below}).result, 1);
    expectApart(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, 1e-40}, {1.0, 1e-40}));
    expectApart(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, -1e-40}, {1.0, -1e-40}));
}

TEST(IntersectLines2D, OnlyAnExactZeroIsParallel) {
    const Result r = cross2D({0.0, 0.0}, {1.0, 1e-300}, {0.0, 1.0}, {1.0, 1.0});
    EXPECT_EQ(r.result, 1);
    EXPECT_EQ(r.isParallel, 0);
    EXPECT_EQ(r.parameterA, 1.0 / 1e-300);
}

TEST(IntersectLines2D, SecondLineWithoutLengthIsTheSameLineAnywhere) {
    expectCrossing(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, 0.0}, {0.0, 0.0}), {0.0, 0.0}, 0.0, 0.0, 1);
    expectCrossing(cross2D({0.0, 0.0}, {1.0, 0.0}, {5.0, 5.0}, {5.0, 5.0}), {0.0, 0.0}, 0.0, kNone, 1);
}

TEST(IntersectLines2D, FirstLineWithoutLengthMustLieOnTheSecond) {
    expectCrossing(cross2D({1.0, 0.0}, {1.0, 0.0}, {0.0, 0.0}, {4.0, 0.0}), {1.0, 0.0}, 0.0, 0.25, 1);
    expectApart(cross2D({1.0, 1.0}, {1.0, 1.0}, {0.0, 0.0}, {4.0, 0.0}));
}

TEST(IntersectLines2D, KeepsTheSignOfAZeroParameter) {
    // Numerator: -1 * 0.0 + 0.0 * -2 = -0.0, denominator -2; and 1 * 0.0 + 0.0 * 2 = 0.0, denominator 2.
    EXPECT_FALSE(std::signbit(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, -1.0}, {0.0, 1.0}).parameterA));
    EXPECT_FALSE(std::signbit(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}, {0.0, -1.0}).parameterA));
    EXPECT_TRUE(std::signbit(cross2D({0.0, 0.0}, {-1.0, 0.0}, {0.0, -1.0}, {0.0, 1.0}).parameterA));
}

TEST(IntersectLines2D, NotANumberIsACrossingWithoutPlace) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Result r = cross2D({0.0, 0.0}, {nan, 1.0}, {1.0, 0.0}, {1.0, 1.0});
    EXPECT_EQ(r.result, 1);
    EXPECT_EQ(r.isParallel, 0);
    EXPECT_TRUE(std::isnan(r.parameterA));
}

TEST(IntersectLines2D, OutputMayBeAnInput) {
    tagPOINT2D a0{0.0, 0.0};
    tagPOINT2D a1{2.0, 2.0};
    tagPOINT2D b0{0.0, 2.0};
    tagPOINT2D b1{3.0, -1.0};
    double parameterB = 0.0;
    EXPECT_EQ(matIntersectLines2D(&a0, &a1, &b0, &b1, &b0, nullptr, &parameterB, nullptr), 1);
    EXPECT_EQ(b0.x, 1.0);
    EXPECT_EQ(b0.y, 1.0);
    EXPECT_EQ(parameterB, 1.0 / -3.0 * -1.0);
}

TEST(IntersectLines2L, CrossesInOnePoint) {
    expectCrossing(cross2L({0, 0}, {3, 3}, {0, 3}, {3, 0}), {1.5, 1.5}, 0.5, 0.5, 0);
    expectCrossing(cross2L({0, 0}, {1, 0}, {4, 1}, {4, 2}), {4.0, 0.0}, 4.0, -1.0, 0);
}

TEST(IntersectLines2L, OneLineMeetsInItsFirstPoint) {
    expectCrossing(cross2L({1, 1}, {2, 2}, {5, 5}, {7, 7}), {1.0, 1.0}, 0.0, -2.0, 1);
}

TEST(IntersectLines2L, ParallelLinesLeavePointAndSecondParameter) {
    expectApart(cross2L({0, 0}, {1, 1}, {0, 1}, {1, 2}));
}

TEST(IntersectLines2L, LinesWithoutLength) {
    expectCrossing(cross2L({0, 0}, {1, 0}, {5, 5}, {5, 5}), {0.0, 0.0}, 0.0, kNone, 1);
    expectCrossing(cross2L({1, 0}, {1, 0}, {0, 0}, {4, 0}), {1.0, 0.0}, 0.0, 0.25, 1);
    expectApart(cross2L({1, 1}, {1, 1}, {0, 0}, {4, 0}));
}

TEST(IntersectLines2L, KeepsTheSignOfAZeroParameter) {
    EXPECT_TRUE(std::signbit(cross2L({0, 0}, {1, 0}, {0, -1}, {0, 1}).parameterA));
    EXPECT_FALSE(std::signbit(cross2L({0, 0}, {1, 0}, {0, 1}, {0, -1}).parameterA));
}

TEST(IntersectLines2L, DeterminantsWrapAround) {
    // 65536 * 65536 is 0 in 32 bits: perpendicular lines count as parallel, and those through one point as one.
    expectCrossing(cross2L({0, 0}, {65536, 0}, {0, 0}, {0, 65536}), {0.0, 0.0}, 0.0, 0.0, 1);
    expectApart(cross2L({0, 0}, {65536, 0}, {1, 0}, {1, 65536}));
}

TEST(IntersectLines2L, DifferencesWrapBeforeTheyAreConverted) {
    // The first direction is (-1, 0) in 32 bits.
    const Result r = cross2L({-2147483647 - 1, 0}, {2147483647, 0}, {-2147483647, 5}, {-2147483647, 6});
    expectCrossing(r, {-2147483647.0, 0.0}, -1.0, -5.0, 0);
}

TEST(IntersectLines2L, BareNameIsTheSameFunction) {
    const tagPOINT a0{0, 0}, a1{3, 3}, b0{0, 3}, b1{3, 0};
    Result r;
    r.result = matIntersectLines(&a0, &a1, &b0, &b1, &r.point, &r.parameterA, &r.parameterB, &r.isParallel);
    expectCrossing(r, {1.5, 1.5}, 0.5, 0.5, 0);
}

/// Runs an export with every choice of wanted outputs and compares what is stored.
template <class Function, class Point>
void expectAnyOutputMayBeNull(Function function, const Point (&p)[4]) {
    Result all;
    all.result =
        function(&p[0], &p[1], &p[2], &p[3], &all.point, &all.parameterA, &all.parameterB, &all.isParallel);
    for (unsigned wanted = 0; wanted < 16; ++wanted) {
        SCOPED_TRACE(wanted);
        Result r;
        r.result = function(&p[0], &p[1], &p[2], &p[3], wanted & 1 ? &r.point : nullptr,
                            wanted & 2 ? &r.parameterA : nullptr, wanted & 4 ? &r.parameterB : nullptr,
                            wanted & 8 ? &r.isParallel : nullptr);
        EXPECT_EQ(r.result, all.result);
        EXPECT_EQ(r.point.x, wanted & 1 ? all.point.x : kUntouched);
        EXPECT_EQ(r.point.y, wanted & 1 ? all.point.y : kUntouched);
        EXPECT_EQ(r.parameterA, wanted & 2 ? all.parameterA : kUntouched);
        EXPECT_EQ(r.parameterB, wanted & 4 ? all.parameterB : kUntouched);
        EXPECT_EQ(r.isParallel, wanted & 8 ? all.isParallel : -1);
    }
}

TEST(IntersectLines, AnyOutputMayBeNull) {
    expectAnyOutputMayBeNull(matIntersectLines2D, {tagPOINT2D{0.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}, {2.0, 0.0}});
    expectAnyOutputMayBeNull(matIntersectLines2D, {tagPOINT2D{0.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}, {1.0, 2.0}});
    expectAnyOutputMayBeNull(matIntersectLines2L, {tagPOINT{0, 0}, {2, 2}, {0, 2}, {2, 0}});
    expectAnyOutputMayBeNull(matIntersectLines2L, {tagPOINT{0, 0}, {1, 1}, {0, 1}, {1, 2}});
    expectAnyOutputMayBeNull(matIntersectLines, {tagPOINT{0, 0}, {1, 1}, {3, 3}, {2, 2}});
}

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

template <class Integers>
void compareWithReference(std::uint32_t seed, int range, int rounds) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> coordinate(-range, range);
    const auto point = [&] { return tagPOINT{coordinate(random), coordinate(random)}; };
    for (int i = 0; i < rounds; ++i) {
        const tagPOINT a0 = point(), a1 = point(), b0 = point(), b1 = point();
        const auto expected = referenceLines<Integers>(a0, a1, b0, b1);
        const Result r = cross2L(a0, a1, b0, b1);
        ASSERT_EQ(r.result, expected.result);
        ASSERT_EQ(r.isParallel, expected.isParallel);
        ASSERT_EQ(bits(r.parameterA), bits(expected.parameterA));
        if (r.result == 0) continue;
        ASSERT_EQ(bits(r.point.x), bits(expected.point.x));
        ASSERT_EQ(bits(r.point.y), bits(expected.point.y));
        if (std::isnan(expected.parameterB)) {
            ASSERT_TRUE(std::isnan(r.parameterB));
        } else {
            ASSERT_EQ(bits(r.parameterB), bits(expected.parameterB));
        }
    }
}

TEST(IntersectLines2L, AgreesWithWideIntegersWhereNothingWraps) {
    compareWithReference<WideIntegers>(1, 3, 20000);
    compareWithReference<WideIntegers>(2, 100, 20000);
    compareWithReference<WideIntegers>(3, 16383, 20000);
}

TEST(IntersectLines2L, AgreesWithWrappedIntegersEverywhere) {
    compareWithReference<WrappedIntegers>(4, 65536, 20000);
    compareWithReference<WrappedIntegers>(5, 2147483647, 20000);
}

TEST(IntersectLines2L, AgreesWithWrappedIntegersAtTheEndsOfTheRange) {
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    const int values[] = {kMin, kMin + 1, -65536, -1, 0, 1, 65536, kMax - 1, kMax};
    std::mt19937 random(6);
    std::uniform_int_distribution<int> pick(0, 8);
    const auto point = [&] { return tagPOINT{values[pick(random)], values[pick(random)]}; };
    for (int i = 0; i < 50000; ++i) {
        const tagPOINT a0 = point(), a1 = point(), b0 = point(), b1 = point();
        const auto expected = referenceLines<WrappedIntegers>(a0, a1, b0, b1);
        const Result r = cross2L(a0, a1, b0, b1);
        ASSERT_EQ(r.result, expected.result);
        ASSERT_EQ(r.isParallel, expected.isParallel);
        ASSERT_EQ(bits(r.parameterA), bits(expected.parameterA));
        if (r.result == 0) continue;
        ASSERT_EQ(bits(r.point.x), bits(expected.point.x));
        ASSERT_EQ(bits(r.point.y), bits(expected.point.y));
        ASSERT_TRUE(bits(r.parameterB) == bits(expected.parameterB) ||
                    (std::isnan(r.parameterB) && std::isnan(expected.parameterB)));
    }
}

}  // namespace
