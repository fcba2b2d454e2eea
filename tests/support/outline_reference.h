// The plain versions of outline operations whose shipped versions take another way: slow, one step at a time.
#ifndef VELQUAD_TESTS_SUPPORT_OUTLINE_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_OUTLINE_REFERENCE_H

#include <cstddef>
#include <vector>

#include "velquad/types.h"

namespace velquad::test {

/// Removes point i while it repeats point i - 1, by moving all points behind it down one place.
template <class IsRepeat>
std::vector<tagPOINT> removeRepeatsOneByOne(std::vector<tagPOINT> points, IsRepeat isRepeat) {
    std::size_t i = 1;
    while (i < points.size()) {
        if (isRepeat(points[i - 1], points[i])) {
            points.erase(points.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            ++i;
        }
    }
    return points;
}

/// The walk over doubles laid out as x, y, x, y, ...: a removed point is overwritten by moving as many
/// doubles as there are points behind it, half of the tail. All doubles stay in the list; `*count` is the
/// number of points.
inline std::vector<double> removeDoublePointsMovingHalfTails(std::vector<double> values, std::size_t* count) {
    const auto isNear = [](double a, double b) { return a - b < 1e-7 && b - a < 1e-7; };
    std::size_t i = 1;
    while (i < *count) {
        if (isNear(values[2 * i - 2], values[2 * i]) && isNear(values[2 * i - 1], values[2 * i + 1])) {
            const std::size_t moved = *count - i - 1;
            for (std::size_t k = 0; k < moved; ++k)
                values[2 * i + k] = values[2 * i + 2 + k];
            --*count;
        } else {
            ++i;
        }
    }
    return values;
}

/// The points at multiples of `step`, and the last one.
inline std::vector<tagPOINT> everyNthPoint(const std::vector<tagPOINT>& points, std::size_t step) {
    std::vector<tagPOINT> kept;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (step < 2 || i % step == 0 || i + 1 == points.size()) kept.push_back(points[i]);
    }
    return kept;
}

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_OUTLINE_REFERENCE_H
