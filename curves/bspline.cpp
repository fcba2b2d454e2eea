// De Boor's recursion over integer knots (C. de Boor, A Practical Guide to Splines, Springer, 1978).
#include "curves/bspline.h"

#include "curves/vector.h"

namespace velquad::curves {
namespace {

constexpr Index kFewestPoints = 3;
constexpr Index kSmallestOrder = 3;
constexpr Index kSmallestDimension = 2;

/// The knots of a curve: all integers, or those of the inside with the ends repeated.
class Knots {
  public:
    explicit Knots(const BsplineCurve& curve)
        : lowest_(curve.isOpen ? curve.order - 1 : 0), highest_(curve.isOpen ? curve.n : kUnbounded) {}

    double operator[](Index j) const {
        return static_cast<double>(j < lowest_ ? lowest_ : (j < highest_ ? j : highest_));
    }

  private:
    static constexpr Index kUnbounded = PTRDIFF_MAX;
    Index lowest_;
    Index highest_;
};

/// Loads the `order` control points that shape the interval at L; a closed curve runs over the end.
void loadControlPoints(const BsplineCurve& curve, Index L, double** work) {
    const Index first = L - curve.order + 1;
    for (Index j = first; j <= L; ++j) {
        copyVector(work[j - first], curve.P[j < curve.n ? j : j - curve.n], curve.dimension);
    }
}

}  // namespace

void bsplinePoint(const BsplineCurve& curve, double t, Index L, double** work, double* out) {
    const Index k = curve.order;
    const Index d = curve.dimension;
    const Knots knot(curve);
    loadControlPoints(curve, L, work);
    for (Index r = 1; r < k; ++r) {
        for (Index i = k - 1; i >= r; --i) {
            const Index j = L - (k - 1 - i);
            const double alpha = (t - knot[j]) / (knot[j + k - r] - knot[j]);
            const double* before = work[i - 1];
            double* here = work[i];
            for (Index x = 0; x < d; ++x)
                here[x] = (here[x] - before[x]) * alpha + before[x];
        }
    }
    copyVector(out, work[k - 1], d);
}

int bsplineSample(const BsplineCurve& curve, const CurveSink& sink, Index& wanted) {
    const Index k = curve.order;
    const Index segments = curve.segments();
    const Index fewest = 2 * segments + 1;
    if (wanted < fewest) wanted = fewest;
    if (curve.n < kFewestPoints || k < kSmallestOrder || k > curve.n ||
        curve.dimension < kSmallestDimension) {
        return kCurveBadSampling;
    }
    ScratchMemory memory;
    double** work = memory.matrix(k, curve.dimension);
    double** sample = memory.matrix(1, curve.dimension);
    if (!memory.isOk()) return kCurveNoMemory;

    const Index samplesPerSegment = (wanted - 1) / segments;
    const double delta = 1.0 / static_cast<double>(samplesPerSegment);
    bsplinePoint(curve, static_cast<double>(k - 1), k - 1, work, sample[0]);
    if (!sink.put(sample, 1, curve.dimension)) return kCurveWriteFailed;
    wanted = 1;
    for (Index L = k - 1; L <= k - 2 + segments; ++L) {
        // The interval's end is reached from within it, up to the rounding of the sum.
        double t = static_cast<double>(L) + delta;
        for (Index q = 0; q < samplesPerSegment; ++q) {
            bsplinePoint(curve, t, L, work, sample[0]);
            if (!sink.put(sample, 1, curve.dimension)) return kCurveWriteFailed;
            ++wanted;
            t += delta;
        }
    }
    return kCurveOk;
}

}  // namespace velquad::curves
