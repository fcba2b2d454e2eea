// Running moments, literally: one value after the other, each sum in the order of the values.
#ifndef VELQUAD_TESTS_SUPPORT_MOMENT_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_MOMENT_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace velquad::test {

struct ReferenceMoments {
    static constexpr double kNone = std::numeric_limits<double>::max();

    double sum = 0.0;
    double sumOfSquares = 0.0;
    double min = kNone;
    double max = -kNone;
    std::uint32_t count = 0;

    int addValue(double value) {
        if (value == kNone) return 0;
        if (count == 4294967295U) return 0;
        if (min > value) min = value;
        if (value > max) max = value;
        sum += value;
        count += 1;
        sumOfSquares += value * value;
        return 1;
    }

    /// The plain loop over an array, with its sums in registers.
    template <class T>
    void addValues(const T* values, int n) {
        double runningSum = sum;
        double runningSquares = sumOfSquares;
        double least = min;
        double greatest = max;
        for (int i = 0; i < n; ++i) {
            const auto x = static_cast<double>(values[i]);
            if (least > x) least = x;
            if (x > greatest) greatest = x;
            runningSum += x;
            runningSquares += x * x;
        }
        sum = runningSum;
        sumOfSquares = runningSquares;
        min = least;
        max = greatest;
        count += static_cast<std::uint32_t>(n);
    }

    double getMin() const { return count == 0 ? kNone : min; }
    double getMax() const { return count == 0 ? kNone : max; }
    double getMean() const { return count == 0 ? kNone : sum / count; }
    double getVariance() const {
        if (count == 0) return kNone;
        const double n = count;
        const double m = sum / n;
        const double variance = sumOfSquares / n - m * m;
        if (variance < 0.0) return 0.0;
        return variance;
    }
    double getStdDev() const {
        const double variance = getVariance();
        if (variance == kNone) return kNone;
        return std::sqrt(variance);
    }
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_MOMENT_REFERENCE_H
