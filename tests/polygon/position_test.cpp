#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

#include "tests/support/outline.h"
#include "velquad/polygon.h"

namespace {

constexpr int kIntMax = 2147483647;
constexpr int kIntMin = -kIntMax - 1;
constexpr double kMark = 1.7976931348623157e308;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr tagPOINT kChain[] = {{1, 2}, {4, 6}, {10, 14}};
constexpr tagPOINT kSquare[] = {{0, 0}, {10, 0}, {10, 20}, {0, 20}, {0, 0}};

double above(double value) {
    return std::nextafter(value, kInfinity);
}
double below(double value) {
    return std::nextafter(value, -kInfinity);
}

/// What `polyCalcPoint` gave: the result and the point, which starts at (-7, -7).
struct Lookup {
    int result;
    double x;
    double y;
    bool operator==(const Lookup&) const = default;
};

void PrintTo(const Lookup& lookup, std::ostream* stream) {
    stream->precision(17);
    *stream << lookup.result << " (" << lookup.x << ", " << lookup.y << ")";
}

template <std::size_t Count>
Lookup lookUp(const tagPOINT (&points)[Count], int closed, DWORD index, double fraction) {
    tagPOINT2D out{-7.0, -7.0};
    const int result = polyCalcPoint(points, static_cast<DWORD>(Count), closed, index, fraction, &out);
    return {result, out.x, out.y};
}

const Lookup kNotThere = {0, -7.0, -7.0};

TEST(PolyCalcPoint, InterpolatesAlongAnEdge) {
    EXPECT_EQ(lookUp(kChain, 0, 0, 0.5), (Lookup{1, 2.5, 4.0}));
    EXPECT_EQ(lookUp(kChain, 0, 1, 0.25), (Lookup{1, 5.5, 8.0}));
    EXPECT_EQ(lookUp(kChain, 0, 0, 1.0), (Lookup{1, 4.0, 6.0}));
    EXPECT_EQ(lookUp(kSquare, 1, 0, 0.25), (Lookup{1, 2.5, 0.0}));
    EXPECT_EQ(lookUp(kSquare, 1, 1, 0.25), (Lookup{1, 10.0, 5.0}));
}

TEST(PolyCalcPoint, DoesNotLimitTheFraction) {
    EXPECT_EQ(lookUp(kChain, 0, 0, 3.0), (Lookup{1, 10.0, 14.0}));
    EXPECT_EQ(lookUp(kChain, 0, 0, -2.0), (Lookup{1, -5.0, -6.0}));
    EXPECT_EQ(lookUp(kSquare, 1, 0, -0.5), (Lookup{1, -5.0, 0.0}));
}

TEST(PolyCalcPoint, GivesTheVertexForFractionsBelowTheTolerance) {
    EXPECT_EQ(lookUp(kChain, 0, 0, 0.0), (Lookup{1, 1.0, 2.0}));
    EXPECT_EQ(lookUp(kChain, 0, 0, below(1e-7)), (Lookup{1, 1.0, 2.0}));
    EXPECT_EQ(lookUp(kChain, 0, 0, above(-1e-7)), (Lookup{1, 1.0, 2.0}));
    EXPECT_EQ(lookUp(kChain, 0, 0, 1e-7), (Lookup{1, 1.0000003, 2.0000004}));
    EXPECT_EQ(lookUp(kChain, 0, 0, -1e-7), (Lookup{1, 0.9999997, 1.9999996}));
}

TEST(PolyCalcPoint, EndsAnOpenChainAtItsLastVertex) {
    EXPECT_EQ(lookUp(kChain, 0, 2, 0.0), (Lookup{1, 10.0, 14.0}));
    EXPECT_EQ(lookUp(kChain, 0, 2, below(1e-7)), (Lookup{1, 10.0, 14.0}));
    EXPECT_EQ(lookUp(kChain, 0, 2, 1e-7), kNotThere);
    EXPECT_EQ(lookUp(kChain, 0, 2, 0.5), kNotThere);
}

TEST(PolyCalcPoint, ProlongsTheWrapEdgeForANegativeFractionAtTheLastVertex) {
    // (10, 14) + 0.5 * ((10, 14) - (1, 2)).
    EXPECT_EQ(lookUp(kChain, 0, 2, -0.5), (Lookup{1, 14.5, 20.0}));
}

TEST(PolyCalcPoint, WrapsAClosedOutlineBeforeItsClosingPoint) {
    EXPECT_EQ(lookUp(kSquare, 1, 3, 1.0), (Lookup{1, 0.0, 0.0}));
    EXPECT_EQ(lookUp(kSquare, 1, 3, 0.25), (Lookup{1, 0.0, 15.0}));
    EXPECT_EQ(lookUp(kSquare, 2, 3, 0.25), (Lookup{1, 0.0, 15.0}));
    EXPECT_EQ(lookUp(kSquare, -1, 3, 0.25), (Lookup{1, 0.0, 15.0}));
}

TEST(PolyCalcPoint, LeadsFromTheClosingPointToTheSecondVertex) {
    EXPECT_EQ(lookUp(kSquare, 1, 4, 0.0), (Lookup{1, 0.0, 0.0}));
    EXPECT_EQ(lookUp(kSquare, 1, 4, 0.5), (Lookup{1, 5.0, 0.0}));
    EXPECT_EQ(lookUp(kSquare, 1, 4, 1.0), (Lookup{1, 10.0, 0.0}));
}

TEST(PolyCalcPoint, WrapsTheDifferenceOfTheCoordinates) {
    constexpr tagPOINT points[] = {{kIntMin, kIntMax}, {kIntMax, kIntMin}};
    // The wrapped difference is (-1, 1).
    EXPECT_EQ(lookUp(points, 0, 0, 0.5), (Lookup{1, -2147483648.5, 2147483647.5}));
    EXPECT_EQ(lookUp(points, 0, 0, 0.0), (Lookup{1, -2147483648.0, 2147483647.0}));
}

TEST(PolyCalcPoint, FailsOutsideTheOutline) {
    EXPECT_EQ(lookUp(kChain, 0, 3, 0.0), kNotThere);
    EXPECT_EQ(lookUp(kChain, 0, 0xFFFFFFFF, 0.0), kNotThere);
    EXPECT_EQ(lookUp(kSquare, 1, 5, 0.5), kNotThere);
    tagPOINT2D out{-7.0, -7.0};
    EXPECT_EQ(polyCalcPoint(kChain, 0, 0, 0, 0.0, &out), 0);
    EXPECT_EQ(polyCalcPoint(kChain, 0, 1, 0, 0.5, &out), 0);
    EXPECT_EQ(out.x, -7.0);
}

TEST(PolyCalcPoint, FailsForNullPointers) {
    tagPOINT2D out{-7.0, -7.0};
    EXPECT_EQ(polyCalcPoint(nullptr, 3, 0, 0, 0.0, &out), 0);
    EXPECT_EQ(polyCalcPoint(kChain, 3, 0, 0, 0.0, nullptr), 0);
    EXPECT_EQ(out.x, -7.0);
    EXPECT_EQ(out.y, -7.0);
}

TEST(PolyCalcPoint, AnswersForASinglePoint) {
    constexpr tagPOINT point[] = {{5, -6}};
    EXPECT_EQ(lookUp(point, 1, 0, 0.0), (Lookup{1, 5.0, -6.0}));
    EXPECT_EQ(lookUp(point, 1, 0, 0.5), kNotThere);
    EXPECT_EQ(lookUp(point, 1, 0, -0.5), kNotThere);
    EXPECT_EQ(lookUp(point, 0, 0, 0.0), (Lookup{1, 5.0, -6.0}));
    EXPECT_EQ(lookUp(point, 0, 0, 0.5), kNotThere);
    EXPECT_EQ(lookUp(point, 0, 0, -0.5), (Lookup{1, 5.0, -6.0}));
}

TEST(PolyCalcPoint, AnswersForTwoPoints) {
    constexpr tagPOINT closed[] = {{5, -6}, {5, -6}};
    EXPECT_EQ(lookUp(closed, 1, 0, 0.5), (Lookup{1, 5.0, -6.0}));
    EXPECT_EQ(lookUp(closed, 1, 1, 0.5), (Lookup{1, 5.0, -6.0}));
    constexpr tagPOINT open[] = {{5, -6}, {7, -6}};
    EXPECT_EQ(lookUp(open, 0, 0, 0.5), (Lookup{1, 6.0, -6.0}));
    EXPECT_EQ(lookUp(open, 0, 1, -0.5), (Lookup{1, 8.0, -6.0}));
}

TEST(PolyCalcPoint, PassesANotANumberOn) {
    for (const DWORD index : {DWORD{0}, DWORD{2}}) {
        const Lookup lookup = lookUp(kChain, 0, index, kNaN);
        EXPECT_EQ(lookup.result, 1);
        EXPECT_TRUE(std::isnan(lookup.x));
        EXPECT_TRUE(std::isnan(lookup.y));
    }
}

/// A position before and after `polyReplacePointByVertex`, with the result and the point given out.
struct Snap {
    int result;
    DWORD index;
    double fraction;
    double x;
    double y;
    bool operator==(const Snap&) const = default;
};

void PrintTo(const Snap& snap, std::ostream* stream) {
    stream->precision(17);
    *stream << snap.result << ", (" << snap.index << ", " << snap.fraction << "), (" << snap.x << ", "
            << snap.y << ")";
}

template <std::size_t Count>
Snap snap(const tagPOINT (&points)[Count], int closed, DWORD index, double fraction, double tolerance) {
    tagPOINT2D out{-7.0, -7.0};
    const int result = polyReplacePointByVertex(points, static_cast<DWORD>(Count), closed, &index, &fraction,
                                                tolerance, &out);
    return {result, index, fraction, out.x, out.y};
}

constexpr tagPOINT kCorner[] = {{0, 0}, {10, 0}, {10, 10}};

TEST(PolyReplacePointByVertex, SnapsToTheStartBelowTheToleranceOnly) {
    // The position (0, 0.2) lies at (2, 0), exactly 2 from the start.
    EXPECT_EQ(snap(kCorner, 0, 0, 0.2, above(2.0)), (Snap{1, 0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(snap(kCorner, 0, 0, 0.2, 2.0), (Snap{0, 0, 0.2, 2.0, 0.0}));
    EXPECT_EQ(snap(kCorner, 0, 0, 0.2, below(2.0)), (Snap{0, 0, 0.2, 2.0, 0.0}));
}

TEST(PolyReplacePointByVertex, SnapsToTheEndBelowTheToleranceOnly) {
    EXPECT_EQ(snap(kCorner, 0, 0, 0.8, above(2.0)), (Snap{1, 1, 0.0, 10.0, 0.0}));
    EXPECT_EQ(snap(kCorner, 0, 0, 0.8, 2.0), (Snap{0, 0, 0.8, 8.0, 0.0}));
    EXPECT_EQ(snap(kCorner, 0, 0, 0.8, below(2.0)), (Snap{0, 0, 0.8, 8.0, 0.0}));
}

TEST(PolyReplacePointByVertex, MeasuresEuclideanDistances) {
    // From (0, 0) towards (30, 40): fraction 0.1 is (3, 4), 5 away.
    constexpr tagPOINT edge[] = {{0, 0}, {30, 40}};
    EXPECT_EQ(snap(edge, 0, 0, 0.1, 5.0), (Snap{0, 0, 0.1, 3.0, 4.0}));
    EXPECT_EQ(snap(edge, 0, 0, 0.1, above(5.0)), (Snap{1, 0, 0.0, 0.0, 0.0}));
}

TEST(PolyReplacePointByVertex, PrefersTheStartWhenBothEndsAreNearEnough) {
    EXPECT_EQ(snap(kCorner, 0, 0, 0.8, 100.0), (Snap{1, 0, 0.0, 0.0, 0.0}));
}

TEST(PolyReplacePointByVertex, ReachesTheLastVertexOfAnOpenChain) {
    EXPECT_EQ(snap(kCorner, 0, 1, 0.8, 3.0), (Snap{1, 2, 0.0, 10.0, 10.0}));
}

TEST(PolyReplacePointByVertex, FailsAtTheLastVertexOfAnOpenChain) {
    EXPECT_EQ(snap(kCorner, 0, 2, 0.0, 1.0), (Snap{0, 2, 0.0, kMark, kMark}));
    EXPECT_EQ(snap(kCorner, 0, 2, 0.5, 1.0), (Snap{0, 2, 0.5, kMark, kMark}));
    EXPECT_EQ(snap(kCorner, 0, 2, -0.5, 1.0), (Snap{0, 2, -0.5, kMark, kMark}));
    EXPECT_EQ(snap(kCorner, 0, 2, 5e-8, 1.0), (Snap{0, 2, 5e-8, kMark, kMark}));
}

TEST(PolyReplacePointByVertex, WrapsTheIndexOfAClosedOutline) {
    EXPECT_EQ(snap(kSquare, 1, 3, 0.95, 5.0), (Snap{1, 0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(snap(kSquare, 1, 2, 0.9, 5.0), (Snap{1, 3, 0.0, 0.0, 20.0}));
    EXPECT_EQ(snap(kSquare, 7, 4, 0.9, 5.0), (Snap{1, 1, 0.0, 10.0, 0.0}));
    EXPECT_EQ(snap(kSquare, 1, 4, 0.1, 5.0), (Snap{1, 4, 0.0, 0.0, 0.0}));
}

TEST(PolyReplacePointByVertex, ClearsATinyFractionWithoutCountingAsMoved) {
    EXPECT_EQ(snap(kCorner, 0, 1, below(1e-7), 0.0), (Snap{0, 1, 0.0, 10.0, 0.0}));
    const Snap negative = snap(kCorner, 0, 1, above(-1e-7), 100.0);
    EXPECT_EQ(negative, (Snap{0, 1, 0.0, 10.0, 0.0}));
    EXPECT_FALSE(std::signbit(negative.fraction));
    EXPECT_EQ(snap(kCorner, 0, 1, 0.0, 100.0), (Snap{0, 1, 0.0, 10.0, 0.0}));
}

TEST(PolyReplacePointByVertex, NeverSnapsWithToleranceZero) {
    EXPECT_EQ(snap(kCorner, 0, 1, 1e-7, 0.0), (Snap{0, 1, 1e-7, 10.0, 1e-6}));
    EXPECT_EQ(snap(kCorner, 0, 0, 1.0, 0.0), (Snap{0, 0, 1.0, 10.0, 0.0}));
    EXPECT_EQ(snap(kCorner, 0, 0, 0.5, -1.0), (Snap{0, 0, 0.5, 5.0, 0.0}));
}

TEST(PolyReplacePointByVertex, SnapsPositionsBeyondTheEdge) {
    EXPECT_EQ(snap(kCorner, 0, 0, -0.1, 2.0), (Snap{1, 0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(snap(kCorner, 0, 0, 1.1, 2.0), (Snap{1, 1, 0.0, 10.0, 0.0}));
    EXPECT_EQ(snap(kCorner, 0, 0, 1.5, 2.0), (Snap{0, 0, 1.5, 15.0, 0.0}));
}

TEST(PolyReplacePointByVertex, SnapsToTheStartOfAZeroLengthEdge) {
    constexpr tagPOINT points[] = {{4, 4}, {4, 4}, {9, 4}};
    EXPECT_EQ(snap(points, 0, 0, 0.5, 0.1), (Snap{1, 0, 0.0, 4.0, 4.0}));
}

TEST(PolyReplacePointByVertex, MarksAPositionThatDoesNotExist) {
    EXPECT_EQ(snap(kCorner, 0, 3, 0.5, 1.0), (Snap{0, 3, 0.5, kMark, kMark}));
    constexpr tagPOINT single[] = {{4, 4}};
    EXPECT_EQ(snap(single, 1, 0, 0.0, 1.0), (Snap{0, 0, 0.0, kMark, kMark}));
    EXPECT_EQ(snap(single, 0, 0, 0.0, 1.0), (Snap{0, 0, 0.0, kMark, kMark}));
}

TEST(PolyReplacePointByVertex, LeavesOutAloneForNullPointers) {
    DWORD index = 0;
    double fraction = 0.5;
    tagPOINT2D out{-7.0, -7.0};
    EXPECT_EQ(polyReplacePointByVertex(nullptr, 3, 0, &index, &fraction, 1.0, &out), 0);
    EXPECT_EQ(polyReplacePointByVertex(kCorner, 3, 0, nullptr, &fraction, 1.0, &out), 0);
    EXPECT_EQ(polyReplacePointByVertex(kCorner, 3, 0, &index, nullptr, 1.0, &out), 0);
    EXPECT_EQ(out.x, -7.0);
    EXPECT_EQ(out.y, -7.0);
    EXPECT_EQ(index, 0U);
    EXPECT_EQ(fraction, 0.5);
}

TEST(PolyReplacePointByVertex, WorksWithoutOut) {
    DWORD index = 0;
    double fraction = 0.9;
    EXPECT_EQ(polyReplacePointByVertex(kCorner, 3, 0, &index, &fraction, 2.0, nullptr), 1);
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(fraction, 0.0);
    index = 2;
    EXPECT_EQ(polyReplacePointByVertex(kCorner, 3, 0, &index, &fraction, 2.0, nullptr), 0);
    EXPECT_EQ(index, 2U);
}

TEST(PolyReplacePointByVertex, NeverSnapsWithNotANumber) {
    EXPECT_EQ(snap(kCorner, 0, 0, 0.5, kNaN), (Snap{0, 0, 0.5, 5.0, 0.0}));
    const Snap lost = snap(kCorner, 0, 0, kNaN, kInfinity);
    EXPECT_EQ(lost.result, 0);
    EXPECT_EQ(lost.index, 0U);
    EXPECT_TRUE(std::isnan(lost.fraction));
    EXPECT_TRUE(std::isnan(lost.x));
}

}  // namespace
