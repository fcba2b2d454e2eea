// Plain versions of the resampling functions, step by step.
#ifndef VELQUAD_TESTS_SUPPORT_RESAMPLING_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_RESAMPLING_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "curves/natural_spline.h"

namespace velquad::test {

/// The recursion of Cox and de Boor, every function anew. Exponential in the order.
inline double basisReference(const std::vector<int>& knots, std::size_t i, unsigned int k, double u) {
    const auto t = [&](std::size_t n) { return n < knots.size() ? knots[n] : knots.back(); };
    if (k == 1) return t(i) <= u && u < t(i + 1) ? 1.0 : 0.0;
    if (k == 2) {
        double v = 0.0;
        if (t(i + 1) != t(i) && u >= t(i) && u <= t(i + 1)) v = u - t(i);
        if (t(i + 2) != t(i + 1) && u >= t(i + 1) && u <= t(i + 2)) v += t(i + 2) - u;
        if (u == t(i + 1)) v *= 0.5;
        return v;
    }
    double left = 0.0;
    double right = 0.0;
    if (t(i + k - 1) != t(i)) left = (u - t(i)) / (t(i + k - 1) - t(i)) * basisReference(knots, i, k - 1, u);
    if (t(i + k) != t(i + 1))
        right = (t(i + k) - u) / (t(i + k) - t(i + 1)) * basisReference(knots, i + 1, k - 1, u);
    return left + right;
}

inline std::vector<int> knotsReference(int count, int order) {
    std::vector<int> knots;
    const int last = count - 1;
    for (int i = 0; i <= count + order + 2; ++i)
        knots.push_back(i < order ? 0 : i <= last ? i + 1 - order : last - order + 2);
    return knots;
}

/// `out` has two values at least.
inline void bsplineResampleReference(const std::vector<double>& values, std::vector<double>& out,
                                     int outCount, unsigned int order) {
    const int last = static_cast<int>(values.size()) - 1;
    const int k = static_cast<int>(order);
    const std::vector<int> knots = knotsReference(last + 1, k);
    const double du = static_cast<double>(last - k + 2) / outCount;
    const double dx = static_cast<double>(last) / outCount;
    out[0] = values[0];
    double u = 0.0;
    double x = 0.0;
    for (int j = 1; j <= outCount - 2; ++j) {
        u += du;
        x += dx;
        double sum = 0.0;
        int index = static_cast<int>(x) + k;
        int offset = -k;
        for (int terms = 0; terms < k && index >= 0; --index, ++offset) {
            const double w = basisReference(knots, static_cast<std::size_t>(index), order, u);
            if (w == 0.0) continue;
            if (offset > -10 && index <= last) sum += w * values[static_cast<std::size_t>(index)];
            ++terms;
        }
        out[static_cast<std::size_t>(j)] = sum;
    }
    out[static_cast<std::size_t>(outCount > 2 ? outCount - 1 : 1)] = values.back();
}

/// For three samples or more.
inline void akimaReference(const std::vector<double>& values, std::vector<double>& out, int outCount) {
    const std::size_t n = values.size();
    std::vector<double> d(n + 4), t(n), c2(n), c3(n);
    for (std::size_t i = 2; i <= n; ++i)
        d[i] = values[i - 1] - values[i - 2];
    const double p = d[3] - d[2] + values[0];
    d[1] = values[0] - p;
    d[0] = p - (d[2] - d[1] + p);
    const double q = d[n] + d[n] - d[n - 1] + values[n - 1];
    d[n + 1] = q - values[n - 1];
    d[n + 2] = ((2 * d[n + 1] - d[n]) + q) - q;
    for (std::size_t j = 2; j <= n + 1; ++j) {
        const double a = std::fabs(d[j - 2] - d[j - 1]);
        const double b = std::fabs(d[j] - d[j + 1]);
        t[j - 2] = a < 1e-20 && b < 1e-20 ? (d[j] + d[j - 1]) * 0.5 : (d[j - 1] * a + d[j] * b) / (a + b);
    }
    for (std::size_t i = 0; i + 2 <= n; ++i) {
        c2[i] = 3.0 * d[i + 2] - 2.0 * t[i] - t[i + 1];
        c3[i] = t[i] + t[i + 1] - 2.0 * d[i + 2];
    }
    out[0] = values[0];
    for (int k = 1; k <= outCount - 2; ++k) {
        const double position = k * static_cast<double>(n - 1) / (outCount - 1);
        const auto whole = static_cast<std::size_t>(position);
        const std::size_t i = whole < n - 2 ? whole : n - 2;
        const double f = position - static_cast<double>(whole);
        out[static_cast<std::size_t>(k)] = ((f * c3[i] + c2[i]) * f + t[i]) * f + values[i];
    }
    out[static_cast<std::size_t>(outCount > 2 ? outCount - 1 : 1)] = values[n - 1];
}

/// One row of `matHorzStretchImage`, for pixels up to `maximum`.
template <class Pixel>
std::vector<Pixel> stretchReference(const std::vector<Pixel>& source, std::size_t targetWidth, int maximum) {
    const std::size_t n = source.size();
    std::vector<double> x(n), y(n), a(n), b(n), c(n), d(n);
    for (std::size_t i = 0; i < n; ++i) {
        x[i] = static_cast<double>(i);
        y[i] = source[i];
    }
    curves::cubicSplineNatural(static_cast<curves::Index>(n), x.data(), y.data(), a.data(), b.data(),
                               c.data(), d.data());
    const double scale = static_cast<double>(targetWidth) / static_cast<double>(n);
    std::vector<Pixel> target(targetWidth);
    for (std::size_t o = 0; o < targetWidth; ++o) {
        const double p = static_cast<double>(o) / scale;
        std::size_t i = static_cast<std::size_t>(p);
        if (i > n - 2) i = n - 2;
        const double u = p - x[i];
        long v = std::lround(((d[i] * u + c[i]) * u + b[i]) * u + a[i]);
        if (v < 0) v = 0;
        if (v > maximum) v = maximum;
        target[o] = static_cast<Pixel>(v);
    }
    return target;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_RESAMPLING_REFERENCE_H
