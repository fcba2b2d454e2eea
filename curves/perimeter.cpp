// Lengths of chain-coded outlines, along smooth curves through or near their pixels.
#include <cmath>
#include <cstddef>

#include "curves/bspline.h"
#include "curves/renner.h"
#include "curves/scratch_pool.h"
#include "frame/convert.h"
#include "velquad/curves.h"

namespace {

using namespace velquad;
using namespace velquad::curves;

/// Kept: what the inner perimeter is when memory is lacking. A perimeter can be the same.
constexpr double kNoMemoryPerimeter = 7.0;
constexpr int kInnerOrder = 3;
constexpr Index kDimension = 2;

/// Steps of the codes; those without a place here do not move.
constexpr tagPOINT kSteps[] = {{0, -1}, {1, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}};
constexpr unsigned char kMovingCodes = 8;

/// Stores the places that a chain visits, one more than it has steps, in units of measurement. Whole pixels are
/// scaled, so no error adds up.
void expandChain(const tagMINIVEC& chain, double scaleX, double scaleY, double** rows) {
    frame::Int32 x = chain.x;
    frame::Int32 y = chain.y;
    for (std::size_t i = 0;; ++i) {
        rows[i][0] = x * scaleX;
        rows[i][1] = y * scaleY;
        if (i == chain.count) return;
        const unsigned char code = chain.codes[i];
        if (code >= kMovingCodes) continue;
        x = frame::wrapAdd(x, kSteps[code].x);
        y = frame::wrapAdd(y, kSteps[code].y);
    }
}

/// Adds up the distances of successive samples.
struct LengthSum {
    double x = kNoValue;  ///< The sample before; the largest double when there is none.
    double y = 0.0;
    double sum = 0.0;

    void add(const double* sample) {
        if (x == kNoValue) {
            sum = 0.0;
        } else {
            const double dx = sample[0] - x;
            const double dy = sample[1] - y;
            sum += std::sqrt(dx * dx + dy * dy);
        }
        x = sample[0];
        y = sample[1];
    }
};

unsigned int addSamples(double** rows, unsigned int count, unsigned int /*dimension*/, void* length,
                        void* /*unused*/) {
    for (unsigned int i = 0; i < count; ++i)
        static_cast<LengthSum*>(length)->add(rows[i]);
    return 1;
}

}  // namespace

extern "C" double miniCalcInnerPerimeter(const tagMINIVEC* chain, double scaleX, double scaleY) {
    if (chain == nullptr) return 0.0;
    const auto count = static_cast<Index>(chain->count);
    ScratchMemory memory;
    double** points = memory.matrix(count + 1, kDimension);
    if (!memory.isOk()) return kNoMemoryPerimeter;
    expandChain(*chain, scaleX, scaleY, points);
    LengthSum length;
    // The last point repeats the first one.
    Index samples = 2 * (count + 1);
    const int code = bsplineSample({points, count, kInnerOrder, kDimension, false},
                                   {addSamples, &length, nullptr}, samples);
    return code == kCurveNoMemory ? kNoMemoryPerimeter : length.sum;
}

extern "C" double miniCalcOuterPerimeter(const tagMINIVEC* chain, double scaleX, double scaleY) {
    if (chain == nullptr) return kNoValue;
    const auto count = static_cast<Index>(chain->count);
    const Index rows = count + 1 + (count + 1) / 2;
    const Index capacity = rows - 1;
    ScratchMemory memory;
    SplineSegmentSet set{};
    set.m = count;
    set.dimension = kDimension;
    set.P = memory.matrix(rows, kDimension);
    set.len = memory.vector(rows);
    set.b = memory.matrix(capacity, kDimension);
    set.c = memory.matrix(capacity, kDimension);
    set.d = memory.matrix(capacity, kDimension);
    if (!memory.isOk()) return kNoValue;
    expandChain(*chain, scaleX, scaleY, set.P);
    // Corners are kept.
    if (rennerCoefficients(set, capacity, 0.0) != kRennerDone) return kNoValue;
    double sum = 0.0;
    for (Index i = 0; i <= set.m; ++i)
        sum += set.len[i];
    return sum;
}
