// Sampling of a piecewise cubic curve, segment by segment, with Horner's rule.
#include "curves/segments.h"

#include "curves/vector.h"

namespace velquad::curves {
namespace {

constexpr int kSampled = 0;
constexpr int kRangeReversed = 1;
constexpr int kStepNotPositive = 2;

/// Appends samples to the rows of a matrix as long as there is room.
class Sampler {
  public:
    Sampler(const SplineSegmentSet& set, const double* knots, double h, Index maxIndex, double** out)
        : set_(set), knots_(knots), h_(h), maxIndex_(maxIndex), out_(out) {}

    /// Evaluates one segment at t, t + h, ... below `end`. @return the first parameter not evaluated.
    double evaluate(Index segment, double t, double end) {
        const double* a = set_.P[segment];
        const double* b = set_.b[segment];
        const double* c = set_.c[segment];
        const double* d = set_.d[segment];
        const double ti = knots_[segment];
        while (t < end && hasRoom()) {
            double* point = out_[++lastIndex_];
            const double u = t - ti;
            for (Index j = 0; j < set_.dimension; ++j)
                point[j] = ((d[j] * u + c[j]) * u + b[j]) * u + a[j];
            t += h_;
        }
        return t;
    }

    void append(const double* point) { copyVector(out_[++lastIndex_], point, set_.dimension); }
    bool hasRoom() const { return lastIndex_ < maxIndex_; }
    Index lastIndex() const { return lastIndex_; }

  private:
    const SplineSegmentSet& set_;
    const double* knots_;
    double h_;
    Index maxIndex_;
    double** out_;
    Index lastIndex_ = -1;
};

}  // namespace

int sampleSegments(const SplineSegmentSet& set, const double* knots, double t0, double t1, double h,
                   Index maxIndex, double** out, Index& lastIndex) {
    if (t0 > t1) return kRangeReversed;
    if (h <= 0.0) return kStepNotPositive;
    const Index m = set.m;
    const Index i0 = findInterval(m, t0, knots);
    const Index i1 = findInterval(m, t1, knots);
    // The ranges before the first and behind the last knot count as segments -1 and m here.
    const Index j0 = knots[0] > t0 ? i0 - 1 : i0;
    const Index j1 = t1 > knots[m] ? i1 + 1 : i1;

    Sampler sampler(set, knots, h, maxIndex, out);
    double t = t0;
    if (j0 < j1) {
        sampler.evaluate(i0, t0, knots[j0 + 1]);
        for (Index k = j0 + 1; k < j1; ++k)
            sampler.evaluate(k, knots[k], knots[k + 1]);
        t = knots[j1];
        if (j1 == m && sampler.hasRoom()) {
            sampler.append(set.P[m]);
            t += h;
        }
    }
    sampler.evaluate(i1, t, t1);
    // Half a step behind the end admits exactly the sample at the end itself.
    sampler.evaluate(i1, t1, t1 + h / 2.0);
    lastIndex = sampler.lastIndex();
    return kSampled;
}

}  // namespace velquad::curves
