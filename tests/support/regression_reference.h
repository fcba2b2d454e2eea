// Slow, plain versions of the line fits, for randomised comparison bit by bit.
#ifndef VELQUAD_TESTS_SUPPORT_REGRESSION_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_REGRESSION_REFERENCE_H

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace velquad::test {

struct ReferenceLine {
    bool exists = false;
    double slope = 0.0;
    double intercept = 0.0;
    int yOfX = 0;
};

/// Number the same bits, but every not-a-number as the same.
inline std::uint64_t comparable(double value) {
    return value != value ? 0x7FF8000000000000U : std::bit_cast<std::uint64_t>(value);
}

/// Least squares over the axis of greater variance.
inline ReferenceLine referenceRegression(const std::vector<double>& x, const std::vector<double>& y) {
    const auto n = static_cast<double>(x.size());
    double sx = 0.0, sy = 0.0, sxx = 0.0, syy = 0.0, sxy = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        sx += x[i];
        sy += y[i];
        sxx += x[i] * x[i];
        syy += y[i] * y[i];
        sxy += x[i] * y[i];
    }
    ReferenceLine line;
    if (x.size() < 2) return line;
    const double varX = sxx / n - (sx / n) * (sx / n);
    const double varY = syy / n - (sy / n) * (sy / n);
    if (varX > varY) {
        const double d = n * sxx - sx * sx;
        if (1e-100 > std::fabs(d)) return line;
        line = {true, (n * sxy - sy * sx) / d, (sxx * sy - sxy * sx) / d, 1};
    } else {
        const double d = n * syy - sy * sy;
        if (1e-100 > std::fabs(d)) return line;
        line = {true, (n * sxy - sy * sx) / d, (syy * sx - sxy * sy) / d, 0};
    }
    return line;
}

/// Selection in work[1] to work[n] by partitioning around medians of three.
inline double referenceSelect(std::vector<double>& work, std::size_t k, std::size_t n) {
    std::size_t l = 1;
    std::size_t r = n;
    while (r > l + 1) {
        std::swap(work[(l + r) / 2], work[l + 1]);
        if (work[l] > work[r]) std::swap(work[l], work[r]);
        if (work[l + 1] > work[r]) std::swap(work[l + 1], work[r]);
        if (work[l] > work[l + 1]) std::swap(work[l], work[l + 1]);
        std::size_t i = l + 1;
        std::size_t j = r;
        const double pivot = work[l + 1];
        while (true) {
            ++i;
            while (work[i] < pivot)
                ++i;
            --j;
            while (work[j] > pivot)
                --j;
            if (j < i) break;
            std::swap(work[i], work[j]);
        }
        work[l + 1] = work[j];
        work[j] = pivot;
        if (j >= k) r = j - 1;
        if (j <= k) l = i;
    }
    if (r == l + 1 && work[r] < work[l]) std::swap(work[r], work[l]);
    return work[k];
}

struct ReferenceBalance {
    double f;
    double median;
    double absoluteSum;
};

/// x and y are read from index 1 on.
inline ReferenceBalance referenceBalance(const std::vector<double>& x, const std::vector<double>& y,
                                         double b) {
    const std::size_t n = x.size() - 1;
    std::vector<double> work(n + 1, 0.0);
    for (std::size_t j = 1; j <= n; ++j)
        work[j] = y[j] - b * x[j];
    double a = 0.0;
    if (n % 2 == 1) {
        a = referenceSelect(work, (n + 1) / 2, n);
    } else {
        const double upper = referenceSelect(work, n / 2 + 1, n);
        const double lower = referenceSelect(work, n / 2, n);
        a = 0.5 * (upper + lower);
    }
    double f = 0.0;
    double s = 0.0;
    for (std::size_t j = 1; j <= n; ++j) {
        double d = y[j] - (b * x[j] + a);
        s += std::fabs(d);
        if (y[j] != 0.0) d /= std::fabs(y[j]);
        if (std::fabs(d) > 1e-7) {
            if (d >= 0.0)
                f += x[j];
            else
                f -= x[j];
        }
    }
    return {f, a, s};
}

/// Least absolute deviations, following the published method step by step. `trials`, when not null, gets how many
/// slopes were tried.
inline ReferenceLine referenceRobust(const std::vector<double>& xs, const std::vector<double>& ys,
                                     int* trials = nullptr) {
    ReferenceLine line = referenceRegression(xs, ys);
    if (!line.exists) return line;
    const std::vector<double>& first = line.yOfX != 0 ? xs : ys;
    const std::vector<double>& second = line.yOfX != 0 ? ys : xs;
    std::vector<double> x(xs.size() + 1, 0.0);
    std::vector<double> y(xs.size() + 1, 0.0);
    std::copy(first.begin(), first.end(), x.begin() + 1);
    std::copy(second.begin(), second.end(), y.begin() + 1);

    const auto n = static_cast<double>(xs.size());
    double sx = 0.0, sy = 0.0, sxy = 0.0, sxx = 0.0;
    for (std::size_t j = 1; j < x.size(); ++j) {
        sx += x[j];
        sy += y[j];
        sxy += x[j] * y[j];
        sxx += x[j] * x[j];
    }
    const double d = n * sxx - sx * sx;
    line.exists = false;
    line.slope = line.intercept = 1.7976931348623157e308;
    if (2.220446049250313e-16 > d) return line;
    const double a0 = (sxx * sy - sxy * sx) / d;
    const double b0 = (n * sxy - sx * sy) / d;
    double chi = 0.0;
    for (std::size_t j = 1; j < x.size(); ++j) {
        const double residual = y[j] - (b0 * x[j] + a0);
        chi += residual * residual;
    }
    const double sigma = std::sqrt(chi / d);

    int tried = 0;
    double median = 0.0;
    const auto balance = [&](double b) {
        const ReferenceBalance result = referenceBalance(x, y, b);
        median = result.median;
        ++tried;
        return result.f;
    };
    const auto finish = [&](double slope) {
        if (trials != nullptr) *trials = tried;
        return ReferenceLine{true, slope, median, line.yOfX};
    };
    double b1 = b0;
    double f1 = balance(b1);
    double b2 = f1 > 0.0 ? b0 + std::fabs(3.0 * sigma) : b0 - std::fabs(3.0 * sigma);
    double f2 = balance(b2);
    if (b2 == b1) return finish(b0);
    double current = b0;
    while (f1 * f2 > 0.0) {
        const double b = b2 + 1.6 * (b2 - b1);
        b1 = b2;
        f1 = f2;
        b2 = b;
        f2 = balance(b2);
        current = b2;
    }
    const double t = 0.01 * sigma;
    if (!(std::fabs(b2 - b1) > t)) return finish(current);
    double b = 0.0;
    do {
        b = (b2 - b1) * 0.5 + b1;
        if (b == b1 || b == b2) break;
        const double f = balance(b);
        if (f * f1 >= 0.0) {
            f1 = f;
            b1 = b;
        } else {
            b2 = b;
        }
    } while (std::fabs(b2 - b1) > t);
    return finish(b);
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_REGRESSION_REFERENCE_H
