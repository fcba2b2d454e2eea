#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "tests/support/clip_reference.h"
#include "velquad/geometry.h"

namespace {

using velquad::test::referenceClip3D;

constexpr double kUntouched = -77.25;
constexpr double kCorner[] = {0.0, 0.0, 0.0};

struct Clipped {
    int result = -1;
    tagPOINT3D first{kUntouched, kUntouched, kUntouched};
    tagPOINT3D second{kUntouched, kUntouched, kUntouched};
};

/// Clips to the box from the origin to (1, 2, 3).
Clipped clip(const tagPOINT3D& point, const tagPOINT3D& direction) {
    Clipped c;
    c.result = matClipLine3D(kCorner, 1.0, 2.0, 3.0, &point, &direction, &c.first, &c.second);
    return c;
}

void expectPoint(const tagPOINT3D& p, const tagPOINT3D& expected) {
    EXPECT_EQ(p.x, expected.x);
    EXPECT_EQ(p.y, expected.y);
    EXPECT_EQ(p.z, expected.z);
}

void expectEnds(const Clipped& c, const tagPOINT3D& first, const tagPOINT3D& second) {
    EXPECT_EQ(c.result, 1);
    expectPoint(c.first, first);
    expectPoint(c.second, second);
}

void expectMiss(const Clipped& c) {
    EXPECT_EQ(c.result, 0);
    expectPoint(c.first, {kUntouched, kUntouched, kUntouched});
    expectPoint(c.second, {kUntouched, kUntouched, kUntouched});
}

TEST(ClipLine3D, DirectionAlongAnAxisMeetsThatAxisFaces) {
    expectEnds(clip({-1.0, 1.0, 1.5}, {1.0, 0.0, 0.0}), {0.0, 1.0, 1.5}, {1.0, 1.0, 1.5});
    expectEnds(clip({0.5, -1.0, 1.5}, {0.0, 2.0, 0.0}), {0.5, 0.0, 1.5}, {0.5, 2.0, 1.5});
    expectEnds(clip({0.5, 1.0, -4.0}, {0.0, 0.0, 0.5}), {0.5, 1.0, 0.0}, {0.5, 1.0, 3.0});
}

TEST(ClipLine3D, FirstIsNearerToTheBasePoint) {
    expectEnds(clip({-1.0, 1.0, 1.5}, {-1.0, 0.0, 0.0}), {0.0, 1.0, 1.5}, {1.0, 1.0, 1.5});
    expectEnds(clip({5.0, 1.0, 1.5}, {1.0, 0.0, 0.0}), {1.0, 1.0, 1.5}, {0.0, 1.0, 1.5});
    expectEnds(clip({5.0, 1.0, 1.5}, {-1.0, 0.0, 0.0}), {1.0, 1.0, 1.5}, {0.0, 1.0, 1.5});
    expectEnds(clip({0.25, 1.0, 1.5}, {1.0, 0.0, 0.0}), {0.0, 1.0, 1.5}, {1.0, 1.0, 1.5});
    expectEnds(clip({0.75, 1.0, 1.5}, {1.0, 0.0, 0.0}), {1.0, 1.0, 1.5}, {0.0, 1.0, 1.5});
}

TEST(ClipLine3D, SecondIsTheEarlierOneOnATie) {
    expectEnds(clip({0.5, 1.0, 1.5}, {1.0, 0.0, 0.0}), {1.0, 1.0, 1.5}, {0.0, 1.0, 1.5});
    expectEnds(clip({0.5, 1.0, 1.5}, {-1.0, 0.0, 0.0}), {0.0, 1.0, 1.5}, {1.0, 1.0, 1.5});
}

TEST(ClipLine3D, EndsMayLieOnFacesOfTwoAxes) {
    expectEnds(clip({-1.0, 0.5, 1.0}, {1.0, 1.0, 0.0}), {0.0, 1.5, 1.0}, {0.5, 2.0, 1.0});
    expectEnds(clip({0.5, -1.0, 1.5}, {0.0, 1.0, 1.0}), {0.5, 0.0, 2.5}, {0.5, 0.5, 3.0});
    expectEnds(clip({-1.0, 0.5, 1.75}, {1.0, 0.0, 1.0}), {0.0, 0.5, 2.75}, {0.25, 0.5, 3.0});
}

TEST(ClipLine3D, TouchedCornerIsBothEnds) {
    expectEnds(clip({-1.0, 1.0, 0.0}, {1.0, -1.0, 0.0}), {0.0, 0.0, 0.0}, {0.0, 0.0, 0.0});
}

TEST(ClipLine3D, FacesAndEdgesBelongToTheBox) {
    expectEnds(clip({-1.0, 0.0, 0.0}, {1.0, 0.0, 0.0}), {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
    expectEnds(clip({-1.0, 2.0, 3.0}, {1.0, 0.0, 0.0}), {0.0, 2.0, 3.0}, {1.0, 2.0, 3.0});
    expectMiss(clip({-1.0, std::nextafter(2.0, 3.0), 3.0}, {1.0, 0.0, 0.0}));
    expectMiss(clip({-1.0, 2.0, std::nextafter(3.0, 4.0)}, {1.0, 0.0, 0.0}));
    expectMiss(clip({-1.0, -1e-300, 0.0}, {1.0, 0.0, 0.0}));
    expectMiss(clip({-1.0, 0.0, -1e-300}, {1.0, 0.0, 0.0}));
}

TEST(ClipLine3D, LineBesideTheBoxLeavesTheEnds) {
    expectMiss(clip({5.0, 5.0, 5.0}, {1.0, 0.0, 0.0}));
    expectMiss(clip({5.0, 0.0, 0.0}, {1.0, -1.0, 0.0}));
}

TEST(ClipLine3D, NullDirectionMeetsNothing) {
    expectMiss(clip({0.5, 1.0, 1.5}, {0.0, 0.0, 0.0}));
}

TEST(ClipLine3D, DirectionBelow1eMinus7IsNone) {
    const double below = std::nextafter(1e-7, 0.0);
    expectMiss(clip({0.0, 1.0, 1.5}, {below, below, -below}));
    EXPECT_EQ(clip({0.0, 1.0, 1.5}, {1e-7, 0.0, 0.0}).result, 1);
    EXPECT_EQ(clip({0.5, 0.0, 1.5}, {0.0, -1e-7, 0.0}).result, 1);
    EXPECT_EQ(clip({0.5, 1.0, 0.0}, {0.0, 0.0, 1e-7}).result, 1);
}

TEST(ClipLine3D, ThinBoxKeepsBothFaces) {
    // Crossings closer than 1e-7 send the search on to the next axis, which finds nothing further out.
    const tagPOINT3D point{0.0, 1.0, 0.5};
    const tagPOINT3D direction{1.0, 0.5, 0.0};
    for (const double sizeX : {0.0, 5e-8, std::nextafter(1e-7, 0.0), 1e-7, 2e-7}) {
        Clipped c;
        c.result = matClipLine3D(kCorner, sizeX, 2.0, 1.0, &point, &direction, &c.first, &c.second);
        expectEnds(c, {0.0, 1.0, 0.5}, {sizeX, 1.0 + sizeX * 0.5, 0.5});
    }
}

TEST(ClipLine3D, DiagonalRunsFromCornerToCorner) {
    Clipped c;
    const tagPOINT3D point{-1.0, -1.0, -1.0};
    const tagPOINT3D direction{2.0, 2.0, 2.0};
    c.result = matClipLine3D(kCorner, 1.0, 1.0, 1.0, &point, &direction, &c.first, &c.second);
    expectEnds(c, {0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
}

TEST(ClipLine3D, OutputsMayBeTheInputs) {
    tagPOINT3D point{-1.0, 1.0, 1.5};
    tagPOINT3D direction{2.0, 0.0, 0.0};
    ASSERT_EQ(matClipLine3D(kCorner, 1.0, 2.0, 3.0, &point, &direction, &point, &direction), 1);
    expectPoint(point, {0.0, 1.0, 1.5});
    expectPoint(direction, {1.0, 1.0, 1.5});
}

TEST(ClipLine3D, NegativeSizeHasNoInside) {
    const tagPOINT3D point{-1.0, 1.0, 1.5};
    const tagPOINT3D direction{1.0, 0.0, 0.0};
    Clipped c;
    c.result = matClipLine3D(kCorner, 1.0, -2.0, 3.0, &point, &direction, &c.first, &c.second);
    expectMiss(c);
}

TEST(ClipLine3D, CrossingsBeyondTheLargestFloatAreNotSeen) {
    // The parameter is 1e35 / 1e-6.
    expectMiss(clip({-1e35, 1.0, 1.5}, {1e-6, 0.0, 0.0}));
    EXPECT_EQ(clip({-1e35, 1.0, 1.5}, {1e-3, 0.0, 0.0}).result, 1);
}

TEST(ClipLine3D, NotANumberMeetsNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expectMiss(clip({nan, 1.0, 1.5}, {1.0, 0.0, 0.0}));
    expectMiss(clip({-1.0, 1.0, 1.5}, {nan, 0.0, 0.0}));
}

TEST(ClipLine3D, RandomLinesMatchTheReferenceToTheLastBit) {
    constexpr unsigned int kSeed = 20260305;
    SCOPED_TRACE(testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> place(-2.0, 4.0);
    std::uniform_int_distribution<int> whole(-2, 2);
    std::uniform_int_distribution<int> kind(0, 2);
    std::uniform_real_distribution<double> tiny(-2e-7, 2e-7);
    const auto number = [&] {
        const int k = kind(random);
        return k == 0 ? place(random) : k == 1 ? static_cast<double>(whole(random)) : tiny(random);
    };
    int met = 0;
    for (int i = 0; i < 100000; ++i) {
        const double corner[] = {number(), number(), number()};
        const double sizes[] = {std::fabs(number()), std::fabs(number()) + place(random),
                                std::fabs(number())};
        const tagPOINT3D p{number(), number(), number()};
        const tagPOINT3D d{number(), number(), number()};
        Clipped expected;
        expected.result =
            referenceClip3D(corner, sizes[0], sizes[1], sizes[2], p, d, expected.first, expected.second);
        Clipped c;
        c.result = matClipLine3D(corner, sizes[0], sizes[1], sizes[2], &p, &d, &c.first, &c.second);
        SCOPED_TRACE(testing::Message() << "case " << i);
        ASSERT_EQ(c.result, expected.result);
        const double got[] = {c.first.x, c.first.y, c.first.z, c.second.x, c.second.y, c.second.z};
        const double want[] = {expected.first.x,  expected.first.y,  expected.first.z,
                               expected.second.x, expected.second.y, expected.second.z};
        for (int k = 0; k < 6; ++k)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(got[k]), std::bit_cast<std::uint64_t>(want[k]));
        met += expected.result;
    }
    EXPECT_GT(met, 5000);
}

}  // namespace
