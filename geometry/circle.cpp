// Circles through three points, and the search for the best of all of them.
//
// The search must give what trying every triple gives, bit for bit. These facts let it do far less:
//   - The inverse of the circle's matrix, taken apart for its constant last row and column, is a few dozen
//     operations (circle.h) with the same roundings as the general inverse.
//   - With d the distance of a point to the centre, (d - r)^2 = (d^2 - r^2)^2 / (d + r)^2. The numerators add up to
//     a quadratic form in the circle's equation, whose coefficients are moments of the points; the denominators
//     have a common bound. This lower bound of the whole sum costs the same for any number of points.
//   - Squared deviations are never negative, so rounded partial sums never fall: a candidate that passes the
//     bound is out as soon as a part of its sum exceeds the best one. Points spread over the whole outline come
//     first, since they tell a poor circle soonest.
// Both screens leave a margin for rounding; only what survives is summed in the order that decides.
#include "geometry/circle.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
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
using velquad::geometry::CirclePair;
using velquad::geometry::CircleRows;
using velquad::geometry::circleRows;
using velquad::geometry::circlesThrough;

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

/// A lower bound of a circle's error from moments of the points.
class MomentScreen {
  public:
    MomentScreen(const tagPOINT2D* points, std::size_t count) {
        const auto n = static_cast<double>(count);
        for (std::size_t i = 0; i < count; ++i) {
            middle_.x += points[i].x / n;
            middle_.y += points[i].y / n;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const double x = points[i].x - middle_.x;
            const double y = points[i].y - middle_.y;
            const double z = x * x + y * y;
            x_ += x;
            y_ += y;
            z_ += z;
            xx_ += x * x;
            xy_ += x * y;
            yy_ += y * y;
            zx_ += z * x;
            zy_ += z * y;
            zz_ += z * z;
            farthest_ = std::max(farthest_, std::sqrt(z));
        }
        n_ = n;
        rounding_ = n * (n + kRoundingsPerCircle) * kEpsilon;
    }

    /// @return a mask of circles whose `errorOf` is greater than `limit` for certain.
    int worse(const CirclePair& circles, double limit) const {
        // Equation of the circles about the middle of the points: z + d x + e y + f = 0, z = x^2 + y^2.
        const __m128d cx = _mm_sub_pd(circles.x, _mm_set1_pd(middle_.x));
        const __m128d cy = _mm_sub_pd(circles.y, _mm_set1_pd(middle_.y));
        const __m128d d = _mm_mul_pd(cx, _mm_set1_pd(-2.0));
        const __m128d e = _mm_mul_pd(cy, _mm_set1_pd(-2.0));
        const __m128d centerSquared = _mm_add_pd(_mm_mul_pd(cx, cx), _mm_mul_pd(cy, cy));
        const __m128d f = _mm_sub_pd(centerSquared, _mm_mul_pd(circles.radius, circles.radius));

        // The sum of all (z + d x + e y + f)^2.
        const __m128d two = _mm_set1_pd(2.0);
        const auto times = [](__m128d a, double b) { return _mm_mul_pd(a, _mm_set1_pd(b)); };
        const __m128d mixed =
            _mm_add_pd(_mm_mul_pd(d, _mm_add_pd(_mm_add_pd(_mm_set1_pd(zx_), times(e, xy_)), times(f, x_))),
                       _mm_add_pd(_mm_mul_pd(e, _mm_add_pd(_mm_set1_pd(zy_), times(f, y_))), times(f, z_)));
        const __m128d pure =
            _mm_add_pd(_mm_add_pd(_mm_mul_pd(d, times(d, xx_)), _mm_mul_pd(e, times(e, yy_))),
                       _mm_add_pd(_mm_mul_pd(f, times(f, n_)), _mm_set1_pd(zz_)));
        const __m128d sum = _mm_add_pd(_mm_mul_pd(two, mixed), pure);

        // No d + r is greater than this reach.
        const __m128d reach =
            _mm_add_pd(_mm_add_pd(_mm_sqrt_pd(centerSquared), _mm_set1_pd(farthest_)), circles.radius);
        const __m128d reachSquared = _mm_mul_pd(reach, reach);
        const __m128d allowed = _mm_add_pd(_mm_set1_pd(limit * kMargin), times(reachSquared, rounding_));
        return _mm_movemask_pd(_mm_cmpgt_pd(sum, _mm_mul_pd(reachSquared, allowed)));
    }

  private:
    /// Every term of the sum is at most reach^4 a point, and suffers fewer roundings than these and one a point.
    static constexpr double kRoundingsPerCircle = 200.0;
    /// Covers the roundings of `errorOf` that are in proportion to the error.
    static constexpr double kMargin = 1.0 + 2e-6;

    tagPOINT2D middle_{0.0, 0.0};
    double n_ = 0.0;
    double x_ = 0.0;
    double y_ = 0.0;
    double z_ = 0.0;
    double xx_ = 0.0;
    double xy_ = 0.0;
    double yy_ = 0.0;
    double zx_ = 0.0;
    double zy_ = 0.0;
    double zz_ = 0.0;
    double farthest_ = 0.0;
    double rounding_ = 0.0;
};

/// Tells early that a circle's error exceeds a limit, from points in an order that jumps over the outline.
class PointScreen {
  public:
    PointScreen(const tagPOINT2D* points, std::size_t count) : points_(points), count_(count) {
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

Circle circleOfLane(const CirclePair& pair, int lane) {
    const auto pick = [lane](__m128d values) {
        return _mm_cvtsd_f64(lane == 0 ? values : _mm_unpackhi_pd(values, values));
    };
    return {pick(pair.x), pick(pair.y), pick(pair.radius)};
}

/// The error of the best of a few circles whose points lie far apart. The best of all is not worse, so that a
/// greater error need not be known exactly.
double attainableError(const tagPOINT2D* points, std::size_t count) {
    double best = kWorstError;
    const std::size_t third = count / 3;
    for (std::size_t i = 0; i < third; ++i) {
        const CirclePair pair = circlesThrough(circleRows(points[i]), circleRows(points[i + third]),
                                               circleRows(points[i + 2 * third]));
        const double error = errorOf(circleOfLane(pair, 0), points, count);
        if (best > error) best = error;
    }
    return best;
}

/// @return false when no triple has a circle with a finite error; `best` is unchanged then.
bool findBestCircle(const tagPOINT2D* points, std::size_t count, Circle& best) {
    if (points == nullptr || count < 3) return false;
    const MomentScreen momentScreen(points, count);
    const PointScreen pointScreen(points, count);
    double bestError = kWorstError;
    double limit = attainableError(points, count);
    bool isFound = false;
    for (std::size_t i = 0; i + 2 < count; ++i) {
        const CircleRows first = circleRows(points[i]);
        for (std::size_t j = i + 1; j + 1 < count; ++j) {
            const CircleRows second = circleRows(points[j]);
            const std::size_t across = (i + j + count) / 2 % count;
            for (std::size_t k = j + 1; k < count; k += 2) {
                const bool isAlone = k + 1 == count;
                const CirclePair pair =
                    circlesThrough(first, second, circleRows(points[k], points[isAlone ? k : k + 1]));
                const int rejected = momentScreen.worse(pair, limit) | (isAlone ? 2 : 0);
                for (int lane = 0; lane < 2; ++lane) {
                    if ((rejected & (1 << lane)) != 0) continue;
                    const Circle circle = circleOfLane(pair, lane);
                    if (pointScreen.isWorse(circle, across, limit)) continue;
                    const double error = errorOf(circle, points, count);
                    if (!(bestError > error)) continue;
                    best = circle;
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
    for (std::size_t i = 0; points != nullptr && i < count; ++i)
        copies[i] = velquad::frame::toPoint2D(points[i]);
    Circle best;
    if (points != nullptr && findBestCircle(copies, count, best)) {
        center->x = velquad::frame::lroundToInt32(best.x);
        center->y = velquad::frame::lroundToInt32(best.y);
        *radius = best.radius;
    }
    return 1;
}
