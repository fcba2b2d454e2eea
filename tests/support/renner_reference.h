// The Renner subspline without any economy: every unit chord and every sine is computed where it is needed, and
// corners are rounded by inserting into ordinary containers. Bit for bit what the library computes.
#ifndef VELQUAD_TESTS_SUPPORT_RENNER_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_RENNER_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <vector>

#include "tests/support/matrix.h"

namespace velquad::test {

struct ReferenceRenner {
    using Vec = std::vector<double>;

    Rows P, b, c, d;
    Vec len;
    int code = 0;

    ReferenceRenner(const Rows& points, std::size_t capacity, double beta) : P(points), capacity_(capacity) {
        run(beta);
    }

  private:
    static constexpr double kZero = 2.220446049250313e-16;
    std::size_t capacity_;
    std::vector<Vec> chords_;  // chord k stands at k + 2

    Vec& s(long k) { return chords_[static_cast<std::size_t>(k + 2)]; }
    Vec& p(long k) { return P[static_cast<std::size_t>(k)]; }

    static Vec minus(const Vec& u, const Vec& v) {
        Vec out(u.size());
        for (std::size_t j = 0; j < u.size(); ++j)
            out[j] = u[j] - v[j];
        return out;
    }
    static double dot(const Vec& u, const Vec& v) {
        double sum = 0.0;
        for (std::size_t j = 0; j < u.size(); ++j)
            sum += u[j] * v[j];
        return sum;
    }
    static bool isZero(const Vec& v) {
        for (double x : v) {
            if (std::fabs(x) >= kZero) return false;
        }
        return true;
    }
    static Vec unit(Vec v) {
        const double length = std::sqrt(dot(v, v));
        if (length < kZero) return v;
        for (double& x : v)
            x /= length;
        return v;
    }
    /// The sine of the turn from chord k to chord k + 1.
    double turn(long k) {
        const Vec u = unit(s(k));
        const Vec v = unit(s(k + 1));
        if (u.size() == 2) return std::fabs(v[1] * u[0] - u[1] * v[0]);
        const double q = 1.0 - dot(u, v) * dot(u, v);
        return q < 0.0 ? 0.0 : std::sqrt(q);
    }

    bool round(long i, double beta) {
        if (P.size() - 1 == capacity_) return false;
        P.insert(P.begin() + i, Vec(p(i)));
        chords_.insert(chords_.begin() + i + 2, Vec());
        const Vec left = minus(p(i), p(i - 1));
        const Vec right = minus(p(i + 2), p(i + 1));
        const double leftLength = std::sqrt(dot(left, left));
        const double rightLength = std::sqrt(dot(right, right));
        const double r = (leftLength < rightLength ? leftLength : rightLength) * beta;
        for (std::size_t j = 0; j < left.size(); ++j) {
            p(i)[j] -= left[j] * (r / leftLength);
            p(i + 1)[j] += right[j] * (r / rightLength);
        }
        for (long k = i - 1; k <= i + 1; ++k)
            s(k) = minus(p(k + 1), p(k));
        return true;
    }

    void extend(bool isClosed) {
        const long m = static_cast<long>(P.size()) - 1;
        if (isClosed) {
            s(-2) = s(m - 2), s(-1) = s(m - 1), s(m) = s(0), s(m + 1) = s(1);
            return;
        }
        const auto mix = [](double f, const Vec& u, double g, const Vec& v) {
            Vec out(u.size());
            for (std::size_t j = 0; j < u.size(); ++j)
                out[j] = f * u[j] - g * v[j];
            return out;
        };
        s(-2) = mix(3, s(0), 2, s(1)), s(-1) = mix(2, s(0), 1, s(1));
        s(m) = mix(2, s(m - 1), 1, s(m - 2)), s(m + 1) = mix(3, s(m - 1), 2, s(m - 2));
    }

    void run(double beta) {
        if (P.size() < 5) return void(code = 1);
        if (P[0].size() != 2 && P[0].size() != 3) return void(code = 5);
        chords_.resize(P.size() + 3);
        for (long i = 0; i + 1 < static_cast<long>(P.size()); ++i) {
            s(i) = minus(p(i + 1), p(i));
            if (isZero(s(i))) return void(code = 2);
        }
        const bool isClosed = isZero(minus(P.front(), P.back()));
        extend(isClosed);
        const bool isRounding = beta > 0 && beta < 1;
        if (isRounding && isClosed && turn(-2) + turn(0) < kZero && turn(-1) >= kZero) {
            P.erase(P.begin());
            P.push_back(P.front());
            chords_.erase(chords_.begin());
            chords_.push_back(s(1));
        }
        std::vector<Vec> arriving;
        const long margin = isClosed ? 1 : 2;
        for (long i = 0; i < static_cast<long>(P.size()); ++i) {
            const long m = static_cast<long>(P.size()) - 1;
            const double left = turn(i - 2);
            const double right = turn(i);
            if (right + left < kZero) {
                // The last corner that may be rounded keeps its distance from the end while the end moves.
                if (isRounding && i >= margin && i <= m - margin && turn(i - 1) >= kZero) {
                    if (!round(i, beta)) return void(code = 4);
                    --i;
                    continue;
                }
                arriving.push_back(unit(s(i - 1)));
                b.push_back(unit(s(i)));
            } else {
                const double w = left / (right + left);
                Vec a(P[0].size());
                for (std::size_t j = 0; j < a.size(); ++j)
                    a[j] = (s(i)[j] - s(i - 1)[j]) * w + s(i - 1)[j];
                arriving.push_back(unit(a));
                b.push_back(unit(a));
            }
        }
        for (std::size_t i = 0; i + 1 < P.size(); ++i)
            addCubic(i, arriving[i + 1]);
        b.resize(P.size() - 1);
    }

    void addCubic(std::size_t i, const Vec& end) {
        const Vec& chord = s(static_cast<long>(i));
        Vec a(end.size()), ci(end.size()), di(end.size());
        for (std::size_t j = 0; j < a.size(); ++j)
            a[j] = b[i][j] + end[j];
        const double A = dot(a, a);
        const double B = 6.0 * dot(chord, a);
        const double C = 36.0 * dot(chord, chord) * (16.0 - A);
        const double L = (std::sqrt(B * B + C) - B) / (16.0 - A);
        for (std::size_t j = 0; j < a.size(); ++j) {
            ci[j] = (3.0 * chord[j] / L - 2.0 * b[i][j] - end[j]) / L;
            di[j] = (a[j] - 2.0 * chord[j] / L) / (L * L);
        }
        c.push_back(ci);
        d.push_back(di);
        len.push_back(L);
    }
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_RENNER_REFERENCE_H
