// The range and mean of a curve, and a linear sum over it.
#include "velquad/signal.h"

namespace {

using velquad::kExtentNotSet;

/// Values whose partial sum is divided at once, so that it stays small beside the values.
constexpr unsigned int kMeanBlock = 100;

struct Extent {
    double low = kExtentNotSet;
    double high = -kExtentNotSet;
};

Extent extentOf(const double* values, unsigned int count) {
    Extent extent;
    for (unsigned int i = 0; i < count; ++i) {
        if (values[i] < extent.low) extent.low = values[i];
        if (values[i] > extent.high) extent.high = values[i];
    }
    return extent;
}

double meanOf(const double* values, unsigned int count) {
    double mean = 0.0;
    for (unsigned int begin = 0; begin < count;) {
        const unsigned int rest = count - begin;
        const unsigned int end = begin + (rest < kMeanBlock ? rest : kMeanBlock);
        double block = 0.0;
        for (; begin < end; ++begin)
            block += values[begin];
        mean += block / count;
    }
    return mean;
}

}  // namespace

extern "C" int matGetRange(const double* values, unsigned int count, double* minimum, double* maximum,
                           double* mean) {
    if (values == nullptr || count == 0) return 0;
    // All is computed before anything is stored: a result may be one of the values.
    const double computedMean = mean != nullptr ? meanOf(values, count) : 0.0;
    if (minimum != nullptr || maximum != nullptr) {
        const Extent extent = extentOf(values, count);
        if (minimum != nullptr) *minimum = extent.low;
        if (maximum != nullptr) *maximum = extent.high;
    }
    if (mean != nullptr) *mean = computedMean;
    return 1;
}

extern "C" int matLinearCorrection(const double* values, double* accumulator, unsigned int count,
                                   double slope, double offset) {
    if (values == nullptr || accumulator == nullptr) return 0;
    // Kept: one sum, not a corrected curve.
    double sum = *accumulator;
    for (unsigned int i = 0; i < count; ++i) {
        // The sum may stand among the values, and is then one of them as far as it has got.
        const double value = values + i == accumulator ? sum : values[i];
        sum += slope * value + offset;
    }
    *accumulator = sum;
    return 0;
}
