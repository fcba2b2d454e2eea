// Sampling of a Renner subspline through points that a callback delivers.
#include "curves/curve_points.h"
#include "curves/renner.h"
#include "curves/vector.h"
#include "frame/convert.h"
#include "velquad/curves.h"

namespace velquad::curves {
namespace {

constexpr Index kSpareSamples = 10;
/// More steps than this in one segment would not fit the 32-bit sample counts of a batch.
constexpr double kMostSteps = 2147483637.0;

unsigned int errorOfRenner(int code) {
    switch (code) {
        case kRennerDone:
            return kCurveOk;
        case kRennerTooFewPoints:
            return kCurveTooFewPoints;
        case kRennerEqualPoints:
            return kCurveEqualPoints;
        case kRennerNoMemory:
            return kCurveNoMemory;
        default:
            return kCurveInternal;
    }
}

/// Rows that hold the samples of any one segment; 0 when there can be no such buffer.
Index sampleRows(const SplineSegmentSet& set, double step) {
    double longest = 0.0;
    for (Index i = 0; i < set.m; ++i) {
        if (set.len[i] > longest) longest = set.len[i];
    }
    const double steps = longest / step;
    if (steps > kMostSteps) return 0;
    const Index rounded = frame::lroundToInt32(steps);
    return (rounded > 1 ? rounded : 1) + kSpareSamples;
}

/// Samples segment after segment and hands each batch on. The sample at a segment's end is left to the next
/// segment, which begins with it.
unsigned int writeSegments(const SplineSegmentSet& set, const double* knots, double step, bool isClosed,
                           double** samples, Index rows, const CurveSink& sink) {
    double first[3];  // the subspline has no more coordinates
    double* closing[] = {first};
    for (Index i = 0; i < set.m; ++i) {
        const double h = step < set.len[i] ? step : set.len[i];
        Index lastIndex = -1;
        const int code = sampleSegments(set, knots, knots[i], knots[i + 1], h, rows - 1, samples, lastIndex);
        // Lengths that are not numbers, or vanish beside the parameter, give no sample at all.
        if (code != 0 || lastIndex < 0) return kCurveInternal;
        if (i == 0) copyVector(first, samples[0], set.dimension);

        const bool isLast = i == set.m - 1;
        const bool missesStart = isLast && isClosed && !isSamePlace(samples[lastIndex], first, set.dimension);
        if (!sink.put(samples, isLast ? lastIndex + 1 : lastIndex, set.dimension)) return kCurveWriteFailed;
        if (missesStart && !sink.put(closing, 1, set.dimension)) return kCurveWriteFailed;
    }
    return kCurveOk;
}

/// Computes the subspline through the first m + 1 points and writes its samples.
unsigned int drawSubspline(double** points, Index m, Index dimension, double step, double cornerFactor,
                           const CurveSink& sink) {
    const bool isClosed = isSamePlace(points[0], points[m], dimension);
    // Segments, with room for the half of all points to be rounded corners.
    const Index capacity = m + (m + 1) / 2;
    ScratchMemory memory;
    SplineSegmentSet set{};
    set.m = m;
    set.dimension = dimension;
    set.P = points;
    set.len = memory.vector(capacity);
    double* knots = memory.vector(capacity + 1);
    set.b = memory.matrix(capacity, dimension);
    set.c = memory.matrix(capacity, dimension);
    set.d = memory.matrix(capacity, dimension);
    if (!memory.isOk()) return kCurveNoMemory;

    const unsigned int error = errorOfRenner(rennerCoefficients(set, capacity, cornerFactor));
    if (error != kCurveOk) return error;

    const Index rows = sampleRows(set, step);
    if (rows == 0) return kCurveNoMemory;
    double** samples = memory.matrix(rows, dimension);
    if (!memory.isOk()) return kCurveNoMemory;

    knots[0] = 0.0;
    for (Index i = 0; i < set.m; ++i)
        knots[i + 1] = knots[i] + set.len[i];
    return writeSegments(set, knots, step, isClosed, samples, rows, sink);
}

}  // namespace
}  // namespace velquad::curves

extern "C" unsigned int matInterpolatingCurve(unsigned int count, MatCurveReadCallback read,
                                              MatCurveWriteCallback write, void* user1, void* user2,
                                              unsigned int dimension, double step, double cornerFactor) {
    using namespace velquad;
    using namespace velquad::curves;
    if (step < kEpsilon) return kCurveStepTooSmall;
    if (dimension < 2) return kCurveDimensionTooSmall;
    ScratchMemory memory;
    double** points = memory.matrix(static_cast<Index>(count) + count / 2, dimension);
    if (!memory.isOk()) return kCurveNoMemory;
    const Index pointCount = CurveSource{read, user1, user2}.get(points, count, dimension);
    if (pointCount == 0) return kCurveNoPoints;
    return drawSubspline(points, pointCount - 1, dimension, step, cornerFactor, {write, user1, user2});
}
