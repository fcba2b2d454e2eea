#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

#include "tests/curves/recorder.h"
#include "tests/support/allocation_failure.h"
#include "velquad/curves.h"

using velquad::test::CurvePoints;
using velquad::test::CurveRecorder;
using velquad::test::Rows;

namespace {

const Rows kLine{{0, 0}, {10, 0}, {20, 0}, {30, 0}, {40, 0}};
const Rows kSquare{{20, 0},  {40, 0}, {60, 0}, {60, 20}, {60, 40}, {60, 60}, {40, 60},
                   {20, 60}, {0, 60}, {0, 40}, {0, 20},  {0, 0},   {20, 0}};

struct Curve {
    CurvePoints source;
    CurveRecorder sink;
    unsigned int code = 99;

    Curve(const Rows& points, double step, double cornerFactor = 0.0) : source{points} {
        draw(step, cornerFactor, static_cast<unsigned int>(points.size()),
             points.empty() ? 2 : static_cast<unsigned int>(points[0].size()));
    }
    Curve(const Rows& points, double step, double cornerFactor, unsigned int count, unsigned int dimension)
        : source{points} {
        draw(step, cornerFactor, count, dimension);
    }
    void draw(double step, double cornerFactor, unsigned int count, unsigned int dimension) {
        code = matInterpolatingCurve(count, CurvePoints::read, CurveRecorder::write, &source, &sink,
                                     dimension, step, cornerFactor);
    }
};

TEST(MatInterpolatingCurve, StepZeroIsRefusedBeforeAnythingIsRead) {
    const double epsilon = 2.220446049250313e-16;
    for (const double step : {0.0, -1.0, std::nextafter(epsilon, 0.0)}) {
        const Curve curve(kLine, step);
        EXPECT_EQ(curve.code, 1u);
        EXPECT_EQ(curve.source.calls, 0u);
    }
    const Curve atBound({{0, 0}, {epsilon, 0}, {2 * epsilon, 0}, {3 * epsilon, 0}, {4 * epsilon, 0}},
                        epsilon);
    EXPECT_EQ(atBound.code, 0u);
    EXPECT_EQ(Curve(kLine, 0.0, 0.0, 5, 1).code, 1u) << "the step is looked at first";
}

TEST(MatInterpolatingCurve, RefusesDimensionsBelowTwoUnread) {
    for (const unsigned int dimension : {0u, 1u}) {
        const Curve curve(kLine, 1.0, 0.0, 5, dimension);
        EXPECT_EQ(curve.code, 3u);
        EXPECT_EQ(curve.source.calls, 0u);
    }
}

TEST(MatInterpolatingCurve, DimensionsAboveThreeAreInternalErrors) {
    const Rows line{{0, 0, 0, 0}, {1, 0, 0, 0}, {2, 0, 0, 0}, {3, 0, 0, 0}, {4, 0, 0, 0}};
    EXPECT_EQ(Curve(line, 1.0).code, 5u);
    EXPECT_EQ(Curve({{0, 0, 0, 0}, {1, 0, 0, 0}}, 1.0).code, 9u);
}

TEST(MatInterpolatingCurve, CountsOfPoints) {
    EXPECT_EQ(Curve({}, 1.0).code, 8u);
    EXPECT_EQ(Curve({{1, 2}}, 1.0).code, 9u);
    EXPECT_EQ(Curve({{1, 2}, {3, 4}}, 1.0).code, 9u);
    EXPECT_EQ(Curve({{0, 0}, {1, 0}, {2, 0}, {3, 0}}, 1.0).code, 9u) << "four points";
    EXPECT_EQ(Curve(kLine, 1.0).code, 0u) << "five points";
    EXPECT_EQ(Curve({}, 1.0).source.calls, 1u);
}

TEST(MatInterpolatingCurve, RefusesEqualNeighbours) {
    EXPECT_EQ(Curve({{0, 0}, {1, 0}, {1, 0}, {2, 0}, {3, 0}}, 1.0).code, 10u);
}

TEST(MatInterpolatingCurve, WritesABatchForEachSegment) {
    const Curve curve(kLine, 4.0);
    ASSERT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.sink.batches, (std::vector<unsigned int>{3, 3, 3, 4}));
    EXPECT_EQ(curve.sink.samples, (Rows{{0, 0},
                                        {4, 0},
                                        {8, 0},
                                        {10, 0},
                                        {14, 0},
                                        {18, 0},
                                        {20, 0},
                                        {24, 0},
                                        {28, 0},
                                        {30, 0},
                                        {34, 0},
                                        {38, 0},
                                        {40, 0}}));
}

TEST(MatInterpolatingCurve, AStepThatDividesASegmentDoublesNoSample) {
    const Curve curve(kLine, 5.0);
    EXPECT_EQ(curve.sink.samples,
              (Rows{{0, 0}, {5, 0}, {10, 0}, {15, 0}, {20, 0}, {25, 0}, {30, 0}, {35, 0}, {40, 0}}));
}

TEST(MatInterpolatingCurve, AStepLongerThanTheSegmentsGivesThePoints) {
    for (const double step : {10.0, 1000.0, std::numeric_limits<double>::infinity()}) {
        const Curve curve(kLine, step);
        ASSERT_EQ(curve.code, 0u);
        EXPECT_EQ(curve.sink.batches, (std::vector<unsigned int>{1, 1, 1, 2}));
        EXPECT_EQ(curve.sink.samples, kLine);
    }
}

TEST(MatInterpolatingCurve, OnlySegmentsShorterThanAStepShortenIt) {
    const Curve curve({{0, 0}, {10, 0}, {11, 0}, {12, 0}, {20, 0}}, 4.0);
    EXPECT_EQ(curve.sink.samples,
              (Rows{{0, 0}, {4, 0}, {8, 0}, {10, 0}, {11, 0}, {12, 0}, {16, 0}, {20, 0}}));
}

TEST(MatInterpolatingCurve, PassesCountDimensionAndUserValuesOn) {
    Curve curve(kLine, 5.0, 0.0, 9, 2);
    EXPECT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.source.calls, 1u);
    EXPECT_EQ(curve.source.maximalCount, 9u);
    EXPECT_EQ(curve.source.dimension, 2u);
    EXPECT_EQ(curve.source.otherUser, &curve.sink);
    EXPECT_EQ(curve.sink.otherUser, &curve.source);
}

TEST(MatInterpolatingCurve, FewerPointsThanAskedForAreHonoured) {
    const Curve fewer(kLine, 4.0, 0.0, 1000, 2);
    EXPECT_EQ(fewer.code, 0u);
    EXPECT_EQ(fewer.sink.samples, Curve(kLine, 4.0).sink.samples);
    EXPECT_EQ(Curve({{0, 0}, {1, 0}, {2, 0}, {3, 0}}, 1.0, 0.0, 1000, 2).code, 9u);
}

TEST(MatInterpolatingCurve, MorePointsThanAskedForAreCut) {
    CurvePoints source{kLine};
    source.claimedExtra = 1000000;
    CurveRecorder sink;
    EXPECT_EQ(matInterpolatingCurve(5, CurvePoints::read, CurveRecorder::write, &source, &sink, 2, 4.0, 0.0),
              0u);
    EXPECT_EQ(sink.samples, Curve(kLine, 4.0).sink.samples);
    EXPECT_EQ(matInterpolatingCurve(0, CurvePoints::read, CurveRecorder::write, &source, &sink, 2, 4.0, 0.0),
              8u);
}

TEST(MatInterpolatingCurve, NullCallbacksAreAnswered) {
    CurvePoints source{kLine};
    EXPECT_EQ(matInterpolatingCurve(5, nullptr, CurveRecorder::write, nullptr, nullptr, 2, 1.0, 0.0), 8u);
    EXPECT_EQ(matInterpolatingCurve(5, CurvePoints::read, nullptr, &source, nullptr, 2, 1.0, 0.0), 6u);
}

TEST(MatInterpolatingCurve, EndsWhenWritingFails) {
    for (std::size_t accepted = 0; accepted < 4; ++accepted) {
        CurvePoints source{kLine};
        CurveRecorder sink;
        sink.acceptedBatches = accepted;
        EXPECT_EQ(
            matInterpolatingCurve(5, CurvePoints::read, CurveRecorder::write, &source, &sink, 2, 4.0, 0.0),
            6u);
        EXPECT_EQ(sink.batches.size(), accepted + 1);
    }
}

TEST(MatInterpolatingCurve, ClosedSquareWithKeptCornersIsAPolyline) {
    for (const double factor : {0.0, 1.0, 7.0, -1.0}) {
        const Curve curve(kSquare, 10.0, factor);
        ASSERT_EQ(curve.code, 0u);
        ASSERT_EQ(curve.sink.samples.size(), 25u);
        for (std::size_t i = 0; i < 13; ++i)
            EXPECT_EQ(curve.sink.samples[2 * i], kSquare[i]);
        EXPECT_EQ(curve.sink.batches.size(), 12u) << "no further sample closes it";
    }
}

TEST(MatInterpolatingCurve, ClosedSquareWithRoundedCornersPassesThroughTheNewPoints) {
    const Curve curve(kSquare, 1000.0, 0.5);
    ASSERT_EQ(curve.code, 0u);
    const Rows expected{{20, 0},  {40, 0},  {50, 0},  {60, 10}, {60, 20}, {60, 40},
                        {60, 50}, {50, 60}, {40, 60}, {20, 60}, {10, 60}, {0, 50},
                        {0, 40},  {0, 20},  {0, 10},  {10, 0},  {20, 0}};
    ASSERT_EQ(curve.sink.samples.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(curve.sink.samples[i][0], expected[i][0], 1e-12) << i;
        EXPECT_NEAR(curve.sink.samples[i][1], expected[i][1], 1e-12) << i;
    }
}

TEST(MatInterpolatingCurve, RoundingOfEveryCornerFindsItsRoom) {
    // A diamond of stairs, two chords a stair: half of its 161 points are corners, the seam among them.
    Rows stairs{{0, 0}};
    const auto go = [&](double dx, double dy) {
        for (int i = 0; i < 2; ++i)
            stairs.push_back({stairs.back()[0] + dx, stairs.back()[1] + dy});
    };
    for (int i = 0; i < 10; ++i)
        go(1, 0), go(0, 1);
    for (int i = 0; i < 10; ++i)
        go(-1, 0), go(0, 1);
    for (int i = 0; i < 10; ++i)
        go(-1, 0), go(0, -1);
    for (int i = 0; i < 10; ++i)
        go(1, 0), go(0, -1);
    ASSERT_EQ(stairs.size(), 161u);
    const Curve curve(stairs, 1000.0, 0.25);
    EXPECT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.sink.samples.size(), 161u + 80);
}

TEST(MatInterpolatingCurve, ALastSampleThatMissesTheStartIsFollowedByIt) {
    // On a curve of this length neighbouring parameters are some 1e-6 apart, and the last one misses the start.
    bool hasClosed = false;
    for (unsigned seed = 1; seed <= 50 && !hasClosed; ++seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> real(-1e10, 1e10);
        Rows points;
        for (int i = 0; i < 6; ++i)
            points.push_back({real(random), real(random)});
        points.push_back(points.front());
        const Curve curve(points, 1e9);
        ASSERT_EQ(curve.code, 0u);
        if (curve.sink.batches.size() == 6) {
            EXPECT_LT(std::fabs(curve.sink.samples.back()[0] - points[0][0]), 1e-7);
            continue;
        }
        hasClosed = true;
        ASSERT_EQ(curve.sink.batches.size(), 7u);
        EXPECT_EQ(curve.sink.batches.back(), 1u);
        EXPECT_EQ(curve.sink.samples.back(), curve.sink.samples.front());
        EXPECT_NE(curve.sink.samples[curve.sink.samples.size() - 2], curve.sink.samples.front());

        CurvePoints source{points};
        CurveRecorder sink;
        sink.acceptedBatches = 6;
        EXPECT_EQ(
            matInterpolatingCurve(7, CurvePoints::read, CurveRecorder::write, &source, &sink, 2, 1e9, 0.0),
            6u)
            << "a refused closing sample is a failure as well";
    }
    EXPECT_TRUE(hasClosed);
}

TEST(MatInterpolatingCurve, AGapWithinTheToleranceIsNotFilled) {
    // The ends are near enough to count as closed, and so is the last sample to the first.
    const Rows points{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {-5, 5}, {0.99e-7, 0}};
    const Curve closed(points, 100.0);
    ASSERT_EQ(closed.code, 0u);
    EXPECT_EQ(closed.sink.batches.size(), 5u);
    EXPECT_NEAR(closed.sink.samples.back()[0], 0.99e-7, 1e-13);
}

TEST(MatInterpolatingCurve, DrawsInSpace) {
    const Rows line{{0, 0, 0}, {0, 0, 10}, {0, 0, 20}, {0, 0, 30}, {0, 0, 40}};
    const Curve curve(line, 5.0);
    ASSERT_EQ(curve.code, 0u);
    ASSERT_EQ(curve.sink.samples.size(), 9u);
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(curve.sink.samples[i], (std::vector<double>{0, 0, 5.0 * static_cast<double>(i)}));
    }
}

TEST(MatInterpolatingCurve, StepsThatNoBufferCanHoldAreOutOfMemory) {
    EXPECT_EQ(Curve(kLine, 1e-14).code, 7u);
    EXPECT_EQ(Curve(kLine, 2.3e-16).code, 7u);
    EXPECT_EQ(Curve(kLine, 10.0 / 2147483638.0).code, 7u);
    Rows huge = kLine;
    huge[4][0] = 1e300;
    EXPECT_NE(Curve(huge, 1e-10).code, 0u);
}

TEST(MatInterpolatingCurve, CoordinatesThatAreNotNumbersEndInACode) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {nan, infinity, -infinity}) {
        for (std::size_t i = 0; i < 5; ++i) {
            Rows points{{0, 0}, {10, 1}, {20, 5}, {30, 7}, {40, 0}};
            points[i][0] = bad;
            const Curve curve(points, 1.0, 0.5);
            EXPECT_EQ(curve.code, 5u) << bad << " at " << i;
        }
    }
    EXPECT_EQ(Curve({{-1, 0}, {nan, 0}, {0, -2}, {1, 1}, {2, 0}, {3, 1}}, 5.0).code, 5u)
        << "a point of which a coordinate is unknown equals none";
    EXPECT_EQ(Curve(kLine, nan).sink.samples, kLine) << "a step that is not a number gives the points";
}

TEST(MatInterpolatingCurve, AnyPointsEndInACodeOrInSamples) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double coordinates[] = {0.0,   -0.0,   1.0,   -1.0,   5.0, 7.5,
                                  1e-16, 1e-300, 1e300, -1e160, nan, infinity};
    const double steps[] = {0.5, 0.02, 1e9, 1e200, nan, infinity};
    const double factors[] = {0.0, 0.5, 1e-17, 0.9999999999999999, nan};
    std::size_t drawn = 0;
    for (unsigned seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const std::size_t kinds = seed % 2 == 0 ? 12 : 6;
        Rows points(5 + random() % 6, std::vector<double>(2 + random() % 2));
        for (auto& point : points) {
            for (double& x : point)
                x = coordinates[random() % kinds];
        }
        const Curve curve(points, steps[random() % 6], factors[random() % 5]);
        const unsigned int code = curve.code;
        ASSERT_TRUE(code == 0 || code == 5 || code == 7 || code == 10) << code;
        if (code != 0) continue;
        ++drawn;
        ASSERT_GE(curve.sink.batches.size(), points.size() - 1);
        ASSERT_EQ(curve.sink.samples.front().size(), points[0].size());
    }
    EXPECT_GT(drawn, 100u);
}

TEST(MatInterpolatingCurve, ReportsEveryFailingAllocation) {
    const auto read = [](double** rows, unsigned int maximal, unsigned int, void*, void*) {
        for (unsigned int i = 0; i < maximal; ++i)
            rows[i][0] = 10.0 * i;
        return maximal;
    };
    const auto write = [](double**, unsigned int, unsigned int, void*, void*) { return 1u; };
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        const unsigned int code = matInterpolatingCurve(5, read, write, nullptr, nullptr, 2, 1.0, 0.5);
        EXPECT_TRUE(code == 0 || code == 7) << code;
        return code == 7;
    });
    EXPECT_GE(count, 10u);
}

TEST(MatInterpolatingCurve, AnExceptionOfACallbackPassesAndNothingIsLost) {
    const auto throwingRead = [](double**, unsigned int, unsigned int, void*, void*) -> unsigned int {
        throw std::runtime_error("read");
    };
    const auto throwingWrite = [](double**, unsigned int, unsigned int, void*, void*) -> unsigned int {
        throw std::runtime_error("write");
    };
    const auto read = [](double** rows, unsigned int maximal, unsigned int, void*, void*) {
        for (unsigned int i = 0; i < maximal; ++i)
            rows[i][0] = 10.0 * i;
        return maximal;
    };
    // The first exception of a thread takes memory that the run-time library keeps.
    try {
        throwingRead(nullptr, 0, 0, nullptr, nullptr);
    } catch (const std::runtime_error&) {
    }
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    EXPECT_THROW(matInterpolatingCurve(5, throwingRead, throwingWrite, nullptr, nullptr, 2, 1.0, 0.5),
                 std::runtime_error);
    EXPECT_THROW(matInterpolatingCurve(5, read, throwingWrite, nullptr, nullptr, 2, 1.0, 0.5),
                 std::runtime_error);
    EXPECT_EQ(velquad::test::liveAllocations(), before);
}

}  // namespace
