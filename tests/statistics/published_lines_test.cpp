// Published data with published results.
//
// Of the linear sets of the NIST Statistical Reference Datasets only Norris is a straight line over one variable:
// Pontius is a parabola, the Wampler sets are polynomials of degree five and Longley has six variables, so none of
// these has a certified slope and intercept.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

#include "velquad/statistics.h"

using velquad::kNoValue;

namespace {

/// Decimal digits in which a result agrees with a certified one: the logarithm of the relative error.
double agreeingDigits(double result, double certified) {
    if (result == certified) return 17.0;
    return -std::log10(std::fabs(result - certified) / std::fabs(certified));
}

struct Data {
    std::vector<double> x;
    std::vector<double> y;
    unsigned int count() const { return static_cast<unsigned int>(x.size()); }
};

/// NIST StRD, Norris (J. Norris, calibration of ozone monitors): 36 observations.
const Data kNorris{{0.2, 337.4, 118.2, 884.6, 10.1,  226.5, 666.3, 996.3, 448.6, 777.0, 558.2, 0.4,
                    0.6, 775.5, 666.9, 338.0, 447.5, 11.6,  556.0, 228.1, 995.8, 887.6, 120.2, 0.3,
                    0.3, 556.8, 339.1, 887.2, 999.0, 779.0, 11.1,  118.3, 229.2, 669.1, 448.9, 0.5},
                   {0.1, 338.8, 118.1, 888.0, 9.2,   228.1, 668.5, 998.5, 449.1, 778.9, 559.2, 0.3,
                    0.1, 778.1, 668.8, 339.3, 448.9, 10.8,  557.7, 228.3, 998.0, 888.8, 119.6, 0.3,
                    0.6, 557.6, 339.3, 888.0, 998.5, 778.9, 10.2,  117.6, 228.9, 668.4, 449.2, 0.2}};

/// International calls from Belgium, in tens of millions, 1950 to 1973; 1964 to 1969 were counted in another unit
/// (P. J. Rousseeuw and A. M. Leroy, Robust Regression and Outlier Detection, 1987).
const Data kTelephone{
    {50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70, 71, 72, 73},
    {0.44, 0.47, 0.47, 0.59, 0.66,  0.73,  0.81,  0.88,  1.06, 1.20, 1.35, 1.49,
     1.61, 2.12, 11.9, 12.4, 14.20, 15.90, 18.20, 21.20, 4.30, 2.40, 2.70, 2.90}};

/// The example of K. Pearson, On lines and planes of closest fit to systems of points in space, 1901.
const std::vector<tagPOINT2D> kPearson{{0.0, 5.9}, {0.9, 5.4}, {1.8, 4.4}, {2.6, 4.6}, {3.3, 3.5},
                                       {4.4, 3.7}, {5.2, 2.8}, {6.1, 2.8}, {6.5, 2.4}, {7.4, 1.5}};

}  // namespace

TEST(PublishedLines, NorrisAgreesInThirteenDigitsOfTheSlopeAndTwelveOfTheIntercept) {
    double slope = 0.0;
    double intercept = 0.0;
    ASSERT_EQ(
        matRegressionLine(kNorris.x.data(), kNorris.y.data(), kNorris.count(), kNoValue, &slope, &intercept),
        1);
    EXPECT_GE(agreeingDigits(slope, 1.00211681802045), 13.0);
    EXPECT_GE(agreeingDigits(intercept, -0.262323073774029), 12.0);
}

TEST(PublishedLines, NorrisOverItsWiderAxisAgreesWithExactArithmetic) {
    // The readings spread more than the certified concentrations. Slope and intercept of x over y were computed in
    // rational numbers.
    CMatRegressionLine line;
    for (std::size_t i = 0; i < kNorris.x.size(); ++i)
        line.AddValue(kNorris.x[i], kNorris.y[i]);
    double slope = 0.0;
    double intercept = 0.0;
    int yOfX = 1;
    ASSERT_EQ(line.CalcRegressionLine(&slope, &intercept, &yOfX), 1);
    EXPECT_EQ(yOfX, 0);
    EXPECT_GE(agreeingDigits(slope, 0.99788141252739726), 13.0);
    EXPECT_GE(agreeingDigits(intercept, 0.26438890596384007), 12.0);
}

TEST(PublishedLines, NorrisIsAsGoodAsALineOfLeastDeviations) {
    double slope = 0.0;
    double intercept = 0.0;
    int yOfX = 1;
    ASSERT_EQ(
        matRobustLineFit(kNorris.x.data(), kNorris.y.data(), kNorris.count(), &slope, &intercept, &yOfX), 1);
    EXPECT_EQ(yOfX, 0);
    // Two standard deviations of the certified slope, 0.000429796848199937, to either side.
    EXPECT_NEAR(slope, 0.99788141252739726, 2.0 * 0.000429796848199937);
}

TEST(PublishedLines, TelephoneCallsFoolLeastSquaresMoreThanLeastDeviations) {
    double slope = 0.0;
    double intercept = 0.0;
    unsigned int leastSquaresFlag = 0;
    ASSERT_EQ(matCalcRegressionLine(kTelephone.x.data(), kTelephone.y.data(), kTelephone.count(), kNoValue,
                                    &slope, &intercept, &leastSquaresFlag),
              1);
    EXPECT_EQ(leastSquaresFlag, 1U);
    // The book's least-squares line is y = 0.504 x - 26.01.
    EXPECT_NEAR(slope, 0.504, 0.0005);
    EXPECT_NEAR(intercept, -26.01, 0.005);

    int yOfX = 0;
    ASSERT_EQ(matRobustLineFit(kTelephone.x.data(), kTelephone.y.data(), kTelephone.count(), &slope,
                               &intercept, &yOfX),
              1);
    EXPECT_EQ(yOfX, 1);
    // All slopes from 0.12 to 0.15 and beyond have the same least sum of deviations, so the signs balance there and
    // the search ends at the lower end of its bracket: three standard deviations below least squares.
    double chi = 0.0;
    for (std::size_t i = 0; i < 24; ++i)
        chi += std::pow(kTelephone.y[i] - (0.5041478260869565 * kTelephone.x[i] - 26.005924637681158), 2.0);
    const double sigma = std::sqrt(chi / (24.0 * 24.0 * (24.0 * 24.0 - 1.0) / 12.0));
    EXPECT_NEAR(slope, 0.5041478260869565 - 3.0 * sigma, 0.0101 * sigma);
    // Even so it tells the years of the right unit within one unit, where least squares miss by up to five.
    for (std::size_t i = 0; i < 13; ++i)
        EXPECT_NEAR(slope * kTelephone.x[i] + intercept, kTelephone.y[i], 1.0);
}

TEST(PublishedLines, PearsonsExampleAgreesInAllPublishedDigits) {
    tagPOINT2D centre{};
    tagPOINT2D direction{};
    ASSERT_EQ(matFittingLineEx(kPearson.data(), 10, &centre, &direction), 1);
    const double slope = direction.y / direction.x;
    // Pearson gives y = 5.7840 - 0.5456 x. More digits are from rational sums.
    EXPECT_NEAR(slope, -0.5456, 0.00005);
    EXPECT_NEAR(centre.y - slope * centre.x, 5.7840, 0.00005);
    EXPECT_GE(agreeingDigits(slope, -0.5455611975209647), 13.0);
    EXPECT_GE(agreeingDigits(centre.x, 3.82), 15.0);
    EXPECT_GE(agreeingDigits(centre.y, 3.7), 15.0);
}
