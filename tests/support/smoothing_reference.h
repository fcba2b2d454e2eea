// Plain versions of the smoothing filters, step by step.
#ifndef VELQUAD_TESTS_SUPPORT_SMOOTHING_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_SMOOTHING_REFERENCE_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace velquad::test {

using Curve = std::vector<double>;

/// Without the absolute value.
inline Curve savitzkyGolayReference(const Curve& in, const std::vector<int>& coefficients, double norm) {
    const int n = static_cast<int>(in.size());
    const int taps = static_cast<int>(coefficients.size());
    const int half = taps / 2;
    Curve out(in.size(), 0.0);
    for (int i = half; i <= n - half - 1; ++i) {
        double acc = 0.0;
        for (int j = 0; j < taps; ++j)
            acc += static_cast<double>(coefficients[static_cast<std::size_t>(j)]) *
                   in[static_cast<std::size_t>(i - half + j)];
        out[static_cast<std::size_t>(i)] = acc / norm;
    }
    for (int k = half - 1; k >= 0; --k)
        out[static_cast<std::size_t>(k)] = out[static_cast<std::size_t>(k + 1)];
    for (int k = n - half; k < n; ++k)
        out[static_cast<std::size_t>(k)] = out[static_cast<std::size_t>(k - 1)];
    return out;
}

inline Curve meanValueReference(const Curve& in, int window) {
    const int n = static_cast<int>(in.size());
    Curve out(in.size());
    for (int i = 0; i < n; ++i) {
        const int low = std::max(i - window / 2, 0);
        const int high = std::min(i - window / 2 + window, n);
        double sum = 0.0;
        for (int k = low; k < high; ++k)
            sum += in[static_cast<std::size_t>(k)];
        out[static_cast<std::size_t>(i)] = low < high ? sum / (high - low) : in[static_cast<std::size_t>(i)];
    }
    return out;
}

/// For finite data of two values or more.
class MeanEnvelopeReference {
  public:
    static Curve run(Curve in, unsigned int rounds, unsigned int gap) {
        Curve current(in.size());
        pass(in, current, gap);
        for (unsigned int round = 1; round < rounds; ++round) {
            Curve other(in.size());
            pass(current, other, gap);
            current.swap(other);
        }
        return current;
    }

  private:
    using List = std::vector<std::size_t>;

    static void findExtrema(const Curve& data, List& minima, List& maxima) {
        const std::size_t n = data.size();
        if (data[1] >= data[0]) minima.push_back(0);
        if (data[0] >= data[1]) maxima.push_back(0);
        double a = data[0], b = data[1], c = data[1];
        for (std::size_t k = 0; k <= n - 2; ++k) {
            if (a >= b && c >= b) minima.push_back(k);
            if (b >= a && b >= c) maxima.push_back(k);
            a = b;
            b = c;
            if (k + 2 < n) c = data[k + 2];
        }
        if (a >= b) minima.push_back(n - 1);
        if (b >= a) maxima.push_back(n - 1);
    }

    static void oneWay(const Curve& data, Curve& result, unsigned int gap) {
        const std::size_t n = data.size();
        List minima, maxima;
        findExtrema(data, minima, maxima);
        std::size_t low = 0, high = 0, start = 0, e = 0;
        double value = data[0];
        bool isLast = false;
        while (true) {
            const List* other = &maxima;
            std::size_t otherCursor = high;
            const bool isTie = minima[low] == maxima[high];
            const bool isMaximum = maxima[high] < minima[low];
            e = isMaximum ? maxima[high] : minima[low];
            if (isMaximum) {
                other = &minima;
                otherCursor = low;
            }
            const std::size_t opposite = (*other)[otherCursor];
            const std::size_t before = otherCursor == 0 ? 0 : (*other)[otherCursor - 1];
            if ((isMaximum || isTie) && high + 1 < maxima.size()) ++high;
            if ((!isMaximum || isTie) && low + 1 < minima.size()) ++low;
            const std::size_t d = e - start;
            if (d == 0) {
                value = data[e];
                result[e] = value;
            } else if (d > gap) {
                const double target = data[e];
                if (data[start] != result[start]) {
                    double s = (result[start] - target) / (data[start] - target);
                    const double step = (s - 1.0) / static_cast<double>(d);
                    for (std::size_t i = start; i <= e; ++i) {
                        result[i] = (data[i] - target) * s + target;
                        s -= step;
                    }
                } else {
                    for (std::size_t i = start + 1; i <= e; ++i)
                        result[i] = data[i];
                }
                value = target;
            } else {
                const double chord = (data[opposite] - data[before]) /
                                         static_cast<double>(opposite - before) *
                                         static_cast<double>(e - before) +
                                     data[before];
                const double target = (chord + data[e]) * 0.5;
                const double slope = (target - value) / static_cast<double>(d);
                for (std::size_t i = start; i <= e; ++i) {
                    result[i] = value;
                    value += slope;
                }
                value = target;
            }
            start = e;
            if (isLast) break;
            isLast = low + 1 == minima.size() && high + 1 == maxima.size();
        }
        if (e != n - 1) {
            const double slope = (data[n - 1] - data[e]) / static_cast<double>(n - e - 1);
            for (std::size_t i = e + 1; i < n; ++i) {
                value += slope;
                result[i] = value;
            }
        }
    }

    static void pass(Curve& source, Curve& target, unsigned int gap) {
        const std::size_t n = source.size();
        oneWay(source, target, gap);
        const Curve scratch(source.rbegin(), source.rend());
        oneWay(scratch, source, gap);
        for (std::size_t k = 0; k < n; ++k)
            target[k] = (target[k] + source[n - 1 - k]) * 0.5;
        source.assign(scratch.rbegin(), scratch.rend());
    }
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_SMOOTHING_REFERENCE_H
