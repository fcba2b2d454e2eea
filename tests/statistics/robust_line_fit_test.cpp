#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/preset_line.h"
#include "tests/support/regression_reference.h"
#include "velquad/statistics.h"

using velquad::kNoValue;
using velquad::test::comparable;
using velquad::test::forEachFailingAllocation;
using velquad::test::ReferenceLine;
using velquad::test::referenceRobust;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

using AnyRobustLine = velquad::test::PresetLine<CMatRobustLineFit>;

/// The outputs of a fit, with values that no fit gives.
struct Line {
    double slope = -77.0;
    double intercept = -78.0;
    int yOfX = -79;
};

struct Cloud {
    std::vector<double> x;
    std::vector<double> y;
    unsigned int count() const { return static_cast<unsigned int>(x.size()); }
    void add(double px, double py) {
        x.push_back(px);
        y.push_back(py);
    }
};

int fit(const Cloud& cloud, Line& line) {
    return matRobustLineFit(cloud.x.data(), cloud.y.data(), cloud.count(), &line.slope, &line.intercept,
                            &line.yOfX);
}

CMatRobustLineFit collected(const Cloud& cloud) {
    CMatRobustLineFit line;
    for (std::size_t i = 0; i < cloud.x.size(); ++i)
        EXPECT_EQ(line.AddValue(cloud.x[i], cloud.y[i]), 1);
    return line;
}

void expectAsReference(const Cloud& cloud) {
    const ReferenceLine expected = referenceRobust(cloud.x, cloud.y);
    Line line;
    ASSERT_EQ(fit(cloud, line), expected.exists ? 1 : 0);
    if (!expected.exists) return;
    EXPECT_EQ(comparable(line.slope), comparable(expected.slope));
    EXPECT_EQ(comparable(line.intercept), comparable(expected.intercept));
    EXPECT_EQ(line.yOfX, expected.yOfX);
}

double absoluteDeviations(const Cloud& cloud, double slope, double intercept, bool yOfX) {
    double sum = 0.0;
    for (std::size_t i = 0; i < cloud.x.size(); ++i) {
        const double t = yOfX ? cloud.x[i] : cloud.y[i];
        const double u = yOfX ? cloud.y[i] : cloud.x[i];
        sum += std::fabs(u - (slope * t + intercept));
    }
    return sum;
}

/// The least sum of absolute deviations: some line through two of the points attains it.
double leastAbsoluteDeviations(const Cloud& cloud, bool yOfX) {
    const std::vector<double>& t = yOfX ? cloud.x : cloud.y;
    const std::vector<double>& u = yOfX ? cloud.y : cloud.x;
    double least = kInfinity;
    for (std::size_t i = 0; i < t.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (t[i] == t[j]) continue;
            const double slope = (u[i] - u[j]) / (t[i] - t[j]);
            least = std::min(least, absoluteDeviations(cloud, slope, u[i] - slope * t[i], yOfX));
        }
    }
    return least;
}

std::vector<double> fromIndexOne(const std::vector<double>& values) {
    std::vector<double> result(values.size() + 1, 0.0);
    std::copy(values.begin(), values.end(), result.begin() + 1);
    return result;
}

/// Points on y = 2 x + 1 for x = 0 ... 9, and one far off.
Cloud lineWithOutlier() {
    Cloud cloud;
    for (int i = 0; i < 10; ++i)
        cloud.add(i, 2.0 * i + 1.0);
    cloud.add(5.0, 500.0);
    return cloud;
}

/// A cloud around slope * t + intercept, of which a share lies far off on one side.
Cloud contaminated(std::mt19937_64& random, std::size_t count, double share, double slope, double intercept) {
    std::normal_distribution<double> noise(0.0, 0.05);
    std::uniform_real_distribution<double> place(-50.0, 50.0);
    std::uniform_real_distribution<double> offset(30.0, 300.0);
    Cloud cloud;
    for (std::size_t i = 0; i < count; ++i) {
        const double t = place(random);
        const bool isOutlier = static_cast<double>(i) < share * static_cast<double>(count);
        cloud.add(t, slope * t + intercept + (isOutlier ? offset(random) : noise(random)));
    }
    return cloud;
}

/// Where the fit looks for bounds of the median in a large cloud.
std::vector<std::size_t> sampledPlaces(std::size_t count) {
    const std::size_t size = count / 32;
    const double stride = static_cast<double>(count) / static_cast<double>(size);
    std::vector<std::size_t> places;
    std::uint32_t scrambled = 0;
    for (std::size_t i = 0; i < size; ++i) {
        scrambled += 0x9E3779B9U;
        places.push_back(static_cast<std::size_t>(
            (static_cast<double>(i) + static_cast<double>(scrambled) * 0x1p-32) * stride));
    }
    return places;
}

template <class Value>
Value fieldAt(const CMatRobustLineFit& line, std::size_t offset) {
    Value value;
    std::memcpy(&value, reinterpret_cast<const char*>(&line) + offset, sizeof value);
    return value;
}

/// The pairs that an object holds, the leading one included.
std::vector<double> pairsOf(const CMatRobustLineFit& line) {
    const auto* begin = fieldAt<const double*>(line, 88);
    const auto* end = fieldAt<const double*>(line, 96);
    return {begin, end};
}

}  // namespace

// --- AddValue and the object ---------------------------------------------------------------------------------

TEST(CMatRobustLineFit, HasTheLayoutOfItsFields) {
    static_assert(sizeof(CMatRobustLineFit) == 88 + sizeof(std::vector<double>));
    static_assert(std::is_base_of_v<CMatRegressionLine, CMatRobustLineFit>);
    static_assert(!std::has_virtual_destructor_v<CMatRobustLineFit>);
    CMatRobustLineFit line;
    line.AddValue(1.5, 2.5);
    EXPECT_EQ(fieldAt<std::uint32_t>(line, 8), 1U);
    EXPECT_EQ(pairsOf(line), (std::vector<double>{0.0, 0.0, 1.5, 2.5}));
}

TEST(CMatRobustLineFit, SkippingAMarkedPairIsNoErrorUnlikeInTheBaseClass) {
    CMatRobustLineFit line(9.0);
    EXPECT_EQ(line.AddValue(9.0, 1.0), 1);
    EXPECT_EQ(line.AddValue(1.0, 9.0), 1);
    EXPECT_EQ(fieldAt<std::uint32_t>(line, 8), 0U) << "the count does not rise";
    EXPECT_EQ(pairsOf(line).size(), 2U);
    EXPECT_EQ(line.AddValue(1.0, 2.0), 1);
    EXPECT_EQ(fieldAt<std::uint32_t>(line, 8), 1U);
    CMatRegressionLine base(9.0);
    EXPECT_EQ(base.AddValue(9.0, 1.0), 0);
}

TEST(CMatRobustLineFit, TheDefaultMarkIsTheGreatestDouble) {
    CMatRobustLineFit line;
    EXPECT_EQ(line.AddValue(kNoValue, 0.0), 1);
    EXPECT_EQ(line.AddValue(0.0, kNoValue), 1);
    EXPECT_EQ(fieldAt<std::uint32_t>(line, 8), 0U);
}

TEST(CMatRobustLineFit, BothOperationsAreReachedThroughTheBase) {
    const Cloud cloud = lineWithOutlier();
    CMatRobustLineFit robust;
    CMatRegressionLine& base = robust;
    for (std::size_t i = 0; i < cloud.x.size(); ++i)
        EXPECT_EQ(base.AddValue(cloud.y[i], cloud.x[i]), 1);
    EXPECT_EQ(base.AddValue(kNoValue, 0.0), 1);
    Line line;
    EXPECT_EQ(base.CalcRegressionLine(&line.slope, &line.intercept, &line.yOfX), 1);
    EXPECT_EQ(line.yOfX, 1);
    double point[2] = {};
    EXPECT_EQ(base.CalcPointAt(0.0, point), 1);
    EXPECT_EQ(point[1], line.intercept);
}

TEST(CMatRobustLineFit, AddValueWithoutMemoryLeavesTheObjectAsItWas) {
    const Cloud cloud = lineWithOutlier();
    CMatRobustLineFit line = collected(cloud);
    Line before;
    ASSERT_EQ(line.CalcRegressionLine(&before.slope, &before.intercept, &before.yOfX), 1);
    // The pairs grow now and then only; a pair that needed memory has to be without effect.
    int refused = 0;
    for (int i = 0; i < 40; ++i) {
        velquad::test::failAllocation(1);
        try {
            line.AddValue(0.0, 1.0);
        } catch (const std::bad_alloc&) {
            ++refused;
        }
        velquad::test::failAllocation(0);
    }
    EXPECT_GT(refused, 0);
    EXPECT_EQ(pairsOf(line).size(), 2 * (fieldAt<std::uint32_t>(line, 8) + std::size_t{1}));
    Line after;
    EXPECT_EQ(line.CalcRegressionLine(&after.slope, &after.intercept, &after.yOfX), 1);
}

TEST(CMatRobustLineFit, CopiesAreIndependentAndMovesTakeThePairs) {
    const Cloud cloud = lineWithOutlier();
    Line expected;
    ASSERT_EQ(fit(cloud, expected), 1);
    CMatRobustLineFit original = collected(cloud);
    CMatRobustLineFit copy(original);
    CMatRobustLineFit assigned(5.0);
    assigned.AddValue(1.0, 1.0);
    assigned = original;
    assigned = *&assigned;
    const auto* block = fieldAt<const double*>(original, 88);
    CMatRobustLineFit moved(std::move(original));
    EXPECT_EQ(fieldAt<const double*>(moved, 88), block) << "the block is taken over";
    copy.AddValue(0.0, 1000.0);
    for (CMatRobustLineFit* line : {&moved, &assigned}) {
        EXPECT_EQ(pairsOf(*line).size(), 24U);
        Line out;
        EXPECT_EQ(line->CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 1);
        EXPECT_EQ(out.slope, expected.slope);
        EXPECT_EQ(out.intercept, expected.intercept);
    }
}

TEST(CMatRobustLineFit, AnObjectWhosePairsWereMovedAwayFailsSafely) {
    CMatRobustLineFit source = collected(lineWithOutlier());
    const CMatRobustLineFit taker(std::move(source));
    Line line;
    // NOLINTNEXTLINE(bugprone-use-after-move): what is left has to be safe.
    EXPECT_EQ(source.CalcRegressionLine(&line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(line.slope, kNoValue);
    source = taker;
    EXPECT_EQ(source.CalcRegressionLine(&line.slope, &line.intercept, &line.yOfX), 1);
}

TEST(CMatRobustLineFit, CopyingWithoutMemoryLeavesTheTargetAsItWas) {
    const CMatRobustLineFit source = collected(lineWithOutlier());
    CMatRobustLineFit target;
    const std::size_t allocations = forEachFailingAllocation([&] {
        try {
            CMatRobustLineFit local;
            local = source;
            const CMatRobustLineFit copy(source);  // NOLINT(performance-unnecessary-copy-initialization)
            EXPECT_EQ(fieldAt<std::uint32_t>(copy, 8), fieldAt<std::uint32_t>(local, 8));
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    });
    EXPECT_EQ(allocations, 3U) << "one for each object's pairs, one for the larger room";
    velquad::test::failAllocation(1);
    EXPECT_THROW(target = source, std::bad_alloc);
    velquad::test::failAllocation(0);
    EXPECT_EQ(fieldAt<std::uint32_t>(target, 8), 0U);
    EXPECT_EQ(pairsOf(target).size(), 2U);
}

// --- The fit -------------------------------------------------------------------------------------------------

TEST(MatRobustLineFit, TwoPointsGiveTheLineThroughThem) {
    Line line;
    EXPECT_EQ(fit({{0.0, 4.0}, {1.0, 3.0}}, line), 1);
    EXPECT_EQ(line.slope, 0.5);
    EXPECT_EQ(line.intercept, 1.0);
    EXPECT_EQ(line.yOfX, 1);
}

TEST(MatRobustLineFit, PointsOnALineGiveItsMedianIntercept) {
    // x = -2 ... 2, y = x / 2 + 3: all sums are exact and sigma is 0.
    Line line;
    EXPECT_EQ(fit({{-2.0, -1.0, 0.0, 1.0, 2.0}, {2.0, 2.5, 3.0, 3.5, 4.0}}, line), 1);
    EXPECT_EQ(line.slope, 0.5);
    EXPECT_EQ(line.intercept, 3.0);
}

TEST(MatRobustLineFit, HorizontalAndVerticalCloudsAreLinesOfSlopeNull) {
    Line line;
    EXPECT_EQ(fit({{0.0, 1.0, 2.0, 7.0}, {3.0, 3.0, 3.0, 3.0}}, line), 1);
    EXPECT_EQ(line.slope, 0.0);
    EXPECT_EQ(line.intercept, 3.0);
    EXPECT_EQ(line.yOfX, 1);
    EXPECT_EQ(fit({{3.0, 3.0, 3.0, 3.0}, {0.0, 1.0, 2.0, 7.0}}, line), 1);
    EXPECT_EQ(line.slope, 0.0);
    EXPECT_EQ(line.intercept, 3.0);
    EXPECT_EQ(line.yOfX, 0);
}

TEST(MatRobustLineFit, ATieOfVariancesIsToldAsXOverY) {
    // x = y + 2, and both spread alike.
    Line line;
    EXPECT_EQ(fit({{2.0, 3.0, 4.0}, {0.0, 1.0, 2.0}}, line), 1);
    EXPECT_EQ(line.slope, 1.0);
    EXPECT_EQ(line.intercept, 2.0);
    EXPECT_EQ(line.yOfX, 0);
}

TEST(MatRobustLineFit, AFarOutlierDoesNotMoveTheLine) {
    // The outlier makes y spread more, so the cloud is turned: x over y has the outlier along its independent
    // axis. Stretched along x, the cloud is told as y over x.
    Cloud cloud;
    for (int i = 0; i < 10; ++i)
        cloud.add(1000.0 * i, 20.0 * i + 10.0);
    cloud.add(5000.0, 2500.0);
    Line line;
    ASSERT_EQ(fit(cloud, line), 1);
    EXPECT_EQ(line.yOfX, 1);
    for (std::size_t i = 0; i < 10; ++i)
        EXPECT_NEAR(line.slope * cloud.x[i] + line.intercept, cloud.y[i], 5.0);
    EXPECT_NEAR(line.slope, 0.02, 0.0015);
    expectAsReference(cloud);

    double slope = 0.0;
    double intercept = 0.0;
    unsigned int yOfX = 0;
    ASSERT_EQ(matCalcRegressionLine(cloud.x.data(), cloud.y.data(), cloud.count(), kNoValue, &slope,
                                    &intercept, &yOfX),
              1);
    EXPECT_GT(std::fabs(slope * cloud.x[0] + intercept - cloud.y[0]), 100.0)
        << "least squares follow the outlier";
}

TEST(MatRobustLineFit, BracketsAndBisectsAsWrittenForASmallCloud) {
    expectAsReference(lineWithOutlier());
    int trials = 0;
    const Cloud cloud{{0.0, 1.0, 2.0, 3.0, 10.0}, {0.0, 1.0, 0.0, 1.0, 3.0}};
    referenceRobust(cloud.x, cloud.y, &trials);
    EXPECT_GT(trials, 5) << "the case has to reach the bisection";
    expectAsReference(cloud);
}

TEST(MatRobustLineFit, TenPointsOnALineOutvoteAnOutlier) {
    for (const double outlier : {60.0, -40.0, 500.0}) {
        SCOPED_TRACE(outlier);
        Cloud cloud;
        for (int i = 0; i < 10; ++i)
            cloud.add(100.0 * i, 2.0 * i + 1.0);
        cloud.add(350.0, outlier);
        Line line;
        ASSERT_EQ(fit(cloud, line), 1);
        double slope = 0.0;
        double intercept = 0.0;
        ASSERT_EQ(
            matRegressionLine(cloud.x.data(), cloud.y.data(), cloud.count(), kNoValue, &slope, &intercept),
            1);
        double worst = 0.0;
        double worstOfLeastSquares = 0.0;
        for (std::size_t i = 0; i < 10; ++i) {
            worst = std::max(worst, std::fabs(line.slope * cloud.x[i] + line.intercept - cloud.y[i]));
            worstOfLeastSquares =
                std::max(worstOfLeastSquares, std::fabs(slope * cloud.x[i] + intercept - cloud.y[i]));
        }
        EXPECT_EQ(line.yOfX, 1);
        EXPECT_LT(worst, 0.05 * worstOfLeastSquares);
    }
}

TEST(MatRobustLineFit, ABalanceOfExactlyNullLeadsToTheEndOfTheBracket) {
    // Least squares give -0.6 x + 3.5 with residuals -0.5, 0.5, 2.5, -2.5: their signs balance already. From such a
    // slope on every further one counts as the side it came from, and the search runs into the far end of the
    // bracket, three standard deviations below.
    const Cloud cloud{{0.0, 0.0, 5.0, 5.0}, {3.0, 4.0, 3.0, -2.0}};
    Line line;
    ASSERT_EQ(fit(cloud, line), 1);
    EXPECT_EQ(line.yOfX, 1);
    const double sigma = std::sqrt(13.0 / 100.0);
    EXPECT_NEAR(line.slope, -0.6 - 3.0 * sigma, 0.0101 * sigma);
    EXPECT_GT(line.slope, -0.6 - 3.0 * sigma);
    expectAsReference(cloud);
}

TEST(MatRobustLineFit, ASteepCloudIsToldAsXOverY) {
    constexpr unsigned int kSeed = 6501;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    const Cloud cloud = contaminated(random, 101, 0.1, 0.25, -2.0);
    Line flat;
    Line steep;
    Cloud turned{cloud.y, cloud.x};
    // Spread the independent axis far enough for the outliers not to decide.
    for (double& t : turned.y)
        t *= 16.0;
    Cloud flatAgain{turned.y, turned.x};
    ASSERT_EQ(fit(turned, steep), 1);
    ASSERT_EQ(fit(flatAgain, flat), 1);
    EXPECT_EQ(steep.yOfX, 0);
    EXPECT_EQ(flat.yOfX, 1);
    EXPECT_EQ(steep.slope, flat.slope);
    EXPECT_EQ(steep.intercept, flat.intercept);
    EXPECT_NEAR(steep.slope, 0.25 / 16.0, 0.001);
}

TEST(MatRobustLineFit, AgreesWithThePlainMethodToTheBit) {
    constexpr unsigned int kSeed = 6502;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 400; ++round) {
        const std::size_t count = random() % 60;
        const double share = 0.1 * static_cast<double>(round % 5);
        Cloud cloud = contaminated(random, count, share, round % 3 == 0 ? 0.0 : 0.7, 2.0);
        if (round % 4 == 1) std::swap(cloud.x, cloud.y);
        if (round % 7 == 1) {
            // Whole numbers: many ties, medians of 0 and residuals of 0.
            for (std::size_t i = 0; i < count; ++i) {
                cloud.x[i] = std::floor(cloud.x[i]);
                cloud.y[i] = std::floor(cloud.y[i]) - 2.0;
            }
        }
        SCOPED_TRACE(round);
        expectAsReference(cloud);
    }
}

TEST(MatRobustLineFit, AgreesWithThePlainMethodOnLargeClouds) {
    // Large enough for medians to be narrowed down by samples, with odd and even counts and both axes.
    constexpr unsigned int kSeed = 6503;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (const std::size_t count : {4095U, 4096U, 4097U, 20000U, 300000U}) {
        SCOPED_TRACE(count);
        Cloud cloud = contaminated(random, count, 0.3, 0.7, 2.0);
        expectAsReference(cloud);
        std::swap(cloud.x, cloud.y);
        expectAsReference(cloud);
        // Few distinct offsets: the bounds of the sample coincide.
        for (std::size_t i = 0; i < count; ++i) {
            cloud.x[i] = static_cast<double>(i % 7);
            cloud.y[i] = static_cast<double>(i % 3);
        }
        expectAsReference(cloud);
        // Sorted offsets, and a period.
        for (std::size_t i = 0; i < count; ++i) {
            cloud.x[i] = static_cast<double>(i);
            cloud.y[i] = 0.25 * static_cast<double>(i) + static_cast<double>(i % 16 == 0 ? 1000 : i % 5);
        }
        expectAsReference(cloud);
    }
}

TEST(MatRobustLineFit, ASampleThatMissesTheMedianDoesNoHarm) {
    // Two tight groups of offsets with the median between them: bounds from a sample may lie in one group only.
    constexpr std::size_t kCount = 40001;
    constexpr unsigned int kSeed = 6504;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (const std::size_t inFirst : {20000U, 20001U, 19000U, 21500U}) {
        Cloud cloud;
        for (std::size_t i = 0; i < kCount; ++i) {
            const bool isFirst = (i * 7919) % kCount < inFirst;
            const double jitter = static_cast<double>(random() % 1000) * 1e-3;
            cloud.add(static_cast<double>(i) - 20000.0, isFirst ? 1.0 + jitter : 100.0 + jitter);
        }
        SCOPED_TRACE(inFirst);
        expectAsReference(cloud);
    }
}

TEST(MatRobustLineFit, BoundsThatMissTheMedianByOneRankAreNotUsed) {
    // Offsets of two values only, and a sample that sees one of them only. Two pairs far out on the x axis keep the
    // slope off the rest. The number of lower offsets passes half of all.
    for (const std::size_t count : {4097U, 4098U}) {
        for (const double sampled : {1.0, 100.0}) {
            const double other = 101.0 - sampled;
            for (std::size_t seen = count / 2 - 4; seen <= count / 2 + 4; ++seen) {
                SCOPED_TRACE(testing::Message() << count << " pairs, " << seen << " of " << sampled);
                std::vector<double> y(count, other);
                for (const std::size_t place : sampledPlaces(count))
                    y[place] = sampled;
                auto left = seen - static_cast<std::size_t>(std::count(y.begin(), y.end(), sampled));
                for (std::size_t i = 0; left > 0; ++i) {
                    if (y[i] == sampled) continue;
                    y[i] = sampled;
                    --left;
                }
                Cloud cloud{std::vector<double>(count, 0.0), y};
                cloud.x[count - 2] = 1e5;
                cloud.x[count - 1] = -1e5;
                cloud.y[count - 2] = cloud.y[count - 1] = other;
                expectAsReference(cloud);
            }
        }
    }
}

TEST(MatRobustLineFit, ZerosOfBothSignsAreTakenAsThePlainMethodTakesThem) {
    constexpr unsigned int kSeed = 6505;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (const std::size_t count : {5U, 6U, 9U, 40U, 5000U}) {
        for (int round = 0; round < 10; ++round) {
            Cloud cloud;
            for (std::size_t i = 0; i < count; ++i) {
                const std::uint64_t draw = random() % 8;
                cloud.add(static_cast<double>(i), draw < 3 ? -0.0 : draw < 6 ? 0.0 : draw < 7 ? 1.0 : -1.0);
            }
            expectAsReference(cloud);
        }
    }
}

TEST(MatRobustLineFit, ZerosOfBothSignsInLargeCloudsAreTakenAsThePlainMethodTakesThem) {
    // All but two offsets are zeros whatever the slope, so the median's sign is that of the zero selected.
    constexpr unsigned int kSeed = 6510;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    int negative = 0;
    for (int round = 0; round < 20; ++round) {
        const std::size_t count = 5000 + random() % 2;
        Cloud cloud;
        for (std::size_t i = 0; i < count; ++i)
            cloud.add(0.0, random() % 2 == 0 ? -0.0 : 0.0);
        cloud.x[7] = -3.0;
        cloud.x[11] = 3.0;
        cloud.y[7] = 1.0;
        cloud.y[11] = 2.0;
        SCOPED_TRACE(round);
        expectAsReference(cloud);
        negative += std::signbit(referenceRobust(cloud.x, cloud.y).intercept) ? 1 : 0;
    }
    EXPECT_GT(negative, 0) << "some medians are -0.0";
}

TEST(MatRobustLineFit, SurvivesInfinitiesNotANumbersAndOverflow) {
    constexpr unsigned int kSeed = 6506;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    constexpr double kOdd[] = {kInfinity, -kInfinity, kNotANumber, 1e160, -1e160, 1e300, -1e300, 0.0, 5e-324};
    for (int round = 0; round < 300; ++round) {
        Cloud cloud;
        const std::size_t count = 2 + random() % 20;
        for (std::size_t i = 0; i < count; ++i) {
            const double x = random() % 6 == 0 ? kOdd[random() % 9] : static_cast<double>(random() % 10);
            cloud.add(x, random() % 6 == 0 ? kOdd[random() % 9] : static_cast<double>(random() % 10));
        }
        SCOPED_TRACE(round);
        expectAsReference(cloud);
    }
}

TEST(MatRobustLineFit, ReachesTheLeastAbsoluteDeviations) {
    constexpr unsigned int kSeed = 6507;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 60; ++round) {
        const double share = 0.1 * static_cast<double>(round % 5);
        Cloud cloud = contaminated(random, 61, share, 0.3, -4.0);
        Line line;
        ASSERT_EQ(fit(cloud, line), 1);
        const bool yOfX = line.yOfX != 0;
        const double least = leastAbsoluteDeviations(cloud, yOfX);
        const double reached = absoluteDeviations(cloud, line.slope, line.intercept, yOfX);
        EXPECT_GE(reached, least * (1.0 - 1e-9));
        // The slope stops at a hundredth of its standard deviation from the balance.
        EXPECT_LE(reached, least * 1.05) << "outliers " << share;
    }
}

TEST(MatRobustLineFit, TheSlopeLiesWithinItsToleranceOfTheChangeOfSign) {
    constexpr unsigned int kSeed = 6509;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 60; ++round) {
        const std::size_t count = 30 + random() % 40;
        Cloud cloud = contaminated(random, count, 0.1 * static_cast<double>(round % 5), 0.0, 2000.0);
        for (double& x : cloud.x)
            x *= 10.0;
        Line line;
        ASSERT_EQ(fit(cloud, line), 1);
        ASSERT_EQ(line.yOfX, 1);
        double slope = 0.0;
        double intercept = 0.0;
        ASSERT_EQ(
            matRegressionLine(cloud.x.data(), cloud.y.data(), cloud.count(), kNoValue, &slope, &intercept),
            1);
        double sx = 0.0, sxx = 0.0, chi = 0.0;
        for (std::size_t i = 0; i < count; ++i) {
            sx += cloud.x[i];
            sxx += cloud.x[i] * cloud.x[i];
            chi += std::pow(cloud.y[i] - (slope * cloud.x[i] + intercept), 2.0);
        }
        const double sigma = std::sqrt(chi / (static_cast<double>(count) * sxx - sx * sx));
        const std::vector<double> x = fromIndexOne(cloud.x);
        const std::vector<double> y = fromIndexOne(cloud.y);
        // A little more than the tolerance, for the rounding of the last step.
        const double reach = 0.0101 * sigma;
        EXPECT_GE(velquad::test::referenceBalance(x, y, line.slope - reach).f, 0.0);
        EXPECT_LE(velquad::test::referenceBalance(x, y, line.slope + reach).f, 0.0);
    }
}

TEST(MatRobustLineFit, StandsUpToOutliersOfFortyPercent) {
    constexpr unsigned int kSeed = 6508;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (const double share : {0.0, 0.1, 0.2, 0.3, 0.4}) {
        SCOPED_TRACE(share);
        // Outliers on one side, along a spread of x that keeps x the independent axis.
        Cloud cloud = contaminated(random, 2001, share, 0.3, -4.0);
        for (std::size_t i = 0; i < cloud.x.size(); ++i) {
            cloud.x[i] *= 10.0;
            cloud.y[i] -= 0.3 * cloud.x[i] / 10.0;
        }
        Line line;
        ASSERT_EQ(fit(cloud, line), 1);
        ASSERT_EQ(line.yOfX, 1);
        EXPECT_NEAR(line.slope, 0.0, 0.002);
        EXPECT_NEAR(line.intercept, -4.0, 0.15);
        if (share == 0.0) continue;
        double slope = 0.0;
        double intercept = 0.0;
        ASSERT_EQ(
            matRegressionLine(cloud.x.data(), cloud.y.data(), cloud.count(), kNoValue, &slope, &intercept),
            1);
        EXPECT_GT(intercept, -4.0 + 100.0 * share) << "least squares are pulled away";
    }
}

TEST(MatRobustLineFit, ResidualsRelativeToTheOrdinateBelowTheToleranceDoNotCount) {
    // On y = 1000 x + 1e6 with deviations of relative 1e-8 nothing counts and the first bracket ends the search.
    Cloud cloud;
    for (int i = 0; i < 20; ++i)
        cloud.add(i * 1e4, 1e6 * (1.0 + (i % 3 - 1) * 1e-8));
    expectAsReference(cloud);
    Line line;
    ASSERT_EQ(fit(cloud, line), 1);
    EXPECT_NEAR(line.intercept, 1e6, 0.02);
}

TEST(MatRobustLineFit, AResidualOfTheToleranceDoesNotCountAndNoneIsDividedByNull) {
    // The least-squares slope is exactly 0 and the median the ordinate of the last pair. The residual of the first one
    // is minus that, 1e-7 or 1e-8, at an ordinate of 0: were it counted, the balance would be 1 - 4 and not 1, and
    // the search would go down.
    for (const double median : {1e-7, 1e-8}) {
        SCOPED_TRACE(median);
        const Cloud cloud{{4.0, 1.0, -5.0}, {0.0, 5.0 * median, median}};
        Line line;
        ASSERT_EQ(fit(cloud, line), 1);
        EXPECT_EQ(line.yOfX, 1);
        EXPECT_GT(line.slope, 0.0);
        expectAsReference(cloud);
    }
    // Just above, it counts.
    const double above = std::nextafter(1e-7, 1.0);
    const Cloud cloud{{4.0, 1.0, -5.0}, {0.0, 5.0 * above, above}};
    Line line;
    ASSERT_EQ(fit(cloud, line), 1);
    EXPECT_LT(line.slope, 0.0);
    expectAsReference(cloud);
}

TEST(MatRobustLineFit, AStepThatIsLostToRoundingEndsTheFit) {
    // On y = x / 2 - 1 but for 1e-18 in place of 0: sigma is far below the last digit of the slope, while the signs
    // do not balance, as that residual is as large as its ordinate.
    Line line;
    ASSERT_EQ(fit({{0.0, 1.0, 2.0, 3.0, 4.0}, {-1.0, -0.5, 1e-18, 0.5, 1.0}}, line), 1);
    EXPECT_EQ(line.slope, 0.5);
    EXPECT_EQ(line.intercept, -1.0);
    EXPECT_EQ(line.yOfX, 1);
}

// --- Failures ------------------------------------------------------------------------------------------------

TEST(MatRobustLineFit, FailsWithoutUsablePairsAndWritesNothing) {
    Line line;
    EXPECT_EQ(fit({}, line), 0);
    EXPECT_EQ(fit({{1.0}, {2.0}}, line), 0);
    EXPECT_EQ(fit({{1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}}, line), 0) << "all pairs are equal";
    EXPECT_EQ(fit({{1.0, kNoValue}, {2.0, 3.0}}, line), 0) << "one usable pair";
    EXPECT_EQ(matRobustLineFit(nullptr, &line.slope, 1, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(matRobustLineFit(&line.slope, nullptr, 1, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(line.slope, -77.0);
    EXPECT_EQ(line.intercept, -78.0);
    EXPECT_EQ(line.yOfX, -79);
}

TEST(MatRobustLineFit, OutputsAreOptional) {
    const double x[] = {0.0, 4.0};
    const double y[] = {1.0, 3.0};
    Line line;
    EXPECT_EQ(matRobustLineFit(x, y, 2, &line.slope, nullptr, nullptr), 1);
    EXPECT_EQ(line.slope, 0.5);
    EXPECT_EQ(matRobustLineFit(x, y, 2, nullptr, &line.intercept, nullptr), 1);
    EXPECT_EQ(line.intercept, 1.0);
    EXPECT_EQ(matRobustLineFit(x, y, 2, nullptr, nullptr, &line.yOfX), 1);
    EXPECT_EQ(line.yOfX, 1);
    EXPECT_EQ(matRobustLineFit(x, y, 2, nullptr, nullptr, nullptr), 1);
}

TEST(CMatRobustLineFit, AFailedLeastSquaresFitKeepsTheStoredLine) {
    CMatRobustLineFit line;
    Line out;
    double point[2] = {};
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0);
    EXPECT_EQ(out.slope, -77.0);
    EXPECT_EQ(line.CalcPointAt(0.0, point), 0);
    line.AddValue(3.0, 3.0);
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0);
    EXPECT_EQ(out.slope, -77.0);
}

TEST(CMatRobustLineFit, AFailedLeastSquaresFitKeepsALineThatWasThereBefore) {
    AnyRobustLine line(0.5, 1.0, 1);
    for (int pairs = 0; pairs < 4; ++pairs) {
        Line out;
        EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0) << pairs;
        EXPECT_EQ(out.slope, -77.0);
        EXPECT_EQ(out.intercept, -78.0);
        EXPECT_EQ(out.yOfX, -79);
        double point[2] = {};
        EXPECT_EQ(line.CalcPointAt(2.0, point), 1);
        EXPECT_EQ(point[0], 2.0);
        EXPECT_EQ(point[1], 2.0);
        EXPECT_EQ(line.AddValue(8.0, 2.0), 1);
    }
}

TEST(CMatRobustLineFit, ADegenerateStartLineReplacesALineThatWasThereBefore) {
    AnyRobustLine line(0.5, 1.0, 0);
    line.AddValue(0.0, 0.0);
    line.AddValue(1e-8, 0.5e-8);
    EXPECT_EQ(line.CalcRegressionLine(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(fieldAt<double>(line, 64), kNoValue);
    EXPECT_EQ(fieldAt<double>(line, 72), kNoValue);
    EXPECT_EQ(fieldAt<std::int32_t>(line, 80), 1) << "the flag is that of the least-squares line";
}

TEST(CMatRobustLineFit, ADegenerateStartLineUnsetsTheLineAndTellsTheFlag) {
    // Independent coordinates 1e-8 apart: n * sum x^2 - (sum x)^2 is 1e-16, far above 1e-100 and below 2.2e-16.
    for (const bool isSteep : {false, true}) {
        SCOPED_TRACE(isSteep);
        const double t[] = {0.0, 1e-8};
        const double u[] = {0.0, 0.5e-8};
        CMatRobustLineFit line;
        for (int i = 0; i < 2; ++i)
            line.AddValue(isSteep ? u[i] : t[i], isSteep ? t[i] : u[i]);
        const std::vector<double> pairs = pairsOf(line);
        CMatRegressionLine leastSquares = line;
        ASSERT_EQ(leastSquares.CalcRegressionLine(nullptr, nullptr, nullptr), 1);
        Line out;
        EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0);
        EXPECT_EQ(out.slope, kNoValue);
        EXPECT_EQ(out.intercept, kNoValue);
        EXPECT_EQ(out.yOfX, isSteep ? 0 : 1);
        EXPECT_EQ(pairsOf(line), pairs) << "the pairs are as they were given";
        double point[2] = {};
        EXPECT_EQ(line.CalcPointAt(0.0, point), 0) << "the line is unset";
        EXPECT_EQ(line.CalcRegressionLine(nullptr, nullptr, nullptr), 0);
    }
}

TEST(CMatRobustLineFit, TheStartLineIsTestedWithTheDoubleEpsilon) {
    // Pairs at 0 and t: the determinant is t^2. The tolerance is 2^-52, so t = 2^-26 meets it exactly.
    const double tolerance = std::ldexp(1.0, -52);
    ASSERT_EQ(tolerance, 2.220446049250313e-16);
    const double at = std::ldexp(1.0, -26);
    Line line;
    EXPECT_EQ(fit({{0.0, at}, {0.0, 0.0}}, line), 1);
    EXPECT_EQ(fit({{0.0, std::nextafter(at, 1.0)}, {0.0, 0.0}}, line), 1);
    EXPECT_EQ(fit({{0.0, std::nextafter(at, 0.0)}, {0.0, 0.0}}, line), 0);
    EXPECT_EQ(line.slope, kNoValue);
    EXPECT_EQ(line.intercept, kNoValue);
    EXPECT_EQ(line.yOfX, 1);
}

TEST(CMatRobustLineFit, ANegativeDeterminantGivesNoStartLine) {
    // Coincident pairs with coordinates that round: the determinants are -1.4e-14 over x and -3.6e-15 over y. Least
    // squares take them for a spread, least deviations do not.
    struct Case {
        unsigned int count;
        double x, y;
        int yOfX;
    };
    for (const Case& odd : {Case{6, 1.2, 3.3, 1}, Case{3, 6.8, 1.7, 0}}) {
        SCOPED_TRACE(odd.yOfX);
        const Cloud cloud{std::vector<double>(odd.count, odd.x), std::vector<double>(odd.count, odd.y)};
        ASSERT_EQ(matCalcRegressionLine(cloud.x.data(), cloud.y.data(), odd.count, kNoValue, nullptr, nullptr,
                                        nullptr),
                  1);
        Line line;
        EXPECT_EQ(fit(cloud, line), 0);
        EXPECT_EQ(line.slope, kNoValue);
        EXPECT_EQ(line.intercept, kNoValue);
        EXPECT_EQ(line.yOfX, odd.yOfX);
    }
}

TEST(CMatRobustLineFit, PairsAreAsGivenAfterAFitOverY) {
    Cloud cloud = lineWithOutlier();
    CMatRobustLineFit line = collected(cloud);
    const std::vector<double> pairs = pairsOf(line);
    Line out;
    ASSERT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 1);
    ASSERT_EQ(out.yOfX, 0);
    EXPECT_EQ(pairsOf(line), pairs);
    // More pairs and another fit give what a fresh object gives.
    line.AddValue(10.0, 21.0);
    cloud.add(10.0, 21.0);
    Line expected;
    ASSERT_EQ(fit(cloud, expected), 1);
    ASSERT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 1);
    EXPECT_EQ(out.slope, expected.slope);
    EXPECT_EQ(out.intercept, expected.intercept);
}

TEST(CMatRobustLineFit, AFitWithoutMemoryUnsetsTheLineAndKeepsThePairs) {
    for (const bool isSteep : {false, true}) {
        SCOPED_TRACE(isSteep);
        Cloud cloud = lineWithOutlier();
        if (!isSteep) std::swap(cloud.x, cloud.y);
        CMatRobustLineFit line = collected(cloud);
        const std::vector<double> pairs = pairsOf(line);
        ASSERT_EQ(line.CalcRegressionLine(nullptr, nullptr, nullptr), 1);
        const std::size_t allocations = forEachFailingAllocation([&] {
            Line out;
            const bool hasFailed = line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX) == 0;
            EXPECT_EQ(out.slope == kNoValue, hasFailed);
            EXPECT_EQ(out.intercept == kNoValue, hasFailed);
            EXPECT_EQ(out.yOfX, isSteep ? 0 : 1);
            double point[2] = {};
            EXPECT_EQ(line.CalcPointAt(0.0, point), hasFailed ? 0 : 1);
            return hasFailed;
        });
        EXPECT_EQ(allocations, 1U) << "work memory is taken once a fit";
        EXPECT_EQ(pairsOf(line), pairs);
    }
}

TEST(MatRobustLineFit, FailsWithoutMemory) {
    const Cloud cloud = lineWithOutlier();
    const std::size_t allocations = forEachFailingAllocation([&cloud] {
        Line line;
        const bool hasFailed = fit(cloud, line) == 0;
        EXPECT_EQ(hasFailed, line.slope == kNoValue || line.slope == -77.0);
        return hasFailed;
    });
    EXPECT_LE(allocations, 3U) << "the pairs, the room for them and the work memory";
}

TEST(CMatRobustLineFit, AnswersQuestionsAboutTheRobustLine) {
    CMatRobustLineFit line = collected({{-2.0, -1.0, 0.0, 1.0, 2.0}, {2.0, 2.5, 3.0, 3.5, 4.0}});
    ASSERT_EQ(line.CalcRegressionLine(nullptr, nullptr, nullptr), 1);
    double point[2] = {};
    EXPECT_EQ(line.CalcPointAt(4.0, point), 1);
    EXPECT_EQ(point[0], 4.0);
    EXPECT_EQ(point[1], 5.0);
    double probe[2] = {-1.0, 5.0};
    double foot[2] = {};
    // The foot on y = x / 2 + 3 from (-1, 5) is (0, 3).
    EXPECT_NEAR(line.CalcDistanceOfPoint(probe, foot), std::sqrt(5.0), 1e-12);
    EXPECT_NEAR(foot[0], 0.0, 1e-12);
    EXPECT_NEAR(foot[1], 3.0, 1e-12);
    EXPECT_NEAR(line.CalcAngle(0, 1), 26.56505117707799, 1e-12);
}
