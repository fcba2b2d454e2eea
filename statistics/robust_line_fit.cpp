// Lines by least absolute deviations. For a slope the best intercept is the median of the offsets; the best slope
// is where the signs of the residuals, weighted by the abscissae, balance. That balance falls with the slope, so
// its zero is bracketed from the least-squares slope and then bisected.
//
// The time goes into medians. Those of large arrays are selected from the few offsets between two bounds that a
// sample gives; a single pass finds them while it computes the offsets. The median is the same value however it
// is selected, but for zeros of both signs and not-a-numbers: where these can come up, the plain selection runs.
// Source of the bounds: R. W. Floyd and R. L. Rivest, Expected Time Bounds for Selection, 1975.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "statistics/selection.h"
#include "velquad/framework.h"
#include "velquad/statistics.h"

namespace {

/// Residuals below this, relative to the ordinate unless that is 0, count as zero.
constexpr double kNullResidual = 1e-7;
/// The start line's determinant must not be below this.
constexpr double kLeastDeterminant = 2.220446049250313e-16;
/// The first step to the side of the least-squares slope, in its standard deviations.
constexpr double kFirstStep = 3.0;
/// How far the next step of the bracketing goes beyond the last one, in lengths of that.
constexpr double kGrowth = 1.6;
/// Where the bisection ends, in standard deviations of the least-squares slope.
constexpr double kSlopeTolerance = 0.01;

/// Arrays from this size on are narrowed down by a sample before a selection: one element of each 32, but not more
/// than keep a sample cheap.
constexpr std::size_t kNarrowFrom = 1U << 12;
constexpr std::size_t kSampleStride = 32;
constexpr std::size_t kLargestSample = 1U << 13;

/// Ranks of a sample between which the median of the whole lies, but for one time in 10000: the rank that belongs to
/// it has a standard deviation of half the root of the sample's size, and there are 4 of these to either side.
struct SampleRanks {
    explicit SampleRanks(std::size_t sampleSize) {
        const auto reach = static_cast<std::size_t>(2.0 * std::sqrt(static_cast<double>(sampleSize)));
        low = sampleSize / 2 - reach;
        high = sampleSize / 2 + reach;
    }
    std::size_t low;
    std::size_t high;
};

struct Line {
    double slope;
    double intercept;
};

/// Sums of the pairs, x the independent coordinate.
struct Sums {
    double x;
    double y;
    double xx;
    double yy;
    double xy;
};

/// The ranks whose values make up a median; equal for an odd count.
struct MiddleRanks {
    explicit MiddleRanks(std::size_t n) : high(n / 2 + 1), low((n + 1) / 2) {}
    std::size_t high;
    std::size_t low;
};

/// The median from values[1] to values[n], when its ranks among these are known.
double medianAt(double* values, std::size_t n, const MiddleRanks& ranks, std::size_t below) {
    const double high = velquad::statistics::kthSmallest(values, n, ranks.high - below);
    if (ranks.low == ranks.high) return high;
    return 0.5 * (high + velquad::statistics::kthSmallest(values, n, ranks.low - below));
}

/// One fit through pairs[1] to pairs[n].
class RobustFit {
  public:
    RobustFit(const tagPOINT2D* pairs, std::size_t n, const Sums& sums)
        : pairs_(pairs), n_(n), sums_(sums), work_(std::make_unique_for_overwrite<double[]>(n + 1)) {}

    /// @return nothing when the start line is degenerate.
    std::optional<Line> run();

  private:
    /// The balance of signs at a slope. Leaves the median of the offsets in `median_`.
    double slopeBalance(double slope);

    double medianOfOffsets(double slope);
    std::optional<double> narrowedMedian(double slope);
    double offset(std::size_t j, double slope) const { return pairs_[j].y - slope * pairs_[j].x; }

    /// The sum of the squared residuals of a line. Also finds out whether medians are unambiguous.
    double residualsOf(const Line& line);

    const tagPOINT2D* pairs_;  // from index 1 on
    std::size_t n_;
    Sums sums_;
    std::unique_ptr<double[]> work_;  // from index 1 on
    bool isOrdinary_ = false;         // all coordinates are finite and no ordinate is -0.0
    double median_ = 0.0;
};

double RobustFit::residualsOf(const Line& line) {
    double sum = 0.0;
    bool hasNegativeZero = false;
    for (std::size_t j = 1; j <= n_; ++j) {
        const double y = pairs_[j].y;
        const double residual = y - (line.slope * pairs_[j].x + line.intercept);
        sum += residual * residual;
        hasNegativeZero |= y == 0.0 && std::signbit(y);
    }
    // Sums of squares are finite only if all that went into them is.
    isOrdinary_ = std::isfinite(sums_.xx) && std::isfinite(sums_.yy) && !hasNegativeZero;
    return sum;
}

/// The median by a pass that keeps the offsets within two bounds; nothing when the bounds miss it.
std::optional<double> RobustFit::narrowedMedian(double slope) {
    // One of each of equal strides, at a place that does not follow a period of the data. The last place is short of
    // n by far more than rounding.
    const std::size_t sampleSize = std::min(n_ / kSampleStride, kLargestSample);
    const double stride = static_cast<double>(n_) / static_cast<double>(sampleSize);
    std::uint32_t scrambled = 0;
    for (std::size_t i = 0; i < sampleSize; ++i) {
        scrambled += 0x9E3779B9U;
        const double place = (static_cast<double>(i) + static_cast<double>(scrambled) * 0x1p-32) * stride;
        work_[i + 1] = offset(1 + static_cast<std::size_t>(place), slope);
    }
    const SampleRanks sampleRanks(sampleSize);
    const double lowBound = velquad::statistics::kthSmallest(work_.get(), sampleSize, sampleRanks.low);
    const double highBound = velquad::statistics::kthSmallest(work_.get(), sampleSize, sampleRanks.high);

    std::size_t below = 0;
    std::size_t inside = 0;
    for (std::size_t j = 1; j <= n_; ++j) {
        const double value = offset(j, slope);
        work_[inside + 1] = value;
        inside += static_cast<std::size_t>((value >= lowBound) & (value <= highBound));
        below += static_cast<std::size_t>(value < lowBound);
    }
    const MiddleRanks ranks(n_);
    if (below >= ranks.low || below + inside < ranks.high) return std::nullopt;
    return medianAt(work_.get(), inside, ranks, below);
}

double RobustFit::medianOfOffsets(double slope) {
    if (n_ >= kNarrowFrom && isOrdinary_ && std::isfinite(slope)) {
        if (const std::optional<double> median = narrowedMedian(slope)) return *median;
    }
    for (std::size_t j = 1; j <= n_; ++j)
        work_[j] = offset(j, slope);
    return medianAt(work_.get(), n_, MiddleRanks(n_), 0);
}

double RobustFit::slopeBalance(double slope) {
    median_ = medianOfOffsets(slope);
    double balance = 0.0;
    for (std::size_t j = 1; j <= n_; ++j) {
        const double x = pairs_[j].x;
        const double y = pairs_[j].y;
        double residual = y - (slope * x + median_);
        if (y != 0.0) residual /= std::fabs(y);
        // The sign goes over to the abscissa without a branch, as it is as good as random. Adding 0.0 is no change:
        // the balance is never -0.0.
        balance += std::fabs(residual) > kNullResidual ? x * std::copysign(1.0, residual) : 0.0;
    }
    return balance;
}

std::optional<Line> RobustFit::run() {
    const auto n = static_cast<double>(n_);
    const double determinant = n * sums_.xx - sums_.x * sums_.x;
    if (kLeastDeterminant > determinant) return std::nullopt;
    const Line start{(n * sums_.xy - sums_.x * sums_.y) / determinant,
                     (sums_.xx * sums_.y - sums_.xy * sums_.x) / determinant};
    const double sigma = std::sqrt(residualsOf(start) / determinant);

    double b1 = start.slope;
    double f1 = slopeBalance(b1);
    const double firstStep = std::fabs(kFirstStep * sigma);
    double b2 = f1 > 0.0 ? b1 + firstStep : b1 - firstStep;
    double f2 = slopeBalance(b2);
    double slope = b1;
    if (b2 == b1) return Line{slope, median_};

    // Ends: steps grow until the balance changes its sign, or at the latest until the offsets overflow and no
    // residual counts any more.
    while (f1 * f2 > 0.0) {
        slope = b2 + kGrowth * (b2 - b1);
        b1 = b2;
        f1 = f2;
        b2 = slope;
        f2 = slopeBalance(b2);
    }
    const double tolerance = kSlopeTolerance * sigma;
    while (std::fabs(b2 - b1) > tolerance) {
        slope = (b2 - b1) * 0.5 + b1;
        if (slope == b1 || slope == b2) break;
        const double f = slopeBalance(slope);
        // Kept: a balance of exactly 0 replaces f1, and from then on every slope counts as its side. The search ends
        // at b2, although the zero was met.
        if (f * f1 >= 0.0) {
            f1 = f;
            b1 = slope;
        } else {
            b2 = slope;
        }
    }
    return Line{slope, median_};
}

/// Reads the independent coordinate of pairs as x for as long as it lives.
class PairsByIndependent {
  public:
    PairsByIndependent(std::vector<tagPOINT2D>& points, bool yOfX) : points_(points), yOfX_(yOfX) {
        exchange();
    }
    PairsByIndependent(const PairsByIndependent&) = delete;
    PairsByIndependent& operator=(const PairsByIndependent&) = delete;
    ~PairsByIndependent() { exchange(); }

  private:
    void exchange() {
        if (yOfX_) return;
        for (tagPOINT2D& point : points_)
            std::swap(point.x, point.y);
    }

    std::vector<tagPOINT2D>& points_;
    bool yOfX_;
};

/// @return nothing when the start line is degenerate or memory is lacking.
std::optional<Line> fitGuarded(std::vector<tagPOINT2D>& points, std::size_t count, bool yOfX,
                               const Sums& sums) {
    // An object whose pairs were moved away has nothing to fit.
    if (points.size() <= count) return std::nullopt;
    try {
        const PairsByIndependent pairs(points, yOfX);
        return RobustFit(points.data(), count, sums).run();
    } catch (CException* exception) {
        // A host of the class framework may report lack of memory this way.
        exception->Delete();
        return std::nullopt;
    } catch (...) {
        return std::nullopt;
    }
}

}  // namespace

/// The pairs behind a fit, for those who know how many there will be.
struct velquad::statistics::RobustPairs {
    static void reserve(CMatRobustLineFit& fit, std::size_t pairCount) { fit.points.reserve(pairCount + 1); }
};

extern "C" int matRobustLineFit(const double* x, const double* y, unsigned int count, double* slope,
                                double* intercept, int* yOfX) {
    if (x == nullptr || y == nullptr) return 0;
    try {
        CMatRobustLineFit fit;
        velquad::statistics::RobustPairs::reserve(fit, count);
        for (unsigned int i = 0; i < count; ++i)
            fit.AddValue(x[i], y[i]);
        return fit.CalcRegressionLine(slope, intercept, yOfX);
    } catch (CException* exception) {
        exception->Delete();
        return 0;
    } catch (...) {
        return 0;
    }
}

CMatRobustLineFit::CMatRobustLineFit(double ignored)
    : CMatRegressionLine(ignored), points(1, tagPOINT2D{0.0, 0.0}) {}

CMatRobustLineFit::CMatRobustLineFit(const CMatRobustLineFit& other) = default;
CMatRobustLineFit::CMatRobustLineFit(CMatRobustLineFit&& other) noexcept = default;
CMatRobustLineFit::~CMatRobustLineFit() = default;

CMatRobustLineFit& CMatRobustLineFit::operator=(const CMatRobustLineFit& other) {
    if (this == &other) return *this;
    // The pairs first: a lack of memory leaves the object as it was.
    points = other.points;
    CMatRegressionLine::operator=(other);
    return *this;
}

int CMatRobustLineFit::AddValue(double x, double y) {
    if (x == ignoreValue || y == ignoreValue) return 1;
    // The pair first: a lack of memory leaves the object as it was.
    points.push_back({x, y});
    return CMatRegressionLine::AddValue(x, y);
}

int CMatRobustLineFit::CalcRegressionLine(double* slopeOut, double* interceptOut, int* yOfXOut) {
    if (count == 0) return 0;
    if (CMatRegressionLine::CalcRegressionLine(nullptr, nullptr, nullptr) == 0) return 0;
    const bool isOverX = yOfX != 0;
    const Sums sums = isOverX ? Sums{sumX, sumY, sumXX, sumYY, sumXY} : Sums{sumY, sumX, sumYY, sumXX, sumXY};
    const std::optional<Line> line = fitGuarded(points, count, isOverX, sums);
    slope = line ? line->slope : velquad::kNoValue;
    intercept = line ? line->intercept : velquad::kNoValue;
    if (slopeOut != nullptr) *slopeOut = slope;
    if (interceptOut != nullptr) *interceptOut = intercept;
    if (yOfXOut != nullptr) *yOfXOut = yOfX;
    return line ? 1 : 0;
}
