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

using velquad::geometry::crossSegments;
using velquad::geometry::SegmentCrossing;
using velquad::test::referenceSegments;
using velquad::test::WideIntegers;
using velquad::test::WrappedIntegers;

constexpr double kUntouched = -77.25;

struct Result {
    int result = -1;
    tagPOINT2D point{kUntouched, kUntouched};
    double parameterA = kUntouched;
    double parameterB = kUntouched;
    int isParallel = -1;
};

/// Also checks that the answer alone, without any output, is the same.
Result cross2D(tagPOINT2D a0, tagPOINT2D a1, tagPOINT2D b0, tagPOINT2D b1) {
    Result r;
    r.result =
        matIntersectSegments2D(&a0, &a1, &b0, &b1, &r.point, &r.parameterA, &r.parameterB, &r.isParallel);
    EXPECT_EQ(crossSegments(a0, a1, b0, b1), r.result == 1);
    return r;
}

Result cross2L(tagPOINT a0, tagPOINT a1, tagPOINT b0, tagPOINT b1) {
    Result r;
    r.result =
        matIntersectSegments2L(&a0, &a1, &b0, &b1, &r.point, &r.parameterA, &r.parameterB, &r.isParallel);
    EXPECT_EQ(crossSegments(a0, a1, b0, b1), r.result == 1);
    return r;
}

void expectContact(const Result& r, tagPOINT2D point, double parameterA, double parameterB, int isParallel) {
    EXPECT_EQ(r.result, 1);
    EXPECT_EQ(r.point.x, point.x);
    EXPECT_EQ(r.point.y, point.y);
    EXPECT_EQ(r.parameterA, parameterA);
    EXPECT_EQ(r.parameterB, parameterB);
    EXPECT_EQ(r.isParallel, isParallel);
}

constexpr int kFlagUntouched = -1;

void expectNoContact(const Result& r, int isParallel) {
    EXPECT_EQ(r.result, 0);
    EXPECT_EQ(r.point.x, kUntouched);
    EXPECT_EQ(r.point.y, kUntouched);
    EXPECT_EQ(r.parameterA, kUntouched);
    EXPECT_EQ(r.parameterB, kUntouched);
    EXPECT_EQ(r.isParallel, isParallel);
}

TEST(IntersectSegments2D, CrossesInOnePoint) {
    expectContact(cross2D({0.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}, {2.0, 0.0}), {1.0, 1.0}, 0.5, 0.5, 0);
}

TEST(IntersectSegments2D, EndOfTheFirstSegmentDoesNotCount) {
    expectNoContact(cross2D({0.0, 0.0}, {1.0, 0.0}, {1.0, -1.0}, {1.0, 1.0}), 0);
    expectContact(cross2D({1.0, -1.0}, {1.0, 1.0}, {0.0, 0.0}, {1.0, 0.0}), {1.0, 0.0}, 0.5, 1.0, 0);
    expectContact(cross2D({0.0, 0.0}, {1.0, 0.0}, {0.0, -1.0}, {0.0, 1.0}), {0.0, 0.0}, 0.0, 0.5, 0);
}

TEST(IntersectSegments2D, FirstSegmentIsOpenAt1) {
    const double below = std::nextafter(1.0, 0.0);
    EXPECT_EQ(cross2D({0.0, 0.0}, {1.0, 0.0}, {below, -1.0}, {below, 1.0}).parameterA, below);
    expectNoContact(cross2D({0.0, 0.0}, {1.0, 0.0}, {1.00000005, -1.0}, {1.00000005, 1.0}), 0);
}

TEST(IntersectSegments2D, FirstSegmentBeginsAtMinus1eMinus40) {
    const double inside = std::nextafter(-1e-40, 0.0);
    EXPECT_EQ(cross2D({0.0, 0.0}, {1.0, 0.0}, {inside, -1.0}, {inside, 1.0}).parameterA, inside);
    expectNoContact(cross2D({0.0, 0.0}, {1.0, 0.0}, {-1e-40, -1.0}, {-1e-40, 1.0}), 0);
    expectNoContact(cross2D({0.0, 0.0}, {1.0, 0.0}, {-5e-8, -1.0}, {-5e-8, 1.0}), 0);
}

TEST(IntersectSegments2D, SecondSegmentReaches1eMinus7BeyondItsEnds) {
    // A vertical first segment at x crosses the second one at the parameter x exactly.
    const auto at = [](double x) { return cross2D({x, -1.0}, {x, 1.0}, {0.0, 0.0}, {1.0, 0.0}); };
    EXPECT_EQ(at(std::nextafter(-1e-7, 0.0)).parameterB, std::nextafter(-1e-7, 0.0));
    EXPECT_EQ(at(std::nextafter(1.0000001, 0.0)).parameterB, std::nextafter(1.0000001, 0.0));
    expectNoContact(at(-1e-7), 0);
    expectNoContact(at(1.0000001), 0);
}

TEST(IntersectSegments2D, BoxesBeyondTheMarginLeaveTheFlag) {
    const auto atX = [](double x) { return cross2D({x, -1.0}, {x, 1.0}, {0.0, 0.0}, {1.0, 0.0}); };
    const auto atY = [](double y) { return cross2D({-1.0, y}, {1.0, y}, {0.0, 0.0}, {0.0, 1.0}); };
    expectNoContact(atX(std::nextafter(-1e-7, -1.0)), kFlagUntouched);
    expectNoContact(atX(std::nextafter(1.0000001, 2.0)), kFlagUntouched);
    expectNoContact(atY(std::nextafter(-1e-7, -1.0)), kFlagUntouched);
    expectNoContact(atY(std::nextafter(1.0000001, 2.0)), kFlagUntouched);
    expectNoContact(atY(-1e-7), 0);
    expectNoContact(atY(1.0000001), 0);
}

TEST(IntersectSegments2D, ChainMeetsASharedVertexOnce) {
    const tagPOINT2D chain[] = {{0.0, 0.0}, {1.0, 0.0}, {2.0, 0.5}, {3.0, 0.5}};
    int contacts = 0;
    for (int i = 0; i < 3; ++i)
        contacts += cross2D(chain[i], chain[i + 1], {1.0, -1.0}, {1.0, 1.0}).result;
    EXPECT_EQ(contacts, 1);
}

TEST(IntersectSegments2D, OverlapGivesAnEndOfTheSecondSegment) {
    expectContact(cross2D({0.0, 0.0}, {4.0, 0.0}, {1.0, 0.0}, {9.0, 0.0}), {1.0, 0.0}, 0.25, 0.0, 1);
    expectContact(cross2D({0.0, 0.0}, {4.0, 0.0}, {-1.0, 0.0}, {1.0, 0.0}), {1.0, 0.0}, 0.25, 1.0, 1);
    expectContact(cross2D({0.0, 0.0}, {4.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}), {1.0, 0.0}, 0.25, 0.0, 1);
    expectContact(cross2D({0.0, 0.0}, {4.0, 0.0}, {0.0, 0.0}, {4.0, 0.0}), {0.0, 0.0}, 0.0, 0.0, 1);
    // b0 is on the open end of the first segment, so b1 is next.
    expectContact(cross2D({0.0, 0.0}, {4.0, 0.0}, {4.0, 0.0}, {0.0, 0.0}), {0.0, 0.0}, 0.0, 1.0, 1);
}

TEST(IntersectSegments2D, FirstSegmentInsideTheSecondGivesItsStart) {
    expectContact(cross2D({1.0, 0.0}, {2.0, 0.0}, {0.0, 0.0}, {4.0, 0.0}), {1.0, 0.0}, 0.0, 0.25, 1);
}

TEST(IntersectSegments2D, CollinearSegmentsTouchAtTheStartOfTheFirst) {
    expectNoContact(cross2D({0.0, 0.0}, {1.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}), 1);
    expectContact(cross2D({1.0, 0.0}, {2.0, 0.0}, {0.0, 0.0}, {1.0, 0.0}), {1.0, 0.0}, 0.0, 1.0, 1);
    expectNoContact(cross2D({0.0, 0.0}, {1.0, 0.0}, {1.00000005, 0.0}, {2.0, 0.0}), 1);
}

TEST(IntersectSegments2D, CollinearFirstStartMayLieJustBeyondTheSecond) {
    const Result r = cross2D({1.00000005, 0.0}, {2.0, 0.0}, {0.0, 0.0}, {1.0, 0.0});
    expectContact(r, {1.00000005, 0.0}, 0.0, 1.00000005, 1);
    const Result mirrored = cross2D({-0.00000005, 0.0}, {-2.0, 0.0}, {0.0, 0.0}, {1.0, 0.0});
    expectContact(mirrored, {-0.00000005, 0.0}, 0.0, -0.00000005, 1);
}

TEST(IntersectSegments2D, ParallelSegmentsStoreTheFlag) {
    expectNoContact(cross2D({0.0, 0.0}, {4.0, 4.0}, {1.0, 0.0}, {5.0, 4.0}), 1);
}

TEST(IntersectSegments2D, SegmentsWithoutLength) {
    // A second one is a part of the first one's line, a first one must lie on the second.
    expectContact(cross2D({0.0, 0.0}, {10.0, 9.0}, {5.0, 0.0}, {5.0, 0.0}), {5.0, 0.0}, 0.5, 0.0, 1);
    expectNoContact(cross2D({0.0, 0.0}, {10.0, 9.0}, {10.0, 9.0}, {10.0, 9.0}), 1);
    expectNoContact(cross2D({5.0, 0.0}, {5.0, 0.0}, {0.0, 0.0}, {10.0, 9.0}), 1);
    expectContact(cross2D({5.0, 4.5}, {5.0, 4.5}, {0.0, 0.0}, {10.0, 9.0}), {5.0, 4.5}, 0.0, 0.5, 1);
    expectContact(cross2D({5.0, 4.5}, {5.0, 4.5}, {5.0, 4.5}, {5.0, 4.5}), {5.0, 4.5}, 0.0, 0.0, 1);
    expectNoContact(cross2D({5.0, 4.5}, {5.0, 4.5}, {5.00000005, 4.5}, {5.00000005, 4.5}), 1);
}

TEST(IntersectSegments2D, NotANumberHasNoContact) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(cross2D({nan, 0.0}, {2.0, 2.0}, {0.0, 2.0}, {2.0, 0.0}).result, 0);
    EXPECT_EQ(cross2D({0.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}, {2.0, nan}).result, 0);
    EXPECT_EQ(cross2D({nan, nan}, {nan, nan}, {nan, nan}, {nan, nan}).result, 0);
}

TEST(IntersectSegments2L, CrossesInOnePoint) {
    expectContact(cross2L({0, 0}, {3, 3}, {0, 3}, {3, 0}), {1.5, 1.5}, 0.5, 0.5, 0);
}

TEST(IntersectSegments2L, BothEndsOfBothSegmentsCount) {
    expectContact(cross2L({0, 0}, {1, 0}, {1, -1}, {1, 1}), {1.0, 0.0}, 1.0, 0.5, 0);
    expectContact(cross2L({1, -1}, {1, 1}, {0, 0}, {1, 0}), {1.0, 0.0}, 0.5, 1.0, 0);
    expectContact(cross2L({0, 0}, {1, 0}, {0, -1}, {0, 1}), {0.0, 0.0}, 0.0, 0.5, 0);
}

TEST(IntersectSegments2L, BoxesApartLeaveTheFlag) {
    expectNoContact(cross2L({2, 0}, {3, 9}, {0, 0}, {1, 9}), kFlagUntouched);
    expectNoContact(cross2L({0, 0}, {1, 9}, {2, 0}, {3, 9}), kFlagUntouched);
    expectNoContact(cross2L({0, 2}, {9, 3}, {0, 0}, {9, 1}), kFlagUntouched);
    expectNoContact(cross2L({0, 0}, {9, 1}, {0, 2}, {9, 3}), kFlagUntouched);
    expectNoContact(cross2L({0, 0}, {1, 1}, {2, 2}, {3, 3}), kFlagUntouched);
}

TEST(IntersectSegments2L, TouchingBoxesStoreTheFlag) {
    expectNoContact(cross2L({0, 0}, {4, 4}, {1, 0}, {5, 4}), 1);
    expectNoContact(cross2L({0, 0}, {4, 4}, {3, 0}, {4, 1}), 1);
    expectNoContact(cross2L({0, 0}, {4, 4}, {3, 0}, {4, 2}), 0);
    expectNoContact(cross2L({3, 0}, {4, 2}, {0, 0}, {4, 4}), 0);
}

// Pairs whose lines cross at 1/d before the start of one segment, d being the determinant of the directions:
// d = 3162 * 3163 + 1, 3161 * 3163 + 1 and 2151 * 4649 + 1 = 10 000 000.
struct NearMiss {
    tagPOINT a0, a1, b0, b1;
};
constexpr NearMiss kInside{{0, 0}, {3162, 1}, {-1, 3162}, {0, -1}};
constexpr NearMiss kOutside{{0, 0}, {3161, 1}, {-1, 3162}, {0, -1}};
constexpr NearMiss kAtTolerance{{0, 0}, {2151, 1}, {-1, 4648}, {0, -1}};

TEST(IntersectSegments2L, FirstSegmentReaches1eMinus7BeyondItsStart) {
    EXPECT_EQ(cross2L(kInside.a0, kInside.a1, kInside.b0, kInside.b1).parameterA, -1.0 / 10001407.0);
    expectNoContact(cross2L(kAtTolerance.a0, kAtTolerance.a1, kAtTolerance.b0, kAtTolerance.b1), 0);
    expectNoContact(cross2L(kOutside.a0, kOutside.a1, kOutside.b0, kOutside.b1), 0);
}

TEST(IntersectSegments2L, FirstSegmentReaches1eMinus7BeyondItsEnd) {
    EXPECT_EQ(cross2L(kInside.a1, kInside.a0, kInside.b0, kInside.b1).parameterA, 10001408.0 / 10001407.0);
    expectNoContact(cross2L(kAtTolerance.a1, kAtTolerance.a0, kAtTolerance.b0, kAtTolerance.b1), 0);
    expectNoContact(cross2L(kOutside.a1, kOutside.a0, kOutside.b0, kOutside.b1), 0);
}

TEST(IntersectSegments2L, SecondSegmentReaches1eMinus7BeyondItsEnds) {
    EXPECT_NEAR(cross2L(kInside.b0, kInside.b1, kInside.a0, kInside.a1).parameterB, -1.0 / 10001407.0, 1e-12);
    EXPECT_NEAR(cross2L(kInside.b0, kInside.b1, kInside.a1, kInside.a0).parameterB, 10001408.0 / 10001407.0,
                1e-12);
    expectNoContact(cross2L(kOutside.b0, kOutside.b1, kOutside.a0, kOutside.a1), 0);
    expectNoContact(cross2L(kOutside.b0, kOutside.b1, kOutside.a1, kOutside.a0), 0);
}

TEST(IntersectSegments2L, OverlapGivesAnEndOfTheSecondSegment) {
    expectContact(cross2L({0, 0}, {10, 0}, {5, 0}, {15, 0}), {5.0, 0.0}, 0.5, 0.0, 1);
    expectContact(cross2L({0, 0}, {10, 0}, {-5, 0}, {5, 0}), {5.0, 0.0}, 0.5, 1.0, 1);
    expectContact(cross2L({0, 0}, {10, 0}, {10, 0}, {20, 0}), {10.0, 0.0}, 1.0, 0.0, 1);
    expectContact(cross2L({0, 0}, {10, 0}, {20, 0}, {10, 0}), {10.0, 0.0}, 1.0, 1.0, 1);
    expectContact(cross2L({0, 0}, {10, 0}, {10, 0}, {0, 0}), {10.0, 0.0}, 1.0, 0.0, 1);
}

TEST(IntersectSegments2L, FirstSegmentInsideTheSecondGivesItsStart) {
    expectContact(cross2L({3, 0}, {4, 0}, {0, 0}, {10, 0}), {3.0, 0.0}, 0.0, 0.3, 1);
}

TEST(IntersectSegments2L, SegmentsWithoutLength) {
    expectContact(cross2L({0, 0}, {10, 9}, {5, 0}, {5, 0}), {5.0, 0.0}, 0.5, 0.0, 1);
    expectContact(cross2L({0, 0}, {10, 9}, {10, 9}, {10, 9}), {10.0, 9.0}, 1.0, 0.0, 1);
    expectNoContact(cross2L({5, 0}, {5, 0}, {0, 0}, {10, 9}), 1);
    expectContact(cross2L({5, 5}, {5, 5}, {0, 0}, {10, 10}), {5.0, 5.0}, 0.0, 0.5, 1);
    expectContact(cross2L({5, 5}, {5, 5}, {5, 5}, {5, 5}), {5.0, 5.0}, 0.0, 0.0, 1);
    expectNoContact(cross2L({5, 5}, {5, 5}, {5, 6}, {5, 6}), kFlagUntouched);
}

TEST(IntersectSegments2L, WrappedDeterminantMakesPerpendicularSegmentsParallel) {
    expectContact(cross2L({0, 0}, {65536, 0}, {0, -65536}, {0, 0}), {0.0, -65536.0}, 0.0, 0.0, 1);
    expectNoContact(cross2L({-1, 0}, {65535, 0}, {0, -1}, {0, 65535}), 1);
}

TEST(IntersectSegments2L, BareNameIsTheSameFunction) {
    const tagPOINT a0{0, 0}, a1{3, 3}, b0{0, 3}, b1{3, 0};
    Result r;
    r.result =
        matIntersectSegments(&a0, &a1, &b0, &b1, &r.point, &r.parameterA, &r.parameterB, &r.isParallel);
    expectContact(r, {1.5, 1.5}, 0.5, 0.5, 0);
}

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

TEST(IntersectSegments, AnyOutputMayBeNull) {
    const tagPOINT crossing[4] = {{0, 0}, {2, 2}, {0, 2}, {2, 0}};
    const tagPOINT overlap[4] = {{0, 0}, {2, 2}, {1, 1}, {3, 3}};
    const tagPOINT parallel[4] = {{0, 0}, {2, 2}, {1, 0}, {3, 2}};
    const tagPOINT apart[4] = {{0, 0}, {2, 2}, {5, 5}, {3, 3}};
    for (const auto& p : {crossing, overlap, parallel, apart}) {
        const tagPOINT integers[4] = {p[0], p[1], p[2], p[3]};
        tagPOINT2D doubles[4];
        for (int i = 0; i < 4; ++i) {
            doubles[i] = {static_cast<double>(p[i].x), static_cast<double>(p[i].y)};
        }
        expectAnyOutputMayBeNull(matIntersectSegments2L, integers);
        expectAnyOutputMayBeNull(matIntersectSegments, integers);
        expectAnyOutputMayBeNull(matIntersectSegments2D, doubles);
    }
}

std::uint64_t bits(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

template <class Integers, class NextPoint>
void compareWithReference(NextPoint point, int rounds) {
    int contacts = 0;
    for (int i = 0; i < rounds; ++i) {
        const tagPOINT a0 = point(), a1 = point(), b0 = point(), b1 = point();
        const auto expected = referenceSegments<Integers>(a0, a1, b0, b1);
        const Result r = cross2L(a0, a1, b0, b1);
        ASSERT_EQ(r.result, expected.result);
        ASSERT_EQ(r.isParallel, expected.isParallel);
        if (r.result == 0) continue;
        ++contacts;
        ASSERT_EQ(bits(r.point.x), bits(expected.point.x));
        ASSERT_EQ(bits(r.point.y), bits(expected.point.y));
        ASSERT_EQ(bits(r.parameterA), bits(expected.parameterA));
        ASSERT_EQ(bits(r.parameterB), bits(expected.parameterB));
        SegmentCrossing crossing;
        ASSERT_TRUE(crossSegments(a0, a1, b0, b1, &crossing));
        ASSERT_EQ(bits(crossing.parameterB), bits(expected.parameterB));
    }
    EXPECT_GT(contacts, rounds / 100);
}

template <class Integers>
void compareInRange(std::uint32_t seed, int range) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> coordinate(-range, range);
    compareWithReference<Integers>([&] { return tagPOINT{coordinate(random), coordinate(random)}; }, 20000);
}

TEST(IntersectSegments2L, AgreesWithWideIntegersWhereNothingWraps) {
    compareInRange<WideIntegers>(11, 2);
    compareInRange<WideIntegers>(12, 50);
    compareInRange<WideIntegers>(13, 16383);
}

TEST(IntersectSegments2L, AgreesWithWrappedIntegersEverywhere) {
    compareInRange<WrappedIntegers>(14, 100000);
    compareInRange<WrappedIntegers>(15, 2147483647);
    const int values[] = {-2147483647 - 1, -65536, -1, 0, 1, 65536, 2147483647};
    std::mt19937 random(16);
    std::uniform_int_distribution<int> pick(0, 6);
    compareWithReference<WrappedIntegers>(
        [&] {
            return tagPOINT{values[pick(random)], values[pick(random)]};
        },
        50000);
}

/// The double form step by step, for points on a small grid where overlaps and shared vertices abound.
Result referenceSegments2D(tagPOINT2D a0, tagPOINT2D a1, tagPOINT2D b0, tagPOINT2D b1) {
    Result r;
    r.result = 0;
    if (std::min(a0.x, a1.x) > std::max(b0.x, b1.x) + 1e-7) return r;
    if (std::min(a0.y, a1.y) > std::max(b0.y, b1.y) + 1e-7) return r;
    if (std::min(b0.x, b1.x) - 1e-7 > std::max(a0.x, a1.x)) return r;
    if (std::min(b0.y, b1.y) - 1e-7 > std::max(a0.y, a1.y)) return r;
    Result lines;
    const int meet = matIntersectLines2D(&a0, &a1, &b0, &b1, &lines.point, &lines.parameterA,
                                         &lines.parameterB, &lines.isParallel);
    r.isParallel = lines.isParallel;
    if (meet == 0) return r;
    const auto isOnFirst = [](double t) { return -1e-40 < t && t < 1.0; };
    const auto isOnSecond = [](double s) { return -1e-7 < s && s < 1.0000001; };
    lines.result = 1;
    if (lines.isParallel == 0) {
        return isOnFirst(lines.parameterA) && isOnSecond(lines.parameterB) ? lines : r;
    }
    const double t0 = matGetScaleFactor2D(&a0, &a1, &b0);
    if (isOnFirst(t0)) return {1, b0, t0, 0.0, 1};
    const double t1 = matGetScaleFactor2D(&a0, &a1, &b1);
    if (isOnFirst(t1)) return {1, b1, t1, 1.0, 1};
    const double s0 = matGetScaleFactor2D(&b0, &b1, &a0);
    if (isOnSecond(s0)) return {1, a0, 0.0, s0, 1};
    return r;
}

TEST(IntersectSegments2D, AgreesWithTheStepByStepForm) {
    constexpr std::uint32_t kSeed = 17;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    std::uniform_int_distribution<int> cell(-3, 3);
    std::uniform_int_distribution<int> nudge(-2, 2);
    const auto coordinate = [&] { return cell(random) * 0.5 + (nudge(random) / 2) * 6e-8; };
    int contacts = 0;
    for (int i = 0; i < 60000; ++i) {
        const tagPOINT2D a0{coordinate(), coordinate()}, a1{coordinate(), coordinate()};
        const tagPOINT2D b0{coordinate(), coordinate()}, b1{coordinate(), coordinate()};
        const Result expected = referenceSegments2D(a0, a1, b0, b1);
        const Result r = cross2D(a0, a1, b0, b1);
        ASSERT_EQ(r.result, expected.result);
        ASSERT_EQ(r.isParallel, expected.isParallel);
        ASSERT_EQ(bits(r.point.x), bits(expected.point.x));
        ASSERT_EQ(bits(r.point.y), bits(expected.point.y));
        ASSERT_EQ(bits(r.parameterA), bits(expected.parameterA));
        ASSERT_EQ(bits(r.parameterB), bits(expected.parameterB));
        contacts += r.result;
    }
    EXPECT_GT(contacts, 1000);
}

}  // namespace
