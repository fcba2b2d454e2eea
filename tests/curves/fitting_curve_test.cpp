#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "tests/curves/recorder.h"
#include "tests/support/allocation_failure.h"
#include "velquad/curves.h"

using velquad::test::CurvePoints;
using velquad::test::CurveRecorder;
using velquad::test::Rows;

namespace {

const Rows kSquare{{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}};
const Rows kArch{{0, 0}, {2, 4}, {4, 0}};

struct Curve {
    CurvePoints source;
    CurveRecorder sink;
    unsigned int code;

    Curve(const Rows& points, double step, int order)
        : Curve(points, step, order, static_cast<unsigned int>(points.size()),
                points.empty() ? 2 : static_cast<unsigned int>(points[0].size())) {}
    Curve(const Rows& points, double step, int order, unsigned int count, unsigned int dimension)
        : source{points},
          code(matFittingCurve(count, CurvePoints::read, CurveRecorder::write, &source, &sink, dimension,
                               step, order)) {}
};

TEST(MatFittingCurve, ChecksStepOrderDimensionBeforeAnythingIsRead) {
    const double epsilon = 2.220446049250313e-16;
    EXPECT_EQ(Curve(kArch, 0.0, 3).code, 1u);
    EXPECT_EQ(Curve(kArch, std::nextafter(epsilon, 0.0), 3).code, 1u);
    EXPECT_EQ(Curve(kArch, 1.0, 2).code, 2u);
    EXPECT_EQ(Curve(kArch, 1.0, -3).code, 2u);
    EXPECT_EQ(Curve(kArch, 1.0, 3, 3, 1).code, 3u);
    EXPECT_EQ(Curve(kArch, 0.0, 2, 3, 1).code, 1u);
    EXPECT_EQ(Curve(kArch, 1.0, 2, 3, 1).code, 2u);
    EXPECT_EQ(Curve(kArch, 0.0, 3).source.calls, 0u);
    EXPECT_EQ(Curve(kArch, 1.0, 2).source.calls, 0u);
    EXPECT_EQ(Curve(kArch, 1.0, 3, 3, 1).source.calls, 0u);
}

TEST(MatFittingCurve, CountsOfPoints) {
    EXPECT_EQ(Curve({}, 1.0, 3).code, 8u);
    EXPECT_EQ(Curve({{1, 2}}, 1.0, 3).code, 4u);
    EXPECT_EQ(Curve({{1, 2}, {3, 4}}, 1.0, 3).code, 4u);
    EXPECT_EQ(Curve(kArch, 1.0, 3).code, 0u) << "three open points";
    EXPECT_EQ(Curve(kArch, 1.0, 4).code, 4u);
    EXPECT_EQ(Curve({{0, 0}, {1, 5}, {0, 0}}, 1.0, 3).code, 4u) << "two points and a closing one";
    EXPECT_EQ(Curve({{0, 0}, {4, 0}, {0, 4}, {0, 0}}, 1.0, 3).code, 0u) << "three points and a closing one";
    EXPECT_EQ(Curve(kSquare, 1.0, 5).code, 4u);
    EXPECT_EQ(Curve(kSquare, 1.0, std::numeric_limits<int>::max()).code, 4u);
}

TEST(MatFittingCurve, AcceptsEqualNeighbours) {
    const Curve curve({{0, 0}, {2, 4}, {2, 4}, {4, 0}}, 1.0, 3);
    EXPECT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.sink.samples.front(), (std::vector<double>{0, 0}));
}

TEST(MatFittingCurve, OpenCurveRunsFromTheFirstToTheLastPoint) {
    const Curve curve(kArch, 100.0, 3);
    ASSERT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.sink.samples, (Rows{{0, 0}, {2, 2}, {4, 0}}));
    EXPECT_EQ(curve.sink.batches, (std::vector<unsigned int>{1, 1, 1}));
}

TEST(MatFittingCurve, SampleCountOfAClosedCurve) {
    // 1 + v * q with v = 4 and q = (max(9, estimate) - 1) / 4.
    const auto samples = [](double step) { return Curve(kSquare, step, 3).sink.samples.size(); };
    EXPECT_EQ(samples(100.0), 9u);  // estimate 4
    EXPECT_EQ(samples(1.0), 13u);   // estimate 16, q = 3
    EXPECT_EQ(samples(0.9), 13u);   // trunc(4 / 0.9) = 4
    EXPECT_EQ(samples(0.8), 17u);   // estimate 20, q = 4
    EXPECT_EQ(samples(0.1), 157u);  // estimate 160, q = 39
}

TEST(MatFittingCurve, ClosedCurveIsPeriodic) {
    const Curve curve(kSquare, 100.0, 3);
    ASSERT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.sink.samples,
              (Rows{{2, 0}, {3.5, 0.5}, {4, 2}, {3.5, 3.5}, {2, 4}, {0.5, 3.5}, {0, 2}, {0.5, 0.5}, {2, 0}}));
}

TEST(MatFittingCurve, DifferencesAreCutToIntegersBeforeTheyAreDivided) {
    // Cut to 1 and 1; 1 / 0.25 is 4 each, so the estimate is 8 and the one segment gets 7 samples.
    EXPECT_EQ(Curve({{0, 0}, {1.99, 0}, {1.99, -1.99}}, 0.25, 3).sink.samples.size(), 8u);
    // Cut to 0 and 0: one sample each, which the least number outweighs.
    EXPECT_EQ(Curve({{0, 0}, {0.99, 0}, {0.99, -0.99}}, 0.01, 3).sink.samples.size(), 3u);
    // The quotient is cut as well: 3 / 0.8 is 3, twice, and one segment gets 5 samples.
    EXPECT_EQ(Curve({{0, 0}, {3, 1}, {0, 3}}, 0.8, 3).sink.samples.size(), 6u);
}

TEST(MatFittingCurve, DistancesBeyondTheIntegersCountAsOneSample) {
    EXPECT_EQ(Curve({{0, 0}, {1e10, 0}, {0, 0.5}}, 1.0, 3).sink.samples.size(), 3u);
    EXPECT_EQ(Curve({{0, 0}, {100, 0}, {0, 0.5}}, 1e-9, 3).sink.samples.size(), 3u) << "so do quotients";
}

TEST(MatFittingCurve, ClosedIsDecidedWithinTheTolerance) {
    const auto samples = [](double gap) {
        return Curve({{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, gap}}, 100.0, 3).sink.samples.size();
    };
    EXPECT_EQ(samples(std::nextafter(1e-7, 0.0)), 9u);
    EXPECT_EQ(samples(1e-7), 7u) << "open, three segments";
    const auto inSpace = [](double gap) {
        return Curve({{0, 0, 0, 0}, {4, 0, 0, 0}, {4, 4, 0, 0}, {0, 4, 0, 0}, {0, 0, gap, 9}}, 100.0, 3)
            .sink.samples.size();
    };
    EXPECT_EQ(inSpace(0.0), 9u) << "a fourth coordinate is not compared";
    EXPECT_EQ(inSpace(1.0), 7u);
}

TEST(MatFittingCurve, AnyDimensionFromTwoUp) {
    const Curve curve({{0, 0, 0, 0, 8}, {2, 4, 0, 0, 8}, {4, 0, 4, 0, 8}}, 100.0, 3);
    ASSERT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.sink.samples[1], (std::vector<double>{2, 2, 1, 0, 8}));
}

TEST(MatFittingCurve, CallbacksGetTheirValuesAndTheirSayInTheCount) {
    Curve curve(kArch, 100.0, 3, 50, 2);
    EXPECT_EQ(curve.code, 0u);
    EXPECT_EQ(curve.sink.samples.size(), 3u) << "fewer points than asked for are honoured";
    EXPECT_EQ(curve.source.maximalCount, 50u);
    EXPECT_EQ(curve.source.otherUser, &curve.sink);
    EXPECT_EQ(curve.sink.otherUser, &curve.source);

    CurvePoints source{kArch};
    source.claimedExtra = 1000000;
    CurveRecorder sink;
    EXPECT_EQ(matFittingCurve(3, CurvePoints::read, CurveRecorder::write, &source, &sink, 2, 100.0, 3), 0u);
    EXPECT_EQ(sink.samples.size(), 3u) << "more are cut";
    EXPECT_EQ(matFittingCurve(3, nullptr, CurveRecorder::write, &source, &sink, 2, 100.0, 3), 8u);
    EXPECT_EQ(matFittingCurve(3, CurvePoints::read, nullptr, &source, &sink, 2, 100.0, 3), 6u);
}

TEST(MatFittingCurve, EndsWhenWritingFails) {
    for (std::size_t accepted = 0; accepted < 3; ++accepted) {
        CurvePoints source{kArch};
        CurveRecorder sink;
        sink.acceptedBatches = accepted;
        EXPECT_EQ(matFittingCurve(3, CurvePoints::read, CurveRecorder::write, &source, &sink, 2, 100.0, 3),
                  6u);
        EXPECT_EQ(sink.batches.size(), accepted + 1);
    }
}

TEST(MatFittingCurve, StepsAndCoordinatesThatAreNotNumbersEnd) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Curve(kArch, nan, 3).sink.samples.size(), 3u);
    EXPECT_EQ(Curve({{0, 0}, {nan, 4}, {4, 0}}, 100.0, 3).sink.samples.size(), 3u);
    EXPECT_EQ(Curve({{0, 0}, {1e300, 4}, {4, 0}}, 1e-10, 3).sink.samples.size(), 3u);
}

TEST(MatFittingCurve, ReportsEveryFailingAllocation) {
    const auto read = [](double** rows, unsigned int maximal, unsigned int, void*, void*) {
        for (unsigned int i = 0; i < maximal; ++i)
            rows[i][0] = 10.0 * i;
        return maximal;
    };
    const auto write = [](double**, unsigned int, unsigned int, void*, void*) { return 1u; };
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        const unsigned int code = matFittingCurve(5, read, write, nullptr, nullptr, 2, 1.0, 3);
        EXPECT_TRUE(code == 0 || code == 7) << code;
        return code == 7;
    });
    EXPECT_GE(count, 5u);
}

TEST(MatFittingCurve, AnExceptionOfACallbackPassesAndNothingIsLost) {
    const auto throwingWrite = [](double**, unsigned int, unsigned int, void*, void*) -> unsigned int {
        throw std::runtime_error("write");
    };
    const auto read = [](double** rows, unsigned int maximal, unsigned int, void*, void*) {
        for (unsigned int i = 0; i < maximal; ++i)
            rows[i][0] = 10.0 * i;
        return maximal;
    };
    const std::ptrdiff_t before = velquad::test::liveAllocations();
    EXPECT_THROW(matFittingCurve(5, read, throwingWrite, nullptr, nullptr, 2, 1.0, 3), std::runtime_error);
    EXPECT_EQ(velquad::test::liveAllocations(), before);
}

}  // namespace
