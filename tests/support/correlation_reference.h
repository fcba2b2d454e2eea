// Pearson's correlation, literally: pair after pair, each sum in the order of the pairs.
#ifndef VELQUAD_TESTS_SUPPORT_CORRELATION_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_CORRELATION_REFERENCE_H

#include <cmath>
#include <cstdint>
#include <limits>

namespace velquad::test {

struct ReferenceCorrelation {
    double sumX = 0.0;
    double sumXX = 0.0;
    double sumY = 0.0;
    double sumYY = 0.0;
    double sumXY = 0.0;
    std::uint32_t count = 0;

    void addValuePair(double x, double y) {
        count += 1;
        sumX += x;
        sumXX += x * x;
        sumXY += x * y;
        sumY += y;
        sumYY += y * y;
    }

    /// The plain loop over two arrays, with its sums in registers.
    template <class T>
    void addInOrder(const T* xs, const T* ys, int n) {
        double x1 = sumX;
        double x2 = sumXX;
        double y1 = sumY;
        double y2 = sumYY;
        double xy = sumXY;
        for (int i = 0; i < n; ++i) {
            const auto x = static_cast<double>(xs[i]);
            const auto y = static_cast<double>(ys[i]);
            x1 += x;
            x2 += x * x;
            xy += x * y;
            y1 += y;
            y2 += y * y;
        }
        sumX = x1;
        sumXX = x2;
        sumY = y1;
        sumYY = y2;
        sumXY = xy;
        count += static_cast<std::uint32_t>(n);
    }

    /// The plain loop over two arrays of unsigned integers, with integer sums that are rounded at the end.
    template <class T>
    void addAsIntegers(const T* xs, const T* ys, int n) {
        const std::uint64_t limit = std::numeric_limits<T>::max();
        const std::uint64_t most = static_cast<std::uint64_t>(std::int64_t{n}) * limit * limit;
        if (most > 9223372036854775807U) {
            addInOrder(xs, ys, n);
            return;
        }
        std::uint64_t x1 = 0;
        std::uint64_t x2 = 0;
        std::uint64_t y1 = 0;
        std::uint64_t y2 = 0;
        std::uint64_t xy = 0;
        for (int i = 0; i < n; ++i) {
            const std::uint64_t x = xs[i];
            const std::uint64_t y = ys[i];
            x1 += x;
            x2 += x * x;
            xy += x * y;
            y1 += y;
            y2 += y * y;
        }
        sumX += static_cast<double>(x1);
        sumXX += static_cast<double>(x2);
        sumXY += static_cast<double>(xy);
        sumY += static_cast<double>(y1);
        sumYY += static_cast<double>(y2);
        count += static_cast<std::uint32_t>(n);
    }

    double correlation() const {
        if (count == 0) return std::numeric_limits<double>::max();
        const double n = count;
        const double a = ((sumY / n) * sumY) / n;
        const double varianceY = sumYY / n - a;
        const double b = ((sumX / n) * sumX) / n;
        const double varianceX = sumXX / n - b;
        const double p = varianceY * varianceX;
        if (p == 0.0) return 0.0;
        const double covariance = sumXY / n - ((sumX / n) * sumY) / n;
        return covariance / std::sqrt(p);
    }
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_CORRELATION_REFERENCE_H
