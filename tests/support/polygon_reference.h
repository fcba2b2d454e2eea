// Slow, obvious versions of the outline queries, step after step and with arithmetic of their own. The library's
// versions must give the same bits.
#ifndef VELQUAD_TESTS_SUPPORT_POLYGON_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_POLYGON_REFERENCE_H

#include <cmath>
#include <cstdint>
#include <vector>

#include "velquad/types.h"

namespace velquad::test::reference {

using Outline = std::vector<tagPOINT>;

inline std::int32_t wrapped(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}
inline std::int32_t minus(std::int32_t a, std::int32_t b) {
    return wrapped(std::int64_t{a} - b);
}
inline std::int32_t plus(std::int32_t a, std::int32_t b) {
    return wrapped(std::int64_t{a} + b);
}
inline std::int32_t times(std::int32_t a, std::int32_t b) {
    return wrapped(std::int64_t{a} * b);
}
inline bool same(const tagPOINT& a, const tagPOINT& b) {
    return a.x == b.x && a.y == b.y;
}

/// Position of a point along a line of integer points.
inline double scaleFactor(const tagPOINT& a, const tagPOINT& b, const tagPOINT2D& point) {
    const std::int32_t dx = minus(b.x, a.x);
    const std::int32_t dy = minus(b.y, a.y);
    if (dx == 0 && dy == 0) {
        return 1e-7 > std::fabs(point.x - a.x) && 1e-7 > std::fabs(point.y - a.y) ? 0.0 : kNoValue;
    }
    const std::int32_t sizeX = dx < 0 ? minus(0, dx) : dx;
    const std::int32_t sizeY = dy < 0 ? minus(0, dy) : dy;
    return sizeX > sizeY ? (point.x - a.x) / dx : (point.y - a.y) / dy;
}

/// The same for an integer point, whose offset wraps around.
inline double scaleFactor(const tagPOINT& a, const tagPOINT& b, const tagPOINT& point) {
    const std::int32_t dx = minus(b.x, a.x);
    const std::int32_t dy = minus(b.y, a.y);
    const double offsetX = minus(point.x, a.x);
    const double offsetY = minus(point.y, a.y);
    if (dx == 0 && dy == 0) return offsetX == 0.0 && offsetY == 0.0 ? 0.0 : kNoValue;
    const std::int32_t sizeX = dx < 0 ? minus(0, dx) : dx;
    const std::int32_t sizeY = dy < 0 ? minus(0, dy) : dy;
    return sizeX > sizeY ? offsetX / dx : offsetY / dy;
}

struct Crossing {
    int result;
    int isParallel;
    double t;
    double s;
};

/// Crossing of the lines a and b with the parameters t on a and s on b.
inline Crossing crossLines(const tagPOINT& a0, const tagPOINT& a1, const tagPOINT& b0, const tagPOINT& b1) {
    const std::int32_t denominator =
        plus(times(minus(a1.y, a0.y), minus(b1.x, b0.x)), times(minus(a1.x, a0.x), minus(b0.y, b1.y)));
    const std::int32_t numerator =
        plus(times(minus(b0.x, a0.x), minus(b0.y, b1.y)), times(minus(b0.y, a0.y), minus(b1.x, b0.x)));
    double t = 0.0;
    if (denominator != 0) {
        t = static_cast<double>(numerator) / denominator;
    } else if (numerator != 0) {
        return {0, 1, kNoValue, kNoValue};
    }
    const tagPOINT2D p{minus(a1.x, a0.x) * t + a0.x, minus(a1.y, a0.y) * t + a0.y};
    return {1, denominator == 0 ? 1 : 0, t, scaleFactor(b0, b1, p)};
}

inline bool isOnSegment(double parameter) {
    return -1e-7 < parameter && parameter < 1.0000001;
}

inline bool doSegmentsMeet(const tagPOINT& a0, const tagPOINT& a1, const tagPOINT& b0, const tagPOINT& b1) {
    const auto low = [](std::int32_t a, std::int32_t b) { return a < b ? a : b; };
    const auto high = [](std::int32_t a, std::int32_t b) { return a > b ? a : b; };
    if (low(a0.x, a1.x) > high(b0.x, b1.x) || low(a0.y, a1.y) > high(b0.y, b1.y)) return false;
    if (high(a0.x, a1.x) < low(b0.x, b1.x) || high(a0.y, a1.y) < low(b0.y, b1.y)) return false;
    const Crossing crossing = crossLines(a0, a1, b0, b1);
    if (crossing.result == 0) return false;
    if (crossing.isParallel == 0) return isOnSegment(crossing.t) && isOnSegment(crossing.s);
    const auto toDouble = [](const tagPOINT& p) {
        return tagPOINT2D{static_cast<double>(p.x), static_cast<double>(p.y)};
    };
    return isOnSegment(scaleFactor(a0, a1, toDouble(b0))) || isOnSegment(scaleFactor(a0, a1, toDouble(b1))) ||
           isOnSegment(scaleFactor(b0, b1, toDouble(a0)));
}

inline int sign(double value) {
    return std::fabs(value) < 1e-7 ? 0 : value > 0.0 ? 1 : -1;
}

/// 1 inside, 0 outside, -1 on the outline.
inline int isPointInside(const Outline& points, const tagPOINT& test) {
    std::size_t n = points.size();
    if (n == 0) return 0;
    while (n > 1 && same(points[n - 1], points[0]))
        --n;
    if (n == 1) return same(points[0], test) ? -1 : 0;
    std::size_t start = n;
    for (std::size_t i = 0; i < n; ++i) {
        const tagPOINT& next = points[(i + 1) % n];
        if (same(test, next)) return -1;
        if (same(points[i], next)) continue;
        const Crossing crossing = crossLines(test, next, points[i], next);
        if (crossing.isParallel == 0 && crossing.s > -1e-7 && crossing.s < 1.0000001 &&
            std::fabs(crossing.s) >= 1e-7) {
            start = i;
            break;
        }
    }
    if (start == n) return 0;
    const tagPOINT target = points[(start + 1) % n];
    const std::int32_t dx = minus(target.x, test.x);
    const std::int32_t dy = minus(target.y, test.y);
    const auto side = [&](const tagPOINT& p) {
        return static_cast<double>(plus(times(minus(p.y, test.y), minus(test.x, target.x)),
                                        times(minus(p.x, test.x), minus(target.y, test.y))));
    };
    int crossings = 0;
    double stored = 0.0;
    std::size_t i = start;
    do {
        const tagPOINT& current = points[i];
        const tagPOINT& next = points[(i + 1) % n];
        i = (i + 1) % n;
        if (same(current, next)) continue;
        const Crossing crossing = crossLines(test, target, current, next);
        if (crossing.result == 0) continue;
        if (crossing.isParallel != 0) {
            if (sign(scaleFactor(test, target, current)) != sign(scaleFactor(test, target, next))) return -1;
            continue;
        }
        const double t = crossing.t;
        if (std::fabs(t) >= 1e-7 && t <= 0.0) continue;
        const double u = next.x == current.x ? (dy * t + test.y - current.y) / minus(next.y, current.y)
                                             : (dx * t + test.x - current.x) / minus(next.x, current.x);
        if (!(u > -1e-7 && u < 1.0000001)) continue;
        if (std::fabs(t) < 1e-7) return -1;
        if (std::fabs(u) < 1e-7) {
            const double v = side(next);
            if (std::fabs(v) < 1e-7) {
                if (sign(stored) != 0) ++crossings;
            } else if (sign(stored) != sign(v)) {
                ++crossings;
            }
        } else if (std::fabs(1.0 - u) < 1e-7) {
            stored = side(current);
        } else {
            ++crossings;
        }
    } while (i != start);
    return crossings % 2;
}

/// The plain pair loop: does an edge of `a` meet an edge of `b`?
inline bool doOutlinesMeet(const Outline& a, bool closedA, const Outline& b, bool closedB) {
    for (std::size_t i = closedA ? 0 : 1; i < a.size(); ++i) {
        const tagPOINT& a0 = closedA ? a[i] : a[i - 1];
        const tagPOINT& a1 = closedA ? a[(i + 1) % a.size()] : a[i];
        if (same(a0, a1)) continue;
        for (std::size_t j = closedB ? 0 : 1; j < b.size(); ++j) {
            const tagPOINT& b0 = closedB ? b[j] : b[j - 1];
            const tagPOINT& b1 = closedB ? b[(j + 1) % b.size()] : b[j];
            if (!same(b0, b1) && doSegmentsMeet(a0, a1, b0, b1)) return true;
        }
    }
    return false;
}

/// 0 apart, 1 the outlines meet, 2 b inside a, 3 a inside b. Neither outline is empty.
inline int relativePosition(const Outline& a, bool closedA, const Outline& b, bool closedB) {
    if (doOutlinesMeet(a, closedA, b, closedB)) return 1;
    if (closedA && isPointInside(a, b[0]) != 0) return 2;
    if (closedB && isPointInside(b, a[0]) != 0) return 3;
    return 0;
}

struct Nearest {
    double distance = kNoValue;
    tagPOINT2D point{kNoValue, kNoValue};
    DWORD index = 0;
    double fraction = 0.0;
};

/// Distance from a point to one segment.
inline Nearest distanceToSegment(const tagPOINT& a, const tagPOINT& b, const tagPOINT& test, bool isSquared) {
    Nearest foot;
    double t = 0.0;
    foot.point = {static_cast<double>(a.x), static_cast<double>(a.y)};
    if (!same(a, b)) {
        const tagPOINT q{plus(minus(test.x, b.y), a.y), plus(minus(test.y, a.x), b.x)};
        t = crossLines(a, b, test, q).t;
        if (isOnSegment(t)) {
            foot.point = {minus(b.x, a.x) * t + a.x, minus(b.y, a.y) * t + a.y};
        } else if (t > 1.0) {
            foot.point = {static_cast<double>(b.x), static_cast<double>(b.y)};
            t = 1.0;
        } else {
            t = 0.0;
        }
    }
    foot.fraction = t;
    const double dx = test.x - foot.point.x;
    const double dy = test.y - foot.point.y;
    const double squared = dy * dy + dx * dx;
    foot.distance = isSquared ? squared : std::sqrt(squared);
    return foot;
}

/// Distance from a point to an outline of at least two points.
inline Nearest distance(const Outline& points, bool closed, const tagPOINT& test, bool isSquared) {
    const std::size_t count = points.size();
    const std::size_t edges = count - 1 + (closed && !same(points.front(), points.back()) ? 1 : 0);
    Nearest best;
    for (std::size_t i = 0; i < edges; ++i) {
        Nearest foot = distanceToSegment(points[i], points[(i + 1) % count], test, isSquared);
        if (!(best.distance > foot.distance)) continue;
        best = foot;
        best.index = static_cast<DWORD>(i);
    }
    return best;
}

inline double triangleArea(const tagPOINT& p0, const tagPOINT& p1, const tagPOINT& p2) {
    const std::int32_t first = times(minus(p1.x, p2.x), plus(p1.y, p2.y));
    const std::int32_t second = times(minus(p2.x, p0.x), plus(p2.y, p0.y));
    const std::int32_t third = times(minus(p1.x, p0.x), plus(p1.y, p0.y));
    return minus(plus(first, second), third) * 0.5;
}

/// The signed area of an outline of at least one point.
inline double area(const Outline& points) {
    const std::size_t count = points.size();
    double sumX = 0.0;
    double sumY = 0.0;
    for (const tagPOINT& p : points) {
        sumX += p.x;
        sumY += p.y;
    }
    const double n = static_cast<double>(count);
    const tagPOINT center{wrapped(std::llround(sumX / n)), wrapped(std::llround(sumY / n))};
    const std::size_t m = count + (same(points.front(), points.back()) ? 0 : 1);
    double sum = 0.0;
    for (std::size_t i = 1; i < m; ++i)
        sum += triangleArea(center, points[i - 1], points[i % count]);
    return sum;
}

using Positions = std::vector<tagPOLY_POSITION>;

inline int comparePositions(const tagPOLY_POSITION& a, const tagPOLY_POSITION& b) {
    if (a.index == b.index && std::fabs(b.fraction - a.fraction) < 1e-7) return 0;
    if (a.index != b.index) return a.index < b.index ? -1 : 1;
    return b.fraction > a.fraction ? -1 : 1;
}

/// The bubble sort of finite positions.
inline void sortPositions(Positions& positions, bool removeEqual) {
    bool isSorted = false;
    while (!isSorted && positions.size() >= 2) {
        isSorted = true;
        for (std::size_t j = 1; j < positions.size(); ++j) {
            const int order = comparePositions(positions[j - 1], positions[j]);
            if (order > 0) {
                std::swap(positions[j - 1], positions[j]);
                isSorted = false;
            } else if (order == 0 && removeEqual) {
                positions.erase(positions.begin() + static_cast<std::ptrdiff_t>(j) - 1);
                isSorted = false;
                break;
            }
        }
    }
}

}  // namespace velquad::test::reference

#endif  // VELQUAD_TESTS_SUPPORT_POLYGON_REFERENCE_H
