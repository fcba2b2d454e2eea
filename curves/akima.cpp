// Resampling by Akima's local cubics.
//
// H. Akima, "A new method of interpolation and smooth curve fitting based on local procedures", Journal of the ACM
// 17 (1970).
#include <cmath>
#include <cstddef>

#include "frame/working_block.h"
#include "velquad/curves.h"

namespace {

using velquad::frame::WorkingBlock;

/// Differences on both sides that change by less than this count as equal.
constexpr double kEqualDifferences = 1e-20;
/// Differences that the curve is continued by, at both ends together, and one place to spare.
constexpr std::size_t kExtraDifferences = 4;

/// The working arrays of one call, in one block. Not zeroed.
class AkimaCurve {
  public:
    AkimaCurve(const double* values, std::size_t count, double* block)
        : values_(values),
          count_(count),
          d_(block),
          t_(d_ + count + kExtraDifferences),
          c3_(t_ + count + kExtraDifferences) {
        computeDifferences();
        computeSlopes();
        computeCoefficients();
    }

    static std::size_t blockSize(std::size_t count) {
        return (3 * count + 2 * kExtraDifferences) * sizeof(double);
    }

    double at(double position) const {
        const auto whole = static_cast<std::size_t>(position);
        const std::size_t i = whole < count_ - 2 ? whole : count_ - 2;
        const double f = position - static_cast<double>(whole);
        const double* c2 = d_;
        return ((f * c3_[i] + c2[i]) * f + t_[i]) * f + values_[i];
    }

  private:
    /// Difference i + 2 leads from value i to value i + 1. Two more before and behind continue the curve.
    void computeDifferences() {
        const std::size_t n = count_;
        for (std::size_t i = 2; i <= n; ++i)
            d_[i] = values_[i - 1] - values_[i - 2];
        const double p = d_[3] - d_[2] + values_[0];
        d_[1] = values_[0] - p;
        d_[0] = p - (d_[2] - d_[1] + p);
        const double q = d_[n] + d_[n] - d_[n - 1] + values_[n - 1];
        d_[n + 1] = q - values_[n - 1];
        // Kept: q comes and goes, which can change the last bits.
        d_[n + 2] = 2.0 * d_[n + 1] - d_[n] + q - q;
    }

    /// The slope at each value. Kept: each difference is weighted by the change on its own side, where the paper
    /// takes the change on the other one.
    void computeSlopes() {
        for (std::size_t i = 0; i < count_; ++i) {
            const double a = std::fabs(d_[i] - d_[i + 1]);
            const double b = std::fabs(d_[i + 2] - d_[i + 3]);
            if (kEqualDifferences > a && kEqualDifferences > b) {
                t_[i] = (d_[i + 2] + d_[i + 1]) * 0.5;
            } else {
                t_[i] = (d_[i + 1] * a + d_[i + 2] * b) / (a + b);
            }
        }
    }

    /// The quadratic coefficients take the place of the differences, each after its last use.
    void computeCoefficients() {
        for (std::size_t i = 0; i + 1 < count_; ++i) {
            const double difference = d_[i + 2];
            d_[i] = 3.0 * difference - 2.0 * t_[i] - t_[i + 1];
            c3_[i] = t_[i] + t_[i + 1] - 2.0 * difference;
        }
    }

    const double* values_;
    std::size_t count_;
    double* d_;   ///< Differences, then quadratic coefficients.
    double* t_;   ///< Slopes.
    double* c3_;  ///< Cubic coefficients.
};

/// Samples a curve at equal steps from its first value to its last one. The last value is stored second when
/// there is room for one only.
template <class Curve>
void sample(const double* values, std::size_t count, double* out, int outCount, const Curve& curve) {
    const int last = outCount > 2 ? outCount - 1 : 1;
    out[0] = values[0];
    for (int k = 1; k < last; ++k)
        out[k] = curve(static_cast<double>(k) * static_cast<double>(count - 1) / static_cast<double>(last));
    out[last] = values[count - 1];
}

}  // namespace

extern "C" int matAkima(const double* values, unsigned int count, double* out, int outCount) {
    if (values == nullptr || out == nullptr || count == 0 || outCount == 0)
        return velquad::kSignalBadArgument;
    const WorkingBlock block(AkimaCurve::blockSize(count));
    if (block.status() != velquad::kSignalOk) return block.status();
    if (count < 3) {
        // A line, or a constant: there are too few differences to continue.
        const double slope = count == 2 ? values[1] - values[0] : 0.0;
        sample(values, count, out, outCount, [&](double position) { return position * slope + values[0]; });
    } else {
        const AkimaCurve curve(values, count, block.as<double>());
        sample(values, count, out, outCount, [&](double position) { return curve.at(position); });
    }
    return velquad::kSignalOk;
}
