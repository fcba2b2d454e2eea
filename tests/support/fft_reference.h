// Plain versions of the transforms, loop by loop.
#ifndef VELQUAD_TESTS_SUPPORT_FFT_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_FFT_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace velquad::test {

using Doubles = std::vector<double>;

inline void butterflyReference(Doubles& re, Doubles& im, const Doubles& cosTable, const Doubles& sinTable) {
    const std::size_t n = re.size();
    std::size_t j = 0;
    for (std::size_t i = 0; i + 1 < n; ++i) {
        if (i < j) {
            std::swap(re[i], re[j]);
            std::swap(im[i], im[j]);
        }
        std::size_t k = n / 2;
        while (k <= j) {
            j -= k;
            k /= 2;
        }
        j += k;
    }
    std::size_t stride = n / 2;
    for (std::size_t half = 1, span = 2; half < n; half *= 2, span *= 2, stride /= 2) {
        for (std::size_t p = 0; p < n; p += span) {
            const double a = re[p + half];
            const double b = im[p + half];
            re[p + half] = re[p] - a;
            im[p + half] = im[p] - b;
            re[p] += a;
            im[p] += b;
        }
        for (std::size_t k = 1; k < half; ++k) {
            const double c = cosTable[k * stride];
            const double s = sinTable[k * stride];
            for (std::size_t i = k; i < n; i += span) {
                const std::size_t m = i + half;
                const double tr = re[m] * c - s * im[m];
                const double ti = s * re[m] + im[m] * c;
                re[m] = re[i] - tr;
                im[m] = im[i] - ti;
                re[i] += tr;
                im[i] += ti;
            }
        }
    }
}

inline void coreReference(Doubles& re, Doubles& im, bool isForward) {
    const std::size_t n = re.size();
    const double w = 6.28318530718 / static_cast<double>(n);
    Doubles cosTable(n), sinTable(n);
    for (std::size_t k = 0; k < n; ++k) {
        cosTable[k] = std::cos(static_cast<double>(k) * w);
        sinTable[k] =
            isForward ? -std::sin(static_cast<double>(k) * w) : std::sin(static_cast<double>(k) * w);
    }
    butterflyReference(re, im, cosTable, sinTable);
}

inline void fftReference(const Doubles& in, Doubles& re, Doubles& im) {
    re = in;
    im.assign(in.size(), 0.0);
    for (std::size_t k = 1; k < in.size(); k += 2)
        re[k] = -re[k];
    coreReference(re, im, true);
}

inline Doubles inverseReference(Doubles re, Doubles im) {
    const auto n = static_cast<double>(re.size());
    for (double& v : re)
        v /= n;
    for (double& v : im)
        v /= n;
    coreReference(re, im, false);
    for (std::size_t k = 1; k < re.size(); k += 2)
        re[k] = -re[k];
    return re;
}

/// The series method, without a way to end it.
inline Doubles seriesReference(const Doubles& data, std::size_t start, std::size_t end, unsigned int order) {
    const std::size_t taper = end - start;
    const std::size_t span = data.size() - start;
    Doubles first(span), result(span);
    double total = 0.0;
    for (std::size_t i = 0; i < end; ++i)
        total += data[i];
    for (std::size_t i = 0; i < taper; ++i)
        first[i] = (1.0 - std::cos(static_cast<double>(i) * 3.14159265359 / static_cast<double>(taper))) *
                   data[end] * 0.5;
    first[0] = total;
    for (std::size_t i = taper; i < span; ++i)
        first[i] = data[i + start];
    double sum = 0.0;
    for (std::size_t i = 0; i < span; ++i)
        sum += data[i];
    for (double& v : first)
        v = v / sum;
    first[0] -= 1.0;
    Doubles power = first;
    result = first;
    result[0] += 1.0;
    for (unsigned int k = 2; k <= order; ++k) {
        Doubles work(span);
        for (std::size_t i = 0; i < span; ++i) {
            double acc = 0.0;
            for (std::size_t j = 0; j <= i; ++j)
                acc += first[i - j] * power[j];
            work[i] = acc;
        }
        power = work;
        double c = 1.0 / k;
        if (k % 2 == 0) c = -c;
        for (std::size_t i = 0; i < span; ++i)
            result[i] += c * power[i];
    }
    result[0] += 1.0;
    for (double& v : result)
        v *= sum;
    result[0] = 0.0;
    return result;
}

/// The transform of the logarithm method: the published routine, one-based and interleaved by two.
inline void danielsonLanczosReference(Doubles& re, Doubles& im, double sign) {
    const std::size_t size = re.size();
    std::size_t j = 0;
    for (std::size_t i = 0; i < 2 * size; i += 2) {
        if (i < j) {
            std::swap(re[i / 2], re[j / 2]);
            std::swap(im[i / 2], im[j / 2]);
        }
        std::size_t m = size;
        while (m >= 2 && j >= m) {
            j -= m;
            m /= 2;
        }
        j += m;
    }
    for (std::size_t stage = 2; stage < 2 * size; stage *= 2) {
        const double half = std::sin(sign * 3.14159265359 / static_cast<double>(stage));
        const double full = std::sin(2 * sign * 3.14159265359 / static_cast<double>(stage));
        const double decay = -2.0 * half * half;
        double wr = 1.0, wi = 0.0;
        for (std::size_t m = 1; m < stage; m += 2) {
            for (std::size_t i = m; i <= 2 * size; i += 2 * stage) {
                const std::size_t a = i / 2;
                const std::size_t b = (i + stage) / 2;
                const double tr = re[b] * wr - im[b] * wi;
                const double ti = im[b] * wr + re[b] * wi;
                re[b] = re[a] - tr;
                im[b] = im[a] - ti;
                re[a] += tr;
                im[a] += ti;
            }
            const double old = wr;
            wr = wr + (wr * decay - wi * full);
            wi = wi + (wi * decay + old * full);
        }
    }
}

/// @param upJumps, downJumps  receive how often the phase was found to jump in either direction; may be null.
inline Doubles logarithmReference(const Doubles& data, std::size_t start, std::size_t end, double scale,
                                  int* upJumps = nullptr, int* downJumps = nullptr) {
    const double pi = 3.14159265359;
    const std::size_t count = data.size();
    const std::size_t taper = end - start;
    const std::size_t span = count - start;
    const int e = static_cast<int>(std::log(static_cast<double>(count)) / std::log(2.0));
    auto size = static_cast<std::size_t>(std::ldexp(1.0, e) + 0.5);
    if (size < count) size *= 2;
    Doubles re(size), im(size);
    double total = 0.0;
    for (std::size_t i = 0; i < end; ++i)
        total += data[i];
    total *= scale;
    for (std::size_t i = 0; i < taper; ++i)
        re[i] = (1.0 - std::cos(static_cast<double>(i) * pi / static_cast<double>(taper))) * data[end] * 0.5;
    for (std::size_t i = taper; i < span; ++i)
        re[i] = data[i + start];
    double upper = 0.0, lower = 0.0;
    for (std::size_t i = span - 5; i < span; ++i)
        upper += re[i];
    for (std::size_t i = span - 10; i < span - 5; ++i)
        lower += re[i];
    const double power =
        2 * std::log(lower / upper) / std::log(static_cast<double>(span) / static_cast<double>(span - 10));
    const double level = data[span - 1];
    const double begin = static_cast<double>(2 * span + 1);
    const double floor = std::pow(begin / static_cast<double>(2 * size), power) * level;
    for (std::size_t i = span; i < size; ++i)
        re[i] = std::pow(begin / static_cast<double>(2 * i), power) * level - floor;
    re[0] = total;
    danielsonLanczosReference(re, im, 1.0);
    double previous = 0.0;
    int jumps = 0;
    for (std::size_t k = 0; k < size; ++k) {
        const double phase = std::atan(im[k] / re[k]);
        const double step = phase - previous;
        previous = phase;
        if (step > 1.570796326795) {
            jumps += 1;
            if (upJumps != nullptr) ++*upJumps;
        } else if (-1.570796326795 >= step) {
            jumps -= 1;
            if (downJumps != nullptr) ++*downJumps;
        }
        re[k] = std::log(std::hypot(im[k], re[k]) / total) * total / static_cast<double>(size);
        im[k] = (phase - jumps * pi) * total / static_cast<double>(size);
    }
    danielsonLanczosReference(re, im, -1.0);
    Doubles result(span);
    for (std::size_t i = 0; i < span; ++i)
        result[i] = std::hypot(im[i], re[i]);
    return result;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_FFT_REFERENCE_H
