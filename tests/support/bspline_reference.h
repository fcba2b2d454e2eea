// B-spline curves by the recursion of the basis functions (M. G. Cox, 1972; C. de Boor, 1972), independent of the
// evaluation under test.
#ifndef VELQUAD_TESTS_SUPPORT_BSPLINE_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_BSPLINE_REFERENCE_H

#include <vector>

#include "tests/support/matrix.h"

namespace velquad::test {

/// The uniform B-spline of an order over `points`, clamped when open, periodic when closed.
class ReferenceBspline {
  public:
    ReferenceBspline(Rows points, int order, bool isOpen)
        : points_(std::move(points)), order_(order), isOpen_(isOpen) {}

    /// The point at `t` as the polynomial of the interval [interval, interval + 1] gives it.
    std::vector<double> at(double t, int interval) const {
        const int n = static_cast<int>(points_.size());
        std::vector<double> sum(points_[0].size(), 0.0);
        for (int j = interval - order_ + 1; j <= interval; ++j) {
            const double weight = basis(j, order_, t, interval);
            const auto& point = points_[static_cast<std::size_t>(j % n)];
            for (std::size_t x = 0; x < sum.size(); ++x)
                sum[x] += weight * point[x];
        }
        return sum;
    }

  private:
    double knot(int j) const {
        if (!isOpen_) return j;
        const int n = static_cast<int>(points_.size());
        return j < order_ ? order_ - 1 : (j < n ? j : n);
    }

    double basis(int j, int k, double t, int interval) const {
        if (k == 1) return j == interval ? 1.0 : 0.0;
        double value = 0.0;
        const double rising = knot(j + k - 1) - knot(j);
        if (rising > 0.0) value += (t - knot(j)) / rising * basis(j, k - 1, t, interval);
        const double falling = knot(j + k) - knot(j + 1);
        if (falling > 0.0) value += (knot(j + k) - t) / falling * basis(j + 1, k - 1, t, interval);
        return value;
    }

    Rows points_;
    int order_;
    bool isOpen_;
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_BSPLINE_REFERENCE_H
