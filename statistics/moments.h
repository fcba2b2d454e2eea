// Running moments as other rooms use them: the fields of `CMatMomentEvaluator` and its functions, without a call
// through the module's boundary.
#ifndef VELQUAD_STATISTICS_MOMENTS_H
#define VELQUAD_STATISTICS_MOMENTS_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "velquad/statistics.h"

namespace velquad::statistics {

struct Moments {
    using Evaluator = CMatMomentEvaluator;

    static constexpr DWORD kMaxCount = std::numeric_limits<std::uint32_t>::max();

    static double sum(const Evaluator& e) { return e.sum; }
    static double sumOfSquares(const Evaluator& e) { return e.sumOfSquares; }
    /// The fields of the range; without values they cross.
    static double storedMin(const Evaluator& e) { return e.min; }
    static double storedMax(const Evaluator& e) { return e.max; }
    static DWORD count(const Evaluator& e) { return e.count; }
    static void setCount(Evaluator& e, DWORD count) { e.count = count; }

    static void reset(Evaluator& e) {
        e.sum = 0.0;
        e.sumOfSquares = 0.0;
        e.min = kNoValue;
        e.max = -kNoValue;
        e.count = 0;
    }

    /// See `CMatMomentEvaluator::AddValue`.
    static bool add(Evaluator& e, double value) {
        if (value == kNoValue || e.count == kMaxCount) return false;
        // Both comparisons are false for a not-a-number.
        if (e.min > value) e.min = value;
        if (value > e.max) e.max = value;
        e.sum += value;
        e.count += 1;
        e.sumOfSquares += value * value;
        return true;
    }

    /// Takes the elements of an array at any address as `add` takes them one by one, refusals included.
    template <class T>
    static void addEach(Evaluator& e, const void* values, std::size_t count);

    /// See `CMatMomentEvaluator::AddValues`: the elements of an array at any address, none refused. The number of
    /// values is left to the caller.
    template <class T>
    static void addAll(Evaluator& e, const void* values, std::size_t count);

    static double min(const Evaluator& e) { return e.count == 0 ? kNoValue : e.min; }
    static double max(const Evaluator& e) { return e.count == 0 ? kNoValue : e.max; }
    static double mean(const Evaluator& e) { return e.count == 0 ? kNoValue : e.sum / e.count; }

    static double variance(const Evaluator& e) {
        if (e.count == 0) return kNoValue;
        const double n = e.count;
        const double m = e.sum / n;
        const double variance = e.sumOfSquares / n - m * m;
        return variance < 0.0 ? 0.0 : variance;
    }

    static double stdDev(const Evaluator& e) {
        const double v = variance(e);
        return v == kNoValue ? kNoValue : std::sqrt(v);
    }

    /// Tells whether the fields stand where callers expect them.
    static constexpr bool hasPromisedLayout();

  private:
    template <class T>
    static void addInOrder(Evaluator& e, const void* values, std::size_t count);
    template <class T>
    static bool addExactly(Evaluator& e, const void* values, std::size_t count);
    static bool addTotals(Evaluator& e, std::int64_t sum, std::uint64_t squares, std::uint64_t oddCount);
};

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_MOMENTS_H
