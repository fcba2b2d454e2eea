// Smoothing by a B-spline whose control points are the samples.
//
// M. G. Cox, "The numerical evaluation of B-splines", IMA Journal of Applied Mathematics 10 (1972); C. de Boor, "On
// calculating with B-splines", Journal of Approximation Theory 6 (1972).
//
// Per output, only the basis functions that are not zero are formed, all of one order from those of the order below,
// in place. Their values are those of the plain recursion to the last bit.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "velquad/curves.h"

namespace {

using Index = std::int64_t;

/// Terms before this offset from the last possible control point are counted, but not summed.
constexpr Index kFirstSummedOffset = -9;

/// The open uniform knot vector: `order` zeros, then whole numbers, then the last of them for ever.
class Knots {
  public:
    Knots(Index count, Index order) : last_(count - 1), order_(order) {}

    Index operator[](Index i) const {
        if (i < order_) return 0;
        return i <= last_ ? i + 1 - order_ : end();
    }

    /// The parameter at which the curve ends; 0 or below when there are fewer samples than the order.
    Index end() const { return last_ - order_ + 2; }

  private:
    Index last_;
    Index order_;
};

/// The basis functions of one order that are not zero at a parameter. All others are.
class Basis {
  public:
    Basis(const Knots& knots, Index order)
        : knots_(knots), order_(order), values_(static_cast<std::size_t>(order) + 2) {}

    /// Forms the functions of the full order.
    void evaluate(double u) {
        const auto whole = static_cast<Index>(u);
        if (order_ == 1) {
            first_ = last_ = whole;
            values_[0] = stepAt(whole, u);
            return;
        }
        // The supports, ends included, of the functions of order 2 that may be met by u.
        last_ = whole + order_ - 1;
        first_ = std::max<Index>(last_ - 2, 0);
        const Index lowest = std::max<Index>(last_ - order_, 0);
        base_ = lowest;
        for (Index i = first_; i <= last_; ++i)
            at(i) = hatAt(i, u);
        for (Index k = 3; k <= order_; ++k)
            raise(k, u, lowest);
    }

    Index first() const { return first_; }
    Index last() const { return last_; }
    double operator[](Index i) const {
        return values_[static_cast<std::size_t>(i - (order_ == 1 ? first_ : base_))];
    }

  private:
    double& at(Index i) { return values_[static_cast<std::size_t>(i - base_)]; }

    double stepAt(Index i, double u) const {
        return static_cast<double>(knots_[i]) <= u && u < static_cast<double>(knots_[i + 1]) ? 1.0 : 0.0;
    }

    /// Kept: the slopes are 1, whatever the distance of the knots.
    double hatAt(Index i, double u) const {
        const auto t0 = static_cast<double>(knots_[i]);
        const auto t1 = static_cast<double>(knots_[i + 1]);
        const auto t2 = static_cast<double>(knots_[i + 2]);
        double value = 0.0;
        if (t1 != t0 && u >= t0 && u <= t1) value = u - t0;
        if (t2 != t1 && u >= t1 && u <= t2) value += t2 - u;
        return u == t1 ? value * 0.5 : value;
    }

    /// Goes from order k - 1 to order k.
    void raise(Index k, double u, Index lowest) {
        if (first_ > lowest) at(--first_) = 0.0;
        for (Index i = first_; i <= last_; ++i) {
            const Index t0 = knots_[i];
            const Index t1 = knots_[i + 1];
            const Index rising = knots_[i + k - 1] - t0;
            const Index falling = knots_[i + k] - t1;
            const double above = i < last_ ? at(i + 1) : 0.0;
            const double left =
                rising != 0 ? (u - static_cast<double>(t0)) / static_cast<double>(rising) * at(i) : 0.0;
            const double right =
                falling != 0 ? (static_cast<double>(knots_[i + k]) - u) / static_cast<double>(falling) * above
                             : 0.0;
            at(i) = left + right;
        }
    }

    const Knots& knots_;
    Index order_;
    std::vector<double> values_;
    Index base_ = 0;
    Index first_ = 0;
    Index last_ = 0;
};

/// Sums the control points by their basis functions, from the highest index `top` downwards.
double sumTerms(const Basis& basis, const double* values, Index count, Index order, Index top) {
    double sum = 0.0;
    Index terms = 0;
    for (Index i = std::min(top, basis.last()); i >= basis.first() && terms < order; --i) {
        const double weight = basis[i];
        if (weight == 0.0) continue;
        const Index offset = top - i - order;
        if (offset >= kFirstSummedOffset && i < count) sum += weight * values[i];
        ++terms;
    }
    return sum;
}

/// Two neighbouring outputs, computed side by side.
typedef double Pair __attribute__((vector_size(16)));

constexpr Pair both(double value) {
    return Pair{value, value};
}

/// The sums at two places whose functions stand on distinct knots, `whole` the last of those below each.
/// @param first, second  the control points of these functions.
template <int Order>
Pair sumInside(Pair u, Pair whole, const double* first, const double* second) {
    Pair basis[static_cast<std::size_t>(Order)] = {};
    basis[Order - 2] = whole + 1.0 - u;
    basis[Order - 1] = u - whole;
    for (int k = 3; k <= Order; ++k) {
        for (int i = Order - k; i < Order; ++i) {
            const Pair knot = whole - both(Order - 1 - i);
            const Pair left = i > Order - k ? (u - knot) / both(k - 1) * basis[i] : both(0.0);
            const Pair right = i < Order - 1 ? (knot + both(k) - u) / both(k - 1) * basis[i + 1] : both(0.0);
            basis[i] = left + right;
        }
    }
    Pair sum = both(0.0);
    for (int i = Order - 1; i >= 0; --i) {
        const Pair term = basis[i] * Pair{first[i], second[i]};
        sum += basis[i] == both(0.0) ? both(0.0) : term;
    }
    return sum;
}

using SumInside = Pair (*)(Pair u, Pair whole, const double* first, const double* second);

/// The orders in use. Others, and places near the ends, go the general way.
SumInside sumInsideOf(Index order) {
    switch (order) {
        case 3:
            return sumInside<3>;
        case 4:
            return sumInside<4>;
        case 5:
            return sumInside<5>;
        default:
            return nullptr;
    }
}

class Resampler {
  public:
    Resampler(const Knots& knots, const double* values, Index count, Index order)
        : values_(values),
          count_(count),
          order_(order),
          end_(knots.end()),
          sumInside_(sumInsideOf(order)),
          basis_(knots, order) {}

    /// Forms the inner values, those between the first one and `last`.
    void sample(double* out, int outCount, int last) {
        const double du = static_cast<double>(end_) / outCount;
        const double dx = static_cast<double>(count_ - 1) / outCount;
        Place place{0.0, 0.0};
        for (int j = 1; j < last; ++j) {
            place = {place.u + du, place.x + dx};
            const Place next{place.u + du, place.x + dx};
            if (j + 1 < last && isInside(place) && isInside(next)) {
                const auto whole = static_cast<Index>(place.u);
                const auto nextWhole = static_cast<Index>(next.u);
                const Pair sums = sumInside_(Pair{place.u, next.u},
                                             Pair{static_cast<double>(whole), static_cast<double>(nextWhole)},
                                             values_ + whole, values_ + nextWhole);
                out[j] = sums[0];
                out[++j] = sums[1];
                place = next;
            } else {
                out[j] = sumAt(place);
            }
        }
    }

  private:
    struct Place {
        double u;  ///< Among the knots.
        double x;  ///< Among the samples.
    };

    Index highestTerm(const Place& place) const { return static_cast<Index>(place.x) + order_; }

    bool isInside(const Place& place) const {
        const auto whole = static_cast<Index>(place.u);
        return sumInside_ != nullptr && whole >= order_ && whole < end_ - order_ &&
               whole + order_ - 1 <= highestTerm(place);
    }

    double sumAt(const Place& place) {
        basis_.evaluate(place.u);
        return sumTerms(basis_, values_, count_, order_, highestTerm(place));
    }

    const double* values_;
    Index count_;
    Index order_;
    Index end_;
    SumInside sumInside_;
    Basis basis_;
};

}  // namespace

extern "C" int matBSpline(const double* values, unsigned int count, double* out, int outCount,
                          unsigned int order) {
    if (values == nullptr || out == nullptr || count == 0 || outCount == 0 || order == 0)
        return velquad::kSignalBadArgument;
    const Knots knots(count, order);
    const int last = outCount > 2 ? outCount - 1 : 1;
    out[0] = values[0];
    if (knots.end() <= 0) {
        // No parameter lies between two knots.
        for (int j = 1; j < last; ++j)
            out[j] = 0.0;
    } else {
        Resampler(knots, values, count, order).sample(out, outCount, last);
    }
    out[last] = values[count - 1];
    return velquad::kSignalOk;
}
