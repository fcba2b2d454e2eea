#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/first_allocations.h"
#include "tests/support/object_layout.h"
#include "tests/support/parabola_reference.h"
#include "velquad/fitting.h"

namespace {

using math::CSampleStatistics;
using math::CSVDPolyFit;
using math::ParaFit;
using velquad::test::failAllocation;
using velquad::test::failFirstAllocations;
using velquad::test::fitParabolaLiterally;
using velquad::test::layoutOf;
using velquad::test::PeakLimits;

using Values = std::vector<double>;

constexpr double kUntouched = -77.5;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The fields in the order that callers of older builds rely on.
static_assert(offsetof(ParaFit, vertexX) == 0 && offsetof(ParaFit, vertexY) == 8);
static_assert(offsetof(ParaFit, curvature) == 16 && offsetof(ParaFit, reserved) == 24);
static_assert(offsetof(ParaFit, residual) == 32 && offsetof(ParaFit, left) == 40);
static_assert(offsetof(ParaFit, right) == 44 && offsetof(ParaFit, plateauLeftX) == 48);
static_assert(offsetof(ParaFit, plateauRightX) == 56 && offsetof(ParaFit, isPeak) == 64);
static_assert(sizeof(ParaFit) == 72);

struct PolyFitLayout {
    svd::CDMatrix* design;
    svd::CDVector* rhs;
    svd::CDVector* coefficients;
    int capacity;
    int maxCoefficients;
    double xMean;
    double yMean;
};

struct StatisticsLayout {
    unsigned int count;
    double sum;
    double sumOfSquares;
};

Values countUp(int count) {
    Values values;
    for (int i = 0; i < count; ++i)
        values.push_back(i);
    return values;
}

// 4 - (x - vertex)^2 at 0, 1, 2 ...
Values peakAt(double vertex, int count) {
    Values values;
    for (int i = 0; i < count; ++i)
        values.push_back(4.0 - (i - vertex) * (i - vertex));
    return values;
}

struct Outcome {
    bool result;
    ParaFit fit;
};

Outcome outcomeOf(const Values& x, const Values& y, int index, double width, double minCurvature = 0.001,
                  double backgroundFactor = 3.0, double noiseFactor = 3.0) {
    CSVDPolyFit poly(2);
    Outcome outcome{};
    outcome.result = math::FitParabola(x, y, index, width, outcome.fit, poly, false, minCurvature,
                                       backgroundFactor, noiseFactor);
    return outcome;
}

TEST(SampleStatistics, GivesMeanAndDeviationOfTheSample) {
    CSampleStatistics statistics;
    EXPECT_EQ(statistics.Mean(), 0.0);
    EXPECT_EQ(statistics.StdDev(), 0.0);
    EXPECT_EQ(statistics.size(), 0U);
    statistics.Sample(7.5);
    EXPECT_EQ(statistics.Mean(), 7.5);
    EXPECT_EQ(statistics.StdDev(), 0.0);
    statistics.Sample(10.5);
    EXPECT_EQ(statistics.Mean(), 9.0);
    EXPECT_NEAR(statistics.StdDev(), 2.1213203435596424, 1e-14);
    EXPECT_EQ(statistics.size(), 2U);
    CSampleStatistics copy;
    copy = statistics;
    EXPECT_EQ(copy.Mean(), 9.0);
    copy = CSampleStatistics();
    EXPECT_EQ(copy.size(), 0U);
}

TEST(SampleStatistics, HasNoDeviationWhereRoundingLeavesNone) {
    CSampleStatistics statistics;
    for (int i = 0; i < 3; ++i)
        statistics.Sample(0.1);
    EXPECT_NEAR(statistics.StdDev(), 0.0, 1e-8);
    statistics.Sample(kNan);
    EXPECT_TRUE(std::isnan(statistics.Mean()));
    EXPECT_EQ(statistics.StdDev(), 0.0);
}

TEST(SampleStatistics, KeepsTwoSums) {
    CSampleStatistics statistics;
    for (const double value : {1.0, 2.0, 4.0, 8.5})
        statistics.Sample(value);
    const auto layout = layoutOf<StatisticsLayout>(statistics);
    EXPECT_EQ(layout.count, 4U);
    EXPECT_EQ(layout.sum, 15.5);
    EXPECT_EQ(layout.sumOfSquares, 93.25);
    EXPECT_EQ(statistics.Mean(), 3.875);
    // Squares of the distances from the mean sum to 33.1875; a third of that is 11.0625.
    EXPECT_NEAR(statistics.StdDev(), 3.3260336739125158, 1e-14);
}

TEST(SampleStatistics, WrapsTheProductOfTheCounts) {
    // Alternating +1 and -1: sum 1, squares 65537. The product 65536 * 65537 wraps to 65536, and the variance is
    // 65537 / 65536 - 1 / 65536 = 1 exactly.
    CSampleStatistics statistics;
    for (int i = 0; i < 65537; ++i)
        statistics.Sample(i % 2 == 0 ? 1.0 : -1.0);
    EXPECT_EQ(statistics.StdDev(), 1.0);
}

TEST(PolyFit, FitsALine) {
    CSVDPolyFit poly(1);
    double slope = 0.0;
    double intercept = 0.0;
    double residual = 0.0;
    ASSERT_TRUE(poly.FitRangeLine({0, 9, 2, 4}, {0, 0, 7, 11}, 2, 3, slope, intercept, &residual));
    EXPECT_NEAR(slope, 2.0, 1e-14);
    EXPECT_NEAR(intercept, 3.0, 1e-14);
    EXPECT_NEAR(residual, 0.0, 1e-26);
    // Errors (1, -2, 1) / 3 of y = x + 1 / 3; their squares sum to 2 / 3.
    ASSERT_TRUE(poly.FitRangeLine({0, 1, 2}, {0, 2, 2}, 0, 2, slope, intercept, &residual));
    EXPECT_NEAR(slope, 1.0, 1e-14);
    EXPECT_NEAR(intercept, 1.0 / 3.0, 1e-14);
    EXPECT_NEAR(residual, 2.0 / 3.0, 1e-14);
    ASSERT_TRUE(poly.FitRangeLine({0, 1}, {5, 5}, 0, 1, slope, intercept, nullptr));
    EXPECT_NEAR(slope, 0.0, 1e-15);
    EXPECT_NEAR(intercept, 5.0, 1e-15);
}

TEST(PolyFit, FitsAParabola) {
    CSVDPolyFit poly(2);
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double residual = 1.0;
    // y = 2 x^2 - 3 x + 4
    ASSERT_TRUE(poly.FitRangeParabola({7, -1, 0, 1, 3}, {7, 9, 4, 3, 13}, 1, 4, a, b, c, &residual));
    EXPECT_NEAR(a, 2.0, 1e-13);
    EXPECT_NEAR(b, -3.0, 1e-13);
    EXPECT_NEAR(c, 4.0, 1e-13);
    EXPECT_NEAR(residual, 0.0, 1e-24);
    // The cubic (-1, 3, -3, 1) is orthogonal to all parabolas on four equidistant samples.
    ASSERT_TRUE(poly.FitRangeParabola({0, 1, 2, 3}, {-1, 4, 1, 10}, 0, 3, a, b, c, &residual));
    EXPECT_NEAR(a, 1.0, 1e-13);
    EXPECT_NEAR(b, 0.0, 1e-12);
    EXPECT_NEAR(c, 0.0, 1e-12);
    EXPECT_NEAR(residual, 20.0, 1e-12);
}

TEST(PolyFit, RefusesWhatItCannotFit) {
    const Values x{0, 1, 2, 3};
    const Values y{1, 2, 4, 8};
    double first = kUntouched;
    double second = kUntouched;
    double third = kUntouched;
    double residual = kUntouched;
    CSVDPolyFit poly(2);
    EXPECT_FALSE(poly.FitRangeLine(x, {1, 2, 4}, 0, 2, first, second, &residual));
    EXPECT_FALSE(poly.FitRangeLine(x, y, 2, 2, first, second, &residual));
    EXPECT_FALSE(poly.FitRangeLine(x, y, 2, 1, first, second, &residual));
    EXPECT_FALSE(poly.FitRangeLine(x, y, 0, 4, first, second, &residual));
    EXPECT_FALSE(poly.FitRangeLine(x, y, -1, 2, first, second, &residual));
    EXPECT_FALSE(poly.FitRangeLine({}, {}, 0, 1, first, second, &residual));
    EXPECT_FALSE(poly.FitRangeParabola(x, y, 0, 2, first, second, third, &residual));
    EXPECT_FALSE(poly.FitRangeParabola(x, {1, 2, 4}, 0, 3, first, second, third, &residual));
    EXPECT_FALSE(poly.FitRangeParabola(x, y, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
                                       first, second, third, &residual));
    EXPECT_FALSE(CSVDPolyFit(1).FitRangeParabola(x, y, 0, 3, first, second, third, &residual));
    EXPECT_FALSE(CSVDPolyFit(0).FitRangeLine(x, y, 0, 3, first, second, &residual));
    EXPECT_FALSE(CSVDPolyFit(-5).FitRangeLine(x, y, 0, 3, first, second, &residual));
    EXPECT_FALSE(
        CSVDPolyFit(std::numeric_limits<int>::max()).FitRangeLine(x, y, 0, 3, first, second, &residual));
    EXPECT_EQ(first, kUntouched);
    EXPECT_EQ(second, kUntouched);
    EXPECT_EQ(third, kUntouched);
    EXPECT_EQ(residual, kUntouched);
}

TEST(PolyFit, FitsNoisySamples) {
    // By the normal equations in rational numbers.
    const Values x{1, 2, 4, 5, 7, 11};
    const Values y{3, 7, 4, 8, 1, -9};
    CSVDPolyFit poly(2);
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double residual = 0.0;
    ASSERT_TRUE(poly.FitRangeParabola(x, y, 0, 5, a, b, c, &residual));
    EXPECT_NEAR(a, -0.27424242424242423, 1e-14);
    EXPECT_NEAR(b, 1.9424242424242424, 1e-13);
    EXPECT_NEAR(c, 2.493939393939394, 1e-13);
    EXPECT_NEAR(residual, 17.68030303030303, 1e-12);
    ASSERT_TRUE(poly.FitRangeLine(x, y, 0, 5, a, b, &residual));
    EXPECT_NEAR(a, -1.3484848484848484, 1e-14);
    EXPECT_NEAR(b, 9.075757575757576, 1e-13);
    EXPECT_NEAR(residual, 67.31818181818181, 1e-12);
}

TEST(PolyFit, KeepsItsDigitsFarFromTheOrigin) {
    // y = 3e6 - 2 (x - 1000004)^2
    Values x;
    Values y;
    for (int i = 0; i < 11; ++i) {
        x.push_back(1e6 + i);
        y.push_back(3e6 - 2.0 * (i - 4) * (i - 4));
    }
    CSVDPolyFit poly(2);
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double residual = 1.0;
    ASSERT_TRUE(poly.FitRangeParabola(x, y, 0, 10, a, b, c, &residual));
    EXPECT_NEAR(a, -2.0, 1e-13);
    EXPECT_NEAR(-b / (2.0 * a), 1000004.0, 1e-8);
    EXPECT_NEAR(residual, 0.0, 1e-20);
    const auto layout = layoutOf<PolyFitLayout>(poly);
    EXPECT_EQ(layout.xMean, 1000005.0);
    EXPECT_EQ(layout.yMean, 2999978.0);
}

// Curves whose sums and products all round.
Values unevenCurve(std::mt19937& random, int count, double height) {
    Values values;
    for (int i = 0; i < count; ++i)
        values.push_back(0.1 * i + height * (0.1 * static_cast<double>(random() % 97)));
    return values;
}

TEST(PolyFit, LeavesTheMeansFrameTermByTerm) {
    std::mt19937 random(104);
    for (int run = 0; run < 200; ++run) {
        SCOPED_TRACE(run);
        const int count = 4 + run % 9;
        Values x = unevenCurve(random, count, 1.0);
        std::sort(x.begin(), x.end());
        const Values y = unevenCurve(random, count, 3.0);
        double xSum = 0.0;
        double ySum = 0.0;
        for (std::size_t i = 1; i < x.size(); ++i) {
            xSum += x[i];
            ySum += y[i];
        }
        CSVDPolyFit poly(2);
        double a = 0.0;
        double b = 0.0;
        double c = 0.0;
        ASSERT_TRUE(poly.FitRangeLine(x, y, 1, count - 1, a, b, nullptr));
        auto fit = layoutOf<PolyFitLayout>(poly);
        const double* centred = fit.coefficients->get();
        EXPECT_EQ(fit.xMean, xSum / (count - 1));
        EXPECT_EQ(fit.yMean, ySum / (count - 1));
        EXPECT_EQ(a, centred[2]);
        EXPECT_EQ(b, centred[1] - fit.xMean * centred[2] + fit.yMean);
        if (count < 5) continue;
        ASSERT_TRUE(poly.FitRangeParabola(x, y, 1, count - 1, a, b, c, nullptr));
        fit = layoutOf<PolyFitLayout>(poly);
        centred = fit.coefficients->get();
        EXPECT_EQ(a, centred[3]);
        EXPECT_EQ(b, centred[2] - 2.0 * centred[3] * fit.xMean);
        EXPECT_EQ(c, fit.xMean * centred[3] * fit.xMean + centred[1] - centred[2] * fit.xMean + fit.yMean);
    }
}

TEST(PolyFit, GrowsButNeverShrinks) {
    const Values x = countUp(9);
    const Values y = peakAt(3.0, 9);
    double slope = 0.0;
    double intercept = 0.0;
    CSVDPolyFit poly(4);
    const auto fresh = layoutOf<PolyFitLayout>(poly);
    EXPECT_EQ(fresh.design, nullptr);
    EXPECT_EQ(fresh.rhs, nullptr);
    EXPECT_EQ(fresh.coefficients, nullptr);
    EXPECT_EQ(fresh.capacity, 0);
    EXPECT_EQ(fresh.maxCoefficients, 5);
    ASSERT_TRUE(poly.FitRangeLine(x, y, 2, 6, slope, intercept, nullptr));
    const auto grown = layoutOf<PolyFitLayout>(poly);
    EXPECT_EQ(grown.capacity, 5);
    EXPECT_EQ(grown.xMean, 4.0);
    // The powers of the largest fit have their room: row 1 ends five elements behind row 0.
    EXPECT_EQ((*grown.design)[2] - (*grown.design)[1], 6);
    ASSERT_TRUE(poly.FitRangeLine(x, y, 3, 7, slope, intercept, nullptr));
    ASSERT_TRUE(poly.FitRangeLine(x, y, 0, 1, slope, intercept, nullptr));
    const auto kept = layoutOf<PolyFitLayout>(poly);
    EXPECT_EQ(kept.design, grown.design);
    EXPECT_EQ(kept.rhs, grown.rhs);
    EXPECT_EQ(kept.coefficients, grown.coefficients);
    EXPECT_EQ(kept.capacity, 5);
    EXPECT_EQ(kept.xMean, 0.5);
    ASSERT_TRUE(poly.FitRangeLine(x, y, 0, 5, slope, intercept, nullptr));
    EXPECT_EQ(layoutOf<PolyFitLayout>(poly).capacity, 6);
}

TEST(PolyFit, KeepsItsCapacityWhenItCannotGrow) {
    const Values x = countUp(9);
    const Values y = peakAt(3.0, 9);
    double slope = kUntouched;
    double intercept = kUntouched;
    for (std::size_t number = 1; number <= 7; ++number) {
        SCOPED_TRACE(number);
        CSVDPolyFit poly(1);
        ASSERT_TRUE(poly.FitRangeLine(x, y, 0, 2, slope, intercept, nullptr));
        const auto before = layoutOf<PolyFitLayout>(poly);
        slope = kUntouched;
        failAllocation(number);
        EXPECT_FALSE(poly.FitRangeLine(x, y, 0, 8, slope, intercept, nullptr));
        failAllocation(0);
        EXPECT_EQ(slope, kUntouched);
        const auto after = layoutOf<PolyFitLayout>(poly);
        EXPECT_EQ(after.capacity, 3);
        EXPECT_EQ(after.xMean, before.xMean);
        // Three allocations make the design, two each of the vectors.
        EXPECT_EQ(after.design == before.design, number <= 3);
        EXPECT_EQ(after.rhs == before.rhs, number <= 5);
        EXPECT_EQ(after.coefficients, before.coefficients);
        EXPECT_TRUE(poly.FitRangeLine(x, y, 0, 2, slope, intercept, nullptr));
    }
}

TEST(PolyFit, KeepsItsMemoryFromFitToFit) {
    CSVDPolyFit poly(2);
    const Values x = countUp(20);
    const Values y = peakAt(3.0, 20);
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    for (const int last : {5, 19, 4, 12}) {
        ASSERT_TRUE(poly.FitRangeParabola(x, y, 0, last, a, b, c, nullptr));
        EXPECT_NEAR(a, -1.0, 1e-12);
        EXPECT_NEAR(b, 6.0, 1e-11);
        EXPECT_NEAR(c, -5.0, 1e-10);
    }
}

TEST(PolyFit, StoresNothingWhenMemoryIsLackingAndCanBeUsedAgain) {
    const Values x = countUp(8);
    const Values y = peakAt(3.0, 8);
    failFirstAllocations(11, [&x, &y] {
        CSVDPolyFit poly(2);
        double a = kUntouched;
        double b = kUntouched;
        double c = kUntouched;
        bool isFitted = false;
        try {
            isFitted = poly.FitRangeParabola(x, y, 0, 7, a, b, c, nullptr);
        } catch (const std::bad_alloc&) {
            isFitted = false;
        }
        EXPECT_EQ(isFitted, a != kUntouched);
        if (!isFitted) {
            EXPECT_TRUE(poly.FitRangeParabola(x, y, 0, 7, a, b, c, nullptr));
            EXPECT_NEAR(a, -1.0, 1e-13);
        }
        return !isFitted;
    });
}

TEST(ParabolaFit, LocatesAPeak) {
    const Outcome outcome = outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0);
    ASSERT_TRUE(outcome.result);
    EXPECT_NEAR(outcome.fit.vertexX, 5.0, 1e-13);
    EXPECT_NEAR(outcome.fit.vertexY, 4.0, 1e-12);
    EXPECT_NEAR(outcome.fit.curvature, -1.0, 1e-13);
    EXPECT_NEAR(outcome.fit.residual, 0.0, 1e-24);
    EXPECT_EQ(outcome.fit.left, 3);
    EXPECT_EQ(outcome.fit.right, 7);
    EXPECT_EQ(outcome.fit.plateauLeftX, 4.0);
    EXPECT_EQ(outcome.fit.plateauRightX, 6.0);
    EXPECT_TRUE(outcome.fit.isPeak);
    EXPECT_EQ(outcome.fit.reserved, 0.0);
}

TEST(ParabolaFit, FitsAValleyThatIsNoPeak) {
    Values y = peakAt(5.0, 11);
    for (double& value : y)
        value = -value;
    const Outcome outcome = outcomeOf(countUp(11), y, 5, 6.0);
    ASSERT_TRUE(outcome.result);
    EXPECT_NEAR(outcome.fit.curvature, 1.0, 1e-13);
    EXPECT_FALSE(outcome.fit.isPeak);
}

TEST(ParabolaFit, RefusesFlatCurves) {
    EXPECT_FALSE(outcomeOf(countUp(11), Values(11, 3.0), 5, 6.0, 0.0).result);
    EXPECT_FALSE(outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0, 1.001).result);
    EXPECT_TRUE(outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0, 0.999).result);
    // The bound itself is refused.
    const double curvature = std::fabs(outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0).fit.curvature);
    EXPECT_FALSE(outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0, curvature).result);
    EXPECT_TRUE(outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0, std::nextafter(curvature, 0.0)).result);
    EXPECT_FALSE(outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0, kNan).result);
}

TEST(ParabolaFit, ResetsTheResultBeforeItGivesUp) {
    CSVDPolyFit poly(2);
    ParaFit fit = outcomeOf(countUp(11), peakAt(5.0, 11), 5, 6.0).fit;
    const ParaFit before = fit;
    EXPECT_FALSE(math::FitParabola({0, 1}, {0, 1}, 1, 6, fit, poly, false, 0.001, 3, 3));
    EXPECT_FALSE(math::FitParabola({0, 1, 2, 3}, {0, 1, 0}, 1, 6, fit, poly, false, 0.001, 3, 3));
    EXPECT_TRUE(fit.isPeak);
    EXPECT_EQ(fit.vertexY, before.vertexY);
    EXPECT_EQ(fit.curvature, before.curvature);
    // Three samples are too few for the fit.
    EXPECT_FALSE(math::FitParabola({0, 1, 2}, {0, 1, 0}, 1, 6, fit, poly, false, 0.001, 3, 3));
    EXPECT_FALSE(fit.isPeak);
    EXPECT_EQ(fit.vertexY, 0.0);
    EXPECT_EQ(fit.curvature, 0.0);
    EXPECT_EQ(fit.vertexX, before.vertexX);
    EXPECT_EQ(fit.left, before.left);
    EXPECT_EQ(fit.plateauLeftX, before.plateauLeftX);
}

TEST(ParabolaFit, RefusesAnIndexOutsideOfTheCurve) {
    for (const int index : {-1, 11, 12, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_FALSE(outcomeOf(countUp(11), peakAt(5.0, 11), index, 6.0).result) << index;
}

TEST(ParabolaFit, SpansTwoNeighboursAndHalfTheWidth) {
    const auto windowOf = [](int index, double width) {
        const Outcome outcome = outcomeOf(countUp(11), peakAt(5.0, 11), index, width);
        EXPECT_TRUE(outcome.result);
        return Values{double(outcome.fit.left), double(outcome.fit.right)};
    };
    EXPECT_EQ(windowOf(5, 0.0), (Values{3, 7}));
    EXPECT_EQ(windowOf(5, -9.0), (Values{3, 7}));
    EXPECT_EQ(windowOf(5, 6.0), (Values{3, 7}));
    EXPECT_EQ(windowOf(5, 6.001), (Values{2, 8}));
    EXPECT_EQ(windowOf(5, 100.0), (Values{0, 10}));
    EXPECT_EQ(windowOf(1, 0.0), (Values{0, 3}));
    EXPECT_EQ(windowOf(10, 7.0), (Values{7, 10}));
    EXPECT_EQ(windowOf(5, kNan), (Values{0, 10}));
}

TEST(ParabolaFit, FindsAVertexOutsideOfTheWindowThatIsNoPeak) {
    const Outcome outcome = outcomeOf(countUp(21), peakAt(15.0, 21), 5, 6.0);
    ASSERT_TRUE(outcome.result);
    EXPECT_NEAR(outcome.fit.vertexX, 15.0, 1e-10);
    EXPECT_FALSE(outcome.fit.isPeak);
}

// A peak of height 4 over samples 8 to 12 of 21, all others at one level.
Values peakOver(double level) {
    Values y = peakAt(10.0, 21);
    for (std::size_t i = 0; i < y.size(); ++i) {
        if (i < 8 || i > 12) y[i] = level;
    }
    return y;
}

TEST(ParabolaFit, ComparesThePeakWithTheBackground) {
    EXPECT_TRUE(outcomeOf(countUp(21), peakOver(3.0), 10, 6.0).fit.isPeak);
    EXPECT_FALSE(outcomeOf(countUp(21), peakOver(5.0), 10, 6.0).fit.isPeak);
    // Deviation 2.0656 around 2: the threshold is 2 + 2.0656 * factor.
    Values y = peakOver(0.0);
    for (std::size_t i = 0; i < y.size(); i += 2) {
        if (i < 8 || i > 12) y[i] = 4.0;
    }
    EXPECT_TRUE(outcomeOf(countUp(21), y, 10, 6.0, 0.001, 0.9).fit.isPeak);
    EXPECT_FALSE(outcomeOf(countUp(21), y, 10, 6.0, 0.001, 1.0).fit.isPeak);
}

TEST(ParabolaFit, LeavesTheFlanksOutOfTheBackground) {
    // Four samples outside of the window 2 to 6, whose ends have the level 0.
    Values y = peakAt(4.0, 9);
    y[0] = y[1] = y[7] = y[8] = 5.0;
    EXPECT_FALSE(outcomeOf(countUp(9), y, 4, 6.0).fit.isPeak);
    y[1] = -1.0;  // A flank; three samples are no background.
    EXPECT_TRUE(outcomeOf(countUp(9), y, 4, 6.0).fit.isPeak);
    y[1] = 0.0;  // As high as the window's end: no flank. Mean 3.75, deviation 2.5.
    EXPECT_TRUE(outcomeOf(countUp(9), y, 4, 6.0, 0.001, 0.05).fit.isPeak);
    EXPECT_FALSE(outcomeOf(countUp(9), y, 4, 6.0, 0.001, 0.15).fit.isPeak);
    y[1] = 5.0;
    y[0] = -1.0;  // Behind the end of the flank all samples count. Mean 3.5, deviation 3.
    EXPECT_TRUE(outcomeOf(countUp(9), y, 4, 6.0, 0.001, 0.1).fit.isPeak);
    EXPECT_FALSE(outcomeOf(countUp(9), y, 4, 6.0, 0.001, 0.2).fit.isPeak);
}

TEST(ParabolaFit, ComparesThePeakWithTheNoise) {
    // The errors (1, -4, 6, -4, 1) / 10 are orthogonal to all parabolas: the residual is 0.7, its root 0.83666; the
    // vertex stands 4 above the window's ends.
    Values y = peakAt(2.0, 5);
    const double errors[] = {0.1, -0.4, 0.6, -0.4, 0.1};
    for (std::size_t i = 0; i < 5; ++i)
        y[i] += errors[i];
    const Outcome outcome = outcomeOf(countUp(5), y, 2, 6.0, 0.001, 3.0, 4.78);
    EXPECT_NEAR(outcome.fit.residual, 0.7, 1e-13);
    EXPECT_TRUE(outcome.fit.isPeak);
    EXPECT_FALSE(outcomeOf(countUp(5), y, 2, 6.0, 0.001, 3.0, 4.79).fit.isPeak);
}

TEST(ParabolaFit, TakesAPeakThatStandsExactlyAsHighAsTheNoise) {
    // The vertex stands 4.5 above the ends, and the noise is 2.3: products with factors below 2 reach every number
    // there.
    Values y = peakAt(2.0, 5);
    const double errors[] = {0.275, -1.1, 1.65, -1.1, 0.275};
    for (std::size_t i = 0; i < 5; ++i)
        y[i] = 1.125 * y[i] + errors[i];
    const ParaFit fit = outcomeOf(countUp(5), y, 2, 6.0).fit;
    CSVDPolyFit poly(2);
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    ASSERT_TRUE(poly.FitRangeParabola(countUp(5), y, 0, 4, a, b, c, nullptr));
    const double leftY = c;
    const double rightY = (4.0 * a) * 4.0 + 4.0 * b + c;
    const double height = fit.vertexY - (leftY > rightY ? rightY : leftY);
    const double noise = std::sqrt(fit.residual);
    double factor = height / noise;
    while (noise * factor < height)
        factor = std::nextafter(factor, 10.0);
    while (noise * factor > height)
        factor = std::nextafter(factor, 0.0);
    ASSERT_EQ(noise * factor, height);
    EXPECT_TRUE(outcomeOf(countUp(5), y, 2, 6.0, 0.001, 3.0, factor).fit.isPeak);
    while (noise * factor == height)
        factor = std::nextafter(factor, 10.0);
    EXPECT_FALSE(outcomeOf(countUp(5), y, 2, 6.0, 0.001, 3.0, factor).fit.isPeak);
}

TEST(ParabolaFit, MeasuresTheHeightByTheParabolaTermByTerm) {
    // The largest factor that lets the peak pass tells the height over the window's lower end to the last bit.
    std::mt19937 random(105);
    int peaks = 0;
    for (int run = 0; run < 300; ++run) {
        SCOPED_TRACE(run);
        Values x;
        Values y;
        for (int i = 0; i < 7; ++i) {
            x.push_back(0.3 * i + 0.1 + 0.01 * static_cast<double>(random() % 10));
            y.push_back(9.1 - 1.7 * (i - 3) * (i - 3) + 0.1 * static_cast<double>(random() % 23));
        }
        const ParaFit fit = outcomeOf(x, y, 3, 100.0, 0.0, 3.0, 0.0).fit;
        CSVDPolyFit poly(2);
        double a = 0.0;
        double b = 0.0;
        double c = 0.0;
        ASSERT_TRUE(poly.FitRangeParabola(x, y, 0, 6, a, b, c, nullptr));
        const double leftY = (x[0] * a) * x[0] + x[0] * b + c;
        const double rightY = (x[6] * a) * x[6] + x[6] * b + c;
        const double height = fit.vertexY - (leftY > rightY ? rightY : leftY);
        const double noise = std::sqrt(fit.residual);
        double factor = height / noise;
        while (noise * factor <= height)
            factor = std::nextafter(factor, 1e300);
        while (noise * factor > height)
            factor = std::nextafter(factor, 0.0);
        peaks += fit.isPeak ? 1 : 0;
        EXPECT_EQ(outcomeOf(x, y, 3, 100.0, 0.0, 3.0, factor).fit.isPeak, fit.isPeak);
        factor = std::nextafter(factor, 1e300);
        EXPECT_FALSE(outcomeOf(x, y, 3, 100.0, 0.0, 3.0, factor).fit.isPeak);
    }
    EXPECT_GT(peaks, 200);
}

TEST(ParabolaFit, IsNoPeakBesideABackgroundThatIsNotANumber) {
    // A not-a-number ends the flank, and what it makes of the threshold nothing stands above.
    Values y = peakAt(4.0, 9);
    y[0] = y[1] = y[7] = y[8] = 0.0;
    EXPECT_TRUE(outcomeOf(countUp(9), y, 4, 6.0).fit.isPeak);
    for (const std::size_t i : {0U, 1U, 7U, 8U}) {
        Values gap = y;
        gap[i] = kNan;
        const Outcome outcome = outcomeOf(countUp(9), gap, 4, 6.0);
        EXPECT_TRUE(outcome.result);
        EXPECT_FALSE(outcome.fit.isPeak) << i;
    }
}

TEST(ParabolaFit, RefusesAPeakThatStandsExactlyAsHighAsTheBackground) {
    Values y = peakOver(0.0);
    CSampleStatistics background;
    for (std::size_t i = 0; i < y.size(); ++i) {
        if (i >= 8 && i <= 12) continue;
        y[i] = i % 2 == 0 ? 4.0 : 0.0;
        background.Sample(y[i]);
    }
    const double height = outcomeOf(countUp(21), y, 10, 6.0).fit.vertexY;
    const double deviation = background.StdDev();
    const double mean = background.Mean();
    double factor = (height - mean) / deviation;
    while (deviation * factor + mean < height)
        factor = std::nextafter(factor, 10.0);
    while (deviation * factor + mean > height)
        factor = std::nextafter(factor, 0.0);
    ASSERT_EQ(deviation * factor + mean, height);
    EXPECT_FALSE(outcomeOf(countUp(21), y, 10, 6.0, 0.001, factor).fit.isPeak);
    while (deviation * factor + mean == height)
        factor = std::nextafter(factor, 0.0);
    EXPECT_TRUE(outcomeOf(countUp(21), y, 10, 6.0, 0.001, factor).fit.isPeak);
}

TEST(ParabolaFit, TakesZeroForTheBackgroundWithoutSamples) {
    Values y = peakAt(2.0, 5);
    EXPECT_TRUE(outcomeOf(countUp(5), y, 2, 6.0).fit.isPeak);
    for (double& value : y)
        value -= 5.0;
    const Outcome outcome = outcomeOf(countUp(5), y, 2, 6.0);
    ASSERT_TRUE(outcome.result);
    EXPECT_NEAR(outcome.fit.vertexY, -1.0, 1e-13);
    EXPECT_FALSE(outcome.fit.isPeak);
    // Below the window's ends of -5 all samples are flanks. Once some are not, the mean of -14.67 counts.
    y.insert(y.begin(), {-20.0, -20.0, -20.0, -20.0});
    y.insert(y.end(), {-20.0, -20.0});
    EXPECT_FALSE(outcomeOf(countUp(11), y, 6, 6.0, 0.001, 0.0).fit.isPeak);
    y[3] = y[9] = -4.0;
    EXPECT_TRUE(outcomeOf(countUp(11), y, 6, 6.0, 0.001, 0.0).fit.isPeak);
}

TEST(ParabolaFit, WantsTheVertexInsideTheWindow) {
    // The window is 0 to 3, and the vertex moves from one side of 0 to the other.
    for (const double vertex : {-0.01, 0.01}) {
        Values y = peakAt(vertex, 4);
        const Outcome atStart = outcomeOf(countUp(4), y, 0, 8.0, 0.0, 3.0, 0.0);
        ASSERT_TRUE(atStart.result);
        EXPECT_NEAR(atStart.fit.vertexX, vertex, 1e-12);
        EXPECT_EQ(atStart.fit.isPeak, vertex > 0.0);
        y = peakAt(3.0 + vertex, 4);
        const Outcome atEnd = outcomeOf(countUp(4), y, 3, 8.0, 0.0, 3.0, 0.0);
        ASSERT_TRUE(atEnd.result);
        EXPECT_EQ(atEnd.fit.left, 0);
        EXPECT_EQ(atEnd.fit.isPeak, vertex < 0.0);
    }
}

TEST(ParabolaFit, RefusesAVertexExactlyAtAnEndOfTheWindow) {
    // Rounding decides where exactly the vertex comes out; those that hit the end are what is looked for.
    int startHits = 0;
    int endHits = 0;
    for (int count = 4; count < 10; ++count) {
        for (int step = 1; step < 60; ++step) {
            Values y;
            for (int i = 0; i < count; ++i)
                y.push_back(4.0 - 0.25 * step * i * i);
            const ParaFit atStart = outcomeOf(countUp(count), y, 0, 100.0, 0.0, 3.0, 0.0).fit;
            startHits += atStart.vertexX == 0.0 ? 1 : 0;
            EXPECT_EQ(atStart.isPeak, atStart.vertexX > 0.0) << count << ' ' << step;
            std::reverse(y.begin(), y.end());
            const ParaFit atEnd = outcomeOf(countUp(count), y, count - 1, 100.0, 0.0, 3.0, 0.0).fit;
            endHits += atEnd.vertexX == count - 1 ? 1 : 0;
            EXPECT_EQ(atEnd.isPeak, atEnd.vertexX < count - 1) << count << ' ' << step;
        }
    }
    EXPECT_GT(startHits, 10);
    EXPECT_GT(endHits, 10);
}

TEST(ParabolaFit, RefusesAValleyWhateverTheNoise) {
    // A negative factor lets every height pass.
    const Values y{9.1, 5.6, 5.6, 5.6, 9.1};
    const Outcome outcome = outcomeOf(countUp(5), y, 2, 6.0, 0.001, 3.0, -1000.0);
    ASSERT_TRUE(outcome.result);
    EXPECT_GT(outcome.fit.curvature, 0.5);
    EXPECT_GT(outcome.fit.residual, 0.5);
    EXPECT_NEAR(outcome.fit.vertexX, 2.0, 1e-13);
    EXPECT_GT(outcome.fit.vertexY, 1.0);
    EXPECT_FALSE(outcome.fit.isPeak);
}

TEST(ParabolaFit, StopsAPlateauAtNotANumber) {
    Values y = peakAt(5.0, 11);
    y[0] = kNan;
    const Outcome outside = outcomeOf(countUp(11), y, 4, 0.0);
    ASSERT_TRUE(outside.result);
    EXPECT_EQ(outside.fit.plateauLeftX, 3.0);
    y = {7.0, kNan, 3.0, 3.0, 4.0, 5.0, 3.0, 3.0, 3.0, 3.0, kNan, 3.0};
    const Outcome among = outcomeOf(countUp(12), y, 6, 0.0, 0.0);
    ASSERT_TRUE(among.result);
    EXPECT_EQ(among.fit.left, 4);
    EXPECT_EQ(among.fit.right, 8);
    EXPECT_EQ(among.fit.plateauLeftX, 5.0);
    EXPECT_EQ(among.fit.plateauRightX, 10.0);
    y = {3.0, kNan, 3.0, 3.0, 3.0, 4.0, 6.0};
    const Outcome behind = outcomeOf(countUp(7), y, 4, 0.0, 0.0);
    ASSERT_TRUE(behind.result);
    EXPECT_EQ(behind.fit.plateauLeftX, 1.0);
    EXPECT_EQ(behind.fit.plateauRightX, 5.0);
}

TEST(ParabolaFit, FollowsPlateausToTheirEnds) {
    const Values y{4, 4, 4, 4, 2, 1, 3, 3, 3};
    const Outcome left = outcomeOf(countUp(9), y, 2, 0.0, 0.0);
    ASSERT_TRUE(left.result);
    EXPECT_EQ(left.fit.plateauLeftX, 0.0);
    EXPECT_EQ(left.fit.plateauRightX, 4.0);
    const Outcome right = outcomeOf(countUp(9), y, 8, 8.0, 0.0);
    ASSERT_TRUE(right.result);
    EXPECT_EQ(right.fit.plateauLeftX, 5.0);
    EXPECT_EQ(right.fit.plateauRightX, 8.0);
    const Outcome start = outcomeOf(countUp(9), y, 0, 10.0, 0.0);
    ASSERT_TRUE(start.result);
    EXPECT_EQ(start.fit.plateauLeftX, 0.0);
}

TEST(ParabolaFit, CannotFitNotANumber) {
    Values y = peakAt(5.0, 11);
    y[4] = kNan;
    EXPECT_FALSE(outcomeOf(countUp(11), y, 5, 6.0).result);
}

#if !defined(_WIN32)

std::wstring written;

void receive(const wchar_t* text) {
    written += text;
}

std::wstring textOf(const Values& y, double minCurvature, bool verbose) {
    CSVDPolyFit poly(2);
    ParaFit fit;
    written.clear();
    SetDebugOutputSink(receive);
    math::FitParabola(countUp(static_cast<int>(y.size())), y, 2, 6.0, fit, poly, verbose, minCurvature, 3.0,
                      3.0);
    SetDebugOutputSink(nullptr);
    return written;
}

TEST(ParabolaFit, TellsTheDebugOutputWhenAsked) {
    // 4 - (x - 2)^2 + (1, -4, 6, -4, 1) / 10, with ends at 0 only within rounding.
    const Values y{0.1, 2.6, 4.6, 2.6, 0.1};
    const std::wstring text = textOf(y, 0.001, true);
    const std::wstring start = L" Fitting parabola 0,4\n from 0 to 4 a:-1 b:4 c:";
    EXPECT_EQ(text.substr(0, start.size()), start);
    const std::wstring vertex = L" Vertex: 2,4,L/R: ";
    EXPECT_NE(text.find(vertex), std::wstring::npos);
    const std::wstring end = L", MSE 0.7/0.83666\n";
    ASSERT_GT(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
    EXPECT_EQ(textOf(y, 5.0, true), L" Fitting parabola 0,4\n");
    EXPECT_EQ(textOf(y, 0.001, false), L"");
    EXPECT_EQ(textOf({1, 2}, 0.001, true), L"");
    // Raised by 10, all numbers are told to six digits.
    EXPECT_EQ(textOf({10.1, 12.6, 14.6, 12.6, 10.1}, 0.001, true),
              L" Fitting parabola 0,4\n"
              L" from 0 to 4 a:-1 b:4 c:10 Vertex: 2,14,L/R: 10/10, MSE 0.7/0.83666\n");
}

#endif

TEST(ParabolaFit, AgreesWithTheStepByStepVersion) {
    std::mt19937 random(20261121);
    const auto below = [&random](int bound) {
        return static_cast<int>(random() % static_cast<unsigned>(bound));
    };
    int peaks = 0;
    for (int run = 0; run < 3000; ++run) {
        SCOPED_TRACE(run);
        const int count = 3 + below(30);
        Values x;
        Values y;
        double position = below(100) - 50.0;
        const double vertex = position + below(2 * count);
        for (int i = 0; i < count; ++i) {
            position += 0.5 + 0.25 * below(8);
            x.push_back(position);
            const double height = 20.0 - (position - vertex) * (position - vertex);
            y.push_back((height > 0.0 ? height : 0.0) + 0.25 * below(6));
        }
        const int index = below(count);
        const double width = 0.5 * below(40);
        const PeakLimits limits{0.01 * below(10), 0.5 * below(8), 0.5 * below(8)};
        ParaFit expected;
        const bool result = fitParabolaLiterally(x, y, index, width, limits, expected);
        const Outcome outcome =
            outcomeOf(x, y, index, width, limits.minCurvature, limits.backgroundFactor, limits.noiseFactor);
        ASSERT_EQ(outcome.result, result);
        EXPECT_EQ(outcome.fit.vertexX, expected.vertexX);
        EXPECT_EQ(outcome.fit.vertexY, expected.vertexY);
        EXPECT_EQ(outcome.fit.curvature, expected.curvature);
        EXPECT_EQ(outcome.fit.residual, expected.residual);
        EXPECT_EQ(outcome.fit.left, expected.left);
        EXPECT_EQ(outcome.fit.right, expected.right);
        EXPECT_EQ(outcome.fit.plateauLeftX, expected.plateauLeftX);
        EXPECT_EQ(outcome.fit.plateauRightX, expected.plateauRightX);
        EXPECT_EQ(outcome.fit.isPeak, expected.isPeak);
        peaks += outcome.fit.isPeak ? 1 : 0;
    }
    EXPECT_GT(peaks, 100);
}

}  // namespace
