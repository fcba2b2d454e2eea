#include "curves/bspline.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/curves/recorder.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/bspline_reference.h"
#include "tests/support/matrix.h"

using namespace velquad::curves;
using velquad::test::CurveRecorder;
using velquad::test::Matrix;
using velquad::test::ReferenceBspline;
using velquad::test::Rows;

namespace {

const Rows kSquare{{0, 0}, {4, 0}, {4, 4}, {0, 4}};

struct Sampled {
    CurveRecorder recorder;
    Index wanted;
    int code;

    Sampled(const Rows& points, Index order, bool isOpen, Index samples) : wanted(samples) {
        Matrix P(points);
        const BsplineCurve curve{P.rows(), static_cast<Index>(points.size()), order,
                                 static_cast<Index>(points[0].size()), isOpen};
        code = bsplineSample(curve, {CurveRecorder::write, nullptr, &recorder}, wanted);
    }
};

TEST(BsplineSample, ClosedQuadraticOfFourPoints) {
    const Sampled s(kSquare, 3, false, 0);
    ASSERT_EQ(s.code, 0);
    EXPECT_EQ(s.wanted, 9);
    EXPECT_EQ(s.recorder.samples,
              (Rows{{2, 0}, {3.5, 0.5}, {4, 2}, {3.5, 3.5}, {2, 4}, {0.5, 3.5}, {0, 2}, {0.5, 0.5}, {2, 0}}));
    EXPECT_EQ(s.recorder.batches, std::vector<unsigned int>(9, 1));
}

TEST(BsplineSample, OpenQuadraticOfThreePointsIsAParabola) {
    const Sampled s({{0, 0}, {2, 4}, {4, 0}}, 3, true, 5);
    ASSERT_EQ(s.code, 0);
    EXPECT_EQ(s.wanted, 5);
    EXPECT_EQ(s.recorder.samples, (Rows{{0, 0}, {1, 1.5}, {2, 2}, {3, 1.5}, {4, 0}}));
}

TEST(BsplineSample, SampleCountIsCutToWholeSegments) {
    EXPECT_EQ(Sampled(kSquare, 3, false, 9).wanted, 9);
    EXPECT_EQ(Sampled(kSquare, 3, false, 12).wanted, 9) << "q = 11 / 4";
    EXPECT_EQ(Sampled(kSquare, 3, false, 13).wanted, 13);
    EXPECT_EQ(Sampled(kSquare, 3, true, 0).wanted, 5) << "two segments";
    EXPECT_EQ(Sampled(kSquare, 4, true, 0).wanted, 3) << "one segment";
    EXPECT_EQ(Sampled(kSquare, 4, true, -7).wanted, 3);
}

TEST(BsplineSample, RefusesBadArguments) {
    EXPECT_EQ(Sampled({{0, 0}, {1, 1}}, 3, false, 9).code, 11);
    EXPECT_EQ(Sampled(kSquare, 2, false, 9).code, 11);
    EXPECT_EQ(Sampled(kSquare, 5, true, 9).code, 11);
    EXPECT_EQ(Sampled({{0}, {1}, {2}}, 3, true, 9).code, 11);
    EXPECT_EQ(Sampled({{0, 0}, {1, 1}, {2, 2}}, 3, true, 9).code, 0);
    EXPECT_TRUE(Sampled(kSquare, 5, true, 9).recorder.samples.empty());
}

TEST(BsplineSample, StopsWhenTheSinkWantsNoMore) {
    Matrix P(kSquare);
    for (const std::size_t accepted : {0u, 1u, 4u}) {
        CurveRecorder recorder;
        recorder.acceptedBatches = accepted;
        Index wanted = 9;
        const BsplineCurve curve{P.rows(), 4, 3, 2, false};
        EXPECT_EQ(bsplineSample(curve, {CurveRecorder::write, nullptr, &recorder}, wanted), 6);
        EXPECT_EQ(recorder.batches.size(), accepted + 1);
    }
    Index wanted = 9;
    EXPECT_EQ(bsplineSample({P.rows(), 4, 3, 2, false}, {nullptr, nullptr, nullptr}, wanted), 6);
}

TEST(BsplineSample, AgreesWithTheBasisFunctions) {
    for (unsigned seed = 1; seed <= 80; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> real(-10.0, 10.0);
        const int order = 3 + static_cast<int>(seed % 4);
        const bool isOpen = seed % 2 == 0;
        const std::size_t dimension = 2 + seed % 3;
        Rows points(static_cast<std::size_t>(order) + random() % 6, std::vector<double>(dimension));
        for (auto& point : points) {
            for (double& x : point)
                x = real(random);
        }
        const Sampled s(points, order, isOpen, static_cast<Index>(random() % 60));
        ASSERT_EQ(s.code, 0);

        const ReferenceBspline reference(points, order, isOpen);
        const int n = static_cast<int>(points.size());
        const int segments = isOpen ? n - order + 1 : n;
        const int perSegment = (static_cast<int>(s.wanted) - 1) / segments;
        ASSERT_EQ(s.recorder.samples.size(), static_cast<std::size_t>(1 + segments * perSegment));
        for (std::size_t i = 0; i < s.recorder.samples.size(); ++i) {
            const int step = i == 0 ? 0 : (static_cast<int>(i) - 1) % perSegment + 1;
            const int interval = order - 1 + (i == 0 ? 0 : (static_cast<int>(i) - 1) / perSegment);
            const auto expected = reference.at(interval + step / static_cast<double>(perSegment), interval);
            for (std::size_t j = 0; j < dimension; ++j) {
                EXPECT_NEAR(s.recorder.samples[i][j], expected[j], 1e-10) << "sample " << i;
            }
        }
        if (isOpen) {
            EXPECT_EQ(s.recorder.samples.front(), points.front());
            for (std::size_t j = 0; j < dimension; ++j) {
                EXPECT_NEAR(s.recorder.samples.back()[j], points.back()[j], 1e-11);
            }
        } else {
            for (std::size_t j = 0; j < dimension; ++j) {
                EXPECT_NEAR(s.recorder.samples.back()[j], s.recorder.samples.front()[j], 1e-11);
            }
        }
    }
}

TEST(BsplinePoint, StaysWithinItsInterval) {
    Matrix P(kSquare);
    Matrix work(3, 2);
    double out[2];
    const BsplineCurve curve{P.rows(), 4, 3, 2, false};
    bsplinePoint(curve, 5.5, 5, work.rows(), out);  // P[3], P[0], P[1]
    EXPECT_EQ(out[0], 0.125 * 0 + 0.75 * 0 + 0.125 * 4);
    EXPECT_EQ(out[1], 0.125 * 4 + 0.75 * 0 + 0.125 * 0);
}

TEST(BsplineSample, ReportsEveryFailingAllocation) {
    Matrix P(kSquare);
    const auto ignore = [](double**, unsigned int, unsigned int, void*, void*) { return 1u; };
    const std::size_t count = velquad::test::forEachFailingAllocation([&] {
        Index wanted = 9;
        const int code = bsplineSample({P.rows(), 4, 3, 2, false}, {ignore, nullptr, nullptr}, wanted);
        EXPECT_TRUE(code == 0 || code == 7) << code;
        return code == 7;
    });
    EXPECT_GT(count, 0u);
}

}  // namespace
