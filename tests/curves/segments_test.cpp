#include "curves/segments.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "tests/support/matrix.h"

using namespace velquad::curves;
using velquad::test::Matrix;
using velquad::test::Rows;

namespace {

TEST(FindInterval, AnswersZeroForFewerThanTwoIntervals) {
    const double knots[] = {0.0, 1.0};
    EXPECT_EQ(findInterval(0, 5.0, knots), 0);
    EXPECT_EQ(findInterval(1, -5.0, knots), 0);
    EXPECT_EQ(findInterval(1, 5.0, knots), 0);
}

TEST(FindInterval, AKnotBelongsToTheIntervalThatItBegins) {
    const double knots[] = {0.0, 1.0, 3.0, 4.0};
    EXPECT_EQ(findInterval(3, -1.0, knots), 0);
    EXPECT_EQ(findInterval(3, 0.0, knots), 0);
    EXPECT_EQ(findInterval(3, 0.999, knots), 0);
    EXPECT_EQ(findInterval(3, 1.0, knots), 1);
    EXPECT_EQ(findInterval(3, 3.0, knots), 2);
    EXPECT_EQ(findInterval(3, 4.0, knots), 2) << "the last knot";
    EXPECT_EQ(findInterval(3, 99.0, knots), 2);
}

TEST(FindInterval, TheLastOfEqualKnotsWins) {
    const double knots[] = {0.0, 1.0, 1.0, 1.0, 2.0};
    EXPECT_EQ(findInterval(4, 1.0, knots), 3);
    EXPECT_EQ(findInterval(4, 0.5, knots), 0);
}

TEST(FindInterval, AgreesWithALinearSearch) {
    std::mt19937 random(4711);
    for (int round = 0; round < 300; ++round) {
        const Index n = 1 + static_cast<Index>(random() % 40);
        std::vector<double> knots{0.0};
        for (Index i = 0; i < n; ++i)
            knots.push_back(knots.back() + static_cast<double>(random() % 3));
        for (double value = -1.0; value <= knots.back() + 1.0; value += 0.5) {
            Index expected = 0;
            for (Index i = 0; i < n; ++i) {
                if (knots[static_cast<std::size_t>(i)] <= value) expected = i;
            }
            EXPECT_EQ(findInterval(n, value, knots.data()), expected) << "round " << round << ", " << value;
        }
    }
}

/// The straight way from (0, 0) over (1, 0) to (3, 0), its second segment lifted by u^2 and u^3.
class SampleSegments : public testing::Test {
  protected:
    Matrix P{Rows{{0, 0}, {1, 0}, {3, 0}}};
    Matrix b{Rows{{1, 0}, {1, 0}}};
    Matrix c{Rows{{0, 0}, {0, 1}}};
    Matrix d{Rows{{0, 0}, {0, 2}}};
    double len[2] = {1.0, 2.0};
    double knots[3] = {0.0, 1.0, 3.0};
    SplineSegmentSet set{2, 2, P.rows(), b.rows(), c.rows(), d.rows(), len};
    Matrix out{40, 2};
    Index last = 77;

    int sample(double t0, double t1, double h, Index maxIndex = 39) {
        return sampleSegments(set, knots, t0, t1, h, maxIndex, out.rows(), last);
    }
    std::vector<double> xs() {
        std::vector<double> result;
        for (Index i = 0; i <= last; ++i)
            result.push_back(out[static_cast<std::size_t>(i)][0]);
        return result;
    }
};

TEST_F(SampleSegments, RefusesAReversedRangeAndAStepThatIsNotPositive) {
    EXPECT_EQ(sample(1.0, 0.5, 0.1), 1);
    EXPECT_EQ(sample(1.0, 0.5, 0.0), 1) << "the range is looked at first";
    EXPECT_EQ(sample(0.0, 1.0, 0.0), 2);
    EXPECT_EQ(sample(0.0, 1.0, -1.0), 2);
    EXPECT_EQ(last, 77);
}

TEST_F(SampleSegments, CrossesAKnot) {
    ASSERT_EQ(sample(0.0, 3.0, 0.5), 0);
    EXPECT_EQ(xs(), (std::vector<double>{0, 0.5, 1, 1.5, 2, 2.5, 3}));
    EXPECT_EQ(out[3][1], 0.25 + 2 * 0.125);
    EXPECT_EQ(out[6][1], 4.0 + 2 * 8.0);
}

TEST_F(SampleSegments, StartsEachSegmentAtItsKnotAndEndsAtTheEnd) {
    ASSERT_EQ(sample(0.0, 2.5, 0.75), 0);
    EXPECT_EQ(xs(), (std::vector<double>{0, 0.75, 1, 1.75, 2.5}));
}

TEST_F(SampleSegments, TheSampleAtAKnotComesFromTheNextSegment) {
    b[0][0] = 0.5;  // the first segment ends at x = 0.5 now, short of the second one's start
    ASSERT_EQ(sample(0.0, 1.0, 0.5), 0);
    EXPECT_EQ(xs(), (std::vector<double>{0, 0.25, 1}));
}

TEST_F(SampleSegments, EndSegmentsGoOnBeyondTheEnds) {
    ASSERT_EQ(sample(-1.0, 4.0, 0.5), 0);
    EXPECT_EQ(xs(), (std::vector<double>{-1, -0.5, 0, 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4}));
    EXPECT_EQ(out[8][1], 0.0) << "the last point itself, not the segment's value there";
}

TEST_F(SampleSegments, AnEmptyRangeGivesOnePoint) {
    ASSERT_EQ(sample(0.25, 0.25, 0.5), 0);
    EXPECT_EQ(xs(), (std::vector<double>{0.25}));
}

TEST_F(SampleSegments, AStepLongerThanTheRangeGivesItsEnds) {
    ASSERT_EQ(sample(1.0, 3.0, 100.0), 0);
    EXPECT_EQ(xs(), (std::vector<double>{1, 3}));
}

TEST_F(SampleSegments, WhatFindsNoRoomIsNotWritten) {
    ASSERT_EQ(sample(0.0, 3.0, 0.5, 3), 0);
    EXPECT_EQ(last, 3);
    EXPECT_EQ(out[3][0], 1.5);
    EXPECT_EQ(out[4][0], 0.0);
    ASSERT_EQ(sample(0.0, 4.0, 0.5, -1), 0);
    EXPECT_EQ(last, -1);
}

TEST_F(SampleSegments, ParametersThatAreNotNumbersGiveNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    ASSERT_EQ(sample(nan, nan, 0.5), 0);
    EXPECT_EQ(last, -1);
}

}  // namespace
