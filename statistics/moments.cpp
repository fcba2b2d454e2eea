// Running moments of whole arrays, with the bits that taking the values one by one leaves behind.
//
// Floating point numbers and 32-bit integers: the two sums are one vector and take the elements in order; the range
// is kept in four lanes, as the order does not matter there but for the sign of a zero.
//
// Integers of 8 and 16 bits: blocks are summed as integers wherever the sums in doubles allow it.
//   - While they are integers and end at 2^53 or below, every addition is exact, so the order is free.
//   - Between 2^53 and 2^55 doubles have a spacing of 2 or 4. Squares are 0 or 1 modulo 4. A sum of squares that is
//     divisible by 4 stays so: an odd square's 1 is less than half the spacing, or a tie, and ties go to the
//     multiple of 4. So every odd square counts one less than it is.
//   - Elsewhere the order of the elements decides about the rounding, and they are added one by one.
#include "statistics/moments.h"

#include "statistics/element_pair.h"
#include "statistics/element_type.h"
#include "statistics/narrow_sums.h"
#include "statistics/prefetch.h"

namespace velquad::statistics {

namespace {

constexpr std::uint64_t kTwoTo53 = std::uint64_t{1} << 53;
constexpr std::uint64_t kTwoTo55 = std::uint64_t{1} << 55;
/// A sum of values up to this stays exact through a block: 2^53 less the most that a block can add.
constexpr auto kMaxExactSum = static_cast<double>(kTwoTo53 - kNarrowBlock * 65536);
/// Fewer elements than this take no longer one by one.
constexpr std::size_t kMinNarrowBlock = 48;
/// Elements that are looked through for the mark at once.
constexpr std::size_t kMarkBlock = 1024;

constexpr std::size_t kLanes = 4;

double lesser(Lanes lanes) {
    return lanes.high < lanes.low ? lanes.high : lanes.low;
}

double greater(Lanes lanes) {
    return lanes.high > lanes.low ? lanes.high : lanes.low;
}

/// The first zero of an array that has one: of zeros of both signs, the first to come is the one that stays.
template <class T>
double firstZero(const void* values) {
    std::size_t i = 0;
    while (static_cast<double>(elementAt<T>(values, i)) != 0.0)
        ++i;
    return static_cast<double>(elementAt<T>(values, i));
}

/// Tells whether an array of doubles holds the mark for no value.
bool holdsMark(const void* values, std::size_t count) {
    const __m128d mark = _mm_set1_pd(kNoValue);
    const std::size_t inPairs = count - count % 2;
    __m128d found = _mm_setzero_pd();
    for (std::size_t i = 0; i < inPairs; i += 2)
        found = _mm_or_pd(found, _mm_cmpeq_pd(loadPair<double>(values, i), mark));
    return _mm_movemask_pd(found) != 0 || (inPairs < count && elementAt<double>(values, inPairs) == kNoValue);
}

/// A sum that is an integer and that a block of integers leaves exact.
bool isExactSum(double sum) {
    return sum >= -kMaxExactSum && sum <= kMaxExactSum &&
           static_cast<double>(static_cast<std::int64_t>(sum)) == sum;
}

/// A sum of squares that is an integer below 2^55.
bool isExactSumOfSquares(double sum) {
    return sum >= 0.0 && sum < static_cast<double>(kTwoTo55) &&
           static_cast<double>(static_cast<std::int64_t>(sum)) == sum;
}

}  // namespace

template <class T>
void Moments::addInOrder(Evaluator& e, const void* values, std::size_t count) {
    const std::size_t inLanes = count - count % kLanes;
    if (inLanes > 0) {
        __m128d sums = _mm_setr_pd(e.sum, e.sumOfSquares);
        __m128d least0 = _mm_set1_pd(e.min);
        __m128d least1 = least0;
        __m128d greatest0 = _mm_set1_pd(e.max);
        __m128d greatest1 = greatest0;
        for (std::size_t i = 0; i < inLanes; i += kLanes) {
            prefetchAhead(tailOf<T>(values, i));
            const __m128d x0 = loadPair<T>(values, i);
            const __m128d x1 = loadPair<T>(values, i + 2);
            // The second operand is the result when the first is not a number.
            least0 = _mm_min_pd(x0, least0);
            least1 = _mm_min_pd(x1, least1);
            greatest0 = _mm_max_pd(x0, greatest0);
            greatest1 = _mm_max_pd(x1, greatest1);
            const __m128d squares0 = _mm_mul_pd(x0, x0);
            const __m128d squares1 = _mm_mul_pd(x1, x1);
            sums = _mm_add_pd(sums, _mm_unpacklo_pd(x0, squares0));
            sums = _mm_add_pd(sums, _mm_unpackhi_pd(x0, squares0));
            sums = _mm_add_pd(sums, _mm_unpacklo_pd(x1, squares1));
            sums = _mm_add_pd(sums, _mm_unpackhi_pd(x1, squares1));
        }
        e.sum = lanesOf(sums).low;
        e.sumOfSquares = lanesOf(sums).high;
        const double least = lesser(lanesOf(_mm_min_pd(least0, least1)));
        const double greatest = greater(lanesOf(_mm_max_pd(greatest0, greatest1)));
        if (e.min > least) e.min = least == 0.0 ? firstZero<T>(values) : least;
        if (greatest > e.max) e.max = greatest == 0.0 ? firstZero<T>(values) : greatest;
    }
    for (std::size_t i = inLanes; i < count; ++i) {
        const auto value = static_cast<double>(elementAt<T>(values, i));
        if (e.min > value) e.min = value;
        if (value > e.max) e.max = value;
        e.sum += value;
        e.sumOfSquares += value * value;
    }
}

bool Moments::addTotals(Evaluator& e, std::int64_t sum, std::uint64_t squares, std::uint64_t oddCount) {
    const auto stored = static_cast<std::uint64_t>(e.sumOfSquares);
    if (stored + squares > kTwoTo53) {
        squares -= oddCount;
        if (stored < kTwoTo53 || stored % 4 != 0 || stored + squares > kTwoTo55) return false;
    }
    e.sum = static_cast<double>(static_cast<std::int64_t>(e.sum) + sum);
    e.sumOfSquares = static_cast<double>(stored + squares);
    return true;
}

template <class T>
bool Moments::addExactly(Evaluator& e, const void* values, std::size_t count) {
    if (!isExactSum(e.sum) || !isExactSumOfSquares(e.sumOfSquares)) return false;
    const NarrowSums sums = narrowKernelsFor<T>().sums(values, count);
    const bool isRounding = e.sumOfSquares >= static_cast<double>(kTwoTo53);
    const std::size_t odd = isRounding ? narrowKernelsFor<T>().oddCount(values, count) : 0;
    if (!addTotals(e, sums.sum, static_cast<std::uint64_t>(sums.sumOfSquares), odd)) return false;
    if (e.min > sums.min) e.min = sums.min;
    if (sums.max > e.max) e.max = sums.max;
    return true;
}

template <class T>
void Moments::addAll(Evaluator& e, const void* values, std::size_t count) {
    if constexpr (kIsNarrowInteger<T>) {
        for (std::size_t begin = 0; begin < count; begin += kNarrowBlock) {
            const std::size_t rest = count - begin;
            const std::size_t block = rest < kNarrowBlock ? rest : kNarrowBlock;
            const void* at = tailOf<T>(values, begin);
            if (block < kMinNarrowBlock || !addExactly<T>(e, at, block)) addInOrder<T>(e, at, block);
        }
    } else {
        addInOrder<T>(e, values, count);
    }
}

template <class T>
void Moments::addEach(Evaluator& e, const void* values, std::size_t count) {
    const std::size_t room = kMaxCount - e.count;
    if (count > room) {
        for (std::size_t i = 0; i < count; ++i)
            add(e, static_cast<double>(elementAt<T>(values, i)));
        return;
    }
    if constexpr (!std::is_same_v<T, double>) {
        // No other type can hold the mark.
        addAll<T>(e, values, count);
        e.count += static_cast<DWORD>(count);
    } else {
        for (std::size_t begin = 0; begin < count; begin += kMarkBlock) {
            const std::size_t rest = count - begin;
            const std::size_t block = rest < kMarkBlock ? rest : kMarkBlock;
            const void* at = tailOf<T>(values, begin);
            if (holdsMark(at, block)) {
                for (std::size_t i = 0; i < block; ++i)
                    add(e, elementAt<T>(at, i));
            } else {
                addAll<T>(e, at, block);
                e.count += static_cast<DWORD>(block);
            }
        }
    }
}

template void Moments::addEach<std::int8_t>(Evaluator&, const void*, std::size_t);
template void Moments::addEach<std::uint8_t>(Evaluator&, const void*, std::size_t);
template void Moments::addEach<std::int16_t>(Evaluator&, const void*, std::size_t);
template void Moments::addEach<std::uint16_t>(Evaluator&, const void*, std::size_t);
template void Moments::addEach<std::int32_t>(Evaluator&, const void*, std::size_t);
template void Moments::addEach<std::uint32_t>(Evaluator&, const void*, std::size_t);
template void Moments::addEach<float>(Evaluator&, const void*, std::size_t);
template void Moments::addEach<double>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<std::int8_t>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<std::uint8_t>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<std::int16_t>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<std::uint16_t>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<std::int32_t>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<std::uint32_t>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<float>(Evaluator&, const void*, std::size_t);
template void Moments::addAll<double>(Evaluator&, const void*, std::size_t);

}  // namespace velquad::statistics
