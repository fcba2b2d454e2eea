// Mean and standard deviation from two running sums.
#include "fitting/sample_sums.h"
#include "velquad/fitting.h"

using velquad::fitting::SampleSums;

namespace math {

static_assert(sizeof(CSampleStatistics) == 24);

CSampleStatistics::CSampleStatistics() : count(0), sum(0.0), sumOfSquares(0.0) {}

CSampleStatistics& CSampleStatistics::operator=(const CSampleStatistics& other) = default;

CSampleStatistics& CSampleStatistics::operator=(CSampleStatistics&& other) noexcept = default;

void CSampleStatistics::Sample(double value) {
    SampleSums sums{count, sum, sumOfSquares};
    sums.add(value);
    count = sums.count;
    sum = sums.sum;
    sumOfSquares = sums.sumOfSquares;
}

double CSampleStatistics::Mean() const {
    return SampleSums{count, sum, sumOfSquares}.mean();
}

double CSampleStatistics::StdDev() const {
    return SampleSums{count, sum, sumOfSquares}.deviation();
}

unsigned int CSampleStatistics::size() const {
    return count;
}

}  // namespace math
