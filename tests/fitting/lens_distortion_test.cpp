#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/first_allocations.h"
#include "velquad/fitting.h"

namespace {

using svd::CSVDFitPoly2d;
using svd::PolyModelId;
using velquad::test::allocationCount;
using velquad::test::failAllocation;
using velquad::test::failFirstAllocations;
using velquad::test::hasAllocationFailed;
using velquad::test::liveAllocations;

using Params = CSVDFitPoly2d::LensDistortionParams;
using Values = std::vector<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct Point {
    double x;
    double y;
};

static_assert(sizeof(PolyModelId) == sizeof(unsigned int));
static_assert(sizeof(CSVDFitPoly2d) == sizeof(void*));
static_assert(!std::is_convertible_v<unsigned int, PolyModelId>);
static_assert(!std::is_convertible_v<PolyModelId, unsigned int>);
static_assert(std::is_constructible_v<PolyModelId, unsigned int>);
static_assert(offsetof(Params, modelId) == 0 && offsetof(Params, xCoefficients) == 8);
static_assert(offsetof(Params, yCoefficients) == 8 + sizeof(std::vector<double>));

Point predict(const CSVDFitPoly2d& lens, const Params& params, double x, double y) {
    Params copy = params;
    Point point = {kNan, kNan};
    lens.Predict(copy, x, y, point.x, point.y);
    return point;
}

Values unitVector(std::size_t size, std::size_t index) {
    Values values(size, 0.0);
    values[index] = 1.0;
    return values;
}

std::size_t termCount(unsigned int model) {
    constexpr std::size_t counts[] = {0, 0, 5, 6, 7, 10, 9, 17, 24, 21};
    return counts[model];
}

/// All terms of a model at (u, v), read through unit coefficients in an image of 4 by 2 pixels: half the height is 1
/// there and the centre (2, 1).
Values readTerms(unsigned int model, double u, double v) {
    CSVDFitPoly2d lens;
    lens.Allocate(0, PolyModelId(model), 4, 2);
    Values terms;
    for (std::size_t term = 0; term < termCount(model); ++term) {
        Params params;
        params.modelId = model;
        params.xCoefficients = unitVector(termCount(model), term);
        params.yCoefficients = unitVector(termCount(model), term);
        const Point point = predict(lens, params, u + 2.0, v + 1.0);
        terms.push_back(point.x - 2.0);
        EXPECT_DOUBLE_EQ(point.y - 1.0, point.x - 2.0);
    }
    return terms;
}

/// A grid of dots of a square image of `size` pixels.
std::vector<Point> dotGrid(int side, double size) {
    std::vector<Point> dots;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column)
            dots.push_back({(column + 0.5) * size / side, (row + 0.25) * size / side});
    }
    return dots;
}

TEST(PolyModelId, ComparesByNumber) {
    const PolyModelId five(5);
    EXPECT_EQ(five.get(), 5U);
    EXPECT_TRUE(five == PolyModelId(5));
    EXPECT_TRUE(five != PolyModelId(6));
    EXPECT_TRUE(five < PolyModelId(6));
    EXPECT_TRUE(five <= PolyModelId(5));
    EXPECT_TRUE(five > PolyModelId(4));
    EXPECT_TRUE(five >= PolyModelId(5));
    EXPECT_FALSE(five < PolyModelId(5));
    EXPECT_FALSE(five >= PolyModelId(6));
}

struct TermCase {
    unsigned int model;
    Values atThreeFour;    // u = 3, v = 4, r = 5
    Values atMinusOneTwo;  // u = -1.5, v = 2, r = 2.5
};

class LensTermsOfModel : public testing::TestWithParam<TermCase> {};

TEST_P(LensTermsOfModel, AreThoseOfTheTable) {
    const TermCase& expected = GetParam();
    const Values first = readTerms(expected.model, 3.0, 4.0);
    const Values second = readTerms(expected.model, -1.5, 2.0);
    ASSERT_EQ(first.size(), expected.atThreeFour.size());
    ASSERT_EQ(second.size(), expected.atMinusOneTwo.size());
    for (std::size_t term = 0; term < first.size(); ++term) {
        EXPECT_NEAR(first[term], expected.atThreeFour[term], 1e-12) << "term " << term;
        EXPECT_NEAR(second[term], expected.atMinusOneTwo[term], 1e-12) << "term " << term;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Models, LensTermsOfModel,
    testing::Values(
        TermCase{2, {1, 3, 4, 5, 25}, {1, -1.5, 2, 2.5, 6.25}},
        TermCase{3, {1, 3, 4, 5, 25, 125}, {1, -1.5, 2, 2.5, 6.25, 15.625}},
        TermCase{4, {1, 3, 4, 5, 25, 125, 625}, {1, -1.5, 2, 2.5, 6.25, 15.625, 39.0625}},
        TermCase{5, {1, 3, 4, 9, 16, 36, 48, 27, 64, 5}, {1, -1.5, 2, 2.25, 4, 4.5, -6, -3.375, 8, 2.5}},
        TermCase{6, {1, 3, 4, 9, 16, 36, 48, 27, 64}, {1, -1.5, 2, 2.25, 4, 4.5, -6, -3.375, 8}},
        TermCase{7,
                 {1, 3, 4, 9, 16, 36, 48, 27, 64, 108, 144, 81, 192, 144, 192, 108, 256},
                 {1, -1.5, 2, 2.25, 4, 4.5, -6, -3.375, 8, -6.75, 9, 5.0625, -12, 9, -12, -6.75, 16}},
        TermCase{
            8,
            {0,  1,  0,  3,   9,   12,   3,  4,  43.0 / 3, 8,   75,  -7,
             24, 27, 86, 305, 240, 1875, 19, 75, 64,       114, 445, 2500},
            {0,  1,      0,     -1.5,    2.25, -3,        -1.5, 2,      10.75 / 3, -2,    -9.375,  -1.75,
             -6, -3.375, 10.75, 19.0625, -15,  -58.59375, 4.75, -9.375, 8,         14.25, 27.8125, 78.125}},
        TermCase{9,
                 {1, 3, 4, 9, 16, 12, 27, 36, 48, 64, 81, 108, 144, 192, 256, 243, 324, 432, 576, 768, 1024},
                 {1,     -1.5, 2,   2.25, 4,        -3,     -3.375, 4.5, -6,  8, 5.0625,
                  -6.75, 9,    -12, 16,   -7.59375, 10.125, -13.5,  18,  -24, 32}}),
    [](const testing::TestParamInfo<TermCase>& test) { return "Model" + std::to_string(test.param.model); });

TEST(LensDistortion, NormalisesByHalfTheHeight) {
    CSVDFitPoly2d lens;
    EXPECT_TRUE(lens.Allocate(1, PolyModelId(2), 1000, 500));
    Params params;
    params.xCoefficients = {0, 1, 0, 0, 0};
    params.yCoefficients = {0, 0, 1, 0, 0};
    EXPECT_EQ(predict(lens, params, 750.0, 375.0).x, 750.0);
    EXPECT_EQ(predict(lens, params, 750.0, 375.0).y, 375.0);
    params.xCoefficients = {0, 0, 0, 1, 0};  // the distance from the centre, 250 pixels being 1
    EXPECT_EQ(predict(lens, params, 650.0, 450.0).x, 750.0);
}

TEST(LensDistortion, HasOnlyTheConstantTermAtTheCentre) {
    CSVDFitPoly2d lens;
    lens.Allocate(1, PolyModelId(2), 1000, 500);
    Params params;
    params.xCoefficients = {0.04, 7, 7, 7, 7};
    params.yCoefficients = {-0.04, 7, 7, 7, 7};
    const Point point = predict(lens, params, 500.0, 250.0);
    EXPECT_DOUBLE_EQ(point.x, 510.0);
    EXPECT_DOUBLE_EQ(point.y, 240.0);
}

struct TermBits {
    unsigned int model;
    double x;
    double y;
    Values terms;
};

TEST(LensDistortion, FormsTermsInTheOrderOfTheTable) {
    // Powers first, then from left to right. In an image of 0 by 2 pixels u is x, v is y - 1, and a sum comes out as it
    // is. By a program in another language.
    const std::vector<TermBits> cases = {
        {4,
         0.61,
         1.83,
         {1, 0.61, 0.8300000000000001, 1.030048542545447, 1.0609999999999997, 1.0928815036407191,
          1.1257209999999995}},
        {4,
         0.57,
         1.61,
         {1, 0.57, 0.6100000000000001, 0.8348652585896721, 0.6970000000000001, 0.5819010852370015,
          0.48580900000000005}},
        {5,
         0.61,
         1.83,
         {1, 0.61, 0.8300000000000001, 0.3721, 0.6889000000000001, 0.30884300000000003, 0.420229, 0.226981,
          0.5717870000000002, 1.030048542545447}},
        {5,
         0.57,
         1.61,
         {1, 0.57, 0.6100000000000001, 0.32489999999999997, 0.3721000000000001, 0.198189, 0.21209700000000004,
          0.18519299999999997, 0.2269810000000001, 0.8348652585896721}},
        {7,
         0.61,
         1.83,
         {1, 0.61, 0.8300000000000001, 0.3721, 0.6889000000000001, 0.30884300000000003, 0.420229, 0.226981,
          0.5717870000000002, 0.18839423, 0.25633969, 0.13845840999999998, 0.34879007000000006, 0.25633969,
          0.34879007000000006, 0.18839423, 0.47458321000000014}},
        {7,
         0.57,
         1.61,
         {1, 0.57, 0.6100000000000001, 0.32489999999999997, 0.3721000000000001, 0.198189, 0.21209700000000004,
          0.18519299999999997, 0.2269810000000001, 0.11296773, 0.12089529000000002, 0.10556000999999997,
          0.12937917000000004, 0.12089529000000002, 0.12937917000000004, 0.11296773, 0.1384584100000001}},
        {8,
         0.61,
         1.83,
         {0,
          1,
          0,
          0.61,
          0.3721,
          0.5063000000000001,
          0.61,
          0.8300000000000001,
          0.6017333333333333,
          0.3375333333333334,
          0.6472100000000001,
          -0.3168000000000001,
          1.0126000000000002,
          0.226981,
          0.749158,
          0.54098268,
          0.42974744000000004,
          0.68668981,
          0.8129333333333334,
          0.6472100000000001,
          0.5717870000000002,
          1.0121020000000003,
          0.80988252,
          0.93434843}},
        {8,
         0.57,
         1.61,
         {0,
          1,
          0,
          0.57,
          0.32489999999999997,
          0.3477,
          0.57,
          0.6100000000000001,
          0.44893333333333335,
          0.2318,
          0.39729000000000003,
          -0.04720000000000013,
          0.6954,
          0.18519299999999997,
          0.4107740000000001,
          0.27832604,
          0.19387752000000003,
          0.27691113000000006,
          0.4804000000000001,
          0.39729000000000003,
          0.2269810000000001,
          0.4395660000000001,
          0.30464476000000007,
          0.2963434900000001}},
        {8,
         0.11,
         1.28,
         {0,
          1,
          0,
          0.11,
          0.0121,
          0.030800000000000004,
          0.11,
          0.28,
          0.03823333333333334,
          0.020533333333333337,
          0.009955000000000002,
          -0.06630000000000001,
          0.06160000000000001,
          0.001331,
          0.016058000000000003,
          0.002514090000000001,
          0.0022299200000000007,
          0.0009009275000000001,
          0.08243333333333334,
          0.009955000000000002,
          0.021952000000000006,
          0.034622000000000014,
          0.0073142100000000015,
          0.0022932700000000005}},
        {9,
         0.61,
         1.83,
         {1,
          0.61,
          0.8300000000000001,
          0.3721,
          0.6889000000000001,
          0.5063000000000001,
          0.226981,
          0.30884300000000003,
          0.420229,
          0.5717870000000002,
          0.13845840999999998,
          0.18839423,
          0.25633969,
          0.34879007000000006,
          0.47458321000000014,
          0.08445963009999999,
          0.11492048029999999,
          0.1563672109,
          0.21276194270000004,
          0.28949575810000006,
          0.39390406430000013}},
        {9,
         0.57,
         1.61,
         {1,
          0.57,
          0.6100000000000001,
          0.32489999999999997,
          0.3721000000000001,
          0.3477,
          0.18519299999999997,
          0.198189,
          0.21209700000000004,
          0.2269810000000001,
          0.10556000999999997,
          0.11296773,
          0.12089529000000002,
          0.12937917000000004,
          0.1384584100000001,
          0.06016920569999998,
          0.06439160609999998,
          0.06891031530000001,
          0.07374612690000003,
          0.07892129370000005,
          0.08445963010000007}},
    };
    for (const TermBits& test : cases) {
        CSVDFitPoly2d lens;
        lens.Allocate(0, PolyModelId(test.model), 0, 2);
        ASSERT_EQ(test.terms.size(), termCount(test.model));
        for (std::size_t term = 0; term < test.terms.size(); ++term) {
            Params params;
            params.xCoefficients = unitVector(test.terms.size(), term);
            params.yCoefficients = params.xCoefficients;
            EXPECT_EQ(predict(lens, params, test.x, test.y).x, test.terms[term])
                << "model " << test.model << ", term " << term << " at " << test.x;
        }
    }
}

TEST(LensDistortion, DividesByTheScaleAndAddsTheCentreLast) {
    CSVDFitPoly2d lens;
    lens.Allocate(0, PolyModelId(2), 7, 3);
    Params params;
    params.xCoefficients = {0, 1, 0, 0, 0};
    params.yCoefficients = {0, 0, 1, 0, 0};
    // A product with the reciprocal gives 15.899999999999999 and 7.299999999999999; one more step of the scale in
    // place of the centre 7.300000000000001.
    const Point point = predict(lens, params, 15.9, 7.3);
    EXPECT_EQ(point.x, 15.900000000000002);
    EXPECT_EQ(point.y, 7.3);
}

TEST(LensDistortion, KeepsOddSizesInHalves) {
    CSVDFitPoly2d lens;
    lens.Allocate(0, PolyModelId(10), 7, 4294967295U);
    const Point point = predict(lens, Params(), 1.0, 1.0);
    EXPECT_EQ(point.x, 3.5);
    EXPECT_EQ(point.y, 2147483647.5);
}

TEST(LensDistortion, ReproducesUndistortedDotsWithEveryModel) {
    for (unsigned int model = 2; model <= 9; ++model) {
        SCOPED_TRACE(model);
        CSVDFitPoly2d lens;
        const std::vector<Point> dots = dotGrid(9, 480.0);
        lens.Allocate(static_cast<unsigned int>(dots.size()), PolyModelId(model), 640, 480);
        for (const Point& dot : dots)
            lens.PutCalibDot(dot.x, dot.y, dot.x, dot.y);
        Params params;
        ASSERT_TRUE(lens.Fit(params));
        EXPECT_EQ(params.modelId, model);
        EXPECT_EQ(params.xCoefficients.size(), termCount(model));
        EXPECT_EQ(params.yCoefficients.size(), termCount(model));
        const Point point = predict(lens, params, 123.25, 321.5);
        EXPECT_NEAR(point.x, 123.25, 1e-9);
        EXPECT_NEAR(point.y, 321.5, 1e-9);
    }
}

TEST(LensDistortion, ReproducesAQuinticWithModel9) {
    const auto trueX = [](double u, double v) {
        return 0.01 + 0.9 * u + 0.02 * v + 0.1 * u * u * u * v - 0.05 * u * u * u * u * u +
               0.03 * u * v * v * v * v;
    };
    const auto trueY = [](double u, double v) {
        return -0.02 + 1.1 * v - 0.07 * u * v + 0.04 * v * v * v * v * v;
    };
    CSVDFitPoly2d lens;
    const std::vector<Point> dots = dotGrid(6, 400.0);
    lens.Allocate(36, PolyModelId(9), 400, 400);
    for (const Point& dot : dots) {
        const double u = (dot.x - 200.0) / 200.0;
        const double v = (dot.y - 200.0) / 200.0;
        lens.PutCalibDot(dot.x, dot.y, trueX(u, v) * 200.0 + 200.0, trueY(u, v) * 200.0 + 200.0);
    }
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    EXPECT_NEAR(params.xCoefficients[1], 0.9, 1e-10);
    EXPECT_NEAR(params.xCoefficients[11], 0.1, 1e-10);
    EXPECT_NEAR(params.xCoefficients[15], -0.05, 1e-10);
    EXPECT_NEAR(params.xCoefficients[19], 0.03, 1e-10);
    EXPECT_NEAR(params.yCoefficients[5], -0.07, 1e-10);
    EXPECT_NEAR(params.yCoefficients[20], 0.04, 1e-10);
    const Point point = predict(lens, params, 300.0, 100.0);  // u = 0.5, v = -0.5
    EXPECT_NEAR(point.x, trueX(0.5, -0.5) * 200.0 + 200.0, 1e-9);
    EXPECT_NEAR(point.y, trueY(0.5, -0.5) * 200.0 + 200.0, 1e-9);
}

TEST(LensDistortion, FindsTheLeastSquaresMapOfNoisyDots) {
    // By the normal equations in rational numbers.
    const std::vector<Point> dots = {{10, 20},  {100, 30},  {210, 15},  {330, 40},  {390, 10},
                                     {20, 100}, {120, 90},  {230, 110}, {320, 95},  {380, 120},
                                     {15, 180}, {130, 190}, {220, 170}, {300, 185}, {395, 195}};
    const std::vector<Point> targets = {{12, 22},  {101, 29},  {210, 17},  {328, 42},  {385, 13},
                                        {22, 101}, {121, 90},  {229, 111}, {322, 93},  {377, 121},
                                        {18, 177}, {131, 188}, {221, 171}, {301, 184}, {390, 192}};
    CSVDFitPoly2d lens;
    lens.Allocate(15, PolyModelId(6), 400, 200);
    for (std::size_t dot = 0; dot < dots.size(); ++dot)
        lens.PutCalibDot(dots[dot].x, dots[dot].y, targets[dot].x, targets[dot].y);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    const Values x = {0.009033897039999272,  1.0052067366586805,    -0.0013497516810541716,
                      -0.003852966695323605, -0.005164711714754117, -0.0005906980201752782,
                      -0.006889157054847786, -0.005459457687000609, 0.01197752729030729};
    const Values y = {0.004211136399209061,   0.002708501727908696,   1.0289742182889223,
                      -0.0008851253071135596, -0.0019473688042752932, -0.004561414972730838,
                      0.008935093022827545,   -0.0016969825427114683, -0.05833690714940729};
    ASSERT_EQ(params.xCoefficients.size(), 9U);
    ASSERT_EQ(params.yCoefficients.size(), 9U);
    for (std::size_t term = 0; term < 9; ++term) {
        EXPECT_NEAR(params.xCoefficients[term], x[term], 1e-13);
        EXPECT_NEAR(params.yCoefficients[term], y[term], 1e-13);
    }
    const Point point = predict(lens, params, 150.0, 60.0);
    EXPECT_NEAR(point.x, 150.570690666559, 1e-11);
    EXPECT_NEAR(point.y, 59.442135681507125, 1e-11);
}

TEST(LensDistortion, SplitsTheWeightOfEqualTermsEqually) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> pixel(0.0, 200.0);
    CSVDFitPoly2d lens;
    lens.Allocate(17, PolyModelId(7), 200, 200);
    for (int dot = 0; dot < 17; ++dot) {
        const double x = pixel(random);
        const double y = pixel(random);
        lens.PutCalibDot(x, y, pixel(random), pixel(random));
    }
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    for (const Values* list : {&params.xCoefficients, &params.yCoefficients}) {
        const Values& c = *list;
        const double scale = std::abs(c[9]) + std::abs(c[10]) + std::abs(c[12]);
        EXPECT_GT(scale, 1e-3);
        EXPECT_NEAR(c[9], c[15], 1e-9 * scale);
        EXPECT_NEAR(c[10], c[13], 1e-9 * scale);
        EXPECT_NEAR(c[12], c[14], 1e-9 * scale);
    }
}

TEST(LensDistortion, GivesZeroTermsNoCoefficient) {
    CSVDFitPoly2d lens;
    const std::vector<Point> dots = dotGrid(7, 300.0);
    lens.Allocate(49, PolyModelId(8), 300, 300);
    for (const Point& dot : dots)
        lens.PutCalibDot(dot.x, dot.y, dot.x * 1.1 + 3.0, dot.y + dot.x * dot.y * 0.001);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    for (const Values* list : {&params.xCoefficients, &params.yCoefficients}) {
        EXPECT_NEAR((*list)[0], 0.0, 1e-14);
        EXPECT_NEAR((*list)[2], 0.0, 1e-14);
        EXPECT_NEAR((*list)[3], (*list)[6], 1e-11);
        EXPECT_NEAR((*list)[10], (*list)[19], 1e-11);
    }
}

TEST(LensDistortion, GivesTheSmallestCoefficientsForASingleDot) {
    // The terms are t = (1, 3, 4, 5, 25) and |t|^2 = 676, so t times target / 676 is the smallest solution.
    CSVDFitPoly2d lens;
    lens.Allocate(1, PolyModelId(2), 4, 2);
    lens.PutCalibDot(5.0, 5.0, 678.0, 339.0);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    const Values terms = {1, 3, 4, 5, 25};
    for (std::size_t term = 0; term < terms.size(); ++term) {
        EXPECT_NEAR(params.xCoefficients[term], terms[term], 1e-12);
        EXPECT_NEAR(params.yCoefficients[term], terms[term] / 2.0, 1e-12);
    }
}

TEST(LensDistortion, GivesCollinearDotsNoCrossTerms) {
    CSVDFitPoly2d lens;
    lens.Allocate(9, PolyModelId(6), 200, 200);
    for (int dot = 0; dot < 9; ++dot)
        lens.PutCalibDot(25.0 * dot, 100.0, 25.0 * dot + 5.0, 90.0);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    const Values x = {0.05, 1, 0, 0, 0, 0, 0, 0, 0};
    const Values y = {-0.1, 0, 0, 0, 0, 0, 0, 0, 0};
    for (std::size_t term = 0; term < 9; ++term) {
        EXPECT_NEAR(params.xCoefficients[term], x[term], 1e-12);
        EXPECT_NEAR(params.yCoefficients[term], y[term], 1e-12);
    }
}

TEST(LensDistortion, IsOptimalForNoisyDots) {
    // The residuals of a least-squares fit are orthogonal to every term.
    std::mt19937 random(11);
    std::normal_distribution<double> noise(0.0, 2.0);
    CSVDFitPoly2d lens;
    const std::vector<Point> dots = dotGrid(8, 240.0);
    lens.Allocate(64, PolyModelId(6), 240, 240);
    std::vector<Point> targets;
    for (const Point& dot : dots) {
        targets.push_back({dot.x + noise(random), dot.y + noise(random)});
        lens.PutCalibDot(dot.x, dot.y, targets.back().x, targets.back().y);
    }
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    Values gradientX(9, 0.0);
    Values gradientY(9, 0.0);
    double squares = 0.0;
    for (std::size_t dot = 0; dot < dots.size(); ++dot) {
        const double u = (dots[dot].x - 120.0) / 120.0;
        const double v = (dots[dot].y - 120.0) / 120.0;
        const Values terms = {1, u, v, u * u, v * v, u * u * v, u * v * v, u * u * u, v * v * v};
        const Point fitted = predict(lens, params, dots[dot].x, dots[dot].y);
        squares += (fitted.x - targets[dot].x) * (fitted.x - targets[dot].x);
        for (std::size_t term = 0; term < 9; ++term) {
            gradientX[term] += terms[term] * (fitted.x - targets[dot].x);
            gradientY[term] += terms[term] * (fitted.y - targets[dot].y);
        }
    }
    EXPECT_GT(squares, 1.0);
    for (std::size_t term = 0; term < 9; ++term) {
        EXPECT_NEAR(gradientX[term], 0.0, 1e-9);
        EXPECT_NEAR(gradientY[term], 0.0, 1e-9);
    }
}

TEST(LensDistortion, TakesUnknownModelsForEmpty) {
    for (const unsigned int model : {0U, 1U, 10U, 4294967295U}) {
        SCOPED_TRACE(model);
        CSVDFitPoly2d lens;
        EXPECT_TRUE(lens.Allocate(3, PolyModelId(model), 1000, 500));
        lens.PutCalibDot(1.0, 2.0, 3.0, 4.0);
        Params params;
        params.xCoefficients = {1, 2, 3};
        EXPECT_TRUE(lens.Fit(params));
        EXPECT_EQ(params.modelId, model);
        EXPECT_TRUE(params.xCoefficients.empty());
        EXPECT_TRUE(params.yCoefficients.empty());
        const Point point = predict(lens, params, 12.0, 34.0);
        EXPECT_EQ(point.x, 500.0);
        EXPECT_EQ(point.y, 250.0);
    }
}

TEST(LensDistortion, FitsNothingBeforeAllocate) {
    CSVDFitPoly2d lens;
    lens.PutCalibDot(1.0, 2.0, 3.0, 4.0);
    Params params;
    params.xCoefficients = {1.0};
    EXPECT_TRUE(lens.Fit(params));
    EXPECT_EQ(params.modelId, 0U);
    EXPECT_TRUE(params.xCoefficients.empty());
}

TEST(LensDistortion, FitsZerosWithoutDots) {
    CSVDFitPoly2d lens;
    Params params;
    lens.Allocate(0, PolyModelId(2), 100, 100);
    EXPECT_TRUE(lens.Fit(params));
    EXPECT_EQ(params.xCoefficients, Values(5, 0.0));
    lens.Allocate(8, PolyModelId(2), 100, 100);
    EXPECT_TRUE(lens.Fit(params));
    EXPECT_EQ(params.xCoefficients, Values(5, 0.0));
    EXPECT_EQ(params.yCoefficients, Values(5, 0.0));
}

TEST(LensDistortion, IgnoresRoomThatIsNotUsed) {
    CSVDFitPoly2d exact;
    CSVDFitPoly2d roomy;
    exact.Allocate(25, PolyModelId(6), 300, 300);
    roomy.Allocate(60, PolyModelId(6), 300, 300);
    for (const Point& dot : dotGrid(5, 300.0)) {
        const double shift = dot.x * dot.y * 1e-4;
        exact.PutCalibDot(dot.x, dot.y, dot.x + shift, dot.y - shift);
        roomy.PutCalibDot(dot.x, dot.y, dot.x + shift, dot.y - shift);
    }
    Params first;
    Params second;
    ASSERT_TRUE(exact.Fit(first));
    ASSERT_TRUE(roomy.Fit(second));
    for (std::size_t term = 0; term < 9; ++term) {
        EXPECT_NEAR(first.xCoefficients[term], second.xCoefficients[term], 1e-12);
        EXPECT_NEAR(first.yCoefficients[term], second.yCoefficients[term], 1e-12);
    }
}

TEST(LensDistortion, LeavesOutDotsBeyondItsRoom) {
    CSVDFitPoly2d lens;
    lens.Allocate(1, PolyModelId(2), 4, 2);
    lens.PutCalibDot(2.0, 1.0, 5.0, 3.0);
    lens.PutCalibDot(5.0, 5.0, 678.0, 339.0);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    EXPECT_NEAR(params.xCoefficients[0], 3.0, 1e-14);
    EXPECT_NEAR(params.yCoefficients[0], 2.0, 1e-14);
    EXPECT_NEAR(params.xCoefficients[4], 0.0, 1e-14);
}

TEST(LensDistortion, FitsAgainAfterFurtherDots) {
    CSVDFitPoly2d lens;
    lens.Allocate(2, PolyModelId(2), 4, 2);
    lens.PutCalibDot(2.0, 1.0, 5.0, 3.0);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    EXPECT_NEAR(params.xCoefficients[0], 3.0, 1e-14);
    lens.PutCalibDot(2.0, 1.0, 7.0, 3.0);  // the mean of two targets is the best
    ASSERT_TRUE(lens.Fit(params));
    EXPECT_NEAR(params.xCoefficients[0], 4.0, 1e-13);
    EXPECT_NEAR(params.yCoefficients[0], 2.0, 1e-13);
    lens.Allocate(1, PolyModelId(3), 4, 2);
    ASSERT_TRUE(lens.Fit(params));
    EXPECT_EQ(params.modelId, 3U);
    EXPECT_EQ(params.xCoefficients, Values(6, 0.0));
}

TEST(LensDistortion, PredictsWithItsOwnModel) {
    CSVDFitPoly2d lens;
    lens.Allocate(0, PolyModelId(3), 4, 2);
    Params params;
    params.modelId = 5;
    params.xCoefficients = {0, 0, 0, 0, 0, 1, kInf, kInf, kInf, kInf};
    params.yCoefficients = {0, 0, 0, 0, 0, 2, kInf, kInf, kInf, kInf};
    const Point point = predict(lens, params, 5.0, 5.0);  // r^3 = 125
    EXPECT_EQ(point.x, 127.0);
    EXPECT_EQ(point.y, 251.0);
}

TEST(LensDistortion, IsShortOfTermsWithTooFewCoefficients) {
    CSVDFitPoly2d lens;
    lens.Allocate(0, PolyModelId(9), 4, 2);
    Params params;
    params.xCoefficients = {1, 1};
    params.yCoefficients = {1, 1, 1};
    const Point point = predict(lens, params, 5.0, 5.0);
    EXPECT_EQ(point.x, 6.0);
    EXPECT_EQ(point.y, 5.0);
}

TEST(LensDistortion, SharesItsRecordByAssignment) {
    CSVDFitPoly2d a;
    CSVDFitPoly2d b;
    void* own = nullptr;
    void* shared = nullptr;
    std::memcpy(&own, static_cast<void*>(&b), sizeof own);
    EXPECT_EQ(&(b = a), &b);
    std::memcpy(&shared, static_cast<void*>(&b), sizeof shared);
    EXPECT_NE(shared, own);
    EXPECT_EQ(std::memcmp(static_cast<void*>(&a), static_cast<void*>(&b), sizeof shared), 0);
    b.Allocate(1, PolyModelId(2), 4, 2);
    b.PutCalibDot(2.0, 1.0, 5.0, 3.0);
    Params params;
    ASSERT_TRUE(a.Fit(params));
    EXPECT_EQ(params.modelId, 2U);
    EXPECT_NEAR(params.xCoefficients[0], 3.0, 1e-14);
    // Each gets one record to release.
    std::memcpy(static_cast<void*>(&b), &own, sizeof own);
}

TEST(LensDistortion, GivesNotANumberForAnImageWithoutHeight) {
    CSVDFitPoly2d lens;
    lens.Allocate(1, PolyModelId(2), 100, 0);
    lens.PutCalibDot(10.0, 20.0, 30.0, 40.0);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    ASSERT_EQ(params.xCoefficients.size(), 5U);
    EXPECT_TRUE(std::isnan(params.xCoefficients[0]));
    EXPECT_TRUE(std::isnan(params.yCoefficients[4]));
    EXPECT_TRUE(std::isnan(predict(lens, params, 1.0, 1.0).x));
}

TEST(LensDistortion, GivesNotANumberForDotsThatAreNotFinite) {
    for (const double bad : {kNan, kInf}) {
        CSVDFitPoly2d lens;
        lens.Allocate(6, PolyModelId(2), 100, 100);
        for (int dot = 0; dot < 5; ++dot)
            lens.PutCalibDot(10.0 * dot, 5.0 * dot * dot, 1.0, 1.0);
        lens.PutCalibDot(bad, 0.0, 1.0, 1.0);
        Params params;
        ASSERT_TRUE(lens.Fit(params));
        ASSERT_EQ(params.xCoefficients.size(), 5U);
        for (std::size_t term = 0; term < 5; ++term) {
            EXPECT_TRUE(std::isnan(params.xCoefficients[term]));
            EXPECT_TRUE(std::isnan(params.yCoefficients[term]));
        }
    }
}

TEST(LensDistortion, KeepsAnAxisWhoseTargetsAreFinite) {
    CSVDFitPoly2d lens;
    lens.Allocate(1, PolyModelId(2), 4, 2);
    lens.PutCalibDot(2.0, 1.0, kNan, 3.0);
    Params params;
    ASSERT_TRUE(lens.Fit(params));
    EXPECT_TRUE(std::isnan(params.xCoefficients[0]));
    EXPECT_NEAR(params.yCoefficients[0], 2.0, 1e-14);
}

TEST(LensDistortion, PredictsWithoutAllocating) {
    CSVDFitPoly2d lens;
    Params params;
    double x = 0.0;
    double y = 0.0;
    for (unsigned int model = 2; model <= 9; ++model) {
        lens.Allocate(0, PolyModelId(model), 640, 480);
        params.xCoefficients.assign(24, 0.001);
        params.yCoefficients.assign(24, 0.002);
        const std::size_t before = allocationCount();
        lens.Predict(params, 100.0, 200.0, x, y);
        EXPECT_EQ(allocationCount(), before);
        EXPECT_NE(x, 0.0);
    }
}

TEST(LensDistortion, DoesNothingWithoutARecord) {
    failAllocation(1);
    CSVDFitPoly2d lens;
    const bool hasFailed = hasAllocationFailed();
    failAllocation(0);
    ASSERT_TRUE(hasFailed);
    EXPECT_FALSE(lens.Allocate(1, PolyModelId(2), 4, 2));
    lens.PutCalibDot(1.0, 2.0, 3.0, 4.0);
    Params params;
    params.modelId = 77;
    params.xCoefficients = {1.0};
    EXPECT_FALSE(lens.Fit(params));
    EXPECT_EQ(params.modelId, 77U);
    EXPECT_EQ(params.xCoefficients, Values{1.0});
    double x = 5.0;
    double y = 6.0;
    lens.Predict(params, 1.0, 2.0, x, y);
    EXPECT_EQ(x, 5.0);
    EXPECT_EQ(y, 6.0);
}

TEST(LensDistortion, TellsOfEveryLackOfMemory) {
    const auto tellsOfLack = [] {
        CSVDFitPoly2d lens;
        try {
            if (!lens.Allocate(4, PolyModelId(2), 4, 2)) return true;
            lens.PutCalibDot(2.0, 1.0, 5.0, 3.0);
            Params params;
            lens.Fit(params);
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    };
    // The last one is the check before the decomposition begins.
    failFirstAllocations(8, tellsOfLack);
}

TEST(LensDistortion, KeepsItsStateWhenMemoryIsLacking) {
    CSVDFitPoly2d lens;
    lens.Allocate(1, PolyModelId(2), 4, 2);
    lens.PutCalibDot(2.0, 1.0, 5.0, 3.0);
    failAllocation(1);
    EXPECT_THROW(lens.Allocate(100, PolyModelId(9), 8, 8), std::bad_alloc);
    failAllocation(0);
    Params params;
    params.modelId = 77;
    params.xCoefficients = {1.0};
    failAllocation(1);
    EXPECT_THROW(lens.Fit(params), std::bad_alloc);
    failAllocation(0);
    EXPECT_EQ(params.modelId, 77U);
    EXPECT_EQ(params.xCoefficients, Values{1.0});
    ASSERT_TRUE(lens.Fit(params));
    EXPECT_EQ(params.modelId, 2U);
    EXPECT_NEAR(params.xCoefficients[0], 3.0, 1e-14);
}

TEST(LensDistortion, ReleasesItsRecord) {
    const std::ptrdiff_t before = liveAllocations();
    {
        CSVDFitPoly2d lens;
        lens.Allocate(100, PolyModelId(9), 640, 480);
        EXPECT_GT(liveAllocations(), before);
    }
    EXPECT_EQ(liveAllocations(), before);
}

}  // namespace
