#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "velquad/curves.h"

using namespace velquad;
using namespace velquad::test;

namespace {

struct Free {
    void operator()(void* block) const { std::free(block); }
};
using Chain = std::unique_ptr<tagMINIVEC, Free>;

Chain makeChain(const std::vector<int>& codes, LONG x = 0, LONG y = 0) {
    Chain chain(static_cast<tagMINIVEC*>(std::malloc(sizeof(tagMINIVEC) + codes.size())));
    chain->count = static_cast<DWORD>(codes.size());
    chain->x = x;
    chain->y = y;
    for (std::size_t i = 0; i < codes.size(); ++i)
        chain->codes[i] = static_cast<unsigned char>(codes[i]);
    return chain;
}

/// Around one pixel: two steps to the right, two down, two to the left, two up.
const std::vector<int> kAroundAPixel = {2, 2, 4, 4, 6, 6, 0, 0};

/// The side of a square, all around.
std::vector<int> square(int side) {
    std::vector<int> codes;
    for (const int code : {2, 4, 6, 0})
        codes.insert(codes.end(), static_cast<std::size_t>(side), code);
    return codes;
}

TEST(InnerPerimeter, ASquareOfFourStepsByHand) {
    // Control points (0,0), (1,0), (1,1), (0,1): the curve goes from mid-edge to mid-edge, nine quarters of the
    // way q = (2 * 4 + 1) / 4 = 2 samples each. From (0.5, 0) by way of (0.875, 0.125) to (1, 0.5): two chords of
    // sqrt(0.375^2 + 0.125^2), four times.
    const double expected = 8.0 * std::sqrt(0.375 * 0.375 + 0.125 * 0.125);
    EXPECT_NEAR(miniCalcInnerPerimeter(makeChain({2, 4, 6, 0}).get(), 1.0, 1.0), expected, 1e-14);
}

TEST(InnerPerimeter, AroundAPixel) {
    // Straight edges of length 1 along each side and a rounded corner of two chords between them.
    const double expected = 4.0 * 1.0 + 8.0 * std::sqrt(0.375 * 0.375 + 0.125 * 0.125);
    EXPECT_NEAR(miniCalcInnerPerimeter(makeChain(kAroundAPixel).get(), 1.0, 1.0), expected, 1e-14);
}

TEST(InnerPerimeter, FewerThanThreeStepsAreNoLength) {
    EXPECT_EQ(miniCalcInnerPerimeter(makeChain({}).get(), 1.0, 1.0), 0.0);
    EXPECT_EQ(miniCalcInnerPerimeter(makeChain({2}).get(), 1.0, 1.0), 0.0);
    EXPECT_EQ(miniCalcInnerPerimeter(makeChain({2, 6}).get(), 1.0, 1.0), 0.0);
    EXPECT_EQ(miniCalcInnerPerimeter(nullptr, 1.0, 1.0), 0.0);
}

TEST(InnerPerimeter, AStretchedPixelStretchesTheCurve) {
    const double expected =
        4.0 * (std::sqrt(0.375 * 0.375 + 0.25 * 0.25) + std::sqrt(0.125 * 0.125 + 0.75 * 0.75));
    EXPECT_NEAR(miniCalcInnerPerimeter(makeChain({2, 4, 6, 0}).get(), 1.0, 2.0), expected, 1e-14);
}

TEST(InnerPerimeter, ThePlaceDoesNotMatterForWholeScales) {
    EXPECT_EQ(miniCalcInnerPerimeter(makeChain(kAroundAPixel, 64, -32).get(), 2.0, 2.0),
              miniCalcInnerPerimeter(makeChain(kAroundAPixel).get(), 2.0, 2.0));
}

TEST(InnerPerimeter, CodesAboveSevenStayInPlace) {
    // Points that repeat draw the curve towards them.
    const double still = miniCalcInnerPerimeter(makeChain({2, 8, 4, 9, 6, 200, 0, 255}).get(), 1.0, 1.0);
    EXPECT_GT(still, miniCalcInnerPerimeter(makeChain({2, 4, 6, 0}).get(), 1.0, 1.0));
    EXPECT_LE(still, 4.0);
}

TEST(InnerPerimeter, LackOfMemoryIsSeven) {
    const Chain chain = makeChain(kAroundAPixel);
    forEachFailingAllocation([&] { return miniCalcInnerPerimeter(chain.get(), 1.0, 1.0) == 7.0; });
}

TEST(OuterPerimeter, StraightSidesKeepTheirLength) {
    // Corners between straight runs stay corners, so a large square is its own perimeter.
    EXPECT_NEAR(miniCalcOuterPerimeter(makeChain(square(10)).get(), 1.0, 1.0), 40.0, 1e-12);
}

TEST(OuterPerimeter, AroundAPixelIsFinite) {
    const double length = miniCalcOuterPerimeter(makeChain(kAroundAPixel).get(), 1.0, 1.0);
    EXPECT_NEAR(length, 8.0, 1e-12);
}

TEST(OuterPerimeter, NeedsFourStepsThatMove) {
    EXPECT_EQ(miniCalcOuterPerimeter(makeChain({}).get(), 1.0, 1.0), kNoValue);
    EXPECT_EQ(miniCalcOuterPerimeter(makeChain({2, 6}).get(), 1.0, 1.0), kNoValue);
    EXPECT_EQ(miniCalcOuterPerimeter(makeChain({2, 4, 7}).get(), 1.0, 1.0), kNoValue);
    EXPECT_LT(miniCalcOuterPerimeter(makeChain({2, 4, 6, 0}).get(), 1.0, 1.0), 5.0);
    EXPECT_EQ(miniCalcOuterPerimeter(makeChain({2, 2, 8, 4, 4, 6, 6, 0, 0}).get(), 1.0, 1.0), kNoValue);
    EXPECT_EQ(miniCalcOuterPerimeter(nullptr, 1.0, 1.0), kNoValue);
}

TEST(OuterPerimeter, AStretchedPixelStretchesTheCurve) {
    EXPECT_NEAR(miniCalcOuterPerimeter(makeChain(square(10)).get(), 1.0, 2.0), 60.0, 1e-12);
}

TEST(OuterPerimeter, LackOfMemoryIsNoValue) {
    const Chain chain = makeChain(kAroundAPixel);
    forEachFailingAllocation([&] { return miniCalcOuterPerimeter(chain.get(), 1.0, 1.0) == kNoValue; });
}

TEST(Perimeters, OfADiscLieNearItsCircumference) {
    // The chain of a digital circle of radius 20 around the origin, from its top clockwise.
    const int radius = 20;
    std::vector<int> codes;
    int x = 0;
    int y = -radius;
    const auto isInside = [&](int px, int py) { return px * px + py * py <= radius * radius; };
    int heading = 2;
    static const int kStepX[] = {0, 1, 1, 1, 0, -1, -1, -1};
    static const int kStepY[] = {-1, -1, 0, 1, 1, 1, 0, -1};
    do {
        // The leftmost step that stays inside.
        int code = (heading + 6) % 8;
        while (!isInside(x + kStepX[code], y + kStepY[code]))
            code = (code + 1) % 8;
        codes.push_back(code);
        x += kStepX[code];
        y += kStepY[code];
        heading = code;
    } while (x != 0 || y != -radius);
    const double circumference = 2.0 * 3.14159265358979 * radius;
    const Chain chain = makeChain(codes, 0, -radius);
    EXPECT_NEAR(miniCalcInnerPerimeter(chain.get(), 1.0, 1.0), circumference, 0.05 * circumference);
    // It goes through every pixel, up and down the stairs.
    EXPECT_NEAR(miniCalcOuterPerimeter(chain.get(), 1.0, 1.0), circumference, 0.1 * circumference);
    EXPECT_LT(miniCalcInnerPerimeter(chain.get(), 1.0, 1.0), miniCalcOuterPerimeter(chain.get(), 1.0, 1.0));
}

}  // namespace
