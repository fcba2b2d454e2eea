// Package wrapping with nothing left out, for points that have x and y. The library's version must give the same
// order of all points.
#ifndef VELQUAD_TESTS_SUPPORT_HULL_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_HULL_REFERENCE_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "tests/support/polygon_reference.h"
#include "velquad/types.h"

namespace velquad::test::reference {

inline double hullDifference(double from, double to) {
    return to - from;
}
inline double hullDifference(LONG from, LONG to) {
    return minus(static_cast<std::int32_t>(to), static_cast<std::int32_t>(from));
}

template <class Point>
double hullAngle(const Point& a, const Point& b) {
    const double dx = hullDifference(a.x, b.x);
    const double dy = hullDifference(a.y, b.y);
    const double s = std::fabs(dx) + std::fabs(dy);
    double t = s < 1e-7 ? 0.0 : dy / s;
    if (dx < 0) {
        t = 2 - t;
    } else if (dy < 0) {
        t = t + 4;
    }
    return t * 90;
}

template <class Point>
double hullDistance(const Point& a, const Point& b) {
    const double dx = hullDifference(a.x, b.x);
    const double dy = hullDifference(a.y, b.y);
    return dx * dx + dy * dy;
}

/// Permutes the first `count` points. @return how many of them are the hull.
template <class Point>
std::size_t wrapHull(std::vector<Point>& points, std::size_t count) {
    std::size_t left = 0;
    std::size_t right = 0;
    std::size_t lowest = 0;
    for (std::size_t i = 1; i < count; ++i) {
        if (points[i].y < points[lowest].y) {
            lowest = left = right = i;
        } else if (std::fabs(hullDifference(points[lowest].y, points[i].y)) < 1e-7) {
            if (points[i].x < points[left].x) left = i;
            if (points[i].x > points[right].x) right = i;
        }
    }
    std::size_t m = 0;
    if (count != 0) {
        std::swap(points[0], points[left]);
        if (right == 0) {
            right = left;
        } else if (right == left) {
            right = 0;
        }
        if (right != 0) {
            std::swap(points[1], points[right]);
            m = 1;
        }
    }
    double theta = 0.0;
    std::size_t chosen = m;
    while (m < count) {
        std::swap(points[m], points[chosen]);
        const Point current = points[m];
        ++m;
        double best = 360.0;
        double bestDistance = 0.0;
        chosen = count;
        for (std::size_t i = m; i <= count; ++i) {
            const Point& q = i == count ? points[0] : points[i];
            const double angle = hullAngle(current, q);
            if (!(angle > theta)) continue;
            if (std::fabs(angle - best) < 1e-7) {
                if (hullDistance(current, q) > bestDistance) {
                    chosen = i;
                    bestDistance = hullDistance(current, q);
                }
            } else if (angle < best) {
                best = angle;
                chosen = i;
                bestDistance = hullDistance(current, q);
            }
        }
        if (chosen == count) return m;
        theta = best;
    }
    return m + 1;
}

}  // namespace velquad::test::reference

#endif  // VELQUAD_TESTS_SUPPORT_HULL_REFERENCE_H
