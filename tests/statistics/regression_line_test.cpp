#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/preset_line.h"
#include "tests/support/regression_reference.h"
#include "velquad/geometry.h"
#include "velquad/statistics.h"

using velquad::kNoValue;
using velquad::test::ReferenceLine;
using velquad::test::referenceRegression;

namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/// The outputs of a fit, with values that no fit gives.
struct Line {
    double slope = -77.0;
    double intercept = -78.0;
    int yOfX = -79;
};

struct UnsignedLine {
    double slope = -77.0;
    double intercept = -78.0;
    unsigned int yOfX = 79;
};

struct Cloud {
    std::vector<double> x;
    std::vector<double> y;
    unsigned int count() const { return static_cast<unsigned int>(x.size()); }
};

Cloud randomCloud(std::mt19937_64& random, std::size_t count, double spreadX, double spreadY) {
    std::normal_distribution<double> normal;
    Cloud cloud;
    for (std::size_t i = 0; i < count; ++i) {
        cloud.x.push_back(spreadX * normal(random) + 3.0);
        cloud.y.push_back(spreadY * normal(random) + 0.5 * cloud.x.back());
    }
    return cloud;
}

CMatRegressionLine fitted(const Cloud& cloud) {
    CMatRegressionLine line;
    for (std::size_t i = 0; i < cloud.x.size(); ++i)
        line.AddValue(cloud.x[i], cloud.y[i]);
    EXPECT_EQ(line.CalcRegressionLine(nullptr, nullptr, nullptr), 1);
    return line;
}

/// A line over x with an exact slope and intercept: the points are (-4, ...) and (4, ...).
CMatRegressionLine lineOverX(double slope, double intercept) {
    return fitted({{-4.0, 4.0}, {intercept - 4.0 * slope, intercept + 4.0 * slope}});
}

CMatRegressionLine lineOverY(double slope, double intercept) {
    return fitted({{intercept - 4.0 * slope, intercept + 4.0 * slope}, {-4.0, 4.0}});
}

using AnyLine = velquad::test::PresetLine<CMatRegressionLine>;

/// A field of the object, read at its place.
template <class Value>
Value fieldAt(const CMatRegressionLine& line, std::size_t offset) {
    Value value;
    std::memcpy(&value, reinterpret_cast<const char*>(&line) + offset, sizeof value);
    return value;
}

}  // namespace

// --- matRegressionLine ---------------------------------------------------------------------------------------

TEST(MatRegressionLine, FitsALineWithKnownSums) {
    // n 4, sx 6, sy 13, sxx 14, sxy 27: d 20, slope 30 / 20, intercept (182 - 162) / 20.
    const double x[] = {0.0, 1.0, 2.0, 3.0};
    const double y[] = {1.0, 2.0, 5.0, 5.0};
    Line line;
    EXPECT_EQ(matRegressionLine(x, y, 4, kNoValue, &line.slope, &line.intercept), 1);
    EXPECT_EQ(line.slope, 1.5);
    EXPECT_EQ(line.intercept, 1.0);
}

TEST(MatRegressionLine, FailsOnAVerticalLine) {
    const double x[] = {0.0, 0.0, 0.0};
    const double y[] = {0.0, 1.0, 2.0};
    Line line;
    EXPECT_EQ(matRegressionLine(x, y, 3, kNoValue, &line.slope, &line.intercept), 0);
    EXPECT_EQ(line.slope, -77.0);
    EXPECT_EQ(line.intercept, -78.0);
}

TEST(MatRegressionLine, TakesASteepLineStillOverX) {
    const double x[] = {0.0, 1.0};
    const double y[] = {0.0, 100.0};
    Line line;
    EXPECT_EQ(matRegressionLine(x, y, 2, kNoValue, &line.slope, &line.intercept), 1);
    EXPECT_EQ(line.slope, 100.0);
    EXPECT_EQ(line.intercept, 0.0);
}

TEST(MatRegressionLine, SpreadIsComparedWithItsTolerance) {
    // Two points at 0 and x: n * sxx - sx * sx is x^2. The squares of both numbers lie one double apart.
    const double y[] = {0.0, 1.0};
    const double below[] = {0.0, 0.99999999999999989e-50};
    const double above[] = {0.0, 1.0000000000000002e-50};
    ASSERT_LT(2.0 * (below[1] * below[1]) - below[1] * below[1], 1e-100);
    ASSERT_GE(2.0 * (above[1] * above[1]) - above[1] * above[1], 1e-100);
    EXPECT_EQ(matRegressionLine(below, y, 2, kNoValue, nullptr, nullptr), 0);
    EXPECT_EQ(matRegressionLine(above, y, 2, kNoValue, nullptr, nullptr), 1);
}

TEST(MatRegressionLine, ASpreadEqualToTheToleranceIsASpread) {
    // With x^2 of just 1e-100; found by search, and checked here.
    double root = 1e-50;
    if (root * root < 1e-100) root = std::nextafter(root, 1.0);
    const double x[] = {0.0, root};
    const double y[] = {0.0, 1.0};
    ASSERT_FALSE(1e-100 > 2.0 * (root * root) - root * root);
    EXPECT_EQ(matRegressionLine(x, y, 2, kNoValue, nullptr, nullptr), 1);
}

TEST(MatRegressionLine, NeedsTwoUsablePairs) {
    const double x[] = {1.0, 2.0, 9.0};
    const double y[] = {1.0, 9.0, 3.0};
    Line line;
    EXPECT_EQ(matRegressionLine(x, y, 0, kNoValue, &line.slope, &line.intercept), 0);
    EXPECT_EQ(matRegressionLine(x, y, 1, kNoValue, &line.slope, &line.intercept), 0);
    EXPECT_EQ(matRegressionLine(x, y, 3, 9.0, &line.slope, &line.intercept), 0) << "two pairs hold the mark";
    EXPECT_EQ(line.slope, -77.0);
    EXPECT_EQ(line.intercept, -78.0);
}

TEST(MatRegressionLine, SkipsPairsWithTheMarkInEitherCoordinate) {
    const double x[] = {0.0, 9.0, 2.0, 4.0};
    const double y[] = {1.0, 50.0, 9.0, 3.0};
    Line line;
    EXPECT_EQ(matRegressionLine(x, y, 4, 9.0, &line.slope, &line.intercept), 1);
    EXPECT_EQ(line.slope, 0.5);
    EXPECT_EQ(line.intercept, 1.0);
}

TEST(MatRegressionLine, AMarkThatIsNotANumberMarksNothing) {
    const double x[] = {0.0, 4.0, kNotANumber};
    const double y[] = {1.0, 3.0, 3.0};
    Line line;
    EXPECT_EQ(matRegressionLine(x, y, 3, kNotANumber, &line.slope, &line.intercept), 1);
    EXPECT_TRUE(std::isnan(line.slope));
    EXPECT_EQ(matRegressionLine(x, y, 2, kNotANumber, &line.slope, &line.intercept), 1);
    EXPECT_EQ(line.slope, 0.5);
}

TEST(MatRegressionLine, OutputsAreOptional) {
    const double x[] = {0.0, 4.0};
    const double y[] = {1.0, 3.0};
    Line line;
    EXPECT_EQ(matRegressionLine(x, y, 2, kNoValue, nullptr, &line.intercept), 1);
    EXPECT_EQ(line.intercept, 1.0);
    EXPECT_EQ(matRegressionLine(x, y, 2, kNoValue, &line.slope, nullptr), 1);
    EXPECT_EQ(line.slope, 0.5);
    EXPECT_EQ(matRegressionLine(x, y, 2, kNoValue, nullptr, nullptr), 1);
    EXPECT_EQ(matRegressionLine(nullptr, y, 2, kNoValue, nullptr, nullptr), 0);
    EXPECT_EQ(matRegressionLine(x, nullptr, 2, kNoValue, nullptr, nullptr), 0);
}

// --- matCalcRegressionLine -----------------------------------------------------------------------------------

TEST(MatCalcRegressionLine, TellsAVerticalLineAsXOverY) {
    const double x[] = {0.0, 0.0, 0.0};
    const double y[] = {0.0, 1.0, 2.0};
    UnsignedLine line;
    EXPECT_EQ(matCalcRegressionLine(x, y, 3, kNoValue, &line.slope, &line.intercept, &line.yOfX), 1);
    EXPECT_EQ(line.slope, 0.0);
    EXPECT_EQ(line.intercept, 0.0);
    EXPECT_EQ(line.yOfX, 0U);
}

TEST(MatCalcRegressionLine, ATieOfVariancesIsToldAsXOverY) {
    const double x[] = {0.0, 1.0};
    const double y[] = {3.0, 4.0};
    UnsignedLine line;
    EXPECT_EQ(matCalcRegressionLine(x, x, 2, kNoValue, &line.slope, &line.intercept, &line.yOfX), 1);
    EXPECT_EQ(line.slope, 1.0);
    EXPECT_EQ(line.intercept, 0.0);
    EXPECT_EQ(line.yOfX, 0U);
    // Here x = 1 * y - 3.
    EXPECT_EQ(matCalcRegressionLine(x, y, 2, kNoValue, &line.slope, &line.intercept, &line.yOfX), 1);
    EXPECT_EQ(line.slope, 1.0);
    EXPECT_EQ(line.intercept, -3.0);
    EXPECT_EQ(line.yOfX, 0U);
}

TEST(MatCalcRegressionLine, AWiderCloudIsToldAsYOverX) {
    // n 4, sx 6, sy 5, sxx 14, syy 9, sxy 11: d 20, slope 14 / 20, intercept (70 - 66) / 20.
    const double x[] = {0.0, 1.0, 2.0, 3.0};
    const double y[] = {0.0, 1.0, 2.0, 2.0};
    UnsignedLine line;
    EXPECT_EQ(matCalcRegressionLine(x, y, 4, kNoValue, &line.slope, &line.intercept, &line.yOfX), 1);
    EXPECT_EQ(line.slope, 0.7);
    EXPECT_EQ(line.intercept, 0.2);
    EXPECT_EQ(line.yOfX, 1U);
    EXPECT_EQ(matCalcRegressionLine(y, x, 4, kNoValue, &line.slope, &line.intercept, &line.yOfX), 1);
    EXPECT_EQ(line.slope, 0.7);
    EXPECT_EQ(line.intercept, 0.2);
    EXPECT_EQ(line.yOfX, 0U);
}

TEST(MatCalcRegressionLine, RoundingOfTheVariancesDecidesWhereTheyAreEqual) {
    // The second coordinates are the first ones moved and in another order. The mean is squared after its division:
    // other ways to write the variance decide the other way.
    const auto flagOf = [](const std::vector<double>& x, const std::vector<double>& y) {
        UnsignedLine line;
        EXPECT_EQ(matCalcRegressionLine(x.data(), y.data(), static_cast<unsigned int>(x.size()), kNoValue,
                                        nullptr, nullptr, &line.yOfX),
                  1);
        return line.yOfX;
    };
    EXPECT_EQ(flagOf({0.6, 1.4, 2.5}, {3.6, 1.7, 2.5}), 1U);
    EXPECT_EQ(flagOf({1.7, 3.5, 0.4}, {5.9, 2.8, 4.1}), 1U);
    EXPECT_EQ(flagOf({1.1, 2.3, 3.5, 2.3, 0.5, 2.8, 3.2}, {1.5, 3.9, 3.2, 2.7, 0.9, 2.7, 3.6}), 0U);
}

TEST(MatCalcRegressionLine, FailsOnCoincidentPointsAndTooFew) {
    const double x[] = {2.0, 2.0, 2.0};
    const double y[] = {5.0, 5.0, 5.0};
    UnsignedLine line;
    EXPECT_EQ(matCalcRegressionLine(x, y, 3, kNoValue, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(matCalcRegressionLine(x, y, 1, kNoValue, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(matCalcRegressionLine(x, y, 0, kNoValue, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(matCalcRegressionLine(x, y, 3, 5.0, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(matCalcRegressionLine(nullptr, y, 3, 5.0, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(matCalcRegressionLine(x, nullptr, 3, 5.0, &line.slope, &line.intercept, &line.yOfX), 0);
    EXPECT_EQ(line.slope, -77.0);
    EXPECT_EQ(line.intercept, -78.0);
    EXPECT_EQ(line.yOfX, 79U);
}

TEST(MatCalcRegressionLine, SpreadIsComparedWithItsToleranceOnBothAxes) {
    const double zero[] = {0.0, 0.0};
    const double below[] = {0.0, 0.9999999999e-50};
    const double above[] = {0.0, 1.0000000001e-50};
    EXPECT_EQ(matCalcRegressionLine(below, zero, 2, kNoValue, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(matCalcRegressionLine(above, zero, 2, kNoValue, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(matCalcRegressionLine(zero, below, 2, kNoValue, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(matCalcRegressionLine(zero, above, 2, kNoValue, nullptr, nullptr, nullptr), 1);
}

TEST(MatCalcRegressionLine, OutputsAreOptional) {
    const double x[] = {0.0, 4.0};
    const double y[] = {1.0, 3.0};
    UnsignedLine line;
    EXPECT_EQ(matCalcRegressionLine(x, y, 2, kNoValue, &line.slope, nullptr, nullptr), 1);
    EXPECT_EQ(line.slope, 0.5);
    EXPECT_EQ(matCalcRegressionLine(x, y, 2, kNoValue, nullptr, &line.intercept, nullptr), 1);
    EXPECT_EQ(line.intercept, 1.0);
    EXPECT_EQ(matCalcRegressionLine(x, y, 2, kNoValue, nullptr, nullptr, &line.yOfX), 1);
    EXPECT_EQ(line.yOfX, 1U);
}

TEST(MatCalcRegressionLine, AgreesWithThePlainFormulasToTheBit) {
    constexpr unsigned int kSeed = 6410;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    int overX = 0;
    for (int round = 0; round < 400; ++round) {
        const Cloud cloud =
            randomCloud(random, random() % 30, round % 2 == 0 ? 1.0 : 20.0, round % 4 < 2 ? 0.1 : 9.0);
        const ReferenceLine expected = referenceRegression(cloud.x, cloud.y);
        UnsignedLine line;
        ASSERT_EQ(matCalcRegressionLine(cloud.x.data(), cloud.y.data(), cloud.count(), kNoValue, &line.slope,
                                        &line.intercept, &line.yOfX),
                  expected.exists ? 1 : 0);
        if (!expected.exists) continue;
        EXPECT_EQ(line.slope, expected.slope);
        EXPECT_EQ(line.intercept, expected.intercept);
        EXPECT_EQ(line.yOfX, static_cast<unsigned int>(expected.yOfX));
        overX += expected.yOfX;
    }
    EXPECT_GT(overX, 50);
    EXPECT_LT(overX, 350);
}

TEST(MatCalcRegressionLine, ResidualsAreOrthogonalToTheIndependentCoordinate) {
    constexpr unsigned int kSeed = 6411;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 100; ++round) {
        const Cloud cloud = randomCloud(random, 50, round % 2 == 0 ? 10.0 : 0.2, 2.0);
        UnsignedLine line;
        ASSERT_EQ(matCalcRegressionLine(cloud.x.data(), cloud.y.data(), 50, kNoValue, &line.slope,
                                        &line.intercept, &line.yOfX),
                  1);
        EXPECT_EQ(line.yOfX, round % 2 == 0 ? 1U : 0U);
        const std::vector<double>& t = line.yOfX != 0 ? cloud.x : cloud.y;
        const std::vector<double>& u = line.yOfX != 0 ? cloud.y : cloud.x;
        double sum = 0.0;
        double moment = 0.0;
        for (std::size_t i = 0; i < t.size(); ++i) {
            const double residual = u[i] - (line.slope * t[i] + line.intercept);
            sum += residual;
            moment += residual * t[i];
        }
        EXPECT_NEAR(sum, 0.0, 1e-9);
        EXPECT_NEAR(moment, 0.0, 1e-8);
    }
}

// --- CMatRegressionLine --------------------------------------------------------------------------------------

TEST(CMatRegressionLine, HasTheLayoutOfItsFields) {
    static_assert(sizeof(CMatRegressionLine) == 88);
    static_assert(std::is_polymorphic_v<CMatRegressionLine>);
    static_assert(!std::has_virtual_destructor_v<CMatRegressionLine>);
    CMatRegressionLine line(-5.0);
    line.AddValue(1.0, 2.0);
    line.AddValue(4.0, 3.0);
    EXPECT_EQ(fieldAt<std::uint32_t>(line, 8), 2U);
    EXPECT_EQ(fieldAt<double>(line, 16), 5.0);
    EXPECT_EQ(fieldAt<double>(line, 24), 5.0);
    EXPECT_EQ(fieldAt<double>(line, 32), 17.0);
    EXPECT_EQ(fieldAt<double>(line, 40), 13.0);
    EXPECT_EQ(fieldAt<double>(line, 48), 14.0);
    EXPECT_EQ(fieldAt<double>(line, 56), -5.0);
    EXPECT_EQ(fieldAt<double>(line, 64), kNoValue);
    EXPECT_EQ(fieldAt<double>(line, 72), kNoValue);
    EXPECT_EQ(fieldAt<std::int32_t>(line, 80), 0);
    line.CalcRegressionLine(nullptr, nullptr, nullptr);
    // d 9, slope (28 - 25) / 9, intercept (85 - 70) / 9.
    EXPECT_EQ(fieldAt<double>(line, 64), 3.0 / 9.0);
    EXPECT_EQ(fieldAt<double>(line, 72), 15.0 / 9.0);
    EXPECT_EQ(fieldAt<std::int32_t>(line, 80), 1);
}

TEST(CMatRegressionLine, AddValueComesBeforeCalcRegressionLineInTheTable) {
    // A pointer to a virtual member holds its offset in the table, plus one.
    const auto slotOf = [](auto member) {
        std::uintptr_t slot = 0;
        std::memcpy(&slot, &member, sizeof slot);
        return slot;
    };
    EXPECT_EQ(slotOf(&CMatRegressionLine::AddValue), 1U);
    EXPECT_EQ(slotOf(&CMatRegressionLine::CalcRegressionLine), 1U + sizeof(void*));
}

TEST(CMatRegressionLine, RefusesPairsWithTheMark) {
    CMatRegressionLine line(9.0);
    EXPECT_EQ(line.AddValue(9.0, 1.0), 0);
    EXPECT_EQ(line.AddValue(1.0, 9.0), 0);
    EXPECT_EQ(line.AddValue(0.0, 1.0), 1);
    Line out;
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0) << "one usable pair is left";
    EXPECT_EQ(line.AddValue(4.0, 3.0), 1);
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 1);
    EXPECT_EQ(out.slope, 0.5);
    EXPECT_EQ(out.intercept, 1.0);
    EXPECT_EQ(out.yOfX, 1);
}

TEST(CMatRegressionLine, TheDefaultMarkIsTheGreatestDouble) {
    CMatRegressionLine line;
    EXPECT_EQ(line.AddValue(kNoValue, 1.0), 0);
    EXPECT_EQ(line.AddValue(1.0, kNoValue), 0);
    EXPECT_EQ(line.AddValue(-kNoValue, 0.0), 1);
}

TEST(CMatRegressionLine, FailureLeavesOutputsAndTheStoredLineAlone) {
    CMatRegressionLine line;
    Line out;
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0);
    line.AddValue(2.0, 2.0);
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0);
    line.AddValue(2.0, 2.0);
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0);
    EXPECT_EQ(out.slope, -77.0);
    EXPECT_EQ(out.intercept, -78.0);
    EXPECT_EQ(out.yOfX, -79);
    double point[2] = {7.0, 8.0};
    EXPECT_EQ(line.CalcPointAt(1.0, point), 0);
    EXPECT_EQ(point[0], 7.0);
    EXPECT_EQ(point[1], 8.0);
}

TEST(CMatRegressionLine, AFailureKeepsALineThatWasThereBefore) {
    AnyLine line(0.5, 1.0, 1);
    for (int pairs = 0; pairs < 4; ++pairs) {
        // No pairs, one, and coincident ones; all lie off the line.
        Line out;
        EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 0) << pairs;
        EXPECT_EQ(out.slope, -77.0);
        EXPECT_EQ(out.intercept, -78.0);
        EXPECT_EQ(out.yOfX, -79);
        EXPECT_EQ(fieldAt<double>(line, 64), 0.5);
        EXPECT_EQ(fieldAt<double>(line, 72), 1.0);
        EXPECT_EQ(fieldAt<std::int32_t>(line, 80), 1);
        EXPECT_EQ(line.AddValue(8.0, 2.0), 1);
    }
}

TEST(CMatRegressionLine, ALineIsKeptUntilTheNextOneIsComputed) {
    CMatRegressionLine line = lineOverX(0.5, 1.0);
    line.AddValue(100.0, -300.0);
    double point[2] = {};
    EXPECT_EQ(line.CalcPointAt(2.0, point), 1);
    EXPECT_EQ(point[1], 2.0) << "adding a value does not change the line";
    Line out;
    EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 1);
    EXPECT_EQ(out.yOfX, 0) << "the new pair counts in the next line";
    EXPECT_EQ(line.CalcRegressionLine(nullptr, &out.intercept, nullptr), 1) << "computing again is allowed";
}

TEST(CMatRegressionLine, AgreesWithTheFunctionToTheBit) {
    constexpr unsigned int kSeed = 6412;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    for (int round = 0; round < 100; ++round) {
        const Cloud cloud = randomCloud(random, 2 + random() % 20, 2.0, round % 2 == 0 ? 0.5 : 8.0);
        UnsignedLine expected;
        ASSERT_EQ(matCalcRegressionLine(cloud.x.data(), cloud.y.data(), cloud.count(), kNoValue,
                                        &expected.slope, &expected.intercept, &expected.yOfX),
                  1);
        CMatRegressionLine line = fitted(cloud);
        Line out;
        EXPECT_EQ(line.CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 1);
        EXPECT_EQ(out.slope, expected.slope);
        EXPECT_EQ(out.intercept, expected.intercept);
        EXPECT_EQ(static_cast<unsigned int>(out.yOfX), expected.yOfX);
    }
}

TEST(CMatRegressionLine, CopiesAreIndependent) {
    CMatRegressionLine line = lineOverX(0.5, 1.0);
    CMatRegressionLine copy(line);
    CMatRegressionLine moved(std::move(copy));
    CMatRegressionLine assigned;
    assigned = moved;
    line.AddValue(50.0, -10.0);
    line.CalcRegressionLine(nullptr, nullptr, nullptr);
    for (CMatRegressionLine* other : {&moved, &assigned}) {
        double point[2] = {};
        EXPECT_EQ(other->CalcPointAt(2.0, point), 1);
        EXPECT_EQ(point[1], 2.0);
        Line out;
        EXPECT_EQ(other->CalcRegressionLine(&out.slope, &out.intercept, &out.yOfX), 1);
        EXPECT_EQ(out.slope, 0.5);
    }
}

TEST(CMatRegressionLine, PointsAreFoundByTheIndependentCoordinate) {
    double point[2] = {};
    CMatRegressionLine flat = lineOverX(0.5, 1.0);
    EXPECT_EQ(flat.CalcPointAt(2.0, point), 1);
    EXPECT_EQ(point[0], 2.0);
    EXPECT_EQ(point[1], 2.0);
    CMatRegressionLine steep = lineOverY(0.25, -3.0);
    EXPECT_EQ(steep.CalcPointAt(2.0, point), 1);
    EXPECT_EQ(point[0], -2.5);
    EXPECT_EQ(point[1], 2.0);
}

TEST(CMatRegressionLine, DistanceOfAPointOnTheLineIsNull) {
    CMatRegressionLine line = lineOverX(0.5, 1.0);
    double point[2] = {6.0, 4.0};
    double foot[2] = {-1.0, -1.0};
    EXPECT_NEAR(line.CalcDistanceOfPoint(point, foot), 0.0, 1e-12);
    EXPECT_NEAR(foot[0], 6.0, 1e-12);
    EXPECT_NEAR(foot[1], 4.0, 1e-12);
}

TEST(CMatRegressionLine, DistanceIsMeasuredAtRightAngles) {
    // The line y = 3/4 x - 1/2 and the point (2, 1) + 5 * (-3, 4) / 5 * 1.
    CMatRegressionLine line = lineOverX(0.75, -0.5);
    double point[2] = {-1.0, 5.0};
    double foot[2] = {};
    EXPECT_NEAR(line.CalcDistanceOfPoint(point, foot), 5.0, 1e-12);
    EXPECT_NEAR(foot[0], 2.0, 1e-12);
    EXPECT_NEAR(foot[1], 1.0, 1e-12);
    EXPECT_NEAR(line.CalcDistanceOfPoint(point, nullptr), 5.0, 1e-12);

    CMatRegressionLine steep = lineOverY(0.0, 3.0);
    EXPECT_EQ(steep.CalcDistanceOfPoint(point, foot), 4.0);
    EXPECT_EQ(foot[0], 3.0);
    EXPECT_NEAR(foot[1], 5.0, 1e-12);
}

TEST(CMatRegressionLine, DistanceIsThatOfTheLineThroughItsPointsAt0And1000) {
    constexpr unsigned int kSeed = 6413;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> coordinate(-50.0, 50.0);
    for (int round = 0; round < 100; ++round) {
        CMatRegressionLine line = fitted(randomCloud(random, 10, 2.0, round % 2 == 0 ? 0.5 : 8.0));
        tagPOINT2D a, b, foot;
        line.CalcPointAt(0.0, &a.x);
        line.CalcPointAt(1000.0, &b.x);
        const double x = coordinate(random);
        const tagPOINT2D p{x, coordinate(random)};
        const double expected = matCalcDistanceToLine2D(&a, &b, &p, 0, &foot, nullptr);
        double point[2] = {p.x, p.y};
        EXPECT_EQ(line.CalcDistanceOfPoint(point, point), expected) << "the foot may replace the point";
        EXPECT_EQ(point[0], foot.x);
        EXPECT_EQ(point[1], foot.y);
    }
}

TEST(CMatRegressionLine, WithoutALineThereIsNoDistanceNorPointNorAngle) {
    CMatRegressionLine line;
    double point[2] = {3.0, 4.0};
    double foot[2] = {7.0, 8.0};
    EXPECT_EQ(line.CalcDistanceOfPoint(point, foot), 0.0);
    EXPECT_EQ(foot[0], 7.0);
    EXPECT_EQ(foot[1], 8.0);
    EXPECT_EQ(line.CalcAngle(0, 1), 0.0);
    EXPECT_EQ(line.CalcAngle(1, 0), 0.0);
    EXPECT_EQ(line.CalcAngle(2, 0), kNoValue);
}

TEST(CMatRegressionLine, AnglesAreUnsignedAndPointTowardsGrowingIndependentCoordinate) {
    constexpr double kPi = 3.141592653589793;
    CMatRegressionLine rising = lineOverX(0.5, 1.0);
    const double risingDegrees = 26.56505117707799;  // atan(1/2)
    EXPECT_NEAR(rising.CalcAngle(0, 1), risingDegrees, 1e-12);
    EXPECT_NEAR(rising.CalcAngle(1, 1), 90.0 - risingDegrees, 1e-12);
    EXPECT_NEAR(rising.CalcAngle(0, 0), risingDegrees * kPi / 180.0, 1e-14);
    CMatRegressionLine falling = lineOverX(-0.5, 1.0);
    EXPECT_NEAR(falling.CalcAngle(0, 1), risingDegrees, 1e-12);
    EXPECT_NEAR(falling.CalcAngle(1, 1), 90.0 + risingDegrees, 1e-12);
    // Over y: the direction (0.5, 1) and (-0.5, 1).
    CMatRegressionLine right = lineOverY(0.5, 1.0);
    EXPECT_NEAR(right.CalcAngle(1, 1), risingDegrees, 1e-12);
    EXPECT_NEAR(right.CalcAngle(0, 1), 90.0 - risingDegrees, 1e-12);
    CMatRegressionLine left = lineOverY(-0.5, 1.0);
    EXPECT_NEAR(left.CalcAngle(0, 1), 90.0 + risingDegrees, 1e-12);
    EXPECT_NEAR(left.CalcAngle(1, 1), risingDegrees, 1e-12);
    EXPECT_NEAR(left.CalcAngle(1, 0), risingDegrees * kPi / 180.0, 1e-14);
}

TEST(CMatRegressionLine, AnglesOfTheAxesThemselves) {
    CMatRegressionLine horizontal = lineOverX(0.0, 2.0);
    EXPECT_EQ(horizontal.CalcAngle(0, 1), 0.0);
    EXPECT_EQ(horizontal.CalcAngle(1, 1), 90.0);
    CMatRegressionLine vertical = lineOverY(0.0, 2.0);
    EXPECT_EQ(vertical.CalcAngle(1, 1), 0.0);
    EXPECT_EQ(vertical.CalcAngle(0, 1), 90.0);
}

TEST(CMatRegressionLine, AnglesWithOtherAxesDoNotExist) {
    CMatRegressionLine line = lineOverX(0.5, 1.0);
    EXPECT_EQ(line.CalcAngle(-1, 1), kNoValue);
    EXPECT_EQ(line.CalcAngle(2, 0), kNoValue);
}

TEST(CMatRegressionLine, AnglesAboveTheHalfTurnAreMirrored) {
    // A falling line's direction lies in the fourth quadrant: 360 degrees less a little, seen from the x axis.
    CMatRegressionLine line = lineOverX(-0.0001220703125, 0.0);
    tagPOINT2D origin{0.0, 0.0};
    tagPOINT2D axis{1.0, 0.0};
    tagPOINT2D direction{1000.0, -0.1220703125};
    const double angle = matCalcNormalizedAngle2D(&origin, &axis, &direction, 1, 1);
    ASSERT_GT(angle, 359.0);
    EXPECT_EQ(line.CalcAngle(0, 1), 360.0 - angle);
    const double rad = matCalcNormalizedAngle2D(&origin, &axis, &direction, 1, 0);
    EXPECT_EQ(line.CalcAngle(0, 0), 6.283185307179586 - rad);
}

TEST(CMatRegressionLine, AnglesJustBelowTheHalfTurnComeOutAboveIt) {
    // x = slope * y: the direction is (1000 * slope, 1000), 1 / slope radians short of the half turn.
    AnyLine within(-1e9, 0.0, 0);
    EXPECT_NEAR(within.CalcAngle(0, 1), 180.0 + 57.29577951308232e-9, 1e-12);
    EXPECT_GT(within.CalcAngle(0, 1), 180.0);
    AnyLine without(-0.5e9, 0.0, 0);
    EXPECT_NEAR(without.CalcAngle(0, 1), 180.0 - 2.0 * 57.29577951308232e-9, 1e-12);
    AnyLine withinRad(-2e7, 0.0, 0);
    EXPECT_NEAR(withinRad.CalcAngle(0, 0), 3.141592653589793 + 0.5e-7, 1e-14);
    AnyLine withoutRad(-0.5e7, 0.0, 0);
    EXPECT_NEAR(withoutRad.CalcAngle(0, 0), 3.141592653589793 - 2e-7, 1e-14);
}

TEST(CMatRegressionLine, OneMarkedFieldIsEnoughForNoLine) {
    double point[2] = {7.0, 8.0};
    AnyLine noSlope(kNoValue, 1.0, 1);
    EXPECT_EQ(noSlope.CalcPointAt(2.0, point), 0);
    AnyLine noIntercept(1.0, kNoValue, 1);
    EXPECT_EQ(noIntercept.CalcPointAt(2.0, point), 0);
    EXPECT_EQ(noIntercept.CalcDistanceOfPoint(point, nullptr), 0.0);
    AnyLine otherFlag(2.0, 1.0, -3);
    EXPECT_EQ(otherFlag.CalcPointAt(2.0, point), 1);
    EXPECT_EQ(point[0], 2.0) << "any flag but 0 means y over x";
    EXPECT_EQ(point[1], 5.0);
}
