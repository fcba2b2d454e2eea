// Statistics of directions: the mean is the direction of the mean unit vector, everything else is measured from it.
//
// Three passes over the values, O(n) sines and arc tangents, no memory beyond the values.
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>

#include "frame/math.h"
#include "geometry/angle.h"
#include "velquad/statistics.h"

namespace {

/// Values that the memory grows by.
constexpr DWORD kGrowth = 32;
/// A mean vector shorter than this has no direction.
constexpr double kNullMean = 1e-5;
/// The count while there are no results.
constexpr DWORD kNoCount = std::numeric_limits<std::uint32_t>::max();

}  // namespace

namespace velquad::statistics {

struct AngleMoments {
    using Evaluator = CMatMomentOfAnglesEvaluator;

    static_assert(offsetof(Evaluator, values) == 0);
    static_assert(offsetof(Evaluator, count) == 8);
    static_assert(offsetof(Evaluator, capacity) == 12);
    static_assert(offsetof(Evaluator, failed) == 16);
    static_assert(offsetof(Evaluator, degrees) == 20);
    static_assert(offsetof(Evaluator, sense) == 24);
    static_assert(offsetof(Evaluator, min) == 32);
    static_assert(offsetof(Evaluator, max) == 40);
    static_assert(offsetof(Evaluator, resultCount) == 48);
    static_assert(offsetof(Evaluator, stdDev) == 56);
    static_assert(offsetof(Evaluator, mean) == 64);
    static_assert(offsetof(Evaluator, range) == 72);
    static_assert(sizeof(Evaluator) == 80);

    /// Makes room for one more value. On failure the block is gone.
    static bool reserve(Evaluator& e) {
        const bool isFull = e.count >= e.capacity;
        // A reset leaves the capacity without its block.
        if (!isFull && e.values != nullptr) return true;
        if (isFull) {
            if (e.capacity > kNoCount - kGrowth) return false;
            e.capacity += kGrowth;
        }
        void* const block = std::realloc(e.values, std::size_t{e.capacity} * sizeof(float));
        if (block == nullptr) std::free(e.values);
        e.values = static_cast<float*>(block);
        return block != nullptr;
    }

    /// The unit vector of a value.
    static tagPOINT2D directionVector(const Evaluator& e, DWORD index) {
        const auto angle = static_cast<double>(e.values[index]);
        const double x = e.degrees != 0 ? angle * geometry::kHalfTurnRad / geometry::kHalfTurnDegrees : angle;
        return {frame::cos(x), frame::sin(x)};
    }

    static tagPOINT2D meanVector(const Evaluator& e) {
        tagPOINT2D sum{0.0, 0.0};
        for (DWORD i = 0; i < e.count; ++i) {
            const tagPOINT2D u = directionVector(e, i);
            sum.x += u.x;
            sum.y += u.y;
        }
        return {sum.x / e.count, sum.y / e.count};
    }

    /// The mean distance of the values from their mean direction.
    static double meanDeviation(const Evaluator& e) {
        const bool isDegrees = e.degrees != 0;
        double sum = 0.0;
        for (DWORD i = 0; i < e.count; ++i) {
            const double distance =
                geometry::distanceOfAngles(static_cast<double>(e.values[i]), e.mean, isDegrees);
            sum += geometry::normalizeAngle(distance, isDegrees);
        }
        return sum / e.count;
    }

    /// Finds the values that lie furthest from the mean vector on either side.
    static void findExtremes(Evaluator& e, const tagPOINT2D& meanVector) {
        const bool isDegrees = e.degrees != 0;
        const double turn = geometry::fullTurn(isDegrees);
        // Vectors point towards the origin, as in `matCalcNormalizedAngle2D`.
        const double meanDirection = geometry::directionOf({0.0 - meanVector.x, 0.0 - meanVector.y});
        double low = kExtentNotSet;
        double high = -kExtentNotSet;
        for (DWORD i = 0; i < e.count; ++i) {
            const tagPOINT2D u = directionVector(e, i);
            const double direction = geometry::directionOf({0.0 - u.x, 0.0 - u.y});
            const double angle = geometry::sweptAngle(meanDirection, direction, e.sense != 0, isDegrees);
            // Exactly half a turn counts as ahead of the mean.
            const double offset = angle > turn * 0.5 ? angle - turn : angle;
            // An offset that is not a number is taken.
            low = low < offset ? low : offset;
            high = high > offset ? high : offset;
        }
        // Kept: the offsets are added whatever the sense.
        e.min = geometry::normalizeAngle(low + e.mean, isDegrees);
        e.max = geometry::normalizeAngle(high + e.mean, isDegrees);
        e.range = high - low;
    }

    static bool compute(Evaluator& e) {
        if (e.failed != 0) return false;
        e.ResetResults();
        if (e.count == 0) return false;
        const tagPOINT2D c = meanVector(e);
        if (kNullMean > std::sqrt(c.y * c.y + c.x * c.x)) {
            e.failed = 1;
            return false;
        }
        e.resultCount = e.count;
        e.mean = geometry::normalizedAngle({0.0, 0.0}, {1.0, 0.0}, c, e.sense != 0, e.degrees != 0);
        e.stdDev = meanDeviation(e);
        findExtremes(e, c);
        return true;
    }

    /// A result, computed when it is missing.
    template <class T>
    static T result(Evaluator& e, const T& field, T missing, T* out) {
        if (e.failed == 0 && field == missing) compute(e);
        if (out != nullptr) *out = field;
        return field;
    }
};

}  // namespace velquad::statistics

using velquad::kNoValue;
using velquad::statistics::AngleMoments;

CMatMomentOfAnglesEvaluator::CMatMomentOfAnglesEvaluator(int senseFlag, int degreesFlag)
    : values(nullptr),
      count(0),
      capacity(0),
      failed(0),
      degrees(degreesFlag),
      sense(senseFlag),
      min(kNoValue),
      max(kNoValue),
      resultCount(kNoCount),
      stdDev(kNoValue),
      mean(kNoValue),
      range(kNoValue) {}

CMatMomentOfAnglesEvaluator::~CMatMomentOfAnglesEvaluator() {
    Reset();
}

// Kept: the memory is shared, not copied, and that of this object is left alone, as another one may hold it too.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
CMatMomentOfAnglesEvaluator& CMatMomentOfAnglesEvaluator::operator=(
    const CMatMomentOfAnglesEvaluator& other) = default;

int CMatMomentOfAnglesEvaluator::Reset() {
    std::free(values);
    values = nullptr;
    count = 0;
    // The capacity stays: the next value takes a block of that size at once.
    ResetResults();
    failed = 0;
    return 1;
}

int CMatMomentOfAnglesEvaluator::ResetResults() {
    resultCount = kNoCount;
    min = kNoValue;
    max = kNoValue;
    stdDev = kNoValue;
    mean = kNoValue;
    // Kept: the range stays.
    return 1;
}

int CMatMomentOfAnglesEvaluator::AddValue(double angle) {
    if (failed != 0) return 0;
    const double reduced = velquad::geometry::normalizeAngle(angle, degrees != 0);
    if (!AngleMoments::reserve(*this)) {
        failed = 1;
        return 0;
    }
    values[count] = static_cast<float>(reduced);
    count += 1;
    return 1;
}

int CMatMomentOfAnglesEvaluator::ComputeResults() {
    return AngleMoments::compute(*this) ? 1 : 0;
}

double CMatMomentOfAnglesEvaluator::GetMin(double* result) {
    return AngleMoments::result(*this, min, kNoValue, result);
}

double CMatMomentOfAnglesEvaluator::GetMax(double* result) {
    return AngleMoments::result(*this, max, kNoValue, result);
}

double CMatMomentOfAnglesEvaluator::GetRange(double* result) {
    return AngleMoments::result(*this, range, kNoValue, result);
}

double CMatMomentOfAnglesEvaluator::GetMean(double* result) {
    return AngleMoments::result(*this, mean, kNoValue, result);
}

double CMatMomentOfAnglesEvaluator::GetStdDev(double* result) {
    return AngleMoments::result(*this, stdDev, kNoValue, result);
}

DWORD CMatMomentOfAnglesEvaluator::GetCount(DWORD* result) {
    return AngleMoments::result(*this, resultCount, kNoCount, result);
}
