// Round numbers for the labels of a linear axis: the step is a mantissa of a short series times a power of ten.
#include <cmath>
#include <span>

#include "frame/math.h"
#include "velquad/geometry.h"

namespace {

/// An axis shorter than this has no labels.
constexpr double kShortestAxis = 1e-7;

/// The series of mantissas, from the largest to the smallest.
std::span<const double> mantissasOf(unsigned int mode) {
    static constexpr double kOneTwoFive[] = {5.0, 2.0, 1.0};
    static constexpr double kQuarters[] = {5.0, 2.5, 1.0};
    static constexpr double kOneFive[] = {5.0, 1.0};
    static constexpr double kAll[] = {5.0, 2.5, 2.0, 1.0};
    switch (mode) {
        case 1:
            return kOneTwoFive;
        case 2:
            return kQuarters;
        case 3:
            return kOneFive;
        default:
            return kAll;
    }
}

/// The candidate just above the first one that is not above `wanted`. The candidates fall from the decade of
/// the axis downwards and end below every positive number, so the search ends; a not-a-number ends it after one
/// decade.
double roundStep(double wanted, double length, std::span<const double> mantissas) {
    double decade = std::trunc(velquad::frame::log10(std::fabs(length)));
    double candidate = wanted;
    double step = wanted;
    do {
        for (const double mantissa : mantissas) {
            step = candidate;
            candidate = velquad::frame::pow(10.0, decade) * mantissa;
            if (wanted >= candidate) return step;
        }
        decade -= 1.0;
    } while (candidate > wanted);
    return step;
}

}  // namespace

extern "C" double matCalcLabsLinear(double low, double high, unsigned int labelCount, unsigned int mode,
                                    double* roundedLow, double* roundedHigh) {
    if (low + kShortestAxis >= high) return velquad::kNoValue;
    const unsigned int intervals = (labelCount > 2 ? labelCount : 2) - 1;
    const double length = high - low;
    const double step = roundStep(length / intervals, length, mantissasOf(mode));
    if (step != 0.0) {
        // Kept: a bound that is a multiple of the step already moves outward all the same, except for a positive
        // low and a high that is not positive.
        const double lowSteps = std::trunc(low / step);
        const double highSteps = std::trunc(high / step);
        low = (low > 0.0 ? lowSteps : lowSteps - 1.0) * step;
        high = (high > 0.0 ? highSteps + 1.0 : highSteps) * step;
    }
    if (roundedLow != nullptr) *roundedLow = low;
    if (roundedHigh != nullptr) *roundedHigh = high;
    return step;
}
