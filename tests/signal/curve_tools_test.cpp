#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "velquad/signal.h"

namespace {

using Values = std::vector<double>;

/// What `fnrFindZeroPoint` found, with room for ten crossings in each list.
struct Crossings {
    int result = -1;
    Values rising;
    Values falling;
};

Crossings crossingsOf(const Values& data, int isCircular = 0) {
    constexpr unsigned int kRoom = 10;
    Crossings found;
    found.rising.resize(kRoom);
    found.falling.resize(kRoom);
    unsigned int risingCount = kRoom;
    unsigned int fallingCount = kRoom;
    found.result = fnrFindZeroPoint(data.data(), static_cast<int>(data.size()), found.rising.data(),
                                    &risingCount, found.falling.data(), &fallingCount, isCircular);
    EXPECT_LE(risingCount, kRoom);
    EXPECT_LE(fallingCount, kRoom);
    found.rising.resize(risingCount);
    found.falling.resize(fallingCount);
    return found;
}

Values derivateOf(const Values& in, int isCircular) {
    Values out(in.size(), 99.0);
    fnrDerivate(in.data(), out.data(), static_cast<int>(in.size()), isCircular);
    Values inPlace = in;
    fnrDerivate(inPlace.data(), inPlace.data(), static_cast<int>(in.size()), isCircular);
    EXPECT_EQ(inPlace, out);
    return out;
}

TEST(Derivate, GivesDifferencesToTheNextSample) {
    EXPECT_EQ(derivateOf({1, 2, 4}, 0), (Values{1, 2, 0}));
    EXPECT_EQ(derivateOf({1, 2, 4}, 1), (Values{1, 2, -3}));
    EXPECT_EQ(derivateOf({1, 2, 4}, -8), (Values{1, 2, -3}));
    EXPECT_EQ(derivateOf({5}, 0), (Values{0}));
    EXPECT_EQ(derivateOf({5}, 1), (Values{0}));
    EXPECT_EQ(derivateOf({5, 2}, 1), (Values{-3, 3}));
}

TEST(Derivate, DoesNothingWithoutSamples) {
    double out = 7.0;
    const double in = 3.0;
    fnrDerivate(&in, &out, 0, 1);
    fnrDerivate(&in, &out, -1, 1);
    fnrDerivate(nullptr, nullptr, 0, 0);
    EXPECT_EQ(out, 7.0);
}

TEST(Derivate, LastDifferenceOfAnInfinityIsNoNumber) {
    const Values out = derivateOf({1, std::numeric_limits<double>::infinity()}, 1);
    EXPECT_EQ(out[0], std::numeric_limits<double>::infinity());
    EXPECT_EQ(out[1], -std::numeric_limits<double>::infinity());
    Values open{1, std::numeric_limits<double>::infinity()};
    fnrDerivate(open.data(), open.data(), 2, 0);
    EXPECT_TRUE(std::isnan(open[1]));
}

TEST(Derivate, TakesLongCurves) {
    Values in(1001);
    for (std::size_t i = 0; i < in.size(); ++i)
        in[i] = static_cast<double>(i * i);
    const Values out = derivateOf(in, 1);
    for (std::size_t i = 0; i + 1 < in.size(); ++i)
        ASSERT_EQ(out[i], static_cast<double>(2 * i + 1));
    EXPECT_EQ(out.back(), -1000000.0);
}

TEST(FindZeroPoint, FindsOneCrossing) {
    Crossings found = crossingsOf({-1, 1});
    EXPECT_EQ(found.result, 1);
    EXPECT_EQ(found.rising, (Values{0.5}));
    EXPECT_TRUE(found.falling.empty());
    found = crossingsOf({3, -1});
    EXPECT_EQ(found.falling, (Values{0.75}));
    EXPECT_TRUE(found.rising.empty());
}

TEST(FindZeroPoint, InterpolatesAcrossARunOfZeros) {
    const Crossings found = crossingsOf({-1, 0, 0, 3, 0, 0});
    EXPECT_EQ(found.rising, (Values{0.75}));
    EXPECT_TRUE(found.falling.empty());
}

TEST(FindZeroPoint, FindsNothingWithoutASign) {
    for (const Values& data : {Values{}, Values{0, 0, 0}, Values{0, -0.0}, Values{std::nan("")}}) {
        const Crossings found = crossingsOf(data, 1);
        EXPECT_EQ(found.result, 1);
        EXPECT_TRUE(found.rising.empty());
        EXPECT_TRUE(found.falling.empty());
    }
    unsigned int count = 5;
    EXPECT_EQ(fnrFindZeroPoint(nullptr, 0, nullptr, &count, nullptr, nullptr, 0), 1);
    EXPECT_EQ(count, 0U);
}

TEST(FindZeroPoint, FirstSampleHasAFinerThresholdThanTheOthers) {
    const double least = std::numeric_limits<double>::min();
    const double firstSign = std::nextafter(least, 1.0);
    EXPECT_EQ(crossingsOf({firstSign, -1}).falling.size(), 1U);
    EXPECT_TRUE(crossingsOf({least, -1}).falling.empty());
    EXPECT_EQ(crossingsOf({-firstSign, 1}).rising.size(), 1U);
    EXPECT_TRUE(crossingsOf({-least, 1}).rising.empty());

    const double threshold = 1.1754943508222875e-38;
    EXPECT_TRUE(crossingsOf({-1, threshold}).rising.empty());
    EXPECT_EQ(crossingsOf({-1, std::nextafter(threshold, 1.0)}).rising.size(), 1U);
    EXPECT_TRUE(crossingsOf({1, -threshold}).falling.empty());
    EXPECT_EQ(crossingsOf({1, -std::nextafter(threshold, 1.0)}).falling.size(), 1U);
    // The first sample with a sign need not be the first one.
    EXPECT_EQ(crossingsOf({0, -1e-300, 1}).rising.size(), 1U);
}

TEST(FindZeroPoint, FindsManyInOrder) {
    const Crossings found = crossingsOf({1, -1, 1, -3, 1});
    EXPECT_EQ(found.falling, (Values{0.5, 2.25}));
    EXPECT_EQ(found.rising, (Values{1.5, 3.75}));
}

TEST(FindZeroPoint, ClosesACircularCurve) {
    // From the last sample 3 at index 2 to the first sample -1 at index 3: 3 / 4 of one step.
    Crossings found = crossingsOf({-1, 1, 3}, 1);
    EXPECT_EQ(found.rising, (Values{0.5}));
    EXPECT_EQ(found.falling, (Values{2.75}));
    // Zeros at both ends: from index 2 over 3, 0 to 1, two... the way is 3 steps of a curve of four samples.
    found = crossingsOf({0, -1, 1, 0}, 1);
    EXPECT_EQ(found.rising, (Values{1.5}));
    EXPECT_EQ(found.falling, (Values{3.5}));
    found = crossingsOf({1, -1}, 1);
    EXPECT_EQ(found.falling, (Values{0.5}));
    EXPECT_EQ(found.rising, (Values{1.5}));
    EXPECT_TRUE(crossingsOf({1, -1, 1}, 0).falling.size() == 1);
    EXPECT_EQ(crossingsOf({1, -1, 1}, 1).rising.size(), 1U);
    // Zeros at the start are counted on behind the end: half of the 3 steps from index 3 to index 2 of the next turn.
    EXPECT_EQ(crossingsOf({0, 0, -1, 1}, 1).falling, (Values{4.5}));
}

TEST(FindZeroPoint, DividesLastWithinACurveAndFirstAcrossItsEnds) {
    // The other order gives 2.2727272727272725 and 4.545454545454546.
    EXPECT_EQ(crossingsOf({0, 0, -0.1, 0, 0, 1}).rising, (Values{2.272727272727273}));
    EXPECT_EQ(crossingsOf({0, -1, 0, 0, 0.1, 0, 0, 0, 0}, 1).falling, (Values{4.545454545454545}));
}

TEST(FindZeroPoint, CountsWhatDoesNotFit) {
    const Values data{1, -1, 1, -1, 1};
    double rising[2] = {7, 7};
    unsigned int risingCount = 1;
    unsigned int fallingCount = 99;
    EXPECT_EQ(fnrFindZeroPoint(data.data(), 5, rising, &risingCount, nullptr, &fallingCount, 0), 0);
    EXPECT_EQ(risingCount, 2U);
    EXPECT_EQ(fallingCount, 2U);
    EXPECT_EQ(rising[0], 1.5);
    EXPECT_EQ(rising[1], 7.0);
    double falling[2] = {7, 7};
    fallingCount = 0;
    EXPECT_EQ(fnrFindZeroPoint(data.data(), 5, nullptr, nullptr, falling, &fallingCount, 0), 0);
    EXPECT_EQ(fallingCount, 2U);
    EXPECT_EQ(falling[0], 7.0);
    fallingCount = 2;
    EXPECT_EQ(fnrFindZeroPoint(data.data(), 5, nullptr, nullptr, falling, &fallingCount, 0), 1);
    EXPECT_EQ(falling[1], 2.5);
}

TEST(FindZeroPoint, ListsAndCountsAreOptional) {
    const Values data{1, -1, 1};
    unsigned int count = 12345;
    EXPECT_EQ(fnrFindZeroPoint(data.data(), 3, nullptr, &count, nullptr, nullptr, 0), 1);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(fnrFindZeroPoint(data.data(), 3, nullptr, nullptr, nullptr, nullptr, 0), 1);
}

}  // namespace
