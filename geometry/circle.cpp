// Circles through three points, and the search for the best of all of them.
//
// The search must give what trying every triple gives, bit for bit. Three facts let it do far less:
//   - The inverse of the circle's matrix, taken apart for its constant last row and column, is a few dozen
//     operations (circle.h) with the same roundings as the general inverse.
//   - Squared deviations are never negative, so rounded partial sums never fall: a candidate is out as soon as
//     a part of its sum exceeds the best one.
//   - A part of the sum taken in any other order differs by rounding only. Points spread over the whole outline
//     come first, since they tell a poor circle soonest, and a margin covers the rounding; only what survives
//     is summed in the order that decides.
#include "geometry/circle.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <numeric>

#include "frame/convert.h"
#include "geometry/distance.h"
#include "transform/matrix4.h"
#include "velquad/geometry.h"

namespace {

using velquad::geometry::Circle;
using velquad::geometry::circlesThrough;
using velquad::geometry::kCircleBatch;

/// No sum of squared deviations is taken that reaches this one.
constexpr double kWorstError = 1.7e308;
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

/// Distance to the centre less radius, squared, summed in the order of the points.
double errorOf(const Circle& circle, const tagPOINT2D* points, std::size_t count) {
    const tagPOINT2D center{circle.x, circle.y};
    double error = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double deviation = velquad::geometry::distance(points[i], center) - circle.radius;
        error += deviation * deviation;
    }
    return error;
}

/// Tells early that a circle's error exceeds a limit, from points in an order that jumps over the outline.
class Screen {
  public:
    Screen(const tagPOINT2D* points, std::size_t count) : points_(points), count_(count) {
        // The golden section spreads any number of first points evenly.
        stride_ = std::max<std::size_t>(static_cast<std::size_t>(0.381966 * static_cast<double>(count)), 1);
        while (std::gcd(stride_, count) != 1)
            ++stride_;
        // Each of two sums in different orders is off by less than count roundings.
        margin_ = 1.0 + 4.0 * static_cast<double>(count) * kEpsilon;
    }

    /// @param start  the point to begin with; best one far from those of the circle.
    /// @return true only if `errorOf` the circle is greater than `limit` or not a number. False decides nothing.
    bool isWorse(const Circle& circle, std::size_t start, double limit) const {
        const __m128d centerX = _mm_set1_pd(circle.x);
        const __m128d centerY = _mm_set1_pd(circle.y);
        const __m128d radius = _mm_set1_pd(circle.radius);
        const double widened = limit * margin_;
        __m128d sums = _mm_setzero_pd();
        std::size_t place = start;
        const auto nextPoint = [&] {
            const __m128d point = _mm_loadu_pd(&points_[place].x);
            place += stride_;
            if (place >= count_) place -= count_;
            return point;
        };
        const auto addTwo = [&] {
            const __m128d first = nextPoint();
            const __m128d second = nextPoint();
            const __m128d dx = _mm_sub_pd(centerX, _mm_unpacklo_pd(first, second));
            const __m128d dy = _mm_sub_pd(centerY, _mm_unpackhi_pd(first, second));
            const __m128d distance = _mm_sqrt_pd(_mm_add_pd(_mm_mul_pd(dx, dx), _mm_mul_pd(dy, dy)));
            const __m128d deviation = _mm_sub_pd(distance, radius);
            sums = _mm_add_pd(sums, _mm_mul_pd(deviation, deviation));
        };
        for (std::size_t left = count_; left >= 4; left -= 4) {
            addTwo();
            addTwo();
            // Written so that a not-a-number, which stays one in the whole sum, counts as worse.
            if (!(_mm_cvtsd_f64(_mm_add_sd(sums, _mm_unpackhi_pd(sums, sums))) <= widened)) return true;
        }
        return false;
    }

  private:
    const tagPOINT2D* points_;
    std::size_t count_;
    std::size_t stride_ = 1;
    double margin_ = 1.0;
};

/// The error of the best of a few circles whose points lie far apart. The best of all is not worse, so that a
/// greater error need not be known exactly.
double attainableError(const tagPOINT2D* points, std::size_t count) {
    double best = kWorstError;
    const std::size_t third = count / 3;
    for (std::size_t i = 0; i < third; ++i) {
        const tagPOINT2D* last = &points[i + 2 * third];
        Circle circle;
        circlesThrough(points[i], points[i + third], last, 1, &circle);
        const double error = errorOf(circle, points, count);
        if (best > error) best = error;
    }
    return best;
}

/// @return false when no triple has a circle with a finite error; `best` is unchanged then.
bool findBestCircle(const tagPOINT2D* points, std::size_t count, Circle& best) {
    if (count < 3) return false;
    const Screen screen(points, count);
    double bestError = kWorstError;
    double limit = attainableError(points, count);
    bool isFound = false;
    Circle circles[kCircleBatch];
    for (std::size_t i = 0; i + 2 < count; ++i) {
        for (std::size_t j = i + 1; j + 1 < count; ++j) {
            const std::size_t across = (i + j + count) / 2 % count;
            for (std::size_t k = j + 1; k < count; k += kCircleBatch) {
                const std::size_t batch = std::min(kCircleBatch, count - k);
                circlesThrough(points[i], points[j], &points[k], batch, circles);
                for (std::size_t b = 0; b < batch; ++b) {
                    if (screen.isWorse(circles[b], across, limit)) continue;
                    const double error = errorOf(circles[b], points, count);
                    if (!(bestError > error)) continue;
                    best = circles[b];
                    bestError = error;
                    limit = std::min(limit, bestError);
                    isFound = true;
                }
            }
        }
    }
    return isFound;
}

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};

}  // namespace

int matGetCircleThrough3Points(tagPOINT2D* const points, tagPOINT2D* center, double* radius) {
    if (points == nullptr) return 0;
    double matrix[4][4] = {};
    double squares[4] = {0.0, 0.0, 0.0, 1.0};
    for (int i = 0; i < 3; ++i) {
        matrix[i][0] = points[i].x;
        matrix[i][1] = points[i].y;
        matrix[i][2] = 1.0;
        squares[i] = -(points[i].x * points[i].x) - points[i].y * points[i].y;
    }
    matrix[3][3] = 1.0;
    double inverse[4][4];
    double solution[4];
    if (!velquad::transform::invert(inverse, matrix, false)) return 0;
    if (!velquad::transform::transformColumn(solution, inverse, squares)) return 0;
    const Circle circle = velquad::geometry::circleOfEquation(solution[0], solution[1], solution[2]);
    if (center != nullptr) *center = {circle.x, circle.y};
    if (radius != nullptr) *radius = circle.radius;
    return 1;
}

extern "C" int poly2dLeastSquareCircle(const tagPOINT2D* points, unsigned int count, double* center,
                                       double* radius) {
    Circle best;
    if (findBestCircle(points, count, best)) {
        center[0] = best.x;
        center[1] = best.y;
        *radius = best.radius;
    }
    return 1;
}

extern "C" int polyLeastSquareCircle(const tagPOINT* points, unsigned int count, tagPOINT* center,
                                     double* radius) {
    const std::size_t size = std::max<std::size_t>(count, 1) * sizeof(tagPOINT2D);
    const std::unique_ptr<void, FreeDeleter> block(std::malloc(size));
    if (block == nullptr) return 0;
    auto* copies = static_cast<tagPOINT2D*>(block.get());
    for (std::size_t i = 0; i < count; ++i)
        copies[i] = velquad::frame::toPoint2D(points[i]);
    Circle best;
    if (findBestCircle(copies, count, best)) {
        center->x = velquad::frame::lroundToInt32(best.x);
        center->y = velquad::frame::lroundToInt32(best.y);
        *radius = best.radius;
    }
    return 1;
}
