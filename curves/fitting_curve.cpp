// Sampling of a uniform B-spline whose control points a callback delivers.
#include <cmath>

#include "curves/bspline.h"
#include "curves/curve_points.h"
#include "curves/vector.h"
#include "frame/convert.h"
#include "velquad/curves.h"

namespace velquad::curves {
namespace {

constexpr int kSmallestOrder = 3;

/// Estimates how many samples put neighbours about a step apart. Differences and quotients are both cut to
/// integers, so a pair of points less than one unit apart counts as one sample.
Index estimateSamples(double* const* points, Index count, Index dimension, double step) {
    Index samples = 0;
    for (Index i = 1; i < count; ++i) {
        frame::Int32 largest = 0;
        for (Index j = 0; j < dimension; ++j) {
            const frame::Int32 distance = frame::truncToInt32(std::fabs(points[i][j] - points[i - 1][j]));
            if (distance > largest) largest = distance;
        }
        const frame::Int32 steps = frame::truncToInt32(largest / step);
        samples += steps > 1 ? steps : 1;
    }
    return samples;
}

}  // namespace
}  // namespace velquad::curves

extern "C" unsigned int matFittingCurve(unsigned int count, MatCurveReadCallback read,
                                        MatCurveWriteCallback write, void* user1, void* user2,
                                        unsigned int dimension, double step, int order) {
    using namespace velquad;
    using namespace velquad::curves;
    if (step < kEpsilon) return kCurveStepTooSmall;
    if (order < kSmallestOrder) return kCurveOrderTooSmall;
    if (dimension < 2) return kCurveDimensionTooSmall;
    ScratchMemory memory;
    double** points = memory.matrix(count, dimension);
    if (!memory.isOk()) return kCurveNoMemory;
    const Index pointCount = CurveSource{read, user1, user2}.get(points, count, dimension);
    if (pointCount == 0) return kCurveNoPoints;

    const bool isClosed = isSamePlace(points[0], points[pointCount - 1], dimension);
    const Index controlCount = isClosed ? pointCount - 1 : pointCount;
    if (controlCount < order) return kCurveTooFewForOrder;
    Index samples = estimateSamples(points, pointCount, dimension, step);
    const BsplineCurve curve{points, controlCount, order, dimension, !isClosed};
    return static_cast<unsigned int>(bsplineSample(curve, {write, user1, user2}, samples));
}
