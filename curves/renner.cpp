// Tangents, corner rounding and cubic coefficients of the Renner subspline.
//
// One pass over the points keeps the unit chords around the current point and the sines of the three turns
// between them. The parameter length of a segment makes its speed at the middle equal to 1 like at the ends, so
// that the parameter is close to arc length.
#include "curves/renner.h"

#include <cmath>

#include "curves/vector.h"

namespace velquad::curves {
namespace {

constexpr Index kFewestSegments = 4;
constexpr Index kMostCoordinates = 3;
constexpr Index kChordsBefore = 2;  // chords -2 and -1 stand before the first one
constexpr Index kChordsExtra = 4;   // rows of chords beyond the capacity

void difference(const double* to, const double* from, double* out, Index d) {
    for (Index j = 0; j < d; ++j)
        out[j] = to[j] - from[j];
}

/// out = p * u - q * v in each coordinate.
void combine(double p, const double* u, double q, const double* v, double* out, Index d) {
    for (Index j = 0; j < d; ++j)
        out[j] = p * u[j] - q * v[j];
}

/// The unit chords around a point i and the sines of the turns between them.
///
///     chord    i - 2     i - 1      i      i + 1
///     turn           left     middle   right
class Turns {
  public:
    Turns(double* const* chords, Index d) : chords_(chords), d_(d) {}

    /// Computes the chords up to i anew.
    void moveTo(Index i) {
        double before[kMostCoordinates];
        unitVector(chords_[i - 2], before, d_);
        unitVector(chords_[i - 1], arriving_, d_);
        unitVector(chords_[i], leaving_, d_);
        left_ = sinOfAngle(before, arriving_, d_);
        middle_ = sinOfAngle(arriving_, leaving_, d_);
    }

    /// Computes chord i + 1.
    void lookAhead(Index i) {
        unitVector(chords_[i + 1], next_, d_);
        right_ = sinOfAngle(leaving_, next_, d_);
    }

    /// Goes on to the next point; chord i + 1 must have been looked at.
    void advance() {
        copyVector(arriving_, leaving_, d_);
        copyVector(leaving_, next_, d_);
        left_ = middle_;
        middle_ = right_;
    }

    bool isStraightAround() const { return right_ + left_ < kEpsilon; }
    bool isKink() const { return middle_ >= kEpsilon; }
    double leftShare() const { return left_ / (right_ + left_); }
    const double* arriving() const { return arriving_; }
    const double* leaving() const { return leaving_; }

  private:
    double* const* chords_;
    Index d_;
    double arriving_[kMostCoordinates] = {};
    double leaving_[kMostCoordinates] = {};
    double next_[kMostCoordinates] = {};
    double left_ = 0.0;
    double middle_ = 0.0;
    double right_ = 0.0;
};

/// Forms chords 0 ... m - 1. @return false when two consecutive points coincide.
bool formChords(const SplineSegmentSet& set, double** s) {
    for (Index i = 0; i < set.m; ++i) {
        difference(set.P[i + 1], set.P[i], s[i], set.dimension);
        if (maxNorm(s[i], set.dimension) < kEpsilon) return false;
    }
    return true;
}

/// Adds two chords at each end: those of the other end when the curve is closed, linear continuations else.
void continueChords(double** s, Index m, Index d, bool isClosed) {
    if (isClosed) {
        copyVector(s[-2], s[m - 2], d);
        copyVector(s[-1], s[m - 1], d);
        copyVector(s[m], s[0], d);
        copyVector(s[m + 1], s[1], d);
        return;
    }
    combine(3.0, s[0], 2.0, s[1], s[-2], d);
    combine(2.0, s[0], 1.0, s[1], s[-1], d);
    combine(2.0, s[m - 1], 1.0, s[m - 2], s[m], d);
    combine(3.0, s[m - 1], 2.0, s[m - 2], s[m + 1], d);
}

/// Turns a closed curve by one point: it starts at its second point from now on.
void turnStart(const SplineSegmentSet& set, double** s) {
    const Index m = set.m;
    const Index d = set.dimension;
    for (Index k = 0; k < m; ++k)
        copyVector(set.P[k], set.P[k + 1], d);
    for (Index k = -2; k <= m; ++k)
        copyVector(s[k], s[k + 1], d);
    copyVector(set.P[m], set.P[0], d);
    copyVector(s[m + 1], s[1], d);
}

/// Finds the tangents of all points: the arriving one in `tangent`, the leaving one in set.b. Rounds corners on
/// the way.
int findTangents(SplineSegmentSet& set, Index capacity, double cornerFactor, bool isClosed, double** s,
                 double** tangent) {
    const Index d = set.dimension;
    const bool isRounding = 0.0 < cornerFactor && cornerFactor < 1.0;
    Turns turns(s, d);
    turns.moveTo(0);
    turns.lookAhead(0);
    if (isRounding && isClosed && turns.isStraightAround() && turns.isKink()) {
        turnStart(set, s);
        turns.advance();
    }
    const Index firstCorner = isClosed ? 1 : 2;
    Index lastCorner = set.m - firstCorner;

    for (Index i = 0; i <= set.m;) {
        turns.lookAhead(i);
        const bool isEligible = isRounding && firstCorner <= i && i <= lastCorner;
        if (turns.isStraightAround() && isEligible && turns.isKink()) {
            const int code = rennerRoundCorner(set.m, capacity, d, i, set.P, s, cornerFactor);
            if (code != kRennerDone) return code;
            turns.moveTo(i);
            ++lastCorner;
            continue;
        }
        if (turns.isStraightAround()) {
            copyVector(tangent[i], turns.arriving(), d);
            if (i < set.m) copyVector(set.b[i], turns.leaving(), d);
        } else {
            const double w = turns.leftShare();
            double a[kMostCoordinates];
            for (Index j = 0; j < d; ++j)
                a[j] = (s[i][j] - s[i - 1][j]) * w + s[i - 1][j];
            unitVector(a, tangent[i], d);
            if (i < set.m) copyVector(set.b[i], tangent[i], d);
        }
        ++i;
        turns.advance();
    }
    return kRennerDone;
}

/// Computes the parameter length and the upper coefficients of one segment from its chord and its tangents.
void formCubic(const SplineSegmentSet& set, Index i, const double* s, const double* arriving) {
    const Index d = set.dimension;
    const double* leaving = set.b[i];
    double a[kMostCoordinates];
    for (Index j = 0; j < d; ++j)
        a[j] = leaving[j] + arriving[j];
    const double A = sumOfSquares(a, d);
    const double B = 6.0 * dotProduct(s, a, d);
    const double C = 36.0 * sumOfSquares(s, d) * (16.0 - A);
    // The positive root of (16 - A) L^2 + 2 B L - 36 |s|^2 = 0. A is at most 4.
    const double L = (std::sqrt(B * B + C) - B) / (16.0 - A);
    set.len[i] = L;
    for (Index j = 0; j < d; ++j) {
        set.c[i][j] = (3.0 * s[j] / L - 2.0 * leaving[j] - arriving[j]) / L;
        set.d[i][j] = (a[j] - 2.0 * s[j] / L) / (L * L);
    }
}

/// Moves rows first ... last up by one place, by their pointers. The row behind the last one comes to stand at
/// `first` and becomes a copy of the row that stood there.
void openRow(double** rows, Index first, Index last, Index d) {
    double* spare = rows[last + 1];
    for (Index k = last; k >= first; --k)
        rows[k + 1] = rows[k];
    rows[first] = spare;
    copyVector(spare, rows[first + 1], d);
}

}  // namespace

int rennerRoundCorner(Index& m, Index capacity, Index d, Index corner, double** P, double** chords,
                      double cornerFactor) {
    if (m == capacity) return kRennerNoCapacity;
    const Index i = corner;
    openRow(chords, i, m + 1, d);
    openRow(P, i, m, d);

    double toLeft[kMostCoordinates];
    double toRight[kMostCoordinates];
    difference(P[i], P[i - 1], toLeft, d);
    difference(P[i + 2], P[i + 1], toRight, d);
    const double leftLength = std::sqrt(sumOfSquares(toLeft, d));
    const double rightLength = std::sqrt(sumOfSquares(toRight, d));
    const double r = (rightLength < leftLength ? rightLength : leftLength) * cornerFactor;
    for (Index j = 0; j < d; ++j) {
        P[i][j] -= toLeft[j] * (r / leftLength);
        P[i + 1][j] += toRight[j] * (r / rightLength);
    }
    for (Index k = i - 1; k <= i + 1; ++k)
        difference(P[k + 1], P[k], chords[k], d);
    ++m;
    return kRennerDone;
}

int rennerCoefficients(SplineSegmentSet& set, Index capacity, double cornerFactor) {
    const Index d = set.dimension;
    if (set.m < kFewestSegments) return kRennerTooFewPoints;
    if (d != 2 && d != 3) return kRennerBadDimension;
    ScratchMemory memory;
    double** tangent = memory.matrix(capacity + 1, d);
    double** chordRows = memory.matrix(capacity + kChordsExtra, d);
    if (!memory.isOk()) return kRennerNoMemory;

    double** s = chordRows + kChordsBefore;
    if (!formChords(set, s)) return kRennerEqualPoints;
    double gap[kMostCoordinates];
    difference(set.P[0], set.P[set.m], gap, d);
    const bool isClosed = maxNorm(gap, d) < kEpsilon;
    continueChords(s, set.m, d, isClosed);

    const int code = findTangents(set, capacity, cornerFactor, isClosed, s, tangent);
    if (code != kRennerDone) return code;
    for (Index i = 0; i < set.m; ++i)
        formCubic(set, i, s[i], tangent[i + 1]);
    return kRennerDone;
}

}  // namespace velquad::curves
