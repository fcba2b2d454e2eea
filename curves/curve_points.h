// What the two curve functions share: the callbacks as the loops use them, and the closeness of points.
#ifndef VELQUAD_CURVES_CURVE_POINTS_H
#define VELQUAD_CURVES_CURVE_POINTS_H

#include <cmath>

#include "curves/scratch_pool.h"
#include "velquad/curves.h"

namespace velquad::curves {

/// Where samples go.
struct CurveSink {
    MatCurveWriteCallback write;
    void* user1;
    void* user2;

    /// @return false when the callback wants no more.
    bool put(double** rows, Index count, Index dimension) const {
        return write != nullptr && write(rows, static_cast<unsigned int>(count),
                                         static_cast<unsigned int>(dimension), user1, user2) != 0;
    }
};

/// Where points come from.
struct CurveSource {
    MatCurveReadCallback read;
    void* user1;
    void* user2;

    /// Fills the rows. @return how many there are, never more than `count`.
    Index get(double** rows, unsigned int count, unsigned int dimension) const {
        if (read == nullptr) return 0;
        const unsigned int delivered = read(rows, count, dimension, user1, user2);
        return static_cast<Index>(delivered < count ? delivered : count);
    }
};

/// Tells whether two points of a curve are the same place: the rule by which curves are closed.
inline bool isSamePlace(const double* a, const double* b, Index dimension) {
    constexpr double kSamePlaceTolerance = 1e-7;
    const Index compared = dimension == 2 ? 2 : 3;
    for (Index j = 0; j < compared; ++j) {
        if (!(kSamePlaceTolerance > std::fabs(a[j] - b[j]))) return false;
    }
    return true;
}

}  // namespace velquad::curves

#endif  // VELQUAD_CURVES_CURVE_POINTS_H
