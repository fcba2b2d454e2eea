// Pearson's correlation from five running sums.
//
// Pairs are added in their order. Where the order does not matter, because all sums are integers and stay within
// 2^53, pairs of integers of 8 and 16 bits are summed in blocks. The two forms for unsigned integers sum a whole call
// as integers whatever the stored sums are, and round once.
#include <emmintrin.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "statistics/element_pair.h"
#include "statistics/element_type.h"
#include "statistics/narrow_sums.h"
#include "statistics/prefetch.h"
#include "velquad/statistics.h"

namespace velquad::statistics {

namespace {

/// Integers up to this stay exact in doubles through a block: 2^53 less the most that a block of products can add.
constexpr auto kMaxExactSum =
    static_cast<double>((std::uint64_t{1} << 53) - kNarrowBlock * (std::uint64_t{1} << 32));
/// Fewer pairs than this take no longer one by one.
constexpr std::size_t kMinNarrowBlock = 32;

bool isExact(double sum) {
    return sum >= -kMaxExactSum && sum <= kMaxExactSum &&
           static_cast<double>(static_cast<std::int64_t>(sum)) == sum;
}

/// A sum of a whole call fits 63 bits for every count.
template <class T>
constexpr bool fitsForEveryCount() {
    constexpr std::uint64_t kLimit = std::numeric_limits<T>::max();
    return std::numeric_limits<int>::max() * kLimit * kLimit <= std::numeric_limits<std::int64_t>::max();
}
static_assert(fitsForEveryCount<std::uint8_t>() && fitsForEveryCount<std::uint16_t>());

}  // namespace

struct PairSums {
    using Evaluator = CMatCorrelationEvaluator;

    static_assert(offsetof(Evaluator, sumX) == 0);
    static_assert(offsetof(Evaluator, sumXX) == 8);
    static_assert(offsetof(Evaluator, sumY) == 16);
    static_assert(offsetof(Evaluator, sumYY) == 24);
    static_assert(offsetof(Evaluator, sumXY) == 32);
    static_assert(offsetof(Evaluator, count) == 40);
    static_assert(sizeof(Evaluator) == 48);

    static void add(Evaluator& e, double x, double y) {
        e.sumX += x;
        e.sumXX += x * x;
        e.sumXY += x * y;
        e.sumY += y;
        e.sumYY += y * y;
    }

    static void addTotals(Evaluator& e, const NarrowPairSums& sums) {
        e.sumX += static_cast<double>(sums.x);
        e.sumXX += static_cast<double>(sums.xx);
        e.sumY += static_cast<double>(sums.y);
        e.sumYY += static_cast<double>(sums.yy);
        e.sumXY += static_cast<double>(sums.xy);
    }

    /// The five chains of additions are three vectors of two pairs each.
    template <class T>
    static void addInOrder(Evaluator& e, const void* x, const void* y, std::size_t count) {
        const std::size_t inPairs = count - count % 2;
        __m128d sums = _mm_setr_pd(e.sumX, e.sumY);
        __m128d squares = _mm_setr_pd(e.sumXX, e.sumYY);
        __m128d products = _mm_set_sd(e.sumXY);
        for (std::size_t i = 0; i < inPairs; i += 2) {
            prefetchAhead(tailOf<T>(x, i));
            prefetchAhead(tailOf<T>(y, i));
            const __m128d a = loadPair<T>(x, i);
            const __m128d b = loadPair<T>(y, i);
            const __m128d first = _mm_unpacklo_pd(a, b);
            const __m128d second = _mm_unpackhi_pd(a, b);
            const __m128d product = _mm_mul_pd(a, b);
            sums = _mm_add_pd(_mm_add_pd(sums, first), second);
            squares = _mm_add_pd(_mm_add_pd(squares, _mm_mul_pd(first, first)), _mm_mul_pd(second, second));
            products = _mm_add_sd(_mm_add_sd(products, product), _mm_unpackhi_pd(product, product));
        }
        e.sumX = lanesOf(sums).low;
        e.sumY = lanesOf(sums).high;
        e.sumXX = lanesOf(squares).low;
        e.sumYY = lanesOf(squares).high;
        e.sumXY = lanesOf(products).low;
        if (inPairs < count) {
            add(e, static_cast<double>(elementAt<T>(x, inPairs)),
                static_cast<double>(elementAt<T>(y, inPairs)));
        }
    }

    template <class T>
    static bool addExactly(Evaluator& e, const void* x, const void* y, std::size_t count) {
        if (!isExact(e.sumX) || !isExact(e.sumXX) || !isExact(e.sumY) || !isExact(e.sumYY) ||
            !isExact(e.sumXY))
            return false;
        addTotals(e, narrowKernelsFor<T>().pairSums(x, y, count));
        return true;
    }

    /// Leaves the bits behind that the pairs one by one leave.
    template <class T>
    static int addAll(Evaluator& e, const void* x, const void* y, int count) {
        if (count > 0 && (x == nullptr || y == nullptr)) return 0;
        const std::size_t n = count > 0 ? static_cast<std::size_t>(count) : 0;
        if constexpr (kIsNarrowInteger<T>) {
            for (std::size_t begin = 0; begin < n; begin += kNarrowBlock) {
                const std::size_t rest = n - begin;
                const std::size_t block = rest < kNarrowBlock ? rest : kNarrowBlock;
                const void* blockX = tailOf<T>(x, begin);
                const void* blockY = tailOf<T>(y, begin);
                if (block < kMinNarrowBlock || !addExactly<T>(e, blockX, blockY, block))
                    addInOrder<T>(e, blockX, blockY, block);
            }
        } else {
            addInOrder<T>(e, x, y, n);
        }
        // Kept: the count is added even when nothing was read, so a negative one lowers the number of pairs.
        e.count += static_cast<DWORD>(count);
        return 1;
    }

    /// Sums the call as integers and rounds once.
    template <class T>
    static int addWhole(Evaluator& e, const void* x, const void* y, int count) {
        if (count <= 0) return addAll<T>(e, x, y, count);
        if (x == nullptr || y == nullptr) return 0;
        const auto n = static_cast<std::size_t>(count);
        NarrowPairSums total{};
        for (std::size_t begin = 0; begin < n; begin += kNarrowBlock) {
            const std::size_t rest = n - begin;
            const NarrowPairSums block = narrowKernelsFor<T>().pairSums(
                tailOf<T>(x, begin), tailOf<T>(y, begin), rest < kNarrowBlock ? rest : kNarrowBlock);
            total.x += block.x;
            total.y += block.y;
            total.xx += block.xx;
            total.yy += block.yy;
            total.xy += block.xy;
        }
        addTotals(e, total);
        e.count += static_cast<DWORD>(count);
        return 1;
    }

    static double correlation(const Evaluator& e) {
        if (e.count == 0) return kNoValue;
        const double n = e.count;
        const double varianceY = e.sumYY / n - e.sumY / n * e.sumY / n;
        const double varianceX = e.sumXX / n - e.sumX / n * e.sumX / n;
        // Kept: rounding can make one of the variances negative, and the root not a number.
        const double product = varianceY * varianceX;
        if (product == 0.0) return 0.0;
        const double covariance = e.sumXY / n - e.sumX / n * e.sumY / n;
        return covariance / std::sqrt(product);
    }
};

}  // namespace velquad::statistics

using velquad::statistics::PairSums;

CMatCorrelationEvaluator::CMatCorrelationEvaluator()
    : sumX(0.0), sumXX(0.0), sumY(0.0), sumYY(0.0), sumXY(0.0), count(0) {}

CMatCorrelationEvaluator::~CMatCorrelationEvaluator() = default;
CMatCorrelationEvaluator& CMatCorrelationEvaluator::operator=(const CMatCorrelationEvaluator& other) =
    default;

int CMatCorrelationEvaluator::AddValuePair(double x, double y) {
    count += 1;
    PairSums::add(*this, x, y);
    return 1;
}

int CMatCorrelationEvaluator::AddValuePairs(unsigned char* x, unsigned char* y, int n) {
    return PairSums::addWhole<std::uint8_t>(*this, x, y, n);
}

int CMatCorrelationEvaluator::AddValuePairs(unsigned short* x, unsigned short* y, int n) {
    return PairSums::addWhole<std::uint16_t>(*this, x, y, n);
}

int CMatCorrelationEvaluator::AddValuePairs(float* x, float* y, int n) {
    return PairSums::addAll<float>(*this, x, y, n);
}

int CMatCorrelationEvaluator::AddValuePairs(double* x, double* y, int n) {
    return PairSums::addAll<double>(*this, x, y, n);
}

int CMatCorrelationEvaluator::AddValuePairs(void* x, void* y, int n, unsigned int typeCode) {
    int result = 0;
    velquad::statistics::withElementType(typeCode, [&]<class T>(std::type_identity<T> /*type*/) {
        result = PairSums::addAll<T>(*this, x, y, n);
    });
    return result;
}

double CMatCorrelationEvaluator::ComputeCorrelation() {
    return PairSums::correlation(*this);
}
